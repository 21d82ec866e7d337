#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Reports that a resource the program cannot go on without is missing, and ends the program.
///
/// `aResource` names it, for example "os:mutex". It returns only where a handler is set (see
/// vxFatalError_SetHandler()); callers go on harmlessly then.
///
/// Threads:  any.
VX_API void vxFatalError(const char* aResource);

/// As vxFatalError(), with the bytes that were asked for; for "memory:malloc".
VX_API void vxFatalError_WithSize(const char* aResource, size_t aSize);

VX_C_END
