#pragma once

// Words that threads sleep on, and the moments until which they sleep.

#include <atomic>
#include <cstdint>

/// A moment of the monotonic clock, in the layout that the kernel reads.
struct vxDeadline {
    long mSeconds;
    long mNanoseconds;
};

/// Returns the moment `aMSTimeout` milliseconds from now.
vxDeadline vxDeadline_In(uint32_t aMSTimeout);

/// Sleeps while the word has the expected value, until a wake or the deadline; a null deadline
/// never comes. Returns ETIMEDOUT when it has come, else 0, also without a wake: look at the word
/// again.
int vxFutex_Wait(std::atomic<uint32_t>* aWord, uint32_t anExpected, const vxDeadline* aDeadline);

/// Wakes up to `aCount` threads that sleep on the word. The word itself is not read: its memory may
/// be gone already.
void vxFutex_Wake(std::atomic<uint32_t>* aWord, int aCount);

/// True when another thread can make progress while this one spins.
bool vxFutex_SpinningPays();

/// Tells the processor that the thread spins.
inline void vxFutex_Pause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__) || (defined(__ARM_ARCH) && __ARM_ARCH >= 7)
    __asm__ __volatile__("yield" ::: "memory");
#endif
}
