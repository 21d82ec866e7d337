#pragma once

#include <libteskTools/Types.h>

// Locking is frequent enough for a jump to count: where the compiler can, it calls these operations
// without the detour by which shared libraries are usually bound.
#if defined(__GNUC__) && !defined(__clang__)
#define VX_NOPLT __attribute__((noplt))
#else
#define VX_NOPLT
#endif

VX_C_BEGIN

/// A recursive lock that knows which thread holds it.
typedef struct vxOSMutex vxOSMutex;

/// Creates a mutex that nobody holds.
///
/// Fails:    null when memory is short.
/// Owner:    the caller, who releases it with vxMutex_Delete().
VX_API vxOSMutex* vxMutex_New(void);

/// Releases the mutex; null is ignored.
///
/// Nobody may hold it or wait for it. The thread that got it last may delete it as soon as it has
/// unlocked it, although the holder before may not have returned from its own unlock yet.
VX_API void vxMutex_Delete(vxOSMutex* aMutex);

/// Takes the mutex, or takes it once more when the calling thread holds it already.
///
/// Blocks until the thread that holds it has unlocked it as often as it locked it. Waiting threads
/// are not served in order.
///
/// Fails:    EINVAL for a null mutex; 0 means success.
/// Threads:  any.
/// Cost:     one atomic operation when nobody holds the mutex, none when the caller does.
VX_API VX_NOPLT int vxMutex_Lock(vxOSMutex* aMutex);

/// Undoes one lock of the calling thread; the last one lets another thread in.
///
/// Fails:    EPERM when the calling thread does not hold the mutex, EINVAL for a null one; 0 means
///           success.
/// Threads:  any; never blocks.
VX_API VX_NOPLT int vxMutex_Unlock(vxOSMutex* aMutex);

/// Returns 1 when the calling thread holds the mutex, else 0, also for null.
///
/// Threads:  any, atomic.
VX_API int vxMutex_IsHeld(const vxOSMutex* aMutex);

VX_C_END
