#include "library/ItemCommands.h"

#include <cstring>

#include "ItemFacts.h"
#include "TerminalText.h"
#include "TextTable.h"
#include "TypedText.h"
#include "library/InfoTable.h"
#include "library/ItemEdits.h"
#include "vx/DLNAInfoMatcher.h"

namespace vxmedia {

namespace {

// Alternatives are joined with '@' in the table of the library.
vxCString ListText(const char* aJoined) {
    vxCString theList = aJoined;
    theList.Replace("@", ",");
    return theList.IsEmpty() ? vxCString("-") : theList;
}

vxCString UnknownProfile(const vxCString& aName) {
    return vxCString("ERROR: There is no DLNA profile '") + aName + "'";
}

}  // namespace

ItemCommands::ItemCommands(Console& aConsole, ConsoleApplet& aConsoleApplet, MediaLibrary& aLibrary,
                           DetailsCache& aDetails, vxCLICommandSet& aSet)
    : mConsole(aConsole), mConsoleApplet(aConsoleApplet), mLibrary(aLibrary), mDetails(aDetails) {
    aSet.Add("info", "id:ui32[1,4294967295]", "show the media info of a media file");
    aSet.Add("set", "id:ui32[1,4294967295] key:str value:...",
             "edit a value of a media info; without a value: as the file has it");
    aSet.Add("merge", "into:ui32[1,4294967295] from:ui32[1,4294967295]",
             "add to a media info what another one knows");
    aSet.Add("profile", "name:str", "show MIME types and extensions of a DLNA profile");
    aSet.Add("profiles", "", "show all DLNA profiles and how many media files have each");
}

bool ItemCommands::Handle(const vxRef<vxCLICommand>& aCommand, bool& afSucceeded) {
    vxCString theError;
    if (aCommand->CommandIs("info")) {
        theError = ShowInfo(aCommand->Parameter(0)->GetUInt32());
    } else if (aCommand->CommandIs("set")) {
        theError = Set(aCommand->Parameter(0)->GetUInt32(), aCommand->Parameter(1)->GetString(),
                       aCommand->Parameter(2)->GetString());
    } else if (aCommand->CommandIs("merge")) {
        theError = Merge(aCommand->Parameter(0)->GetUInt32(), aCommand->Parameter(1)->GetUInt32());
    } else if (aCommand->CommandIs("profile")) {
        theError = ShowProfile(aCommand->Parameter(0)->GetString());
    } else if (aCommand->CommandIs("profiles")) {
        ShowProfiles();
    } else {
        return false;
    }
    if (!theError.IsEmpty()) {
        mConsole.PrintError(theError);
    }
    afSucceeded = theError.IsEmpty();
    return true;
}

vxCString ItemCommands::Find(uint32_t anID, vxRef<MediaItem>& anItem) const {
    anItem = mLibrary.FindItem(anID);
    return anItem.IsNull() ? vxCString::Format("ERROR: There is no media file %u", anID)
                           : vxCString();
}

// A picture is looked at only now: the answer comes when that has been done.
vxCString ItemCommands::ShowInfo(uint32_t anID) {
    vxRef<MediaItem> theItem;
    vxCString theError = Find(anID, theItem);
    if (!theError.IsEmpty()) {
        return theError;
    }
    if (!theItem->GetTags().mCoverArt.IsThere()) {
        mConsole.Print(MakeInfoTable(*theItem.Get(), ""));
        return vxCString();
    }
    mConsoleApplet.LateAnswerComes();
    mDetails.Ask(theItem->GetPath(), [this, theItem](const MediaDetails& aDetails) {
        mConsole.Print(MakeInfoTable(*theItem.Get(), aDetails.mError.IsEmpty()
                                                         ? aDetails.mCover
                                                         : vxCString("cannot be read")));
        mConsoleApplet.LateAnswerCame(true);
    });
    return vxCString();
}

// What is typed behind the key is the new value; nothing there, not even quotes, ends the edit.
vxCString ItemCommands::Set(uint32_t anID, const vxCString& aKey, const vxCString& aTypedValue) {
    vxRef<MediaItem> theItem;
    vxCString theError = Find(anID, theItem);
    if (theError.IsEmpty()) {
        theError = aTypedValue.IsEmpty() ? EndEdit(*theItem.Get(), aKey)
                                         : EditItem(*theItem.Get(), aKey, Unquoted(aTypedValue));
    }
    if (theError.IsEmpty()) {
        mLibrary.NoteChange();
    }
    return theError;
}

vxCString ItemCommands::Merge(uint32_t anID, uint32_t aSourceID) {
    vxRef<MediaItem> theItem;
    vxRef<MediaItem> theSource;
    vxCString theError = Find(anID, theItem);
    if (theError.IsEmpty()) {
        theError = Find(aSourceID, theSource);
    }
    if (theError.IsEmpty()) {
        theError = MergeItem(*theItem.Get(), *theSource.Get());
    }
    if (theError.IsEmpty()) {
        mLibrary.NoteChange();
    }
    return theError;
}

vxCString ItemCommands::ShowProfile(const vxCString& aName) {
    const vxDLNAProfile* theProfile = vxDLNAInfoMatcher::FindProfile(aName);
    if (theProfile == NULL) {
        return UnknownProfile(aName);
    }
    TextTable theTable("ll");
    theTable.AddRow({"profile", theProfile->mProfile});
    theTable.AddRow({"mime-types", ListText(theProfile->mMimeType)});
    theTable.AddRow({"extensions", ListText(theProfile->mExtensions)});
    theTable.AddRow({"default", ListText(vxDLNAInfoMatcher::GetExtensionFromProfile(aName))});
    mConsole.Print(theTable.GetText());
    return vxCString();
}

void ItemCommands::ShowProfiles() {
    std::map<vxCString, uint64_t, PathLess> theCounts;
    for (const auto& theEntry : mLibrary.GetItems()) {
        theCounts[theEntry.second->MakeInfo()->GetCString(kvxInfo_DLNA, "")] += 1;
    }
    TextTable theTable("rlll");
    theTable.AddRow({"FILES", "PROFILE", "EXTENSIONS", "MIME-TYPES"});
    for (const vxDLNAProfile* theProfile = vxDLNAInfoMatcher::GetProfiles();
         theProfile->mProfile != NULL; ++theProfile) {
        theTable.AddRow({NumberText(theCounts[theProfile->mProfile]), theProfile->mProfile,
                         ListText(theProfile->mExtensions), ListText(theProfile->mMimeType)});
    }
    mConsole.Print(theTable.GetText());
}

}  // namespace vxmedia
