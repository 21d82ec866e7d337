#include <libteskTools/Unicode.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

int Check(const std::string& aStr, size_t* aWritten = nullptr) {
    return vxUnicode_UTF8ToWide(aStr.data(), aStr.size(), nullptr, 0, aWritten);
}

std::string Repaired(std::string aStr) {
    aStr.resize(vxUTF_MakeValidUTF8(&aStr[0], aStr.size()));
    return aStr;
}

// The length of the valid character at a position by the grammar of RFC 3629, section 4; 0 for none.
size_t GrammarLength(const std::string& aStr, size_t aPos) {
    const auto theIn = [&](size_t anOffset, unsigned aFirst, unsigned aLast) {
        if (aPos + anOffset >= aStr.size()) {
            return false;
        }
        const unsigned theByte = static_cast<unsigned char>(aStr[aPos + anOffset]);
        return theByte >= aFirst && theByte <= aLast;
    };
    const auto theTail = [&](size_t anOffset) { return theIn(anOffset, 0x80, 0xBF); };
    if (theIn(0, 0x00, 0x7F)) {
        return 1;
    }
    if (theIn(0, 0xC2, 0xDF) && theTail(1)) {
        return 2;
    }
    if (((theIn(0, 0xE0, 0xE0) && theIn(1, 0xA0, 0xBF)) || (theIn(0, 0xE1, 0xEC) && theTail(1)) ||
         (theIn(0, 0xED, 0xED) && theIn(1, 0x80, 0x9F)) || (theIn(0, 0xEE, 0xEF) && theTail(1))) &&
        theTail(2)) {
        return 3;
    }
    if (((theIn(0, 0xF0, 0xF0) && theIn(1, 0x90, 0xBF)) || (theIn(0, 0xF1, 0xF3) && theTail(1)) ||
         (theIn(0, 0xF4, 0xF4) && theIn(1, 0x80, 0x8F))) &&
        theTail(2) && theTail(3)) {
        return 4;
    }
    return 0;
}

}  // namespace

TEST(UnicodeTest, BothEndsOfEveryLengthConvert) {
    struct Row {
        const char* mText;
        wchar_t mChar;
    };
    constexpr Row kRows[] = {{"\x01", 1},
                             {"\x7F", 0x7F},
                             {"\xC2\x80", 0x80},
                             {"\xDF\xBF", 0x7FF},
                             {"\xE0\xA0\x80", 0x800},
                             {"\xED\x9F\xBF", 0xD7FF},
                             {"\xEE\x80\x80", 0xE000},
                             {"\xEF\xBF\xBF", 0xFFFF},
                             {"\xF0\x90\x80\x80", 0x10000},
                             {"\xF4\x8F\xBF\xBF", 0x10FFFF}};
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(static_cast<long>(theRow.mChar));
        wchar_t theWide = 0;
        size_t theWritten = 0;
        EXPECT_EQ(
            vxUnicode_UTF8ToWide(theRow.mText, strlen(theRow.mText), &theWide, 1, &theWritten), 0);
        EXPECT_EQ(theWide, theRow.mChar);
        EXPECT_EQ(theWritten, 1u);
        const wchar_t theText[] = {theRow.mChar, 0};
        char* theBack = vxWString_S_ToUTF8(theText);
        EXPECT_STREQ(theBack, theRow.mText);
        free(theBack);
    }
}

TEST(UnicodeTest, WhatTheStandardForbidsFails) {
    const char* const kTexts[] = {"\x80",
                                  "\xBF",
                                  "\xC0\x80",
                                  "\xC1\xBF",
                                  "\xC2",
                                  "\xC2\x41",
                                  "\xE0\x9F\xBF",
                                  "\xE0\xA0",
                                  "\xED\xA0\x80",
                                  "\xED\xBF\xBF",
                                  "\xE2\x82\x41",
                                  "\xF0\x8F\xBF\xBF",
                                  "\xF0\x90\x80",
                                  "\xF4\x90\x80\x80",
                                  "\xF5\x80\x80\x80",
                                  "\xF8\x88\x80\x80",
                                  "\xFE",
                                  "\xFF",
                                  "abcdefghij\xFF",
                                  "\xC3\xA4\x80"};
    for (const char* theText : kTexts) {
        EXPECT_EQ(Check(theText), -1) << theText;
    }
}

TEST(UnicodeTest, TheTextIsMeasuredWithoutATarget) {
    size_t theWritten = 9;
    EXPECT_EQ(Check("", &theWritten), 0);
    EXPECT_EQ(theWritten, 0u);
    EXPECT_EQ(Check(std::string("a\0\xC3\xA4", 4), &theWritten), 0);
    EXPECT_EQ(theWritten, 3u);
    EXPECT_EQ(Check("abc\xFFz", &theWritten), -1);
    EXPECT_EQ(theWritten, 3u);
}

TEST(UnicodeTest, ATargetThatIsTooSmallFailsAfterWhatItHolds) {
    wchar_t theWide[4] = {1, 1, 1, 1};
    size_t theWritten = 0;
    EXPECT_EQ(vxUnicode_UTF8ToWide("abcd", 4, theWide, 3, &theWritten), -1);
    EXPECT_EQ(theWritten, 3u);
    EXPECT_EQ(theWide[2], L'c');
    EXPECT_EQ(theWide[3], 1);
    EXPECT_EQ(vxUnicode_UTF8ToWide("ab\xC3\xA4", 4, theWide, 2, &theWritten), -1);
    EXPECT_EQ(theWritten, 2u);
    EXPECT_EQ(vxUnicode_UTF8ToWide("abcd", 4, theWide, 4, nullptr), 0);
    EXPECT_EQ(theWide[3], L'd');
    EXPECT_EQ(vxUnicode_UTF8ToWide("", 0, theWide, 0, &theWritten), 0);
}

TEST(UnicodeTest, RepairDropsEveryByteThatIsNoPartOfACharacter) {
    struct Row {
        const char *mText, *mResult;
    };
    constexpr Row kRows[] = {{"", ""},
                             {"abc", "abc"},
                             {"\xFF", ""},
                             {"a\xFF"
                              "b\xFE"
                              "c",
                              "abc"},
                             {"\xE2\x82"
                              "A",
                              "A"},
                             {"\xE2\x82\xAC\xAC", "\xE2\x82\xAC"},
                             {"\xF0\x9F\x98"
                              "abc",
                              "abc"},
                             {"\xC3\xC3\xA4", "\xC3\xA4"},
                             {"\xED\xA0\x80x", "x"},
                             {"abc\xC3", "abc"},
                             {"\xC0\x80", ""}};
    for (const Row& theRow : kRows) {
        EXPECT_EQ(Repaired(theRow.mText), theRow.mResult) << theRow.mText;
    }
    EXPECT_EQ(Repaired(std::string("a\0\xFF"
                                   "b",
                                   4)),
              std::string("a\0b", 3));
}

TEST(UnicodeTest, RandomBytesFollowTheGrammarOfTheStandard) {
    std::mt19937 theEngine(6);
    const std::string theBytes =
        std::string("\0", 1) +
        "aA\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF"
        "\xF0\xF1\xF3\xF4\xF5\xFF";
    for (int i = 0; i < 50000; i++) {
        std::string theText(theEngine() % 24, '\0');
        for (char& theByte : theText) {
            theByte = i % 2 == 0 ? theBytes[theEngine() % theBytes.size()]
                                 : static_cast<char>(0x80 + theEngine() % 0x80);
        }
        std::string theValid;
        size_t theCount = 0;
        for (size_t j = 0; j < theText.size();) {
            const size_t theLength = GrammarLength(theText, j);
            theValid += theText.substr(j, theLength);
            theCount += theLength != 0;
            j += theLength == 0 ? 1 : theLength;
        }
        ASSERT_EQ(Repaired(theText), theValid);
        ASSERT_EQ(Check(theText), theValid == theText ? 0 : -1);
        size_t theWritten = 0;
        ASSERT_EQ(Check(theValid, &theWritten), 0);
        ASSERT_EQ(theWritten, theCount);
    }
}

TEST(UnicodeTest, WholeTextsConvertBothWaysAndLeaveOutWhatIsNoCharacter) {
    wchar_t* theWide = vxWString_S_FromUTF8("a\xC3\xA4\xFF\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_STREQ(theWide, L"a\u00E4\u20AC\U0001F600");
    free(theWide);
    const wchar_t theText[] = {L'a',
                               static_cast<wchar_t>(0xD800),
                               0xE4,
                               static_cast<wchar_t>(0xDFFF),
                               static_cast<wchar_t>(0x110000),
                               static_cast<wchar_t>(-1),
                               L'b',
                               0};
    char* theBack = vxWString_S_ToUTF8(theText);
    EXPECT_STREQ(theBack,
                 "a\xC3\xA4"
                 "b");
    free(theBack);
    theWide = vxWString_S_FromUTF8("");
    EXPECT_STREQ(theWide, L"");
    free(theWide);
    EXPECT_EQ(vxWString_S_FromUTF8(nullptr), nullptr);
    EXPECT_EQ(vxWString_S_ToUTF8(nullptr), nullptr);
}

TEST(UnicodeTest, AMegabyteOfBadBytesIsRepairedInOnePass) {
    std::string theText;
    for (int i = 0; i < 500000; i++) {
        theText += "a\xFF";
    }
    EXPECT_EQ(Repaired(theText), std::string(500000, 'a'));
    EXPECT_EQ(Repaired(std::string(1000000, '\xF0')), "");
}
