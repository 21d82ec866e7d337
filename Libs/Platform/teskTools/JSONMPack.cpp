// The MPack form of a tree: MessagePack, whose keys may be indexes of a dictionary.
//
// The decoder trusts no length. It takes memory only for values that it has seen, and each value of
// a tree costs at most 16 times the bytes it was read from: 16 for the node, which is the smallest
// value times 16, and for a name or text less than that. Long dictionary words are shared, because
// one byte can ask for them.

#include <limits>

#include "JSONArena.h"
#include "JSONMPackDictionary.h"
#include "JSONText.h"

namespace {

// First bytes of the MessagePack formats.
enum vxFormat : unsigned {
    kFixMap = 0x80,
    kFixArray = 0x90,
    kFixString = 0xA0,
    kNil = 0xC0,
    kFalse = 0xC2,
    kTrue = 0xC3,
    kFloat = 0xCA,
    kDouble = 0xCB,
    kUInt8 = 0xCC,
    kUInt16 = 0xCD,
    kUInt32 = 0xCE,
    kUInt64 = 0xCF,
    kInt8 = 0xD0,
    kInt16 = 0xD1,
    kInt32 = 0xD2,
    kInt64 = 0xD3,
    kString8 = 0xD9,
    kString16 = 0xDA,
    kString32 = 0xDB,
    kArray16 = 0xDC,
    kArray32 = 0xDD,
    kMap16 = 0xDE,
    kMap32 = 0xDF,
    kNegative = 0xE0,
};

template <typename T>
inline T vxBigEndian(T aValue) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    if (sizeof(T) == 2) {
        return static_cast<T>(__builtin_bswap16(static_cast<uint16_t>(aValue)));
    }
    if (sizeof(T) == 4) {
        return static_cast<T>(__builtin_bswap32(static_cast<uint32_t>(aValue)));
    }
    if (sizeof(T) == 8) {
        return static_cast<T>(__builtin_bswap64(static_cast<uint64_t>(aValue)));
    }
#endif
    return aValue;
}

// ---- Encoding

class vxMPackEncoder {
public:
    explicit vxMPackEncoder(const vxJSONMPackDictionary_t* aDictionary)
        : mDictionary(aDictionary),
          mBytes(nullptr),
          mPos(nullptr),
          mEnd(nullptr),
          mfFailed(false) {}

    /// Returns the bytes, whose owner is the caller; null when they cannot be written.
    uint8_t* Encode(const vxJSON_t* aNode, uint32_t* aSize) {
        WriteTree(aNode);
        const size_t theSize = static_cast<size_t>(mPos - mBytes);
        if (mfFailed || theSize > UINT32_MAX) {
            free(mBytes);
            return nullptr;
        }
        if (aSize != nullptr) {
            *aSize = static_cast<uint32_t>(theSize);
        }
        void* theBytes = vxRealloc(mBytes, theSize);
        return theBytes == nullptr ? mBytes : static_cast<uint8_t*>(theBytes);
    }

private:
    static constexpr size_t kHeaderSize = 9;  // longest first byte and number

    struct Frame {
        const vxJSON_t* mContainer;
        const vxJSON_t* mLast;
        bool mfMap;
    };

    void WriteTree(const vxJSON_t* aNode) {
        while (aNode != nullptr && !mfFailed) {
            WriteNode(aNode);
            const vxJSON_t* theLast = vxIsContainer(aNode) ? vxChildren(aNode).mLast : nullptr;
            if (theLast != nullptr) {
                const bool fMap = vxKind(aNode) == vxJSONKind::kObject;
                mfFailed = !mFrames.Push({aNode, theLast, fMap}) || mfFailed;
                aNode = vxNext(theLast);
            } else {
                aNode = StepOn(aNode);
            }
            if (aNode != nullptr && mFrames.Top().mfMap) {
                WriteName(aNode);
            }
        }
    }

    const vxJSON_t* StepOn(const vxJSON_t* aNode) {
        while (!mFrames.IsEmpty()) {
            if (aNode != mFrames.Top().mLast) {
                return vxNext(aNode);
            }
            aNode = mFrames.Pop().mContainer;
        }
        return nullptr;
    }

    void WriteName(const vxJSON_t* aNode) {
        const vxJSONText theName = vxNameText(aNode);
        const int32_t theIndex =
            mDictionary == nullptr ? -1 : vxWord_Find(mDictionary, theName.mData, theName.mLength);
        if (theIndex < 0) {
            WriteText(theName, (aNode->mHead & kvxNameIsBad) != 0);
        } else if (Reserve(kHeaderSize)) {
            WriteUInt(static_cast<uint64_t>(theIndex));
        }
    }

    void WriteNode(const vxJSON_t* aNode) {
        if (!Reserve(kHeaderSize)) {
            return;
        }
        const vxJSONKind theKind = vxKind(aNode);
        switch (theKind) {
            case vxJSONKind::kNull:
                Put(kNil);
                break;
            case vxJSONKind::kBool:
                Put(vxValue(aNode) != 0 ? kTrue : kFalse);
                break;
            case vxJSONKind::kUInt:
                WriteUInt(vxValue(aNode));
                break;
            case vxJSONKind::kInt:
                WriteInt(static_cast<int64_t>(vxValue(aNode)));
                break;
            case vxJSONKind::kDouble:
                WriteDouble(vxFromBits(vxValue(aNode)));
                break;
            case vxJSONKind::kString:
                WriteText(vxStringText(aNode), (aNode->mHead & kvxTextIsBad) != 0);
                break;
            case vxJSONKind::kArray:
                WriteCount(kFixArray, kArray16, vxChildren(aNode).mCount);
                break;
            case vxJSONKind::kObject:
                WriteCount(kFixMap, kMap16, vxChildren(aNode).mCount);
                break;
        }
    }

    void WriteUInt(uint64_t aValue) {
        if (aValue < 0x80) {
            Put(static_cast<unsigned>(aValue));
        } else if (aValue <= 0xFF) {
            Put(kUInt8, static_cast<uint8_t>(aValue));
        } else if (aValue <= 0xFFFF) {
            Put(kUInt16, static_cast<uint16_t>(aValue));
        } else if (aValue <= 0xFFFFFFFF) {
            Put(kUInt32, static_cast<uint32_t>(aValue));
        } else {
            Put(kUInt64, aValue);
        }
    }

    void WriteInt(int64_t aValue) {
        if (aValue >= 0) {
            WriteUInt(static_cast<uint64_t>(aValue));
        } else if (aValue >= -32) {
            Put(static_cast<unsigned>(aValue) & 0xFF);
        } else if (aValue >= INT8_MIN) {
            Put(kInt8, static_cast<uint8_t>(aValue));
        } else if (aValue >= INT16_MIN) {
            Put(kInt16, static_cast<uint16_t>(aValue));
        } else if (aValue >= INT32_MIN) {
            Put(kInt32, static_cast<uint32_t>(aValue));
        } else {
            Put(kInt64, static_cast<uint64_t>(aValue));
        }
    }

    void WriteDouble(double aValue) {
        // Values beyond the floats must not be converted; of the rest, most change.
        const bool fInRange = aValue >= -static_cast<double>(std::numeric_limits<float>::max()) &&
                              aValue <= static_cast<double>(std::numeric_limits<float>::max());
        if (fInRange && static_cast<double>(static_cast<float>(aValue)) == aValue) {
            const float theFloat = static_cast<float>(aValue);
            uint32_t theBits;
            memcpy(&theBits, &theFloat, sizeof(theBits));
            Put(kFloat, theBits);
        } else {
            Put(kDouble, vxBits(aValue));
        }
    }

    /// A count below 16 goes into the first byte, else two or four bytes follow it.
    void WriteCount(unsigned aFix, unsigned aShort, uint32_t aCount) {
        if (aCount < 16) {
            Put(aFix | aCount);
        } else if (aCount <= 0xFFFF) {
            Put(aShort, static_cast<uint16_t>(aCount));
        } else {
            Put(aShort + 1, aCount);
        }
    }

    void WriteText(const vxJSONText& aText, bool afBad) {
        if (afBad) {
            const std::string theGood = vxWithoutBadUTF8(aText.mData, aText.mLength);
            WriteText({theGood.data(), theGood.size()}, false);
            return;
        }
        if (!Reserve(kHeaderSize + aText.mLength)) {
            return;
        }
        const uint32_t theLength = static_cast<uint32_t>(aText.mLength);
        if (theLength < 32) {
            Put(kFixString | theLength);
        } else if (theLength <= 0xFF) {
            Put(kString8, static_cast<uint8_t>(theLength));
        } else if (theLength <= 0xFFFF) {
            Put(kString16, static_cast<uint16_t>(theLength));
        } else {
            Put(kString32, theLength);
        }
        vxCopyText(reinterpret_cast<char*>(mPos), aText.mData, aText.mLength);
        mPos += aText.mLength;
    }

    void Put(unsigned aByte) { *mPos++ = static_cast<uint8_t>(aByte); }

    template <typename T>
    void Put(unsigned aFirst, T aValue) {
        Put(aFirst);
        const T theValue = vxBigEndian(aValue);
        memcpy(mPos, &theValue, sizeof(theValue));
        mPos += sizeof(theValue);
    }

    bool Reserve(size_t aSize) { return static_cast<size_t>(mEnd - mPos) >= aSize || Grow(aSize); }

    __attribute__((noinline)) bool Grow(size_t aSize) {
        const size_t theUsed = static_cast<size_t>(mPos - mBytes);
        const size_t theRoom = 2 * static_cast<size_t>(mEnd - mBytes) + 128;
        const bool fFits = !mfFailed && aSize < SIZE_MAX / 4 && theRoom < SIZE_MAX / 4;
        void* theBytes = fFits ? vxRealloc(mBytes, theRoom + aSize) : nullptr;
        if (theBytes == nullptr) {
            mfFailed = true;
            return false;
        }
        mBytes = static_cast<uint8_t*>(theBytes);
        mPos = mBytes + theUsed;
        mEnd = mBytes + theRoom + aSize;
        return true;
    }

    const vxJSONMPackDictionary_t* mDictionary;
    uint8_t* mBytes;
    uint8_t* mPos;
    uint8_t* mEnd;
    bool mfFailed;
    vxJSONStack<Frame> mFrames;
};

// ---- Decoding

class vxMPackDecoder {
public:
    vxMPackDecoder(const uint8_t* aBytes, size_t aSize, bool afExact,
                   const vxJSONMPackDictionary_t* aDictionary)
        : mDictionary(aDictionary),
          mPos(reinterpret_cast<const char*>(aBytes)),
          mLeft(aSize),
          mfExact(afExact),
          mArena(!afExact       ? 512
                 : aSize < 1024 ? 4 * aSize
                                : kvxSlabMax,
                 aSize < SIZE_MAX / 32 ? 16 * aSize + 64 : SIZE_MAX),
          mFrame{{nullptr, nullptr, nullptr, 0}, 1, false},
          mName{nullptr, 0},
          mWord(nullptr) {}

    /// Returns the root; null for a malformed value or, where the size is exact, bytes behind it.
    vxJSON_t* Decode() {
        while (mFrame.mLeft != 0) {
            --mFrame.mLeft;
            if ((mFrame.mfMap && !ReadName()) || !ReadValue()) {
                Discard();
                return nullptr;
            }
            while (mFrame.mLeft == 0 && !mOuter.IsEmpty()) {
                Close();
            }
        }
        if (mfExact && mLeft != 0) {
            Discard();
            return nullptr;
        }
        return mFrame.mRing.mFirst;
    }

private:
    /// A container that is being filled.
    struct Frame {
        vxJSONRing mRing;
        uint32_t mLeft;  // values to come
        bool mfMap;
    };

    void Close() {
        mFrame.mRing.Close();
        mFrame = mOuter.Pop();
    }

    void Discard() {
        while (!mOuter.IsEmpty()) {
            Close();
        }
        mArena.Seal();
        vxJSON_Delete(mFrame.mRing.mFirst);
    }

    // ---- Bytes

    template <typename T>
    bool Take(T& aValue) {
        if (mLeft < sizeof(T)) {
            return false;
        }
        memcpy(&aValue, mPos, sizeof(T));
        aValue = vxBigEndian(aValue);
        mPos += sizeof(T);
        mLeft -= sizeof(T);
        return true;
    }

    /// Reads a number of 2^aWidth bytes.
    bool TakeUInt(unsigned aWidth, uint64_t& aValue) {
        uint8_t theByte = 0;
        uint16_t theShort = 0;
        uint32_t theWord = 0;
        bool fTaken = false;
        switch (aWidth) {
            case 0:
                fTaken = Take(theByte);
                aValue = theByte;
                return fTaken;
            case 1:
                fTaken = Take(theShort);
                aValue = theShort;
                return fTaken;
            case 2:
                fTaken = Take(theWord);
                aValue = theWord;
                return fTaken;
            default:
                return Take(aValue);
        }
    }

    bool TakeText(uint64_t aLength, vxJSONText& aText) {
        if (aLength > mLeft || aLength > kvxMaxTextLength) {
            return false;
        }
        aText = {mPos, static_cast<size_t>(aLength)};
        mPos += aText.mLength;
        mLeft -= aText.mLength;
        return vxIsUTF8(aText.mData, aText.mLength);
    }

    /// Reads the text of a string whose first byte was read; false if that is of another type.
    bool TakeString(unsigned aFirst, vxJSONText& aText) {
        if (aFirst >= kFixString && aFirst < kNil) {
            return TakeText(aFirst & 0x1F, aText);
        }
        uint64_t theLength = 0;
        return aFirst >= kString8 && aFirst <= kString32 &&
               TakeUInt(aFirst - kString8, theLength) && TakeText(theLength, aText);
    }

    // ---- Names and nodes

    /// Names are texts, or indexes of the dictionary.
    bool ReadName() {
        uint8_t theFirst = 0;
        if (!Take(theFirst)) {
            return false;
        }
        mWord = nullptr;
        uint64_t theIndex = theFirst;
        const bool fNumber = theFirst >= kUInt8 && theFirst <= kUInt64;
        if (theFirst >= 0x80 && !fNumber) {
            return TakeString(theFirst, mName);
        }
        if (fNumber && !TakeUInt(theFirst - kUInt8, theIndex)) {
            return false;
        }
        mWord = vxWord_At(mDictionary, theIndex);
        if (mWord == nullptr) {
            return false;
        }
        mName = {mWord, vxLength(mWord)};
        return true;
    }

    /// Longest dictionary word that is copied: with its node it takes 32 bytes, 16 for each of the
    /// two that member and value have at least.
    static constexpr size_t kLongestCopy = 11;

    /// Cuts the cell of a value, names it and appends it to the open container.
    vxJSON_t* NewNode(vxJSONKind aKind, const vxJSONText& aText) {
        const bool fRoot = mFrame.mRing.mContainer == nullptr;
        const bool fShared =
            mFrame.mfMap && mWord != nullptr && (mName.mLength > kLongestCopy || !IsGoodWord());
        const bool fSlot = fRoot || fShared;
        const size_t theNameSize = fSlot          ? sizeof(const char*)
                                   : mFrame.mfMap ? vxStoredSize(mName.mLength)
                                                  : 0;
        const size_t theTextSize = aText.mLength == 0 ? 0 : vxStoredSize(aText.mLength);
        vxJSON_t* theNode = mArena.NewNode(aKind,
                                           fSlot          ? vxJSONPlace::kSlot
                                           : mFrame.mfMap ? vxJSONPlace::kInline
                                                          : vxJSONPlace::kNone,
                                           theNameSize + theTextSize);
        if (theNode == nullptr) {
            return nullptr;
        }
        char* theCell = reinterpret_cast<char*>(theNode + 1);
        if (fShared) {
            ShareWord(theNode);
        } else if (fRoot) {
            *reinterpret_cast<const char**>(theCell) = nullptr;
        } else if (mFrame.mfMap) {
            vxStoreText(theCell, mName.mData, mName.mLength);
        }
        if (aText.mLength != 0) {
            const char* theText = vxStoreText(theCell + theNameSize, aText.mData, aText.mLength);
            theNode->mValue = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(theText));
        }
        mFrame.mRing.Append(theNode);
        return theNode;
    }

    /// Words are the program's own and may hold anything.
    bool IsGoodWord() const { return vxIsUTF8(mName.mData, mName.mLength); }

    void ShareWord(vxJSON_t* aNode) {
        vxRetainName(mWord);
        *reinterpret_cast<const char**>(aNode + 1) = mWord;
        aNode->mHead |= IsGoodWord() ? 0 : kvxNameIsBad;
    }

    // ---- Values

    bool ReadValue() {
        uint8_t theFirst = 0;
        if (!Take(theFirst)) {
            return false;
        }
        if (theFirst < kFixMap) {
            return AddScalar(vxJSONKind::kUInt, theFirst);
        }
        if (theFirst >= kNegative) {
            return AddScalar(vxJSONKind::kInt,
                             static_cast<uint64_t>(static_cast<int8_t>(theFirst)));
        }
        if (theFirst < kFixArray) {
            return Open(vxJSONKind::kObject, theFirst & 0x0F);
        }
        if (theFirst < kFixString) {
            return Open(vxJSONKind::kArray, theFirst & 0x0F);
        }
        if (theFirst < kNil || (theFirst >= kString8 && theFirst <= kString32)) {
            return ReadString(theFirst);
        }
        if (theFirst >= kArray16) {
            return ReadContainer(theFirst);
        }
        return ReadScalar(theFirst);
    }

    bool AddScalar(vxJSONKind aKind, uint64_t aValue) {
        vxJSON_t* theNode = NewNode(aKind, {nullptr, 0});
        if (theNode == nullptr) {
            return false;
        }
        theNode->mValue = aValue;
        return true;
    }

    bool ReadString(unsigned aFirst) {
        vxJSONText theText = {nullptr, 0};
        if (!TakeString(aFirst, theText)) {
            return false;
        }
        if (theText.mLength == 0) {
            return AddScalar(
                vxJSONKind::kString,
                static_cast<uint64_t>(reinterpret_cast<uintptr_t>(kvxEmptyText.mText)));
        }
        return NewNode(vxJSONKind::kString, theText) != nullptr;
    }

    bool ReadContainer(unsigned aFirst) {
        const bool fMap = aFirst >= kMap16;
        uint64_t theCount = 0;
        return TakeUInt(1 + (aFirst - (fMap ? kMap16 : kArray16)), theCount) &&
               Open(fMap ? vxJSONKind::kObject : vxJSONKind::kArray,
                    static_cast<uint32_t>(theCount));
    }

    bool ReadScalar(unsigned aFirst) {
        uint64_t theValue = 0;
        if (aFirst >= kUInt8 && aFirst <= kUInt64) {
            return TakeUInt(aFirst - kUInt8, theValue) && AddScalar(vxJSONKind::kUInt, theValue);
        }
        if (aFirst >= kInt8 && aFirst <= kInt64) {
            const unsigned theWidth = aFirst - kInt8;
            return TakeUInt(theWidth, theValue) && AddInt(SignExtended(theValue, 8u << theWidth));
        }
        switch (aFirst) {
            case kNil:
                return AddScalar(vxJSONKind::kNull, 0);
            case kFalse:
            case kTrue:
                return AddScalar(vxJSONKind::kBool, aFirst == kTrue ? 1 : 0);
            case kDouble:
                return TakeUInt(3, theValue) && AddScalar(vxJSONKind::kDouble, theValue);
            case kFloat:
                return TakeUInt(2, theValue) &&
                       AddScalar(vxJSONKind::kDouble,
                                 WidenedFloat(static_cast<uint32_t>(theValue)));
            default:
                return false;
        }
    }

    static uint64_t SignExtended(uint64_t aValue, unsigned aBits) {
        const uint64_t theSign = uint64_t{1} << (aBits - 1);
        return (aValue ^ theSign) - theSign;
    }

    static uint64_t WidenedFloat(uint32_t aBits) {
        float theFloat;
        memcpy(&theFloat, &aBits, sizeof(theFloat));
        return vxBits(static_cast<double>(theFloat));
    }

    /// As in text, only a negative number is a signed one.
    bool AddInt(uint64_t aValue) {
        return AddScalar((aValue >> 63) != 0 ? vxJSONKind::kInt : vxJSONKind::kUInt, aValue);
    }

    bool Open(vxJSONKind aKind, uint32_t aCount) {
        const bool fMap = aKind == vxJSONKind::kObject;
        // Each value takes a byte, each name one more.
        if (mOuter.Count() == kvxJSON_MaxDepth || aCount > (fMap ? mLeft / 2 : mLeft)) {
            return false;
        }
        vxJSON_t* theNode = NewNode(aKind, {nullptr, 0});
        if (theNode == nullptr || aCount == 0) {
            return theNode != nullptr;
        }
        if (!mOuter.Push(mFrame)) {
            return false;
        }
        mFrame = {{theNode, nullptr, nullptr, 0}, aCount, fMap};
        return true;
    }

    const vxJSONMPackDictionary_t* mDictionary;
    const char* mPos;
    size_t mLeft;  // bytes from there
    bool mfExact;
    vxJSONArena mArena;
    Frame mFrame;       // the open container; around the root, one of a single value
    vxJSONText mName;   // of the member that is being read
    const char* mWord;  // the dictionary's block, if the name came from there
    vxJSONStack<Frame> mOuter;
};

}  // namespace

uint8_t* vxJSON_ToMPack(const vxJSON_t* aNode, uint32_t* aSize,
                        const vxJSONMPackDictionary_t* aDictionary) {
    return aNode == nullptr ? nullptr : vxMPackEncoder(aDictionary).Encode(aNode, aSize);
}

vxJSON_t* vxJSON_FromMPack(const uint8_t* aBuffer, const vxJSONMPackDictionary_t* aDictionary) {
    // No buffer reaches around the address space.
    if (aBuffer == nullptr) {
        return nullptr;
    }
    return vxMPackDecoder(aBuffer, SIZE_MAX / 2, false, aDictionary).Decode();
}

vxJSON_t* vxJSON_FromMPackSize(const uint8_t* aBuffer, size_t aSize,
                               const vxJSONMPackDictionary_t* aDictionary) {
    if (aBuffer == nullptr) {
        return nullptr;
    }
    return vxMPackDecoder(aBuffer, aSize, true, aDictionary).Decode();
}
