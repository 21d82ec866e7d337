#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// Reports a broken promise of the caller: the condition's text, the source file and the line.
///
/// The report goes to the assertion handler, else to standard error. Execution continues
/// afterwards, unless the environment variable VXASSERT is "abort".
///
/// Threads:  any.
VX_API void _vxAssert(const char* aCondition, const char* aFile, int aLine) __attribute__((cold));

VX_C_END

/// Reports `aCondition`, as written, when it does not hold, and goes on.
#define VXASSERT(aCondition) \
    ((aCondition) ? static_cast<void>(0) : _vxAssert(#aCondition, __FILE__, __LINE__))

/// Reports `aText` when `aCondition` does not hold, and goes on.
#define VXASSERT_TEXT(aCondition, aText) \
    ((aCondition) ? static_cast<void>(0) : _vxAssert(aText, __FILE__, __LINE__))

/// Is true when `aCondition` holds; otherwise reports it, as written, and is false.
///
///     if (!VXCHECK(anIndex < mCount)) {
///         return NULL;
///     }
#define VXCHECK(aCondition) \
    ((aCondition) ? true : (_vxAssert(#aCondition, __FILE__, __LINE__), false))
