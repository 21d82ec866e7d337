// A thread's life: started, told to stop, waited for. Its body waits in short naps until it is told.

#include <Poco/Runnable.h>
#include <Poco/Thread.h>
#include <benchmark/benchmark.h>
#include <glib.h>

#include <QThread>
#include <atomic>
#include <thread>

#include "vx/StoppableThread.h"

namespace {

/// What every body does: it runs until told otherwise, and says that it was there.
template <typename TestExit>
void Run(std::atomic<int>& aRuns, TestExit aTestExit) {
    aRuns.fetch_add(1, std::memory_order_relaxed);
    while (!aTestExit()) {
        std::this_thread::yield();
    }
}

struct VX {
    struct Thread : vxStoppableThread {
        explicit Thread(std::atomic<int>& aRuns)
            : vxStoppableThread("benchmark", vxThread_Kind_Joinable), mRuns(aRuns) {}
        void OnRun() override {
            Run(mRuns, [this] { return TestExit(); });
        }
        std::atomic<int>& mRuns;
    };
    static void Live(std::atomic<int>& aRuns) {
        Thread theThread(aRuns);
        theThread.ThreadCreate();
        theThread.Go(kvxThreadState_Starting);
        theThread.ThreadCancel();
        theThread.ThreadWaitTerminate();
    }
};

struct Std {
    static void Live(std::atomic<int>& aRuns) {
        std::atomic<bool> theIsOver{false};
        std::thread theThread([&] { Run(aRuns, [&theIsOver] { return theIsOver.load(); }); });
        theIsOver = true;
        theThread.join();
    }
};

struct Qt {
    struct Thread : QThread {
        explicit Thread(std::atomic<int>& aRuns) : mRuns(aRuns) {}
        void run() override {
            Run(mRuns, [this] { return isInterruptionRequested(); });
        }
        std::atomic<int>& mRuns;
    };
    static void Live(std::atomic<int>& aRuns) {
        Thread theThread(aRuns);
        theThread.start();
        theThread.requestInterruption();
        theThread.wait();
    }
};

struct Poco_ {
    struct Body : Poco::Runnable {
        explicit Body(std::atomic<int>& aRuns) : mRuns(aRuns) {}
        void run() override {
            Run(mRuns, [this] { return mfIsOver.load(); });
        }
        std::atomic<int>& mRuns;
        std::atomic<bool> mfIsOver{false};
    };
    static void Live(std::atomic<int>& aRuns) {
        Body theBody(aRuns);
        Poco::Thread theThread;
        theThread.start(theBody);
        theBody.mfIsOver = true;
        theThread.join();
    }
};

struct GLib {
    struct Body {
        std::atomic<int>& mRuns;
        std::atomic<bool> mfIsOver{false};
    };
    static void Live(std::atomic<int>& aRuns) {
        Body theBody{aRuns};
        GThread* theThread = g_thread_new(
            "benchmark",
            [](void* aBody) -> void* {
                Body* theBody = static_cast<Body*>(aBody);
                Run(theBody->mRuns, [theBody] { return theBody->mfIsOver.load(); });
                return nullptr;
            },
            &theBody);
        theBody.mfIsOver = true;
        g_thread_join(theThread);
    }
};

// How long does a thread take to be started, stopped and joined?
template <typename Lib>
void Live(benchmark::State& aState) {
    std::atomic<int> theRuns{0};
    int theThreads = 0;
    for (auto _ : aState) {
        Lib::Live(theRuns);
        ++theThreads;
    }
    if (theRuns != theThreads && !std::is_same_v<Lib, Qt>) {
        aState.SkipWithError("a body did not run");
    }
}
BENCHMARK_TEMPLATE(Live, VX)->Name("runtime/thread_start_stop_join/vx")->UseRealTime();
BENCHMARK_TEMPLATE(Live, Std)->Name("runtime/thread_start_stop_join/std_thread")->UseRealTime();
BENCHMARK_TEMPLATE(Live, Qt)->Name("runtime/thread_start_stop_join/QThread")->UseRealTime();
BENCHMARK_TEMPLATE(Live, Poco_)->Name("runtime/thread_start_stop_join/Poco_Thread")->UseRealTime();
BENCHMARK_TEMPLATE(Live, GLib)->Name("runtime/thread_start_stop_join/GThread")->UseRealTime();

}  // namespace
