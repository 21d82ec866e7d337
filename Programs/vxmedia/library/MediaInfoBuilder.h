#pragma once

#include "vx/CString.h"
#include "vx/MediaInfo.h"

namespace vxmedia {

class MediaItem;

/// Fills an empty info with what the file of an item says, and finishes it. Edits are not in it.
///
/// Numbers are decimal in the units of vx/MediaInfoKeys.h, so "du" has milliseconds. Sounds have one
/// audio track. The DLNA profile "dl" is set where size and rates allow one.
void FillMediaInfo(const MediaItem& anItem, vxMediaInfo& anInfo);

/// Sets one value of an info, by the name under which edits are remembered; an empty value is taken
/// away.
void EditMediaInfo(vxMediaInfo& anInfo, const vxCString& anEditName, const vxCString& aValue);

}  // namespace vxmedia
