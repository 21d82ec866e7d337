// The pass of the cache never drops what has just come, so whoever waits for details gets them,
// whatever the limits are.

#include "cache/DetailsCache.h"

#include <string>
#include <utility>

namespace vxmedia {

// Holds the object until the result is there. The worker does not touch it.
class CachedDetails::FetchJob : public Job {
public:
    explicit FetchJob(CachedDetails* anObject)
        : mObject(anObject), mPath(anObject->mPath.c_str()) {}

    unsigned int Run() override {
        mDetails = ReadMediaDetails(mPath.c_str());
        return 0;
    }

    void Finish() override { mObject->Take(mDetails); }

    const char* GetTitle() const override { return "reading details"; }

private:
    const vxRef<CachedDetails> mObject;
    const std::string mPath;
    MediaDetails mDetails;
};

void CachedDetails::Read(const Reader& aReader) {
    if (IsAvailable() && !mDetails.mStatus.IsSameAs(GetFileStatus(mPath, true))) {
        Forget();
    }
    const bool theAreThere = IsAvailable();
    if (!theAreThere) {
        mReaders.push_back(aReader);
    }
    OnReadAccess();
    if (theAreThere) {
        aReader(mDetails);
    }
}

void CachedDetails::SetFetching() {
    SetState(kvxCachedState_Fetching);
    if (!mWorkers.Add(new FetchJob(this))) {
        MediaDetails theNone;
        theNone.mError = "ERROR: No worker thread can be started";
        Take(theNone);
    }
}

void CachedDetails::Trash() {
    mDetails = MediaDetails();
    mSize = 0;
}

void CachedDetails::Take(const MediaDetails& aDetails) {
    mDetails = aDetails;
    mSize = sizeof(*this) + mPath.length() + mDetails.mCover.length();
    FetchDone(aDetails.mError.IsEmpty());
    for (const Reader& theReader : std::exchange(mReaders, {})) {
        theReader(aDetails);
    }
}

void DetailsCache::SetLimits(size_t aSizeLimit, size_t aCountLimit) {
    mCache.SetLimits(aSizeLimit, aCountLimit);
}

void DetailsCache::Ask(const vxCString& aPath, const CachedDetails::Reader& aReader) {
    const auto theFound = mDetails.find(aPath);
    if (theFound != mDetails.end()) {
        theFound->second->Read(aReader);
        return;
    }
    RemoveForgotten();
    const vxRef<CachedDetails> theDetails = new CachedDetails(mWorkers, aPath);
    mDetails[aPath] = theDetails;
    mCache.Attach(theDetails.Get());
    theDetails->Read(aReader);
}

DetailsCache::Status DetailsCache::GetStatus() const {
    Status theStatus;
    for (const auto& theEntry : mDetails) {
        theStatus.mFiles += theEntry.second->IsAvailable() ? 1 : 0;
        theStatus.mBytes += theEntry.second->Size();
    }
    return theStatus;
}

void DetailsCache::RemoveForgotten() {
    for (auto theEntry = mDetails.begin(); theEntry != mDetails.end();) {
        theEntry = theEntry->second->IsUnavailable() ? mDetails.erase(theEntry) : ++theEntry;
    }
}

}  // namespace vxmedia
