// The signal is a flag beside the platform's condition, which itself remembers nothing.

#include "vx/Condition.h"

#include <libvxLog/FatalError.h>

namespace {

class vxHandleLocker {
public:
    explicit vxHandleLocker(vxOSMutex* aMutex) : mMutex(aMutex) { vxMutex_Lock(mMutex); }
    ~vxHandleLocker() { vxMutex_Unlock(mMutex); }
    vxHandleLocker(const vxHandleLocker&) = delete;
    vxHandleLocker& operator=(const vxHandleLocker&) = delete;

private:
    vxOSMutex* mMutex;
};

}  // namespace

vxCondition::vxCondition() : vxCondition(false, false) {}

vxCondition::vxCondition(bool afManualReset, bool afInitiallySignaled)
    : mCondition(NULL),
      mMutex(NULL),
      mfSignaled(afInitiallySignaled),
      mfManualReset(afManualReset) {
    mCondition = vxCondition_New();
    if (mCondition == NULL) {
        vxFatalError("os:condition");
    }
    mMutex = vxMutex_New();
    if (mMutex == NULL) {
        vxFatalError("os:mutex");
    }
}

vxCondition::~vxCondition() {
    vxCondition_Delete(mCondition);
    vxMutex_Delete(mMutex);
}

int vxCondition::WaitTimeout(unsigned int aMSTimeout) {
    vxHandleLocker theLock(mMutex);
    const int theResult = mfSignaled ? 0 : SleepOnce(aMSTimeout);
    if (!mfManualReset) {
        mfSignaled = false;
    }
    return theResult;
}

int vxCondition::SleepOnce(unsigned int aMSTimeout) {
    const int theResult = aMSTimeout < 0xFFFFFFFF
                              ? vxCondition_WaitTimeout(mCondition, mMutex, aMSTimeout)
                              : vxCondition_Wait(mCondition, mMutex);
    if (mfManualReset && mfSignaled) {
        // The platform woke this thread only, but the signal is meant for all that sleep.
        vxCondition_Signal(mCondition);
    }
    return theResult;
}

int vxCondition::Signal() {
    vxHandleLocker theLock(mMutex);
    mfSignaled = true;
    return vxCondition_Signal(mCondition);
}

int vxCondition::Reset() {
    vxHandleLocker theLock(mMutex);
    mfSignaled = false;
    return 0;
}
