#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "MediaSource.h"
#include "vx/CString.h"

namespace vxmedia {

/// Some bytes of a file that belong together, in one piece or in several.
class MediaBytes {
public:
    struct Piece {
        uint64_t mPos;   // in the file
        uint64_t mSize;  // bytes
    };

    MediaBytes() = default;
    MediaBytes(uint64_t aPos, uint64_t aSize) { Add(aPos, aSize); }

    /// Puts a piece behind the others; one that goes on where the last ends is joined to it.
    void Add(uint64_t aPos, uint64_t aSize);

    /// Returns the number of bytes.
    uint64_t Size() const { return mSize; }

    const std::vector<Piece>& Pieces() const { return mPieces; }

    /// Copies exactly `aCount` bytes from `aPos` on, or returns false when there are fewer.
    bool ReadExactly(MediaSource& aSource, uint64_t aPos, uint8_t* aBuffer, size_t aCount) const;

    /// Returns `aCount` bytes from `aPos` on, as far as there are that many.
    MediaBytes Part(uint64_t aPos, uint64_t aCount) const;

private:
    std::vector<Piece> mPieces;
    uint64_t mSize = 0;
};

/// A picture inside a media file.
struct CoverArt {
    enum Encoding {
        None,
        Base64,             // mBytes are base64 of a block that ends with the picture
        Unsynchronisation,  // a zero byte stands behind every 0xFF
    };

    vxCString mMimeType;  // empty: there is no picture
    MediaBytes mBytes;    // where it lies; only Ogg scatters it
    Encoding mEncoding = None;
    uint64_t mEncodedOffset = 0;  // bytes before the picture, once decoded
    bool mfIsFront = false;       // it says that it is the front cover

    bool IsThere() const { return !mMimeType.IsEmpty(); }
};

/// What a media file tells about itself in words. All text is valid UTF-8; empty is unknown.
///
/// MP3 has ID3 of versions 2.2 to 2.4, else of version 1; FLAC and Ogg have Vorbis comments and
/// picture blocks; WAV has the list INFO; JPEG has the date of EXIF; PNG has that too, and texts, of
/// which compressed ones are left out: nothing here inflates them; GIF has comments. Several values of
/// one kind stand side by side with a ';' between them.
struct MediaTags {
    vxCString mTitle;
    vxCString mCreator;
    vxCString mAlbum;
    vxCString mGenre;
    vxCString mDate;     // "2015", "2015-06-30", "2015-06-30 18:00" or what else the file says
    vxCString mComment;  // of WAV and GIF
    uint16_t mTrack = 0;
    uint16_t mDisc = 0;
    CoverArt mCoverArt;

    bool IsEmpty() const {
        return mTitle.IsEmpty() && mCreator.IsEmpty() && mAlbum.IsEmpty() && mGenre.IsEmpty() &&
               mDate.IsEmpty() && mComment.IsEmpty() && mTrack == 0 && mDisc == 0 &&
               !mCoverArt.IsThere();
    }

    /// Takes a picture unless there is a better one: the first front cover, else the first.
    void Offer(const CoverArt& aCoverArt);
};

/// The longest text that is taken from a tag; what is longer is cut at the end of a character.
constexpr size_t kTag_MaxText = 4096;  // bytes in the file

/// Gives a text to a field that has none yet.
void SetTag(vxCString& aField, const vxCString& aText);

/// Gives the number at the start of a text such as "3" or "3/12" to a field that has none yet.
void SetTag(uint16_t& aField, const vxCString& aText);

/// Texts up to their first NUL, as UTF-8; what is not valid is left out.
/// @{
vxCString TextOfLatin1(const uint8_t* aBytes, size_t aCount);
vxCString TextOfUTF8(const uint8_t* aBytes, size_t aCount);
vxCString TextOfUTF16(const uint8_t* aBytes, size_t aCount, bool afBigEndian);
/// @}

/// A text in UTF-8 where the bytes are that, else in Latin-1: of formats that do not say which.
vxCString TextOfUTF8OrLatin1(const uint8_t* aBytes, size_t aCount);

/// Takes the zeros away that stand behind each 0xFF.
void Resynchronise(std::vector<uint8_t>& aBytes);

/// Reads the tags in front of a file, or the one at its end where there are none in front.
void ReadID3Tags(MediaSource& aSource, MediaTags& aTags);

/// Reads a Vorbis comment, as FLAC and Ogg have it.
void ReadVorbisComment(MediaSource& aSource, const MediaBytes& aBytes, MediaTags& aTags);

/// Reads a PICTURE block of FLAC.
void ReadFLACPicture(MediaSource& aSource, const MediaBytes& aBytes, MediaTags& aTags);

/// Reads a metadata block of FLAC, without its header of four bytes, of which the first one is given.
void ReadFLACBlock(MediaSource& aSource, uint8_t aHeader, const MediaBytes& aBytes,
                   MediaTags& aTags);

/// Tells from the first byte of its header whether no other block follows.
inline bool IsLastFLACBlock(uint8_t aHeader) {
    return (aHeader & 0x80) != 0;
}

/// Reads the date from an EXIF block, which begins with its byte order.
void ReadExif(MediaSource& aSource, const MediaBytes& aBytes, MediaTags& aTags);

/// Decodes the picture of a file; false when it is broken, or longer than `aLimit` bytes in the file.
///
/// The source is allowed to fetch the picture beyond its own limit.
bool ReadCoverArt(MediaSource& aSource, const CoverArt& aCoverArt, size_t aLimit,
                  std::vector<uint8_t>& aPicture);

/// Returns the name of one of the 192 genres of ID3, or null.
const char* NameOfGenre(uint32_t aNumber);

}  // namespace vxmedia
