#include "MediaItem.h"

#include "library/MediaInfoBuilder.h"

namespace vxmedia {

namespace {

void Share(vxCString& aText, const vxCString& anOther) {
    if (aText == anOther) {
        aText = anOther;
    }
}

}  // namespace

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
    mFormat = aReading.mFormat;
    mFacts = aReading.mFacts;
    mTags = aReading.mTags.IsEmpty() ? nullptr : std::make_unique<MediaTags>(aReading.mTags);
}

// Titles are left out: hardly ever two files in a row have the same one.
void MediaItem::ShareTexts(const MediaItem& anOther) {
    Share(mFacts.mDetail, anOther.mFacts.mDetail);
    if (mTags == nullptr || anOther.mTags == nullptr) {
        return;
    }
    const MediaTags& theOther = *anOther.mTags;
    Share(mTags->mCreator, theOther.mCreator);
    Share(mTags->mAlbum, theOther.mAlbum);
    Share(mTags->mGenre, theOther.mGenre);
    Share(mTags->mDate, theOther.mDate);
    Share(mTags->mComment, theOther.mComment);
    Share(mTags->mCoverArt.mMimeType, theOther.mCoverArt.mMimeType);
}

void MediaItem::SetEdits(const EditMap& anEdits) {
    mEdits = anEdits.empty() ? nullptr : std::make_unique<const EditMap>(anEdits);
}

void MediaItem::Watch() {
    sWatched = this;
    SetDebugReference(this);
}

const MediaTags& MediaItem::GetTags() const {
    static const MediaTags sNone;
    return mTags == nullptr ? sNone : *mTags;
}

const MediaItem::EditMap& MediaItem::GetEdits() const {
    static const EditMap sNone;
    return mEdits == nullptr ? sNone : *mEdits;
}

std::unique_ptr<vxMediaInfo> MediaItem::MakeInfo() const {
    auto theInfo = std::make_unique<vxMediaInfo>();
    FillMediaInfo(*this, *theInfo);
    for (const auto& theEdit : GetEdits()) {
        EditMediaInfo(*theInfo, theEdit.first, theEdit.second);
    }
    return theInfo;
}

}  // namespace vxmedia
