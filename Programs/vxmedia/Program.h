#pragma once

#include <string>
#include <vector>

#include "Console.h"
#include "ConsoleApplet.h"
#include "Interpreter.h"
#include "MediaLibrary.h"
#include "ScanApplet.h"
#include "TimerApplet.h"
#include "WorkerPool.h"
#include "cache/CoverStore.h"
#include "cache/DetailsCache.h"
#include "config/Settings.h"
#include "library/LibraryKeeper.h"
#include "probes/MediaProbes.h"
#include "vx/ActivityManager.h"
#include "vx/Applet.h"
#include "vx/Select.h"

namespace vxmedia {

/// What the program was asked to do.
struct ProgramOptions {
    bool mfQuiet = false;     // no banner, no reports of the first scans
    bool mfHasLines = false;  // mLines holds what is executed, instead of standard input
    std::string mLines;       // command lines, each ended by a line feed
    bool mfHasConfigDirectory = false;
    vxCString mConfigDirectory;           // as the arguments name it
    std::vector<vxCString> mDirectories;  // scanned at the start
};

/// The whole program: the root of the tree of applets, and everything that they work on.
///
///     Program ─┬─ ConsoleApplet   lines in, answers out
///              ├─ ScanApplet      files into the library
///              ├─ WorkerPool      results of worker threads
///              └─ TimerApplet     lines whose time has come
///
/// The root sleeps in select: until standard input can be read, the earliest time-out of the tree is
/// over, or an applet is woken up.
///
/// Threads:  Run() belongs to one; any other may call AppletWakeUp() meanwhile.
class Program : public vxApplet {
public:
    /// The settings are those of this start, opened before.
    Program(const ProgramOptions& anOptions, Settings& aSettings);

    /// Tells that something before the start has failed; the program runs all the same.
    void NoteFailure(const vxCString& anError);

    /// Runs until the input ends or somebody asks to exit. Returns the exit status.
    int Run();

    vxAppletMsg AppletLoop(vxAppletMsg aMsg) override;
    void RaiseWakeUpSignal() override;
    void WaitWakeUpSignal(unsigned int aMSTimeout) override;

private:
    void AddModules();
    void TakeSettings();
    void AddApplets();
    void Start();
    void LoadPlugins();
    void LoadLibrary();
    vxCString GetLibraryPath() const;
    void RequestExit();

    const ProgramOptions mOptions;
    Settings& mSettings;
    vxSelect mSelect;  // above the applets: their ends may still signal
    bool mfExit = false;
    bool mfHasWaited = false;  // since the last step, and looked at standard input
    vxActivityManager mActivity;
    MediaProbes mProbes;  // above the library: formats of its files lie there
    MediaLibrary mLibrary;
    CoverStore mCovers;
    WorkerPool mWorkers;  // below what its jobs use
    DetailsCache mDetails;
    Console mConsole;
    LibraryKeeper mKeeper;
    Interpreter mInterpreter;
    ScanApplet mScanApplet;
    TimerApplet mTimerApplet;
    ConsoleApplet mConsoleApplet;
};

}  // namespace vxmedia
