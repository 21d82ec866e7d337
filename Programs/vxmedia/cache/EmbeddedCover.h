#pragma once

#include "FileStatus.h"
#include "cache/CoverStore.h"

namespace vxmedia {

/// The largest cover that is read.
constexpr size_t kCover_MaxSize = 16 * 1024 * 1024;  // bytes in the media file

/// Returns an error text about a file: "ERROR: The file 'a.mp3' has no cover".
vxCString FileError(const char* aPath, const char* aTrouble);

/// Returns the file name under which the cover of a media file is kept.
///
/// The name stands for the file as it is: moved, it keeps its cover, changed or copied it has
/// another one.
vxCString CoverNameOf(const FileStatus& aStatus);

/// Fetches the cover that lies inside a media file.
///
/// Fails:    with an error text in the cover: there is no such file, it has no cover, or one that
///           cannot be read or has more than 16 MiB; and as CoverStore::Fetch().
/// Threads:  any. Blocks as long as a disk does.
Cover FetchEmbeddedCover(CoverStore& aStore, const char* aPath);

}  // namespace vxmedia
