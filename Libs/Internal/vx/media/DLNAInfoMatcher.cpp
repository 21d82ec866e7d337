// The built-in table is constant; profiles of the program follow in a list that only grows, so that
// looking up needs no lock: a node is complete before it is linked, and is never freed.

#include "vx/DLNAInfoMatcher.h"

#include <libteskTools/Memory.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr vxDLNAProfile kvxDLNAProfiles[] = {
    {"JPEG_SM", "image/jpeg", "jpg@jpeg"},
    {"JPEG_MED", "image/jpeg", "jpg@jpeg"},
    {"JPEG_LRG", "image/jpeg", "jpg@jpeg"},
    {"JPEG_TN", "image/jpeg", "jpg@jpeg"},
    {"JPEG_LRG_ICO", "image/jpeg", "jpg@jpeg"},
    {"JPEG_SM_ICO", "image/jpeg", "jpg@jpeg"},
    {"PNG_TN", "image/png", "png"},
    {"PNG_SM_ICO", "image/png", "png"},
    {"PNG_LRG_ICO", "image/png", "png"},
    {"PNG_LRG", "image/png", "png"},
    {"GIF_LRG", "image/gif", "gif"},
    {"AC3", "audio/vnd.dolby.dd-raw", "ac3"},
    {"AMR_3GPP", "audio/3gpp@audio/mp4", "amr"},
    {"AMR_WBplus", "audio/3gpp", "awb"},
    {"LPCM", "audio/L16", "pcm@lpcm"},
    {"LPCM_low", "audio/L16", "pcm@lpcm"},
    {"LPCM_MPS", "audio/L16", "pcm@lpcm"},
    {"MP3", "audio/mpeg", "mp3"},
    {"MP3X", "audio/mpeg", "mp3"},
    {"AAC_ADTS", "audio/vnd.dlna.adts", "aac"},
    {"AAC_ADTS_320", "audio/vnd.dlna.adts", "aac"},
    {"AAC_MULT5_ADTS", "audio/vnd.dlna.adts", "aac"},
    {"HEAAC_L2_ADTS", "audio/vnd.dlna.adts", "aac"},
    {"HEAAC_L2_ADTS_320", "audio/vnd.dlna.adts", "aac"},
    {"HEAAC_L3_ADTS", "audio/vnd.dlna.adts", "aac"},
    {"HEAAC_MULT5_ADTS", "audio/vnd.dlna.adts", "aac"},
    {"AAC_ISO", "audio/3gpp@audio/mp4", "3gp@mp4"},
    {"AAC_ISO_320", "audio/3gpp@audio/mp4", "3gp@mp4"},
    {"AAC_MULT5_ISO", "audio/3gpp@audio/mp4", "3gp@mp4"},
    {"HEAAC_L2_ISO", "audio/3gpp@audio/mp4", "3gp@mp4"},
    {"HEAAC_L2_ISO_320", "audio/3gpp@audio/mp4", "3gp@mp4"},
    {"HEAAC_L3_ISO", "audio/3gpp@audio/mp4", "3gp@mp4"},
    {"HEAAC_MULT5_ISO", "audio/3gpp@audio/mp4", "3gp@mp4"},
    {"ATRAC3plus", "audio/x-sony-oma", "aa3@oma@at3"},
    {"VC1_ASF_AP_L1_WMA", "video/x-ms-asf", "asf"},
    {"VC1_ASF_AP_L2_WMA", "video/x-ms-asf", "asf"},
    {"VC1_TS_AP_L1_WMA_ISO", "video/mpeg", "wmv"},
    {"VC1_TS_AP_L2_WMA_ISO", "video/mpeg", "wmv"},
    {"VC1_TS_AP_L1_AC3_ISO", "video/mpeg", "wmv"},
    {"VC1_TS_AP_L2_AC3_ISO", "video/mpeg", "wmv"},
    {"VC1_TS_HD_DTS_ISO", "video/mpeg", "wmv"},
    {"VC1_TS_HD_DTSHD_HRA_ISO", "video/mpeg", "wmv"},
    {"VC1_TS_HD_DTSHD_MA_ISO", "video/mpeg", "wmv"},
    {"VC1_TS_HD_DTS_T", "video/vnd.dlna.mpeg-tts", ""},
    {"VC1_TS_HD_DTSHD_HRA_T", "video/vnd.dlna.mpeg-tts", ""},
    {"VC1_TS_HD_DTSHD_MA_T", "video/vnd.dlna.mpeg-tts", ""},
    {"VC1_PS_HD_DTS", "video/mpeg", ""},
    {"VC1_PS_HD_DTSHD_HRA", "video/mpeg", ""},
    {"VC1_PS_HD_DTSHD_MA", "video/mpeg", ""},
    {"VC1_PS_HD_DTSHD", "video/mpeg", ""},
    {"WMVMED_BASE", "video/x-ms-wmv", "wmv"},
    {"WMVMED_FULL", "video/x-ms-wmv", "wmv"},
    {"WMVMED_PRO", "video/x-ms-wmv", "wmv"},
    {"WMVHIGH_FULL", "video/x-ms-wmv", "wmv"},
    {"WMVHIGH_PRO", "video/x-ms-wmv", "wmv"},
    {"WMVHM_BASE", "video/x-ms-wmv", "wmv"},
    {"WMVSPLL_BASE", "video/x-ms-wmv", "wmv"},
    {"WMVSPML_BASE", "video/x-ms-wmv", "wmv"},
    {"WMVSPML_MP3", "video/x-ms-wmv", "wmv"},
    {"MPEG1", "video/mpeg", "mpg@mpeg@mp1"},
    {"MP2_MPS", "audio/mpeg", ""},
    {"MLP", "audio/vnd.dolby.mlp", "mlp"},
    {"EAC3", "audio/eac3", "ac3"},
    {"DTSHD_HRA", "audio/vnd.dts.hd", "dts"},
    {"DTSHD_MA", "audio/vnd.dts.hd", "dts"},
    {"DTSHD_LBR", "audio/vnd.dts.hd", "dts"},
    {"DTS", "audio/vnd-dts", "dts"},
    {"WMABASE", "audio/x-ms-wma", "wma"},
    {"WMAFULL", "audio/x-ms-wma", "wma"},
    {"WMAPRO", "audio/x-ms-wma", "wma"},
    {"ALS_ISO", "audio/mp4", "mp4"},
    {"ALS_MULT5_ISO", "audio/mp4", "mp4"},
    {"HEAACv2_L2_MPS_DAB", "audio/x-dab", ""},
    {"BSAC_ISO", "audio/mp4@audio/3gpp", "3gp@mp4"},
    {"BSAC_MULT5_ISO", "audio/mp4@audio/3gpp", "3gp@mp4"},
    {"MPEG_PS_NTSC", "video/mpeg", "mpg"},
    {"MPEG_PS_PAL", "video/mpeg", "mpg"},
    {"MPEG_PS_SD_DTS", "video/mpeg", "mpg"},
    {"MPEG_PS_HD_DTS", "video/mpeg", "mpg"},
    {"MPEG_PS_HD_DTSHD_MA", "video/mpeg", "mpg"},
    {"MPEG_PS_HD_DTSHD_HRA", "video/mpeg", "mpg"},
    {"MPEG_PS_HD_DTSHD", "video/mpeg", "mpg"},
    {NULL, NULL, NULL},
};

/// A profile of the program; its texts follow in the same block.
struct vxAddedProfile {
    vxDLNAProfile mRow;
    std::atomic<vxAddedProfile*> mNext;  // null for the last
};

std::atomic<vxAddedProfile*> sAddedProfiles;  // the first one, or null

const vxDLNAProfile* vxFindBuiltIn(const char* aProfile) {
    const vxDLNAProfile* theRow = kvxDLNAProfiles;
    while (theRow->mProfile != NULL && strcmp(theRow->mProfile, aProfile) != 0) {
        ++theRow;
    }
    return theRow->mProfile == NULL ? NULL : theRow;
}

/// Copies a text to `aTarget` and moves that behind it.
const char* vxPlaceText(char*& aTarget, const char* aText, size_t aSize) {
    const char* theCopy = static_cast<char*>(memcpy(aTarget, aText, aSize));
    aTarget += aSize;
    return theCopy;
}

vxAddedProfile* vxNewProfile(const char* aProfile, const char* aMimeType,
                             const char* anExtensions) {
    const size_t theNameSize = strlen(aProfile) + 1;
    const size_t theTypeSize = strlen(aMimeType) + 1;
    const size_t theExtensionsSize = strlen(anExtensions) + 1;
    void* theBlock =
        vxMalloc(sizeof(vxAddedProfile) + theNameSize + theTypeSize + theExtensionsSize);
    if (theBlock == NULL) {
        return NULL;
    }
    auto* theNode = new (theBlock) vxAddedProfile{};
    char* theTarget = reinterpret_cast<char*>(theNode + 1);
    theNode->mRow.mProfile = vxPlaceText(theTarget, aProfile, theNameSize);
    theNode->mRow.mMimeType = vxPlaceText(theTarget, aMimeType, theTypeSize);
    theNode->mRow.mExtensions = vxPlaceText(theTarget, anExtensions, theExtensionsSize);
    return theNode;
}

/// Links a node behind the last one, unless there is one of its name.
bool vxLinkProfile(vxAddedProfile* aNode) {
    std::atomic<vxAddedProfile*>* theLink = &sAddedProfiles;
    vxAddedProfile* theNode = NULL;
    while (!theLink->compare_exchange_strong(theNode, aNode, std::memory_order_acq_rel)) {
        if (strcmp(theNode->mRow.mProfile, aNode->mRow.mProfile) == 0) {
            return false;
        }
        theLink = &theNode->mNext;
        theNode = NULL;
    }
    return true;
}

}  // namespace

vxCString vxDLNAInfoMatcher::GetExtensionListFromProfile(const char* aProfile) {
    const vxDLNAProfile* theRow = FindProfile(aProfile);
    return theRow == NULL ? vxCString() : vxCString(theRow->mExtensions);
}

vxCString vxDLNAInfoMatcher::GetExtensionFromProfile(const char* aProfile) {
    return GetExtensionListFromProfile(aProfile).BeforeFirst('@');
}

const vxDLNAProfile* vxDLNAInfoMatcher::GetProfiles() {
    return kvxDLNAProfiles;
}

const vxDLNAProfile* vxDLNAInfoMatcher::FindProfile(const char* aProfile) {
    if (aProfile == NULL) {
        return NULL;
    }
    const vxDLNAProfile* theRow = vxFindBuiltIn(aProfile);
    if (theRow != NULL) {
        return theRow;
    }
    const vxAddedProfile* theNode = sAddedProfiles.load(std::memory_order_acquire);
    while (theNode != NULL && strcmp(theNode->mRow.mProfile, aProfile) != 0) {
        theNode = theNode->mNext.load(std::memory_order_acquire);
    }
    return theNode == NULL ? NULL : &theNode->mRow;
}

bool vxDLNAInfoMatcher::AddProfile(const char* aProfile, const char* aMimeType,
                                   const char* anExtensions) {
    if (aProfile == NULL || *aProfile == '\0' || vxFindBuiltIn(aProfile) != NULL) {
        return false;
    }
    vxAddedProfile* theNode = vxNewProfile(aProfile, aMimeType == NULL ? "" : aMimeType,
                                           anExtensions == NULL ? "" : anExtensions);
    if (theNode != NULL && vxLinkProfile(theNode)) {
        return true;
    }
    free(theNode);
    return false;
}
