#include <gmock/gmock.h>
#include <vx/File.h>
#include <vx/XML.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <malloc.h>
#include <pthread.h>

#include "support/ExactText.h"
#include "support/Latch.h"
#include "support/Reports.h"
#include "support/TempDir.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

vxXMLNode* Element(const char* aName, const char* aContent = "") {
    return new vxXMLNode(vxXMLNodeType_Element, aName, aContent);
}

vxXMLNode* Text(const char* aContent) {
    return new vxXMLNode(vxXMLNodeType_Text, "text", aContent);
}

std::string Saved(const vxXMLNode& aNode) {
    vxCString theText;
    EXPECT_TRUE(aNode.SaveStr(theText));
    return theText.c_str();
}

/// <a><b>1</b><b x="y"/><!--c--><c>t</c></a>
vxXMLNode* MakeTree() {
    vxXMLNode* theRoot = Element("a");
    vxXMLNode* theB = Element("b");
    theB->AddChild(Text("1"));
    theRoot->AddChild(theB);
    vxXMLNode* theSecond = Element("b");
    theSecond->AddProperty("x", "y");
    theRoot->AddChild(theSecond);
    theRoot->AddChild(new vxXMLNode(vxXMLNodeType_Comment, "comment", "c"));
    vxXMLNode* theC = Element("c");
    theC->AddChild(Text("t"));
    theRoot->AddChild(theC);
    return theRoot;
}

constexpr char kTree[] = "<a>\n  <b>1</b>\n  <b x=\"y\"/>\n  <!--c-->\n  <c>t</c>\n</a>\n";

TEST(XMLTest, TreesAreWrittenIndentedWithTextInline) {
    const std::unique_ptr<vxXMLNode> theTree(MakeTree());
    EXPECT_EQ(Saved(*theTree), kTree);
}

TEST(XMLTest, AttributesAndTextAreEscaped) {
    vxXMLNode theNode(vxXMLNodeType_Element, "e", "");
    theNode.AddProperty("a", "x&y\"<>");
    theNode.AddChild(Text("1<2 \"q\" > &"));
    EXPECT_EQ(Saved(theNode), "<e a=\"x&amp;y&quot;&lt;&gt;\">1&lt;2 \"q\" &gt; &amp;</e>\n");
}

TEST(XMLTest, AnAmpersandThatIsEscapedAlreadyIsLeftAlone) {
    vxXMLNode theNode(vxXMLNodeType_Text, "text", "&amp; &lt; &am &amp");
    EXPECT_EQ(Saved(theNode), "&amp; &amp;lt; &amp;am &amp;amp\n");
}

TEST(XMLTest, EveryPlaceOfATextIsEscaped) {
    const struct {
        const char* mText;
        const char* mInText;
        const char* mInValue;
    } kCases[] = {{"<", "&lt;", "&lt;"},       {">", "&gt;", "&gt;"},
                  {"\"", "\"", "&quot;"},      {"&", "&amp;", "&amp;"},
                  {"&amp;", "&amp;", "&amp;"}, {"&amp", "&amp;amp", "&amp;amp"}};
    for (size_t thePlace = 0; thePlace < 20; ++thePlace) {
        for (size_t theRest = 0; theRest < 10; ++theRest) {
            for (const auto& theCase : kCases) {
                const std::string theFront(thePlace, '\x80');
                const std::string theBack(theRest, '\'');
                vxXMLNode theNode(vxXMLNodeType_Element, "a", "");
                theNode.AddProperty("b", (theFront + theCase.mText + theBack).c_str());
                theNode.AddChild(Text((theFront + theCase.mText + theBack).c_str()));
                EXPECT_EQ(Saved(theNode), "<a b=\"" + theFront + theCase.mInValue + theBack +
                                              "\">" + theFront + theCase.mInText + theBack +
                                              "</a>\n");
            }
        }
    }
}

TEST(XMLTest, ContentOfAnElementWithoutChildrenIsWrittenAsItIs) {
    EXPECT_EQ(Saved(vxXMLNode(vxXMLNodeType_Element, "e", "a<b")), "<e>a<b</e>\n");
    EXPECT_EQ(Saved(vxXMLNode(vxXMLNodeType_Element, "e", "")), "<e/>\n");
}

TEST(XMLTest, TextBesideElementsKeepsItsPlace) {
    vxXMLNode theNode(vxXMLNodeType_Element, "p", "");
    theNode.AddChild(Text("one"));
    theNode.AddChild(Element("b"));
    theNode.AddChild(Text("two"));
    EXPECT_EQ(Saved(theNode), "<p>one\n  <b/>two</p>\n");
}

TEST(XMLTest, UnknownNodesAreReportedAndLeftOut) {
    vxtest::Reports theReports;
    vxXMLNode theNode(vxXMLNodeType_Element, "a", "");
    theNode.AddChild(new vxXMLNode(vxXMLNodeType_Unknown, "u", "x"));
    theNode.AddChild(Element("b"));
    EXPECT_EQ(Saved(theNode), "<a>\n  \n  <b/>\n</a>\n");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("Unsupported node type"));
    EXPECT_EQ(Saved(vxXMLNode()), "\n");
}

TEST(XMLTest, ChildrenOfWhatIsNoElementAreNotWritten) {
    vxtest::Reports theReports;
    vxXMLNode theTop(vxXMLNodeType_Element, "a", "unused");
    for (const vxXMLNodeType theType :
         {vxXMLNodeType_Text, vxXMLNodeType_Comment, vxXMLNodeType_Unknown}) {
        vxXMLNode* theNode = new vxXMLNode(theType, "text", "t");
        theNode->AddProperty("k", "v");
        theNode->AddChild(Element("hidden"));
        theTop.AddChild(theNode);
    }
    EXPECT_EQ(Saved(theTop), "<a>t\n  <!--t-->\n  \n</a>\n");
}

TEST(XMLTest, TheFirstFailingPieceStopsTheWriter) {
    const std::unique_ptr<vxXMLNode> theTree(MakeTree());
    theTree->AddProperty("k", "x&y");
    struct Output {
        int mLeft;
        int mCalls;
    };
    const vxXMLOutput thePiece = [](void* aContext, const vxCString&) {
        Output* theState = static_cast<Output*>(aContext);
        ++theState->mCalls;
        return theState->mLeft-- > 0;
    };
    Output theWhole = {1000, 0};
    EXPECT_TRUE(theTree->Save(thePiece, &theWhole));
    EXPECT_GT(theWhole.mCalls, 20);
    for (int theLeft = 0; theLeft < theWhole.mCalls; ++theLeft) {
        Output theOutput = {theLeft, 0};
        EXPECT_FALSE(theTree->Save(thePiece, &theOutput));
        EXPECT_EQ(theOutput.mCalls, theLeft + 1);
    }
}

TEST(XMLTest, PiecesJoinToTheWholeText) {
    const std::unique_ptr<vxXMLNode> theTree(MakeTree());
    std::vector<std::string> thePieces;
    EXPECT_TRUE(theTree->Save(
        [](void* aContext, const vxCString& aText) {
            static_cast<std::vector<std::string>*>(aContext)->push_back(aText.c_str());
            return true;
        },
        &thePieces));
    std::string theText;
    for (const std::string& thePiece : thePieces) {
        theText += thePiece;
    }
    EXPECT_EQ(theText, kTree);
    EXPECT_THAT(thePieces, testing::Contains(" x=\""));
    EXPECT_THAT(thePieces, testing::Contains("\n  "));
}

struct EntityCase {
    const char* mText;
    const char* mInText;
    const char* mInAttribute;
};

constexpr EntityCase kEntityCases[] = {
    {"<", "&lt;", "&lt;"},
    {">", "&gt;", "&gt;"},
    {"\"", "\"", "&quot;"},
    {"&", "&amp;", "&amp;"},
    {"&amp;", "&amp;", "&amp;"},
    {"&amp", "&amp;amp", "&amp;amp"},
    {"&am", "&amp;am", "&amp;am"},
    {"&lt;", "&amp;lt;", "&amp;lt;"},
    {"&AMP;", "&amp;AMP;", "&amp;AMP;"},
    {"&&amp;", "&amp;&amp;", "&amp;&amp;"},
    {"&amp;amp;", "&amp;amp;", "&amp;amp;"},
    {"'", "'", "'"},
    {"=", "=", "="},
    {"\xa2", "\xa2", "\xa2"},
    {"\xff", "\xff", "\xff"},
};

TEST(XMLTest, EntitiesAreFoundAtEveryPlaceOfTexts) {
    for (size_t theLength = 0; theLength <= 40; ++theLength) {
        for (size_t thePlace = 0; thePlace <= theLength; ++thePlace) {
            for (const EntityCase& theCase : kEntityCases) {
                const std::string theBefore(thePlace, 'x');
                const std::string theBehind(theLength - thePlace, '\x9f');
                SCOPED_TRACE(theBefore + theCase.mText + theBehind);
                const vxtest::ExactText theText(theBefore + theCase.mText + theBehind,
                                                (theLength + thePlace) % 8);
                vxXMLNode theNode(vxXMLNodeType_Element, "e", "");
                theNode.AddProperty("k", vxCString::FromStaticString(theText));
                theNode.AddChild(new vxXMLNode(vxXMLNodeType_Text, "text",
                                               vxCString::FromStaticString(theText)));
                ASSERT_EQ(Saved(theNode), "<e k=\"" + theBefore + theCase.mInAttribute + theBehind +
                                              "\">" + theBefore + theCase.mInText + theBehind +
                                              "</e>\n");
            }
        }
    }
}

TEST(XMLTest, RunsBetweenEscapedBytesAreSinglePieces) {
    vxXMLNode theNode(vxXMLNodeType_Element, "e", "");
    theNode.AddProperty("k", "one two&three\"");
    vxXMLNode* theChild = Element("c");
    theChild->AddChild(new vxXMLNode(vxXMLNodeType_Comment, "comment", "<&>\""));
    theNode.AddChild(theChild);
    std::vector<std::string> thePieces;
    EXPECT_TRUE(theNode.Save(
        [](void* aContext, const vxCString& aText) {
            static_cast<std::vector<std::string>*>(aContext)->push_back(aText.c_str());
            return true;
        },
        &thePieces));
    EXPECT_THAT(thePieces, ElementsAre("<", "e", " k=\"", "one two", "&amp;", "three", "&quot;",
                                       "\"", ">", "\n  ", "<", "c", ">", "\n    ", "<!--", "<&>\"",
                                       "-->", "\n  ", "</", "c", ">", "\n", "</", "e", ">", "\n"));
}

TEST(XMLTest, SavingAppendsToTheText) {
    vxCString theText = "before ";
    EXPECT_TRUE(vxXMLNode(vxXMLNodeType_Comment, "comment", " c ").SaveStr(theText));
    EXPECT_STREQ(theText, "before <!-- c -->\n");
}

TEST(XMLTest, AttributesCanBeAddedAsTheyAre) {
    vxXMLNode theNode(vxXMLNodeType_Element, "e", "");
    theNode.AddProperty(new vxXMLProperty("b", "1"));
    theNode.AddProperty(new vxXMLProperty("a", "2"));
    theNode.AddProperty("b", "3");
    EXPECT_EQ(Saved(theNode), "<e b=\"1\" a=\"2\" b=\"3\"/>\n");
    EXPECT_STREQ(theNode.GetProperties()->GetNext()->GetName(), "a");
    EXPECT_STREQ(theNode.GetProperties()->GetNext()->GetValue(), "2");
    EXPECT_TRUE(theNode.DeleteProperty("a"));
    theNode.AddProperty("c", "4");
    EXPECT_EQ(Saved(theNode), "<e b=\"1\" b=\"3\" c=\"4\"/>\n");
}

TEST(XMLTest, TypesHaveTheirValues) {
    EXPECT_EQ(vxXMLNodeType_Unknown, 0);
    EXPECT_EQ(vxXMLNodeType_Element, 1);
    EXPECT_EQ(vxXMLNodeType_Text, 2);
    EXPECT_EQ(vxXMLNodeType_Comment, 3);
    EXPECT_EQ(vxXMLNode().GetType(), vxXMLNodeType_Unknown);
    EXPECT_EQ(vxXMLNode().GetUserData(), nullptr);
}

TEST(XMLTest, ANodeWithAParentBecomesItsFirstChild) {
    vxXMLNode theParent(vxXMLNodeType_Element, "p", "");
    theParent.AddChild(Element("old"));
    vxXMLProperty* theProperty = new vxXMLProperty("k", "v");
    vxXMLNode* theNode =
        new vxXMLNode(&theParent, vxXMLNodeType_Element, "new", "", theProperty, NULL);
    EXPECT_EQ(theParent.GetChildren(), theNode);
    EXPECT_EQ(theNode->GetParent(), &theParent);
    EXPECT_EQ(Saved(theParent), "<p>\n  <new k=\"v\"/>\n  <old/>\n</p>\n");
}

TEST(XMLTest, ANextSiblingKeepsTheOldFirstChildBehind) {
    vxXMLNode theParent(vxXMLNodeType_Element, "p", "");
    theParent.AddChild(Element("old"));
    new vxXMLNode(&theParent, vxXMLNodeType_Element, "one", "", NULL, theParent.GetChildren());
    EXPECT_EQ(Saved(theParent), "<p>\n  <one/>\n  <old/>\n</p>\n");
    vxXMLNode* theSibling = Element("sibling");
    new vxXMLNode(&theParent, vxXMLNodeType_Element, "two", "", NULL, theSibling);
    EXPECT_EQ(Saved(theParent), "<p>\n  <two/>\n  <sibling/>\n  <one/>\n  <old/>\n</p>\n");
    EXPECT_EQ(theSibling->GetParent(), &theParent);
}

TEST(XMLTest, CopiesAreDeepAndDetached) {
    const std::unique_ptr<vxXMLNode> theTree(MakeTree());
    int theData = 0;
    theTree->GetChildren()->SetUserData(&theData);
    vxXMLNode theCopy(*theTree->GetChildren());
    EXPECT_EQ(theCopy.GetParent(), nullptr);
    EXPECT_EQ(theCopy.GetNext(), nullptr);
    EXPECT_EQ(theCopy.GetUserData(), &theData);
    EXPECT_EQ(Saved(theCopy), "<b>1</b>\n");

    vxXMLNode theTarget(vxXMLNodeType_Element, "old", "");
    theTarget.AddChild(Element("gone"));
    theTarget = *theTree;
    EXPECT_EQ(Saved(theTarget), kTree);
    EXPECT_EQ(theTarget.GetChildren()->GetParent(), &theTarget);
    EXPECT_EQ(theTarget.GetChildren()->GetUserData(), &theData);
    EXPECT_STREQ(theTarget.GetChildren()->GetNext()->GetPropertyValue("x", ""), "y");
    EXPECT_EQ(Saved(*theTree), kTree);
}

TEST(XMLTest, AssignmentTakesEverythingOfTheSourceButItsPlace) {
    int theData = 0;
    vxXMLNode theSource(vxXMLNodeType_Comment, "comment", "words");
    theSource.AddProperty("k", "v");
    theSource.AddProperty("l", "w");
    theSource.SetUserData(&theData);
    vxXMLNode theParent(vxXMLNodeType_Element, "p", "");
    vxXMLNode* theTarget = Element("old", "gone");
    theTarget->AddProperty("gone", "x");
    theParent.AddChild(theTarget);
    theParent.AddChild(Element("next"));
    *theTarget = theSource;
    EXPECT_EQ(theTarget->GetType(), vxXMLNodeType_Comment);
    EXPECT_STREQ(theTarget->GetName(), "comment");
    EXPECT_STREQ(theTarget->GetContent(), "words");
    EXPECT_EQ(theTarget->GetUserData(), &theData);
    EXPECT_FALSE(theTarget->HasProperty("gone"));
    ASSERT_NE(theTarget->GetProperties(), nullptr);
    EXPECT_STREQ(theTarget->GetProperties()->GetName(), "k");
    EXPECT_STREQ(theTarget->GetProperties()->GetNext()->GetValue(), "w");
    EXPECT_NE(theTarget->GetProperties(), theSource.GetProperties());
    EXPECT_EQ(Saved(theParent), "<p>\n  <!--words-->\n  <next/>\n</p>\n");
    const vxXMLNode& theSame = *theTarget;
    *theTarget = theSame;
    EXPECT_STREQ(theTarget->GetPropertyValue("l", ""), "w");
}

TEST(XMLTest, ANodeCanBeAssignedFromItsOwnChild) {
    std::unique_ptr<vxXMLNode> theTree(MakeTree());
    *theTree = *theTree->GetChild("c");
    EXPECT_EQ(Saved(*theTree), "<c>t</c>\n");
}

TEST(XMLTest, AddedChildrenGoToTheEndOfTheirNewParent) {
    vxXMLNode theOld(vxXMLNodeType_Element, "old", "");
    vxXMLNode* theNode = Element("moved");
    theOld.AddChild(theNode);
    theOld.AddChild(Element("left"));
    const std::unique_ptr<vxXMLNode> theSibling(Element("sibling"));
    vxXMLNode theParent(vxXMLNodeType_Element, "p", "");
    theParent.AddChild(Element("first"));
    vxXMLNode* theChained =
        new vxXMLNode(NULL, vxXMLNodeType_Element, "chained", "text", NULL, theSibling.get());
    EXPECT_EQ(theChained->GetParent(), nullptr);
    EXPECT_EQ(theChained->GetNext(), theSibling.get());
    EXPECT_STREQ(theChained->GetContent(), "text");
    theParent.AddChild(theChained);
    EXPECT_EQ(theChained->GetNext(), nullptr);
    EXPECT_EQ(theChained->GetParent(), &theParent);
    EXPECT_TRUE(theOld.RemoveChild(theNode));
    theParent.AddChild(theNode);
    EXPECT_EQ(Saved(theOld), "<old>\n  <left/>\n</old>\n");
    EXPECT_EQ(Saved(theParent), "<p>\n  <first/>\n  <chained>text</chained>\n  <moved/>\n</p>\n");
    EXPECT_FALSE(theOld.RemoveChild(theNode));
}

TEST(XMLTest, OnlyDirectChildrenAreRemoved) {
    const std::unique_ptr<vxXMLNode> theTree(MakeTree());
    EXPECT_FALSE(theTree->RemoveChild(theTree->GetChildren()->GetChildren()));
    EXPECT_FALSE(theTree->RemoveChild(NULL));
    EXPECT_EQ(Saved(*theTree), kTree);
}

TEST(XMLTest, ChildrenAreInsertedBeforeAChildOnly) {
    vxtest::Reports theReports;
    vxXMLNode theParent(vxXMLNodeType_Element, "p", "");
    vxXMLNode* theLast = Element("last");
    theParent.AddChild(theLast);
    theParent.InsertChild(Element("first"), theLast);
    EXPECT_EQ(Saved(theParent), "<p>\n  <first/>\n  <last/>\n</p>\n");
    EXPECT_EQ(theParent.GetChildren()->GetParent(), &theParent);
    vxXMLNode* theMiddle = Element("middle");
    theParent.InsertChild(theMiddle, theLast);
    EXPECT_EQ(theMiddle->GetParent(), &theParent);
    EXPECT_EQ(Saved(theParent), "<p>\n  <first/>\n  <middle/>\n  <last/>\n</p>\n");
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    const std::unique_ptr<vxXMLNode> theStray(Element("stray"));
    const std::unique_ptr<vxXMLNode> theOther(Element("other"));
    theParent.InsertChild(theStray.get(), theOther.get());
    EXPECT_THAT(theReports.Assertions(), ElementsAre("aBeforeNode->GetParent() == this"));
    EXPECT_EQ(theStray->GetParent(), nullptr);
    theReports.Clear();
    theParent.InsertChild(theStray.get(), NULL);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("aBeforeNode->GetParent() == this"));
    EXPECT_EQ(theStray->GetParent(), nullptr);
    theReports.Clear();
    theParent.InsertChild(NULL, theLast);
    theParent.AddChild(NULL);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    EXPECT_EQ(Saved(theParent), "<p>\n  <first/>\n  <middle/>\n  <last/>\n</p>\n");
}

TEST(XMLTest, RemovedChildrenBelongToTheCaller) {
    const std::unique_ptr<vxXMLNode> theTree(MakeTree());
    const std::unique_ptr<vxXMLNode> theC(theTree->GetChild("c"));
    EXPECT_TRUE(theTree->RemoveChild(theC.get()));
    EXPECT_EQ(theC->GetParent(), nullptr);
    EXPECT_EQ(theC->GetNext(), nullptr);
    EXPECT_FALSE(theTree->RemoveChild(theC.get()));
    EXPECT_EQ(theTree->GetChild("c"), nullptr);
    EXPECT_EQ(theC->GetRoot(), theC.get());
    EXPECT_EQ(theTree->GetChildren()->GetRoot(), theTree.get());
}

TEST(XMLTest, AttributesKeepTheirOrderAndTheFirstOfANameCounts) {
    vxXMLNode theNode(vxXMLNodeType_Element, "e", "");
    theNode.AddProperty("a", "1");
    theNode.AddProperty("b", "2");
    theNode.AddProperty("a", "3");
    EXPECT_STREQ(theNode.GetPropertyValue("a", "none"), "1");
    EXPECT_STREQ(theNode.GetPropertyValue("A", "none"), "none");
    vxCString theValue = "kept";
    EXPECT_FALSE(theNode.GetPropertyValue("c", &theValue));
    EXPECT_STREQ(theValue, "kept");
    EXPECT_TRUE(theNode.GetPropertyValue("b", &theValue));
    vxCString* const theNobody = nullptr;
    EXPECT_TRUE(theNode.GetPropertyValue("b", theNobody));
    EXPECT_FALSE(theNode.GetPropertyValue("c", theNobody));
    EXPECT_STREQ(theValue, "2");
    EXPECT_TRUE(theNode.DeleteProperty("a"));
    EXPECT_STREQ(theNode.GetPropertyValue("a", "none"), "3");
    EXPECT_TRUE(theNode.DeleteProperty("a"));
    EXPECT_FALSE(theNode.DeleteProperty("a"));
    EXPECT_FALSE(theNode.HasProperty("a"));
    EXPECT_TRUE(theNode.HasProperty("b"));
}

TEST(XMLTest, AttributesReadAsNumbersAndBooleans) {
    struct Case {
        const char* mValue;
        uint32_t mNumber;  // 77: the default
        int mBool;         // -1: the default
    };
    constexpr Case kCases[] = {
        {" 1 ", 1, 1},          {"0", 0, 0},      {"2", 2, -1},
        {"TRUE", 77, 1},        {"False", 77, 0}, {"\ttrue\n", 77, 1},
        {"yes", 77, -1},        {"", 77, -1},     {"4294967295", 4294967295U, -1},
        {"4294967296", 77, -1}, {"-1", 77, -1},   {"0x1", 77, -1},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mValue);
        vxXMLNode theNode(vxXMLNodeType_Element, "e", "");
        theNode.AddProperty("v", theCase.mValue);
        EXPECT_EQ(theNode.GetPropertyValueAsUInt32("v", 77), theCase.mNumber);
        EXPECT_EQ(theNode.GetPropertyValueAsBool("v", true), theCase.mBool != 0);
        EXPECT_EQ(theNode.GetPropertyValueAsBool("v", false), theCase.mBool == 1);
    }
    const vxXMLNode theNode(vxXMLNodeType_Element, "e", "");
    EXPECT_TRUE(theNode.GetPropertyValueAsBool("v", true));
    EXPECT_EQ(theNode.GetPropertyValueAsUInt32("v", 5), 5U);
}

TEST(XMLTest, PathsFindTheFirstChildOfEachNameInAnyCase) {
    const std::unique_ptr<vxXMLNode> theTree(MakeTree());
    EXPECT_EQ(theTree->GetChild("B"), theTree->GetChildren());
    EXPECT_EQ(theTree->GetChildNode("B/TEXT"), theTree->GetChildren()->GetChildren());
    EXPECT_EQ(theTree->GetChildNode("b/none"), nullptr);
    EXPECT_EQ(theTree->GetChildNode(""), nullptr);
    EXPECT_EQ(theTree->GetChildNode("b/"), nullptr);
    EXPECT_EQ(theTree->GetChildNode("/b"), nullptr);
    EXPECT_EQ(theTree->GetChildNode("b//text"), nullptr);
    EXPECT_STREQ(theTree->GetChildNodeText("C", "none"), "t");
    EXPECT_STREQ(theTree->GetChildNodeText("d", "none"), "none");
    EXPECT_STREQ(theTree->GetChild("c")->GetTextContent("none"), "t");
    EXPECT_STREQ(theTree->GetTextContent("none"), "none");
}

TEST(XMLTest, AnEmptyTextIsATextAndAnElementsOwnContentIsNone) {
    vxXMLNode theNode(vxXMLNodeType_Element, "e", "own");
    EXPECT_STREQ(theNode.GetTextContent("none"), "none");
    EXPECT_STREQ(theNode.GetTextContent(), "");
    vxXMLNode* theChild = Element("c");
    theChild->AddChild(Text(""));
    theNode.AddChild(theChild);
    EXPECT_STREQ(theChild->GetTextContent("none"), "");
    EXPECT_STREQ(theNode.GetChildNodeText("c", "none"), "");
    EXPECT_STREQ(theNode.GetChildNodeText("", "none"), "none");
    // What counts is the name: any node that is called so holds the text.
    vxXMLNode theOther(vxXMLNodeType_Element, "e", "");
    theOther.AddChild(new vxXMLNode(vxXMLNodeType_Text, "note", "other"));
    theOther.AddChild(Element("Text", "found"));
    EXPECT_STREQ(theOther.GetTextContent("none"), "found");
}

TEST(XMLTest, TextContentIsADecimalNumberOf32BitsAsAWhole) {
    struct Case {
        const char* mText;
        bool mfGood;
        int32_t mValue;
    };
    constexpr Case kCases[] = {
        {"2147483647", true, 2147483647},
        {"-2147483648", true, -2147483647 - 1},
        {"+7", true, 7},
        {"010", true, 10},
        {"2147483648", false, 55},
        {"-2147483649", false, 55},
        {"0x10", false, 55},
        {" 1", false, 55},
        {"1 ", false, 55},
        {"1.0", false, 55},
        {"", false, 55},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxXMLNode theNode(vxXMLNodeType_Element, "e", "");
        theNode.AddChild(Text(theCase.mText));
        int32_t theValue = 55;
        EXPECT_EQ(theNode.GetTextContentValue(&theValue), theCase.mfGood);
        EXPECT_EQ(theValue, theCase.mValue);
    }
}

TEST(XMLTest, TextContentReadsAsNumbersAndBooleans) {
    struct Case {
        const char* mText;
        int mBool;  // -1: refused
    };
    constexpr Case kCases[] = {{"1", 1},     {"true", 1},  {"YES", 1},    {"0", 0},
                               {"False", 0}, {"no", 0},    {"", 0},       {"maybe", -1},
                               {"2", -1},    {"yes ", -1}, {"truest", -1}};
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxXMLNode theNode(vxXMLNodeType_Element, "e", "");
        theNode.AddChild(Text(theCase.mText));
        bool theValue = theCase.mBool != 1;
        EXPECT_EQ(theNode.GetTextContentValue(&theValue), theCase.mBool >= 0);
        EXPECT_EQ(theValue, theCase.mBool < 0 ? true : theCase.mBool == 1);
    }
    vxXMLNode theNode(vxXMLNodeType_Element, "e", "");
    bool theBool = true;
    EXPECT_TRUE(theNode.GetTextContentValue(&theBool));
    EXPECT_FALSE(theBool);
    int32_t theNumber = 7;
    EXPECT_FALSE(theNode.GetTextContentValue(&theNumber));
    EXPECT_EQ(theNumber, 7);
    theNode.AddChild(Text("-12"));
    EXPECT_TRUE(theNode.GetTextContentValue(&theNumber));
    EXPECT_EQ(theNumber, -12);
}

TEST(XMLTest, EveryMatchOfAnExactPathIsVisitedInOrder) {
    vxXMLNode theRoot(vxXMLNodeType_Element, "r", "");
    for (const char* theName : {"a", "A", "a"}) {
        vxXMLNode* theNode = Element(theName);
        theNode->AddChild(Element("x", "1"));
        theNode->AddChild(Element("b", theName));
        theNode->AddChild(Element("b", "2"));
        theRoot.AddChild(theNode);
    }
    const auto theVisited = [&theRoot](const char* aPath) {
        std::string theContents;
        theRoot.ForEachChild(
            aPath,
            [](vxXMLNode* aNode, void* aContext) {
                *static_cast<std::string*>(aContext) +=
                    std::string(aNode->GetName()) + aNode->GetContent().c_str() + ";";
            },
            &theContents);
        return theContents;
    };
    EXPECT_EQ(theVisited("a/b"), "ba;b2;ba;b2;");
    EXPECT_EQ(theVisited("A/b"), "bA;b2;");
    EXPECT_EQ(theVisited("a"), "a;a;");
    EXPECT_EQ(theVisited("a/"), "a;a;");
    EXPECT_EQ(theVisited("a/B"), "");
    EXPECT_EQ(theVisited("a//b"), "");
    EXPECT_EQ(theVisited("/a"), "");
    EXPECT_EQ(theVisited(""), "");
}

TEST(XMLTest, AWalkGoesUpAsManyLevelsAsItMust) {
    vxXMLNode theRoot(vxXMLNodeType_Element, "r", "");
    for (const char* theLetter : {"1", "2"}) {
        vxXMLNode* theA = Element("a");
        for (const char* theName : {"bb", "c", "bb"}) {
            vxXMLNode* theB = Element(theName);
            theB->AddChild(Element("c", theLetter));
            theB->AddChild(Element("a", theLetter));
            theA->AddChild(theB);
        }
        theRoot.AddChild(theA);
    }
    const auto theVisited = [&theRoot](const char* aPath) {
        std::string theContents;
        theRoot.ForEachChild(
            aPath,
            [](vxXMLNode* aNode, void* aContext) {
                *static_cast<std::string*>(aContext) += aNode->GetContent();
            },
            &theContents);
        return theContents;
    };
    EXPECT_EQ(theVisited("a/bb/c"), "1122");
    EXPECT_EQ(theVisited("a/c/a"), "12");
    EXPECT_EQ(theVisited("a/bb/c/d"), "");
    EXPECT_EQ(theVisited("a/b/c"), "");
}

TEST(XMLTest, EmptyPathSegmentsMatchNoEmptyNames) {
    vxXMLNode theRoot(vxXMLNodeType_Element, "r", "");
    vxXMLNode* theNameless = Element("");
    theNameless->AddChild(Element("a"));
    theRoot.AddChild(theNameless);
    int theCount = 0;
    for (const char* thePath : {"", "/", "/a", "//", "a"}) {
        EXPECT_EQ(theRoot.GetChildNode(thePath), nullptr) << thePath;
        theRoot.ForEachChild(
            thePath, [](vxXMLNode*, void* aContext) { ++*static_cast<int*>(aContext); }, &theCount);
    }
    EXPECT_EQ(theCount, 0);
    EXPECT_EQ(theRoot.GetChild(""), theNameless);
}

TEST(XMLTest, WhatIsVisitedMayBeDeleted) {
    vxXMLNode theRoot(vxXMLNodeType_Element, "r", "");
    for (int i = 0; i < 3; ++i) {
        vxXMLNode* theNode = Element("a");
        for (const char* theName : {"b", "c", "b"}) {
            theNode->AddChild(Element(theName));
        }
        theRoot.AddChild(theNode);
    }
    const auto theDelete = [](vxXMLNode* aNode, void*) {
        aNode->GetParent()->RemoveChild(aNode);
        delete aNode;
    };
    theRoot.GetChildren()->ForEachChild("b", theDelete, NULL);
    EXPECT_EQ(Saved(*theRoot.GetChildren()), "<a>\n  <c/>\n</a>\n");
    theRoot.ForEachChild("a/b", theDelete, NULL);
    EXPECT_EQ(Saved(theRoot),
              "<r>\n  <a>\n    <c/>\n  </a>\n  <a>\n    <c/>\n  </a>\n"
              "  <a>\n    <c/>\n  </a>\n</r>\n");
    theRoot.ForEachChild("a", theDelete, NULL);
    EXPECT_EQ(Saved(theRoot), "<r/>\n");
}

TEST(XMLTest, SearchLooksAtChildrenBeforeTheirSubtrees) {
    vxXMLNode theRoot(vxXMLNodeType_Element, "r", "");
    vxXMLNode* theFirst = Element("a");
    theFirst->AddChild(Element("hit", "deep"));
    theRoot.AddChild(theFirst);
    theRoot.AddChild(Element("hit", "shallow"));
    const auto thePredicate = [](const vxXMLNode* aNode, void* aName) {
        return aNode->NameIs(static_cast<const char*>(aName));
    };
    char theHit[] = "hit";
    char theNone[] = "none";
    EXPECT_STREQ(theRoot.FindChild(thePredicate, theHit)->GetContent(), "shallow");
    EXPECT_STREQ(theFirst->FindChild(thePredicate, theHit)->GetContent(), "deep");
    EXPECT_EQ(theRoot.FindChild(thePredicate, theNone), nullptr);
    char theRootName[] = "r";
    EXPECT_EQ(theRoot.FindChild(thePredicate, theRootName), nullptr);
}

TEST(XMLTest, SearchOfASubtreeEndsBeforeTheNextOne) {
    // Each node is asked once: all children first, then the subtrees from the first to the last.
    vxXMLNode theRoot(vxXMLNodeType_Element, "r", "");
    for (const char* theName : {"a", "b"}) {
        vxXMLNode* theChild = Element(theName);
        theChild->AddChild(Element((std::string(theName) + "1").c_str()));
        theChild->AddChild(Element((std::string(theName) + "2").c_str()));
        theChild->GetChildren()->AddChild(Element((std::string(theName) + "11").c_str()));
        theRoot.AddChild(theChild);
    }
    const auto theAsked = [](const vxXMLNode& aTop) {
        std::string theNames;
        EXPECT_EQ(aTop.FindChild(
                      [](const vxXMLNode* aNode, void* aContext) {
                          *static_cast<std::string*>(aContext) += aNode->GetName() + " ";
                          return false;
                      },
                      &theNames),
                  nullptr);
        return theNames;
    };
    EXPECT_EQ(theAsked(theRoot), "a b a1 a2 a11 b1 b2 b11 ");
    EXPECT_EQ(theAsked(*theRoot.GetChildren()), "a1 a2 a11 ");
    EXPECT_EQ(theAsked(*theRoot.GetChildren()->GetChildren()->GetNext()), "");
}

TEST(XMLTest, DocumentsWriteADeclarationWhenWanted) {
    vxXMLDocument theDocument;
    EXPECT_FALSE(theDocument.IsOk());
    EXPECT_STREQ(theDocument.GetVersion(), "1.0");
    EXPECT_STREQ(theDocument.GetContentEncoding(), "utf-8");
    theDocument.SetRoot(Element("r"));
    const auto theSaved = [&theDocument](bool afWithDeclaration) {
        std::string theText;
        EXPECT_TRUE(theDocument.Save(
            [](void* aContext, const vxCString& aText) {
                *static_cast<std::string*>(aContext) += aText.c_str();
                return true;
            },
            &theText, afWithDeclaration));
        return theText;
    };
    EXPECT_EQ(theSaved(true), "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<r/>\n");
    EXPECT_EQ(theSaved(false), "<r/>\n");
    theDocument.SetVersion("1.1");
    theDocument.SetRoot(theDocument.GetRoot());
    EXPECT_EQ(theSaved(true), "<?xml version=\"1.1\" encoding=\"utf-8\"?>\n<r/>\n");
}

TEST(XMLTest, ADocumentWithoutARootWritesNothingAndFails) {
    const vxXMLDocument theDocument;
    int theCalls = 0;
    EXPECT_FALSE(theDocument.Save(
        [](void* aContext, const vxCString&) {
            ++*static_cast<int*>(aContext);
            return true;
        },
        &theCalls, true));
    EXPECT_EQ(theCalls, 0);
}

TEST(XMLTest, DocumentsAreCopiedWhole) {
    vxXMLDocument theDocument;
    theDocument.SetRoot(MakeTree());
    theDocument.SetVersion("1.1");
    const std::unique_ptr<vxXMLDocument> theClone(theDocument.Clone());
    vxXMLDocument theTarget;
    theTarget.SetRoot(Element("old"));
    theTarget = theDocument;
    const vxXMLDocument& theSame = theTarget;
    theTarget = theSame;
    const vxXMLDocument theCopy(theDocument);
    theDocument.SetRoot(NULL);
    EXPECT_FALSE(theDocument.IsOk());
    EXPECT_TRUE(theCopy.IsOk());
    EXPECT_EQ(Saved(*theCopy.GetRoot()), kTree);
    EXPECT_EQ(Saved(*theClone->GetRoot()), kTree);
    EXPECT_EQ(Saved(*theTarget.GetRoot()), kTree);
    for (const vxXMLDocument* theOne :
         {&theCopy, static_cast<const vxXMLDocument*>(theClone.get()), &theSame}) {
        EXPECT_STREQ(theOne->GetVersion(), "1.1");
        EXPECT_STREQ(theOne->GetContentEncoding(), "utf-8");
    }
    theTarget = vxXMLDocument();
    EXPECT_FALSE(theTarget.IsOk());
    EXPECT_STREQ(theTarget.GetVersion(), "1.0");
}

TEST(XMLTest, DocumentsAreSavedIntoFiles) {
    vxXMLDocument theDocument;
    theDocument.SetRoot(MakeTree());
    const vxtest::TempDir theDir;
    const std::string thePath = theDir / "file.xml";
    const auto theSaved = [&thePath] {
        vxFile theFile(thePath.c_str(), vxFileOpenMode_Read);
        char theText[200] = {};
        theFile.Read(theText, sizeof(theText) - 1);
        return std::string(theText);
    };
    EXPECT_TRUE(theDocument.Save(vxCString(thePath.c_str()), true));
    EXPECT_EQ(theSaved(), std::string("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n") + kTree);
    EXPECT_TRUE(theDocument.Save(vxCString(thePath.c_str()), false));
    EXPECT_EQ(theSaved(), kTree);
    {
        vxFile theOpen(thePath.c_str(), vxFileOpenMode_Write | vxFileOpenMode_Append);
        EXPECT_TRUE(theDocument.Save(&theOpen, false));
    }
    EXPECT_EQ(theSaved(), std::string(kTree) + kTree);
    vxFile theReader(thePath.c_str(), vxFileOpenMode_Read);
    EXPECT_FALSE(theDocument.Save(&theReader, false));
    EXPECT_FALSE(theDocument.Save(static_cast<vxFile*>(NULL), true));
}

TEST(XMLTest, AFullMediumFailsTheSave) {
    vxtest::Reports theReports;
    vxXMLDocument theDocument;
    theDocument.SetRoot(Element("r"));
    EXPECT_FALSE(theDocument.Save(vxCString("/dev/full"), true));
    EXPECT_FALSE(theDocument.Save(vxCString("/no/such/directory/x.xml"), true));
}

/// A wide tree: elements with an attribute and a text.
std::unique_ptr<vxXMLNode> MakeWideTree(int aCount) {
    std::unique_ptr<vxXMLNode> theRoot(Element("r"));
    vxXMLNode* theFirst = NULL;
    for (int i = 0; i < aCount; ++i) {
        vxXMLNode* theChild = Element("e");
        theChild->AddProperty("n", vxCString::Format("%d", i));
        theChild->AddChild(Text("t"));
        if (theFirst == NULL) {
            theRoot->AddChild(theChild);
        } else {
            theRoot->InsertChild(theChild, theFirst);
        }
        theFirst = theChild;
    }
    return theRoot;
}

TEST(XMLTest, NodesCopiedTogetherLiveOnOneByOne) {
    vxXMLNode* theCopy = new vxXMLNode(*MakeWideTree(500));
    std::vector<std::unique_ptr<vxXMLNode>> theKept;
    for (vxXMLNode* i = theCopy->GetChildren(); i != NULL;) {
        vxXMLNode* theNext = i->GetNext();
        if (i->GetPropertyValueAsUInt32("n", 1) % 3 == 0) {
            EXPECT_TRUE(theCopy->RemoveChild(i));
            theKept.emplace_back(i);
        }
        i = theNext;
    }
    delete theCopy;

    ASSERT_EQ(theKept.size(), 167U);
    EXPECT_EQ(Saved(*theKept.front()), "<e n=\"498\">t</e>\n");
    EXPECT_TRUE(theKept.front()->DeleteProperty("n"));
    theKept.front()->AddProperty("m", "new");
    theKept.front()->AddChild(Element("x"));
    EXPECT_EQ(Saved(*theKept.front()), "<e m=\"new\">t\n  <x/>\n</e>\n");
    EXPECT_EQ(Saved(*theKept.back()), "<e n=\"0\">t</e>\n");
}

TEST(XMLTest, NodesCopiedTogetherAreFreedInAnyThread) {
    vxXMLNode theCopy(*MakeWideTree(2000));
    std::vector<vxXMLNode*> theShares[2];
    for (size_t i = 0; theCopy.GetChildren() != NULL; ++i) {
        vxXMLNode* theChild = theCopy.GetChildren();
        EXPECT_TRUE(theCopy.RemoveChild(theChild));
        // Names and values are shared between nodes; threads take their own.
        theChild->DeleteProperty("n");
        vxXMLNode* theText = theChild->GetChildren();
        for (vxXMLNode* theNode : {theChild, theText}) {
            theNode->SetName(vxCString());
            theNode->SetContent(vxCString());
        }
        theShares[i % 2].push_back(theChild);
    }
    vxtest::Latch theStart(2);
    std::vector<std::thread> theThreads;
    for (const std::vector<vxXMLNode*>& theShare : theShares) {
        theThreads.emplace_back([&theShare, &theStart] {
            theStart.ArriveAndWait();
            for (vxXMLNode* theNode : theShare) {
                delete theNode;
            }
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
}

TEST(XMLTest, MemoryOfNodesCopiedTogetherComesBackWithTheLast) {
    const std::unique_ptr<vxXMLNode> theTree = MakeWideTree(2000);
    const auto theUsed = [] { return mallinfo2().uordblks; };
    const size_t theBefore = theUsed();
    for (int i = 0; i < 10; ++i) {
        vxXMLNode theCopy(*theTree);
        vxXMLNode* theFirst = theCopy.GetChildren();
        EXPECT_TRUE(theCopy.RemoveChild(theFirst));
        theCopy = vxXMLNode();
        delete theFirst;
    }
    // Some small blocks may be kept for the next ones.
    EXPECT_LT(theUsed(), theBefore + 16 * 1024);
}

// A million levels on a stack of 128 KiB: built, copied, searched, converted to a path, deleted.
TEST(XMLTest, DepthCostsNoStack) {
    pthread_attr_t theAttributes;
    pthread_attr_init(&theAttributes);
    pthread_attr_setstacksize(&theAttributes, 128 * 1024);
    pthread_t theThread;
    ASSERT_EQ(pthread_create(
                  &theThread, &theAttributes,
                  [](void*) -> void* {
                      const std::unique_ptr<vxXMLNode> theTop(Element("a"));
                      vxXMLNode* theNode = theTop.get();
                      for (int i = 0; i < 1000000; ++i) {
                          theNode->AddChild(Element("a"));
                          theNode = theNode->GetChildren();
                      }
                      theNode->SetName("z");
                      const vxXMLNode theCopy(*theTop);
                      const vxXMLNode* theFound = theCopy.FindChild(
                          [](const vxXMLNode* aNode, void*) { return aNode->NameIs("z"); }, NULL);
                      EXPECT_NE(theFound, nullptr);
                      return NULL;
                  },
                  NULL),
              0);
    pthread_join(theThread, NULL);
    pthread_attr_destroy(&theAttributes);
}

}  // namespace
