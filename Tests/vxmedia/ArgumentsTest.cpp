#include "Arguments.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "support/Reports.h"
#include "support/TempDir.h"

using namespace vxmedia;

namespace {

ArgumentResult Read(std::vector<std::string> someArguments, ProgramOptions& anOptions) {
    std::vector<char*> thePointers = {const_cast<char*>("vxmedia")};
    for (std::string& theArgument : someArguments) {
        thePointers.push_back(&theArgument[0]);
    }
    thePointers.push_back(nullptr);
    return ReadArguments(static_cast<int>(thePointers.size() - 1), thePointers.data(), anOptions);
}

TEST(ArgumentsTest, CommandsAreSeparatedBySemicolonsOutsideQuotes) {
    const char* kRows[][2] = {
        {"", "\n"},
        {"lib stats", "lib stats\n"},
        {"a;b;c", "a\nb\nc\n"},
        {"a ; b;", "a \n b\n\n"},
        {"j \"a;b\";c", "j \"a;b\"\nc\n"},
        {"j 'a;\"b';c", "j 'a;\"b'\nc\n"},
        {"it's;one", "it's;one\n"},
        {"a'\nb;c", "a'\nb\nc\n"},
        {R"(f t = "a\"b;c";d)", "f t = \"a\\\"b;c\"\nd\n"},
        {R"(f t = "a\"b";d)", "f t = \"a\\\"b\"\nd\n"},
        {R"(f t = "a\\";d)", "f t = \"a\\\\\"\nd\n"},
        {R"(f t = "a\\\";b";d)", "f t = \"a\\\\\\\";b\"\nd\n"},
        {R"(j '\';d)", "j '\\'\nd\n"},
        {R"(j \";";d)", "j \\\";\"\nd\n"},
        {"j \"a\\\nb;c", "j \"a\\\nb\nc\n"},
        {"j \"a\\", "j \"a\\\n"},
    };
    for (const auto& theRow : kRows) {
        EXPECT_EQ(SplitCommands(theRow[0]), theRow[1]);
    }
}

TEST(ArgumentsTest, EverythingHasItsPlace) {
    ProgramOptions theOptions;
    EXPECT_EQ(Read({"-q", "-elib stats;exit", "one", "two"}, theOptions), ArgumentResult::Run);
    EXPECT_TRUE(theOptions.mfQuiet);
    EXPECT_TRUE(theOptions.mfHasLines);
    EXPECT_EQ(theOptions.mLines, "lib stats\nexit\n");
    ASSERT_EQ(theOptions.mDirectories.size(), 2u);
    EXPECT_STREQ(theOptions.mDirectories[0], "one");
    EXPECT_STREQ(theOptions.mDirectories[1], "two");
}

TEST(ArgumentsTest, NothingIsNeeded) {
    ProgramOptions theOptions;
    EXPECT_EQ(Read({}, theOptions), ArgumentResult::Run);
    EXPECT_FALSE(theOptions.mfQuiet);
    EXPECT_FALSE(theOptions.mfHasLines);
    EXPECT_TRUE(theOptions.mDirectories.empty());
}

TEST(ArgumentsTest, AScriptComesBeforeTheCommands) {
    const vxtest::TempDir theDir;
    const std::string thePath = theDir.Write("script", "sys version\nlib stats");
    ProgramOptions theOptions;
    EXPECT_EQ(Read({"-e", "exit", "-s", thePath}, theOptions), ArgumentResult::Run);
    EXPECT_EQ(theOptions.mLines, "sys version\nlib stats\nexit\n");
}

TEST(ArgumentsTest, HelpAndMistakesEndTheProgram) {
    vxtest::Reports theReports;
    ProgramOptions theOptions;
    EXPECT_EQ(Read({"-h"}, theOptions), ArgumentResult::Help);
    theReports.Clear();
    EXPECT_EQ(Read({"-x"}, theOptions), ArgumentResult::Error);
    EXPECT_NE(theReports.Console().find("Unknown option 'x'\n"), std::string::npos);
    theReports.Clear();
    EXPECT_EQ(Read({"-s/nowhere/at all\x1B"}, theOptions), ArgumentResult::Error);
    EXPECT_EQ(theReports.Console(), "ERROR: Unable to open file '/nowhere/at all\\x1B'\n");
}

}  // namespace
