// An instant in two 32-bit words, seen through the local calendar.
//
// Every field setter goes the same way: fetch the broken-down form, replace, convert back. Whether
// the kind of time (standard or daylight-saving) goes with it decides what happens at a change of
// clocks; see SetField() and vxKeepFields().

#include "vx/DateTime.h"

#include <libteskTools/Convert.h>

#include <cctype>
#include <cstdio>
#include <cstring>

namespace {

constexpr vxDateTime wxDefaultDateTime;

constexpr unsigned short kvxDateTime_MonthLengths[] = {
    31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31,  // other years
    31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31,  // leap years
};

// Takes the fields for what the clock shows, in whichever kind of time.
void vxKeepFields(vxtm& aFields) {
    aFields.tm_isdst = -1;
}

// Room for the longest text, should a field be any integer.
constexpr size_t kvxDateTime_MaxText = 96;

// Writes a number as "%0*d" does; the usual one has no more digits than asked for.
char* vxPut(char* aTarget, int aNumber, int aDigits) {
    unsigned theRest = static_cast<unsigned>(aNumber);
    for (int i = aDigits; i > 0; --i, theRest /= 10) {
        aTarget[i - 1] = static_cast<char>('0' + theRest % 10);
    }
    return aTarget + (theRest == 0 ? aDigits : snprintf(aTarget, 12, "%0*d", aDigits, aNumber));
}

// As "%04d-%02d-%02d".
char* vxPutDate(char* aTarget, const vxtm& aFields) {
    aTarget = vxPut(aTarget, aFields.tm_year + 1900, 4);
    *aTarget++ = '-';
    aTarget = vxPut(aTarget, aFields.tm_mon + 1, 2);
    *aTarget++ = '-';
    return vxPut(aTarget, aFields.tm_mday, 2);
}

// As "%02d:%02d:%02d"; FormatTime() adds the milliseconds: "%02d:%02d:%02d.%03d".
char* vxPutTime(char* aTarget, const vxtm& aFields) {
    aTarget = vxPut(aTarget, aFields.tm_hour, 2);
    *aTarget++ = ':';
    aTarget = vxPut(aTarget, aFields.tm_min, 2);
    *aTarget++ = ':';
    return vxPut(aTarget, aFields.tm_sec, 2);
}

vxCString vxText(const char* aStart, const char* anEnd) {
    return vxCString(aStart, static_cast<size_t>(anEnd - aStart));
}

// Reads a number of up to `aWidth` characters the way scanf() does: blanks before it do not count,
// a sign does. Null when there is none.
const char* vxScan(const char* aText, int aWidth, int& aNumber) {
    while (isspace(static_cast<unsigned char>(*aText))) {
        ++aText;
    }
    const bool fNegative = *aText == '-';
    int theWidth = aWidth;
    if (fNegative || *aText == '+') {
        ++aText;
        --theWidth;
    }
    const char* theEnd = aText;
    aNumber = 0;
    for (; theEnd - aText < theWidth && *theEnd >= '0' && *theEnd <= '9'; ++theEnd) {
        aNumber = aNumber * 10 + (*theEnd - '0');
    }
    if (fNegative) {
        aNumber = -aNumber;
    }
    return theEnd == aText ? NULL : theEnd;
}

// Reads three numbers with a separator between them, as "%04d-%02d-%02d" or "%02d:%02d:%02d"; text
// behind them is ignored.
bool vxScanThree(const char* aText, char aSeparator, int aFirstWidth, int (&aNumbers)[3]) {
    const char* theText = vxScan(aText, aFirstWidth, aNumbers[0]);
    for (int i = 1; i < 3 && theText != NULL; ++i) {
        theText = *theText == aSeparator ? vxScan(theText + 1, 2, aNumbers[i]) : NULL;
    }
    return theText != NULL;
}

bool vxIsBetween(int aNumber, int aMinimum, int aMaximum) {
    return aNumber >= aMinimum && aNumber <= aMaximum;
}

bool vxScanDate(const char* aText, vxtm& aFields) {
    int theNumbers[3];
    if (!vxScanThree(aText, '-', 4, theNumbers) || theNumbers[0] <= 1899 ||
        !vxIsBetween(theNumbers[1], 1, 12) || !vxIsBetween(theNumbers[2], 1, 31)) {
        return false;
    }
    aFields.tm_year = theNumbers[0] - 1900;
    aFields.tm_mon = theNumbers[1] - 1;
    aFields.tm_mday = theNumbers[2];
    return true;
}

bool vxScanTime(const char* aText, vxtm& aFields) {
    int theNumbers[3];
    if (!vxScanThree(aText, ':', 2, theNumbers) || !vxIsBetween(theNumbers[0], 0, 24) ||
        !vxIsBetween(theNumbers[1], 0, 59) || !vxIsBetween(theNumbers[2], 0, 59)) {
        return false;
    }
    aFields.tm_hour = theNumbers[0];
    aFields.tm_min = theNumbers[1];
    aFields.tm_sec = theNumbers[2];
    return true;
}

bool vxScanDateTime(const char* aText, vxtm& aFields) {
    // What follows the numbers of the date is ignored, so the text need not be cut in two.
    const char* theT = strchr(aText, 'T');
    return theT != NULL && vxScanDate(aText, aFields) && vxScanTime(theT + 1, aFields);
}

// Reads some of the fields of a value and keeps the others.
bool vxParse(vxDateTime& aDateTime, const char* aText, bool (*aScan)(const char*, vxtm&)) {
    if (!aDateTime.IsValid()) {
        aDateTime.Reset();
    }
    vxtm theFields;
    if (!aDateTime.FetchTM(theFields)) {
        return false;
    }
    if (!aScan(aText, theFields)) {
        aDateTime = wxDefaultDateTime;
        return false;
    }
    vxKeepFields(theFields);
    aDateTime.Set(theFields);
    return aDateTime.IsValid();
}

}  // namespace

void vxDateTime::Set(long long aMilliseconds) {
    mTime = aMilliseconds < 0 ? wxDefaultDateTime.mTime : FromSeconds(aMilliseconds / 1000);
}

void vxDateTime::Set(const vxuint64& aMilliseconds) {
    const vxuint64 theSeconds = aMilliseconds / 1000;
    mTime =
        theSeconds > INT32_MAX ? wxDefaultDateTime.mTime : FromSeconds(theSeconds.ToFileOffset());
}

void vxDateTime::Set(const vxtm& aFields) {
    vxtm theFields = aFields;
    mTime.tv_sec = vxTime_mktime(&theFields);
    mTime.tv_usec =
        mTime.tv_sec == -1 ? -1 : static_cast<int32_t>(int64_t{theFields.tm_msec} * 1000);
}

void vxDateTime::Set(unsigned short anHour, unsigned short aMinute, unsigned short aSecond,
                     unsigned short aMilliSeconds) {
    VXASSERT((anHour < 24) && (aSecond < 62) && (aMinute < 60) && (aMilliSeconds < 1000));
    vxtm theFields = {};
    FetchTM(theFields);
    theFields.tm_hour = anHour;
    theFields.tm_min = aMinute;
    theFields.tm_sec = aSecond;

    // The new time may lie on the other side of a change of clocks. Only then does the conversion
    // of a copy come back with another kind of time, and that is the kind of the new time.
    vxtm theCopy = theFields;
    vxTime_mktime(&theCopy);
    theFields.tm_isdst = theCopy.tm_isdst;
    Set(theFields);
    SetMillisecond(aMilliSeconds);
}

void vxDateTime::Set(unsigned short aDay, Month aMonth, int aYear, unsigned short anHour,
                     unsigned short aMinute, unsigned short aSecond, unsigned short aMilliSeconds) {
    VXASSERT((anHour < 24) && (aSecond < 62) && (aMinute < 60) && (aMilliSeconds < 1000));
    VXASSERT((aDay > 0) && (aDay <= GetNumberOfDays(aMonth, aYear)));
    if (!vxIsBetween(aYear, kvxDateTime_YearMinInRange, kvxDateTime_YearMaxInRange)) {
        *this = wxDefaultDateTime;
        return;
    }
    vxtm theFields = {};
    theFields.tm_year = aYear - 1900;
    theFields.tm_mon = aMonth - 1;
    theFields.tm_mday = aDay;
    theFields.tm_hour = anHour;
    theFields.tm_min = aMinute;
    theFields.tm_sec = aSecond;
    vxKeepFields(theFields);
    Set(theFields);
    if (IsValid()) {
        SetMillisecond(aMilliSeconds);
    }
}

void vxDateTime::ResetTime() {
    vxtm theFields = {};
    FetchTM(theFields);
    theFields.tm_hour = 0;
    theFields.tm_min = 0;
    theFields.tm_sec = 0;
    vxKeepFields(theFields);
    Set(theFields);
}

vxDateTime vxDateTime::UNow() {
    vxtimeval theTime;
    vxTime_GetTimeOfDay(&theTime);
    return vxDateTime(theTime);
}

vxDateTime vxDateTime::Now() {
    vxDateTime theNow = UNow();
    theNow.mTime.tv_usec = 0;
    return theNow;
}

unsigned short vxDateTime::GetMillisecond() const {
    VXASSERT(IsValid());
    return static_cast<unsigned short>(mTime.tv_usec / 1000);
}

void vxDateTime::SetYear(int aYear) {
    SetField(&vxtm::tm_year, aYear);
}

void vxDateTime::SetMonth(Month aMonth) {
    SetField(&vxtm::tm_mon, aMonth - 1);
}

void vxDateTime::SetDay(unsigned short aDay) {
    SetField(&vxtm::tm_mday, aDay);
}

void vxDateTime::SetHour(unsigned short anHour) {
    SetField(&vxtm::tm_hour, anHour);
}

void vxDateTime::SetMinute(unsigned short aMinute) {
    SetField(&vxtm::tm_min, aMinute);
}

void vxDateTime::SetSecond(unsigned short aSecond) {
    SetField(&vxtm::tm_sec, aSecond);
}

void vxDateTime::SetMillisecond(unsigned short aMilliSeconds) {
    VXASSERT(IsValid());
    mTime.tv_usec = aMilliSeconds * 1000;
}

bool vxDateTime::FetchTM(vxtm& aFields) const {
    if (vxTime_localtime(mTime.tv_sec, &aFields) == 0) {
        return false;
    }
    aFields.tm_msec = mTime.tv_usec / 1000;
    return true;
}

vxuint64 vxDateTime::GetValue() const {
    if (!IsValid()) {
        return kvxuint64_Max;
    }
    const int64_t theMilliseconds = int64_t{mTime.tv_sec} * 1000 + mTime.tv_usec / 1000;
    return static_cast<unsigned long long>(theMilliseconds);
}

bool vxDateTime::IsLeapYear(int aYear) {
    const int theYear = aYear == Inv_Year ? GetCurrentYear() : aYear;
    return theYear % 4 == 0 && (theYear % 100 != 0 || theYear % 400 == 0);
}

unsigned short vxDateTime::GetNumberOfDays(int aMonth, int aYear) {
    VXASSERT(aMonth < kvxMonthPerYear);
    const int theMonth = vxIsBetween(aMonth, 0, kvxMonthPerYear - 1) ? aMonth : 0;
    return kvxDateTime_MonthLengths[(IsLeapYear(aYear) ? kvxMonthPerYear : 0) + theMonth];
}

void vxDateTime::ToUTC() {
    VXASSERT(IsValid());
    int32_t theSeconds = mTime.tv_sec;
    vxtm theFields = {};
    if (FetchTM(theFields) && theFields.tm_isdst > 0 && theSeconds > 3600) {
        // The UTC form says standard time, so converting it back to local time adds the hour again.
        theSeconds -= 3600;
    }
    vxTime_gmtime(theSeconds, &theFields);
    theFields.tm_msec = mTime.tv_usec / 1000;
    Set(theFields);
    if (!IsValid()) {
        Reset();
    }
}

vxCString vxDateTime::FormatISODate() const {
    char theText[kvxDateTime_MaxText];
    return vxText(theText, vxPutDate(theText, Fields()));
}

vxCString vxDateTime::FormatISOTime() const {
    char theText[kvxDateTime_MaxText];
    return vxText(theText, vxPutTime(theText, Fields()));
}

vxCString vxDateTime::FormatTime() const {
    const vxtm theFields = Fields();
    char theText[kvxDateTime_MaxText];
    char* theEnd = vxPutTime(theText, theFields);
    *theEnd++ = '.';
    return vxText(theText, vxPut(theEnd, theFields.tm_msec, 3));
}

vxCString vxDateTime::FormatISO() const {
    const vxtm theFields = Fields();
    char theText[kvxDateTime_MaxText];
    char* theEnd = vxPutDate(theText, theFields);
    *theEnd++ = 'T';
    return vxText(theText, vxPutTime(theEnd, theFields));
}

bool vxDateTime::ParseISODate(const vxCString& aText) {
    return vxParse(*this, aText.c_str(), vxScanDate);
}

bool vxDateTime::ParseISOTime(const vxCString& aText) {
    return vxParse(*this, aText.c_str(), vxScanTime);
}

bool vxDateTime::ParseISO(const vxCString& aText) {
    return vxParse(*this, aText.c_str(), vxScanDateTime);
}

bool vxDateTime::ParseRFC1123(const vxCString& aText) {
    vxtm theFields;
    if (vxTime_ParseRFC1123Date(aText.c_str(), &theFields) != 0) {
        return false;
    }
    Set(theFields);
    return IsValid();
}

bool vxDateTime::ParseDLNA(const vxCString& aText) {
    mTime = wxDefaultDateTime.mTime;
    vxDLNADate theDate;
    if (vxConvert_dlnadatestrtodate(aText.c_str(), &theDate) != 0) {
        return false;
    }
    vxtm theFields = {};
    theFields.tm_year = theDate.mYear - 1900;
    theFields.tm_mon = theDate.mMonth - 1;
    theFields.tm_mday = theDate.mDay;
    theFields.tm_hour = theDate.mHour;
    theFields.tm_min = theDate.mMinute;
    theFields.tm_sec = theDate.mSecond;
    theFields.tm_msec = theDate.mMillisecond;
    if (!theDate.mfHasZone) {
        vxKeepFields(theFields);
        Set(theFields);
        return IsValid();
    }
    mTime = FromSeconds(vxTime_timegm(&theFields) - int64_t{theDate.mZoneOffset} * 60);
    if (IsValid()) {
        mTime.tv_usec = theDate.mMillisecond * 1000;
    }
    return IsValid();
}

bool vxDateTime::IsSameDate(const vxDateTime& aDateTime) const {
    const vxtm theFields = Fields();
    const vxtm theOther = aDateTime.Fields();
    return theFields.tm_year == theOther.tm_year && theFields.tm_mon == theOther.tm_mon &&
           theFields.tm_mday == theOther.tm_mday;
}

bool vxDateTime::IsSameTime(const vxDateTime& aDateTime) const {
    const vxtm theFields = Fields();
    const vxtm theOther = aDateTime.Fields();
    return theFields.tm_hour == theOther.tm_hour && theFields.tm_min == theOther.tm_min &&
           theFields.tm_sec == theOther.tm_sec && theFields.tm_msec == theOther.tm_msec;
}

// The local fields; all 0 when the platform cannot convert the time.
vxtm vxDateTime::Fields() const {
    vxtm theFields = {};
    FetchTM(theFields);
    return theFields;
}

// The kind of time stays with the other fields, also where the clock shows another kind on the new
// date.
void vxDateTime::SetField(int32_t vxtm::*aField, int32_t aValue) {
    vxtm theFields;
    if (FetchTM(theFields)) {
        theFields.*aField = aValue;
        Set(theFields);
    }
}
