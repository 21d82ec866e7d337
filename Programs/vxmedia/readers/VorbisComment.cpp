// Vorbis comments: a row of texts "KEY=value" with lengths in front, and the PICTURE block of FLAC,
// which stands alone in FLAC and in base64 in a comment elsewhere.

#include <libteskTools/Base64.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "MediaTags.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr size_t kVorbis_MaxKey = 32;  // longer than every key that is looked for
constexpr uint32_t kPicture_MaxMime = 128;
constexpr uint32_t kPicture_FrontCover = 3;
constexpr char kVorbis_PictureKey[] = "METADATA_BLOCK_PICTURE";

// Reads decoded bytes of a picture block; false where there are fewer.
using BlockReader = std::function<bool(uint64_t aPos, uint8_t* aBuffer, size_t aCount)>;

struct Picture {
    uint32_t mType;
    vxCString mMimeType;
    uint64_t mPos;   // of its data, in the block
    uint64_t mSize;  // bytes
};

bool ReadNumber(const BlockReader& aReader, uint64_t& aPos, uint32_t& aNumber) {
    uint8_t theBytes[4];
    if (!aReader(aPos, theBytes, sizeof(theBytes))) {
        return false;
    }
    aNumber = vxBitString::BigEndianTouint32(theBytes);
    aPos += sizeof(theBytes);
    return true;
}

// Type, length and MIME type, length and description, four numbers, length and data.
bool ReadPicture(const BlockReader& aReader, Picture& aPicture) {
    uint64_t thePos = 0;
    uint32_t theLength;
    uint8_t theMime[kPicture_MaxMime];
    if (!ReadNumber(aReader, thePos, aPicture.mType) || !ReadNumber(aReader, thePos, theLength) ||
        theLength > sizeof(theMime) || !aReader(thePos, theMime, theLength)) {
        return false;
    }
    aPicture.mMimeType = TextOfUTF8(theMime, theLength);
    thePos += theLength;
    if (!ReadNumber(aReader, thePos, theLength)) {
        return false;
    }
    thePos += uint64_t{theLength} + 16;
    if (!ReadNumber(aReader, thePos, theLength)) {
        return false;
    }
    aPicture.mPos = thePos;
    aPicture.mSize = theLength;
    // A picture may also be a link to one, which is no use.
    return theLength != 0 && !aPicture.mMimeType.IsEmpty() && aPicture.mMimeType != "-->";
}

// Reads from base64 without decoding all of it. Three bytes stand in each group of four characters.
bool ReadBase64(MediaSource& aSource, const MediaBytes& aText, uint64_t aPos, uint8_t* aBuffer,
                size_t aCount) {
    while (aCount > 0) {
        uint8_t theText[128];
        uint8_t theBytes[sizeof(theText)];
        const uint64_t theStart = aPos / 3 * 4;
        const size_t theSkip = static_cast<size_t>(aPos % 3);
        const uint64_t theRest = theStart < aText.Size() ? aText.Size() - theStart : 0;
        const size_t theSize = static_cast<size_t>(std::min<uint64_t>(sizeof(theText), theRest));
        size_t theDecoded;
        if (!aText.ReadExactly(aSource, theStart, theText, theSize) ||
            !vxBase64_DecodeSized(reinterpret_cast<const char*>(theText), theSize, theBytes,
                                  &theDecoded) ||
            theDecoded <= theSkip) {
            return false;
        }
        const size_t theCount = std::min(aCount, theDecoded - theSkip);
        memcpy(aBuffer, theBytes + theSkip, theCount);
        aBuffer += theCount;
        aPos += theCount;
        aCount -= theCount;
    }
    return true;
}

void OfferEncodedPicture(MediaSource& aSource, const MediaBytes& aText, MediaTags& aTags) {
    Picture thePicture;
    const BlockReader theReader = [&](uint64_t aPos, uint8_t* aBuffer, size_t aCount) {
        return ReadBase64(aSource, aText, aPos, aBuffer, aCount);
    };
    if (!ReadPicture(theReader, thePicture) ||
        thePicture.mPos + thePicture.mSize > aText.Size() / 4 * 3) {
        return;
    }
    CoverArt theArt;
    theArt.mMimeType = thePicture.mMimeType;
    theArt.mBytes = aText;
    theArt.mEncoding = CoverArt::Base64;
    theArt.mEncodedOffset = thePicture.mPos;
    theArt.mfIsFront = thePicture.mType == kPicture_FrontCover;
    aTags.Offer(theArt);
}

// Several values of one key stand side by side, up to the length of a long text.
void AddValue(vxCString& aField, const vxCString& aValue) {
    if (aField.length() >= kTag_MaxText) {
        return;
    }
    if (!aField.IsEmpty() && !aValue.IsEmpty()) {
        aField += ';';
    }
    aField += aValue;
}

struct Comments {
    vxCString mTitle, mCreator, mAlbum, mGenre, mDate, mYear, mTrack, mDisc;
};

constexpr struct {
    const char* mKey;
    vxCString Comments::*mField;
} kVorbis_Keys[] = {
    {"TITLE", &Comments::mTitle},       {"ARTIST", &Comments::mCreator},
    {"ALBUM", &Comments::mAlbum},       {"GENRE", &Comments::mGenre},
    {"DATE", &Comments::mDate},         {"YEAR", &Comments::mYear},
    {"TRACKNUMBER", &Comments::mTrack}, {"DISCNUMBER", &Comments::mDisc},
};

// Reads the comment in `aBytes`.
void ReadComment(MediaSource& aSource, const MediaBytes& aBytes, Comments& aComments,
                 MediaTags& aTags) {
    uint8_t theText[kVorbis_MaxKey + kTag_MaxText];
    const size_t theKeySize =
        static_cast<size_t>(std::min<uint64_t>(aBytes.Size(), kVorbis_MaxKey));
    if (!aBytes.ReadExactly(aSource, 0, theText, theKeySize)) {
        return;
    }
    const uint8_t* theSign = std::find(theText, theText + theKeySize, '=');
    const size_t theValuePos = static_cast<size_t>(theSign - theText) + 1;
    if (theValuePos > theKeySize) {
        return;
    }
    const vxCString theKey(reinterpret_cast<const char*>(theText), theValuePos - 1);
    if (theKey.CompareNoCase(kVorbis_PictureKey) == 0) {
        OfferEncodedPicture(aSource, aBytes.Part(theValuePos, aBytes.Size()), aTags);
        return;
    }
    for (const auto& theRow : kVorbis_Keys) {
        if (theKey.CompareNoCase(theRow.mKey) == 0) {
            const size_t theSize =
                static_cast<size_t>(std::min<uint64_t>(aBytes.Size() - theValuePos, kTag_MaxText));
            if (aBytes.ReadExactly(aSource, theValuePos, theText, theSize)) {
                AddValue(aComments.*theRow.mField, TextOfUTF8(theText, theSize));
            }
        }
    }
}

bool ReadLength(MediaSource& aSource, const MediaBytes& aBytes, uint64_t& aPos, uint32_t& aLength) {
    uint8_t theBytes[4];
    if (!aBytes.ReadExactly(aSource, aPos, theBytes, sizeof(theBytes))) {
        return false;
    }
    aLength = vxBitString::LittleEndianTouint32(theBytes);
    aPos += sizeof(theBytes);
    return aLength <= aBytes.Size() - aPos;
}

}  // namespace

void ReadVorbisComment(MediaSource& aSource, const MediaBytes& aBytes, MediaTags& aTags) {
    uint64_t thePos = 0;
    uint32_t theLength;
    uint8_t theCountBytes[4];
    if (!ReadLength(aSource, aBytes, thePos, theLength) ||  // of the encoder's name
        !aBytes.ReadExactly(aSource, thePos + theLength, theCountBytes, sizeof(theCountBytes))) {
        return;
    }
    thePos += theLength + sizeof(theCountBytes);
    Comments theComments;
    for (uint32_t i = vxBitString::LittleEndianTouint32(theCountBytes); i > 0; --i) {
        if (!ReadLength(aSource, aBytes, thePos, theLength)) {
            break;
        }
        ReadComment(aSource, aBytes.Part(thePos, theLength), theComments, aTags);
        thePos += theLength;
    }
    SetTag(aTags.mTitle, theComments.mTitle);
    SetTag(aTags.mCreator, theComments.mCreator);
    SetTag(aTags.mAlbum, theComments.mAlbum);
    SetTag(aTags.mGenre, theComments.mGenre);
    SetTag(aTags.mDate, theComments.mDate);
    SetTag(aTags.mDate, theComments.mYear);
    SetTag(aTags.mTrack, theComments.mTrack);
    SetTag(aTags.mDisc, theComments.mDisc);
}

void ReadFLACPicture(MediaSource& aSource, const MediaBytes& aBytes, MediaTags& aTags) {
    Picture thePicture;
    const BlockReader theReader = [&](uint64_t aPos, uint8_t* aBuffer, size_t aCount) {
        return aBytes.ReadExactly(aSource, aPos, aBuffer, aCount);
    };
    if (!ReadPicture(theReader, thePicture) || thePicture.mPos + thePicture.mSize > aBytes.Size()) {
        return;
    }
    CoverArt theArt;
    theArt.mMimeType = thePicture.mMimeType;
    theArt.mBytes = aBytes.Part(thePicture.mPos, thePicture.mSize);
    theArt.mfIsFront = thePicture.mType == kPicture_FrontCover;
    aTags.Offer(theArt);
}

}  // namespace vxmedia
