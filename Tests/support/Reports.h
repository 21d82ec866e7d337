#pragma once

// The one fixture for what the library reports.

#include <libvxLog/Handlers.h>

#include <mutex>
#include <string>
#include <vector>

namespace vxtest {

struct LogRecord {
    int mLevel;
    vxLogModule mModule;
    std::string mFile;
    int mLine;
    std::string mText;
};

struct AssertionReport {
    std::string mCondition;
    std::string mFile;
    int mLine;
};

struct FatalReport {
    std::string mResource;
    size_t mSize;
};

/// Collects assertions, log records, console text and fatal errors for as long as it lives.
///
/// All modules log at debug level meanwhile; every level is the initial one afterwards.
/// Threads:  any.
class Reports {
public:
    Reports();
    ~Reports();
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    /// The conditions' texts, oldest first.
    std::vector<std::string> Assertions() const;
    /// Conditions with file and line, oldest first.
    std::vector<AssertionReport> AssertionReports() const;
    std::vector<LogRecord> Records() const;
    /// The records' texts, oldest first.
    std::vector<std::string> LogTexts() const;
    /// Everything written to the console, joined.
    std::string Console() const;
    std::vector<FatalReport> FatalErrors() const;
    void Clear();

private:
    mutable std::mutex mMutex;  // guards everything below
    std::vector<AssertionReport> mAssertions;
    std::vector<LogRecord> mRecords;
    std::string mConsole;
    std::vector<FatalReport> mFatalErrors;
};

}  // namespace vxtest
