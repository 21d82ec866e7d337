#pragma once

#include "vx/Api.h"
#include "vx/CString.h"

/// What a path name names.
enum {
    kvxPathKind_Unknown = 0,  ///< nothing: the path is invalid
    kvxPathKind_File = 1,
    kvxPathKind_Dir = 2
};

/// The name of a file or a directory, taken apart: directory, file name, extension.
///
///     vxPathName theSong = vxPathName::MakeFilePath("/music/a.b.mp3");
///     theSong.GetPath();       // "/music/"
///     theSong.GetFileName();   // "a.b"
///     theSong.GetExtension();  // "mp3"
///
/// The separator is `/`. A valid path has a directory part, which ends with a separator; with a file
/// name or an extension it is a `File`, alone it is a `Dir`. An invalid path has no parts at all:
/// whatever cannot be made into a path becomes one, without a report, so ask IsValid(). A relative
/// path is valid as long as it has a separator: "name.txt" alone is none, "./name.txt" is.
///
/// Only the text is looked at, but for the operations with `Exist` or `Removable` in their name.
/// Bytes are taken as they are, in whatever encoding. A full name is cut at its last dot, and the dot
/// is not kept: "name." becomes "name", ".." becomes ".", ".profile" an empty name with the extension
/// "profile". Programs depend on this split; to name such a file, use its text.
///
/// Threads:  one at a time; c_str() writes, too.
class VX_EXPORT vxPathName {
public:
    // Construction

    /// An invalid path.
    vxPathName() : mPathKind(kvxPathKind_Unknown) {}

    /// As SetFullPath().
    vxPathName(int aKind, const char* aPath);

    /// A file of these parts; invalid without a directory, and without both name and extension.
    vxPathName(const char* aDir, const char* aFileName, const char* anExtension);

    /// A file in a directory, or the directory itself when the name is empty.
    vxPathName(const char* aDir, const char* aFullName);

    /// Copies share their texts; the text that c_str() keeps stays behind.
    /// @{
    vxPathName(const vxPathName& aPath);
    vxPathName& operator=(const vxPathName& aPath);
    /// @}

    /// As the constructor with these arguments, for a `File` where there is only one.
    /// @{
    static vxPathName MakeFilePath(const char* aPath);
    static vxPathName MakeFilePath(const char* aDir, const char* aFullName);
    static vxPathName MakeFilePath(const char* aDir, const char* aFileName,
                                   const char* anExtension);
    /// @}

    /// The directory of that name, with or without a separator at its end.
    static vxPathName MakeDirPath(const char* aPath);

    /// The path that `aRelative` means inside the directory `anAnchor`, simplified.
    ///
    /// An absolute `aRelative` stands for itself. A path that climbs above the root, or above the
    /// first directory of a relative anchor, is invalid.
    ///
    /// Asserts:  anAnchorPath.IsDirPath().
    /// @{
    static vxPathName MakeCombinedFilePath(const vxPathName& anAnchor, const char* aRelative);
    static vxPathName MakeCombinedDirPath(const vxPathName& anAnchor, const char* aRelative);
    /// @}

    /// The directory for short-lived files, as vxPath_GetTempDirPath() gives it.
    static vxPathName MakeTempDirPath();

    /// The directory for files that may be lost, as vxPath_GetCacheDirPath() gives it.
    static vxPathName MakeCacheDirPath();

    /// A `File` where there is a file of this name, else a `Dir` where there is a directory, else an
    /// invalid path.
    static vxPathName MakeExistingPath(const char* aPath);

    // Questions about a path as text

    /// Does it begin at the root? See vxPath_IsAbsolute().
    static bool IsAbsolute(const char* aPath);

    /// Does it lie on a medium or drive that users take out?
    static bool IsPathOnRemovableDrive(const char* aPath);

    /// Is there a directory, or a file, of this name?
    /// @{
    static bool DirExists(const vxCString& aPath);
    static bool FileExists(const vxCString& aPath);
    /// @}

    /// Returns the path with single separators, that of a directory with one at its end; empty when
    /// the platform has no answer. See vxPath_Normalize().
    static vxCString NormalizePath(const char* aPath, bool afDir);

    /// As NormalizePath(), with a relative path put behind the directory `anAnchor`, unless that is
    /// null or empty.
    static vxCString NormalizePathWithAnchor(const char* aPath, bool afDir, const char* anAnchor);

    // Changing

    /// Makes this path the one that `aPath` names as `aKind`, a kvxPathKind_*.
    void SetFullPath(const char* aPath, int aKind);

    /// Replaces the directory and keeps the name.
    void SetPath(const char* aDir);

    /// Replaces file name and extension; a name without a dot has no extension.
    void SetFullName(const char* aName);

    /// Replaces one part of the name, dots in it included, and keeps the other.
    ///
    /// A directory becomes a file by it; a file that loses both parts becomes its directory. An
    /// invalid path stays invalid.
    /// @{
    void SetFileName(const char* aName);
    void SetExtension(const char* anExtension);
    /// @}

    /// Drops file name and extension: a file becomes the directory that holds it.
    void ToDirPath();

    /// Goes into a directory below the current one; nothing happens when `aPart` is empty.
    ///
    /// The text is taken as it is, doubled separators included; only a missing one at its end is
    /// added. Without a directory yet, this is SetPath().
    void AppendPathPart(const char* aPart);

    /// Resolves dots and double dots in the directory and makes its separators single, by the text
    /// alone.
    ///
    /// A `..` that climbs above the root of an absolute path, or above the first directory of a
    /// relative one, makes the path invalid. Where a directory before a `..` is a symbolic link, the
    /// result leads elsewhere. Beware that `./` becomes `/`, the root: a relative directory of which
    /// nothing remains has no other form here.
    void SimplifyPath();

    /// Makes the path invalid.
    void Reset();

    // Parts

    /// Returns kvxPathKind_*.
    int GetKind() const { return mPathKind; }
    /// Tells what the path names: anything, a directory, a file.
    /// @{
    bool IsValid() const { return mPathKind != kvxPathKind_Unknown; }
    bool IsDirPath() const { return mPathKind == kvxPathKind_Dir; }
    bool IsFilePath() const { return mPathKind == kvxPathKind_File; }
    /// @}

    /// Returns the directory, with its separator at the end.
    vxCString GetPath() const { return mPath; }

    /// Returns the file name without its extension.
    vxCString GetFileName() const { return mFileName; }

    /// Returns the extension without its dot.
    vxCString GetExtension() const { return mExtension; }

    /// Returns file name, dot and extension; without an extension there is no dot.
    vxCString GetFullName() const;

    /// Returns directory and full name.
    vxCString GetFullPath() const;

    /// Returns the full path as a text that stays until the next call or change.
    /// @{
    const char* c_str() const;
    operator const char*() const { return c_str(); }
    /// @}

    /// Returns the name of the last directory, empty for the root.
    vxCString GetDirName() const;

    /// Returns the number of separators in the directory.
    size_t GetPathCount() const;

    /// Returns what stands before the first separator for 0, empty for an absolute path; for another
    /// index what stands between that separator, counted from 1, and the next.
    vxCString GetPathPart(size_t anIndex) const;

    /// Returns the directory that holds this file or directory; the root has none, and neither has
    /// the first directory of a relative path.
    vxPathName GetParentPath() const;

    /// Returns what the path begins with, up to the first separator and with it: "/" for an absolute
    /// path.
    vxCString GetVolume() const;

    /// Is this a `Dir` path, and is there a directory?
    bool DirExists() const;

    /// Is this a `File` path, and is there a file?
    bool FileExists() const;

private:
    friend class vxDir;

    void SetNormalized(const char* aPath, int aKind, const char* anAnchor);
    void ComputeFileNameExtensionAndPathKind(const char* aText, int aKind);
    void SplitFullName(const char* aName);
    void UpdatePathKind();
    void FillJoined(vxCString& aTarget, const vxCString& aDir) const;
    void SetEntry(const vxPathName& aDir, const char* aName, bool afDir);
    static vxPathName MakeCombined(const vxPathName& anAnchorPath, const char* aRelative,
                                   int aKind);

    int mPathKind;                // kvxPathKind_*, always what the parts say
    vxCString mPath;              // empty only when invalid; ends with '/'
    vxCString mFileName;          // without extension
    vxCString mExtension;         // without dot
    mutable vxCString mFullPath;  // what c_str() returned last
};
