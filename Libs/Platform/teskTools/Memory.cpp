// Allocation over malloc. Running out of memory is fatal here, so that callers need no second
// path; only vxTryMalloc() answers null.

#include <libteskTools/Memory.h>
#include <libvxLog/FatalError.h>

#include <cstdlib>
#include <cstring>

namespace {

size_t vxNonZero(size_t aSize) {
    return aSize == 0 ? 1 : aSize;
}

void* vxChecked(void* aPtr, size_t aSize) {
    if (aPtr == NULL) {
        vxFatalError_WithSize("memory:malloc", aSize);
    }
    return aPtr;
}

}  // namespace

void* vxMalloc(size_t aSize) {
    return vxChecked(malloc(vxNonZero(aSize)), aSize);
}

void* vxCalloc(size_t aSize) {
    return vxChecked(calloc(1, vxNonZero(aSize)), aSize);
}

void* vxRealloc(void* aPtr, size_t aSize) {
    return vxChecked(realloc(aPtr, vxNonZero(aSize)), aSize);
}

void* vxTryMalloc(size_t aSize) {
    return malloc(vxNonZero(aSize));
}

char* vxStrdup(const char* aStr) {
    if (aStr == NULL) {
        return NULL;
    }
    const size_t theSize = strlen(aStr) + 1;
    char* theCopy = static_cast<char*>(vxMalloc(theSize));
    if (theCopy != NULL) {
        memcpy(theCopy, aStr, theSize);
    }
    return theCopy;
}
