// QOI: a header of 14 bytes: the signature, two big-endian sizes, channels and color space.

#include "probes/QOIProbe.h"

#include <cstdio>

#include "probes/ProbeBytes.h"

namespace vxmedia {

namespace {

constexpr size_t kQOI_HeaderSize = 14;

const char* Format() {
    return "QOI";
}

const char* Endings() {
    return "qoi";
}

int Recognize(const vxmedia_source* aSource) {
    return ProbeBeginsWith(aSource, "qoif");
}

const char* Read(const vxmedia_source* aSource, vxmedia_facts* aFacts) {
    if (!Recognize(aSource)) {
        return "QOI: the signature is missing";
    }
    uint8_t theHeader[kQOI_HeaderSize];
    if (!ProbeReadExactly(aSource, 0, theHeader, sizeof(theHeader))) {
        return "QOI: the file ends inside the header";
    }
    aFacts->width = ProbeBig32(theHeader + 4);
    aFacts->height = ProbeBig32(theHeader + 8);
    if (aFacts->width == 0 || aFacts->height == 0) {
        return "QOI: the picture has an impossible size";
    }
    if (theHeader[12] != 3 && theHeader[12] != 4) {
        return "QOI: the number of channels is impossible";
    }
    snprintf(aFacts->detail, sizeof(aFacts->detail), "8-bit %s, %s",
             theHeader[12] == 3 ? "RGB" : "RGBA", theHeader[13] == 0 ? "sRGB" : "linear");
    return nullptr;
}

}  // namespace

void (*kQOIProbeFunctions[])() = {
    reinterpret_cast<void (*)()>(Format),
    reinterpret_cast<void (*)()>(Endings),
    reinterpret_cast<void (*)()>(Recognize),
    reinterpret_cast<void (*)()>(Read),
};

}  // namespace vxmedia
