#include <libteskTools/Memory.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "support/Reports.h"

namespace {

// A size that no machine can give, unknown to the compiler.
size_t Impossible() {
    volatile size_t theSize = SIZE_MAX - 100;
    return theSize;
}

// Sanitizers end the program where malloc would answer null.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMallocAnswersNull = false;
#else
constexpr bool kMallocAnswersNull = true;
#endif

}  // namespace

TEST(MemoryTest, BlocksAreTheCallersToFree) {
    char* theBlock = static_cast<char*>(vxMalloc(3));
    ASSERT_NE(theBlock, nullptr);
    memcpy(theBlock, "ab", 3);
    theBlock = static_cast<char*>(vxRealloc(theBlock, 1000));
    EXPECT_STREQ(theBlock, "ab");
    theBlock = static_cast<char*>(vxRealloc(theBlock, 3));
    EXPECT_STREQ(theBlock, "ab");
    free(theBlock);
}

TEST(MemoryTest, ClearedBlocksAre0) {
    char* theBlock = static_cast<char*>(vxCalloc(100));
    for (int i = 0; i < 100; i++) {
        EXPECT_EQ(theBlock[i], 0);
    }
    free(theBlock);
}

TEST(MemoryTest, ASizeOf0GivesABlockOfItsOwn) {
    void* theFirst = vxMalloc(0);
    void* theSecond = vxCalloc(0);
    void* theThird = vxTryMalloc(0);
    void* theFourth = vxRealloc(nullptr, 0);
    void* theFifth = vxRealloc(vxMalloc(10), 0);
    for (void* theBlock : {theFirst, theSecond, theThird, theFourth, theFifth}) {
        EXPECT_NE(theBlock, nullptr);
    }
    EXPECT_NE(theFirst, theSecond);
    for (void* theBlock : {theFirst, theSecond, theThird, theFourth, theFifth}) {
        free(theBlock);
    }
}

TEST(MemoryTest, DuplicatesAreCopiesAndNullStaysNull) {
    char theText[] = "abc";
    char* theCopy = vxStrdup(theText);
    theText[0] = 'x';
    EXPECT_STREQ(theCopy, "abc");
    free(theCopy);
    theCopy = vxStrdup("");
    EXPECT_STREQ(theCopy, "");
    free(theCopy);
    EXPECT_EQ(vxStrdup(nullptr), nullptr);
}

TEST(MemoryTest, RunningOutOfMemoryIsFatalWithItsSize) {
    if (!kMallocAnswersNull) {
        GTEST_SKIP() << "the sanitizer's malloc ends the program";
    }
    vxtest::Reports theReports;
    EXPECT_EQ(vxMalloc(Impossible()), nullptr);
    EXPECT_EQ(vxCalloc(Impossible()), nullptr);
    char* theBlock = vxStrdup("kept");
    EXPECT_EQ(vxRealloc(theBlock, Impossible()), nullptr);
    EXPECT_STREQ(theBlock, "kept");
    free(theBlock);
    ASSERT_EQ(theReports.FatalErrors().size(), 3u);
    for (const vxtest::FatalReport& theReport : theReports.FatalErrors()) {
        EXPECT_EQ(theReport.mResource, "memory:malloc");
        EXPECT_EQ(theReport.mSize, SIZE_MAX - 100);
    }
}

TEST(MemoryTest, TryingIsNeverFatal) {
    if (!kMallocAnswersNull) {
        GTEST_SKIP() << "the sanitizer's malloc ends the program";
    }
    vxtest::Reports theReports;
    EXPECT_EQ(vxTryMalloc(Impossible()), nullptr);
    EXPECT_TRUE(theReports.FatalErrors().empty());
}
