// Any sequence of operations on any bytes stays within them and never moves backwards by itself.

#include <vx/BitString.h>

#include <vector>

#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    std::vector<uint8_t> theBytes(theInput.Byte());
    for (uint8_t& theByte : theBytes) {
        theByte = theInput.Byte();
    }
    vxBitString theBits(theBytes.data(), theBytes.size());
    while (!theInput.IsEmpty()) {
        const size_t theRemaining = theBits.GetRemainingBitCount();
        const uint8_t theCount = theInput.Byte();
        switch (theInput.Byte() % 7) {
            case 0:
                theBits.Get(static_cast<uint8_t>(theCount % 32 + 1));
                break;
            case 1:
                theBits.Peek(static_cast<uint8_t>(theCount % 32 + 1));
                vxfuzz::Expect(theBits.GetRemainingBitCount() == theRemaining,
                               "a peek moves nothing");
                break;
            case 2:
                theBits.Skip(theCount);
                break;
            case 3:
                theBits.GetUE();
                break;
            case 4:
                theBits.GetSE();
                break;
            case 5:
                theBits.ByteAlign();
                break;
            default:
                theBits.ToggleMarker(true);
                theBits.Skip(theCount);
                theBits.ToggleMarker(false);
                vxfuzz::Expect(theBits.GetRemainingBitCount() == theRemaining,
                               "a marker leads back");
                break;
        }
        vxfuzz::Expect(theBits.GetRemainingBitCount() <= theRemaining, "reading moves forward");
        vxfuzz::Expect(theBits.GetByteOffset() <= theBytes.size(), "the offset stays in the bytes");
    }
    return 0;
}
