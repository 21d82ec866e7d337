// A console of one module with two commands, fed with three lines.

#include <vx/vx.h>

#include <cstdio>

namespace {

class LampApplet : public vxCLIApplet {
public:
    LampApplet() : vxCLIApplet("lamp,l") {
        GetCommandSet()->Add("dim", "level:ui8[0,100]", "dim the lamp to a percentage");
        GetCommandSet()->Add("name", "text:...", "give the lamp a name");
    }

    bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) override {
        if (aCommand->CommandIs("dim")) {
            printf("level is now %u\n", aCommand->Parameter(0)->GetUInt8());
        } else {
            printf("name is now %s\n", aCommand->Parameter(0)->GetString().c_str());
        }
        return true;
    }
};

}  // namespace

int main() {
    vxRef<vxCLIManager> theManager = new vxCLIManager;
    vxRef<LampApplet> theLamp = new LampApplet;
    theManager->Add(theLamp->GetCommandSet());

    for (const char* theLine : {"lamp dim 40", "l name night light", "lamp dim 140"}) {
        vxRef<vxCLICommand> theCommand = theManager->Parse(theLine);
        if (theCommand->IsValid()) {
            theLamp->HandleCLICommand(theCommand);
        } else {
            printf("%s\n", theCommand->GetError().c_str());
        }
    }
    return 0;
}
