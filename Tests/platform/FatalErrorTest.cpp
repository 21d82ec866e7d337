#include <libvxLog/FatalError.h>

#include <csignal>

#include <gmock/gmock.h>

#include "support/Reports.h"

TEST(FatalErrorTest, HandlerReceivesResourceAndSizeAndTheCallReturns) {
    vxtest::Reports theReports;

    vxFatalError("os:mutex");
    vxFatalError_WithSize("memory:malloc", 4096);

    ASSERT_EQ(theReports.FatalErrors().size(), 2u);
    EXPECT_EQ(theReports.FatalErrors()[0].mResource, "os:mutex");
    EXPECT_EQ(theReports.FatalErrors()[0].mSize, 0u);
    EXPECT_EQ(theReports.FatalErrors()[1].mResource, "memory:malloc");
    EXPECT_EQ(theReports.FatalErrors()[1].mSize, 4096u);
}

TEST(FatalErrorDeathTest, WithoutAHandlerTheProgramEnds) {
    EXPECT_EXIT(vxFatalError("os:condition"), testing::KilledBySignal(SIGABRT),
                "fatal error: os:condition\n");
    EXPECT_EXIT(vxFatalError_WithSize("memory:malloc", 17), testing::KilledBySignal(SIGABRT),
                "fatal error: memory:malloc \\(17 bytes\\)\n");
}

TEST(FatalErrorDeathTest, FatalErrorInsideAHandlerEndsTheProgram) {
    EXPECT_EXIT(
        {
            vxFatalError_SetHandler([](void*, const char*, size_t) { vxFatalError("inner"); },
                                    nullptr);
            vxFatalError("outer");
        },
        testing::KilledBySignal(SIGABRT), "fatal error: inner\n");
}
