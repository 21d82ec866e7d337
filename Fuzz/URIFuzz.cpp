// Any text is a URI of some sort: its parts come apart within its bounds, and a copy has the same.

#include <libteskTools/URI.h>
#include <vx/URIPathParser.h>

#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    const std::string theText = vxfuzz::Input(aData, aSize).Rest();
    vxURI_Delete(vxURI_New(theText.c_str(), true));
    const vxRef<vxURIPathParser> theParser = new vxURIPathParser(theText.c_str(), true);
    const vxRef<vxURIPathParser> theCopy = new vxURIPathParser(theParser->CloneURI());
    vxfuzz::Expect(theCopy->GetPath() == theParser->GetPath(), "a copy has the path");
    vxfuzz::Expect(theCopy->GetQueryPartCount() == theParser->GetQueryPartCount(),
                   "a copy has the arguments");
    for (unsigned i = 0; i < theParser->GetQueryPartCount() && i < 64; ++i) {
        vxCString theName;
        vxCString theValue;
        vxCString theOtherName;
        vxCString theOtherValue;
        theParser->GetQueryPartAt(i, theName, theValue);
        theCopy->GetQueryPartAt(i, theOtherName, theOtherValue);
        vxfuzz::Expect(theName == theOtherName && theValue == theOtherValue,
                       "a copy has each argument");
        vxfuzz::Expect(theParser->HasQueryPart(theName), "an argument is found by its name");
    }
    theParser->SetQuery(theText.c_str());
    vxRef<vxURIPathParser> theSub;
    theParser->FetchSubRESTScope("items", true, true, theSub);
    return 0;
}
