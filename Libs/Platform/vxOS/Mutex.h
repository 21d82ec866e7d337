#pragma once

// What a condition needs to know of a mutex.

#include <libvxOS/Mutex.h>

#include "RecursiveLock.h"

struct vxOSMutex {
    vxRecursiveLock mLock;
};
