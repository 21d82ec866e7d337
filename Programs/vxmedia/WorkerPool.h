#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "vx/Applet.h"
#include "vx/CString.h"
#include "vx/MessageQueue.h"
#include "vx/QueryManager.h"

namespace vxmedia {

/// Work for a thread of the pool, with a result for the main loop.
///
///     struct CountBytes : Job {
///         unsigned int Run() override { ... return 0; }   // in a worker
///         void Finish() override { ... }                  // in the main loop
///         const char* GetTitle() const override { return "counting bytes"; }
///     };
///     thePool.Add(new CountBytes);
///
/// Texts of the library count their sharers without atomics: a job is built from copies of the
/// characters, so that it shares no text with the main loop, and it hands over what it has made
/// without keeping a share.
///
/// Owner:    the pool, from WorkerPool::Add() on.
class Job : public vxQuery {
public:
    /// Does the work. Returns 0 when it is done, else after how many milliseconds to try again.
    ///
    /// Threads:  a worker's. What else it uses must be meant for any thread.
    virtual unsigned int Run() = 0;

    /// Takes the result; the job is deleted afterwards. A job that is discarded gets no call.
    ///
    /// Threads:  the main loop's.
    virtual void Finish() = 0;

    /// Returns what the job does, in a few words: a literal.
    virtual const char* GetTitle() const = 0;

    /// Returns whose job it is, for WorkerPool::Discard().
    virtual const void* GetOwner() const { return NULL; }
};

/// What one worker does, and how many jobs it has done.
struct WorkerStatus {
    vxCString mName;
    const char* mTitle;  // of the job under way; null: it waits
    uint64_t mJobCount;
};

/// Threads that do jobs in the order in which they were added, and hand them back to the main loop.
///
/// The threads are started with the first job, and joined by Stop(). As an applet the pool sleeps
/// until a job is done.
///
/// Threads:  one at a time, the main loop's.
class WorkerPool : public vxApplet {
public:
    WorkerPool();
    /// Stops.
    ~WorkerPool() override;

    /// Sets the number of threads; 0 stands for the number of cores, but at least 2. Counts from
    /// the next job on that is added while there is no other.
    void SetThreadCount(size_t aCount);

    /// Returns how many threads there are, or will be.
    size_t GetThreadCount() const { return mThreadCount; }

    /// Adds a job behind the others.
    ///
    /// Fails:    false when there is no thread, and none can be started; the job is deleted.
    bool Add(Job* aJob);

    /// Discards the jobs of this owner that no worker has begun, or that wait for another try, and
    /// returns how many there were. Those under way come to their end, and to Finish().
    size_t Discard(const void* anOwner);

    /// Discards all jobs, those included whose results wait, and joins the threads: each comes to
    /// the end of its job.
    void Stop();

    std::vector<WorkerStatus> GetWorkers() const;

    vxAppletMsg AppletLoop(vxAppletMsg aMsg) override;

private:
    class Worker;

    void StartWorkers();
    void StopWorkers();
    void DropResults();
    Job* NextResult();

    size_t mThreadCount;
    size_t mJobCount = 0;                      // jobs from Add() to Finish()
    vxMessageQueue mResults;                   // jobs that are done
    std::unique_ptr<vxQueryManager> mQueries;  // jobs to do; null while there are no workers
    std::vector<std::unique_ptr<Worker>> mWorkers;
};

}  // namespace vxmedia
