#include <gmock/gmock.h>
#include <vx/XMLBuilder.h>

#include <string>

#include "support/ExactText.h"
#include "support/Reports.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(XMLBuilderTest, AnElementWithoutContentIsWrittenAsAnEmptyOne) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.EndTag();
    EXPECT_STREQ(theBuilder.TakeXML(), "<a/>");
}

TEST(XMLBuilderTest, TextEndsTheStartTag) {
    vxXMLBuilder theBuilder(16);
    theBuilder.StartTag("a");
    theBuilder.AddText("x");
    theBuilder.EndTag();
    EXPECT_STREQ(theBuilder.TakeXML(), "<a>x</a>");
}

TEST(XMLBuilderTest, AttributeValuesAreEscaped) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.AddAttribute("k", "1<2");
    theBuilder.AddUInt32Attribute("n", 4294967295U);
    theBuilder.EndTag();
    EXPECT_STREQ(theBuilder.TakeXML(), "<a k=\"1&lt;2\" n=\"4294967295\"/>");
}

TEST(XMLBuilderTest, ElementsCloseInnermostFirst) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.StartTag("b");
    theBuilder.AddRaw("<raw>");
    theBuilder.EndTag();
    theBuilder.EndTag();
    EXPECT_STREQ(theBuilder.TakeXML(), "<a><b><raw></b></a>");
}

TEST(XMLBuilderTest, FreeTagsDoNotTouchTheStack) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.AddStartTag("b", true);
    theBuilder.AddStartTag("c", false);
    theBuilder.AddAttribute("k", "v");
    theBuilder.AddEndTag("c");
    theBuilder.AddEndTag("b");
    theBuilder.EndTag();
    EXPECT_STREQ(theBuilder.TakeXML(), "<a><b><c k=\"v\"/></b></a>");
}

TEST(XMLBuilderTest, LeafElementsCloseAPendingStartTag) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.AddTag("t", "1&2", 0, false);
    theBuilder.AddTag("e", "", 0, false);
    theBuilder.AddTag("z", NULL, 0, false);
    theBuilder.AddUInt32Tag("n", 7);
    theBuilder.AddRawTag("r", "\x01<", 2);
    theBuilder.AddEmptyTag("m");
    theBuilder.EndTag();
    EXPECT_STREQ(theBuilder.TakeXML(), "<a><t>1&amp;2</t><e/><z/><n>7</n><r>\x01<</r><m/></a>");
}

TEST(XMLBuilderTest, FiveCharactersAreEscapedOnceOrTwice) {
    EXPECT_STREQ(vxXMLBuilder::Escape("\"'<>&x", 6, 0, false), "&quot;&apos;&lt;&gt;&amp;x");
    EXPECT_STREQ(vxXMLBuilder::Escape("\"'<>&x", 6, 0, true),
                 "&amp;quot;&amp;apos;&amp;lt;&amp;gt;&amp;amp;x");
    EXPECT_STREQ(vxXMLBuilder::Escape("abc", 2, 0, false), "ab");
}

struct LimitCase {
    const char* mText;
    uint32_t mLimit;
    const char* mResult;
};

constexpr LimitCase kLimitCases[] = {
    {"a&b", 4, "a"},       {"a&b", 5, "a"},    {"a&b", 6, "a&amp;"}, {"a&b", 7, "a&amp;b"},
    {"a&b", 0, "a&amp;b"}, {"abc", 2, "ab"},   {"abc", 3, "abc"},    {"&", 4, ""},
    {"&", 5, "&amp;"},     {"ab<cd", 3, "ab"}, {"", 3, ""},          {"&b", 3, ""},
};

TEST(XMLBuilderTest, ALimitCountsBytesOfOutputAndCutsNoEntity) {
    for (const LimitCase& theCase : kLimitCases) {
        SCOPED_TRACE(testing::Message() << theCase.mText << " limited to " << theCase.mLimit);
        const uint32_t theLength = static_cast<uint32_t>(strlen(theCase.mText));
        EXPECT_STREQ(vxXMLBuilder::Escape(theCase.mText, theLength, theCase.mLimit, false),
                     theCase.mResult);
    }
}

TEST(XMLBuilderTest, ALimitCountsTheLongerEntitiesOfDoubleEscaping) {
    EXPECT_STREQ(vxXMLBuilder::Escape("a<b", 3, 8, true), "a");
    EXPECT_STREQ(vxXMLBuilder::Escape("a<b", 3, 9, true), "a&amp;lt;");
    EXPECT_STREQ(vxXMLBuilder::Escape("a<b", 3, 10, true), "a&amp;lt;b");
    vxXMLBuilder theBuilder(0);
    theBuilder.AddTag("t", "a&b", 4, false);
    theBuilder.AddTag("t", "a&b", 0, true);
    theBuilder.AddTag("t", "&", 4, false);
    EXPECT_STREQ(theBuilder.TakeXML(), "<t>a</t><t>a&amp;amp;b</t><t></t>");
}

/// Byte by byte: what escaping must give.
std::string Escaped(const std::string& aText, size_t aLimit, bool afDouble) {
    std::string theResult;
    for (const char theChar : aText) {
        const std::string theName = theChar == '"'    ? "quot;"
                                    : theChar == '\'' ? "apos;"
                                    : theChar == '<'  ? "lt;"
                                    : theChar == '>'  ? "gt;"
                                    : theChar == '&'  ? "amp;"
                                                      : "";
        const std::string thePiece =
            theName.empty() ? std::string(1, theChar) : (afDouble ? "&amp;" : "&") + theName;
        if (aLimit != 0 && theResult.size() + thePiece.size() > aLimit) {
            break;
        }
        theResult += thePiece;
    }
    return theResult;
}

TEST(XMLBuilderTest, EveryPlaceOfATextIsEscapedUnderEveryLimit) {
    for (size_t theLength = 1; theLength < 28; ++theLength) {
        for (size_t thePlace = 0; thePlace < theLength; ++thePlace) {
            const char theChar = "\"'<>&"[(theLength + thePlace) % 5];
            std::string theText(theLength, '\x80');
            theText[thePlace] = theChar;
            theText[thePlace * 3 % theLength] = '&';
            for (uint32_t theLimit = 0; theLimit < theLength + 12; ++theLimit) {
                const bool theIsDouble = theLimit % 2 == 1;
                const vxtest::ExactBytes theBytes(theText, thePlace % 8);
                ASSERT_EQ(vxXMLBuilder::Escape(theBytes, static_cast<uint32_t>(theLength), theLimit,
                                               theIsDouble)
                              .c_str(),
                          Escaped(theText, theLimit, theIsDouble));
            }
        }
    }
}

TEST(XMLBuilderTest, ElementsMayNestAndNamesMayBeLong) {
    vxXMLBuilder theBuilder(0);
    std::string theExpected;
    std::string theEnds;
    for (size_t i = 0; i < 300; ++i) {
        const std::string theName(i, 'n');
        theBuilder.StartTag(theName.c_str());
        theBuilder.AddRaw("-");
        theExpected += "<" + theName + ">-";
        theEnds = "</" + theName + ">" + theEnds;
    }
    for (size_t i = 0; i < 300; ++i) {
        theBuilder.EndTag();
    }
    EXPECT_EQ(theBuilder.TakeXML().c_str(), theExpected + theEnds);
}

TEST(XMLBuilderTest, TextAndAttributesAreEscapedOnceAndRawTextNever) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.AddAttribute("k", "\"'<>&");
    theBuilder.AddText("\"'<>&");
    theBuilder.AddText(vxCString("&amp;"));
    theBuilder.AddRaw("&amp;\"");
    theBuilder.EndTag();
    EXPECT_STREQ(
        theBuilder.TakeXML(),
        "<a k=\"&quot;&apos;&lt;&gt;&amp;\">&quot;&apos;&lt;&gt;&amp;&amp;amp;&amp;\"</a>");
}

TEST(XMLBuilderTest, EverythingButAttributesEndsTheStartTag) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.AddText("");
    theBuilder.AddStartTag("b", false);
    theBuilder.AddRaw("");
    theBuilder.AddStartTag("c", false);
    theBuilder.AddText(vxCString());
    theBuilder.AddStartTag("d", false);
    theBuilder.CloseStartTag();
    theBuilder.CloseStartTag();
    theBuilder.AddStartTag("e", false);
    theBuilder.AddEmptyTag("f");
    theBuilder.AddStartTag("g", false);
    theBuilder.AddTag("h", "", 0, false);
    theBuilder.AddEndTag("other");
    theBuilder.AddStartTag("i", false);
    theBuilder.EndTag();
    EXPECT_STREQ(theBuilder.TakeXML(), "<a><b><c><d><e><f/><g><h/></other><i/>");
}

TEST(XMLBuilderTest, EscapeAndAddLeavesAnOpenStartTagOpen) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.EscapeAndAdd(" k=\"", 3, 0, false);
    EXPECT_STREQ(theBuilder.TakeXML(), "<a k=>");
}

TEST(XMLBuilderTest, EscapeAndAddEscapesAsEscapeDoesBehindWhatIsThere) {
    vxXMLBuilder theBuilder(0);
    theBuilder.AddRaw("12345");
    theBuilder.EscapeAndAdd("a<bc", 4, 5, false);  // the limit counts what is added
    theBuilder.AddRaw("|");
    theBuilder.EscapeAndAdd("a<bc", 4, 6, true);
    theBuilder.AddRaw("|");
    theBuilder.EscapeAndAdd("a'bc", 3, 0, true);
    theBuilder.AddRaw("|");
    theBuilder.EscapeAndAdd(NULL, 3, 0, false);
    EXPECT_STREQ(theBuilder.TakeXML(), "12345a&lt;|a|a&amp;apos;b|");
    EXPECT_STREQ(vxXMLBuilder::Escape(NULL, 3, 0, false), "");
}

TEST(XMLBuilderTest, NullTextsAreEmptyEverywhere) {
    vxtest::Reports theReports;
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag(NULL);
    theBuilder.AddAttribute(NULL, NULL);
    theBuilder.AddUInt32Attribute(NULL, 0);
    theBuilder.AddText(static_cast<const char*>(NULL));
    theBuilder.AddRaw(NULL);
    theBuilder.AddTag(NULL, NULL, 0, false);
    theBuilder.AddRawTag(NULL, NULL, 3);
    theBuilder.AddEmptyTag(NULL);
    theBuilder.AddStartTag(NULL, true);
    theBuilder.AddEndTag(NULL);
    theBuilder.EndTag();
    EXPECT_STREQ(theBuilder.TakeXML(),
                 "< =\"\" =\"0\">"
                 "</>"
                 "<></>"
                 "</>"
                 "<></>"
                 "</>");
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(XMLBuilderTest, NumbersAndRawBytesCloseAPendingStartTagThemselves) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.AddUInt32Tag("n", 4294967295U);
    theBuilder.StartTag("b");
    theBuilder.AddRawTag("r", "&amp;", 5);
    theBuilder.EndTag();
    theBuilder.EndTag();
    EXPECT_STREQ(theBuilder.TakeXML(), "<a><n>4294967295</n><b><r>&amp;</r></b></a>");
}

TEST(XMLBuilderTest, ATextOfAStringIsAddedWithAllItsBytes) {
    vxXMLBuilder theBuilder(0);
    theBuilder.AddText(vxCString("a<\0>b", 5));
    const vxCString theXML = theBuilder.TakeXML();
    EXPECT_EQ(std::string(theXML.c_str(), 11), std::string("a&lt;\0&gt;b", 11));
}

TEST(XMLBuilderTest, AttributesWithoutAStartTagAreReported) {
    vxtest::Reports theReports;
    vxXMLBuilder theBuilder(0);
    theBuilder.AddUInt32Attribute("n", 1);
    theBuilder.AddAttribute("k", "v");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mfTagStarted", "mfTagStarted"));
    EXPECT_STREQ(theBuilder.TakeXML(), "");
}

TEST(XMLBuilderTest, EndsWithoutABeginningAreReported) {
    vxtest::Reports theReports;
    vxXMLBuilder theBuilder(0);
    theBuilder.EndTag();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mTagArray != NULL"));
    theReports.Clear();
    theBuilder.StartTag("a");
    theBuilder.EndTag();
    theBuilder.EndTag();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("theCount > 0"));
    EXPECT_STREQ(theBuilder.TakeXML(), "<a/>");
}

TEST(XMLBuilderTest, TakingClosesTheStartTagButNoElement) {
    vxtest::Reports theReports;
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("a");
    theBuilder.StartTag("b");
    EXPECT_STREQ(theBuilder.TakeXML(), "<a><b>");
    EXPECT_STREQ(theBuilder.TakeXML(), "");
    theBuilder.EndTag();
    EXPECT_STREQ(theBuilder.TakeXML(), "</b>");
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

}  // namespace
