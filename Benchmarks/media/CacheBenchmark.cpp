// Objects of which the most recently used keep their content, read over and over.
//
// Every cache must have fetched as often as the library's, which keeps one object above its limit.
// The peers look objects up by a number; the library's objects know their cache, and have no other
// key than their handle.

#include <benchmark/benchmark.h>

#include <QCache>
#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index/sequenced_index.hpp>
#include <boost/multi_index_container.hpp>
#include <list>
#include <memory>
#include <random>
#include <unordered_map>
#include <vector>

#include "vx/Cache.h"

namespace {

constexpr size_t kObjects = 2000;
constexpr size_t kReads = 100000;

/// Which object is read when: some more often than others.
const std::vector<uint32_t>& Reads() {
    static const std::vector<uint32_t> sReads = [] {
        std::mt19937 theRandom(7);
        std::vector<uint32_t> theReads;
        for (size_t i = 0; i < kReads; ++i) {
            const double thePart = static_cast<double>(theRandom() % 100000) / 100000;
            theReads.push_back(static_cast<uint32_t>(kObjects * thePart * thePart * thePart));
        }
        return theReads;
    }();
    return sReads;
}

/// The content of an object.
struct Content {
    char mBytes[64];
};

struct VX {
    struct Object : vxCachedBase {
        explicit Object(size_t& aFetches) : mFetches(aFetches) {}
        bool Fetch() override {
            ++mFetches;
            mContent = new Content;
            mSize = 1;
            return true;
        }
        void Trash() override {
            delete mContent;
            mContent = nullptr;
            mSize = 0;
        }
        ~Object() override { delete mContent; }
        Content* mContent = nullptr;
        size_t& mFetches;
    };
    explicit VX(size_t aCount) : mCache(SIZE_MAX, aCount - 1) {
        for (size_t i = 0; i < kObjects; ++i) {
            mObjects.emplace_back(new Object(mFetches));
            mCache.Attach(mObjects.back().Get());
        }
    }
    const Content* Read(uint32_t anObject) {
        mObjects[anObject]->OnReadAccess();
        return mObjects[anObject]->mContent;
    }
    size_t mFetches = 0;
    vxCache mCache;
    std::vector<vxRef<Object>> mObjects;
};

struct BoostMultiIndex {
    struct Entry {
        uint32_t mObject;
        std::unique_ptr<Content> mContent;
    };
    explicit BoostMultiIndex(size_t aCount) : mCount(aCount) {}
    const Content* Read(uint32_t anObject) {
        auto& theOrder = mEntries.get<0>();
        auto& theTable = mEntries.get<1>();
        const auto theEntry = theTable.find(anObject);
        if (theEntry != theTable.end()) {
            theOrder.relocate(theOrder.begin(), mEntries.project<0>(theEntry));
            return theEntry->mContent.get();
        }
        ++mFetches;
        theOrder.push_front({anObject, std::make_unique<Content>()});
        if (theOrder.size() > mCount) {
            theOrder.pop_back();
        }
        return theOrder.front().mContent.get();
    }
    size_t mFetches = 0;
    size_t mCount;
    boost::multi_index_container<
        Entry,
        boost::multi_index::indexed_by<boost::multi_index::sequenced<>,
                                       boost::multi_index::hashed_unique<boost::multi_index::member<
                                           Entry, uint32_t, &Entry::mObject>>>>
        mEntries;
};

struct Qt {
    explicit Qt(size_t aCount) : mCache(static_cast<qsizetype>(aCount)) {}
    const Content* Read(uint32_t anObject) {
        Content* theContent = mCache.object(anObject);
        if (theContent == nullptr) {
            ++mFetches;
            theContent = new Content;
            mCache.insert(anObject, theContent);
        }
        return theContent;
    }
    size_t mFetches = 0;
    QCache<uint32_t, Content> mCache;
};

struct Std {
    using Entry = std::pair<uint32_t, std::unique_ptr<Content>>;
    explicit Std(size_t aCount) : mCount(aCount) {}
    const Content* Read(uint32_t anObject) {
        const auto theFound = mTable.find(anObject);
        if (theFound != mTable.end()) {
            mOrder.splice(mOrder.begin(), mOrder, theFound->second);
            return theFound->second->second.get();
        }
        ++mFetches;
        mOrder.emplace_front(anObject, std::make_unique<Content>());
        mTable[anObject] = mOrder.begin();
        if (mOrder.size() > mCount) {
            mTable.erase(mOrder.back().first);
            mOrder.pop_back();
        }
        return mOrder.front().second.get();
    }
    size_t mFetches = 0;
    size_t mCount;
    std::list<Entry> mOrder;
    std::unordered_map<uint32_t, std::list<Entry>::iterator> mTable;
};

template <typename Cache>
void ReadAll(Cache& aCache) {
    for (const uint32_t theObject : Reads()) {
        benchmark::DoNotOptimize(aCache.Read(theObject));
    }
}

// How long do so many reads take in a cache that has room for so many objects?
template <typename Cache>
void ReadObjects(benchmark::State& aState, size_t aCount) {
    Cache theCache(aCount);
    VX theOwn(aCount);
    ReadAll(theCache);
    ReadAll(theOwn);
    if (theCache.mFetches != theOwn.mFetches) {
        aState.SkipWithError("keeps other objects");
    }
    for (auto _ : aState) {
        ReadAll(theCache);
    }
    aState.counters["fetches"] = static_cast<double>(theOwn.mFetches);
}

template <typename Cache>
void Register(const std::string& aWho) {
    benchmark::RegisterBenchmark(("cache/hits_100k/" + aWho).c_str(), [](benchmark::State& aState) {
        ReadObjects<Cache>(aState, kObjects);
    });
    benchmark::RegisterBenchmark(("cache/lru_100k/" + aWho).c_str(), [](benchmark::State& aState) {
        ReadObjects<Cache>(aState, kObjects * 9 / 10);
    });
}

const bool sfRegistered = [] {
    Register<VX>("vx");
    Register<BoostMultiIndex>("boost_multi_index");
    Register<Qt>("QCache");
    Register<Std>("std_list_unordered_map");
    return true;
}();

}  // namespace
