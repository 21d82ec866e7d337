// MP3: a row of frames, each with its own header. How many there are stands in an index frame at the
// start, which most encoders write ("Xing", "Info" or "VBRI"); else the frames are counted.
//
// Counting stops after 1 MiB, and the rest is taken to be like the part that was counted.

#include <algorithm>
#include <cstring>

#include "MediaReader.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr uint64_t kMP3_SearchLimit = 65536;      // bytes before the first frame, or between two
constexpr uint64_t kMP3_WalkLimit = 1024 * 1024;  // bytes of frames that are counted
constexpr uint32_t kMP3_SmallestFrame = 24;       // bytes

// Kilobits per second by index; MPEG-1, then MPEG-2 and 2.5.
constexpr uint16_t kMP3_BitRates[2][15] = {
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
};
constexpr uint16_t kMP3_Rates[3] = {44100, 48000,
                                    32000};  // of MPEG-1; half and a quarter for others

// The version field: 0 is MPEG-2.5, 1 is reserved, 2 is MPEG-2, 3 is MPEG-1.
constexpr const char* kMP3_Versions[4] = {"MPEG-2.5", nullptr, "MPEG-2", "MPEG-1"};

struct MP3Frame {
    uint32_t mVersion = 0;
    uint32_t mBitRate = 0;  // kilobits per second
    uint32_t mRate = 0;     // samples per second
    uint32_t mChannels = 0;
    uint32_t mSamples = 0;  // of one channel
    uint32_t mSize = 0;     // bytes with the header

    bool IsMPEG1() const { return mVersion == 3; }
    bool IsLike(const MP3Frame& aFrame) const {
        return mVersion == aFrame.mVersion && mRate == aFrame.mRate;
    }
};

// What the index frame or the walk found out.
struct MP3Length {
    uint64_t mFrames = 0;     // MPEG frames
    uint64_t mBytes = 0;      // of all frames; 0: not said
    bool mfVariable = false;  // the bit rate changes
    bool mfEstimated = false;
};

bool ParseFrame(const uint8_t* aHeader, MP3Frame& aFrame) {
    vxBitString theBits(aHeader, 4);
    const uint32_t theSync = theBits.Get(11);
    aFrame.mVersion = theBits.Get(2);
    const uint32_t theLayer = theBits.Get(2);
    theBits.Skip(1);  // whether a checksum follows
    const uint32_t theBitRate = theBits.Get(4);
    const uint32_t theRate = theBits.Get(2);
    const uint32_t thePadding = theBits.Get(1);
    theBits.Skip(1);
    const uint32_t theMode = theBits.Get(2);
    if (theSync != 0x7FF || aFrame.mVersion == 1 || theLayer != 1 || theBitRate == 0 ||
        theBitRate == 15 || theRate == 3) {
        return false;
    }
    const uint32_t theDivisor = aFrame.IsMPEG1() ? 1 : (aFrame.mVersion == 2 ? 2 : 4);
    aFrame.mBitRate = kMP3_BitRates[aFrame.IsMPEG1() ? 0 : 1][theBitRate];
    aFrame.mRate = kMP3_Rates[theRate] / theDivisor;
    aFrame.mChannels = theMode == 3 ? 1 : 2;
    aFrame.mSamples = aFrame.IsMPEG1() ? 1152 : 576;
    aFrame.mSize = aFrame.mSamples / 8 * aFrame.mBitRate * 1000 / aFrame.mRate + thePadding;
    return true;
}

bool ReadFrame(MediaSource& aSource, uint64_t aPos, MP3Frame& aFrame) {
    uint8_t theHeader[4];
    return aSource.ReadExactly(aPos, theHeader, sizeof(theHeader)) && ParseFrame(theHeader, aFrame);
}

// A header alone is four bytes that turn up anywhere: only the frame behind it makes it certain.
bool StartsFrames(MediaSource& aSource, uint64_t aPos, MP3Frame& aFrame) {
    MP3Frame theNext;
    if (!ReadFrame(aSource, aPos, aFrame)) {
        return false;
    }
    const uint64_t theEnd = aPos + aFrame.mSize;
    return theEnd == aSource.Size() ||
           (ReadFrame(aSource, theEnd, theNext) && theNext.IsLike(aFrame));
}

// Moves `aPos` to the next frame, at most kMP3_SearchLimit bytes on.
bool FindFrame(MediaSource& aSource, uint64_t& aPos, MP3Frame& aFrame) {
    uint8_t thePiece[256];
    const uint64_t theLimit = aPos + kMP3_SearchLimit;
    while (aPos < theLimit) {
        const size_t theCount = aSource.Read(aPos, thePiece, sizeof(thePiece));
        if (theCount == 0) {
            return false;
        }
        for (size_t i = 0; i < theCount; ++i) {
            if (thePiece[i] == 0xFF && StartsFrames(aSource, aPos + i, aFrame)) {
                aPos += i;
                return true;
            }
        }
        aPos += theCount;
    }
    return false;
}

// Reads the numbers of frames and bytes from the index that may fill the first frame.
bool ReadIndex(MediaSource& aSource, uint64_t aPos, const MP3Frame& aFrame, MP3Length& aLength) {
    uint8_t theBytes[18];
    const uint64_t theSideSize =
        aFrame.IsMPEG1() ? (aFrame.mChannels == 1 ? 17 : 32) : (aFrame.mChannels == 1 ? 9 : 17);
    if (aSource.ReadExactly(aPos + 4 + theSideSize, theBytes, 16)) {
        const bool theIsVariable = memcmp(theBytes, "Xing", 4) == 0;
        const uint32_t theFlags = vxBitString::BigEndianTouint32(theBytes + 4);
        const bool theHasFrames = (theFlags & 1) != 0;
        const bool theHasBytes = (theFlags & 2) != 0;
        if ((theIsVariable || memcmp(theBytes, "Info", 4) == 0) && theHasFrames) {
            aLength.mFrames = vxBitString::BigEndianTouint32(theBytes + 8);
            aLength.mBytes = theHasBytes ? vxBitString::BigEndianTouint32(theBytes + 12) : 0;
            aLength.mfVariable = theIsVariable;
            return true;
        }
    }
    if (aSource.ReadExactly(aPos + 4 + 32, theBytes, 18) && memcmp(theBytes, "VBRI", 4) == 0) {
        aLength.mBytes = vxBitString::BigEndianTouint32(theBytes + 10);
        aLength.mFrames = vxBitString::BigEndianTouint32(theBytes + 14);
        aLength.mfVariable = true;
        return true;
    }
    return false;
}

// Counts the frames from the first one on. Broken places are leapt over, tags at the end are not
// frames, and a frame that the file cuts off does not count.
MP3Length CountFrames(MediaSource& aSource, uint64_t aFirst, const MP3Frame& aFirstFrame) {
    MP3Length theLength;
    uint64_t thePos = aFirst;
    uint64_t theCounted = 0;  // bytes
    MP3Frame theFrame;
    while (thePos - aFirst < kMP3_WalkLimit) {
        const bool theIsFrame =
            ReadFrame(aSource, thePos, theFrame) && theFrame.IsLike(aFirstFrame);
        if (!theIsFrame && !FindFrame(aSource, thePos, theFrame)) {
            return theLength;
        }
        if (thePos + theFrame.mSize > aSource.Size()) {
            return theLength;
        }
        theLength.mfVariable = theLength.mfVariable || theFrame.mBitRate != aFirstFrame.mBitRate;
        theLength.mFrames += 1;
        theCounted += theFrame.mSize;
        thePos += theFrame.mSize;
    }
    const uint64_t theRest = aSource.Size() - thePos;
    theLength.mfEstimated = theRest > 0;
    theLength.mFrames += theRest / std::max<uint64_t>(theCounted / theLength.mFrames, 1);
    return theLength;
}

bool RecognizeMP3(MediaSource& aSource, uint64_t aStart) {
    MP3Frame theFrame;
    return aStart != 0 || StartsFrames(aSource, aStart, theFrame);
}

// Kilobits per second of the frame behind the index, whose own rate is whatever gives it room.
uint32_t RateBehindIndex(MediaSource& aSource, uint64_t aPos, const MP3Frame& anIndex) {
    MP3Frame theFrame;
    return ReadFrame(aSource, aPos + anIndex.mSize, theFrame) && theFrame.IsLike(anIndex)
               ? theFrame.mBitRate
               : anIndex.mBitRate;
}

// Bits per second: those of the frames, or the average of frames that differ.
uint32_t BitRateOf(uint32_t aFrameRate, const MP3Length& aLength, uint64_t aSize,
                   const MediaFacts& aFacts) {
    if (!aLength.mfVariable || aFacts.mFrames == 0) {
        return aFrameRate * 1000;
    }
    // What the index counts is without the tags at the end.
    const uint64_t theBytes =
        aLength.mBytes != 0 && aLength.mBytes < aSize ? aLength.mBytes : aSize;
    const double theSeconds = static_cast<double>(aFacts.mFrames) / aFacts.mRate;
    const double theBitRate = static_cast<double>(theBytes) * 8 / theSeconds + 0.5;
    return static_cast<uint32_t>(std::min<double>(theBitRate, UINT32_MAX));
}

vxCString DetailOf(const MP3Frame& aFrame, const MP3Length& aLength, const MediaFacts& aFacts) {
    return vxCString::Format("%s layer III, %u kbit/s%s%s", kMP3_Versions[aFrame.mVersion],
                             (aFacts.mBitRate + 500) / 1000,
                             aLength.mfVariable ? " on average" : "",
                             aLength.mfEstimated ? ", duration estimated" : "");
}

const char* ReadMP3(MediaSource& aSource, uint64_t aStart, MediaFacts& aFacts) {
    uint64_t thePos = aStart;
    MP3Frame theFrame;
    if (!FindFrame(aSource, thePos, theFrame)) {
        return "MP3: there are no frames of MPEG layer III";
    }
    // An index that promises more frames than the file could hold is a lie.
    MP3Length theLength;
    const uint64_t theSize = aSource.Size() - thePos;
    const bool theHasIndex = ReadIndex(aSource, thePos, theFrame, theLength) &&
                             theLength.mFrames != 0 &&
                             theLength.mFrames <= theSize / kMP3_SmallestFrame;
    if (!theHasIndex) {
        theLength = CountFrames(aSource, thePos, theFrame);
    }
    aFacts.mChannels = theFrame.mChannels;
    aFacts.mRate = theFrame.mRate;
    aFacts.mFrames = theLength.mFrames * theFrame.mSamples;
    aFacts.mfDurationKnown = true;
    const uint32_t theFrameRate =
        theHasIndex ? RateBehindIndex(aSource, thePos, theFrame) : theFrame.mBitRate;
    aFacts.mBitRate = BitRateOf(theFrameRate, theLength, theSize, aFacts);
    aFacts.mDetail = DetailOf(theFrame, theLength, aFacts);
    return nullptr;
}

void ReadMP3Tags(MediaSource& aSource, uint64_t, MediaTags& aTags) {
    ReadID3Tags(aSource, aTags);
}

}  // namespace

const MediaFormat kMediaFormat_MP3 = {"MP3", ",mp3,", true, RecognizeMP3, ReadMP3, ReadMP3Tags};

}  // namespace vxmedia
