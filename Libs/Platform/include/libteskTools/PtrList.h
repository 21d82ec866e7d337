#pragma once

#include <libteskTools/Types.h>

// A doubly linked list of pointers that may own what they point to.
//
// The list owns its pointers as soon as a free function is set: whatever it drops, it hands to that
// function, after the pointer has left the list. Without one it borrows. One thread at a time.
//
//     for (vxPtrListNode* theNode = vxPtrList_GetFirstNode(theList); theNode != NULL;
//          theNode = vxPtrListNode_GetNext(theNode)) {
//         Use(vxPtrListNode_GetPtr(theNode));
//     }

VX_C_BEGIN

/// A list of pointers.
typedef struct vxPtrList vxPtrList;

/// One place in a list. It stays valid, and other nodes keep their place, until it is removed.
typedef struct vxPtrListNode vxPtrListNode;

/// Releases one pointer.
typedef void (*vxPtrList_FreeFunc)(void* aPtr);

/// Visits one pointer; false ends the walk.
typedef bool (*vxPtrList_ForEachFunc)(void* aUserData, void* aPtr);

/// Creates an empty list that borrows its pointers.
///
/// Fails:    as vxMalloc().
/// Owner:    the caller, who ends it with vxPtrList_Delete().
VX_API vxPtrList* vxPtrList_New(void);

/// Drops all pointers, first to last, then the list itself; null is allowed.
VX_API void vxPtrList_Delete(vxPtrList* aList);

/// Makes the list the owner of its pointers, also of those it holds already; null ends that.
VX_API void vxPtrList_SetFreeFunc(vxPtrList* aList, vxPtrList_FreeFunc aFreeFunc);

/// Adds a pointer, which may be null, at the end and returns its node.
///
/// Fails:    null as vxMalloc() fails; the pointer stays the caller's.
/// Owner:    the list, where it has a free function.
/// Cost:     constant.
VX_API vxPtrListNode* vxPtrList_Append(vxPtrList* aList, void* aPtr);

/// As vxPtrList_Append(), at the beginning.
VX_API vxPtrListNode* vxPtrList_Prepend(vxPtrList* aList, void* aPtr);

/// As vxPtrList_Append(), before `aNode`; a null node appends.
VX_API vxPtrListNode* vxPtrList_InsertBefore(vxPtrList* aList, vxPtrListNode* aNode, void* aPtr);

/// Returns the number of pointers; a null list has none.
VX_API size_t vxPtrList_GetCount(const vxPtrList* aList);

/// Returns the pointer at `anIndex`, or null at or above the count or for a null list.
///
/// Cost:     a walk from the nearer end.
VX_API void* vxPtrList_GetAt(const vxPtrList* aList, size_t anIndex);

/// Returns the node at `anIndex`, or null at or above the count or for a null list.
///
/// Cost:     a walk from the nearer end.
VX_API vxPtrListNode* vxPtrList_GetNodeAt(const vxPtrList* aList, size_t anIndex);

/// Returns the first node holding that pointer, or null.
VX_API vxPtrListNode* vxPtrList_Find(const vxPtrList* aList, const void* aPtr);

/// Returns the node at the end that the name says, or null for an empty list.
/// @{
VX_API vxPtrListNode* vxPtrList_GetFirstNode(const vxPtrList* aList);
VX_API vxPtrListNode* vxPtrList_GetLastNode(const vxPtrList* aList);
/// @}

/// Returns the node beside a node, or null at the end.
/// @{
VX_API vxPtrListNode* vxPtrListNode_GetNext(const vxPtrListNode* aNode);
VX_API vxPtrListNode* vxPtrListNode_GetPrevious(const vxPtrListNode* aNode);
/// @}

/// Returns the pointer at a node.
VX_API void* vxPtrListNode_GetPtr(const vxPtrListNode* aNode);

/// Visits the pointers in order until the callback answers false; the result is the last answer,
/// and true for an empty list.
///
/// The callback may add pointers, and may remove the one it is visiting, but no other.
VX_API bool vxPtrList_ForEach(vxPtrList* aList, vxPtrList_ForEachFunc aFunc, void* aUserData);

/// Drops the first such pointer and frees it; false when the list does not hold it.
VX_API bool vxPtrList_Remove(vxPtrList* aList, void* aPtr);

/// Drops and frees the pointer at `anIndex`; false at or above the count.
VX_API bool vxPtrList_RemoveAt(vxPtrList* aList, size_t anIndex);

/// Drops a node of this list and frees its pointer; null does nothing.
VX_API void vxPtrList_RemoveNode(vxPtrList* aList, vxPtrListNode* aNode);

/// Takes the pointer of a node out without freeing it and ends the node; null gives null.
///
/// Owner:    the caller.
VX_API void* vxPtrList_TakeNode(vxPtrList* aList, vxPtrListNode* aNode);

/// Drops and frees all pointers, first to last; the list can be filled again.
VX_API void vxPtrList_Clear(vxPtrList* aList);

VX_C_END
