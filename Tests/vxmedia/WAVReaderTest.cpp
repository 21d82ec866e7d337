#include <gtest/gtest.h>

#include "vxmedia/MemorySource.h"

using namespace vxtest;

namespace {

std::string Chunk(const char* aName, const std::string& aData) {
    return aName + LittleEndian(aData.size(), 4) + aData + std::string(aData.size() & 1, '\0');
}

std::string Format(uint32_t aTag, uint32_t aChannels, uint32_t aRate, uint32_t aBlockSize,
                   uint32_t aBits, uint32_t aBytesPerSecond = 0) {
    return Chunk("fmt ", LittleEndian(aTag, 2) + LittleEndian(aChannels, 2) +
                             LittleEndian(aRate, 4) + LittleEndian(aBytesPerSecond, 4) +
                             LittleEndian(aBlockSize, 2) + LittleEndian(aBits, 2));
}

std::string File(const std::string& aChunks, const char* aForm = "RIFF") {
    return aForm + LittleEndian(aChunks.size() + 4, 4) + "WAVE" + aChunks;
}

const std::string kFormat = Format(1, 2, 44100, 4, 16);

TEST(WAVReaderTest, TheDurationIsThatOfTheData) {
    EXPECT_EQ(DescribeBytes(File(kFormat + Chunk("data", std::string(44100 * 4, 'x')))),
              "WAV 2ch 44100Hz 1000ms (16-bit PCM)");
    EXPECT_EQ(DescribeBytes(File(Format(1, 1, 8000, 1, 8) + Chunk("data", std::string(4, 'x')))),
              "WAV 1ch 8000Hz 1ms (8-bit PCM)");
    EXPECT_EQ(DescribeBytes(File(Format(1, 1, 8000, 1, 8) + Chunk("data", std::string(3, 'x')))),
              "WAV 1ch 8000Hz 0ms (8-bit PCM)");
    EXPECT_EQ(DescribeBytes(File(kFormat + Chunk("data", ""))), "WAV 2ch 44100Hz 0ms (16-bit PCM)");
}

TEST(WAVReaderTest, OtherChunksAreLeaptOverWithTheirPadding) {
    EXPECT_EQ(DescribeBytes(File(Chunk("LIST", "odd") + kFormat + Chunk("junk", "12345") +
                                 Chunk("data", std::string(176400, 'x')) + Chunk("LIST", "end"))),
              "WAV 2ch 44100Hz 1000ms (16-bit PCM)");
}

TEST(WAVReaderTest, TheExtensibleFormNamesTheCodingFurtherBehind) {
    const std::string theFormat =
        Chunk("fmt ", LittleEndian(0xFFFE, 2) + LittleEndian(6, 2) + LittleEndian(48000, 4) +
                          LittleEndian(48000 * 18, 4) + LittleEndian(18, 2) + LittleEndian(24, 2) +
                          LittleEndian(22, 2) + LittleEndian(24, 2) + LittleEndian(0x3F, 4) +
                          LittleEndian(1, 2) + Raw("\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71"));
    EXPECT_EQ(DescribeBytes(File(theFormat + Chunk("data", std::string(18 * 480, 'x')))),
              "WAV 6ch 48000Hz 10ms (24-bit PCM, extensible)");
    EXPECT_EQ(DescribeBytes(File(Format(0xFFFE, 2, 48000, 4, 16) + Chunk("data", ""))),
              "refused: WAV: the coding is unknown");
}

TEST(WAVReaderTest, CompressedSoundCountsItsSamplesOrItsRate) {
    const std::string theFormat = Format(0x11, 1, 16000, 256, 4, 8000);
    EXPECT_EQ(DescribeBytes(File(theFormat + Chunk("fact", LittleEndian(8000, 4)) +
                                 Chunk("data", std::string(4096, 'x')))),
              "WAV 1ch 16000Hz 500ms (4-bit IMA ADPCM)");
    EXPECT_EQ(DescribeBytes(File(theFormat + Chunk("data", std::string(4000, 'x')))),
              "WAV 1ch 16000Hz 500ms (4-bit IMA ADPCM)");
    EXPECT_EQ(
        DescribeBytes(File(Format(2, 1, 16000, 256, 4, 0) + Chunk("data", std::string(10, 'x')))),
        "WAV 1ch 16000Hz - (4-bit Microsoft ADPCM)");
    EXPECT_EQ(DescribeBytes(File(Format(7, 1, 8000, 1, 8) + Chunk("fact", LittleEndian(1, 4)) +
                                 Chunk("data", std::string(8000, 'x')))),
              "WAV 1ch 8000Hz 1000ms (8-bit mu-law)");
}

TEST(WAVReaderTest, ALengthBeyondTheFileIsCutToWhatIsThere) {
    for (const uint32_t theLie : {100001u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        EXPECT_EQ(DescribeBytes(File(Format(1, 1, 8000, 1, 8) + "data" + LittleEndian(theLie, 4) +
                                     std::string(4000, 'x'))),
                  "WAV 1ch 8000Hz 500ms (8-bit PCM, cut short)");
    }
}

TEST(WAVReaderTest, TheLongFormTellsItsLengthElsewhere) {
    const std::string theSizes =
        Chunk("ds64", LittleEndian(0, 8) + LittleEndian(8000, 8) + LittleEndian(0, 8));
    EXPECT_EQ(DescribeBytes(File(theSizes + Format(1, 1, 8000, 1, 8) + Raw("data\xFF\xFF\xFF\xFF") +
                                     std::string(16000, 'x'),
                                 "RF64")),
              "WAV 1ch 8000Hz 1000ms (8-bit PCM)");
    const std::string theLie =
        Chunk("ds64", LittleEndian(0, 8) + LittleEndian(uint64_t(1) << 63, 8) + LittleEndian(0, 8));
    EXPECT_EQ(DescribeBytes(File(theLie + Format(1, 1, 8000, 1, 8) + Raw("data\xFF\xFF\xFF\xFF") +
                                     std::string(16000, 'x'),
                                 "RF64")),
              "WAV 1ch 8000Hz 2000ms (8-bit PCM, cut short)");
}

TEST(WAVReaderTest, BrokenFilesAreRefusedWithTheReason) {
    EXPECT_EQ(DescribeBytes("RIFF....AVI ", "a.wav"), "refused: WAV: the signature is missing");
    EXPECT_EQ(DescribeBytes(File("")), "refused: WAV: there is no format chunk");
    EXPECT_EQ(DescribeBytes(File(kFormat)), "refused: WAV: there is no data chunk");
    EXPECT_EQ(DescribeBytes(File(Chunk("data", "xx") + kFormat)),
              "refused: WAV: the data comes before its format");
    EXPECT_EQ(DescribeBytes(File(Chunk("fmt ", std::string(15, '\1')))),
              "refused: WAV: the format chunk is too short");
    EXPECT_EQ(DescribeBytes(File(kFormat.substr(0, 20))),
              "refused: WAV: the file ends inside the format chunk");
    EXPECT_EQ(DescribeBytes(File(Format(1, 0, 44100, 4, 16))),
              "refused: WAV: the format chunk describes no sound");
    EXPECT_EQ(DescribeBytes(File(Format(1, 2, 0, 4, 16))),
              "refused: WAV: the format chunk describes no sound");
    EXPECT_EQ(DescribeBytes(File(Format(1, 2, 44100, 0, 16))),
              "refused: WAV: the format chunk describes no sound");
    EXPECT_EQ(DescribeBytes(File(Format(0x1234, 2, 44100, 4, 16) + Chunk("data", ""))),
              "refused: WAV: the coding is unknown");
    EXPECT_EQ(DescribeBytes(File(Raw("LIST\xFF\xFF\xFF\xFF") + "xx")),
              "refused: WAV: there is no format chunk");
}

TEST(WAVReaderTest, NoFileKeepsTheReaderBusy) {
    std::string theChunks;
    for (int i = 0; i < (8 << 20) / 8; ++i) {
        theChunks += Raw("junk\0\0\0\0");
    }
    EXPECT_EQ(DescribeBytes(File(theChunks)),
              "refused: the header lies beyond the first 2 MiB that are read");
}

}  // namespace
