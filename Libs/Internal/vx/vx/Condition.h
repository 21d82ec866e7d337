#pragma once

#include <libvxOS/Condition.h>

#include "vx/Api.h"

/// An event: a signal that threads wait for, and that is kept until a wait takes it.
///
/// A signal that comes while nobody waits satisfies the next wait at once. Unless the event is
/// reset by hand, a wait takes the signal along; otherwise it stays until Reset().
///
///     vxCondition theDone;
///     ...                  // another thread: theDone.Signal();
///     theDone.Wait();
///
/// Owner:    owns one platform condition and one platform mutex, private to it.
/// Threads:  any, guarded by mMutex.
class VX_EXPORT vxCondition {
public:
    /// Creates an event that is not signaled and resets itself.
    ///
    /// Fails:    reports the fatal error "os:condition" or "os:mutex"; if that returns, waits and
    ///           signals fail.
    vxCondition();

    /// As the default constructor, with the manner of reset and the first state.
    vxCondition(bool afManualReset, bool afInitiallySignaled);

    /// Nobody may wait.
    ~vxCondition();

    vxCondition(const vxCondition&) = delete;
    vxCondition& operator=(const vxCondition&) = delete;

    /// Waits until the event is signaled, for at most `aMSTimeout` milliseconds; 0xFFFFFFFF waits
    /// without limit.
    ///
    /// The wait sleeps once: it ends with 0 also where the platform wakes it without a signal.
    /// Unless reset by hand, the event is not signaled afterwards, whatever the result. A signal
    /// wakes one sleeping thread; of an event that is reset by hand each one that wakes passes the
    /// signal on to the next.
    ///
    /// Fails:    with the platform's error: ETIMEDOUT when the time is over; 0 means signaled.
    int WaitTimeout(unsigned int aMSTimeout);

    /// Waits without limit.
    int Wait() { return WaitTimeout(0xFFFFFFFF); }

    /// Signals the event and wakes one thread that waits.
    ///
    /// Fails:    with the platform's error, and the event is signaled all the same; 0 means
    ///           success.
    int Signal();

    /// Takes the signal back; returns 0.
    int Reset();

private:
    int SleepOnce(unsigned int aMSTimeout);

    vxOSCondition* mCondition;  // owned; null if it could not be created
    vxOSMutex* mMutex;          // owned, guards mfSignaled; null if it could not be created
    bool mfSignaled;            // a signal that no wait has taken yet
    bool mfManualReset;         // only Reset() takes the signal back
};
