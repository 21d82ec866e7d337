// Configurations are the platform's; this is their way into strings, and the bootstrap on top.

#include "vx/Config.h"

#include <libvxLog/Log.h>
#include <libvxOS/Path.h>
#include <libvxOS/User.h>

#include <cstdint>
#include <cstring>

namespace {

constexpr char kvxConfig_WritablePrefix[] = "_";

struct vxBrand {
    const char* mKey;
    const char* mFallback;
    bool mfEnvironment;           // the environment and the fallback stand in for an empty value
    const char* mEnvironmentEnd;  // behind the value of the environment
};

// "SBus" has a fallback that is never used: an empty value stays empty.
constexpr vxBrand kvxConfig_Brands[] = {
    {"MBus", "tesk", true, ""},
    {"SBus", "sbus", false, ""},
    {"X_RPC", "", true, ""},
    {"AppSet", "com.tesk.", true, "."},
};

const vxBrand* vxFindBrand(const char* aKey) {
    for (const vxBrand& theBrand : kvxConfig_Brands) {
        if (aKey != NULL && strcmp(theBrand.mKey, aKey) == 0) {
            return &theBrand;
        }
    }
    return NULL;
}

vxCString vxStandIn(const vxBrand& aBrand) {
    const vxCString theVariable = vxCString::FromAllocatedString(vxPlatform_getenv("VXBRANDID"));
    return theVariable.IsEmpty() ? vxCString(aBrand.mFallback)
                                 : theVariable + aBrand.mEnvironmentEnd;
}

void vxLogPaths(const vxCString& aReadPath, const vxCString& aWritePath) {
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT, "vxConfigConfig: ReadOnly  Path='%s'\n",
          aReadPath.c_str());
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT, "vxConfigConfig: ReadWrite Path='%s'\n",
          aWritePath.c_str());
}

vxCString vxDefaultPath(const char* aFileName) {
    return vxCString::FromAllocatedString(vxPath_GetDefaultConfigPath(aFileName));
}

}  // namespace

vxConfig::vxConfig(const vxCString& aReadDirectory, const vxCString& aWriteDirectory,
                   const vxCString& aFileName) {
    const vxCString theReadFile = GetValidPath(aReadDirectory, aFileName, vxCString());
    const vxCString theWriteFile =
        GetValidPath(aWriteDirectory, aFileName, kvxConfig_WritablePrefix);
    mConfigFile = vxConfigFile_New(
        theReadFile, aWriteDirectory.IsEmpty() ? NULL : theWriteFile.c_str(), aFileName);
}

vxConfig::~vxConfig() {
    vxConfigFile_Delete(mConfigFile);
}

vxCString vxConfig::GetValidPath(const vxCString& aDirectory, const vxCString& aFileName,
                                 const vxCString& aPrefix) {
    vxCString thePath = aDirectory.IsEmpty() ? vxCString("./") : aDirectory;
    vxCString theName = aFileName;
    thePath.Replace("\\", "/");
    theName.Replace("\\", "/");
    if (thePath.Last() != '/') {
        thePath += '/';
    }
    thePath += aPrefix;
    thePath += theName.AfterLast('/');
    return thePath;
}

void vxConfig::Reset() {
    vxConfigFile_Reset(mConfigFile);
}

bool vxConfig::Save() {
    return vxConfigFile_Save(mConfigFile);
}

size_t vxConfig::GetSectionCount(bool afWritableOnly) const {
    return vxConfigFile_GetSectionCount(mConfigFile, afWritableOnly);
}

vxCString vxConfig::GetSectionName(size_t anIndex, bool afWritableOnly) const {
    return vxCString::FromAllocatedString(
        vxConfigFile_GetSectionName(mConfigFile, anIndex, afWritableOnly));
}

size_t vxConfig::GetKeyCount(const char* aSection, bool afWritableOnly) const {
    return vxConfigFile_GetKeyCount(mConfigFile, aSection, afWritableOnly);
}

vxCString vxConfig::GetKeyNameCString(const char* aSection, size_t anIndex,
                                      bool afWritableOnly) const {
    return vxCString::FromAllocatedString(
        vxConfigFile_GetKeyName(mConfigFile, aSection, anIndex, afWritableOnly));
}

bool vxConfig::DeleteSection(const char* aSection) {
    return vxConfigFile_DeleteSection(mConfigFile, aSection);
}

bool vxConfig::DeleteKey(const char* aSection, const char* aKey) {
    return vxConfigFile_DeleteKey(mConfigFile, aSection, aKey);
}

vxCString vxConfig::GetCString(const char* aSection, const char* aKey, const char* aDefault) const {
    return vxCString::FromAllocatedString(
        vxConfigFile_GetString(mConfigFile, aSection, aKey, aDefault));
}

vxCString vxConfig::GetCStringWithSubstitution(const char* aSection, const char* aKey,
                                               const char* aDefault,
                                               vxConfigFile_SubstituteFunc aFunc,
                                               void* aContext) const {
    return vxCString::FromAllocatedString(vxConfigFile_GetStringWithSubstitution(
        mConfigFile, aSection, aKey, aDefault, aFunc, aContext));
}

bool vxConfig::SetString(const char* aSection, const char* aKey, const char* aValue) {
    return vxConfigFile_SetString(mConfigFile, aSection, aKey, aValue);
}

bool vxConfig::SetStringIfNotEmpty(const char* aSection, const char* aKey, const char* aValue) {
    return aValue == NULL || *aValue == '\0' ? DeleteKey(aSection, aKey)
                                             : SetString(aSection, aKey, aValue);
}

int32_t vxConfig::GetInt32(const char* aSection, const char* aKey, int32_t aDefault) const {
    return vxConfigFile_GetInt32(mConfigFile, aSection, aKey, aDefault);
}

uint32_t vxConfig::GetUInt32(const char* aSection, const char* aKey, uint32_t aDefault) const {
    return vxConfigFile_GetUInt32(mConfigFile, aSection, aKey, aDefault);
}

int16_t vxConfig::GetInt16(const char* aSection, const char* aKey, int16_t aDefault) const {
    const int32_t theValue = GetInt32(aSection, aKey, INT32_MAX);
    return theValue < INT16_MIN || theValue > INT16_MAX ? aDefault : static_cast<int16_t>(theValue);
}

uint16_t vxConfig::GetUInt16(const char* aSection, const char* aKey, uint16_t aDefault) const {
    return vxConfigFile_GetUInt16(mConfigFile, aSection, aKey, aDefault);
}

int8_t vxConfig::GetInt8(const char* aSection, const char* aKey, int8_t aDefault) const {
    const int32_t theValue = GetInt32(aSection, aKey, INT32_MAX);
    return theValue < INT8_MIN || theValue > INT8_MAX ? aDefault : static_cast<int8_t>(theValue);
}

uint8_t vxConfig::GetUInt8(const char* aSection, const char* aKey, uint8_t aDefault) const {
    return vxConfigFile_GetUInt8(mConfigFile, aSection, aKey, aDefault);
}

bool vxConfig::SetInt32(const char* aSection, const char* aKey, int32_t aValue) {
    return vxConfigFile_SetInt32(mConfigFile, aSection, aKey, aValue);
}

bool vxConfig::SetUInt32(const char* aSection, const char* aKey, uint32_t aValue) {
    return vxConfigFile_SetUInt32(mConfigFile, aSection, aKey, aValue);
}

bool vxConfig::OptionIsSet(const char* aSection, const char* aKey, bool afDefault) const {
    return vxConfigFile_OptionIsSet(mConfigFile, aSection, aKey, afDefault);
}

vxCString vxConfig::GetNonEmptyPath(const char* aSection, const char* aKey) const {
    const vxCString thePath = GetCString(aSection, aKey, "./");
    return thePath.IsEmpty() ? vxCString("./") : thePath;
}

bool vxConfig::FetchConfigPaths(const char* aSection, const char* aReadKey, const char* aWriteKey,
                                vxCString& aReadPath, vxCString& aWritePath, bool afCreate) const {
    aReadPath = GetNonEmptyPath(aSection, aReadKey);
    aWritePath = GetNonEmptyPath(aSection, aWriteKey);
    return !afCreate || vxConfigFile_CreatePaths(mConfigFile, aReadPath, aWritePath);
}

vxConfigConfig::vxConfigConfig(const char* aFileName)
    : vxConfig(vxDefaultPath(aFileName), vxCString(), aFileName) {}

void vxConfigConfig::GetPaths(vxCString& aReadPath, vxCString& aWritePath) const {
    FetchConfigPaths(NULL, "ReadPath", "WritePath", aReadPath, aWritePath, false);
    vxLogPaths(aReadPath, aWritePath);
}

bool vxConfigConfig::GetAndCheckPaths(vxCString& aReadPath, vxCString& aWritePath) const {
    if (!FetchConfigPaths(NULL, "ReadPath", "WritePath", aReadPath, aWritePath, true)) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT,
              "vxConfigConfig: Cannot get checked paths (RO = '%s', RW = '%s')\n",
              aReadPath.c_str(), aWritePath.c_str());
        return false;
    }
    vxLogPaths(aReadPath, aWritePath);
    return true;
}

bool vxConfigConfig::GetConfigPaths(vxCString& aReadPath, vxCString& aWritePath,
                                    const char* aFileName) {
    return vxConfigConfig(aFileName).GetAndCheckPaths(aReadPath, aWritePath);
}

vxCString vxConfigConfig::GetBrandInfo(const char* aKey, const char* aFileName) {
    const vxBrand* theBrand = vxFindBrand(aKey);
    if (theBrand == NULL) {
        return vxCString();
    }
    vxCString theResult = vxConfigConfig(aFileName).GetCString("Brand", aKey, "");
    if (theResult.IsEmpty() && theBrand->mfEnvironment) {
        theResult = vxStandIn(*theBrand);
    }
    const int64_t theUserID = vxUser_GetID();
    if (theUserID >= 0 && theResult.Contains("%USERID%")) {
        theResult.Replace("%USERID%", vxCString::Format("%lld", static_cast<long long>(theUserID)));
    }
    return theResult;
}
