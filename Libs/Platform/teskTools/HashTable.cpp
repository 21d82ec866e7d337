// Hash tables with insertion order.
//
// Every value has a node of its own, which ends with its key. A bucket chains one node per key; the
// further values of a key hang on that node, so that many values of one key never slow another key
// down. An array of node pointers keeps the order of insertion: removing leaves a hole there, and
// the array is packed when holes outnumber nodes.

#include <libteskTools/HashTable.h>
#include <libteskTools/Memory.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "TextHash.h"

namespace {

struct vxHashNode {
    vxHashNode* mNextKey;    // the next key of the bucket; meaningful in the first node of a key
    vxHashNode* mNextValue;  // the next value of the same key
    vxHashNode* mLastValue;  // the last value of the key; meaningful in the first node of a key
    void* mValue;
    size_t mSlot;  // index in the order
    size_t mKeyLength;
    uint32_t mHash;

    char* Key() { return reinterpret_cast<char*>(&mHash + 1); }
};

// The key goes on where the hash ends, so short keys take the bytes that pad the node.
constexpr size_t kvxHashNode_KeyOffset = offsetof(vxHashNode, mHash) + sizeof(uint32_t);

struct vxKey {
    const char* mText;
    size_t mLength;
    uint32_t mHash;
};

constexpr size_t kvxHashTable_FirstBuckets = 8;

}  // namespace

struct vxHashTable {
    vxHashNode** mBuckets;  // owned; null until the first key
    size_t mBucketCount;    // 0 or a power of 2, never below the number of keys
    size_t mKeyCount;
    vxHashNode** mOrder;     // owned; nodes by age, null where one was removed
    size_t mOrderCount;      // nodes and holes
    size_t mOrderCapacity;   // pointers mOrder can hold
    size_t mHoles;           // nulls in mOrder
    size_t mSteps;           // slots that indexes were counted off by since there are holes
    unsigned int mWalks;     // walks under way: slots must not move
    bool mfAllowDuplicates;  // a key may have several values
    vxHashTable_FreeFunc mFreeFunc;
};

struct vxCustomHashTable : vxHashTable {};

namespace {

vxKey vxMakeKey(const char* aText, size_t aLength) {
    return {aText, aLength, vxTextHash(aText, aLength)};
}

vxKey vxMakeKey(const char* aText) {
    return vxMakeKey(aText, strlen(aText));
}

bool vxIsKey(vxHashNode* aNode, const vxKey& aKey) {
    return aNode->mHash == aKey.mHash && aNode->mKeyLength == aKey.mLength &&
           memcmp(aNode->Key(), aKey.mText, aKey.mLength) == 0;
}

// The pointer that leads to the first node of a key, or null. The table has buckets.
vxHashNode** vxFindLink(const vxHashTable* aTable, const vxKey& aKey) {
    vxHashNode** theLink = &aTable->mBuckets[aKey.mHash & (aTable->mBucketCount - 1)];
    while (*theLink != NULL && !vxIsKey(*theLink, aKey)) {
        theLink = &(*theLink)->mNextKey;
    }
    return *theLink == NULL ? NULL : theLink;
}

vxHashNode* vxFindNode(const vxHashTable* aTable, const vxKey& aKey) {
    if (aTable->mKeyCount == 0) {
        return NULL;
    }
    vxHashNode** theLink = vxFindLink(aTable, aKey);
    return theLink == NULL ? NULL : *theLink;
}

void vxLinkKey(vxHashTable* aTable, vxHashNode* aNode) {
    vxHashNode** theBucket = &aTable->mBuckets[aNode->mHash & (aTable->mBucketCount - 1)];
    aNode->mNextKey = *theBucket;
    *theBucket = aNode;
}

bool vxReserveBucket(vxHashTable* aTable) {
    if (aTable->mKeyCount < aTable->mBucketCount) {
        return true;
    }
    const size_t theOldCount = aTable->mBucketCount;
    const size_t theCount = std::max(kvxHashTable_FirstBuckets, theOldCount * 2);
    vxHashNode** theBuckets = static_cast<vxHashNode**>(vxCalloc(theCount * sizeof(vxHashNode*)));
    if (theBuckets == NULL) {
        return false;
    }
    vxHashNode** const theOld = std::exchange(aTable->mBuckets, theBuckets);
    aTable->mBucketCount = theCount;
    for (size_t i = 0; i < theOldCount; ++i) {
        for (vxHashNode* theNode = theOld[i]; theNode != NULL;) {
            vxHashNode* theNext = theNode->mNextKey;
            vxLinkKey(aTable, theNode);
            theNode = theNext;
        }
    }
    free(theOld);
    return true;
}

bool vxReserveSlot(vxHashTable* aTable) {
    if (aTable->mOrderCount < aTable->mOrderCapacity) {
        return true;
    }
    const size_t theCapacity = std::max(kvxHashTable_FirstBuckets, aTable->mOrderCapacity * 2);
    void* theOrder = vxRealloc(aTable->mOrder, theCapacity * sizeof(vxHashNode*));
    if (theOrder == NULL) {
        return false;
    }
    aTable->mOrder = static_cast<vxHashNode**>(theOrder);
    aTable->mOrderCapacity = theCapacity;
    return true;
}

vxHashNode* vxNewNode(const vxKey& aKey, void* aValue) {
    vxHashNode* theNode = static_cast<vxHashNode*>(
        vxMalloc(std::max(sizeof(vxHashNode), kvxHashNode_KeyOffset + aKey.mLength + 1)));
    if (theNode != NULL) {
        *theNode = {NULL, NULL, theNode, aValue, 0, aKey.mLength, aKey.mHash};
        memcpy(theNode->Key(), aKey.mText, aKey.mLength);
        theNode->Key()[aKey.mLength] = '\0';
    }
    return theNode;
}

void vxFreeValue(const vxHashTable* aTable, void* aValue) {
    if (aTable->mFreeFunc != NULL) {
        aTable->mFreeFunc(aValue);
    }
}

void vxReplaceValue(const vxHashTable* aTable, vxHashNode* aNode, void* aValue) {
    void* theOld = std::exchange(aNode->mValue, aValue);
    if (theOld != aValue) {
        vxFreeValue(aTable, theOld);
    }
}

// Adds a node behind the others of its key, of which the first is given, or null.
vxHashNode* vxAppendNode(vxHashTable* aTable, const vxKey& aKey, void* aValue, vxHashNode* aFirst) {
    vxHashNode* theNode =
        vxReserveBucket(aTable) && vxReserveSlot(aTable) ? vxNewNode(aKey, aValue) : NULL;
    if (theNode == NULL) {
        return NULL;
    }
    theNode->mSlot = aTable->mOrderCount++;
    aTable->mOrder[theNode->mSlot] = theNode;
    if (aFirst != NULL) {
        aFirst->mLastValue->mNextValue = theNode;
        aFirst->mLastValue = theNode;
    } else {
        vxLinkKey(aTable, theNode);
        ++aTable->mKeyCount;
    }
    return theNode;
}

bool vxAddNode(vxHashTable* aTable, const vxKey& aKey, void* aValue) {
    vxHashNode* theFirst = vxFindNode(aTable, aKey);
    if (theFirst != NULL && !aTable->mfAllowDuplicates) {
        vxReplaceValue(aTable, theFirst, aValue);
        return true;
    }
    return vxAppendNode(aTable, aKey, aValue, theFirst) != NULL;
}

void vxPackOrder(vxHashTable* aTable) {
    size_t theCount = 0;
    for (size_t i = 0; i < aTable->mOrderCount; ++i) {
        vxHashNode* theNode = aTable->mOrder[i];
        if (theNode != NULL) {
            theNode->mSlot = theCount;
            aTable->mOrder[theCount++] = theNode;
        }
    }
    aTable->mOrderCount = theCount;
    aTable->mHoles = 0;
    aTable->mSteps = 0;
}

void vxLeaveOrder(vxHashTable* aTable, const vxHashNode* aNode) {
    aTable->mOrder[aNode->mSlot] = NULL;
    ++aTable->mHoles;
}

// Called once a removed node is gone from every chain.
void vxFreeNode(const vxHashTable* aTable, vxHashNode* aNode) {
    void* theValue = aNode->mValue;
    free(aNode);
    vxFreeValue(aTable, theValue);
}

void vxPackOrderIfSparse(vxHashTable* aTable) {
    if (aTable->mWalks == 0 && aTable->mHoles > aTable->mOrderCount / 2) {
        vxPackOrder(aTable);
    }
}

bool vxRemoveKey(vxHashTable* aTable, const vxKey& aKey) {
    vxHashNode** theLink = aTable->mKeyCount == 0 ? NULL : vxFindLink(aTable, aKey);
    if (theLink == NULL) {
        return false;
    }
    vxHashNode* theNode = *theLink;
    *theLink = theNode->mNextKey;
    --aTable->mKeyCount;
    for (const vxHashNode* i = theNode; i != NULL; i = i->mNextValue) {
        vxLeaveOrder(aTable, i);
    }
    vxPackOrderIfSparse(aTable);
    while (theNode != NULL) {
        vxFreeNode(aTable, std::exchange(theNode, theNode->mNextValue));
    }
    return true;
}

// Takes one of several values out of the chain of its key. aPrevious is null for the first.
void vxUnlinkValue(vxHashNode** aLink, vxHashNode* aPrevious, vxHashNode* aNode) {
    if (aPrevious == NULL) {
        aNode->mNextValue->mNextKey = aNode->mNextKey;
        aNode->mNextValue->mLastValue = aNode->mLastValue;
        *aLink = aNode->mNextValue;
        return;
    }
    aPrevious->mNextValue = aNode->mNextValue;
    if ((*aLink)->mLastValue == aNode) {
        (*aLink)->mLastValue = aPrevious;
    }
}

bool vxRemoveKeyValue(vxHashTable* aTable, const vxKey& aKey, const void* aValue) {
    vxHashNode** theLink = aTable->mKeyCount == 0 ? NULL : vxFindLink(aTable, aKey);
    vxHashNode* thePrevious = NULL;
    vxHashNode* theNode = theLink == NULL ? NULL : *theLink;
    while (theNode != NULL && theNode->mValue != aValue) {
        thePrevious = std::exchange(theNode, theNode->mNextValue);
    }
    if (theNode == NULL) {
        return false;
    }
    if (thePrevious == NULL && theNode->mNextValue == NULL) {
        return vxRemoveKey(aTable, aKey);
    }
    vxUnlinkValue(theLink, thePrevious, theNode);
    vxLeaveOrder(aTable, theNode);
    vxPackOrderIfSparse(aTable);
    vxFreeNode(aTable, theNode);
    return true;
}

void vxClearTable(vxHashTable* aTable) {
    // The blocks are taken away first: a free function that looks at the table finds it empty.
    vxHashNode** const theBuckets = std::exchange(aTable->mBuckets, nullptr);
    vxHashNode** const theOrder = std::exchange(aTable->mOrder, nullptr);
    const size_t theCount = std::exchange(aTable->mOrderCount, 0);
    aTable->mBucketCount = aTable->mKeyCount = aTable->mOrderCapacity = 0;
    aTable->mHoles = aTable->mSteps = 0;
    free(theBuckets);
    for (size_t i = 0; i < theCount; ++i) {
        if (theOrder[i] != NULL) {
            vxFreeNode(aTable, theOrder[i]);
        }
    }
    free(theOrder);
}

void vxDeleteTable(vxHashTable* aTable) {
    if (aTable != NULL) {
        vxClearTable(aTable);
        free(aTable);
    }
}

bool vxWalkTable(vxHashTable* aTable, vxHashTable_ForEachFunc aFunc, void* aUserData) {
    const size_t theCount = aTable->mOrderCount;
    bool theResult = true;
    ++aTable->mWalks;
    for (size_t i = 0; theResult && i < theCount && i < aTable->mOrderCount; ++i) {
        vxHashNode* theNode = aTable->mOrder[i];
        if (theNode != NULL) {
            theResult = aFunc(aUserData, theNode->Key(), theNode->mValue);
        }
    }
    --aTable->mWalks;
    vxPackOrderIfSparse(aTable);
    return theResult;
}

// Holes are closed once counting them off has cost as much.
vxHashNode* vxNodeAtIndex(const vxCustomHashTable* aTable, size_t anIndex) {
    vxHashTable* const theTable = const_cast<vxCustomHashTable*>(aTable);
    if (anIndex >= theTable->mOrderCount - theTable->mHoles) {
        return NULL;
    }
    if (theTable->mSteps > theTable->mOrderCount && theTable->mWalks == 0) {
        vxPackOrder(theTable);
    }
    if (theTable->mHoles == 0) {
        return theTable->mOrder[anIndex];
    }
    size_t theSlot = 0;
    for (size_t theSkip = anIndex + 1; theSkip > 0; ++theSlot) {
        theSkip -= theTable->mOrder[theSlot] != NULL ? 1 : 0;
    }
    theTable->mSteps += theSlot;
    return theTable->mOrder[theSlot - 1];
}

}  // namespace

uint32_t vxHashTable_Hash(const char* aKey, size_t aLength) {
    return vxTextHash(aKey, aLength);
}

vxHashTable* vxHashTable_New(vxHashTable_FreeFunc aFreeFunc) {
    vxHashTable* theTable = static_cast<vxHashTable*>(vxCalloc(sizeof(vxHashTable)));
    if (theTable != NULL) {
        theTable->mFreeFunc = aFreeFunc;
    }
    return theTable;
}

void vxHashTable_Delete(vxHashTable* aTable) {
    vxDeleteTable(aTable);
}

void* vxHashTable_GetEntry(const vxHashTable* aTable, const char* aKey, size_t aKeyLength) {
    const vxHashNode* theNode = vxFindNode(aTable, vxMakeKey(aKey, aKeyLength));
    return theNode == NULL ? NULL : theNode->mValue;
}

bool vxHashTable_AddEntry(vxHashTable* aTable, const char* aKey, size_t aKeyLength, void* aValue) {
    return vxAddNode(aTable, vxMakeKey(aKey, aKeyLength), aValue);
}

bool vxHashTable_DeleteEntry(vxHashTable* aTable, const char* aKey, size_t aKeyLength) {
    return vxRemoveKey(aTable, vxMakeKey(aKey, aKeyLength));
}

void vxHashTable_Clear(vxHashTable* aTable) {
    vxClearTable(aTable);
}

size_t vxHashTable_GetCount(const vxHashTable* aTable) {
    return aTable->mOrderCount - aTable->mHoles;
}

bool vxHashTable_ForEach(vxHashTable* aTable, vxHashTable_ForEachFunc aFunc, void* aUserData) {
    return vxWalkTable(aTable, aFunc, aUserData);
}

vxCustomHashTable* vxCustomHashTable_New_String_Other(vxHashTable_FreeFunc aFreeFunc) {
    return static_cast<vxCustomHashTable*>(vxHashTable_New(aFreeFunc));
}

vxCustomHashTable* vxCustomHashTable_New_String_UInt32(void) {
    return vxCustomHashTable_New_String_Other(NULL);
}

void vxCustomHashTable_Delete(vxCustomHashTable* aTable) {
    vxDeleteTable(aTable);
}

void vxCustomHashTable_AllowDuplicates(vxCustomHashTable* aTable) {
    aTable->mfAllowDuplicates = true;
}

bool vxCustomHashTable_Add(vxCustomHashTable* aTable, const char* aKey, void* aValue) {
    return vxAddNode(aTable, vxMakeKey(aKey), aValue);
}

void* vxCustomHashTable_Get(const vxCustomHashTable* aTable, const char* aKey) {
    const vxHashNode* theNode = vxFindNode(aTable, vxMakeKey(aKey));
    return theNode == NULL ? NULL : theNode->mValue;
}

bool vxCustomHashTable_Lookup(const vxCustomHashTable* aTable, const char* aKey, void** aValue) {
    const vxHashNode* theNode = vxFindNode(aTable, vxMakeKey(aKey));
    if (theNode != NULL && aValue != NULL) {
        *aValue = theNode->mValue;
    }
    return theNode != NULL;
}

void* vxCustomHashTable_LookupAt(const vxCustomHashTable* aTable, const char* aKey,
                                 size_t anIndex) {
    const vxHashNode* theNode = vxFindNode(aTable, vxMakeKey(aKey));
    for (; theNode != NULL && anIndex > 0; --anIndex) {
        theNode = theNode->mNextValue;
    }
    return theNode == NULL ? NULL : theNode->mValue;
}

bool vxCustomHashTable_HasKey(const vxCustomHashTable* aTable, const char* aKey) {
    return vxFindNode(aTable, vxMakeKey(aKey)) != NULL;
}

bool vxCustomHashTable_ForEach(vxCustomHashTable* aTable, vxHashTable_ForEachFunc aFunc,
                               void* aUserData) {
    return vxWalkTable(aTable, aFunc, aUserData);
}

bool vxCustomHashTable_Remove(vxCustomHashTable* aTable, const char* aKey) {
    return vxRemoveKey(aTable, vxMakeKey(aKey));
}

bool vxCustomHashTable_RemoveValue(vxCustomHashTable* aTable, const char* aKey,
                                   const void* aValue) {
    return vxRemoveKeyValue(aTable, vxMakeKey(aKey), aValue);
}

void vxCustomHashTable_Clear(vxCustomHashTable* aTable) {
    vxClearTable(aTable);
}

size_t vxCustomHashTable_GetTupleCount(const vxCustomHashTable* aTable) {
    return aTable->mOrderCount - aTable->mHoles;
}

const char* vxCustomHashTable_GetKeyAtIndex(const vxCustomHashTable* aTable, size_t anIndex) {
    vxHashNode* theNode = vxNodeAtIndex(aTable, anIndex);
    return theNode == NULL ? NULL : theNode->Key();
}

void* vxCustomHashTable_GetValueAtIndex(const vxCustomHashTable* aTable, size_t anIndex) {
    const vxHashNode* theNode = vxNodeAtIndex(aTable, anIndex);
    return theNode == NULL ? NULL : theNode->mValue;
}
