#pragma once

#include <memory>

#include "vx/CString.h"
#include "vx/SingleInstanceChecker.h"

namespace vxmedia {

/// Keeps a second program of the same user from working with the same configuration directory.
class InstanceCheck {
public:
    /// Claims the directory, by whatever name it goes. An empty one needs no claim.
    explicit InstanceCheck(const vxCString& aDirectory);

    /// Returns why the program must not start; empty when it may.
    vxCString GetError() const;

private:
    const vxCString mDirectory;
    std::unique_ptr<vxSingleInstanceChecker> mChecker;  // null: nothing is claimed
};

}  // namespace vxmedia
