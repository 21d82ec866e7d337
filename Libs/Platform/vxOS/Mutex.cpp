// Handles on recursive locks.

#include "Mutex.h"

#include <cerrno>
#include <new>

vxOSMutex* vxMutex_New(void) {
    return new (std::nothrow) vxOSMutex;
}

void vxMutex_Delete(vxOSMutex* aMutex) {
    delete aMutex;
}

int vxMutex_Lock(vxOSMutex* aMutex) {
    if (aMutex == nullptr) {
        return EINVAL;
    }
    aMutex->mLock.Lock();
    return 0;
}

int vxMutex_Unlock(vxOSMutex* aMutex) {
    if (aMutex == nullptr) {
        return EINVAL;
    }
    if (!aMutex->mLock.IsHeld()) {
        return EPERM;
    }
    aMutex->mLock.Unlock();
    return 0;
}

int vxMutex_IsHeld(const vxOSMutex* aMutex) {
    return aMutex != nullptr && aMutex->mLock.IsHeld() ? 1 : 0;
}
