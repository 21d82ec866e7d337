// Every answer is the monotonic clock in other units.

#include <libvxOS/Clock.h>

#include <time.h>

namespace {

timespec vxNow() {
    timespec theNow;
    clock_gettime(CLOCK_MONOTONIC, &theNow);
    return theNow;
}

}  // namespace

uint32_t vxTime_GetTickCount(void) {
    const timespec theNow = vxNow();
    return static_cast<uint32_t>(theNow.tv_sec) * 1000U +
           static_cast<uint32_t>(theNow.tv_nsec) / 1000000U;
}

void vxMonoliticTime_GetTime(vxtimeval* aTime) {
    const timespec theNow = vxNow();
    aTime->tv_sec = static_cast<int32_t>(theNow.tv_sec);
    aTime->tv_usec = static_cast<int32_t>(theNow.tv_nsec / 1000);
}

void vxTimeVal_Substract(vxtimeval* aResult, const vxtimeval* aTime, const vxtimeval* aSubtracted) {
    int64_t theSeconds = static_cast<int64_t>(aTime->tv_sec) - aSubtracted->tv_sec;
    int64_t theMicroseconds = static_cast<int64_t>(aTime->tv_usec) - aSubtracted->tv_usec;
    if (theMicroseconds < 0) {
        theMicroseconds += 1000000;
        --theSeconds;
    }
    aResult->tv_sec = static_cast<int32_t>(static_cast<uint32_t>(theSeconds));
    aResult->tv_usec = static_cast<int32_t>(theMicroseconds);
}
