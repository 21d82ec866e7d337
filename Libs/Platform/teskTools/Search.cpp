// A search hunts for two bytes of the needle, those that are rarest in ordinary text, and compares
// the needle where both stand at their distance: such places are rare. Where candidates
// keep failing late, a budget of compared bytes runs out and a search takes over that never looks at
// a byte twice.

#include <libteskTools/Memory.h>
#include <libteskTools/Search.h>

#include "ByteBlocks.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr size_t kvxNotFound = static_cast<size_t>(-1);

char vxFold(char aChar) {
    return aChar >= 'A' && aChar <= 'Z' ? static_cast<char>(aChar | 0x20) : aChar;
}

// Bytes as they are, counted from the end.
struct vxBackward {
    const char* mStr;
    size_t mLength;
    char operator[](size_t anIndex) const { return mStr[mLength - 1 - anIndex]; }
};

// Bytes with capital letters read as small ones.
struct vxFolded {
    const char* mStr;
    size_t mLength;
    char operator[](size_t anIndex) const { return vxFold(mStr[anIndex]); }
};

// Knuth, Morris and Pratt: position of the needle, or kvxNotFound.
template <typename View>
size_t vxSearchByLinks(const View& aText, const View& aNeedle) {
    // Entry i is the length of the longest proper border of the first i + 1 bytes. For a needle whose
    // entries no block can hold, the allocation fails as any other that is too large.
    const size_t theSize =
        aNeedle.mLength < SIZE_MAX / sizeof(size_t) ? aNeedle.mLength * sizeof(size_t) : SIZE_MAX;
    size_t* theLinks = static_cast<size_t*>(vxCalloc(theSize));
    if (theLinks == nullptr) {
        return kvxNotFound;
    }
    for (size_t i = 1, theBorder = 0; i < aNeedle.mLength; i++) {
        while (theBorder > 0 && aNeedle[i] != aNeedle[theBorder]) {
            theBorder = theLinks[theBorder - 1];
        }
        theBorder += aNeedle[i] == aNeedle[theBorder];
        theLinks[i] = theBorder;
    }
    size_t theMatched = 0;
    size_t theResult = kvxNotFound;
    for (size_t i = 0; i < aText.mLength && theResult == kvxNotFound; i++) {
        while (theMatched > 0 && aText[i] != aNeedle[theMatched]) {
            theMatched = theLinks[theMatched - 1];
        }
        theMatched += aText[i] == aNeedle[theMatched];
        if (theMatched == aNeedle.mLength) {
            theResult = i + 1 - theMatched;
        }
    }
    free(theLinks);
    return theResult;
}

// Bytes that are common in prose and in markup, the most common last; no other byte counts.
constexpr char kvxCommonBytes[] = "zqxjkvbpygfwmucl/.,-\"<>=0drhsnioate ";

struct vxCommonness {
    constexpr vxCommonness() : mRanks() {
        for (size_t i = 0; kvxCommonBytes[i] != '\0'; i++) {
            mRanks[static_cast<unsigned char>(kvxCommonBytes[i])] = static_cast<uint8_t>(i + 1);
        }
    }
    uint8_t mRanks[256];
};
constexpr vxCommonness kvxCommonness;

// The two places of a needle to hunt for; the same one where it is a single byte.
template <typename Match>
struct vxRarePlaces {
    vxRarePlaces(const char* aNeedle, size_t aLength) {
        constexpr size_t kvxLookedAt = 16;  // bytes; more would cost short searches too much
        const size_t theLength = aLength < kvxLookedAt ? aLength : kvxLookedAt;
        unsigned theRank = 256, theOtherRank = 256;
        for (size_t i = 0; i < theLength; i++) {
            const uint8_t theByte = static_cast<uint8_t>(Match::Spelling(aNeedle[i]));
            const unsigned theCommonness = kvxCommonness.mRanks[theByte];
            if (theCommonness < theRank) {
                mOther = mPlace;
                theOtherRank = theRank;
                mPlace = i;
                theRank = theCommonness;
            } else if (theCommonness < theOtherRank) {
                mOther = i;
                theOtherRank = theCommonness;
            }
        }
    }

    size_t mPlace = 0;
    size_t mOther = 0;
};

// Bytes that comparisons may look at before the other search takes over.
size_t vxBudget(size_t aLength) {
    return aLength < SIZE_MAX / 8 ? aLength * 4 + 256 : SIZE_MAX;
}

size_t vxCommonBackward(const char* aLeft, const char* aRight, size_t aLength) {
    size_t i = 0;
    while (i < aLength && aLeft[aLength - 1 - i] == aRight[aLength - 1 - i]) {
        i++;
    }
    return i;
}

// How bytes are matched: as they are.
struct vxExact {
    // Stands for every byte that may match.
    struct Byte {
        explicit Byte(char aByte)
            : mByte(aByte), mBlock(vxByteBlock_Fill(static_cast<uint8_t>(aByte))) {}
        bool Matches(char aByte) const { return aByte == mByte; }
        vxByteBlock Matches(const vxByteBlock& aBlock) const {
            return reinterpret_cast<vxByteBlock>(aBlock == mBlock);
        }
        char mByte;
        vxByteBlock mBlock;
    };

    static char Spelling(char aByte) { return aByte; }

    static size_t Common(const char* aLeft, const char* aRight, size_t aLength) {
        size_t i = 0;
        while (i < aLength && aLeft[i] == aRight[i]) {
            i++;
        }
        return i;
    }

    static const char* SearchLinear(const char* aText, size_t aLength, const char* aNeedle,
                                    size_t aNeedleLength) {
        return static_cast<const char*>(memmem(aText, aLength, aNeedle, aNeedleLength));
    }
};

// How bytes are matched: letters in either case.
struct vxCaseless {
    struct Byte {
        explicit Byte(char aByte)
            : mByte(vxFold(aByte)),
              mBit(mByte >= 'a' && mByte <= 'z' ? 0x20 : 0),
              mBlock(vxByteBlock_Fill(static_cast<uint8_t>(mByte))),
              mBits(vxByteBlock_Fill(mBit)) {}
        // The bit turns no byte into a small letter but its capital.
        bool Matches(char aByte) const { return static_cast<char>(aByte | mBit) == mByte; }
        vxByteBlock Matches(const vxByteBlock& aBlock) const {
            return reinterpret_cast<vxByteBlock>((aBlock | mBits) == mBlock);
        }
        char mByte;
        uint8_t mBit;  // the one in which the cases of a letter differ, or 0
        vxByteBlock mBlock, mBits;
    };

    static char Spelling(char aByte) { return vxFold(aByte); }

    static size_t Common(const char* aLeft, const char* aRight, size_t aLength) {
        return vxSearch_CommonNoCase(aLeft, aRight, aLength);
    }

    static const char* SearchLinear(const char* aText, size_t aLength, const char* aNeedle,
                                    size_t aNeedleLength) {
        const size_t theIndex =
            vxSearchByLinks(vxFolded{aText, aLength}, vxFolded{aNeedle, aNeedleLength});
        return theIndex == kvxNotFound ? nullptr : aText + theIndex;
    }
};

template <typename Match>
class vxSearcher {
public:
    vxSearcher(const char* aText, size_t aLength, const char* aNeedle, size_t aNeedleLength)
        : mText(aText),
          mStarts(aLength - aNeedleLength + 1),
          mNeedle(aNeedle),
          mNeedleLength(aNeedleLength),
          mPlaces(aNeedle, aNeedleLength),
          mByte(aNeedle[mPlaces.mPlace]),
          mOther(aNeedle[mPlaces.mOther]),
          mBudget(vxBudget(aLength)) {}

    const char* Search() {
        size_t i = 0;
        if (kvxHasByteBlocks) {
            constexpr size_t theStride = 4 * kvxByteBlock_Size;
            if (kvxByteBlock_Size <= mStarts) {
                // A match close by is found without looking far ahead.
                if (TryBlock(HitsAt(0), 0)) {
                    return mResult;
                }
                i = kvxByteBlock_Size;
            }
            while (i + theStride <= mStarts) {
                // Most strides hold nothing, and are left after one look.
                const vxByteBlock theHits[] = {HitsAt(i), HitsAt(i + kvxByteBlock_Size),
                                               HitsAt(i + 2 * kvxByteBlock_Size),
                                               HitsAt(i + 3 * kvxByteBlock_Size)};
                if (vxByteBlockHits(theHits[0] | theHits[1] | theHits[2] | theHits[3]).Any()) {
                    for (const vxByteBlock& theBlock : theHits) {
                        if (TryBlock(theBlock, i)) {
                            return mResult;
                        }
                        i += kvxByteBlock_Size;
                    }
                } else {
                    i += theStride;
                }
            }
            for (; i + kvxByteBlock_Size <= mStarts; i += kvxByteBlock_Size) {
                if (TryBlock(HitsAt(i), i)) {
                    return mResult;
                }
            }
        }
        for (; i < mStarts; i++) {
            if (mByte.Matches(mText[i + mPlaces.mPlace]) &&
                mOther.Matches(mText[i + mPlaces.mOther]) && TryAt(i)) {
                return mResult;
            }
        }
        return nullptr;
    }

private:
    vxByteBlock HitsAt(size_t aPos) const {
        return mByte.Matches(vxByteBlock_Load(mText + aPos + mPlaces.mPlace)) &
               mOther.Matches(vxByteBlock_Load(mText + aPos + mPlaces.mOther));
    }

    bool TryBlock(const vxByteBlock& aBlock, size_t aPos) {
        for (vxByteBlockHits theHits(aBlock); theHits.Any(); theHits.DropFirst()) {
            if (TryAt(aPos + theHits.First())) {
                return true;
            }
        }
        return false;
    }

    // Compares the needle at a candidate; true when the search has ended, in whatever way.
    bool TryAt(size_t aPos) {
        const size_t theCommon = Match::Common(mText + aPos, mNeedle, mNeedleLength);
        if (theCommon == mNeedleLength) {
            mResult = mText + aPos;
            return true;
        }
        if (theCommon < mBudget) {
            mBudget -= theCommon;
            return false;
        }
        mResult = Match::SearchLinear(mText + aPos, mStarts - aPos + mNeedleLength - 1, mNeedle,
                                      mNeedleLength);
        return true;
    }

    const char* mText;
    size_t mStarts;  // places where the needle may begin
    const char* mNeedle;
    size_t mNeedleLength;
    vxRarePlaces<Match> mPlaces;
    typename Match::Byte mByte, mOther;  // the bytes there
    size_t mBudget;
    const char* mResult = nullptr;
};

template <typename Match>
const char* vxSearchFirst(const char* aText, size_t aLength, const char* aNeedle,
                          size_t aNeedleLength) {
    if (aNeedleLength == 0 || aNeedleLength > aLength) {
        return aNeedleLength == 0 ? aText : nullptr;
    }
    return vxSearcher<Match>(aText, aLength, aNeedle, aNeedleLength).Search();
}

}  // namespace

const char* vxSearch_First(const char* aText, size_t aLength, const char* aNeedle,
                           size_t aNeedleLength) {
    return vxSearchFirst<vxExact>(aText, aLength, aNeedle, aNeedleLength);
}

const char* vxSearch_LastByte(const char* aText, size_t aLength, char aByte) {
    return aLength == 0 ? nullptr : static_cast<const char*>(memrchr(aText, aByte, aLength));
}

const char* vxSearch_Last(const char* aText, size_t aLength, const char* aNeedle,
                          size_t aNeedleLength) {
    if (aNeedleLength == 0 || aNeedleLength > aLength) {
        return aNeedleLength == 0 ? aText + aLength : nullptr;
    }
    size_t theBudget = vxBudget(aLength);
    size_t theStarts = aLength - aNeedleLength + 1;
    while (const char* thePlace = vxSearch_LastByte(aText, theStarts, aNeedle[0])) {
        const size_t theCommon = vxCommonBackward(thePlace, aNeedle, aNeedleLength);
        if (theCommon == aNeedleLength) {
            return thePlace;
        }
        theStarts = static_cast<size_t>(thePlace - aText);
        if (theCommon >= theBudget) {
            const size_t theLength = theStarts + aNeedleLength - 1;
            const size_t theIndex =
                vxSearchByLinks(vxBackward{aText, theLength}, vxBackward{aNeedle, aNeedleLength});
            return theIndex == kvxNotFound ? nullptr : aText + theLength - theIndex - aNeedleLength;
        }
        theBudget -= theCommon;
    }
    return nullptr;
}

const char* vxSearch_FirstNoCase(const char* aText, size_t aLength, const char* aNeedle,
                                 size_t aNeedleLength) {
    return vxSearchFirst<vxCaseless>(aText, aLength, aNeedle, aNeedleLength);
}

size_t vxSearch_CommonNoCase(const char* aLeft, const char* aRight, size_t aLength) {
    size_t i = 0;
    if (kvxHasByteBlocks && aLength >= kvxByteBlock_Size) {
        // The last block ends with the text, and may overlap the one before it.
        const size_t theLast = aLength - kvxByteBlock_Size;
        for (;; i = i + kvxByteBlock_Size < theLast ? i + kvxByteBlock_Size : theLast) {
            const vxByteBlock theDifference =
                reinterpret_cast<vxByteBlock>(vxByteBlock_Fold(vxByteBlock_Load(aLeft + i)) !=
                                              vxByteBlock_Fold(vxByteBlock_Load(aRight + i)));
            const vxByteBlockHits theHits(theDifference);
            if (theHits.Any()) {
                return i + theHits.First();
            }
            if (i == theLast) {
                return aLength;
            }
        }
    }
    while (i < aLength && vxFold(aLeft[i]) == vxFold(aRight[i])) {
        i++;
    }
    return i;
}
