#pragma once

// Characters, numbers and dates as text. The locale never matters: letters, blanks and the decimal point
// are those of ASCII.

#include <libteskTools/Types.h>

/// A date as DLNA texts have it.
typedef struct vxDLNADate {
    int32_t mYear;         ///< full year, 0 to 9999
    int32_t mMonth;        ///< 1 to 12
    int32_t mDay;          ///< 1 to the length of the month
    int32_t mHour;         ///< 0 to 23
    int32_t mMinute;       ///< 0 to 59
    int32_t mSecond;       ///< 0 to 59
    int32_t mMillisecond;  ///< 0 to 999
    int32_t mZoneOffset;   ///< minutes east of UTC, -840 to 840; 0 where no zone is given
    bool mfHasZone;        ///< is a zone given? A date without one is in local time
} vxDLNADate;

VX_C_BEGIN

/// Returns whether a byte is whitespace, which is the blank and the bytes 9 to 13: 1 or 0.
///
/// `aChar` is the byte's value, 0 to 255; every other value gives 0.
/// Threads:  any.
VX_API int vxConvert_isspace(int aChar);

/// Returns whether a byte is a printable ASCII character, blank to tilde: 1 or 0.
///
/// Threads:  any.
VX_API int vxConvert_isprint(int aChar);

// The number converters read the whole text: an optional sign and at least one digit, no blanks and
// nothing behind. They return 0 and set the result, or return -1 and leave it alone: for a null or
// empty text, a byte that does not belong, and a value that the type cannot hold ("-0" is 0 for an
// unsigned type, "-1" fails).
//
// Threads:  any.

// Decimal numbers.

/// Reads -128 to 127.
VX_API int vxConvert_strtoint8(const char* aStr, int8_t* aResult);
/// Reads -32768 to 32767.
VX_API int vxConvert_strtoint16(const char* aStr, int16_t* aResult);
/// Reads a signed number of 32 bits.
VX_API int vxConvert_strtoint32(const char* aStr, int32_t* aResult);
/// Reads a signed number of 64 bits.
VX_API int vxConvert_strtoint64(const char* aStr, int64_t* aResult);
/// Reads 0 to 255.
VX_API int vxConvert_strtouint8(const char* aStr, uint8_t* aResult);
/// Reads 0 to 65535.
VX_API int vxConvert_strtouint16(const char* aStr, uint16_t* aResult);
/// Reads an unsigned number of 32 bits.
VX_API int vxConvert_strtouint32(const char* aStr, uint32_t* aResult);
/// Reads an unsigned number of 64 bits.
VX_API int vxConvert_strtouint64(const char* aStr, uint64_t* aResult);

// Numbers of base 2 to 36, letters in either case standing for the digits above 9. Base 0 lets the
// text choose: "0x" or "0X" in front means 16, another leading "0" means 8, anything else 10. No other
// base takes a prefix; a base outside these fails.

/// Reads -128 to 127 in the given base.
VX_API int vxConvert_strtoint8_base(const char* aStr, int8_t* aResult, int aBase);
/// Reads -32768 to 32767 in the given base.
VX_API int vxConvert_strtoint16_base(const char* aStr, int16_t* aResult, int aBase);
/// Reads a signed number of 32 bits in the given base.
VX_API int vxConvert_strtoint32_base(const char* aStr, int32_t* aResult, int aBase);
/// Reads a signed number of 64 bits in the given base.
VX_API int vxConvert_strtoint64_base(const char* aStr, int64_t* aResult, int aBase);
/// Reads 0 to 255 in the given base.
VX_API int vxConvert_strtouint8_base(const char* aStr, uint8_t* aResult, int aBase);
/// Reads 0 to 65535 in the given base.
VX_API int vxConvert_strtouint16_base(const char* aStr, uint16_t* aResult, int aBase);
/// Reads an unsigned number of 32 bits in the given base.
VX_API int vxConvert_strtouint32_base(const char* aStr, uint32_t* aResult, int aBase);
/// Reads an unsigned number of 64 bits in the given base.
VX_API int vxConvert_strtouint64_base(const char* aStr, uint64_t* aResult, int aBase);

/// Reads a decimal real number: digits with at most one point among, before or behind them, and an
/// optional exponent ("e" or "E", optional sign, digits). The nearest value is the result.
///
/// A value too small for a double is 0; one too large fails, and so do "inf", "nan" and hexadecimal.
VX_API int vxConvert_strtod(const char* aStr, double* aResult);

/// Reads a date as DLNA texts have it: "2015-06-30" or "2015-06-30T18:00:00", the latter with an
/// optional fraction of the second and an optional zone.
///
/// Fields have exactly the digits shown, and a date must be one of the calendar. The fraction is a
/// point and one digit or more, of which three count. The zone is "Z" or a difference from UTC up to
/// fourteen hours, such as "+02:00" or "-05:30". Nothing may stand in front or behind. What the text
/// does not give is 0.
///
/// Fails:    -1 for null and any other text, and `aResult` is left alone; otherwise 0.
/// Threads:  any.
VX_API int vxConvert_dlnadatestrtodate(const char* aStr, vxDLNADate* aResult);

VX_C_END
