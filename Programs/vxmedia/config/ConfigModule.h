#pragma once

#include "CommandModule.h"
#include "config/Settings.h"

namespace vxmedia {

/// The commands of the module "config": get, set, secret, dump, save, paths, brand.
class ConfigModule : public CommandModule {
public:
    ConfigModule(Console& aConsole, Settings& aSettings);

    bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) override;

private:
    bool Get(const vxCString& anOption);
    bool Set(const vxCString& anOption, const vxCString& aTypedValue);
    void Dump();
    bool Save();
    void ShowPaths();
    bool ShowBrand(const vxCString& aKey);

    Settings& mSettings;
};

}  // namespace vxmedia
