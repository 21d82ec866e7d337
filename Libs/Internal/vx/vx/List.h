#pragma once

#include <libvxLog/Assert.h>

#include <cstddef>

#include "vx/Api.h"

class vxBaseList;
class vxBaseListIterator;

/// One link of a vxBaseList; vxListItem<T> adds the value.
///
/// Owner:    its list from push to removal; a detached item belongs to whoever detached it.
/// Threads:  one at a time, as its list.
class VX_EXPORT vxBaseListItem {
public:
    vxBaseListItem() = default;
    virtual ~vxBaseListItem() = default;

    /// Items come from blocks that their thread has freed before, where there are some.
    static void* operator new(size_t aSize);  // NOLINT(*-new-delete-overloads,cert-dcl54-cpp)
    /// Keeps the block for the next item of its thread, up to a limit.
    static void operator delete(void* aBlock, size_t aSize);

    /// Unlinks the item from `aList`, which holds it: neighbors are joined and the size drops.
    ///
    /// The item keeps its own links, from which iterators that stand on it find their way back.
    /// Programs call vxBaseList::Detach(), which tells them.
    void Remove(vxBaseList* aList);

protected:
    friend class vxBaseList;
    friend class vxBaseListIterator;
    friend class vxBaseListForwardIterator;
    friend class vxBaseListReverseIterator;

    vxBaseListItem* mNext = NULL;  ///< null for the last item
    vxBaseListItem* mPrev = NULL;  ///< null for the first item

private:
    vxBaseListItem(const vxBaseListItem&) = delete;
    vxBaseListItem& operator=(const vxBaseListItem&) = delete;
};

/// An owning, doubly linked list whose iterators survive the removal of the item they stand on.
///
/// The list knows its live iterators. When an item goes, those that stand on it step back to its
/// predecessor, so the next Next() yields the item that followed it.
///
/// Owner:    the list owns its items; the destructor deletes them from the front.
/// Threads:  one at a time for the list and its iterators; nothing is locked.
class VX_EXPORT vxBaseList {
public:
    vxBaseList() = default;
    virtual ~vxBaseList();

    /// Unlinks the item, steps iterators back and deletes the item.
    ///
    /// Asserts:  aListItem != NULL, and that the item is in this list; it is left alone otherwise.
    /// Cost:     constant, plus one step for each live iterator; so is Detach().
    virtual void Remove(vxBaseListItem* aListItem);

    /// Unlinks the item, steps iterators back and clears the item's links.
    ///
    /// Asserts:  as Remove().
    /// Owner:    the caller.
    virtual void Detach(vxBaseListItem* aListItem);

    /// Links the item at the front.
    ///
    /// Asserts:  aListItem != NULL, and that the item is in no list; nothing is linked otherwise.
    void PushFront(vxBaseListItem* aListItem);

    /// Links the item at the back.
    ///
    /// Asserts:  as PushFront().
    void PushBack(vxBaseListItem* aListItem);

    /// Links the item behind `anAfter`; a null `anAfter` means the back of an empty list.
    ///
    /// Asserts:  mSize == 0 when `anAfter` is null, that `anAfter` is in this list otherwise, and
    ///           appends after either report; then as PushFront().
    void PushAfter(vxBaseListItem* aListItem, vxBaseListItem* anAfter);

    /// Links the item before `aBefore`; a null `aBefore` means the front of an empty list.
    ///
    /// Asserts:  mSize == 0 when `aBefore` is null, that `aBefore` is in this list otherwise, and
    ///           prepends after either report; then as PushFront().
    void PushBefore(vxBaseListItem* aListItem, vxBaseListItem* aBefore);

    /// Returns the first item, or null.
    vxBaseListItem* GetBegin() const { return mBegin; }
    /// Returns the last item, or null.
    vxBaseListItem* GetEnd() const { return mEnd; }

    /// Registers an iterator; its constructor does so.
    void AttachIterator(vxBaseListIterator* anIterator);
    /// Forgets an iterator; its destructor does so. An unknown one is ignored.
    ///
    /// Cost:     constant for the youngest iterator, one step for each younger one otherwise.
    void DetachIterator(vxBaseListIterator* anIterator);

    /// Steps every iterator that stands on the item back to the item's predecessor.
    void ItemRemoved(vxBaseListItem* aListItem);

    /// Tells every iterator that the list is gone: their Next() and Prev() yield false from now on.
    void CloseIterators();

protected:
    friend class vxBaseListItem;

    vxBaseListIterator* mFirstIterator = NULL;  ///< youngest live iterator
    vxBaseListItem* mBegin = NULL;              ///< first item or null
    vxBaseListItem* mEnd = NULL;                ///< last item or null
    size_t mSize = 0;                           ///< items

private:
    // Neighbors that point back to the item, or the list's ends where it has none, prove membership.
    bool IsMember(const vxBaseListItem* aListItem) const {
        const vxBaseListItem* thePrev = aListItem->mPrev;
        const vxBaseListItem* theNext = aListItem->mNext;
        return (thePrev != NULL ? thePrev->mNext : mBegin) == aListItem &&
               (theNext != NULL ? theNext->mPrev : mEnd) == aListItem;
    }

    // The only item of a list has null links too, but is its begin.
    bool IsPushable(const vxBaseListItem* aListItem) const {
        return aListItem->mNext == NULL && aListItem->mPrev == NULL && aListItem != mBegin;
    }

    vxBaseList(const vxBaseList&) = delete;
    vxBaseList& operator=(const vxBaseList&) = delete;
};

inline void vxBaseListItem::Remove(vxBaseList* aList) {
    (mPrev != NULL ? mPrev->mNext : aList->mBegin) = mNext;
    (mNext != NULL ? mNext->mPrev : aList->mEnd) = mPrev;
    --aList->mSize;
}

/// A registered position in a list: on an item, or before the first item (for an iterator that
/// walks backward: behind the last).
///
/// It may outlive its list and reports no further items then.
class VX_EXPORT vxBaseListIterator {
public:
    virtual ~vxBaseListIterator();

    /// Returns the item it stands on, or null.
    vxBaseListItem* GetItem() const { return mCurrentItem; }

    /// Lets go of the list and of the item; the list's destructor calls it.
    void ListDeleted();

protected:
    friend class vxBaseList;

    /// Registers with the list, outside its items.
    explicit vxBaseListIterator(vxBaseList& aList);

    vxBaseListItem* mCurrentItem = NULL;       ///< null outside the items
    vxBaseListIterator* mNextIterator = NULL;  ///< next older iterator of the list
    vxBaseList* mList;                         ///< null once the list is gone

private:
    vxBaseListIterator(const vxBaseListIterator&) = delete;
    vxBaseListIterator& operator=(const vxBaseListIterator&) = delete;
};

/// Walks a list from the first item to the last.
class VX_EXPORT vxBaseListForwardIterator : public vxBaseListIterator {
public:
    /// Starts before the first item.
    explicit vxBaseListForwardIterator(vxBaseList& aList) : vxBaseListIterator(aList) {}
    ~vxBaseListForwardIterator() override;

    /// Steps to the next item and returns whether there was one; the step after the last item
    /// starts over at the first.
    bool Next() {
        if (mList == NULL) {
            return false;
        }
        mCurrentItem = mCurrentItem != NULL ? mCurrentItem->mNext : mList->GetBegin();
        return mCurrentItem != NULL;
    }
};

/// Walks a list from the last item to the first.
///
/// When the item it stands on goes, it too steps back to the predecessor, so its next Prev() skips
/// the item before the removed one. Programs depend on this; to see every item, step first and
/// remove the item left behind.
class VX_EXPORT vxBaseListReverseIterator : public vxBaseListIterator {
public:
    /// Starts behind the last item.
    explicit vxBaseListReverseIterator(vxBaseList& aList) : vxBaseListIterator(aList) {}
    ~vxBaseListReverseIterator() override;

    /// Steps to the previous item and returns whether there was one; the step after the first item
    /// starts over at the last.
    bool Prev() {
        if (mList == NULL) {
            return false;
        }
        mCurrentItem = mCurrentItem != NULL ? mCurrentItem->mPrev : mList->GetEnd();
        return mCurrentItem != NULL;
    }
};

/// An item that holds a value of type `T`: a vxRef keeps its object alive, a raw pointer does not.
template <typename T>
class vxListItem : public vxBaseListItem {
    static_assert(alignof(T) <= alignof(std::max_align_t), "items are aligned as malloc aligns");

public:
    /// Copies the value.
    explicit vxListItem(const T& anItem) : mItem(anItem) {}

    T& operator*() { return mItem; }              ///< Returns the value.
    const T& operator*() const { return mItem; }  ///< Returns the value.

    /// Returns the item behind this one, or null.
    vxListItem* Next() const { return static_cast<vxListItem*>(mNext); }
    /// Returns the item before this one, or null.
    vxListItem* Prev() const { return static_cast<vxListItem*>(mPrev); }

private:
    T mItem;
};

/// A vxBaseList of values, with the names of the standard library's lists.
///
///     vxListIterator<int> theIterator(theList);
///     while (theIterator.Next()) {
///         if (*theIterator < 0) {
///             theList.pop(*theIterator.GetItem());  // the walk goes on with the next value
///         }
///     }
///
/// `T` has a default constructor: its value answers where there is no item.
///
/// Owner:    the list owns its items; each push allocates one.
/// Threads:  one at a time for the list and its iterators; nothing is locked.
template <typename T>
class vxList : public vxBaseList {
public:
    /// Returns the number of values.
    size_t size() const { return mSize; }

    /// Returns the first value.
    ///
    /// Asserts:  mSize > 0; otherwise the value is an empty one, shared by all lists of the thread.
    T& front() { return ValueOf(mBegin); }
    /// As above.
    const T& front() const { return ValueOf(mBegin); }

    /// Returns the last value.
    ///
    /// Asserts:  as front().
    T& back() { return ValueOf(mEnd); }
    /// As above.
    const T& back() const { return ValueOf(mEnd); }

    /// Appends a copy of the value.
    void push_back(const T& anItem) { PushBack(new vxListItem<T>(anItem)); }
    /// Puts a copy of the value in front.
    void push_front(const T& anItem) { PushFront(new vxListItem<T>(anItem)); }

    /// As PushAfter().
    void push_after(const T& anItem, vxListItem<T>* anAfter) {
        PushAfter(new vxListItem<T>(anItem), anAfter);
    }
    /// As PushBefore().
    void push_before(const T& anItem, vxListItem<T>* aBefore) {
        PushBefore(new vxListItem<T>(anItem), aBefore);
    }

    /// Removes the first value; of an empty list, reports as Remove() does.
    void pop_front() { Remove(mBegin); }
    /// Removes the last value; of an empty list, reports as Remove() does.
    void pop_back() { Remove(mEnd); }

    /// Removes and deletes that item.
    void pop(vxListItem<T>& anItem) { Remove(&anItem); }

    /// Removes the first value that equals the argument; nothing happens when there is none.
    ///
    /// Cost:     linear in the values before it.
    void pop(const T& anItem) {
        if (vxListItem<T>* theItem = find(anItem)) {
            Remove(theItem);
        }
    }

    /// Removes every item, one by one from the front.
    void erase() {
        while (mBegin != NULL) {
            Remove(mBegin);
        }
    }

    /// Returns the first item whose value equals the argument, or null.
    ///
    /// Cost:     linear in the values before it.
    vxListItem<T>* find(const T& anItem) const {
        vxListItem<T>* theItem = GetBegin();
        while (theItem != NULL && !(**theItem == anItem)) {
            theItem = theItem->Next();
        }
        return theItem;
    }

    /// Returns the first item, or null.
    vxListItem<T>* GetBegin() const { return static_cast<vxListItem<T>*>(mBegin); }
    /// Returns the last item, or null.
    vxListItem<T>* GetEnd() const { return static_cast<vxListItem<T>*>(mEnd); }

    /// An empty value to hand out where a value is asked and there is none.
    static T& NoValue() {
        static thread_local T theValue{};
        theValue = T{};
        return theValue;
    }

private:
    T& ValueOf(vxBaseListItem* anItem) const {
        return VXCHECK(mSize > 0) ? **static_cast<vxListItem<T>*>(anItem) : NoValue();
    }
};

/// Walks the values of a vxList from the first to the last.
template <typename T>
class vxListIterator : public vxBaseListForwardIterator {
public:
    /// Starts before the first value.
    explicit vxListIterator(vxList<T>& aList) : vxBaseListForwardIterator(aList) {}

    /// Returns the value it stands on.
    ///
    /// Asserts:  mCurrentItem != NULL; otherwise the value is an empty one, as vxList::front().
    T& operator*() const {
        return VXCHECK(mCurrentItem != NULL) ? **GetItem() : vxList<T>::NoValue();
    }

    /// Returns the item it stands on, or null.
    vxListItem<T>* GetItem() const { return static_cast<vxListItem<T>*>(mCurrentItem); }
};
