#include <gmock/gmock.h>

#include "support/Reports.h"
#include "vx/JSON.h"
#include "vx/StringList.h"

namespace {

using testing::IsEmpty;

std::string Text(const vxJSONEntry& anEntry) {
    return anEntry.ToString(false).c_str();
}

/// What a path reads, "(none)" if nothing.
std::string Read(const vxJSONEntry& anEntry, const char* aPath) {
    vxJSONEntry theResult;
    return vxJSONPath::FetchEntry(anEntry, aPath, theResult) ? Text(theResult) : "(none)";
}

// ---- Reading

TEST(JSONPathTest, PathsAreReadAsTheyAreScanned) {
    const vxJSONDocument theDocument(
        "{\"a\":{\"b\":{\"c\":1},\"$\":5},\"list\":[10,{\"name\":\"x\",\"b\":2},[7]],\"$\":[3],"
        "\"\":{\"z\":4},\"with space\":6,\"a]\":8,\"long\":[0,1,2,3,4,5,6,7,8,9,10]}");
    struct Row {
        const char* mPath;
        const char* mResult;
    };
    constexpr Row kRows[] = {
        {"a.b.c", "1"},
        {"a.b", "{\"c\":1}"},
        {"a.x", "(none)"},
        {"a.b.c.d", "(none)"},
        {"A", "(none)"},
        {"with space", "6"},
        {"a]", "8"},
        {"list[0]", "10"},
        {"list[1].name", "\"x\""},
        {"list[1]xname", "\"x\""},  // any one character behind the bracket
        {"list[1][name", "\"x\""},
        {"list[1]name", "(none)"},
        {"list[2]", "[7]"},
        {"list[2][0]", "(none)"},  // no arrays in arrays
        {"list[3]", "(none)"},
        {"list[0x1].b", "2"},
        {"list[01].b", "2"},
        {"list[+1].b", "2"},
        {"long[010]", "8"},
        {"long[08]", "(none)"},
        {"long[0xA]", "10"},
        {"list[-1]", "(none)"},
        {"list[ 1]", "(none)"},
        {"list[]", "(none)"},
        {"list[a.b]", "(none)"},
        {"list[4294967296]", "(none)"},
        {"list[1", "(none)"},
        {"list[", "(none)"},
        {"list[0].", "(none)"},  // ends in a dot
        {"list[0]x", "(none)"},
        {"a[0]", "(none)"},  // no array
        {"none[0]", "(none)"},
        {"[0]", "(none)"},
        {"$.a.b.c", "1"},
        {"$.$.a.b.c", "1"},
        {"a.$.b.c", "1"},
        {"a.$", "5"},  // a name at the end
        {"$", "[3]"},
        {"$[0]", "3"},  // an ordinary named part
        {".z", "4"},
        {"..z", "(none)"},
        {"", "(none)"},
        {".", "(none)"},
        {"a.", "(none)"},
        {"$.", "(none)"},
    };
    vxtest::Reports theReports;
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mPath);
        EXPECT_EQ(Read(theDocument, theRow.mPath), theRow.mResult);
    }
    EXPECT_EQ(Read(theDocument, NULL), "(none)");
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(JSONPathTest, ANameThatBeginsWithADollarIsAMember) {
    const vxJSONDocument theDocument("{\"$x\":{\"b\":1},\"b\":2}");
    EXPECT_EQ(Read(theDocument, "$x.b"), "1");
    EXPECT_EQ(Read(vxJSONEntry(theDocument.mEntry), "$x.b"), "1");
    EXPECT_EQ(Read(theDocument, "$.b"), "2");
}

TEST(JSONPathTest, ADollarStandsForDocumentsOnly) {
    const vxJSONDocument theDocument("{\"a\":{\"b\":1}}");
    EXPECT_EQ(Read(theDocument, "$.a.b"), "1");
    EXPECT_EQ(Read(theDocument["a"], "b"), "1");
    EXPECT_EQ(Read(theDocument["a"], "$.b"), "(none)");
    EXPECT_EQ(Read(vxJSONEntry(theDocument.mEntry), "$.a.b"), "(none)");
}

TEST(JSONPathTest, AWalkStartsAtAnObject) {
    const vxJSONDocument theArray("[1,2]");
    EXPECT_EQ(Read(theArray, "[0]"), "(none)");
    EXPECT_EQ(Read(theArray, "$[0]"), "(none)");
    EXPECT_EQ(Read(theArray, "0"), "(none)");
    EXPECT_EQ(Read(vxJSONEntry(), "a"), "(none)");
    EXPECT_FALSE(vxJSONPath::Set(theArray, "[0]", true, true));
    EXPECT_FALSE(vxJSONPath::Set(vxJSONEntry(), "a", true, true));
    EXPECT_EQ(Text(theArray), "[1,2]");
}

TEST(JSONPathTest, ResultsAreViewsAndFailuresLeaveTheTarget) {
    const vxJSONDocument theDocument("{\"a\":[1]}");
    vxJSONEntry theResult;
    ASSERT_TRUE(vxJSONPath::FetchEntry(theDocument, "a", theResult));
    EXPECT_EQ(theResult.mEntry, theDocument["a"].mEntry);
    EXPECT_FALSE(theResult.mfIsOrphan);
    EXPECT_FALSE(vxJSONPath::FetchEntry(theDocument, "b", theResult));
    EXPECT_EQ(Text(theResult), "[1]");
}

TEST(JSONPathTest, TypedReadsAddTheirChecks) {
    const vxJSONDocument theDocument(
        "{\"o\":{\"x\":1},\"l\":[1],\"s\":\"text\",\"b\":true,\"n\":70000,\"i\":-5,\"d\":0.5,"
        "\"h\":18446744073709551615}");
    vxJSONObject theObject;
    EXPECT_TRUE(vxJSONPath::FetchObject(theDocument, "o", theObject));
    EXPECT_EQ(Text(theObject), "{\"x\":1}");
    EXPECT_FALSE(vxJSONPath::FetchObject(theDocument, "l", theObject));
    vxJSONArray theArray;
    EXPECT_TRUE(vxJSONPath::FetchArray(theDocument, "$.l", theArray));
    EXPECT_FALSE(vxJSONPath::FetchArray(theDocument, "o", theArray));
    EXPECT_EQ(Text(theArray), "[1]");
    vxCString theText;
    EXPECT_TRUE(vxJSONPath::FetchString(theDocument, "s", theText));
    EXPECT_FALSE(vxJSONPath::FetchString(theDocument, "n", theText));
    EXPECT_EQ(theText, "text");
    bool fValue = false;
    EXPECT_TRUE(vxJSONPath::FetchBool(theDocument, "b", &fValue));
    EXPECT_FALSE(vxJSONPath::FetchBool(theDocument, "n", &fValue));
    EXPECT_TRUE(fValue);
    uint64_t theUInt64 = 0;
    EXPECT_TRUE(vxJSONPath::FetchUInt64(theDocument, "h", &theUInt64));
    EXPECT_FALSE(vxJSONPath::FetchUInt64(theDocument, "i", &theUInt64));
    EXPECT_EQ(theUInt64, UINT64_MAX);
    int64_t theInt64 = 0;
    EXPECT_TRUE(vxJSONPath::FetchInt64(theDocument, "i", &theInt64));
    EXPECT_FALSE(vxJSONPath::FetchInt64(theDocument, "h", &theInt64));
    EXPECT_EQ(theInt64, -5);
    uint32_t theUInt32 = 0;
    EXPECT_TRUE(vxJSONPath::FetchUInt32(theDocument, "l[0]", &theUInt32));
    EXPECT_FALSE(vxJSONPath::FetchUInt32(theDocument, "h", &theUInt32));
    EXPECT_EQ(theUInt32, 1u);
    uint16_t theUInt16 = 7;
    EXPECT_FALSE(vxJSONPath::FetchUInt16(theDocument, "n", &theUInt16));
    EXPECT_FALSE(vxJSONPath::FetchUInt16(theDocument, "none", &theUInt16));
    EXPECT_EQ(theUInt16, 7u);
    EXPECT_TRUE(vxJSONPath::FetchUInt16(theDocument, "o.x", &theUInt16));
    EXPECT_EQ(theUInt16, 1u);
}

TEST(JSONPathTest, FetchDoubleFailsOnlyWhereNothingIs) {
    const vxJSONDocument theDocument("{\"d\":0.5,\"i\":-5,\"s\":\"1\"}");
    double theValue = 7;
    EXPECT_FALSE(vxJSONPath::FetchDouble(theDocument, "none", &theValue));
    EXPECT_TRUE(vxJSONPath::FetchDouble(theDocument, "s", &theValue));
    EXPECT_EQ(theValue, 7);
    EXPECT_TRUE(vxJSONPath::FetchDouble(theDocument, "i", &theValue));
    EXPECT_EQ(theValue, -5);
    EXPECT_TRUE(vxJSONPath::FetchDouble(theDocument, "d", &theValue));
    EXPECT_EQ(theValue, 0.5);
}

// ---- Writing

/// Writes 5 into a document; "(none)" if that fails and changes nothing.
std::string Written(const char* aText, const char* aPath, bool afCreate) {
    const vxJSONDocument theDocument(aText);
    const bool fWritten = vxJSONPath::Set(theDocument, aPath, int64_t{5}, afCreate);
    const std::string theResult = Text(theDocument);
    return fWritten ? theResult : theResult == aText ? "(none)" : "failed " + theResult;
}

TEST(JSONPathTest, WritesReplaceCreateAndAppend) {
    struct Row {
        const char* mText;
        const char* mPath;
        const char* mWritten;
        const char* mCreated;
    };
    constexpr Row kRows[] = {
        {"{\"a\":1}", "a", "{\"a\":5}", "{\"a\":5}"},
        {"{\"a\":1}", "$.a", "{\"a\":5}", "{\"a\":5}"},
        {"{\"a\":1}", "b", "(none)", "{\"a\":1,\"b\":5}"},
        {"{}", "a.b.c", "(none)", "{\"a\":{\"b\":{\"c\":5}}}"},
        {"{\"a\":{}}", "a.b", "(none)", "{\"a\":{\"b\":5}}"},
        {"{\"a\":1}", "a.b", "(none)", "(none)"},  // no object
        {"{\"a\":[1]}", "a.b", "(none)", "(none)"},
        {"{\"a\":1}", "a.b.c", "(none)", "(none)"},
        {"{\"a\":[10,20]}", "a[1]", "{\"a\":[10,5]}", "{\"a\":[10,5]}"},
        {"{\"a\":[10,20]}", "a[2]", "(none)", "{\"a\":[10,20,5]}"},
        {"{\"a\":[10,20]}", "a[3]", "(none)", "(none)"},
        {"{\"a\":[10,20]}", "a[2].", "(none)", "{\"a\":[10,20,5]}"},
        {"{\"a\":[10,20]}", "a[1].", "(none)", "(none)"},
        {"{\"a\":[10,20]}", "a[2].b", "(none)", "{\"a\":[10,20,{\"b\":5}]}"},
        {"{\"a\":[10,20]}", "a[2].b.c", "(none)", "(none)"},
        {"{\"a\":[10,20]}", "a[1].b", "(none)", "(none)"},
        {"{\"a\":[{}]}", "a[0].b", "(none)", "{\"a\":[{\"b\":5}]}"},
        {"{\"a\":[{\"b\":1}]}", "a[0].b", "{\"a\":[{\"b\":5}]}", "{\"a\":[{\"b\":5}]}"},
        {"{}", "a[0]", "(none)", "{\"a\":[5]}"},
        {"{}", "a[1]", "(none)", "failed {\"a\":[]}"},
        {"{}", "a[0].b", "(none)", "{\"a\":[{\"b\":5}]}"},
        {"{}", "[0]", "(none)", "{\"\":[5]}"},
        {"{}", "a.b.", "(none)", "failed {\"a\":{\"b\":{}}}"},
        {"{\"a\":{}}", "a[0]", "(none)", "(none)"},
        {"{\"$\":1}", "$", "{\"$\":5}", "{\"$\":5}"},
        {"{}", "$", "(none)", "{\"$\":5}"},
        {"{}", "$[0]", "(none)", "{\"$\":[5]}"},
        {"{}", "", "(none)", "(none)"},
        {"{}", "a[x]", "(none)", "(none)"},
        {"{\"a\":1,\"a\":2}", "a", "{\"a\":5,\"a\":2}", "{\"a\":5,\"a\":2}"},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(std::string(theRow.mText) + " " + theRow.mPath);
        EXPECT_EQ(Written(theRow.mText, theRow.mPath, false), theRow.mWritten);
        EXPECT_EQ(Written(theRow.mText, theRow.mPath, true), theRow.mCreated);
    }
    EXPECT_EQ(Written("{}", NULL, true), "(none)");
}

TEST(JSONPathTest, EveryKindOfValueIsWritten) {
    const vxJSONDocument theDocument(kvxJSONDocumentRoot_Object);
    const vxJSONDocument theOther("[1,{}]");
    EXPECT_TRUE(vxJSONPath::Set(theDocument, "u", uint64_t{UINT64_MAX}, true));
    EXPECT_TRUE(vxJSONPath::Set(theDocument, "i", int64_t{INT64_MIN}, true));
    EXPECT_TRUE(vxJSONPath::Set(theDocument, "d", 0.5, true));
    EXPECT_TRUE(vxJSONPath::Set(theDocument, "b", true, true));
    EXPECT_TRUE(vxJSONPath::Set(theDocument, "s", "text", true));
    EXPECT_TRUE(vxJSONPath::Set(theDocument, "e", theOther, true));
    EXPECT_TRUE(vxJSONPath::Set(theDocument, "l", vxCSVStringList("x,y"), true));
    EXPECT_TRUE(vxJSONPath::SetNull(theDocument, "n", true));
    EXPECT_FALSE(vxJSONPath::Set(theDocument, "v", vxJSONEntry(), true));
    EXPECT_FALSE(vxJSONPath::SetNull(theDocument, "w", false));
    EXPECT_EQ(Text(theDocument),
              "{\"u\":18446744073709551615,\"i\":-9223372036854775808,\"d\":0.5,\"b\":true,"
              "\"s\":\"text\",\"e\":[1,{}],\"l\":[\"x\",\"y\"],\"n\":null}");
    EXPECT_EQ(Text(theOther), "[1,{}]");
}

TEST(JSONPathTest, AListReplacesNoItemButCanBeAppended) {
    const vxJSONDocument theDocument("{\"a\":[1],\"b\":2}");
    const vxCSVStringList theList("x,y");
    EXPECT_FALSE(vxJSONPath::Set(theDocument, "a[0]", theList, true));
    EXPECT_TRUE(vxJSONPath::Set(theDocument, "b", theList, false));
    EXPECT_TRUE(vxJSONPath::Set(theDocument, "a[1]", theList, true));
    EXPECT_EQ(Text(theDocument), "{\"a\":[1,[\"x\",\"y\"]],\"b\":[\"x\",\"y\"]}");
}

TEST(JSONPathTest, ATreeIsWrittenIntoItselfAsACopy) {
    const vxJSONDocument theDocument("{\"a\":1}");
    EXPECT_TRUE(vxJSONPath::Set(theDocument, "b.c", theDocument, true));
    EXPECT_EQ(Text(theDocument), "{\"a\":1,\"b\":{\"c\":{\"a\":1}}}");
}

TEST(JSONPathTest, UpdateKeepsTheKindOfTheMember) {
    struct Row {
        const char* mPath;
        const char* mText;
        const char* mResult;  // null: nothing is written
    };
    constexpr Row kRows[] = {
        {"n", "18446744073709551615", "18446744073709551615"},
        {"n", "0", "0"},
        {"n", "1", "1"},
        {"n", "x", NULL},
        {"n", "", NULL},
        {"n", "-1", NULL},
        {"n", "1.5", NULL},
        {"n", "18446744073709551616", NULL},
        {"i", "7", "7"},
        {"d", "7", "7"},
        {"b", "TRUE", "true"},
        {"b", "true", "true"},
        {"b", "1", "true"},
        {"b", "False", "false"},
        {"b", "0", "false"},
        {"b", "yes", NULL},
        {"b", "", NULL},
        {"b", "2", NULL},
        {"s", "any text", "\"any text\""},
        {"s", "", "\"\""},
        {"l[0]", "9", "9"},
        {"l[1]", "9", NULL},
        {"z", "1", NULL},
        {"o", "1", NULL},
        {"l", "1", NULL},
        {"none", "1", NULL},
        {"", "1", NULL},
        {"n", NULL, NULL},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(std::string(theRow.mPath) + " " + (theRow.mText ? theRow.mText : "NULL"));
        constexpr char kText[] =
            "{\"n\":5,\"i\":-5,\"d\":0.5,\"b\":false,\"s\":\"x\",\"z\":null,\"o\":{},\"l\":[1]}";
        const vxJSONDocument theDocument(kText);
        EXPECT_EQ(vxJSONPath::Update(theDocument, theRow.mPath, theRow.mText),
                  theRow.mResult != NULL);
        if (theRow.mResult == NULL) {
            EXPECT_EQ(Text(theDocument), kText);
        } else {
            EXPECT_EQ(Read(theDocument, theRow.mPath), theRow.mResult);
        }
    }
}

// ---- Differences

/// What FetchDiff() writes, "(none)" if it returns false.
std::string Diff(const char* anOld, const char* aNew, const char* aPath, bool afForce) {
    const vxJSONDocument theOld(anOld);
    const vxJSONDocument theNew(aNew);
    vxJSONDocument theDiff(kvxJSONDocumentRoot_Object);
    const bool fDiffers = vxJSONPath::FetchDiff(theOld, theNew, aPath, theDiff, afForce);
    EXPECT_EQ(fDiffers, theDiff.GetCount() != 0);
    EXPECT_EQ(Text(theOld), anOld);
    EXPECT_EQ(Text(theNew), aNew);
    return fDiffers ? Text(theDiff) : "(none)";
}

TEST(JSONPathTest, DifferencesAreWrittenAtTheSamePath) {
    EXPECT_EQ(Diff("{\"a\":1}", "{\"a\":2}", "a", false), "{\"a\":2}");
    EXPECT_EQ(Diff("{\"a\":1}", "{\"a\":1}", "a", false), "(none)");
    EXPECT_EQ(Diff("{\"a\":1}", "{\"a\":1}", "a", true), "{\"a\":1}");
    EXPECT_EQ(Diff("{}", "{}", "a", true), "(none)");
    EXPECT_EQ(Diff("{}", "{\"a\":{\"b\":[1]}}", "$.a.b", false), "{\"a\":{\"b\":[1]}}");
    EXPECT_EQ(Diff("{}", "{\"a\":[1,2]}", "a[0]", false), "{\"a\":[1]}");
    EXPECT_EQ(Diff("{\"a\":{\"x\":1,\"y\":2}}", "{\"a\":{\"y\":2,\"x\":1}}", "a", false), "(none)");
}

TEST(JSONPathTest, WhatWentAwayLeavesItsEmptyKind) {
    EXPECT_EQ(Diff("{\"a\":{\"b\":\"text\"}}", "{}", "a.b", false), "{\"a\":{\"b\":\"\"}}");
    EXPECT_EQ(Diff("{\"a\":5}", "{}", "a", false), "{\"a\":0}");
    EXPECT_EQ(Diff("{\"a\":true}", "{}", "a", true), "{\"a\":false}");
    EXPECT_EQ(Diff("{\"a\":[1,2]}", "{}", "a", false), "{\"a\":[]}");
    EXPECT_EQ(Diff("{\"a\":{\"b\":1}}", "{}", "a", false), "{\"a\":{}}");
}

TEST(JSONPathTest, AListOfPathsDiffersIfAnyDoes) {
    const vxJSONDocument theOld("{\"a\":1,\"b\":2,\"c\":3}");
    const vxJSONDocument theNew("{\"a\":1,\"b\":5}");
    vxJSONDocument theDiff(kvxJSONDocumentRoot_Object);
    EXPECT_TRUE(vxJSONPath::FetchDiff(theOld, theNew, vxCSVStringList("c,b,a,d"), theDiff, false));
    EXPECT_EQ(Text(theDiff), "{\"c\":0,\"b\":5}");
    theDiff.Clear();
    EXPECT_FALSE(vxJSONPath::FetchDiff(theOld, theNew, vxCSVStringList("a,d"), theDiff, false));
    EXPECT_FALSE(vxJSONPath::FetchDiff(theOld, theNew, vxCSVStringList(), theDiff, true));
    EXPECT_EQ(Text(theDiff), "{}");
    EXPECT_TRUE(vxJSONPath::FetchDiff(theOld, theNew, vxCSVStringList("a,d"), theDiff, true));
    EXPECT_EQ(Text(theDiff), "{\"a\":1}");
}

}  // namespace
