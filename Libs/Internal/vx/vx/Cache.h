#pragma once

#include <cstddef>

#include "vx/Api.h"
#include "vx/Broadcaster.h"
#include "vx/CString.h"
#include "vx/List.h"
#include "vx/Ref.h"

class vxCache;

/// States of a cached object. Unavailable and Available are also the messages that it broadcasts.
enum {
    kvxCachedState_Unavailable = 21000,  ///< there is no content
    kvxCachedState_Wanted = 21001,       ///< somebody wants it, and fetching has not begun
    kvxCachedState_Fetching = 21002,     ///< it is being fetched
    kvxCachedState_Available = 21003     ///< it is there
};

/// An object whose content comes and goes: it is fetched when somebody reads the object, and dropped
/// when a cache needs the room.
///
/// The derived class supplies the content: Fetch(), Trash(), and its size in mSize. While mLockCount
/// is not 0 no cache makes the object forget its content; what uses the content counts there.
///
///     class Picture : public vxCachedBase {
///         bool Fetch() override { mSize = mPixels.Load(mPath); return mSize > 0; }
///         void Trash() override { mPixels.Clear(); mSize = 0; }
///         vxCString GetID() override { return mPath; }
///     };
///     vxRef<Picture> thePicture = new Picture("/a.png");
///     theCache.Attach(thePicture.Get());
///     thePicture->OnReadAccess();  // fetched now, and the most recently used
///
/// Fetching is synchronous unless the derived class overrides SetFetching() to start it, and calls
/// FetchDone() later. The states Wanted and Fetching are such a class's own: it sets them with
/// SetState(), the base never does.
///
///                     .--FetchDone(false)--.
///                     v                    |
///     Unavailable --Want--> (Wanted --> Fetching) --FetchDone(true)--> Available
///          ^                       |                                      |
///          `------Forget-----------'--------------------Forget------------'
///
/// Owner:    its handles, and the cache while the content is there. An object that a cache knows is
///           held by a handle, and leaves the cache by itself when it is destroyed.
/// Threads:  one at a time for the object, its cache and all the cache's objects; FetchDone(), too,
///           is called in that thread.
class VX_EXPORT vxCachedBase : public vxRefCounted, public vxBroadcaster {
public:
    /// Is unavailable, of size 0, not locked and in no cache.
    vxCachedBase() = default;

    /// Leaves the cache. The content is the derived class's to drop.
    ~vxCachedBase() override;

    vxCachedBase(const vxCachedBase&) = delete;
    vxCachedBase& operator=(const vxCachedBase&) = delete;

    /// Drops the content, or the wish for it, unless the object is unavailable already.
    virtual void Forget();

    /// Starts to obtain the content: calls SetFetching().
    virtual void SetWanted();

    /// Drops the content or the wish for it, and sets the target state to Unavailable.
    ///
    /// An available object calls Trash(), one that is fetching CancelFetch(), before it becomes
    /// unavailable; one that is unavailable stays so without a word.
    virtual void SetNotWanted();

    /// To be called whenever the object is read: makes it the most recently used of its cache, and
    /// wants its content.
    virtual void OnReadAccess();

    /// Obtains the content: the base calls FetchDone(Fetch()).
    virtual void SetFetching();

    /// Obtains the content and returns whether it is there; the base has none and returns false.
    virtual bool Fetch();

    /// Drops the content, or what a failed fetch has left of it; the base does nothing.
    virtual void Trash();

    /// Stops a fetch under way; the base does nothing.
    virtual void CancelFetch();

    /// Returns a text that names the object in logs; that of the base is empty.
    virtual vxCString GetID();

    /// Returns a kvxCachedState_*.
    /// @{
    unsigned int State() const { return mState; }
    unsigned int GetState() const { return mState; }
    /// @}

    /// Wants the content if the object is unavailable.
    void Want();

    /// Makes Available the target state and wants the content: a fetch that fails is tried again.
    void Prefetch();

    /// Returns what the content counts against a cache's size limit.
    size_t Size() const { return mSize; }

    /// Is the content there?
    bool IsAvailable() const { return mState == kvxCachedState_Available; }

    /// Is there neither content nor a wish for it?
    bool IsUnavailable() const { return mState == kvxCachedState_Unavailable; }

    /// Returns the number of locks; while there are any, no cache makes the object forget.
    int GetLockCount() const { return mLockCount; }

    /// Sets the state; Available and Unavailable are broadcast, with the state as message and this
    /// object, a vxCachedBase*, as parameter.
    ///
    /// The object outlives the broadcast if a handle holds it at the beginning.
    void SetState(unsigned int aState);

    /// Ends a fetch: with success the object is available.
    ///
    /// Otherwise Trash() is called. Where Available is the target state the object is wanted again,
    /// up to three attempts in a row; then, as with any other target, it becomes unavailable.
    void FetchDone(bool afOK);

protected:
    unsigned int mState = kvxCachedState_Unavailable;        ///< changed by SetState()
    unsigned int mTargetState = kvxCachedState_Unavailable;  ///< what the owner wants
    int mLockCount = 0;                                      ///< not 0: the cache keeps the content
    vxCache* mContainer = NULL;  ///< borrowed: the cache that knows the object, or null
    size_t mSize = 0;            ///< of the content, in the unit of the cache's limit

private:
    friend class vxCache;

    unsigned int mFailedFetches = 0;                     // in a row
    vxListItem<vxCachedBase*>* mElem = NULL;             // of mContainer, or null
    vxListItem<vxRef<vxCachedBase>>* mAvailable = NULL;  // of mContainer, or null
};

/// A set of objects of which the most recently used keep their content.
///
/// An object becomes the most recently used one when it is read, see OnReadAccess(), and when its
/// content arrives; a new one starts at the other end. Whenever content arrives, the objects are
/// counted in that order, as far as they are available. The one that brings the count above the
/// count limit, or the size above the size limit, is the last that keeps its content: of those
/// behind it, the ones that are not locked are told to forget theirs. So one object more than the
/// count limit stays, and the size may exceed its limit by that of one object; programs depend on
/// it. Objects that have forgotten stay in the set.
///
/// Owner:    holds its available objects; the others it merely knows, and they leave by themselves
///           when they are destroyed. A destroyed cache lets go of all.
/// Threads:  one at a time, as its objects.
/// Cost:     reading and moving objects takes constant time; content that arrives costs a look at
///           every object.
class VX_EXPORT vxCache : public vxListener {
public:
    /// Has no objects. The size is in the unit of vxCachedBase::Size().
    vxCache(size_t aSizeLimit, size_t aCountLimit);

    /// Lets go of every object; all keep their content.
    ~vxCache() override;

    vxCache(const vxCache&) = delete;
    vxCache& operator=(const vxCache&) = delete;

    /// Makes the cache care for an object, as the least recently used one; an object that is in a
    /// cache leaves that first, also if it is this one.
    ///
    /// Asserts:  aCached != NULL.
    /// Owner:    the caller keeps a handle; the cache takes one while the object is available.
    void Attach(vxCachedBase* aCached);

    /// Forgets an object, which keeps its content; one that is not in this cache is left alone.
    ///
    /// Asserts:  aCached != NULL.
    void Detach(vxCachedBase* aCached);

    /// Makes the object the most recently used one, if it is in this cache, and wants its content.
    ///
    /// Asserts:  !aCached.IsNull().
    void OnReadAccess(const vxRef<vxCachedBase>& aCached);

    /// Changes the limits; runs a pass if one of them has become smaller.
    void SetLimits(size_t aSizeLimit, size_t aCountLimit);

    /// Tells the objects beyond the limits to forget, as described above, and logs the status.
    ///
    /// Returns at once from inside a pass, as when an object that forgets makes another one
    /// available.
    void Run();

    /// Logs the available objects and all objects, in their order, at debug level.
    void Dump();

    /// Follows an object that has become available or unavailable; other messages are ignored.
    ///
    /// Asserts:  mElems.size() == theCount, when an object becomes available that is not in this
    ///           cache; it is ignored.
    void ListenToMessage(int aMessage, void* aParam) override;

private:
    friend class vxCachedBase;

    bool IsElement(const vxCachedBase* aCached) const;
    void Access(vxCachedBase* aCached);
    void OnAvailable(vxCachedBase* aCached);
    void MoveToFront(vxCachedBase* aCached);
    void AddAvailable(vxCachedBase* aCached);
    void RemoveAvailable(vxCachedBase* aCached);

    size_t mSizeLimit;
    size_t mCountLimit;
    bool mfIsRunning;                         // a pass is under way
    vxList<vxRef<vxCachedBase>> mAvailables;  // in the order in which they became available
    vxList<vxCachedBase*> mElems;             // borrowed, the most recently used first
};
