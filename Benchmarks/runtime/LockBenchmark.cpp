// What an uncontended lock costs, and what it takes to hand a turn from thread to thread.

#include <Poco/Event.h>
#include <Poco/Mutex.h>
#include <benchmark/benchmark.h>
#include <glib.h>
#include <pthread.h>
#include <QRecursiveMutex>

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "OneCore.h"
#include "vx/Condition.h"
#include "vx/Mutex.h"

namespace {

struct VxMutex {
    void Lock() { mMutex.Lock(); }
    void Unlock() { mMutex.Unlock(); }
    vxMutex mMutex;
};

struct StdRecursiveMutex {
    void Lock() { mMutex.lock(); }
    void Unlock() { mMutex.unlock(); }
    std::recursive_mutex mMutex;
};

struct QtRecursiveMutex {
    void Lock() { mMutex.lock(); }
    void Unlock() { mMutex.unlock(); }
    QRecursiveMutex mMutex;
};

struct PocoMutex {
    void Lock() { mMutex.lock(); }
    void Unlock() { mMutex.unlock(); }
    Poco::Mutex mMutex;
};

struct PthreadRecursive {
    PthreadRecursive() {
        pthread_mutexattr_t theAttributes;
        pthread_mutexattr_init(&theAttributes);
        pthread_mutexattr_settype(&theAttributes, PTHREAD_MUTEX_RECURSIVE);
        pthread_mutex_init(&mMutex, &theAttributes);
    }
    ~PthreadRecursive() { pthread_mutex_destroy(&mMutex); }
    void Lock() { pthread_mutex_lock(&mMutex); }
    void Unlock() { pthread_mutex_unlock(&mMutex); }
    pthread_mutex_t mMutex;
};

// How long do a lock and its unlock take when nobody else wants the mutex?
template <typename Mutex>
void LockOnce(benchmark::State& aState) {
    Mutex theMutex;
    for (auto _ : aState) {
        theMutex.Lock();
        benchmark::ClobberMemory();
        theMutex.Unlock();
    }
}
BENCHMARK_TEMPLATE(LockOnce, VxMutex)->Name("runtime/lock_x1/vx");
BENCHMARK_TEMPLATE(LockOnce, QtRecursiveMutex)->Name("runtime/lock_x1/QRecursiveMutex");
BENCHMARK_TEMPLATE(LockOnce, StdRecursiveMutex)->Name("runtime/lock_x1/std_recursive_mutex");
BENCHMARK_TEMPLATE(LockOnce, PocoMutex)->Name("runtime/lock_x1/Poco_Mutex");
BENCHMARK_TEMPLATE(LockOnce, PthreadRecursive)->Name("runtime/lock_x1/pthread_recursive");

// What does a second level add?
template <typename Mutex>
void LockTwice(benchmark::State& aState) {
    Mutex theMutex;
    for (auto _ : aState) {
        theMutex.Lock();
        theMutex.Lock();
        benchmark::ClobberMemory();
        theMutex.Unlock();
        theMutex.Unlock();
    }
}
BENCHMARK_TEMPLATE(LockTwice, VxMutex)->Name("runtime/recursive_lock_x2/vx");
BENCHMARK_TEMPLATE(LockTwice, QtRecursiveMutex)->Name("runtime/recursive_lock_x2/QRecursiveMutex");
BENCHMARK_TEMPLATE(LockTwice, StdRecursiveMutex)
    ->Name("runtime/recursive_lock_x2/std_recursive_mutex");
BENCHMARK_TEMPLATE(LockTwice, PocoMutex)->Name("runtime/recursive_lock_x2/Poco_Mutex");
BENCHMARK_TEMPLATE(LockTwice, PthreadRecursive)
    ->Name("runtime/recursive_lock_x2/pthread_recursive");

struct VxEvent {
    void Signal() { mCondition.Signal(); }
    void Wait() { mCondition.Wait(); }
    vxCondition mCondition;
};

struct GlibEvent {
    GlibEvent() {
        g_mutex_init(&mMutex);
        g_cond_init(&mCond);
    }
    ~GlibEvent() {
        g_cond_clear(&mCond);
        g_mutex_clear(&mMutex);
    }
    void Signal() {
        g_mutex_lock(&mMutex);
        mfSignaled = true;
        g_cond_signal(&mCond);
        g_mutex_unlock(&mMutex);
    }
    void Wait() {
        g_mutex_lock(&mMutex);
        while (!mfSignaled) {
            g_cond_wait(&mCond, &mMutex);
        }
        mfSignaled = false;
        g_mutex_unlock(&mMutex);
    }
    GMutex mMutex;
    GCond mCond;
    bool mfSignaled = false;
};

struct StdEvent {
    void Signal() {
        std::lock_guard<std::mutex> theLock(mMutex);
        mfSignaled = true;
        mCondition.notify_one();
    }
    void Wait() {
        std::unique_lock<std::mutex> theLock(mMutex);
        mCondition.wait(theLock, [this] { return mfSignaled; });
        mfSignaled = false;
    }
    std::mutex mMutex;
    std::condition_variable mCondition;
    bool mfSignaled = false;
};

struct PocoEvent {
    void Signal() { mEvent.set(); }
    void Wait() { mEvent.wait(); }
    Poco::Event mEvent;
};

// How long does it take to wake a thread that sleeps on an event, and to be woken by it?
template <typename Event>
void PingPong(benchmark::State& aState) {
    Event thePing;
    Event thePong;
    bool theIsOver = false;  // handed over with the ping
    std::thread theOther([&] {
        for (;;) {
            thePing.Wait();
            if (theIsOver) {
                return;
            }
            thePong.Signal();
        }
    });
    for (auto _ : aState) {
        thePing.Signal();
        thePong.Wait();
    }
    theIsOver = true;
    thePing.Signal();
    theOther.join();
}

template <typename Event>
void Register(const std::string& aWho) {
    benchmark::RegisterBenchmark(("runtime/condition_pingpong/" + aWho).c_str(), PingPong<Event>)
        ->UseRealTime();
    benchmark::RegisterBenchmark(
        ("runtime/condition_pingpong_one_core/" + aWho).c_str(),
        [](benchmark::State& aState) { bench::OnOneCore(aState, PingPong<Event>); })
        ->MeasureProcessCPUTime();
}

const bool sfRegistered = [] {
    Register<VxEvent>("vx");
    Register<GlibEvent>("GCond");
    Register<StdEvent>("std_condition_variable");
    Register<PocoEvent>("Poco_Event");
    return true;
}();

}  // namespace
