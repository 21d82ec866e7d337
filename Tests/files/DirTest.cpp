#include "vx/Dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pthread.h>
#include <unistd.h>

#include <cstring>
#include <functional>
#include <set>
#include <string>

#include "support/Forward.h"
#include "support/Reports.h"
#include "support/TempDir.h"
#include "vx/DateTime.h"
#include "vx/File.h"
#include "vx/StringList.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Reports;
using vxtest::TempDir;

namespace {

std::function<int(const char*)> sRemoveFile;  // stands in for vxFile_Remove(), unless empty
const char* sRoots = nullptr;                 // what vxDir_GetRootDirList() answers, unless null
size_t sRootsSize = 0;

std::string Text(const vxCString& aText) {
    return std::string(aText.c_str(), aText.length());
}

// The entries that a walk gives, directories with a slash behind them.
std::set<std::string> Names(vxDir& aDir, const char* aPattern, int aFilter) {
    std::set<std::string> theNames;
    vxPathName theEntry;
    for (bool theMore = aDir.GetFirst(theEntry, aPattern, aFilter); theMore;
         theMore = aDir.GetNext(theEntry)) {
        theNames.insert(theEntry.IsDirPath() ? Text(theEntry.GetDirName()) + "/"
                                             : Text(theEntry.GetFullName()));
    }
    return theNames;
}

// Runs something on a thread whose stack is as small as those of the target.
void RunOnASmallStack(const std::function<void()>& aTask) {
    pthread_attr_t theAttributes;
    pthread_attr_init(&theAttributes);
    pthread_attr_setstacksize(&theAttributes, 128 * 1024);
    pthread_t theThread;
    const auto theStart = [](void* aContext) -> void* {
        (*static_cast<const std::function<void()>*>(aContext))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&theThread, &theAttributes, theStart,
                             const_cast<std::function<void()>*>(&aTask)),
              0);
    pthread_join(theThread, nullptr);
    pthread_attr_destroy(&theAttributes);
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int vxFile_Remove(const char* aPath) {
    return sRemoveFile ? sRemoveFile(aPath) : VXTEST_REAL(vxFile_Remove)(aPath);
}

__attribute__((visibility("default"))) char* vxDir_GetRootDirList(void) {
    if (sRoots == nullptr) {
        return VXTEST_REAL(vxDir_GetRootDirList)();
    }
    return static_cast<char*>(memcpy(malloc(sRootsSize), sRoots, sRootsSize));
}

}  // extern "C"

TEST(DirTest, StatesHaveTheirValues) {
    EXPECT_EQ(kvxDirState_Close, 0);
    EXPECT_EQ(kvxDirState_Open, 1);
    EXPECT_EQ(kvxDirState_ReadNext, 3);
}

TEST(DirTest, DirectoriesAreMadeAndRemovedByName) {
    TempDir theDir;
    const std::string theSub = theDir / "sub";
    EXPECT_FALSE(vxDir::Exists(theSub.c_str()));
    EXPECT_TRUE(vxDir::Create(theSub.c_str()));
    EXPECT_TRUE(vxDir::Exists(theSub.c_str()));
    EXPECT_FALSE(vxDir::Create(theSub.c_str()));
    EXPECT_FALSE(vxDir::Create((theSub + "/a/b").c_str()));
    EXPECT_TRUE(vxDir::CreateRecursively((theSub + "/a/b").c_str()));
    EXPECT_TRUE(vxDir::CreateRecursively((theSub + "/a/b").c_str()));
    EXPECT_FALSE(vxDir::Remove(theSub.c_str())) << "it is not empty";
    EXPECT_TRUE(vxDir::Remove((theSub + "/a/b/").c_str()));
    EXPECT_TRUE(vxDir::Remove((theSub + "/a/b/").c_str())) << "it is gone";
    EXPECT_FALSE(vxDir::Remove(theDir.Write("file").c_str()));
    EXPECT_FALSE(vxDir::CreateRecursively((theDir / "file/x").c_str()));
    EXPECT_FALSE(vxDir::Exists((theDir / "file").c_str()));
}

TEST(DirTest, TheOnlyRootIsTheSlash) {
    const vxStringList theRoots = vxDir::GetRootDirList();
    ASSERT_EQ(theRoots.GetCount(), 1u);
    EXPECT_STREQ(theRoots.GetAt(0), "/");
}

TEST(DirTest, EveryRootOfThePlatformIsListed) {
    constexpr char kRoots[] = "/one\0/two three\0";
    sRoots = kRoots;
    sRootsSize = sizeof(kRoots);
    const vxStringList theRoots = vxDir::GetRootDirList();
    sRoots = nullptr;
    ASSERT_EQ(theRoots.GetCount(), 2u);
    EXPECT_STREQ(theRoots.GetAt(0), "/one");
    EXPECT_STREQ(theRoots.GetAt(1), "/two three");
}

TEST(DirTest, TimesAreThoseOfADirectory) {
    TempDir theDir;
    vxDateTime theTime(5L);
    EXPECT_FALSE(vxDir::GetTimes(theDir.Write("file").c_str(), NULL, NULL, &theTime));
    EXPECT_EQ(theTime.GetTicks(), 5);
    EXPECT_TRUE(vxFile::SetModificationTime(theDir.Path().c_str(), vxDateTime(1000000000L)));
    vxDateTime theCreation;
    vxDateTime theAccess;
    EXPECT_TRUE(vxDir::GetTimes(theDir.Path().c_str(), &theCreation, &theAccess, &theTime));
    EXPECT_EQ(theTime.GetTicks(), 1000000000);
    EXPECT_TRUE(theCreation.IsValid());
    EXPECT_TRUE(theAccess.IsValid());
    EXPECT_TRUE(vxDir::GetTimes(theDir.Path().c_str(), NULL, NULL, NULL));
}

TEST(DirTest, AWalkGivesFilesAndDirectories) {
    TempDir theDir;
    theDir.Write("song.a.mp3");
    theDir.Write("plain");
    theDir.Write(".hidden");
    theDir.MakeDir("sub.d");
    vxDir theWalk(theDir.Path().c_str());
    vxPathName theEntry;
    ASSERT_TRUE(theWalk.GetFirst(theEntry, "song*", vxDIR_FILES));
    EXPECT_TRUE(theEntry.IsFilePath());
    EXPECT_EQ(Text(theEntry.GetPath()), theDir.Path() + "/");
    EXPECT_EQ(Text(theEntry.GetFileName()), "song.a");
    EXPECT_EQ(Text(theEntry.GetExtension()), "mp3");
    ASSERT_TRUE(theWalk.GetFirst(theEntry, "sub*", vxDIR_DIRS));
    EXPECT_TRUE(theEntry.IsDirPath());
    EXPECT_EQ(theEntry.c_str(), theDir.Path() + "/sub.d/");
    ASSERT_TRUE(theWalk.GetFirst(theEntry, "plain"));
    EXPECT_EQ(theEntry.c_str(), theDir.Path() + "/plain");
    EXPECT_EQ(Text(theEntry.GetExtension()), "");
    EXPECT_FALSE(theWalk.GetNext(theEntry));
    EXPECT_EQ(theEntry.c_str(), theDir.Path() + "/plain") << "it is left alone";
    ASSERT_TRUE(theWalk.GetFirst(theEntry, ".h*"));
    EXPECT_EQ(Text(theEntry.GetFullName()), ".hidden");
    EXPECT_THAT(Names(theWalk, "*", vxDIR_DEFAULT),
                ElementsAre(".hidden", "plain", "song.a.mp3", "sub.d/"));
    EXPECT_THAT(Names(theWalk, "*", vxDIR_FILES), ElementsAre("plain", "song.a.mp3"));
}

TEST(DirTest, AnEntryKeepsNothingOfTheOneBefore) {
    TempDir theDir;
    theDir.Write("long_name.extension");
    theDir.MakeDir("sub");
    vxDir theWalk(theDir.Path().c_str());
    vxPathName theEntry = vxPathName::MakeFilePath("/elsewhere/x.y");
    ASSERT_TRUE(theWalk.GetFirst(theEntry, "long*"));
    const vxPathName theCopy = theEntry;
    ASSERT_TRUE(theWalk.GetFirst(theEntry, "sub"));
    EXPECT_EQ(theEntry.c_str(), theDir.Path() + "/sub/");
    EXPECT_EQ(Text(theCopy.GetFullName()), "long_name.extension");
    ASSERT_TRUE(theWalk.GetFirst(theEntry, "long*"));
    EXPECT_EQ(theEntry.c_str(), theDir.Path() + "/long_name.extension");
}

TEST(DirTest, TheNameOfAnEntryIsSplitAtItsLastDot) {
    TempDir theDir;
    theDir.Write("dot.");
    vxDir theWalk(theDir.Path().c_str());
    vxPathName theEntry;
    ASSERT_TRUE(theWalk.GetFirst(theEntry, "*"));
    EXPECT_EQ(Text(theEntry.GetFullName()), "dot");
}

TEST(DirTest, CountsAndQuestionsUseTheirFilters) {
    TempDir theDir;
    vxDir theWalk(theDir.Path().c_str());
    EXPECT_FALSE(theWalk.HasFiles("*"));
    EXPECT_FALSE(theWalk.HasDirs("*"));
    EXPECT_EQ(theWalk.GetCount("*"), 0u);
    theDir.Write(".hidden.txt");
    theDir.MakeDir(".dir");
    EXPECT_TRUE(theWalk.HasFiles("*"));
    EXPECT_TRUE(theWalk.HasFiles("*.txt"));
    EXPECT_FALSE(theWalk.HasFiles("*.mp3"));
    EXPECT_FALSE(theWalk.HasDirs("*")) << "hidden ones do not count";
    theDir.MakeDir("dir");
    EXPECT_TRUE(theWalk.HasDirs("*"));
    EXPECT_FALSE(theWalk.HasDirs("x*"));
    EXPECT_EQ(theWalk.GetCount("*"), 3u);
    EXPECT_EQ(theWalk.GetCount("*", vxDIR_FILES), 0u);
    EXPECT_EQ(theWalk.GetCount("*", vxDIR_DIRS | vxDIR_HIDDEN), 2u);
    EXPECT_EQ(theWalk.GetCount("*", vxDIR_DOTDOT), 1u);
}

TEST(DirTest, ADirectoryThatCannotBeReadOpensAndFindsNothing) {
    TempDir theDir;
    Reports theReports;
    vxDir theWalk;
    EXPECT_TRUE(theWalk.Open((theDir / "none").c_str()));
    EXPECT_TRUE(theWalk.IsOpened());
    EXPECT_EQ(theWalk.Error(), kvxDirTraverserStatus_NoError);
    vxPathName theEntry;
    EXPECT_FALSE(theWalk.GetFirst(theEntry, "*"));
    EXPECT_EQ(theWalk.Error(), kvxDirTraverserStatus_Error);
    theWalk.Rewind();
    EXPECT_EQ(theWalk.Error(), kvxDirTraverserStatus_NoError);
    EXPECT_FALSE(theWalk.HasFiles("*"));
    EXPECT_EQ(theWalk.GetCount("*"), 0u);
    EXPECT_EQ(theWalk.Error(), kvxDirTraverserStatus_Error);
    theWalk.Close();
    EXPECT_EQ(theWalk.Error(), kvxDirTraverserStatus_NoError);
    theWalk.Open((theDir / "none").c_str());
    EXPECT_FALSE(theWalk.HasFiles("*"));
    EXPECT_TRUE(theWalk.Open(theDir.Path().c_str()));
    EXPECT_EQ(theWalk.Error(), kvxDirTraverserStatus_NoError);
    EXPECT_FALSE(theEntry.IsValid());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(DirTest, StepsOutOfTurnAreReportedAndFindNothing) {
    TempDir theDir;
    theDir.Write("file");
    Reports theReports;
    const std::string kFirst = "(mState == kvxDirState_Open) || (mState == kvxDirState_ReadNext)";
    const std::string kNext = "mState == kvxDirState_ReadNext";
    vxPathName theEntry;
    vxDir theWalk;
    EXPECT_FALSE(theWalk.IsOpened());
    EXPECT_FALSE(theWalk.GetFirst(theEntry, "*"));
    EXPECT_FALSE(theWalk.GetNext(theEntry));
    EXPECT_FALSE(theWalk.HasFiles("*"));
    EXPECT_EQ(theWalk.GetCount("*"), 0u);
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kFirst, kNext, kFirst, kFirst));
    theReports.Clear();
    theWalk.Rewind();
    EXPECT_FALSE(theWalk.IsOpened());
    theWalk.Open(theDir.Path().c_str());
    EXPECT_FALSE(theWalk.GetNext(theEntry)) << "no first step yet";
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kNext));
    theReports.Clear();
    EXPECT_TRUE(theWalk.GetFirst(theEntry, "*"));
    EXPECT_FALSE(theWalk.GetNext(theEntry));
    EXPECT_FALSE(theWalk.GetNext(theEntry)) << "the end stays the end";
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    theWalk.Rewind();
    EXPECT_FALSE(theWalk.GetNext(theEntry)) << "rewinding asks for a first step again";
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kNext));
}

TEST(DirTest, AFirstStepWithoutResultLeavesTheStateAlone) {
    TempDir theDir;
    theDir.Write("file");
    Reports theReports;
    vxPathName theEntry;
    vxDir theWalk(theDir.Path().c_str());
    EXPECT_FALSE(theWalk.GetFirst(theEntry, "x*"));
    EXPECT_FALSE(theWalk.GetNext(theEntry));
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mState == kvxDirState_ReadNext"));
    EXPECT_TRUE(theWalk.GetFirst(theEntry, "*"));
    EXPECT_FALSE(theWalk.GetFirst(theEntry, "x*"));
    EXPECT_FALSE(theWalk.GetNext(theEntry));
    EXPECT_EQ(theReports.Assertions().size(), 1u);
}

TEST(DirTest, OpeningAgainLeavesTheFirstDirectory) {
    TempDir theDir;
    theDir.MakeDir("a");
    theDir.Write("a/one");
    theDir.MakeDir("b");
    theDir.Write("b/two");
    vxDir theWalk((theDir / "a").c_str());
    EXPECT_THAT(Names(theWalk, "*", vxDIR_FILES), ElementsAre("one"));
    EXPECT_TRUE(theWalk.Open((theDir / "b").c_str()));
    EXPECT_THAT(Names(theWalk, "*", vxDIR_FILES), ElementsAre("two"));
    theWalk.Close();
    EXPECT_FALSE(theWalk.IsOpened());
}

TEST(DirTest, ATreeIsRemovedWithAllThatIsHidden) {
    TempDir theDir;
    theDir.MakeDir("tree/a/b");
    theDir.MakeDir("tree/.c");
    for (const char* theName :
         {"tree/f", "tree/.f", "tree/a/b/f", "tree/.c/dot.", "tree/.c/\xff"}) {
        theDir.Write(theName);
    }
    theDir.Write("beside");
    EXPECT_TRUE(vxDir::RemoveRecursively((theDir / "tree").c_str(), 1));
    EXPECT_FALSE(theDir.Has("tree"));
    EXPECT_TRUE(theDir.Has("beside"));
}

TEST(DirTest, RemovingATreeNeverFollowsALink) {
    TempDir theDir;
    theDir.MakeDir("kept");
    theDir.Write("kept/file");
    theDir.MakeDir("tree/sub");
    theDir.Link("tree/to_dir", "../kept");
    theDir.Link("tree/sub/to_above", "..");
    theDir.Link("tree/loop", "loop");
    theDir.Link("tree/dangling", "none");
    EXPECT_TRUE(vxDir::RemoveRecursively((theDir / "tree/").c_str(), 1));
    EXPECT_FALSE(theDir.Has("tree"));
    EXPECT_TRUE(theDir.Has("kept/file"));
}

TEST(DirTest, RemovingALinkTakesTheLinkAlone) {
    TempDir theDir;
    theDir.MakeDir("kept");
    theDir.Write("kept/file");
    for (const char* theName : {"link", "link/", "link//"}) {
        theDir.Link("link", "kept");
        EXPECT_TRUE(vxDir::RemoveRecursively((theDir / theName).c_str(), 1)) << theName;
        EXPECT_FALSE(theDir.Has("link"));
    }
    theDir.Link("dangling", "none");
    EXPECT_TRUE(vxDir::RemoveRecursively((theDir / "dangling").c_str(), 1));
    EXPECT_FALSE(theDir.Has("dangling"));
    EXPECT_TRUE(theDir.Has("kept/file"));
}

TEST(DirTest, TheRootAndOtherNamesOfADirectoryAreRefused) {
    TempDir theDir;
    theDir.MakeDir("tree/sub");
    bool theTouched = false;
    sRemoveFile = [&theTouched](const char*) {
        theTouched = true;
        return -1;
    };
    for (const char* thePath : {"/", "//", "///", ".", "..", "./", "/.", "/..", "/tmp/.."}) {
        EXPECT_FALSE(vxDir::RemoveRecursively(thePath, 3)) << thePath;
    }
    EXPECT_FALSE(vxDir::RemoveRecursively((theDir / "tree/.").c_str(), 3));
    EXPECT_FALSE(vxDir::RemoveRecursively((theDir / "tree/sub/../").c_str(), 3));
    sRemoveFile = nullptr;
    EXPECT_FALSE(theTouched);
    EXPECT_TRUE(theDir.Has("tree/sub"));
}

TEST(DirTest, WhatIsNotThereIsRemovedAlready) {
    TempDir theDir;
    EXPECT_TRUE(vxDir::RemoveRecursively((theDir / "none").c_str(), 1));
    EXPECT_TRUE(vxDir::RemoveRecursively((theDir / "none").c_str(), 0));
    EXPECT_TRUE(vxDir::RemoveRecursively("", 1));
    EXPECT_TRUE(vxDir::RemoveRecursively(NULL, 1));
    EXPECT_TRUE(vxDir::RemoveRecursively(theDir.Write("file").c_str(), 1)) << "no directory";
    EXPECT_TRUE(theDir.Has("file"));
}

TEST(DirTest, WithoutRoundsNothingIsRemoved) {
    TempDir theDir;
    theDir.MakeDir("tree");
    EXPECT_FALSE(vxDir::RemoveRecursively((theDir / "tree").c_str(), 0));
    EXPECT_TRUE(theDir.Has("tree"));
}

TEST(DirTest, ARoundEndsWithTheFirstFailureAndTheNextStartsOver) {
    TempDir theDir;
    std::string thePlace;
    const auto theAttempt = [&](unsigned anAttempts, int aFailures, bool afRemoved) {
        theDir.MakeDir("tree/sub");
        theDir.Write(thePlace);
        theDir.MakeDir("tree/other");
        int theCalls = 0;
        sRemoveFile = [&theCalls, aFailures](const char* aPath) {
            return ++theCalls <= aFailures ? -1 : VXTEST_REAL(vxFile_Remove)(aPath);
        };
        EXPECT_EQ(vxDir::RemoveRecursively((theDir / "tree").c_str(), anAttempts), afRemoved);
        sRemoveFile = nullptr;
        EXPECT_EQ(theDir.Has(thePlace), !afRemoved);
        EXPECT_EQ(theDir.Has("tree/sub"), !afRemoved);
        if (thePlace != "tree/sub/file") {
            EXPECT_EQ(theDir.Has("tree/other"), !afRemoved);
        }
        return theCalls;
    };
    // Directories are listed before some of these names and after others.
    for (const char* theFile : {"tree/a", "tree/file", "tree/n", "tree/z", "tree/sub/file"}) {
        SCOPED_TRACE(theFile);
        thePlace = theFile;
        EXPECT_EQ(theAttempt(1, 1, false), 1);
        EXPECT_EQ(theAttempt(3, 3, false), 3);
        EXPECT_EQ(theAttempt(3, 2, true), 3);
        EXPECT_EQ(theAttempt(3, 0, true), 1);
    }
}

TEST(DirTest, AFileThatAppearsMeanwhileTakesAnotherRound) {
    TempDir theDir;
    theDir.MakeDir("tree");
    theDir.Write("tree/file");
    int theCalls = 0;
    sRemoveFile = [&theCalls, &theDir](const char* aPath) {
        const int theResult = VXTEST_REAL(vxFile_Remove)(aPath);
        if (++theCalls == 1) {
            theDir.MakeDir("tree/late/later");
        }
        return theResult;
    };
    const bool theIsGone = vxDir::RemoveRecursively((theDir / "tree").c_str(), 5);
    sRemoveFile = nullptr;
    EXPECT_TRUE(theIsGone);
    EXPECT_FALSE(theDir.Has("tree"));
}

TEST(DirTest, ADeepTreeIsRemovedOnASmallStack) {
    // In memory, since disks take their time over each directory; as deep as the longest path that
    // the system takes allows.
    constexpr char kMemory[] = "/dev/shm";
    TempDir theDir(access(kMemory, W_OK) == 0 ? std::filesystem::path(kMemory)
                                              : std::filesystem::temp_directory_path());
    const std::string theTree = theDir.MakeDir("t");
    std::string thePath = theTree;
    size_t theDepth = 0;
    while (thePath.size() + 2 < 4090) {
        thePath += "/d";
        ASSERT_TRUE(vxDir::Create(thePath.c_str()));
        ++theDepth;
    }
    EXPECT_GE(theDepth, 2000u);
    bool theIsGone = false;
    RunOnASmallStack([&] { theIsGone = vxDir::RemoveRecursively(theTree.c_str(), 1); });
    EXPECT_TRUE(theIsGone);
    EXPECT_FALSE(theDir.Has("t"));
}
