#include <libvxOS/Condition.h>

#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <thread>
#include <vector>

#include "support/Latch.h"

namespace {

class OSConditionTest : public testing::Test {
protected:
    ~OSConditionTest() override {
        vxCondition_Delete(mCondition);
        vxMutex_Delete(mMutex);
    }

    /// Returns when it is so, asked under the mutex.
    template <typename IsSo>
    void Await(IsSo anIsSo) {
        for (bool theIsSo = false; !theIsSo;) {
            vxMutex_Lock(mMutex);
            theIsSo = anIsSo();
            vxMutex_Unlock(mMutex);
        }
    }

    /// Starts a thread that waits for one signal, and returns when it sleeps.
    std::thread StartSleeper() {
        std::thread theThread([this] {
            vxMutex_Lock(mMutex);
            mfIsWaiting = true;
            EXPECT_EQ(vxCondition_Wait(mCondition, mMutex), 0);
            mfIsBack = true;
            vxMutex_Unlock(mMutex);
        });
        Await([this] { return mfIsWaiting; });
        return theThread;
    }

    vxOSCondition* mCondition = vxCondition_New();
    vxOSMutex* mMutex = vxMutex_New();
    bool mfIsWaiting = false;  // of the sleeper, under the mutex
    bool mfIsBack = false;
};

TEST_F(OSConditionTest, WaitLetsGoOfTheMutexAndHoldsItAgain) {
    bool theIsWaiting = false;  // guarded by mMutex, and so on
    bool theIsReady = false;
    std::thread theOther([&] {
        vxMutex_Lock(mMutex);
        theIsWaiting = true;
        while (!theIsReady) {
            EXPECT_EQ(vxCondition_Wait(mCondition, mMutex), 0);
            EXPECT_EQ(vxMutex_IsHeld(mMutex), 1);
        }
        vxMutex_Unlock(mMutex);
    });
    for (bool theIsDone = false; !theIsDone;) {
        vxMutex_Lock(mMutex);
        if (theIsWaiting) {
            theIsReady = true;
            EXPECT_EQ(vxCondition_Signal(mCondition), 0);
            theIsDone = true;
        }
        vxMutex_Unlock(mMutex);
    }
    theOther.join();
}

TEST_F(OSConditionTest, WaitLetsGoOfEveryLevelAndRestoresThem) {
    bool theIsWaiting = false;
    bool theIsReady = false;
    std::thread theOther([&] {
        vxMutex_Lock(mMutex);
        vxMutex_Lock(mMutex);
        vxMutex_Lock(mMutex);
        theIsWaiting = true;
        while (!theIsReady) {
            vxCondition_Wait(mCondition, mMutex);
        }
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(vxMutex_Unlock(mMutex), 0);
        }
        EXPECT_EQ(vxMutex_Unlock(mMutex), EPERM);
    });
    for (bool theIsDone = false; !theIsDone;) {
        vxMutex_Lock(mMutex);
        if (theIsWaiting) {
            theIsReady = true;
            vxCondition_Signal(mCondition);
            theIsDone = true;
        }
        vxMutex_Unlock(mMutex);
    }
    theOther.join();
}

TEST_F(OSConditionTest, TimedWaitLastsAtLeastAsLongAsAskedAndHoldsTheMutexAgain) {
    for (const uint32_t theTimeout : {0U, 1U, 30U}) {
        SCOPED_TRACE(theTimeout);
        vxMutex_Lock(mMutex);
        const auto theStart = std::chrono::steady_clock::now();
        EXPECT_EQ(vxCondition_WaitTimeout(mCondition, mMutex, theTimeout), ETIMEDOUT);
        EXPECT_GE(std::chrono::steady_clock::now() - theStart,
                  std::chrono::milliseconds(theTimeout));
        EXPECT_EQ(vxMutex_IsHeld(mMutex), 1);
        vxMutex_Unlock(mMutex);
    }
}

TEST_F(OSConditionTest, LargestTimeoutIsATimeLikeAnyOther) {
    bool theIsWaiting = false;
    bool theIsReady = false;
    std::thread theOther([&] {
        vxMutex_Lock(mMutex);
        theIsWaiting = true;
        while (!theIsReady) {
            EXPECT_EQ(vxCondition_WaitTimeout(mCondition, mMutex, 0xFFFFFFFF), 0);
        }
        vxMutex_Unlock(mMutex);
    });
    for (bool theIsDone = false; !theIsDone;) {
        vxMutex_Lock(mMutex);
        if (theIsWaiting) {
            theIsReady = true;
            vxCondition_Signal(mCondition);
            theIsDone = true;
        }
        vxMutex_Unlock(mMutex);
    }
    theOther.join();
}

TEST_F(OSConditionTest, EverySignalWakesOneMoreOfTheWaitingThreads) {
    constexpr int kThreads = 4;
    int theTickets = 0;
    int theWaiting = 0;
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&] {
            vxMutex_Lock(mMutex);
            ++theWaiting;
            while (theTickets == 0) {
                vxCondition_Wait(mCondition, mMutex);
            }
            --theTickets;
            vxMutex_Unlock(mMutex);
        });
    }
    for (bool theAreWaiting = false; !theAreWaiting;) {
        vxMutex_Lock(mMutex);
        theAreWaiting = theWaiting == kThreads;
        vxMutex_Unlock(mMutex);
    }
    for (int i = 0; i < kThreads; ++i) {
        vxMutex_Lock(mMutex);
        ++theTickets;
        vxCondition_Signal(mCondition);
        vxMutex_Unlock(mMutex);
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theTickets, 0);
}

TEST_F(OSConditionTest, OneSignalEndsOneOfTwoWaits) {
    vxtest::Latch theFirstWaits(1);
    vxtest::Latch theSecondWaits(1);
    bool theFirstIsBack = false;
    int theResult = -1;
    std::thread theFirst([&] {
        vxMutex_Lock(mMutex);
        theFirstWaits.CountDown();
        EXPECT_EQ(vxCondition_Wait(mCondition, mMutex), 0);
        theFirstIsBack = true;
        vxMutex_Unlock(mMutex);
    });
    theFirstWaits.Wait();
    std::thread theSecond([&] {
        vxMutex_Lock(mMutex);  // free only while the first sleeps
        theSecondWaits.CountDown();
        theResult = vxCondition_WaitTimeout(mCondition, mMutex, 50);
        vxMutex_Unlock(mMutex);
    });
    theSecondWaits.Wait();
    vxMutex_Lock(mMutex);
    vxCondition_Signal(mCondition);
    vxMutex_Unlock(mMutex);
    theSecond.join();
    vxMutex_Lock(mMutex);
    if (theResult == 0) {
        EXPECT_FALSE(theFirstIsBack);
        vxCondition_Signal(mCondition);
    } else {
        EXPECT_EQ(theResult, ETIMEDOUT);
    }
    vxMutex_Unlock(mMutex);
    theFirst.join();
}

TEST_F(OSConditionTest, SignalsBeyondTheWaitersAreNotRemembered) {
    int theWaiting = 0;
    int theReturned = 0;
    const auto theWait = [&] {
        vxMutex_Lock(mMutex);
        ++theWaiting;
        EXPECT_EQ(vxCondition_Wait(mCondition, mMutex), 0);
        ++theReturned;
        vxMutex_Unlock(mMutex);
    };
    std::thread theFirst(theWait);
    std::thread theSecond(theWait);
    for (bool theIsDone = false; !theIsDone;) {
        vxMutex_Lock(mMutex);
        theIsDone = theWaiting == 2;
        for (int i = 0; theIsDone && i < 1000; ++i) {
            EXPECT_EQ(vxCondition_Signal(mCondition), 0);
        }
        vxMutex_Unlock(mMutex);
    }
    theFirst.join();
    theSecond.join();
    EXPECT_EQ(theReturned, 2);
    vxMutex_Lock(mMutex);
    EXPECT_EQ(vxCondition_WaitTimeout(mCondition, mMutex, 1), ETIMEDOUT);
    vxMutex_Unlock(mMutex);
}

std::atomic<bool> sfIsHeldUp{false};
std::atomic<bool> sfMayGoOn{false};

// Interrupts the thread for as long as the test likes: nothing else may be done here.
extern "C" void OSConditionTest_HoldUp(int) {
    sfIsHeldUp = true;
    while (!sfMayGoOn) {
        sched_yield();
    }
}

/// Handles SIGUSR2 in this way as long as it lives; sleeps of the system end with it.
class SignalHandler {
public:
    explicit SignalHandler(void (*aHandler)(int)) {
        struct sigaction theAction = {};
        theAction.sa_handler = aHandler;  // no SA_RESTART
        sigaction(SIGUSR2, &theAction, &mOld);
    }
    ~SignalHandler() { sigaction(SIGUSR2, &mOld, nullptr); }

private:
    struct sigaction mOld = {};
};

// A thread that gives a signal and then waits itself must not take that signal away from the one
// that slept before, even if that one is slow: it would sleep for ever.
TEST_F(OSConditionTest, SignalIsForThoseThatWaitedBeforeIt) {
    const SignalHandler theHandler(OSConditionTest_HoldUp);
    sfIsHeldUp = false;
    sfMayGoOn = false;
    std::thread theOther = StartSleeper();
    pthread_kill(theOther.native_handle(), SIGUSR2);
    while (!sfIsHeldUp) {
        sched_yield();
    }
    vxMutex_Lock(mMutex);
    EXPECT_EQ(vxCondition_Signal(mCondition), 0);
    EXPECT_EQ(vxCondition_WaitTimeout(mCondition, mMutex, 1), ETIMEDOUT);
    EXPECT_FALSE(mfIsBack);
    sfMayGoOn = true;
    for (int i = 0; !mfIsBack && i < 1000; ++i) {
        vxCondition_WaitTimeout(mCondition, mMutex, 60);
    }
    EXPECT_TRUE(mfIsBack);
    if (!mfIsBack) {
        vxCondition_Signal(mCondition);
    }
    vxMutex_Unlock(mMutex);
    theOther.join();
}

TEST_F(OSConditionTest, ThreadsAreWokenInTheOrderInWhichTheyCame) {
    constexpr int kThreads = 4;
    int theWaiting = 0;
    std::vector<int> theOrder;
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&, i] {
            vxMutex_Lock(mMutex);
            ++theWaiting;
            EXPECT_EQ(vxCondition_WaitTimeout(mCondition, mMutex, 0xFFFFFFFF), 0);
            theOrder.push_back(i);
            vxMutex_Unlock(mMutex);
        });
        Await([&] { return theWaiting == i + 1; });
    }
    for (size_t i = 1; i <= kThreads; ++i) {
        vxCondition_Signal(mCondition);
        Await([&] { return theOrder.size() == i; });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theOrder, (std::vector<int>{0, 1, 2, 3}));
}

// Time-outs leave from the front, the middle and the end of those that wait, at the moments at which
// signals come, with and without the mutex.
TEST_F(OSConditionTest, TimeOutsAmongOthersLoseNoSignal) {
    constexpr int kRounds = 300;
    constexpr int kPatient = 3;
    for (int theRound = 0; theRound < kRounds; ++theRound) {
        int theWaiting = 0;
        int theBack = 0;
        int theSignaled = 0;
        std::vector<std::thread> theThreads;
        for (int i = 0; i < 2 * kPatient; ++i) {
            theThreads.emplace_back([&, i] {
                vxMutex_Lock(mMutex);
                ++theWaiting;
                const int theResult = i % 2 == 0 ? vxCondition_WaitTimeout(mCondition, mMutex, 1)
                                                 : vxCondition_Wait(mCondition, mMutex);
                EXPECT_TRUE(theResult == 0 || (i % 2 == 0 && theResult == ETIMEDOUT)) << theResult;
                theSignaled += theResult == 0 ? 1 : 0;
                ++theBack;
                vxMutex_Unlock(mMutex);
            });
        }
        bool theIsDone = false;
        for (int i = 0; !theIsDone; ++i) {
            vxMutex_Lock(mMutex);
            theIsDone = theBack == 2 * kPatient;
            const bool theAllWait = theWaiting == 2 * kPatient;
            if (theAllWait && i % 2 == 0) {
                vxCondition_Signal(mCondition);
            }
            vxMutex_Unlock(mMutex);
            if (theAllWait && i % 2 == 1) {
                vxCondition_Signal(mCondition);
            }
        }
        for (std::thread& theThread : theThreads) {
            theThread.join();
        }
        EXPECT_GE(theSignaled, kPatient);
    }
    vxMutex_Lock(mMutex);
    EXPECT_EQ(vxCondition_WaitTimeout(mCondition, mMutex, 0), ETIMEDOUT);
    vxMutex_Unlock(mMutex);
}

// The thread that is woken may delete both at once, though the one that gave the signal, or unlocked,
// may not have returned yet.
TEST(OSConditionLifeTest, WokenThreadMayDeleteConditionAndMutex) {
    for (int i = 0; i < 2000; ++i) {
        vxOSCondition* theCondition = vxCondition_New();
        vxOSMutex* theMutex = vxMutex_New();
        vxMutex_Lock(theMutex);
        std::thread theOther([theCondition, theMutex] {
            vxMutex_Lock(theMutex);  // free only while the first sleeps
            EXPECT_EQ(vxCondition_Signal(theCondition), 0);
            vxMutex_Unlock(theMutex);
        });
        EXPECT_EQ(vxCondition_Wait(theCondition, theMutex), 0);
        vxMutex_Unlock(theMutex);
        vxCondition_Delete(theCondition);
        vxMutex_Delete(theMutex);
        theOther.join();
    }
}

TEST(OSConditionLifeTest, ThreadWokenWithoutTheMutexMayDeleteTheConditionAsWell) {
    for (int i = 0; i < 2000; ++i) {
        vxOSCondition* theCondition = vxCondition_New();
        vxOSMutex* theMutex = vxMutex_New();
        vxMutex_Lock(theMutex);
        std::thread theOther([theCondition, theMutex] {
            vxMutex_Lock(theMutex);
            vxMutex_Unlock(theMutex);
            EXPECT_EQ(vxCondition_Signal(theCondition), 0);
        });
        // Only a thread that was signaled knows that the signal is through.
        EXPECT_EQ(vxCondition_Wait(theCondition, theMutex), 0);
        vxMutex_Unlock(theMutex);
        vxCondition_Delete(theCondition);
        vxMutex_Delete(theMutex);
        theOther.join();
    }
}

extern "C" void OSConditionTest_Ignore(int) {}

TEST_F(OSConditionTest, InterruptionsEndNoWait) {
    const SignalHandler theHandler(OSConditionTest_Ignore);
    std::thread theOther = StartSleeper();
    for (int i = 0; i < 1000; ++i) {
        pthread_kill(theOther.native_handle(), SIGUSR2);
        vxMutex_Lock(mMutex);
        EXPECT_FALSE(mfIsBack);
        EXPECT_EQ(vxCondition_WaitTimeout(mCondition, mMutex, 0), ETIMEDOUT);
        vxMutex_Unlock(mMutex);
    }
    vxCondition_Signal(mCondition);
    theOther.join();
    EXPECT_TRUE(mfIsBack);
}

// Signals come with and without the mutex, waits with and without a limit.
TEST_F(OSConditionTest, ManyProducersAndConsumersLoseNothing) {
    constexpr int kEach = 20000;
    int theItems = 0;
    std::vector<std::thread> theThreads;
    for (int i = 0; i < 2; ++i) {
        theThreads.emplace_back([&, i] {
            for (int j = 0; j < kEach; ++j) {
                vxMutex_Lock(mMutex);
                ++theItems;
                if (i == 0) {
                    vxCondition_Signal(mCondition);
                }
                vxMutex_Unlock(mMutex);
                if (i == 1) {
                    vxCondition_Signal(mCondition);
                }
            }
        });
        theThreads.emplace_back([&, i] {
            for (int j = 0; j < kEach; ++j) {
                vxMutex_Lock(mMutex);
                while (theItems == 0) {
                    if (i == 0) {
                        vxCondition_Wait(mCondition, mMutex);
                    } else {
                        vxCondition_WaitTimeout(mCondition, mMutex, 1);
                    }
                }
                --theItems;
                vxMutex_Unlock(mMutex);
            }
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theItems, 0);
}

TEST_F(OSConditionTest, TwoThreadsHandATurnBackAndForthWithoutLosingOne) {
    constexpr int kRounds = 20000;
    int theTurn = 0;
    const auto thePlay = [&](int anOwn) {
        for (int i = 0; i < kRounds; ++i) {
            vxMutex_Lock(mMutex);
            while (theTurn % 2 != anOwn) {
                vxCondition_Wait(mCondition, mMutex);
            }
            ++theTurn;
            vxCondition_Signal(mCondition);
            vxMutex_Unlock(mMutex);
        }
    };
    std::thread theOther([&] { thePlay(1); });
    thePlay(0);
    theOther.join();
    EXPECT_EQ(theTurn, 40000);
}

TEST_F(OSConditionTest, SignalWithoutWaitersIsNotRemembered) {
    EXPECT_EQ(vxCondition_Signal(mCondition), 0);
    vxMutex_Lock(mMutex);
    EXPECT_EQ(vxCondition_WaitTimeout(mCondition, mMutex, 1), ETIMEDOUT);
    vxMutex_Unlock(mMutex);
}

TEST_F(OSConditionTest, WaitWithoutTheMutexIsRefused) {
    EXPECT_EQ(vxCondition_Wait(mCondition, mMutex), EPERM);
    EXPECT_EQ(vxCondition_WaitTimeout(mCondition, mMutex, 1), EPERM);
    EXPECT_EQ(vxMutex_IsHeld(mMutex), 0);
}

TEST_F(OSConditionTest, NullHandlesAreRefused) {
    EXPECT_EQ(vxCondition_Wait(nullptr, mMutex), EINVAL);
    EXPECT_EQ(vxCondition_Wait(mCondition, nullptr), EINVAL);
    EXPECT_EQ(vxCondition_WaitTimeout(nullptr, mMutex, 1), EINVAL);
    EXPECT_EQ(vxCondition_WaitTimeout(mCondition, nullptr, 1), EINVAL);
    EXPECT_EQ(vxCondition_Signal(nullptr), EINVAL);
    vxCondition_Delete(nullptr);
}

}  // namespace
