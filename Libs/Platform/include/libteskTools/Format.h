#pragma once

#include <libteskTools/Types.h>

#include <stdarg.h>

VX_C_BEGIN

/// Formats as printf does into at most `aSize` bytes, terminating NUL included, and returns the
/// length of the whole text without the NUL, whether it fitted or not.
///
/// With a size of 0 nothing is written and `aBuffer` may be null.
///
/// Fails:    negative when the format cannot be honoured; the buffer then holds an unspecified,
///           terminated text.
/// Threads:  any.
VX_API int vx_snprintf(char* aBuffer, size_t aSize, const char* aFormat, ...) VX_PRINTF(3, 4);

/// As vx_snprintf(), with the arguments as a list; only va_end() may follow on it.
VX_API int vx_vsnprintf(char* aBuffer, size_t aSize, const char* aFormat, va_list anArgs)
    VX_PRINTF(3, 0);

VX_C_END
