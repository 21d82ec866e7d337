#include "vx/ConditionExt.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <thread>
#include <type_traits>

#include "support/Latch.h"
#include "support/Reports.h"
#include "support/ScriptedLocks.h"
#include "vx/Mutex.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

static_assert(!std::is_copy_constructible_v<vxConditionExt>);
static_assert(!std::is_polymorphic_v<vxConditionExt>);

constexpr char kNotHeld[] = "vxMutex_IsHeld(mMutex->mMutex)";

TEST(ConditionExtTest, KeptSignalIsTakenByTheNextWait) {
    vxtest::Reports theReports;
    vxMutex theMutex;
    vxConditionExt theCondition(&theMutex, false);
    EXPECT_EQ(theCondition.GetAssociatedMutex(), &theMutex);
    vxMutexLocker theLock(&theMutex);
    EXPECT_EQ(theCondition.WaitTimeout(0), ETIMEDOUT);
    EXPECT_EQ(theCondition.Signal(), 0);
    EXPECT_EQ(theCondition.Wait(), 0);
    EXPECT_EQ(theCondition.WaitTimeout(1), ETIMEDOUT);
    EXPECT_TRUE(theMutex.IsHeld());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(ConditionExtTest, TimeoutKeepsNoSignal) {
    vxtest::ScriptedLocks theLocks;
    vxMutex theMutex;
    vxConditionExt theCondition(&theMutex, false);
    vxMutexLocker theLock(&theMutex);
    theLocks.mWaitResult = ETIMEDOUT;
    theLocks.mInWait = [&] { theCondition.Signal(); };
    EXPECT_EQ(theCondition.WaitTimeout(5), ETIMEDOUT);
    EXPECT_EQ(theCondition.Wait(), ETIMEDOUT);
    EXPECT_EQ(theCondition.WaitTimeout(0xFFFFFFFF), ETIMEDOUT);
    EXPECT_EQ(theCondition.WaitTimeout(0xFFFFFFFE), ETIMEDOUT);
    EXPECT_THAT(theLocks.mWaits,
                ElementsAre("WaitTimeout 5", "Wait", "Wait", "WaitTimeout 4294967294"));
}

TEST(ConditionExtTest, WaitWithoutTheMutexIsReportedTwiceAndDoesNotSleep) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    vxMutex theMutex;
    vxConditionExt theCondition(&theMutex, false);
    {
        vxMutexLocker theLock(&theMutex);
        theCondition.Signal();
    }
    EXPECT_EQ(theCondition.Wait(), EPERM);
    ASSERT_THAT(theReports.Assertions(), ElementsAre(kNotHeld, kNotHeld));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, EndsWith("/ConditionExt.cpp"));
    EXPECT_EQ(theCondition.WaitTimeout(1), EPERM);
    EXPECT_THAT(theLocks.mWaits, IsEmpty());

    // The signal is still there for a proper wait.
    vxMutexLocker theLock(&theMutex);
    EXPECT_EQ(theCondition.WaitTimeout(0), 0);
}

TEST(ConditionExtTest, WaitIsReportedAlsoWhenAnotherThreadHoldsTheMutex) {
    vxtest::Reports theReports;
    vxMutex theMutex;
    vxConditionExt theCondition(&theMutex, false);
    vxMutexLocker theLock(&theMutex);
    std::thread([&] { EXPECT_EQ(theCondition.Wait(), EPERM); }).join();
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kNotHeld, kNotHeld));
}

TEST(ConditionExtTest, SignalWithoutTheMutexIsReportedTwiceAndGiven) {
    vxtest::Reports theReports;
    vxMutex theMutex;
    vxConditionExt theCondition(&theMutex, false);
    EXPECT_EQ(theCondition.Signal(), 0);
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kNotHeld, kNotHeld));
    vxMutexLocker theLock(&theMutex);
    EXPECT_EQ(theCondition.WaitTimeout(0), 0);
}

TEST(ConditionExtTest, ErrorsOfThePlatformAreHandedOut) {
    vxtest::ScriptedLocks theLocks;
    vxMutex theMutex;
    vxConditionExt theCondition(&theMutex, false);
    vxMutexLocker theLock(&theMutex);
    theLocks.mWaitResult = 5;
    theLocks.mSignalResult = 6;
    EXPECT_EQ(theCondition.Wait(), 5);
    EXPECT_EQ(theCondition.Signal(), 6);
    EXPECT_EQ(theCondition.Wait(), 0);
    EXPECT_EQ(theCondition.Wait(), 5);
}

TEST(ConditionExtTest, SleepLeavesTheCountOfTheMutexAlone) {
    vxtest::Reports theReports;
    vxMutex theMutex;
    vxConditionExt theCondition(&theMutex, false);
    vxtest::Latch theIsWaiting(1);
    std::thread theOther([&] {
        vxMutexLocker theLock(&theMutex);
        theIsWaiting.CountDown();
        EXPECT_EQ(theCondition.Wait(), 0);
        EXPECT_TRUE(theMutex.IsHeld());
    });
    theIsWaiting.Wait();
    {
        vxMutexLocker theLock(&theMutex);  // free only while the other sleeps
        EXPECT_EQ(theMutex.Unlock(), 0);
        theMutex.AssertLocked();  // one lock is the sleeper's
        EXPECT_EQ(theMutex.Lock(), 0);
        EXPECT_EQ(theCondition.Signal(), 0);
    }
    theOther.join();
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    theMutex.AssertLocked();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mLockCount > 0"));
}

TEST(ConditionExtTest, ProducerAndConsumerLoseNothing) {
    constexpr int kItems = 10000;
    vxMutex theMutex;
    vxConditionExt theCondition(&theMutex, false);
    int theItems = 0;
    int theTaken = 0;
    std::thread theProducer([&] {
        for (int i = 0; i < kItems; ++i) {
            vxMutexLocker theLock(&theMutex);
            ++theItems;
            theCondition.Signal();
        }
    });
    while (theTaken < kItems) {
        vxMutexLocker theLock(&theMutex);
        while (theItems == 0) {
            ASSERT_EQ(theCondition.Wait(), 0);
        }
        theTaken += theItems;
        theItems = 0;
    }
    theProducer.join();
    EXPECT_EQ(theTaken, 10000);
}

TEST(ConditionExtTest, DeletesItsMutexWhenToldTo) {
    // Memory checkers see to the rest.
    vxMutex* theMutex = new vxMutex;
    vxConditionExt theCondition(theMutex, true);
    EXPECT_EQ(theCondition.GetAssociatedMutex(), theMutex);
}

TEST(ConditionExtTest, MissingConditionAndMissingMutexAreFatalAndHarmlessAfterwards) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoCondition = true;
    vxMutex theMutex;
    vxConditionExt theFirst(&theMutex, false);
    vxConditionExt theThird(NULL, false);
    theLocks.mfNoCondition = false;
    vxConditionExt theSecond(NULL, true);

    ASSERT_EQ(theReports.FatalErrors().size(), 4U);
    EXPECT_EQ(theReports.FatalErrors()[0].mResource, "os:condition");
    EXPECT_EQ(theReports.FatalErrors()[1].mResource, "os:condition");
    EXPECT_EQ(theReports.FatalErrors()[2].mResource, "os:mutex");
    EXPECT_EQ(theReports.FatalErrors()[3].mResource, "os:mutex");
    {
        vxMutexLocker theLock(&theMutex);
        EXPECT_EQ(theFirst.Wait(), EINVAL);
        EXPECT_EQ(theFirst.Signal(), EINVAL);
    }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_EQ(theSecond.GetAssociatedMutex(), nullptr);
    EXPECT_EQ(theSecond.Wait(), EPERM);
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kNotHeld, kNotHeld));
}

}  // namespace
