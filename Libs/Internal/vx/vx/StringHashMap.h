#pragma once

#include <libteskTools/HashTable.h>

#include <cstddef>
#include <string_view>

#include "vx/Api.h"

/// Visits one entry of a table with text keys; false ends the walk.
typedef bool (*vxStringHashMap_Callback)(const char* aKey, void* aValue, void* aUserData);

/// A callback with its own context, for vxStringHashMap_ForEach().
struct vxStringHashMap_Visitor {
    vxStringHashMap_Callback mCallback;  ///< what is called for each entry
    void* mUserData;                     ///< handed to it, unchanged
};

/// Calls the callback of the visitor that `aContext` points to, and returns its answer.
VX_EXPORT bool vxStringHashMap_ForEach(const char* aKey, void* aValue, void* aContext);

/// The same in the order of arguments of the table's walk, so that it can be handed to that:
///
///     vxStringHashMap_Visitor theVisitor = {Visit, &theData};
///     vxCustomHashTable_ForEach(theTable, vxStringHashMap_ForEach, &theVisitor);
VX_EXPORT bool vxStringHashMap_ForEach(void* aContext, const char* aKey, void* aValue);

/// The hash for containers of the standard library whose keys are texts from outside: it differs from
/// process to process, so that nobody can choose keys that fall together.
///
///     std::unordered_set<std::string_view, vxStringHashMap_Hash> theNames;
///
/// Threads:  any.
struct vxStringHashMap_Hash {
    /// The hash of a text.
    size_t operator()(std::string_view aKey) const {
        return vxHashTable_Hash(aKey.data(), aKey.size());
    }
};
