#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Writes the calling thread's call stack to standard error, one line per frame, innermost first.
///
/// Threads:  any.
VX_API void vxDebug_BackTraceCurrent(void);

/// Names the calling thread for debuggers and process lists; null leaves it alone.
///
/// The system keeps 15 bytes; of a longer name the first characters that fit are taken. The name of
/// the main thread is also that of the process in lists.
///
/// Threads:  any.
VX_API void vxDebug_SetThreadName(const char* aName);

VX_C_END
