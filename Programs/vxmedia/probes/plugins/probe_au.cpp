// AU: six big-endian numbers: the signature, where the data begin, how many bytes they are, the
// coding, the rate and the channels. A length of all ones, as a pipe leaves it, means the rest of the
// file.

#include <algorithm>
#include <cstdio>

#include "../ProbeBytes.h"

namespace {

constexpr size_t kAU_HeaderSize = 24;
constexpr uint32_t kAU_LengthUnknown = 0xFFFFFFFF;

struct AUCoding {
    uint32_t mCode;
    uint32_t mBytes;  // of a sample; 0: not every sample takes the same
    const char* mName;
};

constexpr AUCoding kAU_Codings[] = {
    {1, 1, "mu-law"},
    {2, 1, "8-bit PCM"},
    {3, 2, "16-bit PCM"},
    {4, 3, "24-bit PCM"},
    {5, 4, "32-bit PCM"},
    {6, 4, "32-bit floating point"},
    {7, 8, "64-bit floating point"},
    {23, 0, "G.721 ADPCM"},
    {24, 0, "G.722 ADPCM"},
    {25, 0, "G.723 ADPCM, 3 bits"},
    {26, 0, "G.723 ADPCM, 5 bits"},
    {27, 1, "A-law"},
};

AUCoding FindCoding(uint32_t aCode) {
    for (const AUCoding& theRow : kAU_Codings) {
        if (theRow.mCode == aCode) {
            return theRow;
        }
    }
    return {aCode, 0, "unknown coding"};
}

void SetFrames(uint64_t aDataSize, uint32_t aSampleSize, vxmedia_facts* aFacts) {
    if (aSampleSize != 0) {
        aFacts->frames = aDataSize / (uint64_t(aSampleSize) * aFacts->channels);
        aFacts->frames_are_known = 1;
    }
}

}  // namespace

const char* vxmedia_probe1_format(void) {
    return "AU";
}

const char* vxmedia_probe1_endings(void) {
    return "au,snd";
}

int vxmedia_probe1_recognize(const vxmedia_source* aSource) {
    return ProbeBeginsWith(aSource, ".snd");
}

const char* vxmedia_probe1_read(const vxmedia_source* aSource, vxmedia_facts* aFacts) {
    if (!ProbeBeginsWith(aSource, ".snd")) {
        return "AU: the signature is missing";
    }
    uint8_t theHeader[kAU_HeaderSize];
    if (!ProbeReadExactly(aSource, 0, theHeader, sizeof(theHeader))) {
        return "AU: the file ends inside the header";
    }
    const uint32_t theStart = ProbeBig32(theHeader + 4);
    const uint32_t theLength = ProbeBig32(theHeader + 8);
    aFacts->rate = ProbeBig32(theHeader + 16);
    aFacts->channels = ProbeBig32(theHeader + 20);
    if (theStart < kAU_HeaderSize || theStart > aSource->size) {
        return "AU: the data begin outside the file";
    }
    if (aFacts->rate == 0 || aFacts->channels == 0) {
        return "AU: the sound has an impossible form";
    }
    const AUCoding theCoding = FindCoding(ProbeBig32(theHeader + 12));
    const uint64_t theRest = aSource->size - theStart;
    SetFrames(theLength == kAU_LengthUnknown ? theRest : std::min<uint64_t>(theLength, theRest),
              theCoding.mBytes, aFacts);
    snprintf(aFacts->detail, sizeof(aFacts->detail), "%s", theCoding.mName);
    return nullptr;
}
