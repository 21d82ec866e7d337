#pragma once

// Whole texts for comparison, NULs inside them included.

#include <string>

#include "vx/CString.h"

namespace vxtest {

/// All bytes of a string.
inline std::string Text(const vxCString& aStr) {
    return std::string(aStr.c_str(), aStr.length());
}

}  // namespace vxtest
