// BMP: a file header of 14 bytes, then a header of the picture, which begins with its own size. That of
// 12 bytes has 16-bit sizes; all others have 32-bit ones, a negative height meaning lines from the top.

#include <cstdio>

#include "../ProbeBytes.h"

namespace {

constexpr size_t kBMP_HeaderSize = 14 + 40;
constexpr size_t kBMP_ShortSize = 14 + 12;

bool IsPossible(uint32_t aSize) {
    return aSize != 0 && aSize <= INT32_MAX;
}

const char* CompressionName(uint32_t aCompression) {
    static const char* const kNames[] = {"uncompressed", "RLE8", "RLE4",
                                         "bit fields",   "JPEG", "PNG"};
    return aCompression < sizeof(kNames) / sizeof(*kNames) ? kNames[aCompression]
                                                           : "unknown compression";
}

const char* ReadShortHeader(const uint8_t* aHeader, vxmedia_facts* aFacts) {
    aFacts->width = ProbeLittle16(aHeader + 18);
    aFacts->height = ProbeLittle16(aHeader + 20);
    snprintf(aFacts->detail, sizeof(aFacts->detail), "%u-bit, uncompressed",
             ProbeLittle16(aHeader + 24));
    return nullptr;
}

const char* ReadLongHeader(const uint8_t* aHeader, vxmedia_facts* aFacts) {
    const uint32_t theHeight = ProbeLittle32(aHeader + 22);
    const bool theIsFromTop = (theHeight & 0x80000000) != 0;
    aFacts->width = ProbeLittle32(aHeader + 18);
    aFacts->height = theIsFromTop ? 0 - theHeight : theHeight;
    snprintf(aFacts->detail, sizeof(aFacts->detail), "%u-bit, %s%s", ProbeLittle16(aHeader + 28),
             CompressionName(ProbeLittle32(aHeader + 30)), theIsFromTop ? ", from the top" : "");
    return nullptr;
}

const char* ReadHeader(const vxmedia_source* aSource, vxmedia_facts* aFacts) {
    uint8_t theHeader[kBMP_HeaderSize];
    if (!ProbeReadExactly(aSource, 0, theHeader, kBMP_ShortSize)) {
        return "BMP: the file ends inside the header";
    }
    const uint32_t theSize = ProbeLittle32(theHeader + 14);
    if (theSize == 12) {
        return ReadShortHeader(theHeader, aFacts);
    }
    if (theSize < 40) {
        return "BMP: the header is of an unknown kind";
    }
    if (!ProbeReadExactly(aSource, 0, theHeader, sizeof(theHeader))) {
        return "BMP: the file ends inside the header";
    }
    return ReadLongHeader(theHeader, aFacts);
}

}  // namespace

const char* vxmedia_probe1_format(void) {
    return "BMP";
}

const char* vxmedia_probe1_endings(void) {
    return "bmp,dib";
}

// Two letters begin many a text, so the size of the second header is looked at, too.
int vxmedia_probe1_recognize(const vxmedia_source* aSource) {
    uint8_t theBytes[18];
    if (!ProbeBeginsWith(aSource, "BM") ||
        !ProbeReadExactly(aSource, 0, theBytes, sizeof(theBytes))) {
        return 0;
    }
    const uint32_t theSize = ProbeLittle32(theBytes + 14);
    return theSize >= 12 && theSize <= 124;
}

const char* vxmedia_probe1_read(const vxmedia_source* aSource, vxmedia_facts* aFacts) {
    if (!ProbeBeginsWith(aSource, "BM")) {
        return "BMP: the signature is missing";
    }
    const char* theReason = ReadHeader(aSource, aFacts);
    if (theReason == nullptr && !(IsPossible(aFacts->width) && IsPossible(aFacts->height))) {
        theReason = "BMP: the picture has an impossible size";
    }
    return theReason;
}
