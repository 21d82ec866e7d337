#include "vx/CLICommandChecker.h"

#include <gmock/gmock.h>

#include <random>
#include <string>

#include "CLISupport.h"
#include "support/Growth.h"
#include "support/Reports.h"
#include "vx/CLIParameterChecker.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Parameters;
using vxtest::ParseDescription;
using vxtest::Validate;
using vxtest::Verdict;

struct VerdictCase {
    const char* mDescription;
    const char* mTyped;
    const char* mVerdict;
};

constexpr VerdictCase kVerdictCases[] = {
    {"", "", "ok"},
    {"", "  ", "ok"},
    {"", "x", "ERROR: Too many parameters"},
    {"", "\"\"", "ERROR: Too many parameters"},
    {"a:str", "", "ERROR: Missing parameter 1"},
    {"a:str b:str", "x", "ERROR: Missing parameter 2"},
    {"a:str b:str c:str", "x y", "ERROR: Missing parameter 3"},
    {"a:str b:str", "x y z", "ERROR: Too many parameters"},
    {"a:str", "\"\"", "ok"},
    {"a:ui8 b:ui8", "1 x", "ERROR: Invalid parameter 2: 'x'"},
    {"a:ui8 b:ui8", "y x", "ERROR: Invalid parameter 1: 'y'"},
    {"a:ui8", "'1 2'", "ERROR: Invalid parameter 1: '1 2'"},
    {"a:ui8", "\"\"", "ERROR: Invalid parameter 1: ''"},
    {"'on' (v:ui8:3)", "off", "ERROR: Invalid parameter 1: 'off'"},
    {"'on' (v:ui8:3)", "on 4 5", "ERROR: Too many parameters"},
    {"'on' (v:ui8:3)", "on x", "ERROR: Invalid parameter 2: 'x'"},
    {"(a:str) (b:str)", "x y z", "ERROR: Too many parameters"},
    {"a:str (b:str)", "", "ERROR: Missing parameter 1"},
    {"b:bool", "YES", "ok"},
    {"b:bool", "off", "ok"},
    {"b:bool", "1", "ok"},
    {"b:bool", "0", "ok"},
    {"b:bool", "2", "ERROR: Invalid parameter 1: '2'"},
    {"b:bool", "maybe", "ERROR: Invalid parameter 1: 'maybe'"},
    {"c:char", "ab", "ERROR: Invalid parameter 1: 'ab'"},
    {"c:char", "a", "ok"},
    {"x:double[0,1]", "2", "ERROR: Invalid parameter 1: '2'"},
    {"x:double", "-1e300", "ok"},
    {"'a b'", "'a b'", "ok"},
    {"'a b'", "a b", "ERROR: Invalid parameter 1: 'a'"},
    {"r:...", "", "ok"},
    {"a:str r:...", "x", "ok"},
    {"a:str r:...", "", "ERROR: Missing parameter 1"},
};

TEST(CLICommandCheckerTest, AcceptsOrTellsTheFirstError) {
    for (const VerdictCase& theCase : kVerdictCases) {
        SCOPED_TRACE(testing::Message() << theCase.mDescription << " | " << theCase.mTyped);
        EXPECT_EQ(Verdict(theCase.mDescription, theCase.mTyped), theCase.mVerdict);
    }
}

TEST(CLICommandCheckerTest, GivesOneValuePerDeclaredParameter) {
    Parameters theParameters;
    EXPECT_EQ(Validate("'on' (v:ui8:3)", "on", theParameters), "");
    ASSERT_EQ(theParameters.Count(), 2u);
    EXPECT_EQ(theParameters.At(0)->GetType(), kvxInteractiveParameterType_Litteral);
    EXPECT_STREQ(theParameters.At(0)->GetString(), "on");
    EXPECT_FALSE(theParameters.At(0)->IsMissing());
    EXPECT_EQ(theParameters.At(1)->GetUInt8(), 3);
    EXPECT_TRUE(theParameters.At(1)->IsMissing());
    EXPECT_EQ(theParameters.At(1)->_GetRefCount(), 1);
}

TEST(CLICommandCheckerTest, ValuesAreAppendedToWhatTheArrayHolds) {
    Parameters theParameters;
    EXPECT_EQ(Validate("a:ui8 (b:ui8:4)", "1", theParameters), "");
    EXPECT_EQ(Validate("a:ui8 (b:ui8:5) (c:str)", "2", theParameters), "");
    ASSERT_EQ(theParameters.Count(), 5u);
    EXPECT_EQ(theParameters.At(1)->GetUInt8(), 4);
    EXPECT_EQ(theParameters.At(2)->GetUInt8(), 2);
    EXPECT_EQ(theParameters.At(3)->GetUInt8(), 5);
    EXPECT_STREQ(theParameters.At(4)->GetString(), "");
}

TEST(CLICommandCheckerTest, ATypedOptionalParameterIsNotMissing) {
    Parameters theParameters;
    EXPECT_EQ(Validate("(a:ui8:3) (b:ui8:4)", "5", theParameters), "");
    ASSERT_EQ(theParameters.Count(), 2u);
    EXPECT_EQ(theParameters.At(0)->GetUInt8(), 5);
    EXPECT_FALSE(theParameters.At(0)->IsMissing());
    EXPECT_EQ(theParameters.At(1)->GetUInt8(), 4);
    EXPECT_TRUE(theParameters.At(1)->IsMissing());
}

std::string FreeForm(const char* aDescription, const char* aTyped) {
    Parameters theParameters;
    EXPECT_EQ(Validate(aDescription, aTyped, theParameters), "");
    const vxCLIParameter* theLast = theParameters.At(theParameters.Count() - 1);
    EXPECT_FALSE(theLast->IsMissing());
    return std::string(theLast->GetString());
}

TEST(CLICommandCheckerTest, AFreeFormParameterTakesTheRestAsItStands) {
    EXPECT_EQ(FreeForm("msg:...", "hello \"big\" world"), "hello \"big\" world");
    EXPECT_EQ(FreeForm("msg:...", "'quoted'"), "'quoted'");
    EXPECT_EQ(FreeForm("msg:...", "\"open"), "\"open");
    EXPECT_EQ(FreeForm("msg:...", "  blanks around  "), "  blanks around  ");
    EXPECT_EQ(FreeForm("a:ui8 msg:...", "1   two  'three'  "), "two  'three'");
    EXPECT_EQ(FreeForm("a:str b:str msg:...", "1 2 3"), "3");
}

TEST(CLICommandCheckerTest, AFreeFormParameterWithNothingLeftIsEmpty) {
    EXPECT_EQ(FreeForm("msg:...", ""), "");
    EXPECT_EQ(FreeForm("a:ui8 msg:...", "1"), "");
    EXPECT_EQ(FreeForm("(msg:...:default)", ""), "");
}

TEST(CLICommandCheckerTest, QuotedWordsAreOneParameter) {
    Parameters theParameters;
    EXPECT_EQ(Validate("a:str b:str c:str", "'a b' \"c d\" e\"f g\"", theParameters), "");
    EXPECT_STREQ(theParameters.At(0)->GetString(), "a b");
    EXPECT_STREQ(theParameters.At(1)->GetString(), "c d");
    EXPECT_STREQ(theParameters.At(2)->GetString(), "e\"f g\"");
}

TEST(CLICommandCheckerTest, LeavesWhatItDidNotLookAt) {
    Parameters theParameters;
    const vxtest::Parsed theParsed = ParseDescription("a:ui8 b:ui8");
    vxCString theText = " 1 x  3 4 ";
    EXPECT_STREQ(theParsed.mChecker->Validate(theText, theParameters),
                 "ERROR: Invalid parameter 2: 'x'");
    EXPECT_STREQ(theText, "3 4");
    theText = "1 2";
    EXPECT_STREQ(theParsed.mChecker->Validate(theText, theParameters), "");
    EXPECT_STREQ(theText, "");
}

vxCLIParameterChecker* NewChecker(const char* aName, int aType, bool afOptional) {
    return new vxCLIParameterChecker(aName, aType, false, 0, 0, afOptional, false);
}

TEST(CLICommandCheckerTest, CountsMandatoryParametersBehindOptionalOnes) {
    vxCLICommandChecker theChecker("help", vxCSVStringList("x", 0));
    theChecker.Add(NewChecker("a", kvxInteractiveParameterType_Str, true));
    theChecker.Add(NewChecker("b", kvxInteractiveParameterType_Str, false));
    theChecker.Finalize();
    theChecker.Finalize();  // counts anew
    Parameters theParameters;
    vxCString theText = "";
    EXPECT_STREQ(theChecker.Validate(theText, theParameters),
                 "ERROR: Missing parameters: 1 parameters are required");
}

TEST(CLICommandCheckerTest, AMandatoryParameterThatWouldBeMissingIsReported) {
    vxtest::Reports theReports;
    vxCLICommandChecker theChecker("help", vxCSVStringList("x", 0));
    theChecker.Add(NewChecker("a", kvxInteractiveParameterType_Str, true));
    theChecker.Add(NewChecker("b", kvxInteractiveParameterType_Str, true));
    theChecker.Add(NewChecker("c", kvxInteractiveParameterType_Str, false));
    theChecker.Finalize();
    Parameters theParameters;
    vxCString theText = "one";
    EXPECT_STREQ(theChecker.Validate(theText, theParameters), "");
    EXPECT_EQ(theParameters.Count(), 3u);
    EXPECT_THAT(
        theReports.Assertions(),
        ElementsAre("(theCLIParameterChecker != NULL) && theCLIParameterChecker->mfOptional"));
}

TEST(CLICommandCheckerTest, ANullParameterIsReportedAndLeftOut) {
    vxtest::Reports theReports;
    vxCLICommandChecker theChecker("help", vxCSVStringList("x", 0));
    theChecker.Add(NULL);
    theChecker.Finalize();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("theCLIParameterChecker != NULL"));
    EXPECT_STREQ(theChecker.GetHelp(), ": help");
}

TEST(CLICommandCheckerTest, ANullArrayIsReported) {
    vxtest::Reports theReports;
    const vxtest::Parsed theParsed = ParseDescription("a:ui8");
    vxCString theText = "1";
    EXPECT_STREQ(theParsed.mChecker->Validate(theText, NULL), "");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("aParameters != NULL"));
}

TEST(CLICommandCheckerTest, HelpJoinsTheParameters) {
    vxCSVStringList theNames("x", 0);
    vxCLICommandValidator theValidator("count:ui8[1,10] (mode:str)", "set the mode", theNames);
    const std::unique_ptr<vxCLICommandChecker> theChecker(theValidator.Parse());
    ASSERT_NE(theChecker, nullptr);
    EXPECT_STREQ(theChecker->GetHelp(), "count[1,10] (mode) : set the mode");
}

struct ConflictCase {
    const char* mLeft;
    const char* mRight;
    bool mfLeftWithRight;  // NotConflictingWith, left to right
    bool mfRightWithLeft;
};

constexpr ConflictCase kConflictCases[] = {
    // nothing against a first parameter
    {"", "", false, false},
    {"", "a:str", true, false},
    {"", "'on'", true, false},
    {"", "r:...", true, false},
    {"", "(a:str)", false, false},
    // literals
    {"'on'", "'off'", true, true},
    {"'on'", "'on'", false, false},
    {"'on' a:str", "'on' b:ui8", false, false},
    {"('on')", "'off'", true, true},
    // a literal against a number
    {"'on'", "level:ui8", true, false},
    {"'on'", "level:double", true, false},
    {"'on'", "level:i64", true, false},
    {"'5'", "level:ui8", false, false},
    {"'1e3'", "level:ui8", false, false},
    {"'5x'", "level:ui8", true, false},
    {"'on'", "flag:bool", false, false},
    {"'on'", "text:str", false, false},
    {"'on'", "r:...", false, false},
    // all others
    {"a:str", "b:str", false, false},
    {"a:ui8", "b:str", false, false},
    {"a:ui8", "b:double", false, false},
};

TEST(CLICommandCheckerTest, OverloadsMustDifferInTheirFirstWord) {
    for (const ConflictCase& theCase : kConflictCases) {
        SCOPED_TRACE(testing::Message() << theCase.mLeft << " | " << theCase.mRight);
        const vxtest::Parsed theLeft = ParseDescription(theCase.mLeft);
        const vxtest::Parsed theRight = ParseDescription(theCase.mRight);
        EXPECT_EQ(theLeft.mChecker->NotConflictingWith(theRight.mChecker.get()),
                  theCase.mfLeftWithRight);
        EXPECT_EQ(theRight.mChecker->NotConflictingWith(theLeft.mChecker.get()),
                  theCase.mfRightWithLeft);
        EXPECT_EQ(
            vxCLICommandChecker::NotConflicting(theLeft.mChecker.get(), theRight.mChecker.get()),
            theCase.mfLeftWithRight || theCase.mfRightWithLeft);
        EXPECT_EQ(
            vxCLICommandChecker::NotConflicting(theRight.mChecker.get(), theLeft.mChecker.get()),
            theCase.mfLeftWithRight || theCase.mfRightWithLeft);
    }
}

TEST(CLICommandCheckerTest, ANullCheckerConflictsWithEverything) {
    const vxtest::Parsed theParsed = ParseDescription("");
    EXPECT_FALSE(vxCLICommandChecker::NotConflicting(theParsed.mChecker.get(), NULL));
    EXPECT_FALSE(vxCLICommandChecker::NotConflicting(NULL, theParsed.mChecker.get()));
    EXPECT_FALSE(theParsed.mChecker->NotConflictingWith(NULL));
}

TEST(CLICommandCheckerTest, RandomLinesNeverCrash) {
    std::mt19937 theRandom(777);
    const vxtest::Parsed theParsed =
        ParseDescription("a:str n:ui8 'on' (f:bool:no) (c:char:x) (b:base64:x) (r:...)");
    ASSERT_EQ(theParsed.mError, "");
    for (int i = 0; i < 20000; ++i) {
        std::string theText;
        for (size_t theLength = theRandom() % 30; theLength > 0; --theLength) {
            theText += static_cast<char>(theRandom() % 3 == 0 ? theRandom() % 256
                                                              : "on5 'x\" \t"[theRandom() % 9]);
        }
        Parameters theParameters;
        vxCString theArguments(theText.data(), theText.size());
        if (theParsed.mChecker->Validate(theArguments, theParameters).IsEmpty()) {
            ASSERT_EQ(theParameters.Count(), 7u);
        }
    }
}

TEST(CLICommandCheckerTest, AManyWordedLineOfAMegabyteIsReadInOnePass) {
    EXPECT_TRUE(vxtest::GrowsLinearly(12500, [](size_t aCount) {
        std::string theDescription;
        std::string theLine;
        for (size_t i = 0; i < aCount; ++i) {
            theDescription += "n:ui8 ";
            theLine += "1 ";
        }
        theLine += std::string(20 * aCount, 'x');
        theDescription += "r:...";
        const vxtest::Parsed theParsed = ParseDescription(theDescription.c_str());
        ASSERT_NE(theParsed.mChecker, nullptr);
        Parameters theParameters;
        vxCString theArguments = theLine.c_str();
        EXPECT_STREQ(theParsed.mChecker->Validate(theArguments, theParameters), "");
        ASSERT_EQ(theParameters.Count(), aCount + 1);
        EXPECT_EQ(theParameters.At(aCount)->GetString().length(), 20 * aCount);
    }));
}

}  // namespace
