// Dates as text: fields of a fixed width, read one after the other. Whatever does not fit ends the
// reading, for no reader of a field steps over a NUL.

#include <libteskTools/Convert.h>

namespace {

constexpr int32_t kvxDate_MaxZoneOffset = 14 * 60;

bool vxIsDigit(char aChar) {
    return aChar >= '0' && aChar <= '9';
}

bool vxSkip(const char*& aStr, char aChar) {
    if (*aStr != aChar) {
        return false;
    }
    ++aStr;
    return true;
}

/// Reads a number of exactly that many digits, which lies between the limits.
bool vxReadField(const char*& aStr, int aDigits, int32_t aMin, int32_t aMax, int32_t& aField) {
    int32_t theValue = 0;
    for (int i = 0; i < aDigits; ++i, ++aStr) {
        if (!vxIsDigit(*aStr)) {
            return false;
        }
        theValue = theValue * 10 + (*aStr - '0');
    }
    aField = theValue;
    return theValue >= aMin && theValue <= aMax;
}

int32_t vxMonthLength(int32_t aYear, int32_t aMonth) {
    constexpr int8_t theLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool theLeap = aYear % 4 == 0 && (aYear % 100 != 0 || aYear % 400 == 0);
    return theLengths[aMonth - 1] + (aMonth == 2 && theLeap ? 1 : 0);
}

bool vxReadDay(const char*& aStr, vxDLNADate& aDate) {
    return vxReadField(aStr, 4, 0, 9999, aDate.mYear) && vxSkip(aStr, '-') &&
           vxReadField(aStr, 2, 1, 12, aDate.mMonth) && vxSkip(aStr, '-') &&
           vxReadField(aStr, 2, 1, vxMonthLength(aDate.mYear, aDate.mMonth), aDate.mDay);
}

bool vxReadTime(const char*& aStr, vxDLNADate& aDate) {
    return vxReadField(aStr, 2, 0, 23, aDate.mHour) && vxSkip(aStr, ':') &&
           vxReadField(aStr, 2, 0, 59, aDate.mMinute) && vxSkip(aStr, ':') &&
           vxReadField(aStr, 2, 0, 59, aDate.mSecond);
}

bool vxReadFraction(const char*& aStr, vxDLNADate& aDate) {
    if (!vxSkip(aStr, '.')) {
        return true;
    }
    const char* theStart = aStr;
    for (int32_t theUnit = 100; vxIsDigit(*aStr); ++aStr, theUnit /= 10) {
        aDate.mMillisecond += (*aStr - '0') * theUnit;
    }
    return aStr != theStart;
}

bool vxReadZone(const char*& aStr, vxDLNADate& aDate) {
    if (*aStr == '\0') {
        return true;
    }
    aDate.mfHasZone = true;
    if (vxSkip(aStr, 'Z')) {
        return true;
    }
    const bool theWest = *aStr == '-';
    int32_t theHours = 0;
    int32_t theMinutes = 0;
    if (!(theWest || *aStr == '+') || !vxReadField(++aStr, 2, 0, 14, theHours) ||
        !vxSkip(aStr, ':') || !vxReadField(aStr, 2, 0, 59, theMinutes)) {
        return false;
    }
    const int32_t theOffset = theHours * 60 + theMinutes;
    aDate.mZoneOffset = theWest ? -theOffset : theOffset;
    return theOffset <= kvxDate_MaxZoneOffset;
}

}  // namespace

int vxConvert_dlnadatestrtodate(const char* aStr, vxDLNADate* aResult) {
    vxDLNADate theDate = {};
    if (aStr == nullptr || !vxReadDay(aStr, theDate)) {
        return -1;
    }
    if (vxSkip(aStr, 'T') && !(vxReadTime(aStr, theDate) && vxReadFraction(aStr, theDate) &&
                               vxReadZone(aStr, theDate))) {
        return -1;
    }
    if (*aStr != '\0') {
        return -1;
    }
    *aResult = theDate;
    return 0;
}
