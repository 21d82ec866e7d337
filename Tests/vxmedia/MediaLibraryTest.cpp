#include "MediaLibrary.h"

#include <gtest/gtest.h>

#include <string>

using namespace vxmedia;

namespace {

MediaReading Picture(uint32_t aWidth) {
    MediaReading theReading;
    theReading.mFormat = &kMediaFormat_GIF;
    theReading.mFacts.mWidth = theReading.mFacts.mHeight = aWidth;
    return theReading;
}

FileStatus File(uint64_t aSize, int64_t aModified = 0) {
    FileStatus theStatus;
    theStatus.mKind = FileKind::Regular;
    theStatus.mSize = aSize;
    theStatus.mModified = aModified;
    return theStatus;
}

std::string Paths(const MediaLibrary& aLibrary) {
    std::string theText;
    for (const auto& theEntry : aLibrary.GetItems()) {
        theText += std::to_string(theEntry.second->GetID()) + ":" + theEntry.first.c_str() + " ";
    }
    return theText;
}

// A scan that finds pictures at these paths.
void Scan(MediaLibrary& aLibrary, const char* aRoot, std::initializer_list<const char*> aPaths) {
    aLibrary.BeginScan();
    for (const char* thePath : aPaths) {
        aLibrary.AddItem(thePath, File(10), Picture(5));
    }
    aLibrary.EndScan(aRoot);
}

TEST(MediaLibraryTest, ItemsAreNumberedAsFoundAndSortedByPath) {
    MediaLibrary theLibrary;
    Scan(theLibrary, "r", {"r/b", "r/a", "r/B", "r/\xFF", "r/a/x"});
    EXPECT_EQ(Paths(theLibrary), "3:r/B 2:r/a 5:r/a/x 1:r/b 4:r/\xFF ");
}

TEST(MediaLibraryTest, AnotherScanKeepsWhatIsThereAndForgetsWhatIsGone) {
    MediaLibrary theLibrary;
    Scan(theLibrary, "r", {"r/a", "r/b"});
    const vxRef<MediaItem> theItem = theLibrary.FindItem(2);

    Scan(theLibrary, "r", {"r/b", "r/c"});

    EXPECT_EQ(Paths(theLibrary), "2:r/b 3:r/c ");
    EXPECT_EQ(theLibrary.FindItem(1), nullptr);
    EXPECT_EQ(theLibrary.FindItem(2), theItem.Get());
    EXPECT_EQ(theLibrary.FindItem(0), nullptr);
    EXPECT_EQ(theLibrary.FindItem(4), nullptr);
}

TEST(MediaLibraryTest, OnlyWhatLiesBelowTheRootIsForgotten) {
    MediaLibrary theLibrary;
    Scan(theLibrary, "r", {"r/a", "r/s/b", "r/s-1", "r/sub"});
    Scan(theLibrary, "r/s", {});
    EXPECT_EQ(Paths(theLibrary), "1:r/a 3:r/s-1 4:r/sub ");
    Scan(theLibrary, "r/sub", {});
    EXPECT_EQ(Paths(theLibrary), "1:r/a 3:r/s-1 ");
    Scan(theLibrary, "q", {"q/x"});
    Scan(theLibrary, "/", {"/y"});
    EXPECT_EQ(Paths(theLibrary), "6:/y 5:q/x 1:r/a 3:r/s-1 ");
    Scan(theLibrary, "/", {});
    EXPECT_EQ(Paths(theLibrary), "5:q/x 1:r/a 3:r/s-1 ");
}

TEST(MediaLibraryTest, RefusalsAndOthersAreCountedOnce) {
    MediaLibrary theLibrary;
    for (int i = 0; i < 2; ++i) {
        theLibrary.BeginScan();
        DirectoryCounts theCounts;
        theCounts.mOtherFiles = 2;
        theCounts.mLinks = 3;
        theCounts.mSpecialFiles = 4;
        EXPECT_TRUE(theLibrary.AddDirectory("r", FileIdentity{1, 1}));
        EXPECT_TRUE(theLibrary.AddDirectory("r/s", FileIdentity{1, 2}));
        EXPECT_FALSE(theLibrary.AddDirectory("r", FileIdentity{1, 1}));
        theLibrary.AddCounts("r", theCounts);
        theLibrary.AddCounts("r/s", theCounts);
        theLibrary.AddRefusal("r/x", "z");
        theLibrary.AddRefusal("r/y", "a");
        theLibrary.AddRefusal("r/s/y", "z");
        theLibrary.EndScan("r");
    }
    EXPECT_EQ(theLibrary.GetDirectoryCount(), 2u);
    EXPECT_EQ(theLibrary.GetRefusalCount(), 3u);
    EXPECT_EQ(theLibrary.CountOthers().mOtherFiles, 4u);
    EXPECT_EQ(theLibrary.CountOthers().mLinks, 6u);
    EXPECT_EQ(theLibrary.CountOthers().mSpecialFiles, 8u);
    const auto theReasons = theLibrary.CountReasons();
    ASSERT_EQ(theReasons.size(), 2u);
    EXPECT_STREQ(theReasons[0].first, "a");
    EXPECT_EQ(theReasons[0].second, 1u);
    EXPECT_STREQ(theReasons[1].first, "z");
    EXPECT_EQ(theReasons[1].second, 2u);

    theLibrary.BeginScan();
    theLibrary.AddItem("r/x", File(10), Picture(5));
    theLibrary.EndScan("r/x");
    EXPECT_EQ(theLibrary.GetRefusalCount(), 2u);
}

TEST(MediaLibraryTest, DirectoriesAreKnownByTheirIdentity) {
    MediaLibrary theLibrary;
    theLibrary.BeginScan();
    theLibrary.AddDirectory("r", FileIdentity{1, 1});
    theLibrary.AddDirectory("r/s", FileIdentity{1, 2});
    theLibrary.AddDirectory("r/t", FileIdentity{2, 2});
    theLibrary.EndScan("r");
    EXPECT_STREQ(theLibrary.FindDirectory(FileIdentity{1, 2}), "r/s");
    EXPECT_STREQ(theLibrary.FindDirectory(FileIdentity{2, 2}), "r/t");
    EXPECT_STREQ(theLibrary.FindDirectory(FileIdentity{2, 1}), "");

    // One has moved, one is gone.
    theLibrary.BeginScan();
    theLibrary.AddDirectory("r", FileIdentity{1, 1});
    theLibrary.AddDirectory("r/new", FileIdentity{1, 2});
    theLibrary.EndScan("r");
    EXPECT_STREQ(theLibrary.FindDirectory(FileIdentity{1, 2}), "r/new");
    EXPECT_STREQ(theLibrary.FindDirectory(FileIdentity{2, 2}), "");
    EXPECT_EQ(theLibrary.GetDirectoryCount(), 2u);
}

TEST(MediaLibraryTest, AnotherScanRenewsTheFacts) {
    MediaLibrary theLibrary;
    Scan(theLibrary, "r", {"r/a"});
    theLibrary.BeginScan();
    theLibrary.AddItem("r/a", File(20), Picture(7));
    theLibrary.EndScan("r");
    EXPECT_EQ(theLibrary.FindItem(1)->GetSize(), 20u);
    EXPECT_EQ(theLibrary.FindItem(1)->GetFacts().mWidth, 7u);
}

TEST(MediaLibraryTest, AFileThatBreaksIsNoItemAnyMore) {
    MediaLibrary theLibrary;
    Scan(theLibrary, "r", {"r/a"});
    theLibrary.BeginScan();
    theLibrary.AddRefusal("r/a", "broken");
    theLibrary.EndScan("r");
    EXPECT_EQ(Paths(theLibrary), "");
    EXPECT_EQ(theLibrary.GetRefusalCount(), 1u);
}

TEST(MediaLibraryTest, AFileThatIsMendedIsNotRefusedAnyMore) {
    MediaLibrary theLibrary;
    theLibrary.BeginScan();
    theLibrary.AddRefusal("r/a", "broken");
    theLibrary.BeginScan();
    theLibrary.AddItem("r/a", File(10), Picture(5));
    EXPECT_EQ(theLibrary.GetRefusalCount(), 0u);
    theLibrary.AddRefusal("r/a", "broken");
    EXPECT_EQ(Paths(theLibrary), "");
    EXPECT_EQ(theLibrary.FindItem(1), nullptr);
}

TEST(MediaLibraryTest, AnItemThatIsKeptStaysAsItIs) {
    MediaLibrary theLibrary;
    Scan(theLibrary, "r", {"r/a", "r/b"});
    theLibrary.BeginScan();
    EXPECT_TRUE(theLibrary.KeepItem(2));
    EXPECT_FALSE(theLibrary.KeepItem(3));
    theLibrary.EndScan("r");
    EXPECT_EQ(Paths(theLibrary), "2:r/b ");
    EXPECT_EQ(theLibrary.FindItemByPath("r/b"), theLibrary.FindItem(2));
    EXPECT_EQ(theLibrary.FindItemByPath("r/a"), nullptr);
}

TEST(MediaLibraryTest, AnItemIsUnchangedWithTheSameSizeAndTime) {
    MediaLibrary theLibrary;
    theLibrary.BeginScan();
    theLibrary.AddItem("a", File(10, 1700000000000000001), Picture(5));
    const MediaItem& theItem = *theLibrary.FindItem(1);
    EXPECT_TRUE(theItem.IsUnchanged(File(10, 1700000000000000001)));
    EXPECT_FALSE(theItem.IsUnchanged(File(10, 1700000000000000002)));
    EXPECT_FALSE(theItem.IsUnchanged(File(11, 1700000000000000001)));
}

TEST(MediaLibraryTest, ADirectoryIsAddedOnceInAScanWhateverItsPath) {
    MediaLibrary theLibrary;
    theLibrary.BeginScan();
    EXPECT_TRUE(theLibrary.AddDirectory("r/a", FileIdentity{1, 1}));
    EXPECT_FALSE(theLibrary.AddDirectory("r/b", FileIdentity{1, 1}));
    EXPECT_TRUE(theLibrary.AddDirectory("r/c", FileIdentity{1, 2}));
    EXPECT_EQ(theLibrary.GetDirectoryCount(), 2u);
    theLibrary.BeginScan();
    EXPECT_TRUE(theLibrary.AddDirectory("r/b", FileIdentity{1, 1}));
    // What was r/b in an earlier scan may be another directory now.
    theLibrary.BeginScan();
    EXPECT_TRUE(theLibrary.AddDirectory("r/b", FileIdentity{1, 3}));
    EXPECT_TRUE(theLibrary.AddDirectory("r/d", FileIdentity{1, 1}));
}

MediaReading Song(const char* aTitle, const char* anAlbum) {
    MediaReading theReading;
    theReading.mFormat = &kMediaFormat_MP3;
    theReading.mFacts.mChannels = 2;
    theReading.mFacts.mDetail = vxCString("MPEG-1 layer III");
    theReading.mTags.mTitle = aTitle;
    theReading.mTags.mCreator = vxCString("Somebody");
    theReading.mTags.mAlbum = anAlbum;
    return theReading;
}

TEST(MediaLibraryTest, NeighboursShareTheMemoryOfTextsThatAreTheSame) {
    MediaLibrary theLibrary;
    theLibrary.BeginScan();
    theLibrary.AddItem("r/1", File(10), Song("One", "Colors"));
    theLibrary.AddItem("r/2", File(10), Song("Two", "Colors"));
    theLibrary.AddItem("r/3", File(10), Song("Three", "Shapes"));
    const MediaItem& theFirst = *theLibrary.FindItem(1);
    const MediaItem& theSecond = *theLibrary.FindItem(2);
    const MediaItem& theThird = *theLibrary.FindItem(3);

    EXPECT_EQ(theSecond.GetTags().mAlbum.c_str(), theFirst.GetTags().mAlbum.c_str());
    EXPECT_EQ(theThird.GetTags().mCreator.c_str(), theFirst.GetTags().mCreator.c_str());
    EXPECT_EQ(theThird.GetFacts().mDetail.c_str(), theFirst.GetFacts().mDetail.c_str());
    EXPECT_STREQ(theSecond.GetTags().mTitle, "Two");
    EXPECT_STREQ(theThird.GetTags().mAlbum, "Shapes");
}

TEST(MediaLibraryTest, AnItemThatIsReadAnewHasTheNewTags) {
    MediaLibrary theLibrary;
    theLibrary.BeginScan();
    theLibrary.AddItem("r/1", File(10), Song("One", "Colors"));
    theLibrary.AddItem("r/1", File(11), Picture(7));
    EXPECT_TRUE(theLibrary.FindItem(1)->GetTags().IsEmpty());
    theLibrary.AddItem("r/1", File(12), Song("Two", "Shapes"));
    EXPECT_STREQ(theLibrary.FindItem(1)->GetTags().mTitle, "Two");
    EXPECT_STREQ(theLibrary.FindItem(1)->MakeInfo()->GetTitle(), "Two");
}

}  // namespace
