#pragma once

// How a program receives what the library reports. One handler of each kind is set at a time; a
// null handler restores the default. The context is handed back unchanged.
//
// A handler may be called from any thread, also from several at once, and may itself report: such
// a report goes to the default. Setting a handler waits for no call that is under way.

#include <libteskTools/Types.h>
#include <libvxLog/Log.h>

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

/// Sets the level of a module, or of every module (`kvxLogAllModules`).
///
/// Threads:  any, atomic for each module.
VX_API void vxLog_SetLevel(vxLogModule aModule, int aLevel);

VX_C_END
