// A doubly linked list of pointers.
//
// Nodes that are dropped wait in the list for their next use, so that a list which is filled and
// cleared again and again stops allocating. They go when the list goes.

#include <libteskTools/Memory.h>
#include <libteskTools/PtrList.h>

#include <cstdlib>
#include <utility>

struct vxPtrListNode {
    vxPtrListNode* mNext;      // null: last; among spare nodes the next spare one
    vxPtrListNode* mPrevious;  // null: first
    void* mPtr;
};

struct vxPtrList {
    vxPtrListNode* mFirst;         // null when empty
    vxPtrListNode* mLast;          // null when empty
    vxPtrListNode* mSpare;         // owned nodes in no use
    size_t mCount;                 // nodes from mFirst to mLast
    vxPtrList_FreeFunc mFreeFunc;  // null: the pointers are borrowed
};

namespace {

vxPtrListNode* vxNewNode(vxPtrList* aList) {
    if (aList->mSpare != NULL) {
        return std::exchange(aList->mSpare, aList->mSpare->mNext);
    }
    return static_cast<vxPtrListNode*>(vxMalloc(sizeof(vxPtrListNode)));
}

void vxSpareNode(vxPtrList* aList, vxPtrListNode* aNode) {
    aNode->mNext = aList->mSpare;
    aList->mSpare = aNode;
}

void vxPtrListFree(const vxPtrList* aList, void* aPtr) {
    if (aList->mFreeFunc != NULL) {
        aList->mFreeFunc(aPtr);
    }
}

// Links aNode between two neighbors of the list, either of which may be null.
void vxLinkNode(vxPtrList* aList, vxPtrListNode* aPrevious, vxPtrListNode* aNode,
                vxPtrListNode* aNext) {
    aNode->mPrevious = aPrevious;
    aNode->mNext = aNext;
    (aPrevious == NULL ? aList->mFirst : aPrevious->mNext) = aNode;
    (aNext == NULL ? aList->mLast : aNext->mPrevious) = aNode;
    ++aList->mCount;
}

void vxUnlinkNode(vxPtrList* aList, vxPtrListNode* aNode) {
    (aNode->mPrevious == NULL ? aList->mFirst : aNode->mPrevious->mNext) = aNode->mNext;
    (aNode->mNext == NULL ? aList->mLast : aNode->mNext->mPrevious) = aNode->mPrevious;
    --aList->mCount;
}

}  // namespace

vxPtrList* vxPtrList_New(void) {
    return static_cast<vxPtrList*>(vxCalloc(sizeof(vxPtrList)));
}

void vxPtrList_Delete(vxPtrList* aList) {
    if (aList == NULL) {
        return;
    }
    vxPtrList_Clear(aList);
    while (aList->mSpare != NULL) {
        free(std::exchange(aList->mSpare, aList->mSpare->mNext));
    }
    free(aList);
}

void vxPtrList_SetFreeFunc(vxPtrList* aList, vxPtrList_FreeFunc aFreeFunc) {
    aList->mFreeFunc = aFreeFunc;
}

vxPtrListNode* vxPtrList_Append(vxPtrList* aList, void* aPtr) {
    return vxPtrList_InsertBefore(aList, NULL, aPtr);
}

vxPtrListNode* vxPtrList_Prepend(vxPtrList* aList, void* aPtr) {
    return vxPtrList_InsertBefore(aList, aList->mFirst, aPtr);
}

vxPtrListNode* vxPtrList_InsertBefore(vxPtrList* aList, vxPtrListNode* aNode, void* aPtr) {
    vxPtrListNode* theNode = vxNewNode(aList);
    if (theNode != NULL) {
        theNode->mPtr = aPtr;
        vxLinkNode(aList, aNode == NULL ? aList->mLast : aNode->mPrevious, theNode, aNode);
    }
    return theNode;
}

size_t vxPtrList_GetCount(const vxPtrList* aList) {
    return aList == NULL ? 0 : aList->mCount;
}

void* vxPtrList_GetAt(const vxPtrList* aList, size_t anIndex) {
    const vxPtrListNode* theNode = vxPtrList_GetNodeAt(aList, anIndex);
    return theNode == NULL ? NULL : theNode->mPtr;
}

vxPtrListNode* vxPtrList_GetNodeAt(const vxPtrList* aList, size_t anIndex) {
    const size_t theCount = vxPtrList_GetCount(aList);
    if (anIndex >= theCount) {
        return NULL;
    }
    vxPtrListNode* theNode = anIndex < theCount / 2 ? aList->mFirst : aList->mLast;
    if (anIndex < theCount / 2) {
        for (size_t i = 0; i < anIndex; ++i) {
            theNode = theNode->mNext;
        }
    } else {
        for (size_t i = theCount - 1; i > anIndex; --i) {
            theNode = theNode->mPrevious;
        }
    }
    return theNode;
}

vxPtrListNode* vxPtrList_Find(const vxPtrList* aList, const void* aPtr) {
    vxPtrListNode* theNode = aList->mFirst;
    while (theNode != NULL && theNode->mPtr != aPtr) {
        theNode = theNode->mNext;
    }
    return theNode;
}

vxPtrListNode* vxPtrList_GetFirstNode(const vxPtrList* aList) {
    return aList->mFirst;
}

vxPtrListNode* vxPtrList_GetLastNode(const vxPtrList* aList) {
    return aList->mLast;
}

vxPtrListNode* vxPtrListNode_GetNext(const vxPtrListNode* aNode) {
    return aNode->mNext;
}

vxPtrListNode* vxPtrListNode_GetPrevious(const vxPtrListNode* aNode) {
    return aNode->mPrevious;
}

void* vxPtrListNode_GetPtr(const vxPtrListNode* aNode) {
    return aNode->mPtr;
}

bool vxPtrList_ForEach(vxPtrList* aList, vxPtrList_ForEachFunc aFunc, void* aUserData) {
    // The next node is read before the visit, which may end the present one; what a visit to the
    // last node appends is therefore not visited.
    for (vxPtrListNode* theNode = aList->mFirst; theNode != NULL;) {
        vxPtrListNode* theNext = theNode->mNext;
        if (!aFunc(aUserData, theNode->mPtr)) {
            return false;
        }
        theNode = theNext;
    }
    return true;
}

bool vxPtrList_Remove(vxPtrList* aList, void* aPtr) {
    vxPtrListNode* theNode = vxPtrList_Find(aList, aPtr);
    vxPtrList_RemoveNode(aList, theNode);
    return theNode != NULL;
}

bool vxPtrList_RemoveAt(vxPtrList* aList, size_t anIndex) {
    vxPtrListNode* theNode = vxPtrList_GetNodeAt(aList, anIndex);
    vxPtrList_RemoveNode(aList, theNode);
    return theNode != NULL;
}

void vxPtrList_RemoveNode(vxPtrList* aList, vxPtrListNode* aNode) {
    if (aNode != NULL) {
        vxPtrListFree(aList, vxPtrList_TakeNode(aList, aNode));
    }
}

void* vxPtrList_TakeNode(vxPtrList* aList, vxPtrListNode* aNode) {
    if (aNode == NULL) {
        return NULL;
    }
    vxUnlinkNode(aList, aNode);
    vxSpareNode(aList, aNode);
    return aNode->mPtr;
}

void vxPtrList_Clear(vxPtrList* aList) {
    while (aList->mFirst != NULL) {
        vxPtrList_RemoveNode(aList, aList->mFirst);
    }
}
