#pragma once

// How a program receives what the library reports, and where reports go otherwise. One handler of
// each kind is set at a time; a null handler restores the default. The context is handed back
// unchanged.
//
// A handler may be called from any thread, also from several at once, and may itself report: such
// a report goes to the default. Setting a handler waits for no call that is under way.

#include <libteskTools/Types.h>
#include <libvxLog/Log.h>

#include <stdbool.h>

VX_C_BEGIN

/// Receives every failed assertion instead of standard error.
VX_API void vxAssert_SetHandler(void (*aHandler)(void* aContext, const char* aCondition,
                                                 const char* aFile, int aLine),
                                void* aContext);

/// Receives every record that its module's level lets through, once, with its whole text.
VX_API void vxLog_SetHandler(void (*aHandler)(void* aContext, int aLevel, vxLogModule aModule,
                                              const char* aFile, int aLine, const char* aText),
                             void* aContext);

/// Receives what is written to the console instead of standard output.
VX_API void vxConsole_SetHandler(void (*aHandler)(void* aContext, const char* aText),
                                 void* aContext);

/// Receives fatal errors instead of the end of the program. `aSize` is the number of bytes asked
/// for, 0 where none were. With a handler set, a fatal error returns to its caller.
VX_API void vxFatalError_SetHandler(void (*aHandler)(void* aContext, const char* aResource,
                                                     size_t aSize),
                                    void* aContext);

/// Sets the level of a module, or of every module (`kvxLogAllModules`); levels outside the known
/// ones are limited to them.
///
/// Threads:  any, atomic for each module.
VX_API void vxLog_SetLevel(vxLogModule aModule, int aLevel);

/// Sets levels from a text such as "warning,json=debug": entries between commas, each a level for
/// every module or "module=level". Module entries win, wherever they stand.
///
/// Levels are none, error, warning, info, debug or 0 to 4; modules are default, query, select,
/// plugin, filecache, file, threading, json or a number. Case does not matter. The environment
/// variable VXLOG holds such a text, which is applied when the library is loaded.
///
/// Fails:    false when an entry is not understood; the others are applied.
/// Threads:  any, atomic for each module.
VX_API bool vxLog_SetLevels(const char* aText);

/// Returns the name of a module as vxLog_SetLevels() takes it, or null for one without a name.
VX_API const char* vxLog_GetModuleName(vxLogModule aModule);

/// Returns the name of a level as vxLog_SetLevels() takes it, or null for an unknown one.
VX_API const char* vxLog_GetLevelName(int aLevel);

/// Sends records to a file, behind what it holds; null ends that. Without a file and without the
/// system log, records go to standard error, as does one that could not be written.
///
/// Each record is a line "2024-05-31 13:45:00.123 warning json Source.cpp:12: text". A line that
/// would lift a regular file above `aMaxSize` bytes begins a new file; the old one is renamed to
/// end in ".1" and replaces its predecessor. A size of 0 means no limit. The environment variable
/// VXLOGFILE names such a file of at most 1 MiB.
///
/// Fails:    false when the file cannot be opened for writing, with errno; then no file is used.
/// Threads:  any; one process for each file.
VX_API bool vxLog_SetFile(const char* aPath, size_t aMaxSize);

/// Sends records to the system log under `aName`; null ends that.
///
/// Threads:  any.
VX_API void vxLog_SetSyslog(const char* aName);

/// Sends records to standard error even when they go to a file or to the system log.
///
/// Threads:  any.
VX_API void vxLog_SetStandardError(bool afWanted);

VX_C_END
