#pragma once

#include "MediaItem.h"
#include "vx/CString.h"

namespace vxmedia {

/// Returns what `lib info` shows of an item: a line for each value that is known, with its key, its
/// readable name, which ends with a star where somebody has edited the value, and the value itself,
/// safe for a terminal. What was found out about the picture of the cover has a line unless it is
/// empty.
vxCString MakeInfoTable(const MediaItem& anItem, const vxCString& aPicture);

}  // namespace vxmedia
