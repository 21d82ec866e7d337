#include <gmock/gmock.h>
#include <vx/Error.h>
#include <vx/File.h>
#include <vx/PathName.h>
#include <vx/XML.h>
#include <vx/XMLParser.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/ExactText.h"
#include "support/TempDir.h"

namespace {

/// Returns what the writer makes of a text, or the error.
std::string ReadAndWritten(const std::string& aText) {
    vxXMLDocument theDocument;
    vxError theError;
    if (!vxXMLParser().Parse(aText.data(), aText.size(), theDocument, theError)) {
        return theError.GetErrorStr().c_str();
    }
    vxCString theText;
    theDocument.GetRoot()->SaveStr(theText);
    return theText.c_str();
}

struct TextCase {
    const char* mText;
    const char* mWritten;
};

constexpr TextCase kTextCases[] = {
    {"<a/>", "<a/>\n"},
    {"<a></a>", "<a/>\n"},
    {"<a >x</a >", "<a>x</a>\n"},
    {"\xEF\xBB\xBF<a/>", "<a/>\n"},
    {"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone='yes'?>\n<a/>\n", "<a/>\n"},
    {"<?pi?><!-- c --><!DOCTYPE a SYSTEM \"a[].dtd\"><a/><!-- d --><?pi?> ", "<a/>\n"},
    {"<a b='1' c=\"2\"/>", "<a b=\"1\" c=\"2\"/>\n"},
    {"<a b = '\"'/>", "<a b=\"&quot;\"/>\n"},
    {"<a b='x\ty\r\nz'/>", "<a b=\"x y z\"/>\n"},
    {"<a>&lt;&gt;&quot;&apos;&#65;&#x42;</a>", "<a>&lt;&gt;\"'AB</a>\n"},
    {"<a>&#8364;&#x1F3B5;</a>", "<a>\xE2\x82\xAC\xF0\x9F\x8E\xB5</a>\n"},
    {"<a><![CDATA[<b>&amp;]]></a>", "<a>&lt;b&gt;&amp;</a>\n"},
    {"<a>x<![CDATA[y]]>z</a>", "<a>xyz</a>\n"},
    {"<a>one\r\ntwo\rthree</a>", "<a>one\ntwo\nthree</a>\n"},
    {"<a>\n  <b/>\n  <c/>\n</a>", "<a>\n  <b/>\n  <c/>\n</a>\n"},
    {"<a> </a>", "<a> </a>\n"},
    {"<a><?pi x?><b/></a>", "<a>\n  <b/>\n</a>\n"},
    {"<a><!-- c --><b/></a>", "<a>\n  <!-- c -->\n  <b/>\n</a>\n"},
    {"<n:a-1._b/>", "<n:a-1._b/>\n"},
    {"<\xC3\xA9/>", "<\xC3\xA9/>\n"},
    {"<a\xC2\xB7\xCC\x80/>", "<a\xC2\xB7\xCC\x80/>\n"},
    {"<\xF0\x90\x80\x80/>", "<\xF0\x90\x80\x80/>\n"},
    {"<?xml-stylesheet x?><!DOCTYPE a PUBLIC '-//x//EN' 'y'><a/>", "<a/>\n"},
};

TEST(XMLParserTest, TextBecomesATree) {
    for (const TextCase& theCase : kTextCases) {
        SCOPED_TRACE(theCase.mText);
        EXPECT_EQ(ReadAndWritten(theCase.mText), theCase.mWritten);
    }
}

TEST(XMLParserTest, BlanksBesideTextStay) {
    vxXMLDocument theDocument;
    vxError theError;
    ASSERT_TRUE(vxXMLParser().Parse("<p>Hello <b>big</b> <i>world</i></p>", theDocument, theError));
    const vxXMLNode* theNode = theDocument.GetRoot()->GetChildren();
    EXPECT_STREQ(theNode->GetContent(), "Hello ");
    EXPECT_STREQ(theNode->GetNext()->GetNext()->GetContent(), " ");
    EXPECT_STREQ(theNode->GetNext()->GetNext()->GetName(), "text");
}

TEST(XMLParserTest, BlankSectionsAreText) {
    EXPECT_EQ(ReadAndWritten("<a><b/><![CDATA[ ]]></a>"), "<a>\n  <b/> </a>\n");
}

/// A child as "<kind>content;".
std::string Told(char aKind, const std::string& aContent) {
    return aKind + aContent + ";";
}

std::string Children(const vxXMLNode& aNode) {
    std::string theText;
    for (const vxXMLNode* i = aNode.GetChildren(); i != NULL; i = i->GetNext()) {
        EXPECT_EQ(i->GetParent(), &aNode);
        theText += i->GetType() == vxXMLNodeType_Text      ? Told('t', i->GetContent().c_str())
                   : i->GetType() == vxXMLNodeType_Comment ? Told('c', i->GetContent().c_str())
                                                           : Told('e', Children(*i));
    }
    return theText;
}

/// Makes the inside of an element of random pieces, and tells what children it must have.
class RandomContent {
public:
    explicit RandomContent(std::mt19937& aRandom) : mRandom(aRandom) {}

    std::string Make(int aDepth, std::string& aText) {
        static const char* const kPieces[] = {
            " ", "\n\t", "x", "&#32;", "<![CDATA[ ]]>", "<![CDATA[]]>", "&amp;", "\r\n", "y > z"};
        static const char* const kTexts[] = {" ", "\n\t", "x", " ", " ", "", "&", "\n", "y > z"};
        for (size_t i = mRandom() % 6; i > 0; --i) {
            const size_t thePiece = mRandom() % 14;
            if (thePiece < 9) {
                aText += kPieces[thePiece];
                mText += kTexts[thePiece];
                mfHasText |= thePiece == 4 || thePiece == 5;
                mfInText = true;
            } else if (thePiece == 9) {
                aText += "<?skipped?>";
            } else if (thePiece == 10) {
                aText += "<!--c-->";
                Add(Told('c', "c"));
            } else if (thePiece == 11 || aDepth == 0) {
                aText += "<e/>";
                Add(Told('e', ""));
            } else {
                aText += "<e>";
                Flush();
                Add(Told('e', RandomContent(mRandom).Make(aDepth - 1, aText)));
                aText += "</e>";
            }
        }
        Flush();
        return Result();
    }

private:
    void Add(const std::string& aChild) {
        Flush();
        mChildren.emplace_back(aChild, false);
    }
    void Flush() {
        const bool theIsBlank = !mfHasText && mText.find_first_not_of(" \t\n") == std::string::npos;
        mfHasOthers |= mfInText && !theIsBlank;
        if (!mText.empty()) {
            mChildren.emplace_back(Told('t', mText), theIsBlank);
        }
        mText.clear();
        mfHasText = false;
        mfInText = false;
    }
    std::string Result() const {
        std::string theText;
        for (const auto& theChild : mChildren) {
            const bool theIsDropped = theChild.second && !mfHasOthers && mChildren.size() > 1;
            theText += theIsDropped ? "" : theChild.first;
        }
        return theText;
    }

    std::mt19937& mRandom;
    std::vector<std::pair<std::string, bool>> mChildren;  // and whether it is blank text
    std::string mText;                                    // read since the last child
    bool mfInText = false;
    bool mfHasText = false;    // a section is part of it, and so it is no blank
    bool mfHasOthers = false;  // some text is not blank
};

TEST(XMLParserTest, BlanksStayOrGoByWhatStandsBesideThem) {
    std::mt19937 theRandom(1);
    for (int i = 0; i < 20000; ++i) {
        std::string theText = "<a>";
        const std::string theExpected = RandomContent(theRandom).Make(2, theText);
        theText += "</a>";
        vxXMLDocument theDocument;
        vxError theError;
        ASSERT_TRUE(vxXMLParser().Parse(theText.data(), theText.size(), theDocument, theError))
            << theText;
        ASSERT_EQ(Children(*theDocument.GetRoot()), theExpected) << theText;
    }
}

struct PlaceCase {
    const char* mText;
    const char* mInText;       // null: refused
    const char* mInAttribute;  // null: refused
};

constexpr PlaceCase kPlaceCases[] = {
    {"\r", "\n", " "},     {"\r\n", "\n", " "},
    {"\n", "\n", " "},     {"\t", "\t", " "},
    {">", ">", ">"},       {"]>", "]>", "]>"},
    {"]]", "]]", "]]"},    {"]]>", NULL, "]]>"},
    {"&amp;", "&", "&"},   {"&#x41;", "A", "A"},
    {"&", NULL, NULL},     {"<", NULL, NULL},
    {"&#13;", "\r", "\r"}, {"<![CDATA[<]]>", "<", NULL},
    {"'", "'", "'"},       {"\xC3\xA9", "\xC3\xA9", "\xC3\xA9"},
    {"\x01", NULL, NULL},  {"\x7f", "\x7f", "\x7f"},
};

/// What a text is read as, where it stands in an element; "refused" where it is.
std::string ReadText(const std::string& aText, size_t aShift) {
    const std::string theXML = "<a>" + aText + "</a>";
    vxXMLDocument theDocument;
    vxError theError;
    if (!vxXMLParser().Parse(vxtest::ExactBytes(theXML, aShift), theXML.size(), theDocument,
                             theError)) {
        return "refused";
    }
    return theDocument.GetRoot()->GetTextContent().c_str();
}

/// What a text is read as, where it is the value of an attribute; "refused" where it is.
std::string ReadValue(const std::string& aText, size_t aShift) {
    const std::string theXML = "<a b=\"" + aText + "\"/>";
    vxXMLDocument theDocument;
    vxError theError;
    if (!vxXMLParser().Parse(vxtest::ExactBytes(theXML, aShift), theXML.size(), theDocument,
                             theError)) {
        return "refused";
    }
    return theDocument.GetRoot()->GetPropertyValue("b", vxCString("none")).c_str();
}

TEST(XMLParserTest, WhatIsNotPlainIsFoundAtEveryPlaceOfTexts) {
    for (size_t theLength = 1; theLength <= 40; ++theLength) {
        for (size_t thePlace = 0; thePlace <= theLength; ++thePlace) {
            for (const PlaceCase& theCase : kPlaceCases) {
                const std::string theBefore(thePlace, 'x');
                const std::string theBehind(theLength - thePlace, 'y');
                const std::string theText = theBefore + theCase.mText + theBehind;
                const size_t theShift = (theLength + thePlace) % 8;
                ASSERT_EQ(
                    ReadText(theText, theShift),
                    theCase.mInText == NULL ? "refused" : theBefore + theCase.mInText + theBehind)
                    << theText;
                ASSERT_EQ(ReadValue(theText, theShift),
                          theCase.mInAttribute == NULL
                              ? "refused"
                              : theBefore + theCase.mInAttribute + theBehind)
                    << theText;
            }
        }
    }
}

TEST(XMLParserTest, ForbiddenCharactersAreFoundAtEveryPlace) {
    for (size_t thePlace = 0; thePlace < 24; ++thePlace) {
        for (const char* theBad : {"\x01", "\x1f", "\x0b", "\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
            std::string theText = "<a>" + std::string(24, 'x') + "</a>";
            theText.replace(3 + thePlace, 1, theBad);
            vxXMLDocument theDocument;
            vxError theError;
            EXPECT_FALSE(
                vxXMLParser().Parse(theText.data(), theText.size(), theDocument, theError));
            EXPECT_EQ(theError.GetErrorStr().c_str(), "line 1, column " +
                                                          std::to_string(4 + thePlace) +
                                                          ": expected a character that XML allows");
        }
        for (const char* theGood : {"\n", "\t", "\r", "\x7f", "\xEF\xBF\xBD", "\xEF\xBE\xBF"}) {
            std::string theText = "<a>" + std::string(24, 'x') + "</a>";
            theText.replace(3 + thePlace, 1, theGood);
            vxXMLDocument theDocument;
            vxError theError;
            EXPECT_TRUE(vxXMLParser().Parse(theText.data(), theText.size(), theDocument, theError));
        }
    }
}

constexpr TextCase kRefusals[] = {
    {"", "line 1, column 1: expected the root element"},
    {"text", "line 1, column 1: expected the root element"},
    {"<a>", "line 1, column 4: expected an end tag"},
    {"<a></b>", "line 1, column 4: expected the end tag of the innermost element"},
    {"<a></ab>", "line 1, column 4: expected the end tag of the innermost element"},
    {"<ab></a>", "line 1, column 5: expected the end tag of the innermost element"},
    {"<a></a", "line 1, column 7: expected \">\""},
    {"<a><b></a></b>", "line 1, column 7: expected the end tag of the innermost element"},
    {"<a/><b/>", "line 1, column 5: expected the end of the document"},
    {"<a>\n<b x=1/></a>", "line 2, column 6: expected a quoted value"},
    {"<a b='1' b='2'/>",
     "line 1, column 10: expected an attribute that the element does not have yet"},
    {"<a b='1'c='2'/>", "line 1, column 9: expected a blank, \">\" or \"/>\""},
    {"<a b/>", "line 1, column 5: expected \"=\""},
    {"<a b='<'/>", "line 1, column 7: expected \"&lt;\" in place of \"<\""},
    {"<a b='1", "line 1, column 8: expected the closing quote"},
    {"<1/>", "line 1, column 2: expected a name"},
    {"<a>&nbsp;</a>",
     "line 1, column 4: expected &amp;, &lt;, &gt;, &quot;, &apos; or a character reference"},
    {"<a>&amp</a>",
     "line 1, column 4: expected &amp;, &lt;, &gt;, &quot;, &apos; or a character reference"},
    {"<a>&#0;</a>", "line 1, column 4: expected a reference to a character that XML allows"},
    {"<a>&#xD800;</a>", "line 1, column 4: expected a reference to a character that XML allows"},
    {"<a>&#1114112;</a>", "line 1, column 4: expected a reference to a character that XML allows"},
    {"<a>&#;</a>", "line 1, column 4: expected a reference to a character that XML allows"},
    {"<a>]]></a>", "line 1, column 4: expected \"]]&gt;\" in place of \"]]>\""},
    {"<a><![CDATA[x</a>", "line 1, column 18: expected \"]]>\""},
    {"<a><!-- -- --></a>", "line 1, column 9: expected \"-->\""},
    {"<a>\x01</a>", "line 1, column 4: expected a character that XML allows"},
    {"<a>\xC3\xA9\xFF</a>", "line 1, column 5: expected valid UTF-8"},
    {"<!DOCTYPE a [<!ENTITY x 'y'>]><a/>",
     "line 1, column 13: expected a DOCTYPE without an internal subset"},
    {"<?xml version='1.0' encoding='latin1'?><a/>",
     "line 1, column 38: expected the encoding UTF-8"},
    {"<?xml version='2.0'?><a/>", "line 1, column 20: expected version 1.0"},
    {"<?xml version='1.'?><a/>", "line 1, column 19: expected version 1.0"},
    {"<?xml version='1.0x'?><a/>", "line 1, column 21: expected version 1.0"},
    {"<?xml version='1.0'encoding='utf-8'?><a/>", "line 1, column 20: expected \"?>\""},
    {"<?xml version='1.0' standalone='maybe'?><a/>",
     "line 1, column 39: expected standalone=\"yes\" or \"no\""},
    {"<?xml version='1.0' encoding='US-ASCII'?><\xC3\xA9/>",
     "line 1, column 43: expected a character of us-ascii"},
    {" <?xml version='1.0'?><a/>", "line 1, column 4: expected a name other than \"xml\""},
    {"<a><?XML x?></a>", "line 1, column 6: expected a name other than \"xml\""},
    {"<a><? x?></a>", "line 1, column 6: expected a name"},
    {"<?p+?><a/>", "line 1, column 4: expected a blank or \"?>\""},
    {"<?p ?", "line 1, column 6: expected \"?>\""},
    {"<!-- -- --><a/>", "line 1, column 6: expected \"-->\""},
    {"<a/><!-- --->", "line 1, column 10: expected \"-->\""},
    {"<a/><!-- --", "line 1, column 10: expected \"-->\""},
    {"<!--\x02--><a/>", "line 1, column 5: expected a character that XML allows"},
    {"<a b='\xEF\xBF\xBF'/>", "line 1, column 7: expected a character that XML allows"},
    {"<\xC3\x97/>", "line 1, column 2: expected a name"},
    {"<\xC2\xB7/>", "line 1, column 2: expected a name"},
    {"<!DOCTYPE a><!DOCTYPE a><a/>", "line 1, column 14: expected a name"},
    {"<!DOCTYPEa><a/>", "line 1, column 10: expected a blank"},
    {"<!DOCTYPE 'a'><a/>", "line 1, column 11: expected a name"},
    {"<!DOCTYPE a b><a/>", "line 1, column 13: expected \">\""},
    {"<!DOCTYPE a SYSTEM b><a/>", "line 1, column 20: expected a quoted text"},
    {"<!DOCTYPE a SYSTEM 'b><a/>", "line 1, column 27: expected the closing quote"},
    {"<!DOCTYPE a PUBLIC 'b'><a/>", "line 1, column 23: expected a blank"},
    {"<!DOCTYPE a PUBLIC '<' 'c'><a/>",
     "line 1, column 23: expected a public name of characters that XML allows there"},
    {"<a", "line 1, column 3: expected a blank, \">\" or \"/>\""},
    {"<", "line 1, column 2: expected a name"},
};

TEST(XMLParserTest, RefusalsSayWhereAndWhatWasExpected) {
    for (const TextCase& theCase : kRefusals) {
        SCOPED_TRACE(theCase.mText);
        EXPECT_EQ(ReadAndWritten(theCase.mText), theCase.mWritten);
    }
}

TEST(XMLParserTest, NamesThatAreAlikeStayApart) {
    std::string theText = "<r>";
    for (int theRound = 0; theRound < 2; ++theRound) {
        for (const char theSecond : std::string("xyz")) {
            for (const char theFourth : std::string("xyz")) {
                const std::string theName = {'a', theSecond, 'c', theFourth, 'e'};
                const std::string theOther = {'a', theFourth, 'c', 'w', 'e'};
                theText += "\n  <" + theName + " " + theName + "=\"1\" " + theOther + "=\"2\">t</" +
                           theName + ">";
            }
        }
    }
    theText += "\n</r>\n";
    EXPECT_EQ(ReadAndWritten(theText), theText);
}

TEST(XMLParserTest, AFailureLeavesTheDocumentAlone) {
    vxXMLDocument theDocument;
    theDocument.SetRoot(new vxXMLNode(vxXMLNodeType_Element, "kept", ""));
    vxError theError;
    EXPECT_FALSE(vxXMLParser().Parse("<a><b></a>", theDocument, theError));
    EXPECT_EQ(theError.GetErrorCode(), kvxXMLParserError_Syntax);
    EXPECT_STREQ(theError.GetModule(), "XMLParser");
    EXPECT_STREQ(theDocument.GetRoot()->GetName(), "kept");
}

TEST(XMLParserTest, LimitsHoldOnBothSides) {
    vxXMLParserLimits theLimits;
    theLimits.mMaxDepth = 2;
    theLimits.mMaxAttributes = 2;
    theLimits.mMaxTextSize = 4;
    const vxXMLParser theParser(theLimits);
    const auto theCode = [&theParser](const char* aText) {
        vxXMLDocument theDocument;
        vxError theError;
        theParser.Parse(aText, theDocument, theError);
        return theError.GetErrorCode();
    };
    EXPECT_EQ(theCode("<a><b/></a>"), 0);
    EXPECT_EQ(theCode("<a><b><c/></b></a>"), kvxXMLParserError_Limit);
    EXPECT_EQ(theCode("<a x='1' y='2'/>"), 0);
    EXPECT_EQ(theCode("<a x='1' y='2' z='3'/>"), kvxXMLParserError_Limit);
    EXPECT_EQ(theCode("<a>1234</a>"), 0);
    EXPECT_EQ(theCode("<a>12345</a>"), kvxXMLParserError_Limit);
    EXPECT_EQ(theCode("<a x='1234'/>"), 0);
    EXPECT_EQ(theCode("<a x='12345'/>"), kvxXMLParserError_Limit);
    EXPECT_EQ(theCode("<abcd/>"), 0);
    EXPECT_EQ(theCode("<abcde/>"), kvxXMLParserError_Limit);
}

TEST(XMLParserTest, AMillionOpenElementsAreRefusedByDefaultAndReadWhenAllowed) {
    std::string theText;
    for (int i = 0; i < 1000000; ++i) {
        theText += "<a>";
    }
    EXPECT_EQ(ReadAndWritten(theText),
              "line 1, column 3003: expected fewer elements within each other");
    vxXMLParserLimits theLimits;
    theLimits.mMaxDepth = 2000000;
    vxXMLDocument theDocument;
    vxError theError;
    EXPECT_FALSE(vxXMLParser(theLimits).Parse(theText.c_str(), theDocument, theError));
    EXPECT_STREQ(theError.GetErrorStr(), "line 1, column 3000001: expected an end tag");
}

TEST(XMLParserTest, EveryTruncationIsRefused) {
    const std::string theText =
        "<?xml version='1.0'?><a b='1&amp;'><!--c--><![CDATA[d]]>&#65;<e f='g'/>h</a>";
    for (size_t i = 0; i < theText.size(); ++i) {
        const vxtest::ExactBytes theBytes(theText.substr(0, i), i % 8);
        vxXMLDocument theDocument;
        vxError theError;
        EXPECT_FALSE(vxXMLParser().Parse(theBytes, i, theDocument, theError)) << i;
    }
}

TEST(XMLParserTest, FilesAreReadOrRefusedWithTheirOwnError) {
    const vxtest::TempDir theDir;
    const std::string thePath = theDir.Write("file.xml", "<a>x</a>");
    vxXMLDocument theDocument;
    vxError theError;
    EXPECT_TRUE(
        vxXMLParser().ParseFile(vxPathName::MakeFilePath(thePath.c_str()), theDocument, theError));
    EXPECT_STREQ(theDocument.GetRoot()->GetTextContent(), "x");
    vxFile::Remove(thePath.c_str());
    EXPECT_FALSE(
        vxXMLParser().ParseFile(vxPathName::MakeFilePath(thePath.c_str()), theDocument, theError));
    EXPECT_EQ(theError.GetErrorStr().c_str(), "Unable to open file '" + thePath + "'");
    EXPECT_STREQ(theDocument.GetRoot()->GetTextContent(), "x");
}

// What the writer turns into something else when it is read again.
TEST(XMLParserTest, TheWritersExceptionsAreThese) {
    EXPECT_EQ(ReadAndWritten("<a>&amp;amp;</a>"), "<a>&amp;</a>\n");
    EXPECT_EQ(ReadAndWritten("<a b='x&#10;y&#9;z'/>"), "<a b=\"x\ny\tz\"/>\n");
    EXPECT_EQ(ReadAndWritten("<p>a<b/>c</p>"), "<p>a\n  <b/>c</p>\n");
    EXPECT_EQ(ReadAndWritten("<p>a<!--b-->c</p>"), "<p>a\n  <!--b-->c</p>\n");
    EXPECT_EQ(ReadAndWritten("<a>x&#13;y</a>"), "<a>x\ry</a>\n");
    EXPECT_EQ(ReadAndWritten(ReadAndWritten("<a><b/><![CDATA[ ]]></a>")), "<a>\n  <b/>\n</a>\n");
}

}  // namespace
