#pragma once

#include "vx/CString.h"
#include "vx/JSON.h"

class vxCSVStringList;

namespace vxmedia {

/// Reads a JSON file into the document.
///
/// Fails:    with an error text, which is empty on success; the document is invalid then.
vxCString LoadJSONFile(const vxCString& aPath, vxJSONDocument& aDocument);

/// Reads an XML file and makes the document the JSON that the library converts it to.
///
/// Fails:    with an error text, which is empty on success.
vxCString ConvertXMLFile(const vxCString& aPath, vxJSONDocument& aDocument);

/// Makes the difference an object that holds, of all paths, the new values where they differ, and the
/// paths that differ and have no place in it a list: an item of an array has its place only behind
/// the items before it.
void MakeDifference(const vxJSONEntry& anOld, const vxJSONEntry& aNew,
                    const vxCSVStringList& aPaths, vxJSONDocument& aDifference,
                    vxCSVStringList& aPlaceless);

}  // namespace vxmedia
