#include "vx/CommandLineParser.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <libteskTools/Memory.h>
#include <libvxOS/Path.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "CLISupport.h"
#include "support/Growth.h"
#include "support/Reports.h"

namespace {

constexpr const char* kNoPath = nullptr;  // the platform has none to give

// What the program's name and path are while one of these lives.
class ScriptedPath {
public:
    explicit ScriptedPath(const char* aPath) {
        sPath = aPath;
        sIsScripted = true;
    }
    ~ScriptedPath() { sIsScripted = false; }

    using Function = char* (*)();
    static char* Answer(const char* aFunction) {
        return sIsScripted ? vxStrdup(sPath)
                           : reinterpret_cast<Function>(dlsym(RTLD_NEXT, aFunction))();
    }

private:
    static const char* sPath;
    static bool sIsScripted;
};
const char* ScriptedPath::sPath = nullptr;
bool ScriptedPath::sIsScripted = false;

}  // namespace

// Stand in front of the platform's, which do the work unless a path is scripted.
extern "C" VX_API char* vxPath_GetApplicationName(void) {
    return ScriptedPath::Answer("vxPath_GetApplicationName");
}

extern "C" VX_API char* vxPath_GetApplicationFullPath(void) {
    return ScriptedPath::Answer("vxPath_GetApplicationFullPath");
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr auto kSwitch = vxCommandLineEntryType_Switch;
constexpr auto kOption = vxCommandLineEntryType_Option;
constexpr auto kParameter = vxCommandLineEntryType_Parameter;
constexpr auto kNumber = vxCommandLineParameter_Number;
constexpr auto kString = vxCommandLineParameter_String;
constexpr vxCommandLineDescription kEnd = {vxCommandLineEntryType_None, NULL, NULL,
                                           vxCommandLineParameter_None, 0};

TEST(CommandLineConstantsTest, HaveTheirValues) {
    EXPECT_EQ(vxCommandLineEntryType_Switch, 0);
    EXPECT_EQ(vxCommandLineEntryType_Option, 1);
    EXPECT_EQ(vxCommandLineEntryType_Parameter, 2);
    EXPECT_EQ(vxCommandLineEntryType_None, 3);
    EXPECT_EQ(vxCommandLineParameter_String, 0);
    EXPECT_EQ(vxCommandLineParameter_Number, 1);
    EXPECT_EQ(vxCommandLineParameter_None, 2);
    EXPECT_EQ(vxCommandLineFlag_None, 0);
    EXPECT_EQ(vxCommandLineFlag_MandatoryOption, 1);
    EXPECT_EQ(vxCommandLineFlag_ParameterOptional, 2);
    EXPECT_EQ(vxCommandLineFlag_ParameterMultiple, 4);
    EXPECT_EQ(vxCommandLineFlag_HelpOption, 8);
    EXPECT_EQ(vxCommandLineFlag_NeedSeparator, 16);
}

class CommandLineParserTest : public testing::Test {
protected:
    /// Parses these arguments behind a program's name.
    int Parse(std::vector<std::string> anArguments, bool afDisplayUsage = false) {
        anArguments.insert(anArguments.begin(), "program");
        std::vector<char*> theArgv;
        for (std::string& theArgument : anArguments) {
            theArgv.push_back(theArgument.data());
        }
        mParser.SetCommandLine(static_cast<int>(theArgv.size()), theArgv.data());
        mReports.Clear();
        return mParser.Parse(afDisplayUsage);
    }

    static std::string ProgramName() {
        char* theName = vxPath_GetApplicationName();
        const std::string theText = theName;
        free(theName);
        return theText;
    }

    std::string ErrorOf(const std::vector<std::string>& anArguments) {
        EXPECT_EQ(Parse(anArguments), 1);
        EXPECT_THAT(mReports.LogTexts(), ElementsAre(mReports.Console()));
        return mReports.Console();
    }

    std::vector<std::string> Positional() const {
        std::vector<std::string> theTexts;
        for (unsigned i = 0; i < mParser.GetParameterCount(); ++i) {
            theTexts.push_back(std::string(mParser.GetParameter(i)));
        }
        return theTexts;
    }

    int Number(const char* aName) const {
        int theValue = -77;
        return mParser.Found(aName, &theValue) ? theValue : -1;
    }

    std::string Text(const char* aName) const {
        vxCString theValue;
        return mParser.Found(aName, &theValue) ? std::string(theValue) : "(none)";
    }

    vxtest::Reports mReports;
    vxCommandLineParser mParser;
};

TEST_F(CommandLineParserTest, NothingDeclaredAndNothingGivenIsFine) {
    EXPECT_EQ(mParser.Parse(true), 0);
    EXPECT_EQ(Parse({}), 0);
    EXPECT_EQ(mParser.GetParameterCount(), 0u);
    mParser.SetDescription(NULL);
    mParser.SetCommandLine(0, NULL);
    EXPECT_EQ(mParser.Parse(true), 0);
    EXPECT_EQ(mReports.Console(), "");
}

TEST_F(CommandLineParserTest, AValueStandsGluedBehindASeparatorOrNext) {
    mParser.AddOption("p", "port", kNumber, 0);
    for (const std::vector<std::string>& theArguments : std::vector<std::vector<std::string>>{
             {"-p8080"}, {"-p:8080"}, {"-p=8080"}, {"-p", "8080"}, {"-p", "+8080"}}) {
        EXPECT_EQ(Parse(theArguments), 0);
        EXPECT_TRUE(mParser.Found("p"));
        EXPECT_EQ(Number("p"), 8080);
    }
    EXPECT_EQ(Parse({"-p-5"}), 0);
    EXPECT_EQ(Number("p"), -5);
}

TEST_F(CommandLineParserTest, NumbersAreSigned32BitDecimals) {
    mParser.AddOption("p", "port", kNumber, 0);
    EXPECT_EQ(Parse({"-p=2147483647"}), 0);
    EXPECT_EQ(Number("p"), 2147483647);
    EXPECT_EQ(Parse({"-p=-2147483648"}), 0);
    EXPECT_EQ(Number("p"), -2147483647 - 1);
    for (const char* theText : {"2147483648", "-2147483649", "x", "1x", "0x10", "1.5", "", " 1"}) {
        EXPECT_EQ(ErrorOf({std::string("-p=") + theText}),
                  std::string("'") + theText + "' is not a correct numeric value for option 'p'\n");
    }
    EXPECT_EQ(ErrorOf({"-p", "x"}), "'x' is not a correct numeric value for option 'p'\n");
}

TEST_F(CommandLineParserTest, TextsAreKeptAsTheyStand) {
    mParser.AddOption("name", "", kString, 0);
    EXPECT_EQ(Parse({"-name", "two words"}), 0);
    EXPECT_EQ(Text("name"), "two words");
    EXPECT_EQ(Parse({"-name="}), 0);
    EXPECT_EQ(Text("name"), "");
    EXPECT_EQ(Parse({"-name:=x"}), 0);
    EXPECT_EQ(Text("name"), "=x");
    EXPECT_EQ(Parse({"-name/x"}), 0);
    EXPECT_EQ(Text("name"), "/x");
    EXPECT_EQ(Parse({"-name", ""}), 0);
    EXPECT_EQ(Text("name"), "");
}

TEST_F(CommandLineParserTest, TheNextArgumentIsTheValueWhateverItIs) {
    mParser.AddOption("s", "", kString, 0);
    mParser.AddSwitch("v", "", 0);
    EXPECT_EQ(Parse({"-s", "-v"}), 0);
    EXPECT_EQ(Text("s"), "-v");
    EXPECT_FALSE(mParser.Found("v"));
    EXPECT_EQ(Parse({"-s", "--", "-v"}), 0);
    EXPECT_EQ(Text("s"), "--");
    EXPECT_TRUE(mParser.Found("v"));
}

TEST_F(CommandLineParserTest, AMissingValueIsAnError) {
    mParser.AddOption("p", "port", kNumber, 0);
    EXPECT_EQ(ErrorOf({"-p"}), "Option 'p' requires a value\n");
}

TEST_F(CommandLineParserTest, SomeValuesNeedASeparator) {
    mParser.AddOption("p", "port", kNumber, vxCommandLineFlag_NeedSeparator);
    EXPECT_EQ(ErrorOf({"-p8080"}), "Separator expected after the option 'p'\n");
    EXPECT_EQ(Parse({"-p=8080"}), 0);
    EXPECT_EQ(Parse({"-p:8080"}), 0);
    EXPECT_EQ(Parse({"-p", "8080"}), 0);
    EXPECT_EQ(Number("p"), 8080);
}

TEST_F(CommandLineParserTest, TheLongestDeclaredNameCounts) {
    mParser.AddOption("o", "", kString, 0);
    mParser.AddOption("out", "", kString, 0);
    mParser.AddSwitch("output", "", 0);
    EXPECT_EQ(Parse({"-outx"}), 0);
    EXPECT_EQ(Text("out"), "x");
    EXPECT_EQ(Parse({"-oux"}), 0);
    EXPECT_EQ(Text("o"), "ux");
    EXPECT_EQ(Parse({"-output"}), 0);
    EXPECT_TRUE(mParser.Found("output"));
    EXPECT_FALSE(mParser.Found("out"));
}

TEST_F(CommandLineParserTest, TheLongestNameIsFoundAmongManySimilarOnes) {
    std::mt19937 theRandom(88);
    const auto theName = [&] {
        std::string theText;
        for (size_t theLength = 1 + theRandom() % 4; theLength > 0; --theLength) {
            theText += "abAq1_"[theRandom() % 6];
        }
        return theText;
    };
    std::vector<std::string> theNames;
    for (int i = 0; i < 60; ++i) {
        const std::string theNew = theName();
        if (std::find(theNames.begin(), theNames.end(), theNew) == theNames.end()) {
            theNames.push_back(theNew);
            mParser.AddOption(theNew.c_str(), "", kString, 0);
        }
    }
    for (int i = 0; i < 5000; ++i) {
        const std::string theText = theName() + theName() + "=x";
        std::string theLongest;
        for (const std::string& theCandidate : theNames) {
            if (theCandidate.size() > theLongest.size() && theText.find(theCandidate) == 0) {
                theLongest = theCandidate;
            }
        }
        SCOPED_TRACE(theText);
        const int theResult = Parse({"-" + theText});
        ASSERT_EQ(theResult, theLongest.empty() ? 1 : 0);
        if (!theLongest.empty()) {
            const std::string theRest = theText.substr(theLongest.size());
            ASSERT_EQ(Text(theLongest.c_str()), theRest[0] == '=' ? "x" : theRest);
        }
    }
}

TEST_F(CommandLineParserTest, NamesHaveLettersDigitsUnderscoreAndQuestionMark) {
    for (const char* theName : {"?", "_x", "9", "aZ0_?"}) {
        mParser.AddSwitch(theName, "", 0);
        EXPECT_EQ(Parse({std::string("-") + theName}), 0);
        EXPECT_TRUE(mParser.Found(theName));
    }
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    EXPECT_STREQ(vxCommandLineOption::GetOptionName("aZ0_?-rest"), "aZ0_?");
    EXPECT_STREQ(vxCommandLineOption::GetOptionName("=x"), "");
}

TEST_F(CommandLineParserTest, UnknownOptionsAreNamed) {
    mParser.AddSwitch("v", "", 0);
    mParser.AddOption("port", "", kNumber, 0);
    EXPECT_EQ(ErrorOf({"-x"}), "Unknown option 'x'\n");
    EXPECT_EQ(ErrorOf({"-xyz=5"}), "Unknown option 'xyz'\n");
    EXPECT_EQ(ErrorOf({"-=5"}), "Unknown option ''\n");
    EXPECT_EQ(ErrorOf({"-por"}), "Unknown option 'por'\n");
    EXPECT_EQ(ErrorOf({"-V"}), "Unknown option 'V'\n");
}

TEST_F(CommandLineParserTest, LongOptionsAreUnknown) {
    mParser.AddOption("port", "", kNumber, 0);
    EXPECT_EQ(ErrorOf({"--port"}), "Unknown option '--port'\n");
    EXPECT_EQ(ErrorOf({"--port=80"}), "Unknown option '--port'\n");
    EXPECT_EQ(ErrorOf({"---"}), "Unknown option '--'\n");
}

TEST_F(CommandLineParserTest, GluedSwitchesAreProcessedAfterAllOtherArguments) {
    mParser.AddSwitch("v", "", 0);
    mParser.AddSwitch("q", "", vxCommandLineFlag_HelpOption);
    mParser.AddParam("file", kString, 0);
    EXPECT_EQ(Parse({"-vq", "a"}), -1);
    EXPECT_TRUE(mParser.Found("v"));
    EXPECT_TRUE(mParser.Found("q"));
    EXPECT_THAT(Positional(), ElementsAre("a"));
    EXPECT_EQ(ErrorOf({"-vq", "a", "b"}), "Unexpected parameter 'b'\n");
    EXPECT_FALSE(mParser.Found("q"));
}

TEST_F(CommandLineParserTest, QueuedSwitchesKeepTheirOrderAndTheirText) {
    mParser.AddSwitch("a", "", 0);
    mParser.AddSwitch("b", "", 0);
    mParser.AddOption("s", "", kString, 0);
    mParser.AddOption("t", "", kString, 0);
    EXPECT_EQ(Parse({"-as1", "-bs2"}), 0);
    EXPECT_EQ(Text("s"), "2");
    EXPECT_EQ(Parse({"-abs=x y"}), 0);
    EXPECT_EQ(Text("s"), "x y");
    EXPECT_TRUE(mParser.Found("b"));
    EXPECT_EQ(ErrorOf({"-abz=1"}), "Unknown option 'z'\n");
}

TEST_F(CommandLineParserTest, AValueMayBeAQueuedSwitch) {
    mParser.AddSwitch("v", "", 0);
    mParser.AddSwitch("q", "", 0);
    mParser.AddOption("s", "", kString, 0);
    EXPECT_EQ(Parse({"-vq", "-s"}), 0);
    EXPECT_EQ(Text("s"), "-q");
    EXPECT_FALSE(mParser.Found("q"));
}

TEST_F(CommandLineParserTest, QueuedSwitchesAreForgottenBeforeTheNextParse) {
    mParser.AddSwitch("v", "", 0);
    mParser.AddSwitch("q", "", 0);
    mParser.AddParam("files", kString,
                     vxCommandLineFlag_ParameterMultiple | vxCommandLineFlag_ParameterOptional);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(i == 0 ? Parse({"-vqz", "a"}) : mParser.Parse(false), 1);
        EXPECT_EQ(mReports.Console(), "Unknown option 'z'\n");
        EXPECT_THAT(Positional(), ElementsAre("a"));
        mReports.Clear();
    }
    EXPECT_EQ(Parse({"-vq", "--", "-v"}), 0);
    EXPECT_THAT(Positional(), ElementsAre("-v", "-q"));
    EXPECT_FALSE(mParser.Found("q"));
}

TEST_F(CommandLineParserTest, NothingOfAParseReachesTheNext) {
    mParser.AddSwitch("v", "", 0);
    mParser.AddSwitch("q", "", 0);
    mParser.AddSwitch("h", "", vxCommandLineFlag_HelpOption);
    mParser.AddParam("files", kString, vxCommandLineFlag_ParameterMultiple);
    EXPECT_EQ(Parse({"a", "b", "--", "-v"}), 0);
    EXPECT_EQ(ErrorOf({}), "The required parameter 'files' was not specified\n");
    EXPECT_EQ(Parse({"--", "a"}), 0);
    EXPECT_EQ(Parse({"-v", "a"}), 0);
    EXPECT_TRUE(mParser.Found("v"));
    EXPECT_EQ(ErrorOf({"-vq", "-x"}), "Unknown option 'x'\n");
    EXPECT_EQ(Parse({"a"}), 0);
    EXPECT_FALSE(mParser.Found("q"));
    EXPECT_EQ(ErrorOf({"-x"}), "Unknown option 'x'\n");
    EXPECT_EQ(Parse({"-h"}, true), -1);
    EXPECT_EQ(mReports.Console(), std::string(mParser.GetUsageString()));
}

TEST_F(CommandLineParserTest, TextBehindASwitchsSeparatorIsIgnored) {
    mParser.AddSwitch("v", "", 0);
    EXPECT_EQ(Parse({"-v=5"}), 0);
    EXPECT_TRUE(mParser.Found("v"));
    EXPECT_EQ(Parse({"-v:"}), 0);
    EXPECT_TRUE(mParser.Found("v"));
}

TEST_F(CommandLineParserTest, TwoDashesEndTheOptions) {
    mParser.AddSwitch("v", "", 0);
    mParser.AddParam("files", kString,
                     vxCommandLineFlag_ParameterMultiple | vxCommandLineFlag_ParameterOptional);
    EXPECT_EQ(Parse({"-v", "--", "-v", "--", "--x", "-"}), 0);
    EXPECT_TRUE(mParser.Found("v"));
    EXPECT_THAT(Positional(), ElementsAre("-v", "--", "--x", "-"));
    EXPECT_EQ(Parse({"--"}), 0);
    EXPECT_FALSE(mParser.Found("v"));
}

TEST_F(CommandLineParserTest, ALoneDashAndAnEmptyArgumentArePositional) {
    mParser.AddParam("files", kString, vxCommandLineFlag_ParameterMultiple);
    EXPECT_EQ(Parse({"-", ""}), 0);
    EXPECT_THAT(Positional(), ElementsAre("-", ""));
}

TEST_F(CommandLineParserTest, PositionalArgumentsFillTheDeclarationsInOrder) {
    mParser.AddParam("from", kString, 0);
    mParser.AddParam("to", kString, vxCommandLineFlag_ParameterOptional);
    EXPECT_EQ(ErrorOf({}), "The required parameter 'from' was not specified\n");
    EXPECT_EQ(Parse({"a"}), 0);
    EXPECT_THAT(Positional(), ElementsAre("a"));
    EXPECT_EQ(Parse({"a", "b"}), 0);
    EXPECT_THAT(Positional(), ElementsAre("a", "b"));
    EXPECT_EQ(ErrorOf({"a", "b", "c"}), "Unexpected parameter 'c'\n");
    EXPECT_THAT(Positional(), ElementsAre("a", "b"));
    EXPECT_EQ(Parse({"c"}), 0);
    EXPECT_THAT(Positional(), ElementsAre("c"));
}

TEST_F(CommandLineParserTest, TheLastMayTakeAllTheRest) {
    mParser.AddParam("from", kString, 0);
    mParser.AddParam("files", kString, vxCommandLineFlag_ParameterMultiple);
    EXPECT_EQ(ErrorOf({}), "The required parameter 'from' was not specified\n");
    EXPECT_EQ(ErrorOf({"a"}), "The required parameter 'files' was not specified\n");
    EXPECT_EQ(Parse({"a", "b"}), 0);
    EXPECT_EQ(Parse({"a", "b", "c", "d"}), 0);
    EXPECT_THAT(Positional(), ElementsAre("a", "b", "c", "d"));
}

TEST_F(CommandLineParserTest, MandatoryOptionsAreAskedForFirst) {
    mParser.AddOption("a", "", kNumber, vxCommandLineFlag_MandatoryOption);
    mParser.AddSwitch("b", "", vxCommandLineFlag_MandatoryOption);
    mParser.AddParam("file", kString, 0);
    EXPECT_EQ(ErrorOf({}), "The value for the option 'a' must be specified\n");
    EXPECT_EQ(ErrorOf({"-a1"}), "The value for the option 'b' must be specified\n");
    EXPECT_EQ(ErrorOf({"-a1", "-b"}), "The required parameter 'file' was not specified\n");
    EXPECT_EQ(Parse({"-a1", "-b", "x"}), 0);
}

TEST_F(CommandLineParserTest, TheHelpSwitchStopsParsing) {
    mParser.AddSwitch("h", "help", vxCommandLineFlag_HelpOption);
    mParser.AddOption("p", "", kNumber, vxCommandLineFlag_MandatoryOption);
    EXPECT_EQ(Parse({"-h", "-nosuch"}), -1);
    EXPECT_TRUE(mParser.Found("h"));
    EXPECT_EQ(mReports.Console(), "");
    EXPECT_THAT(mReports.LogTexts(), IsEmpty());
    EXPECT_EQ(Parse({"-h"}, true), -1);
    EXPECT_EQ(mReports.Console(), std::string(mParser.GetUsageString()));
    EXPECT_THAT(mReports.LogTexts(), ElementsAre(mReports.Console()));
    EXPECT_EQ(Parse({"-nosuch", "-h"}), 1);
}

TEST_F(CommandLineParserTest, AHelpFlagOnAnOptionAsksForNothing) {
    mParser.AddOption("h", "", kString, vxCommandLineFlag_HelpOption);
    EXPECT_EQ(Parse({"-h", "-x"}), 0);
    EXPECT_EQ(Text("h"), "-x");
    EXPECT_EQ(ErrorOf({"-h"}), "Option 'h' requires a value\n");
}

TEST_F(CommandLineParserTest, AnErrorStandsBehindTheUsageWhenThatIsShown) {
    mParser.AddSwitch("v", "be verbose", 0);
    EXPECT_EQ(Parse({"-x"}, true), 1);
    EXPECT_EQ(mReports.Console(), std::string(mParser.GetUsageString()) + "Unknown option 'x'\n");
    EXPECT_THAT(mReports.LogTexts(), ElementsAre(mReports.Console()));
}

TEST_F(CommandLineParserTest, ValuesFoundBeforeAnErrorStayReadable) {
    mParser.AddOption("p", "", kNumber, 0);
    EXPECT_EQ(ErrorOf({"-p5", "-x", "-p6"}), "Unknown option 'x'\n");
    EXPECT_EQ(Number("p"), 5);
}

TEST_F(CommandLineParserTest, NothingIsFoundBeforeTheFirstParse) {
    mParser.AddSwitch("v", "", 0);
    mParser.AddOption("p", "", kNumber, 0);
    mParser.SetCommandLine("program -v -p5", true);
    EXPECT_FALSE(mParser.Found("v"));
    EXPECT_EQ(Number("p"), -1);
    EXPECT_EQ(mParser.Parse(false), 0);
    EXPECT_TRUE(mParser.Found("v"));
    EXPECT_EQ(Number("p"), 5);
}

TEST_F(CommandLineParserTest, ResetForgetsWhatWasGiven) {
    mParser.AddOption("p", "", kNumber, 0);
    EXPECT_EQ(Parse({"-p5"}), 0);
    mParser.Reset();
    EXPECT_FALSE(mParser.Found("p"));
    int theValue = 9;
    EXPECT_FALSE(mParser.Found("p", &theValue));
    EXPECT_EQ(theValue, 0);
}

TEST_F(CommandLineParserTest, WhatWasNotGivenClearsTheCallersValue) {
    mParser.AddOption("p", "", kNumber, 0);
    mParser.AddOption("s", "", kString, 0);
    EXPECT_EQ(Parse({}), 0);
    int theNumber = 9;
    vxCString theText = "old";
    EXPECT_FALSE(mParser.Found("p", &theNumber));
    EXPECT_FALSE(mParser.Found("s", &theText));
    EXPECT_EQ(theNumber, 0);
    EXPECT_STREQ(theText, "");
    EXPECT_THAT(mReports.LogTexts(), IsEmpty());
}

TEST_F(CommandLineParserTest, AskingForAnUnknownNameIsLogged) {
    int theNumber = 9;
    vxCString theText = "old";
    EXPECT_FALSE(mParser.Found("x"));
    EXPECT_FALSE(mParser.Found("y", &theText));
    EXPECT_FALSE(mParser.Found("z", &theNumber));
    EXPECT_THAT(mReports.LogTexts(),
                ElementsAre("Testing presence of an unknown option 'x'\n",
                            "Getting value of an unknown string option 'y'\n",
                            "Getting value of an unknown number option 'z'\n"));
    EXPECT_EQ(theNumber, 0);
    EXPECT_STREQ(theText, "");
}

TEST_F(CommandLineParserTest, ANullNameIsTheEmptyOne) {
    mParser.AddSwitch("v", "", 0);
    const char* const theNull = nullptr;
    int theNumber = 9;
    vxCString theText = "old";
    EXPECT_FALSE(mParser.Found(theNull));
    EXPECT_FALSE(mParser.Found(theNull, &theText));
    EXPECT_FALSE(mParser.Found(theNull, &theNumber));
    EXPECT_THAT(mReports.LogTexts(), ElementsAre("Testing presence of an unknown option ''\n",
                                                 "Getting value of an unknown string option ''\n",
                                                 "Getting value of an unknown number option ''\n"));
    EXPECT_STREQ(vxCommandLineOption::GetOptionName(theNull), "");
}

TEST_F(CommandLineParserTest, NamesAndDescriptionsMayBeStringsThatEndBeforeTheParser) {
    {
        const vxCString theName = vxCString("po") + "rt";
        mParser.AddOption(theName, vxCString("the ") + "port", kNumber, 0);
        mParser.AddParam(vxCString("fi") + "le", kString, 0);
    }
    EXPECT_EQ(ErrorOf({"-port=8080"}), "The required parameter 'file' was not specified\n");
    int thePort = 0;
    EXPECT_TRUE(mParser.Found(vxCString("po") + "rt", &thePort));
    EXPECT_EQ(thePort, 8080);
    EXPECT_EQ(std::string(mParser.GetUsageString()),
              "Usage: " + ProgramName() + " [-port<num>] file\n  -port <num>\tthe port\n");
}

TEST_F(CommandLineParserTest, AskingForAnotherTypeIsReported) {
    mParser.AddOption("p", "", kNumber, 0);
    mParser.AddOption("s", "", kString, 0);
    EXPECT_EQ(Parse({"-p5", "-sx"}), 0);
    EXPECT_EQ(Text("p"), "");
    EXPECT_EQ(Number("s"), 0);
    EXPECT_THAT(mReports.Assertions(), ElementsAre("mType == vxCommandLineParameter_String",
                                                   "mType == vxCommandLineParameter_Number"));
}

TEST_F(CommandLineParserTest, ASwitchHasNoValueWhateverTypeItsRowNames) {
    const vxCommandLineDescription kTable[] = {
        {kSwitch, "s", "", kString, 0}, {kSwitch, "n", "", kNumber, 0}, kEnd};
    mParser.SetDescription(kTable);
    mParser.AddSwitch("t", "", 0);
    EXPECT_EQ(Parse({"-s", "-n", "-t"}), 0);
    EXPECT_EQ(Text("s"), "");
    EXPECT_EQ(Number("n"), 0);
    EXPECT_EQ(Text("t"), "");
    EXPECT_EQ(Number("t"), 0);
    EXPECT_THAT(mReports.Assertions(), ElementsAre("mType == vxCommandLineParameter_String",
                                                   "mType == vxCommandLineParameter_Number",
                                                   "mType == vxCommandLineParameter_String",
                                                   "mType == vxCommandLineParameter_Number"));
}

TEST_F(CommandLineParserTest, ANewCommandLineForgetsTheArgumentsOfTheOld) {
    mParser.AddParam("files", kString, vxCommandLineFlag_ParameterMultiple);
    EXPECT_EQ(Parse({"a", "b"}), 0);
    mParser.SetCommandLine("program c", true);
    EXPECT_EQ(mParser.GetParameterCount(), 0u);
    EXPECT_EQ(mParser.Parse(false), 0);
    EXPECT_THAT(Positional(), ElementsAre("c"));
    char theProgram[] = "program";
    char* theArgv[] = {theProgram};
    mParser.SetCommandLine(1, theArgv);
    EXPECT_EQ(mParser.GetParameterCount(), 0u);
}

TEST_F(CommandLineParserTest, AParameterBeyondTheLastIsReported) {
    mParser.AddParam("file", kString, 0);
    EXPECT_EQ(Parse({"a"}), 0);
    EXPECT_STREQ(mParser.GetParameter(1), "");
    EXPECT_STREQ(mParser.GetParameter(0), "a");
    EXPECT_THAT(mReports.Assertions(), ElementsAre("anIndex < GetParameterCount()"));
}

TEST_F(CommandLineParserTest, ParametersCanBeReadInAnyOrder) {
    mParser.AddParam("files", kString, vxCommandLineFlag_ParameterMultiple);
    EXPECT_EQ(Parse({"0", "1", "2", "3", "4"}), 0);
    for (unsigned theIndex : {0u, 1u, 2u, 4u, 3u, 4u, 0u, 0u, 1u, 3u}) {
        EXPECT_EQ(std::string(mParser.GetParameter(theIndex)), std::to_string(theIndex));
    }
}

// Misuse of the description

TEST_F(CommandLineParserTest, ADoubledNameIsReportedAndLeftOut) {
    mParser.AddOption("p", "first", kNumber, 0);
    mParser.AddSwitch("p", "second", 0);
    mParser.AddOption("p", "third", kString, 0);
    EXPECT_THAT(mReports.Assertions(), ElementsAre("mParserData->FindOption(aName) == -1",
                                                   "mParserData->FindOption(aName) == -1"));
    EXPECT_EQ(Parse({"-p5"}), 0);
    EXPECT_EQ(Number("p"), 5);
}

TEST_F(CommandLineParserTest, ABadNameIsReportedAndLeftOut) {
    mParser.AddSwitch("", "", 0);
    mParser.AddSwitch("a-b", "", 0);
    EXPECT_THAT(mReports.Assertions(),
                ElementsAre("!anOption.IsEmpty()",
                            "GetOptionName(anOption).length() == anOption.length()"));
    EXPECT_EQ(ErrorOf({"-a-b"}), "Unknown option 'a'\n");
}

TEST_F(CommandLineParserTest, NothingMayFollowAParameterThatTakesAll) {
    mParser.AddParam("a", kString, vxCommandLineFlag_ParameterMultiple);
    mParser.AddParam("b", kString, vxCommandLineFlag_ParameterOptional);
    EXPECT_THAT(mReports.Assertions(),
                ElementsAre("!(theParam->mFlags & vxCommandLineFlag_ParameterMultiple)"));
    EXPECT_EQ(Parse({"x", "y"}), 0);
    EXPECT_THAT(Positional(), ElementsAre("x", "y"));
    EXPECT_THAT(mReports.Assertions(), ElementsAre("theCurrentParam == theParamCount - 1",
                                                   "theCurrentParam == theParamCount - 1"));
}

TEST_F(CommandLineParserTest, NothingMandatoryMayFollowAnOptionalParameter) {
    mParser.AddParam("a", kString, vxCommandLineFlag_ParameterOptional);
    mParser.AddParam("b", kString, vxCommandLineFlag_ParameterOptional);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    mParser.AddParam("c", kString, 0);
    EXPECT_THAT(mReports.Assertions(),
                ElementsAre("!(theParam->mFlags & vxCommandLineFlag_ParameterOptional)"));
}

TEST_F(CommandLineParserTest, AnUnknownKindIsReportedAndSkipped) {
    const vxCommandLineDescription kTable[] = {
        {static_cast<vxCommandLineEntryType>(7), "x", "", kString, 0},
        {kSwitch, "v", "", vxCommandLineParameter_None, 0},
        kEnd};
    mParser.SetDescription(kTable);
    EXPECT_THAT(mReports.Assertions(), ElementsAre("Unknown command line entry type"));
    EXPECT_EQ(Parse({"-v"}), 0);
}

TEST_F(CommandLineParserTest, TypesHaveNames) {
    EXPECT_STREQ(vxCommandLineParser::GetTypeName(kString), "str");
    EXPECT_STREQ(vxCommandLineParser::GetTypeName(kNumber), "num");
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    EXPECT_STREQ(vxCommandLineParser::GetTypeName(vxCommandLineParameter_None), "str");
    EXPECT_THAT(mReports.Assertions(), ElementsAre("Unknown option type"));
}

TEST_F(CommandLineParserTest, AnOptionReportsAnotherTypeAndStoresNevertheless) {
    vxCommandLineOption theSwitch(kSwitch, "v", "", vxCommandLineParameter_None, 0);
    theSwitch.SetInt32Value(5);
    theSwitch.SetStringValue("x");
    EXPECT_EQ(theSwitch.GetInt32Value(), 5);
    EXPECT_STREQ(theSwitch.GetStringValue(), "x");
    EXPECT_TRUE(theSwitch.HasValue());
    EXPECT_THAT(mReports.Assertions(), ElementsAre("mType == vxCommandLineParameter_Number",
                                                   "mType == vxCommandLineParameter_String",
                                                   "mType == vxCommandLineParameter_Number",
                                                   "mType == vxCommandLineParameter_String"));
}

// Splitting

std::vector<std::string> Split(const char* aLine, bool afHasProgramName = true) {
    vxCommandLineParser theParser;
    theParser.AddParam("all", kString,
                       vxCommandLineFlag_ParameterMultiple | vxCommandLineFlag_ParameterOptional);
    theParser.SetCommandLine(vxCString("\"\" -- ") + aLine, true);
    if (!afHasProgramName) {
        theParser.SetCommandLine(aLine, false);
    }
    EXPECT_EQ(theParser.Parse(false), 0);
    std::vector<std::string> theTexts;
    for (unsigned i = 0; i < theParser.GetParameterCount(); ++i) {
        theTexts.push_back(std::string(theParser.GetParameter(i)));
    }
    return theTexts;
}

TEST(CommandLineSplitTest, BlanksAndTabsSeparateAndQuotesGroup) {
    EXPECT_THAT(Split(""), IsEmpty());
    EXPECT_THAT(Split(" \t "), IsEmpty());
    EXPECT_THAT(Split("run \"a b\" c"), ElementsAre("run", "a b", "c"));
    EXPECT_THAT(Split("  a \t b  "), ElementsAre("a", "b"));
    EXPECT_THAT(Split("a\nb"), ElementsAre("a\nb"));
    EXPECT_THAT(Split("x\"a b\"y\"c\tz\""), ElementsAre("xa byc\tz"));
    EXPECT_THAT(Split("\"\" a \"\""), ElementsAre("", "a", ""));
    EXPECT_THAT(Split("'a b'"), ElementsAre("'a", "b'"));
    EXPECT_THAT(Split("\"open end"), ElementsAre("open end"));
}

TEST(CommandLineSplitTest, AnEscapedQuoteIsKeptWithItsBackslash) {
    EXPECT_THAT(Split("a\\\"b c"), ElementsAre("a\\\"b", "c"));
    EXPECT_THAT(Split("\"a \\\" b\" c"), ElementsAre("a \\\" b", "c"));
    EXPECT_THAT(Split("\\\\\"a b"), ElementsAre("\\\\\"a", "b"));
    EXPECT_THAT(Split("a\\b \\n \\"), ElementsAre("a\\b", "\\n", "\\"));
    EXPECT_THAT(Split("\\\"a b\\\""), ElementsAre("\\\"a", "b\\\""));
}

TEST(CommandLineSplitTest, TheProgramsOwnPathIsPutInFront) {
    EXPECT_THAT(Split("a \"b c\"", false), ElementsAre("a", "b c"));
    EXPECT_THAT(Split("", false), IsEmpty());
}

TEST(CommandLineSplitTest, AnOwnPathWithBlanksIsOneArgumentAndAnUnknownOneAsWell) {
    for (const char* thePath : {"/opt/media player/bin/player", "", kNoPath}) {
        const ScriptedPath theScript(thePath);
        EXPECT_THAT(Split("a \"b c\"", false), ElementsAre("a", "b c"));
    }
}

TEST(CommandLineSplitTest, ConstructorsTakeTableAndArguments) {
    const vxCommandLineDescription kTable[] = {
        {kOption, "p", "port", kNumber, 0}, {kParameter, NULL, "file", kString, 0}, kEnd};
    vxCommandLineParser theFromText(kTable, "program -p 5 a", true);
    EXPECT_EQ(theFromText.Parse(false), 0);
    EXPECT_STREQ(theFromText.GetParameter(0), "a");
    vxCommandLineParser theWithoutName(kTable, "-p 5 b", false);
    EXPECT_EQ(theWithoutName.Parse(false), 0);
    EXPECT_STREQ(theWithoutName.GetParameter(0), "b");
    char theProgram[] = "program";
    char theValue[] = "-p5";
    char theFile[] = "c";
    char* theArgv[] = {theProgram, theValue, theFile, NULL, theFile};
    vxCommandLineParser theFromVector(kTable, 5, theArgv);
    theValue[2] = '6';  // the arguments were copied
    EXPECT_EQ(theFromVector.Parse(false), 0);
    EXPECT_STREQ(theFromVector.GetParameter(0), "c");
    EXPECT_EQ(theFromVector.GetParameterCount(), 1u);
    int thePort = 0;
    EXPECT_TRUE(theFromVector.Found("p", &thePort));
    EXPECT_EQ(thePort, 5);
}

// Usage

TEST_F(CommandLineParserTest, UsageHasALineAndDetails) {
    const vxCommandLineDescription kTable[] = {
        {kSwitch, "h", "this help", vxCommandLineParameter_None, vxCommandLineFlag_HelpOption},
        {kOption, "p", "port", kNumber, vxCommandLineFlag_MandatoryOption},
        {kParameter, NULL, "file", kString, vxCommandLineFlag_ParameterOptional},
        kEnd};
    mParser.SetDescription(kTable);
    EXPECT_EQ(std::string(mParser.GetUsageString()), "Usage: " + ProgramName() +
                                                         " [-h] -p<num> [file]\n"
                                                         "  -h      \tthis help\n"
                                                         "  -p <num>\tport\n");
    mParser.Usage();
    EXPECT_EQ(mReports.Console(), std::string(mParser.GetUsageString()));
}

TEST_F(CommandLineParserTest, UsageShowsEveryKind) {
    mParser.AddOption("name", "a text", kString, 0);
    mParser.AddSwitch("x", "%s is no format", vxCommandLineFlag_MandatoryOption);
    mParser.AddParam("from", kString, 0);
    mParser.AddParam("to", kString, vxCommandLineFlag_ParameterMultiple);
    EXPECT_EQ(std::string(mParser.GetUsageString()), "Usage: " + ProgramName() +
                                                         " [-name<str>] -x from to...\n"
                                                         "  -name <str>\ta text\n"
                                                         "  -x         \t%s is no format\n");
    mParser.Usage();
    EXPECT_EQ(mReports.Console(), std::string(mParser.GetUsageString()));
}

TEST_F(CommandLineParserTest, UsageOfAProgramWhoseNameIsUnknown) {
    mParser.AddSwitch("v", "", 0);
    for (const char* theName : {"", kNoPath}) {
        const ScriptedPath theScript(theName);
        EXPECT_STREQ(mParser.GetUsageString(), "Usage:  [-v]\n  -v\t\n");
    }
}

TEST_F(CommandLineParserTest, UsageOfAnOptionWithoutATypeIsReported) {
    mParser.AddOption("x", "what", vxCommandLineParameter_None, 0);
    EXPECT_EQ(std::string(mParser.GetUsageString()),
              "Usage: " + ProgramName() + " [-x<str>]\n  -x <str>\twhat\n");
    EXPECT_THAT(mReports.Assertions(), testing::Each("Unknown option type"));
    EXPECT_FALSE(mReports.Assertions().empty());
}

TEST_F(CommandLineParserTest, UsageOfAnOptionalMultipleParameter) {
    mParser.AddParam("files", kString,
                     vxCommandLineFlag_ParameterOptional | vxCommandLineFlag_ParameterMultiple);
    EXPECT_EQ(std::string(mParser.GetUsageString()), "Usage: " + ProgramName() + " [files...]\n");
}

// Outside text

TEST_F(CommandLineParserTest, RandomArgumentsNeverCrash) {
    mParser.AddSwitch("v", "", 0);
    mParser.AddSwitch("verbose", "", 0);
    mParser.AddSwitch("h", "", vxCommandLineFlag_HelpOption);
    mParser.AddOption("p", "", kNumber, 0);
    mParser.AddOption("s", "", kString, vxCommandLineFlag_NeedSeparator);
    mParser.AddParam("files", kString, vxCommandLineFlag_ParameterMultiple);
    std::mt19937 theRandom(5);
    for (int i = 0; i < 20000; ++i) {
        std::string theLine = "program ";
        for (size_t theLength = theRandom() % 40; theLength > 0; --theLength) {
            theLine += "-vphs=: \t\"\\5a\xff"[theRandom() % 14];
        }
        SCOPED_TRACE(theLine);
        mParser.SetCommandLine(theLine.c_str(), true);
        const int theResult = mParser.Parse(false);
        ASSERT_TRUE(theResult >= -1 && theResult <= 1);
        mReports.Clear();
    }
}

TEST_F(CommandLineParserTest, AMegabyteOfGluedSwitchesIsLinear) {
    mParser.AddSwitch("v", "", 0);
    mParser.AddParam("files", kString, vxCommandLineFlag_ParameterMultiple);
    EXPECT_TRUE(vxtest::GrowsLinearly(250000, [this](size_t aCount) {
        EXPECT_EQ(Parse({"-" + std::string(aCount, 'v'), "a"}), 0);
    }));
    EXPECT_TRUE(vxtest::GrowsLinearly(25000, [this](size_t aCount) {
        const std::vector<std::string> theMany(aCount, "file");
        EXPECT_EQ(Parse(theMany), 0);
        EXPECT_EQ(Positional(), theMany);
    }));
}

}  // namespace
