#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Returns 1 when the whole text fits the pattern, otherwise 0.
///
/// The pattern is that of a shell, compared byte by byte, case included: `*` stands for any bytes, a
/// leading dot and slashes too; `?` for one byte; `[a-z]` for one of a set, which `!` or `^` in front
/// inverts and which may name classes of ASCII such as `[:digit:]`; a backslash takes the special
/// meaning off the next byte. A `[` without its `]` stands for itself, and a backslash at the end fits
/// nothing. It is what fnmatch() does in the C locale without flags, but for equivalence classes and
/// collating symbols. A null text or pattern gives 0.
///
/// Threads:  any.
/// Cost:     linear where no `?`, set or backslash stands behind a star; at most the product of both
///           lengths otherwise, whatever the number of stars.
VX_API int vxCStringParser_Match(const char* aStr, const char* aPattern);

VX_C_END
