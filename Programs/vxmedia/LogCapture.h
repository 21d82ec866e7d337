#pragma once

#include <libvxLog/Log.h>

#include <vector>

#include "vx/CString.h"

namespace vxmedia {

/// Collects what the library logs in this thread, for as long as it lives: reasons of failures that
/// the library tells nowhere else.
///
/// Records above `aLevel`, and those of other threads, go where they go otherwise.
///
/// Threads:  one at a time; one capture in a thread.
class LogCapture {
public:
    explicit LogCapture(int aLevel);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    bool IsEmpty() const { return mRecords.empty(); }

    /// Returns the texts of the errors, each behind "ERROR: " and without its line end.
    std::vector<vxCString> GetErrors() const;

    /// Returns the first text of any level behind "ERROR: ", or `aDefault` when there is none.
    vxCString GetError(const vxCString& aDefault) const;

private:
    static void Receive(void* aContext, int aLevel, vxLogModule aModule, const char* aFile,
                        int aLine, const char* aText);

    struct Record {
        int mLevel;
        vxCString mText;  // without its line end
    };

    const int mLevel;
    std::vector<Record> mRecords;
};

}  // namespace vxmedia
