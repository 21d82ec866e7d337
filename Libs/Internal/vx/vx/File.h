#pragma once

#include <libvxOS/File.h>

#include "vx/Api.h"

class vxDateTime;

/// An open file, or none.
///
/// Descriptor, positions, modes and error codes are those of <libvxOS/File.h>. Nothing is buffered:
/// a write is with the system when it returns. Every operation on the descriptor that fails is
/// logged as an error of the module VXLOG_M_FILE, and leaves the platform's code for GetErrorCode().
///
///     vxFile theFile("/tmp/x", vxFileOpenMode_Read);
///     if (theFile.IsOpened()) { ... }   // closed when theFile goes
///
/// Paths are texts; a vxPathName or a vxCString converts by itself.
///
/// Owner:    the object closes its descriptor, unless Detach() has taken it back.
/// Threads:  one at a time.
class VX_EXPORT vxFile {
public:
    // Files by name; true on success.

    /// Removes a file, of a symbolic link the link itself; true also when there is nothing of this
    /// name.
    static bool Remove(const char* aPath);

    /// Is there something of this name that is not a directory?
    static bool Exists(const char* aPath);

    /// Renames a file or directory; a file that has the new name is replaced.
    static bool Rename(const char* aFrom, const char* aTo);

    /// May the process do what `aMode`, a vxFileAccessMode_*, says?
    static bool Access(const char* aPath, int aMode);

    /// Tells when the file was made, last read and last changed; each target may be null.
    ///
    /// Fails:    false; the targets are left alone.
    static bool GetTimes(const char* aPath, vxDateTime* aCreation, vxDateTime* anAccess,
                         vxDateTime* aModification);

    /// Sets when the file was last changed, to the millisecond; an invalid date is refused.
    static bool SetModificationTime(const char* aPath, const vxDateTime& aTime);

    /// Cuts the file or extends it with zeros.
    static bool ChangeSize(const char* aPath, int64_t aSize);

    // Opening and closing

    /// No file.
    vxFile() : mFD(kvxFileFDInvalid), mErrorCode(0) {}

    /// Opens a file as Open() does; ask IsOpened().
    vxFile(const char* aPath, int aMode);

    /// Adopts a descriptor.
    explicit vxFile(vxFileFD aFD) : mFD(aFD), mErrorCode(0) {}

    ~vxFile() { Close(); }
    vxFile(const vxFile&) = delete;
    vxFile& operator=(const vxFile&) = delete;

    /// Closes the current file and adopts a descriptor; its own changes nothing.
    void Attach(vxFileFD aFD);

    /// Hands the descriptor out and forgets it; kvxFileFDInvalid if there is none.
    ///
    /// Owner:    the caller.
    vxFileFD Detach();

    /// Makes a file and opens it for reading and writing.
    ///
    /// With `afTruncate` a file that is there is emptied; without, it makes this fail.
    ///
    /// Fails:    false, logged; a file that was open before stays open.
    bool Create(const char* aPath, bool afTruncate, int aPermissions = vxFileAccessMode_ReadWrite);

    /// Opens a file; `aMode` combines vxFileOpenMode_*, the permissions are those of a new file.
    ///
    /// Fails:    false, logged; a file that was open before stays open.
    bool Open(const char* aPath, int aMode, int aPermissions = vxFileAccessMode_ReadWrite);

    /// Closes the file, if there is one; afterwards there is none.
    ///
    /// Fails:    false, logged, for instance when what was written could not be stored.
    bool Close();

    /// Is there an open file?
    bool IsOpened() const { return mFD != kvxFileFDInvalid; }

    /// Returns the code of the last operation that failed, a kvxFileError*, or 0.
    ///
    /// Reading and writing leave the code of an earlier failure; all else sets it anew.
    int GetErrorCode() const { return mErrorCode; }

    // Contents

    /// Reads up to `aSize` bytes and returns how many; 0 at the end of the file.
    ///
    /// Asserts:  (aBuffer != NULL) && IsOpened().
    /// Fails:    -1, logged.
    ssize_t Read(void* aBuffer, size_t aSize);

    /// Writes `aSize` bytes and returns how many were written.
    ///
    /// Fewer than asked for, but some, means that the device failed after a part.
    ///
    /// Asserts:  (aBuffer != NULL) && IsOpened().
    /// Fails:    0, logged.
    size_t Write(const void* aBuffer, size_t aSize);

    /// Has the device store what was written; without a file there is nothing to store.
    ///
    /// Returns whether the error code is 0 afterwards: without a file an earlier failure still
    /// counts.
    bool Flush();

    /// Moves the position and returns it; `aSeekMode` is a vxFileSeekMode_*.
    ///
    /// Asserts:  IsOpened().
    /// Fails:    -1, logged.
    int64_t Seek(int64_t anOffset, int aSeekMode);

    /// Returns the position.
    ///
    /// Fails:    -1, logged.
    int64_t Tell();

    /// Cuts the file or extends it with zeros; the position stays.
    ///
    /// Fails:    false, logged.
    bool ChangeSize(int64_t aSize);

    /// Returns the size; -1 where there is none, as in a pipe.
    int64_t Length();

    /// Is there a file, and the position at its end or beyond?
    bool EndOfFile() const;

private:
    vxFileFD mFD;    // owned, or kvxFileFDInvalid
    int mErrorCode;  // of the platform; 0 is none
};
