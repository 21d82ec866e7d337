// Threads that are created at once and wait at a gate until they are started: a thread that the
// system cannot give is missed at its creation, and every thread has its number from then on.
//
// The handle belongs to its owner and to the thread, and the last one to leave frees it. So a
// detached thread can release its own handle and still find its way out.

#include <libvxOS/Thread.h>

#include <libvxLog/Log.h>

#include "Futex.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <new>

namespace {

enum : uint32_t { kvxGate_Closed, kvxGate_Open, kvxGate_Abandoned };
enum : uint32_t { kvxJoin_Pending, kvxJoin_Waiting, kvxJoin_Done };

constexpr size_t kvxSmallestStack = 64 * 1024;  // enough to log, also on a 64-bit system
constexpr int kvxNicenessStep = 10;

}  // namespace

struct vxOSThread {
    const vxOSThread_Data mData;
    pthread_t mThread = {};
    mutable std::atomic<uint32_t> mID{0};          // 0 until the thread lives
    std::atomic<uint32_t> mGate{kvxGate_Closed};   // the thread passes unless it stays closed
    std::atomic<uint32_t> mJoin{kvxJoin_Pending};  // who calls the system's join; done if detached
    std::atomic<int> mOwners{2};                   // the owner of the handle, and the thread
};

namespace {

// Set in a word beside its value while threads may sleep on it: without them, a change costs no call of
// the system.
constexpr uint32_t kvxSleepers = 0x80000000;

uint32_t vxValue(const std::atomic<uint32_t>& aWord) {
    return aWord.load(std::memory_order_acquire) & ~kvxSleepers;
}

/// Sleeps while the word has this value and returns the one that it has then.
uint32_t vxAwaitChange(std::atomic<uint32_t>* aWord, uint32_t aValue) {
    for (;;) {
        uint32_t theWord = aWord->load(std::memory_order_acquire);
        if ((theWord & ~kvxSleepers) != aValue) {
            return theWord & ~kvxSleepers;
        }
        if (theWord != aValue || aWord->compare_exchange_weak(theWord, aValue | kvxSleepers,
                                                              std::memory_order_relaxed)) {
            vxFutex_Wait(aWord, aValue | kvxSleepers, nullptr);
        }
    }
}

/// Who sees the new value may free the word: it is not touched afterwards.
void vxAnnounce(std::atomic<uint32_t>* aWord, uint32_t aValue) {
    if ((aWord->exchange(aValue, std::memory_order_acq_rel) & kvxSleepers) != 0) {
        vxFutex_Wake(aWord, INT_MAX);
    }
}

void vxLeave(vxOSThread* aThread) {
    if (aThread->mOwners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete aThread;
    }
}

void* vxThreadMain(void* aContext) {
    auto* theThread = static_cast<vxOSThread*>(aContext);
    vxAnnounce(&theThread->mID, static_cast<uint32_t>(vxThread_GetCurrentThreadID()));
    if (vxAwaitChange(&theThread->mGate, kvxGate_Closed) == kvxGate_Open) {
        const vxOSThread_Data& theData = theThread->mData;
        theData.mThreadFunc(theData.mThreadArgs);
        if (theData.mDeleteFunc != nullptr) {
            theData.mDeleteFunc(theData.mThreadArgs);
        }
    }
    vxLeave(theThread);
    return nullptr;
}

int vxRealtimePriority(int aPolicy, int aPriority) {
    const int theLowest = sched_get_priority_min(aPolicy);
    const int theHighest = sched_get_priority_max(aPolicy);
    switch (aPriority) {
        case kvxThreadPriority_Min:
            return theLowest;
        case kvxThreadPriority_Max:
            return theHighest;
        default:
            return (theLowest + theHighest) / 2;
    }
}

int vxSetStackSize(pthread_attr_t* anAttributes, size_t aSize) {
    if (aSize == 0) {
        return 0;
    }
    const long theSystems = sysconf(_SC_THREAD_STACK_MIN);
    const size_t theSmallest = theSystems < 0
                                   ? kvxSmallestStack
                                   : std::max(kvxSmallestStack, static_cast<size_t>(theSystems));
    return pthread_attr_setstacksize(anAttributes, std::max(aSize, theSmallest));
}

int vxCreateRealtime(vxOSThread* aThread, pthread_attr_t* anAttributes) {
    sched_param theParameters = {};
    theParameters.sched_priority = vxRealtimePriority(SCHED_RR, kvxThreadPriority_Default);
    pthread_attr_setinheritsched(anAttributes, PTHREAD_EXPLICIT_SCHED);
    pthread_attr_setschedpolicy(anAttributes, SCHED_RR);
    pthread_attr_setschedparam(anAttributes, &theParameters);
    const int theResult = pthread_create(&aThread->mThread, anAttributes, vxThreadMain, aThread);
    pthread_attr_setinheritsched(anAttributes, PTHREAD_INHERIT_SCHED);
    return theResult;
}

int vxCreate(vxOSThread* aThread, pthread_attr_t* anAttributes) {
    if (aThread->mData.mThreadScheduling == vxThread_Scheduling_Realtime) {
        const int theResult = vxCreateRealtime(aThread, anAttributes);
        if (theResult != EPERM) {
            return theResult;
        }
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_THREADING,
              "Real-time scheduling is not permitted, the thread gets the default one\n");
    }
    return pthread_create(&aThread->mThread, anAttributes, vxThreadMain, aThread);
}

int vxCreateWithStack(vxOSThread* aThread) {
    pthread_attr_t theAttributes;
    int theResult = pthread_attr_init(&theAttributes);
    if (theResult != 0) {
        return theResult;
    }
    theResult = vxSetStackSize(&theAttributes, aThread->mData.mStackSize);
    if (theResult == 0) {
        theResult = vxCreate(aThread, &theAttributes);
    }
    pthread_attr_destroy(&theAttributes);
    return theResult;
}

/// Returns how nice the program was when a priority was first set.
int vxProgramNiceness() {
    static const int sNiceness = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    return sNiceness;
}

}  // namespace

vxOSThread* vxThread_New(const vxOSThread_Data* aData) {
    if (aData == nullptr || aData->mThreadFunc == nullptr) {
        errno = EINVAL;
        return nullptr;
    }
    auto* theThread = new (std::nothrow) vxOSThread{*aData};
    if (theThread == nullptr) {
        errno = ENOMEM;
        return nullptr;
    }
    const int theResult = vxCreateWithStack(theThread);
    if (theResult != 0) {
        delete theThread;
        errno = theResult;
        return nullptr;
    }
    return theThread;
}

int vxThread_Run(vxOSThread* aThread) {
    if (aThread == nullptr || vxValue(aThread->mGate) != kvxGate_Closed) {
        return EINVAL;
    }
    if (aThread->mData.mThreadKind != vxThread_Kind_Joinable) {
        aThread->mJoin.store(kvxJoin_Done, std::memory_order_relaxed);
        pthread_detach(aThread->mThread);
    }
    vxAnnounce(&aThread->mGate, kvxGate_Open);
    return 0;
}

int vxThread_Wait(vxOSThread* aThread) {
    if (aThread == nullptr || aThread->mData.mThreadKind != vxThread_Kind_Joinable) {
        return EINVAL;
    }
    if (pthread_equal(aThread->mThread, pthread_self()) != 0) {
        return EDEADLK;
    }
    uint32_t theState = kvxJoin_Pending;
    while (!aThread->mJoin.compare_exchange_strong(theState, kvxJoin_Waiting,
                                                   std::memory_order_acquire)) {
        if (theState == kvxJoin_Done) {
            return 0;
        }
        vxAwaitChange(&aThread->mJoin, kvxJoin_Waiting);
        theState = kvxJoin_Pending;
    }
    const int theResult = pthread_join(aThread->mThread, nullptr);
    vxAnnounce(&aThread->mJoin, theResult == 0 ? kvxJoin_Done : kvxJoin_Pending);
    return theResult;
}

void vxThread_Delete(vxOSThread* aThread) {
    if (aThread == nullptr) {
        return;
    }
    const bool theIsSuspended = vxValue(aThread->mGate) == kvxGate_Closed;
    if (theIsSuspended) {
        vxAnnounce(&aThread->mGate, kvxGate_Abandoned);
    }
    if (aThread->mJoin.load(std::memory_order_acquire) == kvxJoin_Pending) {
        if (theIsSuspended) {
            pthread_join(aThread->mThread, nullptr);
        } else {
            pthread_detach(aThread->mThread);
        }
    }
    vxLeave(aThread);
}

unsigned long vxThread_GetID(const vxOSThread* aThread) {
    return aThread == nullptr ? 0 : vxAwaitChange(&aThread->mID, 0);
}

unsigned long vxThread_GetCurrentThreadID(void) {
    return static_cast<unsigned long>(syscall(SYS_gettid));
}

int vxThread_SetPriority(uint16_t aPriority) {
    if (aPriority > kvxThreadPriority_Max) {
        return EINVAL;
    }
    const int thePolicy = sched_getscheduler(0);
    if (thePolicy == SCHED_RR || thePolicy == SCHED_FIFO) {
        sched_param theParameters = {};
        theParameters.sched_priority = vxRealtimePriority(thePolicy, aPriority);
        return sched_setparam(0, &theParameters) == 0 ? 0 : errno;
    }
    const int theNiceness =
        vxProgramNiceness() + (kvxThreadPriority_Default - aPriority) * kvxNicenessStep;
    return setpriority(PRIO_PROCESS, 0, theNiceness) == 0 ? 0 : errno;
}

// Sleeps until a moment, not for a span: a signal that interrupts costs no accuracy.
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
