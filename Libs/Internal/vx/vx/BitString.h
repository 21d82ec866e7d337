#pragma once

#include <libteskTools/Types.h>
#include <libvxLog/Assert.h>

#include <cstring>

#include "vx/Api.h"

class vxuint64;

/// Reads bit fields, the most significant bit of each byte first.
///
///     vxBitString theBits(theHeader, theSize);
///     theBits.Skip(12);                             // sync word
///     const uint32_t theLayer = theBits.Get(2);
///     const uint32_t theWidth = theBits.GetUE();    // Exp-Golomb
///
/// Reading past the end is harmless: missing bits read as 0 and the reader is empty afterwards.
///
/// Owner:    the caller keeps the bytes alive and unchanged while they are read.
/// Threads:  one at a time; nothing is locked.
class VX_EXPORT vxBitString {
public:
    /// Makes a reader without bits.
    vxBitString() noexcept { SetBuffer(NULL, 0); }

    /// Reads `aByteCount` bytes; null counts as no bytes.
    vxBitString(const uint8_t* aBuffer, size_t aByteCount) { SetBuffer(aBuffer, aByteCount); }

    /// Starts over with other bytes and forgets the bookmark.
    ///
    /// Bits are counted in a size_t: bytes whose bits it cannot count are left out.
    void SetBuffer(const uint8_t* aBuffer, size_t aByteCount) {
        const size_t theMaximum = SIZE_MAX / 8;
        const size_t theByteCount = aBuffer == NULL ? 0 : aByteCount;
        mBuffer = aBuffer;
        mBufferSize = (theByteCount < theMaximum ? theByteCount : theMaximum) * 8;
        mInitialBufferSize = mBufferSize;
        mLastByte = 0;
        mLastByteSize = 0;
        mfBookmarked = false;
        mBookmarkedBuffer = NULL;
        mBookmarkedBufferSize = 0;
        mBookmarkedLastByte = 0;
        mBookmarkedLastByteSize = 0;
    }

    /// Returns the next bits as a number, the first one on top.
    ///
    /// With fewer bits left than asked for, the missing ones are 0 at the low end.
    ///
    /// Asserts:  (aBitCount > 0) && (aBitCount <= 32); 0 bits give 0, of more than 32 bits all are
    ///           read and the last 32 returned.
    uint32_t Get(uint8_t aBitCount) {
        VXASSERT((aBitCount > 0) && (aBitCount <= 32));
        // Far from the end any field lies within the eight bytes at the current one.
        if (aBitCount - 1U < 32 && mBufferSize >= 64) {
            const uint64_t theWindow = Window();
            Advance(aBitCount);
            return static_cast<uint32_t>(theWindow >> (64 - aBitCount));
        }
        const uint32_t theBits = Assemble(State(), aBitCount);
        Skip(aBitCount);
        return theBits;
    }

    /// Returns what Get() would, without moving.
    ///
    /// The reader has one bookmark, and peeking uses it: one that was set before is gone.
    ///
    /// Asserts:  as Get().
    uint32_t Peek(uint8_t aBitCount) {
        ToggleMarker(true);
        const uint32_t theBits = Get(aBitCount);
        ToggleMarker(false);
        return theBits;
    }

    /// Moves on; past the end the reader is empty.
    ///
    /// Cost:     constant.
    void Skip(size_t aBitCount) {
        const size_t theRemaining = GetRemainingBitCount();
        if (aBitCount > 0 && theRemaining > 0) {
            Advance(aBitCount < theRemaining ? aBitCount : theRemaining);
        }
    }

    /// Moves on by up to 32 bits; past the end the reader is empty.
    ///
    /// Asserts:  aBitCount <= 32; more are skipped all the same.
    void SkipSmall(size_t aBitCount);

    /// Reads an unsigned Exp-Golomb code: n zeros, a one, and n bits; the result is 2^n - 1 plus
    /// those bits as a number.
    ///
    /// More than 31 zeros give 0 and end after the one that closes them. Where the bits run out
    /// before that one, the zeros seen so far count as n.
    uint32_t GetUE() {
        if (mBufferSize >= 64) {
            const uint64_t theWindow = Window();
            const unsigned theZeros = static_cast<unsigned>(__builtin_clzll(theWindow | 1));
            if (theZeros <= kvxMaxWindowZeros) {
                Advance(2 * theZeros + 1);
                return static_cast<uint32_t>(theWindow >> (63 - 2 * theZeros)) - 1;
            }
        }
        const Code theCode = ReadCode(State());
        Skip(theCode.mLength);
        return theCode.mValue;
    }

    /// Reads a signed Exp-Golomb code: 0, 1, -1, 2, -2 and so on for the unsigned codes 0, 1, 2, 3,
    /// 4.
    int32_t GetSE() {
        const uint32_t theCode = GetUE();
        const int32_t theHalf = static_cast<int32_t>(theCode / 2);
        return theCode % 2 == 1 ? theHalf + 1 : -theHalf;
    }

    /// Sets the bookmark here, or goes back to it and forgets it; going back without a bookmark
    /// does nothing.
    void ToggleMarker(bool afSet) {
        if (afSet) {
            mBookmarkedBuffer = mBuffer;
            mBookmarkedBufferSize = mBufferSize;
            mBookmarkedLastByte = mLastByte;
            mBookmarkedLastByteSize = mLastByteSize;
        } else if (mfBookmarked) {
            mBuffer = mBookmarkedBuffer;
            mBufferSize = mBookmarkedBufferSize;
            mLastByte = mBookmarkedLastByte;
            mLastByteSize = mBookmarkedLastByteSize;
        }
        mfBookmarked = afSet;
    }

    /// Returns the number of bits that are still to be read.
    size_t GetRemainingBitCount() const { return mBufferSize + mLastByteSize; }

    /// Drops the unread bits of the current byte; between two bytes it does nothing.
    void ByteAlign() { mLastByteSize = 0; }

    /// Returns the number of bytes of which at least one bit has been read or skipped.
    size_t GetByteOffset() const { return (mInitialBufferSize - mBufferSize) / 8; }

    /// Reads a number of three bytes, the highest first.
    static uint32_t Get3(const uint8_t* aBytes);

    /// Reads or writes a number in a byte order of its own; the pointer needs no alignment.
    /// @{
    static int32_t BigEndianToint32(const uint8_t* aBytes);
    static uint32_t BigEndianTouint32(const uint8_t* aBytes);
    static int16_t BigEndianToint16(const uint8_t* aBytes);
    static uint16_t BigEndianTouint16(const uint8_t* aBytes);
    static int32_t LittleEndianToint32(const uint8_t* aBytes);
    static uint32_t LittleEndianTouint32(const uint8_t* aBytes);
    static int16_t LittleEndianToint16(const uint8_t* aBytes);
    static uint16_t LittleEndianTouint16(const uint8_t* aBytes);
    static vxuint64 LittleEndianTouint64(const uint8_t* aBytes);
    static void uint32ToLittleEndian(uint32_t aValue, uint8_t* aBytes);
    static void uint16ToLittleEndian(uint16_t aValue, uint8_t* aBytes);
    /// @}

    /// Tells whether this machine stores the highest byte of a number first.
    static bool IsBigEndianPlatform();

    /// Returns a color of four bytes with its last three bytes reversed: bytes 0, 3, 2, 1 from the
    /// top.
    static uint32_t BigEndianToOpenGL(const uint8_t* aBytes);

private:
    // Exp-Golomb codes of this many zeros and fewer, 2n + 1 bits long, lie within one window.
    static constexpr unsigned kvxMaxWindowZeros = 28;

    // The next bits, the first one on top; at least 57 of them are real. Eight bytes must be left.
    uint64_t Window() const {
        const uint8_t* theByte = mBuffer - (mLastByteSize != 0);
        uint64_t theWord;
        memcpy(&theWord, theByte, sizeof(theWord));
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
        theWord = __builtin_bswap64(theWord);
#endif
        return theWord << (-mLastByteSize & 7);
    }

    // Moves on by at least one bit, all of them known to be there, and loads the bytes they begin.
    void Advance(size_t aBitCount) {
        const size_t theBytes = (aBitCount + 7 - mLastByteSize) / 8;
        mBuffer += theBytes;
        mBufferSize -= theBytes * 8;
        mLastByteSize = static_cast<uint8_t>((mLastByteSize - aBitCount) & 7);
        mLastByte = mBuffer[-1];
    }

    // What the rare cases start from: they are functions of a copy. No operation that a parser
    // repeats hands out the reader's address, so a reader that stays within a function lives in
    // registers.
    struct Reading {
        const uint8_t* mNext;
        size_t mSize;
        uint8_t mByte;
        uint8_t mByteSize;
    };

    struct Code {
        uint32_t mValue;
        size_t mLength;  // bits
    };

    Reading State() const {
        return {mBuffer, mBufferSize, mLastByte, mLastByteSize};
    }

    static uint32_t Assemble(const Reading& aReading, size_t aBitCount);
    static Code ReadCode(const Reading& aReading);
    static size_t CountZeros(const Reading& aReading);
    static uint32_t UnreadBits(const Reading& aReading) {
        return aReading.mByte & ((1U << aReading.mByteSize) - 1U);
    }

    const uint8_t* mBuffer;     // next byte not yet loaded
    size_t mBufferSize;         // bits not yet loaded
    size_t mInitialBufferSize;  // bits in the whole buffer
    uint8_t mLastByte;          // the byte being consumed
    uint8_t mLastByteSize;      // its unread bits, 0 to 7
    bool mfBookmarked;          // the four fields below are set
    const uint8_t* mBookmarkedBuffer;
    size_t mBookmarkedBufferSize;
    uint8_t mBookmarkedLastByte;
    uint8_t mBookmarkedLastByteSize;
};
