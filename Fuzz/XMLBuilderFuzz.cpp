// Any texts can be written with a limit, whose entities are whole; a document of any texts is
// balanced, and what the parser accepts of it reads back as it was.

#include <vx/Error.h>
#include <vx/XML.h>
#include <vx/XMLBuilder.h>
#include <vx/XMLParser.h>

#include "Input.h"

namespace {

void CheckEscapes(const std::string& aText, uint32_t aLimit, bool afDouble) {
    const uint32_t theLength = static_cast<uint32_t>(aText.size());
    const std::string theWhole =
        vxXMLBuilder::Escape(aText.c_str(), theLength, 0, afDouble).c_str();
    const std::string theCut =
        vxXMLBuilder::Escape(aText.c_str(), theLength, aLimit, afDouble).c_str();
    vxfuzz::Expect(theWhole.find_first_of("<>\"'") == std::string::npos, "nothing is left over");
    vxfuzz::Expect(theWhole.compare(0, theCut.size(), theCut) == 0, "a limit cuts the end off");
    vxfuzz::Expect(aLimit == 0 || theCut.size() <= aLimit, "a limit is held");
    const size_t theMark = theCut.rfind('&');
    vxfuzz::Expect(theMark == std::string::npos || theCut.find(';', theMark) != std::string::npos,
                   "entities are whole");
}

void CheckDocument(const std::string& aText, const std::string& aValue) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.AddAttribute("k", aValue.c_str());
    theBuilder.AddTag("t", ("x" + aText).c_str(), 0, false);
    theBuilder.EndTag();
    const vxCString theXML = theBuilder.TakeXML();
    vxXMLDocument theDocument;
    vxError theError;
    if (!vxXMLParser().Parse(theXML, theDocument, theError)) {
        return;  // bytes that XML forbids
    }
    // The parser makes line ends uniform, and blanks of values.
    const vxXMLNode& theRoot = *theDocument.GetRoot();
    vxfuzz::Expect(aText.find('\r') != std::string::npos ||
                       theRoot.GetChildNodeText("t", "none") == ("x" + aText).c_str(),
                   "a text reads back");
    vxfuzz::Expect(aValue.find_first_of("\r\n\t") != std::string::npos ||
                       theRoot.GetPropertyValue("k", vxCString("none")) == aValue.c_str(),
                   "a value reads back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    const uint8_t theLimit = theInput.Byte();
    const std::string theValue = theInput.Line().c_str();
    const std::string theText = theInput.Rest().c_str();
    CheckEscapes(theText, theLimit, false);
    CheckEscapes(theText, theLimit, true);
    CheckDocument(theText, theValue);
    return 0;
}
