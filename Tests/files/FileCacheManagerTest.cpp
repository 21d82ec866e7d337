#include "vx/FileCacheManager.h"

#include <gmock/gmock.h>
#include <libvxOS/Dir.h>
#include <libvxOS/File.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/Environment.h"
#include "support/Forward.h"
#include "support/Latch.h"
#include "support/Reports.h"
#include "support/ScriptedClock.h"
#include "support/ScriptedDate.h"
#include "support/ScriptedIO.h"
#include "support/ScriptedLocks.h"
#include "support/TempDir.h"
#include "support/Text.h"
#include "vx/File.h"

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;
using vxtest::Environment;
using vxtest::Latch;
using vxtest::Reports;
using vxtest::ScriptedClock;
using vxtest::ScriptedDate;
using vxtest::ScriptedIO;
using vxtest::TempDir;
using vxtest::Text;

namespace {

// Files that cannot be removed: those whose path ends with the text.
std::string sUnremovable;
// What the disk says about the creation of a file: nothing, a date, or that it fails.
enum class Creation { kReal, kGiven, kFails };
Creation sCreation = Creation::kReal;
vxtimeval sCreationTime;

// Keeps files whose path ends with the text on the disk for as long as it lives.
class Unremovable {
public:
    explicit Unremovable(const std::string& anEnd) { sUnremovable = anEnd; }
    ~Unremovable() { sUnremovable.clear(); }
    Unremovable(const Unremovable&) = delete;
    Unremovable& operator=(const Unremovable&) = delete;
};

// Answers for the dates of all files for as long as it lives.
class GivenCreation {
public:
    GivenCreation(Creation aCreation, vxtimeval aTime) {
        sCreation = aCreation;
        sCreationTime = aTime;
    }
    ~GivenCreation() { sCreation = Creation::kReal; }
    GivenCreation(const GivenCreation&) = delete;
    GivenCreation& operator=(const GivenCreation&) = delete;
};

// Makes another process the faster one whenever a directory is made.
bool sOtherIsFaster = false;
// How often files were opened with other permissions than reading and writing for all.
std::atomic<int> sOtherPermissions{0};

bool EndsWith(const std::string& aText, const std::string& anEnd) {
    return aText.size() >= anEnd.size() &&
           aText.compare(aText.size() - anEnd.size(), anEnd.size(), anEnd) == 0;
}

}  // namespace

int vxFile_Remove(const char* aPath) {
    return !sUnremovable.empty() && EndsWith(aPath, sUnremovable)
               ? kvxFileErrorUnknown
               : VXTEST_REAL(vxFile_Remove)(aPath);
}

int vxFile_Open(const char* aPath, int aFlags, int aPermissions, vxFileFD* aFD) {
    sOtherPermissions += aPermissions == 3 ? 0 : 1;
    return VXTEST_REAL(vxFile_Open)(aPath, aFlags, aPermissions, aFD);
}

int vxDir_Create(const char* aPath) {
    const int theResult = VXTEST_REAL(vxDir_Create)(aPath);
    return sOtherIsFaster ? kvxFileErrorUnknown : theResult;
}

int vxFile_GetTimes(const char* aPath, vxtimeval* aCreation, vxtimeval* anAccess,
                    vxtimeval* aModification) {
    if (sCreation == Creation::kFails) {
        return kvxFileErrorUnknown;
    }
    const int theResult = VXTEST_REAL(vxFile_GetTimes)(aPath, aCreation, anAccess, aModification);
    if (sCreation == Creation::kGiven && aCreation != NULL) {
        *aCreation = sCreationTime;
    }
    return theResult;
}

namespace {

constexpr int kOpenRead = kvxFileCacheOpenMode_CreateReadWrite_OpenRead;

using Manager = std::unique_ptr<vxFileCacheManager>;
using File = std::unique_ptr<vxFile>;

Manager NewManager(const TempDir& aDir, uint32_t aMaxSize = UINT32_MAX) {
    return Manager(vxFileCacheManager::New(aMaxSize, aDir.Path().c_str(), "", ""));
}

File Open(const Manager& aManager, const std::string& aName, bool* aCreated = NULL,
          int aMode = kOpenRead) {
    bool theCreated = true;
    File theFile(aManager->OpenCachedFile(aName.c_str(), &theCreated, aMode));
    if (aCreated != NULL) {
        *aCreated = theCreated;
    }
    return theFile;
}

// Creates a file of so many bytes and reports it.
void Produce(const Manager& aManager, const std::string& aName, size_t aSize) {
    bool theCreated = false;
    const File theFile = Open(aManager, aName, &theCreated);
    ASSERT_TRUE(theCreated) << aName;
    const std::string theBytes(aSize, 'x');
    ASSERT_EQ(theFile->Write(theBytes.data(), aSize), aSize);
    aManager->SetCachedFileState(aName.c_str(), theFile.get(), true);
}

// The records of the cache, without those of the files below.
std::vector<std::string> CacheTexts(const Reports& aReports) {
    std::vector<std::string> theTexts;
    for (const vxtest::LogRecord& theRecord : aReports.Records()) {
        if (theRecord.mModule == VXLOG_M_FILECACHE) {
            theTexts.push_back("EWID"[theRecord.mLevel - 1] + (" " + theRecord.mText));
        }
    }
    return theTexts;
}

struct Removals {
    std::vector<std::string> mNames;
    std::function<void(const char*)> mThen;  // runs once

    static void Note(void* aData, const char* aName) {
        Removals* theRemovals = static_cast<Removals*>(aData);
        theRemovals->mNames.push_back(aName);
        std::function<void(const char*)> theAction;
        theAction.swap(theRemovals->mThen);
        if (theAction) {
            theAction(aName);
        }
    }
};

// Records

TEST(FileCacheInfoTest, StatesAndModesHaveTheirNumbers) {
    EXPECT_EQ(kvxFileCacheState_Ready, 0);
    EXPECT_EQ(kvxFileCacheState_Caching, 1);
    EXPECT_EQ(kvxFileCacheState_Stale, 2);
    EXPECT_EQ(kvxFileCacheOpenMode_CreateReadWrite_OpenRead, 0);
    EXPECT_EQ(kvxFileCacheOpenMode_CreateRead_OpenRead, 1);
    EXPECT_EQ(kvxFileCacheOpenMode_CreateRead_OpenReadWrite, 2);
    EXPECT_EQ(kvxFileCacheOpenMode_CreateReadWrite, 3);
}

TEST(FileCacheInfoTest, RecordsStartWithTheirNameAlone) {
    std::string theName = "a";
    vxFileCacheInfo* theInfo = vxFileCacheInfo_New(theName.c_str());
    theName = "b";
    EXPECT_STREQ(theInfo->mFileName, "a");
    EXPECT_EQ(theInfo->mFileSize, 0);
    EXPECT_EQ(theInfo->mDateTime, 0);
    EXPECT_EQ(theInfo->mState, kvxFileCacheState_Ready);
    vxFileCacheInfo_Delete(theInfo);
    vxFileCacheInfo_Delete(NULL);
}

TEST(FileCacheInfoTest, TheOrderLooksAtTheStateOfTheFirstRecordOnly) {
    const struct {
        int mLeftState;
        int mLeftDate;
        int mRightState;
        int mRightDate;
        int mOrder;
    } theRows[] = {
        {0, 1, 0, 2, -1}, {0, 2, 0, 2, 0},  {0, 3, 0, 2, 1}, {2, 9, 0, 1, -1}, {2, 9, 1, 1, -1},
        {2, 2, 2, 2, -1}, {1, 1, 0, 9, 1},  {1, 1, 2, 9, 1}, {1, 1, 1, 1, 1},  {0, 9, 2, 1, 1},
        {0, 1, 2, 9, -1}, {0, 1, 1, 9, -1}, {0, 9, 1, 1, 1}, {0, 5, 1, 5, 0},
    };
    for (const auto& theRow : theRows) {
        SCOPED_TRACE(testing::Message() << theRow.mLeftState << " " << theRow.mLeftDate << " / "
                                        << theRow.mRightState << " " << theRow.mRightDate);
        char theName[] = "x";
        const vxFileCacheInfo theLeft = {0, theRow.mLeftDate, theName, theRow.mLeftState};
        const vxFileCacheInfo theRight = {0, theRow.mRightDate, theName, theRow.mRightState};
        EXPECT_EQ(vxFileCacheInfo_Sort(&theLeft, &theRight), theRow.mOrder);
    }
}

// Making a manager

TEST(FileCacheManagerTest, WithoutItsBaseDirectoryThereIsNone) {
    Reports theReports;
    TempDir theDir;
    for (const std::string& theBase : {theDir / "absent", theDir.Write("file")}) {
        SCOPED_TRACE(theBase);
        theReports.Clear();
        EXPECT_EQ(vxFileCacheManager::New(10, theBase.c_str(), "a", "b"), nullptr);
        EXPECT_THAT(CacheTexts(theReports),
                    ElementsAre("E Cannot create temporary directory, base directory is "
                                "unspecified\n"));
    }
    EXPECT_FALSE(theDir.Has("absent"));
}

TEST(FileCacheManagerTest, WithoutABaseThePlatformsCacheDirectoryIsTaken) {
    const TempDir theDir;
    const Environment theVariable("VXCACHEPATH", theDir.Path().c_str());
    const Manager theManager(vxFileCacheManager::New(10, "", "a", "b"));
    ASSERT_NE(theManager, nullptr);
    EXPECT_EQ(Text(theManager->GetFullPath("f")), theDir / "a/b/f");
    EXPECT_TRUE(theDir.Has("a/b"));
}

TEST(FileCacheManagerTest, SubDirectoriesAreMadeOneInTheOther) {
    const struct {
        const char* mSubDir1;
        const char* mSubDir2;
        const char* mPath;
    } theRows[] = {{"", "", "f"}, {"a", "", "a/f"}, {"", "b", "b/f"}, {"c", "d", "c/d/f"}};
    TempDir theDir;
    theDir.MakeDir("c");
    for (const auto& theRow : theRows) {
        SCOPED_TRACE(theRow.mPath);
        const Manager theManager(
            vxFileCacheManager::New(10, theDir.Path().c_str(), theRow.mSubDir1, theRow.mSubDir2));
        ASSERT_NE(theManager, nullptr);
        EXPECT_EQ(Text(theManager->GetFullPath("f")), theDir / theRow.mPath);
        Produce(theManager, "f", 1);
        EXPECT_TRUE(theDir.Has(theRow.mPath));
    }
}

TEST(FileCacheManagerTest, SubDirectoriesMayBeMadeByOthersMeanwhile) {
    const TempDir theDir;
    sOtherIsFaster = true;
    const Manager theManager(vxFileCacheManager::New(10, theDir.Path().c_str(), "a", "b"));
    sOtherIsFaster = false;
    ASSERT_NE(theManager, nullptr);
    Produce(theManager, "f", 1);
    EXPECT_TRUE(theDir.Has("a/b/f"));
}

TEST(FileCacheManagerTest, FilesAreMadeForAllToReadAndWrite) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    sOtherPermissions = 0;
    Produce(theManager, "a", 1);
    EXPECT_NE(Open(theManager, "a"), nullptr);
    EXPECT_EQ(sOtherPermissions, 0);
}

TEST(FileCacheManagerTest, SubDirectoriesThatCannotBeMadeAreNamed) {
    const struct {
        const char* mSubDir1;
        const char* mSubDir2;
        const char* mFailing;
        const char* mWhole;
    } theRows[] = {
        {"file", "", "/file/", "//file"},
        {"", "file", "/file/", "//file"},
        {"file", "b", "/file/", "//file/b"},
        {"dir", "file", "/dir/file/", "//dir/file"},
    };
    TempDir theDir;
    theDir.MakeDir("dir");
    theDir.Write("dir/file");
    theDir.Write("file");
    for (const auto& theRow : theRows) {
        SCOPED_TRACE(theRow.mWhole);
        Reports theReports;
        EXPECT_EQ(
            vxFileCacheManager::New(10, theDir.Path().c_str(), theRow.mSubDir1, theRow.mSubDir2),
            nullptr);
        EXPECT_THAT(CacheTexts(theReports), ElementsAre("E Cannot create sub directory '" +
                                                            theDir.Path() + theRow.mFailing + "'\n",
                                                        "E Cannot create temporary directory '" +
                                                            theDir.Path() + theRow.mWhole + "'\n"));
    }
}

TEST(FileCacheManagerTest, FilesFoundAtTheStartAreReady) {
    Reports theReports;
    TempDir theDir;
    theDir.Write("a", std::string(1000, 'a'));
    theDir.Write(".hidden", std::string(1000, 'h'));
    theDir.Write("name.", std::string(47, 'n'));  // a path name would drop the dot
    theDir.MakeDir("sub");
    const Manager theManager = NewManager(theDir);
    std::vector<std::string> theTexts = CacheTexts(theReports);
    ASSERT_EQ(theTexts.size(), 6u);
    EXPECT_EQ(theTexts[0], "I Caching temporary directory " + theDir.Path() + "/...\n");
    EXPECT_THAT(std::vector<std::string>(theTexts.begin() + 1, theTexts.begin() + 4),
                UnorderedElementsAre("D (Build) Adding file 'a' to cache\n",
                                     "D (Build) Adding file '.hidden' to cache\n",
                                     "D (Build) Adding file 'name.' to cache\n"));
    EXPECT_EQ(theTexts[4], "I Cache size is 1 KB\n");  // of 2047 bytes
    EXPECT_THAT(theTexts[5],
                MatchesRegex("I Caching temporary directory .*/: done in [0-9]+ ms\n"));

    for (const char* theName : {"a", ".hidden", "name."}) {
        SCOPED_TRACE(theName);
        bool theCreated = true;
        EXPECT_NE(Open(theManager, theName, &theCreated), nullptr);
        EXPECT_FALSE(theCreated);
    }
    EXPECT_EQ(Open(theManager, "sub"), nullptr);
}

TEST(FileCacheManagerTest, AFullDirectoryIsLeftAloneAtTheStart) {
    TempDir theDir;
    theDir.Write("a", std::string(1000, 'a'));
    const Manager theManager = NewManager(theDir, 10);
    EXPECT_TRUE(theDir.Has("a"));
}

// Opening

TEST(FileCacheManagerTest, ModesSayHowAFileIsCreatedAndHowItIsOpened) {
    const struct {
        int mMode;
        bool mfCreatesWritable;
        bool mfOpens;
        bool mfOpensWritable;
    } theRows[] = {
        {kvxFileCacheOpenMode_CreateReadWrite_OpenRead, true, true, false},
        {kvxFileCacheOpenMode_CreateRead_OpenRead, false, true, false},
        {kvxFileCacheOpenMode_CreateRead_OpenReadWrite, false, true, true},
        {kvxFileCacheOpenMode_CreateReadWrite, true, false, false},
    };
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    for (const auto& theRow : theRows) {
        SCOPED_TRACE(theRow.mMode);
        const std::string theName = std::to_string(theRow.mMode);
        char theByte = 'x';
        bool theCreated = false;
        const File theNew = Open(theManager, theName, &theCreated, theRow.mMode);
        ASSERT_NE(theNew, nullptr);
        EXPECT_TRUE(theCreated);
        EXPECT_EQ(theNew->Write(&theByte, 1), theRow.mfCreatesWritable ? 1u : 0u);
        EXPECT_EQ(theNew->Seek(0, vxFileSeekMode_Begin), 0);
        EXPECT_EQ(theNew->Read(&theByte, 1), theRow.mfCreatesWritable ? 1 : 0);
        theManager->SetCachedFileState(theName.c_str(), theNew.get(), true);

        const File theOld = Open(theManager, theName, &theCreated, theRow.mMode);
        EXPECT_FALSE(theCreated);
        ASSERT_EQ(theOld != nullptr, theRow.mfOpens);
        if (theOld != nullptr) {
            EXPECT_EQ(theOld->Write(&theByte, 1), theRow.mfOpensWritable ? 1u : 0u);
            EXPECT_GE(theOld->Read(&theByte, 1), 0);
        }
    }
}

TEST(FileCacheManagerTest, NoModeNoFile) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    for (const int theMode : {-1, 4, INT_MAX, INT_MIN}) {
        bool theCreated = true;
        EXPECT_EQ(Open(theManager, "a", &theCreated, theMode), nullptr);
        EXPECT_FALSE(theCreated);
    }
    EXPECT_FALSE(theDir.Has("a"));
}

TEST(FileCacheManagerTest, ACreatedFileIsLogged) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    Reports theReports;
    const File theFile = Open(theManager, "a");
    EXPECT_THAT(CacheTexts(theReports), ElementsAre("D Adding file 'a' to cache\n"));
    EXPECT_EQ(theFile->Length(), 0);
}

TEST(FileCacheManagerTest, CreateReadWriteNeverOpensWhatIsReady) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    Produce(theManager, "a", 3);
    bool theCreated = true;
    EXPECT_EQ(Open(theManager, "a", &theCreated, kvxFileCacheOpenMode_CreateReadWrite), nullptr);
    EXPECT_FALSE(theCreated);
    EXPECT_EQ(theDir.Read("a"), "xxx");

    std::filesystem::remove(theDir / "a");
    EXPECT_EQ(Open(theManager, "a", &theCreated, kvxFileCacheOpenMode_CreateReadWrite), nullptr);
    EXPECT_FALSE(theCreated);
    EXPECT_FALSE(theDir.Has("a"));
}

TEST(FileCacheManagerTest, AFileDeletedByOthersIsCreatedAnew) {
    Reports theReports;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    Removals theRemovals;
    theManager->SetFileRemovedCallBack(Removals::Note, &theRemovals);
    Produce(theManager, "other", 3);
    Produce(theManager, "a", 3);
    std::filesystem::remove(theDir / "a");
    theReports.Clear();
    bool theCreated = false;
    EXPECT_NE(Open(theManager, "a", &theCreated), nullptr);
    EXPECT_TRUE(theCreated);
    EXPECT_TRUE(theDir.Has("a"));
    EXPECT_THAT(theRemovals.mNames, ElementsAre("a"));
    EXPECT_THAT(CacheTexts(theReports),
                ElementsAre("D Removing file 'a' from cache\n", "D Adding file 'a' to cache\n"));
}

TEST(FileCacheManagerTest, AFileThatOthersReplaceByADirectoryCannotBeHad) {
    TempDir theDir;
    const Manager theManager = NewManager(theDir);
    for (const bool theIsRemoved : {false, true}) {
        SCOPED_TRACE(theIsRemoved);
        Produce(theManager, "a", 3);
        std::filesystem::remove(theDir / "a");
        theDir.MakeDir("a");
        if (theIsRemoved) {
            EXPECT_TRUE(theManager->RemoveTempFile("a"));  // there is no such file
        }
        EXPECT_EQ(Open(theManager, "a"), nullptr);
        EXPECT_EQ(Open(theManager, "a"), nullptr);
        EXPECT_TRUE(theDir.Has("a"));
        std::filesystem::remove(theDir / "a");
    }
}

TEST(FileCacheManagerTest, AFileThatOthersPutThereIsUnknownUntilTheDirectoryIsReadAgain) {
    TempDir theDir;
    Manager theManager = NewManager(theDir);
    theDir.Write("a", "theirs");
    bool theCreated = true;
    EXPECT_EQ(Open(theManager, "a", &theCreated), nullptr);
    EXPECT_FALSE(theCreated);
    EXPECT_EQ(theDir.Read("a"), "theirs");
    theManager = NewManager(theDir);
    EXPECT_NE(Open(theManager, "a", &theCreated), nullptr);
    EXPECT_FALSE(theCreated);
}

TEST(FileCacheManagerTest, WithoutItsDirectoryNothingIsCreated) {
    TempDir theDir;
    theDir.MakeDir("cache");
    const Manager theManager(vxFileCacheManager::New(100, theDir.Path().c_str(), "cache", ""));
    Produce(theManager, "a", 3);
    std::filesystem::remove_all(theDir / "cache");
    EXPECT_EQ(Open(theManager, "a"), nullptr);
    EXPECT_EQ(Open(theManager, "b"), nullptr);
    theDir.MakeDir("cache");
    Produce(theManager, "a", 3);
    EXPECT_EQ(theDir.Read("cache/a"), "xxx");
}

TEST(FileCacheManagerTest, NamesThatLeadElsewhereAreRefused) {
    TempDir theDir;
    theDir.Write("outside", "x");
    theDir.MakeDir("cache");
    const Manager theManager(vxFileCacheManager::New(100, theDir.Path().c_str(), "cache", ""));
    Produce(theManager, "a", 3);
    Reports theReports;
    const vxCString theNames[] = {
        "",
        ".",
        "..",
        "../outside",
        "/a",
        "a/",
        "./a",
        "b/c",
        vxCString("a\0", 2),
        vxCString("\0a", 2),
        std::string(256, 'n').c_str(),
    };
    for (const vxCString& theName : theNames) {
        SCOPED_TRACE(theName.c_str());
        bool theCreated = true;
        EXPECT_EQ(theManager->OpenCachedFile(theName, &theCreated, kOpenRead), nullptr);
        EXPECT_FALSE(theCreated);
        EXPECT_FALSE(theManager->RemoveTempFile(theName));
        EXPECT_EQ(Text(theManager->GetFullPath(theName)), "");
        int64_t theSize = 77;
        long theDate = 78;
        EXPECT_FALSE(theManager->FetchInfoForFile(theName, &theSize, &theDate));
        EXPECT_EQ(theSize, 77);
        EXPECT_EQ(theDate, 78);
        theManager->SetCachedFileState(theName, NULL, false);
    }
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    EXPECT_TRUE(theDir.Has("outside"));
    EXPECT_TRUE(theDir.Has("cache/a"));
    for (const std::string& theName : {std::string(255, 'n'), std::string("..."), std::string(".a"),
                                       std::string("a."), std::string("*")}) {
        SCOPED_TRACE(theName);
        Produce(theManager, theName, 1);
        EXPECT_TRUE(theDir.Has("cache/" + theName));
        EXPECT_TRUE(theManager->RemoveTempFile(theName.c_str()));
        EXPECT_FALSE(theDir.Has("cache/" + theName));
    }
}

// Reporting

TEST(FileCacheManagerTest, ACompleteFileStaysOpenForItsProducer) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    const File theFile = Open(theManager, "a");
    theManager->SetCachedFileState("a", theFile.get(), true);
    EXPECT_TRUE(theFile->IsOpened());
    EXPECT_EQ(theFile->Write("x", 1), 1u);
}

TEST(FileCacheManagerTest, AFailedFileIsClosedAndRemoved) {
    Reports theReports;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    Removals theRemovals;
    theManager->SetFileRemovedCallBack(Removals::Note, &theRemovals);
    const File theFile = Open(theManager, "a");
    theFile->Write("x", 1);
    theReports.Clear();
    theManager->SetCachedFileState("a", theFile.get(), false);
    EXPECT_FALSE(theFile->IsOpened());
    EXPECT_FALSE(theDir.Has("a"));
    EXPECT_THAT(theRemovals.mNames, ElementsAre("a"));
    EXPECT_THAT(CacheTexts(theReports), ElementsAre("D Removing file 'a' from cache\n"));
    bool theCreated = false;
    EXPECT_NE(Open(theManager, "a", &theCreated), nullptr);
    EXPECT_TRUE(theCreated);
    theManager->SetCachedFileState("a", NULL, false);
    EXPECT_FALSE(theDir.Has("a"));
}

TEST(FileCacheManagerTest, UnknownFilesAreNotReported) {
    Reports theReports;
    TempDir theDir;
    const Manager theManager = NewManager(theDir);
    theDir.Write("a", "x");
    vxFile theFile(theDir.Write("b").c_str(), vxFileOpenMode_Read);
    theReports.Clear();
    theManager->SetCachedFileState("a", &theFile, true);
    theManager->SetCachedFileState("a", &theFile, false);
    EXPECT_TRUE(theFile.IsOpened());
    EXPECT_TRUE(theDir.Has("a"));
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(FileCacheManagerTest, AFileIsReportedOnce) {
    Reports theReports;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    const File theFile = Open(theManager, "a");
    ASSERT_TRUE(theFile->ChangeSize(600));
    theManager->SetCachedFileState("a", theFile.get(), true);
    theManager->SetCachedFileState("a", theFile.get(), true);  // counts no second time
    theManager->SetCachedFileState("a", theFile.get(), false);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("theInfo->mState == kvxFileCacheState_Caching",
                            "theInfo->mState == kvxFileCacheState_Caching"));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, HasSubstr("FileCacheManager.cpp"));
    EXPECT_TRUE(theFile->IsOpened());
    EXPECT_TRUE(theDir.Has("a"));
}

TEST(FileCacheManagerTest, AFileMayBeClosedBeforeItIsReported) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    for (const char* theName : {"a", "b"}) {
        const File theFile = Open(theManager, theName);
        ASSERT_TRUE(theFile->ChangeSize(600));
        theFile->Close();
        Reports theReports;
        theManager->SetCachedFileState(theName, theName[0] == 'a' ? theFile.get() : NULL, true);
        if (theName[0] == 'b') {
            EXPECT_EQ(CacheTexts(theReports)[0],
                      "I About to remove files from cache current size 1200 > 1000\n");
        }
    }
    EXPECT_FALSE(theDir.Has("a"));
    EXPECT_TRUE(theDir.Has("b"));
}

TEST(FileCacheManagerTest, AFileThatIsGoneWhenItIsReportedCountsNothing) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 100);
    const File theFile = Open(theManager, "gone");
    ASSERT_TRUE(theFile->ChangeSize(60));
    theFile->Close();
    std::filesystem::remove(theDir / "gone");
    theManager->SetCachedFileState("gone", theFile.get(), true);
    Produce(theManager, "a", 100);
    EXPECT_TRUE(theDir.Has("a"));
    Reports theReports;
    Produce(theManager, "b", 1);
    EXPECT_THAT(
        CacheTexts(theReports),
        ElementsAre("D Adding file 'b' to cache\n",
                    "I About to remove files from cache current size 101 > 100\n",
                    "D Removing file 'gone' from cache\n", "D Removing file 'a' from cache\n",
                    "I After removal cache size is 1\n"));
}

TEST(FileCacheManagerTest, TheSizeFoundAtTheStartIsLoggedInWholeKilobytes) {
    const struct {
        size_t mBytes;
        const char* mText;
    } theRows[] = {{0, "0"}, {1023, "0"}, {1024, "1"}, {2047, "1"}, {2048, "2"}, {1048576, "1024"}};
    for (const auto& theRow : theRows) {
        SCOPED_TRACE(theRow.mBytes);
        const TempDir theDir;
        theDir.Write("file", std::string(theRow.mBytes, 'x'));
        Reports theReports;
        const Manager theManager = NewManager(theDir);
        const std::string theText = std::string("I Cache size is ") + theRow.mText + " KB\n";
        EXPECT_THAT(CacheTexts(theReports), Contains(theText));
    }
}

// Making room

TEST(FileCacheManagerTest, TheOlderFileMakesRoom) {
    Reports theReports;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    Removals theRemovals;
    theManager->SetFileRemovedCallBack(Removals::Note, &theRemovals);
    std::optional<ScriptedDate> theDate(1000);
    Produce(theManager, "old", 600);
    theDate.emplace(1001);
    theReports.Clear();
    Produce(theManager, "new", 600);
    EXPECT_THAT(
        CacheTexts(theReports),
        ElementsAre("D Adding file 'new' to cache\n",
                    "I About to remove files from cache current size 1200 > 1000\n",
                    "D Removing file 'old' from cache\n", "I After removal cache size is 600\n"));
    EXPECT_THAT(theRemovals.mNames, ElementsAre("old"));
    EXPECT_FALSE(theDir.Has("old"));
    EXPECT_TRUE(theDir.Has("new"));
}

TEST(FileCacheManagerTest, ATotalAtTheLimitFits) {
    Reports theReports;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    Produce(theManager, "a", 500);
    theReports.Clear();
    Produce(theManager, "b", 500);
    EXPECT_THAT(CacheTexts(theReports), ElementsAre("D Adding file 'b' to cache\n"));
    Produce(theManager, "c", 1);
    EXPECT_FALSE(theDir.Has("a"));
    EXPECT_TRUE(theDir.Has("b"));
}

TEST(FileCacheManagerTest, AsManyFilesGoAsNeeded) {
    std::optional<ScriptedDate> theDate;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    for (int i = 0; i < 5; ++i) {
        theDate.emplace(1000 + i);
        Produce(theManager, std::to_string(i), 200);
    }
    theDate.emplace(2000);
    Produce(theManager, "big", 401);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(theDir.Has(std::to_string(i)), i >= 3) << i;
    }
}

TEST(FileCacheManagerTest, OpeningAFileMakesItYounger) {
    std::optional<ScriptedDate> theDate(1000);
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    Produce(theManager, "a", 500);
    theDate.emplace(1001);
    Produce(theManager, "b", 500);
    theDate.emplace(1002);
    Open(theManager, "a");
    theDate.emplace(1003);
    Produce(theManager, "c", 500);
    EXPECT_TRUE(theDir.Has("a"));
    EXPECT_FALSE(theDir.Has("b"));
}

TEST(FileCacheManagerTest, TheReportCountsAsAUse) {
    std::optional<ScriptedDate> theDate(1000);
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    const File theFile = Open(theManager, "a");
    theDate.emplace(1001);
    Produce(theManager, "b", 500);
    theDate.emplace(1002);
    ASSERT_TRUE(theFile->ChangeSize(500));
    theManager->SetCachedFileState("a", theFile.get(), true);
    theDate.emplace(1003);
    Produce(theManager, "c", 500);
    EXPECT_TRUE(theDir.Has("a"));
    EXPECT_FALSE(theDir.Has("b"));
}

TEST(FileCacheManagerTest, FilesFoundAtTheStartAreAsOldAsTheirCreation) {
    TempDir theDir;
    theDir.Write("found", std::string(500, 'x'));
    for (const int theCreation : {1000, 3000}) {
        SCOPED_TRACE(theCreation);
        theDir.Write("found", std::string(500, 'x'));
        const GivenCreation theGiven(Creation::kGiven, {theCreation, 0});
        std::optional<ScriptedDate> theDate(2000);
        const Manager theManager = NewManager(theDir, 1000);
        Produce(theManager, "made", 500);
        theDate.emplace(4000);
        Produce(theManager, "last", 500);
        EXPECT_EQ(theDir.Has("found"), theCreation == 3000);
        EXPECT_EQ(theDir.Has("made"), theCreation == 1000);
        EXPECT_TRUE(theManager->Empty(false));
    }
}

TEST(FileCacheManagerTest, AClockSetBackDoesNotMakeTheYoungestFileTheOldest) {
    std::optional<ScriptedDate> theDate(100000);
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    Produce(theManager, "before", 600);
    theDate.emplace(100000 - 3600);
    Produce(theManager, "after", 600);
    EXPECT_FALSE(theDir.Has("before"));
    EXPECT_TRUE(theDir.Has("after"));
}

TEST(FileCacheManagerTest, FilesBeingWrittenStayAndEndTheSearch) {
    Reports theReports;
    std::optional<ScriptedDate> theDate(1000);
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    const File theFirst = Open(theManager, "first");
    ASSERT_TRUE(theFirst->ChangeSize(5000));  // not counted yet
    theDate.emplace(1001);
    Produce(theManager, "a", 800);
    theDate.emplace(1002);
    Produce(theManager, "b", 800);
    EXPECT_TRUE(theDir.Has("first"));
    EXPECT_FALSE(theDir.Has("a"));
    EXPECT_TRUE(theDir.Has("b"));
    theReports.Clear();
    theDate.emplace(1003);
    Produce(theManager, "c", 5000);
    EXPECT_TRUE(theDir.Has("first"));
    EXPECT_FALSE(theDir.Has("b"));
    EXPECT_FALSE(theDir.Has("c"));
    // The last file was the whole total.
    EXPECT_EQ(CacheTexts(theReports).back(), "I After removal cache size is 5000\n");
}

TEST(FileCacheManagerTest, AFileThatIsTheWholeTotalLeavesItAsItIs) {
    Reports theReports;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    Produce(theManager, "a", 1500);
    EXPECT_FALSE(theDir.Has("a"));
    EXPECT_EQ(CacheTexts(theReports).back(), "I After removal cache size is 1500\n");
    theReports.Clear();
    Produce(theManager, "b", 100);
    EXPECT_FALSE(theDir.Has("b"));
    EXPECT_EQ(CacheTexts(theReports).back(), "I After removal cache size is 1500\n");
    EXPECT_TRUE(theManager->Empty(false));
    Produce(theManager, "b", 100);
    EXPECT_TRUE(theDir.Has("b"));
}

TEST(FileCacheManagerTest, TotalsAreCountedBeyondTheLargestLimit) {
    Reports theReports;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, UINT32_MAX);
    for (const char* theName : {"a", "b"}) {
        const File theFile = Open(theManager, theName);
        ASSERT_TRUE(theFile->ChangeSize(3000000000));  // a hole
        theReports.Clear();
        theManager->SetCachedFileState(theName, theFile.get(), true);
    }
    EXPECT_FALSE(theDir.Has("a"));
    EXPECT_TRUE(theDir.Has("b"));
    EXPECT_EQ(CacheTexts(theReports).back(), "I After removal cache size is 3000000000\n");
}

TEST(FileCacheManagerTest, TheOnlyFileRemovedByNameStaysInTheTotal) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    for (const bool theOthersRemoveIt : {false, true}) {
        SCOPED_TRACE(theOthersRemoveIt);
        Produce(theManager, "a", 600);
        if (theOthersRemoveIt) {
            std::filesystem::remove(theDir / "a");
            theManager->Cache_FileRemoved("a");
        } else {
            EXPECT_TRUE(theManager->RemoveTempFile("a"));
        }
        Reports theReports;
        Produce(theManager, "b", 500);
        EXPECT_EQ(CacheTexts(theReports)[1],
                  "I About to remove files from cache current size 1100 > 1000\n");
        theManager->Empty(false);
    }
}

TEST(FileCacheManagerTest, StaleFilesGoFirstWhateverTheirDate) {
    std::optional<ScriptedDate> theDate(1000);
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    Produce(theManager, "old", 400);
    theDate.emplace(1001);
    Produce(theManager, "stale", 400);
    {
        const Unremovable theFailure("/stale");
        EXPECT_FALSE(theManager->RemoveTempFile("stale"));
    }
    theDate.emplace(1002);
    Produce(theManager, "new", 400);
    EXPECT_TRUE(theDir.Has("old"));
    EXPECT_FALSE(theDir.Has("stale"));
    EXPECT_TRUE(theDir.Has("new"));
}

TEST(FileCacheManagerTest, AFileThatCannotGoIsPassedOver) {
    Reports theReports;
    std::optional<ScriptedDate> theDate(1000);
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    Produce(theManager, "a", 400);
    theDate.emplace(1001);
    Produce(theManager, "b", 400);
    theDate.emplace(1002);
    theReports.Clear();
    const Unremovable theFailure("/a");
    Produce(theManager, "c", 400);
    EXPECT_THAT(
        CacheTexts(theReports),
        ElementsAre("D Adding file 'c' to cache\n",
                    "I About to remove files from cache current size 1200 > 1000\n",
                    "W Cannot remove file 'a', file set to stale state\n",
                    "D Removing file 'b' from cache\n", "I After removal cache size is 800\n"));
    EXPECT_TRUE(theDir.Has("a"));
    EXPECT_FALSE(theDir.Has("b"));
}

// Removing

TEST(FileCacheManagerTest, RemovingTellsWhetherTheFileIsGone) {
    const struct {
        bool mfOnDisk;
        bool mfKnown;
        bool mfRemovable;
        bool mfResult;
        const char* mText;
    } theRows[] = {
        {true, true, true, true, "D Removing file 'a' from cache\n"},
        {false, true, true, true, "D Removing file 'a' from cache\n"},
        {true, true, false, false, "W Cannot remove file 'a', file set to stale state\n"},
        {true, false, true, true, "W Trying to remove a file 'a' not in cache\n"},
        {false, false, true, true, "W Trying to remove a file 'a' not in cache\n"},
        {true, false, false, false, "W Trying to remove a file 'a' not in cache\n"},
    };
    for (const auto& theRow : theRows) {
        SCOPED_TRACE(testing::Message() << theRow.mfOnDisk << theRow.mfKnown << theRow.mfRemovable);
        TempDir theDir;
        const Manager theManager = NewManager(theDir);
        Removals theRemovals;
        theManager->SetFileRemovedCallBack(Removals::Note, &theRemovals);
        if (theRow.mfKnown) {
            Produce(theManager, "a", 1);
        } else {
            theDir.Write("a", "x");
        }
        if (!theRow.mfOnDisk) {
            std::filesystem::remove(theDir / "a");
        }
        std::optional<Unremovable> theFailure;
        if (!theRow.mfRemovable) {
            theFailure.emplace("/a");
        }
        Reports theReports;
        EXPECT_EQ(theManager->RemoveTempFile("a"), theRow.mfResult);
        EXPECT_THAT(CacheTexts(theReports), ElementsAre(theRow.mText));
        EXPECT_EQ(theDir.Has("a"), !theRow.mfRemovable);
        EXPECT_EQ(theRemovals.mNames.size(), theRow.mfKnown && theRow.mfResult ? 1u : 0u);
    }
}

TEST(FileCacheManagerTest, AStaleFileIsRemovedBeforeItIsCreatedAnew) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    Produce(theManager, "a", 3);
    bool theCreated = true;
    {
        const Unremovable theFailure("/a");
        EXPECT_FALSE(theManager->RemoveTempFile("a"));
        EXPECT_EQ(Open(theManager, "a", &theCreated), nullptr);
        EXPECT_FALSE(theCreated);
        EXPECT_EQ(theDir.Read("a"), "xxx");
    }
    // Also for the mode that opens no ready file: this one is not ready.
    EXPECT_NE(Open(theManager, "a", &theCreated, kvxFileCacheOpenMode_CreateReadWrite), nullptr);
    EXPECT_TRUE(theCreated);
    EXPECT_EQ(theDir.Read("a"), "");
}

TEST(FileCacheManagerTest, TheCallbackMayAskTheManager) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    Removals theRemovals;
    theManager->SetFileRemovedCallBack(Removals::Note, &theRemovals);
    Produce(theManager, "a", 1);
    Produce(theManager, "b", 1);
    theRemovals.mThen = [&](const char* aName) {
        theManager->Cache_FileRemoved(aName);
        EXPECT_TRUE(theManager->RemoveTempFile("b"));
    };
    EXPECT_TRUE(theManager->RemoveTempFile("a"));
    EXPECT_THAT(theRemovals.mNames, ElementsAre("a", "b"));
    Produce(theManager, "a", 1);

    theManager->SetFileRemovedCallBack(NULL, NULL);
    EXPECT_TRUE(theManager->RemoveTempFile("a"));
    EXPECT_EQ(theRemovals.mNames.size(), 2u);
}

TEST(FileCacheManagerTest, FilesRemovedByOthersAreForgottenOnRequest) {
    Reports theReports;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    Removals theRemovals;
    theManager->SetFileRemovedCallBack(Removals::Note, &theRemovals);
    Produce(theManager, "a", 600);
    Produce(theManager, "b", 300);
    theReports.Clear();
    theManager->Cache_FileRemoved("a");
    theManager->Cache_FileRemoved("a");
    EXPECT_THAT(CacheTexts(theReports),
                ElementsAre("D Removing file 'a' from cache\n",
                            "E Cannot find file to remove 'a' in cache information\n"));
    EXPECT_TRUE(theDir.Has("a"));
    EXPECT_THAT(theRemovals.mNames, IsEmpty());
    theReports.Clear();
    Produce(theManager, "c", 701);  // the total was 300
    EXPECT_EQ(CacheTexts(theReports)[1],
              "I About to remove files from cache current size 1001 > 1000\n");
}

// Emptying

TEST(FileCacheManagerTest, EmptyRemovesAllFilesAndKeepsTheDirectory) {
    Reports theReports;
    TempDir theDir;
    const Manager theManager = NewManager(theDir);
    Removals theRemovals;
    theManager->SetFileRemovedCallBack(Removals::Note, &theRemovals);
    Produce(theManager, "a", 1);
    const File theFile = Open(theManager, "writing");
    theDir.Write("theirs");
    theDir.Write(".hidden");
    theDir.Write("name.");
    theDir.MakeDir("sub");
    theReports.Clear();
    EXPECT_TRUE(theManager->Empty(false));
    std::vector<std::string> theTexts = CacheTexts(theReports);
    ASSERT_EQ(theTexts.size(), 5u);
    EXPECT_EQ(theTexts[0], "I Emptying temporary directory " + theDir.Path() + "/...\n");
    EXPECT_EQ(theTexts[1], "I Caching temporary directory " + theDir.Path() + "/...\n");
    EXPECT_EQ(theTexts[2], "I Cache size is 0 KB\n");
    EXPECT_THAT(theTexts[4],
                MatchesRegex("I Emptying temporary directory .*/: done in [0-9]+ ms\n"));
    for (const char* theName : {"a", "writing", "theirs", ".hidden", "name."}) {
        EXPECT_FALSE(theDir.Has(theName)) << theName;
    }
    EXPECT_TRUE(theDir.Has("sub"));
    EXPECT_THAT(theRemovals.mNames, IsEmpty());

    theManager->SetCachedFileState("writing", theFile.get(), true);  // not known any more
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    Produce(theManager, "writing", 2);
    EXPECT_EQ(theDir.Read("writing"), "xx");
}

TEST(FileCacheManagerTest, EmptyRemovesTheDirectoryOnRequest) {
    TempDir theDir;
    const Manager theManager(vxFileCacheManager::New(100, theDir.Path().c_str(), "cache", ""));
    Produce(theManager, "a", 1);
    EXPECT_TRUE(theManager->Empty(true));
    EXPECT_FALSE(theDir.Has("cache"));
    EXPECT_TRUE(theManager->Empty(true));  // there is none, and that is what was asked for
}

TEST(FileCacheManagerTest, ADirectoryThatIsNotEmptyStays) {
    TempDir theDir;
    const Manager theManager(vxFileCacheManager::New(100, theDir.Path().c_str(), "cache", ""));
    theDir.MakeDir("cache/sub");
    Reports theReports;
    EXPECT_FALSE(theManager->Empty(true));
    std::vector<std::string> theTexts = CacheTexts(theReports);
    EXPECT_EQ(theTexts[theTexts.size() - 2],
              "W Cannot empty temporary directory '" + theDir.Path() + "/cache/'\n");
    EXPECT_TRUE(theDir.Has("cache/sub"));
}

TEST(FileCacheManagerTest, WhatCannotBeRemovedIsReadAgain) {
    TempDir theDir;
    const Manager theManager(vxFileCacheManager::New(100, theDir.Path().c_str(), "cache", ""));
    Produce(theManager, "stays", 3);
    Produce(theManager, "goes", 3);
    {
        const Unremovable theFailure("/stays");
        EXPECT_FALSE(theManager->RemoveTempFile("stays"));
        EXPECT_FALSE(theManager->Empty(true));
    }
    EXPECT_FALSE(theDir.Has("cache/goes"));
    bool theCreated = true;
    EXPECT_NE(Open(theManager, "stays", &theCreated), nullptr);  // ready again
    EXPECT_FALSE(theCreated);
    EXPECT_EQ(theDir.Read("cache/stays"), "xxx");
}

// Asking the disk

TEST(FileCacheManagerTest, InfoComesFromTheDisk) {
    TempDir theDir;
    const Manager theManager = NewManager(theDir);
    theDir.Write("a", "12345");
    theDir.MakeDir("sub");
    const GivenCreation theGiven(Creation::kGiven, {123456789, 5});
    int64_t theSize = 0;
    long theDate = 0;
    EXPECT_TRUE(theManager->FetchInfoForFile("a", &theSize, &theDate));
    EXPECT_EQ(theSize, 5);
    EXPECT_EQ(theDate, 123456789);
    EXPECT_TRUE(theManager->FetchInfoForFile("a", NULL, NULL));
    theSize = 7;
    theDate = 8;
    EXPECT_FALSE(theManager->FetchInfoForFile("absent", &theSize, &theDate));
    EXPECT_FALSE(theManager->FetchInfoForFile("sub", &theSize, &theDate));
    EXPECT_EQ(theSize, 7);
    EXPECT_EQ(theDate, 8);
}

TEST(FileCacheManagerTest, InfoOfAFileThatTellsNothing) {
    TempDir theDir;
    const Manager theManager = NewManager(theDir);
    theDir.Write("a", "12345");
    const ScriptedDate theNow(5000);
    for (const auto& theCreation : {std::pair(Creation::kFails, vxtimeval{0, 0}),
                                    std::pair(Creation::kGiven, vxtimeval{-1, -1})}) {
        const GivenCreation theGiven(theCreation.first, theCreation.second);
        ScriptedIO theIO;
        theIO.mOpens = {vxtest::Fails(EACCES)};
        int64_t theSize = 7;
        long theDate = 8;
        EXPECT_TRUE(theManager->FetchInfoForFile("a", &theSize, &theDate));
        EXPECT_EQ(theSize, 0);
        EXPECT_EQ(theDate, 5000);
    }
}

// A disk that is full

TEST(FileCacheManagerTest, AFullDiskWhileWritingLeavesNothingBehind) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    ScriptedIO theIO;
    bool theCreated = false;
    const File theFile = Open(theManager, "a", &theCreated);
    ASSERT_TRUE(theCreated);
    theIO.mWrites = {vxtest::Moves(3), vxtest::Fails(ENOSPC), vxtest::Fails(ENOSPC)};
    EXPECT_EQ(theFile->Write("12345", 5), 3u);
    EXPECT_EQ(theFile->Write("45", 2), 0u);
    EXPECT_EQ(theFile->GetErrorCode(), kvxFileErrorNoSpace);
    theManager->SetCachedFileState("a", theFile.get(), false);
    EXPECT_FALSE(theDir.Has("a"));
    Produce(theManager, "a", 1000);  // nothing of the first attempt is counted
    EXPECT_TRUE(theDir.Has("a"));
}

TEST(FileCacheManagerTest, ADeviceThatIsFullIsNoReadyFile) {
    TempDir theDir;
    theDir.Link("a", "/dev/full");
    const Manager theManager = NewManager(theDir);
    const File theFile = Open(theManager, "a", NULL, kvxFileCacheOpenMode_CreateRead_OpenReadWrite);
    ASSERT_NE(theFile, nullptr);
    EXPECT_EQ(theFile->Write("x", 1), 0u);
    EXPECT_EQ(theFile->GetErrorCode(), kvxFileErrorNoSpace);
    EXPECT_TRUE(theManager->Empty(false));  // the link goes
    EXPECT_FALSE(theDir.Has("a"));
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

TEST(FileCacheManagerTest, AFileThatCannotBeCreatedMayBeTriedAgain) {
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    const std::vector<vxtest::IOStep> theScripts[] = {
        {vxtest::Fails(ENOSPC)},
        {vxtest::IOStep{0, 0}, vxtest::Fails(EMFILE)},  // created, and not opened
    };
    for (const std::vector<vxtest::IOStep>& theScript : theScripts) {
        ScriptedIO theIO;
        theIO.mOpens = theScript;
        bool theCreated = true;
        EXPECT_EQ(Open(theManager, "a", &theCreated), nullptr);
        EXPECT_FALSE(theCreated);
        EXPECT_FALSE(theDir.Has("a"));
    }
    Produce(theManager, "a", 1);
}

TEST(FileCacheManagerTest, AReadyFileThatCannotBeOpenedStaysAsOldAsItWas) {
    std::optional<ScriptedDate> theDate(1000);
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 1000);
    Produce(theManager, "a", 500);
    theDate.emplace(1001);
    Produce(theManager, "b", 500);
    theDate.emplace(1002);
    {
        ScriptedIO theIO;
        theIO.mOpens = {vxtest::Fails(EMFILE)};
        bool theCreated = true;
        EXPECT_EQ(Open(theManager, "a", &theCreated), nullptr);
        EXPECT_FALSE(theCreated);
    }
    theDate.emplace(1003);
    Produce(theManager, "c", 500);
    EXPECT_FALSE(theDir.Has("a"));
    EXPECT_TRUE(theDir.Has("b"));
}

// What a manager does with one thread, step by step: the files of the disk by their sizes, the records
// in their order, and what is logged about them.
class Model {
public:
    explicit Model(int64_t aLimit) : mLimit(aLimit) {}

    // The size of the file that is opened; nothing where none is.
    std::optional<int64_t> Open(const std::string& aName, int aMode, int aDate, bool* aCreated) {
        *aCreated = false;
        const auto theRecord = Find(aName);
        if (theRecord != mRecords.end() && theRecord->mState == kvxFileCacheState_Ready) {
            if (aMode == kvxFileCacheOpenMode_CreateReadWrite) {
                return std::nullopt;
            }
            if (mDisk.count(aName) != 0) {
                theRecord->mDate = aDate;
                return mDisk[aName];
            }
        }
        if ((theRecord != mRecords.end() && !Remove(aName)) || mDisk.count(aName) != 0) {
            return std::nullopt;
        }
        mTexts.push_back("D Adding file '" + aName + "' to cache\n");
        mRecords.push_back({aName, 0, aDate, kvxFileCacheState_Caching});
        *aCreated = true;
        return mDisk[aName] = 0;
    }

    void Report(const std::string& aName, int64_t aSize, int aDate, bool afOK) {
        const auto theRecord = Find(aName);
        if (theRecord != mRecords.end() && afOK) {
            *theRecord = {aName, aSize, aDate, kvxFileCacheState_Ready};
            mTotal += aSize;
            MakeRoom();
        } else if (theRecord != mRecords.end()) {
            Remove(aName);
        }
    }

    bool Remove(const std::string& aName) {
        const bool theIsGone = mDisk.count(aName) == 0 || aName != mUnremovable;
        const auto theRecord = Find(aName);
        if (theIsGone) {
            mDisk.erase(aName);
        }
        if (theRecord == mRecords.end()) {
            mTexts.push_back("W Trying to remove a file '" + aName + "' not in cache\n");
        } else if (!theIsGone) {
            theRecord->mState = kvxFileCacheState_Stale;
            mTexts.push_back("W Cannot remove file '" + aName + "', file set to stale state\n");
        } else {
            mRemoved.push_back(aName);
            Forget(theRecord);
        }
        return theIsGone;
    }

    void FileRemoved(const std::string& aName) {
        const auto theRecord = Find(aName);
        if (theRecord != mRecords.end()) {
            Forget(theRecord);
        } else {
            mTexts.push_back("E Cannot find file to remove '" + aName + "' in cache information\n");
        }
    }

    bool Empty(int aDate) {
        std::map<std::string, int64_t> theDisk;
        theDisk.swap(mDisk);
        mRecords.clear();
        mTotal = 0;
        if (theDisk.count(mUnremovable) != 0) {
            mTotal = mDisk[mUnremovable] = theDisk[mUnremovable];
            mRecords.push_back({mUnremovable, mTotal, aDate, kvxFileCacheState_Ready});
        }
        return mDisk.empty();
    }

    bool Is(const std::string& aName, int aState) {
        const auto theRecord = Find(aName);
        return theRecord != mRecords.end() && theRecord->mState == aState;
    }

    std::map<std::string, int64_t> mDisk;
    std::string mUnremovable;
    std::vector<std::string> mTexts;
    std::vector<std::string> mRemoved;  // as the callback hears it

private:
    struct Record {
        std::string mName;
        int64_t mSize;
        int mDate;
        int mState;
    };
    using Place = std::vector<Record>::iterator;

    Place Find(const std::string& aName) {
        return std::find_if(mRecords.begin(), mRecords.end(),
                            [&](const Record& aRecord) { return aRecord.mName == aName; });
    }

    void Forget(Place aRecord) {
        mTotal -= aRecord->mSize < mTotal ? aRecord->mSize : 0;
        mTexts.push_back("D Removing file '" + aRecord->mName + "' from cache\n");
        mRecords.erase(aRecord);
    }

    void MakeRoom() {
        if (mTotal <= mLimit) {
            return;
        }
        mTexts.push_back("I About to remove files from cache current size " +
                         std::to_string(mTotal) + " > " + std::to_string(mLimit) + "\n");
        const auto theRank = [](const Record& aRecord) {
            const int theGroup = aRecord.mState == kvxFileCacheState_Stale   ? 0
                                 : aRecord.mState == kvxFileCacheState_Ready ? 1
                                                                             : 2;
            return std::make_pair(theGroup, theGroup == 1 ? aRecord.mDate : 0);
        };
        std::stable_sort(mRecords.begin(), mRecords.end(),
                         [&](const Record& aLeft, const Record& aRight) {
                             return theRank(aLeft) < theRank(aRight);
                         });
        size_t theIndex = 0;
        while (theIndex < mRecords.size() && mTotal > mLimit &&
               mRecords[theIndex].mState != kvxFileCacheState_Caching) {
            theIndex += Remove(std::string(mRecords[theIndex].mName)) ? 0 : 1;
        }
        mTexts.push_back("I After removal cache size is " + std::to_string(mTotal) + "\n");
    }

    const int64_t mLimit;
    std::vector<Record> mRecords;
    int64_t mTotal = 0;
};

TEST(FileCacheManagerTest, AnySequenceMatchesAPlainModel) {
    constexpr int64_t kLimit = 100;
    const std::string kNames[] = {"a", "b", "c", "d", "e", "f"};
    Reports theReports;
    const TempDir theDir;
    const GivenCreation theCreation(Creation::kGiven, {500, 0});
    const Manager theManager = NewManager(theDir, kLimit);
    Removals theRemovals;
    theManager->SetFileRemovedCallBack(Removals::Note, &theRemovals);
    Model theModel(kLimit);
    std::map<std::string, File> theWriters;
    std::optional<ScriptedDate> theScript;
    std::mt19937 theRandom(62);
    const auto theBelow = [&theRandom](size_t aLimit) { return theRandom() % aLimit; };
    int theDate = 1000;
    for (int theStep = 0; theStep < 1500; ++theStep) {
        theDate += static_cast<int>(theBelow(2));
        theScript.reset();
        theScript.emplace(theDate);
        theReports.Clear();
        theModel.mTexts.clear();
        const std::string& theName = kNames[theBelow(std::size(kNames))];
        const Unremovable theFailure(theModel.mUnremovable.empty() ? ""
                                                                   : "/" + theModel.mUnremovable);
        bool theIsLogged = true;
        switch (const size_t theKind = theBelow(20)) {
            case 0:
                EXPECT_EQ(theManager->RemoveTempFile(theName.c_str()), theModel.Remove(theName));
                break;
            case 1:
                theManager->Cache_FileRemoved(theName.c_str());
                theModel.FileRemoved(theName);
                break;
            case 2:
                std::filesystem::remove(theDir / theName);
                theModel.mDisk.erase(theName);
                break;
            case 3:
                theDir.Write(theName, "others");
                theModel.mDisk[theName] = 6;
                break;
            case 4:
                theModel.mUnremovable = theBelow(2) == 0 ? "" : theName;
                break;
            case 5:
                if (theBelow(4) == 0) {
                    EXPECT_EQ(theManager->Empty(false), theModel.Empty(500));
                    theIsLogged = false;  // with durations
                }
                break;
            default: {
                if (theModel.Is(theName, kvxFileCacheState_Caching)) {
                    const bool theIsOK = theBelow(5) != 0;
                    File& theWriter = theWriters[theName];
                    const int64_t theSize = theWriter->Length();
                    theManager->SetCachedFileState(theName.c_str(), theWriter.get(), theIsOK);
                    EXPECT_EQ(theWriter->IsOpened(), theIsOK);
                    theModel.Report(theName, theSize, theDate, theIsOK);
                    break;
                }
                if (theKind == 6) {
                    theManager->RemoveTempFile(theName.c_str());
                    theModel.Remove(theName);
                    break;
                }
                const int theMode = static_cast<int>(theBelow(4));
                bool theCreated = true;
                bool theIsCreated = false;
                File theFile = Open(theManager, theName, &theCreated, theMode);
                const auto theSize = theModel.Open(theName, theMode, theDate, &theIsCreated);
                EXPECT_EQ(theCreated, theIsCreated);
                EXPECT_EQ(theFile != nullptr, theSize.has_value());
                if (theFile != nullptr) {
                    EXPECT_EQ(theFile->Length(), *theSize);
                }
                if (theIsCreated && (theMode == 0 || theMode == 3)) {
                    const std::string theBytes(theBelow(60), 'x');
                    EXPECT_EQ(theFile->Write(theBytes.data(), theBytes.size()), theBytes.size());
                    theModel.mDisk[theName] = static_cast<int64_t>(theBytes.size());
                }
                if (theIsCreated) {
                    theWriters[theName] = std::move(theFile);
                }
            }
        }
        if (theIsLogged) {
            ASSERT_EQ(CacheTexts(theReports), theModel.mTexts) << "step " << theStep;
        }
        ASSERT_EQ(theRemovals.mNames, theModel.mRemoved) << "step " << theStep;
        std::map<std::string, int64_t> theDisk;
        for (const auto& theFile : std::filesystem::directory_iterator(theDir.Path())) {
            theDisk[theFile.path().filename()] = static_cast<int64_t>(theFile.file_size());
        }
        ASSERT_EQ(theDisk, theModel.mDisk) << "step " << theStep;
        ASSERT_FALSE(HasFailure()) << "step " << theStep;
    }
}

// Several threads

TEST(FileCacheManagerTest, AReaderLooksEvery100MillisecondsUntilTheProducerReports) {
    ScriptedClock theClock(UINT32_MAX - 50);  // the tick counter wraps during the wait
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    const File theWriter = Open(theManager, "a");
    theWriter->Write("xyz", 3);
    theClock.AtNextSleep([&] {
        theClock.AtNextSleep([&] { theManager->SetCachedFileState("a", theWriter.get(), true); });
    });
    bool theCreated = true;
    const File theReader = Open(theManager, "a", &theCreated);
    EXPECT_THAT(theClock.Sleeps(), ElementsAre(100u, 100u));
    ASSERT_NE(theReader, nullptr);
    EXPECT_FALSE(theCreated);
    EXPECT_EQ(theReader->Length(), 3);
}

TEST(FileCacheManagerTest, AReaderHasTheLockExceptWhileItSleeps) {
    ScriptedClock theClock;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    const File theWriter = Open(theManager, "a");
    vxtest::ScriptedLocks theLocks;
    theLocks.mfNoteCalls = true;
    theClock.AtNextSleep([&] {
        EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Unlock"));
        theManager->SetCachedFileState("a", theWriter.get(), true);
        theLocks.mCalls.clear();
    });
    EXPECT_NE(Open(theManager, "a"), nullptr);
    EXPECT_THAT(theLocks.mCalls, ElementsAre("Lock", "Unlock"));
}

// Two threads ask for one name: one is made to wait until the other has reported.
void OpenInTwoThreads(bool afOK) {
    ScriptedClock theClock;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir);
    Latch theReaderWaits(1);
    Latch theReported(1);
    theClock.AtNextSleep([&] {
        theReaderWaits.CountDown();
        theReported.Wait();
    });
    bool theCreated = false;
    const File theWriter = Open(theManager, "a", &theCreated);
    EXPECT_TRUE(theCreated);
    theWriter->Write("xyz", 3);

    bool theReaderCreated = false;
    File theReader;
    std::thread theThread([&] { theReader = Open(theManager, "a", &theReaderCreated); });
    theReaderWaits.Wait();
    theManager->SetCachedFileState("a", theWriter.get(), afOK);  // the reader has no lock
    theReported.CountDown();
    theThread.join();
    ASSERT_NE(theReader, nullptr);
    EXPECT_EQ(theReaderCreated, !afOK);
    EXPECT_EQ(theReader->Length(), afOK ? 3 : 0);
    EXPECT_THAT(theClock.Sleeps(), ElementsAre(100u));
}

TEST(FileCacheManagerTest, ASecondThreadWaitsForTheFileOfTheFirst) {
    OpenInTwoThreads(true);
}

TEST(FileCacheManagerTest, WhereTheFirstThreadFailsTheSecondCreates) {
    OpenInTwoThreads(false);
}

// Each file says its own name all over, whoever reads it, whenever it was made.
TEST(FileCacheManagerTest, ThreadsOnlySeeCompleteFiles) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 150;
    const TempDir theDir;
    const Manager theManager = NewManager(theDir, 4000);
    std::atomic<int> theReads{0};
    const auto theWork = [&](unsigned int aStart) {
        std::mt19937 theRandom(aStart);
        for (int i = 0; i < kRounds; ++i) {
            const char theLetter = static_cast<char>('a' + theRandom() % 8);
            const std::string theName(1, theLetter);
            const std::string theContents(500 + theRandom() % 500, theLetter);
            bool theCreated = false;
            const File theFile = Open(theManager, theName, &theCreated);
            ASSERT_NE(theFile, nullptr);
            if (theCreated) {
                const size_t theSize = theContents.size();
                ASSERT_EQ(theFile->Write(theContents.data(), theSize), theSize);
                theManager->SetCachedFileState(theName.c_str(), theFile.get(),
                                               theRandom() % 8 != 0);
                continue;
            }
            std::string theText(2000, '?');
            const ssize_t theCount = theFile->Read(theText.data(), theText.size());
            ASSERT_GE(theCount, 500);
            theText.resize(static_cast<size_t>(theCount));
            EXPECT_EQ(theText, std::string(static_cast<size_t>(theCount), theLetter));
            ++theReads;
            switch (theRandom() % 16) {
                case 0:
                    theManager->RemoveTempFile(theName.c_str());
                    break;
                case 1:
                    EXPECT_EQ(Text(theManager->GetFullPath(theName.c_str())), theDir / theName);
                    break;
                case 2: {
                    int64_t theSize = 0;
                    theManager->FetchInfoForFile(theName.c_str(), &theSize, NULL);
                    break;
                }
                default:
                    break;
            }
        }
    };
    std::vector<std::thread> theThreads;
    for (unsigned int i = 0; i < kThreads; ++i) {
        theThreads.emplace_back(theWork, i);
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_GT(theReads, 0);
    EXPECT_TRUE(theManager->Empty(false));
}

}  // namespace
