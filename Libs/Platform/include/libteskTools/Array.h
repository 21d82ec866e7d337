#pragma once

#include <libteskTools/Types.h>

// A growing array of pointers that may own what they point to.
//
// The array owns its elements as soon as a free function is set: whatever it drops, it hands to that
// function, after the element has left the array. Without one it borrows. One thread at a time.

VX_C_BEGIN

/// A growing sequence of pointers that may own what they point to.
typedef struct vxArray vxArray;

/// Releases one element.
typedef void (*vxArray_FreeFunc)(void* anElement);

/// Compares two elements (not pointers to them): negative, 0 or positive as `aLeft` belongs before,
/// beside or behind `aRight`.
typedef int (*vxArray_SortFunc)(const void* aLeft, const void* aRight);

/// The index of an element that is not there.
#define kvxArray_NotFound ((size_t)-1)

/// Creates an empty array that borrows its elements and has no order.
///
/// Fails:    as vxMalloc().
/// Owner:    the caller, who ends it with vxArray_Delete().
VX_API vxArray* vxArray_New(void);

/// Drops all elements, first to last, then the array itself; null is allowed.
VX_API void vxArray_Delete(vxArray* anArray);

/// Makes the array the owner of its elements, also of those it holds already; null ends that.
VX_API void vxArray_SetFreeFunc(vxArray* anArray, vxArray_FreeFunc aFreeFunc);

/// Sets what vxArray_Sort() compares with. Nothing moves before the next sort.
VX_API void vxArray_SetSortFunc(vxArray* anArray, vxArray_SortFunc aSortFunc);

/// Sorts the elements; those that compare equal keep their order. Without a sort function nothing
/// changes.
///
/// Any comparison is safe, also one that contradicts itself: every element is kept exactly once. An
/// element that does not compare equal to itself belongs to an end of the array: those that place
/// themselves before themselves go to the front, those behind themselves to the back, each group in
/// its present order; only the others are compared with one another.
///
/// Cost:     n log n comparisons and a block of n pointers.
VX_API void vxArray_Sort(vxArray* anArray);

/// Appends an element, which may be null.
///
/// Fails:    false as vxMalloc() fails; the element stays the caller's.
/// Owner:    the array, where it has a free function.
/// Cost:     constant, amortized.
VX_API bool vxArray_Append(vxArray* anArray, void* anElement);

/// Inserts an element before the one at `anIndex`; an index at or above the count appends.
///
/// Fails:    as vxArray_Append().
/// Owner:    as vxArray_Append().
/// Cost:     one move of what lies behind.
VX_API bool vxArray_Insert(vxArray* anArray, size_t anIndex, void* anElement);

/// Returns the element at `anIndex`, or null at or above the count or for a null array.
VX_API void* vxArray_At(const vxArray* anArray, size_t anIndex);

/// Returns the number of elements; a null array has none.
VX_API size_t vxArray_GetCount(const vxArray* anArray);

/// Returns the index of the first such pointer, or kvxArray_NotFound.
VX_API size_t vxArray_Find(const vxArray* anArray, const void* anElement);

/// Drops the first such pointer and frees the element; false when the array does not hold it.
VX_API bool vxArray_Remove(vxArray* anArray, void* anElement);

/// Drops and frees the element at `anIndex`; false at or above the count.
VX_API bool vxArray_RemoveAt(vxArray* anArray, size_t anIndex);

/// Takes the element at `anIndex` out without freeing it; null at or above the count.
///
/// Owner:    the caller.
VX_API void* vxArray_TakeAt(vxArray* anArray, size_t anIndex);

/// Drops and frees all elements, first to last; the array can be filled again.
VX_API void vxArray_Clear(vxArray* anArray);

VX_C_END
