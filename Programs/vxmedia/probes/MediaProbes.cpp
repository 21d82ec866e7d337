// Content decides before names do, as with the readers of the program itself, and those come first: a
// plug-in can add a format, not take one over.

#include "probes/MediaProbes.h"

#include <algorithm>
#include <cstring>

#include "LogCapture.h"
#include "TerminalText.h"
#include "vx/Dir.h"
#include "vx/File.h"
#include "vx/StringList.h"

namespace vxmedia {

namespace {

size_t ReadSource(void* aContext, uint64_t aPosition, void* aBuffer, size_t aCount) {
    return static_cast<MediaSource*>(aContext)->Read(aPosition, static_cast<uint8_t*>(aBuffer),
                                                     aCount);
}

vxmedia_source SourceFor(MediaSource& aSource) {
    return {&aSource, aSource.Size(), ReadSource};
}

void TakeFacts(const vxmedia_facts& aFacts, MediaFacts& aResult) {
    aResult.mWidth = aFacts.width;
    aResult.mHeight = aFacts.height;
    aResult.mChannels = aFacts.channels;
    aResult.mRate = aFacts.rate;
    aResult.mFrames = aFacts.frames;
    aResult.mfDurationKnown = aFacts.frames_are_known != 0;
    aResult.mDetail = vxCString(aFacts.detail, strnlen(aFacts.detail, sizeof(aFacts.detail)));
}

// Returns why a file is refused that the plug-in has read with this result, or null.
const char* RefusalOf(const MediaSource& aSource, const MediaFacts& aFacts, const char* aReason) {
    if (aReason == nullptr) {
        return aFacts.IsPicture() || aFacts.IsSound() ? nullptr : "the plug-in has read nothing";
    }
    if (aSource.HasFailed()) {
        return "the file cannot be read";
    }
    return aSource.IsExhausted() ? "the header lies beyond the first 2 MiB that are read" : aReason;
}

vxCString DirectoryError(const vxCString& aDirectory) {
    if (!vxDir::Exists(aDirectory)) {
        return vxCString("ERROR: There is no plug-in directory '") + aDirectory + "'";
    }
    if (!vxFile::Access(aDirectory, vxFileAccessMode_Read)) {
        return vxCString("ERROR: Unable to read the plug-in directory '") + aDirectory + "'";
    }
    return vxCString();
}

}  // namespace

MediaProbes::MediaProbes() : mLinkedIn("") {
    mLinkedIn.LoadPluginsStatic("*", false, false);
    Collect();
}

std::vector<vxCString> MediaProbes::Load(const vxCString& aPattern) {
    if (mLoaded == nullptr || mLoaded->GetPluginCount() == 0) {
        mLoaded = std::make_unique<ProbeLoader>(mDirectory);
    }
    const vxCString theDirectory = mLoaded->GetPluginsPath();
    const vxCString theDirectoryError = DirectoryError(theDirectory);
    if (!theDirectoryError.IsEmpty()) {
        return {theDirectoryError};
    }
    const LogCapture theCapture(VXLOGLEVEL_WARNING);
    const int theCount = mLoaded->LoadPlugins(aPattern, false, false);
    Collect();
    std::vector<vxCString> theErrors = theCapture.GetErrors();
    if (theCount == 0 && theErrors.empty()) {
        theErrors.push_back(vxCString("ERROR: No further plug-in in '") + theDirectory +
                            "' matches '" + aPattern + "'");
    }
    return theErrors;
}

size_t MediaProbes::Unload() {
    const size_t theCount = mLoaded == nullptr ? 0 : mLoaded->GetPluginCount();
    mLoaded.reset();
    Collect();
    return theCount;
}

void MediaProbes::Collect() {
    mProbes.clear();
    AddFrom(mLinkedIn);
    if (mLoaded != nullptr) {
        AddFrom(*mLoaded);
    }
    std::stable_sort(mProbes.begin(), mProbes.end(), [](const auto& aLeft, const auto& aRight) {
        return strcmp(aLeft.mFormat->mName, aRight.mFormat->mName) < 0;
    });
}

void MediaProbes::AddFrom(const ProbeLoader& aLoader) {
    for (unsigned int i = 0; i < aLoader.GetPluginCount(); ++i) {
        const ProbeHandler* theHandler = aLoader.GetProbe(i);
        mProbes.push_back({theHandler, Format(theHandler->GetFormat()),
                           NameEndings(vxCSVStringList(theHandler->GetEndings(), '\\'))});
    }
}

// The operations of a format are those of the program's own readers; plug-ins have theirs.
const MediaFormat* MediaProbes::Format(const char* aName) {
    KeptFormat& theKept = mFormats[aName];
    theKept.mName = aName;
    theKept.mFormat.mName = theKept.mName.c_str();
    return &theKept.mFormat;
}

const MediaFormat* MediaProbes::FormatOf(const char* aName) {
    for (const MediaFormat* const* theRow = kMediaFormats; *theRow != nullptr; ++theRow) {
        if (strcmp((*theRow)->mName, aName) == 0) {
            return *theRow;
        }
    }
    return Format(aName);
}

const char* MediaProbes::Keep(const char* aReason) {
    const vxMutexLocker theLock(&mMutex);
    return mReasons.insert(EscapeForTerminal(aReason, EscapeMode::Text).c_str()).first->c_str();
}

bool MediaProbes::Has(const MediaFormat& aFormat) const {
    for (const MediaFormat* const* theRow = kMediaFormats; *theRow != nullptr; ++theRow) {
        if (*theRow == &aFormat) {
            return true;
        }
    }
    return std::any_of(mProbes.begin(), mProbes.end(),
                       [&aFormat](const MediaProbe& aProbe) { return aProbe.mFormat == &aFormat; });
}

MediaReading MediaProbes::Read(MediaSource& aSource, const char* aFileName) {
    MediaReading theReading = ReadMedia(aSource, aFileName);
    if (theReading.IsMedia()) {
        return theReading;
    }
    const MediaProbe* theProbe = FindByContent(aSource);
    if (theProbe == nullptr && theReading.mFormat == nullptr) {
        theProbe = FindByName(aFileName);
    }
    return theProbe == nullptr ? theReading : ReadBy(*theProbe, aSource);
}

const MediaProbe* MediaProbes::FindByContent(MediaSource& aSource) const {
    const vxmedia_source theSource = SourceFor(aSource);
    for (const MediaProbe& theProbe : mProbes) {
        if (theProbe.mHandler->Recognize(theSource)) {
            return &theProbe;
        }
    }
    return nullptr;
}

const MediaProbe* MediaProbes::FindByName(const char* aFileName) const {
    for (const MediaProbe& theProbe : mProbes) {
        if (theProbe.mEndings.Match(aFileName)) {
            return &theProbe;
        }
    }
    return nullptr;
}

MediaReading MediaProbes::ReadBy(const MediaProbe& aProbe, MediaSource& aSource) {
    MediaReading theReading;
    theReading.mFormat = aProbe.mFormat;
    if (aSource.Size() == 0) {
        theReading.mReason = "the file is empty";
        return theReading;
    }
    vxmedia_facts theFacts = {};
    const char* theReason = aProbe.mHandler->Read(SourceFor(aSource), theFacts);
    TakeFacts(theFacts, theReading.mFacts);
    theReason = RefusalOf(aSource, theReading.mFacts, theReason);
    theReading.mReason = theReason == nullptr ? nullptr : Keep(theReason);
    return theReading;
}

}  // namespace vxmedia
