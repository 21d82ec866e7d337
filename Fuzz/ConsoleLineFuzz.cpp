// Any lines give commands that are valid or have an error line, whatever module is entered.

#include <vx/CLICommand.h>
#include <vx/CLICommandSet.h>
#include <vx/CLIManager.h>

#include "Input.h"

namespace {

vxRef<vxCLIManager> MakeManager() {
    vxRef<vxCLIManager> theManager = new vxCLIManager;
    vxRef<vxCLICommandSet> theSet = new vxCLICommandSet("net,n");
    theSet->Add("show", "(limit:ui32:20[1,100])", "show");
    theSet->Add("set", "'on'", "switch on");
    theSet->Add("set", "level:ui8", "set the level");
    theSet->Add("say,tell", "text:...", "say it");
    theSet->Add("mix", "a:double b:char c:bool d:base64 (e:i64:-5)", "mix");
    theManager->Add(theSet);
    return theManager;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    const vxRef<vxCLIManager> theManager = MakeManager();
    while (!theInput.IsEmpty()) {
        const vxRef<vxCLICommand> theCommand = theManager->Parse(theInput.Line().c_str());
        vxfuzz::Expect(!theCommand.IsNull(), "a line gives a command");
        vxfuzz::Expect(theCommand->IsValid() == theCommand->GetError().IsEmpty(),
                       "valid means no error");
        if (theCommand->IsValid() && theCommand->ModuleIs("help") &&
            theCommand->CommandIs("help")) {
            theManager->GetHelp(theCommand);
        }
    }
    return 0;
}
