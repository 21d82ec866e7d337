#include "library/LibraryFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <random>
#include <string>

#include "ItemSamples.h"
#include "support/Reports.h"
#include "support/ScriptedIO.h"
#include "support/TempDir.h"

using namespace vxmedia;
using testing::StartsWith;
using vxtest::Fails;
using vxtest::IOStep;
using vxtest::Moves;

namespace {

const std::string kHead = R"({"program":"vxmedia","format":1,"version":"1.0.0",)";
const std::string kTail = R"("directories":[],"refusals":[]})";

class LibraryFileTest : public testing::Test {
protected:
    std::string Save() { return SaveLibrary(mLibrary, mPath.c_str()).c_str(); }
    LoadResult Load(MediaLibrary& aLibrary) {
        vxCString theError;
        const LoadResult theResult = LoadLibrary(aLibrary, mProbes, mPath.c_str(), theError);
        mError = theError.c_str();
        return theResult;
    }
    LoadResult LoadText(const std::string& aText) {
        mDir.Write("library.json", aText);
        MediaLibrary theLibrary;
        return Load(theLibrary);
    }
    // A file with these items.
    LoadResult LoadItems(const std::string& anItems, const std::string& aLast = "5") {
        return LoadText(kHead + "\"last\":" + aLast + ",\"items\":[" + anItems + "]," + kTail);
    }
    void FillLibrary();

    vxtest::Reports mReports;
    vxtest::TempDir mDir;
    const std::string mPath = mDir / "library.json";
    MediaProbes mProbes;
    MediaLibrary mLibrary;
    std::string mError;
};

void LibraryFileTest::FillLibrary() {
    mLibrary.BeginScan();
    mLibrary.AddItem("m/Blue.mp3", FileOf(4711, 1435687200123456789), TaggedSound());
    mLibrary.AddItem("m/\xFF\x01\\.jpg", FileOf(UINT64_C(5000000000), -1),
                     PictureOf(kMediaFormat_JPEG, 640, 480));
    mLibrary.AddItem("m/z\xC3\xA9.bmp", FileOf(9, 0), PictureOf(*mProbes.FormatOf("BMP"), 1, 2));
    mLibrary.FindItem(1)->SetEdits({{"ge", "Folk \"\n"}, {"track", "8"}, {"cr", ""}});
    mLibrary.AddDirectory("m", FileIdentity{UINT64_MAX, 12});
    DirectoryCounts theCounts;
    theCounts.mOtherFiles = 1;
    theCounts.mLinks = 2;
    theCounts.mSpecialFiles = 3;
    mLibrary.AddCounts("m", theCounts);
    mLibrary.AddRefusal("m/bad.png", "it is broken");
    mLibrary.AddItem("m/gone.gif", FileOf(1, 1), PictureOf(kMediaFormat_GIF, 1, 1));
    mLibrary.AddRefusal("m/gone.gif", "it is broken, too");
}

TEST_F(LibraryFileTest, AnEmptyLibraryIsSavedAndLoaded) {
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(mDir.Read("library.json"), kHead + "\"last\":0,\"items\":[]," + kTail);
    MediaLibrary theLibrary;
    EXPECT_EQ(Load(theLibrary), LoadResult::Loaded);
    EXPECT_EQ(theLibrary.GetItems().size(), 0u);
}

TEST_F(LibraryFileTest, TheFileIsCompactJSON) {
    FillLibrary();
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(
        mDir.Read("library.json"),
        kHead +
            R"("last":4,"items":[)"
            R"({"id":1,"path":"m/Blue.mp3","size":4711,"time":1435687200123456789,"type":"MP3",)"
            R"("channels":2,"rate":44100,"bits":16,"bit-rate":128000,"frames":9591750,)"
            R"("title":"Blue","creator":"Somebody","album":"Colors","genre":"Jazz",)"
            R"("date":"2015-06-30","comment":"Take 2","track":7,"disc":2,"cover":{"mime":"image/png","encoding":2,)"
            R"("offset":42,"front":1,"pieces":[2048,5000]},)"
            R"("edits":{"cr":"","ge":"Folk \"\n","track":"8"}},)"
            R"({"id":3,"path":"m/zé.bmp","size":9,"time":0,"type":"BMP","width":1,"height":2,)"
            R"("bits":24,"detail":"baseline"},)"
            R"({"id":2,"bytes":"6d2fff015c2e6a7067","size":5000000000,"time":-1,"type":"JPEG",)"
            R"("width":640,"height":480,"bits":24,"detail":"baseline"}],)"
            R"("directories":[{"path":"m","device":18446744073709551615,"node":12,"others":1,)"
            R"("links":2,"specials":3}],)"
            R"("refusals":[{"path":"m/bad.png","reason":"it is broken"},)"
            R"({"path":"m/gone.gif","reason":"it is broken, too"}]})");
}

TEST_F(LibraryFileTest, WhatIsLoadedIsWhatWasSaved) {
    FillLibrary();
    EXPECT_EQ(Save(), "");
    const std::string theText = mDir.Read("library.json");
    MediaLibrary theLibrary;
    EXPECT_EQ(Load(theLibrary), LoadResult::Loaded);
    EXPECT_EQ(mError, "");
    EXPECT_STREQ(SaveLibrary(theLibrary, mPath.c_str()), "");
    EXPECT_EQ(mDir.Read("library.json"), theText);

    for (uint32_t i = 1; i <= 3; ++i) {
        const MediaItem& theOld = *mLibrary.FindItem(i);
        const MediaItem& theNew = *theLibrary.FindItem(i);
        EXPECT_STREQ(theNew.GetPath(), theOld.GetPath());
        EXPECT_EQ(&theNew.GetFormat(), &theOld.GetFormat());
        EXPECT_TRUE(theNew.IsUnchanged(FileOf(theOld.GetSize(), theOld.GetModified())));
        EXPECT_STREQ(theNew.MakeInfo()->GetMediaInfoAsString("\n"),
                     theOld.MakeInfo()->GetMediaInfoAsString("\n"));
        EXPECT_EQ(theNew.GetFacts().mFrames, theOld.GetFacts().mFrames);
    }
    const CoverArt& theCover = theLibrary.FindItem(1)->GetTags().mCoverArt;
    EXPECT_TRUE(theCover.mfIsFront);
    EXPECT_EQ(theCover.mEncoding, CoverArt::Unsynchronisation);
    EXPECT_EQ(theCover.mBytes.Size(), 5000u);
    EXPECT_STREQ(theLibrary.FindDirectory(FileIdentity{UINT64_MAX, 12}), "m");
    EXPECT_EQ(theLibrary.CountOthers().mSpecialFiles, 3u);
    EXPECT_EQ(theLibrary.GetRefusalCount(), 2u);

    theLibrary.BeginScan();
    theLibrary.AddItem("m/new.gif", FileOf(1, 1), PictureOf(kMediaFormat_GIF, 1, 1));
    EXPECT_NE(theLibrary.FindItem(5), nullptr);
}

TEST_F(LibraryFileTest, LoadingReplacesWhatWasThere) {
    Save();
    FillLibrary();
    EXPECT_EQ(Load(mLibrary), LoadResult::Loaded);
    EXPECT_EQ(mLibrary.GetItems().size(), 0u);
    EXPECT_EQ(mLibrary.FindItem(1), nullptr);
    EXPECT_EQ(mLibrary.GetRefusalCount() + mLibrary.GetDirectoryCount(), 0u);
}

TEST_F(LibraryFileTest, AFileOfAnotherVersionLoadsButFilesAreReadAnew) {
    mDir.Write("library.json",
               R"({"program":"vxmedia","format":1,"version":"0.9","last":7,"items":[{"id":7,)"
               R"("path":"a","size":10,"time":5,"type":"GIF","width":1}],)" +
                   kTail);
    MediaLibrary theLibrary;
    ASSERT_EQ(Load(theLibrary), LoadResult::Loaded);
    EXPECT_EQ(theLibrary.FindItem(7)->GetSize(), 10u);
    EXPECT_FALSE(theLibrary.FindItem(7)->IsUnchanged(FileOf(10, 5)));
}

TEST_F(LibraryFileTest, AFailureAtAnyStepLeavesTheOldFileAndNothingElse) {
    const struct {
        std::vector<IOStep> vxtest::ScriptedIO::*mSteps;
        std::vector<IOStep> mScript;
        const char* mReason;
    } kRows[] = {
        {&vxtest::ScriptedIO::mOpens, {Fails(EROFS)}, "the file system is read-only"},
        {&vxtest::ScriptedIO::mWrites, {Fails(ENOSPC)}, "no space is left"},
        {&vxtest::ScriptedIO::mWrites,
         {Moves(3), Fails(ENOSPC), Fails(ENOSPC)},
         "no space is left"},
        {&vxtest::ScriptedIO::mSyncs, {Fails(ENOSPC)}, "no space is left"},
        {&vxtest::ScriptedIO::mCloses, {Fails(ENOSPC)}, "no space is left"},
        {&vxtest::ScriptedIO::mRenames, {Fails(EACCES)}, "it cannot be replaced"},
    };
    ASSERT_EQ(Save(), "");
    FillLibrary();
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow.mReason);
        {
            vxtest::ScriptedIO theIO;
            theIO.*theRow.mSteps = theRow.mScript;
            EXPECT_EQ(Save(), "ERROR: Unable to write '" + mPath + "': " + theRow.mReason);
        }
        MediaLibrary theLibrary;
        EXPECT_EQ(Load(theLibrary), LoadResult::Loaded);
        EXPECT_EQ(theLibrary.GetItems().size(), 0u);
        EXPECT_FALSE(std::filesystem::exists(mPath + ".new"));
    }
}

TEST_F(LibraryFileTest, WhatSomebodyKilledHasPreparedIsReplaced) {
    mDir.Write("library.json.new", "the beginning of");
    EXPECT_EQ(Save(), "");
    EXPECT_FALSE(std::filesystem::exists(mPath + ".new"));
}

TEST_F(LibraryFileTest, AMissingFileIsNoFailure) {
    MediaLibrary theLibrary;
    EXPECT_EQ(Load(theLibrary), LoadResult::Missing);
    EXPECT_EQ(mError, "");
}

// Items that make no sense, and why.
constexpr struct {
    const char* mItem;
    const char* mReason;
} kBadItems[] = {
    {"1", "is no object"},
    {"[]", "is no object"},
    {"null", "is no object"},
    {"{}", "it has no path"},
    {R"({"path":"a","size":1,"time":1,"type":"GIF"})", "'id' is missing or 0"},
    {R"({"id":0,"path":"a","size":1,"time":1,"type":"GIF"})", "'id' is missing or 0"},
    {R"({"id":-1,"path":"a","size":1,"time":1,"type":"GIF"})",
     "'id' is no number from 0 to 2147483647"},
    {R"({"id":1.5,"path":"a","size":1,"time":1,"type":"GIF"})",
     "'id' is no number from 0 to 2147483647"},
    {R"({"id":"1","path":"a","size":1,"time":1,"type":"GIF"})",
     "'id' is no number from 0 to 2147483647"},
    {R"({"id":2147483648,"path":"a","size":1,"time":1,"type":"GIF"})",
     "'id' is no number from 0 to 2147483647"},
    {R"({"id":99999999999999999999999,"path":"a","size":1,"time":1,"type":"GIF"})",
     "'id' is no number from 0 to 2147483647"},
    {R"({"id":5,"path":"a","size":1,"time":1,"type":"GIF"})", "'id' is that of another item"},
    {R"({"id":1,"path":"good","size":1,"time":1,"type":"GIF"})", "'path' is that of another item"},
    {R"({"id":1,"bytes":"676f6f64","size":1,"time":1,"type":"GIF"})",
     "'path' is that of another item"},
    {R"({"id":1,"size":1,"time":1,"type":"GIF"})", "it has no path"},
    {R"({"id":1,"path":"","size":1,"time":1,"type":"GIF"})", "it has no path"},
    {R"({"id":1,"path":1,"size":1,"time":1,"type":"GIF"})", "'path' is no text"},
    {R"({"id":1,"path":null,"size":1,"time":1,"type":"GIF"})", "'path' is no text"},
    {R"({"id":1,"path":"a\u0000b","size":1,"time":1,"type":"GIF"})", "'path' has a NUL in it"},
    {R"({"id":1,"path":"\\\u0000","size":1,"time":1,"type":"GIF"})", "'path' has a NUL in it"},
    {R"({"id":1,"bytes":"61\u0000","size":1,"time":1,"type":"GIF"})", "'bytes' has a NUL in it"},
    {R"({"id":1,"bytes":"f","size":1,"time":1,"type":"GIF"})",
     "'bytes' are no hexadecimal digits of a path"},
    {R"({"id":1,"bytes":"0g","size":1,"time":1,"type":"GIF"})",
     "'bytes' are no hexadecimal digits of a path"},
    {R"({"id":1,"bytes":"6100","size":1,"time":1,"type":"GIF"})",
     "'bytes' are no hexadecimal digits of a path"},
    {R"({"id":1,"path":"a","size":-1,"time":1,"type":"GIF"})",
     "'size' is no number from 0 to 9223372036854775807"},
    {R"({"id":1,"path":"a","size":9223372036854775808,"time":1,"type":"GIF"})",
     "'size' is no number from 0 to 9223372036854775807"},
    {R"({"id":1,"path":"a","size":1,"type":"GIF"})", "'time' is no time"},
    {R"({"id":1,"path":"a","size":1,"time":"1","type":"GIF"})", "'time' is no time"},
    {R"({"id":1,"path":"a","size":1,"time":9223372036854775808,"type":"GIF"})",
     "'time' is no time"},
    {R"({"id":1,"path":"a","size":1,"time":1})", "'type' is missing"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":""})", "'type' is missing"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF\u0000"})", "'type' has a NUL in it"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","width":4294967296})",
     "'width' is no number from 0 to 4294967295"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","frames":-1})",
     "'frames' is no number from 0 to 18446744073709551615"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","title":5})", "'title' is no text"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","album":"\u0000"})",
     "'album' has a NUL in it"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","track":65536})",
     "'track' is no number from 0 to 65535"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","cover":5})", "'cover' is no cover"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","cover":{"mime":"x"}})",
     "'cover' is no cover"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","cover":{"mime":"x","pieces":[1]}})",
     "'cover' is no cover"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","cover":{"mime":"x","pieces":[1,"2"]}})",
     "'cover' is no cover"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF",)"
     R"("cover":{"mime":"x","pieces":[9223372036854775807,1]}})",
     "'cover' is no cover"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF",)"
     R"("cover":{"mime":"x","pieces":[5,9223372036854775800,0,9223372036854775800]}})",
     "'cover' is no cover"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","cover":{"encoding":3,"pieces":[]}})",
     "'cover' is no cover"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":[]})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":["ti"]})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{"ti":5}})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{"ti":"x\u0000"}})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{"title":"x"}})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{"zz":"x"}})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{"fp":"x"}})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{"wi":"wide"}})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{"wi":"4294967296"}})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{"track":"65536"}})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{"du":"1 minute"}})",
     "'edits' has what cannot be edited so"},
    {R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{"vt":"maybe"}})",
     "'edits' has what cannot be edited so"},
};

constexpr char kGoodItem[] = R"({"id":5,"path":"good","size":1,"time":1,"type":"GIF"})";

TEST_F(LibraryFileTest, ItemsThatMakeNoSenseAreLeftOutAndExplained) {
    EXPECT_EQ(LoadItems(kGoodItem), LoadResult::Loaded);
    for (const auto& theRow : kBadItems) {
        SCOPED_TRACE(theRow.mItem);
        const std::string theText =
            kHead + "\"last\":5,\"items\":[" + kGoodItem + "," + theRow.mItem + "]," + kTail;
        mDir.Write("library.json", theText);
        MediaLibrary theLibrary;
        EXPECT_EQ(Load(theLibrary), LoadResult::Damaged);
        EXPECT_EQ(mError, "ERROR: '" + mPath + "' has a bad entry, which is left out: items[1]: " +
                              theRow.mReason + "; all of it is kept as '" + mPath + ".bad'");
        EXPECT_EQ(mDir.Read("library.json.bad"), theText);
        EXPECT_EQ(mDir.Read("library.json"), theText);
        EXPECT_EQ(theLibrary.GetItems().size(), 1u);
        EXPECT_STREQ(theLibrary.FindItem(5)->GetPath(), "good");
    }
}

TEST_F(LibraryFileTest, BadEntriesAreCountedByReason) {
    const std::string theItem = R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF"})";
    mDir.Write("library.json",
               kHead + R"("last":0,"items":[{},)" + theItem + "," + theItem + ",5,{}," + theItem +
                   R"(],"directories":[{"path":"m"},{"path":"m"},{"path":"n","others":-1}],)"
                   R"("refusals":[{"path":"a","reason":"x"},{"path":"b","reason":1},)"
                   R"({"path":"c","reason":"ab"},{"path":"c","reason":"x"}]})");
    MediaLibrary theLibrary;
    EXPECT_EQ(Load(theLibrary), LoadResult::Damaged);
    EXPECT_EQ(
        mError,
        "ERROR: '" + mPath +
            "' has 10 bad entries, which are left out: items[0]: it has no path (2 such); "
            "items[2]: 'id' is that of another item (2 such); items[3]: is no object; "
            "directories[1]: 'path' is that of another directory; directories[2]: 'others' is "
            "no number from 0 to 18446744073709551615; ...; all of it is kept as '" +
            mPath + ".bad'");
    EXPECT_EQ(theLibrary.GetItems().size(), 1u);
    EXPECT_EQ(theLibrary.GetDirectoryCount(), 1u);
    EXPECT_EQ(theLibrary.GetRefusalCount(), 1u);
    EXPECT_EQ(theLibrary.GetLastID(), 1u);
}

TEST_F(LibraryFileTest, ReasonsOfRefusalsCannotSteerATerminal) {
    mDir.Write("library.json", kHead + R"("last":0,"items":[],"directories":[],)"
                                       R"("refusals":[{"path":"a","reason":"\u001b[2Jx\ny"}]})");
    MediaLibrary theLibrary;
    EXPECT_EQ(Load(theLibrary), LoadResult::Loaded);
    EXPECT_STREQ(theLibrary.CountReasons().at(0).first, "\\x1B[2Jx\\x0Ay");
}

TEST_F(LibraryFileTest, ACodeThatIsNoCharacterIsFineWhereNoNULIs) {
    EXPECT_EQ(LoadItems(R"({"id":1,"path":"\uFFFF","size":1,"time":1,"type":"GIF"})"),
              LoadResult::Loaded);
    EXPECT_EQ(LoadItems(R"({"id":1,"path":"\\u0000","size":1,"time":1,"type":"GIF"})"),
              LoadResult::Loaded);
}

TEST_F(LibraryFileTest, OddPathsAreAsGoodAsOthers) {
    EXPECT_EQ(LoadItems(R"({"id":1,"path":"a/../b","size":1,"time":1,"type":"GIF"},)"
                        R"({"id":2,"path":"//","size":1,"time":1,"type":"GIF"},)"
                        R"({"id":3,"bytes":"ff0a","size":1,"time":1,"type":"?"})"),
              LoadResult::Loaded);
}

TEST_F(LibraryFileTest, NumbersGoOnBehindTheHighestOne) {
    mDir.Write("library.json", kHead + "\"last\":2,\"items\":[" + kGoodItem + "]," + kTail);
    MediaLibrary theLibrary;
    EXPECT_EQ(Load(theLibrary), LoadResult::Loaded);
    EXPECT_EQ(theLibrary.GetLastID(), 5u);
    EXPECT_EQ(LoadItems("", "2147483647"), LoadResult::Loaded);
    EXPECT_EQ(LoadItems("", "2147483648"), LoadResult::Broken);
}

TEST_F(LibraryFileTest, HugeEntriesAreSurvived) {
    std::string theText = R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","title":")" +
                          std::string(5000000, 't') + R"(","cover":{"mime":"x","pieces":[0,1)";
    for (int i = 1; i < 200000; ++i) {
        theText += "," + std::to_string(i * 10) + ",1";
    }
    EXPECT_EQ(LoadItems(theText + "]}}"), LoadResult::Loaded);
    std::string theEdits;
    for (int i = 0; i < 100000; ++i) {
        theEdits += (i == 0 ? "\"" : ",\"") + std::to_string(i) + "\":\"\"";
    }
    EXPECT_EQ(LoadItems(R"({"id":1,"path":"a","size":1,"time":1,"type":"GIF","edits":{)" +
                        theEdits + "}}"),
              LoadResult::Damaged);
    std::string theItems = "{}";
    for (int i = 0; i < 100000; ++i) {
        theItems += ",{}";
    }
    EXPECT_EQ(LoadItems(theItems), LoadResult::Damaged);
    EXPECT_THAT(mError, StartsWith("ERROR: '" + mPath +
                                   "' has 100001 bad entries, which are left out: items[0]: it "
                                   "has no path (100001 such); all of it"));
}

TEST_F(LibraryFileTest, WhatCannotBeCopiedAsideIsLeftAlone) {
    mDir.MakeDir("library.json.bad");
    mDir.Write("library.json", kHead + "\"last\":5,\"items\":[" + kGoodItem + ",{}]," + kTail);
    MediaLibrary theLibrary;
    EXPECT_EQ(Load(theLibrary), LoadResult::Unreadable);
    EXPECT_EQ(mError, "ERROR: '" + mPath +
                          "' has a bad entry, which is left out: items[1]: it has no path; it "
                          "cannot be copied aside and is left alone");
    EXPECT_EQ(theLibrary.GetItems().size(), 1u);
}

TEST_F(LibraryFileTest, WhatIsNoLibraryIsBroken) {
    const std::string kTexts[] = {
        "{}",
        "[]",
        "null",
        "\"vxmedia\"",
        R"({"program":"other","format":1,"version":"1.0.0","items":[],)" + kTail,
        R"({"program":"vxmedia","format":2,"version":"1.0.0","items":[],)" + kTail,
        R"({"program":"vxmedia","version":"1.0.0","items":[],)" + kTail,
        kHead + kTail,
        kHead + R"("items":{},)" + kTail,
        kHead + R"("items":[],"directories":[]})",
    };
    for (const std::string& theText : kTexts) {
        SCOPED_TRACE(theText);
        EXPECT_EQ(LoadText(theText), LoadResult::Broken);
    }
}

TEST_F(LibraryFileTest, WhatIsNoJSONIsBrokenAndSaysWhere) {
    const struct {
        std::string mText;
        size_t mPosition;
    } kRows[] = {
        {"", 1},
        {"{", 2},
        {kHead, kHead.size() + 1},
        {std::string(1000001, '['), 1001},
        {"{\"program\":\"\xFF\"}", 13},
        {std::string("{}\0", 3), 3},
    };
    for (const auto& theRow : kRows) {
        EXPECT_EQ(LoadText(theRow.mText), LoadResult::Broken);
        EXPECT_EQ(mError, "ERROR: '" + mPath + "' is not JSON at byte " +
                              std::to_string(theRow.mPosition) + "; it is kept as '" + mPath +
                              ".bad'");
    }
}

TEST_F(LibraryFileTest, AFileThatIsTooLargeIsPutAsideUnread) {
    mDir.Write("library.json", "");
    std::filesystem::resize_file(mPath, 256 * 1024 * 1024 + 1);
    vxtest::ScriptedIO theIO;
    MediaLibrary theLibrary;
    EXPECT_EQ(Load(theLibrary), LoadResult::Broken);
    EXPECT_EQ(mError, "ERROR: '" + mPath + "' is too large for a library; it is kept as '" + mPath +
                          ".bad'");
    EXPECT_EQ(theIO.mReadCount, 0u);
}

TEST_F(LibraryFileTest, WhatCannotBeReadIsLeftAlone) {
    mDir.Write("library.json", "{}");
    MediaLibrary theLibrary;
    {
        vxtest::ScriptedIO theIO;
        theIO.mReads = {Fails(EIO), Fails(EIO)};
        EXPECT_EQ(Load(theLibrary), LoadResult::Unreadable);
    }
    EXPECT_THAT(mError, StartsWith("ERROR: "));
    EXPECT_EQ(mDir.Read("library.json"), "{}");

    mDir.MakeDir("library.json.bad/full");
    EXPECT_EQ(Load(theLibrary), LoadResult::Unreadable);
    EXPECT_EQ(mError, "ERROR: '" + mPath +
                          "' is no library of this program; it cannot be put aside and is left "
                          "alone");
    EXPECT_EQ(mDir.Read("library.json"), "{}");

    std::filesystem::remove(mPath);
    mDir.MakeDir("library.json");
    EXPECT_EQ(Load(theLibrary), LoadResult::Unreadable);
}

TEST_F(LibraryFileTest, AFileThatBreaksHalfwayLeavesTheLibraryAlone) {
    FillLibrary();
    mDir.Write("library.json", kHead + R"("last":9,"items":[{"id":9,"path":"a","size":1,"time":1,)"
                                       R"("type":"GIF"}],"directories":[]})");
    EXPECT_EQ(Load(mLibrary), LoadResult::Broken);
    EXPECT_EQ(mLibrary.GetItems().size(), 3u);
    EXPECT_EQ(mLibrary.FindItem(9), nullptr);
}

TEST_F(LibraryFileTest, RandomDamageIsSurvived) {
    FillLibrary();
    ASSERT_EQ(Save(), "");
    const std::string theGood = mDir.Read("library.json");
    std::mt19937 theChance(7);
    const char kPieces[] = "{}[]\",:0129-.etru\\\xFF\x80";
    size_t theLoaded = 0;
    size_t theDamaged = 0;
    for (int i = 0; i < 500; ++i) {
        std::string theText = theGood;
        for (size_t j = theChance() % 3; j < 3; ++j) {
            const size_t thePos = theChance() % theText.size();
            const char thePiece = kPieces[theChance() % (sizeof(kPieces) - 1)];
            switch (theChance() % 3) {
                case 0:
                    theText[thePos] = thePiece;
                    break;
                case 1:
                    theText.insert(thePos, 1, thePiece);
                    break;
                default:
                    theText.erase(thePos, 1 + theChance() % 8);
                    break;
            }
        }
        const LoadResult theResult = LoadText(theText);
        theLoaded += theResult == LoadResult::Loaded ? 1 : 0;
        theDamaged += theResult == LoadResult::Damaged ? 1 : 0;
        EXPECT_NE(theResult, LoadResult::Missing);
        EXPECT_NE(theResult, LoadResult::Unreadable);
    }
    EXPECT_GT(theLoaded, 0u);
    EXPECT_GT(theDamaged, 0u);
    EXPECT_LT(theLoaded + theDamaged, 500u);
}

TEST_F(LibraryFileTest, AHugeLibraryComesBackWhole) {
    mLibrary.BeginScan();
    for (uint32_t i = 0; i < 20000; ++i) {
        mLibrary.AddItem(vxCString::Format("/music/%u/%u.mp3", i % 100, i), FileOf(i, i),
                         TaggedSound());
    }
    ASSERT_EQ(Save(), "");
    MediaLibrary theLibrary;
    ASSERT_EQ(Load(theLibrary), LoadResult::Loaded);
    EXPECT_EQ(theLibrary.GetItems().size(), 20000u);
    EXPECT_STREQ(theLibrary.FindItem(12346)->GetPath(), "/music/45/12345.mp3");
}

}  // namespace
