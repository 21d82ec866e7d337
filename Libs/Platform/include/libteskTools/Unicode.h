#pragma once

// UTF-8 and wide text. Valid UTF-8 is that of RFC 3629: shortest forms only, no surrogates, nothing
// above U+10FFFF. A wide character is one whole code point.

#include <libteskTools/Types.h>

#include <wchar.h>

VX_C_BEGIN

/// Converts `aLength` bytes of UTF-8 into wide characters; NUL bytes count as characters and no
/// terminating NUL is added.
///
/// With `aWide` null the text is only checked and measured. `aWritten`, unless null, receives the
/// number of characters: all of them on success, those before the failure otherwise.
///
/// Fails:    -1 when the text is not valid, or needs more than `aCapacity` characters.
/// Threads:  any.
VX_API int vxUnicode_UTF8ToWide(const char* aStr, size_t aLength, wchar_t* aWide, size_t aCapacity,
                                size_t* aWritten);

/// Removes every byte that is no part of a valid character, in place, and returns the length left.
///
/// No NUL is added behind the text.
/// Threads:  any.
/// Cost:     linear.
VX_API size_t vxUTF_MakeValidUTF8(char* aStr, size_t aLength);

/// Converts a text from UTF-8; bytes that are no part of a valid character are left out. Null gives
/// null.
///
/// Owner:    the caller, who releases the text with free().
/// Threads:  any.
VX_API wchar_t* vxWString_S_FromUTF8(const char* aStr);

/// Converts a wide text to UTF-8; values that are no character are left out. Null gives null.
///
/// Owner:    the caller, who releases the text with free().
/// Threads:  any.
VX_API char* vxWString_S_ToUTF8(const wchar_t* aStr);

VX_C_END
