#include "vx/CLICommand.h"

#include <gmock/gmock.h>

#include "CLISupport.h"
#include "support/Reports.h"
#include "vx/CLICommandSet.h"
#include "vx/CLIManager.h"

namespace {

using testing::ElementsAre;

class CLICommandTest : public testing::Test {
protected:
    vxRef<vxCLIManager> mManager = new vxCLIManager;
    vxRef<vxCLICommandSet> mSet = new vxCLICommandSet("network,net");
    vxRef<vxCLICommand> mCommand = new vxCLICommand(mManager, "typed line");
};

TEST_F(CLICommandTest, StartsValidAndEmpty) {
    EXPECT_TRUE(mCommand->IsValid());
    EXPECT_STREQ(mCommand->GetError(), "");
    EXPECT_STREQ(mCommand->GetInput(), "typed line");
    EXPECT_EQ(mCommand->GetParameterCount(), 0u);
    EXPECT_TRUE(mCommand->GetCLICommandSet().IsNull());
    EXPECT_FALSE(mCommand->ModuleIs("net"));
    EXPECT_FALSE(mCommand->CommandIs("show"));
    EXPECT_FALSE(mCommand->IsExit());
    EXPECT_FALSE(mCommand->IsSecured());
    EXPECT_FALSE(mCommand->IsShortcut());
}

TEST_F(CLICommandTest, AnswersToEveryNameInItsCase) {
    mCommand->SetInfo(mSet, "typed", vxCSVStringList("show,list", 0), true);
    for (const char* theName : {"typed", "network", "net"}) {
        EXPECT_TRUE(mCommand->ModuleIs(theName)) << theName;
    }
    for (const char* theName : {"Net", "", "network,net"}) {
        EXPECT_FALSE(mCommand->ModuleIs(theName)) << theName;
    }
    EXPECT_TRUE(mCommand->CommandIs("show"));
    EXPECT_TRUE(mCommand->CommandIs("list"));
    EXPECT_FALSE(mCommand->CommandIs("Show"));
    EXPECT_FALSE(mCommand->ModuleIs(NULL));
    EXPECT_FALSE(mCommand->CommandIs(NULL));
    EXPECT_TRUE(mCommand->Is("net", "list"));
    EXPECT_FALSE(mCommand->Is("net", "nosuch"));
    EXPECT_FALSE(mCommand->Is("other", "list"));
    EXPECT_EQ(mCommand->GetCLICommandSet().Get(), mSet.Get());
    EXPECT_TRUE(mCommand->IsShortcut());
}

TEST_F(CLICommandTest, InformationWithoutASetForgetsTheModuleNames) {
    mCommand->SetInfo(mSet, "net", vxCSVStringList("show", 0), false);
    mCommand->SetInfo(0, "other", vxCSVStringList(), false);
    EXPECT_FALSE(mCommand->ModuleIs("network"));
    EXPECT_TRUE(mCommand->ModuleIs("other"));
    EXPECT_FALSE(mCommand->CommandIs("show"));
    EXPECT_TRUE(mCommand->GetCLICommandSet().IsNull());
}

TEST_F(CLICommandTest, ExitHasNoParameters) {
    mCommand->SetInfo(0, "exit", vxCSVStringList("exit", 0), false);
    EXPECT_TRUE(mCommand->IsExit());
    vxArray* theParameters = vxCLIParameter::NewArray();
    vxCLIParameter* theParameter = new vxCLIParameter("now");
    theParameter->Retain(NULL);
    vxArray_Append(theParameters, theParameter);
    mCommand->SetParameters(theParameters);
    EXPECT_FALSE(mCommand->IsExit());
}

TEST_F(CLICommandTest, ParametersAreSharedAndReplaced) {
    vxArray* theParameters = vxCLIParameter::NewArray();
    const vxRef<vxCLIParameter> theParameter = new vxCLIParameter("now");
    theParameter->Retain(NULL);
    vxArray_Append(theParameters, theParameter.Get());
    mCommand->SetParameters(theParameters);
    mCommand->SetParameters(theParameters);
    EXPECT_EQ(mCommand->GetParameterCount(), 1u);
    EXPECT_EQ(mCommand->Parameter(0).Get(), theParameter.Get());
    mCommand->SetParameters(NULL);
    EXPECT_EQ(mCommand->GetParameterCount(), 0u);
    EXPECT_EQ(theParameter->_GetRefCount(), 1);
}

TEST_F(CLICommandTest, AParameterBeyondTheLastIsReported) {
    vxtest::Reports theReports;
    EXPECT_TRUE(mCommand->Parameter(0).IsNull());
    EXPECT_THAT(theReports.Assertions(), ElementsAre("anIndex < vxArray_GetCount(mParameters)"));
}

TEST_F(CLICommandTest, AnErrorMakesItInvalid) {
    mCommand->SetError("ERROR: no");
    EXPECT_FALSE(mCommand->IsValid());
    EXPECT_STREQ(mCommand->GetError(), "ERROR: no");
}

TEST_F(CLICommandTest, CarriesTheMarkOfTheFrontEnd) {
    mCommand->SetSecured(true);
    EXPECT_TRUE(mCommand->IsSecured());
    mCommand->SetSecured(false);
    EXPECT_FALSE(mCommand->IsSecured());
}

}  // namespace
