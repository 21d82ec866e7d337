#pragma once

// The indexes that large containers get once somebody looks things up in them: children by position,
// and members of an object by name.
//
// A table follows the edits of its container until it is dropped; a container without one is
// searched along its ring.

#include <libteskTools/JSON.h>

class vxJSONKey;
struct vxJSONTable;

/// Where a child is, and the sibling in front of it in the ring.
struct vxJSONLocation {
    vxJSON_t* mNode;  // null: there is none
    vxJSON_t* mPrevious;
};

enum class vxJSONOrder : unsigned { kByPosition, kByName };

/// Builds a table of a container's children; null when memory is out.
vxJSONTable* vxTable_New(const vxJSON_t* aContainer, vxJSONOrder anOrder);
void vxTable_Delete(vxJSONTable* aTable);

/// Finds the item at a position that is below the count.
vxJSON_t* vxTable_At(const vxJSONTable* aTable, uint32_t anIndex);

/// Finds the first member of a name. The previous sibling of the first child is not up to date: it
/// is the container's last child.
vxJSONLocation vxTable_Find(const vxJSONTable* aTable, const vxJSONKey& aKey);

// Each is called with the ring as it is after the edit, the names unchanged. The index matters to a
// table by position, the nodes to one by name. Inserting returns false when the table is full.
bool vxTable_Inserted(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* aPrevious, vxJSON_t* aNode);
void vxTable_Replaced(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* anOld, vxJSON_t* aNode);
void vxTable_Removed(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* aPrevious, vxJSON_t* aNode);
