// Sorted queues of deadlines on a wrapping counter.
//
// Two deadlines can only be compared as remaining times, against one tick. As time passes remaining
// times shrink alike until they reach 0, so a queue that is sorted stays sorted.

#include "vx/Timeout.h"

vxTimeout::vxTimeout() : mStart(0), mDuration(0) {
    vxDLList_InitNode(this);
}

vxTimeout::~vxTimeout() {
    vxDLList_Detach(this);
}

vxTimeoutQueue::vxTimeoutQueue() {
    vxDLList_Init(&mTimeoutQueue);
}

vxTimeoutQueue::~vxTimeoutQueue() {
    while (_vxDLListNode* theNode = vxDLList_Head(&mTimeoutQueue)) {
        vxDLList_Detach(theNode);
    }
}

vxTimeout* vxTimeoutQueue::FirstExpiringTimeout() {
    return static_cast<vxTimeout*>(vxDLList_Head(&mTimeoutQueue));
}

void vxTimeoutQueue::OnTimeouts() {}

void vxTimeoutQueue::TimeoutStart(vxTimeout* aTimeout, unsigned int aMS) {
    TimeoutCancel(aTimeout);
    aTimeout->Start(aMS);
    vxDLList_InsertBefore(FindSuccessor(aTimeout->mStart, aMS), aTimeout);
}

/// Returns the first node with more than `aMS` left, or the head of the list.
///
/// Both ends are searched in turn: most time-outs are started either for sooner or for later than
/// nearly all others.
_vxDLListNode* vxTimeoutQueue::FindSuccessor(uint32_t aTick, unsigned int aMS) {
    _vxDLListNode* theFront = mTimeoutQueue.mNext;
    _vxDLListNode* theBack = mTimeoutQueue.mPrev;
    while (theFront != &mTimeoutQueue) {
        if (static_cast<vxTimeout*>(theFront)->RemainingAt(aTick) > aMS) {
            return theFront;
        }
        if (static_cast<vxTimeout*>(theBack)->RemainingAt(aTick) <= aMS) {
            return theBack->mNext;
        }
        theFront = theFront->mNext;
        theBack = theBack->mPrev;
    }
    return &mTimeoutQueue;
}

void vxTimeoutQueue::TimeoutCancel(vxTimeout* aTimeout) {
    vxDLList_Detach(aTimeout);
}

void vxTimeoutQueue::HandleExpiredTimeouts() {
    const vxTimeout* theTimeout = FirstExpiringTimeout();
    if (theTimeout != NULL && theTimeout->IsExpired()) {
        OnTimeouts();
    }
}
