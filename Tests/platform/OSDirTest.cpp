#include <libvxOS/Dir.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dirent.h>
#include <dlfcn.h>

#include <cerrno>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "support/TempDir.h"

#include <libvxOS/File.h>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using vxtest::TempDir;

namespace {

int sFailAfter = -1;       // readdir() fails with EIO after so many entries; never if negative
bool sHidesKinds = false;  // readdir() tells no kinds, as some file systems do

std::set<std::string> NamesIn(vxDirTraverser* aTraverser, const char* aPattern, int aFilter) {
    std::set<std::string> theNames;
    int theStatus = -1;
    for (const vxDirEntry* theEntry =
             vxDirTraverser_GetFirst(aTraverser, aPattern, aFilter, &theStatus);
         theEntry != nullptr; theEntry = vxDirTraverser_GetNext(aTraverser, &theStatus)) {
        EXPECT_EQ(theStatus, kvxDirTraverserStatus_NoError);
        EXPECT_TRUE(theNames.insert(theEntry->mName).second) << theEntry->mName << " came twice";
    }
    EXPECT_EQ(theStatus, kvxDirTraverserStatus_NoError);
    return theNames;
}

std::set<std::string> Names(const std::string& aPath, const char* aPattern, int aFilter) {
    vxDirTraverser* theTraverser = vxDirTraverser_New(aPath.c_str());
    const std::set<std::string> theNames = NamesIn(theTraverser, aPattern, aFilter);
    vxDirTraverser_Delete(theTraverser);
    return theNames;
}

size_t OpenDescriptors() {
    size_t theCount = 0;
    for ([[maybe_unused]] const auto& theEntry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++theCount;
    }
    return theCount;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) dirent64* readdir64(DIR* aDir) {
    static const auto theCall =
        reinterpret_cast<dirent64* (*)(DIR*)>(dlsym(RTLD_NEXT, "readdir64"));
    if (sFailAfter == 0) {
        errno = EIO;
        return nullptr;
    }
    sFailAfter -= sFailAfter > 0 ? 1 : 0;
    dirent64* theEntry = theCall(aDir);
    if (theEntry != nullptr && sHidesKinds) {
        theEntry->d_type = DT_UNKNOWN;
    }
    return theEntry;
}

TEST(OSDirTest, ConstantsHaveTheirValues) {
    EXPECT_EQ(vxDIR_FILES, 0x0001);
    EXPECT_EQ(vxDIR_DIRS, 0x0002);
    EXPECT_EQ(vxDIR_HIDDEN, 0x0004);
    EXPECT_EQ(vxDIR_DOTDOT, 0x0008);
    EXPECT_EQ(vxDIR_DEFAULT, 7);
    EXPECT_EQ(kvxDirTraverserStatus_NoError, 0);
    EXPECT_EQ(kvxDirTraverserStatus_Error, 1);
}

TEST(OSDirTest, DirectoriesAndLinksToThemExist) {
    TempDir theDir;
    const std::string theSub = theDir.MakeDir("sub");
    EXPECT_TRUE(vxDir_Exists(theSub.c_str()));
    EXPECT_TRUE(vxDir_Exists((theSub + "/").c_str()));
    EXPECT_TRUE(vxDir_Exists(theDir.Link("link", "sub").c_str()));
    EXPECT_TRUE(vxDir_Exists("/"));
    EXPECT_FALSE(vxDir_Exists(theDir.Write("file").c_str()));
    EXPECT_FALSE(vxDir_Exists((theDir / "none").c_str()));
    EXPECT_FALSE(vxDir_Exists(""));
    EXPECT_FALSE(vxDir_Exists(nullptr));
}

TEST(OSDirTest, CreatingNeedsAFreeNameInsideADirectory) {
    TempDir theDir;
    theDir.Write("file");
    EXPECT_EQ(vxDir_Create((theDir / "a/").c_str()), 0);
    EXPECT_TRUE(vxDir_Exists((theDir / "a").c_str()));
    EXPECT_EQ(vxDir_Create((theDir / "a").c_str()), kvxFileErrorAlreadyExists);
    EXPECT_EQ(vxDir_Create((theDir / "file").c_str()), kvxFileErrorAlreadyExists);
    EXPECT_EQ(vxDir_Create((theDir / "b/c").c_str()), kvxFileErrorNotFound);
    EXPECT_EQ(vxDir_Create((theDir / "file/c").c_str()), kvxFileErrorNotFound);
    EXPECT_EQ(vxDir_Create(nullptr), kvxFileErrorNotFound);
}

TEST(OSDirTest, CreatePathMakesWhatIsMissing) {
    TempDir theDir;
    EXPECT_EQ(vxDir_CreatePath((theDir / "a/b//c/").c_str()), 0);
    EXPECT_TRUE(vxDir_Exists((theDir / "a/b/c").c_str()));
    EXPECT_EQ(vxDir_CreatePath((theDir / "a/b/c").c_str()), 0);
    EXPECT_EQ(vxDir_CreatePath((theDir / "a/d").c_str()), 0);
    EXPECT_TRUE(vxDir_Exists((theDir / "a/d").c_str()));
    EXPECT_EQ(vxDir_CreatePath("/"), 0);
}

TEST(OSDirTest, CreatePathStopsAtAFile) {
    TempDir theDir;
    theDir.Write("file");
    EXPECT_EQ(vxDir_CreatePath((theDir / "file").c_str()), kvxFileErrorAlreadyExists);
    EXPECT_EQ(vxDir_CreatePath((theDir / "file/b/c").c_str()), kvxFileErrorAlreadyExists);
    EXPECT_EQ(vxDir_CreatePath(""), kvxFileErrorNotFound);
    EXPECT_EQ(vxDir_CreatePath(nullptr), kvxFileErrorNotFound);
    EXPECT_EQ(theDir.Read("file"), "");
}

TEST(OSDirTest, OnlyAnEmptyDirectoryIsRemoved) {
    TempDir theDir;
    const std::string theSub = theDir.MakeDir("sub");
    theDir.Write("sub/file");
    EXPECT_EQ(vxDir_Remove(theSub.c_str()), kvxFileErrorUnknown);
    vxFile_Remove((theDir / "sub/file").c_str());
    EXPECT_EQ(vxDir_Remove(theDir.Link("link", "sub").c_str()), kvxFileErrorUnknown);
    EXPECT_EQ(vxDir_Remove((theSub + "/").c_str()), 0);
    EXPECT_EQ(vxDir_Remove(theSub.c_str()), kvxFileErrorNotFound);
    EXPECT_EQ(vxDir_Remove(theDir.Write("file").c_str()), kvxFileErrorUnknown);
    EXPECT_EQ(vxDir_Remove((theDir / "file/below").c_str()), kvxFileErrorNotFound);
    EXPECT_EQ(vxDir_Remove(nullptr), kvxFileErrorNotFound);
}

TEST(OSDirTest, TheOnlyRootIsTheSlash) {
    char* theList = vxDir_GetRootDirList();
    EXPECT_EQ(std::string(theList, 3), std::string("/\0\0", 3));
    free(theList);
}

TEST(OSDirTest, OnlyDirectoriesHaveTimesHere) {
    TempDir theDir;
    vxtimeval theTime = {7, 8};
    EXPECT_EQ(vxDir_GetTimes(theDir.Write("file").c_str(), nullptr, nullptr, &theTime),
              kvxFileErrorNotFound);
    EXPECT_EQ(theTime.tv_sec, 7);
    const vxtimeval theOld = {1000000000, 0};
    EXPECT_EQ(vxFile_SetModificationTime(theDir.Path().c_str(), &theOld), 0);
    EXPECT_EQ(vxDir_GetTimes(theDir.Path().c_str(), nullptr, nullptr, &theTime), 0);
    EXPECT_EQ(theTime.tv_sec, 1000000000);
    EXPECT_EQ(theTime.tv_usec, 0);
}

TEST(OSDirTest, FilterBitsLetKindsThrough) {
    TempDir theDir;
    theDir.Write("file");
    theDir.Write(".file");
    theDir.MakeDir("dir");
    theDir.MakeDir(".dir");
    theDir.Link("to_dir", "dir");
    theDir.Link("to_file", "file");
    theDir.Link("dangling", "none");
    using Set = std::set<std::string>;
    const Set kFiles = {"file", "to_file", "dangling"};
    const Set kDirs = {"dir", "to_dir"};
    const struct {
        int mFilter;
        Set mNames;
    } kCases[] = {
        {0, {}},
        {vxDIR_FILES, kFiles},
        {vxDIR_DIRS, kDirs},
        {vxDIR_HIDDEN, {}},
        {vxDIR_DOTDOT, {".."}},
        {vxDIR_FILES | vxDIR_HIDDEN, {"file", "to_file", "dangling", ".file"}},
        {vxDIR_DIRS | vxDIR_HIDDEN, {"dir", "to_dir", ".dir"}},
        {vxDIR_FILES | vxDIR_DOTDOT, {"file", "to_file", "dangling", ".."}},
        {vxDIR_DEFAULT, {"file", "to_file", "dangling", ".file", "dir", "to_dir", ".dir"}},
    };
    for (const bool theHidesKinds : {false, true}) {
        sHidesKinds = theHidesKinds;
        for (const auto& theCase : kCases) {
            SCOPED_TRACE(testing::Message() << theCase.mFilter << " " << theHidesKinds);
            EXPECT_EQ(Names(theDir.Path(), "*", theCase.mFilter), theCase.mNames);
        }
    }
    sHidesKinds = false;
}

TEST(OSDirTest, PatternsChooseNames) {
    TempDir theDir;
    for (const char* theName : {"a.mp3", "b.mp3", "b.txt", ".c.mp3", "D.MP3"}) {
        theDir.Write(theName);
    }
    EXPECT_THAT(Names(theDir.Path(), "*.mp3", vxDIR_FILES), ElementsAre("a.mp3", "b.mp3"));
    EXPECT_THAT(Names(theDir.Path(), "*.mp3", vxDIR_DEFAULT),
                ElementsAre(".c.mp3", "a.mp3", "b.mp3"));
    EXPECT_THAT(Names(theDir.Path(), "b.*", vxDIR_FILES), ElementsAre("b.mp3", "b.txt"));
    EXPECT_THAT(Names(theDir.Path(), "[aD]*", vxDIR_FILES), ElementsAre("D.MP3", "a.mp3"));
    EXPECT_THAT(Names(theDir.Path(), "", vxDIR_FILES), IsEmpty());
    EXPECT_EQ(Names(theDir.Path(), nullptr, vxDIR_DEFAULT).size(), 5u);
}

TEST(OSDirTest, EntriesTellWhatTheyAre) {
    TempDir theDir;
    const struct {
        const char* mName;
        bool mfDir;
        bool mfHidden;
    } kCases[] = {
        {"file", false, false},
        {".file", false, true},
        {"dir", true, false},
        {".dir", true, true},
    };
    theDir.Write("file");
    theDir.Write(".file");
    theDir.MakeDir("dir");
    theDir.MakeDir(".dir");
    vxDirTraverser* theTraverser = vxDirTraverser_New((theDir.Path() + "/").c_str());
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mName);
        const vxDirEntry* theEntry =
            vxDirTraverser_GetFirst(theTraverser, theCase.mName, vxDIR_DEFAULT, nullptr);
        ASSERT_NE(theEntry, nullptr);
        EXPECT_STREQ(theEntry->mName, theCase.mName);
        EXPECT_EQ(theEntry->mfDir != 0, theCase.mfDir);
        EXPECT_EQ(theEntry->mfHidden != 0, theCase.mfHidden);
        EXPECT_EQ(vxDirTraverser_GetNext(theTraverser, nullptr), nullptr);
    }
    vxDirTraverser_Delete(theTraverser);
}

TEST(OSDirTest, NamesAreBytesOfAnyEncoding) {
    TempDir theDir;
    theDir.Write("\xff\xfe");
    theDir.Write("line\nfeed");
    EXPECT_THAT(Names(theDir.Path(), "*", vxDIR_FILES), ElementsAre("line\nfeed", "\xff\xfe"));
}

TEST(OSDirTest, EveryFirstStepStartsAnewAndSeesWhatWasAdded) {
    TempDir theDir;
    theDir.Write("a");
    vxDirTraverser* theTraverser = vxDirTraverser_New(theDir.Path().c_str());
    EXPECT_THAT(NamesIn(theTraverser, "*", vxDIR_FILES), ElementsAre("a"));
    theDir.Write("b");
    EXPECT_THAT(NamesIn(theTraverser, "*", vxDIR_FILES), ElementsAre("a", "b"));
    EXPECT_THAT(NamesIn(theTraverser, "b", vxDIR_FILES), ElementsAre("b"));
    vxDirTraverser_Delete(theTraverser);
}

TEST(OSDirTest, RewindingLetsNextStartAnew) {
    TempDir theDir;
    theDir.Write("a");
    theDir.Write("b");
    vxDirTraverser* theTraverser = vxDirTraverser_New(theDir.Path().c_str());
    EXPECT_EQ(NamesIn(theTraverser, "*", vxDIR_FILES).size(), 2u);
    EXPECT_EQ(vxDirTraverser_GetNext(theTraverser, nullptr), nullptr);
    vxDirTraverser_Rewind(theTraverser);
    EXPECT_NE(vxDirTraverser_GetNext(theTraverser, nullptr), nullptr);
    EXPECT_NE(vxDirTraverser_GetNext(theTraverser, nullptr), nullptr);
    EXPECT_EQ(vxDirTraverser_GetNext(theTraverser, nullptr), nullptr);
    vxDirTraverser_Delete(theTraverser);
}

TEST(OSDirTest, NextWithoutFirstFindsNothing) {
    TempDir theDir;
    theDir.Write("a");
    vxDirTraverser* theTraverser = vxDirTraverser_New(theDir.Path().c_str());
    int theStatus = -1;
    EXPECT_EQ(vxDirTraverser_GetNext(theTraverser, &theStatus), nullptr);
    EXPECT_EQ(theStatus, kvxDirTraverserStatus_NoError);
    vxDirTraverser_Delete(theTraverser);
}

TEST(OSDirTest, ADirectoryThatCannotBeOpenedIsAnErrorOfTheFirstStep) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file");
    const std::string theNone = theDir / "none";
    const char* const thePaths[] = {theNone.c_str(), theFile.c_str(), "", nullptr};
    for (const char* thePath : thePaths) {
        vxDirTraverser* theTraverser = vxDirTraverser_New(thePath);
        ASSERT_NE(theTraverser, nullptr);
        int theStatus = -1;
        vxDirTraverser_Rewind(theTraverser);
        EXPECT_EQ(vxDirTraverser_GetFirst(theTraverser, "*", vxDIR_DEFAULT, &theStatus), nullptr);
        EXPECT_EQ(theStatus, kvxDirTraverserStatus_Error);
        theStatus = -1;
        EXPECT_EQ(vxDirTraverser_GetNext(theTraverser, &theStatus), nullptr);
        EXPECT_EQ(theStatus, kvxDirTraverserStatus_Error);
        vxDirTraverser_Delete(theTraverser);
    }
    vxDirTraverser_Delete(nullptr);
}

TEST(OSDirTest, ADirectoryThatCannotBeReadToItsEndIsAnError) {
    TempDir theDir;
    theDir.Write("file");
    vxDirTraverser* theTraverser = vxDirTraverser_New(theDir.Path().c_str());
    int theStatus = -1;
    sFailAfter = 0;
    EXPECT_EQ(vxDirTraverser_GetFirst(theTraverser, "*", vxDIR_DEFAULT, &theStatus), nullptr);
    EXPECT_EQ(theStatus, kvxDirTraverserStatus_Error);
    sFailAfter = -1;
    EXPECT_EQ(NamesIn(theTraverser, "*", vxDIR_DEFAULT).size(), 1u);
    vxDirTraverser_Delete(theTraverser);
}

TEST(OSDirTest, ADirectoryThatVanishesIsAtItsEnd) {
    TempDir theDir;
    const std::string theSub = theDir.MakeDir("sub");
    vxDirTraverser* theTraverser = vxDirTraverser_New(theSub.c_str());
    EXPECT_EQ(vxDir_Remove(theSub.c_str()), 0);
    EXPECT_THAT(NamesIn(theTraverser, "*", vxDIR_DEFAULT), IsEmpty());
    vxDirTraverser_Delete(theTraverser);
}

TEST(OSDirTest, AWalkHoldsOneDescriptorUntilItEnds) {
    const size_t theBefore = OpenDescriptors();
    vxDirTraverser* theTraverser = vxDirTraverser_New("/");
    vxDirTraverser_GetFirst(theTraverser, "*", vxDIR_DEFAULT, nullptr);
    EXPECT_EQ(OpenDescriptors(), theBefore + 1);
    vxDirTraverser_Delete(theTraverser);
    EXPECT_EQ(OpenDescriptors(), theBefore);
}
