#include <libvxOS/CriticalSection.h>
#include <libvxOS/Mutex.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>
#include <vector>

#include "support/Latch.h"

namespace {

TEST(OSMutexTest, HolderMayLockAgainAndMustUnlockAsOften) {
    vxOSMutex* theMutex = vxMutex_New();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(vxMutex_Lock(theMutex), 0);
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(vxMutex_IsHeld(theMutex), 1);
        EXPECT_EQ(vxMutex_Unlock(theMutex), 0);
    }
    EXPECT_EQ(vxMutex_IsHeld(theMutex), 0);
    EXPECT_EQ(vxMutex_Unlock(theMutex), EPERM);
    vxMutex_Delete(theMutex);
}

TEST(OSMutexTest, OnlyTheHolderHoldsAndUnlocks) {
    vxOSMutex* theMutex = vxMutex_New();
    vxMutex_Lock(theMutex);
    std::thread([theMutex] {
        EXPECT_EQ(vxMutex_IsHeld(theMutex), 0);
        EXPECT_EQ(vxMutex_Unlock(theMutex), EPERM);
    }).join();

    EXPECT_EQ(vxMutex_IsHeld(theMutex), 1);
    EXPECT_EQ(vxMutex_Unlock(theMutex), 0);
    vxMutex_Delete(theMutex);
}

TEST(OSMutexTest, LockWaitsForTheLastUnlockOfTheHolder) {
    vxOSMutex* theMutex = vxMutex_New();
    vxtest::Latch theStart(2);
    int theSteps = 0;  // guarded by the mutex
    vxMutex_Lock(theMutex);
    vxMutex_Lock(theMutex);
    std::thread theOther([&] {
        theStart.ArriveAndWait();
        vxMutex_Lock(theMutex);
        EXPECT_EQ(theSteps, 2);
        vxMutex_Unlock(theMutex);
    });
    theStart.ArriveAndWait();
    theSteps = 1;
    vxMutex_Unlock(theMutex);
    theSteps = 2;
    vxMutex_Unlock(theMutex);
    theOther.join();
    vxMutex_Delete(theMutex);
}

TEST(OSMutexTest, ThreadsCountUnderTheMutexWithoutLosingAny) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 20000;
    vxOSMutex* theMutex = vxMutex_New();
    vxtest::Latch theStart(kThreads);
    int theCount = 0;
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&] {
            theStart.ArriveAndWait();
            for (int theRound = 0; theRound < kRounds; ++theRound) {
                vxMutex_Lock(theMutex);
                vxMutex_Lock(theMutex);
                ++theCount;
                vxMutex_Unlock(theMutex);
                vxMutex_Unlock(theMutex);
            }
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theCount, 80000);
    vxMutex_Delete(theMutex);
}

TEST(OSMutexTest, NullMutexIsRefused) {
    EXPECT_EQ(vxMutex_Lock(nullptr), EINVAL);
    EXPECT_EQ(vxMutex_Unlock(nullptr), EINVAL);
    EXPECT_EQ(vxMutex_IsHeld(nullptr), 0);
    vxMutex_Delete(nullptr);
}

TEST(OSCriticalSectionTest, ThreadInsideMayEnterAgainAndMustLeaveAsOften) {
    vxOSCriticalSection* theSection = vxCriticalSection_New();
    EXPECT_EQ(vxCriticalSection_Leave(theSection), EPERM);
    EXPECT_EQ(vxCriticalSection_Enter(theSection), 0);
    EXPECT_EQ(vxCriticalSection_Enter(theSection), 0);
    std::thread([theSection] { EXPECT_EQ(vxCriticalSection_Leave(theSection), EPERM); }).join();
    EXPECT_EQ(vxCriticalSection_Leave(theSection), 0);
    EXPECT_EQ(vxCriticalSection_Leave(theSection), 0);
    EXPECT_EQ(vxCriticalSection_Leave(theSection), EPERM);
    vxCriticalSection_Delete(theSection);
}

TEST(OSCriticalSectionTest, ThreadsCountInsideWithoutLosingAny) {
    constexpr int kThreads = 3;
    vxOSCriticalSection* theSection = vxCriticalSection_New();
    vxtest::Latch theStart(kThreads);
    int theCount = 0;
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&] {
            theStart.ArriveAndWait();
            for (int theRound = 0; theRound < 10000; ++theRound) {
                vxCriticalSection_Enter(theSection);
                ++theCount;
                vxCriticalSection_Leave(theSection);
            }
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theCount, 30000);
    vxCriticalSection_Delete(theSection);
}

TEST(OSCriticalSectionTest, NullSectionIsRefused) {
    EXPECT_EQ(vxCriticalSection_Enter(nullptr), EINVAL);
    EXPECT_EQ(vxCriticalSection_Leave(nullptr), EINVAL);
    vxCriticalSection_Delete(nullptr);
}

}  // namespace
