// A bit reader whose state counts single bytes but whose reads take whole words.
//
// A byte counts as loaded as soon as one of its bits is consumed; GetByteOffset() shows that, so
// the state moves byte by byte however much is read at once. The byte being consumed is always the
// one before mBuffer. What a parser repeats is inline. Near the end, where a word would reach past
// the last byte, fields are put together from the bytes that are left; that is here.

#include "vx/BitString.h"

#include "vx/UInt64.h"

#include <cstdint>

namespace {

// The largest number of zeros before an Exp-Golomb code's first one bit.
constexpr size_t kvxBitString_MaxZeros = 31;

// The number of bits from the highest one bit down.
size_t vxWidth(uint32_t aNumber) {
    return 32 - static_cast<size_t>(__builtin_clz(aNumber));
}

}  // namespace

void vxBitString::SkipSmall(size_t aBitCount) {
    VXASSERT(aBitCount <= 32);
    if (aBitCount >= GetRemainingBitCount()) {
        Skip(aBitCount);
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

// Get() for the last eight bytes and for counts that are out of range, without moving.
uint32_t vxBitString::Assemble(const Reading& aReading, size_t aBitCount) {
    const size_t theRemaining = aReading.mSize + aReading.mByteSize;
    // Of more than 32 bits only the last 32 count, so those before them may fall off the top.
    const size_t theCount = aBitCount < theRemaining ? aBitCount : theRemaining;
    uint64_t theBits = UnreadBits(aReading);
    size_t theSize = aReading.mByteSize;
    for (const uint8_t* theByte = aReading.mNext; theSize < theCount; theSize += 8) {
        theBits = theBits << 8 | *theByte++;
    }
    const size_t theMissing = aBitCount - theCount;
    return theMissing < 32 ? static_cast<uint32_t>(theBits >> (theSize - theCount) << theMissing)
                           : 0;
}

// GetUE() for long codes and for the last eight bytes, without moving.
vxBitString::Code vxBitString::ReadCode(const Reading& aReading) {
    const size_t theZeros = CountZeros(aReading);
    if (theZeros > kvxBitString_MaxZeros) {
        return {0, theZeros + 1};
    }
    vxBitString theRest;
    theRest.mBuffer = aReading.mNext;
    theRest.mBufferSize = aReading.mSize;
    theRest.mLastByte = aReading.mByte;
    theRest.mLastByteSize = aReading.mByteSize;
    theRest.Skip(theZeros + 1);
    return {(uint32_t{1} << theZeros) - 1 + Assemble(theRest.State(), theZeros), 2 * theZeros + 1};
}

// The zeros before the first one bit, or before the end.
size_t vxBitString::CountZeros(const Reading& aReading) {
    const uint32_t theUnread = UnreadBits(aReading);
    if (theUnread != 0) {
        return aReading.mByteSize - vxWidth(theUnread);
    }
    const uint8_t* const theEnd = aReading.mNext + aReading.mSize / 8;
    const uint8_t* theByte = aReading.mNext;
    while (theByte < theEnd && *theByte == 0) {
        ++theByte;
    }
    const size_t theZeros = aReading.mByteSize + static_cast<size_t>(theByte - aReading.mNext) * 8;
    return theByte == theEnd ? theZeros : theZeros + 8 - vxWidth(*theByte);
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
