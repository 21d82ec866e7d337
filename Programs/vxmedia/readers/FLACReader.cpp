// FLAC: the mark is followed by the STREAMINFO block, a row of bit fields, and by other blocks.

#include <cstring>

#include "MediaReader.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr size_t kFLAC_StreamInfoSize = 34;
constexpr size_t kFLAC_BlockHeaderSize = 4;
constexpr size_t kFLAC_HeaderSize = 4 + 4 + kFLAC_StreamInfoSize;  // mark, block header, block

bool RecognizeFLAC(MediaSource& aSource, uint64_t aStart) {
    uint8_t theBytes[4];
    return aSource.ReadExactly(aStart, theBytes, sizeof(theBytes)) &&
           memcmp(theBytes, "fLaC", 4) == 0;
}

const char* ReadFLAC(MediaSource& aSource, uint64_t aStart, MediaFacts& aFacts) {
    uint8_t theHeader[kFLAC_HeaderSize];
    if (!RecognizeFLAC(aSource, aStart)) {
        return "FLAC: the signature is missing";
    }
    if (!aSource.ReadExactly(aStart, theHeader, sizeof(theHeader))) {
        return "FLAC: the file ends inside the header";
    }
    vxBitString theBlock(theHeader + 4, 4);
    theBlock.Skip(1);  // whether it is the last block
    const uint32_t theType = theBlock.Get(7);
    if (theType != 0 || theBlock.Get(24) != kFLAC_StreamInfoSize) {
        return "FLAC: the first block does not describe the stream";
    }
    return ReadFLACStreamInfo(theHeader + 8, aFacts);
}

void ReadFLACTags(MediaSource& aSource, uint64_t aStart, MediaTags& aTags) {
    uint64_t thePos = aStart + 4;
    uint8_t theHeader[kFLAC_BlockHeaderSize];
    while (aSource.ReadExactly(thePos, theHeader, sizeof(theHeader))) {
        const uint32_t theSize = vxBitString::BigEndianTouint32(theHeader) & 0xFFFFFF;
        thePos += sizeof(theHeader);
        ReadFLACBlock(aSource, theHeader[0], MediaBytes(thePos, theSize), aTags);
        thePos += theSize;
        if (IsLastFLACBlock(theHeader[0])) {
            return;
        }
    }
}

}  // namespace

const char* ReadFLACStreamInfo(const uint8_t* aBlock, MediaFacts& aFacts) {
    vxBitString theBits(aBlock, kFLAC_StreamInfoSize);
    theBits.Skip(16 + 16 + 24 + 24);  // sizes of blocks and frames
    const uint32_t theRate = theBits.Get(20);
    const uint32_t theChannels = theBits.Get(3) + 1;
    const uint32_t theBitCount = theBits.Get(5) + 1;
    const uint64_t theHigh = theBits.Get(4);
    const uint64_t theFrames = theHigh << 32 | theBits.Get(32);
    if (theRate == 0) {
        return "FLAC: the stream has no rate";
    }
    aFacts.mRate = theRate;
    aFacts.mChannels = theChannels;
    aFacts.mBits = theBitCount;
    aFacts.mFrames = theFrames;
    aFacts.mfDurationKnown = theFrames != 0;
    aFacts.mDetail = vxCString::Format("%u-bit", theBitCount);
    return nullptr;
}

void ReadFLACBlock(MediaSource& aSource, uint8_t aHeader, const MediaBytes& aBytes,
                   MediaTags& aTags) {
    constexpr uint8_t kComment = 4;
    constexpr uint8_t kPicture = 6;
    const uint8_t theType = aHeader & 0x7F;
    if (theType == kComment) {
        ReadVorbisComment(aSource, aBytes, aTags);
    } else if (theType == kPicture) {
        ReadFLACPicture(aSource, aBytes, aTags);
    }
}

const MediaFormat kMediaFormat_FLAC = {"FLAC",        ",flac,", true,
                                       RecognizeFLAC, ReadFLAC, ReadFLACTags};

}  // namespace vxmedia
