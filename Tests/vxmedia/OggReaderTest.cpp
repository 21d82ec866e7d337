#include <gtest/gtest.h>

#include "vxmedia/MemorySource.h"

using namespace vxtest;

namespace {

constexpr uint64_t kNoGranule = ~uint64_t(0);

std::string Page(uint8_t aFlags, uint64_t aGranule, uint32_t aSerial, const std::string& aBody) {
    std::string theLengths(aBody.size() / 255, '\xFF');
    theLengths += static_cast<char>(aBody.size() % 255);
    return Raw("OggS\0") + LittleEndian(aFlags, 1) + LittleEndian(aGranule, 8) +
           LittleEndian(aSerial, 4) + std::string(8, 's') + LittleEndian(theLengths.size(), 1) +
           theLengths + aBody;
}

const std::string kVorbis =
    Raw("\x01vorbis\0\0\0\0\x02") + LittleEndian(44100, 4) + std::string(12, 'r') + Raw("\xB8\x01");
const std::string kOpus =
    Raw("OpusHead\x01\x01") + LittleEndian(312, 2) + LittleEndian(16000, 4) + Raw("\0\0\0");

TEST(OggReaderTest, TheLastPageTellsTheDurationOfVorbis) {
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, kVorbis) + Page(0, 0, 7, "setup") +
                            Page(0, 44100, 7, "a") + Page(4, 66150, 7, "b")),
              "Ogg 2ch 44100Hz 1500ms (Vorbis)");
}

TEST(OggReaderTest, OpusPlaysWithoutItsLeadIn) {
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, kOpus) + Page(4, 96312, 7, "b")),
              "Ogg 1ch 48000Hz 2000ms (Opus, made from 16000 Hz)");
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, kOpus) + Page(4, 311, 7, "b")),
              "Ogg 1ch 48000Hz 0ms (Opus, made from 16000 Hz)");
}

TEST(OggReaderTest, FLACMayTravelInOgg) {
    const std::string theIdent = Raw("\x7F"
                                     "FLAC\x01\0\0\x01"
                                     "fLaC\0\0\0\x22") +
                                 std::string(10, 'b') +
                                 BigEndian(uint64_t(96000) << 44 | uint64_t(23) << 36, 8) +
                                 std::string(16, 'm');
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, theIdent) + Page(4, 19200, 7, "b")),
              "Ogg 1ch 96000Hz 200ms (FLAC, 24-bit)");
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, theIdent.substr(0, 50)) + Page(4, 19200, 7, "b")),
              "refused: Ogg: the FLAC header is broken");
}

TEST(OggReaderTest, TheSoundIsFoundAmongOtherStreams) {
    EXPECT_EQ(
        DescribeBytes(Page(2, 0, 1, "fishead") + Page(2, 0, 2, Raw("\x80theora") + "..") +
                      Page(2, 0, 3, kVorbis) + Page(4, 44100, 3, "a") + Page(4, 99999, 2, "v")),
        "Ogg 2ch 44100Hz 1000ms (Vorbis)");
    EXPECT_EQ(DescribeBytes(Page(2, 0, 2, Raw("\x80theora")) + Page(4, 99999, 2, "v")),
              "refused: Ogg: there is no Vorbis, Opus or FLAC stream");
}

TEST(OggReaderTest, APageWithoutPositionOrCutOffIsNotTheLast) {
    const std::string theStart = Page(2, 0, 7, kVorbis) + Page(0, 22050, 7, "a");
    EXPECT_EQ(DescribeBytes(theStart + Page(0, kNoGranule, 7, "b")),
              "Ogg 2ch 44100Hz 500ms (Vorbis)");
    const std::string theLast = Page(4, 44100, 7, "body");
    for (size_t i = 0; i < theLast.size(); ++i) {
        EXPECT_EQ(DescribeBytes(theStart + theLast.substr(0, i)), "Ogg 2ch 44100Hz 500ms (Vorbis)")
            << i;
    }
    EXPECT_EQ(DescribeBytes(theStart + theLast), "Ogg 2ch 44100Hz 1000ms (Vorbis)");
}

TEST(OggReaderTest, TheLastPageIsFoundWhereverItLies) {
    const std::string theBody(65025 - 255, 'b');
    for (const size_t theTail : {0u, 1u, 65000u, 65505u, 65510u, 65533u, 65536u, 150000u}) {
        SCOPED_TRACE(theTail);
        EXPECT_EQ(DescribeBytes(Page(2, 0, 7, kVorbis) + Page(0, 1, 7, theBody) +
                                Page(4, 44100, 7, theBody) + std::string(theTail, 'j')),
                  "Ogg 2ch 44100Hz 1000ms (Vorbis)");
    }
    EXPECT_EQ(
        DescribeBytes(Page(2, 0, 7, kVorbis) + Page(4, 44100, 7, "b") + std::string(300000, 'j')),
        "Ogg 2ch 44100Hz - (Vorbis)");
}

TEST(OggReaderTest, WithoutSoundPagesTheDurationIsNotKnown) {
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, kVorbis)), "Ogg 2ch 44100Hz - (Vorbis)");
}

TEST(OggReaderTest, AnExtremePositionDoesNotOverflow) {
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, kVorbis) + Page(4, kNoGranule >> 1, 7, "b")),
              "Ogg 2ch 44100Hz 209146758205323714ms (Vorbis)");
}

TEST(OggReaderTest, BrokenFilesAreRefusedWithTheReason) {
    EXPECT_EQ(DescribeBytes("oggs", "a.ogg"), "refused: Ogg: the signature is missing");
    EXPECT_EQ(DescribeBytes(Raw("OggS\x01") + std::string(100, '\0')),
              "refused: Ogg: the file ends before a stream is described");
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, kVorbis.substr(0, 29))),
              "refused: Ogg: the Vorbis header is broken");
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, Raw("\x01vorbis\x01\0\0\0\x02") + std::string(18, 'x'))),
              "refused: Ogg: the Vorbis header is broken");
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, Raw("\x01vorbis\0\0\0\0\0") + std::string(18, 'x'))),
              "refused: Ogg: the stream describes no sound");
    EXPECT_EQ(DescribeBytes(Page(2, 0, 7, Raw("OpusHead\x10\x01") + std::string(9, 'x'))),
              "refused: Ogg: the Opus header is broken");
    const std::string theFirst = Page(2, 0, 7, kVorbis);
    for (size_t i = 4; i < theFirst.size(); ++i) {
        EXPECT_EQ(DescribeBytes(theFirst.substr(0, i)),
                  "refused: Ogg: the file ends before a stream is described");
    }
}

TEST(OggReaderTest, NoFileKeepsTheReaderBusy) {
    std::string theMarks;
    for (int i = 0; i < 100000; ++i) {
        theMarks += Raw("OggS\0");
    }
    MemorySource theSource(Page(2, 0, 7, kVorbis) + theMarks);
    EXPECT_EQ(Describe(vxmedia::ReadMedia(theSource, "a")), "Ogg 2ch 44100Hz - (Vorbis)");
    EXPECT_LE(theSource.mFetchedBytes, 2u << 20);
}

}  // namespace
