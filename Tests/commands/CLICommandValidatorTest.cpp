#include "vx/CLICommandValidator.h"

#include <gmock/gmock.h>

#include <chrono>
#include <random>
#include <string>

#include "CLISupport.h"
#include "vx/CountedDataBuffer.h"

namespace {

using vxtest::Parameters;
using vxtest::ParseDescription;
using vxtest::Validate;
using vxtest::Verdict;

std::string ErrorOf(const char* aDescription) {
    const vxtest::Parsed theParsed = ParseDescription(aDescription);
    EXPECT_EQ(theParsed.mChecker == nullptr, !theParsed.mError.empty());
    return theParsed.mError;
}

std::string HelpOf(const char* aDescription) {
    const vxtest::Parsed theParsed = ParseDescription(aDescription);
    EXPECT_EQ(theParsed.mError, "");
    return theParsed.mChecker == nullptr ? "" : std::string(theParsed.mChecker->GetHelp());
}

struct KeywordCase {
    const char* mKeyword;
    const char* mTyped;
    int mType;
};

constexpr KeywordCase kKeywordCases[] = {
    {"ui8", "1", 1},    {"i8", "1", 2},    {"ui16", "1", 3},  {"i16", "1", 4},     {"ui32", "1", 5},
    {"i32", "1", 6},    {"ui64", "1", 7},  {"i64", "1", 8},   {"double", "1", 9},  {"str", "1", 10},
    {"...", "1 2", 10}, {"char", "1", 11}, {"bool", "1", 12}, {"base64", "1", 14},
};

TEST(CLICommandValidatorTest, EveryKeywordGivesItsType) {
    for (const KeywordCase& theCase : kKeywordCases) {
        SCOPED_TRACE(theCase.mKeyword);
        Parameters theParameters;
        const std::string theDescription = std::string("x:") + theCase.mKeyword;
        EXPECT_EQ(Validate(theDescription.c_str(), theCase.mTyped, theParameters), "");
        ASSERT_EQ(theParameters.Count(), 1u);
        EXPECT_EQ(theParameters.At(0)->GetType(), theCase.mType);
        EXPECT_FALSE(theParameters.At(0)->IsMissing());
    }
    Parameters theParameters;
    EXPECT_EQ(Validate("'word'", "word", theParameters), "");
    EXPECT_EQ(theParameters.At(0)->GetType(), kvxInteractiveParameterType_Litteral);
}

struct HelpCase {
    const char* mDescription;
    const char* mHelp;
};

constexpr HelpCase kHelpCases[] = {
    {"", ": the help"},
    {" \t ", ": the help"},
    {"count:ui8[1,10] (mode:str)", "count[1,10] (mode) : the help"},
    {"a:str\tb:str", "a b : the help"},
    {"'on' ('off')", "on (off) : the help"},
    {"(n:ui16:5[1,10])", "(n[1,10]) : the help"},
    {"n:ui8[,10]", "n[0,10] : the help"},
    {"n:i8[5,]", "n[5,127] : the help"},
    {"n:i8[,5]", "n[-128,5] : the help"},
    {"n:ui8[5,]", "n[5,255] : the help"},
    {"n:ui16[5,]", "n[5,65535] : the help"},
    {"n:i16[,5]", "n[-32768,5] : the help"},
    {"n:i16[5,]", "n[5,32767] : the help"},
    {"n:ui32[5,]", "n[5,4294967295] : the help"},
    {"n:i32[,5]", "n[-2147483648,5] : the help"},
    {"n:i32[5,]", "n[5,2147483647] : the help"},
    {"n:ui64[5,]", "n[5,18446744073709551615] : the help"},
    {"n:i64[,5]", "n[-9223372036854775808,5] : the help"},
    {"n:i64[5,]", "n[5,9223372036854775807] : the help"},
    {"n:double[0,1]", "n[0.000000,1.000000] : the help"},
    {"n:ui8[]", "n : the help"},
    {"n:ui8[9,1]", "n[9,1] : the help"},
    {"r:...", "r : the help"},
    {"n:ui8:5", "n : the help"},
    {"'two words'", "two words : the help"},
    {"'on':str", "'on' : the help"},
    {"''", " : the help"},
    {"n[1,2]:ui8", "n[1,2] : the help"},
    {"\"n:ui8\" \"(s:str:two words)\"", "n (s) : the help"},
};

TEST(CLICommandValidatorTest, ReadsEveryForm) {
    for (const HelpCase& theCase : kHelpCases) {
        SCOPED_TRACE(theCase.mDescription);
        EXPECT_EQ(HelpOf(theCase.mDescription), theCase.mHelp);
    }
}

struct ErrorCase {
    const char* mDescription;
    const char* mError;
};

constexpr ErrorCase kErrorCases[] = {
    // the shell of an element
    {"(n:ui8", "    Optional description is invalid, no terminating parenthesis: '(n:ui8'\n"},
    {"(", "    Optional description is invalid, no terminating parenthesis: '('\n"},
    {"()", "    Description is invalid, name is unspecified: '()'\n"},
    {":ui8", "    Description is invalid, name is unspecified: ':ui8'\n"},
    {"(:ui8)", "    Description is invalid, name is unspecified: '(:ui8)'\n"},
    {":", "    Description is invalid, name is unspecified: ':'\n"},
    {"n", "    Description is invalid, type is unspecified: 'n'\n"},
    {"n:", "    Description is invalid, type is unspecified: 'n:'\n"},
    {"(n)", "    Description is invalid, type is unspecified: '(n)'\n"},
    {"'n", "    Description is invalid, type is unspecified: ''n'\n"},
    {"'", "    Description is invalid, type is unspecified: '''\n"},
    // types
    {"n:int", "    Invalid type description: 'int' in 'n:int'\n"},
    {"n:UI8", "    Invalid type description: 'UI8' in 'n:UI8'\n"},
    {"(n:ui9:5)", "    Invalid type description: 'ui9' in '(n:ui9:5)'\n"},
    {"n::5", "    Invalid type description: '' in 'n::5'\n"},
    {"n:[1,2]", "    Invalid type description: '' in 'n:[1,2]'\n"},
    {"'a:b'", "    Invalid type description: 'b'' in ''a:b''\n"},
    {"('on':x)", "    Invalid type description: 'x' in '('on':x)'\n"},
    {"'on'[1,2]", "    Description is invalid, type is unspecified: ''on'[1,2]'\n"},
    // ranges
    {"n:ui8[1,2", "    Range description is invalid, no terminating square bracket: 'n:ui8[1,2'\n"},
    {"(n:ui8[1,2]:5)",
     "    Range description is invalid, no terminating square bracket: '(n:ui8[1,2]:5)'\n"},
    {"n:ui8[ 1,2]", "    Range description is invalid, no terminating square bracket: 'n:ui8['\n"},
    {"\"n:ui8[ 1,2]\"", "    Invalid minimum value ' 1' for 'ui8' range\n"},
    {"\"n:ui8 [1,2]\"", "    Invalid type description: 'ui8 ' in 'n:ui8 [1,2]'\n"},
    {"n:ui8[1,2]]", "    Invalid maximum value '2]' for 'ui8' range\n"},
    {"(s:str:a[b])", "    Range description is invalid, no comma separator found: 'b'\n"},
    {"n:ui8[1-5]", "    Range description is invalid, no comma separator found: '1-5'\n"},
    {"n:ui8[1,2,3]", "    Range description is invalid, no comma separator found: '1,2,3'\n"},
    {"s:str[1,2]", "    Type 'str' does not support a range specifier\n"},
    {"s:...[1,2]", "    Type '...' does not support a range specifier\n"},
    {"s:char[1,2]", "    Type 'char' does not support a range specifier\n"},
    {"s:bool[1,2]", "    Type 'bool' does not support a range specifier\n"},
    {"s:str[1-2]", "    Range description is invalid, no comma separator found: '1-2'\n"},
    {"n:ui8[,]", "    Type ',' does not support an empty range: 'ui8'\n"},
    {"n:double[,]", "    Type ',' does not support an empty range: 'double'\n"},
    {"b:base64[1,2]",
     "    Invalid minimum value '1' for 'base64' range\n"
     "    Invalid maximum value '2' for 'base64' range\n"},
    {"b:base64[,2]",
     "    Invalid minimum value '' for 'base64' range\n"
     "    Invalid maximum value '2' for 'base64' range\n"},
    {"n:ui8[x,5]", "    Invalid minimum value 'x' for 'ui8' range\n"},
    {"n:ui8[1,y]", "    Invalid maximum value 'y' for 'ui8' range\n"},
    {"n:ui8[x,y]",
     "    Invalid minimum value 'x' for 'ui8' range\n"
     "    Invalid maximum value 'y' for 'ui8' range\n"},
    {"n:ui8[0,256]", "    Invalid maximum value '256' for 'ui8' range\n"},
    {"n:ui8[-1,255]", "    Invalid minimum value '-1' for 'ui8' range\n"},
    {"n:i8[-129,127]", "    Invalid minimum value '-129' for 'i8' range\n"},
    {"n:i8[-128,128]", "    Invalid maximum value '128' for 'i8' range\n"},
    {"n:ui16[0,65536]", "    Invalid maximum value '65536' for 'ui16' range\n"},
    {"n:i16[-32769,32768]",
     "    Invalid minimum value '-32769' for 'i16' range\n"
     "    Invalid maximum value '32768' for 'i16' range\n"},
    {"n:ui32[0,4294967296]", "    Invalid maximum value '4294967296' for 'ui32' range\n"},
    {"n:i32[-2147483649,2147483648]",
     "    Invalid minimum value '-2147483649' for 'i32' range\n"
     "    Invalid maximum value '2147483648' for 'i32' range\n"},
    {"n:ui64[0,18446744073709555712]",
     "    Invalid maximum value '18446744073709555712' for 'ui64' range\n"},
    {"n:i64[-9223372036854777856,9223372036854777856]",
     "    Invalid minimum value '-9223372036854777856' for 'i64' range\n"
     "    Invalid maximum value '9223372036854777856' for 'i64' range\n"},
    {"n:double[0,1e309]", "    Invalid maximum value '1e309' for 'double' range\n"},
    // defaults
    {"(n:ui8:x)", "    ERROR: Invalid default value in '(n:ui8:x)'\n"},
    {"(n:ui8:128)", "    ERROR: Invalid default value in '(n:ui8:128)'\n"},
    {"(n:ui8:20[1,10])", "    ERROR: Invalid default value in '(n:ui8:20[1,10])'\n"},
    {"(n:ui8:'')", "    ERROR: Invalid default value in '(n:ui8:'')'\n"},
    {"(c:char:ab)", "    ERROR: Invalid default value in '(c:char:ab)'\n"},
    {"(f:bool)", "    ERROR: No default value specified in '(f:bool)'\n"},
    {"(c:char)", "    ERROR: No default value specified in '(c:char)'\n"},
    {"(b:base64)", "    ERROR: No default value specified in '(b:base64)'\n"},
    // order
    {"(a:str) b:str", "    Found a non optional parameter after an optional parameter\n"},
    {"r:... x:str", "    Found a parameter after a ... parameter\n"},
    {"r:... (x:str)", "    Found a parameter after a ... parameter\n"},
    {"(r:...) x:str", "    Found a non optional parameter after an optional parameter\n"},
    // the first bad element ends the description
    {"n m o:str", "    Description is invalid, type is unspecified: 'n'\n"},
    {"(a:str) b:str c", "    Found a non optional parameter after an optional parameter\n"},
};

TEST(CLICommandValidatorTest, EveryMistakeHasItsMessage) {
    for (const ErrorCase& theCase : kErrorCases) {
        SCOPED_TRACE(theCase.mDescription);
        EXPECT_EQ(ErrorOf(theCase.mDescription), theCase.mError);
    }
}

TEST(CLICommandValidatorTest, BoundsMayBeTheLimitsOfTheirType) {
    for (const char* theDescription :
         {"n:ui8[0,255]", "n:i8[-128,127]", "n:ui16[0,65535]", "n:i16[-32768,32767]",
          "n:ui32[0,4294967295]", "n:i32[-2147483648,2147483647]", "n:ui64[0,18446744073709551616]",
          "n:i64[-9223372036854775808,9223372036854775808]",
          "n:double[-1.7976931348623157e308,1.7976931348623157e308]"}) {
        EXPECT_EQ(ErrorOf(theDescription), "") << theDescription;
    }
}

TEST(CLICommandValidatorTest, AnUnsignedByteWithoutARangeEndsAt127) {
    EXPECT_EQ(Verdict("x:ui8", "127"), "ok");
    EXPECT_EQ(Verdict("x:ui8", "128"), "ERROR: Invalid parameter 1: '128'");
    EXPECT_EQ(Verdict("x:ui8[0,255]", "255"), "ok");
    EXPECT_EQ(Verdict("x:ui8[]", "128"), "ERROR: Invalid parameter 1: '128'");
}

TEST(CLICommandValidatorTest, AnEmptyBoundOfADoubleIsItsLimit) {
    EXPECT_EQ(Verdict("x:double[5,]", "1.7976931348623157e308"), "ok");
    EXPECT_EQ(Verdict("x:double[5,]", "5"), "ok");
    EXPECT_EQ(Verdict("x:double[5,]", "4.9"), "ERROR: Invalid parameter 1: '4.9'");
    EXPECT_EQ(Verdict("x:double[,5]", "-1.7976931348623157e308"), "ok");
    EXPECT_EQ(Verdict("x:double[,5]", "5.1"), "ERROR: Invalid parameter 1: '5.1'");
}

TEST(CLICommandValidatorTest, AReversedRangeAcceptsNothing) {
    EXPECT_EQ(Verdict("x:ui8[9,1]", "5"), "ERROR: Invalid parameter 1: '5'");
}

// What an optional parameter has when it is not typed.
double NumberDefault(const char* aDescription) {
    Parameters theParameters;
    EXPECT_EQ(Validate(aDescription, "", theParameters), "");
    EXPECT_EQ(theParameters.Count(), 1u);
    EXPECT_TRUE(theParameters.At(0)->IsMissing());
    return theParameters.At(0)->_GetNumber();
}

std::string TextDefault(const char* aDescription) {
    Parameters theParameters;
    EXPECT_EQ(Validate(aDescription, "", theParameters), "");
    EXPECT_EQ(theParameters.Count(), 1u);
    EXPECT_TRUE(theParameters.At(0)->IsMissing());
    return std::string(theParameters.At(0)->_GetText());
}

TEST(CLICommandValidatorTest, ANumberWithoutADefaultTakesItsMinimum) {
    EXPECT_EQ(NumberDefault("(n:ui8)"), 0.0);
    EXPECT_EQ(NumberDefault("(n:i8)"), 0.0);
    EXPECT_EQ(NumberDefault("(n:double)"), 0.0);
    EXPECT_EQ(NumberDefault("(n:ui8[5,9])"), 5.0);
    EXPECT_EQ(NumberDefault("(n:i8[-5,9])"), -5.0);
    EXPECT_EQ(NumberDefault("(n:i8[,9])"), -128.0);
    EXPECT_EQ(NumberDefault("(n:double[0.5,])"), 0.5);
    EXPECT_EQ(NumberDefault("(n:double[,0.5])"), -1.7976931348623157e308);
}

TEST(CLICommandValidatorTest, AnExplicitDefaultStandsBeforeTheRange) {
    EXPECT_EQ(NumberDefault("(n:ui16:5[1,10])"), 5.0);
    EXPECT_EQ(NumberDefault("(n:ui8:'7')"), 7.0);
    EXPECT_EQ(NumberDefault("(n:bool:yes)"), 1.0);
    EXPECT_EQ(NumberDefault("(n:bool:false)"), 0.0);
}

TEST(CLICommandValidatorTest, TextDefaultsLoseTheirSingleQuotes) {
    EXPECT_EQ(TextDefault("(s:str)"), "");
    EXPECT_EQ(TextDefault("(s:str:fast)"), "fast");
    EXPECT_EQ(TextDefault("(s:str:'two words')"), "two words");
    EXPECT_EQ(TextDefault("(s:str:\"two words\")"), "\"two words\"");
    EXPECT_EQ(TextDefault("(s:str:'')"), "");
    EXPECT_EQ(TextDefault("(s:str:')"), "'");
    EXPECT_EQ(TextDefault("(s:str:a:b)"), "a:b");
    EXPECT_EQ(TextDefault("(c:char:x)"), "x");
    EXPECT_EQ(TextDefault("('on')"), "on");
}

TEST(CLICommandValidatorTest, AMissingBase64ParameterHasNoBuffer) {
    Parameters theParameters;
    EXPECT_EQ(Validate("(b:base64:YQ==)", "", theParameters), "");
    EXPECT_TRUE(theParameters.At(0)->IsMissing());
    EXPECT_TRUE(theParameters.At(0)->GetDataBuffer().IsNull());
}

TEST(CLICommandValidatorTest, TheCheckerKnowsAllNamesOfTheCommand) {
    vxCSVStringList theNames("set,s", '\\');
    vxCLICommandValidator theValidator("", "", theNames);
    const std::unique_ptr<vxCLICommandChecker> theChecker(theValidator.Parse());
    ASSERT_NE(theChecker, nullptr);
    EXPECT_EQ(theChecker->GetCommandList().GetCount(), 2u);
    EXPECT_STREQ(theChecker->GetCommandList().GetAt(1), "s");
}

TEST(CLICommandValidatorTest, RandomDescriptionsNeverCrash) {
    std::mt19937 theRandom(12345);
    const char* kPieces[] = {"(",  ")", "[",  "]",      ",",    ":",      "'",
                             "\"", " ", "\t", "ui8",    "str",  "...",    "bool",
                             "n",  "5", "-1", "base64", "\xff", "double", "on"};
    for (int i = 0; i < 30000; ++i) {
        std::string theText;
        for (size_t theCount = theRandom() % 12; theCount > 0; --theCount) {
            theText += kPieces[theRandom() % (sizeof(kPieces) / sizeof(*kPieces))];
        }
        SCOPED_TRACE(theText);
        const vxtest::Parsed theParsed = ParseDescription(theText.c_str());
        ASSERT_EQ(theParsed.mChecker == nullptr, !theParsed.mError.empty());
    }
}

}  // namespace
