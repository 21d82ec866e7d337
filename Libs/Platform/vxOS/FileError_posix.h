#pragma once

// How the system's reasons of failure read in the contract.

#include <libvxOS/File.h>

#include <cerrno>

inline int vxFileErrorFrom(int anErrno) {
    switch (anErrno) {
        case EROFS:
            return kvxFileErrorReadOnlyFileSystem;
        case ENOENT:
        case ENOTDIR:
            return kvxFileErrorNotFound;
        case EEXIST:
            return kvxFileErrorAlreadyExists;
        case ENOSPC:
        case EDQUOT:
            return kvxFileErrorNoSpace;
        default:
            return kvxFileErrorUnknown;
    }
}

/// Turns the result of a system call that answers -1 and sets errno into one of the contract.
inline int vxFileResult(int aResult) {
    return aResult < 0 ? vxFileErrorFrom(errno) : 0;
}

/// A null name is an empty one: the system finds nothing under it.
inline const char* vxNameOrEmpty(const char* aPath) {
    return aPath == nullptr ? "" : aPath;
}

/// Repeats a system call for as long as signals interrupt it.
template <typename Call>
auto vxUninterrupted(Call aCall) -> decltype(aCall()) {
    decltype(aCall()) theResult;
    do {
        theResult = aCall();
    } while (theResult < 0 && errno == EINTR);
    return theResult;
}
