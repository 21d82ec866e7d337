#include "Console.h"

#include <libvxLog/Console.h>

#include <cstdio>

#include "TerminalText.h"

namespace vxmedia {

void Console::Print(const vxCString& aText) {
    if (aText.IsEmpty()) {
        return;
    }
    Finish();
    vxConsole_Printf("%s", aText.c_str());
}

void Console::PrintError(const vxCString& anError) {
    PrintLine(EscapeForTerminal(anError, EscapeMode::Text));
}

void Console::ShowPrompt() {
    if (mfPrompts && !mfPromptShown) {
        vxConsole_Printf("%s", EscapeForTerminal(mPrompt, EscapeMode::Text).c_str());
        mfPromptShown = true;
    }
}

void Console::Finish() {
    if (mfPromptShown) {
        vxConsole_Printf("\n");
        mfPromptShown = false;
    }
}

bool Console::HasLostText() const {
    return ferror(stdout) != 0;
}

}  // namespace vxmedia
