#include <libvxLog/Handlers.h>
#include <libvxLog/Log.h>
#include <libvxLog/LogDuration.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include "support/Reports.h"
#include "support/TempDir.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

std::vector<std::string> sSyslog;  // "priority text", in order
std::string sSyslogName;

// A file of the test's own, in a directory that goes when the test ends.
class LogFile {
public:
    ~LogFile() { vxLog_SetFile(nullptr, 0); }

    const char* Path() const { return mPath.c_str(); }
    std::string Text() const { return Read(mPath); }
    std::string OldText() const { return Read(mPath + ".1"); }

private:
    static std::string Read(const std::string& aPath) {
        std::ostringstream theText;
        theText << std::ifstream(aPath).rdbuf();
        return theText.str();
    }

    const vxtest::TempDir mDir;
    const std::string mPath = mDir / "log";
};

// While it lives, no file can be opened.
class NoDescriptors {
public:
    NoDescriptors() {
        getrlimit(RLIMIT_NOFILE, &mOld);
        const rlimit theLimit = {0, mOld.rlim_max};
        setrlimit(RLIMIT_NOFILE, &theLimit);
    }
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &mOld); }

private:
    rlimit mOld;
};

void LogTo(int aLevel, vxLogModule aModule, const char* aText) {
    _vxLog_Begin(aLevel, aModule, "Source.cpp", 12);
    vxLog_Append_F("%s", aText);
    vxLog_End();
}

std::string WithoutTime(const std::string& aLine) {
    return aLine.substr(aLine.size() < 24 ? aLine.size() : 24);
}

}  // namespace

// What the system log would receive.
extern "C" {
void openlog(const char* aName, int, int) {
    sSyslogName = aName;
}
void closelog() {
    sSyslogName = "closed";
}
void syslog(int aPriority, const char* aFormat, ...) {
    char theText[1000];
    va_list theArgs;
    va_start(theArgs, aFormat);
    vsnprintf(theText, sizeof(theText), aFormat, theArgs);
    va_end(theArgs);
    sSyslog.push_back(std::to_string(aPriority) + " " + theText);
}
}

TEST(LogTest, SequenceIsOneRecordWithLevelModuleAndSource) {
    vxtest::Reports theReports;

    const int theLine = __LINE__ + 1;
    vxLog_Begin(VXLOGLEVEL_INFO, VXLOG_M_FILE);
    vxLog_Append_F("%s ", "one");
    vxLog_Append_F("%d\n", 2);
    EXPECT_THAT(theReports.Records(), IsEmpty());
    vxLog_End();

    ASSERT_EQ(theReports.Records().size(), 1u);
    const vxtest::LogRecord theRecord = theReports.Records()[0];
    EXPECT_EQ(theRecord.mLevel, 3);
    EXPECT_EQ(theRecord.mModule, 42);
    EXPECT_THAT(theRecord.mFile, testing::EndsWith("Tests/platform/LogTest.cpp"));
    EXPECT_EQ(theRecord.mLine, theLine);
    EXPECT_EQ(theRecord.mText, "one 2\n");
}

TEST(LogTest, OutsideTextIsNeverAFormat) {
    vxtest::Reports theReports;

    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "%s", "%n%s%d");

    EXPECT_THAT(theReports.LogTexts(), ElementsAre("%n%s%d"));
}

TEST(LogTest, AppendAndEndWithoutARecordDoNothing) {
    vxtest::Reports theReports;

    vxLog_Append_F("lost");
    vxLog_End();
    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_FILE, "kept");

    EXPECT_THAT(theReports.LogTexts(), ElementsAre("kept"));
}

TEST(LogTest, RecordOpenedInsideAnotherIsOneOfItsOwn) {
    vxtest::Reports theReports;

    vxLog_Begin(VXLOGLEVEL_ERROR, VXLOG_M_FILE);
    vxLog_Append_F("outer");
    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_JSON, "inner");
    vxLog_Append_F(" goes on");
    vxLog_End();

    EXPECT_THAT(theReports.LogTexts(), ElementsAre("inner", "outer goes on"));
}

TEST(LogTest, NumbersOfLevelsAndModulesAreFixed) {
    EXPECT_EQ(VXLOGLEVEL_ERROR, 1);
    EXPECT_EQ(VXLOGLEVEL_WARNING, 2);
    EXPECT_EQ(VXLOGLEVEL_INFO, 3);
    EXPECT_EQ(VXLOGLEVEL_DEBUG, 4);
    EXPECT_EQ(VXLOG_M_QUERY, 8);
    EXPECT_EQ(VXLOG_M_SELECT, 25);
    EXPECT_EQ(VXLOG_M_PLUGIN, 29);
    EXPECT_EQ(VXLOG_M_FILECACHE, 36);
    EXPECT_EQ(VXLOG_M_FILE, 42);
    EXPECT_EQ(VXLOG_M_THREADING, 44);
    EXPECT_EQ(VXLOG_M_JSON, 144);
    EXPECT_EQ(sizeof(vxLogModule), 2u);
    EXPECT_EQ(kvxLogAllModules, 0xFFFF);
}

TEST(LogTest, ModulesStartAtWarning) {
    EXPECT_EQ(vxLog_GetLevel(VXLOG_M_JSON), VXLOGLEVEL_WARNING);
    EXPECT_EQ(vxLog_GetLevel(0), VXLOGLEVEL_WARNING);
    EXPECT_EQ(vxLog_GetLevel(65534), VXLOGLEVEL_WARNING);
}

TEST(LogTest, RecordAboveItsLevelNeitherFormatsNorEvaluates) {
    vxtest::Reports theReports;
    int theCalls = 0;
    vxLog_SetLevel(VXLOG_M_JSON, VXLOGLEVEL_WARNING);

    VXLOG(VXLOGLEVEL_INFO, VXLOG_M_JSON, "%d", ++theCalls);
    VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_JSON, "%d", ++theCalls);
    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_JSON, "%d", ++theCalls);

    EXPECT_THAT(theReports.LogTexts(), ElementsAre("1", "2"));
}

TEST(LogTest, LevelNoneSilencesAModuleAndNoOther) {
    vxtest::Reports theReports;
    vxLog_SetLevel(VXLOG_M_JSON, VXLOGLEVEL_NONE);

    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_JSON, "silent");
    VXLOG(VXLOGLEVEL_DEBUG, VXLOG_M_FILE, "heard");

    EXPECT_THAT(theReports.LogTexts(), ElementsAre("heard"));
}

TEST(LogTest, LevelsOutsideTheKnownOnesAreLimited) {
    vxtest::Reports theReports;  // restores the levels

    vxLog_SetLevel(300, -5);
    EXPECT_EQ(vxLog_GetLevel(300), 0);
    vxLog_SetLevel(300, 99);
    EXPECT_EQ(vxLog_GetLevel(300), 4);
}

TEST(LogTest, AllModulesAreSetAtOnce) {
    vxtest::Reports theReports;

    vxLog_SetLevel(kvxLogAllModules, VXLOGLEVEL_ERROR);

    for (unsigned i = 0; i <= 0xFFFF; ++i) {
        ASSERT_EQ(vxLog_GetLevel(static_cast<vxLogModule>(i)), VXLOGLEVEL_ERROR) << i;
    }
}

TEST(LogTest, TextSetsLevelsByNameAndNumber) {
    struct Case {
        const char* mText;
        bool mfOk;
        int mJSON;
        int mFile;
        int mOwn;  // module 300
    };
    constexpr Case kCases[] = {
        {"", true, 2, 2, 2},
        {"error", true, 1, 1, 1},
        {"debug", true, 4, 4, 4},
        {"none", true, 0, 0, 0},
        {"3", true, 3, 3, 3},
        {"warning,json=debug", true, 4, 2, 2},
        {"json=debug,error", true, 4, 1, 1},
        {"json=debug,json=info", true, 3, 2, 2},
        {"144=4,300=info", true, 4, 2, 3},
        {" JSON = Debug , FILE=0 ", true, 4, 0, 2},
        {",,json=4,", true, 4, 2, 2},
        {"5", false, 2, 2, 2},
        {"-1", false, 2, 2, 2},
        {"65535=4", true, 4, 4, 4},
        {"65536=4", false, 2, 2, 2},
        {"json=", false, 2, 2, 2},
        {"=debug", false, 2, 2, 2},
        {"=", false, 2, 2, 2},
        {"loud,json=4", false, 4, 2, 2},
        {"jso=4,json=3x,file=1", false, 2, 1, 2},
    };
    vxtest::Reports theReports;
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxLog_SetLevel(kvxLogAllModules, VXLOGLEVEL_WARNING);
        EXPECT_EQ(vxLog_SetLevels(theCase.mText), theCase.mfOk);
        EXPECT_EQ(vxLog_GetLevel(VXLOG_M_JSON), theCase.mJSON);
        EXPECT_EQ(vxLog_GetLevel(VXLOG_M_FILE), theCase.mFile);
        EXPECT_EQ(vxLog_GetLevel(300), theCase.mOwn);
    }
}

TEST(LogTest, EveryKnownModuleAndLevelHasItsName) {
    const std::map<int, const char*> theModules = {
        {0, "default"},    {8, "query"}, {25, "select"},    {29, "plugin"},
        {36, "filecache"}, {42, "file"}, {44, "threading"}, {144, "json"}};
    for (const auto& theModule : theModules) {
        EXPECT_STREQ(vxLog_GetModuleName(static_cast<vxLogModule>(theModule.first)),
                     theModule.second);
    }
    EXPECT_EQ(vxLog_GetModuleName(1), nullptr);
    EXPECT_EQ(vxLog_GetModuleName(256), nullptr);
    EXPECT_STREQ(vxLog_GetLevelName(0), "none");
    EXPECT_STREQ(vxLog_GetLevelName(1), "error");
    EXPECT_STREQ(vxLog_GetLevelName(2), "warning");
    EXPECT_STREQ(vxLog_GetLevelName(3), "info");
    EXPECT_STREQ(vxLog_GetLevelName(4), "debug");
    EXPECT_EQ(vxLog_GetLevelName(5), nullptr);
    EXPECT_EQ(vxLog_GetLevelName(-1), nullptr);
}

TEST(LogTest, WithoutAHandlerARecordIsALineOnStandardError) {
    testing::internal::CaptureStderr();

    LogTo(VXLOGLEVEL_WARNING, VXLOG_M_JSON, "bad text");

    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                MatchesRegex("[0-9]+-[0-9][0-9]-[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\."
                             "[0-9][0-9][0-9] warning json Source\\.cpp:12: bad text\n"));
}

TEST(LogTest, OnlyARecordStartsALineAtItsFirstColumn) {
    struct Case {
        const char* mText;
        const char* mLine;
    };
    constexpr Case kCases[] = {
        {"", "error 300 Source.cpp:12: \n"},
        {"text\n", "error 300 Source.cpp:12: text\n"},
        {"text\n\n", "error 300 Source.cpp:12: text\n"},
        {"two\nlines\n", "error 300 Source.cpp:12: two\n    lines\n"},
        {"tab\there", "error 300 Source.cpp:12: tab\there\n"},
        {"\x1b[2Jgone\r\x7f\x01", "error 300 Source.cpp:12: \\x1B[2Jgone\\x0D\\x7F\\x01\n"},
        {"\xC3\xA9", "error 300 Source.cpp:12: \xC3\xA9\n"},
        {"%n%s", "error 300 Source.cpp:12: %n%s\n"},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        testing::internal::CaptureStderr();
        LogTo(VXLOGLEVEL_ERROR, 300, theCase.mText);
        EXPECT_EQ(WithoutTime(testing::internal::GetCapturedStderr()), theCase.mLine);
    }
}

TEST(LogTest, WhatAHandlerLogsItselfGoesToStandardError) {
    static int sCalls;
    sCalls = 0;
    vxLog_SetHandler(
        [](void*, int, vxLogModule, const char*, int, const char*) {
            ++sCalls;
            LogTo(VXLOGLEVEL_ERROR, 1, "inner");
        },
        nullptr);
    testing::internal::CaptureStderr();

    LogTo(VXLOGLEVEL_ERROR, 1, "outer");

    EXPECT_EQ(WithoutTime(testing::internal::GetCapturedStderr()),
              "error 1 Source.cpp:12: inner\n");
    EXPECT_EQ(sCalls, 1);
    vxLog_SetHandler(nullptr, nullptr);
}

TEST(LogTest, RecordsOfSeveralThreadsNeverMix) {
    vxtest::Reports theReports;
    const auto theLogger = [](const char* aText) {
        for (int i = 0; i < 200; ++i) {
            vxLog_Begin(VXLOGLEVEL_ERROR, VXLOG_M_THREADING);
            vxLog_Append_F("%s", aText);
            vxLog_Append_F("%s", aText);
            vxLog_End();
        }
    };

    std::thread theFirst(theLogger, "abc");
    std::thread theSecond(theLogger, "xyz");
    theFirst.join();
    theSecond.join();

    std::map<std::string, int> theCounts;
    for (const std::string& theText : theReports.LogTexts()) {
        ++theCounts[theText];
    }
    EXPECT_THAT(theCounts, ElementsAre(testing::Pair("abcabc", 200), testing::Pair("xyzxyz", 200)));
}

TEST(LogTest, LevelsAndHandlersMayChangeWhileThreadsLog) {
    vxtest::Reports theReports;
    std::atomic<bool> fStop(false);
    std::thread theThread([&fStop] {
        while (!fStop) {
            VXLOG(VXLOGLEVEL_INFO, VXLOG_M_JSON, "text");
        }
    });

    for (int i = 0; i < 200; ++i) {
        vxLog_SetLevel(i % 3 == 0 ? kvxLogAllModules : VXLOG_M_JSON, i % 5);
    }
    fStop = true;
    theThread.join();

    for (const std::string& theText : theReports.LogTexts()) {
        ASSERT_EQ(theText, "text");
    }
}

TEST(LogTest, FileReceivesRecordsBehindWhatItHolds) {
    LogFile theFile;
    std::ofstream(theFile.Path()) << "old\n";
    testing::internal::CaptureStderr();

    ASSERT_TRUE(vxLog_SetFile(theFile.Path(), 0));
    LogTo(VXLOGLEVEL_INFO, VXLOG_M_FILE, "one\n");
    vxLog_SetFile(nullptr, 0);
    LogTo(VXLOGLEVEL_INFO, VXLOG_M_FILE, "two\n");

    EXPECT_EQ(theFile.Text().substr(0, 4), "old\n");
    EXPECT_EQ(WithoutTime(theFile.Text().substr(4)), "info file Source.cpp:12: one\n");
    EXPECT_EQ(WithoutTime(testing::internal::GetCapturedStderr()),
              "info file Source.cpp:12: two\n");
}

TEST(LogTest, StandardErrorCanReceiveWhatTheFileReceives) {
    LogFile theFile;
    testing::internal::CaptureStderr();

    ASSERT_TRUE(vxLog_SetFile(theFile.Path(), 0));
    vxLog_SetStandardError(true);
    LogTo(VXLOGLEVEL_INFO, VXLOG_M_FILE, "both");
    vxLog_SetStandardError(false);

    EXPECT_EQ(testing::internal::GetCapturedStderr(), theFile.Text());
    EXPECT_EQ(WithoutTime(theFile.Text()), "info file Source.cpp:12: both\n");
}

// A line of these tests is 24 bytes of time, 24 bytes "error 1 Source.cpp:12: x" and its end: 49.
TEST(LogTest, LineThatWouldExceedTheLimitBeginsANewFile) {
    LogFile theFile;
    ASSERT_TRUE(vxLog_SetFile(theFile.Path(), 98));

    LogTo(VXLOGLEVEL_ERROR, 1, "1");
    LogTo(VXLOGLEVEL_ERROR, 1, "2");
    EXPECT_EQ(theFile.Text().size(), 98u);
    EXPECT_EQ(theFile.OldText(), "");

    LogTo(VXLOGLEVEL_ERROR, 1, "3");
    EXPECT_EQ(theFile.OldText().size(), 98u);
    EXPECT_EQ(WithoutTime(theFile.Text()), "error 1 Source.cpp:12: 3\n");

    LogTo(VXLOGLEVEL_ERROR, 1, "4");
    LogTo(VXLOGLEVEL_ERROR, 1, "5");
    EXPECT_EQ(WithoutTime(theFile.OldText().substr(49)), "error 1 Source.cpp:12: 4\n");
    EXPECT_EQ(WithoutTime(theFile.Text()), "error 1 Source.cpp:12: 5\n");
}

TEST(LogTest, SizeOfWhatTheFileHoldsCounts) {
    LogFile theFile;
    std::ofstream(theFile.Path()) << std::string(60, 'o');
    ASSERT_TRUE(vxLog_SetFile(theFile.Path(), 98));

    LogTo(VXLOGLEVEL_ERROR, 1, "1");

    EXPECT_EQ(theFile.OldText(), std::string(60, 'o'));
    EXPECT_EQ(theFile.Text().size(), 49u);
}

TEST(LogTest, LineLongerThanTheLimitIsWrittenWhole) {
    LogFile theFile;
    ASSERT_TRUE(vxLog_SetFile(theFile.Path(), 10));

    LogTo(VXLOGLEVEL_ERROR, 1, "1");
    LogTo(VXLOGLEVEL_ERROR, 1, "2");

    EXPECT_EQ(WithoutTime(theFile.OldText()), "error 1 Source.cpp:12: 1\n");
    EXPECT_EQ(WithoutTime(theFile.Text()), "error 1 Source.cpp:12: 2\n");
}

TEST(LogTest, FileThatCannotBeRenamedIsEmptiedInstead) {
    LogFile theFile;
    ASSERT_EQ(mkdir((std::string(theFile.Path()) + ".1").c_str(), 0700), 0);
    ASSERT_TRUE(vxLog_SetFile(theFile.Path(), 50));

    LogTo(VXLOGLEVEL_ERROR, 1, "1");
    LogTo(VXLOGLEVEL_ERROR, 1, "2");

    EXPECT_EQ(WithoutTime(theFile.Text()), "error 1 Source.cpp:12: 2\n");
}

TEST(LogTest, FileThatCannotBeBegunIsTriedAgainWithTheNextRecord) {
    LogFile theFile;
    ASSERT_TRUE(vxLog_SetFile(theFile.Path(), 50));
    testing::internal::CaptureStderr();

    LogTo(VXLOGLEVEL_ERROR, 1, "1");
    {
        const NoDescriptors theLimit;
        LogTo(VXLOGLEVEL_ERROR, 1, "2");
        LogTo(VXLOGLEVEL_ERROR, 1, "3");
    }
    LogTo(VXLOGLEVEL_ERROR, 1, "4");

    const std::string theText = testing::internal::GetCapturedStderr();
    ASSERT_EQ(theText.size(), 98u);
    EXPECT_EQ(WithoutTime(theText.substr(0, 49)), "error 1 Source.cpp:12: 2\n");
    EXPECT_EQ(WithoutTime(theText.substr(49)), "error 1 Source.cpp:12: 3\n");
    EXPECT_EQ(WithoutTime(theFile.OldText()), "error 1 Source.cpp:12: 1\n");
    EXPECT_EQ(WithoutTime(theFile.Text()), "error 1 Source.cpp:12: 4\n");
}

TEST(LogTest, LimitHoldsForAFileOfMoreThanFourGigabytes) {
    LogFile theFile;
    std::ofstream(theFile.Path()).put('x');
    ASSERT_EQ(truncate64(theFile.Path(), 4294967306), 0);
    ASSERT_TRUE(vxLog_SetFile(theFile.Path(), 98));

    LogTo(VXLOGLEVEL_ERROR, 1, "1");

    struct stat64 theStat;
    ASSERT_EQ(stat64(theFile.Path(), &theStat), 0);
    EXPECT_EQ(theStat.st_size, 49);
}

TEST(LogTest, FileThatCannotBeOpenedLeavesStandardError) {
    testing::internal::CaptureStderr();

    EXPECT_FALSE(vxLog_SetFile("/nowhere/at/all", 0));
    LogTo(VXLOGLEVEL_ERROR, 1, "x");

    EXPECT_EQ(WithoutTime(testing::internal::GetCapturedStderr()), "error 1 Source.cpp:12: x\n");
}

TEST(LogTest, RecordThatTheFileRefusesGoesToStandardError) {
    testing::internal::CaptureStderr();

    ASSERT_TRUE(vxLog_SetFile("/dev/full", 10));
    LogTo(VXLOGLEVEL_ERROR, 1, "1");
    LogTo(VXLOGLEVEL_ERROR, 1, "2");
    vxLog_SetFile(nullptr, 0);

    const std::string theText = testing::internal::GetCapturedStderr();
    EXPECT_EQ(WithoutTime(theText.substr(0, 49)), "error 1 Source.cpp:12: 1\n");
    EXPECT_EQ(WithoutTime(theText.substr(49)), "error 1 Source.cpp:12: 2\n");
}

TEST(LogTest, SystemLogReceivesRecordsWithTheirPriority) {
    sSyslog.clear();
    vxLog_SetSyslog("player");
    EXPECT_EQ(sSyslogName, "player");

    LogTo(VXLOGLEVEL_ERROR, VXLOG_M_JSON, "%n e\n");
    LogTo(VXLOGLEVEL_WARNING, VXLOG_M_JSON, "w");
    LogTo(VXLOGLEVEL_INFO, VXLOG_M_JSON, "i");
    LogTo(VXLOGLEVEL_DEBUG, VXLOG_M_JSON, "d");
    vxLog_SetSyslog(nullptr);

    EXPECT_EQ(sSyslogName, "closed");
    EXPECT_THAT(sSyslog, ElementsAre("3 json Source.cpp:12: %n e", "4 json Source.cpp:12: w",
                                     "6 json Source.cpp:12: i", "7 json Source.cpp:12: d"));
}

TEST(LogDurationTest, EachKindSaysItsTextsAtItsLevel) {
    struct Case {
        vxLogDurationKind mKind;
        std::vector<std::string> mTexts;  // regular expressions
    };
    const Case theCases[] = {
        {kvxLogDuration_Duration, {"job 7: [0-9]+ ms\n"}},
        {kvxLogDuration_Start, {"job 7\\.\\.\\.\n", "job 7: done in [0-9]+ ms\n"}},
        {kvxLogDuration_Load, {"Loading job 7\\.\\.\\.\n", "Loaded job 7 in [0-9]+ ms\n"}},
        {kvxLogDuration_Unload, {"Unloading job 7\\.\\.\\.\n", "Unloaded job 7 in [0-9]+ ms\n"}},
    };
    for (const Case& theCase : theCases) {
        SCOPED_TRACE(theCase.mKind);
        vxtest::Reports theReports;
        {
            VXLOG_DURATION(theScope, VXLOGLEVEL_INFO, VXLOG_M_PLUGIN, theCase.mKind, "job %d", 7);
            EXPECT_EQ(theReports.Records().size(), theCase.mTexts.size() - 1);
        }
        ASSERT_EQ(theReports.Records().size(), theCase.mTexts.size());
        for (size_t i = 0; i < theCase.mTexts.size(); ++i) {
            const vxtest::LogRecord theRecord = theReports.Records()[i];
            EXPECT_THAT(theRecord.mText, MatchesRegex(theCase.mTexts[i]));
            EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_INFO);
            EXPECT_EQ(theRecord.mModule, VXLOG_M_PLUGIN);
            EXPECT_THAT(theRecord.mFile, testing::EndsWith("Tests/platform/LogTest.cpp"));
        }
    }
    EXPECT_EQ(kvxLogDuration_Duration, 5);
}

TEST(LogDurationTest, ScopeAboveItsLevelNeitherLogsNorEvaluates) {
    vxtest::Reports theReports;
    vxLog_SetLevel(VXLOG_M_PLUGIN, VXLOGLEVEL_WARNING);
    int theCalls = 0;
    {
        VXLOG_DURATION(theScope, VXLOGLEVEL_INFO, VXLOG_M_PLUGIN, kvxLogDuration_Load, "%d",
                       ++theCalls);
    }
    EXPECT_EQ(theCalls, 0);
    EXPECT_THAT(theReports.Records(), IsEmpty());
}
