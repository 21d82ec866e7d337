// Tables have one line for each row, columns two blanks apart, and "-" where there is nothing to say,
// so that scripts can take them apart at the blanks; names, which may have blanks, come last.

#include "LibraryModule.h"

#include <algorithm>
#include <cstring>

#include "ItemFacts.h"
#include "TerminalText.h"
#include "TextTable.h"
#include "TypedText.h"
#include "library/ItemTable.h"
#include "library/SearchCommands.h"

namespace vxmedia {

namespace {

// The sums of one format, or of all.
struct FormatSums {
    uint64_t mFiles = 0;
    uint64_t mBytes = 0;
    uint64_t mDurationMS = 0;
    bool mfHasSound = false;

    void Add(const MediaItem& anItem) {
        mFiles += 1;
        mBytes = SaturatedSum(mBytes, anItem.GetSize());
        mDurationMS = SaturatedSum(mDurationMS, anItem.GetFacts().DurationMS());
        mfHasSound = mfHasSound || anItem.GetFacts().IsSound();
    }

    void AddRowTo(TextTable& aTable, const char* aName) const {
        aTable.AddRow({aName, NumberText(mFiles), NumberText(mBytes),
                       mfHasSound ? SecondsText(mDurationMS) : "-"});
    }
};

// The formats of the program in their order, then those of plug-ins by name: of the plug-ins that are
// loaded, and of those that have gone and left files.
std::vector<const MediaFormat*> FormatRows(const std::map<const MediaFormat*, FormatSums>& aSums,
                                           const MediaProbes& aProbes) {
    std::vector<const MediaFormat*> theRows;
    for (const MediaFormat* const* theRow = kMediaFormats; *theRow != nullptr; ++theRow) {
        theRows.push_back(*theRow);
    }
    const size_t theOwnCount = theRows.size();
    const auto theAdd = [&theRows](const MediaFormat* aFormat) {
        if (std::find(theRows.begin(), theRows.end(), aFormat) == theRows.end()) {
            theRows.push_back(aFormat);
        }
    };
    for (const MediaProbe& theProbe : aProbes.GetProbes()) {
        theAdd(theProbe.mFormat);
    }
    for (const auto& theSum : aSums) {
        theAdd(theSum.first);
    }
    std::sort(theRows.begin() + static_cast<std::ptrdiff_t>(theOwnCount), theRows.end(),
              [](const MediaFormat* aLeft, const MediaFormat* aRight) {
                  return strcmp(aLeft->mName, aRight->mName) < 0;
              });
    return theRows;
}

vxCString FormatTable(const MediaLibrary& aLibrary, const MediaProbes& aProbes) {
    TextTable theTable("lrrr");
    FormatSums theTotal;
    theTable.AddRow({"FORMAT", "FILES", "BYTES", "SECONDS"});
    std::map<const MediaFormat*, FormatSums> theSums;
    for (const auto& theEntry : aLibrary.GetItems()) {
        theSums[&theEntry.second->GetFormat()].Add(*theEntry.second.Get());
        theTotal.Add(*theEntry.second.Get());
    }
    for (const MediaFormat* theFormat : FormatRows(theSums, aProbes)) {
        theSums[theFormat].AddRowTo(theTable,
                                    EscapeForTerminal(theFormat->mName, EscapeMode::Text));
    }
    theTotal.AddRowTo(theTable, "total");
    return theTable.GetText();
}

vxCString OthersTable(const MediaLibrary& aLibrary) {
    const DirectoryCounts theOthers = aLibrary.CountOthers();
    TextTable theTable("rl");
    theTable.AddRow({NumberText(aLibrary.GetDirectoryCount()), "directories"});
    theTable.AddRow({NumberText(theOthers.mOtherFiles), "other files"});
    theTable.AddRow({NumberText(theOthers.mLinks), "symbolic links, not followed"});
    theTable.AddRow({NumberText(theOthers.mSpecialFiles), "pipes, sockets and devices"});
    theTable.AddRow({NumberText(aLibrary.GetRefusalCount()), "refused"});
    return theTable.GetText();
}

vxCString ReasonTable(const MediaLibrary& aLibrary) {
    TextTable theTable("rl");
    for (const MediaLibrary::ReasonCount& theCount : aLibrary.CountReasons()) {
        theTable.AddRow({vxCString("  ") + NumberText(theCount.second), theCount.first});
    }
    return theTable.GetText();
}

}  // namespace

LibraryModule::LibraryModule(Console& aConsole, ConsoleApplet& aConsoleApplet,
                             MediaLibrary& aLibrary, ScanApplet& aScanApplet,
                             const MediaProbes& aProbes, DetailsCache& aDetails,
                             const Settings& aSettings)
    : CommandModule("library,lib", aConsole),
      mLibrary(aLibrary),
      mScanApplet(aScanApplet),
      mProbes(aProbes),
      mSettings(aSettings),
      mItemCommands(aConsole, aConsoleApplet, aLibrary, aDetails, *GetCommandSet().Get()) {
    Declare("scan", "path:...", "read the media files of a directory and below");
    Declare("stop", "", "stop the scan, and drop those that wait behind it");
    Declare("progress", "", "show how far the scan is");
    Declare("list", "(limit:ui32[1,100000])", "list media files by path");
    Declare("find", "criteria:...", "list media files that match search criteria");
    Declare("first", "count:ui32[1,1000] criteria:...", "list the first ones that match");
    Declare("show", "id:ui32[1,4294967295]", "show all about one media file");
    Declare("stats", "", "show numbers of files, bytes and seconds by format");
}

bool LibraryModule::HandleCLICommand(const vxRef<vxCLICommand>& aCommand) {
    bool theSucceeded = false;
    if (mItemCommands.Handle(aCommand, theSucceeded)) {
        return theSucceeded;
    }
    if (aCommand->CommandIs("scan")) {
        return Scan(aCommand->Parameter(0)->GetString());
    }
    if (aCommand->CommandIs("show")) {
        return Show(aCommand->Parameter(0)->GetUInt32());
    }
    if (aCommand->CommandIs("find")) {
        return Answer(
            FindItems(mLibrary, aCommand->Parameter(0)->GetString(), UINT32_MAX, mConsole));
    }
    if (aCommand->CommandIs("first")) {
        return Answer(FindItems(mLibrary, aCommand->Parameter(1)->GetString(),
                                aCommand->Parameter(0)->GetUInt32(), mConsole));
    }
    if (aCommand->CommandIs("list")) {
        const vxRef<vxCLIParameter> theLimit = aCommand->Parameter(0);
        List(theLimit->IsMissing() ? mSettings.GetNumber("list-limit") : theLimit->GetUInt32());
    } else if (aCommand->CommandIs("stop")) {
        Stop();
    } else if (aCommand->CommandIs("progress")) {
        ShowProgress();
    } else {
        ShowStats();
    }
    return true;
}

bool LibraryModule::Scan(const vxCString& aTypedPath) {
    const vxCString thePath = Unquoted(aTypedPath);
    if (thePath.IsEmpty()) {
        return Answer("ERROR: Please specify the directory to scan");
    }
    return Answer(mScanApplet.Scan(thePath, false));
}

void LibraryModule::Stop() {
    if (!mScanApplet.Stop()) {
        mConsole.PrintLine("No scan is running");
    }
}

void LibraryModule::ShowProgress() {
    const vxCString theProgress = mScanApplet.GetProgress();
    mConsole.PrintLine(theProgress.IsEmpty() ? vxCString("No scan is running") : theProgress);
}

void LibraryModule::List(uint32_t aLimit) {
    ItemTable theTable;
    for (const auto& theEntry : mLibrary.GetItems()) {
        if (theTable.GetCount() == aLimit) {
            break;
        }
        theTable.Add(*theEntry.second.Get());
    }
    mConsole.Print(theTable.GetText(mLibrary.GetItems().size()));
}

bool LibraryModule::Show(uint32_t anID) {
    const vxRef<MediaItem> theItem = mLibrary.FindItem(anID);
    if (theItem.IsNull()) {
        return Answer(vxCString::Format("ERROR: There is no media file %u", anID));
    }
    TextTable theTable("ll");
    for (const ItemFact& theFact : GetItemFacts(*theItem.Get())) {
        theTable.AddRow({theFact.mName, theFact.mText});
    }
    mConsole.Print(theTable.GetText());
    return true;
}

void LibraryModule::ShowStats() {
    mConsole.Print(FormatTable(mLibrary, mProbes) + OthersTable(mLibrary) + ReasonTable(mLibrary));
}

}  // namespace vxmedia
