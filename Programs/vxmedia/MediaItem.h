#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "FileStatus.h"
#include "readers/MediaReader.h"
#include "vx/CString.h"
#include "vx/MediaInfo.h"
#include "vx/Ref.h"

namespace vxmedia {

/// The order of paths, and of other texts: byte by byte.
struct PathLess {
    bool operator()(const vxCString& aLeft, const vxCString& aRight) const {
        return aLeft.Compare(aRight) < 0;
    }
};

/// One media file of the library.
///
/// Its number and path stay for as long as it lives; a later scan may renew the rest. What somebody
/// has edited is kept apart from what the file says, and stays when the file is read anew.
///
/// A library may have very many of them, so an item has only what it needs: tags and edits take a
/// pointer where there are none, texts are shared with neighbours, and the media info, which repeats
/// all that, is made whenever somebody asks.
///
/// Owner:    its handles. Destroying a watched item ends the watch.
/// Threads:  one at a time.
class MediaItem : public vxRefCounted {
public:
    /// Values by the names of editable keys; an empty one stands for a value that was taken away.
    using EditMap = std::map<vxCString, vxCString, PathLess>;

    MediaItem(uint32_t anID, const vxCString& aPath) : mID(anID), mPath(aPath) {}
    ~MediaItem() override;

    /// Takes over what a scan has found out.
    void Renew(const FileStatus& aStatus, const MediaReading& aReading);

    /// Returns whether the file has the size and the time that it had when it was read.
    bool IsUnchanged(const FileStatus& aStatus) const {
        return aStatus.mSize == mSize && aStatus.mModified == mModified;
    }

    /// Lets texts that are the same as those of another item take no memory of their own.
    void ShareTexts(const MediaItem& anOther);

    /// Sets values that stand above those of the file, in place of all earlier ones.
    void SetEdits(const EditMap& anEdits);

    /// Lets the library log every retain and release of this item, and of no other.
    void Watch();

    uint32_t GetID() const { return mID; }
    const vxCString& GetPath() const { return mPath; }
    const MediaFormat& GetFormat() const { return *mFormat; }
    uint64_t GetSize() const { return mSize; }
    int64_t GetModified() const { return mModified; }
    const MediaFacts& GetFacts() const { return mFacts; }
    const MediaTags& GetTags() const;
    const EditMap& GetEdits() const;

    /// Returns all that is known, under the keys of the library: what the file says, then the edits.
    /// Never before Renew().
    std::unique_ptr<vxMediaInfo> MakeInfo() const;

private:
    static const MediaItem* sWatched;  // null: none

    const uint32_t mID;                     // from 1
    const vxCString mPath;                  // bytes as the file system has them
    uint64_t mSize = 0;                     // bytes
    int64_t mModified = 0;                  // nanoseconds since 1970
    const MediaFormat* mFormat = nullptr;   // set by Renew()
    MediaFacts mFacts;                      // set by Renew()
    std::unique_ptr<MediaTags> mTags;       // null: the file has none
    std::unique_ptr<const EditMap> mEdits;  // by key; null: there are none
};

}  // namespace vxmedia
