#include "vx/Config.h"

#include <gmock/gmock.h>
#include <libvxLog/Log.h>
#include <libvxOS/Path.h>
#include <libvxOS/User.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "support/Environment.h"
#include "support/Forward.h"
#include "support/Reports.h"
#include "support/TempDir.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Environment;
using vxtest::Reports;
using vxtest::TempDir;

namespace {

int64_t sUserID = 1000;
std::string sDefaultPathOf;  // the file whose default directory was asked for last

}  // namespace

extern "C" __attribute__((visibility("default"))) int64_t vxUser_GetID(void) {
    return sUserID;
}

char* vxPath_GetDefaultConfigPath(const char* aFileName) {
    sDefaultPathOf = aFileName;
    return VXTEST_REAL(vxPath_GetDefaultConfigPath)(aFileName);
}

namespace {

vxConfig* Open(const TempDir& aDir) {
    return new vxConfig(aDir.Path().c_str(), aDir.Path().c_str(), "x.ini");
}

using Owned = std::unique_ptr<vxConfig>;

// A bootstrap file in a directory of its own.
class Bootstrap {
public:
    explicit Bootstrap(const std::string& aText) : mVariable("VXCONFIGPATH", mDir.Path().c_str()) {
        mDir.Write("ConfigPath.ini", aText);
    }
    const TempDir& Dir() const { return mDir; }

private:
    const TempDir mDir;
    const Environment mVariable;
};

// Paths

struct PathCase {
    const char* mDirectory;
    const char* mFileName;
    const char* mPrefix;
    const char* mPath;
};

constexpr PathCase kPaths[] = {
    {"", "a\\b\\c.ini", "_", "./_c.ini"},
    {"/etc/app", "c.ini", "", "/etc/app/c.ini"},
    {"/etc/app/", "c.ini", "_", "/etc/app/_c.ini"},
    {"C:\\etc\\", "c.ini", "", "C:/etc/c.ini"},
    {"C:\\etc", "dir/c.ini", "", "C:/etc/c.ini"},
    {"\\", "/c.ini", "", "/c.ini"},
    {"a", "b/", "_", "a/_"},
    {"", "", "", "./"},
    {"a//", "c.ini", "p\\", "a//p\\c.ini"},
};

TEST(ConfigTest, APathIsDirectoryPrefixAndLastPartOfTheName) {
    for (const PathCase& theCase : kPaths) {
        SCOPED_TRACE(theCase.mPath);
        EXPECT_STREQ(vxConfig::GetValidPath(theCase.mDirectory, theCase.mFileName, theCase.mPrefix),
                     theCase.mPath);
    }
}

TEST(ConfigTest, APathLeavesTheTextsOfTheCallerAlone) {
    const vxCString theDirectory("a\\b");
    const vxCString theName("c\\d.ini");
    EXPECT_STREQ(vxConfig::GetValidPath(theDirectory, theName, ""), "a/b/d.ini");
    EXPECT_STREQ(theDirectory, "a\\b");
    EXPECT_STREQ(theName, "c\\d.ini");
}

TEST(ConfigTest, TheWritableCopyHasAnUnderscoreBeforeItsName) {
    const TempDir theDir;
    theDir.MakeDir("ro");
    theDir.MakeDir("rw");
    theDir.Write("ro/x.ini", "a=1\n");
    vxConfig theConfig((theDir / "ro").c_str(), (theDir / "rw").c_str(), "some/x.ini");

    EXPECT_STREQ(theConfig.GetCString(NULL, "a", ""), "1");
    EXPECT_TRUE(theConfig.SetString(NULL, "a", "2"));
    EXPECT_TRUE(theConfig.Save());

    EXPECT_EQ(theDir.Read("ro/x.ini"), "a=1\n");
    EXPECT_EQ(theDir.Read("rw/_x.ini"), "a=2\n");
}

TEST(ConfigTest, WithoutAWriteDirectoryNothingIsSaved) {
    Reports theReports;
    const TempDir theDir;
    theDir.Write("x.ini", "a=1\n");
    vxConfig theConfig(theDir.Path().c_str(), "", "x.ini");

    EXPECT_TRUE(theConfig.SetString(NULL, "a", "2"));
    EXPECT_FALSE(theConfig.Save());
    EXPECT_FALSE(theDir.Has("_x.ini"));
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("Configuration 'x.ini': cannot save '': there is no writable copy\n"));
}

// Values

TEST(ConfigTest, OperationsReachTheFile) {
    const TempDir theDir;
    theDir.Write("x.ini", "top=0\n[s]\na=1\nb=2\n[t]\nc=3\n");
    const Owned theConfig(Open(theDir));

    EXPECT_TRUE(theConfig->SetInt32("u", "i", -5));
    EXPECT_TRUE(theConfig->SetUInt32("u", "u", 4294967295u));
    EXPECT_EQ(theConfig->GetSectionCount(false), 3u);
    EXPECT_EQ(theConfig->GetSectionCount(true), 1u);
    EXPECT_STREQ(theConfig->GetSectionName(1, false), "t");
    EXPECT_STREQ(theConfig->GetSectionName(0, true), "u");
    EXPECT_STREQ(theConfig->GetSectionName(3, false), "");
    EXPECT_EQ(theConfig->GetKeyCount("s", false), 2u);
    EXPECT_EQ(theConfig->GetKeyCount("s", true), 0u);
    EXPECT_EQ(theConfig->GetKeyCount(NULL, false), 1u);
    EXPECT_STREQ(theConfig->GetKeyNameCString("s", 1, false), "b");
    EXPECT_STREQ(theConfig->GetKeyNameCString("u", 1, true), "u");
    EXPECT_STREQ(theConfig->GetKeyNameCString("s", 2, false), "");
    EXPECT_EQ(theConfig->GetInt32("u", "i", 0), -5);
    EXPECT_EQ(theConfig->GetUInt32("u", "u", 0), 4294967295u);
    EXPECT_TRUE(theConfig->DeleteKey("s", "a"));
    EXPECT_FALSE(theConfig->DeleteKey("s", "a"));
    EXPECT_TRUE(theConfig->DeleteSection("t"));
    EXPECT_FALSE(theConfig->DeleteSection("t"));
    EXPECT_STREQ(theConfig->GetCString("t", "c", "gone"), "gone");
    EXPECT_STREQ(theConfig->GetCString("t", "c", NULL), "");
    theConfig->Reset();
    EXPECT_STREQ(theConfig->GetCString("t", "c", "gone"), "3");
    EXPECT_EQ(theConfig->GetSectionCount(true), 0u);
}

TEST(ConfigTest, AnEmptyValueDeletesItsKeyWhereThatIsAsked) {
    const TempDir theDir;
    theDir.Write("x.ini", "[s]\na=1\n");
    const Owned theConfig(Open(theDir));

    EXPECT_TRUE(theConfig->SetStringIfNotEmpty("s", "a", "2"));
    EXPECT_STREQ(theConfig->GetCString("s", "a", "none"), "2");
    EXPECT_TRUE(theConfig->SetStringIfNotEmpty("s", "a", ""));
    EXPECT_STREQ(theConfig->GetCString("s", "a", "none"), "none");
    EXPECT_FALSE(theConfig->SetStringIfNotEmpty("s", "a", NULL));
    EXPECT_TRUE(theConfig->SetString("s", "a", ""));
    EXPECT_STREQ(theConfig->GetCString("s", "a", "none"), "");
}

struct SmallCase {
    const char* mText;
    int mInt16, mInt8, mUInt16, mUInt8;  // 5 is the default
};

constexpr SmallCase kSmall[] = {
    {"0", 0, 0, 0, 0},          {"127", 127, 127, 127, 127},
    {"128", 128, 5, 128, 128},  {"-128", -128, -128, 5, 5},
    {"-129", -129, 5, 5, 5},    {"255", 255, 5, 255, 255},
    {"256", 256, 5, 256, 5},    {"32767", 32767, 5, 32767, 5},
    {"32768", 5, 5, 32768, 5},  {"-32768", -32768, 5, 5, 5},
    {"-32769", 5, 5, 5, 5},     {"40000", 5, 5, 40000, 5},
    {"65535", 5, 5, 65535, 5},  {"65536", 5, 5, 5, 5},
    {"2147483647", 5, 5, 5, 5}, {"99999999999", 5, 5, 5, 5},
    {"x", 5, 5, 5, 5},
};

TEST(ConfigTest, ASmallNumberOutOfRangeGivesTheDefault) {
    for (const SmallCase& theCase : kSmall) {
        SCOPED_TRACE(theCase.mText);
        const TempDir theDir;
        theDir.Write("x.ini", std::string("[s]\nk=") + theCase.mText + "\n");
        const Owned theConfig(Open(theDir));
        EXPECT_EQ(theConfig->GetInt16("s", "k", 5), theCase.mInt16);
        EXPECT_EQ(theConfig->GetInt8("s", "k", 5), theCase.mInt8);
        EXPECT_EQ(theConfig->GetUInt16("s", "k", 5), theCase.mUInt16);
        EXPECT_EQ(theConfig->GetUInt8("s", "k", 5), theCase.mUInt8);
        EXPECT_EQ(theConfig->GetInt16("s", "absent", -7), -7);
        EXPECT_EQ(theConfig->GetInt8("s", "absent", -7), -7);
    }
}

TEST(ConfigTest, OptionsAreWords) {
    const TempDir theDir;
    theDir.Write("x.ini", "on=Yes\noff=No\nodd=perhaps\n");
    const Owned theConfig(Open(theDir));
    EXPECT_TRUE(theConfig->OptionIsSet(NULL, "on", false));
    EXPECT_FALSE(theConfig->OptionIsSet(NULL, "off", true));
    EXPECT_TRUE(theConfig->OptionIsSet(NULL, "odd", true));
    EXPECT_FALSE(theConfig->OptionIsSet(NULL, "absent", false));
}

TEST(ConfigTest, VariablesAreSubstitutedAndNullIsEmpty) {
    const TempDir theDir;
    theDir.Write("x.ini", "k=a $(name) b\n");
    const Owned theConfig(Open(theDir));
    const auto theNamed = [](void* aContext, const char* aName) {
        return strdup((std::string(static_cast<const char*>(aContext)) + aName).c_str());
    };
    const auto theNull = [](void*, const char*) -> char* { return nullptr; };
    char thePrefix[] = "my ";

    EXPECT_STREQ(theConfig->GetCStringWithSubstitution(NULL, "k", "", theNamed, thePrefix),
                 "a my name b");
    EXPECT_STREQ(theConfig->GetCStringWithSubstitution(NULL, "k", "", theNull, NULL), "a  b");
    EXPECT_STREQ(theConfig->GetCStringWithSubstitution(NULL, "none", NULL, theNamed, thePrefix),
                 "");
}

TEST(ConfigTest, WithoutAFileThereAreDefaultsOnly) {
    vxConfig theConfig;
    EXPECT_EQ(theConfig.GetConfigFile(), nullptr);
    EXPECT_STREQ(theConfig.GetCString("s", "k", "d"), "d");
    EXPECT_STREQ(theConfig.GetCStringWithSubstitution("s", "k", "d", NULL, NULL), "d");
    EXPECT_EQ(theConfig.GetInt16("s", "k", -3), -3);
    EXPECT_EQ(theConfig.GetInt32("s", "k", -3), -3);
    EXPECT_EQ(theConfig.GetUInt8("s", "k", 3), 3);
    EXPECT_TRUE(theConfig.OptionIsSet("s", "k", true));
    EXPECT_FALSE(theConfig.SetString("s", "k", "v"));
    EXPECT_FALSE(theConfig.SetInt32("s", "k", 1));
    EXPECT_FALSE(theConfig.DeleteKey("s", "k"));
    EXPECT_FALSE(theConfig.DeleteSection("s"));
    EXPECT_EQ(theConfig.GetSectionCount(false), 0u);
    EXPECT_STREQ(theConfig.GetSectionName(0, false), "");
    EXPECT_EQ(theConfig.GetKeyCount("s", false), 0u);
    EXPECT_STREQ(theConfig.GetKeyNameCString("s", 0, false), "");
    EXPECT_STREQ(theConfig.GetNonEmptyPath("s", "k"), "./");
    EXPECT_FALSE(theConfig.Save());
    theConfig.Reset();
}

TEST(ConfigTest, AnAbsentOrEmptyPathIsTheCurrentDirectory) {
    const TempDir theDir;
    theDir.Write("x.ini", "[s]\nempty=\nfull=/data\n");
    const Owned theConfig(Open(theDir));
    EXPECT_STREQ(theConfig->GetNonEmptyPath("s", "empty"), "./");
    EXPECT_STREQ(theConfig->GetNonEmptyPath("s", "absent"), "./");
    EXPECT_STREQ(theConfig->GetNonEmptyPath("s", "full"), "/data");
}

TEST(ConfigTest, PathsAreFetchedAndMadeOnDemand) {
    const TempDir theDir;
    theDir.Write("x.ini", "[s]\nr=" + theDir / "a/b" + "\nw=" + theDir / "c" +
                              "\nbad=" + theDir / "x.ini/d");
    const Owned theConfig(Open(theDir));
    vxCString theRead, theWrite;

    EXPECT_TRUE(theConfig->FetchConfigPaths("s", "r", "w", theRead, theWrite, false));
    EXPECT_EQ(theRead.c_str(), theDir / "a/b");
    EXPECT_EQ(theWrite.c_str(), theDir / "c");
    EXPECT_FALSE(theDir.Has("a"));
    EXPECT_TRUE(theConfig->FetchConfigPaths("s", "r", "w", theRead, theWrite, true));
    EXPECT_TRUE(theDir.Has("a/b"));
    EXPECT_TRUE(theDir.Has("c"));
    EXPECT_FALSE(theConfig->FetchConfigPaths("s", "r", "bad", theRead, theWrite, true));
    EXPECT_EQ(theWrite.c_str(), theDir / "x.ini/d");
}

// Bootstrap

TEST(ConfigConfigTest, PathsStandOutsideAnySection) {
    Reports theReports;
    const Bootstrap theFile("ReadPath=/no/read\nWritePath=/no/write\n[s]\nReadPath=/other\n");
    vxCString theRead, theWrite;

    vxConfigConfig("ConfigPath.ini").GetPaths(theRead, theWrite);

    EXPECT_STREQ(theRead, "/no/read");
    EXPECT_STREQ(theWrite, "/no/write");
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("vxConfigConfig: ReadOnly  Path='/no/read'\n",
                                                   "vxConfigConfig: ReadWrite Path='/no/write'\n"));
    EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_DEBUG);
    EXPECT_EQ(theReports.Records()[1].mLevel, VXLOGLEVEL_DEBUG);
}

TEST(ConfigConfigTest, PathsThatAreOnlyAskedForAreNotMade) {
    const TempDir theDir;
    const Bootstrap theFile("ReadPath=" + theDir / "r" + "\nWritePath=" + theDir / "w" + "\n");
    vxCString theRead, theWrite;
    vxConfigConfig("ConfigPath.ini").GetPaths(theRead, theWrite);
    EXPECT_EQ(theRead.c_str(), theDir / "r");
    EXPECT_FALSE(theDir.Has("r"));
    EXPECT_FALSE(theDir.Has("w"));
}

TEST(ConfigConfigTest, TheBootstrapLiesInTheDefaultDirectoryOfItsName) {
    const Bootstrap theFile("");
    theFile.Dir().Write("Other.ini", "[Brand]\nMBus=other\n");
    EXPECT_STREQ(vxConfigConfig::GetBrandInfo("MBus", "Other.ini"), "other");
    EXPECT_EQ(sDefaultPathOf, "Other.ini");
}

TEST(ConfigConfigTest, AbsentPathsAreTheCurrentDirectory) {
    const Bootstrap theFile("ReadPath=\n");
    vxCString theRead, theWrite;
    EXPECT_TRUE(vxConfigConfig::GetConfigPaths(theRead, theWrite, "ConfigPath.ini"));
    EXPECT_STREQ(theRead, "./");
    EXPECT_STREQ(theWrite, "./");
    EXPECT_TRUE(vxConfigConfig::GetConfigPaths(theRead, theWrite, "Missing.ini"));
    EXPECT_STREQ(theRead, "./");
}

TEST(ConfigConfigTest, CheckedPathsAreMade) {
    Reports theReports;
    const TempDir theDir;
    const Bootstrap theFile("ReadPath=" + theDir / "r" + "\nWritePath=" + theDir / "w" + "\n");
    vxCString theRead, theWrite;

    EXPECT_TRUE(vxConfigConfig::GetConfigPaths(theRead, theWrite, "ConfigPath.ini"));

    EXPECT_TRUE(theDir.Has("r"));
    EXPECT_TRUE(theDir.Has("w"));
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("vxConfigConfig: ReadOnly  Path='" + theDir / "r" + "'\n",
                            "vxConfigConfig: ReadWrite Path='" + theDir / "w" + "'\n"));
}

TEST(ConfigConfigTest, PathsThatCannotBeMadeAreAnError) {
    Reports theReports;
    const TempDir theDir;
    theDir.Write("file");
    const Bootstrap theFile("ReadPath=" + theDir / "r" + "\nWritePath=" + theDir / "file/w" + "\n");
    vxCString theRead, theWrite;

    EXPECT_FALSE(vxConfigConfig("ConfigPath.ini").GetAndCheckPaths(theRead, theWrite));

    EXPECT_EQ(theWrite.c_str(), theDir / "file/w");
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("vxConfigConfig: Cannot get checked paths (RO = '" + theDir / "r" +
                            "', RW = '" + theDir / "file/w" + "')\n"));
    EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_ERROR);
}

TEST(ConfigConfigTest, TheBootstrapHasNoWritableCopy) {
    const Bootstrap theFile("a=1\n");
    vxConfigConfig theConfig("ConfigPath.ini");
    EXPECT_TRUE(theConfig.SetString(NULL, "a", "2"));
    EXPECT_FALSE(theConfig.Save());
    EXPECT_EQ(theFile.Dir().Read("ConfigPath.ini"), "a=1\n");
}

// Brands

struct BrandCase {
    const char* mKey;
    const char* mPlain;  // nothing in the file, nothing in the environment
    const char* mEnvironment;
    const char* mGiven;
};

constexpr BrandCase kBrands[] = {
    {"MBus", "tesk", "acme", "given"},
    {"SBus", "", "", "given"},
    {"X_RPC", "", "acme", "given"},
    {"AppSet", "com.tesk.", "acme.", "given"},
    {"mbus", "", "", ""},
    {"Other", "", "", ""},
    {"", "", "", ""},
};

TEST(ConfigConfigTest, ABrandIsGivenOrTheEnvironmentsOrTheFallback) {
    for (const BrandCase& theCase : kBrands) {
        SCOPED_TRACE(theCase.mKey);
        const auto theGet = [&] {
            return std::string(vxConfigConfig::GetBrandInfo(theCase.mKey, "ConfigPath.ini"));
        };
        const Bootstrap theEmpty(std::string("[Brand]\n") + theCase.mKey + "=\n");
        {
            const Environment theNone("VXBRANDID", nullptr);
            EXPECT_EQ(theGet(), theCase.mPlain);
        }
        {
            const Environment theBlank("VXBRANDID", "");
            EXPECT_EQ(theGet(), theCase.mPlain);
        }
        const Environment theBrand("VXBRANDID", "acme");
        EXPECT_EQ(theGet(), theCase.mEnvironment);
        const Bootstrap theFile(std::string("[Brand]\n") + theCase.mKey + "=given\n");
        EXPECT_EQ(theGet(), theCase.mGiven);
    }
}

TEST(ConfigConfigTest, ANullBrandKeyIsAnUnknownOne) {
    EXPECT_STREQ(vxConfigConfig::GetBrandInfo(NULL, "ConfigPath.ini"), "");
}

TEST(ConfigConfigTest, TheUsersNumberIsPutIntoBrands) {
    const Bootstrap theFile("[Brand]\nMBus=box-%USERID%\nSBus=%USERID%/%USERID%\nX_RPC=%userid%\n");
    const auto theGet = [](const char* aKey) {
        return std::string(vxConfigConfig::GetBrandInfo(aKey, "ConfigPath.ini"));
    };
    sUserID = 1000;
    EXPECT_EQ(theGet("MBus"), "box-1000");
    EXPECT_EQ(theGet("SBus"), "1000/1000");
    EXPECT_EQ(theGet("X_RPC"), "%userid%");
    sUserID = 0;
    EXPECT_EQ(theGet("MBus"), "box-0");
    sUserID = 9223372036854775807;
    EXPECT_EQ(theGet("MBus"), "box-9223372036854775807");
    sUserID = -1;
    EXPECT_EQ(theGet("MBus"), "box-%USERID%");
    sUserID = 1000;
    const Environment theBrand("VXBRANDID", "u%USERID%");
    EXPECT_EQ(theGet("AppSet"), "u1000.");
}

}  // namespace
