#include <libvxOS/Clock.h>
#include <libvxOS/Thread.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using Milliseconds = std::chrono::milliseconds;
using SteadyClock = std::chrono::steady_clock;

TEST(ClockTest, TicksCountTheMillisecondsOfTheSteadyClock) {
    const SteadyClock::time_point theStart = SteadyClock::now();
    const uint32_t theFirst = vxTime_GetTickCount();
    vxThread_Sleep(15);
    const uint32_t theTicks = vxTime_GetTickCount() - theFirst;
    const auto thePassed =
        std::chrono::duration_cast<Milliseconds>(SteadyClock::now() - theStart).count();

    EXPECT_GE(theTicks, 15U);
    EXPECT_LE(theTicks, thePassed + 1);
}

TEST(ClockTest, MonotonicTimeNeverGoesBackAndKeepsMicrosecondsInRange) {
    vxtimeval theLast = {0, 0};
    for (int i = 0; i < 10000; ++i) {
        vxtimeval theTime = {-1, -1};
        vxMonoliticTime_GetTime(&theTime);
        ASSERT_GE(theTime.tv_usec, 0);
        ASSERT_LT(theTime.tv_usec, 1000000);
        ASSERT_TRUE(theTime.tv_sec > theLast.tv_sec ||
                    (theTime.tv_sec == theLast.tv_sec && theTime.tv_usec >= theLast.tv_usec));
        theLast = theTime;
    }
}

struct DifferenceCase {
    vxtimeval mTime;
    vxtimeval mSubtracted;
    vxtimeval mResult;
};

constexpr DifferenceCase kDifferences[] = {
    {{10, 500000}, {3, 200000}, {7, 300000}},
    {{10, 200000}, {3, 500000}, {6, 700000}},
    {{5, 5}, {5, 5}, {0, 0}},
    {{5, 0}, {5, 1}, {-1, 999999}},
    {{3, 200000}, {10, 500000}, {-8, 700000}},
    {{1, 0}, {0, 999999}, {0, 1}},
    {{INT32_MAX, 999999}, {0, 0}, {INT32_MAX, 999999}},
    {{INT32_MIN, 0}, {1, 0}, {INT32_MAX, 0}},
};

TEST(ClockTest, DifferenceBorrowsFromTheSeconds) {
    for (const DifferenceCase& theCase : kDifferences) {
        SCOPED_TRACE(testing::Message() << theCase.mTime.tv_sec << "." << theCase.mTime.tv_usec);
        vxtimeval theResult = {99, 99};
        vxTimeVal_Substract(&theResult, &theCase.mTime, &theCase.mSubtracted);
        EXPECT_EQ(theResult.tv_sec, theCase.mResult.tv_sec);
        EXPECT_EQ(theResult.tv_usec, theCase.mResult.tv_usec);
    }
}

TEST(ClockTest, DifferenceMayReplaceEitherOfItsOperands) {
    vxtimeval theFirst = {10, 200000};
    const vxtimeval theSecond = {3, 500000};
    vxTimeVal_Substract(&theFirst, &theFirst, &theSecond);
    EXPECT_EQ(theFirst.tv_sec, 6);
    EXPECT_EQ(theFirst.tv_usec, 700000);

    const vxtimeval theThird = {10, 200000};
    vxtimeval theFourth = {3, 500000};
    vxTimeVal_Substract(&theFourth, &theThird, &theFourth);
    EXPECT_EQ(theFourth.tv_sec, 6);
    EXPECT_EQ(theFourth.tv_usec, 700000);
}

TEST(ClockTest, SleepLastsAtLeastAsLongAsAsked) {
    for (const uint32_t theDuration : {0U, 1U, 20U}) {
        const SteadyClock::time_point theStart = SteadyClock::now();
        vxThread_Sleep(theDuration);
        EXPECT_GE(SteadyClock::now() - theStart, Milliseconds(theDuration));
    }
}

TEST(ClockTest, EveryThreadHasItsOwnNumber) {
    const unsigned long theOwn = vxThread_GetCurrentThreadID();
    unsigned long theOther = theOwn;
    std::thread theThread([&theOther] { theOther = vxThread_GetCurrentThreadID(); });
    theThread.join();

    EXPECT_NE(theOwn, 0UL);
    EXPECT_NE(theOther, theOwn);
    EXPECT_EQ(vxThread_GetCurrentThreadID(), theOwn);
}

}  // namespace
