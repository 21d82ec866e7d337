#include "vx/SingleInstanceChecker.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "support/TempDir.h"

namespace {

using CheckerPtr = std::unique_ptr<vxSingleInstanceChecker>;

CheckerPtr Claim(const char* aName, const char* aQualifier = nullptr) {
    return std::make_unique<vxSingleInstanceChecker>(aName, aQualifier);
}

/// Another process that claims a name, and tells what it found.
class OtherProcess {
public:
    OtherProcess(const char* aName, const char* aQualifier) {
        int theReport[2];
        int theOrder[2];
        EXPECT_EQ(pipe(theReport), 0);
        EXPECT_EQ(pipe(theOrder), 0);
        mPID = fork();
        if (mPID == 0) {
            close(theOrder[1]);
            Live(aName, aQualifier, theReport[1], theOrder[0]);
        }
        close(theReport[1]);
        close(theOrder[0]);
        mOrder = theOrder[1];
        EXPECT_EQ(read(theReport[0], &mFound, 1), 1);
        close(theReport[0]);
    }
    ~OtherProcess() {
        if (mPID > 0) {
            End();
        }
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    /// '.' where it found nobody, '!' where another one was running, 'E' after an error.
    char Found() const { return mFound; }

    void Kill() {
        kill(mPID, SIGKILL);
        Reap();
    }

    /// Lets the process give its claim up and exit.
    void End() {
        close(mOrder);
        mOrder = -1;
        Reap();
    }

private:
    [[noreturn]] static void Live(const char* aName, const char* aQualifier, int aReport,
                                  int anOrder) {
        {
            const CheckerPtr theChecker = Claim(aName, aQualifier);
            char theFound = theChecker->IsAnotherRunning() ? '!' : '.';
            if (theChecker->Error()) {
                theFound = 'E';
            }
            if (write(aReport, &theFound, 1) == 1) {
                // Ends with the other end of the pipe.
                while (read(anOrder, &theFound, 1) > 0) {}
            }
        }
        _exit(0);
    }

    void Reap() {
        int theStatus = 0;
        waitpid(mPID, &theStatus, 0);
        mPID = -1;
        if (mOrder >= 0) {
            close(mOrder);
        }
    }

    pid_t mPID = -1;
    int mOrder = -1;
    char mFound = '?';
};

class SingleInstanceCheckerTest : public testing::Test {
protected:
    SingleInstanceCheckerTest() { setenv("XDG_RUNTIME_DIR", mDir.Path().c_str(), 1); }
    ~SingleInstanceCheckerTest() override { unsetenv("XDG_RUNTIME_DIR"); }

    vxtest::TempDir mDir;
};

void ExpectAlone(const vxSingleInstanceChecker& aChecker) {
    EXPECT_FALSE(aChecker.IsAnotherRunning());
    EXPECT_FALSE(aChecker.Error());
}

void ExpectAnother(const vxSingleInstanceChecker& aChecker) {
    EXPECT_TRUE(aChecker.IsAnotherRunning());
    EXPECT_FALSE(aChecker.Error());
}

void ExpectError(const vxSingleInstanceChecker& aChecker) {
    EXPECT_TRUE(aChecker.IsAnotherRunning());
    EXPECT_TRUE(aChecker.Error());
}

TEST_F(SingleInstanceCheckerTest, AFirstProcessIsAlone) {
    ExpectAlone(*Claim("player"));
    ExpectAlone(*Claim("player", "kitchen"));
}

TEST_F(SingleInstanceCheckerTest, AnotherProcessOfTheSameNameIsSeen) {
    const CheckerPtr theChecker = Claim("player", "kitchen");
    EXPECT_EQ(OtherProcess("player", "kitchen").Found(), '!');
    EXPECT_EQ(OtherProcess("player", "hall").Found(), '.');
    EXPECT_EQ(OtherProcess("player", nullptr).Found(), '.');
}

TEST_F(SingleInstanceCheckerTest, AClaimEndsWithItsObject) {
    Claim("player").reset();
    EXPECT_EQ(OtherProcess("player", nullptr).Found(), '.');
}

TEST_F(SingleInstanceCheckerTest, AClaimEndsWithTheExitOfItsProcess) {
    OtherProcess theOther("player", nullptr);
    EXPECT_EQ(theOther.Found(), '.');
    ExpectAnother(*Claim("player"));
    theOther.End();
    ExpectAlone(*Claim("player"));
}

TEST_F(SingleInstanceCheckerTest, AClaimEndsWithTheProcessThatIsKilled) {
    OtherProcess theOther("player", "kitchen");
    EXPECT_EQ(theOther.Found(), '.');
    ExpectAnother(*Claim("player", "kitchen"));
    theOther.Kill();
    ExpectAlone(*Claim("player", "kitchen"));
}

TEST_F(SingleInstanceCheckerTest, TheAnswerStaysThatOfTheConstruction) {
    OtherProcess theOther("player", nullptr);
    const CheckerPtr theChecker = Claim("player");
    theOther.Kill();
    ExpectAnother(*theChecker);
}

TEST_F(SingleInstanceCheckerTest, TwoClaimsOfOneProcessStandInEachOthersWay) {
    CheckerPtr theFirst = Claim("player");
    ExpectAlone(*theFirst);
    ExpectAnother(*Claim("player"));
    ExpectAlone(*theFirst);
    theFirst.reset();
    ExpectAlone(*Claim("player"));
}

TEST_F(SingleInstanceCheckerTest, NameAndQualifierAreJoinedByADash) {
    const CheckerPtr theChecker = Claim("a", "b");
    ExpectAnother(*Claim("a-b"));
    const CheckerPtr theEmpty = Claim("a", "");
    ExpectAnother(*Claim("a-"));
    ExpectAlone(*Claim("a"));
}

TEST_F(SingleInstanceCheckerTest, NamesThatCannotNameAFileAreErrors) {
    ExpectError(*Claim(""));
    ExpectError(*Claim(nullptr));
    ExpectError(*Claim("."));
    ExpectError(*Claim(".."));
    ExpectError(*Claim("a/b"));
    ExpectError(*Claim("a", "../b"));
    ExpectError(*Claim(std::string(248, 'x').c_str()));
    ExpectError(*Claim(std::string(246, 'x').c_str(), "y"));
}

TEST_F(SingleInstanceCheckerTest, TheLongestNameIsTaken) {
    ExpectAlone(*Claim(std::string(247, 'x').c_str()));
    ExpectAlone(*Claim(std::string(245, 'x').c_str(), "y"));
    ExpectAlone(*Claim("..."));
}

TEST_F(SingleInstanceCheckerTest, AnUnusableDirectoryIsAnError) {
    setenv("XDG_RUNTIME_DIR", (mDir / "missing").c_str(), 1);
    ExpectError(*Claim("player"));
    setenv("XDG_RUNTIME_DIR", mDir.Write("file").c_str(), 1);
    ExpectError(*Claim("player"));
}

TEST_F(SingleInstanceCheckerTest, ASymbolicLinkInPlaceOfTheFileIsAnError) {
    mDir.Link("vx-player.lock", mDir.Write("target"));
    ExpectError(*Claim("player"));
}

}  // namespace
