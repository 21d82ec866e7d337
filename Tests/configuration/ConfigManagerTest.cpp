#include "vx/ConfigManager.h"

#include <gmock/gmock.h>
#include <libteskTools/ConfigFile.h>
#include <libteskTools/HashTable.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/Environment.h"
#include "support/Forward.h"
#include "support/Latch.h"
#include "support/Reports.h"
#include "support/ScriptedLocks.h"
#include "support/TempDir.h"
#include "vx/ConfigMapper.h"

namespace {

vxtest::ScriptedLocks* sNotes = nullptr;  // what happens between locks is noted among them

void Note(const char* aCall) {
    if (sNotes != nullptr) {
        sNotes->mCalls.push_back(aCall);
    }
}

}  // namespace

vxConfigFile* vxConfigFile_New(const char* aReadPath, const char* aWritePath, const char* aName) {
    Note("open");
    return VXTEST_REAL(vxConfigFile_New)(aReadPath, aWritePath, aName);
}

void vxConfigFile_Delete(vxConfigFile* aFile) {
    if (aFile != NULL) {
        Note("close");
    }
    VXTEST_REAL(vxConfigFile_Delete)(aFile);
}

bool vxConfigFile_Save(vxConfigFile* aFile) {
    Note("save");
    return VXTEST_REAL(vxConfigFile_Save)(aFile);
}

uint16_t vxConfigFile_GetUInt16(const vxConfigFile* aFile, const char* aSection, const char* aKey,
                                uint16_t aDefault) {
    Note("read");
    return VXTEST_REAL(vxConfigFile_GetUInt16)(aFile, aSection, aKey, aDefault);
}

void* vxCustomHashTable_Get(const vxCustomHashTable* aTable, const char* aKey) {
    Note("find");
    return VXTEST_REAL(vxCustomHashTable_Get)(aTable, aKey);
}

bool vxCustomHashTable_Add(vxCustomHashTable* aTable, const char* aKey, void* aValue) {
    Note("enter");
    return VXTEST_REAL(vxCustomHashTable_Add)(aTable, aKey, aValue);
}

bool vxCustomHashTable_Remove(vxCustomHashTable* aTable, const char* aKey) {
    Note("remove");
    return VXTEST_REAL(vxCustomHashTable_Remove)(aTable, aKey);
}

bool vxCustomHashTable_RemoveValue(vxCustomHashTable* aTable, const char* aKey,
                                   const void* aValue) {
    Note("remove");
    return VXTEST_REAL(vxCustomHashTable_RemoveValue)(aTable, aKey, aValue);
}

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Environment;
using vxtest::Latch;
using vxtest::Reports;
using vxtest::TempDir;

namespace {

constexpr vxConfigMapperInfo kTable[] = {
    {"port", "Server", "Port", kvxConfigEntryType_uint16, "8080"},
    {NULL, NULL, NULL, kvxConfigEntryType_none, NULL},
};

// A bootstrap file, and the two directories that it names.
class Place {
public:
    Place() : mVariable("VXCONFIGPATH", mDir.Path().c_str()) {
        mDir.Write("ConfigPath.ini",
                   "ReadPath=" + mDir / "ro" + "\nWritePath=" + mDir / "rw" + "\n");
        mDir.MakeDir("ro");
    }
    const TempDir& Dir() const { return mDir; }

    // From now on a file is in the way of the writable directory.
    void Block() { mDir.Write("ConfigPath.ini", "WritePath=" + mDir / "ConfigPath.ini/x" + "\n"); }

private:
    const TempDir mDir;
    const Environment mVariable;
};

vxRef<vxConfigManager> NewManager() {
    return new vxConfigManager("ConfigPath.ini");
}

TEST(ConfigManagerTest, OneNameHasOneConfigurationAsLongAsItIsHeld) {
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();

    vxRef<vxManagedConfig> theFirst = theManager->GetConfig("a.ini");
    vxRef<vxManagedConfig> theSecond = theManager->GetConfig("a.ini");
    EXPECT_FALSE(theFirst.IsNull());
    EXPECT_TRUE(theFirst == theSecond);
    EXPECT_EQ(theFirst->_GetRefCount(), 2);
    EXPECT_TRUE(theManager->GetConfig("b.ini") != theFirst);
}

TEST(ConfigManagerTest, AfterTheLastHandleTheFileIsOpenedAgain) {
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();
    vxRef<vxManagedConfig> theConfig = theManager->GetConfig("a.ini");
    EXPECT_TRUE(theConfig->Lock(NULL)->SetString("s", "k", "unsaved"));
    EXPECT_TRUE(theConfig->Unlock(false));
    theConfig = 0;
    thePlace.Dir().Write("ro/a.ini", "[s]\nk=fresh\n");

    theConfig = theManager->GetConfig("a.ini");
    EXPECT_STREQ(theConfig->Lock(NULL)->GetCString("s", "k", ""), "fresh");
    theConfig->Unlock(false);
}

TEST(ConfigManagerTest, FilesLieInTheDirectoriesOfTheBootstrap) {
    const Place thePlace;
    thePlace.Dir().Write("ro/a.ini", "[s]\nk=1\n");
    const vxRef<vxConfigManager> theManager = NewManager();
    const vxRef<vxManagedConfig> theConfig = theManager->GetConfig("a.ini");

    vxConfigFile* theFile = NULL;
    vxConfig* theOpen = theConfig->Lock(&theFile);
    EXPECT_EQ(theFile, theOpen->GetConfigFile());
    EXPECT_NE(theFile, nullptr);
    EXPECT_STREQ(theOpen->GetCString("s", "k", ""), "1");
    EXPECT_TRUE(theOpen->SetString("s", "k", "2"));
    EXPECT_TRUE(theConfig->Unlock(true));
    EXPECT_EQ(thePlace.Dir().Read("rw/_a.ini"), "[s]\nk=2\n");
    EXPECT_TRUE(theConfig->Save());
}

TEST(ConfigManagerTest, TheManagerLivesAsLongAsItsConfigurations) {
    const Place thePlace;
    vxRef<vxConfigManager> theManager = NewManager();
    const vxRef<vxManagedConfig> theConfig = theManager->GetConfig("a.ini");
    EXPECT_EQ(theManager->_GetRefCount(), 2);
    theManager = 0;
    EXPECT_TRUE(theConfig->Lock(NULL)->SetString("s", "k", "1"));
    EXPECT_TRUE(theConfig->Unlock(true));
}

TEST(ConfigManagerTest, ReleasedNamesAreOpenedAgain) {
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();
    vxRef<vxManagedConfig> theOld = theManager->GetConfig("a.ini");
    theManager->Release("a.ini");
    theManager->Release("absent.ini");
    const vxRef<vxManagedConfig> theNew = theManager->GetConfig("a.ini");
    EXPECT_TRUE(theNew != theOld);
    theOld = 0;  // it is not in the table, and must leave the other there
    EXPECT_TRUE(theManager->GetConfig("a.ini") == theNew);
}

TEST(ConfigManagerTest, WithoutDirectoriesThereIsNoConfiguration) {
    Reports theReports;
    Place thePlace;
    thePlace.Block();
    const vxRef<vxConfigManager> theManager = NewManager();
    EXPECT_TRUE(theManager->GetConfig("a.ini").IsNull());
    EXPECT_EQ(theReports.LogTexts().size(), 1u);

    vxConfigMapper theMapper;
    theManager->LoadMapper(theMapper, "a.ini", kTable);
    EXPECT_EQ(theMapper.GetUInt16("port"), 8080);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(ConfigManagerTest, TheFallbackIsAConfigurationWithoutAFile) {
    Reports theReports;
    Place thePlace;
    thePlace.Block();
    const vxRef<vxConfigManager> theManager = NewManager();
    theManager->SetDefaultFallback(true);
    const vxRef<vxManagedConfig> theConfig = theManager->GetConfig("a.ini");
    ASSERT_FALSE(theConfig.IsNull());
    EXPECT_TRUE(theManager->GetConfig("a.ini") == theConfig);

    vxConfigFile* theFile = reinterpret_cast<vxConfigFile*>(&thePlace);
    EXPECT_EQ(theConfig->Lock(&theFile)->GetUInt16("Server", "Port", 5), 5);
    EXPECT_EQ(theFile, nullptr);
    EXPECT_FALSE(theConfig->Unlock(true));
    theManager->SetDefaultFallback(false);
    EXPECT_TRUE(theManager->GetConfig("b.ini").IsNull());
}

TEST(ConfigManagerTest, TheFallbackIsForMissingDirectoriesOnly) {
    const Place thePlace;
    thePlace.Dir().Write("ro/a.ini", "[s]\nk=1\n");
    const vxRef<vxConfigManager> theManager = NewManager();
    theManager->SetDefaultFallback(true);
    const vxRef<vxManagedConfig> theConfig = theManager->GetConfig("a.ini");
    EXPECT_STREQ(theConfig->Lock(NULL)->GetCString("s", "k", ""), "1");
    theConfig->Unlock(false);
}

TEST(ConfigManagerTest, TheBootstrapMayHaveAnyName) {
    const Place thePlace;
    thePlace.Dir().Write("Other.ini", "ReadPath=" + thePlace.Dir() / "other" +
                                          "\nWritePath=" + thePlace.Dir() / "rw" + "\n");
    thePlace.Dir().MakeDir("other");
    thePlace.Dir().Write("other/a.ini", "[s]\nk=1\n");
    const vxRef<vxConfigManager> theManager = new vxConfigManager("Other.ini");
    const vxRef<vxManagedConfig> theConfig = theManager->GetConfig("a.ini");
    EXPECT_STREQ(theConfig->Lock(NULL)->GetCString("s", "k", ""), "1");
    theConfig->Unlock(false);
}

// What happens under the mutex, and nothing else does

TEST(ConfigManagerTest, TheTableIsUsedUnderTheMutex) {
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoteCalls = true;
    const auto theCalls = [&] {
        sNotes = nullptr;
        const std::vector<std::string> theResult = std::move(theLocks.mCalls);
        theLocks.mCalls.clear();
        sNotes = &theLocks;
        return theResult;
    };
    sNotes = &theLocks;

    vxRef<vxManagedConfig> theConfig = theManager->GetConfig("a.ini");
    EXPECT_THAT(theCalls(), ElementsAre("Lock", "find", "open", "enter", "Unlock"));
    vxRef<vxManagedConfig> theSame = theManager->GetConfig("a.ini");
    EXPECT_THAT(theCalls(), ElementsAre("Lock", "find", "Unlock"));
    theManager->Release("b.ini");
    EXPECT_THAT(theCalls(), ElementsAre("Lock", "remove", "Unlock"));
    theSame = 0;
    EXPECT_THAT(theCalls(), IsEmpty());
    theConfig = 0;
    EXPECT_THAT(theCalls(), ElementsAre("Lock", "remove", "Unlock", "close"));
    sNotes = nullptr;
}

TEST(ConfigManagerTest, AConfigurationIsReadAndSavedUnderTheMutex) {
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();
    const vxRef<vxManagedConfig> theConfig = theManager->GetConfig("a.ini");
    vxConfigMapper theMapper;
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoteCalls = true;
    sNotes = &theLocks;

    theConfig->LoadMapper(theMapper, kTable);
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "read", "Unlock"));
    theLocks.mCalls.clear();
    EXPECT_TRUE(theConfig->Save());
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "save", "Unlock"));
    theLocks.mCalls.clear();
    theConfig->Lock(NULL);
    EXPECT_TRUE(theConfig->Unlock(false));
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Unlock"));
    theLocks.mCalls.clear();
    theManager->LoadMapper(theMapper, "a.ini", kTable);
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "find", "Unlock", "Lock", "read", "Unlock"));
    sNotes = nullptr;
}

TEST(ConfigManagerTest, NamesAreNotSharedWithTheCaller) {
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();
    vxCString theName("a name that a string holds in a block.ini");
    const char* const theText = theName.c_str();
    const vxRef<vxManagedConfig> theConfig = theManager->GetConfig(theName);
    const vxRef<vxManagedConfig> theOther = new vxManagedConfig(theManager, theName, NULL);
    EXPECT_EQ(theName.GetWriteBuf(1), theText);  // a shared block would be copied first
    theName.UngetWriteBuf();
}

// Tells whether another thread gets the mutex; the caller must not hold it then.
bool IsFree(const vxRef<vxManagedConfig>& aConfig) {
    bool theResult = false;
    std::thread([&] { theResult = aConfig->Lock(NULL) != NULL && aConfig->Unlock(false); }).join();
    return theResult;
}

TEST(ConfigManagerTest, AFailedSaveUnlocksAllTheSame) {
    Reports theReports;
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();
    const vxRef<vxManagedConfig> theConfig = theManager->GetConfig("a.ini");
    thePlace.Dir().MakeDir("rw/_a.ini");
    theConfig->Lock(NULL)->SetString("s", "k", "1");
    EXPECT_FALSE(theConfig->Unlock(true));
    EXPECT_TRUE(IsFree(theConfig));
    EXPECT_FALSE(theConfig->Save());
    EXPECT_TRUE(IsFree(theConfig));
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(ConfigManagerTest, WithoutAConfigurationThereIsNothingToSave) {
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();
    const vxRef<vxManagedConfig> theConfig = new vxManagedConfig(theManager, "a.ini", NULL);
    vxConfigFile* theFile = reinterpret_cast<vxConfigFile*>(theManager.Get());
    EXPECT_EQ(theConfig->Lock(&theFile), nullptr);
    EXPECT_EQ(theFile, nullptr);
    EXPECT_TRUE(theConfig->Unlock(false));
    EXPECT_FALSE(theConfig->Save());
    vxConfigMapper theMapper;
    theConfig->LoadMapper(theMapper, kTable);
    EXPECT_EQ(theMapper.GetUInt16("port"), 8080);
}

TEST(ConfigManagerTest, MappersAreLoaded) {
    const Place thePlace;
    thePlace.Dir().Write("ro/a.ini", "[Server]\nPort=99\n");
    const vxRef<vxConfigManager> theManager = NewManager();
    vxConfigMapper theMapper;
    theManager->LoadMapper(theMapper, "a.ini", kTable);
    EXPECT_EQ(theMapper.GetUInt16("port"), 99);
    EXPECT_TRUE(IsFree(theManager->GetConfig("a.ini")));
}

TEST(ConfigManagerTest, OneMutexGuardsEveryConfiguration) {
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();
    const vxRef<vxManagedConfig> theFirst = theManager->GetConfig("a.ini");
    const vxRef<vxManagedConfig> theSecond = theManager->GetConfig("b.ini");
    Latch theStarted(1);
    std::vector<int> theOrder;  // guarded by the mutex of the manager

    theFirst->Lock(NULL);
    std::thread theOther([&] {
        theStarted.CountDown();
        theSecond->Lock(NULL);
        theOrder.push_back(2);
        theSecond->Unlock(false);
    });
    theStarted.Wait();
    theManager->Lock(true);  // it is recursive
    theManager->Lock(false);
    theOrder.push_back(1);
    theFirst->Unlock(false);
    theOther.join();
    EXPECT_THAT(theOrder, ElementsAre(1, 2));
}

TEST(ConfigManagerTest, ThreadsCountTogetherInOneFile) {
    constexpr int kRounds = 50;
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();
    const vxRef<vxManagedConfig> theKeeper = theManager->GetConfig("a.ini");
    Latch theStart(2);
    const auto theWork = [&] {
        theStart.ArriveAndWait();
        for (int i = 0; i < kRounds; ++i) {
            const vxRef<vxManagedConfig> theConfig = theManager->GetConfig("a.ini");
            vxConfig* theOpen = theConfig->Lock(NULL);
            theOpen->SetInt32("s", "count", theOpen->GetInt32("s", "count", 0) + 1);
            theConfig->Unlock(i % 10 == 0);
        }
    };
    std::thread theOther(theWork);
    theWork();
    theOther.join();
    EXPECT_TRUE(theKeeper->Save());
    EXPECT_EQ(thePlace.Dir().Read("rw/_a.ini"), "[s]\ncount=100\n");
}

TEST(ConfigManagerTest, ADyingConfigurationIsNotHandedOutAndLeavesItsSuccessorInTheTable) {
    const Place thePlace;
    const vxRef<vxConfigManager> theManager = NewManager();
    vxRef<vxManagedConfig> theDying = theManager->GetConfig("a.ini");
    vxManagedConfig* const theObject = theDying.Get();

    theManager->Lock(true);  // the destructor needs the mutex, and waits
    std::thread theOther([&] { theDying = 0; });
    while (theObject->_GetRefCount() != 0) {
        std::this_thread::yield();
    }
    const vxRef<vxManagedConfig> theNext = theManager->GetConfig("a.ini");
    EXPECT_NE(theNext.Get(), theObject);
    theManager->Lock(false);
    theOther.join();
    EXPECT_TRUE(theManager->GetConfig("a.ini") == theNext);
}

TEST(ConfigManagerTest, ThreadsNeverShareADyingConfiguration) {
    constexpr int kRounds = 2000;
    const Place thePlace;
    thePlace.Dir().Write("ro/a.ini", "[s]\nk=1\n");
    const vxRef<vxConfigManager> theManager = NewManager();
    const vxCString theName("a.ini");
    Latch theStart(2);
    const auto theWork = [&](int* aGood) {
        theStart.ArriveAndWait();
        for (int i = 0; i < kRounds; ++i) {
            const vxRef<vxManagedConfig> theConfig = theManager->GetConfig(theName);
            *aGood += theConfig->Lock(NULL)->GetInt32("s", "k", 0);
            theConfig->Unlock(false);
        }
    };
    int theGood = 0;
    int theOthersGood = 0;
    std::thread theOther(theWork, &theOthersGood);
    theWork(&theGood);
    theOther.join();
    EXPECT_EQ(theGood, kRounds);
    EXPECT_EQ(theOthersGood, kRounds);
    EXPECT_EQ(theManager->_GetRefCount(), 1);
}

}  // namespace
