#include "vx/CLIParameterChecker.h"

#include <gmock/gmock.h>

#include <string>

#include "CLISupport.h"
#include "support/Reports.h"
#include "vx/CountedDataBuffer.h"

namespace {

using testing::ElementsAre;

vxCLIParameterChecker Plain(int aType) {
    return vxCLIParameterChecker("x", aType, false, 0, 0, false, false);
}

bool Accepts(vxCLIParameterChecker aChecker, const char* aText) {
    return aChecker.Validate(aText, new vxCLIParameter);
}

struct LimitCase {
    int mType;
    const char* mAccepted[3];
    const char* mRejected[2];
};

// Both sides of the limits that a type has without a range.
constexpr LimitCase kLimitCases[] = {
    {kvxInteractiveParameterType_UInt8, {"0", "127", "-0"}, {"-1", "128"}},
    {kvxInteractiveParameterType_Int8, {"-128", "127", "0"}, {"-129", "128"}},
    {kvxInteractiveParameterType_UInt16, {"0", "65535", "1e3"}, {"-1", "65536"}},
    {kvxInteractiveParameterType_Int16, {"-32768", "32767", "0"}, {"-32769", "32768"}},
    {kvxInteractiveParameterType_UInt32,
     {"0", "4294967295", "4294967294.5"},
     {"-0.5", "4294967296"}},
    {kvxInteractiveParameterType_Int32,
     {"-2147483648", "2147483647", "1.5"},
     {"-2147483649", "2147483648"}},
    {kvxInteractiveParameterType_UInt64,
     {"0", "18446744073709551615", "18446744073709551616"},
     {"-1", "18446744073709555712"}},
    {kvxInteractiveParameterType_Int64,
     {"-9223372036854775808", "9223372036854775807", "9223372036854775808"},
     {"-9223372036854777856", "9223372036854777856"}},
    {kvxInteractiveParameterType_Double, {"-1e308", "0", "1.7976931348623157e308"}, {"1e309", "x"}},
};

TEST(CLIParameterCheckerTest, NumbersHaveTheLimitsOfTheirType) {
    for (const LimitCase& theCase : kLimitCases) {
        for (const char* theText : theCase.mAccepted) {
            EXPECT_TRUE(Accepts(Plain(theCase.mType), theText)) << theCase.mType << " " << theText;
        }
        for (const char* theText : theCase.mRejected) {
            EXPECT_FALSE(Accepts(Plain(theCase.mType), theText)) << theCase.mType << " " << theText;
        }
    }
}

TEST(CLIParameterCheckerTest, NumbersMustBeNumbersAsAWhole) {
    for (int theType = kvxInteractiveParameterType_UInt8;
         theType <= kvxInteractiveParameterType_Double; ++theType) {
        SCOPED_TRACE(theType);
        for (const char* theText : {"", "x", "1x", " 1", "1 ", "0x10", "nan", "inf", "1,5"}) {
            EXPECT_FALSE(Accepts(Plain(theType), theText)) << theText;
        }
        EXPECT_TRUE(Accepts(Plain(theType), "+1"));
        EXPECT_TRUE(Accepts(Plain(theType), "1.5"));
    }
}

TEST(CLIParameterCheckerTest, AByteWithARangeReachesTo255) {
    EXPECT_TRUE(
        Accepts({"x", kvxInteractiveParameterType_UInt8, true, 0, 255, false, false}, "255"));
    EXPECT_FALSE(
        Accepts({"x", kvxInteractiveParameterType_UInt8, true, 0, 255, false, false}, "256"));
}

TEST(CLIParameterCheckerTest, RangesAreInclusive) {
    const vxCLIParameterChecker theChecker("x", kvxInteractiveParameterType_Int16, true, -5, 10,
                                           false, false);
    EXPECT_TRUE(Accepts(theChecker, "-5"));
    EXPECT_TRUE(Accepts(theChecker, "10"));
    EXPECT_FALSE(Accepts(theChecker, "-5.01"));
    EXPECT_FALSE(Accepts(theChecker, "10.01"));
}

TEST(CLIParameterCheckerTest, ADoubleIsCheckedAgainstAWrittenRangeOnly) {
    const vxCLIParameterChecker theRanged("x", kvxInteractiveParameterType_Double, true, 0, 1,
                                          false, false);
    EXPECT_TRUE(Accepts(theRanged, "0"));
    EXPECT_TRUE(Accepts(theRanged, "1"));
    EXPECT_FALSE(Accepts(theRanged, "2"));
    EXPECT_FALSE(Accepts(theRanged, "-1e-9"));
    EXPECT_TRUE(Accepts(Plain(kvxInteractiveParameterType_Double), "-2"));
}

TEST(CLIParameterCheckerTest, NumbersAreStored) {
    vxCLIParameterChecker theChecker = Plain(kvxInteractiveParameterType_Int32);
    const vxRef<vxCLIParameter> theValue = new vxCLIParameter;
    EXPECT_TRUE(theChecker.Validate("1.5", theValue));
    EXPECT_EQ(theValue->GetInt32(), 1);
    EXPECT_EQ(theValue->_GetNumber(), 1.5);
    EXPECT_FALSE(theValue->IsMissing());
}

TEST(CLIParameterCheckerTest, WhatIsRefusedForItsSizeIsStoredNevertheless) {
    const vxRef<vxCLIParameter> theValue = new vxCLIParameter;
    vxCLIParameterChecker theNumber = Plain(kvxInteractiveParameterType_UInt8);
    EXPECT_FALSE(theNumber.Validate("300", theValue));
    EXPECT_EQ(theValue->GetType(), kvxInteractiveParameterType_UInt8);
    EXPECT_EQ(theValue->_GetNumber(), 300.0);
    EXPECT_FALSE(theNumber.Validate("x", theValue));
    EXPECT_EQ(theValue->_GetNumber(), 300.0);
    vxCLIParameterChecker theChar = Plain(kvxInteractiveParameterType_Char);
    EXPECT_FALSE(theChar.Validate("ab", theValue));
    EXPECT_STREQ(theValue->_GetText(), "ab");
}

struct TruthCase {
    const char* mText;
    int mValue;  // -1: refused
};

constexpr TruthCase kTruthCases[] = {
    {"true", 1}, {"on", 1},  {"yes", 1},   {"TRUE", 1},    {"On", 1},   {"YES", 1},
    {"1", 1},    {"+1", 1},  {"false", 0}, {"off", 0},     {"no", 0},   {"FALSE", 0},
    {"oFF", 0},  {"No", 0},  {"0", 0},     {"00", 0},      {"2", -1},   {"maybe", -1},
    {"", -1},    {"-1", -1}, {"1.0", -1},  {"truely", -1}, {"0x1", -1}, {"4294967297", -1},
};

TEST(CLIParameterCheckerTest, TruthHasWordsAndTwoNumbers) {
    for (const TruthCase& theCase : kTruthCases) {
        SCOPED_TRACE(theCase.mText);
        vxCLIParameterChecker theChecker = Plain(kvxInteractiveParameterType_Bool);
        const vxRef<vxCLIParameter> theValue = new vxCLIParameter;
        EXPECT_EQ(theChecker.Validate(theCase.mText, theValue), theCase.mValue >= 0);
        if (theCase.mValue >= 0) {
            EXPECT_EQ(theValue->GetBool(), theCase.mValue == 1);
            EXPECT_EQ(theValue->_GetNumber(), theCase.mValue);
        }
    }
}

TEST(CLIParameterCheckerTest, ACharIsOneByte) {
    vxCLIParameterChecker theChecker = Plain(kvxInteractiveParameterType_Char);
    const vxRef<vxCLIParameter> theValue = new vxCLIParameter;
    EXPECT_TRUE(theChecker.Validate("a", theValue));
    EXPECT_EQ(theValue->GetChar(), 'a');
    EXPECT_FALSE(theChecker.Validate("ab", theValue));
    EXPECT_FALSE(theChecker.Validate("", theValue));
    EXPECT_FALSE(theChecker.Validate("\xc3\xa4", theValue));
}

TEST(CLIParameterCheckerTest, StringsTakeEverything) {
    vxCLIParameterChecker theChecker = Plain(kvxInteractiveParameterType_Str);
    const vxRef<vxCLIParameter> theValue = new vxCLIParameter;
    EXPECT_TRUE(theChecker.Validate("", theValue));
    EXPECT_STREQ(theValue->GetString(), "");
    EXPECT_TRUE(theChecker.Validate("a b \"c\"", theValue));
    EXPECT_STREQ(theValue->GetString(), "a b \"c\"");
}

TEST(CLIParameterCheckerTest, ALiteralMustBeTypedExactly) {
    vxCLIParameterChecker theChecker("on", kvxInteractiveParameterType_Litteral, false, 0, 0, false,
                                     false);
    const vxRef<vxCLIParameter> theValue = new vxCLIParameter;
    EXPECT_FALSE(theChecker.Validate("On", theValue));
    EXPECT_FALSE(theChecker.Validate("o", theValue));
    EXPECT_FALSE(theChecker.Validate("onn", theValue));
    EXPECT_TRUE(theChecker.Validate("on", theValue));
    EXPECT_EQ(theValue->GetType(), kvxInteractiveParameterType_Litteral);
    EXPECT_STREQ(theValue->GetString(), "on");
}

TEST(CLIParameterCheckerTest, Base64KeepsTheTypedBytes) {
    vxCLIParameterChecker theChecker = Plain(kvxInteractiveParameterType_Base64);
    const vxRef<vxCLIParameter> theValue = new vxCLIParameter;
    EXPECT_TRUE(theChecker.Validate("YWJj", theValue));
    const vxRef<vxCountedDataBuffer> theBuffer = theValue->GetDataBuffer();
    ASSERT_FALSE(theBuffer.IsNull());
    EXPECT_EQ(std::string(static_cast<const char*>(theBuffer->data()), theBuffer->size()), "YWJj");
    EXPECT_TRUE(theChecker.Validate("not base64!", theValue));
    EXPECT_EQ(theValue->GetDataBuffer()->size(), 11u);
}

TEST(CLIParameterCheckerTest, NoTypeAndUnknownTypesAcceptNothing) {
    EXPECT_FALSE(Accepts(Plain(kvxInteractiveParameterType_None), "0"));
    EXPECT_FALSE(Accepts(Plain(15), "0"));
    EXPECT_FALSE(Accepts(Plain(-1), "0"));
}

TEST(CLIParameterCheckerTest, ANullParameterIsReported) {
    vxtest::Reports theReports;
    vxCLIParameterChecker theChecker = Plain(kvxInteractiveParameterType_Str);
    EXPECT_FALSE(theChecker.Validate("x", 0));
    EXPECT_THAT(theReports.Assertions(), ElementsAre("!aParameter.IsNull()"));
}

TEST(CLIParameterCheckerTest, DefaultsAreTextForTextTypesAndANumberForTheOthers) {
    for (int theType = kvxInteractiveParameterType_None;
         theType <= kvxInteractiveParameterType_Base64; ++theType) {
        SCOPED_TRACE(theType);
        const bool theIsText = theType == 10 || theType == 11 || theType == 13;
        vxCLIParameterChecker theChecker = Plain(theType);
        theChecker.SetDefault(3, "three");
        EXPECT_EQ(theChecker.GetDefaultNumber(), theIsText ? 0.0 : 3.0);
        EXPECT_STREQ(theChecker.GetDefaultString(), theIsText ? "three" : "");
    }
}

struct HelpCase {
    int mType;
    bool mfRange;
    double mMin;
    double mMax;
    bool mfOptional;
    const char* mHelp;
};

constexpr HelpCase kHelpCases[] = {
    {kvxInteractiveParameterType_UInt8, false, 0, 0, false, "n"},
    {kvxInteractiveParameterType_UInt8, false, 0, 0, true, "(n)"},
    {kvxInteractiveParameterType_UInt8, true, 1, 10, false, "n[1,10]"},
    {kvxInteractiveParameterType_UInt8, true, 1, 10, true, "(n[1,10])"},
    {kvxInteractiveParameterType_UInt16, true, 0, 65535, false, "n[0,65535]"},
    {kvxInteractiveParameterType_UInt32, true, 1.9, 4294967295.0, false, "n[1,4294967295]"},
    {kvxInteractiveParameterType_UInt64, true, 0, 18446744073709551616.0, false,
     "n[0,18446744073709551615]"},
    {kvxInteractiveParameterType_Int8, true, -128, 127, false, "n[-128,127]"},
    {kvxInteractiveParameterType_Int16, true, -1.9, 1.9, false, "n[-1,1]"},
    {kvxInteractiveParameterType_Int32, true, -5, 5, false, "n[-5,5]"},
    {kvxInteractiveParameterType_Int64, true, -9223372036854775808.0, 9223372036854775808.0, false,
     "n[-9223372036854775808,9223372036854775807]"},
    {kvxInteractiveParameterType_Double, true, 0, 0.5, false, "n[0.000000,0.500000]"},
    {kvxInteractiveParameterType_Str, true, 0, 1, false, "n"},
    {kvxInteractiveParameterType_Bool, false, 0, 0, true, "(n)"},
};

TEST(CLIParameterCheckerTest, HelpShowsNameRangeAndWhetherOptional) {
    for (const HelpCase& theCase : kHelpCases) {
        EXPECT_STREQ(vxCLIParameterChecker("n", theCase.mType, theCase.mfRange, theCase.mMin,
                                           theCase.mMax, theCase.mfOptional, false)
                         .GetHelp(),
                     theCase.mHelp);
    }
}

}  // namespace
