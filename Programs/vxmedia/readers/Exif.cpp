// EXIF: directories of numbered entries, in the byte order that its first two bytes name.
//
// Wanted are three entries with a date: when the picture was taken, when it was digitized, and when
// the file was changed. Two directories are looked at, so that entries that point in circles do no
// harm.

#include <cstring>

#include "MediaTags.h"
#include "vx/BitString.h"

namespace vxmedia {

namespace {

constexpr uint32_t kExif_Changed = 0x132;
constexpr uint32_t kExif_Directory = 0x8769;  // points at the second directory
constexpr uint32_t kExif_Taken = 0x9003;
constexpr uint32_t kExif_Digitized = 0x9004;
constexpr uint32_t kExif_Text = 2;     // kind of an entry
constexpr size_t kExif_DateSize = 19;  // "2015:06:30 18:00:00"

class ExifBlock {
public:
    ExifBlock(MediaSource& aSource, const MediaBytes& aBytes) : mSource(aSource), mBytes(aBytes) {}

    // Returns the position of the first directory, or 0.
    uint32_t Open() {
        uint8_t theMark[8];
        if (!mBytes.ReadExactly(mSource, 0, theMark, sizeof(theMark))) {
            return 0;
        }
        mfBigEndian = theMark[0] == 'M';
        const bool theIsExif = memcmp(theMark, "II*\0", 4) == 0 || memcmp(theMark, "MM\0*", 4) == 0;
        return theIsExif ? Number32(theMark + 4) : 0;
    }

    // Notes what the entries of a directory say.
    void ReadDirectory(uint32_t aPos) {
        uint8_t theEntry[12];
        if (!mBytes.ReadExactly(mSource, aPos, theEntry, 2)) {
            return;
        }
        const uint32_t theCount = Number16(theEntry);
        for (uint32_t i = 0; i < theCount; ++i) {
            const uint64_t thePos = uint64_t{aPos} + 2 + uint64_t{i} * sizeof(theEntry);
            if (!mBytes.ReadExactly(mSource, thePos, theEntry, sizeof(theEntry))) {
                return;
            }
            Note(Number16(theEntry), theEntry);
        }
    }

    uint32_t mDirectory = 0;  // position of the second directory
    vxCString mTaken, mDigitized, mChanged;

private:
    uint32_t Number16(const uint8_t* aBytes) const {
        return mfBigEndian ? vxBitString::BigEndianTouint16(aBytes)
                           : vxBitString::LittleEndianTouint16(aBytes);
    }

    uint32_t Number32(const uint8_t* aBytes) const {
        return mfBigEndian ? vxBitString::BigEndianTouint32(aBytes)
                           : vxBitString::LittleEndianTouint32(aBytes);
    }

    // An entry is a number, a kind, a count, and a value or the position of a longer one.
    void Note(uint32_t aNumber, const uint8_t* anEntry) {
        if (aNumber == kExif_Directory) {
            mDirectory = Number32(anEntry + 8);
        } else if (aNumber == kExif_Taken) {
            SetTag(mTaken, DateAt(anEntry));
        } else if (aNumber == kExif_Digitized) {
            SetTag(mDigitized, DateAt(anEntry));
        } else if (aNumber == kExif_Changed) {
            SetTag(mChanged, DateAt(anEntry));
        }
    }

    // Returns a date as "2015-06-30T18:00:00"; cameras that do not know it write blanks or zeros.
    vxCString DateAt(const uint8_t* anEntry) const {
        char theText[kExif_DateSize + 1] = {};
        if (Number16(anEntry + 2) != kExif_Text || Number32(anEntry + 4) < kExif_DateSize ||
            !mBytes.ReadExactly(mSource, Number32(anEntry + 8), reinterpret_cast<uint8_t*>(theText),
                                kExif_DateSize)) {
            return vxCString();
        }
        constexpr char kPattern[] = "0000:00:00 00:00:00";
        for (size_t i = 0; i < kExif_DateSize; ++i) {
            const bool theIsDigit = theText[i] >= '0' && theText[i] <= '9';
            if (kPattern[i] == '0' ? !theIsDigit : theText[i] != kPattern[i]) {
                return vxCString();
            }
        }
        if (memcmp(theText, "0000", 4) == 0) {
            return vxCString();
        }
        theText[4] = theText[7] = '-';
        theText[10] = 'T';
        return theText;
    }

    MediaSource& mSource;
    const MediaBytes& mBytes;
    bool mfBigEndian = false;
};

}  // namespace

void ReadExif(MediaSource& aSource, const MediaBytes& aBytes, MediaTags& aTags) {
    ExifBlock theBlock(aSource, aBytes);
    if (const uint32_t theDirectory = theBlock.Open()) {
        theBlock.ReadDirectory(theDirectory);
    }
    if (theBlock.mDirectory != 0) {
        theBlock.ReadDirectory(theBlock.mDirectory);
    }
    SetTag(aTags.mDate, theBlock.mTaken);
    SetTag(aTags.mDate, theBlock.mDigitized);
    SetTag(aTags.mDate, theBlock.mChanged);
}

}  // namespace vxmedia
