// A file cache whose files are replaced, not written.
//
// The manager sees to it that a cover has one producer. The file that it creates stays empty; the
// cover is written beside it and takes its name. So an empty file that nobody is producing was left
// by a program that was killed, and everything else is whole. What a killed program leaves beside it
// is removed with the covers, as the one used longest ago.
//
// The manager knows what was in the directory when it was opened, and its total drifts when others
// remove files. Wherever it cannot give a file, or has removed the one just written, it is opened
// anew, when nobody else uses it, and asked again.

#include "cache/CoverStore.h"

#include <libvxOS/Dir.h>

#include <algorithm>
#include <cstring>

#include "FileStatus.h"
#include "WholeFile.h"
#include "vx/Dir.h"
#include "vx/File.h"
#include "vx/FileCacheManager.h"
#include "vx/PathName.h"

namespace vxmedia {

namespace {

constexpr int kCover_Attempts = 4;
constexpr const char* kCover_TrimName = ".trim";
constexpr const char* kCover_DirectoryName = "covers";
constexpr const char* kCover_ProgramName = "vxmedia";

// The system's directory is shared with other programs.
const char* ProgramDirectory(const CoverPlace& aPlace) {
    return aPlace.mDirectory.empty() ? kCover_ProgramName : "";
}

vxPathName BaseDirectory(const CoverPlace& aPlace) {
    return aPlace.mDirectory.empty() ? vxPathName::MakeCacheDirPath()
                                     : vxPathName::MakeDirPath(aPlace.mDirectory.c_str());
}

vxPathName CoverDirectory(const CoverPlace& aPlace) {
    vxPathName thePath = BaseDirectory(aPlace);
    if (aPlace.mDirectory.empty()) {
        thePath.AppendPathPart(kCover_ProgramName);
    }
    thePath.AppendPathPart(kCover_DirectoryName);
    return thePath;
}

// 4096 megabytes are one byte more than the manager can count to.
uint32_t LimitOf(const CoverPlace& aPlace) {
    return static_cast<uint32_t>(
        std::min<uint64_t>(uint64_t{aPlace.mLimitMBytes} << 20, UINT32_MAX));
}

bool StartsWith(const uint8_t* aBytes, size_t aCount, const char* aStart, size_t aLength) {
    return aCount >= aLength && memcmp(aBytes, aStart, aLength) == 0;
}

const char* MimeTypeOf(const uint8_t* aBytes, size_t aCount) {
    static constexpr struct {
        const char* mStart;
        size_t mLength;
        const char* mMimeType;
    } kTypes[] = {
        {"\xFF\xD8\xFF", 3, "image/jpeg"}, {"\x89PNG\r\n\x1A\n", 8, "image/png"},
        {"GIF8", 4, "image/gif"},          {"BM", 2, "image/bmp"},
        {"II*\0", 4, "image/tiff"},        {"MM\0*", 4, "image/tiff"},
    };
    for (const auto& theType : kTypes) {
        if (StartsWith(aBytes, aCount, theType.mStart, theType.mLength)) {
            return theType.mMimeType;
        }
    }
    const bool theIsWebP =
        aCount >= 12 && StartsWith(aBytes, aCount, "RIFF", 4) && memcmp(aBytes + 8, "WEBP", 4) == 0;
    return theIsWebP ? "image/webp" : "application/octet-stream";
}

// The manager looks at its limit when a file is complete. An empty one makes it look.
void Trim(vxFileCacheManager& aManager) {
    bool theIsNew = false;
    const std::unique_ptr<vxFile> theFile(aManager.OpenCachedFile(
        kCover_TrimName, &theIsNew, kvxFileCacheOpenMode_CreateReadWrite_OpenRead));
    if (theIsNew) {
        aManager.SetCachedFileState(kCover_TrimName, theFile.get(), true);
    }
    if (theFile != nullptr) {
        aManager.RemoveTempFile(kCover_TrimName);
    }
}

vxCString UnusableError(const vxPathName& aDirectory) {
    return vxCString("ERROR: Unable to keep covers in '") + aDirectory.c_str() + "'";
}

}  // namespace

CoverStore::CoverStore() = default;

CoverStore::~CoverStore() = default;

void CoverStore::SetPlace(const CoverPlace& aPlace) {
    const std::lock_guard<std::mutex> theLock(mPlaceMutex);
    mPlace = aPlace;
}

CoverPlace CoverStore::GetPlace() const {
    const std::lock_guard<std::mutex> theLock(mPlaceMutex);
    return mPlace;
}

Cover CoverStore::Fetch(const vxCString& aName, const Producer& aProducer) {
    Cover theCover;
    theCover.mError = Open(false);
    for (int i = 0; theCover.mError.IsEmpty() && i < kCover_Attempts; ++i) {
        if (TryFetch(aName, aProducer, theCover) != Outcome::Unusable) {
            return theCover;
        }
        theCover.mError = Repair(aName);
    }
    if (theCover.mError.IsEmpty()) {
        theCover.mError = UnusableError(CoverDirectory(GetPlace()));
    }
    return theCover;
}

vxCString CoverStore::Empty(bool afRemoveDir) {
    vxCString theError = Open(false);
    if (!theError.IsEmpty()) {
        return theError;
    }
    const std::unique_lock<std::shared_mutex> theLock(mUseMutex);
    const vxPathName theDirectory = CoverDirectory(mOpenPlace);
    if (!theDirectory.DirExists() || mManager->Empty(afRemoveDir)) {
        return vxCString();
    }
    return vxCString("ERROR: Unable to empty '") + theDirectory.c_str() + "'";
}

CoverStore::Status CoverStore::GetStatus() const {
    const CoverPlace thePlace = GetPlace();
    const vxPathName theDirectory = CoverDirectory(thePlace);
    Status theStatus;
    theStatus.mDirectory = theDirectory.c_str();
    theStatus.mLimit = LimitOf(thePlace);
    theStatus.mFound = mFound;
    theStatus.mWritten = mWritten;
    vxDirTraverser* theWalk = vxDirTraverser_New(theDirectory);
    for (const vxDirEntry* theEntry =
             vxDirTraverser_GetFirst(theWalk, "*", vxDIR_FILES | vxDIR_HIDDEN, NULL);
         theEntry != NULL; theEntry = vxDirTraverser_GetNext(theWalk, NULL)) {
        theStatus.mCovers += 1;
        theStatus.mBytes += GetFileStatus(theStatus.mDirectory + theEntry->mName, false).mSize;
    }
    vxDirTraverser_Delete(theWalk);
    return theStatus;
}

// Opens the directory if that has not been done for the place that is set, or once more.
vxCString CoverStore::Open(bool afAnew) {
    const CoverPlace thePlace = GetPlace();
    if (!afAnew) {
        const std::shared_lock<std::shared_mutex> theLock(mUseMutex);
        if (mManager != nullptr && mOpenPlace == thePlace) {
            return vxCString();
        }
    }
    const std::unique_lock<std::shared_mutex> theLock(mUseMutex);
    const vxPathName theBase = BaseDirectory(thePlace);
    vxDir::CreateRecursively(theBase);
    vxFileCacheManager* theManager = vxFileCacheManager::New(
        LimitOf(thePlace), theBase.c_str(), ProgramDirectory(thePlace), kCover_DirectoryName);
    if (theManager == NULL) {
        // The manager that is there serves the place that was set before.
        return UnusableError(CoverDirectory(thePlace));
    }
    mManager.reset(theManager);
    Trim(*mManager);
    mOpenPlace = thePlace;
    mLimit = LimitOf(thePlace);
    return vxCString();
}

// Takes away an empty file that a killed program has left, and reads the directory anew.
vxCString CoverStore::Repair(const vxCString& aName) {
    {
        const std::unique_lock<std::shared_mutex> theLock(mUseMutex);
        const vxCString thePath = mManager->GetFullPath(aName);
        const FileStatus theStatus = GetFileStatus(thePath, false);
        if (theStatus.mKind != FileKind::Directory && theStatus.mSize == 0) {
            vxFile::Remove(thePath);
        }
    }
    return Open(true);
}

CoverStore::Outcome CoverStore::TryFetch(const vxCString& aName, const Producer& aProducer,
                                         Cover& aCover) {
    const std::shared_lock<std::shared_mutex> theLock(mUseMutex);
    bool theIsNew = false;
    const std::unique_ptr<vxFile> theFile(
        mManager->OpenCachedFile(aName, &theIsNew, kvxFileCacheOpenMode_CreateReadWrite_OpenRead));
    if (theFile == nullptr) {
        return Outcome::Unusable;
    }
    if (theIsNew) {
        return Produce(aName, aProducer, aCover);
    }
    if (!LookAt(aName, aCover)) {
        return Outcome::Unusable;
    }
    aCover.mfWritten = false;
    ++mFound;
    return Outcome::Done;
}

// Makes the cover whose name this thread has created.
CoverStore::Outcome CoverStore::Produce(const vxCString& aName, const Producer& aProducer,
                                        Cover& aCover) {
    std::vector<uint8_t> thePicture;
    aCover.mError = aProducer(thePicture);
    if (aCover.mError.IsEmpty() && thePicture.size() > mLimit) {
        aCover.mError = vxCString::Format(
            "ERROR: The cover has %lu bytes, more than all covers together may have",
            static_cast<unsigned long>(thePicture.size()));
    }
    if (aCover.mError.IsEmpty()) {
        aCover.mError =
            WriteWholeFile(mManager->GetFullPath(aName), thePicture.data(), thePicture.size());
    }
    mManager->SetCachedFileState(aName, NULL, aCover.mError.IsEmpty());
    if (!aCover.mError.IsEmpty()) {
        return Outcome::Failed;
    }
    aCover.mfWritten = true;
    if (!LookAt(aName, aCover)) {
        return Outcome::Unusable;
    }
    ++mWritten;
    return Outcome::Done;
}

// Fills in what the file itself tells; false when there is none, or nothing in it.
bool CoverStore::LookAt(const vxCString& aName, Cover& aCover) {
    aCover.mPath = mManager->GetFullPath(aName);
    uint8_t theStart[12];
    vxFile theFile;
    if (!theFile.Open(aCover.mPath, vxFileOpenMode_Read)) {
        return false;
    }
    const ssize_t theCount = theFile.Read(theStart, sizeof(theStart));
    if (theCount <= 0) {
        return false;
    }
    aCover.mBytes = static_cast<uint64_t>(std::max(theFile.Length(), int64_t{0}));
    aCover.mMimeType = MimeTypeOf(theStart, static_cast<size_t>(theCount));
    return true;
}

}  // namespace vxmedia
