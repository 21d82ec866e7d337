// Any path reads or writes any tree without harm; what was written by a path is read by it.

#include <vx/JSON.h>

#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::Input theInput(aData, aSize);
    const std::string thePath = theInput.Line().c_str();
    const std::string theText = theInput.Rest();
    vxJSONDocument theDocument(kvxJSONDocumentRoot_None);
    if (!theDocument.SetDocument(theText.c_str())) {
        theDocument.SetRoot(kvxJSONDocumentRoot_Object);
    }
    vxJSONEntry theEntry;
    vxJSONPath::FetchEntry(theDocument, thePath.c_str(), theEntry);
    vxJSONPath::Update(theDocument, thePath.c_str(), "true");
    const bool theWasThere = vxJSONPath::FetchEntry(theDocument, thePath.c_str(), theEntry);
    if (vxJSONPath::Set(theDocument, thePath.c_str(), "written", true) && theWasThere) {
        vxCString theValue;
        vxfuzz::Expect(vxJSONPath::FetchString(theDocument, thePath.c_str(), theValue),
                       "a written member is read");
        vxfuzz::Expect(theValue == "written", "the value is what was written");
    }
    vxJSONDocument theOld(kvxJSONDocumentRoot_Object);
    vxJSONDocument theDiff(kvxJSONDocumentRoot_Object);
    vxJSONPath::FetchDiff(theOld, theDocument, thePath.c_str(), theDiff, false);
    return 0;
}
