#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "Console.h"
#include "MediaLibrary.h"
#include "ScanOptions.h"
#include "probes/MediaProbes.h"
#include "vx/ActivityManager.h"
#include "vx/Applet.h"

namespace vxmedia {

/// Scans directories into the library, a few files in each step, so that timers keep firing.
///
/// Symbolic links below the directory that was named are counted and not followed: what they lead
/// to is either scanned under its own name, or was not asked for. A directory that the library knows
/// by another path is scanned under that one, and only once in a scan.
///
/// Threads:  one at a time.
class ScanApplet : public vxApplet {
public:
    /// Activity is counted under this name while a scan goes on.
    static constexpr const char* kActivity = "library";

    ScanApplet(MediaLibrary& aLibrary, MediaProbes& aProbes, Console& aConsole,
               vxActivityManager& anActivity)
        : mLibrary(aLibrary), mProbes(aProbes), mConsole(aConsole), mActivity(anActivity) {}

    /// Calls `aCallback` at the end of the last scan.
    void SetDoneCallback(std::function<void()> aCallback) { mDone = std::move(aCallback); }

    /// Sets how scans that are begun from now on work.
    void SetOptions(const ScanOptions& anOptions) { mNextOptions = anOptions; }

    /// Starts to scan a directory, or one file, behind the scans already asked for; a report is
    /// printed at its end, unless `afQuiet`.
    ///
    /// Fails:    with an error text that is empty on success; nothing is scanned then.
    vxCString Scan(const vxCString& aPath, bool afQuiet);

    bool IsScanning() const { return !mJobs.empty(); }

    vxAppletMsg AppletLoop(vxAppletMsg aMsg) override;

private:
    struct Job {
        vxCString mRoot;
        bool mfQuiet;
    };
    struct Refusal {
        vxCString mPath;
        const char* mReason;
    };

    void BeginJob();
    void EndJob();
    void OpenDirectory();
    void CloseDirectory();
    vxCString KnownPath(const vxCString& aPath, const FileIdentity& anIdentity);
    void LookAtEntry(const vxCString& aPath);
    void LookAtFile(const vxCString& aPath, const FileStatus& aStatus);
    void CountOther();
    void Refuse(const vxCString& aPath, const char* aReason);
    vxCString GetReport() const;

    MediaLibrary& mLibrary;
    MediaProbes& mProbes;
    Console& mConsole;
    vxActivityManager& mActivity;
    std::function<void()> mDone;

    std::deque<Job> mJobs;  // the first one is under way
    bool mfBegun = false;   // whether it is

    ScanOptions mNextOptions;

    // State of the job under way.
    ScanOptions mOptions;
    std::vector<vxCString> mPending;      // directories to come, the next one last
    std::vector<vxCString> mEntries;      // paths in the directory under way, the next one last
    vxCString mDirectory;                 // the directory under way, "" at first
    DirectoryCounts mCounts;              // of the directory under way
    std::vector<vxCString> mRoots;        // what the end of the scan cleans up
    std::vector<vxCString> mFound;        // directories in it, in order
    std::vector<Refusal> mFirstRefusals;  // those that the report shows
    uint64_t mMediaCount = 0;
    uint64_t mOtherCount = 0;
    uint64_t mRefusalCount = 0;
    uint64_t mDirectoryCount = 0;
};

}  // namespace vxmedia
