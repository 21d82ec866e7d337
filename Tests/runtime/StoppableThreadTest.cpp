#include "vx/StoppableThread.h"

#include <gmock/gmock.h>
#include <libvxLog/Log.h>
#include <libvxOS/Debug.h>
#include <pthread.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "support/Forward.h"
#include "support/Latch.h"
#include "support/Reports.h"

namespace {

// What the platform does in place of its own, for the thread that makes this.
struct ScriptedThreads {
    ScriptedThreads() { sCurrent = this; }
    ~ScriptedThreads() { sCurrent = nullptr; }
    ScriptedThreads(const ScriptedThreads&) = delete;
    ScriptedThreads& operator=(const ScriptedThreads&) = delete;

    bool mfNoThread = false;
    int mWaitResult = 0;                // answered instead of waiting, unless 0
    std::function<void()> mBeforeRun;   // called in vxThread_Run()
    std::function<void()> mInSleep;     // called instead of sleeping
    std::vector<uint32_t> mSleeps;      // milliseconds asked for, oldest first
    std::vector<uint16_t> mPriorities;  // asked for; nothing is done about them
    int mWaits = 0;

    static thread_local ScriptedThreads* sCurrent;
};

thread_local ScriptedThreads* ScriptedThreads::sCurrent = nullptr;

std::function<void()> sAtNaming;  // called in a thread before it gets its name

}  // namespace

vxOSThread* vxThread_New(const vxOSThread_Data* aData) {
    const auto* theScript = ScriptedThreads::sCurrent;
    return theScript != nullptr && theScript->mfNoThread ? nullptr
                                                         : VXTEST_REAL(vxThread_New)(aData);
}

int vxThread_Run(vxOSThread* aThread) {
    const auto* theScript = ScriptedThreads::sCurrent;
    if (theScript != nullptr && theScript->mBeforeRun) {
        theScript->mBeforeRun();
    }
    return VXTEST_REAL(vxThread_Run)(aThread);
}

int vxThread_Wait(vxOSThread* aThread) {
    auto* theScript = ScriptedThreads::sCurrent;
    if (theScript != nullptr) {
        theScript->mWaits++;
        if (theScript->mWaitResult != 0) {
            return theScript->mWaitResult;
        }
    }
    return VXTEST_REAL(vxThread_Wait)(aThread);
}

void vxThread_Sleep(uint32_t aMSDuration) {
    auto* theScript = ScriptedThreads::sCurrent;
    if (theScript != nullptr) {
        theScript->mSleeps.push_back(aMSDuration);
        if (theScript->mInSleep) {
            theScript->mInSleep();
            return;
        }
    }
    VXTEST_REAL(vxThread_Sleep)(aMSDuration);
}

void vxDebug_SetThreadName(const char* aName) {
    if (sAtNaming) {
        sAtNaming();
    }
    VXTEST_REAL(vxDebug_SetThreadName)(aName);
}

int vxThread_SetPriority(uint16_t aPriority) {
    auto* theScript = ScriptedThreads::sCurrent;
    if (theScript == nullptr) {
        return VXTEST_REAL(vxThread_SetPriority)(aPriority);
    }
    theScript->mPriorities.push_back(aPriority);
    return 5;
}

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

static_assert(kvxThreadState_NotCreated == 0 && kvxThreadState_Created == 1 &&
              kvxThreadState_Starting == 2 && kvxThreadState_Started == 3 &&
              kvxThreadState_ReadyToUse == 4 && kvxThreadState_Terminate == 5 &&
              kvxThreadState_Terminating == 6 && kvxThreadState_Terminated == 7);
static_assert(!std::is_copy_constructible_v<vxStoppableThread>);
static_assert(!std::is_copy_assignable_v<vxStoppableThread>);
static_assert(std::has_virtual_destructor_v<vxStoppableThread>);

constexpr char kNotNotCreated[] = "mThreadState == kvxThreadState_NotCreated";
constexpr char kNotCreated[] = "mThreadState == kvxThreadState_Created";
constexpr char kNotEnded[] =
    "(mThreadState == kvxThreadState_NotCreated) || (mThreadState == kvxThreadState_Created) || "
    "(mThreadState == kvxThreadState_Terminated)";

// A thread whose body is a function of the test.
class Worker : public vxStoppableThread {
public:
    using Body = std::function<void(Worker&)>;

    explicit Worker(
        Body aBody = [](Worker&) {}, int aKind = vxThread_Kind_Joinable,
        const char* aName = "worker")
        : vxStoppableThread(aName, aKind), mBody(std::move(aBody)) {}
    ~Worker() override {
        if (mOnDelete) {
            mOnDelete();
        }
    }

    void OnRun() override { mBody(*this); }
    void ThreadSetData(vxOSThread_Data* aData) override {
        vxStoppableThread::ThreadSetData(aData);
        if (mStackSize != 0) {
            aData->mStackSize = mStackSize;
        }
    }

    void SetState(int aState) { mThreadState = aState; }
    void AwaitState(int aState) const {
        while (GetThreadState() < aState) {
            std::this_thread::yield();
        }
    }

    size_t mStackSize = 0;
    std::function<void()> mOnDelete;

private:
    const Body mBody;
};

void UntilExit(Worker& aWorker) {
    while (!aWorker.TestExit()) {
        std::this_thread::yield();
    }
}

void StopAndWait(Worker& aWorker) {
    aWorker.ThreadCancel();
    aWorker.ThreadWaitTerminate();
}

TEST(StoppableThreadTest, NewObjectHasNoThreadYet) {
    vxtest::Reports theReports;
    for (const int theKind : {0, 1, 7}) {
        vxStoppableThread theThread("worker", theKind);
        EXPECT_EQ(theThread.GetThreadKind(), theKind);
        EXPECT_EQ(theThread.GetThreadState(), 0);
        EXPECT_EQ(theThread.ThreadGetID(), 0UL);
        EXPECT_FALSE(theThread.InThreadContext());
        EXPECT_FALSE(theThread.TestExit());
    }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST(StoppableThreadTest, CreationLogsTheNumberAndRunsNothing) {
    vxtest::Reports theReports;
    bool theHasRun = false;
    {
        Worker theWorker([&](Worker&) { theHasRun = true; });
        EXPECT_EQ(theWorker.ThreadCreate(), 0);
        EXPECT_EQ(theWorker.GetThreadState(), 1);
        EXPECT_NE(theWorker.ThreadGetID(), 0UL);
        EXPECT_THAT(theReports.LogTexts(),
                    ElementsAre("Created thread 'worker' (Thread ID = " +
                                std::to_string(theWorker.ThreadGetID()) + ")\n"));
        EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_DEBUG);
        EXPECT_EQ(theReports.Records()[0].mModule, VXLOG_M_THREADING);
    }
    EXPECT_FALSE(theHasRun);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(StoppableThreadTest, ThreadThatCannotBeCreatedIsLoggedAndMayBeTriedAgain) {
    vxtest::Reports theReports;
    ScriptedThreads theThreads;
    Worker theWorker;
    theThreads.mfNoThread = true;
    EXPECT_EQ(theWorker.ThreadCreate(), -1);
    EXPECT_EQ(theWorker.GetThreadState(), 0);
    EXPECT_EQ(theWorker.ThreadGetID(), 0UL);
    ASSERT_THAT(theReports.LogTexts(), ElementsAre("Cannot create thread 'worker'\n"));
    EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_ERROR);
    EXPECT_EQ(theReports.Records()[0].mModule, VXLOG_M_THREADING);

    theWorker.Go(kvxThreadState_Started);
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kNotCreated));
    EXPECT_EQ(theWorker.GetThreadState(), 0);

    theThreads.mfNoThread = false;
    EXPECT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Started);
    theWorker.ThreadWaitTerminate();
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kNotCreated));
}

TEST(StoppableThreadTest, StackThatTheSystemDoesNotHaveFailsTheCreation) {
    vxtest::Reports theReports;
    Worker theWorker;
    theWorker.mStackSize = SIZE_MAX - 0x10000;
    EXPECT_EQ(theWorker.ThreadCreate(), -1);
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("Cannot create thread 'worker'\n"));
}

TEST(StoppableThreadTest, SecondCreationIsReportedAndKeepsTheFirstThread) {
    vxtest::Reports theReports;
    Worker theWorker(UntilExit);
    EXPECT_EQ(theWorker.ThreadCreate(), 0);
    const unsigned long theNumber = theWorker.ThreadGetID();
    EXPECT_EQ(theWorker.ThreadCreate(), -1);
    EXPECT_EQ(theWorker.GetThreadState(), 1);
    theWorker.Go(kvxThreadState_Started);
    EXPECT_EQ(theWorker.ThreadCreate(), -1);
    EXPECT_EQ(theWorker.GetThreadState(), 3);
    EXPECT_EQ(theWorker.ThreadGetID(), theNumber);
    StopAndWait(theWorker);
    EXPECT_EQ(theWorker.ThreadCreate(), -1);
    EXPECT_EQ(theWorker.GetThreadState(), 7);
    ASSERT_THAT(theReports.Assertions(),
                ElementsAre(kNotNotCreated, kNotNotCreated, kNotNotCreated));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, EndsWith("/StoppableThread.cpp"));
}

TEST(StoppableThreadTest, RecordIsFilledWhateverWasInItBefore) {
    for (const int theKind : {0, 1, 7, -1}) {
        SCOPED_TRACE(theKind);
        vxStoppableThread theThread("worker", theKind);
        vxOSThread_Data theData;
        memset(&theData, 0xAA, sizeof(theData));
        theThread.ThreadSetData(&theData);
        EXPECT_TRUE(theData.mThreadFunc != nullptr);
        EXPECT_EQ(theData.mDeleteFunc != nullptr, theKind != 0);
        EXPECT_EQ(theData.mThreadArgs, &theThread);
        EXPECT_EQ(theData.mStackSize, 0U);
        EXPECT_EQ(theData.mThreadKind, theKind == 0 ? 0 : 1);
        EXPECT_EQ(theData.mThreadScheduling, 0);
    }
}

TEST(StoppableThreadTest, DerivedClassChoosesTheStackSize) {
    size_t theSize = 0;
    Worker theWorker([&](Worker&) {
        pthread_attr_t theAttributes;
        pthread_getattr_np(pthread_self(), &theAttributes);
        pthread_attr_getstacksize(&theAttributes, &theSize);
        pthread_attr_destroy(&theAttributes);
    });
    theWorker.mStackSize = 256 * 1024;
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Started);
    theWorker.ThreadWaitTerminate();
    EXPECT_GE(theSize, 252U * 1024U);
    EXPECT_LE(theSize, 1280U * 1024U);  // sanitizers ask for more
}

TEST(StoppableThreadTest, BodyRunsUnderTheNameInAThreadOfItsOwn) {
    char theName[] = "scanner of files";
    std::string theShown;
    unsigned long theNumber = 0;
    bool theIsOwn = false;
    int theState = -1;
    Worker theWorker(
        [&](Worker& aWorker) {
            char theText[64] = {};
            pthread_getname_np(pthread_self(), theText, sizeof(theText));
            theShown = theText;
            theNumber = vxThread_GetCurrentThreadID();
            theIsOwn = aWorker.InThreadContext();
            theState = aWorker.GetThreadState();
        },
        vxThread_Kind_Joinable, theName);
    strcpy(theName, "changed");
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Started);
    EXPECT_FALSE(theWorker.InThreadContext());
    theWorker.ThreadWaitTerminate();
    EXPECT_EQ(theShown, "scanner of file");
    EXPECT_EQ(theNumber, theWorker.ThreadGetID());
    EXPECT_NE(theNumber, vxThread_GetCurrentThreadID());
    EXPECT_TRUE(theIsOwn);
    EXPECT_EQ(theState, 3);
}

TEST(StoppableThreadTest, ThreadHasItsNameBeforeItHasStarted) {
    int theState = -1;
    Worker theWorker;
    sAtNaming = [&] { theState = theWorker.GetThreadState(); };
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Started);
    theWorker.ThreadWaitTerminate();
    sAtNaming = nullptr;
    EXPECT_EQ(theState, 2);
}

TEST(StoppableThreadTest, LifeOfAJoinableThreadIsLogged) {
    vxtest::Reports theReports;
    Worker theWorker;
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Started);
    theWorker.ThreadWaitTerminate();
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre(MatchesRegex("Created thread 'worker' \\(Thread ID = [0-9]+\\)\n"),
                            MatchesRegex("worker: [0-9]+ ms\n?"), "Thread 'worker' terminated\n"));
    for (const vxtest::LogRecord& theRecord : theReports.Records()) {
        EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_DEBUG);
        EXPECT_EQ(theRecord.mModule, VXLOG_M_THREADING);
        EXPECT_THAT(theRecord.mFile, EndsWith("/StoppableThread.cpp"));
    }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(StoppableThreadTest, NameMayBeNullEmptyOrHoldAFormat) {
    for (const char* theName : {static_cast<const char*>(nullptr), "", "%s%n"}) {
        vxtest::Reports theReports;
        const std::string theText = theName != nullptr ? theName : "";
        Worker theWorker([](Worker&) {}, vxThread_Kind_Joinable, theName);
        ASSERT_EQ(theWorker.ThreadCreate(), 0);
        theWorker.Go(kvxThreadState_Started);
        theWorker.ThreadWaitTerminate();
        ASSERT_EQ(theReports.LogTexts().size(), 3U);
        EXPECT_EQ(theReports.LogTexts()[2], "Thread '" + theText + "' terminated\n");
    }
}

// Starting

TEST(StoppableThreadTest, GoReturnsOnceTheThreadHasStarted) {
    vxtest::Latch theMayEnd(1);
    Worker theWorker([&](Worker&) { theMayEnd.Wait(); });
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Started);
    EXPECT_EQ(theWorker.GetThreadState(), 3);
    theMayEnd.CountDown();
    theWorker.ThreadWaitTerminate();
}

TEST(StoppableThreadTest, StateIsStartingBeforeThePlatformStartsTheThread) {
    ScriptedThreads theThreads;
    Worker theWorker;
    int theState = -1;
    theThreads.mBeforeRun = [&] { theState = theWorker.GetThreadState(); };
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Started);
    theWorker.ThreadWaitTerminate();
    EXPECT_EQ(theState, 2);
}

TEST(StoppableThreadTest, GoLooksEvery10MillisecondsUntilTheServiceIsUp) {
    ScriptedThreads theThreads;
    vxtest::Latch theHasWaited(5);
    Worker theWorker([&](Worker& aWorker) {
        theHasWaited.Wait();
        aWorker.SetState(kvxThreadState_ReadyToUse);
        UntilExit(aWorker);
    });
    theThreads.mInSleep = [&] {
        theHasWaited.CountDown();
        std::this_thread::yield();
    };
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_ReadyToUse);
    EXPECT_EQ(theWorker.GetThreadState(), 4);
    EXPECT_GE(theThreads.mSleeps.size(), 5U);
    EXPECT_THAT(theThreads.mSleeps, Each(10U));
    StopAndWait(theWorker);
}

TEST(StoppableThreadTest, GoDoesNotSleepWhereNothingIsWaitedFor) {
    ScriptedThreads theThreads;
    Worker theWorker;
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Starting);
    EXPECT_THAT(theThreads.mSleeps, IsEmpty());
    theWorker.ThreadWaitTerminate();
}

TEST(StoppableThreadTest, GoReturnsWhenTheBodyEndsWithoutHavingBeenReady) {
    Worker theWorker;
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_ReadyToUse);
    EXPECT_EQ(theWorker.GetThreadState(), 6);
    theWorker.ThreadWaitTerminate();
}

TEST(StoppableThreadTest, GoReturnsWhenAStopIsAskedForMeanwhile) {
    ScriptedThreads theThreads;
    Worker theWorker(UntilExit);
    theThreads.mInSleep = [&] { theWorker.ThreadCancel(); };
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_ReadyToUse);
    EXPECT_GE(theWorker.GetThreadState(), 5);
    theWorker.ThreadWaitTerminate();
}

TEST(StoppableThreadTest, GoFromAnyOtherStateIsReportedAndStartsNothing) {
    vxtest::Reports theReports;
    int theRuns = 0;
    Worker theWorker([&](Worker& aWorker) {
        ++theRuns;
        UntilExit(aWorker);
    });
    theWorker.Go(kvxThreadState_Terminated);
    EXPECT_EQ(theWorker.GetThreadState(), 0);
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Started);
    theWorker.Go(kvxThreadState_Terminated);
    EXPECT_EQ(theWorker.GetThreadState(), 3);
    StopAndWait(theWorker);
    theWorker.Go(kvxThreadState_Started);
    EXPECT_EQ(theWorker.GetThreadState(), 7);
    EXPECT_EQ(theRuns, 1);
    ASSERT_THAT(theReports.Assertions(), ElementsAre(kNotCreated, kNotCreated, kNotCreated));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, EndsWith("/StoppableThread.cpp"));
}

// Stopping

TEST(StoppableThreadTest, CancelLeavesAThreadAloneThatWasNotStarted) {
    int theExits = -1;
    Worker theWorker([&](Worker& aWorker) { theExits = aWorker.TestExit() ? 1 : 0; });
    theWorker.ThreadCancel();
    EXPECT_EQ(theWorker.GetThreadState(), 0);
    EXPECT_FALSE(theWorker.TestExit());
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.ThreadCancel();
    EXPECT_EQ(theWorker.GetThreadState(), 1);
    EXPECT_FALSE(theWorker.TestExit());
    theWorker.Go(kvxThreadState_Started);
    theWorker.ThreadWaitTerminate();
    EXPECT_EQ(theExits, 0);
}

TEST(StoppableThreadTest, CancelWhileStartingIsNotLost) {
    ScriptedThreads theThreads;
    int theState = -1;
    int theExits = -1;
    Worker theWorker([&](Worker& aWorker) {
        theState = aWorker.GetThreadState();
        theExits = aWorker.TestExit() ? 1 : 0;
    });
    theThreads.mBeforeRun = [&] {
        theWorker.ThreadCancel();
        EXPECT_EQ(theWorker.GetThreadState(), 5);
    };
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_ReadyToUse);
    theWorker.ThreadWaitTerminate();
    EXPECT_EQ(theState, 5);
    EXPECT_EQ(theExits, 1);
}

TEST(StoppableThreadTest, CancelStopsAThreadThatHasStartedOrIsReady) {
    for (const int theReached : {3, 4}) {
        SCOPED_TRACE(theReached);
        vxtest::Latch theIsCancelled(1);
        Worker theWorker([&](Worker& aWorker) {
            aWorker.SetState(theReached);
            EXPECT_FALSE(aWorker.TestExit());
            theIsCancelled.Wait();
            EXPECT_TRUE(aWorker.TestExit());
            EXPECT_EQ(aWorker.GetThreadState(), 5);
        });
        ASSERT_EQ(theWorker.ThreadCreate(), 0);
        theWorker.Go(theReached);
        theWorker.ThreadCancel();
        EXPECT_EQ(theWorker.GetThreadState(), 5);
        theWorker.ThreadCancel();
        EXPECT_EQ(theWorker.GetThreadState(), 5);
        theIsCancelled.CountDown();
        theWorker.ThreadWaitTerminate();
        EXPECT_EQ(theWorker.GetThreadState(), 7);
    }
}

TEST(StoppableThreadTest, CancelDoesNotLowerTheStateOfAnEndedThread) {
    Worker theWorker;
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Terminating);
    theWorker.ThreadCancel();
    EXPECT_EQ(theWorker.GetThreadState(), 6);
    EXPECT_TRUE(theWorker.TestExit());
    theWorker.ThreadWaitTerminate();
    theWorker.ThreadCancel();
    EXPECT_EQ(theWorker.GetThreadState(), 7);
}

struct ExitCase {
    int mState;
    bool mfExit;
};

constexpr ExitCase kExits[] = {{0, false}, {1, false}, {2, false}, {3, false},
                               {4, false}, {5, true},  {6, true},  {7, true}};

TEST(StoppableThreadTest, StateThatSomebodyElseWroteStopsTheBody) {
    for (const ExitCase& theCase : kExits) {
        SCOPED_TRACE(theCase.mState);
        Worker theWorker;
        theWorker.SetState(theCase.mState);
        EXPECT_EQ(theWorker.TestExit(), theCase.mfExit);
        EXPECT_EQ(theWorker.GetThreadState(), theCase.mState);
        theWorker.SetState(kvxThreadState_NotCreated);
    }
}

TEST(StoppableThreadTest, RequestOutlivesAStateThatTheBodyWrites) {
    vxtest::Latch theIsCancelled(1);
    Worker theWorker([&](Worker& aWorker) {
        theIsCancelled.Wait();
        aWorker.SetState(kvxThreadState_ReadyToUse);
        EXPECT_EQ(aWorker.GetThreadState(), 4);
        EXPECT_TRUE(aWorker.TestExit());
        EXPECT_EQ(aWorker.GetThreadState(), 5);
    });
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Started);
    theWorker.ThreadCancel();
    theIsCancelled.CountDown();
    theWorker.ThreadWaitTerminate();
}

TEST(StoppableThreadTest, BodyThatReturnsByItselfIsTerminatingUntilItIsWaitedFor) {
    ScriptedThreads theThreads;
    Worker theWorker;
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Started);
    theWorker.AwaitState(6);
    EXPECT_EQ(theWorker.GetThreadState(), 6);
    theWorker.ThreadWaitTerminate();
    EXPECT_EQ(theWorker.GetThreadState(), 7);
    EXPECT_EQ(theThreads.mWaits, 1);
    theWorker.ThreadWaitTerminate();
    EXPECT_EQ(theWorker.GetThreadState(), 7);
}

TEST(StoppableThreadTest, WaitForAThreadThatWasNeverStartedTerminatesItAtOnce) {
    vxtest::Reports theReports;
    ScriptedThreads theThreads;
    {
        Worker theFirst;
        theFirst.ThreadWaitTerminate();
        EXPECT_EQ(theFirst.GetThreadState(), 7);
        EXPECT_THAT(theReports.LogTexts(), IsEmpty());
        Worker theSecond;
        ASSERT_EQ(theSecond.ThreadCreate(), 0);
        theReports.Clear();
        theSecond.ThreadWaitTerminate();
        EXPECT_EQ(theSecond.GetThreadState(), 7);
        EXPECT_TRUE(theSecond.TestExit());
    }
    EXPECT_EQ(theThreads.mWaits, 0);
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(StoppableThreadTest, FailedWaitIsLoggedAndTerminatesAllTheSame) {
    vxtest::Reports theReports;
    ScriptedThreads theThreads;
    vxtest::Latch theHasEnded(1);
    Worker theWorker([&](Worker&) { theHasEnded.CountDown(); });
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Terminating);
    theHasEnded.Wait();
    theThreads.mWaitResult = 22;
    theWorker.ThreadWaitTerminate();
    EXPECT_EQ(theWorker.GetThreadState(), 7);
    theThreads.mWaitResult = 0;
    vxtest::LogRecord theLast = theReports.Records().back();
    for (const vxtest::LogRecord& theRecord : theReports.Records()) {
        if (theRecord.mLevel == VXLOGLEVEL_ERROR) {
            theLast = theRecord;
        }
    }
    EXPECT_EQ(theLast.mText, "Error waiting termination of thread 'worker' (Error = 22)\n");
    EXPECT_EQ(theLast.mLevel, VXLOGLEVEL_ERROR);
    EXPECT_EQ(theLast.mModule, VXLOG_M_THREADING);
    EXPECT_THAT(theReports.LogTexts(), Not(Contains("Thread 'worker' terminated\n")));
    theWorker.ThreadWaitTerminate();  // for the end of Entry()
}

TEST(StoppableThreadTest, ThreadThatWaitsForItselfGoesOn) {
    vxtest::Reports theReports;
    Worker theWorker([&](Worker& aWorker) {
        aWorker.ThreadWaitTerminate();
        EXPECT_EQ(aWorker.GetThreadState(), 7);
    });
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_Terminated);
    theWorker.ThreadWaitTerminate();
    EXPECT_EQ(theWorker.GetThreadState(), 7);
    EXPECT_EQ(theReports.LogTexts()[1], "Error waiting termination of thread 'worker' (Error = " +
                                            std::to_string(EDEADLK) + ")\n");
    EXPECT_EQ(theReports.LogTexts().back(), "Thread 'worker' terminated\n");
}

TEST(StoppableThreadTest, StopsFromSeveralThreadsMeetTheStartAtAnyMoment) {
    vxtest::Reports theReports;
    for (int i = 0; i < 100; ++i) {
        Worker theWorker(UntilExit);
        ASSERT_EQ(theWorker.ThreadCreate(), 0);
        const auto theCancel = [&] {
            while (theWorker.GetThreadState() < kvxThreadState_Terminate) {
                theWorker.ThreadCancel();
                std::this_thread::yield();
            }
        };
        std::thread theFirst(theCancel);
        std::thread theSecond(theCancel);
        theWorker.Go(i % 2 == 0 ? kvxThreadState_Started : kvxThreadState_ReadyToUse);
        theWorker.ThreadWaitTerminate();
        theFirst.join();
        theSecond.join();
        ASSERT_EQ(theWorker.GetThreadState(), 7);
    }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(StoppableThreadTest, WhatTheBodyWroteBeforeItWasReadyIsVisible) {
    int theService = 0;
    Worker theWorker([&](Worker& aWorker) {
        theService = 42;
        aWorker.SetState(kvxThreadState_ReadyToUse);
        UntilExit(aWorker);
    });
    ASSERT_EQ(theWorker.ThreadCreate(), 0);
    theWorker.Go(kvxThreadState_ReadyToUse);
    EXPECT_EQ(theService, 42);
    StopAndWait(theWorker);
}

// Destruction

// Reaches a state, then runs until it is stopped; owns nothing that its destruction takes away.
struct Forgotten : vxStoppableThread {
    struct Shared {
        const int mReached;
        bool mfHasEnded = false;
        vxtest::Latch mIsThere{1};
    };

    explicit Forgotten(Shared* aShared)
        : vxStoppableThread("forgotten", vxThread_Kind_Joinable), mShared(aShared) {}

    void OnRun() override {
        Shared& theShared = *mShared;
        mThreadState = theShared.mReached;
        theShared.mIsThere.CountDown();
        while (GetThreadState() < kvxThreadState_Terminate) {
            std::this_thread::yield();
        }
        theShared.mfHasEnded = true;
    }

    Shared* const mShared;
};

TEST(StoppableThreadTest, RunningThreadThatIsDestroyedIsReportedStoppedAndJoined) {
    for (const int theReached : {3, 4, 5, 6}) {
        SCOPED_TRACE(theReached);
        vxtest::Reports theReports;
        Forgotten::Shared theShared{theReached};
        {
            Forgotten theThread(&theShared);
            ASSERT_EQ(theThread.ThreadCreate(), 0);
            theThread.Go(theReached);
            theShared.mIsThere.Wait();
            EXPECT_GE(theThread.GetThreadState(), theReached);
        }
        EXPECT_TRUE(theShared.mfHasEnded);
        ASSERT_THAT(theReports.Assertions(), ElementsAre(kNotEnded));
        EXPECT_THAT(theReports.AssertionReports()[0].mFile, EndsWith("/StoppableThread.cpp"));
    }
}

TEST(StoppableThreadTest, EndedThreadThatWasNotWaitedForIsReported) {
    vxtest::Reports theReports;
    {
        Worker theWorker;
        ASSERT_EQ(theWorker.ThreadCreate(), 0);
        theWorker.Go(kvxThreadState_Terminating);
        EXPECT_EQ(theWorker.GetThreadState(), 6);
    }
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kNotEnded));
}

TEST(StoppableThreadTest, DetachedObjectThatWasNotStartedBelongsToItsCreator) {
    vxtest::Reports theReports;
    bool theHasRun = false;
    const auto theBody = [&](Worker&) { theHasRun = true; };
    delete new Worker(theBody, vxThread_Kind_Detached);
    auto* theWorker = new Worker(theBody, vxThread_Kind_Detached);
    ASSERT_EQ(theWorker->ThreadCreate(), 0);
    delete theWorker;
    EXPECT_FALSE(theHasRun);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(StoppableThreadTest, DetachedThreadDeletesItselfInTheStateTerminated) {
    vxtest::Reports theReports;
    vxtest::Latch theIsGone(1);
    int theState = -1;
    bool theIsOwn = false;
    auto* theWorker = new Worker(UntilExit, vxThread_Kind_Detached);
    theWorker->mOnDelete = [&, theWorker] {
        theState = theWorker->GetThreadState();
        theIsOwn = theWorker->InThreadContext();
        theIsGone.CountDown();
    };
    ASSERT_EQ(theWorker->ThreadCreate(), 0);
    theWorker->Go(kvxThreadState_Started);
    theWorker->ThreadCancel();
    theIsGone.Wait();
    EXPECT_EQ(theState, 7);
    EXPECT_TRUE(theIsOwn);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_EQ(theReports.LogTexts().size(), 2U);  // created, duration
}

TEST(StoppableThreadTest, UnknownKindIsDetachedAndReportedInTheEnd) {
    vxtest::Reports theReports;
    vxtest::Latch theIsGone(1);
    int theState = -1;
    auto* theWorker = new Worker([](Worker&) {}, 7);
    theWorker->mOnDelete = [&, theWorker] {
        theState = theWorker->GetThreadState();
        theIsGone.CountDown();
    };
    ASSERT_EQ(theWorker->ThreadCreate(), 0);
    theWorker->Go(kvxThreadState_Started);
    theIsGone.Wait();
    EXPECT_EQ(theState, 7);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("theThread->GetThreadKind() == vxThread_Kind_Detached"));
}

TEST(StoppableThreadTest, DetachedThreadThatEndsAtOnceIsNotTouchedAfterwards) {
    // Sanitizers see to the rest.
    vxtest::Reports theReports;
    constexpr int kThreads = 60;
    vxtest::Latch theAreGone(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        auto* theWorker = new Worker([](Worker&) {}, vxThread_Kind_Detached);
        theWorker->mOnDelete = [&] { theAreGone.CountDown(); };
        ASSERT_EQ(theWorker->ThreadCreate(), 0);
        theWorker->Go(kvxThreadState_Starting + i % 3);
    }
    theAreGone.Wait();
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(StoppableThreadTest, DetachedThreadThatIsCancelledIsNotTouchedAfterwards) {
    // Sanitizers see to the rest.
    vxtest::Reports theReports;
    constexpr int kThreads = 60;
    vxtest::Latch theAreGone(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        auto* theWorker = new Worker(UntilExit, vxThread_Kind_Detached);
        theWorker->mOnDelete = [&] { theAreGone.CountDown(); };
        ASSERT_EQ(theWorker->ThreadCreate(), 0);
        theWorker->Go(kvxThreadState_Started);
        theWorker->ThreadCancel();
    }
    theAreGone.Wait();
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(StoppableThreadTest, DetachedObjectLivesUntilGoHasLooked) {
    vxtest::Reports theReports;
    ScriptedThreads theThreads;
    vxtest::Latch theIsGoing(1);
    auto* theWorker = new Worker([](Worker&) {}, vxThread_Kind_Detached);
    theWorker->mOnDelete = [&] { theIsGoing.CountDown(); };
    theThreads.mInSleep = [&] { theIsGoing.Wait(); };  // until the thread is in the destructor
    ASSERT_EQ(theWorker->ThreadCreate(), 0);
    theWorker->Go(kvxThreadState_ReadyToUse);
    theIsGoing.Wait();
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(StoppableThreadTest, DeleteFunctionIsForDetachedThreadsOnly) {
    vxtest::Reports theReports;
    vxStoppableThread theDetached("detached", vxThread_Kind_Detached);
    vxOSThread_Data theData;
    theDetached.ThreadSetData(&theData);
    theData.mDeleteFunc(nullptr);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());

    bool theIsGone = false;
    auto* theWorker = new Worker([](Worker&) {}, vxThread_Kind_Detached);
    theWorker->mOnDelete = [&] { theIsGone = true; };
    theData.mDeleteFunc(static_cast<vxStoppableThread*>(theWorker));
    EXPECT_TRUE(theIsGone);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());

    theIsGone = false;
    theWorker = new Worker;
    theWorker->mOnDelete = [&] { theIsGone = true; };
    theData.mDeleteFunc(static_cast<vxStoppableThread*>(theWorker));
    EXPECT_TRUE(theIsGone);
    ASSERT_THAT(theReports.Assertions(),
                ElementsAre("theThread->GetThreadKind() == vxThread_Kind_Detached"));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, EndsWith("/StoppableThread.cpp"));
}

// The rest

TEST(StoppableThreadTest, ThreadFunctionCallsTheEntryOfTheObject) {
    class Other : public vxStoppableThread {
    public:
        Other() : vxStoppableThread("other", vxThread_Kind_Joinable) {}
        int Entry() override { return 33; }
    };
    Other theOther;
    vxOSThread_Data theData;
    theOther.ThreadSetData(&theData);
    EXPECT_EQ(theData.mThreadFunc(theData.mThreadArgs), 33);
}

TEST(StoppableThreadTest, EntryReturns0AndTheBaseBodyDoesNothing) {
    vxtest::Reports theReports;
    vxStoppableThread theThread("base", vxThread_Kind_Joinable);
    int theResult = -1;
    std::thread([&] { theResult = theThread.Entry(); }).join();
    EXPECT_EQ(theResult, 0);
    EXPECT_EQ(theThread.GetThreadState(), 6);
    theThread.ThreadWaitTerminate();

    vxStoppableThread theDetached("base", vxThread_Kind_Detached);
    std::thread([&] { theResult = theDetached.Entry(); }).join();
    EXPECT_EQ(theDetached.GetThreadState(), 7);
}

TEST(StoppableThreadTest, PriorityAndSleepGoToThePlatform) {
    ScriptedThreads theThreads;
    theThreads.mInSleep = [] {};
    vxStoppableThread theThread("worker", vxThread_Kind_Joinable);
    EXPECT_EQ(theThread.ThreadSetPriority(kvxThreadPriority_Max), 5);
    EXPECT_EQ(theThread.ThreadSetPriority(65535), 5);
    EXPECT_THAT(theThreads.mPriorities, ElementsAre(2, 65535));
    vxStoppableThread::ThreadSleep(25);
    vxStoppableThread::ThreadSleep(0);
    vxStoppableThread::ThreadSleep(-1);
    EXPECT_THAT(theThreads.mSleeps, ElementsAre(25U, 0U, 0U));
}

}  // namespace
