#include "ScanApplet.h"

#include <libvxOS/Dir.h>

#include "ItemFacts.h"
#include "TerminalText.h"

namespace vxmedia {

namespace {

vxCString WithoutEndSlashes(const vxCString& aPath) {
    size_t theLength = aPath.length();
    while (theLength > 1 && aPath.c_str()[theLength - 1] == '/') {
        --theLength;
    }
    return aPath.Left(theLength);
}

bool CanListDirectory(const vxCString& aPath) {
    int theStatus = kvxDirTraverserStatus_NoError;
    vxDirTraverser* theWalk = vxDirTraverser_New(aPath);
    vxDirTraverser_GetFirst(theWalk, "*", vxDIR_DEFAULT, &theStatus);
    vxDirTraverser_Delete(theWalk);
    return theStatus == kvxDirTraverserStatus_NoError;
}

vxCString Shown(const vxCString& aPath) {
    return EscapeForTerminal(aPath, EscapeMode::Name);
}

}  // namespace

vxCString ScanApplet::Scan(const vxCString& aPath, bool afQuiet) {
    const vxCString theRoot = WithoutEndSlashes(aPath);
    const FileKind theKind = GetFileStatus(theRoot, true).mKind;
    if (theKind == FileKind::Missing) {
        return vxCString("ERROR: There is no file or directory '") + theRoot + "'";
    }
    if (theKind == FileKind::Special) {
        return vxCString("ERROR: Neither a file nor a directory: '") + theRoot + "'";
    }
    if (theKind == FileKind::Directory && !CanListDirectory(theRoot)) {
        return vxCString("ERROR: Unable to read the directory '") + theRoot + "'";
    }
    if (mRequests.empty()) {
        mActivity.IncrementModuleActivity(kActivity);
    }
    mRequests.push_back(Request{theRoot, afQuiet});
    AppletWakeUp();
    return vxCString();
}

bool ScanApplet::Stop() {
    if (mRequests.empty()) {
        return false;
    }
    if (mRun == nullptr) {
        mConsole.PrintLine(vxCString("Not begun: ") + Shown(mRequests.front().mRoot));
    } else {
        mConsole.Print(GetReport("Stopped"));
    }
    Cancel();
    return true;
}

void ScanApplet::GiveUp() {
    if (mRun != nullptr) {
        mRun->Cancel();
    }
}

vxCString ScanApplet::GetProgress() const {
    if (mRequests.empty()) {
        return vxCString();
    }
    const ScanCounts theCounts = mRun == nullptr ? ScanCounts() : mRun->GetCounts();
    return vxCString("Scanning ") + Shown(mRequests.front().mRoot) + ": directories " +
           NumberText(theCounts.mDirectories) + ", files " + NumberText(theCounts.mFiles) +
           ", media " + NumberText(theCounts.mMedia) + ", refused " +
           NumberText(theCounts.mRefused) + ", tasks waiting " +
           NumberText(mRun == nullptr ? 1 : mRun->GetTaskCount());
}

vxAppletMsg ScanApplet::AppletLoop(vxAppletMsg) {
    if (mStopped != nullptr) {
        if (mStopped->HasJobs()) {
            return vxAppletMsg_None;
        }
        mStopped.reset();
        mDone();
    }
    if (mRequests.empty()) {
        return vxAppletMsg_None;
    }
    if (mRun == nullptr) {
        BeginNext();
    }
    const bool theHasMore = mRun->Step();
    if (mRun->HasFailed()) {
        mConsole.PrintError("ERROR: No thread can be started to scan");
        Cancel();
    } else if (mRun->IsOver()) {
        EndFirst();
    } else {
        return theHasMore ? vxAppletMsg_LoopAgain : vxAppletMsg_None;
    }
    return IsScanning() ? vxAppletMsg_LoopAgain : vxAppletMsg_None;
}

void ScanApplet::BeginNext() {
    mRun = std::make_unique<ScanRun>(mLibrary, mProbes, mWorkers, mNextOptions,
                                     mRequests.front().mRoot, [this] { AppletWakeUp(); });
    mRun->Begin();
}

void ScanApplet::EndFirst() {
    mRun->End();
    if (!mRequests.front().mfQuiet) {
        mConsole.Print(GetReport("Scanned"));
    }
    mRun.reset();
    mRequests.pop_front();
    if (mRequests.empty()) {
        mActivity.DecrementModuleActivity(kActivity);
    }
    mDone();
}

void ScanApplet::Cancel() {
    if (mRun != nullptr) {
        mRun->Cancel();
        mStopped = std::move(mRun);
    }
    mRequests.clear();
    mActivity.DecrementModuleActivity(kActivity);
    AppletWakeUp();
    mDone();
}

vxCString ScanApplet::GetReport(const char* aVerb) const {
    const ScanCounts& theCounts = mRun->GetCounts();
    vxCString theReport =
        vxCString(aVerb) + " " + Shown(mRequests.front().mRoot) +
        vxCString::Format(": media %llu, others %llu, refused %llu, directories %llu\n",
                          static_cast<unsigned long long>(theCounts.mMedia),
                          static_cast<unsigned long long>(theCounts.mOthers),
                          static_cast<unsigned long long>(theCounts.mRefused),
                          static_cast<unsigned long long>(theCounts.mDirectories));
    for (const ScanRefusal& theRefusal : mRun->GetFirstRefusals()) {
        theReport += "  refused ";
        theReport += Shown(theRefusal.mPath);
        theReport += ": ";
        theReport += theRefusal.mReason;
        theReport += "\n";
    }
    const uint64_t theShown = mRun->GetFirstRefusals().size();
    if (theCounts.mRefused > theShown) {
        theReport +=
            vxCString::Format("  and %llu more; 'lib stats' counts the reasons\n",
                              static_cast<unsigned long long>(theCounts.mRefused - theShown));
    }
    return theReport;
}

}  // namespace vxmedia
