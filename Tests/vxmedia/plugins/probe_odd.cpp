// Gives answers that the program has to survive; the byte behind "ODD" of a file chooses which.

#include <ProbeInterface.h>

#include <cstring>

const char* vxmedia_probe1_format(void) {
    return "O\x1B[2J\xFF";
}

const char* vxmedia_probe1_endings(void) {
    return nullptr;
}

int vxmedia_probe1_recognize(const vxmedia_source* aSource) {
    char theBytes[3];
    return aSource->read(aSource->context, 0, theBytes, 3) == 3 && memcmp(theBytes, "ODD", 3) == 0;
}

const char* vxmedia_probe1_read(const vxmedia_source* aSource, vxmedia_facts* aFacts) {
    char theBytes[16] = {};
    aSource->read(aSource->context, 3, theBytes, 1);
    switch (theBytes[0]) {
        case '0':  // nothing at all
            return nullptr;
        case '1':  // a reason that steers a terminal
            return "\x1B[2J\n%n";
        case '2':  // a detail without an end
            memset(aFacts->detail, 'x', sizeof(aFacts->detail));
            aFacts->width = aFacts->height = UINT32_MAX;
            return nullptr;
        case '3':  // reads from nowhere
            aFacts->width = 1 + static_cast<uint32_t>(
                                    aSource->read(aSource->context, UINT64_MAX, theBytes, 16));
            aFacts->height = 1 + static_cast<uint32_t>(
                                     aSource->read(aSource->context, aSource->size, theBytes, 16));
            return nullptr;
        default:  // a sound without a rate, as long as can be
            aFacts->channels = UINT32_MAX;
            aFacts->frames = UINT64_MAX;
            aFacts->frames_are_known = 1;
            return nullptr;
    }
}
