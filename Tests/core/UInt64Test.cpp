#include "vx/UInt64.h"

#include <gmock/gmock.h>

#include "support/Reports.h"
#include "vx/CString.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Constants are there before any initialization at load time runs.
static_assert(kvxuint64_Max.ToUInt64() == 0xffffffffffffffff, "");
static_assert(kvxuint64_0.ToUInt64() == 0, "");
static_assert(kvxuint64_max == 0xffffffffffffffff, "");
static_assert(kvxuint32_max == 0xffffffff, "");

TEST(UInt64Test, EveryIntegerConverts) {
    vxtest::Reports theReports;
    EXPECT_EQ(vxuint64().ToUInt64(), 0u);
    EXPECT_EQ(vxuint64(7).ToUInt64(), 7u);
    EXPECT_EQ(vxuint64(7L).ToUInt64(), 7u);
    EXPECT_EQ(vxuint64(7LL).ToUInt64(), 7u);
    EXPECT_EQ(vxuint64(0xffffffffU).ToUInt64(), 0xffffffffu);
    EXPECT_EQ(vxuint64(7UL).ToUInt64(), 7u);
    EXPECT_EQ(vxuint64(0xffffffffffffffffULL).ToUInt64(), 0xffffffffffffffffu);
    EXPECT_EQ(vxuint64(vxULongLong{1, 2}).ToUInt64(), 0x200000001u);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(UInt64Test, NegativeIntegersAreReportedAndSignExtended) {
    vxtest::Reports theReports;
    EXPECT_EQ(vxuint64(-1).ToUInt64(), 0xffffffffffffffffu);
    EXPECT_EQ(vxuint64(-2L).ToUInt64(), 0xfffffffffffffffeu);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("aValue >= 0", "aValue >= 0"));
}

TEST(UInt64Test, WordsComeHighFirst) {
    vxuint64 theNumber;
    theNumber.Init(2, 1);
    EXPECT_EQ(theNumber.ToUInt64(), 0x200000001u);
    theNumber.Init(vxULongLong{3, 4});
    EXPECT_EQ(theNumber.ToUInt64(), 0x400000003u);
    EXPECT_EQ(theNumber.ToULongLong().mLow, 3u);
    EXPECT_EQ(theNumber.ToULongLong().mHigh, 4u);
}

TEST(UInt64Test, ArithmeticIsModulo64Bits) {
    vxuint64 theNumber = 10;
    theNumber += 5;
    EXPECT_TRUE(theNumber == 15);
    theNumber -= 20L;
    EXPECT_TRUE(theNumber == 0xfffffffffffffffbULL);
    theNumber += vxuint64(6U);
    EXPECT_TRUE(theNumber == 1);

    const vxuint64 theLarge = 0x100000000ULL;
    EXPECT_EQ((theLarge + 1L).ToUInt64(), 0x100000001u);
    EXPECT_EQ((theLarge - vxuint64(1)).ToUInt64(), 0xffffffffu);
    EXPECT_EQ((theLarge * theLarge).ToUInt64(), 0u);
    EXPECT_EQ((theLarge * 3L).ToUInt64(), 0x300000000u);
    EXPECT_EQ((theLarge / 3L).ToUInt64(), 0x55555555u);
    EXPECT_EQ((theLarge % 3L).ToUInt64(), 1u);
    EXPECT_EQ((kvxuint64_Max + 1L).ToUInt64(), 0u);
}

TEST(UInt64Test, ShiftsOf64BitsAndMoreGiveZero) {
    EXPECT_EQ((vxuint64(1) << 63L).ToUInt64(), 0x8000000000000000u);
    EXPECT_EQ((vxuint64(1) << 64L).ToUInt64(), 0u);
    EXPECT_EQ((vxuint64(1) << 0L).ToUInt64(), 1u);
    EXPECT_EQ((kvxuint64_Max >> 63L).ToUInt64(), 1u);
    EXPECT_EQ((kvxuint64_Max >> vxuint64(64)).ToUInt64(), 0u);
    EXPECT_EQ((kvxuint64_Max >> kvxuint64_Max).ToUInt64(), 0u);
}

TEST(UInt64Test, DivisionByZeroIsReportedAndGivesZero) {
    vxtest::Reports theReports;
    EXPECT_EQ((vxuint64(5) / 0L).ToUInt64(), 0u);
    EXPECT_EQ((vxuint64(5) % kvxuint64_0).ToUInt64(), 0u);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("aValue.mValue != 0", "aValue.mValue != 0"));
}

TEST(UInt64Test, ComparesUnsigned) {
    const vxuint64 theSmall = 0x7fffffffffffffffULL;
    const vxuint64 theLarge = 0x8000000000000000ULL;
    EXPECT_TRUE(theSmall < theLarge);
    EXPECT_FALSE(theLarge < theSmall);
    EXPECT_FALSE(theSmall < theSmall);
    EXPECT_TRUE(theSmall <= theSmall);
    EXPECT_TRUE(theSmall <= theLarge);
    EXPECT_FALSE(theLarge <= theSmall);
    EXPECT_TRUE(theLarge > theSmall);
    EXPECT_FALSE(theLarge > theLarge);
    EXPECT_TRUE(theLarge >= theLarge);
    EXPECT_FALSE(theSmall >= theLarge);
    EXPECT_TRUE(theSmall == theSmall);
    EXPECT_FALSE(theSmall == theLarge);
    EXPECT_TRUE(theSmall != theLarge);
    EXPECT_FALSE(theSmall != theSmall);
}

TEST(UInt64Test, LowWordOfALargeNumberIsReportedAndReturned) {
    vxtest::Reports theReports;
    EXPECT_EQ(vxuint64(0xffffffffU).ToUInt32(), 0xffffffffu);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_EQ(vxuint64(0x100000002ULL).ToUInt32(), 2u);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mValue <= kvxuint32_max"));
}

TEST(UInt64Test, FileOffsetEndsAtTheLargestSignedNumber) {
    EXPECT_EQ(vxuint64(5).ToFileOffset(), 5);
    EXPECT_EQ(vxuint64(0x7fffffffffffffffULL).ToFileOffset(), 0x7fffffffffffffff);
    EXPECT_EQ(vxuint64(0x8000000000000000ULL).ToFileOffset(), 0x7fffffffffffffff);
    EXPECT_EQ(kvxuint64_Max.ToFileOffset(), 0x7fffffffffffffff);
}

TEST(UInt64Test, WritesDecimalText) {
    EXPECT_STREQ(kvxuint64_0.ToCString().c_str(), "0");
    EXPECT_STREQ(vxuint64(4294967296ULL).ToCString().c_str(), "4294967296");
    EXPECT_STREQ(kvxuint64_Max.ToCString().c_str(), "18446744073709551615");
}

TEST(UInt64Test, ReadsDecimalTextOrGivesTheDefault) {
    EXPECT_EQ(vxuint64::FromString("0", 5).ToUInt64(), 0u);
    EXPECT_EQ(vxuint64::FromString("18446744073709551615", 5).ToUInt64(), 0xffffffffffffffffu);
    EXPECT_EQ(vxuint64::FromString("18446744073709551616", 5).ToUInt64(), 5u);
    EXPECT_EQ(vxuint64::FromString("", 5).ToUInt64(), 5u);
    EXPECT_EQ(vxuint64::FromString("12x", 5).ToUInt64(), 5u);
    EXPECT_EQ(vxuint64::FromString("-1", 5).ToUInt64(), 5u);
    EXPECT_EQ(vxuint64::FromString(NULL, kvxuint64_Max).ToUInt64(), 0xffffffffffffffffu);
}

}  // namespace
