#include <libvxOS/SocketSelect.h>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <thread>
#include <vector>

#include "support/InsideSelect.h"
#include "support/Latch.h"
#include "support/Reports.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SocketSelectTest : public testing::Test {
protected:
    SocketSelectTest() {
        EXPECT_EQ(pipe(mPipe), 0);
        EXPECT_NE(mSelect, nullptr);
    }

    ~SocketSelectTest() override {
        vxSocketSelect_Delete(mSelect);
        close(mPipe[0]);
        close(mPipe[1]);
    }

    int SelectNothing(timeval aTimeout, int* aTriggered) {
        return vxSocketSelect_Select(mSelect, nullptr, nullptr, nullptr, 0, &aTimeout, aTriggered);
    }

    vxSocketSelect* mSelect = vxSocketSelect_New();
    int mPipe[2];
};

TEST_F(SocketSelectTest, ReadyDescriptorsAreCountedAndLeftInTheirSets) {
    ASSERT_EQ(write(mPipe[1], "x", 1), 1);
    fd_set theRead;
    fd_set theWrite;
    FD_ZERO(&theRead);
    FD_ZERO(&theWrite);
    FD_SET(mPipe[0], &theRead);
    FD_SET(mPipe[1], &theWrite);
    int theTriggered = 7;

    EXPECT_EQ(vxSocketSelect_Select(mSelect, &theRead, &theWrite, nullptr, mPipe[1] + 1, nullptr,
                                    &theTriggered),
              2);
    EXPECT_TRUE(FD_ISSET(mPipe[0], &theRead));
    EXPECT_TRUE(FD_ISSET(mPipe[1], &theWrite));
    EXPECT_EQ(theTriggered, 0);
}

TEST_F(SocketSelectTest, TimeoutEmptiesTheSetsAndKeepsItsRecord) {
    fd_set theRead;
    FD_ZERO(&theRead);
    FD_SET(mPipe[0], &theRead);
    const timeval theTimeout = {0, 20000};
    int theTriggered = 7;
    const auto theStart = std::chrono::steady_clock::now();

    EXPECT_EQ(vxSocketSelect_Select(mSelect, &theRead, nullptr, nullptr, mPipe[0] + 1, &theTimeout,
                                    &theTriggered),
              0);
    EXPECT_GE(std::chrono::steady_clock::now() - theStart, std::chrono::milliseconds(20));
    EXPECT_FALSE(FD_ISSET(mPipe[0], &theRead));
    EXPECT_EQ(theTimeout.tv_usec, 20000);
    EXPECT_EQ(theTriggered, 0);
}

TEST_F(SocketSelectTest, TriggersBeforeTheWaitEndItAtOnceAndCountAsOne) {
    vxSocketSelect_Trigger(mSelect);
    vxSocketSelect_Trigger(mSelect);
    int theTriggered = 0;
    EXPECT_EQ(vxSocketSelect_Select(mSelect, nullptr, nullptr, nullptr, 0, nullptr, &theTriggered),
              0);
    EXPECT_EQ(theTriggered, 1);
    EXPECT_EQ(SelectNothing({0, 0}, &theTriggered), 0);
    EXPECT_EQ(theTriggered, 0);

    vxSocketSelect_Trigger(mSelect);
    EXPECT_EQ(SelectNothing({0, 0}, &theTriggered), 0);
    EXPECT_EQ(theTriggered, 1);
}

TEST_F(SocketSelectTest, TriggerDoesNotCountAsADescriptorAndHidesNone) {
    ASSERT_EQ(write(mPipe[1], "x", 1), 1);
    vxSocketSelect_Trigger(mSelect);
    fd_set theRead;
    FD_ZERO(&theRead);
    FD_SET(mPipe[0], &theRead);
    int theTriggered = 0;

    EXPECT_EQ(vxSocketSelect_Select(mSelect, &theRead, nullptr, nullptr, mPipe[0] + 1, nullptr,
                                    &theTriggered),
              1);
    EXPECT_TRUE(FD_ISSET(mPipe[0], &theRead));
    EXPECT_EQ(theTriggered, 1);
}

TEST_F(SocketSelectTest, DescriptorsAtAndAboveTheCountAreNotLookedAt) {
    ASSERT_EQ(write(mPipe[1], "x", 1), 1);
    fd_set theRead;
    FD_ZERO(&theRead);
    FD_SET(mPipe[0], &theRead);
    const timeval theTimeout = {0, 0};

    EXPECT_EQ(
        vxSocketSelect_Select(mSelect, &theRead, nullptr, nullptr, mPipe[0], &theTimeout, nullptr),
        0);
    EXPECT_TRUE(FD_ISSET(mPipe[0], &theRead));
}

TEST_F(SocketSelectTest, TriggerFromAnotherThreadEndsAWaitWithoutLimit) {
    vxtest::Latch theInside(1);
    vxtest::sInsideSelect = &theInside;
    int theValue = 0;
    int theTriggered = 0;
    std::thread theOther([&] {
        theInside.Wait();
        theValue = 42;
        vxSocketSelect_Trigger(mSelect);
    });
    EXPECT_EQ(vxSocketSelect_Select(mSelect, nullptr, nullptr, nullptr, 0, nullptr, &theTriggered),
              0);
    EXPECT_EQ(theTriggered, 1);
    EXPECT_EQ(theValue, 42);
    theOther.join();
    vxtest::sInsideSelect = nullptr;
}

TEST_F(SocketSelectTest, TriggersEndWaitsWithAndWithoutDescriptorsAlike) {
    for (int i = 0; i < 4; ++i) {
        fd_set theRead;
        FD_ZERO(&theRead);
        FD_SET(mPipe[0], &theRead);
        vxSocketSelect_Trigger(mSelect);
        int theTriggered = 0;
        EXPECT_EQ(vxSocketSelect_Select(mSelect, i % 2 == 0 ? &theRead : nullptr, nullptr, nullptr,
                                        mPipe[0] + 1, nullptr, &theTriggered),
                  0);
        EXPECT_EQ(theTriggered, 1);
        FD_SET(mPipe[0], &theRead);
        const timeval theNow = {0, 0};
        EXPECT_EQ(vxSocketSelect_Select(mSelect, i % 2 == 0 ? nullptr : &theRead, nullptr, nullptr,
                                        mPipe[0] + 1, &theNow, &theTriggered),
                  0);
        EXPECT_EQ(theTriggered, 0);
    }
}

TEST_F(SocketSelectTest, TimeoutsLastAtLeastAsLongAsAsked) {
    for (const timeval theTimeout :
         {timeval{0, 0}, timeval{0, 700}, timeval{0, 12000}, timeval{0, 12345}}) {
        const auto theStart = std::chrono::steady_clock::now();
        EXPECT_EQ(SelectNothing(theTimeout, nullptr), 0);
        EXPECT_GE(std::chrono::steady_clock::now() - theStart,
                  std::chrono::microseconds(theTimeout.tv_usec));
    }
}

TEST_F(SocketSelectTest, NoTriggerIsLostBetweenTwoThreads) {
    constexpr int kRounds = 20000;
    std::atomic<int> thePosted{0};
    std::atomic<int> theSeen{0};
    std::thread theOther([&] {
        for (int i = 1; i <= kRounds; ++i) {
            thePosted.store(i, std::memory_order_relaxed);
            vxSocketSelect_Trigger(mSelect);
            if (i % 5 == 0) {
                while (theSeen.load() != i) {
                    std::this_thread::yield();
                }
            }
        }
    });
    while (theSeen.load() != kRounds) {
        // Odd time-outs and whole ones wait in different ways.
        int theTriggered = 0;
        ASSERT_EQ(SelectNothing({20, theSeen % 2}, &theTriggered), 0);
        ASSERT_EQ(theTriggered, 1) << "lost after " << theSeen.load();
        theSeen.store(thePosted.load(std::memory_order_relaxed));
    }
    theOther.join();
}

TEST_F(SocketSelectTest, DeleteEndsEveryWaitAndTheLastThreadFreesTheSelector) {
    constexpr int kThreads = 4;
    vxtest::Latch theInside(kThreads);
    vxtest::sInsideSelect = &theInside;
    vxSocketSelect* theSelect = vxSocketSelect_New();
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([this, theSelect, i] {
            fd_set theRead;
            FD_ZERO(&theRead);
            FD_SET(mPipe[0], &theRead);
            int theTriggered = 0;
            EXPECT_EQ(vxSocketSelect_Select(theSelect, i % 2 == 0 ? &theRead : nullptr, nullptr,
                                            nullptr, mPipe[0] + 1, nullptr, &theTriggered),
                      0);
            EXPECT_EQ(theTriggered, 1);
        });
    }
    theInside.Wait();
    vxSocketSelect_Delete(theSelect);
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    vxtest::sInsideSelect = nullptr;
}

std::atomic<int> sSignals{0};

TEST_F(SocketSelectTest, SignalsDoNotEndTheWait) {
    struct sigaction theAction = {};
    struct sigaction theOldAction = {};
    theAction.sa_handler = [](int) { ++sSignals; };
    ASSERT_EQ(sigaction(SIGUSR1, &theAction, &theOldAction), 0);
    vxtest::Latch theInside(1);
    vxtest::sInsideSelect = &theInside;
    std::thread theOther([this] {
        int theTriggered = 0;
        const timeval theTimeout = {3600, 0};
        EXPECT_EQ(vxSocketSelect_Select(mSelect, nullptr, nullptr, nullptr, 0, &theTimeout,
                                        &theTriggered),
                  0);
        EXPECT_EQ(theTriggered, 1);
    });
    theInside.Wait();
    for (int i = 1; i <= 20; ++i) {
        pthread_kill(theOther.native_handle(), SIGUSR1);
        while (sSignals < i) {
            std::this_thread::yield();
        }
    }
    vxSocketSelect_Trigger(mSelect);
    theOther.join();
    vxtest::sInsideSelect = nullptr;
    sigaction(SIGUSR1, &theOldAction, nullptr);
}

TEST_F(SocketSelectTest, CountBeyondTheSetsIsRefusedWithAMessage) {
    vxtest::Reports theReports;
    EXPECT_EQ(
        vxSocketSelect_Select(mSelect, nullptr, nullptr, nullptr, FD_SETSIZE + 1, nullptr, nullptr),
        -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(vxSocketSelect_Select(mSelect, nullptr, nullptr, nullptr, -1, nullptr, nullptr), -1);
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("Cannot select 1025 descriptors: FD_SETSIZE is 1024\n",
                            "Cannot select -1 descriptors: FD_SETSIZE is 1024\n"));

    const timeval theNow = {0, 0};
    EXPECT_EQ(
        vxSocketSelect_Select(mSelect, nullptr, nullptr, nullptr, FD_SETSIZE, &theNow, nullptr), 0);
}

TEST_F(SocketSelectTest, WhatIsNoTimeAndWhatIsNoDescriptorFail) {
    for (const timeval theTimeout : {timeval{-1, 0}, timeval{0, -1}, timeval{0, 1000000}}) {
        EXPECT_EQ(SelectNothing(theTimeout, nullptr), -1);
        EXPECT_EQ(errno, EINVAL);
    }
    int theClosed[2];
    ASSERT_EQ(pipe(theClosed), 0);
    close(theClosed[0]);
    close(theClosed[1]);
    fd_set theRead;
    FD_ZERO(&theRead);
    FD_SET(theClosed[0], &theRead);
    EXPECT_EQ(vxSocketSelect_Select(mSelect, &theRead, nullptr, nullptr, theClosed[0] + 1, nullptr,
                                    nullptr),
              -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_TRUE(FD_ISSET(theClosed[0], &theRead));
}

TEST_F(SocketSelectTest, NullSelectorIsRefused) {
    int theTriggered = 7;
    EXPECT_EQ(vxSocketSelect_Select(nullptr, nullptr, nullptr, nullptr, 0, nullptr, &theTriggered),
              -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(theTriggered, 0);
    vxSocketSelect_Trigger(nullptr);
    vxSocketSelect_Delete(nullptr);
}

TEST_F(SocketSelectTest, TriggerDescriptorIsClosedInOtherPrograms) {
    const int theNext = dup(mPipe[0]);
    close(theNext);
    vxSocketSelect* theSelect = vxSocketSelect_New();
    EXPECT_EQ(fcntl(theNext, F_GETFD), FD_CLOEXEC);
    vxSocketSelect_Delete(theSelect);
    EXPECT_EQ(fcntl(theNext, F_GETFD), -1);
}

TEST_F(SocketSelectTest, TriggerDescriptorAboveTheSetsIsRefusedWithAMessage) {
    rlimit theLimit;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &theLimit), 0);
    const rlim_t theOldLimit = theLimit.rlim_cur;
    if (theLimit.rlim_max < 1100) {
        GTEST_SKIP() << "the system allows too few descriptors";
    }
    theLimit.rlim_cur = 1100;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &theLimit), 0);
    std::vector<int> theFillers;
    do {
        theFillers.push_back(dup(mPipe[0]));
    } while (theFillers.back() < FD_SETSIZE - 1);
    {
        vxtest::Reports theReports;
        EXPECT_EQ(vxSocketSelect_New(), nullptr);
        EXPECT_THAT(
            theReports.LogTexts(),
            ElementsAre("Descriptor 1024 of the select trigger is not below FD_SETSIZE (1024)\n"));
        EXPECT_THAT(theReports.Records()[0].mModule, 25);
        EXPECT_THAT(theReports.Records()[0].mLevel, VXLOGLEVEL_ERROR);
        EXPECT_EQ(fcntl(1024, F_GETFD), -1);
    }
    close(theFillers.back());
    theFillers.pop_back();
    vxSocketSelect* theLast = vxSocketSelect_New();
    EXPECT_NE(theLast, nullptr);
    vxSocketSelect_Trigger(theLast);
    int theTriggered = 0;
    EXPECT_EQ(vxSocketSelect_Select(theLast, nullptr, nullptr, nullptr, 0, nullptr, &theTriggered),
              0);
    EXPECT_EQ(theTriggered, 1);
    vxSocketSelect_Delete(theLast);
    for (const int theFiller : theFillers) {
        close(theFiller);
    }
    theLimit.rlim_cur = theOldLimit;
    setrlimit(RLIMIT_NOFILE, &theLimit);
}

TEST_F(SocketSelectTest, SelectorWithoutADescriptorIsRefusedWithAMessage) {
    rlimit theLimit;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &theLimit), 0);
    const rlim_t theOldLimit = theLimit.rlim_cur;
    theLimit.rlim_cur = 0;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &theLimit), 0);
    vxtest::Reports theReports;
    EXPECT_EQ(vxSocketSelect_New(), nullptr);
    theLimit.rlim_cur = theOldLimit;
    setrlimit(RLIMIT_NOFILE, &theLimit);
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("Cannot create the select trigger (Error = 24)\n"));
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

}  // namespace
