// A shared block. Its base64 text is computed on demand and kept for as long as the block lives,
// because messages repeat the same bytes to many receivers.

#include "vx/CountedDataBuffer.h"

#include <libteskTools/Base64.h>
#include <libteskTools/Memory.h>
#include <libvxLog/Assert.h>
#include <libvxLog/FatalError.h>

#include <cstdlib>
#include <cstring>

namespace {

// The length of a text that ends at its NUL or after `aSize` bytes, whichever comes first.
size_t vxTextLength(const char* aText, size_t aSize) {
    const void* theEnd = memchr(aText, '\0', aSize);
    return theEnd == NULL ? aSize : static_cast<size_t>(static_cast<const char*>(theEnd) - aText);
}

}  // namespace

vxCountedDataBuffer::vxCountedDataBuffer(size_t aSize) : vxCountedDataBuffer() {
    mPtr = vxMalloc(aSize);
    mSize = mPtr == NULL ? 0 : aSize;
}

vxCountedDataBuffer::vxCountedDataBuffer(const void* aPtr, size_t aSize) : vxCountedDataBuffer() {
    mPtr = aPtr == NULL ? NULL : vxMalloc(aSize);
    if (mPtr != NULL) {
        memcpy(mPtr, aPtr, aSize);
        mSize = aSize;
    }
}

vxCountedDataBuffer::vxCountedDataBuffer(const char* aString)
    : vxCountedDataBuffer(aString, aString == NULL ? 0 : strlen(aString) + 1) {
    VXASSERT(aString != NULL);
}

vxCountedDataBuffer::~vxCountedDataBuffer() {
    free(mPtr);
    free(mBase64);
}

vxCountedDataBuffer* vxCountedDataBuffer::fromBase64(const char* aText, size_t aSize) {
    vxCountedDataBuffer* theBuffer = new vxCountedDataBuffer(aSize);
    const size_t theCapacity = theBuffer->mSize;
    theBuffer->mSize = 0;
    if (aText != NULL) {
        vxBase64_DecodeSized(aText, vxTextLength(aText, theCapacity), theBuffer->mPtr,
                             &theBuffer->mSize);
    }
    return theBuffer;
}

void vxCountedDataBuffer::encodeBase64() {
    if (mBase64 != NULL) {
        return;
    }
    char* theText = NULL;
    mBase64Size = vxBase64_Encode(mPtr, mSize, &theText);
    mBase64 = theText;
    if (theText == NULL) {
        vxFatalError_WithSize("memory:malloc", mSize);
    }
}

const char* vxCountedDataBuffer::base64() {
    encodeBase64();
    return static_cast<const char*>(mBase64);
}

size_t vxCountedDataBuffer::base64Size() {
    encodeBase64();
    return mBase64Size;
}
