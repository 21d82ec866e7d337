// Everything is kept by path, and a directory has one path here, so a scan of a directory that was
// scanned before, of one inside it or of one around it never counts anything twice.

#include "MediaLibrary.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace vxmedia {

namespace {

// Whether the path is the root itself or lies below it. "" is no root; "/" holds every absolute path.
bool IsAtOrBelow(const vxCString& aPath, const vxCString& aRoot) {
    const size_t theLength = aRoot.length();
    if (aPath.length() < theLength || memcmp(aPath.c_str(), aRoot.c_str(), theLength) != 0) {
        return false;
    }
    return aPath.length() == theLength || aRoot.Last() == '/' || aPath.c_str()[theLength] == '/';
}

// Removes the entries at or below the root for which `aIsGone` holds. Paths that begin like the root
// stand together in the order of the map.
template <typename Map, typename IsGone>
void RemoveBelow(Map& aMap, const vxCString& aRoot, IsGone aIsGone) {
    for (auto i = aMap.lower_bound(aRoot); i != aMap.end();) {
        if (memcmp(i->first.c_str(), aRoot.c_str(), std::min(i->first.length(), aRoot.length())) !=
            0) {
            break;
        }
        i = IsAtOrBelow(i->first, aRoot) && aIsGone(*i) ? aMap.erase(i) : std::next(i);
    }
}

}  // namespace

void DirectoryCounts::Add(const DirectoryCounts& aCounts) {
    mOtherFiles = SaturatedSum(mOtherFiles, aCounts.mOtherFiles);
    mLinks = SaturatedSum(mLinks, aCounts.mLinks);
    mSpecialFiles = SaturatedSum(mSpecialFiles, aCounts.mSpecialFiles);
}

void MediaLibrary::AddItem(const vxCString& aPath, const FileStatus& aStatus,
                           const MediaReading& aReading) {
    const ItemMap::iterator thePosition = mItems.try_emplace(aPath).first;
    vxRef<MediaItem>& theItem = thePosition->second;
    if (theItem.IsNull()) {
        theItem = new MediaItem(++mLastID, aPath);
    }
    theItem->Renew(aStatus, aReading);
    ShareTexts(thePosition);
    Place& thePlace = mPlaces[theItem->GetID()];
    if (thePlace.mItem.IsNull()) {
        thePlace.mItem = theItem;
    }
    thePlace.mScan = mScan;
    mRefusals.erase(aPath);
    NoteChange();
}

// Files that stand together are of one album or camera, and have most of their texts in common.
void MediaLibrary::ShareTexts(ItemMap::iterator aPosition) {
    if (aPosition != mItems.begin()) {
        aPosition->second->ShareTexts(*std::prev(aPosition)->second.Get());
    }
}

bool MediaLibrary::KeepItem(uint32_t anID) {
    const auto thePlace = mPlaces.find(anID);
    if (thePlace == mPlaces.end()) {
        return false;
    }
    thePlace->second.mScan = mScan;
    return true;
}

void MediaLibrary::AddRefusal(const vxCString& aPath, const char* aReason) {
    Refusal& theRefusal = mRefusals[aPath];
    if (theRefusal.mReason != aReason) {
        theRefusal.mReason = aReason;
        NoteChange();
    }
    theRefusal.mScan = mScan;
    ForgetItem(aPath);
}

void MediaLibrary::ForgetItem(const vxCString& aPath) {
    const auto theItem = mItems.find(aPath);
    if (theItem != mItems.end()) {
        mPlaces.erase(theItem->second->GetID());
        mItems.erase(theItem);
        NoteChange();
    }
}

bool MediaLibrary::AddDirectory(const vxCString& aPath, const FileIdentity& anIdentity) {
    if (IsAdded(anIdentity)) {
        return false;
    }
    const auto theEntry = mDirectories.emplace(aPath, Directory());
    Directory& theDirectory = theEntry.first->second;
    if (theDirectory.mScan == mScan) {
        return false;
    }
    if (theEntry.second || !(theDirectory.mIdentity == anIdentity)) {
        NoteChange();
    }
    theDirectory = Directory{DirectoryCounts(), anIdentity, mScan, theDirectory.mCounts};
    mDirectoryPaths[anIdentity] = aPath;
    return true;
}

bool MediaLibrary::IsAdded(const FileIdentity& anIdentity) const {
    const auto theDirectory = mDirectories.find(FindDirectory(anIdentity));
    return theDirectory != mDirectories.end() && theDirectory->second.mScan == mScan &&
           theDirectory->second.mIdentity == anIdentity;
}

void MediaLibrary::AddCounts(const vxCString& aPath, const DirectoryCounts& aCounts) {
    mDirectories[aPath].mCounts.Add(aCounts);
}

void MediaLibrary::NoteChange() {
    if (mChanged) {
        mChanged();
    }
}

vxCString MediaLibrary::FindDirectory(const FileIdentity& anIdentity) const {
    const auto thePath = mDirectoryPaths.find(anIdentity);
    return thePath == mDirectoryPaths.end() ? vxCString() : thePath->second;
}

void MediaLibrary::EndScan(const vxCString& aRoot) {
    const size_t theCount = mRefusals.size() + mDirectories.size() + mItems.size();
    bool theCountsDiffer = false;
    RemoveBelow(mRefusals, aRoot,
                [this](const auto& anEntry) { return anEntry.second.mScan != mScan; });
    RemoveBelow(mDirectories, aRoot, [this, &theCountsDiffer](const auto& anEntry) {
        if (anEntry.second.mScan == mScan) {
            theCountsDiffer =
                theCountsDiffer || !(anEntry.second.mCounts == anEntry.second.mEarlierCounts);
            return false;
        }
        const auto thePath = mDirectoryPaths.find(anEntry.second.mIdentity);
        if (thePath != mDirectoryPaths.end() && thePath->second == anEntry.first) {
            mDirectoryPaths.erase(thePath);
        }
        return true;
    });
    RemoveBelow(mItems, aRoot, [this](const ItemMap::value_type& anEntry) {
        const auto thePlace = mPlaces.find(anEntry.second->GetID());
        if (thePlace->second.mScan == mScan) {
            return false;
        }
        mPlaces.erase(thePlace);
        return true;
    });
    if (theCountsDiffer || theCount != mRefusals.size() + mDirectories.size() + mItems.size()) {
        NoteChange();
    }
}

bool MediaLibrary::RestoreItem(const vxRef<MediaItem>& anItem) {
    if (anItem->GetID() == 0 || mPlaces.count(anItem->GetID()) != 0) {
        return false;
    }
    const auto theEntry = mItems.emplace(anItem->GetPath(), anItem);
    if (!theEntry.second) {
        return false;
    }
    ShareTexts(theEntry.first);
    mPlaces.emplace(anItem->GetID(), Place{anItem, mScan});
    mLastID = std::max(mLastID, anItem->GetID());
    return true;
}

void MediaLibrary::RestoreRefusal(const vxCString& aPath, const vxCString& aReason) {
    mRefusals[aPath] = Refusal{aReason, mScan};
}

void MediaLibrary::RestoreDirectory(const vxCString& aPath, const FileIdentity& anIdentity,
                                    const DirectoryCounts& aCounts) {
    mDirectories[aPath] = Directory{aCounts, anIdentity, mScan, aCounts};
    mDirectoryPaths[anIdentity] = aPath;
}

void MediaLibrary::Take(MediaLibrary& anOther) {
    mLastID = anOther.mLastID;
    mItems = std::move(anOther.mItems);
    mPlaces = std::move(anOther.mPlaces);
    mRefusals = std::move(anOther.mRefusals);
    mDirectories = std::move(anOther.mDirectories);
    mDirectoryPaths = std::move(anOther.mDirectoryPaths);
}

MediaItem* MediaLibrary::FindItemByPath(const vxCString& aPath) const {
    const auto theItem = mItems.find(aPath);
    return theItem == mItems.end() ? NULL : theItem->second.Get();
}

MediaItem* MediaLibrary::FindItem(uint32_t anID) const {
    const auto thePlace = mPlaces.find(anID);
    return thePlace == mPlaces.end() ? NULL : thePlace->second.mItem.Get();
}

std::vector<MediaLibrary::ReasonCount> MediaLibrary::CountReasons() const {
    std::map<vxCString, uint64_t, PathLess> theCounts;
    for (const auto& theRefusal : mRefusals) {
        theCounts[theRefusal.second.mReason] += 1;
    }
    return std::vector<ReasonCount>(theCounts.begin(), theCounts.end());
}

DirectoryCounts MediaLibrary::CountOthers() const {
    DirectoryCounts theSum;
    for (const auto& theDirectory : mDirectories) {
        theSum.Add(theDirectory.second.mCounts);
    }
    return theSum;
}

}  // namespace vxmedia
