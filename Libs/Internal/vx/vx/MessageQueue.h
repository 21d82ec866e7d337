#pragma once

#include <libvxOS/Condition.h>
#include <libvxOS/Mutex.h>

#include <atomic>
#include <cstdint>

#include "vx/Api.h"

/// A message: a code and two parameters, whose meaning its sender and reader agree on.
struct vxMessage {
    vxMessage() : mNext(NULL), mMessage(0), mParam1(NULL), mParam2(NULL) {}
    /// A message in no queue.
    vxMessage(int aMessage, void* aParam1, void* aParam2)
        : mNext(NULL), mMessage(aMessage), mParam1(aParam1), mParam2(aParam2) {}

    vxMessage* mNext;  ///< the message behind it in its queue, or null
    int32_t mMessage;  ///< code
    void* mParam1;     ///< neither looked at nor freed by a queue
    void* mParam2;     ///< as mParam1
};

/// Messages on their way from any number of threads to one.
///
///     // Any thread
///     theQueue.Post(kMessage_Scanned, theResult, NULL);
///
///     // The reader
///     vxMessage theMessage;
///     while (theQueue.Get(&theMessage) == 0) {
///         Handle(theMessage);
///     }
///
/// The queue has no limit. Every operation is traced at debug level, module VXLOG_M_THREADING.
///
/// Owner:    the queue owns the messages in it, not what their parameters point to.
/// Threads:  any, guarded by the queue's mutex; one thread reads. Of several readers one may be
///           woken for a message that another has taken, and gets none.
class VX_EXPORT vxMessageQueue {
public:
    /// Fails:    not reported; without mutex and condition every Post() fails and no Get() blocks.
    vxMessageQueue();

    /// Frees the messages that are left; nobody may wait in Get().
    virtual ~vxMessageQueue();

    vxMessageQueue(const vxMessageQueue&) = delete;
    vxMessageQueue& operator=(const vxMessageQueue&) = delete;

    /// Puts a message behind the others and wakes the reader; never waits for it.
    ///
    /// Messages of one thread come out in the order in which it posted them.
    ///
    /// Fails:    1 when memory is short or the mutex cannot be locked; 0 means success.
    /// Cost:     one allocation.
    int Post(int aMessage, void* aParam1, void* aParam2);

    /// Takes the first message, and waits for one if there is none.
    ///
    /// It waits once: it returns null if there is still no message when it wakes up, which happens
    /// after Cancel(), and may happen for no reason.
    ///
    /// Owner:    the caller, who releases the message with delete.
    vxMessage* Get();

    /// As Get(); copies the message to `aMessage` and frees it. The copy's mNext is what it was in
    /// the queue, and not to be followed. With a null `aMessage` the message is lost.
    ///
    /// Fails:    1 when there is none, and `aMessage` is untouched; 0 means success.
    int Get(vxMessage* aMessage);

    /// Lets a reader that waits return without a message; it is not remembered for the next one.
    void Cancel();

    /// Tells whether there is no message: a hint, for others may post and get meanwhile.
    ///
    /// Threads:  any, atomic.
    bool IsEmpty() const { return mHead.load(std::memory_order_relaxed) == NULL; }

    /// Frees every message in the queue, which can be used again.
    void Flush();

private:
    vxMessage* Unlink();

    vxOSMutex* mMutex;          // owned; guards everything below; null if it could not be created
    vxOSCondition* mCondition;  // owned; null if it could not be created
    std::atomic<vxMessage*> mHead;  // owned: the next to get; changed under mMutex
    vxMessage* mTail;               // the last one of the chain, null exactly when mHead is
};
