#pragma once

// Media items as a scan makes them.

#include "MediaItem.h"
#include "vx/Ref.h"

namespace vxmedia {

inline FileStatus FileOf(uint64_t aSize, int64_t aModified) {
    FileStatus theStatus;
    theStatus.mKind = FileKind::Regular;
    theStatus.mSize = aSize;
    theStatus.mModified = aModified;
    return theStatus;
}

inline MediaReading PictureOf(const MediaFormat& aFormat, uint32_t aWidth, uint32_t aHeight) {
    MediaReading theReading;
    theReading.mFormat = &aFormat;
    theReading.mFacts.mWidth = aWidth;
    theReading.mFacts.mHeight = aHeight;
    theReading.mFacts.mBits = 24;
    theReading.mFacts.mDetail = "baseline";
    return theReading;
}

/// A sound of 217 seconds and a half.
inline MediaReading SoundOf(const MediaFormat& aFormat, uint32_t aRate) {
    MediaReading theReading;
    theReading.mFormat = &aFormat;
    theReading.mFacts.mChannels = 2;
    theReading.mFacts.mRate = aRate;
    theReading.mFacts.mBits = 16;
    theReading.mFacts.mBitRate = 128000;
    theReading.mFacts.mFrames = uint64_t(aRate) * 435 / 2;
    theReading.mFacts.mfDurationKnown = true;
    return theReading;
}

inline MediaReading TaggedSound() {
    MediaReading theReading = SoundOf(kMediaFormat_MP3, 44100);
    MediaTags& theTags = theReading.mTags;
    theTags.mTitle = "Blue";
    theTags.mCreator = "Somebody";
    theTags.mAlbum = "Colors";
    theTags.mGenre = "Jazz";
    theTags.mDate = "2015-06-30";
    theTags.mComment = "Take 2";
    theTags.mTrack = 7;
    theTags.mDisc = 2;
    theTags.mCoverArt.mMimeType = "image/png";
    theTags.mCoverArt.mBytes.Add(2048, 5000);
    theTags.mCoverArt.mEncoding = CoverArt::Unsynchronisation;
    theTags.mCoverArt.mEncodedOffset = 42;
    theTags.mCoverArt.mfIsFront = true;
    return theReading;
}

inline vxRef<MediaItem> ItemOf(uint32_t anID, const char* aPath, const MediaReading& aReading) {
    const vxRef<MediaItem> theItem = new MediaItem(anID, aPath);
    theItem->Renew(FileOf(1000, 1435687200000000001), aReading);
    return theItem;
}

}  // namespace vxmedia
