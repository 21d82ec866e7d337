// Search criteria evaluated for one song after another, and parsed.
//
// The tree of functions is what one writes with the standard library once the criteria are parsed;
// sqlite searches a table in memory, with the criteria as a statement that was prepared before.

#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <strings.h>

#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "vx/ExpressionParser.h"

namespace {

struct Song {
    std::string mClass;
    std::string mTitle;
    std::string mArtist;
    int mDuration;  // seconds
};

const std::vector<Song>& Songs() {
    static const std::vector<Song> sSongs = [] {
        static const char* const kWords[] = {"Love", "Blue", "rain",  "Night", "Fjord",
                                             "Sun",  "Road", "glove", "Stone", "River"};
        std::mt19937 theRandom(8);
        std::vector<Song> theSongs;
        for (int i = 0; i < 10000; ++i) {
            std::string theTitle;
            for (size_t theWord = 0; theWord < 2 + theRandom() % 3; ++theWord) {
                theTitle += std::string(theWord == 0 ? "" : " ") + kWords[theRandom() % 10];
            }
            theSongs.push_back({theRandom() % 4 == 0 ? "object.item.imageItem"
                                                     : "object.item.audioItem.musicTrack",
                                theTitle, std::string(kWords[theRandom() % 10]) + " Band",
                                static_cast<int>(theRandom() % 600)});
        }
        return theSongs;
    }();
    return sSongs;
}

constexpr char kCriteria[] =
    "upnp:class derivedfrom \"object.item.audioItem\" and "
    "(dc:title contains \"love\" or upnp:artist = \"blue band\") and duration > \"240\"";

enum { kClass = 1, kTitle, kArtist, kDuration };

class Parser : public vxExpressionParser {
public:
    using vxExpressionParser::vxExpressionParser;
    int GetPropertyID(const vxCString& aName) override {
        return aName == "upnp:class"    ? kClass
               : aName == "dc:title"    ? kTitle
               : aName == "upnp:artist" ? kArtist
               : aName == "duration"    ? kDuration
                                        : -1;
    }
};

class Evaluator : public vxSearchExpressionEvaluator {
public:
    bool Evaluate(vxRelExpression* anExpression) override {
        switch (anExpression->GetPropertyID()) {
            case kClass:
                return anExpression->MatchString(mSong->mClass.c_str());
            case kTitle:
                return anExpression->MatchString(mSong->mTitle.c_str());
            case kArtist:
                return anExpression->MatchString(mSong->mArtist.c_str());
            default:
                return anExpression->MatchInt(mSong->mDuration);
        }
    }
    const Song* mSong = nullptr;
};

struct VX {
    VX() { mParser.Parse(); }
    size_t Count() {
        size_t theCount = 0;
        Evaluator theEvaluator;
        for (const Song& theSong : Songs()) {
            theEvaluator.mSong = &theSong;
            theCount += mParser.Evaluate(&theEvaluator) ? 1 : 0;
        }
        return theCount;
    }
    Parser mParser{kCriteria};
};

struct StdFunctionTree {
    using Test = std::function<bool(const Song&)>;
    static Test And(Test aLeft, Test aRight) {
        return [aLeft, aRight](const Song& aSong) { return aLeft(aSong) && aRight(aSong); };
    }
    static Test Or(Test aLeft, Test aRight) {
        return [aLeft, aRight](const Song& aSong) { return aLeft(aSong) || aRight(aSong); };
    }
    StdFunctionTree() {
        const std::string theClass = "object.item.audioItem";
        const Test theIsAudio = [theClass](const Song& aSong) {
            return aSong.mClass.compare(0, theClass.size(), theClass) == 0;
        };
        const std::string theWord = "love";
        const Test theHasWord = [theWord](const Song& aSong) {
            return strcasestr(aSong.mTitle.c_str(), theWord.c_str()) != nullptr;
        };
        const std::string theArtist = "blue band";
        const Test theIsArtist = [theArtist](const Song& aSong) {
            return strcasecmp(aSong.mArtist.c_str(), theArtist.c_str()) == 0;
        };
        const int theDuration = 240;
        const Test theIsLong = [theDuration](const Song& aSong) {
            return aSong.mDuration > theDuration;
        };
        mTest = And(theIsAudio, And(Or(theHasWord, theIsArtist), theIsLong));
    }
    size_t Count() {
        size_t theCount = 0;
        for (const Song& theSong : Songs()) {
            theCount += mTest(theSong) ? 1 : 0;
        }
        return theCount;
    }
    Test mTest;
};

struct SQLite {
    SQLite() {
        sqlite3_open(":memory:", &mDatabase);
        sqlite3_exec(mDatabase, "create table songs (class, title, artist, duration)", nullptr,
                     nullptr, nullptr);
        sqlite3_stmt* theInsert = nullptr;
        sqlite3_prepare_v2(mDatabase, "insert into songs values (?, ?, ?, ?)", -1, &theInsert,
                           nullptr);
        for (const Song& theSong : Songs()) {
            sqlite3_bind_text(theInsert, 1, theSong.mClass.c_str(), -1, SQLITE_STATIC);
            sqlite3_bind_text(theInsert, 2, theSong.mTitle.c_str(), -1, SQLITE_STATIC);
            sqlite3_bind_text(theInsert, 3, theSong.mArtist.c_str(), -1, SQLITE_STATIC);
            sqlite3_bind_int(theInsert, 4, theSong.mDuration);
            sqlite3_step(theInsert);
            sqlite3_reset(theInsert);
        }
        sqlite3_finalize(theInsert);
        sqlite3_prepare_v2(mDatabase, kStatement, -1, &mSelect, nullptr);
    }
    ~SQLite() {
        sqlite3_finalize(mSelect);
        sqlite3_close(mDatabase);
    }
    size_t Count() {
        sqlite3_step(mSelect);
        const size_t theCount = static_cast<size_t>(sqlite3_column_int64(mSelect, 0));
        sqlite3_reset(mSelect);
        return theCount;
    }
    static constexpr char kStatement[] =
        "select count(*) from songs where class glob 'object.item.audioItem*' and "
        "(title like '%love%' or artist = 'blue band' collate nocase) and duration > 240";
    sqlite3* mDatabase = nullptr;
    sqlite3_stmt* mSelect = nullptr;
};

// How long does it take to find the songs that match among 10000?
template <typename Lib>
void Evaluate(benchmark::State& aState) {
    Lib theLib;
    if (theLib.Count() != VX().Count() || theLib.Count() == 0) {
        aState.SkipWithError("finds other songs");
    }
    for (auto _ : aState) {
        benchmark::DoNotOptimize(theLib.Count());
    }
}
BENCHMARK_TEMPLATE(Evaluate, VX)->Name("search/evaluate_10k/vx");
BENCHMARK_TEMPLATE(Evaluate, StdFunctionTree)->Name("search/evaluate_10k/std_function_tree");
BENCHMARK_TEMPLATE(Evaluate, SQLite)->Name("search/evaluate_10k/sqlite_in_memory");

// How long does it take to make something that can be evaluated of the text?
void ParseVX(benchmark::State& aState) {
    for (auto _ : aState) {
        Parser theParser(kCriteria);
        benchmark::DoNotOptimize(theParser.Parse());
    }
}
BENCHMARK(ParseVX)->Name("search/parse/vx");

void ParseSQLite(benchmark::State& aState) {
    SQLite theLib;
    for (auto _ : aState) {
        sqlite3_stmt* theStatement = nullptr;
        sqlite3_prepare_v2(theLib.mDatabase, SQLite::kStatement, -1, &theStatement, nullptr);
        sqlite3_finalize(theStatement);
    }
}
BENCHMARK(ParseSQLite)->Name("search/parse/sqlite_prepare");

}  // namespace
