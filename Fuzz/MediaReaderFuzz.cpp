// The readers of vxmedia, on any bytes: the first byte chooses the name of the file. Facts are those of a
// picture or of a sound, tags are texts, and a picture inside is read or refused.

#include <cstring>
#include <vector>

#include "readers/MediaReader.h"

namespace {

class FuzzSource : public vxmedia::MediaSource {
public:
    FuzzSource(const uint8_t* aBytes, size_t aSize) : MediaSource(aSize), mBytes(aBytes) {}

private:
    size_t Fetch(uint64_t aPos, uint8_t* aBuffer, size_t aCount) override {
        memcpy(aBuffer, mBytes + aPos, aCount);
        return aCount;
    }

    const uint8_t* mBytes;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize) {
    static const char* const kNames[] = {"a.png",  "a.jpg", "a.gif", "a.wav",
                                         "a.flac", "a.ogg", "a.mp3", "a"};
    if (aSize == 0) {
        return 0;
    }
    FuzzSource theSource(aBytes + 1, aSize - 1);
    const vxmedia::MediaReading theReading = vxmedia::ReadMedia(theSource, kNames[aBytes[0] % 8]);
    if (theReading.IsMedia() && theReading.mFacts.IsPicture() == theReading.mFacts.IsSound()) {
        __builtin_trap();
    }
    const vxmedia::MediaTags& theTags = theReading.mTags;
    for (const vxCString* theText :
         {&theTags.mTitle, &theTags.mCreator, &theTags.mAlbum, &theTags.mGenre, &theTags.mDate,
          &theTags.mComment, &theTags.mCoverArt.mMimeType}) {
        if (!theText->IsValidUTF8()) {
            __builtin_trap();
        }
    }
    std::vector<uint8_t> thePicture;
    vxmedia::ReadCoverArt(theSource, theTags.mCoverArt, 1 << 20, thePicture);
    return 0;
}
