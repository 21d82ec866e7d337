// Console text is formatted first and written with one call, so that pieces of two threads do not
// mix.

#include <libvxLog/Console.h>
#include <libvxLog/Handlers.h>

#include "Format.h"
#include "Handler.h"

#include <cstdio>

namespace {

vxHandlerSlot<const char*> sHandler;

}  // namespace

void vxConsole_SetHandler(void (*aHandler)(void*, const char*), void* aContext) {
    sHandler.Set(aHandler, aContext);
}

void vxConsole_Printf(const char* aFormat, ...) {
    std::string theText;
    va_list theArgs;
    va_start(theArgs, aFormat);
    vxAppendFormatted(theText, aFormat, theArgs);
    va_end(theArgs);
    if (!sHandler.Call(theText.c_str())) {
        fwrite(theText.data(), 1, theText.size(), stdout);
        fflush(stdout);
    }
}
