#pragma once

#include "MediaLibrary.h"
#include "probes/MediaProbes.h"
#include "vx/CString.h"

namespace vxmedia {

/// Writes the whole library into a file, as compact JSON.
///
/// At any moment the file holds the old contents or the new ones. The new ones are prepared beside
/// it in a file that is called like it, with ".new" behind; one process at a time may do that.
///
/// Fails:    with an error text, which is empty on success; the file is the old one then.
vxCString SaveLibrary(const MediaLibrary& aLibrary, const vxCString& aPath);

enum class LoadResult {
    Loaded,
    Missing,     // there is no such file
    Damaged,     // what is good in it was loaded; it was copied, with ".bad" behind its name
    Unreadable,  // it was left alone, and must stay: what is good in it was loaded, if there is any
    Broken,      // it was renamed, with ".bad" behind its name
};

/// Makes the library what such a file says; it is left alone where nothing of the file is good.
///
/// Records that make no sense, or that say again what others have said, are left out, counted and
/// explained; the others stay.
///
/// Formats of files that a plug-in had read are known by name, whether or not it is loaded. A file
/// that another version of the program has written is as good, but what it says about files is read
/// anew by the next scan.
///
/// Fails:    with an error text in `anError`, which is empty for Loaded and Missing.
LoadResult LoadLibrary(MediaLibrary& aLibrary, MediaProbes& aProbes, const vxCString& aPath,
                       vxCString& anError);

}  // namespace vxmedia
