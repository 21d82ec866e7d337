#include "cache/MediaDetails.h"

#include <cstring>
#include <vector>

#include "FileSource.h"
#include "cache/EmbeddedCover.h"
#include "readers/MediaReader.h"

namespace vxmedia {

namespace {

// A picture that has been read from a media file.
class PictureSource : public MediaSource {
public:
    explicit PictureSource(const std::vector<uint8_t>& aBytes)
        : MediaSource(aBytes.size()), mBytes(aBytes) {}

private:
    size_t Fetch(uint64_t aPos, uint8_t* aBuffer, size_t aCount) override {
        memcpy(aBuffer, mBytes.data() + aPos, aCount);
        return aCount;
    }

    const std::vector<uint8_t>& mBytes;
};

// "JPEG 300x300, 24310 bytes"; of a picture that cannot be read, what the media file calls it.
vxCString CoverText(const CoverArt& aCoverArt, const std::vector<uint8_t>& aPicture) {
    PictureSource theSource(aPicture);
    const MediaReading theReading = ReadMedia(theSource, "");
    const bool theIsPicture = theReading.IsMedia() && theReading.mFacts.IsPicture();
    return vxCString::Format(
        "%s, %lu bytes",
        theIsPicture ? vxCString::Format("%s %ux%u", theReading.mFormat->mName,
                                         theReading.mFacts.mWidth, theReading.mFacts.mHeight)
                           .c_str()
                     : aCoverArt.mMimeType.c_str(),
        static_cast<unsigned long>(aPicture.size()));
}

}  // namespace

MediaDetails ReadMediaDetails(const char* aPath) {
    MediaDetails theDetails;
    theDetails.mStatus = GetFileStatus(aPath, true);
    if (theDetails.mStatus.mKind != FileKind::Regular) {
        theDetails.mError = FileError(aPath, "has gone");
        return theDetails;
    }
    FileSource theSource(aPath, theDetails.mStatus.mSize);
    const CoverArt theCoverArt = ReadMedia(theSource, aPath).mTags.mCoverArt;
    std::vector<uint8_t> thePicture;
    if (theSource.HasFailed()) {
        theDetails.mError = FileError(aPath, "cannot be read");
    } else if (!theCoverArt.IsThere()) {
        theDetails.mCover = "-";
    } else if (ReadCoverArt(theSource, theCoverArt, kCover_MaxSize, thePicture)) {
        theDetails.mCover = CoverText(theCoverArt, thePicture);
    } else {
        theDetails.mCover = theCoverArt.mMimeType + ", cannot be read";
    }
    return theDetails;
}

}  // namespace vxmedia
