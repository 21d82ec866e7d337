#include <gtest/gtest.h>

#include "vxmedia/MemorySource.h"

using namespace vxtest;

namespace {

const std::string kStart = Raw("\xFF\xD8");
const std::string kComment =
    Raw("\xFF\xFE\0\x05"
        "abc");

std::string Frame(uint8_t aMarker, uint32_t aWidth, uint32_t aHeight, uint32_t aComponents = 3) {
    return Raw("\xFF") + BigEndian(aMarker, 1) + BigEndian(8 + 3 * aComponents, 2) + "\x08" +
           BigEndian(aHeight, 2) + BigEndian(aWidth, 2) + BigEndian(aComponents, 1) +
           std::string(3 * aComponents, '\1');
}

TEST(JPEGReaderTest, TheFrameHeaderTellsSizeAndCoding) {
    EXPECT_EQ(DescribeBytes(kStart + Frame(0xC0, 160, 120)),
              "JPEG 160x120 (baseline, 8-bit, 3 components)");
    EXPECT_EQ(DescribeBytes(kStart + Frame(0xC1, 1, 65535, 1)),
              "JPEG 1x65535 (extended sequential, 8-bit, 1 component)");
    EXPECT_EQ(DescribeBytes(kStart + Frame(0xC2, 65535, 1, 4)),
              "JPEG 65535x1 (progressive, 8-bit, 4 components)");
    EXPECT_EQ(DescribeBytes(kStart + Frame(0xC3, 8, 8)),
              "JPEG 8x8 (lossless, 8-bit, 3 components)");
}

TEST(JPEGReaderTest, EveryFrameMarkerIsKnownAndTheTablesAmongThemAreNot) {
    for (int i = 0xC0; i <= 0xCF; ++i) {
        const bool theIsFrame = i != 0xC4 && i != 0xC8 && i != 0xCC;
        EXPECT_EQ(ReadBytes(kStart + Frame(static_cast<uint8_t>(i), 9, 7)).IsMedia(), theIsFrame)
            << i;
    }
}

TEST(JPEGReaderTest, SegmentsBeforeTheFrameAreLeaptOver) {
    const std::string theBig = Raw("\xFF\xE1\xFF\xFF") + std::string(65533, 'x');
    EXPECT_EQ(DescribeBytes(kStart + kComment + theBig + theBig + Raw("\xFF\xFF\xFF\x01\xFF\xD0") +
                            Frame(0xC0, 5, 6)),
              "JPEG 5x6 (baseline, 8-bit, 3 components)");
}

TEST(JPEGReaderTest, AFrameInsideAnotherSegmentIsNotThePicture) {
    const std::string thePreview = kStart + Frame(0xC0, 3, 3);
    EXPECT_EQ(DescribeBytes(kStart + Raw("\xFF\xE1") + BigEndian(thePreview.size() + 2, 2) +
                            thePreview + Frame(0xC0, 50, 60)),
              "JPEG 50x60 (baseline, 8-bit, 3 components)");
}

TEST(JPEGReaderTest, BrokenFilesAreRefusedWithTheReason) {
    EXPECT_EQ(DescribeBytes("text", "a.jpeg"), "refused: JPEG: the signature is missing");
    EXPECT_EQ(DescribeBytes(kStart + Raw("\xFF")),
              "refused: JPEG: the file ends before the size of the picture");
    EXPECT_EQ(DescribeBytes(kStart + Raw("\xFF\xFF\xFF\xFF")),
              "refused: JPEG: the file ends before the size of the picture");
    EXPECT_EQ(DescribeBytes(kStart + Raw("\xFF\xE0")),
              "refused: JPEG: the file ends before the size of the picture");
    EXPECT_EQ(DescribeBytes(kStart + Raw("\xFF\xE0\0\x01")),
              "refused: JPEG: a segment has a wrong length");
    EXPECT_EQ(DescribeBytes(kStart + Raw("\xFF\xE0\0\x02zz")),
              "refused: JPEG: a marker is missing between segments");
    EXPECT_EQ(DescribeBytes(kStart + kComment + Raw("\xFF\xDA\0\x02")),
              "refused: JPEG: there is no frame header");
    EXPECT_EQ(DescribeBytes(kStart + kComment + Raw("\xFF\xD9")),
              "refused: JPEG: there is no frame header");
    EXPECT_EQ(DescribeBytes(kStart + Frame(0xC0, 0, 7)),
              "refused: JPEG: the frame header has no picture size");
    EXPECT_EQ(DescribeBytes(kStart + Frame(0xC0, 7, 0)),
              "refused: JPEG: the frame header has no picture size");
    EXPECT_EQ(DescribeBytes(kStart + Frame(0xC0, 7, 7).substr(0, 9)),
              "refused: JPEG: the file ends inside the frame header");
    EXPECT_EQ(DescribeBytes(kStart + Raw("\xFF\xC0\0\x0C\x08\0\x07\0\x07\x03")),
              "refused: JPEG: the frame header has a wrong length");
    EXPECT_EQ(DescribeBytes(kStart + Frame(0xC0, 7, 7, 0)),
              "refused: JPEG: the frame header has a wrong length");
}

TEST(JPEGReaderTest, NoFileKeepsTheReaderBusy) {
    MemorySource theFill(kStart + std::string(8 << 20, '\xFF'));
    EXPECT_EQ(Describe(vxmedia::ReadMedia(theFill, "a")),
              "refused: the header lies beyond the first 2 MiB that are read");
    EXPECT_LE(theFill.mFetchedBytes, 2u << 20);
}

}  // namespace
