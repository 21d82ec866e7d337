// Directories over POSIX.
//
// A walk holds the system's directory stream and hands out the name inside it, so that an entry
// costs no copy. The kind of an entry comes with its name on most file systems; only for symbolic
// links, and where the file system does not tell, the entry itself is looked at.

#include <libteskTools/CStringParser.h>
#include <libteskTools/Memory.h>
#include <libvxOS/Dir.h>

#include "FileError_posix.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

struct vxDirTraverser {
    DIR* mDir;          // null when the directory could not be opened
    char* mPattern;     // owned; null until the first entry was asked for
    int mFilter;        // of the first call
    bool mfMoved;       // something was read since the beginning
    vxDirEntry mEntry;  // handed out
};

namespace {

constexpr mode_t kNewDirMode = 0777;

// Succeeds for a directory that is there already.
int vxEnsureDir(const char* aPath) {
    if (mkdir(aPath, kNewDirMode) == 0) {
        return 0;
    }
    const int theErrno = errno;
    return vxDir_Exists(aPath) ? 0 : vxFileErrorFrom(theErrno);
}

bool vxIsDirectory(DIR* aDir, const dirent& anEntry) {
    if (anEntry.d_type != DT_UNKNOWN && anEntry.d_type != DT_LNK) {
        return anEntry.d_type == DT_DIR;
    }
    struct stat theState;
    return fstatat(dirfd(aDir), anEntry.d_name, &theState, 0) == 0 && S_ISDIR(theState.st_mode);
}

// Whether name and filter let an entry through as far as its name tells.
bool vxIsNameWanted(const vxDirTraverser& aTraverser, const char* aName) {
    if (aName[0] == '.') {
        if (aName[1] == '\0') {
            return false;
        }
        const bool theIsParent = aName[1] == '.' && aName[2] == '\0';
        if ((aTraverser.mFilter & (theIsParent ? vxDIR_DOTDOT : vxDIR_HIDDEN)) == 0) {
            return false;
        }
    }
    return vxCStringParser_Match(aName, aTraverser.mPattern) == 1;
}

bool vxIsParent(const char* aName) {
    return strcmp(aName, "..") == 0;
}

// Fills the traverser's entry and tells whether the filter lets its kind through.
bool vxTakeEntry(vxDirTraverser& aTraverser, const dirent& anEntry) {
    vxDirEntry& theEntry = aTraverser.mEntry;
    theEntry.mName = anEntry.d_name;
    theEntry.mfDir = vxIsDirectory(aTraverser.mDir, anEntry) ? 1 : 0;
    theEntry.mfHidden = anEntry.d_name[0] == '.' ? 1 : 0;
    const int theKind = theEntry.mfDir != 0 ? vxDIR_DIRS : vxDIR_FILES;
    return (aTraverser.mFilter & theKind) != 0 || vxIsParent(anEntry.d_name);
}

void vxStoreStatus(int* aStatus, bool afError) {
    if (aStatus != nullptr) {
        *aStatus = afError ? kvxDirTraverserStatus_Error : kvxDirTraverserStatus_NoError;
    }
}

}  // namespace

int vxDir_Exists(const char* aPath) {
    struct stat theState;
    return stat(vxNameOrEmpty(aPath), &theState) == 0 && S_ISDIR(theState.st_mode);
}

int vxDir_Remove(const char* aPath) {
    if (rmdir(vxNameOrEmpty(aPath)) == 0) {
        return 0;
    }
    // Of a file the system says the same as of a name below a file.
    return errno == ENOTDIR && access(aPath, F_OK) == 0 ? kvxFileErrorUnknown
                                                        : vxFileErrorFrom(errno);
}

int vxDir_Create(const char* aPath) {
    return vxFileResult(mkdir(vxNameOrEmpty(aPath), kNewDirMode));
}

int vxDir_CreatePath(const char* aPath) {
    // Mostly the directory above exists, or the directory itself.
    const int theResult = vxEnsureDir(vxNameOrEmpty(aPath));
    if (theResult != kvxFileErrorNotFound || *vxNameOrEmpty(aPath) == '\0') {
        return theResult;
    }
    char* thePath = vxStrdup(aPath);
    if (thePath == nullptr) {
        return kvxFileErrorUnknown;
    }
    for (char* thePos = thePath; (thePos = strchr(thePos + 1, '/')) != nullptr;) {
        *thePos = '\0';
        const int theStep = vxEnsureDir(thePath);
        if (theStep != 0) {
            free(thePath);
            return theStep;
        }
        *thePos = '/';
    }
    free(thePath);
    return vxEnsureDir(aPath);
}

char* vxDir_GetRootDirList(void) {
    constexpr char kRoots[] = "/\0";
    char* theList = static_cast<char*>(vxMalloc(sizeof(kRoots)));
    if (theList != nullptr) {
        memcpy(theList, kRoots, sizeof(kRoots));
    }
    return theList;
}

int vxDir_GetTimes(const char* aPath, vxtimeval* aCreation, vxtimeval* anAccess,
                   vxtimeval* aModification) {
    if (!vxDir_Exists(aPath)) {
        return kvxFileErrorNotFound;
    }
    return vxFile_GetTimes(aPath, aCreation, anAccess, aModification);
}

vxDirTraverser* vxDirTraverser_New(const char* aPath) {
    vxDirTraverser* theTraverser = static_cast<vxDirTraverser*>(vxCalloc(sizeof(vxDirTraverser)));
    if (theTraverser != nullptr) {
        theTraverser->mDir = opendir(vxNameOrEmpty(aPath));
    }
    return theTraverser;
}

void vxDirTraverser_Delete(vxDirTraverser* aTraverser) {
    if (aTraverser == nullptr) {
        return;
    }
    if (aTraverser->mDir != nullptr) {
        closedir(aTraverser->mDir);
    }
    free(aTraverser->mPattern);
    free(aTraverser);
}

void vxDirTraverser_Rewind(vxDirTraverser* aTraverser) {
    if (aTraverser->mfMoved) {
        rewinddir(aTraverser->mDir);
        aTraverser->mfMoved = false;
    }
}

const vxDirEntry* vxDirTraverser_GetFirst(vxDirTraverser* aTraverser, const char* aPattern,
                                          int aFilter, int* aStatus) {
    // The pattern is copied before the old one goes: it may be that one.
    char* thePattern = vxStrdup(aPattern == nullptr ? "*" : aPattern);
    free(aTraverser->mPattern);
    aTraverser->mPattern = thePattern;
    aTraverser->mFilter = aFilter;
    vxDirTraverser_Rewind(aTraverser);
    return vxDirTraverser_GetNext(aTraverser, aStatus);
}

const vxDirEntry* vxDirTraverser_GetNext(vxDirTraverser* aTraverser, int* aStatus) {
    if (aTraverser->mDir == nullptr || aTraverser->mPattern == nullptr) {
        vxStoreStatus(aStatus, aTraverser->mDir == nullptr);
        return nullptr;
    }
    aTraverser->mfMoved = true;
    errno = 0;
    while (const dirent* theEntry = readdir(aTraverser->mDir)) {
        if (vxIsNameWanted(*aTraverser, theEntry->d_name) && vxTakeEntry(*aTraverser, *theEntry)) {
            vxStoreStatus(aStatus, false);
            return &aTraverser->mEntry;
        }
        errno = 0;
    }
    vxStoreStatus(aStatus, errno != 0);
    return nullptr;
}
