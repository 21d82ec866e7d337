#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Returns the numeric id of the user that the process acts as; negative where there is none.
///
/// Threads:  any.
VX_API int64_t vxUser_GetID(void);

/// Returns a copy of an environment variable, or null when it is not set or the name is null.
///
/// Owner:    the caller, who releases the text with free().
/// Threads:  any, as long as nobody changes the environment meanwhile.
VX_API char* vxPlatform_getenv(const char* aName);

VX_C_END
