// Searching and extracting.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Reports.h"
#include "support/Text.h"
#include "vx/CString.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Text;

namespace {

constexpr size_t npos = vxCString::npos;
constexpr const char* kBeyond = "aStartPos <= length()";

struct Row {
    const char* mText;
    const char* mNeedle;
    size_t mStart;
    size_t mPos;
};

template <typename Search>
void ExpectRows(const Row* aRows, size_t aCount, Search aSearch) {
    vxtest::Reports theReports;
    for (size_t i = 0; i < aCount; i++) {
        const Row& theRow = aRows[i];
        SCOPED_TRACE(testing::Message() << "'" << theRow.mNeedle << "' in '" << theRow.mText
                                        << "' from " << theRow.mStart);
        EXPECT_EQ(aSearch(vxCString(theRow.mText), theRow.mNeedle, theRow.mStart), theRow.mPos);
    }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

}  // namespace

TEST(CStringSearchTest, FindReturnsTheFirstOccurrenceAtOrAfterTheStart) {
    constexpr Row kRows[] = {
        {"abcabc", "abc", 0, 0},    {"abcabc", "abc", 1, 3},  {"abcabc", "abc", 3, 3},
        {"abcabc", "abc", 4, npos}, {"abcabc", "c", 5, 5},    {"abcabc", "c", 6, npos},
        {"abcabc", "cab", 0, 2},    {"abc", "abcd", 0, npos}, {"abc", "x", 0, npos},
        {"abc", "", 0, npos},       {"abc", "", 3, npos},     {"", "", 0, npos},
        {"", "a", 0, npos},         {"aaab", "aab", 0, 1},    {"abc", "bcd", 0, npos},
    };
    ExpectRows(kRows, std::size(kRows),
               [](const vxCString& aText, const char* aNeedle, size_t aStart) {
                   const size_t thePos = aText.Find(vxCString(aNeedle), aStart);
                   EXPECT_EQ(aText.FindFirstStr(aNeedle, aStart), thePos);
                   EXPECT_EQ(aText.FindStr(aNeedle, strlen(aNeedle), aStart), thePos);
                   return thePos;
               });
}

TEST(CStringSearchTest, NulsInNeedleAndTextCount) {
    const vxCString theText("ab\0cd\0ab", 8);
    EXPECT_EQ(theText.Find(vxCString("\0a", 2), 0), 5u);
    EXPECT_EQ(theText.Find(vxCString("b\0c", 3), 0), 1u);
    EXPECT_EQ(theText.Find(vxCString("ab"), 1), 6u);
    EXPECT_EQ(theText.FindStr("\0", 1, 3), 5u);
    EXPECT_EQ(theText.FindStr("cdx", 2, 0), 3u);
    EXPECT_EQ(theText.FindFirstStr("ab", 1), 6u);
}

TEST(CStringSearchTest, FindLastStrReturnsTheLastOccurrenceThatEndsAtOrBeforeTheStart) {
    constexpr Row kRows[] = {
        {"abcabc", "abc", npos, 3}, {"abcabc", "abc", 6, 3},     {"abcabc", "abc", 5, 0},
        {"abcabc", "abc", 3, 0},    {"abcabc", "abc", 2, npos},  {"abcabc", "abc", 0, npos},
        {"abc", "", npos, 3},       {"abc", "", 2, 2},           {"abc", "", 0, npos},
        {"", "", npos, npos},       {"", "a", npos, npos},       {"aaaa", "aa", npos, 2},
        {"aaaa", "aa", 3, 1},       {"abc", "abcd", npos, npos}, {"abcx", "abd", npos, npos},
        {"abc", "c", npos, 2},      {"abc", "c", 2, npos},
    };
    ExpectRows(kRows, std::size(kRows),
               [](const vxCString& aText, const char* aNeedle, size_t aStart) {
                   return aText.FindLastStr(aNeedle, aStart);
               });
    EXPECT_EQ(vxCString("abc").FindLastStr("c"), 2u);
}

TEST(CStringSearchTest, FindNoCaseStopsAtLengthMinusStart) {
    constexpr Row kRows[] = {
        {"aBcB", "b", 0, 1},      {"aBcB", "B", 2, npos},    {"aBcB", "b", 1, 1},
        {"ABCABC", "abc", 0, 0},  {"ABCABC", "abc", 1, 3},   {"ABCABC", "abc", 3, npos},
        {"xxABCx", "bC", 0, 3},   {"xxABCx", "bC", 3, npos}, {"abc", "", 0, npos},
        {"", "a", 0, npos},       {"abc", "abcd", 0, npos},  {"abc", "x", 3, npos},
        {"abcdef", "CDEF", 2, 2},  // begins before 4, ends behind it
        {"abcdefg", "d", 3, 3},   {"abcdef", "d", 3, npos},  {"a[b{", "{", 0, 3},
        {"a[b{", "[", 0, 1},      {"@`", "`", 0, 1},
    };
    ExpectRows(kRows, std::size(kRows),
               [](const vxCString& aText, const char* aNeedle, size_t aStart) {
                   return aText.FindNoCase(vxCString(aNeedle), aStart);
               });
    EXPECT_EQ(vxCString("a\0B", 3).FindNoCase(vxCString("\0b", 2), 0), 1u);
    EXPECT_EQ(vxCString("\xC4").FindNoCase("\xE4", 0), npos);
}

TEST(CStringSearchTest, SetsAreSearchedForwards) {
    constexpr Row kRows[] = {
        {"a-b_c", "_-", 0, 1},    {"a-b_c", "_-", 2, 3}, {"a-b_c", "_-", 4, npos},
        {"a-b_c", "c", 5, npos},  {"abc", "", 0, npos},  {"", "a", 0, npos},
        {"a\xFFz", "\xFF", 0, 1},
    };
    ExpectRows(kRows, std::size(kRows),
               [](const vxCString& aText, const char* aSet, size_t aStart) {
                   return aText.FindFirstOf(aSet, aStart);
               });
    EXPECT_EQ(vxCString("a\0-", 3).FindFirstOf("-", 0), 2u);
}

TEST(CStringSearchTest, SetsAreSearchedBackwardsFromTheStartInclusive) {
    constexpr Row kRows[] = {
        {"a-b_c", "_-", npos, 3}, {"a-b_c", "_-", 3, 3}, {"a-b_c", "_-", 2, 1},
        {"a-b_c", "_-", 0, npos}, {"a-b_c", "a", 0, 0},  {"a-b_c", "c", 5, 4},
        {"abc", "", npos, npos},  {"", "a", npos, npos}, {"", "a", 0, npos},
    };
    ExpectRows(kRows, std::size(kRows),
               [](const vxCString& aText, const char* aSet, size_t aStart) {
                   return aText.FindLastOf(aSet, aStart);
               });
    EXPECT_EQ(vxCString("abc").FindLastOf("b"), 1u);
}

TEST(CStringSearchTest, BytesOutsideASetAreFound) {
    constexpr Row kRows[] = {
        {"  abc", " ", 0, 2}, {"aab", "a", 1, 2}, {"aaa", "a", 0, npos},    {"abc", "", 0, 0},
        {"abc", "", 3, npos}, {"", "a", 0, npos}, {"abc", "x", npos, npos},
    };
    ExpectRows(kRows, std::size(kRows),
               [](const vxCString& aText, const char* aSet, size_t aStart) {
                   return aText.FindFirstNotOf(aSet, aStart);
               });
    EXPECT_EQ(vxCString("a\0a", 3).FindFirstNotOf("a", 0), 1u);
}

TEST(CStringSearchTest, AStartBeyondTheTextIsReportedAndNothingIsFound) {
    const vxCString theText("abc");
    vxtest::Reports theReports;
    EXPECT_EQ(theText.Find(vxCString("a"), 4), npos);
    EXPECT_EQ(theText.FindStr("a", 1, 4), npos);
    EXPECT_EQ(theText.FindFirstStr("a", npos), npos);
    EXPECT_EQ(theText.FindLastStr("a", 4), npos);
    EXPECT_EQ(theText.FindNoCase(vxCString("a"), 4), npos);
    EXPECT_EQ(theText.FindFirstOf("a", 4), npos);
    EXPECT_EQ(theText.FindLastOf("a", 4), npos);
    EXPECT_EQ(theText.FindFirstNotOf("x", 4), npos);
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kBeyond, kBeyond, kBeyond, kBeyond, kBeyond,
                                                     kBeyond, kBeyond, kBeyond));
}

TEST(CStringSearchTest, NullNeedlesAndSetsAreEmpty) {
    const vxCString theText("abc");
    EXPECT_EQ(theText.FindFirstStr(nullptr, 0), npos);
    EXPECT_EQ(theText.FindStr(nullptr, 3, 0), npos);
    EXPECT_EQ(theText.FindLastStr(nullptr), 3u);
    EXPECT_EQ(theText.FindFirstOf(nullptr, 0), npos);
    EXPECT_EQ(theText.FindLastOf(nullptr), npos);
    EXPECT_EQ(theText.FindFirstNotOf(nullptr, 0), 0u);
    EXPECT_FALSE(theText.Contains(nullptr));
}

TEST(CStringSearchTest, BytesAreFoundFromEitherEnd) {
    const vxCString theText("a.b.c");
    EXPECT_EQ(theText.Find('.', false), 1u);
    EXPECT_EQ(theText.Find('.', true), 3u);
    EXPECT_EQ(theText.First('.'), 1u);
    EXPECT_EQ(theText.Find('a', true), 0u);
    EXPECT_EQ(theText.Find('x', false), npos);
    EXPECT_EQ(theText.Find('x', true), npos);
    EXPECT_EQ(vxCString().Find('x', false), npos);
    EXPECT_EQ(vxCString().Find('x', true), npos);
    EXPECT_EQ(vxCString("a\0b", 3).Find('\0', false), npos);
    EXPECT_EQ(vxCString("a\0b", 3).Find('b', false), 2u);
}

TEST(CStringSearchTest, ContainsAndFreq) {
    const vxCString theText("banana");
    EXPECT_TRUE(theText.Contains("nan"));
    EXPECT_TRUE(theText.Contains("banana"));
    EXPECT_FALSE(theText.Contains("nab"));
    EXPECT_FALSE(theText.Contains(""));
    EXPECT_EQ(theText.Freq('a'), 3u);
    EXPECT_EQ(theText.Freq('x'), 0u);
    EXPECT_EQ(vxCString("a\0\0", 3).Freq('\0'), 2u);
    EXPECT_EQ(vxCString().Freq('a'), 0u);
}

// Extraction

TEST(CStringSearchTest, ExtractionAnswersDifferentlyWhenNothingIsFound) {
    struct ExtractRow {
        const char* mText;
        char mChar;
        const char *mAfterFirst, *mAfterLast, *mBeforeFirst, *mBeforeLast;
    };
    constexpr ExtractRow kRows[] = {
        {"a=b=c", '=', "b=c", "c", "a", "a=b"},
        {"abcdef", 'x', "", "abcdef", "abcdef", ""},
        {"abc", 'a', "bc", "bc", "", ""},
        {"abc", 'c', "", "", "ab", "ab"},
        {"", 'a', "", "", "", ""},
        {"=", '=', "", "", "", ""},
        {"verbose", '=', "", "verbose", "verbose", ""},
    };
    for (const ExtractRow& theRow : kRows) {
        SCOPED_TRACE(testing::Message() << theRow.mText << " at " << theRow.mChar);
        const vxCString theText(theRow.mText);
        const vxCString theStr(theRow.mChar);
        EXPECT_EQ(Text(theText.AfterFirst(theRow.mChar)), theRow.mAfterFirst);
        EXPECT_EQ(Text(theText.AfterFirst(theStr)), theRow.mAfterFirst);
        EXPECT_EQ(Text(theText.AfterLast(theRow.mChar)), theRow.mAfterLast);
        EXPECT_EQ(Text(theText.AfterLast(theStr)), theRow.mAfterLast);
        EXPECT_EQ(Text(theText.BeforeFirst(theRow.mChar)), theRow.mBeforeFirst);
        EXPECT_EQ(Text(theText.BeforeFirst(theStr)), theRow.mBeforeFirst);
        EXPECT_EQ(Text(theText.BeforeFirst(theStr.c_str())), theRow.mBeforeFirst);
        EXPECT_EQ(Text(theText.BeforeLast(theRow.mChar)), theRow.mBeforeLast);
        EXPECT_EQ(Text(theText.BeforeLast(theStr)), theRow.mBeforeLast);
        EXPECT_EQ(Text(theText.BeforeLast(theStr.c_str())), theRow.mBeforeLast);
        EXPECT_EQ(Text(theText), theRow.mText);
    }
}

TEST(CStringSearchTest, ExtractionAtLongerTexts) {
    const vxCString theText("one::two::three");
    EXPECT_EQ(Text(theText.AfterFirst(vxCString("::"))), "two::three");
    EXPECT_EQ(Text(theText.AfterLast(vxCString("::"))), "three");
    EXPECT_EQ(Text(theText.BeforeFirst("::")), "one");
    EXPECT_EQ(Text(theText.BeforeLast("::")), "one::two");
    EXPECT_EQ(Text(theText.BeforeLast(vxCString("one"))), "");
    const vxCString theBytes("a\0\0b\0\0c", 7);
    const vxCString theNuls("\0\0", 2);
    EXPECT_EQ(Text(theBytes.AfterLast(theNuls)), "c");
    EXPECT_EQ(Text(theBytes.BeforeLast(theNuls)), std::string("a\0\0b", 4));
}

TEST(CStringSearchTest, MidLeftAndRightCutAtTheEnd) {
    const vxCString theText("abc");
    EXPECT_EQ(Text(theText.Mid(10)), "");
    EXPECT_EQ(Text(theText.Mid(3)), "");
    EXPECT_EQ(Text(theText.Mid(1)), "bc");
    EXPECT_EQ(Text(theText.Mid(1, 100)), "bc");
    EXPECT_EQ(Text(theText.Mid(1, npos - 1)), "bc");
    EXPECT_EQ(Text(theText.Mid(1, 1)), "b");
    EXPECT_EQ(Text(theText.Mid(1, 0)), "");
    EXPECT_EQ(Text(theText.Mid(0)), "abc");
    EXPECT_EQ(Text(theText.Left(0)), "");
    EXPECT_EQ(Text(theText.Left(2)), "ab");
    EXPECT_EQ(Text(theText.Left(4)), "abc");
    EXPECT_EQ(Text(theText.Right(0)), "");
    EXPECT_EQ(Text(theText.Right(2)), "bc");
    EXPECT_EQ(Text(theText.Right(3)), "abc");
    EXPECT_EQ(Text(theText.Right(4)), "abc");
    EXPECT_EQ(Text(vxCString().Right(1)), "");
    EXPECT_EQ(Text(vxCString("a\0b\0c", 5).Mid(1, 3)), std::string("\0b\0", 3));
}

// Half a million bytes: what is not linear does not end within the test's time.
TEST(CStringSearchTest, NeedlesThatAlmostMatchEverywhereCostNoMore) {
    const std::string theAs(1000000, 'a');
    const vxCString theText(theAs.c_str());
    const std::string theHalf = theAs.substr(0, 500000);
    EXPECT_EQ(theText.FindFirstStr((theHalf + "b").c_str(), 0), npos);
    EXPECT_EQ(theText.FindLastStr(("b" + theHalf).c_str()), npos);
    EXPECT_EQ(theText.FindLastStr((theHalf.substr(1) + "b" + theHalf).c_str()), npos);
    EXPECT_EQ(theText.FindNoCase((theHalf + "b").c_str(), 0), npos);
    EXPECT_EQ(theText.FindLastStr(theHalf.c_str()), 500000u);
    EXPECT_EQ(theText.FindLastStr(theHalf.c_str(), 600000), 100000u);
    EXPECT_EQ((theText + "B").FindNoCase((theHalf + "b").c_str(), 0), 500000u);
    const vxCString theMarked = "b" + theText;
    EXPECT_EQ(theMarked.FindLastStr(("b" + theHalf).c_str()), 0u);
}
