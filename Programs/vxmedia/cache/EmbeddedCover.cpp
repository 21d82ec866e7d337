// The place of the cover is looked up anew, not taken from the library: a file may have changed since
// it was scanned.

#include "cache/EmbeddedCover.h"

#include "FileSource.h"
#include "readers/MediaReader.h"

namespace vxmedia {

namespace {

constexpr size_t kCover_MaxSize = 16 * 1024 * 1024;

// "ERROR: The file 'a.mp3' has no cover"
vxCString ErrorAbout(const char* aPath, const char* aTrouble) {
    return vxCString("ERROR: The file '") + aPath + "' " + aTrouble;
}

bool IsSame(const FileStatus& aLeft, const FileStatus& aRight) {
    return aLeft.mIdentity == aRight.mIdentity && aLeft.mSize == aRight.mSize &&
           aLeft.mModified == aRight.mModified;
}

// Reads the cover of the file that had this status. A file that is changed meanwhile must not leave
// its new cover under the old name.
vxCString ReadEmbeddedCover(const char* aPath, const FileStatus& aStatus,
                            std::vector<uint8_t>& aPicture) {
    FileSource theSource(aPath, aStatus.mSize);
    const CoverArt theArt = ReadMedia(theSource, aPath).mTags.mCoverArt;
    if (theSource.HasFailed()) {
        return ErrorAbout(aPath, "cannot be read");
    }
    if (!theArt.IsThere()) {
        return ErrorAbout(aPath, "has no cover");
    }
    if (theArt.mBytes.Size() > kCover_MaxSize) {
        return ErrorAbout(aPath, "has a cover of more than 16 MiB");
    }
    if (!ReadCoverArt(theSource, theArt, kCover_MaxSize, aPicture)) {
        return ErrorAbout(aPath, "has a cover that is broken");
    }
    return IsSame(aStatus, GetFileStatus(aPath, true))
               ? vxCString()
               : ErrorAbout(aPath, "was changed while it was read");
}

}  // namespace

vxCString CoverNameOf(const FileStatus& aStatus) {
    return vxCString::Format("%llx-%llx-%llx-%llx",
                             static_cast<unsigned long long>(aStatus.mIdentity.mDevice),
                             static_cast<unsigned long long>(aStatus.mIdentity.mNode),
                             static_cast<unsigned long long>(aStatus.mSize),
                             static_cast<unsigned long long>(aStatus.mModified));
}

Cover FetchEmbeddedCover(CoverStore& aStore, const char* aPath) {
    const FileStatus theStatus = GetFileStatus(aPath, true);
    if (theStatus.mKind != FileKind::Regular) {
        Cover theCover;
        theCover.mError = ErrorAbout(aPath, "has gone");
        return theCover;
    }
    return aStore.Fetch(CoverNameOf(theStatus), [&](std::vector<uint8_t>& aPicture) {
        return ReadEmbeddedCover(aPath, theStatus, aPicture);
    });
}

}  // namespace vxmedia
