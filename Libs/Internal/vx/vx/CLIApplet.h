#pragma once

#include "vx/Api.h"
#include "vx/CLICommandSet.h"
#include "vx/CString.h"
#include "vx/Ref.h"

class vxCLICommand;

/// Base of a program's component that contributes one console module.
///
///     class NetworkConsole : public vxCLIApplet {
///     public:
///         NetworkConsole() : vxCLIApplet("network,net") {
///             GetCommandSet()->Add("show", "(count:ui32:10)", "list connections");
///         }
///         bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) override;
///     };
///
/// Owner:    its handles.
/// Threads:  one at a time.
class VX_EXPORT vxCLIApplet : public vxRefCounted {
public:
    /// Makes the component's set: a module with these names, or an internal set where they are "!".
    explicit vxCLIApplet(const vxCString& aModuleNames);

    /// Executes a command of the component's module; false when it is none of its commands.
    virtual bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) = 0;

    /// Returns a name for the kind of component: "vxCLIApplet", unless overridden.
    virtual const char* GetCLIAppletID();

    /// Called by the program before it lets go of the component; does nothing, unless overridden.
    virtual void Terminate();

    ~vxCLIApplet() override;

    /// Returns the set of the component's commands, never null, to declare them in.
    vxRef<vxCLICommandSet> GetCommandSet() const { return mCLICommandSet; }

private:
    vxRef<vxCLICommandSet> mCLICommandSet;  // never null
};
