#pragma once

// Characters and numbers as text. The locale never matters: letters, blanks and the decimal point
// are those of ASCII.

#include <libteskTools/Types.h>

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

VX_C_END
