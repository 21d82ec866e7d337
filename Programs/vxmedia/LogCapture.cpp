// The handler finds its capture by the thread that logs. It needs no context, which another thread
// could still use when the capture is gone.

#include "LogCapture.h"

#include <libvxLog/Handlers.h>

namespace vxmedia {

namespace {

thread_local LogCapture* tCapture = nullptr;

}  // namespace

LogCapture::LogCapture(int aLevel) : mLevel(aLevel) {
    tCapture = this;
    vxLog_SetHandler(Receive, NULL);
}

LogCapture::~LogCapture() {
    vxLog_SetHandler(NULL, NULL);
    tCapture = nullptr;
}

std::vector<vxCString> LogCapture::GetErrors() const {
    std::vector<vxCString> theErrors;
    for (const Record& theRecord : mRecords) {
        if (theRecord.mLevel <= VXLOGLEVEL_ERROR) {
            theErrors.push_back(vxCString("ERROR: ") + theRecord.mText);
        }
    }
    return theErrors;
}

vxCString LogCapture::GetError(const vxCString& aDefault) const {
    return mRecords.empty() ? aDefault : vxCString("ERROR: ") + mRecords.front().mText;
}

void LogCapture::Receive(void*, int aLevel, vxLogModule aModule, const char* aFile, int aLine,
                         const char* aText) {
    if (tCapture != nullptr && aLevel <= tCapture->mLevel) {
        vxCString theText = aText;
        theText.Trim(true);
        tCapture->mRecords.push_back({aLevel, theText});
        return;
    }
    // A report from inside a handler goes to where records go without one.
    _vxLog_Begin(aLevel, aModule, aFile, aLine);
    vxLog_Append_F("%s", aText);
    vxLog_End();
}

}  // namespace vxmedia
