// The result of one console line. It is filled by the manager and then only read.

#include "vx/CLICommand.h"

#include "vx/CLICommandSet.h"
#include "vx/CLIManager.h"

vxCLICommand::vxCLICommand(const vxRef<vxCLIManager>& aManager, const vxCString& anInput)
    : mCLIManager(aManager),
      mInput(anInput),
      mParameters(NULL),
      mfShortcutCommand(false),
      mSecured(false) {}

vxCLICommand::~vxCLICommand() {
    vxArray_Delete(mParameters);
}

bool vxCLICommand::ModuleIs(const char* aName) const {
    return aName != NULL && (mModuleName == aName || mModuleNameList.Has(aName, true));
}

bool vxCLICommand::CommandIs(const char* aName) const {
    return aName != NULL && mCommandNameList.Has(aName, true);
}

bool vxCLICommand::IsExit() const {
    return Is("exit", "exit") && GetParameterCount() == 0;
}

vxRef<vxCLIParameter> vxCLICommand::Parameter(size_t anIndex) const {
    VXASSERT(anIndex < vxArray_GetCount(mParameters));
    return static_cast<vxCLIParameter*>(vxArray_At(mParameters, anIndex));
}

vxRef<vxCLICommandSet> vxCLICommand::GetCLICommandSet() const {
    return mCLICommandSet;
}

void vxCLICommand::SetInfo(const vxRef<vxCLICommandSet>& aSet, const vxCString& aModuleWord,
                           const vxCSVStringList& aCommandNames, bool afShortcut) {
    mCLICommandSet = aSet;
    mModuleName = aModuleWord;
    if (aSet.IsNull()) {
        mModuleNameList.Reset();
    } else {
        mModuleNameList = aSet->GetModuleNameList();
    }
    mCommandNameList = aCommandNames;
    mfShortcutCommand = afShortcut;
}

void vxCLICommand::SetParameters(vxArray* aParameters) {
    if (mParameters != aParameters) {
        vxArray_Delete(mParameters);
        mParameters = aParameters;
    }
}
