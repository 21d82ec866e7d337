#pragma once

#include <libteskTools/HashTable.h>
#include <libteskTools/Types.h>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/DateTime.h"
#include "vx/MediaInfoKeys.h"
#include "vx/UInt64.h"

class vxPathName;

/// How embedded cover art is written in its file.
enum {
    kvxCoverArtEncoding_None = 0,              ///< as it is
    kvxCoverArtEncoding_Base64 = 1,            ///< in base64
    kvxCoverArtEncoding_Unsynchronisation = 2  ///< with a zero byte behind every 0xFF
};

/// The most audio tracks that MergeAll() puts together.
constexpr uint32_t kvxMediaInfo_MaxAudioTracks = 9;

/// What is known about a media item: texts under the keys of vx/MediaInfoKeys.h, or any others, and
/// a few fields.
///
///     vxMediaInfo theInfo;
///     theInfo.SetFilePath("/music/Blue.mp3");
///     theInfo.Set(kvxInfo_MimeType, "audio/mpeg", true);
///     theInfo.Set(kvxInfo_Duration, 217000, true);
///     theInfo.Finalize(false);
///     theInfo.GetStr(kvxInfo_Title, "");        // "Blue"
///     theInfo.GetSerializedInfo();              // "mt=audio/mpeg\ndu=217000"
///
/// Title, creator, genre and album name are fields; wherever a key is asked for or set, "ti", "cr",
/// "ge" and "an" mean them. All other keys are in a table, in the order in which they came. A field
/// without text counts as absent, a key of the table may have an empty value.
///
/// A null key has no value. Null values count as empty.
///
/// Threads:  one at a time.
class VX_EXPORT vxMediaInfo {
public:
    /// Nothing is known.
    vxMediaInfo();

    /// Frees everything.
    virtual ~vxMediaInfo();

    vxMediaInfo(const vxMediaInfo&) = delete;
    vxMediaInfo& operator=(const vxMediaInfo&) = delete;

    /// Returns the table, without the fields, as lines of key, "=" and value in the order of the
    /// table; each "=" in a value is doubled. There is no line end behind the last one.
    ///
    /// A carriage return in a key or value is written as it is, and ends the value when it is read
    /// back.
    ///
    /// Asserts:  (theKey.Find('=') == -1) && (theKey.Find('\n') == -1) and theValue.Find('\n') == -1;
    ///           the entry is left out.
    /// Cost:     linear.
    virtual vxCString GetSerializedInfo() const;

    /// Adds the lines of such a text to the table; a value replaces an older one of its key.
    ///
    /// Lines end with a carriage return, a line feed or both. The first "=" of a line ends the key;
    /// a line without one is dropped. In the value every "==" is read as "=", and any other "=" stays
    /// as it is. Keys that mean fields go to the table, too, where only GetSerializedInfo() sees
    /// them: programs depend on it. Null is an empty text.
    ///
    /// Cost:     linear.
    virtual void DeserializeInfo(const char* aText);

    /// Returns all that has a key, fields with text first, as "key=value" with each "=" in a value
    /// doubled; `aSeparator` stands between two of them.
    ///
    /// For people and for logs: what the texts hold is not checked. An entry of the table whose key
    /// means a field appears only where the field has no text.
    virtual vxCString GetMediaInfoAsString(const vxCString& aSeparator) const;

    /// Completes title and album name, when all that can be found out has been set.
    ///
    /// A title that is missing becomes the file name, without extension, unless `afKeepEmptyTitle`.
    /// An album name that is missing becomes the directory, where the class name contains
    /// "imageItem": pictures are grouped by folder. Then title, album name and creator lose the
    /// blanks at both ends, but not the genre: programs depend on it. A title that is still missing
    /// becomes "-", unless `afKeepEmptyTitle`.
    virtual void Finalize(bool afKeepEmptyTitle);

    /// Are class name and MIME type known, and not empty?
    virtual bool Validate() const;

    // Values by key

    /// Sets the value of a key. Without `afOverwrite` a value in the table that is not empty is kept;
    /// fields are always overwritten: programs depend on it.
    void Set(const char* aKey, const char* aValue, bool afOverwrite);
    /// As above.
    void Set(const char* aKey, const vxCString& aValue, bool afOverwrite);
    /// As above, with a number in decimal.
    /// @{
    void Set(const char* aKey, uint32_t aValue, bool afOverwrite);
    void Set(const char* aKey, int aValue, bool afOverwrite);
    void Set(const char* aKey, const vxuint64& aValue, bool afOverwrite);
    /// @}
    /// As above, with six decimals.
    void Set(const char* aKey, float aValue, bool afOverwrite);

    /// Removes a value.
    void Remove(const char* aKey);

    /// Returns the value of a key, also an empty one of the table, or `aDefault`, which may be null.
    ///
    /// Owner:    this object; the text stays until the value changes.
    const char* GetStr(const char* aKey, const char* aDefault) const;

    /// As GetStr(), with a text of its own.
    vxCString GetCString(const char* aKey, const char* aDefault) const;

    /// Returns the value as a number, or `aDefault` when the key has none: the whole text must be a
    /// decimal number that the type can hold.
    /// @{
    uint32_t GetUInt32(const char* aKey, uint32_t aDefault) const;
    int GetInt(const char* aKey, int aDefault) const;
    vxuint64 GetUInt64(const char* aKey, const vxuint64& aDefault) const;
    float GetFloat(const char* aKey, float aDefault) const;
    /// @}

    /// Returns the value of a key, or null when there is none: "" is a value that is known to be
    /// empty.
    ///
    /// Owner:    as GetStr().
    const char* Peek(const char* aKey) const { return GetStr(aKey, NULL); }

    /// Is the value of any key known?
    bool HasInfo() const;

    // Fields

    /// Returns the fields that have a key.
    /// @{
    const vxCString& GetTitle() const { return mTitle; }
    const vxCString& GetCreator() const { return mCreator; }
    const vxCString& GetGenre() const { return mGenre; }
    const vxCString& GetAlbumName() const { return mAlbumName; }
    /// @}

    /// The time when the file was changed last; not valid when unknown.
    /// @{
    const vxDateTime& GetLastModificationTime() const { return mLastModificationTime; }
    void SetLastModificationTime(const vxDateTime& aTime) { mLastModificationTime = aTime; }
    /// @}

    /// The path of the file; the key "fp" is independent of it.
    /// @{
    const vxCString& GetFilePath() const { return mFilePath; }
    void SetFilePath(const vxCString& aPath) { mFilePath = aPath; }
    /// @}

    /// Says where embedded cover art lies: `aSize` bytes from `anOffset` of the file, as they are.
    void SetCoverArt(const vxCString& aMimeType, int64_t anOffset, size_t aSize);

    /// Says that these bytes are encoded, a kvxCoverArtEncoding_*, and that the picture begins behind
    /// `anEncodedOffset` of the bytes that decoding yields.
    void SetCoverArtEncoding(int anEncoding, size_t anEncodedOffset);

    /// Returns what SetCoverArt() and SetCoverArtEncoding() have set; empty or 0 otherwise.
    /// @{
    const vxCString& GetCoverArtMimeType() const { return mCoverArtMimeType; }
    int64_t GetCoverArtOffset() const { return mCoverArtOffset; }
    size_t GetCoverArtSize() const { return mCoverArtSize; }
    int GetCoverArtEncoding() const { return mCoverArtEncoding; }
    size_t GetCoverArtEncodedOffset() const { return mCoverArtEncodedOffset; }
    /// @}

    /// The numbers of the disc and of the track on it, 0 when unknown.
    /// @{
    void SetDiscNumber(uint16_t aNumber);
    void SetTrackNumber(uint16_t aNumber);
    uint16_t GetDiscNumber() const { return static_cast<uint16_t>(mDiskTrackNumber >> 16); }
    uint16_t GetTrackNumber() const { return static_cast<uint16_t>(mDiskTrackNumber); }
    /// @}

    // Merging. What this object knows is kept, if not said otherwise.

    /// Adds what another source knows about the same item: the fields that are texts, the place of
    /// the cover art, and the video and audio tracks.
    ///
    /// Offset and size of the cover art are taken where they are 0 here, the encoding with the
    /// offset. Other keys, the time of the last change and disc and track number are not merged. Null
    /// adds nothing.
    ///
    /// Fails:    false when both have a video track; then no track is merged. False when there would
    ///           be more than kvxMediaInfo_MaxAudioTracks audio tracks; then none of them is.
    bool MergeAll(const vxMediaInfo* anOther);

    /// Copies `aSource` to `aTarget`, if that is empty.
    static void MergeString(vxCString& aTarget, const vxCString& aSource);

    /// Takes over the video track: each of its values that is not empty replaces the one here. The
    /// duration "du" is only taken where there is none. Null does nothing.
    void MergeVideo(const vxMediaInfo* anOther);

    /// Adds audio track number `aTrack`, from 1, of the other as the next one here.
    ///
    /// Tracks 1 and 2 have keys, of further ones only the number is kept; so a second track read from
    /// the plain keys of the other goes to the keys of track 2 here. Values that are not empty
    /// replace those here, the duration "du" is only taken where there is none, and "ta" rises by
    /// one. Variants of codecs ("ua", "u2") have no part in it. Track 0 and null do nothing.
    void MergeAudioTrack(const vxMediaInfo* anOther, uint32_t aTrack);

    // Copies

    /// Returns a copy that shares no text with this object, so that another thread may have it.
    ///
    /// Owner:    the caller, who deletes it.
    vxMediaInfo* Duplicate() const;

    /// Writes all that is known into an INI file and replaces the sections "MediaInfo", "File" and
    /// "CoverArt" in it; what else it holds stays.
    ///
    ///     [MediaInfo]
    ///     ti=Blue
    ///     mt=audio/mpeg
    ///     [File]
    ///     Path=/music/Blue.mp3
    ///     LastModificationTime=2015-06-30T18:00:00
    ///     DiscNumber=1
    ///     TrackNumber=7
    ///     [CoverArt]
    ///     MimeType=image/jpeg
    ///     Offset=2048
    ///     Size=34567
    ///     Encoding=1
    ///     EncodedOffset=42
    ///
    /// Keys are those of GetMediaInfoAsString(); the time is local; what is empty, 0 or not valid is
    /// left out of "File" and "CoverArt".
    ///
    /// Fails:    false for a key that an INI file cannot hold (see vxConfigFile_SetString()), for a
    ///           path that names no file, and when the file cannot be written; it is the old one then.
    bool SaveToIniFile(const vxPathName& aPath) const;

protected:
    vxCString mTitle;                  ///< "ti"
    vxCString mCreator;                ///< "cr"
    vxCString mGenre;                  ///< "ge"
    vxCString mAlbumName;              ///< "an"
    vxDateTime mLastModificationTime;  ///< not valid when unknown
    vxCString mFilePath;               ///< empty when unknown
    vxCString mCoverArtMimeType;       ///< empty when unknown
    int64_t mCoverArtOffset;           ///< in the file; 0 when unknown
    size_t mCoverArtSize;              ///< bytes in the file; 0 when unknown
    int mCoverArtEncoding;             ///< a kvxCoverArtEncoding_*
    size_t mCoverArtEncodedOffset;     ///< bytes before the picture, once decoded
    uint32_t mDiskTrackNumber;         ///< the disc in the high half, the track in the low one
    vxCustomHashTable* mInfoMap;       ///< owned, with its texts; null until the first entry

private:
    const vxCString* FindField(const char* aKey) const;
    vxCString* FindField(const char* aKey);
    const char* FindEntry(const char* aKey) const;
    void Store(const char* aKey, char* aValue);
    void AddPair(const char* aLine, const char* anEnd);
    void CopyValue(const char* aKey, const vxMediaInfo& anOther, const char* anOtherKey);
    void FillDuration(const vxMediaInfo& anOther);
    bool ForEachPair(vxHashTable_ForEachFunc aFunc, void* aContext) const;
    void MergeCoverArt(const vxMediaInfo& anOther);
};
