// The calendar: offsets of the zone come from a table, dates from arithmetic. The C library is
// asked only where the table has no answer.

#include <libvxOS/Time.h>

#include "Calendar.h"
#include "TimeZone.h"

#include <algorithm>
#include <ctime>

namespace {

// How far around a local time a change of offset can matter: clocks are never set by more than a
// day, and a local time is at most a day away from UTC.
constexpr int64_t kvxTime_ChangeReach = 2 * kvxCalendar_SecondsPerDay;

// How the other kind of time is looked for: in steps of about a week, shorter than any period of
// daylight-saving time, up to eight and a half years to either side.
constexpr int64_t kvxTime_SearchStep = 601200;
constexpr int64_t kvxTime_SearchReach = 268828200;

constexpr int32_t kvxTime_UsualShift = 3600;

bool vxFits(int64_t aSeconds) {
    return aSeconds >= INT32_MIN && aSeconds <= INT32_MAX;
}

int32_t vxClamped(int64_t aSeconds) {
    return static_cast<int32_t>(std::clamp<int64_t>(aSeconds, INT32_MIN, INT32_MAX));
}

void vxToFields(const struct tm& aTime, vxtm& aFields) {
    aFields.tm_sec = aTime.tm_sec;
    aFields.tm_min = aTime.tm_min;
    aFields.tm_hour = aTime.tm_hour;
    aFields.tm_mday = aTime.tm_mday;
    aFields.tm_mon = aTime.tm_mon;
    aFields.tm_year = aTime.tm_year;
    aFields.tm_isdst = aTime.tm_isdst;
    aFields.tm_wday = aTime.tm_wday;
    aFields.tm_yday = aTime.tm_yday;
}

bool vxSystemLocalTime(int32_t aSeconds, vxtm& aFields) {
    vxTimeZone_Refresh();
    const time_t theTime = aSeconds;
    struct tm theFields;
    if (localtime_r(&theTime, &theFields) == nullptr) {
        return false;
    }
    vxToFields(theFields, aFields);
    aFields.tm_msec = 0;
    return true;
}

bool vxLocalTime(vxTimeZone& aZone, int32_t aSeconds, vxtm& aFields) {
    vxTimeZoneOffset theOffset;
    if (!vxTimeZone_Find(aZone, aSeconds, theOffset)) {
        return vxSystemLocalTime(aSeconds, aFields);
    }
    vxCalendar_Fill(aSeconds, theOffset.mSeconds, aFields);
    aFields.tm_isdst = theOffset.mfDaylight;
    return true;
}

// The record is refilled by the caller, so the result alone counts.
int64_t vxSystemMakeTime(const vxtm& aFields) {
    struct tm theFields = {};
    theFields.tm_sec = aFields.tm_sec;
    theFields.tm_min = aFields.tm_min;
    theFields.tm_hour = aFields.tm_hour;
    theFields.tm_mday = aFields.tm_mday;
    theFields.tm_mon = aFields.tm_mon;
    theFields.tm_year = aFields.tm_year;
    theFields.tm_isdst = aFields.tm_isdst;
    theFields.tm_wday = -1;
    const time_t theTime = mktime(&theFields);
    // A failed conversion leaves the weekday alone; the second before 1970 sets it.
    return theTime == -1 && theFields.tm_wday == -1 ? INT64_MAX : int64_t{theTime};
}

// Whether the local clock shows `aLocal` at the instant that an offset makes of it.
bool vxIsShown(vxTimeZone& aZone, int64_t aLocal, const vxTimeZoneOffset& anOffset) {
    vxTimeZoneOffset theOffset;
    return vxTimeZone_Find(aZone, vxClamped(aLocal - anOffset.mSeconds), theOffset) &&
           theOffset.mSeconds == anOffset.mSeconds;
}

// The offset nearest to an instant that is of the other kind than the one in force there; where the
// zone has none for years, clocks are taken to be set by an hour.
vxTimeZoneOffset vxNearestOfOtherKind(vxTimeZone& aZone, int64_t aSeconds,
                                      const vxTimeZoneOffset& aCurrent) {
    vxTimeZoneOffset theOffset;
    for (int64_t i = kvxTime_SearchStep; i < kvxTime_SearchReach; i += kvxTime_SearchStep) {
        for (const int64_t theInstant : {aSeconds - i, aSeconds + i}) {
            if (vxFits(theInstant) &&
                vxTimeZone_Find(aZone, static_cast<int32_t>(theInstant), theOffset) &&
                theOffset.mfDaylight != aCurrent.mfDaylight) {
                return theOffset;
            }
        }
    }
    const int32_t theShift = aCurrent.mfDaylight ? -kvxTime_UsualShift : kvxTime_UsualShift;
    return {aCurrent.mSeconds + theShift, !aCurrent.mfDaylight};
}

// The offset by which local seconds are to be read, around a change of offset or where the fields
// are written in another kind of time than the clock shows.
vxTimeZoneOffset vxChooseOffset(vxTimeZone& aZone, int64_t aLocal, int32_t aDaylight,
                                const vxTimeZoneOffset& aBefore, const vxTimeZoneOffset& anAfter) {
    const bool fBefore = vxIsShown(aZone, aLocal, aBefore);
    const bool fAfter = vxIsShown(aZone, aLocal, anAfter);
    if (aDaylight < 0) {
        return fAfter && !fBefore ? anAfter : aBefore;
    }
    const bool fDaylight = aDaylight > 0;
    if (aBefore.mfDaylight == anAfter.mfDaylight) {
        const vxTimeZoneOffset& theShown = fAfter && !fBefore ? anAfter : aBefore;
        return theShown.mfDaylight == fDaylight
                   ? theShown
                   : vxNearestOfOtherKind(aZone, aLocal - theShown.mSeconds, theShown);
    }
    return aBefore.mfDaylight == fDaylight ? aBefore : anAfter;
}

int64_t vxMakeTime(vxTimeZone& aZone, const vxtm& aFields) {
    const int64_t theLocal = vxCalendar_Seconds(aFields);
    if (!vxFits(theLocal - kvxCalendar_SecondsPerDay) &&
        !vxFits(theLocal + kvxCalendar_SecondsPerDay)) {
        return INT64_MAX;
    }
    vxTimeZoneOffset theBefore;
    vxTimeZoneOffset theAfter;
    if (!vxTimeZone_Find(aZone, vxClamped(theLocal - kvxTime_ChangeReach), theBefore) ||
        !vxTimeZone_Find(aZone, vxClamped(theLocal + kvxTime_ChangeReach), theAfter)) {
        vxTimeZone_Refresh();
        return vxSystemMakeTime(aFields);
    }
    const bool fSettled = theBefore.mSeconds == theAfter.mSeconds &&
                          theBefore.mfDaylight == theAfter.mfDaylight &&
                          (aFields.tm_isdst < 0 || (aFields.tm_isdst > 0) == theBefore.mfDaylight);
    const vxTimeZoneOffset theOffset =
        fSettled ? theBefore
                 : vxChooseOffset(aZone, theLocal, aFields.tm_isdst, theBefore, theAfter);
    return theLocal - theOffset.mSeconds;
}

int64_t vxMilliseconds(const struct timespec& aTime) {
    return int64_t{aTime.tv_sec} * 1000 + aTime.tv_nsec / 1000000;
}

int64_t vxMonotonicMilliseconds() {
    struct timespec theTime = {};
    clock_gettime(CLOCK_MONOTONIC, &theTime);
    return vxMilliseconds(theTime);
}

// A device without a battery begins in 1970: west of Greenwich its clock shows a moment before.
int64_t vxLocalMilliseconds() {
    struct timespec theTime = {};
    clock_gettime(CLOCK_REALTIME, &theTime);
    const int32_t theSeconds = vxClamped(theTime.tv_sec);
    vxtm theFields;
    const int64_t theOffset = vxTime_localtime(theSeconds, &theFields) != 0
                                  ? vxCalendar_Seconds(theFields) - theSeconds
                                  : 0;
    return std::max<int64_t>(vxMilliseconds(theTime) + theOffset * 1000, 0);
}

}  // namespace

void vxTime_GetTimeOfDay(vxtimeval* aTime) {
    struct timespec theTime = {};
    clock_gettime(CLOCK_REALTIME, &theTime);
    aTime->tv_sec = vxClamped(theTime.tv_sec);
    aTime->tv_usec = static_cast<int32_t>(theTime.tv_nsec / 1000);
}

void vxTime_GetLocalTimeMS(vxULongLong* aTime) {
    static const int64_t sBegin = vxLocalMilliseconds() - vxMonotonicMilliseconds();
    const uint64_t theTime = static_cast<uint64_t>(sBegin + vxMonotonicMilliseconds());
    vxULongLong_Set(aTime, static_cast<uint32_t>(theTime >> 32), static_cast<uint32_t>(theTime));
}

int vxTime_localtime(int32_t aSeconds, vxtm* aFields) {
    return vxLocalTime(vxTimeZone_Current(), aSeconds, *aFields);
}

int vxTime_gmtime(int32_t aSeconds, vxtm* aFields) {
    vxCalendar_Fill(aSeconds, 0, *aFields);
    aFields->tm_isdst = 0;
    return 1;
}

int64_t vxTime_timegm(const vxtm* aFields) {
    return vxCalendar_Seconds(*aFields);
}

int32_t vxTime_mktime(vxtm* aFields) {
    vxTimeZone& theZone = vxTimeZone_Current();
    const int64_t theSeconds = vxMakeTime(theZone, *aFields);
    if (!vxFits(theSeconds)) {
        return -1;
    }
    const int32_t theMilliseconds = aFields->tm_msec;
    vxLocalTime(theZone, static_cast<int32_t>(theSeconds), *aFields);
    aFields->tm_msec = theMilliseconds;
    return static_cast<int32_t>(theSeconds);
}
