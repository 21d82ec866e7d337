#include "support/Reports.h"

namespace vxtest {

Reports::Reports() {
    vxLog_SetLevel(kvxLogAllModules, VXLOGLEVEL_DEBUG);
    vxAssert_SetHandler(
        [](void* aContext, const char* aCondition, const char* aFile, int aLine) {
            Reports* theReports = static_cast<Reports*>(aContext);
            std::lock_guard<std::mutex> theLock(theReports->mMutex);
            theReports->mAssertions.push_back({aCondition, aFile, aLine});
        },
        this);
    vxLog_SetHandler(
        [](void* aContext, int aLevel, vxLogModule aModule, const char* aFile, int aLine,
           const char* aText) {
            Reports* theReports = static_cast<Reports*>(aContext);
            std::lock_guard<std::mutex> theLock(theReports->mMutex);
            theReports->mRecords.push_back({aLevel, aModule, aFile, aLine, aText});
        },
        this);
    vxConsole_SetHandler(
        [](void* aContext, const char* aText) {
            Reports* theReports = static_cast<Reports*>(aContext);
            std::lock_guard<std::mutex> theLock(theReports->mMutex);
            theReports->mConsole += aText;
        },
        this);
    vxFatalError_SetHandler(
        [](void* aContext, const char* aResource, size_t aSize) {
            Reports* theReports = static_cast<Reports*>(aContext);
            std::lock_guard<std::mutex> theLock(theReports->mMutex);
            theReports->mFatalErrors.push_back({aResource, aSize});
        },
        this);
}

Reports::~Reports() {
    vxAssert_SetHandler(nullptr, nullptr);
    vxLog_SetHandler(nullptr, nullptr);
    vxConsole_SetHandler(nullptr, nullptr);
    vxFatalError_SetHandler(nullptr, nullptr);
    vxLog_SetLevel(kvxLogAllModules, _VXLOG_INITIAL_LEVEL);
}

std::vector<std::string> Reports::Assertions() const {
    std::lock_guard<std::mutex> theLock(mMutex);
    std::vector<std::string> theTexts;
    for (const AssertionReport& theReport : mAssertions) {
        theTexts.push_back(theReport.mCondition);
    }
    return theTexts;
}

std::vector<AssertionReport> Reports::AssertionReports() const {
    std::lock_guard<std::mutex> theLock(mMutex);
    return mAssertions;
}

std::vector<LogRecord> Reports::Records() const {
    std::lock_guard<std::mutex> theLock(mMutex);
    return mRecords;
}

std::vector<std::string> Reports::LogTexts() const {
    std::lock_guard<std::mutex> theLock(mMutex);
    std::vector<std::string> theTexts;
    for (const LogRecord& theRecord : mRecords) {
        theTexts.push_back(theRecord.mText);
    }
    return theTexts;
}

std::string Reports::Console() const {
    std::lock_guard<std::mutex> theLock(mMutex);
    return mConsole;
}

std::vector<FatalReport> Reports::FatalErrors() const {
    std::lock_guard<std::mutex> theLock(mMutex);
    return mFatalErrors;
}

void Reports::Clear() {
    std::lock_guard<std::mutex> theLock(mMutex);
    mAssertions.clear();
    mRecords.clear();
    mConsole.clear();
    mFatalErrors.clear();
}

}  // namespace vxtest
