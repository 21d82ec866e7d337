#pragma once

// Sixteen bytes at a time, where the processor has registers for them; kvxHasByteBlocks tells.

#include <cstdint>
#include <cstring>

#if defined(__SSE2__) || defined(__ARM_NEON)
constexpr bool kvxHasByteBlocks = true;
#else
constexpr bool kvxHasByteBlocks = false;
#endif

typedef uint8_t vxByteBlock __attribute__((vector_size(16)));

constexpr size_t kvxByteBlock_Size = sizeof(vxByteBlock);

inline vxByteBlock vxByteBlock_Load(const char* aStr) {
    vxByteBlock theBlock;
    memcpy(&theBlock, aStr, sizeof(theBlock));
    return theBlock;
}

inline vxByteBlock vxByteBlock_Fill(uint8_t aByte) {
    return vxByteBlock{} + aByte;
}

/// Is a byte other than 0?
inline bool vxByteBlock_Any(const vxByteBlock& aBlock) {
    uint64_t theHalves[2];
    memcpy(theHalves, &aBlock, sizeof(theHalves));
    return (theHalves[0] | theHalves[1]) != 0;
}

/// Returns the place of the first byte that is not 0; there must be one.
inline size_t vxByteBlock_First(const vxByteBlock& aBlock) {
    uint64_t theHalves[2];
    memcpy(theHalves, &aBlock, sizeof(theHalves));
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return static_cast<size_t>(theHalves[0] != 0 ? __builtin_ctzll(theHalves[0]) / 8
                                                 : 8 + __builtin_ctzll(theHalves[1]) / 8);
#else
    return static_cast<size_t>(theHalves[0] != 0 ? __builtin_clzll(theHalves[0]) / 8
                                                 : 8 + __builtin_clzll(theHalves[1]) / 8);
#endif
}

/// Returns the bytes with capital letters read as small ones.
inline vxByteBlock vxByteBlock_Fold(const vxByteBlock& aBlock) {
    const vxByteBlock theIsCapital = reinterpret_cast<vxByteBlock>(aBlock - 'A' < 26);
    return aBlock | (theIsCapital & 0x20);
}
