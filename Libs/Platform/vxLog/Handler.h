#pragma once

// A replaceable callback with its context, read and replaced as one.

#include <mutex>

template <typename Function>
class vxHandlerSlot {
public:
    struct Handler {
        Function mFunction;
        void* mContext;
    };

    void Set(Function aFunction, void* aContext) {
        std::lock_guard<std::mutex> theLock(mMutex);
        mHandler = {aFunction, aContext};
    }

    Handler Get() {
        std::lock_guard<std::mutex> theLock(mMutex);
        return mHandler;
    }

private:
    std::mutex mMutex;  // guards mHandler
    Handler mHandler = {nullptr, nullptr};
};
