#pragma once

// What every declaration of the platform contract needs: C linkage, visibility, format checking.

#include <stddef.h>
#include <stdint.h>

/// Stands around declarations that have C linkage in C++, too.
/// @{
#ifdef __cplusplus
#define VX_C_BEGIN extern "C" {
#define VX_C_END }
#else
#define VX_C_BEGIN
#define VX_C_END
#endif
/// @}

/// Marks a declaration as visible outside its shared library.
#define VX_API __attribute__((visibility("default")))

/// Lets the compiler check a printf-like operation: positions of the format and of its first
/// argument, counted from 1; the latter is 0 for an operation that takes a va_list.
#define VX_PRINTF(aFormat, aFirst) __attribute__((format(printf, aFormat, aFirst)))
