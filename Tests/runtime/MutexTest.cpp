#include "vx/Mutex.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <thread>
#include <type_traits>
#include <vector>

#include "support/Latch.h"
#include "support/Reports.h"
#include "support/ScriptedLocks.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

static_assert(!std::is_copy_constructible_v<vxMutex> && !std::is_copy_assignable_v<vxMutex>);
static_assert(!std::is_copy_constructible_v<vxMutexLocker>);
static_assert(!std::is_polymorphic_v<vxMutex> && !std::is_polymorphic_v<vxMutexLocker>);

TEST(MutexTest, HolderLocksAgainAndUnlocksAsOften) {
    vxtest::Reports theReports;
    vxMutex theMutex;
    EXPECT_FALSE(theMutex.IsHeld());
    EXPECT_EQ(theMutex.Lock(), 0);
    EXPECT_EQ(theMutex.Lock(), 0);
    theMutex.AssertLocked();
    EXPECT_EQ(theMutex.Unlock(), 0);
    EXPECT_TRUE(theMutex.IsHeld());
    theMutex.AssertLocked();
    EXPECT_EQ(theMutex.Unlock(), 0);
    EXPECT_FALSE(theMutex.IsHeld());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(MutexTest, UnlockWithoutALockIsReportedAndChangesNothing) {
    vxtest::Reports theReports;
    vxMutex theMutex;
    EXPECT_EQ(theMutex.Unlock(), EPERM);
    ASSERT_THAT(theReports.Assertions(), ElementsAre("mLockCount > 0"));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, EndsWith("/Mutex.h"));

    theReports.Clear();
    EXPECT_EQ(theMutex.Lock(), 0);
    theMutex.AssertLocked();
    EXPECT_EQ(theMutex.Unlock(), 0);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    theMutex.AssertLocked();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mLockCount > 0"));
}

TEST(MutexTest, AssertLockedIsContentWithAnyHolder) {
    vxtest::Reports theReports;
    vxMutex theMutex;
    vxtest::Latch theIsLocked(1);
    vxtest::Latch theIsChecked(1);
    std::thread theOther([&] {
        vxMutexLocker theLock(&theMutex);
        theIsLocked.CountDown();
        theIsChecked.Wait();
    });
    theIsLocked.Wait();
    theMutex.AssertLocked();
    EXPECT_FALSE(theMutex.IsHeld());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    theIsChecked.CountDown();
    theOther.join();
}

TEST(MutexTest, FailedLockIsHandedOutAndNotCounted) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    vxMutex theMutex;
    theLocks.mLockResult = 35;
    EXPECT_EQ(theMutex.Lock(), 35);
    theMutex.AssertLocked();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mLockCount > 0"));
}

TEST(MutexTest, FailedUnlockIsHandedOutAndStaysCounted) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    vxMutex theMutex;
    theMutex.Lock();
    theLocks.mUnlockResult = 22;
    EXPECT_EQ(theMutex.Unlock(), 22);
    theMutex.AssertLocked();

    theLocks.mUnlockResult.reset();
    EXPECT_EQ(theMutex.Unlock(), 0);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    theMutex.AssertLocked();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mLockCount > 0"));
}

TEST(MutexTest, UnlockIsCountedBeforeAnotherThreadCanHaveTheMutex) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    vxMutex theMutex;
    theMutex.Lock();
    theMutex.Lock();
    theLocks.mAtUnlock = [&] { theMutex.AssertLocked(); };
    theMutex.Unlock();
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    theMutex.Unlock();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mLockCount > 0"));
}

TEST(MutexTest, MissingPlatformMutexIsFatalAndHarmlessAfterwards) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoMutex = true;
    vxMutex theMutex;
    ASSERT_EQ(theReports.FatalErrors().size(), 1U);
    EXPECT_EQ(theReports.FatalErrors()[0].mResource, "os:mutex");

    EXPECT_EQ(theMutex.Lock(), EINVAL);
    EXPECT_FALSE(theMutex.IsHeld());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(MutexTest, LockerHoldsTheMutexWhileItLives) {
    vxMutex theMutex;
    {
        vxMutexLocker theLock(&theMutex);
        EXPECT_TRUE(theMutex.IsHeld());
        {
            vxMutexLocker theSecondLock(&theMutex);
            EXPECT_TRUE(theMutex.IsHeld());
        }
        EXPECT_TRUE(theMutex.IsHeld());
    }
    EXPECT_FALSE(theMutex.IsHeld());
}

TEST(MutexTest, LockerDoesNotCheckTheLock) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    vxMutex theMutex;
    theLocks.mLockResult = 11;
    { vxMutexLocker theLock(&theMutex); }
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mLockCount > 0"));
}

TEST(MutexTest, CountIsRightUnderContention) {
    vxtest::Reports theReports;
    constexpr int kThreads = 4;
    vxMutex theMutex;
    vxtest::Latch theStart(kThreads);
    int theCount = 0;
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&] {
            theStart.ArriveAndWait();
            for (int theRound = 0; theRound < 5000; ++theRound) {
                vxMutexLocker theLock(&theMutex);
                theMutex.AssertLocked();
                ++theCount;
            }
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theCount, 20000);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    theMutex.AssertLocked();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mLockCount > 0"));
}

}  // namespace
