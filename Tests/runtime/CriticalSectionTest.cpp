#include "vx/CriticalSection.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <thread>
#include <type_traits>
#include <vector>

#include "support/Latch.h"
#include "support/Reports.h"
#include "support/ScriptedLocks.h"

namespace {

static_assert(!std::is_copy_constructible_v<vxCriticalSection>);
static_assert(!std::is_copy_constructible_v<vxCriticalSectionLocker>);
static_assert(!std::is_polymorphic_v<vxCriticalSection>);

TEST(CriticalSectionTest, EnterAndLeaveHandOutThePlatformsResult) {
    vxCriticalSection theSection;
    EXPECT_EQ(theSection.Leave(), EPERM);
    EXPECT_EQ(theSection.Enter(), 0);
    EXPECT_EQ(theSection.Enter(), 0);
    EXPECT_EQ(theSection.Leave(), 0);
    EXPECT_EQ(theSection.Leave(), 0);
    EXPECT_EQ(theSection.Leave(), EPERM);
}

TEST(CriticalSectionTest, LockerLetsOneThreadInAtATime) {
    constexpr int kThreads = 3;
    vxCriticalSection theSection;
    vxtest::Latch theStart(kThreads);
    int theCount = 0;
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&] {
            theStart.ArriveAndWait();
            for (int theRound = 0; theRound < 5000; ++theRound) {
                vxCriticalSectionLocker theLock(&theSection);
                ++theCount;
            }
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theCount, 15000);
    EXPECT_EQ(theSection.Leave(), EPERM);
}

TEST(CriticalSectionTest, MissingPlatformSectionIsFatalAndHarmlessAfterwards) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoCriticalSection = true;
    vxCriticalSection theSection;
    ASSERT_EQ(theReports.FatalErrors().size(), 1U);
    EXPECT_EQ(theReports.FatalErrors()[0].mResource, "os:criticalsection");
    EXPECT_EQ(theSection.Enter(), EINVAL);
    EXPECT_EQ(theSection.Leave(), EINVAL);
}

}  // namespace
