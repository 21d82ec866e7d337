#include <libvxOS/Thread.h>

#include <gmock/gmock.h>
#include <libvxLog/Log.h>
#include <libvxOS/Debug.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/Latch.h"
#include "support/Reports.h"

namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(vxThread_Kind_Joinable == 0 && kvxThreadKind_Joinable == 0);
static_assert(vxThread_Kind_Detached == 1 && kvxThreadKind_Detached == 1);
static_assert(kvxThreadPriority_Min == 0 && kvxThreadPriority_Default == 1 &&
              kvxThreadPriority_Max == 2);
static_assert(vxThread_Scheduling_Default == 0 && vxThread_Scheduling_Realtime == 1);

// A thread that runs a function of the test, and notes what the platform calls.
class Job {
public:
    explicit Job(std::function<void()> aBody = [] {}) : mBody(std::move(aBody)) {
        mData = {};
        mData.mThreadFunc = [](void* aJob) {
            auto* theJob = static_cast<Job*>(aJob);
            theJob->mBody();
            theJob->mCalls.push_back("body");
            return 7;
        };
        mData.mDeleteFunc = [](void* aJob) {
            auto* theJob = static_cast<Job*>(aJob);
            theJob->mCalls.push_back("delete");
            if (theJob->mfDeletesHandle) {
                vxThread_Delete(theJob->mThread);
            }
            theJob->mDeleted.CountDown();
        };
        mData.mThreadArgs = this;
    }

    vxOSThread_Data mData;
    std::function<void()> mBody;
    bool mfDeletesHandle = false;
    vxOSThread* mThread = nullptr;
    std::vector<std::string> mCalls;  // by the thread, oldest first
    vxtest::Latch mDeleted{1};        // in the delete function
};

std::string NameOfThisThread() {
    char theName[64] = {};
    pthread_getname_np(pthread_self(), theName, sizeof(theName));
    return theName;
}

size_t StackSizeOfThisThread() {
    pthread_attr_t theAttributes;
    pthread_getattr_np(pthread_self(), &theAttributes);
    size_t theSize = 0;
    pthread_attr_getstacksize(&theAttributes, &theSize);
    pthread_attr_destroy(&theAttributes);
    return theSize;
}

void RunAndWait(Job& aJob) {
    aJob.mThread = vxThread_New(&aJob.mData);
    ASSERT_NE(aJob.mThread, nullptr);
    ASSERT_EQ(vxThread_Run(aJob.mThread), 0);
    ASSERT_EQ(vxThread_Wait(aJob.mThread), 0);
    vxThread_Delete(aJob.mThread);
}

TEST(OSThreadTest, JoinableThreadRunsBothFunctionsAndIsWaitedFor) {
    Job theJob;
    RunAndWait(theJob);
    EXPECT_THAT(theJob.mCalls, ElementsAre("body", "delete"));
}

TEST(OSThreadTest, DeleteFunctionMayBeMissing) {
    Job theJob;
    theJob.mData.mDeleteFunc = nullptr;
    RunAndWait(theJob);
    EXPECT_THAT(theJob.mCalls, ElementsAre("body"));
}

TEST(OSThreadTest, ThreadIsThereButDoesNothingUntilItIsStarted) {
    std::atomic<bool> theHasRun{false};
    Job theJob([&] { theHasRun = true; });
    theJob.mThread = vxThread_New(&theJob.mData);
    ASSERT_NE(theJob.mThread, nullptr);
    const std::string theTask = "/proc/self/task/" + std::to_string(vxThread_GetID(theJob.mThread));
    EXPECT_EQ(access(theTask.c_str(), F_OK), 0);
    vxThread_Sleep(20);  // for a thread that does not wait to be found out
    EXPECT_FALSE(theHasRun);

    EXPECT_EQ(vxThread_Run(theJob.mThread), 0);
    EXPECT_EQ(vxThread_Wait(theJob.mThread), 0);
    EXPECT_TRUE(theHasRun);
    vxThread_Delete(theJob.mThread);
}

TEST(OSThreadTest, RecordIsCopied) {
    Job theJob;
    theJob.mThread = vxThread_New(&theJob.mData);
    ASSERT_NE(theJob.mThread, nullptr);
    theJob.mData = {};
    EXPECT_EQ(vxThread_Run(theJob.mThread), 0);
    EXPECT_EQ(vxThread_Wait(theJob.mThread), 0);
    EXPECT_THAT(theJob.mCalls, ElementsAre("body", "delete"));
    vxThread_Delete(theJob.mThread);
}

TEST(OSThreadTest, SuspendedThreadThatIsDeletedEndsWithoutRunningAnything) {
    // At once, and when the thread sleeps already.
    for (const int theCase : {0, 1, 2, 3}) {
        SCOPED_TRACE(theCase);
        const int theKind = theCase % 2;
        Job theJob;
        theJob.mData.mThreadKind = theKind;
        theJob.mThread = vxThread_New(&theJob.mData);
        ASSERT_NE(theJob.mThread, nullptr);
        vxThread_Sleep(theCase < 2 ? 0 : 20);
        vxThread_Delete(theJob.mThread);
        EXPECT_THAT(theJob.mCalls, IsEmpty());
    }
}

TEST(OSThreadTest, ThreadIsStartedOnce) {
    Job theJob;
    theJob.mThread = vxThread_New(&theJob.mData);
    ASSERT_NE(theJob.mThread, nullptr);
    EXPECT_EQ(vxThread_Run(theJob.mThread), 0);
    EXPECT_EQ(vxThread_Run(theJob.mThread), EINVAL);
    EXPECT_EQ(vxThread_Wait(theJob.mThread), 0);
    EXPECT_EQ(vxThread_Run(theJob.mThread), EINVAL);
    EXPECT_THAT(theJob.mCalls, ElementsAre("body", "delete"));
    vxThread_Delete(theJob.mThread);
}

TEST(OSThreadTest, EveryWaitForAnEndedThreadSucceeds) {
    Job theJob;
    theJob.mThread = vxThread_New(&theJob.mData);
    ASSERT_NE(theJob.mThread, nullptr);
    vxThread_Run(theJob.mThread);
    EXPECT_EQ(vxThread_Wait(theJob.mThread), 0);
    EXPECT_EQ(vxThread_Wait(theJob.mThread), 0);
    vxThread_Delete(theJob.mThread);
}

TEST(OSThreadTest, SeveralThreadsMayWaitForOne) {
    vxtest::Latch theMayEnd(1);
    Job theJob([&] { theMayEnd.Wait(); });
    theJob.mThread = vxThread_New(&theJob.mData);
    ASSERT_NE(theJob.mThread, nullptr);
    std::vector<std::thread> theWaiters;
    std::atomic<int> theBack{0};
    vxtest::Latch theAreThere(3);
    for (int i = 0; i < 3; ++i) {
        theWaiters.emplace_back([&] {
            theAreThere.CountDown();
            EXPECT_EQ(vxThread_Wait(theJob.mThread), 0);  // at first for one that is suspended
            ++theBack;
        });
    }
    theAreThere.Wait();
    vxThread_Run(theJob.mThread);
    EXPECT_EQ(theBack, 0);
    theMayEnd.CountDown();
    for (std::thread& theWaiter : theWaiters) {
        theWaiter.join();
    }
    EXPECT_EQ(theBack, 3);
    vxThread_Delete(theJob.mThread);
}

TEST(OSThreadTest, ThreadCannotWaitForItself) {
    int theResult = 0;
    Job theJob;
    theJob.mBody = [&] { theResult = vxThread_Wait(theJob.mThread); };
    RunAndWait(theJob);
    EXPECT_EQ(theResult, EDEADLK);
}

TEST(OSThreadTest, JoinableThreadGoesOnWithoutItsHandle) {
    vxtest::Latch theMayEnd(1);
    Job theJob([&] { theMayEnd.Wait(); });
    theJob.mThread = vxThread_New(&theJob.mData);
    ASSERT_NE(theJob.mThread, nullptr);
    vxThread_Run(theJob.mThread);
    vxThread_Delete(theJob.mThread);
    theMayEnd.CountDown();
    theJob.mDeleted.Wait();
    EXPECT_THAT(theJob.mCalls, ElementsAre("body", "delete"));
}

TEST(OSThreadTest, EndedThreadThatNobodyWaitedForIsReleased) {
    // Memory checkers see to the rest.
    Job theJob;
    theJob.mThread = vxThread_New(&theJob.mData);
    ASSERT_NE(theJob.mThread, nullptr);
    vxThread_Run(theJob.mThread);
    theJob.mDeleted.Wait();
    vxThread_Delete(theJob.mThread);
}

TEST(OSThreadTest, DetachedThreadReleasesItsOwnHandle) {
    for (const int theKind : {static_cast<int>(vxThread_Kind_Detached), 2, -1}) {
        SCOPED_TRACE(theKind);
        Job theJob;
        theJob.mData.mThreadKind = theKind;
        theJob.mfDeletesHandle = true;
        theJob.mThread = vxThread_New(&theJob.mData);
        ASSERT_NE(theJob.mThread, nullptr);
        EXPECT_EQ(vxThread_Run(theJob.mThread), 0);
        theJob.mDeleted.Wait();
        EXPECT_THAT(theJob.mCalls, ElementsAre("body", "delete"));
    }
}

TEST(OSThreadTest, DetachedThreadCannotBeWaitedFor) {
    vxtest::Latch theMayEnd(1);
    Job theJob([&] { theMayEnd.Wait(); });
    theJob.mData.mThreadKind = vxThread_Kind_Detached;
    theJob.mThread = vxThread_New(&theJob.mData);
    ASSERT_NE(theJob.mThread, nullptr);
    EXPECT_EQ(vxThread_Wait(theJob.mThread), EINVAL);
    vxThread_Run(theJob.mThread);
    EXPECT_EQ(vxThread_Wait(theJob.mThread), EINVAL);
    vxThread_Delete(theJob.mThread);  // the thread goes on
    theMayEnd.CountDown();
    theJob.mDeleted.Wait();
}

TEST(OSThreadTest, ManyDetachedThreadsCleanUpAfterThemselves) {
    constexpr int kThreads = 200;
    std::vector<std::unique_ptr<Job>> theJobs;
    for (int i = 0; i < kThreads; ++i) {
        theJobs.push_back(std::make_unique<Job>());
        Job& theJob = *theJobs.back();
        theJob.mData.mThreadKind = vxThread_Kind_Detached;
        theJob.mData.mStackSize = 1;
        theJob.mfDeletesHandle = true;
        theJob.mThread = vxThread_New(&theJob.mData);
        ASSERT_NE(theJob.mThread, nullptr);
        ASSERT_EQ(vxThread_Run(theJob.mThread), 0);
    }
    for (const auto& theJob : theJobs) {
        theJob->mDeleted.Wait();
    }
}

TEST(OSThreadTest, NumberOfAThreadIsTheOneThatItSeesItself) {
    unsigned long theSeen = 0;
    Job theJob([&] { theSeen = vxThread_GetCurrentThreadID(); });
    theJob.mThread = vxThread_New(&theJob.mData);
    ASSERT_NE(theJob.mThread, nullptr);
    const unsigned long theNumber = vxThread_GetID(theJob.mThread);
    EXPECT_NE(theNumber, 0UL);
    EXPECT_NE(theNumber, vxThread_GetCurrentThreadID());
    vxThread_Run(theJob.mThread);
    vxThread_Wait(theJob.mThread);
    EXPECT_EQ(theSeen, theNumber);
    EXPECT_EQ(vxThread_GetID(theJob.mThread), theNumber);
    vxThread_Delete(theJob.mThread);
}

struct StackCase {
    size_t mAsked;
    size_t mSmallest;  // that may be given
};

constexpr StackCase kStacks[] = {
    {1, 64 * 1024},         {4095, 64 * 1024},        {64 * 1024 - 1, 64 * 1024},
    {64 * 1024, 64 * 1024}, {128 * 1024, 128 * 1024}, {128 * 1024 + 1, 128 * 1024 + 1},
    {1 << 20, 1 << 20},
};

TEST(OSThreadTest, StackIsAtLeastAsLargeAsAskedAndLargeEnoughToWork) {
    for (const StackCase& theCase : kStacks) {
        SCOPED_TRACE(theCase.mAsked);
        size_t theSize = 0;
        Job theJob([&] { theSize = StackSizeOfThisThread(); });
        theJob.mData.mStackSize = theCase.mAsked;
        RunAndWait(theJob);
        // A page may be lost to the system's guard.
        EXPECT_GE(theSize + 4096, theCase.mSmallest);
        EXPECT_LE(theSize, 1280U * 1024U);  // sanitizers ask for more
    }
}

TEST(OSThreadTest, TinyStackIsEnoughToLog) {
    vxtest::Reports theReports;
    Job theJob([] {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "%s %d %f\n", std::string(2000, 'x').c_str(), 5,
              0.5);
    });
    theJob.mData.mStackSize = 1;
    RunAndWait(theJob);
    EXPECT_THAT(theReports.LogTexts(), ElementsAre(std::string(2000, 'x') + " 5 0.500000\n"));
}

TEST(OSThreadTest, NoSizeGivesTheStackOfTheSystem) {
    pthread_attr_t theAttributes;
    pthread_attr_init(&theAttributes);
    size_t theExpected = 0;
    pthread_attr_getstacksize(&theAttributes, &theExpected);
    pthread_attr_destroy(&theAttributes);

    size_t theSize = 0;
    Job theJob([&] { theSize = StackSizeOfThisThread(); });
    RunAndWait(theJob);
    EXPECT_EQ(theSize, theExpected);
}

TEST(OSThreadTest, ThreadThatTheSystemCannotGiveIsNull) {
    for (const size_t theSize : {SIZE_MAX, SIZE_MAX - 4096, SIZE_MAX - 0x10000}) {
        SCOPED_TRACE(theSize);
        Job theJob;
        theJob.mData.mStackSize = theSize;
        errno = 0;
        EXPECT_EQ(vxThread_New(&theJob.mData), nullptr);
        EXPECT_THAT(errno, AnyOf(EAGAIN, EINVAL, ENOMEM));
        EXPECT_THAT(theJob.mCalls, IsEmpty());
    }
}

TEST(OSThreadTest, RealtimeThreadGetsWhatTheProgramMayHave) {
    sched_param theParameters = {};
    theParameters.sched_priority = sched_get_priority_min(SCHED_RR);
    bool theIsAllowed = false;
    std::thread([&] {
        theIsAllowed = pthread_setschedparam(pthread_self(), SCHED_RR, &theParameters) == 0;
    }).join();
    const int theOwn = sched_getscheduler(0);

    vxtest::Reports theReports;
    int thePolicy = -1;
    std::vector<int> thePriorities;
    Job theJob([&] {
        thePolicy = sched_getscheduler(0);
        sched_param theSeen = {};
        sched_getparam(0, &theSeen);
        thePriorities.push_back(theSeen.sched_priority);
        for (const int thePriority :
             {kvxThreadPriority_Min, kvxThreadPriority_Default, kvxThreadPriority_Max}) {
            if (theIsAllowed) {
                EXPECT_EQ(vxThread_SetPriority(static_cast<uint16_t>(thePriority)), 0);
                sched_getparam(0, &theSeen);
                thePriorities.push_back(theSeen.sched_priority);
            }
        }
    });
    theJob.mData.mThreadScheduling = vxThread_Scheduling_Realtime;
    RunAndWait(theJob);
    EXPECT_THAT(theJob.mCalls, ElementsAre("body", "delete"));
    if (theIsAllowed) {
        EXPECT_EQ(thePolicy, SCHED_RR);
        EXPECT_THAT(thePriorities, ElementsAre(50, 1, 50, 99));
        EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    } else {
        EXPECT_EQ(thePolicy, theOwn);
        EXPECT_THAT(
            theReports.LogTexts(),
            ElementsAre(
                "Real-time scheduling is not permitted, the thread gets the default one\n"));
        EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_WARNING);
        EXPECT_EQ(theReports.Records()[0].mModule, VXLOG_M_THREADING);
    }
}

int NicenessOfThisThread() {
    return getpriority(PRIO_PROCESS, static_cast<id_t>(vxThread_GetCurrentThreadID()));
}

TEST(OSThreadTest, PriorityIsThatOfTheCallingThreadAlone) {
    const int theProgram = NicenessOfThisThread();
    int theResults[3] = {-1, -1, -1};
    int theSeen[3] = {};
    Job theJob([&] {
        for (const int thePriority :
             {kvxThreadPriority_Default, kvxThreadPriority_Min, kvxThreadPriority_Max}) {
            theResults[thePriority] = vxThread_SetPriority(static_cast<uint16_t>(thePriority));
            theSeen[thePriority] = NicenessOfThisThread();
        }
    });
    RunAndWait(theJob);
    const int theLow = std::min(theProgram + 10, 19);
    EXPECT_EQ(theResults[kvxThreadPriority_Default], 0);
    EXPECT_EQ(theSeen[kvxThreadPriority_Default], theProgram);
    EXPECT_EQ(theResults[kvxThreadPriority_Min], 0);
    EXPECT_EQ(theSeen[kvxThreadPriority_Min], theLow);
    if (theResults[kvxThreadPriority_Max] == 0) {
        EXPECT_EQ(theSeen[kvxThreadPriority_Max], std::max(theProgram - 10, -20));
    } else {
        EXPECT_THAT(theResults[kvxThreadPriority_Max], AnyOf(EACCES, EPERM));
        EXPECT_EQ(theSeen[kvxThreadPriority_Max], theLow);
    }
    EXPECT_EQ(NicenessOfThisThread(), theProgram);
}

TEST(OSThreadTest, NumberThatIsNoPriorityIsRefused) {
    const int theBefore = NicenessOfThisThread();
    EXPECT_EQ(vxThread_SetPriority(3), EINVAL);
    EXPECT_EQ(vxThread_SetPriority(65535), EINVAL);
    EXPECT_EQ(NicenessOfThisThread(), theBefore);
}

struct NameCase {
    const char* mName;
    const char* mSeen;
};

constexpr NameCase kNames[] = {
    {"", ""},
    {"scanner", "scanner"},
    {"fourteen bytes", "fourteen bytes"},
    {"fifteen bytes..", "fifteen bytes.."},
    {"sixteen bytes...", "sixteen bytes.."},
    {"a name that is much longer than the system takes", "a name that is "},
    {"thirteen....\xC3\xA9", "thirteen....\xC3\xA9"},
    {"fourteen.....\xC3\xA9", "fourteen.....\xC3\xA9"},
    {"fifteen.......\xC3\xA9", "fifteen......."},  // the character does not fit
    {"thirteen.....\xE2\x82\xAC", "thirteen....."},
    {"twelve......\xE2\x82\xAC", "twelve......\xE2\x82\xAC"},
};

TEST(OSThreadTest, NameIsCutToTheCharactersThatFit) {
    for (const NameCase& theCase : kNames) {
        SCOPED_TRACE(theCase.mName);
        std::string theSeen = "none";
        Job theJob([&] {
            vxDebug_SetThreadName(theCase.mName);
            theSeen = NameOfThisThread();
        });
        RunAndWait(theJob);
        EXPECT_EQ(theSeen, theCase.mSeen);
    }
}

TEST(OSThreadTest, NullNameLeavesTheNameAlone) {
    std::string theSeen = "none";
    Job theJob([&] {
        vxDebug_SetThreadName("kept");
        vxDebug_SetThreadName(nullptr);
        theSeen = NameOfThisThread();
    });
    RunAndWait(theJob);
    EXPECT_EQ(theSeen, "kept");
}

TEST(OSThreadTest, NullsAreRefused) {
    errno = 0;
    EXPECT_EQ(vxThread_New(nullptr), nullptr);
    EXPECT_EQ(errno, EINVAL);
    vxOSThread_Data theData = {};
    errno = 0;
    EXPECT_EQ(vxThread_New(&theData), nullptr);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(vxThread_Run(nullptr), EINVAL);
    EXPECT_EQ(vxThread_Wait(nullptr), EINVAL);
    EXPECT_EQ(vxThread_GetID(nullptr), 0UL);
    vxThread_Delete(nullptr);
}

}  // namespace
