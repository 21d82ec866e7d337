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
    return aMutex != nullptr ? aMutex->mLock.Lock() : EINVAL;
}

int vxMutex_Unlock(vxOSMutex* aMutex) {
    return aMutex != nullptr ? aMutex->mLock.Unlock() : EINVAL;
}

int vxMutex_IsHeld(const vxOSMutex* aMutex) {
    return aMutex != nullptr && aMutex->mLock.IsHeld() ? 1 : 0;
}
