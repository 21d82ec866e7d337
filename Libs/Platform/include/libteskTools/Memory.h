#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Allocates `aSize` bytes; 0 counts as 1, so that the result is a block of its own.
///
/// Fails:    reports the fatal error "memory:malloc" with the size; null if that returns.
/// Owner:    the caller, who releases the block with free().
/// Threads:  any.
VX_API void* vxMalloc(size_t aSize);

/// Allocates `aSize` bytes and sets them to 0; otherwise as vxMalloc().
VX_API void* vxCalloc(size_t aSize);

/// Moves the block to `aSize` bytes, keeping what fits; a null block is allocated anew and a size
/// of 0 counts as 1.
///
/// Fails:    reports the fatal error "memory:malloc" with the size; null if that returns, and the
///           old block stays valid.
/// Owner:    the caller, who releases the result with free().
/// Threads:  any.
VX_API void* vxRealloc(void* aPtr, size_t aSize);

/// Allocates `aSize` bytes; for sizes that come from outside, where failure is an answer.
///
/// Fails:    null, without a report.
/// Owner:    the caller, who releases the block with free().
/// Threads:  any.
VX_API void* vxTryMalloc(size_t aSize);

/// Copies a text with its NUL; null gives null.
///
/// Fails:    as vxMalloc().
/// Owner:    the caller, who releases the copy with free().
/// Threads:  any.
VX_API char* vxStrdup(const char* aStr);

VX_C_END
