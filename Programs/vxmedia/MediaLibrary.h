#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "FileStatus.h"
#include "MediaItem.h"

namespace vxmedia {

/// What else lies in one directory, by number.
struct DirectoryCounts {
    uint64_t mOtherFiles = 0;    // files that are no media
    uint64_t mLinks = 0;         // symbolic links, which are not followed
    uint64_t mSpecialFiles = 0;  // pipes, sockets, devices

    void Add(const DirectoryCounts& aCounts);

    bool operator==(const DirectoryCounts& anOther) const {
        return mOtherFiles == anOther.mOtherFiles && mLinks == anOther.mLinks &&
               mSpecialFiles == anOther.mSpecialFiles;
    }
};

/// All media files known, in the order of their paths, and an account of everything else seen.
///
/// A scan marks what it finds; when it ends, what was below its root and is gone is forgotten. An
/// item that is found again keeps its number and its object. Directories are known by identity, so
/// that a scan can go on under the path that a directory has here, however it was named this time.
///
/// Threads:  one at a time.
class MediaLibrary {
public:
    using ItemMap = std::map<vxCString, vxRef<MediaItem>, PathLess>;

    struct Refusal {
        vxCString mReason;
        uint32_t mScan;
    };
    struct Directory {
        DirectoryCounts mCounts;
        FileIdentity mIdentity;
        uint32_t mScan = 0;
        DirectoryCounts mEarlierCounts;  // of the scan before
    };
    using RefusalMap = std::map<vxCString, Refusal, PathLess>;
    using DirectoryMap = std::map<vxCString, Directory, PathLess>;

    /// Sets what is called after each change that lasts beyond this start of the program.
    void SetChangeCallback(std::function<void()> aCallback) { mChanged = std::move(aCallback); }

    /// Tells that an item was edited.
    void NoteChange();

    /// Starts a scan: what is added from here on belongs to it.
    void BeginScan() { ++mScan; }

    void AddItem(const vxCString& aPath, const FileStatus& aStatus, const MediaReading& aReading);
    void AddRefusal(const vxCString& aPath, const char* aReason);

    /// Adds an item that is known already and has not changed; returns false when it has gone.
    bool KeepItem(uint32_t anID);

    /// Adds a directory before what lies in it. Returns false when this scan has added it already,
    /// under whatever path.
    bool AddDirectory(const vxCString& aPath, const FileIdentity& anIdentity);

    /// Adds to what else lies in a directory that was added.
    void AddCounts(const vxCString& aPath, const DirectoryCounts& aCounts);

    /// Returns the path under which a directory was added; empty when it never was.
    vxCString FindDirectory(const FileIdentity& anIdentity) const;

    /// Forgets what lies at or below `aRoot` and was not found by this scan.
    void EndScan(const vxCString& aRoot);

    // Putting back what was known before; nothing of that belongs to a scan, or counts as a change.

    /// Puts an item back. Returns false for a number or a path that is taken, and for number 0.
    bool RestoreItem(const vxRef<MediaItem>& anItem);
    void RestoreRefusal(const vxCString& aPath, const vxCString& aReason);
    void RestoreDirectory(const vxCString& aPath, const FileIdentity& anIdentity,
                          const DirectoryCounts& aCounts);

    /// Lets numbers of new items begin behind this one.
    void RestoreLastID(uint32_t anID) { mLastID = anID; }

    /// Takes over all that another library has, in place of what this one had.
    void Take(MediaLibrary& anOther);

    /// Returns the items in the order of their paths, compared byte by byte.
    const ItemMap& GetItems() const { return mItems; }

    /// Returns the item of that path, or null.
    ///
    /// Owner:    as FindItem().
    MediaItem* FindItemByPath(const vxCString& aPath) const;

    /// Returns the item of that number, or null.
    ///
    /// Owner:    the library; who keeps it longer than until the next scan takes a handle.
    MediaItem* FindItem(uint32_t anID) const;

    /// One reason of refusals and how many files it holds for.
    using ReasonCount = std::pair<vxCString, uint64_t>;

    /// Returns the reasons of all refusals in alphabetical order.
    std::vector<ReasonCount> CountReasons() const;

    const RefusalMap& GetRefusals() const { return mRefusals; }
    const DirectoryMap& GetDirectories() const { return mDirectories; }

    /// Returns the highest number that an item ever had.
    uint32_t GetLastID() const { return mLastID; }

    size_t GetDirectoryCount() const { return mDirectories.size(); }
    size_t GetRefusalCount() const { return mRefusals.size(); }

    /// Returns the sums over all directories.
    DirectoryCounts CountOthers() const;

private:
    bool IsAdded(const FileIdentity& anIdentity) const;
    void ForgetItem(const vxCString& aPath);
    void ShareTexts(ItemMap::iterator aPosition);

    struct Place {
        vxRef<MediaItem> mItem;
        uint32_t mScan;  // the scan that has seen it last
    };

    std::function<void()> mChanged;
    uint32_t mScan = 0;
    uint32_t mLastID = 0;
    ItemMap mItems;
    std::map<uint32_t, Place> mPlaces;  // the items again, by number
    RefusalMap mRefusals;
    DirectoryMap mDirectories;
    std::map<FileIdentity, vxCString> mDirectoryPaths;  // the directories again, one path for each
};

}  // namespace vxmedia
