#include "library/ItemEdits.h"

#include <memory>

#include "library/ItemKeys.h"
#include "vx/DLNAInfoMatcher.h"

namespace vxmedia {

namespace {

// Finds the row of what a user may edit.
vxCString FindEditable(const vxCString& aKeyOrName, const ItemKey*& aRow) {
    aRow = FindItemKey(aKeyOrName);
    if (aRow == NULL) {
        return vxCString("ERROR: There is no key '") + aKeyOrName + "'";
    }
    return aRow->mfEditable
               ? vxCString()
               : vxCString::Format("ERROR: '%s' cannot be edited: it is that of the file",
                                   aRow->mName);
}

vxCString CheckProfile(const ItemKey& aRow, const vxCString& aValue) {
    const bool theIsProfile = aRow.mKey == vxCString(kvxInfo_DLNA);
    return theIsProfile && vxDLNAInfoMatcher::FindProfile(aValue) == NULL
               ? vxCString("ERROR: There is no DLNA profile '") + aValue + "'"
               : vxCString();
}

vxCString RefusalOfMerge(const vxMediaInfo& anInfo, const vxMediaInfo& aSource) {
    const bool theHaveVideo = anInfo.GetUInt32(kvxInfo_HasVideoTrack, 0) != 0 &&
                              aSource.GetUInt32(kvxInfo_HasVideoTrack, 0) != 0;
    return theHaveVideo ? vxCString("ERROR: Both have a video track")
                        : vxCString::Format("ERROR: Together they have more than %u audio tracks",
                                            kvxMediaInfo_MaxAudioTracks);
}

}  // namespace

vxCString EditItem(MediaItem& anItem, const vxCString& aKeyOrName, const vxCString& aValue) {
    const ItemKey* theRow;
    vxCString theError = FindEditable(aKeyOrName, theRow);
    vxCString theValue = aValue;
    if (theError.IsEmpty() && !theValue.IsEmpty()) {
        theError = NormalizeValue(*theRow, theValue);
    }
    if (theError.IsEmpty() && !theValue.IsEmpty()) {
        theError = CheckProfile(*theRow, theValue);
    }
    if (theError.IsEmpty()) {
        MediaItem::EditMap theEdits = anItem.GetEdits();
        theEdits[EditNameOf(*theRow)] = theValue;
        anItem.SetEdits(theEdits);
    }
    return theError;
}

vxCString EndEdit(MediaItem& anItem, const vxCString& aKeyOrName) {
    const ItemKey* theRow;
    vxCString theError = FindEditable(aKeyOrName, theRow);
    if (theError.IsEmpty()) {
        MediaItem::EditMap theEdits = anItem.GetEdits();
        theEdits.erase(EditNameOf(*theRow));
        anItem.SetEdits(theEdits);
    }
    return theError;
}

vxCString MergeItem(MediaItem& anItem, const MediaItem& aSource) {
    if (&anItem == &aSource) {
        return "ERROR: A media file cannot be merged with itself";
    }
    const std::unique_ptr<vxMediaInfo> theOld = anItem.MakeInfo();
    const std::unique_ptr<vxMediaInfo> theInfo = anItem.MakeInfo();
    const std::unique_ptr<vxMediaInfo> theOther = aSource.MakeInfo();
    theOther->SetCoverArt(vxCString(), 0, 0);
    theOther->SetCoverArtEncoding(kvxCoverArtEncoding_None, 0);
    if (!theInfo->MergeAll(theOther.get())) {
        return RefusalOfMerge(*theOld, *theOther);
    }
    MediaItem::EditMap theEdits = anItem.GetEdits();
    for (const ItemKey* theRow = kItemKeys; theRow->mKey != NULL; ++theRow) {
        const vxCString theValue = GetValue(*theInfo, *theRow);
        if (theRow->mfEditable && theValue != GetValue(*theOld, *theRow)) {
            theEdits[EditNameOf(*theRow)] = theValue;
        }
    }
    anItem.SetEdits(theEdits);
    return vxCString();
}

}  // namespace vxmedia
