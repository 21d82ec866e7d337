#pragma once

// Looking for a few bytes in a text, eight at a time where none of them is.

#include <cstddef>
#include <cstdint>
#include <cstring>

using vxBytes = uint64_t;  // eight bytes of a text, in the order of memory

inline vxBytes vxLoadBytes(const char* aText) {
    vxBytes theBytes;
    memcpy(&theBytes, aText, sizeof(theBytes));
    return theBytes;
}

inline void vxStoreBytes(char* aTarget, vxBytes aBytes) {
    memcpy(aTarget, &aBytes, sizeof(aBytes));
}

/// The same byte eight times.
constexpr vxBytes vxRepeat(unsigned char aByte) {
    return aByte * UINT64_C(0x0101010101010101);
}

/// Is one of the bytes one of these?
template <typename... Byte>
inline bool vxHasAnyOf(vxBytes aBytes, Byte... aByte) {
    const auto theMarks = [aBytes](unsigned char aOne) {
        const vxBytes theDifference = aBytes ^ vxRepeat(aOne);
        return (theDifference - vxRepeat(1)) & ~theDifference;
    };
    return ((theMarks(static_cast<unsigned char>(aByte)) | ...) & vxRepeat(0x80)) != 0;
}

/// Is one of the bytes below 0x20?
inline bool vxHasControl(vxBytes aBytes) {
    return ((aBytes - vxRepeat(0x20)) & ~aBytes & vxRepeat(0x80)) != 0;
}

/// Is one of the bytes below 0x20 and no line feed?
inline bool vxHasControlButLineFeed(vxBytes aBytes) {
    const vxBytes theLows = vxRepeat(0x7F);
    const vxBytes theDifference = aBytes ^ vxRepeat('\n');
    const vxBytes theOthers = ((theDifference & theLows) + theLows) | theDifference;
    const vxBytes thePrinting = ((aBytes & theLows) + vxRepeat(0x60)) | aBytes;
    return (theOthers & ~thePrinting & vxRepeat(0x80)) != 0;
}
