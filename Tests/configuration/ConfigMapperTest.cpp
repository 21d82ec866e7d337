#include "vx/ConfigMapper.h"

#include <gmock/gmock.h>
#include <libvxLog/Log.h>

#include <string>
#include <vector>

#include "support/Environment.h"
#include "support/Reports.h"
#include "support/TempDir.h"
#include "vx/Config.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Environment;
using vxtest::Reports;
using vxtest::TempDir;

namespace {

constexpr vxConfigMapperInfo kEnd = {NULL, NULL, NULL, kvxConfigEntryType_none, NULL};

constexpr vxConfigMapperInfo kTable[] = {
    {"flag", "Main", "Flag", kvxConfigEntryType_bool, "1"},
    {"short", "Main", "Short", kvxConfigEntryType_int16, "-3"},
    {"port", "Main", "Port", kvxConfigEntryType_uint16, "8080"},
    {"long", "Main", "Long", kvxConfigEntryType_int32, "-2147483648"},
    {"size", "Main", "Size", kvxConfigEntryType_uint32, "4294967295"},
    {"name", "Main", "Name", kvxConfigEntryType_string, "Player"},
    {"file", "Main", "File", kvxConfigEntryType_filePath, "<READONLYPATH>/f.txt"},
    {"dir", "Main", "Dir", kvxConfigEntryType_dirPath, "<READWRITEPATH>/d"},
    {"list", "Main", "List", kvxConfigEntryType_CSVString, "a,b\\,c"},
    kEnd,
};

// A directory with the bootstrap file and a configuration of the given text.
class Fixture {
public:
    explicit Fixture(const std::string& aText)
        : mVariable("VXCONFIGPATH", mDir.Path().c_str()), mConfig(Write(aText), "", "x.ini") {}

    const vxConfig* Config() const { return &mConfig; }
    std::string operator/(const char* aName) const { return mDir / aName; }

private:
    const char* Write(const std::string& aText) {
        mDir.Write("ConfigPath.ini",
                   "ReadPath=" + mDir / "ro" + "\nWritePath=" + mDir / "rw" + "\n");
        mDir.Write("x.ini", aText);
        return mDir.Path().c_str();
    }

    const TempDir mDir;
    const Environment mVariable;
    const vxConfig mConfig;
};

std::vector<std::string> Items(const vxStringList& aList) {
    std::vector<std::string> theItems;
    for (size_t i = 0; i < aList.GetCount(); ++i) {
        theItems.push_back(aList.GetAt(i));
    }
    return theItems;
}

// A table of one row.
struct Row {
    Row(int aType, const char* aDefault) : mRows{{"o", "s", "k", aType, aDefault}, kEnd} {}
    operator const vxConfigMapperInfo*() const { return mRows; }
    vxConfigMapperInfo mRows[2];
};

TEST(ConfigMapperTest, EntryTypesHaveTheNumbersOfTheTables) {
    EXPECT_EQ(kvxConfigEntryType_none, 0);
    EXPECT_EQ(kvxConfigEntryType_bool, 1);
    EXPECT_EQ(kvxConfigEntryType_int16, 2);
    EXPECT_EQ(kvxConfigEntryType_uint16, 3);
    EXPECT_EQ(kvxConfigEntryType_int32, 4);
    EXPECT_EQ(kvxConfigEntryType_uint32, 5);
    EXPECT_EQ(kvxConfigEntryType_string, 6);
    EXPECT_EQ(kvxConfigEntryType_filePath, 7);
    EXPECT_EQ(kvxConfigEntryType_dirPath, 8);
    EXPECT_EQ(kvxConfigEntryType_CSVString, 9);
}

TEST(ConfigMapperTest, WithoutAConfigurationEveryOptionHasItsDefault) {
    Reports theReports;
    const Fixture theFixture("");
    vxConfigMapper theMapper;
    theMapper.Load(kTable, NULL);

    EXPECT_TRUE(theMapper.OptionSet("flag"));
    EXPECT_EQ(theMapper.GetInt16("short"), -3);
    EXPECT_EQ(theMapper.GetUInt16("port"), 8080);
    EXPECT_EQ(theMapper.GetInt32("long"), INT32_MIN);
    EXPECT_EQ(theMapper.GetUInt32("size"), 4294967295u);
    EXPECT_STREQ(theMapper.GetCString("name"), "Player");
    EXPECT_EQ(theMapper.GetPath("file").c_str(), theFixture / "ro/f.txt");
    EXPECT_EQ(theMapper.GetPath("dir").c_str(), theFixture / "rw/d/");
    EXPECT_THAT(Items(theMapper.GetCSVStringList("list")), ElementsAre("a", "b,c"));
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(ConfigMapperTest, ValuesComeFromTheirSectionAndKey) {
    Reports theReports;
    const Fixture theFixture(
        "[Main]\nFlag=off\nShort=-32768\nPort=65535\nLong=2147483647\nSize=7\nName= \" x \"\n"
        "File=/a/<READWRITEPATH>/b.c\nDir=/music\nList=x,,\\,y\\z,\n");
    vxConfigMapper theMapper(kTable);
    theMapper.Load(theFixture.Config());

    EXPECT_FALSE(theMapper.OptionSet("flag"));
    EXPECT_EQ(theMapper.GetInt16("short"), -32768);
    EXPECT_EQ(theMapper.GetUInt16("port"), 65535);
    EXPECT_EQ(theMapper.GetInt32("long"), 2147483647);
    EXPECT_EQ(theMapper.GetUInt32("size"), 7u);
    EXPECT_STREQ(theMapper.GetCString("name"), " x ");
    EXPECT_EQ(theMapper.GetPath("file").c_str(), "/a" + theFixture / "rw/b.c");
    EXPECT_STREQ(theMapper.GetPath("dir"), "/music/");
    EXPECT_THAT(Items(theMapper.GetCSVStringList("list")), ElementsAre("x", "", ",y\\z", ""));
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(ConfigMapperTest, ValuesThatDoNotFitGiveTheDefault) {
    const Fixture theFixture(
        "[Main]\nFlag=maybe\nShort=40000\nPort=65536\nLong=2147483648\nSize=-1\n");
    vxConfigMapper theMapper(kTable);
    theMapper.Load(theFixture.Config());

    EXPECT_TRUE(theMapper.OptionSet("flag"));
    EXPECT_EQ(theMapper.GetInt16("short"), -3);
    EXPECT_EQ(theMapper.GetUInt16("port"), 8080);
    EXPECT_EQ(theMapper.GetInt32("long"), INT32_MIN);
    EXPECT_EQ(theMapper.GetUInt32("size"), 4294967295u);
}

TEST(ConfigMapperTest, APrefixStandsBeforeSectionNames) {
    const Fixture theFixture(
        "[Audio]\nk=none\n[player.Audio]\nk=dot\n[p.Audio]\nk=own\n[.Audio]\nk=bare\n");
    constexpr vxConfigMapperInfo kRows[] = {{"o", "Audio", "k", kvxConfigEntryType_string, ""},
                                            kEnd};
    vxConfigMapper theMapper(kRows);
    const auto theLoaded = [&](const char* aPrefix) {
        theMapper.SetPrefix(aPrefix);
        theMapper.Load(theFixture.Config());
        return std::string(theMapper.GetCString("o"));
    };
    EXPECT_EQ(theLoaded("player"), "dot");
    EXPECT_EQ(theLoaded("p."), "own");
    EXPECT_EQ(theLoaded("."), "bare");
    EXPECT_EQ(theLoaded(""), "none");
    EXPECT_EQ(theLoaded("other"), "");
    EXPECT_EQ(theLoaded(NULL), "none");
}

TEST(ConfigMapperTest, LoadingAgainReplacesEverything) {
    const Fixture theFirst("[s]\nk=1\n");
    const Fixture theSecond("");
    const Row theRow(kvxConfigEntryType_uint32, "9");
    vxConfigMapper theMapper;
    theMapper.Load(theRow, theFirst.Config());
    EXPECT_EQ(theMapper.GetUInt32("o"), 1u);
    theMapper.Load(theSecond.Config());
    EXPECT_EQ(theMapper.GetUInt32("o"), 9u);
}

// Tables with mistakes

struct BadCase {
    int mType;
    const char* mDefault;
    std::vector<std::string> mAssertions;
};

const BadCase kBadDefaults[] = {
    {kvxConfigEntryType_bool, "true", {"thefOK"}},
    {kvxConfigEntryType_bool, "-1", {"thefOK"}},
    {kvxConfigEntryType_bool, "2", {}},
    {kvxConfigEntryType_int16, "x", {"thefOK"}},
    {kvxConfigEntryType_int16, "32767", {}},
    {kvxConfigEntryType_int16, "32768", {"(theInt32 >= -32768) && (theInt32 < 32768)"}},
    {kvxConfigEntryType_int16, "-32768", {}},
    {kvxConfigEntryType_int16, "-32769", {"(theInt32 >= -32768) && (theInt32 < 32768)"}},
    {kvxConfigEntryType_uint16, "65535", {}},
    {kvxConfigEntryType_uint16, "65536", {"(theUInt32 < 65536)"}},
    {kvxConfigEntryType_uint16, "70000", {"(theUInt32 < 65536)"}},
    {kvxConfigEntryType_uint16, "-1", {"thefOK"}},
    {kvxConfigEntryType_int32, "2147483648", {"thefOK"}},
    {kvxConfigEntryType_int32, "0x10", {"thefOK"}},
    {kvxConfigEntryType_uint32, "4294967296", {"thefOK"}},
    {kvxConfigEntryType_uint32, "", {"thefOK"}},
    {kvxConfigEntryType_uint32, NULL, {"thefOK"}},
    {kvxConfigEntryType_none, "1", {"Unsupported entry type"}},
    {10, "1", {"Unsupported entry type"}},
    {-1, "1", {"Unsupported entry type"}},
    {kvxConfigEntryType_string, NULL, {}},
    {kvxConfigEntryType_CSVString, NULL, {}},
};

TEST(ConfigMapperTest, BadDefaultsAreReportedWhenTheyAreLoaded) {
    const Fixture theFixture("[s]\nk=1\n");
    for (const BadCase& theCase : kBadDefaults) {
        SCOPED_TRACE(testing::Message()
                     << theCase.mType << " " << (theCase.mDefault ? theCase.mDefault : "null"));
        Reports theReports;
        const Row theRow(theCase.mType, theCase.mDefault);
        vxConfigMapper theMapper;
        theMapper.Load(theRow, NULL);
        EXPECT_EQ(theReports.Assertions(), theCase.mAssertions);
        theReports.Clear();
        theMapper.Load(theFixture.Config());
        EXPECT_EQ(theReports.Assertions(), theCase.mAssertions);
    }
}

TEST(ConfigMapperTest, ADefaultThatDoesNotFitIsTheNearestThatDoes) {
    Reports theReports;
    vxConfigMapper theMapper;
    const Row theUnsigned(kvxConfigEntryType_uint16, "70000");
    theMapper.Load(theUnsigned, NULL);
    EXPECT_EQ(theMapper.GetUInt16("o"), 65535);
    const Row theSigned(kvxConfigEntryType_int16, "-70000");
    theMapper.Load(theSigned, NULL);
    EXPECT_EQ(theMapper.GetInt16("o"), -32768);
    const Row theLarge(kvxConfigEntryType_int16, "32768");
    theMapper.Load(theLarge, NULL);
    EXPECT_EQ(theMapper.GetInt16("o"), 32767);
    const Row theText(kvxConfigEntryType_int32, "many");
    theMapper.Load(theText, NULL);
    EXPECT_EQ(theMapper.GetInt32("o"), 0);
}

TEST(ConfigMapperTest, AnyNumberButZeroIsATrueDefault) {
    Reports theReports;
    const Fixture theFixture("[s]\nk=perhaps\n");
    const struct {
        const char* mDefault;
        bool mValue;
    } kRows[] = {{"0", false}, {"00", false}, {"1", true}, {"2", true}, {"4294967295", true}};
    for (const auto& theCase : kRows) {
        SCOPED_TRACE(theCase.mDefault);
        const Row theRow(kvxConfigEntryType_bool, theCase.mDefault);
        vxConfigMapper theMapper;
        theMapper.Load(theRow, NULL);
        EXPECT_EQ(theMapper.OptionSet("o"), theCase.mValue);
        theMapper.Load(theFixture.Config());
        EXPECT_EQ(theMapper.OptionSet("o"), theCase.mValue);
    }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(ConfigMapperTest, TheFirstOfTwoRowsOfOneNameTellsTheType) {
    const vxConfigMapperInfo kTwice[] = {
        {"o", "s", "first", kvxConfigEntryType_uint16, "1"},
        {"o", "s", "second", kvxConfigEntryType_string, "two"},
        kEnd,
    };
    Reports theReports;
    vxConfigMapper theMapper;
    theMapper.Load(kTwice, NULL);
    EXPECT_EQ(theMapper.GetMapperInfo("o"), &kTwice[0]);
    theMapper.GetUInt16("o");
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_STREQ(theMapper.GetCString("o"), "");
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("CheckHasOption(anOptionName, kvxConfigEntryType_string)"));
}

TEST(ConfigMapperTest, RowsAreLoadedInTheOrderOfTheTable) {
    const vxConfigMapperInfo kRows[] = {
        {"o", "s", "first", kvxConfigEntryType_uint16, "1"},
        {"bad", "s", "k", kvxConfigEntryType_uint16, "65536"},
        {"o", "s", "second", kvxConfigEntryType_uint16, "2"},
        {"worse", "s", "k", kvxConfigEntryType_int16, "32768"},
        {"worst", "s", "k", 12, ""},
        kEnd,
    };
    Reports theReports;
    vxConfigMapper theMapper;
    theMapper.Load(kRows, NULL);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("(theUInt32 < 65536)", "(theInt32 >= -32768) && (theInt32 < 32768)",
                            "Unsupported entry type"));
    EXPECT_EQ(theMapper.GetUInt16("o"), 2);
}

TEST(ConfigMapperTest, WithoutATableThereIsNothing) {
    Reports theReports;
    vxConfigMapper theMapper;
    theMapper.Load(NULL);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mInfo != NULL"));
    theReports.Clear();
    EXPECT_EQ(theMapper.GetUInt16("port"), 0);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("CheckHasOption(anOptionName, kvxConfigEntryType_uint16)"));
    EXPECT_EQ(theMapper.GetMapperInfo("port"), nullptr);
    theMapper.Load(NULL, NULL);
    EXPECT_EQ(theReports.Assertions().back(), "mInfo != NULL");
}

// Getters that are misused

TEST(ConfigMapperTest, AGetterReportsANameOrATypeThatIsNotThere) {
    const Fixture theFixture("");
    vxConfigMapper theMapper;
    theMapper.Load(kTable, NULL);
    Reports theReports;
    const char* const kWrong[] = {"absent", "Flag", "", NULL};
    for (const char* theName : kWrong) {
        theReports.Clear();
        EXPECT_EQ(theMapper.GetUInt16(theName), 0);
        EXPECT_EQ(theMapper.GetInt16(theName), 0);
        EXPECT_EQ(theMapper.GetUInt32(theName), 0u);
        EXPECT_EQ(theMapper.GetInt32(theName), 0);
        EXPECT_FALSE(theMapper.OptionSet(theName));
        EXPECT_STREQ(theMapper.GetCString(theName), "");
        EXPECT_EQ(theMapper.GetCSVStringList(theName).GetCount(), 0u);
        EXPECT_FALSE(theMapper.GetPath(theName).IsValid());
        EXPECT_THAT(theReports.Assertions(),
                    ElementsAre("CheckHasOption(anOptionName, kvxConfigEntryType_uint16)",
                                "CheckHasOption(anOptionName, kvxConfigEntryType_int16)",
                                "CheckHasOption(anOptionName, kvxConfigEntryType_uint32)",
                                "CheckHasOption(anOptionName, kvxConfigEntryType_int32)",
                                "CheckHasOption(anOptionName, kvxConfigEntryType_bool)",
                                "CheckHasOption(anOptionName, kvxConfigEntryType_string)",
                                "CheckHasOption(anOptionName, kvxConfigEntryType_CSVString)",
                                "CheckHasOption(anOptionName, kvxConfigEntryType_none)"));
    }
    theReports.Clear();
    EXPECT_EQ(theMapper.GetUInt16("size"), 0);
    EXPECT_STREQ(theMapper.GetCString("list"), "");
    EXPECT_EQ(theReports.Assertions().size(), 2u);
}

TEST(ConfigMapperTest, GetPathAcceptsAnyType) {
    Reports theReports;
    const Fixture theFixture("[Main]\nName=/a/b.c\nList=/d\\\n");
    vxConfigMapper theMapper(kTable);
    theMapper.Load(theFixture.Config());
    EXPECT_TRUE(theMapper.GetPath("name").IsFilePath());
    EXPECT_STREQ(theMapper.GetPath("name"), "/a/b.c");
    EXPECT_TRUE(theMapper.GetPath("list").IsDirPath());
    EXPECT_FALSE(theMapper.GetPath("port").IsValid());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(ConfigMapperTest, AGetterBeforeLoadIsReported) {
    Reports theReports;
    const vxConfigMapper theMapper(kTable);
    EXPECT_EQ(theMapper.GetUInt16("port"), 0);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mPropertyList != NULL"));
    EXPECT_STREQ(theMapper.GetCString("name"), "");
    EXPECT_FALSE(theMapper.GetPath("file").IsValid());
    EXPECT_EQ(theMapper.GetInRange("port", 1, 10), 10u);  // of the default
    EXPECT_EQ(theReports.Assertions(), std::vector<std::string>(4, "mPropertyList != NULL"));
    theReports.Clear();
    EXPECT_EQ(theMapper.GetInRange("absent", 1, 10), 0u);
    EXPECT_THAT(
        theReports.Assertions(),
        ElementsAre("mPropertyList != NULL", "vxConfigMapper::GetInRange (unknown option)"));
}

// Paths

struct PathCase {
    int mType;
    const char* mText;
    const char* mPath;  // $R and $W stand for the two directories
};

constexpr PathCase kPaths[] = {
    {kvxConfigEntryType_filePath, "<READONLYPATH>/a", "$R/a"},
    {kvxConfigEntryType_filePath, "<READWRITEPATH>/a.b", "$W/a.b"},
    {kvxConfigEntryType_dirPath, "<READWRITEPATH>", "$W/"},
    {kvxConfigEntryType_dirPath, "/x/<READONLYPATH>/<READONLYPATH>", "/x$R$R/"},
    {kvxConfigEntryType_dirPath, "<READONLYPATH>/<READWRITEPATH>", "$R/<READWRITEPATH>/"},
    {kvxConfigEntryType_dirPath, "/<readonlypath>", "/<readonlypath>/"},
    {kvxConfigEntryType_dirPath, "/plain//dir", "/plain/dir/"},
    {kvxConfigEntryType_filePath, "./file", "./file"},
    {kvxConfigEntryType_filePath, "file", ""},
    {kvxConfigEntryType_dirPath, "dir", "dir/"},
    {kvxConfigEntryType_filePath, "", ""},
    {kvxConfigEntryType_dirPath, "", ""},
};

// The directories may hold anything themselves.
std::string Expanded(const std::string& aPath, const Fixture& aFixture) {
    std::string theResult;
    for (size_t i = 0; i < aPath.size(); ++i) {
        if (aPath[i] == '$') {
            theResult += aFixture / (aPath[++i] == 'R' ? "ro" : "rw");
        } else {
            theResult += aPath[i];
        }
    }
    return theResult;
}

TEST(ConfigMapperTest, OneKindOfPlaceholderIsReplacedInAPath) {
    for (const PathCase& theCase : kPaths) {
        SCOPED_TRACE(theCase.mText);
        const Fixture theFixture(std::string("[s]\nk=") + theCase.mText + "\n");
        const std::string theExpected = Expanded(theCase.mPath, theFixture);
        const Row theRow(theCase.mType, theCase.mText);
        vxConfigMapper theMapper;
        for (const vxConfig* theConfig :
             {theFixture.Config(), static_cast<const vxConfig*>(NULL)}) {
            theMapper.Load(theRow, theConfig);
            EXPECT_EQ(std::string(theMapper.GetPath("o").GetFullPath()), theExpected);
        }
    }
}

TEST(ConfigMapperTest, PlaceholdersOutsidePathsAreText) {
    const Fixture theFixture("[s]\nk=<READONLYPATH>\n");
    const Row theRow(kvxConfigEntryType_string, "");
    vxConfigMapper theMapper;
    theMapper.Load(theRow, theFixture.Config());
    EXPECT_STREQ(theMapper.GetCString("o"), "<READONLYPATH>");
}

// Ranges and flags

struct RangeCase {
    const char* mText;
    uint32_t mMin, mMax, mResult;
};

constexpr RangeCase kRanges[] = {
    // the default is 7
    {"0", 1, 10, 7},   {"0", 8, 10, 8},
    {"0", 1, 6, 6},    {"0", 0, 10, 0},
    {"0", 1, 0, 0},    {"0", 0, 0, 0},
    {"50", 1, 10, 10}, {"5", 1, 10, 5},
    {"1", 1, 10, 1},   {"10", 1, 10, 10},
    {"11", 1, 10, 10}, {"3", 4, 10, 4},
    {"5", 10, 1, 1},   {"65535", 1, 4294967295u, 65535},
};

TEST(ConfigMapperTest, ANumberIsClampedBelowThenAboveAndZeroMayBeTheDefault) {
    for (const int theType : {kvxConfigEntryType_uint16, kvxConfigEntryType_uint32}) {
        for (const RangeCase& theCase : kRanges) {
            SCOPED_TRACE(testing::Message()
                         << theCase.mText << " in " << theCase.mMin << ".." << theCase.mMax);
            const Fixture theFixture(std::string("[s]\nk=") + theCase.mText + "\n");
            const Row theRow(theType, "7");
            vxConfigMapper theMapper;
            theMapper.Load(theRow, theFixture.Config());
            EXPECT_EQ(theMapper.GetInRange("o", theCase.mMin, theCase.mMax), theCase.mResult);
        }
    }
}

TEST(ConfigMapperTest, ARangeOfAnotherOptionIsReported) {
    const Fixture theFixture("");
    vxConfigMapper theMapper;
    theMapper.Load(kTable, NULL);
    Reports theReports;
    EXPECT_EQ(theMapper.GetInRange("absent", 1, 10), 0u);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("vxConfigMapper::GetInRange (unknown option)"));
    for (const char* theName : {"flag", "short", "long", "name", "file", "dir", "list"}) {
        theReports.Clear();
        EXPECT_EQ(theMapper.GetInRange(theName, 1, 10), 0u);
        EXPECT_THAT(theReports.Assertions(),
                    ElementsAre("vxConfigMapper::GetInRange (invalid type)"));
    }
}

struct FlagCase {
    const char* mStored;
    const char* mNames;
    unsigned mResult;
};

constexpr FlagCase kFlags[] = {
    {"c,a,x", "a,b,c", 5}, {"", "a,b,c", 0},      {"A", "a,b,c", 0}, {"b,b", "a,b,c", 2},
    {"a,b,c", "a,b,c", 7}, {"x\\,y", "x\\,y", 1}, {"a", "b,a,a", 2}, {" a", "a,b,c", 0},
    {",", "a,,b", 2},      {"a,b,c", "", 0},
};

TEST(ConfigMapperTest, FlagNamesContributeTheirBits) {
    constexpr unsigned kValues[] = {1, 2, 4};
    for (const FlagCase& theCase : kFlags) {
        SCOPED_TRACE(theCase.mStored);
        const Row theRow(kvxConfigEntryType_CSVString, theCase.mStored);
        vxConfigMapper theMapper;
        theMapper.Load(theRow, NULL);
        EXPECT_EQ(theMapper.GetCSVStringValue("o", theCase.mNames, kValues), theCase.mResult);
    }
}

TEST(ConfigMapperTest, FlagsOfAnotherOptionAreReported) {
    const Row theRow(kvxConfigEntryType_string, "a");
    vxConfigMapper theMapper;
    theMapper.Load(theRow, NULL);
    Reports theReports;
    constexpr unsigned kValues[] = {1};
    EXPECT_EQ(theMapper.GetCSVStringValue("o", "a", kValues), 0u);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("CheckHasOption(anOptionName, kvxConfigEntryType_CSVString)"));
}

// Reports

TEST(ConfigMapperTest, ARowIsFoundByNameAndTheEndForAnyOther) {
    const vxConfigMapper theMapper(kTable);
    EXPECT_EQ(theMapper.GetMapperInfo("port"), &kTable[2]);
    EXPECT_EQ(theMapper.GetMapperInfo("Port"), &kTable[9]);
    EXPECT_EQ(theMapper.GetMapperInfo(NULL), &kTable[9]);
    EXPECT_EQ(vxConfigMapper().GetMapperInfo("port"), nullptr);
}

TEST(ConfigMapperTest, AnInvalidOptionIsLogged) {
    Reports theReports;
    vxConfigMapper theMapper(kTable);
    theMapper.SetPrefix("player");
    theMapper.DumpInvalidConfig("port", "x.ini");
    theMapper.DumpInvalidConfig("absent", "x.ini");
    vxConfigMapper().DumpInvalidConfig("port", "x.ini");

    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("vxConfigMapper: Missing/invalid configuration '[player.Main]Port' in "
                            "file 'x.ini' (option 'port')\n",
                            "vxConfigMapper: Missing/invalid configuration '[player.]' in file "
                            "'x.ini' (option 'absent')\n",
                            "vxConfigMapper: Internal error: missing option description for "
                            "'port'\n"));
    EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_ERROR);
    EXPECT_EQ(theReports.Records()[2].mLevel, VXLOGLEVEL_ERROR);
}

TEST(ConfigMapperTest, ADumpHasALineForEachOption) {
    const Fixture theFixture("[Main]\nFlag=no\n");
    vxConfigMapper theMapper(kTable);
    theMapper.Load(theFixture.Config());
    Reports theReports;

    theMapper.Dump(300);

    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("    flag=false\n", "    short=-3\n", "    port=8080\n",
                            "    long=-2147483648\n", "    size=4294967295\n",
                            "    name='Player'\n", "    file='" + theFixture / "ro/f.txt" + "'\n",
                            "    dir='" + theFixture / "rw/d/" + "'\n", "    list='a,b\\,c'\n"));
    EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_DEBUG);
    EXPECT_EQ(theReports.Records()[0].mModule, 300);
}

TEST(ConfigMapperTest, ADumpWithoutATableSaysSo) {
    Reports theReports;
    vxConfigMapper().Dump(300);
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("    No configuration\n"));
}

TEST(ConfigMapperTest, ADumpIsOnlyForModulesThatLogAtDebugLevel) {
    Reports theReports;
    vxLog_SetLevel(300, VXLOGLEVEL_INFO);
    vxConfigMapper().Dump(300);
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());

    vxLog_SetLevel(VXLOG_M_DEFAULT, VXLOGLEVEL_INFO);
    vxConfigMapper().Dump(301);
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("    No configuration\n"));
}

}  // namespace
