#pragma once

// Directories that cannot be read for a while. Including this replaces the platform's walks over
// directories in the whole test program: include it once in a program.

#include <libvxOS/Dir.h>

#include <map>
#include <mutex>
#include <string>

#include "support/Forward.h"

namespace vxtest {

/// Lets listings fail for as long as it lives; one at a time.
///
/// Threads:  any.
class StubbornDirectories {
public:
    StubbornDirectories() { sCurrent = this; }
    ~StubbornDirectories() { sCurrent = nullptr; }
    StubbornDirectories(const StubbornDirectories&) = delete;
    StubbornDirectories& operator=(const StubbornDirectories&) = delete;

    /// Lets the next listings of this path fail.
    void Fail(const std::string& aPath, int aCount) {
        const std::lock_guard<std::mutex> theLock(mMutex);
        mFailures[aPath] = aCount;
    }

    static bool TakeFailure(const char* aPath) {
        if (sCurrent == nullptr) {
            return false;
        }
        const std::lock_guard<std::mutex> theLock(sCurrent->mMutex);
        const auto theFailure = sCurrent->mFailures.find(aPath);
        if (theFailure == sCurrent->mFailures.end() || theFailure->second == 0) {
            return false;
        }
        theFailure->second -= 1;
        return true;
    }

private:
    static inline StubbornDirectories* sCurrent = nullptr;

    std::mutex mMutex;  // guards mFailures
    std::map<std::string, int> mFailures;
};

}  // namespace vxtest

vxDirTraverser* vxDirTraverser_New(const char* aPath) {
    const bool theFails = vxtest::StubbornDirectories::TakeFailure(aPath);
    return VXTEST_REAL(vxDirTraverser_New)(theFails ? "/nonexistent" : aPath);
}
