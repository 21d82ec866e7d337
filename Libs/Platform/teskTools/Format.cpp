// The conversions that nearly every format is made of are done here, independent of the locale and
// without the C library's buffering: integers, characters, texts and ordinary reals. A format that
// holds anything else goes whole to the C library, arguments rewound; both yield the same text.

#include <libteskTools/Format.h>

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

// Writes what fits and counts the rest.
class vxFormatSink {
public:
    vxFormatSink(char* aBuffer, size_t aSize)
        : mNext(aBuffer), mRoom(aSize == 0 ? 0 : aSize - 1), mfTerminates(aSize != 0) {}

    void Put(const char* aStr, size_t aLength) {
        const size_t theCount = Take(aLength);
        if (theCount != 0) {
            memcpy(mNext, aStr, theCount);
            mNext += theCount;
        }
    }

    void PutByte(char aChar) {
        mTotal++;
        if (mRoom != 0) {
            *mNext++ = aChar;
            mRoom--;
        }
    }

    void Fill(char aChar, size_t aCount) {
        const size_t theCount = Take(aCount);
        if (theCount != 0) {
            memset(mNext, aChar, theCount);
            mNext += theCount;
        }
    }

    // Ends the text and returns its whole length, or -1 where that is no int.
    int Finish() {
        if (mfTerminates) {
            *mNext = '\0';
        }
        return mTotal <= INT_MAX ? static_cast<int>(mTotal) : -1;
    }

private:
    size_t Take(size_t aLength) {
        mTotal += aLength;
        const size_t theCount = aLength < mRoom ? aLength : mRoom;
        mRoom -= theCount;
        return theCount;
    }

    char* mNext;
    size_t mRoom;         // bytes left before the NUL
    uint64_t mTotal = 0;  // bytes of the whole text so far
    bool mfTerminates;
};

struct vxConversion {
    bool mfLeft = false;
    bool mfPlus = false;
    bool mfBlank = false;
    bool mfZero = false;
    size_t mWidth = 0;
    int mPrecision = -1;  // none
    char mLength = 0;     // 'H' hh, h, l, 'q' ll, j, z, t
    char mKind = 0;
};

// A list that can be handed on by reference, on every target.
struct vxArguments {
    va_list mList;
};

constexpr int kvxMaxRealPrecision = 60;
// The longest real is 309 digits, a point and the digits behind it.
constexpr size_t kvxMaxReal = 400;

bool vxReadNumber(const char*& aFormat, int* aNumber) {
    int theNumber = 0;
    for (; *aFormat >= '0' && *aFormat <= '9'; aFormat++) {
        if (theNumber > (INT_MAX - 9) / 10) {
            return false;
        }
        theNumber = theNumber * 10 + (*aFormat - '0');
    }
    *aNumber = theNumber;
    return true;
}

void vxReadFlags(const char*& aFormat, vxConversion& aConversion) {
    for (;; aFormat++) {
        switch (*aFormat) {
            case '-':
                aConversion.mfLeft = true;
                break;
            case '+':
                aConversion.mfPlus = true;
                break;
            case ' ':
                aConversion.mfBlank = true;
                break;
            case '0':
                aConversion.mfZero = true;
                break;
            default:
                return;
        }
    }
}

bool vxReadWidth(const char*& aFormat, vxConversion& aConversion, vxArguments& anArgs) {
    int theWidth = 0;
    if (*aFormat == '*') {
        aFormat++;
        theWidth = va_arg(anArgs.mList, int);
        if (theWidth < 0) {
            if (theWidth == INT_MIN) {
                return false;
            }
            aConversion.mfLeft = true;
            theWidth = -theWidth;
        }
    } else if (!vxReadNumber(aFormat, &theWidth)) {
        return false;
    }
    aConversion.mWidth = static_cast<size_t>(theWidth);
    return true;
}

bool vxReadPrecision(const char*& aFormat, vxConversion& aConversion, vxArguments& anArgs) {
    if (*aFormat != '.') {
        return true;
    }
    aFormat++;
    if (*aFormat == '*') {
        aFormat++;
        const int thePrecision = va_arg(anArgs.mList, int);
        aConversion.mPrecision = thePrecision < 0 ? -1 : thePrecision;
        return true;
    }
    return vxReadNumber(aFormat, &aConversion.mPrecision);
}

void vxReadLength(const char*& aFormat, vxConversion& aConversion) {
    const char theLength = *aFormat;
    if (strchr("hljzt", theLength) == nullptr || theLength == '\0') {
        return;
    }
    aFormat++;
    aConversion.mLength = theLength;
    if (*aFormat == theLength && (theLength == 'h' || theLength == 'l')) {
        aFormat++;
        aConversion.mLength = theLength == 'h' ? 'H' : 'q';
    }
}

bool vxReadConversion(const char*& aFormat, vxConversion& aConversion, vxArguments& anArgs) {
    vxReadFlags(aFormat, aConversion);
    if (!vxReadWidth(aFormat, aConversion, anArgs) ||
        !vxReadPrecision(aFormat, aConversion, anArgs)) {
        return false;
    }
    vxReadLength(aFormat, aConversion);
    aConversion.mKind = *aFormat;
    aFormat += *aFormat != '\0';
    return true;
}

// Writes sign, zeros and body, padded to the width.
void vxPutPadded(vxFormatSink& aSink, const vxConversion& aConversion, const char* aSign,
                 size_t aZeros, const char* aBody, size_t aLength) {
    const size_t theSignLength = *aSign == '\0' ? 0 : 1;
    const size_t theSize = theSignLength + aZeros + aLength;
    const size_t thePad = aConversion.mWidth > theSize ? aConversion.mWidth - theSize : 0;
    if (thePad != 0 && !aConversion.mfLeft) {
        aSink.Fill(' ', thePad);
    }
    if (theSignLength != 0) {
        aSink.PutByte(*aSign);
    }
    if (aZeros != 0) {
        aSink.Fill('0', aZeros);
    }
    aSink.Put(aBody, aLength);
    if (thePad != 0 && aConversion.mfLeft) {
        aSink.Fill(' ', thePad);
    }
}

const char* vxSignOf(const vxConversion& aConversion, bool afNegative) {
    return afNegative ? "-" : aConversion.mfPlus ? "+" : aConversion.mfBlank ? " " : "";
}

// Zeros that fill the width between sign and digits.
size_t vxZeroPad(const vxConversion& aConversion, size_t aUsed) {
    return aConversion.mfZero && !aConversion.mfLeft && aConversion.mWidth > aUsed
               ? aConversion.mWidth - aUsed
               : 0;
}

int64_t vxSignedArgument(char aLength, vxArguments& anArgs) {
    switch (aLength) {
        case 'H':
            return static_cast<signed char>(va_arg(anArgs.mList, int));
        case 'h':
            return static_cast<short>(va_arg(anArgs.mList, int));
        case 'l':
            return va_arg(anArgs.mList, long);
        case 'q':
            return va_arg(anArgs.mList, long long);
        case 'j':
            return va_arg(anArgs.mList, intmax_t);
        case 'z':
        case 't':
            return va_arg(anArgs.mList, ptrdiff_t);
        default:
            return va_arg(anArgs.mList, int);
    }
}

uint64_t vxUnsignedArgument(char aLength, vxArguments& anArgs) {
    switch (aLength) {
        case 'H':
            return static_cast<unsigned char>(va_arg(anArgs.mList, unsigned));
        case 'h':
            return static_cast<unsigned short>(va_arg(anArgs.mList, unsigned));
        case 'l':
            return va_arg(anArgs.mList, unsigned long);
        case 'q':
            return va_arg(anArgs.mList, unsigned long long);
        case 'j':
            return va_arg(anArgs.mList, uintmax_t);
        case 'z':
        case 't':
            return va_arg(anArgs.mList, size_t);
        default:
            return va_arg(anArgs.mList, unsigned);
    }
}

void vxMakeUpper(char* aStr, const char* anEnd) {
    for (; aStr != anEnd; aStr++) {
        *aStr = *aStr >= 'a' && *aStr <= 'z' ? static_cast<char>(*aStr - ('a' - 'A')) : *aStr;
    }
}

void vxPutInteger(vxFormatSink& aSink, const vxConversion& aConversion, const char* aSign,
                  uint64_t aValue, int aBase) {
    char theDigits[24];
    char* theEnd = theDigits;
    if (aValue != 0 || aConversion.mPrecision != 0) {
        theEnd = std::to_chars(theDigits, theDigits + sizeof(theDigits), aValue, aBase).ptr;
    }
    if (aConversion.mKind == 'X') {
        vxMakeUpper(theDigits, theEnd);
    }
    const size_t theLength = static_cast<size_t>(theEnd - theDigits);
    size_t theZeros;
    if (aConversion.mPrecision < 0) {
        theZeros = vxZeroPad(aConversion, theLength + (*aSign != '\0'));
    } else {
        const size_t thePrecision = static_cast<size_t>(aConversion.mPrecision);
        theZeros = thePrecision > theLength ? thePrecision - theLength : 0;
    }
    vxPutPadded(aSink, aConversion, aSign, theZeros, theDigits, theLength);
}

bool vxPutSigned(vxFormatSink& aSink, const vxConversion& aConversion, vxArguments& anArgs) {
    const int64_t theValue = vxSignedArgument(aConversion.mLength, anArgs);
    const uint64_t theBits = static_cast<uint64_t>(theValue);
    vxPutInteger(aSink, aConversion, vxSignOf(aConversion, theValue < 0),
                 theValue < 0 ? 0 - theBits : theBits, 10);
    return true;
}

bool vxPutUnsigned(vxFormatSink& aSink, const vxConversion& aConversion, vxArguments& anArgs,
                   int aBase) {
    vxPutInteger(aSink, aConversion, "", vxUnsignedArgument(aConversion.mLength, anArgs), aBase);
    return true;
}

bool vxPutText(vxFormatSink& aSink, const vxConversion& aConversion, vxArguments& anArgs) {
    const char* theText = va_arg(anArgs.mList, const char*);
    if (theText == nullptr || aConversion.mLength != 0 || aConversion.mfZero) {
        return false;
    }
    size_t theLength;
    if (aConversion.mPrecision < 0) {
        theLength = strlen(theText);
    } else {
        theLength = strnlen(theText, static_cast<size_t>(aConversion.mPrecision));
    }
    vxPutPadded(aSink, aConversion, "", 0, theText, theLength);
    return true;
}

bool vxPutCharacter(vxFormatSink& aSink, const vxConversion& aConversion, vxArguments& anArgs) {
    if (aConversion.mLength != 0 || aConversion.mfZero) {
        return false;
    }
    const char theChar = static_cast<char>(va_arg(anArgs.mList, int));
    vxPutPadded(aSink, aConversion, "", 0, &theChar, 1);
    return true;
}

bool vxPutReal(vxFormatSink& aSink, const vxConversion& aConversion, vxArguments& anArgs,
               std::chars_format aFormat) {
    const double theValue = va_arg(anArgs.mList, double);
    const int thePrecision = aConversion.mPrecision < 0 ? 6 : aConversion.mPrecision;
    if (!std::isfinite(theValue) || thePrecision > kvxMaxRealPrecision) {
        return false;
    }
    char theDigits[kvxMaxReal];
    char* theEnd = std::to_chars(theDigits, theDigits + sizeof(theDigits), std::fabs(theValue),
                                 aFormat, thePrecision)
                       .ptr;
    if (aConversion.mKind < 'a') {
        vxMakeUpper(theDigits, theEnd);
    }
    const char* theSign = vxSignOf(aConversion, std::signbit(theValue));
    const size_t theLength = static_cast<size_t>(theEnd - theDigits);
    const size_t theZeros = vxZeroPad(aConversion, theLength + (*theSign != '\0'));
    vxPutPadded(aSink, aConversion, theSign, theZeros, theDigits, theLength);
    return true;
}

// Writes one argument; false for a conversion that is left to the C library.
bool vxPutArgument(vxFormatSink& aSink, const vxConversion& aConversion, vxArguments& anArgs) {
    switch (aConversion.mKind) {
        case 'd':
        case 'i':
            return vxPutSigned(aSink, aConversion, anArgs);
        case 'u':
            return vxPutUnsigned(aSink, aConversion, anArgs, 10);
        case 'x':
        case 'X':
            return vxPutUnsigned(aSink, aConversion, anArgs, 16);
        case 'o':
            return vxPutUnsigned(aSink, aConversion, anArgs, 8);
        case 's':
            return vxPutText(aSink, aConversion, anArgs);
        case 'c':
            return vxPutCharacter(aSink, aConversion, anArgs);
        case 'f':
        case 'F':
            return vxPutReal(aSink, aConversion, anArgs, std::chars_format::fixed);
        case 'e':
        case 'E':
            return vxPutReal(aSink, aConversion, anArgs, std::chars_format::scientific);
        case 'g':
        case 'G':
            return vxPutReal(aSink, aConversion, anArgs, std::chars_format::general);
        default:
            return false;
    }
}

// Writes the whole format; false when it holds something that is left to the C library.
bool vxPutFormat(vxFormatSink& aSink, const char* aFormat, vxArguments& anArgs) {
    while (*aFormat != '\0') {
        // Text between conversions is a few bytes long, as a rule.
        if (*aFormat != '%') {
            aSink.PutByte(*aFormat++);
            continue;
        }
        aFormat++;
        if (*aFormat == '%') {
            aSink.PutByte(*aFormat++);
            continue;
        }
        vxConversion theConversion;
        if (!vxReadConversion(aFormat, theConversion, anArgs) ||
            !vxPutArgument(aSink, theConversion, anArgs)) {
            return false;
        }
    }
    return true;
}

}  // namespace

int vx_vsnprintf(char* aBuffer, size_t aSize, const char* aFormat, va_list anArgs) {
    vxArguments theArgs;
    va_copy(theArgs.mList, anArgs);
    vxFormatSink theSink(aBuffer, aSize);
    const bool theDone = vxPutFormat(theSink, aFormat, theArgs);
    va_end(theArgs.mList);
    return theDone ? theSink.Finish() : vsnprintf(aBuffer, aSize, aFormat, anArgs);
}

int vx_snprintf(char* aBuffer, size_t aSize, const char* aFormat, ...) {
    va_list theArgs;
    va_start(theArgs, aFormat);
    const int theLength = vx_vsnprintf(aBuffer, aSize, aFormat, theArgs);
    va_end(theArgs);
    return theLength;
}
