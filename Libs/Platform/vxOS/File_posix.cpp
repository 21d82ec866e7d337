// Files over POSIX descriptors.
//
// Nothing is buffered here: what was written is with the kernel when a call returns. Offsets have
// 64 bits because this library is compiled with _FILE_OFFSET_BITS=64. An invalid descriptor never
// reaches the system.

#include <libvxOS/File.h>

#include "FileError_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <cstdio>

static_assert(sizeof(off_t) == sizeof(vxFileOffset), "compile with _FILE_OFFSET_BITS=64");

namespace {

bool vxIsValid(vxFileFD aFD) {
    return aFD >= 0 && aFD <= INT_MAX;
}

int vxOpenFlags(int aFlags) {
    const bool theWrites = (aFlags & vxFileOpenMode_Write) != 0;
    int theFlags = O_CLOEXEC | O_NOCTTY;
    if (theWrites) {
        theFlags |= (aFlags & vxFileOpenMode_Read) != 0 ? O_RDWR : O_WRONLY;
    } else {
        theFlags |= O_RDONLY;
    }
    if ((aFlags & vxFileOpenMode_Create) != 0) {
        // Exclusive without Create has no meaning for the system.
        theFlags |= (aFlags & vxFileOpenMode_Exclusive) != 0 ? O_CREAT | O_EXCL : O_CREAT;
    }
    if ((aFlags & vxFileOpenMode_Append) != 0) {
        theFlags |= O_APPEND;
    }
    if (theWrites && (aFlags & vxFileOpenMode_Truncate) != 0) {
        theFlags |= O_TRUNC;
    }
    return theFlags;
}

mode_t vxCreationMode(int aPermissions) {
    const mode_t theRead = (aPermissions & vxFileAccessMode_Read) != 0 ? 0444 : 0;
    const mode_t theWrite = (aPermissions & vxFileAccessMode_Write) != 0 ? 0222 : 0;
    return theRead | theWrite;
}

vxtimeval vxTimeValFrom(const statx_timestamp& aTime) {
    if (aTime.tv_sec < INT32_MIN || aTime.tv_sec > INT32_MAX) {
        return {-1, -1};
    }
    return {static_cast<int32_t>(aTime.tv_sec), static_cast<int32_t>(aTime.tv_nsec / 1000)};
}

void vxStoreTime(vxtimeval* aTarget, const statx_timestamp& aTime) {
    if (aTarget != nullptr) {
        *aTarget = vxTimeValFrom(aTime);
    }
}

// The end of a device is where seeking to its end leads.
vxFileOffset vxDeviceSize(int aFD) {
    const off_t thePosition = lseek(aFD, 0, SEEK_CUR);
    const off_t theSize = lseek(aFD, 0, SEEK_END);
    lseek(aFD, thePosition, SEEK_SET);
    return theSize;
}

}  // namespace

int vxFile_Open(const char* aPath, int aFlags, int aPermissions, vxFileFD* aFD) {
    *aFD = kvxFileFDInvalid;
    if ((aFlags & vxFileOpenMode_ReadWrite) == 0) {
        return kvxFileErrorUnknown;
    }
    const int theFD = vxUninterrupted([=] {
        return open(vxNameOrEmpty(aPath), vxOpenFlags(aFlags), vxCreationMode(aPermissions));
    });
    if (theFD < 0) {
        return vxFileErrorFrom(errno);
    }
    *aFD = theFD;
    return 0;
}

int vxFile_Close(vxFileFD aFD) {
    if (!vxIsValid(aFD)) {
        return kvxFileErrorUnknown;
    }
    // After a signal the descriptor is gone all the same; another thread may have it already.
    const int theResult = close(static_cast<int>(aFD));
    return theResult < 0 && errno != EINTR ? vxFileErrorFrom(errno) : 0;
}

ssize_t vxFile_Read(vxFileFD aFD, void* aBuffer, size_t aSize) {
    if (!vxIsValid(aFD) || (aBuffer == nullptr && aSize > 0)) {
        return kvxFileErrorUnknown;
    }
    const size_t theSize = aSize < SSIZE_MAX ? aSize : SSIZE_MAX;
    const ssize_t theCount =
        vxUninterrupted([=] { return read(static_cast<int>(aFD), aBuffer, theSize); });
    return theCount < 0 ? vxFileErrorFrom(errno) : theCount;
}

ssize_t vxFile_Write(vxFileFD aFD, const void* aBuffer, size_t aSize) {
    if (!vxIsValid(aFD) || (aBuffer == nullptr && aSize > 0)) {
        return kvxFileErrorUnknown;
    }
    const char* theBytes = static_cast<const char*>(aBuffer);
    const size_t theSize = aSize < SSIZE_MAX ? aSize : SSIZE_MAX;
    size_t theDone = 0;
    while (theDone < theSize) {
        const ssize_t theCount = vxUninterrupted(
            [=] { return write(static_cast<int>(aFD), theBytes + theDone, theSize - theDone); });
        if (theCount < 0 && theDone == 0) {
            return vxFileErrorFrom(errno);
        }
        if (theCount <= 0) {
            break;
        }
        theDone += static_cast<size_t>(theCount);
    }
    return static_cast<ssize_t>(theDone);
}

int vxFile_Flush(vxFileFD aFD) {
    if (!vxIsValid(aFD)) {
        return kvxFileErrorUnknown;
    }
    const int theResult = vxUninterrupted([=] { return fsync(static_cast<int>(aFD)); });
    // What has nothing to store, such as a pipe, says that the operation is not for it.
    return theResult < 0 && errno != EINVAL && errno != ENOTSUP ? vxFileErrorFrom(errno) : 0;
}

int vxFile_Seek(vxFileFD aFD, vxFileOffset anOffset, int aMode) {
    constexpr int kWhence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (!vxIsValid(aFD) || aMode < vxFileSeekMode_Begin || aMode > vxFileSeekMode_End) {
        return kvxFileErrorUnknown;
    }
    return lseek(static_cast<int>(aFD), anOffset, kWhence[aMode]) < 0 ? vxFileErrorFrom(errno) : 0;
}

int vxFile_Tell(vxFileFD aFD, vxFileOffset* anOffset) {
    *anOffset = kvxFileOffsetInvalid;
    if (!vxIsValid(aFD)) {
        return kvxFileErrorUnknown;
    }
    *anOffset = lseek(static_cast<int>(aFD), 0, SEEK_CUR);
    return *anOffset < 0 ? vxFileErrorFrom(errno) : 0;
}

int vxFile_ChangeSize(vxFileFD aFD, vxFileOffset aSize) {
    if (!vxIsValid(aFD)) {
        return kvxFileErrorUnknown;
    }
    return vxFileResult(vxUninterrupted([=] { return ftruncate(static_cast<int>(aFD), aSize); }));
}

int vxFile_GetSize(vxFileFD aFD, vxFileOffset* aSize) {
    *aSize = kvxFileOffsetInvalid;
    struct stat theState;
    if (!vxIsValid(aFD)) {
        return kvxFileErrorUnknown;
    }
    if (fstat(static_cast<int>(aFD), &theState) < 0) {
        return vxFileErrorFrom(errno);
    }
    if (S_ISREG(theState.st_mode) || S_ISDIR(theState.st_mode)) {
        *aSize = theState.st_size;
    } else if (S_ISBLK(theState.st_mode)) {
        *aSize = vxDeviceSize(static_cast<int>(aFD));
    }
    return *aSize < 0 ? kvxFileErrorUnknown : 0;
}

int vxFile_EndOfFile(vxFileFD aFD) {
    vxFileOffset thePosition;
    vxFileOffset theSize;
    return vxFile_Tell(aFD, &thePosition) == 0 && vxFile_GetSize(aFD, &theSize) == 0 &&
           thePosition >= theSize;
}

int vxFile_Exists(const char* aPath) {
    struct stat theState;
    return stat(vxNameOrEmpty(aPath), &theState) == 0 && !S_ISDIR(theState.st_mode);
}

int vxFile_Remove(const char* aPath) {
    return vxFileResult(unlink(vxNameOrEmpty(aPath)));
}

int vxFile_Rename(const char* aFrom, const char* aTo) {
    return vxFileResult(rename(vxNameOrEmpty(aFrom), vxNameOrEmpty(aTo)));
}

int vxFile_Access(const char* aPath, int aMode) {
    int theMode = F_OK;
    if ((aMode & vxFileAccessMode_Read) != 0) {
        theMode |= R_OK;
    }
    if ((aMode & vxFileAccessMode_Write) != 0) {
        theMode |= W_OK;
    }
    return vxFileResult(access(vxNameOrEmpty(aPath), theMode));
}

int vxFile_GetTimes(const char* aPath, vxtimeval* aCreation, vxtimeval* anAccess,
                    vxtimeval* aModification) {
    struct statx theState;
    const unsigned theMask = STATX_ATIME | STATX_MTIME | STATX_CTIME | STATX_BTIME;
    if (statx(AT_FDCWD, vxNameOrEmpty(aPath), AT_STATX_SYNC_AS_STAT, theMask, &theState) < 0) {
        return vxFileErrorFrom(errno);
    }
    const bool theKnowsBirth = (theState.stx_mask & STATX_BTIME) != 0;
    vxStoreTime(aCreation, theKnowsBirth ? theState.stx_btime : theState.stx_ctime);
    vxStoreTime(anAccess, theState.stx_atime);
    vxStoreTime(aModification, theState.stx_mtime);
    return 0;
}

int vxFile_SetModificationTime(const char* aPath, const vxtimeval* aTime) {
    if (aTime->tv_usec < 0 || aTime->tv_usec > 999999) {
        return kvxFileErrorUnknown;
    }
    timespec theTimes[2] = {};
    theTimes[0].tv_nsec = UTIME_OMIT;
    theTimes[1].tv_sec = aTime->tv_sec;
    theTimes[1].tv_nsec = aTime->tv_usec * 1000L;
    return vxFileResult(utimensat(AT_FDCWD, vxNameOrEmpty(aPath), theTimes, 0));
}

int vxFile_SetSize(const char* aPath, vxFileOffset aSize) {
    return vxFileResult(vxUninterrupted([=] { return truncate(vxNameOrEmpty(aPath), aSize); }));
}

int vxFileOffset_to_ssize_t(vxFileOffset anOffset, ssize_t* aSize) {
    const ssize_t theSize = static_cast<ssize_t>(anOffset);
    if (theSize != anOffset) {
        return kvxFileErrorUnknown;
    }
    *aSize = theSize;
    return 0;
}
