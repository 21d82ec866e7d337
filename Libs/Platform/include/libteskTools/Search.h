#pragma once

// Searching bytes in bytes. NUL is a byte as any other. A null pointer is allowed where its length
// is 0. Every operation is linear in the text, whatever the needle.
//
// Threads:  any.

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Returns the first occurrence of the needle, or null; an empty needle is found at the start.
VX_API const char* vxSearch_First(const char* aText, size_t aLength, const char* aNeedle,
                                  size_t aNeedleLength);

/// Returns the last occurrence of the needle, or null; an empty needle is found at the end.
VX_API const char* vxSearch_Last(const char* aText, size_t aLength, const char* aNeedle,
                                 size_t aNeedleLength);

/// As vxSearch_First(), with the letters of ASCII equal in either case.
VX_API const char* vxSearch_FirstNoCase(const char* aText, size_t aLength, const char* aNeedle,
                                        size_t aNeedleLength);

/// Returns how many bytes two texts have in common from their start, at most `aLength`, with the
/// letters of ASCII equal in either case.
VX_API size_t vxSearch_CommonNoCase(const char* aLeft, const char* aRight, size_t aLength);

/// Returns the last occurrence of a byte, or null.
VX_API const char* vxSearch_LastByte(const char* aText, size_t aLength, char aByte);

VX_C_END
