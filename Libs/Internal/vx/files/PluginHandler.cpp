// A table of functions beside a table of names. Missing names are all logged before a load fails, so
// that one look at the log tells what a plug-in lacks.

#include "vx/PluginHandler.h"

#include <libteskTools/Memory.h>
#include <libvxLog/Assert.h>
#include <libvxLog/Log.h>
#include <libvxLog/LogDuration.h>

#include <algorithm>
#include <cstdlib>

#include "vx/PathName.h"

vxPluginHandler::vxPluginHandler(const char** aFunctionNameList, unsigned int aCount)
    : mFunctionNameList(aFunctionNameList),
      mFunction(
          static_cast<vxPluginFunc_Generic*>(vxCalloc(aCount * sizeof(vxPluginFunc_Generic)))),
      mPluginHandle(NULL),
      mFunctionCount(aCount),
      mfStatic(false),
      mfLoaded(false) {}

vxPluginHandler::~vxPluginHandler() {
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_PLUGIN, "Deleting plugin '%s'\n", mFileName.c_str());
    if (mPluginHandle != NULL) {
        Unload();
    }
    free(mFunction);
}

void vxPluginHandler::Finalize() {}

bool vxPluginHandler::Load(const vxCString& aPath) {
    mfStatic = false;
    VXASSERT(mPluginHandle == NULL);
    if (mPluginHandle != NULL) {
        return mfLoaded;
    }
    mFilePath = aPath;
    mFileName = vxPathName::MakeFilePath(aPath).GetFileName();
    Forget();
    mPluginHandle = vxPlugin_Load(aPath);
    if (mPluginHandle == NULL) {
        return false;
    }
    if (!Resolve()) {
        Unload();
    }
    mfLoaded = mPluginHandle != NULL;
    return mfLoaded;
}

bool vxPluginHandler::Resolve() {
    bool theFoundAll = true;
    for (unsigned int i = 0; i < mFunctionCount; ++i) {
        VXASSERT((mFunctionNameList[i] != NULL) && (mFunctionNameList[i][0] != 0));
        const char* theName = mFunctionNameList[i] == NULL ? "" : mFunctionNameList[i];
        mFunction[i] = *theName == '\0' ? NULL : vxPlugin_GetSymbol(mPluginHandle, theName);
        if (mFunction[i] == NULL) {
            VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_PLUGIN, "Cannot load function '%s'\n", theName);
            theFoundAll = false;
        }
    }
    return theFoundAll;
}

bool vxPluginHandler::Load(void (**aFunctions)(), const char* aName) {
    if (mPluginHandle != NULL) {
        Unload();
    }
    std::copy(aFunctions, aFunctions + mFunctionCount, mFunction);
    mFileName = aName;
    mfStatic = true;
    mfLoaded = true;
    return true;
}

void vxPluginHandler::Unload() {
    VXLOG_DURATION(theScope, VXLOGLEVEL_INFO, VXLOG_M_PLUGIN, kvxLogDuration_Unload, "Plugin '%s'",
                   mFileName.c_str());
    Finalize();
    if (!mfStatic && mPluginHandle != NULL) {
        vxPlugin_Unload(mPluginHandle);
    }
    mPluginHandle = NULL;
    Forget();
}

void vxPluginHandler::Forget() {
    mfLoaded = false;
    std::fill(mFunction, mFunction + mFunctionCount, vxPluginFunc_Generic());
}
