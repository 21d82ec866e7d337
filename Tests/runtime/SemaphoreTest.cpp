#include "vx/Semaphore.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <climits>
#include <thread>
#include <type_traits>

#include "support/Reports.h"
#include "support/ScriptedLocks.h"

namespace {

static_assert(!std::is_copy_constructible_v<vxSemaphore>);
static_assert(!std::is_polymorphic_v<vxSemaphore>);

TEST(SemaphoreTest, InitialCountAndPostsLetWaitsThrough) {
    vxSemaphore theSemaphore(1);
    EXPECT_EQ(theSemaphore.Wait(), 0);
    EXPECT_EQ(theSemaphore.WaitTimeout(0), ETIMEDOUT);
    EXPECT_EQ(theSemaphore.Post(), 0);
    EXPECT_EQ(theSemaphore.WaitTimeout(0), 0);
    EXPECT_EQ(theSemaphore.WaitTimeout(2), ETIMEDOUT);
}

TEST(SemaphoreTest, PostWakesAnotherThread) {
    vxSemaphore theThere(0);
    vxSemaphore theBack(0);
    int theValue = 0;
    std::thread theOther([&] {
        EXPECT_EQ(theThere.Wait(), 0);
        ++theValue;
        theBack.Post();
    });
    theValue = 41;
    theThere.Post();
    EXPECT_EQ(theBack.WaitTimeout(0xFFFFFFFF), 0);
    EXPECT_EQ(theValue, 42);
    theOther.join();
}

TEST(SemaphoreTest, ErrorsOfThePlatformAreHandedOut) {
    vxSemaphore theSemaphore(INT_MAX);
    EXPECT_EQ(theSemaphore.Post(), EOVERFLOW);
}

TEST(SemaphoreTest, MissingPlatformSemaphoreIsFatalAndHarmlessAfterwards) {
    vxtest::Reports theReports;
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoSemaphore = true;
    vxSemaphore theSemaphore(3);
    ASSERT_EQ(theReports.FatalErrors().size(), 1U);
    EXPECT_EQ(theReports.FatalErrors()[0].mResource, "os:semaphore");
    EXPECT_EQ(theSemaphore.Post(), EINVAL);
    EXPECT_EQ(theSemaphore.Wait(), EINVAL);
    EXPECT_EQ(theSemaphore.WaitTimeout(1), EINVAL);
}

TEST(SemaphoreTest, NegativeCountIsFatal) {
    vxtest::Reports theReports;
    vxSemaphore theSemaphore(-1);
    ASSERT_EQ(theReports.FatalErrors().size(), 1U);
    EXPECT_EQ(theReports.FatalErrors()[0].mResource, "os:semaphore");
}

}  // namespace
