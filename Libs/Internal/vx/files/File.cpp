// A descriptor with an owner, and a log record for each failure.
//
// Failures of the platform are logged where they are seen, so that a program that does not look at
// its results still leaves a trace of a full disk.

#include "vx/File.h"

#include <libvxLog/Assert.h>
#include <libvxLog/Log.h>

#include <cstddef>

#include "FileTimes.h"
#include "vx/DateTime.h"

namespace {

// How descriptors look in log records, whose formats show addresses.
const void* vxShown(vxFileFD aFD) {
    return reinterpret_cast<const void*>(aFD);
}

}  // namespace

bool vxFile::Remove(const char* aPath) {
    const int theResult = vxFile_Remove(aPath);
    return theResult == 0 || theResult == kvxFileErrorNotFound;
}

bool vxFile::Exists(const char* aPath) {
    return vxFile_Exists(aPath) != 0;
}

bool vxFile::Rename(const char* aFrom, const char* aTo) {
    return vxFile_Rename(aFrom, aTo) == 0;
}

bool vxFile::Access(const char* aPath, int aMode) {
    return vxFile_Access(aPath, aMode) == 0;
}

bool vxFile::GetTimes(const char* aPath, vxDateTime* aCreation, vxDateTime* anAccess,
                      vxDateTime* aModification) {
    return vxGetTimes(vxFile_GetTimes, aPath, aCreation, anAccess, aModification);
}

bool vxFile::SetModificationTime(const char* aPath, const vxDateTime& aTime) {
    if (!aTime.IsValid()) {
        return false;
    }
    const vxtimeval theTime = {static_cast<int32_t>(aTime.GetTicks()),
                               static_cast<int32_t>(aTime.GetMillisecond()) * 1000};
    return vxFile_SetModificationTime(aPath, &theTime) == 0;
}

bool vxFile::ChangeSize(const char* aPath, int64_t aSize) {
    return vxFile_SetSize(aPath, aSize) == 0;
}

vxFile::vxFile(const char* aPath, int aMode) : mFD(kvxFileFDInvalid), mErrorCode(0) {
    Open(aPath, aMode);
}

void vxFile::Attach(vxFileFD aFD) {
    if (aFD != mFD) {
        Close();
        mFD = aFD;
    }
}

vxFileFD vxFile::Detach() {
    const vxFileFD theFD = mFD;
    mFD = kvxFileFDInvalid;
    return theFD;
}

bool vxFile::Create(const char* aPath, bool afTruncate, int aPermissions) {
    const int theMode = vxFileOpenMode_Create | vxFileOpenMode_ReadWrite |
                        (afTruncate ? vxFileOpenMode_Truncate : vxFileOpenMode_Exclusive);
    vxFileFD theFD;
    mErrorCode = vxFile_Open(aPath, theMode, aPermissions, &theFD);
    if (mErrorCode != 0) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "Create: Cannot create file '%s'\n",
              aPath == NULL ? "" : aPath);
        return false;
    }
    Attach(theFD);
    return true;
}

bool vxFile::Open(const char* aPath, int aMode, int aPermissions) {
    vxFileFD theFD;
    mErrorCode = vxFile_Open(aPath, aMode, aPermissions, &theFD);
    if (mErrorCode != 0) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "Open: Cannot open file '%s'\n",
              aPath == NULL ? "" : aPath);
        return false;
    }
    Attach(theFD);
    return true;
}

bool vxFile::Close() {
    if (!IsOpened()) {
        mErrorCode = 0;
        return true;
    }
    const vxFileFD theFD = Detach();
    mErrorCode = vxFile_Close(theFD);
    if (mErrorCode != 0) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "Close: Cannot close file descriptor %p\n",
              vxShown(theFD));
    }
    return mErrorCode == 0;
}

ssize_t vxFile::Read(void* aBuffer, size_t aSize) {
    VXASSERT((aBuffer != NULL) && IsOpened());
    const ssize_t theCount = vxFile_Read(mFD, aBuffer, aSize);
    if (theCount < 0) {
        mErrorCode = static_cast<int>(theCount);
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "Read: Cannot read from file descriptor %p\n",
              vxShown(mFD));
        return -1;
    }
    return theCount;
}

size_t vxFile::Write(const void* aBuffer, size_t aSize) {
    VXASSERT((aBuffer != NULL) && IsOpened());
    const ssize_t theCount = vxFile_Write(mFD, aBuffer, aSize);
    if (theCount < 0) {
        mErrorCode = static_cast<int>(theCount);
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "Write: Cannot write to file descriptor %p\n",
              vxShown(mFD));
        return 0;
    }
    return static_cast<size_t>(theCount);
}

bool vxFile::Flush() {
    if (IsOpened()) {
        mErrorCode = vxFile_Flush(mFD);
    }
    return mErrorCode == 0;
}

int64_t vxFile::Seek(int64_t anOffset, int aSeekMode) {
    VXASSERT(IsOpened());
    mErrorCode = vxFile_Seek(mFD, anOffset, aSeekMode);
    if (mErrorCode != 0) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "Seek: Cannot seek on file descriptor %p\n",
              vxShown(mFD));
        return kvxFileOffsetInvalid;
    }
    return Tell();
}

int64_t vxFile::Tell() {
    vxFileOffset theOffset;
    mErrorCode = vxFile_Tell(mFD, &theOffset);
    if (mErrorCode != 0) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "Tell: Cannot get position\n");
        return kvxFileOffsetInvalid;
    }
    return theOffset;
}

bool vxFile::ChangeSize(int64_t aSize) {
    mErrorCode = vxFile_ChangeSize(mFD, aSize);
    if (mErrorCode != 0) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "ChangeSize: Cannot truncate/extend file\n");
    }
    return mErrorCode == 0;
}

int64_t vxFile::Length() {
    vxFileOffset theSize;
    mErrorCode = vxFile_GetSize(mFD, &theSize);
    return mErrorCode == 0 ? theSize : kvxFileOffsetInvalid;
}

bool vxFile::EndOfFile() const {
    return IsOpened() && vxFile_EndOfFile(mFD) != 0;
}
