#pragma once

#include <libvxLog/Assert.h>
#include <libvxOS/Time.h>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/UInt64.h"

/// Years whose dates and times an instant can hold in every zone.
/// @{
constexpr int kvxDateTime_YearMinInRange = 1970;
constexpr int kvxDateTime_YearMaxInRange = 2037;
/// @}

/// Months of a year.
constexpr int kvxMonthPerYear = 12;

/// An instant: seconds since 1970-01-01 00:00:00 UTC and a sub-second part, read and set in local
/// time.
///
///     vxDateTime theDate;
///     if (theDate.ParseISO("2015-06-30T18:00:00")) {
///         theDate.SetDay(1);
///         const vxCString theText = theDate.FormatISO();
///     }
///
/// A value is valid or not. Invalid values come from the default constructor and from setters and
/// parsers that fail. Asking one for a field is misuse: it is reported, and the answer is that of
/// the second before 1970. Months count from 1 and years are full, but for GetNumberOfDays() and
/// SetYear().
///
/// Setters of single fields keep the kind of time, standard or daylight-saving, of the old value: a
/// day set across a change of clocks moves the hour. The setters of a whole time or date do not.
///
/// Threads:  one at a time for one value. Local time is that of vxTime_localtime().
class VX_EXPORT vxDateTime {
public:
    /// Months from 1; Inv_Month, 0, is none.
    enum Month { Inv_Month, Jan, Feb, Mar, Apr, May, Jun, Jul, Aug, Sep, Oct, Nov, Dec };

    /// Stands for the current year in IsLeapYear() and GetNumberOfDays().
    static constexpr int Inv_Year = -32768;

    /// Makes an invalid value.
    constexpr vxDateTime() noexcept : mTime{-1, -1} {}

    /// Takes both words as they are: a sub-second part of -1 makes the value invalid.
    constexpr vxDateTime(const vxtimeval& aTime) noexcept : mTime(aTime) {}

    /// Seconds since 1970; a count beyond 32 bits makes the value invalid.
    constexpr vxDateTime(long aSeconds) noexcept : mTime(FromSeconds(aSeconds)) {}

    /// As Set(const vxtm&).
    vxDateTime(const vxtm& aFields) : vxDateTime() { Set(aFields); }

    /// A time of the local day that holds the second before 1970.
    ///
    /// Asserts:  as Set() with the same arguments.
    vxDateTime(unsigned short anHour, unsigned short aMinute, unsigned short aSecond,
               unsigned short aMilliSeconds)
        : vxDateTime() {
        Set(anHour, aMinute, aSecond, aMilliSeconds);
    }

    /// As Set() with the same arguments.
    vxDateTime(unsigned short aDay, Month aMonth, int aYear, unsigned short anHour,
               unsigned short aMinute, unsigned short aSecond, unsigned short aMilliSeconds)
        : vxDateTime() {
        Set(aDay, aMonth, aYear, anHour, aMinute, aSecond, aMilliSeconds);
    }

    /// As Set() with the same argument.
    /// @{
    vxDateTime& operator=(long aSeconds) {
        mTime = FromSeconds(aSeconds);
        return *this;
    }

    vxDateTime& operator=(const vxtm& aFields) {
        Set(aFields);
        return *this;
    }
    /// @}

    /// Takes both words as they are: a sub-second part of -1 makes the value invalid.
    void Set(const vxtimeval& aTime) { mTime = aTime; }

    /// Seconds since 1970, without a sub-second part; a count beyond 32 bits makes the value
    /// invalid.
    void Set(const long& aSeconds) { mTime = FromSeconds(aSeconds); }

    /// Milliseconds since 1970, cut to whole seconds: the sub-second part becomes 0, and programs
    /// depend on that. SetMillisecond() sets it.
    ///
    /// Negative counts, and those whose seconds exceed 31 bits, make the value invalid.
    /// @{
    void Set(long long aMilliseconds);
    void Set(const vxuint64& aMilliseconds);
    /// @}

    /// Local fields, which may be out of range (see vxTime_mktime()); a time that seconds cannot
    /// hold makes the value invalid.
    void Set(const vxtm& aFields);

    /// Replaces the local time of day and keeps the date, also across a change of clocks.
    ///
    /// Asserts:  (anHour < 24) && (aSecond < 62) && (aMinute < 60) && (aMilliSeconds < 1000);
    ///           larger numbers carry over.
    void Set(unsigned short anHour, unsigned short aMinute, unsigned short aSecond,
             unsigned short aMilliSeconds);

    /// Sets the local date and time; a year that is not in 1970 to 2037 makes the value invalid.
    ///
    /// The check of the day uses the length of the month after `aMonth`, and trips on December:
    /// GetNumberOfDays() counts months from 0. It only reports: January 31 is reported and set.
    ///
    /// Asserts:  the time as above, then (aDay > 0) && (aDay <= GetNumberOfDays(aMonth, aYear));
    ///           larger numbers carry over.
    void Set(unsigned short aDay, Month aMonth, int aYear, unsigned short anHour,
             unsigned short aMinute, unsigned short aSecond, unsigned short aMilliSeconds);

    /// Sets the start of 1970 in UTC, which is valid.
    void Reset() { mTime = {0, 0}; }

    /// Sets hour, minute and second of the local day to 0; milliseconds stay.
    void ResetTime();

    /// Returns the current time with microseconds.
    static vxDateTime UNow();

    /// Returns the current time in whole seconds.
    static vxDateTime Now();

    /// Returns the current local year.
    static int GetCurrentYear() { return Now().GetYear(); }

    /// Tells whether there is a time. Only the sub-second part is looked at.
    bool IsValid() const { return mTime.tv_usec != -1; }

    /// Returns a local field: the full year, months from 1, hours to 23.
    ///
    /// FetchTM() gets them all for the price of one.
    ///
    /// Asserts:  IsValid(); the field is that of the second before 1970 then.
    /// @{
    int GetYear() const { return CheckedFields().tm_year + 1900; }
    Month GetMonth() const { return static_cast<Month>(CheckedFields().tm_mon + 1); }
    unsigned short GetDay() const { return static_cast<unsigned short>(CheckedFields().tm_mday); }
    unsigned short GetHour() const { return static_cast<unsigned short>(CheckedFields().tm_hour); }
    unsigned short GetMinute() const { return static_cast<unsigned short>(CheckedFields().tm_min); }
    unsigned short GetSecond() const { return static_cast<unsigned short>(CheckedFields().tm_sec); }

    /// @}

    /// Returns the milliseconds of the sub-second part.
    ///
    /// Asserts:  IsValid().
    unsigned short GetMillisecond() const;

    /// Sets the year counted from 1900, unlike GetYear(): SetYear(115) is 2015. Programs depend on
    /// it.
    void SetYear(int aYear);

    /// Sets one local field and keeps the others; a day that the month lacks carries over, and so do
    /// other numbers that are out of range.
    /// @{
    void SetMonth(Month aMonth);
    void SetDay(unsigned short aDay);
    void SetHour(unsigned short anHour);
    void SetMinute(unsigned short aMinute);
    void SetSecond(unsigned short aSecond);

    /// @}

    /// Sets the sub-second part.
    ///
    /// Asserts:  IsValid(); it is set all the same.
    void SetMillisecond(unsigned short aMilliSeconds);

    /// Fetches all local fields; false when the platform cannot convert the time.
    bool FetchTM(vxtm& aFields) const;

    /// Returns the seconds since 1970, or -1 when invalid.
    long GetTicks() const { return IsValid() ? mTime.tv_sec : -1; }

    /// Returns the milliseconds since 1970, or kvxuint64_Max when invalid.
    vxuint64 GetValue() const;

    /// Tells whether February has 29 days in a full year, by the Gregorian rule.
    static bool IsLeapYear(int aYear);

    /// Returns the length of a month, counted from 0 here: GetNumberOfDays(1, 2015) is February's.
    ///
    /// Asserts:  aMonth < kvxMonthPerYear; an index out of range yields 31.
    /// @{
    static unsigned short GetNumberOfDays(int aMonth, int aYear);
    static unsigned short GetNumberOfDays(Month aMonth, int aYear) {
        return GetNumberOfDays(static_cast<int>(aMonth), aYear);
    }
    /// @}

    /// Moves the instant so that its local fields read as the UTC time did; a moment that cannot be
    /// moved becomes the start of 1970.
    ///
    /// Asserts:  IsValid().
    void ToUTC();

    /// Returns "2015-06-30", in local time.
    vxCString FormatISODate() const;

    /// Returns "18:00:00", in local time.
    vxCString FormatISOTime() const;

    /// Returns "18:00:00.000", in local time.
    vxCString FormatTime() const;

    /// Returns "2015-06-30T18:00:00", in local time.
    vxCString FormatISO() const;

    /// Reads year, month and day with a '-' between them and keeps the local time of day, of an
    /// invalid value that of the start of 1970.
    ///
    /// Numbers may be shorter than in FormatISODate(), blanks may stand before them, and text behind
    /// the day is ignored. Days up to 31 are taken for every month and carry over.
    ///
    /// Fails:    false for other text, and the value is invalid.
    bool ParseISODate(const vxCString& aText);

    /// Reads hour, minute and second with a ':' between them and keeps the local date, of an
    /// invalid value that of the start of 1970; otherwise as ParseISODate(). Hour 24 is the next
    /// day's first.
    bool ParseISOTime(const vxCString& aText);

    /// Reads what FormatISO() writes: the date before the first 'T', the time behind it.
    ///
    /// Fails:    as ParseISODate(); text without a 'T' fails.
    bool ParseISO(const vxCString& aText);

    /// Reads a date as HTTP headers have it (see vxTime_ParseRFC1123Date()).
    ///
    /// Fails:    false; the value is unchanged. The second before 1970 is false as well, but there
    ///           the value becomes invalid.
    bool ParseRFC1123(const vxCString& aText);

    /// Reads a date as media servers have it, in the zone that it names, else in local time (see
    /// vxConvert_dlnadatestrtodate()). A date without a time is its first second.
    ///
    /// Fails:    false for other text, and for times that do not fit 32-bit seconds; the value is
    ///           invalid.
    bool ParseDLNA(const vxCString& aText);

    /// Compares seconds, then sub-second parts.
    ///
    /// Asserts:  IsValid() && aDateTime.IsValid(); invalid values compare as they stand.
    /// @{
    bool operator<(const vxDateTime& aDateTime) const { return Compare(aDateTime) < 0; }
    bool operator<=(const vxDateTime& aDateTime) const { return Compare(aDateTime) <= 0; }
    bool operator>(const vxDateTime& aDateTime) const { return Compare(aDateTime) > 0; }
    bool operator>=(const vxDateTime& aDateTime) const { return Compare(aDateTime) >= 0; }
    bool operator==(const vxDateTime& aDateTime) const { return Compare(aDateTime) == 0; }
    bool operator!=(const vxDateTime& aDateTime) const { return Compare(aDateTime) != 0; }
    /// @}

    /// Compares local year, month and day.
    bool IsSameDate(const vxDateTime& aDateTime) const;

    /// Compares local hour, minute, second and millisecond.
    bool IsSameTime(const vxDateTime& aDateTime) const;

private:
    static constexpr vxtimeval FromSeconds(long long aSeconds) {
        return aSeconds < INT32_MIN || aSeconds > INT32_MAX
                   ? vxtimeval{-1, -1}
                   : vxtimeval{static_cast<int32_t>(aSeconds), 0};
    }

    int Compare(const vxDateTime& aDateTime) const {
        VXASSERT(IsValid() && aDateTime.IsValid());
        const vxtimeval& theOther = aDateTime.mTime;
        return mTime.tv_sec != theOther.tv_sec
                   ? (mTime.tv_sec < theOther.tv_sec ? -1 : 1)
                   : (mTime.tv_usec > theOther.tv_usec) - (mTime.tv_usec < theOther.tv_usec);
    }

    vxtm Fields() const;
    vxtm CheckedFields() const {
        VXASSERT(IsValid());
        return Fields();
    }

    void SetField(int32_t vxtm::*aField, int32_t aValue);

    vxtimeval mTime;  // both words -1: invalid
};
