#pragma once

#include "MediaLibrary.h"
#include "vx/CString.h"
#include "vx/JSON.h"

namespace vxmedia {

/// Makes the document the whole library: an object with what stands above the files, and their list.
///
/// Names and values are those of the command "lib show"; what is not known is null.
void MakeLibraryDocument(const MediaLibrary& aLibrary, const vxCString& anOwner,
                         vxJSONDocument& aDocument);

/// Returns the same as XML; what is not known is an empty element.
vxCString MakeLibraryXML(const MediaLibrary& aLibrary, const vxCString& anOwner);

}  // namespace vxmedia
