// One buffer holds every item with its NUL, one array the offsets. Offsets ascend, and removing an
// item removes only its offset; so the buffer has dead bytes exactly when it has more NULs than the
// list has items.
//
// Merging and comparing whole lists looks items up by hash, for the texts come from outside.

#include "vx/StringList.h"

#include <libteskTools/Convert.h>
#include <libteskTools/Format.h>
#include <libteskTools/Memory.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "vx/StringHashMap.h"

namespace {

constexpr size_t kvxNumber_Size = 24;  // bytes for any number that the list writes

const char* vxTextOf(const char* aStr) {
    return aStr != NULL ? aStr : "";
}

char vxFold(char aChar) {
    return aChar >= 'A' && aChar <= 'Z' ? static_cast<char>(aChar + ('a' - 'A')) : aChar;
}

bool vxEqualsNoCase(const char* aLeft, const char* aRight) {
    while (*aLeft != '\0' && vxFold(*aLeft) == vxFold(*aRight)) {
        ++aLeft;
        ++aRight;
    }
    return vxFold(*aLeft) == vxFold(*aRight);
}

const char* vxFormatInt32(char (&aBuffer)[kvxNumber_Size], int aValue) {
    vx_snprintf(aBuffer, sizeof(aBuffer), "%ld", static_cast<long>(aValue));
    return aBuffer;
}

const char* vxFormatUInt32(char (&aBuffer)[kvxNumber_Size], unsigned aValue) {
    vx_snprintf(aBuffer, sizeof(aBuffer), "%lu", static_cast<unsigned long>(aValue));
    return aBuffer;
}

// Sizes stop at the largest one, which no allocation has.
size_t vxSum(size_t aLeft, size_t aRight) {
    return aRight > SIZE_MAX - aLeft ? SIZE_MAX : aLeft + aRight;
}

size_t vxIndexSize(size_t aCount) {
    return aCount > SIZE_MAX / sizeof(size_t) ? SIZE_MAX : aCount * sizeof(size_t);
}

size_t vxCountItems(const char* aStr, size_t aLength, char aSeparator, char anEscape) {
    size_t theCount = 1 + (aStr[0] == aSeparator);
    for (size_t i = 1; i < aLength; ++i) {
        const bool fEscaped = anEscape != '\0' && aStr[i - 1] == anEscape;
        theCount += aStr[i] == aSeparator && !fEscaped;
    }
    return theCount;
}

// Converts an item, which is null where there is none.
template <typename Number, typename Converter>
Number vxNumberOf(const char* anItem, Number aDefault, bool* afOk, Converter aConverter) {
    Number theValue = aDefault;
    const bool fOk = aConverter(anItem, &theValue) == 0;
    if (afOk != NULL) {
        *afOk = fOk;
    }
    return fOk ? theValue : aDefault;
}

// The items of a list, for looking up; it borrows their texts.
class vxItemSet {
public:
    vxItemSet(const vxStringList& aList, bool afCaseSensitive)
        : mItems(aList.GetCount(), Hash{afCaseSensitive}, Equals{afCaseSensitive}) {
        for (size_t i = 0; i < aList.GetCount(); ++i) {
            Insert(aList.GetAt(i));
        }
    }

    // Is true when the item was not there yet.
    bool Insert(const char* anItem) { return mItems.insert(anItem).second; }
    bool Has(const char* anItem) const { return mItems.count(anItem) != 0; }

private:
    struct Hash {
        size_t operator()(std::string_view anItem) const {
            if (mfCaseSensitive) {
                return vxStringHashMap_Hash()(anItem);
            }
            std::string theFolded(anItem);
            std::transform(theFolded.begin(), theFolded.end(), theFolded.begin(), vxFold);
            return vxStringHashMap_Hash()(theFolded);
        }
        bool mfCaseSensitive;
    };

    struct Equals {
        bool operator()(std::string_view aLeft, std::string_view aRight) const {
            return mfCaseSensitive ? aLeft == aRight : vxEqualsNoCase(aLeft.data(), aRight.data());
        }
        bool mfCaseSensitive;
    };

    std::unordered_set<std::string_view, Hash, Equals> mItems;
};

// Returns the items of `aList` that `aOther` does not have, in order.
std::vector<const char*> vxMissingItems(const vxStringList& aList, const vxStringList& aOther) {
    const vxItemSet theOther(aOther, true);
    std::vector<const char*> theItems;
    for (size_t i = 0; i < aList.GetCount(); ++i) {
        if (!theOther.Has(aList.GetAt(i))) {
            theItems.push_back(aList.GetAt(i));
        }
    }
    return theItems;
}

}  // namespace

vxStringList::vxStringList(const char* aStr, char aSeparator, char anEscape) {
    Set(aStr, aSeparator, anEscape);
}

vxStringList::vxStringList(const vxStringList& aOther) : mSeparatorChar(aOther.mSeparatorChar) {
    if (aOther.mCount > 0 && Grow(aOther.mCount, aOther.mAllocatedLength)) {
        memcpy(mStr, aOther.mStr, aOther.mAllocatedLength);
        memcpy(mIndex, aOther.mIndex, aOther.mCount * sizeof(size_t));
        mCount = aOther.mCount;
        mAllocatedLength = aOther.mAllocatedLength;
    }
}

vxStringList& vxStringList::operator=(const vxStringList& aOther) {
    vxStringList theCopy(aOther);
    SwapItems(theCopy);
    mSeparatorChar = aOther.mSeparatorChar;
    return *this;
}

vxStringList::~vxStringList() {
    free(mStr);
    free(mIndex);
}

void vxStringList::Set(const char* aStr, char aSeparator, char anEscape) {
    const size_t theLength = strlen(vxTextOf(aStr));
    const char theEscape = anEscape == aSeparator ? '\0' : anEscape;
    vxStringList theList;
    if (theLength > 0 &&
        theList.Grow(vxCountItems(aStr, theLength, aSeparator, theEscape), theLength + 1)) {
        theList.Split(aStr, theLength, aSeparator, theEscape);
    }
    SwapItems(theList);
    mSeparatorChar = aSeparator;
}

void vxStringList::Reset() {
    vxStringList theEmpty;
    SwapItems(theEmpty);
}

const char* vxStringList::GetAt(size_t anIndex) const {
    return VXCHECK(anIndex < mCount) ? mStr + mIndex[anIndex] : "";
}

const char* vxStringList::GetAt(size_t anIndex, const char* aDefault) const {
    return anIndex < mCount ? mStr + mIndex[anIndex] : aDefault;
}

int32_t vxStringList::GetAtInt32(size_t anIndex, int32_t aDefault, bool* afOk) const {
    return vxNumberOf(GetAt(anIndex, NULL), aDefault, afOk, vxConvert_strtoint32);
}

uint32_t vxStringList::GetAtUInt32(size_t anIndex, uint32_t aDefault, bool* afOk) const {
    return vxNumberOf(GetAt(anIndex, NULL), aDefault, afOk, vxConvert_strtouint32);
}

uint32_t vxStringList::GetAtUInt32Hex(size_t anIndex, uint32_t aDefault, bool* afOk) const {
    const auto theConverter = [](const char* aStr, uint32_t* aResult) {
        return vxConvert_strtouint32_base(aStr, aResult, 16);
    };
    return vxNumberOf(GetAt(anIndex, NULL), aDefault, afOk, theConverter);
}

vxCString vxStringList::GetString(char anEscape) const {
    if (mCount == 0) {
        return vxCString();
    }
    char* theText = IsPlain(anEscape) ? JoinPlain() : JoinItems(anEscape);
    return theText != NULL ? vxCString::FromAllocatedString(theText) : vxCString();
}

// Is the joined text the buffer itself, but for the separators?
bool vxStringList::IsPlain(char anEscape) const {
    const bool fEscapes =
        anEscape != '\0' && memchr(mStr, mSeparatorChar, mAllocatedLength) != NULL;
    const auto theNulls = std::count(mStr, mStr + mAllocatedLength, '\0');
    return !fEscapes && static_cast<size_t>(theNulls) == mCount;
}

char* vxStringList::JoinPlain() const {
    char* theText = static_cast<char*>(vxMalloc(mAllocatedLength));
    if (theText != NULL) {
        memcpy(theText, mStr, mAllocatedLength);
        for (size_t i = 1; i < mCount; ++i) {
            theText[mIndex[i] - 1] = mSeparatorChar;
        }
    }
    return theText;
}

char* vxStringList::JoinItems(char anEscape) const {
    const auto fEscapes = [=](char aChar) { return anEscape != '\0' && aChar == mSeparatorChar; };
    size_t theLength = mCount - 1;
    for (size_t i = 0; i < mCount; ++i) {
        for (const char* theChar = GetAt(i); *theChar != '\0'; ++theChar) {
            theLength = vxSum(theLength, fEscapes(*theChar) ? 2 : 1);
        }
    }
    char* theText = static_cast<char*>(vxMalloc(vxSum(theLength, 1)));
    if (theText == NULL) {
        return NULL;
    }
    size_t j = 0;
    for (size_t i = 0; i < mCount; ++i) {
        if (i > 0) {
            theText[j++] = mSeparatorChar;
        }
        for (const char* theChar = GetAt(i); *theChar != '\0'; ++theChar) {
            if (fEscapes(*theChar)) {
                theText[j++] = anEscape;
            }
            theText[j++] = *theChar;
        }
    }
    VXASSERT(j == theLength);
    theText[j] = '\0';
    return theText;
}

void vxStringList::Add(const char* aStr) {
    const size_t theSize = strlen(vxTextOf(aStr)) + 1;
    const size_t theOffset = OffsetOf(aStr);
    if (Grow(1, theSize)) {
        Append(theOffset != npos ? mStr + theOffset : vxTextOf(aStr), theSize);
    }
}

void vxStringList::Prepend(const char* aStr) {
    const size_t theSize = strlen(vxTextOf(aStr)) + 1;
    const size_t theOffset = OffsetOf(aStr);
    if (!Grow(1, theSize)) {
        return;
    }
    memmove(mStr + theSize, mStr, mAllocatedLength);
    memcpy(mStr, theOffset != npos ? mStr + theSize + theOffset : vxTextOf(aStr), theSize);
    for (size_t i = mCount; i > 0; --i) {
        mIndex[i] = mIndex[i - 1] + theSize;
    }
    mIndex[0] = 0;
    mAllocatedLength += theSize;
    ++mCount;
}

void vxStringList::AddInt32(int aValue) {
    char theBuffer[kvxNumber_Size];
    Add(vxFormatInt32(theBuffer, aValue));
}

void vxStringList::AddUInt32(unsigned aValue) {
    char theBuffer[kvxNumber_Size];
    Add(vxFormatUInt32(theBuffer, aValue));
}

size_t vxStringList::IndexOf(const char* aStr, bool afCaseSensitive) const {
    const char* theStr = vxTextOf(aStr);
    for (size_t i = 0; i < mCount; ++i) {
        const char* theItem = mStr + mIndex[i];
        if (afCaseSensitive ? strcmp(theItem, theStr) == 0 : vxEqualsNoCase(theItem, theStr)) {
            return i;
        }
    }
    return npos;
}

bool vxStringList::HasInt32(int aValue) const {
    char theBuffer[kvxNumber_Size];
    return Has(vxFormatInt32(theBuffer, aValue), true);
}

bool vxStringList::HasUInt32(unsigned aValue) const {
    char theBuffer[kvxNumber_Size];
    return Has(vxFormatUInt32(theBuffer, aValue), true);
}

bool vxStringList::Remove(const char* aStr) {
    return RemoveAt(IndexOf(aStr, true));
}

bool vxStringList::RemoveUInt32(unsigned aValue) {
    char theBuffer[kvxNumber_Size];
    return Remove(vxFormatUInt32(theBuffer, aValue));
}

bool vxStringList::RemoveAt(size_t anIndex) {
    if (anIndex >= mCount) {
        return false;
    }
    std::copy(mIndex + anIndex + 1, mIndex + mCount, mIndex + anIndex);
    --mCount;
    return true;
}

void vxStringList::RemoveEmpty() {
    const auto fIsEmpty = [this](size_t anOffset) { return mStr[anOffset] == '\0'; };
    mCount = static_cast<size_t>(std::remove_if(mIndex, mIndex + mCount, fIsEmpty) - mIndex);
}

void vxStringList::Merge(const vxStringList& aOther, bool afCaseSensitive, bool afAllowDuplicates) {
    vxItemSet theSeen(*this, afCaseSensitive);
    std::vector<const char*> theItems;
    for (size_t i = 0; i < aOther.mCount; ++i) {
        if (theSeen.Insert(aOther.GetAt(i)) || afAllowDuplicates) {
            theItems.push_back(aOther.GetAt(i));
        }
    }
    // The texts may be this list's own: it keeps its buffer until they are copied.
    vxStringList theResult(*this);
    if (theResult.mCount == mCount && theResult.AppendAll(theItems.data(), theItems.size())) {
        SwapItems(theResult);
    }
}

bool vxStringList::IsEqual(const vxStringList& aOther, bool afCheckSeparator) const {
    if ((afCheckSeparator && mSeparatorChar != aOther.mSeparatorChar) || mCount != aOther.mCount) {
        return false;
    }
    return vxMissingItems(*this, aOther).empty();
}

void vxStringList::ComputeDiff(const vxStringList& aOld, const vxStringList& aNew,
                               vxStringList& anAdded, vxStringList& aRemoved) {
    const std::vector<const char*> theAddedItems = vxMissingItems(aNew, aOld);
    const std::vector<const char*> theRemovedItems = vxMissingItems(aOld, aNew);
    // The results may be the arguments: they keep their texts until both are built.
    vxStringList theAdded;
    vxStringList theRemoved;
    theAdded.AppendAll(theAddedItems.data(), theAddedItems.size());
    theRemoved.AppendAll(theRemovedItems.data(), theRemovedItems.size());
    anAdded.SwapItems(theAdded);
    aRemoved.SwapItems(theRemoved);
}

// Makes room for as many more items and bytes; on failure the list stays as it is.
bool vxStringList::Grow(size_t aCount, size_t aSize) {
    void* theStr = vxRealloc(mStr, vxSum(mAllocatedLength, aSize));
    if (theStr == NULL) {
        return false;
    }
    mStr = static_cast<char*>(theStr);
    void* theIndex = vxRealloc(mIndex, vxIndexSize(mCount + aCount));
    if (theIndex == NULL) {
        return false;
    }
    mIndex = static_cast<size_t*>(theIndex);
    return true;
}

// Appends a text of `aSize` bytes, its NUL included, where there is room for it.
void vxStringList::Append(const char* aStr, size_t aSize) {
    memcpy(mStr + mAllocatedLength, aStr, aSize);
    mIndex[mCount++] = mAllocatedLength;
    mAllocatedLength += aSize;
}

// Appends texts that lie outside this list, all or none.
bool vxStringList::AppendAll(const char* const* anItems, size_t aCount) {
    size_t theSize = 0;
    for (size_t i = 0; i < aCount; ++i) {
        theSize = vxSum(theSize, strlen(anItems[i]) + 1);
    }
    if (aCount == 0) {
        return true;
    }
    if (!Grow(aCount, theSize)) {
        return false;
    }
    for (size_t i = 0; i < aCount; ++i) {
        Append(anItems[i], strlen(anItems[i]) + 1);
    }
    return true;
}

// Splits a text into this list, which is empty and has the room.
void vxStringList::Split(const char* aStr, size_t aLength, char aSeparator, char anEscape) {
    size_t theEnd = 0;
    mIndex[mCount++] = 0;
    for (size_t i = 0; i < aLength; ++i) {
        if (aStr[i] != aSeparator) {
            mStr[theEnd++] = aStr[i];
        } else if (anEscape != '\0' && i > 0 && aStr[i - 1] == anEscape) {
            mStr[theEnd - 1] = aSeparator;
        } else {
            mStr[theEnd++] = '\0';
            mIndex[mCount++] = theEnd;
        }
    }
    mStr[theEnd++] = '\0';
    mAllocatedLength = theEnd;
}

// Returns where a text lies in the buffer, or npos when it lies elsewhere.
size_t vxStringList::OffsetOf(const char* aStr) const {
    const std::less<const char*> theOrder;
    const bool fOwn =
        aStr != NULL && !theOrder(aStr, mStr) && theOrder(aStr, mStr + mAllocatedLength);
    return fOwn ? static_cast<size_t>(aStr - mStr) : npos;
}

void vxStringList::SwapItems(vxStringList& aOther) {
    std::swap(mStr, aOther.mStr);
    std::swap(mIndex, aOther.mIndex);
    std::swap(mCount, aOther.mCount);
    std::swap(mAllocatedLength, aOther.mAllocatedLength);
}

vxCSVStringList::vxCSVStringList(char anEscape) : vxStringList(NULL, ',', anEscape) {}

vxCSVStringList::vxCSVStringList(const char* aStr, char anEscape)
    : vxStringList(aStr, ',', anEscape) {}

vxCSVStringList::~vxCSVStringList() = default;
