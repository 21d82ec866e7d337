#pragma once

// Clocks that no setting of the date disturbs.

#include <libvxOS/TimeVal.h>

VX_C_BEGIN

/// Returns milliseconds since some moment before the program began. The count never goes back and
/// wraps to 0 after 2^32 of them, so only differences modulo 2^32 mean anything.
///
/// Threads:  any.
VX_API uint32_t vxTime_GetTickCount(void);

/// Fills `aTime` with the monotonic clock: the time since some moment before the program began.
///
/// Threads:  any.
VX_API void vxMonoliticTime_GetTime(vxtimeval* aTime);

/// Stores `aTime` minus `aSubtracted` in `aResult`, which may be either of them.
///
/// Microseconds of the result are 0 to 999999; of a negative span the seconds alone are negative.
/// Seconds beyond 32 bits wrap.
///
/// Threads:  any.
VX_API void vxTimeVal_Substract(vxtimeval* aResult, const vxtimeval* aTime,
                                const vxtimeval* aSubtracted);

VX_C_END
