#pragma once

#include <libvxOS/Plugin.h>

#include "vx/Api.h"
#include "vx/CString.h"

/// One plug-in: its file and the entry points that were found in it.
///
/// A program derives a handler that knows the names of the entry points and calls them. Functions
/// that are linked into the program fill a handler by the same road.
///
/// Owner:    the handler owns the loaded file; the names stay the caller's and must outlive it.
/// Threads:  one at a time.
class VX_EXPORT vxPluginHandler {
public:
    /// A handler with nothing loaded, for `aCount` entry points.
    vxPluginHandler(const char** aFunctionNameList, unsigned int aCount);
    vxPluginHandler(const vxPluginHandler&) = delete;
    vxPluginHandler& operator=(const vxPluginHandler&) = delete;

    /// Unloads the file, if one is loaded.
    virtual ~vxPluginHandler();

    /// Called just before unloading, also for a handler of linked-in functions, and each time that
    /// Unload() is called.
    virtual void Finalize();

    /// Loads a file and resolves every entry point.
    ///
    /// Asserts:  mPluginHandle == NULL: load once; the loaded plug-in stays then. And that no name is
    ///           null or empty; such an entry is missing then.
    /// Fails:    false when the file cannot be loaded or lacks an entry point; every missing one is
    ///           logged, the file is unloaded as by Unload(), and no entry point stays.
    bool Load(const vxCString& aPath);

    /// Takes functions of the program itself, as many as there are names; always true.
    ///
    /// A file that is loaded is unloaded first.
    bool Load(void (**aFunctions)(), const char* aName);

    /// Calls Finalize(), unloads the file and forgets its entry points, whether one is loaded or not.
    void Unload();

    /// Returns the path of the last file that was to be loaded; linked-in functions leave it alone.
    const vxCString& GetFullPath() const { return mFilePath; }

    /// Returns the file's name without directory and extension, or the name given.
    const vxCString& GetFileName() const { return mFileName; }

    /// Are there functions to call, of a file or of the program itself?
    bool IsLoaded() const { return mfLoaded; }

    /// Returns an entry point; null when it is not loaded or the index is beyond the last.
    vxPluginFunc_Generic GetFunction(unsigned int anIndex) const {
        return anIndex < mFunctionCount ? mFunction[anIndex] : NULL;
    }

private:
    bool Resolve();
    void Forget();

    const char** mFunctionNameList;   // borrowed
    vxPluginFunc_Generic* mFunction;  // owned; one for each name
    vxOSPluginHandle mPluginHandle;   // owned; null when no file is loaded
    vxCString mFileName;
    vxCString mFilePath;
    unsigned int mFunctionCount;
    bool mfStatic;  // filled from linked-in functions
    bool mfLoaded;
};
