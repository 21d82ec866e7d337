#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// A loaded plug-in file.
typedef struct vxOSPlugin* vxOSPluginHandle;

/// An entry point of unknown type; cast it to the type that its name stands for.
typedef void (*vxPluginFunc_Generic)(void);

/// Loads a shared library with its symbols resolved at once and kept to itself.
///
/// `aPath` should hold a '/': a bare name is looked up on the loader's own search path.
///
/// Fails:    null, also for a null or empty path, for what is no regular file and for a file that was
///           cut short; why, in the loader's own words where it was asked, is logged at error level
///           in VXLOG_M_PLUGIN.
/// Owner:    the caller, who unloads it with vxPlugin_Unload().
/// Threads:  any.
VX_API vxOSPluginHandle vxPlugin_Load(const char* aPath);

/// Returns an entry point by its symbol name; null when there is none, and for a null handle or name.
///
/// Libraries that the plug-in stands on are searched behind the plug-in itself.
VX_API vxPluginFunc_Generic vxPlugin_GetSymbol(vxOSPluginHandle aPlugin, const char* aName);

/// Unloads a plug-in; every pointer into it is dead afterwards. Null does nothing.
VX_API void vxPlugin_Unload(vxOSPluginHandle aPlugin);

/// Returns the plug-in directory: the environment variable VXPLUGINPATH, else /usr/lib/vx/plugins.
///
/// Owner:    the caller, who releases the text with free().
VX_API char* vxPlugin_GetDefaultPath(void);

/// Returns what stands between the name of a plug-in and its extension: nothing.
VX_API const char* vxPlugin_GetDebugReleaseSuffix(void);

/// Returns the extension of plug-in files: ".so".
VX_API const char* vxPlugin_GetExtension(void);

VX_C_END
