// A file is replaced by writing a temporary file beside it, bringing that to the medium, and renaming
// it over the old one; the directory is brought to the medium too, for it holds the name.

#include "WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <memory>

namespace {

constexpr off_t kvxWholeFile_MaxSize = 16 * 1024 * 1024;
constexpr int kvxWholeFile_NameTries = 100;

class vxDescriptor {
public:
    explicit vxDescriptor(int aFD) : mFD(aFD) {}
    ~vxDescriptor() { Close(); }
    vxDescriptor(const vxDescriptor&) = delete;
    vxDescriptor& operator=(const vxDescriptor&) = delete;

    int Get() const { return mFD; }
    bool IsValid() const { return mFD >= 0; }

    int Close() {
        const int theResult = mFD >= 0 ? close(mFD) : 0;
        mFD = -1;
        return theResult;
    }

private:
    int mFD;
};

int vxOpen(const std::string& aPath, int aFlags, mode_t aMode = 0) {
    int theFD;
    do {
        theFD = open(aPath.c_str(), aFlags | O_CLOEXEC, aMode);
    } while (theFD < 0 && errno == EINTR);
    return theFD;
}

bool vxReadAll(int aFD, size_t aSize, std::string* aText) {
    aText->resize(aSize);
    size_t theDone = 0;
    while (theDone < aSize) {
        const ssize_t theCount = read(aFD, &(*aText)[theDone], aSize - theDone);
        if (theCount < 0 && errno == EINTR) {
            continue;
        }
        if (theCount < 0) {
            return false;
        }
        if (theCount == 0) {
            break;
        }
        theDone += static_cast<size_t>(theCount);
    }
    aText->resize(theDone);
    return true;
}

bool vxWriteAll(int aFD, const std::string& aText) {
    size_t theDone = 0;
    while (theDone < aText.size()) {
        const ssize_t theCount = write(aFD, aText.data() + theDone, aText.size() - theDone);
        if (theCount < 0 && errno == EINTR) {
            continue;
        }
        if (theCount <= 0) {
            errno = theCount == 0 ? EIO : errno;
            return false;
        }
        theDone += static_cast<size_t>(theCount);
    }
    return true;
}

bool vxSync(int aFD) {
    int theResult;
    do {
        theResult = fsync(aFD);
    } while (theResult < 0 && errno == EINTR);
    return theResult == 0;
}

std::string vxDirectoryOf(const std::string& aPath) {
    return aPath.substr(0, aPath.rfind('/') + 1);  // empty for a name alone
}

std::string vxResolved(const std::string& aPath) {
    const std::unique_ptr<char, void (*)(void*)> theReal(realpath(aPath.c_str(), nullptr), free);
    return theReal == nullptr ? aPath : theReal.get();
}

// Opens a file beside the one that is replaced, under a name that nobody has. The name is short,
// however long the other is.
int vxOpenTemporary(const std::string& aDirectory, mode_t aMode, std::string* aPath) {
    static std::atomic<unsigned> sCount{0};
    for (int i = 0; i < kvxWholeFile_NameTries; ++i) {
        *aPath = aDirectory + ".vx" + std::to_string(getpid()) + "-" +
                 std::to_string(sCount.fetch_add(1, std::memory_order_relaxed)) + ".tmp";
        const int theFD = vxOpen(*aPath, O_WRONLY | O_CREAT | O_EXCL, aMode);
        if (theFD >= 0 || errno != EEXIST) {
            return theFD;
        }
    }
    return -1;
}

// Some file systems keep no owners or modes; what they give is then never more than the old file's.
void vxTakeOver(int aFD, const struct stat& anOld) {
    struct stat theNew;
    if (fstat(aFD, &theNew) != 0) {
        return;
    }
    if (theNew.st_uid != anOld.st_uid || theNew.st_gid != anOld.st_gid) {
        static_cast<void>(fchown(aFD, anOld.st_uid, anOld.st_gid) == 0);
    }
    if (theNew.st_mode != anOld.st_mode) {
        static_cast<void>(fchmod(aFD, anOld.st_mode & 0777));
    }
}

bool vxMayReplace(const std::string& aPath, struct stat* anOld, bool* afExists) {
    *afExists = stat(aPath.c_str(), anOld) == 0;
    if (!*afExists) {
        return errno == ENOENT;
    }
    // A file that must not be written is not exchanged for another either.
    return faccessat(AT_FDCWD, aPath.c_str(), W_OK, AT_EACCESS) == 0;
}

}  // namespace

vxWholeFileResult vxWholeFile_Read(const std::string& aPath, std::string* aText) {
    aText->clear();
    // A named pipe in place of a file must not keep the program waiting.
    const vxDescriptor theFile(vxOpen(aPath, O_RDONLY | O_NONBLOCK));
    if (!theFile.IsValid()) {
        return errno == ENOENT ? vxWholeFileResult::Missing : vxWholeFileResult::Failed;
    }
    struct stat theStat;
    if (fstat(theFile.Get(), &theStat) != 0 || !S_ISREG(theStat.st_mode) ||
        theStat.st_size > kvxWholeFile_MaxSize ||
        !vxReadAll(theFile.Get(), static_cast<size_t>(theStat.st_size), aText)) {
        aText->clear();
        return vxWholeFileResult::Failed;
    }
    return vxWholeFileResult::Read;
}

int vxWholeFile_Replace(const std::string& aPath, const std::string& aText) {
    const std::string thePath = vxResolved(aPath);
    struct stat theOld;
    bool theExists;
    if (!vxMayReplace(thePath, &theOld, &theExists)) {
        return errno;
    }
    const std::string theDirectory = vxDirectoryOf(thePath);
    std::string theTemporary;
    vxDescriptor theFile(
        vxOpenTemporary(theDirectory, theExists ? theOld.st_mode & 0777 : 0666, &theTemporary));
    if (!theFile.IsValid()) {
        return errno;
    }
    if (theExists) {
        vxTakeOver(theFile.Get(), theOld);
    }
    if (!vxWriteAll(theFile.Get(), aText) || !vxSync(theFile.Get()) || theFile.Close() != 0 ||
        rename(theTemporary.c_str(), thePath.c_str()) != 0) {
        const int theError = errno;
        unlink(theTemporary.c_str());
        return theError;
    }
    // The new file is in place; a directory that cannot be synchronised takes nothing back.
    const vxDescriptor theHolder(
        vxOpen(theDirectory.empty() ? "." : theDirectory, O_RDONLY | O_DIRECTORY));
    if (theHolder.IsValid()) {
        static_cast<void>(vxSync(theHolder.Get()));
    }
    return 0;
}

bool vxWholeFile_MakeDirectory(const std::string& aPath) {
    struct stat theStat;
    if (stat(aPath.c_str(), &theStat) == 0) {
        return S_ISDIR(theStat.st_mode);
    }
    for (size_t thePos = aPath.find('/', 1); thePos != std::string::npos;
         thePos = aPath.find('/', thePos + 1)) {
        static_cast<void>(mkdir(aPath.substr(0, thePos).c_str(), 0777));
    }
    static_cast<void>(mkdir(aPath.c_str(), 0777));
    return stat(aPath.c_str(), &theStat) == 0 && S_ISDIR(theStat.st_mode);
}
