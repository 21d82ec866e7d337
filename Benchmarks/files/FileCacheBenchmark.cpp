// A ready file of the disk cache, opened for reading and closed. The floor is what the system takes
// to open a file of that path; the peers only open, and keep no account of what was used last.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <QFile>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "vx/File.h"
#include "vx/FileCacheManager.h"

namespace {

constexpr int kFiles = 1000;

std::string NameOf(int aFile) {
    return "cover-" + std::to_string(aFile) + ".jpg";
}

/// A directory of small files that the cache has found there.
class Cache {
public:
    Cache() {
        char theTemplate[] = "/tmp/benchmarkXXXXXX";
        mDirectory = mkdtemp(theTemplate);
        for (int i = 0; i < kFiles; ++i) {
            std::ofstream(PathOf(i)) << "content";
        }
        mManager.reset(vxFileCacheManager::New(UINT32_MAX, mDirectory.c_str(), "", ""));
    }
    ~Cache() {
        mManager->Empty(true);
        rmdir(mDirectory.c_str());
    }
    std::string PathOf(int aFile) const { return mDirectory + "/" + NameOf(aFile); }

    std::unique_ptr<vxFileCacheManager> mManager;

private:
    std::string mDirectory;
};

struct VX {
    VX(const Cache& aCache, int aFile) : mManager(*aCache.mManager), mName(NameOf(aFile).c_str()) {}
    bool Open() {
        bool theIsNew = false;
        const std::unique_ptr<vxFile> theFile(mManager.OpenCachedFile(
            mName, &theIsNew, kvxFileCacheOpenMode_CreateReadWrite_OpenRead));
        return theFile != nullptr && !theIsNew;
    }
    vxFileCacheManager& mManager;
    vxCString mName;
};

struct Posix {
    Posix(const Cache& aCache, int aFile) : mPath(aCache.PathOf(aFile)) {}
    bool Open() {
        const int theFile = open(mPath.c_str(), O_RDONLY | O_CLOEXEC);
        close(theFile);
        return theFile >= 0;
    }
    std::string mPath;
};

struct Libc : Posix {
    using Posix::Posix;
    bool Open() {
        FILE* theFile = fopen(mPath.c_str(), "re");
        fclose(theFile);
        return theFile != nullptr;
    }
};

struct Ifstream : Posix {
    using Posix::Posix;
    bool Open() { return std::ifstream(mPath).is_open(); }
};

struct Qt {
    Qt(const Cache& aCache, int aFile) : mPath(QString::fromStdString(aCache.PathOf(aFile))) {}
    bool Open() {
        QFile theFile(mPath);
        return theFile.open(QIODevice::ReadOnly);
    }
    QString mPath;
};

// How long does it take to open a file that is there?
template <typename Lib>
void Open(benchmark::State& aState) {
    const Cache theCache;
    Lib theLib(theCache, kFiles / 2);
    for (auto _ : aState) {
        if (!theLib.Open()) {
            aState.SkipWithError("cannot open");
            break;
        }
    }
}
BENCHMARK_TEMPLATE(Open, VX)->Name("filecache/open_ready/vx");
BENCHMARK_TEMPLATE(Open, Posix)->Name("filecache/open_ready/posix_open");
BENCHMARK_TEMPLATE(Open, Libc)->Name("filecache/open_ready/libc_fopen");
BENCHMARK_TEMPLATE(Open, Ifstream)->Name("filecache/open_ready/std_ifstream");
BENCHMARK_TEMPLATE(Open, Qt)->Name("filecache/open_ready/QFile");

}  // namespace
