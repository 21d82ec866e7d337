// The lookup tables of large containers.
//
// By position it is a vector that can also lose its front cheaply. By name it is an open-addressed
// hash table. Members of one name stay in the order in which they stand in the
// object: a later one is inserted behind on the same probe path, and closing the gap of a removed
// entry keeps that order. The hash is keyed by the table's address, so that names from outside
// cannot be chosen to collide.

#include "JSONTable.h"

#include <cstdlib>

#include "JSONNode.h"

struct vxJSONTable {
    struct Entry {
        vxJSON_t* mNode;      // null: free
        vxJSON_t* mPrevious;  // in the ring; stale for the first child
        uint32_t mHash;
    };

    uint32_t mCapacity;  // a power of two by name
    uint32_t mUsed;
    uint32_t mStart;  // by position: items dropped from the front
    vxJSONOrder mOrder;
    union {
        vxJSON_t** mItems;
        Entry* mEntries;
    };
};

namespace {

using Entry = vxJSONTable::Entry;

uint64_t vxMix(uint64_t aValue) {
    aValue *= 0x9E3779B97F4A7C15u;
    return aValue ^ (aValue >> 32);
}

uint32_t vxHash(const vxJSONTable* aTable, const char* aName, size_t aLength) {
    uint64_t theHash = vxMix(vxWord(aTable) ^ aLength);
    while (aLength >= 8) {
        uint64_t theWord;
        memcpy(&theWord, aName, 8);
        theHash = vxMix(theHash ^ theWord);
        aName += 8;
        aLength -= 8;
    }
    uint64_t theRest = 0;
    vxCopyText(reinterpret_cast<char*>(&theRest), aName, aLength);
    theHash = vxMix(theHash ^ theRest);
    return static_cast<uint32_t>(vxMix(theHash) >> 16);
}

uint32_t vxHashOf(const vxJSONTable* aTable, const vxJSON_t* aNode) {
    const vxJSONText theName = vxNameText(aNode);
    return vxHash(aTable, theName.mData, theName.mLength);
}

uint32_t vxHome(const vxJSONTable* aTable, uint32_t aHash) {
    return aHash & (aTable->mCapacity - 1);
}

uint32_t vxAfter(const vxJSONTable* aTable, uint32_t aSlot) {
    return (aSlot + 1) & (aTable->mCapacity - 1);
}

Entry* vxEntryOf(vxJSONTable* aTable, const vxJSON_t* aNode) {
    uint32_t theSlot = vxHome(aTable, vxHashOf(aTable, aNode));
    while (aTable->mEntries[theSlot].mNode != aNode) {
        theSlot = vxAfter(aTable, theSlot);
    }
    return &aTable->mEntries[theSlot];
}

void vxAddEntry(vxJSONTable* aTable, vxJSON_t* aPrevious, vxJSON_t* aNode) {
    const uint32_t theHash = vxHashOf(aTable, aNode);
    uint32_t theSlot = vxHome(aTable, theHash);
    while (aTable->mEntries[theSlot].mNode != nullptr) {
        theSlot = vxAfter(aTable, theSlot);
    }
    aTable->mEntries[theSlot] = {aNode, aPrevious, theHash};
    ++aTable->mUsed;
}

/// Moves entries behind a gap into it for as long as their probe path runs through it.
void vxCloseGap(vxJSONTable* aTable, uint32_t aGap) {
    const uint32_t theMask = aTable->mCapacity - 1;
    for (uint32_t theSlot = vxAfter(aTable, aGap); aTable->mEntries[theSlot].mNode != nullptr;
         theSlot = vxAfter(aTable, theSlot)) {
        const uint32_t theHome = vxHome(aTable, aTable->mEntries[theSlot].mHash);
        if (((theSlot - theHome) & theMask) >= ((theSlot - aGap) & theMask)) {
            aTable->mEntries[aGap] = aTable->mEntries[theSlot];
            aGap = theSlot;
        }
    }
    aTable->mEntries[aGap].mNode = nullptr;
}

bool vxFillPositions(vxJSONTable* aTable, const vxJSONChildren& aChildren) {
    aTable->mCapacity = aChildren.mCount + aChildren.mCount / 2 + 8;
    aTable->mItems = static_cast<vxJSON_t**>(vxMalloc(aTable->mCapacity * sizeof(vxJSON_t*)));
    if (aTable->mItems == nullptr) {
        return false;
    }
    vxJSON_t* theNode = aChildren.mLast;
    for (uint32_t i = 0; i < aChildren.mCount; ++i) {
        theNode = vxNext(theNode);
        aTable->mItems[i] = theNode;
    }
    aTable->mUsed = aChildren.mCount;
    return true;
}

bool vxFillNames(vxJSONTable* aTable, const vxJSONChildren& aChildren) {
    aTable->mCapacity = 16;
    while (aTable->mCapacity / 4 * 3 <= aChildren.mCount + aChildren.mCount / 4) {
        aTable->mCapacity *= 2;
    }
    aTable->mEntries = static_cast<Entry*>(vxCalloc(aTable->mCapacity * sizeof(Entry)));
    if (aTable->mEntries == nullptr) {
        return false;
    }
    vxJSON_t* thePrevious = aChildren.mLast;
    for (uint32_t i = 0; i < aChildren.mCount; ++i) {
        vxJSON_t* theNode = vxNext(thePrevious);
        vxAddEntry(aTable, thePrevious, theNode);
        thePrevious = theNode;
    }
    return true;
}

void vxShiftItems(vxJSONTable* aTable, uint32_t aFrom, uint32_t aTo, uint32_t aCount) {
    memmove(aTable->mItems + aTo, aTable->mItems + aFrom, aCount * sizeof(vxJSON_t*));
}

bool vxInsertedItem(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* aNode) {
    if (anIndex == 0 && aTable->mStart != 0) {
        aTable->mItems[--aTable->mStart] = aNode;
        ++aTable->mUsed;
        return true;
    }
    const uint32_t theEnd = aTable->mStart + aTable->mUsed;
    if (theEnd == aTable->mCapacity) {
        return false;
    }
    const uint32_t theSlot = aTable->mStart + anIndex;
    vxShiftItems(aTable, theSlot, theSlot + 1, theEnd - theSlot);
    aTable->mItems[theSlot] = aNode;
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
    vxJSONTable* theTable = static_cast<vxJSONTable*>(vxCalloc(sizeof(vxJSONTable)));
    if (theTable == nullptr) {
        return nullptr;
    }
    theTable->mOrder = anOrder;
    const vxJSONChildren theChildren = vxChildren(aContainer);
    const bool fFilled = anOrder == vxJSONOrder::kByName ? vxFillNames(theTable, theChildren)
                                                         : vxFillPositions(theTable, theChildren);
    if (!fFilled) {
        free(theTable);
        return nullptr;
    }
    return theTable;
}

void vxTable_Delete(vxJSONTable* aTable) {
    if (aTable != nullptr) {
        free(aTable->mItems);
        free(aTable);
    }
}

vxJSON_t* vxTable_At(const vxJSONTable* aTable, uint32_t anIndex) {
    return aTable->mItems[aTable->mStart + anIndex];
}

vxJSONLocation vxTable_Find(const vxJSONTable* aTable, const char* aName, size_t aLength) {
    const uint32_t theHash = vxHash(aTable, aName, aLength);
    for (uint32_t theSlot = vxHome(aTable, theHash); aTable->mEntries[theSlot].mNode != nullptr;
         theSlot = vxAfter(aTable, theSlot)) {
        const Entry& theEntry = aTable->mEntries[theSlot];
        if (theEntry.mHash == theHash && vxHasName(theEntry.mNode, aName, aLength)) {
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
        aTable->mItems[aTable->mStart + anIndex] = aNode;
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
    vxCloseGap(aTable, static_cast<uint32_t>(theEntry - aTable->mEntries));
    --aTable->mUsed;
    if (aTable->mUsed != 0) {
        vxEntryOf(aTable, vxNext(aPrevious))->mPrevious = aPrevious;
    }
}
