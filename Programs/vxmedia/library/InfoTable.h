#pragma once

#include "MediaItem.h"
#include "vx/CString.h"

namespace vxmedia {

/// Returns what `lib info` shows of an item: a line for each value that is known, with its key, its
/// readable name, which ends with a star where somebody has edited the value, and the value itself,
/// safe for a terminal.
vxCString MakeInfoTable(const MediaItem& anItem);

}  // namespace vxmedia
