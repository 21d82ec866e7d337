#pragma once

#include <dlfcn.h>

/// The function of a shared library that a definition in the test program stands in front of.
///
///     int vxMutex_Lock(vxOSMutex* aMutex) { return VXTEST_REAL(vxMutex_Lock)(aMutex); }
#define VXTEST_REAL(aFunction)                                                    \
    ([] {                                                                         \
        static const auto sReal =                                                 \
            reinterpret_cast<decltype(&aFunction)>(dlsym(RTLD_NEXT, #aFunction)); \
        return sReal;                                                             \
    }())
