#pragma once

#include <libteskTools/ULongLong.h>

#include <atomic>

#include "vx/Api.h"
#include "vx/Condition.h"
#include "vx/Mutex.h"

class vxQueryManager;

/// A request that waits in the list of a vxQueryManager until a worker takes it.
///
/// A program derives its requests from this class.
///
/// Threads:  one at a time: the one that adds the query, then the worker that takes it. What has
///           other rules says so.
class VX_EXPORT vxQuery {
public:
    /// Creates a query that is due, in no list and without manager.
    vxQuery();

    vxQuery(const vxQuery&) = delete;
    vxQuery& operator=(const vxQuery&) = delete;

    /// Called when the query is over: by the worker that has executed it, or by the manager that
    /// discards it. The base deletes a query without `mQueryManager` and leaves others alone.
    ///
    /// A manager that clears its list calls it under its lock.
    virtual void Done();

    /// Tells whether a worker has been handed the query.
    ///
    /// Threads:  any, atomic.
    virtual bool HasBeenExecuted();

    /// The query may not be in a list.
    virtual ~vxQuery();

    /// Keeps the query back for `aMS` milliseconds from now on; with 0 it is due at once.
    ///
    /// For a query that is in a list, hold vxQueryManager::LockQueries() and call
    /// vxQueryManager::SignalQueryToProcess() afterwards.
    void SetDelay(unsigned int aMS);

private:
    friend class vxQueryManager;

    vxQuery* mNextQuery;  // in the list; null for the last one and outside lists

public:
    /// The manager that owns the query, for which Done() leaves it alive; null at first. It is set
    /// by derived queries and managers: the base classes never do.
    vxQueryManager* mQueryManager;
    /// For derived queries and managers to use: the base classes never do. False at first.
    bool mfAutoDelete;

private:
    uint32_t mDelay;        // milliseconds; 0 when the query is due
    vxULongLong mEndDelay;  // local time in milliseconds at which the delay ends
    std::atomic<bool> mfExecuted;
};

/// A list of queries that any threads fill and a worker empties.
///
///     void Worker::OnRun() {
///         while (!TestExit()) {
///             mManager.WaitForQuery(0xFFFFFFFF);
///             if (vxQuery* theQuery = mManager.GetQuery()) {
///                 static_cast<Request*>(theQuery)->Execute();
///                 theQuery->Done();
///             }
///         }
///     }
///
/// Stop() ends the wait, so a program stops the manager and its worker together. The list is made
/// for one worker. Several may share it: each query goes to one of them, Stop() wakes them all, but
/// a signal that comes while all are busy wakes only one.
///
/// Owner:    queries belong to themselves: the manager deletes none, and calls Done() for those it
///           discards.
/// Threads:  any, guarded by mQueryMutex, which is recursive: what is called under the lock may
///           call the manager.
class VX_EXPORT vxQueryManager {
public:
    /// Creates a manager with an empty list.
    vxQueryManager();

    vxQueryManager(const vxQueryManager&) = delete;
    vxQueryManager& operator=(const vxQueryManager&) = delete;

    /// Discards every query; nobody may wait.
    virtual ~vxQueryManager();

    /// Ends the current wait of a worker or, when none waits, the next one.
    virtual void SignalQueryToProcess();

    /// Puts the query at the end of the list, calls InitQuery() and wakes the worker.
    ///
    /// A stopped manager logs a warning and calls the query's Done() instead, without lock.
    ///
    /// Asserts:  aQuery != NULL, and that the query is not in the list; it is left alone otherwise.
    /// Owner:    the manager until GetQuery() hands the query out or Done() is called.
    void AddQuery(vxQuery* aQuery);

    /// Puts a query that GetQuery() has handed out back, at the head of the list: it is the next
    /// one to go to a worker, once a delay is over. Nobody is woken.
    ///
    /// Programs depend on the place; to put a query at the end, call AddQuery().
    ///
    /// A stopped manager logs a warning and leaves the query to the caller.
    ///
    /// Asserts:  as AddQuery().
    void PushBackQuery(vxQuery* aQuery);

    /// Takes the first query that is due out of the list and marks it as executed.
    ///
    /// Delays end in WaitForQuery() only, one at each call: a query whose time has come is not due
    /// before a worker has waited.
    ///
    /// Fails:    with null when no query is due or the manager is stopped.
    /// Owner:    the caller, who calls Done() when the query has been executed.
    vxQuery* GetQuery();

    /// Tells whether a query is due.
    bool HasPendingQuery() const;

    /// Waits until a query is due, for at most `aMSTimeout` milliseconds; 0xFFFFFFFF waits without
    /// limit. Returns at once when the manager is stopped.
    ///
    /// Among delayed queries the one whose delay ends first becomes due, the first in the list
    /// where several do. A limited wait ends early when it is signaled and the list is empty all
    /// the same. Whether a query is there is for GetQuery() to say.
    void WaitForQuery(unsigned int aMSTimeout);

    /// Discards every query, as ClearSelectedQueries().
    void ClearQueries() { ClearSelectedQueries(NULL, NULL); }

    /// Takes every query that `aSelect` chooses, for a null `aSelect` every query, out of the list,
    /// and then calls their Done() in the order of the list.
    ///
    /// Both are called under the lock. `aSelect` may not change the list; Done() may.
    void ClearSelectedQueries(bool (*aSelect)(vxQuery*, void*), void* aData);

    /// Returns the first query for which `aMatch` is true, or null. The query stays in the list.
    ///
    /// Threads:  between LockQueries() and UnlockQueries(), as long as the result is used.
    vxQuery* FindQuery(bool (*aMatch)(vxQuery*, void*), void* aData) const;

    /// Keeps other threads from changing the list until UnlockQueries(); may be nested.
    void LockQueries() { mQueryMutex.Lock(); }
    /// Undoes one LockQueries() of the calling thread.
    void UnlockQueries() { mQueryMutex.Unlock(); }

    /// Discards every query and those that are added from now on, and ends all waits; for good.
    void Stop();

protected:
    /// Called under the lock for each query that AddQuery() has put into the list; the base does
    /// nothing.
    virtual void InitQuery(vxQuery* aQuery);

private:
    bool IsStopped() const { return mfQueryManagerStopped.load(std::memory_order_relaxed); }
    bool IsListed(const vxQuery* aQuery) const;
    bool IsEmpty() const;
    bool Append(vxQuery* aQuery);
    vxQuery* Unlink(vxQuery* aPrevious);
    vxQuery* UnlinkSelected(bool (*aSelect)(vxQuery*, void*), void* aData);
    vxQuery* FindFirstToRun() const;
    unsigned int TimeToSleep(uint64_t aDeadline);

    std::atomic<bool> mfQueryManagerStopped;  // never goes back to false
    vxQuery* mHeadQuery;                      // null when the list is empty
    vxQuery* mTailQuery;                      // null when the list is empty
    mutable vxMutex mQueryMutex;              // guards the list, and the delays of its queries
    vxCondition mProcessSemaphore;            // wakes a worker
};
