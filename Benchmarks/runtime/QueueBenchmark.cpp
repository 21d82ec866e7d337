// Messages on their way from thread to thread: a code and two pointers, allocated or copied as the
// queue does it. Whoever reads waits for them, and adds the codes up.

#include <Poco/Notification.h>
#include <Poco/NotificationQueue.h>
#include <benchmark/benchmark.h>
#include <glib.h>

#include <QMutex>
#include <QQueue>
#include <QWaitCondition>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "vx/MessageQueue.h"

namespace {

constexpr int kMessages = 10000;  // of each thread that posts

struct Message {
    int mCode;
    void* mParam1;
    void* mParam2;
};

struct VX {
    void Post(int aCode) { mQueue.Post(aCode, this, nullptr); }
    int Get() {
        vxMessage theMessage;
        while (mQueue.Get(&theMessage) != 0) {}
        return theMessage.mMessage;
    }
    vxMessageQueue mQueue;
};

struct StdMutexDeque {
    void Post(int aCode) {
        const std::lock_guard<std::mutex> theLock(mMutex);
        mQueue.push_back({aCode, this, nullptr});
        mCondition.notify_one();
    }
    int Get() {
        std::unique_lock<std::mutex> theLock(mMutex);
        mCondition.wait(theLock, [this] { return !mQueue.empty(); });
        const Message theMessage = mQueue.front();
        mQueue.pop_front();
        return theMessage.mCode;
    }
    std::mutex mMutex;
    std::condition_variable mCondition;
    std::deque<Message> mQueue;
};

struct QtMutexQueue {
    void Post(int aCode) {
        const QMutexLocker theLock(&mMutex);
        mQueue.enqueue({aCode, this, nullptr});
        mCondition.wakeOne();
    }
    int Get() {
        const QMutexLocker theLock(&mMutex);
        while (mQueue.isEmpty()) {
            mCondition.wait(&mMutex);
        }
        return mQueue.dequeue().mCode;
    }
    QMutex mMutex;
    QWaitCondition mCondition;
    QQueue<Message> mQueue;
};

struct GLibQueue {
    ~GLibQueue() { g_async_queue_unref(mQueue); }
    void Post(int aCode) { g_async_queue_push(mQueue, new Message{aCode, this, nullptr}); }
    int Get() {
        Message* theMessage = static_cast<Message*>(g_async_queue_pop(mQueue));
        const int theCode = theMessage->mCode;
        delete theMessage;
        return theCode;
    }
    GAsyncQueue* mQueue = g_async_queue_new();
};

struct PocoQueue {
    struct Note : Poco::Notification {
        explicit Note(const Message& aMessage) : mMessage(aMessage) {}
        Message mMessage;
    };
    void Post(int aCode) { mQueue.enqueueNotification(new Note({aCode, this, nullptr})); }
    int Get() {
        Poco::Notification::Ptr theNote(mQueue.waitDequeueNotification());
        return static_cast<Note*>(theNote.get())->mMessage.mCode;
    }
    Poco::NotificationQueue mQueue;
};

// What do a post and a get cost when one thread does both?
template <typename Queue>
void PostAndGet(benchmark::State& aState) {
    Queue theQueue;
    for (auto _ : aState) {
        theQueue.Post(1);
        benchmark::DoNotOptimize(theQueue.Get());
    }
}

// How long do so many messages take from other threads to this one?
template <typename Queue>
void Transfer(benchmark::State& aState, int aPosters) {
    for (auto _ : aState) {
        Queue theQueue;
        std::vector<std::thread> theThreads;
        for (int i = 0; i < aPosters; ++i) {
            theThreads.emplace_back([&theQueue] {
                for (int theCode = 1; theCode <= kMessages; ++theCode) {
                    theQueue.Post(theCode);
                }
            });
        }
        int64_t theSum = 0;
        for (int i = 0; i < aPosters * kMessages; ++i) {
            theSum += theQueue.Get();
        }
        for (std::thread& theThread : theThreads) {
            theThread.join();
        }
        if (theSum != int64_t{aPosters} * kMessages * (kMessages + 1) / 2) {
            aState.SkipWithError("messages got lost");
        }
    }
}

template <typename Queue>
void Register(const std::string& aWho) {
    benchmark::RegisterBenchmark(("runtime/queue_post_get/" + aWho).c_str(), PostAndGet<Queue>);
    for (const int thePosters : {1, 2}) {
        const std::string theItem = "runtime/queue_" + std::to_string(thePosters) + "p1c/";
        benchmark::RegisterBenchmark((theItem + aWho).c_str(), [thePosters](
                                                                   benchmark::State& aState) {
            Transfer<Queue>(aState, thePosters);
        })->UseRealTime();
    }
}

const bool sfRegistered = [] {
    Register<VX>("vx");
    Register<StdMutexDeque>("std_mutex_deque");
    Register<QtMutexQueue>("QMutex_QQueue");
    Register<GLibQueue>("GAsyncQueue");
    Register<PocoQueue>("Poco_NotificationQueue");
    return true;
}();

}  // namespace
