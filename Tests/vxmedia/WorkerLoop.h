#pragma once

#include "WorkerPool.h"
#include "vx/Condition.h"

/// The root of a tree of applets that holds a pool of workers.
class WorkerLoop final : public vxApplet {
public:
    explicit WorkerLoop(size_t aThreadCount) {
        AppletSetOptions(vxAppletOption_Multithreaded);
        AppletAttach(&mPool, vxAppletOption_None);
        mPool.SetThreadCount(aThreadCount);
    }

    /// Workers wake up this object: they must be gone before it is.
    ~WorkerLoop() override { mPool.Stop(); }

    void RaiseWakeUpSignal() override { mSignal.Signal(); }
    void WaitWakeUpSignal(unsigned int aMSTimeout) override { mSignal.WaitTimeout(aMSTimeout); }
    vxAppletMsg AppletLoop(vxAppletMsg) override { return vxAppletMsg_None; }

    /// Takes results of jobs until it is done.
    template <typename IsDone>
    void RunUntil(IsDone anIsDone) {
        while (!anIsDone()) {
            AppletRun(vxAppletMsg_None);
            if (!anIsDone()) {
                SelfWait();
            }
        }
    }

private:
    vxCondition mSignal;

public:
    vxmedia::WorkerPool mPool;
};
