#pragma once

#include <libteskTools/Array.h>
#include <libteskTools/HashTable.h>

#include <cstdint>
#include <ctime>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/Mutex.h"
#include "vx/PathName.h"

class vxFile;

/// States of a cached file.
enum {
    kvxFileCacheState_Ready = 0,    ///< complete: it may be opened, and may be removed to make room
    kvxFileCacheState_Caching = 1,  ///< being written by whom it was created for; it stays
    kvxFileCacheState_Stale = 2  ///< could not be removed: that is tried again, before all others
};

/// How OpenCachedFile() opens the file that it creates, and one that is there.
enum {
    kvxFileCacheOpenMode_CreateReadWrite_OpenRead = 0,  ///< creates for both, opens for reading
    kvxFileCacheOpenMode_CreateRead_OpenRead = 1,       ///< reading in both cases
    kvxFileCacheOpenMode_CreateRead_OpenReadWrite = 2,  ///< creates for reading, opens for both
    kvxFileCacheOpenMode_CreateReadWrite = 3  ///< creates for both; what is there is not opened
};

/// What the cache knows of one file.
///
/// Owner:    vxFileCacheInfo_New() makes one, vxFileCacheInfo_Delete() frees it with its name.
struct vxFileCacheInfo {
    int64_t mFileSize;  ///< bytes; 0 while the file is being written
    time_t mDateTime;   ///< seconds since 1970: when it was last used
    char* mFileName;    ///< owned, without directory
    int mState;         ///< kvxFileCacheState_*
};

/// Makes a record of which all is 0 but the name, which is copied.
///
/// Fails:    as vxMalloc().
/// Owner:    the caller, who ends it with vxFileCacheInfo_Delete().
VX_EXPORT vxFileCacheInfo* vxFileCacheInfo_New(const char* aFileName);

/// Frees a vxFileCacheInfo; null is allowed.
VX_EXPORT void vxFileCacheInfo_Delete(void* anInfo);

/// Compares two vxFileCacheInfo for the order in which files are removed: negative, 0 or positive.
///
/// A stale left one belongs before, a left one that is being written behind, whatever the right one
/// is; otherwise the one used longer ago comes first. The state of the right one is not looked at:
/// vxArray_Sort() makes of this that stale files come first and those being written last.
VX_EXPORT int vxFileCacheInfo_Sort(const void* aLeft, const void* aRight);

/// A directory of files that can be made again, kept below a total size.
///
/// Who needs a file opens it by its name. Where there is none, it is created and whoever asked first
/// writes it, while all others who ask for that name wait; see OpenCachedFile(). When a file is
/// complete and the total exceeds the limit, the files used longest ago are removed.
///
///     bool theIsNew;
///     vxFile* theFile = theCache->OpenCachedFile("cover.jpg", &theIsNew,
///                                                kvxFileCacheOpenMode_CreateReadWrite_OpenRead);
///     if (theIsNew) {
///         theCache->SetCachedFileState("cover.jpg", theFile, Download(theFile));
///     }
///
//  (unknown) --OpenCachedFile--> caching --SetCachedFileState(true)--> ready
//  caching --SetCachedFileState(false)--> removed
//  ready --more room, RemoveTempFile--> removed; stale where the disk does not let it go
//  stale --OpenCachedFile, more room--> removed, or stale still
///
/// What is in the directory at the start is ready. Files that others remove from it are noticed when
/// they are opened; files that others put there later are not known, and cannot be created, until
/// the directory is read again by Empty() or a new manager. Sub-directories are left alone; pipes and
/// devices do not belong there, for opening one may block.
///
/// A file name is 1 to 255 bytes without `/` and NUL, and neither `.` nor `..`. What is asked about
/// any other is answered as if there were no such file and none could be made.
///
/// Removing the file whose size is the whole total leaves the total as it is, so that it may stay
/// above the limit until the directory is read again. Programs depend on how the total is kept.
///
/// Records go to module VXLOG_M_FILECACHE.
///
/// Owner:    the program; files stay on the disk when the manager goes.
/// Threads:  any, guarded by mMutex, which is held while files are opened and removed.
class VX_EXPORT vxFileCacheManager {
public:
    /// Makes a manager for a directory, and reads what is in it.
    ///
    /// The directory is `aBaseDir`, which must exist, or for the empty text the platform's one for
    /// such files, see vxPath_GetCacheDirPath(). Below it lie `aSubDir1` and in that `aSubDir2`, each
    /// unless it is empty; they are made where they are missing. The limit is in bytes.
    ///
    /// Fails:    null, logged as an error, when a directory is missing and cannot be made.
    /// Owner:    the caller, who deletes it.
    static vxFileCacheManager* New(uint32_t aMaxSize, const vxCString& aBaseDir,
                                   const vxCString& aSubDir1, const vxCString& aSubDir2);

    /// Forgets the files, and leaves them on the disk.
    virtual ~vxFileCacheManager();

    vxFileCacheManager(const vxFileCacheManager&) = delete;
    vxFileCacheManager& operator=(const vxFileCacheManager&) = delete;

    /// Opens a file of this name, which is created if there is none; `*aCreated` tells which.
    ///
    /// Who created it writes it and then calls SetCachedFileState(), with success or without. Until
    /// then others who ask for the name wait, for ever if no report comes: they look every 100
    /// milliseconds. Then they get the ready file, or create it themselves. `anOpenMode` is a
    /// kvxFileCacheOpenMode_*.
    ///
    /// Fails:    null, with `*aCreated` false: the file cannot be created or opened, one that is
    ///           stale or has vanished cannot be removed, or it is ready and the mode is
    ///           kvxFileCacheOpenMode_CreateReadWrite.
    /// Owner:    the caller, who deletes the file.
    /// Threads:  any, guarded by mMutex. Blocks while another thread writes the file.
    vxFile* OpenCachedFile(const vxCString& aFileName, bool* aCreated, int anOpenMode);

    /// Reports that a created file is complete, or with false that it could not be made.
    ///
    /// A complete file is ready, and files are removed if the total exceeds the limit now. It may
    /// be closed already; an open one stays open, even if it is removed itself. A failed one is
    /// closed and removed. A name that is not known is ignored.
    ///
    /// Asserts:  theInfo->mState == kvxFileCacheState_Caching; the report is ignored otherwise.
    /// Owner:    the caller keeps `aFile`.
    void SetCachedFileState(const vxCString& aFileName, vxFile* aFile, bool afOK);

    /// Removes a file from the disk and forgets it, in whatever state.
    ///
    /// Fails:    false, logged as a warning, when the disk does not let it go: it is stale then. For
    ///           a name that is not known, whether there is no such file on the disk any more.
    bool RemoveTempFile(const vxCString& aFileName);

    /// Removes all files, and with `afRemoveDir` the directory; then reads the directory again.
    ///
    /// Files that are being written go, too, and reports about them are ignored. The callback is
    /// not called.
    ///
    /// Fails:    false, logged as a warning, when a file stays, or the directory.
    bool Empty(bool afRemoveDir);

    /// Returns the path of a file of this name in the directory; empty where the name is refused.
    vxCString GetFullPath(const vxCString& aFileName);

    /// Sets what is called with `aData` and the name when a file has been removed from the disk; null
    /// for nothing.
    ///
    /// It runs with mMutex held. It may call the manager, though not for the same name, and must not
    /// wait for another thread that does.
    void SetFileRemovedCallBack(void (*aCallback)(void* aData, const char* aFileName), void* aData);

    /// Asks the disk for a file's size in bytes and for the date of its creation in seconds since
    /// 1970; the current date where the system does not tell. Either target may be null.
    ///
    /// Fails:    false when there is no such file; the targets are left alone. The size is 0 where
    ///           the file cannot be opened.
    bool FetchInfoForFile(const vxCString& aFileName, int64_t* aSize, long* aDate);

    /// Forgets a file that somebody else has removed; nothing is done to the disk, and the callback is
    /// not called. An error is logged for a name that is not known.
    void Cache_FileRemoved(const vxCString& aFileName);

private:
    vxFileCacheManager(uint32_t aMaxSize, const vxPathName& aBaseDir, const vxCString& aSubDir1,
                       const vxCString& aSubDir2);

    bool CreateSubDirectory(const vxCString& aName);
    bool EnterSubDirectory(const vxCString& aName);
    vxFile* CreateCachedFile(const vxCString& aFileName, int anOpenMode);
    vxFile* OpenReadyFile(vxFileCacheInfo* anInfo, int anOpenMode);
    vxCString FullPath(const char* aFileName) const;
    vxFileCacheInfo* Find(const vxCString& aFileName) const;
    int64_t SizeOf(const vxCString& aFileName, vxFile* aFile);
    time_t UseTime();

    void Cache_Clear();
    void Cache_Build();
    void Cache_Add(vxFileCacheInfo* anInfo);
    void Cache_FileAdded(const vxCString& aFileName);
    void Cache_Forget(vxFileCacheInfo* anInfo);
    void Cache_CheckMaxSize();

    vxPathName mDirPath;
    uint32_t mCacheMaxSize;     // bytes
    bool mfOK;                  // the directory exists
    vxHashTable* mCacheTable;   // owned: the records by name, borrowed
    vxArray* mCacheArray;       // owned: the records, which it owns
    int64_t mCurrentCacheSize;  // bytes
    vxMutex mMutex;             // guards everything
    void (*mFileRemovedCallback)(void* aData, const char* aFileName);
    void* mFileRemovedCallbackData;
    time_t mLastUse;  // the latest date that was given to a file
};
