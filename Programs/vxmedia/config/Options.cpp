// The table of settings. A value in a file that does not fit counts as the default, as the mapper
// has it; a value that is typed is refused with the reason.

#include "config/Options.h"

#include <libteskTools/Convert.h>

#include <cstring>
#include <iterator>

namespace vxmedia {

const vxConfigMapperInfo kOptions[] = {
    {"banner", "Console", "Banner", kvxConfigEntryType_bool, "1"},
    {"prompt", "Console", "Prompt", kvxConfigEntryType_string, "vxmedia> "},
    {"list-limit", "Library", "ListLimit", kvxConfigEntryType_uint32, "20"},
    {"library-file", "Library", "File", kvxConfigEntryType_string, "library.json"},
    {"save-after", "Library", "SaveAfter", kvxConfigEntryType_uint32, "10"},
    {"hidden", "Scan", "Hidden", kvxConfigEntryType_bool, "1"},
    {"skip", "Scan", "Skip", kvxConfigEntryType_CSVString, ""},
    {"expect", "Scan", "Expect", kvxConfigEntryType_CSVString, ""},
    {"refusals", "Scan", "Refusals", kvxConfigEntryType_uint16, "10"},
    {"threads", "Scan", "Threads", kvxConfigEntryType_uint16, "0"},
    {"cache-path", "Cache", "Path", kvxConfigEntryType_dirPath, ""},
    {"cache-limit", "Cache", "Limit", kvxConfigEntryType_uint16, "64"},
    {"info-files", "Cache", "InfoFiles", kvxConfigEntryType_uint32, "1000"},
    {"info-kbytes", "Cache", "InfoKBytes", kvxConfigEntryType_uint32, "512"},
    {"plugins", "Plugins", "Load", kvxConfigEntryType_string, ""},
    {"plugin-path", "Plugins", "Path", kvxConfigEntryType_dirPath, ""},
    {"owner", "Export", "Owner", kvxConfigEntryType_string, ""},
    {NULL, NULL, NULL, kvxConfigEntryType_none, NULL},
};

namespace {

constexpr OptionRange kRanges[] = {{"list-limit", 1, 100000},  {"save-after", 1, 86400},
                                   {"refusals", 1, 1000},      {"cache-limit", 1, 4096},
                                   {"threads", 0, 64},         {"info-files", 1, 100000},
                                   {"info-kbytes", 1, 1048576}};

// A longer text would let the file grow until it is not read any more.
constexpr size_t kOption_MaxLength = 4096;

bool IsTruthWord(const vxCString& aValue) {
    for (const char* theWord : {"1", "0", "true", "false", "yes", "no", "on", "off"}) {
        if (aValue.CompareNoCase(theWord) == 0) {
            return true;
        }
    }
    return false;
}

bool IsNumberInRange(const OptionRange& aRange, const vxCString& aValue) {
    uint32_t theNumber = 0;
    return vxConvert_strtouint32(aValue, &theNumber) == 0 && theNumber >= aRange.mMin &&
           theNumber <= aRange.mMax;
}

}  // namespace

const OptionRange& GetOptionRange(const char* anOptionName) {
    for (const OptionRange& theRange : kRanges) {
        if (strcmp(theRange.mOptionName, anOptionName) == 0) {
            return theRange;
        }
    }
    static constexpr OptionRange kAny = {"", 0, UINT32_MAX};
    return kAny;
}

const vxConfigMapperInfo* FindOption(const char* anOptionName) {
    for (const vxConfigMapperInfo* theRow = kOptions; theRow->mOptionName != NULL; ++theRow) {
        if (strcmp(theRow->mOptionName, anOptionName) == 0) {
            return theRow;
        }
    }
    return NULL;
}

const char* GetOptionTypeName(const vxConfigMapperInfo& anOption) {
    switch (anOption.mEntryType) {
        case kvxConfigEntryType_bool:
            return "switch";
        case kvxConfigEntryType_string:
            return "text";
        case kvxConfigEntryType_dirPath:
            return "directory";
        case kvxConfigEntryType_CSVString:
            return "list";
        default:
            return "number";
    }
}

bool IsTextOption(const vxConfigMapperInfo& anOption) {
    return anOption.mEntryType >= kvxConfigEntryType_string;
}

vxCString CheckOptionValue(const vxConfigMapperInfo& anOption, const vxCString& aValue) {
    if (aValue.length() > kOption_MaxLength) {
        return vxCString::Format("ERROR: A value has at most %lu bytes",
                                 static_cast<unsigned long>(kOption_MaxLength));
    }
    if (anOption.mEntryType == kvxConfigEntryType_bool && !IsTruthWord(aValue)) {
        return vxCString::Format("ERROR: '%s' is true or false", anOption.mOptionName);
    }
    if (!IsTextOption(anOption) && anOption.mEntryType != kvxConfigEntryType_bool) {
        const OptionRange& theRange = GetOptionRange(anOption.mOptionName);
        if (!IsNumberInRange(theRange, aValue)) {
            return vxCString::Format("ERROR: '%s' is a number from %u to %u", anOption.mOptionName,
                                     theRange.mMin, theRange.mMax);
        }
    }
    return vxCString();
}

}  // namespace vxmedia
