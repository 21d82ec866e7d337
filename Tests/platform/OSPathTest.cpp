#include <libvxOS/Path.h>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "support/Environment.h"
#include "support/TempDir.h"

using vxtest::Environment;
using vxtest::TempDir;

namespace {

uint32_t sFileSystem = 0;         // what statfs() tells, unless 0
const char* sDevice = nullptr;    // where the link below /sys/dev/block leads, unless null
const char* sFlag = nullptr;      // the file that stands in for "removable", unless null
const char* sFlagPath = nullptr;  // the end of the path for which it does

constexpr char kDevices[] = "/sys/dev/block/";

bool EndsWith(const std::string& aText, const std::string& anEnd) {
    return aText.size() >= anEnd.size() &&
           aText.compare(aText.size() - anEnd.size(), anEnd.size(), anEnd) == 0;
}

template <typename Function>
Function RealCall(const char* aName) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, aName));
}

// Takes a text of the platform over.
std::string Text(char* aText) {
    EXPECT_NE(aText, nullptr);
    const std::string theText = aText == nullptr ? "(null)" : aText;
    free(aText);
    return theText;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int statfs64(const char* aPath, struct statfs64* aState) {
    static const auto theCall = RealCall<int (*)(const char*, struct statfs64*)>("statfs64");
    const int theResult = theCall(aPath, aState);
    if (sFileSystem != 0) {
        aState->f_type = static_cast<decltype(aState->f_type)>(sFileSystem);
    }
    return theResult;
}

__attribute__((visibility("default"))) ssize_t readlink(const char* aPath, char* aText,
                                                        size_t aSize) {
    static const auto theCall = RealCall<ssize_t (*)(const char*, char*, size_t)>("readlink");
    if (sDevice == nullptr || strncmp(aPath, kDevices, sizeof(kDevices) - 1) != 0) {
        return theCall(aPath, aText, aSize);
    }
    const size_t theLength = strlen(sDevice) < aSize ? strlen(sDevice) : aSize;
    memcpy(aText, sDevice, theLength);
    return static_cast<ssize_t>(theLength);
}

__attribute__((visibility("default"))) int open64(const char* aPath, int aFlags, ...) {
    static const auto theCall = RealCall<int (*)(const char*, int, mode_t)>("open64");
    va_list theArgs;
    va_start(theArgs, aFlags);
    const mode_t theMode = (aFlags & O_CREAT) != 0 ? va_arg(theArgs, mode_t) : 0;
    va_end(theArgs);
    if (sFlag != nullptr && strncmp(aPath, kDevices, sizeof(kDevices) - 1) == 0) {
        return EndsWith(aPath, sFlagPath) ? theCall(sFlag, aFlags, theMode) : -1;
    }
    return theCall(aPath, aFlags, theMode);
}

}  // extern "C"

TEST(OSPathTest, ConstantsHaveTheirValues) {
    EXPECT_EQ(kvxPathNormalizeMode_Generic, 0x00);
    EXPECT_EQ(kvxPathNormalizeMode_NativeSlash, 0x01);
    EXPECT_EQ(kvxPathNormalizeMode_NativeForm, 0x02);
    EXPECT_EQ(kvxPathNormalizeMode_Native, 0x03);
    EXPECT_EQ(kvxPathType_Unknown, 0);
    EXPECT_EQ(kvxPathType_Remote, 1);
    EXPECT_EQ(kvxPathType_Fixed, 2);
    EXPECT_EQ(kvxPathType_Removable, 3);
}

TEST(OSPathTest, NormalizingMakesSeparatorsSingleAndResolvesAgainstTheAnchor) {
    const struct {
        const char* mPath;
        int mfDir;
        const char* mAnchor;
        const char* mResult;
    } kCases[] = {
        {"", 0, nullptr, ""},
        {"", 1, nullptr, ""},
        {"/", 0, nullptr, "/"},
        {"/", 1, nullptr, "/"},
        {"//", 1, nullptr, "/"},
        {"/a/b", 0, nullptr, "/a/b"},
        {"/a/b", 1, nullptr, "/a/b/"},
        {"/a/b/", 1, nullptr, "/a/b/"},
        {"/a/b/", 0, nullptr, "/a/b/"},
        {"///a//b///c//", 1, nullptr, "/a/b/c/"},
        {"///a//b///c", 0, nullptr, "/a/b/c"},
        {"a", 0, nullptr, "a"},
        {"a", 1, nullptr, "a/"},
        {"a//b", 0, "", "a/b"},
        {".", 1, nullptr, "./"},
        {"./a", 0, nullptr, "./a"},
        {"/a/./b/../c", 0, nullptr, "/a/./b/../c"},
        {"/../a", 0, nullptr, "/../a"},
        {"b", 0, "/a", "/a/b"},
        {"b", 0, "/a/", "/a/b"},
        {"b", 1, "/a/", "/a/b/"},
        {"b//c", 0, "//a//", "/a/b/c"},
        {"../b", 0, "/a/", "/a/../b"},
        {"/b", 0, "/a/", "/b"},
        {"//b", 0, "/a/", "/b"},
        {"b", 0, "a", "a/b"},
        {"", 0, "/a", "/a/"},
        {"", 1, "/a", "/a/"},
        {"a\\b", 0, nullptr, "a\\b"},
        {"\xff//\xfe", 0, nullptr, "\xff/\xfe"},
    };
    for (const auto& theCase : kCases) {
        for (int theMode = kvxPathNormalizeMode_Generic; theMode <= kvxPathNormalizeMode_Native;
             ++theMode) {
            SCOPED_TRACE(testing::Message() << theCase.mPath << " " << theCase.mfDir << " in "
                                            << (theCase.mAnchor ? theCase.mAnchor : "-"));
            EXPECT_EQ(
                Text(vxPath_Normalize(theCase.mPath, theCase.mfDir, theMode, theCase.mAnchor)),
                theCase.mResult);
        }
    }
}

TEST(OSPathTest, NormalizingANullPathGivesNull) {
    EXPECT_EQ(vxPath_Normalize(nullptr, 0, kvxPathNormalizeMode_Generic, "/a"), nullptr);
}

TEST(OSPathTest, TemporaryFilesGoWhereTheUserWants) {
    {
        Environment theValue("TMPDIR", "/elsewhere");
        EXPECT_EQ(Text(vxPath_GetTempDirPath()), "/elsewhere");
    }
    const char* const kNone[] = {"", nullptr};
    for (const char* theNone : kNone) {
        Environment theValue("TMPDIR", theNone);
        EXPECT_EQ(Text(vxPath_GetTempDirPath()), "/tmp");
    }
}

TEST(OSPathTest, CachedFilesGoWhereTheFirstVariableSays) {
    const struct {
        const char* mOwn;
        const char* mUserCache;
        const char* mHome;
        const char* mResult;
    } kCases[] = {
        {"/own", "/xdg", "/home/me", "/own"},
        {nullptr, "/xdg", "/home/me", "/xdg"},
        {"", "/xdg", "/home/me", "/xdg"},
        {nullptr, "relative", "/home/me", "/home/me/.cache"},
        {nullptr, nullptr, "/home/me", "/home/me/.cache"},
        {nullptr, "", "", "/var/cache"},
        {nullptr, nullptr, nullptr, "/var/cache"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mResult);
        Environment theOwn("VXCACHEPATH", theCase.mOwn);
        Environment theUserCache("XDG_CACHE_HOME", theCase.mUserCache);
        Environment theHome("HOME", theCase.mHome);
        EXPECT_EQ(Text(vxPath_GetCacheDirPath()), theCase.mResult);
    }
}

TEST(OSPathTest, TheApplicationKnowsItsFile) {
    const std::string thePath = Text(vxPath_GetApplicationFullPath());
    EXPECT_EQ(thePath, std::filesystem::canonical("/proc/self/exe").string());
    EXPECT_EQ(Text(vxPath_GetApplicationName()), "OSPathTest");
}

TEST(OSPathTest, OnlyPathsFromTheRootAreAbsolute) {
    EXPECT_TRUE(vxPath_IsAbsolute("/"));
    EXPECT_TRUE(vxPath_IsAbsolute("/a"));
    EXPECT_FALSE(vxPath_IsAbsolute("a/b"));
    EXPECT_FALSE(vxPath_IsAbsolute("./a"));
    EXPECT_FALSE(vxPath_IsAbsolute(""));
    EXPECT_FALSE(vxPath_IsAbsolute(nullptr));
}

TEST(OSPathTest, NothingLiesOnNothing) {
    TempDir theDir;
    EXPECT_EQ(vxPath_GetType((theDir / "none").c_str()), kvxPathType_Unknown);
    EXPECT_EQ(vxPath_GetType(""), kvxPathType_Unknown);
    EXPECT_EQ(vxPath_GetType(nullptr), kvxPathType_Unknown);
}

TEST(OSPathTest, MemoryIsFixed) {
    EXPECT_EQ(vxPath_GetType("/proc/version"), kvxPathType_Fixed);
    EXPECT_EQ(vxPath_GetType("/proc"), kvxPathType_Fixed);
}

TEST(OSPathTest, NetworkFileSystemsAreRemote) {
    constexpr uint32_t kTypes[] = {0x6969, 0xFF534D42, 0xFE534D42, 0x517B, 0x01021997};
    for (const uint32_t theType : kTypes) {
        SCOPED_TRACE(theType);
        sFileSystem = theType;
        EXPECT_EQ(vxPath_GetType("/"), kvxPathType_Remote);
    }
    sFileSystem = 0xEF53;
    EXPECT_NE(vxPath_GetType("/"), kvxPathType_Remote);
    sFileSystem = 0;
}

TEST(OSPathTest, DrivesAreRemovableByTheirFlagOrTheirBus) {
    TempDir theDir;
    const std::string theOne = theDir.Write("one", "1\n");
    const std::string theZero = theDir.Write("zero", "0\n");
    const struct {
        const char* mDevice;
        const std::string& mFlag;
        const char* mFlagPath;
        int mType;
    } kCases[] = {
        {"../../devices/pci0000:00/ata1/block/sr0", theOne, "/removable", kvxPathType_Removable},
        {"../../devices/pci0000:00/ata1/block/sda/sda1", theOne, "/../removable",
         kvxPathType_Removable},
        {"../../devices/pci0000:00/ata1/block/sda", theZero, "/removable", kvxPathType_Fixed},
        {"../../devices/pci0000:00/usb1/1-1/block/sdb/sdb1", theZero, "/../removable",
         kvxPathType_Removable},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mDevice);
        sDevice = theCase.mDevice;
        sFlag = theCase.mFlag.c_str();
        sFlagPath = theCase.mFlagPath;
        EXPECT_EQ(vxPath_GetType("/"), theCase.mType);
    }
    sDevice = nullptr;
    sFlag = nullptr;
}

TEST(OSPathTest, ALinkIsOneWhereverItLeads) {
    TempDir theDir;
    theDir.MakeDir("dir");
    const std::string theLink = theDir.Link("link", "dir");
    EXPECT_TRUE(vxPath_IsLink(theLink.c_str()));
    EXPECT_TRUE(vxPath_IsLink((theLink + "//").c_str()));
    EXPECT_TRUE(vxPath_IsLink(theDir.Link("dangling", "none").c_str()));
    EXPECT_FALSE(vxPath_IsLink((theDir / "dir/").c_str()));
    EXPECT_FALSE(vxPath_IsLink((theLink + "/.").c_str()));
    EXPECT_FALSE(vxPath_IsLink((theDir / "none").c_str()));
    EXPECT_FALSE(vxPath_IsLink("/"));
    EXPECT_FALSE(vxPath_IsLink(""));
    EXPECT_FALSE(vxPath_IsLink(nullptr));
}

TEST(OSPathTest, SettingsLieWhereTheEnvironmentSays) {
    const Environment theGiven("VXCONFIGPATH", "/flash/settings");
    const Environment theUsers("XDG_CONFIG_HOME", "/somewhere");

    EXPECT_EQ(Text(vxPath_GetDefaultConfigPath("ConfigPath.ini")), "/flash/settings");
}

TEST(OSPathTest, SettingsLieInTheFirstUsualDirectoryThatHasTheFile) {
    const TempDir theDir;
    const Environment theGiven("VXCONFIGPATH", "");
    const Environment theUsers("XDG_CONFIG_HOME", theDir.MakeDir("user").c_str());
    const Environment theSystems(
        "XDG_CONFIG_DIRS",
        ("relative::" + theDir.MakeDir("one") + ":" + theDir.MakeDir("two")).c_str());

    EXPECT_EQ(Text(vxPath_GetDefaultConfigPath("x.ini")), "/etc");
    theDir.Write("two/x.ini");
    EXPECT_EQ(Text(vxPath_GetDefaultConfigPath("x.ini")), theDir / "two");
    theDir.Write("one/x.ini");
    EXPECT_EQ(Text(vxPath_GetDefaultConfigPath("x.ini")), theDir / "one");
    theDir.Write("user/x.ini");
    EXPECT_EQ(Text(vxPath_GetDefaultConfigPath("x.ini")), theDir / "user");
    EXPECT_EQ(Text(vxPath_GetDefaultConfigPath("y.ini")), "/etc");
}

TEST(OSPathTest, SettingsOfAUserLieBelowHomeUnlessAnAbsolutePathIsGiven) {
    const TempDir theDir;
    theDir.MakeDir(".config");
    theDir.Write(".config/x.ini");
    const Environment theGiven("VXCONFIGPATH", nullptr);
    const Environment theUsers("XDG_CONFIG_HOME", "relative");
    const Environment theHome("HOME", theDir.Path().c_str());

    EXPECT_EQ(Text(vxPath_GetDefaultConfigPath("x.ini")), theDir / ".config");
}

TEST(OSPathTest, SettingsWithoutAnyHomeLieInEtc) {
    const Environment theGiven("VXCONFIGPATH", nullptr);
    const Environment theUsers("XDG_CONFIG_HOME", nullptr);
    const Environment theHome("HOME", nullptr);
    const Environment theSystems("XDG_CONFIG_DIRS", nullptr);

    EXPECT_EQ(Text(vxPath_GetDefaultConfigPath("no such file.ini")), "/etc");
}
