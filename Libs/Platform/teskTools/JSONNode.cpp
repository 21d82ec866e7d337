// Nodes: how they come, go, are named, and what they hold.
//
// Freeing a tree splices the children of each container in front of what is still to be freed, so
// it needs neither recursion nor a stack.

#include "JSONNode.h"

#include <libvxLog/Assert.h>

#include <cstdlib>

#include "JSONCells.h"
#include "JSONText.h"

const vxJSONEmptyText kvxEmptyText = {0, {0, 0, 0, 0}};

namespace {

uint64_t vxEmptyTextWord() {
    return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(kvxEmptyText.mText));
}

void vxFreeBody(uint64_t aContainerWord) {
    if ((aContainerWord & kvxHasBody) != 0) {
        vxJSONBody* theBody = vxPointer<vxJSONBody>(aContainerWord);
        vxTable_Delete(theBody->mTables[0]);
        vxTable_Delete(theBody->mTables[1]);
        free(theBody);
    }
}

void vxFreeName(vxJSON_t* aNode) {
    if (vxPlace(aNode) == vxJSONPlace::kSlot) {
        vxReleaseName(vxName(aNode));
    } else if (vxPlace(aNode) == vxJSONPlace::kExtra) {
        vxReleaseName(vxName(aNode));
        free(vxPointer<vxJSONExtra>(aNode->mValue));
    }
}

/// Frees the nodes of a list that ends with null, and all below them.
void vxFreeList(vxJSON_t* aFirst) {
    while (aFirst != nullptr) {
        vxJSON_t* theNode = aFirst;
        aFirst = vxNext(theNode);
        if (vxIsContainer(theNode)) {
            const vxJSONChildren theChildren = vxChildren(theNode);
            if (theChildren.mLast != nullptr) {
                vxJSON_t* theFirst = vxNext(theChildren.mLast);
                vxSetNext(theChildren.mLast, aFirst);
                aFirst = theFirst;
            }
            vxFreeBody(vxValue(theNode));
        }
        vxFreeName(theNode);
        vxFreeCell(theNode);
    }
}

void vxSetBadBit(vxJSON_t* aNode, uint64_t aBit, bool afBad) {
    aNode->mHead = afBad ? aNode->mHead | aBit : aNode->mHead & ~aBit;
}

bool vxMoveToExtra(vxJSON_t* aNode, const char* aName) {
    vxJSONExtra* theExtra = static_cast<vxJSONExtra*>(vxMalloc(sizeof(vxJSONExtra)));
    if (theExtra == nullptr) {
        return false;
    }
    theExtra->mValue = aNode->mValue;
    theExtra->mName = aName;
    aNode->mValue = vxWord(theExtra);
    vxSetPlace(aNode, vxJSONPlace::kExtra);
    return true;
}

/// Gives the node a name block of its own, or null; takes the block over.
bool vxSetNameBlock(vxJSON_t* aNode, const char* aName) {
    switch (vxPlace(aNode)) {
        case vxJSONPlace::kSlot:
            vxReleaseName(vxName(aNode));
            *reinterpret_cast<const char**>(aNode + 1) = aName;
            return true;
        case vxJSONPlace::kExtra:
            vxReleaseName(vxName(aNode));
            vxPointer<vxJSONExtra>(aNode->mValue)->mName = aName;
            return true;
        case vxJSONPlace::kInline:
        case vxJSONPlace::kNone:
            break;
    }
    if (aName == nullptr) {
        vxSetPlace(aNode, vxJSONPlace::kNone);
        return true;
    }
    return vxMoveToExtra(aNode, aName);
}

vxJSON_t* vxNewScalar(vxJSONKind aKind, uint64_t aValue) {
    vxJSON_t* theNode = vxNewNode(aKind, 0);
    if (theNode != nullptr) {
        theNode->mValue = aValue;
    }
    return theNode;
}

bool vxIsInteger(const vxJSON_t* aNode) {
    return aNode != nullptr &&
           (vxKind(aNode) == vxJSONKind::kUInt || vxKind(aNode) == vxJSONKind::kInt);
}

}  // namespace

// ---- Private to the tree

void vxSetChildren(vxJSON_t* aNode, vxJSON_t* aLast, uint32_t aCount) {
    uint64_t* theWord = vxValueWord(aNode);
    if ((*theWord & kvxHasBody) == 0) {
        if (aCount <= kvxMaxPackedCount) {
            // Lookups count on through edits: where the two take turns, an index pays as well.
            *theWord = vxWord(aLast) | (*theWord & (kvxLookupMask << kvxLookupShift)) |
                       (static_cast<uint64_t>(aCount) << kvxCountShift);
            return;
        }
        vxJSONBody* theNew = static_cast<vxJSONBody*>(vxMalloc(sizeof(vxJSONBody)));
        if (theNew == nullptr) {
            return;
        }
        theNew->mTables[0] = nullptr;
        theNew->mTables[1] = nullptr;
        *theWord = vxWord(theNew) | kvxHasBody;
    }
    vxJSONBody* theBody = vxPointer<vxJSONBody>(*theWord);
    theBody->mLast = aLast;
    theBody->mCount = aCount;
}

char* vxNewNameBlock(const char* aName, size_t aLength) {
    vxJSONNameBlock* theBlock =
        static_cast<vxJSONNameBlock*>(vxMalloc(sizeof(uint32_t) + vxStoredSize(aLength)));
    if (theBlock == nullptr) {
        return nullptr;
    }
    theBlock->mOwners = 1;
    char* theCell = reinterpret_cast<char*>(theBlock) + sizeof(theBlock->mOwners);
    return vxStoreText(theCell, aName, aLength);
}

void vxReleaseName(const char* aName) {
    if (aName == nullptr) {
        return;
    }
    vxJSONNameBlock* theBlock = vxBlockOf(aName);
    if (__atomic_load_n(&theBlock->mOwners, __ATOMIC_ACQUIRE) == 1 ||
        __atomic_fetch_sub(&theBlock->mOwners, 1, __ATOMIC_ACQ_REL) == 1) {
        free(theBlock);
    }
}

vxJSON_t* vxNewNode(vxJSONKind aKind, size_t aTextSize) {
    vxJSON_t* theNode =
        aTextSize == 0
            ? vxNewSingleCell()
            : static_cast<vxJSON_t*>(vxMalloc(sizeof(vxJSON_t) + sizeof(const char*) + aTextSize));
    if (theNode != nullptr) {
        theNode->mHead = static_cast<uint64_t>(aKind) |
                         (static_cast<uint64_t>(vxJSONPlace::kSlot) << kvxPlaceShift);
        theNode->mValue = 0;
        *reinterpret_cast<const char**>(theNode + 1) = nullptr;
    }
    return theNode;
}

bool vxLendName(vxJSON_t* aNode, const vxJSON_t* aOther) {
    if (vxPlace(aNode) != vxJSONPlace::kSlot || vxPlace(aOther) != vxJSONPlace::kSlot ||
        vxName(aNode) != nullptr) {
        return false;
    }
    *reinterpret_cast<const char**>(aNode + 1) = vxName(aOther);
    aNode->mHead |= aOther->mHead & kvxNameIsBad;
    return true;
}

void vxForgetName(vxJSON_t* aNode) {
    *reinterpret_cast<const char**>(aNode + 1) = nullptr;
}

bool vxRename(vxJSON_t* aNode, const char* aName, size_t aLength) {
    const char* theOld = vxName(aNode);
    if (theOld != nullptr && vxLength(theOld) == aLength && memcmp(theOld, aName, aLength) == 0) {
        return true;
    }
    char* theName = vxNewNameBlock(aName, aLength);
    if (theName == nullptr || !vxSetNameBlock(aNode, theName)) {
        vxReleaseName(theName);
        return false;
    }
    vxSetBadBit(aNode, kvxNameIsBad, !vxIsUTF8(aName, aLength));
    return true;
}

// ---- Creating and freeing

vxJSON_t* vxJSON_CreateObject(void) {
    return vxNewScalar(vxJSONKind::kObject, 0);
}

vxJSON_t* vxJSON_CreateArray(void) {
    return vxNewScalar(vxJSONKind::kArray, 0);
}

vxJSON_t* vxJSON_CreateNull(void) {
    return vxNewScalar(vxJSONKind::kNull, 0);
}

vxJSON_t* vxJSON_CreateBool(int aValue) {
    return vxNewScalar(vxJSONKind::kBool, aValue != 0 ? 1 : 0);
}

vxJSON_t* vxJSON_CreateDouble(double aValue) {
    return vxNewScalar(vxJSONKind::kDouble, vxBits(aValue));
}

vxJSON_t* vxJSON_CreateInt64(int64_t aValue) {
    return vxNewScalar(vxJSONKind::kInt, static_cast<uint64_t>(aValue));
}

vxJSON_t* vxJSON_CreateUInt64(uint64_t aValue) {
    return vxNewScalar(vxJSONKind::kUInt, aValue);
}

vxJSON_t* vxJSON_CreateString(const char* aText) {
    const size_t theLength = aText == nullptr ? 0 : strlen(aText);
    VXASSERT(theLength <= kvxMaxTextLength);
    if (theLength > kvxMaxTextLength) {
        return nullptr;
    }
    vxJSON_t* theNode = vxNewNode(vxJSONKind::kString, vxStoredSize(theLength));
    if (theNode != nullptr) {
        const char* theText = vxStoreText(vxTextCell(theNode), aText, theLength);
        theNode->mValue = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(theText));
        vxSetBadBit(theNode, kvxTextIsBad, !vxIsUTF8(theText, theLength));
    }
    return theNode;
}

void vxJSON_Delete(vxJSON_t* aNode) {
    if (aNode == nullptr) {
        return;
    }
    const bool fLinked = vxIsLinked(aNode);
    VXASSERT_TEXT(!fLinked, "vxJSON_Delete: the node belongs to a tree");
    if (fLinked) {
        return;
    }
    if (vxIsContainer(aNode)) {
        vxFreeList(aNode);
    } else {
        vxFreeName(aNode);
        vxFreeCell(aNode);
    }
}

void vxJSON_Clear(vxJSON_t* aNode) {
    if (aNode == nullptr || !vxIsContainer(aNode)) {
        return;
    }
    const uint64_t theWord = vxValue(aNode);
    const vxJSONChildren theChildren = vxChildren(aNode);
    *vxValueWord(aNode) = 0;
    vxFreeBody(theWord);
    if (theChildren.mLast != nullptr) {
        vxJSON_t* theFirst = vxNext(theChildren.mLast);
        vxSetNext(theChildren.mLast, nullptr);
        vxFreeList(theFirst);
    }
}

void vxJSON_Reset(vxJSON_t* aNode) {
    if (aNode == nullptr) {
        return;
    }
    if (vxIsContainer(aNode)) {
        vxJSON_Clear(aNode);
    } else {
        *vxValueWord(aNode) = vxKind(aNode) == vxJSONKind::kString ? vxEmptyTextWord() : 0;
        vxSetBadBit(aNode, kvxTextIsBad, false);
    }
}

// ---- Kind, name and value

int vxJSON_Is(const vxJSON_t* aNode, unsigned aMask) {
    static constexpr unsigned kvxKindBits[] = {kvxJSON_NULL,         kvxJSON_False,  kvxJSON_Number,
                                               kvxJSON_SignedNumber, kvxJSON_Double, kvxJSON_String,
                                               kvxJSON_Array,        kvxJSON_Object};
    if (aNode == nullptr) {
        return 0;
    }
    const vxJSONKind theKind = vxKind(aNode);
    const bool fTrue = theKind == vxJSONKind::kBool && vxValue(aNode) != 0;
    const unsigned theBit = fTrue ? kvxJSON_True : kvxKindBits[static_cast<unsigned>(theKind)];
    return (theBit & aMask) != 0;
}

const char* vxJSON_GetName(const vxJSON_t* aNode) {
    return aNode == nullptr ? nullptr : vxName(aNode);
}

void vxJSON_SetName(vxJSON_t* aNode, const char* aName) {
    VXASSERT(aNode != NULL);
    if (aNode == nullptr) {
        return;
    }
    const bool fLinked = vxIsLinked(aNode);
    VXASSERT_TEXT(!fLinked, "vxJSON_SetName: the node belongs to a tree");
    if (fLinked) {
        return;
    }
    if (aName == nullptr) {
        vxSetNameBlock(aNode, nullptr);
    } else {
        vxRename(aNode, aName, strlen(aName));
    }
}

const char* vxJSON_GetValueString(const vxJSON_t* aNode) {
    if (aNode == nullptr || vxKind(aNode) != vxJSONKind::kString) {
        return nullptr;
    }
    return vxStringText(aNode).mData;
}

double vxJSON_GetValueDouble(const vxJSON_t* aNode) {
    if (aNode == nullptr) {
        return 0;
    }
    switch (vxKind(aNode)) {
        case vxJSONKind::kDouble:
            return vxFromBits(vxValue(aNode));
        case vxJSONKind::kInt:
            return static_cast<double>(static_cast<int64_t>(vxValue(aNode)));
        case vxJSONKind::kUInt:
            return static_cast<double>(vxValue(aNode));
        default:
            return 0;
    }
}

int vxJSON_CheckUInt(const vxJSON_t* aNode, uint64_t aMax, uint64_t* aValue) {
    if (!vxIsInteger(aNode)) {
        return 0;
    }
    const uint64_t theValue = vxValue(aNode);
    const bool fNegative = vxKind(aNode) == vxJSONKind::kInt && static_cast<int64_t>(theValue) < 0;
    if (fNegative || theValue > aMax) {
        return 0;
    }
    *aValue = theValue;
    return 1;
}

int vxJSON_CheckInt(const vxJSON_t* aNode, int64_t aMin, int64_t aMax, int64_t* aValue) {
    if (!vxIsInteger(aNode)) {
        return 0;
    }
    const int64_t theValue = static_cast<int64_t>(vxValue(aNode));
    const bool fTooLarge = vxKind(aNode) == vxJSONKind::kUInt && theValue < 0;
    if (fTooLarge || theValue < aMin || theValue > aMax) {
        return 0;
    }
    *aValue = theValue;
    return 1;
}
