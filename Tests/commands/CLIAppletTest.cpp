#include "vx/CLIApplet.h"

#include <gmock/gmock.h>

#include "CLISupport.h"
#include "vx/CLICommand.h"
#include "vx/CLIManager.h"

namespace {

class Network : public vxCLIApplet {
public:
    explicit Network(const char* aNames) : vxCLIApplet(aNames) {
        GetCommandSet()->Add("show", "(count:ui32:10)", "list connections");
    }

    bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) override {
        if (!aCommand->CommandIs("show")) {
            return false;
        }
        mShown = aCommand->Parameter(0)->GetUInt32();
        return true;
    }

    uint32_t mShown = 0;
};

TEST(CLIAppletTest, ContributesAModule) {
    const vxRef<Network> theApplet = new Network("network,net");
    const vxRef<vxCLIManager> theManager = new vxCLIManager;
    EXPECT_FALSE(theApplet->GetCommandSet()->IsInternal());
    EXPECT_TRUE(theManager->Add(theApplet->GetCommandSet()));
    EXPECT_TRUE(theApplet->HandleCLICommand(theManager->Parse("net show 3")));
    EXPECT_EQ(theApplet->mShown, 3u);
    EXPECT_FALSE(theApplet->HandleCLICommand(theManager->Parse("exit")));
}

TEST(CLIAppletTest, AnExclamationMarkMakesAnInternalSet) {
    const vxRef<Network> theApplet = new Network("!");
    EXPECT_TRUE(theApplet->GetCommandSet()->IsInternal());
    EXPECT_FALSE(vxRef<Network>(new Network("!,x"))->GetCommandSet()->IsInternal());
    EXPECT_FALSE(vxRef<Network>(new Network(" !"))->GetCommandSet()->IsInternal());
}

TEST(CLIAppletTest, HasAnIdAndNothingToTerminate) {
    const vxRef<vxCLIApplet> theApplet = new Network("net");
    EXPECT_STREQ(theApplet->GetCLIAppletID(), "vxCLIApplet");
    theApplet->Terminate();
    EXPECT_FALSE(theApplet->GetCommandSet().IsNull());
}

}  // namespace
