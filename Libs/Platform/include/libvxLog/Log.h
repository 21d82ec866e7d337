#pragma once

#include <libteskTools/Types.h>

/// Levels of a record. A module's level lets records of that level and below through.
/// @{
#define VXLOGLEVEL_NONE 0
#define VXLOGLEVEL_ERROR 1
#define VXLOGLEVEL_WARNING 2
#define VXLOGLEVEL_INFO 3
#define VXLOGLEVEL_DEBUG 4
/// @}

/// Number of the part of a program that logs. Programs number theirs from 256.
typedef uint16_t vxLogModule;

/// The parts of the library that log; VXLOG_M_DEFAULT is for what belongs to none.
/// @{
#define VXLOG_M_DEFAULT 0
#define VXLOG_M_QUERY 8
#define VXLOG_M_SELECT 25
#define VXLOG_M_PLUGIN 29
#define VXLOG_M_FILECACHE 36
#define VXLOG_M_FILE 42
#define VXLOG_M_THREADING 44
#define VXLOG_M_JSON 144
/// @}

/// Stands for every module where a level is set.
#define kvxLogAllModules ((vxLogModule)0xFFFF)

VX_C_BEGIN

/// Levels by module, each combined by exclusive-or with the level that a module starts with, so
/// that the table of a program which changes no level is never written and costs no memory.
extern VX_API uint8_t _vxLogLevels[0x10000];
#define _VXLOG_INITIAL_LEVEL VXLOGLEVEL_WARNING

/// Returns the level of a module: records above it are dropped before they are formatted.
///
/// Threads:  any, atomic.
static inline int vxLog_GetLevel(vxLogModule aModule) {
    return __atomic_load_n(&_vxLogLevels[aModule], __ATOMIC_RELAXED) ^ _VXLOG_INITIAL_LEVEL;
}

/// Opens a record of the calling thread. Use vxLog_Begin(), which adds the source position.
///
/// A record that is opened while another is open is one of its own; once it is closed, the outer
/// one goes on.
///
/// Threads:  any; each thread has its own records.
VX_API void _vxLog_Begin(int aLevel, vxLogModule aModule, const char* aFile, int aLine);

/// Adds formatted text to the calling thread's open record; without one it does nothing.
///
/// Threads:  any; each thread has its own records.
VX_API void vxLog_Append_F(const char* aFormat, ...) VX_PRINTF(1, 2);

/// Closes the calling thread's record and hands it out whole: to the log handler, else to the
/// file, to the system log or to standard error (see <libvxLog/Handlers.h>). Without an open
/// record it does nothing.
///
/// Threads:  any; each thread has its own records.
VX_API void vxLog_End(void);

VX_C_END

/// Opens a record at this source line. Test the level first, or use VXLOG().
#define vxLog_Begin(aLevel, aModule) _vxLog_Begin(aLevel, aModule, __FILE__, __LINE__)

/// Logs one formatted record where the module's level lets `aLevel` through; otherwise neither
/// formats nor evaluates the arguments.
#define VXLOG(aLevel, aModule, ...)                \
    do {                                           \
        if (vxLog_GetLevel(aModule) >= (aLevel)) { \
            vxLog_Begin(aLevel, aModule);          \
            vxLog_Append_F(__VA_ARGS__);           \
            vxLog_End();                           \
        }                                          \
    } while (false)
