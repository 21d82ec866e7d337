// The two conversions between 64-bit numbers and text; everything else is in the header.

#include "vx/UInt64.h"

vxuint64 vxuint64::FromString(const char* aStr, const vxuint64& aDefault) {
    vxULongLong theValue;
    return vxULongLong_SetFromString(&theValue, aStr) ? vxuint64(theValue) : aDefault;
}
