// A chain of messages between two ends under one lock. Messages are allocated and, once taken, freed
// outside of it. The head is atomic only for those who look at it without the lock.

#include "vx/MessageQueue.h"

#include <libvxLog/Log.h>

#include <new>

#define VXTRACE(...) VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_THREADING, __VA_ARGS__)

vxMessageQueue::vxMessageQueue()
    : mMutex(vxMutex_New()), mCondition(vxCondition_New()), mHead(NULL), mTail(NULL) {
    VXTRACE("vxMessageQueue::vxMessageQueue()\n");
}

vxMessageQueue::~vxMessageQueue() {
    VXTRACE("vxMessageQueue::~vxMessageQueue()\n");
    if (!IsEmpty()) {
        Flush();
    }
    vxMutex_Delete(mMutex);
    vxCondition_Delete(mCondition);
}

int vxMessageQueue::Post(int aMessage, void* aParam1, void* aParam2) {
    VXTRACE("vxMessageQueue::Post(aMessage=%ld, aParam1=%p, aParam2=%p)\n",
            static_cast<long>(aMessage), aParam1, aParam2);
    auto* theMessage = new (std::nothrow) vxMessage(aMessage, aParam1, aParam2);
    if (theMessage == NULL) {
        return 1;
    }
    if (vxMutex_Lock(mMutex) != 0) {
        delete theMessage;
        return 1;
    }
    if (IsEmpty()) {
        mHead.store(theMessage, std::memory_order_relaxed);
    }
    if (mTail != NULL) {
        mTail->mNext = theMessage;
    }
    mTail = theMessage;
    vxCondition_Signal(mCondition);
    vxMutex_Unlock(mMutex);
    return 0;
}

vxMessage* vxMessageQueue::Unlink() {
    vxMessage* theMessage = mHead.load(std::memory_order_relaxed);
    if (theMessage != NULL) {
        mHead.store(theMessage->mNext, std::memory_order_relaxed);
        if (theMessage->mNext == NULL) {
            mTail = NULL;
        }
    }
    return theMessage;
}

vxMessage* vxMessageQueue::Get() {
    VXTRACE("vxMessageQueue::Get()\n");
    vxMutex_Lock(mMutex);
    if (IsEmpty()) {
        vxCondition_Wait(mCondition, mMutex);
    }
    vxMessage* theMessage = Unlink();
    vxMutex_Unlock(mMutex);
    VXTRACE("vxMessageQueue::Get: return vxMessage %p\n", static_cast<void*>(theMessage));
    return theMessage;
}

int vxMessageQueue::Get(vxMessage* aMessage) {
    VXTRACE("vxMessageQueue::Get(aMessage=%p)\n", static_cast<void*>(aMessage));
    vxMessage* theMessage = Get();
    if (theMessage == NULL) {
        return 1;
    }
    if (aMessage != NULL) {
        *aMessage = *theMessage;
    }
    delete theMessage;
    return 0;
}

void vxMessageQueue::Cancel() {
    VXTRACE("vxMessageQueue::Cancel()\n");
    vxMutex_Lock(mMutex);
    vxCondition_Signal(mCondition);
    vxMutex_Unlock(mMutex);
}

void vxMessageQueue::Flush() {
    VXTRACE("vxMessageQueue::Flush()\n");
    vxMutex_Lock(mMutex);
    while (vxMessage* theMessage = Unlink()) {
        delete theMessage;
    }
    vxMutex_Unlock(mMutex);
}
