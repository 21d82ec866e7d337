#pragma once

#include <libvxLog/Log.h>
#include <libvxOS/Chrono.h>

#include "vx/Api.h"
#include "vx/CString.h"

class vxFile;

/// Measures how long a stretch of work lasts and tells it on the console, in the log and in a file.
///
/// The file lies in the directory of writable configurations and keeps every run: a line with the
/// title, a line with the duration, an empty line.
///
///     {
///         vxBenchMark theBenchMark(VXLOG_M_DEFAULT, "scan.txt", "Scanning /music");
///         Scan("/music");
///     }   // Duration: 12.345 seconds
///
/// A file that cannot be written is logged and left out; console and log still tell.
///
///     idle --Start--> running --Start--> running, the first title without a duration
///       ^                |
///       `--Stop----------'
///
/// Threads:  one at a time.
class VX_EXPORT vxBenchMark {
public:
    /// Starts at once; `aFileName` has no directory.
    vxBenchMark(vxLogModule aLogModule, const char* aFileName, const char* aTitle);

    /// Waits for Start().
    vxBenchMark(vxLogModule aLogModule, const char* aFileName);

    /// As Stop().
    ~vxBenchMark() { Stop(); }
    vxBenchMark(const vxBenchMark&) = delete;
    vxBenchMark& operator=(const vxBenchMark&) = delete;

    /// Tells the title and starts the stopwatch, anew when it runs.
    ///
    /// Nothing happens unless `afEnabled`, so that a setting can switch the measurement off where it is
    /// called; one that runs goes on then.
    void Start(const char* aTitle, bool afEnabled);

    /// Tells the duration and closes the file; nothing when idle.
    void Stop();

private:
    void OpenFile();
    void WriteLine(const char* aText, const char* anEnd);

    vxFile* mFile;           // owned; null when idle, closed when it cannot be written
    vxCString mFileName;     // without directory
    vxChrono mChrono;        // runs while mFile is there
    vxLogModule mLogModule;  // of the lines in the log
};
