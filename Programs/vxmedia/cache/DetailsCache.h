#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <vector>

#include "MediaItem.h"
#include "WorkerPool.h"
#include "cache/MediaDetails.h"
#include "vx/Cache.h"

namespace vxmedia {

/// The details of one media file, which a worker thread reads when somebody wants them.
///
/// Threads:  the main loop's.
class CachedDetails : public vxCachedBase {
public:
    using Reader = std::function<void(const MediaDetails&)>;

    CachedDetails(WorkerPool& aWorkers, const vxCString& aPath)
        : mWorkers(aWorkers), mPath(aPath) {}

    /// Calls `aReader` with the details: at once if they are there and the file has not changed, else
    /// from the main loop when they come.
    void Read(const Reader& aReader);

    void SetFetching() override;
    void Trash() override;
    vxCString GetID() override { return mPath; }

private:
    class FetchJob;

    void Take(const MediaDetails& aDetails);

    WorkerPool& mWorkers;
    const vxCString mPath;
    MediaDetails mDetails;         // empty unless available
    std::vector<Reader> mReaders;  // who waits
};

/// The details of the media files that were asked about last.
///
/// They are read again when the file has changed.
///
/// Threads:  one at a time, the main loop's.
class DetailsCache {
public:
    explicit DetailsCache(WorkerPool& aWorkers) : mWorkers(aWorkers), mCache(SIZE_MAX, SIZE_MAX) {}

    /// Sets how many bytes and how many files it may have, see vxCache.
    void SetLimits(size_t aSizeLimit, size_t aCountLimit);

    /// Calls `aReader` with the details of a file, at once or later from the main loop.
    void Ask(const vxCString& aPath, const CachedDetails::Reader& aReader);

    /// What is there.
    struct Status {
        uint64_t mFiles = 0;
        uint64_t mBytes = 0;
    };
    Status GetStatus() const;

private:
    void RemoveForgotten();

    WorkerPool& mWorkers;
    vxCache mCache;
    std::map<vxCString, vxRef<CachedDetails>, PathLess> mDetails;  // by path
};

}  // namespace vxmedia
