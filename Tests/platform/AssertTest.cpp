#include <libvxLog/Assert.h>

#include <csignal>
#include <cstdlib>

#include <gmock/gmock.h>

#include "support/Reports.h"

using testing::ElementsAre;
using testing::IsEmpty;

TEST(AssertTest, ConditionThatHoldsIsNotReported) {
    vxtest::Reports theReports;

    VXASSERT(1 + 1 == 2);
    VXASSERT_TEXT(true, "text");

    EXPECT_TRUE(VXCHECK(2 > 1));
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(AssertTest, ConditionIsReportedAsWrittenAndExecutionGoesOn) {
    vxtest::Reports theReports;
    const char* aPtr = NULL;

    VXASSERT(aPtr != NULL && *aPtr == 'x');

    EXPECT_THAT(theReports.Assertions(), ElementsAre("aPtr != NULL && *aPtr == 'x'"));
}

TEST(AssertTest, TextIsReportedInPlaceOfTheCondition) {
    vxtest::Reports theReports;

    VXASSERT_TEXT(false, "vxThing: not this way");

    EXPECT_THAT(theReports.Assertions(), ElementsAre("vxThing: not this way"));
}

TEST(AssertTest, CheckReportsAndIsFalse) {
    vxtest::Reports theReports;
    const int theCount = 0;

    EXPECT_FALSE(VXCHECK(theCount > 0));

    EXPECT_THAT(theReports.Assertions(), ElementsAre("theCount > 0"));
}

TEST(AssertTest, ReportCarriesFileAndLine) {
    vxtest::Reports theReports;

    const int theLine = __LINE__ + 1;
    VXASSERT(false);

    ASSERT_EQ(theReports.AssertionReports().size(), 1u);
    EXPECT_THAT(theReports.AssertionReports()[0].mFile,
                testing::EndsWith("Tests/platform/AssertTest.cpp"));
    EXPECT_EQ(theReports.AssertionReports()[0].mLine, theLine);
}

TEST(AssertTest, ConditionIsEvaluatedOnce) {
    vxtest::Reports theReports;
    int theCount = 0;

    VXASSERT(++theCount == 0);
    EXPECT_FALSE(VXCHECK(++theCount == 0));

    EXPECT_EQ(theCount, 2);
}

TEST(AssertTest, WithoutAHandlerTheReportGoesToStandardError) {
    testing::internal::CaptureStderr();

    _vxAssert("100%n of %s", "File.cpp", 12);

    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "File.cpp:12: assertion failed: 100%n of %s\n");
}

TEST(AssertTest, WhatAHandlerAssertsItselfGoesToStandardError) {
    static int sCalls;
    sCalls = 0;
    vxAssert_SetHandler(
        [](void*, const char*, const char*, int) {
            ++sCalls;
            _vxAssert("inner", "Inner.cpp", 2);
        },
        nullptr);
    testing::internal::CaptureStderr();

    _vxAssert("outer", "Outer.cpp", 1);
    _vxAssert("outer", "Outer.cpp", 1);

    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Inner.cpp:2: assertion failed: inner\nInner.cpp:2: assertion failed: inner\n");
    EXPECT_EQ(sCalls, 2);
    vxAssert_SetHandler(nullptr, nullptr);
}

TEST(AssertDeathTest, AbortsOnlyWhereTheEnvironmentSaysSo) {
    EXPECT_EXIT(
        {
            setenv("VXASSERT", "abort", 1);
            _vxAssert("broken", "File.cpp", 1);
        },
        testing::KilledBySignal(SIGABRT), "File.cpp:1: assertion failed: broken");
    EXPECT_EXIT(
        {
            setenv("VXASSERT", "report", 1);
            _vxAssert("broken", "File.cpp", 1);
            exit(7);
        },
        testing::ExitedWithCode(7), "File.cpp:1: assertion failed: broken");
}
