#pragma once

#include <cstdint>
#include <cstring>

#include "ProbeInterface.h"

// Helpers of the probes that are built with the program.

inline uint32_t ProbeBig32(const uint8_t* aBytes) {
    return uint32_t(aBytes[0]) << 24 | uint32_t(aBytes[1]) << 16 | uint32_t(aBytes[2]) << 8 |
           uint32_t(aBytes[3]);
}

inline uint32_t ProbeLittle32(const uint8_t* aBytes) {
    return uint32_t(aBytes[3]) << 24 | uint32_t(aBytes[2]) << 16 | uint32_t(aBytes[1]) << 8 |
           uint32_t(aBytes[0]);
}

inline uint32_t ProbeLittle16(const uint8_t* aBytes) {
    return uint32_t(aBytes[1]) << 8 | uint32_t(aBytes[0]);
}

inline bool ProbeReadExactly(const vxmedia_source* aSource, uint64_t aPosition, uint8_t* aBuffer,
                             size_t aCount) {
    return aSource->read(aSource->context, aPosition, aBuffer, aCount) == aCount;
}

// Whether the file begins with these bytes.
inline bool ProbeBeginsWith(const vxmedia_source* aSource, const char* aMagic) {
    uint8_t theBytes[8];
    const size_t theLength = strlen(aMagic);
    return theLength <= sizeof(theBytes) && ProbeReadExactly(aSource, 0, theBytes, theLength) &&
           memcmp(theBytes, aMagic, theLength) == 0;
}
