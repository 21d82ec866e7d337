#include "MediaItem.h"

namespace vxmedia {

const MediaItem* MediaItem::sWatched = NULL;

MediaItem::~MediaItem() {
    if (sWatched == this) {
        SetDebugReference(NULL);
        sWatched = NULL;
    }
}

void MediaItem::Renew(uint64_t aSize, const MediaReading& aReading) {
    mFormat = aReading.mFormat;
    mSize = aSize;
    mFacts = aReading.mFacts;
}

void MediaItem::Watch() {
    sWatched = this;
    SetDebugReference(this);
}

}  // namespace vxmedia
