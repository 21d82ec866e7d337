#include "SysModule.h"

#include <libteskTools/JSON.h>

#include "BenchJobs.h"
#include "ItemFacts.h"
#include "ScanApplet.h"
#include "TerminalText.h"
#include "TextTable.h"
#include "TimerApplet.h"
#include "vx/BitString.h"
#include "vx/GrowingBuffer.h"
#include "vx/JSON.h"

namespace vxmedia {

namespace {

constexpr size_t kBits_BytesPerRow = 6;

// One row: the position of its first byte, the bits of each byte, and the bytes as text.
void AppendBitRow(vxGrowingBuffer& aText, vxBitString& aBits, size_t aPosition, size_t aCount) {
    vxCString theRow = vxCString::Format("%08lX ", static_cast<unsigned long>(aPosition));
    vxCString theCharacters;
    for (size_t i = 0; i < kBits_BytesPerRow; ++i) {
        theRow += ' ';
        const uint32_t theByte = i < aCount ? aBits.Peek(8) : 0;
        for (int j = 0; j < 8; ++j) {
            theRow += i >= aCount ? ' ' : aBits.Get(1) != 0 ? '1' : '0';
        }
        if (i < aCount) {
            theCharacters += theByte >= 0x20 && theByte < 0x7F ? static_cast<char>(theByte) : '.';
        }
    }
    theRow += "  ";
    theRow += theCharacters;
    theRow += '\n';
    aText.Append(theRow.c_str(), theRow.length());
}

// The text of a JSON document may be put in apostrophes, as one does in a shell.
vxCString WithoutApostrophes(const vxCString& aText) {
    const size_t theLength = aText.length();
    const bool theIsQuoted = theLength >= 2 && aText.First() == '\'' && aText.Last() == '\'';
    return theIsQuoted ? aText.Mid(1, theLength - 2) : aText;
}

}  // namespace

SysModule::SysModule(Console& aConsole, const MediaLibrary& aLibrary,
                     const vxActivityManager& anActivity, const WorkerPool& aWorkers)
    : CommandModule("sys", aConsole),
      mLibrary(aLibrary),
      mActivity(anActivity),
      mWorkers(aWorkers) {
    Declare("version", "", "show the version of the program");
    Declare("idle", "", "show what is active, and for how long nothing was");
    Declare("threads", "", "show what the worker threads do");
    Declare("watch", "id:ui32[1,4294967295]", "log the references to one media file");
    Declare("bits", "data:base64", "show the bits of bytes that are given as base64");
    Declare("bench", "name:str", "measure how long a built-in job takes");
    Declare("json", "path:str text:...", "fetch a value by its path from a JSON text");
}

bool SysModule::HandleCLICommand(const vxRef<vxCLICommand>& aCommand) {
    if (aCommand->CommandIs("watch")) {
        return Watch(aCommand->Parameter(0)->GetUInt32());
    }
    if (aCommand->CommandIs("bits")) {
        return ShowBits(aCommand->Parameter(0)->GetDataBuffer());
    }
    if (aCommand->CommandIs("json")) {
        return ShowJSON(aCommand->Parameter(0)->GetString(), aCommand->Parameter(1)->GetString());
    }
    if (aCommand->CommandIs("bench")) {
        return Bench(aCommand->Parameter(0)->GetString());
    }
    if (aCommand->CommandIs("idle")) {
        ShowIdle();
    } else if (aCommand->CommandIs("threads")) {
        ShowThreads();
    } else {
        ShowVersion();
    }
    return true;
}

void SysModule::ShowVersion() {
    mConsole.PrintLine("vxmedia " VXMEDIA_VERSION);
}

void SysModule::ShowIdle() {
    for (const char* theModule : {ScanApplet::kActivity, TimerApplet::kActivity}) {
        const bool theIsActive = mActivity.IsModuleActive(theModule);
        mConsole.PrintLine(
            vxCString::Format("%-7s  %s", theModule, theIsActive ? "active" : "idle"));
    }
    if (mActivity.IsActive()) {
        mConsole.PrintLine("active");
    } else {
        mConsole.PrintLine(vxCString::Format("idle for %u s", mActivity.GetInactivityDuration()));
    }
}

void SysModule::ShowThreads() {
    TextTable theTable("lrl");
    theTable.AddRow({"NAME", "JOBS", "STATE"});
    for (const WorkerStatus& theWorker : mWorkers.GetWorkers()) {
        theTable.AddRow({theWorker.mName, NumberText(theWorker.mJobCount),
                         theWorker.mTitle == NULL ? "waiting" : theWorker.mTitle});
    }
    mConsole.Print(theTable.GetText());
}

bool SysModule::Watch(uint32_t anID) {
    // A handle here would be the first reference to go.
    MediaItem* theItem = mLibrary.FindItem(anID);
    if (theItem == NULL) {
        return Answer(vxCString::Format("ERROR: There is no media file %u", anID));
    }
    theItem->Watch();
    mConsole.PrintLine(vxCString::Format("Watching media file %u", anID));
    return true;
}

bool SysModule::ShowBits(const vxRef<vxCountedDataBuffer>& aTyped) {
    const vxRef<vxCountedDataBuffer> theBytes =
        vxCountedDataBuffer::fromBase64(static_cast<const char*>(aTyped->data()), aTyped->size());
    const size_t theSize = theBytes->size();
    if (theSize == 0) {
        return Answer("ERROR: The data is not base64");
    }
    vxBitString theBits(static_cast<const uint8_t*>(theBytes->data()), theSize);
    vxGrowingBuffer theText(0);
    for (size_t i = 0; i < theSize; i += kBits_BytesPerRow) {
        AppendBitRow(theText, theBits, i, std::min(kBits_BytesPerRow, theSize - i));
    }
    theText.Append("", 1);
    mConsole.PrintLine(vxCString::Format("%lu bytes", static_cast<unsigned long>(theSize)));
    mConsole.Print(vxCString::FromAllocatedString(theText.TakeOwnership(false, NULL)));
    return true;
}

// The measurement writes to the console by itself.
bool SysModule::Bench(const vxCString& aName) {
    mConsole.Finish();
    return Answer(RunBenchJob(aName));
}

bool SysModule::ShowJSON(const vxCString& aPath, const vxCString& aText) {
    const vxCString theText = WithoutApostrophes(aText);
    const char* theErrorPosition = NULL;
    vxJSONDocument theDocument(kvxJSONDocumentRoot_None);
    theDocument.SetEntry(vxJSON_Parse(theText, &theErrorPosition));
    if (!theDocument.IsValid()) {
        const size_t thePosition =
            theErrorPosition == NULL ? 0 : static_cast<size_t>(theErrorPosition - theText.c_str());
        return Answer(vxCString::Format("ERROR: The text is not JSON at byte %lu",
                                        static_cast<unsigned long>(thePosition + 1)));
    }
    // "$" alone stands for the whole document.
    const bool theIsWhole = aPath == "$";
    vxJSONEntry theResult;
    if (!theIsWhole && !vxJSONPath::FetchEntry(theDocument, aPath, theResult)) {
        return Answer(vxCString("ERROR: There is no '") + aPath + "' in the text");
    }
    const vxJSONEntry& theShown = theIsWhole ? theDocument : theResult;
    mConsole.PrintLine(EscapeForTerminal(theShown.ToString(true), EscapeMode::JSON));
    return true;
}

}  // namespace vxmedia
