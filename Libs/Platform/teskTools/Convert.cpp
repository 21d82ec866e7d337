// Numbers are read as a sign and a magnitude; the type of the result only sets the two limits.

#include <libteskTools/Convert.h>

#include <charconv>
#include <cstring>
#include <limits>

namespace {

constexpr int kvxNoDigit = 255;

int vxDigitValue(char aChar) {
    if (aChar >= '0' && aChar <= '9') {
        return aChar - '0';
    }
    const int theLetter = aChar | 0x20;
    return theLetter >= 'a' && theLetter <= 'z' ? theLetter - 'a' + 10 : kvxNoDigit;
}

bool vxIsDecimalDigit(char aChar) {
    return aChar >= '0' && aChar <= '9';
}

// Replaces base 0 by the one that the text asks for, and steps over its prefix. The 0 of an octal
// number stays: it is a digit as well.
int vxResolveBase(const char*& aStr, int aBase) {
    if (aBase != 0) {
        return aBase;
    }
    if (aStr[0] != '0') {
        return 10;
    }
    if ((aStr[1] | 0x20) == 'x') {
        aStr += 2;
        return 16;
    }
    return 8;
}

// Reads up to nineteen decimal digits, which cannot overflow: most numbers end there. Two at a time
// keep the chain of multiplications short.
uint64_t vxReadFirstDigits(const char*& aStr) {
    uint64_t theValue = 0;
    const char* theStr = aStr;
    for (int i = 0; i < 9; i++) {
        const unsigned theTens = static_cast<unsigned char>(theStr[0]) - unsigned{'0'};
        if (theTens > 9) {
            break;
        }
        const unsigned theOnes = static_cast<unsigned char>(theStr[1]) - unsigned{'0'};
        if (theOnes > 9) {
            theValue = theValue * 10 + theTens;
            theStr++;
            break;
        }
        theValue = theValue * 100 + (theTens * 10 + theOnes);
        theStr += 2;
    }
    aStr = theStr;
    return theValue;
}

bool vxReadMagnitude(const char* aStr, unsigned aBase, uint64_t* aMagnitude) {
    if (*aStr == '\0') {
        return false;
    }
    uint64_t theValue = aBase == 10 ? vxReadFirstDigits(aStr) : 0;
    for (; *aStr != '\0'; aStr++) {
        const unsigned theDigit = static_cast<unsigned>(vxDigitValue(*aStr));
        if (theDigit >= aBase || __builtin_mul_overflow(theValue, aBase, &theValue) ||
            __builtin_add_overflow(theValue, theDigit, &theValue)) {
            return false;
        }
    }
    *aMagnitude = theValue;
    return true;
}

template <typename T>
int vxReadInteger(const char* aStr, T* aResult, int aBase) {
    if (aStr == nullptr || aBase < 0 || aBase == 1 || aBase > 36) {
        return -1;
    }
    const bool theNegative = *aStr == '-';
    if (theNegative || *aStr == '+') {
        aStr++;
    }
    const int theBase = vxResolveBase(aStr, aBase);
    uint64_t theMagnitude;
    if (!vxReadMagnitude(aStr, static_cast<unsigned>(theBase), &theMagnitude)) {
        return -1;
    }
    constexpr uint64_t theMax = static_cast<uint64_t>(std::numeric_limits<T>::max());
    constexpr uint64_t theNegativeMax = std::numeric_limits<T>::is_signed ? theMax + 1 : 0;
    if (theMagnitude > (theNegative ? theNegativeMax : theMax)) {
        return -1;
    }
    *aResult = static_cast<T>(theNegative ? 0 - theMagnitude : theMagnitude);
    return 0;
}

// Whether a number out of range is too small rather than too large: where its first significant
// digit stands, the exponent included, decides.
bool vxIsTiny(const char* aStr) {
    int64_t theOrder = 0;
    bool theSignificant = false;
    bool theFraction = false;
    for (; vxIsDecimalDigit(*aStr) || *aStr == '.'; aStr++) {
        if (*aStr == '.') {
            theFraction = true;
            continue;
        }
        theSignificant = theSignificant || *aStr != '0';
        if (!theFraction && theSignificant) {
            theOrder++;
        } else if (theFraction && !theSignificant) {
            theOrder--;
        }
    }
    if (*aStr == '\0') {
        return theOrder < 0;
    }
    const bool theNegative = aStr[1] == '-';
    int64_t theExponent = 0;
    for (aStr += 1 + (theNegative || aStr[1] == '+'); vxIsDecimalDigit(*aStr); aStr++) {
        theExponent =
            theExponent < (INT64_C(1) << 50) ? theExponent * 10 + (*aStr - '0') : theExponent;
    }
    return (theNegative ? theOrder - theExponent : theOrder + theExponent) < 0;
}

}  // namespace

int vxConvert_isspace(int aChar) {
    return aChar == ' ' || (aChar >= '\t' && aChar <= '\r');
}

int vxConvert_isprint(int aChar) {
    return aChar >= ' ' && aChar <= '~';
}

int vxConvert_strtoint8(const char* aStr, int8_t* aResult) {
    return vxReadInteger(aStr, aResult, 10);
}

int vxConvert_strtoint16(const char* aStr, int16_t* aResult) {
    return vxReadInteger(aStr, aResult, 10);
}

int vxConvert_strtoint32(const char* aStr, int32_t* aResult) {
    return vxReadInteger(aStr, aResult, 10);
}

int vxConvert_strtoint64(const char* aStr, int64_t* aResult) {
    return vxReadInteger(aStr, aResult, 10);
}

int vxConvert_strtouint8(const char* aStr, uint8_t* aResult) {
    return vxReadInteger(aStr, aResult, 10);
}

int vxConvert_strtouint16(const char* aStr, uint16_t* aResult) {
    return vxReadInteger(aStr, aResult, 10);
}

int vxConvert_strtouint32(const char* aStr, uint32_t* aResult) {
    return vxReadInteger(aStr, aResult, 10);
}

int vxConvert_strtouint64(const char* aStr, uint64_t* aResult) {
    return vxReadInteger(aStr, aResult, 10);
}

int vxConvert_strtoint8_base(const char* aStr, int8_t* aResult, int aBase) {
    return vxReadInteger(aStr, aResult, aBase);
}

int vxConvert_strtoint16_base(const char* aStr, int16_t* aResult, int aBase) {
    return vxReadInteger(aStr, aResult, aBase);
}

int vxConvert_strtoint32_base(const char* aStr, int32_t* aResult, int aBase) {
    return vxReadInteger(aStr, aResult, aBase);
}

int vxConvert_strtoint64_base(const char* aStr, int64_t* aResult, int aBase) {
    return vxReadInteger(aStr, aResult, aBase);
}

int vxConvert_strtouint8_base(const char* aStr, uint8_t* aResult, int aBase) {
    return vxReadInteger(aStr, aResult, aBase);
}

int vxConvert_strtouint16_base(const char* aStr, uint16_t* aResult, int aBase) {
    return vxReadInteger(aStr, aResult, aBase);
}

int vxConvert_strtouint32_base(const char* aStr, uint32_t* aResult, int aBase) {
    return vxReadInteger(aStr, aResult, aBase);
}

int vxConvert_strtouint64_base(const char* aStr, uint64_t* aResult, int aBase) {
    return vxReadInteger(aStr, aResult, aBase);
}

int vxConvert_strtod(const char* aStr, double* aResult) {
    if (aStr == nullptr) {
        return -1;
    }
    const bool theNegative = *aStr == '-';
    if (theNegative || *aStr == '+') {
        aStr++;
    }
    // The digit or point that must come first keeps "inf", "nan" and a second sign out.
    if (!vxIsDecimalDigit(*aStr) && *aStr != '.') {
        return -1;
    }
    const char* theEnd = aStr + strlen(aStr);
    double theValue = 0;
    const std::from_chars_result theRead = std::from_chars(aStr, theEnd, theValue);
    if (theRead.ptr != theEnd || theRead.ec == std::errc::invalid_argument) {
        return -1;
    }
    if (theRead.ec == std::errc::result_out_of_range) {
        if (!vxIsTiny(aStr)) {
            return -1;
        }
        theValue = 0;
    }
    *aResult = theNegative ? -theValue : theValue;
    return 0;
}
