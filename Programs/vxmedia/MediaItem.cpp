#include "MediaItem.h"

namespace vxmedia {

const MediaItem* MediaItem::sWatched = NULL;

MediaItem::~MediaItem() {
    if (sWatched == this) {
        SetDebugReference(NULL);
        sWatched = NULL;
    }
}

void MediaItem::Renew(const FileStatus& aStatus, const MediaReading& aReading) {
    mFormat = aReading.mFormat;
    mSize = aStatus.mSize;
    mModified = aStatus.mModified;
    mFacts = aReading.mFacts;
}

void MediaItem::Watch() {
    sWatched = this;
    SetDebugReference(this);
}

}  // namespace vxmedia
