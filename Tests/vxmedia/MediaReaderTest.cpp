#include <gtest/gtest.h>

#include "vxmedia/MemorySource.h"

using namespace vxtest;

namespace {

const std::string kPicture = "GIF89a" + LittleEndian(4, 2) + LittleEndian(5, 2) + Raw("\0\0\0");

TEST(MediaReaderTest, ContentDecidesAndTheNameDoesNot) {
    EXPECT_EQ(DescribeBytes(kPicture, "song.mp3"), "GIF 4x5 (version 89a)");
    EXPECT_EQ(DescribeBytes(kPicture, "noname"), "GIF 4x5 (version 89a)");
    EXPECT_EQ(DescribeBytes("text", "readme.txt"), "no media");
    EXPECT_EQ(DescribeBytes("text", "png"), "no media");
    EXPECT_EQ(DescribeBytes("text", "a.png.txt"), "no media");
    EXPECT_EQ(DescribeBytes("text", "a."), "no media");
    EXPECT_EQ(DescribeBytes("text", "a.,png,"), "no media");
}

TEST(MediaReaderTest, EveryExtensionNamesItsFormatInAnyCase) {
    const char* kRows[][2] = {
        {"a.png", "PNG"},   {"a.PNG", "PNG"}, {"a.jpg", "JPEG"}, {"a.Jpeg", "JPEG"},
        {"a.jpe", "JPEG"},  {"a.gif", "GIF"}, {"a.wav", "WAV"},  {"a.wave", "WAV"},
        {"a.flac", "FLAC"}, {"a.ogg", "Ogg"}, {"a.oga", "Ogg"},  {"a.opus", "Ogg"},
        {"a.mp3", "MP3"},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow[0]);
        const vxmedia::MediaReading theReading = ReadBytes("text", theRow[0]);
        ASSERT_TRUE(theReading.IsRefused());
        EXPECT_STREQ(theReading.mFormat->mName, theRow[1]);
    }
}

TEST(MediaReaderTest, AnEmptyFileIsRefusedByItsName) {
    EXPECT_EQ(DescribeBytes("", "a.png"), "refused: the file is empty");
    EXPECT_EQ(DescribeBytes("", "a.txt"), "no media");
}

TEST(MediaReaderTest, AFileThatShrinksIsRefused) {
    MemorySource theSource(kPicture.substr(0, 8), kPicture.size());
    EXPECT_EQ(Describe(vxmedia::ReadMedia(theSource, "a.gif")), "refused: the file cannot be read");
}

TEST(MediaReaderTest, TagsAreLeaptOverOneAfterTheOther) {
    const std::string theTag = Raw("ID3\x03\0\0\0\0\0\x03") + "tag";
    MemorySource theSource(theTag + theTag + "rest");
    EXPECT_EQ(vxmedia::PositionAfterTags(theSource), 26u);
    MemorySource theBroken(Raw("ID3\x03\0\0\0\0\x80\x03") + "tag");
    EXPECT_EQ(vxmedia::PositionAfterTags(theBroken), 0u);
    MemorySource theShort("ID3");
    EXPECT_EQ(vxmedia::PositionAfterTags(theShort), 0u);
}

TEST(MediaReaderTest, ATagDoesNotMakeAPictureOfWhatFollows) {
    EXPECT_EQ(DescribeBytes(Raw("ID3\x03\0\0\0\0\0\x03") + "tag" + kPicture),
              "refused: MP3: there are no frames of MPEG layer III");
}

TEST(MediaReaderTest, DurationsAreRoundedWithoutOverflow) {
    vxmedia::MediaFacts theFacts;
    EXPECT_EQ(theFacts.DurationMS(), 0u);
    theFacts.mfDurationKnown = true;
    EXPECT_EQ(theFacts.DurationMS(), 0u);
    theFacts.mRate = 3;
    theFacts.mFrames = 2;
    EXPECT_EQ(theFacts.DurationMS(), 667u);
    theFacts.mRate = 0xFFFFFFFF;
    theFacts.mFrames = ~uint64_t(0);
    EXPECT_EQ(theFacts.DurationMS(), 4294967297000u);
}

TEST(MediaSourceTest, SmallReadsShareOneFetch) {
    MemorySource theSource(std::string(10000, 'x'));
    uint8_t theBytes[5000];
    EXPECT_TRUE(theSource.ReadExactly(10, theBytes, 4));
    EXPECT_TRUE(theSource.ReadExactly(4000, theBytes, 100));
    EXPECT_EQ(theSource.mFetchedBytes, 4096u);
    EXPECT_EQ(theSource.Read(9998, theBytes, 4), 2u);
    EXPECT_EQ(theSource.Read(10000, theBytes, 4), 0u);
    EXPECT_EQ(theSource.Read(~uint64_t(0), theBytes, 4), 0u);
    EXPECT_EQ(theSource.Read(5000, theBytes, 5000), 5000u);
    EXPECT_FALSE(theSource.HasFailed());
    EXPECT_FALSE(theSource.IsExhausted());
}

TEST(MediaReaderTest, ADurationThatNoNumberHoldsIsTheHighestOne) {
    vxmedia::MediaFacts theFacts;
    theFacts.mfDurationKnown = true;
    theFacts.mRate = 1;
    theFacts.mFrames = UINT64_MAX / 1000 - 1;
    EXPECT_EQ(theFacts.DurationMS(), UINT64_C(18446744073709550000));
    theFacts.mFrames += 1;
    EXPECT_EQ(theFacts.DurationMS(), UINT64_MAX);
    theFacts.mFrames = UINT64_MAX;
    EXPECT_EQ(theFacts.DurationMS(), UINT64_MAX);
}

}  // namespace
