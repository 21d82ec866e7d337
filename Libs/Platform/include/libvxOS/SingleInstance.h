#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// The claim of one process on a name.
typedef struct vxOSSingleInstanceChecker vxOSSingleInstanceChecker;

/// Claims `aKey` for this process, or finds that another one holds it.
///
/// The claim is a lock on a file in the directory XDG_RUNTIME_DIR, else TMPDIR, else /tmp; it ends
/// with the process, however that ends. A child that was forked meanwhile holds it too, until it
/// ends or runs another program. Two claims of one process on one key stand in each other's way. A
/// key that is null, empty, "." or "..", has more than 247 bytes or holds a '/' is refused.
///
/// Fails:    null when the key is refused; otherwise see vxSingleInstanceChecker_Error().
/// Owner:    the caller, who gives it up with vxSingleInstanceChecker_Delete().
/// Threads:  any.
VX_API vxOSSingleInstanceChecker* vxSingleInstanceChecker_New(const char* aKey);

/// Returns non-zero when somebody else holds the name, or when that could not be found out.
VX_API int vxSingleInstanceChecker_Exists(const vxOSSingleInstanceChecker* aChecker);

/// Returns non-zero when the lock file could not be opened or locked for another reason than that
/// somebody holds it.
VX_API int vxSingleInstanceChecker_Error(const vxOSSingleInstanceChecker* aChecker);

/// Gives the claim up; null does nothing.
VX_API void vxSingleInstanceChecker_Delete(vxOSSingleInstanceChecker* aChecker);

VX_C_END
