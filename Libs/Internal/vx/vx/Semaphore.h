#pragma once

#include <libvxOS/Semaphore.h>

#include "vx/Api.h"

/// A count that threads raise, and wait to lower.
///
/// Owner:    owns one platform semaphore.
/// Threads:  any.
class VX_EXPORT vxSemaphore {
public:
    /// Creates a semaphore whose count is `anInitialCount`.
    ///
    /// Fails:    reports the fatal error "os:semaphore", also for a negative count; if that
    ///           returns, every operation fails.
    explicit vxSemaphore(int anInitialCount);

    /// Nobody may wait.
    ~vxSemaphore();

    vxSemaphore(const vxSemaphore&) = delete;
    vxSemaphore& operator=(const vxSemaphore&) = delete;

    /// Raises the count by one; a thread that waits takes it.
    ///
    /// Fails:    with the platform's error; 0 means success.
    int Post() { return vxSemaphore_Post(mSemaphore); }

    /// Lowers the count by one, and waits until it is above 0 first.
    ///
    /// Fails:    with the platform's error; 0 means success.
    int Wait() { return vxSemaphore_Wait(mSemaphore); }

    /// As Wait(), for at most `aMSTimeout` milliseconds; every value is a time, also 0xFFFFFFFF.
    ///
    /// Fails:    with the platform's error: ETIMEDOUT when the time is over; 0 means success.
    int WaitTimeout(unsigned int aMSTimeout) {
        return vxSemaphore_WaitTimeout(mSemaphore, aMSTimeout);
    }

private:
    vxOSSemaphore* mSemaphore;  // owned; null if it could not be created
};
