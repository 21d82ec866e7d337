#include "vx/CLIManager.h"

#include <gmock/gmock.h>

#include <random>
#include <string>

#include "CLISupport.h"
#include "support/Growth.h"
#include "support/Reports.h"
#include "vx/CLICommand.h"
#include "vx/CLICommandSet.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CLIManagerTest : public testing::Test {
protected:
    CLIManagerTest() {
        mNet->Add("show", "(count:ui32:10)", "list connections");
        mNet->Add("set", "'on'", "switch on");
        mNet->Add("set", "level:ui8", "choose the level");
        mNet->Add("say", "msg:...", "say it");
        EXPECT_TRUE(mManager->Add(mNet));
    }

    vxRef<vxCLICommandSet> AddModule(const char* aNames) {
        const vxRef<vxCLICommandSet> theSet = new vxCLICommandSet(aNames);
        theSet->Add("go", "", "go on");
        mManager->Add(theSet);
        return theSet;
    }

    std::string ErrorOf(const char* aLine) {
        return std::string(mManager->Parse(aLine)->GetError());
    }

    std::string HelpOf(const char* aLine) {
        const vxRef<vxCLICommand> theCommand = mManager->Parse(aLine);
        EXPECT_STREQ(theCommand->GetError(), "") << aLine;
        return std::string(mManager->GetHelp(theCommand));
    }

    vxRef<vxCLIManager> mManager = new vxCLIManager;
    vxRef<vxCLICommandSet> mNet = new vxCLICommandSet("network,net");
};

TEST_F(CLIManagerTest, ALineNamesModuleCommandAndParameters) {
    const vxRef<vxCLICommand> theCommand = mManager->Parse("net show 7");
    EXPECT_TRUE(theCommand->IsValid());
    EXPECT_STREQ(theCommand->GetInput(), "net show 7");
    EXPECT_TRUE(theCommand->Is("net", "show"));
    EXPECT_TRUE(theCommand->Is("network", "show"));
    EXPECT_EQ(theCommand->GetCLICommandSet().Get(), mNet.Get());
    ASSERT_EQ(theCommand->GetParameterCount(), 1u);
    EXPECT_EQ(theCommand->Parameter(0)->GetUInt32(), 7u);
    EXPECT_FALSE(theCommand->IsShortcut());
}

TEST_F(CLIManagerTest, OverloadsAreTriedInOrder) {
    EXPECT_TRUE(mManager->Parse("net set on")->Parameter(0)->Is("on", true));
    EXPECT_EQ(mManager->Parse("net set 5")->Parameter(0)->GetUInt8(), 5);
    const vxRef<vxCLICommand> theWrong = mManager->Parse("net set x");
    EXPECT_STREQ(theWrong->GetError(), "ERROR: Invalid parameter 1: 'x'");
    EXPECT_EQ(theWrong->GetCLICommandSet().Get(), mNet.Get());
    EXPECT_EQ(theWrong->GetParameterCount(), 0u);
    EXPECT_TRUE(theWrong->ModuleIs("network"));
    EXPECT_FALSE(theWrong->CommandIs("set"));
}

TEST_F(CLIManagerTest, ABlankLineIsAnEmptyCommand) {
    for (const char* theLine : {"", "   ", "\t \t", "\"\"", "''"}) {
        const vxRef<vxCLICommand> theCommand = mManager->Parse(theLine);
        EXPECT_TRUE(theCommand->IsValid()) << theLine;
        EXPECT_TRUE(theCommand->GetCLICommandSet().IsNull()) << theLine;
        EXPECT_STREQ(theCommand->GetInput(), theLine);
    }
}

TEST_F(CLIManagerTest, TabsAreBlanks) {
    const vxRef<vxCLICommand> theCommand = mManager->Parse("\tnet\tshow\t7\t");
    EXPECT_TRUE(theCommand->IsValid());
    EXPECT_EQ(theCommand->Parameter(0)->GetUInt32(), 7u);
    EXPECT_STREQ(mManager->Parse("net say a\tb")->Parameter(0)->GetString(), "a b");
}

TEST_F(CLIManagerTest, QuotesGroupWords) {
    EXPECT_TRUE(mManager->Parse("\"net\" 'show' \"7\"")->IsValid());
    EXPECT_STREQ(mManager->Parse("net say 'a b' c")->Parameter(0)->GetString(), "'a b' c");
}

struct ErrorCase {
    const char* mLine;
    const char* mError;
};

constexpr ErrorCase kErrorCases[] = {
    {"nosuch", "ERROR: Unknown module 'nosuch'. Type 'help' to display the list of modules"},
    {"nosuch x y", "ERROR: Unknown module 'nosuch'. Type 'help' to display the list of modules"},
    {"!nosuch", "ERROR: Unknown module 'nosuch'. Type 'help' to display the list of modules"},
    {"!nosuch x", "ERROR: Unknown module 'nosuch'. Type 'help' to display the list of modules"},
    {"! x", "ERROR: Invalid command"},
    {"! net", "ERROR: Invalid command"},
    {"net",
     "ERROR: Please specify a command for module 'net'. Type 'help net' to display the list of "
     "commands"},
    {"net nosuch",
     "ERROR: Unknown command 'nosuch'. Type 'help net' to display the list of commands"},
    {"!net nosuch",
     "ERROR: Unknown command 'nosuch'. Type '!help net' to display the list of commands"},
    {"net show x", "ERROR: Invalid parameter 1: 'x'"},
    {"net show 1 2", "ERROR: Too many parameters"},
    {"exit now", "ERROR: Too many parameters"},
    {"help net x", "ERROR: Too many parameters"},
    {"Help", "ERROR: Unknown module 'Help'. Type 'help' to display the list of modules"},
};

TEST_F(CLIManagerTest, WrongLinesAreAnsweredWithOneErrorLine) {
    for (const ErrorCase& theCase : kErrorCases) {
        SCOPED_TRACE(theCase.mLine);
        EXPECT_EQ(ErrorOf(theCase.mLine), theCase.mError);
        EXPECT_FALSE(mManager->Parse(theCase.mLine)->IsValid());
        EXPECT_STREQ(mManager->GetActiveModuleName(), "");
    }
}

TEST_F(CLIManagerTest, AModuleIsEnteredAndLeft) {
    EXPECT_TRUE(mManager->Parse("!net")->IsValid());
    EXPECT_STREQ(mManager->GetActiveModuleName(), "net");
    const vxRef<vxCLICommand> theCommand = mManager->Parse("show 1");
    EXPECT_TRUE(theCommand->Is("net", "show"));
    EXPECT_EQ(theCommand->Parameter(0)->GetUInt32(), 1u);
    EXPECT_TRUE(mManager->Parse("!")->IsValid());
    EXPECT_STREQ(mManager->GetActiveModuleName(), "");
    EXPECT_EQ(ErrorOf("show 1"),
              "ERROR: Unknown module 'show'. Type 'help' to display the list of modules");
    EXPECT_TRUE(mManager->Parse(" ! ")->IsValid());
}

TEST_F(CLIManagerTest, EnteringIsNoCommand) {
    const vxRef<vxCLICommand> theCommand = mManager->Parse("!net");
    EXPECT_TRUE(theCommand->GetCLICommandSet().IsNull());
    EXPECT_TRUE(theCommand->IsShortcut());
    EXPECT_FALSE(theCommand->CommandIs("net"));
}

TEST_F(CLIManagerTest, InsideAModuleItsCommandsComeFirst) {
    AddModule("other");
    mManager->Parse("!network");
    EXPECT_EQ(ErrorOf("other go"),
              "ERROR: Unknown command 'other'. Type 'help' to display the list of commands");
    EXPECT_EQ(ErrorOf("exit"),
              "ERROR: Unknown command 'exit'. Type 'help' to display the list of commands");
    EXPECT_EQ(ErrorOf("! x"), "ERROR: Invalid command");
    EXPECT_EQ(ErrorOf("!nosuch"),
              "ERROR: Unknown module 'nosuch'. Type '!help' to display the list of modules");
    EXPECT_STREQ(mManager->GetActiveModuleName(), "network");
}

TEST_F(CLIManagerTest, AShortcutReachesOtherModulesAndBuiltInCommands) {
    AddModule("other");
    mManager->Parse("!net");
    const vxRef<vxCLICommand> theCommand = mManager->Parse("!other go");
    EXPECT_TRUE(theCommand->Is("other", "go"));
    EXPECT_TRUE(theCommand->IsShortcut());
    EXPECT_STREQ(mManager->GetActiveModuleName(), "net");
    EXPECT_TRUE(mManager->Parse("!exit")->IsExit());
    EXPECT_EQ(ErrorOf("!other nosuch"),
              "ERROR: Unknown command 'nosuch'. Type '!help other' to display the list of "
              "commands");
    EXPECT_EQ(ErrorOf("!net nosuch"),
              "ERROR: Unknown command 'nosuch'. Type 'help' to display the list of commands");
    EXPECT_TRUE(mManager->Parse("!other")->IsValid());
    EXPECT_STREQ(mManager->GetActiveModuleName(), "other");
}

TEST_F(CLIManagerTest, InsideAModuleTheLineIsTakenAsTyped) {
    mManager->Parse("!net");
    EXPECT_STREQ(mManager->Parse("say a\tb")->Parameter(0)->GetString(), "a\tb");
}

TEST_F(CLIManagerTest, ExitIsARequest) {
    const vxRef<vxCLICommand> theExit = mManager->Parse("exit");
    EXPECT_TRUE(theExit->IsExit());
    EXPECT_TRUE(theExit->Is("exit", "exit"));
    EXPECT_TRUE(mManager->Parse("!exit")->IsExit());
    EXPECT_FALSE(mManager->Parse("exit now")->IsExit());
    EXPECT_FALSE(mManager->Parse("help")->IsExit());
    mNet->Add("exit", "", "leave the net");
    const vxRef<vxCLICommand> theOther = mManager->Parse("net exit");
    EXPECT_TRUE(theOther->Is("net", "exit"));
    EXPECT_FALSE(theOther->IsExit());
}

TEST_F(CLIManagerTest, HelpListsModulesOnceInTheOrderOfRegistration) {
    AddModule("zoo");
    AddModule("abc,a");
    EXPECT_EQ(HelpOf("help"),
              "Available modules:\n"
              "    !\n"
              "    network,net\n"
              "    zoo\n"
              "    abc,a\n");
    EXPECT_EQ(HelpOf("help ''"), HelpOf("help"));
}

constexpr char kNetHelp[] =
    "    net say msg : say it\n"
    "    net set level : choose the level\n"
    "    net set on : switch on\n"
    "    net show (count) : list connections\n";

TEST_F(CLIManagerTest, HelpOfAModuleShowsWhatToType) {
    EXPECT_EQ(HelpOf("help net"), kNetHelp);
    EXPECT_EQ(HelpOf("!help net"),
              "    !net say msg : say it\n"
              "    !net set level : choose the level\n"
              "    !net set on : switch on\n"
              "    !net show (count) : list connections\n");
}

TEST_F(CLIManagerTest, HelpInsideAModuleListsItsCommands) {
    const char kInside[] =
        "    say msg : say it\n"
        "    set level : choose the level\n"
        "    set on : switch on\n"
        "    show (count) : list connections\n";
    mManager->Parse("!net");
    EXPECT_EQ(HelpOf("help"), kInside);
    EXPECT_EQ(HelpOf("!help net"), kInside);
    EXPECT_EQ(ErrorOf("help net"), "ERROR: Too many parameters");
    EXPECT_EQ(HelpOf("!help"), "Available modules:\n    !\n    network,net\n");
    // under its other name the module is not the one entered
    EXPECT_EQ(HelpOf("!help network").substr(0, 17), "    !network say ");
}

TEST_F(CLIManagerTest, HelpOfTheBuiltInCommands) {
    EXPECT_EQ(HelpOf("help !"),
              "    exit : request to exit the application\n"
              "    help (module) : display help\n");
    EXPECT_EQ(HelpOf("!help !"),
              "    !exit : request to exit the application\n"
              "    !help (module) : display help\n");
    const vxRef<vxCLICommandSet> theInternal = new vxCLICommandSet;
    theInternal->Add("about", "", "tell the version");
    EXPECT_TRUE(mManager->Add(theInternal));
    EXPECT_EQ(HelpOf("help !"),
              "    exit : request to exit the application\n"
              "    help (module) : display help\n"
              "    about : tell the version\n");
}

TEST_F(CLIManagerTest, HelpOfAnUnknownModuleIsAnError) {
    EXPECT_EQ(HelpOf("help nosuch"),
              "ERROR: Module 'nosuch' is unknown. Type 'help' to display the list of modules");
    mManager->Parse("!net");
    EXPECT_EQ(HelpOf("!help nosuch"),
              "ERROR: Module 'nosuch' is unknown. Type '!help' to display the list of modules");
}

TEST_F(CLIManagerTest, HelpAnswersHelpCommandsOnly) {
    vxtest::Reports theReports;
    EXPECT_STREQ(mManager->GetHelp(mManager->Parse("net show")), "");
    EXPECT_STREQ(mManager->GetHelp(0), "");
    EXPECT_STREQ(mManager->GetHelp(mManager->Parse("help net x")), "");
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("aCommand->ModuleIs(\"help\")", "aCommand->ModuleIs(\"help\")"));
}

TEST_F(CLIManagerTest, HelpInsideAModuleWithBlanksInItsName) {
    AddModule("two words");
    AddModule("a \"b\" c");
    EXPECT_EQ(ErrorOf("!\"two words\""),
              "ERROR: Unknown module '\"two words\"'. Type 'help' to display the list of modules");
    mManager->Parse("'!two words'");
    EXPECT_STREQ(mManager->GetActiveModuleName(), "two words");
    EXPECT_EQ(HelpOf("help"), "    go : go on\n");
    mManager->Parse("'!a \"b\" c'");
    EXPECT_STREQ(mManager->GetActiveModuleName(), "a \"b\" c");
    EXPECT_EQ(HelpOf("help"), "    go : go on\n");
}

TEST_F(CLIManagerTest, HelpInsideAModuleWithQuotesInItsName) {
    for (const char* theName : {"'quoted'", "\"doubly\"", "it's", "6\""}) {
        SCOPED_TRACE(theName);
        AddModule(theName);
        EXPECT_TRUE(mManager->Parse(vxCString("!") + theName)->IsValid());
        EXPECT_STREQ(mManager->GetActiveModuleName(), theName);
        EXPECT_EQ(HelpOf("help"), "    go : go on\n");
        EXPECT_EQ(ErrorOf("help x"), "ERROR: Too many parameters");
    }
}

TEST_F(CLIManagerTest, InternalCommandsNeedNoModule) {
    const vxRef<vxCLICommandSet> theInternal = new vxCLICommandSet;
    theInternal->Add("about,version", "(topic:str)", "tell the version");
    theInternal->Add("two words", "n:ui8", "count");
    EXPECT_TRUE(mManager->Add(theInternal));
    const vxRef<vxCLICommand> theCommand = mManager->Parse("about net");
    EXPECT_TRUE(theCommand->Is("about", "version"));
    EXPECT_STREQ(theCommand->Parameter(0)->GetString(), "net");
    EXPECT_EQ(mManager->Parse("'two words' 5")->Parameter(0)->GetUInt8(), 5);
    EXPECT_EQ(theInternal->_GetRefCount(), 3);  // the test, the manager and theCommand
    mManager->Parse("!net");
    EXPECT_TRUE(mManager->Parse("!about")->IsValid());
    mManager->Remove(theInternal);
    EXPECT_EQ(theInternal->_GetRefCount(), 2);
    EXPECT_STREQ(mManager->GetActiveModuleName(), "net");
    mManager->Parse("!");
    EXPECT_EQ(ErrorOf("about"),
              "ERROR: Unknown module 'about'. Type 'help' to display the list of modules");
}

TEST_F(CLIManagerTest, ATakenNameMakesEveryLaterAddFalse) {
    vxtest::Reports theReports;
    const vxRef<vxCLICommandSet> theHelp = new vxCLICommandSet("help");
    EXPECT_FALSE(mManager->Add(theHelp));
    const char kFirst[] = "Unable to add module 'help' (this module name has already been added)\n";
    EXPECT_EQ(theReports.Console(), kFirst);
    EXPECT_THAT(theReports.LogTexts(), ElementsAre(kFirst));
    theReports.Clear();

    const vxRef<vxCLICommandSet> theGood = new vxCLICommandSet("good");
    theGood->Add("go", "", "");
    EXPECT_FALSE(mManager->Add(theGood));
    EXPECT_EQ(theReports.Console(), "");
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    EXPECT_TRUE(mManager->Parse("good go")->IsValid());

    EXPECT_FALSE(mManager->Add(new vxCLICommandSet("fresh,net,exit")));
    EXPECT_EQ(theReports.Console(),
              "Unable to add module 'help' (this module name has already been added)\n"
              "Unable to add module 'net' (this module name has already been added)\n"
              "Unable to add module 'exit' (this module name has already been added)\n");
    EXPECT_EQ(ErrorOf("fresh"),
              "ERROR: Please specify a command for module 'fresh'. Type 'help fresh' to display "
              "the list of commands");
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST_F(CLIManagerTest, ANameThatIsGivenTwiceIsTakenTheSecondTime) {
    vxtest::Reports theReports;
    const vxRef<vxCLICommandSet> theSet = new vxCLICommandSet("zoo,zoo");
    EXPECT_FALSE(mManager->Add(theSet));
    EXPECT_EQ(theReports.Console(),
              "Unable to add module 'zoo' (this module name has already been added)\n");
    EXPECT_EQ(theSet->_GetRefCount(), 2);
    EXPECT_EQ(HelpOf("help"), "Available modules:\n    !\n    network,net\n    zoo,zoo\n");
    mManager->Remove(theSet);
    EXPECT_EQ(theSet->_GetRefCount(), 1);
}

TEST_F(CLIManagerTest, TheFirstWordDecidesWithItsQuotesTaken) {
    const vxRef<vxCLICommand> theEmpty = mManager->Parse("'' net show");
    EXPECT_TRUE(theEmpty->IsValid());
    EXPECT_TRUE(theEmpty->GetCLICommandSet().IsNull());
    EXPECT_EQ(ErrorOf("'net show'"),
              "ERROR: Unknown module 'net show'. Type 'help' to display the list of modules");
    EXPECT_EQ(ErrorOf("net'x'"),
              "ERROR: Unknown module 'net'x''. Type 'help' to display the list of modules");
    EXPECT_EQ(ErrorOf("!!"),
              "ERROR: Unknown module '!'. Type 'help' to display the list of modules");
    EXPECT_EQ(ErrorOf("'!' net"), "ERROR: Invalid command");
    EXPECT_TRUE(mManager->Parse("\"!net\"")->IsValid());
    EXPECT_STREQ(mManager->GetActiveModuleName(), "net");
    EXPECT_TRUE(mManager->Parse("''")->GetCLICommandSet().IsNull());
    EXPECT_TRUE(mManager->Parse("\"!\"")->IsValid());
    EXPECT_STREQ(mManager->GetActiveModuleName(), "");
}

TEST_F(CLIManagerTest, ASetWithErrorsIsNotRegistered) {
    vxtest::Reports theReports;
    const vxRef<vxCLICommandSet> theSet = new vxCLICommandSet("bad");
    theSet->Add("go", "", "");
    theSet->Add("stop", "x:int", "");
    EXPECT_FALSE(mManager->Add(theSet));
    EXPECT_EQ(theReports.Console(),
              "  bad:\n    stop:     Invalid type description: 'int' in 'x:int'\n\n");
    EXPECT_EQ(ErrorOf("bad go"),
              "ERROR: Unknown module 'bad'. Type 'help' to display the list of modules");
}

TEST_F(CLIManagerTest, AnInternalSetWithErrorsIsNotRegistered) {
    vxtest::Reports theReports;
    const vxRef<vxCLICommandSet> theSet = new vxCLICommandSet;
    theSet->Add("about", "", "");
    theSet->Add("stop", "x:int", "");
    EXPECT_FALSE(mManager->Add(theSet));
    EXPECT_EQ(theReports.Console(),
              "  [empty]:\n    stop:     Invalid type description: 'int' in 'x:int'\n\n");
    EXPECT_THAT(theReports.LogTexts(), ElementsAre(theReports.Console()));
    EXPECT_EQ(ErrorOf("about"),
              "ERROR: Unknown module 'about'. Type 'help' to display the list of modules");
    EXPECT_EQ(theSet->_GetRefCount(), 1);
}

TEST_F(CLIManagerTest, ANullSetIsReported) {
    vxtest::Reports theReports;
    EXPECT_FALSE(mManager->Add(0));
    mManager->Remove(0);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("!aCommandSet.IsNull()", "!aCommandSet.IsNull()"));
    EXPECT_TRUE(mManager->Add(new vxCLICommandSet("later")));
}

TEST_F(CLIManagerTest, TheMainNameIsTheFirstThatWasFree) {
    vxtest::Reports theReports;
    mManager->Add(new vxCLICommandSet("net,lan"));
    EXPECT_EQ(HelpOf("help"), "Available modules:\n    !\n    network,net\n    net,lan\n");
    EXPECT_STREQ(mNet->_GetMainModuleName(), "network");
}

TEST_F(CLIManagerTest, RemovingAModuleLeavesIt) {
    mManager->Parse("!net");
    mManager->Remove(mNet);
    EXPECT_STREQ(mManager->GetActiveModuleName(), "");
    EXPECT_EQ(ErrorOf("network show"),
              "ERROR: Unknown module 'network'. Type 'help' to display the list of modules");
    EXPECT_EQ(mNet->_GetRefCount(), 1);
    EXPECT_TRUE(mManager->Add(mNet));
    EXPECT_EQ(mNet->_GetRefCount(), 3);
    EXPECT_TRUE(mManager->Parse("net show")->IsValid());
}

TEST_F(CLIManagerTest, RemovingTakesOutThatVerySetOnly) {
    vxtest::Reports theReports;
    const vxRef<vxCLICommandSet> theOther = new vxCLICommandSet("net,lan");
    mManager->Add(theOther);
    mManager->Parse("!net");
    mManager->Remove(theOther);
    EXPECT_STREQ(mManager->GetActiveModuleName(), "net");
    EXPECT_TRUE(mManager->Parse("show")->IsValid());
    mManager->Parse("!");
    EXPECT_EQ(ErrorOf("lan"),
              "ERROR: Unknown module 'lan'. Type 'help' to display the list of modules");
    mManager->Remove(theOther);
}

TEST_F(CLIManagerTest, NamesWithCommasAreListedAsTheyAre) {
    AddModule("a\\,b,c");
    EXPECT_EQ(HelpOf("help"), "Available modules:\n    !\n    network,net\n    a,b,c\n");
    EXPECT_TRUE(mManager->Parse("a,b go")->IsValid());
}

TEST_F(CLIManagerTest, AManagerLetsGoOfItsSetsWhenItGoes) {
    const vxRef<vxCLICommandSet> theInternal = new vxCLICommandSet;
    EXPECT_TRUE(mManager->Add(theInternal));
    EXPECT_EQ(theInternal->_GetRefCount(), 2);
    EXPECT_EQ(mNet->_GetRefCount(), 3);
    mManager = 0;
    EXPECT_EQ(theInternal->_GetRefCount(), 1);
    EXPECT_EQ(mNet->_GetRefCount(), 1);
}

TEST_F(CLIManagerTest, ACommandKeepsManagerAndSetAlive) {
    vxRef<vxCLICommand> theCommand = mManager->Parse("net show");
    EXPECT_EQ(mManager->_GetRefCount(), 2);
    mManager->Remove(mNet);
    EXPECT_EQ(mNet->_GetRefCount(), 2);
    mManager = 0;
    theCommand = 0;
    EXPECT_EQ(mNet->_GetRefCount(), 1);
}

TEST_F(CLIManagerTest, RandomLinesNeverCrash) {
    std::mt19937 theRandom(2024);
    const char* kPieces[] = {"net", "show", "help", "exit", "!",   "!net", " ",    "\t", "\"",
                             "'",   "on",   "5",    "set",  "say", "",     "\xff", "x",  "!help"};
    for (int i = 0; i < 20000; ++i) {
        std::string theLine;
        for (size_t theCount = theRandom() % 10; theCount > 0; --theCount) {
            theLine += kPieces[theRandom() % (sizeof(kPieces) / sizeof(*kPieces))];
            theLine += theRandom() % 2 == 0 ? " " : "";
        }
        SCOPED_TRACE(theLine);
        const vxRef<vxCLICommand> theCommand = mManager->Parse(theLine.c_str());
        ASSERT_FALSE(theCommand.IsNull());
        if (theCommand->IsValid() && theCommand->ModuleIs("help") &&
            theCommand->CommandIs("help")) {
            mManager->GetHelp(theCommand);
        }
    }
}

TEST_F(CLIManagerTest, ALineOfMegabytesIsReadInLinearTime) {
    EXPECT_TRUE(vxtest::GrowsLinearly(250000, [this](size_t aCount) {
        std::string theLine = "net say ";
        for (size_t i = 0; i < aCount; ++i) {
            theLine += "a\t'b' ";
        }
        const vxRef<vxCLICommand> theCommand = mManager->Parse(theLine.c_str());
        EXPECT_EQ(theCommand->Parameter(0)->GetString().length(), theLine.size() - 9);
        EXPECT_EQ(ErrorOf(("net show " + theLine).c_str()), "ERROR: Invalid parameter 1: 'net'");
    }));
}

}  // namespace
