#pragma once

#include <ctime>

namespace vxtest {

inline double ProcessorSeconds() {
    timespec theTime;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &theTime);
    return static_cast<double>(theTime.tv_sec) + 1e-9 * static_cast<double>(theTime.tv_nsec);
}

/// Tells whether four times the input costs clearly less than the sixteen times of a quadratic run.
///
/// `aWork` gets the size. Processor time counts, so that a busy machine does not matter, and several
/// runs are made before the answer is no.
template <typename Work>
bool GrowsLinearly(size_t aSize, Work aWork) {
    for (int i = 0; i < 5; ++i) {
        const double theStart = ProcessorSeconds();
        aWork(aSize);
        const double theMiddle = ProcessorSeconds();
        aWork(4 * aSize);
        const double theEnd = ProcessorSeconds();
        if (theEnd - theMiddle < 9 * (theMiddle - theStart)) {
            return true;
        }
    }
    return false;
}

}  // namespace vxtest
