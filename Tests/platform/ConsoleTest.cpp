#include <libvxLog/Console.h>

#include <thread>

#include <gmock/gmock.h>

#include "support/Reports.h"

TEST(ConsoleTest, TextIsFormattedForTheHandler) {
    vxtest::Reports theReports;

    vxConsole_Printf("%s: %d%%\n", "volume", 40);
    vxConsole_Printf("%s", "100%n %s\n");

    EXPECT_EQ(theReports.Console(), "volume: 40%\n100%n %s\n");
}

TEST(ConsoleTest, LongTextArrivesWhole) {
    vxtest::Reports theReports;
    const std::string theText(100000, 'x');

    vxConsole_Printf("<%s>", theText.c_str());

    EXPECT_EQ(theReports.Console(), "<" + theText + ">");
}

TEST(ConsoleTest, LengthsAroundTheShortTextLimitArriveWhole) {
    for (const size_t theLength : {0u, 1u, 254u, 255u, 256u, 257u, 511u, 512u}) {
        SCOPED_TRACE(theLength);
        vxtest::Reports theReports;
        const std::string theText(theLength, 'y');

        vxConsole_Printf("%s", theText.c_str());

        EXPECT_EQ(theReports.Console(), theText);
    }
}

TEST(ConsoleTest, WithoutAHandlerTextGoesToStandardOutput) {
    testing::internal::CaptureStdout();

    vxConsole_Printf("%s\n", "100%n");

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "100%n\n");
}

TEST(ConsoleTest, WhatAHandlerPrintsItselfGoesToStandardOutput) {
    vxConsole_SetHandler([](void*, const char* aText) { vxConsole_Printf("(%s)", aText); },
                         nullptr);
    testing::internal::CaptureStdout();

    vxConsole_Printf("a");

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "(a)");
    vxConsole_SetHandler(nullptr, nullptr);
}

TEST(ConsoleTest, PiecesOfTwoThreadsDoNotMix) {
    vxtest::Reports theReports;
    const auto thePrinter = [](const char* aText) {
        for (int i = 0; i < 200; ++i) {
            vxConsole_Printf("%s%s%s\n", aText, aText, aText);
        }
    };

    std::thread theThread(thePrinter, "abc");
    thePrinter("xyz");
    theThread.join();

    std::string theText = theReports.Console();
    size_t thePieces = 0;
    for (; !theText.empty(); theText.erase(0, 10), ++thePieces) {
        const std::string thePiece = theText.substr(0, 10);
        ASSERT_TRUE(thePiece == "abcabcabc\n" || thePiece == "xyzxyzxyz\n") << thePiece;
    }
    EXPECT_EQ(thePieces, 400u);
}
