#pragma once

#include <libvxOS/SocketSelect.h>

#include <atomic>

#include "vx/Api.h"

/// The system's select, which another thread can end.
///
///     vxSelect theSelect;
///     if (theSelect.Setup() != 0) { ... }
///     bool theTriggered;
///     int theReady = theSelect.Select(&theReadSet, NULL, NULL, theCount, NULL, &theTriggered);
///
/// Owner:    owns one platform selector between Setup() and Terminate().
/// Threads:  any for Select() and Signal(); Setup() one at a time and before both, Terminate()
///           while no other thread begins either.
class VX_EXPORT vxSelect {
public:
    vxSelect() : mSocketSelect(NULL) {}

    /// Terminates.
    ~vxSelect() { Terminate(); }

    vxSelect(const vxSelect&) = delete;
    vxSelect& operator=(const vxSelect&) = delete;

    /// Creates the selector, in place of the one from an earlier call; returns 0.
    ///
    /// Fails:    -1, logged at error level, module VXLOG_M_SELECT.
    int Setup();

    /// Ends every Select() under way and lets go of the selector; without one it does nothing.
    void Terminate();

    /// Waits until a descriptor below `aDescriptorCount` is ready, the time is over, or Signal() is
    /// called; null sets are empty, and without a time-out the wait has no limit.
    ///
    /// The sets hold the ready descriptors on return. `afTriggered`, unless null, receives whether
    /// the wait was ended by Signal(). Returns the number of ready descriptors, 0 when there is
    /// none.
    ///
    /// Fails:    negative, as before Setup(); the sets are unchanged then.
    int Select(fd_set* aReadSet, fd_set* aWriteSet, fd_set* anExceptSet, int aDescriptorCount,
               timeval* aTimeout, bool* afTriggered);

    /// Ends the Select() under way, else the next one; before Setup() it does nothing.
    void Signal();

private:
    std::atomic<vxSocketSelect*> mSocketSelect;  // owned; null until Setup()
};
