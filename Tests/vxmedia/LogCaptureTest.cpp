#include "LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libvxLog/Handlers.h>
#include <libvxLog/Log.h>

#include <fstream>
#include <string>
#include <thread>

#include "support/TempDir.h"

using testing::ElementsAre;
using testing::HasSubstr;
using vxmedia::LogCapture;

namespace {

class LogCaptureTest : public testing::Test {
protected:
    LogCaptureTest() { vxLog_SetFile((mDir / "log").c_str(), 0); }
    ~LogCaptureTest() override { vxLog_SetFile(nullptr, 0); }
    std::string Log() const {
        std::ifstream theFile(mDir / "log");
        return {std::istreambuf_iterator<char>(theFile), {}};
    }

    vxtest::TempDir mDir;
};

TEST_F(LogCaptureTest, RecordsUpToTheLevelAreCollected) {
    const LogCapture theCapture(VXLOGLEVEL_WARNING);
    EXPECT_TRUE(theCapture.IsEmpty());
    EXPECT_STREQ(theCapture.GetError("none"), "none");
    VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_DEFAULT, "first %d\n", 1);
    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "second\n");
    EXPECT_STREQ(theCapture.GetError("none"), "ERROR: first 1");
    EXPECT_THAT(theCapture.GetErrors(), ElementsAre(vxCString("ERROR: second")));
    EXPECT_EQ(Log(), "");
}

TEST_F(LogCaptureTest, OtherRecordsGoWhereTheyWouldGo) {
    const LogCapture theCapture(VXLOGLEVEL_ERROR);
    VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_DEFAULT, "beyond the level\n");
    std::thread([] { VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "of another thread %%n\n"); }).join();
    EXPECT_TRUE(theCapture.IsEmpty());
    EXPECT_THAT(Log(), HasSubstr("beyond the level\n"));
    EXPECT_THAT(Log(), HasSubstr("of another thread %n\n"));
}

TEST_F(LogCaptureTest, NothingIsCollectedAfterwards) {
    { const LogCapture theCapture(VXLOGLEVEL_ERROR); }
    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "late\n");
    EXPECT_THAT(Log(), HasSubstr("late\n"));
}

}  // namespace
