#pragma once

#include "Console.h"
#include "vx/CLIApplet.h"
#include "vx/CLICommand.h"
#include "vx/CLICommandSet.h"
#include "vx/CLIParameter.h"

namespace vxmedia {

/// One module of commands: answers on the console, and says whether the command succeeded.
class CommandModule : public vxCLIApplet {
public:
    /// The module takes `aNames`, separated by commas; its commands are declared by the derived class.
    CommandModule(const char* aNames, Console& aConsole)
        : vxCLIApplet(aNames), mConsole(aConsole) {}

    /// Returns whether the command is answered while a scan goes on, also where lines wait for its end.
    virtual bool IsImmediate(const vxRef<vxCLICommand>&) const { return false; }

protected:
    /// Declares a command in the description language of the console.
    void Declare(const char* aNames, const char* aDescription, const char* aHelp) {
        GetCommandSet()->Add(aNames, aDescription, aHelp);
    }

    /// Prints the error, unless it is empty, and returns whether it is.
    bool Answer(const vxCString& anError) {
        if (!anError.IsEmpty()) {
            mConsole.PrintError(anError);
        }
        return anError.IsEmpty();
    }

    Console& mConsole;
};

}  // namespace vxmedia
