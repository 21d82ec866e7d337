#include <gtest/gtest.h>

#include "vxmedia/MemorySource.h"

using namespace vxtest;

namespace {

constexpr char kNoSum[] = "refused: PNG: the header does not match its checksum";

// A checksum computed bit by bit as the standard defines it: remainder of a division.
uint32_t Checksum(const std::string& aBytes) {
    uint32_t theRegister = 0xFFFFFFFF;
    for (const char theByte : aBytes) {
        for (int i = 0; i < 8; ++i) {
            const uint32_t theBit =
                (static_cast<unsigned char>(theByte) >> i & 1) ^ (theRegister & 1);
            theRegister = (theRegister >> 1) ^ (theBit * 0xEDB88320);
        }
    }
    return theRegister ^ 0xFFFFFFFF;
}

std::string Picture(uint32_t aWidth, uint32_t aHeight, uint8_t aDepth, uint8_t aType,
                    uint8_t anInterlace = 0) {
    const std::string theChunk = "IHDR" + BigEndian(aWidth, 4) + BigEndian(aHeight, 4) +
                                 BigEndian(aDepth, 1) + BigEndian(aType, 1) + Raw("\0\0") +
                                 BigEndian(anInterlace, 1);
    return Raw("\x89PNG\r\n\x1A\n\0\0\0\x0D") + theChunk + BigEndian(Checksum(theChunk), 4);
}

struct ColorCase {
    uint8_t mDepth;
    uint8_t mType;
    const char* mText;
};

TEST(PNGReaderTest, SizeAndColorsStandInTheHeader) {
    // The smallest of all pictures, with the checksum written out.
    EXPECT_EQ(DescribeBytes(Raw("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\0\x01\0\0\0\x01\x08\x06\0\0\0"
                                "\x1F\x15\xC4\x89")),
              "PNG 1x1 (8-bit RGBA)");
    EXPECT_EQ(DescribeBytes(Picture(640, 480, 8, 2)), "PNG 640x480 (8-bit RGB)");
    EXPECT_EQ(DescribeBytes(Picture(640, 480, 8, 2, 1)), "PNG 640x480 (8-bit RGB, interlaced)");
    EXPECT_EQ(DescribeBytes(Picture(0x7FFFFFFF, 1, 16, 0)), "PNG 2147483647x1 (16-bit grayscale)");
}

TEST(PNGReaderTest, EveryColorTypeHasItsDepths) {
    constexpr ColorCase kCases[] = {
        {1, 0, "1-bit grayscale"},
        {2, 0, "2-bit grayscale"},
        {4, 0, "4-bit grayscale"},
        {8, 0, "8-bit grayscale"},
        {16, 0, "16-bit grayscale"},
        {8, 2, "8-bit RGB"},
        {16, 2, "16-bit RGB"},
        {1, 3, "1-bit palette"},
        {2, 3, "2-bit palette"},
        {4, 3, "4-bit palette"},
        {8, 3, "8-bit palette"},
        {8, 4, "8-bit grayscale and alpha"},
        {16, 4, "16-bit grayscale and alpha"},
        {8, 6, "8-bit RGBA"},
        {16, 6, "16-bit RGBA"},
    };
    for (const ColorCase& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        EXPECT_EQ(DescribeBytes(Picture(2, 3, theCase.mDepth, theCase.mType)),
                  std::string("PNG 2x3 (") + theCase.mText + ")");
    }
}

TEST(PNGReaderTest, OtherColorsAreRefused) {
    constexpr ColorCase kCases[] = {{3, 0, ""},  {0, 0, ""},  {8, 1, ""},   {4, 2, ""},
                                    {16, 3, ""}, {4, 4, ""},  {8, 5, ""},   {1, 6, ""},
                                    {8, 7, ""},  {17, 0, ""}, {255, 0, ""}, {8, 255, ""}};
    for (const ColorCase& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << int(theCase.mDepth) << " of " << int(theCase.mType));
        EXPECT_EQ(DescribeBytes(Picture(2, 3, theCase.mDepth, theCase.mType)),
                  "refused: PNG: the colors are of an unknown kind");
    }
}

TEST(PNGReaderTest, ImpossibleSizesAreRefused) {
    EXPECT_EQ(DescribeBytes(Picture(0, 1, 8, 2)),
              "refused: PNG: the picture has an impossible size");
    EXPECT_EQ(DescribeBytes(Picture(1, 0, 8, 2)),
              "refused: PNG: the picture has an impossible size");
    EXPECT_EQ(DescribeBytes(Picture(0x80000000, 1, 8, 2)),
              "refused: PNG: the picture has an impossible size");
}

TEST(PNGReaderTest, EveryBitOfTheHeaderIsChecked) {
    const std::string thePicture = Picture(64, 48, 8, 2);
    for (size_t i = 16; i < thePicture.size(); ++i) {
        for (int j = 0; j < 8; ++j) {
            std::string theBroken = thePicture;
            theBroken[i] = static_cast<char>(theBroken[i] ^ (1 << j));
            EXPECT_EQ(DescribeBytes(theBroken), kNoSum) << i << "." << j;
        }
    }
}

TEST(PNGReaderTest, AHeaderThatIsCutShortOrMissingIsRefused) {
    const std::string thePicture = Picture(64, 48, 8, 2);
    for (size_t i = 8; i < 33; ++i) {
        EXPECT_EQ(DescribeBytes(thePicture.substr(0, i)),
                  "refused: PNG: the file ends inside the header");
    }
    std::string theOther = thePicture;
    theOther.replace(12, 4, "IDAT");
    EXPECT_EQ(DescribeBytes(theOther), "refused: PNG: the first chunk is not a header");
    EXPECT_EQ(DescribeBytes("no picture", "a.png"), "refused: PNG: the signature is missing");
}

}  // namespace
