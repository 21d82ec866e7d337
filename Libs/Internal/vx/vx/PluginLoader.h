#pragma once

#include "vx/Api.h"
#include "vx/CString.h"

class vxPluginHandler;
struct vxPtrList;

/// Finds plug-ins in a directory and keeps those that were loaded.
///
/// A program derives a loader that makes the handlers:
///
///     class CodecLoader : public vxPluginLoader {
///     public:
///         vxPluginHandler* NewPluginHandler() override { return new CodecHandler; }
///     };
///     theLoader.LoadPlugins("codec_*", false, false);   // codec_flac.so, codec_opus.so, ...
///
/// Owner:    the loader owns its handlers.
/// Threads:  one at a time.
class VX_EXPORT vxPluginLoader {
public:
    vxPluginLoader();
    vxPluginLoader(const vxPluginLoader&) = delete;
    vxPluginLoader& operator=(const vxPluginLoader&) = delete;

    /// Unloads every plug-in, then deletes the handlers.
    ///
    /// A plug-in that UnloadPlugins() has unloaded before is finalized once more; programs depend on
    /// it.
    virtual ~vxPluginLoader();

    /// Returns the directory to look in: by default the platform's, empty where it has none.
    virtual vxCString GetPluginsPath();

    /// Loads the plug-ins whose file name is the pattern with the platform's extension.
    ///
    /// The pattern has the wildcards of vxDir. Entries come in the directory's order; hidden ones and
    /// directories count, and a directory does not load.
    ///
    /// Asserts:  thePluginHandler != NULL; the file does not load then.
    /// Fails:    -1 as soon as a plug-in does not load, when `afFailOnError`; those loaded before stay.
    ///           Otherwise the number of plug-ins loaded, which `afStopAfterFirst` keeps to 1; 0 when
    ///           the directory cannot be opened.
    virtual int LoadPlugins(const vxCString& aPattern, bool afStopAfterFirst, bool afFailOnError);

    /// Registers plug-ins that are linked into the program; by default there are none.
    virtual int LoadPluginsStatic(const vxCString& aPattern, bool afStopAfterFirst,
                                  bool afFailOnError);

    /// Unloads every plug-in in the order of loading; the handlers stay.
    virtual void UnloadPlugins();

    /// Says whether a file, by its name, shall be loaded at all; by default all are.
    virtual bool IsPluginActive(const vxCString& aFileName);

    /// Makes a handler for a plug-in.
    ///
    /// Owner:    the loader.
    virtual vxPluginHandler* NewPluginHandler() = 0;

    /// Returns the number of handlers.
    unsigned int GetPluginCount() const;

    /// Returns a handler, in the order of loading; null beyond the last.
    ///
    /// Owner:    the loader.
    vxPluginHandler* GetPlugin(unsigned int anIndex) const;

protected:
    /// Adds a loaded handler, for loaders that register linked-in plug-ins.
    ///
    /// Owner:    the loader.
    void AddPlugin(vxPluginHandler* aHandler);

private:
    vxPluginHandler* LoadOne(const vxCString& aPath);

    vxPtrList* mPluginHandlerList;  // owned vxPluginHandler, in the order of loading
};
