// Creation and destruction only; entering is inline, so that it costs one call of the platform.

#include "vx/CriticalSection.h"

#include <libvxLog/FatalError.h>

vxCriticalSection::vxCriticalSection() : mCriticalSection(vxCriticalSection_New()) {
    if (mCriticalSection == NULL) {
        vxFatalError("os:criticalsection");
    }
}

vxCriticalSection::~vxCriticalSection() {
    vxCriticalSection_Delete(mCriticalSection);
}
