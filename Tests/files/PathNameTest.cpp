#include "vx/PathName.h"

#include <libvxOS/Path.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "support/Forward.h"
#include "support/Reports.h"
#include "support/TempDir.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::TempDir;

namespace {

// What the platform is told to answer; unset: what it answers by itself.
struct Script {
    bool mfNormalizesToNull = false;
    const char* mNormalized = nullptr;
    const char* mTempDir = nullptr;
    const char* mCacheDir = nullptr;
    int mType = -1;
    std::string mAsked;  // what there was to normalize: kind, path and anchor of each
} sScript;

struct ScriptScope {
    ScriptScope() { sScript = Script(); }
    ~ScriptScope() { sScript = Script(); }
};

std::string Text(const vxCString& aText) {
    return std::string(aText.c_str(), aText.length());
}

// Kind and parts on one line: "File /a/|b|c" or "Unknown ||".
std::string Shown(const vxPathName& aPath) {
    constexpr const char* kKinds[] = {"Unknown ", "File ", "Dir "};
    return kKinds[aPath.GetKind()] + Text(aPath.GetPath()) + "|" + Text(aPath.GetFileName()) + "|" +
           Text(aPath.GetExtension());
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) char* vxPath_Normalize(const char* aPath, int afDir,
                                                              int aMode, const char* anAnchor) {
    EXPECT_EQ(aMode, kvxPathNormalizeMode_Generic);
    sScript.mAsked += std::string(afDir == 1   ? "[dir "
                                  : afDir == 0 ? "[file "
                                               : "[? ") +
                      (aPath == nullptr ? "none" : aPath) +
                      (anAnchor == nullptr ? "" : std::string(" in ") + anAnchor) + "]";
    if (sScript.mfNormalizesToNull) {
        return nullptr;
    }
    if (sScript.mNormalized != nullptr) {
        return strdup(sScript.mNormalized);
    }
    return VXTEST_REAL(vxPath_Normalize)(aPath, afDir, aMode, anAnchor);
}

__attribute__((visibility("default"))) char* vxPath_GetTempDirPath(void) {
    return sScript.mTempDir != nullptr ? strdup(sScript.mTempDir)
                                       : VXTEST_REAL(vxPath_GetTempDirPath)();
}

__attribute__((visibility("default"))) char* vxPath_GetCacheDirPath(void) {
    return sScript.mCacheDir != nullptr ? strdup(sScript.mCacheDir)
                                        : VXTEST_REAL(vxPath_GetCacheDirPath)();
}

__attribute__((visibility("default"))) int vxPath_GetType(const char* aPath) {
    return sScript.mType >= 0 ? sScript.mType : VXTEST_REAL(vxPath_GetType)(aPath);
}

}  // extern "C"

TEST(PathNameTest, KindsHaveTheirValues) {
    EXPECT_EQ(kvxPathKind_Unknown, 0);
    EXPECT_EQ(kvxPathKind_File, 1);
    EXPECT_EQ(kvxPathKind_Dir, 2);
}

TEST(PathNameTest, ADefaultPathIsInvalidAndEmpty) {
    const vxPathName thePath;
    EXPECT_EQ(Shown(thePath), "Unknown ||");
    EXPECT_FALSE(thePath.IsValid());
    EXPECT_FALSE(thePath.IsDirPath());
    EXPECT_FALSE(thePath.IsFilePath());
    EXPECT_STREQ(thePath.c_str(), "");
    EXPECT_EQ(Text(thePath.GetFullPath()), "");
    EXPECT_EQ(Text(thePath.GetFullName()), "");
    EXPECT_EQ(Text(thePath.GetDirName()), "");
    EXPECT_EQ(Text(thePath.GetVolume()), "");
    EXPECT_EQ(thePath.GetPathCount(), 0u);
    EXPECT_EQ(Text(thePath.GetPathPart(0)), "");
    EXPECT_EQ(Text(thePath.GetPathPart(1)), "");
    EXPECT_FALSE(thePath.GetParentPath().IsValid());
}

TEST(PathNameTest, AFilePathIsSplitAtItsLastSlashAndDot) {
    const struct {
        const char* mPath;
        const char* mShown;
    } kCases[] = {
        {"/a/b.c.txt", "File /a/|b.c|txt"},
        {"/a/b", "File /a/|b|"},
        {"/b", "File /|b|"},
        {"a/b.c", "File a/|b|c"},
        {"./x", "File ./|x|"},
        {"../x", "File ../|x|"},
        {"/a.b/c", "File /a.b/|c|"},
        {"/a/.profile", "File /a/||profile"},
        {"/a/name.", "File /a/|name|"},
        {"//a//b.c", "File /a/|b|c"},
        {"name.txt", "Unknown ||"},
        {"/a/", "Unknown ||"},
        {"/", "Unknown ||"},
        {"", "Unknown ||"},
        {"/a/.", "Unknown ||"},
        {"/a/..", "File /a/|.|"},
        {"/\xff/\xfe.\xfd", "File /\xff/|\xfe|\xfd"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mPath);
        EXPECT_EQ(Shown(vxPathName::MakeFilePath(theCase.mPath)), theCase.mShown);
        EXPECT_EQ(Shown(vxPathName(kvxPathKind_File, theCase.mPath)), theCase.mShown);
    }
}

TEST(PathNameTest, ADirPathEndsWithASlash) {
    const struct {
        const char* mPath;
        const char* mShown;
    } kCases[] = {
        {"/a/b", "Dir /a/b/||"},  {"/a/b/", "Dir /a/b/||"}, {"/", "Dir /||"},
        {"a", "Dir a/||"},        {".", "Dir ./||"},        {"..", "Dir ../||"},
        {"/a//b", "Dir /a/b/||"}, {"/a.b", "Dir /a.b/||"},  {"", "Unknown ||"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mPath);
        EXPECT_EQ(Shown(vxPathName::MakeDirPath(theCase.mPath)), theCase.mShown);
        EXPECT_EQ(Shown(vxPathName(kvxPathKind_Dir, theCase.mPath)), theCase.mShown);
    }
}

TEST(PathNameTest, NoKindAndNoTextMakeNoPath) {
    EXPECT_EQ(Shown(vxPathName(kvxPathKind_Unknown, "/a/b")), "Unknown ||");
    EXPECT_EQ(Shown(vxPathName(3, "/a/b")), "Unknown ||");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath(NULL)), "Unknown ||");
    EXPECT_EQ(Shown(vxPathName::MakeDirPath(NULL)), "Unknown ||");
}

TEST(PathNameTest, DirAndFullNameMakeAFileOrTheDirItself) {
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a", "b.c.d")), "File /a/|b.c|d");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("a/", "b")), "File a/|b|");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a", ".profile")), "File /a/||profile");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a", "")), "Dir /a/||");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a", (const char*)NULL)), "Dir /a/||");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("", "b.c")), "Unknown ||");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath((const char*)NULL, "b.c")), "Unknown ||");
}

TEST(PathNameTest, DirNameAndExtensionMustMakeAFile) {
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a", "b.c", "d")), "File /a/|b.c|d");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a", "b", "")), "File /a/|b|");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a", "", "d")), "File /a/||d");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a", "", "")), "Unknown ||");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("", "b", "d")), "Unknown ||");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a", NULL, NULL)), "Unknown ||");
}

TEST(PathNameTest, CombiningResolvesAgainstTheAnchorAndSimplifies) {
    const struct {
        const char* mAnchor;
        const char* mRelative;
        const char* mFile;
        const char* mDir;
    } kCases[] = {
        {"/a/b/", "../c/x.txt", "File /a/c/|x|txt", "Dir /a/c/x.txt/||"},
        {"/a/b/", "x", "File /a/b/|x|", "Dir /a/b/x/||"},
        {"/a/b/", "./x", "File /a/b/|x|", "Dir /a/b/x/||"},
        {"/a/b/", "../../x", "File /|x|", "Dir /x/||"},
        {"/a/b/", "../../../x", "Unknown ||", "Unknown ||"},
        {"/a/b/", "/../x", "Unknown ||", "Unknown ||"},
        {"/a/b/", "/c/d", "File /c/|d|", "Dir /c/d/||"},
        {"/", "x", "File /|x|", "Dir /x/||"},
        {"/", "../x", "Unknown ||", "Unknown ||"},
        {"a/", "x", "File a/|x|", "Dir a/x/||"},
        {"a/b/", "../x", "File a/|x|", "Dir a/x/||"},
        {"a/", "../x", "Unknown ||", "Unknown ||"},
        {"a/", "..", "File a/|.|", "Unknown ||"},
        {"/a/", "", "Unknown ||", "Dir /a/||"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(std::string(theCase.mAnchor) + " and " + theCase.mRelative);
        const vxPathName theAnchor = vxPathName::MakeDirPath(theCase.mAnchor);
        EXPECT_EQ(Shown(vxPathName::MakeCombinedFilePath(theAnchor, theCase.mRelative)),
                  theCase.mFile);
        EXPECT_EQ(Shown(vxPathName::MakeCombinedDirPath(theAnchor, theCase.mRelative)),
                  theCase.mDir);
    }
}

TEST(PathNameTest, CombiningReportsAnAnchorThatIsNoDirectoryAndGoesOn) {
    vxtest::Reports theReports;
    const vxPathName theFile = vxPathName::MakeFilePath("/a/b");
    EXPECT_EQ(Shown(vxPathName::MakeCombinedFilePath(theFile, "c")), "File /a/b/|c|");
    EXPECT_EQ(Shown(vxPathName::MakeCombinedDirPath(vxPathName(), "c")), "Dir c/||");
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("anAnchorPath.IsDirPath()", "anAnchorPath.IsDirPath()"));
}

TEST(PathNameTest, SimplifyingFollowsItsRules) {
    const struct {
        const char* mPath;
        const char* mResult;  // empty: invalid
    } kCases[] = {
        {"/", "/"},
        {"/a/", "/a/"},
        {"/a//b///c/", "/a/b/c/"},
        {"//a/", "/a/"},
        {"/./", "/"},
        {"/a/./b/", "/a/b/"},
        {"/a/b/.", "/a/b/"},
        {"/a/b/..", "/a/"},
        {"/a/../", "/"},
        {"/a/../b/", "/b/"},
        {"/a/../b/../", "/"},
        {"/a/b/../../c/", "/c/"},
        {"/a/b/../..", "/"},
        {"/..", ""},
        {"/../a/", ""},
        {"/a/../../", ""},
        {"/a/../../b/", ""},
        {"/a/.././../", ""},
        {"a/", "a/"},
        {"a/b/", "a/b/"},
        {"a/./b/", "a/b/"},
        {"./a/", "a/"},
        {"./", "/"},
        {"././", "/"},
        {"a/b/../", "a/"},
        {"a/../", ""},
        {"a/../b/", ""},
        {"../a/", ""},
        {"a/b/../../", ""},
        {"/.a/", "/.a/"},
        {"/..a/", "/..a/"},
        {"/a./b../", "/a./b../"},
        {"/.../", "/.../"},
        {"/a/..../b/", "/a/..../b/"},
        {".a/b/", ".a/b/"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mPath);
        ScriptScope theScope;
        sScript.mNormalized = theCase.mPath;  // doubled separators are to come through
        vxPathName thePath = vxPathName::MakeDirPath("x");
        thePath.SimplifyPath();
        EXPECT_EQ(Text(thePath.GetPath()), theCase.mResult);
        EXPECT_EQ(thePath.IsDirPath(), *theCase.mResult != '\0');
        EXPECT_EQ(thePath.IsValid(), *theCase.mResult != '\0');
    }
}

TEST(PathNameTest, SimplifyingKeepsTheNameUnlessThePathClimbsTooHigh) {
    vxPathName thePath = vxPathName::MakeFilePath("/a/../b/./c.d");
    thePath.SimplifyPath();
    EXPECT_EQ(Shown(thePath), "File /b/|c|d");
    vxPathName theHigh = vxPathName::MakeFilePath("/../c.d");
    theHigh.SimplifyPath();
    EXPECT_EQ(Shown(theHigh), "Unknown ||");
    vxPathName theInvalid;
    theInvalid.SimplifyPath();
    EXPECT_EQ(Shown(theInvalid), "Unknown ||");
}

TEST(PathNameTest, SimplifyingLeavesCopiesAlone) {
    const vxPathName theCopied = vxPathName::MakeDirPath("/a/../b");
    vxPathName thePath = theCopied;
    thePath.SimplifyPath();
    EXPECT_EQ(Shown(theCopied), "Dir /a/../b/||");
    EXPECT_EQ(Shown(thePath), "Dir /b/||");
}

TEST(PathNameTest, NormalizingEndsADirectoryWithASlash) {
    EXPECT_EQ(Text(vxPathName::NormalizePath("/a//b", false)), "/a/b");
    EXPECT_EQ(Text(vxPathName::NormalizePath("/a//b", true)), "/a/b/");
    EXPECT_EQ(Text(vxPathName::NormalizePath("", true)), "");
    EXPECT_EQ(Text(vxPathName::NormalizePathWithAnchor("b", false, "/a")), "/a/b");
    EXPECT_EQ(Text(vxPathName::NormalizePathWithAnchor("b", true, "/a")), "/a/b/");
    ScriptScope theScope;
    sScript.mNormalized = "/no/slash";
    EXPECT_EQ(Text(vxPathName::NormalizePath("x", true)), "/no/slash/");
    EXPECT_EQ(Text(vxPathName::NormalizePath("x", false)), "/no/slash");
    EXPECT_EQ(Shown(vxPathName::MakeDirPath("x")), "Dir /no/slash/||");
}

TEST(PathNameTest, ThePlatformIsToldTheKindAndTheAnchor) {
    ScriptScope theScope;
    const auto theTake = [] { return std::exchange(sScript.mAsked, std::string()); };
    vxPathName thePath = vxPathName::MakeFilePath("/a/b");
    EXPECT_EQ(theTake(), "[file /a/b]");
    thePath.SetPath("/c");
    EXPECT_EQ(theTake(), "[dir /c]");
    vxPathName::MakeFilePath("/d", "e");
    EXPECT_EQ(theTake(), "[dir /d]");
    vxPathName::MakeFilePath("/d", "e", "f");
    EXPECT_EQ(theTake(), "[dir /d]");
    vxPathName::NormalizePath("g", true);
    vxPathName::NormalizePath("g", false);
    vxPathName::NormalizePathWithAnchor("g", false, "/h");
    EXPECT_EQ(theTake(), "[dir g][file g][file g in /h]");
    const vxPathName theAnchor = vxPathName::MakeDirPath("/i");
    EXPECT_EQ(theTake(), "[dir /i]");
    vxPathName::MakeCombinedFilePath(theAnchor, "j");
    vxPathName::MakeCombinedDirPath(theAnchor, "../k");
    EXPECT_EQ(theTake(), "[file j in /i/][dir ../k in /i/]");
}

TEST(PathNameTest, APlatformWithoutAnAnswerMakesNoPath) {
    ScriptScope theScope;
    sScript.mfNormalizesToNull = true;
    EXPECT_EQ(Text(vxPathName::NormalizePath("/a", true)), "");
    EXPECT_EQ(Shown(vxPathName::MakeDirPath("/a")), "Unknown ||");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a/b")), "Unknown ||");
    EXPECT_EQ(Shown(vxPathName::MakeFilePath("/a", "b")), "Unknown ||");
}

TEST(PathNameTest, ThePlatformKnowsTheTemporaryAndTheCacheDirectory) {
    ScriptScope theScope;
    sScript.mTempDir = "/of/platform/tmp";
    sScript.mCacheDir = "/of/platform//cache/";
    EXPECT_EQ(Shown(vxPathName::MakeTempDirPath()), "Dir /of/platform/tmp/||");
    EXPECT_EQ(Shown(vxPathName::MakeCacheDirPath()), "Dir /of/platform/cache/||");
}

TEST(PathNameTest, AnExistingPathHasTheKindOfWhatIsThere) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file.txt");
    const std::string theSub = theDir.MakeDir("sub.d");
    EXPECT_EQ(Shown(vxPathName::MakeExistingPath(theFile.c_str())),
              "File " + theDir.Path() + "/|file|txt");
    EXPECT_EQ(Shown(vxPathName::MakeExistingPath(theSub.c_str())), "Dir " + theSub + "/||");
    EXPECT_EQ(Shown(vxPathName::MakeExistingPath((theDir / "none").c_str())), "Unknown ||");
    EXPECT_EQ(Shown(vxPathName::MakeExistingPath("")), "Unknown ||");
    EXPECT_EQ(Shown(vxPathName::MakeExistingPath(NULL)), "Unknown ||");
}

TEST(PathNameTest, ExistenceIsAskedForTheKindOfThePath) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file.txt");
    const std::string theSub = theDir.MakeDir("sub");
    EXPECT_TRUE(vxPathName::FileExists(theFile.c_str()));
    EXPECT_FALSE(vxPathName::FileExists(theSub.c_str()));
    EXPECT_TRUE(vxPathName::DirExists(theSub.c_str()));
    EXPECT_FALSE(vxPathName::DirExists(theFile.c_str()));
    EXPECT_FALSE(vxPathName::FileExists("none"));
    EXPECT_FALSE(vxPathName::DirExists(""));
    EXPECT_TRUE(vxPathName::MakeFilePath(theFile.c_str()).FileExists());
    EXPECT_FALSE(vxPathName::MakeFilePath(theFile.c_str()).DirExists());
    EXPECT_TRUE(vxPathName::MakeDirPath(theSub.c_str()).DirExists());
    EXPECT_FALSE(vxPathName::MakeDirPath(theSub.c_str()).FileExists());
    EXPECT_FALSE(vxPathName::MakeFilePath(theSub.c_str()).DirExists());
    EXPECT_FALSE(vxPathName().DirExists());
    EXPECT_FALSE(vxPathName().FileExists());
}

TEST(PathNameTest, OnlyPathsFromTheRootAreAbsolute) {
    EXPECT_TRUE(vxPathName::IsAbsolute("/a"));
    EXPECT_FALSE(vxPathName::IsAbsolute("a/b"));
    EXPECT_TRUE(vxPathName::IsAbsolute(vxPathName::MakeDirPath("/a")));
    EXPECT_FALSE(vxPathName::IsAbsolute(vxPathName()));
}

TEST(PathNameTest, OnlyTheRemovableTypeIsRemovable) {
    ScriptScope theScope;
    for (const int theType : {kvxPathType_Unknown, kvxPathType_Remote, kvxPathType_Fixed}) {
        sScript.mType = theType;
        EXPECT_FALSE(vxPathName::IsPathOnRemovableDrive("/a"));
    }
    sScript.mType = kvxPathType_Removable;
    EXPECT_TRUE(vxPathName::IsPathOnRemovableDrive("/a"));
}

TEST(PathNameTest, SettingThePathKeepsTheName) {
    vxPathName thePath = vxPathName::MakeFilePath("/a/b.c");
    thePath.SetPath("/x//y");
    EXPECT_EQ(Shown(thePath), "File /x/y/|b|c");
    thePath.SetPath("");
    EXPECT_EQ(Shown(thePath), "Unknown ||");
    thePath.SetPath("/x");
    EXPECT_EQ(Shown(thePath), "Dir /x/||");
    thePath.SetPath(NULL);
    EXPECT_EQ(Shown(thePath), "Unknown ||");
}

TEST(PathNameTest, TheFullNameIsSplitAtItsLastDot) {
    const struct {
        const char* mName;
        const char* mShown;
        const char* mFullName;
    } kCases[] = {
        {"b.txt", "File /a/|b|txt", "b.txt"},
        {"archive", "File /a/|archive|", "archive"},
        {"b.tar.gz", "File /a/|b.tar|gz", "b.tar.gz"},
        {".profile", "File /a/||profile", ".profile"},
        {"name.", "File /a/|name|", "name"},
        {".", "Dir /a/||", ""},
        {"", "Dir /a/||", ""},
        {NULL, "Dir /a/||", ""},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mName == NULL ? "NULL" : theCase.mName);
        vxPathName thePath = vxPathName::MakeFilePath("/a/old.ext");
        thePath.SetFullName(theCase.mName);
        EXPECT_EQ(Shown(thePath), theCase.mShown);
        EXPECT_EQ(Text(thePath.GetFullName()), theCase.mFullName);
        EXPECT_EQ(Text(thePath.GetFullPath()), std::string("/a/") + theCase.mFullName);
        EXPECT_EQ(thePath.c_str(), std::string("/a/") + theCase.mFullName);
    }
}

TEST(PathNameTest, NameAndExtensionDecideBetweenFileAndDir) {
    vxPathName thePath = vxPathName::MakeDirPath("/a");
    thePath.SetExtension("x");
    EXPECT_EQ(Shown(thePath), "File /a/||x");
    thePath.SetFileName("b");
    EXPECT_EQ(Shown(thePath), "File /a/|b|x");
    thePath.SetExtension("");
    EXPECT_EQ(Shown(thePath), "File /a/|b|");
    thePath.SetFileName("");
    EXPECT_EQ(Shown(thePath), "Dir /a/||");
    thePath.SetFileName("b.c");
    EXPECT_EQ(Shown(thePath), "File /a/|b.c|");
    EXPECT_EQ(Text(thePath.GetFullName()), "b.c");
    thePath.ToDirPath();
    EXPECT_EQ(Shown(thePath), "Dir /a/||");
    thePath.SetExtension(NULL);
    thePath.SetFileName(NULL);
    EXPECT_EQ(Shown(thePath), "Dir /a/||");
    for (const char* theName : {"b", "b.c", ".c"}) {
        thePath.SetFullName(theName);
        thePath.ToDirPath();
        EXPECT_EQ(Shown(thePath), "Dir /a/||") << theName;
    }
}

TEST(PathNameTest, WithoutADirectoryANameIsDropped) {
    vxPathName thePath;
    thePath.SetFullName("b.c");
    EXPECT_EQ(Shown(thePath), "Unknown ||");
    thePath.SetFileName("b");
    EXPECT_EQ(Shown(thePath), "Unknown ||");
    thePath.SetExtension("c");
    EXPECT_EQ(Shown(thePath), "Unknown ||");
    thePath.ToDirPath();
    EXPECT_EQ(Shown(thePath), "Unknown ||");
}

TEST(PathNameTest, ResettingDropsEverything) {
    vxPathName thePath = vxPathName::MakeFilePath("/a/b.c");
    thePath.Reset();
    EXPECT_EQ(Shown(thePath), "Unknown ||");
    EXPECT_STREQ(thePath.c_str(), "");
}

TEST(PathNameTest, APathCanBeMadeFromItsOwnParts) {
    vxPathName thePath = vxPathName::MakeFilePath("/a/b.c");
    thePath.SetFullName(thePath.GetFileName());
    EXPECT_EQ(Shown(thePath), "File /a/|b|");
    thePath.SetExtension(thePath.GetFileName());
    EXPECT_EQ(Shown(thePath), "File /a/|b|b");
    thePath.SetPath(thePath.GetPath());
    EXPECT_EQ(Shown(thePath), "File /a/|b|b");
    thePath.AppendPathPart(thePath.GetPath());
    EXPECT_EQ(Shown(thePath), "File /a//a/|b|b");
    thePath.SetFullPath(thePath.c_str(), kvxPathKind_File);
    EXPECT_EQ(Shown(thePath), "File /a/a/|b|b");
}

TEST(PathNameTest, SettingTheFullPathReplacesEverything) {
    vxPathName thePath = vxPathName::MakeFilePath("/a/b.c");
    thePath.SetFullPath("/d/e", kvxPathKind_Dir);
    EXPECT_EQ(Shown(thePath), "Dir /d/e/||");
    thePath.SetFullPath("/d/e", kvxPathKind_File);
    EXPECT_EQ(Shown(thePath), "File /d/|e|");
    thePath.SetFullPath("e", kvxPathKind_File);
    EXPECT_EQ(Shown(thePath), "Unknown ||");
}

TEST(PathNameTest, APartIsAppendedAsItIs) {
    vxPathName thePath;
    thePath.AppendPathPart("");
    EXPECT_EQ(Shown(thePath), "Unknown ||");
    thePath.AppendPathPart("/a//b");
    EXPECT_EQ(Shown(thePath), "Dir /a/b/||");
    thePath.AppendPathPart("c");
    EXPECT_EQ(Shown(thePath), "Dir /a/b/c/||");
    thePath.AppendPathPart("");
    thePath.AppendPathPart(NULL);
    EXPECT_EQ(Shown(thePath), "Dir /a/b/c/||");
    thePath.AppendPathPart("d//../e/");
    EXPECT_EQ(Shown(thePath), "Dir /a/b/c/d//../e/||");
    thePath.SetFullName("x.y");
    thePath.AppendPathPart("f");
    EXPECT_EQ(Shown(thePath), "File /a/b/c/d//../e/f/|x|y");
}

TEST(PathNameTest, PartsOfTheDirectoryAreCountedFromTheStart) {
    const struct {
        const char* mPath;
        size_t mCount;
        const char* mParts[4];
        const char* mDirName;
        const char* mVolume;
    } kCases[] = {
        {"/a/b", 3, {"", "a", "b", ""}, "b", "/"}, {"/", 1, {"", "", "", ""}, "", "/"},
        {"a/b", 2, {"a", "b", "", ""}, "b", "a/"}, {"a", 1, {"a", "", "", ""}, "a", "a/"},
        {"./a", 2, {".", "a", "", ""}, "a", "./"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mPath);
        vxPathName thePath = vxPathName::MakeDirPath(theCase.mPath);
        for (const bool theIsFile : {false, true}) {
            EXPECT_EQ(thePath.GetPathCount(), theCase.mCount);
            for (size_t i = 0; i < 4; ++i) {
                EXPECT_EQ(Text(thePath.GetPathPart(i)), theCase.mParts[i]) << i;
            }
            EXPECT_EQ(Text(thePath.GetPathPart(static_cast<size_t>(-1))), "");
            EXPECT_EQ(Text(thePath.GetDirName()), theCase.mDirName);
            EXPECT_EQ(Text(thePath.GetVolume()), theCase.mVolume);
            EXPECT_EQ(thePath.IsFilePath(), theIsFile);
            thePath.SetFullName("name.ext");
        }
    }
}

TEST(PathNameTest, TheParentHoldsTheFileOrDirectory) {
    const struct {
        int mKind;
        const char* mPath;
        const char* mParent;
    } kCases[] = {
        {kvxPathKind_File, "/a/b/c.txt", "Dir /a/b/||"},
        {kvxPathKind_File, "/x.t", "Dir /||"},
        {kvxPathKind_File, "a/x", "Dir a/||"},
        {kvxPathKind_Dir, "/a/b/", "Dir /a/||"},
        {kvxPathKind_Dir, "/a/", "Dir /||"},
        {kvxPathKind_Dir, "/", "Unknown ||"},
        {kvxPathKind_Dir, "a/b/", "Dir a/||"},
        {kvxPathKind_Dir, "a/", "Unknown ||"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mPath);
        EXPECT_EQ(Shown(vxPathName(theCase.mKind, theCase.mPath).GetParentPath()), theCase.mParent);
    }
}

TEST(PathNameTest, TheTextOfAPathStaysUntilItIsAskedForAgain) {
    vxPathName thePath = vxPathName::MakeFilePath("/a/b.c");
    const char* theText = thePath;
    thePath.SetExtension("d");
    EXPECT_STREQ(theText, "/a/b.c");
    EXPECT_STREQ(thePath, "/a/b.d");
}

TEST(PathNameTest, CopiesAreIndependent) {
    vxPathName thePath = vxPathName::MakeFilePath("/a/b.c");
    const char* theText = thePath.c_str();
    vxPathName theCopy = thePath;
    EXPECT_EQ(Shown(theCopy), "File /a/|b|c");
    EXPECT_NE(theCopy.c_str(), theText);
    EXPECT_STREQ(theCopy.c_str(), "/a/b.c");
    theCopy.SetPath("/x");
    EXPECT_EQ(Shown(thePath), "File /a/|b|c");
    thePath = theCopy;
    EXPECT_EQ(Shown(thePath), "File /x/|b|c");
    EXPECT_STREQ(thePath.c_str(), "/x/b.c");
    const vxPathName& theSame = thePath;
    thePath = theSame;
    EXPECT_EQ(Shown(thePath), "File /x/|b|c");
    thePath = vxPathName();
    EXPECT_EQ(Shown(thePath), "Unknown ||");
}

TEST(PathNameTest, ImpossiblePathsAreNotReported) {
    vxtest::Reports theReports;
    vxPathName::MakeFilePath("name.txt");
    vxPathName::MakeFilePath(NULL);
    vxPathName::MakeDirPath("");
    vxPathName().GetParentPath().SimplifyPath();
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}
