#include <gmock/gmock.h>
#include <libteskTools/PropertyList.h>
#include <vx/MediaInfoSerializer.h>

#include "support/Reports.h"

using testing::ElementsAre;
using testing::IsEmpty;

// The writer that serializing uses: it refuses the key "stop".
int vxMediaInfoFormatter::MapKey(const char* aKey, bool) {
    return vxCString("stop") == aKey ? 42 : vxJSONFormatter::MapKey(aKey, false);
}

namespace {

TEST(MediaInfoSerializerFailureTest, AFailureIsLoggedAndTheTextSoFarReturned) {
    vxtest::Reports theReports;
    vxPropertyList* theList = vxPropertyList_New();
    vxPropertyList_Set_charPtr(theList, "ti", "Blue");
    vxPropertyList_Set_uint32(theList, "stop", 1);
    vxPropertyList_Set_uint32(theList, "du", 2);
    EXPECT_STREQ(vxMediaInfoSerializer::Serialize(theList), R"({"ti":"Blue")");
    ASSERT_THAT(theReports.LogTexts(), ElementsAre("Cannot serialize media info (error 42)\n"));
    const vxtest::LogRecord theRecord = theReports.Records()[0];
    EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_ERROR);
    EXPECT_EQ(theRecord.mModule, VXLOG_M_DEFAULT);
    EXPECT_THAT(theRecord.mFile, testing::HasSubstr("MediaInfoSerializer"));
    vxPropertyList_Delete(theList);
}

TEST(MediaInfoSerializerFailureTest, AFailureIsLoggedOnlyWhereTheLevelIsAboveThatOfErrors) {
    vxtest::Reports theReports;
    vxPropertyList* theList = vxPropertyList_New();
    vxPropertyList_Set_uint32(theList, "stop", 1);
    vxLog_SetLevel(VXLOG_M_DEFAULT, VXLOGLEVEL_ERROR);
    EXPECT_STREQ(vxMediaInfoSerializer::Serialize(theList), "{");
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    vxLog_SetLevel(VXLOG_M_DEFAULT, VXLOGLEVEL_WARNING);
    EXPECT_STREQ(vxMediaInfoSerializer::Serialize(theList), "{");
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("Cannot serialize media info (error 42)\n"));
    vxPropertyList_Delete(theList);
}

}  // namespace
