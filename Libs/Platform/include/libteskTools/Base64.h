#pragma once

// Base64 as RFC 4648 has it: standard alphabet, padded to groups of four, no line breaks.

#include <libteskTools/Types.h>

#include <stdbool.h>

VX_C_BEGIN

/// Encodes bytes and returns the length of the text, which `aResult` receives with a NUL behind it.
///
/// No bytes give an allocated empty text.
///
/// Fails:    `aResult` becomes null and the result is 0 when there is no memory.
/// Owner:    the caller, who releases the text with free().
/// Threads:  any.
VX_API size_t vxBase64_Encode(const void* aBytes, size_t aLength, char** aResult);

/// Decodes a text and returns the number of bytes written to `aBytes`.
///
/// Room for as many bytes as the text is long always suffices; `aBytes` may be the text itself.
///
/// Fails:    0 for text that vxBase64_DecodeSized() refuses; bytes may have been written then.
/// Threads:  any.
VX_API size_t vxBase64_Decode(const char* aText, void* aBytes);

/// Decodes a text of `aLength` characters, which may lack a NUL, and stores the number of bytes in
/// `aSize`.
///
/// Only the one encoding of some bytes is accepted: whole groups of four, '=' only as the padding
/// of the last group, unused bits 0, no blanks or line breaks.
///
/// Fails:    false for any other text; `aSize` is 0 and bytes may have been written.
/// Threads:  any.
VX_API bool vxBase64_DecodeSized(const char* aText, size_t aLength, void* aBytes, size_t* aSize);

VX_C_END
