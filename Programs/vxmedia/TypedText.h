#pragma once

#include "vx/CString.h"

namespace vxmedia {

/// Returns a text that may be typed as it is or in quotes of either kind, without the quotes.
inline vxCString Unquoted(const vxCString& aTyped) {
    const size_t theLength = aTyped.length();
    const bool theIsQuoted = theLength >= 2 && (aTyped.First() == '"' || aTyped.First() == '\'') &&
                             aTyped.Last() == aTyped.First();
    return theIsQuoted ? aTyped.Mid(1, theLength - 2) : aTyped;
}

}  // namespace vxmedia
