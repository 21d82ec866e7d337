#include "Program.h"

#include <unistd.h>

#include "LibraryModule.h"
#include "StopSignals.h"
#include "SysModule.h"
#include "TimerModule.h"
#include "cache/CacheModule.h"
#include "config/ConfigModule.h"
#include "config/ConfigPlace.h"
#include "export/ExportModule.h"
#include "probes/PluginModule.h"
#include "vx/Config.h"

namespace vxmedia {

namespace {

constexpr unsigned int kProgram_NoTimeout = 0xFFFFFFFF;

}  // namespace

Program::Program(const ProgramOptions& anOptions, Settings& aSettings)
    : mOptions(anOptions),
      mSettings(aSettings),
      mDetails(mWorkers),
      mConsole(!anOptions.mfHasLines && isatty(STDIN_FILENO) != 0),
      mKeeper(mLibrary, mProbes, mConsole),
      mInterpreter(mConsole),
      mScanApplet(mLibrary, mProbes, mWorkers, mConsole, mActivity),
      mTimerApplet(mActivity),
      mConsoleApplet(mConsole, mInterpreter, mScanApplet) {
    AddModules();
    AddApplets();
    mSettings.SetChangeCallback([this] { TakeSettings(); });
    TakeSettings();
}

void Program::AddModules() {
    mInterpreter.AddModule(new LibraryModule(mConsole, mConsoleApplet, mLibrary, mScanApplet,
                                             mProbes, mDetails, mSettings));
    mInterpreter.AddModule(new TimerModule(mConsole, mTimerApplet));
    mInterpreter.AddModule(new SysModule(mConsole, mLibrary, mActivity, mWorkers));
    mInterpreter.AddModule(new ConfigModule(mConsole, mSettings));
    mInterpreter.AddModule(new ExportModule(mConsole, mLibrary, mSettings));
    mInterpreter.AddModule(new PluginModule(mConsole, mProbes, mScanApplet));
    mInterpreter.AddModule(new CacheModule(mConsole, mConsoleApplet, mLibrary, mCovers, mDetails,
                                           mWorkers, mSettings));
    mInterpreter.SetExitCallback([this] { RequestExit(); });
}

void Program::AddApplets() {
    AppletSetOptions(vxAppletOption_Multithreaded);
    AppletAttach(&mConsoleApplet, vxAppletOption_None);
    AppletAttach(&mScanApplet, vxAppletOption_None);
    AppletAttach(&mWorkers, vxAppletOption_None);
    AppletAttach(&mTimerApplet, vxAppletOption_None);
    AppletAttach(&mKeeper, vxAppletOption_None);
    mConsoleApplet.SetEndCallback([this] { RequestExit(); });
    mScanApplet.SetDoneCallback([this] { mConsoleApplet.AppletWakeUp(); });
    mTimerApplet.SetExecutor([this](const vxCString& aLine) {
        mInterpreter.Execute(aLine);
        mConsoleApplet.AppletWakeUp();  // the prompt may have to be shown again
    });
}

// What a component uses again and again is handed to it; everything else is asked for when it is used.
void Program::TakeSettings() {
    mConsole.SetPrompt(mSettings.GetText("prompt"));
    ScanOptions theOptions;
    theOptions.mfHidden = mSettings.IsOn("hidden");
    theOptions.mSkippedEndings = NameEndings(mSettings.GetList("skip"));
    theOptions.mExpectedEndings = NameEndings(mSettings.GetList("expect"));
    theOptions.mShownRefusals = mSettings.GetNumber("refusals");
    mScanApplet.SetOptions(theOptions);
    mWorkers.SetThreadCount(mSettings.GetNumber("threads"));
    mCovers.SetPlace(CoverPlace{mSettings.GetDirectory("cache-path").c_str(),
                                mSettings.GetNumber("cache-limit")});
    mKeeper.SetPath(GetLibraryPath());
    mKeeper.SetDelay(mSettings.GetNumber("save-after"));
    mDetails.SetLimits(size_t{mSettings.GetNumber("info-kbytes")} << 10,
                       mSettings.GetNumber("info-files"));
    mProbes.SetDirectory(mSettings.GetDirectory("plugin-path"));
}

void Program::NoteFailure(const vxCString& anError) {
    mConsole.PrintError(anError);
    mConsoleApplet.NoteFailure();
}

int Program::Run() {
    if (mSelect.Setup() != 0) {
        mConsole.PrintError("ERROR: Unable to set up the wait for input");
        return 1;
    }
    const StopSignals theSignals(mSelect);
    Start();
    while (!StopSignals::HasCome() && AppletRun(vxAppletMsg_None) != vxAppletMsg_Exit) {
        SelfWait();
    }
    mScanApplet.GiveUp();
    mWorkers.Stop();
    mConsole.Finish();
    const vxCString theError = mKeeper.Save();
    if (!theError.IsEmpty()) {
        NoteFailure(theError);
    }
    const bool theHasFailed = mOptions.mfHasLines && mConsoleApplet.HasFailed();
    return theHasFailed || mConsole.HasLostText() ? 1 : 0;
}

void Program::Start() {
    if (!mOptions.mfQuiet && mSettings.IsOn("banner")) {
        mConsole.PrintLine("vxmedia " VXMEDIA_VERSION
                           ", the media library console. Type 'help' for the modules.");
    }
    LoadPlugins();
    LoadLibrary();
    for (const vxCString& theDirectory : mOptions.mDirectories) {
        const vxCString theError = mScanApplet.Scan(theDirectory, mOptions.mfQuiet);
        if (!theError.IsEmpty()) {
            NoteFailure(theError);
        }
    }
    if (mOptions.mfHasLines) {
        mConsoleApplet.AddLines(mOptions.mLines);
        mConsoleApplet.EndLines();
    }
    mConsoleApplet.AppletWakeUp();
}

void Program::LoadPlugins() {
    const vxCString thePattern = mSettings.GetText("plugins");
    if (thePattern.IsEmpty()) {
        return;
    }
    for (const vxCString& theError : mProbes.Load(thePattern)) {
        NoteFailure(theError);
    }
}

// Only who names a configuration directory has the library kept. A name without a directory is that
// of a file beside the changes of the configuration.
vxCString Program::GetLibraryPath() const {
    if (!mOptions.mfHasConfigDirectory || mSettings.GetDirectory().IsEmpty()) {
        return vxCString();
    }
    const vxCString theName = mSettings.GetText("library-file");
    const bool theIsBare = !theName.IsEmpty() && !theName.Contains("/");
    return theIsBare ? vxConfig::GetValidPath(FindWritableDirectory(), theName, "") : theName;
}

void Program::LoadLibrary() {
    const vxCString theError = mKeeper.Load();
    if (!theError.IsEmpty()) {
        NoteFailure(theError);
    }
}

void Program::RequestExit() {
    mfExit = true;
    AppletWakeUp();
}

// As long as applets are awake nobody waits, and so nobody looks at standard input, where somebody may
// ask how far the scan is: look at it in each step.
vxAppletMsg Program::AppletLoop(vxAppletMsg) {
    if (!mfHasWaited && mConsoleApplet.WantsInput()) {
        WaitWakeUpSignal(0);
    }
    mfHasWaited = false;
    return mfExit ? vxAppletMsg_Exit : vxAppletMsg_None;
}

void Program::RaiseWakeUpSignal() {
    mSelect.Signal();
}

void Program::WaitWakeUpSignal(unsigned int aMSTimeout) {
    mfHasWaited = true;
    const bool theWantsInput = mConsoleApplet.WantsInput();
    fd_set theInput;
    FD_ZERO(&theInput);
    if (theWantsInput) {
        FD_SET(STDIN_FILENO, &theInput);
    }
    timeval theTimeout;
    theTimeout.tv_sec = static_cast<time_t>(aMSTimeout / 1000);
    theTimeout.tv_usec = static_cast<suseconds_t>(aMSTimeout % 1000 * 1000);
    const int theResult =
        mSelect.Select(&theInput, NULL, NULL, STDIN_FILENO + 1,
                       aMSTimeout == kProgram_NoTimeout ? NULL : &theTimeout, NULL);
    // A failure can only come from standard input, if that is closed: reading it tells.
    if (theWantsInput && (theResult < 0 || FD_ISSET(STDIN_FILENO, &theInput))) {
        mConsoleApplet.InputIsReadable();
    }
}

}  // namespace vxmedia
