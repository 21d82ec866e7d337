// Any bytes are a configuration file: every listed key has a value, saving changes nothing but what was
// set, and what was saved reads back.

#include <libteskTools/ConfigFile.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <map>
#include <utility>

#include "Input.h"

namespace {

using Values = std::map<std::pair<std::string, std::string>, std::string>;

std::string Taken(char* aText) {
    vxfuzz::Expect(aText != nullptr, "what is listed is there");
    const std::string theText(aText);
    free(aText);
    return theText;
}

void AddKeys(const vxConfigFile* aFile, const std::string& aSection, Values* aValues) {
    for (size_t i = 0; i < vxConfigFile_GetKeyCount(aFile, aSection.c_str(), false); ++i) {
        const std::string theKey =
            Taken(vxConfigFile_GetKeyName(aFile, aSection.c_str(), i, false));
        const std::string theValue =
            Taken(vxConfigFile_GetString(aFile, aSection.c_str(), theKey.c_str(), nullptr));
        vxfuzz::Expect(aValues->emplace(std::make_pair(aSection, theKey), theValue).second,
                       "every key is listed once");
    }
}

Values AllValues(const vxConfigFile* aFile) {
    Values theValues;
    AddKeys(aFile, "", &theValues);
    for (size_t i = 0; i < vxConfigFile_GetSectionCount(aFile, false); ++i) {
        AddKeys(aFile, Taken(vxConfigFile_GetSectionName(aFile, i, false)), &theValues);
    }
    return theValues;
}

// In memory where there is such a place: a save waits for the medium.
std::string Place(const char* aName) {
    static const std::string sStart =
        (access("/dev/shm", W_OK) == 0 ? "/dev/shm/vxfuzz" : "/tmp/vxfuzz") +
        std::to_string(getpid());
    return sStart + aName;
}

void Write(const std::string& aPath, const std::string& aText) {
    std::ofstream(aPath, std::ios::binary) << aText;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    const std::string theSection = theInput.Line().c_str();
    const std::string theKey = theInput.Line().c_str();
    const std::string theValue = theInput.Line().c_str();
    const std::string theText = theInput.Rest();
    const std::string theReadOnly = Place("-r.ini");
    const std::string theWritable = Place("-w.ini");
    Write(theReadOnly, theText.substr(0, theText.size() / 2));
    Write(theWritable, theText.substr(theText.size() / 2));

    vxConfigFile* theFile = vxConfigFile_New(theReadOnly.c_str(), theWritable.c_str(), "fuzz");
    Values theValues = AllValues(theFile);
    if (!theValues.empty()) {
        const auto theFirst = theValues.begin()->first;
        vxfuzz::Expect(
            vxConfigFile_DeleteKey(theFile, theFirst.first.c_str(), theFirst.second.c_str()),
            "what is listed can be deleted");
        theValues.erase(theFirst);
    }
    if (vxConfigFile_SetString(theFile, theSection.c_str(), theKey.c_str(), theValue.c_str())) {
        theValues[{theSection, theKey}] = theValue;
    }
    vxfuzz::Expect(AllValues(theFile) == theValues, "changes are seen");
    vxfuzz::Expect(vxConfigFile_Save(theFile), "a writable file is saved");
    vxfuzz::Expect(AllValues(theFile) == theValues, "saving changes no value");
    vxConfigFile_Reset(theFile);
    vxfuzz::Expect(AllValues(theFile) == theValues, "what was saved reads back");
    vxConfigFile_Delete(theFile);
    unlink(theReadOnly.c_str());
    unlink(theWritable.c_str());
    return 0;
}
