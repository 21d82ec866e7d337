#include "vx/DataBuffer.h"

#include <libteskTools/Memory.h>

#include <gmock/gmock.h>

#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include "support/Reports.h"
#include "support/ScriptedMemory.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void ExpectHolds(const vxDataBuffer& aBuffer, const char* aBytes, size_t aSize) {
    ASSERT_EQ(aBuffer.size(), aSize);
    EXPECT_EQ(memcmp(aBuffer.data(), aBytes, aSize), 0);
}

void ExpectEmpty(const vxDataBuffer& aBuffer) {
    EXPECT_EQ(aBuffer.data(), nullptr);
    EXPECT_EQ(aBuffer.size(), 0u);
}

// Builds a buffer from its variable arguments and keeps its block in `aTarget`.
void TakeFromList(vxDataBuffer* aTarget, ...) {
    va_list theList;
    va_start(theList, aTarget);
    vxDataBuffer theBuffer(theList);
    va_end(theList);
    aTarget->TakeOwnership(theBuffer);
}

TEST(DataBufferTest, StartsEmpty) {
    ExpectEmpty(vxDataBuffer());
}

TEST(DataBufferTest, SizeAloneMakesABlockToWriteTo) {
    vxDataBuffer theBuffer(size_t{3});
    ASSERT_EQ(theBuffer.size(), 3u);
    memcpy(theBuffer.data(), "abc", 3);
    ExpectHolds(theBuffer, "abc", 3);
}

TEST(DataBufferTest, SizeOfZeroStillHasABlock) {
    vxDataBuffer theBuffer(size_t{0});
    EXPECT_NE(theBuffer.data(), nullptr);
    EXPECT_EQ(theBuffer.size(), 0u);
}

TEST(DataBufferTest, CopiesBytesIncludingZeros) {
    char theBytes[] = {'a', '\0', 'b'};
    vxDataBuffer theBuffer(theBytes, sizeof(theBytes));
    theBytes[0] = 'x';
    ExpectHolds(theBuffer, "a\0b", 3);
}

TEST(DataBufferTest, NullBytesMakeAnEmptyBuffer) {
    ExpectEmpty(vxDataBuffer(NULL, 5));
}

TEST(DataBufferTest, CopiesATextWithItsNUL) {
    ExpectHolds(vxDataBuffer("abc"), "abc", 4);
    ExpectHolds(vxDataBuffer(""), "", 1);
}

TEST(DataBufferTest, NullTextIsReportedAndMakesAnEmptyBuffer) {
    vxtest::Reports theReports;
    const char* theText = NULL;

    vxDataBuffer theBuffer(theText);

    EXPECT_THAT(theReports.Assertions(), ElementsAre("aString != NULL"));
    ExpectEmpty(theBuffer);
}

TEST(DataBufferTest, CopiesWhatAnArgumentListNames) {
    char theBytes[] = {'a', '\0', 'b'};
    vxDataBuffer theBuffer;
    TakeFromList(&theBuffer, static_cast<void*>(theBytes), sizeof(theBytes));
    theBytes[0] = 'x';
    ExpectHolds(theBuffer, "a\0b", 3);
}

TEST(DataBufferTest, SetAdoptsABlockWithoutCopying) {
    vxDataBuffer theBuffer("old");
    char* theBlock = vxStrdup("new");

    theBuffer.Set(theBlock, 2);

    EXPECT_EQ(theBuffer.data(), theBlock);
    EXPECT_EQ(theBuffer.size(), 2u);
    theBuffer.Set(theBlock, 3);
    EXPECT_EQ(theBuffer.data(), theBlock);
    ExpectHolds(theBuffer, "new", 3);
    theBuffer.Set(NULL, 7);
    ExpectEmpty(theBuffer);
}

TEST(DataBufferTest, ReallocKeepsTheBytesThatFit) {
    vxDataBuffer theBuffer("abcdef", 6);
    theBuffer.Realloc(100000);
    ASSERT_EQ(theBuffer.size(), 100000u);
    EXPECT_EQ(memcmp(theBuffer.data(), "abcdef", 6), 0);
    theBuffer.Realloc(3);
    ExpectHolds(theBuffer, "abc", 3);
    theBuffer.Realloc(0);
    EXPECT_EQ(theBuffer.size(), 0u);
    EXPECT_NE(theBuffer.data(), nullptr);
}

TEST(DataBufferTest, ReallocMakesABlockForAnEmptyBuffer) {
    vxDataBuffer theBuffer;
    theBuffer.Realloc(4);
    EXPECT_NE(theBuffer.data(), nullptr);
    EXPECT_EQ(theBuffer.size(), 4u);
}

TEST(DataBufferTest, TakingOwnershipLeavesTheBufferEmpty) {
    vxDataBuffer theBuffer("abc");
    void* theInside = theBuffer.data();

    void* theBlock = theBuffer.TakeOwnership();

    EXPECT_EQ(theBlock, theInside);
    EXPECT_STREQ(static_cast<char*>(theBlock), "abc");
    ExpectEmpty(theBuffer);
    EXPECT_EQ(theBuffer.TakeOwnership(), nullptr);
    free(theBlock);
}

TEST(DataBufferTest, TakesOverAnotherBuffersBlock) {
    vxDataBuffer theBuffer("old");
    vxDataBuffer theOther("other");
    void* theBlock = theOther.data();

    theBuffer.TakeOwnership(theOther);

    EXPECT_EQ(theBuffer.data(), theBlock);
    ExpectHolds(theBuffer, "other", 6);
    ExpectEmpty(theOther);
}

TEST(DataBufferTest, TakingOverItselfChangesNothing) {
    vxDataBuffer theBuffer("abc");
    theBuffer.TakeOwnership(theBuffer);
    ExpectHolds(theBuffer, "abc", 4);
}

TEST(DataBufferTest, LackOfMemoryIsReportedAndLeavesTheBufferUsable) {
    vxtest::Reports theReports;
    vxDataBuffer theBuffer("abc");
    {
        vxtest::NoMemory theNoMemory;
        theBuffer.Realloc(50);
        ExpectEmpty(vxDataBuffer(size_t{7}));
        ExpectEmpty(vxDataBuffer("xyz", 3));
        ExpectEmpty(vxDataBuffer("xyz"));
    }
    ExpectHolds(theBuffer, "abc", 4);
    ASSERT_EQ(theReports.FatalErrors().size(), 4u);
    EXPECT_EQ(theReports.FatalErrors()[0].mResource, "memory:malloc");
    EXPECT_EQ(theReports.FatalErrors()[0].mSize, 50u);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

}  // namespace
