// Time-outs by the thousand: starting, cancelling, firing. Pending ones have durations from a
// second to a minute, spread at random.

#include <benchmark/benchmark.h>
#include <event2/event.h>
#include <uv.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "vx/Timeout.h"

namespace {

std::vector<unsigned int> RandomDurations(size_t aCount) {
    std::mt19937 theRandom(4711);
    std::uniform_int_distribution<unsigned int> theMilliseconds(1000, 60000);
    std::vector<unsigned int> theDurations(aCount);
    for (unsigned int& theDuration : theDurations) {
        theDuration = theMilliseconds(theRandom);
    }
    return theDurations;
}

// Each class: timers 0 to aCount - 1, a way to start and to cancel one, and a run that fires what
// has expired.

class VxTimers : private vxTimeoutQueue {
public:
    explicit VxTimers(size_t aCount) : mTimeouts(aCount) {}
    void Start(size_t anIndex, unsigned int aMS) { TimeoutStart(&mTimeouts[anIndex], aMS); }
    void Cancel(size_t anIndex) { TimeoutCancel(&mTimeouts[anIndex]); }
    void Run() { HandleExpiredTimeouts(); }
    int64_t mFired = 0;

private:
    void OnTimeouts() override {
        const unsigned int theNow = vxTimeout::GetSysMSTickCount();
        for (vxTimeout* theTimeout = vxTimeoutQueue::FirstExpiringTimeout();
             theTimeout != NULL && theTimeout->RemainingAt(theNow) == 0;
             theTimeout = vxTimeoutQueue::FirstExpiringTimeout()) {
            TimeoutCancel(theTimeout);
            ++mFired;
        }
    }
    std::vector<vxTimeout> mTimeouts;
};

class MapTimers {
public:
    explicit MapTimers(size_t aCount) : mPlaces(aCount, mTimers.end()) {}
    void Start(size_t anIndex, unsigned int aMS) {
        mPlaces[anIndex] = mTimers.emplace(Clock::now() + std::chrono::milliseconds(aMS), anIndex);
    }
    void Cancel(size_t anIndex) {
        mTimers.erase(mPlaces[anIndex]);
        mPlaces[anIndex] = mTimers.end();
    }
    void Run() {
        const Clock::time_point theNow = Clock::now();
        while (!mTimers.empty() && mTimers.begin()->first <= theNow) {
            mPlaces[mTimers.begin()->second] = mTimers.end();
            mTimers.erase(mTimers.begin());
            ++mFired;
        }
    }
    int64_t mFired = 0;

private:
    using Clock = std::chrono::steady_clock;
    std::multimap<Clock::time_point, size_t> mTimers;
    std::vector<decltype(mTimers)::iterator> mPlaces;
};

class LibeventTimers {
public:
    explicit LibeventTimers(size_t aCount) : mBase(event_base_new()) {
        for (size_t i = 0; i < aCount; ++i) {
            mEvents.push_back(evtimer_new(
                mBase,
                [](evutil_socket_t, short, void* aFired) { ++*static_cast<int64_t*>(aFired); },
                &mFired));
        }
    }
    ~LibeventTimers() {
        for (event* theEvent : mEvents) {
            event_free(theEvent);
        }
        event_base_free(mBase);
    }
    void Start(size_t anIndex, unsigned int aMS) {
        const timeval theTime = {aMS / 1000, static_cast<suseconds_t>(aMS % 1000 * 1000)};
        evtimer_add(mEvents[anIndex], &theTime);
    }
    void Cancel(size_t anIndex) { evtimer_del(mEvents[anIndex]); }
    void Run() { event_base_loop(mBase, EVLOOP_NONBLOCK); }
    int64_t mFired = 0;

private:
    event_base* mBase;
    std::vector<event*> mEvents;
};

class LibuvTimers {
public:
    explicit LibuvTimers(size_t aCount) : mTimers(aCount) {
        uv_loop_init(&mLoop);
        for (uv_timer_t& theTimer : mTimers) {
            uv_timer_init(&mLoop, &theTimer);
            theTimer.data = &mFired;
        }
    }
    ~LibuvTimers() {
        for (uv_timer_t& theTimer : mTimers) {
            uv_close(reinterpret_cast<uv_handle_t*>(&theTimer), nullptr);
        }
        uv_run(&mLoop, UV_RUN_DEFAULT);
        uv_loop_close(&mLoop);
    }
    void Start(size_t anIndex, unsigned int aMS) {
        uv_timer_start(
            &mTimers[anIndex], [](uv_timer_t* aTimer) { ++*static_cast<int64_t*>(aTimer->data); },
            aMS, 0);
    }
    void Cancel(size_t anIndex) { uv_timer_stop(&mTimers[anIndex]); }
    void Run() { uv_run(&mLoop, UV_RUN_NOWAIT); }
    int64_t mFired = 0;

private:
    uv_loop_t mLoop;
    std::vector<uv_timer_t> mTimers;
};

class AsioTimers {
public:
    explicit AsioTimers(size_t aCount) {
        for (size_t i = 0; i < aCount; ++i) {
            mTimers.emplace_back(mContext);
        }
    }
    void Start(size_t anIndex, unsigned int aMS) {
        mTimers[anIndex].expires_after(std::chrono::milliseconds(aMS));
        mTimers[anIndex].async_wait([this](const boost::system::error_code& anError) {
            if (!anError) {
                ++mFired;
            }
        });
    }
    void Cancel(size_t anIndex) { mTimers[anIndex].cancel(); }
    void Run() {
        mContext.restart();
        mContext.poll();
    }
    int64_t mFired = 0;

private:
    boost::asio::io_context mContext;
    std::vector<boost::asio::steady_timer> mTimers;
};

/// One timer more than `aPending`, all but the last of which are running.
template <typename Timers>
std::unique_ptr<Timers> PendingTimers(size_t aPending) {
    auto theTimers = std::make_unique<Timers>(aPending + 1);
    const std::vector<unsigned int> theDurations = RandomDurations(aPending);
    for (size_t i = 0; i < aPending; ++i) {
        theTimers->Start(i, theDurations[i]);
    }
    return theTimers;
}

// What does it cost to guard an operation by a time-out that never fires, among N others?
template <typename Timers>
void StartCancel(benchmark::State& aState, size_t aPending) {
    const auto theTimers = PendingTimers<Timers>(aPending);
    const std::vector<unsigned int> theDurations = RandomDurations(1024);
    size_t i = 0;
    for (auto _ : aState) {
        theTimers->Start(aPending, theDurations[i++ % 1024]);
        theTimers->Cancel(aPending);
    }
}

// What if the guard is longer than all others, or as long, as where one duration serves all?
template <typename Timers>
void StartCancelLast(benchmark::State& aState, size_t aPending) {
    const auto theTimers = PendingTimers<Timers>(aPending);
    for (auto _ : aState) {
        theTimers->Start(aPending, 60000);
        theTimers->Cancel(aPending);
    }
}

// What does one time-out cost that fires, among N others?
template <typename Timers>
void FireOne(benchmark::State& aState, size_t aPending) {
    const auto theTimers = PendingTimers<Timers>(aPending);
    for (auto _ : aState) {
        const int64_t theWanted = theTimers->mFired + 1;
        theTimers->Start(aPending, 0);
        while (theTimers->mFired < theWanted) {
            theTimers->Run();
        }
    }
}

// What do N time-outs cost that fire together?
template <typename Timers>
void ExpireAll(benchmark::State& aState, size_t aCount) {
    Timers theTimers(aCount);
    for (auto _ : aState) {
        const int64_t theWanted = theTimers.mFired + static_cast<int64_t>(aCount);
        for (size_t i = 0; i < aCount; ++i) {
            theTimers.Start(i, 0);
        }
        while (theTimers.mFired < theWanted) {
            theTimers.Run();
        }
    }
}

template <typename Timers>
void Register(const std::string& aWho) {
    for (const size_t theCount : {10, 100, 1000, 10000}) {
        const std::string theEnd = "/" + std::to_string(theCount) + "/" + aWho;
        const auto theAdd = [&](const char* anItem, void (*aFunction)(benchmark::State&, size_t)) {
            benchmark::RegisterBenchmark(
                (anItem + theEnd).c_str(),
                [aFunction, theCount](benchmark::State& aState) { aFunction(aState, theCount); });
        };
        theAdd("runtime/timer_start_cancel", StartCancel<Timers>);
        theAdd("runtime/timer_start_cancel_last", StartCancelLast<Timers>);
        theAdd("runtime/timer_fire_one", FireOne<Timers>);
        theAdd("runtime/timer_expire_all", ExpireAll<Timers>);
    }
}

const bool sIsRegistered = [] {
    Register<VxTimers>("vx");
    Register<MapTimers>("own_multimap");
    Register<LibeventTimers>("libevent");
    Register<LibuvTimers>("libuv");
    Register<AsioTimers>("boost_asio");
    return true;
}();

}  // namespace
