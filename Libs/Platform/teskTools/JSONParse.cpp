// Reads JSON text: RFC 8259, strictly.
//
// One loop reads a value, then closes containers or steps to the next value. Each string is scanned
// first, which checks it and tells its decoded length, and copied once its cell has been cut. An
// error is wherever the loop stands when it cannot go on.

#include <cfloat>
#include <charconv>

#include "Escapes.h"
#include "JSONArena.h"
#include "JSONNumber.h"
#include "JSONText.h"

namespace {

/// A string between its quotes, checked.
struct vxScannedText {
    const char* mStart;
    const char* mEnd;
    size_t mLength;  // once decoded
};

bool vxIsDigit(char aChar) {
    return static_cast<unsigned char>(aChar - '0') < 10;
}

/// The value of four hexadecimal digits that were checked.
uint32_t vxHex4(const char* aPtr) {
    uint32_t theValue = 0;
    for (int i = 0; i < 4; ++i) {
        theValue = theValue * 16 + static_cast<uint32_t>(vxHexValue(aPtr[i]));
    }
    return theValue;
}

char vxDecodeLetter(char aChar) {
    return aChar == 'b' ? '\b' : aChar == 'f' ? '\f' : vxUnescaped(aChar);
}

bool vxIsHighSurrogate(uint32_t aUnit) {
    return (aUnit & 0xFC00) == 0xD800;
}

bool vxIsLowSurrogate(uint32_t aUnit) {
    return (aUnit & 0xFC00) == 0xDC00;
}

size_t vxUTF8Size(uint32_t aCodePoint) {
    return aCodePoint < 0x80 ? 1 : aCodePoint < 0x800 ? 2 : aCodePoint < 0x10000 ? 3 : 4;
}

char* vxWriteUTF8(char* aTarget, uint32_t aCodePoint) {
    static constexpr unsigned char kvxLeads[] = {0, 0x00, 0xC0, 0xE0, 0xF0};
    const size_t theSize = vxUTF8Size(aCodePoint);
    for (size_t i = theSize - 1; i > 0; --i) {
        aTarget[i] = static_cast<char>(0x80 | (aCodePoint & 0x3F));
        aCodePoint >>= 6;
    }
    aTarget[0] = static_cast<char>(kvxLeads[theSize] | aCodePoint);
    return aTarget + theSize;
}

/// Decodes an escape behind its backslash, which was checked, and steps over it.
char* vxDecodeEscape(char* aTarget, const char*& aPtr) {
    if (*aPtr != 'u') {
        *aTarget = vxDecodeLetter(*aPtr++);
        return aTarget + 1;
    }
    uint32_t theUnit = vxHex4(aPtr + 1);
    aPtr += 5;
    if (vxIsHighSurrogate(theUnit)) {
        theUnit = 0x10000 + ((theUnit & 0x3FF) << 10) + (vxHex4(aPtr + 2) & 0x3FF);
        aPtr += 6;
    }
    return vxWriteUTF8(aTarget, theUnit);
}

/// Stores a scanned text at `aCell` and returns the address of its first byte.
char* vxStoreScanned(char* aCell, const vxScannedText& aText) {
    const size_t theRaw = static_cast<size_t>(aText.mEnd - aText.mStart);
    if (theRaw == aText.mLength) {
        return vxStoreText(aCell, aText.mStart, theRaw);
    }
    const uint32_t theLength = static_cast<uint32_t>(aText.mLength);
    memcpy(aCell, &theLength, sizeof(theLength));
    char* theTarget = aCell + sizeof(theLength);
    const char* p = aText.mStart;
    while (p != aText.mEnd) {
        const size_t theLeft = static_cast<size_t>(aText.mEnd - p);
        const char* theSlash = static_cast<const char*>(memchr(p, '\\', theLeft));
        const size_t thePlain =
            static_cast<size_t>((theSlash == nullptr ? aText.mEnd : theSlash) - p);
        vxCopyText(theTarget, p, thePlain);
        theTarget += thePlain;
        p += thePlain;
        if (theSlash != nullptr) {
            ++p;
            theTarget = vxDecodeEscape(theTarget, p);
        }
    }
    *theTarget = '\0';
    return aCell + sizeof(theLength);
}

uint64_t vxTextWord(const char* aText) {
    return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(aText));
}

#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
bool vxAreEightDigits(uint64_t aWord) {
    constexpr uint64_t kHighHalves = 0xF0F0F0F0F0F0F0F0u;
    return ((aWord & kHighHalves) | (((aWord + 0x0606060606060606u) & kHighHalves) >> 4)) ==
           0x3333333333333333u;
}

/// The value of eight digits, the first in the lowest byte: adds neighbors up in three steps.
uint32_t vxEightDigits(uint64_t aWord) {
    aWord -= 0x3030303030303030u;
    aWord = aWord * 10 + (aWord >> 8);
    constexpr uint64_t kPairs = 0x000000FF000000FFu;
    const uint64_t theFirst = (aWord & kPairs) * (100 + (uint64_t{1000000} << 32));
    const uint64_t theSecond = ((aWord >> 16) & kPairs) * (1 + (uint64_t{10000} << 32));
    return static_cast<uint32_t>((theFirst + theSecond) >> 32);
}
#else
bool vxAreEightDigits(uint64_t) {
    return false;
}

uint32_t vxEightDigits(uint64_t) {
    return 0;
}
#endif

class vxJSONParser {
public:
    vxJSONParser(const char* aText, size_t aSize)
        : mPos(aText),
          mEnd(aText + aSize),
          mArena(aSize < kvxSlabMax ? aSize + aSize / 2 : kvxSlabMax),
          mRing{nullptr, nullptr, nullptr, 0},
          mClosing('\0'),
          mName{nullptr, nullptr, 0} {}

    /// Returns the root, or null with the position at the error.
    vxJSON_t* Parse() {
        SkipBlanks();
        if (ReadTree()) {
            SkipBlanks();
            if (mPos == mEnd) {
                return mRing.mFirst;
            }
        }
        Discard();
        return nullptr;
    }

    const char* Position() const { return mPos; }

private:
    enum Outcome { kFailed, kRead, kOpened };

    bool ReadTree() {
        for (;;) {
            const Outcome theOutcome = ReadValue();
            if (theOutcome == kFailed) {
                return false;
            }
            if (theOutcome == kRead) {
                if (!StepOn()) {
                    return false;
                }
                if (mOuter.IsEmpty()) {
                    return true;
                }
            }
        }
    }

    /// Behind a value: closes containers until another value follows, or the root is complete.
    bool StepOn() {
        while (!mOuter.IsEmpty()) {
            SkipBlanks();
            const char theHere = Here();
            if (theHere == ',') {
                ++mPos;
                SkipBlanks();
                return mClosing == ']' || ReadName();
            }
            if (theHere != mClosing) {
                return false;
            }
            ++mPos;
            CloseContainer();
        }
        return true;
    }

    Outcome ReadValue() {
        switch (Here()) {
            case '"':
                return ReadString();
            case '{':
                return Open(vxJSONKind::kObject, '}');
            case '[':
                return Open(vxJSONKind::kArray, ']');
            case 't':
                return ReadWord("true", vxJSONKind::kBool, 1);
            case 'f':
                return ReadWord("false", vxJSONKind::kBool, 0);
            case 'n':
                return ReadWord("null", vxJSONKind::kNull, 0);
            default:
                return ReadNumber();
        }
    }

    // ---- Containers

    Outcome Open(vxJSONKind aKind, char aClosing) {
        if (mOuter.Count() == kvxJSON_MaxDepth) {
            return kFailed;
        }
        vxJSON_t* theNode = NewNode(aKind, nullptr);
        if (theNode == nullptr) {
            return kFailed;
        }
        ++mPos;
        SkipBlanks();
        if (Here() == aClosing) {
            ++mPos;
            return kRead;
        }
        if (!mOuter.Push(mRing)) {
            return kFailed;
        }
        mRing = {theNode, nullptr, nullptr, 0};
        mClosing = aClosing;
        return aClosing == ']' || ReadName() ? kOpened : kFailed;
    }

    void CloseContainer() {
        mRing.Close();
        mRing = mOuter.Pop();
        if (mRing.mContainer != nullptr) {
            mClosing = vxKind(mRing.mContainer) == vxJSONKind::kObject ? '}' : ']';
        }
    }

    /// Frees what was read before an error.
    void Discard() {
        while (!mOuter.IsEmpty()) {
            CloseContainer();
        }
        mArena.Seal();
        vxJSON_Delete(mRing.mFirst);
    }

    // ---- Nodes

    /// Cuts the cell of a value, stores its name and text, and appends it to the open container.
    vxJSON_t* NewNode(vxJSONKind aKind, const vxScannedText* aText) {
        const bool fRoot = mRing.mContainer == nullptr;
        const bool fMember = !fRoot && mClosing == '}';
        size_t theSize = fMember ? vxStoredSize(mName.mLength) : fRoot ? sizeof(const char*) : 0;
        const size_t theTextStart = theSize;
        theSize += aText == nullptr ? 0 : vxStoredSize(aText->mLength);
        const vxJSONPlace thePlace = fMember ? vxJSONPlace::kInline
                                     : fRoot ? vxJSONPlace::kSlot
                                             : vxJSONPlace::kNone;
        vxJSON_t* theNode = mArena.NewNode(aKind, thePlace, theSize);
        if (theNode == nullptr) {
            return nullptr;
        }
        char* theCell = reinterpret_cast<char*>(theNode + 1);
        if (fMember) {
            vxStoreScanned(theCell, mName);
        } else if (fRoot) {
            *reinterpret_cast<const char**>(theCell) = nullptr;
        }
        if (aText != nullptr) {
            theNode->mValue = vxTextWord(vxStoreScanned(theCell + theTextStart, *aText));
        }
        mRing.Append(theNode);
        return theNode;
    }

    Outcome AddScalar(vxJSONKind aKind, uint64_t aValue) {
        vxJSON_t* theNode = NewNode(aKind, nullptr);
        if (theNode == nullptr) {
            return kFailed;
        }
        theNode->mValue = aValue;
        return kRead;
    }

    Outcome ReadWord(const char* aWord, vxJSONKind aKind, uint64_t aValue) {
        for (; *aWord != '\0'; ++aWord, ++mPos) {
            if (Here() != *aWord) {
                return kFailed;
            }
        }
        return AddScalar(aKind, aValue);
    }

    // ---- Strings

    Outcome ReadString() {
        vxScannedText theText;
        if (!ScanString(theText)) {
            return kFailed;
        }
        if (theText.mLength == 0) {
            return AddScalar(vxJSONKind::kString, vxTextWord(kvxEmptyText.mText));
        }
        return NewNode(vxJSONKind::kString, &theText) != nullptr ? kRead : kFailed;
    }

    /// Reads a member's name and the colon.
    bool ReadName() {
        if (Here() != '"' || !ScanString(mName)) {
            return false;
        }
        SkipBlanks();
        if (Here() != ':') {
            return false;
        }
        ++mPos;
        SkipBlanks();
        return true;
    }

    /// Checks the string whose opening quote is here and steps over it.
    bool ScanString(vxScannedText& aText) {
        const char* theStart = ++mPos;
        size_t theSaved = 0;
        for (;;) {
            mPos = vxFindSpecial(mPos, mEnd);
            const char theHere = Here();
            if (theHere == '"') {
                break;
            }
            if (theHere == '\\') {
                if (!ScanEscape(theSaved)) {
                    return false;
                }
            } else if (static_cast<unsigned char>(theHere) < 0x80 || !ScanUTF8()) {
                return false;
            }
        }
        const size_t theLength = static_cast<size_t>(mPos - theStart) - theSaved;
        if (theLength > kvxMaxTextLength) {
            return false;
        }
        aText = {theStart, mPos++, theLength};
        return true;
    }

    bool ScanUTF8() {
        do {
            const size_t theLength = vxUTF8Length(mPos, mEnd);
            if (theLength == 0) {
                return false;
            }
            mPos += theLength;
        } while (mPos != mEnd && static_cast<unsigned char>(*mPos) >= 0x80);
        return true;
    }

    /// Checks the escape here, steps over it, and adds the bytes that decoding it saves.
    bool ScanEscape(size_t& aSaved) {
        const char* theStart = mPos++;
        if (Here() != 'u') {
            if (Here() == '\0' || strchr("\"\\/bfnrt", *mPos) == nullptr) {
                return false;
            }
            ++mPos;
            ++aSaved;
            return true;
        }
        ++mPos;
        if (!ScanHex4()) {
            return false;
        }
        uint32_t theUnit = vxHex4(theStart + 2);
        if (vxIsHighSurrogate(theUnit)) {
            if (mEnd - mPos < 2 || mPos[0] != '\\' || mPos[1] != 'u') {
                mPos = theStart;
                return false;
            }
            mPos += 2;
            if (!ScanHex4()) {
                return false;
            }
            if (!vxIsLowSurrogate(vxHex4(mPos - 4))) {
                mPos = theStart;
                return false;
            }
            theUnit = 0x10000;
        } else if (vxIsLowSurrogate(theUnit)) {
            mPos = theStart;
            return false;
        }
        aSaved += static_cast<size_t>(mPos - theStart) - vxUTF8Size(theUnit);
        return true;
    }

    bool ScanHex4() {
        for (int i = 0; i < 4; ++i, ++mPos) {
            if (vxHexValue(Here()) < 0) {
                return false;
            }
        }
        return true;
    }

    // ---- Numbers

    /// Adds the digits here to a value, which wraps if there are more than 19.
    void ScanDigits(uint64_t& aValue) {
        const char* p = mPos;
        while (mEnd - p >= 8 && vxAreEightDigits(vxLoad64(p))) {
            aValue = aValue * 100000000 + vxEightDigits(vxLoad64(p));
            p += 8;
        }
        while (p != mEnd && vxIsDigit(*p)) {
            aValue = aValue * 10 + static_cast<uint64_t>(*p++ - '0');
        }
        mPos = p;
    }

    bool ScanExponent(int& anExponent) {
        const bool fNegative = Here() == '-';
        if (fNegative || Here() == '+') {
            ++mPos;
        }
        if (!vxIsDigit(Here())) {
            return false;
        }
        int theExponent = 0;
        for (; vxIsDigit(Here()); ++mPos) {
            // Far beyond every double the exact value does not matter any more.
            theExponent = theExponent < 100000000 ? theExponent * 10 + (*mPos - '0') : theExponent;
        }
        anExponent = fNegative ? -theExponent : theExponent;
        return true;
    }

    Outcome ReadNumber() {
        const char* theStart = mPos;
        const bool fNegative = Here() == '-';
        mPos += fNegative ? 1 : 0;
        if (!vxIsDigit(Here())) {
            return kFailed;
        }
        uint64_t theDigits = 0;
        const char* theFirst = mPos;
        if (*mPos == '0') {
            ++mPos;
        } else {
            ScanDigits(theDigits);
        }
        size_t theCount = static_cast<size_t>(mPos - theFirst);
        if (Here() != '.' && (Here() | 0x20) != 'e') {
            return AddInteger(theStart, fNegative, theDigits, theCount);
        }
        int64_t theShift = 0;
        if (Here() == '.') {
            const char* theFraction = ++mPos;
            if (!vxIsDigit(Here())) {
                return kFailed;
            }
            ScanDigits(theDigits);
            theShift = theFraction - mPos;
            theCount += static_cast<size_t>(mPos - theFraction);
        }
        int theExponent = 0;
        if ((Here() | 0x20) == 'e') {
            ++mPos;
            if (!ScanExponent(theExponent)) {
                return kFailed;
            }
        }
        theCount -= theCount > 19 ? CountZeros(theFirst) : 0;
        return AddDouble(theStart, fNegative, theDigits, theCount, theExponent + theShift);
    }

    /// Counts the zeros in front of the first other digit.
    static size_t CountZeros(const char* aPtr) {
        size_t theCount = 0;
        for (; *aPtr == '0' || *aPtr == '.'; ++aPtr) {
            theCount += *aPtr == '0' ? 1 : 0;
        }
        return theCount;
    }

    Outcome AddInteger(const char* aStart, bool afNegative, uint64_t aDigits, size_t aCount) {
        if (aCount == 20) {
            const auto theResult = std::from_chars(aStart + (afNegative ? 1 : 0), mPos, aDigits);
            aCount = theResult.ec == std::errc() ? 19 : 20;
        }
        const uint64_t theLimit = afNegative ? uint64_t{1} << 63 : UINT64_MAX;
        if (aCount > 19 || aDigits > theLimit) {
            return AddDouble(aStart, afNegative, aDigits, aCount, 0);
        }
        return AddScalar(afNegative ? vxJSONKind::kInt : vxJSONKind::kUInt,
                         afNegative ? 0 - aDigits : aDigits);
    }

    /// Adds digits times ten to the exponent; the digits are right if there are at most 19.
    Outcome AddDouble(const char* aStart, bool afNegative, uint64_t aDigits, size_t aCount,
                      int64_t anExponent) {
        double theValue = 0;
        const bool fSmall = anExponent > -1000 && anExponent < 1000;
        if (aCount <= 19 && fSmall &&
            vxDecimalToDouble(aDigits, static_cast<int>(anExponent), theValue)) {
            theValue = afNegative ? -theValue : theValue;
        } else if (!ReadSlowly(aStart, aCount, anExponent, theValue)) {
            mPos = aStart;
            return kFailed;
        }
        return AddScalar(vxJSONKind::kDouble, vxBits(theValue));
    }

    bool ReadSlowly(const char* aStart, size_t aCount, int64_t anExponent, double& aValue) const {
        const auto theResult = std::from_chars(aStart, mPos, aValue);
        if (theResult.ec == std::errc()) {
            return true;
        }
        // Too small is zero, too large is an error.
        aValue = *aStart == '-' ? -0.0 : 0.0;
        return static_cast<int64_t>(aCount) + anExponent < DBL_MIN_10_EXP;
    }

    // ---- Position

    /// The byte here; NUL, which nothing expects, at the end.
    char Here() const { return mPos == mEnd ? '\0' : *mPos; }

    void SkipBlanks() {
        if (mPos != mEnd && static_cast<unsigned char>(*mPos) > ' ') {
            return;
        }
#ifdef __SSE2__
        while (mEnd - mPos >= 16) {
            const __m128i theBytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(mPos));
            const __m128i theBlanks =
                _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(theBytes, _mm_set1_epi8(' ')),
                                          _mm_cmpeq_epi8(theBytes, _mm_set1_epi8('\n'))),
                             _mm_or_si128(_mm_cmpeq_epi8(theBytes, _mm_set1_epi8('\r')),
                                          _mm_cmpeq_epi8(theBytes, _mm_set1_epi8('\t'))));
            const unsigned theOthers = static_cast<unsigned>(_mm_movemask_epi8(theBlanks)) ^ 0xFFFF;
            if (theOthers != 0) {
                mPos += __builtin_ctz(theOthers);
                return;
            }
            mPos += 16;
        }
#endif
        while (mPos != mEnd && (*mPos == ' ' || *mPos == '\n' || *mPos == '\r' || *mPos == '\t')) {
            ++mPos;
        }
    }

    const char* mPos;
    const char* mEnd;
    vxJSONArena mArena;
    vxJSONRing mRing;                // the open container; around the root, one without container
    char mClosing;                   // what closes it
    vxScannedText mName;             // of the member that is being read
    vxJSONStack<vxJSONRing> mOuter;  // the containers around it
};

}  // namespace

vxJSON_t* vxJSON_Parse(const char* aText, const char** anErrorPosition) {
    return vxJSON_ParseSize(aText, aText == nullptr ? 0 : strlen(aText), anErrorPosition);
}

vxJSON_t* vxJSON_ParseSize(const char* aText, size_t aSize, const char** anErrorPosition) {
    vxJSONParser theParser(aText == nullptr ? "" : aText, aText == nullptr ? 0 : aSize);
    vxJSON_t* theRoot = theParser.Parse();
    if (theRoot == nullptr && anErrorPosition != nullptr) {
        *anErrorPosition = theParser.Position();
    }
    return theRoot;
}
