// States rise by compare and exchange, so a stop that is asked for while the thread is on its way
// to a lower state is not lost.
//
// A detached thread may end, and delete its object, while Go() still looks at the state, or between
// the two words that ThreadCancel() writes. The destructor therefore waits until these calls have
// touched the object for the last time; that is the only place where its memory is sure to exist
// still.

#include "vx/StoppableThread.h"

#include <libteskTools/Memory.h>
#include <libvxLog/Assert.h>
#include <libvxLog/LogDuration.h>
#include <libvxOS/Debug.h>

#include <cstdlib>

namespace {

constexpr int kvxPollInterval = 10;  // milliseconds

int vxStoppableThread_Entry(void* anObject) {
    return static_cast<vxStoppableThread*>(anObject)->Entry();
}

void vxStoppableThread_S_Delete(void* anObject) {
    auto* theThread = static_cast<vxStoppableThread*>(anObject);
    if (theThread != NULL) {
        VXASSERT(theThread->GetThreadKind() == vxThread_Kind_Detached);
        delete theThread;
    }
}

}  // namespace

vxStoppableThread::vxStoppableThread(const char* aName, int aKind)
    : mThreadKind(aKind),
      mThreadState(kvxThreadState_NotCreated),
      mThreadName(vxStrdup(aName != NULL ? aName : "")),
      mThread(NULL),
      mfTerminateRequested(false),
      mCallers(0) {}

vxStoppableThread::~vxStoppableThread() {
    while (mCallers.load(std::memory_order_acquire) != 0) {
        ThreadSleep(kvxPollInterval);
    }
    if (!VXCHECK((mThreadState == kvxThreadState_NotCreated) ||
                 (mThreadState == kvxThreadState_Created) ||
                 (mThreadState == kvxThreadState_Terminated)) &&
        mThreadKind == vxThread_Kind_Joinable) {
        vxStoppableThread::ThreadCancel();
        vxThread_Wait(mThread);
    }
    vxThread_Delete(mThread);
    free(mThreadName);
}

void vxStoppableThread::RaiseState(int aState) {
    int theState = GetThreadState();
    while (theState < aState &&
           !mThreadState.compare_exchange_weak(theState, aState, std::memory_order_acq_rel)) {}
}

int vxStoppableThread::ThreadCreate() {
    if (!VXCHECK(mThreadState == kvxThreadState_NotCreated)) {
        return -1;
    }
    vxOSThread_Data theData;
    ThreadSetData(&theData);
    mThread = vxThread_New(&theData);
    if (mThread == NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_THREADING, "Cannot create thread '%s'\n", mThreadName);
        return -1;
    }
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_THREADING, "Created thread '%s' (Thread ID = %lu)\n",
          mThreadName, vxThread_GetID(mThread));
    RaiseState(kvxThreadState_Created);
    return 0;
}

void vxStoppableThread::Go(int aWaitState) {
    if (!VXCHECK(mThreadState == kvxThreadState_Created)) {
        return;
    }
    RaiseState(kvxThreadState_Starting);
    mCallers.fetch_add(1, std::memory_order_relaxed);
    vxThread_Run(mThread);
    while (GetThreadState() < aWaitState) {
        ThreadSleep(kvxPollInterval);
    }
    mCallers.fetch_sub(1, std::memory_order_release);  // the object may be gone from here on
}

bool vxStoppableThread::TestExit() {
    if (mfTerminateRequested.load(std::memory_order_acquire)) {
        RaiseState(kvxThreadState_Terminate);
        return true;
    }
    return GetThreadState() >= kvxThreadState_Terminate;
}

void vxStoppableThread::OnRun() {}

void vxStoppableThread::ThreadCancel() {
    mCallers.fetch_add(1, std::memory_order_relaxed);
    if (GetThreadState() > kvxThreadState_Created) {
        mfTerminateRequested.store(true, std::memory_order_release);
        RaiseState(kvxThreadState_Terminate);
    }
    mCallers.fetch_sub(1, std::memory_order_release);  // as in Go()
}

void vxStoppableThread::ThreadSetData(vxOSThread_Data* aData) {
    *aData = vxOSThread_Data();
    const bool theIsDetached = mThreadKind != vxThread_Kind_Joinable;
    aData->mThreadFunc = vxStoppableThread_Entry;
    aData->mDeleteFunc = theIsDetached ? vxStoppableThread_S_Delete : NULL;
    aData->mThreadArgs = this;
    aData->mThreadKind = theIsDetached ? vxThread_Kind_Detached : vxThread_Kind_Joinable;
    aData->mThreadScheduling = vxThread_Scheduling_Default;
}

int vxStoppableThread::Entry() {
    VXLOG_DURATION(theScope, VXLOGLEVEL_DEBUG, VXLOG_M_THREADING, kvxLogDuration_Duration, "%s",
                   mThreadName);
    vxDebug_SetThreadName(mThreadName);
    RaiseState(kvxThreadState_Started);
    OnRun();
    RaiseState(mThreadKind == vxThread_Kind_Joinable ? kvxThreadState_Terminating
                                                     : kvxThreadState_Terminated);
    return 0;
}

void vxStoppableThread::ThreadWaitTerminate() {
    if (GetThreadState() > kvxThreadState_Created) {
        const int theResult = vxThread_Wait(mThread);
        if (theResult != 0) {
            VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_THREADING,
                  "Error waiting termination of thread '%s' (Error = %d)\n", mThreadName,
                  theResult);
        } else {
            VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_THREADING, "Thread '%s' terminated\n", mThreadName);
        }
    }
    RaiseState(kvxThreadState_Terminated);
}
