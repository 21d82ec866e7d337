// Wake-ups from many threads against a driver that sleeps as soon as it may. A lost wake-up would
// leave the driver asleep while every thread waits for it: it gives up after a long time then, and
// the test fails.

#include "vx/Applet.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "vx/Condition.h"
#include "vx/Select.h"
#include "vx/Semaphore.h"

namespace {

constexpr unsigned int kGivingUp = 30000;  // milliseconds

class ConditionRoot : public vxApplet {
public:
    ConditionRoot() { AppletSetOptions(vxAppletOption_Multithreaded); }
    void RaiseWakeUpSignal() override { mCondition.Signal(); }
    void WaitWakeUpSignal(unsigned int) override {
        mfGaveUp = mCondition.WaitTimeout(kGivingUp) != 0;
    }
    vxAppletMsg AppletLoop(vxAppletMsg) override { return vxAppletMsg_None; }

    bool mfGaveUp = false;

private:
    vxCondition mCondition;
};

class SelectRoot : public vxApplet {
public:
    SelectRoot() {
        AppletSetOptions(vxAppletOption_Multithreaded);
        mSelect.Setup();
    }
    void RaiseWakeUpSignal() override { mSelect.Signal(); }
    void WaitWakeUpSignal(unsigned int) override {
        timeval theTimeout = {kGivingUp / 1000, 0};
        bool theTriggered = false;
        mSelect.Select(NULL, NULL, NULL, 0, &theTimeout, &theTriggered);
        mfGaveUp = !theTriggered;
    }
    vxAppletMsg AppletLoop(vxAppletMsg) override { return vxAppletMsg_None; }

    bool mfGaveUp = false;

private:
    vxSelect mSelect;
};

/// A thread writes a number, wakes its leaf, and goes on when the leaf has read that number.
struct Mailbox {
    int mPosted = 0;  // plain: only the wake-up carries it over
    std::atomic<int> mRead{0};
};

class Leaf : public vxApplet {
public:
    vxAppletMsg AppletLoop(vxAppletMsg) override {
        for (Mailbox* theBox : mBoxes) {
            theBox->mRead.store(theBox->mPosted);
        }
        return vxAppletMsg_None;
    }

    std::vector<Mailbox*> mBoxes;
};

template <typename Root>
void RunRounds(int aRounds) {
    constexpr int kThreads = 4;
    Root theRoot;
    vxApplet theBranches[2];
    Leaf theLeaves[kThreads];
    Mailbox theBoxes[kThreads];
    for (vxApplet& theBranch : theBranches) {
        theRoot.AppletAttach(&theBranch, vxAppletOption_None);
    }
    for (int i = 0; i < kThreads; ++i) {
        theBranches[i % 2].AppletAttach(&theLeaves[i], vxAppletOption_None);
        theLeaves[i].mBoxes.push_back(&theBoxes[i]);
    }

    std::atomic<int> theRunning{kThreads};
    std::atomic<bool> theHasGivenUp{false};
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&, i] {
            for (int theRound = 1; theRound <= aRounds && !theHasGivenUp; ++theRound) {
                theBoxes[i].mPosted = theRound;
                theLeaves[i].AppletWakeUp();
                while (theBoxes[i].mRead.load() != theRound && !theHasGivenUp) {
                    std::this_thread::yield();
                }
            }
            --theRunning;
            theRoot.AppletWakeUp();
        });
    }
    while (theRunning != 0 && !theHasGivenUp) {
        theRoot.AppletRun(vxAppletMsg_None);
        theRoot.SelfWait();
        theHasGivenUp = theRoot.mfGaveUp;
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_FALSE(theHasGivenUp);
    for (const Mailbox& theBox : theBoxes) {
        EXPECT_EQ(theBox.mRead, aRounds);
    }
}

TEST(AppletWakeUpTest, NoWakeUpIsLostWithACondition) {
    RunRounds<ConditionRoot>(20000);
}

TEST(AppletWakeUpTest, NoWakeUpIsLostWithASelect) {
    RunRounds<SelectRoot>(10000);
}

// Two wake-ups in a row, the second at every distance from the first: it comes before, while and
// after the driver takes the first one. If it finds the applet awake, the loop that runs must see
// what was written before it.
TEST(AppletWakeUpTest, SecondWakeUpIsNotLostWhileTheFirstIsTaken) {
    constexpr int kRounds = 30000;
    class Reader : public ConditionRoot {
    public:
        vxAppletMsg AppletLoop(vxAppletMsg) override {
            mRead.store(mPosted.load(std::memory_order_relaxed));
            return vxAppletMsg_None;
        }
        std::atomic<int> mPosted{0};
        std::atomic<int> mRead{0};
    };
    Reader theRoot;
    std::atomic<bool> theIsOver{false};
    std::atomic<bool> theHasGivenUp{false};
    std::thread theOther([&] {
        for (int theRound = 1; theRound <= kRounds; ++theRound) {
            theRoot.mPosted.store(2 * theRound - 1, std::memory_order_relaxed);
            theRoot.AppletWakeUp();
            for (int i = theRound % 256 * 64; i > 0; --i) {
                std::atomic_signal_fence(std::memory_order_seq_cst);
            }
            theRoot.mPosted.store(2 * theRound, std::memory_order_relaxed);
            theRoot.AppletWakeUp();
            while (theRoot.mRead.load() != 2 * theRound) {
                if (theHasGivenUp) {
                    return;
                }
                std::this_thread::yield();
            }
        }
        theIsOver = true;
        theRoot.AppletWakeUp();
    });
    while (!theIsOver && !theHasGivenUp) {
        theRoot.AppletRun(vxAppletMsg_None);
        theRoot.SelfWait();
        theHasGivenUp = theRoot.mfGaveUp;
    }
    theOther.join();
    EXPECT_FALSE(theHasGivenUp);
}

// Several threads wake one leaf: most calls find it awake already and return at once, yet what
// their callers wrote must be seen.
TEST(AppletWakeUpTest, WakeUpThatFindsTheAppletAwakeCountsToo) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 10000;
    ConditionRoot theRoot;
    struct SharedBox {
        std::atomic<int> mPosted{0};
        vxSemaphore mRead{0};
    };
    SharedBox theBoxes[kThreads];

    class Reader : public vxApplet {
    public:
        explicit Reader(SharedBox* aBoxes) : mBoxes(aBoxes) {}
        vxAppletMsg AppletLoop(vxAppletMsg) override {
            for (int i = 0; i < kThreads; ++i) {
                const int thePosted = mBoxes[i].mPosted.load(std::memory_order_relaxed);
                if (thePosted != mSeen[i]) {
                    mSeen[i] = thePosted;
                    mBoxes[i].mRead.Post();
                }
            }
            return vxAppletMsg_None;
        }

    private:
        SharedBox* mBoxes;
        int mSeen[kThreads] = {};
    };
    Reader theReader(theBoxes);
    theRoot.AppletAttach(&theReader, vxAppletOption_None);

    std::atomic<int> theRunning{kThreads};
    std::atomic<bool> theHasGivenUp{false};
    std::vector<std::thread> theThreads;
    for (SharedBox& theBox : theBoxes) {
        theThreads.emplace_back([&] {
            for (int theRound = 1; theRound <= kRounds && !theHasGivenUp; ++theRound) {
                theBox.mPosted.store(theRound, std::memory_order_relaxed);
                theReader.AppletWakeUp();
                if (theBox.mRead.WaitTimeout(kGivingUp) != 0) {
                    theHasGivenUp = true;
                }
            }
            --theRunning;
            theRoot.AppletWakeUp();
        });
    }
    while (theRunning != 0) {
        theRoot.AppletRun(vxAppletMsg_None);
        theRoot.SelfWait();
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_FALSE(theHasGivenUp);
    EXPECT_FALSE(theRoot.mfGaveUp);
}

}  // namespace
