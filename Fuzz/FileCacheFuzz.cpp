// Any sequence of requests, with any names, leaves the world outside of the cache's directory alone,
// and a file that is ready holds what its producer wrote.

#include <vx/File.h>
#include <vx/FileCacheManager.h>

#include <filesystem>
#include <memory>
#include <vector>

#include "Input.h"

namespace {

using File = std::unique_ptr<vxFile>;

// One directory for all inputs of a process.
const std::string& Base() {
    static const std::string* const sBase = [] {
        char thePath[] = "/tmp/vxfuzzXXXXXX";
        vxfuzz::Expect(mkdtemp(thePath) != nullptr, "there is a temporary directory");
        std::atexit([] { std::filesystem::remove_all(Base()); });
        return new std::string(thePath);  // alive when the process ends
    }();
    return *sBase;
}

struct Writer {
    std::string mName;
    File mFile;
};

class Requests {
public:
    explicit Requests(uint32_t aMaxSize)
        : mCache(vxFileCacheManager::New(aMaxSize, Base().c_str(), "cache", "")) {}

    ~Requests() {
        mWriters.clear();
        vxfuzz::Expect(mCache->Empty(true), "all files go");
        size_t theCount = 0;
        for (const auto& theEntry : std::filesystem::directory_iterator(Base())) {
            theCount += theEntry.path().empty() ? 0 : 1;
        }
        vxfuzz::Expect(theCount == 0, "nothing is left behind outside");
    }

    void Open(const std::string& aName, int aMode) {
        if (IsWritten(aName)) {
            return;  // that would wait for this very thread
        }
        bool theCreated = false;
        File theFile(mCache->OpenCachedFile(aName.c_str(), &theCreated, aMode));
        vxfuzz::Expect(theFile != nullptr || !theCreated, "nothing is created without a file");
        if (theCreated) {
            mWriters.push_back({aName.c_str(), std::move(theFile)});
        } else if (theFile != nullptr) {
            char theBytes[256];
            const ssize_t theSize = theFile->Read(theBytes, sizeof(theBytes));
            vxfuzz::Expect(theSize >= 0, "what is open can be read");
            for (ssize_t i = 0; i < theSize; ++i) {
                vxfuzz::Expect(theBytes[i] == aName[0], "ready files hold what was written");
            }
        }
    }

    void Report(bool afOK, size_t aSize) {
        if (mWriters.empty()) {
            return;
        }
        const Writer theWriter = std::move(mWriters.back());
        mWriters.pop_back();
        const std::string theBytes(aSize, theWriter.mName[0]);
        theWriter.mFile->Write(theBytes.data(), theBytes.size());
        mCache->SetCachedFileState(theWriter.mName.c_str(), theWriter.mFile.get(), afOK);
    }

    void Remove(const std::string& aName) {
        if (!IsWritten(aName)) {
            mCache->RemoveTempFile(aName.c_str());
        }
    }

    void Forget(const std::string& aName) {
        if (!IsWritten(aName)) {
            mCache->Cache_FileRemoved(aName.c_str());
        }
    }

    void Ask(const std::string& aName) {
        int64_t theSize = 0;
        mCache->FetchInfoForFile(aName.c_str(), &theSize, nullptr);
        const vxCString thePath = mCache->GetFullPath(aName.c_str());
        vxfuzz::Expect(thePath.IsEmpty() || thePath.FindLastOf("/") == Base().size() + 6,
                       "paths lie in the directory");
    }

private:
    bool IsWritten(const std::string& aName) const {
        for (const Writer& theWriter : mWriters) {
            if (theWriter.mName == aName.c_str()) {
                return true;
            }
        }
        return false;
    }

    std::unique_ptr<vxFileCacheManager> mCache;
    std::vector<Writer> mWriters;  // created, and not reported
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxLog_SetLevel(kvxLogAllModules, VXLOGLEVEL_NONE);
    vxfuzz::Input theInput(aData, aSize);
    Requests theRequests(theInput.Byte());
    while (!theInput.IsEmpty()) {
        const uint8_t theRequest = theInput.Byte();
        switch (theRequest % 6) {
            case 0:
            case 1:
                theRequests.Open(theInput.Line(), theRequest / 6 % 5);
                break;
            case 2:
                theRequests.Report(theRequest / 6 % 8 != 0, theInput.Byte());
                break;
            case 3:
                theRequests.Remove(theInput.Line());
                break;
            case 4:
                theRequests.Forget(theInput.Line());
                break;
            default:
                theRequests.Ask(theInput.Line());
                break;
        }
    }
    return 0;
}
