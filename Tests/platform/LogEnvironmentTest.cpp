// Runs with VXLOG and VXLOGFILE set, see CMakeLists.txt.

#include <libvxLog/Handlers.h>
#include <libvxLog/Log.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

TEST(LogEnvironmentTest, LevelsAreSetBeforeTheProgramStarts) {
    EXPECT_EQ(vxLog_GetLevel(VXLOG_M_FILE), VXLOGLEVEL_ERROR);
    EXPECT_EQ(vxLog_GetLevel(VXLOG_M_JSON), VXLOGLEVEL_DEBUG);
    EXPECT_EQ(vxLog_GetLevel(300), VXLOGLEVEL_INFO);
}

TEST(LogEnvironmentTest, RecordsGoToTheNamedFileAlone) {
    testing::internal::CaptureStderr();

    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_JSON, "in the file");

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    std::ostringstream theText;
    theText << std::ifstream(getenv("VXLOGFILE")).rdbuf();
    EXPECT_NE(theText.str().find(": in the file\n"), std::string::npos);
}
