#pragma once

#include <deque>
#include <functional>
#include <memory>

#include "Console.h"
#include "MediaLibrary.h"
#include "ScanOptions.h"
#include "ScanRun.h"
#include "WorkerPool.h"
#include "probes/MediaProbes.h"
#include "vx/ActivityManager.h"
#include "vx/Applet.h"

namespace vxmedia {

/// Scans directories into the library, one after the other, with the threads of the pool.
///
/// Threads:  one at a time.
class ScanApplet : public vxApplet {
public:
    /// Activity is counted under this name while a scan goes on.
    static constexpr const char* kActivity = "library";

    ScanApplet(MediaLibrary& aLibrary, MediaProbes& aProbes, WorkerPool& aWorkers,
               Console& aConsole, vxActivityManager& anActivity)
        : mLibrary(aLibrary),
          mProbes(aProbes),
          mWorkers(aWorkers),
          mConsole(aConsole),
          mActivity(anActivity) {}

    /// Calls `aCallback` at the end of each scan, and when the last job of a scan that was stopped
    /// has come to its end.
    void SetDoneCallback(std::function<void()> aCallback) { mDone = std::move(aCallback); }

    /// Sets how scans that are begun from now on work.
    void SetOptions(const ScanOptions& anOptions) { mNextOptions = anOptions; }

    /// Starts to scan a directory, or one file, behind the scans already asked for; a report is
    /// printed at its end, unless `afQuiet`.
    ///
    /// Fails:    with an error text that is empty on success; nothing is scanned then.
    vxCString Scan(const vxCString& aPath, bool afQuiet);

    /// Stops the scan under way, drops those that wait behind it, and prints what it had found. What
    /// is in the library stays there. Returns false when there is none.
    bool Stop();

    /// Gives up all scans without a word: the program ends.
    void GiveUp();

    /// Returns how far the scan under way is, in a line; empty when there is none.
    vxCString GetProgress() const;

    /// Returns whether a scan goes on or waits, or jobs of one that was stopped are under way.
    bool IsScanning() const { return !mRequests.empty() || mStopped != nullptr; }

    vxAppletMsg AppletLoop(vxAppletMsg aMsg) override;

private:
    struct Request {
        vxCString mRoot;
        bool mfQuiet;
    };

    void BeginNext();
    void EndFirst();
    void Cancel();
    vxCString GetReport(const char* aVerb) const;

    MediaLibrary& mLibrary;
    MediaProbes& mProbes;
    WorkerPool& mWorkers;
    Console& mConsole;
    vxActivityManager& mActivity;
    std::function<void()> mDone;

    ScanOptions mNextOptions;
    std::deque<Request> mRequests;      // the first one is under way when there is a run
    std::unique_ptr<ScanRun> mRun;      // null: none has begun
    std::unique_ptr<ScanRun> mStopped;  // until its last job comes back
};

}  // namespace vxmedia
