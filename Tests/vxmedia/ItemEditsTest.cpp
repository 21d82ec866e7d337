#include "library/ItemEdits.h"

#include <gtest/gtest.h>

#include <string>

#include "ItemSamples.h"

using namespace vxmedia;

namespace {

std::string Value(const vxRef<MediaItem>& anItem, const char* aKey) {
    return anItem->MakeInfo()->GetStr(aKey, "(none)");
}

TEST(ItemEditsTest, AnEditStandsAboveTheFileAlsoWhenItIsReadAnew) {
    const auto theItem = ItemOf(1, "x.mp3", TaggedSound());
    EXPECT_STREQ(EditItem(*theItem.Get(), "title", "Red"), "");
    EXPECT_STREQ(EditItem(*theItem.Get(), "du", "0:00:01"), "");
    EXPECT_STREQ(EditItem(*theItem.Get(), "track", "9"), "");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Value(theItem, "ti"), "Red");
        EXPECT_EQ(Value(theItem, "du"), "1000");
        EXPECT_EQ(Value(theItem, "cr"), "Somebody");
        EXPECT_EQ(theItem->MakeInfo()->GetTrackNumber(), 9);
        EXPECT_EQ(theItem->GetEdits().size(), 3u);
        theItem->Renew(FileOf(2000, 2), TaggedSound());
    }
}

TEST(ItemEditsTest, AnEmptyValueIsTakenAwayAndTheEndOfAnEditBringsItBack) {
    const auto theItem = ItemOf(1, "x.mp3", TaggedSound());
    EXPECT_STREQ(EditItem(*theItem.Get(), "ti", ""), "");
    EXPECT_STREQ(EditItem(*theItem.Get(), "da", ""), "");
    EXPECT_STREQ(EditItem(*theItem.Get(), "disc", ""), "");
    EXPECT_EQ(Value(theItem, "ti"), "(none)");
    EXPECT_EQ(Value(theItem, "da"), "(none)");
    EXPECT_EQ(theItem->MakeInfo()->GetDiscNumber(), 0);
    for (const char* theName : {"title", "da", "disc", "genre"}) {
        EXPECT_STREQ(EndEdit(*theItem.Get(), theName), "");
    }
    EXPECT_EQ(Value(theItem, "ti"), "Blue");
    EXPECT_EQ(Value(theItem, "da"), "2015-06-30");
    EXPECT_EQ(theItem->MakeInfo()->GetDiscNumber(), 2);
    EXPECT_TRUE(theItem->GetEdits().empty());
}

TEST(ItemEditsTest, WhatCannotBeEditedIsExplainedAndChangesNothing) {
    const auto theItem = ItemOf(1, "x.mp3", TaggedSound());
    const struct {
        const char* mKey;
        const char* mValue;
        const char* mError;
    } kRows[] = {
        {"zz", "1", "ERROR: There is no key 'zz'"},
        {"", "1", "ERROR: There is no key ''"},
        {"-", "1", "ERROR: There is no key '-'"},
        {"fp", "y", "ERROR: 'file-path' cannot be edited: it is that of the file"},
        {"file-size", "1", "ERROR: 'file-size' cannot be edited: it is that of the file"},
        {"fe", "", "ERROR: 'file-extension' cannot be edited: it is that of the file"},
        {"width", "wide", "ERROR: 'width' is a number from 0 to 4294967295"},
        {"dl", "MP4", "ERROR: There is no DLNA profile 'MP4'"},
    };
    for (const auto& theRow : kRows) {
        EXPECT_STREQ(EditItem(*theItem.Get(), theRow.mKey, theRow.mValue), theRow.mError);
    }
    EXPECT_STREQ(EndEdit(*theItem.Get(), "zz"), "ERROR: There is no key 'zz'");
    EXPECT_TRUE(theItem->GetEdits().empty());
    EXPECT_STREQ(EditItem(*theItem.Get(), "dl", "MP3X"), "");
    EXPECT_EQ(Value(theItem, "dl"), "MP3X");
}

TEST(ItemEditsTest, AMergeFillsWhatIsEmptyAndAddsAudioTracks) {
    const auto theItem = ItemOf(1, "x.ogg", SoundOf(kMediaFormat_Ogg, 48000));
    const auto theSource = ItemOf(2, "y.mp3", TaggedSound());
    EXPECT_STREQ(MergeItem(*theItem.Get(), *theSource.Get()), "");
    EXPECT_EQ(Value(theItem, "ti"), "x");
    EXPECT_EQ(Value(theItem, "cr"), "Somebody");
    EXPECT_EQ(Value(theItem, "fp"), "x.ogg");
    EXPECT_EQ(Value(theItem, "ta"), "2");
    EXPECT_EQ(Value(theItem, "sf"), "48000");
    EXPECT_EQ(Value(theItem, "s2"), "44100");
    EXPECT_EQ(Value(theItem, "da"), "(none)");
    EXPECT_EQ(theItem->GetEdits().count("cr"), 1u);
    EXPECT_EQ(theItem->GetEdits().count("ti"), 0u);
    EXPECT_TRUE(theSource->GetEdits().empty());

    theItem->Renew(FileOf(2000, 2), SoundOf(kMediaFormat_Ogg, 48000));
    EXPECT_EQ(Value(theItem, "cr"), "Somebody");
    EXPECT_EQ(Value(theItem, "ta"), "2");
}

TEST(ItemEditsTest, AMergeLeavesThePlaceOfACoverToItsFile) {
    const auto theItem = ItemOf(1, "x.ogg", SoundOf(kMediaFormat_Ogg, 48000));
    MergeItem(*theItem.Get(), *ItemOf(2, "y.mp3", TaggedSound()).Get());
    EXPECT_STREQ(theItem->MakeInfo()->GetCoverArtMimeType(), "");
    EXPECT_EQ(theItem->MakeInfo()->GetCoverArtSize(), 0u);
}

TEST(ItemEditsTest, AMergeAddsAVideoTrackButNoSecondOne) {
    const auto theItem = ItemOf(1, "x.mp3", TaggedSound());
    const auto theSource = ItemOf(2, "y.jpg", PictureOf(kMediaFormat_JPEG, 5, 4));
    EditItem(*theSource.Get(), "vt", "1");
    EXPECT_STREQ(MergeItem(*theItem.Get(), *theSource.Get()), "");
    EXPECT_EQ(Value(theItem, "wi"), "5");
    EXPECT_EQ(Value(theItem, "vt"), "1");
    const MediaItem::EditMap theEdits = theItem->GetEdits();
    EXPECT_STREQ(MergeItem(*theItem.Get(), *theSource.Get()), "ERROR: Both have a video track");
    EXPECT_EQ(theItem->GetEdits(), theEdits);
}

TEST(ItemEditsTest, AMergeIsRefusedBeyondNineAudioTracks) {
    const auto theItem = ItemOf(1, "x.ogg", SoundOf(kMediaFormat_Ogg, 48000));
    const auto theSource = ItemOf(2, "y.mp3", TaggedSound());
    EditItem(*theItem.Get(), "ta", "8");
    EXPECT_STREQ(MergeItem(*theItem.Get(), *theSource.Get()), "");
    EXPECT_EQ(Value(theItem, "ta"), "9");
    EndEdit(*theItem.Get(), "cr");
    EXPECT_STREQ(MergeItem(*theItem.Get(), *theSource.Get()),
                 "ERROR: Together they have more than 9 audio tracks");
    EXPECT_EQ(Value(theItem, "ta"), "9");
    EXPECT_EQ(Value(theItem, "cr"), "(none)");
    EXPECT_STREQ(MergeItem(*theItem.Get(), *theItem.Get()),
                 "ERROR: A media file cannot be merged with itself");
}

}  // namespace
