#include "vx/DateTime.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <random>
#include <string>

#include "support/LocalZone.h"
#include "support/Reports.h"
#include "support/ScriptedDate.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::LocalZone;

constexpr const char* kTimeAssertion =
    "(anHour < 24) && (aSecond < 62) && (aMinute < 60) && (aMilliSeconds < 1000)";
constexpr const char* kDayAssertion = "(aDay > 0) && (aDay <= GetNumberOfDays(aMonth, aYear))";
constexpr const char* kMonthAssertion = "aMonth < kvxMonthPerYear";
constexpr const char* kCompareAssertion = "IsValid() && aDateTime.IsValid()";

constexpr int32_t kSummer = 1435680000;  // 2015-06-30 16:00:00 UTC

vxDateTime At(int32_t aSeconds, int32_t aMicroseconds = 0) {
    return vxDateTime(vxtimeval{aSeconds, aMicroseconds});
}

std::string ISO(const vxDateTime& aDate) {
    return aDate.FormatISO().c_str();
}

// Both words are -1; the seconds word shows in the fields alone.
void ExpectInvalid(const vxDateTime& aDate) {
    EXPECT_FALSE(aDate.IsValid());
    EXPECT_EQ(aDate.GetTicks(), -1);
    LocalZone theZone("UTC");
    EXPECT_EQ(ISO(aDate), "1969-12-31T23:59:59");
}

vxtm Fields(int aYear, int aMonth, int aDay, int anHour, int aMinute, int aSecond, int aDaylight,
            int aMillisecond) {
    return {aSecond,      aMinute,   anHour, aDay, aMonth - 1,
            aYear - 1900, aDaylight, 0,      0,    aMillisecond};
}

class DateTimeTest : public testing::Test {
protected:
    LocalZone mZone{"UTC"};
    vxtest::Reports mReports;
};

TEST_F(DateTimeTest, StartsInvalid) {
    ExpectInvalid(vxDateTime());
    EXPECT_TRUE(vxDateTime().GetValue() == kvxuint64_Max);
}

TEST_F(DateTimeTest, ValidityLooksAtTheSubSecondPartAlone) {
    EXPECT_TRUE(At(-1, 0).IsValid());
    EXPECT_FALSE(At(5, -1).IsValid());
    EXPECT_EQ(At(5, -1).GetTicks(), -1);
    EXPECT_TRUE(At(5, -1).GetValue() == kvxuint64_Max);
}

TEST_F(DateTimeTest, TakesSecondsAndMicroseconds) {
    vxDateTime theDate = At(5, 123456);
    EXPECT_EQ(theDate.GetTicks(), 5);
    EXPECT_EQ(theDate.GetMillisecond(), 123);
    EXPECT_TRUE(theDate.GetValue() == 5123);
    theDate.Set(vxtimeval{7, 999999});
    EXPECT_TRUE(theDate.GetValue() == 7999);
}

TEST_F(DateTimeTest, TakesSeconds) {
    vxDateTime theDate(5L);
    EXPECT_TRUE(theDate.GetValue() == 5000);
    theDate.SetMillisecond(9);
    theDate.Set(7L);
    EXPECT_TRUE(theDate.GetValue() == 7000);
    theDate.SetMillisecond(9);
    theDate = 8L;
    EXPECT_TRUE(theDate.GetValue() == 8000);
    theDate = -1L;
    EXPECT_TRUE(theDate.IsValid());
    EXPECT_EQ(theDate.GetTicks(), -1);
}

TEST_F(DateTimeTest, SecondsBeyond32BitsMakeItInvalid) {
    EXPECT_EQ(vxDateTime(2147483647L).GetTicks(), 2147483647);
    EXPECT_EQ(vxDateTime(-2147483647L - 1).GetTicks(), -2147483647L - 1);
    if (sizeof(long) > 4) {
        const long theTooLarge = static_cast<long>(2147483648LL);
        ExpectInvalid(vxDateTime(theTooLarge));
        ExpectInvalid(vxDateTime(static_cast<long>(-2147483649LL)));
        vxDateTime theDate(5L);
        theDate = theTooLarge;
        ExpectInvalid(theDate);
        theDate = 5L;
        theDate.Set(theTooLarge);
        ExpectInvalid(theDate);
    }
}

struct MillisecondCase {
    long long mMilliseconds;
    long mSeconds;  // -1: invalid
};

constexpr MillisecondCase kMillisecondCases[] = {
    {0, 0},
    {999, 0},
    {1000, 1},
    {1500, 1},
    {1999, 1},
    {2147483647000, 2147483647},
    {2147483647999, 2147483647},
    {2147483648000, -1},
    {9223372036854775807, -1},
};

TEST_F(DateTimeTest, MillisecondCountsDropTheSubSecondPart) {
    for (const MillisecondCase& theCase : kMillisecondCases) {
        SCOPED_TRACE(theCase.mMilliseconds);
        vxDateTime theSigned = At(9, 9000);
        theSigned.Set(theCase.mMilliseconds);
        vxDateTime theUnsigned = At(9, 9000);
        theUnsigned.Set(vxuint64(theCase.mMilliseconds));
        for (const vxDateTime& theDate : {theSigned, theUnsigned}) {
            if (theCase.mSeconds == -1) {
                ExpectInvalid(theDate);
            } else {
                EXPECT_EQ(theDate.GetTicks(), theCase.mSeconds);
                EXPECT_EQ(theDate.GetMillisecond(), 0);
            }
        }
    }
}

TEST_F(DateTimeTest, NegativeMillisecondCountsAreInvalid) {
    for (const long long theCount : {-1LL, -999LL, -1000LL, -86400000LL, -9223372036854775807LL}) {
        vxDateTime theDate = At(9, 9000);
        theDate.Set(theCount);
        ExpectInvalid(theDate);
    }
    vxDateTime theDate = At(9, 9000);
    theDate.Set(kvxuint64_Max);
    ExpectInvalid(theDate);
}

TEST_F(DateTimeTest, TakesLocalFields) {
    LocalZone::Set("Europe/Paris");
    const vxtm theFields = Fields(2015, 6, 30, 18, 0, 0, -1, 250);
    vxDateTime theDate(theFields);
    EXPECT_TRUE(theDate.GetValue() == 1435680000250ULL);
    theDate = Fields(2015, 1, 15, 12, 0, 0, -1, 0);
    EXPECT_EQ(theDate.GetTicks(), 1421319600);
    theDate.Set(Fields(2015, 6, 30, 24, 0, 0, -1, 0));
    EXPECT_EQ(ISO(theDate), "2015-07-01T00:00:00");
}

TEST_F(DateTimeTest, LocalFieldsThatSecondsCannotHoldAreInvalid) {
    vxDateTime theDate(5L);
    theDate.Set(Fields(2038, 1, 19, 3, 14, 8, -1, 0));
    ExpectInvalid(theDate);
    theDate.Set(Fields(2038, 1, 19, 3, 14, 7, -1, 0));
    EXPECT_EQ(theDate.GetTicks(), 2147483647);
    theDate.Set(Fields(1969, 12, 31, 23, 59, 59, -1, 0));  // seconds of -1 stand for failure
    ExpectInvalid(theDate);
}

TEST_F(DateTimeTest, TimeOfDayKeepsTheDate) {
    vxDateTime theDate(15, vxDateTime::Jan, 2015, 1, 2, 3, 4);
    theDate.Set(23, 59, 58, 999);
    EXPECT_EQ(ISO(theDate), "2015-01-15T23:59:58");
    EXPECT_EQ(theDate.GetMillisecond(), 999);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(DateTimeTest, TimeOfDayIsRightOnBothSidesOfAChangeOfClocks) {
    const struct {
        const char* mZone;
        int32_t mSeconds;
        unsigned short mHour;
        long mTicks;
    } kCases[] = {
        {"Europe/Paris", 1427583600, 12, 1427623200},      // 2015-03-29, from 00:00 to 12:00
        {"Europe/Paris", 1427623200, 0, 1427583600},       // and back
        {"Europe/Paris", 1445727600, 12, 1445770800},      // 2015-10-25, from 01:00 to 12:00
        {"Europe/Paris", 1445770800, 1, 1445727600},       // and back
        {"America/New_York", 1425790800, 12, 1425830400},  // 2015-03-08, from 00:00 to 12:00
        {"America/New_York", 1446350400, 12, 1446397200},  // 2015-11-01, from 00:00 to 12:00
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mZone << " " << theCase.mSeconds);
        LocalZone theZone(theCase.mZone);
        vxDateTime theDate = At(theCase.mSeconds);
        theDate.Set(theCase.mHour, 0, 0, 0);
        EXPECT_EQ(theDate.GetTicks(), theCase.mTicks);
        EXPECT_EQ(theDate.GetHour(), theCase.mHour);
    }
}

TEST_F(DateTimeTest, TimeOfDayAloneBelongsToTheDayBefore1970) {
    EXPECT_EQ(ISO(vxDateTime(12, 30, 15, 250)), "1969-12-31T12:30:15");
    EXPECT_EQ(vxDateTime(12, 30, 15, 250).GetMillisecond(), 250);
    LocalZone::Set("Asia/Kolkata");
    EXPECT_EQ(ISO(vxDateTime(12, 30, 15, 0)), "1970-01-01T12:30:15");
}

TEST_F(DateTimeTest, TimesOfDayOutOfRangeAreReportedAndCarryOver) {
    const struct {
        unsigned short mNumbers[4];
        const char* mText;
    } kCases[] = {
        {{24, 0, 0, 0}, "2015-01-16T00:00:00.000"},
        {{0, 60, 0, 0}, "2015-01-15T01:00:00.000"},
        {{0, 0, 62, 0}, "2015-01-15T00:01:02.000"},
        {{0, 0, 0, 1000}, "2015-01-15T00:00:00.1000"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        mReports.Clear();
        vxDateTime theDate(15, vxDateTime::Jan, 2015, 1, 2, 3, 4);
        const auto& theNumbers = theCase.mNumbers;
        theDate.Set(theNumbers[0], theNumbers[1], theNumbers[2], theNumbers[3]);
        EXPECT_THAT(mReports.Assertions(), ElementsAre(kTimeAssertion));
        EXPECT_EQ(std::string(theDate.FormatISODate().c_str()) + "T" + theDate.FormatTime().c_str(),
                  theCase.mText);
    }
    mReports.Clear();
    vxDateTime theDate(15, vxDateTime::Jan, 2015, 1, 2, 3, 4);
    theDate.Set(23, 59, 61, 999);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    EXPECT_EQ(ISO(theDate), "2015-01-16T00:00:01");
}

TEST_F(DateTimeTest, TakesALocalDateAndTime) {
    const struct {
        const char* mZone;
        vxDateTime::Month mMonth;
        long mTicks;
    } kCases[] = {
        {"UTC", vxDateTime::Jun, 1434371400},
        {"Europe/Paris", vxDateTime::Jan, 1421321400},
        {"Europe/Paris", vxDateTime::Jun, 1434364200},
        {"America/New_York", vxDateTime::Jan, 1421343000},
        {"America/New_York", vxDateTime::Jun, 1434385800},
        {"Asia/Kolkata", vxDateTime::Jun, 1434351600},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mZone << " " << theCase.mMonth);
        LocalZone theZone(theCase.mZone);
        const vxDateTime theDate(15, theCase.mMonth, 2015, 12, 30, 0, 250);
        EXPECT_EQ(theDate.GetTicks(), theCase.mTicks);
        EXPECT_EQ(theDate.GetMillisecond(), 250);
        EXPECT_EQ(theDate.GetHour(), 12);
    }
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(DateTimeTest, DaysAreCheckedAgainstTheNextMonth) {
    // January is checked against February's length, and so on; the date is set in any case.
    const struct {
        unsigned short mDay;
        vxDateTime::Month mMonth;
        int mYear;
        bool mfReported;
        const char* mText;
    } kCases[] = {
        {28, vxDateTime::Jan, 2015, false, "2015-01-28T00:00:00"},
        {29, vxDateTime::Jan, 2015, true, "2015-01-29T00:00:00"},
        {29, vxDateTime::Jan, 2016, false, "2016-01-29T00:00:00"},
        {31, vxDateTime::Jan, 2015, true, "2015-01-31T00:00:00"},
        {31, vxDateTime::Feb, 2015, false, "2015-03-03T00:00:00"},
        {31, vxDateTime::Mar, 2015, true, "2015-03-31T00:00:00"},
        {31, vxDateTime::Apr, 2015, false, "2015-05-01T00:00:00"},
        {31, vxDateTime::Jul, 2015, false, "2015-07-31T00:00:00"},
        {31, vxDateTime::Aug, 2015, true, "2015-08-31T00:00:00"},
        {0, vxDateTime::Jun, 2015, true, "2015-05-31T00:00:00"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        mReports.Clear();
        const vxDateTime theDate(theCase.mDay, theCase.mMonth, theCase.mYear, 0, 0, 0, 0);
        EXPECT_EQ(ISO(theDate), theCase.mText);
        if (theCase.mfReported) {
            EXPECT_THAT(mReports.Assertions(), ElementsAre(kDayAssertion));
        } else {
            EXPECT_THAT(mReports.Assertions(), IsEmpty());
        }
    }
}

TEST_F(DateTimeTest, DecemberTripsTheCheckOfTheMonth) {
    const vxDateTime theDate(31, vxDateTime::Dec, 2015, 23, 59, 59, 0);
    EXPECT_THAT(mReports.Assertions(), ElementsAre(kMonthAssertion));
    EXPECT_EQ(ISO(theDate), "2015-12-31T23:59:59");
}

TEST_F(DateTimeTest, FullSetterReportsTheTimeBeforeTheDay) {
    const vxDateTime theDate(0, vxDateTime::Jun, 2015, 24, 0, 0, 0);
    EXPECT_THAT(mReports.Assertions(), ElementsAre(kTimeAssertion, kDayAssertion));
    EXPECT_EQ(ISO(theDate), "2015-06-01T00:00:00");
}

TEST_F(DateTimeTest, YearsFrom1970To2037AreInRange) {
    EXPECT_EQ(kvxDateTime_YearMinInRange, 1970);
    EXPECT_EQ(kvxDateTime_YearMaxInRange, 2037);
    EXPECT_EQ(ISO(vxDateTime(1, vxDateTime::Jun, 1970, 0, 0, 0, 0)), "1970-06-01T00:00:00");
    EXPECT_EQ(ISO(vxDateTime(1, vxDateTime::Jun, 2037, 0, 0, 0, 0)), "2037-06-01T00:00:00");
    ExpectInvalid(vxDateTime(1, vxDateTime::Jun, 1969, 0, 0, 0, 0));
    ExpectInvalid(vxDateTime(1, vxDateTime::Jun, 2038, 0, 0, 0, 0));
    ExpectInvalid(vxDateTime(1, vxDateTime::Jun, vxDateTime::Inv_Year, 0, 0, 0, 0));
    ExpectInvalid(vxDateTime(1, vxDateTime::Jun, 15, 0, 0, 0, 0));
    vxDateTime theDate(5L);
    theDate.Set(1, vxDateTime::Jun, 2038, 0, 0, 0, 0);
    ExpectInvalid(theDate);
}

TEST_F(DateTimeTest, TheSecondBeforeTheEpochIsInvalidForTheFullSetterOnly) {
    // In Paris the epoch is at one o'clock, so the second before it lies in 1970.
    LocalZone::Set("Europe/Paris");
    ExpectInvalid(vxDateTime(1, vxDateTime::Jan, 1970, 0, 59, 59, 500));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    // The time of day writes its milliseconds in any case, and they make the value valid.
    vxDateTime theDate(7L);
    theDate.Set(0, 59, 59, 500);
    EXPECT_THAT(mReports.Assertions(), ElementsAre("IsValid()"));
    EXPECT_TRUE(theDate.IsValid());
    EXPECT_EQ(theDate.GetTicks(), -1);
    EXPECT_EQ(theDate.GetMillisecond(), 500);
}

TEST_F(DateTimeTest, ResetIsTheValidEpoch) {
    vxDateTime theDate;
    theDate.Reset();
    EXPECT_TRUE(theDate.IsValid());
    EXPECT_TRUE(theDate.GetValue() == kvxuint64_0);
}

TEST_F(DateTimeTest, ResetTimeKeepsTheLocalDateAndTheMilliseconds) {
    for (const char* theName : {"UTC", "Europe/Paris", "America/New_York", "Asia/Kolkata"}) {
        SCOPED_TRACE(theName);
        LocalZone theZone(theName);
        // Ordinary days, and those on which the clocks of Paris and New York change.
        for (const char* theDay :
             {"2015-01-15", "2015-07-15", "2015-03-29", "2015-10-25", "2015-03-08", "2015-11-01"}) {
            vxDateTime theDate;
            ASSERT_TRUE(theDate.ParseISO((std::string(theDay) + "T23:30:45").c_str()));
            theDate.SetMillisecond(250);
            theDate.ResetTime();
            EXPECT_EQ(ISO(theDate), std::string(theDay) + "T00:00:00");
            EXPECT_EQ(theDate.GetMillisecond(), 250);
        }
    }
}

TEST_F(DateTimeTest, NowComesFromThePlatform) {
    vxtest::ScriptedDate theDate(kSummer, 123456);
    EXPECT_EQ(vxDateTime::UNow().GetTicks(), kSummer);
    EXPECT_EQ(vxDateTime::UNow().GetMillisecond(), 123);
    EXPECT_EQ(vxDateTime::Now().GetTicks(), kSummer);
    EXPECT_EQ(vxDateTime::Now().GetMillisecond(), 0);
    EXPECT_EQ(vxDateTime::GetCurrentYear(), 2015);
}

TEST_F(DateTimeTest, CurrentYearIsTheLocalOne) {
    vxtest::ScriptedDate theDate(1451606399);  // 2015-12-31 23:59:59 UTC
    EXPECT_EQ(vxDateTime::GetCurrentYear(), 2015);
    LocalZone::Set("Europe/Paris");
    EXPECT_EQ(vxDateTime::GetCurrentYear(), 2016);
}

TEST_F(DateTimeTest, FieldsAreLocal) {
    const struct {
        const char* mZone;
        unsigned short mDay;
        unsigned short mHour;
        unsigned short mMinute;
    } kCases[] = {
        {"UTC", 30, 16, 0},
        {"Europe/Paris", 30, 18, 0},
        {"America/New_York", 30, 12, 0},
        {"Asia/Kolkata", 30, 21, 30},
        {"Pacific/Auckland", 1, 4, 0},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mZone);
        LocalZone theZone(theCase.mZone);
        const vxDateTime theDate = At(kSummer + 7, 999999);
        EXPECT_EQ(theDate.GetYear(), 2015);
        EXPECT_EQ(theDate.GetMonth(), theCase.mDay == 1 ? vxDateTime::Jul : vxDateTime::Jun);
        EXPECT_EQ(theDate.GetDay(), theCase.mDay);
        EXPECT_EQ(theDate.GetHour(), theCase.mHour);
        EXPECT_EQ(theDate.GetMinute(), theCase.mMinute);
        EXPECT_EQ(theDate.GetSecond(), 7);
        EXPECT_EQ(theDate.GetMillisecond(), 999);
    }
}

TEST_F(DateTimeTest, MonthsCountFrom1) {
    EXPECT_EQ(vxDateTime::Inv_Month, 0);
    EXPECT_EQ(vxDateTime::Jan, 1);
    EXPECT_EQ(vxDateTime::Dec, 12);
    EXPECT_EQ(At(0).GetMonth(), vxDateTime::Jan);
    EXPECT_EQ(At(-1).GetMonth(), vxDateTime::Dec);
}

TEST_F(DateTimeTest, EveryGetterReportsAnInvalidValue) {
    const vxDateTime theDate;
    theDate.GetYear();
    theDate.GetMonth();
    theDate.GetDay();
    theDate.GetHour();
    theDate.GetMinute();
    theDate.GetSecond();
    theDate.GetMillisecond();
    EXPECT_EQ(mReports.Assertions(), std::vector<std::string>(7, "IsValid()"));
    EXPECT_EQ(theDate.GetYear(), 1969);
    EXPECT_EQ(theDate.GetSecond(), 59);
    EXPECT_EQ(theDate.GetMillisecond(), 0);
}

TEST_F(DateTimeTest, SetYearCountsFrom1900) {
    vxDateTime theDate(15, vxDateTime::Jun, 2010, 12, 0, 0, 0);
    theDate.SetYear(115);
    EXPECT_EQ(ISO(theDate), "2015-06-15T12:00:00");
    theDate.SetYear(2015);
    ExpectInvalid(theDate);
}

TEST_F(DateTimeTest, SettersOfFieldsKeepTheOthers) {
    vxDateTime theDate = At(kSummer, 250000);
    theDate.SetMonth(vxDateTime::Feb);
    EXPECT_EQ(ISO(theDate), "2015-03-02T16:00:00");  // February has no 30th
    theDate.SetMonth(vxDateTime::Dec);
    EXPECT_EQ(ISO(theDate), "2015-12-02T16:00:00");
    theDate.SetDay(31);
    EXPECT_EQ(ISO(theDate), "2015-12-31T16:00:00");
    theDate.SetHour(1);
    EXPECT_EQ(ISO(theDate), "2015-12-31T01:00:00");
    theDate.SetMinute(2);
    EXPECT_EQ(ISO(theDate), "2015-12-31T01:02:00");
    theDate.SetSecond(3);
    EXPECT_EQ(ISO(theDate), "2015-12-31T01:02:03");
    EXPECT_EQ(theDate.GetMillisecond(), 250);
    theDate.SetHour(24);
    EXPECT_EQ(ISO(theDate), "2016-01-01T00:02:03");
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(DateTimeTest, SettersOfFieldsKeepTheKindOfTime) {
    LocalZone::Set("Europe/Paris");
    vxDateTime theDate(15, vxDateTime::Jan, 2015, 12, 0, 0, 0);
    theDate.SetMonth(vxDateTime::Jul);
    EXPECT_EQ(ISO(theDate), "2015-07-15T13:00:00");
    theDate.SetMonth(vxDateTime::Jan);
    EXPECT_EQ(ISO(theDate), "2015-01-15T12:00:00");
}

TEST_F(DateTimeTest, SetMillisecondReportsAnInvalidValueAndSetsIt) {
    vxDateTime theDate = At(5);
    theDate.SetMillisecond(250);
    EXPECT_TRUE(theDate.GetValue() == 5250);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    theDate = vxDateTime();
    theDate.SetMillisecond(250);
    EXPECT_THAT(mReports.Assertions(), ElementsAre("IsValid()"));
    EXPECT_TRUE(theDate.IsValid());
    EXPECT_EQ(theDate.GetMillisecond(), 250);
}

TEST_F(DateTimeTest, FetchesAllFieldsAtOnce) {
    LocalZone::Set("Europe/Paris");
    vxtm theFields;
    ASSERT_TRUE(At(kSummer + 5, 250000).FetchTM(theFields));
    EXPECT_EQ(theFields.tm_sec, 5);
    EXPECT_EQ(theFields.tm_min, 0);
    EXPECT_EQ(theFields.tm_hour, 18);
    EXPECT_EQ(theFields.tm_mday, 30);
    EXPECT_EQ(theFields.tm_mon, 5);
    EXPECT_EQ(theFields.tm_year, 115);
    EXPECT_EQ(theFields.tm_isdst, 1);
    EXPECT_EQ(theFields.tm_wday, 2);
    EXPECT_EQ(theFields.tm_yday, 180);
    EXPECT_EQ(theFields.tm_msec, 250);
}

TEST_F(DateTimeTest, FailureOfThePlatformIsAnAnswer) {
    vxtest::NoLocalTime theNoLocalTime;
    vxDateTime theDate = At(kSummer);
    vxtm theFields;
    EXPECT_FALSE(theDate.FetchTM(theFields));
    theDate.SetDay(1);
    EXPECT_EQ(theDate.GetTicks(), kSummer);
    EXPECT_FALSE(theDate.ParseISODate("2015-06-30"));
    EXPECT_EQ(theDate.GetTicks(), kSummer);
    EXPECT_FALSE(theDate.ParseISOTime("12:00:00"));
    EXPECT_EQ(theDate.GetTicks(), kSummer);
    EXPECT_EQ(theDate.GetDay(), 0);

    vxDateTime theInvalid;
    EXPECT_FALSE(theInvalid.ParseISODate("2015-06-30"));
    EXPECT_TRUE(theInvalid.GetValue() == kvxuint64_0);
}

TEST_F(DateTimeTest, ToUTCOfAMomentThatCannotBeMovedIsTheEpoch) {
    vxtest::NoLocalTime theNoLocalTime;
    vxDateTime theDate = At(kSummer, 250000);
    theDate.ToUTC();
    EXPECT_TRUE(theDate.GetValue() == kvxuint64_0);
}

TEST_F(DateTimeTest, LeapYearsAreThoseOfTheGregorianCalendar) {
    for (const int theYear : {1600, 1996, 2000, 2004, 2016, 2400}) {
        EXPECT_TRUE(vxDateTime::IsLeapYear(theYear)) << theYear;
    }
    for (const int theYear : {1700, 1900, 1999, 2015, 2100, 2200}) {
        EXPECT_FALSE(vxDateTime::IsLeapYear(theYear)) << theYear;
    }
}

TEST_F(DateTimeTest, InvalidYearStandsForTheCurrentOne) {
    EXPECT_EQ(vxDateTime::Inv_Year, -32768);
    {
        vxtest::ScriptedDate theDate(1456704000);  // 2016-02-29
        EXPECT_TRUE(vxDateTime::IsLeapYear(vxDateTime::Inv_Year));
        EXPECT_EQ(vxDateTime::GetNumberOfDays(1, vxDateTime::Inv_Year), 29);
    }
    vxtest::ScriptedDate theDate(kSummer);
    EXPECT_FALSE(vxDateTime::IsLeapYear(vxDateTime::Inv_Year));
    EXPECT_EQ(vxDateTime::GetNumberOfDays(1, vxDateTime::Inv_Year), 28);
}

TEST_F(DateTimeTest, LengthsOfMonthsAreIndexedFromZero) {
    constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int i = 0; i < 12; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(vxDateTime::GetNumberOfDays(i, 2015), kLengths[i]);
        EXPECT_EQ(vxDateTime::GetNumberOfDays(i, 2016), i == 1 ? 29 : kLengths[i]);
    }
    EXPECT_EQ(vxDateTime::GetNumberOfDays(vxDateTime::Jan, 2015), 28);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(DateTimeTest, MonthAbove11IsReported) {
    EXPECT_EQ(vxDateTime::GetNumberOfDays(vxDateTime::Dec, 2015), 31);
    EXPECT_EQ(vxDateTime::GetNumberOfDays(12, 2016), 31);
    EXPECT_EQ(vxDateTime::GetNumberOfDays(1000000, 2016), 31);
    EXPECT_THAT(mReports.Assertions(),
                ElementsAre(kMonthAssertion, kMonthAssertion, kMonthAssertion));
    EXPECT_EQ(vxDateTime::GetNumberOfDays(-1000000, 2016), 31);
}

TEST_F(DateTimeTest, ToUTCMakesTheLocalFieldsReadAsUTC) {
    const struct {
        const char* mZone;
        int32_t mSeconds;
        long mTicks;
        const char* mText;
    } kCases[] = {
        {"UTC", 1435680000, 1435680000, "2015-06-30T16:00:00"},
        {"Europe/Paris", 1435680000, 1435672800, "2015-06-30T16:00:00"},
        {"Europe/Paris", 1421319600, 1421316000, "2015-01-15T11:00:00"},
        {"America/New_York", 1435701600, 1435716000, "2015-06-30T22:00:00"},
        {"America/New_York", 1421319600, 1421337600, "2015-01-15T11:00:00"},
        {"Asia/Kolkata", 1435667400, 1435647600, "2015-06-30T12:30:00"},
        // Daylight-saving time at the start of 1970: the first hour is not set back.
        {"AAA-1BBB,J1/0,J200/0", 3600, 0, "1970-01-01T02:00:00"},
        {"AAA-1BBB,J1/0,J200/0", 3601, -3599, "1970-01-01T01:00:01"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mZone << " " << theCase.mSeconds);
        LocalZone theZone(theCase.mZone);
        vxDateTime theDate = At(theCase.mSeconds, 250999);
        theDate.ToUTC();
        EXPECT_EQ(theDate.GetTicks(), theCase.mTicks);
        EXPECT_EQ(ISO(theDate), theCase.mText);
        EXPECT_EQ(theDate.GetMillisecond(), 250);
    }
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(DateTimeTest, ToUTCReportsAnInvalidValueAndAnswersTheEpoch) {
    vxDateTime theDate;
    theDate.ToUTC();
    EXPECT_THAT(mReports.Assertions(), ElementsAre("IsValid()"));
    EXPECT_TRUE(theDate.GetValue() == kvxuint64_0);
}

TEST_F(DateTimeTest, WritesISOTexts) {
    LocalZone::Set("Europe/Paris");
    const vxDateTime theDate = At(kSummer + 65, 7999);
    EXPECT_STREQ(theDate.FormatISODate().c_str(), "2015-06-30");
    EXPECT_STREQ(theDate.FormatISOTime().c_str(), "18:01:05");
    EXPECT_STREQ(theDate.FormatTime().c_str(), "18:01:05.007");
    EXPECT_STREQ(theDate.FormatISO().c_str(), "2015-06-30T18:01:05");
    EXPECT_STREQ(At(INT32_MIN).FormatISO().c_str(), "1901-12-13T20:55:13");
    EXPECT_STREQ(At(INT32_MAX).FormatISO().c_str(), "2038-01-19T04:14:07");
}

TEST_F(DateTimeTest, WritesAnySubSecondPartAsPrintfWould) {
    for (const int32_t theMicroseconds : {0, 999, 1000, 99999, 999999, 1000000, 65535000, INT32_MAX,
                                          -1000, -5000, -123000, INT32_MIN}) {
        SCOPED_TRACE(theMicroseconds);
        char theWanted[64];
        snprintf(theWanted, sizeof(theWanted), "%02d:%02d:%02d.%03d", 0, 0, 5,
                 theMicroseconds / 1000);
        EXPECT_STREQ(At(5, theMicroseconds).FormatTime().c_str(), theWanted);
    }
}

TEST_F(DateTimeTest, ReadsISODates) {
    constexpr const char* kCases[][2] = {
        {"2015-06-30", "2015-06-30T16:00:05"},
        {"2015-6-3", "2015-06-03T16:00:05"},
        {"2015-06-30 and more", "2015-06-30T16:00:05"},
        {"2015-06-301", "2015-06-30T16:00:05"},
        {" 2015- 06-\t30", "2015-06-30T16:00:05"},
        {"+2015-+6-+3", "refused"},  // the sign counts as one of four
        {"2015-+6-+3", "2015-06-03T16:00:05"},
        {"2015-02-31", "2015-03-03T16:00:05"},
        {"2038-01-19", "refused"},  // 16:00:05 is too late on that day
        {"2038-01-18", "2038-01-18T16:00:05"},
        {"1901-12-14", "1901-12-14T16:00:05"},
        {"1901-12-13", "refused"},
        {"1900-06-30", "refused"},
        {"1899-06-30", "refused"},
        {"2015-00-30", "refused"},
        {"2015-13-01", "refused"},
        {"2015-06-00", "refused"},
        {"2015-06-32", "refused"},
        {"2015--6-30", "refused"},
        {"2015-06", "refused"},
        {"2015-06-", "refused"},
        {"2015-06-x", "refused"},
        {"2015 -06-30", "refused"},
        {"20150630", "refused"},
        {"12015-06-30", "refused"},
        {"015-06-30", "refused"},
        {"", "refused"},
        {"T", "refused"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase[0]);
        vxDateTime theDate = At(kSummer + 5, 250000);
        const bool fParsed = theDate.ParseISODate(theCase[0]);
        EXPECT_EQ(fParsed ? ISO(theDate) : "refused", theCase[1]);
        if (fParsed) {
            EXPECT_EQ(theDate.GetMillisecond(), 250);
        } else {
            ExpectInvalid(theDate);
        }
    }
}

TEST_F(DateTimeTest, ReadsISOTimes) {
    constexpr const char* kCases[][2] = {
        {"12:34:56", "2015-06-30T12:34:56"},
        {"1:2:3", "2015-06-30T01:02:03"},
        {"00:00:00", "2015-06-30T00:00:00"},
        {"23:59:59", "2015-06-30T23:59:59"},
        {"24:00:00", "2015-07-01T00:00:00"},
        {"24:59:59", "2015-07-01T00:59:59"},
        {"12:34:56.789Z", "2015-06-30T12:34:56"},
        {" 12: 34: 56", "2015-06-30T12:34:56"},
        {"25:00:00", "refused"},
        {"-1:00:00", "refused"},
        {"12:60:00", "refused"},
        {"12:-1:00", "refused"},
        {"12:34:60", "refused"},
        {"12:34:-1", "refused"},
        {"12:34", "refused"},
        {"12:34:", "refused"},
        {"12-34-56", "refused"},
        {"123456", "refused"},
        {"", "refused"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase[0]);
        vxDateTime theDate = At(kSummer + 5, 250000);
        const bool fParsed = theDate.ParseISOTime(theCase[0]);
        EXPECT_EQ(fParsed ? ISO(theDate) : "refused", theCase[1]);
        if (fParsed) {
            EXPECT_EQ(theDate.GetMillisecond(), 250);
        } else {
            ExpectInvalid(theDate);
        }
    }
}

TEST_F(DateTimeTest, ReadsNumbersAsScanfDoes) {
    std::mt19937 theRandom(601);
    constexpr char kCharacters[] = "0123456789012345678901234- -+:T\t";
    for (int i = 0; i < 50000; ++i) {
        std::string theText;
        for (size_t j = 0; j < 11; ++j) {
            const bool fSeparator = (j == 4 || j == 7) && theRandom() % 4 != 0;
            theText += fSeparator ? '-' : kCharacters[theRandom() % (sizeof(kCharacters) - 1)];
        }
        int theYear;
        int theMonth;
        int theDay;
        const bool fWanted =
            sscanf(theText.c_str(), "%04d-%02d-%02d", &theYear, &theMonth, &theDay) == 3 &&
            theYear > 1901 && theYear < 2038 && theMonth >= 1 && theMonth <= 12 && theDay >= 1 &&
            theDay <= 28;
        vxDateTime theDate = At(0);
        if (theDate.ParseISODate(theText.c_str()) && theDate.GetYear() > 1901) {
            vxDateTime theModel = At(0);
            theModel.Set(Fields(theYear, theMonth, theDay, 0, 0, 0, -1, 0));
            ASSERT_EQ(ISO(theDate), ISO(theModel)) << theText;
        } else {
            ASSERT_FALSE(fWanted) << theText;
        }
    }
}

TEST_F(DateTimeTest, InvalidValueIsReadIntoFromTheEpoch) {
    vxDateTime theDate;
    ASSERT_TRUE(theDate.ParseISODate("2015-06-30"));
    EXPECT_EQ(ISO(theDate), "2015-06-30T00:00:00");
    theDate = vxDateTime();
    ASSERT_TRUE(theDate.ParseISOTime("12:34:56"));
    EXPECT_EQ(ISO(theDate), "1970-01-01T12:34:56");
    EXPECT_EQ(theDate.GetMillisecond(), 0);
}

TEST_F(DateTimeTest, ReadsDatesAndTimes) {
    constexpr const char* kCases[][2] = {
        {"2015-06-30T18:00:00", "2015-06-30T18:00:00"},
        {"2015-06-30T24:00:00", "2015-07-01T00:00:00"},
        {"2015-06-30T18:00:00.123+02:00", "2015-06-30T18:00:00"},
        {"2015-6-3T1:2:3", "2015-06-03T01:02:03"},
        {"2015-06-30 T18:00:00", "2015-06-30T18:00:00"},
        {"2015-06-30T18:00:00T01:02:03", "2015-06-30T18:00:00"},
        {"2015-13-01T18:00:00", "refused"},
        {"2015-13-01", "refused"},
        {"2015-06-30", "refused"},
        {"2015-06-30T", "refused"},
        {"2015-06-30t18:00:00", "refused"},
        {"2015-06-30 18:00:00", "refused"},
        {"2015-06-30T25:00:00", "refused"},
        {"2015-06T-30T18:00:00", "refused"},
        {"T18:00:00", "refused"},
        {"", "refused"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase[0]);
        vxDateTime theDate;
        const bool fParsed = theDate.ParseISO(theCase[0]);
        EXPECT_EQ(fParsed ? ISO(theDate) : "refused", theCase[1]);
        if (!fParsed) {
            ExpectInvalid(theDate);
        }
    }
}

TEST_F(DateTimeTest, ReadsBackWhatItWrites) {
    for (const char* theName : {"UTC", "Europe/Paris", "America/New_York", "Asia/Kolkata",
                                "Atlantic/Azores", "Pacific/Auckland"}) {
        SCOPED_TRACE(theName);
        LocalZone theZone(theName);
        std::mt19937 theRandom(2015);
        for (int i = 0; i < 3000; ++i) {
            vxDateTime theDate = At(static_cast<int32_t>(theRandom() >> 1));
            vxDateTime theCopy = At(static_cast<int32_t>(theRandom() >> 1));
            ASSERT_TRUE(theCopy.ParseISO(theDate.FormatISO()));
            ASSERT_EQ(ISO(theCopy), ISO(theDate));
        }
    }
}

TEST_F(DateTimeTest, ReadsTimesOnDaysOnWhichClocksChange) {
    LocalZone::Set("Europe/Paris");
    constexpr const char* kCases[][2] = {
        {"2015-03-29T01:59:59", "2015-03-29T01:59:59"},
        {"2015-03-29T02:30:00", "2015-03-29T03:30:00"},
        {"2015-03-29T12:00:00", "2015-03-29T12:00:00"},
        {"2015-10-25T01:30:00", "2015-10-25T01:30:00"},
        {"2015-10-25T12:00:00", "2015-10-25T12:00:00"},
    };
    for (const auto& theCase : kCases) {
        vxDateTime theDate;
        ASSERT_TRUE(theDate.ParseISO(theCase[0]));
        EXPECT_EQ(ISO(theDate), theCase[1]);
    }
    vxDateTime theDate;
    ASSERT_TRUE(theDate.ParseISO("2015-10-25T02:30:00"));
    EXPECT_EQ(theDate.GetTicks(), 1445733000);  // the first of the two
}

TEST_F(DateTimeTest, ReadsHeaderDates) {
    for (const char* theName : {"UTC", "Europe/Paris", "America/New_York", "Asia/Kolkata"}) {
        SCOPED_TRACE(theName);
        LocalZone theZone(theName);
        vxDateTime theDate = At(5, 250000);
        EXPECT_TRUE(theDate.ParseRFC1123("Tue, 30 Jun 2015 16:00:00 GMT"));
        EXPECT_EQ(theDate.GetTicks(), kSummer);
        EXPECT_EQ(theDate.GetMillisecond(), 0);
        EXPECT_TRUE(theDate.ParseRFC1123("Sun, 25 Oct 2015 01:30:00 GMT"));
        EXPECT_EQ(theDate.GetTicks(), 1445736600);
    }
}

TEST_F(DateTimeTest, MalformedHeaderDateLeavesTheValueUnchanged) {
    vxDateTime theDate = At(5, 250000);
    EXPECT_FALSE(theDate.ParseRFC1123("Tue, 31 Jun 2015 16:00:00 GMT"));
    EXPECT_FALSE(theDate.ParseRFC1123(""));
    EXPECT_TRUE(theDate.GetValue() == 5250);
}

TEST_F(DateTimeTest, HeaderDateOfTheSecondBefore1970MakesItInvalid) {
    vxDateTime theDate = At(5, 250000);
    EXPECT_FALSE(theDate.ParseRFC1123("Wed, 31 Dec 1969 23:59:59 GMT"));
    ExpectInvalid(theDate);
    EXPECT_TRUE(theDate.ParseRFC1123("Wed, 31 Dec 1969 23:59:58 GMT"));
    EXPECT_EQ(theDate.GetTicks(), -2);
}

TEST_F(DateTimeTest, ParsesTheDateOfAMediaServerInItsZoneOrInLocalTime) {
    LocalZone theZone("Europe/Berlin");
    vxDateTime theDate = At(5, 250000);
    EXPECT_TRUE(theDate.ParseDLNA("2015-06-30T16:00:00Z"));
    EXPECT_EQ(theDate.GetTicks(), 1435680000);
    EXPECT_EQ(theDate.GetMillisecond(), 0);
    EXPECT_TRUE(theDate.ParseDLNA("2015-06-30T10:30:00.75-05:30"));
    EXPECT_EQ(theDate.GetTicks(), 1435680000);
    EXPECT_EQ(theDate.GetMillisecond(), 750);
    EXPECT_TRUE(theDate.ParseDLNA("2015-07-01T06:00:00+14:00"));
    EXPECT_EQ(theDate.GetTicks(), 1435680000);
    EXPECT_TRUE(theDate.ParseDLNA("2015-06-30T18:00:00.25"));
    EXPECT_EQ(theDate.GetTicks(), 1435680000);
    EXPECT_EQ(theDate.GetMillisecond(), 250);
    EXPECT_TRUE(theDate.ParseDLNA("2015-01-15"));
    EXPECT_STREQ(theDate.FormatISO(), "2015-01-15T00:00:00");
    EXPECT_EQ(theDate.GetTicks(), 1421276400);
}

TEST_F(DateTimeTest, DateOfAMediaServerMayLieBefore1970) {
    vxDateTime theDate;
    EXPECT_TRUE(theDate.ParseDLNA("1965-04-01T00:00:00Z"));
    EXPECT_EQ(theDate.GetTicks(), -149990400);
    EXPECT_TRUE(theDate.ParseDLNA("1901-12-13T20:45:52Z"));
    EXPECT_EQ(theDate.GetTicks(), -2147483647L - 1);
    EXPECT_TRUE(theDate.ParseDLNA("2038-01-19T03:14:07Z"));
    EXPECT_EQ(theDate.GetTicks(), 2147483647);
}

TEST_F(DateTimeTest, DateOfAMediaServerThatCannotBeHeldMakesTheValueInvalid) {
    for (const char* theText :
         {"", "2015", "2015-02-29", "2015-06-30T16:00Z", "1901-12-13T20:45:51Z",
          "2038-01-19T03:14:08Z", "0001-01-01", "9999-12-31T23:59:59.999-14:00"}) {
        SCOPED_TRACE(theText);
        vxDateTime theDate = At(5, 250000);
        EXPECT_FALSE(theDate.ParseDLNA(theText));
        ExpectInvalid(theDate);
    }
}

TEST_F(DateTimeTest, ComparesSecondsBeforeSubSecondParts) {
    const vxDateTime theValues[] = {At(-5, 900000), At(5, 0), At(5, 1), At(6, 0)};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            SCOPED_TRACE(testing::Message() << i << " " << j);
            EXPECT_EQ(theValues[i] < theValues[j], i < j);
            EXPECT_EQ(theValues[i] <= theValues[j], i <= j);
            EXPECT_EQ(theValues[i] > theValues[j], i > j);
            EXPECT_EQ(theValues[i] >= theValues[j], i >= j);
            EXPECT_EQ(theValues[i] == theValues[j], i == j);
            EXPECT_EQ(theValues[i] != theValues[j], i != j);
        }
    }
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(DateTimeTest, ComparingInvalidValuesIsReported) {
    const vxDateTime theInvalid;
    const vxDateTime theValid(5L);
    EXPECT_TRUE(theInvalid < theValid);
    EXPECT_TRUE(theInvalid <= theInvalid);
    EXPECT_TRUE(theValid > theInvalid);
    EXPECT_TRUE(theValid >= theInvalid);
    EXPECT_TRUE(theInvalid == theInvalid);
    EXPECT_TRUE(theValid != theInvalid);
    EXPECT_EQ(mReports.Assertions(), std::vector<std::string>(6, kCompareAssertion));
}

TEST_F(DateTimeTest, SameDateIsOneLocalDay) {
    LocalZone::Set("Europe/Paris");
    const vxDateTime theMidnight(30, vxDateTime::Jun, 2015, 0, 0, 0, 0);
    EXPECT_TRUE(theMidnight.IsSameDate(vxDateTime(30, vxDateTime::Jun, 2015, 23, 59, 59, 999)));
    EXPECT_FALSE(theMidnight.IsSameDate(At(static_cast<int32_t>(theMidnight.GetTicks()) - 1)));
    EXPECT_FALSE(theMidnight.IsSameDate(vxDateTime(30, vxDateTime::Jul, 2015, 0, 0, 0, 0)));
    EXPECT_FALSE(theMidnight.IsSameDate(vxDateTime(30, vxDateTime::Jun, 2016, 0, 0, 0, 0)));
}

TEST_F(DateTimeTest, SameTimeIsOneLocalTimeOfDayToTheMillisecond) {
    LocalZone::Set("Europe/Paris");
    const vxDateTime theTime(30, vxDateTime::Jun, 2015, 12, 30, 15, 250);
    EXPECT_TRUE(theTime.IsSameTime(vxDateTime(15, vxDateTime::Jan, 2016, 12, 30, 15, 250)));
    EXPECT_FALSE(theTime.IsSameTime(vxDateTime(30, vxDateTime::Jun, 2015, 12, 30, 15, 251)));
    EXPECT_FALSE(theTime.IsSameTime(vxDateTime(30, vxDateTime::Jun, 2015, 12, 30, 16, 250)));
    EXPECT_FALSE(theTime.IsSameTime(vxDateTime(30, vxDateTime::Jun, 2015, 12, 31, 15, 250)));
    EXPECT_FALSE(theTime.IsSameTime(vxDateTime(30, vxDateTime::Jun, 2015, 13, 30, 15, 250)));
    const int32_t theSeconds = static_cast<int32_t>(theTime.GetTicks());
    EXPECT_TRUE(At(theSeconds, 250000).IsSameTime(At(theSeconds, 250999)));
}

}  // namespace
