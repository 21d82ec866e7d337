// Whole files, lines, listings and paths beside the C library, the standard library and other
// toolkits. Files are in the page cache: what is measured is the way from there to the caller.

#include <Poco/FileStream.h>
#include <Poco/Path.h>
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <glib.h>
#include <glob.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "vx/CString.h"
#include "vx/DataBuffer.h"
#include "vx/Dir.h"
#include "vx/Error.h"
#include "vx/FileHelper.h"
#include "vx/PathName.h"
#include "vx/TextFile.h"

namespace {

// Registers one measurement: a name and the call that runs it.
#define CASE(aName, ...)                                                \
    [[maybe_unused]] static auto* const BENCHMARK_PRIVATE_NAME(sCase) = \
        benchmark::RegisterBenchmark(aName, [](benchmark::State& aState) { __VA_ARGS__; })

constexpr size_t kSmall = 4096;
constexpr size_t kBig = 10 * 1000 * 1000;

// The files that all measurements read, made once and removed at the end of the program.
class Files {
public:
    Files() {
        char thePattern[] = "/tmp/vxbenchXXXXXX";
        mRoot = mkdtemp(thePattern);
        std::filesystem::create_directory(mRoot / "list");
        for (int i = 0; i < 1000; i++) {
            const char* theExtension = i % 2 == 0 ? ".mp3" : ".flac";
            std::ofstream(mRoot / "list" / ("track number " + std::to_string(i) + theExtension));
        }
        Write("small", kSmall);
        Write("big", kBig);
    }
    ~Files() { std::filesystem::remove_all(mRoot); }

    std::string operator/(const char* aName) const { return (mRoot / aName).string(); }

private:
    // Lines of 0 to 99 bytes, 50 on average.
    void Write(const char* aName, size_t aSize) {
        std::string theText;
        for (size_t i = 0; theText.size() < aSize; i++) {
            theText.append(i * 37 % 100, 'x') += '\n';
        }
        theText.resize(aSize);
        std::ofstream(mRoot / aName, std::ios::binary) << theText;
    }

    std::filesystem::path mRoot;
};

const Files& TheFiles() {
    static const Files sFiles;
    return sFiles;
}

// Loads a file whole; the loader returns its size, having held all of it in memory.
template <typename Loader, typename Path>
void Load(benchmark::State& aState, const char* aName, Loader aLoader, Path aPath) {
    const std::string theName = TheFiles() / aName;
    const auto thePath = aPath(theName);
    const size_t theSize = std::filesystem::file_size(theName);
    for (auto _ : aState) {
        if (aLoader(thePath) != theSize) {
            aState.SkipWithError("not loaded");
            return;
        }
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * theSize));
}

size_t VxLoad(const vxPathName& aPath) {
    vxDataBuffer theBuffer;
    vxFileHelper::LoadInBuffer(aPath, theBuffer);
    benchmark::DoNotOptimize(theBuffer.data());
    return theBuffer.size();
}

size_t PosixLoad(const std::string& aPath) {
    const int theFD = open(aPath.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat theState;
    fstat(theFD, &theState);
    const size_t theSize = static_cast<size_t>(theState.st_size);
    void* theBytes = malloc(theSize);
    const ssize_t theCount = read(theFD, theBytes, theSize);
    benchmark::DoNotOptimize(theBytes);
    close(theFD);
    free(theBytes);
    return static_cast<size_t>(theCount);
}

size_t CLoad(const std::string& aPath) {
    FILE* theFile = fopen(aPath.c_str(), "rb");
    fseek(theFile, 0, SEEK_END);
    const size_t theSize = static_cast<size_t>(ftell(theFile));
    rewind(theFile);
    void* theBytes = malloc(theSize);
    const size_t theCount = fread(theBytes, 1, theSize, theFile);
    benchmark::DoNotOptimize(theBytes);
    fclose(theFile);
    free(theBytes);
    return theCount;
}

size_t StdLoad(const std::string& aPath) {
    std::ifstream theFile(aPath, std::ios::binary | std::ios::ate);
    std::string theBytes(static_cast<size_t>(theFile.tellg()), '\0');
    theFile.seekg(0);
    theFile.read(theBytes.data(), static_cast<std::streamsize>(theBytes.size()));
    benchmark::DoNotOptimize(theBytes.data());
    return static_cast<size_t>(theFile.gcount());
}

size_t GLibLoad(const std::string& aPath) {
    gchar* theBytes;
    gsize theSize;
    g_file_get_contents(aPath.c_str(), &theBytes, &theSize, nullptr);
    benchmark::DoNotOptimize(theBytes);
    g_free(theBytes);
    return theSize;
}

size_t QtLoad(const std::string& aPath) {
    QFile theFile(QString::fromStdString(aPath));
    theFile.open(QIODevice::ReadOnly);
    const QByteArray theBytes = theFile.readAll();
    benchmark::DoNotOptimize(theBytes.constData());
    return static_cast<size_t>(theBytes.size());
}

vxPathName AsPathName(const std::string& aPath) {
    return vxPathName::MakeFilePath(aPath.c_str());
}

std::string AsText(const std::string& aPath) {
    return aPath;
}

#define LOAD_CASES(aItem, aName)                                                                 \
    CASE("files/load_whole/" aItem "/vx", Load(aState, aName, VxLoad, AsPathName));              \
    CASE("files/load_whole/" aItem "/posix_read", Load(aState, aName, PosixLoad, AsText));       \
    CASE("files/load_whole/" aItem "/libc_fread", Load(aState, aName, CLoad, AsText));           \
    CASE("files/load_whole/" aItem "/std_ifstream", Load(aState, aName, StdLoad, AsText));       \
    CASE("files/load_whole/" aItem "/GLib_get_contents", Load(aState, aName, GLibLoad, AsText)); \
    CASE("files/load_whole/" aItem "/QFile_readAll", Load(aState, aName, QtLoad, AsText))

LOAD_CASES("4k", "small");
LOAD_CASES("10MB", "big");

// Reads all lines of a text; each is a text of its own for the caller.
template <typename Reader>
void ReadLines(benchmark::State& aState, Reader aReader) {
    const std::string thePath = TheFiles() / "big";
    for (auto _ : aState) {
        size_t theLength = aReader(thePath);
        benchmark::DoNotOptimize(theLength);
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kBig));
}

// The peers take lines of any length; what comes closest here is a generous limit.
size_t VxLines(const std::string& aPath) {
    vxTextFile theFile(aPath.c_str(), 65536);
    vxCString theLine;
    size_t theLength = 0;
    while (theFile.NextLine(theLine)) {
        theLength += theLine.length();
    }
    return theLength;
}

size_t CLines(const std::string& aPath) {
    FILE* theFile = fopen(aPath.c_str(), "r");
    char* theLine = nullptr;
    size_t theCapacity = 0;
    size_t theLength = 0;
    ssize_t theCount;
    while ((theCount = getline(&theLine, &theCapacity, theFile)) > 0) {
        theLength += static_cast<size_t>(theCount);
    }
    free(theLine);
    fclose(theFile);
    return theLength;
}

template <typename Stream>
size_t StreamLines(const std::string& aPath) {
    Stream theFile(aPath);
    std::string theLine;
    size_t theLength = 0;
    while (std::getline(theFile, theLine)) {
        theLength += theLine.size();
    }
    return theLength;
}

CASE("files/read_lines_10MB/vx", ReadLines(aState, VxLines));
CASE("files/read_lines_10MB/libc_getline", ReadLines(aState, CLines));
CASE("files/read_lines_10MB/std_getline", ReadLines(aState, StreamLines<std::ifstream>));
CASE("files/read_lines_10MB/Poco_FileInputStream",
     ReadLines(aState, StreamLines<Poco::FileInputStream>));

// Lists the 500 names of 1000 that fit a pattern.
template <typename Lister>
void List(benchmark::State& aState, Lister aLister) {
    const std::string thePath = TheFiles() / "list";
    for (auto _ : aState) {
        if (aLister(thePath) != 500) {
            aState.SkipWithError("not listed");
            return;
        }
    }
}

size_t VxList(const std::string& aPath) {
    vxDir theDir(aPath.c_str());
    vxPathName theEntry;
    size_t theCount = 0;
    for (bool theMore = theDir.GetFirst(theEntry, "*.mp3", vxDIR_FILES); theMore;
         theMore = theDir.GetNext(theEntry)) {
        benchmark::DoNotOptimize(theEntry);
        ++theCount;
    }
    return theCount;
}

size_t GLibList(const std::string& aPath) {
    GPatternSpec* thePattern = g_pattern_spec_new("*.mp3");
    GDir* theDir = g_dir_open(aPath.c_str(), 0, nullptr);
    size_t theCount = 0;
    while (const char* theName = g_dir_read_name(theDir)) {
        theCount += g_pattern_spec_match_string(thePattern, theName) ? 1 : 0;
    }
    g_dir_close(theDir);
    g_pattern_spec_free(thePattern);
    return theCount;
}

size_t PosixList(const std::string& aPath) {
    DIR* theDir = opendir(aPath.c_str());
    size_t theCount = 0;
    while (const dirent* theEntry = readdir(theDir)) {
        theCount += fnmatch("*.mp3", theEntry->d_name, 0) == 0 ? 1 : 0;
    }
    closedir(theDir);
    return theCount;
}

size_t CList(const std::string& aPath) {
    glob_t theNames;
    glob((aPath + "/*.mp3").c_str(), GLOB_NOSORT, nullptr, &theNames);
    const size_t theCount = theNames.gl_pathc;
    globfree(&theNames);
    return theCount;
}

CASE("files/list_wildcard_1000/vx", List(aState, VxList));
CASE("files/list_wildcard_1000/GDir_GPatternSpec", List(aState, GLibList));
CASE("files/list_wildcard_1000/posix_readdir_fnmatch", List(aState, PosixList));
CASE("files/list_wildcard_1000/libc_glob", List(aState, CList));

// Puts a directory and a name together and takes directory, base name and extension of the result.
constexpr char kDir[] = "/media/music/albums/first";
constexpr char kName[] = "track.01.flac";

void VxCombine(benchmark::State& aState) {
    for (auto _ : aState) {
        vxPathName thePath = vxPathName::MakeFilePath(kDir, kName);
        vxCString theWhole = thePath.GetFullPath();
        vxCString theDir = thePath.GetPath();
        vxCString theBase = thePath.GetFileName();
        vxCString theExtension = thePath.GetExtension();
        benchmark::DoNotOptimize(theWhole);
        benchmark::DoNotOptimize(theDir);
        benchmark::DoNotOptimize(theBase);
        benchmark::DoNotOptimize(theExtension);
    }
}

void GLibCombine(benchmark::State& aState) {
    for (auto _ : aState) {
        gchar* theWhole = g_build_filename(kDir, kName, nullptr);
        gchar* theDir = g_path_get_dirname(theWhole);
        gchar* theBase = g_path_get_basename(theWhole);
        gchar* theExtension = strrchr(theBase, '.');
        benchmark::DoNotOptimize(theExtension);
        benchmark::DoNotOptimize(theDir);
        g_free(theBase);
        g_free(theDir);
        g_free(theWhole);
    }
}

void QtCombine(benchmark::State& aState) {
    const QDir theParent(kDir);
    const QString theName(kName);
    for (auto _ : aState) {
        const QFileInfo thePath(theParent.filePath(theName));
        QString theWhole = thePath.filePath();
        QString theDir = thePath.path();
        QString theBase = thePath.completeBaseName();
        QString theExtension = thePath.suffix();
        benchmark::DoNotOptimize(theWhole);
        benchmark::DoNotOptimize(theDir);
        benchmark::DoNotOptimize(theBase);
        benchmark::DoNotOptimize(theExtension);
    }
}

void PocoCombine(benchmark::State& aState) {
    for (auto _ : aState) {
        const Poco::Path thePath(std::string{kDir}, std::string{kName});
        std::string theWhole = thePath.toString();
        std::string theDir = thePath.parent().toString();
        std::string theBase = thePath.getBaseName();
        std::string theExtension = thePath.getExtension();
        benchmark::DoNotOptimize(theWhole);
        benchmark::DoNotOptimize(theDir);
        benchmark::DoNotOptimize(theBase);
        benchmark::DoNotOptimize(theExtension);
    }
}

CASE("files/path_combine_split/vx", VxCombine(aState));
CASE("files/path_combine_split/GLib", GLibCombine(aState));
CASE("files/path_combine_split/QDir_QFileInfo", QtCombine(aState));
CASE("files/path_combine_split/Poco_Path", PocoCombine(aState));

// Resolves doubled separators, `.` and `..` in a path.
constexpr char kUntidy[] = "/media/music//albums/../artists/./first/name";

void VxNormalise(benchmark::State& aState) {
    for (auto _ : aState) {
        vxPathName thePath = vxPathName::MakeDirPath(kUntidy);
        thePath.SimplifyPath();
        benchmark::DoNotOptimize(thePath);
    }
}

void GLibNormalise(benchmark::State& aState) {
    for (auto _ : aState) {
        gchar* thePath = g_canonicalize_filename(kUntidy, nullptr);
        benchmark::DoNotOptimize(thePath);
        g_free(thePath);
    }
}

void QtNormalise(benchmark::State& aState) {
    const QString theUntidy(kUntidy);
    for (auto _ : aState) {
        QString thePath = QDir::cleanPath(theUntidy);
        benchmark::DoNotOptimize(thePath);
    }
}

void PocoNormalise(benchmark::State& aState) {
    for (auto _ : aState) {
        std::string thePath = Poco::Path(kUntidy).toString();
        benchmark::DoNotOptimize(thePath);
    }
}

CASE("files/path_normalise/vx", VxNormalise(aState));
CASE("files/path_normalise/GLib_g_canonicalize_filename", GLibNormalise(aState));
CASE("files/path_normalise/QDir_cleanPath", QtNormalise(aState));
CASE("files/path_normalise/Poco_Path", PocoNormalise(aState));

}  // namespace
