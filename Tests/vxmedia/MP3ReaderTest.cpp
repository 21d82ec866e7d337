#include <gtest/gtest.h>

#include "vxmedia/MemorySource.h"

using namespace vxtest;

namespace {

// MPEG-1, 44100 Hz, stereo: 128 kbit/s make 417 bytes, 64 kbit/s 208; one more with padding.
const std::string k128 = Raw("\xFF\xFB\x90\0") + std::string(413, 'a');
const std::string k64 = Raw("\xFF\xFB\x50\0") + std::string(204, 'a');
// MPEG-2, 16000 Hz, one channel, 16 kbit/s: 72 bytes.
const std::string kMono = Raw("\xFF\xF3\x28\xC0") + std::string(68, 'a');

std::string Times(const std::string& aText, int aCount) {
    std::string theText;
    for (int i = 0; i < aCount; ++i) {
        theText += aText;
    }
    return theText;
}

// A first frame that holds an index at `anOffset`.
std::string Index(const std::string& aFrame, size_t anOffset, const std::string& anIndex) {
    std::string theFrame = aFrame;
    return theFrame.replace(anOffset, anIndex.size(), anIndex);
}

TEST(MP3ReaderTest, FramesAreCountedWhereNoIndexIs) {
    // 1152 samples are 26.12 ms.
    EXPECT_EQ(DescribeBytes(Times(k128, 2)), "MP3 2ch 44100Hz 52ms (MPEG-1 layer III, 128 kbit/s)");
    EXPECT_EQ(DescribeBytes(Times(k128, 100)),
              "MP3 2ch 44100Hz 2612ms (MPEG-1 layer III, 128 kbit/s)");
    EXPECT_EQ(DescribeBytes(Times(kMono, 100)),
              "MP3 1ch 16000Hz 3600ms (MPEG-2 layer III, 16 kbit/s)");
    EXPECT_EQ(DescribeBytes(Times(k128 + k64, 100)),
              "MP3 2ch 44100Hz 5224ms (MPEG-1 layer III, 96 kbit/s on average)");
}

TEST(MP3ReaderTest, OneFrameAloneIsEnoughWhenItFillsTheFile) {
    EXPECT_EQ(DescribeBytes(k128), "MP3 2ch 44100Hz 26ms (MPEG-1 layer III, 128 kbit/s)");
}

TEST(MP3ReaderTest, PaddingMakesAFrameOneByteLonger) {
    const std::string thePadded = Raw("\xFF\xFB\x92\0") + std::string(414, 'a');
    EXPECT_EQ(DescribeBytes(Times(k128 + thePadded, 50)),
              "MP3 2ch 44100Hz 2612ms (MPEG-1 layer III, 128 kbit/s)");
}

TEST(MP3ReaderTest, TheFrameOfTheIndexHasABitRateOfItsOwn) {
    const std::string theIndex = Index(k64, 36, Raw("Info\0\0\0\x01\0\0\0\x0A"));
    EXPECT_EQ(DescribeBytes(theIndex + Times(k128, 10)),
              "MP3 2ch 44100Hz 261ms (MPEG-1 layer III, 128 kbit/s)");
    EXPECT_EQ(DescribeBytes(theIndex), "MP3 2ch 44100Hz 26ms (MPEG-1 layer III, 64 kbit/s)");
    // What stands behind is of another rate of sampling, so it is no part of the sound.
    EXPECT_EQ(DescribeBytes(theIndex + k64 + Times(kMono, 12)),
              "MP3 2ch 44100Hz 261ms (MPEG-1 layer III, 64 kbit/s)");
}

// 100 frames are 2.612 s; 41700 bytes of sound, 208 of the index, 10000 of something else.
TEST(MP3ReaderTest, TheAverageIsOfTheBytesThatTheIndexCounts) {
    const std::string theRest = Times(k128, 100) + std::string(10000, 'x');
    const auto theDescribe = [&theRest](const std::string& aBytes) {
        return DescribeBytes(Index(k64, 36, Raw("Xing\0\0\0\3\0\0\0\x64") + aBytes) + theRest);
    };
    EXPECT_EQ(theDescribe(Raw("\0\0\xA3\xB4")),  // 41908
              "MP3 2ch 44100Hz 2612ms (MPEG-1 layer III, 128 kbit/s on average)");
    for (const std::string& theLie : {Raw("\0\0\0\0"), Raw("\xFF\xFF\xFF\xFF")}) {
        EXPECT_EQ(theDescribe(theLie),
                  "MP3 2ch 44100Hz 2612ms (MPEG-1 layer III, 159 kbit/s on average)");
    }
}

TEST(MP3ReaderTest, AnIndexTellsTheNumberOfFrames) {
    const std::string theRest = Times(k128, 99);
    EXPECT_EQ(DescribeBytes(Index(k128, 36, Raw("Xing\0\0\0\x0F\0\0\0\x64")) + theRest),
              "MP3 2ch 44100Hz 2612ms (MPEG-1 layer III, 128 kbit/s on average)");
    EXPECT_EQ(DescribeBytes(Index(k128, 36, Raw("Info\0\0\0\x01\0\0\0\x0A")) + theRest),
              "MP3 2ch 44100Hz 261ms (MPEG-1 layer III, 128 kbit/s)");
    EXPECT_EQ(DescribeBytes(Index(k128, 36, Raw("VBRI\0\x01\0\0\0\0\0\0\0\0\0\0\0\x0A")) + theRest),
              "MP3 2ch 44100Hz 261ms (MPEG-1 layer III, 1277 kbit/s on average)");
    EXPECT_EQ(DescribeBytes(Index(kMono, 13, Raw("Info\0\0\0\x01\0\0\0\x0A")) + Times(kMono, 99)),
              "MP3 1ch 16000Hz 360ms (MPEG-2 layer III, 16 kbit/s)");
}

TEST(MP3ReaderTest, AnIndexThatLiesIsNotBelieved) {
    for (const char* theIndex :
         {"Xing\0\0\0\x0F\xFF\xFF\xFF\xFF", "Xing\0\0\0\x0F\0\0\0\0", "Xing\0\0\0\x0E\0\0\0\x01"}) {
        EXPECT_EQ(DescribeBytes(Index(k128, 36, std::string(theIndex, 12)) + Times(k128, 99)),
                  "MP3 2ch 44100Hz 2612ms (MPEG-1 layer III, 128 kbit/s)");
    }
}

TEST(MP3ReaderTest, TagsAtBothEndsAreNoFrames) {
    EXPECT_EQ(DescribeBytes(Raw("ID3\x03\0\0\0\0\x02\x01") + std::string(257, '\xFF') +
                            Times(k128, 10) + "TAG" + std::string(125, 't')),
              "MP3 2ch 44100Hz 261ms (MPEG-1 layer III, 128 kbit/s)");
    EXPECT_EQ(
        DescribeBytes(Raw("ID3\x04\0\x10\0\0\0\x05") + "tag.." + "3DI......." + Times(k128, 10)),
        "MP3 2ch 44100Hz 261ms (MPEG-1 layer III, 128 kbit/s)");
}

TEST(MP3ReaderTest, ABrokenPlaceIsLeaptOver) {
    EXPECT_EQ(DescribeBytes(Times(k128, 5) + std::string(1000, '\xFF') + Times(k128, 5)),
              "MP3 2ch 44100Hz 261ms (MPEG-1 layer III, 128 kbit/s)");
    EXPECT_EQ(DescribeBytes(Times(k128, 10) + k128.substr(0, 416)),
              "MP3 2ch 44100Hz 261ms (MPEG-1 layer III, 128 kbit/s)");
}

TEST(MP3ReaderTest, ALongFileIsEstimatedFromItsStart) {
    MemorySource theSource(Times(k128, 10000));
    EXPECT_EQ(Describe(vxmedia::ReadMedia(theSource, "a")),
              "MP3 2ch 44100Hz 261224ms (MPEG-1 layer III, 128 kbit/s, duration estimated)");
    EXPECT_LE(theSource.mFetchedBytes, 2u << 20);
}

TEST(MP3ReaderTest, OnlyLayerThreeWithAStatedRateIsRead) {
    // Layers II and I, no layer, no version, free bit rate, no bit rate, no sample rate, no sync.
    for (const char* theHeader :
         {"\xFF\xFD\x90\0", "\xFF\xFF\x90\0", "\xFF\xF9\x90\0", "\xFF\xEB\x90\0", "\xFF\xFB\x00\0",
          "\xFF\xFB\xF0\0", "\xFF\xFB\x9C\0", "\xFF\xDB\x90\0"}) {
        const std::string theFrame = std::string(theHeader, 4) + std::string(413, 'a');
        EXPECT_EQ(DescribeBytes(Times(theFrame, 10)), "no media");
        EXPECT_EQ(DescribeBytes(Times(theFrame, 10), "a.mp3"),
                  "refused: MP3: there are no frames of MPEG layer III");
    }
}

TEST(MP3ReaderTest, TheNameLetsJunkStandInFront) {
    const std::string theFile = std::string(5000, 'j') + Times(k128, 10);
    EXPECT_EQ(DescribeBytes(theFile), "no media");
    EXPECT_EQ(DescribeBytes(theFile, "A.MP3"),
              "MP3 2ch 44100Hz 261ms (MPEG-1 layer III, 128 kbit/s)");
    EXPECT_EQ(DescribeBytes(std::string(70000, 'j') + Times(k128, 10), "a.mp3"),
              "refused: MP3: there are no frames of MPEG layer III");
}

TEST(MP3ReaderTest, ATagBeyondTheFileIsRefused) {
    EXPECT_EQ(DescribeBytes(Raw("ID3\x03\0\0\x7F\x7F\x7F\x7F") + Times(k128, 10)),
              "refused: MP3: there are no frames of MPEG layer III");
}

}  // namespace
