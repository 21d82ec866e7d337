#pragma once

#include <libteskTools/DLList.h>
#include <libvxOS/Clock.h>

#include "vx/Api.h"

/// A moment some milliseconds ahead, on a tick counter that wraps after 2^32 milliseconds.
///
/// A time-out calls nobody: whether it has expired is noticed when somebody asks. It expires once,
/// and reads as expired until it is started again, for as long as the counter has not wrapped.
///
/// Threads:  one at a time.
class VX_EXPORT vxTimeout : public _vxDLListNode {
public:
    /// Creates a time-out that is in no queue and has expired.
    vxTimeout();

    /// Leaves the queue that holds the time-out, if any.
    virtual ~vxTimeout();

    vxTimeout(const vxTimeout&) = delete;
    vxTimeout& operator=(const vxTimeout&) = delete;

    /// Lets the time-out expire in `aMS` milliseconds; 0 has expired at once.
    ///
    /// It enters no queue. One that is in a queue is started by vxTimeoutQueue::TimeoutStart(),
    /// which keeps the queue sorted.
    void Start(unsigned int aMS) {
        mStart = GetSysMSTickCount();
        mDuration = aMS;
    }

    /// Returns the milliseconds until the time-out expires, 0 once it has.
    ///
    /// Cost:     reads the tick counter, except after a start with 0.
    unsigned int Remaining() const { return mDuration == 0 ? 0 : RemainingAt(GetSysMSTickCount()); }

    /// As Remaining(), at the tick given: reads the counter once for several time-outs.
    unsigned int RemainingAt(unsigned int aTick) const {
        const uint32_t theElapsed = aTick - mStart;
        return mDuration <= theElapsed ? 0 : mDuration - theElapsed;
    }

    /// Has the time run out?
    bool IsExpired() const { return Remaining() == 0; }

    /// Returns the tick counter.
    static unsigned int GetSysMSTickCount() { return vxTime_GetTickCount(); }

private:
    friend class vxTimeoutQueue;

    uint32_t mStart;     // tick of the start
    uint32_t mDuration;  // milliseconds
};

/// The time-outs of one owner that are started, the first to expire in front.
///
/// The owner sleeps until the first one expires, then handles those that have: it derives from the
/// queue, overrides OnTimeouts(), and calls HandleExpiredTimeouts() whenever it is awake.
///
///     void OnTimeouts() override {
///         if (mRetry.IsExpired()) {
///             TimeoutStart(&mRetry, 5000);
///             Retry();
///         }
///         if (mGuard.IsExpired()) {
///             TimeoutCancel(&mGuard);
///             GiveUp();
///         }
///     }
///
/// Owner:    the time-outs belong to the caller. Either side may be destroyed first.
/// Threads:  one at a time.
class VX_EXPORT vxTimeoutQueue {
public:
    vxTimeoutQueue();

    /// Lets go of every time-out.
    virtual ~vxTimeoutQueue();

    vxTimeoutQueue(const vxTimeoutQueue&) = delete;
    vxTimeoutQueue& operator=(const vxTimeoutQueue&) = delete;

    /// Returns the time-out of this queue that expires first, or null when there is none.
    virtual vxTimeout* FirstExpiringTimeout();

    /// Called when a time-out has expired; the base does nothing.
    ///
    /// Time-outs stay in the queue until they are cancelled or started again: handle every one that
    /// has expired.
    virtual void OnTimeouts();

    /// Starts the time-out, or starts it anew, and puts it in its place in this queue.
    ///
    /// Among those that expire at the same time, or have expired, the last started comes last.
    ///
    /// Owner:    the caller, also while the time-out is in the queue.
    /// Cost:     linear in the time-outs between its place and the nearer end of the queue.
    void TimeoutStart(vxTimeout* aTimeout, unsigned int aMS);

    /// Takes the time-out out of the queue that holds it; one in no queue is left alone.
    void TimeoutCancel(vxTimeout* aTimeout);

    /// Calls OnTimeouts(), once, if the time-out that FirstExpiringTimeout() answers has expired.
    void HandleExpiredTimeouts();

private:
    _vxDLListNode* FindSuccessor(uint32_t aTick, unsigned int aMS);

    vxDLList mTimeoutQueue;  // vxTimeout, by ascending remaining time
};
