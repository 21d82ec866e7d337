#include "cache/DetailsCache.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MemorySource.h"
#include "WorkerLoop.h"
#include "support/Reports.h"
#include "support/TempDir.h"

using namespace vxmedia;
using vxtest::BigEndian;
using vxtest::Raw;
using vxtest::Reports;
using vxtest::TempDir;

namespace {

const std::string kGIF = Raw("GIF89a\x05\x00\x04\x00\x00\x00\x00");

// A FLAC file that is nothing but its description and a cover.
std::string FLAC(const std::string& aCover, const std::string& aMimeType = "image/gif") {
    std::string theInfo = BigEndian(4096, 2) + BigEndian(4096, 2) + std::string(6, '\0');
    theInfo += BigEndian(uint64_t{44100} << 44 | uint64_t{1} << 41 | uint64_t{15} << 36 | 44100, 8);
    theInfo += std::string(16, '\0');
    const std::string thePicture = BigEndian(3, 4) + BigEndian(aMimeType.size(), 4) + aMimeType +
                                   std::string(20, '\0') + BigEndian(aCover.size(), 4) + aCover;
    return "fLaC" + BigEndian(0, 1) + BigEndian(theInfo.size(), 3) + theInfo + BigEndian(0x86, 1) +
           BigEndian(thePicture.size(), 3) + thePicture;
}

// A main loop with a pool, and a cache of details.
class DetailsCacheTest : public testing::Test {
protected:
    // What it says about a file goes to mAnswers.
    void Ask(const std::string& aPath) {
        mCache.Ask(aPath.c_str(), [this](const MediaDetails& aDetails) {
            mAnswers.emplace_back(aDetails.mError.IsEmpty() ? aDetails.mCover.c_str()
                                                            : aDetails.mError.c_str());
        });
    }

    void RunUntil(size_t anAnswerCount) {
        mLoop.RunUntil([this, anAnswerCount] { return mAnswers.size() >= anAnswerCount; });
    }

    std::string AskAndWait(const std::string& aPath) {
        mAnswers.clear();
        Ask(aPath);
        RunUntil(1);
        return mAnswers[0];
    }

    // Asks where the answer must be there already.
    std::string AskAtOnce(const std::string& aPath) {
        mAnswers.clear();
        Ask(aPath);
        return mAnswers.empty() ? "later" : mAnswers[0];
    }

    uint64_t FileCount() const { return mCache.GetStatus().mFiles; }

    Reports mReports;  // what the library logs about files that have gone
    TempDir mDir;
    WorkerLoop mLoop{2};
    DetailsCache mCache{mLoop.mPool};
    std::vector<std::string> mAnswers;
};

TEST_F(DetailsCacheTest, TheCoverIsDescribed) {
    const struct {
        std::string mFile;
        const char* mAnswer;
    } kRows[] = {
        {FLAC(kGIF), "GIF 5x4, 13 bytes"},
        {FLAC(kGIF, "image/png"), "GIF 5x4, 13 bytes"},
        {FLAC("anything", "image/webp"), "image/webp, 8 bytes"},
        {kGIF, "-"},
        {"no media", "-"},
        {"", "-"},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow.mAnswer);
        EXPECT_EQ(AskAndWait(mDir.Write("file", theRow.mFile)), theRow.mAnswer);
        std::filesystem::remove(mDir / "file");
    }
}

TEST_F(DetailsCacheTest, DetailsComeLaterTheFirstTimeAndAtOnceAfterwards) {
    const std::string thePath = mDir.Write("a", FLAC(kGIF));
    EXPECT_EQ(AskAtOnce(thePath), "later");
    RunUntil(1);
    EXPECT_EQ(AskAtOnce(thePath), "GIF 5x4, 13 bytes");
    EXPECT_EQ(FileCount(), 1u);
    EXPECT_EQ(mCache.GetStatus().mBytes, sizeof(CachedDetails) + thePath.size() + 17);
    EXPECT_EQ(mLoop.mPool.GetWorkers()[0].mJobCount + mLoop.mPool.GetWorkers()[1].mJobCount, 1u);
}

TEST_F(DetailsCacheTest, AllWhoAskMeanwhileAreAnsweredByOneReading) {
    mLoop.mPool.SetThreadCount(1);
    const std::string thePath = mDir.Write("a", FLAC(kGIF));
    for (int i = 0; i < 5; ++i) {
        Ask(thePath);
    }
    RunUntil(5);
    EXPECT_EQ(mAnswers, std::vector<std::string>(5, "GIF 5x4, 13 bytes"));
    EXPECT_EQ(mLoop.mPool.GetWorkers()[0].mJobCount, 1u);
}

TEST_F(DetailsCacheTest, AFileThatHasChangedIsReadAgain) {
    const std::string thePath = mDir.Write("a", FLAC(kGIF));
    AskAndWait(thePath);
    mDir.Write("a", FLAC("other", "image/x"));
    EXPECT_EQ(AskAtOnce(thePath), "later");
    RunUntil(1);
    EXPECT_EQ(mAnswers[0], "image/x, 5 bytes");
    EXPECT_EQ(AskAtOnce(thePath), "image/x, 5 bytes");
}

TEST_F(DetailsCacheTest, AFileThatHasGoneIsToldAndNotKept) {
    const std::string thePath = mDir.Write("a", FLAC(kGIF));
    AskAndWait(thePath);
    std::filesystem::remove(thePath);
    EXPECT_EQ(AskAndWait(thePath), "ERROR: The file '" + thePath + "' has gone");
    EXPECT_EQ(FileCount(), 0u);
    EXPECT_EQ(mCache.GetStatus().mBytes, 0u);
    mDir.Write("a", FLAC(kGIF));
    EXPECT_EQ(AskAndWait(thePath), "GIF 5x4, 13 bytes");
}

TEST_F(DetailsCacheTest, OnlyTheFilesUsedLastAreKept) {
    std::vector<std::string> thePaths;
    for (const char* theName : {"a", "b", "c", "d", "e"}) {
        thePaths.push_back(mDir.Write(theName, FLAC(kGIF)));
    }
    // One more than the limit stays, as in every such cache.
    mCache.SetLimits(SIZE_MAX, 2);
    for (const std::string& thePath : thePaths) {
        AskAndWait(thePath);
    }
    EXPECT_EQ(FileCount(), 3u);
    EXPECT_EQ(AskAtOnce(thePaths[4]), "GIF 5x4, 13 bytes");
    EXPECT_EQ(AskAtOnce(thePaths[2]), "GIF 5x4, 13 bytes");
    EXPECT_EQ(AskAtOnce(thePaths[1]), "later");
    RunUntil(1);
    EXPECT_EQ(AskAtOnce(thePaths[2]), "GIF 5x4, 13 bytes");
    EXPECT_EQ(AskAtOnce(thePaths[3]), "later");
    RunUntil(1);
    mCache.SetLimits(1, 2);
    EXPECT_EQ(FileCount(), 1u);
    EXPECT_EQ(AskAtOnce(thePaths[3]), "GIF 5x4, 13 bytes");
}

TEST_F(DetailsCacheTest, AnswersComeWhateverTheLimits) {
    mCache.SetLimits(0, 0);
    mLoop.mPool.SetThreadCount(3);
    // All files are there before somebody reads one.
    std::vector<std::string> thePaths;
    for (int i = 0; i < 20; ++i) {
        thePaths.push_back(mDir.Write("f" + std::to_string(i), FLAC(kGIF)));
    }
    for (size_t i = 0; i < 50; ++i) {
        Ask(thePaths[i % 20]);
    }
    RunUntil(50);
    EXPECT_EQ(mAnswers, std::vector<std::string>(50, "GIF 5x4, 13 bytes"));
    EXPECT_EQ(FileCount(), 1u);
}

TEST_F(DetailsCacheTest, ThePoolMayStopWhileSomebodyWaits) {
    for (int i = 0; i < 20; ++i) {
        Ask(mDir.Write("f" + std::to_string(i), FLAC(kGIF)));
    }
    mLoop.mPool.Stop();
    EXPECT_TRUE(mAnswers.empty());
    EXPECT_EQ(FileCount(), 0u);
}

}  // namespace
