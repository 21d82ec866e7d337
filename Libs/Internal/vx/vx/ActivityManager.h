#pragma once

#include <libvxOS/TimeVal.h>

#include <atomic>

#include "vx/Api.h"
#include "vx/Mutex.h"

/// See <libteskTools/HashTable.h>.
typedef struct vxCustomHashTable vxCustomHashTable;

/// Counts the activities of a program's modules, so that the program can tell how long it has been
/// idle.
///
/// A module is known by its name, and is active while its count is above 0.
///
/// Threads:  any, guarded by mMutex; IsActive() and GetInactivityDuration() any, atomic.
class VX_EXPORT vxActivityManager {
public:
    /// Creates a manager without an active module, idle from now on.
    vxActivityManager();
    virtual ~vxActivityManager();

    vxActivityManager(const vxActivityManager&) = delete;
    vxActivityManager& operator=(const vxActivityManager&) = delete;

    /// Adds one activity of the module.
    void IncrementModuleActivity(const char* aModule);

    /// Takes one activity of the module away; a count of 0 stays 0.
    void DecrementModuleActivity(const char* aModule);

    /// Sets the count of the module to 1 or 0, whatever it was.
    void SetModuleActivity(const char* aModule, bool afActive);

    /// Tells whether the module has a count above 0.
    bool IsModuleActive(const char* aModule) const;

    /// Tells whether any module is active.
    bool IsActive() const { return mfActivity.load(); }

    /// Returns the whole seconds since the last module became idle, or since the manager was
    /// created; 0 while a module is active.
    uint32_t GetInactivityDuration() const;

private:
    void IncDecModuleActivity(const char* aModule, int32_t aDelta);
    void StoreCount(const char* aModule, uint32_t aCount);
    void UpdateActivityFlag();

    mutable vxMutex mMutex;               // guards mActivityCounter
    vxCustomHashTable* mActivityCounter;  // owned; module name to count
    std::atomic<bool> mfActivity;         // a count is above 0; written under mMutex
    std::atomic<uint64_t> mTimeVal;       // when the last module became idle, a vxtimeval in one
                                          // word; written under mMutex
};
