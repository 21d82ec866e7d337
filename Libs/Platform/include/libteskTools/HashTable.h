#pragma once

#include <libteskTools/Types.h>

// Hash tables from text to pointers or numbers, in insertion order.
//
// Keys are copied. Walks and indexes follow the order in which keys were added; replacing a value
// keeps its place. Values belong to the table as soon as it has a free function: whatever it drops,
// it hands to that function, after the value has left the table. One thread at a time; threads that
// only look up and count need no lock, those that walk or go by index do. Finding, adding and removing
// cost one hash of the key, going by index constant time in the long run.

VX_C_BEGIN

/// Releases one value.
typedef void (*vxHashTable_FreeFunc)(void* aValue);

/// Visits one entry; the key ends with a NUL. False ends the walk.
typedef bool (*vxHashTable_ForEachFunc)(void* aUserData, const char* aKey, void* aValue);

/// Returns the hash by which tables find a key of `aLength` bytes.
///
/// It differs from process to process, so that nobody outside can choose keys that fall together:
/// take it for tables of your own, and store it nowhere.
///
/// Threads:  any.
VX_API uint32_t vxHashTable_Hash(const char* aKey, size_t aLength);

// The plain table: keys are bytes with a length, each key has one value.

/// A table whose keys are bytes with a length.
typedef struct vxHashTable vxHashTable;

/// Creates an empty table; with a null free function it borrows its values.
///
/// Fails:    as vxMalloc().
/// Owner:    the caller, who ends it with vxHashTable_Delete().
VX_API vxHashTable* vxHashTable_New(vxHashTable_FreeFunc aFreeFunc);

/// Drops all entries, then the table itself; null is allowed.
VX_API void vxHashTable_Delete(vxHashTable* aTable);

/// Returns the value of a key, or null.
VX_API void* vxHashTable_GetEntry(const vxHashTable* aTable, const char* aKey, size_t aKeyLength);

/// Stores a value under a key; an older value of that key is freed, unless it is the same pointer.
///
/// Fails:    false as vxMalloc() fails; the value stays the caller's.
/// Owner:    the table, where it has a free function.
VX_API bool vxHashTable_AddEntry(vxHashTable* aTable, const char* aKey, size_t aKeyLength,
                                 void* aValue);

/// Drops a key and frees its value; false when there is no such key.
VX_API bool vxHashTable_DeleteEntry(vxHashTable* aTable, const char* aKey, size_t aKeyLength);

/// Drops all entries in order; the table can be filled again.
VX_API void vxHashTable_Clear(vxHashTable* aTable);

/// Returns the number of keys.
VX_API size_t vxHashTable_GetCount(const vxHashTable* aTable);

/// Visits the entries in insertion order until the callback answers false; the result is the last
/// answer, and true for an empty table.
///
/// The callback may add and remove entries; what it adds is not visited by this walk.
VX_API bool vxHashTable_ForEach(vxHashTable* aTable, vxHashTable_ForEachFunc aFunc,
                                void* aUserData);

// The custom table: keys are texts, values pointers or 32-bit numbers, and one key may have several
// values.

/// A table whose keys are texts, and may have several values.
typedef struct vxCustomHashTable vxCustomHashTable;

/// Creates an empty table of pointers; with a null free function it borrows them.
///
/// Fails:    as vxMalloc().
/// Owner:    the caller, who ends it with vxCustomHashTable_Delete().
VX_API vxCustomHashTable* vxCustomHashTable_New_String_Other(vxHashTable_FreeFunc aFreeFunc);

/// Creates an empty table of numbers. They pass as pointers: store vxHashValue_FromUInt32() of them
/// and read with vxHashValue_ToUInt32().
///
/// Fails:    as vxMalloc().
/// Owner:    the caller, who ends it with vxCustomHashTable_Delete().
VX_API vxCustomHashTable* vxCustomHashTable_New_String_UInt32(void);

/// Returns the value that stands for a number.
static inline void* vxHashValue_FromUInt32(uint32_t aNumber) {
    return reinterpret_cast<void*>(static_cast<uintptr_t>(aNumber));
}

/// Returns the number that a value stands for.
static inline uint32_t vxHashValue_ToUInt32(const void* aValue) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(aValue));
}

/// Drops all entries, then the table itself; null is allowed.
VX_API void vxCustomHashTable_Delete(vxCustomHashTable* aTable);

/// From now on adding to a key that is there gives it one more value instead of replacing.
VX_API void vxCustomHashTable_AllowDuplicates(vxCustomHashTable* aTable);

/// Stores a value under a key. Unless duplicates are allowed an older value of that key is replaced
/// and freed; nothing is freed where it is the same pointer.
///
/// Fails:    false as vxMalloc() fails; the value stays the caller's.
/// Owner:    the table, where it has a free function.
VX_API bool vxCustomHashTable_Add(vxCustomHashTable* aTable, const char* aKey, void* aValue);

/// Returns the first value under a key, or null.
VX_API void* vxCustomHashTable_Get(const vxCustomHashTable* aTable, const char* aKey);

/// Tells whether a key is there; `aValue`, unless null, receives its first value and is left alone
/// otherwise.
VX_API bool vxCustomHashTable_Lookup(const vxCustomHashTable* aTable, const char* aKey,
                                     void** aValue);

/// Returns the value number `anIndex` (from 0) under a key, in insertion order, or null beyond the
/// last one.
VX_API void* vxCustomHashTable_LookupAt(const vxCustomHashTable* aTable, const char* aKey,
                                        size_t anIndex);

/// Tells whether a key has at least one value.
VX_API bool vxCustomHashTable_HasKey(const vxCustomHashTable* aTable, const char* aKey);

/// Visits all entries as vxHashTable_ForEach() does; a key with several values is visited for each.
VX_API bool vxCustomHashTable_ForEach(vxCustomHashTable* aTable, vxHashTable_ForEachFunc aFunc,
                                      void* aUserData);

/// Drops a key and frees all its values; false when there is no such key.
VX_API bool vxCustomHashTable_Remove(vxCustomHashTable* aTable, const char* aKey);

/// Drops and frees the first entry that has both this key and this value; false when there is none.
VX_API bool vxCustomHashTable_RemoveValue(vxCustomHashTable* aTable, const char* aKey,
                                          const void* aValue);

/// Drops all entries in order; the table can be filled again.
VX_API void vxCustomHashTable_Clear(vxCustomHashTable* aTable);

/// Returns the number of entries: a key with several values counts for each.
VX_API size_t vxCustomHashTable_GetTupleCount(const vxCustomHashTable* aTable);

/// Returns the key of entry number `anIndex` (from 0) in insertion order, or null at or above the
/// number of entries.
///
/// Owner:    the table; the text lives as long as its entry.
VX_API const char* vxCustomHashTable_GetKeyAtIndex(const vxCustomHashTable* aTable, size_t anIndex);

/// Returns the value of entry number `anIndex`, or null at or above the number of entries.
VX_API void* vxCustomHashTable_GetValueAtIndex(const vxCustomHashTable* aTable, size_t anIndex);

VX_C_END
