#pragma once

// Hashes of texts. They depend on two random words of the process: names come from outside, and nobody
// shall be able to choose ones that fall together. Each word of a text is hidden by one of them before
// it is a factor of a product, so that no change of a text, nor any two that should cancel out, has a
// foreseeable effect.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

struct vxTextHashKey {
    uint64_t mFirst;
    uint64_t mSecond;
};

inline uint64_t vxTextHash_RandomWord() {
    try {
        std::random_device theDevice;
        return (static_cast<uint64_t>(theDevice()) << 32) | theDevice();
    } catch (...) {
        return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(&vxTextHash_RandomWord)) *
               0x9E3779B97F4A7C15u;
    }
}

/// Makes one word of two, each bit of which depends on many of both.
inline uint64_t vxTextHash_Fold(uint64_t aLeft, uint64_t aRight) {
#ifdef __SIZEOF_INT128__
    __extension__ typedef unsigned __int128 Wide;
    const Wide theProduct = static_cast<Wide>(aLeft) * aRight;
    return static_cast<uint64_t>(theProduct) ^ static_cast<uint64_t>(theProduct >> 64);
#else
    // Products of 32 bits are what such a machine has.
    const uint64_t theLeft = (aLeft >> 32) * static_cast<uint32_t>(aLeft);
    const uint64_t theRight = (aRight >> 32) * static_cast<uint32_t>(aRight);
    return theLeft ^ (theRight << 32 | theRight >> 32);
#endif
}

template <typename Word>
inline uint64_t vxTextHash_Load(const char* aText) {
    Word theWord;
    memcpy(&theWord, aText, sizeof(theWord));
    return theWord;
}

/// Hashes `aLength` bytes; `aScope` sets equal texts of different scopes apart.
inline uint32_t vxTextHash(const char* aText, size_t aLength, uint32_t aScope = 0) {
    static const vxTextHashKey sKey = {vxTextHash_RandomWord(), vxTextHash_RandomWord()};
    const uint64_t theSecond = sKey.mSecond ^ static_cast<uint64_t>(aScope) << 32;
    uint64_t theState = sKey.mFirst + aLength * sKey.mSecond;
    for (; aLength > 16; aLength -= 16, aText += 16) {
        theState = vxTextHash_Fold(vxTextHash_Load<uint64_t>(aText) ^ theState,
                                   vxTextHash_Load<uint64_t>(aText + 8) ^ theSecond);
    }
    // The last words may repeat bytes of those before; texts of one length that differ still give
    // words that do.
    uint64_t theFirst = 0;
    uint64_t theLast = 0;
    if (aLength >= 8) {
        theFirst = vxTextHash_Load<uint64_t>(aText);
        theLast = vxTextHash_Load<uint64_t>(aText + aLength - 8);
    } else if (aLength >= 4) {
        theFirst = vxTextHash_Load<uint32_t>(aText);
        theLast = vxTextHash_Load<uint32_t>(aText + aLength - 4);
    } else if (aLength > 0) {
        theFirst =
            vxTextHash_Load<uint8_t>(aText) << 8 | vxTextHash_Load<uint8_t>(aText + aLength / 2);
        theLast = vxTextHash_Load<uint8_t>(aText + aLength - 1);
    }
    theState = vxTextHash_Fold(theFirst ^ theState, theLast ^ theSecond);
    // Where factors have few bits, so have the lowest of their product.
    return static_cast<uint32_t>((theState ^ theState >> 32) * 0x9E3779B97F4A7C15u >> 32);
}

/// Finds numbers by hash, where the caller tells whether a number is the one that is looked for.
class vxHashIndex {
public:
    static constexpr uint32_t kNone = UINT32_MAX;

    /// Drops everything, and makes room for so many.
    void Reset(size_t aCount) {
        size_t theSize = 8;
        while (theSize / 2 < aCount) {
            theSize *= 2;
        }
        mEntries.assign(theSize, {0, kNone});
        mCount = 0;
    }

    template <typename IsIt>
    uint32_t Find(uint32_t aHash, IsIt anIsIt) const {
        for (size_t i = aHash & Mask();; i = (i + 1) & Mask()) {
            const Entry& theEntry = mEntries[i];
            if (theEntry.mNumber == kNone ||
                (theEntry.mHash == aHash && anIsIt(theEntry.mNumber))) {
                return theEntry.mNumber;
            }
        }
    }

    void Add(uint32_t aHash, uint32_t aNumber) {
        if (++mCount > mEntries.size() / 2) {
            Grow();
        }
        Put({aHash, aNumber});
    }

    /// Replaces a number that is there.
    void Replace(uint32_t aHash, uint32_t anOld, uint32_t aNew) {
        size_t i = aHash & Mask();
        while (mEntries[i].mNumber != anOld) {
            i = (i + 1) & Mask();
        }
        mEntries[i].mNumber = aNew;
    }

private:
    struct Entry {
        uint32_t mHash;
        uint32_t mNumber;
    };

    size_t Mask() const { return mEntries.size() - 1; }

    void Put(const Entry& anEntry) {
        size_t i = anEntry.mHash & Mask();
        while (mEntries[i].mNumber != kNone) {
            i = (i + 1) & Mask();
        }
        mEntries[i] = anEntry;
    }

    void Grow() {
        std::vector<Entry> theOld(mEntries.size() * 2, {0, kNone});
        theOld.swap(mEntries);
        for (const Entry& theEntry : theOld) {
            if (theEntry.mNumber != kNone) {
                Put(theEntry);
            }
        }
    }

    std::vector<Entry> mEntries = std::vector<Entry>(8, {0, kNone});  // at most half of them in use
    size_t mCount = 0;
};
