#include "InstanceCheck.h"

#include <libvxOS/User.h>

#include "FileStatus.h"

namespace vxmedia {

InstanceCheck::InstanceCheck(const vxCString& aDirectory) : mDirectory(aDirectory) {
    if (aDirectory.IsEmpty()) {
        return;
    }
    const FileIdentity theIdentity = GetFileStatus(aDirectory, true).mIdentity;
    const vxCString theQualifier =
        vxCString::Format("%lld-%llx-%llx", static_cast<long long>(vxUser_GetID()),
                          static_cast<unsigned long long>(theIdentity.mDevice),
                          static_cast<unsigned long long>(theIdentity.mNode));
    mChecker = std::make_unique<vxSingleInstanceChecker>("vxmedia", theQualifier);
}

vxCString InstanceCheck::GetError() const {
    if (mChecker == nullptr || !mChecker->IsAnotherRunning()) {
        return vxCString();
    }
    const char* theText = mChecker->Error()
                              ? "ERROR: Unable to find out whether another vxmedia works with the "
                                "configuration directory '"
                              : "ERROR: Another vxmedia works with the configuration directory '";
    return vxCString(theText) + mDirectory + "'";
}

}  // namespace vxmedia
