// UTF-8 by the table of RFC 3629: the lead byte fixes the length and narrows what the second byte
// may be, which keeps overlong forms, surrogates and values above U+10FFFF out. Runs of ASCII are
// taken eight bytes at a time.

#include <libteskTools/Memory.h>
#include <libteskTools/Unicode.h>

#include <cstring>

namespace {

struct vxUTF8Lead {
    uint8_t mFirst, mLast;           // lead bytes of this row
    uint8_t mLength;                 // bytes of the whole character
    uint8_t mSecondMin, mSecondMax;  // what may follow directly
    uint8_t mMask;                   // bits of the lead byte that count
};

constexpr vxUTF8Lead kvxUTF8Leads[] = {
    {0xC2, 0xDF, 2, 0x80, 0xBF, 0x1F}, {0xE0, 0xE0, 3, 0xA0, 0xBF, 0x0F},
    {0xE1, 0xEC, 3, 0x80, 0xBF, 0x0F}, {0xED, 0xED, 3, 0x80, 0x9F, 0x0F},
    {0xEE, 0xEF, 3, 0x80, 0xBF, 0x0F}, {0xF0, 0xF0, 4, 0x90, 0xBF, 0x07},
    {0xF1, 0xF3, 4, 0x80, 0xBF, 0x07}, {0xF4, 0xF4, 4, 0x80, 0x8F, 0x07},
};

uint8_t vxByteAt(const char* aStr, size_t aPos) {
    return static_cast<uint8_t>(aStr[aPos]);
}

const vxUTF8Lead* vxFindLead(uint8_t aByte) {
    for (const vxUTF8Lead& theLead : kvxUTF8Leads) {
        if (aByte >= theLead.mFirst && aByte <= theLead.mLast) {
            return &theLead;
        }
    }
    return nullptr;
}

// Reads the character of two bytes or more at `aStr` and returns its length, or 0 where there is no
// valid one.
size_t vxDecodeLong(const char* aStr, size_t aLength, uint32_t* aChar) {
    const vxUTF8Lead* theLead = vxFindLead(vxByteAt(aStr, 0));
    if (theLead == nullptr || theLead->mLength > aLength ||
        vxByteAt(aStr, 1) < theLead->mSecondMin || vxByteAt(aStr, 1) > theLead->mSecondMax) {
        return 0;
    }
    uint32_t theChar = vxByteAt(aStr, 0) & theLead->mMask;
    for (size_t i = 1; i < theLead->mLength; i++) {
        if ((vxByteAt(aStr, i) & 0xC0) != 0x80) {
            return 0;
        }
        theChar = theChar << 6 | (vxByteAt(aStr, i) & 0x3F);
    }
    *aChar = theChar;
    return theLead->mLength;
}

// Returns the length of the run of ASCII that begins at `aStr`.
size_t vxASCIIRun(const char* aStr, size_t aLength) {
    size_t i = 0;
    for (uint64_t theBytes; i + sizeof(theBytes) <= aLength; i += sizeof(theBytes)) {
        memcpy(&theBytes, aStr + i, sizeof(theBytes));
        if ((theBytes & UINT64_C(0x8080808080808080)) != 0) {
            break;
        }
    }
    while (i < aLength && vxByteAt(aStr, i) < 0x80) {
        i++;
    }
    return i;
}

// Receives wide characters; without a target it only counts.
class vxWideSink {
public:
    vxWideSink(wchar_t* aWide, size_t aCapacity)
        : mWide(aWide), mCapacity(aWide == nullptr ? SIZE_MAX : aCapacity) {}

    bool AddASCII(const char* aStr, size_t aLength) {
        if (aLength > mCapacity - mCount) {
            aLength = mCapacity - mCount;
            Copy(aStr, aLength);
            return false;
        }
        Copy(aStr, aLength);
        return true;
    }

    bool Add(uint32_t aChar) {
        if (mCount == mCapacity) {
            return false;
        }
        if (mWide != nullptr) {
            mWide[mCount] = static_cast<wchar_t>(aChar);
        }
        mCount++;
        return true;
    }

    size_t Count() const { return mCount; }

private:
    void Copy(const char* aStr, size_t aLength) {
        for (size_t i = 0; mWide != nullptr && i < aLength; i++) {
            mWide[mCount + i] = static_cast<wchar_t>(vxByteAt(aStr, i));
        }
        mCount += aLength;
    }

    wchar_t* mWide;     // null: only count
    size_t mCapacity;   // characters
    size_t mCount = 0;  // characters taken, never above mCapacity
};

// Passes the valid characters of a text to the sink. Stops at the first bad byte unless those are
// skipped, and where the sink is full; returns whether it came to the end.
bool vxReadUTF8(const char* aStr, size_t aLength, bool afSkipBad, vxWideSink& aSink) {
    size_t i = 0;
    while (i < aLength) {
        const size_t theRun = vxASCIIRun(aStr + i, aLength - i);
        if (!aSink.AddASCII(aStr + i, theRun)) {
            return false;
        }
        i += theRun;
        if (i == aLength) {
            break;
        }
        uint32_t theChar = 0;
        const size_t theSize = vxDecodeLong(aStr + i, aLength - i, &theChar);
        if (theSize == 0 ? !afSkipBad : !aSink.Add(theChar)) {
            return false;
        }
        i += theSize == 0 ? 1 : theSize;
    }
    return true;
}

// Bytes of a wide character in UTF-8; 0 for what is no character.
size_t vxUTF8Size(uint32_t aChar) {
    if (aChar < 0x80) {
        return 1;
    }
    if (aChar < 0x800) {
        return 2;
    }
    if (aChar < 0x10000) {
        return aChar >= 0xD800 && aChar <= 0xDFFF ? 0 : 3;
    }
    return aChar <= 0x10FFFF ? 4 : 0;
}

char* vxEncode(uint32_t aChar, char* aTarget) {
    constexpr uint8_t theLeads[] = {0, 0, 0xC0, 0xE0, 0xF0};
    const size_t theSize = vxUTF8Size(aChar);
    for (size_t i = theSize; i > 1; i--) {
        aTarget[i - 1] = static_cast<char>(0x80 | (aChar & 0x3F));
        aChar >>= 6;
    }
    if (theSize > 0) {
        aTarget[0] = static_cast<char>(theLeads[theSize] | aChar);
    }
    return aTarget + theSize;
}

}  // namespace

int vxUnicode_UTF8ToWide(const char* aStr, size_t aLength, wchar_t* aWide, size_t aCapacity,
                         size_t* aWritten) {
    vxWideSink theSink(aWide, aCapacity);
    const bool theSuccess = vxReadUTF8(aStr, aLength, false, theSink);
    if (aWritten != nullptr) {
        *aWritten = theSink.Count();
    }
    return theSuccess ? 0 : -1;
}

size_t vxUTF_MakeValidUTF8(char* aStr, size_t aLength) {
    size_t theKept = 0;
    size_t i = 0;
    while (i < aLength) {
        size_t theGood = vxASCIIRun(aStr + i, aLength - i);
        uint32_t theChar;
        while (i + theGood < aLength) {
            const size_t theSize =
                vxDecodeLong(aStr + i + theGood, aLength - i - theGood, &theChar);
            if (theSize == 0) {
                break;
            }
            theGood += theSize;
            theGood += vxASCIIRun(aStr + i + theGood, aLength - i - theGood);
        }
        if (theKept != i) {
            memmove(aStr + theKept, aStr + i, theGood);
        }
        theKept += theGood;
        i += theGood + 1;  // the byte behind the good ones is bad, or the end
    }
    return theKept;
}

wchar_t* vxWString_S_FromUTF8(const char* aStr) {
    if (aStr == nullptr) {
        return nullptr;
    }
    const size_t theLength = strlen(aStr);
    vxWideSink theCounter(nullptr, 0);
    vxReadUTF8(aStr, theLength, true, theCounter);
    const size_t theCount = theCounter.Count();
    if (theCount > SIZE_MAX / sizeof(wchar_t) - 1) {
        return nullptr;
    }
    wchar_t* theWide = static_cast<wchar_t*>(vxMalloc((theCount + 1) * sizeof(wchar_t)));
    if (theWide != nullptr) {
        vxWideSink theSink(theWide, theCount);
        vxReadUTF8(aStr, theLength, true, theSink);
        theWide[theCount] = L'\0';
    }
    return theWide;
}

char* vxWString_S_ToUTF8(const wchar_t* aStr) {
    if (aStr == nullptr) {
        return nullptr;
    }
    size_t theSize = 0;
    for (const wchar_t* theChar = aStr; *theChar != L'\0'; theChar++) {
        theSize += vxUTF8Size(static_cast<uint32_t>(*theChar));
    }
    char* theText = static_cast<char*>(vxMalloc(theSize + 1));
    if (theText != nullptr) {
        char* theEnd = theText;
        for (const wchar_t* theChar = aStr; *theChar != L'\0'; theChar++) {
            theEnd = vxEncode(static_cast<uint32_t>(*theChar), theEnd);
        }
        *theEnd = '\0';
    }
    return theText;
}
