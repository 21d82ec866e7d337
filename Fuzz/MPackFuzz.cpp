// Bytes are refused, or give a tree that encodes and decodes to an equal one.

#include <libteskTools/JSON.h>

#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    static vxJSONMPackDictionary_t* sDictionary = [] {
        vxJSONMPackDictionary_t* theDictionary = vxJSONMPackDictionary_New();
        for (const char* theWord : {"name", "value", "list"}) {
            vxJSONMPackDictionary_AddString(theDictionary, theWord);
        }
        return theDictionary;
    }();
    vxJSON_t* theTree = vxJSON_FromMPackSize(aData, aSize, sDictionary);
    if (theTree == nullptr) {
        return 0;
    }
    uint32_t theSize = 0;
    uint8_t* theBytes = vxJSON_ToMPack(theTree, &theSize, sDictionary);
    vxfuzz::Expect(theBytes != nullptr, "a tree is encoded");
    vxJSON_t* theAgain = vxJSON_FromMPackSize(theBytes, theSize, sDictionary);
    vxfuzz::Expect(theAgain != nullptr && vxJSON_Compare(theTree, theAgain) == 0,
                   "encoded bytes decode to an equal tree");
    free(theBytes);
    vxJSON_Delete(theAgain);
    vxJSON_Delete(theTree);
    return 0;
}
