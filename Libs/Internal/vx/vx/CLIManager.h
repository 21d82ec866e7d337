#pragma once

#include <libteskTools/Array.h>
#include <libteskTools/HashTable.h>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/Ref.h"

class vxCLICommand;
class vxCLICommandSet;

/// The interpreter of one console: it knows the modules and turns typed lines into commands.
///
/// | Typed | Meaning |
/// |---|---|
/// | `module command words` | a command of a module |
/// | `!module` | enter the module: its commands need no module name from now on |
/// | `!` | leave the module |
/// | `!module command words` | a command of a module, also from within another |
/// | `help`, `help module`, `help !` | modules; commands of a module; built-in commands |
/// | `exit` | the request to exit |
/// | `!help`, `!exit` | built-in commands from within a module |
///
/// Inside a module, plain `help` lists that module's commands. Tabs count as blanks.
///
/// Owner:    its handles; commands hold one, so keep the manager in a vxRef.
/// Threads:  one at a time.
class VX_EXPORT vxCLIManager : public vxRefCounted {
public:
    /// Knows the built-in commands "help" and "exit".
    vxCLIManager();
    ~vxCLIManager() override;
    vxCLIManager(const vxCLIManager&) = delete;
    vxCLIManager& operator=(const vxCLIManager&) = delete;

    /// Registers a set under all its module names, or its commands as built-in ones.
    ///
    /// A set with declaration errors is not registered. A name that is taken, by a module or by a
    /// built-in command, is left out. Errors go to the log and to the console, together with all
    /// earlier ones.
    ///
    /// Fails:    false as soon as any registration since the manager was made has failed: programs
    ///           register all their sets and look at the last result.
    bool Add(const vxRef<vxCLICommandSet>& aCommandSet);

    /// Takes out what this very set was registered as; an active module that goes is left.
    void Remove(const vxRef<vxCLICommandSet>& aCommandSet);

    /// Interprets a line; the result is never null and tells itself whether it is valid.
    ///
    /// Cost:     linear in the line, for each overload tried.
    vxRef<vxCLICommand> Parse(const vxCString& aLine);

    /// Returns the text that answers a "help" command, as lines, or an error line.
    ///
    /// Asserts:  aCommand->ModuleIs("help"); the text is empty then.
    vxCString GetHelp(const vxRef<vxCLICommand>& aCommand) const;

    /// Returns the module that was entered, or the empty text.
    const vxCString& GetActiveModuleName() const { return mActiveModuleName; }

private:
    struct Line;

    void RegisterModule(const vxRef<vxCLICommandSet>& aCommandSet);
    bool NoSuchModule(const char* aName) const;
    vxRef<vxCLICommandSet> GetModule(const char* aName) const;
    vxRef<vxCLICommandSet> GetInternalCommandSet(const char* aCommandName) const;
    vxCString GetInternalCommandSetHelp(bool afShortcut) const;
    vxCString GetModuleListHelp() const;
    void AddError(const vxCString& aText);
    void ReadFirstWord(Line& aLine);
    void ReadShortcut(Line& aLine);
    vxRef<vxCLICommandSet> Lookup(const vxCString& anInput, Line& aLine) const;
    /// Returns what hints put before "help": within a module the built-in command needs a `!`.
    const char* HelpPrefix() const { return mActiveModuleName.IsEmpty() ? "" : "!"; }

    vxCustomHashTable* mCommandHashTable;        // module name to retained vxCLICommandSet
    vxArray* mInternalCommandArray;              // retained vxCLICommandSet
    vxRef<vxCLICommandSet> mInternalCommandSet;  // "help" and "exit"
    vxCString mError;                            // lines; never cleared
    vxCString mActiveModuleName;                 // empty: none
    bool mfNewError;                             // the last Add() added an error
};
