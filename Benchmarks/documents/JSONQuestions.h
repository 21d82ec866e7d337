#pragma once

// What the benchmarks of JSON trees ask every library. A library is a class with the static
// operations that VX has; TakeApart() takes every child out of its container and frees it, from
// whichever end the library does that best. Reading includes freeing.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "documents/JSONDocuments.h"
#include "vx/JSON.h"

/// A step into a tree: a member where there is a name, else an item.
struct Step {
    const char* mName;
    unsigned mIndex;
};
using Route = std::vector<Step>;

/// Deep places all over a document, for lookups.
inline std::vector<Route> Routes(const std::string& aName) {
    std::vector<Route> theRoutes;
    for (unsigned i = 0; i < 64; ++i) {
        if (aName == "canada") {
            theRoutes.push_back({{"features", 0},
                                 {nullptr, 0},
                                 {"geometry", 0},
                                 {"coordinates", 0},
                                 {nullptr, i * 7},
                                 {nullptr, i},
                                 {nullptr, i % 2}});
        } else if (aName == "twitter") {
            theRoutes.push_back({{"statuses", 0}, {nullptr, i}, {"user", 0}, {"screen_name", 0}});
        } else {
            theRoutes.push_back({{"performances", 0},
                                 {nullptr, i * 3},
                                 {"seatCategories", 0},
                                 {nullptr, i % 3},
                                 {"areas", 0},
                                 {nullptr, i % 9},
                                 {"areaId", 0}});
        }
    }
    return theRoutes;
}

/// Objects and the member of each that is set.
inline std::vector<Route> ObjectRoutes(const std::string& aName) {
    std::vector<Route> theRoutes;
    for (unsigned i = 0; i < 64; ++i) {
        if (aName == "canada") {
            theRoutes.push_back({{"features", 0}, {nullptr, 0}, {"properties", 0}});
        } else if (aName == "twitter") {
            theRoutes.push_back({{"statuses", 0}, {nullptr, i}});
        } else {
            theRoutes.push_back({{"performances", 0}, {nullptr, i * 3}});
        }
    }
    return theRoutes;
}

inline const char* SetMember(const std::string& aName) {
    return aName == "canada" ? "name" : aName == "twitter" ? "favorite_count" : "start";
}

struct VX {
    using Tree = vxJSON_t*;
    using Node = vxJSON_t*;
    static Tree Parse(const std::string& aText) { return vxJSON_Parse(aText.c_str(), nullptr); }
    static void Free(Tree aTree) { vxJSON_Delete(aTree); }
    static size_t Print(Tree aTree, bool afIndent) {
        char* theText = afIndent ? vxJSON_Print(aTree) : vxJSON_PrintUnformatted(aTree);
        benchmark::DoNotOptimize(theText);
        free(theText);
        return 0;
    }
    static Node Root(Tree aTree) { return aTree; }
    static Node Go(Node aNode, const Step& aStep) {
        return aStep.mName != nullptr ? vxJSON_GetObjectItem(aNode, aStep.mName)
                                      : vxJSON_GetArrayItem(aNode, aStep.mIndex);
    }
    static void Set(Node aNode, const char* aName, int aValue) {
        vxJSON_ReplaceItemInObject(aNode, aName, vxJSON_CreateInt64(aValue), 1);
    }
    static Tree Clone(Tree aTree) { return vxJSON_Clone(aTree); }
    static bool Same(Tree aTree, Tree aOther) { return vxJSON_Compare(aTree, aOther) == 0; }
    static void TakeApart(Node aNode) {
        while (vxJSON_t* theChild = vxJSON_DetachItemFromArray(aNode, 0)) {
            if (vxJSON_Is(theChild, kvxJSON_Array | kvxJSON_Object)) {
                TakeApart(theChild);
            }
            vxJSON_Delete(theChild);
        }
    }
};

// ---- Questions

// How long does it take to read a text into a tree, and to free it?
template <typename Library>
void Parse(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    for (auto _ : aState) {
        Library::Free(Library::Parse(aDocument.mText));
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * aDocument.mText.size()));
}

// How long does it take to write a tree?
template <typename Library>
void Print(benchmark::State& aState, const BenchmarkDocument& aDocument, bool afIndent) {
    const auto theTree = Library::Parse(aDocument.mText);
    for (auto _ : aState) {
        benchmark::DoNotOptimize(Library::Print(theTree, afIndent));
    }
    Library::Free(theTree);
}

// How long does one lookup from the root down take?
template <typename Library>
void Get(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const auto theTree = Library::Parse(aDocument.mText);
    const std::vector<Route> theRoutes = Routes(aDocument.mName);
    size_t theIndex = 0;
    for (auto _ : aState) {
        typename Library::Node theNode = Library::Root(theTree);
        for (const Step& theStep : theRoutes[theIndex++ % theRoutes.size()]) {
            theNode = Library::Go(theNode, theStep);
        }
        benchmark::DoNotOptimize(theNode);
    }
    Library::Free(theTree);
}

// How long does it take to walk from the root to an object and give one of its members a new number?
template <typename Library>
void Set(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const auto theTree = Library::Parse(aDocument.mText);
    const std::vector<Route> theRoutes = ObjectRoutes(aDocument.mName);
    const char* theName = SetMember(aDocument.mName);
    size_t theIndex = 0;
    for (auto _ : aState) {
        typename Library::Node theNode = Library::Root(theTree);
        for (const Step& theStep : theRoutes[theIndex % theRoutes.size()]) {
            theNode = Library::Go(theNode, theStep);
        }
        Library::Set(theNode, theName, static_cast<int>(theIndex++));
    }
    Library::Free(theTree);
}

// How long does a deep copy take, with freeing it?
template <typename Library>
void Clone(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const auto theTree = Library::Parse(aDocument.mText);
    for (auto _ : aState) {
        Library::Free(Library::Clone(theTree));
    }
    Library::Free(theTree);
}

// How long does it take to find two trees equal?
template <typename Library>
void Compare(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const auto theTree = Library::Parse(aDocument.mText);
    const auto theOther = Library::Parse(aDocument.mText);
    for (auto _ : aState) {
        const bool fSame = Library::Same(theTree, theOther);
        if (!fSame) {
            aState.SkipWithError("the trees differ");
        }
    }
    Library::Free(theTree);
    Library::Free(theOther);
}

// How long does it take to take every node out of its container and free it?
template <typename Library>
void DetachFree(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    for (auto _ : aState) {
        aState.PauseTiming();
        const auto theTree = Library::Parse(aDocument.mText);
        aState.ResumeTiming();
        Library::TakeApart(Library::Root(theTree));
        Library::Free(theTree);
    }
}

template <typename Function, typename... Arguments>
void Register(const char* anItem, const char* aWho, Function aFunction,
              const BenchmarkDocument& aDocument, Arguments... anArguments) {
    const std::string theName = std::string("json/") + anItem + "/" + aDocument.mName + "/" + aWho;
    benchmark::RegisterBenchmark(theName.c_str(), aFunction, aDocument, anArguments...)
        ->Unit(benchmark::kMicrosecond);
}

template <typename Library>
void RegisterReading(const char* aWho, const BenchmarkDocument& aDocument) {
    Register("parse", aWho, Parse<Library>, aDocument);
    Register("print", aWho, Print<Library>, aDocument, false);
    Register("print_indent", aWho, Print<Library>, aDocument, true);
    Register("get", aWho, Get<Library>, aDocument);
}

template <typename Library>
void RegisterAll(const char* aWho, const BenchmarkDocument& aDocument) {
    RegisterReading<Library>(aWho, aDocument);
    Register("set", aWho, Set<Library>, aDocument);
    Register("clone", aWho, Clone<Library>, aDocument);
    Register("detach_free", aWho, DetachFree<Library>, aDocument);
}
