// The words that MPack writes as numbers.
//
// Each word is a name block: nodes that are decoded with a long word share it, and keep it when the
// dictionary goes.

#include "JSONMPackDictionary.h"

#include <string_view>
#include <unordered_map>
#include <vector>

#include "TextHash.h"

namespace {

struct vxWordHash {
    size_t operator()(std::string_view aWord) const {
        return vxTextHash(aWord.data(), aWord.size());
    }
};

}  // namespace

struct vxJSONMPackDictionary_t {
    std::vector<char*> mWords;
    std::unordered_map<std::string_view, int32_t, vxWordHash> mIndexes;  // views into mWords
};

int32_t vxWord_Find(const vxJSONMPackDictionary_t* aDictionary, const char* aWord, size_t aLength) {
    if (aDictionary == nullptr) {
        return -1;
    }
    const auto theFound = aDictionary->mIndexes.find(std::string_view(aWord, aLength));
    return theFound == aDictionary->mIndexes.end() ? -1 : theFound->second;
}

const char* vxWord_At(const vxJSONMPackDictionary_t* aDictionary, uint64_t anIndex) {
    if (aDictionary == nullptr || anIndex >= aDictionary->mWords.size()) {
        return nullptr;
    }
    return aDictionary->mWords[static_cast<size_t>(anIndex)];
}

vxJSONMPackDictionary_t* vxJSONMPackDictionary_New(void) {
    return new vxJSONMPackDictionary_t;
}

void vxJSONMPackDictionary_Delete(vxJSONMPackDictionary_t* aDictionary) {
    if (aDictionary == nullptr) {
        return;
    }
    for (char* theWord : aDictionary->mWords) {
        vxReleaseName(theWord);
    }
    delete aDictionary;
}

void vxJSONMPackDictionary_AddString(vxJSONMPackDictionary_t* aDictionary, const char* aWord) {
    if (aDictionary == nullptr) {
        return;
    }
    const char* theText = aWord == nullptr ? "" : aWord;
    const size_t theLength = strlen(theText);
    char* theWord = vxNewNameBlock(theText, theLength);
    if (theWord == nullptr) {
        return;
    }
    const int32_t theIndex = static_cast<int32_t>(aDictionary->mWords.size());
    aDictionary->mWords.push_back(theWord);
    aDictionary->mIndexes.emplace(std::string_view(theWord, theLength), theIndex);
}

int32_t vxJSONMPackDictionary_GetStringIndex(const vxJSONMPackDictionary_t* aDictionary,
                                             const char* aWord) {
    return aWord == nullptr ? -1 : vxWord_Find(aDictionary, aWord, strlen(aWord));
}

const char* vxJSONMPackDictionary_GetStringAtIndex(const vxJSONMPackDictionary_t* aDictionary,
                                                   int32_t anIndex) {
    return anIndex < 0 ? nullptr : vxWord_At(aDictionary, static_cast<uint64_t>(anIndex));
}
