// WAV: chunks with little-endian lengths; "fmt " tells the coding, "data" how much of it there is.
//
// RF64 is the same with a 64-bit length of the data in a chunk of its own. A length that says more
// than the file holds is cut to what is there, as programs that write into a pipe leave one. Lists of
// the kind INFO, before the data or behind it, hold texts.

#include <algorithm>
#include <cstring>
#include <iterator>

#include "MediaReader.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr uint32_t kWAV_PCM = 1;
constexpr uint32_t kWAV_Extensible = 0xFFFE;
constexpr uint32_t kWAV_LengthElsewhere = 0xFFFFFFFF;
constexpr int kWAV_MaxChunks = 256;     // that are looked at for texts, and texts in one list
constexpr size_t kWAV_FormatSize = 26;  // up to the coding that the extensible form names

struct WAVCoding {
    const char* mName;
    uint32_t mTag;
    bool mfEvenFrames;  // every sample takes the same number of bytes
};

constexpr WAVCoding kWAV_Codings[] = {
    {"PCM", kWAV_PCM, true}, {"Microsoft ADPCM", 2, false}, {"floating point", 3, true},
    {"A-law", 6, true},      {"mu-law", 7, true},           {"IMA ADPCM", 0x11, false},
    {"GSM", 0x31, false},    {"MPEG", 0x50, false},         {"MPEG layer III", 0x55, false},
};

struct WAVHeader {
    bool mfHasFormat = false;
    bool mfExtensible = false;
    uint32_t mTag = 0;
    uint32_t mChannels = 0;
    uint32_t mRate = 0;
    uint32_t mBytesPerSecond = 0;
    uint32_t mBlockSize = 0;  // bytes
    uint32_t mBits = 0;       // of one sample
    bool mfHasFrames = false;
    uint32_t mFrames = 0;    // as the fact chunk says
    uint64_t mLongSize = 0;  // bytes of data, as RF64 says
};

const WAVCoding* FindCoding(uint32_t aTag) {
    const auto theEnd = std::end(kWAV_Codings);
    const auto theRow = std::find_if(std::begin(kWAV_Codings), theEnd,
                                     [aTag](const WAVCoding& aRow) { return aRow.mTag == aTag; });
    return theRow == theEnd ? nullptr : theRow;
}

const char* ReadFormat(MediaSource& aSource, uint64_t aPos, uint32_t aSize, WAVHeader& aHeader) {
    uint8_t theBytes[kWAV_FormatSize] = {};
    const size_t theWanted = std::min<size_t>(aSize, sizeof(theBytes));
    if (theWanted < 16) {
        return "WAV: the format chunk is too short";
    }
    if (!aSource.ReadExactly(aPos, theBytes, theWanted)) {
        return "WAV: the file ends inside the format chunk";
    }
    aHeader.mTag = vxBitString::LittleEndianTouint16(theBytes);
    aHeader.mChannels = vxBitString::LittleEndianTouint16(theBytes + 2);
    aHeader.mRate = vxBitString::LittleEndianTouint32(theBytes + 4);
    aHeader.mBytesPerSecond = vxBitString::LittleEndianTouint32(theBytes + 8);
    aHeader.mBlockSize = vxBitString::LittleEndianTouint16(theBytes + 12);
    aHeader.mBits = vxBitString::LittleEndianTouint16(theBytes + 14);
    if (aHeader.mTag == kWAV_Extensible && theWanted == sizeof(theBytes)) {
        aHeader.mfExtensible = true;
        aHeader.mTag = vxBitString::LittleEndianTouint16(theBytes + 24);
    }
    if (aHeader.mChannels == 0 || aHeader.mRate == 0 || aHeader.mBlockSize == 0) {
        return "WAV: the format chunk describes no sound";
    }
    aHeader.mfHasFormat = true;
    return nullptr;
}

void ReadFact(MediaSource& aSource, uint64_t aPos, WAVHeader& aHeader) {
    uint8_t theBytes[4];
    if (aSource.ReadExactly(aPos, theBytes, sizeof(theBytes))) {
        aHeader.mfHasFrames = true;
        aHeader.mFrames = vxBitString::LittleEndianTouint32(theBytes);
    }
}

void ReadLongSize(MediaSource& aSource, uint64_t aPos, WAVHeader& aHeader) {
    uint8_t theBytes[16];
    if (aSource.ReadExactly(aPos, theBytes, sizeof(theBytes))) {
        aHeader.mLongSize = vxBitString::LittleEndianTouint32(theBytes + 8) |
                            uint64_t(vxBitString::LittleEndianTouint32(theBytes + 12)) << 32;
    }
}

void SetDuration(const WAVHeader& aHeader, const WAVCoding& aCoding, uint64_t aDataSize,
                 MediaFacts& aFacts) {
    if (aCoding.mfEvenFrames) {
        aFacts.mFrames = aDataSize / aHeader.mBlockSize;
    } else if (aHeader.mfHasFrames) {
        aFacts.mFrames = aHeader.mFrames;
    } else if (aHeader.mBytesPerSecond != 0) {
        const uint64_t theSeconds = aDataSize / aHeader.mBytesPerSecond;
        const uint64_t theRest = aDataSize % aHeader.mBytesPerSecond;
        aFacts.mFrames =
            theSeconds * aHeader.mRate + theRest * aHeader.mRate / aHeader.mBytesPerSecond;
    } else {
        return;
    }
    aFacts.mfDurationKnown = true;
}

uint32_t BitRateOf(const WAVHeader& aHeader, const WAVCoding& aCoding) {
    const uint64_t theBytes = aCoding.mfEvenFrames ? uint64_t(aHeader.mBlockSize) * aHeader.mRate
                                                   : aHeader.mBytesPerSecond;
    return static_cast<uint32_t>(std::min<uint64_t>(theBytes * 8, UINT32_MAX));
}

const char* ReadData(const WAVHeader& aHeader, uint64_t aSize, uint64_t aRest, MediaFacts& aFacts) {
    if (!aHeader.mfHasFormat) {
        return "WAV: the data comes before its format";
    }
    const WAVCoding* theCoding = FindCoding(aHeader.mTag);
    if (theCoding == nullptr) {
        return "WAV: the coding is unknown";
    }
    aFacts.mChannels = aHeader.mChannels;
    aFacts.mRate = aHeader.mRate;
    aFacts.mBits = aHeader.mBits;
    aFacts.mBitRate = BitRateOf(aHeader, *theCoding);
    SetDuration(aHeader, *theCoding, std::min(aSize, aRest), aFacts);
    aFacts.mDetail = vxCString::Format("%u-bit %s%s%s", aHeader.mBits, theCoding->mName,
                                       aHeader.mfExtensible ? ", extensible" : "",
                                       aSize > aRest ? ", cut short" : "");
    return nullptr;
}

bool RecognizeWAV(MediaSource& aSource, uint64_t aStart) {
    uint8_t theBytes[12];
    return aSource.ReadExactly(aStart, theBytes, sizeof(theBytes)) &&
           (memcmp(theBytes, "RIFF", 4) == 0 || memcmp(theBytes, "RF64", 4) == 0) &&
           memcmp(theBytes + 8, "WAVE", 4) == 0;
}

const char* ReadWAV(MediaSource& aSource, uint64_t aStart, MediaFacts& aFacts) {
    if (!RecognizeWAV(aSource, aStart)) {
        return "WAV: the signature is missing";
    }
    WAVHeader theHeader;
    uint64_t thePos = aStart + 12;
    for (;;) {
        uint8_t theChunk[8];
        if (!aSource.ReadExactly(thePos, theChunk, sizeof(theChunk))) {
            return theHeader.mfHasFormat ? "WAV: there is no data chunk"
                                         : "WAV: there is no format chunk";
        }
        thePos += sizeof(theChunk);
        const uint32_t theSize = vxBitString::LittleEndianTouint32(theChunk + 4);
        if (memcmp(theChunk, "fmt ", 4) == 0) {
            if (const char* theReason = ReadFormat(aSource, thePos, theSize, theHeader)) {
                return theReason;
            }
        } else if (memcmp(theChunk, "fact", 4) == 0) {
            ReadFact(aSource, thePos, theHeader);
        } else if (memcmp(theChunk, "ds64", 4) == 0) {
            ReadLongSize(aSource, thePos, theHeader);
        } else if (memcmp(theChunk, "data", 4) == 0) {
            const bool theIsLong = theSize == kWAV_LengthElsewhere && theHeader.mLongSize != 0;
            return ReadData(theHeader, theIsLong ? theHeader.mLongSize : theSize,
                            aSource.Size() - thePos, aFacts);
        }
        thePos += uint64_t(theSize) + (theSize & 1);
    }
}

struct WAVTexts {
    vxCString mTitle, mCreator, mAlbum, mGenre, mDate, mComment, mTrack;
};

constexpr struct {
    const char* mName;
    vxCString WAVTexts::*mText;
} kWAV_Texts[] = {
    {"INAM", &WAVTexts::mTitle}, {"IART", &WAVTexts::mCreator}, {"IPRD", &WAVTexts::mAlbum},
    {"IGNR", &WAVTexts::mGenre}, {"ICRD", &WAVTexts::mDate},    {"ICMT", &WAVTexts::mComment},
    {"IPRT", &WAVTexts::mTrack}, {"ITRK", &WAVTexts::mTrack},
};

// The last text of a kind counts: it was added last.
void ReadWAVText(MediaSource& aSource, const char* aName, uint64_t aPos, uint64_t aSize,
                 WAVTexts& aTexts) {
    for (const auto& theRow : kWAV_Texts) {
        if (memcmp(aName, theRow.mName, 4) == 0) {
            uint8_t theBytes[kTag_MaxText];
            const size_t theCount = aSource.Read(
                aPos, theBytes, static_cast<size_t>(std::min<uint64_t>(aSize, kTag_MaxText)));
            const vxCString theText = TextOfUTF8OrLatin1(theBytes, theCount);
            if (!theText.IsEmpty()) {
                aTexts.*theRow.mText = theText;
            }
        }
    }
}

// Calls aTake with name, position and size of the chunks from aPos on until one has no part before
// anEnd, or until aTake refuses one.
template <typename Take>
void ForEachChunk(MediaSource& aSource, uint64_t aPos, uint64_t anEnd, Take aTake) {
    uint8_t theHead[8];
    for (int i = 0; i < kWAV_MaxChunks && aPos + sizeof(theHead) <= anEnd &&
                    aSource.ReadExactly(aPos, theHead, sizeof(theHead));
         ++i) {
        const uint64_t theData = aPos + sizeof(theHead);
        uint64_t theSize = vxBitString::LittleEndianTouint32(theHead + 4);
        if (!aTake(reinterpret_cast<const char*>(theHead), theData, theSize) ||
            theSize > anEnd - theData) {
            return;
        }
        aPos = theData + theSize + (theSize & 1);
    }
}

void ReadWAVList(MediaSource& aSource, uint64_t aPos, uint64_t aSize, WAVTexts& aTexts) {
    uint8_t theForm[4];
    if (aSize < sizeof(theForm) || !aSource.ReadExactly(aPos, theForm, sizeof(theForm)) ||
        memcmp(theForm, "INFO", 4) != 0) {
        return;
    }
    const uint64_t theEnd = std::min(aPos + aSize, aSource.Size());
    ForEachChunk(aSource, aPos + sizeof(theForm), theEnd,
                 [&](const char* aName, uint64_t aDataPos, uint64_t& aDataSize) {
                     ReadWAVText(aSource, aName, aDataPos, std::min(aDataSize, theEnd - aDataPos),
                                 aTexts);
                     return true;
                 });
}

void ReadWAVTags(MediaSource& aSource, uint64_t aStart, MediaTags& aTags) {
    WAVHeader theHeader;
    WAVTexts theTexts;
    ForEachChunk(aSource, aStart + 12, aSource.Size(),
                 [&](const char* aName, uint64_t aPos, uint64_t& aSize) {
                     if (memcmp(aName, "LIST", 4) == 0) {
                         ReadWAVList(aSource, aPos, aSize, theTexts);
                     } else if (memcmp(aName, "ds64", 4) == 0) {
                         ReadLongSize(aSource, aPos, theHeader);
                     } else if (memcmp(aName, "data", 4) == 0 && aSize == kWAV_LengthElsewhere &&
                                theHeader.mLongSize != 0) {
                         aSize = theHeader.mLongSize;
                     }
                     return true;
                 });
    SetTag(aTags.mTitle, theTexts.mTitle);
    SetTag(aTags.mCreator, theTexts.mCreator);
    SetTag(aTags.mAlbum, theTexts.mAlbum);
    SetTag(aTags.mGenre, theTexts.mGenre);
    SetTag(aTags.mDate, theTexts.mDate);
    SetTag(aTags.mComment, theTexts.mComment);
    SetTag(aTags.mTrack, theTexts.mTrack);
}

}  // namespace

const MediaFormat kMediaFormat_WAV = {"WAV",        ",wav,wave,", false,
                                      RecognizeWAV, ReadWAV,      ReadWAVTags};

}  // namespace vxmedia
