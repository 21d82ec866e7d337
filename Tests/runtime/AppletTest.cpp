#include "vx/Applet.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "support/Reports.h"
#include "support/ScriptedClock.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

static_assert(std::is_base_of_v<_vxDLListNode, vxApplet>);
static_assert(std::is_base_of_v<vxTimeoutQueue, vxApplet>);
static_assert(vxAppletMsg_None == 0 && vxAppletMsg_Exit == 1 && vxAppletMsg_LoopAgain == 2);
static_assert(vxAppletOption_None == 0 && vxAppletOption_Multithreaded == 1 &&
              vxAppletOption_SelfDestruct == 2);

constexpr char kMixedTree[] =
    "(mParent->mOptions & vxAppletOption_Multithreaded) == "
    "(mOptions & vxAppletOption_Multithreaded)";

/// Writes down what happens to it, and returns what it is told to.
class Applet : public vxApplet {
public:
    explicit Applet(std::vector<std::string>* aDiary = nullptr, std::string aName = "")
        : mDiary(aDiary), mName(std::move(aName)) {}
    ~Applet() override { Note("~"); }

    vxAppletMsg AppletLoop(vxAppletMsg aMsg) override {
        ++mLoops;
        mLastMsg = aMsg;
        Note("");
        if (mInLoop) {
            mInLoop();
        }
        return mResult;
    }
    void OnTimeouts() override { ++mTimeoutCalls; }
    void RaiseWakeUpSignal() override { ++mRaised; }
    void WaitWakeUpSignal(unsigned int aMSTimeout) override {
        mWaits.push_back(aMSTimeout);
        if (mInWait) {
            mInWait();
        }
    }

    void Note(const std::string& aPrefix) {
        if (mDiary != nullptr) {
            mDiary->push_back(aPrefix + mName);
        }
    }

    std::vector<std::string>* mDiary;
    std::string mName;
    int mLoops = 0;
    int mTimeoutCalls = 0;
    int mRaised = 0;
    std::vector<unsigned int> mWaits;
    vxAppletMsg mLastMsg = vxAppletMsg_None;
    vxAppletMsg mResult = vxAppletMsg_None;
    std::function<void()> mInLoop;
    std::function<void()> mInWait;
};

class AppletTest : public testing::Test {
protected:
    vxtest::ScriptedClock mClock;
    vxtest::Reports mReports;
    std::vector<std::string> mDiary;
};

TEST_F(AppletTest, SleepingAppletWithoutAnExpiredTimeoutDoesNotRun) {
    Applet theApplet;
    EXPECT_EQ(theApplet.AppletRun(vxAppletMsg_None), vxAppletMsg_None);
    vxTimeout theTimeout;
    theApplet.TimeoutStart(&theTimeout, 10);
    mClock.Advance(9);
    EXPECT_EQ(theApplet.AppletRun(vxAppletMsg_None), vxAppletMsg_None);
    EXPECT_EQ(theApplet.mLoops, 0);
}

TEST_F(AppletTest, WakeUpCausesOneStep) {
    Applet theApplet;
    theApplet.AppletWakeUp();
    theApplet.AppletWakeUp();
    theApplet.AppletRun(vxAppletMsg_None);
    theApplet.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theApplet.mLoops, 1);
}

TEST_F(AppletTest, ExpiredTimeoutCausesStepsUntilItIsHandled) {
    Applet theApplet;
    vxTimeout theTimeout;
    theApplet.TimeoutStart(&theTimeout, 10);
    mClock.Advance(10);
    theApplet.AppletRun(vxAppletMsg_None);
    theApplet.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theApplet.mLoops, 2);
    theApplet.TimeoutCancel(&theTimeout);
    theApplet.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theApplet.mLoops, 2);
}

TEST_F(AppletTest, MessageAlwaysRunsTheLoopAndIsHandedToIt) {
    Applet theApplet;
    theApplet.mResult = vxAppletMsg_None;
    EXPECT_EQ(theApplet.AppletRun(vxAppletMsg_Exit), vxAppletMsg_None);
    EXPECT_EQ(theApplet.mLastMsg, vxAppletMsg_Exit);
    EXPECT_EQ(theApplet.AppletRun(static_cast<vxAppletMsg>(77)), vxAppletMsg_None);
    EXPECT_EQ(theApplet.mLastMsg, 77);
    EXPECT_EQ(theApplet.mLoops, 2);
}

TEST_F(AppletTest, LoopAgainRunsTheLoopOnceMoreWithoutATimeout) {
    Applet theApplet;
    theApplet.mResult = vxAppletMsg_LoopAgain;
    theApplet.AppletWakeUp();
    EXPECT_EQ(theApplet.AppletRun(vxAppletMsg_None), vxAppletMsg_LoopAgain);
    theApplet.mResult = vxAppletMsg_None;
    EXPECT_EQ(theApplet.AppletRun(vxAppletMsg_None), vxAppletMsg_None);
    EXPECT_EQ(theApplet.AppletRun(vxAppletMsg_None), vxAppletMsg_None);
    EXPECT_EQ(theApplet.mLoops, 2);
}

TEST_F(AppletTest, FinishedAppletNeverRunsAgain) {
    Applet theApplet;
    theApplet.mResult = vxAppletMsg_Exit;
    theApplet.AppletWakeUp();
    EXPECT_EQ(theApplet.AppletRun(vxAppletMsg_None), vxAppletMsg_Exit);
    theApplet.mResult = vxAppletMsg_None;
    theApplet.AppletWakeUp();
    EXPECT_EQ(theApplet.AppletRun(vxAppletMsg_None), vxAppletMsg_Exit);
    EXPECT_EQ(theApplet.AppletRun(vxAppletMsg_LoopAgain), vxAppletMsg_Exit);
    EXPECT_EQ(theApplet.mLoops, 1);
}

TEST_F(AppletTest, BaseLoopReturnsItsMessageWhileItHasHadNoChild) {
    vxApplet theApplet;
    EXPECT_EQ(theApplet.AppletLoop(vxAppletMsg_None), vxAppletMsg_None);
    EXPECT_EQ(theApplet.AppletLoop(vxAppletMsg_LoopAgain), vxAppletMsg_LoopAgain);
    EXPECT_EQ(theApplet.AppletRun(vxAppletMsg_Exit), vxAppletMsg_Exit);
}

TEST_F(AppletTest, BaseAppletEndsAtTheStepAfterItsLastChild) {
    vxApplet theParent;
    Applet theChild;
    theParent.AppletAttach(&theChild, vxAppletOption_None);
    EXPECT_EQ(theParent.AppletLoop(vxAppletMsg_Exit), vxAppletMsg_None);
    theChild.mResult = vxAppletMsg_Exit;
    theChild.AppletWakeUp();
    EXPECT_EQ(theParent.AppletRun(vxAppletMsg_None), vxAppletMsg_None);
    EXPECT_EQ(theChild.mLoops, 1);
    EXPECT_EQ(theParent.AppletRun(vxAppletMsg_None), vxAppletMsg_Exit);
}

TEST_F(AppletTest, OptionsAreSetAndClearedBitByBit) {
    Applet theApplet;
    EXPECT_EQ(theApplet.AppletSetOptions(vxAppletOption_None), 0U);
    EXPECT_EQ(theApplet.AppletSetOptions(vxAppletOption_SelfDestruct), 2U);
    EXPECT_EQ(theApplet.AppletSetOptions(vxAppletOption_Multithreaded), 3U);
    EXPECT_EQ(theApplet.AppletClearOptions(vxAppletOption_SelfDestruct), 1U);
    EXPECT_EQ(theApplet.AppletClearOptions(3), 0U);
}

TEST_F(AppletTest, ChildrenAreSteppedAfterTheParentInTheOrderOfAttachment) {
    Applet theRoot(&mDiary, "root");
    Applet theA(&mDiary, "a");
    Applet theB(&mDiary, "b");
    Applet theC(&mDiary, "c");
    for (Applet* theChild : {&theA, &theB, &theC}) {
        theRoot.AppletAttach(theChild, vxAppletOption_None);
    }
    theC.AppletWakeUp();
    theA.AppletWakeUp();
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_THAT(mDiary, ElementsAre("root", "a", "c"));
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(mDiary.size(), 3U);
    mDiary.clear();
    theRoot.mDiary = theA.mDiary = theB.mDiary = theC.mDiary = nullptr;
}

TEST_F(AppletTest, WakeUpOfAGrandchildClimbsToTheRoot) {
    Applet theRoot;
    Applet theChild;
    Applet theSibling;
    Applet theGrandchild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.AppletAttach(&theSibling, vxAppletOption_None);
    theChild.AppletAttach(&theGrandchild, vxAppletOption_None);
    theRoot.AppletRun(vxAppletMsg_None);
    theRoot.mLoops = theChild.mLoops = 0;

    theGrandchild.AppletWakeUp();
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theRoot.mLoops, 1);
    EXPECT_EQ(theChild.mLoops, 1);
    EXPECT_EQ(theGrandchild.mLoops, 1);
    EXPECT_EQ(theSibling.mLoops, 0);
}

TEST_F(AppletTest, ChildThatReturnsLoopAgainIsSteppedAtTheNextStepOfTheRoot) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theChild.mResult = vxAppletMsg_LoopAgain;
    theChild.AppletWakeUp();
    theRoot.AppletRun(vxAppletMsg_None);
    theChild.mResult = vxAppletMsg_None;
    theRoot.AppletRun(vxAppletMsg_None);
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theChild.mLoops, 2);
}

TEST_F(AppletTest, ExpiredTimeoutOfAGrandchildRunsTheWholeBranch) {
    Applet theRoot;
    Applet theChild;
    Applet theSibling;
    Applet theGrandchild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.AppletAttach(&theSibling, vxAppletOption_None);
    theChild.AppletAttach(&theGrandchild, vxAppletOption_None);
    theRoot.AppletRun(vxAppletMsg_None);
    theRoot.mLoops = theChild.mLoops = 0;

    vxTimeout theTimeout;
    theGrandchild.TimeoutStart(&theTimeout, 50);
    mClock.Advance(49);
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theGrandchild.mLoops, 0);
    mClock.Advance(1);
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theRoot.mLoops, 1);
    EXPECT_EQ(theChild.mLoops, 1);
    EXPECT_EQ(theGrandchild.mLoops, 1);
    EXPECT_EQ(theSibling.mLoops, 0);
}

TEST_F(AppletTest, MessageReachesTheChildrenOnlyIfTheyAreAwake) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.AppletRun(vxAppletMsg_None);
    theRoot.AppletRun(vxAppletMsg_LoopAgain);
    EXPECT_EQ(theChild.mLoops, 0);
    theChild.AppletWakeUp();
    theRoot.AppletRun(vxAppletMsg_LoopAgain);
    EXPECT_EQ(theChild.mLoops, 1);
    EXPECT_EQ(theChild.mLastMsg, vxAppletMsg_None);
}

TEST_F(AppletTest, ChildThatTheLoopOfItsParentWakesIsSteppedInTheSameStep) {
    Applet theRoot(&mDiary, "root");
    Applet theChild(&mDiary, "child");
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.AppletRun(vxAppletMsg_None);
    theRoot.mInLoop = [&] { theChild.AppletWakeUp(); };
    mDiary.clear();
    theRoot.AppletRun(static_cast<vxAppletMsg>(77));
    EXPECT_THAT(mDiary, ElementsAre("root", "child"));
    theRoot.mInLoop = nullptr;
    theRoot.AppletRun(vxAppletMsg_None);  // the child's wake-up came after the step had begun
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_THAT(mDiary, ElementsAre("root", "child", "root"));
    theRoot.mDiary = theChild.mDiary = nullptr;
}

TEST_F(AppletTest, MessageLeavesExpiredTimeoutsOfChildrenToTheNextStep) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.AppletRun(vxAppletMsg_None);
    vxTimeout theTimeout;
    theChild.TimeoutStart(&theTimeout, 10);
    mClock.Advance(10);
    theRoot.AppletRun(static_cast<vxAppletMsg>(77));
    EXPECT_EQ(theChild.mLoops, 0);
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theChild.mLoops, 1);
}

TEST_F(AppletTest, ChildrenAreSteppedAlsoInTheStepInWhichTheirParentExits) {
    Applet theRoot(&mDiary, "root");
    Applet theChild(&mDiary, "child");
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theChild.AppletWakeUp();
    theRoot.mResult = vxAppletMsg_Exit;
    EXPECT_EQ(theRoot.AppletRun(vxAppletMsg_None), vxAppletMsg_Exit);
    EXPECT_THAT(mDiary, ElementsAre("root", "child"));
    theChild.AppletWakeUp();
    EXPECT_EQ(theRoot.AppletRun(vxAppletMsg_None), vxAppletMsg_Exit);
    EXPECT_THAT(mDiary, ElementsAre("root", "child"));
    theRoot.mDiary = theChild.mDiary = nullptr;
}

TEST_F(AppletTest, AttachWakesTheParentOnceTheChildIsThere) {
    struct Root : Applet {
        void RaiseWakeUpSignal() override { mFirst = FirstExpiringTimeout(); }
        vxTimeout* mFirst = nullptr;
    };
    Root theRoot;
    theRoot.AppletSetOptions(vxAppletOption_Multithreaded);
    Applet theChild;
    vxTimeout theTimeout;
    theChild.TimeoutStart(&theTimeout, 10);
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    EXPECT_EQ(theRoot.mFirst, &theTimeout);
}

TEST_F(AppletTest, DetachWakesTheParentOnceTheChildIsGone) {
    struct Child : Applet {
        explicit Child(Applet* aRoot) : mRoot(aRoot) {}
        ~Child() override {
            EXPECT_EQ(mRoot->mRaised, 0);
            EXPECT_EQ(mRoot->FirstExpiringTimeout(), nullptr);  // it is no child any more
        }
        Applet* mRoot;
        vxTimeout mTimeout;
    };
    Applet theRoot;
    theRoot.AppletSetOptions(vxAppletOption_Multithreaded);
    Child* const theChild = new Child(&theRoot);
    theRoot.AppletAttach(theChild, vxAppletOption_SelfDestruct);
    theChild->TimeoutStart(&theChild->mTimeout, 10);
    theRoot.AppletRun(vxAppletMsg_None);
    theRoot.mRaised = 0;
    theRoot.AppletDetach(theChild);
    EXPECT_EQ(theRoot.mRaised, 1);
}

TEST_F(AppletTest, AttachWakesTheParentButNotTheChild) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theRoot.mLoops, 1);
    EXPECT_EQ(theChild.mLoops, 0);
}

TEST_F(AppletTest, ChildThatIsAwakeWhenAttachedIsStepped) {
    Applet theRoot;
    Applet theChild;
    theChild.AppletWakeUp();
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theChild.mLoops, 1);
}

TEST_F(AppletTest, AttachedAppletIsNotAttachedAgain) {
    Applet theFirst;
    Applet theSecond;
    Applet theChild;
    theFirst.AppletAttach(&theChild, vxAppletOption_None);
    theSecond.AppletAttach(&theChild, vxAppletOption_SelfDestruct);
    ASSERT_THAT(mReports.Assertions(), ElementsAre("anApplet->mParent == NULL"));
    EXPECT_THAT(mReports.AssertionReports()[0].mFile, EndsWith("/Applet.cpp"));
    EXPECT_EQ(theSecond.AppletRun(vxAppletMsg_None), vxAppletMsg_None);
    EXPECT_EQ(theSecond.mLoops, 0);
    EXPECT_EQ(theChild.AppletSetOptions(0), 0U);

    theFirst.AppletAttach(&theChild, vxAppletOption_None);
    EXPECT_EQ(mReports.Assertions().size(), 2U);
    theFirst.AppletDetach(&theChild);
    EXPECT_EQ(mReports.Assertions().size(), 2U);
}

TEST_F(AppletTest, AppletThatIsNoChildIsNotDetached) {
    Applet theParent;
    Applet theOther;
    Applet theChild;
    theParent.AppletAttach(&theChild, vxAppletOption_None);
    theOther.AppletDetach(&theChild);
    ASSERT_THAT(mReports.Assertions(), ElementsAre("anApplet->mParent == this"));
    EXPECT_EQ(theOther.AppletRun(vxAppletMsg_None), vxAppletMsg_None);
    EXPECT_EQ(theOther.mLoops, 0);
    theParent.AppletDetach(&theChild);
    theParent.AppletDetach(&theChild);
    EXPECT_EQ(mReports.Assertions().size(), 2U);
}

TEST_F(AppletTest, DetachWakesTheParentAndFreesTheChildForAnother) {
    Applet theFirst;
    Applet theSecond;
    Applet theChild;
    theFirst.AppletAttach(&theChild, vxAppletOption_None);
    theFirst.AppletRun(vxAppletMsg_None);
    theFirst.AppletDetach(&theChild);
    theFirst.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theFirst.mLoops, 2);
    theSecond.AppletAttach(&theChild, vxAppletOption_None);
    theChild.AppletWakeUp();
    theSecond.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theChild.mLoops, 1);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(AppletTest, SelfDestructingChildIsDeletedInTheStepInWhichItExits) {
    Applet theRoot(&mDiary, "root");
    Applet* theChild = new Applet(&mDiary, "child");
    theChild->mResult = vxAppletMsg_Exit;
    theRoot.AppletAttach(theChild, vxAppletOption_SelfDestruct);
    EXPECT_EQ(theChild->AppletSetOptions(0), 2U);
    theChild->AppletWakeUp();
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_THAT(mDiary, ElementsAre("root", "child", "~child"));
    theRoot.mDiary = nullptr;
}

TEST_F(AppletTest, ExitingChildWithoutSelfDestructIsOnlyDetached) {
    Applet theRoot;
    Applet theChild;
    theChild.mResult = vxAppletMsg_Exit;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theChild.AppletWakeUp();
    theRoot.AppletRun(vxAppletMsg_None);
    theRoot.AppletDetach(&theChild);
    EXPECT_THAT(mReports.Assertions(), ElementsAre("anApplet->mParent == this"));
}

TEST_F(AppletTest, OptionsOfAttachOtherThanSelfDestructAreIgnored) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_Multithreaded);
    EXPECT_EQ(theChild.AppletSetOptions(0), 0U);
}

TEST_F(AppletTest, MultithreadedParentMakesItsChildMultithreaded) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletSetOptions(vxAppletOption_Multithreaded);
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    EXPECT_EQ(theChild.AppletSetOptions(0), 1U);
    theChild.AppletWakeUp();
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(AppletTest, MixedTreeIsReportedAndWokenAllTheSame) {
    Applet theRoot;
    Applet theChild;
    theChild.AppletSetOptions(vxAppletOption_Multithreaded);
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theChild.AppletWakeUp();
    EXPECT_THAT(mReports.Assertions(), ElementsAre(kMixedTree));
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theChild.mLoops, 1);
}

TEST_F(AppletTest, MixedTreeIsReportedBeforeItsRootIsSignaled) {
    struct Root : Applet {
        explicit Root(const vxtest::Reports* aReports) : mReports(aReports) {}
        void RaiseWakeUpSignal() override { mReported = mReports->Assertions().size(); }
        const vxtest::Reports* mReports;
        size_t mReported = 0;
    };
    Root theRoot(&mReports);
    theRoot.AppletSetOptions(vxAppletOption_Multithreaded);
    Applet theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.AppletRun(vxAppletMsg_None);
    theChild.AppletClearOptions(vxAppletOption_Multithreaded);
    theChild.AppletWakeUp();
    EXPECT_EQ(theRoot.mReported, 1U);
    EXPECT_THAT(mReports.Assertions(), ElementsAre(kMixedTree));
}

TEST_F(AppletTest, DriverThatRunsAsSoonAsItIsSignaledStepsTheChild) {
    struct Root : Applet {
        void RaiseWakeUpSignal() override { AppletRun(vxAppletMsg_None); }
    };
    Root theRoot;
    theRoot.AppletSetOptions(vxAppletOption_Multithreaded);
    Applet theChild;
    Applet theGrandchild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theChild.AppletAttach(&theGrandchild, vxAppletOption_None);
    EXPECT_EQ(theChild.mLoops, 1);
    theGrandchild.AppletWakeUp();
    EXPECT_EQ(theRoot.mLoops, 3);
    EXPECT_EQ(theChild.mLoops, 2);
    EXPECT_EQ(theGrandchild.mLoops, 1);
}

TEST_F(AppletTest, WakeUpRaisesTheSignalOfAMultithreadedRootOnce) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletSetOptions(vxAppletOption_Multithreaded);
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    EXPECT_EQ(theRoot.mRaised, 1);
    theChild.AppletWakeUp();
    theRoot.AppletWakeUp();
    EXPECT_EQ(theRoot.mRaised, 1);
    EXPECT_EQ(theChild.mRaised, 0);
    theRoot.AppletRun(vxAppletMsg_None);
    theChild.AppletWakeUp();
    EXPECT_EQ(theRoot.mRaised, 2);
}

TEST_F(AppletTest, WakeUpRaisesNoSignalInASingleThreadedTree) {
    Applet theRoot;
    theRoot.AppletWakeUp();
    EXPECT_EQ(theRoot.mRaised, 0);
}

TEST_F(AppletTest, BaseSignalIsReportedInAMultithreadedTreeOnly) {
    vxApplet theRoot;
    theRoot.RaiseWakeUpSignal();
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    theRoot.AppletSetOptions(vxAppletOption_Multithreaded);
    theRoot.AppletWakeUp();
    ASSERT_THAT(mReports.Assertions(), ElementsAre("!(mOptions & vxAppletOption_Multithreaded)"));
    EXPECT_THAT(mReports.AssertionReports()[0].mFile, EndsWith("/Applet.h"));
}

TEST_F(AppletTest, BaseWaitSleepsAndReportsAWaitWithoutLimit) {
    vxApplet theRoot;
    theRoot.WaitWakeUpSignal(0xFFFFFFFE);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    theRoot.WaitWakeUpSignal(0xFFFFFFFF);
    EXPECT_THAT(mReports.Assertions(), ElementsAre("aMSTimeout != (uint32)-1"));
    EXPECT_THAT(mClock.Sleeps(), ElementsAre(0xFFFFFFFEU));
}

TEST_F(AppletTest, SelfWaitReturnsAtOnceWhenAwake) {
    Applet theRoot;
    theRoot.AppletWakeUp();
    theRoot.SelfWait();
    EXPECT_THAT(mClock.Sleeps(), IsEmpty());
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(AppletTest, SelfWaitSleepsUntilTheFirstTimeoutOfTheTreeAndCausesAStep) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.AppletRun(vxAppletMsg_None);
    vxTimeout theLate;
    vxTimeout theEarly;
    theRoot.TimeoutStart(&theLate, 200);
    theChild.TimeoutStart(&theEarly, 150);
    mClock.Advance(30);
    theRoot.SelfWait();
    EXPECT_THAT(mClock.Sleeps(), ElementsAre(120U));
    EXPECT_THAT(theRoot.mWaits, IsEmpty());
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theRoot.mLoops, 2);
    EXPECT_EQ(theChild.mLoops, 1);
}

TEST_F(AppletTest, SelfWaitWithoutATimeoutIsReportedAndReturnsAtOnce) {
    Applet theRoot;
    theRoot.SelfWait();
    EXPECT_THAT(mReports.Assertions(), ElementsAre("theTO"));
    EXPECT_THAT(mClock.Sleeps(), IsEmpty());
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theRoot.mLoops, 1);
}

TEST_F(AppletTest, SelfWaitOfAMultithreadedRootWaitsForTheSignal) {
    Applet theRoot;
    theRoot.AppletSetOptions(vxAppletOption_Multithreaded);
    theRoot.SelfWait();
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theRoot.mLoops, 1);
    vxTimeout theTimeout;
    theRoot.TimeoutStart(&theTimeout, 40);
    mClock.Advance(15);
    theRoot.SelfWait();
    EXPECT_THAT(theRoot.mWaits, ElementsAre(0xFFFFFFFFU, 25U));
    EXPECT_THAT(mClock.Sleeps(), IsEmpty());
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(AppletTest, TimeoutOfAChildIsNoticedAlsoWhileTheRootStaysAwake) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.mResult = vxAppletMsg_LoopAgain;
    vxTimeout theTimeout;
    theChild.TimeoutStart(&theTimeout, 10);
    theChild.mInLoop = [&] { theChild.TimeoutCancel(&theTimeout); };
    for (int i = 0; i < 4; ++i) {
        theRoot.AppletRun(vxAppletMsg_None);
        theRoot.SelfWait();
        mClock.Advance(5);
    }
    EXPECT_EQ(theChild.mLoops, 1);
    EXPECT_THAT(mClock.Sleeps(), IsEmpty());
}

TEST_F(AppletTest, FirstTimeoutIsTheEarliestOfTheTree) {
    Applet theRoot;
    Applet theA;
    Applet theB;
    EXPECT_EQ(theRoot.FirstExpiringTimeout(), nullptr);
    theRoot.AppletAttach(&theA, vxAppletOption_None);
    theRoot.AppletAttach(&theB, vxAppletOption_None);
    EXPECT_EQ(theRoot.FirstExpiringTimeout(), nullptr);

    vxTimeout theOfB;
    theB.TimeoutStart(&theOfB, 30);
    EXPECT_EQ(theRoot.FirstExpiringTimeout(), &theOfB);
    vxTimeout theOfA;
    theA.TimeoutStart(&theOfA, 31);
    EXPECT_EQ(theRoot.FirstExpiringTimeout(), &theOfB);
    theA.TimeoutStart(&theOfA, 30);
    EXPECT_EQ(theRoot.FirstExpiringTimeout(), &theOfA);
    vxTimeout theOwn;
    theRoot.TimeoutStart(&theOwn, 31);
    EXPECT_EQ(theRoot.FirstExpiringTimeout(), &theOfA);
    theRoot.TimeoutStart(&theOwn, 30);
    EXPECT_EQ(theRoot.FirstExpiringTimeout(), &theOwn);
}

TEST_F(AppletTest, DerivedClassMaySayWhichTimeoutIsFirst) {
    struct Child : Applet {
        vxTimeout* FirstExpiringTimeout() override { return &mElsewhere; }
        vxTimeout mElsewhere;
    };
    Applet theRoot;
    Child theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    theRoot.AppletRun(vxAppletMsg_None);
    theChild.mElsewhere.Start(20);
    EXPECT_EQ(theRoot.FirstExpiringTimeout(), &theChild.mElsewhere);
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theChild.mLoops, 0);
    theRoot.SelfWait();
    EXPECT_THAT(mClock.Sleeps(), ElementsAre(20U));
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theChild.mLoops, 1);

    theChild.mElsewhere.Start(30);
    mClock.Advance(30);
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theChild.mLoops, 2);
}

TEST_F(AppletTest, ExpiredTimeoutsOfTheTreeAreEqual) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    vxTimeout theOwn;
    vxTimeout theEarlier;
    theRoot.TimeoutStart(&theOwn, 20);
    theChild.TimeoutStart(&theEarlier, 10);
    mClock.Advance(25);
    EXPECT_EQ(theRoot.FirstExpiringTimeout(), &theOwn);
}

TEST_F(AppletTest, HandlingTimeoutsFiresAlsoForATimeoutOfAChild) {
    Applet theRoot;
    Applet theChild;
    theRoot.AppletAttach(&theChild, vxAppletOption_None);
    vxTimeout theTimeout;
    theChild.TimeoutStart(&theTimeout, 10);
    theRoot.HandleExpiredTimeouts();
    EXPECT_EQ(theRoot.mTimeoutCalls, 0);
    mClock.Advance(10);
    theRoot.HandleExpiredTimeouts();
    EXPECT_EQ(theRoot.mTimeoutCalls, 1);
    EXPECT_EQ(theChild.mTimeoutCalls, 0);
}

TEST_F(AppletTest, DestroyedChildLeavesItsParentWithoutBeingDeletedTwice) {
    Applet theRoot;
    Applet* theChild = new Applet(&mDiary, "child");
    theRoot.AppletAttach(theChild, vxAppletOption_SelfDestruct);
    theRoot.AppletRun(vxAppletMsg_None);
    delete theChild;
    EXPECT_THAT(mDiary, ElementsAre("~child"));
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theRoot.mLoops, 2);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(AppletTest, DestroyedParentDetachesItsChildrenInOrderAndDeletesTheSelfDestructing) {
    Applet theKept(&mDiary, "kept");
    {
        Applet theRoot(&mDiary, "root");
        theRoot.AppletAttach(new Applet(&mDiary, "a"), vxAppletOption_SelfDestruct);
        theRoot.AppletAttach(&theKept, vxAppletOption_None);
        theRoot.AppletAttach(new Applet(&mDiary, "b"), vxAppletOption_SelfDestruct);
    }
    EXPECT_THAT(mDiary, ElementsAre("~root", "~a", "~b"));
    Applet theOther;
    theOther.AppletAttach(&theKept, vxAppletOption_None);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    theKept.mDiary = nullptr;
}

TEST_F(AppletTest, DestroyedRootWakesNobody) {
    Applet theChild;
    {
        vxApplet theRoot;
        theRoot.AppletAttach(&theChild, vxAppletOption_None);
        theRoot.AppletRun(vxAppletMsg_None);
        theRoot.AppletSetOptions(vxAppletOption_Multithreaded);
    }
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(AppletTest, DestroyedAppletLetsGoOfItsTimeouts) {
    vxTimeout theTimeout;
    {
        Applet theApplet;
        theApplet.TimeoutStart(&theTimeout, 10);
    }
    EXPECT_EQ(theTimeout.mNext, nullptr);
}

TEST_F(AppletTest, StepOfAChildMayDetachOrDestroyItsSiblings) {
    Applet theRoot(&mDiary, "root");
    Applet theA(&mDiary, "a");
    Applet* theB = new Applet(&mDiary, "b");
    Applet theC(&mDiary, "c");
    Applet theD(&mDiary, "d");
    theRoot.AppletAttach(&theA, vxAppletOption_None);
    theRoot.AppletAttach(theB, vxAppletOption_SelfDestruct);
    theRoot.AppletAttach(&theC, vxAppletOption_None);
    theRoot.AppletAttach(&theD, vxAppletOption_None);
    for (Applet* theChild : {&theA, theB, &theC, &theD}) {
        theChild->AppletWakeUp();
    }
    theA.mInLoop = [&] {
        delete theB;
        theRoot.AppletDetach(&theC);
    };
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_THAT(mDiary, ElementsAre("root", "a", "~b", "d"));
    theRoot.mDiary = theA.mDiary = theC.mDiary = theD.mDiary = nullptr;
}

TEST_F(AppletTest, StepOfTheLastChildMayAttachAnother) {
    Applet theRoot(&mDiary, "root");
    Applet theA(&mDiary, "a");
    Applet theB(&mDiary, "b");
    theRoot.AppletAttach(&theA, vxAppletOption_None);
    theA.AppletWakeUp();
    theA.mInLoop = [&] {
        theRoot.AppletAttach(&theB, vxAppletOption_None);
        theB.AppletWakeUp();
        theA.mInLoop = nullptr;
    };
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_THAT(mDiary, ElementsAre("root", "a"));
    theRoot.AppletRun(vxAppletMsg_None);
    EXPECT_THAT(mDiary, ElementsAre("root", "a", "root", "b"));
    theRoot.mDiary = theA.mDiary = theB.mDiary = nullptr;
}

TEST_F(AppletTest, DriverRunsATreeToItsEnd) {
    vxApplet theRoot;
    vxTimeout theTimeout;
    Applet* theChild = new Applet(&mDiary, "child");
    theChild->mInLoop = [&] {
        if (theChild->mLoops == 3) {
            theChild->TimeoutCancel(&theTimeout);
            theChild->mResult = vxAppletMsg_Exit;
        } else {
            theChild->TimeoutStart(&theTimeout, 100);
        }
    };
    theRoot.AppletAttach(theChild, vxAppletOption_SelfDestruct);
    theChild->AppletWakeUp();
    int theSteps = 0;
    while (theRoot.AppletRun(vxAppletMsg_None) != vxAppletMsg_Exit) {
        ASSERT_LT(++theSteps, 20);
        theRoot.SelfWait();
    }
    EXPECT_THAT(mDiary, ElementsAre("child", "child", "child", "~child"));
    EXPECT_THAT(mClock.Sleeps(), ElementsAre(100U, 100U));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

}  // namespace
