// A stopwatch on the monotonic clock, which a set wall clock does not move.

#include <libvxOS/Chrono.h>

#include <time.h>

namespace {

uint64_t vxNow() {
    timespec theTime;
    clock_gettime(CLOCK_MONOTONIC, &theTime);
    return static_cast<uint64_t>(theTime.tv_sec) * 1000000000U +
           static_cast<uint64_t>(theTime.tv_nsec);
}

}  // namespace

void vxChrono_S_Init(vxChrono* aChrono) {
    aChrono->mStart = 0;
}

void vxChrono_Start_S(vxChrono* aChrono) {
    aChrono->mStart = vxNow();
}

void vxChrono_GetTime_S_MS(const vxChrono* aChrono, uint32_t* aSeconds, uint32_t* aMilliseconds) {
    const uint64_t theMilliseconds =
        aChrono->mStart == 0 ? 0 : (vxNow() - aChrono->mStart) / 1000000U;
    *aSeconds = static_cast<uint32_t>(theMilliseconds / 1000U);
    *aMilliseconds = static_cast<uint32_t>(theMilliseconds % 1000U);
}
