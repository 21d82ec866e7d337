#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "FileStatus.h"

namespace vxmedia {

static_assert(sizeof(off_t) == sizeof(uint64_t), "compile with _FILE_OFFSET_BITS=64");

namespace {

FileKind KindOf(mode_t aMode) {
    if (S_ISREG(aMode)) {
        return FileKind::Regular;
    }
    if (S_ISDIR(aMode)) {
        return FileKind::Directory;
    }
    return S_ISLNK(aMode) ? FileKind::Link : FileKind::Special;
}

int64_t NanosecondsOf(const timespec& aTime) {
    return int64_t{aTime.tv_sec} * 1000000000 + aTime.tv_nsec;
}

}  // namespace

FileStatus GetFileStatus(const char* aPath, bool afFollow) {
    struct stat theStat;
    FileStatus theStatus;
    if ((afFollow ? stat(aPath, &theStat) : lstat(aPath, &theStat)) != 0) {
        return theStatus;
    }
    theStatus.mKind = KindOf(theStat.st_mode);
    theStatus.mIdentity = FileIdentity{theStat.st_dev, theStat.st_ino};
    if (theStatus.mKind == FileKind::Regular) {
        theStatus.mSize = static_cast<uint64_t>(theStat.st_size);
        theStatus.mModified = NanosecondsOf(theStat.st_mtim);
    }
    return theStatus;
}

int GetDirectoryError(const char* aPath) {
    const int theFD = open(aPath, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (theFD < 0) {
        return errno;
    }
    close(theFD);
    return 0;
}

}  // namespace vxmedia
