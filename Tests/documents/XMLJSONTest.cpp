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
