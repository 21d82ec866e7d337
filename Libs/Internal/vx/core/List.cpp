// The list keeps its live iterators in a singly linked registry, youngest first. Iterators live on
// the stack, so the one that goes is nearly always the first of the registry.
//
// Lists are filled and emptied all the time with items of a few sizes. Each thread therefore keeps
// the blocks of items that it frees, up to a limit, and hands them out again without asking malloc.

#include "vx/List.h"

#include <new>

namespace {

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif

// A sanitizer that looks for the use of freed memory sees every block freed for good.
#if defined(__SANITIZE_ADDRESS__)
constexpr size_t kvxItem_KeptBytes = 0;
#else
constexpr size_t kvxItem_KeptBytes = 32 * 1024;  // for each thread and size
#endif
constexpr size_t kvxItem_SizeStep = 16;
constexpr size_t kvxItem_Sizes = 4;  // 16, 32, 48 and 64 bytes; larger blocks are not kept

struct vxFreeBlock {
    vxFreeBlock* mNext;
};

// The free blocks of one size. Plain data, so that it can be used to the very end of a thread.
struct vxFreeBlocks {
    vxFreeBlock* mFirst;
    size_t mRoom;  // bytes that may still be kept
};

#define VX_THREAD_LOCAL static thread_local __attribute__((tls_model("initial-exec")))
VX_THREAD_LOCAL vxFreeBlocks sFreeBlocks[kvxItem_Sizes];
VX_THREAD_LOCAL bool sfKeeps = false;  // the keeper of this thread has been made

// Keeps blocks from the first one that its thread frees until the thread ends.
struct vxBlockKeeper {
    vxBlockKeeper() {
        for (vxFreeBlocks& theBlocks : sFreeBlocks) {
            theBlocks.mRoom = kvxItem_KeptBytes;
        }
    }
    ~vxBlockKeeper() {
        for (vxFreeBlocks& theBlocks : sFreeBlocks) {
            theBlocks.mRoom = 0;
            while (theBlocks.mFirst != NULL) {
                vxFreeBlock* theBlock = theBlocks.mFirst;
                theBlocks.mFirst = theBlock->mNext;
                ::operator delete(theBlock);
            }
        }
    }
};

void vxStartKeeping() {
    if (!sfKeeps) {
        sfKeeps = true;
        static thread_local vxBlockKeeper sKeeper;
        static_cast<void>(sKeeper);
    }
}

size_t vxSizeIndex(size_t aSize) {
    return (aSize - 1) / kvxItem_SizeStep;
}

size_t vxBlockSize(size_t anIndex) {
    return (anIndex + 1) * kvxItem_SizeStep;
}

}  // namespace

// NOLINTNEXTLINE(*-new-delete-overloads,cert-dcl54-cpp)
void* vxBaseListItem::operator new(size_t aSize) {
    const size_t theIndex = vxSizeIndex(aSize);
    if (theIndex >= kvxItem_Sizes) {
        return ::operator new(aSize);
    }
    vxFreeBlocks& theBlocks = sFreeBlocks[theIndex];
    vxFreeBlock* theBlock = theBlocks.mFirst;
    if (theBlock == NULL) {
        return ::operator new(vxBlockSize(theIndex));
    }
    theBlocks.mFirst = theBlock->mNext;
    theBlocks.mRoom += vxBlockSize(theIndex);
    return theBlock;
}

void vxBaseListItem::operator delete(void* aBlock, size_t aSize) {
    const size_t theIndex = vxSizeIndex(aSize);
    if (theIndex >= kvxItem_Sizes) {
        ::operator delete(aBlock);
        return;
    }
    vxFreeBlocks& theBlocks = sFreeBlocks[theIndex];
    if (theBlocks.mRoom < vxBlockSize(theIndex)) {
        vxStartKeeping();
        if (theBlocks.mRoom < vxBlockSize(theIndex)) {
            ::operator delete(aBlock);
            return;
        }
    }
    theBlocks.mRoom -= vxBlockSize(theIndex);
    theBlocks.mFirst = new (aBlock) vxFreeBlock{theBlocks.mFirst};
}

vxBaseList::~vxBaseList() {
    CloseIterators();
    while (mBegin != NULL) {
        // An item that goes may itself take others out of the list, which therefore stays whole.
        vxBaseListItem* theItem = mBegin;
        theItem->Remove(this);
        delete theItem;
    }
}

void vxBaseList::Remove(vxBaseListItem* aListItem) {
    if (VXCHECK(aListItem != NULL) && VXCHECK(IsMember(aListItem))) {
        aListItem->Remove(this);
        ItemRemoved(aListItem);
        delete aListItem;
    }
}

void vxBaseList::Detach(vxBaseListItem* aListItem) {
    if (VXCHECK(aListItem != NULL) && VXCHECK(IsMember(aListItem))) {
        aListItem->Remove(this);
        ItemRemoved(aListItem);
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
