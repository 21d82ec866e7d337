// A walk over a directory, and the removal of trees.
//
// A tree is removed without recursion: one path grows and shrinks, and a stack keeps the
// sub-directories that each level still has to lose. A directory is listed to its end and closed
// before its sub-directories are entered, so neither descriptors nor the call stack limit the depth.

#include "vx/Dir.h"

#include <libvxLog/Assert.h>
#include <libvxOS/Path.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "FileTimes.h"
#include "vx/DateTime.h"
#include "vx/File.h"
#include "vx/StringList.h"

namespace {

struct vxTraverserDelete {
    void operator()(vxDirTraverser* aTraverser) const { vxDirTraverser_Delete(aTraverser); }
};

// Cuts the separators at the end: behind one, the system follows a symbolic link.
vxCString vxWithoutLastSlash(const char* aPath) {
    size_t theLength = aPath == NULL ? 0 : strlen(aPath);
    while (theLength > 1 && aPath[theLength - 1] == '/') {
        --theLength;
    }
    return vxCString(aPath, theLength);
}

// The root, and names that stand for a directory which has another one, are not removed.
bool vxMayBeRemoved(const vxCString& aPath) {
    const vxCString theName = aPath.AfterLast('/');
    return aPath != "/" && theName != "." && theName != "..";
}

bool vxIsThere(const char* aPath) {
    return vxPath_IsLink(aPath) != 0 || vxDir::Exists(aPath);
}

// One round over a tree; ends with the first entry that stays.
class vxTreeRemover {
public:
    explicit vxTreeRemover(const vxCString& aRoot) : mPath(aRoot) {}

    bool Run() {
        if (vxPath_IsLink(mPath)) {
            return vxFile::Remove(mPath);
        }
        if (!Enter()) {
            return false;
        }
        while (!mLevels.empty()) {
            if (!(mLevels.back().mSubDirs.empty() ? Leave() : GoDown())) {
                return false;
            }
        }
        return true;
    }

private:
    struct Level {
        size_t mPathLength;               // of the directory's path
        std::vector<vxCString> mSubDirs;  // still to be removed
    };

    // Removes the files of the directory at mPath and notes its sub-directories.
    bool Enter() {
        mLevels.push_back({mPath.length(), {}});
        const std::unique_ptr<vxDirTraverser, vxTraverserDelete> theTraverser(
            vxDirTraverser_New(mPath));
        const vxDirEntry* theEntry =
            vxDirTraverser_GetFirst(theTraverser.get(), "*", vxDIR_DEFAULT, NULL);
        for (; theEntry != NULL; theEntry = vxDirTraverser_GetNext(theTraverser.get(), NULL)) {
            if (!Take(*theEntry)) {
                return false;
            }
        }
        return true;
    }

    bool Take(const vxDirEntry& anEntry) {
        const vxCString thePath = mPath + "/" + anEntry.mName;
        if (anEntry.mfDir != 0 && !vxPath_IsLink(thePath)) {
            mLevels.back().mSubDirs.push_back(anEntry.mName);
            return true;
        }
        return vxFile::Remove(thePath);
    }

    bool GoDown() {
        std::vector<vxCString>& theSubDirs = mLevels.back().mSubDirs;
        mPath += "/";
        mPath += theSubDirs.back();
        theSubDirs.pop_back();
        return Enter();
    }

    // Removes the directory, which is empty now, and goes on with the one above.
    bool Leave() {
        if (!vxDir::Remove(mPath)) {
            return false;
        }
        mLevels.pop_back();
        if (!mLevels.empty()) {
            mPath.Truncate(mLevels.back().mPathLength);
        }
        return true;
    }

    vxCString mPath;  // of the directory at work, without separator at the end
    std::vector<Level> mLevels;
};

}  // namespace

bool vxDir::Exists(const char* aPath) {
    return vxDir_Exists(aPath) != 0;
}

bool vxDir::Remove(const char* aPath) {
    const int theResult = vxDir_Remove(aPath);
    return theResult == 0 || theResult == kvxFileErrorNotFound;
}

bool vxDir::Create(const char* aPath) {
    return vxDir_Create(aPath) == 0;
}

bool vxDir::CreateRecursively(const char* aPath) {
    return vxDir_CreatePath(aPath) == 0;
}

vxStringList vxDir::GetRootDirList() {
    vxStringList theList;
    char* theRoots = vxDir_GetRootDirList();
    for (const char* theRoot = theRoots; theRoot != NULL && *theRoot != '\0';
         theRoot += strlen(theRoot) + 1) {
        theList.Add(theRoot);
    }
    free(theRoots);
    return theList;
}

bool vxDir::RemoveRecursively(const char* aPath, unsigned anAttempts) {
    const vxCString thePath = vxWithoutLastSlash(aPath);
    if (!vxMayBeRemoved(thePath)) {
        return false;
    }
    bool theIsGone = !vxIsThere(thePath);
    for (; !theIsGone && anAttempts > 0; --anAttempts) {
        theIsGone = vxTreeRemover(thePath).Run() || !vxIsThere(thePath);
    }
    return theIsGone;
}

bool vxDir::GetTimes(const char* aPath, vxDateTime* aCreation, vxDateTime* anAccess,
                     vxDateTime* aModification) {
    return vxGetTimes(vxDir_GetTimes, aPath, aCreation, anAccess, aModification);
}

vxDir::vxDir()
    : mTraverser(NULL), mState(kvxDirState_Close), mError(kvxDirTraverserStatus_NoError) {}

vxDir::vxDir(const char* aPath) : vxDir() {
    Open(aPath);
}

bool vxDir::Open(const char* aPath) {
    // The path is read first: it may be the one that closing forgets.
    const vxPathName thePath = vxPathName::MakeDirPath(aPath);
    Close();
    mPathName = thePath;
    mTraverser = vxDirTraverser_New(mPathName.c_str());
    mState = kvxDirState_Open;
    return true;
}

void vxDir::Close() {
    vxDirTraverser_Delete(mTraverser);
    mTraverser = NULL;
    mState = kvxDirState_Close;
    mPathName.Reset();
    mError = kvxDirTraverserStatus_NoError;
}

void vxDir::Rewind() {
    if (IsOpened()) {
        vxDirTraverser_Rewind(mTraverser);
        mState = kvxDirState_Open;
        mError = kvxDirTraverserStatus_NoError;
    }
}

const vxDirEntry* vxDir::FirstEntry(const vxCString& aPattern, int aFilter) {
    VXASSERT((mState == kvxDirState_Open) || (mState == kvxDirState_ReadNext));
    if (!IsOpened()) {
        return NULL;
    }
    vxDirTraverser_Rewind(mTraverser);
    const vxDirEntry* theEntry = vxDirTraverser_GetFirst(mTraverser, aPattern, aFilter, &mError);
    if (theEntry != NULL) {
        mState = kvxDirState_ReadNext;
    }
    return theEntry;
}

const vxDirEntry* vxDir::NextEntry() {
    VXASSERT(mState == kvxDirState_ReadNext);
    return mState == kvxDirState_ReadNext ? vxDirTraverser_GetNext(mTraverser, &mError) : NULL;
}

bool vxDir::Take(const vxDirEntry* anEntry, vxPathName& aPath) {
    if (anEntry == NULL) {
        return false;
    }
    aPath.SetEntry(mPathName, anEntry->mName, anEntry->mfDir != 0);
    return true;
}

bool vxDir::GetFirst(vxPathName& anEntry, const vxCString& aPattern, int aFilter) {
    return Take(FirstEntry(aPattern, aFilter), anEntry);
}

bool vxDir::GetNext(vxPathName& anEntry) {
    return Take(NextEntry(), anEntry);
}

bool vxDir::HasFiles(const vxCString& aPattern) {
    return FirstEntry(aPattern, vxDIR_FILES | vxDIR_HIDDEN) != NULL;
}

bool vxDir::HasDirs(const vxCString& aPattern) {
    return FirstEntry(aPattern, vxDIR_DIRS) != NULL;
}

size_t vxDir::GetCount(const vxCString& aPattern, int aFilter) {
    size_t theCount = 0;
    for (const vxDirEntry* theEntry = FirstEntry(aPattern, aFilter); theEntry != NULL;
         theEntry = NextEntry()) {
        ++theCount;
    }
    return theCount;
}
