#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// A count that threads raise and wait to lower.
typedef struct vxOSSemaphore vxOSSemaphore;

/// Creates a semaphore with the given count.
///
/// Fails:    null for a negative count or when memory is short.
/// Owner:    the caller, who releases it with vxSemaphore_Delete().
VX_API vxOSSemaphore* vxSemaphore_New(int aCount);

/// Releases the semaphore, which nobody may wait for; null is ignored.
VX_API void vxSemaphore_Delete(vxOSSemaphore* aSemaphore);

/// Raises the count by one; a waiting thread takes it.
///
/// Fails:    EOVERFLOW when the count is at INT_MAX, EINVAL for null; 0 means success.
/// Threads:  any; never blocks.
VX_API int vxSemaphore_Post(vxOSSemaphore* aSemaphore);

/// Lowers the count by one, and blocks until it is above 0 first.
///
/// Fails:    EINVAL for null; 0 means success.
/// Threads:  any.
VX_API int vxSemaphore_Wait(vxOSSemaphore* aSemaphore);

/// As vxSemaphore_Wait(), for at most `aMSTimeout` milliseconds of the monotonic clock. Every value
/// is a time, also 0xFFFFFFFF: 49.7 days. With 0 it only tries.
///
/// Fails:    ETIMEDOUT when the time is over, EINVAL for null; the count is unchanged then.
VX_API int vxSemaphore_WaitTimeout(vxOSSemaphore* aSemaphore, uint32_t aMSTimeout);

VX_C_END
