#pragma once

// A look-up that becomes an addition, for those who keep the table to themselves.

#include <libteskTools/HashTable.h>

/// Returns where the value of a key is kept; the value of a key that was not there is null, for the
/// caller to set.
///
/// Fails:    null when memory is short.
void** vxCustomHashTable_PlaceOf(vxCustomHashTable* aTable, const char* aKey);
