#pragma once

#include <condition_variable>
#include <mutex>

namespace vxtest {

/// A meeting point: waits end when the latch has been counted down to 0.
///
/// Threads:  any.
class Latch {
public:
    explicit Latch(int aCount) : mCount(aCount) {}

    void CountDown() {
        std::lock_guard<std::mutex> theLock(mMutex);
        if (mCount > 0 && --mCount == 0) {
            mZero.notify_all();
        }
    }

    void Wait() {
        std::unique_lock<std::mutex> theLock(mMutex);
        mZero.wait(theLock, [this] { return mCount == 0; });
    }

    void ArriveAndWait() {
        CountDown();
        Wait();
    }

private:
    std::mutex mMutex;  // guards everything below
    std::condition_variable mZero;
    int mCount;
};

}  // namespace vxtest
