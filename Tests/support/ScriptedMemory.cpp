#include "support/ScriptedMemory.h"

#include <libteskTools/Memory.h>
#include <libvxLog/FatalError.h>

#include <cstdlib>

namespace {

bool sfNoMemory = false;
int sReallocCount = 0;

size_t NonZero(size_t aSize) {
    return aSize == 0 ? 1 : aSize;
}

void* Report(size_t aSize) {
    vxFatalError_WithSize("memory:malloc", aSize);
    return nullptr;
}

}  // namespace

namespace vxtest {

NoMemory::NoMemory() {
    sfNoMemory = true;
}

NoMemory::~NoMemory() {
    sfNoMemory = false;
}

int ReallocCount() {
    return sReallocCount;
}

}  // namespace vxtest

void* vxMalloc(size_t aSize) {
    return sfNoMemory ? Report(aSize) : malloc(NonZero(aSize));
}

void* vxCalloc(size_t aSize) {
    return sfNoMemory ? Report(aSize) : calloc(1, NonZero(aSize));
}

void* vxRealloc(void* aPtr, size_t aSize) {
    ++sReallocCount;
    return sfNoMemory ? Report(aSize) : realloc(aPtr, NonZero(aSize));
}

void* vxTryMalloc(size_t aSize) {
    return sfNoMemory ? nullptr : malloc(NonZero(aSize));
}
