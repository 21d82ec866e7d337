// The header readers of vxmedia, on any bytes: the first byte chooses the name of the file.

#include <cstring>

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
    return 0;
}
