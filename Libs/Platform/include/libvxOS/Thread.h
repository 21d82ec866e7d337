#pragma once

#include <libteskTools/Types.h>

/// Whether somebody waits for the end of a thread.
enum {
    vxThread_Kind_Joinable = 0,  ///< vxThread_Wait() may be called
    vxThread_Kind_Detached = 1,  ///< the thread cleans up after itself
    kvxThreadKind_Joinable = vxThread_Kind_Joinable,
    kvxThreadKind_Detached = vxThread_Kind_Detached
};

/// How much of the processor a thread gets beside others.
enum { kvxThreadPriority_Min = 0, kvxThreadPriority_Default = 1, kvxThreadPriority_Max = 2 };

/// By which rules the system chooses the thread that runs.
enum {
    vxThread_Scheduling_Default = 0,  ///< the rules of the creating thread
    vxThread_Scheduling_Realtime = 1  ///< before all threads that are not real-time ones
};

/// What a thread is to do, and how it is made.
typedef struct vxOSThread_Data {
    int (*mThreadFunc)(void* anArgs);   ///< runs in the new thread; its result means nothing
    void (*mDeleteFunc)(void* anArgs);  ///< runs in the thread after mThreadFunc; or null
    void* mThreadArgs;                  ///< handed to both
    size_t mStackSize;                  ///< bytes; 0: what the system gives
    int mThreadKind;                    ///< vxThread_Kind_*; all but 0 is detached
    int mThreadScheduling;              ///< vxThread_Scheduling_*
} vxOSThread_Data;

/// A thread of the system.
typedef struct vxOSThread vxOSThread;

VX_C_BEGIN

/// Creates a thread that does nothing until vxThread_Run() starts it.
///
/// The record is copied. A stack of less than 64 KiB is made that large. Where the program may not
/// have real-time threads, a warning is logged, module VXLOG_M_THREADING, and the thread gets the
/// default rules.
///
/// Fails:    null with errno set when the system has no thread or no such stack to give, or memory
///           is short; EINVAL for a null record or function.
/// Owner:    the caller, who releases the handle with vxThread_Delete(), also of a detached thread:
///           its delete function may do that.
/// Threads:  any.
VX_API vxOSThread* vxThread_New(const vxOSThread_Data* aData);

/// Lets a thread begin. What the caller wrote before is visible to it.
///
/// The handle of a detached thread may be gone on return, if the thread's delete function releases
/// it.
///
/// Fails:    EINVAL for null and for a thread that was started already; 0 means success.
/// Threads:  one at a time.
VX_API int vxThread_Run(vxOSThread* aThread);

/// Blocks until a joinable thread has ended, its delete function included; a thread that was never
/// started is waited for as well. Once it has ended every call succeeds at once.
///
/// What the thread wrote is visible to the caller afterwards.
///
/// Fails:    EDEADLK when the thread waits for itself, or for one that waits for it; EINVAL for
///           null and for a detached thread; 0 means success.
/// Threads:  any.
VX_API int vxThread_Wait(vxOSThread* aThread);

/// Releases the handle; null is ignored.
///
/// A thread that was never started ends without calling either of its functions, before this
/// returns. One that runs goes on, and nobody can wait for it any more. Nobody may be inside
/// vxThread_Wait().
///
/// Threads:  any, also the thread itself.
VX_API void vxThread_Delete(vxOSThread* aThread);

/// Returns the number of a thread, as vxThread_GetCurrentThreadID() does in it, also once it has
/// ended, when the system may give the number to another one; 0 for null.
///
/// Threads:  any.
/// Cost:     the first call may have to wait a moment for a thread that was created just before.
VX_API unsigned long vxThread_GetID(const vxOSThread* aThread);

/// Returns the number by which the system tells the calling thread from all others that live: what
/// its process list shows.
///
/// Threads:  any.
VX_API unsigned long vxThread_GetCurrentThreadID(void);

/// Sets the priority of the calling thread, a kvxThreadPriority_*.
///
/// A thread of the default rules is made 10 steps nicer than the program for the lowest priority,
/// and 10 steps less nice for the highest. Real-time threads begin in the middle of their range,
/// which is also their default priority; the others are its ends.
///
/// Fails:    EACCES or EPERM when the program may not raise the priority, EINVAL for a number that
///           is no priority; 0 means success.
/// Threads:  any.
VX_API int vxThread_SetPriority(uint16_t aPriority);

/// Blocks the calling thread for at least `aMSDuration` milliseconds of the monotonic clock; 0
/// returns at once. Signals do not cut the sleep short.
///
/// Threads:  any.
VX_API void vxThread_Sleep(uint32_t aMSDuration);

VX_C_END
