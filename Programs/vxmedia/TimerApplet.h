#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include "vx/ActivityManager.h"
#include "vx/Applet.h"
#include "vx/CString.h"

namespace vxmedia {

/// A command line that waits for its time.
struct Timer : public vxTimeout {
    uint32_t mID = 0;
    uint32_t mPeriodMS = 0;  // 0: once
    vxCString mCommand;
};

/// Executes command lines after a time, once or again and again.
///
/// Each timer is a time-out of this applet; the wait of the whole program ends with the earliest.
///
/// Threads:  one at a time.
class TimerApplet : public vxApplet {
public:
    using TimerMap = std::map<uint32_t, std::unique_ptr<Timer>>;

    /// Activity is counted under this name for each timer that waits.
    static constexpr const char* kActivity = "timer";

    /// More timers than this are refused.
    static constexpr size_t kMaxCount = 1000;

    explicit TimerApplet(vxActivityManager& anActivity) : mActivity(anActivity) {}

    /// Sets what executes the command lines.
    void SetExecutor(std::function<void(const vxCString&)> anExecutor) {
        mExecutor = std::move(anExecutor);
    }

    /// Starts a timer and returns its number, counted from 1; 0 when there are too many.
    uint32_t Start(uint32_t aDelayMS, bool afRepeats, const vxCString& aCommand);

    /// Takes the timer away. Returns false when there is none of that number.
    bool Cancel(uint32_t anID);

    /// Returns the timers that wait, by number.
    const TimerMap& GetTimers() const { return mTimers; }

    vxAppletMsg AppletLoop(vxAppletMsg aMsg) override;
    void OnTimeouts() override;

private:
    void Fire(Timer& aTimer);

    vxActivityManager& mActivity;
    std::function<void(const vxCString&)> mExecutor;
    uint32_t mLastID = 0;
    TimerMap mTimers;
};

}  // namespace vxmedia
