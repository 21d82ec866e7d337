// Keeps a reader waiting: a file "WAIT" and the path of a named pipe is read as soon as somebody opens
// the pipe for writing, and has the size of a dot then.

#include <ProbeInterface.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstring>

const char* vxmedia_probe1_format(void) {
    return "WAIT";
}

const char* vxmedia_probe1_endings(void) {
    return "";
}

int vxmedia_probe1_recognize(const vxmedia_source* aSource) {
    char theBytes[4];
    return aSource->read(aSource->context, 0, theBytes, 4) == 4 && memcmp(theBytes, "WAIT", 4) == 0;
}

const char* vxmedia_probe1_read(const vxmedia_source* aSource, vxmedia_facts* aFacts) {
    char thePath[4096] = {};
    aSource->read(aSource->context, 4, thePath, sizeof(thePath) - 1);
    const int thePipe = open(thePath, O_RDONLY | O_CLOEXEC);
    if (thePipe < 0) {
        return "WAIT: the pipe cannot be opened";
    }
    close(thePipe);
    aFacts->width = aFacts->height = 1;
    return nullptr;
}
