// A record is built in memory of the calling thread and handed out whole when it ends, so that
// records of several threads never mix and a handler sees each exactly once.
//
// Open records form a stack: computing an argument of one record may log another. The stack is one
// plain pointer, so that threads can log to their very end, when thread-local objects are gone.

#include <libvxLog/Handlers.h>
#include <libvxLog/Log.h>

#include "Format.h"
#include "Handler.h"
#include "Sinks.h"

#include <memory>

namespace {

thread_local vxLogRecord* sRecord = nullptr;  // innermost open record, owned

vxHandlerSlot<int, vxLogModule, const char*, int, const char*> sHandler;

}  // namespace

void vxLog_SetHandler(void (*aHandler)(void*, int, vxLogModule, const char*, int, const char*),
                      void* aContext) {
    sHandler.Set(aHandler, aContext);
}

void _vxLog_Begin(int aLevel, vxLogModule aModule, const char* aFile, int aLine) {
    sRecord = new vxLogRecord{aLevel, aModule, aFile, aLine, std::string(), sRecord};
}

void vxLog_Append_F(const char* aFormat, ...) {
    if (sRecord == nullptr) {
        return;
    }
    va_list theArgs;
    va_start(theArgs, aFormat);
    vxAppendFormatted(sRecord->mText, aFormat, theArgs);
    va_end(theArgs);
}

void vxLog_End(void) {
    if (sRecord == nullptr) {
        return;
    }
    // The record is taken off first: a handler may log itself.
    const std::unique_ptr<vxLogRecord> theRecord(sRecord);
    sRecord = theRecord->mOuter;
    if (!sHandler.Call(theRecord->mLevel, theRecord->mModule, theRecord->mFile, theRecord->mLine,
                       theRecord->mText.c_str())) {
        vxWriteToSinks(*theRecord);
    }
}
