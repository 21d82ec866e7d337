// Objects that are read, forgotten, attached, detached and let go of in any order, and from inside of
// each other's fetching and forgetting: the cache never touches one that is gone, and a pass that
// nothing disturbs leaves no more content than it should.

#include <vx/Cache.h>
#include <vx/Ref.h>

#include <functional>
#include <memory>

#include "Input.h"

namespace {

class Object : public vxCachedBase {
public:
    Object(size_t aSize, std::function<bool()> anAction) : mAction(std::move(anAction)) {
        mSize = aSize;
    }
    bool Fetch() override { return mAction(); }
    void Trash() override { mAction(); }
    void CancelFetch() override { mAction(); }
    void Lock(int aChange) { mLockCount += aChange; }

private:
    std::function<bool()> mAction;
};

using ObjectRef = vxRef<Object>;

class World {
public:
    explicit World(vxfuzz::Input& anInput) : mInput(anInput) {
        for (auto& theCache : mCaches) {
            theCache = std::make_unique<vxCache>(kSizeLimit, kCountLimit);
        }
    }

    void Run() {
        while (!mInput.IsEmpty()) {
            Step();
        }
        Check();
    }

private:
    static constexpr size_t kObjects = 8;
    static constexpr size_t kCaches = 2;
    static constexpr size_t kSizeLimit = 100;
    static constexpr size_t kCountLimit = 3;
    static constexpr int kMostWithin = 4;

    /// What an object does while it is fetched or forgotten; returns whether it succeeds.
    bool Within() {
        const uint8_t theByte = mInput.Byte();
        if (theByte % 4 == 1 && mDepth < kMostWithin) {
            ++mDepth;
            Step();
            --mDepth;
        }
        return theByte % 2 == 0;
    }

    void Step() {
        const uint8_t theStep = mInput.Byte();
        const uint8_t theWhich = mInput.Byte();
        ObjectRef& thePlace = mObjects[theWhich % kObjects];
        vxCache& theCache = *mCaches[theWhich / kObjects % kCaches];
        const ObjectRef theObject = thePlace;  // held while it is called
        if (theObject.IsNull()) {
            thePlace = new Object(theStep, [this] { return Within(); });
            return;
        }
        switch (theStep % 13) {
            case 0:
                thePlace = nullptr;
                break;
            case 1:
            case 2:
                theCache.Attach(theObject.Get());
                break;
            case 3:
                theCache.Detach(theObject.Get());
                break;
            case 4:
            case 5:
                theObject->OnReadAccess();
                break;
            case 6:
                theObject->Forget();
                break;
            case 7:
                theObject->Prefetch();
                break;
            case 8:
                theObject->Lock(theObject->GetLockCount() == 0 ? 1 : -1);
                break;
            case 9:
                theCache.SetLimits(mInput.Byte(), mInput.Byte() % kObjects);
                break;
            case 10:
                theCache.OnReadAccess(theObject.Get());
                break;
            case 11:
                theObject->SetState(theStep < 128 ? kvxCachedState_Wanted
                                                  : kvxCachedState_Fetching);
                break;
            default:
                theObject->FetchDone(theStep < 128);
                break;
        }
    }

    /// With new caches, and objects that do nothing but what they are told.
    void Check() {
        for (auto& theCache : mCaches) {
            theCache = std::make_unique<vxCache>(kSizeLimit, kCountLimit);
        }
        for (const ObjectRef& theObject : mObjects) {
            if (!theObject.IsNull()) {
                mCaches[0]->Attach(theObject.Get());
                theObject->Lock(-theObject->GetLockCount());
            }
        }
        mCaches[0]->SetLimits(kSizeLimit, kCountLimit - 1);
        size_t theCount = 0;
        for (const ObjectRef& theObject : mObjects) {
            theCount += !theObject.IsNull() && theObject->IsAvailable() ? 1 : 0;
        }
        vxfuzz::Expect(theCount <= kCountLimit, "one more than the limit at most");
    }

    vxfuzz::Input& mInput;
    int mDepth = 0;
    std::unique_ptr<vxCache> mCaches[kCaches];
    ObjectRef mObjects[kObjects];
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    World(theInput).Run();
    return 0;
}
