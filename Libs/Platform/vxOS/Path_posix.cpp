// Paths over POSIX and Linux's descriptions of its devices.

#include <libteskTools/Memory.h>
#include <libvxOS/Path.h>

#include "FileError_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// File systems whose files are another machine's, by the number that the kernel gives them.
constexpr uint32_t kRemoteFileSystems[] = {
    0x6969,      // NFS
    0xFF534D42,  // CIFS
    0xFE534D42,  // SMB 2
    0x517B,      // SMB
    0x01021997,  // 9P
    0x00C36400,  // Ceph
    0x5346414F,  // AFS
    0x6B414653,  // kAFS
    0x73757245,  // Coda
    0x564C,      // NCP
};

bool vxIsRemote(const char* aPath) {
    struct statfs theState;
    if (statfs(aPath, &theState) < 0) {
        return false;
    }
    for (const uint32_t theType : kRemoteFileSystems) {
        if (static_cast<uint32_t>(theState.f_type) == theType) {
            return true;
        }
    }
    return false;
}

bool vxIsOne(const std::string& aFile) {
    const int theFD = open(aFile.c_str(), O_RDONLY | O_CLOEXEC);
    if (theFD < 0) {
        return false;
    }
    char theText = '0';
    const ssize_t theCount = read(theFD, &theText, 1);
    close(theFD);
    return theCount == 1 && theText == '1';
}

bool vxIsRemovable(dev_t aDevice) {
    char theName[64];
    snprintf(theName, sizeof(theName), "/sys/dev/block/%u:%u", major(aDevice), minor(aDevice));
    char thePlace[PATH_MAX];
    const ssize_t theLength = readlink(theName, thePlace, sizeof(thePlace) - 1);
    if (theLength < 0) {
        return false;  // no drive of its own
    }
    thePlace[theLength] = '\0';
    if (strstr(thePlace, "/usb") != nullptr) {
        return true;
    }
    // A partition leaves the answer to the drive, whose description lies one level above.
    const std::string theDevice = theName;
    return vxIsOne(theDevice + "/removable") || vxIsOne(theDevice + "/../removable");
}

const char* vxEnvironment(const char* aName) {
    const char* theValue = getenv(aName);
    return theValue == nullptr || theValue[0] == '\0' ? nullptr : theValue;
}

// The directory of the user's settings, or nothing.
std::string vxUserConfigPath() {
    const char* thePath = vxEnvironment("XDG_CONFIG_HOME");
    if (thePath != nullptr && vxPath_IsAbsolute(thePath)) {
        return thePath;
    }
    const char* theHome = vxEnvironment("HOME");
    return theHome == nullptr ? std::string() : std::string(theHome) + "/.config";
}

bool vxHoldsFile(const std::string& aDirectory, const char* aFileName) {
    return vxPath_IsAbsolute(aDirectory.c_str()) &&
           access((aDirectory + "/" + vxNameOrEmpty(aFileName)).c_str(), F_OK) == 0;
}

// Copies a text with single separators and returns the end of the copy.
char* vxCopySingleSlashes(char* aTarget, const char* aText, size_t aLength) {
    const char* const theEnd = aText + aLength;
    while (const char* theDoubled = strstr(aText, "//")) {
        const size_t theCount = static_cast<size_t>(theDoubled - aText);
        memcpy(aTarget, aText, theCount);
        aTarget += theCount;
        for (aText = theDoubled + 1; aText[1] == '/';) {
            ++aText;
        }
    }
    memcpy(aTarget, aText, static_cast<size_t>(theEnd - aText));
    return aTarget + (theEnd - aText);
}

char* vxEndWithSlash(char* anEnd) {
    if (anEnd[-1] != '/') {
        *anEnd++ = '/';
    }
    return anEnd;
}

std::string vxApplicationPath() {
    char thePath[PATH_MAX];
    const ssize_t theLength = readlink("/proc/self/exe", thePath, sizeof(thePath));
    if (theLength < 0) {
        return program_invocation_name;
    }
    // The kernel marks a program whose file was replaced or removed while it runs.
    constexpr char kDeleted[] = " (deleted)";
    constexpr size_t kDeletedLength = sizeof(kDeleted) - 1;
    std::string theText(thePath, static_cast<size_t>(theLength));
    if (theText.size() > kDeletedLength &&
        theText.compare(theText.size() - kDeletedLength, kDeletedLength, kDeleted) == 0 &&
        access(theText.c_str(), F_OK) < 0) {
        theText.resize(theText.size() - kDeletedLength);
    }
    return theText;
}

}  // namespace

char* vxPath_Normalize(const char* aPath, int afDir, int aMode, const char* anAnchor) {
    static_cast<void>(aMode);  // all forms are one here
    if (aPath == nullptr) {
        return nullptr;
    }
    const size_t theLength = strlen(aPath);
    const bool theIsAnchored =
        anAnchor != nullptr && anAnchor[0] != '\0' && !vxPath_IsAbsolute(aPath);
    const size_t theAnchorLength = theIsAnchored ? strlen(anAnchor) : 0;
    // Two bytes more for a separator behind either part, one for the end.
    char* theText = static_cast<char*>(vxMalloc(theAnchorLength + theLength + 3));
    if (theText == nullptr) {
        return nullptr;
    }
    char* theEnd = theText;
    if (theIsAnchored) {
        theEnd = vxCopySingleSlashes(theEnd, anAnchor, theAnchorLength);
        theEnd = vxEndWithSlash(theEnd);
    }
    theEnd = vxCopySingleSlashes(theEnd, aPath, theLength);
    if (afDir && theEnd != theText) {
        theEnd = vxEndWithSlash(theEnd);
    }
    *theEnd = '\0';
    return theText;
}

char* vxPath_GetTempDirPath(void) {
    const char* thePath = vxEnvironment("TMPDIR");
    return vxStrdup(thePath != nullptr ? thePath : "/tmp");
}

char* vxPath_GetCacheDirPath(void) {
    if (const char* thePath = vxEnvironment("VXCACHEPATH")) {
        return vxStrdup(thePath);
    }
    const char* theUserCache = vxEnvironment("XDG_CACHE_HOME");
    if (theUserCache != nullptr && vxPath_IsAbsolute(theUserCache)) {
        return vxStrdup(theUserCache);
    }
    if (const char* theHome = vxEnvironment("HOME")) {
        return vxStrdup((std::string(theHome) + "/.cache").c_str());
    }
    return vxStrdup("/var/cache");
}

char* vxPath_GetDefaultConfigPath(const char* aFileName) {
    if (const char* thePath = vxEnvironment("VXCONFIGPATH")) {
        return vxStrdup(thePath);
    }
    const std::string theUsers = vxUserConfigPath();
    if (vxHoldsFile(theUsers, aFileName)) {
        return vxStrdup(theUsers.c_str());
    }
    const char* theSystems = vxEnvironment("XDG_CONFIG_DIRS");
    const std::string theList = theSystems != nullptr ? theSystems : "/etc/xdg";
    for (size_t thePos = 0; thePos < theList.size();) {
        const size_t theEnd = std::min(theList.find(':', thePos), theList.size());
        const std::string thePath = theList.substr(thePos, theEnd - thePos);
        if (vxHoldsFile(thePath, aFileName)) {
            return vxStrdup(thePath.c_str());
        }
        thePos = theEnd + 1;
    }
    return vxStrdup("/etc");
}

char* vxPath_GetApplicationName(void) {
    const std::string thePath = vxApplicationPath();
    return vxStrdup(thePath.c_str() + thePath.rfind('/') + 1);
}

char* vxPath_GetApplicationFullPath(void) {
    return vxStrdup(vxApplicationPath().c_str());
}

int vxPath_IsAbsolute(const char* aPath) {
    return aPath != nullptr && aPath[0] == '/';
}

int vxPath_GetType(const char* aPath) {
    struct stat theState;
    if (stat(vxNameOrEmpty(aPath), &theState) < 0) {
        return kvxPathType_Unknown;
    }
    if (vxIsRemote(aPath)) {
        return kvxPathType_Remote;
    }
    return vxIsRemovable(theState.st_dev) ? kvxPathType_Removable : kvxPathType_Fixed;
}

int vxPath_IsLink(const char* aPath) {
    std::string thePath = vxNameOrEmpty(aPath);
    while (thePath.size() > 1 && thePath.back() == '/') {
        thePath.pop_back();  // behind a separator the system follows the link
    }
    struct stat theState;
    return lstat(thePath.c_str(), &theState) == 0 && S_ISLNK(theState.st_mode);
}
