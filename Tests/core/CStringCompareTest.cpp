// Comparison, checks, numbers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/Reports.h"
#include "support/Text.h"
#include "vx/CString.h"

using testing::ElementsAre;

namespace {

int Sign(int aValue) {
    return (aValue > 0) - (aValue < 0);
}

}  // namespace

TEST(CStringCompareTest, BytesDecideThenTheLength) {
    struct Row {
        const char *mLeft, *mRight;
        int mOrder;
    };
    constexpr Row kRows[] = {{"", "", 0},       {"a", "", 1},       {"", "a", -1},
                             {"abc", "abc", 0}, {"abc", "abd", -1}, {"abd", "abc", 1},
                             {"ab", "abc", -1}, {"abc", "ab", 1},   {"a", "\xFF", -1},
                             {"B", "a", -1}};
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(testing::Message() << theRow.mLeft << " / " << theRow.mRight);
        const vxCString theLeft(theRow.mLeft);
        const vxCString theRight(theRow.mRight);
        EXPECT_EQ(Sign(theLeft.Compare(theRight)), theRow.mOrder);
        EXPECT_EQ(Sign(theLeft.Compare(theRow.mRight)), theRow.mOrder);
        EXPECT_EQ(theLeft == theRight, theRow.mOrder == 0);
        EXPECT_EQ(theLeft != theRight, theRow.mOrder != 0);
        EXPECT_EQ(theLeft == theRow.mRight, theRow.mOrder == 0);
        EXPECT_EQ(theLeft != theRow.mRight, theRow.mOrder != 0);
        EXPECT_EQ(theRow.mLeft == theRight, theRow.mOrder == 0);
        EXPECT_EQ(theRow.mLeft != theRight, theRow.mOrder != 0);
        EXPECT_EQ(theLeft < theRight, theRow.mOrder < 0);
    }
}

TEST(CStringCompareTest, TheShorterIsSmallerByExactlyOne) {
    EXPECT_EQ(vxCString("ab").Compare(vxCString("abc")), -1);
    EXPECT_EQ(vxCString("abc").Compare(vxCString("ab")), 1);
    EXPECT_EQ(vxCString("ab\0c", 4).Compare(vxCString("ab", 2)), 1);
}

TEST(CStringCompareTest, NulsTakePartBetweenStringsAndEndTexts) {
    const vxCString theLeft("a\0b", 3);
    EXPECT_LT(theLeft.Compare(vxCString("a\0c", 3)), 0);
    EXPECT_FALSE(theLeft == vxCString("a"));
    EXPECT_TRUE(theLeft == "a");
    EXPECT_EQ(theLeft.Compare("a"), 0);
}

TEST(CStringCompareTest, ANullTextIsReportedAndCountsAsEmpty) {
    const char* const theNull = nullptr;
    vxtest::Reports theReports;
    EXPECT_GT(vxCString("a").Compare(theNull), 0);
    EXPECT_EQ(vxCString().Compare(theNull), 0);
    EXPECT_TRUE(vxCString() == theNull);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("aStr != NULL", "aStr != NULL", "aStr != NULL"));
    EXPECT_EQ(vxCString("a").CompareNoCase(theNull), 1);
    EXPECT_EQ(vxCString().CompareNoCase(theNull), 0);
}

TEST(CStringCompareTest, WithoutCaseTheResultIsExactlyMinus1Or0Or1) {
    struct Row {
        const char *mLeft, *mRight;
        int mOrder;
    };
    constexpr Row kRows[] = {
        {"ABC", "abcd", -1},
        {"abcd", "ABC", 1},
        {"ABC", "abc", 0},
        {"", "", 0},
        {"a", "", 1},
        {"", "A", -1},
        {"a", "Z", -1},
        {"Z", "a", 1},
        {"a", "z", -1},
        {"[", "a", -1},
        {"_", "A", -1},
        {"A", "_", 1},
        {"\xE4", "\xC4", 1},
        {"a", "\xFF", -1},
        {"Title 9", "tITLE 9", 0},
        {"0123456789abcdefX", "0123456789ABCDEFy", -1},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(testing::Message() << theRow.mLeft << " / " << theRow.mRight);
        EXPECT_EQ(vxCString(theRow.mLeft).CompareNoCase(vxCString(theRow.mRight)), theRow.mOrder);
        EXPECT_EQ(vxCString(theRow.mLeft).CompareNoCase(theRow.mRight), theRow.mOrder);
    }
    EXPECT_EQ(vxCString("a\0B", 3).CompareNoCase(vxCString("A\0c", 3)), -1);
}

TEST(CStringCompareTest, ChecksLookAtEveryByte) {
    struct Row {
        const char* mText;
        bool mNumbers, mHexa;
    };
    constexpr Row kRows[] = {
        {"", true, true},      {"0123456789", true, true}, {"abcdefABCDEF", false, true},
        {"12g", false, false}, {"/", false, false},        {":", false, false},
        {"@", false, false},   {"G", false, false},        {"`", false, false},
        {"-1", false, false},  {" 1", false, false},       {"1.0", false, false}};
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        EXPECT_EQ(vxCString(theRow.mText).HasOnlyNumbers(), theRow.mNumbers);
        EXPECT_EQ(vxCString(theRow.mText).HasOnlyHexa(), theRow.mHexa);
    }
    EXPECT_FALSE(vxCString("1\0", 2).HasOnlyNumbers());
}

TEST(CStringCompareTest, NumbersKeepToTheirTypesLimits) {
    int8_t theInt8 = 1;
    EXPECT_TRUE(vxCString("-128").ToInt8(&theInt8));
    EXPECT_EQ(theInt8, -128);
    EXPECT_TRUE(vxCString("127").ToInt8(&theInt8));
    EXPECT_FALSE(vxCString("128").ToInt8(&theInt8));
    EXPECT_FALSE(vxCString("-129").ToInt8(&theInt8));
    EXPECT_EQ(theInt8, 127);
    int16_t theInt16 = 1;
    EXPECT_TRUE(vxCString("-32768").ToInt16(&theInt16));
    EXPECT_FALSE(vxCString("32768").ToInt16(&theInt16));
    EXPECT_EQ(theInt16, -32768);
    uint8_t theUInt8 = 1;
    EXPECT_TRUE(vxCString("255").ToUInt8(&theUInt8));
    EXPECT_FALSE(vxCString("256").ToUInt8(&theUInt8));
    EXPECT_FALSE(vxCString("-1").ToUInt8(&theUInt8));
    EXPECT_EQ(theUInt8, 255);
    uint16_t theUInt16 = 1;
    EXPECT_TRUE(vxCString("65535").ToUInt16(&theUInt16));
    EXPECT_FALSE(vxCString("65536").ToUInt16(&theUInt16));
    EXPECT_EQ(theUInt16, 65535);
    int32_t theInt32 = 1;
    EXPECT_TRUE(vxCString("-2147483648").ToInt32(&theInt32));
    EXPECT_FALSE(vxCString("2147483648").ToInt32(&theInt32));
    EXPECT_EQ(theInt32, std::numeric_limits<int32_t>::min());
    uint32_t theUInt32 = 1;
    EXPECT_TRUE(vxCString("4294967295").ToUInt32(&theUInt32));
    EXPECT_FALSE(vxCString("4294967296").ToUInt32(&theUInt32));
    EXPECT_EQ(theUInt32, 4294967295u);
    int64_t theInt64 = 1;
    EXPECT_TRUE(vxCString("-9223372036854775808").ToInt64(&theInt64));
    EXPECT_FALSE(vxCString("9223372036854775808").ToInt64(&theInt64));
    EXPECT_EQ(theInt64, std::numeric_limits<int64_t>::min());
    uint64_t theUInt64 = 1;
    EXPECT_TRUE(vxCString("18446744073709551615").ToUInt64(&theUInt64));
    EXPECT_FALSE(vxCString("18446744073709551616").ToUInt64(&theUInt64));
    EXPECT_EQ(theUInt64, 18446744073709551615u);
}

TEST(CStringCompareTest, NumbersTakeABase) {
    int32_t theInt32 = 0;
    EXPECT_TRUE(vxCString("-ff").ToInt32(&theInt32, 16));
    EXPECT_EQ(theInt32, -255);
    uint32_t theUInt32 = 0;
    EXPECT_TRUE(vxCString("0x1F").ToUInt32(&theUInt32, 0));
    EXPECT_EQ(theUInt32, 31u);
    int64_t theInt64 = 0;
    EXPECT_TRUE(vxCString("017").ToInt64(&theInt64, 0));
    EXPECT_EQ(theInt64, 15);
    uint64_t theUInt64 = 0;
    EXPECT_TRUE(vxCString("1010").ToUInt64(&theUInt64, 2));
    EXPECT_EQ(theUInt64, 10u);
    EXPECT_FALSE(vxCString("12").ToUInt64(&theUInt64, 2));
}

TEST(CStringCompareTest, TheWholeTextMustBeANumber) {
    for (const char* theText : {"", " 1", "1 ", "1x", "+", "-", "--1", "0x1", "1.5"}) {
        SCOPED_TRACE(theText);
        int32_t theInt32 = 77;
        EXPECT_FALSE(vxCString(theText).ToInt32(&theInt32));
        EXPECT_EQ(theInt32, 77);
    }
    int32_t theInt32 = 77;
    EXPECT_FALSE(vxCString("12\0", 3).ToInt32(&theInt32));
    EXPECT_EQ(theInt32, 77);
    EXPECT_TRUE(vxCString("+12").ToInt32(&theInt32));
    EXPECT_EQ(theInt32, 12);
}

TEST(CStringCompareTest, RealNumbersAreDecimal) {
    double theValue = 7;
    EXPECT_TRUE(vxCString("-1.5e3").ToDouble(&theValue));
    EXPECT_EQ(theValue, -1500);
    for (const char* theText : {"", "inf", "nan", "0x1p3", "1e999", " 1", "1 ", "."}) {
        EXPECT_FALSE(vxCString(theText).ToDouble(&theValue)) << theText;
    }
    EXPECT_FALSE(vxCString("1\0", 2).ToDouble(&theValue));
    EXPECT_EQ(theValue, -1500);
}
