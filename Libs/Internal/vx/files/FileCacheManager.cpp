// A table of the files in a directory, and one lock over both.
//
// The lock is held while files are opened, created and removed, so that what the table says and what
// the disk shows cannot drift apart under the manager's own hands; only waiting for a producer lets
// go of it. It is recursive: removing files to make room, and the callback, come from inside.
//
// Paths are built as texts, not as path names, which drop a dot at the end of a name. They are built
// from the bytes of the directory's path: a shared text would be counted by several threads.

#include "vx/FileCacheManager.h"

#include <libteskTools/Memory.h>
#include <libvxLog/Assert.h>
#include <libvxLog/Log.h>
#include <libvxLog/LogDuration.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "vx/DateTime.h"
#include "vx/Dir.h"
#include "vx/File.h"
#include "vx/StoppableThread.h"

namespace {

constexpr int kvxFileCache_Permissions = 3;
constexpr int kvxFileCache_PollMS = 100;
constexpr size_t kvxFileCache_NameMax = 255;
constexpr int kvxFileCache_NotOpened = 0;

struct vxOpenModes {
    int mCreate;
    int mOpen;
};

// By kvxFileCacheOpenMode_*.
constexpr vxOpenModes kvxFileCache_OpenModes[] = {
    {vxFileOpenMode_ReadWrite, vxFileOpenMode_Read},
    {vxFileOpenMode_Read, vxFileOpenMode_Read},
    {vxFileOpenMode_Read, vxFileOpenMode_ReadWrite},
    {vxFileOpenMode_ReadWrite, kvxFileCache_NotOpened},
};

bool vxIsFileName(const vxCString& aName) {
    const size_t theLength = aName.length();
    return theLength > 0 && theLength <= kvxFileCache_NameMax && strlen(aName) == theLength &&
           strchr(aName, '/') == NULL && aName != "." && aName != "..";
}

struct vxTraverserDelete {
    void operator()(vxDirTraverser* aTraverser) const { vxDirTraverser_Delete(aTraverser); }
};

std::vector<vxCString> vxNamesIn(const char* aDir) {
    std::vector<vxCString> theNames;
    const std::unique_ptr<vxDirTraverser, vxTraverserDelete> theTraverser(vxDirTraverser_New(aDir));
    const vxDirEntry* theEntry = vxDirTraverser_GetFirst(
        theTraverser.get(), "*", vxDIR_FILES | vxDIR_DIRS | vxDIR_HIDDEN, NULL);
    for (; theEntry != NULL; theEntry = vxDirTraverser_GetNext(theTraverser.get(), NULL)) {
        theNames.emplace_back(theEntry->mName);
    }
    return theNames;
}

const char* vxSlashBefore(const vxCString& aSubDir) {
    return aSubDir.IsEmpty() ? "" : "/";
}

unsigned long vxShown(int64_t aSize) {
    return static_cast<unsigned long>(aSize);
}

}  // namespace

vxFileCacheInfo* vxFileCacheInfo_New(const char* aFileName) {
    vxFileCacheInfo* theInfo = static_cast<vxFileCacheInfo*>(vxCalloc(sizeof(vxFileCacheInfo)));
    theInfo->mFileName = vxStrdup(aFileName);
    return theInfo;
}

void vxFileCacheInfo_Delete(void* anInfo) {
    if (anInfo != NULL) {
        free(static_cast<vxFileCacheInfo*>(anInfo)->mFileName);
        free(anInfo);
    }
}

int vxFileCacheInfo_Sort(const void* aLeft, const void* aRight) {
    const vxFileCacheInfo* theLeft = static_cast<const vxFileCacheInfo*>(aLeft);
    const vxFileCacheInfo* theRight = static_cast<const vxFileCacheInfo*>(aRight);
    if (theLeft->mState == kvxFileCacheState_Stale) {
        return -1;
    }
    if (theLeft->mState == kvxFileCacheState_Caching) {
        return 1;
    }
    return static_cast<int>(theLeft->mDateTime > theRight->mDateTime) -
           static_cast<int>(theLeft->mDateTime < theRight->mDateTime);
}

vxFileCacheManager* vxFileCacheManager::New(uint32_t aMaxSize, const vxCString& aBaseDir,
                                            const vxCString& aSubDir1, const vxCString& aSubDir2) {
    const vxPathName theBaseDir =
        aBaseDir.IsEmpty() ? vxPathName::MakeCacheDirPath() : vxPathName::MakeDirPath(aBaseDir);
    if (!theBaseDir.DirExists()) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILECACHE,
              "Cannot create temporary directory, base directory is unspecified\n");
        return NULL;
    }
    std::unique_ptr<vxFileCacheManager> theManager(
        new vxFileCacheManager(aMaxSize, theBaseDir, aSubDir1, aSubDir2));
    if (!theManager->mfOK) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILECACHE,
              "Cannot create temporary directory '%s%s%s%s%s'\n", theBaseDir.c_str(),
              vxSlashBefore(aSubDir1), aSubDir1.c_str(), vxSlashBefore(aSubDir2), aSubDir2.c_str());
        return NULL;
    }
    theManager->Cache_Build();
    return theManager.release();
}

vxFileCacheManager::vxFileCacheManager(uint32_t aMaxSize, const vxPathName& aBaseDir,
                                       const vxCString& aSubDir1, const vxCString& aSubDir2)
    : mDirPath(aBaseDir),
      mCacheMaxSize(aMaxSize),
      mfOK(true),
      mCacheTable(NULL),
      mCacheArray(NULL),
      mCurrentCacheSize(0),
      mFileRemovedCallback(NULL),
      mFileRemovedCallbackData(NULL),
      mLastUse(0) {
    mfOK = EnterSubDirectory(aSubDir1) && EnterSubDirectory(aSubDir2);
    if (mfOK) {
        mCacheTable = vxHashTable_New(NULL);
        mCacheArray = vxArray_New();
        vxArray_SetFreeFunc(mCacheArray, vxFileCacheInfo_Delete);
        vxArray_SetSortFunc(mCacheArray, vxFileCacheInfo_Sort);
    }
}

vxFileCacheManager::~vxFileCacheManager() {
    vxHashTable_Delete(mCacheTable);
    vxArray_Delete(mCacheArray);
}

bool vxFileCacheManager::EnterSubDirectory(const vxCString& aName) {
    if (aName.IsEmpty()) {
        return true;
    }
    if (!CreateSubDirectory(aName)) {
        return false;
    }
    mDirPath.AppendPathPart(aName);
    return true;
}

bool vxFileCacheManager::CreateSubDirectory(const vxCString& aName) {
    vxPathName theDir = mDirPath;
    theDir.AppendPathPart(aName);
    // Another process may make it between the first two questions.
    if (theDir.DirExists() || vxDir::Create(theDir) || theDir.DirExists()) {
        return true;
    }
    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILECACHE, "Cannot create sub directory '%s'\n",
          theDir.c_str());
    return false;
}

vxFile* vxFileCacheManager::OpenCachedFile(const vxCString& aFileName, bool* aCreated,
                                           int anOpenMode) {
    *aCreated = false;
    if (!vxIsFileName(aFileName) || anOpenMode < 0 ||
        anOpenMode > kvxFileCacheOpenMode_CreateReadWrite) {
        return NULL;
    }
    const vxOpenModes theModes = kvxFileCache_OpenModes[anOpenMode];
    vxMutexLocker theLock(&mMutex);
    for (;;) {
        vxFileCacheInfo* theInfo = Find(aFileName);
        if (theInfo == NULL) {
            vxFile* theFile = CreateCachedFile(aFileName, theModes.mCreate);
            *aCreated = theFile != NULL;
            return theFile;
        }
        if (theInfo->mState == kvxFileCacheState_Caching) {
            // Another thread still writes this file. Let go of the lock while waiting, or the writer
            // could never report that it has finished.
            mMutex.Unlock();
            vxStoppableThread::ThreadSleep(kvxFileCache_PollMS);
            mMutex.Lock();
            continue;
        }
        if (theInfo->mState == kvxFileCacheState_Ready) {
            if (theModes.mOpen == kvxFileCache_NotOpened) {
                return NULL;
            }
            if (vxFile::Exists(FullPath(aFileName))) {
                return OpenReadyFile(theInfo, theModes.mOpen);
            }
        }
        if (!RemoveTempFile(aFileName)) {
            return NULL;
        }
    }
}

vxFile* vxFileCacheManager::OpenReadyFile(vxFileCacheInfo* anInfo, int anOpenMode) {
    std::unique_ptr<vxFile> theFile(new vxFile);
    if (!theFile->Open(FullPath(anInfo->mFileName), anOpenMode, kvxFileCache_Permissions)) {
        return NULL;
    }
    anInfo->mDateTime = UseTime();
    return theFile.release();
}

vxFile* vxFileCacheManager::CreateCachedFile(const vxCString& aFileName, int anOpenMode) {
    const vxCString thePath = FullPath(aFileName);
    std::unique_ptr<vxFile> theFile(new vxFile);
    if (!theFile->Create(thePath, false, kvxFileCache_Permissions)) {
        return NULL;
    }
    theFile->Close();
    if (!theFile->Open(thePath, anOpenMode, kvxFileCache_Permissions)) {
        // An empty file that nobody knows would be in the way of every later attempt.
        vxFile::Remove(thePath);
        return NULL;
    }
    Cache_FileAdded(aFileName);
    return theFile.release();
}

void vxFileCacheManager::SetCachedFileState(const vxCString& aFileName, vxFile* aFile, bool afOK) {
    vxMutexLocker theLock(&mMutex);
    vxFileCacheInfo* theInfo = Find(aFileName);
    if (theInfo == NULL || !VXCHECK(theInfo->mState == kvxFileCacheState_Caching)) {
        return;
    }
    if (!afOK) {
        if (aFile != NULL) {
            aFile->Close();
        }
        RemoveTempFile(aFileName);
        return;
    }
    theInfo->mState = kvxFileCacheState_Ready;
    theInfo->mDateTime = UseTime();
    theInfo->mFileSize = SizeOf(aFileName, aFile);
    mCurrentCacheSize += theInfo->mFileSize;
    Cache_CheckMaxSize();
}

bool vxFileCacheManager::RemoveTempFile(const vxCString& aFileName) {
    if (!vxIsFileName(aFileName)) {
        return false;
    }
    vxMutexLocker theLock(&mMutex);
    const vxCString thePath = FullPath(aFileName);
    const bool theIsRemoved = !vxFile::Exists(thePath) || vxFile::Remove(thePath);
    vxFileCacheInfo* theInfo = Find(aFileName);
    if (theInfo == NULL) {
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_FILECACHE, "Trying to remove a file '%s' not in cache\n",
              aFileName.c_str());
        return theIsRemoved;
    }
    if (!theIsRemoved) {
        theInfo->mState = kvxFileCacheState_Stale;
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_FILECACHE,
              "Cannot remove file '%s', file set to stale state\n", aFileName.c_str());
        return false;
    }
    if (mFileRemovedCallback != NULL) {
        mFileRemovedCallback(mFileRemovedCallbackData, aFileName);
        theInfo = Find(aFileName);  // the callback may have asked for something
    }
    if (theInfo != NULL) {
        Cache_Forget(theInfo);
    }
    return true;
}

bool vxFileCacheManager::Empty(bool afRemoveDir) {
    vxMutexLocker theLock(&mMutex);
    VXLOG_DURATION(theDuration, VXLOGLEVEL_INFO, VXLOG_M_FILECACHE, kvxLogDuration_Start,
                   "Emptying temporary directory %s", mDirPath.c_str());
    for (const vxCString& theName : vxNamesIn(mDirPath)) {
        const vxCString thePath = FullPath(theName);
        if (vxFile::Exists(thePath)) {
            vxFile::Remove(thePath);
        }
    }
    bool theResult = !vxDir(mDirPath).HasFiles("*");
    if (theResult && afRemoveDir) {
        theResult = vxDir::Remove(mDirPath);
    }
    Cache_Build();
    if (!theResult) {
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_FILECACHE, "Cannot empty temporary directory '%s'\n",
              mDirPath.c_str());
    }
    return theResult;
}

vxCString vxFileCacheManager::GetFullPath(const vxCString& aFileName) {
    if (!vxIsFileName(aFileName)) {
        return vxCString();
    }
    vxMutexLocker theLock(&mMutex);
    return FullPath(aFileName);
}

vxCString vxFileCacheManager::FullPath(const char* aFileName) const {
    vxCString thePath(mDirPath.c_str());
    thePath += aFileName;
    return thePath;
}

void vxFileCacheManager::SetFileRemovedCallBack(void (*aCallback)(void*, const char*),
                                                void* aData) {
    vxMutexLocker theLock(&mMutex);
    mFileRemovedCallback = aCallback;
    mFileRemovedCallbackData = aData;
}

bool vxFileCacheManager::FetchInfoForFile(const vxCString& aFileName, int64_t* aSize, long* aDate) {
    const vxCString thePath = GetFullPath(aFileName);
    if (!vxFile::Exists(thePath)) {
        return false;
    }
    if (aSize != NULL) {
        *aSize = std::max(vxFile(thePath, vxFileOpenMode_Read).Length(), int64_t{0});
    }
    if (aDate != NULL) {
        vxDateTime theCreation;
        *aDate = vxFile::GetTimes(thePath, &theCreation, NULL, NULL) && theCreation.IsValid()
                     ? theCreation.GetTicks()
                     : vxDateTime::Now().GetTicks();
    }
    return true;
}

vxFileCacheInfo* vxFileCacheManager::Find(const vxCString& aFileName) const {
    return static_cast<vxFileCacheInfo*>(
        vxHashTable_GetEntry(mCacheTable, aFileName, aFileName.length()));
}

// Whoever has closed the file before reporting it gets its size by its name.
int64_t vxFileCacheManager::SizeOf(const vxCString& aFileName, vxFile* aFile) {
    int64_t theSize = aFile == NULL ? kvxFileOffsetInvalid : aFile->Length();
    if (theSize < 0 && !FetchInfoForFile(aFileName, &theSize, NULL)) {
        theSize = 0;
    }
    return theSize;
}

// The date of a use that happens now. A clock that is set back would make the file just used the one
// used longest ago, and the next to be removed: dates never fall.
time_t vxFileCacheManager::UseTime() {
    mLastUse = std::max(mLastUse, static_cast<time_t>(vxDateTime::Now().GetTicks()));
    return mLastUse;
}

void vxFileCacheManager::Cache_Clear() {
    vxHashTable_Clear(mCacheTable);
    vxArray_Clear(mCacheArray);
    mCurrentCacheSize = 0;
}

void vxFileCacheManager::Cache_Build() {
    VXLOG_DURATION(theDuration, VXLOGLEVEL_INFO, VXLOG_M_FILECACHE, kvxLogDuration_Start,
                   "Caching temporary directory %s", mDirPath.c_str());
    Cache_Clear();
    for (const vxCString& theName : vxNamesIn(mDirPath)) {
        int64_t theSize = 0;
        long theDate = 0;
        if (FetchInfoForFile(theName, &theSize, &theDate)) {
            vxFileCacheInfo* theInfo = vxFileCacheInfo_New(theName);
            theInfo->mFileSize = theSize;
            theInfo->mDateTime = theDate;
            VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_FILECACHE, "(Build) Adding file '%s' to cache\n",
                  theInfo->mFileName);
            Cache_Add(theInfo);
            mCurrentCacheSize += theSize;
        }
    }
    VXLOG(VXLOGLEVEL_INFO, VXLOG_M_FILECACHE, "Cache size is %lu KB\n",
          vxShown(mCurrentCacheSize / 1024));
}

void vxFileCacheManager::Cache_Add(vxFileCacheInfo* anInfo) {
    vxHashTable_AddEntry(mCacheTable, anInfo->mFileName, strlen(anInfo->mFileName), anInfo);
    vxArray_Append(mCacheArray, anInfo);
}

void vxFileCacheManager::Cache_FileAdded(const vxCString& aFileName) {
    vxFileCacheInfo* theInfo = vxFileCacheInfo_New(aFileName);
    theInfo->mState = kvxFileCacheState_Caching;
    theInfo->mDateTime = UseTime();
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_FILECACHE, "Adding file '%s' to cache\n", aFileName.c_str());
    Cache_Add(theInfo);
}

void vxFileCacheManager::Cache_FileRemoved(const vxCString& aFileName) {
    vxMutexLocker theLock(&mMutex);
    vxFileCacheInfo* theInfo = Find(aFileName);
    if (theInfo == NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILECACHE,
              "Cannot find file to remove '%s' in cache information\n", aFileName.c_str());
        return;
    }
    Cache_Forget(theInfo);
}

void vxFileCacheManager::Cache_Forget(vxFileCacheInfo* anInfo) {
    // A file that is the whole total leaves it as it is: programs depend on the totals that this
    // gives. Reading the directory again sets it right.
    if (anInfo->mFileSize < mCurrentCacheSize) {
        mCurrentCacheSize -= anInfo->mFileSize;
    }
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_FILECACHE, "Removing file '%s' from cache\n",
          anInfo->mFileName);
    vxHashTable_DeleteEntry(mCacheTable, anInfo->mFileName, strlen(anInfo->mFileName));
    vxArray_Remove(mCacheArray, anInfo);
}

void vxFileCacheManager::Cache_CheckMaxSize() {
    if (mCacheMaxSize >= mCurrentCacheSize) {
        return;
    }
    VXLOG(VXLOGLEVEL_INFO, VXLOG_M_FILECACHE,
          "About to remove files from cache current size %lu > %lu\n", vxShown(mCurrentCacheSize),
          vxShown(mCacheMaxSize));
    vxArray_Sort(mCacheArray);
    size_t theIndex = 0;
    while (theIndex < vxArray_GetCount(mCacheArray) && mCurrentCacheSize > mCacheMaxSize) {
        const vxFileCacheInfo* theInfo =
            static_cast<const vxFileCacheInfo*>(vxArray_At(mCacheArray, theIndex));
        if (theInfo->mState == kvxFileCacheState_Caching) {
            break;
        }
        if (!RemoveTempFile(theInfo->mFileName)) {
            ++theIndex;
        }
    }
    VXLOG(VXLOGLEVEL_INFO, VXLOG_M_FILECACHE, "After removal cache size is %lu\n",
          vxShown(mCurrentCacheSize));
}
