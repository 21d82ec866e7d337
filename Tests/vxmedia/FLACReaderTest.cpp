#include <gtest/gtest.h>

#include "vxmedia/MemorySource.h"

using namespace vxtest;

namespace {

// Rate, channels, sample size and length share eight bytes.
std::string Stream(uint64_t aRate, uint64_t aChannels, uint64_t aBits, uint64_t aFrames) {
    return Raw("fLaC\0\0\0\x22") + std::string(10, 'b') +
           BigEndian(aRate << 44 | (aChannels - 1) << 41 | (aBits - 1) << 36 | aFrames, 8) +
           std::string(16, 'm');
}

TEST(FLACReaderTest, TheStreamInfoTellsEverything) {
    EXPECT_EQ(DescribeBytes(Stream(44100, 2, 16, 66150)), "FLAC 2ch 44100Hz 1500ms (16-bit)");
    EXPECT_EQ(DescribeBytes(Stream(96000, 1, 24, 19200)), "FLAC 1ch 96000Hz 200ms (24-bit)");
    EXPECT_EQ(DescribeBytes(Stream(1, 8, 32, 1)), "FLAC 8ch 1Hz 1000ms (32-bit)");
    EXPECT_EQ(DescribeBytes(Stream(655350, 8, 4, (uint64_t(1) << 36) - 1)),
              "FLAC 8ch 655350Hz 104859200ms (4-bit)");
}

TEST(FLACReaderTest, ALengthOfZeroIsNotKnown) {
    EXPECT_EQ(DescribeBytes(Stream(44100, 2, 16, 0)), "FLAC 2ch 44100Hz - (16-bit)");
}

TEST(FLACReaderTest, ATagMayStandInFront) {
    EXPECT_EQ(DescribeBytes(Raw("ID3\x04\0\0\0\0\x01\x02") + std::string(130, 't') +
                            Stream(44100, 2, 16, 44100)),
              "FLAC 2ch 44100Hz 1000ms (16-bit)");
}

TEST(FLACReaderTest, BrokenFilesAreRefusedWithTheReason) {
    EXPECT_EQ(DescribeBytes("flac", "a.flac"), "refused: FLAC: the signature is missing");
    EXPECT_EQ(DescribeBytes(Stream(0, 2, 16, 5)), "refused: FLAC: the stream has no rate");
    EXPECT_EQ(DescribeBytes(Raw("fLaC\x04\0\0\x22") + std::string(34, 'x')),
              "refused: FLAC: the first block does not describe the stream");
    EXPECT_EQ(DescribeBytes(Raw("fLaC\0\0\0\x23") + std::string(35, 'x')),
              "refused: FLAC: the first block does not describe the stream");
    const std::string theWhole = Stream(44100, 2, 16, 66150);
    for (size_t i = 4; i < 42; ++i) {
        EXPECT_EQ(DescribeBytes(theWhole.substr(0, i)),
                  "refused: FLAC: the file ends inside the header");
    }
}

}  // namespace
