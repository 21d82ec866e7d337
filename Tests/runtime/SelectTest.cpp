#include "vx/Select.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "support/Forward.h"
#include "support/InsideSelect.h"
#include "support/Latch.h"
#include "support/Reports.h"
#include "support/ScriptedLocks.h"

namespace {

std::vector<std::string>* sCalls = nullptr;  // notes what is done to selectors

}  // namespace

void vxSocketSelect_Trigger(vxSocketSelect* aSelect) {
    if (sCalls != nullptr) {
        sCalls->push_back("Trigger");
    }
    VXTEST_REAL(vxSocketSelect_Trigger)(aSelect);
}

void vxSocketSelect_Delete(vxSocketSelect* aSelect) {
    if (sCalls != nullptr) {
        sCalls->push_back("Delete");
    }
    VXTEST_REAL(vxSocketSelect_Delete)(aSelect);
}

namespace {

using testing::ElementsAre;
using testing::EndsWith;

static_assert(!std::is_copy_constructible_v<vxSelect>);

TEST(SelectTest, SignalIsKeptForTheNextSelect) {
    vxSelect theSelect;
    ASSERT_EQ(theSelect.Setup(), 0);
    theSelect.Signal();
    bool theTriggered = false;
    EXPECT_EQ(theSelect.Select(NULL, NULL, NULL, 0, NULL, &theTriggered), 0);
    EXPECT_TRUE(theTriggered);
    timeval theTimeout = {0, 0};
    EXPECT_EQ(theSelect.Select(NULL, NULL, NULL, 0, &theTimeout, &theTriggered), 0);
    EXPECT_FALSE(theTriggered);
}

TEST(SelectTest, ReadyDescriptorsAreCounted) {
    int thePipe[2];
    ASSERT_EQ(pipe(thePipe), 0);
    ASSERT_EQ(write(thePipe[1], "x", 1), 1);
    vxSelect theSelect;
    ASSERT_EQ(theSelect.Setup(), 0);
    fd_set theRead;
    FD_ZERO(&theRead);
    FD_SET(thePipe[0], &theRead);
    bool theTriggered = true;
    EXPECT_EQ(theSelect.Select(&theRead, NULL, NULL, thePipe[0] + 1, NULL, &theTriggered), 1);
    EXPECT_TRUE(FD_ISSET(thePipe[0], &theRead));
    EXPECT_FALSE(theTriggered);
    theSelect.Signal();
    EXPECT_EQ(theSelect.Select(&theRead, NULL, NULL, thePipe[0] + 1, NULL, NULL), 1);
    close(thePipe[0]);
    close(thePipe[1]);
}

TEST(SelectTest, SignalFromAnotherThreadEndsTheWait) {
    vxSelect theSelect;
    ASSERT_EQ(theSelect.Setup(), 0);
    std::thread theOther([&theSelect] { theSelect.Signal(); });
    bool theTriggered = false;
    EXPECT_EQ(theSelect.Select(NULL, NULL, NULL, 0, NULL, &theTriggered), 0);
    EXPECT_TRUE(theTriggered);
    theOther.join();
}

TEST(SelectTest, TerminateEndsEverySelectUnderWay) {
    constexpr int kThreads = 2;
    vxtest::Latch theInside(kThreads);
    vxtest::sInsideSelect = &theInside;
    vxSelect theSelect;
    ASSERT_EQ(theSelect.Setup(), 0);
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&theSelect] {
            bool theTriggered = false;
            EXPECT_EQ(theSelect.Select(NULL, NULL, NULL, 0, NULL, &theTriggered), 0);
            EXPECT_TRUE(theTriggered);
        });
    }
    theInside.Wait();
    theSelect.Terminate();
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    vxtest::sInsideSelect = nullptr;
    EXPECT_LT(theSelect.Select(NULL, NULL, NULL, 0, NULL, NULL), 0);
}

TEST(SelectTest, SelectorIsTriggeredBeforeItIsDeleted) {
    std::vector<std::string> theCalls;
    {
        vxSelect theSelect;
        ASSERT_EQ(theSelect.Setup(), 0);
        sCalls = &theCalls;
        ASSERT_EQ(theSelect.Setup(), 0);
        EXPECT_THAT(theCalls, ElementsAre("Trigger", "Delete"));
        theCalls.clear();
        theSelect.Terminate();
        EXPECT_THAT(theCalls, ElementsAre("Trigger", "Delete"));
        ASSERT_EQ(theSelect.Setup(), 0);
        theCalls.clear();
    }
    EXPECT_THAT(theCalls, ElementsAre("Trigger", "Delete"));
    sCalls = nullptr;
}

TEST(SelectTest, FailedSetupIsLoggedAndLeavesNothing) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoSocketSelect = true;
    vxSelect theSelect;
    EXPECT_EQ(theSelect.Setup(), -1);
    ASSERT_EQ(theReports.Records().size(), 1U);
    EXPECT_EQ(theReports.Records()[0].mText, "Failed to create vxSocketSelect object\n");
    EXPECT_EQ(theReports.Records()[0].mLevel, 1);
    EXPECT_EQ(theReports.Records()[0].mModule, 25);
    EXPECT_THAT(theReports.Records()[0].mFile, EndsWith("/Select.cpp"));
    theSelect.Signal();
    theSelect.Terminate();

    theLocks.mfNoSocketSelect = false;
    EXPECT_EQ(theSelect.Setup(), 0);
}

TEST(SelectTest, WithoutSetupSelectFailsAndTheRestDoesNothing) {
    vxSelect theSelect;
    theSelect.Signal();
    theSelect.Terminate();
    bool theTriggered = true;
    EXPECT_LT(theSelect.Select(NULL, NULL, NULL, 0, NULL, &theTriggered), 0);
    EXPECT_FALSE(theTriggered);
}

TEST(SelectTest, TerminateMayBeRepeatedAndSetupMayFollow) {
    vxSelect theSelect;
    ASSERT_EQ(theSelect.Setup(), 0);
    theSelect.Signal();
    theSelect.Terminate();
    theSelect.Terminate();
    ASSERT_EQ(theSelect.Setup(), 0);
    timeval theTimeout = {0, 0};
    bool theTriggered = true;
    EXPECT_EQ(theSelect.Select(NULL, NULL, NULL, 0, &theTimeout, &theTriggered), 0);
    EXPECT_FALSE(theTriggered);
    ASSERT_EQ(theSelect.Setup(), 0);
}

}  // namespace
