#pragma once

#include <libteskTools/Array.h>

#include "vx/Api.h"
#include "vx/CLIParameter.h"
#include "vx/CString.h"
#include "vx/Ref.h"
#include "vx/StringList.h"

class vxCLICommandSet;
class vxCLIManager;

/// What one typed line means: a module, a command and typed parameters, or an error line.
///
///     vxRef<vxCLICommand> theCommand = theManager->Parse("net show 10");
///     if (!theCommand->IsValid()) {
///         Print(theCommand->GetError());
///     } else if (theCommand->Is("net", "show")) {
///         Show(theCommand->Parameter(0)->GetUInt32());
///     }
///
/// A line of blanks, and one that enters or leaves a module, is valid and names no command.
///
/// Owner:    its handles; it keeps the manager and the command set alive.
/// Threads:  one at a time.
class VX_EXPORT vxCLICommand : public vxRefCounted {
public:
    /// A valid command without a name, for the manager to fill.
    vxCLICommand(const vxRef<vxCLIManager>& aManager, const vxCString& anInput);
    ~vxCLICommand() override;
    vxCLICommand(const vxCLICommand&) = delete;
    vxCLICommand& operator=(const vxCLICommand&) = delete;

    /// Was the line understood? Else GetError() says why not.
    bool IsValid() const { return mError.IsEmpty(); }
    /// Returns one line without a line feed that begins with "ERROR: ", or the empty text.
    vxCString GetError() const { return mError; }
    /// Returns the line as typed.
    const vxCString& GetInput() const { return mInput; }

    /// Is it a command of that module, under any of its names? Case counts; null is no name. The
    /// module of a built-in command is its own name.
    bool ModuleIs(const char* aName) const;
    /// Is it that command, under any of its names? Case counts; null is no name.
    bool CommandIs(const char* aName) const;
    /// Is it that command of that module? See ModuleIs() and CommandIs().
    bool Is(const char* aModuleName, const char* aCommandName) const {
        return ModuleIs(aModuleName) && CommandIs(aCommandName);
    }
    /// Is it the built-in request to exit?
    bool IsExit() const;

    /// Returns the number of parameters, which is that of the declaration; 0 after an error.
    size_t GetParameterCount() const { return vxArray_GetCount(mParameters); }

    /// Returns a parameter.
    ///
    /// Asserts:  anIndex < vxArray_GetCount(mParameters); the handle is null then.
    vxRef<vxCLIParameter> Parameter(size_t anIndex) const;

    /// Returns the set that the command was looked up in; null when none was.
    vxRef<vxCLICommandSet> GetCLICommandSet() const;

    /// Did the line's first word begin with `!`?
    bool IsShortcut() const { return mfShortcutCommand; }

    /// A mark for the console front end, false at first; the library gives it no meaning.
    /// @{
    bool IsSecured() const { return mSecured; }
    void SetSecured(bool afSecured) { mSecured = afSecured; }
    /// @}

    /// Says what the line names; called by the manager. A null set has no module names.
    void SetInfo(const vxRef<vxCLICommandSet>& aSet, const vxCString& aModuleWord,
                 const vxCSVStringList& aCommandNames, bool afShortcut);

    /// Makes the command invalid, or valid by an empty text; called by the manager.
    void SetError(const vxCString& anError) { mError = anError; }

    /// Sets the typed parameters, retained vxCLIParameter; called by the manager.
    ///
    /// Owner:    the command, which replaces and frees an older array.
    void SetParameters(vxArray* aParameters);

private:
    vxRef<vxCLIManager> mCLIManager;
    vxRef<vxCLICommandSet> mCLICommandSet;  // may be null
    vxCString mInput;                       // the line as typed
    vxCString mError;                       // empty when valid
    vxArray* mParameters;                   // owned, of retained vxCLIParameter; may be null
    vxCString mModuleName;                  // the module word used
    vxCSVStringList mModuleNameList;        // all names of the module
    vxCSVStringList mCommandNameList;       // all names of the command
    bool mfShortcutCommand;
    bool mSecured;
};
