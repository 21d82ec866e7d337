// Assertions report and go on: a device in the field keeps playing, a developer sees the text.

#include <libvxLog/Assert.h>
#include <libvxLog/Handlers.h>

#include "Handler.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

vxHandlerSlot<const char*, const char*, int> sHandler;

bool vxAbortIsWanted() {
    const char* theMode = getenv("VXASSERT");
    return theMode != nullptr && strcmp(theMode, "abort") == 0;
}

}  // namespace

void vxAssert_SetHandler(void (*aHandler)(void*, const char*, const char*, int), void* aContext) {
    sHandler.Set(aHandler, aContext);
}

void _vxAssert(const char* aCondition, const char* aFile, int aLine) {
    if (sHandler.Call(aCondition, aFile, aLine)) {
        return;
    }
    fprintf(stderr, "%s:%d: assertion failed: %s\n", aFile, aLine, aCondition);
    if (vxAbortIsWanted()) {
        abort();
    }
}
