#include "Interpreter.h"

#include "TerminalText.h"

namespace vxmedia {

namespace {

// Errors about parameters only number them.
vxCString WithHint(const vxCString& anError) {
    return anError.Contains(". Type 'help") || !anError.Contains(" parameter")
               ? anError
               : anError + "; 'help MODULE' shows what the commands of a module take";
}

}  // namespace

Interpreter::Interpreter(Console& aConsole) : mConsole(aConsole), mManager(new vxCLIManager) {}

void Interpreter::AddModule(const vxRef<CommandModule>& aModule) {
    mManager->Add(aModule->GetCommandSet());
    mModules.push_back(aModule);
}

// Parsing a line that begins with `!` could change the active module before its time.
bool Interpreter::IsImmediate(const vxCString& aLine) const {
    vxCString theLine = aLine;
    theLine.TrimLeftRight();
    if (theLine.IsEmpty() || theLine.First() == '!') {
        return false;
    }
    const vxRef<vxCLICommand> theCommand = mManager->Parse(aLine);
    if (!theCommand->IsValid()) {
        return false;
    }
    const CommandModule* theModule = FindModule(theCommand);
    return theCommand->ModuleIs("help") ||
           (theModule != NULL && theModule->IsImmediate(theCommand));
}

bool Interpreter::Execute(const vxCString& aLine) {
    const vxRef<vxCLICommand> theCommand = mManager->Parse(aLine);
    if (!theCommand->IsValid()) {
        mConsole.PrintError(WithHint(theCommand->GetError()));
        return false;
    }
    if (theCommand->IsExit()) {
        mfExited = true;
        mExit();
        return true;
    }
    return theCommand->ModuleIs("help") ? Help(theCommand) : Dispatch(theCommand);
}

bool Interpreter::Help(const vxRef<vxCLICommand>& aCommand) {
    vxCString theText = EscapeForTerminal(mManager->GetHelp(aCommand), EscapeMode::Lines);
    // Only the error text has no line feed of its own.
    const bool theIsHelp = theText.Last() == '\n';
    mConsole.Print(theIsHelp ? theText : theText + "\n");
    return theIsHelp;
}

// An empty line and a change of the active module lead to no module: there is nothing left to do.
bool Interpreter::Dispatch(const vxRef<vxCLICommand>& aCommand) {
    CommandModule* theModule = FindModule(aCommand);
    return theModule == NULL || theModule->HandleCLICommand(aCommand);
}

CommandModule* Interpreter::FindModule(const vxRef<vxCLICommand>& aCommand) const {
    for (const vxRef<CommandModule>& theModule : mModules) {
        if (aCommand->GetCLICommandSet() == theModule->GetCommandSet()) {
            return theModule.Get();
        }
    }
    return NULL;
}

}  // namespace vxmedia
