// Handles on recursive locks that no condition waits with.

#include <libvxOS/CriticalSection.h>

#include "RecursiveLock.h"

#include <cerrno>
#include <new>

struct vxOSCriticalSection {
    vxRecursiveLock mLock;
};

vxOSCriticalSection* vxCriticalSection_New(void) {
    return new (std::nothrow) vxOSCriticalSection;
}

void vxCriticalSection_Delete(vxOSCriticalSection* aSection) {
    delete aSection;
}

int vxCriticalSection_Enter(vxOSCriticalSection* aSection) {
    return aSection != nullptr ? aSection->mLock.Lock() : EINVAL;
}

int vxCriticalSection_Leave(vxOSCriticalSection* aSection) {
    return aSection != nullptr ? aSection->mLock.Unlock() : EINVAL;
}
