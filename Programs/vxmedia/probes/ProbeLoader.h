#pragma once

#include "probes/ProbeHandler.h"
#include "vx/PluginLoader.h"

namespace vxmedia {

/// Loads probes from a directory, or registers those that are linked into the program.
class ProbeLoader : public vxPluginLoader {
public:
    /// Looks in this directory; an empty one stands for the platform's.
    explicit ProbeLoader(const vxCString& aDirectory) : mDirectory(aDirectory) {}

    vxCString GetPluginsPath() override;

    /// Registers all of them, whatever the pattern.
    int LoadPluginsStatic(const vxCString& aPattern, bool afStopAfterFirst,
                          bool afFailOnError) override;

    /// A file is loaded only once.
    bool IsPluginActive(const vxCString& aFileName) override;

    vxPluginHandler* NewPluginHandler() override { return new ProbeHandler; }

    /// Returns a probe, in the order of loading; null beyond the last.
    const ProbeHandler* GetProbe(unsigned int anIndex) const {
        return static_cast<const ProbeHandler*>(GetPlugin(anIndex));
    }

private:
    const vxCString mDirectory;
};

}  // namespace vxmedia
