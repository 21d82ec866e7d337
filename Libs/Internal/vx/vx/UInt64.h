#pragma once

#include <libteskTools/Types.h>
#include <libteskTools/ULongLong.h>
#include <libvxLog/Assert.h>

#include "vx/Api.h"

class vxCString;

/// The largest values, for the preprocessor and for plain integers.
/// @{
#define kvxuint64_max 0xffffffffffffffffULL
#define kvxuint32_max 0xffffffffU
/// @}

/// An unsigned 64-bit number: millisecond counts, file sizes, offsets.
///
/// Every integer converts to it; arithmetic is modulo 2^64, and a negative operand is reported and
/// sign-extended.
///
/// Threads:  one at a time.
class vxuint64 {
public:
    /// Makes 0.
    constexpr vxuint64() noexcept : mValue(0) {}

    /// Takes the value of a signed integer.
    ///
    /// Asserts:  aValue >= 0; a negative value is sign-extended.
    /// @{
    constexpr vxuint64(int aValue) : mValue(Extended(aValue)) {}
    constexpr vxuint64(long aValue) : mValue(Extended(aValue)) {}
    constexpr vxuint64(long long aValue) : mValue(Extended(aValue)) {}
    /// @}

    /// Takes the value of an unsigned integer.
    /// @{
    constexpr vxuint64(unsigned int aValue) noexcept : mValue(aValue) {}
    constexpr vxuint64(unsigned long aValue) noexcept : mValue(aValue) {}
    constexpr vxuint64(unsigned long long aValue) noexcept : mValue(aValue) {}
    /// @}

    /// Joins two words: high * 2^32 + low.
    constexpr vxuint64(const vxULongLong& aValue) noexcept
        : mValue(Joined(aValue.mHigh, aValue.mLow)) {}

    /// Sets the value from two words: high * 2^32 + low.
    /// @{
    void Init(const vxULongLong& aValue) { mValue = Joined(aValue.mHigh, aValue.mLow); }
    void Init(uint32_t aHigh, uint32_t aLow) { mValue = Joined(aHigh, aLow); }
    /// @}

    /// Computes modulo 2^64.
    /// @{
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
    /// @}

    /// Returns the quotient, cut to a whole number.
    ///
    /// Asserts:  aValue.mValue != 0; the result is 0 then.
    constexpr vxuint64 operator/(const vxuint64& aValue) const {
        VXASSERT(aValue.mValue != 0);
        return aValue.mValue == 0 ? 0 : mValue / aValue.mValue;
    }

    /// Returns the remainder.
    ///
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

    /// Compares as unsigned numbers.
    /// @{
    constexpr bool operator<(const vxuint64& aValue) const { return mValue < aValue.mValue; }
    constexpr bool operator<=(const vxuint64& aValue) const { return mValue <= aValue.mValue; }
    constexpr bool operator>(const vxuint64& aValue) const { return mValue > aValue.mValue; }
    constexpr bool operator>=(const vxuint64& aValue) const { return mValue >= aValue.mValue; }
    constexpr bool operator==(const vxuint64& aValue) const { return mValue == aValue.mValue; }
    constexpr bool operator!=(const vxuint64& aValue) const { return mValue != aValue.mValue; }
    /// @}

    /// Returns the low 32 bits.
    ///
    /// Asserts:  mValue <= kvxuint32_max.
    constexpr uint32_t ToUInt32() const {
        VXASSERT(mValue <= kvxuint32_max);
        return static_cast<uint32_t>(mValue);
    }

    /// Returns the value as a plain integer.
    constexpr uint64_t ToUInt64() const { return mValue; }

    /// Returns the value as two words.
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

/// 0.
inline constexpr vxuint64 kvxuint64_0;
