#include <gmock/gmock.h>
#include <vx/DLNAInfoMatcher.h>

#include <atomic>
#include <string>
#include <thread>

#include "support/Reports.h"
#include "support/ScriptedMemory.h"

namespace {

struct ProfileCase {
    const char* mProfile;
    const char* mMimeType;
    const char* mExtensions;
    const char* mExtension;  // the default
};

constexpr ProfileCase kProfiles[] = {
    {"JPEG_SM", "image/jpeg", "jpg@jpeg", "jpg"},
    {"JPEG_MED", "image/jpeg", "jpg@jpeg", "jpg"},
    {"JPEG_LRG", "image/jpeg", "jpg@jpeg", "jpg"},
    {"JPEG_TN", "image/jpeg", "jpg@jpeg", "jpg"},
    {"JPEG_LRG_ICO", "image/jpeg", "jpg@jpeg", "jpg"},
    {"JPEG_SM_ICO", "image/jpeg", "jpg@jpeg", "jpg"},
    {"PNG_TN", "image/png", "png", "png"},
    {"PNG_SM_ICO", "image/png", "png", "png"},
    {"PNG_LRG_ICO", "image/png", "png", "png"},
    {"PNG_LRG", "image/png", "png", "png"},
    {"GIF_LRG", "image/gif", "gif", "gif"},
    {"AC3", "audio/vnd.dolby.dd-raw", "ac3", "ac3"},
    {"AMR_3GPP", "audio/3gpp@audio/mp4", "amr", "amr"},
    {"AMR_WBplus", "audio/3gpp", "awb", "awb"},
    {"LPCM", "audio/L16", "pcm@lpcm", "pcm"},
    {"LPCM_low", "audio/L16", "pcm@lpcm", "pcm"},
    {"LPCM_MPS", "audio/L16", "pcm@lpcm", "pcm"},
    {"MP3", "audio/mpeg", "mp3", "mp3"},
    {"MP3X", "audio/mpeg", "mp3", "mp3"},
    {"AAC_ADTS", "audio/vnd.dlna.adts", "aac", "aac"},
    {"AAC_ADTS_320", "audio/vnd.dlna.adts", "aac", "aac"},
    {"AAC_MULT5_ADTS", "audio/vnd.dlna.adts", "aac", "aac"},
    {"HEAAC_L2_ADTS", "audio/vnd.dlna.adts", "aac", "aac"},
    {"HEAAC_L2_ADTS_320", "audio/vnd.dlna.adts", "aac", "aac"},
    {"HEAAC_L3_ADTS", "audio/vnd.dlna.adts", "aac", "aac"},
    {"HEAAC_MULT5_ADTS", "audio/vnd.dlna.adts", "aac", "aac"},
    {"AAC_ISO", "audio/3gpp@audio/mp4", "3gp@mp4", "3gp"},
    {"AAC_ISO_320", "audio/3gpp@audio/mp4", "3gp@mp4", "3gp"},
    {"AAC_MULT5_ISO", "audio/3gpp@audio/mp4", "3gp@mp4", "3gp"},
    {"HEAAC_L2_ISO", "audio/3gpp@audio/mp4", "3gp@mp4", "3gp"},
    {"HEAAC_L2_ISO_320", "audio/3gpp@audio/mp4", "3gp@mp4", "3gp"},
    {"HEAAC_L3_ISO", "audio/3gpp@audio/mp4", "3gp@mp4", "3gp"},
    {"HEAAC_MULT5_ISO", "audio/3gpp@audio/mp4", "3gp@mp4", "3gp"},
    {"ATRAC3plus", "audio/x-sony-oma", "aa3@oma@at3", "aa3"},
    {"VC1_ASF_AP_L1_WMA", "video/x-ms-asf", "asf", "asf"},
    {"VC1_ASF_AP_L2_WMA", "video/x-ms-asf", "asf", "asf"},
    {"VC1_TS_AP_L1_WMA_ISO", "video/mpeg", "wmv", "wmv"},
    {"VC1_TS_AP_L2_WMA_ISO", "video/mpeg", "wmv", "wmv"},
    {"VC1_TS_AP_L1_AC3_ISO", "video/mpeg", "wmv", "wmv"},
    {"VC1_TS_AP_L2_AC3_ISO", "video/mpeg", "wmv", "wmv"},
    {"VC1_TS_HD_DTS_ISO", "video/mpeg", "wmv", "wmv"},
    {"VC1_TS_HD_DTSHD_HRA_ISO", "video/mpeg", "wmv", "wmv"},
    {"VC1_TS_HD_DTSHD_MA_ISO", "video/mpeg", "wmv", "wmv"},
    {"VC1_TS_HD_DTS_T", "video/vnd.dlna.mpeg-tts", "", ""},
    {"VC1_TS_HD_DTSHD_HRA_T", "video/vnd.dlna.mpeg-tts", "", ""},
    {"VC1_TS_HD_DTSHD_MA_T", "video/vnd.dlna.mpeg-tts", "", ""},
    {"VC1_PS_HD_DTS", "video/mpeg", "", ""},
    {"VC1_PS_HD_DTSHD_HRA", "video/mpeg", "", ""},
    {"VC1_PS_HD_DTSHD_MA", "video/mpeg", "", ""},
    {"VC1_PS_HD_DTSHD", "video/mpeg", "", ""},
    {"WMVMED_BASE", "video/x-ms-wmv", "wmv", "wmv"},
    {"WMVMED_FULL", "video/x-ms-wmv", "wmv", "wmv"},
    {"WMVMED_PRO", "video/x-ms-wmv", "wmv", "wmv"},
    {"WMVHIGH_FULL", "video/x-ms-wmv", "wmv", "wmv"},
    {"WMVHIGH_PRO", "video/x-ms-wmv", "wmv", "wmv"},
    {"WMVHM_BASE", "video/x-ms-wmv", "wmv", "wmv"},
    {"WMVSPLL_BASE", "video/x-ms-wmv", "wmv", "wmv"},
    {"WMVSPML_BASE", "video/x-ms-wmv", "wmv", "wmv"},
    {"WMVSPML_MP3", "video/x-ms-wmv", "wmv", "wmv"},
    {"MPEG1", "video/mpeg", "mpg@mpeg@mp1", "mpg"},
    {"MP2_MPS", "audio/mpeg", "", ""},
    {"MLP", "audio/vnd.dolby.mlp", "mlp", "mlp"},
    {"EAC3", "audio/eac3", "ac3", "ac3"},
    {"DTSHD_HRA", "audio/vnd.dts.hd", "dts", "dts"},
    {"DTSHD_MA", "audio/vnd.dts.hd", "dts", "dts"},
    {"DTSHD_LBR", "audio/vnd.dts.hd", "dts", "dts"},
    {"DTS", "audio/vnd-dts", "dts", "dts"},
    {"WMABASE", "audio/x-ms-wma", "wma", "wma"},
    {"WMAFULL", "audio/x-ms-wma", "wma", "wma"},
    {"WMAPRO", "audio/x-ms-wma", "wma", "wma"},
    {"ALS_ISO", "audio/mp4", "mp4", "mp4"},
    {"ALS_MULT5_ISO", "audio/mp4", "mp4", "mp4"},
    {"HEAACv2_L2_MPS_DAB", "audio/x-dab", "", ""},
    {"BSAC_ISO", "audio/mp4@audio/3gpp", "3gp@mp4", "3gp"},
    {"BSAC_MULT5_ISO", "audio/mp4@audio/3gpp", "3gp@mp4", "3gp"},
    {"MPEG_PS_NTSC", "video/mpeg", "mpg", "mpg"},
    {"MPEG_PS_PAL", "video/mpeg", "mpg", "mpg"},
    {"MPEG_PS_SD_DTS", "video/mpeg", "mpg", "mpg"},
    {"MPEG_PS_HD_DTS", "video/mpeg", "mpg", "mpg"},
    {"MPEG_PS_HD_DTSHD_MA", "video/mpeg", "mpg", "mpg"},
    {"MPEG_PS_HD_DTSHD_HRA", "video/mpeg", "mpg", "mpg"},
    {"MPEG_PS_HD_DTSHD", "video/mpeg", "mpg", "mpg"},
};

TEST(DLNAInfoMatcherTest, EveryProfileHasItsExtensions) {
    for (const ProfileCase& theCase : kProfiles) {
        SCOPED_TRACE(theCase.mProfile);
        EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionListFromProfile(theCase.mProfile),
                     theCase.mExtensions);
        EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionFromProfile(theCase.mProfile),
                     theCase.mExtension);
    }
}

TEST(DLNAInfoMatcherTest, TheTableHasItsRowsInOrderAndEndsWithNulls) {
    const vxDLNAProfile* theRow = vxDLNAInfoMatcher::GetProfiles();
    for (const ProfileCase& theCase : kProfiles) {
        SCOPED_TRACE(theCase.mProfile);
        ASSERT_NE(theRow->mProfile, nullptr);
        EXPECT_STREQ(theRow->mProfile, theCase.mProfile);
        EXPECT_STREQ(theRow->mMimeType, theCase.mMimeType);
        EXPECT_STREQ(theRow->mExtensions, theCase.mExtensions);
        EXPECT_EQ(vxDLNAInfoMatcher::FindProfile(theCase.mProfile), theRow);
        ++theRow;
    }
    EXPECT_EQ(theRow - vxDLNAInfoMatcher::GetProfiles(), 82);
    EXPECT_EQ(theRow->mProfile, nullptr);
    EXPECT_EQ(theRow->mMimeType, nullptr);
    EXPECT_EQ(theRow->mExtensions, nullptr);
}

TEST(DLNAInfoMatcherTest, UnknownProfilesHaveNoExtensions) {
    for (const char* theProfile : {static_cast<const char*>(nullptr), "", "jpeg_sm", "JPEG_S",
                                   "JPEG_SM ", " JPEG_SM", "JPEG_SM_", "jpg", "MPEG_PS_"}) {
        SCOPED_TRACE(theProfile == nullptr ? "null" : theProfile);
        EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionListFromProfile(theProfile), "");
        EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionFromProfile(theProfile), "");
        EXPECT_EQ(vxDLNAInfoMatcher::FindProfile(theProfile), nullptr);
    }
}

// Added profiles stay until the process ends, so each run of a test adds names of its own.
std::string NewName() {
    static int sCount = 0;
    return "X_" + std::to_string(++sCount);
}

TEST(DLNAInfoMatcherTest, AddedProfilesAreFoundOnceTheyAreAdded) {
    const std::string theNewName = NewName();
    const char* const theText = theNewName.c_str();
    EXPECT_EQ(vxDLNAInfoMatcher::FindProfile(theText), nullptr);
    std::string theName = theNewName;
    std::string theExtensions = "opus@ogg";
    EXPECT_TRUE(vxDLNAInfoMatcher::AddProfile(theName.c_str(), "audio/ogg@audio/opus",
                                              theExtensions.c_str()));
    theName = "gone";
    theExtensions = "gone";
    EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionListFromProfile(theText), "opus@ogg");
    EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionFromProfile(theText), "opus");
    EXPECT_STREQ(vxDLNAInfoMatcher::FindProfile(theText)->mProfile, theText);
    EXPECT_STREQ(vxDLNAInfoMatcher::FindProfile(theText)->mMimeType, "audio/ogg@audio/opus");
    EXPECT_EQ(vxDLNAInfoMatcher::FindProfile(("x" + theNewName.substr(1)).c_str()), nullptr);
}

TEST(DLNAInfoMatcherTest, AddedProfilesMayLackATypeOrExtensions) {
    const std::string theName = NewName();
    const char* const theText = theName.c_str();
    EXPECT_TRUE(vxDLNAInfoMatcher::AddProfile(theText, nullptr, nullptr));
    ASSERT_NE(vxDLNAInfoMatcher::FindProfile(theText), nullptr);
    EXPECT_STREQ(vxDLNAInfoMatcher::FindProfile(theText)->mMimeType, "");
    EXPECT_STREQ(vxDLNAInfoMatcher::FindProfile(theText)->mExtensions, "");
    EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionFromProfile(theText), "");
}

TEST(DLNAInfoMatcherTest, TheFirstProfileOfANameStays) {
    const std::string theName = NewName();
    const char* const theText = theName.c_str();
    EXPECT_FALSE(vxDLNAInfoMatcher::AddProfile("JPEG_SM", "image/x", "x"));
    EXPECT_FALSE(vxDLNAInfoMatcher::AddProfile("MPEG_PS_HD_DTSHD", "video/x", "x"));
    EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionListFromProfile("JPEG_SM"), "jpg@jpeg");
    EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionListFromProfile("MPEG_PS_HD_DTSHD"), "mpg");
    EXPECT_TRUE(vxDLNAInfoMatcher::AddProfile(theText, "audio/flac", "flac"));
    EXPECT_TRUE(vxDLNAInfoMatcher::AddProfile(NewName().c_str(), "audio/x", "x"));
    EXPECT_FALSE(vxDLNAInfoMatcher::AddProfile(theText, "audio/x-flac", "fla"));
    EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionListFromProfile(theText), "flac");
    EXPECT_TRUE(vxDLNAInfoMatcher::AddProfile((theName + "a").c_str(), "audio/a", "a"));
    EXPECT_TRUE(vxDLNAInfoMatcher::AddProfile((theName + "A").c_str(), "audio/b", "b"));
    EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionListFromProfile((theName + "a").c_str()), "a");
    EXPECT_STREQ(vxDLNAInfoMatcher::GetExtensionListFromProfile((theName + "A").c_str()), "b");
}

TEST(DLNAInfoMatcherTest, ANameIsNeeded) {
    EXPECT_FALSE(vxDLNAInfoMatcher::AddProfile(nullptr, "audio/x", "x"));
    EXPECT_FALSE(vxDLNAInfoMatcher::AddProfile("", "audio/x", "x"));
    EXPECT_EQ(vxDLNAInfoMatcher::FindProfile(""), nullptr);
}

TEST(DLNAInfoMatcherTest, WithoutMemoryNothingIsAdded) {
    const std::string theName = NewName();
    const char* const theText = theName.c_str();
    vxtest::Reports theReports;
    {
        const vxtest::NoMemory theNoMemory;
        EXPECT_FALSE(vxDLNAInfoMatcher::AddProfile(theText, "audio/x", "x"));
    }
    EXPECT_EQ(theReports.FatalErrors().size(), 1U);
    EXPECT_EQ(vxDLNAInfoMatcher::FindProfile(theText), nullptr);
    EXPECT_TRUE(vxDLNAInfoMatcher::AddProfile(theText, "audio/x", "x"));
}

TEST(DLNAInfoMatcherTest, ThreadsAddAndFindAtTheSameTime) {
    constexpr int kThreads = 4;
    constexpr int kNames = 50;
    std::atomic<int> theAdded(0);
    std::atomic<int> theWrong(0);
    std::atomic<int> theReady(0);
    const std::string thePrefix = NewName() + "_THREAD_";
    const auto theBody = [&] {
        theReady.fetch_add(1);
        while (theReady.load() < kThreads) {
            std::this_thread::yield();
        }
        for (int i = 0; i < kNames; ++i) {
            const std::string theName = thePrefix + std::to_string(i);
            const std::string theExtension = "t" + std::to_string(i);
            theAdded += vxDLNAInfoMatcher::AddProfile(theName.c_str(), "", theExtension.c_str());
            const vxCString theFound =
                vxDLNAInfoMatcher::GetExtensionListFromProfile(theName.c_str());
            theWrong += theFound != theExtension.c_str();
        }
    };
    std::thread theThreads[kThreads];
    for (std::thread& theThread : theThreads) {
        theThread = std::thread(theBody);
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theAdded, kNames);
    EXPECT_EQ(theWrong, 0);
}

}  // namespace
