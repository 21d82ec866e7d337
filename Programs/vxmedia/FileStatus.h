#pragma once

#include <cstdint>

namespace vxmedia {

/// What a path names.
enum class FileKind { Missing, Regular, Directory, Link, Special };

/// Returns a sum, or the highest number where it would be higher: files can say anything.
constexpr uint64_t SaturatedSum(uint64_t aLeft, uint64_t aRight) {
    return aRight > UINT64_MAX - aLeft ? UINT64_MAX : aLeft + aRight;
}

/// What makes a file or directory the same one under all its names.
struct FileIdentity {
    uint64_t mDevice = 0;
    uint64_t mNode = 0;

    bool operator==(const FileIdentity& anOther) const {
        return mDevice == anOther.mDevice && mNode == anOther.mNode;
    }
    bool operator<(const FileIdentity& anOther) const {
        return mDevice != anOther.mDevice ? mDevice < anOther.mDevice : mNode < anOther.mNode;
    }
};

struct FileStatus {
    FileKind mKind = FileKind::Missing;
    uint64_t mSize = 0;     // bytes of a regular file, else 0
    int64_t mModified = 0;  // nanoseconds since 1970: when a regular file was changed last, else 0
    FileIdentity mIdentity;

    /// Returns whether it is the same file, and was not changed in between.
    bool IsSameAs(const FileStatus& anOther) const {
        return mKind == anOther.mKind && mSize == anOther.mSize && mModified == anOther.mModified &&
               mIdentity == anOther.mIdentity;
    }
};

/// Finds out what the path names without opening it: opening a pipe could wait for ever.
///
/// A symbolic link is looked through only with `afFollow`. What cannot be examined counts as missing.
FileStatus GetFileStatus(const char* aPath, bool afFollow);

/// Returns the system's number of the error with which a directory cannot be opened; 0: it can.
int GetDirectoryError(const char* aPath);

}  // namespace vxmedia
