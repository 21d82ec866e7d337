#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

#include "vx/CString.h"

class vxFileCacheManager;

namespace vxmedia {

/// Where covers are kept, and how much room they may take.
struct CoverPlace {
    std::string mDirectory;      // as it is set; empty: that of the system for such files
    uint32_t mLimitMBytes = 64;  // of 2^20 bytes each, up to 4096

    bool operator==(const CoverPlace& anOther) const {
        return mDirectory == anOther.mDirectory && mLimitMBytes == anOther.mLimitMBytes;
    }
};

/// A cover that lies in a file, or why there is none.
struct Cover {
    vxCString mError;  // empty: the cover is there
    vxCString mPath;
    uint64_t mBytes = 0;
    const char* mMimeType = "";  // a literal; what its first bytes look like
    bool mfWritten = false;      // just now, else it was there
};

/// Covers of media files, each in a file of its own, in a directory that is kept below a size.
///
/// A cover is written beside its place and takes it as a whole, so that neither a full disk nor a
/// program that is killed leaves half of one. The directory may be emptied or filled by others at
/// any time: covers that have gone are made again, files that are there are taken for what they are
/// called.
///
/// Threads:  any. SetPlace() and GetStatus() wait for nobody; all else may take as long as a cover
///           takes that is being produced.
class CoverStore {
public:
    /// Obtains the bytes of a cover. Returns an error text, empty on success.
    using Producer = std::function<vxCString(std::vector<uint8_t>& aPicture)>;

    CoverStore();
    ~CoverStore();
    CoverStore(const CoverStore&) = delete;
    CoverStore& operator=(const CoverStore&) = delete;

    /// Sets where covers are kept and how many; it counts from the next use on.
    void SetPlace(const CoverPlace& aPlace);

    /// Lets the place that was set count now: covers beyond the limit are removed.
    ///
    /// Fails:    with an error text, which is empty on success, as Fetch() does.
    vxCString TakePlace() { return Open(false); }

    /// Returns the cover of this file name, which is produced if it is not there.
    ///
    /// Who asks for a name that another thread is producing waits for that, and produces it only if
    /// the other one has failed. A cover that is larger than the limit is refused.
    Cover Fetch(const vxCString& aName, const Producer& aProducer);

    /// Removes all covers, and with `afRemoveDir` their directory, once none is being produced.
    ///
    /// Fails:    with an error text, which is empty on success.
    vxCString Empty(bool afRemoveDir);

    /// What lies in the directory.
    struct Status {
        vxCString mDirectory;
        uint64_t mCovers = 0;
        uint64_t mBytes = 0;
        uint64_t mLimit = 0;    // bytes
        uint64_t mFound = 0;    // requests so far that were answered from the directory
        uint64_t mWritten = 0;  // requests so far for which a cover was written
    };
    Status GetStatus() const;

private:
    enum class Outcome { Done, Failed, Unusable };

    CoverPlace GetPlace() const;
    vxCString Open(bool afAnew);
    vxCString Repair(const vxCString& aName);
    Outcome TryFetch(const vxCString& aName, const Producer& aProducer, Cover& aCover);
    Outcome Produce(const vxCString& aName, const Producer& aProducer, Cover& aCover);
    bool LookAt(const vxCString& aName, Cover& aCover);

    mutable std::mutex mPlaceMutex;
    CoverPlace mPlace;  // guarded by mPlaceMutex

    // Held shared by whoever fetches, else whole: nothing is being produced then.
    std::shared_mutex mUseMutex;
    std::unique_ptr<vxFileCacheManager> mManager;  // null: not opened yet
    CoverPlace mOpenPlace;                         // that of mManager
    uint64_t mLimit = 0;                           // of mManager, in bytes

    std::atomic<uint64_t> mFound{0};
    std::atomic<uint64_t> mWritten{0};
};

}  // namespace vxmedia
