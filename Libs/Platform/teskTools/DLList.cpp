// The head takes part in the ring, so linking and unlinking never ask whether a node is first or
// last.

#include <libteskTools/DLList.h>
#include <libvxLog/Assert.h>

namespace {

void vxLinkBefore(_vxDLListNode* aNode, _vxDLListNode* anInserted) {
    anInserted->mNext = aNode;
    anInserted->mPrev = aNode->mPrev;
    aNode->mPrev->mNext = anInserted;
    aNode->mPrev = anInserted;
}

}  // namespace

void vxDLList_Init(vxDLList* aList) {
    aList->mNext = aList;
    aList->mPrev = aList;
}

void vxDLList_InitNode(_vxDLListNode* aNode) {
    aNode->mNext = NULL;
    aNode->mPrev = NULL;
}

void vxDLList_AddTail(vxDLList* aList, _vxDLListNode* aNode) {
    if (VXCHECK(aList && aNode && aNode->mPrev == NULL && aNode->mNext == NULL)) {
        vxLinkBefore(aList, aNode);
    }
}

void vxDLList_InsertBefore(_vxDLListNode* aNode, _vxDLListNode* anInserted) {
    if (VXCHECK(anInserted && aNode && aNode->mPrev != NULL && aNode->mNext != NULL)) {
        vxLinkBefore(aNode, anInserted);
    }
}

void vxDLList_Detach(_vxDLListNode* aNode) {
    if (!VXCHECK(aNode) || aNode->mPrev == NULL || aNode->mNext == NULL) {
        return;
    }
    aNode->mPrev->mNext = aNode->mNext;
    aNode->mNext->mPrev = aNode->mPrev;
    vxDLList_InitNode(aNode);
}

_vxDLListNode* vxDLList_Head(const vxDLList* aList) {
    return aList->mNext == aList ? NULL : aList->mNext;
}
