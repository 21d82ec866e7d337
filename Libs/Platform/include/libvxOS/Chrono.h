#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// A stopwatch on the monotonic clock: the moment it was started, in nanoseconds.
typedef struct vxChrono {
    uint64_t mStart;  ///< nanoseconds; 0: never started
} vxChrono;

/// Sets a stopwatch to never started; it then measures nothing.
VX_API void vxChrono_S_Init(vxChrono* aChrono);

/// Starts or restarts a stopwatch.
VX_API void vxChrono_Start_S(vxChrono* aChrono);

/// Stores the time since the start as whole seconds and the milliseconds beyond them, both 0 for a
/// stopwatch that was never started.
VX_API void vxChrono_GetTime_S_MS(const vxChrono* aChrono, uint32_t* aSeconds,
                                  uint32_t* aMilliseconds);

VX_C_END
