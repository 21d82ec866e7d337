#pragma once

#include <libteskTools/Types.h>

#include <cstdarg>

#include "vx/Api.h"

/// A heap block with its size, and with one owner.
///
/// Sizes are bytes. Nothing is added to what the caller stores: a text built from a C string keeps
/// its NUL, and the size counts it.
///
/// Owner:    the buffer frees its block with free() until TakeOwnership() hands it out.
/// Threads:  one at a time; nothing is locked.
class VX_EXPORT vxDataBuffer {
public:
    /// Makes an empty buffer, without a block.
    vxDataBuffer() noexcept : mPtr(NULL), mSize(0) {}

    /// Makes an uninitialized block; one of 0 bytes still has an address of its own.
    explicit vxDataBuffer(size_t aSize);

    /// Copies `aSize` bytes; null makes an empty buffer.
    vxDataBuffer(const void* aPtr, size_t aSize);

    /// Copies a text with its NUL, which the size counts.
    ///
    /// Asserts:  aString != NULL; the buffer is empty then.
    explicit vxDataBuffer(const char* aString);

    /// Copies the bytes that the list names: a `void*`, then a `size_t`.
    ///
    /// As after vprintf(), the caller does nothing more with the list than va_end().
    explicit vxDataBuffer(va_list aList);

    ~vxDataBuffer();
    vxDataBuffer(const vxDataBuffer&) = delete;
    vxDataBuffer& operator=(const vxDataBuffer&) = delete;

    /// Frees the block and adopts another one without copying it.
    ///
    /// Owner:    the buffer; `aPtr` comes from malloc() or its like, or is null.
    void Set(void* aPtr, size_t aSize);

    /// Changes the size; the bytes that fit stay, further ones are uninitialized.
    ///
    /// Fails:    reports the fatal error "memory:malloc"; if that returns, nothing has changed.
    void Realloc(size_t aSize);

    /// Hands out the block and leaves the buffer empty.
    ///
    /// Owner:    the caller, who releases it with free(); null when there was no block.
    void* TakeOwnership();

    /// Frees the block, takes over the other buffer's block and size, and leaves that one empty.
    void TakeOwnership(vxDataBuffer& aOther);

    /// Returns the block; null when the buffer is empty.
    void* data() const { return mPtr; }

    /// Returns the number of bytes.
    size_t size() const { return mSize; }

private:
    void* mPtr;    // owned, or null
    size_t mSize;  // bytes
};
