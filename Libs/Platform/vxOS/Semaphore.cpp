// One word is all: the count, or a mark that threads may be asleep. A thread that got its count may
// therefore delete the semaphore while the one that posted it is still on its way out.

#include <libvxOS/Semaphore.h>

#include "Futex.h"

#include <cerrno>
#include <climits>
#include <new>

struct vxOSSemaphore {
    std::atomic<uint32_t> mState;
};

namespace {

constexpr uint32_t kvxLargestCount = INT_MAX;
constexpr uint32_t kvxNoneWithSleepers = UINT32_MAX;  // counts as 0

bool vxHasCount(uint32_t aState) {
    return aState != 0 && aState != kvxNoneWithSleepers;
}

bool vxTryTake(vxOSSemaphore* aSemaphore) {
    uint32_t theState = aSemaphore->mState.load(std::memory_order_relaxed);
    while (vxHasCount(theState)) {
        if (aSemaphore->mState.compare_exchange_weak(
                theState, theState - 1, std::memory_order_acquire, std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

int vxTake(vxOSSemaphore* aSemaphore, const vxDeadline* aDeadline) {
    int theResult = 0;
    while (!vxTryTake(aSemaphore)) {
        if (theResult != 0) {
            return theResult;
        }
        uint32_t theState = 0;
        aSemaphore->mState.compare_exchange_strong(theState, kvxNoneWithSleepers,
                                                   std::memory_order_relaxed);
        if (!vxHasCount(theState)) {
            theResult = vxFutex_Wait(&aSemaphore->mState, kvxNoneWithSleepers, aDeadline);
        }
    }
    return 0;
}

}  // namespace

vxOSSemaphore* vxSemaphore_New(int aCount) {
    if (aCount < 0) {
        return nullptr;
    }
    return new (std::nothrow) vxOSSemaphore{{static_cast<uint32_t>(aCount)}};
}

void vxSemaphore_Delete(vxOSSemaphore* aSemaphore) {
    delete aSemaphore;
}

int vxSemaphore_Post(vxOSSemaphore* aSemaphore) {
    if (aSemaphore == nullptr) {
        return EINVAL;
    }
    uint32_t theState = aSemaphore->mState.load(std::memory_order_relaxed);
    uint32_t theNext;
    do {
        if (theState == kvxLargestCount) {
            return EOVERFLOW;
        }
        theNext = theState == kvxNoneWithSleepers ? 1 : theState + 1;
    } while (!aSemaphore->mState.compare_exchange_weak(theState, theNext, std::memory_order_release,
                                                       std::memory_order_relaxed));
    // The mark is gone now, so all sleepers must look; those that find nothing set it again.
    if (theState == kvxNoneWithSleepers) {
        vxFutex_Wake(&aSemaphore->mState, INT_MAX);
    }
    return 0;
}

int vxSemaphore_Wait(vxOSSemaphore* aSemaphore) {
    return aSemaphore == nullptr ? EINVAL : vxTake(aSemaphore, nullptr);
}

int vxSemaphore_WaitTimeout(vxOSSemaphore* aSemaphore, uint32_t aMSTimeout) {
    if (aSemaphore == nullptr) {
        return EINVAL;
    }
    const vxDeadline theDeadline = vxDeadline_In(aMSTimeout);
    return vxTake(aSemaphore, &theDeadline);
}
