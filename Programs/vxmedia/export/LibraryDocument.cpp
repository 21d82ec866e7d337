// Both forms are made of the facts that the console shows. Their texts hold no control character and
// nothing but UTF-8, which is what JSON and XML can take.

#include "export/LibraryDocument.h"

#include "ItemFacts.h"
#include "TerminalText.h"
#include "vx/XMLBuilder.h"

namespace vxmedia {

namespace {

constexpr char kProgram[] = "vxmedia " VXMEDIA_VERSION;
constexpr uint32_t kXML_SizePerItem = 256;  // bytes; an estimate

void AddFact(vxJSONObject& anObject, const ItemFact& aFact) {
    switch (aFact.mKind) {
        case ItemFact::Kind::Text:
            anObject.Add(vxJSONPair(aFact.mName, aFact.mText.c_str()), false);
            break;
        case ItemFact::Kind::Number:
            anObject.Add(vxJSONPair(aFact.mName, aFact.mNumber), false);
            break;
        case ItemFact::Kind::Seconds:
            anObject.Add(vxJSONPair(aFact.mName, static_cast<double>(aFact.mNumber) / 1000), false);
            break;
        case ItemFact::Kind::Unknown:
            anObject.Add(vxJSONPair(aFact.mName), false);
            break;
    }
}

void AddFact(vxXMLBuilder& aBuilder, const ItemFact& aFact) {
    const bool theIsKnown = aFact.mKind != ItemFact::Kind::Unknown;
    aBuilder.AddTag(aFact.mName, theIsKnown ? aFact.mText.c_str() : "", 0, false);
}

}  // namespace

void MakeLibraryDocument(const MediaLibrary& aLibrary, const vxCString& anOwner,
                         vxJSONDocument& aDocument) {
    aDocument.SetRoot(kvxJSONDocumentRoot_Object);
    aDocument.Set("program", kProgram);
    aDocument.Set("owner", EscapeForTerminal(anOwner, EscapeMode::Text).c_str());
    aDocument.Set("count", static_cast<uint64_t>(aLibrary.GetItems().size()));
    vxJSONArray theItems = aDocument.AsObject().AddArray("items");
    for (const auto& theEntry : aLibrary.GetItems()) {
        vxJSONObject theObject = theItems.InsertObject(kvxJSON_Append);
        for (const ItemFact& theFact : GetItemFacts(*theEntry.second.Get())) {
            AddFact(theObject, theFact);
        }
    }
}

vxCString MakeLibraryXML(const MediaLibrary& aLibrary, const vxCString& anOwner) {
    const uint32_t theCount = static_cast<uint32_t>(aLibrary.GetItems().size());
    vxXMLBuilder theBuilder(theCount * kXML_SizePerItem);
    theBuilder.AddRaw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    theBuilder.StartTag("library");
    theBuilder.AddAttribute("program", kProgram);
    theBuilder.AddAttribute("owner", EscapeForTerminal(anOwner, EscapeMode::Text));
    theBuilder.AddUInt32Attribute("count", theCount);
    for (const auto& theEntry : aLibrary.GetItems()) {
        theBuilder.AddRaw("\n");
        theBuilder.StartTag("item");
        for (const ItemFact& theFact : GetItemFacts(*theEntry.second.Get())) {
            AddFact(theBuilder, theFact);
        }
        theBuilder.EndTag();
    }
    theBuilder.AddRaw("\n");
    theBuilder.EndTag();
    theBuilder.AddRaw("\n");
    return theBuilder.TakeXML();
}

}  // namespace vxmedia
