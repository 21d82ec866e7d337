#pragma once

// The cells of nodes: slabs for trees that are read or cloned, heap blocks for single nodes.
//
// A slab only knows how many of its cells live. Each thread counts the cells that it frees of one
// slab by itself and takes them off together, when it comes to another slab or ends; so a tree is
// freed with one atomic step for each slab. A slab goes as soon as its last cells are freed, but for
// one that several threads freed, which may wait for the next node that one of them frees.
//
// A few single nodes are kept by each thread for the next ones that it makes.

#include "JSONNode.h"

// Under a sanitizer each cell is a heap block, so that leaks and overruns show.
#if defined(__SANITIZE_ADDRESS__)
#define VX_JSON_PLAIN_CELLS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VX_JSON_PLAIN_CELLS 1
#endif
#endif

struct vxJSONSlab {
    uint32_t mLive;  // cells in use; atomic once nodes of the slab are handed out
    uint32_t mUnused;
};

/// Frees the cell of a node, whose name and children are gone.
void vxFreeCell(vxJSON_t* aNode);

/// Returns a heap block for a node with a name slot; null when memory is out.
vxJSON_t* vxNewSingleCell();
