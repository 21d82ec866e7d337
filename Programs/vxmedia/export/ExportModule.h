#pragma once

#include "CommandModule.h"
#include "MediaLibrary.h"
#include "config/Settings.h"

namespace vxmedia {

/// The commands of the module "export": json, mpack, xml, xjson, diff.
class ExportModule : public CommandModule {
public:
    ExportModule(Console& aConsole, const MediaLibrary& aLibrary, const Settings& aSettings);

    bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) override;

private:
    bool ExportJSON(const vxCString& aPath, bool afPretty);
    bool ExportMPack(const vxCString& aPath);
    bool ExportXML(const vxCString& aPath);
    bool Write(const vxCString& aPath, const void* aBytes, size_t aSize);
    bool ConvertXML(const vxCString& aPath);
    bool Compare(const vxCString& anOldPath, const vxCString& aNewPath, const vxCString& aPaths);

    const MediaLibrary& mLibrary;
    const Settings& mSettings;
};

}  // namespace vxmedia
