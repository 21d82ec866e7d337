// The table of formats and the way from a file to its reader.
//
// Content decides, the name does not: a picture called song.mp3 is listed as the picture it is. The
// name matters only for content that nothing recognizes, to tell a broken media file from any other.

#include "MediaReader.h"

#include <cctype>
#include <cstring>
#include <string>

#include "vx/BitString.h"

namespace vxmedia {

const MediaFormat* const kMediaFormats[] = {
    &kMediaFormat_PNG,  &kMediaFormat_JPEG, &kMediaFormat_GIF, &kMediaFormat_WAV,
    &kMediaFormat_FLAC, &kMediaFormat_Ogg,  &kMediaFormat_MP3, nullptr,
};

namespace {

const MediaFormat* RecognizeContent(MediaSource& aSource, uint64_t aStart) {
    for (const MediaFormat* const* theRow = kMediaFormats; *theRow != nullptr; ++theRow) {
        if ((aStart == 0 || (*theRow)->mfMayFollowTag) && (*theRow)->mRecognize(aSource, aStart)) {
            return *theRow;
        }
    }
    return nullptr;
}

const MediaFormat* RecognizeName(const char* aFileName) {
    const char* theDot = strrchr(aFileName, '.');
    if (theDot == nullptr) {
        return nullptr;
    }
    std::string theEnd = ",";
    for (const char* p = theDot + 1; *p != 0; ++p) {
        theEnd += static_cast<char>(tolower(static_cast<unsigned char>(*p)));
    }
    theEnd += ',';
    for (const MediaFormat* const* theRow = kMediaFormats; *theRow != nullptr; ++theRow) {
        if (strstr((*theRow)->mExtensions, theEnd.c_str()) != nullptr) {
            return *theRow;
        }
    }
    return nullptr;
}

const char* RefusalOf(const MediaSource& aSource, const char* aReason) {
    if (aReason != nullptr && aSource.HasFailed()) {
        return "the file cannot be read";
    }
    if (aReason != nullptr && aSource.IsExhausted()) {
        return "the header lies beyond the first 2 MiB that are read";
    }
    return aReason;
}

}  // namespace

uint64_t MediaFacts::DurationMS() const {
    if (!mfDurationKnown || mRate == 0) {
        return 0;
    }
    const uint64_t theSeconds = mFrames / mRate;
    if (theSeconds >= UINT64_MAX / 1000) {
        return UINT64_MAX;
    }
    return theSeconds * 1000 + (mFrames % mRate * 1000 + mRate / 2) / mRate;
}

uint64_t PositionAfterTag(MediaSource& aSource, uint64_t aPos) {
    uint8_t theHeader[10];
    if (!aSource.ReadExactly(aPos, theHeader, sizeof(theHeader)) ||
        memcmp(theHeader, "ID3", 3) != 0) {
        return 0;
    }
    // Four bytes of seven bits each; the size leaves out this header and a footer like it.
    uint32_t theSize = 0;
    for (int i = 6; i < 10; ++i) {
        if ((theHeader[i] & 0x80) != 0) {
            return 0;
        }
        theSize = (theSize << 7) | theHeader[i];
    }
    const bool theHasFooter = (theHeader[5] & 0x10) != 0;
    return aPos + sizeof(theHeader) * (theHasFooter ? 2 : 1) + theSize;
}

uint64_t PositionAfterTags(MediaSource& aSource) {
    uint64_t thePos = 0;
    while (const uint64_t theEnd = PositionAfterTag(aSource, thePos)) {
        thePos = theEnd;
    }
    return thePos;
}

MediaReading ReadMedia(MediaSource& aSource, const char* aFileName) {
    MediaReading theReading;
    const uint64_t theStart = PositionAfterTags(aSource);
    theReading.mFormat = RecognizeContent(aSource, theStart);
    if (theReading.mFormat == nullptr) {
        theReading.mFormat = RecognizeName(aFileName);
    }
    if (theReading.mFormat == nullptr) {
        return theReading;
    }
    if (aSource.Size() == 0) {
        theReading.mReason = "the file is empty";
        return theReading;
    }
    const char* theReason = theReading.mFormat->mRead(aSource, theStart, theReading.mFacts);
    theReading.mReason = RefusalOf(aSource, theReason);
    if (theReading.IsMedia() && theReading.mFormat->mReadTags != nullptr) {
        theReading.mFormat->mReadTags(aSource, theStart, theReading.mTags);
    }
    return theReading;
}

}  // namespace vxmedia
