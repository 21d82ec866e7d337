#pragma once

#include <stddef.h>
#include <wchar.h>

#include "vx/Api.h"

/// Holds one heap text and frees it with free(): how text that another library allocated, or that
/// is handed out for good, crosses an interface.
///
/// A copy takes the text away from its source, which is null afterwards; so there is always exactly
/// one owner, and a function may return the holder by value.
///
///     vxCharBuffer theText(vxSomething_GetText(), false);  // adopts what the call allocated
///
/// Owner:    the holder, until release() hands the text out.
/// Threads:  one at a time.
class VX_EXPORT vxCharBuffer {
public:
    /// Is null.
    vxCharBuffer() noexcept : mStr(NULL) {}

    /// Holds a duplicate of the text when `afCopy`, else the text itself; null stays null.
    ///
    /// Owner:    without `afCopy` the holder takes the text over and frees it with free().
    vxCharBuffer(const char* aStr, bool afCopy);

    /// Allocates `aLength` + 1 bytes and sets the last to NUL; the others are for the caller to fill.
    explicit vxCharBuffer(size_t aLength);

    /// Takes the text out of `aBuffer`, which is null afterwards.
    vxCharBuffer(const vxCharBuffer& aBuffer) noexcept : mStr(aBuffer.Take()) {}

    /// Frees the text.
    ~vxCharBuffer();

    /// Frees the old text and takes the one of `aBuffer`; assignment to itself does nothing.
    vxCharBuffer& operator=(const vxCharBuffer& aBuffer) noexcept;

    /// Frees the old text and holds a duplicate of `aStr`, which may lie in the old text.
    vxCharBuffer& operator=(const char* aStr);

    /// Returns the text, or null.
    operator const char*() const { return mStr; }

    /// Returns the text for writing, or null.
    char* data() { return mStr; }

    /// Hands the text out and leaves the holder null.
    ///
    /// Owner:    the caller, who frees it with free().
    char* release() { return Take(); }

private:
    char* Take() const {
        char* theStr = mStr;
        mStr = NULL;
        return theStr;
    }

    mutable char* mStr;  // owned, or null; a copy takes it from a source that it sees as const
};

/// Holds one heap text of wide characters; otherwise as vxCharBuffer. Lengths are characters.
///
/// Owner:    the holder, until release() hands the text out.
/// Threads:  one at a time.
class VX_EXPORT vxWCharBuffer {
public:
    /// Is null.
    vxWCharBuffer() noexcept : mStr(NULL) {}

    /// Holds a duplicate of the text when `afCopy`, else the text itself; null stays null.
    ///
    /// Owner:    without `afCopy` the holder takes the text over and frees it with free().
    vxWCharBuffer(const wchar_t* aStr, bool afCopy);

    /// Allocates `aLength` + 1 characters and sets the last to NUL.
    explicit vxWCharBuffer(size_t aLength);

    /// Takes the text out of `aBuffer`, which is null afterwards.
    vxWCharBuffer(const vxWCharBuffer& aBuffer) noexcept : mStr(aBuffer.Take()) {}

    /// Frees the text.
    ~vxWCharBuffer();

    /// Frees the old text and takes the one of `aBuffer`; assignment to itself does nothing.
    vxWCharBuffer& operator=(const vxWCharBuffer& aBuffer) noexcept;

    /// Frees the old text and holds a duplicate of `aStr`, which may lie in the old text.
    vxWCharBuffer& operator=(const wchar_t* aStr);

    /// Returns the text, or null.
    operator const wchar_t*() const { return mStr; }

    /// Returns the text for writing, or null.
    wchar_t* data() { return mStr; }

    /// Hands the text out and leaves the holder null.
    ///
    /// Owner:    the caller, who frees it with free().
    wchar_t* release() { return Take(); }

private:
    wchar_t* Take() const {
        wchar_t* theStr = mStr;
        mStr = NULL;
        return theStr;
    }

    mutable wchar_t* mStr;  // owned, or null; a copy takes it from a source that it sees as const
};
