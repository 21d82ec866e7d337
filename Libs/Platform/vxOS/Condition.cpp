// A waiting thread sleeps on the number of signals, which it reads before it is counted as a waiter and
// before it looks for a signal that was given. Every signal is given first, to the waiters as a whole,
// and then changes the number and wakes one: so whoever has looked in vain stays awake, and of the
// waiters at least as many are awake as signals were given. The first of them that has the mutex again
// takes one along and leaves: each signal ends one wait, whichever thread the kernel woke.
//
// Waiters and signals given are one word. There are never more signals than waiters, and where there
// are as many, a further signal has nobody to wake.

#include <libvxOS/Condition.h>

#include "Futex.h"
#include "Mutex.h"

#include <cerrno>
#include <new>

struct vxOSCondition {
    std::atomic<uint32_t> mSignals{0};  // modulo 2^32
    std::atomic<uintptr_t> mCounts{0};  // waiters in the upper half, signals given in the lower
    std::atomic<vxOSMutex*> mMutex{nullptr};  // of the waiters, while there are any
};

namespace {

constexpr uintptr_t kvxOneGiven = 1;
constexpr uintptr_t kvxOneWaiter = uintptr_t{1} << (sizeof(uintptr_t) * 4);

uintptr_t vxWaiters(uintptr_t aCounts) {
    return aCounts / kvxOneWaiter;
}

uintptr_t vxGiven(uintptr_t aCounts) {
    return aCounts % kvxOneWaiter;
}

/// Gives one more waiter a reason to leave; false when every one has it.
bool vxGive(vxOSCondition* aCondition) {
    uintptr_t theCounts = aCondition->mCounts.load();
    do {
        if (vxGiven(theCounts) >= vxWaiters(theCounts)) {
            return false;
        }
    } while (!aCondition->mCounts.compare_exchange_weak(theCounts, theCounts + kvxOneGiven));
    return true;
}

/// Leaves with a signal, or without one when the time is over; false when there is neither. The caller
/// holds the mutex.
bool vxLeave(vxOSCondition* aCondition, bool afTimeIsOver, bool* afHasSignal) {
    uintptr_t theCounts = aCondition->mCounts.load();
    uintptr_t theRest;
    do {
        *afHasSignal = vxGiven(theCounts) > 0;
        if (!*afHasSignal && !afTimeIsOver) {
            return false;
        }
        theRest = theCounts - kvxOneWaiter - (*afHasSignal ? kvxOneGiven : 0);
    } while (!aCondition->mCounts.compare_exchange_weak(theCounts, theRest));
    return true;
}

int vxWait(vxOSCondition* aCondition, vxOSMutex* aMutex, const vxDeadline* aDeadline) {
    if (aCondition == nullptr || aMutex == nullptr) {
        return EINVAL;
    }
    if (!aMutex->mLock.IsHeld()) {
        return EPERM;
    }
    aCondition->mMutex.store(aMutex, std::memory_order_relaxed);
    uint32_t theSignals = aCondition->mSignals.load();
    aCondition->mCounts.fetch_add(kvxOneWaiter);
    int theResult;
    bool theHasSignal;
    do {
        const uint32_t theRepeats = aMutex->mLock.LetGo();
        theResult = vxFutex_Wait(&aCondition->mSignals, theSignals, aDeadline);
        aMutex->mLock.TakeBack(theRepeats);
        theSignals = aCondition->mSignals.load();
        // Also when the time is over: a signal that came before the mutex was back may have no
        // other thread to wake.
    } while (!vxLeave(aCondition, theResult != 0, &theHasSignal));
    return theHasSignal ? 0 : theResult;
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
    // A waiter that was woken may take long to get the processor: signals meanwhile cost nothing.
    if (!vxGive(aCondition)) {
        return 0;
    }
    aCondition->mSignals.fetch_add(1);
    vxRecursiveLock& theLock = aCondition->mMutex.load(std::memory_order_relaxed)->mLock;
    if (theLock.IsHeld()) {
        // The woken thread would only run into the mutex that the caller still holds.
        theLock.WakeOnUnlock(&aCondition->mSignals);
    } else {
        vxFutex_Wake(&aCondition->mSignals, 1);
    }
    return 0;
}
