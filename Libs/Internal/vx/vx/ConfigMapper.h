#pragma once

#include <libteskTools/PropertyList.h>
#include <libvxLog/Log.h>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/PathName.h"
#include "vx/StringList.h"

class vxConfig;

/// Types of options.
enum {
    kvxConfigEntryType_none = 0,  // stands for any type where an option is looked up
    kvxConfigEntryType_bool = 1,
    kvxConfigEntryType_int16 = 2,
    kvxConfigEntryType_uint16 = 3,
    kvxConfigEntryType_int32 = 4,
    kvxConfigEntryType_uint32 = 5,
    kvxConfigEntryType_string = 6,
    kvxConfigEntryType_filePath = 7,  // the full path of a file
    kvxConfigEntryType_dirPath = 8,   // the full path of a directory
    kvxConfigEntryType_CSVString = 9  // texts parted by commas
};

/// One option: its name, where its value lies, its type and its default.
struct vxConfigMapperInfo {
    const char* mOptionName;    ///< null ends the table
    const char* mSectionName;   ///< without the mapper's prefix
    const char* mKeyName;       ///< in that section
    int mEntryType;             ///< a kvxConfigEntryType_*
    const char* mDefaultValue;  ///< as text, also for numbers; "0" or another number for a bool
};

/// Typed options: a table maps their names to keys of a configuration.
///
///     static const vxConfigMapperInfo kOptions[] = {
///         {"port", "Server", "Port", kvxConfigEntryType_uint16, "8080"},
///         {"music", "Media", "Directory", kvxConfigEntryType_dirPath, "<READWRITEPATH>/music/"},
///         {NULL, NULL, NULL, kvxConfigEntryType_none, NULL}};
///     vxConfigMapper theMapper(kOptions);
///     theMapper.Load(&theConfig);
///     uint16_t thePort = theMapper.GetUInt16("port");
///
/// Load() converts every value at once; later changes of the configuration are not seen. What a
/// configuration does not have, or has in a form that the type cannot hold, takes the default.
///
/// Getters ask by option name, exactly, and assert that the option exists with their type: otherwise
/// they answer 0 or the empty text. Before Load() they assert "mPropertyList != NULL", too.
///
/// Owner:    the table is borrowed and must outlive the mapper.
/// Threads:  one at a time; any for getters once it is loaded.
/// Cost:     a getter compares its name with those of the table.
class VX_EXPORT vxConfigMapper {
public:
    /// Has no table.
    vxConfigMapper();
    /// Has a table, but nothing loaded.
    explicit vxConfigMapper(const vxConfigMapperInfo* aTable);
    virtual ~vxConfigMapper();

    vxConfigMapper(const vxConfigMapper&) = delete;
    vxConfigMapper& operator=(const vxConfigMapper&) = delete;

    /// Puts a prefix before every section name that is used from now on: "player" makes "Audio" to
    /// "player.Audio". A `.` is added unless it ends with one; an empty or null prefix is none.
    void SetPrefix(const char* aPrefix);

    /// Sets the table and loads.
    void Load(const vxConfigMapperInfo* aTable, const vxConfig* aConfig);

    /// Takes every option of the table from the configuration; a null one gives the defaults.
    ///
    /// In a path, "<READONLYPATH>" becomes the directory of read-only configurations, as the
    /// bootstrap file "ConfigPath.ini" has it; where that does not occur, "<READWRITEPATH>" becomes the
    /// directory of writable ones. A text that is no path, such as a bare file name, is stored as the
    /// empty one. Lists are stored as vxStringList::GetString() writes them.
    ///
    /// Asserts:  mInfo != NULL; no option exists then. thefOK: a default is no number, and counts
    ///           as 0. (theInt32 >= -32768) && (theInt32 < 32768), (theUInt32 < 65536): a default
    ///           does not fit, and the nearest number that does is taken. Unsupported entry type:
    ///           there is no such option then.
    void Load(const vxConfig* aConfig);

    // Getters, see the class

    /// Of a uint16 option.
    uint16_t GetUInt16(const char* anOptionName) const;
    /// Of an int16 option.
    int16_t GetInt16(const char* anOptionName) const;
    /// Of a uint32 option.
    uint32_t GetUInt32(const char* anOptionName) const;
    /// Of an int32 option.
    int32_t GetInt32(const char* anOptionName) const;
    /// Is a bool option true?
    bool OptionSet(const char* anOptionName) const;
    /// Of a string option.
    vxCString GetCString(const char* anOptionName) const;
    /// The separator is `,`, the escape `\`.
    vxCSVStringList GetCSVStringList(const char* anOptionName) const;
    /// Of any option: a directory when the stored text ends with `/` or `\`, else a file.
    vxPathName GetPath(const char* anOptionName) const;

    /// Returns the value of a uint16 or uint32 option, at least `aMin` and then at most `aMax`.
    ///
    /// When the value is 0 and neither limit is, the default takes its place.
    ///
    /// Asserts:  "vxConfigMapper::GetInRange (unknown option)"; "vxConfigMapper::GetInRange (invalid
    ///           type)". The result is 0 then.
    uint32_t GetInRange(const char* anOptionName, uint32_t aMin, uint32_t aMax) const;

    /// Reads a list of flag names: the bits of all names that are in the option's list.
    ///
    /// `aNames` are parted by `,` with the escape `\`; the bits of the name at position i are
    /// `aValues[i]`. Names are case-sensitive, and those that are not in `aNames` are ignored.
    unsigned GetCSVStringValue(const char* anOptionName, const char* aNames,
                               const unsigned* aValues) const;

    /// Returns the row of an option, the end of the table where there is none, or null without a
    /// table.
    const vxConfigMapperInfo* GetMapperInfo(const char* anOptionName) const;

    /// Logs at error level that an option is missing or invalid in a file.
    void DumpInvalidConfig(const char* anOptionName, const char* aFileName) const;

    /// Logs every option with its value at debug level, where the module's level lets that through.
    void Dump(vxLogModule aLogModule) const;

private:
    bool CheckHasOption(const char* anOptionName, int aType) const;
    bool FetchOptionIndex(const char* anOptionName, size_t* anIndex) const;
    void LoadEntry(const vxConfigMapperInfo& anEntry, const vxConfig* aConfig);
    uint32_t LoadNumber(const vxConfigMapperInfo& anEntry, const vxConfig* aConfig) const;
    vxCString LoadText(const vxConfigMapperInfo& anEntry, const vxConfig* aConfig) const;
    vxCString LoadPath(const vxConfig* aConfig, size_t anIndex) const;
    vxCString SectionOf(const vxConfigMapperInfo& anEntry) const;
    uint32_t StoredNumber(const char* anOptionName) const;
    const char* StoredText(const char* anOptionName) const;
    vxCString DumpedNumber(const vxConfigMapperInfo& anEntry) const;

    const vxConfigMapperInfo* mInfo;  // borrowed; null: there is no table
    vxPropertyList* mPropertyList;    // owned, by option name; null until the first Load()
    vxCString mSectionPrefix;         // empty, or ends with '.'
};
