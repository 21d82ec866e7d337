#include <gtest/gtest.h>
#include <libvxOS/SingleInstance.h>

#include <sys/file.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <vector>

#include "support/Forward.h"
#include "support/TempDir.h"

namespace {

std::vector<int> sLockErrors;  // of the next calls of flock(), last first

struct CheckerDelete {
    void operator()(vxOSSingleInstanceChecker* aChecker) const {
        vxSingleInstanceChecker_Delete(aChecker);
    }
};
using CheckerPtr = std::unique_ptr<vxOSSingleInstanceChecker, CheckerDelete>;

}  // namespace

int flock(int aFD, int anOperation) noexcept {
    if (sLockErrors.empty()) {
        return VXTEST_REAL(flock)(aFD, anOperation);
    }
    errno = sLockErrors.back();
    sLockErrors.pop_back();
    return -1;
}

namespace {

TEST(SingleInstanceTest, TheClaimIsAFileInTheRuntimeDirectoryElseTheTemporaryOne) {
    const vxtest::TempDir theRuntime;
    const vxtest::TempDir theTemporary;
    setenv("XDG_RUNTIME_DIR", theRuntime.Path().c_str(), 1);
    setenv("TMPDIR", theTemporary.Path().c_str(), 1);
    { const CheckerPtr theChecker(vxSingleInstanceChecker_New("a")); }
    setenv("XDG_RUNTIME_DIR", "", 1);
    { const CheckerPtr theChecker(vxSingleInstanceChecker_New("b")); }
    unsetenv("XDG_RUNTIME_DIR");
    { const CheckerPtr theChecker(vxSingleInstanceChecker_New("c")); }
    unsetenv("TMPDIR");

    EXPECT_TRUE(theRuntime.Has("vx-a.lock"));
    EXPECT_TRUE(theTemporary.Has("vx-b.lock"));
    EXPECT_TRUE(theTemporary.Has("vx-c.lock"));
}

TEST(SingleInstanceTest, LockingIsTriedAgainAfterASignal) {
    const vxtest::TempDir theDir;
    setenv("XDG_RUNTIME_DIR", theDir.Path().c_str(), 1);
    sLockErrors = {EINTR, EINTR};
    const CheckerPtr theChecker(vxSingleInstanceChecker_New("a"));
    EXPECT_TRUE(sLockErrors.empty());
    EXPECT_EQ(vxSingleInstanceChecker_Exists(theChecker.get()), 0);
    EXPECT_EQ(vxSingleInstanceChecker_Error(theChecker.get()), 0);
}

TEST(SingleInstanceTest, ALockThatFailsForAnotherReasonIsAnError) {
    const vxtest::TempDir theDir;
    setenv("XDG_RUNTIME_DIR", theDir.Path().c_str(), 1);
    sLockErrors = {ENOLCK};
    const CheckerPtr theChecker(vxSingleInstanceChecker_New("a"));
    EXPECT_NE(vxSingleInstanceChecker_Exists(theChecker.get()), 0);
    EXPECT_NE(vxSingleInstanceChecker_Error(theChecker.get()), 0);
}

TEST(SingleInstanceTest, ANullCheckerIsAnErrorAndNothingToDelete) {
    EXPECT_EQ(vxSingleInstanceChecker_New(nullptr), nullptr);
    EXPECT_NE(vxSingleInstanceChecker_Exists(nullptr), 0);
    EXPECT_NE(vxSingleInstanceChecker_Error(nullptr), 0);
    vxSingleInstanceChecker_Delete(nullptr);
}

}  // namespace
