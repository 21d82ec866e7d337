#pragma once

#include "CommandModule.h"
#include "ConsoleApplet.h"
#include "MediaLibrary.h"
#include "cache/DetailsCache.h"

namespace vxmedia {

/// The commands of the module "library" that show and edit single items: info, set, merge; and those
/// about DLNA profiles: profile, profiles.
class ItemCommands {
public:
    /// Declares the commands in the set of the module.
    ItemCommands(Console& aConsole, ConsoleApplet& aConsoleApplet, MediaLibrary& aLibrary,
                 DetailsCache& aDetails, vxCLICommandSet& aSet);

    /// Handles one of these commands and stores whether it succeeded; returns false for any other.
    bool Handle(const vxRef<vxCLICommand>& aCommand, bool& afSucceeded);

private:
    vxCString ShowInfo(uint32_t anID);
    vxCString Set(uint32_t anID, const vxCString& aKey, const vxCString& aTypedValue);
    vxCString Merge(uint32_t anID, uint32_t aSourceID);
    vxCString ShowProfile(const vxCString& aName);
    void ShowProfiles();
    vxCString Find(uint32_t anID, vxRef<MediaItem>& anItem) const;

    Console& mConsole;
    ConsoleApplet& mConsoleApplet;
    MediaLibrary& mLibrary;
    DetailsCache& mDetails;
};

}  // namespace vxmedia
