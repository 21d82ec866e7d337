// A text is refused, or gives a tree whose written form is read again. Where no blanks and no entity
// of the writer's exceptions are at play, writing settles after one round.

#include <vx/Error.h>
#include <vx/JSON.h>
#include <vx/XML.h>
#include <vx/XMLJSON.h>
#include <vx/XMLParser.h>

#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxXMLDocument theDocument;
    vxError theError;
    const vxXMLParser theParser;
    if (!theParser.Parse(aData, aSize, theDocument, theError)) {
        vxfuzz::Expect(!theError.GetErrorStr().IsEmpty(), "a refusal says why");
        return 0;
    }
    vxCString theText;
    theDocument.GetRoot()->SaveStr(theText);
    vxXMLDocument theAgain;
    vxfuzz::Expect(theText.Contains("--") || theText.Contains("\r") ||
                       theParser.Parse(theText, theAgain, theError),
                   "written text is read");
    const vxXMLNode theCopy(*theDocument.GetRoot());
    vxJSONDocument theJSON(kvxJSONDocumentRoot_Object);
    vxXMLToJSON(&theCopy).ConvertTo(theJSON);
    return 0;
}
