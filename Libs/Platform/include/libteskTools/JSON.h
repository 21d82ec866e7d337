#pragma once

// A tree of JSON values, its text form and its MPack form.
//
// Every value is a node with an address of its own that stays the same for the node's whole life:
// through edits of the tree around it, and when it is detached and put elsewhere. A node is either
// a root, which its owner frees with vxJSON_Delete(), or linked into exactly one object or array,
// which frees it together with itself.
//
// All text is UTF-8. Text handed in that is not is kept as it is and written with its malformed
// bytes dropped. Text that was read may hold the character U+0000: it is kept, compared and
// written, while the operations that return text show what stands before it.
//
// Misuse is asserted and changes nothing: a null or wrong-kind node, linking a node that is linked
// already, deleting one that is linked, putting a tree into itself.
//
// Threads:  one at a time for a tree that is changed; any number of threads may read one that is
//           not. Detached nodes may be used and freed in any thread.
// Cost:     16 bytes for a value, and its texts beside it. No operation recurses: depth costs no
//           stack. Lookups in large objects and arrays build an index on first use, which edits keep
//           up to date. The memory of a tree that was read or cloned comes in blocks of up to 16 KB,
//           each of which goes with the last node in it, wherever that has been put.

#include <libteskTools/Types.h>

/// The kind of a node, as bits: a node has exactly one, a question may ask for several.
/// @{
#define kvxJSON_False 0x0001
#define kvxJSON_True 0x0002
#define kvxJSON_NULL 0x0004
#define kvxJSON_String 0x0008
#define kvxJSON_Array 0x0010
#define kvxJSON_Object 0x0020
#define kvxJSON_Number 0x0040        ///< unsigned integer
#define kvxJSON_SignedNumber 0x0080  ///< signed integer
#define kvxJSON_Double 0x0100        ///< floating-point number
#define kvxJSON_Numeric (kvxJSON_Number | kvxJSON_SignedNumber | kvxJSON_Double)
/// @}

/// The position that stands for the end of an array.
#define kvxJSON_Append 0xFFFFFFFFu

/// Deepest nesting that the readers of text and of MPack accept; the outermost value is level 1.
#define kvxJSON_MaxDepth 1000

VX_C_BEGIN

/// A node: a value with what lies below it.
typedef struct vxJSON_t vxJSON_t;

/// The words that MPack writes as numbers.
typedef struct vxJSONMPackDictionary_t vxJSONMPackDictionary_t;

// ---- Text

/// Reads a text as RFC 8259 has it and returns the root.
///
/// Members keep their order, and those of equal names are all kept. An integer is exact within 64
/// bits, unsigned unless it is negative; any other number becomes the nearest double.
///
/// Fails:    null for text that is no JSON, is no UTF-8, nests deeper than kvxJSON_MaxDepth or holds
///           a number beyond every double; `anErrorPosition`, unless null, then points to the first
///           byte that no JSON text could have there. It is left alone on success.
/// Owner:    the caller, who frees the root with vxJSON_Delete().
/// Cost:     linear in the text.
VX_API vxJSON_t* vxJSON_Parse(const char* aText, const char** anErrorPosition);

/// As vxJSON_Parse(), for `aSize` bytes that need no NUL; one among them is an error.
VX_API vxJSON_t* vxJSON_ParseSize(const char* aText, size_t aSize, const char** anErrorPosition);

/// Returns the text of a subtree, one item per line, indented by four blanks a level.
///
/// Doubles are written with the fewest digits that read back as the same value: "0.1", "100000",
/// "-0.0". Below 0.000001 and from 2^64 on they have an exponent: "1e-7", "1e+20". NaN and the
/// infinities become null.
///
/// Fails:    null for a null node.
/// Owner:    the caller, who releases the text with free().
VX_API char* vxJSON_Print(const vxJSON_t* aNode);

/// As vxJSON_Print(), without any blank or line end.
VX_API char* vxJSON_PrintUnformatted(const vxJSON_t* aNode);

// ---- MPack

/// Encodes a subtree as MessagePack and stores the number of bytes in `aSize`, which may be null.
///
/// With a dictionary, the name of a member that the dictionary has is written as its index.
/// Numbers take their smallest form; a double that a float holds exactly is written as one.
///
/// Fails:    null for a null node, or a text or container of 4 GB or more.
/// Owner:    the caller, who releases the bytes with free().
VX_API uint8_t* vxJSON_ToMPack(const vxJSON_t* aNode, uint32_t* aSize,
                               const vxJSONMPackDictionary_t* aDictionary);

/// Decodes the MessagePack value at `aBuffer` and returns the root.
///
/// Nothing tells where the buffer ends, so this is for bytes of the program's own making. For bytes
/// that come from outside use vxJSON_FromMPackSize().
///
/// Fails:    null for what no JSON tree can hold: see vxJSON_FromMPackSize().
/// Owner:    the caller, who frees the root with vxJSON_Delete().
VX_API vxJSON_t* vxJSON_FromMPack(const uint8_t* aBuffer,
                                  const vxJSONMPackDictionary_t* aDictionary);

/// Decodes exactly `aSize` bytes, whatever they hold.
///
/// Fails:    null for an incomplete value, bytes behind it, a length that the rest cannot hold,
///           binary and extension types, text that is no UTF-8, a name that is neither text nor an
///           index of the dictionary, or nesting deeper than kvxJSON_MaxDepth.
/// Owner:    the caller, who frees the root with vxJSON_Delete().
/// Cost:     linear; the tree takes at most 16 bytes for each byte of the input, and under one
///           percent for keeping its blocks.
VX_API vxJSON_t* vxJSON_FromMPackSize(const uint8_t* aBuffer, size_t aSize,
                                      const vxJSONMPackDictionary_t* aDictionary);

/// Creates an empty dictionary. Both sides of a connection add the same words in the same order.
///
/// Owner:    the caller, who frees it with vxJSONMPackDictionary_Delete().
/// Threads:  any, as long as no word is added.
VX_API vxJSONMPackDictionary_t* vxJSONMPackDictionary_New(void);

/// Frees a dictionary; null is allowed. Trees that were decoded with it stay whole.
VX_API void vxJSONMPackDictionary_Delete(vxJSONMPackDictionary_t* aDictionary);

/// Adds a word, whose index is the number of words added before; a null word counts as empty.
VX_API void vxJSONMPackDictionary_AddString(vxJSONMPackDictionary_t* aDictionary,
                                            const char* aWord);

/// Returns the index of a word, the first of equal ones, or -1.
VX_API int32_t vxJSONMPackDictionary_GetStringIndex(const vxJSONMPackDictionary_t* aDictionary,
                                                    const char* aWord);

/// Returns the word at an index, or null.
///
/// Owner:    the dictionary.
VX_API const char* vxJSONMPackDictionary_GetStringAtIndex(
    const vxJSONMPackDictionary_t* aDictionary, int32_t anIndex);

// ---- Nodes

/// Creates a root of this kind.
///
/// Owner:    the caller, who frees it with vxJSON_Delete() or links it.
/// @{
VX_API vxJSON_t* vxJSON_CreateObject(void);
VX_API vxJSON_t* vxJSON_CreateArray(void);
VX_API vxJSON_t* vxJSON_CreateNull(void);
VX_API vxJSON_t* vxJSON_CreateBool(int aValue);
VX_API vxJSON_t* vxJSON_CreateDouble(double aValue);
VX_API vxJSON_t* vxJSON_CreateInt64(int64_t aValue);
VX_API vxJSON_t* vxJSON_CreateUInt64(uint64_t aValue);
/// @}

/// Creates a string from a copy of the text; a null text counts as empty.
///
/// Owner:    as vxJSON_CreateObject().
VX_API vxJSON_t* vxJSON_CreateString(const char* aText);

/// Copies a subtree, with the name of its top node, into a tree of its own; null gives null.
VX_API vxJSON_t* vxJSON_Clone(const vxJSON_t* aNode);

/// Frees a root with its subtree; null is allowed.
///
/// Asserts:  the node is not linked; one that is stays.
VX_API void vxJSON_Delete(vxJSON_t* aNode);

/// Returns nonzero when the node's kind is among the bits of `aMask`; 0 for a null node.
VX_API int vxJSON_Is(const vxJSON_t* aNode, unsigned aMask);

/// Returns the node's name: null for a null node and for one that has none.
///
/// Owner:    the node, until it is renamed or freed.
VX_API const char* vxJSON_GetName(const vxJSON_t* aNode);

/// Names a root that waits to be linked; a null name takes the name away.
///
/// Asserts:  the node is not linked: its object finds it by its name.
VX_API void vxJSON_SetName(vxJSON_t* aNode, const char* aName);

/// Returns the text of a string node, or null.
///
/// Owner:    the node.
VX_API const char* vxJSON_GetValueString(const vxJSON_t* aNode);

/// Returns the value of a number of any kind as a double; 0 for other nodes.
VX_API double vxJSON_GetValueDouble(const vxJSON_t* aNode);

/// Returns a node's value as text: a string without quotes and escapes, anything else as
/// vxJSON_PrintUnformatted() has it.
///
/// Fails:    null for a null node.
/// Owner:    the caller, who releases the text with free().
VX_API char* vxJSON_GetRawValue(const vxJSON_t* aNode);

/// Returns nonzero and stores the value when the node is an integer from 0 to `aMax`.
///
/// Fails:    0, leaving `aValue` alone; for a double too, whatever its value.
VX_API int vxJSON_CheckUInt(const vxJSON_t* aNode, uint64_t aMax, uint64_t* aValue);

/// Returns nonzero and stores the value when the node is an integer from `aMin` to `aMax`.
///
/// Fails:    as vxJSON_CheckUInt().
VX_API int vxJSON_CheckInt(const vxJSON_t* aNode, int64_t aMin, int64_t aMax, int64_t* aValue);

/// Returns 0 when both trees hold the same.
///
/// Members count by name, in any order; those of equal names are taken in their order. Numbers
/// count by value, of whatever kind they are, and NaN equals NaN. The names of the two top nodes do
/// not count. Two null nodes are equal.
///
/// Cost:     linear for members in the same order, else with a sort of each such object.
VX_API int vxJSON_Compare(const vxJSON_t* aNode, const vxJSON_t* anOther);

/// Gives a node the first value of its kind: false, 0, the empty text, no children. The kind and
/// the name stay.
VX_API void vxJSON_Reset(vxJSON_t* aNode);

/// Frees the children of an object or array; other nodes are left alone.
VX_API void vxJSON_Clear(vxJSON_t* aNode);

// ---- Objects and arrays

/// Returns the number of items of an array or of members of an object; 0 for other nodes.
VX_API uint32_t vxJSON_GetArraySize(const vxJSON_t* aNode);

/// Returns the item of an array, or the member of an object, at a position; null where none is.
///
/// Owner:    the tree.
/// Cost:     constant once the index is built.
VX_API vxJSON_t* vxJSON_GetArrayItem(const vxJSON_t* anArray, uint32_t anIndex);

/// Returns the first member of that very name, byte for byte; null where none is.
///
/// Owner:    the tree.
/// Cost:     constant once the index is built.
VX_API vxJSON_t* vxJSON_GetObjectItem(const vxJSON_t* anObject, const char* aName);

/// Returns nonzero when the object has a member of that name.
VX_API int vxJSON_ContainsItem(const vxJSON_t* anObject, const char* aName);

/// Appends `anItem` as a member of that name, also where one of that name exists.
///
/// The name may be the item's own. A null name counts as empty.
///
/// Asserts:  an object; a root that does not hold the object.
/// Fails:    0; the item stays the caller's.
/// Owner:    the object takes the item.
/// Cost:     constant, except that an item which holds something is searched for the object where
///           the object itself is linked.
VX_API int vxJSON_AddItemToObject(vxJSON_t* anObject, const char* aName, vxJSON_t* anItem);

/// Puts `anItem` in the place of the first member of that name, which is freed; where none is,
/// appends it if `afAdd` is nonzero.
///
/// Asserts, Fails, Owner, Cost:  as vxJSON_AddItemToObject(); a missing member is no misuse.
VX_API int vxJSON_ReplaceItemInObject(vxJSON_t* anObject, const char* aName, vxJSON_t* anItem,
                                      int afAdd);

/// Frees the first member of that name; does nothing where none is.
VX_API void vxJSON_DeleteItemFromObject(vxJSON_t* anObject, const char* aName);

/// Takes the first member of that name out of the object; it keeps its name.
///
/// Fails:    null where none is.
/// Owner:    the caller.
VX_API vxJSON_t* vxJSON_DetachItemFromObject(vxJSON_t* anObject, const char* aName);

/// Inserts `anItem` before the item at `aPosition`; at the end for kvxJSON_Append and for every
/// position behind it.
///
/// Asserts, Fails, Owner, Cost:  as vxJSON_AddItemToObject(), for an array.
VX_API int vxJSON_InsertItemInArray(vxJSON_t* anArray, uint32_t aPosition, vxJSON_t* anItem);

/// Puts `anItem` in the place of the item at `anIndex`, which is freed.
///
/// Asserts, Fails, Owner, Cost:  as vxJSON_AddItemToObject(); fails where no item is.
VX_API int vxJSON_ReplaceItemInArray(vxJSON_t* anArray, uint32_t anIndex, vxJSON_t* anItem);

/// Takes the item of an array, or the member of an object, at a position out of it.
///
/// Fails:    null where none is.
/// Owner:    the caller.
VX_API vxJSON_t* vxJSON_DetachItemFromArray(vxJSON_t* anArray, uint32_t anIndex);

VX_C_END
