#pragma once

#include "CommandModule.h"
#include "MediaLibrary.h"
#include "ScanApplet.h"
#include "config/Settings.h"
#include "library/ItemCommands.h"

namespace vxmedia {

/// The commands of the module "library": scan, stop, progress, list, find, first, show, stats, and
/// those of ItemCommands.
class LibraryModule : public CommandModule {
public:
    LibraryModule(Console& aConsole, ConsoleApplet& aConsoleApplet, MediaLibrary& aLibrary,
                  ScanApplet& aScanApplet, const MediaProbes& aProbes, DetailsCache& aDetails,
                  const Settings& aSettings);

    bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) override;
    bool IsImmediate(const vxRef<vxCLICommand>& aCommand) const override {
        return aCommand->CommandIs("progress") || aCommand->CommandIs("stop");
    }

private:
    bool Scan(const vxCString& aTypedPath);
    void Stop();
    void ShowProgress();
    void List(uint32_t aLimit);
    bool Show(uint32_t anID);
    void ShowStats();

    MediaLibrary& mLibrary;
    ScanApplet& mScanApplet;
    const MediaProbes& mProbes;
    const Settings& mSettings;
    ItemCommands mItemCommands;
};

}  // namespace vxmedia
