// The lookup tables of large containers.
//
// By position it is a vector that can also lose its front cheaply. By name it is an open-addressed
// hash table. Members of one name stay in the order in which they stand in the
// object: a later one is inserted behind on the same probe path, and closing the gap of a removed
// entry keeps that order.

#include "JSONTable.h"

#include <cstdlib>

#include "JSONKey.h"
#include "JSONNode.h"
#include "TextHash.h"

// What follows it in its block holds pointers.
struct alignas(vxJSON_t*) vxJSONTable {
    struct Entry {
        vxJSON_t* mNode;      // null: free
        vxJSON_t* mPrevious;  // in the ring; stale for the first child
        uint32_t mHash;
    };

    vxJSONOrder mOrder;
    uint32_t mCapacity;  // a power of two by name
    uint32_t mUsed;
    uint32_t mStart;  // by position: items dropped from the front
    uint32_t mHint;   // by position: what is remembered; atomic

    vxJSON_t** Items() { return reinterpret_cast<vxJSON_t**>(this + 1); }
    vxJSON_t* const* Items() const { return reinterpret_cast<vxJSON_t* const*>(this + 1); }
    Entry* Entries() { return reinterpret_cast<Entry*>(this + 1); }
    const Entry* Entries() const { return reinterpret_cast<const Entry*>(this + 1); }
};

namespace {

using Entry = vxJSONTable::Entry;

uint32_t vxHashOf(const vxJSON_t* aNode) {
    const vxJSONText theName = vxNameText(aNode);
    return vxTextHash(theName.mData, theName.mLength);
}

uint32_t vxHome(const vxJSONTable* aTable, uint32_t aHash) {
    return aHash & (aTable->mCapacity - 1);
}

uint32_t vxAfter(const vxJSONTable* aTable, uint32_t aSlot) {
    return (aSlot + 1) & (aTable->mCapacity - 1);
}

Entry* vxEntryOf(vxJSONTable* aTable, const vxJSON_t* aNode) {
    uint32_t theSlot = vxHome(aTable, vxHashOf(aNode));
    while (aTable->Entries()[theSlot].mNode != aNode) {
        theSlot = vxAfter(aTable, theSlot);
    }
    return &aTable->Entries()[theSlot];
}

void vxAddEntry(vxJSONTable* aTable, vxJSON_t* aPrevious, vxJSON_t* aNode) {
    const uint32_t theHash = vxHashOf(aNode);
    uint32_t theSlot = vxHome(aTable, theHash);
    while (aTable->Entries()[theSlot].mNode != nullptr) {
        theSlot = vxAfter(aTable, theSlot);
    }
    aTable->Entries()[theSlot] = {aNode, aPrevious, theHash};
    ++aTable->mUsed;
}

/// Moves entries behind a gap into it for as long as their probe path runs through it.
void vxCloseGap(vxJSONTable* aTable, uint32_t aGap) {
    const uint32_t theMask = aTable->mCapacity - 1;
    for (uint32_t theSlot = vxAfter(aTable, aGap); aTable->Entries()[theSlot].mNode != nullptr;
         theSlot = vxAfter(aTable, theSlot)) {
        const uint32_t theHome = vxHome(aTable, aTable->Entries()[theSlot].mHash);
        if (((theSlot - theHome) & theMask) >= ((theSlot - aGap) & theMask)) {
            aTable->Entries()[aGap] = aTable->Entries()[theSlot];
            aGap = theSlot;
        }
    }
    aTable->Entries()[aGap].mNode = nullptr;
}

void vxFillPositions(vxJSONTable* aTable, const vxJSONChildren& aChildren) {
    vxJSON_t* theNode = aChildren.mLast;
    for (uint32_t i = 0; i < aChildren.mCount; ++i) {
        theNode = vxNext(theNode);
        aTable->Items()[i] = theNode;
    }
    aTable->mUsed = aChildren.mCount;
}

void vxFillNames(vxJSONTable* aTable, const vxJSONChildren& aChildren) {
    vxJSON_t* thePrevious = aChildren.mLast;
    for (uint32_t i = 0; i < aChildren.mCount; ++i) {
        vxJSON_t* theNode = vxNext(thePrevious);
        vxAddEntry(aTable, thePrevious, theNode);
        thePrevious = theNode;
    }
}

/// Room for some more children than there are.
size_t vxCapacityFor(uint32_t aCount, vxJSONOrder anOrder) {
    const size_t theWanted = size_t{aCount} + aCount / 2 + 8;
    if (anOrder == vxJSONOrder::kByPosition) {
        return theWanted;
    }
    size_t theCapacity = 16;
    while (theCapacity / 4 * 3 < theWanted) {
        theCapacity *= 2;
    }
    return theCapacity;
}

void vxShiftItems(vxJSONTable* aTable, uint32_t aFrom, uint32_t aTo, uint32_t aCount) {
    memmove(aTable->Items() + aTo, aTable->Items() + aFrom, aCount * sizeof(vxJSON_t*));
}

bool vxInsertedItem(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* aNode) {
    if (anIndex == 0 && aTable->mStart != 0) {
        aTable->Items()[--aTable->mStart] = aNode;
        ++aTable->mUsed;
        return true;
    }
    const uint32_t theEnd = aTable->mStart + aTable->mUsed;
    if (theEnd == aTable->mCapacity) {
        return false;
    }
    const uint32_t theSlot = aTable->mStart + anIndex;
    vxShiftItems(aTable, theSlot, theSlot + 1, theEnd - theSlot);
    aTable->Items()[theSlot] = aNode;
    ++aTable->mUsed;
    return true;
}

void vxRemovedItem(vxJSONTable* aTable, uint32_t anIndex) {
    --aTable->mUsed;
    if (anIndex == 0) {
        ++aTable->mStart;
        return;
    }
    const uint32_t theSlot = aTable->mStart + anIndex;
    vxShiftItems(aTable, theSlot + 1, theSlot, aTable->mUsed - anIndex);
}

}  // namespace

vxJSONTable* vxTable_New(const vxJSON_t* aContainer, vxJSONOrder anOrder) {
    const vxJSONChildren theChildren = vxChildren(aContainer);
    const size_t theCapacity = vxCapacityFor(theChildren.mCount, anOrder);
    const bool fByName = anOrder == vxJSONOrder::kByName;
    const size_t theSize = fByName ? sizeof(Entry) : sizeof(vxJSON_t*);
    if (theCapacity > UINT32_MAX || theCapacity > SIZE_MAX / 2 / theSize) {
        return nullptr;
    }
    vxJSONTable* theTable =
        static_cast<vxJSONTable*>(vxCalloc(sizeof(vxJSONTable) + theCapacity * theSize));
    if (theTable == nullptr) {
        return nullptr;
    }
    theTable->mOrder = anOrder;
    theTable->mCapacity = static_cast<uint32_t>(theCapacity);
    if (fByName) {
        vxFillNames(theTable, theChildren);
    } else {
        vxFillPositions(theTable, theChildren);
    }
    return theTable;
}

void vxTable_Delete(vxJSONTable* aTable) {
    free(aTable);
}

vxJSON_t* vxTable_At(const vxJSONTable* aTable, uint32_t anIndex) {
    return aTable->Items()[aTable->mStart + anIndex];
}

void vxTable_Remember(vxJSONTable* aTable, uint32_t anIndex) {
    __atomic_store_n(&aTable->mHint, anIndex, __ATOMIC_RELAXED);
}

uint32_t vxTable_PositionOf(const vxJSONTable* aTable, const vxJSON_t* aNode) {
    const uint32_t theHint = __atomic_load_n(&aTable->mHint, __ATOMIC_RELAXED);
    for (uint32_t i = theHint; i < aTable->mUsed && i - theHint < 2; ++i) {
        if (vxTable_At(aTable, i) == aNode) {
            return i;
        }
    }
    return kvxTable_Unknown;
}

vxJSONLocation vxTable_Find(const vxJSONTable* aTable, const vxJSONKey& aKey) {
    const uint32_t theHash = vxTextHash(aKey.Name(), aKey.Length());
    for (uint32_t theSlot = vxHome(aTable, theHash); aTable->Entries()[theSlot].mNode != nullptr;
         theSlot = vxAfter(aTable, theSlot)) {
        const Entry& theEntry = aTable->Entries()[theSlot];
        if (theEntry.mHash == theHash && aKey.Matches(theEntry.mNode)) {
            return {theEntry.mNode, theEntry.mPrevious};
        }
    }
    return {nullptr, nullptr};
}

bool vxTable_Inserted(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* aPrevious, vxJSON_t* aNode) {
    if (aTable->mOrder == vxJSONOrder::kByPosition) {
        return vxInsertedItem(aTable, anIndex, aNode);
    }
    if (aTable->mUsed >= aTable->mCapacity / 4 * 3) {
        return false;
    }
    vxAddEntry(aTable, aPrevious, aNode);
    return true;
}

void vxTable_Replaced(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* anOld, vxJSON_t* aNode) {
    if (aTable->mOrder == vxJSONOrder::kByPosition) {
        aTable->Items()[aTable->mStart + anIndex] = aNode;
        return;
    }
    vxEntryOf(aTable, anOld)->mNode = aNode;
    vxEntryOf(aTable, vxNext(aNode))->mPrevious = aNode;
}

void vxTable_Removed(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* aPrevious, vxJSON_t* aNode) {
    if (aTable->mOrder == vxJSONOrder::kByPosition) {
        vxRemovedItem(aTable, anIndex);
        return;
    }
    const Entry* theEntry = vxEntryOf(aTable, aNode);
    vxCloseGap(aTable, static_cast<uint32_t>(theEntry - aTable->Entries()));
    --aTable->mUsed;
    if (aTable->mUsed != 0) {
        vxEntryOf(aTable, vxNext(aPrevious))->mPrevious = aPrevious;
    }
}
