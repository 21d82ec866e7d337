#pragma once

#include <libteskTools/Types.h>

#include <sys/select.h>

VX_C_BEGIN

/// The system's select with a trigger, by which another thread ends the wait.
typedef struct vxSocketSelect vxSocketSelect;

/// Creates a selector that is not triggered.
///
/// Fails:    null when the system gives no descriptor, or only one at or above FD_SETSIZE; logged
///           at error level, module VXLOG_M_SELECT.
/// Owner:    the caller, who releases it with vxSocketSelect_Delete().
VX_API vxSocketSelect* vxSocketSelect_New(void);

/// Ends every wait on the selector as a trigger does, and releases it; null is ignored.
///
/// Threads that are inside vxSocketSelect_Select() leave it safely: the last one frees the
/// selector. None may enter after this call has begun.
///
/// Threads:  any; never blocks.
VX_API void vxSocketSelect_Delete(vxSocketSelect* aSelect);

/// Ends one wait on the selector: the one under way, else the next. Triggers that come before a
/// wait has taken notice count as one. Null is ignored.
///
/// What the calling thread wrote before is visible to the thread whose wait ends.
///
/// Threads:  any; never blocks.
VX_API void vxSocketSelect_Trigger(vxSocketSelect* aSelect);

/// Waits until a descriptor is ready, the time is over, or the selector is triggered.
///
/// The sets hold descriptors below `aDescriptorCount` on entry and those that are ready on return;
/// each may be null. Without a `aTimeout` the wait has no limit; the record is not changed. Signals
/// do not end the wait. `aTriggered`, unless null, receives 1 when a trigger was taken, else 0;
/// descriptors may be ready as well then.
///
/// Returns the number of ready descriptors, as the system's select counts them: 0 when the time is
/// over, or when a trigger alone ended the wait.
///
/// Fails:    -1 with errno set and the sets unchanged: EINVAL for a null selector, a time-out that
///           is no time, or a descriptor count that is negative or above FD_SETSIZE, which is also
///           logged at error level, module VXLOG_M_SELECT; else as the system's select fails.
/// Threads:  any; of several that wait, a trigger ends the wait of at least one.
VX_API int vxSocketSelect_Select(vxSocketSelect* aSelect, fd_set* aReadSet, fd_set* aWriteSet,
                                 fd_set* anExceptSet, int aDescriptorCount,
                                 const struct timeval* aTimeout, int* aTriggered);

VX_C_END
