#pragma once

#include "FileStatus.h"
#include "vx/CString.h"

namespace vxmedia {

/// What is read from a media file only when somebody asks, for it takes more than the header.
struct MediaDetails {
    vxCString mError;  // empty: the rest is known
    FileStatus mStatus;
    vxCString mCover;  // format, size and bytes of the cover; "-": there is none
};

/// Reads the details of a media file.
///
/// Threads:  any. Blocks as long as a disk does.
MediaDetails ReadMediaDetails(const char* aPath);

}  // namespace vxmedia
