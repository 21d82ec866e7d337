#pragma once

#include <libteskTools/Types.h>
#include <libvxLog/Assert.h>

#include <cstring>

#include "vx/Api.h"

/// Chooses a new capacity for `aPos` bytes written and `aLength` more to come; the result is at
/// least their sum.
using vxGrowingBuffer_NewBufferSizeFunc = size_t (*)(size_t aPos, size_t aLength);

/// Returns `aPos` plus whole steps, always more than `aPos + aLength`.
///
/// The step rises with the position: 128 bytes below 1024, 1024 below 8192, 8192 below 131072,
/// 32768 below 524288, then 131072. A capacity that a size_t cannot hold becomes the largest one.
///
/// Threads:  any.
VX_EXPORT size_t vxGrowingBuffer_NewBufferSize(size_t aPos, size_t aLength);

/// Collects text or bytes whose final length is not known yet.
///
/// Positions, lengths and capacities are bytes. The buffer never writes a terminating NUL: append
/// one before handing the block to code that wants text.
///
/// Owner:    the buffer frees its block with free() until TakeOwnership() hands it out.
/// Threads:  one at a time; nothing is locked.
class VX_EXPORT vxGrowingBuffer {
public:
    /// Reserves `aInitialSize` bytes; 0 allocates nothing until the first byte comes.
    explicit vxGrowingBuffer(size_t aInitialSize);
    ~vxGrowingBuffer();
    vxGrowingBuffer(const vxGrowingBuffer&) = delete;
    vxGrowingBuffer& operator=(const vxGrowingBuffer&) = delete;

    /// Replaces the choice of capacities, vxGrowingBuffer_NewBufferSize() at first.
    ///
    /// Asserts:  aNewBufferSizeFunc != NULL; the old choice stays.
    void SetNewBufferSizeFunc(vxGrowingBuffer_NewBufferSizeFunc aNewBufferSizeFunc);

    /// Copies `aLength` bytes from `aPtr` behind those already written; zeros count as data.
    ///
    /// The bytes may be some of those already written. Growing moves the block, so every pointer
    /// into it may dangle afterwards. How far it grows is the size function's choice.
    ///
    /// Asserts:  aPtr != NULL, even for no bytes at all; nothing is appended.
    /// Fails:    reports the fatal error "memory:malloc"; if that returns, nothing is appended.
    /// Cost:     one reallocation per growth step, otherwise a copy.
    void Append(const char* aPtr, size_t aLength) {
        VXASSERT(aPtr != NULL);
        if (aPtr == NULL || aLength == 0) {
            return;
        }
        if (aLength <= mSize - mPos) {
            memcpy(mPtr + mPos, aPtr, aLength);
            mPos += aLength;
        } else {
            AppendGrowing(aPtr, aLength);
        }
    }

    /// Appends a text without its NUL.
    ///
    /// Asserts:  aStr != NULL; nothing is appended.
    vxGrowingBuffer& operator+=(const char* aStr) {
        VXASSERT(aStr != NULL);
        if (aStr != NULL) {
            Append(aStr, strlen(aStr));
        }
        return *this;
    }

    /// Appends a number in decimal.
    vxGrowingBuffer& operator+=(unsigned aNumber);

    /// Moves the position, growing the capacity to exactly `aPosition` when it is smaller.
    ///
    /// Bytes between the old position and a larger new one are whatever the block held there.
    void SetPosition(size_t aPosition);

    /// Reallocates the block to exactly `aSize` bytes and puts the position at its end.
    void Reduce(size_t aSize);

    /// Reallocates the block to exactly `aSize` bytes; a position beyond them moves to their end.
    ///
    /// Fails:    reports the fatal error "memory:malloc"; if that returns, nothing has changed.
    void Realloc(size_t aSize);

    /// Hands out the block, cut to the bytes written when `afShrink`, and leaves the buffer empty.
    ///
    /// `aLength`, unless null, receives the number of bytes written.
    ///
    /// Owner:    the caller, who releases it with free(); null when nothing was ever allocated.
    char* TakeOwnership(bool afShrink, size_t* aLength);

    /// Returns the block; null before the first allocation. Growing may move it.
    char* data() const { return mPtr; }

    /// Returns the capacity.
    size_t size() const { return mSize; }

    /// Returns the number of bytes written.
    size_t GetPosition() const { return mPos; }

private:
    void AppendGrowing(const char* aPtr, size_t aLength);

    char* mPtr;    // null until the first byte
    size_t mSize;  // capacity
    size_t mPos;   // bytes written, never above mSize
    vxGrowingBuffer_NewBufferSizeFunc mNewBufferSizeFunc;
};
