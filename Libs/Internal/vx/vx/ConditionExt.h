#pragma once

#include <libvxOS/Condition.h>

#include "vx/Api.h"

class vxMutex;

/// A signal bound to a mutex of the caller's, which guards what the signal is about.
///
/// The mutex is held around every operation; a wait lets go of it while it sleeps. A signal is kept
/// until a wait takes it, and every wait takes it.
///
///     vxMutexLocker theLock(&mMutex);
///     while (mItems.size() == 0) {
///         mCondition.Wait();
///     }
///
/// Owner:    owns one platform condition, and the mutex where asked to.
/// Threads:  any that hold the mutex.
class VX_EXPORT vxConditionExt {
public:
    /// Binds the condition to `aMutex`, which it deletes in the end when `afDeleteMutex`; otherwise
    /// the mutex must outlive it.
    ///
    /// Fails:    reports the fatal error "os:condition", or "os:mutex" for a null mutex; if that
    ///           returns, waits and signals fail.
    vxConditionExt(vxMutex* aMutex, bool afDeleteMutex);

    /// Nobody may wait.
    ~vxConditionExt();

    vxConditionExt(const vxConditionExt&) = delete;
    vxConditionExt& operator=(const vxConditionExt&) = delete;

    /// Waits until signaled, for at most `aMSTimeout` milliseconds; 0xFFFFFFFF waits without
    /// limit.
    ///
    /// The wait sleeps once: it ends with 0 also where the platform wakes it without a signal, so
    /// test what you wait for in a loop. No signal is kept afterwards, whatever the result. While
    /// the thread sleeps the mutex is free, however often the thread has locked it, but its
    /// AssertLocked() still counts those locks.
    ///
    /// Asserts:  vxMutex_IsHeld(mMutex->mMutex), before and after: reported twice by a thread that
    ///           does not hold the mutex, which then neither sleeps nor takes a signal.
    /// Fails:    with the platform's error: ETIMEDOUT when the time is over, EPERM when the mutex
    ///           is not held; 0 means signaled.
    int WaitTimeout(unsigned int aMSTimeout);

    /// Waits without limit.
    int Wait() { return WaitTimeout(0xFFFFFFFF); }

    /// Signals, and wakes one thread that waits.
    ///
    /// Asserts:  vxMutex_IsHeld(mMutex->mMutex), before and after; the signal is given all the
    ///           same.
    /// Fails:    with the platform's error; 0 means success.
    int Signal();

    /// Returns the mutex that the condition is bound to.
    ///
    /// Owner:    as the constructor was told.
    vxMutex* GetAssociatedMutex() { return mMutex; }

private:
    bool CheckMutexIsHeld() const;
    int SleepOnce(unsigned int aMSTimeout);

    vxOSCondition* mCondition;  // owned; null if it could not be created
    vxMutex* mMutex;            // guards mfSignaled; owned if mfDeleteMutex
    bool mfSignaled;            // a signal that no wait has taken yet
    bool mfDeleteMutex;         // the condition deletes the mutex in the end
};
