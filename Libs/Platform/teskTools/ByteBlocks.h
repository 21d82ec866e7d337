#pragma once

// Sixteen bytes at a time, where the processor has registers for them; kvxHasByteBlocks tells.

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Places are counted from the low end of a word.
#if (defined(__SSE2__) || defined(__ARM_NEON)) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
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

/// Returns the bytes with capital letters read as small ones.
inline vxByteBlock vxByteBlock_Fold(const vxByteBlock& aBlock) {
    const vxByteBlock theIsCapital = reinterpret_cast<vxByteBlock>(aBlock - 'A' < 26);
    return aBlock | (theIsCapital & 0x20);
}

/// The places of a block that hold 0xFF, in ascending order; all its bytes are 0 or 0xFF.
class vxByteBlockHits {
public:
#if defined(__SSE2__)
    explicit vxByteBlockHits(const vxByteBlock& aBlock)
        : mBits(static_cast<uint32_t>(_mm_movemask_epi8(reinterpret_cast<__m128i>(aBlock)))) {}
    bool Any() const {
        return mBits != 0;
    }
    size_t First() const {
        return static_cast<size_t>(__builtin_ctz(mBits));
    }
    void DropFirst() {
        mBits &= mBits - 1;
    }

private:
    uint32_t mBits;  // one for each byte
#else
    explicit vxByteBlockHits(const vxByteBlock& aBlock) {
        uint64_t theHalves[2];
        memcpy(theHalves, &aBlock, sizeof(theHalves));
        for (int i = 0; i < 2; i++) {
            mBits[i] = theHalves[i] & UINT64_C(0x0101010101010101);
        }
    }
    bool Any() const {
        return (mBits[0] | mBits[1]) != 0;
    }
    size_t First() const {
        return static_cast<size_t>(mBits[0] != 0 ? __builtin_ctzll(mBits[0]) / 8
                                                 : 8 + __builtin_ctzll(mBits[1]) / 8);
    }
    void DropFirst() {
        uint64_t& theBits = mBits[mBits[0] == 0];
        theBits &= theBits - 1;
    }

private:
    uint64_t mBits[2];  // the lowest of each byte
#endif
};
