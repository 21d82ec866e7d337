#include "vx/PluginLoader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libvxLog/Log.h>

#include <cstdlib>
#include <optional>
#include <set>

#include "PluginSupport.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using vxtest::Reports;

namespace {

class ProbeLoader : public vxPluginLoader {
public:
    ProbeLoader(std::vector<std::string>& aJournal, const std::string& aDir)
        : mJournal(aJournal), mDir(aDir) {}

    vxCString GetPluginsPath() override { return mDir.c_str(); }
    bool IsPluginActive(const vxCString& aFileName) override {
        mAsked.insert(aFileName.c_str());
        return mInactive.count(aFileName.c_str()) == 0;
    }
    vxPluginHandler* NewPluginHandler() override {
        return mfNoHandler ? nullptr : new ProbeHandler(mJournal);
    }
    using vxPluginLoader::AddPlugin;

    std::set<std::string> mInactive;
    std::set<std::string> mAsked;
    bool mfNoHandler = false;

private:
    std::vector<std::string>& mJournal;
    std::string mDir;
};

/// A loader that answers nothing but what it must.
class PlainLoader : public vxPluginLoader {
public:
    vxPluginHandler* NewPluginHandler() override { return new vxPluginHandler(kProbeNames, 3); }
};

/// Sets VXPLUGINPATH, or removes it for null, for as long as it lives.
class PluginPath {
public:
    explicit PluginPath(const char* aPath) {
        if (const char* theOld = getenv("VXPLUGINPATH")) {
            mOld = theOld;
        }
        Set(aPath);
    }
    ~PluginPath() { Set(mOld ? mOld->c_str() : nullptr); }
    PluginPath(const PluginPath&) = delete;
    PluginPath& operator=(const PluginPath&) = delete;

private:
    static void Set(const char* aPath) {
        aPath == nullptr ? unsetenv("VXPLUGINPATH") : setenv("VXPLUGINPATH", aPath, 1);
    }

    std::optional<std::string> mOld;
};

class PluginLoaderTest : public testing::Test {
protected:
    PluginLoaderTest() { sPlatform = {}; }

    std::vector<std::string> FileNames(const vxPluginLoader& aLoader) {
        std::vector<std::string> theNames;
        for (unsigned int i = 0; i < aLoader.GetPluginCount(); ++i) {
            theNames.push_back(aLoader.GetPlugin(i)->GetFileName().c_str());
        }
        return theNames;
    }

    std::vector<std::string> mJournal;
    PluginDir mDir;
};

TEST_F(PluginLoaderTest, ThePlatformNamesTheDirectory) {
    PlainLoader theLoader;
    {
        const PluginPath thePath("/somewhere/else");
        EXPECT_STREQ(theLoader.GetPluginsPath(), "/somewhere/else");
    }
    for (const char* theUnset : {static_cast<const char*>(nullptr), ""}) {
        const PluginPath thePath(theUnset);
        EXPECT_STREQ(theLoader.GetPluginsPath(), "/usr/lib/vx/plugins");
    }
}

TEST_F(PluginLoaderTest, PluginsComeFromTheDirectoryOfThePlatform) {
    mDir.AddComplete("One.so");
    const PluginPath thePath(mDir.Path().c_str());
    PlainLoader theLoader;
    EXPECT_EQ(theLoader.LoadPlugins("*", false, false), 1);
    EXPECT_THAT(FileNames(theLoader), ElementsAre("One"));
}

TEST_F(PluginLoaderTest, NothingIsLoadedWhereThereIsNoDirectory) {
    Reports theReports;
    for (const std::string& theDir : {mDir / "missing", std::string(), mDir.AddText("Text.so")}) {
        ProbeLoader theLoader(mJournal, theDir);
        EXPECT_EQ(theLoader.LoadPlugins("*", false, true), 0) << theDir;
    }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST_F(PluginLoaderTest, AnEmptyDirectoryHasNoPlugins) {
    ProbeLoader theLoader(mJournal, mDir.Path());
    EXPECT_EQ(theLoader.LoadPlugins("*", false, true), 0);
    EXPECT_EQ(theLoader.GetPluginCount(), 0U);
    EXPECT_EQ(theLoader.GetPlugin(0), nullptr);
}

TEST_F(PluginLoaderTest, FilesMatchThePatternWithTheExtensionBehindIt) {
    for (const char* theName :
         {"codec_a.so", "codec_b.so", "codec_c.so.1", "codec_d", "other.so"}) {
        mDir.AddComplete(theName);
    }
    ProbeLoader theLoader(mJournal, mDir.Path());
    EXPECT_EQ(theLoader.LoadPlugins("codec_*", false, true), 2);
    EXPECT_THAT(FileNames(theLoader), UnorderedElementsAre("codec_a", "codec_b"));
    EXPECT_THAT(theLoader.mAsked, ElementsAre("codec_a.so", "codec_b.so"));
}

TEST_F(PluginLoaderTest, HiddenFilesAndDirectoriesAreCandidatesToo) {
    mDir.AddComplete(".hidden.so");
    mDir.MakeDir("dir.so");
    Reports theReports;
    ProbeLoader theLoader(mJournal, mDir.Path());

    EXPECT_EQ(theLoader.LoadPlugins("*", false, false), 1);

    EXPECT_THAT(FileNames(theLoader), ElementsAre(".hidden"));
    EXPECT_THAT(
        theReports.Records(),
        Contains(IsRecord(VXLOGLEVEL_ERROR, "Failed to load '" + mDir.Path() + "/dir.so/'\n")));
}

TEST_F(PluginLoaderTest, LoadingIsLoggedWithItsDuration) {
    const std::string thePath = mDir.AddComplete("One.so");
    Reports theReports;
    ProbeLoader theLoader(mJournal, mDir.Path());
    theLoader.LoadPlugins("*", false, false);
    EXPECT_THAT(theReports.Records(),
                ElementsAre(IsRecord(VXLOGLEVEL_INFO, "Loading '" + thePath + "'...\n"),
                            IsDuration("Loaded '" + thePath + "' in ")));
}

TEST_F(PluginLoaderTest, AFailureIsLoggedBehindItsDurationAndTheHandlerIsDeleted) {
    const std::string thePath = mDir.AddLacking("Lacking.so");
    Reports theReports;
    ProbeLoader theLoader(mJournal, mDir.Path());

    EXPECT_EQ(theLoader.LoadPlugins("*", false, false), 0);

    EXPECT_EQ(theLoader.GetPluginCount(), 0U);
    EXPECT_THAT(mJournal, ElementsAre("finalize Lacking", "delete Lacking"));
    EXPECT_THAT(theReports.Records(),
                ElementsAre(IsRecord(VXLOGLEVEL_INFO, "Loading '" + thePath + "'...\n"),
                            IsRecord(VXLOGLEVEL_ERROR, "Cannot load function 'ProbeRead'\n"),
                            IsRecord(VXLOGLEVEL_ERROR, "Cannot load function 'ProbeClose'\n"),
                            IsRecord(VXLOGLEVEL_INFO, "Unloading Plugin 'Lacking'...\n"),
                            IsDuration("Unloaded Plugin 'Lacking' in "),
                            IsDuration("Loaded '" + thePath + "' in "),
                            IsRecord(VXLOGLEVEL_ERROR, "Failed to load '" + thePath + "'\n"),
                            IsRecord(VXLOGLEVEL_DEBUG, "Deleting plugin 'Lacking'\n")));
}

TEST_F(PluginLoaderTest, InactiveFilesAreLoggedAndNeverOpened) {
    mDir.AddComplete("Off.so");
    const std::string theOn = mDir.AddComplete("On.so");
    Reports theReports;
    ProbeLoader theLoader(mJournal, mDir.Path());
    theLoader.mInactive = {"Off.so"};

    EXPECT_EQ(theLoader.LoadPlugins("*", false, true), 1);

    EXPECT_THAT(FileNames(theLoader), ElementsAre("On"));
    EXPECT_THAT(sPlatform.mLoads, ElementsAre(theOn));
    EXPECT_THAT(theReports.Records(),
                Contains(IsRecord(VXLOGLEVEL_WARNING, "'Off.so' disabled\n")));
}

TEST_F(PluginLoaderTest, EveryFileIsActiveByDefault) {
    PlainLoader theLoader;
    EXPECT_TRUE(theLoader.IsPluginActive("any.so"));
    EXPECT_TRUE(theLoader.IsPluginActive(""));
}

TEST_F(PluginLoaderTest, StopAfterFirstStopsAfterTheFirstThatLoads) {
    for (const char* theName : {"a.so", "b.so", "c.so"}) {
        mDir.AddComplete(theName);
    }
    {
        ProbeLoader theLoader(mJournal, mDir.Path());
        EXPECT_EQ(theLoader.LoadPlugins("*", true, false), 1);
        EXPECT_EQ(theLoader.GetPluginCount(), 1U);
        EXPECT_EQ(sPlatform.mLoads.size(), 1U);
    }
    sPlatform = {};
    sPlatform.mFailingLoad = 1;
    ProbeLoader theLoader(mJournal, mDir.Path());
    EXPECT_EQ(theLoader.LoadPlugins("*", true, false), 1);
    EXPECT_EQ(theLoader.GetPluginCount(), 1U);
    EXPECT_EQ(sPlatform.mLoads.size(), 2U);
}

TEST_F(PluginLoaderTest, FailOnErrorStopsAtTheFirstFailureAndKeepsThoseBefore) {
    for (const char* theName : {"a.so", "b.so", "c.so"}) {
        mDir.AddComplete(theName);
    }
    sPlatform.mFailingLoad = 2;
    ProbeLoader theLoader(mJournal, mDir.Path());

    EXPECT_EQ(theLoader.LoadPlugins("*", false, true), -1);

    EXPECT_EQ(sPlatform.mLoads.size(), 2U);
    ASSERT_EQ(theLoader.GetPluginCount(), 1U);
    EXPECT_EQ(theLoader.GetPlugin(0)->GetFullPath(), sPlatform.mLoads[0].c_str());
    EXPECT_TRUE(theLoader.GetPlugin(0)->IsLoaded());
}

TEST_F(PluginLoaderTest, WithoutFailOnErrorFailuresArePassedOver) {
    for (const char* theName : {"a.so", "b.so", "c.so"}) {
        mDir.AddComplete(theName);
    }
    sPlatform.mFailingLoad = 2;
    ProbeLoader theLoader(mJournal, mDir.Path());
    EXPECT_EQ(theLoader.LoadPlugins("*", false, false), 2);
    EXPECT_EQ(theLoader.GetPluginCount(), 2U);
}

TEST_F(PluginLoaderTest, FilesThatAreNoLibrariesDoNotLoad) {
    mDir.AddText("Text.so");
    ProbeLoader theLoader(mJournal, mDir.Path());
    EXPECT_EQ(theLoader.LoadPlugins("*", false, false), 0);
    EXPECT_EQ(theLoader.LoadPlugins("*", false, true), -1);
}

TEST_F(PluginLoaderTest, AMissingHandlerIsReportedAndLogged) {
    const std::string thePath = mDir.AddComplete("One.so");
    Reports theReports;
    ProbeLoader theLoader(mJournal, mDir.Path());
    theLoader.mfNoHandler = true;

    EXPECT_EQ(theLoader.LoadPlugins("*", false, false), 0);

    EXPECT_THAT(theReports.Assertions(), ElementsAre("thePluginHandler != NULL"));
    EXPECT_THAT(theReports.Records(),
                ElementsAre(IsRecord(VXLOGLEVEL_ERROR, "Failed to load '" + thePath + "'\n")));
    EXPECT_THAT(sPlatform.mLoads, IsEmpty());
    EXPECT_EQ(theLoader.LoadPlugins("*", false, true), -1);
}

TEST_F(PluginLoaderTest, ASecondScanAddsToTheFirst) {
    mDir.AddComplete("a.so");
    mDir.AddComplete("b.so");
    ProbeLoader theLoader(mJournal, mDir.Path());
    EXPECT_EQ(theLoader.LoadPlugins("b", false, true), 1);
    EXPECT_EQ(theLoader.LoadPlugins("a", false, true), 1);
    EXPECT_THAT(FileNames(theLoader), ElementsAre("b", "a"));
}

TEST_F(PluginLoaderTest, ThereAreNoLinkedInPluginsByDefault) {
    PlainLoader theLoader;
    EXPECT_EQ(theLoader.LoadPluginsStatic("*", true, true), 0);
    EXPECT_EQ(theLoader.GetPluginCount(), 0U);
}

TEST_F(PluginLoaderTest, LinkedInHandlersCanBeAdded) {
    vxPluginFunc_Generic theFunctions[3] = {};
    {
        ProbeLoader theLoader(mJournal, mDir.Path());
        auto* theHandler = new ProbeHandler(mJournal);
        theHandler->Load(theFunctions, "built-in");
        theLoader.AddPlugin(theHandler);
        EXPECT_EQ(theLoader.GetPlugin(0), theHandler);
    }
    EXPECT_THAT(mJournal, ElementsAre("finalize built-in", "delete built-in"));
}

TEST_F(PluginLoaderTest, UnloadingKeepsTheHandlersAndGoesInTheOrderOfLoading) {
    mDir.AddComplete("a.so");
    mDir.AddComplete("b.so");
    ProbeLoader theLoader(mJournal, mDir.Path());
    theLoader.LoadPlugins("b", false, true);
    theLoader.LoadPlugins("a", false, true);

    theLoader.UnloadPlugins();

    EXPECT_THAT(mJournal, ElementsAre("finalize b", "finalize a"));
    EXPECT_THAT(FileNames(theLoader), ElementsAre("b", "a"));
    EXPECT_FALSE(theLoader.GetPlugin(0)->IsLoaded());
    EXPECT_EQ(sPlatform.mUnloads, 2);
}

TEST_F(PluginLoaderTest, DestructionUnloadsAllThenDeletesTheHandlers) {
    mDir.AddComplete("a.so");
    mDir.AddComplete("b.so");
    {
        ProbeLoader theLoader(mJournal, mDir.Path());
        theLoader.LoadPlugins("a", false, true);
        theLoader.LoadPlugins("b", false, true);
    }
    EXPECT_THAT(mJournal, ElementsAre("finalize a", "finalize b", "delete a", "delete b"));
    EXPECT_EQ(sPlatform.mUnloads, 2);
}

TEST_F(PluginLoaderTest, PluginsThatWereUnloadedAreFinalizedOnceMoreByDestruction) {
    mDir.AddComplete("a.so");
    {
        ProbeLoader theLoader(mJournal, mDir.Path());
        theLoader.LoadPlugins("*", false, true);
        theLoader.UnloadPlugins();
    }
    EXPECT_THAT(mJournal, ElementsAre("finalize a", "finalize a", "delete a"));
    EXPECT_EQ(sPlatform.mUnloads, 1);
}

}  // namespace
