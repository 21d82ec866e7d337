#include "WholeFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "support/Reports.h"
#include "support/ScriptedIO.h"
#include "support/TempDir.h"
#include "vx/DataBuffer.h"

using namespace vxmedia;
using vxtest::Fails;
using vxtest::IOStep;
using vxtest::Moves;

namespace {

class WholeFileTest : public testing::Test {
protected:
    std::string Write(const std::string& aText) {
        return WriteWholeFile(mPath.c_str(), aText.data(), aText.size()).c_str();
    }
    std::string Content() const {
        std::ifstream theFile(mPath, std::ios::binary);
        return {std::istreambuf_iterator<char>(theFile), {}};
    }
    size_t FileCount() const {
        return static_cast<size_t>(
            std::distance(std::filesystem::directory_iterator(mDir.Path()), {}));
    }

    vxtest::Reports mReports;
    vxtest::TempDir mDir;
    const std::string mPath = mDir / "file";
};

TEST_F(WholeFileTest, AFileIsMadeAndReplacedAsAWhole) {
    EXPECT_EQ(Write("first, which is longer"), "");
    EXPECT_EQ(Write(std::string("a\0b", 3)), "");
    EXPECT_EQ(Content(), std::string("a\0b", 3));
    EXPECT_EQ(Write(""), "");
    EXPECT_EQ(Content(), "");
    EXPECT_EQ(FileCount(), 1u);
}

TEST_F(WholeFileTest, AFailureAtAnyStepLeavesTheOldFileAndNothingElse) {
    const struct {
        std::vector<IOStep> vxtest::ScriptedIO::*mSteps;
        std::vector<IOStep> mScript;
        const char* mReason;
    } kRows[] = {
        {&vxtest::ScriptedIO::mOpens, {Fails(EROFS)}, "the file system is read-only"},
        {&vxtest::ScriptedIO::mOpens,
         {Fails(EACCES)},
         "it must not be written, or the device has failed"},
        {&vxtest::ScriptedIO::mOpens, {Fails(ENOENT)}, "there is no such directory"},
        {&vxtest::ScriptedIO::mWrites, {Fails(ENOSPC)}, "no space is left"},
        {&vxtest::ScriptedIO::mWrites,
         {Moves(3), Fails(ENOSPC), Fails(ENOSPC)},
         "no space is left"},
        {&vxtest::ScriptedIO::mWrites,
         {Fails(EIO)},
         "it must not be written, or the device has failed"},
        {&vxtest::ScriptedIO::mSyncs, {Fails(ENOSPC)}, "no space is left"},
        {&vxtest::ScriptedIO::mCloses, {Fails(ENOSPC)}, "no space is left"},
        {&vxtest::ScriptedIO::mRenames, {Fails(EACCES)}, "it cannot be replaced"},
    };
    ASSERT_EQ(Write("old"), "");
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow.mReason);
        {
            vxtest::ScriptedIO theIO;
            theIO.*theRow.mSteps = theRow.mScript;
            EXPECT_EQ(Write("a longer text"),
                      "ERROR: Unable to write '" + mPath + "': " + theRow.mReason);
        }
        EXPECT_EQ(Content(), "old");
        EXPECT_EQ(FileCount(), 1u);
    }
}

TEST_F(WholeFileTest, AFileOfSomebodyKilledIsReplaced) {
    mDir.Write(".vxmedia-" + std::to_string(getpid()) + ".tmp", "the beginning of");
    EXPECT_EQ(Write("new"), "");
    EXPECT_EQ(Content(), "new");
    EXPECT_EQ(FileCount(), 1u);
}

TEST_F(WholeFileTest, ALinkIsReplacedAndWhatItLeadsToStays) {
    mDir.Write("target", "old");
    std::filesystem::create_symlink("target", mPath);
    EXPECT_EQ(Write("new"), "");
    EXPECT_FALSE(std::filesystem::is_symlink(mPath));
    std::filesystem::remove(mPath);
    std::filesystem::create_symlink("nowhere", mPath);
    EXPECT_EQ(Write("new"), "");
    EXPECT_EQ(Content(), "new");
}

TEST_F(WholeFileTest, AFileIsReadUpToItsLimit) {
    mDir.Write("file", std::string("a\0b", 3));
    vxDataBuffer theBuffer;
    EXPECT_STREQ(ReadWholeFile(mPath.c_str(), theBuffer, 3), "");
    EXPECT_EQ(std::string(static_cast<const char*>(theBuffer.data()), theBuffer.size()),
              std::string("a\0b", 3));
    EXPECT_EQ(std::string(ReadWholeFile(mPath.c_str(), theBuffer, 2).c_str()),
              "ERROR: File '" + mPath + "' is too large to be loaded");
    EXPECT_EQ(theBuffer.size(), 3u);
}

}  // namespace
