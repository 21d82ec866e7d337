#include "support/ScriptedIO.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>

namespace {

thread_local vxtest::ScriptedIO* sScript = nullptr;

template <typename Function>
Function RealCall(const char* aName) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, aName));
}

// Takes the next step of a script; without one the call is made as it is.
vxtest::IOStep TakeStep(std::vector<vxtest::IOStep> vxtest::ScriptedIO::*aSteps) {
    if (sScript == nullptr || (sScript->*aSteps).empty()) {
        return {0, static_cast<size_t>(-1)};
    }
    const vxtest::IOStep theStep = (sScript->*aSteps).front();
    (sScript->*aSteps).erase((sScript->*aSteps).begin());
    return theStep;
}

void NoteDescriptor(int aFD) {
    if (sScript != nullptr && aFD < 0) {
        ++sScript->mInvalidDescriptors;
    }
}

int Fail(int anErrno) {
    errno = anErrno;
    return -1;
}

}  // namespace

namespace vxtest {

ScriptedIO::ScriptedIO() {
    sScript = this;
}

ScriptedIO::~ScriptedIO() {
    sScript = nullptr;
}

}  // namespace vxtest

extern "C" {

__attribute__((visibility("default"))) ssize_t read(int aFD, void* aBuffer, size_t aSize) {
    static const auto theCall = RealCall<ssize_t (*)(int, void*, size_t)>("read");
    const vxtest::IOStep theStep = TakeStep(&vxtest::ScriptedIO::mReads);
    NoteDescriptor(aFD);
    if (sScript != nullptr) {
        ++sScript->mReadCount;
    }
    return theStep.mErrno != 0 ? Fail(theStep.mErrno)
                               : theCall(aFD, aBuffer, std::min(aSize, theStep.mAtMost));
}

__attribute__((visibility("default"))) ssize_t write(int aFD, const void* aBuffer, size_t aSize) {
    static const auto theCall = RealCall<ssize_t (*)(int, const void*, size_t)>("write");
    const vxtest::IOStep theStep = TakeStep(&vxtest::ScriptedIO::mWrites);
    NoteDescriptor(aFD);
    return theStep.mErrno != 0 ? Fail(theStep.mErrno)
                               : theCall(aFD, aBuffer, std::min(aSize, theStep.mAtMost));
}

__attribute__((visibility("default"))) int close(int aFD) {
    static const auto theCall = RealCall<int (*)(int)>("close");
    const vxtest::IOStep theStep = TakeStep(&vxtest::ScriptedIO::mCloses);
    NoteDescriptor(aFD);
    const int theResult = theCall(aFD);
    return theStep.mErrno != 0 ? Fail(theStep.mErrno) : theResult;
}

__attribute__((visibility("default"))) int fsync(int aFD) {
    static const auto theCall = RealCall<int (*)(int)>("fsync");
    const vxtest::IOStep theStep = TakeStep(&vxtest::ScriptedIO::mSyncs);
    NoteDescriptor(aFD);
    return theStep.mErrno != 0 ? Fail(theStep.mErrno) : theCall(aFD);
}

__attribute__((visibility("default"))) int rename(const char* anOld, const char* aNew) {
    static const auto theCall = RealCall<int (*)(const char*, const char*)>("rename");
    const vxtest::IOStep theStep = TakeStep(&vxtest::ScriptedIO::mRenames);
    return theStep.mErrno != 0 ? Fail(theStep.mErrno) : theCall(anOld, aNew);
}

// The name under which a library with 64-bit offsets calls open().
__attribute__((visibility("default"))) int open64(const char* aPath, int aFlags, ...) {
    static const auto theCall = RealCall<int (*)(const char*, int, mode_t)>("open64");
    va_list theArgs;
    va_start(theArgs, aFlags);
    const mode_t theMode = (aFlags & O_CREAT) != 0 ? va_arg(theArgs, mode_t) : 0;
    va_end(theArgs);
    const vxtest::IOStep theStep = TakeStep(&vxtest::ScriptedIO::mOpens);
    return theStep.mErrno != 0 ? Fail(theStep.mErrno) : theCall(aPath, aFlags, theMode);
}

}  // extern "C"
