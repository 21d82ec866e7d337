// A walk with a stack of its own: directories may be nested as deep as the system allows.
//
// Entries are visited in the order of their names, the files of a directory before those of the
// directories in it, so numbers are given in the same order on every machine.

#include "ScanApplet.h"

#include <libvxOS/Dir.h>

#include <algorithm>

#include "FileSource.h"
#include "FileStatus.h"
#include "TerminalText.h"

namespace vxmedia {

namespace {

constexpr int kScan_EntriesPerStep = 64;

vxCString WithoutEndSlashes(const vxCString& aPath) {
    size_t theLength = aPath.length();
    while (theLength > 1 && aPath.c_str()[theLength - 1] == '/') {
        --theLength;
    }
    return aPath.Left(theLength);
}

vxCString JoinPath(const vxCString& aDirectory, const char* aName) {
    return aDirectory.Last() == '/' ? aDirectory + aName : aDirectory + "/" + aName;
}

// Lists the paths of all entries, in reverse order. Returns false when the directory is unreadable.
bool ListDirectory(const vxCString& aPath, bool afHidden, std::vector<vxCString>& aPaths) {
    int theStatus = kvxDirTraverserStatus_NoError;
    const int theFilter = afHidden ? vxDIR_DEFAULT : vxDIR_DEFAULT & ~vxDIR_HIDDEN;
    vxDirTraverser* theWalk = vxDirTraverser_New(aPath);
    for (const vxDirEntry* theEntry = vxDirTraverser_GetFirst(theWalk, "*", theFilter, &theStatus);
         theEntry != NULL; theEntry = vxDirTraverser_GetNext(theWalk, &theStatus)) {
        aPaths.push_back(JoinPath(aPath, theEntry->mName));
    }
    vxDirTraverser_Delete(theWalk);
    std::sort(aPaths.rbegin(), aPaths.rend(), PathLess());
    return theStatus == kvxDirTraverserStatus_NoError;
}

bool CanListDirectory(const vxCString& aPath) {
    int theStatus = kvxDirTraverserStatus_NoError;
    vxDirTraverser* theWalk = vxDirTraverser_New(aPath);
    vxDirTraverser_GetFirst(theWalk, "*", vxDIR_DEFAULT, &theStatus);
    vxDirTraverser_Delete(theWalk);
    return theStatus == kvxDirTraverserStatus_NoError;
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
    if (mJobs.empty()) {
        mActivity.IncrementModuleActivity(kActivity);
    }
    mJobs.push_back(Job{theRoot, afQuiet});
    AppletWakeUp();
    return vxCString();
}

vxAppletMsg ScanApplet::AppletLoop(vxAppletMsg) {
    if (mJobs.empty()) {
        return vxAppletMsg_None;
    }
    if (!mfBegun) {
        BeginJob();
    }
    for (int i = 0; i < kScan_EntriesPerStep; ++i) {
        if (!mEntries.empty()) {
            const vxCString thePath = mEntries.back();
            mEntries.pop_back();
            LookAtEntry(thePath);
        } else if (!mDirectory.IsEmpty()) {
            CloseDirectory();
        } else if (!mPending.empty()) {
            OpenDirectory();
        } else {
            EndJob();
            break;
        }
    }
    return mJobs.empty() ? vxAppletMsg_None : vxAppletMsg_LoopAgain;
}

void ScanApplet::BeginJob() {
    mfBegun = true;
    mOptions = mNextOptions;
    mFirstRefusals.clear();
    mMediaCount = mOtherCount = mRefusalCount = mDirectoryCount = 0;
    mLibrary.BeginScan();
    const vxCString& theRoot = mJobs.front().mRoot;
    mRoots.assign(1, theRoot);
    const FileStatus theStatus = GetFileStatus(theRoot, true);
    if (theStatus.mKind == FileKind::Directory) {
        mPending.push_back(theRoot);
    } else {
        LookAtFile(theRoot, theStatus);
    }
}

void ScanApplet::EndJob() {
    for (const vxCString& theRoot : mRoots) {
        mLibrary.EndScan(theRoot);
    }
    if (!mJobs.front().mfQuiet) {
        mConsole.Print(GetReport());
    }
    mJobs.pop_front();
    mfBegun = false;
    if (mJobs.empty()) {
        mActivity.DecrementModuleActivity(kActivity);
        mDone();
    }
}

void ScanApplet::OpenDirectory() {
    const vxCString thePath = mPending.back();
    mPending.pop_back();
    const FileStatus theStatus = GetFileStatus(thePath, true);
    if (theStatus.mKind != FileKind::Directory) {
        Refuse(thePath, "the directory has gone");
        return;
    }
    const vxCString theDirectory = KnownPath(thePath, theStatus.mIdentity);
    if (!mLibrary.AddDirectory(theDirectory, theStatus.mIdentity)) {
        return;
    }
    mDirectory = theDirectory;
    mCounts = DirectoryCounts();
    mDirectoryCount += 1;
    if (!ListDirectory(mDirectory, mOptions.mfHidden, mEntries)) {
        Refuse(mDirectory, "the directory cannot be read");
    }
}

void ScanApplet::CloseDirectory() {
    mLibrary.AddCounts(mDirectory, mCounts);
    mPending.insert(mPending.end(), mFound.rbegin(), mFound.rend());
    mFound.clear();
    mDirectory.Empty();
}

// Returns the path that the library has for the directory, as long as it still leads there.
vxCString ScanApplet::KnownPath(const vxCString& aPath, const FileIdentity& anIdentity) {
    vxCString theKnown = mLibrary.FindDirectory(anIdentity);
    if (theKnown.IsEmpty() || theKnown == aPath ||
        !(GetFileStatus(theKnown, true).mIdentity == anIdentity)) {
        return aPath;
    }
    mRoots.push_back(theKnown);
    return theKnown;
}

void ScanApplet::LookAtEntry(const vxCString& aPath) {
    const FileStatus theStatus = GetFileStatus(aPath, false);
    switch (theStatus.mKind) {
        case FileKind::Directory:
            mFound.push_back(aPath);
            break;
        case FileKind::Regular:
            LookAtFile(aPath, theStatus);
            break;
        case FileKind::Link:
            mCounts.mLinks += 1;
            break;
        case FileKind::Special:
            mCounts.mSpecialFiles += 1;
            break;
        case FileKind::Missing:
            Refuse(aPath, "the entry cannot be examined");
            break;
    }
}

void ScanApplet::LookAtFile(const vxCString& aPath, const FileStatus& aStatus) {
    if (mOptions.mSkippedEndings.Match(aPath)) {
        CountOther();
        return;
    }
    FileSource theSource(aPath, aStatus.mSize);
    const MediaReading theReading = mProbes.Read(theSource, aPath);
    if (theReading.IsMedia()) {
        mLibrary.AddItem(aPath, aStatus, theReading);
        mMediaCount += 1;
    } else if (theReading.IsRefused()) {
        Refuse(aPath, theReading.mReason);
    } else if (theSource.HasFailed()) {
        Refuse(aPath, "the file cannot be read");
    } else if (mOptions.mExpectedEndings.Match(aPath)) {
        Refuse(aPath, "the content is of no known format");
    } else {
        CountOther();
    }
}

void ScanApplet::CountOther() {
    mCounts.mOtherFiles += 1;
    mOtherCount += 1;
}

void ScanApplet::Refuse(const vxCString& aPath, const char* aReason) {
    mLibrary.AddRefusal(aPath, aReason);
    mRefusalCount += 1;
    if (mFirstRefusals.size() < mOptions.mShownRefusals) {
        mFirstRefusals.push_back(Refusal{aPath, aReason});
    }
}

vxCString ScanApplet::GetReport() const {
    vxCString theReport =
        vxCString("Scanned ") + EscapeForTerminal(mJobs.front().mRoot, EscapeMode::Name) +
        vxCString::Format(": media %llu, others %llu, refused %llu, directories %llu\n",
                          static_cast<unsigned long long>(mMediaCount),
                          static_cast<unsigned long long>(mOtherCount),
                          static_cast<unsigned long long>(mRefusalCount),
                          static_cast<unsigned long long>(mDirectoryCount));
    for (const Refusal& theRefusal : mFirstRefusals) {
        theReport += "  refused ";
        theReport += EscapeForTerminal(theRefusal.mPath, EscapeMode::Name);
        theReport += ": ";
        theReport += theRefusal.mReason;
        theReport += "\n";
    }
    if (mRefusalCount > mFirstRefusals.size()) {
        theReport += vxCString::Format(
            "  and %llu more; 'lib stats' counts the reasons\n",
            static_cast<unsigned long long>(mRefusalCount - mFirstRefusals.size()));
    }
    return theReport;
}

}  // namespace vxmedia
