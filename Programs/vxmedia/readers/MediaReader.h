#pragma once

#include <cstdint>

#include "MediaSource.h"
#include "MediaTags.h"
#include "vx/CString.h"

namespace vxmedia {

/// What the header of a media file tells. A fact that the format does not have is 0.
struct MediaFacts {
    uint32_t mWidth = 0;           // pixels
    uint32_t mHeight = 0;          // pixels
    uint32_t mChannels = 0;        // of sound
    uint32_t mRate = 0;            // samples per second and channel
    uint32_t mBits = 0;            // of a sample of sound, or of a pixel
    uint32_t mBitRate = 0;         // of sound, bits per second
    uint64_t mFrames = 0;          // samples of one channel
    bool mfDurationKnown = false;  // whether mFrames says anything
    vxCString mDetail;             // in words: coding, sample size, peculiarities

    bool IsPicture() const { return mWidth != 0; }
    bool IsSound() const { return mChannels != 0; }

    /// Returns the playing time in milliseconds, rounded; 0 when it is not known. What is too
    /// long for the number is the highest one.
    uint64_t DurationMS() const;
};

/// One row of the table of formats.
struct MediaFormat {
    const char* mName;
    const char* mExtensions;  // ",a,b,", in lower case
    bool mfMayFollowTag;      // whether an ID3v2 tag may stand in front

    /// Returns whether the bytes from `aStart` on are of this format.
    bool (*mRecognize)(MediaSource& aSource, uint64_t aStart);

    /// Fills `aFacts` from the header at `aStart`. Returns null, or the reason of a refusal.
    const char* (*mRead)(MediaSource& aSource, uint64_t aStart, MediaFacts& aFacts);

    /// Fills `aTags` as far as the file has tags that can be read; null where the format has none.
    void (*mReadTags)(MediaSource& aSource, uint64_t aStart, MediaTags& aTags);
};

extern const MediaFormat kMediaFormat_PNG;
extern const MediaFormat kMediaFormat_JPEG;
extern const MediaFormat kMediaFormat_GIF;
extern const MediaFormat kMediaFormat_WAV;
extern const MediaFormat kMediaFormat_FLAC;
extern const MediaFormat kMediaFormat_Ogg;
extern const MediaFormat kMediaFormat_MP3;

/// The formats in the order in which tables show them; ends with null.
extern const MediaFormat* const kMediaFormats[];

/// The outcome of looking at one file.
struct MediaReading {
    const MediaFormat* mFormat = nullptr;  // null: not a media file
    const char* mReason = nullptr;         // why a media file was refused, else null
    MediaFacts mFacts;
    MediaTags mTags;  // empty unless it is media

    bool IsMedia() const { return mFormat != nullptr && mReason == nullptr; }
    bool IsRefused() const { return mFormat != nullptr && mReason != nullptr; }
};

/// Finds out the format of a file from its content and reads its facts and tags.
///
/// A file whose content is of no known format counts as media only if its name ends like that of
/// one; it is then refused with the reason.
///
/// Tags are read last: where a file has used up what may be fetched, those that are left are missing.
///
/// Cost:     at most 2 MiB of reading, usually a few windows of 4 KiB.
MediaReading ReadMedia(MediaSource& aSource, const char* aFileName);

/// Returns the position behind the ID3v2 tag at `aPos`; 0 when there is none.
uint64_t PositionAfterTag(MediaSource& aSource, uint64_t aPos);

/// Returns the position behind the ID3v2 tags at the start of the file; 0 when there are none.
uint64_t PositionAfterTags(MediaSource& aSource);

/// Reads a STREAMINFO block of 34 bytes, which FLAC files and FLAC in Ogg share.
const char* ReadFLACStreamInfo(const uint8_t* aBlock, MediaFacts& aFacts);

}  // namespace vxmedia
