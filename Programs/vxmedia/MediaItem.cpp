#include "MediaItem.h"

#include "library/MediaInfoBuilder.h"

namespace vxmedia {

const MediaItem* MediaItem::sWatched = NULL;

MediaItem::~MediaItem() {
    if (sWatched == this) {
        SetDebugReference(NULL);
        sWatched = NULL;
    }
}

void MediaItem::Renew(const FileStatus& aStatus, const MediaReading& aReading) {
    mSize = aStatus.mSize;
    mModified = aStatus.mModified;
    mReading = aReading;
    MakeInfo();
}

void MediaItem::SetEdits(const EditMap& anEdits) {
    mEdits = anEdits;
    MakeInfo();
}

void MediaItem::Watch() {
    sWatched = this;
    SetDebugReference(this);
}

void MediaItem::MakeInfo() {
    mInfo = std::make_unique<vxMediaInfo>();
    FillMediaInfo(*this, *mInfo);
    for (const auto& theEdit : mEdits) {
        EditMediaInfo(*mInfo, theEdit.first, theEdit.second);
    }
}

}  // namespace vxmedia
