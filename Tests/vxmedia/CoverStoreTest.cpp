#include "cache/CoverStore.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/Environment.h"
#include "support/Latch.h"
#include "support/Reports.h"
#include "support/ScriptedIO.h"
#include "support/TempDir.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using vxtest::Environment;
using vxtest::Fails;
using vxtest::Latch;
using vxtest::Moves;
using vxtest::Reports;
using vxtest::ScriptedIO;
using vxtest::TempDir;
using namespace vxmedia;

namespace {

constexpr size_t kMegabyte = 1 << 20;

std::string PNG(size_t aSize) {
    std::string theBytes = "\x89PNG\r\n\x1A\n";
    theBytes.resize(std::max(aSize, theBytes.size()), 'x');
    return theBytes;
}

// A store in a directory of its own, which it makes.
class CoverStoreTest : public testing::Test {
protected:
    CoverStoreTest() { SetPlace("base", 1); }

    void SetPlace(const std::string& aName, uint32_t aLimitMBytes) {
        mStore.SetPlace(CoverPlace{mDir / aName, aLimitMBytes});
    }

    // Fetches a cover that consists of these bytes.
    Cover Fetch(const char* aName, const std::string& aPicture) {
        return mStore.Fetch(aName, [&](std::vector<uint8_t>& aBytes) {
            ++mProduced;
            aBytes.assign(aPicture.begin(), aPicture.end());
            return vxCString();
        });
    }

    // Fetches a cover that cannot be produced.
    std::string FetchFailing(const char* aName) {
        return mStore
            .Fetch(aName,
                   [&](std::vector<uint8_t>&) {
                       ++mProduced;
                       return vxCString("ERROR: no picture");
                   })
            .mError.c_str();
    }

    std::string Empty(bool afRemoveDir) { return mStore.Empty(afRemoveDir).c_str(); }

    std::vector<std::string> Names(const std::string& aDirectory = "base/covers") {
        std::vector<std::string> theNames;
        for (const auto& theEntry : std::filesystem::directory_iterator(mDir / aDirectory)) {
            theNames.push_back(theEntry.path().filename().string());
        }
        return theNames;
    }

    uint64_t TotalSize() {
        uint64_t theTotal = 0;
        for (const auto& theEntry : std::filesystem::directory_iterator(mDir / "base/covers")) {
            theTotal += theEntry.file_size();
        }
        return theTotal;
    }

    Reports mReports;  // what the library logs about files that cannot be made
    TempDir mDir;
    CoverStore mStore;
    std::atomic<int> mProduced{0};
};

std::string Describe(const Cover& aCover) {
    return aCover.mError.IsEmpty()
               ? std::string(aCover.mMimeType) + " " + std::to_string(aCover.mBytes) +
                     (aCover.mfWritten ? " written" : " found")
               : aCover.mError.c_str();
}

TEST_F(CoverStoreTest, ACoverIsWrittenOnceAndFoundAfterwards) {
    const Cover theFirst = Fetch("a", PNG(100));
    EXPECT_EQ(Describe(theFirst), "image/png 100 written");
    EXPECT_EQ(theFirst.mPath.c_str(), mDir / "base/covers/a");
    EXPECT_EQ(mDir.Read("base/covers/a"), PNG(100));
    const Cover theSecond = Fetch("a", "other");
    EXPECT_EQ(Describe(theSecond), "image/png 100 found");
    EXPECT_EQ(theSecond.mPath.c_str(), mDir / "base/covers/a");
    EXPECT_EQ(mProduced, 1);
    EXPECT_EQ(Describe(Fetch("b", "other")), "application/octet-stream 5 written");
    EXPECT_THAT(Names(), UnorderedElementsAre("a", "b"));
}

TEST_F(CoverStoreTest, ANewStoreFindsWhatAnOldOneWrote) {
    Fetch("a", PNG(100));
    CoverStore theOther;
    theOther.SetPlace(CoverPlace{mDir / "base", 1});
    const Cover theCover = theOther.Fetch("a", [](std::vector<uint8_t>&) { return "ERROR: no"; });
    EXPECT_EQ(Describe(theCover), "image/png 100 found");
}

TEST_F(CoverStoreTest, TheFirstBytesTellTheMimeType) {
    const struct {
        std::string mBytes;
        const char* mMimeType;
    } kRows[] = {
        {"\xFF\xD8\xFF", "image/jpeg"},
        {"\xFF\xD8", "application/octet-stream"},
        {"\x89PNG\r\n\x1A\n", "image/png"},
        {"\x89PNG\r\n\x1A", "application/octet-stream"},
        {"GIF87a", "image/gif"},
        {"BM1", "image/bmp"},
        {std::string("II*\0", 4), "image/tiff"},
        {std::string("MM\0*", 4), "image/tiff"},
        {"RIFF1234WEBP", "image/webp"},
        {"RIFF1234WAVE", "application/octet-stream"},
        {"RIFF1234WEB", "application/octet-stream"},
        {"x", "application/octet-stream"},
    };
    int theNumber = 0;
    for (const auto& theRow : kRows) {
        const std::string theName = std::to_string(++theNumber);
        SCOPED_TRACE(theName);
        EXPECT_STREQ(Fetch(theName.c_str(), theRow.mBytes).mMimeType, theRow.mMimeType);
        EXPECT_STREQ(Fetch(theName.c_str(), theRow.mBytes).mMimeType, theRow.mMimeType);
    }
}

TEST_F(CoverStoreTest, ACoverThatCannotBeProducedLeavesNothing) {
    EXPECT_EQ(FetchFailing("a"), "ERROR: no picture");
    EXPECT_EQ(mProduced, 1);
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_EQ(Describe(Fetch("a", PNG(9))), "image/png 9 written");
    EXPECT_EQ(mStore.GetStatus().mWritten, 1u);
}

TEST_F(CoverStoreTest, ManyWhoAskForOneCoverHaveOneProducer) {
    constexpr int kThreads = 8;
    Latch theStart(kThreads);
    std::vector<Cover> theCovers(kThreads);
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&, i] {
            theStart.ArriveAndWait();
            theCovers[static_cast<size_t>(i)] = Fetch("a", PNG(1000));
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(mProduced, 1);
    int theWritten = 0;
    for (const Cover& theCover : theCovers) {
        theWritten += theCover.mfWritten ? 1 : 0;
        EXPECT_EQ(theCover.mBytes, 1000u);
    }
    EXPECT_EQ(theWritten, 1);
    EXPECT_EQ(mStore.GetStatus().mFound, 7u);
}

TEST_F(CoverStoreTest, WhoWaitedForAProducerThatFailsProducesTheCover) {
    Latch theBegun(1);
    Latch theSecondAsks(1);
    std::thread theFailing([&] {
        const Cover theCover = mStore.Fetch("a", [&](std::vector<uint8_t>&) {
            theBegun.CountDown();
            theSecondAsks.Wait();
            return vxCString("ERROR: no picture");
        });
        EXPECT_EQ(Describe(theCover), "ERROR: no picture");
    });
    theBegun.Wait();
    std::thread theWaiting([&] {
        theSecondAsks.CountDown();
        EXPECT_EQ(Describe(Fetch("a", PNG(10))), "image/png 10 written");
    });
    theFailing.join();
    theWaiting.join();
}

TEST_F(CoverStoreTest, AFullDiskIsTold) {
    Fetch("b", PNG(10));
    {
        ScriptedIO theIO;
        theIO.mWrites = {Moves(4), Fails(ENOSPC), Fails(ENOSPC)};
        EXPECT_EQ(Describe(Fetch("a", PNG(100))),
                  "ERROR: Unable to write '" + (mDir / "base/covers/a") + "': no space is left");
    }
    EXPECT_THAT(Names(), ElementsAre("b"));
    EXPECT_EQ(Describe(Fetch("a", PNG(100))), "image/png 100 written");
}

TEST_F(CoverStoreTest, ADirectoryThatOthersEmptyIsFilledAgain) {
    for (const char* theRemoved : {"base/covers/a", "base/covers", "base"}) {
        SCOPED_TRACE(theRemoved);
        Fetch("a", PNG(10));
        Fetch("b", PNG(10));
        std::filesystem::remove_all(mDir / theRemoved);
        EXPECT_EQ(Describe(Fetch("a", PNG(20))), "image/png 20 written");
        EXPECT_EQ(mDir.Read("base/covers/a"), PNG(20));
        mStore.Empty(false);
    }
}

TEST_F(CoverStoreTest, FilesThatOthersPutThereAreTaken) {
    Fetch("a", PNG(10));
    mDir.Write("base/covers/b", "GIF89a");
    EXPECT_EQ(Describe(Fetch("b", PNG(10))), "image/gif 6 found");
    EXPECT_EQ(mProduced, 1);
}

TEST_F(CoverStoreTest, AnEmptyFileCountsAsNone) {
    mDir.MakeDir("base/covers");
    mDir.Write("base/covers/known");
    EXPECT_EQ(Describe(Fetch("known", PNG(10))), "image/png 10 written");
    mDir.Write("base/covers/unknown");
    EXPECT_EQ(Describe(Fetch("unknown", PNG(10))), "image/png 10 written");
    EXPECT_THAT(Names(), UnorderedElementsAre("known", "unknown"));
}

TEST_F(CoverStoreTest, WhereADirectoryHasTheNameTheCoverIsRefused) {
    mDir.MakeDir("base/covers/a");
    EXPECT_EQ(Describe(Fetch("a", PNG(10))),
              "ERROR: Unable to keep covers in '" + (mDir / "base/covers/") + "'");
    EXPECT_EQ(mProduced, 0);
    EXPECT_EQ(Describe(Fetch("b", PNG(10))), "image/png 10 written");
}

TEST_F(CoverStoreTest, CoversBeyondTheLimitAreRemoved) {
    for (int i = 0; i < 10; ++i) {
        const std::string theName = std::to_string(i);
        EXPECT_EQ(Describe(Fetch(theName.c_str(), PNG(kMegabyte / 4 + 1))),
                  "image/png 262145 written");
        EXPECT_TRUE(mDir.Has("base/covers/" + theName));
        EXPECT_LE(TotalSize(), kMegabyte);
    }
    EXPECT_EQ(Names().size(), 3u);
}

TEST_F(CoverStoreTest, ACoverAsLargeAsTheLimitFitsAndALargerOneDoesNot) {
    EXPECT_EQ(Describe(Fetch("a", PNG(10))), "image/png 10 written");
    EXPECT_EQ(Describe(Fetch("b", PNG(kMegabyte + 1))),
              "ERROR: The cover has 1048577 bytes, more than all covers together may have");
    EXPECT_THAT(Names(), ElementsAre("a"));
    EXPECT_EQ(Describe(Fetch("b", PNG(kMegabyte))), "image/png 1048576 written");
    EXPECT_THAT(Names(), ElementsAre("b"));
}

TEST_F(CoverStoreTest, ALoneCoverThatGoesAgainAndAgainIsKeptEachTime) {
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(Describe(Fetch("a", PNG(kMegabyte * 2 / 3))), "image/png 699050 written");
        EXPECT_TRUE(mDir.Has("base/covers/a"));
        std::filesystem::remove(mDir / "base/covers/a");
    }
}

TEST_F(CoverStoreTest, ASmallerLimitCountsFromTheNextCoverOn) {
    SetPlace("base", 4);
    for (const char* theName : {"a", "b", "c"}) {
        Fetch(theName, PNG(kMegabyte - 100));
    }
    EXPECT_EQ(Names().size(), 3u);
    SetPlace("base", 1);
    EXPECT_EQ(Describe(Fetch("d", PNG(100))), "image/png 100 written");
    EXPECT_LE(TotalSize(), kMegabyte);
}

TEST_F(CoverStoreTest, TheLargestLimitDoesNotWrap) {
    SetPlace("base", 4096);
    Fetch("a", PNG(10));
    EXPECT_EQ(Describe(Fetch("b", PNG(10))), "image/png 10 written");
    EXPECT_EQ(Names().size(), 2u);
    EXPECT_EQ(mStore.GetStatus().mLimit, 4294967295u);
}

TEST_F(CoverStoreTest, EmptyingRemovesCoversAndTheirDirectory) {
    Fetch("a", PNG(10));
    EXPECT_EQ(Empty(false), "");
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_EQ(Describe(Fetch("a", PNG(10))), "image/png 10 written");
    EXPECT_EQ(Empty(true), "");
    EXPECT_THAT(Names("base"), IsEmpty());
    EXPECT_EQ(Empty(true), "");
    EXPECT_EQ(Describe(Fetch("a", PNG(10))), "image/png 10 written");
}

TEST_F(CoverStoreTest, EmptyingBeforeTheFirstUseRemovesWhatIsThere) {
    mDir.MakeDir("base/covers");
    mDir.Write("base/covers/a", "x");
    EXPECT_EQ(Empty(false), "");
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(CoverStoreTest, ADirectoryAmongTheCoversKeepsTheirDirectory) {
    mDir.MakeDir("base/covers/deep");
    EXPECT_EQ(Empty(false), "");
    EXPECT_EQ(Empty(true), "ERROR: Unable to empty '" + (mDir / "base/covers/") + "'");
    EXPECT_THAT(Names(), ElementsAre("deep"));
}

TEST_F(CoverStoreTest, AnotherPlaceCountsFromTheNextUseOn) {
    Fetch("a", PNG(10));
    SetPlace("deep/other", 1);
    EXPECT_EQ(Describe(Fetch("a", PNG(20))), "image/png 20 written");
    EXPECT_THAT(Names("deep/other/covers"), ElementsAre("a"));
    SetPlace("base", 1);
    EXPECT_EQ(Describe(Fetch("a", PNG(30))), "image/png 10 found");
}

TEST_F(CoverStoreTest, APlaceThatCannotBeMadeIsTold) {
    mDir.Write("file", "x");
    SetPlace("file", 1);
    EXPECT_EQ(Describe(Fetch("a", PNG(10))),
              "ERROR: Unable to keep covers in '" + (mDir / "file/covers/") + "'");
    EXPECT_EQ(Empty(true), "ERROR: Unable to keep covers in '" + (mDir / "file/covers/") + "'");
    EXPECT_EQ(mStore.GetStatus().mCovers, 0u);
    EXPECT_EQ(mProduced, 0);
    SetPlace("base", 1);
    EXPECT_EQ(Describe(Fetch("a", PNG(10))), "image/png 10 written");
}

TEST_F(CoverStoreTest, WithoutAPlaceTheSystemsDirectoryIsUsed) {
    const Environment theCachePath("VXCACHEPATH", (mDir / "system").c_str());
    mStore.SetPlace(CoverPlace());
    EXPECT_EQ(Fetch("a", PNG(10)).mPath.c_str(), mDir / "system/vxmedia/covers/a");
    const CoverStore::Status theStatus = mStore.GetStatus();
    EXPECT_EQ(theStatus.mDirectory.c_str(), mDir / "system/vxmedia/covers/");
    EXPECT_EQ(theStatus.mLimit, 64 * kMegabyte);
}

TEST_F(CoverStoreTest, TheStatusTellsWhatLiesInTheDirectory) {
    CoverStore::Status theStatus = mStore.GetStatus();
    EXPECT_EQ(theStatus.mDirectory.c_str(), mDir / "base/covers/");
    EXPECT_FALSE(mDir.Has("base"));
    EXPECT_EQ(theStatus.mCovers, 0u);
    Fetch("a", PNG(10));
    Fetch("b", PNG(20));
    Fetch("b", PNG(20));
    mDir.Write("base/covers/.c", "x");
    mDir.MakeDir("base/covers/deep");
    theStatus = mStore.GetStatus();
    EXPECT_EQ(theStatus.mCovers, 3u);
    EXPECT_EQ(theStatus.mBytes, 31u);
    EXPECT_EQ(theStatus.mLimit, kMegabyte);
    EXPECT_EQ(theStatus.mFound, 1u);
    EXPECT_EQ(theStatus.mWritten, 2u);
}

// Threads fetch few covers again and again while others empty the directory, in both ways.
TEST_F(CoverStoreTest, WhatIsAnsweredIsWholeWhateverOthersDo) {
    constexpr int kThreads = 4;
    std::vector<std::thread> theThreads;
    std::atomic<int> theRunning{kThreads};
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&, i] {
            std::mt19937 theChance(static_cast<unsigned>(i));
            for (int j = 0; j < 40; ++j) {
                const size_t theNumber = theChance() % 6;
                const std::string theName = "cover" + std::to_string(theNumber);
                const size_t theSize = 100000 + theNumber * 50000;
                const Cover theCover = Fetch(theName.c_str(), PNG(theSize));
                if (theCover.mError.IsEmpty()) {
                    EXPECT_EQ(theCover.mBytes, theSize);
                } else {
                    EXPECT_EQ(std::string(theCover.mError.c_str()),
                              "ERROR: Unable to keep covers in '" + (mDir / "base/covers/") + "'");
                }
                if (j % 13 == 12) {
                    mStore.Empty(theChance() % 2 == 0);
                }
            }
            --theRunning;
        });
    }
    while (theRunning > 0) {
        for (int i = 0; i < 6; ++i) {
            std::error_code theIgnored;
            std::filesystem::remove(mDir / ("base/covers/cover" + std::to_string(i)), theIgnored);
        }
        std::this_thread::yield();
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_TRUE(mReports.Assertions().empty());
    EXPECT_EQ(Empty(false), "");
    EXPECT_EQ(Describe(Fetch("a", PNG(10))), "image/png 10 written");
}

}  // namespace
