// ID3: a tag of frames in front of the file (versions 2.2 to 2.4), or 128 bytes at its end (version 1).
//
// Frames are leapt over unless they are wanted. A tag of version 2.2 or 2.3 may be unsynchronised as a
// whole: then the sizes of its frames count the bytes before that, and its first MiB is decoded to
// walk through it. Compressed and encrypted frames are left out.

#include <algorithm>
#include <cstring>
#include <vector>

#include "MediaReader.h"
#include "MediaTags.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr size_t kID3_HeaderSize = 10;
constexpr size_t kID3_MaxDecoded = 1024 * 1024;  // bytes of an unsynchronised tag that are decoded
constexpr size_t kID3_MaxPictureHead = 1024;     // bytes in front of a picture
constexpr uint8_t kID3_FrontCover = 3;
constexpr uint8_t kID3_Unsynchronised = 0x80;  // flags of a tag
constexpr uint8_t kID3_ExtendedOrCompressed = 0x40;

enum TextEncoding { Latin1, UTF16, UTF16BigEndian, UTF8 };

// Four bytes of seven bits each.
uint32_t SynchsafeNumber(const uint8_t* aBytes) {
    return uint32_t(aBytes[0] & 0x7F) << 21 | uint32_t(aBytes[1] & 0x7F) << 14 |
           uint32_t(aBytes[2] & 0x7F) << 7 | uint32_t(aBytes[3] & 0x7F);
}

// The frames of a tag. Positions count what is left when the tag is decoded.
class TagBody {
public:
    TagBody(MediaSource& aSource, uint64_t aPos, uint64_t aSize, bool afUnsynchronised)
        : mSource(aSource), mPos(aPos), mSize(aSize), mfDecoded(afUnsynchronised) {
        if (mfDecoded) {
            Decode();
        }
    }

    uint64_t Size() const { return mSize; }
    bool IsDecoded() const { return mfDecoded; }

    size_t Read(uint64_t aPos, uint8_t* aBuffer, size_t aCount) {
        if (aPos >= mSize || aCount == 0) {
            return 0;
        }
        const size_t theCount = static_cast<size_t>(std::min<uint64_t>(aCount, mSize - aPos));
        if (!mfDecoded) {
            return mSource.Read(mPos + aPos, aBuffer, theCount);
        }
        memcpy(aBuffer, mBytes.data() + aPos, theCount);
        return theCount;
    }

    bool ReadExactly(uint64_t aPos, uint8_t* aBuffer, size_t aCount) {
        return Read(aPos, aBuffer, aCount) == aCount;
    }

    // Where a byte, or the end, lies in the file.
    uint64_t PlaceOf(uint64_t aPos) const {
        if (!mfDecoded) {
            return mPos + aPos;
        }
        const auto theDropped = std::upper_bound(mDropped.begin(), mDropped.end(), aPos);
        return mPos + aPos + static_cast<uint64_t>(theDropped - mDropped.begin());
    }

private:
    void Decode() {
        std::vector<uint8_t> theRaw(
            static_cast<size_t>(std::min<uint64_t>(mSize, kID3_MaxDecoded)));
        theRaw.resize(mSource.Read(mPos, theRaw.data(), theRaw.size()));
        for (size_t i = 0; i < theRaw.size(); ++i) {
            if (theRaw[i] == 0 && i > 0 && theRaw[i - 1] == 0xFF) {
                mDropped.push_back(mBytes.size());
            } else {
                mBytes.push_back(theRaw[i]);
            }
        }
        mSize = mBytes.size();
    }

    MediaSource& mSource;
    const uint64_t mPos;
    uint64_t mSize;
    const bool mfDecoded;
    std::vector<uint8_t> mBytes;     // decoded
    std::vector<uint64_t> mDropped;  // zeros: the positions in front of which they stood
};

struct Frame {
    char mID[5] = {};
    uint64_t mPos = 0;   // of its content
    uint64_t mSize = 0;  // bytes
    bool mfReadable = true;
    bool mfUnsynchronised = false;
};

// What the frames tell in texts.
struct FrameTexts {
    vxCString mTitle, mCreator, mAlbum, mGenre, mTrack, mDisc;
    vxCString mRecorded, mReleased, mYear, mDay, mTime;
};

constexpr struct {
    const char* mShortID;  // of version 2.2
    const char* mID;
    vxCString FrameTexts::*mField;
} kID3_Texts[] = {
    {"TT2", "TIT2", &FrameTexts::mTitle}, {"TP1", "TPE1", &FrameTexts::mCreator},
    {"TAL", "TALB", &FrameTexts::mAlbum}, {"TCO", "TCON", &FrameTexts::mGenre},
    {"TRK", "TRCK", &FrameTexts::mTrack}, {"TPA", "TPOS", &FrameTexts::mDisc},
    {"TYE", "TYER", &FrameTexts::mYear},  {"TDA", "TDAT", &FrameTexts::mDay},
    {"TIM", "TIME", &FrameTexts::mTime},  {"", "TDRC", &FrameTexts::mRecorded},
    {"", "TDRL", &FrameTexts::mReleased},
};

vxCString TextOf(uint8_t anEncoding, const uint8_t* aBytes, size_t aCount) {
    switch (anEncoding) {
        case Latin1:
            return TextOfLatin1(aBytes, aCount);
        case UTF16BigEndian:
            return TextOfUTF16(aBytes, aCount, true);
        case UTF8:
            return TextOfUTF8(aBytes, aCount);
        default:
            break;
    }
    if (anEncoding != UTF16 || aCount < 2) {
        return vxCString();
    }
    const bool theIsLittle = aBytes[0] == 0xFF && aBytes[1] == 0xFE;
    const bool theHasMark = theIsLittle || (aBytes[0] == 0xFE && aBytes[1] == 0xFF);
    return TextOfUTF16(aBytes + (theHasMark ? 2 : 0), aCount - (theHasMark ? 2 : 0), !theIsLittle);
}

// Returns the bytes of a text with its NUL, or all of them.
size_t SizeWithNUL(uint8_t anEncoding, const uint8_t* aBytes, size_t aCount) {
    const size_t theUnit = anEncoding == UTF16 || anEncoding == UTF16BigEndian ? 2 : 1;
    for (size_t i = 0; i + theUnit <= aCount; i += theUnit) {
        if (aBytes[i] == 0 && aBytes[i + theUnit - 1] == 0) {
            return i + theUnit;
        }
    }
    return aCount;
}

// Version 2.4 separates several values by NULs.
vxCString ValuesOf(const uint8_t* aBytes, size_t aCount) {
    vxCString theValues;
    for (size_t i = 1; i < aCount;) {
        const size_t theSize = SizeWithNUL(aBytes[0], aBytes + i, aCount - i);
        const vxCString theValue = TextOf(aBytes[0], aBytes + i, theSize);
        if (!theValues.IsEmpty() && !theValue.IsEmpty()) {
            theValues += ';';
        }
        theValues += theValue;
        i += theSize;
    }
    return theValues;
}

// A genre may be a number of the table, "17" or "(17)" with or without a text behind it.
vxCString GenreOf(const vxCString& aText) {
    uint32_t theNumber;
    const bool theHasBrackets = aText.First() == '(' && aText.Contains(")");
    const vxCString theDigits = theHasBrackets ? aText.Mid(1).BeforeFirst(')') : aText;
    if (theDigits.HasOnlyNumbers() && theDigits.ToUInt32(&theNumber) &&
        NameOfGenre(theNumber) != nullptr) {
        return NameOfGenre(theNumber);
    }
    return aText;
}

bool IsFourDigits(const vxCString& aText) {
    return aText.length() == 4 && aText.HasOnlyNumbers();
}

// Older versions keep the year, the day as "3006" and the time as "1800" in frames of their own.
vxCString DateOf(const FrameTexts& aTexts) {
    if (!aTexts.mRecorded.IsEmpty() || !aTexts.mReleased.IsEmpty()) {
        return aTexts.mRecorded.IsEmpty() ? aTexts.mReleased : aTexts.mRecorded;
    }
    vxCString theDate = aTexts.mYear.Left(4);
    if (!IsFourDigits(theDate)) {
        return aTexts.mYear;
    }
    if (IsFourDigits(aTexts.mDay)) {
        theDate += vxCString("-") + aTexts.mDay.Mid(2) + "-" + aTexts.mDay.Left(2);
        if (IsFourDigits(aTexts.mTime)) {
            theDate += vxCString(" ") + aTexts.mTime.Left(2) + ":" + aTexts.mTime.Mid(2);
        }
    }
    return theDate;
}

// Version 2.2 has formats of three letters.
vxCString MimeTypeOf(const vxCString& aText) {
    return aText == "JPG" ? "image/jpeg" : aText == "PNG" ? "image/png" : aText;
}

// One tag of version 2.
class ID3v2Tag {
public:
    ID3v2Tag(TagBody& aBody, int aVersion, bool afUnsynchronised)
        : mBody(aBody), mVersion(aVersion), mfUnsynchronised(afUnsynchronised) {}

    void SkipExtendedHeader();
    void ReadFrames(MediaTags& aTags);

private:
    size_t HeaderSize() const { return mVersion == 2 ? 6 : 10; }
    bool ReadHeader(Frame& aFrame);
    bool StartsFrame(uint64_t aPos);
    uint32_t SizeOf(const uint8_t* aBytes);
    void ReadFlags(const uint8_t* aFlags, Frame& aFrame);
    void ReadText(const Frame& aFrame, vxCString FrameTexts::*aField);
    uint64_t RawSize(const Frame& aFrame, size_t aDecoded);
    void ReadPicture(const Frame& aFrame, MediaTags& aTags);
    std::vector<uint8_t> ReadContent(const Frame& aFrame, size_t aLimit);

    TagBody& mBody;
    const int mVersion;           // 2 to 4
    const bool mfUnsynchronised;  // version 4: every frame for itself
    uint64_t mPos = 0;
    FrameTexts mTexts;
};

// Its size leaves out the four bytes of the size itself up to version 2.3.
void ID3v2Tag::SkipExtendedHeader() {
    uint8_t theSize[4];
    if (mBody.ReadExactly(0, theSize, sizeof(theSize))) {
        mPos = mVersion == 4 ? SynchsafeNumber(theSize)
                             : uint64_t{vxBitString::BigEndianTouint32(theSize)} + 4;
    }
}

bool ID3v2Tag::StartsFrame(uint64_t aPos) {
    uint8_t theID[4];
    const size_t theCount = mVersion == 2 ? 3 : 4;
    return mBody.ReadExactly(aPos, theID, theCount) &&
           std::all_of(theID, theID + theCount, [](uint8_t aByte) {
               return (aByte >= 'A' && aByte <= 'Z') || (aByte >= '0' && aByte <= '9');
           });
}

// Version 2.4 has seven bits in a byte, but some programs write eight. What stands behind tells.
uint32_t ID3v2Tag::SizeOf(const uint8_t* aBytes) {
    if (mVersion == 2) {
        return uint32_t(aBytes[0]) << 16 | uint32_t(aBytes[1]) << 8 | aBytes[2];
    }
    const uint32_t thePlain = vxBitString::BigEndianTouint32(aBytes);
    if (mVersion == 3) {
        return thePlain;
    }
    const uint32_t theSafe = SynchsafeNumber(aBytes);
    const uint64_t theContent = mPos + HeaderSize();
    const auto theFits = [this, theContent](uint32_t aSize) {
        const uint64_t theEnd = theContent + aSize;
        uint8_t theByte;
        return theEnd == mBody.Size() || StartsFrame(theEnd) ||
               (mBody.ReadExactly(theEnd, &theByte, 1) && theByte == 0);
    };
    const bool theMustBePlain = (thePlain & 0x80808080) != 0;
    return theMustBePlain || (thePlain != theSafe && !theFits(theSafe) && theFits(thePlain))
               ? thePlain
               : theSafe;
}

// Some flags stand for fields in front of the content.
void ID3v2Tag::ReadFlags(const uint8_t* aFlags, Frame& aFrame) {
    uint64_t theFields = 0;
    if (mVersion == 3) {
        aFrame.mfReadable = (aFlags[1] & 0xC0) == 0;  // compressed, encrypted
        theFields = (aFlags[1] & 0x20) != 0 ? 1 : 0;  // group
    } else {
        aFrame.mfReadable = (aFlags[1] & 0x0C) == 0;     // compressed, encrypted
        theFields = ((aFlags[1] & 0x40) != 0 ? 1 : 0) +  // group
                    ((aFlags[1] & 0x01) != 0 ? 4 : 0);   // length before unsynchronisation
        aFrame.mfUnsynchronised = mfUnsynchronised || (aFlags[1] & 0x02) != 0;
    }
    aFrame.mfReadable = aFrame.mfReadable && theFields <= aFrame.mSize;
    if (aFrame.mfReadable) {
        aFrame.mPos += theFields;
        aFrame.mSize -= theFields;
    }
}

bool ID3v2Tag::ReadHeader(Frame& aFrame) {
    uint8_t theHeader[10];
    if (!StartsFrame(mPos) || !mBody.ReadExactly(mPos, theHeader, HeaderSize())) {
        return false;
    }
    const size_t theIDSize = mVersion == 2 ? 3 : 4;
    memcpy(aFrame.mID, theHeader, theIDSize);
    aFrame.mSize = SizeOf(theHeader + theIDSize);
    aFrame.mPos = mPos + HeaderSize();
    mPos = aFrame.mPos + aFrame.mSize;
    if (mPos > mBody.Size()) {
        return false;
    }
    if (mVersion != 2) {
        ReadFlags(theHeader + 8, aFrame);
    }
    return true;
}

std::vector<uint8_t> ID3v2Tag::ReadContent(const Frame& aFrame, size_t aLimit) {
    std::vector<uint8_t> theBytes(static_cast<size_t>(std::min<uint64_t>(aFrame.mSize, aLimit)));
    theBytes.resize(mBody.Read(aFrame.mPos, theBytes.data(), theBytes.size()));
    if (aFrame.mfUnsynchronised) {
        Resynchronise(theBytes);
    }
    return theBytes;
}

void ID3v2Tag::ReadText(const Frame& aFrame, vxCString FrameTexts::*aField) {
    const std::vector<uint8_t> theBytes = ReadContent(aFrame, kTag_MaxText);
    if (!theBytes.empty()) {
        SetTag(mTexts.*aField, ValuesOf(theBytes.data(), theBytes.size()));
    }
}

// Returns how many bytes of the file the first `aDecoded` bytes of a frame take up.
uint64_t ID3v2Tag::RawSize(const Frame& aFrame, size_t aDecoded) {
    if (!aFrame.mfUnsynchronised) {
        return aDecoded;
    }
    uint8_t theRaw[kID3_MaxPictureHead];
    const size_t theCount = mBody.Read(aFrame.mPos, theRaw, sizeof(theRaw));
    size_t theSize = 0;
    for (; theSize < theCount && aDecoded > 0; ++theSize) {
        aDecoded -= theRaw[theSize] != 0 || theSize == 0 || theRaw[theSize - 1] != 0xFF;
    }
    return theSize;
}

// Encoding, MIME type (three letters in version 2.2), kind, description, picture.
void ID3v2Tag::ReadPicture(const Frame& aFrame, MediaTags& aTags) {
    const std::vector<uint8_t> theHead = ReadContent(aFrame, kID3_MaxPictureHead);
    if (theHead.size() < 6) {
        return;
    }
    const size_t theMimeSize =
        mVersion == 2 ? 3 : SizeWithNUL(Latin1, theHead.data() + 1, theHead.size() - 1);
    const size_t theKind = 1 + theMimeSize;
    const size_t theDescription = theKind + 1;
    if (theDescription >= theHead.size()) {
        return;
    }
    const size_t thePicture =
        theDescription +
        SizeWithNUL(theHead[0], theHead.data() + theDescription, theHead.size() - theDescription);
    CoverArt theArt;
    theArt.mMimeType = MimeTypeOf(TextOfLatin1(theHead.data() + 1, theMimeSize));
    if (thePicture >= theHead.size() || theArt.mMimeType == "-->") {  // a link to a picture
        return;
    }
    const uint64_t theFirst = mBody.PlaceOf(aFrame.mPos + RawSize(aFrame, thePicture));
    theArt.mBytes = MediaBytes(theFirst, mBody.PlaceOf(aFrame.mPos + aFrame.mSize) - theFirst);
    theArt.mEncoding =
        aFrame.mfUnsynchronised || mBody.IsDecoded() ? CoverArt::Unsynchronisation : CoverArt::None;
    theArt.mfIsFront = theHead[theKind] == kID3_FrontCover;
    aTags.Offer(theArt);
}

void ID3v2Tag::ReadFrames(MediaTags& aTags) {
    for (Frame theFrame; ReadHeader(theFrame); theFrame = Frame()) {
        if (!theFrame.mfReadable) {
            continue;
        }
        if (strcmp(theFrame.mID, mVersion == 2 ? "PIC" : "APIC") == 0) {
            ReadPicture(theFrame, aTags);
        }
        for (const auto& theRow : kID3_Texts) {
            if (strcmp(theFrame.mID, mVersion == 2 ? theRow.mShortID : theRow.mID) == 0) {
                ReadText(theFrame, theRow.mField);
            }
        }
    }
    SetTag(aTags.mTitle, mTexts.mTitle);
    SetTag(aTags.mCreator, mTexts.mCreator);
    SetTag(aTags.mAlbum, mTexts.mAlbum);
    SetTag(aTags.mGenre, GenreOf(mTexts.mGenre));
    SetTag(aTags.mDate, DateOf(mTexts));
    SetTag(aTags.mTrack, mTexts.mTrack);
    SetTag(aTags.mDisc, mTexts.mDisc);
}

void ReadID3v2Tag(MediaSource& aSource, uint64_t aPos, uint64_t anEnd, MediaTags& aTags) {
    uint8_t theHeader[kID3_HeaderSize];
    if (!aSource.ReadExactly(aPos, theHeader, sizeof(theHeader))) {
        return;
    }
    const int theVersion = theHeader[3];
    const uint8_t theFlags = theHeader[5];
    const bool theHasMore = (theFlags & kID3_ExtendedOrCompressed) != 0;
    if (theVersion < 2 || theVersion > 4 || (theVersion == 2 && theHasMore)) {
        return;
    }
    const uint64_t theStart = aPos + sizeof(theHeader);
    const uint64_t theEnd =
        std::min(std::min(anEnd, aSource.Size()), theStart + SynchsafeNumber(theHeader + 6));
    if (theEnd <= theStart) {
        return;
    }
    const bool theIsUnsynchronised = (theFlags & kID3_Unsynchronised) != 0;
    TagBody theBody(aSource, theStart, theEnd - theStart, theIsUnsynchronised && theVersion < 4);
    ID3v2Tag theTag(theBody, theVersion, theIsUnsynchronised);
    if (theHasMore) {
        theTag.SkipExtendedHeader();
    }
    theTag.ReadFrames(aTags);
}

vxCString FixedText(const uint8_t* aBytes, size_t aCount) {
    return TextOfLatin1(aBytes, aCount).Trim(true);
}

// 128 bytes: "TAG", title, creator, album, year, comment, genre. A zero in the last but one byte of
// the comment makes its last byte the number of the track.
void ReadID3v1Tag(MediaSource& aSource, MediaTags& aTags) {
    uint8_t theTag[128];
    if (aSource.Size() < sizeof(theTag) ||
        !aSource.ReadExactly(aSource.Size() - sizeof(theTag), theTag, sizeof(theTag)) ||
        memcmp(theTag, "TAG", 3) != 0) {
        return;
    }
    aTags.mTitle = FixedText(theTag + 3, 30);
    aTags.mCreator = FixedText(theTag + 33, 30);
    aTags.mAlbum = FixedText(theTag + 63, 30);
    aTags.mDate = FixedText(theTag + 93, 4);
    aTags.mTrack = theTag[125] == 0 ? theTag[126] : 0;
    const char* theGenre = NameOfGenre(theTag[127]);
    aTags.mGenre = theGenre == nullptr ? "" : theGenre;
}

}  // namespace

void ReadID3Tags(MediaSource& aSource, MediaTags& aTags) {
    uint64_t thePos = 0;
    while (const uint64_t theEnd = PositionAfterTag(aSource, thePos)) {
        ReadID3v2Tag(aSource, thePos, theEnd, aTags);
        thePos = theEnd;
    }
    if (aTags.IsEmpty()) {
        ReadID3v1Tag(aSource, aTags);
    }
}

}  // namespace vxmedia
