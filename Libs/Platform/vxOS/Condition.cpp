// A waiting thread sleeps on the number of signals that it read while it held the mutex. Every
// signal changes the number, so one that comes before the thread is asleep keeps it awake. A signal
// is also given to the waiters, and the first of them that has the mutex again takes it along: each
// signal ends one wait, whichever thread the kernel woke.

#include <libvxOS/Condition.h>

#include "Futex.h"
#include "Mutex.h"

#include <cerrno>
#include <new>

struct vxOSCondition {
    std::atomic<uint32_t> mSignals{0};        // modulo 2^32
    std::atomic<uint32_t> mWaiters{0};        // threads inside a wait
    std::atomic<uint32_t> mGiven{0};          // signals for waiters that have not left yet
    std::atomic<vxOSMutex*> mMutex{nullptr};  // of the waiters, while there are any
};

namespace {

/// Gives one more waiter a reason to leave; false when every one has it. Who gives also wakes, so
/// these have been woken, or are about to be.
bool vxGive(vxOSCondition* aCondition, uint32_t aWaiters) {
    if (aCondition->mGiven.load(std::memory_order_relaxed) >= aWaiters) {
        return false;
    }
    aCondition->mGiven.fetch_add(1, std::memory_order_relaxed);
    return true;
}

/// Takes one signal along; false when others have taken them all. The caller holds the mutex.
bool vxTake(vxOSCondition* aCondition) {
    if (aCondition->mGiven.load(std::memory_order_relaxed) == 0) {
        return false;
    }
    aCondition->mGiven.fetch_sub(1, std::memory_order_relaxed);
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
    if (aCondition->mWaiters.fetch_add(1) == 0) {
        aCondition->mGiven.store(0, std::memory_order_relaxed);
    }
    int theResult;
    bool theTook;
    do {
        const uint32_t theSignals = aCondition->mSignals.load();
        const uint32_t theRepeats = aMutex->mLock.LetGo();
        theResult = vxFutex_Wait(&aCondition->mSignals, theSignals, aDeadline);
        aMutex->mLock.TakeBack(theRepeats);
        // Also when the time is over: a signal that came before the mutex was back may have no
        // other thread to wake.
        theTook = vxTake(aCondition);
    } while (!theTook && theResult == 0);
    aCondition->mWaiters.fetch_sub(1);
    return theTook ? 0 : theResult;
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
    const uint32_t theWaiters = aCondition->mWaiters.load();
    // A waiter that was woken may take long to get the processor: signals meanwhile cost nothing.
    if (theWaiters == 0 || !vxGive(aCondition, theWaiters)) {
        return 0;
    }
    // In this order: who sees the new number sees what was given.
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
