// The tasks of a scan stand in a list, in the order in which the library takes them. When a listing
// comes, the tasks of its files and then those of its directories are put behind its own; what stands
// finished at the front goes into the library. Workers may be ahead of the front by a window of the
// list, which bounds the memory, and have a few jobs each in the queue, so that other jobs need not
// wait for long.

#include "ScanRun.h"

#include <algorithm>
#include <cstring>

#include "vx/Error.h"

namespace vxmedia {

namespace {

constexpr size_t kScan_FilesPerTask = 64;
constexpr size_t kScan_Window = 512;        // tasks from the front that may be handed out
constexpr size_t kScan_JobsPerThread = 16;  // that wait or are under way
constexpr int kScan_CommitsPerStep = 4;
constexpr int kScan_HandOutsPerStep = 16;

enum { kScanError_Unreadable = 1 };

vxCString JoinPath(const vxCString& aDirectory, const char* aName) {
    if (aDirectory.IsEmpty()) {
        return aName;
    }
    return aDirectory.Last() == '/' ? aDirectory + aName : aDirectory + "/" + aName;
}

// Why a directory could not be read, with what failed below.
vxCString UnreadableDetail(const DirectoryListing& aListing) {
    vxError theError;
    if (aListing.mSystemError != 0) {
        theError.Set("system", aListing.mSystemError, strerror(aListing.mSystemError));
    }
    theError.ConvertTo(kScanError_Unreadable, vxCString::Format("tried %d times", aListing.mTries),
                       "scan");
    return theError.ToString();
}

}  // namespace

ScanRun::ScanRun(MediaLibrary& aLibrary, MediaProbes& aProbes, WorkerPool& aWorkers,
                 const ScanOptions& anOptions, const vxCString& aRoot,
                 std::function<void()> aWakeUp)
    : mLibrary(aLibrary),
      mProbes(aProbes),
      mWorkers(aWorkers),
      mContext(std::make_shared<ScanContext>(aProbes, anOptions, this)),
      mRoot(aRoot),
      mWakeUp(std::move(aWakeUp)) {}

void ScanRun::Begin() {
    mLibrary.BeginScan();
    mRoots.assign(1, mRoot);
    const auto theDirectory = std::make_shared<Directory>();
    const FileStatus theStatus = GetFileStatus(mRoot, true);
    if (theStatus.mKind == FileKind::Directory) {
        theDirectory->mPath = mRoot;
        mTasks.push_back(Task{theDirectory, false});
        return;
    }
    if (mContext->mOptions.mSkippedEndings.Match(mRoot)) {
        mCounts.mFiles = mCounts.mOthers = 1;
        return;
    }
    theDirectory->mListing.mFiles.push_back(ScanFile{mRoot.c_str(), theStatus});
    mTasks.push_back(Task{theDirectory, true, 0, 1});
}

bool ScanRun::Step() {
    const bool theCommitsMore = CommitTasks();
    const bool theHandsOutMore = HandOutTasks();
    return theCommitsMore || theHandsOutMore;
}

void ScanRun::End() {
    for (const vxCString& theRoot : mRoots) {
        mLibrary.EndScan(theRoot);
    }
}

void ScanRun::Cancel() {
    mContext->mfCancelled = true;
    mJobCount -= mWorkers.Discard(this);
    mTasks.clear();
}

// Returns whether more stand at the front.
bool ScanRun::CommitTasks() {
    for (int i = 0; i < kScan_CommitsPerStep; ++i) {
        if (mTasks.empty() || mTasks.front().mState != TaskState::Done) {
            return false;
        }
        Commit(mTasks.front());
        mTasks.pop_front();
    }
    return true;
}

void ScanRun::Commit(Task& aTask) {
    Directory& theDirectory = *aTask.mDirectory;
    if (!aTask.mfReads) {
        theDirectory.mfDropped = !CommitDirectory(theDirectory);
    } else if (!theDirectory.mfDropped) {
        CommitFiles(aTask);
    }
}

// Returns false when nothing in it is to count.
bool ScanRun::CommitDirectory(Directory& aDirectory) {
    if (aDirectory.mParent != nullptr && aDirectory.mParent->mfDropped) {
        return false;
    }
    const DirectoryListing& theListing = aDirectory.mListing;
    if (theListing.mStatus.mKind != FileKind::Directory) {
        Refuse(aDirectory.mPath, "the directory has gone", "");
        return false;
    }
    if (!mLibrary.AddDirectory(aDirectory.mPath, theListing.mStatus.mIdentity)) {
        return false;
    }
    if (aDirectory.mfRenamed) {
        mRoots.push_back(aDirectory.mPath);
    }
    mLibrary.AddCounts(aDirectory.mPath, theListing.mCounts);
    mCounts.mDirectories += 1;
    mCounts.mFiles += theListing.mCounts.mOtherFiles;
    mCounts.mOthers += theListing.mCounts.mOtherFiles;
    if (theListing.mfUnreadable) {
        Refuse(aDirectory.mPath, "the directory cannot be read", UnreadableDetail(theListing));
    }
    return true;
}

void ScanRun::CommitFiles(Task& aTask) {
    Directory& theDirectory = *aTask.mDirectory;
    std::vector<ScanFile>& theFiles = theDirectory.mListing.mFiles;
    DirectoryCounts theOthers;
    for (size_t i = aTask.mFirst; i < aTask.mEnd; ++i) {
        const vxCString thePath = JoinPath(theDirectory.mPath, theFiles[i].mName.c_str());
        theOthers.mOtherFiles += CommitFile(thePath, aTask.mOutcomes[i - aTask.mFirst]) ? 0 : 1;
    }
    mCounts.mFiles += aTask.mEnd - aTask.mFirst;
    mCounts.mOthers += theOthers.mOtherFiles;
    if (!theDirectory.mPath.IsEmpty()) {
        mLibrary.AddCounts(theDirectory.mPath, theOthers);
    }
    if (aTask.mEnd == theFiles.size()) {
        std::vector<ScanFile>().swap(theFiles);  // the directories below keep this one alive
    }
}

// Returns whether the library knows the file now; else it is no media file.
bool ScanRun::CommitFile(const vxCString& aPath, const FileOutcome& anOutcome) {
    if (anOutcome.mRefusal != NULL) {
        Refuse(aPath, anOutcome.mRefusal, "");
        return true;
    }
    if (anOutcome.mKnownID != 0) {
        mCounts.mMedia += mLibrary.KeepItem(anOutcome.mKnownID) ? 1 : 0;
        return true;
    }
    if (!anOutcome.mReading.IsMedia()) {
        return false;
    }
    mLibrary.AddItem(aPath, anOutcome.mStatus, anOutcome.mReading);
    mCounts.mMedia += 1;
    return true;
}

// Hands out the first tasks that wait. Returns whether more could be handed out at once.
bool ScanRun::HandOutTasks() {
    if (!MayHandOut()) {
        return false;
    }
    const size_t theMaxJobs = kScan_JobsPerThread * mWorkers.GetThreadCount();
    size_t thePlace = 0;
    int theCount = 0;
    for (auto i = mTasks.begin(); i != mTasks.end() && thePlace < kScan_Window; ++i, ++thePlace) {
        if (i->mState != TaskState::Waiting) {
            continue;
        }
        if (mJobCount >= theMaxJobs) {
            break;
        }
        if (theCount == kScan_HandOutsPerStep) {
            return true;
        }
        HandOut(i);
        ++theCount;
    }
    return !mTasks.empty() && mTasks.front().mState == TaskState::Done;
}

// The list is not walked for every single result.
bool ScanRun::MayHandOut() const {
    return !mTasks.empty() && (mJobCount <= kScan_JobsPerThread * mWorkers.GetThreadCount() / 2 ||
                               mTasks.front().mState == TaskState::Waiting);
}

void ScanRun::HandOut(TaskList::iterator aTask) {
    aTask->mState = TaskState::UnderWay;
    if (aTask->mDirectory->mfDropped) {
        aTask->mState = TaskState::Done;
    } else if (aTask->mfReads) {
        HandOutFiles(aTask);
    } else {
        HandOutDirectory(aTask);
    }
}

void ScanRun::HandOutDirectory(TaskList::iterator aTask) {
    const bool theIsRoot = aTask->mDirectory->mParent == nullptr;
    AddJob(new DirectoryJob(
        mContext, aTask->mDirectory->mPath, theIsRoot,
        [this, aTask](DirectoryListing& aListing) { TakeListing(aTask, aListing); }));
}

void ScanRun::HandOutFiles(TaskList::iterator aTask) {
    const Directory& theDirectory = *aTask->mDirectory;
    const bool theIsAlone = theDirectory.mPath.IsEmpty();
    auto theJob = std::make_unique<FilesJob>(
        mContext, theIsAlone,
        [this, aTask](std::vector<FilesJob::File>& aFiles) { TakeOutcomes(aTask, aFiles); });
    for (size_t i = aTask->mFirst; i < aTask->mEnd; ++i) {
        const ScanFile& theFile = theDirectory.mListing.mFiles[i];
        const vxCString thePath = JoinPath(theDirectory.mPath, theFile.mName.c_str());
        aTask->mOutcomes.push_back(LookUp(thePath, theFile.mStatus));
        const FileOutcome& theOutcome = aTask->mOutcomes.back();
        if (theOutcome.mKnownID == 0 && theOutcome.mRefusal == NULL) {
            theJob->Add(thePath, i - aTask->mFirst);
        }
    }
    if (theJob->IsEmpty()) {
        aTask->mState = TaskState::Done;
    } else {
        AddJob(theJob.release());
    }
}

// Returns what is known about a file before it is read.
FileOutcome ScanRun::LookUp(const vxCString& aPath, const FileStatus& aStatus) const {
    FileOutcome theOutcome;
    if (aStatus.mKind == FileKind::Missing) {
        theOutcome.mRefusal = "the entry cannot be examined";
        return theOutcome;
    }
    const MediaItem* theItem = mLibrary.FindItemByPath(aPath);
    if (theItem != NULL && theItem->IsUnchanged(aStatus) && mProbes.Has(theItem->GetFormat())) {
        theOutcome.mKnownID = theItem->GetID();
    }
    return theOutcome;
}

void ScanRun::AddJob(Job* aJob) {
    if (mWorkers.Add(aJob)) {
        mJobCount += 1;
    } else {
        mfFailed = true;
    }
}

void ScanRun::TakeListing(TaskList::iterator aTask, DirectoryListing& aListing) {
    mJobCount -= 1;
    mWakeUp();
    if (mContext->mfCancelled) {
        return;
    }
    Directory& theDirectory = *aTask->mDirectory;
    theDirectory.mListing = std::move(aListing);
    aTask->mState = TaskState::Done;
    if (theDirectory.mListing.mStatus.mKind != FileKind::Directory) {
        return;
    }
    const vxCString theKnown =
        KnownPath(theDirectory.mPath, theDirectory.mListing.mStatus.mIdentity);
    theDirectory.mfRenamed = theKnown != theDirectory.mPath;
    theDirectory.mPath = theKnown;
    AddTasksBehind(aTask);
}

void ScanRun::TakeOutcomes(TaskList::iterator aTask, std::vector<FilesJob::File>& aFiles) {
    mJobCount -= 1;
    mWakeUp();
    if (mContext->mfCancelled) {
        return;
    }
    for (FilesJob::File& theFile : aFiles) {
        aTask->mOutcomes[theFile.mIndex] = std::move(theFile.mOutcome);
    }
    aTask->mState = TaskState::Done;
}

void ScanRun::AddTasksBehind(TaskList::iterator aTask) {
    const DirectoryRef& theDirectory = aTask->mDirectory;
    DirectoryListing& theListing = theDirectory->mListing;
    const auto theNext = std::next(aTask);
    for (size_t i = 0; i < theListing.mFiles.size(); i += kScan_FilesPerTask) {
        const size_t theEnd = std::min(i + kScan_FilesPerTask, theListing.mFiles.size());
        mTasks.insert(theNext, Task{theDirectory, true, i, theEnd});
    }
    for (const std::string& theName : theListing.mDirectories) {
        const auto theChild = std::make_shared<Directory>();
        theChild->mParent = theDirectory;
        theChild->mPath = JoinPath(theDirectory->mPath, theName.c_str());
        mTasks.insert(theNext, Task{theChild, false});
    }
    std::vector<std::string>().swap(theListing.mDirectories);
}

// Returns the path that the library has for the directory, as long as it still leads there.
vxCString ScanRun::KnownPath(const vxCString& aPath, const FileIdentity& anIdentity) const {
    const vxCString theKnown = mLibrary.FindDirectory(anIdentity);
    const bool theIsOther = !theKnown.IsEmpty() && theKnown != aPath &&
                            GetFileStatus(theKnown, true).mIdentity == anIdentity;
    return theIsOther ? theKnown : aPath;
}

// The library counts reasons; the detail is for the report alone.
void ScanRun::Refuse(const vxCString& aPath, const char* aReason, const vxCString& aDetail) {
    mLibrary.AddRefusal(aPath, aReason);
    mCounts.mRefused += 1;
    if (mFirstRefusals.size() < mContext->mOptions.mShownRefusals) {
        mFirstRefusals.push_back(ScanRefusal{aPath, aReason + aDetail});
    }
}

}  // namespace vxmedia
