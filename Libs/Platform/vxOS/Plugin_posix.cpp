// Plug-ins over dlopen. Symbols are resolved at once, so that a plug-in that lacks one fails when it
// is loaded and not in the middle of its work, and are kept local, so that two plug-ins may use the
// same names. The loader takes an empty path for the program itself, which is none.

#include <libteskTools/Memory.h>
#include <libvxLog/Log.h>
#include <libvxOS/Plugin.h>

#include <dlfcn.h>

#include <cstdlib>

vxOSPluginHandle vxPlugin_Load(const char* aPath) {
    if (aPath == NULL || *aPath == '\0') {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_PLUGIN, "A plug-in needs a path\n");
        return NULL;
    }
    void* theHandle = dlopen(aPath, RTLD_NOW | RTLD_LOCAL);
    if (theHandle == NULL) {
        const char* theReason = dlerror();
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_PLUGIN, "%s\n", theReason == NULL ? aPath : theReason);
    }
    return static_cast<vxOSPluginHandle>(theHandle);
}

vxPluginFunc_Generic vxPlugin_GetSymbol(vxOSPluginHandle aPlugin, const char* aName) {
    if (aPlugin == NULL || aName == NULL) {
        return NULL;
    }
    return reinterpret_cast<vxPluginFunc_Generic>(dlsym(aPlugin, aName));
}

void vxPlugin_Unload(vxOSPluginHandle aPlugin) {
    if (aPlugin != NULL) {
        dlclose(aPlugin);
    }
}

char* vxPlugin_GetDefaultPath(void) {
    const char* thePath = getenv("VXPLUGINPATH");
    return vxStrdup(thePath != NULL && *thePath != 0 ? thePath : "/usr/lib/vx/plugins");
}

const char* vxPlugin_GetDebugReleaseSuffix(void) {
    return "";
}

const char* vxPlugin_GetExtension(void) {
    return ".so";
}
