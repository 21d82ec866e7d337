#pragma once

#include <libteskTools/Types.h>

/// An instant, or a span of time: two signed 32-bit words on every target.
///
/// As an instant it counts from 1970-01-01 00:00:00 UTC and ends with the seconds word in 2038.
typedef struct vxtimeval {
    int32_t tv_sec;   ///< seconds
    int32_t tv_usec;  ///< microseconds
} vxtimeval;
