#pragma once

// Steps over JSON text and UTF-8, many bytes at a time where the bytes are plain.

#include <libteskTools/Types.h>

#include <cstring>
#include <string>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

inline uint64_t vxLoad64(const char* aPtr) {
    uint64_t theWord;
    memcpy(&theWord, aPtr, sizeof(theWord));
    return theWord;
}

/// High bits of those bytes that a string cannot hold as they are: quote, backslash, control
/// characters; and of bytes from 0x80. Bytes behind the first marked one may be marked wrongly.
inline uint64_t vxMarkSpecial(uint64_t aWord) {
    constexpr uint64_t kOnes = 0x0101010101010101u;
    constexpr uint64_t kHighs = 0x8080808080808080u;
    const uint64_t theQuotes = aWord ^ (kOnes * '"');
    const uint64_t theSlashes = aWord ^ (kOnes * '\\');
    return ((aWord - kOnes * 0x20) | (theQuotes - kOnes) | (theSlashes - kOnes) | aWord) & kHighs;
}

/// Whether a byte must be looked at: see vxMarkSpecial().
inline bool vxIsSpecial(unsigned char aByte) {
    return aByte < 0x20 || aByte >= 0x80 || aByte == '"' || aByte == '\\';
}

#ifdef __SSE2__
inline unsigned vxMarkSpecial16(const char* aPtr) {
    const __m128i theBytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(aPtr));
    const __m128i theQuotes = _mm_cmpeq_epi8(theBytes, _mm_set1_epi8('"'));
    const __m128i theSlashes = _mm_cmpeq_epi8(theBytes, _mm_set1_epi8('\\'));
    // As signed bytes those from 0x80 are below 0x20 too.
    const __m128i theOthers = _mm_cmplt_epi8(theBytes, _mm_set1_epi8(0x20));
    return static_cast<unsigned>(
        _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(theQuotes, theSlashes), theOthers)));
}
#endif

/// Returns the first special byte, or the end.
inline const char* vxFindSpecial(const char* aPtr, const char* anEnd) {
#ifdef __SSE2__
    while (anEnd - aPtr >= 16) {
        const unsigned theMarks = vxMarkSpecial16(aPtr);
        if (theMarks != 0) {
            return aPtr + __builtin_ctz(theMarks);
        }
        aPtr += 16;
    }
#else
    while (anEnd - aPtr >= 8 && vxMarkSpecial(vxLoad64(aPtr)) == 0) {
        aPtr += 8;
    }
#endif
    while (aPtr != anEnd && !vxIsSpecial(static_cast<unsigned char>(*aPtr))) {
        ++aPtr;
    }
    return aPtr;
}

/// Returns the first byte that must be escaped in a string, or the end.
inline const char* vxFindEscape(const char* aPtr, const char* anEnd) {
    while (aPtr != anEnd) {
        aPtr = vxFindSpecial(aPtr, anEnd);
        if (aPtr == anEnd || static_cast<unsigned char>(*aPtr) < 0x80) {
            return aPtr;
        }
        do {
            ++aPtr;
        } while (aPtr != anEnd && static_cast<unsigned char>(*aPtr) >= 0x80);
    }
    return aPtr;
}

/// Returns the length of the well-formed UTF-8 sequence at `aPtr`, which starts with a byte from
/// 0x80; 0 when there is none.
inline size_t vxUTF8Length(const char* aPtr, const char* anEnd) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(aPtr);
    const size_t theLeft = static_cast<size_t>(anEnd - aPtr);
    const auto fContinues = [p](size_t anIndex) { return (p[anIndex] & 0xC0) == 0x80; };
    if (p[0] < 0xE0) {
        return p[0] >= 0xC2 && theLeft >= 2 && fContinues(1) ? 2 : 0;
    }
    if (p[0] < 0xF0) {
        if (theLeft < 3 || !fContinues(1) || !fContinues(2)) {
            return 0;
        }
        const bool fOverlong = p[0] == 0xE0 && p[1] < 0xA0;
        const bool fSurrogate = p[0] == 0xED && p[1] >= 0xA0;
        return fOverlong || fSurrogate ? 0 : 3;
    }
    if (p[0] > 0xF4 || theLeft < 4 || !fContinues(1) || !fContinues(2) || !fContinues(3)) {
        return 0;
    }
    const bool fOverlong = p[0] == 0xF0 && p[1] < 0x90;
    const bool fBeyond = p[0] == 0xF4 && p[1] >= 0x90;
    return fOverlong || fBeyond ? 0 : 4;
}

/// Returns the first byte from 0x80 that begins no well-formed sequence, or the end.
inline const char* vxFindBadUTF8(const char* aPtr, const char* anEnd) {
    constexpr uint64_t kHighs = 0x8080808080808080u;
    while (aPtr != anEnd) {
        if (anEnd - aPtr >= 8 && (vxLoad64(aPtr) & kHighs) == 0) {
            aPtr += 8;
        } else if ((static_cast<unsigned char>(*aPtr) & 0x80) == 0) {
            ++aPtr;
        } else {
            const size_t theLength = vxUTF8Length(aPtr, anEnd);
            if (theLength == 0) {
                return aPtr;
            }
            aPtr += theLength;
        }
    }
    return aPtr;
}

inline bool vxIsUTF8(const char* aText, size_t aLength) {
    return vxFindBadUTF8(aText, aText + aLength) == aText + aLength;
}

/// Returns a text without the bytes that are no part of a well-formed sequence.
inline std::string vxWithoutBadUTF8(const char* aText, size_t aLength) {
    std::string theResult;
    const char* theEnd = aText + aLength;
    while (aText != theEnd) {
        const char* theBad = vxFindBadUTF8(aText, theEnd);
        theResult.append(aText, static_cast<size_t>(theBad - aText));
        aText = theBad == theEnd ? theEnd : theBad + 1;
    }
    return theResult;
}
