#pragma once

#include <libteskTools/ConfigFile.h>

#include "vx/Api.h"
#include "vx/CString.h"

/// Settings in an INI file, with an optional writable copy.
///
/// The file lies in the read directory and is never written. The copy of "x.ini" is "_x.ini" in the
/// write directory: its keys win, changes go there. A change lives in memory until Save(), which
/// replaces the copy as a whole and keeps its comments, order and unknown lines. What the files look
/// like is told in <libteskTools/ConfigFile.h>.
///
///     vxConfig theConfig("/usr/share/player", "/var/lib/player", "player.ini");
///     uint16_t thePort = theConfig.GetUInt16("Server", "Port", 8080);
///     theConfig.SetString("Server", "Name", "Kitchen");
///     theConfig.Save();
///
/// A null or empty section stands for the keys outside any section. A missing or unreadable file
/// counts as empty. A configuration without a file gives defaults and stores nothing.
///
/// Owner:    owns one platform handle.
/// Threads:  one at a time.
class VX_EXPORT vxConfig {
public:
    /// Has no file.
    vxConfig() : mConfigFile(NULL) {}

    /// Opens the file, and its copy when `aWriteDirectory` is not empty; the paths are those of
    /// GetValidPath().
    vxConfig(const vxCString& aReadDirectory, const vxCString& aWriteDirectory,
             const vxCString& aFileName);

    /// Closes the file; unsaved changes are lost.
    virtual ~vxConfig();

    vxConfig(const vxConfig&) = delete;
    vxConfig& operator=(const vxConfig&) = delete;

    /// Joins directory, prefix and the last part of the file name: a `\` counts as `/`, and an empty
    /// directory is "./".
    ///
    ///     GetValidPath("/etc/app", "c.ini", "")     // "/etc/app/c.ini"
    ///     GetValidPath("", "a\\b\\c.ini", "_")      // "./_c.ini"
    static vxCString GetValidPath(const vxCString& aDirectory, const vxCString& aFileName,
                                  const vxCString& aPrefix);

    /// Drops unsaved changes and reads the files again.
    void Reset();

    /// Writes the changes to the copy, and waits until the medium has them.
    ///
    /// Fails:    false, logged, when there is no copy to write or a step fails; the file is the old
    ///           one then and the changes stay unsaved.
    bool Save();

    // Enumeration. With the flag, only the writable copy is looked at.

    /// Returns the number of named sections that have keys.
    size_t GetSectionCount(bool afWritableOnly) const;
    /// Returns the name of such a section; empty beyond the last.
    vxCString GetSectionName(size_t anIndex, bool afWritableOnly) const;
    /// Returns the number of keys of a section.
    size_t GetKeyCount(const char* aSection, bool afWritableOnly) const;
    /// Returns the name of such a key; empty beyond the last.
    vxCString GetKeyNameCString(const char* aSection, size_t anIndex, bool afWritableOnly) const;

    // Deleting. What the read-only file holds stays hidden by a note in the copy.

    /// Deletes every key of a section; false when there is none.
    bool DeleteSection(const char* aSection);
    /// Deletes a key; false when there is none.
    bool DeleteKey(const char* aSection, const char* aKey);

    // Texts

    /// Returns the value of a key, or the default; a null default is empty.
    vxCString GetCString(const char* aSection, const char* aKey, const char* aDefault) const;

    /// As GetCString(), with each "$(NAME)" replaced by the text that `aFunc` allocates for NAME, or
    /// by nothing when that is null.
    vxCString GetCStringWithSubstitution(const char* aSection, const char* aKey,
                                         const char* aDefault, vxConfigFile_SubstituteFunc aFunc,
                                         void* aContext) const;

    /// Sets a key; a null value is empty.
    ///
    /// Fails:    false without a file, or for a name that a file cannot hold.
    bool SetString(const char* aSection, const char* aKey, const char* aValue);

    /// Sets a key, or deletes it when the value is empty.
    ///
    /// Fails:    as SetString(); false, too, when there is no key to delete.
    bool SetStringIfNotEmpty(const char* aSection, const char* aKey, const char* aValue);

    // Numbers in base 10. A getter gives its default for an absent key, for what is no number as a
    // whole, and for one that the type cannot hold.

    /// Reads a signed number of 32 bits.
    int32_t GetInt32(const char* aSection, const char* aKey, int32_t aDefault) const;
    /// Reads an unsigned number of 32 bits.
    uint32_t GetUInt32(const char* aSection, const char* aKey, uint32_t aDefault) const;
    /// Reads -32768 to 32767.
    int16_t GetInt16(const char* aSection, const char* aKey, int16_t aDefault) const;
    /// Reads 0 to 65535.
    uint16_t GetUInt16(const char* aSection, const char* aKey, uint16_t aDefault) const;
    /// Reads -128 to 127.
    int8_t GetInt8(const char* aSection, const char* aKey, int8_t aDefault) const;
    /// Reads 0 to 255.
    uint8_t GetUInt8(const char* aSection, const char* aKey, uint8_t aDefault) const;

    /// Sets a key to a number.
    ///
    /// Fails:    as SetString().
    bool SetInt32(const char* aSection, const char* aKey, int32_t aValue);
    /// As SetInt32().
    bool SetUInt32(const char* aSection, const char* aKey, uint32_t aValue);

    /// Says the key 1, true, yes or on, rather than 0, false, no or off? Letters may be of either
    /// case; anything else gives the default.
    bool OptionIsSet(const char* aSection, const char* aKey, bool afDefault) const;

    // Paths

    /// Returns the value of a key; "./" when it is absent or empty.
    vxCString GetNonEmptyPath(const char* aSection, const char* aKey) const;

    /// Reads two directories with GetNonEmptyPath(), and makes them if `afCreate` is set.
    ///
    /// Fails:    false when one cannot be made.
    bool FetchConfigPaths(const char* aSection, const char* aReadKey, const char* aWriteKey,
                          vxCString& aReadPath, vxCString& aWritePath, bool afCreate) const;

    /// Returns the platform's handle, or null.
    ///
    /// Owner:    the configuration.
    vxConfigFile* GetConfigFile() const { return mConfigFile; }

protected:
    vxConfigFile* mConfigFile;  ///< owned; null: there is no file
};

/// The bootstrap configuration, normally "ConfigPath.ini": it tells where configurations lie.
///
///     ReadPath=/usr/share/player
///     WritePath=/var/lib/player
///
///     [Brand]
///     MBus=acme
///
/// It lies in the platform's default directory for configurations, vxPath_GetDefaultConfigPath(),
/// and has no writable copy.
class VX_EXPORT vxConfigConfig : public vxConfig {
public:
    /// Opens the file of this name.
    explicit vxConfigConfig(const char* aFileName);

    /// Reads the directories of read-only and of writable configurations, "./" where none is given;
    /// logs both at debug level.
    void GetPaths(vxCString& aReadPath, vxCString& aWritePath) const;

    /// As GetPaths(), and makes the directories where they do not exist.
    ///
    /// Fails:    false, logged at error level, when one cannot be made.
    bool GetAndCheckPaths(vxCString& aReadPath, vxCString& aWritePath) const;

    /// As GetAndCheckPaths() of the bootstrap configuration of this name.
    static bool GetConfigPaths(vxCString& aReadPath, vxCString& aWritePath, const char* aFileName);

    /// Returns a name that depends on the product: the value of "MBus", "SBus", "X_RPC" or "AppSet" in
    /// section "Brand". Any other key gives the empty text.
    ///
    /// An empty value is replaced by the environment variable VXBRANDID, followed by "." for "AppSet";
    /// where that is not set or empty, by "tesk" for "MBus" and "com.tesk." for "AppSet". Not so for
    /// "SBus", which then stays empty: programs depend on it. Every "%USERID%" becomes the number of
    /// the user that the program runs as, if there is one.
    static vxCString GetBrandInfo(const char* aKey, const char* aFileName);
};
