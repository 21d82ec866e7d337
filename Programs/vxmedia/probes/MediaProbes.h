#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "ScanOptions.h"
#include "probes/ProbeLoader.h"
#include "readers/MediaReader.h"
#include "vx/Mutex.h"

namespace vxmedia {

/// One format that a plug-in reads.
struct MediaProbe {
    const ProbeHandler* mHandler;  // borrowed
    const MediaFormat* mFormat;    // stays when the plug-in goes
    NameEndings mEndings;
};

/// Finds out what files are: by the program's own readers, then by plug-ins.
///
/// Formats and reasons that plug-ins have named stay valid as long as this object, so media files
/// that a plug-in has read outlive it.
///
/// Threads:  one at a time; any for Read(), as long as nothing is loaded or unloaded.
class MediaProbes {
public:
    /// The plug-ins that are linked into the program are there at once.
    MediaProbes();
    MediaProbes(const MediaProbes&) = delete;
    MediaProbes& operator=(const MediaProbes&) = delete;

    /// Sets the directory for plug-ins to be loaded; an empty one stands for the platform's. Counts
    /// from the next Load() on, when no file is loaded.
    void SetDirectory(const vxCString& aDirectory) { mDirectory = aDirectory; }

    /// Loads the files that match the pattern, without their extension, and are not loaded yet.
    ///
    /// Fails:    with error texts, one for each reason; the other files are loaded all the same.
    std::vector<vxCString> Load(const vxCString& aPattern);

    /// Unloads all files and returns how many there were.
    size_t Unload();

    /// Returns what is loaded or linked in, sorted by format.
    const std::vector<MediaProbe>& GetProbes() const { return mProbes; }

    /// Returns whether files of this format can be read now.
    bool Has(const MediaFormat& aFormat) const;

    /// Returns the format of that name: one of the program's own, or one that a plug-in has or may
    /// get.
    const MediaFormat* FormatOf(const char* aName);

    /// Reads a file as ReadMedia() does, and by the plug-ins where that knows nothing.
    MediaReading Read(MediaSource& aSource, const char* aFileName);

private:
    void Collect();
    void AddFrom(const ProbeLoader& aLoader);
    const MediaFormat* Format(const char* aName);
    const char* Keep(const char* aReason);
    const MediaProbe* FindByContent(MediaSource& aSource) const;
    const MediaProbe* FindByName(const char* aFileName) const;
    MediaReading ReadBy(const MediaProbe& aProbe, MediaSource& aSource);

    struct KeptFormat {
        std::string mName;
        MediaFormat mFormat;
    };

    vxCString mDirectory;
    std::map<std::string, KeptFormat> mFormats;  // all there ever were, by name
    vxMutex mMutex;                              // guards mReasons
    std::set<std::string> mReasons;              // all there ever were, safe for a terminal
    ProbeLoader mLinkedIn;
    std::unique_ptr<ProbeLoader> mLoaded;  // null: no file is loaded
    std::vector<MediaProbe> mProbes;       // of both loaders
};

}  // namespace vxmedia
