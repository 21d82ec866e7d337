// What a reading says goes under the keys of media infos.

#include "library/MediaInfoBuilder.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "MediaItem.h"

namespace vxmedia {

namespace {

constexpr int64_t kNanoseconds = 1000000000;  // of a second

struct FormatType {
    const char* mFormat;
    const char* mMimeType;
};

// The last two come from plug-ins that are built with the program.
constexpr FormatType kFormatTypes[] = {
    {"PNG", "image/png"},   {"JPEG", "image/jpeg"}, {"GIF", "image/gif"},  {"WAV", "audio/x-wav"},
    {"FLAC", "audio/flac"}, {"Ogg", "audio/ogg"},   {"MP3", "audio/mpeg"}, {"QOI", "image/qoi"},
    {"BMP", "image/bmp"},   {"AU", "audio/basic"},
};

vxCString MimeTypeOf(const MediaItem& anItem) {
    const char* theFormat = anItem.GetFormat().mName;
    for (const FormatType& theType : kFormatTypes) {
        if (strcmp(theType.mFormat, theFormat) == 0) {
            return theType.mMimeType;
        }
    }
    vxCString theResult = anItem.GetFacts().IsPicture() ? "image/x-" : "audio/x-";
    for (const char* p = theFormat; *p != '\0'; ++p) {
        const int theByte = tolower(static_cast<unsigned char>(*p));
        theResult += isalnum(theByte) ? static_cast<char>(theByte) : '-';
    }
    return theResult;
}

// The largest picture of a profile; the first row that fits counts.
struct PictureProfile {
    const char* mFormat;
    const char* mProfile;
    uint32_t mMaxWidth;
    uint32_t mMaxHeight;
};

constexpr PictureProfile kPictureProfiles[] = {
    {"JPEG", "JPEG_SM", 640, 480},    {"JPEG", "JPEG_MED", 1024, 768},
    {"JPEG", "JPEG_LRG", 4096, 4096}, {"PNG", "PNG_LRG", 4096, 4096},
    {"GIF", "GIF_LRG", 1600, 1200},
};

// The sampling rates of a profile of MPEG layer III, whose bit rates are all that there are.
struct SoundProfile {
    const char* mProfile;
    uint32_t mRates[3];
};

constexpr SoundProfile kMP3Profiles[] = {
    {"MP3", {32000, 44100, 48000}},
    {"MP3X", {16000, 22050, 24000}},
};

const char* MP3ProfileOf(uint32_t aRate) {
    for (const SoundProfile& theProfile : kMP3Profiles) {
        for (const uint32_t theRate : theProfile.mRates) {
            if (theRate == aRate) {
                return theProfile.mProfile;
            }
        }
    }
    return NULL;
}

// Returns a DLNA profile, or null.
const char* ProfileOf(const MediaItem& anItem) {
    const MediaFacts& theFacts = anItem.GetFacts();
    if (&anItem.GetFormat() == &kMediaFormat_MP3) {
        return MP3ProfileOf(theFacts.mRate);
    }
    for (const PictureProfile& theProfile : kPictureProfiles) {
        if (strcmp(theProfile.mFormat, anItem.GetFormat().mName) == 0 &&
            theFacts.mWidth <= theProfile.mMaxWidth && theFacts.mHeight <= theProfile.mMaxHeight) {
            return theProfile.mProfile;
        }
    }
    return NULL;
}

vxCString ExtensionOf(const vxCString& aPath) {
    const char* theSlash = strrchr(aPath, '/');
    const char* theName = theSlash == NULL ? aPath.c_str() : theSlash + 1;
    const char* theDot = strrchr(theName, '.');
    // A dot in front hides a file and ends no name.
    return theDot == NULL || theDot == theName ? vxCString() : vxCString(theDot + 1);
}

// A path without a directory is no file path of the library's, which then finds no title in it.
vxCString WithDirectory(const vxCString& aPath) {
    return aPath.Contains("/") ? aPath : vxCString("./") + aPath;
}

void SetText(vxMediaInfo& anInfo, const char* aKey, const vxCString& aText) {
    if (!aText.IsEmpty()) {
        anInfo.Set(aKey, aText, true);
    }
}

void SetNumber(vxMediaInfo& anInfo, const char* aKey, uint32_t aNumber) {
    if (aNumber != 0) {
        anInfo.Set(aKey, aNumber, true);
    }
}

void FillFile(const MediaItem& anItem, vxMediaInfo& anInfo) {
    anInfo.SetFilePath(WithDirectory(anItem.GetPath()));
    anInfo.SetLastModificationTime(
        vxDateTime(static_cast<long>(anItem.GetModified() / kNanoseconds)));
    anInfo.Set(kvxInfo_ClassName,
               anItem.GetFacts().IsPicture() ? "object.item.imageItem.photo"
                                             : "object.item.audioItem.musicTrack",
               true);
    anInfo.Set(kvxInfo_MimeType, MimeTypeOf(anItem), true);
    SetText(anInfo, kvxInfo_DLNA, ProfileOf(anItem));
    SetText(anInfo, kvxInfo_FileExtension, ExtensionOf(anItem.GetPath()));
    anInfo.Set(kvxInfo_FilePath, anItem.GetPath(), true);
    anInfo.Set(kvxInfo_FileSize, vxuint64(anItem.GetSize()), true);
}

void FillFacts(const MediaFacts& aFacts, vxMediaInfo& anInfo) {
    if (aFacts.IsPicture()) {
        anInfo.Set(kvxInfo_Width, aFacts.mWidth, true);
        anInfo.Set(kvxInfo_Height, aFacts.mHeight, true);
        SetNumber(anInfo, kvxInfo_ColorDepth, aFacts.mBits);
    }
    if (aFacts.IsSound()) {
        anInfo.Set(kvxInfo_AudioTrackCount, uint32_t{1}, true);
        anInfo.Set(kvxInfo_AudioChannelCount, aFacts.mChannels, true);
        anInfo.Set(kvxInfo_AudioSamplingRate, aFacts.mRate, true);
        SetNumber(anInfo, kvxInfo_AudioBitsPerSample, aFacts.mBits);
        SetNumber(anInfo, kvxInfo_BitRate, aFacts.mBitRate);
    }
    if (aFacts.mfDurationKnown) {
        anInfo.Set(kvxInfo_Duration, vxuint64(aFacts.DurationMS()), true);
    }
}

// A picture in several pieces of the file has no place that an info could tell.
void FillCoverArt(const CoverArt& aCoverArt, vxMediaInfo& anInfo) {
    const std::vector<MediaBytes::Piece>& thePieces = aCoverArt.mBytes.Pieces();
    if (!aCoverArt.IsThere() || thePieces.size() != 1) {
        anInfo.SetCoverArt(aCoverArt.mMimeType, 0, 0);
        return;
    }
    anInfo.SetCoverArt(aCoverArt.mMimeType, static_cast<int64_t>(thePieces[0].mPos),
                       static_cast<size_t>(thePieces[0].mSize));
    anInfo.SetCoverArtEncoding(aCoverArt.mEncoding, static_cast<size_t>(aCoverArt.mEncodedOffset));
}

void FillTags(const MediaTags& aTags, vxMediaInfo& anInfo) {
    SetText(anInfo, kvxInfo_Title, aTags.mTitle);
    SetText(anInfo, kvxInfo_Creator, aTags.mCreator);
    SetText(anInfo, kvxInfo_Album, aTags.mAlbum);
    SetText(anInfo, kvxInfo_Genre, aTags.mGenre);
    SetText(anInfo, kvxInfo_MediaReleasedDateTime, aTags.mDate);
    anInfo.SetDiscNumber(aTags.mDisc);
    anInfo.SetTrackNumber(aTags.mTrack);
    FillCoverArt(aTags.mCoverArt, anInfo);
}

}  // namespace

static_assert(int(CoverArt::Base64) == kvxCoverArtEncoding_Base64 &&
                  int(CoverArt::Unsynchronisation) == kvxCoverArtEncoding_Unsynchronisation,
              "tags and infos number the encodings alike");

void FillMediaInfo(const MediaItem& anItem, vxMediaInfo& anInfo) {
    FillFile(anItem, anInfo);
    FillFacts(anItem.GetFacts(), anInfo);
    FillTags(anItem.GetTags(), anInfo);
    anInfo.Finalize(false);
}

void EditMediaInfo(vxMediaInfo& anInfo, const vxCString& anEditName, const vxCString& aValue) {
    if (anEditName == "disc") {
        anInfo.SetDiscNumber(static_cast<uint16_t>(strtoul(aValue, NULL, 10)));
    } else if (anEditName == "track") {
        anInfo.SetTrackNumber(static_cast<uint16_t>(strtoul(aValue, NULL, 10)));
    } else if (aValue.IsEmpty()) {
        anInfo.Remove(anEditName);
    } else {
        anInfo.Set(anEditName, aValue, true);
    }
}

}  // namespace vxmedia
