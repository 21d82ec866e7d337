#include "vx/JSON.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>

#include "support/Reports.h"
#include "support/SmallStack.h"
#include "vx/StringList.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint32_t kAppend = 0xFFFFFFFF;

std::string Text(const vxJSONEntry& anEntry) {
    return anEntry.ToString(false).c_str();
}

// ---- Constants

TEST(JSONTest, ConstantsHaveTheirValues) {
    EXPECT_EQ(kvxJSON_False, 0x0001);
    EXPECT_EQ(kvxJSON_True, 0x0002);
    EXPECT_EQ(kvxJSON_NULL, 0x0004);
    EXPECT_EQ(kvxJSON_String, 0x0008);
    EXPECT_EQ(kvxJSON_Array, 0x0010);
    EXPECT_EQ(kvxJSON_Object, 0x0020);
    EXPECT_EQ(kvxJSON_Number, 0x0040);
    EXPECT_EQ(kvxJSON_SignedNumber, 0x0080);
    EXPECT_EQ(kvxJSON_Double, 0x0100);
    EXPECT_EQ(kvxJSON_Numeric, 0x01C0);
    EXPECT_EQ(kvxJSONDocumentRoot_Object, 0);
    EXPECT_EQ(kvxJSONDocumentRoot_Array, 1);
    EXPECT_EQ(kvxJSONDocumentRoot_None, 2);
    EXPECT_EQ(kvxJSONPathKind_Array, 1);
    EXPECT_EQ(kvxJSONPathKind_Object, 2);
    EXPECT_EQ(kvxJSONPathKind_Invalid, 3);
    EXPECT_EQ(kvxJSONPathParsing_Object, 0);
    EXPECT_EQ(kvxJSONPathParsing_Index, 1);
}

// ---- Kinds and typed reading

TEST(JSONTest, KindsAreTold) {
    const vxJSONDocument theDocument("[null,true,false,1,-1,1.5,\"x\",[],{}]");
    struct Row {
        bool mfNULL, mfBool, mfTrue, mfFalse, mfNumber, mfString, mfArray, mfObject;
    };
    constexpr Row kRows[] = {
        {true, false, false, false, false, false, false, false},
        {false, true, true, false, false, false, false, false},
        {false, true, false, true, false, false, false, false},
        {false, false, false, false, true, false, false, false},
        {false, false, false, false, true, false, false, false},
        {false, false, false, false, true, false, false, false},
        {false, false, false, false, false, true, false, false},
        {false, false, false, false, false, false, true, false},
        {false, false, false, false, false, false, false, true},
        {false, false, false, false, false, false, false, false},  // none
    };
    for (int i = 0; i < 10; ++i) {
        SCOPED_TRACE(i);
        const vxJSONEntry theEntry = theDocument[i];
        EXPECT_EQ(theEntry.IsValid(), i < 9);
        EXPECT_EQ(theEntry.IsNULL(), kRows[i].mfNULL);
        EXPECT_EQ(theEntry.IsBool(), kRows[i].mfBool);
        EXPECT_EQ(theEntry.IsTrue(), kRows[i].mfTrue);
        EXPECT_EQ(theEntry.IsFalse(), kRows[i].mfFalse);
        EXPECT_EQ(theEntry.IsNumber(), kRows[i].mfNumber);
        EXPECT_EQ(theEntry.IsString(), kRows[i].mfString);
        EXPECT_EQ(theEntry.IsArray(), kRows[i].mfArray);
        EXPECT_EQ(theEntry.IsObject(), kRows[i].mfObject);
        EXPECT_FALSE(theEntry.IsRoot());
    }
    EXPECT_TRUE(theDocument.IsRoot());
}

template <typename T>
std::string Fetched(bool (vxJSONEntry::*aFetch)(T*) const, const char* aText) {
    const vxJSONDocument theDocument(aText);
    T theValue = 7;
    const bool fRead = (theDocument.*aFetch)(&theValue);
    return (fRead ? "read " : "left ") + std::to_string(theValue);
}

TEST(JSONTest, IntegersAreReadWithinTheRangeOfTheirType) {
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt8, "255"), "read 255");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt8, "256"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt8, "-1"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt16, "65535"), "read 65535");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt16, "65536"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt32, "4294967295"), "read 4294967295");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt32, "4294967296"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt64, "18446744073709551615"),
              "read 18446744073709551615");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt64, "18446744073709551616"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt8, "-128"), "read -128");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt8, "-129"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt8, "127"), "read 127");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt8, "128"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt16, "-32768"), "read -32768");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt16, "-32769"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt16, "32767"), "read 32767");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt16, "32768"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt32, "-2147483648"), "read -2147483648");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt32, "-2147483649"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt32, "2147483647"), "read 2147483647");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt32, "2147483648"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt64, "-9223372036854775808"),
              "read -9223372036854775808");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt64, "9223372036854775807"), "read 9223372036854775807");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt64, "9223372036854775808"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt32, "1.0"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchInt32, "\"1\""), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt32, "true"), "left 7");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchUInt32, "[]"), "left 7");
}

TEST(JSONTest, FetchDoubleIsAlwaysTrueAndWritesOnlyNumbers) {
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchDouble, "1.5"), "read 1.500000");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchDouble, "-3"), "read -3.000000");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchDouble, "18446744073709551615"),
              "read 18446744073709551616.000000");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchDouble, "\"2\""), "read 7.000000");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchDouble, "null"), "read 7.000000");
    EXPECT_EQ(Fetched(&vxJSONEntry::FetchDouble, "{}"), "read 7.000000");
    double theValue = 7;
    EXPECT_TRUE(vxJSONEntry().FetchDouble(&theValue));
    EXPECT_EQ(theValue, 7);
}

TEST(JSONTest, BooleansAndStringsAreReadFromTheirKindOnly) {
    const vxJSONDocument theDocument("[true,false,\"text\",1,null]");
    bool fValue = false;
    EXPECT_TRUE(theDocument[0].FetchBool(&fValue));
    EXPECT_TRUE(fValue);
    EXPECT_FALSE(theDocument[3].FetchBool(&fValue));
    EXPECT_FALSE(theDocument[4].FetchBool(&fValue));
    EXPECT_TRUE(fValue);
    EXPECT_TRUE(theDocument[1].FetchBool(&fValue));
    EXPECT_FALSE(fValue);
    vxCString theText = "before";
    EXPECT_FALSE(theDocument[3].FetchString(theText));
    EXPECT_FALSE(theDocument[9].FetchString(theText));
    EXPECT_EQ(theText, "before");
    EXPECT_TRUE(theDocument[2].FetchString(theText));
    EXPECT_EQ(theText, "text");
}

TEST(JSONTest, ContainersAreFetchedAsViews) {
    const vxJSONDocument theDocument("[{\"a\":1},[2],3]");
    vxJSONObject theObject;
    vxJSONArray theArray;
    theArray.CreateEmpty();
    theObject.CreateEmpty();
    EXPECT_FALSE(theDocument[1].FetchObject(theObject));
    EXPECT_FALSE(theDocument[0].FetchArray(theArray));
    EXPECT_EQ(Text(theObject) + Text(theArray), "{}[]");
    EXPECT_TRUE(theDocument[0].FetchObject(theObject));
    EXPECT_TRUE(theDocument[1].FetchArray(theArray));
    EXPECT_FALSE(theObject.mfIsOrphan);
    EXPECT_FALSE(theArray.mfIsOrphan);
    theObject.Set("b", true);
    theArray.Insert(true, 0);
    EXPECT_EQ(Text(theDocument), "[{\"a\":1,\"b\":true},[true,2],3]");
}

TEST(JSONTest, FetchDocumentMakesACopy) {
    const vxJSONDocument theDocument("{\"a\":{\"b\":[1,\"x\"]},\"c\":5}");
    vxJSONDocument theCopy(kvxJSONDocumentRoot_Array);
    EXPECT_FALSE(theDocument["c"].FetchDocument(theCopy));
    EXPECT_FALSE(theDocument["none"].FetchDocument(theCopy));
    EXPECT_EQ(Text(theCopy), "[]");
    EXPECT_TRUE(theDocument["a"].FetchDocument(theCopy));
    theDocument["a"].AsObject().Remove("b");
    EXPECT_EQ(Text(theCopy), "{\"b\":[1,\"x\"]}");
    EXPECT_TRUE(theCopy["b"].FetchDocument(theCopy));
    EXPECT_EQ(Text(theCopy), "[1,\"x\"]");
}

TEST(JSONTest, WrongAccessIsLoggedAboveTheWarningLevelOnly) {
    const vxJSONDocument theDocument("[{},[]]");
    vxtest::Reports theReports;
    EXPECT_TRUE(theDocument[0].AsObject().IsValid());
    EXPECT_TRUE(theDocument[1].AsArray().IsValid());
    vxLog_SetLevel(VXLOG_M_JSON, VXLOGLEVEL_WARNING);
    EXPECT_FALSE(theDocument[1].AsObject().IsValid());
    EXPECT_FALSE(theDocument[0].AsArray().IsValid());
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    vxLog_SetLevel(VXLOG_M_JSON, VXLOGLEVEL_INFO);
    EXPECT_FALSE(theDocument[1].AsObject().IsValid());
    EXPECT_FALSE(theDocument[0].AsArray().IsValid());
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("Cannot access a JSONDocument as an object\n",
                                                   "Cannot access a JSONDocument as an array\n"));
    for (const vxtest::LogRecord& theRecord : theReports.Records()) {
        EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_WARNING);
        EXPECT_EQ(theRecord.mModule, VXLOG_M_JSON);
        EXPECT_THAT(theRecord.mFile, testing::EndsWith("Libs/Internal/vx/documents/JSON.cpp"));
    }
}

// ---- Entries

TEST(JSONTest, MembersAreSetInPlaceOrAtTheEnd) {
    vxJSONDocument theDocument("{\"a\":1,\"b\":2}");
    const vxJSONDocument theOther("{\"x\":[1]}");
    theDocument.Set("a", "text");
    theDocument.Set("c", 1.5);
    theDocument.Set("d", static_cast<uint64_t>(UINT64_MAX));
    theDocument.Set("e", static_cast<int64_t>(-5));
    theDocument.Set("b", true);
    theDocument.SetNull("f");
    theDocument.Set("g", theOther["x"]);
    theDocument.Set("h", vxJSONEntry());
    EXPECT_EQ(Text(theDocument),
              "{\"a\":\"text\",\"b\":true,\"c\":1.5,\"d\":18446744073709551615,\"e\":-5,"
              "\"f\":null,\"g\":[1]}");
    EXPECT_EQ(Text(theOther), "{\"x\":[1]}");
}

TEST(JSONTest, SettingMembersOfAnythingElseIsReported) {
    vxJSONDocument theDocument(kvxJSONDocumentRoot_Array);
    vxJSONEntry theNone;
    vxtest::Reports theReports;
    theDocument.Set("a", true);
    theDocument.Set("a", "x");
    theDocument.Set("a", 1.0);
    theDocument.Set("a", static_cast<uint64_t>(1));
    theDocument.Set("a", static_cast<int64_t>(1));
    theDocument.Set("a", theDocument);
    theNone.SetNull("a");
    EXPECT_EQ(Text(theDocument), "[]");
    EXPECT_EQ(theReports.Assertions(),
              std::vector<std::string>(7, "vxJSON_Is(mEntry, kvxJSON_Object)"));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile,
                testing::EndsWith("Libs/Internal/vx/documents/JSON.cpp"));
}

TEST(JSONTest, ChildrenAreFoundByPositionAndName) {
    const vxJSONDocument theDocument("{\"list\":[10,20],\"a\":1,\"a\":2,\"A\":3}");
    EXPECT_EQ(Text(theDocument["list"][0]), "10");
    EXPECT_EQ(Text(theDocument["list"][1]), "20");
    EXPECT_FALSE(theDocument["list"][2].IsValid());
    EXPECT_EQ(Text(theDocument["a"]), "1");
    EXPECT_FALSE(theDocument["b"].IsValid());
    EXPECT_FALSE(theDocument["list"]["a"].IsValid());
    EXPECT_FALSE(theDocument["a"][0].IsValid());
    EXPECT_FALSE(theDocument["none"]["none"][5].IsValid());
    EXPECT_EQ(theDocument[3].GetName(), "A");
    EXPECT_EQ(theDocument.GetCount(), 4u);
    EXPECT_EQ(theDocument["list"].GetCount(), 2u);
    EXPECT_EQ(theDocument["a"].GetCount(), 0u);
    EXPECT_EQ(vxJSONEntry().GetCount(), 0u);
    EXPECT_TRUE(theDocument.Contains("list"));
    EXPECT_FALSE(theDocument.Contains("List"));
    EXPECT_EQ(theDocument.GetName(), "");
    EXPECT_EQ(theDocument["list"][0].GetName(), "");
    vxtest::Reports theReports;
    EXPECT_FALSE(theDocument["list"][-1].IsValid());
    EXPECT_THAT(theReports.Assertions(), ElementsAre("anIndex >= 0"));
}

TEST(JSONTest, RawValuesAreTheBareText) {
    const vxJSONDocument theDocument("[\"a\\\"b\",5,1.5,true,null,[1]]");
    EXPECT_EQ(theDocument[0].GetRawValue(), "a\"b");
    EXPECT_EQ(theDocument[1].GetRawValue(), "5");
    EXPECT_EQ(theDocument[2].GetRawValue(), "1.5");
    EXPECT_EQ(theDocument[3].GetRawValue(), "true");
    EXPECT_EQ(theDocument[4].GetRawValue(), "null");
    EXPECT_EQ(theDocument[5].GetRawValue(), "[1]");
    EXPECT_EQ(vxJSONEntry().GetRawValue(), "");
}

TEST(JSONTest, TextIsIndentedOrCompact) {
    const vxJSONDocument theDocument("{\"a\":[1]}");
    EXPECT_EQ(theDocument.ToString(true), "{\n    \"a\": [\n        1\n    ]\n}");
    EXPECT_EQ(theDocument.ToString(false), "{\"a\":[1]}");
    char* theText = theDocument["a"].ToCharPtr(false);
    EXPECT_STREQ(theText, "[1]");
    free(theText);
    EXPECT_EQ(vxJSONEntry().ToString(true), "");
    EXPECT_EQ(vxJSONEntry().ToCharPtr(true), nullptr);
}

TEST(JSONTest, EntriesAreComparedResetAndCleared) {
    vxJSONDocument theDocument("{\"a\":[1,2],\"b\":[1.0,2],\"c\":\"x\"}");
    EXPECT_TRUE(theDocument["a"].SameAs(theDocument["b"]));
    EXPECT_FALSE(theDocument["a"].SameAs(theDocument["c"]));
    EXPECT_FALSE(theDocument["a"].SameAs(vxJSONEntry()));
    EXPECT_TRUE(vxJSONEntry().SameAs(vxJSONEntry()));
    theDocument["a"].Reset();
    theDocument["b"].Clear();
    theDocument["c"].Clear();
    EXPECT_EQ(Text(theDocument), "{\"a\":[],\"b\":[],\"c\":\"x\"}");
    theDocument["c"].Reset();
    EXPECT_EQ(Text(theDocument), "{\"a\":[],\"b\":[],\"c\":\"\"}");
    vxJSONEntry().Reset();
    vxJSONEntry().Clear();
}

// ---- Ownership. AddressSanitizer tells where one of these frees too little or twice.

TEST(JSONOwnershipTest, APlainEntryNeverFrees) {
    vxJSON_t* theNode = vxJSON_CreateArray();
    {
        vxJSONEntry theEntry;
        theEntry.SetEntry(theNode, true);
    }
    EXPECT_NE(vxJSON_Is(theNode, kvxJSON_Array), 0);
    vxJSON_Delete(theNode);
}

TEST(JSONOwnershipTest, ObjectsAndArraysFreeWhatTheyOwn) {
    vxJSON_t* theNode = vxJSON_CreateObject();
    { const vxJSONObject theView(theNode); }
    vxJSONObject theOwner(theNode);
    theOwner.mfIsOrphan = true;
    vxJSONArray theArray;
    theArray.SetEntry(vxJSON_CreateArray(), true);
    EXPECT_EQ(Text(theOwner) + Text(theArray), "{}[]");
}

TEST(JSONOwnershipTest, SetEntryFreesWhatTheEntryOwned) {
    vxJSON_t* theKept = vxJSON_CreateNull();
    vxJSONEntry theEntry;
    theEntry.SetEntry(vxJSON_CreateArray(), true);
    theEntry.SetEntry(theKept, false);
    EXPECT_EQ(theEntry.mEntry, theKept);
    EXPECT_FALSE(theEntry.mfIsOrphan);
    theEntry.SetEntry(theKept, true);
    theEntry.SetEntry(theKept, true);
    EXPECT_TRUE(theEntry.IsNULL());
    theEntry.SetEntry(NULL, false);
    EXPECT_FALSE(theEntry.IsValid());
}

TEST(JSONOwnershipTest, CopiesAreViewsWithTheSameFlag) {
    vxJSONObject theOwner;
    theOwner.CreateEmpty();
    vxJSONObject theCopy = theOwner;
    EXPECT_EQ(theCopy.mEntry, theOwner.mEntry);
    EXPECT_TRUE(theCopy.mfIsOrphan);
    theCopy.mfIsOrphan = false;
    vxJSONEntry theAssigned;
    theAssigned = theOwner;
    EXPECT_EQ(theAssigned.mEntry, theOwner.mEntry);
    EXPECT_TRUE(theAssigned.mfIsOrphan);
}

TEST(JSONOwnershipTest, CloneToAlwaysLeavesAnOwner) {
    const vxJSONDocument theDocument("{\"a\":[1]}");
    vxJSONEntry theEntry;
    theDocument["a"].CloneTo(theEntry);
    EXPECT_TRUE(theEntry.mfIsOrphan);
    EXPECT_EQ(Text(theEntry), "[1]");
    vxJSON_Delete(theEntry.mEntry);
    vxJSONArray theArray;
    theDocument["a"].CloneTo(theArray);
    theDocument["a"].CloneTo(theArray);
    EXPECT_EQ(Text(theArray), "[1]");
    vxJSONArray theNone;
    vxJSONEntry().CloneTo(theNone);
    EXPECT_TRUE(theNone.mfIsOrphan);
    EXPECT_FALSE(theNone.IsValid());
}

TEST(JSONOwnershipTest, InsertingClearsTheGiver) {
    vxJSONObject theObject;
    vxJSONObject theMember;
    vxJSONArray theList;
    theMember.CreateEmpty();
    theList.CreateEmpty();
    theObject.Add(vxJSONPair("member", theMember), false);
    theObject.Add(vxJSONPair("list", theList), false);
    EXPECT_FALSE(theMember.IsValid());
    EXPECT_FALSE(theList.IsValid());
    vxJSONArray theArray;
    theArray.Insert(theObject, kAppend);
    EXPECT_FALSE(theObject.IsValid());
    EXPECT_EQ(Text(theArray), "[{\"member\":{},\"list\":[]}]");
}

TEST(JSONOwnershipTest, APairFreesWhatNobodyTook) {
    const vxJSONPair thePair("a", "text");
    EXPECT_EQ(thePair.GetName(), "a");
    EXPECT_EQ(Text(thePair), "\"text\"");
}

TEST(JSONOwnershipTest, CopyingAPairMovesItsNode) {
    vxJSONPair thePair("a", true);
    vxJSONPair theCopy(thePair);
    EXPECT_FALSE(thePair.IsValid());
    vxJSONPair theMoved(std::move(theCopy));
    EXPECT_FALSE(theCopy.IsValid());
    vxJSONObject theObject;
    theObject.Add(theMoved, false);
    EXPECT_FALSE(theMoved.IsValid());
    theObject.Add(theMoved, false);
    EXPECT_EQ(Text(theObject), "{\"a\":true}");
}

TEST(JSONOwnershipTest, ACopiedDocumentReportsTwiceAndIsFreed) {
    vxtest::Reports theReports;
    {
        const vxJSONDocument theDocument("[1]");
        const vxJSONDocument theCopy(theDocument);
        EXPECT_THAT(theReports.Assertions(), ElementsAre("mfIsOrphan"));
        EXPECT_EQ(Text(theCopy), "[1]");
        EXPECT_NE(theCopy.mEntry, theDocument.mEntry);
        EXPECT_FALSE(theCopy.mfIsOrphan);
    }
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mfIsOrphan", "mfIsOrphan"));
}

TEST(JSONOwnershipTest, ANodeThatBelongsToATreeStaysThere) {
    const vxJSONDocument theDocument("{\"a\":[1]}");
    vxtest::Reports theReports;
    vxJSONEntry theView = theDocument["a"];
    vxJSONArray theArray;
    theArray.Insert(theView, kAppend);
    EXPECT_TRUE(theView.IsValid());
    EXPECT_EQ(Text(theDocument) + Text(theArray), "{\"a\":[1]}[]");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("vxJSON: the item belongs to a tree"));
}

TEST(JSONOwnershipTest, ATreeNeverBecomesItsOwnMember) {
    vxJSONDocument theDocument("{\"a\":[[]]}");
    vxJSONArray theInner = theDocument["a"][0].AsArray();
    vxtest::Reports theReports;
    theInner.Insert(theDocument, 0);
    theInner.Insert(theInner, 0);
    EXPECT_EQ(Text(theDocument), "{\"a\":[[]]}");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("vxJSON: the item holds the target",
                                                     "vxJSON: the item belongs to a tree",
                                                     "vxJSON: the item holds the target"));
}

TEST(JSONOwnershipTest, AMillionLevelsAreFreedOnASmallStack) {
    vxtest::OnSmallStack([] {
        vxJSONDocument theDocument(kvxJSONDocumentRoot_Array);
        vxJSONArray theInner = theDocument.AsArray();
        for (int i = 0; i < 1000000; ++i) {
            theInner = theInner.InsertArray(kAppend);
        }
        vxJSONDocument theClone(kvxJSONDocumentRoot_None);
        theDocument.CloneTo(theClone);
        EXPECT_TRUE(theDocument.SameAs(theClone));
        EXPECT_EQ(theClone.ToString(false).length(), 2000002u);
    });
}

// ---- Objects

TEST(JSONObjectTest, AnObjectIsCreatedOnDemand) {
    vxJSONObject theObject;
    EXPECT_FALSE(theObject.IsValid());
    theObject.CreateIfNone();
    vxJSON_t* theNode = theObject.mEntry;
    theObject.CreateIfNone();
    EXPECT_EQ(theObject.mEntry, theNode);
    EXPECT_TRUE(theObject.mfIsOrphan);
    theObject.Set("a", true);
    theObject.CreateEmpty();
    EXPECT_EQ(Text(theObject), "{}");
}

TEST(JSONObjectTest, CreateEmptyLetsGoOfAView) {
    const vxJSONDocument theDocument("{\"a\":{\"b\":1}}");
    vxJSONObject theObject = theDocument["a"].AsObject();
    theObject.CreateEmpty();
    theObject.Set("c", true);
    EXPECT_EQ(Text(theDocument) + Text(theObject), "{\"a\":{\"b\":1}}{\"c\":true}");
}

TEST(JSONObjectTest, AnObjectHandleOnSomethingElseIsReported) {
    vxJSONDocument theDocument(kvxJSONDocumentRoot_Array);
    vxJSONObject theObject(theDocument.mEntry);
    vxtest::Reports theReports;
    theObject.CreateIfNone();
    theObject.Add(vxJSONPair("a", 1), false);
    EXPECT_FALSE(theObject.AddObject("a").IsValid());
    EXPECT_FALSE(theObject.AddArray("a").IsValid());
    EXPECT_FALSE(theObject.AddRawJSONObject("a", "{}").IsValid());
    EXPECT_EQ(theReports.Assertions(),
              std::vector<std::string>(5, "vxJSON_Is(mEntry, kvxJSON_Object)"));
    EXPECT_FALSE(theObject.Remove("a"));
    EXPECT_EQ(Text(theDocument), "[]");
}

TEST(JSONObjectTest, PairsOfEveryKindAreAdded) {
    const vxJSONDocument theDocument("[1]");
    vxJSONObject theObject;
    theObject.Add(vxJSONPair("null"), false);
    theObject.Add(vxJSONPair("bool", true), false);
    theObject.Add(vxJSONPair("uint32", uint32_t{4294967295}), false);
    theObject.Add(vxJSONPair("uint64", uint64_t{UINT64_MAX}), false);
    theObject.Add(vxJSONPair("int32", -5), false);
    theObject.Add(vxJSONPair("double", 0.5), false);
    theObject.Add(vxJSONPair("text", "x"), false);
    theObject.Add(vxJSONPair("document", theDocument), false);
    EXPECT_EQ(Text(theObject),
              "{\"null\":null,\"bool\":true,\"uint32\":4294967295,\"uint64\":18446744073709551615,"
              "\"int32\":-5,\"double\":0.5,\"text\":\"x\",\"document\":[1]}");
    EXPECT_NE(vxJSON_Is(theObject["uint32"].mEntry, kvxJSON_Number), 0);
    EXPECT_NE(vxJSON_Is(theObject["int32"].mEntry, kvxJSON_SignedNumber), 0);
    EXPECT_EQ(Text(theDocument), "[1]");
}

TEST(JSONObjectTest, PairsOfNothingAreReported) {
    vxJSONObject theNoObject;
    vxJSONArray theNoArray;
    const vxJSONDocument theNoDocument(kvxJSONDocumentRoot_None);
    vxJSONObject theObject;
    vxtest::Reports theReports;
    theObject.Add(vxJSONPair("a", theNoObject), false);
    theObject.Add(vxJSONPair("a", theNoArray), true);
    theObject.Add(vxJSONPair("a", theNoDocument), false);
    EXPECT_EQ(Text(theObject), "{}");
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("anObject.mEntry != NULL", "anArray.mEntry != NULL",
                            "aDocument.mEntry != NULL"));
}

TEST(JSONObjectTest, AddKeepsMembersOfOneNameUnlessItReplaces) {
    vxJSONObject theObject;
    theObject.Add(vxJSONPair("a", 1), false);
    theObject.Add(vxJSONPair("a", 2), false);
    EXPECT_EQ(Text(theObject), "{\"a\":1,\"a\":2}");
    theObject.Add(vxJSONPair("a", 3), true);
    theObject.Add(vxJSONPair("b", 4), true);
    EXPECT_EQ(Text(theObject), "{\"a\":3,\"a\":2,\"b\":4}");
}

TEST(JSONObjectTest, RemoveFreesTheFirstOfAName) {
    vxJSONDocument theDocument("{\"a\":1,\"b\":2,\"a\":3}");
    vxJSONObject theObject = theDocument.AsObject();
    EXPECT_TRUE(theObject.Remove("a"));
    EXPECT_EQ(Text(theObject), "{\"b\":2,\"a\":3}");
    EXPECT_FALSE(theObject.Remove("c"));
    EXPECT_FALSE(vxJSONObject().Remove("a"));
    EXPECT_FALSE(vxJSONObject(theDocument["b"].mEntry).Remove("a"));
}

TEST(JSONObjectTest, MovePutsAMemberAtTheEndOfAnother) {
    vxJSONDocument theDocument("{\"a\":{\"x\":1},\"b\":{\"y\":2}}");
    vxJSONObject theFrom = theDocument["a"].AsObject();
    const vxJSONObject theTo = theDocument["b"].AsObject();
    EXPECT_TRUE(theFrom.Move("x", theTo));
    EXPECT_EQ(Text(theDocument), "{\"a\":{},\"b\":{\"y\":2,\"x\":1}}");
    EXPECT_FALSE(theFrom.Move("x", theTo));
}

TEST(JSONObjectTest, MoveWithoutATargetChangesNothing) {
    vxJSONDocument theDocument("{\"a\":{\"b\":{}},\"c\":1}");
    vxJSONObject theObject = theDocument.AsObject();
    vxtest::Reports theReports;
    EXPECT_FALSE(theObject.Move("a", vxJSONObject()));
    EXPECT_EQ(Text(theDocument), "{\"a\":{\"b\":{}},\"c\":1}");
    EXPECT_FALSE(theObject.Move("a", theDocument["a"]["b"].AsObject()));
    EXPECT_EQ(Text(theDocument), "{\"c\":1,\"a\":{\"b\":{}}}");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("vxJSON_Is(aTarget.mEntry, kvxJSON_Object)",
                                                     "vxJSON: the item holds the target"));
}

TEST(JSONObjectTest, TakeGivesAMemberAway) {
    vxJSONDocument theDocument("{\"a\":[1],\"b\":2}");
    vxJSONObject theObject = theDocument.AsObject();
    vxJSONArray theArray;
    EXPECT_TRUE(theObject.Take("a", theArray));
    EXPECT_TRUE(theArray.mfIsOrphan);
    EXPECT_EQ(Text(theDocument) + Text(theArray), "{\"b\":2}[1]");
    EXPECT_FALSE(theObject.Take("a", theArray));
    EXPECT_EQ(Text(theArray), "[1]");
}

TEST(JSONObjectTest, ContainersAreAddedOnce) {
    vxJSONObject theObject;
    vxJSONObject theInner = theObject.AddObject("a");
    EXPECT_FALSE(theInner.mfIsOrphan);
    theInner.Set("x", true);
    EXPECT_EQ(theObject.AddObject("a").mEntry, theInner.mEntry);
    EXPECT_EQ(theObject.AddArray("a").mEntry, theInner.mEntry);
    theObject.AddArray("b").Insert("y", kAppend);
    EXPECT_EQ(Text(theObject), "{\"a\":{\"x\":true},\"b\":[\"y\"]}");
}

TEST(JSONObjectTest, RawTextReplacesAllMembersOfItsName) {
    vxJSONDocument theDocument("{\"a\":1,\"b\":2,\"a\":3}");
    vxJSONObject theObject = theDocument.AsObject();
    const vxJSONObject theRaw = theObject.AddRawJSONObject("a", "{\"x\":[1]}");
    EXPECT_FALSE(theRaw.mfIsOrphan);
    EXPECT_EQ(Text(theRaw["x"]), "[1]");
    EXPECT_EQ(Text(theObject.AddRawJSONArray("c", "[5]")), "[5]");
    EXPECT_EQ(Text(theDocument), "{\"b\":2,\"a\":{\"x\":[1]},\"c\":[5]}");
    const char* theName = vxJSON_GetName(theDocument["b"].mEntry);
    EXPECT_TRUE(theObject.AddRawJSONArray(theName, "[]").IsValid());
    EXPECT_EQ(Text(theDocument), "{\"a\":{\"x\":[1]},\"c\":[5],\"b\":[]}");
}

TEST(JSONObjectTest, RawTextOfAnotherKindChangesNothing) {
    vxJSONDocument theDocument("{\"a\":1}");
    vxJSONObject theObject = theDocument.AsObject();
    EXPECT_FALSE(theObject.AddRawJSONObject("a", "[1]").IsValid());
    EXPECT_FALSE(theObject.AddRawJSONArray("a", "{}").IsValid());
    EXPECT_FALSE(theObject.AddRawJSONArray("a", "5").IsValid());
    EXPECT_FALSE(theObject.AddRawJSONObject("a", "{").IsValid());
    EXPECT_FALSE(theObject.AddRawJSONObject("a", NULL).IsValid());
    EXPECT_EQ(Text(theDocument), "{\"a\":1}");
    vxJSONObject theNone;
    EXPECT_FALSE(theNone.AddRawJSONObject("a", "5").IsValid());
    EXPECT_FALSE(theNone.IsValid());
}

// ---- Arrays

TEST(JSONArrayTest, ItemsOfEveryKindAreInserted) {
    const vxJSONDocument theDocument("{\"x\":1}");
    vxJSONArray theArray;
    theArray.Insert(true, kAppend);
    theArray.Insert(1.5, kAppend);
    theArray.Insert(uint64_t{5}, kAppend);
    theArray.Insert(int64_t{-5}, kAppend);
    theArray.Insert("text", 0);
    theArray.InsertNull(1);
    theArray.InsertObject(kAppend).Set("a", true);
    theArray.InsertArray(100).Insert("b", kAppend);
    theArray.InsertCopy(theDocument, 2);
    theArray.InsertCopy(vxJSONEntry(), 2);
    EXPECT_TRUE(theArray.mfIsOrphan);
    EXPECT_EQ(Text(theArray), "[\"text\",null,{\"x\":1},true,1.5,5,-5,{\"a\":true},[\"b\"]]");
    EXPECT_NE(vxJSON_Is(theArray[5].mEntry, kvxJSON_Number), 0);
    EXPECT_NE(vxJSON_Is(theArray[6].mEntry, kvxJSON_SignedNumber), 0);
    EXPECT_EQ(Text(theDocument), "{\"x\":1}");
}

TEST(JSONArrayTest, RemoveFreesAnItem) {
    vxJSONDocument theDocument("[1,2,3]");
    vxJSONArray theArray = theDocument.AsArray();
    EXPECT_FALSE(theArray.Remove(3));
    EXPECT_TRUE(theArray.Remove(2));
    EXPECT_TRUE(theArray.Remove(0));
    EXPECT_EQ(Text(theDocument), "[2]");
    EXPECT_FALSE(vxJSONArray().Remove(0));
    vxJSONDocument theObject("{\"a\":1}");
    EXPECT_FALSE(vxJSONArray(theObject.mEntry).Remove(0));
}

TEST(JSONArrayTest, CreateEmptyLetsGoOfTheNode) {
    const vxJSONDocument theDocument("[[1]]");
    vxJSONArray theArray = theDocument[0].AsArray();
    theArray.CreateEmpty();
    theArray.Insert(true, 0);
    theArray.CreateEmpty();
    EXPECT_EQ(Text(theDocument) + Text(theArray), "[[1]][]");
}

TEST(JSONArrayTest, AnArrayHandleOnSomethingElseIsReported) {
    vxJSONDocument theDocument("{\"a\":1}");
    vxJSONArray theArray(theDocument.mEntry);
    vxJSONEntry theItem;
    theItem.SetEntry(vxJSON_CreateNull(), true);
    vxtest::Reports theReports;
    theArray.CreateIfNone();
    theArray.Insert(true, 0);
    theArray.Insert(1.0, 0);
    theArray.Insert(uint64_t{1}, 0);
    theArray.Insert(int64_t{1}, 0);
    theArray.Insert("x", 0);
    theArray.InsertNull(0);
    EXPECT_FALSE(theArray.InsertObject(0).IsValid());
    EXPECT_FALSE(theArray.InsertArray(0).IsValid());
    theArray.Insert(theItem, 0);
    EXPECT_TRUE(theItem.IsNULL());
    theArray.InsertCopy(theItem, 0);
    theArray.InsertCSVStringList("a,b", 0);
    theArray.InsertCSVInt32List("1,2", 0);
    EXPECT_EQ(theReports.Assertions(),
              std::vector<std::string>(13, "vxJSON_Is(mEntry, kvxJSON_Array)"));
    EXPECT_EQ(Text(theDocument), "{\"a\":1}");
    theItem.SetEntry(NULL, false);
}

TEST(JSONArrayTest, ListsAreInsertedItemByItem) {
    vxJSONDocument theDocument("[\"first\",\"last\"]");
    vxJSONArray theArray = theDocument.AsArray();
    theArray.InsertCSVStringList("a,b\\,c,,d", 1);
    EXPECT_EQ(Text(theDocument), "[\"first\",\"a\",\"b,c\",\"\",\"d\",\"last\"]");
    theArray.InsertCSVStringList("x,y", kAppend);
    EXPECT_EQ(Text(theDocument), "[\"first\",\"a\",\"b,c\",\"\",\"d\",\"last\",\"x\",\"y\"]");
    vxJSONArray theEmpty;
    theEmpty.InsertCSVStringList("", kAppend);
    theEmpty.InsertCSVStringList(NULL, kAppend);
    EXPECT_EQ(Text(theEmpty), "[]");
}

TEST(JSONArrayTest, NumbersThatDoNotConvertTakeNoPosition) {
    vxJSONDocument theDocument("[0,9]");
    vxJSONArray theArray = theDocument.AsArray();
    theArray.InsertCSVInt32List("1,x,-2,2147483648,,2147483647", 1);
    EXPECT_EQ(Text(theDocument), "[0,1,-2,2147483647,9]");
    EXPECT_NE(vxJSON_Is(theDocument[1].mEntry, kvxJSON_SignedNumber), 0);
    theArray.InsertCSVInt32List("5,6", kAppend);
    EXPECT_EQ(Text(theDocument), "[0,1,-2,2147483647,9,5,6]");
}

// ---- Documents

TEST(JSONDocumentTest, RootsAreCreated) {
    const vxJSONDocument theObject(kvxJSONDocumentRoot_Object);
    const vxJSONDocument theArray(kvxJSONDocumentRoot_Array);
    const vxJSONDocument theNone(kvxJSONDocumentRoot_None);
    EXPECT_EQ(Text(theObject) + Text(theArray), "{}[]");
    EXPECT_FALSE(theNone.IsValid());
    EXPECT_TRUE(theObject.mfIsOrphan && theArray.mfIsOrphan && theNone.mfIsOrphan);
}

TEST(JSONDocumentTest, SetRootStartsAnew) {
    vxJSONDocument theDocument("{\"a\":1}");
    theDocument.SetRoot(kvxJSONDocumentRoot_Array);
    EXPECT_EQ(Text(theDocument), "[]");
    theDocument.SetRoot(kvxJSONDocumentRoot_None);
    EXPECT_FALSE(theDocument.IsValid());
    vxtest::Reports theReports;
    theDocument.SetRoot(3);
    EXPECT_FALSE(theDocument.IsValid());
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("(aDocumentRoot == kvxJSONDocumentRoot_Object) || (aDocumentRoot == "
                            "kvxJSONDocumentRoot_Array) || (aDocumentRoot == "
                            "kvxJSONDocumentRoot_None)"));
}

TEST(JSONDocumentTest, TextIsReadOrTheErrorLogged) {
    vxtest::Reports theReports;
    const vxJSONDocument theGood(" [1] ");
    EXPECT_EQ(Text(theGood), "[1]");
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    const vxJSONDocument theBad("{\"a\":tru}");
    EXPECT_FALSE(theBad.IsValid());
    EXPECT_TRUE(theBad.mfIsOrphan);
    vxJSONDocument theDocument("[1]");
    EXPECT_FALSE(theDocument.SetDocument("[1,]"));
    EXPECT_FALSE(theDocument.IsValid());
    EXPECT_TRUE(theDocument.SetDocument("[2]"));
    EXPECT_EQ(Text(theDocument), "[2]");
    EXPECT_FALSE(theDocument.SetDocument(NULL));
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("JSON parsing error at '}' in vxJSONDocument::vxJSONDocument\n",
                            "JSON parsing error ']' in vxJSONDocument::Set\n",
                            "JSON parsing error '' in vxJSONDocument::Set\n"));
    for (const vxtest::LogRecord& theRecord : theReports.Records()) {
        EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_WARNING);
        EXPECT_EQ(theRecord.mModule, VXLOG_M_JSON);
    }
}

TEST(JSONDocumentTest, ErrorsAreQuietAtTheWarningLevel) {
    vxtest::Reports theReports;
    vxLog_SetLevel(VXLOG_M_JSON, VXLOGLEVEL_WARNING);
    vxJSONDocument theDocument("x");
    EXPECT_FALSE(theDocument.SetDocument("y"));
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    vxLog_SetLevel(VXLOG_M_JSON, VXLOGLEVEL_INFO);
    EXPECT_FALSE(theDocument.SetDocument("y"));
    EXPECT_THAT(theReports.LogTexts(),
                ElementsAre("JSON parsing error 'y' in vxJSONDocument::Set\n"));
}

TEST(JSONDocumentTest, ATextMayStandInTheTreeThatItReplaces) {
    vxJSONDocument theDocument("{\"inner\":\"[1,2]\"}");
    EXPECT_TRUE(theDocument.SetDocument(vxJSON_GetValueString(theDocument["inner"].mEntry)));
    EXPECT_EQ(Text(theDocument), "[1,2]");
}

TEST(JSONDocumentTest, SetEntryTakesATree) {
    vxJSONDocument theDocument("[1]");
    theDocument.SetEntry(vxJSON_CreateObject());
    EXPECT_EQ(Text(theDocument), "{}");
    theDocument.SetEntry(vxJSON_CreateArray(), true);
    EXPECT_EQ(Text(theDocument), "[]");
    vxtest::Reports theReports;
    theDocument.SetEntry(theDocument.mEntry);
    EXPECT_EQ(Text(theDocument), "[]");
    theDocument.SetEntry(NULL);
    theDocument.SetEntry(NULL);
    EXPECT_FALSE(theDocument.IsValid());
    EXPECT_THAT(theReports.Assertions(), ElementsAre("(mEntry != anEntry) || (mEntry == NULL)"));
}

TEST(JSONDocumentTest, OperationsOnADocumentThatDoesNotOwnAreReported) {
    vxJSONDocument theDocument("[1]");
    theDocument.mfIsOrphan = false;
    vxtest::Reports theReports;
    theDocument.SetRoot(kvxJSONDocumentRoot_Object);
    EXPECT_TRUE(theDocument.SetDocument("[2]"));
    theDocument.SetEntry(vxJSON_CreateArray());
    EXPECT_EQ(Text(theDocument), "[]");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mfIsOrphan", "mfIsOrphan", "mfIsOrphan"));
    theDocument.mfIsOrphan = true;
}

TEST(JSONDocumentTest, CloneToCopiesIntoAnotherDocument) {
    const vxJSONDocument theDocument("{\"a\":[1]}");
    vxJSONDocument theOther("[2]");
    theDocument.CloneTo(theOther);
    EXPECT_EQ(Text(theOther), "{\"a\":[1]}");
    EXPECT_TRUE(theOther.mfIsOrphan);
    vxJSONEntry theEntry;
    theDocument.CloneTo(theEntry);
    EXPECT_EQ(Text(theEntry), "{\"a\":[1]}");
    vxJSON_Delete(theEntry.mEntry);
}

// ---- MPack

TEST(JSONMPackDictionaryTest, WordsAreNumberedFromZero) {
    const char* kWords[] = {"name", "size", NULL};
    const vxRef<vxMPackDictionary> theDictionary = new vxMPackDictionary(kWords);
    EXPECT_EQ(theDictionary->GetStringIndex("size"), 1);
    EXPECT_EQ(theDictionary->GetStringIndex("Size"), -1);
    EXPECT_STREQ(theDictionary->GetStringAtIndex(0), "name");
    EXPECT_EQ(theDictionary->GetStringAtIndex(2), nullptr);
    EXPECT_NE(theDictionary->GetJSONMPackDictionary(), nullptr);
    const vxRef<vxMPackDictionary> theEmpty = new vxMPackDictionary(NULL);
    EXPECT_EQ(theEmpty->GetStringAtIndex(0), nullptr);
}

TEST(JSONMPackDictionaryTest, TreesTravelThroughEqualDictionaries) {
    const char* kWords[] = {"name", "size", NULL};
    const vxRef<vxMPackDictionary> theSender = new vxMPackDictionary(kWords);
    const vxRef<vxMPackDictionary> theReceiver = new vxMPackDictionary(kWords);
    const vxJSONDocument theDocument("{\"name\":\"x\",\"size\":5,\"other\":[true]}");
    uint32_t theSize = 0;
    uint8_t* theBytes = theDocument.ToMPackBuffer(&theSize, theSender);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(theBytes), theSize),
              std::string("\x83\x00\xA1x\x01\x05\xA5other\x91\xC3", 14));
    vxJSONDocument theResult("[1]");
    EXPECT_TRUE(theResult.FromMPackBuffer(theBytes, theReceiver));
    EXPECT_EQ(Text(theResult), Text(theDocument));
    vxJSONObject theObject;
    EXPECT_TRUE(theObject.FromMPackBuffer(theBytes, theReceiver));
    EXPECT_TRUE(theObject.mfIsOrphan);
    EXPECT_FALSE(theObject.FromMPackBuffer(theBytes, 0));
    EXPECT_FALSE(theObject.IsValid());
    free(theBytes);
}

TEST(JSONMPackDictionaryTest, NothingIsEncodedOrDecodedFromNothing) {
    uint32_t theSize = 7;
    EXPECT_EQ(vxJSONEntry().ToMPackBuffer(&theSize, 0), nullptr);
    vxJSONArray theArray;
    theArray.CreateEmpty();
    EXPECT_FALSE(theArray.FromMPackBuffer(NULL, 0));
    EXPECT_FALSE(theArray.IsValid());
}

}  // namespace
