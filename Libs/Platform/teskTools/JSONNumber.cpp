// Numbers as text.
//
// Both directions multiply by a power of ten that is kept to 128 bits, rounded up where it is not
// exact, and so decide all but a few cases with one or two multiplications: reading as Lemire's
// "Number parsing at a gigabyte per second" has it, writing as Giulietti's "The Schubfach way to
// render doubles". The table of powers is made by the compiler and covers what documents hold;
// numbers beyond it take the slower way of the standard library.

#include "JSONNumber.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace {

struct vxUInt128 {
    uint64_t mHigh;
    uint64_t mLow;
};

// ---- Powers of ten

constexpr int kvxMinPower = -27;  // 5^27 still fits 64 bits
constexpr int kvxMaxPower = 55;   // 5^55 still fits 128 bits

constexpr vxUInt128 vxTimesFive(vxUInt128 aValue) {
    const uint64_t theLowPart = (aValue.mLow & 0xFFFFFFFF) * 5;
    const uint64_t theHighPart = (aValue.mLow >> 32) * 5 + (theLowPart >> 32);
    return {aValue.mHigh * 5 + (theHighPart >> 32),
            (theHighPart << 32) | (theLowPart & 0xFFFFFFFF)};
}

constexpr bool vxTopBit(vxUInt128 aValue) {
    return (aValue.mHigh >> 63) != 0;
}

constexpr vxUInt128 vxDoubled(vxUInt128 aValue, uint64_t aBit) {
    return {(aValue.mHigh << 1) | (aValue.mLow >> 63), (aValue.mLow << 1) | aBit};
}

/// The power's 128 leading bits.
constexpr vxUInt128 vxPositivePower(int aPower) {
    vxUInt128 theValue = {0, 1};
    for (int i = 0; i < aPower; ++i) {
        theValue = vxTimesFive(theValue);
    }
    while (!vxTopBit(theValue)) {
        theValue = vxDoubled(theValue, 0);
    }
    return theValue;
}

/// The 128 leading bits of 1 / 5^aPower, rounded up, by long division.
constexpr vxUInt128 vxReciprocalPower(int aPower) {
    uint64_t theDivisor = 1;
    for (int i = 0; i < aPower; ++i) {
        theDivisor *= 5;
    }
    vxUInt128 theQuotient = {0, 0};
    uint64_t theRest = 1;
    while (!vxTopBit(theQuotient)) {
        // The divisor is below 2^63, so the doubled rest fits.
        theRest *= 2;
        const bool fBit = theRest >= theDivisor;
        theRest -= fBit ? theDivisor : 0;
        theQuotient = vxDoubled(theQuotient, fBit ? 1 : 0);
    }
    return {theQuotient.mHigh + (theQuotient.mLow == UINT64_MAX ? 1 : 0), theQuotient.mLow + 1};
}

struct vxPowerTable {
    constexpr vxPowerTable() : mPowers() {
        for (int i = kvxMinPower; i <= kvxMaxPower; ++i) {
            mPowers[i - kvxMinPower] = i < 0 ? vxReciprocalPower(-i) : vxPositivePower(i);
        }
    }

    vxUInt128 mPowers[kvxMaxPower - kvxMinPower + 1];
};

constexpr vxPowerTable kvxPowers;

constexpr bool vxHasPower(int aPower) {
    return aPower >= kvxMinPower && aPower <= kvxMaxPower;
}

constexpr const vxUInt128& vxPower(int aPower) {
    return kvxPowers.mPowers[aPower - kvxMinPower];
}

inline vxUInt128 vxMultiply(uint64_t aLeft, uint64_t aRight) {
#ifdef __SIZEOF_INT128__
    __extension__ typedef unsigned __int128 Wide;
    const Wide theProduct = static_cast<Wide>(aLeft) * aRight;
    return {static_cast<uint64_t>(theProduct >> 64), static_cast<uint64_t>(theProduct)};
#else
    const uint64_t theLow = (aLeft & 0xFFFFFFFF) * (aRight & 0xFFFFFFFF);
    const uint64_t theCross = (aLeft >> 32) * (aRight & 0xFFFFFFFF) + (theLow >> 32);
    const uint64_t theOther = (aLeft & 0xFFFFFFFF) * (aRight >> 32) + (theCross & 0xFFFFFFFF);
    return {(aLeft >> 32) * (aRight >> 32) + (theCross >> 32) + (theOther >> 32),
            (theOther << 32) | (theLow & 0xFFFFFFFF)};
#endif
}

// ---- Reading

/// Both operands are exact as doubles, so their product or quotient is rounded only once.
bool vxExactly(uint64_t aDigits, int anExponent, double& aValue) {
    static constexpr double kvxTens[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                         1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    if (aDigits > (uint64_t{1} << 53) || anExponent < -22 || anExponent > 22) {
        return false;
    }
    const double theDigits = static_cast<double>(aDigits);
    aValue = anExponent < 0 ? theDigits / kvxTens[-anExponent] : theDigits * kvxTens[anExponent];
    return true;
}

// ---- Writing

struct vxDecimal {
    uint64_t mDigits;
    int mExponent;
};

/// High word of a product whose lost bits are remembered in its last one.
inline uint64_t vxRoundToOdd(const vxUInt128& aPower, uint64_t aValue) {
    const vxUInt128 theLow = vxMultiply(aPower.mLow, aValue);
    vxUInt128 theHigh = vxMultiply(aPower.mHigh, aValue);
    theHigh.mLow += theLow.mHigh;
    theHigh.mHigh += theHigh.mLow < theLow.mHigh ? 1 : 0;
    return theHigh.mHigh | (theHigh.mLow > 1 ? 1 : 0);
}

/// Floor of x / 2^y, also for negative x.
constexpr int vxFloorShift(int aValue, int aShift) {
    return aValue >> aShift;
}

/// Finds the shortest decimal between the neighbors of a finite double above zero, the nearest to
/// it if several are shortest. False outside the range of the table.
bool vxShortest(uint64_t aBits, vxDecimal& aDecimal) {
    const uint64_t theFraction = aBits & ((uint64_t{1} << 52) - 1);
    const int theBiased = static_cast<int>(aBits >> 52);
    if (theBiased == 0) {
        return false;
    }
    const uint64_t c = theFraction | (uint64_t{1} << 52);
    const int q = theBiased - 1075;
    const bool fEven = (c & 1) == 0;
    // Below a power of two the neighbors are half as far apart.
    const bool fNarrow = theFraction == 0 && theBiased > 1;
    const int k = vxFloorShift(q * 1262611 - (fNarrow ? 524031 : 0), 22);
    if (!vxHasPower(-k)) {
        return false;
    }
    const int h = q + vxFloorShift(-k * 1741647, 19) + 1;
    const vxUInt128& thePower = vxPower(-k);
    const uint64_t theLower = vxRoundToOdd(thePower, (4 * c - 2 + (fNarrow ? 1 : 0)) << h);
    const uint64_t theMiddle = vxRoundToOdd(thePower, (4 * c) << h);
    const uint64_t theUpper = vxRoundToOdd(thePower, (4 * c + 2) << h);
    const uint64_t theFloor = theLower + (fEven ? 0 : 1);
    const uint64_t theCeiling = theUpper - (fEven ? 0 : 1);

    const uint64_t s = theMiddle / 4;
    if (s >= 10) {
        const uint64_t theShort = s / 10;
        const bool fDown = theFloor <= 40 * theShort;
        const bool fUp = 40 * theShort + 40 <= theCeiling;
        if (fDown != fUp) {
            aDecimal = {theShort + (fUp ? 1 : 0), k + 1};
            return true;
        }
    }
    const bool fDown = theFloor <= 4 * s;
    const bool fUp = 4 * s + 4 <= theCeiling;
    const uint64_t theHalf = 4 * s + 2;
    const bool fNearUp = theMiddle > theHalf || (theMiddle == theHalf && (s & 1) != 0);
    aDecimal = {s + ((fDown != fUp ? fUp : fNearUp) ? 1 : 0), k};
    return true;
}

/// The same from the standard library, for any finite double above zero.
vxDecimal vxShortestOfAll(double aValue) {
    char theText[kvxMaxNumberLength];
    const auto theEnd =
        std::to_chars(theText, theText + sizeof(theText), aValue, std::chars_format::scientific);
    const char* theMark =
        static_cast<const char*>(memchr(theText, 'e', static_cast<size_t>(theEnd.ptr - theText)));
    vxDecimal theDecimal = {0, 0};
    for (const char* p = theText; p != theMark; ++p) {
        if (*p != '.') {
            theDecimal.mDigits = theDecimal.mDigits * 10 + static_cast<uint64_t>(*p - '0');
        }
    }
    const char* theSign = theMark + 1;
    std::from_chars(theSign + (*theSign == '+' ? 1 : 0), theEnd.ptr, theDecimal.mExponent);
    const int theFraction = static_cast<int>(theMark - theText) - 2;
    theDecimal.mExponent -= theFraction > 0 ? theFraction : 0;
    return theDecimal;
}

constexpr char kvxPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839404142434445"
    "46474849505152535455565758596061626364656667686970717273747576777879808182838485868788899091"
    "9293949596979899";

inline void vxWritePair(char* aTarget, uint32_t aValue) {
    memcpy(aTarget, kvxPairs + 2 * aValue, 2);
}

inline void vxWriteEight(char* aTarget, uint32_t aValue) {
    const uint32_t theHigh = aValue / 10000;
    const uint32_t theLow = aValue % 10000;
    vxWritePair(aTarget, theHigh / 100);
    vxWritePair(aTarget + 2, theHigh % 100);
    vxWritePair(aTarget + 4, theLow / 100);
    vxWritePair(aTarget + 6, theLow % 100);
}

constexpr uint64_t kvxTens[] = {
    1,
    10,
    100,
    1000,
    10000,
    100000,
    1000000,
    10000000,
    100000000,
    1000000000,
    10000000000,
    100000000000,
    1000000000000,
    10000000000000,
    100000000000000,
    1000000000000000,
    10000000000000000,
    100000000000000000,
    1000000000000000000,
    10000000000000000000u,
};

/// Counts the digits; 0 has one.
int vxCountDigits(uint64_t aValue) {
    // No power of ten but the first is odd: the lowest bit decides for 0 alone.
    const uint64_t theValue = aValue | 1;
    const int theBits = 64 - __builtin_clzll(theValue);
    const int theGuess = theBits * 1233 >> 12;
    return theGuess + (theValue >= kvxTens[theGuess] ? 1 : 0);
}

/// Writes the digits of a value that has `aCount` of them.
void vxWriteDigits(char* aTarget, uint64_t aValue, int aCount) {
    char* theEnd = aTarget + aCount;
    while (aValue >= 100000000) {
        theEnd -= 8;
        vxWriteEight(theEnd, static_cast<uint32_t>(aValue % 100000000));
        aValue /= 100000000;
    }
    uint32_t theRest = static_cast<uint32_t>(aValue);
    while (theRest >= 10) {
        theEnd -= 2;
        vxWritePair(theEnd, theRest % 100);
        theRest /= 100;
    }
    if (theEnd != aTarget) {
        *aTarget = static_cast<char>('0' + theRest);
    }
}

// ---- Laying out

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the first digit is the lowest byte");

/// Seventeen digits as text, the rest of them zeros, in front of which the point is to come.
struct vxDigits {
    uint64_t mFirst;   // eight characters
    uint64_t mSecond;  // the next eight
    uint64_t mLast;    // the last one
    int mCount;        // without zeros at the end
    int mPoint;        // digits in front of the point; none or less: zeros stand there
};

constexpr uint64_t kvxZeros = 0x3030303030303030u;

/// Spreads a value below 10^8 over eight bytes: halves first, then pairs, then digits.
uint64_t vxSpread(uint32_t aValue) {
    uint64_t theValue = aValue / 10000 | static_cast<uint64_t>(aValue % 10000) << 32;
    const uint64_t theHundreds = ((theValue * 10486) >> 20) & 0x0000007F0000007Fu;
    theValue = theHundreds | (theValue - 100 * theHundreds) << 16;
    const uint64_t theTens = ((theValue * 103) >> 10) & 0x000F000F000F000Fu;
    return theTens | (theValue - 10 * theTens) << 8;
}

/// Counts the characters up to the last that is not 0.
int vxCountUsed(uint64_t aSpread) {
    return 8 - __builtin_clzll(aSpread | 1) / 8;
}

vxDigits vxSplit(const vxDecimal& aDecimal) {
    const int theCount = vxCountDigits(aDecimal.mDigits);
    const uint64_t theDigits = aDecimal.mDigits * kvxTens[17 - theCount];
    const uint64_t theLow = theDigits % 1000000000;
    const uint64_t theFirst = vxSpread(static_cast<uint32_t>(theDigits / 1000000000));
    const uint64_t theSecond = vxSpread(static_cast<uint32_t>(theLow / 10));
    const uint64_t theLast = theLow % 10;
    const int theUsed = theLast != 0     ? 17
                        : theSecond != 0 ? 8 + vxCountUsed(theSecond)
                                         : vxCountUsed(theFirst);
    return {theFirst | kvxZeros, theSecond | kvxZeros, theLast | '0', theUsed,
            theCount + aDecimal.mExponent};
}

/// Writes 24 bytes.
void vxWriteWords(char* aTarget, uint64_t aFirst, uint64_t aSecond, uint64_t aThird) {
    memcpy(aTarget, &aFirst, sizeof(aFirst));
    memcpy(aTarget + 8, &aSecond, sizeof(aSecond));
    memcpy(aTarget + 16, &aThird, sizeof(aThird));
}

/// Writes 24 bytes: the digits with the point behind one to seven of them.
void vxWriteWithPoint(char* aTarget, const vxDigits& aDigits) {
    const int theShift = 8 * aDigits.mPoint;
    const uint64_t theWhole = aDigits.mFirst & ((uint64_t{1} << theShift) - 1);
    const uint64_t theRest = aDigits.mFirst >> theShift << theShift;
    vxWriteWords(aTarget, theWhole | uint64_t{'.'} << theShift | theRest << 8,
                 aDigits.mSecond << 8 | aDigits.mFirst >> 56,
                 aDigits.mLast << 8 | aDigits.mSecond >> 56);
}

char* vxWriteExponent(char* aTarget, int anExponent) {
    *aTarget++ = 'e';
    *aTarget++ = anExponent < 0 ? '-' : '+';
    return vxWriteUInt(aTarget, static_cast<uint64_t>(anExponent < 0 ? -anExponent : anExponent));
}

/// Lays out a value that is no 64-bit integer: plain from 1e-6 on if it has a fraction, else with an
/// exponent.
char* vxLayOut(char* aTarget, const vxDigits& aDigits) {
    if (aDigits.mPoint > 0 && aDigits.mPoint < 8 && aDigits.mCount > aDigits.mPoint) {
        vxWriteWithPoint(aTarget, aDigits);
        return aTarget + aDigits.mCount + 1;
    }
    const size_t theCount = static_cast<size_t>(aDigits.mCount);
    if (aDigits.mPoint <= 0 && aDigits.mPoint > -6) {
        memcpy(aTarget, "0.000000", 8);
        vxWriteWords(aTarget + 2 - aDigits.mPoint, aDigits.mFirst, aDigits.mSecond, aDigits.mLast);
        return aTarget + 2 - aDigits.mPoint + theCount;
    }
    const bool fPlain = aDigits.mPoint > 0 && aDigits.mCount > aDigits.mPoint;
    const size_t thePoint = fPlain ? static_cast<size_t>(aDigits.mPoint) : 1;
    vxWriteWords(aTarget + 1, aDigits.mFirst, aDigits.mSecond, aDigits.mLast);
    memmove(aTarget, aTarget + 1, thePoint);
    aTarget[thePoint] = '.';
    if (fPlain) {
        return aTarget + theCount + 1;
    }
    return vxWriteExponent(aTarget + (theCount == 1 ? 1 : theCount + 1), aDigits.mPoint - 1);
}

}  // namespace

bool vxDecimalToDouble(uint64_t aDigits, int anExponent, double& aValue) {
    if (aDigits == 0) {
        aValue = 0;
        return true;
    }
    if (vxExactly(aDigits, anExponent, aValue)) {
        return true;
    }
    if (!vxHasPower(anExponent)) {
        return false;
    }
    const int theZeros = __builtin_clzll(aDigits);
    const uint64_t theDigits = aDigits << theZeros;
    vxUInt128 theProduct = vxMultiply(theDigits, vxPower(anExponent).mHigh);
    if ((theProduct.mHigh & 0x1FF) == 0x1FF) {
        // The bits that decide about rounding are not settled yet.
        const uint64_t theCarry = vxMultiply(theDigits, vxPower(anExponent).mLow).mHigh;
        theProduct.mLow += theCarry;
        theProduct.mHigh += theProduct.mLow < theCarry ? 1 : 0;
    }
    const int theTop = static_cast<int>(theProduct.mHigh >> 63);
    const int theShift = theTop + 9;
    uint64_t theMantissa = theProduct.mHigh >> theShift;
    const bool fMayTie = theProduct.mLow <= 1 && anExponent >= -4 && anExponent <= 23;
    if (fMayTie && (theMantissa & 3) == 1 && theMantissa << theShift == theProduct.mHigh) {
        theMantissa &= ~uint64_t{1};
    }
    theMantissa = (theMantissa + (theMantissa & 1)) >> 1;
    int theBiased = vxFloorShift(217706 * anExponent, 16) + 63 + theTop - theZeros + 1023;
    if (theMantissa >= uint64_t{1} << 53) {
        theMantissa = uint64_t{1} << 52;
        ++theBiased;
    }
    const uint64_t theBits =
        (theMantissa & ~(uint64_t{1} << 52)) | (static_cast<uint64_t>(theBiased) << 52);
    memcpy(&aValue, &theBits, sizeof(aValue));
    return true;
}

char* vxWriteUInt(char* aTarget, uint64_t aValue) {
    const int theCount = vxCountDigits(aValue);
    vxWriteDigits(aTarget, aValue, theCount);
    return aTarget + theCount;
}

char* vxWriteInt(char* aTarget, int64_t aValue) {
    uint64_t theValue = static_cast<uint64_t>(aValue);
    if (aValue < 0) {
        *aTarget++ = '-';
        theValue = 0 - theValue;
    }
    return vxWriteUInt(aTarget, theValue);
}

char* vxWriteDouble(char* aTarget, double aValue) {
    if (!std::isfinite(aValue)) {
        memcpy(aTarget, "null", 4);
        return aTarget + 4;
    }
    uint64_t theBits;
    memcpy(&theBits, &aValue, sizeof(theBits));
    if ((theBits >> 63) != 0) {
        *aTarget++ = '-';
        theBits &= ~(uint64_t{1} << 63);
    }
    if (theBits == 0) {
        // Zero with a sign keeps it only as a double.
        const size_t theLength = std::signbit(aValue) ? 3 : 1;
        memcpy(aTarget, "0.0", theLength);
        return aTarget + theLength;
    }
    const double theMagnitude = std::fabs(aValue);
    if (theMagnitude < 18446744073709551616.0 &&
        static_cast<double>(static_cast<uint64_t>(theMagnitude)) == theMagnitude) {
        // All digits of a large one, as many as the shortest would be: readers take it for an integer.
        return vxWriteUInt(aTarget, static_cast<uint64_t>(theMagnitude));
    }
    vxDecimal theDecimal;
    if (!vxShortest(theBits, theDecimal)) {
        theDecimal = vxShortestOfAll(theMagnitude);
    }
    return vxLayOut(aTarget, vxSplit(theDecimal));
}
