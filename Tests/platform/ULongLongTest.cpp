#include <libteskTools/ULongLong.h>

#include <gmock/gmock.h>

namespace {

vxULongLong Number(uint32_t aHigh, uint32_t aLow) {
    vxULongLong theNumber;
    vxULongLong_Set(&theNumber, aHigh, aLow);
    return theNumber;
}

void ExpectWords(const vxULongLong& aNumber, uint32_t aHigh, uint32_t aLow) {
    EXPECT_EQ(aNumber.mHigh, aHigh);
    EXPECT_EQ(aNumber.mLow, aLow);
}

struct TextCase {
    const char* mText;
    uint32_t mHigh;
    uint32_t mLow;
};

TEST(ULongLongTest, LowWordComesFirst) {
    const vxULongLong theNumber = {1, 2};
    ExpectWords(theNumber, 2, 1);
    EXPECT_EQ(sizeof(vxULongLong), 8u);
}

TEST(ULongLongTest, ReadsWholeNumbers) {
    constexpr TextCase kCases[] = {
        {"0", 0, 0},
        {"1", 0, 1},
        {"+7", 0, 7},
        {"0010", 0, 10},
        {"4294967295", 0, 0xffffffff},
        {"4294967296", 1, 0},
        {"18446744073709551615", 0xffffffff, 0xffffffff},
    };
    for (const TextCase& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxULongLong theNumber = Number(5, 6);
        EXPECT_TRUE(vxULongLong_SetFromString(&theNumber, theCase.mText));
        ExpectWords(theNumber, theCase.mHigh, theCase.mLow);
    }
}

TEST(ULongLongTest, RefusesOtherTextsAndKeepsTheNumber) {
    for (const char* theText : {"", "-1", "-0", "+", "++1", "+-1", " 1", "1 ", "1x", "0x10", "1.0",
                                "18446744073709551616", "99999999999999999999999"}) {
        SCOPED_TRACE(theText);
        vxULongLong theNumber = Number(5, 6);
        EXPECT_FALSE(vxULongLong_SetFromString(&theNumber, theText));
        ExpectWords(theNumber, 5, 6);
    }
    vxULongLong theNumber = Number(5, 6);
    EXPECT_FALSE(vxULongLong_SetFromString(&theNumber, NULL));
    ExpectWords(theNumber, 5, 6);
}

TEST(ULongLongTest, AdditionCarriesIntoTheHighWord) {
    vxULongLong theNumber = Number(1, 0xffffffff);
    vxULongLong_AddUInt32(&theNumber, 1);
    ExpectWords(theNumber, 2, 0);
    vxULongLong_AddUInt32(&theNumber, 0xffffffff);
    ExpectWords(theNumber, 2, 0xffffffff);

    vxULongLong theLargest = Number(0xffffffff, 0xffffffff);
    vxULongLong_AddUInt32(&theLargest, 2);
    ExpectWords(theLargest, 0, 1);
}

TEST(ULongLongTest, SubtractionBorrowsFromTheHighWord) {
    vxULongLong theNumber = Number(2, 0);
    const vxULongLong theOne = Number(0, 1);
    vxULongLong_Sub(&theNumber, &theOne);
    ExpectWords(theNumber, 1, 0xffffffff);
    vxULongLong_Sub(&theNumber, &theNumber);
    ExpectWords(theNumber, 0, 0);
    vxULongLong_Sub(&theNumber, &theOne);
    ExpectWords(theNumber, 0xffffffff, 0xffffffff);
}

TEST(ULongLongTest, ComparesHighWordsBeforeLowOnes) {
    const vxULongLong theSmall = Number(1, 0xffffffff);
    const vxULongLong theLarge = Number(2, 0);

    EXPECT_TRUE(vxULongLong_Less(&theSmall, &theLarge));
    EXPECT_FALSE(vxULongLong_Less(&theLarge, &theSmall));
    EXPECT_FALSE(vxULongLong_Less(&theSmall, &theSmall));
    EXPECT_TRUE(vxULongLong_LessOrEqual(&theSmall, &theLarge));
    EXPECT_FALSE(vxULongLong_LessOrEqual(&theLarge, &theSmall));
    EXPECT_TRUE(vxULongLong_LessOrEqual(&theSmall, &theSmall));
}

}  // namespace
