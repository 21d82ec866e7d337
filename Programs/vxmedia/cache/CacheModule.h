#pragma once

#include <functional>

#include "CommandModule.h"
#include "ConsoleApplet.h"
#include "MediaLibrary.h"
#include "WorkerPool.h"
#include "cache/CoverStore.h"
#include "cache/DetailsCache.h"
#include "config/Settings.h"

namespace vxmedia {

/// The commands of the module "cache": cover, status, limit, empty.
///
/// What touches the disk is done by a worker thread; its answer comes when it is there.
class CacheModule : public CommandModule {
public:
    CacheModule(Console& aConsole, ConsoleApplet& aConsoleApplet, const MediaLibrary& aLibrary,
                CoverStore& aCovers, const DetailsCache& aDetails, WorkerPool& aWorkers,
                Settings& aSettings);

    bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) override;

private:
    struct LateAnswer {
        vxCString mText;  // safe for a terminal
        bool mfOK;
    };
    using Work = std::function<LateAnswer()>;
    class LateJob;

    bool ShowCover(uint32_t anID);
    void ShowStatus();
    bool SetLimit(uint32_t aMBytes);
    bool Empty(bool afRemoveDir);
    bool DoLater(const char* aTitle, Work aWork);
    static LateAnswer AnswerOrError(const vxCString& anAnswer, const vxCString& anError);

    ConsoleApplet& mConsoleApplet;
    const MediaLibrary& mLibrary;
    CoverStore& mCovers;
    const DetailsCache& mDetails;
    WorkerPool& mWorkers;
    Settings& mSettings;
};

}  // namespace vxmedia
