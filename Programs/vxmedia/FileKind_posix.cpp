#include <sys/stat.h>

#include "FileKind.h"

namespace vxmedia {

static_assert(sizeof(off_t) == sizeof(uint64_t), "compile with _FILE_OFFSET_BITS=64");

FileKind GetFileKind(const char* aPath, bool afFollow, uint64_t* aSize) {
    struct stat theStatus;
    if (aSize != nullptr) {
        *aSize = 0;
    }
    if ((afFollow ? stat(aPath, &theStatus) : lstat(aPath, &theStatus)) != 0) {
        return FileKind::Missing;
    }
    if (S_ISDIR(theStatus.st_mode)) {
        return FileKind::Directory;
    }
    if (S_ISLNK(theStatus.st_mode)) {
        return FileKind::Link;
    }
    if (!S_ISREG(theStatus.st_mode)) {
        return FileKind::Special;
    }
    if (aSize != nullptr) {
        *aSize = static_cast<uint64_t>(theStatus.st_size);
    }
    return FileKind::Regular;
}

}  // namespace vxmedia
