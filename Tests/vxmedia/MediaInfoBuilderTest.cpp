#include "library/MediaInfoBuilder.h"

#include <gtest/gtest.h>

#include <string>

#include "ItemSamples.h"
#include "library/InfoTable.h"

using namespace vxmedia;

namespace {

std::string Text(const MediaItem& anItem) {
    return anItem.MakeInfo()->GetMediaInfoAsString(" ").c_str();
}

std::string Value(const char* aPath, const MediaReading& aReading, const char* aKey) {
    return ItemOf(1, aPath, aReading)->MakeInfo()->GetStr(aKey, "");
}

TEST(MediaInfoBuilderTest, APictureHasItsFileItsSizeAndItsDirectoryAsAlbum) {
    const auto theItem = ItemOf(1, "/p/Sea.side.jpg", PictureOf(kMediaFormat_JPEG, 640, 480));
    EXPECT_EQ(Text(*theItem.Get()),
              "ti=Sea.side an=/p/ cn=object.item.imageItem.photo mt=image/jpeg dl=JPEG_SM fe=jpg "
              "fp=/p/Sea.side.jpg fs=1000 wi=640 he=480 cd=24");
    EXPECT_STREQ(theItem->MakeInfo()->GetFilePath(), "/p/Sea.side.jpg");
    EXPECT_EQ(theItem->MakeInfo()->GetLastModificationTime().GetTicks(), 1435687200);
    EXPECT_TRUE(theItem->MakeInfo()->Validate());
}

TEST(MediaInfoBuilderTest, ASoundHasItsTagsAndOneAudioTrack) {
    const auto theItem = ItemOf(1, "/m/x.mp3", TaggedSound());
    EXPECT_EQ(Text(*theItem.Get()),
              "ti=Blue cr=Somebody ge=Jazz an=Colors cn=object.item.audioItem.musicTrack "
              "mt=audio/mpeg dl=MP3 fe=mp3 fp=/m/x.mp3 fs=1000 ta=1 ac=2 sf=44100 bs=16 br=128000 "
              "du=217500 da=2015-06-30");
    EXPECT_EQ(theItem->MakeInfo()->GetTrackNumber(), 7);
    EXPECT_EQ(theItem->MakeInfo()->GetDiscNumber(), 2);
    EXPECT_STREQ(theItem->MakeInfo()->GetCoverArtMimeType(), "image/png");
    EXPECT_EQ(theItem->MakeInfo()->GetCoverArtOffset(), 2048);
    EXPECT_EQ(theItem->MakeInfo()->GetCoverArtSize(), 5000u);
    EXPECT_EQ(theItem->MakeInfo()->GetCoverArtEncoding(), kvxCoverArtEncoding_Unsynchronisation);
    EXPECT_EQ(theItem->MakeInfo()->GetCoverArtEncodedOffset(), 42u);
}

TEST(MediaInfoBuilderTest, WhatIsNotKnownIsLeftOut) {
    MediaReading theReading;
    theReading.mFormat = &kMediaFormat_Ogg;
    theReading.mFacts.mChannels = 1;
    theReading.mFacts.mRate = 8000;
    EXPECT_EQ(
        Text(*ItemOf(1, "x", theReading).Get()),
        "ti=x cn=object.item.audioItem.musicTrack mt=audio/ogg fp=x fs=1000 ta=1 ac=1 sf=8000");
}

TEST(MediaInfoBuilderTest, PicturesHaveTheSmallestProfileThatTheyFit) {
    const struct {
        const MediaFormat& mFormat;
        uint32_t mWidth;
        uint32_t mHeight;
        const char* mProfile;
    } kRows[] = {
        {kMediaFormat_JPEG, 1, 1, "JPEG_SM"},       {kMediaFormat_JPEG, 640, 480, "JPEG_SM"},
        {kMediaFormat_JPEG, 641, 480, "JPEG_MED"},  {kMediaFormat_JPEG, 640, 481, "JPEG_MED"},
        {kMediaFormat_JPEG, 1024, 768, "JPEG_MED"}, {kMediaFormat_JPEG, 1025, 768, "JPEG_LRG"},
        {kMediaFormat_JPEG, 480, 769, "JPEG_LRG"},  {kMediaFormat_JPEG, 4096, 4096, "JPEG_LRG"},
        {kMediaFormat_JPEG, 4097, 1, ""},           {kMediaFormat_JPEG, 1, 4097, ""},
        {kMediaFormat_PNG, 4096, 4096, "PNG_LRG"},  {kMediaFormat_PNG, 4097, 4096, ""},
        {kMediaFormat_GIF, 1600, 1200, "GIF_LRG"},  {kMediaFormat_GIF, 1600, 1201, ""},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(testing::Message()
                     << theRow.mFormat.mName << theRow.mWidth << "x" << theRow.mHeight);
        EXPECT_EQ(Value("x", PictureOf(theRow.mFormat, theRow.mWidth, theRow.mHeight), "dl"),
                  theRow.mProfile);
    }
}

TEST(MediaInfoBuilderTest, SoundsHaveTheProfileOfTheirRate) {
    for (const uint32_t theRate : {32000u, 44100u, 48000u}) {
        EXPECT_EQ(Value("x", SoundOf(kMediaFormat_MP3, theRate), "dl"), "MP3");
    }
    for (const uint32_t theRate : {16000u, 22050u, 24000u}) {
        EXPECT_EQ(Value("x", SoundOf(kMediaFormat_MP3, theRate), "dl"), "MP3X");
    }
    for (const uint32_t theRate : {8000u, 11025u, 12000u}) {
        EXPECT_EQ(Value("x", SoundOf(kMediaFormat_MP3, theRate), "dl"), "");
    }
    EXPECT_EQ(Value("x", SoundOf(kMediaFormat_WAV, 44100), "dl"), "");
    EXPECT_EQ(Value("x", SoundOf(kMediaFormat_FLAC, 44100), "dl"), "");
}

TEST(MediaInfoBuilderTest, EachFormatHasItsMimeType) {
    EXPECT_EQ(Value("x", PictureOf(kMediaFormat_PNG, 1, 1), "mt"), "image/png");
    EXPECT_EQ(Value("x", PictureOf(kMediaFormat_GIF, 1, 1), "mt"), "image/gif");
    EXPECT_EQ(Value("x", SoundOf(kMediaFormat_WAV, 1), "mt"), "audio/x-wav");
    EXPECT_EQ(Value("x", SoundOf(kMediaFormat_FLAC, 1), "mt"), "audio/flac");
    const struct {
        const char* mName;
        const char* mPicture;
        const char* mSound;
    } kRows[] = {
        {"BMP", "image/bmp", "image/bmp"},
        {"AU", "audio/basic", "audio/basic"},
        {"New Kind/2", "image/x-new-kind-2", "audio/x-new-kind-2"},
        {"\xC3\xA9", "image/x---", "audio/x---"},
    };
    for (const auto& theRow : kRows) {
        MediaFormat theFormat = {};
        theFormat.mName = theRow.mName;
        EXPECT_EQ(Value("x", PictureOf(theFormat, 1, 1), "mt"), theRow.mPicture);
        EXPECT_EQ(Value("x", SoundOf(theFormat, 1), "mt"), theRow.mSound);
    }
}

TEST(MediaInfoBuilderTest, TheExtensionIsWhatFollowsTheLastDotOfTheName) {
    const struct {
        const char* mPath;
        const char* mExtension;
    } kRows[] = {{"/a/b.GIF", "GIF"}, {"/a/b.tar.gz", "gz"}, {"/a.b/c", ""}, {"/a/.gif", ""},
                 {"/a/b.", ""},       {"c.gif", "gif"},      {".gif", ""},   {"/a.b/.c.d", "d"}};
    for (const auto& theRow : kRows) {
        EXPECT_EQ(Value(theRow.mPath, PictureOf(kMediaFormat_GIF, 1, 1), "fe"), theRow.mExtension)
            << theRow.mPath;
    }
}

TEST(MediaInfoBuilderTest, ACoverInSeveralPiecesHasNoPlace) {
    MediaReading theReading = TaggedSound();
    theReading.mTags.mCoverArt.mBytes.Add(9000, 10);
    const auto theItem = ItemOf(1, "x", theReading);
    EXPECT_STREQ(theItem->MakeInfo()->GetCoverArtMimeType(), "image/png");
    EXPECT_EQ(theItem->MakeInfo()->GetCoverArtSize(), 0u);
    const std::string theTable = MakeInfoTable(*theItem.Get(), "").c_str();
    EXPECT_NE(theTable.find("-   cover                  image/png, in several pieces\n"),
              std::string::npos)
        << theTable;
}

TEST(MediaInfoBuilderTest, TheTableShowsKeysNamesAndValues) {
    MediaReading theReading = TaggedSound();
    theReading.mTags.mTitle = "two\nlines \xE2\x80\xAE";
    const auto theItem = ItemOf(1, "/m/back\\slash\xFF.mp3", theReading);
    theItem->SetEdits({{"ge", "Folk"}, {"track", "8"}, {"cr", ""}});
    EXPECT_STREQ(MakeInfoTable(*theItem.Get(), "5 by\t4"),
                 "ti  title                  two\\x0Alines \\xE2\\x80\\xAE\n"
                 "an  album                  Colors\n"
                 "ge  genre*                 Folk\n"
                 "da  date                   2015-06-30\n"
                 "-   disc                   2\n"
                 "-   track*                 8\n"
                 "du  duration               0:03:37.500\n"
                 "cn  class                  object.item.audioItem.musicTrack\n"
                 "mt  mime-type              audio/mpeg\n"
                 "dl  dlna-profile           MP3\n"
                 "fp  file-path              /m/back\\\\slash\\xFF.mp3\n"
                 "fe  file-extension         mp3\n"
                 "fs  file-size              1000\n"
                 "br  bit-rate               128000\n"
                 "ta  audio-tracks           1\n"
                 "ac  audio-channels         2\n"
                 "sf  audio-sampling-rate    44100\n"
                 "bs  audio-bits-per-sample  16\n"
                 "-   comment                Take 2\n"
                 "-   cover                  image/png, 5000 bytes at 2048, unsynchronised, behind "
                 "42 bytes\n"
                 "-   picture                5 by\\x094\n");
}

}  // namespace
