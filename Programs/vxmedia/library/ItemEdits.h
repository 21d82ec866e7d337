#pragma once

#include "MediaItem.h"
#include "vx/CString.h"

namespace vxmedia {

// Edits of items. All fail with an error text, which is empty on success; nothing is changed then.

/// Edits the value of a key, or of a readable name; an empty value takes it away.
vxCString EditItem(MediaItem& anItem, const vxCString& aKeyOrName, const vxCString& aValue);

/// Gives a value back that the file has.
vxCString EndEdit(MediaItem& anItem, const vxCString& aKeyOrName);

/// Adds what another item knows, as vxMediaInfo::MergeAll() does; what comes from it are edits.
///
/// The place of a cover is not merged, for it counts in the file that has the cover.
vxCString MergeItem(MediaItem& anItem, const MediaItem& aSource);

}  // namespace vxmedia
