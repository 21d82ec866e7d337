#include "vx/ActivityManager.h"

#include <gmock/gmock.h>
#include <libteskTools/HashTable.h>

#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "support/Forward.h"
#include "support/ScriptedClock.h"
#include "support/ScriptedLocks.h"

namespace {

vxtest::ScriptedLocks* sNotes = nullptr;  // uses of the table are noted among its locks

void NoteUse() {
    if (sNotes != nullptr) {
        sNotes->mCalls.push_back("table");
    }
}

}  // namespace

bool vxCustomHashTable_Lookup(const vxCustomHashTable* aTable, const char* aKey, void** aValue) {
    NoteUse();
    return VXTEST_REAL(vxCustomHashTable_Lookup)(aTable, aKey, aValue);
}

bool vxCustomHashTable_Add(vxCustomHashTable* aTable, const char* aKey, void* aValue) {
    NoteUse();
    return VXTEST_REAL(vxCustomHashTable_Add)(aTable, aKey, aValue);
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::has_virtual_destructor_v<vxActivityManager>);

TEST(ActivityManagerTest, NewManagerIsIdleSinceItsConstruction) {
    vxtest::ScriptedClock theClock(0, {100, 900000});
    vxActivityManager theManager;
    EXPECT_FALSE(theManager.IsActive());
    EXPECT_FALSE(theManager.IsModuleActive("player"));
    EXPECT_EQ(theManager.GetInactivityDuration(), 0U);
    theClock.Advance(999);
    EXPECT_EQ(theManager.GetInactivityDuration(), 0U);
    theClock.Advance(1);
    EXPECT_EQ(theManager.GetInactivityDuration(), 1U);
    theClock.Advance(61999);
    EXPECT_EQ(theManager.GetInactivityDuration(), 62U);
}

TEST(ActivityManagerTest, ModuleIsActiveWhileItsCountIsAboveZero) {
    vxActivityManager theManager;
    theManager.IncrementModuleActivity("player");
    theManager.IncrementModuleActivity("player");
    EXPECT_TRUE(theManager.IsModuleActive("player"));
    EXPECT_FALSE(theManager.IsModuleActive("Player"));
    theManager.DecrementModuleActivity("player");
    EXPECT_TRUE(theManager.IsModuleActive("player"));
    EXPECT_TRUE(theManager.IsActive());
    theManager.DecrementModuleActivity("player");
    EXPECT_FALSE(theManager.IsModuleActive("player"));
    EXPECT_FALSE(theManager.IsActive());
}

TEST(ActivityManagerTest, ManagerIsActiveAsLongAsAnyModuleIs) {
    vxActivityManager theManager;
    theManager.IncrementModuleActivity("player");
    theManager.IncrementModuleActivity("renderer");
    theManager.DecrementModuleActivity("player");
    EXPECT_TRUE(theManager.IsActive());
    theManager.DecrementModuleActivity("renderer");
    EXPECT_FALSE(theManager.IsActive());
}

TEST(ActivityManagerTest, CountNeverFallsBelowZero) {
    vxActivityManager theManager;
    theManager.DecrementModuleActivity("player");
    EXPECT_FALSE(theManager.IsActive());
    EXPECT_FALSE(theManager.IsModuleActive("player"));
    theManager.IncrementModuleActivity("player");
    EXPECT_TRUE(theManager.IsModuleActive("player"));
    theManager.DecrementModuleActivity("player");
    theManager.DecrementModuleActivity("player");
    theManager.IncrementModuleActivity("player");
    EXPECT_TRUE(theManager.IsModuleActive("player"));
}

TEST(ActivityManagerTest, SettingReplacesTheCount) {
    vxActivityManager theManager;
    theManager.IncrementModuleActivity("player");
    theManager.IncrementModuleActivity("player");
    theManager.SetModuleActivity("player", true);
    theManager.DecrementModuleActivity("player");
    EXPECT_FALSE(theManager.IsModuleActive("player"));

    theManager.IncrementModuleActivity("player");
    theManager.IncrementModuleActivity("player");
    theManager.SetModuleActivity("player", false);
    EXPECT_FALSE(theManager.IsModuleActive("player"));
    EXPECT_FALSE(theManager.IsActive());
    theManager.SetModuleActivity("other", false);
    EXPECT_FALSE(theManager.IsActive());
    theManager.SetModuleActivity("other", true);
    EXPECT_TRUE(theManager.IsActive());
}

TEST(ActivityManagerTest, InactivityCountsFromTheMomentTheLastModuleBecameIdle) {
    vxtest::ScriptedClock theClock(0, {100, 0});
    vxActivityManager theManager;
    theManager.IncrementModuleActivity("player");
    theClock.Advance(10000);
    EXPECT_EQ(theManager.GetInactivityDuration(), 0U);
    theManager.IncrementModuleActivity("renderer");
    theClock.Advance(10000);
    theManager.DecrementModuleActivity("player");
    theClock.Advance(10000);
    theManager.DecrementModuleActivity("renderer");
    EXPECT_EQ(theManager.GetInactivityDuration(), 0U);
    theClock.Advance(3500);
    EXPECT_EQ(theManager.GetInactivityDuration(), 3U);
}

TEST(ActivityManagerTest, ChangesWhileIdleDoNotRestartTheDuration) {
    vxtest::ScriptedClock theClock(0, {100, 0});
    vxActivityManager theManager;
    theClock.Advance(5000);
    theManager.DecrementModuleActivity("player");
    theManager.SetModuleActivity("player", false);
    EXPECT_EQ(theManager.GetInactivityDuration(), 5U);
}

TEST(ActivityManagerTest, ActivityWhileTheDurationIsTakenDoesNotTurnItAround) {
    vxtest::ScriptedClock theClock(0, {100, 0});
    vxActivityManager theManager;
    theClock.Advance(5000);
    theClock.AfterNextTime([&] {
        theClock.Advance(2000);
        theManager.IncrementModuleActivity("player");
        theManager.DecrementModuleActivity("player");
    });
    EXPECT_EQ(theManager.GetInactivityDuration(), 5U);
    EXPECT_EQ(theManager.GetInactivityDuration(), 0U);
}

TEST(ActivityManagerTest, ManagerIsActiveUntilTheMomentOfItsIdlenessIsKnown) {
    vxtest::ScriptedClock theClock(0, {100, 0});
    vxActivityManager theManager;
    theManager.IncrementModuleActivity("player");
    theClock.Advance(5000);
    bool theIsActive = false;
    theClock.AfterNextTime([&] { theIsActive = theManager.IsActive(); });
    theManager.DecrementModuleActivity("player");
    EXPECT_TRUE(theIsActive);
    EXPECT_FALSE(theManager.IsActive());
    EXPECT_EQ(theManager.GetInactivityDuration(), 0U);
}

TEST(ActivityManagerTest, NamesAreCopied) {
    vxActivityManager theManager;
    std::string theName = "player";
    theManager.IncrementModuleActivity(theName.c_str());
    theName = "xxxxxx";
    EXPECT_TRUE(theManager.IsModuleActive("player"));
}

TEST(ActivityManagerTest, TableIsUsedUnderTheLock) {
    vxActivityManager theManager;
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoteCalls = true;
    sNotes = &theLocks;
    theManager.IncrementModuleActivity("player");
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "table", "table", "Unlock"));
    theLocks.mCalls.clear();
    theManager.DecrementModuleActivity("player");
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "table", "table", "Unlock"));
    theLocks.mCalls.clear();
    theManager.SetModuleActivity("player", true);
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "table", "Unlock"));
    theLocks.mCalls.clear();
    EXPECT_TRUE(theManager.IsModuleActive("player"));
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "table", "Unlock"));
    theLocks.mCalls.clear();
    EXPECT_TRUE(theManager.IsActive());
    EXPECT_EQ(theManager.GetInactivityDuration(), 0U);
    EXPECT_THAT(theLocks.mCalls, IsEmpty());
    sNotes = nullptr;
}

TEST(ActivityManagerTest, ThreadsCountWithoutLosingAny) {
    constexpr int kThreads = 4;
    vxActivityManager theManager;
    theManager.SetModuleActivity("base", true);
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back([&theManager, i] {
            const std::string theName = "module" + std::to_string(i % 2);
            for (int theRound = 0; theRound < 1000; ++theRound) {
                theManager.IncrementModuleActivity(theName.c_str());
                EXPECT_TRUE(theManager.IsActive());
                EXPECT_EQ(theManager.GetInactivityDuration(), 0U);
                theManager.DecrementModuleActivity(theName.c_str());
            }
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_FALSE(theManager.IsModuleActive("module0"));
    EXPECT_FALSE(theManager.IsModuleActive("module1"));
    EXPECT_TRUE(theManager.IsActive());
    theManager.SetModuleActivity("base", false);
    EXPECT_FALSE(theManager.IsActive());
}

}  // namespace
