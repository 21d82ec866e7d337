#pragma once

#include <cstdint>

#include "FileStatus.h"
#include "readers/MediaReader.h"
#include "vx/CString.h"
#include "vx/Ref.h"

namespace vxmedia {

/// The order of paths: byte by byte.
struct PathLess {
    bool operator()(const vxCString& aLeft, const vxCString& aRight) const {
        return aLeft.Compare(aRight) < 0;
    }
};

/// One media file of the library.
///
/// Its number and path stay for as long as it lives; a later scan may renew the rest.
///
/// Owner:    its handles. Destroying a watched item ends the watch.
class MediaItem : public vxRefCounted {
public:
    MediaItem(uint32_t anID, const vxCString& aPath) : mID(anID), mPath(aPath) {}
    ~MediaItem() override;

    /// Takes over what a scan has found out.
    void Renew(const FileStatus& aStatus, const MediaReading& aReading);

    /// Returns whether the file has the size and the time that it had when it was read.
    bool IsUnchanged(const FileStatus& aStatus) const {
        return aStatus.mSize == mSize && aStatus.mModified == mModified;
    }

    /// Lets the library log every retain and release of this item, and of no other.
    void Watch();

    uint32_t GetID() const { return mID; }
    const vxCString& GetPath() const { return mPath; }
    const MediaFormat& GetFormat() const { return *mFormat; }
    uint64_t GetSize() const { return mSize; }
    int64_t GetModified() const { return mModified; }
    const MediaFacts& GetFacts() const { return mFacts; }

private:
    static const MediaItem* sWatched;  // null: none

    const uint32_t mID;                 // from 1
    const vxCString mPath;              // bytes as the file system has them
    const MediaFormat* mFormat = NULL;  // set by Renew()
    uint64_t mSize = 0;                 // bytes
    int64_t mModified = 0;              // nanoseconds since 1970
    MediaFacts mFacts;
};

}  // namespace vxmedia
