#pragma once

// System calls on descriptors that do as told. A test lists ScriptedIO.cpp among its sources; the
// program's own definitions then stand in for the system's, for the libraries, too.

#include <cstddef>
#include <string>
#include <vector>

namespace vxtest {

/// What one call does: fail with an errno, or transfer at most so many bytes.
struct IOStep {
    int mErrno;      // 0: the call is made
    size_t mAtMost;  // bytes, for a read or a write that is made
};

inline IOStep Fails(int anErrno) {
    return {anErrno, 0};
}
inline IOStep Moves(size_t aCount) {
    return {0, aCount};
}

/// Directs the calls of the thread that makes it, for as long as it lives; one at a time. Calls for
/// which no step is left are made as they are. A close() that fails closes all the same.
class ScriptedIO {
public:
    ScriptedIO();
    ~ScriptedIO();
    ScriptedIO(const ScriptedIO&) = delete;
    ScriptedIO& operator=(const ScriptedIO&) = delete;

    std::vector<IOStep> mOpens;
    std::vector<IOStep> mReads;
    std::vector<IOStep> mWrites;
    std::vector<IOStep> mCloses;
    std::vector<IOStep> mSyncs;
    std::vector<IOStep> mRenames;
    size_t mReadCount = 0;           // calls so far
    size_t mInvalidDescriptors = 0;  // calls with a descriptor below 0
};

}  // namespace vxtest
