#include "vx/BenchMark.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libvxOS/Chrono.h>

#include <sys/stat.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "support/Reports.h"
#include "support/TempDir.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

uint64_t sMilliseconds = 0;           // the clock of stopwatches, turned by hand
std::vector<std::string> sStopwatch;  // what was done to stopwatches
std::function<void()> sAtStart;       // called when a stopwatch starts

}  // namespace

void vxChrono_S_Init(vxChrono* aChrono) {
    sStopwatch.push_back("Init");
    aChrono->mStart = 0;
}

void vxChrono_Start_S(vxChrono* aChrono) {
    sStopwatch.push_back("Start");
    if (sAtStart) {
        sAtStart();
    }
    aChrono->mStart = sMilliseconds;
}

void vxChrono_GetTime_S_MS(const vxChrono* aChrono, uint32_t* aSeconds, uint32_t* aMilliseconds) {
    *aSeconds = static_cast<uint32_t>((sMilliseconds - aChrono->mStart) / 1000);
    *aMilliseconds = static_cast<uint32_t>((sMilliseconds - aChrono->mStart) % 1000);
}

namespace {

constexpr vxLogModule kModule = 300;

class BenchMarkTest : public testing::Test {
protected:
    BenchMarkTest() {
        sMilliseconds = 1000000;
        UseWritePath(mDir / "write");
        setenv("VXCONFIGPATH", mDir.Path().c_str(), 1);
    }
    ~BenchMarkTest() override { unsetenv("VXCONFIGPATH"); }

    void UseWritePath(const std::string& aPath) {
        mDir.Write("ConfigPath.ini",
                   "ReadPath=" + mDir.Path() + "/read\nWritePath=" + aPath + "\n");
    }

    std::string File() const { return mDir.Read("write/bench.txt"); }

    /// The texts that the module of the tests has logged, all of them at info level.
    std::vector<std::string> Logged() const {
        std::vector<std::string> theTexts;
        for (const vxtest::LogRecord& theRecord : mReports.Records()) {
            if (theRecord.mModule == kModule) {
                EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_INFO);
                theTexts.push_back(theRecord.mText);
            }
        }
        return theTexts;
    }

    vxtest::TempDir mDir;
    vxtest::Reports mReports;
};

TEST_F(BenchMarkTest, TitleAndDurationGoToFileConsoleAndLog) {
    vxBenchMark theBenchMark(kModule, "bench.txt", "Scanning");
    EXPECT_EQ(File(), "Scanning\n");
    EXPECT_EQ(mReports.Console(), "Scanning\n");
    EXPECT_THAT(Logged(), ElementsAre("Scanning\n"));

    sMilliseconds += 12034;
    theBenchMark.Stop();

    EXPECT_EQ(File(), "Scanning\nDuration: 12.034 seconds\n\n");
    EXPECT_EQ(mReports.Console(), "Scanning\nDuration: 12.034 seconds\n\n");
    EXPECT_THAT(Logged(), ElementsAre("Scanning\n", "Duration: 12.034 seconds\n"));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(BenchMarkTest, DurationsAreSecondsWithThreeDigitsBehindThePoint) {
    const struct {
        uint64_t mMilliseconds;
        const char* mText;
    } kRows[] = {{0, "Duration: 0.000 seconds\n\n"},
                 {1, "Duration: 0.001 seconds\n\n"},
                 {999, "Duration: 0.999 seconds\n\n"},
                 {1000, "Duration: 1.000 seconds\n\n"},
                 {4294967295999, "Duration: 4294967295.999 seconds\n\n"}};
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        vxBenchMark theBenchMark(kModule, "bench.txt", "x");
        sMilliseconds += theRow.mMilliseconds;
        mReports.Clear();
        theBenchMark.Stop();
        EXPECT_EQ(mReports.Console(), theRow.mText);
    }
}

TEST_F(BenchMarkTest, TheStopwatchStartsLast) {
    std::string theFile;
    std::vector<std::string> theLog;
    vxBenchMark theBenchMark(kModule, "bench.txt");
    sStopwatch.clear();
    sAtStart = [&] {
        theFile = File();
        theLog = Logged();
    };
    theBenchMark.Start("Scanning", true);
    sAtStart = nullptr;
    EXPECT_THAT(sStopwatch, ElementsAre("Init", "Start"));
    EXPECT_EQ(theFile, "Scanning\n");
    EXPECT_THAT(theLog, ElementsAre("Scanning\n"));
}

TEST_F(BenchMarkTest, TheFileIsThereForItsOwnerToReadAndWrite) {
    const vxBenchMark theBenchMark(kModule, "bench.txt", "Scanning");
    struct stat theStat;
    ASSERT_EQ(stat((mDir / "write/bench.txt").c_str(), &theStat), 0);
    EXPECT_EQ(theStat.st_mode & 0700U, 0600U);
}

TEST_F(BenchMarkTest, TheDestructorStops) {
    {
        const vxBenchMark theBenchMark(kModule, "bench.txt", "Scanning");
        sMilliseconds += 5;
    }
    EXPECT_EQ(File(), "Scanning\nDuration: 0.005 seconds\n\n");
}

TEST_F(BenchMarkTest, AFileKeepsEveryRun) {
    for (const char* theTitle : {"One", "Two"}) {
        const vxBenchMark theBenchMark(kModule, "bench.txt", theTitle);
        sMilliseconds += 1500;
    }
    EXPECT_EQ(File(),
              "One\nDuration: 1.500 seconds\n\n"
              "Two\nDuration: 1.500 seconds\n\n");
}

TEST_F(BenchMarkTest, WhatOthersAppendMeanwhileStays) {
    vxBenchMark theBenchMark(kModule, "bench.txt", "Scanning");
    vxBenchMark(kModule, "bench.txt", "Other");
    theBenchMark.Stop();
    EXPECT_EQ(File(),
              "Scanning\nOther\nDuration: 0.000 seconds\n\n"
              "Duration: 0.000 seconds\n\n");
}

TEST_F(BenchMarkTest, WithoutAStartNothingIsWrittenAnywhere) {
    {
        vxBenchMark theBenchMark(kModule, "bench.txt");
        theBenchMark.Stop();
    }
    EXPECT_FALSE(mDir.Has("write"));
    EXPECT_EQ(mReports.Console(), "");
    EXPECT_THAT(mReports.LogTexts(), IsEmpty());
}

TEST_F(BenchMarkTest, ADisabledStartLeavesItIdle) {
    {
        vxBenchMark theBenchMark(kModule, "bench.txt");
        theBenchMark.Start("Scanning", false);
    }
    EXPECT_FALSE(mDir.Has("write"));
    EXPECT_EQ(mReports.Console(), "");
    EXPECT_THAT(mReports.LogTexts(), IsEmpty());
}

TEST_F(BenchMarkTest, ADisabledStartLeavesARunAlone) {
    vxBenchMark theBenchMark(kModule, "bench.txt", "Scanning");
    sMilliseconds += 10;
    theBenchMark.Start("Other", false);
    sMilliseconds += 10;
    theBenchMark.Stop();
    EXPECT_EQ(File(), "Scanning\nDuration: 0.020 seconds\n\n");
}

TEST_F(BenchMarkTest, ASecondStartLeavesTheFirstTitleWithoutADuration) {
    vxBenchMark theBenchMark(kModule, "bench.txt", "One");
    sMilliseconds += 1000;
    theBenchMark.Start("Two", true);
    sMilliseconds += 2;
    theBenchMark.Stop();
    EXPECT_EQ(File(), "One\nTwo\nDuration: 0.002 seconds\n\n");
    EXPECT_EQ(mReports.Console(), "One\nTwo\nDuration: 0.002 seconds\n\n");
}

TEST_F(BenchMarkTest, ItCanRunAgainAfterAStop) {
    vxBenchMark theBenchMark(kModule, "bench.txt");
    theBenchMark.Start("One", true);
    theBenchMark.Stop();
    theBenchMark.Stop();
    theBenchMark.Start("Two", true);
    theBenchMark.Stop();
    EXPECT_EQ(File(),
              "One\nDuration: 0.000 seconds\n\n"
              "Two\nDuration: 0.000 seconds\n\n");
}

TEST_F(BenchMarkTest, ASecondStartOpensTheFileThatTheConfigurationNamesThen) {
    vxBenchMark theBenchMark(kModule, "bench.txt", "One");
    UseWritePath(mDir / "elsewhere");
    theBenchMark.Start("Two", true);
    EXPECT_EQ(File(), "One\n");
    EXPECT_EQ(mDir.Read("elsewhere/bench.txt"), "Two\n");
}

TEST_F(BenchMarkTest, WithoutAFileConsoleAndLogStillTell) {
    // The directory of the file is a file.
    UseWritePath(mDir.Write("write"));
    {
        const vxBenchMark theBenchMark(kModule, "bench.txt", "Scanning");
        sMilliseconds += 7;
    }
    EXPECT_EQ(mReports.Console(), "Scanning\nDuration: 0.007 seconds\n\n");
    EXPECT_THAT(Logged(), ElementsAre("Scanning\n", "Duration: 0.007 seconds\n"));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    EXPECT_EQ(mDir.Read("write"), "");
}

TEST_F(BenchMarkTest, TitlesAreNoFormats) {
    vxBenchMark(kModule, "bench.txt", "100%s %n");
    EXPECT_EQ(File(), "100%s %n\nDuration: 0.000 seconds\n\n");
    EXPECT_EQ(mReports.Console(), "100%s %n\nDuration: 0.000 seconds\n\n");
    EXPECT_THAT(Logged(), ElementsAre("100%s %n\n", "Duration: 0.000 seconds\n"));
}

TEST_F(BenchMarkTest, ANullTitleIsEmpty) {
    vxBenchMark(kModule, "bench.txt", nullptr);
    EXPECT_EQ(File(), "\nDuration: 0.000 seconds\n\n");
}

}  // namespace
