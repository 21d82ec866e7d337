#pragma once

#include <cfloat>

#include "vx/CLIParameter.h"

/// What the description language knows of a type.
struct vxCLIParameterTypeInfo {
    const char* mKeyword;
    int mType;
    double mLower;  // bounds that a range may have, and that an empty side takes
    double mUpper;
};

constexpr vxCLIParameterTypeInfo kvxCLIParameterTypes[] = {
    {"ui8", kvxInteractiveParameterType_UInt8, 0.0, 255.0},
    {"i8", kvxInteractiveParameterType_Int8, -128.0, 127.0},
    {"ui16", kvxInteractiveParameterType_UInt16, 0.0, 65535.0},
    {"i16", kvxInteractiveParameterType_Int16, -32768.0, 32767.0},
    {"ui32", kvxInteractiveParameterType_UInt32, 0.0, 4294967295.0},
    {"i32", kvxInteractiveParameterType_Int32, -2147483648.0, 2147483647.0},
    {"ui64", kvxInteractiveParameterType_UInt64, 0.0, 18446744073709551616.0},
    {"i64", kvxInteractiveParameterType_Int64, -9223372036854775808.0, 9223372036854775808.0},
    {"double", kvxInteractiveParameterType_Double, -DBL_MAX, DBL_MAX},
    {"str", kvxInteractiveParameterType_Str, 0.0, 0.0},
    {"...", kvxInteractiveParameterType_Str, 0.0, 0.0},
    {"char", kvxInteractiveParameterType_Char, 0.0, 0.0},
    {"bool", kvxInteractiveParameterType_Bool, 0.0, 0.0},
    {"base64", kvxInteractiveParameterType_Base64, 0.0, 0.0},
};

constexpr bool vxParameterTypeIsNumber(int aType) {
    return aType >= kvxInteractiveParameterType_UInt8 && aType < kvxInteractiveParameterType_Str;
}

/// Returns the row of a type, or null for a type that has no keyword.
constexpr const vxCLIParameterTypeInfo* vxFindParameterType(int aType) {
    for (const vxCLIParameterTypeInfo& theInfo : kvxCLIParameterTypes) {
        if (theInfo.mType == aType) {
            return &theInfo;
        }
    }
    return nullptr;
}
