// GIF: the size stands in the first 13 bytes, little-endian; the extension that makes a picture
// loop, where there is one, follows the color table.

#include <cstring>

#include "MediaReader.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr size_t kGIF_HeaderSize = 13;

bool RecognizeGIF(MediaSource& aSource, uint64_t aStart) {
    uint8_t theBytes[6];
    return aSource.ReadExactly(aStart, theBytes, sizeof(theBytes)) &&
           (memcmp(theBytes, "GIF87a", 6) == 0 || memcmp(theBytes, "GIF89a", 6) == 0);
}

bool Loops(MediaSource& aSource, uint64_t aPos) {
    static const char kExtension[] = "\x21\xFF\x0BNETSCAPE2.0";
    uint8_t theBytes[sizeof(kExtension) - 1];
    return aSource.ReadExactly(aPos, theBytes, sizeof(theBytes)) &&
           memcmp(theBytes, kExtension, sizeof(theBytes)) == 0;
}

const char* ReadGIF(MediaSource& aSource, uint64_t aStart, MediaFacts& aFacts) {
    uint8_t theHeader[kGIF_HeaderSize];
    if (!RecognizeGIF(aSource, aStart)) {
        return "GIF: the signature is missing";
    }
    if (!aSource.ReadExactly(aStart, theHeader, sizeof(theHeader))) {
        return "GIF: the file ends inside the header";
    }
    const uint32_t theWidth = vxBitString::LittleEndianTouint16(theHeader + 6);
    const uint32_t theHeight = vxBitString::LittleEndianTouint16(theHeader + 8);
    if (theWidth == 0 || theHeight == 0) {
        return "GIF: the picture has an impossible size";
    }
    vxBitString theFlags(theHeader + 10, 1);
    const bool theHasColors = theFlags.Get(1) != 0;
    theFlags.Skip(4);
    const uint32_t theBitCount = theFlags.Get(3) + 1;
    const uint64_t theColorsSize = theHasColors ? uint64_t(3) << theBitCount : 0;
    aFacts.mWidth = theWidth;
    aFacts.mHeight = theHeight;
    aFacts.mBits = theHasColors ? theBitCount : 0;
    aFacts.mDetail = vxCString::Format(
        "version %.3s%s", reinterpret_cast<const char*>(theHeader) + 3,
        Loops(aSource, aStart + kGIF_HeaderSize + theColorsSize) ? ", animated" : "");
    return nullptr;
}

}  // namespace

const MediaFormat kMediaFormat_GIF = {"GIF", ",gif,", false, RecognizeGIF, ReadGIF, nullptr};

}  // namespace vxmedia
