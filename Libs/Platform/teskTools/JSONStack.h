#pragma once

// The way down a tree during a walk: a stack whose first frames are in place and whose rest is on
// the heap, so that depth costs no call stack.

#include <libteskTools/Memory.h>

#include <cstdlib>
#include <cstring>
#include <type_traits>

template <typename T, size_t kInPlace = 64>
class vxJSONStack {
    static_assert(std::is_trivially_copyable<T>::value, "frames move as bytes");

public:
    vxJSONStack() : mFrames(mInPlace), mCount(0), mCapacity(kInPlace) {}
    ~vxJSONStack() {
        if (mFrames != mInPlace) {
            free(mFrames);
        }
    }
    vxJSONStack(const vxJSONStack&) = delete;
    vxJSONStack& operator=(const vxJSONStack&) = delete;

    /// False when memory is out.
    bool Push(const T& aFrame) {
        if (mCount == mCapacity && !Grow()) {
            return false;
        }
        mFrames[mCount++] = aFrame;
        return true;
    }

    T Pop() { return mFrames[--mCount]; }
    T& Top() { return mFrames[mCount - 1]; }
    bool IsEmpty() const { return mCount == 0; }
    size_t Count() const { return mCount; }

private:
    __attribute__((noinline)) bool Grow() {
        if (mCapacity > SIZE_MAX / sizeof(T) / 2) {
            return false;
        }
        const bool fFirst = mFrames == mInPlace;
        void* theFrames = vxRealloc(fFirst ? nullptr : mFrames, 2 * mCapacity * sizeof(T));
        if (theFrames == nullptr) {
            return false;
        }
        if (fFirst) {
            memcpy(theFrames, mInPlace, sizeof(mInPlace));
        }
        mFrames = static_cast<T*>(theFrames);
        mCapacity *= 2;
        return true;
    }

    T mInPlace[kInPlace];
    T* mFrames;
    size_t mCount;
    size_t mCapacity;
};
