#pragma once

#include "CommandModule.h"
#include "ScanApplet.h"
#include "probes/MediaProbes.h"

namespace vxmedia {

/// The commands of the module "plugin": list, load, unload.
class PluginModule : public CommandModule {
public:
    PluginModule(Console& aConsole, MediaProbes& aProbes, const ScanApplet& aScanApplet);

    bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) override;

private:
    void List();
    bool Load(const vxCString& aPattern);
    bool Unload();

    MediaProbes& mProbes;
    const ScanApplet& mScanApplet;
};

}  // namespace vxmedia
