#include "library/LibraryKeeper.h"

#include <gtest/gtest.h>

#include <string>

#include "ItemSamples.h"
#include "support/Reports.h"
#include "support/ScriptedClock.h"
#include "support/TempDir.h"

using namespace vxmedia;

namespace {

// A library that is kept in a file, with a rest of ten seconds.
class LibraryKeeperTest : public testing::Test {
protected:
    LibraryKeeperTest() {
        mKeeper.SetPath(mPath.c_str());
        mKeeper.SetDelay(10);
        EXPECT_STREQ(mKeeper.Load(), "");
    }
    void Change() { mLibrary.NoteChange(); }
    // Lets time pass as the main loop would, and tells whether the library was saved meanwhile.
    bool IsSavedAfter(uint32_t aMS) {
        mClock.Advance(aMS);
        mKeeper.AppletRun(vxAppletMsg_None);
        return TakeFile(mPath);
    }
    static bool TakeFile(const std::string& aPath) { return std::filesystem::remove(aPath); }

    vxtest::Reports mReports;
    vxtest::ScriptedClock mClock;
    vxtest::TempDir mDir;
    const std::string mPath = mDir / "library.json";
    MediaProbes mProbes;
    MediaLibrary mLibrary;
    Console mConsole{false};
    LibraryKeeper mKeeper{mLibrary, mProbes, mConsole};
};

TEST_F(LibraryKeeperTest, ALibraryThatHasNotChangedIsNotSaved) {
    EXPECT_EQ(mKeeper.FirstExpiringTimeout(), nullptr);
    EXPECT_FALSE(IsSavedAfter(100000));
    EXPECT_STREQ(mKeeper.Save(), "");
    EXPECT_FALSE(TakeFile(mPath));
}

TEST_F(LibraryKeeperTest, ALibraryIsSavedOnceWhenItHasRested) {
    Change();
    EXPECT_FALSE(IsSavedAfter(9999));
    EXPECT_TRUE(IsSavedAfter(1));
    EXPECT_EQ(mKeeper.FirstExpiringTimeout(), nullptr);
    EXPECT_FALSE(IsSavedAfter(100000));
}

TEST_F(LibraryKeeperTest, EachChangeStartsTheRestAnew) {
    for (int i = 0; i < 5; ++i) {
        Change();
        EXPECT_FALSE(IsSavedAfter(9000));
    }
    EXPECT_TRUE(IsSavedAfter(1000));
}

TEST_F(LibraryKeeperTest, TheEndNeedsNoRest) {
    Change();
    EXPECT_STREQ(mKeeper.Save(), "");
    EXPECT_TRUE(TakeFile(mPath));
    EXPECT_FALSE(IsSavedAfter(100000));
}

TEST_F(LibraryKeeperTest, AFailureIsToldAndTheNextChangeTriesAgain) {
    mDir.MakeDir("library.json.new/full");
    Change();
    EXPECT_FALSE(IsSavedAfter(10000));
    EXPECT_EQ(mReports.Console().substr(0, 23), "ERROR: Unable to write ");
    EXPECT_FALSE(IsSavedAfter(100000));
    std::filesystem::remove_all(mPath + ".new");
    EXPECT_FALSE(IsSavedAfter(100000));
    Change();
    EXPECT_TRUE(IsSavedAfter(10000));
}

TEST_F(LibraryKeeperTest, AFailureAtTheEndIsReturned) {
    mDir.MakeDir("library.json.new/full");
    Change();
    EXPECT_STRNE(mKeeper.Save(), "");
    EXPECT_STRNE(mKeeper.Save(), "");
}

TEST_F(LibraryKeeperTest, WithoutAPathNothingIsSaved) {
    mKeeper.SetPath("");
    Change();
    EXPECT_EQ(mKeeper.FirstExpiringTimeout(), nullptr);
    EXPECT_STREQ(mKeeper.Save(), "");
    EXPECT_STREQ(mKeeper.Load(), "");
    EXPECT_FALSE(TakeFile(mPath));
}

TEST_F(LibraryKeeperTest, ANewPathGetsTheLibraryToo) {
    mKeeper.SetPath((mPath + "2").c_str());
    mKeeper.SetPath((mPath + "2").c_str());
    mClock.Advance(10000);
    mKeeper.AppletRun(vxAppletMsg_None);
    EXPECT_FALSE(TakeFile(mPath));
    EXPECT_TRUE(TakeFile(mPath + "2"));
}

TEST_F(LibraryKeeperTest, AFileThatCannotBeReadIsNotWrittenEither) {
    mDir.MakeDir("library.json/full");
    EXPECT_STRNE(mKeeper.Load(), "");
    Change();
    mClock.Advance(10000);
    mKeeper.AppletRun(vxAppletMsg_None);
    EXPECT_STREQ(mKeeper.Save(), "");
    EXPECT_TRUE(std::filesystem::is_directory(mPath));
    mKeeper.SetPath((mPath + "2").c_str());
    EXPECT_STREQ(mKeeper.Save(), "");
    EXPECT_TRUE(TakeFile(mPath + "2"));
}

TEST_F(LibraryKeeperTest, ABrokenFileIsReplacedOnceTheLibraryChanges) {
    mDir.Write("library.json", "{}");
    EXPECT_STRNE(mKeeper.Load(), "");
    EXPECT_FALSE(IsSavedAfter(100000));
    Change();
    EXPECT_TRUE(IsSavedAfter(10000));
    EXPECT_EQ(mDir.Read("library.json.bad"), "{}");
}

TEST_F(LibraryKeeperTest, ADamagedFileIsReplacedByWhatIsGoodInIt) {
    const std::string theText =
        R"({"program":"vxmedia","format":1,"version":"1.0.0","last":0,"items":[5],)"
        R"("directories":[],"refusals":[]})";
    mDir.Write("library.json", theText);
    EXPECT_STRNE(mKeeper.Load(), "");
    EXPECT_EQ(mDir.Read("library.json"), theText);
    EXPECT_STREQ(mKeeper.Save(), "");
    EXPECT_NE(mDir.Read("library.json"), theText);
    EXPECT_EQ(mDir.Read("library.json.bad"), theText);
}

TEST_F(LibraryKeeperTest, WhatAScanFindsIsAChangeAndWhatItFindsAgainIsNone) {
    const auto theScan = [this](bool afNew) {
        mLibrary.BeginScan();
        mLibrary.AddDirectory("r", FileIdentity{1, 1});
        DirectoryCounts theCounts;
        theCounts.mOtherFiles = 3;
        mLibrary.AddCounts("r", theCounts);
        mLibrary.AddRefusal("r/bad", "broken");
        if (afNew) {
            mLibrary.AddItem("r/a", FileOf(10, 1), PictureOf(kMediaFormat_GIF, 1, 1));
        } else {
            mLibrary.KeepItem(1);
        }
        mLibrary.EndScan("r");
    };
    theScan(true);
    EXPECT_TRUE(IsSavedAfter(10000));
    theScan(false);
    EXPECT_FALSE(IsSavedAfter(10000));

    mLibrary.NoteChange();
    mKeeper.Save();
    EXPECT_STREQ(mKeeper.Load(), "");
    theScan(false);
    EXPECT_TRUE(TakeFile(mPath));
    EXPECT_FALSE(IsSavedAfter(10000)) << "the same as before the start";

    mLibrary.BeginScan();
    mLibrary.AddDirectory("r", FileIdentity{1, 1});
    mLibrary.AddRefusal("r/bad", "broken");
    mLibrary.KeepItem(1);
    mLibrary.EndScan("r");
    EXPECT_TRUE(IsSavedAfter(10000)) << "other files have gone";

    mLibrary.BeginScan();
    mLibrary.AddDirectory("r", FileIdentity{1, 1});
    mLibrary.AddRefusal("r/bad", "broken otherwise");
    mLibrary.KeepItem(1);
    mLibrary.EndScan("r");
    EXPECT_TRUE(IsSavedAfter(10000)) << "another reason";

    mLibrary.BeginScan();
    mLibrary.AddDirectory("r", FileIdentity{1, 1});
    mLibrary.KeepItem(1);
    mLibrary.EndScan("r");
    EXPECT_TRUE(IsSavedAfter(10000)) << "a refusal has gone";

    mLibrary.BeginScan();
    mLibrary.AddDirectory("r", FileIdentity{1, 1});
    mLibrary.EndScan("r");
    EXPECT_TRUE(IsSavedAfter(10000)) << "an item has gone";
}

}  // namespace
