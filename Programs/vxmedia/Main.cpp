// vxmedia, the media library console: reads the headers of media files and answers about them.

#include <libvxLog/Handlers.h>

#include <cstdlib>

#include "Arguments.h"
#include "Program.h"

namespace {

// What goes wrong with a file or a text is answered on the console. The library's own records of it
// would come twice; whoever wants them asks for them in the environment.
void KeepLogQuiet() {
    if (getenv("VXLOG") == NULL) {
        vxLog_SetLevel(VXLOG_M_FILE, VXLOGLEVEL_NONE);
        vxLog_SetLevel(VXLOG_M_JSON, VXLOGLEVEL_NONE);
    }
}

}  // namespace

int main(int anArgumentCount, char** anArguments) {
    KeepLogQuiet();
    vxmedia::ProgramOptions theOptions;
    switch (vxmedia::ReadArguments(anArgumentCount, anArguments, theOptions)) {
        case vxmedia::ArgumentResult::Help:
            return 0;
        case vxmedia::ArgumentResult::Error:
            return 1;
        case vxmedia::ArgumentResult::Run:
            break;
    }
    return vxmedia::Program(theOptions).Run();
}
