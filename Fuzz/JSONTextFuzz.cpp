// A text is refused within its bounds, or gives a tree that prints to an equal one.

#include <libteskTools/JSON.h>

#include "Input.h"

namespace {

void ReadAgain(const vxJSON_t* aTree, char* (*aPrint)(const vxJSON_t*)) {
    char* theText = aPrint(aTree);
    const char* theError = nullptr;
    vxJSON_t* theAgain = vxJSON_Parse(theText, &theError);
    vxfuzz::Expect(theAgain != nullptr, "printed text is read");
    vxfuzz::Expect(vxJSON_Compare(aTree, theAgain) == 0, "printed text reads back equal");
    vxJSON_Delete(theAgain);
    free(theText);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    const std::string theText = vxfuzz::Input(aData, aSize).Rest();
    const char* theError = nullptr;
    vxJSON_t* theTree = vxJSON_Parse(theText.c_str(), &theError);
    if (theTree == nullptr) {
        vxfuzz::Expect(theError >= theText.c_str() && theError <= theText.c_str() + theText.size(),
                       "the error lies in the text");
        return 0;
    }
    ReadAgain(theTree, vxJSON_Print);
    ReadAgain(theTree, vxJSON_PrintUnformatted);
    vxJSON_t* theCopy = vxJSON_Clone(theTree);
    vxfuzz::Expect(vxJSON_Compare(theTree, theCopy) == 0, "a copy is equal");
    vxJSON_Delete(theTree);
    vxJSON_Delete(theCopy);
    return 0;
}
