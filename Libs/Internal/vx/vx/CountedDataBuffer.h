#pragma once

#include <libteskTools/Types.h>

#include "vx/Api.h"
#include "vx/Ref.h"

/// A shared heap block that can carry its own base64 text.
///
///     vxRef<vxCountedDataBuffer> theCover = new vxCountedDataBuffer(theBytes, theSize);
///     theCover->encodeBase64();      // before other threads see it
///     theQueue.Post(theCover);
///
/// The base64 text (RFC 4648, standard alphabet, padded) is computed once and kept: bytes changed
/// afterwards leave it stale.
///
/// Owner:    its handles; the block and the text go with the object.
/// Threads:  any as long as nobody changes the bytes and the base64 text was computed before the
///           buffer is shared; filling it takes no lock.
class VX_EXPORT vxCountedDataBuffer : public vxRefCounted {
public:
    /// Makes an empty buffer, without a block.
    vxCountedDataBuffer() noexcept : mPtr(NULL), mSize(0), mBase64(NULL), mBase64Size(0) {}

    /// Makes an uninitialized block; one of 0 bytes still has an address of its own.
    explicit vxCountedDataBuffer(size_t aSize);

    /// Copies `aSize` bytes; null makes an empty buffer.
    vxCountedDataBuffer(const void* aPtr, size_t aSize);

    /// Copies a text with its NUL, which the size counts.
    ///
    /// Asserts:  aString != NULL; the buffer is empty then.
    explicit vxCountedDataBuffer(const char* aString);

    ~vxCountedDataBuffer() override;
    vxCountedDataBuffer(const vxCountedDataBuffer&) = delete;
    vxCountedDataBuffer& operator=(const vxCountedDataBuffer&) = delete;

    /// Makes a buffer from base64 text of `aSize` bytes; a NUL ends the text earlier.
    ///
    /// The size becomes that of the decoded bytes; it is 0 for text that is malformed or null. The
    /// block has `aSize` bytes, which is always enough.
    ///
    /// Owner:    the caller, who puts the fresh object (count 0) into a vxRef.
    static vxCountedDataBuffer* fromBase64(const char* aText, size_t aSize);

    /// Computes the base64 text, unless that has been done before.
    ///
    /// Fails:    reports the fatal error "memory:malloc"; if that returns, there is no text.
    void encodeBase64();

    /// Returns the base64 text with its NUL, computing it first if needed.
    ///
    /// Owner:    the buffer.
    const char* base64();

    /// Returns the length of the base64 text without its NUL, computing the text first if needed.
    size_t base64Size();

    /// Returns the block; null when the buffer is empty.
    void* data() const { return mPtr; }

    /// Returns the number of bytes.
    size_t size() const { return mSize; }

private:
    void* mPtr;          // owned, or null
    size_t mSize;        // bytes
    void* mBase64;       // owned; null until it is first asked for
    size_t mBase64Size;  // length of the text, without its NUL
};
