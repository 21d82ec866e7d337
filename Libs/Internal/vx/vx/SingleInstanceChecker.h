#pragma once

#include <libvxOS/SingleInstance.h>

#include "vx/Api.h"

/// Tells a program at its start whether another process of its kind is running.
///
/// The name is claimed for as long as the object lives, and given up when the process ends, however
/// that happens.
///
/// Threads:  any; nothing changes after construction.
class VX_EXPORT vxSingleInstanceChecker {
public:
    /// Claims the name, with "-" and the qualifier behind it when there is one.
    vxSingleInstanceChecker(const char* aName, const char* aQualifier);
    ~vxSingleInstanceChecker() { vxSingleInstanceChecker_Delete(mChecker); }
    vxSingleInstanceChecker(const vxSingleInstanceChecker&) = delete;
    vxSingleInstanceChecker& operator=(const vxSingleInstanceChecker&) = delete;

    /// Returns true also when it could not be found out.
    bool IsAnotherRunning() const {
        return mChecker == NULL || vxSingleInstanceChecker_Exists(mChecker) != 0;
    }

    /// Returns whether the claim could not be made for another reason than another process.
    bool Error() const { return mChecker == NULL || vxSingleInstanceChecker_Error(mChecker) != 0; }

private:
    vxOSSingleInstanceChecker* mChecker;  // owned; null when the name is refused
};
