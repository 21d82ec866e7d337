#include "support/Allocations.h"

#include <libteskTools/Memory.h>
#include <libvxLog/FatalError.h>

#include <dlfcn.h>

namespace {

bool sWatching = false;
size_t sMallocs = 0;
size_t sReallocs = 0;
size_t sLastSize = 0;
size_t sLeft = static_cast<size_t>(-1);

// Whether this call may succeed.
bool Count(size_t& aCalls, size_t aSize) {
    if (!sWatching) {
        return true;
    }
    aCalls++;
    sLastSize = aSize;
    if (sLeft == 0) {
        vxFatalError_WithSize("memory:malloc", aSize);
        return false;
    }
    sLeft -= sLeft != static_cast<size_t>(-1);
    return true;
}

}  // namespace

extern "C" VX_API void* vxMalloc(size_t aSize) {
    static void* (*const sReal)(size_t) =
        reinterpret_cast<void* (*)(size_t)>(dlsym(RTLD_NEXT, "vxMalloc"));
    return Count(sMallocs, aSize) ? sReal(aSize) : nullptr;
}

extern "C" VX_API void* vxRealloc(void* aPtr, size_t aSize) {
    static void* (*const sReal)(void*, size_t) =
        reinterpret_cast<void* (*)(void*, size_t)>(dlsym(RTLD_NEXT, "vxRealloc"));
    return Count(sReallocs, aSize) ? sReal(aPtr, aSize) : nullptr;
}

namespace vxtest {

Allocations::Allocations() {
    sMallocs = sReallocs = sLastSize = 0;
    sLeft = static_cast<size_t>(-1);
    sWatching = true;
}

Allocations::~Allocations() {
    sWatching = false;
}

size_t Allocations::Mallocs() const {
    return sMallocs;
}

size_t Allocations::Reallocs() const {
    return sReallocs;
}

size_t Allocations::LastSize() const {
    return sLastSize;
}

void Allocations::FailAfter(size_t aCount) {
    sLeft = aCount;
}

}  // namespace vxtest
