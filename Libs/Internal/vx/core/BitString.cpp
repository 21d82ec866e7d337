// A bit reader whose state counts single bytes but whose reads take whole words.
//
// A byte counts as loaded as soon as one of its bits is consumed; GetByteOffset() shows that, so
// the state moves byte by byte however much is read at once. The byte being consumed is always the
// one before mBuffer. Near the end, where a word would reach past the last byte, fields are put
// together from the bytes that are left.

#include "vx/BitString.h"

#include "vx/UInt64.h"

#include <cstdint>

namespace {

// The largest number of zeros before an Exp-Golomb code's first one bit.
constexpr size_t kvxBitString_MaxZeros = 31;

// Codes of this many zeros and fewer, 2n + 1 bits long, lie within one window.
constexpr int kvxBitString_MaxWindowZeros = 28;

}  // namespace

void vxBitString::SetBuffer(const uint8_t* aBuffer, size_t aByteCount) {
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

uint32_t vxBitString::Peek(uint8_t aBitCount) {
    ToggleMarker(true);
    const uint32_t theBits = Get(aBitCount);
    ToggleMarker(false);
    return theBits;
}

void vxBitString::Skip(size_t aBitCount) {
    Drop(aBitCount);
}

void vxBitString::SkipSmall(size_t aBitCount) {
    VXASSERT(aBitCount <= 32);
    Drop(aBitCount);
}

uint32_t vxBitString::GetUE() {
    if (mBufferSize >= 64) {
        const uint64_t theWindow = Window();
        const int theZeros = theWindow == 0 ? 64 : __builtin_clzll(theWindow);
        if (theZeros <= kvxBitString_MaxWindowZeros) {
            Advance(static_cast<size_t>(2 * theZeros + 1));
            return static_cast<uint32_t>(theWindow >> (63 - 2 * theZeros)) - 1;
        }
    }
    const size_t theZeros = CountZeros();
    if (theZeros == 0 || theZeros > kvxBitString_MaxZeros) {
        return 0;
    }
    return (uint32_t{1} << theZeros) - 1 + Get(static_cast<uint8_t>(theZeros));
}

int32_t vxBitString::GetSE() {
    const uint32_t theCode = GetUE();
    const int32_t theHalf = static_cast<int32_t>(theCode / 2);
    return theCode % 2 == 1 ? theHalf + 1 : -theHalf;
}

void vxBitString::ToggleMarker(bool afSet) {
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

// Get() for the last eight bytes and for counts that are out of range.
uint32_t vxBitString::GetSlow(size_t aBitCount) {
    if (aBitCount > 32) {
        Drop(aBitCount - 32);
        return GetSlow(32);
    }
    const size_t theRemaining = GetRemainingBitCount();
    const size_t theCount = aBitCount < theRemaining ? aBitCount : theRemaining;
    uint64_t theBits = mLastByte & ((1U << mLastByteSize) - 1U);
    size_t theSize = mLastByteSize;
    for (const uint8_t* theByte = mBuffer; theSize < theCount; theSize += 8) {
        theBits = theBits << 8 | *theByte++;
    }
    Advance(theCount);
    return static_cast<uint32_t>(theBits >> (theSize - theCount) << (aBitCount - theCount));
}

// Consumes zeros and the one bit behind them; returns how many zeros there were.
size_t vxBitString::CountZeros() {
    const size_t theStart = GetRemainingBitCount();
    const uint32_t theUnread = mLastByte & ((1U << mLastByteSize) - 1U);
    if (theUnread == 0) {
        mLastByteSize = 0;
        while (mBufferSize > 0 && *mBuffer == 0) {
            Advance(8);
        }
        if (mBufferSize == 0) {
            return theStart;
        }
    }
    const uint32_t theByte = theUnread != 0 ? theUnread : *mBuffer;
    const size_t theSize = theUnread != 0 ? mLastByteSize : 8;
    const size_t theZeros = theSize - (32 - static_cast<size_t>(__builtin_clz(theByte)));
    const size_t theCount = theStart - GetRemainingBitCount() + theZeros;
    Advance(theZeros + 1);
    return theCount;
}

void vxBitString::Drop(size_t aBitCount) {
    if (aBitCount >= GetRemainingBitCount()) {
        mLastByteSize = 0;
        Advance(mBufferSize);
        return;
    }
    size_t theBitCount = aBitCount;
    if (theBitCount > mLastByteSize) {
        theBitCount -= mLastByteSize;
        const size_t theBytes = (theBitCount - 1) / 8 + 1;
        mBuffer += theBytes;
        mBufferSize -= theBytes * 8;
        mLastByte = mBuffer[-1];
        mLastByteSize = 8;
        theBitCount -= (theBytes - 1) * 8;
    }
    VXASSERT(mLastByteSize >= theBitCount);
    mLastByteSize = static_cast<uint8_t>(mLastByteSize - theBitCount);
}

uint32_t vxBitString::Get3(const uint8_t* aBytes) {
    return static_cast<uint32_t>(aBytes[0] << 16 | aBytes[1] << 8 | aBytes[2]);
}

int32_t vxBitString::BigEndianToint32(const uint8_t* aBytes) {
    return static_cast<int32_t>(BigEndianTouint32(aBytes));
}

uint32_t vxBitString::BigEndianTouint32(const uint8_t* aBytes) {
    return static_cast<uint32_t>(aBytes[0]) << 24 | Get3(aBytes + 1);
}

int16_t vxBitString::BigEndianToint16(const uint8_t* aBytes) {
    return static_cast<int16_t>(BigEndianTouint16(aBytes));
}

uint16_t vxBitString::BigEndianTouint16(const uint8_t* aBytes) {
    return static_cast<uint16_t>(aBytes[0] << 8 | aBytes[1]);
}

int32_t vxBitString::LittleEndianToint32(const uint8_t* aBytes) {
    return static_cast<int32_t>(LittleEndianTouint32(aBytes));
}

uint32_t vxBitString::LittleEndianTouint32(const uint8_t* aBytes) {
    return static_cast<uint32_t>(aBytes[3]) << 24 |
           static_cast<uint32_t>(aBytes[2] << 16 | aBytes[1] << 8 | aBytes[0]);
}

int16_t vxBitString::LittleEndianToint16(const uint8_t* aBytes) {
    return static_cast<int16_t>(LittleEndianTouint16(aBytes));
}

uint16_t vxBitString::LittleEndianTouint16(const uint8_t* aBytes) {
    return static_cast<uint16_t>(aBytes[1] << 8 | aBytes[0]);
}

vxuint64 vxBitString::LittleEndianTouint64(const uint8_t* aBytes) {
    vxuint64 theValue;
    theValue.Init(LittleEndianTouint32(aBytes + 4), LittleEndianTouint32(aBytes));
    return theValue;
}

void vxBitString::uint32ToLittleEndian(uint32_t aValue, uint8_t* aBytes) {
    uint16ToLittleEndian(static_cast<uint16_t>(aValue), aBytes);
    uint16ToLittleEndian(static_cast<uint16_t>(aValue >> 16), aBytes + 2);
}

void vxBitString::uint16ToLittleEndian(uint16_t aValue, uint8_t* aBytes) {
    aBytes[0] = static_cast<uint8_t>(aValue);
    aBytes[1] = static_cast<uint8_t>(aValue >> 8);
}

bool vxBitString::IsBigEndianPlatform() {
    return __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__;
}

uint32_t vxBitString::BigEndianToOpenGL(const uint8_t* aBytes) {
    return static_cast<uint32_t>(aBytes[0]) << 24 |
           static_cast<uint32_t>(aBytes[3] << 16 | aBytes[2] << 8 | aBytes[1]);
}
