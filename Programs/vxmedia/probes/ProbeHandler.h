#pragma once

#include "probes/ProbeInterface.h"
#include "vx/PluginHandler.h"

namespace vxmedia {

/// A plug-in that exports a probe; see ProbeInterface.h.
///
/// Threads:  any, once it is loaded.
class ProbeHandler : public vxPluginHandler {
public:
    ProbeHandler();

    // To be called only while the plug-in is loaded. Texts are the plug-in's, and never null.

    const char* GetFormat() const;
    const char* GetEndings() const;
    bool Recognize(const vxmedia_source& aSource) const;

    /// Returns null, or the reason of a refusal.
    const char* Read(const vxmedia_source& aSource, vxmedia_facts& aFacts) const;
};

}  // namespace vxmedia
