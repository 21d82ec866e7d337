#pragma once

#include <libteskTools/Types.h>
#include <libvxLog/Assert.h>

#include <cstdarg>
#include <cstring>
#include <utility>

#include "vx/Api.h"
#include "vx/CharBuffer.h"

/// Slack that a block for a text of X bytes gets: its capacity is X rounded down to a multiple of
/// 16, plus 19.
#define vxxString_Extra(X) (19 - ((X) % 16))

/// Header of a text block that strings share.
///
/// An ordinary block is one allocation: this header, the text, its NUL. A special block wraps text
/// that need not be its own: this header and one pointer to it. Concatenations are special blocks
/// with the exact text behind that pointer, so that one allocation holds them. The one shared empty
/// block is static.
///
/// Threads:  one at a time; the count is a plain integer.
struct vxCStringData {
    /// Sharers; -1 the shared empty block; 0 while a write buffer is out; special blocks start at 2.
    int32_t mRefCount;
    /// Bytes of text, without the NUL.
    size_t mStringLength;
    /// Capacity in bytes of text, or the kind of a special block.
    size_t mAllocatedLength;

    /// Is it the shared empty block? A block whose text has no bytes need not be.
    bool IsEmpty() const { return mRefCount == -1; }
    /// Has it several sharers?
    bool IsShared() const { return mRefCount > 1; }
    /// Is no write buffer out?
    bool IsValid() const { return mRefCount != 0; }
    /// Does it point at its text?
    bool IsSpecial() const { return mAllocatedLength >= static_cast<size_t>(-2); }

    /// Counts one more sharer; the shared empty block counts nobody.
    void Lock() { mRefCount += mRefCount != -1; }
    /// Sets the count to 1, or to 0 while a write buffer is out.
    void Validate(bool afValid) { mRefCount = afValid ? 1 : 0; }

    /// Returns the text: behind the header, or where a special block points.
    char* StringPtr() {
        void* theRest = this + 1;
        return IsSpecial() ? *static_cast<char**>(theRest) : static_cast<char*>(theRest);
    }
};

/// The block of every empty string. Nothing is ever written to it; its text is longer than its NUL
/// only so that compilers which see a write behind a test of the count do not take it for an overflow.
struct _vxEmptyCStringBlock {
    vxCStringData mData;  ///< count -1, length and capacity 0
    char mText[16];       ///< zeros
};
extern VX_EXPORT const _vxEmptyCStringBlock _vxEmptyBlock;

/// The empty text that every empty string points at.
extern VX_EXPORT const char* const vxEmptyCString;

/// A text of bytes, the string type of every interface.
///
/// Copies share one block and cost a pointer and a count; a string copies the text only when it is
/// about to change it. A text always ends with a NUL, and NULs inside it count as bytes: lengths are
/// stored, not measured. Nothing interprets the bytes unless asked to; case and blanks are those of
/// ASCII, whatever the locale.
///
/// Positions and lengths are bytes. Searches answer `npos` when nothing is found. A null text counts
/// as the empty text. Text handed to an operation may be part of the string itself.
///
///     vxCString theLine("name=value");
///     vxCString theName = theLine.BeforeFirst('=');   // "name"
///     vxCString theCopy = theLine;                    // shares the block
///     theCopy += ";";                                 // has its own from here on
///
/// Capacity does not double. A block for n bytes holds n rounded down to a multiple of 16, plus 19:
/// appending byte by byte reallocates once every 16 bytes. To build a long text of unknown length,
/// use vxGrowingBuffer.
///
/// Threads:  one at a time, for all the strings that share a block. A string crosses threads as a
///           deep copy, made from c_str(), or under a lock.
class VX_EXPORT vxCString {
public:
    /// No position; as a length: up to the terminating NUL.
    static constexpr size_t npos = static_cast<size_t>(-1);

    /// Stands for the capacity of a special block whose text is owned.
    static constexpr size_t kvxAllocatedString = npos;
    /// Stands for the capacity of a special block whose text is static.
    static constexpr size_t kvxStaticString = npos - 1;
    /// The lowest number that stands for a kind rather than a capacity.
    static constexpr size_t kvxSpecialString = npos - 1;

    /// What ValidateUTF8() does; modes may be combined.
    enum {
        kvxEmpty = 1,         ///< text that is not valid is emptied
        kvxKeep = 2,          ///< nothing
        kvxKeepValid = 4,     ///< bad bytes are dropped
        kvxKeepPrintable = 8  ///< what does not print is dropped
    };

    // Construction

    /// The empty string, which allocates nothing.
    vxCString() noexcept { Init(); }
    /// Copies a text up to its NUL.
    vxCString(const char* aStr) { Construct(aStr, 0, npos); }
    /// Copies `aLength` bytes, as InitWith().
    vxCString(const char* aStr, size_t aLength) { Construct(aStr, 0, aLength); }
    /// Copies `aLength` bytes from `aStr` + `aPos`, as InitWith().
    vxCString(const char* aStr, size_t aPos, size_t aLength) { Construct(aStr, aPos, aLength); }
    /// A text of one byte, NUL included.
    vxCString(char aChar) { Construct(&aChar, 0, 1); }

    /// Shares the block of `aCString`.
    ///
    /// Asserts:  aCString.mCStringData->IsValid(); the copy is empty then.
    /// Cost:     constant.
    vxCString(const vxCString& aCString) {
        VXASSERT(aCString.mCStringData->IsValid());
        Share(aCString);
    }

    /// Takes the block over and leaves `aCString` empty.
    ///
    /// Asserts:  as the copy; `aCString` keeps its write buffer then.
    vxCString(vxCString&& aCString) noexcept : vxCString() { TakeFrom(aCString); }

    /// Releases the block, and frees it where no other string shares it.
    ~vxCString() { Unlock(); }

    /// Replaces the text by `aLength` bytes from `aStr` + `aPos`.
    ///
    /// With `npos` the text ends at its NUL; an explicit length copies raw bytes, NULs included, and
    /// is not checked against the source. A null text gives the empty string, and is logged at debug
    /// level when a position or a length comes with it.
    ///
    /// Asserts:  with `npos`: aPos <= strlen(aStr), where null counts as the empty text; the string is
    ///           empty then.
    void InitWith(const char* aStr, size_t aPos, size_t aLength);

    /// Points at the empty block and forgets the old one without releasing it; for a string whose
    /// block has gone elsewhere. Use Reinit() for any other.
    void Init() noexcept {
        mCStringData = const_cast<vxCStringData*>(&_vxEmptyBlock.mData);
        mStringPtr = const_cast<char*>(_vxEmptyBlock.mText);
    }

    /// Releases the block and points at the empty one.
    void Reinit() {
        Unlock();
        Init();
    }

    /// Shares the block of `aCString`.
    ///
    /// Asserts:  aCString.mCStringData->IsValid(); the string is empty then.
    /// Cost:     constant.
    vxCString& operator=(const vxCString& aCString);
    /// Takes the block over and leaves `aCString` empty.
    vxCString& operator=(vxCString&& aCString) noexcept;
    /// Copies a text up to its NUL, into the old block where it fits.
    vxCString& operator=(const char* aStr);
    /// Becomes a text of one byte.
    vxCString& operator=(char aChar);

    /// Wraps a text without copying it.
    ///
    /// A change copies the text first. SetCharAt() alone writes in place: never use it on a wrapped
    /// literal.
    ///
    /// Owner:    the caller; the text must outlive every string that shares the block.
    static vxCString FromStaticString(const char* aStr);

    /// Adopts a heap text without copying it; an empty one is freed at once.
    ///
    /// Owner:    the block, which frees the text with free() when its last string goes.
    static vxCString FromAllocatedString(const char* aStr);

    /// Exchanges the blocks.
    void Swap(vxCString& aCString) noexcept {
        std::swap(mStringPtr, aCString.mStringPtr);
        std::swap(mCStringData, aCString.mCStringData);
    }

    /// Hands out a buffer of at least `aLength` + 1 bytes for the caller to write a text into.
    ///
    /// Until UngetWriteBuf() the string may neither be copied nor used otherwise. See vxCStringBuffer,
    /// which gives the buffer back by itself.
    ///
    /// Asserts:  aLength != 0; the buffer then has room for one byte of text.
    char* GetWriteBuf(size_t aLength);

    /// Takes the buffer back; the text ends at its NUL.
    void UngetWriteBuf();

    /// Takes the buffer back with `aLength` bytes of text, at most its capacity; the NUL is added.
    void UngetWriteBuf(size_t aLength);

    // Access

    /// Returns the text, never null.
    const char* c_str() const { return mStringPtr; }
    /// Returns the text, never null.
    operator const char*() const { return mStringPtr; }
    /// Returns the bytes of text, without the terminating NUL.
    size_t length() const { return mCStringData->mStringLength; }
    /// Has the text no bytes?
    bool IsEmpty() const { return length() == 0; }

    /// Returns the first byte, or 0.
    char First() const { return mStringPtr[0]; }
    /// Returns the last byte, or 0.
    char Last() const { return IsEmpty() ? '\0' : mStringPtr[length() - 1]; }

    /// Overwrites a byte of the block itself; false when `aPos` is not below the length.
    ///
    /// Every string that shares the block sees the change: programs depend on it. To change this
    /// string alone, use Replace(aPos, 1, &aChar, 1). On a wrapped literal it is misuse.
    bool SetCharAt(char aChar, int aPos);

    // Searching. A start position beyond the length is reported and nothing is found.

    /// Returns the first occurrence at or after `aStartPos`; an empty needle is nowhere.
    ///
    /// Asserts:  aCString.mCStringData->IsValid(); aStartPos <= length().
    size_t Find(const vxCString& aCString, size_t aStartPos = 0) const;

    /// As Find(), for a needle of `aLength` bytes.
    size_t FindStr(const char* aStr, size_t aLength, size_t aStartPos = 0) const;

    /// As Find(), for a needle that ends at its NUL.
    size_t FindFirstStr(const char* aStr, size_t aStartPos = 0) const;

    /// Returns the last occurrence that ends at or before `aStartPos`; `npos` is the length.
    ///
    /// An empty needle is found at `aStartPos` itself, but nothing is found from 0.
    ///
    /// Asserts:  aStartPos <= length().
    size_t FindLastStr(const char* aStr, size_t aStartPos = npos) const;

    /// As Find(), with the letters of ASCII equal in either case, but a candidate must begin before
    /// length() - `aStartPos`.
    ///
    /// So with a start other than 0 the last `aStartPos` bytes are never candidates. Programs depend
    /// on which matches this yields; to reach the end, search Mid(aStartPos) from 0.
    ///
    /// Asserts:  aStartPos <= length().
    size_t FindNoCase(const vxCString& aStr, size_t aStartPos = 0) const;

    /// Returns the first byte at or after `aStartPos` that is in the set.
    ///
    /// Asserts:  aStartPos <= length().
    size_t FindFirstOf(const char* aSet, size_t aStartPos = 0) const;

    /// Returns the last byte at or before `aStartPos` that is in the set; `npos` is the last byte.
    ///
    /// Asserts:  aStartPos <= length(), unless it is `npos`.
    size_t FindLastOf(const char* aSet, size_t aStartPos = npos) const;

    /// Returns the first byte at or after `aStartPos` that is not in the set; from `npos` none is.
    ///
    /// Asserts:  aStartPos <= length(), unless it is `npos`.
    size_t FindFirstNotOf(const char* aSet, size_t aStartPos = 0) const;

    /// Returns the first or the last place of a byte; NUL is nowhere.
    size_t Find(char aChar, bool afFromEnd = false) const;
    /// Returns the first place of a byte; NUL is nowhere.
    size_t First(char aChar) const { return Find(aChar, false); }

    /// Does the text occur? The empty one never does.
    bool Contains(const char* aStr) const { return FindFirstStr(aStr, 0) != npos; }

    /// Returns how often the byte occurs.
    size_t Freq(char aChar) const;

    // Extraction; this string stays as it is.

    /// Returns the text after the first occurrence, or the empty string when there is none.
    ///
    /// AfterFirst and BeforeLast answer empty when nothing is found, AfterLast and BeforeFirst the
    /// whole text. Callers lean on the difference: BeforeFirst('=') and AfterFirst('=') split
    /// "verbose" into the name "verbose" and no value, without asking whether a '=' is there.
    vxCString AfterFirst(char aChar) const;
    /// As AfterFirst() of a byte.
    vxCString AfterFirst(const vxCString& aStr) const;

    /// Returns the text after the last occurrence, or the whole text when there is none.
    vxCString AfterLast(char aChar) const;
    /// As AfterLast() of a byte.
    vxCString AfterLast(const vxCString& aStr) const;

    /// Returns the text before the first occurrence, or the whole text when there is none.
    vxCString BeforeFirst(char aChar) const;
    /// As BeforeFirst() of a byte.
    vxCString BeforeFirst(const vxCString& aStr) const;
    /// As BeforeFirst() of a byte.
    vxCString BeforeFirst(const char* aStr) const;

    /// Returns the text before the last occurrence, or the empty string when there is none.
    vxCString BeforeLast(char aChar) const;
    /// As BeforeLast() of a byte.
    vxCString BeforeLast(const vxCString& aStr) const;
    /// As BeforeLast() of a byte.
    vxCString BeforeLast(const char* aStr) const;

    /// Returns up to `aCount` bytes from `aPos`; the empty string beyond the end.
    vxCString Mid(size_t aPos, size_t aCount = npos) const;
    /// Returns the first `aCount` bytes, or the whole text where it is shorter.
    vxCString Left(size_t aCount) const { return Mid(0, aCount); }
    /// Returns the last `aCount` bytes, or the whole text where it is shorter.
    vxCString Right(size_t aCount) const {
        return aCount < length() ? Mid(length() - aCount) : Mid(0);
    }

    // Modification

    /// Appends a text, NULs inside it included.
    vxCString& operator+=(const vxCString& aStr) {
        ConcatSelf(aStr.length(), aStr.mStringPtr, npos);
        return *this;
    }
    /// Appends a text up to its NUL.
    vxCString& operator+=(const char* aStr) {
        ConcatSelf(aStr == NULL ? 0 : strlen(aStr), aStr, npos);
        return *this;
    }
    /// Appends a byte.
    vxCString& operator+=(char aChar) {
        const size_t theLength = length();
        if (mCStringData->mRefCount == 1 && theLength < mCStringData->mAllocatedLength) {
            mStringPtr[theLength] = aChar;
            SetLength(theLength + 1);
        } else {
            ConcatSelf(1, &aChar, 1);
        }
        return *this;
    }

    /// Appends the smaller of `aLength` and `aMax` bytes.
    void ConcatSelf(size_t aLength, const char* aStr, size_t aMax);

    /// Inserts `aLength` bytes at `aPos`; with `npos` the text ends at its NUL.
    ///
    /// Asserts:  aPos <= length(); the text goes to the end then.
    vxCString& Insert(size_t aPos, const char* aStr, size_t aLength = npos);

    /// Removes up to `aCount` bytes from `aPos`.
    ///
    /// Asserts:  aPos <= length(); nothing is removed then.
    vxCString& Erase(size_t aPos, size_t aCount = npos);

    /// Cuts the text to `aLength` bytes.
    ///
    /// Asserts:  as Erase(), when the text is shorter.
    vxCString& Truncate(size_t aLength) { return Erase(aLength, npos); }
    /// Empties the string and gives its memory back.
    vxCString& Empty() { return Truncate(0); }
    /// Empties the string and gives its memory back.
    void clear() { Reinit(); }

    /// Puts `aLength` bytes in place of up to `aCount` bytes at `aPos`; with an `aLength` of `npos` the
    /// new text ends at its NUL.
    ///
    /// Asserts:  aPos <= length(); the text goes to the end then.
    vxCString& Replace(size_t aPos, size_t aCount, const char* aStr, size_t aLength = npos);

    /// Replaces the first occurrence of `aOld`, or all of them from left to right, and returns how
    /// many there were.
    ///
    /// Replaced text is not searched again. A NUL byte at the start, or right behind a replaced
    /// occurrence, ends the search. An empty `aOld` is nowhere.
    ///
    /// Cost:     linear, with one allocation or a few.
    size_t Replace(const char* aOld, const char* aNew, bool afAll = true);

    /// Adds `aCount` copies of a byte, at the end or at the front.
    vxCString& Pad(size_t aCount, char aChar = ' ', bool afAtEnd = true);

    /// Removes whitespace at the end (`afFromRight`) or at the front.
    vxCString& Trim(bool afFromRight);
    /// Removes whitespace at both ends.
    vxCString& TrimLeftRight();

    /// Returns the text with small letters as capitals.
    vxCString Upper() const;
    /// Returns the text with capital letters as small ones.
    vxCString Lower() const;

    /// Returns the text with every run of whitespace as one blank, also at both ends.
    vxCString TrimTo1Space() const;

    /// Replaces the text by a formatted one and returns the new length. Arguments may be taken from
    /// the string itself.
    ///
    /// Fails:    a format that cannot be honoured leaves what was written until then.
    size_t Printf(const char* aFormat, ...) VX_PRINTF(2, 3);
    /// As Printf(); the list may be used again.
    size_t PrintfV(const char* aFormat, va_list anArgs) VX_PRINTF(2, 0);
    /// Returns a formatted text.
    static vxCString Format(const char* aFormat, ...) VX_PRINTF(1, 2);

    /// Mends a text that is not valid UTF-8 as `aMode` says, and returns the string itself.
    ///
    /// kvxEmpty empties it, kvxKeepValid drops the bad bytes. kvxKeepPrintable then walks any text:
    /// ASCII bytes that do not print go, and so does a sequence that is cut short or has a wrong
    /// continuation, with as many bytes as its lead byte announces; other bytes stay.
    ///
    /// Cost:     linear.
    vxCString& ValidateUTF8(int aMode);
    /// Is the whole text valid UTF-8, as RFC 3629 has it?
    bool IsValidUTF8() const;

    // Comparison

    /// Compares bytes: below, equal to or above 0. The start of a longer text is smaller: -1, +1.
    int Compare(const vxCString& aStr) const;

    /// Compares up to the first NUL of either text.
    ///
    /// Asserts:  aStr != NULL; it counts as the empty text.
    int Compare(const char* aStr) const;

    /// As Compare(), with the letters of ASCII equal in either case: exactly -1, 0 or 1.
    int CompareNoCase(const vxCString& aStr) const;
    /// As above, up to the NUL of `aStr`; null counts as the empty text.
    int CompareNoCase(const char* aStr) const;

    /// Are all bytes the same?
    bool operator==(const vxCString& aStr) const {
        return length() == aStr.length() && HasSameBytes(aStr);
    }
    /// Is Compare() 0?
    bool operator==(const char* aStr) const { return Compare(aStr) == 0; }
    /// Does any byte differ?
    bool operator!=(const vxCString& aStr) const { return !(*this == aStr); }
    /// Is Compare() not 0?
    bool operator!=(const char* aStr) const { return Compare(aStr) != 0; }

    // Checks and numbers

    /// Is every byte '0' to '9'? True for the empty string.
    bool HasOnlyNumbers() const;
    /// Is every byte a hexadecimal digit? True for the empty string.
    bool HasOnlyHexa() const;

    // The whole text must be a number that the type can hold: an optional sign and digits, no blanks.
    // Otherwise the result is false and the target untouched. Base 0 reads a prefix "0x" or "0".

    /// Reads -128 to 127.
    bool ToInt8(int8_t* aResult) const;
    /// Reads -32768 to 32767.
    bool ToInt16(int16_t* aResult) const;
    /// Reads a signed number of 32 bits.
    bool ToInt32(int32_t* aResult, int aBase = 10) const;
    /// Reads a signed number of 64 bits.
    bool ToInt64(int64_t* aResult, int aBase = 10) const;
    /// Reads 0 to 255.
    bool ToUInt8(uint8_t* aResult) const;
    /// Reads 0 to 65535.
    bool ToUInt16(uint16_t* aResult) const;
    /// Reads an unsigned number of 32 bits.
    bool ToUInt32(uint32_t* aResult, int aBase = 10) const;
    /// Reads an unsigned number of 64 bits.
    bool ToUInt64(uint64_t* aResult, int aBase = 10) const;
    /// Reads a decimal number with an optional point and exponent; never "inf", "nan" or hexadecimal.
    bool ToDouble(double* aResult) const;

    // Wide text

    /// Returns the text up to its first NUL in wide characters; bytes that are no valid UTF-8 are
    /// left out.
    vxWCharBuffer ToWideChar() const;

    /// Returns a wide text in UTF-8; values that are no character are left out.
    static vxCString FromWideChar(const wchar_t* aStr);

    /// Concatenates two texts into a special block with exactly their bytes; one allocation.
    static vxCString _Concat(const char* aLeft, size_t aLeftLength, const char* aRight,
                             size_t aRightLength);

private:
    void Construct(const char* aStr, size_t aPos, size_t aLength);
    bool HasSameBytes(const vxCString& aStr) const;
    void Share(const vxCString& aCString);
    void TakeFrom(vxCString& aCString) noexcept;
    void SetLength(size_t aLength) {
        mCStringData->mStringLength = aLength;
        mStringPtr[aLength] = '\0';
    }
    static vxCString Wrap(char* aStr, size_t aLength, size_t aKind);

    // Blocks
    bool AllocBuffer(size_t aLength);
    bool AllocInlineBlock(size_t aLength);
    static bool HasInlineText(vxCStringData* aBlock);
    bool ReallocBuffer(size_t aLength);
    bool Alloc(size_t aLength);
    bool AllocBeforeWrite(size_t aLength);
    bool CopyBeforeWrite();
    void Fit();
    void AssignCopy(size_t aLength, const char* aStr);
    size_t FindLast(const char* aStr, size_t aLength, size_t anEnd) const;
    void Splice(size_t aPos, size_t aCount, const char* aStr, size_t aLength);
    void AppendGrowing(const char* aStr, size_t aLength);
    bool IsOwned() const { return mCStringData->mRefCount == 1 || !mCStringData->IsValid(); }
    bool Holds(const char* aStr) const;
    void Unlock() {
        if (mCStringData->mRefCount != -1) {
            UnlockBlock(mCStringData);
        }
    }
    static void UnlockBlock(vxCStringData* aBlock);

    vxCString& TrimEnds(bool afLeft, bool afRight);
    void DropUnprintable();

    char* mStringPtr;             // the text of mCStringData
    vxCStringData* mCStringData;  // never null
};

// For texts of the same length. Titles and paths that differ often begin alike: the end comes first.
inline bool vxCString::HasSameBytes(const vxCString& aStr) const {
    const size_t theLength = length();
    uint64_t theEnd, theOtherEnd;
    if (theLength >= sizeof(theEnd)) {
        memcpy(&theEnd, mStringPtr + theLength - sizeof(theEnd), sizeof(theEnd));
        memcpy(&theOtherEnd, aStr.mStringPtr + theLength - sizeof(theEnd), sizeof(theEnd));
        if (theEnd != theOtherEnd) {
            return false;
        }
    }
    return mStringPtr == aStr.mStringPtr || memcmp(mStringPtr, aStr.mStringPtr, theLength) == 0;
}

inline void vxCString::Share(const vxCString& aCString) {
    // A block whose write buffer is out has no length, and so is never shared.
    if (aCString.IsEmpty()) {
        Init();
    } else {
        mStringPtr = aCString.mStringPtr;
        mCStringData = aCString.mCStringData;
        mCStringData->mRefCount++;
    }
}

/// Returns both texts in one; the result is a special block.
inline vxCString operator+(const vxCString& aLeft, const vxCString& aRight) {
    return vxCString::_Concat(aLeft.c_str(), aLeft.length(), aRight.c_str(), aRight.length());
}
/// As above.
inline vxCString operator+(const vxCString& aLeft, const char* aRight) {
    return vxCString::_Concat(aLeft.c_str(), aLeft.length(), aRight,
                              aRight == NULL ? 0 : strlen(aRight));
}
/// As above.
inline vxCString operator+(const char* aLeft, const vxCString& aRight) {
    return vxCString::_Concat(aLeft, aLeft == NULL ? 0 : strlen(aLeft), aRight.c_str(),
                              aRight.length());
}
/// As above.
inline vxCString operator+(const vxCString& aLeft, char aRight) {
    return vxCString::_Concat(aLeft.c_str(), aLeft.length(), &aRight, 1);
}
/// As above.
inline vxCString operator+(char aLeft, const vxCString& aRight) {
    return vxCString::_Concat(&aLeft, 1, aRight.c_str(), aRight.length());
}

/// As vxCString::operator==().
inline bool operator==(const char* aLeft, const vxCString& aRight) {
    return aRight == aLeft;
}
/// As vxCString::operator!=().
inline bool operator!=(const char* aLeft, const vxCString& aRight) {
    return aRight != aLeft;
}

/// Orders texts by their bytes, so that strings can be keys.
inline bool operator<(const vxCString& aLeft, const vxCString& aRight) {
    return aLeft.Compare(aRight) < 0;
}

/// Lends the write buffer of a string for the length of a scope.
///
///     {
///         vxCStringBuffer theBuffer(theText, 255);
///         vxSomething_Fill(theBuffer, 256);
///     }   // theText now ends at the NUL
///
/// Threads:  as the string.
class VX_EXPORT vxCStringBuffer {
public:
    /// As vxCString::GetWriteBuf().
    vxCStringBuffer(vxCString& aString, size_t aLength)
        : mString(aString), mBuffer(aString.GetWriteBuf(aLength)) {}
    /// Gives the buffer back; the text ends at its NUL.
    ~vxCStringBuffer() { mString.UngetWriteBuf(); }
    vxCStringBuffer(const vxCStringBuffer&) = delete;
    vxCStringBuffer& operator=(const vxCStringBuffer&) = delete;

    /// Returns the buffer.
    operator char*() const { return mBuffer; }

private:
    vxCString& mString;
    char* mBuffer;  // of mString
};
