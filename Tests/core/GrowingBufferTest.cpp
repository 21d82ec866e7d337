#include "vx/GrowingBuffer.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

#include "support/Reports.h"
#include "support/ScriptedMemory.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct GrowthCase {
    size_t mPos;
    size_t mLength;
    size_t mCapacity;
};

// Bytes written, bytes to add, capacity wanted: both sides of every edge between two steps.
constexpr GrowthCase kGrowthCases[] = {
    {0, 0, 128},
    {0, 1, 128},
    {0, 127, 128},
    {0, 128, 256},
    {1000, 100, 1128},
    {1023, 1, 1151},
    {1024, 1, 2048},
    {2000, 5000, 7120},
    {8191, 1, 9215},
    {8192, 1, 16384},
    {131071, 1, 139263},
    {131072, 1, 163840},
    {524287, 1, 557055},
    {524288, 1, 655360},
    {524288, 131071, 655360},
    {524288, 131072, 786432},
};

std::string Text(const vxGrowingBuffer& aBuffer) {
    return std::string(aBuffer.data() == NULL ? "" : aBuffer.data(), aBuffer.GetPosition());
}

void Fill(vxGrowingBuffer& aBuffer, size_t aLength) {
    const std::string theText(aLength, 'x');
    aBuffer.Append(theText.data(), theText.size());
}

size_t ExactSize(size_t aPos, size_t aLength) {
    return aPos + aLength;
}

size_t TooSmallSize(size_t, size_t) {
    return 1;
}

TEST(GrowingBufferTest, CapacityRisesByWholeStepsAboveThePosition) {
    for (const GrowthCase& theCase : kGrowthCases) {
        SCOPED_TRACE(testing::Message() << theCase.mPos << " + " << theCase.mLength);
        EXPECT_EQ(vxGrowingBuffer_NewBufferSize(theCase.mPos, theCase.mLength), theCase.mCapacity);
    }
}

TEST(GrowingBufferTest, CapacityBeyondASizeIsTheLargest) {
    EXPECT_EQ(vxGrowingBuffer_NewBufferSize(SIZE_MAX - 131072, 1), SIZE_MAX);
    EXPECT_EQ(vxGrowingBuffer_NewBufferSize(SIZE_MAX - 131073, 1), SIZE_MAX - 1);
    EXPECT_EQ(vxGrowingBuffer_NewBufferSize(SIZE_MAX, SIZE_MAX), SIZE_MAX);
    EXPECT_EQ(vxGrowingBuffer_NewBufferSize(1000, SIZE_MAX), SIZE_MAX);
}

TEST(GrowingBufferTest, InitialSizeOfZeroAllocatesNothing) {
    vxGrowingBuffer theBuffer(0);
    EXPECT_EQ(theBuffer.data(), nullptr);
    EXPECT_EQ(theBuffer.size(), 0u);
    EXPECT_EQ(theBuffer.GetPosition(), 0u);
}

TEST(GrowingBufferTest, InitialSizeIsReserved) {
    vxGrowingBuffer theBuffer(300);
    EXPECT_NE(theBuffer.data(), nullptr);
    EXPECT_EQ(theBuffer.size(), 300u);
    EXPECT_EQ(theBuffer.GetPosition(), 0u);
}

TEST(GrowingBufferTest, FirstByteAllocatesTheFirstStep) {
    vxGrowingBuffer theBuffer(0);
    theBuffer.Append("a", 1);
    EXPECT_EQ(theBuffer.size(), 128u);
    EXPECT_EQ(Text(theBuffer), "a");
}

TEST(GrowingBufferTest, FullBufferGrowsFromItsPosition) {
    vxGrowingBuffer theBuffer(1000);
    Fill(theBuffer, 1000);
    EXPECT_EQ(theBuffer.size(), 1000u);
    Fill(theBuffer, 100);
    EXPECT_EQ(theBuffer.size(), 1128u);
    EXPECT_EQ(theBuffer.GetPosition(), 1100u);

    vxGrowingBuffer theLarger(2000);
    Fill(theLarger, 2000);
    Fill(theLarger, 5000);
    EXPECT_EQ(theLarger.size(), 7120u);
}

TEST(GrowingBufferTest, FillingTheCapacityExactlyDoesNotGrow) {
    vxGrowingBuffer theBuffer(0);
    Fill(theBuffer, 1);
    const int theCount = vxtest::ReallocCount();
    Fill(theBuffer, 127);
    EXPECT_EQ(theBuffer.size(), 128u);
    EXPECT_EQ(vxtest::ReallocCount(), theCount);
    Fill(theBuffer, 1);
    EXPECT_EQ(theBuffer.size(), 256u);
    EXPECT_EQ(vxtest::ReallocCount(), theCount + 1);
}

TEST(GrowingBufferTest, AppendsBytesIncludingZerosAndNoNUL) {
    vxGrowingBuffer theBuffer(0);
    theBuffer.Append("a\0b", 3);
    theBuffer.Append("cd", 1);
    theBuffer.Append("", 0);
    EXPECT_EQ(Text(theBuffer), std::string("a\0bc", 4));
}

TEST(GrowingBufferTest, AppendingNothingToNothingAllocatesNothing) {
    vxGrowingBuffer theBuffer(0);
    theBuffer.Append("", 0);
    theBuffer += "";
    EXPECT_EQ(theBuffer.data(), nullptr);
}

TEST(GrowingBufferTest, NullSourceIsReportedOnceEvenForNoBytes) {
    vxtest::Reports theReports;
    vxGrowingBuffer theBuffer(0);

    theBuffer.Append(NULL, 0);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("aPtr != NULL"));
    theBuffer.Append(NULL, 5);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("aPtr != NULL", "aPtr != NULL"));

    EXPECT_EQ(theBuffer.GetPosition(), 0u);
    EXPECT_EQ(theBuffer.data(), nullptr);
}

TEST(GrowingBufferTest, NullTextIsReportedOnce) {
    vxtest::Reports theReports;
    vxGrowingBuffer theBuffer(0);
    const char* theText = NULL;

    theBuffer += theText;

    EXPECT_THAT(theReports.Assertions(), ElementsAre("aStr != NULL"));
    EXPECT_EQ(theBuffer.GetPosition(), 0u);
}

TEST(GrowingBufferTest, TextsAndNumbersAreAppendedInARow) {
    vxGrowingBuffer theBuffer(0);
    ((((theBuffer += "a=") += 0U) += " b=") += 4294967295U) += " c";
    EXPECT_EQ(Text(theBuffer), "a=0 b=4294967295 c");
}

TEST(GrowingBufferTest, AnotherSizeFunctionChoosesTheCapacity) {
    vxGrowingBuffer theBuffer(0);
    theBuffer.SetNewBufferSizeFunc(ExactSize);
    Fill(theBuffer, 7);
    EXPECT_EQ(theBuffer.size(), 7u);
    Fill(theBuffer, 5);
    EXPECT_EQ(theBuffer.size(), 12u);
}

TEST(GrowingBufferTest, NullSizeFunctionIsReportedAndTheOldOneStays) {
    vxtest::Reports theReports;
    vxGrowingBuffer theBuffer(0);
    theBuffer.SetNewBufferSizeFunc(ExactSize);

    theBuffer.SetNewBufferSizeFunc(NULL);

    EXPECT_THAT(theReports.Assertions(), ElementsAre("aNewBufferSizeFunc != NULL"));
    Fill(theBuffer, 7);
    EXPECT_EQ(theBuffer.size(), 7u);
}

TEST(GrowingBufferTest, SizeFunctionThatAsksForTooLittleLosesOnlyTheNewBytes) {
    vxGrowingBuffer theBuffer(4);
    theBuffer += "abcd";
    theBuffer.SetNewBufferSizeFunc(TooSmallSize);
    theBuffer += "efgh";
    EXPECT_EQ(Text(theBuffer), "abcd");
}

TEST(GrowingBufferTest, PositionMovesWithinTheCapacityWithoutGrowing) {
    vxGrowingBuffer theBuffer(0);
    theBuffer += "abcdef";
    theBuffer.SetPosition(2);
    EXPECT_EQ(theBuffer.size(), 128u);
    theBuffer += "X";
    EXPECT_EQ(Text(theBuffer), "abX");
    theBuffer.SetPosition(6);
    EXPECT_EQ(Text(theBuffer), "abXdef");
    theBuffer.SetPosition(128);
    EXPECT_EQ(theBuffer.size(), 128u);
}

TEST(GrowingBufferTest, PositionBeyondTheCapacityGrowsItToExactlyThere) {
    vxGrowingBuffer theBuffer(0);
    theBuffer += "abc";
    theBuffer.SetPosition(129);
    EXPECT_EQ(theBuffer.size(), 129u);
    EXPECT_EQ(theBuffer.GetPosition(), 129u);
    EXPECT_EQ(memcmp(theBuffer.data(), "abc", 3), 0);
}

TEST(GrowingBufferTest, ReduceCutsTheBlockAndEndsThere) {
    vxGrowingBuffer theBuffer(0);
    theBuffer += "abcdef";
    theBuffer.Reduce(4);
    EXPECT_EQ(theBuffer.size(), 4u);
    EXPECT_EQ(Text(theBuffer), "abcd");
    theBuffer.Reduce(0);
    EXPECT_EQ(theBuffer.size(), 0u);
    EXPECT_EQ(Text(theBuffer), "");
}

TEST(GrowingBufferTest, ReduceMovesThePositionForwardsToo) {
    vxGrowingBuffer theBuffer(0);
    theBuffer += "abc";
    theBuffer.Reduce(10);
    EXPECT_EQ(theBuffer.size(), 10u);
    EXPECT_EQ(theBuffer.GetPosition(), 10u);
}

TEST(GrowingBufferTest, ReallocKeepsThePositionWithinTheBlock) {
    vxGrowingBuffer theBuffer(0);
    theBuffer += "abcdef";
    theBuffer.Realloc(1000);
    EXPECT_EQ(theBuffer.size(), 1000u);
    EXPECT_EQ(Text(theBuffer), "abcdef");
    theBuffer.Realloc(4);
    EXPECT_EQ(theBuffer.size(), 4u);
    EXPECT_EQ(Text(theBuffer), "abcd");
}

TEST(GrowingBufferTest, TakingOwnershipShrinksTheBlockOnRequest) {
    vxGrowingBuffer theBuffer(0);
    theBuffer += "0123456789";
    ASSERT_EQ(theBuffer.size(), 128u);
    const int theCount = vxtest::ReallocCount();
    size_t theLength = 0;

    char* theBlock = theBuffer.TakeOwnership(true, &theLength);

    EXPECT_EQ(theLength, 10u);
    EXPECT_EQ(std::string(theBlock, theLength), "0123456789");
    EXPECT_EQ(vxtest::ReallocCount(), theCount + 1);
    EXPECT_EQ(theBuffer.data(), nullptr);
    EXPECT_EQ(theBuffer.size(), 0u);
    EXPECT_EQ(theBuffer.GetPosition(), 0u);
    free(theBlock);
}

TEST(GrowingBufferTest, TakingOwnershipWithoutShrinkingKeepsTheBlock) {
    vxGrowingBuffer theBuffer(0);
    theBuffer += "abc";
    char* theInside = theBuffer.data();
    const int theCount = vxtest::ReallocCount();

    char* theBlock = theBuffer.TakeOwnership(false, NULL);

    EXPECT_EQ(theBlock, theInside);
    EXPECT_EQ(vxtest::ReallocCount(), theCount);
    free(theBlock);
    theBuffer += "again";
    EXPECT_EQ(Text(theBuffer), "again");
}

TEST(GrowingBufferTest, TakingOwnershipOfNothingGivesNull) {
    vxGrowingBuffer theBuffer(0);
    size_t theLength = 99;
    EXPECT_EQ(theBuffer.TakeOwnership(true, &theLength), nullptr);
    EXPECT_EQ(theLength, 0u);
}

TEST(GrowingBufferTest, LackOfMemoryIsReportedAndKeepsWhatIsWritten) {
    vxtest::Reports theReports;
    vxGrowingBuffer theBuffer(4);
    theBuffer += "abcd";
    {
        vxtest::NoMemory theNoMemory;
        theBuffer += "e";
        theBuffer.SetPosition(50);
        theBuffer.Realloc(60);
        const volatile size_t theHugeLength = SIZE_MAX;  // volatile: the compiler knows better
        theBuffer.Append("x", theHugeLength);
    }
    ASSERT_EQ(theReports.FatalErrors().size(), 4u);
    EXPECT_EQ(theReports.FatalErrors()[0].mResource, "memory:malloc");
    EXPECT_EQ(theReports.FatalErrors()[0].mSize, 132u);
    EXPECT_EQ(theBuffer.size(), 4u);
    EXPECT_EQ(Text(theBuffer), "abcd");
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(GrowingBufferTest, AppendsItsOwnBytesAlsoWhileItGrows) {
    vxGrowingBuffer theBuffer(3);
    theBuffer += "abc";
    theBuffer.Append(theBuffer.data() + 1, 2);
    EXPECT_EQ(Text(theBuffer), "abcbc");
    std::string theModel = "abcbc";
    while (theModel.size() < 100000) {
        theBuffer.Append(theBuffer.data(), theBuffer.GetPosition());
        theModel += theModel;
        ASSERT_TRUE(Text(theBuffer) == theModel);
    }
}

TEST(GrowingBufferTest, HoldsWhatWasAppendedInWhateverPieces) {
    std::mt19937 theRandom(128);
    vxGrowingBuffer theBuffer(0);
    std::string theModel;
    for (int i = 0; i < 3000; ++i) {
        const size_t theLength = theRandom() % (i % 100 == 0 ? 20000 : 200);
        std::string thePiece(theLength, static_cast<char>('a' + i % 26));
        theBuffer.Append(thePiece.data(), theLength);
        theModel += thePiece;
        ASSERT_LE(theBuffer.GetPosition(), theBuffer.size());
    }
    EXPECT_TRUE(Text(theBuffer) == theModel);
}

}  // namespace
