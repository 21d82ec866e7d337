#include <gmock/gmock.h>
#include <vx/Error.h>
#include <vx/JSON.h>
#include <vx/XML.h>
#include <vx/XMLJSON.h>
#include <vx/XMLParser.h>

#include "support/Reports.h"

using testing::ElementsAre;

namespace {

/// Converts the root of a text into an empty object and returns that as text.
std::string Converted(const char* anXML) {
    vxXMLDocument theXML;
    vxError theError;
    EXPECT_TRUE(vxXMLParser().Parse(anXML, theXML, theError)) << theError.GetErrorStr();
    vxJSONDocument theJSON(kvxJSONDocumentRoot_Object);
    EXPECT_TRUE(vxXMLToJSON(theXML.GetRoot()).ConvertTo(theJSON));
    return theJSON.ToString(false).c_str();
}

struct ConversionCase {
    const char* mXML;
    const char* mJSON;
};

constexpr ConversionCase kConversionCases[] = {
    {"<a>x</a>", R"({"a":"x"})"},
    {"<a><b>1</b><c>2</c></a>", R"({"a":{"b":"1","c":"2"}})"},
    {"<a><b>1</b><b>2</b></a>", R"({"a":{"b":["1","2"]}})"},
    {"<a><b>1</b><b><c>2</c></b></a>", R"({"a":{"b":["1",{"c":"2"}]}})"},
    {"<a/>", R"({"a":{}})"},
    {"<a><b>1</b><b>2</b><b>3</b></a>", R"({"a":{"b":["1","2","3"]}})"},
    {"<a><b>1</b><b/></a>", R"({"a":{"b":["1"]}})"},
    {"<a><b/><b>2</b></a>", R"({"a":{"b":[{},"2"]}})"},
    {"<a>text<b>1</b></a>", R"({"a":"text"})"},
    {"<a><b>1</b>text<c>2</c></a>", R"({"a":{"b":"1","text":"text","c":"2"}})"},
    {"<a k=\"v\"><b k=\"w\">1</b></a>", R"({"a":{"b":"1"}})"},
    {"<a><!--c--><b>1</b></a>", R"({"a":{"comment":{},"b":"1"}})"},
    {"<a><b>1</b><c>2</c><b>3</b></a>", R"({"a":{"b":["1","3"],"c":"2"}})"},
    {"<a><b><c>1</c></b><b><c>2</c></b></a>", R"({"a":{"b":[{"c":"1"},{"c":"2"}]}})"},
    {"<a><b/><b/></a>", R"({"a":{"b":[{}]}})"},
    {"<a><b/><b/><b>1</b><b/></a>", R"({"a":{"b":[{},"1"]}})"},
    {"<a><b><c/><c>1</c></b><b/><d>2</d></a>", R"({"a":{"b":[{"c":[{},"1"]}],"d":"2"}})"},
    {"<a><b>1<c/></b><b>2<c/></b></a>", R"({"a":{"b":["1","2"]}})"},
    {"<a><b>1</b><B>2</B></a>", R"({"a":{"b":"1","B":"2"}})"},
    {"<a><!--c--><!--d--></a>", R"({"a":{"comment":[{}]}})"},
    // Text takes the place of a member named like it, which elements then add to.
    {"<a><text><b/></text>x</a>", R"({"a":{"text":"x"}})"},
    {"<a><text><b/></text>x<text>y</text></a>", R"({"a":{"text":["x","y"]}})"},
    {"<a><text>y</text><text>z</text>x</a>", R"({"a":{"text":"x"}})"},
    {"<a>x<text>y</text></a>", R"({"a":"x"})"},
};

TEST(XMLJSONTest, ElementsBecomeMembers) {
    for (const ConversionCase& theCase : kConversionCases) {
        SCOPED_TRACE(theCase.mXML);
        EXPECT_EQ(Converted(theCase.mXML), theCase.mJSON);
    }
}

TEST(XMLJSONTest, SiblingsOfTheStartNodeAreConvertedToo) {
    vxXMLNode theParent(vxXMLNodeType_Element, "p", "");
    theParent.AddChild(new vxXMLNode(vxXMLNodeType_Element, "a", ""));
    theParent.AddChild(new vxXMLNode(vxXMLNodeType_Text, "text", "t"));
    vxJSONDocument theJSON("{\"kept\":1}");
    EXPECT_TRUE(vxXMLToJSON(theParent.GetChildren()).ConvertTo(theJSON));
    EXPECT_STREQ(theJSON.ToString(false), R"({"kept":1,"a":{},"text":"t"})");
}

TEST(XMLJSONTest, MembersOfTheTargetAreAddedTo) {
    struct Case {
        const char* mTarget;
        const char* mResult;
    };
    constexpr Case kCases[] = {
        {R"({"a":1,"z":2})", R"({"a":[1,{"b":"x"}],"z":2})"},
        {R"({"a":[1,2]})", R"({"a":[1,2,{"b":"x"}]})"},
        {R"({"a":{"k":[1]}})", R"({"a":[{"k":[1]},{"b":"x"}]})"},
        {R"({"a":null})", R"({"a":[null,{"b":"x"}]})"},
        {R"({"A":1})", R"({"A":1,"a":{"b":"x"}})"},
        {R"({"A":1,"a":2})", R"({"A":1,"a":[2,{"b":"x"}]})"},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mTarget);
        vxXMLNode theNode(vxXMLNodeType_Element, "a", "");
        theNode.AddChild(new vxXMLNode(vxXMLNodeType_Element, "b", ""));
        theNode.GetChildren()->AddChild(new vxXMLNode(vxXMLNodeType_Text, "text", "x"));
        vxJSONDocument theJSON(theCase.mTarget);
        EXPECT_TRUE(vxXMLToJSON(&theNode).ConvertTo(theJSON));
        EXPECT_STREQ(theJSON.ToString(false), theCase.mResult);
    }
}

TEST(XMLJSONTest, AnEmptyTextIsAnEmptyString) {
    vxXMLNode theTop(vxXMLNodeType_Element, "a", "");
    for (const char* theText : {"", "x", ""}) {
        vxXMLNode* theChild = new vxXMLNode(vxXMLNodeType_Element, "b", "");
        theChild->AddChild(new vxXMLNode(vxXMLNodeType_Text, "text", theText));
        theTop.AddChild(theChild);
    }
    vxXMLNode* theOnly = new vxXMLNode(vxXMLNodeType_Element, "c", "content is not looked at");
    theOnly->AddChild(new vxXMLNode(vxXMLNodeType_Text, "text", ""));
    theTop.AddChild(theOnly);
    theTop.AddChild(new vxXMLNode(vxXMLNodeType_Element, "d", "content is not looked at"));
    vxJSONDocument theJSON(kvxJSONDocumentRoot_Object);
    EXPECT_TRUE(vxXMLToJSON(&theTop).ConvertTo(theJSON));
    EXPECT_STREQ(theJSON.ToString(false), R"({"a":{"b":["","x",""],"c":"","d":{}}})");
}

TEST(XMLJSONTest, TextIsNamedLikeItsNode) {
    vxXMLNode theParent(vxXMLNodeType_Element, "p", "");
    theParent.AddChild(new vxXMLNode(vxXMLNodeType_Text, "note", "one"));
    theParent.AddChild(new vxXMLNode(vxXMLNodeType_Text, "note", "two"));
    vxJSONDocument theJSON(R"({"note":[1]})");
    EXPECT_TRUE(vxXMLToJSON(theParent.GetChildren()).ConvertTo(theJSON));
    EXPECT_STREQ(theJSON.ToString(false), R"({"note":"two"})");
}

TEST(XMLJSONTest, WithoutAnyNodeTheTargetIsReset) {
    vxJSONDocument theJSON("{\"a\":1}");
    EXPECT_FALSE(vxXMLToJSON().ConvertTo(theJSON));
    EXPECT_STREQ(theJSON.ToString(false), "{}");
    EXPECT_EQ(vxXMLToJSON().GetRootNode(), nullptr);
}

// Every level holds its name twice, so a copy of what the first holds would be made at each.
TEST(XMLJSONTest, RepeatedNamesAtEveryLevelCostNoCopies) {
    constexpr int kLevels = 20000;
    vxXMLNode theTop(vxXMLNodeType_Element, "a", "");
    vxXMLNode* theNode = &theTop;
    for (int i = 0; i < kLevels; ++i) {
        theNode->AddChild(new vxXMLNode(vxXMLNodeType_Element, "a", ""));
        theNode->AddChild(new vxXMLNode(vxXMLNodeType_Element, "a", ""));
        theNode = theNode->GetChildren();
    }
    vxJSONDocument theJSON(kvxJSONDocumentRoot_Object);
    EXPECT_TRUE(vxXMLToJSON(&theTop).ConvertTo(theJSON));
    vxJSONEntry theEntry = theJSON["a"];
    for (int i = 0; i < kLevels; ++i) {
        ASSERT_EQ(theEntry["a"].GetCount(), 1U);
        theEntry = theEntry["a"][0];
    }
    EXPECT_STREQ(theEntry.ToString(false), "{}");
}

TEST(XMLJSONTest, AnExplicitStartNodeCountsAlsoWhenItIsNull) {
    vxXMLNode theNode(vxXMLNodeType_Element, "a", "");
    vxXMLNode theOther(vxXMLNodeType_Element, "b", "");
    vxXMLToJSON theConverter(&theNode);
    theConverter.SetXMLStartNode(&theOther);
    EXPECT_EQ(theConverter.GetRootNode(), &theNode);
    vxJSONDocument theJSON(kvxJSONDocumentRoot_Object);
    EXPECT_TRUE(theConverter.ConvertTo(theJSON));
    EXPECT_STREQ(theJSON.ToString(false), R"({"b":{}})");
    theConverter.SetXMLStartNode(NULL);
    EXPECT_FALSE(theConverter.ConvertTo(theJSON));
    EXPECT_FALSE(theJSON.Contains("b"));
}

TEST(XMLJSONTest, ATargetThatIsNoObjectIsWarnedOfAndLeftAlone) {
    vxtest::Reports theReports;
    vxXMLNode theNode(vxXMLNodeType_Element, "a", "");
    vxJSONDocument theJSON(kvxJSONDocumentRoot_Array);
    EXPECT_TRUE(vxXMLToJSON(&theNode).ConvertTo(theJSON));
    EXPECT_STREQ(theJSON.ToString(false), "[]");
    EXPECT_THAT(theReports.LogTexts(), ElementsAre("Cannot access a JSONDocument as an object\n"));
}

}  // namespace
