#include "library/LibraryEvaluator.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <string>

#include "library/SearchProperties.h"
#include "support/SmallStack.h"

using namespace vxmedia;

namespace {

struct MatchCase {
    const char* mCriteria;
    bool mfMatches;
};

struct ErrorCase {
    const char* mCriteria;
    const char* mError;
};

FileStatus File(uint64_t aSize) {
    FileStatus theStatus;
    theStatus.mKind = FileKind::Regular;
    theStatus.mSize = aSize;
    return theStatus;
}

// A song of 217.5 seconds with all tags, and 16 KB a second.
MediaReading Song() {
    MediaReading theReading;
    theReading.mFormat = &kMediaFormat_MP3;
    MediaFacts& theFacts = theReading.mFacts;
    theFacts.mChannels = 2;
    theFacts.mRate = 44100;
    theFacts.mBitRate = 128000;
    theFacts.mFrames = 44100 * 217 + 22050;
    theFacts.mfDurationKnown = true;
    MediaTags& theTags = theReading.mTags;
    theTags.mTitle = "Für Elise";
    theTags.mCreator = "Ludwig";
    theTags.mAlbum = "Bagatelles, \"No. 25\" \\ WoO 59";
    theTags.mGenre = "Classical";
    theTags.mDate = "1810-04-27";
    theTags.mTrack = 7;
    theTags.mCoverArt.mMimeType = "image/jpeg";
    theTags.mCoverArt.mBytes = MediaBytes(100, 50);
    return theReading;
}

MediaReading Photo() {
    MediaReading theReading;
    theReading.mFormat = &kMediaFormat_JPEG;
    theReading.mFacts.mWidth = 640;
    theReading.mFacts.mHeight = 480;
    theReading.mFacts.mBits = 24;
    return theReading;
}

class LibraryEvaluatorTest : public testing::Test {
protected:
    LibraryEvaluatorTest()
        : mSong(new MediaItem(7, "m/A.mp3")), mPhoto(new MediaItem(8, "p/B.jpg")) {
        mSong->Renew(File(3480000), Song());
        mPhoto->Renew(File(5000000000), Photo());
    }

    static bool Match(const std::string& aCriteria, const vxRef<MediaItem>& anItem) {
        LibraryCriteria theCriteria(aCriteria.c_str());
        EXPECT_STREQ(theCriteria.Read(), "") << aCriteria;
        return theCriteria.Match(*anItem.Get());
    }

    static std::string Error(const std::string& aCriteria) {
        return LibraryCriteria(aCriteria.c_str()).Read().c_str();
    }

    template <size_t N>
    static void Check(const MatchCase (&aCases)[N], const vxRef<MediaItem>& anItem) {
        for (const MatchCase& theCase : aCases) {
            SCOPED_TRACE(theCase.mCriteria);
            EXPECT_EQ(Match(theCase.mCriteria, anItem), theCase.mfMatches);
        }
    }

    template <size_t N>
    static void CheckErrors(const ErrorCase (&aCases)[N]) {
        for (const ErrorCase& theCase : aCases) {
            EXPECT_EQ(Error(theCase.mCriteria), theCase.mError) << theCase.mCriteria;
        }
    }

    // The song, with another date.
    void SetDate(const char* aDate) {
        MediaReading theReading = Song();
        theReading.mTags.mDate = aDate;
        mSong->Renew(File(1), theReading);
    }

    const vxRef<MediaItem> mSong;
    const vxRef<MediaItem> mPhoto;
};

TEST_F(LibraryEvaluatorTest, TheNamesOfMediaServersLeadToTheValues) {
    static constexpr MatchCase kCases[] = {
        {"dc:title = \"Für Elise\"", true},
        {"dc:creator = \"Ludwig\"", true},
        {"upnp:artist = \"Ludwig\"", true},
        {"upnp:genre = \"Classical\"", true},
        {"dc:date = \"1810-04-27\"", true},
        {"upnp:class = \"object.item.audioItem.musicTrack\"", true},
        {"upnp:originalTrackNumber = \"7\"", true},
        {"upnp:originalDiscNumber exists true", false},
        {"dc:language exists false", true},
        {"@id = \"7\"", true},
        {"@id = \"8\"", false},
        {"@refID exists false", true},
        {"res exists true", true},
        {"res@size = \"3480000\"", true},
        {"res@duration = \"217500\"", true},
        {"res@bitrate = \"16000\"", true},
        {"res@sampleFrequency = \"44100\"", true},
        {"res@nrAudioChannels = \"2\"", true},
        {"res@bitsPerSample exists true", false},
        {"res@resolution exists true", false},
        {"res@colorDepth exists true", false},
        {"res@protection exists true", false},
        {"res@protocolInfo = \"http-get:*:audio/mpeg:DLNA.ORG_PN=MP3\"", true},
        {"upnp:albumArtURI exists true", true},
    };
    Check(kCases, mSong);
    static constexpr MatchCase kPhotoCases[] = {
        {"dc:title = \"B\"", true},
        {"upnp:album = \"p/\"", true},
        {"upnp:class = \"object.item.imageItem.photo\"", true},
        {"res@size = \"5000000000\"", true},
        {"res@resolution = \"640x480\"", true},
        {"res@colorDepth = \"24\"", true},
        {"res@bitrate exists true", false},
        {"res@duration exists true", false},
        {"upnp:albumArtURI exists true", false},
    };
    Check(kPhotoCases, mPhoto);
}

TEST_F(LibraryEvaluatorTest, KeysAndReadableNamesAreNamesToo) {
    for (const ItemKey* theRow = kItemKeys; theRow->mKey != NULL; ++theRow) {
        const bool theIsKnown = !GetValue(*mSong->MakeInfo(), *theRow).IsEmpty();
        EXPECT_EQ(Match(std::string(theRow->mName) + " exists true", mSong), theIsKnown)
            << theRow->mName;
        if (theRow->mKind != ValueKind::Ordinal) {
            EXPECT_EQ(Match(std::string(theRow->mKey) + " exists true", mSong), theIsKnown);
            EXPECT_EQ(FindSearchProperty(theRow->mKey), FindSearchProperty(theRow->mName));
        }
    }
    EXPECT_EQ(FindSearchProperty("dc:title"), FindSearchProperty("ti"));
    EXPECT_EQ(FindSearchProperty("upnp:originalTrackNumber"), FindSearchProperty("track"));
    for (const char* theName : {"", "-", "Title", "TI", "dc:Title", "dc:", "res@", "ti ", "(ti"}) {
        EXPECT_EQ(FindSearchProperty(theName), -1) << theName;
    }
    EXPECT_EQ(FindSearchProperty(std::string(1 << 20, 't').c_str()), -1);
}

TEST_F(LibraryEvaluatorTest, TextsAreComparedAsTextsWithoutTheirCase) {
    static constexpr MatchCase kCases[] = {
        {"ti = \"FüR ELISE\"", true},
        {"ti = \"FÜR ELISE\"", false},
        {"ti = \"Für\"", false},
        {"ti != \"Für\"", true},
        {"ti != \"für elise\"", false},
        {"ti contains \"ELI\"", true},
        {"ti contains \"\"", false},
        {"ti doesNotContain \"ELI\"", false},
        {"ti doesNotContain \"x\"", true},
        {"cn derivedfrom \"object.item\"", true},
        {"cn derivedfrom \"Object.item\"", false},
        {"cn derivedfrom \"object.item.imageItem\"", false},
        {"ti like \"F*[a-e]\"", true},
        {"ti like \"f*\"", false},
        {"ti like \"F\"", false},
        {"an = \"bagatelles, \\\"No. 25\\\" \\\\ WoO 59\"", true},
        {"an contains \"\\\"no. 25\\\"\"", true},
        {"fp = \"m/A.mp3\"", true},
        {"al = \"\"", true},
        {"al != \"de\"", true},
        {"al doesNotContain \"de\"", true},
        {"al contains \"de\"", false},
    };
    Check(kCases, mSong);
}

TEST_F(LibraryEvaluatorTest, TextThatLooksLikeANumberOrADateStaysText) {
    mSong->SetEdits({{"ti", "1999"}, {"ge", "2.0"}, {"cr", "2015-06-30"}});
    static constexpr MatchCase kCases[] = {
        {"ti = \"1999\"", true},
        {"ti = \"01999\"", false},
        {"ti contains \"99\"", true},
        {"ge = \"2.0\"", true},
        {"ge = \"2\"", false},
        {"cr = \"2015-06-30\"", true},
        {"cr derivedfrom \"2015\"", true},
        {"cr = \"2015-06-30T00:00:00\"", false},
    };
    Check(kCases, mSong);
}

TEST_F(LibraryEvaluatorTest, NumbersAreComparedByValue) {
    static constexpr MatchCase kCases[] = {
        {"fs = \"3480000\"", true},   {"fs = \"03480000\"", true},
        {"fs != \"3480000\"", false}, {"fs != \"1\"", true},
        {"fs < \"3480000\"", false},  {"fs < \"3480001\"", true},
        {"fs <= \"3480000\"", true},  {"fs <= \"3479999\"", false},
        {"fs > \"3480000\"", false},  {"fs > \"3479999\"", true},
        {"fs >= \"3480000\"", true},  {"fs >= \"3480001\"", false},
        {"fs > \"9\"", true},         {"@id < \"10\"", true},
        {"track <= \"07\"", true},    {"fs < \"18446744073709551615\"", true},
    };
    Check(kCases, mSong);
}

TEST_F(LibraryEvaluatorTest, NumbersThatAreUnknownMatchOnlyThatTheyAre) {
    static constexpr MatchCase kCases[] = {
        {"wi = \"0\"", false},       {"wi != \"0\"", false},    {"wi < \"1\"", false},
        {"wi >= \"0\"", false},      {"wi exists true", false}, {"wi exists false", true},
        {"disc exists false", true}, {"fr != \"25\"", false},   {"vt != \"true\"", false},
    };
    Check(kCases, mSong);
    EXPECT_FALSE(Match("du != \"1\"", mPhoto));
    EXPECT_FALSE(Match("da != \"2015\"", mPhoto));
}

TEST_F(LibraryEvaluatorTest, DecimalsAndTruthsAreComparedByValue) {
    mSong->SetEdits({{"fr", "29.97"}, {"vt", "1"}, {"mv", "18446744073709551615"}});
    static constexpr MatchCase kCases[] = {
        {"fr = \"29.970\"", true},
        {"fr > \"25\"", true},
        {"fr < \"29.98\"", true},
        {"fr >= \"30\"", false},
        {"fr != \"2997e-2\"", false},
        {"vt = \"true\"", true},
        {"vt = \"yes\"", true},
        {"vt = \"1\"", true},
        {"vt != \"off\"", true},
        {"vt = \"false\"", false},
        {"vt exists true", true},
        {"mv = \"18446744073709551615\"", true},
        {"mv > \"18446744073709551614\"", true},
    };
    Check(kCases, mSong);
}

TEST_F(LibraryEvaluatorTest, DurationsMayBeWrittenAsTimes) {
    static constexpr MatchCase kCases[] = {
        {"res@duration = \"217500\"", true},       {"res@duration = \"0:03:37.500\"", true},
        {"res@duration = \"00:03:37.500\"", true}, {"res@duration > \"0:03:37\"", true},
        {"res@duration < \"0:03:38\"", true},      {"res@duration <= \"0:03:37\"", false},
        {"duration >= \"1:00:00\"", false},
    };
    Check(kCases, mSong);
}

// The date of the file, criteria.
TEST_F(LibraryEvaluatorTest, ADateStandsForAllThatIsInIt) {
    struct DateCase {
        const char* mDate;
        MatchCase mMatch;
    };
    static constexpr DateCase kCases[] = {
        {"2015-06-30", {"da = \"2015\"", true}},
        {"2015-06-30", {"da != \"2015\"", false}},
        {"2015-06-30", {"da > \"2015\"", false}},
        {"2015-06-30", {"da >= \"2015\"", true}},
        {"2015-06-30", {"da < \"2015\"", false}},
        {"2015-06-30", {"da <= \"2015\"", true}},
        {"2015-12-31T23:59:59.999", {"da = \"2015\"", true}},
        {"2016-01-01", {"da = \"2015\"", false}},
        {"2016-01-01", {"da > \"2015\"", true}},
        {"2016-01-01", {"da <= \"2015\"", false}},
        {"2014-12-31T23:59:59.999", {"da < \"2015\"", true}},
        {"2014-12-31", {"da != \"2015\"", true}},
        {"2015", {"da = \"2015\"", true}},
        {"2015", {"da = \"2015-01\"", true}},
        {"2015", {"da < \"2015-06-30\"", true}},
        {"2015-02", {"da = \"2015-02\"", true}},
        {"2015-02-28", {"da = \"2015-02\"", true}},
        {"2015-03-01", {"da = \"2015-02\"", false}},
        {"2016-02-29T23:59:59", {"da = \"2016-02\"", true}},
        {"2015-12-31", {"da = \"2015-12\"", true}},
        {"2016-01-01", {"da = \"2015-12\"", false}},
        {"2015-06-30T23:59:59.999", {"da = \"2015-06-30\"", true}},
        {"2015-07-01T00:00:00", {"da = \"2015-06-30\"", false}},
        {"2015-06-30 18:00", {"da = \"2015-06-30 18:00\"", true}},
        {"2015-06-30T18:00:59.999", {"da = \"2015-06-30T18:00\"", true}},
        {"2015-06-30T18:01:00", {"da = \"2015-06-30T18:00\"", false}},
        {"2015-06-30T18:00:00.999", {"da = \"2015-06-30T18:00:00\"", true}},
        {"2015-06-30T18:00:01", {"da = \"2015-06-30T18:00:00\"", false}},
        {"2015-06-30T18:00:00.001", {"da = \"2015-06-30T18:00:00.001\"", true}},
        {"2015-06-30T18:00:00.002", {"da = \"2015-06-30T18:00:00.001\"", false}},
        {"2015-06-30T18:00:00Z", {"da = \"2015-06-30T20:00:00+02:00\"", true}},
        {"2015-06-30T18:00:00", {"da = \"2015-06-30T18:00:00Z\"", true}},
        {"2015-06-30T18:00:00-05:30", {"da = \"2015-06-30T23:30:00Z\"", true}},
        {"0000-02-28", {"da < \"0000-02-29\"", true}},
        {"0000-02-29", {"da < \"0000-03-01\"", true}},
        {"0000-01-01", {"da = \"0000\"", true}},
        {"9999-12-31", {"da = \"9999\"", true}},
        {"1810-04-27", {"da < \"1850\"", true}},
        {"1900-02-28", {"da = \"1900-02\"", true}},
        {"1900-03-01", {"da = \"1900-02\"", false}},
    };
    for (const DateCase& theCase : kCases) {
        SCOPED_TRACE(std::string(theCase.mDate) + ": " + theCase.mMatch.mCriteria);
        SetDate(theCase.mDate);
        EXPECT_EQ(Match(theCase.mMatch.mCriteria, mSong), theCase.mMatch.mfMatches);
    }
}

TEST_F(LibraryEvaluatorTest, EveryDayIsOneAfterTheDayBefore) {
    int theDays = 0;
    const auto theCheck = [&](const std::string& aDay, const std::string& aNextDay) {
        ++theDays;
        const SearchProperty& theDate = GetSearchProperty(FindSearchProperty("da"));
        EXPECT_TRUE(theDate.Compare((aDay + "T23:59:59.999").c_str(),
                                    kvxExpressionOperandID_Smaller, aNextDay.c_str()));
        EXPECT_FALSE(theDate.Compare((aDay + "T23:59:59.999").c_str(),
                                     kvxExpressionOperandID_NotEqual, aDay.c_str()));
    };
    static constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    std::string theYesterday = "1895-12-31";
    for (int theYear = 1896; theYear <= 2004; ++theYear) {
        const bool theIsLeapYear = theYear % 4 == 0 && theYear != 1900;
        for (int theMonth = 1; theMonth <= 12; ++theMonth) {
            const int theLength = kLengths[theMonth - 1] + (theMonth == 2 && theIsLeapYear ? 1 : 0);
            for (int theDay = 1; theDay <= theLength; ++theDay) {
                const std::string theToday =
                    vxCString::Format("%04d-%02d-%02d", theYear, theMonth, theDay).c_str();
                theCheck(theYesterday, theToday);
                theYesterday = theToday;
            }
        }
    }
    EXPECT_EQ(theDays, 39812);
}

TEST_F(LibraryEvaluatorTest, DatesAreTextsForTheOperatorsOfTexts) {
    SetDate("Summer 2015");
    static constexpr MatchCase kCases[] = {
        {"da exists true", true},          {"da contains \"SUMMER\"", true},
        {"da like \"*2015\"", true},       {"da derivedfrom \"Summer\"", true},
        {"da doesNotContain \"x\"", true}, {"da = \"2015\"", false},
        {"da != \"2015\"", false},         {"da > \"1000\"", false},
    };
    Check(kCases, mSong);
}

TEST_F(LibraryEvaluatorTest, AndBindsCloserThanOr) {
    static constexpr MatchCase kCases[] = {
        {"*", true},
        {"  *  ", true},
        {"track = \"7\" and disc = \"1\" or ti exists true", true},
        {"ti exists true or track = \"7\" and disc = \"1\"", true},
        {"(ti exists true or track = \"7\") and disc = \"1\"", false},
        {"((((ti exists true))))", true},
    };
    Check(kCases, mSong);
}

TEST_F(LibraryEvaluatorTest, WrongGrammarIsReportedWithItsPlace) {
    static constexpr ErrorCase kCases[] = {
        {"", "ERROR: Criteria, byte 1: expected a property or \"(\""},
        {"   ", "ERROR: Criteria, byte 4: expected a property or \"(\""},
        {"ti", "ERROR: Criteria, byte 3: expected whitespace"},
        {"ti ", "ERROR: Criteria, byte 4: expected an operator"},
        {"ti=\"a\"", "ERROR: Criteria, byte 7: expected whitespace"},
        {"ti = a", "ERROR: Criteria, byte 6: expected a quoted value"},
        {"ti = 'a'", "ERROR: Criteria, byte 6: expected a quoted value"},
        {"ti = \"a", "ERROR: Criteria, byte 8: expected a closing quote"},
        {"ti = \"a\\\"", "ERROR: Criteria, byte 10: expected a closing quote"},
        {"ti exists \"true\"", "ERROR: Criteria, byte 11: expected true or false"},
        {"ti = \"a\" and", "ERROR: Criteria, byte 13: expected whitespace"},
        {"ti = \"a\" und cr = \"b\"",
         "ERROR: Criteria, byte 10: expected a logical operator or the end"},
        {"(ti = \"a\"", "ERROR: Criteria, byte 10: expected a logical operator or \")\""},
        {"* and ti = \"a\"", "ERROR: Criteria, byte 3: expected the end"},
    };
    CheckErrors(kCases);
}

TEST_F(LibraryEvaluatorTest, UnknownPropertiesAreNamed) {
    static constexpr ErrorCase kCases[] = {
        {"dc:foo = \"a\"", "ERROR: Criteria, byte 1: unknown property 'dc:foo'"},
        {"ti = \"a\" and (foo exists true)", "ERROR: Criteria, byte 15: unknown property 'foo'"},
        {"ti = \"a\" and f\x1B exists true", "ERROR: Criteria, byte 14: unknown property 'f\\x1B'"},
        {"%s%n = \"%s\"", "ERROR: Criteria, byte 1: unknown property '%s%n'"},
    };
    CheckErrors(kCases);
    EXPECT_EQ(Error(std::string(64, 'a') + " = \"\""),
              "ERROR: Criteria, byte 1: unknown property '" + std::string(64, 'a') + "'");
    EXPECT_EQ(Error(std::string(65, 'a') + " = \"\""),
              "ERROR: Criteria, byte 1: unknown property '" + std::string(64, 'a') + "...'");
}

TEST_F(LibraryEvaluatorTest, OperatorsThatAKindLacksAreRefused) {
    struct Kind {
        const char* mName;
        const char* mLiteral;
        const char* mOperators;  // in the order of the list below: 1 where it is supported
    };
    static constexpr const char* kOperators[] = {
        "=", "!=", "<", ">", "<=", ">=", "contains", "doesNotContain", "derivedfrom", "like"};
    static constexpr Kind kKinds[] = {
        {"dc:title", "x", "1100001111"},
        {"dc:date", "2015", "1111111111"},
        {"res@size", "1", "1111110000"},
        {"res@duration", "1", "1111110000"},
        {"fr", "1.5", "1111110000"},
        {"vt", "true", "1100000000"},
        {"res", "x", "0000000000"},
        {"track", "1", "1111110000"},
        {"res@resolution", "x", "1100001111"},
    };
    for (const Kind& theKind : kKinds) {
        EXPECT_EQ(Error(std::string(theKind.mName) + " exists true"), "");
        for (size_t i = 0; i < std::size(kOperators); ++i) {
            const std::string theCriteria =
                std::string(theKind.mName) + " " + kOperators[i] + " \"" + theKind.mLiteral + "\"";
            const std::string theError = "ERROR: Criteria, byte " +
                                         std::to_string(strlen(theKind.mName) + 2) +
                                         ": expected an operator that the property supports";
            EXPECT_EQ(Error(theCriteria), theKind.mOperators[i] == '1' ? "" : theError)
                << theCriteria;
        }
    }
}

TEST_F(LibraryEvaluatorTest, LiteralsOfAnotherKindAreRefusedWithTheirPlace) {
    static constexpr ErrorCase kCases[] = {
        {"fs = \"big\"", "ERROR: Criteria, byte 6: expected a number"},
        {"fs = \"\"", "ERROR: Criteria, byte 6: expected a number"},
        {"fs = \"-1\"", "ERROR: Criteria, byte 6: expected a number"},
        {"fs = \"1.5\"", "ERROR: Criteria, byte 6: expected a number"},
        {"fs = \"18446744073709551616\"", "ERROR: Criteria, byte 6: expected a number"},
        {"fr = \"fast\"", "ERROR: Criteria, byte 6: expected a number, with or without decimals"},
        {"vt = \"2\"", "ERROR: Criteria, byte 6: expected true or false"},
        {"du = \"3:37\"",
         "ERROR: Criteria, byte 6: expected milliseconds, or a duration as 1:02:03 or 1:02:03.456"},
        {"da = \"Summer\"",
         "ERROR: Criteria, byte 6: expected a date as 2015, 2015-06, 2015-06-30 or "
         "2015-06-30T18:00:00"},
        {"da = \"2015-02-29\"",
         "ERROR: Criteria, byte 6: expected a date as 2015, 2015-06, 2015-06-30 or "
         "2015-06-30T18:00:00"},
        {"da contains \"Summer\"", ""},
        // Behind other literals, groups and an operator without quotes.
        {"ti = \"a \\\" b\" and (cr exists true or (ge = \"\\\\\" and wi  >  \"x\")) and fs = "
         "\"y\"",
         "ERROR: Criteria, byte 60: expected a number"},
        {"fs = \"1\" or fs = \"2\" and fs = \"3\" or fs = \"x\"",
         "ERROR: Criteria, byte 43: expected a number"},
        {"(fs = \"1\" or fs = \"2\") and fs = \"x\" and fs = \"y\"",
         "ERROR: Criteria, byte 33: expected a number"},
    };
    CheckErrors(kCases);
}

TEST_F(LibraryEvaluatorTest, NothingMatchesWrongCriteria) {
    LibraryCriteria theUnread("*");
    EXPECT_FALSE(theUnread.Match(*mSong.Get()));
    LibraryCriteria theWrong("ti =");
    theWrong.Read();
    EXPECT_FALSE(theWrong.Match(*mSong.Get()));
}

TEST_F(LibraryEvaluatorTest, CriteriaMayBeAskedAboutOneItemAfterTheOther) {
    LibraryCriteria theCriteria("fs > \"4000000000\" or ti like \"F*\" and du > \"0:03:00\"");
    EXPECT_STREQ(theCriteria.Read(), "");
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(theCriteria.Match(*mSong.Get()));
        EXPECT_TRUE(theCriteria.Match(*mPhoto.Get()));
        EXPECT_EQ(Match("res@size < \"4000000000\"", mPhoto), false);
    }
}

TEST_F(LibraryEvaluatorTest, GroupsNestAThousandDeepOnASmallStack) {
    vxtest::OnSmallStack([this] {
        const std::string theDeep = std::string(1000, '(') + "fs = \"x\"" + std::string(1000, ')');
        EXPECT_EQ(Error(theDeep), "ERROR: Criteria, byte 1006: expected a number");

        EXPECT_TRUE(
            Match(std::string(1000, '(') + "ti exists true" + std::string(1000, ')'), mSong));
        EXPECT_EQ(Error(std::string(1001, '(') + "ti exists true" + std::string(1001, ')')),
                  "ERROR: Criteria, byte 1001: expected at most 1000 groups, one in another");
    });
}

TEST_F(LibraryEvaluatorTest, AMegabyteOfCriteriaIsReadOnASmallStack) {
    vxtest::OnSmallStack([this] {
        std::string theChain = "fs = \"0\"";
        while (theChain.size() < (1 << 20)) {
            theChain += " or (du > \"9:00:00\" and ti = \"x\")";
        }
        EXPECT_FALSE(Match(theChain, mSong));
        EXPECT_TRUE(Match(theChain + " or ti exists true", mSong));
        EXPECT_EQ(Error(theChain + " or fs = \"x\""), "ERROR: Criteria, byte " +
                                                          std::to_string(theChain.size() + 10) +
                                                          ": expected a number");
    });
}

}  // namespace
