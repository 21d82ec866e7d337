#include <libteskTools/Convert.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

TEST(ConvertTest, WhitespaceIsThatOfASCII) {
    for (int i = -1; i < 257; i++) {
        const bool theIsSpace =
            i == ' ' || i == '\t' || i == '\n' || i == '\v' || i == '\f' || i == '\r';
        EXPECT_EQ(vxConvert_isspace(i), theIsSpace ? 1 : 0) << i;
    }
}

TEST(ConvertTest, PrintableIsFromBlankToTilde) {
    for (int i = -1; i < 257; i++) {
        EXPECT_EQ(vxConvert_isprint(i), i >= 0x20 && i <= 0x7E ? 1 : 0) << i;
    }
}

namespace {

template <typename T>
struct Limits {
    int (*mConvert)(const char*, T*);
    int (*mConvertBase)(const char*, T*, int);
    const char *mMin, *mBelowMin, *mMax, *mAboveMax;
};

template <typename T>
void ExpectLimits(const Limits<T>& aLimits) {
    for (const bool theWithBase : {false, true}) {
        const auto theConvert = [&](const char* aStr, T* aResult) {
            return theWithBase ? aLimits.mConvertBase(aStr, aResult, 10)
                               : aLimits.mConvert(aStr, aResult);
        };
        T theValue = 7;
        EXPECT_EQ(theConvert(aLimits.mMin, &theValue), 0);
        EXPECT_EQ(theValue, std::numeric_limits<T>::min());
        EXPECT_EQ(theConvert(aLimits.mMax, &theValue), 0);
        EXPECT_EQ(theValue, std::numeric_limits<T>::max());
        theValue = 7;
        EXPECT_EQ(theConvert(aLimits.mBelowMin, &theValue), -1);
        EXPECT_EQ(theConvert(aLimits.mAboveMax, &theValue), -1);
        EXPECT_EQ(theConvert("99999999999999999999999999", &theValue), -1);
        EXPECT_EQ(theConvert("-99999999999999999999999999", &theValue), -1);
        EXPECT_EQ(theConvert(nullptr, &theValue), -1);
        EXPECT_EQ(theValue, 7);
        EXPECT_EQ(theConvert("-0", &theValue), 0);
        EXPECT_EQ(theValue, 0);
        EXPECT_EQ(theConvert("+00000000000000000000000000000042", &theValue), 0);
        EXPECT_EQ(theValue, 42);
    }
}

}  // namespace

TEST(ConvertTest, EveryTypeKeepsToItsLimits) {
    ExpectLimits<int8_t>(
        {vxConvert_strtoint8, vxConvert_strtoint8_base, "-128", "-129", "127", "128"});
    ExpectLimits<int16_t>(
        {vxConvert_strtoint16, vxConvert_strtoint16_base, "-32768", "-32769", "32767", "32768"});
    ExpectLimits<int32_t>({vxConvert_strtoint32, vxConvert_strtoint32_base, "-2147483648",
                           "-2147483649", "2147483647", "2147483648"});
    ExpectLimits<int64_t>({vxConvert_strtoint64, vxConvert_strtoint64_base, "-9223372036854775808",
                           "-9223372036854775809", "9223372036854775807", "9223372036854775808"});
    ExpectLimits<uint8_t>(
        {vxConvert_strtouint8, vxConvert_strtouint8_base, "0", "-1", "255", "256"});
    ExpectLimits<uint16_t>(
        {vxConvert_strtouint16, vxConvert_strtouint16_base, "0", "-1", "65535", "65536"});
    ExpectLimits<uint32_t>(
        {vxConvert_strtouint32, vxConvert_strtouint32_base, "0", "-1", "4294967295", "4294967296"});
    ExpectLimits<uint64_t>({vxConvert_strtouint64, vxConvert_strtouint64_base, "0", "-1",
                            "18446744073709551615", "18446744073709551616"});
}

TEST(ConvertTest, NothingButANumberConverts) {
    for (const char* theText : {"", "+", "-", " 1", "1 ", "1\n", "+-1", "--1", "1-", "0x10", "a",
                                "1a", "1.0", "1e3", "\xB2", "1\xB2"}) {
        SCOPED_TRACE(theText);
        int32_t theValue = 7;
        EXPECT_EQ(vxConvert_strtoint32(theText, &theValue), -1);
        EXPECT_EQ(theValue, 7);
    }
}

TEST(ConvertTest, ABaseOf0ReadsAPrefix) {
    struct Row {
        const char* mText;
        int mBase;
        int mResult;
        int32_t mValue;
    };
    constexpr Row kRows[] = {
        {"10", 0, 0, 10},    {"0x10", 0, 0, 16},  {"0X1f", 0, 0, 31}, {"-0x10", 0, 0, -16},
        {"010", 0, 0, 8},    {"-010", 0, 0, -8},  {"0", 0, 0, 0},     {"00", 0, 0, 0},
        {"08", 0, -1, 0},    {"0x", 0, -1, 0},    {"0xg", 0, -1, 0},  {"x10", 0, -1, 0},
        {"0x10", 16, -1, 0}, {"ff", 16, 0, 255},  {"FF", 16, 0, 255}, {"fg", 16, -1, 0},
        {"0x+1", 0, -1, 0},  {"zz", 36, 0, 1295}, {"1", 1, -1, 0},    {"1", 37, -1, 0},
        {"1", -10, -1, 0},   {"102", 2, -1, 0},   {"101", 2, 0, 5},   {"010", 10, 0, 10},
        {"@", 36, -1, 0},    {"`", 36, -1, 0},    {"[", 36, -1, 0},   {"{", 36, -1, 0},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(testing::Message() << theRow.mText << " of base " << theRow.mBase);
        int32_t theValue = 0;
        EXPECT_EQ(vxConvert_strtoint32_base(theRow.mText, &theValue, theRow.mBase), theRow.mResult);
        EXPECT_EQ(theValue, theRow.mValue);
    }
}

TEST(ConvertTest, RealNumbersAreDecimalWithAnOptionalExponent) {
    struct Row {
        const char* mText;
        double mValue;
    };
    constexpr Row kRows[] = {{"0", 0},
                             {"1.5", 1.5},
                             {"-1.5", -1.5},
                             {"+1.5", 1.5},
                             {".5", 0.5},
                             {"5.", 5},
                             {"1e3", 1000},
                             {"1E-3", 0.001},
                             {"1e+3", 1000},
                             {"-2.5e2", -250},
                             {"0.1", 0.1},
                             {"1e0", 1},
                             {"1.7976931348623157e308", 1.7976931348623157e308},
                             {"4.9406564584124654e-324", 4.9406564584124654e-324},
                             {"123456789012345678901234567890", 123456789012345678901234567890.0}};
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        double theValue = 7;
        EXPECT_EQ(vxConvert_strtod(theRow.mText, &theValue), 0);
        EXPECT_EQ(theValue, theRow.mValue);
    }
}

TEST(ConvertTest, NothingButARealNumberConverts) {
    for (const char* theText :
         {"",    "+",    "-",     ".",        "e5",  "1e",  "1e+",    " 1",  "1 ",
          "inf", "-inf", "INF",   "infinity", "nan", "NaN", "nan(1)", "0x1", "0x1p3",
          "1x",  "1..2", "1.2.3", "++1",      "+-1", "1,5", "1e5.0"}) {
        SCOPED_TRACE(theText);
        double theValue = 7;
        EXPECT_EQ(vxConvert_strtod(theText, &theValue), -1);
        EXPECT_EQ(theValue, 7);
    }
    double theValue = 7;
    EXPECT_EQ(vxConvert_strtod(nullptr, &theValue), -1);
}

TEST(ConvertTest, ARealNumberTooLargeFailsAndOneTooSmallIs0) {
    const std::string theZeros(400, '0');
    double theValue = 7;
    for (const std::string& theText :
         {std::string("1e309"), std::string("-1e309"), std::string("1e99999999999999999999"),
          "1" + theZeros, "1" + theZeros + "e-10", std::string("0.1e400"),
          "." + theZeros + "1e1000"}) {
        SCOPED_TRACE(theText);
        EXPECT_EQ(vxConvert_strtod(theText.c_str(), &theValue), -1);
        EXPECT_EQ(theValue, 7);
    }
    for (const std::string& theText :
         {std::string("1e-400"), std::string("1e-99999999999999999999"), "0." + theZeros + "1",
          "." + theZeros + "1e10", std::string("0.0001e-400"), std::string("12345e-400")}) {
        SCOPED_TRACE(theText);
        theValue = 7;
        EXPECT_EQ(vxConvert_strtod(theText.c_str(), &theValue), 0);
        EXPECT_EQ(theValue, 0);
    }
    EXPECT_EQ(vxConvert_strtod("-1e-400", &theValue), 0);
    EXPECT_TRUE(std::signbit(theValue));
    EXPECT_EQ(vxConvert_strtod("0e999999999999", &theValue), 0);
    EXPECT_EQ(theValue, 0);
}

TEST(ConvertTest, RandomRealNumbersReadAsTheCLibraryReadsThem) {
    std::mt19937_64 theEngine(4);
    for (int i = 0; i < 20000; i++) {
        const uint64_t theBits = theEngine();
        double theExpected;
        static_assert(sizeof(theExpected) == sizeof(theBits), "binary64");
        memcpy(&theExpected, &theBits, sizeof(theBits));
        if (!std::isfinite(theExpected)) {
            continue;
        }
        char theText[64];
        snprintf(theText, sizeof(theText), i % 2 == 0 ? "%.17g" : "%.9e", theExpected);
        double theValue = 0;
        ASSERT_EQ(vxConvert_strtod(theText, &theValue), 0) << theText;
        ASSERT_EQ(theValue, strtod(theText, nullptr)) << theText;
    }
}

TEST(ConvertTest, TheLocaleNeverMatters) {
    setlocale(LC_ALL, "de_DE.UTF-8");  // stays in C where it is not installed
    double theValue = 0;
    EXPECT_EQ(vxConvert_strtod("1.5", &theValue), 0);
    EXPECT_EQ(theValue, 1.5);
    EXPECT_EQ(vxConvert_strtod("1,5", &theValue), -1);
    setlocale(LC_ALL, "C");
}

namespace {

struct DateCase {
    const char* mText;
    vxDLNADate mDate;
};

constexpr DateCase kDateCases[] = {
    {"2015-06-30", {2015, 6, 30, 0, 0, 0, 0, 0, false}},
    {"0000-01-01", {0, 1, 1, 0, 0, 0, 0, 0, false}},
    {"9999-12-31", {9999, 12, 31, 0, 0, 0, 0, 0, false}},
    {"2016-02-29", {2016, 2, 29, 0, 0, 0, 0, 0, false}},
    {"2000-02-29", {2000, 2, 29, 0, 0, 0, 0, 0, false}},
    {"2015-06-30T18:05:09", {2015, 6, 30, 18, 5, 9, 0, 0, false}},
    {"2015-06-30T00:00:00", {2015, 6, 30, 0, 0, 0, 0, 0, false}},
    {"2015-06-30T23:59:59", {2015, 6, 30, 23, 59, 59, 0, 0, false}},
    {"2015-06-30T18:05:09.5", {2015, 6, 30, 18, 5, 9, 500, 0, false}},
    {"2015-06-30T18:05:09.25", {2015, 6, 30, 18, 5, 9, 250, 0, false}},
    {"2015-06-30T18:05:09.007", {2015, 6, 30, 18, 5, 9, 7, 0, false}},
    {"2015-06-30T18:05:09.999999999999", {2015, 6, 30, 18, 5, 9, 999, 0, false}},
    {"2015-06-30T18:05:09Z", {2015, 6, 30, 18, 5, 9, 0, 0, true}},
    {"2015-06-30T18:05:09.5Z", {2015, 6, 30, 18, 5, 9, 500, 0, true}},
    {"2015-06-30T18:05:09+02:00", {2015, 6, 30, 18, 5, 9, 0, 120, true}},
    {"2015-06-30T18:05:09-05:30", {2015, 6, 30, 18, 5, 9, 0, -330, true}},
    {"2015-06-30T18:05:09.125+14:00", {2015, 6, 30, 18, 5, 9, 125, 840, true}},
    {"2015-06-30T18:05:09-14:00", {2015, 6, 30, 18, 5, 9, 0, -840, true}},
    {"2015-06-30T18:05:09-00:00", {2015, 6, 30, 18, 5, 9, 0, 0, true}},
};

void ExpectSameDate(const vxDLNADate& aDate, const vxDLNADate& anExpected) {
    EXPECT_EQ(aDate.mYear, anExpected.mYear);
    EXPECT_EQ(aDate.mMonth, anExpected.mMonth);
    EXPECT_EQ(aDate.mDay, anExpected.mDay);
    EXPECT_EQ(aDate.mHour, anExpected.mHour);
    EXPECT_EQ(aDate.mMinute, anExpected.mMinute);
    EXPECT_EQ(aDate.mSecond, anExpected.mSecond);
    EXPECT_EQ(aDate.mMillisecond, anExpected.mMillisecond);
    EXPECT_EQ(aDate.mZoneOffset, anExpected.mZoneOffset);
    EXPECT_EQ(aDate.mfHasZone, anExpected.mfHasZone);
}

}  // namespace

TEST(ConvertTest, DatesHaveADayAndMayHaveATimeAFractionAndAZone) {
    for (const DateCase& theCase : kDateCases) {
        SCOPED_TRACE(theCase.mText);
        vxDLNADate theDate = {1, 1, 1, 1, 1, 1, 1, 1, true};
        EXPECT_EQ(vxConvert_dlnadatestrtodate(theCase.mText, &theDate), 0);
        ExpectSameDate(theDate, theCase.mDate);
    }
}

TEST(ConvertTest, OtherTextIsNoDateAndLeavesTheResultAlone) {
    const char* const theTexts[] = {
        nullptr,
        "",
        "2015",
        "2015-06",
        "2015-06-3",
        "2015-6-30",
        "15-06-30",
        "12015-06-30",
        "+2015-06-30",
        "-2015-06-30",
        " 2015-06-30",
        "2015-06-30 ",
        "2015/06/30",
        "20150630",
        "2015-00-30",
        "2015-13-30",
        "2015-06-00",
        "2015-06-31",
        "2015-01-32",
        "2015-02-29",
        "1900-02-29",
        "2015-06-30Z",
        "2015-06-30+02:00",
        "2015-06-30T",
        "2015-06-30t18:05:09",
        "2015-06-30 18:05:09",
        "2015-06-30T18",
        "2015-06-30T18:05",
        "2015-06-30T18:05Z",
        "2015-06-30T8:05:09",
        "2015-06-30T24:00:00",
        "2015-06-30T18:60:09",
        "2015-06-30T18:05:60",
        "2015-06-30T18:05:0",
        "2015-06-30T18:05:090",
        "2015-06-30T18:05:09.",
        "2015-06-30T18:05:09.Z",
        "2015-06-30T18:05:09,5",
        "2015-06-30T18:05:09z",
        "2015-06-30T18:05:09ZZ",
        "2015-06-30T18:05:09+",
        "2015-06-30T18:05:09+2:00",
        "2015-06-30T18:05:09+0200",
        "2015-06-30T18:05:09+02",
        "2015-06-30T18:05:09+02:60",
        "2015-06-30T18:05:09+14:01",
        "2015-06-30T18:05:09+15:00",
        "2015-06-30T18:05:09 02:00",
        "2015-06-30T18:05:09+02:00Z",
        "x",
    };
    const vxDLNADate theBefore = {1, 2, 3, 4, 5, 6, 7, 8, true};
    for (const char* theText : theTexts) {
        SCOPED_TRACE(theText == nullptr ? "null" : theText);
        vxDLNADate theDate = theBefore;
        EXPECT_EQ(vxConvert_dlnadatestrtodate(theText, &theDate), -1);
        ExpectSameDate(theDate, theBefore);
    }
}
