#pragma once

#include <libteskTools/Array.h>
#include <libteskTools/HashTable.h>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/Ref.h"
#include "vx/StringList.h"

/// The commands of one console module.
///
/// Commands are declared once, with the language of vxCLICommandValidator. One name may have several
/// overloads as long as the first typed word tells them apart. Declaration errors are collected and
/// shown when the set is added to a manager, which then refuses it.
///
///     vxRef<vxCLICommandSet> theSet = new vxCLICommandSet("network,net");
///     theSet->Add("show", "(count:ui32:10)", "list connections");
///     theSet->Add("set", "'on'", "switch on");
///     theSet->Add("set", "level:ui8[0,9]", "choose the level");
///     theManager->Add(theSet);
///
/// Owner:    its handles.
/// Threads:  one at a time.
class VX_EXPORT vxCLICommandSet : public vxRefCounted {
public:
    /// Makes the set of a module. The names are separated by commas, `\,` is a comma in a name;
    /// whitespace around a name and empty names are dropped. No name left is a declaration error.
    explicit vxCLICommandSet(const char* aModuleNames);

    /// Makes an internal set: its commands are typed without a module name.
    vxCLICommandSet();
    ~vxCLICommandSet() override;
    vxCLICommandSet(const vxCLICommandSet&) = delete;
    vxCLICommandSet& operator=(const vxCLICommandSet&) = delete;

    /// Declares a command under one or more names, separated as those of a module.
    ///
    /// Fails:    records an error, see GetError(), for a bad description, for no name, and for a name
    ///           that has a conflicting command; other names of the call are still declared.
    void Add(const vxCString& aCommandNames, const vxCString& aDescription, const vxCString& aHelp);

    /// Is a command declared under exactly this name? Null is no name.
    bool HasCommand(const char* aCommandName) const;

    /// Returns the number of declared entries; each name and each overload counts.
    size_t GetCommandCount() const;

    /// Are the commands typed without a module name?
    bool IsInternal() const { return mfInternal; }

    /// Returns the names of the module, trimmed; none for an internal set.
    const vxCSVStringList& GetModuleNameList() const { return mModuleNameList; }

    /// Returns all declaration errors, as lines; empty when all is well.
    vxCString GetError() const { return mError; }

    /// What the program attaches to the set; null at first.
    /// @{
    void SetUserData(const vxRef<vxUserData>& aUserData) { mUserData = aUserData; }
    vxRef<vxUserData> GetUserData() const { return mUserData; }
    /// @}

    /// Returns one line per name and overload, sorted by bytes.
    ///
    /// A line begins as one would type it: with `!` where `afShortcut` is set, then, in a module's
    /// set, `aModuleName` where `afDisplayModuleName` is set, else without both.
    vxCString GetHelp(const vxCString& aModuleName, bool afDisplayModuleName,
                      bool afShortcut) const;

    /// Checks a command with its parameters; the first word of `aText` is the command.
    ///
    /// The overloads are tried in the order of declaration, and the first that accepts wins.
    /// `aCommands` receives all names of that command. `anActiveModule`, `afShortcut` and
    /// `aModuleWord` only word the hints of error lines.
    ///
    /// Fails:    null, with an error line in `anError`: the last overload's, where there is one.
    /// Owner:    the caller, who ends the array of vxCLIParameter with vxArray_Delete().
    /// Cost:     linear in the text, for each overload tried.
    vxArray* Validate(const vxCString& anActiveModule, bool afShortcut,
                      const vxCString& aModuleWord, vxCString& aText, vxCSVStringList& aCommands,
                      vxCString& anError);

    /// The first name under which a manager registered the set; empty until then.
    /// @{
    const vxCString& _GetMainModuleName() const { return mMainModuleName; }
    void _SetMainModuleName(const vxCString& aName) { mMainModuleName = aName; }
    /// @}

private:
    void AddName(const vxCString& aCommandNames, const vxCString& aName,
                 const vxCString& aDescription, const vxCString& aHelp,
                 const vxCSVStringList& aNames);
    bool HasConflict(const vxCString& aName, const class vxCLICommandChecker* aChecker) const;
    void AddError(const vxCString& aContext, const vxCString& aMessage);

    vxCustomHashTable* mCommandHashTable;  // name to owned vxCLICommandChecker, with duplicates
    vxCSVStringList mModuleNameList;
    vxCString mCSVModuleNameList;  // the names as given
    vxCString mError;              // lines
    bool mfInternal;
    vxCString mMainModuleName;  // empty until registered
    vxRef<vxUserData> mUserData;
};
