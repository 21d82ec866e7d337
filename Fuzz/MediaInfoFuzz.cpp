// Any text can be read as a media info, whose own text reads back the same; merging and finishing hold
// their limits. As JSON, any text is read or refused, and bytes survive.

#include <libteskTools/PropertyList.h>
#include <vx/MediaInfo.h>
#include <vx/MediaInfoSerializer.h>

#include <memory>

#include "Input.h"

namespace {

void ReadAgain(const vxMediaInfo& anInfo) {
    const vxCString theText = anInfo.GetSerializedInfo();
    vxMediaInfo theCopy;
    theCopy.DeserializeInfo(theText);
    vxfuzz::Expect(theCopy.GetSerializedInfo() == theText, "written text reads back the same");
    const std::unique_ptr<vxMediaInfo> theDuplicate(anInfo.Duplicate());
    vxfuzz::Expect(theDuplicate->GetSerializedInfo() == theText, "a duplicate is the same");
}

void Merge(vxMediaInfo& anInfo, const vxMediaInfo& anOther) {
    const uint32_t theBefore = anInfo.GetUInt32(kvxInfo_AudioTrackCount, 0);
    const bool theDone = anInfo.MergeAll(&anOther);
    const uint32_t theAfter = anInfo.GetUInt32(kvxInfo_AudioTrackCount, 0);
    vxfuzz::Expect(theDone ? theAfter <= kvxMediaInfo_MaxAudioTracks : theAfter == theBefore,
                   "nine tracks are the most");
    anInfo.Finalize(false);
    vxfuzz::Expect(!anInfo.GetTitle().IsEmpty(), "a finished info has a title");
}

void Survive(const std::string& aBytes) {
    vxPropertyList* theList = vxPropertyList_New();
    vxPackedData* thePacked = vxPackedData_New(aBytes.data(), aBytes.size());
    vxProperty_Set_packedData(vxPropertyList_Add(theList, kvxInfo_MediaMetaData), 0, thePacked);
    vxPropertyList* theCopy =
        vxMediaInfoSerializer::Deserialize(vxMediaInfoSerializer::Serialize(theList));
    vxPackedData* theBack = vxData_Get_packedData(
        vxProperty_GetAt(vxPropertyList_Find(theCopy, kvxInfo_MediaMetaData), 0));
    const std::string theBytes(static_cast<const char*>(vxPackedData_GetPtr(theBack)),
                               vxPackedData_GetSize(theBack));
    vxfuzz::Expect(theBytes == aBytes, "packed bytes survive");
    vxPropertyList_Delete(theCopy);
    vxPackedData_Delete(thePacked);
    vxPropertyList_Delete(theList);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxLog_SetLevel(kvxLogAllModules, VXLOGLEVEL_NONE);
    vxfuzz::Input theInput(aData, aSize);
    const size_t theSplit = theInput.Byte();
    const std::string theText = theInput.Rest();
    vxMediaInfo theInfo;
    theInfo.DeserializeInfo(theText.substr(0, theSplit).c_str());
    vxMediaInfo theOther;
    theOther.DeserializeInfo(theText.c_str());
    ReadAgain(theInfo);
    ReadAgain(theOther);
    theInfo.SetFilePath(theText.c_str());
    Merge(theInfo, theOther);
    if (!theText.empty()) {
        Survive(theText);
    }
    vxPropertyList_Delete(vxMediaInfoSerializer::Deserialize(theText.c_str()));
    return 0;
}
