#include <gtest/gtest.h>

#include "vxmedia/MemorySource.h"

using namespace vxtest;

namespace {

const std::string kLoop = Raw("\x21\xFF\x0BNETSCAPE2.0\x03\x01\0\0\0");

std::string Screen(const char* aVersion, uint32_t aWidth, uint32_t aHeight, uint8_t aFlags) {
    return std::string("GIF") + aVersion + LittleEndian(aWidth, 2) + LittleEndian(aHeight, 2) +
           LittleEndian(aFlags, 1) + Raw("\0\0");
}

TEST(GIFReaderTest, SizeStandsInTheHeader) {
    EXPECT_EQ(DescribeBytes(Screen("87a", 320, 200, 0)), "GIF 320x200 (version 87a)");
    EXPECT_EQ(DescribeBytes(Screen("89a", 1, 65535, 0)), "GIF 1x65535 (version 89a)");
}

TEST(GIFReaderTest, ALoopBehindTheColorsMakesItAnimated) {
    EXPECT_EQ(DescribeBytes(Screen("89a", 8, 8, 0) + kLoop), "GIF 8x8 (version 89a, animated)");
    for (int i = 0; i < 8; ++i) {
        const std::string theColors(size_t(3) << (i + 1), 'c');
        EXPECT_EQ(
            DescribeBytes(Screen("89a", 8, 8, static_cast<uint8_t>(0x80 | i)) + theColors + kLoop),
            "GIF 8x8 (version 89a, animated)")
            << i;
    }
    EXPECT_EQ(DescribeBytes(Screen("89a", 8, 8, 0) + kLoop.substr(0, 13)), "GIF 8x8 (version 89a)");
}

TEST(GIFReaderTest, BrokenFilesAreRefusedWithTheReason) {
    EXPECT_EQ(DescribeBytes("GIF88a", "a.gif"), "refused: GIF: the signature is missing");
    EXPECT_EQ(DescribeBytes("GIF88a"), "no media");
    EXPECT_EQ(DescribeBytes(Screen("89a", 0, 5, 0)),
              "refused: GIF: the picture has an impossible size");
    EXPECT_EQ(DescribeBytes(Screen("89a", 5, 0, 0)),
              "refused: GIF: the picture has an impossible size");
    EXPECT_EQ(DescribeBytes(Screen("89a", 5, 5, 0).substr(0, 12)),
              "refused: GIF: the file ends inside the header");
}

}  // namespace
