// Any criteria about media files are read or refused with a place inside them, and every file can be
// asked about those that are right.

#include "Input.h"
#include "library/LibraryEvaluator.h"

namespace {

vxmedia::MediaReading Song(vxfuzz::Input& anInput) {
    vxmedia::MediaReading theReading;
    theReading.mFormat = &vxmedia::kMediaFormat_MP3;
    theReading.mFacts.mChannels = 2;
    theReading.mFacts.mRate = 44100;
    theReading.mFacts.mFrames = 44100u * anInput.Byte();
    theReading.mFacts.mfDurationKnown = true;
    theReading.mTags.mTitle = "All you need is love";
    theReading.mTags.mDate = anInput.Byte() % 2 == 0 ? "2015-06-30" : "1967";
    theReading.mTags.mTrack = anInput.Byte();
    return theReading;
}

vxmedia::MediaReading Photo(vxfuzz::Input& anInput) {
    vxmedia::MediaReading theReading;
    theReading.mFormat = &vxmedia::kMediaFormat_GIF;
    theReading.mFacts.mWidth = theReading.mFacts.mHeight = anInput.Byte() + 1u;
    theReading.mTags.mDate = "Summer";
    return theReading;
}

vxRef<vxmedia::MediaItem> Item(uint32_t anID, const vxmedia::MediaReading& aReading) {
    vxRef<vxmedia::MediaItem> theItem(new vxmedia::MediaItem(anID, "media/a.bin"));
    theItem->Renew(vxmedia::FileStatus(), aReading);
    return theItem;
}

// An error names a byte of the text, or the one behind it; a literal's is its quote.
void CheckError(const std::string& anError, const std::string& aText) {
    const std::string theStart = "ERROR: Criteria, byte ";
    vxfuzz::Expect(anError.compare(0, theStart.size(), theStart) == 0, "errors look alike");
    const size_t thePlace = strtoul(anError.c_str() + theStart.size(), NULL, 10);
    vxfuzz::Expect(thePlace >= 1 && thePlace <= aText.size() + 1, "the byte is of the text");
    for (const char* theLiteral : {"expected a number", "expected a date", "expected millisec"}) {
        vxfuzz::Expect(anError.find(theLiteral) == std::string::npos || aText[thePlace - 1] == '"',
                       "a literal begins with its quote");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    const vxRef<vxmedia::MediaItem> theSong = Item(1, Song(theInput));
    const vxRef<vxmedia::MediaItem> thePhoto = Item(2, Photo(theInput));
    const std::string theText = theInput.Rest();
    vxmedia::LibraryCriteria theCriteria(vxCString(theText.c_str(), theText.size()));
    const std::string theError = theCriteria.Read().c_str();
    if (!theError.empty()) {
        CheckError(theError, theText);
        return 0;
    }
    const bool theSongMatches = theCriteria.Match(*theSong.Get());
    theCriteria.Match(*thePhoto.Get());
    vxfuzz::Expect(theCriteria.Match(*theSong.Get()) == theSongMatches, "answers stay the same");
    return 0;
}
