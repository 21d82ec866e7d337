// Worker threads read files with the plug-ins while a scan goes on: nothing is loaded or unloaded
// then, nor as long as a job of a scan that was stopped is under way.

#include "probes/PluginModule.h"

#include "TerminalText.h"
#include "TextTable.h"

namespace vxmedia {

namespace {

vxCString CountText(size_t aCount) {
    return vxCString::Format(aCount == 1 ? "%lu plug-in" : "%lu plug-ins",
                             static_cast<unsigned long>(aCount));
}

vxCString Shown(const vxCString& aText) {
    return aText.IsEmpty() ? vxCString("-") : EscapeForTerminal(aText, EscapeMode::Name);
}

}  // namespace

PluginModule::PluginModule(Console& aConsole, MediaProbes& aProbes, const ScanApplet& aScanApplet)
    : CommandModule("plugin", aConsole), mProbes(aProbes), mScanApplet(aScanApplet) {
    Declare("list", "", "list the plug-ins");
    Declare("load", "pattern:str", "load plug-ins, by file names without extension");
    Declare("unload", "", "unload the plug-ins that are no part of the program");
}

bool PluginModule::HandleCLICommand(const vxRef<vxCLICommand>& aCommand) {
    if (aCommand->CommandIs("list")) {
        List();
        return true;
    }
    if (mScanApplet.IsScanning()) {
        return Answer("ERROR: A scan uses the plug-ins");
    }
    return aCommand->CommandIs("load") ? Load(aCommand->Parameter(0)->GetString()) : Unload();
}

void PluginModule::List() {
    TextTable theTable("llll");
    theTable.AddRow({"FORMAT", "PLUGIN", "ENDINGS", "PATH"});
    for (const MediaProbe& theProbe : mProbes.GetProbes()) {
        theTable.AddRow({Shown(theProbe.mFormat->mName), Shown(theProbe.mHandler->GetFileName()),
                         Shown(theProbe.mHandler->GetEndings()),
                         Shown(theProbe.mHandler->GetFullPath())});
    }
    mConsole.Print(theTable.GetText());
}

bool PluginModule::Load(const vxCString& aPattern) {
    const size_t theCount = mProbes.GetProbes().size();
    const std::vector<vxCString> theErrors = mProbes.Load(aPattern);
    for (const vxCString& theError : theErrors) {
        mConsole.PrintError(theError);
    }
    const size_t theLoaded = mProbes.GetProbes().size() - theCount;
    if (theLoaded != 0) {
        mConsole.PrintLine(vxCString("Loaded ") + CountText(theLoaded));
    }
    return theErrors.empty();
}

bool PluginModule::Unload() {
    mConsole.PrintLine(vxCString("Unloaded ") + CountText(mProbes.Unload()));
    return true;
}

}  // namespace vxmedia
