#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// A recursive lock without a condition.
typedef struct vxOSCriticalSection vxOSCriticalSection;

/// Creates a critical section that nobody is in.
///
/// Fails:    null when memory is short.
/// Owner:    the caller, who releases it with vxCriticalSection_Delete().
VX_API vxOSCriticalSection* vxCriticalSection_New(void);

/// Releases the critical section, which nobody may be in; null is ignored.
VX_API void vxCriticalSection_Delete(vxOSCriticalSection* aSection);

/// Enters, or enters once more when the calling thread is in already; blocks while another is in.
///
/// Fails:    EINVAL for null; 0 means success.
/// Threads:  any.
VX_API int vxCriticalSection_Enter(vxOSCriticalSection* aSection);

/// Undoes one entry of the calling thread; the last one lets another thread in.
///
/// Fails:    EPERM when the calling thread is not in, EINVAL for null; 0 means success.
/// Threads:  any; never blocks.
VX_API int vxCriticalSection_Leave(vxOSCriticalSection* aSection);

VX_C_END
