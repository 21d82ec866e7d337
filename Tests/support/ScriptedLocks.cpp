#include "support/ScriptedLocks.h"

#include <libvxOS/Condition.h>
#include <libvxOS/CriticalSection.h>
#include <libvxOS/Mutex.h>
#include <libvxOS/Semaphore.h>
#include <libvxOS/SocketSelect.h>

#include "support/Forward.h"

namespace {

vxtest::ScriptedLocks* sLocks = nullptr;

void vxNoteCall(const char* aCall) {
    if (sLocks != nullptr && sLocks->mfNoteCalls) {
        sLocks->mCalls.push_back(aCall);
    }
}

int vxAnswerWait() {
    if (sLocks->mInWait) {
        sLocks->mInWait();
    }
    return *sLocks->mWaitResult;
}

}  // namespace

namespace vxtest {

ScriptedLocks::ScriptedLocks() {
    sLocks = this;
}

ScriptedLocks::~ScriptedLocks() {
    sLocks = nullptr;
}

}  // namespace vxtest

vxOSMutex* vxMutex_New(void) {
    return sLocks != nullptr && sLocks->mfNoMutex ? nullptr : VXTEST_REAL(vxMutex_New)();
}

vxOSCondition* vxCondition_New(void) {
    return sLocks != nullptr && sLocks->mfNoCondition ? nullptr : VXTEST_REAL(vxCondition_New)();
}

vxOSCriticalSection* vxCriticalSection_New(void) {
    return sLocks != nullptr && sLocks->mfNoCriticalSection ? nullptr
                                                            : VXTEST_REAL(vxCriticalSection_New)();
}

vxOSSemaphore* vxSemaphore_New(int aCount) {
    return sLocks != nullptr && sLocks->mfNoSemaphore ? nullptr
                                                      : VXTEST_REAL(vxSemaphore_New)(aCount);
}

vxSocketSelect* vxSocketSelect_New(void) {
    return sLocks != nullptr && sLocks->mfNoSocketSelect ? nullptr
                                                         : VXTEST_REAL(vxSocketSelect_New)();
}

int vxMutex_Lock(vxOSMutex* aMutex) {
    vxNoteCall("Lock");
    if (sLocks != nullptr && sLocks->mLockResult) {
        return *sLocks->mLockResult;
    }
    return VXTEST_REAL(vxMutex_Lock)(aMutex);
}

int vxMutex_Unlock(vxOSMutex* aMutex) {
    vxNoteCall("Unlock");
    if (sLocks != nullptr && sLocks->mAtUnlock) {
        sLocks->mAtUnlock();
    }
    if (sLocks != nullptr && sLocks->mUnlockResult) {
        return *sLocks->mUnlockResult;
    }
    return VXTEST_REAL(vxMutex_Unlock)(aMutex);
}

int vxCondition_Signal(vxOSCondition* aCondition) {
    vxNoteCall("Signal");
    if (sLocks != nullptr && sLocks->mSignalResult) {
        return *sLocks->mSignalResult;
    }
    return VXTEST_REAL(vxCondition_Signal)(aCondition);
}

int vxCondition_Wait(vxOSCondition* aCondition, vxOSMutex* aMutex) {
    if (sLocks != nullptr) {
        sLocks->mWaits.push_back("Wait");
        if (sLocks->mWaitResult) {
            return vxAnswerWait();
        }
    }
    return VXTEST_REAL(vxCondition_Wait)(aCondition, aMutex);
}

int vxCondition_WaitTimeout(vxOSCondition* aCondition, vxOSMutex* aMutex, uint32_t aMSTimeout) {
    if (sLocks != nullptr) {
        sLocks->mWaits.push_back("WaitTimeout " + std::to_string(aMSTimeout));
        if (sLocks->mWaitResult) {
            return vxAnswerWait();
        }
    }
    return VXTEST_REAL(vxCondition_WaitTimeout)(aCondition, aMutex, aMSTimeout);
}
