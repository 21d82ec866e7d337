#include "vx/QueryManager.h"

#include <gmock/gmock.h>
#include <libvxOS/Mutex.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/Latch.h"
#include "support/Reports.h"
#include "support/ScriptedClock.h"
#include "support/ScriptedLocks.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::has_virtual_destructor_v<vxQuery>);
static_assert(std::has_virtual_destructor_v<vxQueryManager>);
static_assert(!std::is_copy_constructible_v<vxQuery>);
static_assert(!std::is_copy_constructible_v<vxQueryManager>);

// Queries are declared before their manager, which discards those that are left.

constexpr unsigned int kNoLimit = 0xFFFFFFFF;

/// A query that belongs to the test and counts its ends.
class Query : public vxQuery {
public:
    explicit Query(int aNumber = 0) : mNumber(aNumber) {}
    void Done() override {
        ++mDone;
        if (mOnDone) {
            mOnDone();
        }
    }

    int mNumber;
    int mDone = 0;
    std::function<void()> mOnDone;
};

/// A query that the base class deletes, and that says so.
class Mortal : public vxQuery {
public:
    explicit Mortal(int& aCount) : mCount(aCount) {}
    ~Mortal() override { ++mCount; }

private:
    int& mCount;
};

/// Counts the signals, and what is initialized.
class Manager : public vxQueryManager {
public:
    void SignalQueryToProcess() override {
        ++mSignals;
        vxQueryManager::SignalQueryToProcess();
    }
    /// Takes everything that is due, and tells the numbers.
    std::vector<int> Drain() {
        std::vector<int> theNumbers;
        while (vxQuery* theQuery = GetQuery()) {
            theNumbers.push_back(static_cast<Query*>(theQuery)->mNumber);
        }
        return theNumbers;
    }

    int mSignals = 0;
    std::vector<vxQuery*> mInitialized;

protected:
    void InitQuery(vxQuery* aQuery) override { mInitialized.push_back(aQuery); }
};

bool IsOdd(vxQuery* aQuery, void*) {
    return static_cast<Query*>(aQuery)->mNumber % 2 != 0;
}

bool IsNumber(vxQuery* aQuery, void* aNumber) {
    return static_cast<Query*>(aQuery)->mNumber == *static_cast<int*>(aNumber);
}

std::string Address(const void* aPointer) {
    char theText[32];
    snprintf(theText, sizeof(theText), "%p", aPointer);
    return theText;
}

/// A platform whose waits turn the clock instead of sleeping: a wait that nobody signals lasts until
/// its time is over.
struct Waits {
    Waits() {
        mLocks.mWaitResult = 0;
        mLocks.mInWait = [this] {
            const std::string& theWait = mLocks.mWaits.back();
            if (mOnWait) {
                mOnWait(mLocks.mWaits.size());
            } else if (theWait == "Wait") {
                ADD_FAILURE() << "waits for ever";
                mManager->Stop();
            } else {
                mClock.Advance(static_cast<uint32_t>(std::stoul(theWait.substr(12))));
            }
        };
    }

    vxtest::ScriptedClock mClock;
    vxtest::ScriptedLocks mLocks;
    std::function<void(size_t)> mOnWait;  // what happens during the wait of this number, from 1
    vxQueryManager* mManager = nullptr;   // stopped where a test would hang
};

// Queries

TEST(QueryTest, NewQueryIsNotExecutedAndHasNoManager) {
    vxQuery theQuery;
    EXPECT_FALSE(theQuery.HasBeenExecuted());
    EXPECT_EQ(theQuery.mQueryManager, nullptr);
    EXPECT_FALSE(theQuery.mfAutoDelete);
}

TEST(QueryTest, DoneDeletesAQueryWithoutManager) {
    int theDeaths = 0;
    vxQuery* theQuery = new Mortal(theDeaths);
    theQuery->Done();
    EXPECT_EQ(theDeaths, 1);
}

TEST(QueryTest, DoneLeavesAQueryWithAManagerAlone) {
    int theDeaths = 0;
    vxQueryManager theManager;
    {
        Mortal theQuery(theDeaths);
        theQuery.mQueryManager = &theManager;
        theQuery.mfAutoDelete = true;
        theQuery.Done();
        EXPECT_EQ(theDeaths, 0);
    }
    EXPECT_EQ(theDeaths, 1);
}

// The list

TEST(QueryManagerTest, NewManagerHasNoQuery) {
    vxQueryManager theManager;
    EXPECT_FALSE(theManager.HasPendingQuery());
    EXPECT_EQ(theManager.GetQuery(), nullptr);
}

TEST(QueryManagerTest, QueriesComeOutInTheOrderOfAddition) {
    Query theQueries[] = {Query(1), Query(2), Query(3)};
    Manager theManager;
    for (Query& theQuery : theQueries) {
        theManager.AddQuery(&theQuery);
    }
    EXPECT_TRUE(theManager.HasPendingQuery());
    EXPECT_EQ(theManager.GetQuery(), &theQueries[0]);
    EXPECT_EQ(theManager.GetQuery(), &theQueries[1]);
    theManager.AddQuery(&theQueries[0]);
    EXPECT_EQ(theManager.GetQuery(), &theQueries[2]);
    EXPECT_TRUE(theManager.HasPendingQuery());
    EXPECT_EQ(theManager.GetQuery(), &theQueries[0]);
    EXPECT_FALSE(theManager.HasPendingQuery());
    EXPECT_EQ(theManager.GetQuery(), nullptr);
}

TEST(QueryManagerTest, QueryHasBeenExecutedOnceItIsHandedOut) {
    Query theQuery;
    Manager theManager;
    theManager.AddQuery(&theQuery);
    EXPECT_FALSE(theQuery.HasBeenExecuted());
    theManager.GetQuery();
    EXPECT_TRUE(theQuery.HasBeenExecuted());
    theManager.PushBackQuery(&theQuery);
    EXPECT_TRUE(theQuery.HasBeenExecuted());
}

TEST(QueryManagerTest, AddedQueryIsInitializedAndThenSignaled) {
    class Checking : public Manager {
    public:
        void SignalQueryToProcess() override {
            EXPECT_EQ(mInitialized.size(), 1U);
            Manager::SignalQueryToProcess();
        }
        void InitQuery(vxQuery* aQuery) override {
            Manager::InitQuery(aQuery);
            EXPECT_EQ(mSignals, 0);
            EXPECT_TRUE(HasPendingQuery());
        }
    };
    Query theQuery;
    Checking theManager;
    theManager.AddQuery(&theQuery);
    EXPECT_THAT(theManager.mInitialized, ElementsAre(&theQuery));
    EXPECT_EQ(theManager.mSignals, 1);
}

TEST(QueryManagerTest, ManagerDoesNotTouchWhatOthersSet) {
    Query theQuery;
    vxQueryManager theManager;
    theManager.AddQuery(&theQuery);
    EXPECT_EQ(theQuery.mQueryManager, nullptr);
    EXPECT_FALSE(theQuery.mfAutoDelete);
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
    EXPECT_EQ(theQuery.mDone, 0);
}

TEST(QueryManagerTest, QueryPutBackIsTheNextOneHandedOut) {
    Query theQueries[] = {Query(1), Query(2)};
    Manager theManager;
    theManager.AddQuery(&theQueries[0]);
    theManager.AddQuery(&theQueries[1]);
    theManager.mInitialized.clear();
    theManager.mSignals = 0;

    theManager.PushBackQuery(theManager.GetQuery());

    EXPECT_THAT(theManager.mInitialized, IsEmpty());
    EXPECT_EQ(theManager.mSignals, 0);
    EXPECT_THAT(theManager.Drain(), ElementsAre(1, 2));
}

TEST(QueryManagerTest, QueryPutBackIntoAnEmptyListIsItsTail) {
    Query theQueries[] = {Query(1), Query(2), Query(3)};
    Manager theManager;
    theManager.PushBackQuery(&theQueries[0]);
    EXPECT_TRUE(theManager.HasPendingQuery());
    theManager.AddQuery(&theQueries[1]);
    theManager.PushBackQuery(&theQueries[2]);
    EXPECT_THAT(theManager.Drain(), ElementsAre(3, 1, 2));
}

TEST(QueryManagerTest, PuttingBackIsLogged) {
    vxtest::Reports theReports;
    Query theQuery;
    vxQueryManager theManager;
    theManager.PushBackQuery(&theQuery);
    const std::vector<vxtest::LogRecord> theRecords = theReports.Records();
    ASSERT_EQ(theRecords.size(), 1U);
    EXPECT_EQ(theRecords[0].mLevel, 4);
    EXPECT_EQ(theRecords[0].mModule, 8);
    EXPECT_EQ(theRecords[0].mText,
              "QueryManager: pushing back the query " + Address(&theQuery) + "\n");
}

TEST(QueryManagerTest, MisuseIsReportedAndChangesNothing) {
    vxtest::Reports theReports;
    Query theQueries[] = {Query(1), Query(2)};
    Manager theManager;
    theManager.AddQuery(nullptr);
    theManager.PushBackQuery(nullptr);
    theManager.AddQuery(&theQueries[0]);
    theManager.AddQuery(&theQueries[0]);
    theManager.PushBackQuery(&theQueries[0]);
    theManager.AddQuery(&theQueries[1]);
    theManager.AddQuery(&theQueries[0]);
    theManager.PushBackQuery(&theQueries[1]);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("aQuery != NULL", "aQuery != NULL", "!IsListed(aQuery)",
                            "!IsListed(aQuery)", "!IsListed(aQuery)", "!IsListed(aQuery)"));
    EXPECT_EQ(theManager.mSignals, 2);
    EXPECT_THAT(theManager.Drain(), ElementsAre(1, 2));
    EXPECT_EQ(theQueries[0].mDone, 0);
}

TEST(QueryManagerTest, FirstMatchIsFoundAndStays) {
    Query theQueries[] = {Query(2), Query(3), Query(5)};
    Manager theManager;
    int theNumber = 5;
    theManager.LockQueries();
    EXPECT_EQ(theManager.FindQuery(IsOdd, nullptr), nullptr);
    for (Query& theQuery : theQueries) {
        theManager.AddQuery(&theQuery);
    }
    EXPECT_EQ(theManager.FindQuery(IsOdd, nullptr), &theQueries[1]);
    EXPECT_EQ(theManager.FindQuery(IsNumber, &theNumber), &theQueries[2]);
    theNumber = 7;
    EXPECT_EQ(theManager.FindQuery(IsNumber, &theNumber), nullptr);
    theManager.UnlockQueries();
    EXPECT_THAT(theManager.Drain(), ElementsAre(2, 3, 5));
}

// Clearing

struct ClearCase {
    std::vector<int> mQueries;
    std::vector<int> mCleared;  // the odd ones
    std::vector<int> mLeft;     // with 8, added at the end, and 10, put in front
};

const ClearCase kClearCases[] = {
    {{}, {}, {10, 8}},
    {{1}, {1}, {10, 8}},
    {{2}, {}, {10, 2, 8}},
    {{1, 2}, {1}, {10, 2, 8}},
    {{2, 1}, {1}, {10, 2, 8}},
    {{1, 3, 5}, {1, 3, 5}, {10, 8}},
    {{1, 2, 3, 4, 5}, {1, 3, 5}, {10, 2, 4, 8}},
    {{2, 3, 5, 4}, {3, 5}, {10, 2, 4, 8}},
    {{2, 4, 1, 3}, {1, 3}, {10, 2, 4, 8}},
    {{4, 2, 6}, {}, {10, 4, 2, 6, 8}},
};

TEST(QueryManagerTest, SelectedQueriesAreDiscardedAndTheOthersStayInOrder) {
    for (const ClearCase& theCase : kClearCases) {
        SCOPED_TRACE(testing::PrintToString(theCase.mQueries));
        Manager theManager;
        std::vector<int> theCleared;
        std::vector<std::unique_ptr<Query>> theQueries;
        for (const int theNumber : theCase.mQueries) {
            theQueries.push_back(std::make_unique<Query>(theNumber));
            theQueries.back()->mOnDone = [&theCleared, theNumber] {
                theCleared.push_back(theNumber);
            };
            theManager.AddQuery(theQueries.back().get());
        }

        theManager.ClearSelectedQueries(IsOdd, nullptr);

        EXPECT_EQ(theCleared, theCase.mCleared);
        Query theLast(8);
        Query theFirst(10);
        theManager.AddQuery(&theLast);
        theManager.PushBackQuery(&theFirst);
        EXPECT_EQ(theManager.Drain(), theCase.mLeft);
    }
}

TEST(QueryManagerTest, SelectionGetsItsData) {
    Query theQueries[] = {Query(1), Query(2), Query(3)};
    Manager theManager;
    for (Query& theQuery : theQueries) {
        theManager.AddQuery(&theQuery);
    }
    int theNumber = 2;
    theManager.ClearSelectedQueries(IsNumber, &theNumber);
    EXPECT_EQ(theQueries[1].mDone, 1);
    EXPECT_THAT(theManager.Drain(), ElementsAre(1, 3));
}

TEST(QueryManagerTest, ClearingDiscardsDelayedQueriesToo) {
    Query theQueries[] = {Query(1), Query(2)};
    Manager theManager;
    theQueries[0].SetDelay(1000000);
    theManager.AddQuery(&theQueries[0]);
    theManager.AddQuery(&theQueries[1]);
    theManager.ClearQueries();
    EXPECT_EQ(theQueries[0].mDone, 1);
    EXPECT_EQ(theQueries[1].mDone, 1);
    EXPECT_FALSE(theQueries[0].HasBeenExecuted());
    EXPECT_FALSE(theManager.HasPendingQuery());
    // Both are in no list again.
    theQueries[0].SetDelay(0);
    theManager.AddQuery(&theQueries[0]);
    theManager.AddQuery(&theQueries[1]);
    EXPECT_THAT(theManager.Drain(), ElementsAre(1, 2));
}

TEST(QueryManagerTest, ClearingIsLoggedWithBothEndsOfTheList) {
    vxtest::Reports theReports;
    Query theFirst;
    Query theLast;
    vxQueryManager theManager;
    theManager.AddQuery(&theFirst);
    theManager.AddQuery(&theLast);
    theManager.ClearQueries();
    theManager.ClearSelectedQueries(IsOdd, nullptr);
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("ClearSelectedQueries (" + Address(&theFirst) +
                                                       " - " + Address(&theLast) + ")\n",
                                                   "ClearSelectedQueries (" + Address(nullptr) +
                                                       " - " + Address(nullptr) + ")\n"));
    EXPECT_EQ(theReports.Records()[0].mLevel, 4);
    EXPECT_EQ(theReports.Records()[0].mModule, 8);
}

TEST(QueryManagerTest, DiscardedQueryMayCallTheManager) {
    Query theQueries[] = {Query(1), Query(2), Query(3), Query(4)};
    Manager theManager;
    for (int i = 0; i < 3; ++i) {
        theManager.AddQuery(&theQueries[i]);
    }
    theQueries[0].mOnDone = [&] {
        theManager.ClearQueries();
        theManager.AddQuery(&theQueries[3]);
        theManager.AddQuery(&theQueries[0]);
    };
    theManager.ClearQueries();
    EXPECT_EQ(theQueries[0].mDone, 1);
    EXPECT_EQ(theQueries[1].mDone, 1);
    EXPECT_EQ(theQueries[2].mDone, 1);
    EXPECT_EQ(theQueries[3].mDone, 0);
    EXPECT_THAT(theManager.Drain(), ElementsAre(4, 1));
}

TEST(QueryManagerTest, DestructorDiscardsWhatIsLeft) {
    int theDeaths = 0;
    Query theQuery;
    {
        vxQueryManager theManager;
        theManager.AddQuery(new Mortal(theDeaths));
        theManager.AddQuery(&theQuery);
        theManager.AddQuery(new Mortal(theDeaths));
    }
    EXPECT_EQ(theDeaths, 2);
    EXPECT_EQ(theQuery.mDone, 1);
}

// Stopping

TEST(QueryManagerTest, StopDiscardsEveryQueryAndSignals) {
    Manager theManager;
    int theDeaths = 0;
    Query theQuery;
    theQuery.SetDelay(5);
    theManager.AddQuery(new Mortal(theDeaths));
    theManager.AddQuery(&theQuery);
    theManager.mSignals = 0;
    theManager.Stop();
    EXPECT_EQ(theDeaths, 1);
    EXPECT_EQ(theQuery.mDone, 1);
    EXPECT_EQ(theManager.mSignals, 1);
    EXPECT_FALSE(theManager.HasPendingQuery());
    EXPECT_EQ(theManager.GetQuery(), nullptr);
}

TEST(QueryManagerTest, StoppedManagerEndsAnAddedQueryAtOnce) {
    Manager theManager;
    theManager.Stop();
    theManager.mSignals = 0;
    vxtest::Reports theReports;
    int theDeaths = 0;
    vxQuery* theMortal = new Mortal(theDeaths);
    const std::string theAddress = Address(theMortal);

    theManager.AddQuery(theMortal);

    EXPECT_EQ(theDeaths, 1);
    EXPECT_EQ(theManager.mSignals, 0);
    EXPECT_THAT(theManager.mInitialized, IsEmpty());
    EXPECT_EQ(theManager.GetQuery(), nullptr);
    const std::vector<vxtest::LogRecord> theRecords = theReports.Records();
    ASSERT_EQ(theRecords.size(), 1U);
    EXPECT_EQ(theRecords[0].mLevel, 2);
    EXPECT_EQ(theRecords[0].mModule, 8);
    EXPECT_EQ(theRecords[0].mText, "QueryManager: cannot add query " + theAddress +
                                       " because query manager is stopped\n");
}

TEST(QueryManagerTest, StoppedManagerComplainsBeforeItEndsAnAddedQuery) {
    vxtest::Reports theReports;
    vxQueryManager theManager;
    theManager.Stop();
    theReports.Clear();
    Query theQuery;
    size_t theRecords = 0;
    theQuery.mOnDone = [&] { theRecords = theReports.Records().size(); };
    theManager.AddQuery(&theQuery);
    EXPECT_EQ(theRecords, 1U);
}

TEST(QueryManagerTest, StopSignalsOnceTheListIsEmptyAndStaysSo) {
    class Checking : public Manager {
    public:
        void SignalQueryToProcess() override {
            if (++mSignals == 2) {
                EXPECT_EQ(mQuery.mDone, 1);
                AddQuery(&mQuery);
                EXPECT_EQ(mQuery.mDone, 2);
            }
        }
        Query mQuery;
    };
    Checking theManager;
    theManager.AddQuery(&theManager.mQuery);
    theManager.Stop();
    EXPECT_EQ(theManager.mSignals, 2);
    EXPECT_EQ(theManager.mQuery.mDone, 2);
}

TEST(QueryManagerTest, StoppedManagerTakesNoQueryBackAndLeavesItAlone) {
    Manager theManager;
    theManager.Stop();
    vxtest::Reports theReports;
    Query theQuery;

    theManager.PushBackQuery(&theQuery);

    EXPECT_EQ(theQuery.mDone, 0);
    EXPECT_FALSE(theManager.HasPendingQuery());
    const std::vector<vxtest::LogRecord> theRecords = theReports.Records();
    ASSERT_EQ(theRecords.size(), 1U);
    EXPECT_EQ(theRecords[0].mLevel, 2);
    EXPECT_EQ(theRecords[0].mModule, 8);
    EXPECT_EQ(theRecords[0].mText, "QueryManager: cannot push back query " + Address(&theQuery) +
                                       " because query manager is stopped\n");
}

TEST(QueryManagerTest, QueryAddedWhileStoppingIsDiscardedToo) {
    Query theFirst;
    Query theSecond;
    Manager theManager;
    theManager.AddQuery(&theFirst);
    theFirst.mOnDone = [&] { theManager.AddQuery(&theSecond); };
    theManager.Stop();
    EXPECT_EQ(theSecond.mDone, 1);
    EXPECT_FALSE(theManager.HasPendingQuery());
}

TEST(QueryManagerTest, ListIsLookedAtUnderTheLockAndWaitsAreOutside) {
    vxtest::ScriptedLocks theLocks;
    theLocks.mWaitResult = 0;
    std::vector<std::string> theBeforeWait;
    theLocks.mInWait = [&] { theBeforeWait = theLocks.mCalls; };
    Query theQuery;
    Manager theManager;
    theLocks.mfNoteCalls = true;
    EXPECT_FALSE(theManager.HasPendingQuery());
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Unlock"));
    theLocks.mCalls.clear();
    EXPECT_EQ(theManager.GetQuery(), nullptr);
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Unlock"));
    theLocks.mCalls.clear();
    theManager.WaitForQuery(10);
    // The list, the event with a lock of its own, and the list again.
    EXPECT_THAT(theBeforeWait, ElementsAre("Lock", "Unlock", "Lock"));
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Unlock", "Lock", "Unlock", "Lock", "Unlock"));
}

// Waiting, on a clock turned by hand. `Waits` tells what reached the platform.

TEST(QueryManagerWaitTest, WaitEndsAtOnceWhenAQueryIsDue) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theWaits.mManager = &theManager;
    theManager.AddQuery(&theQuery);
    theManager.WaitForQuery(kNoLimit);
    theManager.WaitForQuery(1000);
    theManager.WaitForQuery(0);
    EXPECT_THAT(theWaits.mLocks.mWaits, IsEmpty());
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
}

TEST(QueryManagerWaitTest, DueQueryBehindADelayedOneEndsTheWait) {
    Waits theWaits;
    Query theQueries[] = {Query(1), Query(2), Query(3)};
    Manager theManager;
    theWaits.mManager = &theManager;
    theQueries[0].SetDelay(100);
    theManager.AddQuery(&theQueries[0]);
    theManager.AddQuery(&theQueries[1]);
    EXPECT_TRUE(theManager.HasPendingQuery());
    theManager.WaitForQuery(kNoLimit);
    EXPECT_THAT(theWaits.mLocks.mWaits, IsEmpty());
    // The second was the tail: the third goes behind the first.
    EXPECT_THAT(theManager.Drain(), ElementsAre(2));
    theManager.AddQuery(&theQueries[2]);
    EXPECT_THAT(theManager.Drain(), ElementsAre(3));
    theManager.AddQuery(&theQueries[1]);
    theWaits.mClock.Advance(100);
    EXPECT_THAT(theManager.Drain(), ElementsAre(2));
    theManager.WaitForQuery(0);
    EXPECT_THAT(theManager.Drain(), ElementsAre(1));
}

TEST(QueryManagerWaitTest, EmptyListIsWaitedForOnceWhenLimited) {
    for (const unsigned int theLimit : {0U, 1U, 250U, 0xFFFFFFFEU}) {
        Waits theWaits;
        vxQueryManager theManager;
        theManager.WaitForQuery(theLimit);
        EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout " + std::to_string(theLimit)));
        EXPECT_EQ(theManager.GetQuery(), nullptr);
    }
}

TEST(QueryManagerWaitTest, LimitedWaitThatIsWokenOverAnEmptyListEndsEarly) {
    Waits theWaits;
    vxQueryManager theManager;
    theWaits.mOnWait = [](size_t) {};
    theManager.WaitForQuery(1000);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 1000"));
}

TEST(QueryManagerWaitTest, WaitWithoutLimitEndsWithAQueryOnly) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theWaits.mOnWait = [&](size_t aNumber) {
        if (aNumber == 3) {
            theManager.AddQuery(&theQuery);
        }
    };
    theManager.WaitForQuery(kNoLimit);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("Wait", "Wait", "Wait"));
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
}

TEST(QueryManagerWaitTest, SignalGivenWhileNobodyWaitsEndsTheNextWait) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theManager.AddQuery(&theQuery);
    theManager.GetQuery();
    theManager.WaitForQuery(1000);
    EXPECT_THAT(theWaits.mLocks.mWaits, IsEmpty());
    theManager.WaitForQuery(1000);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 1000"));
    theManager.SignalQueryToProcess();
    theManager.WaitForQuery(2000);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 1000"));
}

TEST(QueryManagerWaitTest, QueryPutBackDuringAWaitDoesNotWakeAnybody) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theManager.PushBackQuery(&theQuery);
    theManager.GetQuery();
    theManager.WaitForQuery(1000);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 1000"));
}

TEST(QueryManagerWaitTest, DelayedQueryIsNotHandedOutBeforeAWaitHasSeenItsEnd) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theQuery.SetDelay(500);
    theManager.AddQuery(&theQuery);
    EXPECT_FALSE(theManager.HasPendingQuery());
    EXPECT_EQ(theManager.GetQuery(), nullptr);
    theWaits.mClock.Advance(499);
    theManager.WaitForQuery(0);
    EXPECT_EQ(theManager.GetQuery(), nullptr);
    theWaits.mClock.Advance(1);
    EXPECT_EQ(theManager.GetQuery(), nullptr);
    EXPECT_FALSE(theManager.HasPendingQuery());
    theManager.WaitForQuery(0);
    EXPECT_TRUE(theManager.HasPendingQuery());
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
    EXPECT_THAT(theWaits.mLocks.mWaits, IsEmpty());
}

TEST(QueryManagerWaitTest, WaitLastsUntilTheDelayEnds) {
    for (const unsigned int theLimit : {kNoLimit, 5000U, 500U}) {
        SCOPED_TRACE(theLimit);
        Waits theWaits;
        Query theQuery;
        Manager theManager;
        theWaits.mManager = &theManager;
        theQuery.SetDelay(500);
        theManager.AddQuery(&theQuery);
        // The addition has signaled: the first sleep is over at once.
        theManager.WaitForQuery(theLimit);
        EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 500"));
        EXPECT_EQ(theWaits.mClock.GetLocalTimeMS(), 1000500U);
        EXPECT_EQ(theManager.GetQuery(), &theQuery);
    }
}

TEST(QueryManagerWaitTest, DelayCountsFromTheMomentItIsSet) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theWaits.mManager = &theManager;
    theQuery.SetDelay(500);
    theWaits.mClock.Advance(200);
    theManager.AddQuery(&theQuery);
    theManager.WaitForQuery(kNoLimit);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 300"));
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
}

TEST(QueryManagerWaitTest, DelayOfZeroMakesAQueryDue) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theQuery.SetDelay(500);
    theQuery.SetDelay(0);
    theManager.AddQuery(&theQuery);
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
}

TEST(QueryManagerWaitTest, LimitEndsTheWaitBeforeTheDelay) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theWaits.mManager = &theManager;
    theQuery.SetDelay(500);
    theManager.AddQuery(&theQuery);
    theManager.WaitForQuery(200);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 200"));
    EXPECT_EQ(theManager.GetQuery(), nullptr);
    theManager.WaitForQuery(299);
    EXPECT_EQ(theManager.GetQuery(), nullptr);
    theManager.WaitForQuery(299);
    EXPECT_THAT(theWaits.mLocks.mWaits,
                ElementsAre("WaitTimeout 200", "WaitTimeout 299", "WaitTimeout 1"));
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
}

TEST(QueryManagerWaitTest, WakeUpWithoutReasonSleepsForTheRest) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theWaits.mManager = &theManager;
    theQuery.SetDelay(500);
    theManager.AddQuery(&theQuery);
    theWaits.mOnWait = [&](size_t aNumber) { theWaits.mClock.Advance(aNumber == 1 ? 100 : 400); };
    theManager.WaitForQuery(kNoLimit);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 500", "WaitTimeout 400"));
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
}

TEST(QueryManagerWaitTest, WakeUpWithoutReasonDoesNotMoveTheDeadline) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theQuery.SetDelay(1000);
    theManager.AddQuery(&theQuery);
    theWaits.mOnWait = [&](size_t) { theWaits.mClock.Advance(100); };
    theManager.WaitForQuery(250);
    EXPECT_THAT(theWaits.mLocks.mWaits,
                ElementsAre("WaitTimeout 250", "WaitTimeout 150", "WaitTimeout 50"));
    EXPECT_EQ(theManager.GetQuery(), nullptr);
}

TEST(QueryManagerWaitTest, DeadlineThatIsExactlyNowHasPassed) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theQuery.SetDelay(1000);
    theManager.AddQuery(&theQuery);
    theWaits.mOnWait = [&](size_t) { theWaits.mClock.Advance(100); };
    theManager.WaitForQuery(100);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 100"));
}

TEST(QueryManagerWaitTest, QueryAddedDuringTheWaitEndsIt) {
    for (const unsigned int theLimit : {kNoLimit, 5000U}) {
        Waits theWaits;
        Query theQueries[] = {Query(1), Query(2)};
        Manager theManager;
        theQueries[0].SetDelay(500);
        theManager.AddQuery(&theQueries[0]);
        theWaits.mOnWait = [&](size_t) { theManager.AddQuery(&theQueries[1]); };
        theManager.WaitForQuery(theLimit);
        EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 500"));
        EXPECT_THAT(theManager.Drain(), ElementsAre(2));
    }
}

TEST(QueryManagerWaitTest, DelayedQueryAddedDuringAWaitOverAnEmptyListIsWaitedFor) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theWaits.mManager = &theManager;
    theWaits.mOnWait = [&](size_t) {
        theWaits.mClock.Advance(300);
        theQuery.SetDelay(200);
        theManager.AddQuery(&theQuery);
        theWaits.mOnWait = nullptr;
    };
    theManager.WaitForQuery(1000);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 1000", "WaitTimeout 200"));
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
}

TEST(QueryManagerWaitTest, DelayBeyondTheRestOfALimitedWaitIsCutToIt) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theWaits.mOnWait = [&](size_t) {
        theWaits.mClock.Advance(300);
        theQuery.SetDelay(2000);
        theManager.AddQuery(&theQuery);
        theWaits.mOnWait = nullptr;
    };
    theManager.WaitForQuery(1000);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 1000", "WaitTimeout 700"));
    EXPECT_EQ(theManager.GetQuery(), nullptr);
}

TEST(QueryManagerWaitTest, ListClearedDuringASleepEndsALimitedWait) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theQuery.SetDelay(500);
    theManager.AddQuery(&theQuery);
    theWaits.mOnWait = [&](size_t) { theManager.ClearQueries(); };
    theManager.WaitForQuery(1000);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 500"));
}

TEST(QueryManagerWaitTest, ListClearedDuringASleepMakesAnUnlimitedWaitGoOn) {
    Waits theWaits;
    Query theQueries[] = {Query(1), Query(2)};
    Manager theManager;
    theQueries[0].SetDelay(500);
    theManager.AddQuery(&theQueries[0]);
    theWaits.mOnWait = [&](size_t aNumber) {
        aNumber == 1 ? theManager.ClearQueries() : theManager.AddQuery(&theQueries[1]);
    };
    theManager.WaitForQuery(kNoLimit);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 500", "Wait"));
    EXPECT_THAT(theManager.Drain(), ElementsAre(2));
}

TEST(QueryManagerWaitTest, StopDuringAWaitEndsIt) {
    for (const unsigned int theLimit : {kNoLimit, 1000U}) {
        for (const bool theIsDelayed : {false, true}) {
            Waits theWaits;
            Query theQuery;
            Manager theManager;
            theQuery.SetDelay(500);
            if (theIsDelayed) {
                theManager.AddQuery(&theQuery);
            }
            theWaits.mOnWait = [&](size_t) { theManager.Stop(); };
            theManager.WaitForQuery(theLimit);
            EXPECT_EQ(theWaits.mLocks.mWaits.size(), 1U);
            EXPECT_EQ(theManager.GetQuery(), nullptr);
        }
    }
}

TEST(QueryManagerWaitTest, StoppedManagerIsNotWaitedFor) {
    Waits theWaits;
    vxQueryManager theManager;
    theManager.Stop();
    theManager.WaitForQuery(kNoLimit);
    theManager.WaitForQuery(kNoLimit);
    theManager.WaitForQuery(1000);
    theManager.WaitForQuery(0);
    EXPECT_THAT(theWaits.mLocks.mWaits, IsEmpty());
}

TEST(QueryManagerWaitTest, StoppedManagerIsNotWaitedForThoughNobodySignals) {
    class Silent : public vxQueryManager {
    public:
        void SignalQueryToProcess() override {}
    };
    Waits theWaits;
    Silent theManager;
    theWaits.mManager = &theManager;
    theManager.Stop();
    theManager.WaitForQuery(kNoLimit);
    theManager.WaitForQuery(10);
    EXPECT_THAT(theWaits.mLocks.mWaits, IsEmpty());
}

TEST(QueryManagerWaitTest, DelayThatEndsFirstIsDueFirstWhateverTheOrder) {
    for (const bool theIsTurned : {false, true}) {
        SCOPED_TRACE(theIsTurned);
        Waits theWaits;
        Query theSoon(1);
        Query theLate(2);
        Manager theManager;
        theWaits.mManager = &theManager;
        theSoon.SetDelay(100);
        theLate.SetDelay(300);
        theManager.AddQuery(theIsTurned ? &theLate : &theSoon);
        theManager.AddQuery(theIsTurned ? &theSoon : &theLate);
        theManager.WaitForQuery(kNoLimit);
        EXPECT_THAT(theManager.Drain(), ElementsAre(1));
        theManager.WaitForQuery(kNoLimit);
        EXPECT_THAT(theManager.Drain(), ElementsAre(2));
        EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 100", "WaitTimeout 200"));
    }
}

TEST(QueryManagerWaitTest, DelaysThatEndTogetherAreDueOneByOneInTheOrderOfTheList) {
    Waits theWaits;
    Query theQueries[] = {Query(1), Query(2), Query(3), Query(4)};
    Manager theManager;
    theWaits.mManager = &theManager;
    theQueries[0].SetDelay(101);
    for (int i = 1; i < 4; ++i) {
        theQueries[i].SetDelay(100);
    }
    for (Query& theQuery : theQueries) {
        theManager.AddQuery(&theQuery);
    }
    theWaits.mClock.Advance(1000);
    for (const int theNumber : {2, 3, 4, 1}) {
        theManager.WaitForQuery(0);
        EXPECT_THAT(theManager.Drain(), ElementsAre(theNumber));
    }
}

TEST(QueryManagerWaitTest, QueryPutBackWithADelayIsRetriedBeforeTheOthersOfItsMoment) {
    Waits theWaits;
    Query theQueries[] = {Query(1), Query(2)};
    Manager theManager;
    theWaits.mManager = &theManager;
    theManager.AddQuery(&theQueries[0]);
    theQueries[1].SetDelay(100);
    theManager.AddQuery(&theQueries[1]);
    ASSERT_EQ(theManager.GetQuery(), &theQueries[0]);
    theQueries[0].SetDelay(100);
    theManager.PushBackQuery(&theQueries[0]);
    theManager.WaitForQuery(kNoLimit);
    EXPECT_THAT(theManager.Drain(), ElementsAre(1));
    theManager.WaitForQuery(kNoLimit);
    EXPECT_THAT(theManager.Drain(), ElementsAre(2));
}

TEST(QueryManagerWaitTest, DelaysCountAcrossTheWrapOfTheLowWord) {
    Waits theWaits;
    theWaits.mClock.SetLocalTimeMS(0x17FFFFF9BU);
    Query theSoon(1);
    Query theLate(2);
    Manager theManager;
    theWaits.mManager = &theManager;
    theSoon.SetDelay(50);
    theWaits.mClock.SetLocalTimeMS(0x1FFFFFF9BU);
    theLate.SetDelay(500);
    theManager.AddQuery(&theLate);
    theManager.WaitForQuery(200);
    EXPECT_EQ(theWaits.mClock.GetLocalTimeMS(), 0x200000063U);
    EXPECT_EQ(theManager.GetQuery(), nullptr);
    theManager.AddQuery(&theSoon);
    theManager.WaitForQuery(kNoLimit);
    EXPECT_THAT(theManager.Drain(), ElementsAre(1));
    theManager.WaitForQuery(kNoLimit);
    EXPECT_EQ(theWaits.mClock.GetLocalTimeMS(), 0x20000018FU);
    EXPECT_THAT(theManager.Drain(), ElementsAre(2));
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 200", "WaitTimeout 300"));
}

TEST(QueryManagerWaitTest, LongestDelayIsNotTakenForAWaitWithoutLimit) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theWaits.mManager = &theManager;
    theQuery.SetDelay(0xFFFFFFFF);
    theManager.AddQuery(&theQuery);
    theManager.WaitForQuery(kNoLimit);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 4294967294", "WaitTimeout 1"));
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
}

TEST(QueryManagerWaitTest, LongestLimitIsALimit) {
    Waits theWaits;
    Query theQuery;
    Manager theManager;
    theWaits.mManager = &theManager;
    theQuery.SetDelay(0xFFFFFFFF);
    theManager.AddQuery(&theQuery);
    theManager.WaitForQuery(0xFFFFFFFE);
    EXPECT_THAT(theWaits.mLocks.mWaits, ElementsAre("WaitTimeout 4294967294"));
    EXPECT_EQ(theManager.GetQuery(), nullptr);
}

// Random additions, delays, waits and clearings on the scripted clock, beside a plain list.

struct ModelEntry {
    Query* mQuery;
    uint64_t mEnd;  // 0: due
};

TEST(QueryManagerWaitTest, RandomHistoriesMatchAModel) {
    Waits theWaits;
    Manager theManager;
    theWaits.mManager = &theManager;
    std::mt19937 theRandom(20240612);
    const auto theNext = [&](unsigned int aLimit) {
        return static_cast<unsigned int>(theRandom() % aLimit);
    };
    std::vector<std::unique_ptr<Query>> theQueries;
    std::vector<Query*> theFree;
    for (int i = 0; i < 12; ++i) {
        theQueries.push_back(std::make_unique<Query>(i));
        theFree.push_back(theQueries.back().get());
    }
    std::vector<ModelEntry> theModel;
    const auto theFirstDue = [&] {
        return std::find_if(theModel.begin(), theModel.end(),
                            [](const ModelEntry& anEntry) { return anEntry.mEnd == 0; });
    };
    for (int theRound = 0; theRound < 20000; ++theRound) {
        switch (theNext(6)) {
            case 0:
            case 1:
                if (!theFree.empty()) {
                    const bool theIsBack = theNext(3) == 0;
                    const unsigned int theDelay = theNext(2) * theNext(300);
                    Query* theQuery = theFree.back();
                    theFree.pop_back();
                    theQuery->SetDelay(theDelay);
                    const uint64_t theEnd =
                        theDelay == 0 ? 0 : theWaits.mClock.GetLocalTimeMS() + theDelay;
                    theIsBack ? theManager.PushBackQuery(theQuery) : theManager.AddQuery(theQuery);
                    theModel.insert(theIsBack ? theModel.begin() : theModel.end(),
                                    {theQuery, theEnd});
                }
                break;
            case 2: {
                const auto theDue = theFirstDue();
                vxQuery* theQuery = theManager.GetQuery();
                ASSERT_EQ(theQuery, theDue == theModel.end() ? nullptr : theDue->mQuery);
                if (theQuery != nullptr) {
                    theFree.push_back(theDue->mQuery);
                    theModel.erase(theDue);
                }
                break;
            }
            case 3:
                if (theNext(10) == 0) {
                    theManager.ClearSelectedQueries(IsOdd, nullptr);
                    for (size_t i = theModel.size(); i-- > 0;) {
                        if (theModel[i].mQuery->mNumber % 2 != 0) {
                            theFree.push_back(theModel[i].mQuery);
                            theModel.erase(theModel.begin() + static_cast<ptrdiff_t>(i));
                        }
                    }
                }
                break;
            case 4:
                theWaits.mClock.Advance(theNext(40));
                break;
            default: {
                const uint64_t theLimit = theWaits.mClock.GetLocalTimeMS() + theNext(100);
                const bool theIsDue = theFirstDue() != theModel.end();
                theManager.WaitForQuery(
                    static_cast<unsigned int>(theLimit - theWaits.mClock.GetLocalTimeMS()));
                if (theIsDue || theModel.empty()) {
                    break;
                }
                const auto theFirst =
                    std::min_element(theModel.begin(), theModel.end(),
                                     [](const ModelEntry& aLeft, const ModelEntry& aRight) {
                                         return aLeft.mEnd < aRight.mEnd;
                                     });
                const uint64_t theNow = theWaits.mClock.GetLocalTimeMS();
                if (theFirst->mEnd <= theLimit) {
                    ASSERT_GE(theNow, theFirst->mEnd);
                    theFirst->mEnd = 0;
                } else {
                    ASSERT_GE(theNow, theLimit);
                }
            }
        }
        ASSERT_EQ(theManager.HasPendingQuery(), theFirstDue() != theModel.end());
    }
    theManager.ClearQueries();
}

// Threads

/// A thread that asks for the lock of a manager. Made inside a callback, it tells whether the
/// callback runs under the lock.
class LockProbe {
public:
    explicit LockProbe(vxQueryManager& aManager)
        : mThread([this, &aManager] {
              mTrying.CountDown();
              aManager.LockQueries();
              mfThrough = true;
              aManager.UnlockQueries();
              mThrough.CountDown();
          }) {}
    ~LockProbe() { mThread.join(); }

    /// False for sure when the lock is held; otherwise true unless the machine is very slow.
    bool GetsThrough() {
        mTrying.Wait();
        for (int i = 0; i < 20 && !mfThrough; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return mfThrough;
    }
    void WaitUntilThrough() { mThrough.Wait(); }

private:
    vxtest::Latch mTrying{1};
    vxtest::Latch mThrough{1};
    std::atomic<bool> mfThrough{false};
    std::thread mThread;
};

/// Expects the lock of its manager to be held, and keeps the probes until it is not.
struct Probing {
    void ExpectLocked() {
        mProbes.push_back(std::make_unique<LockProbe>(mManager));
        EXPECT_FALSE(mProbes.back()->GetsThrough());
    }

    vxQueryManager& mManager;
    std::vector<std::unique_ptr<LockProbe>> mProbes;
};

TEST(QueryManagerThreadTest, QueriesAreInitializedSelectedAndDiscardedUnderTheLock) {
    class ProbingManager : public vxQueryManager {
    public:
        void InitQuery(vxQuery*) override { mProbing.ExpectLocked(); }
        Probing mProbing{*this, {}};
    };
    ProbingManager theManager;
    Probing& theProbing = theManager.mProbing;
    Query theQuery;
    theQuery.mOnDone = [&] { theProbing.ExpectLocked(); };
    theManager.AddQuery(&theQuery);
    EXPECT_EQ(theProbing.mProbes.size(), 1U);
    theManager.ClearSelectedQueries(
        [](vxQuery*, void* aProbing) {
            static_cast<Probing*>(aProbing)->ExpectLocked();
            return true;
        },
        &theProbing);
    EXPECT_EQ(theProbing.mProbes.size(), 3U);
    theProbing.mProbes.clear();
}

TEST(QueryManagerThreadTest, LockedListKeepsOthersOut) {
    vxQueryManager theManager;
    theManager.LockQueries();
    theManager.LockQueries();
    theManager.UnlockQueries();
    LockProbe theProbe(theManager);
    EXPECT_FALSE(theProbe.GetsThrough());
    theManager.UnlockQueries();
    theProbe.WaitUntilThrough();
}

TEST(QueryManagerThreadTest, StoppedManagerEndsAnAddedQueryWithoutLock) {
    vxQueryManager theManager;
    theManager.Stop();
    Query theQuery;
    theQuery.mOnDone = [&] { LockProbe(theManager).WaitUntilThrough(); };
    theManager.AddQuery(&theQuery);
    EXPECT_EQ(theQuery.mDone, 1);
}

TEST(QueryManagerThreadTest, StoppedManagerHandsOutNothingEvenBeforeItsListIsCleared) {
    vxtest::Reports theReports;
    vxLog_SetLevel(VXLOG_M_QUERY, VXLOGLEVEL_NONE);
    Query theQuery;
    Query theProbe;
    vxQueryManager theManager;
    theManager.AddQuery(&theQuery);
    theManager.LockQueries();
    std::thread theStopper([&] { theManager.Stop(); });  // clears the list once the lock is free
    vxQuery* theHandedOut = &theProbe;
    while (theHandedOut == &theProbe) {
        std::this_thread::yield();
        theManager.PushBackQuery(&theProbe);
        theHandedOut = theManager.GetQuery();
    }
    EXPECT_EQ(theHandedOut, nullptr);
    EXPECT_EQ(theManager.FindQuery([](vxQuery* aQuery, void* aWanted) { return aQuery == aWanted; },
                                   &theQuery),
              &theQuery);
    theManager.UnlockQueries();
    theStopper.join();
    EXPECT_EQ(theQuery.mDone, 1);
}

TEST(QueryManagerThreadTest, DelayEndsOnTheRealClock) {
    Query theQuery;
    vxQueryManager theManager;
    const auto theStart = std::chrono::steady_clock::now();
    theQuery.SetDelay(30);
    theManager.AddQuery(&theQuery);
    theManager.WaitForQuery(kNoLimit);
    // Moments are whole milliseconds: the first one may have begun before.
    EXPECT_GE(std::chrono::steady_clock::now() - theStart, std::chrono::milliseconds(29));
    EXPECT_EQ(theManager.GetQuery(), &theQuery);
}

TEST(QueryManagerThreadTest, ProducerSeesThatItsQueryHasBeenExecuted) {
    Query theQuery;
    vxQueryManager theManager;
    std::thread theWorker([&] {
        theManager.WaitForQuery(kNoLimit);
        EXPECT_EQ(theManager.GetQuery(), &theQuery);
    });
    theManager.AddQuery(&theQuery);
    while (!theQuery.HasBeenExecuted()) {
        std::this_thread::yield();
    }
    theWorker.join();
}

/// A job that counts its executions and its end, and is to be tried several times.
struct Job : vxQuery {
    Job(std::atomic<int>& anExecutions, std::atomic<int>& anEnds, int aRetries)
        : mExecutions(anExecutions), mEnds(anEnds), mRetries(aRetries) {}
    ~Job() override { ++mEnds; }

    std::atomic<int>& mExecutions;
    std::atomic<int>& mEnds;
    int mRetries;
};

/// Works until the manager is stopped.
void Work(vxQueryManager& aManager, std::atomic<bool>& anIsOver) {
    while (!anIsOver) {
        aManager.WaitForQuery(kNoLimit);
        if (Job* theJob = static_cast<Job*>(aManager.GetQuery())) {
            if (theJob->mRetries-- > 0) {
                theJob->SetDelay(theJob->mRetries % 2 == 0 ? 0 : 1);
                aManager.PushBackQuery(theJob);
            } else {
                ++theJob->mExecutions;
                theJob->Done();
            }
        }
    }
}

TEST(QueryManagerThreadTest, ManyProducersAndWorkersHandleEveryQueryOnce) {
    constexpr int kThreads = 4;
    constexpr int kJobs = 2000;
    vxQueryManager theManager;
    std::vector<std::atomic<int>> theExecutions(kThreads * kJobs);
    std::atomic<int> theEnds{0};
    std::atomic<bool> theIsOver{false};
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&] { Work(theManager, theIsOver); });
        theThreads.emplace_back([&, i] {
            for (int j = 0; j < kJobs; ++j) {
                std::atomic<int>& theExecution = theExecutions[static_cast<size_t>(i * kJobs + j)];
                Job* theJob = new Job(theExecution, theEnds, j % 50 == 0 ? 2 : 0);
                theJob->SetDelay(j % 100 == 0 ? 2 : 0);
                theManager.AddQuery(theJob);
            }
        });
    }
    while (theEnds != kThreads * kJobs) {
        std::this_thread::yield();
    }
    theIsOver = true;
    theManager.Stop();
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    for (const std::atomic<int>& theExecution : theExecutions) {
        ASSERT_EQ(theExecution, 1);
    }
}

TEST(QueryManagerThreadTest, StopWakesEveryWorker) {
    constexpr int kThreads = 4;
    for (int theRound = 0; theRound < 200; ++theRound) {
        Query theQuery;
        vxQueryManager theManager;
        theQuery.SetDelay(0xFFFFFFFF);
        if (theRound % 2 == 0) {
            theManager.AddQuery(&theQuery);
        }
        vxtest::Latch theStart(kThreads + 1);
        std::vector<std::thread> theThreads;
        for (int i = 0; i < kThreads; ++i) {
            theThreads.emplace_back([&] {
                theStart.ArriveAndWait();
                theManager.WaitForQuery(kNoLimit);
            });
        }
        theStart.ArriveAndWait();
        if (theRound % 4 < 2) {
            std::this_thread::yield();
        }
        theManager.Stop();
        for (std::thread& theThread : theThreads) {
            theThread.join();
        }
    }
}

TEST(QueryManagerThreadTest, NoQueryStaysBehindInAManagerThatIsStopped) {
    constexpr int kThreads = 3;
    for (int theRound = 0; theRound < 100; ++theRound) {
        vxQueryManager theManager;
        std::atomic<int> theExecutions{0};
        std::atomic<int> theEnds{0};
        std::atomic<int> theCount{0};
        std::atomic<bool> theIsOver{false};
        vxtest::Latch theStart(kThreads + 1);
        std::vector<std::thread> theThreads;
        theThreads.emplace_back([&] { Work(theManager, theIsOver); });
        for (int i = 0; i < kThreads; ++i) {
            theThreads.emplace_back([&] {
                theStart.ArriveAndWait();
                for (int j = 0; j < 500; ++j) {
                    ++theCount;
                    theManager.AddQuery(new Job(theExecutions, theEnds, 0));
                }
            });
        }
        vxtest::Reports theReports;
        vxLog_SetLevel(VXLOG_M_QUERY, VXLOGLEVEL_NONE);
        theStart.ArriveAndWait();
        while (theCount < 100) {
            std::this_thread::yield();
        }
        theManager.ClearQueries();
        theManager.Stop();
        theIsOver = true;
        for (std::thread& theThread : theThreads) {
            theThread.join();
        }
        // Nothing is left for the destructor.
        EXPECT_EQ(theEnds, theCount);
    }
}

}  // namespace
