#include "cache/CacheModule.h"

#include <string>

#include "ItemFacts.h"
#include "TerminalText.h"
#include "TextTable.h"
#include "cache/EmbeddedCover.h"

namespace vxmedia {

// Work for a worker thread that has an answer for the console. Everything that it uses in the worker
// must be its own, or meant for any thread.
class CacheModule::LateJob : public Job {
public:
    LateJob(CacheModule& aModule, const char* aTitle, Work aWork)
        : mModule(aModule), mTitle(aTitle), mWork(std::move(aWork)) {}

    unsigned int Run() override {
        mAnswer = mWork();
        return 0;
    }

    void Finish() override {
        mModule.mConsole.PrintLine(mAnswer.mText);
        mModule.mConsoleApplet.LateAnswerCame(mAnswer.mfOK);
    }

    const char* GetTitle() const override { return mTitle; }

private:
    CacheModule& mModule;
    const char* const mTitle;
    const Work mWork;
    LateAnswer mAnswer{vxCString(), false};
};

CacheModule::CacheModule(Console& aConsole, ConsoleApplet& aConsoleApplet,
                         const MediaLibrary& aLibrary, CoverStore& aCovers,
                         const DetailsCache& aDetails, WorkerPool& aWorkers, Settings& aSettings)
    : CommandModule("cache,fc", aConsole),
      mConsoleApplet(aConsoleApplet),
      mLibrary(aLibrary),
      mCovers(aCovers),
      mDetails(aDetails),
      mWorkers(aWorkers),
      mSettings(aSettings) {
    Declare("cover", "id:ui32[1,4294967295]", "write the cover of one media file to the cache");
    Declare("status", "", "show how full the cache is");
    Declare("limit", "mbytes:ui32[1,4096]", "set how much all covers together may have");
    Declare("empty", "(dir:bool:false)", "remove all covers; with 'true' their directory, too");
}

bool CacheModule::HandleCLICommand(const vxRef<vxCLICommand>& aCommand) {
    if (aCommand->CommandIs("cover")) {
        return ShowCover(aCommand->Parameter(0)->GetUInt32());
    }
    if (aCommand->CommandIs("limit")) {
        return SetLimit(aCommand->Parameter(0)->GetUInt32());
    }
    if (aCommand->CommandIs("empty")) {
        return Empty(aCommand->Parameter(0)->GetBool());
    }
    ShowStatus();
    return true;
}

bool CacheModule::ShowCover(uint32_t anID) {
    const MediaItem* theItem = mLibrary.FindItem(anID);
    if (theItem == NULL) {
        return Answer(vxCString::Format("ERROR: There is no media file %u", anID));
    }
    return DoLater("fetching a cover", [this, thePath = std::string(theItem->GetPath().c_str())] {
        const Cover theCover = FetchEmbeddedCover(mCovers, thePath.c_str());
        return AnswerOrError(EscapeForTerminal(theCover.mPath, EscapeMode::Name) + ": " +
                                 NumberText(theCover.mBytes) + " bytes, " + theCover.mMimeType +
                                 (theCover.mfWritten ? ", written" : ", from cache"),
                             theCover.mError);
    });
}

void CacheModule::ShowStatus() {
    const CoverStore::Status theStatus = mCovers.GetStatus();
    TextTable theTable("ll");
    theTable.AddRow({"covers", NumberText(theStatus.mCovers)});
    theTable.AddRow({"bytes", NumberText(theStatus.mBytes)});
    theTable.AddRow({"limit", NumberText(theStatus.mLimit)});
    theTable.AddRow({"written", NumberText(theStatus.mWritten)});
    theTable.AddRow({"found", NumberText(theStatus.mFound)});
    const DetailsCache::Status theDetails = mDetails.GetStatus();
    theTable.AddRow({"details", NumberText(theDetails.mFiles) + " files, " +
                                    NumberText(theDetails.mBytes) + " bytes"});
    theTable.AddRow({"directory", EscapeForTerminal(theStatus.mDirectory, EscapeMode::Name)});
    mConsole.Print(theTable.GetText());
}

// A change of the settings reaches the store by itself; here it counts at once.
bool CacheModule::SetLimit(uint32_t aMBytes) {
    const vxCString theError = mSettings.Set("cache-limit", NumberText(aMBytes));
    if (!theError.IsEmpty()) {
        return Answer(theError);
    }
    return DoLater("limiting the covers", [this, aMBytes] {
        return AnswerOrError(vxCString::Format("Covers may have %u MiB", aMBytes),
                             mCovers.TakePlace());
    });
}

bool CacheModule::Empty(bool afRemoveDir) {
    return DoLater("removing the covers", [this, afRemoveDir] {
        return AnswerOrError("Emptied", mCovers.Empty(afRemoveDir));
    });
}

bool CacheModule::DoLater(const char* aTitle, Work aWork) {
    if (!mWorkers.Add(new LateJob(*this, aTitle, std::move(aWork)))) {
        return Answer("ERROR: No worker thread can be started");
    }
    mConsoleApplet.LateAnswerComes();
    return true;
}

CacheModule::LateAnswer CacheModule::AnswerOrError(const vxCString& anAnswer,
                                                   const vxCString& anError) {
    if (anError.IsEmpty()) {
        return {anAnswer, true};
    }
    return {EscapeForTerminal(anError, EscapeMode::Text), false};
}

}  // namespace vxmedia
