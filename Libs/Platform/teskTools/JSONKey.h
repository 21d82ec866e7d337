#pragma once

// A name that is looked for.

#include "JSONNode.h"

/// A name with its length and first bytes as they stand in front of a stored one, so that one
/// comparison of words tells most other names apart.
class vxJSONKey {
public:
    explicit vxJSONKey(const char* aName) : vxJSONKey(aName, strlen(aName)) {}

    vxJSONKey(const char* aName, size_t aLength)
        : mName(aName),
          mLength(aLength),
          // Names beyond 32 bits of length are nowhere.
          mHead((aLength > kvxMaxTextLength ? UINT32_MAX : aLength) |
                (First(aName, aLength) << 32)),
          mMask(aLength >= 4 ? UINT64_MAX : (uint64_t{1} << (32 + 8 * aLength)) - 1) {}

    const char* Name() const { return mName; }
    size_t Length() const { return mLength; }

    bool Matches(const vxJSON_t* aNode) const {
        const char* theName = vxName(aNode);
        if (theName == nullptr) {
            return false;
        }
        // A stored text takes at least eight bytes with its length.
        uint64_t theHead;
        memcpy(&theHead, theName - sizeof(uint32_t), sizeof(theHead));
        return ((theHead ^ mHead) & mMask) == 0 && (mLength <= 4 || SameRest(theName));
    }

private:
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the length is the low half");

    static uint64_t First(const char* aName, size_t aLength) {
        if (aLength >= 4) {
            uint32_t theWord;
            memcpy(&theWord, aName, sizeof(theWord));
            return theWord;
        }
        uint64_t theBytes = 0;
        for (size_t i = aLength; i > 0; --i) {
            theBytes = theBytes << 8 | static_cast<unsigned char>(aName[i - 1]);
        }
        return theBytes;
    }

    template <typename T>
    static bool SameAt(const char* aText, const char* aOther) {
        T theWord;
        T theOther;
        memcpy(&theWord, aText, sizeof(T));
        memcpy(&theOther, aOther, sizeof(T));
        return theWord == theOther;
    }

    bool SameRest(const char* aName) const {
        if (mLength <= 8) {
            return SameAt<uint32_t>(aName + mLength - 4, mName + mLength - 4);
        }
        for (size_t i = 0; i < mLength - 8; i += 8) {
            if (!SameAt<uint64_t>(aName + i, mName + i)) {
                return false;
            }
        }
        return SameAt<uint64_t>(aName + mLength - 8, mName + mLength - 8);
    }

    const char* mName;
    size_t mLength;
    uint64_t mHead;  // length and up to four bytes
    uint64_t mMask;  // of the bytes that the name has
};
