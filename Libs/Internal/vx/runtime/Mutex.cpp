// Creation and destruction only; locking is inline, so that it costs one call of the platform.

#include "vx/Mutex.h"

#include <libvxLog/FatalError.h>

vxMutex::vxMutex() : mMutex(NULL), mLockCount(0) {
    mMutex = vxMutex_New();
    if (mMutex == NULL) {
        vxFatalError("os:mutex");
    }
}

vxMutex::~vxMutex() {
    vxMutex_Delete(mMutex);
}
