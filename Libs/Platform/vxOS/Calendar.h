#pragma once

// Arithmetic of the Gregorian calendar. Days are counted from 1970-01-01.

#include <libvxOS/Time.h>

constexpr int32_t kvxCalendar_SecondsPerDay = 86400;

/// Returns the day number of a date; `aMonth` is 0 to 11, `aDay` any number.
int64_t vxCalendar_DayNumber(int64_t aYear, int32_t aMonth, int64_t aDay);

/// Returns the seconds since 1970 that the fields, whatever their range, would be in UTC.
int64_t vxCalendar_Seconds(const vxtm& aFields);

/// Fills the fields, all but `tm_isdst`, from seconds since 1970 and the offset of the clock, which
/// is less than two days; milliseconds become 0.
void vxCalendar_Fill(int32_t aSeconds, int32_t anOffset, vxtm& aFields);
