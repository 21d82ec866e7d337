// Counts by module name, and the moment at which the last of them came down to 0.

#include "vx/ActivityManager.h"

#include <libteskTools/HashTable.h>
#include <libvxOS/Clock.h>

#include <cstring>

namespace {

vxtimeval vxNow() {
    vxtimeval theTime;
    vxMonoliticTime_GetTime(&theTime);
    return theTime;
}

uint64_t vxToWord(const vxtimeval& aTime) {
    uint64_t theWord;
    static_assert(sizeof(theWord) == sizeof(aTime), "a time value is two 32-bit words");
    memcpy(&theWord, &aTime, sizeof(theWord));
    return theWord;
}

vxtimeval vxFromWord(uint64_t aWord) {
    vxtimeval theTime;
    memcpy(&theTime, &aWord, sizeof(theTime));
    return theTime;
}

uint32_t vxChangedCount(uint32_t aCount, int32_t aDelta) {
    const uint32_t theDelta = static_cast<uint32_t>(aDelta);
    if (aDelta < 0 && 0 - theDelta >= aCount) {
        return 0;
    }
    return aCount + theDelta;
}

}  // namespace

vxActivityManager::vxActivityManager()
    : mActivityCounter(vxCustomHashTable_New_String_UInt32()),
      mfActivity(false),
      mTimeVal(vxToWord(vxNow())) {}

vxActivityManager::~vxActivityManager() {
    vxCustomHashTable_Delete(mActivityCounter);
}

void vxActivityManager::IncrementModuleActivity(const char* aModule) {
    IncDecModuleActivity(aModule, 1);
}

void vxActivityManager::DecrementModuleActivity(const char* aModule) {
    IncDecModuleActivity(aModule, -1);
}

void vxActivityManager::SetModuleActivity(const char* aModule, bool afActive) {
    vxMutexLocker theLock(&mMutex);
    StoreCount(aModule, afActive ? 1 : 0);
}

void vxActivityManager::IncDecModuleActivity(const char* aModule, int32_t aDelta) {
    vxMutexLocker theLock(&mMutex);
    void* theCount = NULL;
    vxCustomHashTable_Lookup(mActivityCounter, aModule, &theCount);
    StoreCount(aModule, vxChangedCount(vxHashValue_ToUInt32(theCount), aDelta));
}

void vxActivityManager::StoreCount(const char* aModule, uint32_t aCount) {
    vxCustomHashTable_Add(mActivityCounter, aModule, vxHashValue_FromUInt32(aCount));
    if (aCount != 0) {
        mfActivity.store(true);
    } else {
        UpdateActivityFlag();
    }
}

void vxActivityManager::UpdateActivityFlag() {
    bool theIsActive = false;
    vxCustomHashTable_ForEach(
        mActivityCounter,
        [](void* aIsActive, const char*, void* aCount) {
            const bool theIsCounted = vxHashValue_ToUInt32(aCount) != 0;
            *static_cast<bool*>(aIsActive) = theIsCounted;
            return !theIsCounted;
        },
        &theIsActive);
    if (mfActivity.load() && !theIsActive) {
        // The time first: whoever sees the flag down must not count from an older moment.
        mTimeVal.store(vxToWord(vxNow()));
    }
    mfActivity.store(theIsActive);
}

bool vxActivityManager::IsModuleActive(const char* aModule) const {
    vxMutexLocker theLock(&mMutex);
    void* theCount = NULL;
    vxCustomHashTable_Lookup(mActivityCounter, aModule, &theCount);
    return vxHashValue_ToUInt32(theCount) != 0;
}

uint32_t vxActivityManager::GetInactivityDuration() const {
    if (mfActivity.load()) {
        return 0;
    }
    // In this order: a module that is active in between must not move the beginning behind the end.
    const vxtimeval theSince = vxFromWord(mTimeVal.load());
    const vxtimeval theNow = vxNow();
    vxtimeval theDuration;
    vxTimeVal_Substract(&theDuration, &theNow, &theSince);
    return static_cast<uint32_t>(theDuration.tv_sec);
}
