#include "vx/BeforeNextSpace.h"

#include <gmock/gmock.h>

#include <random>
#include <string>
#include <vector>

#include "CLISupport.h"

namespace {

struct WordCase {
    const char* mText;
    const char* mWord;
    const char* mRest;
    bool mfFound;
};

void ExpectWords(const std::vector<WordCase>& aCases, bool afUnquoteSingle) {
    for (const WordCase& theCase : aCases) {
        SCOPED_TRACE(theCase.mText);
        vxCString theText = theCase.mText;
        bool theFound = !theCase.mfFound;
        EXPECT_STREQ(BeforeNextSpace(theText, &theFound, afUnquoteSingle), theCase.mWord);
        EXPECT_STREQ(theText, theCase.mRest);
        EXPECT_EQ(theFound, theCase.mfFound);
    }
}

TEST(BeforeNextSpaceTest, TakesOneWordAndTrimsTheRest) {
    ExpectWords({{"", "", "", false},
                 {" \t\r\n\v\f ", "", "", false},
                 {"word", "word", "", true},
                 {"  word  ", "word", "", true},
                 {"one two three", "one", "two three", true},
                 {"one\ttwo", "one", "two", true},
                 {"one \t  two  \t", "one", "two", true},
                 {"one\ntwo three\n", "one\ntwo", "three", true},
                 {"one \n two", "one", "two", true}},
                true);
}

TEST(BeforeNextSpaceTest, QuotesGroupAnywhereInAWord) {
    ExpectWords({{"\"a b\" c", "a b", "c", true},
                 {"'a b' c", "a b", "c", true},
                 {"ab\"c d\" e", "ab\"c d\"", "e", true},
                 {"ab'c d'\"e f\" g", "ab'c d'\"e f\"", "g", true},
                 {"\"a 'b\" c", "a 'b", "c", true},
                 {"'a \"b' c", "a \"b", "c", true},
                 {"\"a\tb\" c", "a\tb", "c", true}},
                true);
}

TEST(BeforeNextSpaceTest, OnePairOfSurroundingQuotesIsRemoved) {
    ExpectWords({{"\"\"a\"\"", "\"a\"", "", true},
                 {"\"'a'\"", "'a'", "", true},
                 {"'\"a\"'", "\"a\"", "", true},
                 {"\"a\"b\"c\"", "a\"b\"c", "", true},
                 {"\"a'", "\"a'", "", true},
                 {"a\"", "a\"", "", true}},
                true);
}

TEST(BeforeNextSpaceTest, TwoQuotesAreAnEmptyWordThatWasFound) {
    ExpectWords({{"\"\" x", "", "x", true}, {"'' x", "", "x", true}}, true);
}

TEST(BeforeNextSpaceTest, ALoneQuoteIsAWordOfOneByte) {
    ExpectWords({{"\"", "\"", "", true}, {"'", "'", "", true}}, true);
}

TEST(BeforeNextSpaceTest, AQuoteThatIsNotClosedGroupsUpToTheEnd) {
    ExpectWords({{"\"a b c  ", "\"a b c", "", true}, {"x 'a b", "x", "'a b", true}}, true);
    ExpectWords({{"'a b c", "'a b c", "", true}}, true);
}

TEST(BeforeNextSpaceTest, SingleQuotesStayUnlessAskedFor) {
    ExpectWords({{"'a b' c", "'a b'", "c", true},
                 {"'' c", "''", "c", true},
                 {"\"a b\" c", "a b", "c", true}},
                false);
}

TEST(BeforeNextSpaceTest, ANulByteEndsTheText) {
    vxCString theText("one\0two three", 13);
    bool theFound = false;
    EXPECT_STREQ(BeforeNextSpace(theText, &theFound, true), "one");
    EXPECT_TRUE(theFound);
    EXPECT_STREQ(BeforeNextSpace(theText, &theFound, true), "");
    EXPECT_FALSE(theFound);
}

TEST(BeforeNextSpaceTest, NobodyNeedsToAskWhetherAWordWasFound) {
    vxCString theText = "a b";
    EXPECT_STREQ(BeforeNextSpace(theText, NULL, true), "a");
    EXPECT_STREQ(theText, "b");
}

// The same words, found the plain way: one byte after the other, on a text that ends with a NUL.
std::vector<std::string> PlainWords(std::string aText) {
    std::vector<std::string> theWords;
    const std::string kSpace = " \t\n\v\f\r";
    for (;;) {
        const size_t theFirst = aText.find_first_not_of(kSpace);
        if (theFirst == std::string::npos) {
            return theWords;
        }
        aText = aText.substr(theFirst, aText.find_last_not_of(kSpace) + 1 - theFirst);
        size_t theEnd = 0;
        for (char theQuote = 0; theEnd < aText.size(); ++theEnd) {
            const char theChar = aText[theEnd];
            if (theQuote == 0 && (theChar == ' ' || theChar == '\t')) {
                break;
            }
            if (theQuote == theChar) {
                theQuote = 0;
            } else if (theQuote == 0 && (theChar == '"' || theChar == '\'')) {
                theQuote = theChar;
            }
        }
        std::string theWord = aText.substr(0, theEnd);
        if (theWord.size() > 1 && theWord.front() == theWord.back() &&
            (theWord.front() == '"' || theWord.front() == '\'')) {
            theWord = theWord.substr(1, theWord.size() - 2);
        }
        theWords.push_back(theWord);
        aText = aText.substr(theEnd);
    }
}

TEST(BeforeNextSpaceTest, AgreesWithAPlainSplitOnRandomText) {
    std::mt19937 theRandom(31);
    const std::string kBytes = "ab \t'\"\n\xff";
    for (int i = 0; i < 20000; ++i) {
        std::string theText;
        for (size_t theLength = theRandom() % 24; theLength > 0; --theLength) {
            theText += kBytes[theRandom() % kBytes.size()];
        }
        SCOPED_TRACE(theText);
        vxCString theRest = theText.c_str();
        std::vector<std::string> theWords;
        bool theFound = true;
        while (theFound) {
            const vxCString theWord = BeforeNextSpace(theRest, &theFound, true);
            if (theFound) {
                theWords.push_back(theWord.c_str());
            }
        }
        ASSERT_EQ(theWords, PlainWords(theText));
    }
}

}  // namespace
