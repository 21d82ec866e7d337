// The kernel compares and sleeps in one step, so a wake that comes between a thread's look at a
// word and its sleep is not lost. Deadlines are absolute: an interrupted sleep starts again without
// arithmetic.

#include "Futex.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

static_assert(sizeof(std::atomic<uint32_t>) == sizeof(uint32_t), "the kernel sees the bare word");

vxDeadline vxDeadline_In(uint32_t aMSTimeout) {
    timespec theNow;
    clock_gettime(CLOCK_MONOTONIC, &theNow);
    long theSeconds = static_cast<long>(theNow.tv_sec) + static_cast<long>(aMSTimeout / 1000);
    long theNanoseconds = theNow.tv_nsec + static_cast<long>(aMSTimeout % 1000) * 1000000;
    if (theNanoseconds >= 1000000000) {
        theNanoseconds -= 1000000000;
        ++theSeconds;
    }
    return {theSeconds, theNanoseconds};
}

int vxFutex_Wait(std::atomic<uint32_t>* aWord, uint32_t anExpected, const vxDeadline* aDeadline) {
    // Of the waiting calls this one takes absolute deadlines, and measures them by the monotonic
    // clock.
    const long theResult = syscall(SYS_futex, aWord, FUTEX_WAIT_BITSET | FUTEX_PRIVATE_FLAG,
                                   anExpected, aDeadline, nullptr, FUTEX_BITSET_MATCH_ANY);
    return theResult != 0 && errno == ETIMEDOUT ? ETIMEDOUT : 0;
}

void vxFutex_Wake(std::atomic<uint32_t>* aWord, int aCount) {
    syscall(SYS_futex, aWord, FUTEX_WAKE | FUTEX_PRIVATE_FLAG, aCount);
}

bool vxFutex_SpinningPays() {
    static const bool sfSeveralProcessors = sysconf(_SC_NPROCESSORS_ONLN) > 1;
    return sfSeveralProcessors;
}
