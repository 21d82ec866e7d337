#include "TimerApplet.h"

#include <vector>

namespace vxmedia {

uint32_t TimerApplet::Start(uint32_t aDelayMS, bool afRepeats, const vxCString& aCommand) {
    if (mTimers.size() >= kMaxCount) {
        return 0;
    }
    std::unique_ptr<Timer>& theTimer = mTimers[++mLastID];
    theTimer = std::make_unique<Timer>();
    theTimer->mID = mLastID;
    theTimer->mPeriodMS = afRepeats ? aDelayMS : 0;
    theTimer->mCommand = aCommand;
    TimeoutStart(theTimer.get(), aDelayMS);
    mActivity.IncrementModuleActivity(kActivity);
    return mLastID;
}

bool TimerApplet::Cancel(uint32_t anID) {
    const auto theTimer = mTimers.find(anID);
    if (theTimer == mTimers.end()) {
        return false;
    }
    TimeoutCancel(theTimer->second.get());
    mTimers.erase(theTimer);
    mActivity.DecrementModuleActivity(kActivity);
    return true;
}

vxAppletMsg TimerApplet::AppletLoop(vxAppletMsg) {
    HandleExpiredTimeouts();
    return vxAppletMsg_None;
}

// Only the timers that have expired by now fire: a command that starts another one, or a period
// shorter than the command takes, cannot keep this loop going.
void TimerApplet::OnTimeouts() {
    std::vector<uint32_t> theIDs;
    for (vxTimeout* theFirst = FirstExpiringTimeout(); theFirst != NULL && theFirst->IsExpired();
         theFirst = FirstExpiringTimeout()) {
        TimeoutCancel(theFirst);
        theIDs.push_back(static_cast<Timer*>(theFirst)->mID);
    }
    for (const uint32_t theID : theIDs) {
        // A command fired before this one may have cancelled it.
        const auto theTimer = mTimers.find(theID);
        if (theTimer != mTimers.end()) {
            Fire(*theTimer->second);
        }
    }
}

void TimerApplet::Fire(Timer& aTimer) {
    const vxCString theCommand = aTimer.mCommand;
    if (aTimer.mPeriodMS != 0) {
        TimeoutStart(&aTimer, aTimer.mPeriodMS);
    } else {
        Cancel(aTimer.mID);
    }
    mExecutor(theCommand);
}

}  // namespace vxmedia
