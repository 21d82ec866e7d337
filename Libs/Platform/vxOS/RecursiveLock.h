#pragma once

// The lock behind mutexes and critical sections.
//
// One word is all that threads compete for: the identity of the thread that holds the lock, or 0,
// and two flags. Only the holder writes its own identity there and takes it away again, so a thread
// that reads its own identity is the holder, and one that is not can never read it.

#include <atomic>
#include <cstdint>

#include "Futex.h"

class vxRecursiveLock {
public:
    bool IsHeld() const { return (mState.load(std::memory_order_relaxed) & ~kFlags) == Self(); }

    // Lock() and Unlock() answer as the operations of the platform do, so that those are nothing
    // but the code below and a jump to the rare cases. The probabilities say that a first and a
    // repeated lock are about equally frequent: without them the compiler lays one out at the cost
    // of the other.

    /// Returns 0.
    int Lock() {
        if (__builtin_expect_with_probability(!IsHeld(), 1, 0.6)) {
            return Take();
        }
        ++mRepeats;
        return 0;
    }

    /// Returns EPERM when the caller does not hold the lock, else 0.
    int Unlock() {
        if (__builtin_expect(mState.load(std::memory_order_relaxed) != Self(), 0)) {
            return UnlockFlagged();
        }
        if (__builtin_expect_with_probability(mRepeats == 0, 1, 0.6)) {
            return Free();
        }
        --mRepeats;
        return 0;
    }

    /// Lets go of the lock however often the caller locked it, and returns what TakeBack() needs.
    uint32_t LetGo() {
        const uint32_t theRepeats = mRepeats;
        mRepeats = 0;
        Unlock();
        return theRepeats;
    }

    void TakeBack(uint32_t aRepeats) {
        Take();
        mRepeats = aRepeats;
    }

    /// Wakes one thread that sleeps on `aWord`, once the caller, who holds the lock, has let go of
    /// it: for threads that want the lock next. The word may be gone by then. Of several threads only
    /// the last one waits for that.
    void WakeOnUnlock(std::atomic<uint32_t>* aWord);

private:
    static constexpr uintptr_t kSleepers = 1;      // threads may sleep on the state
    static constexpr uintptr_t kWakeOnUnlock = 2;  // mWakeWord is set
    static constexpr uintptr_t kFlags = kSleepers | kWakeOnUnlock;

    /// The address of a variable of which every thread has its own.
    static uintptr_t Self() { return reinterpret_cast<uintptr_t>(&sSelf); }

    int Take() {
        uintptr_t theState = 0;
        if (__builtin_expect(
                mState.compare_exchange_strong(theState, Self(), std::memory_order_acquire,
                                               std::memory_order_relaxed),
                1)) {
            return 0;
        }
        return TakeFromOther();
    }

    int Free() {
        // Whoever gets the lock may destroy it: it is not touched after this exchange.
        if (__builtin_expect((mState.exchange(0, std::memory_order_release) & kSleepers) != 0, 0)) {
            return WakeSleeper();
        }
        return 0;
    }

    int TakeFromOther();
    int UnlockFlagged();
    int WakeSleeper();
    std::atomic<uint32_t>* LowerHalf();

    // Unlike a thread_local of a shared library this one is reached without a call.
    static __thread uint32_t sSelf __attribute__((tls_model("initial-exec")));

    std::atomic<uintptr_t> mState{0};
    uint32_t mRepeats = 0;                       // locks of the holder beyond its first
    std::atomic<uint32_t>* mWakeWord = nullptr;  // where the holder is to wake a thread, or null
};
