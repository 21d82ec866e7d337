#include "vx/Broadcaster.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/Reports.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::has_virtual_destructor_v<vxBroadcaster>);
static_assert(std::has_virtual_destructor_v<vxListener>);

using Calls = std::vector<std::string>;

/// Notes its calls as "name:message", then does what it was told to do on them.
class Listener : public vxListener {
public:
    explicit Listener(Calls& aCalls, const char* aName = "a") : mCalls(aCalls), mName(aName) {}
    void ListenToMessage(int aMessage, void* aParam) override {
        mCalls.push_back(mName + ":" + std::to_string(aMessage));
        mParam = aParam;
        if (mOnMessage) {
            mOnMessage();
        }
    }

    Calls& mCalls;
    std::string mName;
    void* mParam = nullptr;
    std::function<void()> mOnMessage;
};

/// Counts what the other side asks of it.
class CountingBroadcaster : public vxBroadcaster {
public:
    void AddListener(vxListener* aListener) override {
        ++mAdded;
        vxBroadcaster::AddListener(aListener);
    }
    void RemoveListener(vxListener* aListener) override {
        ++mRemoved;
        vxBroadcaster::RemoveListener(aListener);
    }

    int mAdded = 0;
    int mRemoved = 0;
};

/// What a broadcast of message 1 calls.
Calls Reached(vxBroadcaster& aBroadcaster, Calls& aCalls) {
    aCalls.clear();
    aBroadcaster.BroadcastMessage(1, nullptr);
    return std::move(aCalls);
}

TEST(BroadcasterTest, NewOnesSendAndListen) {
    const vxBroadcaster theBroadcaster;
    const vxListener theListener;
    EXPECT_TRUE(theBroadcaster.IsBroadcasting());
    EXPECT_TRUE(theListener.IsListening());
}

TEST(BroadcasterTest, ListenersAreCalledInTheOrderOfRegistration) {
    Calls theCalls;
    vxBroadcaster theBroadcaster;
    Listener theA(theCalls, "a");
    Listener theB(theCalls, "b");
    Listener theC(theCalls, "c");
    theBroadcaster.AddListener(&theB);
    theBroadcaster.AddListener(&theA);
    theBroadcaster.AddListener(&theC);

    int theParam = 0;
    theBroadcaster.BroadcastMessage(-7, &theParam);

    EXPECT_THAT(theCalls, ElementsAre("b:-7", "a:-7", "c:-7"));
    EXPECT_EQ(theA.mParam, &theParam);
    EXPECT_EQ(theC.mParam, &theParam);
}

TEST(BroadcasterTest, MessageWithoutListenersGoesNowhere) {
    vxBroadcaster theBroadcaster;
    theBroadcaster.BroadcastMessage(1, nullptr);
}

TEST(BroadcasterTest, BaseListenerHearsNothing) {
    vxBroadcaster theBroadcaster;
    vxListener theListener;
    theBroadcaster.AddListener(&theListener);
    theBroadcaster.BroadcastMessage(1, nullptr);
}

TEST(BroadcasterTest, ListenerIsRegisteredOnceHoweverOftenItIsAdded) {
    Calls theCalls;
    CountingBroadcaster theBroadcaster;
    {
        Listener theListener(theCalls);
        theBroadcaster.AddListener(&theListener);
        theBroadcaster.AddListener(&theListener);
        EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("a:1"));
    }
    // The listener had noted its broadcaster once.
    EXPECT_EQ(theBroadcaster.mRemoved, 1);
    EXPECT_THAT(Reached(theBroadcaster, theCalls), IsEmpty());
}

TEST(BroadcasterTest, AddingAgainKeepsThePlace) {
    Calls theCalls;
    vxBroadcaster theBroadcaster;
    Listener theA(theCalls, "a");
    Listener theB(theCalls, "b");
    theBroadcaster.AddListener(&theA);
    theBroadcaster.AddListener(&theB);
    theBroadcaster.AddListener(&theA);
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("a:1", "b:1"));
}

TEST(BroadcasterTest, RemovedListenerIsNotCalledAndMayComeBack) {
    Calls theCalls;
    vxBroadcaster theBroadcaster;
    Listener theA(theCalls, "a");
    Listener theB(theCalls, "b");
    theBroadcaster.AddListener(&theA);
    theBroadcaster.AddListener(&theB);
    theBroadcaster.RemoveListener(&theA);
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("b:1"));
    theBroadcaster.RemoveListener(&theA);
    theBroadcaster.AddListener(&theA);
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("b:1", "a:1"));
}

TEST(BroadcasterTest, RemovingAStrangerLeavesItsOtherRegistrationsAlone) {
    Calls theCalls;
    vxBroadcaster theBroadcaster;
    vxBroadcaster theOther;
    Listener theListener(theCalls);
    theBroadcaster.AddListener(&theListener);
    theOther.RemoveListener(&theListener);
    theOther.RemoveListener(nullptr);
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("a:1"));
}

TEST(BroadcasterTest, NullListenerIsReportedAndNotRegistered) {
    vxtest::Reports theReports;
    vxBroadcaster theBroadcaster;
    theBroadcaster.AddListener(nullptr);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("aListener != NULL"));
    theBroadcaster.BroadcastMessage(1, nullptr);
}

TEST(BroadcasterTest, StoppedListenerIsPassedByAndStaysRegistered) {
    Calls theCalls;
    vxBroadcaster theBroadcaster;
    Listener theA(theCalls, "a");
    Listener theB(theCalls, "b");
    theBroadcaster.AddListener(&theA);
    theBroadcaster.AddListener(&theB);
    theA.StopListening();
    EXPECT_FALSE(theA.IsListening());
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("b:1"));
    theA.StartListening();
    EXPECT_TRUE(theA.IsListening());
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("a:1", "b:1"));
}

TEST(BroadcasterTest, StoppedBroadcasterSendsNothing) {
    Calls theCalls;
    vxBroadcaster theBroadcaster;
    Listener theListener(theCalls);
    theBroadcaster.AddListener(&theListener);
    theBroadcaster.StopBroadcasting();
    EXPECT_FALSE(theBroadcaster.IsBroadcasting());
    EXPECT_THAT(Reached(theBroadcaster, theCalls), IsEmpty());
    theBroadcaster.StartBroadcasting();
    EXPECT_TRUE(theBroadcaster.IsBroadcasting());
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("a:1"));
}

TEST(BroadcasterTest, StoppingDuringABroadcastCountsFromTheNextOneOn) {
    Calls theCalls;
    vxBroadcaster theBroadcaster;
    Listener theA(theCalls, "a");
    Listener theB(theCalls, "b");
    theBroadcaster.AddListener(&theA);
    theBroadcaster.AddListener(&theB);
    theA.mOnMessage = [&] { theBroadcaster.StopBroadcasting(); };
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("a:1", "b:1"));
    EXPECT_THAT(Reached(theBroadcaster, theCalls), IsEmpty());
}

TEST(BroadcasterTest, ListenerStoppedByAnotherDuringABroadcastIsPassedBy) {
    Calls theCalls;
    vxBroadcaster theBroadcaster;
    Listener theA(theCalls, "a");
    Listener theB(theCalls, "b");
    theBroadcaster.AddListener(&theA);
    theBroadcaster.AddListener(&theB);
    theA.mOnMessage = [&] { theB.StopListening(); };
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("a:1"));
}

TEST(BroadcasterTest, DyingBroadcasterSaysSoToThoseWhoListen) {
    Calls theCalls;
    Listener theA(theCalls, "a");
    Listener theB(theCalls, "b");
    Listener theC(theCalls, "c");
    auto theBroadcaster = std::make_unique<vxBroadcaster>();
    void* theAddress = theBroadcaster.get();
    theBroadcaster->AddListener(&theA);
    theBroadcaster->AddListener(&theB);
    theBroadcaster->AddListener(&theC);
    theB.StopListening();

    theBroadcaster.reset();

    EXPECT_THAT(theCalls, ElementsAre("a:0", "c:0"));
    EXPECT_EQ(theA.mParam, theAddress);
    EXPECT_EQ(theC.mParam, theAddress);
    // The listeners go behind the broadcaster, to which nothing may lead them.
}

TEST(BroadcasterTest, StoppedBroadcasterDiesSilentlyAndIsForgotten) {
    Calls theCalls;
    Listener theListener(theCalls);
    {
        vxBroadcaster theBroadcaster;
        theBroadcaster.AddListener(&theListener);
        theBroadcaster.StopBroadcasting();
    }
    EXPECT_THAT(theCalls, IsEmpty());
}

TEST(BroadcasterTest, MessageOfTheDestructorPointsToTheBroadcasterInsideALargerObject) {
    struct Other {
        virtual ~Other() = default;
        int mFiller = 0;
    };
    struct Both : Other, vxBroadcaster {};
    Calls theCalls;
    Listener theListener(theCalls);
    auto theBoth = std::make_unique<Both>();
    vxBroadcaster* theBroadcaster = theBoth.get();
    ASSERT_NE(static_cast<void*>(theBroadcaster), static_cast<void*>(theBoth.get()));
    theBroadcaster->AddListener(&theListener);
    theBoth.reset();
    EXPECT_EQ(theListener.mParam, theBroadcaster);
}

TEST(BroadcasterTest, DestructorDoesNotAskTheDerivedClassToBroadcast) {
    class Loud : public vxBroadcaster {
    public:
        explicit Loud(int& aCount) : mCount(aCount) {}
        void BroadcastMessage(int aMessage, void* aParam) override {
            ++mCount;
            vxBroadcaster::BroadcastMessage(aMessage, aParam);
        }

    private:
        int& mCount;
    };
    Calls theCalls;
    int theCount = 0;
    Listener theListener(theCalls);
    {
        Loud theBroadcaster(theCount);
        theBroadcaster.AddListener(&theListener);
    }
    EXPECT_EQ(theCount, 0);
    EXPECT_THAT(theCalls, ElementsAre("a:0"));
}

TEST(BroadcasterTest, DyingListenerLeavesEveryBroadcasterThroughItsVirtualOperation) {
    Calls theCalls;
    CountingBroadcaster theBroadcasters[3];
    {
        Listener theListener(theCalls);
        for (CountingBroadcaster& theBroadcaster : theBroadcasters) {
            theBroadcaster.AddListener(&theListener);
        }
    }
    for (CountingBroadcaster& theBroadcaster : theBroadcasters) {
        EXPECT_EQ(theBroadcaster.mRemoved, 1);
        theBroadcaster.BroadcastMessage(1, nullptr);
    }
    EXPECT_THAT(theCalls, IsEmpty());
}

TEST(BroadcasterTest, DyingListenerLeavesABroadcasterThatWouldNotLetItGo) {
    class Clinging : public vxBroadcaster {
    public:
        void RemoveListener(vxListener*) override {}
    };
    Calls theCalls;
    Clinging theFirst;
    CountingBroadcaster theSecond;
    std::optional<Listener> theListener(std::in_place, theCalls);
    theFirst.AddListener(&*theListener);
    theSecond.AddListener(&*theListener);
    theListener.emplace(theCalls);  // another one at the same place
    theFirst.BroadcastMessage(1, nullptr);
    theSecond.BroadcastMessage(1, nullptr);
    EXPECT_EQ(theSecond.mRemoved, 1);
    EXPECT_THAT(theCalls, IsEmpty());
}

TEST(BroadcasterTest, NotesOfAListenerMayBeDoubledAndAreStruckOneByOne) {
    Calls theCalls;
    CountingBroadcaster theBroadcaster;
    {
        Listener theListener(theCalls);
        theListener.AddBroadcaster(&theBroadcaster);
        theListener.AddBroadcaster(&theBroadcaster);
        theListener.AddBroadcaster(&theBroadcaster);
        theListener.RemoveBroadcaster(&theBroadcaster);
    }
    EXPECT_EQ(theBroadcaster.mRemoved, 2);
    {
        Listener theListener(theCalls);
        theListener.RemoveBroadcaster(&theBroadcaster);
    }
    EXPECT_EQ(theBroadcaster.mRemoved, 2);
}

// Copies and assignments

TEST(BroadcasterTest, CopyOfABroadcasterTakesTheFlagOnly) {
    Calls theCalls;
    Listener theListener(theCalls);
    vxBroadcaster theBroadcaster;
    theBroadcaster.AddListener(&theListener);
    const vxBroadcaster theSending(theBroadcaster);
    theBroadcaster.StopBroadcasting();
    vxBroadcaster theStopped(theBroadcaster);
    EXPECT_TRUE(theSending.IsBroadcasting());
    EXPECT_FALSE(theStopped.IsBroadcasting());
    theStopped.StartBroadcasting();
    EXPECT_THAT(Reached(theStopped, theCalls), IsEmpty());
    theBroadcaster.StartBroadcasting();
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("a:1"));
}

TEST(BroadcasterTest, AssignedBroadcasterForgetsItsListenersSilently) {
    Calls theCalls;
    Listener theOld(theCalls, "old");
    Listener theNew(theCalls, "new");
    vxBroadcaster theSource;
    theSource.AddListener(&theNew);
    theSource.StopBroadcasting();
    auto theTarget = std::make_unique<CountingBroadcaster>();
    theTarget->AddListener(&theOld);

    vxBroadcaster& theBase = *theTarget;
    theBase = theSource;

    EXPECT_FALSE(theTarget->IsBroadcasting());
    EXPECT_EQ(theTarget->mRemoved, 0);
    theTarget->StartBroadcasting();
    EXPECT_THAT(Reached(*theTarget, theCalls), IsEmpty());
    theSource.StartBroadcasting();
    EXPECT_THAT(Reached(theSource, theCalls), ElementsAre("new:1"));
    // The old listener is not told of the end either.
    theTarget.reset();
    EXPECT_THAT(theCalls, IsEmpty());
}

TEST(BroadcasterTest, BroadcasterAssignedToItselfForgetsItsListeners) {
    Calls theCalls;
    Listener theListener(theCalls);
    vxBroadcaster theBroadcaster;
    theBroadcaster.AddListener(&theListener);
    const vxBroadcaster& theSame = theBroadcaster;
    theBroadcaster = theSame;
    EXPECT_TRUE(theBroadcaster.IsBroadcasting());
    EXPECT_THAT(Reached(theBroadcaster, theCalls), IsEmpty());
}

TEST(BroadcasterTest, CopyOfAListenerTakesTheFlagOnly) {
    Calls theCalls;
    vxBroadcaster theBroadcaster;
    Listener theListener(theCalls);
    theBroadcaster.AddListener(&theListener);
    const Listener theCopy(theListener);
    EXPECT_TRUE(theCopy.IsListening());
    theListener.StopListening();
    const Listener theDeafCopy(theListener);
    EXPECT_FALSE(theDeafCopy.IsListening());
    theListener.StartListening();
    EXPECT_THAT(Reached(theBroadcaster, theCalls), ElementsAre("a:1"));
}

TEST(BroadcasterTest, AssignedListenerLeavesItsBroadcastersSilently) {
    Calls theCalls;
    CountingBroadcaster theFirst;
    vxBroadcaster theSecond;
    vxBroadcaster theSources;
    auto theTarget = std::make_unique<Listener>(theCalls, "target");
    Listener theSource(theCalls, "source");
    theFirst.AddListener(theTarget.get());
    theSecond.AddListener(theTarget.get());
    theSources.AddListener(&theSource);
    theSource.StopListening();

    static_cast<vxListener&>(*theTarget) = theSource;

    EXPECT_FALSE(theTarget->IsListening());
    EXPECT_EQ(theFirst.mRemoved, 0);
    theTarget->StartListening();
    EXPECT_THAT(Reached(theFirst, theCalls), IsEmpty());
    EXPECT_THAT(Reached(theSecond, theCalls), IsEmpty());
    theSource.StartListening();
    EXPECT_THAT(Reached(theSources, theCalls), ElementsAre("source:1"));
    theTarget.reset();
    EXPECT_EQ(theFirst.mRemoved, 0);
}

TEST(BroadcasterTest, ListenerAssignedToItselfLeavesItsBroadcasters) {
    Calls theCalls;
    vxBroadcaster theBroadcaster;
    Listener theListener(theCalls);
    theBroadcaster.AddListener(&theListener);
    const vxListener& theSame = theListener;
    static_cast<vxListener&>(theListener) = theSame;
    EXPECT_TRUE(theListener.IsListening());
    EXPECT_THAT(Reached(theBroadcaster, theCalls), IsEmpty());
}

// Changes from inside a broadcast. Each listener has a letter; 'b' is the one that acts.

struct Party {
    Party() {
        for (const char* theName : {"a", "b", "c", "d"}) {
            mListeners.push_back(std::make_unique<Listener>(mCalls, theName));
            mBroadcaster->AddListener(mListeners.back().get());
        }
    }
    Listener& operator[](char aName) { return *mListeners[Index(aName)]; }
    void Destroy(char aName) { mListeners[Index(aName)].reset(); }
    void Destroy() { mBroadcaster.reset(); }
    static size_t Index(char aName) { return static_cast<size_t>(aName - 'a'); }

    Calls mCalls;
    std::unique_ptr<vxBroadcaster> mBroadcaster = std::make_unique<vxBroadcaster>();
    std::vector<std::unique_ptr<Listener>> mListeners;
};

struct DuringCase {
    char mActor;
    const char* mTargets;
    std::vector<std::string> mFirst;
    std::vector<std::string> mSecond;
};

const DuringCase kDuringCases[] = {
    {'a', "a", {"a:1", "b:1", "c:1", "d:1"}, {"b:1", "c:1", "d:1"}},
    {'b', "b", {"a:1", "b:1", "c:1", "d:1"}, {"a:1", "c:1", "d:1"}},
    {'d', "d", {"a:1", "b:1", "c:1", "d:1"}, {"a:1", "b:1", "c:1"}},
    {'b', "a", {"a:1", "b:1", "c:1", "d:1"}, {"b:1", "c:1", "d:1"}},
    {'b', "c", {"a:1", "b:1", "d:1"}, {"a:1", "b:1", "d:1"}},
    {'b', "d", {"a:1", "b:1", "c:1"}, {"a:1", "b:1", "c:1"}},
    {'b', "ab", {"a:1", "b:1", "c:1", "d:1"}, {"c:1", "d:1"}},
    {'b', "ba", {"a:1", "b:1", "c:1", "d:1"}, {"c:1", "d:1"}},
    {'b', "bc", {"a:1", "b:1", "d:1"}, {"a:1", "d:1"}},
    {'b', "cb", {"a:1", "b:1", "d:1"}, {"a:1", "d:1"}},
    {'b', "dcba", {"a:1", "b:1"}, {}},
    {'b', "abcd", {"a:1", "b:1"}, {}},
    {'c', "abd", {"a:1", "b:1", "c:1"}, {"c:1"}},
    {'d', "abcd", {"a:1", "b:1", "c:1", "d:1"}, {}},
    {'a', "bcd", {"a:1"}, {"a:1"}},
};

TEST(BroadcasterTest, ListenersLeaveDuringABroadcastInAnyOrder) {
    for (const DuringCase& theCase : kDuringCases) {
        SCOPED_TRACE(std::string("in ") + theCase.mActor + " remove " + theCase.mTargets);
        Party theParty;
        theParty[theCase.mActor].mOnMessage = [&] {
            for (const char* i = theCase.mTargets; *i != 0; ++i) {
                theParty.mBroadcaster->RemoveListener(&theParty[*i]);
            }
        };
        EXPECT_EQ(Reached(*theParty.mBroadcaster, theParty.mCalls), theCase.mFirst);
        theParty[theCase.mActor].mOnMessage = nullptr;
        EXPECT_EQ(Reached(*theParty.mBroadcaster, theParty.mCalls), theCase.mSecond);
    }
}

TEST(BroadcasterTest, ListenersAreDestroyedDuringABroadcastInAnyOrder) {
    for (const DuringCase& theCase : kDuringCases) {
        SCOPED_TRACE(std::string("in ") + theCase.mActor + " destroy " + theCase.mTargets);
        Party theParty;
        std::function<void()> theAction = [&] {
            for (const char* i = theCase.mTargets; *i != 0; ++i) {
                theParty.Destroy(*i);
            }
        };
        // The actor may destroy itself: it keeps only a reference to the action.
        theParty[theCase.mActor].mOnMessage = [&theAction] { theAction(); };
        EXPECT_EQ(Reached(*theParty.mBroadcaster, theParty.mCalls), theCase.mFirst);
        theAction = [] {};
        EXPECT_EQ(Reached(*theParty.mBroadcaster, theParty.mCalls), theCase.mSecond);
    }
}

TEST(BroadcasterTest, BroadcasterDestroyedDuringABroadcastTellsAllAndEndsIt) {
    for (const char theActor : {'a', 'b', 'c', 'd'}) {
        SCOPED_TRACE(theActor);
        Party theParty;
        bool theDone = false;
        theParty[theActor].mOnMessage = [&] {
            if (!theDone) {
                theDone = true;
                theParty.Destroy();
            }
        };
        theParty.mBroadcaster->BroadcastMessage(1, nullptr);

        std::vector<std::string> theExpected;
        for (char i = 'a'; i <= theActor; ++i) {
            theExpected.push_back(std::string(1, i) + ":1");
        }
        for (const char* i : {"a:0", "b:0", "c:0", "d:0"}) {
            theExpected.emplace_back(i);
        }
        EXPECT_EQ(theParty.mCalls, theExpected);
    }
}

TEST(BroadcasterTest, StoppedBroadcasterDestroyedDuringABroadcastEndsIt) {
    Party theParty;
    theParty['b'].mOnMessage = [&] {
        theParty.mBroadcaster->StopBroadcasting();
        theParty.Destroy();
    };
    theParty.mBroadcaster->BroadcastMessage(1, nullptr);
    EXPECT_THAT(theParty.mCalls, ElementsAre("a:1", "b:1"));
}

// Everything goes in every order from inside one call; '*' is the broadcaster.
TEST(BroadcasterTest, EverythingIsDestroyedDuringABroadcastInEveryOrder) {
    std::string theOrder = "*abcd";
    do {
        for (const char theActor : {'a', 'b', 'c', 'd'}) {
            SCOPED_TRACE(theOrder + " in " + theActor);
            Party theParty;
            std::function<void()> theAction = [&] {
                theAction = [] {};
                for (const char i : theOrder) {
                    i == '*' ? theParty.Destroy() : theParty.Destroy(i);
                }
            };
            theParty[theActor].mOnMessage = [&theAction] {
                const std::function<void()> theCurrent = theAction;
                theCurrent();
            };
            theParty.mBroadcaster->BroadcastMessage(1, nullptr);

            std::vector<std::string> theExpected;
            for (char i = 'a'; i <= theActor; ++i) {
                theExpected.push_back(std::string(1, i) + ":1");
            }
            std::string theLeft = theOrder.substr(theOrder.find('*') + 1);
            std::sort(theLeft.begin(), theLeft.end());
            for (const char i : theLeft) {
                theExpected.push_back(std::string(1, i) + ":0");
            }
            EXPECT_EQ(theParty.mCalls, theExpected);
        }
    } while (std::next_permutation(theOrder.begin(), theOrder.end()));
}

TEST(BroadcasterTest, ListenersLeaveWhileTheBroadcasterDies) {
    for (const DuringCase& theCase : kDuringCases) {
        SCOPED_TRACE(std::string("in ") + theCase.mActor + " destroy " + theCase.mTargets);
        Party theParty;
        std::function<void()> theAction = [&] {
            for (const char* i = theCase.mTargets; *i != 0; ++i) {
                theParty.Destroy(*i);
            }
        };
        theParty[theCase.mActor].mOnMessage = [&theAction] { theAction(); };
        theParty.Destroy();
        std::vector<std::string> theExpected = theCase.mFirst;
        for (std::string& theCall : theExpected) {
            theCall.back() = '0';
        }
        EXPECT_EQ(theParty.mCalls, theExpected);
    }
}

TEST(BroadcasterTest, ListenerAddedDuringABroadcastIsCalledBehindAllOthers) {
    Party theParty;
    Listener theNew(theParty.mCalls, "new");
    theParty['b'].mOnMessage = [&] { theParty.mBroadcaster->AddListener(&theNew); };
    EXPECT_THAT(Reached(*theParty.mBroadcaster, theParty.mCalls),
                ElementsAre("a:1", "b:1", "c:1", "d:1", "new:1"));
}

TEST(BroadcasterTest, ListenerAddedByTheLastOneIsStillCalled) {
    Party theParty;
    Listener theNew(theParty.mCalls, "new");
    theParty['d'].mOnMessage = [&] { theParty.mBroadcaster->AddListener(&theNew); };
    EXPECT_THAT(Reached(*theParty.mBroadcaster, theParty.mCalls),
                ElementsAre("a:1", "b:1", "c:1", "d:1", "new:1"));
}

TEST(BroadcasterTest, ListenerAddedWhileTheBroadcasterDiesHearsOfItAndForgetsIt) {
    Party theParty;
    Listener theNew(theParty.mCalls, "new");
    theParty['d'].mOnMessage = [&] {
        static_cast<vxBroadcaster*>(theParty['d'].mParam)->AddListener(&theNew);
    };
    theParty.Destroy();
    EXPECT_THAT(theParty.mCalls, ElementsAre("a:0", "b:0", "c:0", "d:0", "new:0"));
}

TEST(BroadcasterTest, ListenerThatLeavesAndComesBackIsCalledAgain) {
    Party theParty;
    bool theDone = false;
    theParty['b'].mOnMessage = [&] {
        if (!theDone) {
            theDone = true;
            theParty.mBroadcaster->RemoveListener(&theParty['b']);
            theParty.mBroadcaster->AddListener(&theParty['b']);
        }
    };
    EXPECT_THAT(Reached(*theParty.mBroadcaster, theParty.mCalls),
                ElementsAre("a:1", "b:1", "c:1", "d:1", "b:1"));
}

TEST(BroadcasterTest, BroadcastInsideABroadcastReachesAllFirst) {
    Party theParty;
    bool theDone = false;
    theParty['b'].mOnMessage = [&] {
        if (!theDone) {
            theDone = true;
            theParty.mBroadcaster->BroadcastMessage(2, nullptr);
            theParty.mBroadcaster->RemoveListener(&theParty['c']);
        }
    };
    EXPECT_THAT(Reached(*theParty.mBroadcaster, theParty.mCalls),
                ElementsAre("a:1", "b:1", "a:2", "b:2", "c:2", "d:2", "d:1"));
}

TEST(BroadcasterTest, AssignmentDuringABroadcastEndsIt) {
    Party theParty;
    theParty['b'].mOnMessage = [&] { *theParty.mBroadcaster = vxBroadcaster(); };
    EXPECT_THAT(Reached(*theParty.mBroadcaster, theParty.mCalls), ElementsAre("a:1", "b:1"));
}

TEST(BroadcasterTest, ListenerThatIsAssignedDuringABroadcastHasLeft) {
    Party theParty;
    theParty['b'].mOnMessage = [&] {
        static_cast<vxListener&>(theParty['b']) = vxListener();
        static_cast<vxListener&>(theParty['c']) = vxListener();
    };
    EXPECT_THAT(Reached(*theParty.mBroadcaster, theParty.mCalls), ElementsAre("a:1", "b:1", "d:1"));
    EXPECT_THAT(Reached(*theParty.mBroadcaster, theParty.mCalls), ElementsAre("a:1", "d:1"));
}

TEST(BroadcasterTest, BroadcasterThatDestroysOthersWhenAListenerLeavesIsSafe) {
    class Chained : public vxBroadcaster {
    public:
        void RemoveListener(vxListener* aListener) override {
            vxBroadcaster::RemoveListener(aListener);
            mNext.reset();
        }
        std::unique_ptr<vxBroadcaster> mNext;
    };
    Calls theCalls;
    Chained theFirst;
    theFirst.mNext = std::make_unique<vxBroadcaster>();
    CountingBroadcaster theLast;
    {
        Listener theListener(theCalls);
        theFirst.AddListener(&theListener);
        theFirst.mNext->AddListener(&theListener);
        theLast.AddListener(&theListener);
    }
    EXPECT_EQ(theLast.mRemoved, 1);
    // The listener was no longer a `Listener` when it would have heard of the destruction.
    EXPECT_THAT(theCalls, IsEmpty());
}

// Random registrations, broadcasts, assignments and lives, beside lists of numbers.
TEST(BroadcasterTest, RandomHistoriesMatchAModel) {
    constexpr size_t kSize = 6;
    std::mt19937 theRandom(20240611);
    const auto theNext = [&](size_t aLimit) { return static_cast<size_t>(theRandom() % aLimit); };
    Calls theCalls;
    std::unique_ptr<vxBroadcaster> theBroadcasters[kSize];
    std::unique_ptr<Listener> theListeners[kSize];
    std::vector<size_t> theModel[kSize];
    const auto theForgetListener = [&](size_t aListener) {
        for (std::vector<size_t>& theList : theModel) {
            theList.erase(std::remove(theList.begin(), theList.end(), aListener), theList.end());
        }
    };
    const auto theExpected = [&](size_t aBroadcaster, const char* aMessage) {
        Calls theResult;
        for (const size_t i : theModel[aBroadcaster]) {
            theResult.push_back(std::to_string(i) + ":" + aMessage);
        }
        return theResult;
    };
    for (size_t i = 0; i < kSize; ++i) {
        theBroadcasters[i] = std::make_unique<vxBroadcaster>();
        theListeners[i] = std::make_unique<Listener>(theCalls, std::to_string(i).c_str());
    }
    for (int theRound = 0; theRound < 20000; ++theRound) {
        const size_t b = theNext(kSize);
        const size_t l = theNext(kSize);
        theCalls.clear();
        switch (theNext(10)) {
            case 0:
                theListeners[l] = std::make_unique<Listener>(theCalls, std::to_string(l).c_str());
                theForgetListener(l);
                break;
            case 1:
                theBroadcasters[b] = std::make_unique<vxBroadcaster>();
                ASSERT_EQ(theCalls, theExpected(b, "0"));
                theModel[b].clear();
                break;
            case 2:
                *theBroadcasters[b] = *theBroadcasters[theNext(kSize)];
                theModel[b].clear();
                break;
            case 3:
                static_cast<vxListener&>(*theListeners[l]) = *theListeners[theNext(kSize)];
                theForgetListener(l);
                break;
            case 4:
                theBroadcasters[b]->RemoveListener(theListeners[l].get());
                theModel[b].erase(std::remove(theModel[b].begin(), theModel[b].end(), l),
                                  theModel[b].end());
                break;
            case 5:
                theBroadcasters[b]->BroadcastMessage(5, nullptr);
                ASSERT_EQ(theCalls, theExpected(b, "5"));
                break;
            default:
                theBroadcasters[b]->AddListener(theListeners[l].get());
                if (std::find(theModel[b].begin(), theModel[b].end(), l) == theModel[b].end()) {
                    theModel[b].push_back(l);
                }
        }
    }
    theCalls.clear();
}

}  // namespace
