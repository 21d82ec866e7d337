#include "TimerModule.h"

#include "TerminalText.h"
#include "TextTable.h"

namespace vxmedia {

TimerModule::TimerModule(Console& aConsole, TimerApplet& aTimerApplet)
    : CommandModule("timer", aConsole), mTimerApplet(aTimerApplet) {
    Declare("after", "ms:ui32[0,86400000] command:...", "execute a command line after a time");
    Declare("every", "ms:ui32[100,86400000] command:...", "execute a command line again and again");
    Declare("list", "", "list the timers that wait");
    Declare("cancel", "id:ui32[1,4294967295]", "take a timer away");
}

bool TimerModule::HandleCLICommand(const vxRef<vxCLICommand>& aCommand) {
    if (aCommand->CommandIs("cancel")) {
        return Cancel(aCommand->Parameter(0)->GetUInt32());
    }
    if (aCommand->CommandIs("list")) {
        List();
        return true;
    }
    return Start(aCommand, aCommand->CommandIs("every"));
}

bool TimerModule::Start(const vxRef<vxCLICommand>& aCommand, bool afRepeats) {
    const uint32_t theDelay = aCommand->Parameter(0)->GetUInt32();
    const vxCString theCommand = aCommand->Parameter(1)->GetString();
    if (theCommand.IsEmpty()) {
        return Answer("ERROR: Please specify the command line to execute");
    }
    const uint32_t theID = mTimerApplet.Start(theDelay, afRepeats, theCommand);
    if (theID == 0) {
        return Answer("ERROR: Too many timers wait already");
    }
    mConsole.PrintLine(
        vxCString::Format("Timer %u: %s %u ms", theID, afRepeats ? "every" : "after", theDelay));
    return true;
}

bool TimerModule::Cancel(uint32_t anID) {
    if (!mTimerApplet.Cancel(anID)) {
        return Answer(vxCString::Format("ERROR: There is no timer %u", anID));
    }
    mConsole.PrintLine(vxCString::Format("Timer %u cancelled", anID));
    return true;
}

void TimerModule::List() {
    TextTable theTable("rrrl");
    theTable.AddRow({"ID", "LEFT", "EVERY", "COMMAND"});
    for (const auto& theEntry : mTimerApplet.GetTimers()) {
        Timer& theTimer = *theEntry.second;
        theTable.AddRow(
            {vxCString::Format("%u", theTimer.mID), vxCString::Format("%u", theTimer.Remaining()),
             theTimer.mPeriodMS == 0 ? vxCString("-") : vxCString::Format("%u", theTimer.mPeriodMS),
             EscapeForTerminal(theTimer.mCommand, EscapeMode::Text)});
    }
    mConsole.Print(theTable.GetText());
}

}  // namespace vxmedia
