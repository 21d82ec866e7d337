#pragma once

#include "CommandModule.h"
#include "MediaLibrary.h"
#include "WorkerPool.h"
#include "vx/ActivityManager.h"
#include "vx/CountedDataBuffer.h"

namespace vxmedia {

/// The commands of the module "sys": version, idle, threads, watch, bits, json, bench.
class SysModule : public CommandModule {
public:
    SysModule(Console& aConsole, const MediaLibrary& aLibrary, const vxActivityManager& anActivity,
              const WorkerPool& aWorkers);

    bool HandleCLICommand(const vxRef<vxCLICommand>& aCommand) override;
    bool IsImmediate(const vxRef<vxCLICommand>& aCommand) const override {
        return aCommand->CommandIs("threads");
    }

private:
    void ShowVersion();
    void ShowIdle();
    void ShowThreads();
    bool Watch(uint32_t anID);
    bool ShowBits(const vxRef<vxCountedDataBuffer>& aTyped);
    bool Bench(const vxCString& aName);
    bool ShowJSON(const vxCString& aPath, const vxCString& aText);

    const MediaLibrary& mLibrary;
    const vxActivityManager& mActivity;
    const WorkerPool& mWorkers;
};

}  // namespace vxmedia
