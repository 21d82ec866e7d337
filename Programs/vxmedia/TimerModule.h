#pragma once

#include "CommandModule.h"
#include "TimerApplet.h"

namespace vxmedia {

/// The commands of the module "timer": after, every, list, cancel.
class TimerModule : public CommandModule {
public:
    TimerModule(Console& aConsole, TimerApplet& aTimerApplet);

    bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) override;

private:
    bool Start(const vxRef<vxCLICommand>& aCommand, bool afRepeats);
    bool Cancel(uint32_t anID);
    void List();

    TimerApplet& mTimerApplet;
};

}  // namespace vxmedia
