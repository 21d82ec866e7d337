#include <gmock/gmock.h>
#include <vx/MediaInfo.h>

#include <string>

#include "media/FillFields.h"

namespace {

/// Texts of all keys, those of fields first.
std::string All(const vxMediaInfo& anInfo) {
    return anInfo.GetMediaInfoAsString("|").c_str();
}

std::string Serialized(const vxMediaInfo& anInfo) {
    return anInfo.GetSerializedInfo().c_str();
}

TEST(MediaInfoMergeTest, AStringIsMergedIntoAnEmptyOneOnly) {
    vxCString theTarget;
    vxMediaInfo::MergeString(theTarget, "new");
    EXPECT_STREQ(theTarget, "new");
    vxMediaInfo::MergeString(theTarget, "newer");
    EXPECT_STREQ(theTarget, "new");
    vxMediaInfo::MergeString(theTarget, "");
    EXPECT_STREQ(theTarget, "new");
}

TEST(MediaInfoMergeTest, MergingFillsEmptyFields) {
    vxMediaInfo theInfo;
    vxMediaInfo theOther;
    FillFields(theOther, "other ", 101);
    EXPECT_TRUE(theInfo.MergeAll(&theOther));
    EXPECT_EQ(All(theInfo), "ti=other title|cr=other creator|ge=other genre|an=other album");
    EXPECT_STREQ(theInfo.GetFilePath(), "other path");
    EXPECT_STREQ(theInfo.GetCoverArtMimeType(), "other type");
    EXPECT_EQ(theInfo.GetCoverArtOffset(), 101);
    EXPECT_EQ(theInfo.GetCoverArtSize(), 102U);
    EXPECT_EQ(theInfo.GetCoverArtEncoding(), 1);
    EXPECT_EQ(theInfo.GetCoverArtEncodedOffset(), 103U);
    EXPECT_EQ(theInfo.GetDiscNumber(), 0);
    EXPECT_FALSE(theInfo.GetLastModificationTime().IsValid());
}

TEST(MediaInfoMergeTest, MergingKeepsFieldsThatHaveText) {
    vxMediaInfo theInfo;
    vxMediaInfo theOther;
    FillFields(theInfo, "", 200);
    FillFields(theOther, "other ", 101);
    EXPECT_TRUE(theInfo.MergeAll(&theOther));
    EXPECT_EQ(All(theInfo), "ti=title|cr=creator|ge=genre|an=album|id=id");
    EXPECT_STREQ(theInfo.GetFilePath(), "path");
    EXPECT_STREQ(theInfo.GetCoverArtMimeType(), "type");
    EXPECT_EQ(theInfo.GetCoverArtOffset(), 200);
    EXPECT_EQ(theInfo.GetCoverArtSize(), 201U);
    EXPECT_EQ(theInfo.GetCoverArtEncoding(), 0);
    EXPECT_EQ(theInfo.GetCoverArtEncodedOffset(), 202U);
}

TEST(MediaInfoMergeTest, WithoutAnOffsetTheEncodingIsNotMerged) {
    vxMediaInfo theInfo;
    vxMediaInfo theOther;
    theInfo.SetCoverArtEncoding(kvxCoverArtEncoding_Base64, 42);
    theOther.SetCoverArt("image/jpeg", 0, 7);
    EXPECT_TRUE(theInfo.MergeAll(&theOther));
    EXPECT_EQ(theInfo.GetCoverArtEncoding(), 1);
    EXPECT_EQ(theInfo.GetCoverArtEncodedOffset(), 42U);
}

TEST(MediaInfoMergeTest, MergingTakesOffsetAndSizeOfTheCoverArtOneByOne) {
    vxMediaInfo theInfo;
    vxMediaInfo theOther;
    theInfo.SetCoverArt("image/png", 0, 5);
    theOther.SetCoverArt("image/jpeg", 6, 7);
    EXPECT_TRUE(theInfo.MergeAll(&theOther));
    EXPECT_STREQ(theInfo.GetCoverArtMimeType(), "image/png");
    EXPECT_EQ(theInfo.GetCoverArtOffset(), 6);
    EXPECT_EQ(theInfo.GetCoverArtSize(), 5U);
    theInfo.SetCoverArt("image/png", 8, 0);
    EXPECT_TRUE(theInfo.MergeAll(&theOther));
    EXPECT_EQ(theInfo.GetCoverArtOffset(), 8);
    EXPECT_EQ(theInfo.GetCoverArtSize(), 7U);
    theOther.SetCoverArt("", 0, 0);
    EXPECT_TRUE(theInfo.MergeAll(&theOther));
    EXPECT_EQ(theInfo.GetCoverArtOffset(), 8);
    EXPECT_EQ(theInfo.GetCoverArtSize(), 7U);
}

constexpr const char* kVideoKeys[] = {"wi", "he", "vr", "mv", "ev", "fr",
                                      "aa", "vp", "vl", "vh", "vc", "vt"};

void FillVideo(vxMediaInfo& anInfo, const char* aValue) {
    for (const char* theKey : kVideoKeys) {
        anInfo.Set(theKey, aValue, true);
    }
    anInfo.Set("du", aValue, true);
}

TEST(MediaInfoMergeTest, MergingTakesOverTheVideoTrack) {
    vxMediaInfo theInfo;
    vxMediaInfo theOther;
    FillVideo(theOther, "2");
    theOther.Set("br", "9", true);
    EXPECT_TRUE(theInfo.MergeAll(&theOther));
    for (const char* theKey : kVideoKeys) {
        EXPECT_STREQ(theInfo.GetStr(theKey, "none"), "2") << theKey;
    }
    EXPECT_STREQ(theInfo.GetStr("du", "none"), "2");
    EXPECT_EQ(theInfo.Peek("br"), nullptr);
    EXPECT_EQ(theInfo.Peek("ta"), nullptr);
}

TEST(MediaInfoMergeTest, TheVideoTrackReplacesValuesButNotTheDuration) {
    vxMediaInfo theInfo;
    vxMediaInfo theOther;
    FillVideo(theInfo, "0");
    FillVideo(theOther, "2");
    theOther.Set("wi", "", true);
    theOther.Remove("he");
    theInfo.MergeVideo(&theOther);
    EXPECT_STREQ(theInfo.GetStr("du", "none"), "0");
    EXPECT_STREQ(theInfo.GetStr("wi", "none"), "0");
    EXPECT_STREQ(theInfo.GetStr("he", "none"), "0");
    EXPECT_STREQ(theInfo.GetStr("vc", "none"), "2");
    EXPECT_STREQ(theInfo.GetStr("vt", "none"), "2");
    theInfo.Set("du", "", true);
    theInfo.MergeVideo(&theOther);
    EXPECT_STREQ(theInfo.GetStr("du", "none"), "2");
    theInfo.MergeVideo(NULL);
    EXPECT_STREQ(theInfo.GetStr("vt", "none"), "2");
}

TEST(MediaInfoMergeTest, WithoutAVideoTrackNoneIsMerged) {
    for (const char* theTrack : {"0", "", "none"}) {
        SCOPED_TRACE(theTrack);
        vxMediaInfo theInfo;
        vxMediaInfo theOther;
        theInfo.Set("vt", "1", true);
        theOther.Set("vt", theTrack, true);
        theOther.Set("wi", "640", true);
        EXPECT_TRUE(theInfo.MergeAll(&theOther));
        EXPECT_EQ(All(theInfo), "vt=1");
    }
}

TEST(MediaInfoMergeTest, TwoVideoTracksStopMerging) {
    vxMediaInfo theInfo;
    vxMediaInfo theOther;
    theInfo.Set("vt", "1", true);
    theOther.Set("ti", "merged before", true);
    theOther.SetCoverArt("image/png", 3, 4);
    theOther.Set("vt", "1", true);
    theOther.Set("wi", "640", true);
    theOther.Set("ta", "1", true);
    EXPECT_FALSE(theInfo.MergeAll(&theOther));
    EXPECT_EQ(All(theInfo), "ti=merged before|vt=1");
    EXPECT_EQ(theInfo.GetCoverArtOffset(), 3);
}

TEST(MediaInfoMergeTest, MergingAddsAudioTracksBehindThoseThereAre) {
    vxMediaInfo theInfo;
    theInfo.DeserializeInfo("ta=1\nca=aac\nal=en");
    vxMediaInfo theOther;
    theOther.DeserializeInfo("ta=1\nca=mp3\nal=fr\nar=128000");
    EXPECT_TRUE(theInfo.MergeAll(&theOther));
    EXPECT_EQ(Serialized(theInfo), "ta=2\nca=aac\nal=en\nr2=128000\nl2=fr\nc2=mp3");
    EXPECT_TRUE(theInfo.MergeAll(&theOther));
    EXPECT_EQ(Serialized(theInfo), "ta=3\nca=aac\nal=en\nr2=128000\nl2=fr\nc2=mp3");
}

TEST(MediaInfoMergeTest, EveryValueOfATrackHasItsPlace) {
    const char* const kKeys2[][2] = {{"ar", "r2"}, {"ma", "m2"}, {"ea", "e2"},
                                     {"ac", "h2"}, {"bs", "b2"}, {"sf", "s2"},
                                     {"at", "t2"}, {"al", "l2"}, {"ca", "c2"}};
    vxMediaInfo theOther;
    for (const auto& theKeys : kKeys2) {
        theOther.Set(theKeys[0], (std::string("1 ") + theKeys[0]).c_str(), true);
        theOther.Set(theKeys[1], (std::string("2 ") + theKeys[0]).c_str(), true);
    }
    theOther.Set("ta", 2, true);
    theOther.Set("ua", "not merged", true);
    theOther.Set("u2", "not merged", true);
    theOther.Set("du", "5", true);
    vxMediaInfo theInfo;
    EXPECT_TRUE(theInfo.MergeAll(&theOther));
    for (const auto& theKeys : kKeys2) {
        EXPECT_EQ(theInfo.GetStr(theKeys[0], "none"), std::string("1 ") + theKeys[0]);
        EXPECT_EQ(theInfo.GetStr(theKeys[1], "none"), std::string("2 ") + theKeys[0]);
    }
    EXPECT_STREQ(theInfo.GetStr("ta", "none"), "2");
    EXPECT_STREQ(theInfo.GetStr("du", "none"), "5");
    EXPECT_EQ(theInfo.Peek("ua"), nullptr);
    EXPECT_EQ(theInfo.Peek("u2"), nullptr);

    vxMediaInfo theSecond;  // track 2 alone becomes the first one
    theSecond.MergeAudioTrack(&theOther, 2);
    EXPECT_STREQ(theSecond.GetStr("ca", "none"), "2 ca");
    EXPECT_STREQ(theSecond.GetStr("ta", "none"), "1");
    EXPECT_EQ(theSecond.Peek("c2"), nullptr);
}

TEST(MediaInfoMergeTest, OfTracksWithoutKeysOnlyTheNumberIsKept) {
    vxMediaInfo theOther;
    theOther.DeserializeInfo("ta=3\nca=one\nc2=two");
    vxMediaInfo theInfo;
    theInfo.MergeAudioTrack(&theOther, 3);
    EXPECT_EQ(Serialized(theInfo), "ta=1");
    theInfo.MergeAudioTrack(&theOther, 1);
    EXPECT_EQ(Serialized(theInfo), "ta=2\nc2=one");
    theInfo.MergeAudioTrack(&theOther, 2);
    EXPECT_EQ(Serialized(theInfo), "ta=3\nc2=one");
}

TEST(MediaInfoMergeTest, AMergedTrackReplacesValuesButNotTheDuration) {
    vxMediaInfo theInfo;
    theInfo.DeserializeInfo("du=1\nca=left over\nal=left over\nac=");
    vxMediaInfo theOther;
    theOther.DeserializeInfo("du=2\nca=mp3\nal=\nac=2");
    theInfo.MergeAudioTrack(&theOther, 1);
    EXPECT_EQ(Serialized(theInfo), "du=1\nca=mp3\nal=left over\nac=2\nta=1");
}

TEST(MediaInfoMergeTest, NoTrackMergesNothing) {
    vxMediaInfo theInfo;
    vxMediaInfo theOther;
    theOther.DeserializeInfo("ta=1\nca=mp3");
    theInfo.MergeAudioTrack(&theOther, 0);
    theInfo.MergeAudioTrack(NULL, 1);
    EXPECT_TRUE(theInfo.MergeAll(NULL));
    EXPECT_FALSE(theInfo.HasInfo());
    theInfo.Set("ta", 4294967295U, true);
    theInfo.MergeAudioTrack(&theOther, 1);
    EXPECT_EQ(Serialized(theInfo), "ta=4294967295");
}

TEST(MediaInfoMergeTest, NineAudioTracksAreTheMost) {
    const struct {
        const char* mHere;
        const char* mThere;
        bool mfMerged;
        const char* mCount;
    } kCases[] = {
        {"4", "5", true, "9"},
        {"5", "5", false, "5"},
        {"", "9", true, "9"},
        {"9", "", true, "9"},
        {NULL, "9", true, "9"},
        {NULL, "10", false, "none"},
        {"9", NULL, true, "9"},
        {NULL, NULL, true, "none"},
        {"0", "9", true, "9"},
        {"0", "10", false, "0"},
        {"9", "0", true, "9"},
        {"9", "1", false, "9"},
        {"10", "0", false, "10"},
        {"4294967295", "4294967295", false, "4294967295"},
        {"1", "4294967295", false, "1"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << (theCase.mHere == NULL ? "none" : theCase.mHere) << " "
                                        << (theCase.mThere == NULL ? "none" : theCase.mThere));
        vxMediaInfo theInfo;
        vxMediaInfo theOther;
        if (theCase.mHere != NULL) {
            theInfo.Set("ta", theCase.mHere, true);
        }
        if (theCase.mThere != NULL) {
            theOther.Set("ta", theCase.mThere, true);
        }
        theOther.Set("vt", 1, true);
        EXPECT_EQ(theInfo.MergeAll(&theOther), theCase.mfMerged);
        EXPECT_STREQ(theInfo.GetStr("ta", "none"), theCase.mCount);
        EXPECT_STREQ(theInfo.GetStr("vt", "none"), "1");  // the video comes before the sound
    }
}

TEST(MediaInfoMergeTest, AnInfoCanBeMergedIntoItself) {
    vxMediaInfo theInfo;
    theInfo.DeserializeInfo("ta=1\nca=mp3");
    EXPECT_TRUE(theInfo.MergeAll(&theInfo));
    EXPECT_EQ(Serialized(theInfo), "ta=2\nca=mp3\nc2=mp3");
    theInfo.MergeVideo(&theInfo);
    EXPECT_EQ(Serialized(theInfo), "ta=2\nca=mp3\nc2=mp3");
}

}  // namespace
