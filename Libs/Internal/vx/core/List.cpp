// The list keeps its live iterators in a singly linked registry, youngest first. Iterators live on
// the stack, so the one that goes is nearly always the first of the registry.

#include "vx/List.h"

vxBaseListItem::~vxBaseListItem() = default;

void vxBaseListItem::Remove(vxBaseList* aList) {
    (mPrev != NULL ? mPrev->mNext : aList->mBegin) = mNext;
    (mNext != NULL ? mNext->mPrev : aList->mEnd) = mPrev;
    --aList->mSize;
}

vxBaseList::~vxBaseList() {
    CloseIterators();
    while (mBegin != NULL) {
        vxBaseListItem* theItem = mBegin;
        mBegin = theItem->mNext;
        delete theItem;
    }
}

void vxBaseList::Remove(vxBaseListItem* aListItem) {
    if (VXCHECK(aListItem != NULL) && VXCHECK(IsMember(aListItem))) {
        Unlink(aListItem);
        delete aListItem;
    }
}

void vxBaseList::Detach(vxBaseListItem* aListItem) {
    if (VXCHECK(aListItem != NULL) && VXCHECK(IsMember(aListItem))) {
        Unlink(aListItem);
        aListItem->mNext = NULL;
        aListItem->mPrev = NULL;
    }
}

void vxBaseList::PushFront(vxBaseListItem* aListItem) {
    if (!VXCHECK(aListItem != NULL) || !VXCHECK(IsPushable(aListItem))) {
        return;
    }
    aListItem->mNext = mBegin;
    (mBegin != NULL ? mBegin->mPrev : mEnd) = aListItem;
    mBegin = aListItem;
    ++mSize;
}

void vxBaseList::PushBack(vxBaseListItem* aListItem) {
    if (!VXCHECK(aListItem != NULL) || !VXCHECK(IsPushable(aListItem))) {
        return;
    }
    aListItem->mPrev = mEnd;
    (mEnd != NULL ? mEnd->mNext : mBegin) = aListItem;
    mEnd = aListItem;
    ++mSize;
}

void vxBaseList::PushAfter(vxBaseListItem* aListItem, vxBaseListItem* anAfter) {
    if (anAfter == NULL) {
        VXASSERT(mSize == 0);
    }
    if (anAfter == NULL || anAfter == mEnd || !VXCHECK(IsMember(anAfter))) {
        PushBack(aListItem);
        return;
    }
    if (!VXCHECK(aListItem != NULL) || !VXCHECK(IsPushable(aListItem))) {
        return;
    }
    aListItem->mPrev = anAfter;
    aListItem->mNext = anAfter->mNext;
    anAfter->mNext->mPrev = aListItem;
    anAfter->mNext = aListItem;
    ++mSize;
}

void vxBaseList::PushBefore(vxBaseListItem* aListItem, vxBaseListItem* aBefore) {
    if (aBefore == NULL) {
        VXASSERT(mSize == 0);
    }
    if (aBefore == NULL || aBefore == mBegin || !VXCHECK(IsMember(aBefore))) {
        PushFront(aListItem);
        return;
    }
    PushAfter(aListItem, aBefore->mPrev);
}

void vxBaseList::AttachIterator(vxBaseListIterator* anIterator) {
    anIterator->mNextIterator = mFirstIterator;
    mFirstIterator = anIterator;
}

void vxBaseList::DetachIterator(vxBaseListIterator* anIterator) {
    vxBaseListIterator** theLink = &mFirstIterator;
    while (*theLink != NULL && *theLink != anIterator) {
        theLink = &(*theLink)->mNextIterator;
    }
    if (*theLink != NULL) {
        *theLink = anIterator->mNextIterator;
    }
}

void vxBaseList::ItemRemoved(vxBaseListItem* aListItem) {
    for (vxBaseListIterator* theIterator = mFirstIterator; theIterator != NULL;
         theIterator = theIterator->mNextIterator) {
        if (theIterator->mCurrentItem == aListItem) {
            theIterator->mCurrentItem = aListItem->mPrev;
        }
    }
}

void vxBaseList::CloseIterators() {
    while (mFirstIterator != NULL) {
        vxBaseListIterator* theIterator = mFirstIterator;
        mFirstIterator = theIterator->mNextIterator;
        theIterator->ListDeleted();
    }
}

// Neighbors that point back to the item, or the list's ends where it has none, prove membership.
bool vxBaseList::IsMember(const vxBaseListItem* aListItem) const {
    const vxBaseListItem* thePrev = aListItem->mPrev;
    const vxBaseListItem* theNext = aListItem->mNext;
    return (thePrev != NULL ? thePrev->mNext : mBegin) == aListItem &&
           (theNext != NULL ? theNext->mPrev : mEnd) == aListItem;
}

// The only item of a list has null links too, but is its begin.
bool vxBaseList::IsPushable(const vxBaseListItem* aListItem) const {
    return aListItem->mNext == NULL && aListItem->mPrev == NULL && aListItem != mBegin;
}

void vxBaseList::Unlink(vxBaseListItem* aListItem) {
    aListItem->Remove(this);
    ItemRemoved(aListItem);
}

vxBaseListIterator::vxBaseListIterator(vxBaseList& aList) : mList(&aList) {
    aList.AttachIterator(this);
}

vxBaseListIterator::~vxBaseListIterator() {
    if (mList != NULL) {
        mList->DetachIterator(this);
    }
}

void vxBaseListIterator::ListDeleted() {
    mList = NULL;
    mCurrentItem = NULL;
    mNextIterator = NULL;
}

vxBaseListForwardIterator::~vxBaseListForwardIterator() = default;
vxBaseListReverseIterator::~vxBaseListReverseIterator() = default;
