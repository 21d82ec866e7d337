// Objects in the order of their last use, and the pass that keeps the first of them.
//
// Forgetting and fetching call back: an object that forgets broadcasts it, which takes it out of the
// list of available objects and may end its life in the middle of a pass. So a pass walks with the
// list's own iterator, and nothing is touched behind a call that may have been the object's last.
//
// Each object knows its items in the two lists: moving it needs no search.

#include "vx/Cache.h"

#include <libvxLog/Assert.h>
#include <libvxLog/Log.h>
#include <libvxLog/LogDuration.h>

#include <cstdint>

namespace {

constexpr unsigned int kvxCached_Attempts = 3;

// Keeps an object alive during a call, if it has an owner; one without is nobody's to end.
class vxHeldObject {
public:
    explicit vxHeldObject(vxCachedBase* aCached)
        : mObject(aCached->RetainIfHeld(this) ? aCached : NULL) {}
    ~vxHeldObject() {
        if (mObject != NULL) {
            mObject->Release(this);
        }
    }
    vxHeldObject(const vxHeldObject&) = delete;
    vxHeldObject& operator=(const vxHeldObject&) = delete;

private:
    vxCachedBase* mObject;
};

// A sum that stays below every limit but the largest one cannot have wrapped.
size_t vxSaturatedSum(size_t aLeft, size_t aRight) {
    return aRight > SIZE_MAX - aLeft ? SIZE_MAX : aLeft + aRight;
}

void vxLogEntry(size_t anIndex, vxCachedBase* aCached) {
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT, "%03lu: %s\n", static_cast<unsigned long>(anIndex),
          aCached->GetID().c_str());
}

}  // namespace

vxCachedBase::~vxCachedBase() {
    if (mAvailable != NULL) {
        // Deleted although the cache holds it, which the base class reports. Letting go of it as
        // usual would delete it once more.
        (**mAvailable)._SetPointedObject(NULL);
    }
    if (mContainer != NULL) {
        mContainer->Detach(this);
    }
}

void vxCachedBase::Forget() {
    if (!IsUnavailable()) {
        SetNotWanted();
    }
}

void vxCachedBase::SetWanted() {
    SetFetching();
}

void vxCachedBase::SetNotWanted() {
    mTargetState = kvxCachedState_Unavailable;
    mFailedFetches = 0;
    if (IsUnavailable()) {
        return;
    }
    const vxHeldObject theHold(this);  // dropping the content may let go of the object
    if (mState == kvxCachedState_Fetching) {
        CancelFetch();
    } else if (IsAvailable()) {
        Trash();
    }
    SetState(kvxCachedState_Unavailable);
}

void vxCachedBase::OnReadAccess() {
    if (mContainer != NULL) {
        mContainer->Access(this);
    } else {
        Want();
    }
}

void vxCachedBase::SetFetching() {
    const vxHeldObject theHold(this);
    FetchDone(Fetch());
}

bool vxCachedBase::Fetch() {
    return false;
}

void vxCachedBase::Trash() {}

void vxCachedBase::CancelFetch() {}

vxCString vxCachedBase::GetID() {
    return vxCString();
}

void vxCachedBase::Want() {
    if (IsUnavailable()) {
        SetWanted();
    }
}

void vxCachedBase::Prefetch() {
    mTargetState = kvxCachedState_Available;
    Want();
}

void vxCachedBase::SetState(unsigned int aState) {
    mState = aState;
    if (aState == kvxCachedState_Available || aState == kvxCachedState_Unavailable) {
        const vxHeldObject theHold(this);
        BroadcastMessage(static_cast<int>(aState), this);
    }
}

void vxCachedBase::FetchDone(bool afOK) {
    if (afOK) {
        mFailedFetches = 0;
        SetState(kvxCachedState_Available);
        return;
    }
    const vxHeldObject theHold(this);
    Trash();
    if (mTargetState == kvxCachedState_Available && ++mFailedFetches < kvxCached_Attempts) {
        SetWanted();
        return;
    }
    mFailedFetches = 0;
    SetState(kvxCachedState_Unavailable);
}

vxCache::vxCache(size_t aSizeLimit, size_t aCountLimit)
    : mSizeLimit(aSizeLimit), mCountLimit(aCountLimit), mfIsRunning(false) {}

vxCache::~vxCache() {
    // The listener's destructor unregisters from all objects at once: one by one, each would be
    // searched for.
    vxListIterator<vxCachedBase*> theElem(mElems);
    while (theElem.Next()) {
        (*theElem)->mContainer = NULL;
        (*theElem)->mElem = NULL;
        (*theElem)->mAvailable = NULL;
    }
    mAvailables.erase();
}

void vxCache::Attach(vxCachedBase* aCached) {
    if (!VXCHECK(aCached != NULL)) {
        return;
    }
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT, "Attaching %s\n", aCached->GetID().c_str());
    const vxHeldObject theHold(aCached);
    if (aCached->mContainer != NULL) {
        aCached->mContainer->Detach(aCached);
    }
    aCached->AddListener(this);
    aCached->mContainer = this;
    mElems.push_back(aCached);
    aCached->mElem = mElems.GetEnd();
    if (aCached->IsAvailable()) {
        AddAvailable(aCached);
        Run();
    }
}

void vxCache::Detach(vxCachedBase* aCached) {
    if (!VXCHECK(aCached != NULL)) {
        return;
    }
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT, "Detaching %s\n", aCached->GetID().c_str());
    if (!IsElement(aCached)) {
        return;
    }
    mElems.pop(*aCached->mElem);
    aCached->mElem = NULL;
    aCached->RemoveListener(this);
    aCached->mContainer = NULL;
    RemoveAvailable(aCached);
}

void vxCache::OnReadAccess(const vxRef<vxCachedBase>& aCached) {
    if (VXCHECK(!aCached.IsNull())) {
        Access(aCached.Get());
    }
}

void vxCache::SetLimits(size_t aSizeLimit, size_t aCountLimit) {
    const bool theIsSmaller = aSizeLimit < mSizeLimit || aCountLimit < mCountLimit;
    mSizeLimit = aSizeLimit;
    mCountLimit = aCountLimit;
    if (theIsSmaller) {
        Run();
    }
}

void vxCache::Run() {
    if (mfIsRunning) {
        return;
    }
    VXLOG_DURATION(theDuration, VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT, kvxLogDuration_Duration, "Run");
    mfIsRunning = true;
    size_t theCount = 0;
    size_t theSize = 0;
    bool theMore = true;
    vxListIterator<vxCachedBase*> theElem(mElems);
    while (theMore && theCount <= mCountLimit && theSize <= mSizeLimit) {
        theMore = theElem.Next();
        if (theMore && (*theElem)->IsAvailable()) {
            ++theCount;
            theSize = vxSaturatedSum(theSize, (*theElem)->Size());
        }
    }
    while (theMore && theElem.Next()) {
        vxCachedBase* theCached = *theElem;
        if (theCached->mLockCount == 0 &&
            (theCached->IsAvailable() || theCached->IsUnavailable())) {
            theCached->Forget();
        }
    }
    mfIsRunning = false;
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT, "Cache status: %lu elements, total size: %lu\n",
          static_cast<unsigned long>(theCount), static_cast<unsigned long>(theSize));
    Dump();
}

void vxCache::Dump() {
    if (vxLog_GetLevel(VXLOG_M_DEFAULT) < VXLOGLEVEL_DEBUG) {
        return;
    }
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT, "vxCache: Available:\n");
    size_t theIndex = 0;
    vxListIterator<vxRef<vxCachedBase>> theAvailable(mAvailables);
    while (theAvailable.Next()) {
        vxLogEntry(theIndex++, (*theAvailable).Get());
    }
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT, "vxCache: Elements:\n");
    theIndex = 0;
    vxListIterator<vxCachedBase*> theElem(mElems);
    while (theElem.Next()) {
        vxLogEntry(theIndex++, *theElem);
    }
}

void vxCache::ListenToMessage(int aMessage, void* aParam) {
    vxCachedBase* theCached = static_cast<vxCachedBase*>(aParam);
    if (aMessage == kvxCachedState_Available) {
        OnAvailable(theCached);
    } else if (aMessage == kvxCachedState_Unavailable && IsElement(theCached)) {
        RemoveAvailable(theCached);
    }
}

bool vxCache::IsElement(const vxCachedBase* aCached) const {
    return aCached != NULL && aCached->mContainer == this;
}

void vxCache::OnAvailable(vxCachedBase* aCached) {
    // To move what is no element would add it.
    VXASSERT_TEXT(IsElement(aCached), "mElems.size() == theCount");
    if (!IsElement(aCached)) {
        return;
    }
    MoveToFront(aCached);
    AddAvailable(aCached);
    Run();
}

void vxCache::Access(vxCachedBase* aCached) {
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_DEFAULT, "OnReadAccess %s\n", aCached->GetID().c_str());
    if (IsElement(aCached)) {
        MoveToFront(aCached);
    }
    if (aCached->IsUnavailable()) {
        // Fetching may replace the handle of who reads.
        const vxHeldObject theHold(aCached);
        aCached->Want();
    }
}

void vxCache::MoveToFront(vxCachedBase* aCached) {
    if (aCached->mElem != mElems.GetBegin()) {
        mElems.Detach(aCached->mElem);
        mElems.PushFront(aCached->mElem);
    }
}

void vxCache::AddAvailable(vxCachedBase* aCached) {
    if (aCached->mAvailable == NULL) {
        mAvailables.push_back(aCached);
        aCached->mAvailable = mAvailables.GetEnd();
    }
}

void vxCache::RemoveAvailable(vxCachedBase* aCached) {
    if (vxListItem<vxRef<vxCachedBase>>* theItem = aCached->mAvailable) {
        aCached->mAvailable = NULL;
        mAvailables.pop(*theItem);
    }
}
