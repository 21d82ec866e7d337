// What a thread does when it finds the lock taken: critical sections are short, so it looks a few
// more times before it sleeps.

#include "RecursiveLock.h"

namespace {

constexpr int kvxLooksBeforeSleep = 100;

}  // namespace

thread_local char vxRecursiveLock::sSelf;

void vxRecursiveLock::TakeFromOther() {
    if (vxFutex_SpinningPays()) {
        for (int i = 0; i < kvxLooksBeforeSleep; ++i) {
            uint32_t theState = mState.load(std::memory_order_relaxed);
            if (theState == kFree &&
                mState.compare_exchange_weak(theState, kTaken, std::memory_order_acquire,
                                             std::memory_order_relaxed)) {
                return;
            }
            vxFutex_Pause();
        }
    }
    // A thread that wakes cannot know whether others still sleep, and says so to be safe.
    while (mState.exchange(kTakenWithSleepers, std::memory_order_acquire) != kFree) {
        vxFutex_Wait(&mState, kTakenWithSleepers, nullptr);
    }
}
