// A text block is shared until somebody writes.
//
// Every change ends in one of three ways: in place, where the string is the block's only sharer and
// the text fits; in the block moved by a reallocation; or in a new block that replaces the old one
// once the text is built. The old block goes last, for the source of a change may lie in it.
//
// A special block has at least two sharers by its count, so no change is ever made in wrapped text.
// Its capacity field holds its kind: ask whether a block is shared before asking for its capacity.

#include "vx/CString.h"

#include <libteskTools/Convert.h>
#include <libteskTools/Format.h>
#include <libteskTools/Memory.h>
#include <libteskTools/Search.h>
#include <libteskTools/Unicode.h>
#include <libvxLog/Log.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

const _vxEmptyCStringBlock _vxEmptyBlock = {{-1, 0, 0}, ""};
const char* const vxEmptyCString = _vxEmptyBlock.mText;

namespace {

constexpr size_t kvxuint32_max = 0xFFFFFFFF;
constexpr size_t kvxPrintf_FirstSize = 1024;  // bytes of text that the first attempt has room for
constexpr size_t kvxSpecialBlock_Size = sizeof(vxCStringData) + sizeof(char*);
// Where a concatenation's text begins in its block: at an odd address, where no allocated text that
// a special block adopts can be.
constexpr size_t kvxInlineText_Offset = kvxSpecialBlock_Size + 1;

// Sums stop at npos, a length that no block can have.
size_t vxSum(size_t aLeft, size_t aRight) {
    return aRight > vxCString::npos - aLeft ? vxCString::npos : aLeft + aRight;
}

size_t vxCapacityFor(size_t aLength) {
    return aLength + vxxString_Extra(aLength);
}

size_t vxBlockSize(size_t aCapacity) {
    return sizeof(vxCStringData) + aCapacity + 1;
}

bool vxCheckBlockLength(size_t aLength) {
    VXASSERT(aLength < (kvxuint32_max / sizeof(char)) -
                           (sizeof(vxCStringData) + vxxString_Extra(aLength) + 1));
    return aLength < kvxuint32_max - (sizeof(vxCStringData) + vxxString_Extra(aLength) + 1);
}

size_t vxTextLength(const char* aStr) {
    return aStr == NULL ? 0 : strlen(aStr);
}

char vxToLower(char aChar) {
    return aChar >= 'A' && aChar <= 'Z' ? static_cast<char>(aChar + ('a' - 'A')) : aChar;
}

char vxToUpper(char aChar) {
    return aChar >= 'a' && aChar <= 'z' ? static_cast<char>(aChar - ('a' - 'A')) : aChar;
}

// A set of bytes as bits.
class vxByteSet {
public:
    explicit vxByteSet(const char* aSet) {
        for (; aSet != NULL && *aSet != '\0'; aSet++) {
            Add(static_cast<unsigned char>(*aSet));
        }
    }

    // The bytes that the tools library takes for whitespace, asked for once.
    static const vxByteSet& Spaces() {
        static const vxByteSet sSpaces = [] {
            vxByteSet theSet("");
            for (int i = 0; i < 256; i++) {
                if (vxConvert_isspace(i) != 0) {
                    theSet.Add(static_cast<unsigned char>(i));
                }
            }
            return theSet;
        }();
        return sSpaces;
    }

    bool Has(char aChar) const {
        const unsigned char theByte = static_cast<unsigned char>(aChar);
        return (mBits[theByte / 32] >> (theByte % 32) & 1) != 0;
    }

private:
    void Add(unsigned char aByte) { mBits[aByte / 32] |= UINT32_C(1) << (aByte % 32); }

    uint32_t mBits[8] = {};
};

int vxCompareNoCase(const char* aLeft, size_t aLeftLength, const char* aRight,
                    size_t aRightLength) {
    const size_t theLength = std::min(aLeftLength, aRightLength);
    const size_t theCommon = vxSearch_CommonNoCase(aLeft, aRight, theLength);
    if (theCommon < theLength) {
        const char theLeft = vxToLower(aLeft[theCommon]);
        const char theRight = vxToLower(aRight[theCommon]);
        return static_cast<unsigned char>(theLeft) < static_cast<unsigned char>(theRight) ? -1 : 1;
    }
    return aLeftLength == aRightLength ? 0 : (aLeftLength < aRightLength ? -1 : 1);
}

// Bytes of the sequence that a lead byte announces; 1 for every other byte above ASCII.
size_t vxAnnouncedLength(unsigned char aByte) {
    if ((aByte & 0xE0) == 0xC0) {
        return 2;
    }
    if ((aByte & 0xF0) == 0xE0) {
        return 3;
    }
    return (aByte & 0xF8) == 0xF0 ? 4 : 1;
}

// Measures the character at the start of a text for kvxKeepPrintable, and tells whether it stays.
bool vxIsKept(const char* aStr, size_t aLength, size_t* aSize) {
    const unsigned char theByte = static_cast<unsigned char>(aStr[0]);
    if (theByte < 0x80) {
        *aSize = 1;
        return vxConvert_isprint(theByte) != 0;
    }
    const size_t theSize = vxAnnouncedLength(theByte);
    *aSize = std::min(theSize, aLength);
    for (size_t i = 1; i < *aSize; i++) {
        if ((aStr[i] & 0xC0) != 0x80) {
            return false;
        }
    }
    return *aSize == theSize;
}

}  // namespace

// Blocks

// Makes an ordinary block for `aLength` bytes. The previous block is not released: the caller does
// that when it needs the old text no more. On failure the string stays as it is.
bool vxCString::AllocBuffer(size_t aLength) {
    VXASSERT(aLength > 0);
    if (aLength == 0 || !vxCheckBlockLength(aLength)) {
        return false;
    }
    const size_t theCapacity = vxCapacityFor(aLength);
    void* theBlock = vxMalloc(vxBlockSize(theCapacity));
    if (theBlock == NULL) {
        return false;
    }
    mCStringData = static_cast<vxCStringData*>(theBlock);
    mCStringData->mRefCount = 1;
    mCStringData->mAllocatedLength = theCapacity;
    mStringPtr = reinterpret_cast<char*>(mCStringData + 1);
    SetLength(aLength);
    return true;
}

// Moves an owned ordinary block to the capacity that `aLength` bytes get.
bool vxCString::ReallocBuffer(size_t aLength) {
    if (!vxCheckBlockLength(aLength)) {
        return false;
    }
    const size_t theCapacity = vxCapacityFor(aLength);
    void* theBlock = vxRealloc(mCStringData, vxBlockSize(theCapacity));
    if (theBlock == NULL) {
        return false;
    }
    mCStringData = static_cast<vxCStringData*>(theBlock);
    mCStringData->mAllocatedLength = theCapacity;
    mStringPtr = reinterpret_cast<char*>(mCStringData + 1);
    return true;
}

// Makes the block unshared, with room for `aLength` bytes and the old text in it.
bool vxCString::Alloc(size_t aLength) {
    vxCStringData* theOld = mCStringData;
    if (IsOwned()) {
        return theOld->mAllocatedLength > aLength || ReallocBuffer(aLength);
    }
    const size_t theLength = theOld->mStringLength;
    const char* theText = mStringPtr;
    if (!AllocBuffer(aLength)) {
        return false;
    }
    memcpy(mStringPtr, theText, theLength);
    SetLength(theLength);
    if (!theOld->IsEmpty()) {
        UnlockBlock(theOld);
    }
    return true;
}

// Makes the block unshared, with room for `aLength` bytes; the old text need not survive.
bool vxCString::AllocBeforeWrite(size_t aLength) {
    VXASSERT(aLength != 0);
    aLength = std::max<size_t>(aLength, 1);
    if (!IsOwned()) {
        Reinit();
        if (!AllocBuffer(aLength)) {
            return false;
        }
        mStringPtr[0] = '\0';
    } else if (mCStringData->mAllocatedLength < aLength && !ReallocBuffer(aLength)) {
        return false;
    }
    VXASSERT(!mCStringData->IsShared());
    mCStringData->mStringLength = 0;
    return true;
}

// Gives the string a block of its own with the same text.
bool vxCString::CopyBeforeWrite() {
    if (mCStringData->IsShared() && !Alloc(length())) {
        return false;
    }
    VXASSERT(!mCStringData->IsShared());
    return true;
}

// Gives back the capacity beyond what the text gets by the rule.
void vxCString::Fit() {
    if (IsEmpty()) {
        Reinit();
    } else if (mCStringData->mAllocatedLength != vxCapacityFor(length())) {
        ReallocBuffer(length());
    }
}

// NOLINTBEGIN(clang-analyzer-unix.Malloc): counts say what came from an allocation, unseen by it
void vxCString::UnlockBlock(vxCStringData* aBlock) {
    const int32_t theCount = --aBlock->mRefCount;
    if (!aBlock->IsSpecial()) {
        if (theCount <= 0) {
            free(aBlock);
        }
    } else if (theCount == 1) {
        if (aBlock->mAllocatedLength == kvxAllocatedString && !HasInlineText(aBlock)) {
            free(aBlock->StringPtr());
        }
        free(aBlock);
    }
}
// NOLINTEND(clang-analyzer-unix.Malloc)

// Makes a special block that owns `aLength` bytes of text, exact and behind its pointer.
bool vxCString::AllocInlineBlock(size_t aLength) {
    if (!vxCheckBlockLength(aLength)) {
        return false;
    }
    void* theBlock = vxMalloc(kvxInlineText_Offset + aLength + 1);
    if (theBlock == NULL) {
        return false;
    }
    mCStringData = static_cast<vxCStringData*>(theBlock);
    mCStringData->mRefCount = 2;
    mCStringData->mAllocatedLength = kvxAllocatedString;
    mStringPtr = static_cast<char*>(theBlock) + kvxInlineText_Offset;
    memcpy(mCStringData + 1, &mStringPtr, sizeof(mStringPtr));
    SetLength(aLength);
    return true;
}

vxCString vxCString::Wrap(char* aStr, size_t aLength, size_t aKind) {
    vxCString theResult;
    void* theBlock = vxMalloc(kvxSpecialBlock_Size);
    if (theBlock != NULL) {
        vxCStringData* theData = static_cast<vxCStringData*>(theBlock);
        *theData = {2, aLength, aKind};
        memcpy(theData + 1, &aStr, sizeof(aStr));
        theResult.mCStringData = theData;
        theResult.mStringPtr = aStr;
    } else if (aKind == kvxAllocatedString) {
        free(aStr);
    }
    return theResult;
}

// Is it a special block whose text stands behind its own pointer, as a concatenation's does?
bool vxCString::HasInlineText(vxCStringData* aBlock) {
    return aBlock->mAllocatedLength == kvxAllocatedString &&
           aBlock->StringPtr() == reinterpret_cast<char*>(aBlock) + kvxInlineText_Offset;
}

// Does `aStr` point into the text, its NUL included?
bool vxCString::Holds(const char* aStr) const {
    const std::less_equal<const char*> theOrder;
    return theOrder(mStringPtr, aStr) && theOrder(aStr, mStringPtr + length());
}

void vxCString::AssignCopy(size_t aLength, const char* aStr) {
    if (aLength == 0) {
        Reinit();
    } else if (IsOwned() && aLength <= mCStringData->mAllocatedLength) {
        memmove(mStringPtr, aStr, aLength);
        SetLength(aLength);
    } else {
        vxCString theNew;
        if (theNew.AllocBuffer(aLength)) {
            memcpy(theNew.mStringPtr, aStr, aLength);
            Swap(theNew);
        }
    }
}

// Puts `aLength` bytes in place of the `aCount` bytes at `aPos`; both lie within the text.
void vxCString::Splice(size_t aPos, size_t aCount, const char* aStr, size_t aLength) {
    const size_t theLength = length();
    const size_t theRest = theLength - aPos - aCount;
    const size_t theNewLength = vxSum(theLength - aCount, aLength);
    if (theNewLength == 0) {
        Reinit();
        return;
    }
    // A text that shrinks gives memory back; one that grows moves where Alloc() would move it.
    const size_t theCapacity = mCStringData->mAllocatedLength;
    const bool theFits = theNewLength > theLength ? theNewLength < theCapacity
                                                  : vxCapacityFor(theNewLength) == theCapacity;
    if (IsOwned() && theFits && (aLength == 0 || !Holds(aStr))) {
        memmove(mStringPtr + aPos + aLength, mStringPtr + aPos + aCount, theRest);
        if (aLength != 0) {
            memcpy(mStringPtr + aPos, aStr, aLength);
        }
        SetLength(theNewLength);
        return;
    }
    vxCString theNew;
    if (!theNew.AllocBuffer(theNewLength)) {
        return;
    }
    memcpy(theNew.mStringPtr, mStringPtr, aPos);
    if (aLength != 0) {
        memcpy(theNew.mStringPtr + aPos, aStr, aLength);
    }
    memcpy(theNew.mStringPtr + aPos + aLength, mStringPtr + aPos + aCount, theRest);
    Swap(theNew);
}

// Appends to a text under construction, whose block doubles; Fit() ends the construction.
void vxCString::AppendGrowing(const char* aStr, size_t aLength) {
    if (aLength == 0) {
        return;
    }
    const size_t theLength = length();
    const size_t theNewLength = vxSum(theLength, aLength);
    if (mCStringData->mAllocatedLength < theNewLength &&
        !Alloc(std::max(theNewLength, vxSum(theLength, theLength)))) {
        return;
    }
    memcpy(mStringPtr + theLength, aStr, aLength);
    SetLength(theNewLength);
}

// Construction

void vxCString::Construct(const char* aStr, size_t aPos, size_t aLength) {
    Init();
    if (aStr == NULL) {
        if (aPos != 0 || (aLength != 0 && aLength != npos)) {
            VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT,
                  "vxCString::InitWith: initialization from a nil string with a non-empty size is "
                  "deprecated\n");
        }
        // The empty text takes its place, and so has no other position.
        VXASSERT_TEXT(aPos == 0 || aLength != npos, "aPos <= strlen(aStr)");
        return;
    }
    if (aLength == npos) {
        const size_t theLength = strlen(aStr);
        VXASSERT_TEXT(aPos <= theLength, "aPos <= strlen(aStr)");
        aLength = aPos <= theLength ? theLength - aPos : 0;
    }
    if (aLength != 0 && AllocBuffer(aLength)) {
        memcpy(mStringPtr, aStr + aPos, aLength);
    }
}

void vxCString::InitWith(const char* aStr, size_t aPos, size_t aLength) {
    if (aStr != NULL && aLength != npos) {
        AssignCopy(aLength, aStr + aPos);
        return;
    }
    vxCString theNew(aStr, aPos, aLength);
    Swap(theNew);
}

void vxCString::TakeFrom(vxCString& aCString) noexcept {
    VXASSERT(aCString.mCStringData->IsValid());
    if (aCString.mCStringData->IsValid()) {
        Swap(aCString);
    }
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): strings with one block include it
vxCString& vxCString::operator=(const vxCString& aCString) {
    VXASSERT(aCString.mCStringData->IsValid());
    if (mCStringData != aCString.mCStringData) {
        Unlock();
        Share(aCString);
    }
    return *this;
}

vxCString& vxCString::operator=(vxCString&& aCString) noexcept {
    if (this != &aCString) {
        vxCString theNew(std::move(aCString));
        Swap(theNew);
    }
    return *this;
}

vxCString& vxCString::operator=(const char* aStr) {
    AssignCopy(vxTextLength(aStr), aStr);
    return *this;
}

vxCString& vxCString::operator=(char aChar) {
    AssignCopy(1, &aChar);
    return *this;
}

vxCString vxCString::FromStaticString(const char* aStr) {
    const size_t theLength = vxTextLength(aStr);
    return theLength == 0 ? vxCString() : Wrap(const_cast<char*>(aStr), theLength, kvxStaticString);
}

vxCString vxCString::FromAllocatedString(const char* aStr) {
    char* theStr = const_cast<char*>(aStr);
    const size_t theLength = vxTextLength(aStr);
    if (theLength == 0) {
        free(theStr);
        return vxCString();
    }
    return Wrap(theStr, theLength, kvxAllocatedString);
}

char* vxCString::GetWriteBuf(size_t aLength) {
    if (!AllocBeforeWrite(aLength)) {
        return NULL;
    }
    VXASSERT(mCStringData->mRefCount == 1);
    mCStringData->Validate(false);
    return mStringPtr;
}

void vxCString::UngetWriteBuf() {
    if (!mCStringData->IsValid()) {
        // A caller that filled the whole block has left no NUL.
        mStringPtr[mCStringData->mAllocatedLength] = '\0';
        UngetWriteBuf(strlen(mStringPtr));
    }
}

void vxCString::UngetWriteBuf(size_t aLength) {
    if (!mCStringData->IsValid()) {
        SetLength(std::min(aLength, mCStringData->mAllocatedLength));
        mCStringData->Validate(true);
    }
}

// Access

bool vxCString::SetCharAt(char aChar, int aPos) {
    const size_t thePos = static_cast<size_t>(aPos);
    if (thePos >= length()) {
        return false;
    }
    mStringPtr[thePos] = aChar;
    return true;
}

// Searching

size_t vxCString::Find(const vxCString& aCString, size_t aStartPos) const {
    VXASSERT(aCString.mCStringData->IsValid());
    return FindStr(aCString.mStringPtr, aCString.length(), aStartPos);
}

size_t vxCString::FindStr(const char* aStr, size_t aLength, size_t aStartPos) const {
    VXASSERT(aStartPos <= length());
    if (aLength == 0 || aStr == NULL || aStartPos >= length()) {
        return npos;
    }
    const char* thePlace =
        vxSearch_First(mStringPtr + aStartPos, length() - aStartPos, aStr, aLength);
    return thePlace == NULL ? npos : static_cast<size_t>(thePlace - mStringPtr);
}

size_t vxCString::FindFirstStr(const char* aStr, size_t aStartPos) const {
    return FindStr(aStr, vxTextLength(aStr), aStartPos);
}

size_t vxCString::FindLastStr(const char* aStr, size_t aStartPos) const {
    const size_t theEnd = aStartPos == npos ? length() : aStartPos;
    VXASSERT_TEXT(theEnd <= length(), "aStartPos <= length()");
    return theEnd > length() ? npos : FindLast(aStr, vxTextLength(aStr), theEnd);
}

size_t vxCString::FindLast(const char* aStr, size_t aLength, size_t anEnd) const {
    if (anEnd == 0) {
        return npos;
    }
    const char* thePlace = vxSearch_Last(mStringPtr, anEnd, aStr, aLength);
    return thePlace == NULL ? npos : static_cast<size_t>(thePlace - mStringPtr);
}

size_t vxCString::FindNoCase(const vxCString& aStr, size_t aStartPos) const {
    VXASSERT(aStartPos <= length());
    if (aStr.IsEmpty() || aStartPos > length() || aStartPos >= length() - aStartPos) {
        return npos;
    }
    // A candidate begins before this bound, but may end behind it.
    const size_t theBound = length() - aStartPos;
    const size_t theEnd = std::min(length(), vxSum(theBound, aStr.length() - 1));
    const char* thePlace = vxSearch_FirstNoCase(mStringPtr + aStartPos, theEnd - aStartPos,
                                                aStr.mStringPtr, aStr.length());
    return thePlace == NULL ? npos : static_cast<size_t>(thePlace - mStringPtr);
}

size_t vxCString::FindFirstOf(const char* aSet, size_t aStartPos) const {
    VXASSERT(aStartPos <= length());
    const vxByteSet theSet(aSet);
    for (size_t i = aStartPos; i < length(); i++) {
        if (theSet.Has(mStringPtr[i])) {
            return i;
        }
    }
    return npos;
}

size_t vxCString::FindLastOf(const char* aSet, size_t aStartPos) const {
    VXASSERT_TEXT(aStartPos == npos || aStartPos <= length(), "aStartPos <= length()");
    if (aStartPos != npos && aStartPos > length()) {
        return npos;
    }
    const vxByteSet theSet(aSet);
    for (size_t i = aStartPos < length() ? aStartPos + 1 : length(); i > 0; i--) {
        if (theSet.Has(mStringPtr[i - 1])) {
            return i - 1;
        }
    }
    return npos;
}

size_t vxCString::FindFirstNotOf(const char* aSet, size_t aStartPos) const {
    VXASSERT_TEXT(aStartPos == npos || aStartPos <= length(), "aStartPos <= length()");
    const vxByteSet theSet(aSet);
    for (size_t i = aStartPos; i < length(); i++) {
        if (!theSet.Has(mStringPtr[i])) {
            return i;
        }
    }
    return npos;
}

size_t vxCString::Find(char aChar, bool afFromEnd) const {
    if (aChar == '\0' || IsEmpty()) {
        return npos;
    }
    const void* thePlace = afFromEnd ? vxSearch_LastByte(mStringPtr, length(), aChar)
                                     : memchr(mStringPtr, aChar, length());
    return thePlace == NULL ? npos
                            : static_cast<size_t>(static_cast<const char*>(thePlace) - mStringPtr);
}

size_t vxCString::Freq(char aChar) const {
    return static_cast<size_t>(std::count(mStringPtr, mStringPtr + length(), aChar));
}

// Extraction

vxCString vxCString::AfterFirst(char aChar) const {
    const size_t thePos = Find(aChar, false);
    return thePos == npos ? vxCString() : Mid(thePos + 1);
}

vxCString vxCString::AfterFirst(const vxCString& aStr) const {
    const size_t thePos = Find(aStr, 0);
    return thePos == npos ? vxCString() : Mid(thePos + aStr.length());
}

vxCString vxCString::AfterLast(char aChar) const {
    const size_t thePos = Find(aChar, true);
    return thePos == npos ? *this : Mid(thePos + 1);
}

vxCString vxCString::AfterLast(const vxCString& aStr) const {
    const size_t thePos = FindLast(aStr.mStringPtr, aStr.length(), length());
    return thePos == npos ? *this : Mid(thePos + aStr.length());
}

vxCString vxCString::BeforeFirst(char aChar) const {
    const size_t thePos = Find(aChar, false);
    return thePos == npos ? *this : Left(thePos);
}

vxCString vxCString::BeforeFirst(const vxCString& aStr) const {
    const size_t thePos = Find(aStr, 0);
    return thePos == npos ? *this : Left(thePos);
}

vxCString vxCString::BeforeFirst(const char* aStr) const {
    const size_t thePos = FindFirstStr(aStr, 0);
    return thePos == npos ? *this : Left(thePos);
}

vxCString vxCString::BeforeLast(char aChar) const {
    const size_t thePos = Find(aChar, true);
    return thePos == npos ? vxCString() : Left(thePos);
}

vxCString vxCString::BeforeLast(const vxCString& aStr) const {
    const size_t thePos = FindLast(aStr.mStringPtr, aStr.length(), length());
    return thePos == npos ? vxCString() : Left(thePos);
}

vxCString vxCString::BeforeLast(const char* aStr) const {
    const size_t thePos = FindLastStr(aStr, npos);
    return thePos == npos ? vxCString() : Left(thePos);
}

vxCString vxCString::Mid(size_t aPos, size_t aCount) const {
    if (aPos >= length()) {
        return vxCString();
    }
    return vxCString(mStringPtr, aPos, std::min(aCount, length() - aPos));
}

// Modification

void vxCString::ConcatSelf(size_t aLength, const char* aStr, size_t aMax) {
    const size_t theCount = std::min(aLength, aMax);
    if (theCount == 0 || aStr == NULL) {
        return;
    }
    const size_t theLength = length();
    const size_t theNewStringLength = vxSum(theLength, theCount);
    if (mCStringData->mRefCount == 1 && theNewStringLength <= mCStringData->mAllocatedLength) {
        memmove(mStringPtr + theLength, aStr, theCount);
        SetLength(theNewStringLength);
        return;
    }
    if (mCStringData->IsShared()) {
        vxCStringData* theOld = mCStringData;
        const char* theText = mStringPtr;
        if (!AllocBuffer(theNewStringLength)) {
            return;
        }
        memcpy(mStringPtr, theText, theLength);
        memcpy(mStringPtr + theLength, aStr, theCount);
        UnlockBlock(theOld);
        return;
    }
    if (mCStringData->mAllocatedLength < theNewStringLength) {
        const bool theSourceMoves = Holds(aStr);
        const size_t theOffset = theSourceMoves ? static_cast<size_t>(aStr - mStringPtr) : 0;
        if (!Alloc(theNewStringLength)) {
            return;
        }
        aStr = theSourceMoves ? mStringPtr + theOffset : aStr;
    }
    VXASSERT(theNewStringLength <= mCStringData->mAllocatedLength);
    memmove(mStringPtr + theLength, aStr, theCount);
    SetLength(theNewStringLength);
}

vxCString& vxCString::Insert(size_t aPos, const char* aStr, size_t aLength) {
    VXASSERT(aPos <= length());
    const size_t theLength = aLength == npos || aStr == NULL ? vxTextLength(aStr) : aLength;
    if (theLength != 0) {
        Splice(std::min(aPos, length()), 0, aStr, theLength);
    }
    return *this;
}

vxCString& vxCString::Erase(size_t aPos, size_t aCount) {
    VXASSERT(aPos <= length());
    if (aPos < length() && aCount != 0) {
        Splice(aPos, std::min(aCount, length() - aPos), NULL, 0);
    }
    return *this;
}

vxCString& vxCString::Replace(size_t aPos, size_t aCount, const char* aStr, size_t aLength) {
    VXASSERT(aPos <= length());
    const size_t thePos = std::min(aPos, length());
    const size_t theLength = aLength == npos || aStr == NULL ? vxTextLength(aStr) : aLength;
    Splice(thePos, std::min(aCount, length() - thePos), aStr, theLength);
    return *this;
}

size_t vxCString::Replace(const char* aOld, const char* aNew, bool afAll) {
    const size_t theOldLength = vxTextLength(aOld);
    const size_t theNewLength = vxTextLength(aNew);
    size_t thePos = First() == '\0' ? npos : FindStr(aOld, theOldLength, 0);
    if (thePos == npos) {
        return 0;
    }
    if (!afAll) {
        Splice(thePos, theOldLength, aNew, theNewLength);
        return 1;
    }
    // Built beside the old text, in one pass; both arguments may point into it.
    vxCString theResult;
    if (!theResult.AllocBuffer(length())) {
        return 0;
    }
    theResult.SetLength(0);
    size_t theCount = 0;
    size_t theDone = 0;  // bytes of the old text that the result has taken in
    while (thePos != npos) {
        theResult.AppendGrowing(mStringPtr + theDone, thePos - theDone);
        theResult.AppendGrowing(aNew, theNewLength);
        theDone = thePos + theOldLength;
        theCount++;
        thePos = mStringPtr[theDone] == '\0' ? npos : FindStr(aOld, theOldLength, theDone);
    }
    theResult.AppendGrowing(mStringPtr + theDone, length() - theDone);
    theResult.Fit();
    Swap(theResult);
    return theCount;
}

vxCString& vxCString::Pad(size_t aCount, char aChar, bool afAtEnd) {
    if (aCount != 0) {
        const size_t theLength = length();
        const size_t theNewLength = vxSum(theLength, aCount);
        if (Alloc(theNewLength)) {
            if (!afAtEnd) {
                memmove(mStringPtr + aCount, mStringPtr, theLength);
            }
            memset(afAtEnd ? mStringPtr + theLength : mStringPtr, aChar, aCount);
            SetLength(theNewLength);
        }
    }
    return *this;
}

vxCString& vxCString::Trim(bool afFromRight) {
    return afFromRight ? TrimEnds(false, true) : TrimEnds(true, false);
}

vxCString& vxCString::TrimLeftRight() {
    return TrimEnds(true, true);
}

vxCString& vxCString::TrimEnds(bool afLeft, bool afRight) {
    const vxByteSet& theSpaces = vxByteSet::Spaces();
    size_t theStart = 0;
    size_t theEnd = length();
    while (afLeft && theStart < theEnd && theSpaces.Has(mStringPtr[theStart])) {
        theStart++;
    }
    while (afRight && theEnd > theStart && theSpaces.Has(mStringPtr[theEnd - 1])) {
        theEnd--;
    }
    const size_t theLength = theEnd - theStart;
    if (theLength == length()) {
        return *this;
    }
    if (theLength != 0 && !IsOwned()) {
        vxCStringData* theOld = mCStringData;
        const char* theText = mStringPtr + theStart;
        if (AllocBuffer(theLength)) {
            memcpy(mStringPtr, theText, theLength);
            UnlockBlock(theOld);
        }
        return *this;
    }
    AssignCopy(theLength, mStringPtr + theStart);
    Fit();
    return *this;
}

vxCString vxCString::Upper() const {
    vxCString theResult(mStringPtr, length());
    std::transform(mStringPtr, mStringPtr + theResult.length(), theResult.mStringPtr, vxToUpper);
    return theResult;
}

vxCString vxCString::Lower() const {
    vxCString theResult(mStringPtr, length());
    std::transform(mStringPtr, mStringPtr + theResult.length(), theResult.mStringPtr, vxToLower);
    return theResult;
}

vxCString vxCString::TrimTo1Space() const {
    vxCString theResult(mStringPtr, length());
    size_t theLength = 0;
    bool theInRun = false;
    const vxByteSet& theSpaces = vxByteSet::Spaces();
    for (size_t i = 0; i < theResult.length(); i++) {
        const bool theIsSpace = theSpaces.Has(mStringPtr[i]);
        if (!theIsSpace || !theInRun) {
            theResult.mStringPtr[theLength++] = theIsSpace ? ' ' : mStringPtr[i];
        }
        theInRun = theIsSpace;
    }
    theResult.Truncate(theLength);
    return theResult;
}

size_t vxCString::Printf(const char* aFormat, ...) {
    va_list theArgs;
    va_start(theArgs, aFormat);
    const size_t theLength = PrintfV(aFormat, theArgs);
    va_end(theArgs);
    return theLength;
}

size_t vxCString::PrintfV(const char* aFormat, va_list anArgs) {
    // The first attempt goes to the stack, so that arguments may come from this string.
    char theBuffer[kvxPrintf_FirstSize + 1];
    theBuffer[0] = '\0';
    va_list theArgs;
    va_copy(theArgs, anArgs);
    const int theReported = vx_vsnprintf(theBuffer, sizeof(theBuffer), aFormat, theArgs);
    va_end(theArgs);
    theBuffer[kvxPrintf_FirstSize] = '\0';
    if (theReported <= static_cast<int>(kvxPrintf_FirstSize)) {
        AssignCopy(strlen(theBuffer), theBuffer);
        return length();
    }
    const size_t theSize = static_cast<size_t>(theReported);
    vxCString theNew;
    char* theTarget = theNew.GetWriteBuf(theSize);
    if (theTarget != NULL) {
        va_copy(theArgs, anArgs);
        vx_vsnprintf(theTarget, theSize + 1, aFormat, theArgs);
        va_end(theArgs);
        theNew.UngetWriteBuf();
        Swap(theNew);
    }
    return length();
}

vxCString vxCString::Format(const char* aFormat, ...) {
    vxCString theResult;
    va_list theArgs;
    va_start(theArgs, aFormat);
    theResult.PrintfV(aFormat, theArgs);
    va_end(theArgs);
    return theResult;
}

vxCString& vxCString::ValidateUTF8(int aMode) {
    if ((aMode & (kvxEmpty | kvxKeepValid)) != 0 && !IsValidUTF8()) {
        if ((aMode & kvxEmpty) != 0) {
            Reinit();
        } else if (CopyBeforeWrite()) {
            SetLength(vxUTF_MakeValidUTF8(mStringPtr, length()));
        }
    }
    if ((aMode & kvxKeepPrintable) != 0) {
        DropUnprintable();
    }
    return *this;
}

void vxCString::DropUnprintable() {
    size_t theSize = 0;
    size_t i = 0;
    while (i < length() && vxIsKept(mStringPtr + i, length() - i, &theSize)) {
        i += theSize;
    }
    // Nothing to drop leaves a shared block shared.
    if (i >= length() || !CopyBeforeWrite()) {
        return;
    }
    size_t theKept = i;
    for (; i < length(); i += theSize) {
        if (vxIsKept(mStringPtr + i, length() - i, &theSize)) {
            memmove(mStringPtr + theKept, mStringPtr + i, theSize);
            theKept += theSize;
        }
    }
    SetLength(theKept);
}

bool vxCString::IsValidUTF8() const {
    return vxUnicode_UTF8ToWide(mStringPtr, length(), NULL, 0, NULL) == 0;
}

// Comparison

int vxCString::Compare(const vxCString& aStr) const {
    const int theOrder = memcmp(mStringPtr, aStr.mStringPtr, std::min(length(), aStr.length()));
    if (theOrder != 0 || length() == aStr.length()) {
        return theOrder;
    }
    return length() < aStr.length() ? -1 : 1;
}

int vxCString::Compare(const char* aStr) const {
    VXASSERT(aStr != NULL);
    return strcmp(mStringPtr, aStr == NULL ? "" : aStr);
}

int vxCString::CompareNoCase(const vxCString& aStr) const {
    return vxCompareNoCase(mStringPtr, length(), aStr.mStringPtr, aStr.length());
}

int vxCString::CompareNoCase(const char* aStr) const {
    return vxCompareNoCase(mStringPtr, length(), aStr, vxTextLength(aStr));
}

// Checks and numbers

bool vxCString::HasOnlyNumbers() const {
    return std::all_of(mStringPtr, mStringPtr + length(),
                       [](char aChar) { return aChar >= '0' && aChar <= '9'; });
}

bool vxCString::HasOnlyHexa() const {
    return std::all_of(mStringPtr, mStringPtr + length(), [](char aChar) {
        const char theLower = vxToLower(aChar);
        return (aChar >= '0' && aChar <= '9') || (theLower >= 'a' && theLower <= 'f');
    });
}

// The converters stop at a NUL: one inside the text makes it no number.
#define VX_WHOLE_TEXT_CONVERTS(aConversion) (strlen(mStringPtr) == length() && (aConversion) == 0)

bool vxCString::ToInt8(int8_t* aResult) const {
    return VX_WHOLE_TEXT_CONVERTS(vxConvert_strtoint8(mStringPtr, aResult));
}

bool vxCString::ToInt16(int16_t* aResult) const {
    return VX_WHOLE_TEXT_CONVERTS(vxConvert_strtoint16(mStringPtr, aResult));
}

bool vxCString::ToInt32(int32_t* aResult, int aBase) const {
    return VX_WHOLE_TEXT_CONVERTS(vxConvert_strtoint32_base(mStringPtr, aResult, aBase));
}

bool vxCString::ToInt64(int64_t* aResult, int aBase) const {
    return VX_WHOLE_TEXT_CONVERTS(vxConvert_strtoint64_base(mStringPtr, aResult, aBase));
}

bool vxCString::ToUInt8(uint8_t* aResult) const {
    return VX_WHOLE_TEXT_CONVERTS(vxConvert_strtouint8(mStringPtr, aResult));
}

bool vxCString::ToUInt16(uint16_t* aResult) const {
    return VX_WHOLE_TEXT_CONVERTS(vxConvert_strtouint16(mStringPtr, aResult));
}

bool vxCString::ToUInt32(uint32_t* aResult, int aBase) const {
    return VX_WHOLE_TEXT_CONVERTS(vxConvert_strtouint32_base(mStringPtr, aResult, aBase));
}

bool vxCString::ToUInt64(uint64_t* aResult, int aBase) const {
    return VX_WHOLE_TEXT_CONVERTS(vxConvert_strtouint64_base(mStringPtr, aResult, aBase));
}

bool vxCString::ToDouble(double* aResult) const {
    return VX_WHOLE_TEXT_CONVERTS(vxConvert_strtod(mStringPtr, aResult));
}

// Wide text and concatenation

vxWCharBuffer vxCString::ToWideChar() const {
    return vxWCharBuffer(vxWString_S_FromUTF8(mStringPtr), false);
}

vxCString vxCString::FromWideChar(const wchar_t* aStr) {
    return FromAllocatedString(vxWString_S_ToUTF8(aStr));
}

vxCString vxCString::_Concat(const char* aLeft, size_t aLeftLength, const char* aRight,
                             size_t aRightLength) {
    vxCString theResult;
    const size_t theLength = vxSum(aLeftLength, aRightLength);
    if (theLength == 0 || !theResult.AllocInlineBlock(theLength)) {
        return theResult;
    }
    if (aLeftLength != 0) {
        memcpy(theResult.mStringPtr, aLeft, aLeftLength);
    }
    if (aRightLength != 0) {
        memcpy(theResult.mStringPtr + aLeftLength, aRight, aRightLength);
    }
    return theResult;
}
