#pragma once

#include <sys/types.h>

#include <libteskTools/Types.h>
#include <libvxOS/TimeVal.h>

// Files by descriptor and by name. Names are bytes, separated by `/`, of whatever encoding; a null
// name is treated as the empty one, which names nothing. Descriptors do not survive the start of
// another program. Calls continue after a signal.

/// An open file, or kvxFileFDInvalid; every operation answers kvxFileErrorUnknown to the latter.
typedef intptr_t vxFileFD;

/// Stands for no open file.
#define kvxFileFDInvalid ((vxFileFD)-1)

/// A position or size in bytes, signed and of 64 bits on every target.
typedef int64_t vxFileOffset;

/// Stands for a position or size that is not known.
#define kvxFileOffsetInvalid ((vxFileOffset)-1)

/// How a file is opened; to be combined. At least one of Read and Write is needed.
enum {
    vxFileOpenMode_Read = 0x01,
    vxFileOpenMode_Write = 0x02,
    vxFileOpenMode_ReadWrite = 0x03,
    vxFileOpenMode_Exclusive = 0x04,  ///< with Create: fail if the file is there already
    vxFileOpenMode_Append = 0x08,     ///< every write goes to the end of the file
    vxFileOpenMode_Create = 0x10,     ///< make the file if it is not there
    vxFileOpenMode_Truncate = 0x20    ///< with Write: start with an empty file
};

/// What a position is counted from.
enum { vxFileSeekMode_Begin = 0, vxFileSeekMode_Current = 1, vxFileSeekMode_End = 2 };

/// What may be done with a file. The permissions of a new file are such a value as well: what its
/// owner, its group and others may do, less what the process's umask takes away.
enum { vxFileAccessMode_Read = 1, vxFileAccessMode_Write = 2, vxFileAccessMode_ReadWrite = 3 };

/// Results below 0; 0 is success.
enum {
    kvxFileErrorUnknown = -1,  ///< every other reason
    kvxFileErrorReadOnlyFileSystem = -2,
    kvxFileErrorNotFound = -3,
    kvxFileErrorAlreadyExists = -4,
    kvxFileErrorNoSpace = -5  ///< device or quota is full
};

VX_C_BEGIN

/// Opens a file and stores its descriptor; `aFlags` combines vxFileOpenMode_*.
///
/// `aPermissions` matters only where the file is created. A directory may open for reading, but
/// gives no bytes.
///
/// Fails:    a kvxFileError*; `*aFD` is then kvxFileFDInvalid.
/// Owner:    the caller, who closes the descriptor with vxFile_Close().
/// Threads:  any. Blocks on a pipe until the other end is opened.
VX_API int vxFile_Open(const char* aPath, int aFlags, int aPermissions, vxFileFD* aFD);

/// Closes a descriptor, which is gone even if this fails.
///
/// Fails:    a kvxFileError*, for instance when what was written could not be stored.
VX_API int vxFile_Close(vxFileFD aFD);

/// Reads up to `aSize` bytes at the position and returns how many; 0 is the end of the file.
///
/// Fewer bytes than asked for are no sign of the end: pipes and devices give what they have.
///
/// Fails:    a kvxFileError*; a null buffer for a size above 0 is one reason.
/// Threads:  any. Blocks until there is something.
VX_API ssize_t vxFile_Read(vxFileFD aFD, void* aBuffer, size_t aSize);

/// Writes `aSize` bytes, in as many steps as the system needs, and returns how many were written.
///
/// Fewer than asked for means that the device failed after a part; asking again tells why.
///
/// Fails:    a kvxFileError*; a null buffer for a size above 0 is one reason.
/// Threads:  any. Blocks until everything is handed over.
VX_API ssize_t vxFile_Write(vxFileFD aFD, const void* aBuffer, size_t aSize);

/// Has the device store what was written; pipes and the like have nothing to store.
///
/// Fails:    a kvxFileError*.
/// Threads:  any. Blocks for as long as the device takes.
VX_API int vxFile_Flush(vxFileFD aFD);

/// Moves the position; beyond the end is allowed, before the beginning is not.
///
/// Fails:    a kvxFileError*, also where there are no positions, as in a pipe.
VX_API int vxFile_Seek(vxFileFD aFD, vxFileOffset anOffset, int aMode);

/// Stores the position.
///
/// Fails:    a kvxFileError*; `*anOffset` is then kvxFileOffsetInvalid.
VX_API int vxFile_Tell(vxFileFD aFD, vxFileOffset* anOffset);

/// Cuts the file or extends it with zeros; the position stays.
///
/// Fails:    a kvxFileError*.
VX_API int vxFile_ChangeSize(vxFileFD aFD, vxFileOffset aSize);

/// Stores the size; only files and block devices have one.
///
/// Fails:    a kvxFileError*; `*aSize` is then kvxFileOffsetInvalid.
VX_API int vxFile_GetSize(vxFileFD aFD, vxFileOffset* aSize);

/// Returns 1 when the position is at the end or beyond it, else 0, as where there is no end.
VX_API int vxFile_EndOfFile(vxFileFD aFD);

/// Returns 1 when the name leads to something that is not a directory, else 0.
VX_API int vxFile_Exists(const char* aPath);

/// Removes a name that is not a directory; of a symbolic link the link itself.
///
/// Fails:    a kvxFileError*, kvxFileErrorNotFound if there is no such name.
VX_API int vxFile_Remove(const char* aPath);

/// Gives a file or directory another name on the same file system, at once for every observer. A
/// file that has the new name is replaced.
///
/// Fails:    a kvxFileError*.
VX_API int vxFile_Rename(const char* aFrom, const char* aTo);

/// Returns 0 when the process may do what `aMode` says; a mode of 0 asks whether the name exists.
///
/// Fails:    a kvxFileError*.
VX_API int vxFile_Access(const char* aPath, int aMode);

/// Stores when the file was made, last read and last changed; each target may be null.
///
/// Where the file system keeps no date of creation, it is the date of the last change of the
/// file's attributes. A date that vxtimeval cannot hold has both words -1.
///
/// Fails:    a kvxFileError*; the targets are left alone.
VX_API int vxFile_GetTimes(const char* aPath, vxtimeval* aCreation, vxtimeval* anAccess,
                           vxtimeval* aModification);

/// Sets when the file was last changed, and no other date.
///
/// Fails:    a kvxFileError*, also for microseconds outside 0 to 999999.
VX_API int vxFile_SetModificationTime(const char* aPath, const vxtimeval* aTime);

/// Cuts the file with this name or extends it with zeros.
///
/// Fails:    a kvxFileError*.
VX_API int vxFile_SetSize(const char* aPath, vxFileOffset aSize);

/// Converts an offset to the type that counts bytes in memory, which has 32 bits on some targets.
///
/// Fails:    kvxFileErrorUnknown when it does not fit; `*aSize` is then left alone.
VX_API int vxFileOffset_to_ssize_t(vxFileOffset anOffset, ssize_t* aSize);

VX_C_END
