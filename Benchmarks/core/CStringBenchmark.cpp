// Everyday work on texts beside the standard library, the C library and other toolkits.

#include <Poco/NumberParser.h>
#include <Poco/String.h>
#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <fmt/printf.h>
#include <glib.h>
#include <strings.h>

#include <QByteArray>
#include <QString>
#include <QStringBuilder>
#include <boost/algorithm/string/replace.hpp>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "vx/CString.h"

namespace {

// Registers one measurement: a name and the call that runs it.
#define CASE(aName, ...)                                                \
    [[maybe_unused]] static auto* const BENCHMARK_PRIVATE_NAME(sCase) = \
        benchmark::RegisterBenchmark(aName, [](benchmark::State& aState) { __VA_ARGS__; })

// Appends to a fresh text a thousand times.
constexpr int kAppends = 1000;
const char kPiece[] = "0123456789";

template <typename String, typename Piece>
void Append(benchmark::State& aState, Piece aPiece) {
    for (auto _ : aState) {
        String theText;
        for (int i = 0; i < kAppends; i++) {
            theText += aPiece;
        }
        benchmark::DoNotOptimize(theText);
    }
}

void GStringAppend10(benchmark::State& aState) {
    for (auto _ : aState) {
        GString* theText = g_string_new(nullptr);
        for (int i = 0; i < kAppends; i++) {
            g_string_append(theText, kPiece);
        }
        benchmark::DoNotOptimize(theText->str);
        g_string_free(theText, TRUE);
    }
}

void GStringAppend1(benchmark::State& aState) {
    for (auto _ : aState) {
        GString* theText = g_string_new(nullptr);
        for (int i = 0; i < kAppends; i++) {
            g_string_append_c(theText, 'x');
        }
        benchmark::DoNotOptimize(theText->str);
        g_string_free(theText, TRUE);
    }
}

CASE("strings/append10x1000/vx", Append<vxCString>(aState, kPiece));
CASE("strings/append10x1000/std_string", Append<std::string>(aState, kPiece));
CASE("strings/append10x1000/QString", Append<QString>(aState, QLatin1String(kPiece)));
BENCHMARK(GStringAppend10)->Name("strings/append10x1000/GString");
CASE("strings/append1x1000/vx", Append<vxCString>(aState, 'x'));
CASE("strings/append1x1000/std_string", Append<std::string>(aState, 'x'));
BENCHMARK(GStringAppend1)->Name("strings/append1x1000/GString");
CASE("strings/append1x1000/QString", Append<QString>(aState, QLatin1Char('x')));

// Compares two titles that differ in their last byte.
const char kTitle[] = "The Long Way Home, Part Two (Live at Sea)";
const char kOtherTitle[] = "The Long Way Home, Part Two (Live at Set)";
const char kTitleInCapitals[] = "THE LONG WAY HOME, PART TWO (LIVE AT SEA)";

template <typename String>
void Compare(benchmark::State& aState) {
    String theLeft(kTitle);
    String theRight(kOtherTitle);
    for (auto _ : aState) {
        benchmark::DoNotOptimize(theLeft);
        benchmark::DoNotOptimize(theRight);
        bool theResult = theLeft == theRight;
        benchmark::DoNotOptimize(theResult);
    }
}

void LibcCompare(benchmark::State& aState) {
    const char* theLeft = kTitle;
    const char* theRight = kOtherTitle;
    for (auto _ : aState) {
        benchmark::DoNotOptimize(theLeft);
        benchmark::DoNotOptimize(theRight);
        bool theResult = strcmp(theLeft, theRight) == 0;
        benchmark::DoNotOptimize(theResult);
    }
}

BENCHMARK(Compare<vxCString>)->Name("strings/compare/vx");
BENCHMARK(Compare<std::string>)->Name("strings/compare/std_string");
BENCHMARK(LibcCompare)->Name("strings/compare/libc_strcmp");
BENCHMARK(Compare<QByteArray>)->Name("strings/compare/QByteArray");

// Compares the title with itself in capitals.
template <typename String, typename Operation>
void CompareNoCase(benchmark::State& aState, Operation anOperation) {
    String theLeft(kTitle);
    String theRight(kTitleInCapitals);
    for (auto _ : aState) {
        benchmark::DoNotOptimize(theLeft);
        benchmark::DoNotOptimize(theRight);
        int theResult = anOperation(theLeft, theRight);
        benchmark::DoNotOptimize(theResult);
    }
}

CASE("strings/icompare/vx",
     CompareNoCase<vxCString>(aState, [](const vxCString& aLeft, const vxCString& aRight) {
         return aLeft.CompareNoCase(aRight);
     }));
CASE("strings/icompare/libc_strcasecmp", CompareNoCase<const char*>(aState, strcasecmp));
CASE("strings/icompare/QByteArray",
     CompareNoCase<QByteArray>(aState, [](const QByteArray& aLeft, const QByteArray& aRight) {
         return aLeft.compare(aRight, Qt::CaseInsensitive);
     }));
CASE("strings/icompare/Poco",
     CompareNoCase<std::string>(aState, [](const std::string& aLeft, const std::string& aRight) {
         return Poco::icompare(aLeft, aRight);
     }));

// Joins three short texts into a new one.
void VxConcat(benchmark::State& aState) {
    const vxCString theFirst("artist name"), theSecond(" - "), theThird("title of a song");
    for (auto _ : aState) {
        vxCString theText = theFirst + theSecond + theThird;
        benchmark::DoNotOptimize(theText);
    }
}

void QtConcat(benchmark::State& aState) {
    const QString theFirst("artist name"), theSecond(" - "), theThird("title of a song");
    for (auto _ : aState) {
        QString theText = theFirst % theSecond % theThird;
        benchmark::DoNotOptimize(theText);
    }
}

void GLibConcat(benchmark::State& aState) {
    const char *theFirst = "artist name", *theSecond = " - ", *theThird = "title of a song";
    for (auto _ : aState) {
        benchmark::DoNotOptimize(theFirst);
        char* theText = g_strconcat(theFirst, theSecond, theThird, nullptr);
        benchmark::DoNotOptimize(theText);
        g_free(theText);
    }
}

void PocoConcat(benchmark::State& aState) {
    const std::string theFirst("artist name"), theSecond(" - "), theThird("title of a song");
    for (auto _ : aState) {
        std::string theText = Poco::cat(theFirst, theSecond, theThird);
        benchmark::DoNotOptimize(theText);
    }
}

BENCHMARK(VxConcat)->Name("strings/concat3/vx");
BENCHMARK(QtConcat)->Name("strings/concat3/QString_builder");
BENCHMARK(GLibConcat)->Name("strings/concat3/GLib_g_strconcat");
BENCHMARK(PocoConcat)->Name("strings/concat3/Poco_cat");

// Copies a text of 40 bytes and drops the copy.
template <typename String>
void Copy(benchmark::State& aState) {
    const String theText("0123456789012345678901234567890123456789");
    for (auto _ : aState) {
        String theCopy(theText);
        benchmark::DoNotOptimize(theCopy);
    }
}

BENCHMARK(Copy<vxCString>)->Name("strings/copy40/vx");
BENCHMARK(Copy<std::string>)->Name("strings/copy40/std_string");
BENCHMARK(Copy<QString>)->Name("strings/copy40/QString");
BENCHMARK(Copy<QByteArray>)->Name("strings/copy40/QByteArray");

// Finds a word at the end of 4 KB of prose.
std::string Prose() {
    std::string theText;
    while (theText.size() < 4096) {
        theText += "It was a bright cold day in April, and the clocks were striking thirteen. ";
    }
    theText.resize(4096);
    return theText + "needle";
}

template <typename String, typename Needle, typename Operation>
void Find(benchmark::State& aState, const Needle& aNeedle, Operation anOperation) {
    const std::string theProse = Prose();
    const String theText(theProse.c_str());
    for (auto _ : aState) {
        benchmark::DoNotOptimize(theText);
        auto theResult = anOperation(theText, aNeedle);
        benchmark::DoNotOptimize(theResult);
    }
}

const vxCString kNeedle("needle");
const vxCString kMixedNeedle("nEEdle");

CASE("strings/find4k/vx",
     Find<vxCString>(aState, kNeedle, [](const vxCString& aText, const vxCString& aNeedle) {
         return aText.Find(aNeedle, 0);
     }));
CASE("strings/find4k/libc_strstr",
     Find<std::string>(aState, "needle", [](const std::string& aText, const char* aNeedle) {
         return strstr(aText.c_str(), aNeedle);
     }));
CASE("strings/find4k/libc_memmem",
     Find<std::string>(aState, "needle", [](const std::string& aText, const char* aNeedle) {
         return memmem(aText.data(), aText.size(), aNeedle, 6);
     }));
CASE("strings/find4k/std_string",
     Find<std::string>(aState, "needle", [](const std::string& aText, const char* aNeedle) {
         return aText.find(aNeedle);
     }));

CASE("strings/ifind4k/vx",
     Find<vxCString>(aState, kMixedNeedle, [](const vxCString& aText, const vxCString& aNeedle) {
         return aText.FindNoCase(aNeedle, 0);
     }));
CASE("strings/ifind4k/libc_strcasestr",
     Find<std::string>(aState, "nEEdle", [](const std::string& aText, const char* aNeedle) {
         return strcasestr(aText.c_str(), aNeedle);
     }));
CASE("strings/ifind4k/QString",
     Find<QString>(aState, QString("nEEdle"), [](const QString& aText, const QString& aNeedle) {
         return aText.indexOf(aNeedle, 0, Qt::CaseInsensitive);
     }));
CASE("strings/ifind4k/Poco_isubstr",
     Find<std::string>(aState, std::string("nEEdle"),
                       [](const std::string& aText, const std::string& aNeedle) {
                           return Poco::isubstr(aText, aNeedle);
                       }));

// Formats a log line, and a text of 3000 bytes.
const char kShortFormat[] = "%s: %d of %u (%s)";
const std::string kLong(2980, 'x');

void VxPrintfShort(benchmark::State& aState) {
    for (auto _ : aState) {
        vxCString theText;
        theText.Printf("%s: %d of %u (%s)", "scan", -17, 4096u, "done");
        benchmark::DoNotOptimize(theText);
    }
}

void LibcPrintfShort(benchmark::State& aState) {
    for (auto _ : aState) {
        char theBuffer[256];
        snprintf(theBuffer, sizeof(theBuffer), "%s: %d of %u (%s)", "scan", -17, 4096u, "done");
        std::string theText(theBuffer);
        benchmark::DoNotOptimize(theText);
    }
}

void FmtFormatShort(benchmark::State& aState) {
    for (auto _ : aState) {
        std::string theText = fmt::format("{}: {} of {} ({})", "scan", -17, 4096u, "done");
        benchmark::DoNotOptimize(theText);
    }
}

void FmtSprintfShort(benchmark::State& aState) {
    for (auto _ : aState) {
        std::string theText = fmt::sprintf(kShortFormat, "scan", -17, 4096u, "done");
        benchmark::DoNotOptimize(theText);
    }
}

void VxPrintfLong(benchmark::State& aState) {
    for (auto _ : aState) {
        vxCString theText;
        theText.Printf("%s: %d of %u", kLong.c_str(), -17, 4096u);
        benchmark::DoNotOptimize(theText);
    }
}

void FmtFormatLong(benchmark::State& aState) {
    for (auto _ : aState) {
        std::string theText = fmt::format("{}: {} of {}", kLong.c_str(), -17, 4096u);
        benchmark::DoNotOptimize(theText);
    }
}

void LibcAsprintfLong(benchmark::State& aState) {
    for (auto _ : aState) {
        char* theText = nullptr;
        if (asprintf(&theText, "%s: %d of %u", kLong.c_str(), -17, 4096u) < 0) {
            abort();
        }
        benchmark::DoNotOptimize(theText);
        free(theText);
    }
}

void GStringPrintfLong(benchmark::State& aState) {
    for (auto _ : aState) {
        GString* theText = g_string_new(nullptr);
        g_string_printf(theText, "%s: %d of %u", kLong.c_str(), -17, 4096u);
        benchmark::DoNotOptimize(theText->str);
        g_string_free(theText, TRUE);
    }
}

BENCHMARK(VxPrintfShort)->Name("strings/printf_short/vx");
BENCHMARK(LibcPrintfShort)->Name("strings/printf_short/libc_snprintf_std_string");
BENCHMARK(FmtFormatShort)->Name("strings/printf_short/fmt_format");
BENCHMARK(FmtSprintfShort)->Name("strings/printf_short/fmt_sprintf");
BENCHMARK(VxPrintfLong)->Name("strings/printf_3000/vx");
BENCHMARK(FmtFormatLong)->Name("strings/printf_3000/fmt_format");
BENCHMARK(LibcAsprintfLong)->Name("strings/printf_3000/libc_vasprintf");
BENCHMARK(GStringPrintfLong)->Name("strings/printf_3000/GString");

// Replaces every "and" of 2 KB of prose by "&amp;" in a copy.
std::string ReplaceText() {
    std::string theText;
    while (theText.size() < 2048) {
        theText += "salt and pepper, thunder and lightning, ";
    }
    return theText;
}

void VxReplaceAll(benchmark::State& aState) {
    const vxCString theSource(ReplaceText().c_str());
    for (auto _ : aState) {
        vxCString theText(theSource);
        theText.Replace("and", "&amp;", true);
        benchmark::DoNotOptimize(theText);
    }
}

void PocoReplaceAll(benchmark::State& aState) {
    const std::string theSource = ReplaceText();
    for (auto _ : aState) {
        std::string theText = Poco::replace(theSource, "and", "&amp;");
        benchmark::DoNotOptimize(theText);
    }
}

void StdReplaceAll(benchmark::State& aState) {
    const std::string theSource = ReplaceText();
    for (auto _ : aState) {
        std::string theText = theSource;
        for (size_t i = 0; (i = theText.find("and", i)) != std::string::npos; i += 5) {
            theText.replace(i, 3, "&amp;");
        }
        benchmark::DoNotOptimize(theText);
    }
}

void BoostReplaceAll(benchmark::State& aState) {
    const std::string theSource = ReplaceText();
    for (auto _ : aState) {
        std::string theText = boost::replace_all_copy(theSource, "and", "&amp;");
        benchmark::DoNotOptimize(theText);
    }
}

BENCHMARK(VxReplaceAll)->Name("strings/replace_all/vx");
BENCHMARK(PocoReplaceAll)->Name("strings/replace_all/Poco");
BENCHMARK(StdReplaceAll)->Name("strings/replace_all/std_string");
BENCHMARK(BoostReplaceAll)->Name("strings/replace_all/boost");

// Reads a number of seven digits.
template <typename String, typename Operation>
void ToInt(benchmark::State& aState, Operation anOperation) {
    String theText("1234567");
    for (auto _ : aState) {
        benchmark::DoNotOptimize(theText);
        int32_t theResult = anOperation(theText);
        benchmark::DoNotOptimize(theResult);
    }
}

CASE("strings/to_int/vx", ToInt<vxCString>(aState, [](const vxCString& aText) {
         int32_t theResult = 0;
         aText.ToInt32(&theResult);
         return theResult;
     }));
CASE("strings/to_int/std_from_chars", ToInt<std::string>(aState, [](const std::string& aText) {
         int32_t theResult = 0;
         std::from_chars(aText.data(), aText.data() + aText.size(), theResult);
         return theResult;
     }));
CASE("strings/to_int/Poco_NumberParser", ToInt<std::string>(aState, [](const std::string& aText) {
         int theResult = 0;
         Poco::NumberParser::tryParse(aText, theResult);
         return theResult;
     }));
CASE("strings/to_int/libc_strtol", ToInt<std::string>(aState, [](const std::string& aText) {
         return static_cast<int32_t>(strtol(aText.c_str(), nullptr, 10));
     }));

// Gives a short text without the blanks around it.
const char kBlanks[] = "  The Long Way Home, Part Two \t\r\n";

void VxTrim(benchmark::State& aState) {
    const vxCString theSource(kBlanks);
    for (auto _ : aState) {
        vxCString theText(theSource);
        theText.TrimLeftRight();
        benchmark::DoNotOptimize(theText);
    }
}

void PocoTrim(benchmark::State& aState) {
    const std::string theSource(kBlanks);
    for (auto _ : aState) {
        std::string theText = Poco::trim(theSource);
        benchmark::DoNotOptimize(theText);
    }
}

template <typename String>
void QtTrim(benchmark::State& aState) {
    const String theSource(kBlanks);
    for (auto _ : aState) {
        String theText = theSource.trimmed();
        benchmark::DoNotOptimize(theText);
    }
}

BENCHMARK(VxTrim)->Name("strings/trim/vx");
BENCHMARK(PocoTrim)->Name("strings/trim/Poco");
BENCHMARK(QtTrim<QByteArray>)->Name("strings/trim/QByteArray");
BENCHMARK(QtTrim<QString>)->Name("strings/trim/QString");

}  // namespace
