#include <libteskTools/ConfigFile.h>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/Reports.h"
#include "support/ScriptedIO.h"
#include "support/TempDir.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Fails;
using vxtest::Moves;
using vxtest::Reports;
using vxtest::ScriptedIO;
using vxtest::TempDir;

namespace {

constexpr char kReadOnly[] = "r.ini";
constexpr char kWritable[] = "w.ini";

struct Closer {
    void operator()(vxConfigFile* aFile) const { vxConfigFile_Delete(aFile); }
};
using Handle = std::unique_ptr<vxConfigFile, Closer>;

Handle Open(const TempDir& aDir) {
    return Handle(vxConfigFile_New((aDir / kReadOnly).c_str(), (aDir / kWritable).c_str(), "test"));
}

// Takes a text of the platform over; null is shown as "(null)".
std::string Text(char* aText) {
    const std::string theText = aText == nullptr ? "(null)" : aText;
    free(aText);
    return theText;
}

std::string Get(const Handle& aFile, const char* aSection, const char* aKey) {
    return Text(vxConfigFile_GetString(aFile.get(), aSection, aKey, "(none)"));
}

std::vector<std::string> Sections(const Handle& aFile, bool afWritableOnly) {
    std::vector<std::string> theNames;
    for (size_t i = 0; i < vxConfigFile_GetSectionCount(aFile.get(), afWritableOnly); ++i) {
        theNames.push_back(Text(vxConfigFile_GetSectionName(aFile.get(), i, afWritableOnly)));
    }
    return theNames;
}

std::vector<std::string> Keys(const Handle& aFile, const char* aSection, bool afWritableOnly) {
    std::vector<std::string> theNames;
    for (size_t i = 0; i < vxConfigFile_GetKeyCount(aFile.get(), aSection, afWritableOnly); ++i) {
        theNames.push_back(Text(vxConfigFile_GetKeyName(aFile.get(), aSection, i, afWritableOnly)));
    }
    return theNames;
}

std::vector<std::string> FilesIn(const TempDir& aDir) {
    std::vector<std::string> theNames;
    for (const auto& theEntry : std::filesystem::directory_iterator(aDir.Path())) {
        theNames.push_back(theEntry.path().filename().string());
    }
    std::sort(theNames.begin(), theNames.end());
    return theNames;
}

// Reading

struct LineCase {
    const char* mLine;
    const char* mKey;
    const char* mValue;
};

constexpr LineCase kLines[] = {
    {"a=1", "a", "1"},
    {"  a  =  1  ", "a", "1"},
    {"\ta\t=\t1\t\r", "a", "1"},
    {"a=", "a", ""},
    {"a=\"\"", "a", ""},
    {"a=b=c", "a", "b=c"},
    {"a = b ; c", "a", "b ; c"},
    {"two words=x", "two words", "x"},
    {"a=\"  x  \"", "a", "  x  "},
    {R"(a="l\nr\rt\tq\"b\\o\o")", "a", "l\nr\rt\tq\"b\\oo"},
    {R"(a="end\")", "a", "end\\"},
    {"a=\"", "a", "\""},
    {"a=\"open", "a", "\"open"},
    {R"(a=C:\n)", "a", "C:\\n"},
    {"A=1", "a", "(none)"},
    {";a=1", "a", "(none)"},
    {"#a=1", "#a", "(none)"},
    {"=1", "", "(none)"},
    {"a", "a", "(none)"},
    {"[a=1", "[a", "1"},
    {"\xEF\xBB\xBF \xEF\xBB\xBF[s]\nb=1\n[]\na=2", "a", "2"},
    {"\xC3\xA4=\xE2\x82\xAC", "\xC3\xA4", "\xE2\x82\xAC"},
    {"\xEF\xBB\xBF"
     "a=1",
     "a", "1"},
};

TEST(ConfigFileTest, ALineIsAKeyAndAValue) {
    for (const LineCase& theCase : kLines) {
        SCOPED_TRACE(theCase.mLine);
        const TempDir theDir;
        theDir.Write(kReadOnly, theCase.mLine);
        EXPECT_EQ(Get(Open(theDir), nullptr, theCase.mKey), theCase.mValue);
        theDir.Write(kReadOnly, std::string(theCase.mLine) + "\nz=1\n");
        EXPECT_EQ(Get(Open(theDir), "", theCase.mKey), theCase.mValue);
    }
}

TEST(ConfigFileTest, AHeaderBeginsASection) {
    const TempDir theDir;
    theDir.Write(kReadOnly,
                 "a=0\n[one]\na=1\n  [ two words ]  \na=2\n[one]\nb=3\n[]\nc=4\n[x\nd=5\n");
    const Handle theFile = Open(theDir);

    EXPECT_EQ(Get(theFile, nullptr, "a"), "0");
    EXPECT_EQ(Get(theFile, "one", "a"), "1");
    EXPECT_EQ(Get(theFile, "two words", "a"), "2");
    EXPECT_EQ(Get(theFile, "one", "b"), "3");
    EXPECT_EQ(Get(theFile, "", "c"), "4");
    EXPECT_EQ(Get(theFile, "", "d"), "5");
    EXPECT_EQ(Get(theFile, "One", "a"), "(none)");
    EXPECT_EQ(Get(theFile, "three", "a"), "(none)");
}

TEST(ConfigFileTest, TheLastOfEqualKeysCounts) {
    const TempDir theDir;
    theDir.Write(kReadOnly, "[s]\na=1\nb=2\na=3\n[t]\na=4\n[s]\na=5\n");
    const Handle theFile = Open(theDir);

    EXPECT_EQ(Get(theFile, "s", "a"), "5");
    EXPECT_THAT(Keys(theFile, "s", false), ElementsAre("b", "a"));
}

TEST(ConfigFileTest, AMissingKeyGivesTheDefaultAndANullDefaultIsNull) {
    const TempDir theDir;
    const Handle theFile = Open(theDir);

    EXPECT_EQ(Text(vxConfigFile_GetString(theFile.get(), "s", "k", "d")), "d");
    EXPECT_EQ(vxConfigFile_GetString(theFile.get(), "s", "k", nullptr), nullptr);
    EXPECT_EQ(Text(vxConfigFile_GetString(theFile.get(), "s", nullptr, "d")), "d");
}

TEST(ConfigFileTest, LinesWithANULAreKeptAndIgnored) {
    const TempDir theDir;
    const std::string theText("a=1\nb\0c=2\nd=3\0\n[e\0]\nf=4", 23);
    theDir.Write(kWritable, theText);
    const Handle theFile = Open(theDir);

    EXPECT_THAT(Keys(theFile, nullptr, false), ElementsAre("a", "f"));
    EXPECT_THAT(Sections(theFile, false), IsEmpty());
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "5"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "a=5" + theText.substr(3));
}

TEST(ConfigFileTest, BinaryFilesAreReadWithoutHarmAndWrittenBackToTheByte) {
    std::mt19937 theRandom(20260101);
    for (int i = 0; i < 60; ++i) {
        const TempDir theDir;
        std::string theText;
        const char kAlphabet[] = "ab=[];#\" \\\n\n\r\t\0\xFF";
        for (size_t j = theRandom() % 200; j != 0; --j) {
            theText += i % 2 == 0 ? static_cast<char>(theRandom())
                                  : kAlphabet[theRandom() % (sizeof(kAlphabet) - 1)];
        }
        theText += "\n";
        theDir.Write(kWritable, theText);
        const Handle theFile = Open(theDir);
        for (const std::string& theSection : Sections(theFile, false)) {
            EXPECT_THAT(Keys(theFile, theSection.c_str(), false), testing::Not(IsEmpty()));
        }
        EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), "new section", "key", "value"));
        EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
        const std::string theSaved = theDir.Read(kWritable);
        EXPECT_EQ(theSaved.substr(0, theText.size()), theText);
        EXPECT_EQ(theSaved.substr(theText.size()).find("[new section]"), 0u);
    }
}

TEST(ConfigFileTest, HugeFilesAreReadWhole) {
    const TempDir theDir;
    std::string theText;
    for (int i = 0; i < 100000; ++i) {
        theText += "[" + std::to_string(i / 10) + "]\nkey" + std::to_string(i) + "=" +
                   std::to_string(i) + "\n";
    }
    theDir.Write(kReadOnly, theText);
    const Handle theFile = Open(theDir);

    EXPECT_EQ(Sections(theFile, false).size(), 10000u);
    EXPECT_EQ(Get(theFile, "9999", "key99999"), "99999");
    EXPECT_TRUE(vxConfigFile_DeleteSection(theFile.get(), "9999"));
    EXPECT_EQ(vxConfigFile_GetSectionCount(theFile.get(), false), 9999u);
}

TEST(ConfigFileTest, ManyKeysOfOneNameAndOneSectionAreFastToListAndDelete) {
    const TempDir theDir;
    std::string theText = "[s]\n";
    for (int i = 0; i < 200000; ++i) {
        theText += "same=1\nk" + std::to_string(i) + "=1\n";
    }
    theDir.Write(kWritable, theText);
    const Handle theFile = Open(theDir);

    EXPECT_EQ(Keys(theFile, "s", false).size(), 200001u);
    EXPECT_TRUE(vxConfigFile_DeleteSection(theFile.get(), "s"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "");
}

TEST(ConfigFileTest, AFileAboveTheLimitCountsAsEmptyAndIsNotReplaced) {
    Reports theReports;
    const TempDir theDir;
    const size_t kLimit = 16 * 1024 * 1024;
    theDir.Write(kWritable, "a=1\n" + std::string(kLimit - 4, '#'));
    EXPECT_EQ(Get(Open(theDir), nullptr, "a"), "1");
    theDir.Write(kWritable, "a=1\n" + std::string(kLimit - 3, '#'));
    const Handle theFile = Open(theDir);

    EXPECT_EQ(Get(theFile, nullptr, "a"), "(none)");
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "2"));
    EXPECT_FALSE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(std::filesystem::file_size(theDir / kWritable), kLimit + 1);
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("Configuration 'test': cannot read '" + (theDir / kWritable) + "'\n",
                            "Configuration 'test': cannot save '" + (theDir / kWritable) +
                                "': the file exists but cannot be read\n"));
}

TEST(ConfigFileTest, WhatIsNoFileCountsAsEmpty) {
    Reports theReports;
    const TempDir theDir;
    theDir.MakeDir(kReadOnly);
    ASSERT_EQ(mkfifo((theDir / kWritable).c_str(), 0600), 0);

    const Handle theFile = Open(theDir);

    EXPECT_EQ(vxConfigFile_GetKeyCount(theFile.get(), nullptr, false), 0u);
    EXPECT_EQ(theReports.LogTexts().size(), 2u);
}

TEST(ConfigFileTest, MissingFilesAreNoReasonForARecord) {
    Reports theReports;
    const TempDir theDir;
    const Handle theFile = Open(theDir);
    EXPECT_EQ(Get(theFile, nullptr, "a"), "(none)");
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST(ConfigFileTest, ReadsGoOnAfterInterruptionsAndShortCounts) {
    const TempDir theDir;
    theDir.Write(kReadOnly, "key=a long value\n");
    ScriptedIO theIO;
    theIO.mOpens = {Fails(EINTR)};
    theIO.mReads = {Moves(3), Fails(EINTR), Moves(1), Moves(5)};

    EXPECT_EQ(Get(Open(theDir), nullptr, "key"), "a long value");
}

// Two files as one

TEST(ConfigFileTest, TheWritableCopyWins) {
    const TempDir theDir;
    theDir.Write(kReadOnly, "a=1\nb=2\n[s]\nc=3\n[t]\nd=4\n");
    theDir.Write(kWritable, "b=5\n[u]\ne=6\n[s]\nf=7\n");
    const Handle theFile = Open(theDir);

    EXPECT_EQ(Get(theFile, nullptr, "a"), "1");
    EXPECT_EQ(Get(theFile, nullptr, "b"), "5");
    EXPECT_THAT(Sections(theFile, false), ElementsAre("s", "t", "u"));
    EXPECT_THAT(Sections(theFile, true), ElementsAre("u", "s"));
    EXPECT_THAT(Keys(theFile, "s", false), ElementsAre("c", "f"));
    EXPECT_THAT(Keys(theFile, "s", true), ElementsAre("f"));
    EXPECT_THAT(Keys(theFile, nullptr, false), ElementsAre("a", "b"));
    EXPECT_THAT(Keys(theFile, "", true), ElementsAre("b"));
}

TEST(ConfigFileTest, NamesBeyondTheLastAreNull) {
    const TempDir theDir;
    theDir.Write(kReadOnly, "[s]\na=1\n");
    const Handle theFile = Open(theDir);

    EXPECT_EQ(vxConfigFile_GetSectionName(theFile.get(), 1, false), nullptr);
    EXPECT_EQ(vxConfigFile_GetKeyName(theFile.get(), "s", 1, false), nullptr);
    EXPECT_EQ(vxConfigFile_GetKeyName(theFile.get(), "x", 0, false), nullptr);
    EXPECT_EQ(vxConfigFile_GetSectionName(theFile.get(), 0, true), nullptr);
}

TEST(ConfigFileTest, ADeletedKeyOfTheReadOnlyFileIsRemembered) {
    const TempDir theDir;
    theDir.Write(kReadOnly, "[s]\na=1\nb=2\n");
    {
        const Handle theFile = Open(theDir);
        EXPECT_TRUE(vxConfigFile_DeleteKey(theFile.get(), "s", "a"));
        EXPECT_EQ(Get(theFile, "s", "a"), "(none)");
        EXPECT_FALSE(vxConfigFile_DeleteKey(theFile.get(), "s", "a"));
        EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    }
    EXPECT_EQ(theDir.Read(kWritable), "[s]\n;deleted=a\n");
    const Handle theFile = Open(theDir);
    EXPECT_EQ(Get(theFile, "s", "a"), "(none)");
    EXPECT_THAT(Keys(theFile, "s", false), ElementsAre("b"));
    EXPECT_THAT(Sections(theFile, true), IsEmpty());

    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), "s", "a", "3"));
    EXPECT_EQ(Get(theFile, "s", "a"), "3");
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "[s]\na=3\n");
    EXPECT_EQ(theDir.Read(kReadOnly), "[s]\na=1\nb=2\n");
}

TEST(ConfigFileTest, DeletingWhatBothFilesHaveHidesBoth) {
    const TempDir theDir;
    theDir.Write(kReadOnly, "a=1\n");
    theDir.Write(kWritable, "; mine\na=2\na=3\nb=4\n");
    const Handle theFile = Open(theDir);

    EXPECT_TRUE(vxConfigFile_DeleteKey(theFile.get(), nullptr, "a"));
    EXPECT_TRUE(vxConfigFile_DeleteKey(theFile.get(), nullptr, "b"));

    EXPECT_EQ(Get(theFile, nullptr, "a"), "(none)");
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "; mine\n;deleted=a\n");
}

TEST(ConfigFileTest, ADeletedSectionGoesWithItsHeaderUnlessSomethingElseIsInIt) {
    const TempDir theDir;
    theDir.Write(kReadOnly, "[r]\nx=1\n");
    theDir.Write(kWritable, "[s]\na=1\n\nb=2\n[t]\n; why\nc=3\n[s]\nd=4\n[r]\ny=2\n[empty]\n");
    const Handle theFile = Open(theDir);

    EXPECT_TRUE(vxConfigFile_DeleteSection(theFile.get(), "s"));
    EXPECT_TRUE(vxConfigFile_DeleteSection(theFile.get(), "t"));
    EXPECT_TRUE(vxConfigFile_DeleteSection(theFile.get(), "r"));
    EXPECT_FALSE(vxConfigFile_DeleteSection(theFile.get(), "r"));
    EXPECT_FALSE(vxConfigFile_DeleteSection(theFile.get(), "empty"));

    EXPECT_THAT(Sections(theFile, false), IsEmpty());
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "[t]\n; why\n[r]\n;deleted=x\n[empty]\n");
}

TEST(ConfigFileTest, AKeyThatComesBackTakesItsOldPlace) {
    const TempDir theDir;
    theDir.Write(kWritable, "a=1\nb=2\nc=3\n");
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_DeleteKey(theFile.get(), nullptr, "b"));
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "b", "4"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "a=1\nb=4\nc=3\n");
}

// Writing

TEST(ConfigFileTest, CommentsOrderAndUnknownLinesStay) {
    const TempDir theDir;
    theDir.Write(
        kWritable,
        "; settings\n\n  plain = 1 \nwhat is this\n[s]\n# first\nb=2\n\n; about t\n[t]\nc=3");
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), "s", "b", "4"));
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), "s", "new", "5"));
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "plain", "1"));
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "top", "6"));
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), "u", "d", "7"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));

    EXPECT_EQ(theDir.Read(kWritable),
              "; settings\n\n  plain = 1 \ntop=6\nwhat is this\n[s]\n# first\nb=4\nnew=5\n\n"
              "; about t\n[t]\nc=3\n[u]\nd=7\n");
}

TEST(ConfigFileTest, LineEndsStayAsTheyAre) {
    const TempDir theDir;
    theDir.Write(kWritable, "a=1\r\n[s]\r\nb=2\r\n");
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), "s", "b", "3"));
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), "t", "c", "4"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "a=1\r\n[s]\r\nb=3\r\n[t]\r\nc=4\r\n");
}

TEST(ConfigFileTest, AFileWithoutALineEndKeepsToThat) {
    const TempDir theDir;
    theDir.Write(kWritable, "a=1\nb=2");
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "3"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "a=3\nb=2");
}

constexpr const char* kValues[] = {
    "",    "plain", " blank in front", "blank behind ", "\t",     "two\nlines",  "cr\r",
    "\"",  "\"\"",  "\"quoted\"",      "a\"b",          "back\\", "\"\\\"",      "; no comment",
    "[s]", "a=b",   "\xC3\xA4\xFF",    "\\n",           " \\ ",   " \"\\\t\r\n",
};

TEST(ConfigFileTest, EveryValueComesBack) {
    for (const char* theValue : kValues) {
        SCOPED_TRACE(theValue);
        const TempDir theDir;
        const Handle theFile = Open(theDir);
        EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), "s", "k", theValue));
        EXPECT_EQ(Get(theFile, "s", "k"), theValue);
        EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
        EXPECT_EQ(Get(Open(theDir), "s", "k"), theValue);
    }
}

TEST(ConfigFileTest, ANullValueIsEmpty) {
    const TempDir theDir;
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "k", nullptr));
    EXPECT_EQ(Get(theFile, nullptr, "k"), "");
}

struct NameCase {
    const char* mSection;
    const char* mKey;
    bool mfGood;
};

constexpr NameCase kNames[] = {
    {nullptr, "k", true},  {"", "k", true},      {"a [b", "two words", true}, {"s", "", false},
    {"s", nullptr, false}, {"s", "a=b", false},  {"s", "a\nb", false},        {"s", "a\rb", false},
    {"s", "[k", false},    {"s", ";k", false},   {"s", "#k", false},          {"s", " k", false},
    {"s", "k\t", false},   {"s]", "k", false},   {"s\n", "k", false},         {" s", "k", false},
    {"s ", "k", false},    {"a\rb", "k", false}, {"s", "k;", true},           {"#s", "k#", true},
};

TEST(ConfigFileTest, NamesThatAFileCannotHoldAreRefused) {
    for (const NameCase& theCase : kNames) {
        SCOPED_TRACE(testing::Message() << (theCase.mSection ? theCase.mSection : "null") << " "
                                        << (theCase.mKey ? theCase.mKey : "null"));
        const TempDir theDir;
        const Handle theFile = Open(theDir);
        EXPECT_EQ(vxConfigFile_SetString(theFile.get(), theCase.mSection, theCase.mKey, "v"),
                  theCase.mfGood);
        EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
        EXPECT_EQ(theDir.Has(kWritable), theCase.mfGood);
        if (theCase.mfGood) {
            EXPECT_EQ(Get(Open(theDir), theCase.mSection, theCase.mKey), "v");
        }
    }
}

TEST(ConfigFileTest, ResetDropsChangesAndReadsAgain) {
    const TempDir theDir;
    theDir.Write(kReadOnly, "a=1\nb=2\n");
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "3"));
    EXPECT_TRUE(vxConfigFile_DeleteKey(theFile.get(), nullptr, "b"));
    theDir.Write(kReadOnly, "a=1\nb=2\nc=4\n");

    vxConfigFile_Reset(theFile.get());

    EXPECT_EQ(Get(theFile, nullptr, "a"), "1");
    EXPECT_THAT(Keys(theFile, nullptr, false), ElementsAre("a", "b", "c"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_FALSE(theDir.Has(kWritable));
}

TEST(ConfigFileTest, ChangesLiveInMemoryUntilTheyAreSaved) {
    const TempDir theDir;
    {
        const Handle theFile = Open(theDir);
        EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "1"));
    }
    EXPECT_FALSE(theDir.Has(kWritable));
}

TEST(ConfigFileTest, WithoutAWritableCopyThereIsNoSaving) {
    Reports theReports;
    const TempDir theDir;
    theDir.Write(kReadOnly, "a=1\n");
    const Handle theFile(vxConfigFile_New((theDir / kReadOnly).c_str(), nullptr, "alone"));

    EXPECT_FALSE(vxConfigFile_Save(theFile.get()));
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "2"));
    EXPECT_EQ(Get(theFile, nullptr, "a"), "2");
    EXPECT_FALSE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kReadOnly), "a=1\n");
    EXPECT_EQ(theReports.LogTexts().at(0),
              "Configuration 'alone': cannot save '': there is no writable copy\n");
}

TEST(ConfigFileTest, WhatOthersWroteMeanwhileStays) {
    const TempDir theDir;
    theDir.Write(kReadOnly, "r=1\n");
    theDir.Write(kWritable, "a=1\nb=2\n");
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "3"));
    EXPECT_TRUE(vxConfigFile_DeleteKey(theFile.get(), nullptr, "r"));
    theDir.Write(kWritable, "; rewritten\na=7\nb=8\n[s]\nc=9\n");

    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));

    EXPECT_EQ(theDir.Read(kWritable), "; rewritten\na=3\nb=8\n;deleted=r\n[s]\nc=9\n");
    EXPECT_EQ(Get(theFile, nullptr, "b"), "8");
    EXPECT_THAT(Sections(theFile, false), ElementsAre("s"));
}

TEST(ConfigFileTest, AFileThatWasRemovedMeanwhileHoldsOnlyTheChanges) {
    const TempDir theDir;
    theDir.Write(kWritable, "a=1\nb=2\n");
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "3"));
    unlink((theDir / kWritable).c_str());

    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "a=3\n");
}

TEST(ConfigFileTest, OfManyChangesOfAKeyTheLastIsMade) {
    const TempDir theDir;
    const Handle theFile = Open(theDir);
    for (int i = 0; i < 1000; ++i) {
        EXPECT_TRUE(vxConfigFile_SetInt32(theFile.get(), "s", "k", i));
        EXPECT_TRUE(vxConfigFile_DeleteKey(theFile.get(), "s", "k"));
        EXPECT_TRUE(vxConfigFile_SetUInt32(theFile.get(), "s", "k", 4294967295u));
    }
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "[s]\nk=4294967295\n");
}

TEST(ConfigFileTest, ALinkStaysAndItsFileIsReplaced) {
    const TempDir theDir;
    theDir.MakeDir("flash");
    theDir.Write("flash/real.ini", "a=1\n");
    theDir.Link(kWritable, "flash/real.ini");
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "2"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));

    EXPECT_TRUE(std::filesystem::is_symlink(theDir / kWritable));
    EXPECT_EQ(theDir.Read("flash/real.ini"), "a=2\n");
}

TEST(ConfigFileTest, ModeAndOwnerStay) {
    const TempDir theDir;
    theDir.Write(kWritable, "a=1\n");
    ASSERT_EQ(chmod((theDir / kWritable).c_str(), 0640), 0);
    // Not every root may give files away.
    const bool thefGiven = chown((theDir / kWritable).c_str(), 12345, 54321) == 0;
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "2"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));

    struct stat theStat;
    ASSERT_EQ(stat((theDir / kWritable).c_str(), &theStat), 0);
    EXPECT_EQ(theStat.st_mode & 0777u, 0640u);
    EXPECT_TRUE(!thefGiven || (theStat.st_uid == 12345 && theStat.st_gid == 54321));
}

TEST(ConfigFileTest, ANewFileHasTheModeThatTheProcessGives) {
    const TempDir theDir;
    const mode_t theOld = umask(027);
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "2"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    umask(theOld);

    struct stat theStat;
    ASSERT_EQ(stat((theDir / kWritable).c_str(), &theStat), 0);
    EXPECT_EQ(theStat.st_mode & 0777u, 0640u);
}

// Lets root feel what a user may not do.
class AsNobody {
public:
    explicit AsNobody(const TempDir& aDir) : mDir(aDir), mfRoot(geteuid() == 0) {
        mfRoot =
            mfRoot && chown(aDir.Path().c_str(), kNobody, kNobody) == 0 && seteuid(kNobody) == 0;
    }
    ~AsNobody() {
        if (mfRoot) {
            EXPECT_EQ(seteuid(0), 0);
        }
    }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

    // Is this a user now, and one who reaches the directory?
    bool IsOne() const {
        struct stat theStat;
        return geteuid() != 0 && stat(mDir.Path().c_str(), &theStat) == 0;
    }

private:
    static constexpr uid_t kNobody = 65534;
    const TempDir& mDir;
    bool mfRoot;  // and that again at the end
};

TEST(ConfigFileTest, AWriteProtectedFileIsNotReplaced) {
    Reports theReports;
    const TempDir theDir;
    theDir.Write(kWritable, "a=1\n");
    ASSERT_EQ(chmod((theDir / kWritable).c_str(), 0444), 0);
    const AsNobody theUser(theDir);
    if (!theUser.IsOne()) {
        GTEST_SKIP() << "nobody else may be here";
    }
    const Handle theFile = Open(theDir);
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "2"));

    EXPECT_FALSE(vxConfigFile_Save(theFile.get()));

    EXPECT_EQ(theDir.Read(kWritable), "a=1\n");
    EXPECT_THAT(FilesIn(theDir), ElementsAre(kWritable));
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("Configuration 'test': cannot save '" + (theDir / kWritable) +
                            "': Permission denied\n"));
}

TEST(ConfigFileTest, AWriteProtectedDirectoryKeepsTheOldFile) {
    const TempDir theDir;
    theDir.Write(kWritable, "a=1\n");
    ASSERT_EQ(chmod((theDir / kWritable).c_str(), 0666), 0);
    const AsNobody theUser(theDir);
    if (!theUser.IsOne()) {
        GTEST_SKIP() << "nobody else may be here";
    }
    ASSERT_EQ(chmod(theDir.Path().c_str(), 0555), 0);
    {
        const Handle theFile = Open(theDir);
        EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "2"));
        EXPECT_FALSE(vxConfigFile_Save(theFile.get()));
    }
    ASSERT_EQ(chmod(theDir.Path().c_str(), 0755), 0);
    EXPECT_EQ(theDir.Read(kWritable), "a=1\n");
}

TEST(ConfigFileTest, AMissingDirectoryFailsUntilItIsThere) {
    const TempDir theDir;
    const std::string thePath = theDir / "sub/w.ini";
    const Handle theFile(vxConfigFile_New(nullptr, thePath.c_str(), "test"));
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "1"));
    EXPECT_FALSE(vxConfigFile_Save(theFile.get()));
    theDir.MakeDir("sub");
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read("sub/w.ini"), "a=1\n");
}

TEST(ConfigFileTest, ALongNameIsNoObstacle) {
    const TempDir theDir;
    const std::string theName(255, 'n');
    const Handle theFile(vxConfigFile_New(nullptr, (theDir / theName).c_str(), "test"));
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "1"));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(theName), "a=1\n");
}

// Failing system calls

const vxtest::IOStep kGood = Moves(static_cast<size_t>(-1));

struct FailureCase {
    const char* mWhat;
    std::vector<vxtest::IOStep> ScriptedIO::*mSteps;
    std::vector<vxtest::IOStep> mScript;
};

// The calls of a save: the old file is opened, read and closed, the temporary one opened, written,
// synchronised, closed and renamed, the directory opened, synchronised and closed.
const FailureCase kFailures[] = {
    {"opening the old file", &ScriptedIO::mOpens, {Fails(EMFILE)}},
    {"reading the old file", &ScriptedIO::mReads, {Moves(2), Fails(EIO)}},
    {"opening the temporary file", &ScriptedIO::mOpens, {kGood, Fails(ENOSPC)}},
    {"writing", &ScriptedIO::mWrites, {Fails(ENOSPC)}},
    {"writing the rest", &ScriptedIO::mWrites, {Moves(1), Fails(EINTR), Moves(2), Fails(ENOSPC)}},
    {"writing nothing", &ScriptedIO::mWrites, {Moves(1), Moves(0)}},
    {"synchronising", &ScriptedIO::mSyncs, {Fails(EINTR), Fails(EIO)}},
    {"closing", &ScriptedIO::mCloses, {kGood, Fails(EIO)}},
    {"renaming", &ScriptedIO::mRenames, {Fails(EROFS)}},
};

TEST(ConfigFileTest, AFailingCallLeavesTheOldFileAndTheChanges) {
    for (const FailureCase& theCase : kFailures) {
        SCOPED_TRACE(theCase.mWhat);
        Reports theReports;
        const TempDir theDir;
        theDir.Write(kWritable, "; old\na=1\n");
        const Handle theFile = Open(theDir);
        EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "2"));
        {
            ScriptedIO theIO;
            theIO.*theCase.mSteps = theCase.mScript;
            EXPECT_FALSE(vxConfigFile_Save(theFile.get()));
            EXPECT_THAT(theIO.*theCase.mSteps, IsEmpty());
            EXPECT_EQ(theIO.mInvalidDescriptors, 0u);
        }
        EXPECT_EQ(theDir.Read(kWritable), "; old\na=1\n");
        EXPECT_THAT(FilesIn(theDir), ElementsAre(kWritable));
        EXPECT_EQ(theReports.LogTexts().size(), 1u);
        EXPECT_EQ(Get(theFile, nullptr, "a"), "2");

        EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
        EXPECT_EQ(theDir.Read(kWritable), "; old\na=2\n");
        EXPECT_THAT(FilesIn(theDir), ElementsAre(kWritable));
    }
}

const FailureCase kHarmless[] = {
    {"interruptions", &ScriptedIO::mOpens, {Fails(EINTR), kGood, Fails(EINTR), kGood}},
    {"short writes", &ScriptedIO::mWrites, {Moves(1), Fails(EINTR), Moves(3)}},
    {"the directory cannot be opened", &ScriptedIO::mOpens, {kGood, kGood, Fails(EACCES)}},
    {"the directory cannot be synchronised", &ScriptedIO::mSyncs, {kGood, Fails(EINVAL)}},
};

TEST(ConfigFileTest, SavingGoesOnAfterWhatDoesNoHarm) {
    for (const FailureCase& theCase : kHarmless) {
        SCOPED_TRACE(theCase.mWhat);
        const TempDir theDir;
        theDir.Write(kWritable, "; old\na=1\n");
        const Handle theFile = Open(theDir);
        EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "2"));
        ScriptedIO theIO;
        theIO.*theCase.mSteps = theCase.mScript;
        EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
        EXPECT_THAT(theIO.*theCase.mSteps, IsEmpty());
        EXPECT_EQ(theDir.Read(kWritable), "; old\na=2\n");
        EXPECT_THAT(FilesIn(theDir), ElementsAre(kWritable));
    }
}

TEST(ConfigFileTest, AnUnreadableFileIsNotReplacedByItsChanges) {
    Reports theReports;
    const TempDir theDir;
    theDir.Write(kWritable, "a=1\nb=2\n");
    theDir.Write(kReadOnly);
    ScriptedIO theIO;
    theIO.mOpens = {kGood, Fails(EACCES), Fails(EACCES)};
    const Handle theFile = Open(theDir);

    EXPECT_EQ(Get(theFile, nullptr, "a"), "(none)");
    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), nullptr, "a", "3"));
    EXPECT_FALSE(vxConfigFile_Save(theFile.get()));
    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
    EXPECT_EQ(theDir.Read(kWritable), "a=3\nb=2\n");
}

TEST(ConfigFileTest, AHalfWrittenFileIsReadAsFarAsItGoes) {
    const TempDir theDir;
    theDir.Write(kWritable, "a=1\n[s]\nb=2\nlong=half a val");
    theDir.Write(".vx1-0.tmp", "a=9");
    const Handle theFile = Open(theDir);

    EXPECT_EQ(Get(theFile, nullptr, "a"), "1");
    EXPECT_EQ(Get(theFile, "s", "long"), "half a val");
}

// Numbers, options, substitution

struct NumberCase {
    const char* mText;
    int64_t mInt32, mUInt32, mUInt16, mUInt8;  // 7 is the default
};

constexpr NumberCase kNumbers[] = {
    {"0", 0, 0, 0, 0},
    {"255", 255, 255, 255, 255},
    {"256", 256, 256, 256, 7},
    {"65535", 65535, 65535, 65535, 7},
    {"65536", 65536, 65536, 7, 7},
    {"2147483647", 2147483647, 2147483647, 7, 7},
    {"2147483648", 7, 2147483648, 7, 7},
    {"4294967295", 7, 4294967295, 7, 7},
    {"4294967296", 7, 7, 7, 7},
    {"-1", -1, 7, 7, 7},
    {"-2147483648", -2147483648LL, 7, 7, 7},
    {"-2147483649", 7, 7, 7, 7},
    {"+5", 5, 5, 5, 5},
    {"000000000000000000000000000000000012", 12, 12, 12, 12},
    {"0x10", 7, 7, 7, 7},
    {"1.5", 7, 7, 7, 7},
    {"1 2", 7, 7, 7, 7},
    {"", 7, 7, 7, 7},
    {"many", 7, 7, 7, 7},
};

TEST(ConfigFileTest, ANumberThatDoesNotConvertGivesTheDefault) {
    for (const NumberCase& theCase : kNumbers) {
        SCOPED_TRACE(theCase.mText);
        const TempDir theDir;
        theDir.Write(kReadOnly, std::string("[s]\nk = ") + theCase.mText + " \n");
        const Handle theFile = Open(theDir);
        EXPECT_EQ(vxConfigFile_GetInt32(theFile.get(), "s", "k", 7), theCase.mInt32);
        EXPECT_EQ(vxConfigFile_GetUInt32(theFile.get(), "s", "k", 7), theCase.mUInt32);
        EXPECT_EQ(vxConfigFile_GetUInt16(theFile.get(), "s", "k", 7), theCase.mUInt16);
        EXPECT_EQ(vxConfigFile_GetUInt8(theFile.get(), "s", "k", 7), theCase.mUInt8);
        EXPECT_EQ(vxConfigFile_GetInt32(theFile.get(), "s", "other", 7), 7);
    }
}

struct OptionCase {
    const char* mText;
    bool mfByFalse, mfByTrue;  // with either default
};

constexpr OptionCase kOptions[] = {
    {"1", true, true},        {"true", true, true},    {"TRUE", true, true},
    {"Yes", true, true},      {"on", true, true},      {"oN", true, true},
    {"0", false, false},      {"false", false, false}, {"False", false, false},
    {"NO", false, false},     {"off", false, false},   {"OfF", false, false},
    {"", false, true},        {"2", false, true},      {"01", false, true},
    {"truth", false, true},   {"tru", false, true},    {"-1", false, true},
    {"enabled", false, true}, {"\"yes\"", true, true}, {"\x4f\xee", false, true},
};

TEST(ConfigFileTest, AnOptionIsOneOfEightWords) {
    for (const OptionCase& theCase : kOptions) {
        SCOPED_TRACE(theCase.mText);
        const TempDir theDir;
        theDir.Write(kReadOnly, std::string("k=") + theCase.mText + "\n");
        const Handle theFile = Open(theDir);
        EXPECT_EQ(vxConfigFile_OptionIsSet(theFile.get(), nullptr, "k", false), theCase.mfByFalse);
        EXPECT_EQ(vxConfigFile_OptionIsSet(theFile.get(), nullptr, "k", true), theCase.mfByTrue);
        EXPECT_TRUE(vxConfigFile_OptionIsSet(theFile.get(), nullptr, "other", true));
        EXPECT_FALSE(vxConfigFile_OptionIsSet(theFile.get(), nullptr, "other", false));
    }
}

// Answers with the name between angles, and with null for "nothing".
char* Substitute(void* aContext, const char* aName) {
    ++*static_cast<int*>(aContext);
    return strcmp(aName, "nothing") == 0 ? nullptr
                                         : strdup(("<" + std::string(aName) + ">").c_str());
}

struct SubstitutionCase {
    const char* mText;
    const char* mResult;
    int mCalls;
};

constexpr SubstitutionCase kSubstitutions[] = {
    {"", "", 0},
    {"plain", "plain", 0},
    {"$(a)", "<a>", 1},
    {"x$(a)y$(b)z", "x<a>y<b>z", 2},
    {"$()", "<>", 1},
    {"[$(nothing)]", "[]", 1},
    {"$(open", "$(open", 0},
    {"$(a)$(open", "<a>$(open", 1},
    {"$a $ ( ) $$(b)", "$a $ ( ) $<b>", 1},
    {"$($(a))", "<$(a>)", 1},
};

TEST(ConfigFileTest, VariablesAreSubstituted) {
    for (const SubstitutionCase& theCase : kSubstitutions) {
        SCOPED_TRACE(theCase.mText);
        const TempDir theDir;
        theDir.Write(kReadOnly, std::string("k=") + theCase.mText + "\n");
        const Handle theFile = Open(theDir);
        for (const char* theKey : {"k", "absent"}) {
            int theCalls = 0;
            EXPECT_EQ(Text(vxConfigFile_GetStringWithSubstitution(
                          theFile.get(), nullptr, theKey, theCase.mText, Substitute, &theCalls)),
                      theCase.mResult);
            EXPECT_EQ(theCalls, theCase.mCalls);
        }
    }
}

TEST(ConfigFileTest, SubstitutionWithoutAFunctionOrAValueDoesNothing) {
    const TempDir theDir;
    const Handle theFile = Open(theDir);
    EXPECT_EQ(Text(vxConfigFile_GetStringWithSubstitution(theFile.get(), "s", "k", "$(a)", nullptr,
                                                          nullptr)),
              "$(a)");
    EXPECT_EQ(vxConfigFile_GetStringWithSubstitution(theFile.get(), "s", "k", nullptr, Substitute,
                                                     nullptr),
              nullptr);
}

// Misuse

TEST(ConfigFileTest, ANullHandleGivesDefaultsAndFails) {
    EXPECT_EQ(Text(vxConfigFile_GetString(nullptr, "s", "k", "d")), "d");
    EXPECT_EQ(vxConfigFile_GetInt32(nullptr, "s", "k", -5), -5);
    EXPECT_EQ(vxConfigFile_GetUInt32(nullptr, "s", "k", 5), 5u);
    EXPECT_EQ(vxConfigFile_GetUInt16(nullptr, "s", "k", 5), 5);
    EXPECT_EQ(vxConfigFile_GetUInt8(nullptr, "s", "k", 5), 5);
    EXPECT_TRUE(vxConfigFile_OptionIsSet(nullptr, "s", "k", true));
    EXPECT_FALSE(vxConfigFile_SetString(nullptr, "s", "k", "v"));
    EXPECT_FALSE(vxConfigFile_SetInt32(nullptr, "s", "k", 1));
    EXPECT_FALSE(vxConfigFile_SetUInt32(nullptr, "s", "k", 1));
    EXPECT_FALSE(vxConfigFile_DeleteKey(nullptr, "s", "k"));
    EXPECT_FALSE(vxConfigFile_DeleteSection(nullptr, "s"));
    EXPECT_EQ(vxConfigFile_GetSectionCount(nullptr, false), 0u);
    EXPECT_EQ(vxConfigFile_GetSectionName(nullptr, 0, false), nullptr);
    EXPECT_EQ(vxConfigFile_GetKeyCount(nullptr, "s", true), 0u);
    EXPECT_EQ(vxConfigFile_GetKeyName(nullptr, "s", 0, true), nullptr);
    EXPECT_FALSE(vxConfigFile_Save(nullptr));
    vxConfigFile_Reset(nullptr);
    vxConfigFile_Delete(nullptr);
}

// Directories

TEST(ConfigFileTest, DirectoriesAreMadeWithThoseAboveThem) {
    const TempDir theDir;
    theDir.Write("file");
    EXPECT_TRUE(
        vxConfigFile_CreatePaths(nullptr, (theDir / "a/b//c/").c_str(), theDir.Path().c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(theDir / "a/b/c"));
    EXPECT_TRUE(vxConfigFile_CreatePaths(nullptr, nullptr, ""));
    EXPECT_TRUE(vxConfigFile_CreatePaths(nullptr, "./", "."));
    EXPECT_FALSE(vxConfigFile_CreatePaths(nullptr, (theDir / "file").c_str(), nullptr));
    EXPECT_FALSE(
        vxConfigFile_CreatePaths(nullptr, (theDir / "file/x").c_str(), (theDir / "d").c_str()));
    EXPECT_TRUE(theDir.Has("d"));
}

// A model

using Model = std::map<std::pair<std::string, std::string>, std::string>;

TEST(ConfigFileTest, RandomWorkFollowsAPlainModel) {
    std::mt19937 theRandom(4711);
    const char* const kSections[] = {"", "s", "t"};
    const char* const kKeys[] = {"a", "b", "c", "d"};
    for (int theRun = 0; theRun < 10; ++theRun) {
        const TempDir theDir;
        theDir.Write(kReadOnly, "a=r1\nb=r2\n[s]\na=r3\nc=r4\na=r5\n");
        const Model theReadOnly = {
            {{"", "a"}, "r1"}, {{"", "b"}, "r2"}, {{"s", "a"}, "r5"}, {{"s", "c"}, "r4"}};
        Model theModel = theReadOnly;
        Model theSaved = theModel;
        Handle theFile = Open(theDir);
        for (int theStep = 0; theStep < 200; ++theStep) {
            const std::string theSection = kSections[theRandom() % 3];
            const std::string theKey = kKeys[theRandom() % 4];
            switch (theRandom() % 8) {
                case 0:
                    EXPECT_EQ(
                        vxConfigFile_DeleteKey(theFile.get(), theSection.c_str(), theKey.c_str()),
                        theModel.erase({theSection, theKey}) != 0);
                    break;
                case 1:
                    EXPECT_TRUE(vxConfigFile_Save(theFile.get()));
                    theSaved = theModel;
                    break;
                case 2:
                    theFile = Open(theDir);
                    theModel = theSaved;
                    break;
                case 3:
                    vxConfigFile_Reset(theFile.get());
                    theModel = theSaved;
                    break;
                case 4: {
                    bool theAny = false;
                    for (const char* theName : kKeys) {
                        theAny = theModel.erase({theSection, theName}) != 0 || theAny;
                    }
                    EXPECT_EQ(vxConfigFile_DeleteSection(theFile.get(), theSection.c_str()),
                              theAny);
                    break;
                }
                default: {
                    const std::string theValue = kValues[theRandom() % 20];
                    EXPECT_TRUE(vxConfigFile_SetString(theFile.get(), theSection.c_str(),
                                                       theKey.c_str(), theValue.c_str()));
                    theModel[{theSection, theKey}] = theValue;
                }
            }
            size_t theCount = 0;
            for (const char* theName : kSections) {
                for (const std::string& theListed : Keys(theFile, theName, false)) {
                    ASSERT_EQ(theModel.count({theName, theListed}), 1u);
                    ASSERT_EQ(Get(theFile, theName, theListed.c_str()),
                              (theModel[{theName, theListed}]));
                    ++theCount;
                }
            }
            ASSERT_EQ(theCount, theModel.size());
        }
    }
}

}  // namespace
