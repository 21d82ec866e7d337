#include <gtest/gtest.h>
#include <libvxOS/Chrono.h>

#include <time.h>

#include <optional>

#include "support/Forward.h"

namespace {

std::optional<timespec> sNow;  // of the monotonic clock, turned by hand

}  // namespace

int clock_gettime(clockid_t aClock, timespec* aTime) noexcept {
    if (!sNow || aClock != CLOCK_MONOTONIC) {
        return VXTEST_REAL(clock_gettime)(aClock, aTime);
    }
    *aTime = *sNow;
    return 0;
}

namespace {

/// Lets the clock of the system go on when it goes.
class ChronoTest : public testing::Test {
protected:
    ~ChronoTest() override { sNow.reset(); }

    void ExpectTime(uint32_t aSeconds, uint32_t aMilliseconds) {
        uint32_t theSeconds = 99;
        uint32_t theMilliseconds = 99;
        vxChrono_GetTime_S_MS(&mChrono, &theSeconds, &theMilliseconds);
        EXPECT_EQ(theSeconds, aSeconds);
        EXPECT_EQ(theMilliseconds, aMilliseconds);
    }

    vxChrono mChrono;
};

TEST_F(ChronoTest, AStopwatchThatWasNeverStartedMeasuresNothing) {
    vxChrono_S_Init(&mChrono);
    sNow = timespec{1000, 0};
    ExpectTime(0, 0);
}

TEST_F(ChronoTest, SecondsAndTheMillisecondsBeyondThemAreWhole) {
    sNow = timespec{1000, 500000000};
    vxChrono_S_Init(&mChrono);
    vxChrono_Start_S(&mChrono);
    const struct {
        timespec mNow;
        uint32_t mSeconds;
        uint32_t mMilliseconds;
    } kRows[] = {
        {{1000, 500000000}, 0, 0},    {{1000, 500999999}, 0, 0},      {{1000, 501000000}, 0, 1},
        {{1001, 0}, 0, 500},          {{1001, 499999999}, 0, 999},    {{1001, 500000000}, 1, 0},
        {{1062, 750000000}, 62, 250}, {{4000, 499000000}, 2999, 999},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(testing::Message() << theRow.mSeconds << "." << theRow.mMilliseconds);
        sNow = theRow.mNow;
        ExpectTime(theRow.mSeconds, theRow.mMilliseconds);
    }
}

TEST_F(ChronoTest, StartingAgainMeasuresFromThen) {
    sNow = timespec{1000, 0};
    vxChrono_Start_S(&mChrono);
    sNow = timespec{1005, 0};
    vxChrono_Start_S(&mChrono);
    sNow = timespec{1007, 1000000};
    ExpectTime(2, 1);
    vxChrono_S_Init(&mChrono);
    ExpectTime(0, 0);
}

TEST_F(ChronoTest, TheClockOfTheSystemMovesOn) {
    vxChrono_Start_S(&mChrono);
    uint32_t theSeconds = 0;
    uint32_t theMilliseconds = 0;
    while (theMilliseconds < 2 && theSeconds == 0) {
        vxChrono_GetTime_S_MS(&mChrono, &theSeconds, &theMilliseconds);
    }
    EXPECT_LT(theMilliseconds, 1000U);
}

}  // namespace
