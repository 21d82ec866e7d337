// Sleeping until a moment, not for a span: a signal that interrupts costs no accuracy.

#include <libvxOS/Thread.h>

#include "Futex.h"

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

void vxThread_Sleep(uint32_t aMSDuration) {
    if (aMSDuration == 0) {
        return;
    }
    const vxDeadline theDeadline = vxDeadline_In(aMSDuration);
    timespec theTime = {};
    theTime.tv_sec = theDeadline.mSeconds;
    theTime.tv_nsec = theDeadline.mNanoseconds;
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &theTime, nullptr) == EINTR) {}
}

unsigned long vxThread_GetCurrentThreadID(void) {
    return static_cast<unsigned long>(syscall(SYS_gettid));
}
