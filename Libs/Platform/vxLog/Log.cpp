// A record is built in a text of the calling thread and handed out whole when it ends, so that
// records of several threads never mix and a handler sees each exactly once.

#include <libvxLog/Handlers.h>
#include <libvxLog/Log.h>

#include "Format.h"
#include "Handler.h"

#include <cstdio>
#include <utility>

uint8_t _vxLogLevels[0x10000];

namespace {

struct vxLogRecord {
    bool mfOpen = false;
    int mLevel = 0;
    vxLogModule mModule = 0;
    const char* mFile = "";
    int mLine = 0;
    std::string mText;
};

thread_local vxLogRecord sRecord;

vxHandlerSlot<void (*)(void*, int, vxLogModule, const char*, int, const char*)> sHandler;

}  // namespace

void vxAppendFormatted(std::string& aText, const char* aFormat, va_list anArgs) {
    va_list theCopy;
    va_copy(theCopy, anArgs);
    const int theLength = vsnprintf(nullptr, 0, aFormat, theCopy);
    va_end(theCopy);
    if (theLength < 0) {
        return;
    }
    const size_t theStart = aText.size();
    const size_t theSize = static_cast<size_t>(theLength);
    aText.resize(theStart + theSize + 1);
    vsnprintf(&aText[theStart], theSize + 1, aFormat, anArgs);
    aText.resize(theStart + theSize);
}

void vxLog_SetHandler(void (*aHandler)(void*, int, vxLogModule, const char*, int, const char*),
                      void* aContext) {
    sHandler.Set(aHandler, aContext);
}

void vxLog_SetLevel(vxLogModule aModule, int aLevel) {
    const uint8_t theValue = static_cast<uint8_t>(aLevel ^ _VXLOG_INITIAL_LEVEL);
    if (aModule != kvxLogAllModules) {
        __atomic_store_n(&_vxLogLevels[aModule], theValue, __ATOMIC_RELAXED);
        return;
    }
    for (uint8_t& theLevel : _vxLogLevels) {
        __atomic_store_n(&theLevel, theValue, __ATOMIC_RELAXED);
    }
}

void _vxLog_Begin(int aLevel, vxLogModule aModule, const char* aFile, int aLine) {
    sRecord.mfOpen = true;
    sRecord.mLevel = aLevel;
    sRecord.mModule = aModule;
    sRecord.mFile = aFile;
    sRecord.mLine = aLine;
    sRecord.mText.clear();
}

void vxLog_Append_F(const char* aFormat, ...) {
    if (!sRecord.mfOpen) {
        return;
    }
    va_list theArgs;
    va_start(theArgs, aFormat);
    vxAppendFormatted(sRecord.mText, aFormat, theArgs);
    va_end(theArgs);
}

void vxLog_End(void) {
    if (!sRecord.mfOpen) {
        return;
    }
    // The record is taken out of the thread first: a handler may log itself.
    const vxLogRecord theRecord = std::exchange(sRecord, vxLogRecord());
    const auto theHandler = sHandler.Get();
    if (theHandler.mFunction != nullptr) {
        theHandler.mFunction(theHandler.mContext, theRecord.mLevel, theRecord.mModule,
                             theRecord.mFile, theRecord.mLine, theRecord.mText.c_str());
        return;
    }
    fprintf(stderr, "%s", theRecord.mText.c_str());
}
