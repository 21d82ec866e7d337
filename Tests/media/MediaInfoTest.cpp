#include <gmock/gmock.h>
#include <vx/MediaInfo.h>
#include <vx/PathName.h>

#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string>

#include "media/FillFields.h"
#include "support/LocalZone.h"
#include "support/Reports.h"
#include "support/ScriptedMemory.h"
#include "support/TempDir.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct KeyCase {
    const char* mKey;
    const char* mText;
};

constexpr KeyCase kKeys[] = {
    {kvxInfo_Album, "an"},
    {kvxInfo_AudioBitRate, "ar"},
    {kvxInfo_AudioBitsPerSample, "bs"},
    {kvxInfo_AudioChannelCount, "ac"},
    {kvxInfo_AudioCodec, "ca"},
    {kvxInfo_AudioEstimatedBitRate, "ea"},
    {kvxInfo_AudioFormatTag, "at"},
    {kvxInfo_AudioLanguage, "al"},
    {kvxInfo_AudioMaxBitRate, "ma"},
    {kvxInfo_AudioSamplingRate, "sf"},
    {kvxInfo_AudioSubCodec, "ua"},
    {kvxInfo_AudioTrackCount, "ta"},
    {kvxInfo_Audio_2_BitRate, "r2"},
    {kvxInfo_Audio_2_BitsPerSample, "b2"},
    {kvxInfo_Audio_2_ChannelCount, "h2"},
    {kvxInfo_Audio_2_Codec, "c2"},
    {kvxInfo_Audio_2_EstimatedBitRate, "e2"},
    {kvxInfo_Audio_2_FormatTag, "t2"},
    {kvxInfo_Audio_2_Language, "l2"},
    {kvxInfo_Audio_2_MaxBitRate, "m2"},
    {kvxInfo_Audio_2_SamplingRate, "s2"},
    {kvxInfo_Audio_2_SubCodec, "u2"},
    {kvxInfo_BitRate, "br"},
    {kvxInfo_ClassName, "cn"},
    {kvxInfo_ColorDepth, "cd"},
    {kvxInfo_Creator, "cr"},
    {kvxInfo_DLNA, "dl"},
    {kvxInfo_DLNAHTTPHeaders, "hh"},
    {kvxInfo_DLNAHTTPRestrictions, "hr"},
    {kvxInfo_DLNALive, "lv"},
    {kvxInfo_DLNATransferMode, "tm"},
    {kvxInfo_Duration, "du"},
    {kvxInfo_EstimatedBitRate, "eb"},
    {kvxInfo_FileExtension, "fe"},
    {kvxInfo_FilePath, "fp"},
    {kvxInfo_FileSize, "fs"},
    {kvxInfo_Genre, "ge"},
    {kvxInfo_HasVideoTrack, "vt"},
    {kvxInfo_Height, "he"},
    {kvxInfo_ID, "id"},
    {kvxInfo_MPEG_PS_HasIFO, "hi"},
    {kvxInfo_MPEG_TTS_HasTimeStamps, "ts"},
    {kvxInfo_MaxBitRate, "mb"},
    {kvxInfo_MediaMetaData, "md"},
    {kvxInfo_MediaReleasedDateTime, "da"},
    {kvxInfo_MediaResMetaData, "rd"},
    {kvxInfo_MimeType, "mt"},
    {kvxInfo_NetworkSize, "ns"},
    {kvxInfo_PlaySingle, "ps"},
    {kvxInfo_Protection, "pr"},
    {kvxInfo_ResumeUploadRequested, "ru"},
    {kvxInfo_Subtitle, "su"},
    {kvxInfo_Thumbnail, "th"},
    {kvxInfo_Title, "ti"},
    {kvxInfo_UploadedFileSize, "us"},
    {kvxInfo_UserData, "ud"},
    {kvxInfo_VideoAspectRatio, "aa"},
    {kvxInfo_VideoBitRate, "vr"},
    {kvxInfo_VideoChroma, "vh"},
    {kvxInfo_VideoCodec, "vc"},
    {kvxInfo_VideoEstimatedBitRate, "ev"},
    {kvxInfo_VideoFrameRate, "fr"},
    {kvxInfo_VideoLevel, "vl"},
    {kvxInfo_VideoMaxBitRate, "mv"},
    {kvxInfo_VideoProfile, "vp"},
    {kvxInfo_Width, "wi"},
    {kvxInfo_XEncryptionData, "xe"},
};

/// Texts of all keys, those of fields first.
std::string All(const vxMediaInfo& anInfo) {
    return anInfo.GetMediaInfoAsString("|").c_str();
}

std::string Serialized(const vxMediaInfo& anInfo) {
    return anInfo.GetSerializedInfo().c_str();
}

TEST(MediaInfoTest, EveryKeyHasItsText) {
    std::set<std::string> theTexts;
    for (const KeyCase& theCase : kKeys) {
        EXPECT_STREQ(theCase.mKey, theCase.mText);
        theTexts.insert(theCase.mKey);
    }
    EXPECT_EQ(theTexts.size(), 67U);
}

TEST(MediaInfoTest, EveryKeyHoldsAValue) {
    vxMediaInfo theInfo;
    for (const KeyCase& theCase : kKeys) {
        theInfo.Set(theCase.mKey, theCase.mText, false);
    }
    for (const KeyCase& theCase : kKeys) {
        EXPECT_STREQ(theInfo.GetStr(theCase.mKey, "none"), theCase.mText);
    }
}

TEST(MediaInfoTest, ANewInfoKnowsNothing) {
    const vxMediaInfo theInfo;
    EXPECT_FALSE(theInfo.HasInfo());
    EXPECT_FALSE(theInfo.Validate());
    EXPECT_EQ(All(theInfo), "");
    EXPECT_EQ(Serialized(theInfo), "");
    EXPECT_STREQ(theInfo.GetTitle(), "");
    EXPECT_STREQ(theInfo.GetCreator(), "");
    EXPECT_STREQ(theInfo.GetGenre(), "");
    EXPECT_STREQ(theInfo.GetAlbumName(), "");
    EXPECT_STREQ(theInfo.GetFilePath(), "");
    EXPECT_FALSE(theInfo.GetLastModificationTime().IsValid());
    EXPECT_STREQ(theInfo.GetCoverArtMimeType(), "");
    EXPECT_EQ(theInfo.GetCoverArtOffset(), 0);
    EXPECT_EQ(theInfo.GetCoverArtSize(), 0U);
    EXPECT_EQ(theInfo.GetCoverArtEncoding(), kvxCoverArtEncoding_None);
    EXPECT_EQ(theInfo.GetCoverArtEncodedOffset(), 0U);
    EXPECT_EQ(theInfo.GetDiscNumber(), 0);
    EXPECT_EQ(theInfo.GetTrackNumber(), 0);
    for (const char* theKey : {"ti", "mt", "du"}) {
        SCOPED_TRACE(theKey);
        EXPECT_EQ(theInfo.Peek(theKey), nullptr);
        EXPECT_STREQ(theInfo.GetStr(theKey, "none"), "none");
        EXPECT_EQ(theInfo.GetUInt32(theKey, 7), 7U);
        EXPECT_EQ(theInfo.GetInt(theKey, -7), -7);
        EXPECT_TRUE(theInfo.GetUInt64(theKey, 7) == 7);
        EXPECT_EQ(theInfo.GetFloat(theKey, 0.5f), 0.5f);
    }
}

// Values by key

TEST(MediaInfoTest, FourKeysAreFieldsOutsideTheTable) {
    vxMediaInfo theInfo;
    theInfo.Set("ti", "Blue", false);
    theInfo.Set("cr", "Joni", false);
    theInfo.Set("ge", "Folk", false);
    theInfo.Set("an", "Blue Album", false);
    theInfo.Set("id", "7", false);
    EXPECT_STREQ(theInfo.GetTitle(), "Blue");
    EXPECT_STREQ(theInfo.GetCreator(), "Joni");
    EXPECT_STREQ(theInfo.GetGenre(), "Folk");
    EXPECT_STREQ(theInfo.GetAlbumName(), "Blue Album");
    EXPECT_STREQ(theInfo.GetStr("ti", "none"), "Blue");
    EXPECT_STREQ(theInfo.GetStr("cr", "none"), "Joni");
    EXPECT_STREQ(theInfo.GetStr("ge", "none"), "Folk");
    EXPECT_STREQ(theInfo.GetStr("an", "none"), "Blue Album");
    EXPECT_EQ(Serialized(theInfo), "id=7");
    theInfo.Remove("id");
    theInfo.Set("TI", "upper case", false);
    EXPECT_STREQ(theInfo.GetTitle(), "Blue");
    EXPECT_EQ(Serialized(theInfo), "TI=upper case");
}

TEST(MediaInfoTest, WithoutOverwritingAValueThatIsNotEmptyIsKept) {
    vxMediaInfo theInfo;
    theInfo.Set("id", "1", false);
    theInfo.Set("id", "2", false);
    EXPECT_STREQ(theInfo.GetStr("id", ""), "1");
    theInfo.Set("id", 3, false);
    theInfo.Set("id", 4U, false);
    theInfo.Set("id", 5.0f, false);
    theInfo.Set("id", vxuint64(6), false);
    theInfo.Set("id", vxCString("7"), false);
    EXPECT_STREQ(theInfo.GetStr("id", ""), "1");
    theInfo.Set("id", "8", true);
    EXPECT_STREQ(theInfo.GetStr("id", ""), "8");
    theInfo.Set("id", "", true);
    EXPECT_STREQ(theInfo.GetStr("id", "none"), "");
    theInfo.Set("id", "9", false);
    EXPECT_STREQ(theInfo.GetStr("id", ""), "9");
}

TEST(MediaInfoTest, FieldsAreAlwaysOverwritten) {
    for (const char* theKey : {"ti", "cr", "ge", "an"}) {
        SCOPED_TRACE(theKey);
        vxMediaInfo theInfo;
        theInfo.Set(theKey, "old", false);
        theInfo.Set(theKey, "new", false);
        EXPECT_STREQ(theInfo.GetStr(theKey, ""), "new");
        theInfo.Set(theKey, "", false);
        EXPECT_STREQ(theInfo.GetStr(theKey, "none"), "none");
        theInfo.DeserializeInfo((std::string(theKey) + "=hidden").c_str());
        theInfo.Set(theKey, "newer", false);
        EXPECT_STREQ(theInfo.GetStr(theKey, ""), "newer");
    }
}

TEST(MediaInfoTest, NumbersAreStoredAsText) {
    vxMediaInfo theInfo;
    theInfo.Set("a", 4294967295U, true);
    theInfo.Set("b", std::numeric_limits<int>::min(), true);
    theInfo.Set("c", kvxuint64_Max, true);
    theInfo.Set("d", 1.5f, true);
    theInfo.Set("e", -0.25f, true);
    theInfo.Set("f", vxCString("text"), true);
    theInfo.Set("ti", 7, true);
    EXPECT_EQ(All(theInfo),
              "ti=7|a=4294967295|b=-2147483648|c=18446744073709551615|d=1.500000|e=-0.250000|"
              "f=text");
}

TEST(MediaInfoTest, NumbersAreReadFromTheWholeTextOrAreTheDefault) {
    vxMediaInfo theInfo;
    theInfo.Set("max", "4294967295", true);
    theInfo.Set("above", "4294967296", true);
    theInfo.Set("min", "-2147483648", true);
    theInfo.Set("below", "-2147483649", true);
    theInfo.Set("max64", "18446744073709551615", true);
    theInfo.Set("above64", "18446744073709551616", true);
    theInfo.Set("real", "1.5", true);
    theInfo.Set("huge", "1e39", true);
    theInfo.Set("low", "-1e39", true);
    theInfo.Set("largest", "340282346638528859811704183484516925440", true);
    theInfo.Set("smallest", "-340282346638528859811704183484516925440", true);
    theInfo.Set("rest", "12 ", true);
    theInfo.Set("empty", "", true);
    theInfo.Set("ti", "1999", true);

    EXPECT_EQ(theInfo.GetUInt32("max", 7), 4294967295U);
    EXPECT_EQ(theInfo.GetUInt32("ti", 7), 1999U);
    for (const char* theKey : {"above", "min", "real", "rest", "empty", "absent", "cr"}) {
        SCOPED_TRACE(theKey);
        EXPECT_EQ(theInfo.GetUInt32(theKey, 7), 7U);
    }
    EXPECT_EQ(theInfo.GetInt("min", 7), std::numeric_limits<int>::min());
    EXPECT_EQ(theInfo.GetInt("ti", 7), 1999);
    for (const char* theKey : {"max", "below", "real", "rest", "empty", "absent", "cr"}) {
        SCOPED_TRACE(theKey);
        EXPECT_EQ(theInfo.GetInt(theKey, -7), -7);
    }
    EXPECT_TRUE(theInfo.GetUInt64("max64", 7) == kvxuint64_Max);
    EXPECT_TRUE(theInfo.GetUInt64("above", 7) == vxuint64(4294967296ULL));
    EXPECT_TRUE(theInfo.GetUInt64("ti", 7) == 1999);
    for (const char* theKey : {"above64", "min", "real", "rest", "empty", "absent", "cr"}) {
        SCOPED_TRACE(theKey);
        EXPECT_TRUE(theInfo.GetUInt64(theKey, 7) == 7);
    }
    EXPECT_EQ(theInfo.GetFloat("real", 7), 1.5f);
    EXPECT_EQ(theInfo.GetFloat("min", 7), -2147483648.0f);
    EXPECT_EQ(theInfo.GetFloat("ti", 7), 1999.0f);
    EXPECT_EQ(theInfo.GetFloat("largest", 7), std::numeric_limits<float>::max());
    EXPECT_EQ(theInfo.GetFloat("smallest", 7), std::numeric_limits<float>::lowest());
    for (const char* theKey : {"huge", "low", "rest", "empty", "absent", "cr"}) {
        SCOPED_TRACE(theKey);
        EXPECT_EQ(theInfo.GetFloat(theKey, 0.5f), 0.5f);
    }
}

TEST(MediaInfoTest, TextsAreReadOrAreTheDefault) {
    vxMediaInfo theInfo;
    theInfo.Set("id", "7", true);
    theInfo.Set("su", "", true);
    EXPECT_STREQ(theInfo.GetStr("id", "none"), "7");
    EXPECT_STREQ(theInfo.GetStr("su", "none"), "");
    EXPECT_STREQ(theInfo.GetStr("th", "none"), "none");
    EXPECT_STREQ(theInfo.GetStr("ti", "none"), "none");
    EXPECT_EQ(theInfo.GetStr("th", NULL), nullptr);
    EXPECT_STREQ(theInfo.GetCString("id", "none"), "7");
    EXPECT_STREQ(theInfo.GetCString("su", "none"), "");
    EXPECT_STREQ(theInfo.GetCString("th", "none"), "none");
    EXPECT_STREQ(theInfo.GetCString("th", NULL), "");
    EXPECT_STREQ(theInfo.Peek("id"), "7");
    EXPECT_STREQ(theInfo.Peek("su"), "");
    EXPECT_EQ(theInfo.Peek("th"), nullptr);
    EXPECT_EQ(theInfo.Peek("ti"), nullptr);
    EXPECT_EQ(theInfo.Peek("I"), nullptr);
}

TEST(MediaInfoTest, RemovedValuesAreAbsent) {
    vxMediaInfo theInfo;
    theInfo.Remove("id");
    theInfo.Set("id", "7", true);
    theInfo.Set("ti", "Blue", true);
    theInfo.Set("mt", "audio/mpeg", true);
    theInfo.Remove("id");
    theInfo.Remove("ti");
    theInfo.Remove("absent");
    EXPECT_EQ(theInfo.Peek("id"), nullptr);
    EXPECT_EQ(theInfo.Peek("ti"), nullptr);
    EXPECT_EQ(All(theInfo), "mt=audio/mpeg");
    theInfo.Set("id", "8", false);
    EXPECT_EQ(All(theInfo), "mt=audio/mpeg|id=8");
}

TEST(MediaInfoTest, NullKeysHaveNoValueAndNullValuesAreEmpty) {
    vxMediaInfo theInfo;
    theInfo.Set(nullptr, "7", true);
    theInfo.Remove(nullptr);
    EXPECT_FALSE(theInfo.HasInfo());
    EXPECT_STREQ(theInfo.GetStr(nullptr, "none"), "none");
    EXPECT_EQ(theInfo.Peek(nullptr), nullptr);
    EXPECT_EQ(theInfo.GetUInt32(nullptr, 7), 7U);
    theInfo.Set("id", static_cast<const char*>(nullptr), true);
    EXPECT_STREQ(theInfo.GetStr("id", "none"), "");
    theInfo.Set("ti", "Blue", true);
    theInfo.Set("ti", static_cast<const char*>(nullptr), true);
    EXPECT_STREQ(theInfo.GetTitle(), "");
}

TEST(MediaInfoTest, AValueMayBeSetFromItself) {
    vxMediaInfo theInfo;
    theInfo.Set("id", "value", true);
    theInfo.Set("id", theInfo.GetStr("id", "") + 2, true);
    EXPECT_STREQ(theInfo.GetStr("id", ""), "lue");
    theInfo.Set("ti", "value", true);
    theInfo.Set("ti", theInfo.GetStr("ti", "") + 2, true);
    EXPECT_STREQ(theInfo.GetStr("ti", ""), "lue");
}

TEST(MediaInfoTest, AnyKeyWithAValueIsInformation) {
    for (const char* theKey : {"ti", "cr", "ge", "an", "id", "any key at all"}) {
        SCOPED_TRACE(theKey);
        vxMediaInfo theInfo;
        theInfo.Set(theKey, "x", true);
        EXPECT_TRUE(theInfo.HasInfo());
        theInfo.Remove(theKey);
        EXPECT_FALSE(theInfo.HasInfo());
    }
    vxMediaInfo theInfo;
    theInfo.SetFilePath("/a.mp3");
    theInfo.SetTrackNumber(1);
    EXPECT_FALSE(theInfo.HasInfo());
}

TEST(MediaInfoTest, ClassNameAndMimeTypeMakeItValid) {
    vxMediaInfo theInfo;
    theInfo.Set("cn", "object.item.audioItem", true);
    EXPECT_FALSE(theInfo.Validate());
    theInfo.Set("mt", "", true);
    EXPECT_FALSE(theInfo.Validate());
    theInfo.Set("mt", "audio/mpeg", true);
    EXPECT_TRUE(theInfo.Validate());
    theInfo.Set("cn", "", true);
    EXPECT_FALSE(theInfo.Validate());
    theInfo.Remove("cn");
    EXPECT_FALSE(theInfo.Validate());
}

TEST(MediaInfoTest, DiscAndTrackNumbersHaveOneHalfEach) {
    vxMediaInfo theInfo;
    theInfo.SetDiscNumber(65535);
    EXPECT_EQ(theInfo.GetDiscNumber(), 65535);
    EXPECT_EQ(theInfo.GetTrackNumber(), 0);
    theInfo.SetTrackNumber(65535);
    theInfo.SetDiscNumber(2);
    EXPECT_EQ(theInfo.GetDiscNumber(), 2);
    EXPECT_EQ(theInfo.GetTrackNumber(), 65535);
    theInfo.SetTrackNumber(7);
    EXPECT_EQ(theInfo.GetDiscNumber(), 2);
    EXPECT_EQ(theInfo.GetTrackNumber(), 7);
}

/// Shows the packed number.
class PackedInfo : public vxMediaInfo {
public:
    uint32_t Packed() const { return mDiskTrackNumber; }
};

TEST(MediaInfoTest, TheDiscNumberIsTheHighHalf) {
    PackedInfo theInfo;
    theInfo.SetDiscNumber(1);
    theInfo.SetTrackNumber(2);
    EXPECT_EQ(theInfo.Packed(), 0x00010002U);
}

TEST(MediaInfoTest, ANewPlaceOfTheCoverArtIsNotEncodedUnlessSaidSo) {
    vxMediaInfo theInfo;
    theInfo.SetCoverArt("image/png", 5000000000, 77);
    theInfo.SetCoverArtEncoding(kvxCoverArtEncoding_Base64, 42);
    EXPECT_STREQ(theInfo.GetCoverArtMimeType(), "image/png");
    EXPECT_EQ(theInfo.GetCoverArtOffset(), 5000000000);
    EXPECT_EQ(theInfo.GetCoverArtSize(), 77U);
    EXPECT_EQ(theInfo.GetCoverArtEncoding(), 1);
    EXPECT_EQ(theInfo.GetCoverArtEncodedOffset(), 42U);
    theInfo.SetCoverArt("image/jpeg", 1, 2);
    EXPECT_EQ(theInfo.GetCoverArtEncoding(), 0);
    EXPECT_EQ(theInfo.GetCoverArtEncodedOffset(), 0U);
}

TEST(MediaInfoTest, WithoutMemoryValuesStayAsTheyWere) {
    vxtest::Reports theReports;
    vxMediaInfo theInfo;
    vxMediaInfo theEmpty;
    theInfo.Set("id", "1", true);
    {
        const vxtest::NoMemory theNoMemory;
        theInfo.Set("id", "2", true);
        theInfo.Set("x", "3", true);
        theInfo.DeserializeInfo("id=4\ny=5");
        theEmpty.Set("x", "6", true);
        theEmpty.DeserializeInfo("y=7");
        EXPECT_EQ(Serialized(theInfo), "");
    }
    EXPECT_EQ(Serialized(theInfo), "id=1");
    EXPECT_FALSE(theEmpty.HasInfo());
    EXPECT_EQ(theReports.FatalErrors().at(0).mResource, "memory:malloc");
    theEmpty.Set("x", "8", true);
    EXPECT_EQ(Serialized(theEmpty), "x=8");
}

// Serialized text

struct SerializedCase {
    const char* mValue;
    const char* mText;
};

constexpr SerializedCase kSerializedCases[] = {
    {"a=b", "x=a==b"},
    {"", "x="},
    {"plain", "x=plain"},
    {"=", "x==="},
    {"==", "x====="},
    {"=a", "x===a"},
    {"a=", "x=a=="},
    {"a=b=c", "x=a==b==c"},
    {" a ", "x= a "},
    {"a==b", "x=a====b"},
    {"\xC3\xA9;", "x=\xC3\xA9;"},
};

TEST(MediaInfoTest, EqualSignsOfValuesAreDoubledAndComeBack) {
    for (const SerializedCase& theCase : kSerializedCases) {
        SCOPED_TRACE(theCase.mText);
        vxMediaInfo theInfo;
        theInfo.Set("x", theCase.mValue, true);
        EXPECT_EQ(Serialized(theInfo), theCase.mText);
        vxMediaInfo theCopy;
        theCopy.DeserializeInfo(theCase.mText);
        EXPECT_STREQ(theCopy.GetStr("x", "none"), theCase.mValue);
    }
}

TEST(MediaInfoTest, LinesFollowTheTableWithoutALineEndBehindTheLast) {
    vxMediaInfo theInfo;
    theInfo.Set("zz", "1", true);
    theInfo.Set("ti", "no line", true);
    theInfo.Set("aa", "2", true);
    theInfo.Set("mm", "", true);
    theInfo.Set("zz", "3", true);
    EXPECT_EQ(Serialized(theInfo), "zz=3\naa=2\nmm=");
}

TEST(MediaInfoTest, KeysWithEqualSignsOrLineEndsAreReportedAndLeftOut) {
    for (const char* theKey : {"a=b", "a\nb", "=", "\n", "=\n"}) {
        vxtest::Reports theReports;
        vxMediaInfo theInfo;
        theInfo.Set("x", "1", true);
        theInfo.Set(theKey, "2", true);
        theInfo.Set("y", "3", true);
        EXPECT_EQ(Serialized(theInfo), "x=1\ny=3");
        EXPECT_THAT(theReports.Assertions(),
                    ElementsAre("(theKey.Find('=') == -1) && (theKey.Find('\\n') == -1)"));
        EXPECT_THAT(theReports.AssertionReports()[0].mFile, testing::EndsWith("MediaInfo.cpp"));
    }
}

TEST(MediaInfoTest, ValuesWithLineEndsAreReportedAndLeftOut) {
    vxtest::Reports theReports;
    vxMediaInfo theInfo;
    theInfo.Set("x", "1\n", true);
    theInfo.Set("y", "2=", true);
    EXPECT_EQ(Serialized(theInfo), "y=2==");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("theValue.Find('\\n') == -1"));
    theReports.Clear();
    theInfo.Set("a\nb", "\n", true);
    theInfo.Remove("x");
    EXPECT_EQ(Serialized(theInfo), "y=2==");
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("(theKey.Find('=') == -1) && (theKey.Find('\\n') == -1)",
                            "theValue.Find('\\n') == -1"));
}

TEST(MediaInfoTest, OnlyTheTableIsChecked) {
    vxtest::Reports theReports;
    vxMediaInfo theInfo;
    theInfo.Set("ti", "two\nlines", true);
    theInfo.Set("id", "7", true);
    EXPECT_EQ(Serialized(theInfo), "id=7");
    EXPECT_EQ(All(theInfo), "ti=two\nlines|id=7");
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

struct ReadCase {
    const char* mText;
    const char* mAll;
};

constexpr ReadCase kReadCases[] = {
    {"", ""},
    {"x=1", "x=1"},
    {"x=1\n", "x=1"},
    {"x=1\ny=2", "x=1|y=2"},
    {"x=1\ry=2", "x=1|y=2"},
    {"x=1\r\ny=2\r\n", "x=1|y=2"},
    {"x=1\n\ny=2", "x=1|y=2"},
    {"x=1\r\ry=2", "x=1|y=2"},
    {"x=1\n\ry=2", "x=1|y=2"},
    {"x=1\n\n\n\ny=2", "x=1|y=2"},
    {"\r\n\r\nx=1", "x=1"},
    {"x=\ny=", "x=|y="},
    {"junk\nx=1", "x=1"},
    {"x=1\njunk", "x=1"},
    {"x=1\njunk\ny=2", "x=1|y=2"},
    {"junk", ""},
    {"x=1\nx=2", "x=2"},
    {"x=1\ny=2\nx=3", "x=3|y=2"},
    {"=1", "=1"},
    {" x = 1 ", " x = 1 "},
    {"x=a=b", "x=a==b"},      // one "=" stays one
    {"x=a===b", "x=a====b"},  // two and one are two
    {"x==", "x==="},          // one "=" as the value
    {"x====", "x====="},      // three: two and one
    {"x=a==b\ny=c==d", "x=a==b|y=c==d"},
    {"long key with blanks=1", "long key with blanks=1"},
    {"x=1\vy\f", "x=1\vy\f"},
};

TEST(MediaInfoTest, LinesAreReadWithAnyLineEnd) {
    for (const ReadCase& theCase : kReadCases) {
        SCOPED_TRACE(theCase.mText);
        vxMediaInfo theInfo;
        theInfo.DeserializeInfo(theCase.mText);
        EXPECT_EQ(All(theInfo), theCase.mAll);
    }
}

TEST(MediaInfoTest, ReadingAddsToTheTable) {
    vxMediaInfo theInfo;
    theInfo.Set("x", "old", true);
    theInfo.Set("z", "kept", true);
    theInfo.DeserializeInfo("x=new\ny=2");
    EXPECT_EQ(Serialized(theInfo), "x=new\nz=kept\ny=2");
    theInfo.DeserializeInfo(NULL);
    theInfo.DeserializeInfo("");
    EXPECT_EQ(Serialized(theInfo), "x=new\nz=kept\ny=2");
}

TEST(MediaInfoTest, KeysOfFieldsAreReadIntoTheTable) {
    vxMediaInfo theInfo;
    theInfo.DeserializeInfo("ti=Blue\ncr=Joni\nge=Folk\nan=Album");
    EXPECT_STREQ(theInfo.GetTitle(), "");
    EXPECT_STREQ(theInfo.GetStr("ti", "none"), "none");
    EXPECT_STREQ(theInfo.GetStr("cr", "none"), "none");
    EXPECT_STREQ(theInfo.GetStr("ge", "none"), "none");
    EXPECT_STREQ(theInfo.GetStr("an", "none"), "none");
    EXPECT_EQ(Serialized(theInfo), "ti=Blue\ncr=Joni\nge=Folk\nan=Album");
}

TEST(MediaInfoTest, RandomTablesSurviveTheirText) {
    std::mt19937 theRandom(71);
    const auto thePick = [&](const char* aLetters, size_t aCount) {
        std::string theText;
        for (size_t i = theRandom() % aCount; i > 0; --i) {
            theText += aLetters[theRandom() % strlen(aLetters)];
        }
        return theText;
    };
    for (int i = 0; i < 2000; ++i) {
        vxMediaInfo theInfo;
        for (int j = 0; j < 5; ++j) {
            theInfo.Set(thePick("abc \t", 4).c_str(), thePick("==ab %", 9).c_str(), true);
        }
        vxMediaInfo theCopy;
        theCopy.DeserializeInfo(theInfo.GetSerializedInfo());
        ASSERT_EQ(Serialized(theCopy), Serialized(theInfo));
        ASSERT_EQ(All(theCopy), All(theInfo));
    }
}

TEST(MediaInfoTest, LongTextsAreReadAndWritten) {
    const std::string theValue(1000000, '=');
    vxMediaInfo theInfo;
    theInfo.Set("x", theValue.c_str(), true);
    EXPECT_EQ(Serialized(theInfo), "x=" + theValue + theValue);
    vxMediaInfo theCopy;
    theCopy.DeserializeInfo(theInfo.GetSerializedInfo());
    EXPECT_EQ(theValue, theCopy.GetStr("x", ""));
}

TEST(MediaInfoTest, TheWholeAsTextHasTheFieldsFirstAndAnySeparator) {
    vxMediaInfo theInfo;
    theInfo.Set("id", "a=b\nc", true);
    theInfo.Set("an", "Album", true);
    theInfo.Set("ge", "Folk", true);
    theInfo.Set("cr", "Joni=", true);
    theInfo.Set("ti", "Blue", true);
    EXPECT_STREQ(theInfo.GetMediaInfoAsString(", "),
                 "ti=Blue, cr=Joni==, ge=Folk, an=Album, id=a==b\nc");
    EXPECT_STREQ(theInfo.GetMediaInfoAsString(""), "ti=Bluecr=Joni==ge=Folkan=Albumid=a==b\nc");
}

TEST(MediaInfoTest, AFieldHidesAnEntryOfItsKey) {
    vxMediaInfo theInfo;
    theInfo.DeserializeInfo("ti=Table\nid=7");
    EXPECT_EQ(All(theInfo), "ti=Table|id=7");
    theInfo.Set("ti", "Field", true);
    EXPECT_EQ(All(theInfo), "ti=Field|id=7");
    EXPECT_EQ(Serialized(theInfo), "ti=Table\nid=7");
}

// Finishing

struct FinalizeCase {
    const char* mTitle;
    const char* mPath;
    bool mfKeepEmptyTitle;
    const char* mExpected;
};

constexpr FinalizeCase kFinalizeCases[] = {
    {"", "/music/Blue.mp3", false, "Blue"},
    {"", "/music/a.b.mp3", false, "a.b"},
    {"", "/music/noextension", false, "noextension"},
    {"", "/music/ Blue .mp3", false, "Blue"},
    {"", "/music/Blue.mp3", true, ""},
    {"Title", "/music/Blue.mp3", false, "Title"},
    {"Title", "/music/Blue.mp3", true, "Title"},
    {" \t Title \r\n", "/music/Blue.mp3", false, "Title"},
    {" Title ", "/music/Blue.mp3", true, "Title"},
    {"   ", "/music/Blue.mp3", false, "-"},
    {"   ", "/music/Blue.mp3", true, ""},
    {"", "", false, "-"},
    {"", "", true, ""},
    {"", "/music/", false, "-"},
    {"", "/music/.mp3", false, "-"},
    {"", "/music/  .mp3", false, "-"},
    {"", "nodirectory.mp3", false, "-"},
};

TEST(MediaInfoTest, FinishingCompletesTheTitle) {
    for (const FinalizeCase& theCase : kFinalizeCases) {
        SCOPED_TRACE(testing::Message()
                     << theCase.mTitle << " " << theCase.mPath << " " << theCase.mfKeepEmptyTitle);
        vxMediaInfo theInfo;
        theInfo.Set("ti", theCase.mTitle, true);
        theInfo.SetFilePath(theCase.mPath);
        theInfo.Finalize(theCase.mfKeepEmptyTitle);
        EXPECT_STREQ(theInfo.GetTitle(), theCase.mExpected);
        EXPECT_STREQ(theInfo.GetAlbumName(), "");
        EXPECT_STREQ(theInfo.GetFilePath(), theCase.mPath);
    }
}

TEST(MediaInfoTest, FinishingGroupsPicturesByFolder) {
    const struct {
        const char* mClass;
        const char* mAlbum;
        const char* mExpected;
    } kCases[] = {
        {"object.item.imageItem.photo", "", "/pictures/2015/"},
        {"imageItem", "", "/pictures/2015/"},
        {"object.item.imageItem", "Summer", "Summer"},
        {"object.item.imageItem", " ", ""},
        {"object.item.audioItem", "", ""},
        {"object.item.imageitem", "", ""},
        {"", "", ""},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mClass << " " << theCase.mAlbum);
        vxMediaInfo theInfo;
        theInfo.Set("cn", theCase.mClass, true);
        theInfo.Set("an", theCase.mAlbum, true);
        theInfo.SetFilePath("/pictures/2015/sea.jpg");
        theInfo.Finalize(true);
        EXPECT_STREQ(theInfo.GetAlbumName(), theCase.mExpected);
        EXPECT_STREQ(theInfo.GetTitle(), "");
    }
}

TEST(MediaInfoTest, FinishingTrimsTitleAlbumAndCreatorButNotTheGenre) {
    vxMediaInfo theInfo;
    theInfo.Set("ti", " Title ", true);
    theInfo.Set("an", " Album ", true);
    theInfo.Set("cr", " Creator ", true);
    theInfo.Set("ge", " Genre ", true);
    theInfo.Set("id", " 7 ", true);
    theInfo.Finalize(false);
    EXPECT_EQ(All(theInfo), "ti=Title|cr=Creator|ge= Genre |an=Album|id= 7 ");
}

// Copies

TEST(MediaInfoTest, ADuplicateHasEverythingAndSharesNothing) {
    vxMediaInfo theInfo;
    FillFields(theInfo, "", 101);
    theInfo.Set("mt", "audio/mpeg", true);
    theInfo.SetTrackNumber(9);
    const std::unique_ptr<vxMediaInfo> theCopy(theInfo.Duplicate());
    EXPECT_EQ(All(*theCopy), "ti=title|cr=creator|ge=genre|an=album|id=id|mt=audio/mpeg");
    EXPECT_STREQ(theCopy->GetFilePath(), "path");
    EXPECT_STREQ(theCopy->GetCoverArtMimeType(), "type");
    EXPECT_EQ(theCopy->GetCoverArtOffset(), 101);
    EXPECT_EQ(theCopy->GetCoverArtSize(), 102U);
    EXPECT_EQ(theCopy->GetCoverArtEncoding(), 1);
    EXPECT_EQ(theCopy->GetCoverArtEncodedOffset(), 103U);
    EXPECT_EQ(theCopy->GetDiscNumber(), 101);
    EXPECT_EQ(theCopy->GetTrackNumber(), 9);
    EXPECT_EQ(theCopy->GetLastModificationTime().GetTicks(), 101);
    EXPECT_NE(theCopy->GetTitle().c_str(), theInfo.GetTitle().c_str());
    EXPECT_NE(theCopy->GetCreator().c_str(), theInfo.GetCreator().c_str());
    EXPECT_NE(theCopy->GetGenre().c_str(), theInfo.GetGenre().c_str());
    EXPECT_NE(theCopy->GetAlbumName().c_str(), theInfo.GetAlbumName().c_str());
    EXPECT_NE(theCopy->GetFilePath().c_str(), theInfo.GetFilePath().c_str());
    EXPECT_NE(theCopy->GetCoverArtMimeType().c_str(), theInfo.GetCoverArtMimeType().c_str());
    theInfo.Set("mt", "changed", true);
    theCopy->Set("id", "changed", true);
    EXPECT_STREQ(theCopy->GetStr("mt", ""), "audio/mpeg");
    EXPECT_STREQ(theInfo.GetStr("id", ""), "id");
}

TEST(MediaInfoTest, ADuplicateOfNothingIsNothing) {
    const std::unique_ptr<vxMediaInfo> theCopy(vxMediaInfo().Duplicate());
    EXPECT_FALSE(theCopy->HasInfo());
}

// INI files

TEST(MediaInfoTest, AnIniFileHasAllThatIsKnown) {
    vxtest::LocalZone theZone("Europe/Berlin");
    vxtest::TempDir theDir;
    vxMediaInfo theInfo;
    theInfo.Set("mt", "audio/mpeg", true);
    theInfo.Set("su", "", true);
    theInfo.Set("ud", " two\nlines ", true);
    theInfo.Set("ti", "Blue", true);
    theInfo.Set("cr", "Joni", true);
    theInfo.Set("ge", "Folk", true);
    theInfo.Set("an", "Album", true);
    theInfo.SetFilePath("/music/Blue.mp3");
    theInfo.SetLastModificationTime(vxDateTime(1435680000L));
    theInfo.SetDiscNumber(1);
    theInfo.SetTrackNumber(7);
    theInfo.SetCoverArt("image/jpeg", 5000000000, 34567);
    theInfo.SetCoverArtEncoding(kvxCoverArtEncoding_Base64, 42);
    EXPECT_TRUE(theInfo.SaveToIniFile(vxPathName::MakeFilePath((theDir / "blue.ini").c_str())));
    EXPECT_EQ(theDir.Read("blue.ini"),
              "[MediaInfo]\n"
              "ti=Blue\n"
              "cr=Joni\n"
              "ge=Folk\n"
              "an=Album\n"
              "mt=audio/mpeg\n"
              "su=\n"
              "ud=\" two\\nlines \"\n"
              "[File]\n"
              "Path=/music/Blue.mp3\n"
              "LastModificationTime=2015-06-30T18:00:00\n"
              "DiscNumber=1\n"
              "TrackNumber=7\n"
              "[CoverArt]\n"
              "MimeType=image/jpeg\n"
              "Offset=5000000000\n"
              "Size=34567\n"
              "Encoding=1\n"
              "EncodedOffset=42\n");
}

TEST(MediaInfoTest, WhatIsNotKnownIsLeftOutOfTheIniFile) {
    vxtest::TempDir theDir;
    vxMediaInfo theInfo;
    theInfo.Set("id", "7", true);
    theInfo.SetTrackNumber(3);
    EXPECT_TRUE(theInfo.SaveToIniFile(vxPathName::MakeFilePath((theDir / "x.ini").c_str())));
    EXPECT_EQ(theDir.Read("x.ini"), "[MediaInfo]\nid=7\n[File]\nTrackNumber=3\n");
}

TEST(MediaInfoTest, AnIniFileKeepsOtherSectionsAndLosesOldValues) {
    vxtest::TempDir theDir;
    theDir.Write("x.ini",
                 "[Mine]\nkey=kept\n[MediaInfo]\nti=old\nxx=old\n[CoverArt]\nSize=1\n"
                 "[File]\nPath=/old\n");
    vxMediaInfo theInfo;
    theInfo.Set("ti", "new", true);
    EXPECT_TRUE(theInfo.SaveToIniFile(vxPathName::MakeFilePath((theDir / "x.ini").c_str())));
    EXPECT_EQ(theDir.Read("x.ini"), "[Mine]\nkey=kept\n[MediaInfo]\nti=new\n");
}

TEST(MediaInfoTest, AnIniFileThatCannotBeWrittenFails) {
    vxtest::Reports theReports;
    vxtest::TempDir theDir;
    vxMediaInfo theInfo;
    theInfo.Set("ti", "new", true);
    EXPECT_FALSE(theInfo.SaveToIniFile(vxPathName()));
    EXPECT_FALSE(theInfo.SaveToIniFile(vxPathName::MakeDirPath(theDir.Path().c_str())));
    EXPECT_FALSE(
        theInfo.SaveToIniFile(vxPathName::MakeFilePath((theDir / "absent/x.ini").c_str())));
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(MediaInfoTest, AKeyThatAnIniFileCannotHoldLeavesTheOldFile) {
    vxtest::TempDir theDir;
    for (const char* theKey : {"a=b", "a\nb", "[a", ";a", "", " a"}) {
        SCOPED_TRACE(theKey);
        theDir.Write("x.ini", "[MediaInfo]\nti=old\n");
        vxMediaInfo theInfo;
        theInfo.Set("ti", "new", true);
        theInfo.Set(theKey, "x", true);
        EXPECT_FALSE(theInfo.SaveToIniFile(vxPathName::MakeFilePath((theDir / "x.ini").c_str())));
        EXPECT_EQ(theDir.Read("x.ini"), "[MediaInfo]\nti=old\n");
    }
}

}  // namespace
