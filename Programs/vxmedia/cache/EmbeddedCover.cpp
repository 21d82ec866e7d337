// The place of the cover is looked up anew, not taken from the library: a file may have changed since
// it was scanned.

#include "cache/EmbeddedCover.h"

#include "FileSource.h"
#include "readers/MediaReader.h"

namespace vxmedia {

namespace {

// Reads the cover of the file that had this status. A file that is changed meanwhile must not leave
// its new cover under the old name.
vxCString ReadEmbeddedCover(const char* aPath, const FileStatus& aStatus,
                            std::vector<uint8_t>& aPicture) {
    FileSource theSource(aPath, aStatus.mSize);
    const CoverArt theArt = ReadMedia(theSource, aPath).mTags.mCoverArt;
    if (theSource.HasFailed()) {
        return FileError(aPath, "cannot be read");
    }
    if (!theArt.IsThere()) {
        return FileError(aPath, "has no cover");
    }
    if (theArt.mBytes.Size() > kCover_MaxSize) {
        return FileError(aPath, "has a cover of more than 16 MiB");
    }
    if (!ReadCoverArt(theSource, theArt, kCover_MaxSize, aPicture)) {
        return FileError(aPath, "has a cover that is broken");
    }
    return aStatus.IsSameAs(GetFileStatus(aPath, true))
               ? vxCString()
               : FileError(aPath, "was changed while it was read");
}

}  // namespace

vxCString FileError(const char* aPath, const char* aTrouble) {
    return vxCString("ERROR: The file '") + aPath + "' " + aTrouble;
}

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
        theCover.mError = FileError(aPath, "has gone");
        return theCover;
    }
    return aStore.Fetch(CoverNameOf(theStatus), [&](std::vector<uint8_t>& aPicture) {
        return ReadEmbeddedCover(aPath, theStatus, aPicture);
    });
}

}  // namespace vxmedia
