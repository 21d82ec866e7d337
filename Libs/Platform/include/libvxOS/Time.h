#pragma once

// The date: the clock that people set, and calendar fields in local time and in UTC.
//
// Local time is that of the environment variable TZ, else of the system (see tzset(3)). A change of
// TZ counts from the next call on. Years run from 1901 to 2038, as far as 32-bit seconds reach.

#include <libteskTools/ULongLong.h>
#include <libvxOS/TimeVal.h>

VX_C_BEGIN

/// A date and time in calendar fields.
typedef struct vxtm {
    int32_t tm_sec;    ///< 0 to 60
    int32_t tm_min;    ///< 0 to 59
    int32_t tm_hour;   ///< 0 to 23
    int32_t tm_mday;   ///< 1 to 31
    int32_t tm_mon;    ///< 0 to 11
    int32_t tm_year;   ///< years since 1900
    int32_t tm_isdst;  ///< daylight-saving time: 1 yes, 0 no, -1 not known
    int32_t tm_wday;   ///< days since Sunday
    int32_t tm_yday;   ///< days since January 1
    int32_t tm_msec;   ///< milliseconds, 0 to 999
} vxtm;

/// Fills `aTime` with the time since 1970; the seconds stay at the largest value from 2038 on.
///
/// Threads:  any.
VX_API void vxTime_GetTimeOfDay(vxtimeval* aTime);

/// Fills `aTime` with the milliseconds that the local clock shows since 1970-01-01 00:00.
///
/// The date is read at the first call only; from then on the count goes on evenly. So neither a new
/// setting of the date nor a change of the clocks brings a moment nearer or puts it off; the date
/// of today is for vxTime_GetTimeOfDay(). A clock that shows a moment before 1970 counts from 0.
///
/// Threads:  any.
VX_API void vxTime_GetLocalTimeMS(vxULongLong* aTime);

/// Converts seconds since 1970 to local calendar fields; the milliseconds become 0.
///
/// Fails:    0 when the system cannot convert them, and `aFields` is untouched; else non-zero.
/// Threads:  any, as long as none changes the environment.
/// Cost:     a few nanoseconds; the first conversion within a span of 49 days asks the C library.
VX_API int vxTime_localtime(int32_t aSeconds, vxtm* aFields);

/// Converts seconds since 1970 to calendar fields in UTC; the milliseconds become 0.
///
/// Fails:    never; the result is non-zero.
/// Threads:  any.
VX_API int vxTime_gmtime(int32_t aSeconds, vxtm* aFields);

/// Converts local calendar fields to seconds since 1970, and brings fields that are out of range
/// into it: minute 75 counts as one hour and 15 minutes, hour 24 as the next day.
///
/// Weekday and day of the year are not read but set; the milliseconds are left alone. `tm_isdst`
/// chooses between two readings: fields written down in the other kind of time are moved by the
/// difference. With -1 a time that occurs twice is its first occurrence, and a time that the clocks
/// skip is as long after the change as it claims to be. A zone without daylight-saving time is
/// taken to set its clocks by an hour.
///
/// Fails:    -1 for times that do not fit 32-bit seconds, and `aFields` is untouched. The second
///           before 1970 is -1 as well.
/// Threads:  any, as long as none changes the environment.
VX_API int32_t vxTime_mktime(vxtm* aFields);

/// Returns the seconds since 1970 that calendar fields, whatever their range, are in UTC. Weekday, day
/// of the year, milliseconds and `tm_isdst` are not looked at.
///
/// Fails:    never: 64 bits hold every result.
/// Threads:  any.
VX_API int64_t vxTime_timegm(const vxtm* aFields);

/// Reads a date as mail and HTTP headers have it ("Sun, 06 Nov 1994 08:49:37 GMT") and converts it
/// to local calendar fields, so that vxTime_mktime() gives that very instant.
///
/// The weekday with its comma and the seconds may be missing, the day may have one digit, and names
/// are read in any case. The zone is GMT, UT, UTC, one of EST EDT CST CDT MST MDT PST PDT, or a
/// difference such as +0130. A second of 60 counts as the next minute. A weekday that is not the
/// date's is not noticed. One blank separates two fields and nothing else may stand in the text.
///
/// Fails:    non-zero for any other text, for null and for dates that do not fit 32-bit seconds;
///           `aFields` is untouched.
/// Threads:  as vxTime_localtime(); the locale does not matter.
/// Cost:     linear, without allocation.
VX_API int vxTime_ParseRFC1123Date(const char* aText, vxtm* aFields);

VX_C_END
