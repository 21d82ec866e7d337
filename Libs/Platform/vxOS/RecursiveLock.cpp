// What a thread does when it finds the lock taken: critical sections are short, so it looks a few
// more times before it sleeps.

#include "RecursiveLock.h"

#include <cerrno>

namespace {

constexpr int kvxLooksBeforeSleep = 40;

}  // namespace

__thread uint32_t vxRecursiveLock::sSelf;

int vxRecursiveLock::UnlockFlagged() {
    if (!IsHeld()) {
        return EPERM;
    }
    if (mRepeats != 0) {
        --mRepeats;
        return 0;
    }
    std::atomic<uint32_t>* const theWord = mWakeWord;
    mWakeWord = nullptr;
    Free();
    if (theWord != nullptr) {
        vxFutex_Wake(theWord, 1);
    }
    return 0;
}

int vxRecursiveLock::WakeSleeper() {
    vxFutex_Wake(LowerHalf(), 1);
    return 0;
}

void vxRecursiveLock::WakeOnUnlock(std::atomic<uint32_t>* aWord) {
    if (mWakeWord != nullptr) {
        vxFutex_Wake(mWakeWord, 1);
    }
    mWakeWord = aWord;
    mState.fetch_or(kWakeOnUnlock, std::memory_order_relaxed);
}

int vxRecursiveLock::TakeFromOther() {
    uintptr_t theState = mState.load(std::memory_order_relaxed);
    for (int i = vxFutex_SpinningPays() ? kvxLooksBeforeSleep : 0; i > 0; --i) {
        if (theState == 0 &&
            mState.compare_exchange_strong(theState, Self(), std::memory_order_acquire,
                                           std::memory_order_relaxed)) {
            return 0;
        }
        vxFutex_Pause();
        theState = mState.load(std::memory_order_relaxed);
    }
    for (;;) {
        // A thread that has slept cannot know whether others still do, and says so to be safe.
        const uintptr_t theNext = (theState == 0 ? Self() : theState) | kSleepers;
        if (theState != theNext &&
            !mState.compare_exchange_weak(theState, theNext, std::memory_order_acquire,
                                          std::memory_order_relaxed)) {
            continue;
        }
        if (theState == 0) {
            return 0;
        }
        vxFutex_Wait(LowerHalf(), static_cast<uint32_t>(theNext), nullptr);
        theState = mState.load(std::memory_order_relaxed);
    }
}

/// The half of the state that has the flags. A new holder that looks like the old one there is no
/// harm: the lock is taken all the same, and the flag makes that holder wake a sleeper.
std::atomic<uint32_t>* vxRecursiveLock::LowerHalf() {
    static_assert(sizeof(mState) == sizeof(uint32_t) || __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
                  "the lower half comes first");
    return reinterpret_cast<std::atomic<uint32_t>*>(&mState);
}
