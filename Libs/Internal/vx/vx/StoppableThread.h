#pragma once

#include <libvxOS/Thread.h>

#include <atomic>

#include "vx/Api.h"

/// How far a thread is; the order counts. Later states are larger.
enum {
    kvxThreadState_NotCreated = 0,
    kvxThreadState_Created = 1,      ///< the thread exists and waits for Go()
    kvxThreadState_Starting = 2,     ///< Go() has begun
    kvxThreadState_Started = 3,      ///< OnRun() is about to be called
    kvxThreadState_ReadyToUse = 4,   ///< the service is up, which only its own OnRun() can tell
    kvxThreadState_Terminate = 5,    ///< a stop was asked for
    kvxThreadState_Terminating = 6,  ///< OnRun() of a joinable thread has returned
    kvxThreadState_Terminated = 7    ///< waited for, or OnRun() of a detached thread has returned
};

/// A thread with a name and a body, which can be asked to stop.
///
/// Derive, put the work into OnRun(), and look at TestExit() there again and again:
///
///     class Scanner : public vxStoppableThread {
///     public:
///         Scanner() : vxStoppableThread("scanner", vxThread_Kind_Joinable) {}
///         void OnRun() override {
///             while (!TestExit()) {
///                 ScanOneFile();
///             }
///         }
///     };
///
///     Scanner theScanner;
///     if (theScanner.ThreadCreate() == 0) {
///         theScanner.Go(kvxThreadState_Started);
///         ...
///         theScanner.ThreadCancel();
///         theScanner.ThreadWaitTerminate();
///     }
///
/// A detached thread is made with `new` and deletes itself when its body has returned: from Go() on
/// nobody else may touch it, unless the program knows by other means that the body still runs.
///
//  NotCreated --ThreadCreate--> Created --Go--> Starting --worker--> Started --OnRun--> ReadyToUse
//  Starting, Started, ReadyToUse --ThreadCancel, TestExit--> Terminate
//  Started, ReadyToUse, Terminate --OnRun returns--> joinable: Terminating --ThreadWaitTerminate-->
//                                                    Terminated; detached: Terminated, deleted
//  any --ThreadWaitTerminate--> Terminated
///
/// Threads:  each operation says so; states and the request to stop are atomic words.
class VX_EXPORT vxStoppableThread {
public:
    /// Creates no thread yet: see ThreadCreate(). `aKind` is a vxThread_Kind_*; every kind but 0 is
    /// detached, and one that is neither is reported when the thread deletes itself.
    ///
    /// The name is copied; null counts as the empty one. Lists of the system show its first 15
    /// bytes.
    vxStoppableThread(const char* aName, int aKind);

    /// Ends the thread if it was created and never started.
    ///
    /// A joinable thread that still runs after the report is asked to stop and waited for: too late
    /// for what the derived class owned.
    ///
    /// Asserts:  (mThreadState == kvxThreadState_NotCreated) ||
    ///           (mThreadState == kvxThreadState_Created) ||
    ///           (mThreadState == kvxThreadState_Terminated), so a started joinable thread must have
    ///           been waited for, even if its body has returned.
    virtual ~vxStoppableThread();

    vxStoppableThread(const vxStoppableThread&) = delete;
    vxStoppableThread& operator=(const vxStoppableThread&) = delete;

    /// Creates the thread without starting it; what ThreadSetData() says is how.
    ///
    /// Asserts:  mThreadState == kvxThreadState_NotCreated; otherwise the thread stays as it is.
    /// Fails:    -1 and an error is logged, module VXLOG_M_THREADING; it may be tried again. 0 means
    ///           success.
    /// Threads:  one at a time.
    int ThreadCreate();

    /// Starts the thread, and returns when its state is at least `aWaitState`, which it looks at
    /// every 10 milliseconds.
    ///
    /// kvxThreadState_Started waits for the thread to be there, kvxThreadState_ReadyToUse for its
    /// service: for ever if OnRun() neither says so nor ends. A stop that is asked for meanwhile
    /// ends the wait as well. Safe also where a detached thread ends at once: its object lives until
    /// the wait is over.
    ///
    /// Asserts:  mThreadState == kvxThreadState_Created; otherwise it neither starts nor waits.
    /// Threads:  one at a time.
    virtual void Go(int aWaitState);

    /// Tells the body whether to return: a stop was asked for, or the state is
    /// kvxThreadState_Terminate or above, whoever set it.
    ///
    /// Threads:  the thread itself, in OnRun().
    virtual bool TestExit();

    /// The body; the base does nothing.
    ///
    /// A service says that it is up by `mThreadState = kvxThreadState_ReadyToUse`.
    ///
    /// Threads:  called in the thread itself.
    virtual void OnRun();

    /// Asks the thread to stop, without waiting; a thread that was not started is left alone, and
    /// will run when it is. Safe also where this ends a detached thread at once.
    ///
    /// Threads:  any, atomic.
    virtual void ThreadCancel();

    /// Fills the record that the thread is created from. A derived class calls the base, then
    /// changes stack size or scheduling.
    virtual void ThreadSetData(vxOSThread_Data* aData);

    /// Runs in the new thread: names it, calls OnRun(), and logs at debug level, module
    /// VXLOG_M_THREADING, how long that took. Returns 0.
    virtual int Entry();

    /// Waits until the thread has ended, unless it was never started; the state is
    /// kvxThreadState_Terminated afterwards in every case.
    ///
    /// Only for joinable threads. A thread that never started can no longer be.
    ///
    /// Fails:    an error is logged, module VXLOG_M_THREADING: the thread may still run then, as one
    ///           does that waits for itself.
    /// Threads:  one at a time, the owner.
    void ThreadWaitTerminate();

    /// Tells whether the caller is this very thread.
    ///
    /// Threads:  any, once the thread is created.
    bool InThreadContext() const { return ThreadGetID() == vxThread_GetCurrentThreadID(); }

    /// Returns the system's number of the thread, 0 while there is none.
    ///
    /// Threads:  any, once the thread is created.
    unsigned long ThreadGetID() const { return vxThread_GetID(mThread); }

    /// Sets the priority, a kvxThreadPriority_*, of the thread that calls: call it in OnRun().
    ///
    /// Fails:    with the platform's error; 0 means success.
    int ThreadSetPriority(unsigned short aPriority) { return vxThread_SetPriority(aPriority); }

    /// Blocks the calling thread for so many milliseconds; a negative number is none.
    static void ThreadSleep(int aMS) { vxThread_Sleep(aMS > 0 ? static_cast<uint32_t>(aMS) : 0); }

    /// Returns the kind that the constructor was given.
    int GetThreadKind() const { return mThreadKind; }

    /// Returns the kvxThreadState_*, which may have changed already.
    ///
    /// Threads:  any, atomic.
    int GetThreadState() const { return mThreadState.load(std::memory_order_acquire); }

private:
    void RaiseState(int aState);

    const int mThreadKind;  // vxThread_Kind_*

protected:
    /// The kvxThreadState_*, which only rises. A body writes ReadyToUse; everything else is written
    /// by the class itself.
    std::atomic<int> mThreadState;

private:
    char* mThreadName;                       // owned
    vxOSThread* mThread;                     // owned; null until ThreadCreate() succeeds
    std::atomic<bool> mfTerminateRequested;  // set by ThreadCancel()
    std::atomic<uint16_t> mCallers;          // calls that still look at the object
};
