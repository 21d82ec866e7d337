// Splitting, joining and tokenizing texts beside the standard library, GLib, Boost, Qt and Poco.

#include <Poco/String.h>
#include <benchmark/benchmark.h>
#include <glib.h>

#include <QString>
#include <QStringTokenizer>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <string>
#include <vector>

#include "vx/CStringTokenizer.h"
#include "vx/StringList.h"

namespace {

constexpr size_t kItems = 1000;

// "item0,item1,..."
const std::string& CommaText() {
    static const std::string sText = [] {
        std::string theText;
        for (size_t i = 0; i < kItems; ++i) {
            theText += (i > 0 ? ",item" : "item") + std::to_string(i);
        }
        return theText;
    }();
    return sText;
}

// 4 KB of words between blanks of all kinds.
const std::string& WordText() {
    static const std::string sText = [] {
        constexpr const char* kBlanks[] = {" ", "\t", " ", "\r\n", "  "};
        std::string theText;
        for (size_t i = 0; theText.size() < 4096; ++i) {
            theText += std::string("multimedia").substr(0, 1 + i % 10) + kBlanks[i % 5];
        }
        theText.resize(4096);
        return theText;
    }();
    return sText;
}

std::vector<std::string> SplitText() {
    std::vector<std::string> theItems;
    boost::split(theItems, CommaText(), boost::is_any_of(","));
    return theItems;
}

// How fast is a text split at commas into items that can be kept?

void Split_vx(benchmark::State& aState) {
    const std::string& theText = CommaText();
    for (auto _ : aState) {
        const vxCSVStringList theList(theText.c_str(), '\\');
        benchmark::DoNotOptimize(theList.GetCount());
    }
    aState.SetBytesProcessed(aState.iterations() * static_cast<int64_t>(theText.size()));
}
BENCHMARK(Split_vx)->Name("lists/split_csv1000/vx");

void Split_boost(benchmark::State& aState) {
    const std::string& theText = CommaText();
    for (auto _ : aState) {
        std::vector<std::string> theItems;
        boost::split(theItems, theText, [](char aChar) { return aChar == ','; });
        benchmark::DoNotOptimize(theItems.data());
    }
}
BENCHMARK(Split_boost)->Name("lists/split_csv1000/boost_split");

void Split_std(benchmark::State& aState) {
    const std::string& theText = CommaText();
    for (auto _ : aState) {
        std::vector<std::string> theItems;
        size_t theStart = 0;
        for (size_t theEnd; (theEnd = theText.find(',', theStart)) != std::string::npos;
             theStart = theEnd + 1) {
            theItems.emplace_back(theText, theStart, theEnd - theStart);
        }
        theItems.emplace_back(theText, theStart);
        benchmark::DoNotOptimize(theItems.data());
    }
}
BENCHMARK(Split_std)->Name("lists/split_csv1000/std_find_vector_string");

void Split_GLib(benchmark::State& aState) {
    const std::string& theText = CommaText();
    for (auto _ : aState) {
        gchar** theItems = g_strsplit(theText.c_str(), ",", -1);
        benchmark::DoNotOptimize(theItems);
        g_strfreev(theItems);
    }
}
BENCHMARK(Split_GLib)->Name("lists/split_csv1000/GLib_g_strsplit");

// How fast are a thousand items joined with commas? The library escapes commas inside them as well.

void Join_vx(benchmark::State& aState) {
    const vxCSVStringList theList(CommaText().c_str());
    for (auto _ : aState) {
        const vxCString theText = theList.GetString('\\');
        benchmark::DoNotOptimize(theText.c_str());
    }
    aState.SetBytesProcessed(aState.iterations() * static_cast<int64_t>(CommaText().size()));
}
BENCHMARK(Join_vx)->Name("lists/join1000/vx");

void Join_std(benchmark::State& aState) {
    const std::vector<std::string> theItems = SplitText();
    for (auto _ : aState) {
        std::string theText;
        for (const std::string& theItem : theItems) {
            if (!theText.empty()) {
                theText += ',';
            }
            theText += theItem;
        }
        benchmark::DoNotOptimize(theText.data());
    }
}
BENCHMARK(Join_std)->Name("lists/join1000/std_string_append");

void Join_Poco(benchmark::State& aState) {
    const std::vector<std::string> theItems = SplitText();
    for (auto _ : aState) {
        std::string theText = Poco::cat(std::string(","), theItems.begin(), theItems.end());
        benchmark::DoNotOptimize(theText.data());
    }
}
BENCHMARK(Join_Poco)->Name("lists/join1000/Poco_cat");

void Join_GLib(benchmark::State& aState) {
    gchar** theItems = g_strsplit(CommaText().c_str(), ",", -1);
    for (auto _ : aState) {
        gchar* theText = g_strjoinv(",", theItems);
        benchmark::DoNotOptimize(theText);
        g_free(theText);
    }
    g_strfreev(theItems);
}
BENCHMARK(Join_GLib)->Name("lists/join1000/GLib_g_strjoinv");

// How fast is a text walked word by word? Each word becomes a text of its own; empty ones are
// skipped.

void Tokenise_vx(benchmark::State& aState) {
    const vxCString theText(WordText().c_str());
    for (auto _ : aState) {
        vxCStringTokenizer theTokenizer(theText);
        while (theTokenizer.HasMoreTokens()) {
            const vxCString theToken = theTokenizer.GetNextToken();
            benchmark::DoNotOptimize(theToken.c_str());
        }
    }
    aState.SetBytesProcessed(aState.iterations() * static_cast<int64_t>(theText.length()));
}
BENCHMARK(Tokenise_vx)->Name("lists/tokenise4k/vx");

void Tokenise_std(benchmark::State& aState) {
    const std::string& theText = WordText();
    for (auto _ : aState) {
        size_t theEnd = 0;
        for (size_t theStart;
             (theStart = theText.find_first_not_of(" \t\r\n", theEnd)) != std::string::npos;) {
            theEnd = theText.find_first_of(" \t\r\n", theStart);
            const std::string theToken = theText.substr(theStart, theEnd - theStart);
            benchmark::DoNotOptimize(theToken.data());
            if (theEnd == std::string::npos) {
                break;
            }
        }
    }
}
BENCHMARK(Tokenise_std)->Name("lists/tokenise4k/std_find_first_of");

void Tokenise_Qt(benchmark::State& aState) {
    // Its tokenizer takes one delimiter; the text has blanks only, as many as words are between.
    QString theText = QString::fromStdString(WordText());
    theText.replace('\t', ' ').replace('\r', ' ').replace('\n', ' ');
    for (auto _ : aState) {
        for (const auto theView : qTokenize(theText, u' ', Qt::SkipEmptyParts)) {
            const QString theToken = theView.toString();
            benchmark::DoNotOptimize(theToken.data());
        }
    }
}
BENCHMARK(Tokenise_Qt)->Name("lists/tokenise4k/QStringTokenizer_toString");

void Tokenise_GLib(benchmark::State& aState) {
    const std::string& theText = WordText();
    for (auto _ : aState) {
        gchar** theTokens = g_strsplit_set(theText.c_str(), " \t\r\n", -1);
        for (gchar** theToken = theTokens; *theToken != nullptr; ++theToken) {
            benchmark::DoNotOptimize(*theToken);
        }
        g_strfreev(theTokens);
    }
}
BENCHMARK(Tokenise_GLib)->Name("lists/tokenise4k/GLib_g_strsplit_set");

}  // namespace
