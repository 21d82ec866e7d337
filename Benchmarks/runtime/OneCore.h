#pragma once

// Work of several threads on one core, as on a small device: there the software's own cost shows, and
// not how long the machine takes to rouse an idle core. Measure the processor time of the whole process:
// what other programs do on that core does not count.

#include <sched.h>

namespace bench {

/// Keeps the calling thread on the first of its cores for as long as it lives. Threads that it starts
/// meanwhile stay there.
class OneCore {
public:
    OneCore() {
        sched_getaffinity(0, sizeof(mBefore), &mBefore);
        int theFirst = 0;
        while (theFirst < CPU_SETSIZE - 1 && !CPU_ISSET(theFirst, &mBefore)) {
            ++theFirst;
        }
        cpu_set_t theCore;
        CPU_ZERO(&theCore);
        CPU_SET(theFirst, &theCore);
        mfIsPinned = sched_setaffinity(0, sizeof(theCore), &theCore) == 0;
    }
    ~OneCore() { sched_setaffinity(0, sizeof(mBefore), &mBefore); }
    OneCore(const OneCore&) = delete;
    OneCore& operator=(const OneCore&) = delete;

    bool IsPinned() const { return mfIsPinned; }

private:
    cpu_set_t mBefore;
    bool mfIsPinned;
};

/// Runs a benchmark on one core.
template <typename State, typename Function>
void OnOneCore(State& aState, Function aFunction) {
    const OneCore theCore;
    if (!theCore.IsPinned()) {
        aState.SkipWithError("cannot be kept on one core");
        return;
    }
    aFunction(aState);
}

}  // namespace bench
