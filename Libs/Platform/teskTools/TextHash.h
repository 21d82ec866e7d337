#pragma once

// Hashes of texts. They start from a random value per process: names come from outside, and nobody
// shall be able to choose ones that fall into one bucket.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

inline uint64_t vxTextHash_RandomStart() {
    try {
        std::random_device theDevice;
        return (static_cast<uint64_t>(theDevice()) << 32) | theDevice();
    } catch (...) {
        return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(&vxTextHash_RandomStart));
    }
}

inline uint64_t vxTextHash_Mix(uint64_t aState, uint64_t aWord) {
    const uint64_t theProduct = (aState ^ aWord) * 0x9E3779B97F4A7C15u;
    return theProduct ^ (theProduct >> 32);
}

/// Fewer than eight bytes in one word; texts of one length that differ give words that do.
inline uint64_t vxTextHash_ShortWord(const char* aText, size_t aLength) {
    if (aLength >= sizeof(uint32_t)) {
        uint32_t theFirst, theLast;
        memcpy(&theFirst, aText, sizeof(theFirst));
        memcpy(&theLast, aText + aLength - sizeof(theLast), sizeof(theLast));
        return static_cast<uint64_t>(theLast) << 32 | theFirst;
    }
    if (aLength == 0) {
        return 0;
    }
    const auto theByte = [aText](size_t anIndex) {
        return static_cast<uint64_t>(static_cast<unsigned char>(aText[anIndex]));
    };
    return theByte(0) | theByte(aLength / 2) << 8 | theByte(aLength - 1) << 16;
}

/// Hashes `aLength` bytes; `aScope` sets equal texts of different scopes apart.
inline uint32_t vxTextHash(const char* aText, size_t aLength, uint32_t aScope = 0) {
    static const uint64_t sStart = vxTextHash_RandomStart();
    uint64_t theState = sStart ^ aLength ^ (static_cast<uint64_t>(aScope) << 32);
    while (aLength >= sizeof(uint64_t)) {
        uint64_t theWord;
        memcpy(&theWord, aText, sizeof(theWord));
        theState = vxTextHash_Mix(theState, theWord);
        aText += sizeof(theWord);
        aLength -= sizeof(theWord);
    }
    const uint64_t theRest = vxTextHash_ShortWord(aText, aLength);
    theState = vxTextHash_Mix(vxTextHash_Mix(theState, theRest), sStart);
    return static_cast<uint32_t>(theState ^ (theState >> 29));
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
