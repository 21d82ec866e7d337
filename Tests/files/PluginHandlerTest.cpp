#include "vx/PluginHandler.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libvxLog/Log.h>
#include <link.h>
#include <sys/stat.h>

#include "PluginSupport.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Reports;

namespace {

class PluginHandlerTest : public testing::Test {
protected:
    PluginHandlerTest() { sPlatform = {}; }

    std::vector<std::string> mJournal;
    PluginDir mDir;
};

int Seven() {
    return 7;
}
int Eight() {
    return 8;
}
int Nine() {
    return 9;
}
vxPluginFunc_Generic sLinkedIn[] = {reinterpret_cast<vxPluginFunc_Generic>(Seven),
                                    reinterpret_cast<vxPluginFunc_Generic>(Eight),
                                    reinterpret_cast<vxPluginFunc_Generic>(Nine)};

void ExpectNothingLoaded(const ProbeHandler& aHandler) {
    EXPECT_FALSE(aHandler.IsLoaded());
    for (unsigned int i = 0; i < 4; ++i) {
        EXPECT_EQ(aHandler.GetFunction(i), nullptr) << i;
    }
}

TEST_F(PluginHandlerTest, ANewHandlerHasNothingLoaded) {
    const ProbeHandler theHandler(mJournal);
    ExpectNothingLoaded(theHandler);
    EXPECT_STREQ(theHandler.GetFileName(), "");
    EXPECT_STREQ(theHandler.GetFullPath(), "");
}

TEST_F(PluginHandlerTest, EntryPointsBelongToTheirNamesInOrder) {
    const std::string thePath = mDir.AddComplete("My.Probe.so");
    ProbeHandler theHandler(mJournal);

    EXPECT_TRUE(theHandler.Load(thePath.c_str()));

    EXPECT_TRUE(theHandler.IsLoaded());
    EXPECT_EQ(theHandler.Call(0), 1);
    EXPECT_EQ(theHandler.Call(1), 2);
    EXPECT_EQ(theHandler.Call(2), 3);
    EXPECT_EQ(theHandler.GetFunction(3), nullptr);
    EXPECT_STREQ(theHandler.GetFileName(), "My.Probe");
    EXPECT_STREQ(theHandler.GetFullPath(), thePath.c_str());
    EXPECT_THAT(sPlatform.mLoads, ElementsAre(thePath));
}

TEST_F(PluginHandlerTest, AHandlerWithoutEntryPointsLoadsAnyLibrary) {
    ProbeHandler theHandler(mJournal, nullptr, 0);
    EXPECT_TRUE(theHandler.Load(mDir.AddLacking("Any.so").c_str()));
    EXPECT_EQ(theHandler.GetFunction(0), nullptr);
}

TEST_F(PluginHandlerTest, EveryMissingEntryPointIsLoggedAndNothingStaysLoaded) {
    Reports theReports;
    ProbeHandler theHandler(mJournal);

    EXPECT_FALSE(theHandler.Load(mDir.AddLacking("Lacking.so").c_str()));

    ExpectNothingLoaded(theHandler);
    EXPECT_EQ(sPlatform.mUnloads, 1);
    EXPECT_THAT(mJournal, ElementsAre("finalize Lacking"));
    EXPECT_THAT(theReports.Records(),
                ElementsAre(IsRecord(VXLOGLEVEL_ERROR, "Cannot load function 'ProbeRead'\n"),
                            IsRecord(VXLOGLEVEL_ERROR, "Cannot load function 'ProbeClose'\n"),
                            IsRecord(VXLOGLEVEL_INFO, "Unloading Plugin 'Lacking'...\n"),
                            IsDuration("Unloaded Plugin 'Lacking' in ")));
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST_F(PluginHandlerTest, AFileThatIsNoLibraryIsLoggedInTheWordsOfTheLoader) {
    const std::string thePath = mDir.AddText("Text.so");
    Reports theReports;
    ProbeHandler theHandler(mJournal);

    EXPECT_FALSE(theHandler.Load(thePath.c_str()));

    ExpectNothingLoaded(theHandler);
    EXPECT_STREQ(theHandler.GetFileName(), "Text");
    ASSERT_EQ(theReports.Records().size(), 1U);
    EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_ERROR);
    EXPECT_EQ(theReports.Records()[0].mModule, VXLOG_M_PLUGIN);
    EXPECT_THAT(theReports.Records()[0].mText,
                testing::AllOf(testing::StartsWith(thePath + ": "), testing::EndsWith("\n")));
    EXPECT_THAT(mJournal, IsEmpty());
    EXPECT_EQ(sPlatform.mUnloads, 0);
}

TEST_F(PluginHandlerTest, AnEmptyPathIsNotTheProgramItself) {
    Reports theReports;
    ProbeHandler theHandler(mJournal, nullptr, 0);
    EXPECT_FALSE(theHandler.Load(""));
    EXPECT_THAT(theReports.Records(),
                ElementsAre(IsRecord(VXLOGLEVEL_ERROR, "A plug-in needs a path\n")));
}

TEST_F(PluginHandlerTest, AFileCanBeLoadedAfterOneThatFailed) {
    ProbeHandler theHandler(mJournal);
    EXPECT_FALSE(theHandler.Load(mDir.AddLacking("Lacking.so").c_str()));
    EXPECT_TRUE(theHandler.Load(mDir.AddComplete("Complete.so").c_str()));
    EXPECT_STREQ(theHandler.GetFileName(), "Complete");
    EXPECT_EQ(theHandler.Call(2), 3);
}

TEST_F(PluginHandlerTest, NullAndEmptyNamesAreReportedAndMissing) {
    const char* theNames[] = {"ProbeOpen", nullptr, ""};
    Reports theReports;
    ProbeHandler theHandler(mJournal, theNames, 3);

    EXPECT_FALSE(theHandler.Load(mDir.AddComplete("Complete.so").c_str()));

    const char* theText = "(mFunctionNameList[i] != NULL) && (mFunctionNameList[i][0] != 0)";
    EXPECT_THAT(theReports.Assertions(), ElementsAre(theText, theText));
    ExpectNothingLoaded(theHandler);
}

TEST_F(PluginHandlerTest, LoadingASecondFileIsReportedAndTheFirstStays) {
    ProbeHandler theHandler(mJournal);
    theHandler.Load(mDir.AddComplete("First.so").c_str());
    Reports theReports;

    EXPECT_TRUE(theHandler.Load(mDir.AddComplete("Second.so").c_str()));

    EXPECT_THAT(theReports.Assertions(), ElementsAre("mPluginHandle == NULL"));
    EXPECT_STREQ(theHandler.GetFileName(), "First");
    EXPECT_EQ(theHandler.Call(0), 1);
    EXPECT_EQ(sPlatform.mLoads.size(), 1U);
}

TEST_F(PluginHandlerTest, UnloadFinalizesThenUnloadsAndForgetsTheEntryPoints) {
    ProbeHandler theHandler(mJournal);
    const std::string thePath = mDir.AddComplete("Complete.so");
    theHandler.Load(thePath.c_str());
    Reports theReports;

    theHandler.Unload();

    ExpectNothingLoaded(theHandler);
    EXPECT_THAT(mJournal, ElementsAre("finalize Complete"));
    EXPECT_EQ(sPlatform.mUnloads, 1);
    EXPECT_EQ(dlopen(thePath.c_str(), RTLD_LAZY | RTLD_NOLOAD), nullptr);
    EXPECT_THAT(theReports.Records(),
                ElementsAre(IsRecord(VXLOGLEVEL_INFO, "Unloading Plugin 'Complete'...\n"),
                            IsDuration("Unloaded Plugin 'Complete' in ")));
}

TEST_F(PluginHandlerTest, UnloadFinalizesEachTimeWhetherSomethingIsLoadedOrNot) {
    ProbeHandler theHandler(mJournal);
    theHandler.Unload();
    theHandler.Load(mDir.AddComplete("Complete.so").c_str());
    theHandler.Unload();
    theHandler.Unload();
    EXPECT_THAT(mJournal, ElementsAre("finalize ", "finalize Complete", "finalize Complete"));
    EXPECT_EQ(sPlatform.mUnloads, 1);
}

TEST_F(PluginHandlerTest, LinkedInFunctionsFillTheHandler) {
    ProbeHandler theHandler(mJournal);

    EXPECT_TRUE(theHandler.Load(sLinkedIn, "built-in.so"));

    EXPECT_TRUE(theHandler.IsLoaded());
    EXPECT_EQ(theHandler.Call(0), 7);
    EXPECT_EQ(theHandler.Call(1), 8);
    EXPECT_EQ(theHandler.Call(2), 9);
    EXPECT_STREQ(theHandler.GetFileName(), "built-in.so");
    EXPECT_STREQ(theHandler.GetFullPath(), "");
    EXPECT_THAT(sPlatform.mLoads, IsEmpty());
}

TEST_F(PluginHandlerTest, LinkedInFunctionsAreFinalizedByUnloadButNotByTheDestructor) {
    {
        ProbeHandler theHandler(mJournal);
        theHandler.Load(sLinkedIn, "one");
        theHandler.Unload();
        ExpectNothingLoaded(theHandler);
    }
    {
        ProbeHandler theHandler(mJournal);
        theHandler.Load(sLinkedIn, "two");
    }
    EXPECT_THAT(mJournal, ElementsAre("finalize one", "delete one", "delete two"));
    EXPECT_EQ(sPlatform.mUnloads, 0);
}

TEST_F(PluginHandlerTest, AFileIsUnloadedBeforeLinkedInFunctionsTakeItsPlace) {
    ProbeHandler theHandler(mJournal);
    theHandler.Load(mDir.AddComplete("Complete.so").c_str());
    EXPECT_TRUE(theHandler.Load(sLinkedIn, "built-in"));
    EXPECT_EQ(theHandler.Call(0), 7);
    EXPECT_EQ(sPlatform.mUnloads, 1);
}

TEST_F(PluginHandlerTest, LinkedInFunctionsGoWhenAFileIsToBeLoaded) {
    ProbeHandler theHandler(mJournal);
    theHandler.Load(sLinkedIn, "built-in");
    EXPECT_FALSE(theHandler.Load((mDir / "none.so").c_str()));
    ExpectNothingLoaded(theHandler);

    theHandler.Load(sLinkedIn, "built-in");
    EXPECT_TRUE(theHandler.Load(mDir.AddComplete("Complete.so").c_str()));
    EXPECT_EQ(theHandler.Call(0), 1);
    theHandler.Unload();
    EXPECT_EQ(sPlatform.mUnloads, 1);
}

TEST_F(PluginHandlerTest, TheDestructorUnloadsWhatIsLoaded) {
    Reports theReports;
    {
        vxPluginHandler theHandler(kProbeNames, 3);
        theHandler.Load(mDir.AddComplete("Complete.so").c_str());
    }
    EXPECT_EQ(sPlatform.mUnloads, 1);
    EXPECT_THAT(theReports.Records(),
                ElementsAre(IsRecord(VXLOGLEVEL_DEBUG, "Deleting plugin 'Complete'\n"),
                            IsRecord(VXLOGLEVEL_INFO, "Unloading Plugin 'Complete'...\n"),
                            IsDuration("Unloaded Plugin 'Complete' in ")));
}

TEST_F(PluginHandlerTest, TheDestructorOfAHandlerWithNothingLoadedOnlyLogs) {
    Reports theReports;
    { vxPluginHandler theHandler(kProbeNames, 3); }
    EXPECT_THAT(theReports.Records(),
                ElementsAre(IsRecord(VXLOGLEVEL_DEBUG, "Deleting plugin ''\n")));
}

TEST_F(PluginHandlerTest, AFileThatIsCutShortOrNoFileNeverReachesTheLoader) {
    std::ifstream theFile(VXTEST_COMPLETE, std::ios::binary);
    const std::string theLibrary{std::istreambuf_iterator<char>(theFile), {}};
    for (const size_t theSize : {sizeof(ElfW(Ehdr)), size_t(300), size_t(4096), size_t(4097)}) {
        SCOPED_TRACE(theSize);
        const std::string thePath = mDir.Write("Cut.so", theLibrary.substr(0, theSize));
        Reports theReports;
        EXPECT_EQ(vxPlugin_Load(thePath.c_str()), nullptr);
        EXPECT_THAT(theReports.Records(),
                    ElementsAre(IsRecord(VXLOGLEVEL_ERROR, thePath + ": it is cut short\n")));
    }
    for (const std::string& thePath : {mDir / "pipe", mDir / "folder"}) {
        SCOPED_TRACE(thePath);
        mkfifo((mDir / "pipe").c_str(), 0600);
        mkdir((mDir / "folder").c_str(), 0700);
        Reports theReports;
        EXPECT_EQ(vxPlugin_Load(thePath.c_str()), nullptr);
        EXPECT_THAT(theReports.Records(),
                    ElementsAre(IsRecord(VXLOGLEVEL_ERROR, thePath + ": it is no regular file\n")));
    }
}

TEST_F(PluginHandlerTest, ANullHandleOrNameHasNoSymbol) {
    EXPECT_EQ(vxPlugin_GetSymbol(nullptr, "ProbeOpen"), nullptr);
    vxOSPluginHandle theHandle = vxPlugin_Load(VXTEST_COMPLETE);
    ASSERT_NE(theHandle, nullptr);
    EXPECT_EQ(vxPlugin_GetSymbol(theHandle, nullptr), nullptr);
    EXPECT_EQ(vxPlugin_GetSymbol(theHandle, "NoSuchSymbol"), nullptr);
    EXPECT_NE(vxPlugin_GetSymbol(theHandle, "ProbeOpen"), nullptr);
    vxPlugin_Unload(theHandle);
    vxPlugin_Unload(nullptr);
}

}  // namespace
