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

vxCString LogCapture::GetError(const vxCString& aDefault) const {
    return mTexts.empty() ? aDefault : vxCString("ERROR: ") + mTexts.front();
}

void LogCapture::Receive(void*, int aLevel, vxLogModule aModule, const char* aFile, int aLine,
                         const char* aText) {
    if (tCapture != nullptr && aLevel <= tCapture->mLevel) {
        vxCString theText = aText;
        theText.Trim(true);
        tCapture->mTexts.push_back(theText);
        return;
    }
    // A report from inside a handler goes to where records go without one.
    _vxLog_Begin(aLevel, aModule, aFile, aLine);
    vxLog_Append_F("%s", aText);
    vxLog_End();
}

}  // namespace vxmedia
