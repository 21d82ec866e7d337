// One table says what the keys are called, what their values look like, and which of them a user may
// change. It has every key of the library, so that none that a merge brings in goes unshown.

#include "library/ItemKeys.h"

#include <libteskTools/Convert.h>
#include <libteskTools/Unicode.h>

#include <cstring>

namespace vxmedia {

const ItemKey kItemKeys[] = {
    {kvxInfo_Title, "title", ValueKind::Text, true},
    {kvxInfo_Creator, "creator", ValueKind::Text, true},
    {kvxInfo_Album, "album", ValueKind::Text, true},
    {kvxInfo_Genre, "genre", ValueKind::Text, true},
    {kvxInfo_MediaReleasedDateTime, "date", ValueKind::Text, true},
    {"-", "disc", ValueKind::Ordinal, true},
    {"-", "track", ValueKind::Ordinal, true},
    {kvxInfo_Duration, "duration", ValueKind::Duration, true},
    {kvxInfo_ClassName, "class", ValueKind::Text, true},
    {kvxInfo_MimeType, "mime-type", ValueKind::Text, true},
    {kvxInfo_DLNA, "dlna-profile", ValueKind::Text, true},
    {kvxInfo_ID, "identifier", ValueKind::Text, true},
    {kvxInfo_FilePath, "file-path", ValueKind::Text, false},
    {kvxInfo_FileExtension, "file-extension", ValueKind::Text, false},
    {kvxInfo_FileSize, "file-size", ValueKind::Size, false},
    {kvxInfo_BitRate, "bit-rate", ValueKind::Number, true},
    {kvxInfo_MaxBitRate, "max-bit-rate", ValueKind::Number, true},
    {kvxInfo_EstimatedBitRate, "estimated-bit-rate", ValueKind::Number, true},

    {kvxInfo_Width, "width", ValueKind::Number, true},
    {kvxInfo_Height, "height", ValueKind::Number, true},
    {kvxInfo_ColorDepth, "color-depth", ValueKind::Number, true},

    {kvxInfo_HasVideoTrack, "has-video", ValueKind::Truth, true},
    {kvxInfo_VideoCodec, "video-codec", ValueKind::Text, true},
    {kvxInfo_VideoProfile, "video-profile", ValueKind::Text, true},
    {kvxInfo_VideoLevel, "video-level", ValueKind::Text, true},
    {kvxInfo_VideoChroma, "video-chroma", ValueKind::Text, true},
    {kvxInfo_VideoAspectRatio, "video-aspect-ratio", ValueKind::Text, true},
    {kvxInfo_VideoFrameRate, "video-frame-rate", ValueKind::Decimal, true},
    {kvxInfo_VideoBitRate, "video-bit-rate", ValueKind::Number, true},
    {kvxInfo_VideoMaxBitRate, "video-max-bit-rate", ValueKind::Number, true},
    {kvxInfo_VideoEstimatedBitRate, "video-estimated-bit-rate", ValueKind::Number, true},

    {kvxInfo_AudioTrackCount, "audio-tracks", ValueKind::Number, true},
    {kvxInfo_AudioCodec, "audio-codec", ValueKind::Text, true},
    {kvxInfo_AudioSubCodec, "audio-sub-codec", ValueKind::Text, true},
    {kvxInfo_AudioFormatTag, "audio-format-tag", ValueKind::Text, true},
    {kvxInfo_AudioLanguage, "audio-language", ValueKind::Text, true},
    {kvxInfo_AudioChannelCount, "audio-channels", ValueKind::Number, true},
    {kvxInfo_AudioSamplingRate, "audio-sampling-rate", ValueKind::Number, true},
    {kvxInfo_AudioBitsPerSample, "audio-bits-per-sample", ValueKind::Number, true},
    {kvxInfo_AudioBitRate, "audio-bit-rate", ValueKind::Number, true},
    {kvxInfo_AudioMaxBitRate, "audio-max-bit-rate", ValueKind::Number, true},
    {kvxInfo_AudioEstimatedBitRate, "audio-estimated-bit-rate", ValueKind::Number, true},

    {kvxInfo_Audio_2_Codec, "audio-2-codec", ValueKind::Text, true},
    {kvxInfo_Audio_2_SubCodec, "audio-2-sub-codec", ValueKind::Text, true},
    {kvxInfo_Audio_2_FormatTag, "audio-2-format-tag", ValueKind::Text, true},
    {kvxInfo_Audio_2_Language, "audio-2-language", ValueKind::Text, true},
    {kvxInfo_Audio_2_ChannelCount, "audio-2-channels", ValueKind::Number, true},
    {kvxInfo_Audio_2_SamplingRate, "audio-2-sampling-rate", ValueKind::Number, true},
    {kvxInfo_Audio_2_BitsPerSample, "audio-2-bits-per-sample", ValueKind::Number, true},
    {kvxInfo_Audio_2_BitRate, "audio-2-bit-rate", ValueKind::Number, true},
    {kvxInfo_Audio_2_MaxBitRate, "audio-2-max-bit-rate", ValueKind::Number, true},
    {kvxInfo_Audio_2_EstimatedBitRate, "audio-2-estimated-bit-rate", ValueKind::Number, true},

    {kvxInfo_Subtitle, "subtitle", ValueKind::Text, true},
    {kvxInfo_Thumbnail, "thumbnail", ValueKind::Text, true},
    {kvxInfo_Protection, "protection", ValueKind::Text, true},
    {kvxInfo_XEncryptionData, "encryption-data", ValueKind::Text, true},
    {kvxInfo_PlaySingle, "play-single", ValueKind::Truth, true},
    {kvxInfo_DLNALive, "live", ValueKind::Truth, true},
    {kvxInfo_DLNATransferMode, "transfer-mode", ValueKind::Text, true},
    {kvxInfo_DLNAHTTPHeaders, "http-headers", ValueKind::Text, true},
    {kvxInfo_DLNAHTTPRestrictions, "http-restrictions", ValueKind::Text, true},
    {kvxInfo_NetworkSize, "network-size", ValueKind::Size, true},
    {kvxInfo_UploadedFileSize, "uploaded-size", ValueKind::Size, true},
    {kvxInfo_ResumeUploadRequested, "resume-upload", ValueKind::Truth, true},
    {kvxInfo_MPEG_PS_HasIFO, "has-index", ValueKind::Truth, true},
    {kvxInfo_MPEG_TTS_HasTimeStamps, "has-time-stamps", ValueKind::Truth, true},
    {kvxInfo_MediaMetaData, "media-data", ValueKind::Text, true},
    {kvxInfo_MediaResMetaData, "resource-data", ValueKind::Text, true},
    {kvxInfo_UserData, "user-data", ValueKind::Text, true},
    {NULL, NULL, ValueKind::Text, false},
};

namespace {

constexpr size_t kValue_MaxLength = 4096;  // bytes

bool IsUTF8(const vxCString& aText) {
    return vxUnicode_UTF8ToWide(aText, aText.length(), NULL, 0, NULL) == 0;
}

// A number may have leading zeros where it is typed, and has none here.
bool ParseNumber(const vxCString& aText, uint64_t aMax, uint64_t& aNumber) {
    return vxConvert_strtouint64(aText, &aNumber) == 0 && aNumber <= aMax;
}

vxCString NumberValue(uint64_t aNumber) {
    return vxCString::Format("%llu", static_cast<unsigned long long>(aNumber));
}

bool NormalizeNumber(uint64_t aMax, vxCString& aValue) {
    uint64_t theNumber = 0;
    if (!ParseNumber(aValue, aMax, theNumber)) {
        return false;
    }
    aValue = NumberValue(theNumber);
    return true;
}

bool NormalizeDecimal(const vxCString& aValue) {
    const size_t theDigits = strspn(aValue, "0123456789");
    const char* theRest = aValue.c_str() + theDigits;
    if (theDigits > 0 && *theRest == '.') {
        const size_t theFraction = strspn(theRest + 1, "0123456789");
        return theFraction > 0 && theRest[1 + theFraction] == '\0';
    }
    return theDigits > 0 && *theRest == '\0';
}

bool NormalizeTruth(vxCString& aValue) {
    static constexpr const char* kWords[][4] = {{"0", "false", "no", "off"},
                                                {"1", "true", "yes", "on"}};
    for (const auto& theWords : kWords) {
        for (const char* theWord : theWords) {
            if (aValue.CompareNoCase(theWord) == 0) {
                aValue = theWords[0];
                return true;
            }
        }
    }
    return false;
}

// Takes `aCount` digits, or any number of them from one on if that is 0.
bool TakeDigits(const char*& aText, size_t aCount, uint64_t& aNumber) {
    const size_t theCount = strspn(aText, "0123456789");
    if (aCount == 0 ? theCount == 0 || theCount > 9 : theCount != aCount) {
        return false;
    }
    aNumber = 0;
    for (size_t i = 0; i < theCount; ++i) {
        aNumber = aNumber * 10 + static_cast<uint64_t>(*aText++ - '0');
    }
    return true;
}

bool TakeChar(const char*& aText, char aChar) {
    return *aText == aChar && *aText++ != '\0';
}

// Milliseconds, or hours, minutes and seconds with or without three decimals.
bool NormalizeDuration(vxCString& aValue) {
    if (!aValue.Contains(":")) {
        return NormalizeNumber(UINT64_MAX, aValue);
    }
    uint64_t theHours;
    uint64_t theMinutes;
    uint64_t theSeconds;
    uint64_t theMS = 0;
    const char* theText = aValue;
    if (!TakeDigits(theText, 0, theHours) || !TakeChar(theText, ':') ||
        !TakeDigits(theText, 2, theMinutes) || !TakeChar(theText, ':') ||
        !TakeDigits(theText, 2, theSeconds) || theMinutes > 59 || theSeconds > 59) {
        return false;
    }
    if (TakeChar(theText, '.') && !TakeDigits(theText, 3, theMS)) {
        return false;
    }
    if (*theText != '\0') {
        return false;
    }
    aValue = NumberValue(((theHours * 60 + theMinutes) * 60 + theSeconds) * 1000 + theMS);
    return true;
}

// Returns what a value of a row is, if the text is none.
const char* Normalize(const ItemKey& aRow, vxCString& aValue) {
    switch (aRow.mKind) {
        case ValueKind::Number:
            return NormalizeNumber(UINT32_MAX, aValue) ? NULL : "a number from 0 to 4294967295";
        case ValueKind::Size:
            return NormalizeNumber(UINT64_MAX, aValue) ? NULL : "a number";
        case ValueKind::Ordinal:
            return NormalizeNumber(UINT16_MAX, aValue) ? NULL : "a number from 0 to 65535";
        case ValueKind::Decimal:
            return NormalizeDecimal(aValue) ? NULL : "a number, with or without decimals";
        case ValueKind::Truth:
            return NormalizeTruth(aValue) ? NULL : "true or false";
        case ValueKind::Duration:
            return NormalizeDuration(aValue) ? NULL : "milliseconds, or as 1:02:03 or 1:02:03.456";
        case ValueKind::Text:
            break;
    }
    return NULL;
}

}  // namespace

const ItemKey* FindItemKey(const char* aKeyOrName) {
    for (const ItemKey* theRow = kItemKeys; theRow->mKey != NULL; ++theRow) {
        const bool theHasKey = theRow->mKind != ValueKind::Ordinal;
        if ((theHasKey && strcmp(theRow->mKey, aKeyOrName) == 0) ||
            strcmp(theRow->mName, aKeyOrName) == 0) {
            return theRow;
        }
    }
    return NULL;
}

vxCString NormalizeValue(const ItemKey& aRow, vxCString& aValue) {
    if (aValue.length() > kValue_MaxLength) {
        return vxCString::Format("ERROR: A value has at most %lu bytes",
                                 static_cast<unsigned long>(kValue_MaxLength));
    }
    if (!IsUTF8(aValue)) {
        return "ERROR: The value is no UTF-8 text";
    }
    const char* theForm = Normalize(aRow, aValue);
    return theForm == NULL ? vxCString()
                           : vxCString::Format("ERROR: '%s' is %s", aRow.mName, theForm);
}

vxCString GetValue(const vxMediaInfo& anInfo, const ItemKey& aRow) {
    if (aRow.mKind != ValueKind::Ordinal) {
        return anInfo.GetCString(aRow.mKey, "");
    }
    const unsigned theNumber =
        strcmp(aRow.mName, "disc") == 0 ? anInfo.GetDiscNumber() : anInfo.GetTrackNumber();
    return theNumber == 0 ? vxCString() : NumberValue(theNumber);
}

vxCString GetShownValue(const vxMediaInfo& anInfo, const ItemKey& aRow) {
    const vxCString theValue = GetValue(anInfo, aRow);
    uint64_t theNumber = 0;
    return aRow.mKind == ValueKind::Duration && ParseNumber(theValue, UINT64_MAX, theNumber)
               ? DurationText(theNumber)
               : theValue;
}

vxCString DurationText(uint64_t aDurationMS) {
    const uint64_t theSeconds = aDurationMS / 1000;
    return vxCString::Format(
        "%llu:%02u:%02u.%03u", static_cast<unsigned long long>(theSeconds / 3600),
        static_cast<unsigned>(theSeconds / 60 % 60), static_cast<unsigned>(theSeconds % 60),
        static_cast<unsigned>(aDurationMS % 1000));
}

}  // namespace vxmedia
