// Dates of mail and HTTP headers, read field by field. Each step takes its text or fails; the first
// failure ends the reading.

#include <libvxOS/Time.h>

#include "Calendar.h"

#include <cstring>

namespace {

struct vxZoneName {
    char mName[4];
    int32_t mMinutes;  // east of Greenwich
};

constexpr vxZoneName kvxRFC1123_Zones[] = {
    {"gmt", 0},    {"ut", 0},     {"utc", 0},    {"est", -300}, {"edt", -240}, {"cst", -360},
    {"cdt", -300}, {"mst", -420}, {"mdt", -360}, {"pst", -480}, {"pdt", -420},
};

constexpr char kvxRFC1123_Months[] = "janfebmaraprmayjunjulaugsepoctnovdec";
constexpr char kvxRFC1123_Weekdays[] = "sunmontuewedthufrisat";

constexpr int32_t kvxRFC1123_DaysInMonth[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

int32_t vxDaysInMonth(int32_t aYear, int32_t aMonth) {
    const bool fLeapDay = aMonth == 1 && aYear % 4 == 0 && (aYear % 100 != 0 || aYear % 400 == 0);
    return kvxRFC1123_DaysInMonth[aMonth] + fLeapDay;
}

bool vxIsDigit(char aChar) {
    return aChar >= '0' && aChar <= '9';
}

bool vxIsLetter(char aChar) {
    return (aChar | 0x20) >= 'a' && (aChar | 0x20) <= 'z';
}

class vxReader {
public:
    explicit vxReader(const char* aText) : mText(aText) {}

    bool AtEnd() const { return *mText == '\0'; }
    bool AtLetter() const { return vxIsLetter(*mText); }
    bool AtDigit() const { return vxIsDigit(*mText); }

    bool Take(char aChar) {
        if (*mText != aChar) {
            return false;
        }
        ++mText;
        return true;
    }

    // Exactly `aCount` digits.
    bool TakeNumber(int aCount, int32_t& aNumber) {
        aNumber = 0;
        for (int i = 0; i < aCount; ++i, ++mText) {
            if (!AtDigit()) {
                return false;
            }
            aNumber = aNumber * 10 + (*mText - '0');
        }
        return true;
    }

    // One of the three-letter names in a row, as its index.
    bool TakeName(const char* aNames, int32_t aCount, int32_t& anIndex) {
        if (!vxIsLetter(mText[0]) || !vxIsLetter(mText[1]) || !vxIsLetter(mText[2])) {
            return false;
        }
        const char theName[] = {Lower(mText[0]), Lower(mText[1]), Lower(mText[2])};
        for (anIndex = 0; anIndex < aCount; ++anIndex) {
            if (memcmp(aNames + 3 * anIndex, theName, 3) == 0) {
                mText += 3;
                return true;
            }
        }
        return false;
    }

    // Two or three letters that name a zone.
    bool TakeZoneName(int32_t& aMinutes) {
        char theName[4] = {};
        for (int i = 0; i < 3 && AtLetter(); ++i, ++mText) {
            theName[i] = Lower(*mText);
        }
        for (const vxZoneName& theZone : kvxRFC1123_Zones) {
            if (memcmp(theZone.mName, theName, sizeof(theName)) == 0) {
                aMinutes = theZone.mMinutes;
                return true;
            }
        }
        return false;
    }

private:
    static char Lower(char aChar) { return static_cast<char>(aChar | 0x20); }

    const char* mText;
};

bool vxTakeWeekday(vxReader& aReader) {
    int32_t theWeekday;
    return !aReader.AtLetter() || (aReader.TakeName(kvxRFC1123_Weekdays, 7, theWeekday) &&
                                   aReader.Take(',') && aReader.Take(' '));
}

// One digit or two.
bool vxTakeDay(vxReader& aReader, int32_t& aDay) {
    int32_t theSecond;
    if (!aReader.TakeNumber(1, aDay)) {
        return false;
    }
    if (aReader.AtDigit()) {
        aReader.TakeNumber(1, theSecond);
        aDay = aDay * 10 + theSecond;
    }
    return true;
}

bool vxTakeDate(vxReader& aReader, vxtm& aFields) {
    int32_t theYear;
    if (!vxTakeDay(aReader, aFields.tm_mday) || !aReader.Take(' ') ||
        !aReader.TakeName(kvxRFC1123_Months, 12, aFields.tm_mon) || !aReader.Take(' ') ||
        !aReader.TakeNumber(4, theYear)) {
        return false;
    }
    aFields.tm_year = theYear - 1900;
    return aFields.tm_mday >= 1 && aFields.tm_mday <= vxDaysInMonth(theYear, aFields.tm_mon);
}

bool vxTakeTime(vxReader& aReader, vxtm& aFields) {
    if (!aReader.TakeNumber(2, aFields.tm_hour) || !aReader.Take(':') ||
        !aReader.TakeNumber(2, aFields.tm_min) ||
        (aReader.Take(':') && !aReader.TakeNumber(2, aFields.tm_sec))) {
        return false;
    }
    return aFields.tm_hour < 24 && aFields.tm_min < 60 && aFields.tm_sec <= 60;
}

bool vxTakeZone(vxReader& aReader, int32_t& aMinutes) {
    const bool fWest = aReader.Take('-');
    if (!fWest && !aReader.Take('+')) {
        return aReader.TakeZoneName(aMinutes);
    }
    int32_t theHours;
    int32_t theMinutes;
    if (!aReader.TakeNumber(2, theHours) || !aReader.TakeNumber(2, theMinutes) || theHours > 23 ||
        theMinutes > 59) {
        return false;
    }
    aMinutes = (theHours * 60 + theMinutes) * (fWest ? -1 : 1);
    return true;
}

}  // namespace

int vxTime_ParseRFC1123Date(const char* aText, vxtm* aFields) {
    if (aText == NULL) {
        return -1;
    }
    vxReader theReader(aText);
    vxtm theFields = {};
    int32_t theMinutes;
    if (!vxTakeWeekday(theReader) || !vxTakeDate(theReader, theFields) || !theReader.Take(' ') ||
        !vxTakeTime(theReader, theFields) || !theReader.Take(' ') ||
        !vxTakeZone(theReader, theMinutes) || !theReader.AtEnd()) {
        return -1;
    }
    const int64_t theSeconds = vxCalendar_Seconds(theFields) - int64_t{theMinutes} * 60;
    if (theSeconds < INT32_MIN || theSeconds > INT32_MAX) {
        return -1;
    }
    return vxTime_localtime(static_cast<int32_t>(theSeconds), aFields) != 0 ? 0 : -1;
}
