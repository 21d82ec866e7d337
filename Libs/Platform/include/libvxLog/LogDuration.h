#pragma once

// Log scopes that tell how long something lasted.

#include <libvxLog/Log.h>

/// What a scope says, at its level, about the label that it is given.
typedef enum {
    kvxLogDuration_Start = 1,     ///< "LABEL..." and "LABEL: done in N ms"
    kvxLogDuration_Load = 2,      ///< "Loading LABEL..." and "Loaded LABEL in N ms"
    kvxLogDuration_Unload = 3,    ///< "Unloading LABEL..." and "Unloaded LABEL in N ms"
    kvxLogDuration_Duration = 5,  ///< only "LABEL: N ms", at the end
} vxLogDurationKind;

VX_C_BEGIN

typedef struct _vxLogDurationScope _vxLogDurationScope;

/// Opens a scope and says so where the kind does. Use VXLOG_DURATION().
///
/// Owner:    the caller, who ends it once with _vxLogDuration_End().
/// Threads:  any.
VX_API _vxLogDurationScope* _vxLogDuration_Begin(int aLevel, vxLogModule aModule,
                                                 vxLogDurationKind aKind, const char* aFile,
                                                 int aLine, const char* aFormat, ...)
    VX_PRINTF(6, 7);

/// Logs how long the scope was open, on the monotonic clock, and frees it.
///
/// Threads:  any.
VX_API void _vxLogDuration_End(_vxLogDurationScope* aScope);

VX_C_END

#ifdef __cplusplus

/// Ends a log scope when it goes out of scope itself; VXLOG_DURATION() declares one.
class vxLogDuration {
public:
    /// Takes the scope over; null for one that is not logged.
    explicit vxLogDuration(_vxLogDurationScope* aScope) : mScope(aScope) {}
    ~vxLogDuration() {
        if (mScope != NULL) {
            _vxLogDuration_End(mScope);
        }
    }
    vxLogDuration(const vxLogDuration&) = delete;
    vxLogDuration& operator=(const vxLogDuration&) = delete;

private:
    _vxLogDurationScope* mScope;  // owned; null where the level does not let it through
};

/// Declares `aName`, a scope that logs until the end of the block, where the module's level lets
/// `aLevel` through; otherwise the label is neither formatted nor evaluated.
///
///     VXLOG_DURATION(theScope, VXLOGLEVEL_INFO, VXLOG_M_PLUGIN, kvxLogDuration_Load, "'%s'", aPath);
#define VXLOG_DURATION(aName, aLevel, aModule, aKind, ...)                                  \
    const vxLogDuration aName(                                                              \
        vxLog_GetLevel(aModule) >= (aLevel)                                                 \
            ? _vxLogDuration_Begin(aLevel, aModule, aKind, __FILE__, __LINE__, __VA_ARGS__) \
            : NULL)

#endif
