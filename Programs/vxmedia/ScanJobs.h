#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "FileStatus.h"
#include "MediaLibrary.h"
#include "ScanOptions.h"
#include "WorkerPool.h"
#include "probes/MediaProbes.h"

namespace vxmedia {

/// What all jobs of one scan share.
///
/// Threads:  any: nothing changes but mfCancelled.
struct ScanContext {
    ScanContext(MediaProbes& aProbes, const ScanOptions& anOptions, const void* anOwner)
        : mProbes(aProbes), mOptions(anOptions), mOwner(anOwner) {}

    MediaProbes& mProbes;
    const ScanOptions mOptions;
    const void* const mOwner;              // of the jobs
    std::atomic<bool> mfCancelled{false};  // nobody wants the results any more
};
using ScanContextRef = std::shared_ptr<ScanContext>;

/// A file that lies in a directory.
struct ScanFile {
    std::string mName;  // the whole path for a file that is scanned alone
    FileStatus mStatus;
};

/// What a directory holds; names are sorted byte by byte.
struct DirectoryListing {
    FileStatus mStatus;                     // of the directory; Missing: it has gone
    int mTries = 0;                         // to read it
    bool mfUnreadable = false;              // the last of them has failed: something may be missing
    int mSystemError = 0;                   // why, as the system has it; 0 when that is not known
    std::vector<ScanFile> mFiles;           // also what cannot be examined, as Missing
    std::vector<std::string> mDirectories;  // links to directories are not among them
    DirectoryCounts mCounts;                // of what is in neither list
};

/// Lists a directory.
///
/// One that cannot be read is tried again after a while: a medium may have been pulled out and come
/// back, or a server may be busy.
class DirectoryJob : public Job {
public:
    static constexpr int kMaxTries = 3;
    static constexpr unsigned int kRetryDelayMS = 250;

    /// `afFollow` tells whether the path may be a symbolic link to a directory.
    DirectoryJob(const ScanContextRef& aContext, const char* aPath, bool afFollow,
                 std::function<void(DirectoryListing&)> aDone)
        : mContext(aContext), mPath(aPath), mfFollow(afFollow), mDone(std::move(aDone)) {}

    unsigned int Run() override;
    void Finish() override { mDone(mListing); }
    const char* GetTitle() const override { return "listing a directory"; }
    const void* GetOwner() const override { return mContext->mOwner; }

private:
    FileStatus Status() const { return GetFileStatus(mPath.c_str(), mfFollow); }
    void ListEntries();
    bool ReadNames(std::vector<std::string>& aNames) const;
    void AddEntry(const std::string& aName);

    const ScanContextRef mContext;
    const std::string mPath;
    const bool mfFollow;
    const std::function<void(DirectoryListing&)> mDone;
    DirectoryListing mListing;
};

/// What a scan has found out about one file; with nothing set it is no media file.
struct FileOutcome {
    uint32_t mKnownID = 0;  // of the item of the library, if it has not changed; else 0
    FileStatus mStatus;
    MediaReading mReading;
    const char* mRefusal = NULL;  // the reason; it stays as long as the probes
};

/// Reads the headers of some files.
class FilesJob : public Job {
public:
    struct File {
        std::string mPath;
        size_t mIndex;  // whatever the caller makes of it
        FileOutcome mOutcome;
    };

    FilesJob(const ScanContextRef& aContext, bool afFollow,
             std::function<void(std::vector<File>&)> aDone)
        : mContext(aContext), mfFollow(afFollow), mDone(std::move(aDone)) {}

    /// Adds a file to be read.
    void Add(const char* aPath, size_t anIndex) {
        mFiles.push_back(File{aPath, anIndex, FileOutcome()});
    }

    bool IsEmpty() const { return mFiles.empty(); }

    unsigned int Run() override;
    void Finish() override { mDone(mFiles); }
    const char* GetTitle() const override { return "reading headers"; }
    const void* GetOwner() const override { return mContext->mOwner; }

private:
    void Read(const char* aPath, FileOutcome& anOutcome) const;

    const ScanContextRef mContext;
    const bool mfFollow;
    const std::function<void(std::vector<File>&)> mDone;
    std::vector<File> mFiles;
};

}  // namespace vxmedia
