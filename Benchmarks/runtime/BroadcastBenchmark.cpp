// One message to many listeners, each of which counts it.
//
// Only the library and sigc++ let listeners come and go during a broadcast as cheaply as this; Qt and
// boost guard against other threads, too, boost only where it is told to.

#include <benchmark/benchmark.h>
#include <sigc++/sigc++.h>

#include <QSignalMapper>
#include <boost/signals2.hpp>
#include <memory>
#include <vector>

#include "vx/Broadcaster.h"

namespace {

struct Counter {
    void Count(int aMessage) { mCount += aMessage; }
    int mCount = 0;
};

struct VX {
    struct Listener : vxListener, Counter {
        void ListenToMessage(int aMessage, void*) override { Count(aMessage); }
    };
    explicit VX(size_t aCount) : mListeners(aCount) {
        for (Listener& theListener : mListeners) {
            mBroadcaster.AddListener(&theListener);
        }
    }
    ~VX() { mBroadcaster.StopBroadcasting(); }
    void Broadcast() { mBroadcaster.BroadcastMessage(1, nullptr); }
    std::vector<Listener> mListeners;
    vxBroadcaster mBroadcaster;
};

struct Sigc {
    struct Listener : Counter, sigc::trackable {};
    explicit Sigc(size_t aCount) : mListeners(aCount) {
        for (Listener& theListener : mListeners) {
            mSignal.connect(sigc::mem_fun(theListener, &Listener::Count));
        }
    }
    void Broadcast() { mSignal.emit(1); }
    std::vector<Listener> mListeners;
    sigc::signal<void, int> mSignal;
};

template <typename Signal>
struct Boost {
    explicit Boost(size_t aCount) : mListeners(aCount) {
        for (Counter& theListener : mListeners) {
            mSignal.connect([&theListener](int aMessage) { theListener.Count(aMessage); });
        }
    }
    void Broadcast() { mSignal(1); }
    std::vector<Counter> mListeners;
    Signal mSignal;
};

using BoostSignal = boost::signals2::signal<void(int)>;
using BoostSignalNoMutex = boost::signals2::signal_type<
    void(int), boost::signals2::keywords::mutex_type<boost::signals2::dummy_mutex>>::type;

struct Qt {
    explicit Qt(size_t aCount) : mListeners(aCount) {
        for (Counter& theListener : mListeners) {
            QObject::connect(
                &mSender, &QSignalMapper::mappedInt, &mReceiver,
                [&theListener](int aMessage) { theListener.Count(aMessage); },
                ::Qt::DirectConnection);
        }
    }
    void Broadcast() { Q_EMIT mSender.mappedInt(1); }
    std::vector<Counter> mListeners;
    QObject mReceiver;
    QSignalMapper mSender;
};

// How long does it take to call all listeners?
template <typename Sender>
void Broadcast(benchmark::State& aState, size_t aCount) {
    Sender theSender(aCount);
    int theSent = 0;
    for (auto _ : aState) {
        theSender.Broadcast();
        ++theSent;
    }
    if (theSender.mListeners.back().mCount != theSent) {
        aState.SkipWithError("a listener was not called");
    }
}

template <typename Sender>
void Register(const std::string& aWho) {
    for (const size_t theCount : {10, 1000}) {
        benchmark::RegisterBenchmark(
            ("runtime/broadcast/" + std::to_string(theCount) + "/" + aWho).c_str(),
            [theCount](benchmark::State& aState) { Broadcast<Sender>(aState, theCount); });
    }
}

const bool sfRegistered = [] {
    Register<VX>("vx");
    Register<Sigc>("sigc_signal");
    Register<Boost<BoostSignal>>("boost_signals2");
    Register<Boost<BoostSignalNoMutex>>("boost_signals2_no_mutex");
    Register<Qt>("Qt_signal_direct");
    return true;
}();

}  // namespace
