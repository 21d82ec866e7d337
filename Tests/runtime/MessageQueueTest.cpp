#include "vx/MessageQueue.h"

#include <gmock/gmock.h>
#include <libvxLog/Handlers.h>
#include <libvxLog/Log.h>

#include <atomic>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "support/Latch.h"
#include "support/Reports.h"
#include "support/ScriptedLocks.h"

namespace {

bool sfNoMemory = false;

}  // namespace

// Memory for a message that can fail; the form without nothrow stays the language's.
void* operator new(size_t aSize, const std::nothrow_t&) noexcept {
    return sfNoMemory ? nullptr : ::operator new(aSize);
}

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

static_assert(!std::is_copy_constructible_v<vxMessageQueue>);
static_assert(!std::is_copy_assignable_v<vxMessageQueue>);
static_assert(std::has_virtual_destructor_v<vxMessageQueue>);
static_assert(!std::is_polymorphic_v<vxMessage>);
static_assert(std::is_same_v<decltype(vxMessage::mMessage), int32_t>);

void* Pointer(uintptr_t aValue) {
    return reinterpret_cast<void*>(aValue);
}

std::string Text(const void* aPointer) {
    char theText[32];
    snprintf(theText, sizeof(theText), "%p", aPointer);
    return theText;
}

TEST(MessageQueueTest, MessagesAreEmptyOrHoldWhatTheyAreGiven) {
    const vxMessage theEmpty;
    EXPECT_EQ(theEmpty.mNext, nullptr);
    EXPECT_EQ(theEmpty.mMessage, 0);
    EXPECT_EQ(theEmpty.mParam1, nullptr);
    EXPECT_EQ(theEmpty.mParam2, nullptr);

    const vxMessage theMessage(-5, Pointer(16), Pointer(32));
    EXPECT_EQ(theMessage.mNext, nullptr);
    EXPECT_EQ(theMessage.mMessage, -5);
    EXPECT_EQ(theMessage.mParam1, Pointer(16));
    EXPECT_EQ(theMessage.mParam2, Pointer(32));
}

TEST(MessageQueueTest, MessagesComeOutInTheOrderOfPosting) {
    vxMessageQueue theQueue;
    EXPECT_TRUE(theQueue.IsEmpty());
    EXPECT_EQ(theQueue.Post(1, Pointer(16), Pointer(32)), 0);
    EXPECT_EQ(theQueue.Post(2, nullptr, nullptr), 0);
    EXPECT_EQ(theQueue.Post(-3, Pointer(48), nullptr), 0);
    EXPECT_FALSE(theQueue.IsEmpty());

    const std::unique_ptr<vxMessage> theFirst(theQueue.Get());
    const std::unique_ptr<vxMessage> theSecond(theQueue.Get());
    EXPECT_FALSE(theQueue.IsEmpty());
    const std::unique_ptr<vxMessage> theThird(theQueue.Get());
    EXPECT_TRUE(theQueue.IsEmpty());
    ASSERT_NE(theFirst, nullptr);
    ASSERT_NE(theSecond, nullptr);
    ASSERT_NE(theThird, nullptr);
    EXPECT_EQ(theFirst->mMessage, 1);
    EXPECT_EQ(theFirst->mParam1, Pointer(16));
    EXPECT_EQ(theFirst->mParam2, Pointer(32));
    EXPECT_EQ(theFirst->mNext, theSecond.get());
    EXPECT_EQ(theSecond->mMessage, 2);
    EXPECT_EQ(theSecond->mNext, theThird.get());
    EXPECT_EQ(theThird->mMessage, -3);
    EXPECT_EQ(theThird->mNext, nullptr);
}

TEST(MessageQueueTest, CopyHoldsAllFourFields) {
    vxMessageQueue theQueue;
    theQueue.Post(INT32_MIN, Pointer(16), Pointer(32));
    theQueue.Post(INT32_MAX, nullptr, nullptr);
    vxMessage theFirst;
    EXPECT_EQ(theQueue.Get(&theFirst), 0);
    EXPECT_EQ(theFirst.mMessage, INT32_MIN);
    EXPECT_EQ(theFirst.mParam1, Pointer(16));
    EXPECT_EQ(theFirst.mParam2, Pointer(32));

    const vxMessage* theNext = theFirst.mNext;
    const std::unique_ptr<vxMessage> theSecond(theQueue.Get());
    EXPECT_EQ(theNext, theSecond.get());
    EXPECT_EQ(theSecond->mMessage, INT32_MAX);
}

TEST(MessageQueueTest, MessageWithoutATargetIsTakenAndLost) {
    vxMessageQueue theQueue;
    theQueue.Post(1, nullptr, nullptr);
    EXPECT_EQ(theQueue.Get(nullptr), 0);
    EXPECT_TRUE(theQueue.IsEmpty());
}

TEST(MessageQueueTest, QueueIsUsedAgainAfterItHasBeenEmptied) {
    vxMessageQueue theQueue;
    for (int i = 0; i < 5; ++i) {
        theQueue.Post(i, nullptr, nullptr);
        theQueue.Post(i + 100, nullptr, nullptr);
        vxMessage theMessage;
        EXPECT_EQ(theQueue.Get(&theMessage), 0);
        EXPECT_EQ(theMessage.mMessage, i);
        EXPECT_EQ(theQueue.Get(&theMessage), 0);
        EXPECT_EQ(theMessage.mMessage, i + 100);
        EXPECT_TRUE(theQueue.IsEmpty());
    }
}

// Waiting

TEST(MessageQueueTest, ReaderDoesNotWaitWhereThereIsAMessage) {
    vxtest::ScriptedLocks theLocks;
    vxMessageQueue theQueue;
    theQueue.Post(1, nullptr, nullptr);
    vxMessage theMessage;
    EXPECT_EQ(theQueue.Get(&theMessage), 0);
    EXPECT_THAT(theLocks.mWaits, IsEmpty());
}

TEST(MessageQueueTest, ReaderWaitsOnceWithoutLimitAndLooksOnceMore) {
    vxtest::ScriptedLocks theLocks;
    vxMessageQueue theQueue;
    theLocks.mWaitResult = 0;
    EXPECT_EQ(theQueue.Get(), nullptr);
    EXPECT_THAT(theLocks.mWaits, ElementsAre("Wait"));

    theLocks.mInWait = [&] { theQueue.Post(4, nullptr, nullptr); };
    const std::unique_ptr<vxMessage> theMessage(theQueue.Get());
    ASSERT_NE(theMessage, nullptr);
    EXPECT_EQ(theMessage->mMessage, 4);
    EXPECT_THAT(theLocks.mWaits, ElementsAre("Wait", "Wait"));
}

TEST(MessageQueueTest, WaitThatFailsIsNotLookedAt) {
    vxtest::ScriptedLocks theLocks;
    vxMessageQueue theQueue;
    theLocks.mWaitResult = 22;
    theLocks.mInWait = [&] { theQueue.Post(4, nullptr, nullptr); };
    vxMessage theMessage;
    EXPECT_EQ(theQueue.Get(&theMessage), 0);
    EXPECT_EQ(theMessage.mMessage, 4);
}

TEST(MessageQueueTest, SignalIsGivenUnderTheLock) {
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoteCalls = true;
    vxMessageQueue theQueue;
    theQueue.Post(1, nullptr, nullptr);
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Signal", "Unlock"));
    theLocks.mCalls.clear();
    theQueue.Cancel();
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Signal", "Unlock"));
}

// Lets `aWake` end a wait for a message that another thread is in.
template <typename Wake>
void WakeWaitingReader(vxMessageQueue& aQueue, vxMessage& aMessage, int& aResult, Wake aWake) {
    vxtest::Reports theReports;
    std::atomic<bool> theIsBack{false};
    std::thread theReader([&] {
        aResult = aQueue.Get(&aMessage);
        theIsBack = true;
    });
    while (theReports.LogTexts().size() < 2) {  // until the reader is about to lock the queue
        std::this_thread::yield();
    }
    while (!theIsBack) {
        aWake();
        std::this_thread::yield();
    }
    theReader.join();
}

TEST(MessageQueueTest, EveryPostSignals) {
    vxtest::ScriptedLocks theLocks;
    vxMessageQueue theQueue;
    theQueue.Post(1, nullptr, nullptr);
    theLocks.mfNoteCalls = true;
    theQueue.Post(2, nullptr, nullptr);
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Signal", "Unlock"));
}

TEST(MessageQueueTest, PostEndsTheWaitOfAReader) {
    vxMessageQueue theQueue;
    vxMessage theMessage;
    int theResult = -1;
    bool theHasPosted = false;
    WakeWaitingReader(theQueue, theMessage, theResult, [&] {
        if (!theHasPosted) {
            theHasPosted = true;
            theQueue.Post(9, Pointer(16), nullptr);
        }
    });
    EXPECT_EQ(theResult, 0);
    EXPECT_EQ(theMessage.mMessage, 9);
    EXPECT_EQ(theMessage.mParam1, Pointer(16));
    EXPECT_TRUE(theQueue.IsEmpty());
}

TEST(MessageQueueTest, CancelEndsTheWaitOfAReaderWithoutAMessage) {
    vxMessageQueue theQueue;
    vxMessage theMessage(7, Pointer(16), Pointer(32));
    theMessage.mNext = &theMessage;
    int theResult = -1;
    // Cancel is repeated: it counts only once the reader is asleep.
    WakeWaitingReader(theQueue, theMessage, theResult, [&] { theQueue.Cancel(); });
    EXPECT_EQ(theResult, 1);
    EXPECT_EQ(theMessage.mNext, &theMessage);
    EXPECT_EQ(theMessage.mMessage, 7);
    EXPECT_EQ(theMessage.mParam1, Pointer(16));
    EXPECT_EQ(theMessage.mParam2, Pointer(32));
    EXPECT_TRUE(theQueue.IsEmpty());
}

TEST(MessageQueueTest, CancelWithoutAReaderIsNotRemembered) {
    vxtest::ScriptedLocks theLocks;
    vxMessageQueue theQueue;
    theQueue.Cancel();
    theLocks.mWaitResult = 0;
    theLocks.mInWait = [&] { theQueue.Post(4, nullptr, nullptr); };
    vxMessage theMessage;
    EXPECT_EQ(theQueue.Get(&theMessage), 0);
    EXPECT_THAT(theLocks.mWaits, ElementsAre("Wait"));
}

TEST(MessageQueueTest, CancelKeepsMessages) {
    vxMessageQueue theQueue;
    theQueue.Post(4, nullptr, nullptr);
    theQueue.Cancel();
    vxMessage theMessage;
    EXPECT_EQ(theQueue.Get(&theMessage), 0);
    EXPECT_EQ(theMessage.mMessage, 4);
}

// Failure

TEST(MessageQueueTest, PostFailsWhereMemoryIsShort) {
    vxtest::Reports theReports;
    vxMessageQueue theQueue;
    theReports.Clear();
    sfNoMemory = true;
    EXPECT_EQ(theQueue.Post(1, nullptr, nullptr), 1);
    sfNoMemory = false;
    EXPECT_TRUE(theQueue.IsEmpty());
    EXPECT_THAT(theReports.LogTexts(), testing::SizeIs(1));  // the trace
    EXPECT_THAT(theReports.FatalErrors(), IsEmpty());
    EXPECT_EQ(theQueue.Post(2, nullptr, nullptr), 0);
    EXPECT_EQ(theQueue.Get(nullptr), 0);
}

TEST(MessageQueueTest, PostFailsWhereTheLockFails) {
    // Memory checkers see to it that the message is freed.
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    vxMessageQueue theQueue;
    theReports.Clear();
    theLocks.mLockResult = 22;
    EXPECT_EQ(theQueue.Post(1, nullptr, nullptr), 1);
    theLocks.mLockResult.reset();
    EXPECT_TRUE(theQueue.IsEmpty());
    EXPECT_THAT(theReports.LogTexts(), testing::SizeIs(1));
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(MessageQueueTest, SignalAndUnlockThatFailAreNotLookedAt) {
    vxtest::ScriptedLocks theLocks;
    vxMessageQueue theQueue;
    theLocks.mSignalResult = 22;
    EXPECT_EQ(theQueue.Post(1, nullptr, nullptr), 0);
    vxMessage theMessage;
    EXPECT_EQ(theQueue.Get(&theMessage), 0);
    EXPECT_EQ(theMessage.mMessage, 1);
}

TEST(MessageQueueTest, ReaderTakesItsMessageThoughTheLockFails) {
    vxtest::ScriptedLocks theLocks;
    vxMessageQueue theQueue;
    theQueue.Post(1, nullptr, nullptr);
    theLocks.mLockResult = 22;
    vxMessage theMessage;
    EXPECT_EQ(theQueue.Get(&theMessage), 0);
    EXPECT_EQ(theMessage.mMessage, 1);
}

TEST(MessageQueueTest, QueueWithoutAMutexRefusesEverything) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoMutex = true;
    vxMessageQueue theQueue;
    EXPECT_EQ(theQueue.Post(1, nullptr, nullptr), 1);
    EXPECT_EQ(theQueue.Get(), nullptr);
    vxMessage theMessage;
    EXPECT_EQ(theQueue.Get(&theMessage), 1);
    theQueue.Cancel();
    theQueue.Flush();
    EXPECT_TRUE(theQueue.IsEmpty());
    EXPECT_THAT(theReports.FatalErrors(), IsEmpty());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(MessageQueueTest, QueueWithoutAConditionNeverWaits) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoCondition = true;
    vxMessageQueue theQueue;
    EXPECT_EQ(theQueue.Get(), nullptr);
    EXPECT_EQ(theQueue.Post(1, nullptr, nullptr), 0);
    vxMessage theMessage;
    EXPECT_EQ(theQueue.Get(&theMessage), 0);
    EXPECT_EQ(theMessage.mMessage, 1);
    theQueue.Cancel();
    EXPECT_THAT(theReports.FatalErrors(), IsEmpty());
}

// Flushing and the end

TEST(MessageQueueTest, FlushFreesEveryMessageAndTheQueueGoesOn) {
    vxMessageQueue theQueue;
    theQueue.Flush();
    EXPECT_TRUE(theQueue.IsEmpty());
    for (int i = 0; i < 3; ++i) {
        theQueue.Post(i, nullptr, nullptr);
    }
    theQueue.Flush();
    EXPECT_TRUE(theQueue.IsEmpty());
    theQueue.Post(10, nullptr, nullptr);
    theQueue.Post(11, nullptr, nullptr);
    vxMessage theMessage;
    EXPECT_EQ(theQueue.Get(&theMessage), 0);
    EXPECT_EQ(theMessage.mMessage, 10);
    EXPECT_EQ(theQueue.Get(&theMessage), 0);
    EXPECT_EQ(theMessage.mMessage, 11);
}

TEST(MessageQueueTest, DestructionFreesMessagesButNotWhatTheyPointTo) {
    int theFirst = 1;
    int theSecond = 2;
    {
        vxMessageQueue theQueue;
        for (int i = 0; i < 100000; ++i) {
            theQueue.Post(i, &theFirst, &theSecond);
        }
    }
    EXPECT_EQ(theFirst, 1);
    EXPECT_EQ(theSecond, 2);
}

// Traces

TEST(MessageQueueTest, EveryOperationIsTraced) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    std::string theTaken;
    vxMessage theCopy;
    {
        vxMessageQueue theQueue;
        theQueue.Post(INT32_MIN, Pointer(0x1230), nullptr);
        vxMessage* theMessage = theQueue.Get();
        theTaken = Text(theMessage);
        delete theMessage;
        theLocks.mWaitResult = 0;
        theQueue.Get(&theCopy);
        theQueue.Cancel();
        theQueue.Flush();
    }
    const std::string theNone = Text(nullptr);
    EXPECT_THAT(
        theReports.LogTexts(),
        ElementsAre(
            "vxMessageQueue::vxMessageQueue()\n",
            "vxMessageQueue::Post(aMessage=-2147483648, aParam1=0x1230, aParam2=" + theNone + ")\n",
            "vxMessageQueue::Get()\n", "vxMessageQueue::Get: return vxMessage " + theTaken + "\n",
            "vxMessageQueue::Get(aMessage=" + Text(&theCopy) + ")\n", "vxMessageQueue::Get()\n",
            "vxMessageQueue::Get: return vxMessage " + theNone + "\n", "vxMessageQueue::Cancel()\n",
            "vxMessageQueue::Flush()\n", "vxMessageQueue::~vxMessageQueue()\n"));
    for (const vxtest::LogRecord& theRecord : theReports.Records()) {
        EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_DEBUG);
        EXPECT_EQ(theRecord.mModule, VXLOG_M_THREADING);
        EXPECT_THAT(theRecord.mFile, EndsWith("/MessageQueue.cpp"));
    }
}

TEST(MessageQueueTest, TracesAreWrittenOutsideTheLock) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    std::vector<size_t> theTracesAtUnlock;
    vxMessageQueue theQueue;
    theLocks.mAtUnlock = [&] { theTracesAtUnlock.push_back(theReports.LogTexts().size()); };
    theReports.Clear();
    theQueue.Post(1, nullptr, nullptr);
    delete theQueue.Get();
    theQueue.Cancel();
    theQueue.Flush();
    EXPECT_THAT(theTracesAtUnlock, ElementsAre(1U, 2U, 4U, 5U));
    EXPECT_EQ(theReports.LogTexts().size(), 5U);
}

TEST(MessageQueueTest, DestructionFlushesAQueueThatIsNotEmpty) {
    vxtest::Reports theReports;
    {
        vxMessageQueue theQueue;
        theQueue.Post(1, nullptr, nullptr);
        theReports.Clear();
    }
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("vxMessageQueue::~vxMessageQueue()\n", "vxMessageQueue::Flush()\n"));
}

TEST(MessageQueueTest, NothingIsTracedBelowDebugLevel) {
    vxtest::Reports theReports;
    vxLog_SetLevel(VXLOG_M_THREADING, VXLOGLEVEL_INFO);
    {
        vxMessageQueue theQueue;
        theQueue.Post(1, nullptr, nullptr);
        theQueue.Post(2, nullptr, nullptr);
        theQueue.Get(nullptr);
        theQueue.Cancel();
    }
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

// Several threads

TEST(MessageQueueTest, MessagesOfEachThreadKeepTheirOrder) {
    constexpr int kThreads = 4;
    constexpr int kMessages = 5000;
    vxMessageQueue theQueue;
    int theSenders[kThreads] = {};
    std::vector<std::thread> theThreads;
    for (int& theSender : theSenders) {
        theThreads.emplace_back([&theQueue, &theSender] {
            for (int i = 0; i < kMessages; ++i) {
                EXPECT_EQ(theQueue.Post(i, &theSender, nullptr), 0);
            }
        });
    }
    for (int theLeft = kThreads * kMessages; theLeft > 0;) {
        vxMessage theMessage;
        if (theQueue.Get(&theMessage) == 0) {
            // Each sender's word counts its messages that have come out; only this thread uses it.
            int& theExpected = *static_cast<int*>(theMessage.mParam1);
            ASSERT_EQ(theMessage.mMessage, theExpected);
            ++theExpected;
            --theLeft;
        }
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_THAT(theSenders, Each(5000));
    EXPECT_TRUE(theQueue.IsEmpty());
}

TEST(MessageQueueTest, SeveralReadersGetEachMessageOnce) {
    constexpr int kMessages = 4000;
    constexpr int kEnd = -1;
    vxMessageQueue theQueue;
    std::vector<std::atomic<int>> theCounts(kMessages);
    std::vector<std::thread> theReaders;
    for (int i = 0; i < 3; ++i) {
        theReaders.emplace_back([&] {
            for (;;) {
                vxMessage theMessage;
                if (theQueue.Get(&theMessage) == 0) {
                    if (theMessage.mMessage == kEnd) {
                        return;
                    }
                    ++theCounts[static_cast<size_t>(theMessage.mMessage)];
                }
            }
        });
    }
    for (int i = 0; i < kMessages; ++i) {
        theQueue.Post(i, nullptr, nullptr);
    }
    for (size_t i = 0; i < theReaders.size(); ++i) {
        theQueue.Post(kEnd, nullptr, nullptr);
    }
    for (std::thread& theReader : theReaders) {
        theReader.join();
    }
    for (const std::atomic<int>& theCount : theCounts) {
        ASSERT_EQ(theCount, 1);
    }
}

TEST(MessageQueueTest, WhetherItIsEmptyMayBeAskedMeanwhile) {
    vxMessageQueue theQueue;
    std::thread theSender([&] {
        for (int i = 0; i < 1000; ++i) {
            theQueue.Post(i, nullptr, nullptr);
        }
    });
    for (int theCount = 0; theCount < 1000;) {
        if (!theQueue.IsEmpty()) {
            ASSERT_EQ(theQueue.Get(nullptr), 0);
            ++theCount;
        }
    }
    theSender.join();
    EXPECT_TRUE(theQueue.IsEmpty());
}

}  // namespace
