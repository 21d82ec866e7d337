#include <gtest/gtest.h>
#include <libteskTools/CStringParser.h>

#include <fnmatch.h>

#include <clocale>
#include <random>
#include <string>
#include <vector>

#include "support/Growth.h"

TEST(CStringParserTest, PatternsFitWholeNames) {
    const struct {
        const char* mPattern;
        const char* mName;
        bool mFits;
    } kCases[] = {
        {"*", "", true},
        {"*", "any", true},
        {"*", ".hidden", true},
        {"", "", true},
        {"", "a", false},
        {"a", "", false},
        {"abc", "abc", true},
        {"abc", "ab", false},
        {"abc", "abcd", false},
        {"abc", "aBc", false},
        {"*.mp3", "song.mp3", true},
        {"*.mp3", ".mp3", true},
        {"*.mp3", "mp3", false},
        {"*.mp3", "song.mp3.txt", false},
        {"*.mp3", "song.MP3", false},
        {"song*", "song", true},
        {"song*", "song.mp3", true},
        {"a*b*c", "abc", true},
        {"a*b*c", "axxbyybzzc", true},
        {"a*b*c", "axxbyybzz", false},
        {"a*bc*d", "abxbcxd", true},
        {"a*bc*d", "abxcbd", false},
        {"*ab*ab*", "xabxab", true},
        {"*ab*ab*", "xabab", true},
        {"*ab*ab*", "xaab", false},
        {"**", "x", true},
        {"?", "a", true},
        {"?", "", false},
        {"?", "ab", false},
        {"*?", "", false},
        {"*?", "a", true},
        {"[abc]", "b", true},
        {"[abc]", "d", false},
        {"[a-c]", "b", true},
        {"[a-c]", "d", false},
        {"[!a-c]", "d", true},
        {"[^a-c]", "b", false},
        {"[]a]", "]", true},
        {"[!]a]", "]", false},
        {"[a-]", "-", true},
        {"[-a]", "-", true},
        {"[[:digit:]x]", "7", true},
        {"[[:digit:]x]", "x", true},
        {"[[:digit:]x]", "y", false},
        {"[![:upper:]]", "a", true},
        {"[\\]]", "]", true},
        {"*[0-9]", "track1", true},
        {"*[0-9]", "track", false},
        {"[ab", "[ab", true},
        {"[ab", "a", false},
        {"\\*", "*", true},
        {"\\*", "a", false},
        {"a\\", "a\\", false},
        {"*\\", "a\\", false},
        {"\xff*", "\xff\xfe", true},
        {"?", "\xff", true},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mPattern << " and " << theCase.mName);
        EXPECT_EQ(vxCStringParser_Match(theCase.mName, theCase.mPattern), theCase.mFits ? 1 : 0);
    }
}

TEST(CStringParserTest, RandomPatternsFitWhatTheSystemSaysInTheCLocale) {
    const std::vector<std::string> kPatternParts = {
        "a",    "b",    "-",    "]",    "*",     "*",     "?",           "\\*",      "\\[",
        "[ab]", "[!a]", "[^]]", "[]-]", "[a-c]", "[c-a]", "[[:lower:]]", "[a*?\\]b]"};
    const std::vector<std::string> kNameParts = {"a", "b", "c", "-", "]", "!", "[", "*", "\\"};
    std::mt19937 theRandom(20);
    const auto theText = [&theRandom](const std::vector<std::string>& aParts, size_t aMost) {
        std::string theResult;
        for (size_t i = theRandom() % (aMost + 1); i > 0; --i) {
            theResult += aParts[theRandom() % aParts.size()];
        }
        return theResult;
    };
    size_t theFits = 0;
    for (int i = 0; i < 300000; ++i) {
        const std::string thePattern = theText(kPatternParts, 6);
        const std::string theName = theText(kNameParts, 5);
        const bool theExpected = fnmatch(thePattern.c_str(), theName.c_str(), 0) == 0;
        theFits += theExpected ? 1 : 0;
        ASSERT_EQ(vxCStringParser_Match(theName.c_str(), thePattern.c_str()), theExpected ? 1 : 0)
            << thePattern << " and " << theName;
    }
    EXPECT_GT(theFits, 1000u);
}

TEST(CStringParserTest, ManyStarsDoNotTryEveryCombination) {
    std::string thePattern;
    for (int i = 0; i < 100; ++i) {
        thePattern += "*a";
    }
    thePattern += "*[b]";
    EXPECT_EQ(vxCStringParser_Match(std::string(255, 'a').c_str(), thePattern.c_str()), 0);
    EXPECT_EQ(vxCStringParser_Match((std::string(254, 'a') + "b").c_str(), thePattern.c_str()), 1);
}

TEST(CStringParserTest, BracketsThatNeverCloseStandForThemselves) {
    const struct {
        const char* mPattern;
        const char* mName;
        bool mfFits;
    } kCases[] = {
        {"[[[", "[[[", true},           {"[[[", "[[", false},
        {"*[[a", "b[[[a", true},        {"[a[b", "[a[b", true},
        {"[a-[b", "[a-[b", true},       {"[!", "[!", true},
        {"[!]", "[!]", true},           {"[\\]", "[]", true},
        {"[[:digit:]", "[:", true},  // the class alone is a set of its letters
        {"[[:digit:]", "[7", false},    {"*[x[:digit:]", "a[xt", true},
        {"[[:digit:]*[", "[ga[", true},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mPattern << " and " << theCase.mName);
        EXPECT_EQ(vxCStringParser_Match(theCase.mName, theCase.mPattern), theCase.mfFits ? 1 : 0);
    }
}

TEST(CStringParserTest, BracketsThatNeverCloseAreLookedThroughOnce) {
    const std::string theName(1000, '[');
    EXPECT_TRUE(vxtest::GrowsLinearly(100, [&theName](size_t aSize) {
        const std::string thePattern = "*" + std::string(aSize, '[') + "x";
        EXPECT_EQ(vxCStringParser_Match(theName.c_str(), thePattern.c_str()), 0);
    }));
}

TEST(CStringParserTest, NullFitsNothing) {
    EXPECT_EQ(vxCStringParser_Match(nullptr, "*"), 0);
    EXPECT_EQ(vxCStringParser_Match("", nullptr), 0);
}

TEST(CStringParserTest, BytesOutsideAsciiBelongToNoClass) {
    for (const char* theLocale : {"C", "C.UTF-8", "en_US.ISO-8859-1", "tr_TR.ISO-8859-9"}) {
        setlocale(LC_ALL, theLocale);  // those that are not installed change nothing
        EXPECT_EQ(vxCStringParser_Match("\xE9", "[[:alpha:]]"), 0) << theLocale;
        EXPECT_EQ(vxCStringParser_Match("\xE9", "[![:alpha:]]"), 1) << theLocale;
    }
    setlocale(LC_ALL, "C");
}
