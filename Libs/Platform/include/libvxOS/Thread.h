#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Blocks the calling thread for at least `aMSDuration` milliseconds of the monotonic clock; 0
/// returns at once. Signals do not cut the sleep short.
///
/// Threads:  any.
VX_API void vxThread_Sleep(uint32_t aMSDuration);

/// Returns the number by which the system tells the calling thread from all others that live: what
/// its process list shows.
///
/// Threads:  any.
VX_API unsigned long vxThread_GetCurrentThreadID(void);

VX_C_END
