// Dates in local time, written and read, beside libc, Qt, GLib, Poco and {fmt}. Instants are spread
// over twenty years and the zone has daylight-saving time, so that no single day is favored.

#include <Poco/DateTime.h>
#include <Poco/DateTimeFormat.h>
#include <Poco/DateTimeParser.h>
#include <benchmark/benchmark.h>
#include <fmt/chrono.h>
#include <glib.h>

#include <QDateTime>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "vx/DateTime.h"

namespace {

constexpr size_t kCount = 1024;

struct Corpus {
    Corpus() {
        setenv("TZ", "Europe/Paris", 1);
        tzset();
        std::mt19937 theRandom(5);
        for (size_t i = 0; i < kCount; ++i) {
            const int32_t theSeconds = static_cast<int32_t>(946684800 + theRandom() % 631152000);
            const time_t theTime = theSeconds;
            struct tm theFields;
            char theText[64];
            localtime_r(&theTime, &theFields);
            strftime(theText, sizeof(theText), "%Y-%m-%dT%H:%M:%S", &theFields);
            mISO.push_back(theText);
            gmtime_r(&theTime, &theFields);
            strftime(theText, sizeof(theText), "%a, %d %b %Y %H:%M:%S GMT", &theFields);
            mRFC1123.push_back(theText);
            mSeconds.push_back(theSeconds);
        }
    }

    std::vector<int32_t> mSeconds;
    std::vector<std::string> mISO;
    std::vector<std::string> mRFC1123;
};

const Corpus& Dates() {
    static const Corpus sCorpus;
    return sCorpus;
}

// Calls a function with one index after the other.
template <typename Function>
void Measure(benchmark::State& aState, Function aFunction) {
    Dates();
    size_t theIndex = 0;
    for (auto _ : aState) {
        aFunction(theIndex);
        theIndex = (theIndex + 1) % kCount;
    }
}

// How long does it take to get all local fields of an instant?

void LocalFields_vx(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        const vxDateTime theDate(static_cast<long>(Dates().mSeconds[anIndex]));
        vxtm theFields;
        theDate.FetchTM(theFields);
        benchmark::DoNotOptimize(theFields);
    });
}
BENCHMARK(LocalFields_vx)->Name("datetime/local_fields/vx");

// One getter for each of the six fields.
void LocalFields_vx_getters(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        const vxDateTime theDate(static_cast<long>(Dates().mSeconds[anIndex]));
        benchmark::DoNotOptimize(theDate.GetYear());
        benchmark::DoNotOptimize(theDate.GetMonth());
        benchmark::DoNotOptimize(theDate.GetDay());
        benchmark::DoNotOptimize(theDate.GetHour());
        benchmark::DoNotOptimize(theDate.GetMinute());
        benchmark::DoNotOptimize(theDate.GetSecond());
    });
}
BENCHMARK(LocalFields_vx_getters)->Name("datetime/local_fields/vx_getters");

void LocalFields_libc(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        const time_t theTime = Dates().mSeconds[anIndex];
        struct tm theFields;
        localtime_r(&theTime, &theFields);
        benchmark::DoNotOptimize(theFields);
    });
}
BENCHMARK(LocalFields_libc)->Name("datetime/local_fields/libc_localtime_r");

void LocalFields_QDateTime(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        const QDateTime theDate = QDateTime::fromSecsSinceEpoch(Dates().mSeconds[anIndex]);
        int theYear;
        int theMonth;
        int theDay;
        theDate.date().getDate(&theYear, &theMonth, &theDay);
        const QTime theTime = theDate.time();
        benchmark::DoNotOptimize(theYear + theMonth + theDay);
        benchmark::DoNotOptimize(theTime.hour() + theTime.minute() + theTime.second());
    });
}
BENCHMARK(LocalFields_QDateTime)->Name("datetime/local_fields/QDateTime");

void LocalFields_GDateTime(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        GDateTime* theDate = g_date_time_new_from_unix_local(Dates().mSeconds[anIndex]);
        gint theYear;
        gint theMonth;
        gint theDay;
        g_date_time_get_ymd(theDate, &theYear, &theMonth, &theDay);
        benchmark::DoNotOptimize(theYear + theMonth + theDay);
        benchmark::DoNotOptimize(g_date_time_get_hour(theDate) + g_date_time_get_minute(theDate) +
                                 g_date_time_get_second(theDate));
        g_date_time_unref(theDate);
    });
}
BENCHMARK(LocalFields_GDateTime)->Name("datetime/local_fields/GDateTime");

// How long does it take to write an instant as "2015-06-30T18:00:00" in local time?

void FormatISO_vx(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        const vxDateTime theDate(static_cast<long>(Dates().mSeconds[anIndex]));
        const vxCString theText = theDate.FormatISO();
        benchmark::DoNotOptimize(theText.c_str());
    });
}
BENCHMARK(FormatISO_vx)->Name("datetime/format_iso/vx");

void FormatISO_strftime(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        const time_t theTime = Dates().mSeconds[anIndex];
        struct tm theFields;
        char theBuffer[32];
        localtime_r(&theTime, &theFields);
        const size_t theLength =
            strftime(theBuffer, sizeof(theBuffer), "%Y-%m-%dT%H:%M:%S", &theFields);
        const std::string theText(theBuffer, theLength);
        benchmark::DoNotOptimize(theText.c_str());
    });
}
BENCHMARK(FormatISO_strftime)->Name("datetime/format_iso/libc_strftime");

void FormatISO_snprintf(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        const time_t theTime = Dates().mSeconds[anIndex];
        struct tm theFields;
        char theBuffer[96];
        localtime_r(&theTime, &theFields);
        snprintf(theBuffer, sizeof(theBuffer), "%04d-%02d-%02dT%02d:%02d:%02d",
                 theFields.tm_year + 1900, theFields.tm_mon + 1, theFields.tm_mday,
                 theFields.tm_hour, theFields.tm_min, theFields.tm_sec);
        const std::string theText(theBuffer);
        benchmark::DoNotOptimize(theText.c_str());
    });
}
BENCHMARK(FormatISO_snprintf)->Name("datetime/format_iso/libc_snprintf");

void FormatISO_fmt(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        const time_t theTime = Dates().mSeconds[anIndex];
        struct tm theFields;
        localtime_r(&theTime, &theFields);
        const std::string theText = fmt::format("{:%Y-%m-%dT%H:%M:%S}", theFields);
        benchmark::DoNotOptimize(theText.c_str());
    });
}
BENCHMARK(FormatISO_fmt)->Name("datetime/format_iso/fmt_chrono");

// How long does it take to read that text back?

void ParseISO_vx(benchmark::State& aState) {
    std::vector<vxCString> theTexts;
    for (const std::string& theText : Dates().mISO) {
        theTexts.push_back(theText.c_str());
    }
    Measure(aState, [&theTexts](size_t anIndex) {
        vxDateTime theDate;
        theDate.ParseISO(theTexts[anIndex]);
        benchmark::DoNotOptimize(theDate.GetTicks());
    });
}
BENCHMARK(ParseISO_vx)->Name("datetime/parse_iso/vx");

void ParseISO_strptime(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        struct tm theFields = {};
        theFields.tm_isdst = -1;
        strptime(Dates().mISO[anIndex].c_str(), "%Y-%m-%dT%H:%M:%S", &theFields);
        benchmark::DoNotOptimize(mktime(&theFields));
    });
}
BENCHMARK(ParseISO_strptime)->Name("datetime/parse_iso/libc_strptime_mktime");

void ParseISO_sscanf(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        struct tm theFields = {};
        theFields.tm_isdst = -1;
        sscanf(Dates().mISO[anIndex].c_str(), "%04d-%02d-%02dT%02d:%02d:%02d", &theFields.tm_year,
               &theFields.tm_mon, &theFields.tm_mday, &theFields.tm_hour, &theFields.tm_min,
               &theFields.tm_sec);
        theFields.tm_year -= 1900;
        theFields.tm_mon -= 1;
        benchmark::DoNotOptimize(mktime(&theFields));
    });
}
BENCHMARK(ParseISO_sscanf)->Name("datetime/parse_iso/libc_sscanf_mktime");

void ParseISO_GDateTime(benchmark::State& aState) {
    GTimeZone* theZone = g_time_zone_new_local();
    Measure(aState, [theZone](size_t anIndex) {
        GDateTime* theDate = g_date_time_new_from_iso8601(Dates().mISO[anIndex].c_str(), theZone);
        benchmark::DoNotOptimize(g_date_time_to_unix(theDate));
        g_date_time_unref(theDate);
    });
    g_time_zone_unref(theZone);
}
BENCHMARK(ParseISO_GDateTime)->Name("datetime/parse_iso/GDateTime");

// How long does it take to read "Tue, 30 Jun 2015 16:00:00 GMT"?

void ParseRFC1123_vx(benchmark::State& aState) {
    std::vector<vxCString> theTexts;
    for (const std::string& theText : Dates().mRFC1123) {
        theTexts.push_back(theText.c_str());
    }
    Measure(aState, [&theTexts](size_t anIndex) {
        vxDateTime theDate;
        theDate.ParseRFC1123(theTexts[anIndex]);
        benchmark::DoNotOptimize(theDate.GetTicks());
    });
}
BENCHMARK(ParseRFC1123_vx)->Name("datetime/parse_rfc1123/vx");

void ParseRFC1123_QDateTime(benchmark::State& aState) {
    std::vector<QString> theTexts;
    for (const std::string& theText : Dates().mRFC1123) {
        theTexts.push_back(QString::fromLatin1(theText.c_str()).replace("GMT", "+0000"));
    }
    Measure(aState, [&theTexts](size_t anIndex) {
        const QDateTime theDate = QDateTime::fromString(theTexts[anIndex], Qt::RFC2822Date);
        benchmark::DoNotOptimize(theDate.toSecsSinceEpoch());
    });
}
BENCHMARK(ParseRFC1123_QDateTime)->Name("datetime/parse_rfc1123/QDateTime");

void ParseRFC1123_Poco(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        int theDifference = 0;
        const Poco::DateTime theDate = Poco::DateTimeParser::parse(
            Poco::DateTimeFormat::RFC1123_FORMAT, Dates().mRFC1123[anIndex], theDifference);
        benchmark::DoNotOptimize(theDate.timestamp().epochTime());
    });
}
BENCHMARK(ParseRFC1123_Poco)->Name("datetime/parse_rfc1123/Poco_DateTimeParser");

void ParseRFC1123_strptime(benchmark::State& aState) {
    Measure(aState, [](size_t anIndex) {
        struct tm theFields = {};
        strptime(Dates().mRFC1123[anIndex].c_str(), "%a, %d %b %Y %H:%M:%S GMT", &theFields);
        benchmark::DoNotOptimize(timegm(&theFields));
    });
}
BENCHMARK(ParseRFC1123_strptime)->Name("datetime/parse_rfc1123/libc_strptime_timegm");

}  // namespace
