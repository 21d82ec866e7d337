// The managed configuration holds the texts, the mapper what they mean. After each change the mapper
// loads anew: that is a table of ten rows.

#include "config/Settings.h"

#include "LogCapture.h"
#include "config/Options.h"
#include "config/Secret.h"
#include "vx/Config.h"

namespace vxmedia {

namespace {

// A configuration that no file stands behind. It keeps changes, which the library's own
// configuration without a file does not, and cannot be saved.
class MemoryConfig : public vxConfig {
public:
    MemoryConfig() { mConfigFile = vxConfigFile_New(NULL, NULL, kConfigFileName); }
};

vxCString UnknownOption(const vxCString& anOption) {
    return vxCString("ERROR: There is no option '") + anOption + "'";
}

}  // namespace

Settings::Settings() : mMapper(kOptions) {
    mMapper.Load(NULL);
}

vxCString Settings::Open(const vxCString* aDirectory) {
    vxCString theError = aDirectory == NULL ? vxCString() : ChooseConfigDirectory(*aDirectory);
    const ConfigPlace thePlace = FindConfigPlace();
    const LogCapture theCapture(VXLOGLEVEL_WARNING);
    mManager = new vxConfigManager(kBootstrapFileName);
    if (theError.IsEmpty() && thePlace.mfExists && theCapture.IsEmpty()) {
        mConfig = mManager->GetConfig(kConfigFileName);
    }
    if (mConfig.IsNull()) {
        mConfig = new vxManagedConfig(mManager, kConfigFileName, new MemoryConfig);
    } else {
        mDirectory = thePlace.mDirectory;
    }
    mConfig->LoadMapper(mMapper, kOptions);
    return theError.IsEmpty() && thePlace.mfExists ? theCapture.GetError("") : theError;
}

uint32_t Settings::GetNumber(const char* anOption) const {
    const OptionRange& theRange = GetOptionRange(anOption);
    return mMapper.GetInRange(anOption, theRange.mMin, theRange.mMax);
}

vxCString Settings::GetText(const char* anOption) const {
    return RevealSecret(mMapper.GetCString(anOption));
}

vxCString Settings::GetDirectory(const char* anOption) const {
    return mMapper.GetPath(anOption).GetFullPath();
}

vxCString Settings::GetAsText(const vxConfigMapperInfo& anOption) const {
    switch (anOption.mEntryType) {
        case kvxConfigEntryType_bool:
            return IsOn(anOption.mOptionName) ? "true" : "false";
        case kvxConfigEntryType_string:
            return GetText(anOption.mOptionName);
        case kvxConfigEntryType_dirPath:
            return GetDirectory(anOption.mOptionName);
        case kvxConfigEntryType_CSVString:
            return GetList(anOption.mOptionName).GetString('\\');
        default:
            return vxCString::Format("%u", GetNumber(anOption.mOptionName));
    }
}

bool Settings::IsHidden(const vxConfigMapperInfo& anOption) const {
    return anOption.mEntryType == kvxConfigEntryType_string &&
           IsSecret(mMapper.GetCString(anOption.mOptionName));
}

vxCString Settings::Set(const vxCString& anOption, const vxCString& aValue) {
    const vxConfigMapperInfo* theOption = FindOption(anOption);
    if (theOption == NULL) {
        return UnknownOption(anOption);
    }
    vxCString theError = CheckOptionValue(*theOption, aValue);
    if (!theError.IsEmpty()) {
        return theError;
    }
    // Else it would be taken for gibberish and be revealed.
    if (theOption->mEntryType == kvxConfigEntryType_string && IsSecret(aValue)) {
        return SetHidden(anOption, aValue);
    }
    return Store(*theOption, aValue);
}

vxCString Settings::SetHidden(const vxCString& anOption, const vxCString& aValue) {
    const vxConfigMapperInfo* theOption = FindOption(anOption);
    if (theOption == NULL) {
        return UnknownOption(anOption);
    }
    if (theOption->mEntryType != kvxConfigEntryType_string) {
        return vxCString("ERROR: '") + anOption + "' is no text that can be hidden";
    }
    vxCString theError = CheckOptionValue(*theOption, aValue);
    if (!theError.IsEmpty()) {
        return theError;
    }
    const vxCString theHidden = HideSecret(aValue);
    return theHidden.IsEmpty() ? vxCString("ERROR: The value is too long to be hidden")
                               : Store(*theOption, theHidden);
}

vxCString Settings::SetDefault(const vxCString& anOption) {
    const vxConfigMapperInfo* theOption = FindOption(anOption);
    if (theOption == NULL) {
        return UnknownOption(anOption);
    }
    // A key that no file has needs no deleting.
    mConfig->Lock(NULL)->DeleteKey(theOption->mSectionName, theOption->mKeyName);
    mConfig->Unlock(false);
    Reload();
    return vxCString();
}

vxCString Settings::Store(const vxConfigMapperInfo& anOption, const vxCString& aValue) {
    const bool theIsSet =
        mConfig->Lock(NULL)->SetString(anOption.mSectionName, anOption.mKeyName, aValue);
    mConfig->Unlock(false);
    if (!theIsSet) {
        return vxCString::Format("ERROR: '%s' cannot be changed", anOption.mOptionName);
    }
    Reload();
    return vxCString();
}

vxCString Settings::Save() {
    if (mDirectory.IsEmpty()) {
        return "ERROR: There is no configuration directory; '-c' names one at the start";
    }
    vxCString theError;
    {
        const LogCapture theCapture(VXLOGLEVEL_ERROR);
        if (!mConfig->Save()) {
            theError = theCapture.GetError("ERROR: The configuration cannot be saved");
        }
    }
    Reload();
    return theError;
}

void Settings::Reload() {
    {
        // What is wrong with the bootstrap file was told at the start.
        const LogCapture theCapture(VXLOGLEVEL_WARNING);
        mConfig->LoadMapper(mMapper, kOptions);
    }
    if (mChanged) {
        mChanged();
    }
}

}  // namespace vxmedia
