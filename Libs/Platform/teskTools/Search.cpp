// Forward search is the C library's. The other two hunt for one byte of the needle and compare
// there, which is fast on ordinary text; where candidates keep failing late, a budget of compared
// bytes runs out and a search by failure links takes over, which never looks at a byte twice.

#include <libteskTools/Memory.h>
#include <libteskTools/Search.h>

#include <cstdlib>
#include <cstring>

namespace {

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

constexpr size_t kvxNotFound = static_cast<size_t>(-1);

// Knuth, Morris and Pratt: position of the needle, or kvxNotFound.
template <typename View>
size_t vxSearchByLinks(const View& aText, const View& aNeedle) {
    // Entry i is the length of the longest proper border of the first i + 1 bytes.
    size_t* theLinks = static_cast<size_t*>(vxCalloc(aNeedle.mLength * sizeof(size_t)));
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

// Bytes that comparisons may look at before the search by links takes over.
size_t vxBudget(size_t aLength) {
    return aLength < SIZE_MAX / 8 ? aLength * 4 + 256 : SIZE_MAX;
}

size_t vxCommonFolded(const char* aLeft, const char* aRight, size_t aLength) {
    size_t i = 0;
    while (i < aLength && vxFold(aLeft[i]) == vxFold(aRight[i])) {
        i++;
    }
    return i;
}

size_t vxCommonBackward(const char* aLeft, const char* aRight, size_t aLength) {
    size_t i = 0;
    while (i < aLength && aLeft[aLength - 1 - i] == aRight[aLength - 1 - i]) {
        i++;
    }
    return i;
}

// Hands out the places where a byte stands in either case, in order.
class vxCaselessByte {
public:
    vxCaselessByte(const char* aText, const char* anEnd, char aByte) : mEnd(anEnd) {
        const char theSmall = vxFold(aByte);
        const bool theLetter = theSmall >= 'a' && theSmall <= 'z';
        mBytes[0] = theSmall;
        mBytes[1] = theLetter ? static_cast<char>(theSmall & ~0x20) : theSmall;
        mNext[0] = Search(aText, 0);
        mNext[1] = theLetter ? Search(aText, 1) : mEnd;
    }

    // Returns the next place, or the end of the text.
    const char* Next() {
        const int theFirst = mNext[0] <= mNext[1] ? 0 : 1;
        const char* thePlace = mNext[theFirst];
        if (thePlace != mEnd) {
            mNext[theFirst] = Search(thePlace + 1, theFirst);
        }
        return thePlace;
    }

private:
    const char* Search(const char* aText, int aCase) const {
        const void* thePlace = memchr(aText, mBytes[aCase], static_cast<size_t>(mEnd - aText));
        return thePlace == nullptr ? mEnd : static_cast<const char*>(thePlace);
    }

    const char* mEnd;
    char mBytes[2];        // the small and the capital letter
    const char* mNext[2];  // next place of each, mEnd when there is none
};

}  // namespace

const char* vxSearch_First(const char* aText, size_t aLength, const char* aNeedle,
                           size_t aNeedleLength) {
    if (aNeedleLength == 0 || aNeedleLength > aLength) {
        return aNeedleLength == 0 ? aText : nullptr;
    }
    return static_cast<const char*>(memmem(aText, aLength, aNeedle, aNeedleLength));
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
    if (aNeedleLength == 0 || aNeedleLength > aLength) {
        return aNeedleLength == 0 ? aText : nullptr;
    }
    const char* theEnd = aText + (aLength - aNeedleLength + 1);
    size_t theBudget = vxBudget(aLength);
    vxCaselessByte theCandidates(aText, theEnd, aNeedle[0]);
    for (const char* thePlace; (thePlace = theCandidates.Next()) != theEnd;) {
        const size_t theCommon = vxCommonFolded(thePlace, aNeedle, aNeedleLength);
        if (theCommon == aNeedleLength) {
            return thePlace;
        }
        if (theCommon >= theBudget) {
            const size_t theLength = static_cast<size_t>(aText + aLength - thePlace);
            const size_t theIndex =
                vxSearchByLinks(vxFolded{thePlace, theLength}, vxFolded{aNeedle, aNeedleLength});
            return theIndex == kvxNotFound ? nullptr : thePlace + theIndex;
        }
        theBudget -= theCommon;
    }
    return nullptr;
}
