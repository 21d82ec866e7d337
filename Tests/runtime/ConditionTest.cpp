#include "vx/Condition.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <chrono>
#include <thread>
#include <type_traits>
#include <vector>

#include "support/Reports.h"
#include "support/ScriptedLocks.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(!std::is_copy_constructible_v<vxCondition>);
static_assert(!std::is_polymorphic_v<vxCondition>);

TEST(ConditionTest, SignalBeforeTheWaitIsKeptAndTakenOnce) {
    vxCondition theCondition;
    EXPECT_EQ(theCondition.WaitTimeout(0), ETIMEDOUT);
    EXPECT_EQ(theCondition.Signal(), 0);
    EXPECT_EQ(theCondition.Signal(), 0);
    EXPECT_EQ(theCondition.Wait(), 0);
    EXPECT_EQ(theCondition.WaitTimeout(0), ETIMEDOUT);
}

TEST(ConditionTest, InitialSignalSatisfiesTheFirstWaitOnly) {
    vxCondition theCondition(false, true);
    EXPECT_EQ(theCondition.Wait(), 0);
    EXPECT_EQ(theCondition.WaitTimeout(1), ETIMEDOUT);
}

TEST(ConditionTest, ManualResetKeepsTheSignalUntilReset) {
    vxCondition theCondition(true, false);
    EXPECT_EQ(theCondition.WaitTimeout(0), ETIMEDOUT);
    theCondition.Signal();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(theCondition.Wait(), 0);
    }
    EXPECT_EQ(theCondition.Reset(), 0);
    EXPECT_EQ(theCondition.WaitTimeout(0), ETIMEDOUT);
}

TEST(ConditionTest, ResetTakesAKeptSignalBack) {
    vxCondition theCondition;
    theCondition.Signal();
    EXPECT_EQ(theCondition.Reset(), 0);
    EXPECT_EQ(theCondition.WaitTimeout(0), ETIMEDOUT);
}

TEST(ConditionTest, ManualResetWithInitialSignalLetsEveryWaitThrough) {
    vxCondition theCondition(true, true);
    EXPECT_EQ(theCondition.Wait(), 0);
    EXPECT_EQ(theCondition.WaitTimeout(0), 0);
}

TEST(ConditionTest, OnlyTheLargestTimeoutWaitsWithoutLimit) {
    vxtest::ScriptedLocks theLocks;
    theLocks.mWaitResult = 0;
    vxCondition theCondition;
    theCondition.WaitTimeout(0xFFFFFFFF);
    theCondition.WaitTimeout(0xFFFFFFFE);
    theCondition.WaitTimeout(0);
    theCondition.Wait();
    EXPECT_THAT(theLocks.mWaits,
                ElementsAre("Wait", "WaitTimeout 4294967294", "WaitTimeout 0", "Wait"));
}

TEST(ConditionTest, KeptSignalDoesNotReachThePlatform) {
    vxtest::ScriptedLocks theLocks;
    vxCondition theCondition(false, true);
    EXPECT_EQ(theCondition.Wait(), 0);
    EXPECT_THAT(theLocks.mWaits, IsEmpty());
}

TEST(ConditionTest, WakeUpWithoutASignalEndsTheWaitAllTheSame) {
    vxtest::ScriptedLocks theLocks;
    theLocks.mWaitResult = 0;
    vxCondition theCondition;
    EXPECT_EQ(theCondition.Wait(), 0);
    EXPECT_THAT(theLocks.mWaits, ElementsAre("Wait"));
}

TEST(ConditionTest, ErrorsOfThePlatformAreHandedOut) {
    vxtest::ScriptedLocks theLocks;
    vxCondition theCondition;
    theLocks.mWaitResult = 77;
    EXPECT_EQ(theCondition.Wait(), 77);
    theLocks.mSignalResult = 78;
    EXPECT_EQ(theCondition.Signal(), 78);
    // The signal is kept although the platform failed to pass it on.
    EXPECT_EQ(theCondition.Wait(), 0);
}

TEST(ConditionTest, WaitTakesASignalThatCameDuringItWhateverItsResult) {
    vxtest::ScriptedLocks theLocks;
    theLocks.mWaitResult = ETIMEDOUT;
    vxCondition theCondition;
    theLocks.mInWait = [&] { theCondition.Signal(); };
    EXPECT_EQ(theCondition.WaitTimeout(5), ETIMEDOUT);
    EXPECT_EQ(theCondition.WaitTimeout(6), ETIMEDOUT);
    EXPECT_THAT(theLocks.mWaits, ElementsAre("WaitTimeout 5", "WaitTimeout 6"));

    vxCondition theManual(true, false);
    theLocks.mInWait = [&] { theManual.Signal(); };
    EXPECT_EQ(theManual.WaitTimeout(7), ETIMEDOUT);
    EXPECT_EQ(theManual.WaitTimeout(8), 0);
}

TEST(ConditionTest, SignalAndResetAreDoneUnderTheLock) {
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoteCalls = true;
    vxCondition theCondition;
    theCondition.Signal();
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Signal", "Unlock"));
    theLocks.mCalls.clear();
    EXPECT_EQ(theCondition.Wait(), 0);
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Unlock"));
    theLocks.mCalls.clear();
    theCondition.Reset();
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Unlock"));
}

TEST(ConditionTest, WaitOnAManualEventPassesTheSignalOnToTheNextSleeper) {
    vxtest::ScriptedLocks theLocks;
    theLocks.mWaitResult = 0;
    theLocks.mfNoteCalls = true;
    vxCondition theManual(true, false);
    theManual.Wait();
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Unlock"));
    theLocks.mCalls.clear();
    theLocks.mInWait = [&] { theManual.Signal(); };
    theManual.Wait();
    EXPECT_THAT(theLocks.mCalls,
                ElementsAre("Lock", "Lock", "Signal", "Unlock", "Signal", "Unlock"));
}

TEST(ConditionTest, TimedWaitLastsAtLeastAsLongAsAsked) {
    vxCondition theCondition;
    const auto theStart = std::chrono::steady_clock::now();
    EXPECT_EQ(theCondition.WaitTimeout(20), ETIMEDOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - theStart, std::chrono::milliseconds(20));
}

TEST(ConditionTest, TwoThreadsPlayPingPong) {
    constexpr int kRounds = 10000;
    vxCondition thePing;
    vxCondition thePong;
    int theBall = 0;
    std::thread theOther([&] {
        for (int i = 0; i < kRounds; ++i) {
            EXPECT_EQ(thePing.Wait(), 0);
            ++theBall;
            thePong.Signal();
        }
    });
    for (int i = 0; i < kRounds; ++i) {
        thePing.Signal();
        EXPECT_EQ(thePong.Wait(), 0);
        ASSERT_EQ(theBall, i + 1);
    }
    theOther.join();
}

TEST(ConditionTest, OneSignalOfAManualEventReachesAllThatSleep) {
    vxCondition theCondition(true, false);
    std::vector<std::thread> theThreads;
    for (int i = 0; i < 4; ++i) {
        theThreads.emplace_back([&] { EXPECT_EQ(theCondition.Wait(), 0); });
    }
    theCondition.Signal();
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
}

TEST(ConditionTest, MissingPlatformObjectsAreFatalAndHarmlessAfterwards) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoCondition = true;
    vxCondition theFirst;
    theLocks.mfNoCondition = false;
    theLocks.mfNoMutex = true;
    vxCondition theSecond(true, false);
    theLocks.mfNoCondition = true;
    vxCondition theThird;

    std::vector<std::string> theResources;
    for (const vxtest::FatalReport& theReport : theReports.FatalErrors()) {
        theResources.push_back(theReport.mResource);
    }
    EXPECT_THAT(theResources, ElementsAre("os:condition", "os:mutex", "os:condition", "os:mutex"));
    EXPECT_EQ(theFirst.Wait(), EINVAL);
    EXPECT_EQ(theSecond.WaitTimeout(1), EINVAL);
    EXPECT_EQ(theThird.Signal(), EINVAL);
    EXPECT_EQ(theThird.Reset(), 0);
}

}  // namespace
