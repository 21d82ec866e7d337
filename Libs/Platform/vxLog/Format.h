#pragma once

#include <libteskTools/Types.h>

#include <cstdarg>
#include <string>

/// Appends the formatted text, whatever its length; nothing when the format cannot be honoured.
void vxAppendFormatted(std::string& aText, const char* aFormat, va_list anArgs) VX_PRINTF(2, 0);
