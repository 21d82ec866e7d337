// Options are loaded once, into a property list: bools and numbers as 32 bits, all else as text.

#include "vx/ConfigMapper.h"

#include <libteskTools/Convert.h>
#include <libvxLog/Assert.h>

#include <algorithm>
#include <cstring>

#include "vx/Config.h"

namespace {

constexpr char kvxConfigMapper_Bootstrap[] = "ConfigPath.ini";
constexpr char kvxConfigMapper_ReadOnly[] = "<READONLYPATH>";
constexpr char kvxConfigMapper_ReadWrite[] = "<READWRITEPATH>";

uint32_t vxDefaultUInt32(const vxConfigMapperInfo& anEntry) {
    uint32_t theUInt32 = 0;
    const bool thefOK = vxConvert_strtouint32(anEntry.mDefaultValue, &theUInt32) == 0;
    VXASSERT(thefOK);
    return theUInt32;
}

int32_t vxDefaultInt32(const vxConfigMapperInfo& anEntry) {
    int32_t theInt32 = 0;
    const bool thefOK = vxConvert_strtoint32(anEntry.mDefaultValue, &theInt32) == 0;
    VXASSERT(thefOK);
    return theInt32;
}

uint16_t vxDefaultUInt16(const vxConfigMapperInfo& anEntry) {
    const uint32_t theUInt32 = vxDefaultUInt32(anEntry);
    VXASSERT((theUInt32 < 65536));
    return static_cast<uint16_t>(std::min<uint32_t>(theUInt32, 65535));
}

int16_t vxDefaultInt16(const vxConfigMapperInfo& anEntry) {
    const int32_t theInt32 = vxDefaultInt32(anEntry);
    VXASSERT((theInt32 >= -32768) && (theInt32 < 32768));
    return static_cast<int16_t>(std::clamp<int32_t>(theInt32, -32768, 32767));
}

bool vxIsNumber(int aType) {
    return aType >= kvxConfigEntryType_bool && aType <= kvxConfigEntryType_uint32;
}

bool vxIsDirText(const char* aPath) {
    const size_t theLength = strlen(aPath);
    return theLength != 0 && (aPath[theLength - 1] == '/' || aPath[theLength - 1] == '\\');
}

const char* vxOrEmpty(const char* aText) {
    return aText == NULL ? "" : aText;
}

}  // namespace

vxConfigMapper::vxConfigMapper() : mInfo(NULL), mPropertyList(NULL) {}

vxConfigMapper::vxConfigMapper(const vxConfigMapperInfo* aTable)
    : mInfo(aTable), mPropertyList(NULL) {}

vxConfigMapper::~vxConfigMapper() {
    vxPropertyList_Delete(mPropertyList);
}

void vxConfigMapper::SetPrefix(const char* aPrefix) {
    mSectionPrefix = aPrefix;
    if (!mSectionPrefix.IsEmpty() && mSectionPrefix.Last() != '.') {
        mSectionPrefix += '.';
    }
}

void vxConfigMapper::Load(const vxConfigMapperInfo* aTable, const vxConfig* aConfig) {
    mInfo = aTable;
    Load(aConfig);
}

void vxConfigMapper::Load(const vxConfig* aConfig) {
    VXASSERT(mInfo != NULL);
    vxPropertyList_Delete(mPropertyList);
    mPropertyList = vxPropertyList_New();
    for (size_t i = 0; mInfo != NULL && mInfo[i].mOptionName != NULL; ++i) {
        LoadEntry(mInfo[i], aConfig);
    }
}

void vxConfigMapper::LoadEntry(const vxConfigMapperInfo& anEntry, const vxConfig* aConfig) {
    const int theType = anEntry.mEntryType;
    if (vxIsNumber(theType)) {
        vxPropertyList_Set_uint32(mPropertyList, anEntry.mOptionName, LoadNumber(anEntry, aConfig));
        return;
    }
    vxCString theText;
    switch (theType) {
        case kvxConfigEntryType_string:
            theText = LoadText(anEntry, aConfig);
            break;
        case kvxConfigEntryType_filePath:
        case kvxConfigEntryType_dirPath:
            theText = LoadPath(aConfig, static_cast<size_t>(&anEntry - mInfo));
            break;
        case kvxConfigEntryType_CSVString:
            theText = vxCSVStringList(LoadText(anEntry, aConfig), '\\').GetString('\\');
            break;
        default:
            VXASSERT_TEXT(false, "Unsupported entry type");
            return;
    }
    vxPropertyList_Set_charPtr(mPropertyList, anEntry.mOptionName, theText);
}

uint32_t vxConfigMapper::LoadNumber(const vxConfigMapperInfo& anEntry,
                                    const vxConfig* aConfig) const {
    const vxConfig theDefaults;
    const vxConfig& theConfig = aConfig == NULL ? theDefaults : *aConfig;
    const vxCString theSection = SectionOf(anEntry);
    const char* theKey = anEntry.mKeyName;
    switch (anEntry.mEntryType) {
        case kvxConfigEntryType_bool:
            return theConfig.OptionIsSet(theSection, theKey, vxDefaultUInt32(anEntry) != 0);
        case kvxConfigEntryType_int16:
            return static_cast<uint32_t>(
                theConfig.GetInt16(theSection, theKey, vxDefaultInt16(anEntry)));
        case kvxConfigEntryType_uint16:
            return theConfig.GetUInt16(theSection, theKey, vxDefaultUInt16(anEntry));
        case kvxConfigEntryType_int32:
            return static_cast<uint32_t>(
                theConfig.GetInt32(theSection, theKey, vxDefaultInt32(anEntry)));
        default:
            return theConfig.GetUInt32(theSection, theKey, vxDefaultUInt32(anEntry));
    }
}

vxCString vxConfigMapper::LoadText(const vxConfigMapperInfo& anEntry,
                                   const vxConfig* aConfig) const {
    return aConfig == NULL
               ? vxCString(anEntry.mDefaultValue)
               : aConfig->GetCString(SectionOf(anEntry), anEntry.mKeyName, anEntry.mDefaultValue);
}

vxCString vxConfigMapper::LoadPath(const vxConfig* aConfig, size_t anIndex) const {
    vxCString theReadPath;
    vxCString theWritePath;
    vxConfigConfig::GetConfigPaths(theReadPath, theWritePath, kvxConfigMapper_Bootstrap);
    vxCString theText = LoadText(mInfo[anIndex], aConfig);
    if (theText.Replace(kvxConfigMapper_ReadOnly, theReadPath) == 0) {
        theText.Replace(kvxConfigMapper_ReadWrite, theWritePath);
    }
    return mInfo[anIndex].mEntryType == kvxConfigEntryType_filePath
               ? vxPathName::MakeFilePath(theText).GetFullPath()
               : vxPathName::MakeDirPath(theText).GetFullPath();
}

vxCString vxConfigMapper::SectionOf(const vxConfigMapperInfo& anEntry) const {
    return mSectionPrefix + vxOrEmpty(anEntry.mSectionName);
}

bool vxConfigMapper::FetchOptionIndex(const char* anOptionName, size_t* anIndex) const {
    VXASSERT(mPropertyList != NULL);
    if (mInfo == NULL || anOptionName == NULL) {
        return false;
    }
    for (size_t i = 0; mInfo[i].mOptionName != NULL; ++i) {
        if (strcmp(mInfo[i].mOptionName, anOptionName) == 0) {
            *anIndex = i;
            return true;
        }
    }
    return false;
}

bool vxConfigMapper::CheckHasOption(const char* anOptionName, int aType) const {
    size_t theIndex;
    return FetchOptionIndex(anOptionName, &theIndex) &&
           (aType == kvxConfigEntryType_none || mInfo[theIndex].mEntryType == aType);
}

uint32_t vxConfigMapper::StoredNumber(const char* anOptionName) const {
    uint32_t theValue = 0;
    vxPropertyList_Get_uint32(mPropertyList, anOptionName, &theValue);
    return theValue;
}

const char* vxConfigMapper::StoredText(const char* anOptionName) const {
    return vxOrEmpty(vxPropertyList_Get_charPtr(mPropertyList, anOptionName));
}

uint16_t vxConfigMapper::GetUInt16(const char* anOptionName) const {
    if (!VXCHECK(CheckHasOption(anOptionName, kvxConfigEntryType_uint16))) {
        return 0;
    }
    return static_cast<uint16_t>(StoredNumber(anOptionName));
}

int16_t vxConfigMapper::GetInt16(const char* anOptionName) const {
    if (!VXCHECK(CheckHasOption(anOptionName, kvxConfigEntryType_int16))) {
        return 0;
    }
    return static_cast<int16_t>(StoredNumber(anOptionName));
}

uint32_t vxConfigMapper::GetUInt32(const char* anOptionName) const {
    if (!VXCHECK(CheckHasOption(anOptionName, kvxConfigEntryType_uint32))) {
        return 0;
    }
    return StoredNumber(anOptionName);
}

int32_t vxConfigMapper::GetInt32(const char* anOptionName) const {
    if (!VXCHECK(CheckHasOption(anOptionName, kvxConfigEntryType_int32))) {
        return 0;
    }
    return static_cast<int32_t>(StoredNumber(anOptionName));
}

bool vxConfigMapper::OptionSet(const char* anOptionName) const {
    if (!VXCHECK(CheckHasOption(anOptionName, kvxConfigEntryType_bool))) {
        return false;
    }
    return StoredNumber(anOptionName) != 0;
}

vxCString vxConfigMapper::GetCString(const char* anOptionName) const {
    if (!VXCHECK(CheckHasOption(anOptionName, kvxConfigEntryType_string))) {
        return vxCString();
    }
    return StoredText(anOptionName);
}

vxCSVStringList vxConfigMapper::GetCSVStringList(const char* anOptionName) const {
    if (!VXCHECK(CheckHasOption(anOptionName, kvxConfigEntryType_CSVString))) {
        return vxCSVStringList();
    }
    return vxCSVStringList(StoredText(anOptionName), '\\');
}

vxPathName vxConfigMapper::GetPath(const char* anOptionName) const {
    if (!VXCHECK(CheckHasOption(anOptionName, kvxConfigEntryType_none))) {
        return vxPathName();
    }
    const char* theText = StoredText(anOptionName);
    return vxIsDirText(theText) ? vxPathName::MakeDirPath(theText)
                                : vxPathName::MakeFilePath(theText);
}

uint32_t vxConfigMapper::GetInRange(const char* anOptionName, uint32_t aMin, uint32_t aMax) const {
    size_t theIndex;
    if (!FetchOptionIndex(anOptionName, &theIndex)) {
        VXASSERT_TEXT(false, "vxConfigMapper::GetInRange (unknown option)");
        return 0;
    }
    const int theType = mInfo[theIndex].mEntryType;
    if (theType != kvxConfigEntryType_uint16 && theType != kvxConfigEntryType_uint32) {
        VXASSERT_TEXT(false, "vxConfigMapper::GetInRange (invalid type)");
        return 0;
    }
    uint32_t theValue = StoredNumber(anOptionName);
    if (theValue == 0 && aMin != 0 && aMax != 0) {
        vxConvert_strtouint32(mInfo[theIndex].mDefaultValue, &theValue);
    }
    return std::min(std::max(theValue, aMin), aMax);
}

unsigned vxConfigMapper::GetCSVStringValue(const char* anOptionName, const char* aNames,
                                           const unsigned* aValues) const {
    const vxCSVStringList theItems = GetCSVStringList(anOptionName);
    const vxCSVStringList theNames(aNames, '\\');
    unsigned theResult = 0;
    for (size_t i = 0; i < theItems.GetCount(); ++i) {
        const size_t theName = theNames.IndexOf(theItems.GetAt(i), true);
        if (theName != vxStringList::npos) {
            theResult |= aValues[theName];
        }
    }
    return theResult;
}

const vxConfigMapperInfo* vxConfigMapper::GetMapperInfo(const char* anOptionName) const {
    const vxConfigMapperInfo* theInfo = mInfo;
    while (theInfo != NULL && theInfo->mOptionName != NULL &&
           (anOptionName == NULL || strcmp(theInfo->mOptionName, anOptionName) != 0)) {
        ++theInfo;
    }
    return theInfo;
}

void vxConfigMapper::DumpInvalidConfig(const char* anOptionName, const char* aFileName) const {
    const vxConfigMapperInfo* theInfo = GetMapperInfo(anOptionName);
    if (theInfo == NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT,
              "vxConfigMapper: Internal error: missing option description for '%s'\n",
              vxOrEmpty(anOptionName));
        return;
    }
    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT,
          "vxConfigMapper: Missing/invalid configuration '[%s]%s' in file '%s' (option '%s')\n",
          SectionOf(*theInfo).c_str(), vxOrEmpty(theInfo->mKeyName), vxOrEmpty(aFileName),
          vxOrEmpty(anOptionName));
}

vxCString vxConfigMapper::DumpedNumber(const vxConfigMapperInfo& anEntry) const {
    const uint32_t theValue = StoredNumber(anEntry.mOptionName);
    switch (anEntry.mEntryType) {
        case kvxConfigEntryType_bool:
            return theValue != 0 ? "true" : "false";
        case kvxConfigEntryType_int16:
        case kvxConfigEntryType_int32:
            return vxCString::Format("%ld", static_cast<long>(static_cast<int32_t>(theValue)));
        default:
            return vxCString::Format("%lu", static_cast<unsigned long>(theValue));
    }
}

void vxConfigMapper::Dump(vxLogModule aLogModule) const {
    if (vxLog_GetLevel(aLogModule) < VXLOGLEVEL_DEBUG) {
        return;
    }
    if (mInfo == NULL) {
        VXLOG(VXLOGLEVEL_DEBUG, aLogModule, "    No configuration\n");
        return;
    }
    for (const vxConfigMapperInfo* theInfo = mInfo; theInfo->mOptionName != NULL; ++theInfo) {
        if (vxIsNumber(theInfo->mEntryType)) {
            VXLOG(VXLOGLEVEL_DEBUG, aLogModule, "    %s=%s\n", theInfo->mOptionName,
                  DumpedNumber(*theInfo).c_str());
        } else {
            VXLOG(VXLOGLEVEL_DEBUG, aLogModule, "    %s='%s'\n", theInfo->mOptionName,
                  StoredText(theInfo->mOptionName));
        }
    }
}
