#include "library/ItemKeys.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

using namespace vxmedia;

namespace {

constexpr const char* kAllKeys =
    "an ar bs ac ca ea at al ma sf ua ta r2 b2 h2 c2 e2 t2 l2 m2 s2 u2 br cn cd cr dl hh hr lv tm "
    "du eb "
    "fe fp fs ge vt he id hi ts mb md da rd mt ns ps pr ru su th ti us ud aa vr vh vc ev fr vl mv "
    "vp wi "
    "xe ";

TEST(ItemKeysTest, TheTableHasEachKeyOfTheLibraryOnceAndTheTwoOrdinals) {
    std::map<std::string, int> theCounts;
    for (const ItemKey* theRow = kItemKeys; theRow->mKey != nullptr; ++theRow) {
        theCounts[theRow->mKey] += 1;
    }
    EXPECT_EQ(theCounts["-"], 2);
    theCounts.erase("-");
    EXPECT_EQ(theCounts.size(), 67u);
    for (const auto& theCount : theCounts) {
        EXPECT_EQ(theCount.second, 1) << theCount.first;
        EXPECT_NE(std::string(kAllKeys).find(theCount.first + " "), std::string::npos)
            << theCount.first;
    }
}

TEST(ItemKeysTest, NamesAreDistinctWordsThatAreNoKeys) {
    std::set<std::string> theNames;
    for (const ItemKey* theRow = kItemKeys; theRow->mKey != nullptr; ++theRow) {
        const std::string theName = theRow->mName;
        EXPECT_TRUE(theNames.insert(theName).second) << theName;
        EXPECT_GT(theName.size(), 2u);
        EXPECT_EQ(theName.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"),
                  std::string::npos)
            << theName;
    }
}

TEST(ItemKeysTest, RowsAreFoundByKeyAndByName) {
    EXPECT_STREQ(FindItemKey("ti")->mName, "title");
    EXPECT_STREQ(FindItemKey("title")->mKey, "ti");
    EXPECT_EQ(FindItemKey("an"), FindItemKey("album"));
    EXPECT_EQ(FindItemKey("disc")->mKind, ValueKind::Ordinal);
    for (const char* theName : {"", "-", "TI", "Title", "titl", "title ", "zz"}) {
        EXPECT_EQ(FindItemKey(theName), nullptr) << theName;
    }
}

TEST(ItemKeysTest, EditsAreRememberedByKeyOrElseByName) {
    EXPECT_STREQ(EditNameOf(*FindItemKey("title")), "ti");
    EXPECT_STREQ(EditNameOf(*FindItemKey("track")), "track");
}

// Name, typed, stored; null where the value is refused.
constexpr struct {
    const char* mName;
    const char* mTyped;
    const char* mStored;
} kValues[] = {
    {"title", " two  words ", " two  words "},
    {"title", "\xC3\xA9", "\xC3\xA9"},
    {"title", "\xC3", nullptr},
    {"title", "a\xED\xA0\x80", nullptr},
    {"width", "0", "0"},
    {"width", "007", "7"},
    {"width", "4294967295", "4294967295"},
    {"width", "4294967296", nullptr},
    {"audio-tracks", "4294967296", nullptr},
    {"network-size", "18446744073709551615", "18446744073709551615"},
    {"network-size", "18446744073709551616", nullptr},
    {"width", "-1", nullptr},
    {"width", "1.5", nullptr},
    {"width", "1x", nullptr},
    {"track", "65535", "65535"},
    {"track", "65536", nullptr},
    {"video-frame-rate", "29.97", "29.97"},
    {"video-frame-rate", "25", "25"},
    {"video-frame-rate", "25.", nullptr},
    {"video-frame-rate", ".5", nullptr},
    {"video-frame-rate", "1e3", nullptr},
    {"has-video", "on", "1"},
    {"has-video", "TRUE", "1"},
    {"has-video", "no", "0"},
    {"has-video", "2", nullptr},
    {"duration", "217000", "217000"},
    {"duration", "0:03:37", "217000"},
    {"duration", "0:03:37.250", "217250"},
    {"duration", "12:59:59.999", "46799999"},
    {"duration", "999999999:00:00", "3599999996400000"},
    {"duration", "1000000000:00:00", nullptr},
    {"duration", "0:60:00", nullptr},
    {"duration", "0:00:60", nullptr},
    {"duration", "3:37", nullptr},
    {"duration", "0:3:37", nullptr},
    {"duration", "0:03:37.2", nullptr},
    {"duration", "0:03:37.2500", nullptr},
    {"duration", "0:03:37,250", nullptr},
    {"duration", ":03:37", nullptr},
    {"duration", "0:03:37 ", nullptr},
};

TEST(ItemKeysTest, TypedValuesTakeTheirStoredForm) {
    for (const auto& theRow : kValues) {
        SCOPED_TRACE(testing::Message() << theRow.mName << " " << theRow.mTyped);
        vxCString theValue = theRow.mTyped;
        const vxCString theError = NormalizeValue(*FindItemKey(theRow.mName), theValue);
        EXPECT_EQ(theError.IsEmpty(), theRow.mStored != nullptr);
        EXPECT_STREQ(theValue, theRow.mStored == nullptr ? theRow.mTyped : theRow.mStored);
    }
}

TEST(ItemKeysTest, RefusalsSayWhatAValueIs) {
    const auto theError = [](const char* aName, const char* aTyped) {
        vxCString theValue = aTyped;
        return std::string(NormalizeValue(*FindItemKey(aName), theValue).c_str());
    };
    EXPECT_EQ(theError("height", "x"), "ERROR: 'height' is a number from 0 to 4294967295");
    EXPECT_EQ(theError("disc", "x"), "ERROR: 'disc' is a number from 0 to 65535");
    EXPECT_EQ(theError("fr", "x"),
              "ERROR: 'video-frame-rate' is a number, with or without decimals");
    EXPECT_EQ(theError("live", "x"), "ERROR: 'live' is true or false");
    EXPECT_EQ(theError("du", "x"),
              "ERROR: 'duration' is milliseconds, or as 1:02:03 or 1:02:03.456");
    EXPECT_EQ(theError("ti", "\xFF"), "ERROR: The value is no UTF-8 text");
    EXPECT_EQ(theError("ti", std::string(4096, 'x').c_str()), "");
    EXPECT_EQ(theError("ti", std::string(4097, 'x').c_str()),
              "ERROR: A value has at most 4096 bytes");
}

TEST(ItemKeysTest, DurationsAreShownAsHoursMinutesAndSeconds) {
    EXPECT_STREQ(DurationText(0), "0:00:00.000");
    EXPECT_STREQ(DurationText(59999), "0:00:59.999");
    EXPECT_STREQ(DurationText(60000), "0:01:00.000");
    EXPECT_STREQ(DurationText(3599999), "0:59:59.999");
    EXPECT_STREQ(DurationText(3600000), "1:00:00.000");
    EXPECT_STREQ(DurationText(UINT64_MAX), "5124095576030:25:51.615");
}

TEST(ItemKeysTest, ValuesComeFromKeysAndFields) {
    vxMediaInfo theInfo;
    theInfo.Set("ti", "Blue", true);
    theInfo.Set("du", "217000", true);
    theInfo.SetTrackNumber(7);
    EXPECT_STREQ(GetValue(theInfo, *FindItemKey("title")), "Blue");
    EXPECT_STREQ(GetValue(theInfo, *FindItemKey("track")), "7");
    EXPECT_STREQ(GetValue(theInfo, *FindItemKey("disc")), "");
    EXPECT_STREQ(GetValue(theInfo, *FindItemKey("genre")), "");
    EXPECT_STREQ(GetValue(theInfo, *FindItemKey("du")), "217000");
    EXPECT_STREQ(GetShownValue(theInfo, *FindItemKey("du")), "0:03:37.000");
    theInfo.Set("du", "long", true);
    EXPECT_STREQ(GetShownValue(theInfo, *FindItemKey("du")), "long");
}

}  // namespace
