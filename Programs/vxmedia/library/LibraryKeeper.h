#pragma once

#include "Console.h"
#include "MediaLibrary.h"
#include "probes/MediaProbes.h"
#include "vx/Applet.h"
#include "vx/CString.h"

namespace vxmedia {

/// Keeps the library in a file: loads it at the start, and saves it when it has changed and then has
/// rested for a while, and at the end.
///
/// Threads:  one at a time.
class LibraryKeeper : public vxApplet {
public:
    LibraryKeeper(MediaLibrary& aLibrary, MediaProbes& aProbes, Console& aConsole);

    /// Sets the file; an empty path stands for none. The library counts as changed if the path does.
    void SetPath(const vxCString& aPath);

    /// Sets how many seconds the library has to rest before it is saved.
    void SetDelay(uint32_t aSeconds) { mDelayMS = aSeconds * 1000; }

    /// Loads the library, if there is a file.
    ///
    /// A file that cannot be read is not overwritten either: nothing is saved to it.
    ///
    /// Fails:    with an error text, which is empty on success, as LoadLibrary().
    vxCString Load();

    /// Saves the library if it has changed since it was saved or loaded.
    ///
    /// Fails:    with an error text, which is empty on success; the next change leads to another try.
    vxCString Save();

    vxAppletMsg AppletLoop(vxAppletMsg aMsg) override;
    void OnTimeouts() override;

private:
    void LibraryHasChanged();

    MediaLibrary& mLibrary;
    MediaProbes& mProbes;
    Console& mConsole;
    vxCString mPath;            // empty: nothing is saved
    vxCString mUnreadablePath;  // a file that is left alone
    uint32_t mDelayMS = 0;
    bool mfChanged = false;  // since the file was written
    vxTimeout mRest;         // runs since the last change
};

}  // namespace vxmedia
