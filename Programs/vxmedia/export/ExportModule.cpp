#include "export/ExportModule.h"

#include <cstdlib>

#include "ItemFacts.h"
#include "TerminalText.h"
#include "WholeFile.h"
#include "export/Documents.h"
#include "export/LibraryDocument.h"
#include "vx/StringList.h"

namespace vxmedia {

ExportModule::ExportModule(Console& aConsole, const MediaLibrary& aLibrary,
                           const Settings& aSettings)
    : CommandModule("export,ex", aConsole), mLibrary(aLibrary), mSettings(aSettings) {
    Declare("json", "path:str (pretty:bool:true)", "write the library to a JSON file");
    Declare("mpack", "path:str", "write the library to a MessagePack file");
    Declare("xml", "path:str", "write the library to an XML file");
    Declare("xjson", "xmlfile:str", "show an XML file as JSON");
    Declare("diff", "old:str new:str paths:str", "show what differs in JSON files, at these paths");
}

bool ExportModule::HandleCLICommand(const vxRef<vxCLICommand>& aCommand) {
    const vxCString thePath = aCommand->Parameter(0)->GetString();
    if (aCommand->CommandIs("json")) {
        return ExportJSON(thePath, aCommand->Parameter(1)->GetBool());
    }
    if (aCommand->CommandIs("mpack")) {
        return ExportMPack(thePath);
    }
    if (aCommand->CommandIs("xml")) {
        return ExportXML(thePath);
    }
    if (aCommand->CommandIs("xjson")) {
        return ConvertXML(thePath);
    }
    return Compare(thePath, aCommand->Parameter(1)->GetString(),
                   aCommand->Parameter(2)->GetString());
}

bool ExportModule::ExportJSON(const vxCString& aPath, bool afPretty) {
    vxJSONDocument theDocument(kvxJSONDocumentRoot_None);
    MakeLibraryDocument(mLibrary, mSettings.GetText("owner"), theDocument);
    const vxCString theText = theDocument.ToString(afPretty) + "\n";
    return Write(aPath, theText.c_str(), theText.length());
}

bool ExportModule::ExportMPack(const vxCString& aPath) {
    vxJSONDocument theDocument(kvxJSONDocumentRoot_None);
    MakeLibraryDocument(mLibrary, mSettings.GetText("owner"), theDocument);
    uint32_t theSize = 0;
    uint8_t* theBytes = theDocument.ToMPackBuffer(&theSize, vxRef<vxMPackDictionary>());
    const bool theIsWritten = Write(aPath, theBytes, theSize);
    free(theBytes);
    return theIsWritten;
}

bool ExportModule::ExportXML(const vxCString& aPath) {
    const vxCString theText = MakeLibraryXML(mLibrary, mSettings.GetText("owner"));
    return Write(aPath, theText.c_str(), theText.length());
}

bool ExportModule::Write(const vxCString& aPath, const void* aBytes, size_t aSize) {
    const vxCString theError = WriteWholeFile(aPath, aBytes, aSize);
    if (theError.IsEmpty()) {
        mConsole.PrintLine(vxCString("Exported ") + NumberText(mLibrary.GetItems().size()) +
                           " media files: " + NumberText(aSize) + " bytes");
    }
    return Answer(theError);
}

bool ExportModule::ConvertXML(const vxCString& aPath) {
    vxJSONDocument theDocument(kvxJSONDocumentRoot_None);
    const vxCString theError = ConvertXMLFile(aPath, theDocument);
    if (theError.IsEmpty()) {
        mConsole.PrintLine(EscapeForTerminal(theDocument.ToString(true), EscapeMode::JSON));
    }
    return Answer(theError);
}

bool ExportModule::Compare(const vxCString& anOldPath, const vxCString& aNewPath,
                           const vxCString& aPaths) {
    vxJSONDocument theOld(kvxJSONDocumentRoot_None);
    vxJSONDocument theNew(kvxJSONDocumentRoot_None);
    vxCString theError = LoadJSONFile(anOldPath, theOld);
    if (theError.IsEmpty()) {
        theError = LoadJSONFile(aNewPath, theNew);
    }
    if (!theError.IsEmpty()) {
        return Answer(theError);
    }
    vxJSONDocument theDifference(kvxJSONDocumentRoot_None);
    vxCSVStringList thePlaceless;
    MakeDifference(theOld, theNew, vxCSVStringList(aPaths, '\\'), theDifference, thePlaceless);
    mConsole.PrintLine(EscapeForTerminal(theDifference.ToString(true), EscapeMode::JSON));
    for (size_t i = 0; i < thePlaceless.GetCount(); ++i) {
        mConsole.PrintLine(vxCString("also differs: ") +
                           EscapeForTerminal(thePlaceless.GetAt(i), EscapeMode::Text));
    }
    return true;
}

}  // namespace vxmedia
