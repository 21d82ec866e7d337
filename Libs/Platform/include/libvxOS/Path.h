#pragma once

#include <libteskTools/Types.h>

// Names of files and directories, and places that the system or the user chooses. Names are as in
// File.h. Texts that are returned belong to the caller, who releases them with free().

/// Which form a normalized path has. On POSIX the native form is the generic one.
enum {
    kvxPathNormalizeMode_Generic = 0x00,      ///< separators are `/`
    kvxPathNormalizeMode_NativeSlash = 0x01,  ///< separators are the system's
    kvxPathNormalizeMode_NativeForm = 0x02,   ///< what else the system writes its own way
    kvxPathNormalizeMode_Native = 0x03
};

/// What a path lies on.
enum {
    kvxPathType_Unknown = 0,  ///< nothing has this name
    kvxPathType_Remote = 1,   ///< another machine's file system
    kvxPathType_Fixed = 2,
    kvxPathType_Removable = 3  ///< a medium or drive that users take out
};

VX_C_BEGIN

/// Returns the path with single separators, a relative one resolved against `anAnchor`.
///
/// A relative path is put behind the directory `anAnchor`, unless that is null or empty: then it
/// stays relative. A path for a directory ends with `/`, unless it is empty. Segments `.` and `..`
/// stay as they are, for what `..` means depends on symbolic links before it. The file system is
/// not looked at.
///
/// Fails:    null for a null path.
/// Owner:    the caller, who releases the text with free().
/// Threads:  any.
VX_API char* vxPath_Normalize(const char* aPath, int afDir, int aMode, const char* anAnchor);

/// Returns the directory for short-lived files: TMPDIR, else "/tmp".
///
/// Here and below an empty environment variable counts as none.
///
/// Threads:  any, as long as none changes the environment.
VX_API char* vxPath_GetTempDirPath(void);

/// Returns the directory for files that may be lost: VXCACHEPATH, else XDG_CACHE_HOME if that is
/// absolute, else ".cache" in HOME, else "/var/cache". It need not exist.
///
/// Threads:  any, as long as none changes the environment.
VX_API char* vxPath_GetCacheDirPath(void);

/// Returns the directory in which a program's configuration file of this name is looked for.
///
/// That is VXCONFIGPATH where it is set. Else it is the first directory that holds the file:
/// XDG_CONFIG_HOME if that is absolute, else ".config" in HOME; then each absolute directory of
/// XDG_CONFIG_DIRS, which is a list parted by `:`, else "/etc/xdg". Where none holds it, "/etc".
///
/// Threads:  any, as long as none changes the environment.
VX_API char* vxPath_GetDefaultConfigPath(const char* aFileName);

/// Returns the file name of the running program, without its directory.
///
/// Fails:    the name under which it was started, where the system does not tell.
VX_API char* vxPath_GetApplicationName(void);

/// Returns the absolute path of the running program's file, symbolic links resolved.
///
/// Fails:    the name under which it was started, where the system does not tell.
VX_API char* vxPath_GetApplicationFullPath(void);

/// Returns 1 when the path begins at the root, else 0; null does not.
VX_API int vxPath_IsAbsolute(const char* aPath);

/// Returns what the path lies on, a kvxPathType_*, as the kernel describes it.
///
/// A drive is removable when the kernel calls it so or when it is attached by USB. What lies in
/// memory or on no drive of its own is fixed.
///
/// Threads:  any.
/// Cost:     a few system calls; the medium itself is not touched.
VX_API int vxPath_GetType(const char* aPath);

/// Returns 1 when the name itself is a symbolic link, wherever that leads; else 0. Separators at
/// the end are not looked at.
///
/// Threads:  any.
VX_API int vxPath_IsLink(const char* aPath);

VX_C_END
