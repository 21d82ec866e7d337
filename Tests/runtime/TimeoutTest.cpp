#include "vx/Timeout.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <random>
#include <type_traits>
#include <vector>

#include "support/ScriptedClock.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

static_assert(std::is_base_of_v<_vxDLListNode, vxTimeout>);
static_assert(std::has_virtual_destructor_v<vxTimeout>);
static_assert(!std::is_copy_constructible_v<vxTimeout>);

class Queue : public vxTimeoutQueue {
public:
    void OnTimeouts() override { ++mCalls; }

    /// Takes everything out, the first to expire first.
    std::vector<vxTimeout*> Drain() {
        std::vector<vxTimeout*> theOrder;
        while (vxTimeout* theTimeout = FirstExpiringTimeout()) {
            theOrder.push_back(theTimeout);
            TimeoutCancel(theTimeout);
        }
        return theOrder;
    }

    int mCalls = 0;
};

TEST(TimeoutTest, NewTimeoutIsExpiredAndInNoQueue) {
    vxtest::ScriptedClock theClock(0);
    vxTimeout theTimeout;
    EXPECT_TRUE(theTimeout.IsExpired());
    EXPECT_EQ(theTimeout.mNext, nullptr);
    EXPECT_EQ(theTimeout.mPrev, nullptr);
}

TEST(TimeoutTest, RemainingCountsDownToZeroAndStaysThere) {
    vxtest::ScriptedClock theClock;
    vxTimeout theTimeout;
    theTimeout.Start(100);
    EXPECT_EQ(theTimeout.Remaining(), 100U);
    theClock.Advance(99);
    EXPECT_EQ(theTimeout.Remaining(), 1U);
    EXPECT_FALSE(theTimeout.IsExpired());
    theClock.Advance(1);
    EXPECT_EQ(theTimeout.Remaining(), 0U);
    EXPECT_TRUE(theTimeout.IsExpired());
    theClock.Advance(5000);
    EXPECT_EQ(theTimeout.Remaining(), 0U);
}

TEST(TimeoutTest, RemainingIsRightAcrossTheWrapOfTheCounter) {
    vxtest::ScriptedClock theClock(0xFFFFFFF0);
    vxTimeout theTimeout;
    theTimeout.Start(0x20);
    theClock.SetTick(0xFFFFFFFF);
    EXPECT_EQ(theTimeout.Remaining(), 0x11U);
    theClock.SetTick(0);
    EXPECT_EQ(theTimeout.Remaining(), 0x10U);
    theClock.SetTick(0xF);
    EXPECT_EQ(theTimeout.Remaining(), 1U);
    theClock.SetTick(0x10);
    EXPECT_TRUE(theTimeout.IsExpired());
}

TEST(TimeoutTest, LongestDurationCountsDownToo) {
    vxtest::ScriptedClock theClock(7);
    vxTimeout theTimeout;
    theTimeout.Start(0xFFFFFFFF);
    EXPECT_EQ(theTimeout.Remaining(), 0xFFFFFFFFU);
    theClock.SetTick(5);
    EXPECT_EQ(theTimeout.Remaining(), 1U);
    theClock.SetTick(6);
    EXPECT_TRUE(theTimeout.IsExpired());
}

TEST(TimeoutTest, TickCountIsThePlatforms) {
    vxtest::ScriptedClock theClock(123456);
    EXPECT_EQ(vxTimeout::GetSysMSTickCount(), 123456U);
}

TEST(TimeoutTest, StartEntersNoQueue) {
    vxtest::ScriptedClock theClock;
    vxTimeout theTimeout;
    theTimeout.Start(5);
    EXPECT_EQ(theTimeout.mNext, nullptr);
}

TEST(TimeoutQueueTest, FirstToExpireIsInFront) {
    vxtest::ScriptedClock theClock;
    Queue theQueue;
    EXPECT_EQ(theQueue.FirstExpiringTimeout(), nullptr);
    vxTimeout theA;
    vxTimeout theB;
    vxTimeout theC;
    vxTimeout theD;
    theQueue.TimeoutStart(&theA, 300);
    theClock.Advance(100);
    theQueue.TimeoutStart(&theB, 100);
    theQueue.TimeoutStart(&theC, 500);
    theQueue.TimeoutStart(&theD, 150);
    EXPECT_THAT(theQueue.Drain(), ElementsAre(&theB, &theD, &theA, &theC));
}

TEST(TimeoutQueueTest, EqualRemainingTimesKeepTheOrderOfTheStarts) {
    vxtest::ScriptedClock theClock;
    Queue theQueue;
    vxTimeout theA;
    vxTimeout theB;
    vxTimeout theC;
    vxTimeout theLater;
    theQueue.TimeoutStart(&theA, 300);
    theQueue.TimeoutStart(&theLater, 301);
    theClock.Advance(100);
    theQueue.TimeoutStart(&theB, 200);
    theQueue.TimeoutStart(&theC, 200);
    EXPECT_THAT(theQueue.Drain(), ElementsAre(&theA, &theB, &theC, &theLater));
}

TEST(TimeoutQueueTest, ZeroMillisecondsComeBehindTheExpiredAndBeforeAllOthers) {
    vxtest::ScriptedClock theClock;
    Queue theQueue;
    vxTimeout theExpired;
    vxTimeout theLongExpired;
    vxTimeout theWaiting;
    vxTimeout theZero;
    theQueue.TimeoutStart(&theExpired, 20);
    theQueue.TimeoutStart(&theLongExpired, 10);
    theQueue.TimeoutStart(&theWaiting, 51);
    theClock.Advance(50);
    theQueue.TimeoutStart(&theZero, 0);
    EXPECT_TRUE(theZero.IsExpired());
    EXPECT_THAT(theQueue.Drain(), ElementsAre(&theLongExpired, &theExpired, &theZero, &theWaiting));
}

TEST(TimeoutQueueTest, StartingAgainMovesTheTimeout) {
    vxtest::ScriptedClock theClock;
    Queue theQueue;
    vxTimeout theA;
    vxTimeout theB;
    theQueue.TimeoutStart(&theA, 10);
    theQueue.TimeoutStart(&theB, 20);
    theQueue.TimeoutStart(&theA, 30);
    EXPECT_THAT(theQueue.Drain(), ElementsAre(&theB, &theA));
    theQueue.TimeoutStart(&theA, 10);
    theQueue.TimeoutStart(&theB, 10);
    theQueue.TimeoutStart(&theA, 10);
    EXPECT_THAT(theQueue.Drain(), ElementsAre(&theB, &theA));
}

TEST(TimeoutQueueTest, StartingInAnotherQueueLeavesTheFirst) {
    vxtest::ScriptedClock theClock;
    Queue theFirst;
    Queue theSecond;
    vxTimeout theTimeout;
    theFirst.TimeoutStart(&theTimeout, 10);
    theSecond.TimeoutStart(&theTimeout, 10);
    EXPECT_EQ(theFirst.FirstExpiringTimeout(), nullptr);
    EXPECT_EQ(theSecond.FirstExpiringTimeout(), &theTimeout);
}

TEST(TimeoutQueueTest, CancelTakesOutAndIsHarmlessTwice) {
    vxtest::ScriptedClock theClock;
    Queue theQueue;
    vxTimeout theA;
    vxTimeout theB;
    theQueue.TimeoutStart(&theA, 10);
    theQueue.TimeoutStart(&theB, 20);
    theQueue.TimeoutCancel(&theA);
    theQueue.TimeoutCancel(&theA);
    EXPECT_EQ(theQueue.FirstExpiringTimeout(), &theB);
    EXPECT_EQ(theA.mNext, nullptr);
    EXPECT_EQ(theA.Remaining(), 10U);
}

TEST(TimeoutQueueTest, DestroyedTimeoutLeavesItsQueue) {
    vxtest::ScriptedClock theClock;
    Queue theQueue;
    vxTimeout theLast;
    theQueue.TimeoutStart(&theLast, 20);
    {
        vxTimeout theFirst;
        theQueue.TimeoutStart(&theFirst, 10);
        EXPECT_EQ(theQueue.FirstExpiringTimeout(), &theFirst);
    }
    EXPECT_EQ(theQueue.FirstExpiringTimeout(), &theLast);
}

TEST(TimeoutQueueTest, DestroyedQueueLetsGoOfItsTimeouts) {
    vxtest::ScriptedClock theClock;
    vxTimeout theA;
    vxTimeout theB;
    {
        Queue theQueue;
        theQueue.TimeoutStart(&theA, 10);
        theQueue.TimeoutStart(&theB, 20);
    }
    EXPECT_EQ(theA.mNext, nullptr);
    EXPECT_EQ(theB.mPrev, nullptr);
    Queue theOther;
    theOther.TimeoutStart(&theB, 5);
    EXPECT_EQ(theOther.FirstExpiringTimeout(), &theB);
}

TEST(TimeoutQueueTest, ExpiredTimeoutsAreHandledOncePerCall) {
    vxtest::ScriptedClock theClock;
    Queue theQueue;
    theQueue.HandleExpiredTimeouts();
    EXPECT_EQ(theQueue.mCalls, 0);

    vxTimeout theA;
    vxTimeout theB;
    theQueue.TimeoutStart(&theA, 10);
    theQueue.TimeoutStart(&theB, 10);
    theClock.Advance(9);
    theQueue.HandleExpiredTimeouts();
    EXPECT_EQ(theQueue.mCalls, 0);
    theClock.Advance(1);
    theQueue.HandleExpiredTimeouts();
    EXPECT_EQ(theQueue.mCalls, 1);
    theQueue.HandleExpiredTimeouts();
    EXPECT_EQ(theQueue.mCalls, 2);
}

TEST(TimeoutQueueTest, OwnerIsCalledOnceThoughItHandlesOneOfTwoExpired) {
    class Lazy : public Queue {
    public:
        void OnTimeouts() override {
            Queue::OnTimeouts();
            TimeoutCancel(FirstExpiringTimeout());
        }
    };
    vxtest::ScriptedClock theClock;
    Lazy theQueue;
    vxTimeout theA;
    vxTimeout theB;
    theQueue.TimeoutStart(&theA, 10);
    theQueue.TimeoutStart(&theB, 10);
    theClock.Advance(10);
    theQueue.HandleExpiredTimeouts();
    EXPECT_EQ(theQueue.mCalls, 1);
    EXPECT_EQ(theQueue.FirstExpiringTimeout(), &theB);
    theQueue.HandleExpiredTimeouts();
    theQueue.HandleExpiredTimeouts();
    EXPECT_EQ(theQueue.mCalls, 2);
}

TEST(TimeoutQueueTest, OrderIsThatOfRemainingTimesAcrossTheWrapOfTheCounter) {
    vxtest::ScriptedClock theClock(4294967290U);
    Queue theQueue;
    vxTimeout theBefore;
    vxTimeout theBehind;
    vxTimeout theAt;
    vxTimeout theLater;
    theQueue.TimeoutStart(&theBehind, 20);
    theQueue.TimeoutStart(&theBefore, 5);
    theQueue.TimeoutStart(&theAt, 6);
    theClock.Advance(6);
    EXPECT_EQ(theClock.GetTick(), 0U);
    EXPECT_TRUE(theAt.IsExpired());
    EXPECT_FALSE(theBehind.IsExpired());
    theQueue.TimeoutStart(&theLater, 13);
    EXPECT_THAT(theQueue.Drain(), ElementsAre(&theBefore, &theAt, &theLater, &theBehind));
}

TEST(TimeoutQueueTest, BaseHandlesNothingByItself) {
    vxtest::ScriptedClock theClock;
    vxTimeoutQueue theQueue;
    vxTimeout theTimeout;
    theQueue.TimeoutStart(&theTimeout, 0);
    theQueue.HandleExpiredTimeouts();
    EXPECT_EQ(theQueue.FirstExpiringTimeout(), &theTimeout);
}

class OverridingQueue : public Queue {
public:
    vxTimeout* FirstExpiringTimeout() override { return mFirst; }
    vxTimeout* mFirst = nullptr;
};

TEST(TimeoutQueueTest, ExpiryIsThatOfTheOverriddenFirstTimeout) {
    vxtest::ScriptedClock theClock;
    OverridingQueue theQueue;
    vxTimeout theOwn;
    vxTimeout theForeign;
    theQueue.TimeoutStart(&theOwn, 0);
    theQueue.HandleExpiredTimeouts();
    EXPECT_EQ(theQueue.mCalls, 0);
    theForeign.Start(0);
    theQueue.mFirst = &theForeign;
    theQueue.HandleExpiredTimeouts();
    EXPECT_EQ(theQueue.mCalls, 1);
}

// The plain model: a walk from the front that stops at the first time-out with more left.
struct Model {
    struct Entry {
        vxTimeout* mTimeout;
        uint32_t mStart;
        uint32_t mDuration;
    };

    static uint32_t Remaining(const Entry& anEntry, uint32_t aTick) {
        const uint32_t theElapsed = aTick - anEntry.mStart;
        return theElapsed >= anEntry.mDuration ? 0 : anEntry.mDuration - theElapsed;
    }

    void Cancel(vxTimeout* aTimeout) {
        mEntries.erase(
            std::remove_if(mEntries.begin(), mEntries.end(),
                           [&](const Entry& anEntry) { return anEntry.mTimeout == aTimeout; }),
            mEntries.end());
    }

    void Start(vxTimeout* aTimeout, uint32_t aMS, uint32_t aTick) {
        Cancel(aTimeout);
        size_t thePlace = 0;
        while (thePlace < mEntries.size() && Remaining(mEntries[thePlace], aTick) <= aMS) {
            ++thePlace;
        }
        mEntries.insert(mEntries.begin() + static_cast<std::ptrdiff_t>(thePlace),
                        {aTimeout, aTick, aMS});
    }

    std::vector<vxTimeout*> Order() const {
        std::vector<vxTimeout*> theOrder;
        for (const Entry& theEntry : mEntries) {
            theOrder.push_back(theEntry.mTimeout);
        }
        return theOrder;
    }

    std::vector<Entry> mEntries;
};

TEST(TimeoutQueueTest, RandomStartsAndCancelsKeepTheOrderOfTheModel) {
    std::mt19937 theRandom(20240607);
    for (int theGame = 0; theGame < 40; ++theGame) {
        vxtest::ScriptedClock theClock(0xFFFFFC00);
        std::vector<std::unique_ptr<vxTimeout>> theTimeouts;
        for (int i = 0; i < 12; ++i) {
            theTimeouts.push_back(std::make_unique<vxTimeout>());
        }
        Queue theQueue;
        Model theModel;
        for (int i = 0; i < 200; ++i) {
            vxTimeout* theTimeout = theTimeouts[theRandom() % 12].get();
            if (theRandom() % 5 == 0) {
                theQueue.TimeoutCancel(theTimeout);
                theModel.Cancel(theTimeout);
            } else {
                const uint32_t theMS = static_cast<uint32_t>(theRandom() % 30);
                theQueue.TimeoutStart(theTimeout, theMS);
                theModel.Start(theTimeout, theMS, theClock.GetTick());
            }
            theClock.Advance(static_cast<uint32_t>(theRandom() % 12));
        }
        EXPECT_THAT(theQueue.Drain(), ElementsAreArray(theModel.Order()));
        EXPECT_THAT(theQueue.Drain(), IsEmpty());
    }
}

}  // namespace
