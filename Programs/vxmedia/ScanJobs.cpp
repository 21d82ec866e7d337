// Everything here runs in the worker threads. Time passes between the listing of a directory and the
// reading of its files, so what a path names is looked at again before it is opened: a file may have
// become a pipe, which would keep a worker for ever.

#include "ScanJobs.h"

#include <libvxOS/Dir.h>

#include <algorithm>

#include "FileSource.h"

namespace vxmedia {

unsigned int DirectoryJob::Run() {
    const int theTries = mListing.mTries + 1;
    mListing = DirectoryListing();
    mListing.mTries = theTries;
    ListEntries();
    const bool theTriesAgain =
        mListing.mfUnreadable && theTries < kMaxTries && !mContext->mfCancelled;
    return theTriesAgain ? kRetryDelayMS : 0;
}

void DirectoryJob::ListEntries() {
    std::vector<std::string> theNames;
    mListing.mStatus = Status();
    if (mListing.mStatus.mKind == FileKind::Directory && !ReadNames(theNames)) {
        mListing.mSystemError = GetDirectoryError(mPath.c_str());
        mListing.mStatus = Status();  // it may have gone just now
        mListing.mfUnreadable = mListing.mStatus.mKind == FileKind::Directory;
    }
    if (mListing.mStatus.mKind != FileKind::Directory) {
        mListing.mStatus = FileStatus();
        return;
    }
    std::sort(theNames.begin(), theNames.end());
    for (const std::string& theName : theNames) {
        if (mContext->mfCancelled) {
            return;
        }
        AddEntry(theName);
    }
}

// Returns false when the directory cannot be read, or not to its end.
bool DirectoryJob::ReadNames(std::vector<std::string>& aNames) const {
    int theStatus = kvxDirTraverserStatus_NoError;
    const int theFilter =
        mContext->mOptions.mfHidden ? vxDIR_DEFAULT : vxDIR_DEFAULT & ~vxDIR_HIDDEN;
    vxDirTraverser* theWalk = vxDirTraverser_New(mPath.c_str());
    for (const vxDirEntry* theEntry = vxDirTraverser_GetFirst(theWalk, "*", theFilter, &theStatus);
         theEntry != NULL; theEntry = vxDirTraverser_GetNext(theWalk, &theStatus)) {
        aNames.emplace_back(theEntry->mName);
    }
    vxDirTraverser_Delete(theWalk);
    return theStatus == kvxDirTraverserStatus_NoError;
}

void DirectoryJob::AddEntry(const std::string& aName) {
    const std::string thePath = mPath.back() == '/' ? mPath + aName : mPath + "/" + aName;
    const FileStatus theStatus = GetFileStatus(thePath.c_str(), false);
    switch (theStatus.mKind) {
        case FileKind::Directory:
            mListing.mDirectories.push_back(aName);
            break;
        case FileKind::Link:
            mListing.mCounts.mLinks += 1;
            break;
        case FileKind::Special:
            mListing.mCounts.mSpecialFiles += 1;
            break;
        case FileKind::Regular:
        case FileKind::Missing:
            if (theStatus.mKind == FileKind::Regular &&
                mContext->mOptions.mSkippedEndings.Match(aName.c_str())) {
                mListing.mCounts.mOtherFiles += 1;
            } else {
                mListing.mFiles.push_back(ScanFile{aName, theStatus});
            }
            break;
    }
}

unsigned int FilesJob::Run() {
    for (File& theFile : mFiles) {
        if (mContext->mfCancelled) {
            break;
        }
        Read(theFile.mPath.c_str(), theFile.mOutcome);
    }
    return 0;
}

void FilesJob::Read(const char* aPath, FileOutcome& anOutcome) const {
    anOutcome.mStatus = GetFileStatus(aPath, mfFollow);
    if (anOutcome.mStatus.mKind != FileKind::Regular) {
        anOutcome.mRefusal = anOutcome.mStatus.mKind == FileKind::Missing
                                 ? "the file has gone"
                                 : "the file has become something else";
        return;
    }
    FileSource theSource(aPath, anOutcome.mStatus.mSize);
    anOutcome.mReading = mContext->mProbes.Read(theSource, aPath);
    const MediaReading& theReading = anOutcome.mReading;
    if (theReading.IsMedia()) {
        return;
    }
    if (theReading.IsRefused()) {
        anOutcome.mRefusal = theReading.mReason;
    } else if (theSource.HasFailed()) {
        anOutcome.mRefusal = "the file cannot be read";
    } else if (mContext->mOptions.mExpectedEndings.Match(aPath)) {
        anOutcome.mRefusal = "the content is of no known format";
    }
}

}  // namespace vxmedia
