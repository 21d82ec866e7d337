#pragma once

#include <cstdint>
#include <functional>

#include "config/ConfigPlace.h"
#include "vx/CString.h"
#include "vx/ConfigManager.h"
#include "vx/ConfigMapper.h"
#include "vx/StringList.h"

namespace vxmedia {

/// The settings of the program, in "vxmedia.ini" and its writable copy.
///
/// Changes count at once and are written by Save(). Without a configuration directory every setting
/// has its default, and changes last as long as the program.
///
/// Threads:  one at a time.
class Settings {
public:
    Settings();

    /// Opens the configuration, in the directory that the arguments name, or null for none.
    ///
    /// Fails:    with an error text, which is empty on success; the settings are those of a program
    ///           without a configuration then, or those of the file that could be read.
    vxCString Open(const vxCString* aDirectory);

    /// Returns the directory of the configuration; empty when there is none.
    const vxCString& GetDirectory() const { return mDirectory; }

    /// Sets what is called after each change.
    void SetChangeCallback(std::function<void()> aCallback) { mChanged = std::move(aCallback); }

    // Values

    bool IsOn(const char* anOption) const { return mMapper.OptionSet(anOption); }
    uint32_t GetNumber(const char* anOption) const;
    /// Returns a text, revealed if it is a secret.
    vxCString GetText(const char* anOption) const;
    vxCSVStringList GetList(const char* anOption) const {
        return mMapper.GetCSVStringList(anOption);
    }
    /// Returns a directory; empty when none is set.
    vxCString GetDirectory(const char* anOption) const;

    /// Returns any value as text: "true" or "false", a number in decimal, a text as it is.
    vxCString GetAsText(const vxConfigMapperInfo& anOption) const;

    /// Returns whether the value is hidden in the file.
    bool IsHidden(const vxConfigMapperInfo& anOption) const;

    // Changes; they fail with an error text, which is empty on success.

    /// Sets an option.
    vxCString Set(const vxCString& anOption, const vxCString& aValue);

    /// Sets a text that the file keeps hidden.
    vxCString SetHidden(const vxCString& anOption, const vxCString& aValue);

    /// Gives an option its default back.
    vxCString SetDefault(const vxCString& anOption);

    /// Writes the changes, and takes in what others wrote.
    vxCString Save();

private:
    vxCString Store(const vxConfigMapperInfo& anOption, const vxCString& aValue);
    void Reload();

    vxCString mDirectory;
    vxRef<vxConfigManager> mManager;
    vxRef<vxManagedConfig> mConfig;
    vxConfigMapper mMapper;
    std::function<void()> mChanged;
};

}  // namespace vxmedia
