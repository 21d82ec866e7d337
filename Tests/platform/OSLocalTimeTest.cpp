// The first call anchors the count for the life of the process: each case has a process of its own.

#include <libvxOS/Time.h>

#include <gtest/gtest.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

#include "support/Forward.h"
#include "support/LocalZone.h"

namespace {

bool sfScripted = false;
struct timespec sDate;       // what people set
struct timespec sMonotonic;  // what nobody sets

}  // namespace

// Stands in front of the system's for the platform libraries, too.
extern "C" int clock_gettime(clockid_t aClock, struct timespec* aTime) {
    if (!sfScripted) {
        return VXTEST_REAL(clock_gettime)(aClock, aTime);
    }
    *aTime = aClock == CLOCK_REALTIME ? sDate : sMonotonic;
    return 0;
}

namespace {

uint64_t LocalMS() {
    vxULongLong theTime = {77, 77};
    vxTime_GetLocalTimeMS(&theTime);
    return static_cast<uint64_t>(theTime.mHigh) << 32 | theTime.mLow;
}

struct Reading {
    const char* mZone;
    struct timespec mDate;
    struct timespec mMonotonic;
    uint64_t mTime;
};

/// Takes the readings in turn and ends the process: 0 when all are as expected.
[[noreturn]] void TakeAndExit(const std::vector<Reading>& aReadings) {
    sfScripted = true;
    for (const Reading& theReading : aReadings) {
        vxtest::LocalZone::Set(theReading.mZone);
        sDate = theReading.mDate;
        sMonotonic = theReading.mMonotonic;
        const uint64_t theTime = LocalMS();
        if (theTime != theReading.mTime) {
            fprintf(stderr, "%llu instead of %llu\n", static_cast<unsigned long long>(theTime),
                    static_cast<unsigned long long>(theReading.mTime));
            _exit(1);
        }
    }
    _exit(0);
}

void ExpectReadings(const std::vector<Reading>& aReadings) {
    EXPECT_EXIT(TakeAndExit(aReadings), testing::ExitedWithCode(0), "");
}

TEST(OSLocalTimeTest, CountIsWhatTheLocalClockShows) {
    ExpectReadings({{"XYZ-2", {1700000000, 123999999}, {50, 0}, 1700007200123}});
    ExpectReadings({{"XYZ0", {1700000000, 0}, {50, 999999999}, 1700000000000}});
}

[[noreturn]] void CompareWithFieldsAndExit(int32_t aSeconds) {
    sfScripted = true;
    vxtest::LocalZone::Set("EST5EDT,M3.2.0,M11.1.0");
    sDate = {aSeconds, 0};
    vxtm theFields = {};
    vxTime_localtime(aSeconds, &theFields);
    const int theTime = (theFields.tm_hour * 60 + theFields.tm_min) * 60 + theFields.tm_sec;
    _exit(LocalMS() / 1000 % 86400 == static_cast<uint64_t>(theTime) ? 0 : 1);
}

TEST(OSLocalTimeTest, CountAgreesWithLocalFieldsInWinterAndSummer) {
    EXPECT_EXIT(CompareWithFieldsAndExit(1705312345), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(CompareWithFieldsAndExit(1721012345), testing::ExitedWithCode(0), "");
}

TEST(OSLocalTimeTest, CountGoesOnEvenlyWhateverHappensToTheDate) {
    ExpectReadings({
        {"XYZ5", {1700000000, 0}, {50, 999000000}, 1699982000000},
        {"XYZ5", {1700000000, 0}, {51, 0}, 1699982000001},
        {"XYZ5", {1800000000, 0}, {51, 0}, 1699982000001},
        {"XYZ-3", {0, 0}, {1051, 5999999}, 1699983000006},
    });
}

TEST(OSLocalTimeTest, MomentBefore1970CountsFromZero) {
    ExpectReadings({
        {"XYZ5", {17999, 999999999}, {30, 0}, 0},
        {"XYZ5", {17999, 999999999}, {31, 0}, 1000},
    });
    ExpectReadings({{"XYZ5", {18000, 1000000}, {30, 0}, 1}});
}

[[noreturn]] void CountInThreadsAndExit() {
    std::vector<std::thread> theThreads;
    std::atomic<uint64_t> theLatest{0};
    std::atomic<bool> theWentBack{false};
    for (int i = 0; i < 4; ++i) {
        theThreads.emplace_back([&] {
            for (int theRound = 0; theRound < 10000; ++theRound) {
                const uint64_t theBefore = theLatest.load();
                const uint64_t theTime = LocalMS();
                if (theTime < theBefore) {
                    theWentBack = true;
                }
                theLatest.store(theTime);
            }
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    _exit(theWentBack ? 1 : 0);
}

TEST(OSLocalTimeTest, ThreadsSeeOneCountThatNeverGoesBack) {
    EXPECT_EXIT(CountInThreadsAndExit(), testing::ExitedWithCode(0), "");
}

}  // namespace
