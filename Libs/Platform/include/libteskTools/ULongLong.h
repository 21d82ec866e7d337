#pragma once

// Unsigned 64-bit numbers as two words, for interfaces that know no wider integer.

#include <libteskTools/Types.h>

#include <stdbool.h>

VX_C_BEGIN

/// An unsigned 64-bit number: `mHigh` * 2^32 + `mLow`.
typedef struct vxULongLong {
    uint32_t mLow;   ///< low 32 bits
    uint32_t mHigh;  ///< high 32 bits
} vxULongLong;

/// Sets both words.
///
/// Threads:  one at a time for one record, as all of these operations.
VX_API void vxULongLong_Set(vxULongLong* aValue, uint32_t aHigh, uint32_t aLow);

/// Reads a decimal number that takes the whole text: an optional '+', then digits.
///
/// Fails:    false for any other text, for null and for a number of 2^64 and more; `aValue` keeps
///           what it had.
VX_API bool vxULongLong_SetFromString(vxULongLong* aValue, const char* aText);

/// Adds `anAddend` to `aValue`, modulo 2^64.
VX_API void vxULongLong_AddUInt32(vxULongLong* aValue, uint32_t anAddend);

/// Subtracts `aSubtrahend` from `aValue`, modulo 2^64; both may be the same record.
VX_API void vxULongLong_Sub(vxULongLong* aValue, const vxULongLong* aSubtrahend);

/// Tells whether `aLeft` < `aRight`.
VX_API bool vxULongLong_Less(const vxULongLong* aLeft, const vxULongLong* aRight);

/// Tells whether `aLeft` <= `aRight`.
VX_API bool vxULongLong_LessOrEqual(const vxULongLong* aLeft, const vxULongLong* aRight);

VX_C_END
