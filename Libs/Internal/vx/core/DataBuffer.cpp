// A block with one owner: every way in copies or adopts, every way out empties the buffer.

#include "vx/DataBuffer.h"

#include <libteskTools/Memory.h>
#include <libvxLog/Assert.h>

#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

void* vxCopyBlock(const void* aPtr, size_t aSize) {
    if (aPtr == NULL) {
        return NULL;
    }
    void* theCopy = vxMalloc(aSize);
    return theCopy == NULL ? NULL : memcpy(theCopy, aPtr, aSize);
}

}  // namespace

vxDataBuffer::vxDataBuffer(size_t aSize) : mPtr(vxMalloc(aSize)), mSize(mPtr == NULL ? 0 : aSize) {}

vxDataBuffer::vxDataBuffer(const void* aPtr, size_t aSize)
    : mPtr(vxCopyBlock(aPtr, aSize)), mSize(mPtr == NULL ? 0 : aSize) {}

vxDataBuffer::vxDataBuffer(const char* aString) : mPtr(NULL), mSize(0) {
    VXASSERT(aString != NULL);
    if (aString != NULL) {
        const size_t theSize = strlen(aString) + 1;
        Set(vxCopyBlock(aString, theSize), theSize);
    }
}

vxDataBuffer::vxDataBuffer(va_list aList) : mPtr(NULL), mSize(0) {
    const void* thePtr = va_arg(aList, void*);
    const size_t theSize = va_arg(aList, size_t);
    Set(vxCopyBlock(thePtr, theSize), theSize);
}

vxDataBuffer::~vxDataBuffer() {
    free(mPtr);
}

void vxDataBuffer::Set(void* aPtr, size_t aSize) {
    if (aPtr != mPtr) {
        free(mPtr);
    }
    mPtr = aPtr;
    mSize = aPtr == NULL ? 0 : aSize;
}

void vxDataBuffer::Realloc(size_t aSize) {
    void* thePtr = vxRealloc(mPtr, aSize);
    if (thePtr != NULL) {
        mPtr = thePtr;
        mSize = aSize;
    }
}

void* vxDataBuffer::TakeOwnership() {
    mSize = 0;
    return std::exchange(mPtr, nullptr);
}

void vxDataBuffer::TakeOwnership(vxDataBuffer& aOther) {
    if (this != &aOther) {
        const size_t theSize = aOther.mSize;
        Set(aOther.TakeOwnership(), theSize);
    }
}
