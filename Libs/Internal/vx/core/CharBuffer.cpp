// Both holders are one idea over two kinds of characters; what differs is only how a text is
// measured.

#include "vx/CharBuffer.h"

#include <libteskTools/Memory.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {

size_t vxTextLength(const char* aStr) {
    return strlen(aStr);
}

size_t vxTextLength(const wchar_t* aStr) {
    return wcslen(aStr);
}

template <typename Char>
Char* vxAllocateText(size_t aLength) {
    // A length that no block can have fails as any other allocation that is too large.
    const size_t theSize =
        aLength < SIZE_MAX / sizeof(Char) ? (aLength + 1) * sizeof(Char) : SIZE_MAX;
    Char* theStr = static_cast<Char*>(vxMalloc(theSize));
    if (theStr != NULL) {
        theStr[aLength] = 0;
    }
    return theStr;
}

template <typename Char>
Char* vxDuplicate(const Char* aStr) {
    if (aStr == NULL) {
        return NULL;
    }
    const size_t theLength = vxTextLength(aStr);
    Char* theCopy = vxAllocateText<Char>(theLength);
    if (theCopy != NULL) {
        memcpy(theCopy, aStr, theLength * sizeof(Char));
    }
    return theCopy;
}

}  // namespace

vxCharBuffer::vxCharBuffer(const char* aStr, bool afCopy)
    : mStr(afCopy ? vxDuplicate(aStr) : const_cast<char*>(aStr)) {}

vxCharBuffer::vxCharBuffer(size_t aLength) : mStr(vxAllocateText<char>(aLength)) {}

vxCharBuffer::~vxCharBuffer() {
    free(mStr);
}

vxCharBuffer& vxCharBuffer::operator=(const vxCharBuffer& aBuffer) noexcept {
    if (this != &aBuffer) {
        free(mStr);
        mStr = aBuffer.Take();
    }
    return *this;
}

vxCharBuffer& vxCharBuffer::operator=(const char* aStr) {
    char* theOld = mStr;
    mStr = vxDuplicate(aStr);
    free(theOld);
    return *this;
}

vxWCharBuffer::vxWCharBuffer(const wchar_t* aStr, bool afCopy)
    : mStr(afCopy ? vxDuplicate(aStr) : const_cast<wchar_t*>(aStr)) {}

vxWCharBuffer::vxWCharBuffer(size_t aLength) : mStr(vxAllocateText<wchar_t>(aLength)) {}

vxWCharBuffer::~vxWCharBuffer() {
    free(mStr);
}

vxWCharBuffer& vxWCharBuffer::operator=(const vxWCharBuffer& aBuffer) noexcept {
    if (this != &aBuffer) {
        free(mStr);
        mStr = aBuffer.Take();
    }
    return *this;
}

vxWCharBuffer& vxWCharBuffer::operator=(const wchar_t* aStr) {
    wchar_t* theOld = mStr;
    mStr = vxDuplicate(aStr);
    free(theOld);
    return *this;
}
