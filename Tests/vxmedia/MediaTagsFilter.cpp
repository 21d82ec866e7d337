// Prints what the readers find in a file, one "name=value" on a line, and writes its picture.
//
// usage: MediaTagsFilter FILE [PICTURE]

#include <cstdio>
#include <vector>

#include "FileSource.h"
#include "readers/MediaReader.h"

namespace {

uint64_t SizeOfFile(const char* aPath) {
    FILE* theFile = fopen(aPath, "rb");
    if (theFile == nullptr) {
        return 0;
    }
    fseek(theFile, 0, SEEK_END);
    const long theSize = ftell(theFile);
    fclose(theFile);
    return theSize < 0 ? 0 : static_cast<uint64_t>(theSize);
}

void Print(const char* aName, const vxCString& aText) {
    if (!aText.IsEmpty()) {
        printf("%s=%s\n", aName, aText.c_str());
    }
}

void Print(const char* aName, unsigned aNumber) {
    if (aNumber != 0) {
        printf("%s=%u\n", aName, aNumber);
    }
}

bool WritePicture(vxmedia::MediaSource& aSource, const vxmedia::CoverArt& aCoverArt,
                  const char* aPath) {
    std::vector<uint8_t> thePicture;
    if (!ReadCoverArt(aSource, aCoverArt, 16 << 20, thePicture)) {
        return false;
    }
    FILE* theFile = fopen(aPath, "wb");
    if (theFile == nullptr) {
        return false;
    }
    const size_t theCount = fwrite(thePicture.data(), 1, thePicture.size(), theFile);
    return fclose(theFile) == 0 && theCount == thePicture.size();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        return 2;
    }
    vxmedia::FileSource theSource(argv[1], SizeOfFile(argv[1]));
    const vxmedia::MediaReading theReading = vxmedia::ReadMedia(theSource, argv[1]);
    if (!theReading.IsMedia()) {
        fprintf(stderr, "%s: %s\n", argv[1],
                theReading.mReason == nullptr ? "no media" : theReading.mReason);
        return 1;
    }
    const vxmedia::MediaTags& theTags = theReading.mTags;
    Print("title", theTags.mTitle);
    Print("artist", theTags.mCreator);
    Print("album", theTags.mAlbum);
    Print("genre", theTags.mGenre);
    Print("date", theTags.mDate);
    Print("comment", theTags.mComment);
    Print("track", theTags.mTrack);
    Print("disc", theTags.mDisc);
    Print("picture", theTags.mCoverArt.mMimeType);
    if (argc > 2 && theTags.mCoverArt.IsThere() &&
        !WritePicture(theSource, theTags.mCoverArt, argv[2])) {
        fprintf(stderr, "%s: the picture cannot be read\n", argv[1]);
        return 1;
    }
    return 0;
}
