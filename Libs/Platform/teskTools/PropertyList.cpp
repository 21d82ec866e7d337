// Property lists over a hash table, which finds names and keeps their order.
//
// A list that dies does not call itself for the lists in it: those that die with it wait in a chain
// for their turn.

#include <libteskTools/HashTable.h>
#include <libteskTools/Memory.h>
#include <libteskTools/PropertyList.h>

#include "HashTablePlace.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>
#include <vector>

struct vxData {
    int mType;
    union {
        uint32_t mUInt32;
        double mDouble;
        uint64_t mUInt64;
        size_t mSize;
        void* mPtr;  // of every other type
    };
};

namespace {

/// The values of a property: most have one, which needs no block of its own.
class vxValues {
public:
    size_t Count() const { return mCount; }

    vxData& At(size_t anIndex) { return anIndex == 0 ? mFirst : mOthers[anIndex - 1]; }
    const vxData& At(size_t anIndex) const { return anIndex == 0 ? mFirst : mOthers[anIndex - 1]; }

    void Append(const vxData& aData) {
        if (mCount == 0) {
            mFirst = aData;
        } else {
            mOthers.push_back(aData);
        }
        ++mCount;
    }

    vxData TakeLast() {
        const vxData theData = At(--mCount);
        if (mCount > 0) {
            mOthers.pop_back();
        }
        return theData;
    }

private:
    size_t mCount = 0;
    vxData mFirst = {};
    std::vector<vxData> mOthers;
};

}  // namespace

struct vxProperty {
    explicit vxProperty(const char* aName) : mName(aName) {}

    std::string mName;
    vxValues mValues;
};

struct vxPropertyList {
    std::atomic<uint32_t> mRefCount;
    vxCustomHashTable* mTable;  // owned, with the properties in it
    vxPropertyList* mNextDead;  // while lists are freed
};

struct vxPackedData {
    std::atomic<uint32_t> mRefCount;
    size_t mSize;

    void* Bytes() { return this + 1; }
};

namespace {

// Lists of this thread that nobody holds any more and that are still to be freed; null outside.
thread_local vxPropertyList** sDeadLists = nullptr;

void vxFreeLists(vxPropertyList* aList) {
    vxPropertyList* theDead = aList;
    sDeadLists = &theDead;
    while (theDead != nullptr) {
        vxPropertyList* theList = std::exchange(theDead, theDead->mNextDead);
        vxCustomHashTable_Delete(theList->mTable);
        delete theList;
    }
    sDeadLists = nullptr;
}

void vxFreeList(vxPropertyList* aList) {
    if (sDeadLists == nullptr) {
        vxFreeLists(aList);
    } else {
        aList->mNextDead = std::exchange(*sDeadLists, aList);
    }
}

void vxFreeData(const vxData& aData) {
    switch (aData.mType) {
        case kvxDataType_charPtr:
        case kvxDataType_wcharPtr:
        case kvxDataType_malloc:
        case kvxDataType_DLNAProtocolInfo:
            free(aData.mPtr);
            break;
        case kvxDataType_propertyList:
            vxPropertyList_Delete(static_cast<vxPropertyList*>(aData.mPtr));
            break;
        case kvxDataType_packedData:
            vxPackedData_Delete(static_cast<vxPackedData*>(aData.mPtr));
            break;
        default:
            break;
    }
}

void vxFreeProperty(void* aProperty) {
    vxProperty* theProperty = static_cast<vxProperty*>(aProperty);
    vxProperty_Truncate(theProperty, 0);
    delete theProperty;
}

bool vxCanSet(const vxProperty* aProperty, size_t anIndex) {
    return aProperty != NULL && anIndex <= aProperty->mValues.Count();
}

bool vxSet(vxProperty* aProperty, size_t anIndex, const vxData& aData) {
    if (!vxCanSet(aProperty, anIndex)) {
        return false;
    }
    if (anIndex == aProperty->mValues.Count()) {
        aProperty->mValues.Append(aData);
    } else {
        // The new value may come out of the old one: that goes last.
        vxFreeData(std::exchange(aProperty->mValues.At(anIndex), aData));
    }
    return true;
}

template <typename T>
bool vxSet(vxProperty* aProperty, size_t anIndex, int aType, T vxData::*aMember, T aValue) {
    vxData theData = {aType, {}};
    theData.*aMember = aValue;
    return vxSet(aProperty, anIndex, theData);
}

bool vxSetPointer(vxProperty* aProperty, size_t anIndex, int aType, void* aPtr) {
    return vxSet(aProperty, anIndex, aType, &vxData::mPtr, aPtr);
}

bool vxIs(const vxData* aData, int aType) {
    return aData != NULL && aData->mType == aType;
}

void* vxPointerOf(const vxData* aData, int aType) {
    return vxIs(aData, aType) ? aData->mPtr : NULL;
}

wchar_t* vxCopy(const wchar_t* aStr) {
    const size_t theSize = (wcslen(aStr) + 1) * sizeof(wchar_t);
    void* theCopy = vxMalloc(theSize);
    return static_cast<wchar_t*>(theCopy == NULL ? NULL : memcpy(theCopy, aStr, theSize));
}

}  // namespace

vxPropertyList* vxPropertyList_New(void) {
    return new vxPropertyList{{1}, vxCustomHashTable_New_String_Other(vxFreeProperty), NULL};
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
    return aList == NULL ? 0 : vxCustomHashTable_GetTupleCount(aList->mTable);
}

vxProperty* vxPropertyList_GetAt(const vxPropertyList* aList, size_t anIndex) {
    return aList == NULL ? NULL
                         : static_cast<vxProperty*>(
                               vxCustomHashTable_GetValueAtIndex(aList->mTable, anIndex));
}

vxProperty* vxPropertyList_Find(const vxPropertyList* aList, const char* aName) {
    return aList == NULL || aName == NULL
               ? NULL
               : static_cast<vxProperty*>(vxCustomHashTable_Get(aList->mTable, aName));
}

vxProperty* vxPropertyList_Add(vxPropertyList* aList, const char* aName) {
    void** thePlace =
        aList == NULL || aName == NULL ? NULL : vxCustomHashTable_PlaceOf(aList->mTable, aName);
    if (thePlace == NULL) {
        return NULL;
    }
    if (*thePlace == NULL) {
        *thePlace = new vxProperty(aName);
    }
    return static_cast<vxProperty*>(*thePlace);
}

bool vxPropertyList_Remove(vxPropertyList* aList, const char* aName) {
    return aList != NULL && aName != NULL && vxCustomHashTable_Remove(aList->mTable, aName);
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
    *aValue = theData->mUInt32;
    return true;
}

const char* vxPropertyList_Get_charPtr(const vxPropertyList* aList, const char* aName) {
    return vxData_Get_charPtr(vxProperty_GetAt(vxPropertyList_Find(aList, aName), 0));
}

const char* vxProperty_GetName(const vxProperty* aProperty) {
    return aProperty == NULL ? NULL : aProperty->mName.c_str();
}

size_t vxProperty_GetCount(const vxProperty* aProperty) {
    return aProperty == NULL ? 0 : aProperty->mValues.Count();
}

const vxData* vxProperty_GetAt(const vxProperty* aProperty, size_t anIndex) {
    return anIndex < vxProperty_GetCount(aProperty) ? &aProperty->mValues.At(anIndex) : NULL;
}

void vxProperty_Truncate(vxProperty* aProperty, size_t aCount) {
    while (vxProperty_GetCount(aProperty) > aCount) {
        vxFreeData(aProperty->mValues.TakeLast());
    }
}

bool vxProperty_Set_Unknown(vxProperty* aProperty, size_t anIndex) {
    return vxSetPointer(aProperty, anIndex, kvxDataType_Unknown, NULL);
}

bool vxProperty_Set_uint32(vxProperty* aProperty, size_t anIndex, uint32_t aValue) {
    return vxSet(aProperty, anIndex, kvxDataType_uint32, &vxData::mUInt32, aValue);
}

bool vxProperty_Set_double(vxProperty* aProperty, size_t anIndex, double aValue) {
    return vxSet(aProperty, anIndex, kvxDataType_double, &vxData::mDouble, aValue);
}

bool vxProperty_Set_voidPtr(vxProperty* aProperty, size_t anIndex, void* aValue) {
    return vxSetPointer(aProperty, anIndex, kvxDataType_voidPtr, aValue);
}

bool vxProperty_Set_uint64(vxProperty* aProperty, size_t anIndex, uint64_t aValue) {
    return vxSet(aProperty, anIndex, kvxDataType_uint64, &vxData::mUInt64, aValue);
}

bool vxProperty_Set_size_t(vxProperty* aProperty, size_t anIndex, size_t aValue) {
    return vxSet(aProperty, anIndex, kvxDataType_size_t, &vxData::mSize, aValue);
}

bool vxProperty_Set_charPtr(vxProperty* aProperty, size_t anIndex, const char* aValue) {
    return vxCanSet(aProperty, anIndex) && vxSetPointer(aProperty, anIndex, kvxDataType_charPtr,
                                                        vxStrdup(aValue == NULL ? "" : aValue));
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
    return aData == NULL ? static_cast<int>(kvxDataType_Unknown) : aData->mType;
}

uint32_t vxData_Get_uint32(const vxData* aData) {
    return vxIs(aData, kvxDataType_uint32) ? aData->mUInt32 : 0;
}

double vxData_Get_double(const vxData* aData) {
    return vxIs(aData, kvxDataType_double) ? aData->mDouble : 0;
}

uint64_t vxData_Get_uint64(const vxData* aData) {
    return vxIs(aData, kvxDataType_uint64) ? aData->mUInt64 : 0;
}

size_t vxData_Get_size_t(const vxData* aData) {
    return vxIs(aData, kvxDataType_size_t) ? aData->mSize : 0;
}

const char* vxData_Get_charPtr(const vxData* aData) {
    return static_cast<const char*>(vxPointerOf(aData, kvxDataType_charPtr));
}

const wchar_t* vxData_Get_wcharPtr(const vxData* aData) {
    return static_cast<const wchar_t*>(vxPointerOf(aData, kvxDataType_wcharPtr));
}

vxPropertyList* vxData_Get_propertyList(const vxData* aData) {
    return static_cast<vxPropertyList*>(vxPointerOf(aData, kvxDataType_propertyList));
}

vxPackedData* vxData_Get_packedData(const vxData* aData) {
    return static_cast<vxPackedData*>(vxPointerOf(aData, kvxDataType_packedData));
}

void* vxData_Get_voidPtr(const vxData* aData) {
    return vxPointerOf(aData, kvxDataType_voidPtr);
}

void* vxData_Get_malloc(const vxData* aData) {
    return vxPointerOf(aData, kvxDataType_malloc);
}

void* vxData_Get_DLNAProtocolInfo(const vxData* aData) {
    return vxPointerOf(aData, kvxDataType_DLNAProtocolInfo);
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
