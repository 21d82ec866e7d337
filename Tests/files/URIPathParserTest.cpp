#include "vx/URIPathParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/Reports.h"

namespace {

using ParserRef = vxRef<vxURIPathParser>;

ParserRef Parse(const char* aPath) {
    return new vxURIPathParser(aPath, true);
}

ParserRef WithoutRecord() {
    return new vxURIPathParser(static_cast<vxURI*>(nullptr));
}

TEST(URIPathParserTest, ARecordIsAdopted) {
    const ParserRef theParser = new vxURIPathParser(vxURI_NewFromPath("/a/b?c=d", false));
    EXPECT_STREQ(theParser->GetPath(), "/a/b");
    EXPECT_TRUE(theParser->HasQueryPart("c"));
}

TEST(URIPathParserTest, TheFlagDecodesThePathOnly) {
    EXPECT_STREQ(ParserRef(new vxURIPathParser("/a%20b?c=%41", true))->GetPath(), "/a b");
    const ParserRef theParser = new vxURIPathParser("/a%20b?c=%41", false);
    EXPECT_STREQ(theParser->GetPath(), "/a%20b");
    vxCString theValue;
    EXPECT_TRUE(theParser->FetchQueryPart("c", theValue, ""));
    EXPECT_STREQ(theValue, "A");
}

TEST(URIPathParserTest, ALengthCutsTheTextBeforeItIsParsed) {
    EXPECT_STREQ(ParserRef(new vxURIPathParser("/items/42", 6U, true))->GetPath(), "/items");
    EXPECT_STREQ(ParserRef(new vxURIPathParser("/items", 0U, true))->GetPath(), "");
    EXPECT_STREQ(ParserRef(new vxURIPathParser("/items\0/42", 10U, true))->GetPath(), "/items");
    EXPECT_STREQ(ParserRef(new vxURIPathParser(nullptr, 5U, true))->GetPath(), "");

    const ParserRef theParser = new vxURIPathParser("/a?b=cd", 6U, true);
    vxCString theValue;
    EXPECT_TRUE(theParser->FetchQueryPart("b", theValue, ""));
    EXPECT_STREQ(theValue, "c");
}

TEST(URIPathParserTest, SetReplacesTheRecord) {
    const ParserRef theParser = Parse("/old?a=1");
    theParser->Set("/new%41", true);
    EXPECT_STREQ(theParser->GetPath(), "/newA");
    EXPECT_FALSE(theParser->HasQueryPart("a"));
    theParser->Set("/new%41", false);
    EXPECT_STREQ(theParser->GetPath(), "/new%41");
    theParser->Set(vxURI_NewFromPath("/third", true));
    EXPECT_STREQ(theParser->GetPath(), "/third");
    theParser->Set(static_cast<vxURI*>(nullptr));
    EXPECT_STREQ(theParser->GetPath(), "");
}

TEST(URIPathParserTest, SettingTheRecordThatIsThereKeepsIt) {
    vxURI* const theURI = vxURI_NewFromPath("/a", true);
    const ParserRef theParser = new vxURIPathParser(theURI);
    theParser->Set(theURI);
    EXPECT_STREQ(theParser->GetPath(), "/a");
    theParser->Set(theURI->mPath, true);
    EXPECT_STREQ(theParser->GetPath(), "/a");
}

TEST(URIPathParserTest, ACloneBelongsToTheCaller) {
    vxURI* theClone = NULL;
    {
        const ParserRef theParser = Parse("/a?b=c");
        theClone = theParser->CloneURI();
    }
    ASSERT_NE(theClone, nullptr);
    EXPECT_STREQ(theClone->mPath, "/a");
    EXPECT_TRUE(vxURI_HasQueryPart(theClone, "b"));
    vxURI_Delete(theClone);
}

TEST(URIPathParserTest, PathsAreComparedWholeAndByTheirBeginning) {
    const ParserRef theParser = Parse("/items/42");
    EXPECT_TRUE(theParser->Is("/items/42"));
    EXPECT_FALSE(theParser->Is("/items/4"));
    EXPECT_FALSE(theParser->Is("/items/421"));
    EXPECT_FALSE(theParser->Is("/Items/42"));
    EXPECT_FALSE(theParser->Is(""));
    EXPECT_TRUE(theParser->BeginWith("/items/42"));
    EXPECT_TRUE(theParser->BeginWith("/it"));
    EXPECT_TRUE(theParser->BeginWith(""));
    EXPECT_FALSE(theParser->BeginWith("/items/421"));
    EXPECT_FALSE(theParser->BeginWith("/Items"));
    EXPECT_FALSE(theParser->BeginWith("items"));
}

TEST(URIPathParserTest, AMissingPathIsAndBeginsWithNothingButTheEmptyText) {
    for (const ParserRef& theParser :
         {WithoutRecord(),
          ParserRef(new vxURIPathParser(static_cast<const char*>(nullptr), true))}) {
        EXPECT_TRUE(theParser->Is(""));
        EXPECT_FALSE(theParser->Is("/"));
        EXPECT_TRUE(theParser->BeginWith(""));
        EXPECT_FALSE(theParser->BeginWith("/"));
        EXPECT_STREQ(theParser->GetPath(), "");
    }
}

TEST(URIPathParserTest, ANullRecordHasNoArguments) {
    const ParserRef theParser = WithoutRecord();
    theParser->SetQuery("a=1");
    EXPECT_EQ(theParser->CloneURI(), nullptr);
    EXPECT_EQ(theParser->GetQueryPartCount(), 0U);
    EXPECT_FALSE(theParser->HasQueryPart("a"));
    vxCString theValue;
    EXPECT_FALSE(theParser->FetchQueryPart("a", theValue, "default"));
    EXPECT_STREQ(theValue, "default");
}

TEST(URIPathParserTest, AFormBodyReplacesTheArguments) {
    const ParserRef theParser = Parse("/a?old=1");
    theParser->SetQuery("new=one+two&more=%2B");
    EXPECT_FALSE(theParser->HasQueryPart("old"));
    vxCString theValue;
    EXPECT_TRUE(theParser->FetchQueryPart("new", theValue, ""));
    EXPECT_STREQ(theValue, "one two");
    EXPECT_TRUE(theParser->FetchQueryPart("more", theValue, ""));
    EXPECT_STREQ(theValue, "+");
    EXPECT_STREQ(theParser->GetPath(), "/a");
    theParser->SetQuery(nullptr);
    EXPECT_EQ(theParser->GetQueryPartCount(), 0U);
}

TEST(URIPathParserTest, AnArgumentIsFetchedOrTheDefault) {
    const ParserRef theParser = Parse("/a?b=c&empty=&bare&b=second");
    vxCString theValue("before");
    EXPECT_TRUE(theParser->FetchQueryPart("b", theValue, "default"));
    EXPECT_STREQ(theValue, "c");
    EXPECT_TRUE(theParser->FetchQueryPart("empty", theValue, "default"));
    EXPECT_STREQ(theValue, "");
    EXPECT_TRUE(theParser->FetchQueryPart("bare", theValue, "default"));
    EXPECT_STREQ(theValue, "");
    EXPECT_FALSE(theParser->FetchQueryPart("B", theValue, "default"));
    EXPECT_STREQ(theValue, "default");
    EXPECT_FALSE(theParser->FetchQueryPart("", theValue, nullptr));
    EXPECT_STREQ(theValue, "");
    EXPECT_FALSE(theParser->FetchQueryPart(nullptr, theValue, "none"));
    EXPECT_STREQ(theValue, "none");
    EXPECT_TRUE(theParser->HasQueryPart("bare"));
    EXPECT_FALSE(theParser->HasQueryPart("B"));
    EXPECT_FALSE(theParser->HasQueryPart(nullptr));
}

TEST(URIPathParserTest, ANumberMustConvertWhole) {
    const struct {
        const char* mText;
        bool mfResult;
        unsigned int mValue;
    } kRows[] = {{"0", true, 0},
                 {"12", true, 12},
                 {"4294967295", true, 4294967295U},
                 {"4294967296", false, 99},
                 {"12a", false, 99},
                 {"-1", false, 99},
                 {"0x10", false, 99},
                 {"", false, 99}};
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        const ParserRef theParser = Parse("/");
        theParser->SetQuery((vxCString("n=") + theRow.mText).c_str());
        unsigned int theValue = 5;
        EXPECT_EQ(theParser->FetchQueryPartAsUInt32("n", theValue, 99), theRow.mfResult);
        EXPECT_EQ(theValue, theRow.mValue);
    }
    unsigned int theValue = 5;
    EXPECT_FALSE(Parse("/")->FetchQueryPartAsUInt32("n", theValue, 99));
    EXPECT_EQ(theValue, 99U);
}

TEST(URIPathParserTest, ArgumentsAreReadByTheirPlace) {
    const ParserRef theParser = Parse("/a?b=c&d&b=e");
    ASSERT_EQ(theParser->GetQueryPartCount(), 3U);
    vxCString theName;
    vxCString theValue;
    EXPECT_TRUE(theParser->GetQueryPartAt(0, theName, theValue));
    EXPECT_STREQ(theName, "b");
    EXPECT_STREQ(theValue, "c");
    EXPECT_TRUE(theParser->GetQueryPartAt(1, theName, theValue));
    EXPECT_STREQ(theName, "d");
    EXPECT_STREQ(theValue, "");
    EXPECT_TRUE(theParser->GetQueryPartAt(2, theName, theValue));
    EXPECT_STREQ(theName, "b");
    EXPECT_STREQ(theValue, "e");
    EXPECT_FALSE(theParser->GetQueryPartAt(3, theName, theValue));
    EXPECT_STREQ(theName, "b");
    EXPECT_STREQ(theValue, "e");
}

constexpr int kNone = 0;
constexpr int kJSON = 1;
constexpr int kXML = 2;

struct ScopeRow {
    const char* mPath;
    const char* mScope;
    int mSuffixes;
    int mConsumed;     // -1: no match
    const char* mSub;  // what follows
};

constexpr ScopeRow kScopeRows[] = {
    {"/items", "/items", kNone, 6, ""},
    {"/items/", "/items", kNone, 6, "/"},
    {"/items/42/x", "/items", kNone, 6, "/42/x"},
    {"/items/42/x", "items", kNone, 6, "/42/x"},
    {"/items/42/x", "items/", kNone, 6, "/42/x"},
    {"/items/42/x", "/items/42", kNone, 9, "/x"},
    {"/items//x", "items", kNone, 6, "//x"},
    {"/itemsX", "items", kJSON | kXML, -1, nullptr},
    {"/item", "items", kJSON | kXML, -1, nullptr},
    {"items", "items", kNone, -1, nullptr},
    {"/Items", "items", kNone, -1, nullptr},
    {"/other/items", "items", kNone, -1, nullptr},

    {"/items.json", "items", kNone, -1, nullptr},
    {"/items.json", "items", kXML, -1, nullptr},
    {"/items.json", "items", kJSON, 11, ""},
    {"/items.json", "items/", kJSON, 11, ""},
    {"/items.json/", "items", kJSON, 11, "/"},
    {"/items.json/42", "items", kJSON | kXML, -1, nullptr},
    {"/items.jsonX", "items", kJSON | kXML, -1, nullptr},
    {"/items.xml", "items", kNone, -1, nullptr},
    {"/items.xml", "items", kJSON, -1, nullptr},
    {"/items.xml", "items", kXML, 10, ""},
    {"/items.xml", "items", kJSON | kXML, 10, ""},
    {"/items.xml/", "items", kXML, 10, "/"},
    {"/items.xml/42", "items", kJSON | kXML, -1, nullptr},
    {"/items.json.xml", "items", kJSON | kXML, -1, nullptr},
    {"/items/42", "items", kJSON | kXML, 6, "/42"},

    {"/", "/", kNone, 0, "/"},
    {"", "/", kNone, 0, ""},
    {"/", "", kNone, 0, "/"},
    {"", "", kNone, 0, ""},
    {"/a", "/", kNone, -1, nullptr},
    {"/a", "", kJSON | kXML, -1, nullptr},
    {".json", "/", kJSON, 5, ""},
    {".xml", "/", kXML, 4, ""},
    {"/a", "//", kNone, -1, nullptr},
    {"//a", "//", kNone, 1, "/a"},
};

TEST(URIPathParserTest, ScopesMatchAsTheirRowsSay) {
    for (const ScopeRow& theRow : kScopeRows) {
        SCOPED_TRACE(testing::Message()
                     << theRow.mPath << " in " << theRow.mScope << " with " << theRow.mSuffixes);
        const ParserRef theParser = Parse(theRow.mPath);
        const bool theJSON = (theRow.mSuffixes & kJSON) != 0;
        const bool theXML = (theRow.mSuffixes & kXML) != 0;
        unsigned int theConsumed = 77;
        const bool theMatches = theRow.mConsumed >= 0;

        EXPECT_EQ(theParser->IsRESTScope(theRow.mScope, theJSON, theXML, &theConsumed), theMatches);
        EXPECT_EQ(theConsumed, theMatches ? static_cast<unsigned>(theRow.mConsumed) : 77U);
        EXPECT_EQ(theParser->IsRESTScope(theRow.mScope, theJSON, theXML, nullptr), theMatches);

        ParserRef theSub;
        EXPECT_EQ(theParser->FetchSubRESTScope(theRow.mScope, theJSON, theXML, theSub), theMatches);
        EXPECT_EQ(theSub != nullptr, theMatches);
        if (theSub != nullptr && theMatches) {
            EXPECT_STREQ(theSub->GetPath(), theRow.mSub);
        }
    }
}

TEST(URIPathParserTest, ASubScopeKeepsTheArgumentsAndLeavesTheOriginalAlone) {
    const ParserRef theParser = Parse("/items/42?a=1&b=2");
    ParserRef theSub;
    ASSERT_TRUE(theParser->FetchSubRESTScope("items", false, false, theSub));
    EXPECT_STREQ(theSub->GetPath(), "/42");
    EXPECT_EQ(theSub->GetQueryPartCount(), 2U);
    EXPECT_STREQ(theParser->GetPath(), "/items/42");
    ParserRef theDeeper;
    ASSERT_TRUE(theSub->FetchSubRESTScope("42", false, false, theDeeper));
    EXPECT_STREQ(theDeeper->GetPath(), "");
}

TEST(URIPathParserTest, ASubScopeMayReplaceItsOwnParser) {
    ParserRef theParser = Parse("/items/42");
    ASSERT_TRUE(theParser->FetchSubRESTScope("items", false, false, theParser));
    EXPECT_STREQ(theParser->GetPath(), "/42");
}

TEST(URIPathParserTest, ASubScopeIsLeftAloneWithoutAMatch) {
    const ParserRef theParser = Parse("/items/42");
    const ParserRef theBefore = Parse("/before");
    ParserRef theSub = theBefore;
    EXPECT_FALSE(theParser->FetchSubRESTScope("other", true, true, theSub));
    EXPECT_EQ(theSub, theBefore);
}

TEST(URIPathParserTest, ANullRecordLiesInTheEmptyScope) {
    ParserRef theSub;
    EXPECT_FALSE(WithoutRecord()->FetchSubRESTScope("items", true, true, theSub));
    EXPECT_TRUE(WithoutRecord()->FetchSubRESTScope("/", true, true, theSub));
    EXPECT_STREQ(theSub->GetPath(), "");
}

TEST(URIPathParserTest, TheBasicTestTakesBothTextsAsTheyAre) {
    const struct {
        const char* mPath;
        const char* mExact;
        const char* mWithSlash;
        bool mfAllowBelow;
        bool mfResult;
    } kRows[] = {
        {"/a", "/a", "/a/", false, true},    {"/a/", "/a", "/a/", false, true},
        {"/a/b", "/a", "/a/", false, false}, {"/a/b", "/a", "/a/", true, true},
        {"/ab", "/a", "/a/", true, false},   {"/x/y", "/a", "/x", true, true},
        {"/x/y", "/a", "", true, true},      {"/x", "", "/", true, false},
        {"/", "", "/", true, true},          {"", "", "/", true, true},
        {"", "", "/", false, true},          {"", "/a", "/b", true, false},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(testing::Message() << theRow.mPath << " in " << theRow.mExact << ", "
                                        << theRow.mWithSlash << ", " << theRow.mfAllowBelow);
        EXPECT_EQ(Parse(theRow.mPath)
                      ->IsRESTScope(vxCString(theRow.mExact), vxCString(theRow.mWithSlash),
                                    theRow.mfAllowBelow),
                  theRow.mfResult);
    }
}

}  // namespace
