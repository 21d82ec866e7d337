#pragma once

// A doubly linked list of nodes that are embedded in other records: linking allocates nothing and
// the list owns nothing.
//
//     struct Job : _vxDLListNode { ... };
//
//     vxDLList theJobs;
//     vxDLList_Init(&theJobs);
//     vxDLList_InitNode(&theJob);
//     vxDLList_AddTail(&theJobs, &theJob);
//     Job* theCurrent;
//     vxDLList_ForEachTyped(Job, &theJobs, theCurrent) { Run(theCurrent); }
//
// A head is a node whose links point to itself while the list is empty. A node in no list has both
// links null. Nothing is locked: a list belongs to one thread at a time, or to its owner's lock.

#include <libteskTools/Types.h>

VX_C_BEGIN

/// The two links of a record that can be in one list at a time.
typedef struct _vxDLListNode {
    struct _vxDLListNode* mNext;  ///< null while in no list
    struct _vxDLListNode* mPrev;  ///< null while in no list
} _vxDLListNode;

/// The head of a list. It is never moved or copied: its nodes point to it.
typedef _vxDLListNode vxDLList;

/// Makes the list empty, without looking at its old links.
///
/// Threads:  one at a time.
VX_API void vxDLList_Init(vxDLList* aList);

/// Marks the node as being in no list, without looking at its old links.
///
/// Threads:  one at a time.
VX_API void vxDLList_InitNode(_vxDLListNode* aNode);

/// Links the node at the tail.
///
/// Asserts:  aList && aNode && aNode->mPrev == NULL && aNode->mNext == NULL; otherwise nothing is
///           linked.
/// Threads:  one at a time.
VX_API void vxDLList_AddTail(vxDLList* aList, _vxDLListNode* aNode);

/// Links `anInserted`, which is in no list, just before `aNode`; before the head is at the tail.
///
/// Asserts:  anInserted && aNode && aNode->mPrev != NULL && aNode->mNext != NULL; otherwise nothing
///           is linked.
/// Threads:  one at a time.
VX_API void vxDLList_InsertBefore(_vxDLListNode* aNode, _vxDLListNode* anInserted);

/// Unlinks the node from whatever list it is in; a node in no list is left alone.
///
/// Asserts:  aNode.
/// Threads:  one at a time.
VX_API void vxDLList_Detach(_vxDLListNode* aNode);

/// Returns the first node, or null when the list is empty.
///
/// Threads:  one at a time.
VX_API _vxDLListNode* vxDLList_Head(const vxDLList* aList);

VX_C_END

/// Walks from the first node to the last. The body may not detach `aCurrent`, a `_vxDLListNode*`
/// of the caller, which is the head itself after a walk that ran to its end.
#define vxDLList_ForEach(aList, aCurrent) \
    for ((aCurrent) = (aList)->mNext; (aCurrent) != (aList); (aCurrent) = (aCurrent)->mNext)

/// As vxDLList_ForEach(), but reads the next node before the body runs, which may therefore detach
/// or destroy `aCurrent`, and no other node.
#define vxDLList_ForEachSafe(aList, aCurrent, aNext)                                      \
    for ((aCurrent) = (aList)->mNext, (aNext) = (aCurrent)->mNext; (aCurrent) != (aList); \
         (aCurrent) = (aNext), (aNext) = (aCurrent)->mNext)

/// As vxDLList_ForEach(), for nodes that are bases of `aType`: `aCurrent`, a plain variable of type
/// `aType*`, keeps the last record after a walk that ran to its end.
#define vxDLList_ForEachTyped(aType, aList, aCurrent)                                           \
    for (_vxDLListNode* aCurrent##Node = (aList)->mNext;                                        \
         aCurrent##Node != (aList) && ((aCurrent = static_cast<aType*>(aCurrent##Node)), true); \
         aCurrent##Node = aCurrent##Node->mNext)

/// As vxDLList_ForEachTyped(), but the body may detach or destroy `aCurrent`; `aNext` names a
/// `_vxDLListNode*` that the loop declares.
#define vxDLList_ForEachTypedSafe(aType, aList, aCurrent, aNext)                                \
    for (_vxDLListNode* aCurrent##Node = (aList)->mNext, *aNext = aCurrent##Node->mNext;        \
         aCurrent##Node != (aList) && ((aCurrent = static_cast<aType*>(aCurrent##Node)), true); \
         aCurrent##Node = aNext, aNext = aCurrent##Node->mNext)
