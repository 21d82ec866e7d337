#pragma once

// Bytes as printable text: a byte that cannot stand for itself becomes the escape character and two
// hexadecimal digits, as in "100%25".

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Marks the bytes that are escaped in the texts of property lists: those below 0x20, those from
/// 0x7F up, both quote characters and the backslash. One entry per byte, 0 where it stays.
extern VX_API const uint8_t kvxPropertListConvTable[256];

/// Returns `aSize` bytes as a text, in which each byte that `aTable` marks, the escape character and
/// NUL are the escape character with two upper-case hexadecimal digits.
///
/// The escape character must be no hexadecimal digit. No bytes give an allocated empty text; null
/// bytes or a null table give null.
///
/// Fails:    as vxMalloc(); null when that returns null or the text cannot be addressed.
/// Owner:    the caller, who releases the text with free().
/// Threads:  any.
/// Cost:     linear.
VX_API char* vxStringEscaper_EscapeBuffer(const void* aBytes, size_t aSize, const uint8_t* aTable,
                                          char anEscape);

/// Returns the bytes of an escaped text and stores their number in `aSize`; a NUL, which does not
/// count, follows them.
///
/// Nothing is refused: digits are taken in either case, and an escape character without two of them
/// behind it stands for itself. No table is needed. A null text gives null and 0 bytes.
///
/// Fails:    as vxMalloc(); null and 0 bytes when that returns null.
/// Owner:    the caller, who releases the bytes with free().
/// Threads:  any.
/// Cost:     linear.
VX_API void* vxStringEscaper_UnescapeBuffer(const char* aText, char anEscape, size_t* aSize);

VX_C_END
