#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Writes the calling thread's call stack to standard error, one line per frame, innermost first.
///
/// Threads:  any.
VX_API void vxDebug_BackTraceCurrent(void);

VX_C_END
