// Two INI texts seen as one. Unsaved changes are kept as a list beside the writable text, so that they
// can be made again in a file that somebody else has written meanwhile.

#include <libteskTools/ConfigFile.h>
#include <libteskTools/Convert.h>
#include <libteskTools/Memory.h>
#include <libvxLog/Log.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "IniText.h"
#include "WholeFile.h"

namespace {

// What shall become of one key.
struct vxChange {
    std::string mSection;
    std::string mKey;
    std::string mValue;
    bool mfDelete;
};

// The names that were asked for last, for callers that ask for one after the other.
struct vxNameList {
    bool mfValid = false;
    bool mfWritableOnly = false;
    std::string mSection;  // of keys
    std::vector<std::string> mNames;
};

std::string_view vxView(const char* aStr) {
    return aStr == NULL ? std::string_view() : std::string_view(aStr);
}

}  // namespace

struct vxConfigFile {
    std::string mReadPath;  // empty: there is none
    std::string mWritePath;
    std::string mName;  // for log records
    vxIniText mReadOnly;
    vxIniText mWritable;
    std::vector<vxChange> mUnsaved;  // one for each key, in the order of the first change
    vxHashIndex mUnsavedIndex;       // of mUnsaved, by name
    mutable vxNameList mSections;
    mutable vxNameList mKeys;
};

namespace {

vxWholeFileResult vxLoad(const vxConfigFile* aFile, const std::string& aPath, vxIniText* aText) {
    std::string theText;
    vxWholeFileResult theResult = vxWholeFileResult::Missing;
    if (!aPath.empty()) {
        theResult = vxWholeFile_Read(aPath, &theText);
    }
    if (theResult == vxWholeFileResult::Failed) {
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_DEFAULT, "Configuration '%s': cannot read '%s'\n",
              aFile->mName.c_str(), aPath.c_str());
    }
    aText->Parse(std::move(theText));
    return theResult;
}

void vxForgetNames(const vxConfigFile* aFile) {
    aFile->mSections.mfValid = false;
    aFile->mKeys.mfValid = false;
}

void vxDropChanges(vxConfigFile* aFile) {
    aFile->mUnsaved.clear();
    aFile->mUnsavedIndex.Reset(0);
}

void vxLoadAll(vxConfigFile* aFile) {
    vxLoad(aFile, aFile->mReadPath, &aFile->mReadOnly);
    vxLoad(aFile, aFile->mWritePath, &aFile->mWritable);
    vxDropChanges(aFile);
    vxForgetNames(aFile);
}

bool vxIsIn(const vxIniText& aText, const vxIniName& aName) {
    std::string_view theValue;
    return aText.Find(aName, &theValue) == vxIniState::Present;
}

void vxMake(vxConfigFile* aFile, const vxIniName& aName, const vxChange& aChange) {
    if (aChange.mfDelete) {
        aFile->mWritable.Delete(aName, vxIsIn(aFile->mReadOnly, aName));
    } else {
        aFile->mWritable.Set(aName, aChange.mValue);
    }
}

void vxChangeKey(vxConfigFile* aFile, const vxIniName& aName, std::string_view aValue,
                 bool afDelete) {
    vxChange theChange = {std::string(aName.mSection), std::string(aName.mKey), std::string(aValue),
                          afDelete};
    vxMake(aFile, aName, theChange);
    vxForgetNames(aFile);
    const uint32_t theIndex = aFile->mUnsavedIndex.Find(aName.mHash, [&](uint32_t anIndex) {
        return aFile->mUnsaved[anIndex].mKey == theChange.mKey &&
               aFile->mUnsaved[anIndex].mSection == theChange.mSection;
    });
    if (theIndex == vxHashIndex::kNone) {
        aFile->mUnsavedIndex.Add(aName.mHash, static_cast<uint32_t>(aFile->mUnsaved.size()));
        aFile->mUnsaved.push_back(std::move(theChange));
    } else {
        aFile->mUnsaved[theIndex] = std::move(theChange);
    }
}

bool vxFind(const vxConfigFile* aFile, const char* aSection, const char* aKey,
            std::string_view* aValue) {
    if (aFile == NULL || aKey == NULL) {
        return false;
    }
    const vxIniName theName(vxView(aSection), aKey);
    const vxIniState theState = aFile->mWritable.Find(theName, aValue);
    return theState == vxIniState::Present ||
           (theState == vxIniState::Absent &&
            aFile->mReadOnly.Find(theName, aValue) == vxIniState::Present);
}

char* vxCopy(std::string_view aText) {
    char* theCopy = static_cast<char*>(vxMalloc(aText.size() + 1));
    if (theCopy != NULL) {
        std::copy(aText.begin(), aText.end(), theCopy);
        theCopy[aText.size()] = '\0';
    }
    return theCopy;
}

template <typename Number>
Number vxGetNumber(const vxConfigFile* aFile, const char* aSection, const char* aKey,
                   Number aDefault, int (*aConvert)(const char*, Number*)) {
    std::string_view theText;
    Number theValue;
    return vxFind(aFile, aSection, aKey, &theText) &&
                   aConvert(std::string(theText).c_str(), &theValue) == 0
               ? theValue
               : aDefault;
}

bool vxIsWord(std::string_view aText, std::string_view aWord) {
    if (aText.size() != aWord.size()) {
        return false;
    }
    for (size_t i = 0; i < aText.size(); ++i) {
        const bool theIsCapital = aText[i] >= 'A' && aText[i] <= 'Z';
        if ((theIsCapital ? aText[i] + 'a' - 'A' : aText[i]) != aWord[i]) {
            return false;
        }
    }
    return true;
}

bool vxHasBareEnds(std::string_view aName) {
    return aName.empty() || (!vxConvert_isspace(static_cast<unsigned char>(aName.front())) &&
                             !vxConvert_isspace(static_cast<unsigned char>(aName.back())));
}

bool vxIsSectionName(std::string_view aName) {
    return vxHasBareEnds(aName) && aName.find_first_of("\r\n]") == aName.npos;
}

bool vxIsKeyName(std::string_view aName) {
    return !aName.empty() && vxHasBareEnds(aName) && aName.find_first_of("\r\n=") == aName.npos &&
           std::string_view("[;#").find(aName[0]) == aName.npos &&
           aName.substr(0, 3) != "\xEF\xBB\xBF";
}

std::vector<std::string> vxKeysOf(const vxConfigFile* aFile, std::string_view aSection,
                                  bool afWritableOnly) {
    std::vector<std::string> theNames;
    std::string_view theValue;
    if (!afWritableOnly) {
        for (const std::string_view theKey : aFile->mReadOnly.Keys(aSection)) {
            const vxIniName theName(aSection, theKey);
            if (aFile->mWritable.Find(theName, &theValue) != vxIniState::Deleted) {
                theNames.emplace_back(theKey);
            }
        }
    }
    for (const std::string_view theKey : aFile->mWritable.Keys(aSection)) {
        if (afWritableOnly || !vxIsIn(aFile->mReadOnly, vxIniName(aSection, theKey))) {
            theNames.emplace_back(theKey);
        }
    }
    return theNames;
}

std::vector<std::string> vxSectionsOf(const vxConfigFile* aFile, bool afWritableOnly) {
    std::vector<std::string> theNames;
    if (!afWritableOnly) {
        for (const std::string_view theSection : aFile->mReadOnly.Sections()) {
            if (!vxKeysOf(aFile, theSection, false).empty()) {
                theNames.emplace_back(theSection);
            }
        }
    }
    for (const std::string_view theSection : aFile->mWritable.Sections()) {
        if (afWritableOnly || !aFile->mReadOnly.HasKeys(theSection)) {
            theNames.emplace_back(theSection);
        }
    }
    return theNames;
}

const std::vector<std::string>& vxKeyNames(const vxConfigFile* aFile, const char* aSection,
                                           bool afWritableOnly) {
    vxNameList& theList = aFile->mKeys;
    const std::string_view theSection = vxView(aSection);
    if (!theList.mfValid || theList.mfWritableOnly != afWritableOnly ||
        theList.mSection != theSection) {
        theList = {true, afWritableOnly, std::string(theSection),
                   vxKeysOf(aFile, theSection, afWritableOnly)};
    }
    return theList.mNames;
}

const std::vector<std::string>& vxSectionNames(const vxConfigFile* aFile, bool afWritableOnly) {
    vxNameList& theList = aFile->mSections;
    if (!theList.mfValid || theList.mfWritableOnly != afWritableOnly) {
        theList = {true, afWritableOnly, std::string(), vxSectionsOf(aFile, afWritableOnly)};
    }
    return theList.mNames;
}

char* vxNameAt(const std::vector<std::string>& aNames, size_t anIndex) {
    return anIndex < aNames.size() ? vxCopy(aNames[anIndex]) : NULL;
}

bool vxFailToSave(const vxConfigFile* aFile, const char* aReason) {
    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "Configuration '%s': cannot save '%s': %s\n",
          aFile->mName.c_str(), aFile->mWritePath.c_str(), aReason);
    return false;
}

// Takes in what somebody else wrote since the file was read.
bool vxMakeChangesInFile(vxConfigFile* aFile) {
    std::string theText;
    if (vxWholeFile_Read(aFile->mWritePath, &theText) == vxWholeFileResult::Failed) {
        return false;
    }
    aFile->mWritable.Parse(std::move(theText));
    for (const vxChange& theChange : aFile->mUnsaved) {
        vxMake(aFile, vxIniName(theChange.mSection, theChange.mKey), theChange);
    }
    vxForgetNames(aFile);
    return true;
}

}  // namespace

vxConfigFile* vxConfigFile_New(const char* aReadPath, const char* aWritePath, const char* aName) {
    vxConfigFile* theFile = new vxConfigFile;
    theFile->mReadPath = vxView(aReadPath);
    theFile->mWritePath = vxView(aWritePath);
    theFile->mName = vxView(aName);
    vxLoadAll(theFile);
    return theFile;
}

void vxConfigFile_Delete(vxConfigFile* aFile) {
    delete aFile;
}

void vxConfigFile_Reset(vxConfigFile* aFile) {
    if (aFile != NULL) {
        vxLoadAll(aFile);
    }
}

bool vxConfigFile_Save(vxConfigFile* aFile) {
    if (aFile == NULL) {
        return false;
    }
    if (aFile->mWritePath.empty()) {
        return vxFailToSave(aFile, "there is no writable copy");
    }
    if (aFile->mUnsaved.empty()) {
        return true;
    }
    if (!vxMakeChangesInFile(aFile)) {
        return vxFailToSave(aFile, "the file exists but cannot be read");
    }
    const int theError = vxWholeFile_Replace(aFile->mWritePath, aFile->mWritable.Print());
    if (theError != 0) {
        return vxFailToSave(aFile, strerror(theError));
    }
    vxDropChanges(aFile);
    return true;
}

char* vxConfigFile_GetString(const vxConfigFile* aFile, const char* aSection, const char* aKey,
                             const char* aDefault) {
    std::string_view theValue;
    return vxFind(aFile, aSection, aKey, &theValue) ? vxCopy(theValue) : vxStrdup(aDefault);
}

char* vxConfigFile_GetStringWithSubstitution(const vxConfigFile* aFile, const char* aSection,
                                             const char* aKey, const char* aDefault,
                                             vxConfigFile_SubstituteFunc aFunc, void* aContext) {
    std::string_view theValue;
    if (!vxFind(aFile, aSection, aKey, &theValue)) {
        if (aDefault == NULL) {
            return NULL;
        }
        theValue = aDefault;
    }
    // The function may change the file.
    const std::string theText(theValue);
    std::string theResult;
    size_t thePos = 0;
    while (aFunc != NULL) {
        const size_t theStart = theText.find("$(", thePos);
        const size_t theEnd = theStart == theText.npos ? theStart : theText.find(')', theStart);
        if (theEnd == theText.npos) {
            break;
        }
        theResult.append(theText, thePos, theStart - thePos);
        const std::string theName = theText.substr(theStart + 2, theEnd - theStart - 2);
        const std::unique_ptr<char, void (*)(void*)> theReplacement(
            aFunc(aContext, theName.c_str()), free);
        theResult += vxView(theReplacement.get());
        thePos = theEnd + 1;
    }
    return vxCopy(theResult.append(theText, thePos, theText.npos));
}

bool vxConfigFile_SetString(vxConfigFile* aFile, const char* aSection, const char* aKey,
                            const char* aValue) {
    const std::string_view theSection = vxView(aSection);
    if (aFile == NULL || !vxIsSectionName(theSection) || !vxIsKeyName(vxView(aKey))) {
        return false;
    }
    vxChangeKey(aFile, vxIniName(theSection, aKey), vxView(aValue), false);
    return true;
}

int32_t vxConfigFile_GetInt32(const vxConfigFile* aFile, const char* aSection, const char* aKey,
                              int32_t aDefault) {
    return vxGetNumber(aFile, aSection, aKey, aDefault, vxConvert_strtoint32);
}

uint32_t vxConfigFile_GetUInt32(const vxConfigFile* aFile, const char* aSection, const char* aKey,
                                uint32_t aDefault) {
    return vxGetNumber(aFile, aSection, aKey, aDefault, vxConvert_strtouint32);
}

uint16_t vxConfigFile_GetUInt16(const vxConfigFile* aFile, const char* aSection, const char* aKey,
                                uint16_t aDefault) {
    return vxGetNumber(aFile, aSection, aKey, aDefault, vxConvert_strtouint16);
}

uint8_t vxConfigFile_GetUInt8(const vxConfigFile* aFile, const char* aSection, const char* aKey,
                              uint8_t aDefault) {
    return vxGetNumber(aFile, aSection, aKey, aDefault, vxConvert_strtouint8);
}

bool vxConfigFile_SetInt32(vxConfigFile* aFile, const char* aSection, const char* aKey,
                           int32_t aValue) {
    return vxConfigFile_SetString(aFile, aSection, aKey, std::to_string(aValue).c_str());
}

bool vxConfigFile_SetUInt32(vxConfigFile* aFile, const char* aSection, const char* aKey,
                            uint32_t aValue) {
    return vxConfigFile_SetString(aFile, aSection, aKey, std::to_string(aValue).c_str());
}

bool vxConfigFile_OptionIsSet(const vxConfigFile* aFile, const char* aSection, const char* aKey,
                              bool afDefault) {
    std::string_view theText;
    if (!vxFind(aFile, aSection, aKey, &theText)) {
        return afDefault;
    }
    for (const char* theWord : {"1", "true", "yes", "on"}) {
        if (vxIsWord(theText, theWord)) {
            return true;
        }
    }
    for (const char* theWord : {"0", "false", "no", "off"}) {
        if (vxIsWord(theText, theWord)) {
            return false;
        }
    }
    return afDefault;
}

bool vxConfigFile_DeleteKey(vxConfigFile* aFile, const char* aSection, const char* aKey) {
    std::string_view theValue;
    if (!vxFind(aFile, aSection, aKey, &theValue)) {
        return false;
    }
    vxChangeKey(aFile, vxIniName(vxView(aSection), aKey), std::string_view(), true);
    return true;
}

bool vxConfigFile_DeleteSection(vxConfigFile* aFile, const char* aSection) {
    if (aFile == NULL) {
        return false;
    }
    const std::string theSection(vxView(aSection));
    const std::vector<std::string> theKeys = vxKeysOf(aFile, theSection, false);
    for (const std::string& theKey : theKeys) {
        vxChangeKey(aFile, vxIniName(theSection, theKey), std::string_view(), true);
    }
    return !theKeys.empty();
}

size_t vxConfigFile_GetSectionCount(const vxConfigFile* aFile, bool afWritableOnly) {
    return aFile == NULL ? 0 : vxSectionNames(aFile, afWritableOnly).size();
}

char* vxConfigFile_GetSectionName(const vxConfigFile* aFile, size_t anIndex, bool afWritableOnly) {
    return aFile == NULL ? NULL : vxNameAt(vxSectionNames(aFile, afWritableOnly), anIndex);
}

size_t vxConfigFile_GetKeyCount(const vxConfigFile* aFile, const char* aSection,
                                bool afWritableOnly) {
    return aFile == NULL ? 0 : vxKeyNames(aFile, aSection, afWritableOnly).size();
}

char* vxConfigFile_GetKeyName(const vxConfigFile* aFile, const char* aSection, size_t anIndex,
                              bool afWritableOnly) {
    return aFile == NULL ? NULL : vxNameAt(vxKeyNames(aFile, aSection, afWritableOnly), anIndex);
}

bool vxConfigFile_CreatePaths(const vxConfigFile* aFile, const char* aReadPath,
                              const char* aWritePath) {
    static_cast<void>(aFile);
    bool theResult = true;
    for (const char* thePath : {aReadPath, aWritePath}) {
        if (thePath != NULL && *thePath != '\0') {
            theResult = vxWholeFile_MakeDirectory(thePath) && theResult;
        }
    }
    return theResult;
}
