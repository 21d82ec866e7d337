#include "vx/Ref.h"

#include <libvxLog/Handlers.h>
#include <libvxOS/Debug.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <type_traits>
#include <vector>

#include "support/Reports.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

namespace {

int sBackTraces = 0;

}  // namespace

// Stands in front of the platform's, which would write to standard error.
extern "C" VX_API void vxDebug_BackTraceCurrent(void) {
    sBackTraces++;
}

namespace {

// Counts how often objects of it are destroyed.
class Probe : public vxRefCounted {
public:
    explicit Probe(int* aDestroyed = nullptr) : mDestroyed(aDestroyed) {}
    ~Probe() override {
        if (mDestroyed != nullptr) {
            ++*mDestroyed;
        }
    }
    int mValue = 7;

private:
    int* mDestroyed;
};

struct OtherBase {
    virtual ~OtherBase() = default;
    int mPadding[3] = {1, 2, 3};
};

class SecondBase : public OtherBase, public vxRefCounted {
public:
    int mValue = 42;
};

class Recycled : public vxRefCounted {
public:
    void NotifyRefCountIsNull() override { mReturned++; }
    int mReturned = 0;
};

// Retains and releases that a watched object saw, with the texts they must leave.
class Watching {
public:
    explicit Watching(vxRefCounted* aObject) { vxRefCounted::SetDebugReference(aObject); }
    ~Watching() { vxRefCounted::SetDebugReference(nullptr); }
};

}  // namespace

TEST(RefTest, AHeldObjectGetsOneReferenceMoreAndAnUnheldOneNone) {
    int theDestroyed = 0;
    Probe theUnheld;
    EXPECT_FALSE(theUnheld.RetainIfHeld(nullptr));
    EXPECT_EQ(theUnheld._GetRefCount(), 0);

    vxRef<Probe> theRef = new Probe(&theDestroyed);
    EXPECT_TRUE(theRef->RetainIfHeld(nullptr));
    EXPECT_EQ(theRef->_GetRefCount(), 2);
    theRef->Release(nullptr);
    theRef = 0;
    EXPECT_EQ(theDestroyed, 1);
}

TEST(RefTest, AnObjectWhoseLastReferenceIsGoneCannotBeHeldAgain) {
    Recycled theObject;
    theObject.Retain(nullptr);
    theObject.Release(nullptr);
    EXPECT_FALSE(theObject.RetainIfHeld(nullptr));
    EXPECT_EQ(theObject.mReturned, 1);
}

TEST(RefTest, AFreshObjectHasNoReferences) {
    Probe theProbe;
    EXPECT_EQ(theProbe._GetRefCount(), 0);
}

TEST(RefTest, AnObjectOutsideAnyHandleEndsWithoutAReport) {
    vxtest::Reports theReports;
    { Probe theProbe; }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(RefTest, ACopiedObjectStartsAtZeroAndAssigningLeavesTheCount) {
    vxRef<Probe> theFirst = new Probe;
    Probe theCopy(*theFirst.Get());
    EXPECT_EQ(theCopy._GetRefCount(), 0);

    vxRef<Probe> theSecond = new Probe;
    vxRef<Probe> theThird = theSecond;
    *theFirst.Get() = *theSecond.Get();
    EXPECT_EQ(theFirst->_GetRefCount(), 1);
    EXPECT_EQ(theSecond->_GetRefCount(), 2);
}

TEST(RefTest, HandlesCountAndTheLastOneDestroysTheObjectOnce) {
    int theDestroyed = 0;
    {
        vxRef<Probe> theFirst = new Probe(&theDestroyed);
        EXPECT_EQ(theFirst->_GetRefCount(), 1);
        {
            vxRef<Probe> theSecond(theFirst);
            EXPECT_EQ(theFirst->_GetRefCount(), 2);
        }
        EXPECT_EQ(theFirst->_GetRefCount(), 1);
        EXPECT_EQ(theDestroyed, 0);
    }
    EXPECT_EQ(theDestroyed, 1);
}

TEST(RefTest, NullHandlesAreNullAndReleaseNothing) {
    vxtest::Reports theReports;
    {
        vxRef<Probe> theDefault;
        vxRef<Probe> theZero(0);
        vxRef<Probe> theNull(static_cast<Probe*>(nullptr));
        vxRefAny theAny;
        vxRefAny theAnyZero(0);
        EXPECT_TRUE(theDefault.IsNull());
        EXPECT_TRUE(theZero.IsNull());
        EXPECT_TRUE(theNull.IsNull());
        EXPECT_TRUE(theAny.IsNull());
        EXPECT_TRUE(theAnyZero.IsNull());
        EXPECT_TRUE(theDefault == theZero);
        EXPECT_FALSE(theDefault != theNull);
    }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(RefTest, AnyOtherIntegerIsReportedFromTheRefHeaderAndYieldsNull) {
    for (const int theValue : {5, -1, 1}) {
        SCOPED_TRACE(theValue);
        vxtest::Reports theReports;
        vxRef<Probe> theRef(theValue);
        EXPECT_TRUE(theRef.IsNull());
        ASSERT_THAT(theReports.Assertions(),
                    ElementsAre("vxRefAny: Only 0 (zero) can be used to build a vxRef"));
        EXPECT_THAT(theReports.AssertionReports()[0].mFile, EndsWith("Ref.h"));
    }
}

TEST(RefTest, AFunctionMayReturnTheLiteralZero) {
    const auto theFunction = []() -> vxRef<Probe> { return 0; };
    EXPECT_TRUE(theFunction().IsNull());
}

TEST(RefTest, AssigningAHandleToItselfKeepsTheCount) {
    vxRef<Probe> theRef = new Probe;
    vxRef<Probe>& theSame = theRef;
    theRef = theSame;
    EXPECT_EQ(theRef->_GetRefCount(), 1);
}

TEST(RefTest, AssigningAHandleOfTheSameObjectKeepsTheCount) {
    int theDestroyed = 0;
    vxRef<Probe> theFirst = new Probe(&theDestroyed);
    vxRef<Probe> theSecond = theFirst;
    theFirst = theSecond;
    EXPECT_EQ(theFirst->_GetRefCount(), 2);
    EXPECT_EQ(theDestroyed, 0);
}

TEST(RefTest, AssigningDestroysTheOldObjectBeforeTheNewOneIsRetained) {
    // The dying object looks at the count of the one that takes its place.
    class Witness : public vxRefCounted {
    public:
        Witness(Probe* aOther, int* aSeen) : mOther(aOther), mSeen(aSeen) {}
        ~Witness() override { *mSeen = mOther->_GetRefCount(); }

    private:
        Probe* mOther;
        int* mSeen;
    };
    vxRef<Probe> theNew = new Probe;
    int theSeen = -1;
    vxRefAny theHandle = new Witness(theNew.Get(), &theSeen);

    theHandle = theNew;

    EXPECT_EQ(theSeen, 1);
    EXPECT_EQ(theNew->_GetRefCount(), 2);
}

TEST(RefTest, AssigningZeroLetsGo) {
    int theDestroyed = 0;
    vxRef<Probe> theRef = new Probe(&theDestroyed);
    theRef = 0;
    EXPECT_EQ(theDestroyed, 1);
    EXPECT_TRUE(theRef.IsNull());
}

TEST(RefTest, HandlesCompareByIdentity) {
    vxRef<Probe> theFirst = new Probe;
    vxRef<Probe> theSame = theFirst;
    vxRef<Probe> theEqual = new Probe;
    EXPECT_TRUE(theFirst == theSame);
    EXPECT_FALSE(theFirst != theSame);
    EXPECT_FALSE(theFirst == theEqual);
    EXPECT_TRUE(theFirst != theEqual);
}

TEST(RefTest, AccessThroughANullHandleIsReportedAndGetIsNot) {
    vxtest::Reports theReports;
    vxRef<Probe> theRef;
    EXPECT_EQ(theRef.Get(), nullptr);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_EQ(theRef.operator->(), nullptr);
    ASSERT_THAT(theReports.Assertions(), ElementsAre("vxRefAny: NULL pointer access"));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, EndsWith("Ref.h"));

    vxRefAny theAny;
    EXPECT_EQ(theAny.operator->(), nullptr);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("vxRefAny: NULL pointer access", "vxRefAny: NULL pointer access"));
}

TEST(RefTest, DestroyingAnObjectThatAHandleHoldsIsReported) {
    vxtest::Reports theReports;
    vxRefAny theRef;
    {
        Probe theProbe;
        theProbe.Retain(&theRef);
    }
    ASSERT_THAT(theReports.Assertions(), ElementsAre("mRefCount == 0"));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, EndsWith("Ref.cpp"));
}

TEST(RefTest, RawSetAndGetLeaveTheCountAlone) {
    int theDestroyed = 0;
    Probe* theProbe = new Probe(&theDestroyed);
    vxRef<Probe> theRef(theProbe);
    theRef._SetPointedObject(nullptr);
    EXPECT_EQ(theProbe->_GetRefCount(), 1);
    EXPECT_TRUE(theRef.IsNull());
    theRef._SetPointedObject(theProbe);
    EXPECT_EQ(theRef._GetPointedObject(), theProbe);
    EXPECT_EQ(theProbe->_GetRefCount(), 1);
    EXPECT_EQ(theDestroyed, 0);
}

TEST(RefTest, AnObjectWhoseCountedBaseIsNotTheFirstComesBackWhole) {
    vxRef<SecondBase> theRef = new SecondBase;
    EXPECT_EQ(theRef->mValue, 42);
    EXPECT_EQ(theRef.Get()->mPadding[2], 3);
    vxRefAny theAny = theRef;
    EXPECT_EQ(theAny.Get(), static_cast<vxRefCounted*>(theRef.Get()));
    EXPECT_EQ(theRef->_GetRefCount(), 2);
}

TEST(RefTest, ADerivedClassMayPutItsEndOff) {
    Recycled theObject;
    { vxRef<Recycled> theRef(&theObject); }
    { vxRef<Recycled> theRef(&theObject); }
    EXPECT_EQ(theObject.mReturned, 2);
    EXPECT_EQ(theObject._GetRefCount(), 0);
}

TEST(RefTest, AHandleIsOnePointer) {
    EXPECT_EQ(sizeof(vxRefAny), sizeof(void*));
    EXPECT_EQ(sizeof(vxRef<Probe>), sizeof(void*));
    EXPECT_FALSE(std::is_polymorphic<vxRef<Probe>>::value);
    EXPECT_TRUE(std::is_polymorphic<vxRefCounted>::value);
    EXPECT_EQ(sizeof(vxAtomic_int), 4u);
}

TEST(RefTest, AWatchedObjectLogsRetainsWithACallStackAndReleasesWithout) {
    Probe* theProbe = new Probe;
    vxRef<Probe> theKeeper(theProbe);
    vxtest::Reports theReports;
    sBackTraces = 0;
    {
        Watching theWatching(theProbe);
        vxRef<Probe> theRef(theProbe);
        ASSERT_THAT(theReports.LogTexts(), ElementsAre("===>>>\nRefCount: 1\n\n"));
        EXPECT_EQ(sBackTraces, 1);
        theRef = 0;
    }
    ASSERT_THAT(theReports.LogTexts(),
                ElementsAre("===>>>\nRefCount: 1\n\n", "===<<<\nRefCount: 0\n\n"));
    EXPECT_EQ(sBackTraces, 1);
    for (const vxtest::LogRecord& theRecord : theReports.Records()) {
        EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_ERROR);
        EXPECT_EQ(theRecord.mModule, 0);
        EXPECT_THAT(theRecord.mFile, EndsWith("Ref.cpp"));
    }
}

TEST(RefTest, AWatchedObjectIsLoggedBeforeItsCountChanges) {
    struct Counts {
        static void Take(void* aContext, int, vxLogModule, const char*, int, const char*) {
            auto* theCounts = static_cast<Counts*>(aContext);
            theCounts->mSeen.push_back(theCounts->mObject._GetRefCount());
        }
        Recycled mObject;
        std::vector<int> mSeen;
    };
    Counts theCounts;
    vxLog_SetHandler(&Counts::Take, &theCounts);
    {
        const Watching theWatching(&theCounts.mObject);
        theCounts.mObject.Retain(nullptr);
        theCounts.mObject.Retain(nullptr);
        theCounts.mObject.Release(nullptr);
        theCounts.mObject.Release(nullptr);
    }
    vxLog_SetHandler(nullptr, nullptr);
    EXPECT_THAT(theCounts.mSeen, ElementsAre(0, 1, 2, 1));
}

TEST(RefTest, OtherObjectsAreNotWatched) {
    vxRef<Probe> theWatched = new Probe;
    vxRef<Probe> theOther = new Probe;
    vxtest::Reports theReports;
    Watching theWatching(theWatched.Get());
    { vxRef<Probe> theCopy = theOther; }
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST(RefTest, TheRunningCountIsAnUnsigned32BitNumber) {
    vxRef<Probe> theFirst = new Probe;
    vxRef<Probe> theSecond = theFirst;
    vxtest::Reports theReports;
    Watching theWatching(theFirst.Get());

    theSecond = 0;
    theSecond = theFirst;

    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("===<<<\nRefCount: 4294967295\n\n", "===>>>\nRefCount: 0\n\n"));
}

TEST(RefTest, ASilentLogStillCountsAndPrintsTheCallStack) {
    vxRef<Probe> theKeeper = new Probe;
    vxtest::Reports theReports;
    vxLog_SetLevel(VXLOG_M_DEFAULT, VXLOGLEVEL_NONE);
    sBackTraces = 0;
    Watching theWatching(theKeeper.Get());
    vxRef<Probe> theRef = theKeeper;
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    EXPECT_EQ(sBackTraces, 1);

    vxLog_SetLevel(VXLOG_M_DEFAULT, VXLOGLEVEL_ERROR);
    theRef = 0;
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("===<<<\nRefCount: 0\n\n"));
}

TEST(RefTest, RemainingCallStacksAreNotKept) {
    vxtest::Reports theReports;
    vxRefCounted::DumpRemainingReferenceCallStack();
    ASSERT_THAT(theReports.LogTexts(),
                ElementsAre("VXREF_DEBUG_BACKTRACE is not enabled, callstack can't be dump\n"));
    EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_ERROR);
}

TEST(RefTest, ADebugRecordKeepsItsOwnCopyOfTheCallStack) {
    char theStack[] = "main";
    int theHandle = 0;
    vxRefCountDebug theRecord(&theHandle, theStack);
    theStack[0] = 'X';
    EXPECT_EQ(theRecord.mParentPtr, &theHandle);
    EXPECT_STREQ(theRecord.mCallStack, "main");
    EXPECT_EQ(theRecord.mNext, nullptr);
    EXPECT_EQ(VXREF_DEBUG_BACKTRACE_MAX_SIZE, 4096);
}

TEST(RefTest, ANamedClassIsItsWholeNameInThatCase) {
    const char* theName = "vxMovie";
    vxNamedClass theObject(theName);
    EXPECT_EQ(theObject.GetClassName(), theName);
    EXPECT_TRUE(theObject.IsClassName("vxMovie"));
    EXPECT_FALSE(theObject.IsClassName("vxmovie"));
    EXPECT_FALSE(theObject.IsClassName("vxMovi"));
    EXPECT_FALSE(theObject.IsClassName("vxMovies"));
    EXPECT_FALSE(theObject.IsClassName(""));
    EXPECT_FALSE(theObject.IsClassName(nullptr));
}

TEST(RefTest, ProgramsHangTheirDataOnUserData) {
    class Data : public vxUserData {
    public:
        int mNumber = 3;
    };
    vxRef<vxUserData> theData = new Data;
    EXPECT_EQ(static_cast<Data*>(theData.Get())->mNumber, 3);
}

TEST(RefTest, HandlesOfSeveralThreadsDestroyTheObjectOnce) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 20000;
    std::atomic<int> theDestroyed(0);
    class Shared : public vxRefCounted {
    public:
        explicit Shared(std::atomic<int>* aDestroyed) : mDestroyed(aDestroyed) {}
        ~Shared() override { mDestroyed->fetch_add(1); }

    private:
        std::atomic<int>* mDestroyed;
    };
    vxRef<Shared> theRef = new Shared(&theDestroyed);
    std::mutex theMutex;
    std::condition_variable theStart;
    bool theGo = false;
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; i++) {
        theThreads.emplace_back([&, theOwn = theRef]() mutable {
            {
                std::unique_lock<std::mutex> theLock(theMutex);
                theStart.wait(theLock, [&] { return theGo; });
            }
            for (int j = 0; j < kRounds; j++) {
                vxRef<Shared> theCopy = theOwn;
            }
            theOwn = 0;
        });
    }
    theRef = 0;
    {
        std::lock_guard<std::mutex> theLock(theMutex);
        EXPECT_EQ(theDestroyed.load(), 0);
        theGo = true;
    }
    theStart.notify_all();
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theDestroyed.load(), 1);
}
