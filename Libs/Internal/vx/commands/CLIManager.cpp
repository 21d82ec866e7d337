// The console interpreter. A line is read in two steps: its first word decides which set is meant and
// which text that set gets to see; the set then finds the command and checks the words.

#include "vx/CLIManager.h"

#include <libvxLog/Console.h>
#include <libvxLog/Log.h>

#include <algorithm>

#include "vx/BeforeNextSpace.h"
#include "vx/CLICommand.h"
#include "vx/CLICommandSet.h"

struct vxCLIManager::Line {
    vxCString mWord;   // first word, without `!`; later the module word
    vxCString mRest;   // the text behind it; later what the set gets
    vxCString mError;  // empty so far
    bool mfShortcut = false;
    bool mfExplicitModule = false;  // the active module does not matter
    bool mfLookup = false;
};

namespace {

void vxReleaseSet(void* aSet) {
    static_cast<vxCLICommandSet*>(aSet)->Release(NULL);
}

vxCLICommandSet* vxRetained(const vxRef<vxCLICommandSet>& aSet) {
    aSet->Retain(NULL);
    return aSet.Get();
}

vxCString vxTabsAsBlanks(const vxCString& aText) {
    if (aText.Find('\t') == vxCString::npos) {
        return aText;
    }
    const size_t theLength = aText.length();
    vxCString theText;
    std::replace_copy(aText.c_str(), aText.c_str() + theLength, theText.GetWriteBuf(theLength),
                      '\t', ' ');
    theText.UngetWriteBuf(theLength);
    return theText;
}

// A word as one types it: in quotes when it has blanks, or quotes of its own.
vxCString vxQuoted(const vxCString& aWord) {
    if (aWord.FindFirstOf(" \"'") == vxCString::npos) {
        return aWord;
    }
    const char theQuote = aWord.Find('"') == vxCString::npos ? '"' : '\'';
    return theQuote + aWord + theQuote;
}

}  // namespace

vxCLIManager::vxCLIManager()
    : mCommandHashTable(vxCustomHashTable_New_String_Other(vxReleaseSet)),
      mInternalCommandArray(vxArray_New()),
      mInternalCommandSet(new vxCLICommandSet),
      mfNewError(false) {
    vxArray_SetFreeFunc(mInternalCommandArray, vxReleaseSet);
    mInternalCommandSet->Add("help", "(module:str)", "display help");
    mInternalCommandSet->Add("exit", "", "request to exit the application");
    VXASSERT(mInternalCommandSet->GetError().IsEmpty());
    vxArray_Append(mInternalCommandArray, vxRetained(mInternalCommandSet));
}

vxCLIManager::~vxCLIManager() {
    vxCustomHashTable_Delete(mCommandHashTable);
    vxArray_Delete(mInternalCommandArray);
}

bool vxCLIManager::Add(const vxRef<vxCLICommandSet>& aCommandSet) {
    mfNewError = false;
    VXASSERT(!aCommandSet.IsNull());
    if (aCommandSet.IsNull()) {
        return false;
    }
    if (!aCommandSet->GetError().IsEmpty()) {
        AddError(aCommandSet->GetError());
    } else if (aCommandSet->IsInternal()) {
        vxArray_Append(mInternalCommandArray, vxRetained(aCommandSet));
    } else {
        RegisterModule(aCommandSet);
    }
    if (mfNewError) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "%s", mError.c_str());
        vxConsole_Printf("%s", mError.c_str());
    }
    return mError.IsEmpty();
}

void vxCLIManager::RegisterModule(const vxRef<vxCLICommandSet>& aCommandSet) {
    const vxCSVStringList& theNames = aCommandSet->GetModuleNameList();
    for (size_t i = 0; i < theNames.GetCount(); ++i) {
        const char* theName = theNames.GetAt(i);
        if (!NoSuchModule(theName)) {
            AddError(vxCString::Format(
                "Unable to add module '%s' (this module name has already been added)\n", theName));
            continue;
        }
        if (aCommandSet->_GetMainModuleName().IsEmpty()) {
            aCommandSet->_SetMainModuleName(theName);
        }
        vxCustomHashTable_Add(mCommandHashTable, theName, vxRetained(aCommandSet));
    }
}

void vxCLIManager::Remove(const vxRef<vxCLICommandSet>& aCommandSet) {
    VXASSERT(!aCommandSet.IsNull());
    if (aCommandSet.IsNull()) {
        return;
    }
    // The table may hold the last other handle, and this one may be part of what goes with it.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const vxRef<vxCLICommandSet> theSet = aCommandSet;
    if (theSet->IsInternal()) {
        vxArray_Remove(mInternalCommandArray, theSet.Get());
        return;
    }
    const vxCSVStringList& theNames = theSet->GetModuleNameList();
    for (size_t i = 0; i < theNames.GetCount(); ++i) {
        const char* theName = theNames.GetAt(i);
        if (GetModule(theName) != theSet) {
            continue;
        }
        if (mActiveModuleName == theName) {
            mActiveModuleName.clear();
        }
        vxCustomHashTable_Remove(mCommandHashTable, theName);
    }
}

vxRef<vxCLICommand> vxCLIManager::Parse(const vxCString& aLine) {
    vxRef<vxCLICommand> theCommand = new vxCLICommand(this, aLine);
    Line theLine;
    theLine.mRest = vxTabsAsBlanks(aLine);
    theLine.mWord = BeforeNextSpace(theLine.mRest, NULL, true);
    ReadFirstWord(theLine);

    vxRef<vxCLICommandSet> theSet;
    vxCSVStringList theCommandNames;
    vxArray* theParameters = NULL;
    if (theLine.mfLookup) {
        theSet = Lookup(aLine, theLine);
        if (!theSet.IsNull()) {
            theParameters =
                theSet->Validate(mActiveModuleName, theLine.mfExplicitModule, theLine.mWord,
                                 theLine.mRest, theCommandNames, theLine.mError);
        } else if (theLine.mError.IsEmpty()) {
            theLine.mError = vxCString::Format(
                "ERROR: Unknown module '%s'. Type 'help' to display the list of modules",
                theLine.mWord.c_str());
        }
    }
    theCommand->SetInfo(theSet, theLine.mWord, theCommandNames, theLine.mfShortcut);
    theCommand->SetParameters(theParameters);
    theCommand->SetError(theLine.mError);
    return theCommand;
}

void vxCLIManager::ReadFirstWord(Line& aLine) {
    aLine.mfShortcut = aLine.mWord.First() == '!';
    if (!aLine.mfShortcut) {
        aLine.mfLookup = !aLine.mWord.IsEmpty();
    } else if (aLine.mWord.length() > 1) {
        aLine.mWord = aLine.mWord.Mid(1);
        ReadShortcut(aLine);
    } else if (aLine.mRest.IsEmpty()) {
        mActiveModuleName.clear();
    } else {
        aLine.mError = "ERROR: Invalid command";
    }
}

void vxCLIManager::ReadShortcut(Line& aLine) {
    if (!GetInternalCommandSet(aLine.mWord).IsNull()) {
        aLine.mfExplicitModule = aLine.mfLookup = true;
    } else if (GetModule(aLine.mWord).IsNull()) {
        aLine.mError = vxCString::Format(
            "ERROR: Unknown module '%s'. Type '%shelp' to display the list of "
            "modules",
            aLine.mWord.c_str(), HelpPrefix());
    } else if (aLine.mRest.IsEmpty()) {
        mActiveModuleName = aLine.mWord;
    } else {
        aLine.mfExplicitModule = aLine.mfLookup = true;
    }
}

vxRef<vxCLICommandSet> vxCLIManager::Lookup(const vxCString& anInput, Line& aLine) const {
    if (!mActiveModuleName.IsEmpty() && !aLine.mfExplicitModule) {
        if (aLine.mWord == "help") {
            aLine.mRest = "help " + vxQuoted(mActiveModuleName) + ' ' + aLine.mRest;
            return mInternalCommandSet;
        }
        aLine.mWord = mActiveModuleName;
        aLine.mRest = anInput;
        return GetModule(mActiveModuleName);
    }
    vxRef<vxCLICommandSet> theInternal = GetInternalCommandSet(aLine.mWord);
    if (theInternal.IsNull()) {
        return GetModule(aLine.mWord);
    }
    aLine.mRest = vxQuoted(aLine.mWord) + ' ' + aLine.mRest;
    return theInternal;
}

vxCString vxCLIManager::GetHelp(const vxRef<vxCLICommand>& aCommand) const {
    const bool theIsHelp = !aCommand.IsNull() && aCommand->ModuleIs("help");
    VXASSERT_TEXT(theIsHelp, "aCommand->ModuleIs(\"help\")");
    if (!theIsHelp || aCommand->GetParameterCount() == 0) {
        return "";
    }
    const vxCString theModule = aCommand->Parameter(0)->GetString();
    if (theModule.IsEmpty()) {
        return GetModuleListHelp();
    }
    if (theModule == "!") {
        return GetInternalCommandSetHelp(aCommand->IsShortcut());
    }
    const vxRef<vxCLICommandSet> theSet = GetModule(theModule);
    if (theSet.IsNull()) {
        return vxCString::Format(
            "ERROR: Module '%s' is unknown. Type '%shelp' to display the list of modules",
            theModule.c_str(), HelpPrefix());
    }
    return theSet->GetHelp(theModule, theModule != mActiveModuleName, aCommand->IsShortcut());
}

vxCString vxCLIManager::GetModuleListHelp() const {
    vxCString theHelp = "Available modules:\n    !\n";
    for (size_t i = 0; i < vxCustomHashTable_GetTupleCount(mCommandHashTable); ++i) {
        const auto* theSet =
            static_cast<vxCLICommandSet*>(vxCustomHashTable_GetValueAtIndex(mCommandHashTable, i));
        if (theSet->_GetMainModuleName() == vxCustomHashTable_GetKeyAtIndex(mCommandHashTable, i)) {
            theHelp += "    ";
            theHelp += theSet->GetModuleNameList().GetString('\0');
            theHelp += '\n';
        }
    }
    return theHelp;
}

vxCString vxCLIManager::GetInternalCommandSetHelp(bool afShortcut) const {
    vxCString theHelp;
    for (size_t i = 0; i < vxArray_GetCount(mInternalCommandArray); ++i) {
        theHelp += static_cast<vxCLICommandSet*>(vxArray_At(mInternalCommandArray, i))
                       ->GetHelp("", false, afShortcut);
    }
    return theHelp;
}

bool vxCLIManager::NoSuchModule(const char* aName) const {
    return GetInternalCommandSet(aName).IsNull() && GetModule(aName).IsNull();
}

vxRef<vxCLICommandSet> vxCLIManager::GetModule(const char* aName) const {
    return static_cast<vxCLICommandSet*>(vxCustomHashTable_Get(mCommandHashTable, aName));
}

vxRef<vxCLICommandSet> vxCLIManager::GetInternalCommandSet(const char* aCommandName) const {
    for (size_t i = 0; i < vxArray_GetCount(mInternalCommandArray); ++i) {
        auto* theSet = static_cast<vxCLICommandSet*>(vxArray_At(mInternalCommandArray, i));
        if (theSet->HasCommand(aCommandName)) {
            return theSet;
        }
    }
    return 0;
}

void vxCLIManager::AddError(const vxCString& aText) {
    mError += aText;
    mfNewError = true;
}
