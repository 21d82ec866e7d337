#include "vx/CLICommandSet.h"

#include <gmock/gmock.h>

#include <string>

#include "CLISupport.h"
#include "vx/CLIParameter.h"

namespace {

std::string ErrorOf(const char* aModuleNames) {
    return std::string(vxCLICommandSet(aModuleNames).GetError());
}

std::string NamesOf(const char* aModuleNames) {
    return std::string(vxCLICommandSet(aModuleNames).GetModuleNameList().GetString('\\'));
}

TEST(CLICommandSetTest, ModuleNamesAreSplitAndTrimmed) {
    EXPECT_EQ(NamesOf("net"), "net");
    EXPECT_EQ(NamesOf("network,net"), "network,net");
    EXPECT_EQ(NamesOf("  network , net\t"), "network,net");
    EXPECT_EQ(NamesOf(",,net,, ,x,"), "net,x");
    EXPECT_EQ(NamesOf("a\\,b,c"), "a\\,b,c");
    const vxCLICommandSet theEscaped("a\\,b,c\\\\");
    ASSERT_EQ(theEscaped.GetModuleNameList().GetCount(), 2u);
    EXPECT_STREQ(theEscaped.GetModuleNameList().GetAt(0), "a,b");
    EXPECT_STREQ(theEscaped.GetModuleNameList().GetAt(1), "c\\\\");
    EXPECT_EQ(NamesOf("two words"), "two words");
    EXPECT_EQ(ErrorOf("net"), "");
}

TEST(CLICommandSetTest, AModuleNeedsAName) {
    EXPECT_EQ(ErrorOf(""), "  [empty]:\n    Module name is  empty\n");
    EXPECT_EQ(ErrorOf(" \t "), "  [empty]:\n    Module name is  empty\n");
    EXPECT_EQ(ErrorOf(NULL), "  [empty]:\n    Module name is  empty\n");
    EXPECT_EQ(ErrorOf(","), "  ,:\n    Module name is invalid\n");
    EXPECT_EQ(ErrorOf(" , , "), "  , ,:\n    Module name is invalid\n");
}

TEST(CLICommandSetTest, AnInternalSetHasNoNames) {
    const vxCLICommandSet theInternal;
    EXPECT_TRUE(theInternal.IsInternal());
    EXPECT_EQ(theInternal.GetModuleNameList().GetCount(), 0u);
    EXPECT_STREQ(theInternal.GetError(), "");
    EXPECT_FALSE(vxCLICommandSet("net").IsInternal());
}

TEST(CLICommandSetTest, EveryNameOfACommandIsAnEntry) {
    vxCLICommandSet theSet("net");
    theSet.Add(" show , list,,", "", "show all");
    theSet.Add("stop", "", "stop all");
    theSet.Add("on\\,off", "", "a name with a comma");
    EXPECT_STREQ(theSet.GetError(), "");
    EXPECT_TRUE(theSet.HasCommand("on,off"));
    EXPECT_EQ(theSet.GetCommandCount(), 4u);
    EXPECT_TRUE(theSet.HasCommand("show"));
    EXPECT_TRUE(theSet.HasCommand("list"));
    EXPECT_FALSE(theSet.HasCommand("Show"));
    EXPECT_FALSE(theSet.HasCommand(""));
    EXPECT_FALSE(theSet.HasCommand(NULL));
}

TEST(CLICommandSetTest, ACommandNeedsAName) {
    vxCLICommandSet theSet("net");
    theSet.Add("", "", "");
    theSet.Add(" , ", "", "");
    EXPECT_STREQ(theSet.GetError(),
                 "  net:\n"
                 "    Unable to add a command (the command name is empty)\n"
                 "     , : Unable to add a command (the command name is empty)\n");
    EXPECT_EQ(theSet.GetCommandCount(), 0u);
}

TEST(CLICommandSetTest, ABadDescriptionIsRecordedForEveryName) {
    vxCLICommandSet theSet("net,n");
    theSet.Add("show,s", "x:int", "");
    EXPECT_STREQ(theSet.GetError(),
                 "  net,n:\n"
                 "    show,s:     Invalid type description: 'int' in 'x:int'\n\n"
                 "    show,s:     Invalid type description: 'int' in 'x:int'\n\n");
    EXPECT_EQ(theSet.GetCommandCount(), 0u);
}

TEST(CLICommandSetTest, OverloadsThatConflictAreRefused) {
    vxCLICommandSet theSet("net");
    theSet.Add("set", "'on'", "");
    theSet.Add("set", "level:ui8", "");
    theSet.Add("other", "text:str", "");
    EXPECT_STREQ(theSet.GetError(), "");
    theSet.Add("set", "text:str", "");
    EXPECT_STREQ(theSet.GetError(),
                 "  net:\n"
                 "    set: Unable to add command 'set'. A command with the same name (and "
                 "potentially conflicting parameters) has already been added\n");
    EXPECT_EQ(theSet.GetCommandCount(), 3u);
}

TEST(CLICommandSetTest, OneNameInConflictLeavesTheOtherNames) {
    vxCLICommandSet theSet("net");
    theSet.Add("a", "", "");
    theSet.Add("a,b", "", "");
    EXPECT_TRUE(theSet.HasCommand("b"));
    EXPECT_EQ(theSet.GetCommandCount(), 2u);
    EXPECT_STREQ(theSet.GetError(),
                 "  net:\n"
                 "    a,b: Unable to add command 'a'. A command with the same name (and "
                 "potentially conflicting parameters) has already been added\n");
}

TEST(CLICommandSetTest, ANameThatIsGivenTwiceConflictsWithItself) {
    vxCLICommandSet theSet("net");
    theSet.Add("a,a,b", "'on'", "");
    EXPECT_EQ(theSet.GetCommandCount(), 2u);
    EXPECT_STREQ(theSet.GetError(),
                 "  net:\n"
                 "    a,a,b: Unable to add command 'a'. A command with the same name (and "
                 "potentially conflicting parameters) has already been added\n");
}

TEST(CLICommandSetTest, ErrorsOfAnInternalSetStandUnderEmpty) {
    vxCLICommandSet theSet;
    theSet.Add("", "", "");
    EXPECT_STREQ(theSet.GetError(),
                 "  [empty]:\n    Unable to add a command (the command name is empty)\n");
}

TEST(CLICommandSetTest, KeepsUserData) {
    class Data : public vxUserData {};
    vxCLICommandSet theSet("net");
    EXPECT_TRUE(theSet.GetUserData().IsNull());
    const vxRef<vxUserData> theData = new Data;
    theSet.SetUserData(theData);
    EXPECT_EQ(theSet.GetUserData().Get(), theData.Get());
}

class CLICommandSetHelpTest : public testing::Test {
protected:
    static void Fill(vxCLICommandSet& aSet) {
        aSet.Add("set", "level:ui8[0,9]", "choose the level");
        aSet.Add("set", "'on'", "switch on");
        aSet.Add("show,list", "(count:ui32)", "list all");
    }
};

TEST_F(CLICommandSetHelpTest, LinesAreSortedByBytes) {
    vxCLICommandSet theSet("net");
    Fill(theSet);
    theSet.Add("Zap", "", "zap it");
    EXPECT_STREQ(theSet.GetHelp("net", false, false),
                 "    Zap : zap it\n"
                 "    list (count) : list all\n"
                 "    set level[0,9] : choose the level\n"
                 "    set on : switch on\n"
                 "    show (count) : list all\n");
}

struct PrefixCase {
    bool mfInternal;
    bool mfDisplayModuleName;
    bool mfShortcut;
    const char* mHelp;
};

TEST_F(CLICommandSetHelpTest, ThePrefixIsWhatOneTypes) {
    const PrefixCase kCases[] = {
        {false, false, false, "    x : help\n"},    {false, false, true, "    x : help\n"},
        {false, true, false, "    net x : help\n"}, {false, true, true, "    !net x : help\n"},
        {true, false, false, "    x : help\n"},     {true, false, true, "    !x : help\n"},
        {true, true, false, "    x : help\n"},      {true, true, true, "    !x : help\n"},
    };
    for (const PrefixCase& theCase : kCases) {
        SCOPED_TRACE(testing::Message()
                     << theCase.mfInternal << theCase.mfDisplayModuleName << theCase.mfShortcut);
        const vxRef<vxCLICommandSet> theSet =
            theCase.mfInternal ? new vxCLICommandSet : new vxCLICommandSet("network");
        theSet->Add("x", "", "help");
        EXPECT_STREQ(theSet->GetHelp("net", theCase.mfDisplayModuleName, theCase.mfShortcut),
                     theCase.mHelp);
    }
}

class CLICommandSetValidateTest : public testing::Test {
protected:
    CLICommandSetValidateTest() {
        mSet->Add("set,s", "'on'", "");
        mSet->Add("set", "level:ui8", "");
        mSet->Add("none", "", "");
    }
    ~CLICommandSetValidateTest() override { vxArray_Delete(mParameters); }

    bool Validate(const char* aText, const char* anActive = "", bool afShortcut = false) {
        vxArray_Delete(mParameters);
        mText = aText;
        mError = "";
        mCommands.Reset();
        mParameters = mSet->Validate(anActive, afShortcut, "net", mText, mCommands, mError);
        EXPECT_EQ(mParameters == NULL, !mError.IsEmpty());
        return mParameters != NULL;
    }

    vxRef<vxCLICommandSet> mSet = new vxCLICommandSet("network,net");
    vxArray* mParameters = NULL;
    vxCString mText;
    vxCSVStringList mCommands;
    vxCString mError;
};

TEST_F(CLICommandSetValidateTest, TheFirstOverloadThatAcceptsWins) {
    EXPECT_TRUE(Validate("set on"));
    EXPECT_EQ(vxArray_GetCount(mParameters), 1u);
    EXPECT_STREQ(mCommands.GetString('\0'), "set,s");
    EXPECT_TRUE(Validate("set 5"));
    EXPECT_EQ(static_cast<vxCLIParameter*>(vxArray_At(mParameters, 0))->GetUInt8(), 5);
    EXPECT_STREQ(mCommands.GetString('\0'), "set");
    EXPECT_TRUE(Validate("s on"));
    EXPECT_STREQ(mText, "");
    EXPECT_TRUE(Validate("\"none\""));
    EXPECT_EQ(vxArray_GetCount(mParameters), 0u);
}

TEST_F(CLICommandSetValidateTest, TheLastOverloadsErrorStays) {
    EXPECT_FALSE(Validate("set x"));
    EXPECT_STREQ(mError, "ERROR: Invalid parameter 1: 'x'");
    EXPECT_FALSE(Validate("set on 5"));
    EXPECT_STREQ(mError, "ERROR: Invalid parameter 1: 'on'");
    EXPECT_STREQ(mText, "on 5");
    EXPECT_EQ(mCommands.GetCount(), 0u);
}

TEST_F(CLICommandSetValidateTest, ACommandIsAsked) {
    EXPECT_FALSE(Validate(""));
    EXPECT_STREQ(mError,
                 "ERROR: Please specify a command for module 'net'. Type 'help net' to display the "
                 "list of commands");
    EXPECT_FALSE(Validate("  ", "", true));
    EXPECT_STREQ(mError,
                 "ERROR: Please specify a command for module 'net'. Type '!help net' to display "
                 "the list of commands");
}

TEST_F(CLICommandSetValidateTest, AnUnknownCommandIsNamed) {
    EXPECT_FALSE(Validate("nosuch 1"));
    EXPECT_STREQ(mError,
                 "ERROR: Unknown command 'nosuch'. Type 'help net' to display the list of "
                 "commands");
    EXPECT_FALSE(Validate("nosuch", "other", true));
    EXPECT_STREQ(mError,
                 "ERROR: Unknown command 'nosuch'. Type '!help net' to display the list of "
                 "commands");
    EXPECT_FALSE(Validate("\"\"", "net", true));
    EXPECT_STREQ(mError, "ERROR: Unknown command ''. Type 'help' to display the list of commands");
}

}  // namespace
