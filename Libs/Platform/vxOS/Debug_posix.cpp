// Call stacks, straight to the descriptor: nothing is allocated, so it works in a broken program.

#include <libvxOS/Debug.h>

#include <execinfo.h>
#include <unistd.h>

void vxDebug_BackTraceCurrent(void) {
    void* theFrames[64];
    const int theCount = backtrace(theFrames, 64);
    backtrace_symbols_fd(theFrames, theCount, STDERR_FILENO);
}
