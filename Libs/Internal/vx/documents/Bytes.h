#pragma once

// Looking for a few bytes in a text, eight at a time.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

using vxBytes = uint64_t;  // eight bytes of a text, the first one lowest

constexpr ptrdiff_t kvxBytes_Count = sizeof(vxBytes);

inline vxBytes vxLoadBytes(const char* aText) {
    vxBytes theBytes;
    memcpy(&theBytes, aText, sizeof(theBytes));
    return __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? theBytes : __builtin_bswap64(theBytes);
}

/// The same byte eight times.
constexpr vxBytes vxRepeat(unsigned char aByte) {
    return aByte * UINT64_C(0x0101010101010101);
}

/// Marks the bytes that are one of these. A mark is the byte's highest bit; the lowest mark is right,
/// those above it need not be.
template <typename... Byte>
inline vxBytes vxMarkAnyOf(vxBytes aBytes, Byte... aByte) {
    const auto theMarks = [aBytes](unsigned char aOne) {
        const vxBytes theDifference = aBytes ^ vxRepeat(aOne);
        return (theDifference - vxRepeat(1)) & ~theDifference;
    };
    return (theMarks(static_cast<unsigned char>(aByte)) | ...) & vxRepeat(0x80);
}

/// Marks the bytes below 0x20, as vxMarkAnyOf().
inline vxBytes vxMarkControls(vxBytes aBytes) {
    return (aBytes - vxRepeat(0x20)) & ~aBytes & vxRepeat(0x80);
}

/// Which byte has the lowest mark? There is one.
inline size_t vxFirstMarked(vxBytes aMarks) {
    return static_cast<size_t>(__builtin_ctzll(aMarks)) / 8;
}

/// Calls a function with the place of every eight bytes, of which the last ones may overlap those
/// before, until it returns marks; returns the first byte marked, or the end. The text has eight bytes.
template <typename Mark>
inline const char* vxFindMarked(const char* aText, const char* anEnd, Mark aMark) {
    const char* const theLast = anEnd - kvxBytes_Count;
    for (;;) {
        const vxBytes theMarks = aMark(aText);
        if (theMarks != 0) {
            return aText + vxFirstMarked(theMarks);
        }
        if (aText == theLast) {
            return anEnd;
        }
        aText += std::min(kvxBytes_Count, theLast - aText);
    }
}

/// Returns the first byte that is one of these, or the end.
template <typename... Byte>
inline const char* vxFindAnyOf(const char* aText, const char* anEnd, Byte... aByte) {
    if (anEnd - aText >= kvxBytes_Count) {
        return vxFindMarked(aText, anEnd, [aByte...](const char* aPlace) {
            return vxMarkAnyOf(vxLoadBytes(aPlace), aByte...);
        });
    }
    while (aText != anEnd && !((*aText == aByte) || ...)) {
        ++aText;
    }
    return aText;
}

/// Are all bytes at least 0x20 and below 0x80?
inline bool vxIsPrintingASCII(vxBytes aBytes) {
    return (((aBytes - vxRepeat(0x20)) | aBytes) & vxRepeat(0x80)) == 0;
}

/// Are two texts of one length the same? Made for short ones.
inline bool vxAreSame(const char* aLeft, const char* aRight, size_t aLength) {
    if (aLength >= sizeof(vxBytes)) {
        return aLength > 2 * sizeof(vxBytes)
                   ? memcmp(aLeft, aRight, aLength) == 0
                   : vxLoadBytes(aLeft) == vxLoadBytes(aRight) &&
                         vxLoadBytes(aLeft + aLength - sizeof(vxBytes)) ==
                             vxLoadBytes(aRight + aLength - sizeof(vxBytes));
    }
    if (aLength >= sizeof(uint32_t)) {
        uint32_t theWords[4];
        memcpy(&theWords[0], aLeft, sizeof(uint32_t));
        memcpy(&theWords[1], aRight, sizeof(uint32_t));
        memcpy(&theWords[2], aLeft + aLength - sizeof(uint32_t), sizeof(uint32_t));
        memcpy(&theWords[3], aRight + aLength - sizeof(uint32_t), sizeof(uint32_t));
        return theWords[0] == theWords[1] && theWords[2] == theWords[3];
    }
    return aLength == 0 || (aLeft[0] == aRight[0] && aLeft[aLength / 2] == aRight[aLength / 2] &&
                            aLeft[aLength - 1] == aRight[aLength - 1]);
}

/// Is one of the bytes below 0x20 and no line feed?
inline bool vxHasControlButLineFeed(vxBytes aBytes) {
    const vxBytes theLows = vxRepeat(0x7F);
    const vxBytes theDifference = aBytes ^ vxRepeat('\n');
    const vxBytes theOthers = ((theDifference & theLows) + theLows) | theDifference;
    const vxBytes thePrinting = ((aBytes & theLows) + vxRepeat(0x60)) | aBytes;
    return (theOthers & ~thePrinting & vxRepeat(0x80)) != 0;
}
