#pragma once

#include <libvxOS/TimeVal.h>

#include <cstddef>

#include "vx/DateTime.h"

/// Asks the platform for the dates of a file or directory and stores those that have a target.
inline bool vxGetTimes(int (*aQuery)(const char*, vxtimeval*, vxtimeval*, vxtimeval*),
                       const char* aPath, vxDateTime* aCreation, vxDateTime* anAccess,
                       vxDateTime* aModification) {
    vxtimeval theTimes[3];
    if (aQuery(aPath, &theTimes[0], &theTimes[1], &theTimes[2]) != 0) {
        return false;
    }
    vxDateTime* const theTargets[] = {aCreation, anAccess, aModification};
    for (size_t i = 0; i < 3; ++i) {
        if (theTargets[i] != NULL) {
            theTargets[i]->Set(theTimes[i]);
        }
    }
    return true;
}
