// Changing texts, formatting, repair.

#include <libteskTools/Format.h>

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "support/Allocations.h"
#include "support/Reports.h"
#include "support/Text.h"
#include "vx/CString.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Text;

namespace {

constexpr size_t npos = vxCString::npos;
constexpr const char* kBeyond = "aPos <= length()";

std::vector<size_t> sFormatSizes;  // room that each call of the formatter was given
bool sFormatFails = false;

}  // namespace

// Stands in front of the library's, which does the work.
extern "C" VX_API int vx_vsnprintf(char* aBuffer, size_t aSize, const char* aFormat,
                                   va_list anArgs) {
    using Function = int (*)(char*, size_t, const char*, va_list);
    static const Function sReal = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "vx_vsnprintf"));
    sFormatSizes.push_back(aSize);
    if (sFormatFails) {
        strcpy(aBuffer, "cut");
        return -1;
    }
    return sReal(aBuffer, aSize, aFormat, anArgs);
}

TEST(CStringModifyTest, AppendingTakesStringsTextsAndBytes) {
    vxCString theStr;
    theStr += "ab";
    theStr += vxCString("cd");
    theStr += 'e';
    theStr += static_cast<const char*>(nullptr);
    theStr += "";
    theStr += vxCString("\0f", 2);
    EXPECT_EQ(Text(theStr), std::string("abcde\0f", 7));
}

TEST(CStringModifyTest, ConcatSelfAppendsTheSmallerCount) {
    vxCString theStr("a");
    theStr.ConcatSelf(3, "bcd", 2);
    EXPECT_EQ(Text(theStr), "abc");
    theStr.ConcatSelf(1, "xyz", npos);
    EXPECT_EQ(Text(theStr), "abcx");
    theStr.ConcatSelf(0, "x", 5);
    theStr.ConcatSelf(5, "x", 0);
    theStr.ConcatSelf(5, nullptr, 5);
    EXPECT_EQ(Text(theStr), "abcx");
}

TEST(CStringModifyTest, AStringMayBeAppendedToItself) {
    vxCString theStr("abc");
    theStr += theStr;
    EXPECT_EQ(Text(theStr), "abcabc");
    theStr += theStr.c_str() + 4;
    EXPECT_EQ(Text(theStr), "abcabcbc");
    for (int i = 0; i < 5; i++) {  // through several reallocations
        theStr += theStr;
    }
    EXPECT_EQ(theStr.length(), 256u);
    EXPECT_EQ(Text(theStr.Right(8)), "abcabcbc");

    vxCString theShared(theStr);
    theShared += theShared.c_str() + 253;
    EXPECT_EQ(Text(theShared.Right(6)), "cbccbc");
    EXPECT_EQ(theStr.length(), 256u);

    vxCString theWrapped = vxCString("a") + "b";
    theWrapped += theWrapped.c_str();
    EXPECT_EQ(Text(theWrapped), "abab");
}

TEST(CStringModifyTest, InsertGoesAnywhereUpToTheEnd) {
    EXPECT_EQ(Text(vxCString("ad").Insert(1, "bc")), "abcd");
    EXPECT_EQ(Text(vxCString("ad").Insert(0, "bc")), "bcad");
    EXPECT_EQ(Text(vxCString("ad").Insert(2, "bc")), "adbc");
    EXPECT_EQ(Text(vxCString("ad").Insert(1, "bcx", 2)), "abcd");
    EXPECT_EQ(Text(vxCString("ad").Insert(1, "b\0c", 3)), std::string("ab\0cd", 5));
    EXPECT_EQ(Text(vxCString().Insert(0, "abc")), "abc");
    vxCString theLong("0123456789012345678");
    theLong.Insert(10, "abcdefghij");
    EXPECT_EQ(Text(theLong), "0123456789abcdefghij012345678");
}

TEST(CStringModifyTest, InsertingNothingLeavesTheBlockShared) {
    vxCString theStr("abc");
    const vxCString theCopy(theStr);
    theStr.Insert(1, "");
    theStr.Insert(1, nullptr);
    theStr.Insert(1, nullptr, 4);
    theStr.Insert(1, "x", 0);
    EXPECT_EQ(theStr.c_str(), theCopy.c_str());
}

TEST(CStringModifyTest, AStringMayBeInsertedIntoItself) {
    vxCString theStr("abcd");
    theStr.Insert(2, theStr.c_str());
    EXPECT_EQ(Text(theStr), "ababcdcd");
    theStr.Insert(1, theStr.c_str() + 6, 1);
    EXPECT_EQ(Text(theStr), "acbabcdcd");
}

TEST(CStringModifyTest, EraseCutsItsCount) {
    EXPECT_EQ(Text(vxCString("abcdef").Erase(1, 2)), "adef");
    EXPECT_EQ(Text(vxCString("abcdef").Erase(0, 2)), "cdef");
    EXPECT_EQ(Text(vxCString("abcdef").Erase(4, 2)), "abcd");
    EXPECT_EQ(Text(vxCString("abcdef").Erase(4, npos)), "abcd");
    EXPECT_EQ(Text(vxCString("abcdef").Erase(4, 100)), "abcd");
    EXPECT_EQ(Text(vxCString("abcdef").Erase(6, 1)), "abcdef");
    EXPECT_EQ(Text(vxCString("abcdef").Erase(2, 0)), "abcdef");
    EXPECT_EQ(vxCString("abcdef").Erase(0, npos).c_str(), vxEmptyCString);
    EXPECT_EQ(Text(vxCString("a\0b", 3).Erase(0, 1)), std::string("\0b", 2));
}

TEST(CStringModifyTest, TruncateAndItsLikeCutTheEnd) {
    EXPECT_EQ(Text(vxCString("abc").Truncate(2)), "ab");
    EXPECT_EQ(Text(vxCString("abc").Truncate(3)), "abc");
    vxCString theStr("abc");
    theStr.Empty();
    EXPECT_EQ(theStr.c_str(), vxEmptyCString);
    theStr = "abc";
    theStr.clear();
    EXPECT_EQ(theStr.c_str(), vxEmptyCString);
    theStr.clear();
    theStr.Empty();
    EXPECT_EQ(theStr.c_str(), vxEmptyCString);
}

TEST(CStringModifyTest, APositionBeyondTheTextIsReportedAndCut) {
    vxtest::Reports theReports;
    EXPECT_EQ(Text(vxCString("abc").Insert(4, "x")), "abcx");
    EXPECT_EQ(Text(vxCString("abc").Erase(4, 1)), "abc");
    EXPECT_EQ(Text(vxCString("abc").Truncate(4)), "abc");
    EXPECT_EQ(Text(vxCString("abc").Replace(4, 1, "x", 1)), "abcx");
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kBeyond, kBeyond, kBeyond, kBeyond));
}

TEST(CStringModifyTest, ReplaceByPositionPutsTheNewTextBetweenPrefixAndRest) {
    EXPECT_EQ(Text(vxCString("abcdef").Replace(1, 2, "XYZ", 3)), "aXYZdef");
    EXPECT_EQ(Text(vxCString("abcdef").Replace(1, 2, "X", 1)), "aXdef");
    EXPECT_EQ(Text(vxCString("abcdef").Replace(1, 2, "XY", 2)), "aXYdef");
    EXPECT_EQ(Text(vxCString("abcdef").Replace(0, 6, "X", 1)), "X");
    EXPECT_EQ(Text(vxCString("abcdef").Replace(0, 6, "", 0)), "");
    EXPECT_EQ(Text(vxCString("abcdef").Replace(6, 0, "X", 1)), "abcdefX");
    EXPECT_EQ(Text(vxCString("abcdef").Replace(4, 100, "X", npos)), "abcdX");
    EXPECT_EQ(Text(vxCString("abcdef").Replace(2, 2, nullptr, 5)), "abef");
    vxCString theStr("abcdef");
    theStr.Replace(0, 3, theStr.c_str() + 3, 3);
    EXPECT_EQ(Text(theStr), "defdef");
}

TEST(CStringModifyTest, ReplaceByTextNeverSearchesReplacedText) {
    struct Row {
        const char *mText, *mOld, *mNew;
        bool mAll;
        size_t mCount;
        const char* mResult;
    };
    constexpr Row kRows[] = {
        {"aaa", "a", "aa", true, 3, "aaaaaa"},  {"aaa", "a", "aa", false, 1, "aaaa"},
        {"abcabc", "b", "", true, 2, "acac"},   {"abcabc", "bc", "xyz", true, 2, "axyzaxyz"},
        {"abcabc", "abc", "", true, 2, ""},     {"abcabc", "x", "y", true, 0, "abcabc"},
        {"abcabc", "", "y", true, 0, "abcabc"}, {"", "a", "y", true, 0, ""},
        {"aaaa", "aa", "b", true, 2, "bb"},     {"aaaaa", "aa", "a", true, 2, "aaa"},
        {"abab", "ab", "ba", true, 2, "baba"},  {"xay", "a", "b", false, 1, "xby"},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(testing::Message() << theRow.mText << ": " << theRow.mOld);
        vxCString theStr(theRow.mText);
        EXPECT_EQ(theStr.Replace(theRow.mOld, theRow.mNew, theRow.mAll), theRow.mCount);
        EXPECT_EQ(Text(theStr), theRow.mResult);
    }
    vxCString theStr("abc");
    EXPECT_EQ(theStr.Replace(nullptr, "x", true), 0u);
    EXPECT_EQ(theStr.Replace("b", nullptr, true), 1u);
    EXPECT_EQ(Text(theStr), "ac");
}

TEST(CStringModifyTest, ANulWhereTheSearchGoesOnEndsReplacing) {
    vxCString theFirst("\0aa", 3);
    EXPECT_EQ(theFirst.Replace("a", "b", true), 0u);
    vxCString theBehind("a\0a", 3);
    EXPECT_EQ(theBehind.Replace("a", "b", true), 1u);
    EXPECT_EQ(Text(theBehind), std::string("b\0a", 3));
    vxCString theBetween("ax\0a", 4);
    EXPECT_EQ(theBetween.Replace("a", "b", true), 2u);
    EXPECT_EQ(Text(theBetween), std::string("bx\0b", 4));
}

TEST(CStringModifyTest, ReplaceTakesTextOfTheStringItself) {
    vxCString theStr("abcab");
    EXPECT_EQ(theStr.Replace(theStr.c_str() + 3, theStr.c_str() + 2, true), 2u);
    EXPECT_EQ(Text(theStr), "cabccab");
}

TEST(CStringModifyTest, ReplacingAllAllocatesByTheLogarithmOfTheResult) {
    vxCString theStr(std::string(100000, 'a').c_str());
    vxtest::Allocations theAllocations;
    EXPECT_EQ(theStr.Replace("a", "xyz", true), 100000u);
    EXPECT_EQ(theStr.length(), 300000u);
    EXPECT_LE(theAllocations.Mallocs() + theAllocations.Reallocs(), 5u);
    EXPECT_EQ(Text(theStr.Left(4)), "xyzx");
}

TEST(CStringModifyTest, PadAddsBytesAtEitherEnd) {
    EXPECT_EQ(Text(vxCString("ab").Pad(3, '.', true)), "ab...");
    EXPECT_EQ(Text(vxCString("ab").Pad(3, '.', false)), "...ab");
    EXPECT_EQ(Text(vxCString("ab").Pad(0, '.', true)), "ab");
    EXPECT_EQ(Text(vxCString().Pad(2, '0', false)), "00");
    EXPECT_EQ(Text(vxCString("ab").Pad(100, 'x', false)), std::string(100, 'x') + "ab");
    const vxCString theStr("ab");
    vxCString theCopy(theStr);
    theCopy.Pad(1, '.', true);
    EXPECT_EQ(Text(theStr), "ab");
}

TEST(CStringModifyTest, TrimRemovesWhitespaceAtOneEndOrBoth) {
    struct Row {
        const char *mText, *mLeft, *mRight, *mBoth;
    };
    constexpr Row kRows[] = {
        {" \t\n\v\f\rab c \r\n", "ab c \r\n", " \t\n\v\f\rab c", "ab c"},
        {"abc", "abc", "abc", "abc"},
        {"", "", "", ""},
        {"   ", "", "", ""},
        {" a", "a", " a", "a"},
        {"a ", "a ", "a", "a"},
        {"\xA0 x", "\xA0 x", "\xA0 x", "\xA0 x"},
        {"\x1Fx\x0E", "\x1Fx\x0E", "\x1Fx\x0E", "\x1Fx\x0E"},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        for (const bool theShared : {false, true}) {
            vxCString theLeft(theRow.mText), theRight(theRow.mText), theBoth(theRow.mText);
            const vxCString theSharers[] = {theShared ? theLeft : vxCString(),
                                            theShared ? theRight : vxCString(),
                                            theShared ? theBoth : vxCString()};
            EXPECT_EQ(Text(theLeft.Trim(false)), theRow.mLeft);
            EXPECT_EQ(Text(theRight.Trim(true)), theRow.mRight);
            EXPECT_EQ(Text(theBoth.TrimLeftRight()), theRow.mBoth);
            for (const vxCString& theSharer : theSharers) {
                EXPECT_EQ(Text(theSharer), theShared ? theRow.mText : "");
            }
        }
    }
}

TEST(CStringModifyTest, CaseIsThatOfASCII) {
    const vxCString theText("aAzZ09@[`{\xE4\xC4");
    EXPECT_EQ(Text(theText.Upper()), "AAZZ09@[`{\xE4\xC4");
    EXPECT_EQ(Text(theText.Lower()), "aazz09@[`{\xE4\xC4");
    EXPECT_EQ(Text(theText), "aAzZ09@[`{\xE4\xC4");
    EXPECT_EQ(Text(vxCString("a\0b", 3).Upper()), std::string("A\0B", 3));
    EXPECT_EQ(vxCString().Upper().c_str(), vxEmptyCString);
}

TEST(CStringModifyTest, EveryRunOfWhitespaceBecomesOneBlank) {
    struct Row {
        const char *mText, *mResult;
    };
    constexpr Row kRows[] = {
        {"a  b", "a b"}, {"  a\t\n b  ", " a b "}, {"a\tb", "a b"},     {"   ", " "},
        {"", ""},        {"abc", "abc"},           {"\r\na\r\n", " a "}};
    for (const Row& theRow : kRows) {
        const vxCString theText(theRow.mText);
        EXPECT_EQ(Text(theText.TrimTo1Space()), theRow.mResult);
        EXPECT_EQ(Text(theText), theRow.mText);
    }
}

// Formatting

TEST(CStringModifyTest, PrintfReplacesTheTextAndReturnsItsLength) {
    vxCString theStr("old");
    EXPECT_EQ(theStr.Printf("%s-%d", "abc", 42), 6u);
    EXPECT_EQ(Text(theStr), "abc-42");
    EXPECT_EQ(theStr.Printf("%s", ""), 0u);
    EXPECT_EQ(theStr.c_str(), vxEmptyCString);
    EXPECT_EQ(Text(vxCString::Format("%03d|%x", 7, 255)), "007|ff");
}

TEST(CStringModifyTest, TheSecondAttemptHasExactlyTheReportedSize) {
    struct Row {
        int mLength;
        std::vector<size_t> mSizes;
    };
    const Row kRows[] = {
        {1023, {1025}}, {1024, {1025}}, {1025, {1025, 1026}}, {3000, {1025, 3001}}};
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mLength);
        vxCString theStr;
        sFormatSizes.clear();
        EXPECT_EQ(theStr.Printf("%*d", theRow.mLength, 5), static_cast<size_t>(theRow.mLength));
        EXPECT_EQ(sFormatSizes, theRow.mSizes);
        EXPECT_EQ(Text(theStr), std::string(static_cast<size_t>(theRow.mLength) - 1, ' ') + "5");
    }
}

TEST(CStringModifyTest, AFailingFormatterLeavesWhatWasWritten) {
    vxCString theStr("old");
    sFormatSizes.clear();
    sFormatFails = true;
    EXPECT_EQ(theStr.Printf("%d", 5), 3u);
    sFormatFails = false;
    EXPECT_EQ(Text(theStr), "cut");
    EXPECT_EQ(sFormatSizes, std::vector<size_t>{1025});
}

TEST(CStringModifyTest, TheTextEndsAtTheFirstNul) {
    vxCString theStr;
    EXPECT_EQ(theStr.Printf("ab%ccd", '\0'), 2u);
    EXPECT_EQ(Text(theStr), "ab");
    EXPECT_EQ(theStr.Printf("%2000d%ccd", 1, '\0'), 2000u);
}

TEST(CStringModifyTest, ArgumentsMayComeFromTheStringItself) {
    vxCString theStr("abc");
    theStr.Printf("%s%s", theStr.c_str(), theStr.c_str() + 1);
    EXPECT_EQ(Text(theStr), "abcbc");
    theStr = std::string(2000, 'x').c_str();
    theStr.Printf("<%s>", theStr.c_str());
    EXPECT_EQ(Text(theStr), "<" + std::string(2000, 'x') + ">");
}

namespace {

void FormatTwice(vxCString& aFirst, vxCString& aSecond, const char* aFormat, ...) VX_PRINTF(3, 4);

void FormatTwice(vxCString& aFirst, vxCString& aSecond, const char* aFormat, ...) {
    va_list theArgs;
    va_start(theArgs, aFormat);
    aFirst.PrintfV(aFormat, theArgs);
    aSecond.PrintfV(aFormat, theArgs);
    va_end(theArgs);
}

}  // namespace

TEST(CStringModifyTest, AListOfArgumentsMayBeUsedAgain) {
    vxCString theFirst, theSecond;
    FormatTwice(theFirst, theSecond, "%d %1500s %s", 1, "two", "three");
    EXPECT_EQ(theFirst.length(), 1508u);
    EXPECT_EQ(Text(theFirst), Text(theSecond));
}

// UTF-8

TEST(CStringModifyTest, ValidUTF8IsTold) {
    struct Row {
        const char* mText;
        bool mValid;
    };
    constexpr Row kRows[] = {
        {"", true},
        {"abc", true},
        {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", true},
        {"\xC3", false},
        {"\x80", false},
        {"\xC0\x80", false},
        {"\xED\xA0\x80", false},
        {"\xF4\x90\x80\x80", false},
        {"abcdefgh\xFF", false},
    };
    for (const Row& theRow : kRows) {
        EXPECT_EQ(vxCString(theRow.mText).IsValidUTF8(), theRow.mValid) << theRow.mText;
    }
    EXPECT_TRUE(vxCString("a\0b", 3).IsValidUTF8());
    EXPECT_FALSE(vxCString("a\0\xFF", 3).IsValidUTF8());
}

TEST(CStringModifyTest, ValidateUTF8MendsByItsMode) {
    struct Row {
        const char* mText;
        int mMode;
        const char* mResult;
    };
    constexpr int kEmpty = vxCString::kvxEmpty, kKeep = vxCString::kvxKeep,
                  kValid = vxCString::kvxKeepValid, kPrintable = vxCString::kvxKeepPrintable;
    constexpr Row kRows[] = {
        {"ab\xFF"
         "c",
         kEmpty, ""},
        {"abc\xC3\xA4", kEmpty, "abc\xC3\xA4"},
        {"ab\xFF"
         "c",
         kKeep,
         "ab\xFF"
         "c"},
        {"ab\xFF"
         "c",
         0,
         "ab\xFF"
         "c"},
        {"ab\xFF"
         "c",
         kValid, "abc"},
        {"\xC3"
         "a\xE2\x82"
         "b\xC3\xA4",
         kValid, "ab\xC3\xA4"},
        {"\xFF\xFE", kValid, ""},
        {"ab\xFF"
         "c",
         kEmpty | kValid, ""},
        {"a\tb\nc\x7F"
         "d",
         kPrintable, "abcd"},
        {"a\tb", kValid, "a\tb"},
        {"a\tb\xFF", kValid | kPrintable, "ab"},
        {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", kPrintable,
         "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"},
        // A broken sequence takes as many bytes as its lead byte announces.
        {"\xC3"
         "ab",
         kPrintable, "b"},
        {"\xE2\x82"
         "abc",
         kPrintable, "bc"},
        {"\xE2"
         "abc",
         kPrintable, "c"},
        {"\xF0\x9F\x98"
         "abc",
         kPrintable, "bc"},
        // Cut short by the end.
        {"ab\xC3", kPrintable, "ab"},
        {"ab\xE2\x82", kPrintable, "ab"},
        {"ab\xF0\x9F\x98", kPrintable, "ab"},
        {"ab\xF0"
         "c",
         kPrintable, "ab"},
        // Other bytes stay.
        {"a\x80"
         "b\xBF"
         "c\xFF\xF8",
         kPrintable,
         "a\x80"
         "b\xBF"
         "c\xFF\xF8"},
        {"\xC0\x80", kPrintable, "\xC0\x80"},
        {" ~\x1F", kPrintable, " ~"},
        {"\x01\x02", kPrintable, ""},
    };
    for (size_t i = 0; i < std::size(kRows); i++) {
        const Row& theRow = kRows[i];
        SCOPED_TRACE(testing::Message() << "row " << i);
        vxCString theStr(theRow.mText);
        const vxCString theCopy(theStr);
        EXPECT_EQ(&theStr.ValidateUTF8(theRow.mMode), &theStr);
        EXPECT_EQ(Text(theStr), theRow.mResult);
        EXPECT_EQ(Text(theCopy), theRow.mText);
        if (Text(theStr) == theRow.mText) {
            EXPECT_EQ(theStr.c_str(), theCopy.c_str());
        }
    }
    EXPECT_EQ(Text(vxCString("a\0b", 3).ValidateUTF8(kPrintable)), "ab");
}

// Wide text

TEST(CStringModifyTest, WideTextIsConvertedBothWays) {
    EXPECT_STREQ(vxCString("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80").ToWideChar(),
                 L"a\u00E4\u20AC\U0001F600");
    EXPECT_STREQ(vxCString().ToWideChar(), L"");
    EXPECT_STREQ(vxCString("a\xFF"
                           "b")
                     .ToWideChar(),
                 L"ab");
    EXPECT_EQ(Text(vxCString::FromWideChar(L"a\u00E4\u20AC\U0001F600")),
              "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(vxCString::FromWideChar(L"").c_str(), vxEmptyCString);
    EXPECT_EQ(vxCString::FromWideChar(nullptr).c_str(), vxEmptyCString);
}
