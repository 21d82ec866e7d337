#pragma once

#include "vx/Api.h"
#include "vx/CString.h"

/// Turns a text into printable gibberish and back: RC4, then base64 (RFC 4648).
///
/// It keeps values from being read at a glance in configuration files; it does not protect them. The
/// key is the caller's, and no salt is added: the same text and key always give the same result.
///
/// Enciphered bytes count up to the first zero among them, so a text whose enciphered form has one
/// does not come back whole. Programs hold such values: the rule stays.
///
/// Threads:  any.
class VX_EXPORT vxObfuscate {
public:
    /// Returns the obfuscated text; an empty text gives an empty one. The text ends at its first NUL.
    /// A null or empty key leaves the identity schedule, so the text is only scrambled by position.
    ///
    /// Fails:    reports the fatal error "memory:malloc"; the result is empty then.
    static vxCString To_B64RC4(const vxCString& aText, const char* aKey);

    /// Returns the plain text. A text that is no base64, or a wrong key, is not noticed: the result is
    /// what decoding and deciphering give.
    static vxCString From_B64RC4(const vxCString& aText, const char* aKey);
};
