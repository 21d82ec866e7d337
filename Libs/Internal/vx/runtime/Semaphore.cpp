// Creation and destruction only; the operations are the platform's.

#include "vx/Semaphore.h"

#include <libvxLog/FatalError.h>

vxSemaphore::vxSemaphore(int anInitialCount) : mSemaphore(vxSemaphore_New(anInitialCount)) {
    if (mSemaphore == NULL) {
        vxFatalError("os:semaphore");
    }
}

vxSemaphore::~vxSemaphore() {
    vxSemaphore_Delete(mSemaphore);
}
