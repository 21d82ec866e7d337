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

constexpr uint32_t kvxTable_Unknown = UINT32_MAX;

/// Builds a table of a container's children; null when memory is out.
vxJSONTable* vxTable_New(const vxJSON_t* aContainer, vxJSONOrder anOrder);
void vxTable_Delete(vxJSONTable* aTable);

/// Finds the item at a position that is below the count.
vxJSON_t* vxTable_At(const vxJSONTable* aTable, uint32_t anIndex);

/// Remembers a position that was asked for; readers may do so at the same time.
void vxTable_Remember(vxJSONTable* aTable, uint32_t anIndex);

/// Returns the position of an item if it is the remembered one or the next, else kvxTable_Unknown.
uint32_t vxTable_PositionOf(const vxJSONTable* aTable, const vxJSON_t* aNode);

/// Finds the first member of a name. The previous sibling of the first child is not up to date: it
/// is the container's last child.
vxJSONLocation vxTable_Find(const vxJSONTable* aTable, const vxJSONKey& aKey);

// Each is called with the ring as it is after the edit, the names unchanged. The index matters to a
// table by position, the nodes to one by name. Inserting returns false when the table is full.
bool vxTable_Inserted(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* aPrevious, vxJSON_t* aNode);
void vxTable_Replaced(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* anOld, vxJSON_t* aNode);
void vxTable_Removed(vxJSONTable* aTable, uint32_t anIndex, vxJSON_t* aPrevious, vxJSON_t* aNode);
