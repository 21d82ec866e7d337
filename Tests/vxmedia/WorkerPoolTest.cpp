#include "WorkerPool.h"

#include <gtest/gtest.h>
#include <libvxOS/Thread.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "support/Forward.h"
#include "support/Latch.h"
#include "support/Reports.h"
#include "vxmedia/WorkerLoop.h"

using namespace vxmedia;

namespace {

int sThreadsLeft = 1000000;  // that can be created

}  // namespace

vxOSThread* vxThread_New(const vxOSThread_Data* aData) {
    return sThreadsLeft-- > 0 ? VXTEST_REAL(vxThread_New)(aData) : nullptr;
}

namespace {

using vxtest::Latch;

std::atomic<int> sJobsAlive{0};

// What a job does is told by the test; results are collected in the main loop.
class TestJob : public Job {
public:
    TestJob(std::string& aLog, const char* aName, std::function<unsigned int()> aWork = {},
            const void* anOwner = NULL)
        : mLog(aLog), mName(aName), mWork(std::move(aWork)), mOwner(anOwner) {
        ++sJobsAlive;
    }
    ~TestJob() override { --sJobsAlive; }

    unsigned int Run() override { return mWork ? mWork() : 0; }
    void Finish() override { mLog += mName + " "; }
    const char* GetTitle() const override { return "testing"; }
    const void* GetOwner() const override { return mOwner; }

private:
    std::string& mLog;
    const std::string mName;
    const std::function<unsigned int()> mWork;
    const void* mOwner;
};

// Runs until so many jobs are finished; the log has their names, each with a blank behind it.
void RunUntil(WorkerLoop& aLoop, const std::string& aLog, std::ptrdiff_t aCount) {
    aLoop.RunUntil([&] { return std::count(aLog.begin(), aLog.end(), ' ') >= aCount; });
}

TEST(WorkerPoolTest, AJobIsDoneInAnotherThreadAndFinishedInThisOne) {
    WorkerLoop theLoop(2);
    std::string theLog;
    std::thread::id theThread;
    const auto theWork = [&theThread] {
        theThread = std::this_thread::get_id();
        return 0u;
    };
    EXPECT_TRUE(theLoop.mPool.GetWorkers().empty());
    EXPECT_TRUE(theLoop.mPool.Add(new TestJob(theLog, "a", theWork)));
    RunUntil(theLoop, theLog, 1);
    EXPECT_EQ(theLog, "a ");
    EXPECT_NE(theThread, std::this_thread::get_id());
    EXPECT_NE(theThread, std::thread::id());
    EXPECT_EQ(sJobsAlive, 0);
}

TEST(WorkerPoolTest, OneThreadDoesJobsInTheirOrder) {
    WorkerLoop theLoop(1);
    std::string theLog;
    std::string theWanted;
    for (int i = 0; i < 200; ++i) {
        theLoop.mPool.Add(new TestJob(theLog, std::to_string(i).c_str()));
        theWanted += std::to_string(i) + " ";
    }
    RunUntil(theLoop, theLog, 200);
    EXPECT_EQ(theLog, theWanted);
}

TEST(WorkerPoolTest, AllThreadsWorkAtOnce) {
    WorkerLoop theLoop(4);
    std::string theLog;
    Latch theLatch(4);
    for (const char* theName : {"a", "b", "c", "d"}) {
        theLoop.mPool.Add(new TestJob(theLog, theName, [&theLatch] {
            theLatch.ArriveAndWait();
            return 0u;
        }));
    }
    RunUntil(theLoop, theLog, 4);
    EXPECT_EQ(theLoop.mPool.GetWorkers().size(), 4u);
}

TEST(WorkerPoolTest, WorkersTellWhatTheyDo) {
    WorkerLoop theLoop(1);
    std::string theLog;
    Latch theBegun(1);
    Latch theEnd(1);
    theLoop.mPool.Add(new TestJob(theLog, "a", [&] {
        theBegun.CountDown();
        theEnd.Wait();
        return 0u;
    }));
    theBegun.Wait();
    ASSERT_EQ(theLoop.mPool.GetWorkers().size(), 1u);
    EXPECT_STREQ(theLoop.mPool.GetWorkers()[0].mName, "scan-1");
    EXPECT_STREQ(theLoop.mPool.GetWorkers()[0].mTitle, "testing");
    EXPECT_EQ(theLoop.mPool.GetWorkers()[0].mJobCount, 0u);
    theEnd.CountDown();
    RunUntil(theLoop, theLog, 1);
    EXPECT_EQ(theLoop.mPool.GetWorkers()[0].mTitle, nullptr);
    EXPECT_EQ(theLoop.mPool.GetWorkers()[0].mJobCount, 1u);
}

TEST(WorkerPoolTest, AJobThatIsTriedAgainLaterLetsOthersPass) {
    WorkerLoop theLoop(1);
    std::string theLog;
    Latch theAdded(1);
    int theTries = 0;
    theLoop.mPool.Add(new TestJob(theLog, "slow", [&] {
        theAdded.Wait();
        return ++theTries < 3 ? 20u : 0u;
    }));
    theLoop.mPool.Add(new TestJob(theLog, "quick"));
    theAdded.CountDown();
    RunUntil(theLoop, theLog, 2);
    EXPECT_EQ(theTries, 3);
    EXPECT_EQ(theLog, "quick slow ");
}

TEST(WorkerPoolTest, OnlyTheJobsOfOneOwnerAreDiscarded) {
    WorkerLoop theLoop(1);
    std::string theLog;
    Latch theBegun(1);
    Latch theEnd(1);
    const int theOwner = 0;
    theLoop.mPool.Add(new TestJob(
        theLog, "running",
        [&] {
            theBegun.CountDown();
            theEnd.Wait();
            return 0u;
        },
        &theOwner));
    theBegun.Wait();
    theLoop.mPool.Add(new TestJob(theLog, "mine", {}, &theOwner));
    theLoop.mPool.Add(new TestJob(theLog, "other"));
    theLoop.mPool.Add(new TestJob(theLog, "mine", {}, &theOwner));
    EXPECT_EQ(theLoop.mPool.Discard(&theOwner), 2u);
    EXPECT_EQ(theLoop.mPool.Discard(&theOwner), 0u);
    EXPECT_EQ(sJobsAlive, 2);
    theEnd.CountDown();
    RunUntil(theLoop, theLog, 2);
    EXPECT_EQ(theLog, "running other ");
}

TEST(WorkerPoolTest, TheNumberOfThreadsChangesBetweenJobs) {
    WorkerLoop theLoop(1);
    std::string theLog;
    for (const size_t theCount : {size_t(1), size_t(5), size_t(2)}) {
        theLoop.mPool.SetThreadCount(theCount);
        theLog.clear();
        theLoop.mPool.Add(new TestJob(theLog, "a"));
        RunUntil(theLoop, theLog, 1);
        EXPECT_EQ(theLoop.mPool.GetWorkers().size(), theCount);
    }
    theLoop.mPool.SetThreadCount(0);
    EXPECT_GE(theLoop.mPool.GetThreadCount(), 2u);
}

TEST(WorkerPoolTest, AJobThatNoThreadCanDoIsRefused) {
    const vxtest::Reports theReports;
    WorkerLoop theLoop(3);
    std::string theLog;
    sThreadsLeft = 0;
    EXPECT_FALSE(theLoop.mPool.Add(new TestJob(theLog, "a")));
    EXPECT_EQ(sJobsAlive, 0);

    // One thread is enough for a start; the others are tried again.
    sThreadsLeft = 1;
    EXPECT_TRUE(theLoop.mPool.Add(new TestJob(theLog, "b")));
    RunUntil(theLoop, theLog, 1);
    EXPECT_EQ(theLoop.mPool.GetWorkers().size(), 1u);
    sThreadsLeft = 1000000;
    EXPECT_TRUE(theLoop.mPool.Add(new TestJob(theLog, "c")));
    RunUntil(theLoop, theLog, 2);
    EXPECT_EQ(theLoop.mPool.GetWorkers().size(), 3u);
    EXPECT_EQ(theLog, "b c ");
}

TEST(WorkerPoolTest, StoppingJoinsTheThreadsAndDropsJobsAndResults) {
    WorkerLoop theLoop(3);
    std::string theLog;
    Latch theDone(1);
    theLoop.mPool.Add(new TestJob(theLog, "done", [&theDone] {
        theDone.CountDown();
        return 0u;
    }));
    theDone.Wait();
    theLoop.mPool.Add(new TestJob(theLog, "late", [] { return 3600000u; }));
    for (int i = 0; i < 100; ++i) {
        theLoop.mPool.Add(new TestJob(theLog, "many", [] { return 0u; }));
    }
    theLoop.mPool.Stop();
    EXPECT_EQ(sJobsAlive, 0);
    EXPECT_TRUE(theLoop.mPool.GetWorkers().empty());
    theLoop.AppletRun(vxAppletMsg_None);
    EXPECT_EQ(theLog, "");

    theLoop.mPool.Add(new TestJob(theLog, "again"));
    RunUntil(theLoop, theLog, 1);
    EXPECT_EQ(theLog, "again ");
}

TEST(WorkerPoolTest, AJobMayAddJobsWhenItIsFinished) {
    struct Chain : TestJob {
        Chain(std::string& aLog, WorkerPool& aPool, int aLength)
            : TestJob(aLog, "link"), mLog(aLog), mPool(aPool), mLength(aLength) {}
        void Finish() override {
            TestJob::Finish();
            if (mLength > 1) {
                mPool.Add(new Chain(mLog, mPool, mLength - 1));
            }
        }
        std::string& mLog;
        WorkerPool& mPool;
        int mLength;
    };
    WorkerLoop theLoop(2);
    std::string theLog;
    theLoop.mPool.Add(new Chain(theLog, theLoop.mPool, 50));
    RunUntil(theLoop, theLog, 50);
    EXPECT_EQ(sJobsAlive, 0);
}

}  // namespace
