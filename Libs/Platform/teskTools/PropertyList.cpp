// Property lists.
//
// A property is one block: its first value, its further ones if there are any, and its name; a short
// text is inside the value. A list keeps its properties in an array in the order of their age, where
// a removed one leaves a hole, and behind it in the same block an open-addressed table that finds a
// property's place there by the hash of its name.
//
// A list that dies does not call itself for the lists in it: those that die with it wait in a chain
// for their turn.

#include <libteskTools/Memory.h>
#include <libteskTools/PropertyList.h>

#include "TextHash.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

/// A number, an address, or a short text, and the type.
struct vxData {
    static constexpr size_t kMaxShortLength = 14;
    static constexpr uint8_t kShortText = 99;  // type of a text that is in mBytes; nobody sees it

    alignas(8) char mBytes[kMaxShortLength + 1];
    uint8_t mType;

    template <typename T>
    T Get() const {
        T theValue;
        memcpy(&theValue, mBytes, sizeof(theValue));
        return theValue;
    }

    template <typename T>
    void Set(int aType, T aValue) {
        memcpy(mBytes, &aValue, sizeof(aValue));
        mType = static_cast<uint8_t>(aType);
    }
};

struct vxProperty {
    vxData mFirst;     // most properties have one value
    vxData* mOthers;   // owned; room for as many as the next power of two
    size_t mCount;     // of all values
    uint32_t mHash;    // of the name
    uint32_t mLength;  // of the name

    char* Name() { return reinterpret_cast<char*>(this + 1); }
    const char* Name() const { return reinterpret_cast<const char*>(this + 1); }

    const vxData& At(size_t anIndex) const { return anIndex == 0 ? mFirst : mOthers[anIndex - 1]; }
    vxData& At(size_t anIndex) { return anIndex == 0 ? mFirst : mOthers[anIndex - 1]; }
};

struct vxPropertyList {
    std::atomic<uint32_t> mRefCount;
    uint32_t mCapacity;         // places in mOrder: 0 or a power of two
    uint32_t mUsed;             // places used, holes among them
    uint32_t mHoles;            // places that are null
    size_t mSteps;              // places that positions were counted off by since there are holes
    vxProperty** mOrder;        // owned; the table follows in its block
    vxPropertyList* mNextDead;  // while lists are freed

    uint32_t* Table() const { return reinterpret_cast<uint32_t*>(mOrder + mCapacity); }
    uint32_t Mask() const { return 2 * mCapacity - 1; }
};

struct vxPackedData {
    std::atomic<uint32_t> mRefCount;
    size_t mSize;

    void* Bytes() { return this + 1; }
};

namespace {

void vxFreeData(const vxData& aData) {
    switch (aData.mType) {
        case kvxDataType_charPtr:
        case kvxDataType_wcharPtr:
        case kvxDataType_malloc:
        case kvxDataType_DLNAProtocolInfo:
            free(aData.Get<void*>());
            break;
        case kvxDataType_propertyList:
            vxPropertyList_Delete(aData.Get<vxPropertyList*>());
            break;
        case kvxDataType_packedData:
            vxPackedData_Delete(aData.Get<vxPackedData*>());
            break;
        default:
            break;
    }
}

void vxTruncate(vxProperty* aProperty, size_t aCount) {
    while (aProperty->mCount > aCount) {
        vxFreeData(aProperty->At(--aProperty->mCount));
    }
}

void vxFreeProperty(vxProperty* aProperty) {
    vxTruncate(aProperty, 0);
    free(aProperty->mOthers);
    free(aProperty);
}

// ---- Freeing lists

// Lists of this thread that nobody holds any more and that are still to be freed; null outside.
#ifdef __linux__
__attribute__((tls_model("initial-exec")))
#endif
thread_local vxPropertyList** sDeadLists = nullptr;

void vxFreeOneList(vxPropertyList* aList) {
    for (uint32_t i = 0; i < aList->mUsed; ++i) {
        if (aList->mOrder[i] != nullptr) {
            vxFreeProperty(aList->mOrder[i]);
        }
    }
    free(aList->mOrder);
    free(aList);
}

void vxFreeList(vxPropertyList* aList) {
    if (sDeadLists != nullptr) {
        aList->mNextDead = std::exchange(*sDeadLists, aList);
        return;
    }
    vxPropertyList* theDead = aList;
    sDeadLists = &theDead;
    while (theDead != nullptr) {
        vxFreeOneList(std::exchange(theDead, theDead->mNextDead));
    }
    sDeadLists = nullptr;
}

// ---- Finding by name

constexpr uint32_t kvxFirstCapacity = 8;
constexpr uint32_t kvxMaxCapacity = uint32_t{1} << 30;  // the table has as many places twice

/// Length of a text, with a short way for short ones: most have just been written byte by byte, and
/// reading them back in large pieces would wait for that.
size_t vxLengthOf(const char* aText) {
    for (size_t i = 0; i < 8; ++i) {
        if (aText[i] == '\0') {
            return i;
        }
    }
    return strlen(aText);
}

struct vxName {
    explicit vxName(const char* aName)
        : mText(aName), mLength(vxLengthOf(aName)), mHash(vxTextHash(aName, mLength)) {}

    bool IsOf(const vxProperty* aProperty) const {
        return aProperty->mHash == mHash && aProperty->mLength == mLength &&
               memcmp(aProperty->Name(), mText, mLength) == 0;
    }

    const char* mText;
    size_t mLength;
    uint32_t mHash;
};

// An entry of the table is a place in the order plus 1; 0 is free. At most half of them are in use.

vxProperty* vxPropertyOf(const vxPropertyList* aList, uint32_t anEntry) {
    return aList->mOrder[anEntry - 1];
}

/// Returns the entry of a name, which is free where there is none; null before the first property.
uint32_t* vxEntryOf(const vxPropertyList* aList, const vxName& aName) {
    if (aList->mCapacity == 0) {
        return nullptr;
    }
    uint32_t* const theTable = aList->Table();
    uint32_t i = aName.mHash & aList->Mask();
    while (theTable[i] != 0 && !aName.IsOf(vxPropertyOf(aList, theTable[i]))) {
        i = (i + 1) & aList->Mask();
    }
    return &theTable[i];
}

/// Moves entries behind a gap into it for as long as their way runs through it.
void vxCloseGap(const vxPropertyList* aList, uint32_t aGap) {
    uint32_t* const theTable = aList->Table();
    const uint32_t theMask = aList->Mask();
    for (uint32_t i = (aGap + 1) & theMask; theTable[i] != 0; i = (i + 1) & theMask) {
        const uint32_t theHome = vxPropertyOf(aList, theTable[i])->mHash & theMask;
        if (((i - theHome) & theMask) >= ((i - aGap) & theMask)) {
            theTable[aGap] = theTable[i];
            aGap = i;
        }
    }
    theTable[aGap] = 0;
}

/// Makes the table anew from an order without holes.
void vxFillTable(const vxPropertyList* aList) {
    uint32_t* const theTable = aList->Table();
    memset(theTable, 0, size_t{2} * aList->mCapacity * sizeof(*theTable));
    for (uint32_t theEntry = 1; theEntry <= aList->mUsed; ++theEntry) {
        uint32_t i = vxPropertyOf(aList, theEntry)->mHash & aList->Mask();
        while (theTable[i] != 0) {
            i = (i + 1) & aList->Mask();
        }
        theTable[i] = theEntry;
    }
}

// ---- The order

/// Copies the properties to an order of their own, without the holes.
void vxCopyOrder(const vxPropertyList* aList, vxProperty** aTarget) {
    for (uint32_t i = 0; i < aList->mUsed; ++i) {
        if (aList->mOrder[i] != nullptr) {
            *aTarget++ = aList->mOrder[i];
        }
    }
}

void vxClosedHoles(vxPropertyList* aList) {
    aList->mUsed -= aList->mHoles;
    aList->mHoles = 0;
    aList->mSteps = 0;
    vxFillTable(aList);
}

void vxCloseHoles(vxPropertyList* aList) {
    vxCopyOrder(aList, aList->mOrder);
    vxClosedHoles(aList);
}

/// Finds a position among holes. They are closed once counting them off has cost as much.
vxProperty* vxCountOff(vxPropertyList* aList, size_t anIndex) {
    if (aList->mSteps > aList->mUsed) {
        vxCloseHoles(aList);
        return aList->mOrder[anIndex];
    }
    uint32_t thePlace = 0;
    for (size_t theSkip = anIndex + 1; theSkip > 0; ++thePlace) {
        theSkip -= aList->mOrder[thePlace] != nullptr ? 1 : 0;
    }
    aList->mSteps += thePlace;
    return aList->mOrder[thePlace - 1];
}

bool vxGrow(vxPropertyList* aList) {
    if (aList->mCapacity >= kvxMaxCapacity) {
        return false;
    }
    const size_t theCapacity =
        aList->mCapacity == 0 ? kvxFirstCapacity : size_t{2} * aList->mCapacity;
    constexpr size_t kSize = sizeof(vxProperty*) + 2 * sizeof(uint32_t);
    void* theBlock = theCapacity > SIZE_MAX / kSize ? nullptr : vxMalloc(theCapacity * kSize);
    if (theBlock == nullptr) {
        return false;
    }
    vxProperty** theOrder = static_cast<vxProperty**>(theBlock);
    vxCopyOrder(aList, theOrder);
    free(std::exchange(aList->mOrder, theOrder));
    aList->mCapacity = static_cast<uint32_t>(theCapacity);
    vxClosedHoles(aList);
    return true;
}

/// Makes room in a full order: more of it only where closing holes does not give much.
bool vxReserve(vxPropertyList* aList) {
    if (aList->mHoles <= aList->mUsed / 2) {
        return vxGrow(aList);
    }
    vxCloseHoles(aList);
    return true;
}

vxProperty* vxNewProperty(const vxName& aName) {
    constexpr size_t kMaxLength = UINT32_MAX - sizeof(vxProperty) - 1;
    void* theBlock =
        aName.mLength > kMaxLength ? nullptr : vxMalloc(sizeof(vxProperty) + aName.mLength + 1);
    if (theBlock == nullptr) {
        return nullptr;
    }
    vxProperty* theProperty = static_cast<vxProperty*>(theBlock);
    theProperty->mOthers = nullptr;
    theProperty->mCount = 0;
    theProperty->mHash = aName.mHash;
    theProperty->mLength = static_cast<uint32_t>(aName.mLength);
    memcpy(theProperty->Name(), aName.mText, aName.mLength + 1);
    return theProperty;
}

/// Adds a property of a name that the list does not have; its entry is the given one, unless null.
vxProperty* vxAppend(vxPropertyList* aList, const vxName& aName, uint32_t* anEntry) {
    if (aList->mUsed == aList->mCapacity) {
        anEntry = vxReserve(aList) ? vxEntryOf(aList, aName) : nullptr;
    }
    vxProperty* theProperty = anEntry == nullptr ? nullptr : vxNewProperty(aName);
    if (theProperty != nullptr) {
        aList->mOrder[aList->mUsed++] = theProperty;
        *anEntry = aList->mUsed;
    }
    return theProperty;
}

// ---- Values

bool vxCanSet(const vxProperty* aProperty, size_t anIndex) {
    return aProperty != NULL && anIndex <= aProperty->mCount;
}

/// Is there room for another value behind those that there are?
bool vxReserveValue(vxProperty* aProperty) {
    const size_t theOthers = aProperty->mCount == 0 ? 0 : aProperty->mCount - 1;
    if (aProperty->mCount == 0 || (theOthers & (theOthers - 1)) != 0) {
        return true;
    }
    // All powers of two, and none, are full.
    const size_t theRoom = theOthers == 0 ? 1 : 2 * theOthers;
    void* theBlock = theRoom > SIZE_MAX / sizeof(vxData)
                         ? nullptr
                         : vxRealloc(aProperty->mOthers, theRoom * sizeof(vxData));
    if (theBlock == nullptr) {
        return false;
    }
    aProperty->mOthers = static_cast<vxData*>(theBlock);
    return true;
}

/// Returns the value to be written, whose old content goes to `anOld`, for the caller to free: the new
/// one may come out of it. Null where no value can be.
vxData* vxOpen(vxProperty* aProperty, size_t anIndex, vxData& anOld) {
    anOld.mType = kvxDataType_Unknown;
    if (!vxCanSet(aProperty, anIndex)) {
        return nullptr;
    }
    if (anIndex < aProperty->mCount) {
        anOld = aProperty->At(anIndex);
    } else if (vxReserveValue(aProperty)) {
        ++aProperty->mCount;
    } else {
        return nullptr;
    }
    return &aProperty->At(anIndex);
}

template <typename T>
bool vxSetValue(vxProperty* aProperty, size_t anIndex, int aType, T aValue) {
    vxData theOld;
    vxData* theData = vxOpen(aProperty, anIndex, theOld);
    if (theData == nullptr) {
        return false;
    }
    theData->Set(aType, aValue);
    vxFreeData(theOld);
    return true;
}

bool vxSetPointer(vxProperty* aProperty, size_t anIndex, int aType, void* aPtr) {
    return vxSetValue(aProperty, anIndex, aType, aPtr);
}

/// Puts a text into the value itself, where it may have come from.
void vxSetShortText(vxProperty* aProperty, const char* aText) {
    vxData theOld;
    vxData* theData = vxOpen(aProperty, 0, theOld);
    for (size_t i = 0; (theData->mBytes[i] = aText[i]) != '\0'; ++i) {}
    theData->mType = vxData::kShortText;
    vxFreeData(theOld);
}

/// A short text is kept inside the first value, which does not move.
bool vxSetText(vxProperty* aProperty, size_t anIndex, const char* aText) {
    const size_t theLength = vxLengthOf(aText);
    if (anIndex == 0 && theLength <= vxData::kMaxShortLength) {
        vxSetShortText(aProperty, aText);
        return true;
    }
    void* theCopy = vxMalloc(theLength + 1);
    return vxSetPointer(aProperty, anIndex, kvxDataType_charPtr,
                        theCopy == nullptr ? nullptr : memcpy(theCopy, aText, theLength + 1));
}

bool vxIs(const vxData* aData, int aType) {
    return aData != NULL && aData->mType == aType;
}

template <typename T>
T vxValueOf(const vxData* aData, int aType) {
    return vxIs(aData, aType) ? aData->Get<T>() : T();
}

wchar_t* vxCopy(const wchar_t* aStr) {
    const size_t theSize = (wcslen(aStr) + 1) * sizeof(wchar_t);
    void* theCopy = vxMalloc(theSize);
    return static_cast<wchar_t*>(theCopy == NULL ? NULL : memcpy(theCopy, aStr, theSize));
}

}  // namespace

vxPropertyList* vxPropertyList_New(void) {
    void* theBlock = vxMalloc(sizeof(vxPropertyList));
    return theBlock == NULL ? NULL : new (theBlock) vxPropertyList{{1}, 0, 0, 0, 0, NULL, NULL};
}

vxPropertyList* vxPropertyList_Take(vxPropertyList* aList) {
    if (aList != NULL) {
        aList->mRefCount.fetch_add(1, std::memory_order_relaxed);
    }
    return aList;
}

void vxPropertyList_Delete(vxPropertyList* aList) {
    if (aList != NULL && aList->mRefCount.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        vxFreeList(aList);
    }
}

size_t vxPropertyList_GetCount(const vxPropertyList* aList) {
    return aList == NULL ? 0 : aList->mUsed - aList->mHoles;
}

vxProperty* vxPropertyList_GetAt(const vxPropertyList* aList, size_t anIndex) {
    if (aList == NULL || anIndex >= aList->mUsed - aList->mHoles) {
        return NULL;
    }
    return aList->mHoles == 0 ? aList->mOrder[anIndex]
                              : vxCountOff(const_cast<vxPropertyList*>(aList), anIndex);
}

vxProperty* vxPropertyList_Find(const vxPropertyList* aList, const char* aName) {
    const uint32_t* theEntry =
        aList == NULL || aName == NULL ? NULL : vxEntryOf(aList, vxName(aName));
    return theEntry == NULL || *theEntry == 0 ? NULL : vxPropertyOf(aList, *theEntry);
}

vxProperty* vxPropertyList_Add(vxPropertyList* aList, const char* aName) {
    if (aList == NULL || aName == NULL) {
        return NULL;
    }
    const vxName theName(aName);
    uint32_t* theEntry = vxEntryOf(aList, theName);
    return theEntry != NULL && *theEntry != 0 ? vxPropertyOf(aList, *theEntry)
                                              : vxAppend(aList, theName, theEntry);
}

bool vxPropertyList_Remove(vxPropertyList* aList, const char* aName) {
    uint32_t* theEntry = aList == NULL || aName == NULL ? NULL : vxEntryOf(aList, vxName(aName));
    if (theEntry == NULL || *theEntry == 0) {
        return false;
    }
    vxProperty* theProperty = std::exchange(aList->mOrder[*theEntry - 1], nullptr);
    ++aList->mHoles;
    vxCloseGap(aList, static_cast<uint32_t>(theEntry - aList->Table()));
    vxFreeProperty(theProperty);
    return true;
}

bool vxPropertyList_Set_uint32(vxPropertyList* aList, const char* aName, uint32_t aValue) {
    vxProperty* theProperty = vxPropertyList_Add(aList, aName);
    vxProperty_Truncate(theProperty, 1);
    return vxProperty_Set_uint32(theProperty, 0, aValue);
}

bool vxPropertyList_Set_charPtr(vxPropertyList* aList, const char* aName, const char* aValue) {
    vxProperty* theProperty = vxPropertyList_Add(aList, aName);
    const bool theResult = vxProperty_Set_charPtr(theProperty, 0, aValue);
    vxProperty_Truncate(theProperty, 1);
    return theResult;
}

bool vxPropertyList_Get_uint32(const vxPropertyList* aList, const char* aName, uint32_t* aValue) {
    const vxData* theData = vxProperty_GetAt(vxPropertyList_Find(aList, aName), 0);
    if (!vxIs(theData, kvxDataType_uint32)) {
        return false;
    }
    *aValue = theData->Get<uint32_t>();
    return true;
}

const char* vxPropertyList_Get_charPtr(const vxPropertyList* aList, const char* aName) {
    return vxData_Get_charPtr(vxProperty_GetAt(vxPropertyList_Find(aList, aName), 0));
}

const char* vxProperty_GetName(const vxProperty* aProperty) {
    return aProperty == NULL ? NULL : aProperty->Name();
}

size_t vxProperty_GetCount(const vxProperty* aProperty) {
    return aProperty == NULL ? 0 : aProperty->mCount;
}

const vxData* vxProperty_GetAt(const vxProperty* aProperty, size_t anIndex) {
    return aProperty != NULL && anIndex < aProperty->mCount ? &aProperty->At(anIndex) : NULL;
}

void vxProperty_Truncate(vxProperty* aProperty, size_t aCount) {
    if (aProperty != NULL) {
        vxTruncate(aProperty, aCount);
    }
}

bool vxProperty_Set_Unknown(vxProperty* aProperty, size_t anIndex) {
    return vxSetPointer(aProperty, anIndex, kvxDataType_Unknown, NULL);
}

bool vxProperty_Set_uint32(vxProperty* aProperty, size_t anIndex, uint32_t aValue) {
    return vxSetValue(aProperty, anIndex, kvxDataType_uint32, aValue);
}

bool vxProperty_Set_double(vxProperty* aProperty, size_t anIndex, double aValue) {
    return vxSetValue(aProperty, anIndex, kvxDataType_double, aValue);
}

bool vxProperty_Set_voidPtr(vxProperty* aProperty, size_t anIndex, void* aValue) {
    return vxSetPointer(aProperty, anIndex, kvxDataType_voidPtr, aValue);
}

bool vxProperty_Set_uint64(vxProperty* aProperty, size_t anIndex, uint64_t aValue) {
    return vxSetValue(aProperty, anIndex, kvxDataType_uint64, aValue);
}

bool vxProperty_Set_size_t(vxProperty* aProperty, size_t anIndex, size_t aValue) {
    return vxSetValue(aProperty, anIndex, kvxDataType_size_t, aValue);
}

bool vxProperty_Set_charPtr(vxProperty* aProperty, size_t anIndex, const char* aValue) {
    return vxCanSet(aProperty, anIndex) &&
           vxSetText(aProperty, anIndex, aValue == NULL ? "" : aValue);
}

bool vxProperty_Set_wcharPtr(vxProperty* aProperty, size_t anIndex, const wchar_t* aValue) {
    return vxCanSet(aProperty, anIndex) && vxSetPointer(aProperty, anIndex, kvxDataType_wcharPtr,
                                                        vxCopy(aValue == NULL ? L"" : aValue));
}

bool vxProperty_Set_propertyList(vxProperty* aProperty, size_t anIndex, vxPropertyList* aValue) {
    return vxCanSet(aProperty, anIndex) && aValue != NULL &&
           vxSetPointer(aProperty, anIndex, kvxDataType_propertyList, vxPropertyList_Take(aValue));
}

bool vxProperty_Set_packedData(vxProperty* aProperty, size_t anIndex, vxPackedData* aValue) {
    return vxCanSet(aProperty, anIndex) && aValue != NULL &&
           vxSetPointer(aProperty, anIndex, kvxDataType_packedData, vxPackedData_Take(aValue));
}

bool vxProperty_Set_malloc(vxProperty* aProperty, size_t anIndex, void* aBlock) {
    return vxSetPointer(aProperty, anIndex, kvxDataType_malloc, aBlock);
}

bool vxProperty_Set_DLNAProtocolInfo(vxProperty* aProperty, size_t anIndex, void* aBlock) {
    return vxSetPointer(aProperty, anIndex, kvxDataType_DLNAProtocolInfo, aBlock);
}

int vxData_GetType(const vxData* aData) {
    if (vxIs(aData, vxData::kShortText)) {
        return kvxDataType_charPtr;
    }
    return aData == NULL ? static_cast<int>(kvxDataType_Unknown) : aData->mType;
}

uint32_t vxData_Get_uint32(const vxData* aData) {
    return vxValueOf<uint32_t>(aData, kvxDataType_uint32);
}

double vxData_Get_double(const vxData* aData) {
    return vxValueOf<double>(aData, kvxDataType_double);
}

uint64_t vxData_Get_uint64(const vxData* aData) {
    return vxValueOf<uint64_t>(aData, kvxDataType_uint64);
}

size_t vxData_Get_size_t(const vxData* aData) {
    return vxValueOf<size_t>(aData, kvxDataType_size_t);
}

const char* vxData_Get_charPtr(const vxData* aData) {
    return vxIs(aData, vxData::kShortText) ? aData->mBytes
                                           : vxValueOf<const char*>(aData, kvxDataType_charPtr);
}

const wchar_t* vxData_Get_wcharPtr(const vxData* aData) {
    return vxValueOf<const wchar_t*>(aData, kvxDataType_wcharPtr);
}

vxPropertyList* vxData_Get_propertyList(const vxData* aData) {
    return vxValueOf<vxPropertyList*>(aData, kvxDataType_propertyList);
}

vxPackedData* vxData_Get_packedData(const vxData* aData) {
    return vxValueOf<vxPackedData*>(aData, kvxDataType_packedData);
}

void* vxData_Get_voidPtr(const vxData* aData) {
    return vxValueOf<void*>(aData, kvxDataType_voidPtr);
}

void* vxData_Get_malloc(const vxData* aData) {
    return vxValueOf<void*>(aData, kvxDataType_malloc);
}

void* vxData_Get_DLNAProtocolInfo(const vxData* aData) {
    return vxValueOf<void*>(aData, kvxDataType_DLNAProtocolInfo);
}

vxPackedData* vxPackedData_New(const void* aBytes, size_t aSize) {
    if (aSize > SIZE_MAX - sizeof(vxPackedData)) {
        return NULL;
    }
    void* theBlock = vxMalloc(sizeof(vxPackedData) + aSize);
    if (theBlock == NULL) {
        return NULL;
    }
    vxPackedData* theData = new (theBlock) vxPackedData{{1}, aSize};
    if (aSize != 0) {
        memcpy(theData->Bytes(), aBytes, aSize);
    }
    return theData;
}

vxPackedData* vxPackedData_Take(vxPackedData* aData) {
    if (aData != NULL) {
        aData->mRefCount.fetch_add(1, std::memory_order_relaxed);
    }
    return aData;
}

void vxPackedData_Delete(vxPackedData* aData) {
    if (aData != NULL && aData->mRefCount.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        free(aData);
    }
}

const void* vxPackedData_GetPtr(const vxPackedData* aData) {
    return aData == NULL ? NULL : const_cast<vxPackedData*>(aData)->Bytes();
}

size_t vxPackedData_GetSize(const vxPackedData* aData) {
    return aData == NULL ? 0 : aData->mSize;
}
