// GIF: the size stands in the first 13 bytes, little-endian; the extension that makes a picture
// loop, where there is one, follows the color table. Comments are extensions, too; those behind the
// first picture are left out, for its data would have to be read to find them.

#include <algorithm>
#include <cstring>
#include <vector>

#include "MediaReader.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr size_t kGIF_HeaderSize = 13;
constexpr int kGIF_MaxBlocks = 1024;  // that are looked at for comments
constexpr uint8_t kGIF_Extension = 0x21;
constexpr uint8_t kGIF_Comment = 0xFE;

// Returns the number of bytes of the color table that the flags of the header announce.
uint64_t SizeOfColors(const uint8_t* aHeader) {
    vxBitString theFlags(aHeader + 10, 1);
    const bool theHasColors = theFlags.Get(1) != 0;
    theFlags.Skip(4);
    return theHasColors ? uint64_t(3) << (theFlags.Get(3) + 1) : 0;
}

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
    const uint64_t theColorsSize = SizeOfColors(theHeader);
    aFacts.mWidth = theWidth;
    aFacts.mHeight = theHeight;
    aFacts.mBits = theColorsSize == 0 ? 0 : (theHeader[10] & 7u) + 1;
    aFacts.mDetail = vxCString::Format(
        "version %.3s%s", reinterpret_cast<const char*>(theHeader) + 3,
        Loops(aSource, aStart + kGIF_HeaderSize + theColorsSize) ? ", animated" : "");
    return nullptr;
}

// Reads the sub-blocks of an extension, each with its length in front, up to the empty one; a length
// that the file does not hold ends them as well. Returns the position behind them, 0 for none.
uint64_t ReadSubBlocks(MediaSource& aSource, uint64_t aPos, std::vector<uint8_t>& aBytes) {
    for (int i = 0; i < kGIF_MaxBlocks; ++i) {
        uint8_t theBlock[1 + 255];
        if (!aSource.ReadExactly(aPos, theBlock, 1) ||
            !aSource.ReadExactly(aPos + 1, theBlock + 1, theBlock[0])) {
            return 0;
        }
        aPos += 1u + theBlock[0];
        if (theBlock[0] == 0) {
            return aPos;
        }
        const size_t theRest = kTag_MaxText - aBytes.size();
        aBytes.insert(aBytes.end(), theBlock + 1,
                      theBlock + 1 + std::min<size_t>(theBlock[0], theRest));
    }
    return 0;
}

// The last comment counts.
void ReadGIFTags(MediaSource& aSource, uint64_t aStart, MediaTags& aTags) {
    uint8_t theHeader[kGIF_HeaderSize];
    if (!aSource.ReadExactly(aStart, theHeader, sizeof(theHeader))) {
        return;
    }
    uint64_t thePos = aStart + sizeof(theHeader) + SizeOfColors(theHeader);
    uint8_t theStart[2];
    for (int i = 0;
         i < kGIF_MaxBlocks && thePos != 0 &&
         aSource.ReadExactly(thePos, theStart, sizeof(theStart)) && theStart[0] == kGIF_Extension;
         ++i) {
        std::vector<uint8_t> theBytes;
        thePos = ReadSubBlocks(aSource, thePos + sizeof(theStart), theBytes);
        if (theStart[1] == kGIF_Comment && !theBytes.empty()) {
            aTags.mComment = TextOfUTF8OrLatin1(theBytes.data(), theBytes.size());
        }
    }
}

}  // namespace

const MediaFormat kMediaFormat_GIF = {"GIF", ",gif,", false, RecognizeGIF, ReadGIF, ReadGIFTags};

}  // namespace vxmedia
