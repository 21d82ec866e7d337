// vxmedia, the media library console: reads the headers of media files and answers about them.

#include <fcntl.h>
#include <libvxLog/Handlers.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "Arguments.h"
#include "InstanceCheck.h"
#include "Program.h"
#include "StopSignals.h"

namespace {

constexpr int kMain_AnotherRuns = 2;  // exit status

// A standard descriptor that is closed would be taken by the next thing that is opened, which would
// then be read as if it were the input.
void OpenStandardDescriptors() {
    int theFD;
    do {
        theFD = open("/dev/null", O_RDWR | O_CLOEXEC);
    } while (theFD >= 0 && theFD <= STDERR_FILENO);
    close(theFD);
}

// What goes wrong with a file, a text or an argument is answered on the console. The library's own
// records of it would come twice; whoever wants them asks for them in the environment.
void KeepLogQuiet() {
    constexpr vxLogModule kModules[] = {VXLOG_M_FILE, VXLOG_M_FILECACHE, VXLOG_M_JSON,
                                        VXLOG_M_DEFAULT};
    for (const vxLogModule theModule : kModules) {
        vxLog_SetLevel(theModule, VXLOGLEVEL_NONE);
    }
}

vxmedia::ArgumentResult ReadArgumentsQuietly(int anArgumentCount, char** anArguments,
                                             vxmedia::ProgramOptions& anOptions) {
    const int theLevel = vxLog_GetLevel(VXLOG_M_DEFAULT);
    if (getenv("VXLOG") == NULL) {
        KeepLogQuiet();
    }
    const vxmedia::ArgumentResult theResult =
        vxmedia::ReadArguments(anArgumentCount, anArguments, anOptions);
    // References that are watched are logged here.
    vxLog_SetLevel(VXLOG_M_DEFAULT, theLevel);
    return theResult;
}

// A write beyond the size that the process may use is an error to be told, not the end.
void SurviveFileSizeLimit() {
    signal(SIGXFSZ, SIG_IGN);
}

int RunProgram(const vxmedia::ProgramOptions& anOptions) {
    vxmedia::Settings theSettings;
    const vxCString theError =
        theSettings.Open(anOptions.mfHasConfigDirectory ? &anOptions.mConfigDirectory : NULL);
    const vxmedia::InstanceCheck theCheck(theSettings.GetDirectory());
    if (!theCheck.GetError().IsEmpty()) {
        vxmedia::Console(false).PrintError(theCheck.GetError());
        return kMain_AnotherRuns;
    }
    vxmedia::Program theProgram(anOptions, theSettings);
    if (!theError.IsEmpty()) {
        theProgram.NoteFailure(theError);
    }
    return theProgram.Run();
}

}  // namespace

int main(int anArgumentCount, char** anArguments) {
    OpenStandardDescriptors();
    SurviveFileSizeLimit();
    vxmedia::ProgramOptions theOptions;
    switch (ReadArgumentsQuietly(anArgumentCount, anArguments, theOptions)) {
        case vxmedia::ArgumentResult::Help:
            return 0;
        case vxmedia::ArgumentResult::Error:
            return 1;
        case vxmedia::ArgumentResult::Run:
            break;
    }
    const int theStatus = RunProgram(theOptions);
    vxmedia::StopSignals::EndBySignal();
    return theStatus;
}
