#pragma once

// A replaceable callback with its context, read and replaced as one.

#include <mutex>

/// Holds one handler and knows which threads are inside it, so that what a handler itself reports
/// goes to the default instead of into the handler again.
template <typename... Arguments>
class vxHandlerSlot {
public:
    using Function = void (*)(void* aContext, Arguments...);

    void Set(Function aFunction, void* aContext) {
        std::lock_guard<std::mutex> theLock(mMutex);
        mHandler = {aFunction, aContext};
    }

    /// Calls the handler, outside the lock; false when there is none or this thread is inside it.
    bool Call(Arguments... anArguments) {
        const Handler theHandler = Get();
        if (theHandler.mFunction == nullptr || sfInside) {
            return false;
        }
        sfInside = true;
        theHandler.mFunction(theHandler.mContext, anArguments...);
        sfInside = false;
        return true;
    }

private:
    struct Handler {
        Function mFunction;
        void* mContext;
    };

    Handler Get() {
        std::lock_guard<std::mutex> theLock(mMutex);
        return mHandler;
    }

    static thread_local bool sfInside;  // one slot exists for each list of arguments

    std::mutex mMutex;  // guards mHandler
    Handler mHandler = {nullptr, nullptr};
};

template <typename... Arguments>
thread_local bool vxHandlerSlot<Arguments...>::sfInside = false;
