#pragma once

#include <libteskTools/Types.h>
#include <wchar.h>

// Lists of named properties, each with typed values.
//
// A list has a reference count, which starts at 1; _Take() adds a reference and _Delete() drops one.
// Properties have different names and stay in the order in which they were added. A property has any
// number of values, counted from 0, of any types; usually it has one.
//
//     vxPropertyList* theList = vxPropertyList_New();
//     vxPropertyList_Set_uint32(theList, "size", 5);
//     vxProperty* theTags = vxPropertyList_Add(theList, "tags");
//     vxProperty_Set_charPtr(theTags, vxProperty_GetCount(theTags), "live");
//     vxPropertyList_Delete(theList);
//
// A null list, property or value has nothing in it: readers give their empty answer and writers
// false. A null name is no name. Finding a property costs one hash of its name.
//
// Threads:  _Take() and _Delete() any, atomic; everything else one at a time for one list.

/// Types of a value.
enum {
    kvxDataType_Unknown = 0,
    kvxDataType_uint32 = 1,
    kvxDataType_double = 2,
    kvxDataType_voidPtr = 3,  // borrowed
    kvxDataType_uint64 = 4,
    kvxDataType_size_t = 5,
    kvxDataType_charPtr = 100,
    kvxDataType_propertyList = 101,
    kvxDataType_malloc = 102,  // a block that the value owns
    kvxDataType_packedData = 103,
    kvxDataType_DLNAProtocolInfo = 104,  // a block that the value owns, too
    kvxDataType_wcharPtr = 105
};

/// A list of properties.
typedef struct vxPropertyList vxPropertyList;
/// A name with values.
typedef struct vxProperty vxProperty;
/// One value.
typedef struct vxData vxData;
/// Bytes that several values share.
typedef struct vxPackedData vxPackedData;

VX_C_BEGIN

// Lists

/// Creates an empty list.
///
/// Owner:    the caller, who lets go of it with vxPropertyList_Delete().
VX_API vxPropertyList* vxPropertyList_New(void);

/// Adds a reference and returns the list; null is allowed.
VX_API vxPropertyList* vxPropertyList_Take(vxPropertyList* aList);

/// Drops a reference; the last one frees the list with everything in it. Null is allowed.
///
/// Lists nested however deep need no stack. A list that holds itself is never freed.
VX_API void vxPropertyList_Delete(vxPropertyList* aList);

/// Returns the number of properties.
VX_API size_t vxPropertyList_GetCount(const vxPropertyList* aList);

/// Returns a property by its position, or null beyond the last.
VX_API vxProperty* vxPropertyList_GetAt(const vxPropertyList* aList, size_t anIndex);

/// Returns a property by its name, or null.
VX_API vxProperty* vxPropertyList_Find(const vxPropertyList* aList, const char* aName);

/// Returns the property of a name; where there is none it is added at the end, without values.
///
/// Fails:    null for a null list or name.
VX_API vxProperty* vxPropertyList_Add(vxPropertyList* aList, const char* aName);

/// Removes a property with its values; false when there is none of that name.
VX_API bool vxPropertyList_Remove(vxPropertyList* aList, const char* aName);

/// Makes a number the only value of a property, which is added if need be.
///
/// Fails:    false for a null list or name.
VX_API bool vxPropertyList_Set_uint32(vxPropertyList* aList, const char* aName, uint32_t aValue);

/// As vxPropertyList_Set_uint32(), with a copy of a text; a null text counts as "".
VX_API bool vxPropertyList_Set_charPtr(vxPropertyList* aList, const char* aName,
                                       const char* aValue);

/// Reads the first value of a property; false, and `aValue` stays as it is, when there is none or
/// it has another type.
VX_API bool vxPropertyList_Get_uint32(const vxPropertyList* aList, const char* aName,
                                      uint32_t* aValue);

/// Returns the first value of a property; null when there is none or it has another type.
///
/// Owner:    the list; the text lives as long as the value.
VX_API const char* vxPropertyList_Get_charPtr(const vxPropertyList* aList, const char* aName);

// Properties, which live as long as they are in their list

/// Returns the name, which lives as long as the property.
VX_API const char* vxProperty_GetName(const vxProperty* aProperty);

/// Returns the number of values.
VX_API size_t vxProperty_GetCount(const vxProperty* aProperty);

/// Returns a value by its position, or null beyond the last; it is good until the property changes.
VX_API const vxData* vxProperty_GetAt(const vxProperty* aProperty, size_t anIndex);

/// Removes the values from position `aCount` on.
VX_API void vxProperty_Truncate(vxProperty* aProperty, size_t aCount);

// Each of these puts a value at a position: in place of the one there, or at the end when the
// position is the number of values. Beyond that, and for a null property, they fail with false.

/// Puts nothing there.
VX_API bool vxProperty_Set_Unknown(vxProperty* aProperty, size_t anIndex);
/// Puts a number of 32 bits there.
VX_API bool vxProperty_Set_uint32(vxProperty* aProperty, size_t anIndex, uint32_t aValue);
/// Puts a real number there.
VX_API bool vxProperty_Set_double(vxProperty* aProperty, size_t anIndex, double aValue);
/// Puts a pointer there, which is borrowed.
VX_API bool vxProperty_Set_voidPtr(vxProperty* aProperty, size_t anIndex, void* aValue);
/// Puts a number of 64 bits there.
VX_API bool vxProperty_Set_uint64(vxProperty* aProperty, size_t anIndex, uint64_t aValue);
/// Puts a size there.
VX_API bool vxProperty_Set_size_t(vxProperty* aProperty, size_t anIndex, size_t aValue);
/// Copies the text; null counts as "".
VX_API bool vxProperty_Set_charPtr(vxProperty* aProperty, size_t anIndex, const char* aValue);
/// Copies the text; null counts as "".
VX_API bool vxProperty_Set_wcharPtr(vxProperty* aProperty, size_t anIndex, const wchar_t* aValue);
/// Takes a reference of its own. A null list fails.
VX_API bool vxProperty_Set_propertyList(vxProperty* aProperty, size_t anIndex,
                                        vxPropertyList* aValue);
/// Takes a reference of its own. Null data fail.
VX_API bool vxProperty_Set_packedData(vxProperty* aProperty, size_t anIndex, vxPackedData* aValue);
/// Puts a block there.
///
/// Owner:    the value, which frees the block with free(); the caller still, when it fails.
VX_API bool vxProperty_Set_malloc(vxProperty* aProperty, size_t anIndex, void* aBlock);
/// As vxProperty_Set_malloc().
VX_API bool vxProperty_Set_DLNAProtocolInfo(vxProperty* aProperty, size_t anIndex, void* aBlock);

// Values

/// Returns the type, a kvxDataType_*.
VX_API int vxData_GetType(const vxData* aData);

// Each of these returns what the value holds; 0 or null when it has another type. Pointers lead to
// what the value owns.

/// Returns the number of 32 bits.
VX_API uint32_t vxData_Get_uint32(const vxData* aData);
/// Returns the real number.
VX_API double vxData_Get_double(const vxData* aData);
/// Returns the number of 64 bits.
VX_API uint64_t vxData_Get_uint64(const vxData* aData);
/// Returns the size.
VX_API size_t vxData_Get_size_t(const vxData* aData);
/// Returns the text.
VX_API const char* vxData_Get_charPtr(const vxData* aData);
/// Returns the wide text.
VX_API const wchar_t* vxData_Get_wcharPtr(const vxData* aData);
/// Returns the list.
VX_API vxPropertyList* vxData_Get_propertyList(const vxData* aData);
/// Returns the packed data.
VX_API vxPackedData* vxData_Get_packedData(const vxData* aData);
/// Returns the borrowed pointer.
VX_API void* vxData_Get_voidPtr(const vxData* aData);
/// Returns the block.
VX_API void* vxData_Get_malloc(const vxData* aData);
/// Returns the block.
VX_API void* vxData_Get_DLNAProtocolInfo(const vxData* aData);

// Packed data: bytes that nobody changes.

/// Copies `aSize` bytes.
///
/// Fails:    as vxMalloc(); null when that returns null.
/// Owner:    the caller, who lets go with vxPackedData_Delete().
VX_API vxPackedData* vxPackedData_New(const void* aBytes, size_t aSize);

/// Adds a reference and returns the data; null is allowed.
///
/// Threads:  any, atomic.
VX_API vxPackedData* vxPackedData_Take(vxPackedData* aData);

/// Drops a reference; the last one frees the bytes. Null is allowed.
///
/// Threads:  any, atomic.
VX_API void vxPackedData_Delete(vxPackedData* aData);

/// Returns the bytes; not null, unless the data are.
VX_API const void* vxPackedData_GetPtr(const vxPackedData* aData);

/// Returns the number of bytes.
VX_API size_t vxPackedData_GetSize(const vxPackedData* aData);

VX_C_END
