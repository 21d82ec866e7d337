// Years are counted from March 1, so that the leap day is the last of its year and the lengths of
// the months before a date follow one formula. Taking seconds apart uses 32-bit numbers alone: the
// target divides wider ones slowly.

#include "Calendar.h"

namespace {

// Days from 0000-03-01 to 1970-01-01, and from 1900-03-01.
constexpr int64_t kvxCalendar_DaysFromYear0 = 719468;
constexpr uint32_t kvxCalendar_DaysFrom1900 = 25508;

// 2^31 seconds are so many days and seconds.
constexpr uint32_t kvxCalendar_HalfRangeDays = 24855;
constexpr int32_t kvxCalendar_HalfRangeRest = 11648;

// Added to a time of day before the division, so that an offset cannot make it negative.
constexpr uint32_t kvxCalendar_SpareDays = 3;

// Days before a month, counted from March: (153 m + 2) / 5.
constexpr int64_t vxDaysBefore(int64_t aMonthFromMarch) {
    return (153 * aMonthFromMarch + 2) / 5;
}

int64_t vxFloorDiv(int64_t aValue, int64_t aDivisor) {
    return aValue / aDivisor - (aValue % aDivisor < 0);
}

}  // namespace

int64_t vxCalendar_DayNumber(int64_t aYear, int32_t aMonth, int64_t aDay) {
    const int64_t theYear = aMonth < 2 ? aYear - 1 : aYear;
    const int64_t theLeapDays =
        vxFloorDiv(theYear, 4) - vxFloorDiv(theYear, 100) + vxFloorDiv(theYear, 400);
    return theYear * 365 + theLeapDays + vxDaysBefore(aMonth < 2 ? aMonth + 10 : aMonth - 2) +
           aDay - 1 - kvxCalendar_DaysFromYear0;
}

int64_t vxCalendar_Seconds(const vxtm& aFields) {
    const int64_t theYears = vxFloorDiv(aFields.tm_mon, 12);
    const int32_t theMonth = static_cast<int32_t>(aFields.tm_mon - theYears * 12);
    const int64_t theDay =
        vxCalendar_DayNumber(int64_t{1900} + aFields.tm_year + theYears, theMonth, aFields.tm_mday);
    return theDay * kvxCalendar_SecondsPerDay + int64_t{aFields.tm_hour} * 3600 +
           int64_t{aFields.tm_min} * 60 + aFields.tm_sec;
}

void vxCalendar_Fill(int32_t aSeconds, int32_t anOffset, vxtm& aFields) {
    constexpr uint32_t kSecondsPerDay = kvxCalendar_SecondsPerDay;
    const uint32_t theInstant = static_cast<uint32_t>(aSeconds) ^ 0x80000000U;
    const uint32_t theShifted = theInstant % kSecondsPerDay +
                                kvxCalendar_SpareDays * kSecondsPerDay +
                                static_cast<uint32_t>(anOffset - kvxCalendar_HalfRangeRest);
    const uint32_t theTime = theShifted % kSecondsPerDay;
    const uint32_t theDay = theInstant / kSecondsPerDay + theShifted / kSecondsPerDay +
                            kvxCalendar_DaysFrom1900 - kvxCalendar_HalfRangeDays -
                            kvxCalendar_SpareDays;
    // Between 1900-03-01 and 2100-02-28 every fourth year is a leap year, so 1461 days are a cycle.
    const uint32_t theYear = (4 * theDay + 3) / 1461;
    const uint32_t theYearDay = (4 * theDay + 3) % 1461 / 4;
    // 2141 / 65536 is close enough to 5 / 153 for a year's days, and a multiplication.
    const uint32_t theScaled = 2141 * theYearDay + 197913;
    const uint32_t theMonth = theScaled >> 16;  // 3 for March to 14 for February
    const bool fNextYear = theMonth > 12;
    const uint32_t theLeapDay = theYear % 4 == 0;

    aFields.tm_sec = static_cast<int32_t>(theTime % 60);
    aFields.tm_min = static_cast<int32_t>(theTime / 60 % 60);
    aFields.tm_hour = static_cast<int32_t>(theTime / 3600);
    aFields.tm_mday = static_cast<int32_t>((theScaled & 0xffff) / 2141 + 1);
    aFields.tm_mon = static_cast<int32_t>(fNextYear ? theMonth - 13 : theMonth - 1);
    aFields.tm_year = static_cast<int32_t>(theYear + fNextYear);
    aFields.tm_wday = static_cast<int32_t>((theDay + 4) % 7);  // 1900-03-01 was a Thursday
    aFields.tm_yday =
        static_cast<int32_t>(fNextYear ? theYearDay - 306 : theYearDay + 59 + theLeapDay);
    aFields.tm_msec = 0;
}
