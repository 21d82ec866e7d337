#pragma once

#include <libvxOS/Mutex.h>

VX_C_BEGIN

/// Lets threads sleep until another one says that something has changed.
///
/// What has changed is the callers' data, guarded by the mutex that every wait names. A wait ends for
/// a signal of its own or because its time is over, for no other reason; but what it was told about
/// may have changed again before it has the mutex.
typedef struct vxOSCondition vxOSCondition;

/// Creates a condition that nobody waits for.
///
/// Fails:    null when memory is short.
/// Owner:    the caller, who releases it with vxCondition_Delete().
VX_API vxOSCondition* vxCondition_New(void);

/// Releases the condition, which nobody may wait for; null is ignored.
///
/// A thread whose wait a signal has ended may delete it at once, although the one that gave the signal
/// may not have returned yet.
VX_API void vxCondition_Delete(vxOSCondition* aCondition);

/// Releases the mutex, sleeps until woken, and takes the mutex again.
///
/// A mutex that the calling thread has locked several times is released altogether, and is locked
/// as often again on return. A signal between the release and the sleep is not lost.
///
/// Fails:    EPERM without waiting when the calling thread does not hold the mutex, EINVAL for a
///           null handle; 0 means woken.
/// Threads:  any that hold the mutex.
VX_API int vxCondition_Wait(vxOSCondition* aCondition, vxOSMutex* aMutex);

/// As vxCondition_Wait(), for at most `aMSTimeout` milliseconds of the monotonic clock. Every value
/// is a time, also 0xFFFFFFFF: 49.7 days.
///
/// Fails:    ETIMEDOUT when the time is over and no signal is left for this thread; otherwise as
///           vxCondition_Wait(). The mutex is held again in either case.
VX_API int vxCondition_WaitTimeout(vxOSCondition* aCondition, vxOSMutex* aMutex,
                                   uint32_t aMSTimeout);

/// Wakes the thread that has waited longest; without one it does nothing and nothing is remembered.
///
/// One signal ends one wait, and never one that began after it.
///
/// The caller changes the data under the mutex, and should still hold it here: the thread is then
/// woken as soon as it can have the mutex.
///
/// Fails:    EINVAL for null; 0 means success.
/// Threads:  any; never blocks.
/// Cost:     a system call only when a thread waits.
VX_API int vxCondition_Signal(vxOSCondition* aCondition);

VX_C_END
