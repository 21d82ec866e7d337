// Lookups in objects and arrays, and the edits that link and unlink nodes.
//
// A container whose index has been built keeps it through every edit; the ring is changed first,
// the index follows.

#include <libvxLog/Assert.h>

#include <cstdlib>
#include <initializer_list>

#include "JSONKey.h"
#include "JSONNode.h"

namespace {

// Up to this many steps, walking costs less than an index.
constexpr uint32_t kvxWalkToItem = 4;
constexpr uint32_t kvxWalkToName = 8;

// Longer walks that a container takes before it gets an index.
constexpr uint64_t kvxFreeLookups = 3;

bool vxIsKind(const vxJSON_t* aNode, vxJSONKind aKind) {
    return aNode != nullptr && vxKind(aNode) == aKind;
}

// ---- The index of a container

vxJSONBody* vxBody(const vxJSON_t* aContainer) {
    const uint64_t theWord = vxContainerWord(aContainer);
    return (theWord & kvxHasBody) != 0 ? vxPointer<vxJSONBody>(theWord) : nullptr;
}

vxJSONTable* vxTable(const vxJSON_t* aContainer, vxJSONOrder anOrder) {
    vxJSONBody* theBody = vxBody(aContainer);
    return theBody == nullptr ? nullptr
                              : __atomic_load_n(&theBody->mTables[static_cast<unsigned>(anOrder)],
                                                __ATOMIC_ACQUIRE);
}

/// Moves last child and count of a container to a body, unless another reader was first.
bool vxMakeBody(const vxJSON_t* aContainer) {
    uint64_t theWord = vxContainerWord(aContainer);
    if ((theWord & kvxHasBody) != 0) {
        return true;
    }
    vxJSONBody* theBody = static_cast<vxJSONBody*>(vxMalloc(sizeof(vxJSONBody)));
    if (theBody == nullptr) {
        return false;
    }
    *theBody = {vxPointer<vxJSON_t>(theWord),
                static_cast<uint32_t>(theWord >> kvxCountShift),
                {nullptr, nullptr}};
    uint64_t* theTarget = const_cast<uint64_t*>(vxValueWord(aContainer));
    while (!__atomic_compare_exchange_n(theTarget, &theWord, vxWord(theBody) | kvxHasBody, false,
                                        __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE)) {
        if ((theWord & kvxHasBody) != 0) {
            free(theBody);
            break;
        }
    }
    return true;
}

/// Gives a container a table. Readers may do so at the same time; one of them wins.
void vxBuildTable(const vxJSON_t* aContainer, vxJSONOrder anOrder) {
    vxJSONTable* theTable = vxMakeBody(aContainer) ? vxTable_New(aContainer, anOrder) : nullptr;
    if (theTable == nullptr) {
        return;
    }
    vxJSONTable* theNone = nullptr;
    if (!__atomic_compare_exchange_n(&vxBody(aContainer)->mTables[static_cast<unsigned>(anOrder)],
                                     &theNone, theTable, false, __ATOMIC_ACQ_REL,
                                     __ATOMIC_ACQUIRE)) {
        vxTable_Delete(theTable);
    }
}

/// Counts a lookup that had far to walk; one too many, and the container gets a table.
__attribute__((noinline)) void vxCountLookup(const vxJSON_t* aContainer, vxJSONOrder anOrder) {
    uint64_t theWord = vxContainerWord(aContainer);
    if ((theWord & kvxHasBody) != 0 ||
        ((theWord >> kvxLookupShift) & kvxLookupMask) == kvxFreeLookups) {
        vxBuildTable(aContainer, anOrder);
        return;
    }
    // Another reader may have counted, or built, meanwhile: then this one does not count.
    __atomic_compare_exchange_n(const_cast<uint64_t*>(vxValueWord(aContainer)), &theWord,
                                theWord + (uint64_t{1} << kvxLookupShift), false, __ATOMIC_RELAXED,
                                __ATOMIC_RELAXED);
}

void vxDropTable(vxJSON_t* aContainer, vxJSONOrder anOrder) {
    vxJSONBody* theBody = vxBody(aContainer);
    if (theBody != nullptr) {
        vxJSONTable*& theTable = theBody->mTables[static_cast<unsigned>(anOrder)];
        vxTable_Delete(theTable);
        theTable = nullptr;
    }
}

// ---- Finding

vxJSON_t* vxWalkTo(const vxJSONChildren& aChildren, uint32_t anIndex) {
    vxJSON_t* theNode = vxNext(aChildren.mLast);
    for (uint32_t i = 0; i < anIndex; ++i) {
        theNode = vxNext(theNode);
    }
    return theNode;
}

/// Finds a child that is far from both ends, or that a table is to be asked for.
__attribute__((noinline)) vxJSON_t* vxFarChildAt(const vxJSON_t* aContainer, uint32_t anIndex) {
    vxJSONTable* theTable = vxTable(aContainer, vxJSONOrder::kByPosition);
    if (theTable == nullptr) {
        vxCountLookup(aContainer, vxJSONOrder::kByPosition);
        theTable = vxTable(aContainer, vxJSONOrder::kByPosition);
    }
    if (theTable == nullptr) {
        return vxWalkTo(vxChildren(aContainer), anIndex);
    }
    if (vxKind(aContainer) == vxJSONKind::kObject) {
        vxTable_Remember(theTable, anIndex);
    }
    return vxTable_At(theTable, anIndex);
}

// What is near, and items of an array that has its table, are found without a call.
inline vxJSON_t* vxChildAt(const vxJSON_t* aContainer, uint32_t anIndex) {
    const vxJSONChildren theChildren = vxChildren(aContainer);
    if (anIndex >= theChildren.mCount) {
        return nullptr;
    }
    if (anIndex == theChildren.mCount - 1) {
        return theChildren.mLast;
    }
    if (anIndex < kvxWalkToItem) {
        return vxWalkTo(theChildren, anIndex);
    }
    const vxJSONTable* theTable = vxKind(aContainer) == vxJSONKind::kArray
                                      ? vxTable(aContainer, vxJSONOrder::kByPosition)
                                      : nullptr;
    return theTable != nullptr ? vxTable_At(theTable, anIndex) : vxFarChildAt(aContainer, anIndex);
}

/// As vxChildAt(), with the sibling in front of it.
vxJSONLocation vxLocateItem(const vxJSON_t* anArray, uint32_t anIndex) {
    const vxJSONChildren theChildren = vxChildren(anArray);
    if (anIndex >= theChildren.mCount) {
        return {nullptr, nullptr};
    }
    vxJSON_t* thePrevious = anIndex == 0 ? theChildren.mLast : vxChildAt(anArray, anIndex - 1);
    return {vxNext(thePrevious), thePrevious};
}

__attribute__((noinline)) vxJSONLocation vxCounted(const vxJSON_t* anObject,
                                                   const vxJSONLocation& aLocation) {
    vxCountLookup(anObject, vxJSONOrder::kByName);
    return aLocation;
}

inline vxJSONLocation vxWalkToName(const vxJSON_t* anObject, vxJSON_t* aLast,
                                   const vxJSONKey& aKey) {
    if (aLast == nullptr) {
        return {nullptr, nullptr};
    }
    uint32_t theSteps = 0;
    vxJSON_t* thePrevious = aLast;
    vxJSON_t* theNode = vxNext(thePrevious);
    while (!aKey.Matches(theNode)) {
        ++theSteps;
        thePrevious = theNode;
        if (theNode == aLast) {
            theNode = nullptr;
            break;
        }
        theNode = vxNext(theNode);
    }
    const vxJSONLocation theLocation = {theNode, thePrevious};
    return theSteps > kvxWalkToName ? vxCounted(anObject, theLocation) : theLocation;
}

inline vxJSONLocation vxFindInTable(const vxJSONTable* aTable, vxJSON_t* aLast,
                                    const vxJSONKey& aKey) {
    vxJSONLocation theLocation = vxTable_Find(aTable, aKey);
    if (theLocation.mNode != nullptr && theLocation.mNode == vxNext(aLast)) {
        theLocation.mPrevious = aLast;
    }
    return theLocation;
}

inline vxJSONLocation vxLocateMember(const vxJSON_t* anObject, const char* aName) {
    if (!vxIsKind(anObject, vxJSONKind::kObject) || aName == nullptr) {
        return {nullptr, nullptr};
    }
    const vxJSONKey theKey(aName);
    const uint64_t theWord = vxContainerWord(anObject);
    vxJSON_t* theLast = vxPointer<vxJSON_t>(theWord);
    if ((theWord & kvxHasBody) != 0) {
        const vxJSONTable* theTable = vxTable(anObject, vxJSONOrder::kByName);
        theLast = vxPointer<vxJSONBody>(theWord)->mLast;
        if (theTable != nullptr) {
            return vxFindInTable(theTable, theLast, theKey);
        }
    }
    return vxWalkToName(anObject, theLast, theKey);
}

// ---- Linking

/// Tells whether `aWanted` is somewhere below `aRoot`.
bool vxHolds(const vxJSON_t* aRoot, const vxJSON_t* aWanted) {
    vxJSONStack<const vxJSON_t*> theContainers;
    theContainers.Push(aRoot);
    while (!theContainers.IsEmpty()) {
        const vxJSONChildren theChildren = vxChildren(theContainers.Pop());
        const vxJSON_t* theNode = theChildren.mLast;
        for (uint32_t i = 0; i < theChildren.mCount; ++i) {
            theNode = vxNext(theNode);
            if (theNode == aWanted) {
                return true;
            }
            if (vxIsContainer(theNode) && vxChildren(theNode).mCount != 0) {
                theContainers.Push(theNode);
            }
        }
    }
    return false;
}

/// Only what is linked itself can be below something else, and only below what holds something.
bool vxWouldHoldItself(const vxJSON_t* aContainer, const vxJSON_t* anItem) {
    if (aContainer == anItem) {
        return true;
    }
    return vxIsContainer(anItem) && vxChildren(anItem).mCount != 0 && vxIsLinked(aContainer) &&
           vxHolds(anItem, aContainer);
}

bool vxMayLink(const vxJSON_t* aContainer, vxJSONKind aKind, const vxJSON_t* anItem) {
    const bool fKind = vxIsKind(aContainer, aKind);
    VXASSERT_TEXT(fKind, "vxJSON: the target is of another kind");
    VXASSERT_TEXT(anItem != nullptr, "vxJSON: there is no item");
    if (!fKind || anItem == nullptr) {
        return false;
    }
    const bool fFree = !vxIsLinked(anItem);
    VXASSERT_TEXT(fFree, "vxJSON: the item belongs to a tree");
    const bool fOutside = !vxWouldHoldItself(aContainer, anItem);
    VXASSERT_TEXT(fOutside, "vxJSON: the item holds the target");
    return fFree && fOutside && vxChildren(aContainer).mCount != UINT32_MAX - 1;
}

void vxFollowInsert(vxJSON_t* aContainer, vxJSONOrder anOrder, uint32_t anIndex,
                    vxJSON_t* aPrevious, vxJSON_t* anItem) {
    vxJSONTable* theTable = vxTable(aContainer, anOrder);
    if (theTable != nullptr && !vxTable_Inserted(theTable, anIndex, aPrevious, anItem)) {
        // Full: the next one is larger.
        vxDropTable(aContainer, anOrder);
        vxBuildTable(aContainer, anOrder);
    }
}

/// Links `anItem` behind `aPrevious`, which is null where there is no child, as the one at `anIndex`.
void vxLink(vxJSON_t* aContainer, uint32_t anIndex, vxJSON_t* aPrevious, vxJSON_t* anItem) {
    const vxJSONChildren theChildren = vxChildren(aContainer);
    vxSetNext(anItem, aPrevious == nullptr ? anItem : vxNext(aPrevious));
    if (aPrevious != nullptr) {
        vxSetNext(aPrevious, anItem);
    }
    const bool fLast = anIndex == theChildren.mCount;
    vxSetChildren(aContainer, fLast ? anItem : theChildren.mLast, theChildren.mCount + 1);
    if (vxBody(aContainer) != nullptr) {
        vxFollowInsert(aContainer, vxJSONOrder::kByPosition, anIndex, aPrevious, anItem);
        vxFollowInsert(aContainer, vxJSONOrder::kByName, anIndex, aPrevious, anItem);
    }
}

void vxAppend(vxJSON_t* aContainer, vxJSON_t* anItem) {
    const vxJSONChildren theChildren = vxChildren(aContainer);
    vxLink(aContainer, theChildren.mCount, theChildren.mLast, anItem);
}

/// Returns the position of a child that is edited, which is known for arrays. An edit of an object
/// goes by name: often the member has just been looked up by position, else that table is dropped.
uint32_t vxPositionOf(vxJSON_t* aContainer, uint32_t anIndex, const vxJSON_t* aNode) {
    const vxJSONTable* theTable = vxTable(aContainer, vxJSONOrder::kByPosition);
    if (theTable == nullptr || vxKind(aContainer) != vxJSONKind::kObject) {
        return anIndex;
    }
    const uint32_t theIndex = vxTable_PositionOf(theTable, aNode);
    if (theIndex == kvxTable_Unknown) {
        vxDropTable(aContainer, vxJSONOrder::kByPosition);
    }
    return theIndex;
}

void vxFollowRemove(vxJSON_t* aContainer, uint32_t anIndex, const vxJSONLocation& aLocation) {
    const uint32_t theIndex = vxPositionOf(aContainer, anIndex, aLocation.mNode);
    for (const vxJSONOrder theOrder : {vxJSONOrder::kByPosition, vxJSONOrder::kByName}) {
        vxJSONTable* theTable = vxTable(aContainer, theOrder);
        if (theTable != nullptr) {
            vxTable_Removed(theTable, theIndex, aLocation.mPrevious, aLocation.mNode);
        }
    }
}

void vxFollowReplace(vxJSON_t* aContainer, uint32_t anIndex, vxJSON_t* anOld, vxJSON_t* anItem) {
    const uint32_t theIndex = vxPositionOf(aContainer, anIndex, anOld);
    for (const vxJSONOrder theOrder : {vxJSONOrder::kByPosition, vxJSONOrder::kByName}) {
        vxJSONTable* theTable = vxTable(aContainer, theOrder);
        if (theTable != nullptr) {
            vxTable_Replaced(theTable, theIndex, anOld, anItem);
        }
    }
}

__attribute__((noinline)) void vxForgetIndexed(vxJSON_t* aContainer, uint32_t anIndex,
                                               const vxJSONLocation& aLocation) {
    vxJSONBody* theBody = vxBody(aContainer);
    const bool fLast = aLocation.mNode == theBody->mLast;
    if (--theBody->mCount == 0) {
        theBody->mLast = nullptr;
    } else if (fLast) {
        theBody->mLast = aLocation.mPrevious;
    }
    vxFollowRemove(aContainer, anIndex, aLocation);
}

inline vxJSON_t* vxUnlink(vxJSON_t* aContainer, uint32_t anIndex, const vxJSONLocation& aLocation) {
    uint64_t* theWord = vxValueWord(aContainer);
    vxSetNext(aLocation.mPrevious, vxNext(aLocation.mNode));
    if ((*theWord & kvxHasBody) != 0) {
        vxForgetIndexed(aContainer, anIndex, aLocation);
    } else {
        const uint64_t theLess = *theWord - (uint64_t{1} << kvxCountShift);
        if (theLess >> kvxCountShift == 0) {
            *theWord = theLess & ~kvxPointerMask;
        } else if (vxPointer<vxJSON_t>(theLess) == aLocation.mNode) {
            *theWord = (theLess & ~kvxPointerMask) | vxWord(aLocation.mPrevious);
        } else {
            *theWord = theLess;
        }
    }
    vxSetNext(aLocation.mNode, nullptr);
    return aLocation.mNode;
}

__attribute__((noinline)) void vxReplaceIndexed(vxJSON_t* aContainer, uint32_t anIndex,
                                                vxJSON_t* anOld, vxJSON_t* anItem) {
    vxJSONBody* theBody = vxBody(aContainer);
    if (theBody->mLast == anOld) {
        theBody->mLast = anItem;
    }
    vxFollowReplace(aContainer, anIndex, anOld, anItem);
}

/// Puts `anItem` in the place of the located child, which is a root then.
inline void vxReplace(vxJSON_t* aContainer, uint32_t anIndex, const vxJSONLocation& aLocation,
                      vxJSON_t* anItem) {
    vxJSON_t* theOld = aLocation.mNode;
    const bool fAlone = aLocation.mPrevious == theOld;
    vxSetNext(anItem, fAlone ? anItem : vxNext(theOld));
    if (!fAlone) {
        vxSetNext(aLocation.mPrevious, anItem);
    }
    uint64_t* theWord = vxValueWord(aContainer);
    if ((*theWord & kvxHasBody) != 0) {
        vxReplaceIndexed(aContainer, anIndex, theOld, anItem);
    } else if (vxPointer<vxJSON_t>(*theWord) == theOld) {
        *theWord = (*theWord & ~kvxPointerMask) | vxWord(anItem);
    }
    vxSetNext(theOld, nullptr);
}

bool vxNameItem(vxJSON_t* anItem, const char* aName) {
    const char* theName = aName == nullptr ? "" : aName;
    return vxRename(anItem, theName, strlen(theName));
}

}  // namespace

uint32_t vxJSON_GetArraySize(const vxJSON_t* aNode) {
    return aNode != nullptr && vxIsContainer(aNode) ? vxChildren(aNode).mCount : 0;
}

vxJSON_t* vxJSON_GetArrayItem(const vxJSON_t* anArray, uint32_t anIndex) {
    return anArray != nullptr && vxIsContainer(anArray) ? vxChildAt(anArray, anIndex) : nullptr;
}

vxJSON_t* vxJSON_GetObjectItem(const vxJSON_t* anObject, const char* aName) {
    return vxLocateMember(anObject, aName).mNode;
}

int vxJSON_ContainsItem(const vxJSON_t* anObject, const char* aName) {
    return vxJSON_GetObjectItem(anObject, aName) != nullptr;
}

int vxJSON_AddItemToObject(vxJSON_t* anObject, const char* aName, vxJSON_t* anItem) {
    if (!vxMayLink(anObject, vxJSONKind::kObject, anItem) || !vxNameItem(anItem, aName)) {
        return 0;
    }
    vxAppend(anObject, anItem);
    return 1;
}

int vxJSON_ReplaceItemInObject(vxJSON_t* anObject, const char* aName, vxJSON_t* anItem, int afAdd) {
    if (!vxMayLink(anObject, vxJSONKind::kObject, anItem)) {
        return 0;
    }
    const vxJSONLocation theOld = vxLocateMember(anObject, aName == nullptr ? "" : aName);
    if (theOld.mNode == nullptr) {
        if (afAdd == 0 || !vxNameItem(anItem, aName)) {
            return 0;
        }
        vxAppend(anObject, anItem);
        return 1;
    }
    const bool fLent = vxLendName(anItem, theOld.mNode);
    if (!fLent && !vxNameItem(anItem, aName)) {
        return 0;
    }
    vxReplace(anObject, 0, theOld, anItem);
    if (fLent) {
        vxForgetName(theOld.mNode);
    }
    vxJSON_Delete(theOld.mNode);
    return 1;
}

void vxJSON_DeleteItemFromObject(vxJSON_t* anObject, const char* aName) {
    vxJSON_Delete(vxJSON_DetachItemFromObject(anObject, aName));
}

vxJSON_t* vxJSON_DetachItemFromObject(vxJSON_t* anObject, const char* aName) {
    const vxJSONLocation theLocation = vxLocateMember(anObject, aName);
    return theLocation.mNode == nullptr ? nullptr : vxUnlink(anObject, 0, theLocation);
}

int vxJSON_InsertItemInArray(vxJSON_t* anArray, uint32_t aPosition, vxJSON_t* anItem) {
    if (!vxMayLink(anArray, vxJSONKind::kArray, anItem)) {
        return 0;
    }
    if (aPosition >= vxChildren(anArray).mCount) {
        vxAppend(anArray, anItem);
    } else {
        vxLink(anArray, aPosition, vxLocateItem(anArray, aPosition).mPrevious, anItem);
    }
    return 1;
}

int vxJSON_ReplaceItemInArray(vxJSON_t* anArray, uint32_t anIndex, vxJSON_t* anItem) {
    if (!vxMayLink(anArray, vxJSONKind::kArray, anItem)) {
        return 0;
    }
    const vxJSONLocation theOld = vxLocateItem(anArray, anIndex);
    if (theOld.mNode == nullptr) {
        return 0;
    }
    vxReplace(anArray, anIndex, theOld, anItem);
    vxJSON_Delete(theOld.mNode);
    return 1;
}

vxJSON_t* vxJSON_DetachItemFromArray(vxJSON_t* anArray, uint32_t anIndex) {
    if (anArray == nullptr || !vxIsContainer(anArray)) {
        return nullptr;
    }
    const vxJSONLocation theLocation = vxLocateItem(anArray, anIndex);
    return theLocation.mNode == nullptr ? nullptr : vxUnlink(anArray, anIndex, theLocation);
}
