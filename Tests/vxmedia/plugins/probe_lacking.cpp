// Has half of the entry points of a probe.

#include <ProbeInterface.h>

const char* vxmedia_probe1_format(void) {
    return "Lacking";
}

const char* vxmedia_probe1_endings(void) {
    return "lack";
}
