// A growing array of pointers.
//
// The sort is a stable merge sort of its own, because it must survive comparisons that contradict
// themselves: no step trusts an earlier answer, every loop is bounded by indexes alone.

#include <libteskTools/Array.h>
#include <libteskTools/Memory.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

struct vxArray {
    void** mItems;               // owned block, null until the first element
    size_t mCount;               // elements, never above mCapacity
    size_t mCapacity;            // pointers the block can hold
    vxArray_FreeFunc mFreeFunc;  // null: the elements are borrowed
    vxArray_SortFunc mSortFunc;  // null: no order
};

namespace {

constexpr size_t kvxArray_FirstCapacity = 8;
constexpr size_t kvxArray_MaxCapacity = static_cast<size_t>(-1) / sizeof(void*);
constexpr size_t kvxArray_SortRun = 8;  // elements sorted by insertion before merging starts

bool vxArrayGrow(vxArray* anArray) {
    const size_t theCapacity =
        anArray->mCapacity == 0
            ? kvxArray_FirstCapacity
            : anArray->mCapacity +
                  std::min(anArray->mCapacity, kvxArray_MaxCapacity - anArray->mCapacity);
    void* theBlock = vxRealloc(anArray->mItems, theCapacity * sizeof(void*));
    if (theBlock == NULL) {
        return false;
    }
    anArray->mItems = static_cast<void**>(theBlock);
    anArray->mCapacity = theCapacity;
    return true;
}

void vxArrayFree(const vxArray* anArray, void* anElement) {
    if (anArray->mFreeFunc != NULL) {
        anArray->mFreeFunc(anElement);
    }
}

void vxInsertionSort(void** aFirst, size_t aCount, vxArray_SortFunc aSortFunc) {
    for (size_t i = 1; i < aCount; ++i) {
        void* theItem = aFirst[i];
        size_t thePos = i;
        for (; thePos > 0 && aSortFunc(aFirst[thePos - 1], theItem) > 0; --thePos) {
            aFirst[thePos] = aFirst[thePos - 1];
        }
        aFirst[thePos] = theItem;
    }
}

// Merges [0, aMiddle) and [aMiddle, aCount) of aFrom into aTo.
void vxMerge(void* const* aFrom, size_t aMiddle, size_t aCount, void** aTo,
             vxArray_SortFunc aSortFunc) {
    size_t theLeft = 0;
    size_t theRight = aMiddle;
    while (theLeft < aMiddle && theRight < aCount) {
        const bool theRightFirst = aSortFunc(aFrom[theLeft], aFrom[theRight]) > 0;
        *aTo++ = theRightFirst ? aFrom[theRight++] : aFrom[theLeft++];
    }
    aTo = std::copy(aFrom + theLeft, aFrom + aMiddle, aTo);
    std::copy(aFrom + theRight, aFrom + aCount, aTo);
}

void vxMergeSort(void** anItems, size_t aCount, vxArray_SortFunc aSortFunc) {
    for (size_t i = 0; i < aCount; i += kvxArray_SortRun) {
        vxInsertionSort(anItems + i, std::min(kvxArray_SortRun, aCount - i), aSortFunc);
    }
    if (aCount <= kvxArray_SortRun) {
        return;
    }
    void** const theBlock = static_cast<void**>(vxMalloc(aCount * sizeof(void*)));
    if (theBlock == NULL) {
        return;
    }
    void** theFrom = anItems;
    void** theTo = theBlock;
    for (size_t theRun = kvxArray_SortRun; theRun < aCount; theRun *= 2) {
        for (size_t i = 0; i < aCount; i += std::min(2 * theRun, aCount - i)) {
            const size_t theLength = std::min(2 * theRun, aCount - i);
            vxMerge(theFrom + i, std::min(theRun, theLength), theLength, theTo + i, aSortFunc);
        }
        std::swap(theFrom, theTo);
    }
    if (theFrom != anItems) {
        std::copy(theFrom, theFrom + aCount, anItems);
    }
    free(theBlock);
}

}  // namespace

vxArray* vxArray_New(void) {
    return static_cast<vxArray*>(vxCalloc(sizeof(vxArray)));
}

void vxArray_Delete(vxArray* anArray) {
    if (anArray != NULL) {
        vxArray_Clear(anArray);
        free(anArray->mItems);
        free(anArray);
    }
}

void vxArray_SetFreeFunc(vxArray* anArray, vxArray_FreeFunc aFreeFunc) {
    anArray->mFreeFunc = aFreeFunc;
}

void vxArray_SetSortFunc(vxArray* anArray, vxArray_SortFunc aSortFunc) {
    anArray->mSortFunc = aSortFunc;
}

void vxArray_Sort(vxArray* anArray) {
    const vxArray_SortFunc theSortFunc = anArray->mSortFunc;
    if (theSortFunc == NULL || anArray->mCount == 0) {
        return;
    }
    void** const theEnd = anArray->mItems + anArray->mCount;
    void** const theFirst = std::stable_partition(
        anArray->mItems, theEnd, [=](void* anItem) { return theSortFunc(anItem, anItem) < 0; });
    void** const theLast = std::stable_partition(
        theFirst, theEnd, [=](void* anItem) { return theSortFunc(anItem, anItem) <= 0; });
    vxMergeSort(theFirst, static_cast<size_t>(theLast - theFirst), theSortFunc);
}

bool vxArray_Append(vxArray* anArray, void* anElement) {
    if (anArray->mCount == anArray->mCapacity && !vxArrayGrow(anArray)) {
        return false;
    }
    anArray->mItems[anArray->mCount++] = anElement;
    return true;
}

bool vxArray_Insert(vxArray* anArray, size_t anIndex, void* anElement) {
    if (!vxArray_Append(anArray, anElement)) {
        return false;
    }
    if (anIndex < anArray->mCount) {
        void** const thePlace = anArray->mItems + anIndex;
        memmove(thePlace + 1, thePlace, (anArray->mCount - 1 - anIndex) * sizeof(void*));
        *thePlace = anElement;
    }
    return true;
}

void* vxArray_At(const vxArray* anArray, size_t anIndex) {
    return anIndex < vxArray_GetCount(anArray) ? anArray->mItems[anIndex] : NULL;
}

size_t vxArray_GetCount(const vxArray* anArray) {
    return anArray == NULL ? 0 : anArray->mCount;
}

size_t vxArray_Find(const vxArray* anArray, const void* anElement) {
    for (size_t i = 0; i < anArray->mCount; ++i) {
        if (anArray->mItems[i] == anElement) {
            return i;
        }
    }
    return kvxArray_NotFound;
}

bool vxArray_Remove(vxArray* anArray, void* anElement) {
    return vxArray_RemoveAt(anArray, vxArray_Find(anArray, anElement));
}

bool vxArray_RemoveAt(vxArray* anArray, size_t anIndex) {
    if (anIndex >= anArray->mCount) {
        return false;
    }
    vxArrayFree(anArray, vxArray_TakeAt(anArray, anIndex));
    return true;
}

void* vxArray_TakeAt(vxArray* anArray, size_t anIndex) {
    if (anIndex >= anArray->mCount) {
        return NULL;
    }
    void** const thePlace = anArray->mItems + anIndex;
    void* theElement = *thePlace;
    memmove(thePlace, thePlace + 1, (anArray->mCount - 1 - anIndex) * sizeof(void*));
    --anArray->mCount;
    return theElement;
}

void vxArray_Clear(vxArray* anArray) {
    // The block is taken away first: a free function that looks at the array finds it empty.
    void** const theItems = std::exchange(anArray->mItems, nullptr);
    const size_t theCount = std::exchange(anArray->mCount, 0);
    anArray->mCapacity = 0;
    for (size_t i = 0; i < theCount; ++i) {
        vxArrayFree(anArray, theItems[i]);
    }
    free(theItems);
}
