#include "LineReader.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using vxmedia::LineReader;

namespace {

constexpr size_t kLimit = 16 * 1024 * 1024;

void Append(LineReader& aReader, const std::string& aText) {
    aReader.Append(aText.data(), aText.size());
}

// All lines that wait, with a mark for refusals.
std::vector<std::string> TakeLines(LineReader& aReader) {
    std::vector<std::string> theLines;
    std::string theLine;
    for (;;) {
        switch (aReader.NextLine(theLine)) {
            case LineReader::Result::None:
                return theLines;
            case LineReader::Result::Line:
                theLines.push_back(theLine);
                break;
            case LineReader::Result::TooLong:
                theLines.push_back("<long>");
                break;
            case LineReader::Result::HasNul:
                theLines.push_back("<nul>");
                break;
        }
    }
}

using Lines = std::vector<std::string>;

TEST(LineReaderTest, ALineIsWholeWhenItsLineFeedIsThere) {
    LineReader theReader;
    Append(theReader, "one\ntw");
    EXPECT_EQ(TakeLines(theReader), Lines({"one"}));
    EXPECT_FALSE(theReader.HasLine());
    Append(theReader, "o\n\nthree\n");
    EXPECT_TRUE(theReader.HasLine());
    EXPECT_EQ(TakeLines(theReader), Lines({"two", "", "three"}));
}

TEST(LineReaderTest, TheEndCompletesTheLastLine) {
    LineReader theReader;
    Append(theReader, "one\ntwo");
    theReader.End();
    EXPECT_TRUE(theReader.HasEnded());
    EXPECT_EQ(TakeLines(theReader), Lines({"one", "two"}));
    theReader.End();
    EXPECT_EQ(TakeLines(theReader), Lines());
}

TEST(LineReaderTest, TheEndAddsNoEmptyLine) {
    LineReader theReader;
    theReader.End();
    EXPECT_EQ(TakeLines(theReader), Lines());
    LineReader theOther;
    Append(theOther, "one\n");
    theOther.End();
    EXPECT_EQ(TakeLines(theOther), Lines({"one"}));
    LineReader theTaken;
    Append(theTaken, "one\n");
    EXPECT_EQ(TakeLines(theTaken), Lines({"one"}));
    theTaken.End();
    EXPECT_EQ(TakeLines(theTaken), Lines());
}

TEST(LineReaderTest, ALineWithANulByteIsRefused) {
    LineReader theReader;
    Append(theReader, std::string("a\0b\nc\n", 6));
    EXPECT_EQ(TakeLines(theReader), Lines({"<nul>", "c"}));
}

TEST(LineReaderTest, ALineAtTheLimitIsTakenAndALongerOneRefused) {
    for (const size_t thePiece : {size_t(65536), size_t(1000003), kLimit * 2}) {
        SCOPED_TRACE(thePiece);
        LineReader theReader;
        const std::string theText = std::string(kLimit, 'a') + "\n" + std::string(kLimit + 1, 'b') +
                                    "\nc\n" + std::string(3 * kLimit, 'd');
        Lines theLines;
        for (size_t i = 0; i < theText.size(); i += thePiece) {
            Append(theReader, theText.substr(i, thePiece));
            for (const std::string& theLine : TakeLines(theReader)) {
                theLines.push_back(theLine);
            }
        }
        theReader.End();
        for (const std::string& theLine : TakeLines(theReader)) {
            theLines.push_back(theLine);
        }
        ASSERT_EQ(theLines.size(), 4u);
        EXPECT_EQ(theLines[0].size(), kLimit);
        EXPECT_EQ(theLines[1], "<long>");
        EXPECT_EQ(theLines[2], "c");
        EXPECT_EQ(theLines[3], "<long>");
    }
}

TEST(LineReaderTest, HoweverTheInputIsCutTheLinesAreTheSame) {
    std::mt19937 theRandom(42);
    for (int i = 0; i < 200; ++i) {
        std::string theText;
        Lines theExpected(1);
        for (int j = 0; j < 300; ++j) {
            const char theByte = theRandom() % 7 == 0 ? '\n' : 'x';
            theText += theByte;
            if (theByte == '\n') {
                theExpected.emplace_back();
            } else {
                theExpected.back() += theByte;
            }
        }
        if (theExpected.back().empty()) {
            theExpected.pop_back();
        }
        LineReader theReader;
        Lines theLines;
        for (size_t j = 0; j < theText.size();) {
            const size_t theCount = theRandom() % 20;
            Append(theReader, theText.substr(j, theCount));
            j += theCount;
            std::string theLine;
            if (theRandom() % 2 == 0 && theReader.NextLine(theLine) == LineReader::Result::Line) {
                theLines.push_back(theLine);
            }
        }
        theReader.End();
        for (const std::string& theLine : TakeLines(theReader)) {
            theLines.push_back(theLine);
        }
        EXPECT_EQ(theLines, theExpected);
    }
}

}  // namespace
