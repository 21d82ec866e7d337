// Fatal errors end the program, so that nothing runs on without what it stands on. Only tests and
// programs that recover by themselves set a handler.

#include <libvxLog/FatalError.h>
#include <libvxLog/Handlers.h>

#include "Handler.h"

#include <cstdio>
#include <cstdlib>

namespace {

vxHandlerSlot<const char*, size_t> sHandler;

}  // namespace

void vxFatalError_SetHandler(void (*aHandler)(void*, const char*, size_t), void* aContext) {
    sHandler.Set(aHandler, aContext);
}

void vxFatalError_WithSize(const char* aResource, size_t aSize) {
    if (sHandler.Call(aResource, aSize)) {
        return;
    }
    fprintf(stderr, "fatal error: %s (%lu bytes)\n", aResource, static_cast<unsigned long>(aSize));
    abort();
}

void vxFatalError(const char* aResource) {
    if (sHandler.Call(aResource, 0)) {
        return;
    }
    fprintf(stderr, "fatal error: %s\n", aResource);
    abort();
}
