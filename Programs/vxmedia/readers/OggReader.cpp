// Ogg: the first pages tell the coding, the last page of the stream how long it plays.
//
// Nothing between is read. The last page is looked for backwards from the end, 64 KiB at a time,
// which is as long as a page can be.

#include <cstring>
#include <vector>

#include "MediaReader.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr size_t kOgg_PageHeaderSize = 27;
constexpr uint8_t kOgg_FirstPage = 2;    // flag of a stream's first page
constexpr int kOgg_MaxStreams = 32;      // first pages that are looked at
constexpr size_t kOgg_TailSize = 65536;  // bytes looked at in one piece
constexpr int kOgg_MaxTails = 4;
constexpr int kOgg_MaxBlocks = 64;     // of FLAC
constexpr size_t kOgg_IdentSize = 51;  // the longest start of a stream, that of FLAC

struct OggPage {
    uint8_t mLengths[255] = {};  // of the pieces of its body
    size_t mCount = 0;           // pieces
    uint8_t mFlags = 0;
    uint64_t mGranule = 0;  // all bits set: no packet ends on the page
    uint32_t mSerial = 0;
    uint64_t mBodyPos = 0;
    uint32_t mBodySize = 0;  // bytes

    uint64_t EndPos() const { return mBodyPos + mBodySize; }
    bool IsFirst() const { return (mFlags & kOgg_FirstPage) != 0; }
    bool HasPosition() const { return (mGranule >> 63) == 0; }
};

// What the start of a stream tells beyond the facts.
struct OggStream {
    uint32_t mSerial = 0;
    uint64_t mFirstPos = 0;  // of its first page
    uint64_t mSkip = 0;      // frames at the start that are not played
};

bool ReadPage(MediaSource& aSource, uint64_t aPos, OggPage& aPage) {
    uint8_t theHeader[kOgg_PageHeaderSize];
    if (!aSource.ReadExactly(aPos, theHeader, sizeof(theHeader)) ||
        memcmp(theHeader, "OggS\0", 5) != 0) {
        return false;
    }
    aPage.mCount = theHeader[26];
    if (!aSource.ReadExactly(aPos + sizeof(theHeader), aPage.mLengths, aPage.mCount)) {
        return false;
    }
    aPage.mFlags = theHeader[5];
    aPage.mGranule = vxBitString::LittleEndianTouint32(theHeader + 6) |
                     uint64_t(vxBitString::LittleEndianTouint32(theHeader + 10)) << 32;
    aPage.mSerial = vxBitString::LittleEndianTouint32(theHeader + 14);
    aPage.mBodyPos = aPos + sizeof(theHeader) + aPage.mCount;
    aPage.mBodySize = 0;
    for (size_t i = 0; i < aPage.mCount; ++i) {
        aPage.mBodySize += aPage.mLengths[i];
    }
    return aPage.EndPos() <= aSource.Size();
}

const char* ReadVorbis(const uint8_t* anIdent, size_t aSize, MediaFacts& aFacts) {
    if (aSize < 30 || vxBitString::LittleEndianTouint32(anIdent + 7) != 0) {
        return "Ogg: the Vorbis header is broken";
    }
    aFacts.mChannels = anIdent[11];
    aFacts.mRate = vxBitString::LittleEndianTouint32(anIdent + 12);
    const uint32_t theBitRate = vxBitString::LittleEndianTouint32(anIdent + 20);
    aFacts.mBitRate = theBitRate <= INT32_MAX ? theBitRate : 0;  // below 0: not said
    aFacts.mDetail = "Vorbis";
    return nullptr;
}

const char* ReadOpus(const uint8_t* anIdent, size_t aSize, MediaFacts& aFacts, OggStream& aStream) {
    if (aSize < 19 || (anIdent[8] & 0xF0) != 0) {
        return "Ogg: the Opus header is broken";
    }
    aFacts.mChannels = anIdent[9];
    aFacts.mRate = 48000;  // Opus plays at this rate, whatever went in
    aStream.mSkip = vxBitString::LittleEndianTouint16(anIdent + 10);
    aFacts.mDetail =
        vxCString::Format("Opus, made from %u Hz", vxBitString::LittleEndianTouint32(anIdent + 12));
    return nullptr;
}

const char* ReadFLACIdent(const uint8_t* anIdent, size_t aSize, MediaFacts& aFacts) {
    if (aSize < kOgg_IdentSize || memcmp(anIdent + 9, "fLaC", 4) != 0) {
        return "Ogg: the FLAC header is broken";
    }
    const char* theReason = ReadFLACStreamInfo(anIdent + 17, aFacts);
    aFacts.mDetail = vxCString("FLAC, ") + aFacts.mDetail;
    return theReason;
}

// Looks at the start of one stream. `aIsKnown` tells whether it is sound that is read here.
const char* ReadIdent(const uint8_t* anIdent, size_t aSize, MediaFacts& aFacts, OggStream& aStream,
                      bool& aIsKnown) {
    aIsKnown = true;
    if (aSize >= 7 && memcmp(anIdent, "\x01vorbis", 7) == 0) {
        return ReadVorbis(anIdent, aSize, aFacts);
    }
    if (aSize >= 8 && memcmp(anIdent, "OpusHead", 8) == 0) {
        return ReadOpus(anIdent, aSize, aFacts, aStream);
    }
    if (aSize >= 5 && memcmp(anIdent,
                             "\x7F"
                             "FLAC",
                             5) == 0) {
        return ReadFLACIdent(anIdent, aSize, aFacts);
    }
    aIsKnown = false;
    return nullptr;
}

// The first pages of all streams stand together at the start of the file.
const char* ReadStreams(MediaSource& aSource, uint64_t aStart, MediaFacts& aFacts,
                        OggStream& aStream) {
    uint64_t thePos = aStart;
    OggPage thePage;
    for (int i = 0; i < kOgg_MaxStreams; ++i) {
        if (!ReadPage(aSource, thePos, thePage)) {
            return "Ogg: the file ends before a stream is described";
        }
        if (!thePage.IsFirst()) {
            break;
        }
        uint8_t theIdent[kOgg_IdentSize];
        const size_t theSize = aSource.Read(
            thePage.mBodyPos, theIdent,
            thePage.mBodySize < sizeof(theIdent) ? thePage.mBodySize : sizeof(theIdent));
        bool theIsKnown;
        const char* theReason = ReadIdent(theIdent, theSize, aFacts, aStream, theIsKnown);
        if (theIsKnown) {
            aStream.mSerial = thePage.mSerial;
            aStream.mFirstPos = thePos;
            return theReason;
        }
        thePos = thePage.EndPos();
    }
    return "Ogg: there is no Vorbis, Opus or FLAC stream";
}

// Finds the last page of the stream inside one piece of the file; `aPiece` starts at `aPos`.
bool FindLastPage(MediaSource& aSource, const std::vector<uint8_t>& aPiece, uint64_t aPos,
                  uint32_t aSerial, OggPage& aPage) {
    for (size_t i = aPiece.size() < 4 ? 0 : aPiece.size() - 3; i-- > 0;) {
        if (aPiece[i] == 'O' && memcmp(&aPiece[i], "OggS", 4) == 0 &&
            ReadPage(aSource, aPos + i, aPage) && aPage.mSerial == aSerial && aPage.HasPosition()) {
            return true;
        }
    }
    return false;
}

bool FindLastPage(MediaSource& aSource, uint32_t aSerial, OggPage& aPage) {
    uint64_t theEnd = aSource.Size();
    std::vector<uint8_t> thePiece;
    for (int i = 0; i < kOgg_MaxTails && theEnd > 3; ++i) {
        const uint64_t theStart = theEnd > kOgg_TailSize ? theEnd - kOgg_TailSize : 0;
        thePiece.resize(static_cast<size_t>(theEnd - theStart));
        thePiece.resize(aSource.Read(theStart, thePiece.data(), thePiece.size()));
        if (FindLastPage(aSource, thePiece, theStart, aSerial, aPage)) {
            return true;
        }
        if (theStart == 0) {
            break;
        }
        theEnd = theStart + 3;  // a mark may lie across the border
    }
    return false;
}

bool RecognizeOgg(MediaSource& aSource, uint64_t aStart) {
    uint8_t theBytes[4];
    return aSource.ReadExactly(aStart, theBytes, sizeof(theBytes)) &&
           memcmp(theBytes, "OggS", 4) == 0;
}

const char* ReadOgg(MediaSource& aSource, uint64_t aStart, MediaFacts& aFacts) {
    if (!RecognizeOgg(aSource, aStart)) {
        return "Ogg: the signature is missing";
    }
    OggStream theStream;
    if (const char* theReason = ReadStreams(aSource, aStart, aFacts, theStream)) {
        return theReason;
    }
    if (aFacts.mChannels == 0 || aFacts.mRate == 0) {
        return "Ogg: the stream describes no sound";
    }
    OggPage theLast;
    if (FindLastPage(aSource, theStream.mSerial, theLast) && !theLast.IsFirst()) {
        aFacts.mfDurationKnown = true;
        aFacts.mFrames =
            theLast.mGranule > theStream.mSkip ? theLast.mGranule - theStream.mSkip : 0;
    }
    return nullptr;
}

// The packets of one stream, each in pieces of at most one page.
class PacketWalk {
public:
    PacketWalk(MediaSource& aSource, const OggStream& aStream)
        : mSource(aSource), mSerial(aStream.mSerial), mPagePos(aStream.mFirstPos) {}

    bool Next(MediaBytes& aPacket) {
        aPacket = MediaBytes();
        for (;;) {
            while (mNext < mPage.mCount) {
                const uint8_t theLength = mPage.mLengths[mNext++];
                aPacket.Add(mPos, theLength);
                mPos += theLength;
                if (theLength < 255) {
                    return true;
                }
            }
            if (!NextPage()) {
                return false;
            }
        }
    }

private:
    bool NextPage() {
        do {
            if (!ReadPage(mSource, mPagePos, mPage)) {
                mPage.mCount = 0;
                return false;
            }
            mPagePos = mPage.EndPos();
        } while (mPage.mSerial != mSerial);
        mPos = mPage.mBodyPos;
        mNext = 0;
        return true;
    }

    MediaSource& mSource;
    const uint32_t mSerial;
    uint64_t mPagePos;  // of the next page
    OggPage mPage;
    size_t mNext = 0;   // piece of the page
    uint64_t mPos = 0;  // of that piece
};

// The second packet is the comment. FLAC has one packet for each of its blocks.
void ReadOggTags(MediaSource& aSource, uint64_t aStart, MediaTags& aTags) {
    MediaFacts theFacts;
    OggStream theStream;
    if (ReadStreams(aSource, aStart, theFacts, theStream) != nullptr) {
        return;
    }
    PacketWalk theWalk(aSource, theStream);
    MediaBytes thePacket;
    theWalk.Next(thePacket);
    uint8_t theHead[8] = {};
    for (int i = 0; i < kOgg_MaxBlocks && theWalk.Next(thePacket); ++i) {
        if (!thePacket.ReadExactly(aSource, 0, theHead, sizeof(theHead))) {
            return;
        }
        const bool theIsVorbis = memcmp(theHead, "\x03vorbis", 7) == 0;
        if (theIsVorbis || memcmp(theHead, "OpusTags", 8) == 0) {
            ReadVorbisComment(aSource, thePacket.Part(theIsVorbis ? 7 : 8, thePacket.Size()),
                              aTags);
            return;
        }
        ReadFLACBlock(aSource, theHead[0], thePacket.Part(4, thePacket.Size()), aTags);
        if (IsLastFLACBlock(theHead[0])) {
            return;
        }
    }
}

}  // namespace

const MediaFormat kMediaFormat_Ogg = {"Ogg",        ",ogg,oga,opus,", false,
                                      RecognizeOgg, ReadOgg,          ReadOggTags};

}  // namespace vxmedia
