// A claim is an flock() on a file: the kernel drops it when the process ends. The file itself stays,
// for removing it would let two processes hold locks on two files of one name.

#include <libvxOS/SingleInstance.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

struct vxOSSingleInstanceChecker {
    int mFD = -1;
    bool mfExists = false;
    bool mfError = false;
};

namespace {

// A file name has 255 bytes; "vx-" and ".lock" stand around the key.
constexpr size_t kvxSingleInstance_MaxKeyLength = 255 - 8;

std::string vxRuntimeDirectory() {
    for (const char* theName : {"XDG_RUNTIME_DIR", "TMPDIR"}) {
        const char* theValue = getenv(theName);
        if (theValue != NULL && *theValue != 0) {
            return theValue;
        }
    }
    return "/tmp";
}

bool vxKeyIsFileName(const char* aKey) {
    return aKey != NULL && *aKey != 0 && strcmp(aKey, ".") != 0 && strcmp(aKey, "..") != 0 &&
           strchr(aKey, '/') == NULL && strlen(aKey) <= kvxSingleInstance_MaxKeyLength;
}

int vxLockWithoutWaiting(int aFD) {
    int theResult;
    do {
        theResult = flock(aFD, LOCK_EX | LOCK_NB);
    } while (theResult != 0 && errno == EINTR);
    return theResult;
}

}  // namespace

vxOSSingleInstanceChecker* vxSingleInstanceChecker_New(const char* aKey) {
    if (!vxKeyIsFileName(aKey)) {
        return NULL;
    }
    vxOSSingleInstanceChecker* theChecker = new vxOSSingleInstanceChecker;
    const std::string thePath = vxRuntimeDirectory() + "/vx-" + aKey + ".lock";
    theChecker->mFD = open(thePath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (theChecker->mFD < 0) {
        theChecker->mfError = true;
    } else if (vxLockWithoutWaiting(theChecker->mFD) != 0) {
        theChecker->mfExists = errno == EWOULDBLOCK;
        theChecker->mfError = !theChecker->mfExists;
    }
    return theChecker;
}

int vxSingleInstanceChecker_Exists(const vxOSSingleInstanceChecker* aChecker) {
    return aChecker == NULL || aChecker->mfExists || aChecker->mfError ? 1 : 0;
}

int vxSingleInstanceChecker_Error(const vxOSSingleInstanceChecker* aChecker) {
    return aChecker == NULL || aChecker->mfError ? 1 : 0;
}

void vxSingleInstanceChecker_Delete(vxOSSingleInstanceChecker* aChecker) {
    if (aChecker == NULL) {
        return;
    }
    if (aChecker->mFD >= 0) {
        close(aChecker->mFD);
    }
    delete aChecker;
}
