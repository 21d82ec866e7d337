#pragma once

#include <libteskTools/Types.h>
#include <libteskTools/ULongLong.h>
#include <libvxLog/Assert.h>

#include "vx/Api.h"

class vxCString;

#define kvxuint64_max 0xffffffffffffffffULL
#define kvxuint32_max 0xffffffffU

/// An unsigned 64-bit number: millisecond counts, file sizes, offsets.
///
/// Every integer converts to it; arithmetic is modulo 2^64, and a negative operand is reported and
/// sign-extended.
///
/// Threads:  one at a time.
class vxuint64 {
public:
    constexpr vxuint64() noexcept : mValue(0) {}

    /// Asserts:  aValue >= 0; a negative value is sign-extended.
    constexpr vxuint64(int aValue) : mValue(Extended(aValue)) {}
    constexpr vxuint64(long aValue) : mValue(Extended(aValue)) {}
    constexpr vxuint64(long long aValue) : mValue(Extended(aValue)) {}

    constexpr vxuint64(unsigned int aValue) noexcept : mValue(aValue) {}
    constexpr vxuint64(unsigned long aValue) noexcept : mValue(aValue) {}
    constexpr vxuint64(unsigned long long aValue) noexcept : mValue(aValue) {}

    constexpr vxuint64(const vxULongLong& aValue) noexcept
        : mValue(Joined(aValue.mHigh, aValue.mLow)) {}

    void Init(const vxULongLong& aValue) { mValue = Joined(aValue.mHigh, aValue.mLow); }
    void Init(uint32_t aHigh, uint32_t aLow) { mValue = Joined(aHigh, aLow); }

    constexpr vxuint64& operator+=(const vxuint64& aValue) {
        mValue += aValue.mValue;
        return *this;
    }

    constexpr vxuint64& operator-=(const vxuint64& aValue) {
        mValue -= aValue.mValue;
        return *this;
    }

    constexpr vxuint64 operator+(const vxuint64& aValue) const { return mValue + aValue.mValue; }
    constexpr vxuint64 operator-(const vxuint64& aValue) const { return mValue - aValue.mValue; }
    constexpr vxuint64 operator*(const vxuint64& aValue) const { return mValue * aValue.mValue; }

    /// Asserts:  aValue.mValue != 0; the result is 0 then.
    constexpr vxuint64 operator/(const vxuint64& aValue) const {
        VXASSERT(aValue.mValue != 0);
        return aValue.mValue == 0 ? 0 : mValue / aValue.mValue;
    }

    /// Asserts:  aValue.mValue != 0; the result is 0 then.
    constexpr vxuint64 operator%(const vxuint64& aValue) const {
        VXASSERT(aValue.mValue != 0);
        return aValue.mValue == 0 ? 0 : mValue % aValue.mValue;
    }

    /// Shifting by 64 bits and more gives 0.
    constexpr vxuint64 operator<<(const vxuint64& aBits) const {
        return aBits.mValue < 64 ? mValue << aBits.mValue : 0;
    }

    /// Shifting by 64 bits and more gives 0.
    constexpr vxuint64 operator>>(const vxuint64& aBits) const {
        return aBits.mValue < 64 ? mValue >> aBits.mValue : 0;
    }

    constexpr bool operator<(const vxuint64& aValue) const { return mValue < aValue.mValue; }
    constexpr bool operator<=(const vxuint64& aValue) const { return mValue <= aValue.mValue; }
    constexpr bool operator>(const vxuint64& aValue) const { return mValue > aValue.mValue; }
    constexpr bool operator>=(const vxuint64& aValue) const { return mValue >= aValue.mValue; }
    constexpr bool operator==(const vxuint64& aValue) const { return mValue == aValue.mValue; }
    constexpr bool operator!=(const vxuint64& aValue) const { return mValue != aValue.mValue; }

    /// Returns the low 32 bits.
    ///
    /// Asserts:  mValue <= kvxuint32_max.
    constexpr uint32_t ToUInt32() const {
        VXASSERT(mValue <= kvxuint32_max);
        return static_cast<uint32_t>(mValue);
    }

    constexpr uint64_t ToUInt64() const { return mValue; }

    constexpr vxULongLong ToULongLong() const {
        return {static_cast<uint32_t>(mValue), static_cast<uint32_t>(mValue >> 32)};
    }

    /// Returns the value as a file offset; one above the largest offset gives the largest.
    constexpr int64_t ToFileOffset() const {
        return mValue > INT64_MAX ? INT64_MAX : static_cast<int64_t>(mValue);
    }

    /// Returns the number in decimal.
    VX_EXPORT vxCString ToCString() const;

    /// Reads a decimal number that takes the whole text (see vxULongLong_SetFromString()); any
    /// other text, and null, give `aDefault`.
    VX_EXPORT static vxuint64 FromString(const char* aStr, const vxuint64& aDefault);

private:
    static constexpr uint64_t Extended(long long aValue) {
        VXASSERT(aValue >= 0);
        return static_cast<uint64_t>(aValue);
    }

    static constexpr uint64_t Joined(uint32_t aHigh, uint32_t aLow) {
        return static_cast<uint64_t>(aHigh) << 32 | aLow;
    }

    uint64_t mValue;
};

/// The largest value; it also stands for "no value" where a count may be missing.
inline constexpr vxuint64 kvxuint64_Max(kvxuint64_max);

inline constexpr vxuint64 kvxuint64_0;
