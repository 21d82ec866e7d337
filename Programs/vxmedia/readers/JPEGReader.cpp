// JPEG: segments are leapt over until the frame header, which tells size and coding.
//
// Pictures inside other segments, such as a camera's preview, are never looked at.

#include <cstring>

#include "MediaReader.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr uint8_t kJPEG_StartOfImage = 0xD8;
constexpr uint8_t kJPEG_EndOfImage = 0xD9;
constexpr uint8_t kJPEG_StartOfScan = 0xDA;
constexpr uint8_t kJPEG_App1 = 0xE1;

// Frame headers are C0 to CF but for the tables and reserved codes among them.
bool IsFrameHeader(uint8_t aMarker) {
    return aMarker >= 0xC0 && aMarker <= 0xCF && aMarker != 0xC4 && aMarker != 0xC8 &&
           aMarker != 0xCC;
}

// Restart markers, the start of the image and TEM stand alone, without a length.
bool StandsAlone(uint8_t aMarker) {
    return (aMarker >= 0xD0 && aMarker <= kJPEG_StartOfImage) || aMarker == 0x01;
}

const char* NameOfCoding(uint8_t aMarker) {
    switch (aMarker & 3) {
        case 0:
            return "baseline";
        case 1:
            return "extended sequential";
        case 2:
            return "progressive";
        default:
            return "lossless";
    }
}

// Finds the marker at or behind `aPos`, over any number of fill bytes, and moves `aPos` behind it.
const char* NextMarker(MediaSource& aSource, uint64_t& aPos, uint8_t& aMarker) {
    uint8_t theByte;
    if (!aSource.ReadExactly(aPos++, &theByte, 1)) {
        return "JPEG: the file ends before the size of the picture";
    }
    if (theByte != 0xFF) {
        return "JPEG: a marker is missing between segments";
    }
    do {
        if (!aSource.ReadExactly(aPos++, &aMarker, 1)) {
            return "JPEG: the file ends before the size of the picture";
        }
    } while (aMarker == 0xFF);
    return nullptr;
}

const char* ReadFrameHeader(MediaSource& aSource, uint64_t aPos, uint8_t aMarker,
                            MediaFacts& aFacts) {
    uint8_t theHeader[8];
    if (!aSource.ReadExactly(aPos, theHeader, sizeof(theHeader))) {
        return "JPEG: the file ends inside the frame header";
    }
    vxBitString theBits(theHeader, sizeof(theHeader));
    const uint32_t theLength = theBits.Get(16);
    const uint32_t thePrecision = theBits.Get(8);
    const uint32_t theHeight = theBits.Get(16);
    const uint32_t theWidth = theBits.Get(16);
    const uint32_t theComponents = theBits.Get(8);
    if (theComponents == 0 || theLength != 8 + 3 * theComponents) {
        return "JPEG: the frame header has a wrong length";
    }
    if (theWidth == 0 || theHeight == 0) {
        return "JPEG: the frame header has no picture size";
    }
    aFacts.mWidth = theWidth;
    aFacts.mHeight = theHeight;
    aFacts.mBits = thePrecision * theComponents;
    aFacts.mDetail = vxCString::Format("%s, %u-bit, %u component%s", NameOfCoding(aMarker),
                                       thePrecision, theComponents, theComponents == 1 ? "" : "s");
    return nullptr;
}

bool RecognizeJPEG(MediaSource& aSource, uint64_t aStart) {
    uint8_t theBytes[3];
    return aSource.ReadExactly(aStart, theBytes, sizeof(theBytes)) && theBytes[0] == 0xFF &&
           theBytes[1] == kJPEG_StartOfImage && theBytes[2] == 0xFF;
}

const char* ReadJPEG(MediaSource& aSource, uint64_t aStart, MediaFacts& aFacts) {
    if (!RecognizeJPEG(aSource, aStart)) {
        return "JPEG: the signature is missing";
    }
    uint64_t thePos = aStart + 2;
    for (;;) {
        uint8_t theMarker;
        if (const char* theReason = NextMarker(aSource, thePos, theMarker)) {
            return theReason;
        }
        if (IsFrameHeader(theMarker)) {
            return ReadFrameHeader(aSource, thePos, theMarker, aFacts);
        }
        if (theMarker == kJPEG_StartOfScan || theMarker == kJPEG_EndOfImage || theMarker == 0) {
            return "JPEG: there is no frame header";
        }
        if (StandsAlone(theMarker)) {
            continue;
        }
        uint8_t theLength[2];
        if (!aSource.ReadExactly(thePos, theLength, sizeof(theLength))) {
            return "JPEG: the file ends before the size of the picture";
        }
        if (vxBitString::BigEndianTouint16(theLength) < 2) {
            return "JPEG: a segment has a wrong length";
        }
        thePos += vxBitString::BigEndianTouint16(theLength);
    }
}

void ReadJPEGTags(MediaSource& aSource, uint64_t aStart, MediaTags& aTags) {
    uint64_t thePos = aStart + 2;
    uint8_t theMarker;
    while (NextMarker(aSource, thePos, theMarker) == nullptr && theMarker != kJPEG_StartOfScan &&
           theMarker != kJPEG_EndOfImage) {
        if (StandsAlone(theMarker)) {
            continue;
        }
        uint8_t theHead[8];  // length, and what an EXIF segment begins with
        const size_t theCount = aSource.Read(thePos, theHead, sizeof(theHead));
        const uint32_t theSize = theCount < 2 ? 0 : vxBitString::BigEndianTouint16(theHead);
        if (theSize < 2) {
            return;
        }
        if (theMarker == kJPEG_App1 && theCount == sizeof(theHead) && theSize > sizeof(theHead) &&
            memcmp(theHead + 2, "Exif\0\0", 6) == 0) {
            ReadExif(aSource, MediaBytes(thePos + sizeof(theHead), theSize - sizeof(theHead)),
                     aTags);
        }
        thePos += theSize;
    }
}

}  // namespace

const MediaFormat kMediaFormat_JPEG = {"JPEG",        ",jpg,jpeg,jpe,", false,
                                       RecognizeJPEG, ReadJPEG,         ReadJPEGTags};

}  // namespace vxmedia
