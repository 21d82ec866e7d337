#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <vector>

#include "MediaLibrary.h"
#include "ScanJobs.h"
#include "WorkerPool.h"

namespace vxmedia {

/// What a scan has found so far.
struct ScanCounts {
    uint64_t mDirectories = 0;
    uint64_t mFiles = 0;  // media, others and refused files
    uint64_t mMedia = 0;
    uint64_t mOthers = 0;
    uint64_t mRefused = 0;  // files and directories
};

/// A file or directory that was refused, for the report.
struct ScanRefusal {
    vxCString mPath;
    vxCString mReason;
};

/// One scan: gives directories and files to the workers, and puts into the library what they find.
///
/// Everything goes into the library in one order, that of the names, the files of a directory before
/// those of the directories in it; so numbers do not depend on the threads or on their number.
///
/// Symbolic links below the root are counted and not followed: what they lead to is either scanned
/// under its own name, or was not asked for. A directory that the library knows by another path is
/// scanned under that one, and only once in a scan. A file that the library has and that has not
/// changed is not read again.
///
/// Owner:    a run must outlive its jobs: see HasJobs().
/// Threads:  one at a time, the main loop's.
class ScanRun {
public:
    /// `aWakeUp` is called when results have come.
    ScanRun(MediaLibrary& aLibrary, MediaProbes& aProbes, WorkerPool& aWorkers,
            const ScanOptions& anOptions, const vxCString& aRoot, std::function<void()> aWakeUp);
    ScanRun(const ScanRun&) = delete;
    ScanRun& operator=(const ScanRun&) = delete;

    const vxCString& GetRoot() const { return mRoot; }

    /// Begins.
    void Begin();

    /// Does a few milliseconds of work at most. Returns whether there is more to do at once.
    bool Step();

    /// Returns whether everything is in the library.
    bool IsOver() const { return mTasks.empty(); }

    /// Forgets what was not found again; once it is over.
    void End();

    /// Gives up what is not in the library yet; nothing is forgotten.
    void Cancel();

    /// Returns whether jobs of this run wait or are under way.
    bool HasJobs() const { return mJobCount != 0; }

    /// Returns whether there is no thread to do the jobs: it will never be over.
    bool HasFailed() const { return mfFailed; }

    const ScanCounts& GetCounts() const { return mCounts; }

    /// Returns the number of tasks known and not yet in the library.
    size_t GetTaskCount() const { return mTasks.size(); }

    /// Returns the first refusals, as many as the options say.
    const std::vector<ScanRefusal>& GetFirstRefusals() const { return mFirstRefusals; }

private:
    // A directory; all tasks in it share it.
    struct Directory {
        std::shared_ptr<Directory> mParent;  // null for the root
        vxCString mPath;                     // empty for a file that is scanned alone
        bool mfRenamed = false;  // the library knows it by this path, not by that of the scan
        bool mfDropped = false;  // nothing in it counts: it has gone, or was scanned already
        DirectoryListing mListing;
    };
    using DirectoryRef = std::shared_ptr<Directory>;

    //  Waiting --HandOut--> UnderWay --result comes--> Done --Commit--> dropped
    //  Waiting --HandOut, nothing to read--> Done
    enum class TaskState { Waiting, UnderWay, Done };

    // To list a directory, or to read some of its files.
    struct Task {
        DirectoryRef mDirectory;
        bool mfReads;       // files
        size_t mFirst = 0;  // of mDirectory->mListing.mFiles
        size_t mEnd = 0;
        TaskState mState = TaskState::Waiting;
        std::vector<FileOutcome> mOutcomes{};  // of the files, in order
    };
    using TaskList = std::list<Task>;

    bool CommitTasks();
    void Commit(Task& aTask);
    bool CommitDirectory(Directory& aDirectory);
    void CommitFiles(Task& aTask);
    bool CommitFile(const vxCString& aPath, const FileOutcome& anOutcome);

    bool HandOutTasks();
    bool MayHandOut() const;
    void HandOut(TaskList::iterator aTask);
    void HandOutDirectory(TaskList::iterator aTask);
    void HandOutFiles(TaskList::iterator aTask);
    FileOutcome LookUp(const vxCString& aPath, const FileStatus& aStatus) const;
    void AddJob(Job* aJob);

    void TakeListing(TaskList::iterator aTask, DirectoryListing& aListing);
    void TakeOutcomes(TaskList::iterator aTask, std::vector<FilesJob::File>& aFiles);
    void AddTasksBehind(TaskList::iterator aTask);
    vxCString KnownPath(const vxCString& aPath, const FileIdentity& anIdentity) const;

    void Refuse(const vxCString& aPath, const char* aReason, const vxCString& aDetail);

    MediaLibrary& mLibrary;
    MediaProbes& mProbes;
    WorkerPool& mWorkers;
    const ScanContextRef mContext;
    const vxCString mRoot;
    const std::function<void()> mWakeUp;

    TaskList mTasks;       // in the order in which the library takes them
    size_t mJobCount = 0;  // jobs that have not come back
    bool mfFailed = false;
    std::vector<vxCString> mRoots;  // what the end of the scan cleans up
    ScanCounts mCounts;
    std::vector<ScanRefusal> mFirstRefusals;
};

}  // namespace vxmedia
