#include "export/Documents.h"

#include <libteskTools/JSON.h>

#include "WholeFile.h"
#include "vx/DataBuffer.h"
#include "vx/Error.h"
#include "vx/StringList.h"
#include "vx/XML.h"
#include "vx/XMLJSON.h"
#include "vx/XMLParser.h"

namespace vxmedia {

namespace {

constexpr unsigned int kDocument_MaxSize = 256 * 1024 * 1024;  // bytes

}  // namespace

vxCString LoadJSONFile(const vxCString& aPath, vxJSONDocument& aDocument) {
    aDocument.SetRoot(kvxJSONDocumentRoot_None);
    vxDataBuffer theBuffer;
    vxCString theError = ReadWholeFile(aPath, theBuffer, kDocument_MaxSize);
    if (!theError.IsEmpty()) {
        return theError;
    }
    const char* theText = static_cast<const char*>(theBuffer.data());
    const char* theErrorPosition = theText;
    aDocument.SetEntry(vxJSON_ParseSize(theText, theBuffer.size(), &theErrorPosition));
    if (aDocument.IsValid()) {
        return vxCString();
    }
    return vxCString("ERROR: '") + aPath +
           vxCString::Format("' is not JSON at byte %lu",
                             static_cast<unsigned long>(theErrorPosition - theText + 1));
}

vxCString ConvertXMLFile(const vxCString& aPath, vxJSONDocument& aDocument) {
    vxDataBuffer theBuffer;
    vxCString theReadError = ReadWholeFile(aPath, theBuffer, kDocument_MaxSize);
    if (!theReadError.IsEmpty()) {
        return theReadError;
    }
    vxXMLDocument theXML;
    vxError theError;
    if (!vxXMLParser().Parse(theBuffer.data(), theBuffer.size(), theXML, theError)) {
        return vxCString("ERROR: '") + aPath + "' is not XML: " + theError.GetErrorStr();
    }
    aDocument.SetRoot(kvxJSONDocumentRoot_Object);
    vxXMLToJSON(theXML.GetRoot()).ConvertTo(aDocument);
    return vxCString();
}

void MakeDifference(const vxJSONEntry& anOld, const vxJSONEntry& aNew,
                    const vxCSVStringList& aPaths, vxJSONDocument& aDifference,
                    vxCSVStringList& aPlaceless) {
    aDifference.SetRoot(kvxJSONDocumentRoot_Object);
    for (size_t i = 0; i < aPaths.GetCount(); ++i) {
        const vxCString thePath = aPaths.GetAt(i);
        vxJSONEntry thePlace;
        if (vxJSONPath::FetchDiff(anOld, aNew, thePath, aDifference, false) &&
            !vxJSONPath::FetchEntry(aDifference, thePath, thePlace)) {
            aPlaceless.Add(thePath);
        }
    }
}

}  // namespace vxmedia
