#pragma once

#include <libvxOS/Dir.h>

#include "vx/Api.h"
#include "vx/PathName.h"

class vxDateTime;
class vxStringList;

/// States of a vxDir.
enum { kvxDirState_Close = 0, kvxDirState_Open = 1, kvxDirState_ReadNext = 3 };

/// A directory and a walk over its entries.
///
///     vxDir theDir("/music");
///     vxPathName theEntry;
///     for (bool theMore = theDir.GetFirst(theEntry, "*.mp3", vxDIR_FILES); theMore;
///          theMore = theDir.GetNext(theEntry)) { ... }
///
/// Patterns and filter bits (`vxDIR_*`) are those of <libvxOS/Dir.h>: "*" is everything, hidden
/// entries need their bit, a symbolic link counts as what it leads to. Entries come in no particular
/// order. Every method that looks for entries starts the one walk of the object anew, but for
/// GetNext().
///
///     closed --Open--> open --GetFirst found--> reading --GetFirst, GetNext--> reading
///       ^                ^-------Rewind------------'
///       `--Close--- open, reading
///
/// Paths are texts; a vxPathName or a vxCString converts by itself.
///
/// Threads:  one at a time.
class VX_EXPORT vxDir {
public:
    // Directories by name; true on success.

    /// Is there a directory of this name, or a symbolic link to one?
    static bool Exists(const char* aPath);

    /// Removes an empty directory; true also when there is nothing of this name.
    static bool Remove(const char* aPath);

    /// Makes a directory inside one that exists; there must be nothing of this name yet.
    static bool Create(const char* aPath);

    /// Makes a directory and those above it, as far as they are missing.
    static bool CreateRecursively(const char* aPath);

    /// Returns the root directories of the system: on POSIX `/` alone.
    static vxStringList GetRootDirList();

    /// Removes a directory and all that is in it, in up to `anAttempts` rounds.
    ///
    /// A round ends with the first entry that cannot be removed; the next round starts over with
    /// what is left. Files that others add meanwhile are the reason for more than one. Of a symbolic
    /// link only the link goes, never what it leads to. The root is refused, and so
    /// is a path that ends with `.` or `..`.
    ///
    /// Returns whether the directory is gone, which includes that it never was.
    ///
    /// Fails:    false also where a path in the tree is longer than the system takes.
    /// Cost:     one open directory at a time and no recursion, however deep the tree.
    static bool RemoveRecursively(const char* aPath, unsigned anAttempts);

    /// Tells when the directory was made, last read and last changed; each target may be null.
    ///
    /// Fails:    false; the targets are left alone.
    static bool GetTimes(const char* aPath, vxDateTime* aCreation, vxDateTime* anAccess,
                         vxDateTime* aModification);

    // Walking

    /// No directory.
    vxDir();

    /// As Open().
    explicit vxDir(const char* aPath);

    ~vxDir() { Close(); }
    vxDir(const vxDir&) = delete;
    vxDir& operator=(const vxDir&) = delete;

    /// Closes the current directory and opens another one.
    ///
    /// The result is always true: whether the directory can be read shows in the first step, which
    /// finds nothing and sets Error().
    bool Open(const char* aPath);

    /// Ends the walk and clears the error; afterwards there is no directory.
    void Close();

    /// Goes back to before the first entry and clears the error; nothing without a directory.
    void Rewind();

    /// Is there a directory to walk? It may turn out not to be readable.
    bool IsOpened() const { return mState != kvxDirState_Close; }

    /// Starts the walk anew and gives its first entry that pattern and filter let through.
    ///
    /// A directory becomes a `Dir` path, anything else a `File` path. The full name of a file is
    /// split at its last dot: that of "name." comes out as "name".
    ///
    /// Asserts:  (mState == kvxDirState_Open) || (mState == kvxDirState_ReadNext).
    /// Fails:    false when there is none; `anEntry` is left alone.
    bool GetFirst(vxPathName& anEntry, const vxCString& aPattern, int aFilter = vxDIR_DEFAULT);

    /// Gives the next entry that the pattern and filter of GetFirst() let through.
    ///
    /// Asserts:  mState == kvxDirState_ReadNext.
    /// Fails:    false when there is none; `anEntry` is left alone.
    bool GetNext(vxPathName& anEntry);

    /// Returns how the last step went, a kvxDirTraverserStatus_*.
    int Error() const { return mError; }

    /// Is there a file, hidden or not, that fits?
    ///
    /// Asserts:  as GetFirst().
    bool HasFiles(const vxCString& aPattern);

    /// Is there a directory that fits? Hidden ones do not count.
    ///
    /// Asserts:  as GetFirst().
    bool HasDirs(const vxCString& aPattern);

    /// Returns the number of entries that fit.
    ///
    /// Asserts:  as GetFirst().
    size_t GetCount(const vxCString& aPattern, int aFilter = vxDIR_DEFAULT);

private:
    const vxDirEntry* FirstEntry(const vxCString& aPattern, int aFilter);
    const vxDirEntry* NextEntry();
    bool Take(const vxDirEntry* anEntry, vxPathName& aPath);

    vxPathName mPathName;        // the directory; invalid when closed
    vxDirTraverser* mTraverser;  // owned; null when closed
    int mState;                  // kvxDirState_*
    int mError;                  // kvxDirTraverserStatus_*, of the last step
};
