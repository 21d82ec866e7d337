#include "config/ConfigModule.h"

#include <cstring>

#include "FileStatus.h"
#include "LogCapture.h"
#include "TerminalText.h"
#include "TextTable.h"
#include "TypedText.h"
#include "config/Options.h"
#include "vx/Config.h"
#include "vx/File.h"

namespace vxmedia {

namespace {

constexpr const char* kBrandKeys[] = {"MBus", "SBus", "X_RPC", "AppSet"};

const char* StateOf(const vxCString& aPath) {
    if (GetFileStatus(aPath, true).mKind == FileKind::Missing) {
        return "missing";
    }
    return vxFile::Access(aPath, vxFileAccessMode_Read) ? "found" : "unreadable";
}

void AddPathRow(TextTable& aTable, const char* aName, const vxCString& aPath) {
    aTable.AddRow({aName, StateOf(aPath), EscapeForTerminal(aPath, EscapeMode::Name)});
}

}  // namespace

ConfigModule::ConfigModule(Console& aConsole, Settings& aSettings)
    : CommandModule("config", aConsole), mSettings(aSettings) {
    Declare("get", "option:str", "show the value of an option");
    Declare("set", "option:str value:...", "change an option; without a value: to its default");
    Declare("secret", "option:str value:str", "change a text that the file keeps hidden");
    Declare("dump", "", "show all options");
    Declare("save", "", "write the changes");
    Declare("paths", "", "show the files of the configuration");
    Declare("brand", "key:str", "show a name that depends on the product");
}

bool ConfigModule::HandleCLICommand(const vxRef<vxCLICommand>& aCommand) {
    if (aCommand->CommandIs("get")) {
        return Get(aCommand->Parameter(0)->GetString());
    }
    if (aCommand->CommandIs("set")) {
        return Set(aCommand->Parameter(0)->GetString(), aCommand->Parameter(1)->GetString());
    }
    if (aCommand->CommandIs("secret")) {
        return Answer(mSettings.SetHidden(aCommand->Parameter(0)->GetString(),
                                          aCommand->Parameter(1)->GetString()));
    }
    if (aCommand->CommandIs("save")) {
        return Save();
    }
    if (aCommand->CommandIs("brand")) {
        return ShowBrand(aCommand->Parameter(0)->GetString());
    }
    if (aCommand->CommandIs("dump")) {
        Dump();
    } else {
        ShowPaths();
    }
    return true;
}

bool ConfigModule::Get(const vxCString& anOption) {
    const vxConfigMapperInfo* theOption = FindOption(anOption);
    if (theOption == NULL) {
        return Answer(vxCString("ERROR: There is no option '") + anOption + "'");
    }
    mConsole.PrintLine(EscapeForTerminal(mSettings.GetAsText(*theOption), EscapeMode::Text));
    return true;
}

bool ConfigModule::Set(const vxCString& anOption, const vxCString& aTypedValue) {
    return Answer(aTypedValue.IsEmpty() ? mSettings.SetDefault(anOption)
                                        : mSettings.Set(anOption, Unquoted(aTypedValue)));
}

// Texts stand in apostrophes, as in the library's own dump; what is hidden in the file stays so.
void ConfigModule::Dump() {
    TextTable theTable("lll");
    theTable.AddRow({"OPTION", "TYPE", "VALUE"});
    for (const vxConfigMapperInfo* theOption = kOptions; theOption->mOptionName != NULL;
         ++theOption) {
        const vxCString theText =
            mSettings.IsHidden(*theOption)
                ? vxCString("********")
                : EscapeForTerminal(mSettings.GetAsText(*theOption), EscapeMode::Text);
        theTable.AddRow({theOption->mOptionName, GetOptionTypeName(*theOption),
                         IsTextOption(*theOption) ? vxCString("'") + theText + "'" : theText});
    }
    mConsole.Print(theTable.GetText());
}

bool ConfigModule::Save() {
    const vxCString theError = mSettings.Save();
    if (theError.IsEmpty()) {
        mConsole.PrintLine("Saved");
    }
    return Answer(theError);
}

void ConfigModule::ShowPaths() {
    TextTable theTable("lll");
    theTable.AddRow({"FILE", "STATE", "PATH"});
    AddPathRow(theTable, "bootstrap", FindConfigPlace().mBootstrapPath);
    if (!mSettings.GetDirectory().IsEmpty()) {
        const LogCapture theCapture(VXLOGLEVEL_WARNING);
        vxCString theReadPath;
        vxCString theWritePath;
        vxConfigConfig(kBootstrapFileName).GetPaths(theReadPath, theWritePath);
        AddPathRow(theTable, "read", vxConfig::GetValidPath(theReadPath, kConfigFileName, ""));
        AddPathRow(theTable, "write", vxConfig::GetValidPath(theWritePath, kConfigFileName, "_"));
    }
    mConsole.Print(theTable.GetText());
}

bool ConfigModule::ShowBrand(const vxCString& aKey) {
    for (const char* theKey : kBrandKeys) {
        if (aKey == theKey) {
            const LogCapture theCapture(VXLOGLEVEL_WARNING);
            mConsole.PrintLine(EscapeForTerminal(
                vxConfigConfig::GetBrandInfo(theKey, kBootstrapFileName), EscapeMode::Text));
            return true;
        }
    }
    return Answer(vxCString("ERROR: There is no brand key '") + aKey +
                  "'; there are MBus, SBus, X_RPC, AppSet");
}

}  // namespace vxmedia
