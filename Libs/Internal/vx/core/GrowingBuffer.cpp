// An append buffer that grows in steps.
//
// Capacity is not doubled. It rises by whole steps above the current position, and the step rises
// with the position, from 128 bytes for a console reply to 128 KB for a long document. Unused
// memory is therefore at most one step, and beyond the first 128 bytes a step is never larger
// than what has been written.

#include "vx/GrowingBuffer.h"

#include <libteskTools/Memory.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <utility>

namespace {

struct vxGrowthStep {
    size_t mEnd;   // positions below this one use the step
    size_t mStep;  // bytes
};

constexpr vxGrowthStep kvxGrowth_Steps[] = {
    {1024, 128}, {8192, 1024}, {131072, 8192}, {524288, 32768}, {SIZE_MAX, 131072},
};

size_t vxGrowthStepAt(size_t aPos) {
    const vxGrowthStep* theStep = kvxGrowth_Steps;
    while (aPos >= theStep->mEnd && theStep->mEnd != SIZE_MAX) {
        ++theStep;
    }
    return theStep->mStep;
}

}  // namespace

size_t vxGrowingBuffer_NewBufferSize(size_t aPos, size_t aLength) {
    // A length of whole steps still gets one step more: the capacity always exceeds position plus
    // length, so a terminating NUL fits without growing again.
    const size_t theStep = vxGrowthStepAt(aPos);
    const size_t theRise = aLength / theStep * theStep;
    const size_t theRoom = SIZE_MAX - aPos;
    return theRise > theRoom || theStep > theRoom - theRise ? SIZE_MAX : aPos + theRise + theStep;
}

vxGrowingBuffer::vxGrowingBuffer(size_t aInitialSize)
    : mPtr(NULL), mSize(0), mPos(0), mNewBufferSizeFunc(vxGrowingBuffer_NewBufferSize) {
    if (aInitialSize > 0) {
        Realloc(aInitialSize);
    }
}

vxGrowingBuffer::~vxGrowingBuffer() {
    free(mPtr);
}

void vxGrowingBuffer::SetNewBufferSizeFunc(vxGrowingBuffer_NewBufferSizeFunc aNewBufferSizeFunc) {
    VXASSERT(aNewBufferSizeFunc != NULL);
    if (aNewBufferSizeFunc != NULL) {
        mNewBufferSizeFunc = aNewBufferSizeFunc;
    }
}

vxGrowingBuffer& vxGrowingBuffer::operator+=(unsigned aNumber) {
    char theText[24];
    const int theLength =
        snprintf(theText, sizeof(theText), "%lu", static_cast<unsigned long>(aNumber));
    Append(theText, static_cast<size_t>(theLength));
    return *this;
}

void vxGrowingBuffer::SetPosition(size_t aPosition) {
    if (aPosition > mSize) {
        Realloc(aPosition);
    }
    if (aPosition <= mSize) {
        mPos = aPosition;
    }
}

void vxGrowingBuffer::Reduce(size_t aSize) {
    Realloc(aSize);
    SetPosition(aSize);
}

void vxGrowingBuffer::Realloc(size_t aSize) {
    char* thePtr = static_cast<char*>(vxRealloc(mPtr, aSize));
    if (thePtr == NULL) {
        return;
    }
    mPtr = thePtr;
    mSize = aSize;
    if (mPos > aSize) {
        mPos = aSize;
    }
}

char* vxGrowingBuffer::TakeOwnership(bool afShrink, size_t* aLength) {
    if (afShrink && mPtr != NULL) {
        Realloc(mPos);
    }
    if (aLength != NULL) {
        *aLength = mPos;
    }
    mSize = 0;
    mPos = 0;
    return std::exchange(mPtr, nullptr);
}

// Appends bytes that the block has no room for; it moves, and the bytes may lie in it.
void vxGrowingBuffer::AppendGrowing(const char* aPtr, size_t aLength) {
    const std::less<const char*> theOrder;
    const bool fOwn = !theOrder(aPtr, mPtr) && theOrder(aPtr, mPtr + mPos);
    const size_t theOffset = fOwn ? static_cast<size_t>(aPtr - mPtr) : 0;
    const size_t theSize = mNewBufferSizeFunc(mPos, aLength);
    if (theSize > mSize) {
        Realloc(theSize);
    }
    if (aLength <= mSize - mPos) {
        memcpy(mPtr + mPos, fOwn ? mPtr + theOffset : aPtr, aLength);
        mPos += aLength;
    }
}
