#include <gmock/gmock.h>

#include <vector>

#include "vxmedia/MemorySource.h"

using namespace vxtest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// All tags in one line.
std::string DescribeTags(const vxmedia::MediaTags& aTags) {
    std::string theText;
    const auto theAppend = [&theText](const char* aName, const std::string& aValue) {
        if (!aValue.empty() && aValue != "0") {
            theText += (theText.empty() ? "" : " | ") + std::string(aName) + "=" + aValue;
        }
    };
    theAppend("title", aTags.mTitle.c_str());
    theAppend("creator", aTags.mCreator.c_str());
    theAppend("album", aTags.mAlbum.c_str());
    theAppend("genre", aTags.mGenre.c_str());
    theAppend("date", aTags.mDate.c_str());
    theAppend("comment", aTags.mComment.c_str());
    theAppend("track", std::to_string(aTags.mTrack));
    theAppend("disc", std::to_string(aTags.mDisc));
    theAppend("picture", aTags.mCoverArt.mMimeType.c_str());
    return theText;
}

// The tags, and behind them where the picture lies and what it is.
std::string Tags(const std::string& aBytes) {
    MemorySource theSource(aBytes);
    const vxmedia::MediaReading theReading = vxmedia::ReadMedia(theSource, "file");
    EXPECT_TRUE(theReading.IsMedia());
    EXPECT_LE(theSource.mFetchedBytes, 2u << 20);
    std::string theText = DescribeTags(theReading.mTags);
    const vxmedia::CoverArt& theArt = theReading.mTags.mCoverArt;
    std::vector<uint8_t> thePicture;
    if (theArt.IsThere()) {
        for (const auto& thePiece : theArt.mBytes.Pieces()) {
            theText += " " + std::to_string(thePiece.mPos) + "+" + std::to_string(thePiece.mSize);
        }
        theText += vxmedia::ReadCoverArt(theSource, theArt, 1 << 20, thePicture)
                       ? " '" + std::string(thePicture.begin(), thePicture.end()) + "'"
                       : " broken";
    }
    return theText;
}

// ID3

std::string Sound() {
    std::string theFrame = Raw("\xFF\xFB\x90\x64");  // 417 bytes, MPEG-1, 128 kbit/s, 44100 Hz
    theFrame.resize(417);
    return theFrame + theFrame + theFrame;
}

std::string Synchsafe(size_t aSize) {
    std::string theText;
    for (int theShift = 21; theShift >= 0; theShift -= 7) {
        theText += static_cast<char>(aSize >> theShift & 0x7F);
    }
    return theText;
}

std::string Tagged(char aVersion, const std::string& aBody, char aFlags = 0) {
    return std::string("ID3") + aVersion + '\0' + aFlags + Synchsafe(aBody.size()) + aBody +
           Sound();
}

std::string Frame(const char* anID, const std::string& aContent) {
    return anID + BigEndian(aContent.size(), 4) + Raw("\0\0") + aContent;
}

TEST(MediaTagsTest, ID3FramesHoldTextsInFourEncodings) {
    EXPECT_EQ(Tags(Tagged(3, Frame("TIT2", Raw("\0\xC9t\xE9")))), "title=\xC3\x89t\xC3\xA9");
    EXPECT_EQ(Tags(Tagged(3, Frame("TIT2", Raw("\1\xFF\xFE\xC9\0t\0")))), "title=\xC3\x89t");
    EXPECT_EQ(Tags(Tagged(3, Frame("TIT2", Raw("\1\xFE\xFF\0\xC9\0t")))), "title=\xC3\x89t");
    EXPECT_EQ(Tags(Tagged(3, Frame("TIT2", Raw("\2\0\xC9\0t\0\0")))), "title=\xC3\x89t");
    EXPECT_EQ(Tags(Tagged(4, Frame("TIT2", Raw("\3\xC3\x89t\0")))), "title=\xC3\x89t");
    // Halves of surrogates and bytes that are no UTF-8 are left out; an odd byte is too.
    EXPECT_EQ(Tags(Tagged(3, Frame("TIT2", Raw("\2\xD8\x34\xDD\x1E\xD8\0\0a\xDC\0\0b\0")))),
              "title=\xF0\x9D\x84\x9E"
              "ab");
    EXPECT_EQ(Tags(Tagged(4, Frame("TIT2", Raw("\3a\xFF\xC3"
                                               "b")))),
              "title=ab");
    EXPECT_EQ(Tags(Tagged(3, Frame("TIT2", Raw("\4text")))), "");
    for (const char theFlags : {'\0', '\x80'}) {
        EXPECT_EQ(Tags(Tagged(3, Frame("TIT2", "") + Frame("TALB", Raw("\0a")), theFlags)),
                  "album=a");
    }
}

TEST(MediaTagsTest, ID3FramesOfAllVersionsAreRead) {
    EXPECT_EQ(Tags(Tagged(2, Raw("TT2\0\0\2\0t"
                                 "TP1\0\0\2\0c"
                                 "TAL\0\0\2\0a"
                                 "TCO\0\0\4\0(9)"
                                 "TYE\0\0\5\0"
                                 "1999"
                                 "TRK\0\0\4\0"
                                 "3/9"
                                 "TPA\0\0\2\0"
                                 "2"))),
              "title=t | creator=c | album=a | genre=Metal | date=1999 | track=3 | disc=2");
    EXPECT_EQ(Tags(Tagged(3, Frame("TALB", Raw("\0a")) +
                                 Frame("TYER", Raw("\0"
                                                   "1999")) +
                                 Frame("TDAT", Raw("\0"
                                                   "3112")))),
              "album=a | date=1999-12-31");
    EXPECT_EQ(Tags(Tagged(3, Frame("TYER", Raw("\0"
                                               "201\xE9")) +
                                 Frame("TDAT", Raw("\0"
                                                   "3112")))),
              "date=201\xC3\xA9");
    EXPECT_EQ(Tags(Tagged(3, Frame("TYER", Raw("\0"
                                               "2015!")) +
                                 Frame("TDAT", Raw("\0"
                                                   "31.2")))),
              "date=2015");
    EXPECT_EQ(Tags(Tagged(4, Frame("TDRC", Raw("\0"
                                               "1999-12")) +
                                 Frame("TPE1", Raw("\3x\0y")))),
              "creator=x;y | date=1999-12");
    // The first of two equal frames counts, and the first of two tags.
    EXPECT_EQ(Tags(Tagged(3, Frame("TIT2", Raw("\0one")) + Frame("TIT2", Raw("\0two")))),
              "title=one");
    const std::string theFirst = Tagged(3, Frame("TIT2", Raw("\0one")));
    EXPECT_EQ(Tags(theFirst.substr(0, theFirst.size() - Sound().size()) +
                   Tagged(3, Frame("TIT2", Raw("\0two")) + Frame("TALB", Raw("\0a")))),
              "title=one | album=a");
}

TEST(MediaTagsTest, ID3PicturesHaveAPlaceInTheFile) {
    // Header of the tag 10, of the frame 10, in front of the picture 14.
    EXPECT_EQ(Tags(Tagged(3, Frame("APIC", Raw("\0image/png\0\3\0PICTURE")))),
              "picture=image/png 33+7 'PICTURE'");
    EXPECT_EQ(Tags(Tagged(2, Raw("PIC\0\0\x0E\0JPG\3x\0PICTURE"))),
              "picture=image/jpeg 23+7 'PICTURE'");
    // In an unsynchronised tag two more bytes stand in the file.
    EXPECT_EQ(Tags(Tagged(3,
                          "APIC" + BigEndian(16, 4) + Raw("\0\0\0image/png\0\3\0\xFF\0\xE0\xFF\0") +
                              Frame("TIT2", Raw("\0t")),
                          static_cast<char>(0x80))),
              "title=t | picture=image/png 33+5 '\xFF\xE0\xFF'");
}

TEST(MediaTagsTest, ID3PicturesBeyondWhatIsDecodedAreLeftOut) {
    const std::string theBig(2 << 20, 'p');
    EXPECT_EQ(
        Tags(Tagged(3, Frame("TIT2", Raw("\0t")) + Frame("APIC", Raw("\0image/png\0\3\0") + theBig),
                    static_cast<char>(0x80))),
        "title=t");
    // Otherwise the size does not matter.
    const std::string theText = Tags(
        Tagged(3, Frame("APIC", Raw("\0image/png\0\3\0") + theBig) + Frame("TIT2", Raw("\0t"))));
    EXPECT_EQ(theText, "title=t | picture=image/png 33+2097152 broken");  // above the limit given
}

TEST(MediaTagsTest, TheOldTagAtTheEndCountsWhereThereIsNoOther) {
    std::string theTag = "TAG" + std::string("title").append(25, ' ') + std::string(60, '\0') +
                         "1999" + std::string(28, 'c') + Raw("\0\x07\x11");
    ASSERT_EQ(theTag.size(), 128u);
    EXPECT_EQ(Tags(Sound() + theTag), "title=title | genre=Rock | date=1999 | track=7");
    EXPECT_EQ(Tags(Tagged(3, Frame("TPE1", Raw("\0c"))) + theTag), "creator=c");
    EXPECT_EQ(Tags(Tagged(3, std::string(20, '\0')) + theTag),
              "title=title | genre=Rock | date=1999 | track=7");
    theTag.replace(125, 3, Raw("ccc"));
    EXPECT_EQ(Tags(Sound() + theTag), "title=title | genre=Acoustic | date=1999");
}

TEST(MediaTagsTest, GenresAreThoseOfTheTable) {
    EXPECT_STREQ(vxmedia::NameOfGenre(0), "Blues");
    EXPECT_STREQ(vxmedia::NameOfGenre(79), "Hard Rock");
    EXPECT_STREQ(vxmedia::NameOfGenre(147), "Synthpop");
    EXPECT_STREQ(vxmedia::NameOfGenre(191), "Psybient");
    EXPECT_EQ(vxmedia::NameOfGenre(192), nullptr);
}

TEST(MediaTagsTest, LongTextsAreCutAtACharacter) {
    EXPECT_EQ(Tags(Tagged(4, "TIT2" + Synchsafe(5001) + Raw("\0\0\0") + std::string(5000, 'x'))),
              "title=" + std::string(4095, 'x'));
    std::string theText;
    for (int i = 0; i < 3000; ++i) {
        theText += "\xC3\xA9";
    }
    EXPECT_EQ(Tags(Tagged(4, "TIT2" + Synchsafe(6001) + Raw("\0\0\3") + theText)),
              "title=" + theText.substr(0, 4094));
}

// Vorbis comments

std::string Comment(const std::vector<std::string>& aTexts) {
    std::string theBlock = LittleEndian(3, 4) + "me!" + LittleEndian(aTexts.size(), 4);
    for (const std::string& theText : aTexts) {
        theBlock += LittleEndian(theText.size(), 4) + theText;
    }
    return theBlock;
}

std::string Picture(const std::string& aData, uint32_t aKind = 3,
                    const std::string& aMime = "image/png") {
    return BigEndian(aKind, 4) + BigEndian(aMime.size(), 4) + aMime + BigEndian(2, 4) + "me" +
           std::string(16, '\0') + BigEndian(aData.size(), 4) + aData;
}

std::string Block(int aType, const std::string& aContent, bool afLast = false) {
    return static_cast<char>(aType | (afLast ? 0x80 : 0)) + BigEndian(aContent.size(), 3) +
           aContent;
}

std::string FLAC(const std::string& aBlocks) {
    return "fLaC" +
           Block(0,
                 std::string(10, 'b') +
                     BigEndian(uint64_t{44100} << 44 | uint64_t{1} << 41 | uint64_t{15} << 36, 8) +
                     std::string(16, 'm')) +
           aBlocks;
}

TEST(MediaTagsTest, CommentsAreKeysAndValues) {
    EXPECT_EQ(Tags(FLAC(Block(4,
                              Comment({"TITLE=a=b", "artist=x", "Artist=y", "album=", "GENRE=g",
                                       "DATE=2015-06-30", "YEAR=1", "TRACKNUMBER=3/4",
                                       "DISCNUMBER= 2 ", "no sign", "=empty", "TITLES=no"}),
                              true))),
              "title=a=b | creator=x;y | genre=g | date=2015-06-30 | track=3 | disc=2");
    EXPECT_EQ(Tags(FLAC(Block(4, Comment({"YEAR=1999", "TRACKNUMBER=none", "DISCNUMBER=70000"})))),
              "date=1999");
    EXPECT_EQ(Tags(FLAC("")), "");
}

TEST(MediaTagsTest, CommentsWhoseSizesLieEndThere) {
    const std::string theWhole = Comment({"TITLE=t", "ARTIST=c"});
    std::string theCount = theWhole;
    theCount.replace(7, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(Tags(FLAC(Block(4, theCount, true))), "title=t | creator=c");
    std::string theLength = theWhole;
    theLength.replace(22, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(Tags(FLAC(Block(4, theLength, true))), "title=t");
    std::string theVendor = theWhole;
    theVendor.replace(0, 4, "\xFC\xFF\xFF\xFF");
    EXPECT_EQ(Tags(FLAC(Block(4, theVendor, true))), "");
    for (size_t i = 0; i < theWhole.size(); ++i) {
        Tags(FLAC(Block(4, theWhole.substr(0, i), true)));
    }
}

TEST(MediaTagsTest, FLACPicturesHaveAPlaceInTheFile) {
    // 42 bytes and the header of the block in front, 43 before the data.
    EXPECT_EQ(Tags(FLAC(Block(6, Picture("PICTURE"), true))), "picture=image/png 89+7 'PICTURE'");
    EXPECT_EQ(Tags(FLAC(Block(6, Picture("back", 4)) + Block(6, Picture("front")) +
                        Block(6, Picture("other"), true))),
              "picture=image/png 140+5 'front'");
    EXPECT_EQ(Tags(FLAC(Block(6, Picture("http://x", 3, "-->"), true))), "");
    EXPECT_EQ(Tags(FLAC(Block(6, Picture(""), true))), "");
    EXPECT_EQ(Tags(FLAC(Block(6, Picture("PICTURE").substr(0, 49), true))), "");
    EXPECT_EQ(Tags(FLAC(Block(6, Picture("x", 3, std::string(129, 'm')), true))), "");
}

// One page of Ogg; `aLengths` are those of the pieces.
std::string Page(int aFlags, const std::string& aLengths, const std::string& aBody,
                 uint32_t aSerial = 1) {
    return Raw("OggS\0") + static_cast<char>(aFlags) + std::string(8, '\0') +
           LittleEndian(aSerial, 4) + std::string(8, '\0') + static_cast<char>(aLengths.size()) +
           aLengths + aBody;
}

std::string OpusStart(uint32_t aSerial = 1) {
    return Page(2, "\x13", Raw("OpusHead\1\2\0\0\x80\xBB\0\0\0\0\0"), aSerial);
}

TEST(MediaTagsTest, PacketsGoOnOverPagesAndOtherStreams) {
    const std::string thePacket =
        "OpusTags" + Comment({"TITLE=" + std::string(600, 't'), "ARTIST=c"});
    ASSERT_EQ(thePacket.size(), 641u);
    EXPECT_EQ(Tags(OpusStart() + Page(0, "\xFF", thePacket.substr(0, 255)) +
                   Page(0, "\x05", "other", 2) + Page(1, "\xFF\x83", thePacket.substr(255))),
              "title=" + std::string(600, 't') + " | creator=c");
    // A packet that the file cuts off is none.
    EXPECT_EQ(Tags(OpusStart() + Page(0, "\xFF", thePacket.substr(0, 255))), "");
    EXPECT_EQ(Tags(OpusStart()), "");
}

TEST(MediaTagsTest, EncodedPicturesMayBeScattered) {
    // base64 of Picture("PICTURE"), 50 bytes
    const std::string theText =
        "AAAAAwAAAAlpbWFnZS9wbmcAAAACbWUAAAAAAAAAAAAAAAAAAAAAAAAAB1BJQ1RVUkU=";
    const std::string thePacket = "OpusTags" + Comment({"METADATA_BLOCK_PICTURE=" + theText});
    const std::string theStart = OpusStart();
    EXPECT_EQ(
        Tags(theStart + Page(0, std::string(1, static_cast<char>(thePacket.size())), thePacket)),
        "picture=image/png 121+68 'PICTURE'");
    const std::string thePadding(180, 'x');
    const std::string theLong =
        "OpusTags" + Comment({thePadding, "METADATA_BLOCK_PICTURE=" + theText});
    EXPECT_EQ(
        Tags(theStart + Page(0, "\xFF", theLong.substr(0, 255)) +
             Page(1, std::string(1, static_cast<char>(theLong.size() - 255)), theLong.substr(255))),
        "picture=image/png 305+25 358+43 'PICTURE'");
    for (const char* theBad : {"", "AAAA", "====", "AAAAAwAAAAlpbWFnZS9wbmcAAAACbWUAAAAA"}) {
        const std::string theBroken =
            "OpusTags" + Comment({std::string("METADATA_BLOCK_PICTURE=") + theBad, "TITLE=t"});
        EXPECT_EQ(Tags(theStart +
                       Page(0, std::string(1, static_cast<char>(theBroken.size())), theBroken)),
                  "title=t");
    }
}

// Pictures

std::string Entry(bool afBig, uint64_t aNumber, uint64_t aKind, uint64_t aCount, uint64_t aValue) {
    const auto theNumber = afBig ? BigEndian : LittleEndian;
    return theNumber(aNumber, 2) + theNumber(aKind, 2) + theNumber(aCount, 4) +
           theNumber(aValue, 4);
}

std::string JPEG(const std::string& anExif) {
    const std::string theSegment = Raw("Exif\0\0") + anExif;
    return Raw("\xFF\xD8\xFF\xE1") + BigEndian(theSegment.size() + 2, 2) + theSegment +
           Raw("\xFF\xC0\0\x0B\x08\0\x10\0\x20\1\1\x11\0\xFF\xDA");
}

TEST(MediaTagsTest, ExifHasTheDateInBothByteOrders) {
    const std::string theTaken = Raw("2015:06:30 18:00:00\0");
    const std::string theChanged = Raw("2017:12:31 23:59:59\0");
    for (const bool theIsBig : {false, true}) {
        const auto theNumber = theIsBig ? BigEndian : LittleEndian;
        const std::string theMark = (theIsBig ? "MM" : "II") + theNumber(42, 2) + theNumber(8, 4);
        EXPECT_EQ(Tags(JPEG(theMark + theNumber(1, 2) + Entry(theIsBig, 0x132, 2, 20, 26) +
                            theNumber(0, 4) + theChanged)),
                  "date=2017-12-31T23:59:59");
        EXPECT_EQ(Tags(JPEG(theMark + theNumber(2, 2) + Entry(theIsBig, 0x132, 2, 20, 56) +
                            Entry(theIsBig, 0x8769, 4, 1, 38) + theNumber(0, 4) + theNumber(1, 2) +
                            Entry(theIsBig, 0x9003, 2, 20, 76) + theNumber(0, 4) + theChanged +
                            theTaken)),
                  "date=2015-06-30T18:00:00");
        EXPECT_EQ(Tags(JPEG(theMark + theNumber(2, 2) + Entry(theIsBig, 0x132, 2, 20, 56) +
                            Entry(theIsBig, 0x8769, 4, 1, 38) + theNumber(0, 4) + theNumber(1, 2) +
                            Entry(theIsBig, 0x9004, 2, 20, 76) + theNumber(0, 4) + theChanged +
                            theTaken)),
                  "date=2015-06-30T18:00:00");
        // Directories in circles, entries and values outside, other kinds.
        EXPECT_EQ(Tags(JPEG(theMark + theNumber(1, 2) + Entry(theIsBig, 0x8769, 4, 1, 8))), "");
        EXPECT_EQ(Tags(JPEG(theMark + theNumber(65535, 2) + Entry(theIsBig, 0x132, 2, 20, 8))), "");
        EXPECT_EQ(Tags(JPEG(theMark + theNumber(1, 2) + Entry(theIsBig, 0x132, 2, 20, 4000000000))),
                  "");
        EXPECT_EQ(Tags(JPEG(theMark + theNumber(1, 2) + Entry(theIsBig, 0x132, 2, 18, 26) +
                            theNumber(0, 4) + theChanged)),
                  "");
        EXPECT_EQ(Tags(JPEG(theMark + theNumber(1, 2) + Entry(theIsBig, 0x132, 7, 20, 26) +
                            theNumber(0, 4) + theChanged)),
                  "");
    }
}

TEST(MediaTagsTest, ExifDatesThatAreNoneAreLeftOut) {
    for (const char* theText : {"0000:00:00 00:00:00", "    :  :     :  :  ", "2015-06-30 18:00:00",
                                "2015:06:30T18:00:00", "2015:06:30 18:00:0x"}) {
        EXPECT_EQ(Tags(JPEG(Raw("II*\0\x08\0\0\0\x01\0") + Entry(false, 0x132, 2, 20, 26) +
                            Raw("\0\0\0\0") + theText + '\0')),
                  "")
            << theText;
    }
    EXPECT_EQ(Tags(JPEG("")), "");
    EXPECT_EQ(Tags(JPEG(Raw("IM*\0\x08\0\0\0\x01\0"))), "");
}

std::string Chunk(const char* aType, const std::string& aContent) {
    return BigEndian(aContent.size(), 4) + aType + aContent + "sum!";
}

std::string PNG(const std::string& aChunks) {
    return Raw("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\0\1\0\0\0\1\x08\0\0\0\0\x3A\x7E\x9B\x55") +
           aChunks;
}

TEST(MediaTagsTest, PNGChunksHoldTexts) {
    EXPECT_EQ(Tags(PNG(Chunk("tEXt", Raw("Title\0\xC9t\xE9")) + Chunk("IDAT", "data") +
                       Chunk("tEXt", Raw("Author\0c")) +
                       Chunk("tEXt", Raw("Creation Time\0"
                                         "2015-06-30")) +
                       Chunk("IEND", "") + Chunk("tEXt", Raw("Title\0late")))),
              "title=\xC3\x89t\xC3\xA9 | creator=c | date=2015-06-30");
    EXPECT_EQ(Tags(PNG(Chunk("iTXt", Raw("Title\0\0\0de\0Titel\0\xC3\x89t\xC3\xA9")))),
              "title=\xC3\x89t\xC3\xA9");
    EXPECT_EQ(Tags(PNG(Chunk("eXIf", Raw("II*\0\x08\0\0\0\x01\0") + Entry(false, 0x132, 2, 20, 26) +
                                         Raw("\0\0\0\0"
                                             "2015:06:30 18:00:00\0")))),
              "date=2015-06-30T18:00:00");
}

TEST(MediaTagsTest, PNGTextsThatAreCompressedOrBrokenAreLeftOut) {
    for (const std::string& theChunk :
         {Chunk("zTXt", Raw("Title\0\0x\x9C")), Chunk("iTXt", Raw("Title\0\1\0\0\0x\x9C")),
          Chunk("tEXt", "Title"), Chunk("tEXt", ""), Chunk("iTXt", Raw("Title\0\0\0de\0Titel")),
          Chunk("iTXt", Raw("Title\0\0")), Chunk("iTXt", Raw("Title\0"))}) {
        EXPECT_EQ(Tags(PNG(theChunk)), "");
    }
    std::string theMany;
    for (int i = 0; i < 254; ++i) {
        theMany += Chunk("IDAT", "data");
    }
    const std::string theText = Chunk("tEXt", Raw("Title\0t"));
    EXPECT_EQ(Tags(PNG(theMany + theText)), "title=t");
    EXPECT_EQ(Tags(PNG(theMany + Chunk("IDAT", "") + theText)), "");
}

// Pieces

TEST(MediaBytesTest, PiecesThatMeetAreJoined) {
    vxmedia::MediaBytes theBytes(2, 3);
    theBytes.Add(5, 1);
    theBytes.Add(9, 0);
    theBytes.Add(8, 2);
    EXPECT_EQ(theBytes.Size(), 6u);
    ASSERT_EQ(theBytes.Pieces().size(), 2u);
    MemorySource theSource("0123456789");
    uint8_t theBuffer[7] = {};
    EXPECT_TRUE(theBytes.ReadExactly(theSource, 0, theBuffer, 6));
    EXPECT_STREQ(reinterpret_cast<char*>(theBuffer), "234589");
    EXPECT_TRUE(theBytes.ReadExactly(theSource, 6, theBuffer, 0));
    EXPECT_FALSE(theBytes.ReadExactly(theSource, 6, theBuffer, 1));
    EXPECT_FALSE(theBytes.ReadExactly(theSource, 7, theBuffer, 0));
    EXPECT_FALSE(theBytes.ReadExactly(theSource, 1, theBuffer, SIZE_MAX));
    const vxmedia::MediaBytes thePart = theBytes.Part(3, 2);
    EXPECT_TRUE(thePart.ReadExactly(theSource, 0, theBuffer, 2));
    EXPECT_EQ(theBuffer[0], '5');
    EXPECT_EQ(theBuffer[1], '8');
    EXPECT_EQ(theBytes.Part(5, UINT64_MAX).Size(), 1u);
    EXPECT_EQ(theBytes.Part(6, 1).Size(), 0u);
}

// WAV

std::string WAVChunk(const char* aName, const std::string& aData) {
    return aName + LittleEndian(aData.size(), 4) + aData + std::string(aData.size() & 1, '\0');
}

const std::string kWAVFormat =
    WAVChunk("fmt ", Raw("\1\0\1\0\x40\x1F\0\0\x40\x1F\0\0\1\0\x08\0"));  // 8000 Hz, 8 bits

// A file with these chunks in front of its data and behind it.
std::string WAVFile(const std::string& aFront, const std::string& aBack,
                    const std::string& aData = WAVChunk("data", "sound")) {
    return "RIFF" + LittleEndian(0, 4) + "WAVE" + kWAVFormat + aFront + aData + aBack;
}

std::string InfoList(const std::string& aTexts) {
    return WAVChunk("LIST", "INFO" + aTexts);
}

TEST(MediaTagsTest, WAVHasTextsInItsLists) {
    const std::string theList = InfoList(
        WAVChunk("INAM", Raw("Title\0")) + WAVChunk("IART", "Some") + WAVChunk("IPRD", "Album") +
        WAVChunk("IGNR", "Rock") + WAVChunk("ICRD", "2015-06-30") + WAVChunk("ICMT", "Take 2") +
        WAVChunk("ITRK", "3/12") + WAVChunk("ISFT", "a program"));
    const char* kAll =
        "title=Title | creator=Some | album=Album | genre=Rock | date=2015-06-30 | comment=Take 2 "
        "| "
        "track=3";
    EXPECT_EQ(Tags(WAVFile(theList, "")), kAll);
    EXPECT_EQ(Tags(WAVFile("", theList)), kAll);
    EXPECT_EQ(Tags(WAVFile(WAVChunk("odd ", "x") + theList, "")), kAll);
    EXPECT_EQ(Tags(WAVFile(InfoList(WAVChunk("IPRT", "7")), "")), "track=7");
    EXPECT_EQ(Tags(WAVFile(WAVChunk("LIST", "adtl" + WAVChunk("INAM", "x")), "")), "");
}

TEST(MediaTagsTest, TheLastTextOfAWAVFileCounts) {
    EXPECT_EQ(Tags(WAVFile(InfoList(WAVChunk("INAM", "One") + WAVChunk("IART", "Some")),
                           InfoList(WAVChunk("INAM", "Two") + WAVChunk("IART", "")))),
              "title=Two | creator=Some");
}

TEST(MediaTagsTest, WAVTextsAreUTF8OrLatin1) {
    EXPECT_EQ(Tags(WAVFile(InfoList(WAVChunk("INAM", "\xC3\x89t\xC3\xA9")), "")),
              "title=\xC3\x89t\xC3\xA9");
    EXPECT_EQ(Tags(WAVFile(InfoList(WAVChunk("INAM", "\xC9t\xE9")), "")),
              "title=\xC3\x89t\xC3\xA9");
    const std::string theLong = "x" + std::string(2047, 'y') + std::string(2000, 'z');
    EXPECT_EQ(
        Tags(WAVFile(
            InfoList(WAVChunk("INAM", theLong + std::string(47, 'z') + "\xC3\xA9 and more")), "")),
        "title=" + theLong + std::string(47, 'z'));
}

TEST(MediaTagsTest, ListsOfWAVThatLieAreReadAsFarAsTheyGo) {
    const std::string theTexts = WAVChunk("INAM", "Title") + WAVChunk("IART", "Some");
    EXPECT_EQ(Tags(WAVFile("", "LIST" + LittleEndian(UINT32_MAX, 4) + "INFO" + theTexts)),
              "title=Title | creator=Some");
    EXPECT_EQ(Tags(WAVFile("", "LIST" + LittleEndian(20, 4) + "INFO" + theTexts)), "title=Title");
    EXPECT_EQ(Tags(WAVFile("", InfoList("INAM" + LittleEndian(UINT32_MAX, 4) + "Title"))),
              "title=Title");
    EXPECT_EQ(Tags(WAVFile("", InfoList(theTexts).substr(0, 24))), "title=Titl");
    EXPECT_EQ(Tags(WAVFile("", "LIST" + LittleEndian(3, 4) + "INF")), "");
    EXPECT_EQ(Tags(WAVFile("", InfoList("INA"))), "");
}

TEST(MediaTagsTest, TheLongFormOfWAVHasItsListBehindTheData) {
    const std::string theSizes =
        WAVChunk("ds64", LittleEndian(0, 8) + LittleEndian(6, 8) + LittleEndian(0, 8));
    const std::string theList = InfoList(WAVChunk("INAM", "Title"));
    EXPECT_EQ(Tags(WAVFile(theSizes, theList, Raw("data\xFF\xFF\xFF\xFF") + "sounds")),
              "title=Title");
    EXPECT_EQ(Tags(WAVFile("", theList, Raw("data\xFF\xFF\xFF\xFF") + "sounds")), "");
}

TEST(MediaTagsTest, WAVFilesOfManyChunksDoNotKeepTheReaderBusy) {
    std::string theTexts;
    for (int i = 0; i < 300000; ++i) {
        theTexts += WAVChunk("INAM", "x");
    }
    EXPECT_EQ(Tags(WAVFile("", InfoList(theTexts))), "title=x");
}

// GIF

std::string GIFFile(const std::string& anExtensions, const std::string& aColors = "") {
    return "GIF89a" + LittleEndian(5, 2) + LittleEndian(4, 2) +
           (aColors.empty() ? Raw("\0") : Raw("\x80")) + Raw("\0\0") + aColors + anExtensions;
}

std::string GIFComment(const std::string& aText) {
    std::string theBytes = "\x21\xFE";
    for (size_t i = 0; i < aText.size(); i += 255) {
        const std::string thePart = aText.substr(i, 255);
        theBytes += LittleEndian(thePart.size(), 1) + thePart;
    }
    return theBytes + '\0';
}

TEST(MediaTagsTest, GIFHasCommentsInFrontOfThePicture) {
    const std::string theLoop = Raw("\x21\xFF\x0BNETSCAPE2.0\x03\x01\0\0\0");
    const std::string thePicture = "," + std::string(9, '\0');
    EXPECT_EQ(Tags(GIFFile(GIFComment("Drawn") + thePicture)), "comment=Drawn");
    EXPECT_EQ(Tags(GIFFile(theLoop + GIFComment("Drawn") + thePicture, "colors")), "comment=Drawn");
    EXPECT_EQ(Tags(GIFFile(GIFComment("One") + GIFComment("Two") + GIFComment("") + thePicture)),
              "comment=Two");
    EXPECT_EQ(Tags(GIFFile(thePicture + GIFComment("Late"))), "");
    EXPECT_EQ(Tags(GIFFile(GIFComment("\xE9t\xE9"))), "comment=\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(Tags(GIFFile(GIFComment(std::string(600, 'c')))), "comment=" + std::string(600, 'c'));
    EXPECT_EQ(Tags(GIFFile(GIFComment(std::string(5000, 'c')))),
              "comment=" + std::string(4096, 'c'));
}

TEST(MediaTagsTest, CommentsOfGIFThatAreCutShortAreReadAsFarAsTheyGo) {
    EXPECT_EQ(Tags(GIFFile("\x21\xFE\x05"
                           "Drawn")),
              "comment=Drawn");
    EXPECT_EQ(Tags(GIFFile("\x21\xFE\x06"
                           "Drawn")),
              "");
    EXPECT_EQ(Tags(GIFFile("\x21\xFE")), "");
    EXPECT_EQ(Tags(GIFFile("\x21")), "");
    std::string theExtensions;
    for (int i = 0; i < 100000; ++i) {
        theExtensions += Raw("\x21\xF9\0");
    }
    EXPECT_EQ(Tags(GIFFile(theExtensions + GIFComment("far"))), "");
}

}  // namespace
