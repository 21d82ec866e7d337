// A scan of one directory. A plug-in that does not load is deleted at once; one that does stays until
// the loader goes.

#include "vx/PluginLoader.h"

#include <libteskTools/PtrList.h>
#include <libvxLog/Assert.h>
#include <libvxLog/Log.h>
#include <libvxLog/LogDuration.h>
#include <libvxOS/Plugin.h>

#include "vx/Dir.h"
#include "vx/PathName.h"
#include "vx/PluginHandler.h"

vxPluginLoader::vxPluginLoader() : mPluginHandlerList(vxPtrList_New()) {
    vxPtrList_SetFreeFunc(mPluginHandlerList,
                          [](void* aHandler) { delete static_cast<vxPluginHandler*>(aHandler); });
}

vxPluginLoader::~vxPluginLoader() {
    vxPluginLoader::UnloadPlugins();
    vxPtrList_Delete(mPluginHandlerList);
}

vxCString vxPluginLoader::GetPluginsPath() {
    return vxCString::FromAllocatedString(vxPlugin_GetDefaultPath());
}

int vxPluginLoader::LoadPlugins(const vxCString& aPattern, bool afStopAfterFirst,
                                bool afFailOnError) {
    const vxCString theDirectory = GetPluginsPath();
    if (!vxDir::Exists(theDirectory)) {
        return 0;
    }
    vxDir theDir(theDirectory);
    const vxCString thePattern =
        aPattern + vxPlugin_GetDebugReleaseSuffix() + vxPlugin_GetExtension();
    int theCount = 0;
    vxPathName theEntry;
    for (bool theMore =
             theDir.GetFirst(theEntry, thePattern, vxDIR_FILES | vxDIR_DIRS | vxDIR_HIDDEN);
         theMore; theMore = theDir.GetNext(theEntry)) {
        if (!IsPluginActive(theEntry.GetFullName())) {
            VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_PLUGIN, "'%s' disabled\n",
                  theEntry.GetFullName().c_str());
            continue;
        }
        vxPluginHandler* theHandler = LoadOne(theEntry.GetFullPath());
        if (theHandler != NULL) {
            AddPlugin(theHandler);
            ++theCount;
            if (afStopAfterFirst) {
                break;
            }
        } else if (afFailOnError) {
            return -1;
        }
    }
    return theCount;
}

// Returns a loaded handler, or null after a log record.
vxPluginHandler* vxPluginLoader::LoadOne(const vxCString& aPath) {
    vxPluginHandler* thePluginHandler = NewPluginHandler();
    VXASSERT(thePluginHandler != NULL);
    bool theIsLoaded = false;
    if (thePluginHandler != NULL) {
        VXLOG_DURATION(theScope, VXLOGLEVEL_INFO, VXLOG_M_PLUGIN, kvxLogDuration_Load, "'%s'",
                       aPath.c_str());
        theIsLoaded = thePluginHandler->Load(aPath);
    }
    if (theIsLoaded) {
        return thePluginHandler;
    }
    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_PLUGIN, "Failed to load '%s'\n", aPath.c_str());
    delete thePluginHandler;
    return NULL;
}

int vxPluginLoader::LoadPluginsStatic(const vxCString& aPattern, bool afStopAfterFirst,
                                      bool afFailOnError) {
    static_cast<void>(aPattern);
    static_cast<void>(afStopAfterFirst);
    static_cast<void>(afFailOnError);
    return 0;
}

void vxPluginLoader::UnloadPlugins() {
    vxPtrList_ForEach(
        mPluginHandlerList,
        [](void*, void* aHandler) {
            static_cast<vxPluginHandler*>(aHandler)->Unload();
            return true;
        },
        NULL);
}

bool vxPluginLoader::IsPluginActive(const vxCString& aFileName) {
    static_cast<void>(aFileName);
    return true;
}

unsigned int vxPluginLoader::GetPluginCount() const {
    return static_cast<unsigned int>(vxPtrList_GetCount(mPluginHandlerList));
}

vxPluginHandler* vxPluginLoader::GetPlugin(unsigned int anIndex) const {
    return static_cast<vxPluginHandler*>(vxPtrList_GetAt(mPluginHandlerList, anIndex));
}

void vxPluginLoader::AddPlugin(vxPluginHandler* aHandler) {
    vxPtrList_Append(mPluginHandlerList, aHandler);
}
