// A list under a lock, and an event that wakes the worker.
//
// The event keeps a signal that comes while the worker is busy, so a worker looks at the list, lets
// go of the lock and waits, and misses nothing in between. Time is local time in milliseconds, which
// the platform counts evenly.

#include "vx/QueryManager.h"

#include <libvxLog/Assert.h>
#include <libvxLog/Log.h>
#include <libvxOS/Time.h>

#include <algorithm>

namespace {

constexpr unsigned int kvxQuery_NoLimit = 0xFFFFFFFF;
constexpr uint64_t kvxQuery_NoDeadline = UINT64_MAX;

uint64_t vxToInteger(const vxULongLong& aValue) {
    return static_cast<uint64_t>(aValue.mHigh) << 32 | aValue.mLow;
}

uint64_t vxNow() {
    vxULongLong theTime;
    vxTime_GetLocalTimeMS(&theTime);
    return vxToInteger(theTime);
}

// Milliseconds until a moment, 0 once it has come. The longest limited wait is a little shorter than
// the longest delay: whoever waits looks again then.
unsigned int vxTimeUntil(uint64_t aMoment, uint64_t aNow) {
    if (aMoment <= aNow) {
        return 0;
    }
    return static_cast<unsigned int>(std::min<uint64_t>(aMoment - aNow, kvxQuery_NoLimit - 1));
}

}  // namespace

vxQuery::vxQuery()
    : mNextQuery(NULL),
      mQueryManager(NULL),
      mfAutoDelete(false),
      mDelay(0),
      mEndDelay{0, 0},
      mfExecuted(false) {}

vxQuery::~vxQuery() = default;

void vxQuery::Done() {
    if (mQueryManager == NULL) {
        delete this;
    }
}

bool vxQuery::HasBeenExecuted() {
    return mfExecuted.load(std::memory_order_relaxed);
}

void vxQuery::SetDelay(unsigned int aMS) {
    mDelay = aMS;
    vxTime_GetLocalTimeMS(&mEndDelay);
    vxULongLong_AddUInt32(&mEndDelay, aMS);
}

vxQueryManager::vxQueryManager()
    : mfQueryManagerStopped(false), mHeadQuery(NULL), mTailQuery(NULL) {}

vxQueryManager::~vxQueryManager() {
    ClearQueries();
}

void vxQueryManager::SignalQueryToProcess() {
    mProcessSemaphore.Signal();
}

void vxQueryManager::InitQuery(vxQuery*) {}

void vxQueryManager::AddQuery(vxQuery* aQuery) {
    if (VXCHECK(aQuery != NULL) && !Append(aQuery)) {
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_QUERY,
              "QueryManager: cannot add query %p because query manager is stopped\n",
              static_cast<void*>(aQuery));
        aQuery->Done();
    }
}

// Looks for a stop under the lock, as PushBackQuery() does: whoever comes behind the clearing of the
// list by Stop() sees that the manager is stopped, so nothing stays behind in the list.
bool vxQueryManager::Append(vxQuery* aQuery) {
    vxMutexLocker theLock(&mQueryMutex);
    if (IsStopped()) {
        return false;
    }
    if (VXCHECK(!IsListed(aQuery))) {
        (mTailQuery != NULL ? mTailQuery->mNextQuery : mHeadQuery) = aQuery;
        mTailQuery = aQuery;
        InitQuery(aQuery);
        SignalQueryToProcess();
    }
    return true;
}

void vxQueryManager::PushBackQuery(vxQuery* aQuery) {
    vxMutexLocker theLock(&mQueryMutex);
    if (IsStopped()) {
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_QUERY,
              "QueryManager: cannot push back query %p because query manager is stopped\n",
              static_cast<void*>(aQuery));
        return;
    }
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_QUERY, "QueryManager: pushing back the query %p\n",
          static_cast<void*>(aQuery));
    if (VXCHECK(aQuery != NULL) && VXCHECK(!IsListed(aQuery))) {
        aQuery->mNextQuery = mHeadQuery;
        mHeadQuery = aQuery;
        if (mTailQuery == NULL) {
            mTailQuery = aQuery;
        }
    }
}

bool vxQueryManager::IsListed(const vxQuery* aQuery) const {
    return aQuery->mNextQuery != NULL || aQuery == mTailQuery;
}

vxQuery* vxQueryManager::GetQuery() {
    vxMutexLocker theLock(&mQueryMutex);
    vxQuery* thePrevious = NULL;
    vxQuery* theQuery = IsStopped() ? NULL : mHeadQuery;
    while (theQuery != NULL && theQuery->mDelay != 0) {
        thePrevious = theQuery;
        theQuery = theQuery->mNextQuery;
    }
    if (theQuery != NULL) {
        Unlink(thePrevious);
        theQuery->mfExecuted.store(true, std::memory_order_relaxed);
    }
    return theQuery;
}

/// Takes the query behind `aPrevious`, for null the head, out of the list and returns it.
vxQuery* vxQueryManager::Unlink(vxQuery* aPrevious) {
    vxQuery*& theLink = aPrevious != NULL ? aPrevious->mNextQuery : mHeadQuery;
    vxQuery* theQuery = theLink;
    theLink = theQuery->mNextQuery;
    theQuery->mNextQuery = NULL;
    if (theQuery == mTailQuery) {
        mTailQuery = aPrevious;
    }
    return theQuery;
}

bool vxQueryManager::HasPendingQuery() const {
    vxMutexLocker theLock(&mQueryMutex);
    const vxQuery* theQuery = FindFirstToRun();
    return theQuery != NULL && theQuery->mDelay == 0;
}

bool vxQueryManager::IsEmpty() const {
    vxMutexLocker theLock(&mQueryMutex);
    return mHeadQuery == NULL;
}

/// Returns the first query that is due, else the first of those whose delay ends first, or null.
vxQuery* vxQueryManager::FindFirstToRun() const {
    vxQuery* theFirst = NULL;
    for (vxQuery* theQuery = mHeadQuery; theQuery != NULL; theQuery = theQuery->mNextQuery) {
        if (theQuery->mDelay == 0) {
            return theQuery;
        }
        if (theFirst == NULL ||
            vxToInteger(theQuery->mEndDelay) < vxToInteger(theFirst->mEndDelay)) {
            theFirst = theQuery;
        }
    }
    return theFirst;
}

void vxQueryManager::WaitForQuery(unsigned int aMSTimeout) {
    const uint64_t theDeadline =
        aMSTimeout == kvxQuery_NoLimit ? kvxQuery_NoDeadline : vxNow() + aMSTimeout;
    if (!IsStopped() && IsEmpty()) {
        mProcessSemaphore.WaitTimeout(aMSTimeout);
    }
    while (const unsigned int theSleep = TimeToSleep(theDeadline)) {
        mProcessSemaphore.WaitTimeout(theSleep);
    }
    if (IsStopped()) {
        // The signal of Stop() has woken this thread only: pass it on to the next one that waits.
        mProcessSemaphore.Signal();
    }
}

/// Returns how long to sleep before looking again, 0 when the wait is over.
unsigned int vxQueryManager::TimeToSleep(uint64_t aDeadline) {
    vxMutexLocker theLock(&mQueryMutex);
    if (IsStopped()) {
        return 0;
    }
    vxQuery* theQuery = FindFirstToRun();
    if (theQuery == NULL) {
        return aDeadline == kvxQuery_NoDeadline ? kvxQuery_NoLimit : 0;
    }
    if (theQuery->mDelay == 0) {
        return 0;
    }
    const uint64_t theNow = vxNow();
    const uint64_t theEnd = vxToInteger(theQuery->mEndDelay);
    if (theEnd <= theNow) {
        theQuery->mDelay = 0;
    }
    return vxTimeUntil(std::min(theEnd, aDeadline), theNow);
}

void vxQueryManager::ClearSelectedQueries(bool (*aSelect)(vxQuery*, void*), void* aData) {
    vxMutexLocker theLock(&mQueryMutex);
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_QUERY, "ClearSelectedQueries (%p - %p)\n",
          static_cast<void*>(mHeadQuery), static_cast<void*>(mTailQuery));
    vxQuery* theNext = UnlinkSelected(aSelect, aData);
    while (theNext != NULL) {
        vxQuery* theQuery = theNext;
        theNext = theQuery->mNextQuery;
        theQuery->mNextQuery = NULL;
        theQuery->Done();
    }
}

/// Returns the selected queries as a list of their own: Done() may change that of the manager.
vxQuery* vxQueryManager::UnlinkSelected(bool (*aSelect)(vxQuery*, void*), void* aData) {
    vxQuery* theSelected = NULL;
    vxQuery** theEnd = &theSelected;
    vxQuery* thePrevious = NULL;
    vxQuery* theNext = mHeadQuery;
    while (vxQuery* theQuery = theNext) {
        theNext = theQuery->mNextQuery;
        if (aSelect == NULL || aSelect(theQuery, aData)) {
            *theEnd = Unlink(thePrevious);
            theEnd = &theQuery->mNextQuery;
        } else {
            thePrevious = theQuery;
        }
    }
    return theSelected;
}

vxQuery* vxQueryManager::FindQuery(bool (*aMatch)(vxQuery*, void*), void* aData) const {
    vxQuery* theQuery = mHeadQuery;
    while (theQuery != NULL && !aMatch(theQuery, aData)) {
        theQuery = theQuery->mNextQuery;
    }
    return theQuery;
}

void vxQueryManager::Stop() {
    mfQueryManagerStopped.store(true, std::memory_order_relaxed);
    ClearQueries();
    SignalQueryToProcess();
}
