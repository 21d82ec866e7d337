// The two conversions between 64-bit numbers and text; everything else is in the header.

#include "vx/UInt64.h"

#include <charconv>

#include "vx/CString.h"

vxCString vxuint64::ToCString() const {
    char theText[24];
    const std::to_chars_result theResult =
        std::to_chars(theText, theText + sizeof(theText), mValue);
    return vxCString(theText, static_cast<size_t>(theResult.ptr - theText));
}

vxuint64 vxuint64::FromString(const char* aStr, const vxuint64& aDefault) {
    vxULongLong theValue;
    return vxULongLong_SetFromString(&theValue, aStr) ? vxuint64(theValue) : aDefault;
}
