// Every waiting thread stands in a queue and sleeps on a word of its own. A signal takes the first one
// out and then tells it: so each signal ends one wait, of a thread that was waiting when it came, and no
// later one can take it away. Sleeps that end for other reasons are continued.
//
// A thread whose time is over leaves the queue itself, once it has the mutex again. If a signal was
// faster, the thread is out already, and the wait ends as signaled.
//
// The thread that is told may delete the condition: a signal touches nothing of it from then on.

#include <libvxOS/Condition.h>

#include "Futex.h"
#include "Mutex.h"

#include <cerrno>
#include <new>

namespace {

/// A thread that waits. It lives in that thread's wait, and not a moment longer.
struct vxWaiter {
    explicit vxWaiter(vxRecursiveLock* aMutex) : mMutex(aMutex) {}

    std::atomic<uint32_t> mIsSignaled{0};  // last access of the thread that signals
    vxRecursiveLock* const mMutex;
    vxWaiter* mPrev = nullptr;  // in the queue
    vxWaiter* mNext = nullptr;
    bool mfIsQueued = true;
};

/// The waiting threads in the order in which they came.
class vxWaiterQueue {
public:
    /// Says nothing about threads that are just coming.
    bool IsEmpty() const { return mFirst.load(std::memory_order_relaxed) == nullptr; }

    void Append(vxWaiter* aWaiter) {
        mLock.Lock();
        aWaiter->mPrev = mLast;
        Link(mLast, aWaiter);
        mLast = aWaiter;
        mLock.Unlock();
    }

    /// Returns null when there is none.
    vxWaiter* TakeFirst() {
        mLock.Lock();
        vxWaiter* theFirst = mFirst.load(std::memory_order_relaxed);
        if (theFirst != nullptr) {
            Unlink(theFirst);
        }
        mLock.Unlock();
        return theFirst;
    }

    /// Returns false when it has been taken before.
    bool Remove(vxWaiter* aWaiter) {
        mLock.Lock();
        const bool theWasQueued = aWaiter->mfIsQueued;
        if (theWasQueued) {
            Unlink(aWaiter);
        }
        mLock.Unlock();
        return theWasQueued;
    }

private:
    void Link(vxWaiter* aPrev, vxWaiter* aNext) {
        if (aPrev != nullptr) {
            aPrev->mNext = aNext;
        } else {
            mFirst.store(aNext, std::memory_order_relaxed);
        }
    }

    void Unlink(vxWaiter* aWaiter) {
        Link(aWaiter->mPrev, aWaiter->mNext);
        if (aWaiter->mNext != nullptr) {
            aWaiter->mNext->mPrev = aWaiter->mPrev;
        } else {
            mLast = aWaiter->mPrev;
        }
        aWaiter->mfIsQueued = false;
    }

    vxRecursiveLock mLock;                   // guards everything below
    std::atomic<vxWaiter*> mFirst{nullptr};  // changed under mLock
    vxWaiter* mLast = nullptr;
};

/// Sleeps until the signal or the deadline has come.
void vxAwaitSignal(vxWaiter* aWaiter, const vxDeadline* aDeadline) {
    int theResult = 0;
    while (theResult == 0 && aWaiter->mIsSignaled.load(std::memory_order_acquire) == 0) {
        theResult = vxFutex_Wait(&aWaiter->mIsSignaled, 0, aDeadline);
    }
}

}  // namespace

struct vxOSCondition {
    vxWaiterQueue mWaiters;
};

namespace {

int vxWait(vxOSCondition* aCondition, vxOSMutex* aMutex, const vxDeadline* aDeadline) {
    if (aCondition == nullptr || aMutex == nullptr) {
        return EINVAL;
    }
    if (!aMutex->mLock.IsHeld()) {
        return EPERM;
    }
    vxWaiter theWaiter(&aMutex->mLock);
    aCondition->mWaiters.Append(&theWaiter);
    const uint32_t theRepeats = aMutex->mLock.LetGo();
    vxAwaitSignal(&theWaiter, aDeadline);
    aMutex->mLock.TakeBack(theRepeats);
    // Also now that the time is over: a signal that came before the mutex was back had this thread.
    if (theWaiter.mIsSignaled.load(std::memory_order_acquire) == 0) {
        if (aCondition->mWaiters.Remove(&theWaiter)) {
            return ETIMEDOUT;
        }
        vxAwaitSignal(&theWaiter, nullptr);
    }
    return 0;
}

}  // namespace

vxOSCondition* vxCondition_New(void) {
    return new (std::nothrow) vxOSCondition;
}

void vxCondition_Delete(vxOSCondition* aCondition) {
    delete aCondition;
}

int vxCondition_Wait(vxOSCondition* aCondition, vxOSMutex* aMutex) {
    return vxWait(aCondition, aMutex, nullptr);
}

int vxCondition_WaitTimeout(vxOSCondition* aCondition, vxOSMutex* aMutex, uint32_t aMSTimeout) {
    const vxDeadline theDeadline = vxDeadline_In(aMSTimeout);
    return vxWait(aCondition, aMutex, &theDeadline);
}

int vxCondition_Signal(vxOSCondition* aCondition) {
    if (aCondition == nullptr) {
        return EINVAL;
    }
    // Whoever let the caller have the mutex in order to wait is seen here.
    if (aCondition->mWaiters.IsEmpty()) {
        return 0;
    }
    vxWaiter* theWaiter = aCondition->mWaiters.TakeFirst();
    if (theWaiter == nullptr) {
        return 0;
    }
    vxRecursiveLock* theMutex = theWaiter->mMutex;
    const bool theIsHeld = theMutex->IsHeld();
    theWaiter->mIsSignaled.store(1, std::memory_order_release);
    if (theIsHeld) {
        // The woken thread would only run into the mutex that the caller still holds.
        theMutex->WakeOnUnlock(&theWaiter->mIsSignaled);
    } else {
        vxFutex_Wake(&theWaiter->mIsSignaled, 1);
    }
    return 0;
}
