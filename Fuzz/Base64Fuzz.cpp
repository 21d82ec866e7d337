// Any text decodes within its bounds or is refused; what was decoded encodes back to the same bytes.

#include <libteskTools/Base64.h>

#include <cstring>
#include <vector>

#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    const std::string theText = vxfuzz::Input(aData, aSize).Rest();
    std::vector<uint8_t> theBytes(theText.size() + 1);
    size_t theSize = 0;
    if (!vxBase64_DecodeSized(theText.data(), theText.size(), theBytes.data(), &theSize)) {
        return 0;
    }
    vxfuzz::Expect(theSize <= theText.size() * 3 / 4, "three bytes for four characters");

    char* theEncoded = nullptr;
    const size_t theLength = vxBase64_Encode(theBytes.data(), theSize, &theEncoded);
    std::vector<uint8_t> theAgain(theLength + 1);
    size_t theAgainSize = 0;
    vxfuzz::Expect(vxBase64_DecodeSized(theEncoded, theLength, theAgain.data(), &theAgainSize),
                   "encoded text decodes");
    vxfuzz::Expect(
        theAgainSize == theSize && memcmp(theAgain.data(), theBytes.data(), theSize) == 0,
        "bytes survive a round trip");
    free(theEncoded);
    return 0;
}
