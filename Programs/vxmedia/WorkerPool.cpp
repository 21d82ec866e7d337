// Jobs are queries of one query manager, which all workers share, and come back as messages.
//
// The manager keeps one signal only, so a worker that takes a job while others wait, now or later,
// passes the signal on; so there is always somebody who looks at the clock for a job that is put off.

#include "WorkerPool.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include "vx/StoppableThread.h"

namespace vxmedia {

namespace {

constexpr unsigned int kPool_NoLimit = 0xFFFFFFFF;
constexpr size_t kPool_MinThreads = 2;
constexpr int kPool_ResultsPerStep = 32;
constexpr int kPool_MemoryRetryMS = 100;

bool IsAny(vxQuery*, void*) {
    return true;
}

struct Selection {
    const void* mOwner;
    size_t mCount;
};

bool SelectByOwner(vxQuery* aQuery, void* aSelection) {
    Selection& theSelection = *static_cast<Selection*>(aSelection);
    const bool theIsSelected = static_cast<Job*>(aQuery)->GetOwner() == theSelection.mOwner;
    theSelection.mCount += theIsSelected ? 1 : 0;
    return theIsSelected;
}

}  // namespace

class WorkerPool::Worker : public vxStoppableThread {
public:
    Worker(WorkerPool& aPool, const vxCString& aName)
        : vxStoppableThread(aName, vxThread_Kind_Joinable),
          mPool(aPool),
          mQueries(*aPool.mQueries),
          mName(aName) {}

    void OnRun() override {
        while (!TestExit()) {
            mQueries.WaitForQuery(kPool_NoLimit);
            if (vxQuery* theQuery = mQueries.GetQuery()) {
                WakeNext();
                Execute(static_cast<Job*>(theQuery));
            }
        }
    }

    WorkerStatus GetStatus() const { return {mName, mTitle.load(), mJobCount.load()}; }

private:
    void WakeNext() {
        mQueries.LockQueries();
        if (mQueries.FindQuery(IsAny, NULL) != NULL) {
            mQueries.SignalQueryToProcess();
        }
        mQueries.UnlockQueries();
    }

    void Execute(Job* aJob) {
        mTitle = aJob->GetTitle();
        const unsigned int theDelayMS = aJob->Run();
        mTitle = nullptr;
        if (theDelayMS != 0) {
            PutOff(aJob, theDelayMS);
            return;
        }
        mJobCount += 1;
        // There is no other way for a result than a message: wait until there is memory for one.
        while (mPool.mResults.Post(0, aJob, NULL) != 0) {
            ThreadSleep(kPool_MemoryRetryMS);
        }
        mPool.AppletWakeUp();
    }

    // The lock keeps the manager from being stopped in between, which would leave the job to nobody.
    void PutOff(Job* aJob, unsigned int aDelayMS) {
        mQueries.LockQueries();
        if (TestExit()) {
            aJob->Done();
        } else {
            aJob->SetDelay(aDelayMS);
            mQueries.PushBackQuery(aJob);
        }
        mQueries.UnlockQueries();
    }

    WorkerPool& mPool;
    vxQueryManager& mQueries;
    const vxCString mName;  // the main loop's
    std::atomic<const char*> mTitle{nullptr};
    std::atomic<uint64_t> mJobCount{0};
};

WorkerPool::WorkerPool() {
    SetThreadCount(0);
}

WorkerPool::~WorkerPool() {
    Stop();
}

void WorkerPool::SetThreadCount(size_t aCount) {
    const size_t theCores = std::thread::hardware_concurrency();
    mThreadCount = aCount != 0 ? aCount : std::max(theCores, kPool_MinThreads);
}

bool WorkerPool::Add(Job* aJob) {
    if (mJobCount == 0 && mWorkers.size() != mThreadCount) {
        StopWorkers();
        StartWorkers();
    }
    if (mWorkers.empty()) {
        aJob->Done();
        return false;
    }
    mJobCount += 1;
    mQueries->AddQuery(aJob);
    return true;
}

size_t WorkerPool::Discard(const void* anOwner) {
    Selection theSelection = {anOwner, 0};
    if (mQueries != nullptr) {
        mQueries->ClearSelectedQueries(SelectByOwner, &theSelection);
    }
    mJobCount -= theSelection.mCount;
    return theSelection.mCount;
}

void WorkerPool::Stop() {
    StopWorkers();
    DropResults();
    mJobCount = 0;
}

std::vector<WorkerStatus> WorkerPool::GetWorkers() const {
    std::vector<WorkerStatus> theWorkers;
    for (const auto& theWorker : mWorkers) {
        theWorkers.push_back(theWorker->GetStatus());
    }
    return theWorkers;
}

// A few results in each step: timers fire and lines are answered between them.
vxAppletMsg WorkerPool::AppletLoop(vxAppletMsg) {
    for (int i = 0; i < kPool_ResultsPerStep; ++i) {
        Job* theJob = NextResult();
        if (theJob == NULL) {
            return vxAppletMsg_None;
        }
        mJobCount -= 1;
        theJob->Finish();
        theJob->Done();
    }
    return vxAppletMsg_LoopAgain;
}

void WorkerPool::StartWorkers() {
    mQueries = std::make_unique<vxQueryManager>();
    while (mWorkers.size() < mThreadCount) {
        const unsigned int theNumber = static_cast<unsigned int>(mWorkers.size() + 1);
        auto theWorker = std::make_unique<Worker>(*this, vxCString::Format("scan-%u", theNumber));
        if (theWorker->ThreadCreate() != 0) {
            return;
        }
        theWorker->Go(kvxThreadState_Starting);
        mWorkers.push_back(std::move(theWorker));
    }
}

void WorkerPool::StopWorkers() {
    if (mQueries == nullptr) {
        return;
    }
    mQueries->LockQueries();
    for (const auto& theWorker : mWorkers) {
        theWorker->ThreadCancel();
    }
    mQueries->UnlockQueries();
    mQueries->Stop();
    for (const auto& theWorker : mWorkers) {
        theWorker->ThreadWaitTerminate();
    }
    mWorkers.clear();
    mQueries.reset();
}

void WorkerPool::DropResults() {
    while (Job* theJob = NextResult()) {
        theJob->Done();
    }
}

// Returns null when there is none, and never waits for one.
Job* WorkerPool::NextResult() {
    vxMessage theMessage;
    const bool theHasOne = !mResults.IsEmpty() && mResults.Get(&theMessage) == 0;
    return theHasOne ? static_cast<Job*>(theMessage.mParam1) : NULL;
}

}  // namespace vxmedia
