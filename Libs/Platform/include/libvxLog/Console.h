#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Writes formatted text to the console: the console handler, else standard output.
///
/// Each call is one piece: texts of two threads do not mix within a call.
///
/// Threads:  any.
VX_API void vxConsole_Printf(const char* aFormat, ...) VX_PRINTF(1, 2);

VX_C_END
