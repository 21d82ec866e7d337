#pragma once

#include <libteskTools/Types.h>
#include <libvxOS/TimeVal.h>

// Directories by name, and walks over their entries. Names are as in File.h, results are its
// kvxFileError*. A name may end with `/`.

/// Which entries a walk yields; to be combined.
enum {
    vxDIR_FILES = 0x0001,   ///< everything that is not a directory
    vxDIR_DIRS = 0x0002,    ///< directories, and symbolic links to directories
    vxDIR_HIDDEN = 0x0004,  ///< also those whose name begins with a dot
    vxDIR_DOTDOT = 0x0008,  ///< the entry "..", whatever the other bits say
    vxDIR_DEFAULT = vxDIR_FILES | vxDIR_DIRS | vxDIR_HIDDEN
};

/// Whether a walk met with trouble: a directory that cannot be opened or read.
enum { kvxDirTraverserStatus_NoError = 0, kvxDirTraverserStatus_Error = 1 };

/// One entry of a directory.
typedef struct vxDirEntry {
    const char* mName;  ///< never null, without directory
    int mfDir;          ///< non-zero for a directory or a symbolic link to one
    int mfHidden;       ///< non-zero if the name begins with a dot
} vxDirEntry;

/// A walk over the entries of one directory.
typedef struct vxDirTraverser vxDirTraverser;

VX_C_BEGIN

/// Returns 1 when the name leads to a directory, else 0.
VX_API int vxDir_Exists(const char* aPath);

/// Removes an empty directory.
///
/// Fails:    a kvxFileError*; kvxFileErrorUnknown for a symbolic link to a directory.
VX_API int vxDir_Remove(const char* aPath);

/// Makes a directory that everybody may use whom the process's umask lets.
///
/// Fails:    a kvxFileError*, kvxFileErrorAlreadyExists if there is anything of that name.
VX_API int vxDir_Create(const char* aPath);

/// Makes a directory and those above it, as far as they are missing.
///
/// Fails:    a kvxFileError*, kvxFileErrorAlreadyExists if a file is in the way; directories made
///           until then stay.
VX_API int vxDir_CreatePath(const char* aPath);

/// Returns the root directories: texts that end with NUL one behind the other, and an empty text
/// behind the last. On POSIX the only one is `/`.
///
/// Owner:    the caller, who releases the block with free().
VX_API char* vxDir_GetRootDirList(void);

/// As vxFile_GetTimes(), for directories only.
///
/// Fails:    a kvxFileError*, kvxFileErrorNotFound if there is no directory of that name.
VX_API int vxDir_GetTimes(const char* aPath, vxtimeval* aCreation, vxtimeval* anAccess,
                          vxtimeval* aModification);

/// Opens a walk. It holds one descriptor until it is deleted.
///
/// Fails:    never null; a directory that cannot be opened makes the first step report an error.
/// Owner:    the caller, who releases it with vxDirTraverser_Delete().
/// Threads:  one walk, one thread at a time.
VX_API vxDirTraverser* vxDirTraverser_New(const char* aPath);

/// Ends a walk; null is ignored.
VX_API void vxDirTraverser_Delete(vxDirTraverser* aTraverser);

/// Goes back to the beginning; the directory is read anew.
VX_API void vxDirTraverser_Rewind(vxDirTraverser* aTraverser);

/// Starts from the beginning and returns the first entry that `aPattern` and `aFilter` (vxDIR_*)
/// let through, null if there is none. Entries come in no particular order, never ".".
///
/// The pattern is one of vxCStringParser_Match(), so that "*" is everything, names with a leading dot
/// too. A null pattern is "*".
///
/// Fails:    null, with `*aStatus` kvxDirTraverserStatus_Error; `aStatus` may be null.
/// Owner:    the traverser; the entry is valid until its next call.
/// Cost:     name and pattern are compared in at most the product of their lengths.
VX_API const vxDirEntry* vxDirTraverser_GetFirst(vxDirTraverser* aTraverser, const char* aPattern,
                                                 int aFilter, int* aStatus);

/// Returns the next entry that the pattern and the filter of the first one let through; otherwise
/// as vxDirTraverser_GetFirst(). Without a first call there is none.
VX_API const vxDirEntry* vxDirTraverser_GetNext(vxDirTraverser* aTraverser, int* aStatus);

VX_C_END
