// The commands of a module: declaring them, finding the overload that a typed line means, and help.

#include "vx/CLICommandSet.h"

#include <libteskTools/Memory.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "vx/BeforeNextSpace.h"
#include "vx/CLICommandChecker.h"
#include "vx/CLICommandValidator.h"
#include "vx/CLIParameter.h"

namespace {

// One search for a declaration that conflicts with a new one.
struct vxCLICheckConflictUserData {
    const vxCLICommandChecker* mCLICommandChecker;
    const char* mCommandName;
    bool mfConflict;
};

// One collection of help lines.
struct vxCLICommandSetBuildHelpUserData {
    vxCString mModuleName;
    bool mfDisplayModuleName;
    bool mfShortcutCommand;
    bool mfInternal;
    vxArray* mHelpArray;  // owned texts
};

void vxDeleteCommandChecker(void* aChecker) {
    delete static_cast<vxCLICommandChecker*>(aChecker);
}

vxCustomHashTable* vxNewCommandTable() {
    vxCustomHashTable* theTable = vxCustomHashTable_New_String_Other(vxDeleteCommandChecker);
    vxCustomHashTable_AllowDuplicates(theTable);
    return theTable;
}

// Splits at commas, trims every name and drops the empty ones.
vxCSVStringList vxSplitNames(const vxCString& aNames) {
    vxCSVStringList theRaw(aNames, '\\');
    vxCSVStringList theNames;
    for (size_t i = 0; i < theRaw.GetCount(); ++i) {
        const vxCString theName = vxCString(theRaw.GetAt(i)).TrimLeftRight();
        if (!theName.IsEmpty()) {
            theNames.Add(theName);
        }
    }
    return theNames;
}

bool vxCheckConflict(void* aSearch, const char* aName, void* aChecker) {
    auto* theSearch = static_cast<vxCLICheckConflictUserData*>(aSearch);
    theSearch->mfConflict =
        strcmp(aName, theSearch->mCommandName) == 0 &&
        !vxCLICommandChecker::NotConflicting(static_cast<vxCLICommandChecker*>(aChecker),
                                             theSearch->mCLICommandChecker);
    return !theSearch->mfConflict;
}

vxCString vxHelpPrefix(const vxCLICommandSetBuildHelpUserData& aBuild) {
    vxCString thePrefix;
    if (aBuild.mfShortcutCommand && (aBuild.mfInternal || aBuild.mfDisplayModuleName)) {
        thePrefix += '!';
    }
    if (aBuild.mfDisplayModuleName && !aBuild.mfInternal) {
        thePrefix += aBuild.mModuleName;
        thePrefix += ' ';
    }
    return thePrefix;
}

bool vxBuildHelp(void* aBuild, const char* aName, void* aChecker) {
    const auto* theBuild = static_cast<vxCLICommandSetBuildHelpUserData*>(aBuild);
    const vxCString theLine =
        vxCString::Format("    %s%s %s\n", vxHelpPrefix(*theBuild).c_str(), aName,
                          static_cast<vxCLICommandChecker*>(aChecker)->GetHelp().c_str());
    vxArray_Append(theBuild->mHelpArray, vxStrdup(theLine));
    return true;
}

int vxCompareLines(const void* aLeft, const void* aRight) {
    return strcmp(static_cast<const char*>(aLeft), static_cast<const char*>(aRight));
}

}  // namespace

vxCLICommandSet::vxCLICommandSet(const char* aModuleNames)
    : mCommandHashTable(vxNewCommandTable()),
      mModuleNameList(vxSplitNames(aModuleNames)),
      mCSVModuleNameList(vxCString(aModuleNames).TrimLeftRight()),
      mfInternal(false) {
    if (mModuleNameList.GetCount() == 0) {
        AddError("", vxCString::Format("Module name is %s",
                                       mCSVModuleNameList.IsEmpty() ? " empty" : "invalid"));
    }
}

vxCLICommandSet::vxCLICommandSet() : mCommandHashTable(vxNewCommandTable()), mfInternal(true) {}

vxCLICommandSet::~vxCLICommandSet() {
    vxCustomHashTable_Delete(mCommandHashTable);
}

void vxCLICommandSet::Add(const vxCString& aCommandNames, const vxCString& aDescription,
                          const vxCString& aHelp) {
    const vxCSVStringList theNames = vxSplitNames(aCommandNames);
    for (size_t i = 0; i < theNames.GetCount(); ++i) {
        AddName(aCommandNames, theNames.GetAt(i), aDescription, aHelp, theNames);
    }
    if (theNames.GetCount() == 0) {
        AddError(aCommandNames, "Unable to add a command (the command name is empty)");
    }
}

void vxCLICommandSet::AddName(const vxCString& aCommandNames, const vxCString& aName,
                              const vxCString& aDescription, const vxCString& aHelp,
                              const vxCSVStringList& aNames) {
    vxCLICommandValidator theValidator(aDescription, aHelp, aNames);
    std::unique_ptr<vxCLICommandChecker> theChecker(theValidator.Parse());
    if (theChecker == nullptr) {
        AddError(aCommandNames, theValidator.GetError());
    } else if (HasConflict(aName, theChecker.get())) {
        AddError(aCommandNames,
                 vxCString::Format("Unable to add command '%s'. A command with the same name (and "
                                   "potentially conflicting parameters) has already been added",
                                   aName.c_str()));
    } else if (vxCustomHashTable_Add(mCommandHashTable, aName, theChecker.get())) {
        static_cast<void>(theChecker.release());  // the table owns it
    }
}

bool vxCLICommandSet::HasConflict(const vxCString& aName,
                                  const vxCLICommandChecker* aChecker) const {
    if (!HasCommand(aName)) {
        return false;
    }
    vxCLICheckConflictUserData theSearch = {aChecker, aName, false};
    vxCustomHashTable_ForEach(mCommandHashTable, vxCheckConflict, &theSearch);
    return theSearch.mfConflict;
}

void vxCLICommandSet::AddError(const vxCString& aContext, const vxCString& aMessage) {
    if (mError.IsEmpty()) {
        mError = vxCString::Format(
            "  %s:\n", mCSVModuleNameList.IsEmpty() ? "[empty]" : mCSVModuleNameList.c_str());
    }
    mError += vxCString::Format("    %s%s%s\n", aContext.c_str(), aContext.IsEmpty() ? "" : ": ",
                                aMessage.c_str());
}

bool vxCLICommandSet::HasCommand(const char* aCommandName) const {
    return aCommandName != NULL && vxCustomHashTable_HasKey(mCommandHashTable, aCommandName);
}

size_t vxCLICommandSet::GetCommandCount() const {
    return vxCustomHashTable_GetTupleCount(mCommandHashTable);
}

vxCString vxCLICommandSet::GetHelp(const vxCString& aModuleName, bool afDisplayModuleName,
                                   bool afShortcut) const {
    vxCLICommandSetBuildHelpUserData theBuild = {aModuleName, afDisplayModuleName, afShortcut,
                                                 mfInternal, vxArray_New()};
    vxArray_SetFreeFunc(theBuild.mHelpArray, free);
    vxArray_SetSortFunc(theBuild.mHelpArray, vxCompareLines);
    vxCustomHashTable_ForEach(mCommandHashTable, vxBuildHelp, &theBuild);
    vxArray_Sort(theBuild.mHelpArray);
    vxCString theHelp;
    for (size_t i = 0; i < vxArray_GetCount(theBuild.mHelpArray); ++i) {
        theHelp += static_cast<const char*>(vxArray_At(theBuild.mHelpArray, i));
    }
    vxArray_Delete(theBuild.mHelpArray);
    return theHelp;
}

vxArray* vxCLICommandSet::Validate(const vxCString& anActiveModule, bool afShortcut,
                                   const vxCString& aModuleWord, vxCString& aText,
                                   vxCSVStringList& aCommands, vxCString& anError) {
    const char* const theShortcut = afShortcut ? "!" : "";
    bool theFound;
    const vxCString theCommand = BeforeNextSpace(aText, &theFound, true);
    if (!theFound) {
        anError = vxCString::Format(
            "ERROR: Please specify a command for module '%s'. Type '%shelp %s' to display the list "
            "of commands",
            aModuleWord.c_str(), theShortcut, aModuleWord.c_str());
        return NULL;
    }
    if (!HasCommand(theCommand)) {
        anError = anActiveModule == aModuleWord
                      ? vxCString::Format(
                            "ERROR: Unknown command '%s'. Type 'help' to display the list "
                            "of commands",
                            theCommand.c_str())
                      : vxCString::Format(
                            "ERROR: Unknown command '%s'. Type '%shelp %s' to display the "
                            "list of commands",
                            theCommand.c_str(), theShortcut, aModuleWord.c_str());
        return NULL;
    }
    for (size_t i = 0;; ++i) {
        auto* theChecker = static_cast<vxCLICommandChecker*>(
            vxCustomHashTable_LookupAt(mCommandHashTable, theCommand, i));
        if (theChecker == NULL) {
            return NULL;
        }
        vxArray* theParameters = vxCLIParameter::NewArray();
        vxCString theText = aText;
        anError = theChecker->Validate(theText, theParameters);
        if (anError.IsEmpty()) {
            aText = theText;
            aCommands = theChecker->GetCommandList();
            return theParameters;
        }
        vxArray_Delete(theParameters);
    }
}
