#include "vx/Cache.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/Reports.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Reports;

namespace {

constexpr size_t kNoLimit = SIZE_MAX;

// An object that writes down what is asked of it. Fetches succeed as told, then for ever.
class Cached : public vxCachedBase {
public:
    explicit Cached(const std::string& aName, size_t aSize = 1) : mName(aName) { mSize = aSize; }
    ~Cached() override {
        if (mOnDestruction) {
            mOnDestruction();
        }
    }

    void Forget() override {
        mCalls.push_back("Forget");
        if (mOnForget) {
            mOnForget();
        }
        vxCachedBase::Forget();
    }
    bool Fetch() override {
        mCalls.push_back("Fetch");
        if (mFailures > 0) {
            --mFailures;
            return false;
        }
        return true;
    }
    void Trash() override { mCalls.push_back("Trash"); }
    void CancelFetch() override { mCalls.push_back("CancelFetch"); }
    vxCString GetID() override { return mName.c_str(); }

    void Lock(int aCount) { mLockCount += aCount; }
    void SetSize(size_t aSize) { mSize = aSize; }
    void SetTarget(unsigned int aState) { mTargetState = aState; }
    unsigned int Target() const { return mTargetState; }
    vxCache* Container() const { return mContainer; }

    std::vector<std::string> TakeCalls() {
        std::vector<std::string> theCalls;
        theCalls.swap(mCalls);
        return theCalls;
    }

    int mFailures = 0;
    std::function<void()> mOnForget;
    std::function<void()> mOnDestruction;

private:
    std::string mName;
    std::vector<std::string> mCalls;
};

using CachedRef = vxRef<Cached>;

// One that fetches in steps, as a program with a loader thread does.
class Loaded : public Cached {
public:
    using Cached::Cached;
    void SetWanted() override { SetState(kvxCachedState_Wanted); }
    void SetFetching() override { SetState(kvxCachedState_Fetching); }
};

// One that lets go of itself whenever its content is asked for or dropped.
class Fleeting : public Cached {
public:
    Fleeting(const std::string& aName, int* aDestroyed) : Cached(aName), mDestroyed(aDestroyed) {}
    ~Fleeting() override {
        EXPECT_EQ(mCallsWithin, 0);
        ++*mDestroyed;
    }
    bool Fetch() override {
        LetGo();
        return Cached::Fetch();
    }
    void Trash() override { LetGo(); }
    void CancelFetch() override { LetGo(); }

    std::function<void()> mLetGo;

private:
    void LetGo() {
        ++mCallsWithin;
        mLetGo();
        --mCallsWithin;
    }

    int* mDestroyed;
    int mCallsWithin = 0;
};

class Listener : public vxListener {
public:
    void ListenToMessage(int aMessage, void* aParam) override {
        mMessages.push_back(aMessage);
        mParam = aParam;
        std::function<void()> theAction;
        theAction.swap(mOnMessage);
        if (theAction) {
            theAction();
        }
    }
    std::vector<int> mMessages;
    void* mParam = NULL;
    std::function<void()> mOnMessage;  // runs once
};

// The names that Dump() logs behind a heading. Other reports end here: look at them before.
std::vector<std::string> Dumped(vxCache& aCache, const std::string& aHeading) {
    Reports theReports;
    aCache.Dump();
    std::vector<std::string> theNames;
    bool theIsInside = false;
    for (const std::string& theText : theReports.LogTexts()) {
        if (theText.compare(0, 7, "vxCache") == 0) {
            theIsInside = theText == aHeading;
        } else if (theIsInside) {
            theNames.push_back(theText.substr(5, theText.size() - 6));
        }
    }
    return theNames;
}

std::vector<std::string> Elements(vxCache& aCache) {
    return Dumped(aCache, "vxCache: Elements:\n");
}

std::vector<std::string> Availables(vxCache& aCache) {
    return Dumped(aCache, "vxCache: Available:\n");
}

CachedRef NewAttached(vxCache& aCache, const std::string& aName, size_t aSize = 1) {
    CachedRef theObject = new Cached(aName, aSize);
    aCache.Attach(theObject.Get());
    return theObject;
}

bool Contains(const std::vector<std::string>& aTexts, const std::string& aText) {
    for (const std::string& theText : aTexts) {
        if (theText == aText) {
            return true;
        }
    }
    return false;
}

TEST(CachedBaseTest, StatesHaveTheirNumbers) {
    EXPECT_EQ(kvxCachedState_Unavailable, 21000);
    EXPECT_EQ(kvxCachedState_Wanted, 21001);
    EXPECT_EQ(kvxCachedState_Fetching, 21002);
    EXPECT_EQ(kvxCachedState_Available, 21003);
}

TEST(CachedBaseTest, NewObjectsAreUnavailable) {
    const vxRef<vxCachedBase> theObject = new vxCachedBase;
    EXPECT_EQ(theObject->State(), 21000u);
    EXPECT_EQ(theObject->GetState(), 21000u);
    EXPECT_TRUE(theObject->IsUnavailable());
    EXPECT_FALSE(theObject->IsAvailable());
    EXPECT_EQ(theObject->GetLockCount(), 0);
    EXPECT_EQ(theObject->Size(), 0u);
    EXPECT_STREQ(theObject->GetID(), "");
    EXPECT_EQ(static_cast<Cached*>(CachedRef(new Cached("a")).Get())->Target(), 21000u);
}

TEST(CachedBaseTest, TheBaseHasNothingToFetch) {
    const vxRef<vxCachedBase> theObject = new vxCachedBase;
    EXPECT_FALSE(theObject->Fetch());
    theObject->Trash();
    theObject->CancelFetch();
    theObject->Want();
    EXPECT_TRUE(theObject->IsUnavailable());
}

TEST(CachedBaseTest, WantFetchesAtOnce) {
    const CachedRef theObject = new Cached("a");
    theObject->Want();
    EXPECT_TRUE(theObject->IsAvailable());
    EXPECT_FALSE(theObject->IsUnavailable());
    EXPECT_EQ(theObject->GetState(), 21003u);
    EXPECT_THAT(theObject->TakeCalls(), ElementsAre("Fetch"));
    EXPECT_EQ(theObject->Target(), 21000u);
}

TEST(CachedBaseTest, WantOnlyActsOnUnavailableObjects) {
    const CachedRef theObject = new Loaded("a");
    for (const unsigned int theState : {21001u, 21002u, 21003u}) {
        SCOPED_TRACE(theState);
        theObject->SetState(theState);
        theObject->Want();
        EXPECT_EQ(theObject->GetState(), theState);
    }
    theObject->SetState(kvxCachedState_Unavailable);
    theObject->Want();
    EXPECT_EQ(theObject->GetState(), 21001u);
    EXPECT_THAT(theObject->TakeCalls(), IsEmpty());
}

TEST(CachedBaseTest, OnlyAvailableAndUnavailableAreBroadcast) {
    const CachedRef theObject = new Cached("a");
    Listener theListener;
    theObject->AddListener(&theListener);
    for (const unsigned int theState : {21001u, 21002u, 21003u, 21000u, 21000u, 21004u, 0u}) {
        theObject->SetState(theState);
        EXPECT_EQ(theObject->GetState(), theState);
    }
    EXPECT_THAT(theListener.mMessages, ElementsAre(21003, 21000, 21000));
    EXPECT_EQ(theListener.mParam, static_cast<vxCachedBase*>(theObject.Get()));
}

TEST(CachedBaseTest, FailedFetchesAreTrashed) {
    const CachedRef theObject = new Cached("a");
    Listener theListener;
    theObject->AddListener(&theListener);
    theObject->mFailures = 1;
    theObject->Want();
    EXPECT_TRUE(theObject->IsUnavailable());
    EXPECT_THAT(theObject->TakeCalls(), ElementsAre("Fetch", "Trash"));
    EXPECT_THAT(theListener.mMessages, ElementsAre(21000));
}

TEST(CachedBaseTest, PrefetchTriesAgain) {
    const CachedRef theObject = new Cached("a");
    theObject->mFailures = 2;
    theObject->Prefetch();
    EXPECT_TRUE(theObject->IsAvailable());
    EXPECT_EQ(theObject->Target(), 21003u);
    EXPECT_THAT(theObject->TakeCalls(), ElementsAre("Fetch", "Trash", "Fetch", "Trash", "Fetch"));
}

TEST(CachedBaseTest, PrefetchOfAnAvailableObjectOnlySetsTheTarget) {
    const CachedRef theObject = new Cached("a");
    theObject->Want();
    theObject->TakeCalls();
    theObject->Prefetch();
    EXPECT_EQ(theObject->Target(), 21003u);
    EXPECT_THAT(theObject->TakeCalls(), IsEmpty());
}

TEST(CachedBaseTest, ThreeFailuresInARowEndTheAttempts) {
    const CachedRef theObject = new Cached("a");
    Listener theListener;
    theObject->AddListener(&theListener);
    theObject->mFailures = 100;
    for (int i = 0; i < 2; ++i) {  // each time anew
        SCOPED_TRACE(i);
        theObject->Prefetch();
        EXPECT_TRUE(theObject->IsUnavailable());
        EXPECT_THAT(theObject->TakeCalls(),
                    ElementsAre("Fetch", "Trash", "Fetch", "Trash", "Fetch", "Trash"));
    }
    EXPECT_THAT(theListener.mMessages, ElementsAre(21000, 21000));
}

TEST(CachedBaseTest, ASuccessBetweenFailuresStartsTheCountAnew) {
    const CachedRef theObject = new Cached("a");
    theObject->mFailures = 2;
    theObject->Prefetch();
    theObject->SetState(kvxCachedState_Unavailable);
    theObject->TakeCalls();
    theObject->mFailures = 2;
    theObject->Want();
    EXPECT_TRUE(theObject->IsAvailable());
    EXPECT_THAT(theObject->TakeCalls(), ElementsAre("Fetch", "Trash", "Fetch", "Trash", "Fetch"));
}

TEST(CachedBaseTest, AWithdrawnWishStartsTheCountAnew) {
    const CachedRef theObject = new Loaded("a");
    theObject->Prefetch();
    theObject->SetFetching();
    theObject->FetchDone(false);
    theObject->SetFetching();
    theObject->FetchDone(false);
    theObject->SetNotWanted();
    theObject->Prefetch();
    theObject->FetchDone(false);
    EXPECT_EQ(theObject->GetState(), 21001u);
}

TEST(CachedBaseTest, LateFetchesAreReportedByFetchDone) {
    const CachedRef theObject = new Loaded("a");
    theObject->Prefetch();
    EXPECT_EQ(theObject->GetState(), 21001u);
    theObject->SetFetching();
    theObject->FetchDone(false);
    EXPECT_EQ(theObject->GetState(), 21001u);  // wanted again
    theObject->SetFetching();
    EXPECT_EQ(theObject->GetState(), 21002u);
    theObject->FetchDone(true);
    EXPECT_EQ(theObject->GetState(), 21003u);
    EXPECT_THAT(theObject->TakeCalls(), ElementsAre("Trash"));
}

TEST(CachedBaseTest, NotWantedObjectsDropWhatTheyHave) {
    const struct {
        unsigned int mState;
        std::vector<std::string> mCalls;
        std::vector<int> mMessages;
    } theRows[] = {
        {21000, {}, {}},
        {21001, {}, {21000}},
        {21002, {"CancelFetch"}, {21000}},
        {21003, {"Trash"}, {21000}},
    };
    for (const auto& theRow : theRows) {
        SCOPED_TRACE(theRow.mState);
        const CachedRef theObject = new Cached("a");
        theObject->SetState(theRow.mState);
        theObject->SetTarget(kvxCachedState_Available);
        Listener theListener;
        theObject->AddListener(&theListener);
        theObject->SetNotWanted();
        EXPECT_EQ(theObject->GetState(), 21000u);
        EXPECT_EQ(theObject->Target(), 21000u);
        EXPECT_EQ(theObject->TakeCalls(), theRow.mCalls);
        EXPECT_EQ(theListener.mMessages, theRow.mMessages);
    }
}

TEST(CachedBaseTest, ForgetLeavesAnUnavailableObjectsTargetAlone) {
    const CachedRef theObject = new Cached("a");
    theObject->SetTarget(kvxCachedState_Available);
    theObject->Forget();
    EXPECT_EQ(theObject->Target(), 21003u);
    theObject->SetState(kvxCachedState_Wanted);
    theObject->Forget();
    EXPECT_EQ(theObject->Target(), 21000u);
    EXPECT_TRUE(theObject->IsUnavailable());
}

TEST(CachedBaseTest, ReadingWithoutACacheWants) {
    const CachedRef theObject = new Cached("a");
    theObject->OnReadAccess();
    EXPECT_TRUE(theObject->IsAvailable());
    EXPECT_EQ(theObject->Container(), nullptr);
}

TEST(CachedBaseTest, AnObjectOutlivesItsOwnBroadcast) {
    CachedRef theObject = new Cached("a");
    bool theIsGone = false;
    theObject->mOnDestruction = [&theIsGone] { theIsGone = true; };
    Listener theListener;
    bool theWasGone = true;
    theListener.mOnMessage = [&] {
        theObject = 0;
        theWasGone = theIsGone;
    };
    theObject->AddListener(&theListener);
    theObject.Get()->SetState(kvxCachedState_Available);
    EXPECT_FALSE(theWasGone);
    EXPECT_TRUE(theIsGone);
    EXPECT_THAT(theListener.mMessages, ElementsAre(21003, 0));
}

TEST(CachedBaseTest, AnObjectWithoutHandlesSurvivesItsOwnBroadcast) {
    Cached theObject("a");
    theObject.SetState(kvxCachedState_Available);
    theObject.SetNotWanted();
    EXPECT_TRUE(theObject.IsUnavailable());
}

TEST(CacheTest, AttachedObjectsAreTheLeastRecentlyUsed) {
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = NewAttached(theCache, "b");
    EXPECT_THAT(Elements(theCache), ElementsAre("a", "b"));
    EXPECT_THAT(Availables(theCache), IsEmpty());
    EXPECT_EQ(theA->Container(), &theCache);
    EXPECT_EQ(theA->_GetRefCount(), 1);
}

TEST(CacheTest, AvailableObjectsAreHeldInTheOrderOfTheirArrival) {
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = NewAttached(theCache, "b");
    theA->Want();
    theB->Want();
    EXPECT_EQ(theA->_GetRefCount(), 2);
    EXPECT_THAT(Availables(theCache), ElementsAre("a", "b"));
    EXPECT_THAT(Elements(theCache), ElementsAre("b", "a"));

    theA->OnReadAccess();
    EXPECT_THAT(Availables(theCache), ElementsAre("a", "b"));
    EXPECT_THAT(Elements(theCache), ElementsAre("a", "b"));

    theA->Forget();
    EXPECT_EQ(theA->_GetRefCount(), 1);
    EXPECT_THAT(Availables(theCache), ElementsAre("b"));
    EXPECT_THAT(Elements(theCache), ElementsAre("a", "b"));
    theA->Want();
    EXPECT_THAT(Availables(theCache), ElementsAre("b", "a"));
}

TEST(CacheTest, AvailableObjectsMayBeAttached) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = new Cached("b");
    theB->Want();
    theReports.Clear();
    theCache.Attach(theB.Get());
    EXPECT_TRUE(Contains(theReports.LogTexts(), "Cache status: 1 elements, total size: 1\n"));
    EXPECT_THAT(Availables(theCache), ElementsAre("b"));
    EXPECT_THAT(Elements(theCache), ElementsAre("a", "b"));
    EXPECT_EQ(theB->_GetRefCount(), 2);
}

TEST(CacheTest, AnAvailableObjectForWhichThereIsNoRoomForgetsWhenItIsAttached) {
    vxCache theCache(kNoLimit, 0);
    const CachedRef theA = NewAttached(theCache, "a");
    theA->Want();
    const CachedRef theB = new Cached("b");
    theB->Want();
    theB->TakeCalls();
    theCache.Attach(theB.Get());
    EXPECT_THAT(theB->TakeCalls(), ElementsAre("Forget", "Trash"));
    EXPECT_THAT(Availables(theCache), ElementsAre("a"));
    EXPECT_THAT(Elements(theCache), ElementsAre("a", "b"));
    EXPECT_EQ(theB->_GetRefCount(), 1);
}

TEST(CacheTest, AttachingAnUnavailableObjectRunsNoPass) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theObject = NewAttached(theCache, "a");
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("Attaching a\n"));
}

TEST(CacheTest, AnObjectAttachedAgainBecomesTheLeastRecentlyUsed) {
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = NewAttached(theCache, "b");
    theA->Want();
    theCache.Attach(theA.Get());
    EXPECT_THAT(Elements(theCache), ElementsAre("b", "a"));
    EXPECT_THAT(Availables(theCache), ElementsAre("a"));
    EXPECT_EQ(theA->_GetRefCount(), 2);
}

TEST(CacheTest, AnObjectThatTheCacheAloneHoldsSurvivesBeingAttachedAgain) {
    vxCache theCache(kNoLimit, kNoLimit);
    bool theIsGone = false;
    Cached* theObject = NULL;
    {
        const CachedRef theHandle = NewAttached(theCache, "a");
        theObject = theHandle.Get();
        theObject->mOnDestruction = [&theIsGone] { theIsGone = true; };
        theObject->Want();
    }
    theCache.Attach(theObject);
    EXPECT_FALSE(theIsGone);
    EXPECT_THAT(Availables(theCache), ElementsAre("a"));
    theCache.Detach(theObject);
    EXPECT_TRUE(theIsGone);
}

TEST(CacheTest, AnObjectAttachedElsewhereLeavesItsOldCache) {
    vxCache theOld(kNoLimit, kNoLimit);
    vxCache theNew(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theOld, "a");
    theA->Want();
    theNew.Attach(theA.Get());
    EXPECT_THAT(Elements(theOld), IsEmpty());
    EXPECT_THAT(Availables(theOld), IsEmpty());
    EXPECT_THAT(Elements(theNew), ElementsAre("a"));
    EXPECT_EQ(theA->Container(), &theNew);
    theOld.Detach(theA.Get());  // not its business any more
    EXPECT_EQ(theA->Container(), &theNew);
    EXPECT_THAT(Availables(theNew), ElementsAre("a"));
    EXPECT_EQ(theA->_GetRefCount(), 2);
}

TEST(CacheTest, DetachedObjectsKeepTheirContent) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a");
    theA->Want();
    theA->TakeCalls();
    theReports.Clear();
    theCache.Detach(theA.Get());
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("Detaching a\n"));
    EXPECT_TRUE(theA->IsAvailable());
    EXPECT_THAT(theA->TakeCalls(), IsEmpty());
    EXPECT_EQ(theA->Container(), nullptr);
    EXPECT_EQ(theA->_GetRefCount(), 1);

    theA->Forget();
    theA->Want();  // the cache does not listen any more
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_THAT(Elements(theCache), IsEmpty());
    EXPECT_THAT(Availables(theCache), IsEmpty());
}

TEST(CacheTest, NothingIsReportedAndIgnored) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    theCache.Attach(NULL);
    theCache.Detach(NULL);
    theCache.OnReadAccess(vxRef<vxCachedBase>());
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("aCached != NULL", "aCached != NULL", "!aCached.IsNull()"));
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST(CacheTest, ReadingFetchesAndMovesToTheFront) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = NewAttached(theCache, "b");
    const CachedRef theC = NewAttached(theCache, "c");
    theReports.Clear();
    theCache.OnReadAccess(theB.Get());
    EXPECT_EQ(theReports.LogTexts().front(), "OnReadAccess b\n");
    EXPECT_TRUE(theB->IsAvailable());
    EXPECT_THAT(Elements(theCache), ElementsAre("b", "a", "c"));

    theC->mFailures = 1;
    theC->OnReadAccess();
    EXPECT_TRUE(theC->IsUnavailable());
    EXPECT_THAT(theC->TakeCalls(), ElementsAre("Fetch", "Trash"));
    EXPECT_THAT(Elements(theCache), ElementsAre("c", "b", "a"));
}

TEST(CacheTest, AFetchMayReplaceTheHandleThatIsRead) {
    class Replacing : public Cached {
    public:
        explicit Replacing(vxRef<vxCachedBase>& aHandle) : Cached("a"), mHandle(aHandle) {}
        bool Fetch() override {
            mHandle = 0;
            return Cached::Fetch();
        }

    private:
        vxRef<vxCachedBase>& mHandle;
    };
    vxCache theCache(kNoLimit, kNoLimit);
    vxRef<vxCachedBase> theHandle;
    theHandle = new Replacing(theHandle);
    theCache.Attach(theHandle.Get());
    theCache.OnReadAccess(theHandle);
    EXPECT_THAT(Availables(theCache), ElementsAre("a"));
}

TEST(CacheTest, ReadingAnObjectOfNoCacheOnlyWantsIt) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = new Cached("a");
    theCache.OnReadAccess(theA.Get());
    EXPECT_TRUE(theA->IsAvailable());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_THAT(Elements(theCache), IsEmpty());
}

TEST(CacheTest, OneObjectMoreThanTheCountLimitStays) {
    vxCache theCache(kNoLimit, 2);
    std::vector<CachedRef> theObjects;
    for (const char* theName : {"0", "1", "2", "3", "4"}) {
        theObjects.push_back(NewAttached(theCache, theName));
    }
    for (const CachedRef& theObject : theObjects) {
        theObject->Want();
    }
    EXPECT_THAT(Elements(theCache), ElementsAre("4", "3", "2", "1", "0"));
    EXPECT_THAT(Availables(theCache), ElementsAre("2", "3", "4"));
    EXPECT_TRUE(theObjects[0]->IsUnavailable());
    EXPECT_TRUE(theObjects[1]->IsUnavailable());
}

TEST(CacheTest, TheObjectThatCrossesTheSizeLimitStays) {
    const struct {
        size_t mLimit;
        std::vector<std::string> mKept;
    } theRows[] = {
        {0, {"c"}}, {9, {"c"}}, {10, {"b", "c"}}, {19, {"b", "c"}}, {20, {"a", "b", "c"}},
    };
    for (const auto& theRow : theRows) {
        SCOPED_TRACE(theRow.mLimit);
        vxCache theCache(theRow.mLimit, kNoLimit);
        const CachedRef theA = NewAttached(theCache, "a", 10);
        const CachedRef theB = NewAttached(theCache, "b", 10);
        const CachedRef theC = NewAttached(theCache, "c", 10);
        theA->Want();
        theB->Want();
        theC->Want();
        EXPECT_EQ(Availables(theCache), theRow.mKept);
    }
}

TEST(CacheTest, AnEndlessSizeLimitIsNeverExceeded) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a", SIZE_MAX);
    const CachedRef theB = NewAttached(theCache, "b", SIZE_MAX);
    const CachedRef theC = NewAttached(theCache, "c", 2);
    for (const CachedRef& theObject : {theA, theB, theC}) {
        theObject->Want();
    }
    EXPECT_THAT(Availables(theCache), ElementsAre("a", "b", "c"));
    // A sum that wrapped would be below this limit.
    theCache.SetLimits(SIZE_MAX - 1, kNoLimit);
    EXPECT_THAT(Availables(theCache), ElementsAre("b", "c"));
}

TEST(CacheTest, ObjectsInOtherStatesAreNotCounted) {
    vxCache theCache(kNoLimit, 0);
    const CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = NewAttached(theCache, "b");
    const CachedRef theC = NewAttached(theCache, "c");
    theA->Want();
    theB->SetState(kvxCachedState_Fetching);
    theCache.OnReadAccess(theB.Get());
    theCache.OnReadAccess(theC.Get());  // the only one that counts
    EXPECT_THAT(Elements(theCache), ElementsAre("c", "b", "a"));
    EXPECT_THAT(Availables(theCache), ElementsAre("c"));
}

TEST(CacheTest, UnavailableObjectsBeforeTheCutAreNotDisturbed) {
    vxCache theCache(kNoLimit, 0);
    const CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = NewAttached(theCache, "b");
    theA->Want();
    theB->mFailures = 1;
    theB->OnReadAccess();
    theB->TakeCalls();
    theCache.Run();
    EXPECT_THAT(theB->TakeCalls(), IsEmpty());  // in front of the only available one
    EXPECT_TRUE(theA->IsAvailable());
}

TEST(CacheTest, BehindTheCutOnlySettledUnlockedObjectsForget) {
    const struct {
        unsigned int mState;
        int mLocks;
        bool mfForgets;
    } theRows[] = {
        {21000, 0, true},  {21001, 0, false}, {21002, 0, false},  {21003, 0, true},
        {21000, 1, false}, {21003, 1, false}, {21003, -1, false},
    };
    for (const auto& theRow : theRows) {
        SCOPED_TRACE(testing::Message() << theRow.mState << " " << theRow.mLocks);
        vxCache theCache(kNoLimit, kNoLimit);
        const CachedRef theFirst = NewAttached(theCache, "first");
        const CachedRef theOther = NewAttached(theCache, "other");
        theOther->SetState(theRow.mState);
        theOther->Lock(theRow.mLocks);
        theFirst->Want();
        theCache.SetLimits(kNoLimit, 0);
        EXPECT_EQ(Contains(theOther->TakeCalls(), "Forget"), theRow.mfForgets);
        EXPECT_EQ(theOther->GetState(), theRow.mfForgets ? 21000u : theRow.mState);
        EXPECT_TRUE(theFirst->IsAvailable());
    }
}

TEST(CacheTest, ALockedObjectBehindTheCutKeepsItsContent) {
    vxCache theCache(kNoLimit, 0);
    const CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = NewAttached(theCache, "b");
    const CachedRef theC = NewAttached(theCache, "c");
    theA->Lock(1);
    EXPECT_EQ(theA->GetLockCount(), 1);
    theA->Want();
    theB->Want();
    theC->Want();
    EXPECT_THAT(Availables(theCache), ElementsAre("a", "c"));
    theA->Lock(-1);
    theCache.Run();
    EXPECT_THAT(Availables(theCache), ElementsAre("c"));
}

TEST(CacheTest, OnlyASmallerLimitRunsAPass) {
    const struct {
        size_t mSize;
        size_t mCount;
        bool mfRuns;
    } theRows[] = {
        {100, 10, false}, {101, 10, false}, {100, 11, false}, {200, 20, false},
        {99, 10, true},   {100, 9, true},   {200, 9, true},   {99, 20, true},
    };
    for (const auto& theRow : theRows) {
        SCOPED_TRACE(testing::Message() << theRow.mSize << " " << theRow.mCount);
        Reports theReports;
        vxCache theCache(100, 10);
        theCache.SetLimits(theRow.mSize, theRow.mCount);
        EXPECT_EQ(!theReports.LogTexts().empty(), theRow.mfRuns);
        theReports.Clear();
        theCache.SetLimits(theRow.mSize, theRow.mCount);  // they were stored
        EXPECT_THAT(theReports.LogTexts(), IsEmpty());
        theCache.SetLimits(theRow.mSize, theRow.mCount - 1);
        EXPECT_FALSE(theReports.LogTexts().empty());
    }
}

TEST(CacheTest, NewLimitsAreInForceAtOnce) {
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a", 10);
    const CachedRef theB = NewAttached(theCache, "b", 10);
    theA->Want();
    theB->Want();
    theCache.SetLimits(kNoLimit, 0);
    EXPECT_THAT(Availables(theCache), ElementsAre("b"));
}

TEST(CacheTest, PassesAreLogged) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a", 10);
    const CachedRef theB = NewAttached(theCache, "b", 20);
    const CachedRef theC = NewAttached(theCache, "c", 30);
    theA->Want();
    theB->Want();
    theReports.Clear();
    theCache.Run();
    std::vector<std::string> theTexts = theReports.LogTexts();
    ASSERT_EQ(theTexts.size(), 9u);
    EXPECT_THAT(theTexts.back(), testing::MatchesRegex("Run: [0-9]+ ms\n"));
    theTexts.pop_back();
    EXPECT_THAT(theTexts, ElementsAre("Cache status: 2 elements, total size: 30\n",
                                      "vxCache: Available:\n", "000: a\n", "001: b\n",
                                      "vxCache: Elements:\n", "000: b\n", "001: a\n", "002: c\n"));
    for (const vxtest::LogRecord& theRecord : theReports.Records()) {
        EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_DEBUG);
    }
}

TEST(CacheTest, TheStatusCountsUpToTheCut) {
    Reports theReports;
    vxCache theCache(15, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a", 10);
    const CachedRef theB = NewAttached(theCache, "b", 10);
    const CachedRef theC = NewAttached(theCache, "c", 10);
    theA->Lock(1);
    theA->Want();
    theB->Want();
    theC->Want();
    theReports.Clear();
    theCache.Run();
    EXPECT_EQ(theReports.LogTexts().front(), "Cache status: 2 elements, total size: 20\n");
}

TEST(CacheTest, NothingIsNamedWhereNothingIsLogged) {
    class Silent : public vxCachedBase {
    public:
        vxCString GetID() override {
            ADD_FAILURE() << "named";
            return "";
        }
    };
    vxCache theCache(kNoLimit, kNoLimit);
    const vxRef<vxCachedBase> theObject = new Silent;
    theCache.Attach(theObject.Get());
    theObject->SetState(kvxCachedState_Available);
    theObject->OnReadAccess();
    theCache.Dump();
    theCache.Detach(theObject.Get());
}

TEST(CacheTest, APassInsideAPassReturnsAtOnce) {
    vxCache theCache(kNoLimit, 0);
    const CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = NewAttached(theCache, "b");
    const CachedRef theC = NewAttached(theCache, "c");
    theB->Lock(1);
    theA->Want();
    theA->mOnForget = [&theC] { theC->Want(); };
    Reports theReports;
    theB->Want();
    int theStatuses = 0;
    for (const std::string& theText : theReports.LogTexts()) {
        theStatuses += theText.compare(0, 12, "Cache status") == 0 ? 1 : 0;
    }
    EXPECT_EQ(theStatuses, 1);
    EXPECT_TRUE(theA->IsUnavailable());
    EXPECT_TRUE(theC->IsAvailable());  // moved in front of the cut, and left for the next pass
    EXPECT_THAT(Elements(theCache), ElementsAre("c", "b", "a"));
    theB->Lock(-1);
    theCache.Run();
    EXPECT_THAT(Availables(theCache), ElementsAre("c"));
}

TEST(CacheTest, ObjectsMayDieOfForgetting) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    std::vector<CachedRef> theObjects;
    for (const char* theName : {"0", "1", "2", "3"}) {
        theObjects.push_back(NewAttached(theCache, theName));
        theObjects.back()->Want();
    }
    theObjects.clear();  // the cache alone holds them
    theCache.SetLimits(kNoLimit, 0);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_THAT(Elements(theCache), ElementsAre("3"));
    EXPECT_THAT(Availables(theCache), ElementsAre("3"));
}

TEST(CacheTest, ObjectsMayLeaveTheirCacheWhileTheyForget) {
    int theDestroyed = 0;
    vxCache theCache(kNoLimit, kNoLimit);
    vxRef<Fleeting> theObject = new Fleeting("a", &theDestroyed);
    Fleeting* const thePointer = theObject.Get();
    thePointer->mLetGo = [] {};
    theCache.Attach(thePointer);
    thePointer->Want();
    thePointer->mLetGo = [&] { theCache.Detach(thePointer); };
    theObject = 0;  // the cache alone holds it
    const CachedRef theOther = NewAttached(theCache, "b");
    theOther->OnReadAccess();
    theCache.SetLimits(kNoLimit, 0);
    EXPECT_EQ(theDestroyed, 1);
    EXPECT_THAT(Elements(theCache), ElementsAre("b"));
}

TEST(CacheTest, ObjectsMayLoseTheirLastHandleInEachOfTheirCalls) {
    const std::function<void(Fleeting*)> theCalls[] = {
        [](Fleeting* anObject) { anObject->Want(); },
        [](Fleeting* anObject) { anObject->Prefetch(); },
        [](Fleeting* anObject) { anObject->FetchDone(false); },
        [](Fleeting* anObject) {
            anObject->mFailures = 3;
            anObject->Prefetch();
        },
        [](Fleeting* anObject) {
            anObject->SetState(kvxCachedState_Fetching);
            anObject->Forget();
        },
        [](Fleeting* anObject) {
            anObject->SetState(kvxCachedState_Available);
            anObject->SetNotWanted();
        },
    };
    int theDestroyed = 0;
    for (const auto& theCall : theCalls) {
        vxRef<Fleeting> theObject = new Fleeting("a", &theDestroyed);
        theObject->mLetGo = [&] { theObject = 0; };
        theCall(theObject.Get());
    }
    EXPECT_EQ(theDestroyed, 6);
}

TEST(CacheTest, DestroyedObjectsLeaveByThemselves) {
    vxCache theCache(kNoLimit, kNoLimit);
    CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = NewAttached(theCache, "b");
    theA = 0;
    EXPECT_THAT(Elements(theCache), ElementsAre("b"));
}

TEST(CacheTest, DeletingAnObjectThatTheCacheHoldsIsReported) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    {
        Cached theObject("a");  // no handle has it until it becomes available
        theCache.Attach(&theObject);
        theObject.SetState(kvxCachedState_Available);
    }
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mRefCount == 0"));
    EXPECT_THAT(Elements(theCache), IsEmpty());
    EXPECT_THAT(Availables(theCache), IsEmpty());
}

TEST(CacheTest, ADestroyedCacheLetsGoOfItsObjects) {
    std::unique_ptr<vxCache> theCache(new vxCache(kNoLimit, kNoLimit));
    const CachedRef theA = NewAttached(*theCache, "a");
    const CachedRef theB = NewAttached(*theCache, "b");
    theA->Want();
    bool theIsGone = false;
    {
        const CachedRef theC = NewAttached(*theCache, "c");
        theC->Want();
        theC->mOnDestruction = [&theIsGone] { theIsGone = true; };
    }
    EXPECT_FALSE(theIsGone);
    theCache.reset();
    EXPECT_TRUE(theIsGone);
    EXPECT_EQ(theA->_GetRefCount(), 1);
    EXPECT_EQ(theA->Container(), nullptr);
    EXPECT_EQ(theB->Container(), nullptr);
    EXPECT_TRUE(theA->IsAvailable());
    theA->OnReadAccess();
    theA->Forget();
    theB->OnReadAccess();
    EXPECT_TRUE(theB->IsAvailable());
}

TEST(CacheTest, OtherMessagesAreIgnored) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a");
    theReports.Clear();
    for (const int theMessage : {0, 20999, 21001, 21002, 21004, -1}) {
        theCache.ListenToMessage(theMessage, static_cast<vxCachedBase*>(theA.Get()));
        theCache.ListenToMessage(theMessage, NULL);
    }
    theCache.ListenToMessage(kvxCachedState_Unavailable, NULL);
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(CacheTest, AnAvailableObjectThatIsNoElementIsReported) {
    Reports theReports;
    vxCache theCache(kNoLimit, kNoLimit);
    vxCache theOther(kNoLimit, kNoLimit);
    const CachedRef theA = new Cached("a");
    const CachedRef theB = NewAttached(theOther, "b");
    theB->Want();
    for (vxCachedBase* theObject :
         {static_cast<vxCachedBase*>(theA.Get()), static_cast<vxCachedBase*>(theB.Get())}) {
        theCache.ListenToMessage(kvxCachedState_Available, theObject);
        theCache.ListenToMessage(kvxCachedState_Unavailable, theObject);
    }
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("mElems.size() == theCount", "mElems.size() == theCount"));
    EXPECT_THAT(Elements(theCache), IsEmpty());
    EXPECT_THAT(Availables(theOther), ElementsAre("b"));
}

TEST(CacheTest, AnObjectThatIsMadeAvailableTwiceIsHeldOnce) {
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a");
    const CachedRef theB = NewAttached(theCache, "b");
    theA->SetState(kvxCachedState_Available);
    theB->SetState(kvxCachedState_Available);
    theA->SetState(kvxCachedState_Available);
    EXPECT_THAT(Availables(theCache), ElementsAre("a", "b"));
    EXPECT_THAT(Elements(theCache), ElementsAre("a", "b"));
    EXPECT_EQ(theA->_GetRefCount(), 2);
}

TEST(CacheTest, AStoppedCacheHearsNothing) {
    vxCache theCache(kNoLimit, kNoLimit);
    const CachedRef theA = NewAttached(theCache, "a");
    theCache.StopListening();
    theA->Want();
    EXPECT_THAT(Availables(theCache), IsEmpty());
    theCache.StartListening();
    theA->SetState(kvxCachedState_Available);
    EXPECT_THAT(Availables(theCache), ElementsAre("a"));
}

// The cache beside a plain list of names: reads, wishes, locks and limits in any order.
TEST(CacheTest, AnySequenceMatchesAPlainModel) {
    struct Model {
        CachedRef mObject;
        bool mfAvailable = false;
        int mLocks = 0;
        size_t mSize = 0;
    };
    std::mt19937 theRandom(74);
    const auto theBelow = [&theRandom](size_t aLimit) { return theRandom() % aLimit; };
    vxCache theCache(50, 5);
    size_t theSizeLimit = 50;
    size_t theCountLimit = 5;
    std::vector<Model> theModels(20);
    std::list<size_t> theOrder;  // the most recently used first
    const auto theRun = [&] {
        size_t theCount = 0;
        size_t theSize = 0;
        for (const size_t theIndex : theOrder) {
            Model& theModel = theModels[theIndex];
            if (theCount > theCountLimit || theSize > theSizeLimit) {
                theModel.mfAvailable = theModel.mfAvailable && theModel.mLocks != 0;
            } else if (theModel.mfAvailable) {
                ++theCount;
                theSize += theModel.mSize;
            }
        }
    };
    for (size_t i = 0; i < theModels.size(); ++i) {
        theModels[i].mSize = theBelow(20);
        theModels[i].mObject = NewAttached(theCache, std::to_string(i), theModels[i].mSize);
        theOrder.push_back(i);
    }
    for (int theStep = 0; theStep < 5000; ++theStep) {
        const size_t theIndex = theBelow(theModels.size());
        Model& theModel = theModels[theIndex];
        switch (theBelow(6)) {
            case 0:
            case 1:
            case 2:
                theModel.mObject->OnReadAccess();
                theOrder.remove(theIndex);
                theOrder.push_front(theIndex);
                if (!theModel.mfAvailable) {
                    theModel.mfAvailable = true;
                    theRun();
                }
                break;
            case 3:
                theModel.mObject->Forget();
                theModel.mfAvailable = false;
                break;
            case 4:
                theModel.mLocks = theModel.mLocks == 0 ? 1 : 0;
                theModel.mObject->Lock(theModel.mLocks == 0 ? -1 : 1);
                break;
            default: {
                const size_t theSize = theBelow(100);
                const size_t theCount = theBelow(10);
                const bool theIsSmaller = theSize < theSizeLimit || theCount < theCountLimit;
                theSizeLimit = theSize;
                theCountLimit = theCount;
                theCache.SetLimits(theSize, theCount);
                if (theIsSmaller) {
                    theRun();
                }
            }
        }
        for (const Model& theEach : theModels) {
            ASSERT_EQ(theEach.mObject->IsAvailable(), theEach.mfAvailable) << "step " << theStep;
        }
    }
    std::vector<std::string> theNames;
    for (const size_t theIndex : theOrder) {
        theNames.push_back(std::to_string(theIndex));
    }
    EXPECT_EQ(Elements(theCache), theNames);
}

}  // namespace
