// Waits go to the platform mutex inside the caller's mutex, so the caller's count of locks stands
// still while a thread sleeps.

#include "vx/ConditionExt.h"

#include <libvxLog/Assert.h>
#include <libvxLog/FatalError.h>

#include <cerrno>

#include "vx/Mutex.h"

vxConditionExt::vxConditionExt(vxMutex* aMutex, bool afDeleteMutex)
    : mCondition(vxCondition_New()),
      mMutex(aMutex),
      mfSignaled(false),
      mfDeleteMutex(afDeleteMutex) {
    if (mCondition == NULL) {
        vxFatalError("os:condition");
    }
    if (mMutex == NULL) {
        vxFatalError("os:mutex");
    }
}

vxConditionExt::~vxConditionExt() {
    vxCondition_Delete(mCondition);
    if (mfDeleteMutex) {
        delete mMutex;
        mMutex = NULL;
    }
}

bool vxConditionExt::CheckMutexIsHeld() const {
    const bool theIsHeld = mMutex != NULL && vxMutex_IsHeld(mMutex->mMutex) != 0;
    VXASSERT_TEXT(theIsHeld, "vxMutex_IsHeld(mMutex->mMutex)");
    return theIsHeld;
}

int vxConditionExt::WaitTimeout(unsigned int aMSTimeout) {
    int theResult = EPERM;
    if (CheckMutexIsHeld()) {
        theResult = mfSignaled ? 0 : SleepOnce(aMSTimeout);
        mfSignaled = false;
    }
    CheckMutexIsHeld();
    return theResult;
}

int vxConditionExt::SleepOnce(unsigned int aMSTimeout) {
    if (aMSTimeout < 0xFFFFFFFF) {
        return vxCondition_WaitTimeout(mCondition, mMutex->mMutex, aMSTimeout);
    }
    return vxCondition_Wait(mCondition, mMutex->mMutex);
}

int vxConditionExt::Signal() {
    CheckMutexIsHeld();
    mfSignaled = true;
    const int theResult = vxCondition_Signal(mCondition);
    CheckMutexIsHeld();
    return theResult;
}
