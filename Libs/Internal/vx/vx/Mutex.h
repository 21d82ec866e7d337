#pragma once

#include <libvxLog/Assert.h>
#include <libvxOS/Mutex.h>

#include <atomic>

#include "vx/Api.h"

/// A recursive lock that counts how often it is locked.
///
/// Owner:    owns one platform mutex.
/// Threads:  any.
class VX_EXPORT vxMutex {
public:
    /// Fails:    reports the fatal error "os:mutex"; if that returns, every lock fails.
    vxMutex();

    /// Nobody may hold the mutex or wait for it.
    ~vxMutex();

    vxMutex(const vxMutex&) = delete;
    vxMutex& operator=(const vxMutex&) = delete;

    /// Takes the mutex, once more when the calling thread holds it; waits while another holds it.
    ///
    /// Fails:    with the platform's error, and the mutex is not taken; 0 means success.
    int Lock() {
        const int theResult = vxMutex_Lock(mMutex);
        if (theResult == 0) {
            SetLockCount(GetLockCount() + 1);
        }
        return theResult;
    }

    /// Undoes one Lock() of the calling thread.
    ///
    /// Asserts:  mLockCount > 0.
    /// Fails:    with the platform's error, and the count is as before; 0 means success.
    int Unlock() {
        const int32_t theCount = GetLockCount();
        VXASSERT_TEXT(theCount > 0, "mLockCount > 0");
        // The next holder counts as soon as the platform lets it in, so this one counts before.
        SetLockCount(theCount - 1);
        const int theResult = vxMutex_Unlock(mMutex);
        if (theResult != 0) {
            SetLockCount(theCount);
        }
        return theResult;
    }

    /// Reports when nobody holds the mutex; that the caller does is for IsHeld() to say.
    ///
    /// Asserts:  mLockCount > 0.
    void AssertLocked() const { VXASSERT_TEXT(GetLockCount() > 0, "mLockCount > 0"); }

    /// Tells whether the calling thread holds the mutex.
    bool IsHeld() const { return vxMutex_IsHeld(mMutex) != 0; }

private:
    friend class vxConditionExt;

    // Only the holder changes the count, so plain loads and stores are enough.
    int32_t GetLockCount() const { return mLockCount.load(std::memory_order_relaxed); }
    void SetLockCount(int32_t aCount) { mLockCount.store(aCount, std::memory_order_relaxed); }

    vxOSMutex* mMutex;                // owned; null if it could not be created
    std::atomic<int32_t> mLockCount;  // locks not undone yet, of all levels
};

/// Holds a mutex for as long as the locker lives.
///
///     vxMutexLocker theLock(&mMutex);
class vxMutexLocker {
public:
    /// Locks `aMutex`, which must outlive the locker; whether that succeeded is not checked.
    explicit vxMutexLocker(vxMutex* aMutex) : mMutex(aMutex) { mMutex->Lock(); }
    ~vxMutexLocker() { mMutex->Unlock(); }

    vxMutexLocker(const vxMutexLocker&) = delete;
    vxMutexLocker& operator=(const vxMutexLocker&) = delete;

private:
    vxMutex* mMutex;  // borrowed
};
