// A waiting thread sleeps on the number of signals that it read while it held the mutex. Every
// signal changes the number, so one that comes before the thread is asleep keeps it awake.

#include <libvxOS/Condition.h>

#include "Futex.h"
#include "Mutex.h"

#include <cerrno>
#include <new>

struct vxOSCondition {
    std::atomic<uint32_t> mSignals{0};        // modulo 2^32
    std::atomic<uint32_t> mWaiters{0};        // threads between their entry and their wake-up
    std::atomic<vxOSMutex*> mMutex{nullptr};  // of the waiters, while there are any
};

namespace {

int vxWait(vxOSCondition* aCondition, vxOSMutex* aMutex, const vxDeadline* aDeadline) {
    if (aCondition == nullptr || aMutex == nullptr) {
        return EINVAL;
    }
    if (!aMutex->mLock.IsHeld()) {
        return EPERM;
    }
    aCondition->mMutex.store(aMutex, std::memory_order_relaxed);
    // A signal either sees this waiter or has changed the number already: both sides use the one
    // total order.
    aCondition->mWaiters.fetch_add(1);
    const uint32_t theSignals = aCondition->mSignals.load();
    const uint32_t theRepeats = aMutex->mLock.LetGo();
    int theResult = 0;
    while (theResult == 0 && aCondition->mSignals.load() == theSignals) {
        theResult = vxFutex_Wait(&aCondition->mSignals, theSignals, aDeadline);
    }
    aMutex->mLock.TakeBack(theRepeats);
    aCondition->mWaiters.fetch_sub(1);
    // A signal that came after the time was over, but before the mutex was back, may have no other
    // thread to wake: it counts.
    return aCondition->mSignals.load() == theSignals ? theResult : 0;
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
    aCondition->mSignals.fetch_add(1);
    if (aCondition->mWaiters.load() == 0) {
        return 0;
    }
    vxRecursiveLock& theLock = aCondition->mMutex.load(std::memory_order_relaxed)->mLock;
    if (theLock.IsHeld()) {
        // The woken thread would only run into the mutex that the caller still holds.
        theLock.WakeOnUnlock(&aCondition->mSignals);
    } else {
        vxFutex_Wake(&aCondition->mSignals, 1);
    }
    return 0;
}
