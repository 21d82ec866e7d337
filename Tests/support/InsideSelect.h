#pragma once

// Tells when a thread is about to wait in select or epoll. For one source file of a test program: the
// functions below stand in front of the system's in the whole program.

#include <sys/epoll.h>
#include <sys/select.h>

#include <atomic>

#include "support/Forward.h"
#include "support/Latch.h"

namespace vxtest {

/// Counted down by every wait while it is set.
inline std::atomic<Latch*> sInsideSelect{nullptr};

}  // namespace vxtest

extern "C" __attribute__((visibility("default"))) int pselect(int aCount, fd_set* aReadSet,
                                                              fd_set* aWriteSet,
                                                              fd_set* anExceptSet,
                                                              const timespec* aTimeout,
                                                              const sigset_t* aMask) {
    if (vxtest::Latch* theLatch = vxtest::sInsideSelect) {
        theLatch->CountDown();
    }
    return VXTEST_REAL(pselect)(aCount, aReadSet, aWriteSet, anExceptSet, aTimeout, aMask);
}

extern "C" __attribute__((visibility("default"))) int epoll_wait(int aWatch, epoll_event* anEvents,
                                                                 int aCount, int aTimeout) {
    if (vxtest::Latch* theLatch = vxtest::sInsideSelect) {
        theLatch->CountDown();
    }
    return VXTEST_REAL(epoll_wait)(aWatch, anEvents, aCount, aTimeout);
}
