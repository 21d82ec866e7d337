#pragma once

#include <functional>
#include <vector>

#include "CommandModule.h"
#include "vx/CLIManager.h"

namespace vxmedia {

/// Executes command lines: the built-in ones itself, all others through their module.
///
/// Threads:  one at a time.
class Interpreter {
public:
    explicit Interpreter(Console& aConsole);

    /// Adds the commands of a module.
    void AddModule(const vxRef<CommandModule>& aModule);

    /// Sets what the command "exit" calls.
    void SetExitCallback(std::function<void()> aCallback) { mExit = std::move(aCallback); }

    /// Returns whether "exit" was executed: no line is to follow.
    bool HasExited() const { return mfExited; }

    /// Returns whether the line is answered while a scan goes on, also where lines wait for its end:
    /// help, and what a module says. A line that begins with `!` is not.
    bool IsImmediate(const vxCString& aLine) const;

    /// Executes a line, prints what it answers or its error, and returns whether it succeeded.
    ///
    /// A scan that the line starts may go on when this returns.
    bool Execute(const vxCString& aLine);

private:
    bool Help(const vxRef<vxCLICommand>& aCommand);
    bool Dispatch(const vxRef<vxCLICommand>& aCommand);
    CommandModule* FindModule(const vxRef<vxCLICommand>& aCommand) const;

    Console& mConsole;
    vxRef<vxCLIManager> mManager;
    std::vector<vxRef<CommandModule>> mModules;
    std::function<void()> mExit;
    bool mfExited = false;
};

}  // namespace vxmedia
