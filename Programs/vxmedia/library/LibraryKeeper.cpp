#include "library/LibraryKeeper.h"

#include "library/LibraryFile.h"

namespace vxmedia {

LibraryKeeper::LibraryKeeper(MediaLibrary& aLibrary, MediaProbes& aProbes, Console& aConsole)
    : mLibrary(aLibrary), mProbes(aProbes), mConsole(aConsole) {
    mLibrary.SetChangeCallback([this] { LibraryHasChanged(); });
}

void LibraryKeeper::SetPath(const vxCString& aPath) {
    if (mPath != aPath) {
        mPath = aPath;
        LibraryHasChanged();
    }
}

void LibraryKeeper::LibraryHasChanged() {
    mfChanged = true;
    if (!mPath.IsEmpty()) {
        TimeoutStart(&mRest, mDelayMS);
    }
}

vxCString LibraryKeeper::Load() {
    if (mPath.IsEmpty()) {
        return vxCString();
    }
    vxCString theError;
    const LoadResult theResult = LoadLibrary(mLibrary, mProbes, mPath, theError);
    if (theResult == LoadResult::Unreadable) {
        mUnreadablePath = mPath;
    }
    mfChanged = false;
    TimeoutCancel(&mRest);
    if (theResult == LoadResult::Damaged) {
        LibraryHasChanged();  // the file has more than the library
    }
    return theError;
}

vxCString LibraryKeeper::Save() {
    TimeoutCancel(&mRest);
    if (!mfChanged || mPath.IsEmpty() || mPath == mUnreadablePath) {
        return vxCString();
    }
    vxCString theError = SaveLibrary(mLibrary, mPath);
    mfChanged = !theError.IsEmpty();
    return theError;
}

vxAppletMsg LibraryKeeper::AppletLoop(vxAppletMsg) {
    HandleExpiredTimeouts();
    return vxAppletMsg_None;
}

void LibraryKeeper::OnTimeouts() {
    const vxCString theError = Save();
    if (!theError.IsEmpty()) {
        mConsole.PrintError(theError);
    }
}

}  // namespace vxmedia
