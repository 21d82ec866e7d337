#include "library/InfoTable.h"

#include "TerminalText.h"
#include "TextTable.h"
#include "library/ItemKeys.h"

namespace vxmedia {

namespace {

// A path may have bytes that are no text, so its backslashes are doubled to tell the escapes apart.
EscapeMode ModeOf(const ItemKey& aRow) {
    return aRow.mfEditable ? EscapeMode::Text : EscapeMode::Name;
}

const char* EncodingOf(const vxMediaInfo& anInfo) {
    switch (anInfo.GetCoverArtEncoding()) {
        case kvxCoverArtEncoding_Base64:
            return ", base64";
        case kvxCoverArtEncoding_Unsynchronisation:
            return ", unsynchronised";
        default:
            return "";
    }
}

vxCString CoverText(const vxMediaInfo& anInfo) {
    vxCString theText = anInfo.GetCoverArtMimeType();
    if (anInfo.GetCoverArtSize() == 0) {
        return theText + ", in several pieces";
    }
    theText += vxCString::Format(
        ", %llu bytes at %lld%s", static_cast<unsigned long long>(anInfo.GetCoverArtSize()),
        static_cast<long long>(anInfo.GetCoverArtOffset()), EncodingOf(anInfo));
    if (anInfo.GetCoverArtEncodedOffset() != 0) {
        theText +=
            vxCString::Format(", behind %llu bytes",
                              static_cast<unsigned long long>(anInfo.GetCoverArtEncodedOffset()));
    }
    return theText;
}

}  // namespace

vxCString MakeInfoTable(const MediaItem& anItem, const vxCString& aPicture) {
    const std::unique_ptr<vxMediaInfo> theHolder = anItem.MakeInfo();
    const vxMediaInfo& theInfo = *theHolder;
    TextTable theTable("lll");
    for (const ItemKey* theRow = kItemKeys; theRow->mKey != NULL; ++theRow) {
        const vxCString theValue = GetShownValue(theInfo, *theRow);
        if (!theValue.IsEmpty()) {
            const bool theIsEdited = anItem.GetEdits().count(EditNameOf(*theRow)) != 0;
            theTable.AddRow({theRow->mKey, vxCString(theRow->mName) + (theIsEdited ? "*" : ""),
                             EscapeForTerminal(theValue, ModeOf(*theRow))});
        }
    }
    if (!anItem.GetTags().mComment.IsEmpty()) {
        theTable.AddRow(
            {"-", "comment", EscapeForTerminal(anItem.GetTags().mComment, EscapeMode::Text)});
    }
    if (!theInfo.GetCoverArtMimeType().IsEmpty()) {
        theTable.AddRow({"-", "cover", EscapeForTerminal(CoverText(theInfo), EscapeMode::Text)});
    }
    if (!aPicture.IsEmpty()) {
        theTable.AddRow({"-", "picture", EscapeForTerminal(aPicture, EscapeMode::Text)});
    }
    return theTable.GetText();
}

}  // namespace vxmedia
