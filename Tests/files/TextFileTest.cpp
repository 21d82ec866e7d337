#include "vx/TextFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <random>
#include <string>
#include <vector>

#include "support/Reports.h"
#include "support/ScriptedIO.h"
#include "support/TempDir.h"
#include "vx/CString.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Fails;
using vxtest::Moves;
using vxtest::Reports;
using vxtest::ScriptedIO;
using vxtest::TempDir;

namespace {

using Lines = std::vector<std::string>;

std::string Text(const vxCString& aText) {
    return std::string(aText.c_str(), aText.length());
}

Lines LinesOf(vxTextFile& aFile) {
    Lines theLines;
    vxCString theLine;
    while (aFile.NextLine(theLine)) {
        theLines.push_back(Text(theLine));
    }
    return theLines;
}

// The same rules on a whole text: cut at ends of lines, then each line at the limit.
Lines ModelLines(const std::string& aText, size_t aLimit) {
    Lines theLines;
    for (size_t i = 0; i < aText.size();) {
        const size_t theEnd = std::min(aText.find_first_of("\r\n", i), aText.size());
        theLines.push_back(aText.substr(i, std::min(theEnd - i, aLimit)));
        i = theEnd + 1;
        if (theEnd + 1 < aText.size() && aText[theEnd] == '\r' && aText[theEnd + 1] == '\n') {
            ++i;
        }
    }
    return theLines;
}

}  // namespace

TEST(TextFileTest, LinesEndWithLineFeedCarriageReturnOrBoth) {
    const struct {
        const char* mText;
        Lines mLines;
    } kCases[] = {
        {"", {}},
        {"a", {"a"}},
        {"a\n", {"a"}},
        {"a\r\nb", {"a", "b"}},
        {"a\nb\n", {"a", "b"}},
        {"a\rb\r", {"a", "b"}},
        {"\n", {""}},
        {"\r\n", {""}},
        {"\n\n", {"", ""}},
        {"\r\r", {"", ""}},
        {"\n\r", {"", ""}},
        {"a\n\rb", {"a", "", "b"}},
        {"a\r\r\nb", {"a", "", "b"}},
        {"a\r\n\nb", {"a", "", "b"}},
        {"a\r\n\r\nb", {"a", "", "b"}},
        {" \t\xff\n", {" \t\xff"}},
    };
    for (const auto& theCase : kCases) {
        for (const unsigned theLimit : {4u, 5u, 1024u}) {
            SCOPED_TRACE(testing::Message()
                         << testing::PrintToString(theCase.mText) << " by " << theLimit);
            TempDir theDir;
            vxTextFile theFile(theDir.Write("file", theCase.mText).c_str(), theLimit);
            EXPECT_TRUE(theFile.IsOpened());
            EXPECT_EQ(LinesOf(theFile), theCase.mLines);
        }
    }
}

TEST(TextFileTest, ALongLineIsCutAndItsRestSkipped) {
    const struct {
        const char* mText;
        Lines mLines;
    } kCases[] = {
        {"abcdefgh\nz", {"abcd", "z"}},
        {"abcd\nz", {"abcd", "z"}},
        {"abcde\nz", {"abcd", "z"}},
        {"abcdefghijklm\nz\n", {"abcd", "z"}},
        {"abcd", {"abcd"}},
        {"abcde", {"abcd"}},
        {"abcdefgh", {"abcd"}},
        {"abcd\r\nz", {"abcd", "z"}},
        {"abc\r\nz", {"abc", "z"}},
        {"abcdefg\r\nz", {"abcd", "z"}},
        {"abcdefgh\r\n\nz", {"abcd", "", "z"}},
        {"abcdefghi\nabcdefghi\n", {"abcd", "abcd"}},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::PrintToString(theCase.mText));
        TempDir theDir;
        vxTextFile theFile(theDir.Write("file", theCase.mText).c_str(), 4);
        EXPECT_EQ(LinesOf(theFile), theCase.mLines);
    }
}

TEST(TextFileTest, ACarriageReturnAtTheEndOfTheBufferWaitsForItsLineFeed) {
    TempDir theDir;
    vxTextFile theFile(theDir.Write("file", "abc\r\nd\r\n\ne\rf").c_str(), 4);
    EXPECT_EQ(LinesOf(theFile), (Lines{"abc", "d", "", "e", "f"}));
    vxTextFile theLast(theDir.Write("last", "abc\r").c_str(), 4);
    EXPECT_EQ(LinesOf(theLast), Lines{"abc"});
    vxTextFile theTiny(theDir.Write("tiny", "a\r\n\r\nb\r\n").c_str(), 1);
    EXPECT_EQ(LinesOf(theTiny), (Lines{"a", "", "b"}));
}

TEST(TextFileTest, ZerosAreBytesOfALine) {
    TempDir theDir;
    vxTextFile theFile(theDir.Write("file", std::string("a\0b\n\0\n", 6)).c_str(), 10);
    EXPECT_EQ(LinesOf(theFile), (Lines{std::string("a\0b", 3), std::string("\0", 1)}));
}

TEST(TextFileTest, ALineIsLeftAloneAtTheEnd) {
    TempDir theDir;
    vxTextFile theFile(theDir.Write("file", "a\n").c_str(), 10);
    vxCString theLine("old");
    EXPECT_TRUE(theFile.NextLine(theLine));
    EXPECT_EQ(Text(theLine), "a");
    EXPECT_FALSE(theFile.NextLine(theLine));
    EXPECT_FALSE(theFile.NextLine(theLine));
    EXPECT_EQ(Text(theLine), "a");
    vxTextFile theLong(theDir.Write("long", "abcdefgh").c_str(), 4);
    EXPECT_TRUE(theLong.NextLine(theLine));
    EXPECT_EQ(Text(theLine), "abcd");
    EXPECT_FALSE(theLong.NextLine(theLine));
    EXPECT_EQ(Text(theLine), "abcd");
}

TEST(TextFileTest, LinesThatWereCopiedStay) {
    TempDir theDir;
    vxTextFile theFile(theDir.Write("file", "first\nsecond\n").c_str(), 10);
    vxCString theLine;
    EXPECT_TRUE(theFile.NextLine(theLine));
    const vxCString theCopy = theLine;
    EXPECT_TRUE(theFile.NextLine(theLine));
    EXPECT_EQ(Text(theCopy), "first");
    EXPECT_EQ(Text(theLine), "second");
}

TEST(TextFileTest, WithoutAFileThereAreNoLines) {
    Reports theReports;
    vxTextFile theFile("/none/x", 10);
    vxCString theLine("old");
    EXPECT_FALSE(theFile.IsOpened());
    EXPECT_FALSE(theFile.NextLine(theLine));
    theFile.Rewind();
    EXPECT_FALSE(theFile.NextLine(theLine));
    EXPECT_EQ(Text(theLine), "old");
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("Open: Cannot open file '/none/x'\n"));
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(TextFileTest, WithoutABufferThereAreNoLines) {
    TempDir theDir;
    vxTextFile theFile(theDir.Write("file", "abc\n").c_str(), 0);
    vxCString theLine;
    EXPECT_TRUE(theFile.IsOpened());
    EXPECT_FALSE(theFile.NextLine(theLine));
}

TEST(TextFileTest, RewindingStartsAnewInEveryState) {
    TempDir theDir;
    const struct {
        const char* mText;
        size_t mLinesBefore;
        Lines mLines;
    } kCases[] = {
        {"a\nb\n", 1, {"a", "b"}},          // in the buffer
        {"a\nb\n", 3, {"a", "b"}},          // at the end
        {"abcdefgh\nz", 1, {"abcd", "z"}},  // within a line that was cut
        {"abc\r\nz", 1, {"abc", "z"}},      // between a carriage return and its line feed
        {"\nabcde", 1, {"", "abcd"}},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::PrintToString(theCase.mText));
        vxTextFile theFile(theDir.Write("file", theCase.mText).c_str(), 4);
        vxCString theLine;
        for (size_t i = 0; i < theCase.mLinesBefore; ++i) {
            theFile.NextLine(theLine);
        }
        theFile.Rewind();
        EXPECT_EQ(LinesOf(theFile), theCase.mLines);
    }
}

TEST(TextFileTest, WhatIsAppendedIsReadLater) {
    TempDir theDir;
    const std::string thePath = theDir.Write("file", "a\n");
    vxTextFile theFile(thePath.c_str(), 10);
    EXPECT_EQ(LinesOf(theFile), Lines{"a"});
    std::ofstream(thePath, std::ios::app) << "b\n";
    EXPECT_EQ(LinesOf(theFile), Lines{"b"});
}

TEST(TextFileTest, PartsAndSignalsDoNotCutLines) {
    TempDir theDir;
    vxTextFile theFile(theDir.Write("file", "first line\r\nsecond line\nthird").c_str(), 100);
    ScriptedIO theScript;
    theScript.mReads = {Moves(3),     Fails(EINTR), Moves(4), Moves(4), Fails(EINTR), Moves(1),
                        Moves(1),     Moves(1),     Moves(1), Moves(1), Moves(1),     Moves(1),
                        Fails(EINTR), Moves(5),     Moves(1), Moves(2)};
    EXPECT_EQ(LinesOf(theFile), (Lines{"first line", "second line", "third"}));
}

TEST(TextFileTest, AFailureToReadEndsTheLinesUntilReadingWorksAgain) {
    TempDir theDir;
    vxTextFile theFile(theDir.Write("file", "abcdef\ngh\n").c_str(), 100);
    Reports theReports;
    ScriptedIO theScript;
    theScript.mReads = {Moves(3), Fails(EIO)};
    vxCString theLine("old");
    EXPECT_FALSE(theFile.NextLine(theLine));
    EXPECT_EQ(Text(theLine), "old");
    EXPECT_EQ(theReports.LogTexts().size(), 1u);
    EXPECT_EQ(LinesOf(theFile), (Lines{"abcdef", "gh"}));
}

TEST(TextFileTest, ADirectoryHasNoLines) {
    TempDir theDir;
    Reports theReports;
    vxTextFile theFile(theDir.Path().c_str(), 100);
    vxCString theLine;
    EXPECT_FALSE(theFile.NextLine(theLine));
    EXPECT_EQ(theReports.LogTexts().size(), 1u);
}

TEST(TextFileTest, TheBufferIsReadInFewSteps) {
    TempDir theDir;
    std::string theText;
    for (int i = 0; i < 1000; ++i) {
        theText += "0123456789\n";
    }
    vxTextFile theFile(theDir.Write("file", theText).c_str(), 1100);
    ScriptedIO theScript;
    EXPECT_EQ(LinesOf(theFile).size(), 1000u);
    EXPECT_LE(theScript.mReadCount, 12u);
}

TEST(TextFileTest, RandomTextsGiveTheLinesOfTheModel) {
    TempDir theDir;
    std::mt19937 theRandom(6);
    for (int i = 0; i < 3000; ++i) {
        std::string theText(theRandom() % 40, 'x');
        for (char& theChar : theText) {
            theChar = "ab\r\n"[theRandom() % 4];
        }
        const unsigned theLimit = 1 + static_cast<unsigned>(theRandom() % 12);
        vxTextFile theFile(theDir.Write(std::to_string(i), theText).c_str(), theLimit);
        ScriptedIO theScript;
        for (size_t theSteps = theRandom() % 10; theSteps > 0; --theSteps) {
            theScript.mReads.push_back(Moves(1 + theRandom() % 3));
        }
        ASSERT_EQ(LinesOf(theFile), ModelLines(theText, theLimit))
            << testing::PrintToString(theText) << " by " << theLimit;
    }
}
