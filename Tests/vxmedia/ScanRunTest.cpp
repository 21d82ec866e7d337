#include "ScanRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>

#include "support/TempDir.h"
#include "vxmedia/StubbornDirectories.h"
#include "vxmedia/WorkerLoop.h"

using namespace vxmedia;

namespace {

using vxtest::StubbornDirectories;
using vxtest::TempDir;
namespace fs = std::filesystem;

const std::string kGIF("GIF89a\x05\x00\x04\x00\x00\x00\x00", 13);

// Scans into a library, with some threads.
class Scanner {
public:
    explicit Scanner(size_t aThreadCount) : mLoop(aThreadCount) {}

    // Returns what the scan has found: media, others, refused, directories.
    std::string Scan(const std::string& aRoot) {
        ScanRun theRun(mLibrary, mProbes, mLoop.mPool, mOptions, aRoot.c_str(), [] {});
        theRun.Begin();
        mLoop.RunUntil([&theRun] {
            while (theRun.Step()) {}
            return theRun.IsOver();
        });
        theRun.End();
        EXPECT_FALSE(theRun.HasJobs());
        mRefusals.clear();
        for (const ScanRefusal& theRefusal : theRun.GetFirstRefusals()) {
            mRefusals += std::string(theRefusal.mPath) + ": " + theRefusal.mReason.c_str() + "\n";
        }
        const ScanCounts& theCounts = theRun.GetCounts();
        EXPECT_EQ(theCounts.mDirectories, mLibrary.GetDirectoryCount());
        return std::to_string(theCounts.mMedia) + " " + std::to_string(theCounts.mOthers) + " " +
               std::to_string(theCounts.mRefused) + " " + std::to_string(theCounts.mDirectories);
    }

    // Returns the paths of the items in the order of their numbers.
    std::vector<std::string> PathsByNumber() const {
        std::map<uint32_t, std::string> thePaths;
        for (const auto& theEntry : mLibrary.GetItems()) {
            thePaths[theEntry.second->GetID()] = theEntry.first.c_str();
        }
        std::vector<std::string> theResult;
        for (const auto& thePath : thePaths) {
            theResult.push_back(thePath.second);
        }
        return theResult;
    }

    MediaProbes mProbes;
    MediaLibrary mLibrary;
    ScanOptions mOptions;
    WorkerLoop mLoop;
    std::string mRefusals;
};

// The plain rule: the files of a directory by their names, then its directories by theirs.
void AddPaths(const fs::path& aDirectory, std::vector<std::string>& aPaths) {
    std::vector<fs::path> theFiles;
    std::vector<fs::path> theDirectories;
    for (const fs::directory_entry& theEntry : fs::directory_iterator(aDirectory)) {
        (theEntry.is_directory() ? theDirectories : theFiles).push_back(theEntry.path());
    }
    const auto theLess = [](const fs::path& aLeft, const fs::path& aRight) {
        return aLeft.string() < aRight.string();
    };
    std::sort(theFiles.begin(), theFiles.end(), theLess);
    std::sort(theDirectories.begin(), theDirectories.end(), theLess);
    for (const fs::path& theFile : theFiles) {
        aPaths.push_back(theFile.string());
    }
    for (const fs::path& theDirectory : theDirectories) {
        AddPaths(theDirectory, aPaths);
    }
}

std::vector<std::string> Model(const TempDir& aDir) {
    std::vector<std::string> thePaths;
    AddPaths(aDir.Path(), thePaths);
    return thePaths;
}

TEST(ScanRunTest, NumbersAreTheSameForAnyNumberOfThreads) {
    const TempDir theDir;
    std::mt19937 theRandom(20261120);
    std::vector<std::string> theDirectories = {"."};
    for (int i = 0; i < 60; ++i) {
        const std::string theParent = theDirectories[theRandom() % theDirectories.size()];
        theDirectories.push_back(theParent + "/" + std::to_string(theRandom() % 1000));
        theDir.MakeDir(theDirectories.back());
    }
    for (int i = 0; i < 500; ++i) {
        theDir.Write(theDirectories[theRandom() % theDirectories.size()] + "/" +
                         std::to_string(theRandom()) + ".gif",
                     kGIF);
    }
    const std::vector<std::string> theWanted = Model(theDir);
    for (const size_t theThreadCount : {1, 2, 8}) {
        SCOPED_TRACE(theThreadCount);
        Scanner theScanner(theThreadCount);
        theScanner.Scan(theDir.Path());
        EXPECT_EQ(theScanner.PathsByNumber(), theWanted);
    }
}

TEST(ScanRunTest, NumbersAreTheSameWhenListingsComeLate) {
    const TempDir theDir;
    for (const char* theName : {"a", "a/b", "c", "c/d", "e"}) {
        theDir.MakeDir(theName);
        theDir.Write(std::string(theName) + "/x.gif", kGIF);
    }
    StubbornDirectories theDirectories;
    theDirectories.Fail(theDir / "a", 1);
    theDirectories.Fail(theDir / "c/d", 2);
    Scanner theScanner(4);
    EXPECT_EQ(theScanner.Scan(theDir.Path()), "5 0 0 6");
    EXPECT_EQ(theScanner.PathsByNumber(), Model(theDir));
}

TEST(ScanRunTest, ListsOfManyTasksAreWorkedOff) {
    const TempDir theDir;
    theDir.MakeDir("many");
    for (int i = 0; i < 700; ++i) {
        theDir.MakeDir(std::to_string(i));
        theDir.Write("many/" + std::to_string(i) + ".gif", kGIF);
    }
    for (int i = 0; i < 700; i += 7) {
        theDir.Write(std::to_string(i) + "/x.gif", kGIF);
    }
    for (const size_t theThreadCount : {1, 8}) {
        SCOPED_TRACE(theThreadCount);
        Scanner theScanner(theThreadCount);
        EXPECT_EQ(theScanner.Scan(theDir.Path()), "800 0 0 702");
        EXPECT_EQ(theScanner.PathsByNumber(), Model(theDir));
        // Known now, and not read.
        EXPECT_EQ(theScanner.Scan(theDir.Path()), "800 0 0 702");
        EXPECT_EQ(theScanner.PathsByNumber(), Model(theDir));
    }
}

TEST(ScanRunTest, ADirectoryThatStaysUnreadableIsRefusedWithTheErrorsBelow) {
    const TempDir theDir;
    theDir.MakeDir("a");
    theDir.Write("a/x.gif", kGIF);
    theDir.Write("b.gif", kGIF);
    StubbornDirectories theDirectories;
    theDirectories.Fail(theDir / "a", 3);
    Scanner theScanner(2);
    EXPECT_EQ(theScanner.Scan(theDir.Path()), "1 0 1 2");
    EXPECT_EQ(theScanner.mRefusals,
              theDir / "a" + ": the directory cannot be read (error: 1 [scan] 'tried 3 times')\n");
    const auto theReasons = theScanner.mLibrary.CountReasons();
    ASSERT_EQ(theReasons.size(), 1u);
    EXPECT_STREQ(theReasons[0].first, "the directory cannot be read");

    EXPECT_EQ(theScanner.Scan(theDir.Path()), "2 0 0 2");
    EXPECT_EQ(theScanner.mLibrary.GetRefusalCount(), 0u);
}

TEST(ScanRunTest, AKnownDirectoryKeepsItsPathAndItsFilesTheirNumbers) {
    const TempDir theDir;
    theDir.MakeDir("a/b");
    theDir.Write("a/x.gif", kGIF);
    theDir.Write("a/b/y.gif", kGIF);
    theDir.Link("link", "a");
    Scanner theScanner(2);
    EXPECT_EQ(theScanner.Scan(theDir / "a"), "2 0 0 2");
    const std::vector<std::string> thePaths = theScanner.PathsByNumber();
    fs::remove(theDir / "a/b/y.gif");
    theDir.Write("a/b/z.gif", kGIF);
    EXPECT_EQ(theScanner.Scan(theDir / "link"), "2 0 0 2");
    EXPECT_EQ(theScanner.PathsByNumber(),
              (std::vector<std::string>{theDir / "a/x.gif", theDir / "a/b/z.gif"}));
    EXPECT_EQ(theScanner.mLibrary.FindItem(1)->GetPath(), (theDir / "a/x.gif").c_str());
    EXPECT_EQ(theScanner.mLibrary.FindItem(2), nullptr);
}

TEST(ScanRunTest, AFileMayBeScannedAlone) {
    const TempDir theDir;
    theDir.Write("x.gif", kGIF);
    theDir.Write("y.txt", "text");
    theDir.Link("link", "x.gif");
    Scanner theScanner(2);
    EXPECT_EQ(theScanner.Scan(theDir / "x.gif"), "1 0 0 0");
    EXPECT_EQ(theScanner.Scan(theDir / "link"), "1 0 0 0");
    EXPECT_EQ(theScanner.Scan(theDir / "y.txt"), "0 1 0 0");
    EXPECT_EQ(theScanner.Scan(theDir / "none"), "0 0 1 0");
    EXPECT_EQ(theScanner.mLibrary.GetItems().size(), 2u);
}

TEST(ScanRunTest, CancellingGivesUpWhatIsNotInTheLibraryAndForgetsNothing) {
    const TempDir theDir;
    for (int i = 0; i < 50; ++i) {
        theDir.MakeDir(std::to_string(i));
        theDir.Write(std::to_string(i) + "/x.gif", kGIF);
    }
    Scanner theScanner(2);
    theScanner.Scan(theDir.Path());
    fs::remove(theDir / "0/x.gif");

    StubbornDirectories theDirectories;
    theDirectories.Fail(theDir / "1", 1000000);
    ScanRun theRun(theScanner.mLibrary, theScanner.mProbes, theScanner.mLoop.mPool,
                   theScanner.mOptions, theDir.Path().c_str(), [] {});
    theRun.Begin();
    // The first directory is in the library, and the second one keeps the others from it.
    theScanner.mLoop.RunUntil([&theRun] {
        while (theRun.Step()) {}
        return theRun.GetCounts().mDirectories == 2;
    });
    theRun.Cancel();
    EXPECT_TRUE(theRun.IsOver());
    theScanner.mLoop.RunUntil([&theRun] { return !theRun.HasJobs(); });
    EXPECT_EQ(theScanner.mLibrary.GetItems().size(), 50u);
    EXPECT_EQ(theScanner.mLibrary.GetDirectoryCount(), 51u);
}

}  // namespace
