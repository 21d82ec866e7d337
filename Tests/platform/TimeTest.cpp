#include <libvxOS/Time.h>

#include <gmock/gmock.h>

#include <cstddef>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/LocalZone.h"

namespace {

using vxtest::LocalZone;

constexpr const char* kZones[] = {
    "UTC",
    "Europe/Paris",
    "America/New_York",
    "Asia/Kolkata",
    "Africa/Casablanca",
    "Pacific/Apia",
    "Australia/Lord_Howe",
    "America/Sao_Paulo",
    "EST5EDT,M3.2.0,M11.1.0",
    "<+0345>-3:45",
};

// "2015-06-30 18:00:00 dst 1 weekday 2 day 180"
std::string Text(const vxtm& aFields) {
    char theText[128];
    snprintf(theText, sizeof(theText), "%04lld-%02d-%02d %02d:%02d:%02d dst %d weekday %d day %d",
             aFields.tm_year + 1900LL, aFields.tm_mon + 1, aFields.tm_mday, aFields.tm_hour,
             aFields.tm_min, aFields.tm_sec, aFields.tm_isdst, aFields.tm_wday, aFields.tm_yday);
    return theText;
}

vxtm Fields(const struct tm& aTime) {
    return {aTime.tm_sec,  aTime.tm_min,   aTime.tm_hour, aTime.tm_mday, aTime.tm_mon,
            aTime.tm_year, aTime.tm_isdst, aTime.tm_wday, aTime.tm_yday, 0};
}

vxtm Fields(int aYear, int aMonth, int aDay, int anHour, int aMinute, int aSecond, int aDaylight) {
    return {aSecond, aMinute, anHour, aDay, aMonth - 1, aYear - 1900, aDaylight, 0, 0, 0};
}

std::string Local(int32_t aSeconds) {
    vxtm theFields = {};
    EXPECT_NE(vxTime_localtime(aSeconds, &theFields), 0);
    return Text(theFields);
}

std::string LibcLocal(int32_t aSeconds) {
    const time_t theTime = aSeconds;
    struct tm theFields;
    localtime_r(&theTime, &theFields);
    return Text(Fields(theFields));
}

TEST(TimeTest, RecordHasTheStandardFieldsAndMilliseconds) {
    EXPECT_EQ(offsetof(vxtm, tm_sec), 0u);
    EXPECT_EQ(offsetof(vxtm, tm_min), 4u);
    EXPECT_EQ(offsetof(vxtm, tm_hour), 8u);
    EXPECT_EQ(offsetof(vxtm, tm_mday), 12u);
    EXPECT_EQ(offsetof(vxtm, tm_mon), 16u);
    EXPECT_EQ(offsetof(vxtm, tm_year), 20u);
    EXPECT_EQ(offsetof(vxtm, tm_isdst), 24u);
    EXPECT_EQ(offsetof(vxtm, tm_wday), 28u);
    EXPECT_EQ(offsetof(vxtm, tm_yday), 32u);
    EXPECT_EQ(offsetof(vxtm, tm_msec), 36u);
    EXPECT_EQ(sizeof(vxtm), 40u);
    EXPECT_EQ(sizeof(vxtimeval), 8u);
}

TEST(TimeTest, TimeOfDayIsTheSystemsDate) {
    const time_t theBefore = time(NULL);
    vxtimeval theTime = {-1, -1};
    vxTime_GetTimeOfDay(&theTime);
    const time_t theAfter = time(NULL);

    EXPECT_GE(theTime.tv_sec, theBefore - 1);  // time() may lag by a tick
    EXPECT_LE(theTime.tv_sec, theAfter + 1);
    EXPECT_GE(theTime.tv_usec, 0);
    EXPECT_LT(theTime.tv_usec, 1000000);
}

struct InstantCase {
    const char* mZone;
    int32_t mSeconds;
    const char* mText;
};

TEST(TimeTest, LocalTimeShowsWhatTheClockOfTheZoneShows) {
    constexpr InstantCase kCases[] = {
        {"UTC", 0, "1970-01-01 00:00:00 dst 0 weekday 4 day 0"},
        {"UTC", -1, "1969-12-31 23:59:59 dst 0 weekday 3 day 364"},
        {"UTC", 951782400, "2000-02-29 00:00:00 dst 0 weekday 2 day 59"},
        {"UTC", 951868800, "2000-03-01 00:00:00 dst 0 weekday 3 day 60"},
        {"UTC", 978220800, "2000-12-31 00:00:00 dst 0 weekday 0 day 365"},
        {"UTC", INT32_MAX, "2038-01-19 03:14:07 dst 0 weekday 2 day 18"},
        {"UTC", INT32_MIN, "1901-12-13 20:45:52 dst 0 weekday 5 day 346"},
        {"Europe/Paris", 1435680000, "2015-06-30 18:00:00 dst 1 weekday 2 day 180"},
        {"Europe/Paris", 1427590799, "2015-03-29 01:59:59 dst 0 weekday 0 day 87"},
        {"Europe/Paris", 1427590800, "2015-03-29 03:00:00 dst 1 weekday 0 day 87"},
        {"Europe/Paris", 1445734799, "2015-10-25 02:59:59 dst 1 weekday 0 day 297"},
        {"Europe/Paris", 1445734800, "2015-10-25 02:00:00 dst 0 weekday 0 day 297"},
        {"America/New_York", 1435701600, "2015-06-30 18:00:00 dst 1 weekday 2 day 180"},
        {"America/New_York", 0, "1969-12-31 19:00:00 dst 0 weekday 3 day 364"},
        {"Asia/Kolkata", 1435667400, "2015-06-30 18:00:00 dst 0 weekday 2 day 180"},
        {"Pacific/Apia", 1325239199, "2011-12-29 23:59:59 dst 1 weekday 4 day 362"},
        {"Pacific/Apia", 1325239200, "2011-12-31 00:00:00 dst 1 weekday 6 day 364"},
    };
    for (const InstantCase& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mZone << " " << theCase.mSeconds);
        LocalZone theZone(theCase.mZone);
        EXPECT_EQ(Local(theCase.mSeconds), theCase.mText);
    }
}

TEST(TimeTest, LocalTimeAgreesWithTheCLibrary) {
    for (const char* theName : kZones) {
        SCOPED_TRACE(theName);
        LocalZone theZone(theName);
        tzset();
        std::mt19937 theRandom(1970);
        for (int i = 0; i < 5000; ++i) {
            const int32_t theSeconds = static_cast<int32_t>(theRandom());
            ASSERT_EQ(Local(theSeconds), LibcLocal(theSeconds)) << theSeconds;
        }
        // Every hour of the years in which the zones have most of their changes.
        for (int32_t theSeconds = 1262304000; theSeconds < 1483228800; theSeconds += 3600) {
            ASSERT_EQ(Local(theSeconds), LibcLocal(theSeconds)) << theSeconds;
        }
    }
}

TEST(TimeTest, LocalTimeCountsLeapSecondsWhereTheZoneDoes) {
    LocalZone theZone("right/UTC");
    tzset();
    for (const int32_t theSeconds : {0, 1435708799, 1435708825, 1435708826, 1500000000}) {
        EXPECT_EQ(Local(theSeconds), LibcLocal(theSeconds)) << theSeconds;
        vxtm theFields;
        vxTime_localtime(theSeconds, &theFields);
        EXPECT_EQ(vxTime_mktime(&theFields), theSeconds);
    }
}

TEST(TimeTest, FieldsInUTCMakeTheSecondsTheyCameFrom) {
    LocalZone theZone("Europe/Paris");
    std::mt19937 theRandom(1901);
    for (int i = 0; i < 20000; ++i) {
        const int32_t theSeconds = static_cast<int32_t>(theRandom());
        vxtm theFields;
        vxTime_gmtime(theSeconds, &theFields);
        ASSERT_EQ(vxTime_timegm(&theFields), theSeconds);
    }
}

TEST(TimeTest, FieldsInUTCMayBeOutOfRange) {
    // 2015-06-30 16:00:00 is written in other ways; then seconds far beyond 32 bits.
    vxtm theFields = {3600, 60, 14, 30, 5, 115, 1, 6, 365, 999};
    EXPECT_EQ(vxTime_timegm(&theFields), 1435680000);
    theFields = {0, 0, -8, 1, -6, 116, -1, 0, 0, 0};
    EXPECT_EQ(vxTime_timegm(&theFields), 1435680000);
    theFields = {59, 59, 23, 31, 11, 8099, 0, 0, 0, 0};
    EXPECT_EQ(vxTime_timegm(&theFields), 253402300799);
    theFields = {0, 0, 0, 1, 0, -1900, 0, 0, 0, 0};
    EXPECT_EQ(vxTime_timegm(&theFields), -62167219200);
}

TEST(TimeTest, ConversionsClearTheMilliseconds) {
    vxtm theFields = {};
    theFields.tm_msec = 5;
    vxTime_localtime(0, &theFields);
    EXPECT_EQ(theFields.tm_msec, 0);
    theFields.tm_msec = 5;
    vxTime_gmtime(0, &theFields);
    EXPECT_EQ(theFields.tm_msec, 0);
}

TEST(TimeTest, ChangeOfTheZoneCountsAtOnce) {
    LocalZone theZone("Europe/Paris");
    EXPECT_THAT(Local(0), testing::StartsWith("1970-01-01 01:00:00"));
    LocalZone::Set("America/New_York");
    EXPECT_THAT(Local(0), testing::StartsWith("1969-12-31 19:00:00"));
    LocalZone::Set("Europe/Paris");
    EXPECT_THAT(Local(0), testing::StartsWith("1970-01-01 01:00:00"));
    LocalZone::Set("UTC");
    EXPECT_THAT(Local(0), testing::StartsWith("1970-01-01 00:00:00"));
    LocalZone::Set("");
    EXPECT_THAT(Local(0), testing::StartsWith("1970-01-01 00:00:00"));
}

TEST(TimeTest, ZoneIsFoundWhereverItStandsInTheEnvironment) {
    LocalZone theZone(NULL);
    const std::string theSystem = Local(0);
    setenv("VXTIMETEST_A", "1", 1);
    EXPECT_EQ(Local(0), theSystem);
    LocalZone::Set("Asia/Kolkata");
    EXPECT_THAT(Local(0), testing::StartsWith("1970-01-01 05:30:00"));
    setenv("VXTIMETEST_B", "1", 1);
    EXPECT_THAT(Local(0), testing::StartsWith("1970-01-01 05:30:00"));
    unsetenv("VXTIMETEST_A");
    EXPECT_THAT(Local(0), testing::StartsWith("1970-01-01 05:30:00"));
    unsetenv("TZ");
    EXPECT_EQ(Local(0), theSystem);
    unsetenv("VXTIMETEST_B");
    EXPECT_EQ(Local(0), theSystem);
}

TEST(TimeTest, ZoneRewrittenInItsPlaceIsNoticed) {
    LocalZone theZone("UTC");
    char theEntry[32] = "TZ=AAA-1";
    putenv(theEntry);
    EXPECT_THAT(Local(0), testing::StartsWith("1970-01-01 01:00:00"));
    strcpy(theEntry, "TZ=AAA-2");
    EXPECT_THAT(Local(0), testing::StartsWith("1970-01-01 02:00:00"));
    LocalZone::Set("UTC");
    EXPECT_THAT(Local(0), testing::StartsWith("1970-01-01 00:00:00"));
}

TEST(TimeTest, ThreadsLearnAZoneTogether) {
    LocalZone theZone("America/Denver");  // no other test uses it, so nothing is known yet
    tzset();
    std::vector<std::string> theWanted;
    for (int i = 0; i < 300; ++i) {
        theWanted.push_back(LibcLocal(i * 5000000));
    }
    int theWrong[2] = {0, 0};
    std::vector<std::thread> theThreads;
    for (int& theCount : theWrong) {
        theThreads.emplace_back([&theCount, &theWanted] {
            for (int i = 0; i < 300; ++i) {
                theCount += Local(i * 5000000) != theWanted[static_cast<size_t>(i)];
            }
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theWrong[0] + theWrong[1], 0);
}

TEST(TimeTest, UTCIgnoresTheZone) {
    LocalZone theZone("Europe/Paris");
    vxtm theFields = {};
    EXPECT_NE(vxTime_gmtime(1435680000, &theFields), 0);
    EXPECT_EQ(Text(theFields), "2015-06-30 16:00:00 dst 0 weekday 2 day 180");
}

TEST(TimeTest, UTCAgreesWithTheCLibrary) {
    std::mt19937 theRandom(1900);
    for (int i = 0; i < 20000; ++i) {
        const int32_t theSeconds = static_cast<int32_t>(theRandom());
        const time_t theTime = theSeconds;
        struct tm theWanted;
        gmtime_r(&theTime, &theWanted);
        vxtm theFields;
        vxTime_gmtime(theSeconds, &theFields);
        ASSERT_EQ(Text(theFields), Text(Fields(theWanted))) << theSeconds;
    }
}

struct FieldsCase {
    const char* mZone;
    vxtm mFields;
    int32_t mSeconds;
    const char* mText;
};

void ExpectMakes(const FieldsCase& aCase) {
    SCOPED_TRACE(testing::Message() << aCase.mZone << " " << Text(aCase.mFields));
    LocalZone theZone(aCase.mZone);
    vxtm theFields = aCase.mFields;
    theFields.tm_msec = 77777;
    EXPECT_EQ(vxTime_mktime(&theFields), aCase.mSeconds);
    EXPECT_EQ(Text(theFields), aCase.mText);
    EXPECT_EQ(theFields.tm_msec, 77777);
}

TEST(TimeTest, MakingTimeNormalizesFields) {
    const FieldsCase kCases[] = {
        {"UTC", Fields(2015, 6, 30, 24, 0, 0, -1), 1435708800,
         "2015-07-01 00:00:00 dst 0 weekday 3 day 181"},
        {"UTC", Fields(2015, 6, 30, 0, 75, 0, -1), 1435626900,
         "2015-06-30 01:15:00 dst 0 weekday 2 day 180"},
        {"UTC", Fields(2015, 6, 30, 0, 0, -1, -1), 1435622399,
         "2015-06-29 23:59:59 dst 0 weekday 1 day 179"},
        {"UTC", Fields(2015, 2, 31, 0, 0, 0, -1), 1425340800,
         "2015-03-03 00:00:00 dst 0 weekday 2 day 61"},
        {"UTC", Fields(2016, 2, 31, 0, 0, 0, -1), 1456876800,
         "2016-03-02 00:00:00 dst 0 weekday 3 day 61"},
        {"UTC", Fields(2015, 0, 15, 0, 0, 0, -1), 1418601600,
         "2014-12-15 00:00:00 dst 0 weekday 1 day 348"},
        {"UTC", Fields(2015, 25, 15, 0, 0, 0, -1), 1484438400,
         "2017-01-15 00:00:00 dst 0 weekday 0 day 14"},
        {"UTC", Fields(2015, 6, 0, 0, 0, 0, -1), 1433030400,
         "2015-05-31 00:00:00 dst 0 weekday 0 day 150"},
        {"UTC", Fields(1900, 1, 1, 0, 0, INT32_MAX, -1), -61505153,
         "1968-01-20 03:14:07 dst 0 weekday 6 day 19"},
        {"Europe/Paris", Fields(2015, 6, 30, 24, 0, 0, 1), 1435701600,
         "2015-07-01 00:00:00 dst 1 weekday 3 day 181"},
    };
    for (const FieldsCase& theCase : kCases) {
        ExpectMakes(theCase);
    }
}

TEST(TimeTest, MakingTimeFollowsTheDaylightFlagAroundChangesOfClocks) {
    const FieldsCase kCases[] = {
        // Unknown kind of time: what the clock shows.
        {"Europe/Paris", Fields(2015, 1, 15, 12, 0, 0, -1), 1421319600,
         "2015-01-15 12:00:00 dst 0 weekday 4 day 14"},
        {"Europe/Paris", Fields(2015, 7, 15, 12, 0, 0, -1), 1436954400,
         "2015-07-15 12:00:00 dst 1 weekday 3 day 195"},
        // The hour that the clocks skip counts on behind the change.
        {"Europe/Paris", Fields(2015, 3, 29, 1, 59, 59, -1), 1427590799,
         "2015-03-29 01:59:59 dst 0 weekday 0 day 87"},
        {"Europe/Paris", Fields(2015, 3, 29, 2, 30, 0, -1), 1427592600,
         "2015-03-29 03:30:00 dst 1 weekday 0 day 87"},
        {"Europe/Paris", Fields(2015, 3, 29, 3, 0, 0, -1), 1427590800,
         "2015-03-29 03:00:00 dst 1 weekday 0 day 87"},
        // The hour that comes twice is its first occurrence, unless the flag says otherwise.
        {"Europe/Paris", Fields(2015, 10, 25, 2, 30, 0, -1), 1445733000,
         "2015-10-25 02:30:00 dst 1 weekday 0 day 297"},
        {"Europe/Paris", Fields(2015, 10, 25, 2, 30, 0, 1), 1445733000,
         "2015-10-25 02:30:00 dst 1 weekday 0 day 297"},
        {"Europe/Paris", Fields(2015, 10, 25, 2, 30, 0, 0), 1445736600,
         "2015-10-25 02:30:00 dst 0 weekday 0 day 297"},
        {"America/New_York", Fields(2015, 11, 1, 1, 30, 0, 1), 1446355800,
         "2015-11-01 01:30:00 dst 1 weekday 0 day 304"},
        {"America/New_York", Fields(2015, 11, 1, 1, 30, 0, 0), 1446359400,
         "2015-11-01 01:30:00 dst 0 weekday 0 day 304"},
        // Fields written in the other kind of time move by the difference, near a change and far.
        {"Europe/Paris", Fields(2015, 3, 29, 12, 0, 0, 0), 1427626800,
         "2015-03-29 13:00:00 dst 1 weekday 0 day 87"},
        {"Europe/Paris", Fields(2015, 7, 15, 12, 0, 0, 0), 1436958000,
         "2015-07-15 13:00:00 dst 1 weekday 3 day 195"},
        {"Europe/Paris", Fields(2015, 1, 15, 12, 0, 0, 1), 1421316000,
         "2015-01-15 11:00:00 dst 0 weekday 4 day 14"},
        {"Australia/Lord_Howe", Fields(2015, 1, 15, 12, 0, 0, 0), 1421285400,
         "2015-01-15 12:30:00 dst 1 weekday 4 day 14"},
        {"Asia/Kolkata", Fields(2015, 7, 15, 12, 0, 0, 1), 1436938200,
         "2015-07-15 11:00:00 dst 0 weekday 3 day 195"},
    };
    for (const FieldsCase& theCase : kCases) {
        ExpectMakes(theCase);
    }
}

TEST(TimeTest, MakingTimeUndoesLocalTime) {
    for (const char* theName : {"Europe/Paris", "America/New_York", "Asia/Kolkata", "UTC"}) {
        SCOPED_TRACE(theName);
        LocalZone theZone(theName);
        for (int32_t theSeconds = 0; theSeconds < 2147400000; theSeconds += 70001) {
            vxtm theFields;
            vxTime_localtime(theSeconds, &theFields);
            ASSERT_EQ(vxTime_mktime(&theFields), theSeconds) << Text(theFields);
        }
    }
}

TEST(TimeTest, TimesBeyond32BitSecondsFailAndKeepTheFields) {
    const struct {
        const char* mZone;
        vxtm mFields;
        int32_t mSeconds;
    } kCases[] = {
        {"UTC", Fields(2038, 1, 19, 3, 14, 7, -1), INT32_MAX},
        {"UTC", Fields(2038, 1, 19, 3, 14, 8, -1), -1},
        {"UTC", Fields(1901, 12, 13, 20, 45, 52, -1), INT32_MIN},
        {"UTC", Fields(1901, 12, 13, 20, 45, 51, -1), -1},
        {"Asia/Kolkata", Fields(2038, 1, 19, 8, 44, 7, -1), INT32_MAX},
        {"Asia/Kolkata", Fields(2038, 1, 19, 8, 44, 8, -1), -1},
        {"America/New_York", Fields(2038, 1, 18, 22, 14, 7, -1), INT32_MAX},
        {"America/New_York", Fields(2038, 1, 18, 22, 14, 8, -1), -1},
        {"UTC", Fields(3915, 6, 30, 0, 0, 0, -1), -1},
        {"UTC", {0, 0, 0, 1, 0, INT32_MAX, -1, 0, 0, 0}, -1},
        {"UTC",
         {INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, -1, 0, 0, 0},
         -1},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mZone << " " << Text(theCase.mFields));
        LocalZone theZone(theCase.mZone);
        vxtm theFields = theCase.mFields;
        EXPECT_EQ(vxTime_mktime(&theFields), theCase.mSeconds);
        if (theCase.mSeconds == -1) {
            EXPECT_EQ(memcmp(&theFields, &theCase.mFields, sizeof(theFields)), 0);
        }
    }
}

TEST(TimeTest, SecondBefore1970IsMadeLikeAnyOther) {
    LocalZone theZone("UTC");
    vxtm theFields = Fields(1969, 12, 31, 23, 59, 59, -1);
    EXPECT_EQ(vxTime_mktime(&theFields), -1);
    EXPECT_EQ(Text(theFields), "1969-12-31 23:59:59 dst 0 weekday 3 day 364");
}

// The instant of a header date, or "refused".
std::string Header(const char* aText) {
    vxtm theFields;
    memset(&theFields, 0x55, sizeof(theFields));
    const vxtm theOld = theFields;
    if (vxTime_ParseRFC1123Date(aText, &theFields) != 0) {
        EXPECT_EQ(memcmp(&theFields, &theOld, sizeof(theFields)), 0);
        return "refused";
    }
    return Text(theFields);
}

TEST(TimeTest, HeaderDatesAreRead) {
    constexpr const char* kCases[][2] = {
        {"Sun, 06 Nov 1994 08:49:37 GMT", "1994-11-06 08:49:37 dst 0 weekday 0 day 309"},
        {"06 Nov 1994 08:49:37 GMT", "1994-11-06 08:49:37 dst 0 weekday 0 day 309"},
        {"6 Nov 1994 08:49:37 GMT", "1994-11-06 08:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49 GMT", "1994-11-06 08:49:00 dst 0 weekday 0 day 309"},
        {"sUN, 06 nOV 1994 08:49:37 gmt", "1994-11-06 08:49:37 dst 0 weekday 0 day 309"},
        {"Mon, 06 Nov 1994 08:49:37 GMT", "1994-11-06 08:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 UT", "1994-11-06 08:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 UTC", "1994-11-06 08:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 EST", "1994-11-06 13:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 EDT", "1994-11-06 12:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 CST", "1994-11-06 14:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 CDT", "1994-11-06 13:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 MST", "1994-11-06 15:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 MDT", "1994-11-06 14:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 PST", "1994-11-06 16:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 PDT", "1994-11-06 15:49:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 08:49:37 +0130", "1994-11-06 07:19:37 dst 0 weekday 0 day 309"},
        {"Sun, 06 Nov 1994 20:49:37 -0330", "1994-11-07 00:19:37 dst 0 weekday 1 day 310"},
        {"Sun, 06 Nov 1994 08:49:37 +0000", "1994-11-06 08:49:37 dst 0 weekday 0 day 309"},
        {"Tue, 29 Feb 2000 00:00:00 GMT", "2000-02-29 00:00:00 dst 0 weekday 2 day 59"},
        {"Tue, 30 Jun 2015 23:59:60 GMT", "2015-07-01 00:00:00 dst 0 weekday 3 day 181"},
        {"Tue, 19 Jan 2038 03:14:07 GMT", "2038-01-19 03:14:07 dst 0 weekday 2 day 18"},
        {"Fri, 13 Dec 1901 20:45:52 GMT", "1901-12-13 20:45:52 dst 0 weekday 5 day 346"},
        {"Thu, 01 Jan 1970 00:00:00 GMT", "1970-01-01 00:00:00 dst 0 weekday 4 day 0"},
    };
    LocalZone theZone("UTC");
    for (const auto& theCase : kCases) {
        EXPECT_EQ(Header(theCase[0]), theCase[1]) << theCase[0];
    }
}

TEST(TimeTest, HeaderDatesKnowEveryMonth) {
    LocalZone theZone("UTC");
    const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (int i = 0; i < 12; ++i) {
        vxtm theFields;
        const std::string theText = std::string("07 ") + kMonths[i] + " 2015 00:00:00 GMT";
        ASSERT_EQ(vxTime_ParseRFC1123Date(theText.c_str(), &theFields), 0) << theText;
        EXPECT_EQ(theFields.tm_mon, i);
    }
}

TEST(TimeTest, HeaderDatesBecomeLocalTime) {
    LocalZone theZone("Europe/Paris");
    EXPECT_EQ(Header("Tue, 30 Jun 2015 16:00:00 GMT"),
              "2015-06-30 18:00:00 dst 1 weekday 2 day 180");
    vxtm theFields;
    ASSERT_EQ(vxTime_ParseRFC1123Date("Sun, 25 Oct 2015 01:30:00 GMT", &theFields), 0);
    EXPECT_EQ(vxTime_mktime(&theFields), 1445736600);
}

TEST(TimeTest, OtherHeaderDatesAreRefused) {
    LocalZone theZone("UTC");
    for (const char* theText : {
             "",
             "Sun",
             "Sun, ",
             "Sun, 06 Nov 1994",
             "Sun, 06 Nov 1994 08:49:37",
             "Sun, 06 Nov 1994 08:49:37 ",
             " Sun, 06 Nov 1994 08:49:37 GMT",
             "Sun, 06 Nov 1994 08:49:37 GMT ",
             "Sun,  06 Nov 1994 08:49:37 GMT",
             "Sun,06 Nov 1994 08:49:37 GMT",
             "Sun 06 Nov 1994 08:49:37 GMT",
             "Sunday, 06-Nov-94 08:49:37 GMT",
             "Sun Nov  6 08:49:37 1994",
             "Xyz, 06 Nov 1994 08:49:37 GMT",
             "Su, 06 Nov 1994 08:49:37 GMT",
             "Sun, 006 Nov 1994 08:49:37 GMT",
             "Sun, 00 Nov 1994 08:49:37 GMT",
             "Sun, 31 Nov 1994 08:49:37 GMT",
             "Sun, 32 Jan 1994 08:49:37 GMT",
             "Mon, 29 Feb 1993 08:49:37 GMT",
             "Sun, 06 Abc 1994 08:49:37 GMT",
             "Sun, 06 anF 1994 08:49:37 GMT",
             "Sun, 06 Nov 94 08:49:37 GMT",
             "Sun, 06 Nov 01994 08:49:37 GMT",
             "Sun, 06 Nov -994 08:49:37 GMT",
             "Sun, 06 Nov 1994 24:00:00 GMT",
             "Sun, 06 Nov 1994 08:60:00 GMT",
             "Sun, 06 Nov 1994 08:49:61 GMT",
             "Sun, 06 Nov 1994 8:49:37 GMT",
             "Sun, 06 Nov 1994 08:9:37 GMT",
             "Sun, 06 Nov 1994 08:49: GMT",
             "Sun, 06 Nov 1994 08:49:37GMT",
             "Sun, 06 Nov 1994 08:49:37 XYZ",
             "Sun, 06 Nov 1994 08:49:37 G",
             "Sun, 06 Nov 1994 08:49:37 GMTX",
             "Sun, 06 Nov 1994 08:49:37 GMT+1",
             "Sun, 06 Nov 1994 08:49:37 +01",
             "Sun, 06 Nov 1994 08:49:37 +01:00",
             "Sun, 06 Nov 1994 08:49:37 +2400",
             "Sun, 06 Nov 1994 08:49:37 +0060",
             "Sun, 06 Nov 1994 08:49:37 +-100",
             "Tue, 19 Jan 2038 03:14:08 GMT",
             "Fri, 13 Dec 1901 20:45:51 GMT",
             "Fri, 31 Dec 9999 23:59:59 GMT",
             "Sat, 01 Jan 0000 00:00:00 GMT",
         }) {
        EXPECT_EQ(Header(theText), "refused") << theText;
    }
    EXPECT_EQ(Header(NULL), "refused");
}

TEST(TimeTest, HeaderDatesOfEveryTruncationAreRefusedWithoutReadingOn) {
    LocalZone theZone("UTC");
    const std::string theText = "Sun, 06 Nov 1994 08:49:37 +0000";
    for (size_t i = 0; i < theText.size(); ++i) {
        const std::vector<char> theStart(theText.c_str(), theText.c_str() + i);
        std::vector<char> theCut = theStart;
        theCut.push_back('\0');
        EXPECT_EQ(Header(theCut.data()), "refused") << theCut.data();
    }
}

}  // namespace
