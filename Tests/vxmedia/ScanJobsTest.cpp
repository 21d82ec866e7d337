#include "ScanJobs.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "support/TempDir.h"
#include "vx/StringList.h"
#include "vxmedia/StubbornDirectories.h"

using namespace vxmedia;

namespace {

using vxtest::StubbornDirectories;
using vxtest::TempDir;

const std::string kGIF("GIF89a\x05\x00\x04\x00\x00\x00\x00", 13);

class ScanJobsTest : public testing::Test {
protected:
    ScanContextRef Context() { return std::make_shared<ScanContext>(mProbes, mOptions, this); }

    // Runs a job until it is done; notes after how many milliseconds it wants to be tried again.
    DirectoryListing List(const std::string& aPath, bool afFollow = false) {
        DirectoryListing theResult;
        DirectoryJob theJob(Context(), aPath.c_str(), afFollow,
                            [&theResult](DirectoryListing& aListing) { theResult = aListing; });
        mDelays.clear();
        while (const unsigned int theDelay = theJob.Run()) {
            mDelays.push_back(theDelay);
        }
        theJob.Finish();
        return theResult;
    }

    FileOutcome Read(const std::string& aPath, bool afFollow = false) {
        FileOutcome theResult;
        FilesJob theJob(Context(), afFollow, [&theResult](std::vector<FilesJob::File>& aFiles) {
            theResult = aFiles[0].mOutcome;
        });
        theJob.Add(aPath.c_str(), 7);
        EXPECT_EQ(theJob.Run(), 0u);
        theJob.Finish();
        return theResult;
    }

    static std::string Names(const DirectoryListing& aListing) {
        std::string theText;
        for (const ScanFile& theFile : aListing.mFiles) {
            theText += theFile.mName + " ";
        }
        for (const std::string& theName : aListing.mDirectories) {
            theText += theName + "/ ";
        }
        return theText;
    }

    MediaProbes mProbes;
    ScanOptions mOptions;
    std::vector<unsigned int> mDelays;
    const TempDir mDir;
};

TEST_F(ScanJobsTest, AListingIsSortedAndCountsWhatIsNeitherFileNorDirectory) {
    for (const char* theName : {"b", "a", "B", ".h", "a.b"}) {
        mDir.Write(theName);
    }
    mDir.MakeDir("d");
    mDir.MakeDir("c");
    mDir.Link("link", "a");
    mDir.Link("loop", ".");
    mkfifo((mDir / "pipe").c_str(), 0600);
    const DirectoryListing theListing = List(mDir.Path());
    EXPECT_EQ(Names(theListing), ".h B a a.b b c/ d/ ");
    EXPECT_EQ(theListing.mCounts.mLinks, 2u);
    EXPECT_EQ(theListing.mCounts.mSpecialFiles, 1u);
    EXPECT_EQ(theListing.mCounts.mOtherFiles, 0u);
    EXPECT_FALSE(theListing.mfUnreadable);
    EXPECT_EQ(theListing.mStatus.mKind, FileKind::Directory);
    EXPECT_EQ(theListing.mStatus.mIdentity, GetFileStatus(mDir.Path().c_str(), false).mIdentity);
}

TEST_F(ScanJobsTest, OptionsLeaveFilesOut) {
    mOptions.mfHidden = false;
    mOptions.mSkippedEndings = NameEndings(vxCSVStringList("part", '\\'));
    mDir.Write("a.part");
    mDir.Write("b.gif");
    mDir.Write(".c.gif");
    mDir.MakeDir("d.part");
    const DirectoryListing theListing = List(mDir.Path());
    EXPECT_EQ(Names(theListing), "b.gif d.part/ ");
    EXPECT_EQ(theListing.mCounts.mOtherFiles, 1u);
}

TEST_F(ScanJobsTest, AnUnreadableDirectoryIsTriedThreeTimes) {
    mDir.Write("a");
    StubbornDirectories theDirectories;
    theDirectories.Fail(mDir.Path(), 3);
    const DirectoryListing theListing = List(mDir.Path());
    EXPECT_EQ(mDelays, (std::vector<unsigned int>{250, 250}));
    EXPECT_TRUE(theListing.mfUnreadable);
    EXPECT_EQ(theListing.mTries, 3);
    EXPECT_EQ(theListing.mSystemError, 0);  // it could be opened now
    EXPECT_EQ(theListing.mStatus.mKind, FileKind::Directory);
}

TEST_F(ScanJobsTest, ADirectoryThatCanBeReadAgainIsListed) {
    mDir.Write("a");
    StubbornDirectories theDirectories;
    for (const int theFailures : {1, 2}) {
        theDirectories.Fail(mDir.Path(), theFailures);
        const DirectoryListing theListing = List(mDir.Path());
        EXPECT_EQ(mDelays.size(), static_cast<size_t>(theFailures));
        EXPECT_EQ(Names(theListing), "a ");
        EXPECT_FALSE(theListing.mfUnreadable);
    }
}

TEST_F(ScanJobsTest, ADirectoryThatHasGoneIsNotTriedAgain) {
    for (const std::string& thePath :
         {mDir / "none", mDir.Write("file"), mDir.Link("link", mDir.Path())}) {
        const DirectoryListing theListing = List(thePath);
        EXPECT_EQ(mDelays.size(), 0u);
        EXPECT_EQ(theListing.mStatus.mKind, FileKind::Missing);
        EXPECT_FALSE(theListing.mfUnreadable);
    }
    EXPECT_EQ(List(mDir / "link", true).mStatus.mKind, FileKind::Directory);
}

TEST_F(ScanJobsTest, TheReasonOfTheSystemIsTold) {
    mDir.MakeDir("shut");
    chmod((mDir / "shut").c_str(), 0);
    const DirectoryListing theListing = List(mDir / "shut");
    chmod((mDir / "shut").c_str(), 0700);
    if (!theListing.mfUnreadable) {
        GTEST_SKIP() << "this user may read everything";
    }
    EXPECT_EQ(theListing.mSystemError, EACCES);
}

TEST_F(ScanJobsTest, NobodyTriesAgainWhenTheScanIsCancelled) {
    StubbornDirectories theDirectories;
    theDirectories.Fail(mDir.Path(), 3);
    const ScanContextRef theContext = Context();
    theContext->mfCancelled = true;
    DirectoryJob theJob(theContext, mDir.Path().c_str(), false, [](DirectoryListing&) {});
    EXPECT_EQ(theJob.Run(), 0u);
    EXPECT_EQ(theJob.GetOwner(), this);
}

TEST_F(ScanJobsTest, FilesAreMediaRefusedOrOther) {
    mOptions.mExpectedEndings = NameEndings(vxCSVStringList("tif", '\\'));
    EXPECT_TRUE(Read(mDir.Write("a.gif", kGIF)).mReading.IsMedia());
    EXPECT_EQ(Read(mDir / "a.gif").mRefusal, nullptr);
    EXPECT_EQ(Read(mDir / "a.gif").mStatus.mSize, 13u);
    EXPECT_STREQ(Read(mDir.Write("b.gif")).mRefusal, "the file is empty");
    EXPECT_STREQ(Read(mDir.Write("c.tif", "text")).mRefusal, "the content is of no known format");
    const FileOutcome theOther = Read(mDir.Write("d.txt", "text"));
    EXPECT_EQ(theOther.mRefusal, nullptr);
    EXPECT_FALSE(theOther.mReading.IsMedia());
}

TEST_F(ScanJobsTest, WhatIsNoFileAnyMoreIsNotOpened) {
    EXPECT_STREQ(Read(mDir / "none").mRefusal, "the file has gone");
    mkfifo((mDir / "pipe").c_str(), 0600);
    EXPECT_STREQ(Read(mDir / "pipe").mRefusal, "the file has become something else");
    mDir.Write("a.gif", kGIF);
    mDir.Link("link", "a.gif");
    EXPECT_STREQ(Read(mDir / "link").mRefusal, "the file has become something else");
    EXPECT_TRUE(Read(mDir / "link", true).mReading.IsMedia());
}

TEST_F(ScanJobsTest, NothingIsReadWhenTheScanIsCancelled) {
    const ScanContextRef theContext = Context();
    theContext->mfCancelled = true;
    bool theIsRead = true;
    FilesJob theJob(theContext, false, [&theIsRead](std::vector<FilesJob::File>& aFiles) {
        theIsRead = aFiles[0].mOutcome.mStatus.mKind != FileKind::Missing;
    });
    EXPECT_TRUE(theJob.IsEmpty());
    theJob.Add(mDir.Write("a.gif", kGIF).c_str(), 0);
    EXPECT_FALSE(theJob.IsEmpty());
    theJob.Run();
    theJob.Finish();
    EXPECT_FALSE(theIsRead);
}

}  // namespace
