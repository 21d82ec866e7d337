// What people see of threads. Call stacks go straight to the descriptor: nothing is allocated, so it
// works in a broken program.

#include <libvxOS/Debug.h>

#include <execinfo.h>
#include <pthread.h>
#include <unistd.h>

#include <cstring>

namespace {

constexpr size_t kvxLongestThreadName = 15;  // bytes before the NUL

bool vxIsContinuation(char aByte) {
    return (static_cast<unsigned char>(aByte) & 0xC0) == 0x80;
}

}  // namespace

void vxDebug_BackTraceCurrent(void) {
    void* theFrames[64];
    const int theCount = backtrace(theFrames, 64);
    backtrace_symbols_fd(theFrames, theCount, STDERR_FILENO);
}

void vxDebug_SetThreadName(const char* aName) {
    if (aName == nullptr) {
        return;
    }
    size_t theLength = strnlen(aName, kvxLongestThreadName + 1);
    if (theLength > kvxLongestThreadName) {
        theLength = kvxLongestThreadName;
        while (theLength > 0 && vxIsContinuation(aName[theLength])) {
            --theLength;
        }
    }
    char theName[kvxLongestThreadName + 1] = {};
    memcpy(theName, aName, theLength);
    pthread_setname_np(pthread_self(), theName);
}
