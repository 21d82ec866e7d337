#include <libvxOS/Semaphore.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <thread>
#include <vector>

namespace {

TEST(OSSemaphoreTest, WaitLowersTheCountAndPostRaisesIt) {
    vxOSSemaphore* theSemaphore = vxSemaphore_New(2);
    EXPECT_EQ(vxSemaphore_Wait(theSemaphore), 0);
    EXPECT_EQ(vxSemaphore_WaitTimeout(theSemaphore, 0), 0);
    EXPECT_EQ(vxSemaphore_WaitTimeout(theSemaphore, 0), ETIMEDOUT);
    EXPECT_EQ(vxSemaphore_Post(theSemaphore), 0);
    EXPECT_EQ(vxSemaphore_Post(theSemaphore), 0);
    EXPECT_EQ(vxSemaphore_Wait(theSemaphore), 0);
    EXPECT_EQ(vxSemaphore_Wait(theSemaphore), 0);
    EXPECT_EQ(vxSemaphore_WaitTimeout(theSemaphore, 1), ETIMEDOUT);
    vxSemaphore_Delete(theSemaphore);
}

TEST(OSSemaphoreTest, TimedWaitLastsAtLeastAsLongAsAsked) {
    vxOSSemaphore* theSemaphore = vxSemaphore_New(0);
    const auto theStart = std::chrono::steady_clock::now();
    EXPECT_EQ(vxSemaphore_WaitTimeout(theSemaphore, 25), ETIMEDOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - theStart, std::chrono::milliseconds(25));
    vxSemaphore_Delete(theSemaphore);
}

TEST(OSSemaphoreTest, CountStopsAtItsLimit) {
    vxOSSemaphore* theSemaphore = vxSemaphore_New(INT_MAX - 1);
    EXPECT_EQ(vxSemaphore_Post(theSemaphore), 0);
    EXPECT_EQ(vxSemaphore_Post(theSemaphore), EOVERFLOW);
    EXPECT_EQ(vxSemaphore_Wait(theSemaphore), 0);
    EXPECT_EQ(vxSemaphore_Post(theSemaphore), 0);
    vxSemaphore_Delete(theSemaphore);
}

TEST(OSSemaphoreTest, EveryPostLetsOneWaitThrough) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 5000;
    vxOSSemaphore* theSemaphore = vxSemaphore_New(0);
    std::atomic<int> theTaken{0};
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&] {
            for (int theRound = 0; theRound < kRounds; ++theRound) {
                EXPECT_EQ(vxSemaphore_Wait(theSemaphore), 0);
                ++theTaken;
            }
        });
    }
    for (int i = 0; i < kThreads * kRounds; ++i) {
        vxSemaphore_Post(theSemaphore);
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theTaken, 20000);
    EXPECT_EQ(vxSemaphore_WaitTimeout(theSemaphore, 0), ETIMEDOUT);
    vxSemaphore_Delete(theSemaphore);
}

TEST(OSSemaphoreTest, WhatWasWrittenBeforeThePostIsSeenAfterTheWait) {
    vxOSSemaphore* theSemaphore = vxSemaphore_New(0);
    int theValue = 0;
    std::thread theOther([&] {
        theValue = 42;
        vxSemaphore_Post(theSemaphore);
    });
    EXPECT_EQ(vxSemaphore_WaitTimeout(theSemaphore, 0xFFFFFFFF), 0);
    EXPECT_EQ(theValue, 42);
    theOther.join();
    vxSemaphore_Delete(theSemaphore);
}

TEST(OSSemaphoreTest, NegativeCountAndNullHandleAreRefused) {
    EXPECT_EQ(vxSemaphore_New(-1), nullptr);
    EXPECT_EQ(vxSemaphore_Post(nullptr), EINVAL);
    EXPECT_EQ(vxSemaphore_Wait(nullptr), EINVAL);
    EXPECT_EQ(vxSemaphore_WaitTimeout(nullptr, 1), EINVAL);
    vxSemaphore_Delete(nullptr);
}

}  // namespace
