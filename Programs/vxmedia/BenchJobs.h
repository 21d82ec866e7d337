#pragma once

#include "vx/CString.h"

namespace vxmedia {

/// Runs the built-in job of this name and tells how long it took, on the console and in a file
/// beside the configuration.
///
/// Fails:    with an error text that lists the names, which is empty on success.
vxCString RunBenchJob(const vxCString& aName);

}  // namespace vxmedia
