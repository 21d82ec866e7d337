#pragma once

#include <libvxOS/CriticalSection.h>

#include "vx/Api.h"

/// A recursive lock without a count and without a condition.
///
/// Owner:    owns one platform critical section.
/// Threads:  any.
class VX_EXPORT vxCriticalSection {
public:
    /// Fails:    reports the fatal error "os:criticalsection"; if that returns, every entry fails.
    vxCriticalSection();

    /// Nobody may be inside or wait.
    ~vxCriticalSection();

    vxCriticalSection(const vxCriticalSection&) = delete;
    vxCriticalSection& operator=(const vxCriticalSection&) = delete;

    /// Enters, once more when the calling thread is inside; waits while another thread is.
    ///
    /// Fails:    with the platform's error; 0 means success.
    int Enter() { return vxCriticalSection_Enter(mCriticalSection); }

    /// Undoes one Enter() of the calling thread.
    ///
    /// Fails:    with the platform's error; 0 means success.
    int Leave() { return vxCriticalSection_Leave(mCriticalSection); }

private:
    vxOSCriticalSection* mCriticalSection;  // owned; null if it could not be created
};

/// Stays inside a critical section for as long as the locker lives.
class vxCriticalSectionLocker {
public:
    /// Enters `aCriticalSection`, which must outlive the locker.
    explicit vxCriticalSectionLocker(vxCriticalSection* aCriticalSection)
        : mCriticalSection(aCriticalSection) {
        mCriticalSection->Enter();
    }
    ~vxCriticalSectionLocker() { mCriticalSection->Leave(); }

    vxCriticalSectionLocker(const vxCriticalSectionLocker&) = delete;
    vxCriticalSectionLocker& operator=(const vxCriticalSectionLocker&) = delete;

private:
    vxCriticalSection* mCriticalSection;  // borrowed
};
