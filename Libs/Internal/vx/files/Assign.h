#pragma once

#include <cstring>

#include "vx/CString.h"

/// Copies bytes into a string, into the block that it has if nobody shares that. The bytes are not
/// the string's own.
inline void vxAssign(vxCString& aTarget, const char* aText, size_t aLength) {
    if (aLength == 0) {
        aTarget.Reinit();
        return;
    }
    memcpy(aTarget.GetWriteBuf(aLength), aText, aLength);
    aTarget.UngetWriteBuf(aLength);
}
