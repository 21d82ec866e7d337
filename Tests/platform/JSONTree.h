#pragma once

// Handles for the trees and texts that the tests of the JSON functions get.

#include <libteskTools/JSON.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace vxtest {

struct DeleteNode {
    void operator()(vxJSON_t* aNode) const { vxJSON_Delete(aNode); }
};
using Tree = std::unique_ptr<vxJSON_t, DeleteNode>;

inline Tree Parse(const std::string& aText) {
    return Tree(vxJSON_ParseSize(aText.data(), aText.size(), nullptr));
}

/// Takes over a text of the library; "(null)" for null.
inline std::string Adopt(char* aText) {
    const std::string theText = aText == nullptr ? "(null)" : aText;
    free(aText);
    return theText;
}

inline std::string Print(const vxJSON_t* aNode) {
    return Adopt(vxJSON_PrintUnformatted(aNode));
}

inline std::string Print(const Tree& aTree) {
    return Print(aTree.get());
}

inline std::string Encode(const vxJSON_t* aNode,
                          const vxJSONMPackDictionary_t* aDictionary = nullptr) {
    uint32_t theSize = 0;
    uint8_t* theBytes = vxJSON_ToMPack(aNode, &theSize, aDictionary);
    const std::string theResult(reinterpret_cast<char*>(theBytes), theSize);
    free(theBytes);
    return theResult;
}

inline Tree Decode(const std::string& aBytes,
                   const vxJSONMPackDictionary_t* aDictionary = nullptr) {
    return Tree(vxJSON_FromMPackSize(reinterpret_cast<const uint8_t*>(aBytes.data()), aBytes.size(),
                                     aDictionary));
}

}  // namespace vxtest
