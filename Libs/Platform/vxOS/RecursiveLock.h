#pragma once

// The lock behind mutexes and critical sections.
//
// One word says whether the lock is free, taken, or taken with threads asleep; a second one says by
// whom. Only the holder writes its own identity there and takes it away again, so a thread that reads
// its own identity is the holder, and one that is not can never read it: plain loads and stores of
// the word suffice.

#include <atomic>
#include <cstdint>

#include "Futex.h"

class vxRecursiveLock {
public:
    bool IsHeld() const { return mHolder.load(std::memory_order_relaxed) == Self(); }

    void Lock() {
        if (IsHeld()) {
            ++mRepeats;
            return;
        }
        Take();
    }

    /// The caller holds the lock.
    void Unlock() {
        if (mRepeats != 0) {
            --mRepeats;
            return;
        }
        Free();
    }

    /// Lets go of the lock however often the caller locked it, and returns what TakeBack() needs.
    uint32_t LetGo() {
        const uint32_t theRepeats = mRepeats;
        mRepeats = 0;
        Free();
        return theRepeats;
    }

    void TakeBack(uint32_t aRepeats) {
        Take();
        mRepeats = aRepeats;
    }

private:
    enum State : uint32_t { kFree, kTaken, kTakenWithSleepers };

    /// The address of a variable of which every thread has its own.
    static const char* Self() { return &sSelf; }

    void Take() {
        uint32_t theState = kFree;
        if (!mState.compare_exchange_strong(theState, kTaken, std::memory_order_acquire,
                                            std::memory_order_relaxed)) {
            TakeFromOther();
        }
        mHolder.store(Self(), std::memory_order_relaxed);
    }

    void Free() {
        mHolder.store(nullptr, std::memory_order_relaxed);
        // Whoever gets the lock may destroy it: it is not touched after this exchange.
        if (mState.exchange(kFree, std::memory_order_release) == kTakenWithSleepers) {
            vxFutex_Wake(&mState, 1);
        }
    }

    void TakeFromOther();

    // The variable is reached in one instruction, not by a call as is usual in shared libraries.
    static thread_local char sSelf __attribute__((tls_model("initial-exec")));

    std::atomic<uint32_t> mState{kFree};
    uint32_t mRepeats = 0;                      // locks of the holder beyond its first
    std::atomic<const char*> mHolder{nullptr};  // its Self(), or null
};
