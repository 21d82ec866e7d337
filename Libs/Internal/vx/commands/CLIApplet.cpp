// A component's command set, built with it.

#include "vx/CLIApplet.h"

#include "vx/CLICommand.h"

vxCLIApplet::vxCLIApplet(const vxCString& aModuleNames)
    : mCLICommandSet(aModuleNames == "!" ? new vxCLICommandSet
                                         : new vxCLICommandSet(aModuleNames)) {}

vxCLIApplet::~vxCLIApplet() = default;

const char* vxCLIApplet::GetCLIAppletID() {
    return "vxCLIApplet";
}

void vxCLIApplet::Terminate() {}
