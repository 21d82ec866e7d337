// A table of texts with four fields taken out of it.
//
// Whoever asks or sets by key is led to the right place by FindField(); only the serialized form
// knows the table alone. A text that comes from outside is walked once.

#include "vx/MediaInfo.h"

#include <libteskTools/ConfigFile.h>
#include <libteskTools/Convert.h>
#include <libteskTools/Memory.h>
#include <libvxLog/Assert.h>

#include <cfloat>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "vx/GrowingBuffer.h"
#include "vx/PathName.h"

namespace {

/// In the order of the fields.
constexpr const char* kvxFieldKeys[] = {kvxInfo_Title, kvxInfo_Creator, kvxInfo_Genre,
                                        kvxInfo_Album};

/// What describes a video track, but for the duration, which it shares with the sound.
constexpr const char* kvxVideoKeys[] = {
    kvxInfo_Width,
    kvxInfo_Height,
    kvxInfo_VideoBitRate,
    kvxInfo_VideoMaxBitRate,
    kvxInfo_VideoEstimatedBitRate,
    kvxInfo_VideoFrameRate,
    kvxInfo_VideoAspectRatio,
    kvxInfo_VideoProfile,
    kvxInfo_VideoLevel,
    kvxInfo_VideoChroma,
    kvxInfo_VideoCodec,
    kvxInfo_HasVideoTrack,
};

constexpr uint32_t kvxAudioTracksWithKeys = 2;

/// What describes an audio track: for each value the key of track 1 and that of track 2.
constexpr const char* kvxAudioKeys[][kvxAudioTracksWithKeys] = {
    {kvxInfo_AudioBitRate, kvxInfo_Audio_2_BitRate},
    {kvxInfo_AudioMaxBitRate, kvxInfo_Audio_2_MaxBitRate},
    {kvxInfo_AudioEstimatedBitRate, kvxInfo_Audio_2_EstimatedBitRate},
    {kvxInfo_AudioChannelCount, kvxInfo_Audio_2_ChannelCount},
    {kvxInfo_AudioBitsPerSample, kvxInfo_Audio_2_BitsPerSample},
    {kvxInfo_AudioSamplingRate, kvxInfo_Audio_2_SamplingRate},
    {kvxInfo_AudioFormatTag, kvxInfo_Audio_2_FormatTag},
    {kvxInfo_AudioLanguage, kvxInfo_Audio_2_Language},
    {kvxInfo_AudioCodec, kvxInfo_Audio_2_Codec},
};

bool vxHasText(const char* aText) {
    return aText != NULL && *aText != '\0';
}

vxCString vxDeepCopy(const vxCString& aText) {
    return vxCString(aText.c_str(), aText.length());
}

// Writing

/// Pairs of key and value as text.
struct vxPairText {
    explicit vxPairText(const vxCString& aSeparator) : mText(0), mSeparator(aSeparator) {}

    void Add(const char* aKey, const char* aValue);
    vxCString Result() const;

    vxGrowingBuffer mText;
    const vxCString& mSeparator;
};

void vxPairText::Add(const char* aKey, const char* aValue) {
    if (mText.GetPosition() > 0) {
        mText.Append(mSeparator.c_str(), mSeparator.length());
    }
    mText += aKey;
    mText.Append("=", 1);
    for (;;) {
        const size_t theLength = strcspn(aValue, "=");
        mText.Append(aValue, theLength);
        aValue += theLength;
        if (*aValue == '\0') {
            return;
        }
        mText.Append("==", 2);
        ++aValue;
    }
}

vxCString vxPairText::Result() const {
    return mText.GetPosition() == 0 ? vxCString() : vxCString(mText.data(), mText.GetPosition());
}

bool vxAddPair(void* aContext, const char* aKey, void* aValue) {
    static_cast<vxPairText*>(aContext)->Add(aKey, static_cast<const char*>(aValue));
    return true;
}

bool vxAddLine(void* aContext, const char* aKey, void* aValue) {
    const char* theValue = static_cast<const char*>(aValue);
    const bool theKeyFits = strpbrk(aKey, "=\n") == NULL;
    const bool theValueFits = strchr(theValue, '\n') == NULL;
    VXASSERT_TEXT(theKeyFits, "(theKey.Find('=') == -1) && (theKey.Find('\\n') == -1)");
    VXASSERT_TEXT(theValueFits, "theValue.Find('\\n') == -1");
    return theKeyFits && theValueFits ? vxAddPair(aContext, aKey, aValue) : true;
}

// Reading

/// Copies a text and turns every "==" into "=".
char* vxUnescaped(const char* aText, const char* anEnd) {
    char* theResult = static_cast<char*>(vxMalloc(static_cast<size_t>(anEnd - aText) + 1));
    char* theTarget = theResult;
    while (theTarget != NULL && aText != anEnd) {
        const bool theDouble = *aText == '=' && anEnd - aText > 1 && aText[1] == '=';
        *theTarget++ = *aText;
        aText += theDouble ? 2 : 1;
    }
    if (theTarget != NULL) {
        *theTarget = '\0';
    }
    return theResult;
}

// INI files

constexpr char kvxSection_Info[] = "MediaInfo";
constexpr char kvxSection_File[] = "File";
constexpr char kvxSection_CoverArt[] = "CoverArt";

bool vxSaveInfo(void* aContext, const char* aKey, void* aValue) {
    return vxConfigFile_SetString(static_cast<vxConfigFile*>(aContext), kvxSection_Info, aKey,
                                  static_cast<const char*>(aValue));
}

bool vxSaveText(vxConfigFile* aFile, const char* aSection, const char* aKey,
                const vxCString& aValue) {
    return aValue.IsEmpty() || vxConfigFile_SetString(aFile, aSection, aKey, aValue);
}

bool vxSaveNumber(vxConfigFile* aFile, const char* aSection, const char* aKey, int64_t aValue) {
    return aValue == 0 ||
           vxConfigFile_SetString(aFile, aSection, aKey,
                                  vxCString::Format("%lld", static_cast<long long>(aValue)));
}

bool vxSaveFile(vxConfigFile* aFile, const vxMediaInfo& anInfo) {
    const vxDateTime& theTime = anInfo.GetLastModificationTime();
    return vxSaveText(aFile, kvxSection_File, "Path", anInfo.GetFilePath()) &&
           vxSaveText(aFile, kvxSection_File, "LastModificationTime",
                      theTime.IsValid() ? theTime.FormatISO() : vxCString()) &&
           vxSaveNumber(aFile, kvxSection_File, "DiscNumber", anInfo.GetDiscNumber()) &&
           vxSaveNumber(aFile, kvxSection_File, "TrackNumber", anInfo.GetTrackNumber());
}

bool vxSaveCoverArt(vxConfigFile* aFile, const vxMediaInfo& anInfo) {
    return vxSaveText(aFile, kvxSection_CoverArt, "MimeType", anInfo.GetCoverArtMimeType()) &&
           vxSaveNumber(aFile, kvxSection_CoverArt, "Offset", anInfo.GetCoverArtOffset()) &&
           vxSaveNumber(aFile, kvxSection_CoverArt, "Size",
                        static_cast<int64_t>(anInfo.GetCoverArtSize())) &&
           vxSaveNumber(aFile, kvxSection_CoverArt, "Encoding", anInfo.GetCoverArtEncoding()) &&
           vxSaveNumber(aFile, kvxSection_CoverArt, "EncodedOffset",
                        static_cast<int64_t>(anInfo.GetCoverArtEncodedOffset()));
}

}  // namespace

vxMediaInfo::vxMediaInfo()
    : mCoverArtOffset(0),
      mCoverArtSize(0),
      mCoverArtEncoding(kvxCoverArtEncoding_None),
      mCoverArtEncodedOffset(0),
      mDiskTrackNumber(0),
      mInfoMap(NULL) {}

vxMediaInfo::~vxMediaInfo() {
    vxCustomHashTable_Delete(mInfoMap);
}

vxCString vxMediaInfo::GetSerializedInfo() const {
    const vxCString theLineEnd('\n');
    vxPairText theText(theLineEnd);
    if (mInfoMap != NULL) {
        vxCustomHashTable_ForEach(mInfoMap, vxAddLine, &theText);
    }
    return theText.Result();
}

void vxMediaInfo::DeserializeInfo(const char* aText) {
    const char* theLine = aText == NULL ? "" : aText;
    while (*theLine != '\0') {
        const char* theEnd = theLine + strcspn(theLine, "\r\n");
        AddPair(theLine, theEnd);
        theLine = theEnd + strspn(theEnd, "\r\n");
    }
}

vxCString vxMediaInfo::GetMediaInfoAsString(const vxCString& aSeparator) const {
    vxPairText theText(aSeparator);
    ForEachPair(vxAddPair, &theText);
    return theText.Result();
}

void vxMediaInfo::Finalize(bool afKeepEmptyTitle) {
    const vxPathName thePath = vxPathName::MakeFilePath(mFilePath);
    if (mTitle.IsEmpty() && !afKeepEmptyTitle) {
        mTitle = thePath.GetFileName();
    }
    if (mAlbumName.IsEmpty() && strstr(GetStr(kvxInfo_ClassName, ""), "imageItem") != NULL) {
        mAlbumName = thePath.GetPath();
    }
    mTitle.TrimLeftRight();
    mAlbumName.TrimLeftRight();
    mCreator.TrimLeftRight();
    if (mTitle.IsEmpty() && !afKeepEmptyTitle) {
        mTitle = "-";
    }
}

bool vxMediaInfo::Validate() const {
    return vxHasText(GetStr(kvxInfo_ClassName, NULL)) && vxHasText(GetStr(kvxInfo_MimeType, NULL));
}

// Values by key

void vxMediaInfo::Set(const char* aKey, const char* aValue, bool afOverwrite) {
    if (aKey == NULL) {
        return;
    }
    const char* theValue = aValue == NULL ? "" : aValue;
    vxCString* theField = FindField(aKey);
    if (theField != NULL) {
        *theField = theValue;
    } else if (afOverwrite || !vxHasText(FindEntry(aKey))) {
        Store(aKey, vxStrdup(theValue));
    }
}

void vxMediaInfo::Set(const char* aKey, const vxCString& aValue, bool afOverwrite) {
    Set(aKey, aValue.c_str(), afOverwrite);
}

void vxMediaInfo::Set(const char* aKey, uint32_t aValue, bool afOverwrite) {
    Set(aKey, vxCString::Format("%lu", static_cast<unsigned long>(aValue)), afOverwrite);
}

void vxMediaInfo::Set(const char* aKey, int aValue, bool afOverwrite) {
    Set(aKey, vxCString::Format("%d", aValue), afOverwrite);
}

void vxMediaInfo::Set(const char* aKey, const vxuint64& aValue, bool afOverwrite) {
    Set(aKey, aValue.ToCString(), afOverwrite);
}

void vxMediaInfo::Set(const char* aKey, float aValue, bool afOverwrite) {
    Set(aKey, vxCString::Format("%f", static_cast<double>(aValue)), afOverwrite);
}

void vxMediaInfo::Remove(const char* aKey) {
    vxCString* theField = aKey == NULL ? NULL : FindField(aKey);
    if (theField != NULL) {
        theField->clear();
    } else if (aKey != NULL && mInfoMap != NULL) {
        vxCustomHashTable_Remove(mInfoMap, aKey);
    }
}

const char* vxMediaInfo::GetStr(const char* aKey, const char* aDefault) const {
    if (aKey == NULL) {
        return aDefault;
    }
    const vxCString* theField = FindField(aKey);
    if (theField != NULL) {
        return theField->IsEmpty() ? aDefault : theField->c_str();
    }
    const char* theValue = FindEntry(aKey);
    return theValue == NULL ? aDefault : theValue;
}

vxCString vxMediaInfo::GetCString(const char* aKey, const char* aDefault) const {
    return vxCString(GetStr(aKey, aDefault));
}

uint32_t vxMediaInfo::GetUInt32(const char* aKey, uint32_t aDefault) const {
    uint32_t theValue = aDefault;
    vxConvert_strtouint32(Peek(aKey), &theValue);
    return theValue;
}

int vxMediaInfo::GetInt(const char* aKey, int aDefault) const {
    int32_t theValue = aDefault;
    vxConvert_strtoint32(Peek(aKey), &theValue);
    return theValue;
}

vxuint64 vxMediaInfo::GetUInt64(const char* aKey, const vxuint64& aDefault) const {
    return vxuint64::FromString(Peek(aKey), aDefault);
}

float vxMediaInfo::GetFloat(const char* aKey, float aDefault) const {
    double theValue = 0;
    const bool theFits =
        vxConvert_strtod(Peek(aKey), &theValue) == 0 && theValue <= FLT_MAX && theValue >= -FLT_MAX;
    return theFits ? static_cast<float>(theValue) : aDefault;
}

bool vxMediaInfo::HasInfo() const {
    const auto theStop = [](void*, const char*, void*) { return false; };
    return !ForEachPair(theStop, NULL);
}

// Fields

void vxMediaInfo::SetCoverArt(const vxCString& aMimeType, int64_t anOffset, size_t aSize) {
    mCoverArtMimeType = aMimeType;
    mCoverArtOffset = anOffset;
    mCoverArtSize = aSize;
    SetCoverArtEncoding(kvxCoverArtEncoding_None, 0);
}

void vxMediaInfo::SetCoverArtEncoding(int anEncoding, size_t anEncodedOffset) {
    mCoverArtEncoding = anEncoding;
    mCoverArtEncodedOffset = anEncodedOffset;
}

void vxMediaInfo::SetDiscNumber(uint16_t aNumber) {
    mDiskTrackNumber = (mDiskTrackNumber & 0xFFFF) | static_cast<uint32_t>(aNumber) << 16;
}

void vxMediaInfo::SetTrackNumber(uint16_t aNumber) {
    mDiskTrackNumber = (mDiskTrackNumber & 0xFFFF0000U) | aNumber;
}

// Merging

bool vxMediaInfo::MergeAll(const vxMediaInfo* anOther) {
    if (anOther == NULL) {
        return true;
    }
    MergeString(mTitle, anOther->mTitle);
    MergeString(mCreator, anOther->mCreator);
    MergeString(mGenre, anOther->mGenre);
    MergeString(mAlbumName, anOther->mAlbumName);
    MergeString(mFilePath, anOther->mFilePath);
    MergeString(mCoverArtMimeType, anOther->mCoverArtMimeType);
    MergeCoverArt(*anOther);
    if (anOther->GetUInt32(kvxInfo_HasVideoTrack, 0) != 0) {
        if (GetUInt32(kvxInfo_HasVideoTrack, 0) != 0) {
            return false;
        }
        MergeVideo(anOther);
    }
    const uint32_t theCount = anOther->GetUInt32(kvxInfo_AudioTrackCount, 0);
    if (uint64_t{GetUInt32(kvxInfo_AudioTrackCount, 0)} + theCount > kvxMediaInfo_MaxAudioTracks) {
        return false;
    }
    for (uint32_t i = 1; i <= theCount; ++i) {
        MergeAudioTrack(anOther, i);
    }
    return true;
}

void vxMediaInfo::MergeString(vxCString& aTarget, const vxCString& aSource) {
    if (aTarget.IsEmpty()) {
        aTarget = aSource;
    }
}

void vxMediaInfo::MergeCoverArt(const vxMediaInfo& anOther) {
    if (mCoverArtOffset == 0 && anOther.mCoverArtOffset != 0) {
        mCoverArtOffset = anOther.mCoverArtOffset;
        SetCoverArtEncoding(anOther.mCoverArtEncoding, anOther.mCoverArtEncodedOffset);
    }
    if (mCoverArtSize == 0) {
        mCoverArtSize = anOther.mCoverArtSize;
    }
}

void vxMediaInfo::MergeVideo(const vxMediaInfo* anOther) {
    if (anOther == NULL) {
        return;
    }
    FillDuration(*anOther);
    for (const char* theKey : kvxVideoKeys) {
        CopyValue(theKey, *anOther, theKey);
    }
}

void vxMediaInfo::MergeAudioTrack(const vxMediaInfo* anOther, uint32_t aTrack) {
    const uint32_t theCount = GetUInt32(kvxInfo_AudioTrackCount, 0);
    if (anOther == NULL || aTrack == 0 || theCount == UINT32_MAX) {
        return;
    }
    FillDuration(*anOther);
    if (aTrack <= kvxAudioTracksWithKeys && theCount < kvxAudioTracksWithKeys) {
        for (const auto& theKeys : kvxAudioKeys) {
            CopyValue(theKeys[theCount], *anOther, theKeys[aTrack - 1]);
        }
    }
    Set(kvxInfo_AudioTrackCount, theCount + 1, true);
}

/// Copies a value that is not empty.
void vxMediaInfo::CopyValue(const char* aKey, const vxMediaInfo& anOther, const char* anOtherKey) {
    const char* theValue = anOther.FindEntry(anOtherKey);
    if (vxHasText(theValue)) {
        Set(aKey, theValue, true);
    }
}

void vxMediaInfo::FillDuration(const vxMediaInfo& anOther) {
    if (!vxHasText(FindEntry(kvxInfo_Duration))) {
        CopyValue(kvxInfo_Duration, anOther, kvxInfo_Duration);
    }
}

// Copies

vxMediaInfo* vxMediaInfo::Duplicate() const {
    auto* theCopy = new vxMediaInfo;
    theCopy->mTitle = vxDeepCopy(mTitle);
    theCopy->mCreator = vxDeepCopy(mCreator);
    theCopy->mGenre = vxDeepCopy(mGenre);
    theCopy->mAlbumName = vxDeepCopy(mAlbumName);
    theCopy->mLastModificationTime = mLastModificationTime;
    theCopy->mFilePath = vxDeepCopy(mFilePath);
    theCopy->mCoverArtMimeType = vxDeepCopy(mCoverArtMimeType);
    theCopy->mCoverArtOffset = mCoverArtOffset;
    theCopy->mCoverArtSize = mCoverArtSize;
    theCopy->mCoverArtEncoding = mCoverArtEncoding;
    theCopy->mCoverArtEncodedOffset = mCoverArtEncodedOffset;
    theCopy->mDiskTrackNumber = mDiskTrackNumber;
    const auto theStore = [](void* aContext, const char* aKey, void* aValue) {
        static_cast<vxMediaInfo*>(aContext)->Store(aKey, vxStrdup(static_cast<char*>(aValue)));
        return true;
    };
    if (mInfoMap != NULL) {
        vxCustomHashTable_ForEach(mInfoMap, theStore, theCopy);
    }
    return theCopy;
}

bool vxMediaInfo::SaveToIniFile(const vxPathName& aPath) const {
    if (!aPath.IsFilePath()) {
        return false;
    }
    const vxCString thePath = aPath.GetFullPath();
    vxConfigFile* theFile = vxConfigFile_New(NULL, thePath, thePath);
    for (const char* theSection : {kvxSection_Info, kvxSection_File, kvxSection_CoverArt}) {
        vxConfigFile_DeleteSection(theFile, theSection);
    }
    const bool theDone = ForEachPair(vxSaveInfo, theFile) && vxSaveFile(theFile, *this) &&
                         vxSaveCoverArt(theFile, *this) && vxConfigFile_Save(theFile);
    vxConfigFile_Delete(theFile);
    return theDone;
}

// Places of values

/// Returns the field that a key means; null for keys of the table.
const vxCString* vxMediaInfo::FindField(const char* aKey) const {
    const vxCString* const theFields[] = {&mTitle, &mCreator, &mGenre, &mAlbumName};
    for (size_t i = 0; i < std::size(kvxFieldKeys); ++i) {
        if (strcmp(aKey, kvxFieldKeys[i]) == 0) {
            return theFields[i];
        }
    }
    return NULL;
}

vxCString* vxMediaInfo::FindField(const char* aKey) {
    return const_cast<vxCString*>(const_cast<const vxMediaInfo*>(this)->FindField(aKey));
}

/// Returns the value of a key in the table, or null.
const char* vxMediaInfo::FindEntry(const char* aKey) const {
    return mInfoMap == NULL ? NULL
                            : static_cast<const char*>(vxCustomHashTable_Get(mInfoMap, aKey));
}

/// Puts a value, whose block is handed over, into the table.
void vxMediaInfo::Store(const char* aKey, char* aValue) {
    if (mInfoMap == NULL) {
        mInfoMap = vxCustomHashTable_New_String_Other(free);
    }
    if (aValue == NULL || mInfoMap == NULL || !vxCustomHashTable_Add(mInfoMap, aKey, aValue)) {
        free(aValue);
    }
}

/// Adds what a line says to the table.
void vxMediaInfo::AddPair(const char* aLine, const char* anEnd) {
    const void* theMark = memchr(aLine, '=', static_cast<size_t>(anEnd - aLine));
    if (theMark != NULL) {
        const char* theKeyEnd = static_cast<const char*>(theMark);
        const vxCString theKey(aLine, static_cast<size_t>(theKeyEnd - aLine));
        Store(theKey, vxUnescaped(theKeyEnd + 1, anEnd));
    }
}

/// Visits the fields that have text, then the entries of the table that no field hides.
bool vxMediaInfo::ForEachPair(vxHashTable_ForEachFunc aFunc, void* aContext) const {
    for (const char* theKey : kvxFieldKeys) {
        const vxCString& theField = *FindField(theKey);
        if (!theField.IsEmpty() && !aFunc(aContext, theKey, const_cast<char*>(theField.c_str()))) {
            return false;
        }
    }
    struct vxWalk {
        const vxMediaInfo& mInfo;
        vxHashTable_ForEachFunc mFunc;
        void* mContext;
    } theWalk = {*this, aFunc, aContext};
    const auto theVisit = [](void* aWalk, const char* aKey, void* aValue) {
        const auto& theSelf = *static_cast<vxWalk*>(aWalk);
        const vxCString* theField = theSelf.mInfo.FindField(aKey);
        return (theField != NULL && !theField->IsEmpty()) ||
               theSelf.mFunc(theSelf.mContext, aKey, aValue);
    };
    return mInfoMap == NULL || vxCustomHashTable_ForEach(mInfoMap, theVisit, &theWalk);
}
