// PNG: the signature is followed by the IHDR chunk, which holds all facts, under a checksum. Other
// chunks hold texts; those that are compressed are left out, for there is nothing here to inflate them.

#include <algorithm>
#include <cstring>

#include "MediaReader.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr uint8_t kPNG_Start[16] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n',
                                    0,    0,   0,   13,  'I',  'H',  'D',  'R'};
constexpr size_t kPNG_HeaderSize = 33;  // signature, length, type, 13 bytes of data, checksum
constexpr uint32_t kPNG_MaxSide = 0x7FFFFFFF;
constexpr int kPNG_MaxChunks = 256;     // that are looked at for texts
constexpr size_t kPNG_MaxKeyword = 79;  // bytes

struct PNGColorType {
    const char* mName;
    uint32_t mSamples;  // of one pixel
    uint32_t mDepths;   // bit n: a sample may have n bits
};

// Indexed by the color type; types without a name do not exist.
constexpr PNGColorType kPNG_ColorTypes[] = {
    {"grayscale", 1, 1u << 1 | 1u << 2 | 1u << 4 | 1u << 8 | 1u << 16},
    {nullptr, 0, 0},
    {"RGB", 3, 1u << 8 | 1u << 16},
    {"palette", 1, 1u << 1 | 1u << 2 | 1u << 4 | 1u << 8},
    {"grayscale and alpha", 2, 1u << 8 | 1u << 16},
    {nullptr, 0, 0},
    {"RGBA", 4, 1u << 8 | 1u << 16},
};

uint32_t PNGChecksum(const uint8_t* aBytes, size_t aCount) {
    uint32_t theSum = 0xFFFFFFFF;
    for (size_t i = 0; i < aCount; ++i) {
        theSum ^= aBytes[i];
        for (int j = 0; j < 8; ++j) {
            theSum = (theSum >> 1) ^ ((theSum & 1) != 0 ? 0xEDB88320u : 0u);
        }
    }
    return ~theSum;
}

bool RecognizePNG(MediaSource& aSource, uint64_t aStart) {
    uint8_t theBytes[8];
    return aSource.ReadExactly(aStart, theBytes, sizeof(theBytes)) &&
           memcmp(theBytes, kPNG_Start, sizeof(theBytes)) == 0;
}

const char* ReadPNG(MediaSource& aSource, uint64_t aStart, MediaFacts& aFacts) {
    uint8_t theHeader[kPNG_HeaderSize];
    if (!RecognizePNG(aSource, aStart)) {
        return "PNG: the signature is missing";
    }
    if (!aSource.ReadExactly(aStart, theHeader, sizeof(theHeader))) {
        return "PNG: the file ends inside the header";
    }
    if (memcmp(theHeader, kPNG_Start, sizeof(kPNG_Start)) != 0) {
        return "PNG: the first chunk is not a header";
    }
    if (vxBitString::BigEndianTouint32(theHeader + 29) != PNGChecksum(theHeader + 12, 17)) {
        return "PNG: the header does not match its checksum";
    }
    vxBitString theBits(theHeader + 16, 13);
    const uint32_t theWidth = theBits.Get(32);
    const uint32_t theHeight = theBits.Get(32);
    const uint32_t theDepth = theBits.Get(8);
    const uint32_t theType = theBits.Get(8);
    theBits.Skip(16);
    const bool theIsInterlaced = theBits.Get(8) != 0;
    if (theWidth == 0 || theHeight == 0 || theWidth > kPNG_MaxSide || theHeight > kPNG_MaxSide) {
        return "PNG: the picture has an impossible size";
    }
    if (theType > 6 || theDepth > 16 || (kPNG_ColorTypes[theType].mDepths >> theDepth & 1) == 0) {
        return "PNG: the colors are of an unknown kind";
    }
    aFacts.mWidth = theWidth;
    aFacts.mHeight = theHeight;
    aFacts.mBits = theDepth * kPNG_ColorTypes[theType].mSamples;
    aFacts.mDetail = vxCString::Format("%u-bit %s%s", theDepth, kPNG_ColorTypes[theType].mName,
                                       theIsInterlaced ? ", interlaced" : "");
    return nullptr;
}

void SetPNGTag(const vxCString& aKeyword, const vxCString& aText, MediaTags& aTags) {
    if (aKeyword == "Title") {
        SetTag(aTags.mTitle, aText);
    } else if (aKeyword == "Author") {
        SetTag(aTags.mCreator, aText);
    } else if (aKeyword == "Creation Time") {
        SetTag(aTags.mDate, aText);
    }
}

// A keyword and a text in Latin-1; in an iTXt chunk whether and how it is compressed, language and
// translated keyword come between, and the text is UTF-8.
void ReadPNGText(MediaSource& aSource, uint64_t aPos, uint32_t aSize, bool afInternational,
                 MediaTags& aTags) {
    uint8_t theBytes[kPNG_MaxKeyword + 1 + kTag_MaxText];
    const size_t theCount = aSource.Read(aPos, theBytes, std::min<size_t>(aSize, sizeof(theBytes)));
    const uint8_t* const theEnd = theBytes + theCount;
    const uint8_t* thePos = std::find<const uint8_t*>(theBytes, theEnd, uint8_t{0});
    if (thePos == theEnd) {
        return;
    }
    const vxCString theKeyword = TextOfLatin1(theBytes, theCount);
    ++thePos;
    if (!afInternational) {
        SetPNGTag(theKeyword, TextOfLatin1(thePos, static_cast<size_t>(theEnd - thePos)), aTags);
        return;
    }
    if (theEnd - thePos < 2 || thePos[0] != 0) {
        return;
    }
    const uint8_t* theText = thePos + 2;
    for (int i = 0; i < 2; ++i) {
        theText = std::find(theText, theEnd, uint8_t{0});
        if (theText == theEnd) {
            return;
        }
        ++theText;
    }
    SetPNGTag(theKeyword, TextOfUTF8(theText, static_cast<size_t>(theEnd - theText)), aTags);
}

void ReadPNGTags(MediaSource& aSource, uint64_t aStart, MediaTags& aTags) {
    uint64_t thePos = aStart + 8;
    uint8_t theHead[8];
    for (int i = 0; i < kPNG_MaxChunks && aSource.ReadExactly(thePos, theHead, sizeof(theHead));
         ++i) {
        const uint32_t theSize = vxBitString::BigEndianTouint32(theHead);
        const uint64_t theData = thePos + sizeof(theHead);
        if (memcmp(theHead + 4, "tEXt", 4) == 0 || memcmp(theHead + 4, "iTXt", 4) == 0) {
            ReadPNGText(aSource, theData, theSize, theHead[4] == 'i', aTags);
        } else if (memcmp(theHead + 4, "eXIf", 4) == 0) {
            ReadExif(aSource, MediaBytes(theData, theSize), aTags);
        } else if (memcmp(theHead + 4, "IEND", 4) == 0) {
            return;
        }
        thePos = theData + theSize + 4;
    }
}

}  // namespace

const MediaFormat kMediaFormat_PNG = {"PNG", ",png,", false, RecognizePNG, ReadPNG, ReadPNGTags};

}  // namespace vxmedia
