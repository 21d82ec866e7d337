#include <gmock/gmock.h>
#include <libteskTools/PropertyList.h>
#include <vx/MediaInfoKeys.h>
#include <vx/MediaInfoSerializer.h>

#include <string>

#include "support/OwnedList.h"
#include "support/Reports.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::OwnedList;

namespace {

void AddPacked(vxPropertyList* aList, const char* aName, const std::string& aBytes) {
    vxProperty* theProperty = vxPropertyList_Add(aList, aName);
    vxPackedData* thePacked = vxPackedData_New(aBytes.data(), aBytes.size());
    vxProperty_Set_packedData(theProperty, vxProperty_GetCount(theProperty), thePacked);
    vxPackedData_Delete(thePacked);
}

const vxData* ValueOf(vxPropertyList* aList, const char* aName, size_t anIndex = 0) {
    return vxProperty_GetAt(vxPropertyList_Find(aList, aName), anIndex);
}

std::string BytesOf(const vxData* aValue) {
    vxPackedData* thePacked = vxData_Get_packedData(aValue);
    return thePacked == nullptr
               ? "not packed"
               : std::string(static_cast<const char*>(vxPackedData_GetPtr(thePacked)),
                             vxPackedData_GetSize(thePacked));
}

TEST(MediaInfoSerializerTest, AListIsOneCompactObjectWithQuotedKeys) {
    OwnedList theList;
    vxPropertyList_Set_charPtr(theList, "ti", "Blue \"Sky\"");
    vxPropertyList_Set_uint32(theList, "du", 217000);
    EXPECT_STREQ(vxMediaInfoSerializer::Serialize(theList),
                 R"({"ti":"Blue \"Sky\"","du":217000,})");
}

TEST(MediaInfoSerializerTest, AnEmptyListIsAnEmptyObjectAndNoListNoText) {
    vxtest::Reports theReports;
    EXPECT_STREQ(vxMediaInfoSerializer::Serialize(OwnedList()), "{,}");
    EXPECT_STREQ(vxMediaInfoSerializer::Serialize(NULL), "");
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST(MediaInfoSerializerTest, KeysAreAlwaysQuoted) {
    vxMediaInfoFormatter theFormatter;
    theFormatter.MapBegin();
    theFormatter.MapKey("a/b", true);
    theFormatter.U32(1);
    theFormatter.MapKey("c", false);
    theFormatter.U32(2);
    theFormatter.MapEnd();
    EXPECT_STREQ(theFormatter.Result(), R"({"a\/b":1,"c":2,})");
}

TEST(MediaInfoSerializerTest, ValuesOfOtherTypesAreWrittenAsForOtherLists) {
    OwnedList theList;
    vxProperty* theProperty = vxPropertyList_Add(theList, "xx");
    vxProperty_Set_uint32(theProperty, 0, 4294967295U);
    vxProperty_Set_double(theProperty, 1, 1.5);
    vxProperty_Set_uint64(theProperty, 2, 18446744073709551615U);
    vxProperty_Set_charPtr(theProperty, 3, "text");
    vxProperty_Set_wcharPtr(theProperty, 4, L"wide");
    vxProperty_Set_Unknown(theProperty, 5);
    vxProperty_Set_size_t(theProperty, 6, 7);
    vxPropertyList_Add(theList, "yy");
    EXPECT_STREQ(
        vxMediaInfoSerializer::Serialize(theList),
        R"({"xx":[42949672951.50000018446744073709551615"text""wide"nullnull],"yy":null,})");
}

TEST(MediaInfoSerializerTest, PackedDataAreWrittenAsEscapedText) {
    OwnedList theList;
    AddPacked(theList, "md", std::string("a%b\0\x01\"'\\\x7F\xFF/", 11));
    AddPacked(theList, "rd", "plain");
    AddPacked(theList, "xe", "%");
    EXPECT_STREQ(vxMediaInfoSerializer::Serialize(theList),
                 R"({"md":"a%25b%00%01%22%27%5C%7F%FF\/","rd":"plain","xe":"%25",})");
}

TEST(MediaInfoSerializerTest, EmptyPackedDataAreAnEmptyText) {
    OwnedList theList;
    AddPacked(theList, "md", "");
    EXPECT_STREQ(vxMediaInfoSerializer::Serialize(theList), R"({"md":"",})");
}

TEST(MediaInfoSerializerTest, EveryByteOfPackedDataSurvives) {
    std::string theBytes;
    for (int i = 0; i < 256; ++i) {
        theBytes += static_cast<char>(i);
    }
    theBytes += "%00%zz%%";
    for (const char* theName : {"md", "rd"}) {
        SCOPED_TRACE(theName);
        OwnedList theList;
        AddPacked(theList, theName, theBytes);
        const OwnedList theCopy(
            vxMediaInfoSerializer::Deserialize(vxMediaInfoSerializer::Serialize(theList)));
        EXPECT_EQ(vxPropertyList_GetCount(theCopy), 1U);
        EXPECT_EQ(BytesOf(ValueOf(theCopy, theName)), theBytes);
    }
}

TEST(MediaInfoSerializerTest, TheListReadHasTheTypesOfTheText) {
    vxtest::Reports theReports;
    const OwnedList theList(vxMediaInfoSerializer::Deserialize(
        R"({"ti":"Blue","du":217000,"fs":5000000000,"fr":23.976,"lv":true,"ud":null,"xe":"a%25"})"));
    ASSERT_NE(static_cast<vxPropertyList*>(theList), nullptr);
    EXPECT_EQ(vxPropertyList_GetCount(theList), 7U);
    EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "ti"), "Blue");
    EXPECT_EQ(vxData_GetType(ValueOf(theList, "du")), kvxDataType_uint32);
    EXPECT_EQ(vxData_Get_uint32(ValueOf(theList, "du")), 217000U);
    EXPECT_EQ(vxData_GetType(ValueOf(theList, "fs")), kvxDataType_uint64);
    EXPECT_EQ(vxData_Get_uint64(ValueOf(theList, "fs")), 5000000000U);
    EXPECT_EQ(vxData_GetType(ValueOf(theList, "fr")), kvxDataType_double);
    EXPECT_EQ(vxData_Get_double(ValueOf(theList, "fr")), 23.976);
    EXPECT_EQ(vxData_Get_uint32(ValueOf(theList, "lv")), 1U);
    EXPECT_EQ(vxData_GetType(ValueOf(theList, "ud")), kvxDataType_Unknown);
    EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "xe"), "a%25");
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST(MediaInfoSerializerTest, TextsOfTheTwoKeysBecomePackedDataOneByOne) {
    const OwnedList theList(vxMediaInfoSerializer::Deserialize(
        R"({"md":["a%00b","","%","c%2"],"rd":"%41","mdx":"%41","MD":"%42","rD":"%43"})"));
    const vxProperty* theProperty = vxPropertyList_Find(theList, "md");
    ASSERT_EQ(vxProperty_GetCount(theProperty), 4U);
    EXPECT_EQ(BytesOf(vxProperty_GetAt(theProperty, 0)), std::string("a\0b", 3));
    EXPECT_EQ(vxData_GetType(vxProperty_GetAt(theProperty, 1)), kvxDataType_Unknown);
    EXPECT_EQ(BytesOf(vxProperty_GetAt(theProperty, 2)), "%");
    EXPECT_EQ(BytesOf(vxProperty_GetAt(theProperty, 3)), "c%2");
    EXPECT_EQ(BytesOf(ValueOf(theList, "rd")), "A");
    EXPECT_EQ(vxProperty_GetCount(vxPropertyList_Find(theList, "rd")), 1U);
    EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "mdx"), "%41");
    EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "MD"), "%42");
    EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "rD"), "%43");
}

TEST(MediaInfoSerializerTest, WideTextsAndNumbersOfTheTwoKeysAreReadToo) {
    vxMediaInfoDeserializerImp theBuilder;
    EXPECT_EQ(theBuilder.MapBegin(), 0);
    EXPECT_EQ(theBuilder.MapKey("md", false), 0);
    EXPECT_EQ(theBuilder.String(L"%41\u00E9", false), 0);
    EXPECT_EQ(theBuilder.U32(5), 0);
    EXPECT_EQ(theBuilder.Identifier("id"), 0);
    EXPECT_EQ(theBuilder.MapEnd(), 0);
    const OwnedList theList(theBuilder.TakePropertyList());
    EXPECT_EQ(BytesOf(ValueOf(theList, "md", 0)), "A\xC3\xA9");
    EXPECT_EQ(vxData_Get_uint32(ValueOf(theList, "md", 1)), 5U);
    EXPECT_EQ(BytesOf(ValueOf(theList, "md", 2)), "id");
}

TEST(MediaInfoSerializerTest, ATextOutsideAPropertyIsRefused) {
    vxMediaInfoDeserializerImp theBuilder;
    EXPECT_EQ(theBuilder.String("md", false), kvxSerialize_NoProperty);
    theBuilder.MapBegin();
    EXPECT_EQ(theBuilder.String("md", false), kvxSerialize_NoProperty);
}

TEST(MediaInfoSerializerTest, AnEmptyTextGivesNoListAndNoRecord) {
    vxtest::Reports theReports;
    EXPECT_EQ(vxMediaInfoSerializer::Deserialize(""), nullptr);
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST(MediaInfoSerializerTest, ABrokenTextIsLoggedAndGivesTheListBuiltSoFar) {
    vxtest::Reports theReports;
    const OwnedList theList(vxMediaInfoSerializer::Deserialize(R"({"ti":"Blue","du":)"));
    EXPECT_EQ(vxPropertyList_GetCount(theList), 2U);
    EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "ti"), "Blue");
    EXPECT_EQ(vxProperty_GetCount(vxPropertyList_Find(theList, "du")), 0U);
    ASSERT_EQ(theReports.Records().size(), 1U);
    const vxtest::LogRecord theRecord = theReports.Records()[0];
    EXPECT_EQ(theRecord.mText, "Cannot deserialize media info '{\"ti\":\"Blue\",\"du\":'\n");
    EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_ERROR);
    EXPECT_EQ(theRecord.mModule, VXLOG_M_DEFAULT);
    EXPECT_THAT(theRecord.mFile, testing::HasSubstr("MediaInfoSerializer"));
}

TEST(MediaInfoSerializerTest, ATextWithoutAnObjectIsLoggedAndGivesNoList) {
    vxtest::Reports theReports;
    EXPECT_EQ(vxMediaInfoSerializer::Deserialize("5"), nullptr);
    EXPECT_EQ(vxMediaInfoSerializer::Deserialize(" "), nullptr);
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("Cannot deserialize media info '5'\n",
                                                   "Cannot deserialize media info ' '\n"));
}

TEST(MediaInfoSerializerTest, AFailureIsLoggedOnlyWhereTheLevelIsAboveThatOfErrors) {
    vxtest::Reports theReports;
    vxLog_SetLevel(VXLOG_M_DEFAULT, VXLOGLEVEL_ERROR);
    EXPECT_EQ(vxMediaInfoSerializer::Deserialize("5"), nullptr);
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    vxLog_SetLevel(VXLOG_M_DEFAULT, VXLOGLEVEL_WARNING);
    EXPECT_EQ(vxMediaInfoSerializer::Deserialize("6"), nullptr);
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("Cannot deserialize media info '6'\n"));
}

TEST(MediaInfoSerializerTest, TextsOfFormatCharactersAreLoggedAsTheyAre) {
    vxtest::Reports theReports;
    EXPECT_EQ(vxMediaInfoSerializer::Deserialize("%s%n"), nullptr);
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("Cannot deserialize media info '%s%n'\n"));
}

}  // namespace
