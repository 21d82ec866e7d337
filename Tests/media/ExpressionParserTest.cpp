#include <gmock/gmock.h>
#include <malloc.h>
#include <vx/ExpressionParser.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "support/Growth.h"
#include "support/Reports.h"
#include "support/SmallStack.h"

using testing::ElementsAre;

namespace {

// A tree's shape: [ ] around links, ( ) around groups, names for comparisons.
std::string Shape(vxSearchExpression* anExpression) {
    if (anExpression == nullptr) {
        return "";
    }
    if (anExpression->IsComposite()) {
        return "(" + Shape(static_cast<vxCompositeExpression*>(anExpression)->GetExpression()) +
               ")";
    }
    if (anExpression->IsLinear()) {
        const auto* theLink = static_cast<vxLinearExpression*>(anExpression);
        const std::string theOperand = theLink->GetOperand().c_str();
        return "[" + Shape(theLink->GetExpression()) +
               (theOperand.empty() ? "" : " " + theOperand + " ") + Shape(theLink->GetNext()) + "]";
    }
    return static_cast<vxRelExpression*>(anExpression)->GetPropertyName().c_str();
}

// Shape of a text's tree, or where and why it has none.
std::string ShapeOf(const std::string& aText) {
    vxExpressionParser theParser(vxCString(aText.c_str(), aText.length()));
    if (!theParser.Parse()) {
        return std::to_string(theParser.GetErrorPosition()) + ": " + theParser.GetExpected();
    }
    return theParser.GetExpression() == nullptr ? "*" : Shape(theParser.GetExpression());
}

// Names that begin with 't' are true.
class NameEvaluator : public vxSearchExpressionEvaluator {
public:
    bool Evaluate(vxRelExpression* anExpression) override {
        return anExpression->GetPropertyName()[0] == 't';
    }
};

// One object with a title, an artist and so on, all compared as texts.
class SongEvaluator : public vxSearchExpressionEvaluator {
public:
    explicit SongEvaluator(std::vector<std::pair<std::string, std::string>> aFields)
        : mFields(std::move(aFields)) {}

    bool Evaluate(vxRelExpression* anExpression) override {
        for (const auto& theField : mFields) {
            if (anExpression->GetPropertyName() == theField.first.c_str()) {
                return anExpression->MatchString(theField.second.c_str());
            }
        }
        return anExpression->MatchString(NULL);
    }

private:
    std::vector<std::pair<std::string, std::string>> mFields;
};

bool Matches(const char* aText, std::vector<std::pair<std::string, std::string>> aFields) {
    vxExpressionParser theParser(aText);
    theParser.Parse();
    SongEvaluator theEvaluator(std::move(aFields));
    return theParser.Evaluate(&theEvaluator);
}

vxRelExpression* FirstOf(vxExpressionParser& aParser) {
    return static_cast<vxRelExpression*>(
        static_cast<vxLinearExpression*>(aParser.GetExpression())->GetExpression());
}

std::string Repeated(const std::string& aText, size_t aCount) {
    std::string theResult;
    for (size_t i = 0; i < aCount; ++i) {
        theResult += aText;
    }
    return theResult;
}

TEST(ExpressionParserTest, ValuesHaveTheirNumbers) {
    EXPECT_EQ(kvxExpressionValueID_None, 0);
    EXPECT_EQ(kvxExpressionValueID_String, 1);
    EXPECT_EQ(kvxExpressionValueID_Boolean, 2);
    EXPECT_EQ(kvxExpressionValueID_Operand, 3);
}

TEST(ExpressionParserTest, AParserIsNotValidBeforeItHasParsed) {
    vxtest::Reports theReports;
    vxExpressionParser theParser("*");
    NameEvaluator theEvaluator;
    EXPECT_FALSE(theParser.IsValid());
    EXPECT_FALSE(theParser.Evaluate(&theEvaluator));
    EXPECT_EQ(theParser.GetExpression(), nullptr);
    EXPECT_EQ(theParser.GetErrorPosition(), vxCString::npos);
    EXPECT_STREQ(theParser.GetExpected(), "");
    theParser.Display();
    EXPECT_EQ(theReports.Console(), "not parsed\n");
}

TEST(ExpressionParserTest, AStarMatchesEveryObject) {
    for (const char* theText : {"*", " *", "* ", " \t\r\n\v\f*\f\v\n\r\t "}) {
        vxExpressionParser theParser(theText);
        EXPECT_TRUE(theParser.Parse());
        EXPECT_TRUE(theParser.IsValid());
        EXPECT_TRUE(theParser.Evaluate(NULL));
        EXPECT_EQ(theParser.GetExpression(), nullptr);
        EXPECT_STREQ(theParser.GetSearchCriteriaList(), "");
    }
}

struct OperatorCase {
    const char* mText;
    int mOperandID;
    const char* mOperand;
    const char* mValue;
};

constexpr OperatorCase kOperatorCases[] = {
    {"p = \"v\"", kvxExpressionOperandID_Equal, "=", "v"},
    {"p != \"v\"", kvxExpressionOperandID_NotEqual, "!=", "v"},
    {"p <= \"v\"", kvxExpressionOperandID_SmallerOrEqual, "<=", "v"},
    {"p >= \"v\"", kvxExpressionOperandID_GreaterOrEqual, ">=", "v"},
    {"p > \"v\"", kvxExpressionOperandID_Greater, ">", "v"},
    {"p < \"v\"", kvxExpressionOperandID_Smaller, "<", "v"},
    {"p contains \"v\"", kvxExpressionOperandID_Contains, "contains", "v"},
    {"p doesNotContain \"v\"", kvxExpressionOperandID_DoesNotContain, "doesNotContain", "v"},
    {"p derivedfrom \"v\"", kvxExpressionOperandID_DerivedFrom, "derivedfrom", "v"},
    {"p exists true", kvxExpressionOperandID_Exists, "exists", "true"},
    {"p exists false", kvxExpressionOperandID_Exists, "exists", "false"},
    {"p like \"v\"", kvxExpressionOperandID_Like, "like", "v"},
};

TEST(ExpressionParserTest, ComparisonsKeepWhatTheyAreMadeOf) {
    for (const OperatorCase& theCase : kOperatorCases) {
        SCOPED_TRACE(theCase.mText);
        vxExpressionParser theParser(theCase.mText);
        ASSERT_TRUE(theParser.Parse());
        vxRelExpression* theExpression = FirstOf(theParser);
        EXPECT_TRUE(theExpression->IsRel());
        EXPECT_STREQ(theExpression->GetPropertyName(), "p");
        EXPECT_EQ(theExpression->GetPropertyID(), 0);
        EXPECT_STREQ(theExpression->GetOperand(), theCase.mOperand);
        EXPECT_EQ(theExpression->GetOperandID(), theCase.mOperandID);
        EXPECT_STREQ(theExpression->GetPropertyValue(), theCase.mValue);
        EXPECT_EQ(theParser.GetErrorPosition(), vxCString::npos);
        EXPECT_STREQ(theParser.GetExpected(), "");
    }
}

TEST(ExpressionParserTest, QuotedValuesLoseTheirBackslashes) {
    const struct {
        const char* mText;
        const char* mValue;
    } kCases[] = {
        {R"(p = "")", ""},
        {R"(p = "a b) and (")", "a b) and ("},
        {R"(p = "say \"yes\"")", "say \"yes\""},
        {R"(p = "\"")", "\""},
        {R"(p = "a\\")", "a\\"},
        {R"(p = "a\\\"b")", "a\\\"b"},
        {R"(p = "\a\b")", "ab"},
        {"p = \"\xC3\xA9\n\"", "\xC3\xA9\n"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxExpressionParser theParser(theCase.mText);
        ASSERT_TRUE(theParser.Parse());
        EXPECT_STREQ(FirstOf(theParser)->GetPropertyValue(), theCase.mValue);
    }
}

TEST(ExpressionParserTest, BytesOfValueZeroBelongToTheText) {
    const char kText[] = "p\0q = \"v\0w\"";
    vxExpressionParser theParser(vxCString(kText, sizeof(kText) - 1));
    ASSERT_TRUE(theParser.Parse());
    EXPECT_EQ(FirstOf(theParser)->GetPropertyName().length(), 3u);
    EXPECT_EQ(FirstOf(theParser)->GetPropertyValue().length(), 3u);
}

struct ShapeCase {
    const char* mText;
    const char* mShape;
};

// Comparisons are written as single words here; Filled() makes them whole.
constexpr ShapeCase kShapeCases[] = {
    {"a", "[a]"},
    {" a ", "[a]"},
    {"(a)", "([a])"},
    {" ( a ) ", "([a])"},
    {"((a))", "(([a]))"},
    {"a and b", "[a and [b]]"},
    {"a or b", "[a or [b]]"},
    {"a \t and\n b", "[a and [b]]"},
    {"(a) and b", "[([a]) and [b]]"},
    {"a and (b)", "[a and ([b])]"},
    {"(a) and (b)", "[([a]) and ([b])]"},
    // Three elements: the pass for "and", then the one for "or".
    {"a and b or c", "[([a and [b]]) or [c]]"},
    {"a or b and c", "[a or [([b and [c]])]]"},
    {"a and b and c", "[([a and [b]]) and [c]]"},
    {"a or b or c", "[([a or [b]]) or [c]]"},
    // Four and more: links go in pairs, walk by walk.
    {"a and b and c and d", "[([a and [b]]) and [([c and [d]])]]"},
    {"a or b or c or d", "[([a or [b]]) or [([c or [d]])]]"},
    {"a and b or c and d", "[([a and [b]]) or [([c and [d]])]]"},
    {"a or b and c or d", "[([a or [([b and [c]])]]) or [d]]"},
    {"a and b and c and d and e", "[([([a and [b]]) and [([c and [d]])]]) and [e]]"},
    // A group that ends the chain is no link, so it is never grouped.
    {"a or b and (c)", "[([a or [b]]) and ([c])]"},
    {"a and b or (c)", "[([a and [b]]) or ([c])]"},
    {"a and b and (c)", "[([a and [b]]) and ([c])]"},
    {"a or (b) and c", "[a or [([([b]) and [c]])]]"},
    {"(a) or b and c", "[([a]) or [([b and [c]])]]"},
    // Inside a group the walk goes on only where the group is all, or the end.
    {"(a and b or c)", "([([a and [b]]) or [c]])"},
    {"((a or b and c))", "(([a or [([b and [c]])]]))"},
    {"d or (a and b or c)", "[d or ([([a and [b]]) or [c]])]"},
    {"(a or b and c) or d", "[([a or [b and [c]]]) or [d]]"},
    {"(a and b or c) or d", "[([a and [b or [c]]]) or [d]]"},
    {"(a and b or c) and (d and e or f)", "[([a and [b or [c]]]) and ([([d and [e]]) or [f]])]"},
    // The first pair of a chain of two needs no group, that of an inner chain neither.
    {"x and (a and b)", "[x and ([a and [b]])]"},
    {"x and y and (a or b or c)", "[([x and [y]]) and ([([a or [b]]) or [c]])]"},
};

// Puts a comparison in place of every single letter.
std::string Filled(const char* aText) {
    std::string theResult;
    for (const char* p = aText; *p != '\0'; ++p) {
        const bool theIsWord =
            isalpha(*p) != 0 && isalpha(p[1]) == 0 && (p == aText || isalpha(p[-1]) == 0);
        theResult += *p;
        theResult += theIsWord ? " = \"1\"" : "";
    }
    return theResult;
}

TEST(ExpressionParserTest, AndBindsCloserThanOrByStatedSteps) {
    for (const ShapeCase& theCase : kShapeCases) {
        SCOPED_TRACE(theCase.mText);
        EXPECT_EQ(ShapeOf(Filled(theCase.mText)), theCase.mShape);
    }
}

TEST(ExpressionParserTest, OrdinaryCriteriaMatchAsTheyRead) {
    const char* kAndOr = "title = \"x\" and artist = \"y\" or album = \"z\"";
    EXPECT_TRUE(Matches(kAndOr, {{"title", "x"}, {"artist", "y"}, {"album", ""}}));
    EXPECT_TRUE(Matches(kAndOr, {{"title", ""}, {"artist", ""}, {"album", "z"}}));
    EXPECT_TRUE(Matches(kAndOr, {{"title", "x"}, {"artist", ""}, {"album", "z"}}));
    EXPECT_FALSE(Matches(kAndOr, {{"title", "x"}, {"artist", ""}, {"album", ""}}));

    const char* kGroup = "(a = \"1\" or b = \"2\" and c = \"3\") or d = \"4\"";
    EXPECT_TRUE(Matches(kGroup, {{"a", "1"}}));
    EXPECT_FALSE(Matches(kGroup, {{"b", "2"}}));
    EXPECT_FALSE(Matches(kGroup, {{"c", "3"}}));
    EXPECT_TRUE(Matches(kGroup, {{"b", "2"}, {"c", "3"}}));
    EXPECT_TRUE(Matches(kGroup, {{"d", "4"}}));

    // The same group the other way round reads from right to left: a and (b or c).
    const char* kRight = "(a = \"1\" and b = \"2\" or c = \"3\") or d = \"4\"";
    EXPECT_FALSE(Matches(kRight, {{"c", "3"}}));
    EXPECT_TRUE(Matches(kRight, {{"a", "1"}, {"c", "3"}}));

    EXPECT_TRUE(Matches("dc:title contains \"LOVE\"", {{"dc:title", "All you need is love"}}));
    EXPECT_FALSE(Matches("dc:title contains \"LOVE\"", {{"dc:title", "Help"}}));
    const char* kClass = "upnp:class derivedfrom \"object.item\"";
    EXPECT_TRUE(Matches(kClass, {{"upnp:class", "object.item.audioItem"}}));
    EXPECT_FALSE(Matches(kClass, {{"upnp:class", "Object.item"}}));
    EXPECT_FALSE(Matches("size > \"100\"", {{"size", "150"}}));
    EXPECT_TRUE(Matches("res exists true", {{"res", "uri"}}));
    EXPECT_FALSE(Matches("res exists true", {}));
    EXPECT_FALSE(Matches("res exists false", {{"res", "uri"}}));
    EXPECT_TRUE(Matches("res exists false", {}));
    EXPECT_TRUE(
        Matches("upnp:class derivedfrom \"object.item.audioItem\" and dc:title contains \"love\"",
                {{"upnp:class", "object.item.audioItem.musicTrack"}, {"dc:title", "Love Me Do"}}));
}

TEST(ExpressionParserTest, NumbersMatchWhereTheEvaluatorComparesNumbers) {
    class SizeEvaluator : public vxSearchExpressionEvaluator {
    public:
        bool Evaluate(vxRelExpression* anExpression) override {
            return anExpression->MatchInt(150);
        }
    };
    SizeEvaluator theEvaluator;
    vxExpressionParser theParser("size > \"100\"");
    ASSERT_TRUE(theParser.Parse());
    EXPECT_TRUE(theParser.Evaluate(&theEvaluator));
}

// Byte and expectation of texts that are not valid.
constexpr ShapeCase kErrorCases[] = {
    {"", "0: a property or \"(\""},
    {"   ", "3: a property or \"(\""},
    {"* x", "2: the end"},
    {"*a = \"1\"", "1: the end"},
    {"**", "1: the end"},
    {"a", "1: whitespace"},
    {"a ", "2: an operator"},
    {"a=\"1\"", "5: whitespace"},
    {"a =\"1\"", "3: whitespace"},
    {"a= \"1\"", "3: an operator"},
    {"a == \"1\"", "3: whitespace"},
    {"a Contains \"1\"", "2: an operator"},
    {"a containsx \"1\"", "10: whitespace"},
    {"a =", "3: whitespace"},
    {"a = ", "4: a quoted value"},
    {"a = 1", "4: a quoted value"},
    {"a = '1'", "4: a quoted value"},
    {"a = \"1", "6: a closing quote"},
    {"a = \"1\\\"", "8: a closing quote"},
    {"a = \"1\\", "7: a closing quote"},
    {"a exists \"true\"", "9: true or false"},
    {"a exists yes", "9: true or false"},
    {"a exists True", "9: true or false"},
    {"a exists truex", "13: whitespace"},
    {" and = = \"x\"", "7: a quoted value"},
    {" and exists = \"x\"", "12: true or false"},
    {"a = \"1\"and b = \"1\"", "7: whitespace"},
    {"a = \"1\" and", "11: whitespace"},
    {"a = \"1\" and ", "12: a property or \"(\""},
    {"a = \"1\" andx b = \"1\"", "11: whitespace"},
    {"a = \"1\" And b = \"1\"", "8: a logical operator or the end"},
    {"a = \"1\" and and b = \"1\"", "16: an operator"},
    {"a = \"1\" b = \"1\"", "8: a logical operator or the end"},
    {"a = \"1\")", "7: a logical operator or the end"},
    {"a = \"1\" )", "8: a logical operator or the end"},
    {")", "0: a property or \"(\""},
    {"()", "1: a property or \"(\""},
    {"( )", "2: a property or \"(\""},
    {"(a = \"1\" b", "9: a logical operator or \")\""},
    {"(a = \"1\") b", "10: a logical operator or the end"},
    {"(a = \"1\")and (b = \"1\")", "9: whitespace"},
    {"(a = \"1\") and(b = \"1\")", "13: whitespace"},
    {"(a = \"1\") and", "13: whitespace"},
    {"(*)", "2: whitespace"},
    {"not a = \"1\"", "4: an operator"},
};

TEST(ExpressionParserTest, FailuresTellByteAndExpectation) {
    for (const ShapeCase& theCase : kErrorCases) {
        SCOPED_TRACE(theCase.mText);
        EXPECT_EQ(ShapeOf(theCase.mText), theCase.mShape);
        vxExpressionParser theParser(theCase.mText);
        EXPECT_FALSE(theParser.Parse());
        EXPECT_FALSE(theParser.IsValid());
        EXPECT_EQ(theParser.GetExpression(), nullptr);
        NameEvaluator theEvaluator;
        EXPECT_FALSE(theParser.Evaluate(&theEvaluator));
        EXPECT_STREQ(theParser.GetSearchCriteriaList(), "");
    }
}

TEST(ExpressionParserTest, WordsMayBeginWithAParenthesis) {
    EXPECT_EQ(ShapeOf("(a = \"1\""), "[(a]");
    EXPECT_EQ(ShapeOf("((a = \"1\""), "[((a]");
    EXPECT_EQ(ShapeOf("((a = \"1\")"), "10: a logical operator or \")\"");
    EXPECT_EQ(ShapeOf("( = \"1\""), "[(]");
    EXPECT_EQ(ShapeOf("(a = \"1\" and (b = \"1\""), "[(a and [(b]]");
    EXPECT_EQ(ShapeOf("a(b = \"1\""), "[a(b]");
    EXPECT_EQ(ShapeOf("and = \"1\" and or = \"1\""), "[and and [or]]");
}

TEST(ExpressionParserTest, SuccessConsumesTheTextAndFailureKeepsIt) {
    class Parser : public vxExpressionParser {
    public:
        using vxExpressionParser::vxExpressionParser;
        const vxCString& GetRest() const { return mStr; }
    };
    Parser theGood(" a = \"1\" ");
    EXPECT_TRUE(theGood.Parse());
    EXPECT_STREQ(theGood.GetRest(), "");
    EXPECT_FALSE(theGood.Parse());
    EXPECT_FALSE(theGood.IsValid());
    EXPECT_EQ(theGood.GetExpression(), nullptr);

    Parser theBad(" a = \"1\" x");
    EXPECT_FALSE(theBad.Parse());
    EXPECT_STREQ(theBad.GetRest(), " a = \"1\" x");
    EXPECT_FALSE(theBad.Parse());
    EXPECT_EQ(theBad.GetErrorPosition(), 9u);
}

TEST(ExpressionParserTest, EveryParseTellsItsOwnError) {
    static const vxExpressionOperand kBinary[] = {
        {"is", kvxExpressionOperandID_Equal, kvxExpressionValueID_String}, {NULL, 0, 0}};
    vxExpressionParser theParser("a = \"1\" x");
    EXPECT_FALSE(theParser.Parse());
    EXPECT_EQ(theParser.GetErrorPosition(), 8u);
    theParser.SetBinaryOperands(kBinary);
    EXPECT_FALSE(theParser.Parse());
    EXPECT_EQ(theParser.GetErrorPosition(), 2u);
    EXPECT_STREQ(theParser.GetExpected(), "an operator");

    // Tried as a group first, which fails; then the name begins with the parenthesis.
    vxExpressionParser theGood("(a = \"1\"");
    EXPECT_TRUE(theGood.Parse());
    EXPECT_EQ(theGood.GetErrorPosition(), vxCString::npos);
    EXPECT_STREQ(theGood.GetExpected(), "");
}

// Knows "title" as 5 and "size" as 6; no "contains" for sizes, and no "like" at all.
class LibraryParser : public vxExpressionParser {
public:
    using vxExpressionParser::vxExpressionParser;
    int GetPropertyID(const vxCString& aPropertyName) override {
        mAsked.push_back(aPropertyName.c_str());
        return aPropertyName == "title" ? 5 : aPropertyName == "size" ? 6 : -1;
    }
    bool OperandSupported(const char* anOperand) override { return strcmp(anOperand, "like") != 0; }
    bool OperandSupportedForProperty(int anOperandID, int aPropertyID) override {
        return anOperandID != kvxExpressionOperandID_Contains || aPropertyID != 6;
    }
    std::vector<std::string> mAsked;
};

TEST(ExpressionParserTest, DerivedParsersNameTheirProperties) {
    LibraryParser theParser("title = \"x\" and (size > \"1\")");
    ASSERT_TRUE(theParser.Parse());
    EXPECT_EQ(FirstOf(theParser)->GetPropertyID(), 5);
    EXPECT_THAT(theParser.mAsked, ElementsAre("title", "size"));
}

TEST(ExpressionParserTest, DerivedParsersRefusePropertiesAndOperators) {
    const ShapeCase kCases[] = {
        {"artist = \"x\"", "0: a known property"},
        {"title = \"x\" and artist = \"x\"", "16: a known property"},
        {"(artist = \"x\")", "1: a known property"},
        {"(title = \"x\"", "12: a logical operator or \")\""},
        {"Title = \"x\"", "0: a known property"},
        {"title like \"x\"", "6: an operator"},
        {"size contains \"x\"", "5: an operator that the property supports"},
        {"title contains \"x\" or size contains \"x\"",
         "27: an operator that the property supports"},
    };
    for (const ShapeCase& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        LibraryParser theParser(theCase.mText);
        EXPECT_FALSE(theParser.Parse());
        EXPECT_EQ(std::to_string(theParser.GetErrorPosition()) + ": " + theParser.GetExpected(),
                  theCase.mShape);
    }
    LibraryParser theGood("title contains \"x\" or size <= \"1\"");
    EXPECT_TRUE(theGood.Parse());
}

TEST(ExpressionParserTest, UnsupportedKeywordsAreSkipped) {
    class Parser : public vxExpressionParser {
    public:
        using vxExpressionParser::vxExpressionParser;
        bool OperandSupported(const char* anOperand) override {
            return strcmp(anOperand, "<=") != 0 && strcmp(anOperand, "and") != 0;
        }
    };
    const ShapeCase kCases[] = {
        {"a < \"1\"", "[a]"},
        {"a <= \"1\"", "3: whitespace"},  // "<" fits
        {"a = \"1\" or b = \"1\"", "[a or [b]]"},
        {"a = \"1\" and b = \"1\"", "8: a logical operator or the end"},
    };
    for (const ShapeCase& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        Parser theParser(theCase.mText);
        EXPECT_EQ(theParser.Parse() ? Shape(theParser.GetExpression())
                                    : std::to_string(theParser.GetErrorPosition()) + ": " +
                                          theParser.GetExpected(),
                  theCase.mShape);
    }
}

TEST(ExpressionParserTest, WhitespaceIsTheBlankAndFiveControlBytes) {
    for (int i = 1; i < 256; ++i) {
        const std::string theByte(1, static_cast<char>(i));
        const bool theIsSpace = i == ' ' || (i >= 9 && i <= 13);
        EXPECT_EQ(ShapeOf("a" + theByte + "= \"1\"") == "[a]", theIsSpace) << i;
        EXPECT_EQ(ShapeOf("a =" + theByte + "\"1\"") == "[a]", theIsSpace) << i;
        EXPECT_EQ(ShapeOf("a = \"1\"" + theByte + "or b = \"1\"") == "[a or [b]]", theIsSpace) << i;
        EXPECT_EQ(ShapeOf("a = \"1\" or" + theByte + "b = \"1\"") == "[a or [b]]", theIsSpace) << i;
    }
}

TEST(ExpressionParserTest, TablesMayBeReplaced) {
    static const vxExpressionOperand kLogic[] = {
        {"&", kvxExpressionOperandID_And, kvxExpressionValueID_Operand},
        {"|", kvxExpressionOperandID_Or, kvxExpressionValueID_Operand},
        {"then", 40, kvxExpressionValueID_Operand},
        {NULL, 0, 0}};
    static const vxExpressionOperand kBinary[] = {
        {"is", kvxExpressionOperandID_Equal, kvxExpressionValueID_String},
        {"isnt", kvxExpressionOperandID_NotEqual, kvxExpressionValueID_String},
        {"matters", 50, kvxExpressionValueID_Boolean},
        {"set", 51, kvxExpressionValueID_None},
        {"unset", 52, kvxExpressionValueID_Operand},
        {NULL, 0, 0}};
    const ShapeCase kCases[] = {
        {"a is \"1\" & b is \"1\" | c matters true", "[([a & [b]]) | [c]]"},
        {"a set & (b unset)", "[a & ([b])]"},
        {"a set then b set then c set", "[a then [b then [c]]]"},
        {"a = \"1\"", "2: an operator"},
        {"a is \"1\" and b is \"1\"", "9: a logical operator or the end"},
        // The first keyword that the text begins with counts.
        {"a isnt \"1\"", "4: whitespace"},
        {"a setx", "5: whitespace"},
    };
    for (const ShapeCase& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxExpressionParser theParser(theCase.mText);
        theParser.SetLogicOperands(kLogic);
        theParser.SetBinaryOperands(kBinary);
        const std::string theShape =
            theParser.Parse()
                ? Shape(theParser.GetExpression())
                : std::to_string(theParser.GetErrorPosition()) + ": " + theParser.GetExpected();
        EXPECT_EQ(theShape, theCase.mShape);
    }
    vxExpressionParser theParser("a = \"1\" and b = \"1\"");
    theParser.SetLogicOperands(kLogic);
    theParser.SetBinaryOperands(kBinary);
    theParser.SetLogicOperands(NULL);
    theParser.SetBinaryOperands(NULL);
    EXPECT_TRUE(theParser.Parse());
}

TEST(ExpressionParserTest, ListsNameEachPropertyOnceInOrder) {
    vxExpressionParser theParser(
        "b = \"1\" and (a = \"2\" or b = \"3\") and ab = \"4\" or (a = \"5\" and c = \"6\")");
    ASSERT_TRUE(theParser.Parse());
    EXPECT_STREQ(theParser.GetSearchCriteriaList(), "b,a,ab,c,");
}

TEST(ExpressionParserTest, DiscriminantCriteriaAreThoseThatEveryMatchSatisfies) {
    const ShapeCase kCases[] = {
        {"*", ""},
        {"", ""},
        {"a", "a"},
        {"(a)", "a"},
        {"a or b", ""},
        {"a and b", "ab"},
        {"a and b and c and d and e", "abcde"},
        {"a and b or c", ""},
        {"a and (b or c)", "a"},
        {"a and (b or c) and d", "ad"},
        {"a and (b and (c or d))", "ab"},
        {"(a and b) and (c and d)", "abcd"},
        {"(a or b) and c", "c"},
        {"a or b and (c)", "c"},
        {"(a and b or c) and d", "ad"},
    };
    for (const ShapeCase& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxExpressionParser theParser(Filled(theCase.mText).c_str());
        theParser.Parse();
        vxArray* theCriteria = theParser.GetDiscriminantCriteria();
        std::string theNames;
        for (size_t i = 0; i < vxArray_GetCount(theCriteria); ++i) {
            theNames +=
                static_cast<vxRelExpression*>(vxArray_At(theCriteria, i))->GetPropertyName();
        }
        EXPECT_EQ(theNames, theCase.mShape);
        vxArray_Delete(theCriteria);
    }
}

TEST(ExpressionParserTest, ParsersAreTheSameByTheirTrees) {
    const char* const kTexts[] = {"",
                                  "*",
                                  "a = \"1\"",
                                  "(a = \"1\")",
                                  "a = \"2\"",
                                  "a = \"1\" and b = \"1\"",
                                  "a = \"1\" or b = \"1\""};
    for (const char* theLeftText : kTexts) {
        for (const char* theRightText : kTexts) {
            SCOPED_TRACE(testing::Message() << theLeftText << " and " << theRightText);
            vxExpressionParser theLeft(theLeftText);
            vxExpressionParser theRight(theRightText);
            theLeft.Parse();
            theRight.Parse();
            EXPECT_EQ(theLeft.IsSameAs(theRight), theLeftText == theRightText);
        }
    }
    vxExpressionParser theSpaced(" a \t= \n\"1\" ");
    vxExpressionParser thePlain("a = \"1\"");
    EXPECT_TRUE(theSpaced.Parse());
    EXPECT_FALSE(theSpaced.IsSameAs(thePlain));
    EXPECT_TRUE(thePlain.Parse());
    EXPECT_TRUE(theSpaced.IsSameAs(thePlain));
}

TEST(ExpressionParserTest, ParsersPrintTheirTreeOrTheirError) {
    const ShapeCase kCases[] = {
        {" * ", "*\n"},
        {"a = \"1\" and b exists true or c like \"\\\"\"",
         "(a = \"1\" and b exists true) or c like \"\\\"\"\n"},
        {"a = 1", "expected a quoted value at byte 4\n"},
    };
    for (const ShapeCase& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxtest::Reports theReports;
        vxExpressionParser theParser(theCase.mText);
        theParser.Parse();
        theParser.Display();
        EXPECT_EQ(theReports.Console(), theCase.mShape);
    }
}

// The building steps, opened to the test.
class Builder : public vxExpressionParser {
public:
    using vxExpressionParser::Group;
    using vxExpressionParser::ParseSearchExpression;
    using vxExpressionParser::vxExpressionParser;
};

TEST(ExpressionParserTest, StepsReadTreesFromTheMiddleOfAText) {
    Builder theBuilder("x (a = \"1\" or b = \"2\") and c = \"3\" rest");
    size_t thePos = 2;
    vxSearchExpression* theTree = NULL;
    ASSERT_TRUE(theBuilder.ParseSearchExpression(&thePos, &theTree));
    EXPECT_EQ(thePos, 34u);
    EXPECT_EQ(Shape(theTree), "[([a or [b]]) and [c]]");
    delete theTree;
    theTree = NULL;
    EXPECT_FALSE(theBuilder.ParseSearchExpression(&thePos, &theTree));
    EXPECT_EQ(thePos, 34u);
    EXPECT_EQ(theTree, nullptr);
}

TEST(ExpressionParserTest, MisuseOfTheStepsIsReported) {
    vxtest::Reports theReports;
    Builder theBuilder("a = \"1\"");
    size_t thePos = 0;
    vxCompositeExpression theTaken(NULL);
    vxSearchExpression* theTree = &theTaken;
    EXPECT_FALSE(theBuilder.ParseSearchExpression(&thePos, &theTree));
    EXPECT_EQ(theTree, &theTaken);
    EXPECT_EQ(thePos, 0u);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("(*anExpression) == NULL"));

    theReports.Clear();
    Builder::Group(&theTaken);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("anExpression->IsLinear()"));

    theReports.Clear();
    const auto theLeaf = [] {
        return new vxRelExpression("a", 0, "=", kvxExpressionOperandID_Equal, "");
    };
    vxLinearExpression theLast(theLeaf(), "", kvxExpressionOperandID_None, NULL);
    Builder::Group(&theLast);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("mNext != NULL", "theLinearExpression->mExpression->IsComposite()"));

    theReports.Clear();
    vxLinearExpression theBeforeGroup(theLeaf(), "or", kvxExpressionOperandID_Or,
                                      new vxCompositeExpression(NULL));
    Builder::Group(&theBeforeGroup);
    EXPECT_THAT(
        theReports.Assertions(),
        ElementsAre("mNext->IsLinear()", "theLinearExpression->mExpression->IsComposite()"));
    theReports.Clear();
    vxLinearExpression theEmpty(NULL, "", kvxExpressionOperandID_None, NULL);
    Builder::Group(&theEmpty);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("mNext != NULL", "theLinearExpression->mExpression->IsComposite()"));
}

// What is printed or where and why it is not valid; unlike ShapeOf() without recursion.
std::string Reading(const std::string& aText) {
    vxtest::Reports theReports;
    vxExpressionParser theParser(aText.c_str());
    theParser.Parse();
    theParser.Display();
    return theReports.Console();
}

TEST(ExpressionParserTest, GroupsNestAThousandDeep) {
    vxtest::OnSmallStack([] {
        const std::string theGood = Repeated("(", 1000) + "a = \"1\"" + Repeated(")", 1000);
        const std::string kTooDeep = "expected at most 1000 groups, one in another at byte 1000\n";
        EXPECT_EQ(Reading(theGood), theGood + "\n");
        EXPECT_EQ(Reading("(" + theGood + ")"), kTooDeep);
        // What would be read as the name of a property otherwise is too deep as well.
        const std::string theName = Repeated("(", 1000) + "a = \"1\"";
        EXPECT_EQ(Reading(theName), theName + "\n");
        EXPECT_EQ(Reading("(" + theName), kTooDeep);
        // One beside another they may be as many as they like.
        vxExpressionParser theParser((theGood + " and " + theGood).c_str());
        EXPECT_TRUE(theParser.Parse());
        NameEvaluator theEvaluator;
        EXPECT_FALSE(theParser.Evaluate(&theEvaluator));
        EXPECT_TRUE(theParser.IsSameAs(theParser));
    });
}

TEST(ExpressionParserTest, LongChainsFitASmallStack) {
    vxtest::OnSmallStack([] {
        constexpr size_t kCount = 100000;
        for (const char* theOperator : {" and ", " or "}) {
            vxExpressionParser theParser(
                (Repeated(std::string("t = \"1\"") + theOperator, kCount) + "t = \"1\"").c_str());
            ASSERT_TRUE(theParser.Parse());
            NameEvaluator theEvaluator;
            EXPECT_TRUE(theParser.Evaluate(&theEvaluator));
            EXPECT_STREQ(theParser.GetSearchCriteriaList(), "t,");
            vxArray* theCriteria = theParser.GetDiscriminantCriteria();
            EXPECT_EQ(vxArray_GetCount(theCriteria),
                      strcmp(theOperator, " and ") == 0 ? kCount + 1 : 0);
            vxArray_Delete(theCriteria);
        }
    });
}

TEST(ExpressionParserTest, ManyPropertiesAreListed) {
    std::string theText = "p = \"1\"";
    std::string theList = "p,";
    for (int i = 0; i < 20000; ++i) {
        theText += " or p" + std::to_string(i % 10000) + " = \"1\"";
        theList += i < 10000 ? "p" + std::to_string(i) + "," : "";
    }
    vxExpressionParser theParser(theText.c_str());
    ASSERT_TRUE(theParser.Parse());
    EXPECT_STREQ(theParser.GetSearchCriteriaList(), theList.c_str());
}

// Texts that are read again and again if nothing is remembered. How often names are looked up tells
// how often comparisons are read.
TEST(ExpressionParserTest, ComparisonsAreReadAtMostTwicePerParenthesis) {
    class Counter : public vxExpressionParser {
    public:
        using vxExpressionParser::vxExpressionParser;
        int GetPropertyID(const vxCString&) override {
            ++mCount;
            return 0;
        }
        size_t mCount = 0;
    };
    const std::string kTexts[] = {
        Repeated("(a = \"1\" and ", 1000) + "b = \"1\"",
        Repeated("(a = \"1\" and ", 1000) + "b = \"1",
        Repeated("(a = \"1\" and ", 1000),
        Repeated("((a = \"1\") and ", 1000) + "b = \"1\"",
        Repeated("((a = \"1\" and b = \"1\") or (", 300) + "b = \"1\"",
        Repeated("(", 1000) + Repeated("a = \"1\" and ", 1000) + "b = \"1\"",
        Repeated("(", 1000) + Repeated("a = \"1\" and ", 1000) + "b",
    };
    for (const std::string& theText : kTexts) {
        SCOPED_TRACE(theText.substr(0, 40));
        Counter theCounter(theText.c_str());
        theCounter.Parse();
        const auto theCountOf = [&theText](char aByte) {
            return static_cast<size_t>(std::count(theText.begin(), theText.end(), aByte));
        };
        EXPECT_LE(theCounter.mCount, theCountOf('=') + theCountOf('('));
    }
}

// Behind many parentheses whatever follows could be looked at for each of them.
TEST(ExpressionParserTest, WhitespaceIsLookedAtOnceWhateverTheParentheses) {
    const struct {
        const char *mFront, *mBehind;
    } kCases[] = {
        {"a = \"1\"", ""},
        {"a = \"1\"", ")"},
        {"a = \"1\"", " and b = \"1\""},
        {"a = \"1\" and", "b = \"1\""},
        {"a = \"1\") and", "b = \"1\""},
        {"a", "= \"1\""},
        {"a =", "\"1\""},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mFront << " ... " << theCase.mBehind);
        EXPECT_TRUE(vxtest::GrowsLinearly(200, [&theCase](size_t aSize) {
            const std::string theText = Repeated("(", aSize) + theCase.mFront +
                                        Repeated(" ", 200 * aSize) + theCase.mBehind;
            vxExpressionParser(theText.c_str()).Parse();
        }));
    }
}

TEST(ExpressionParserTest, NamesThatAreNotPartOfTheTreeAreNotKept) {
    class Watcher : public vxExpressionParser {
    public:
        using vxExpressionParser::vxExpressionParser;
        int GetPropertyID(const vxCString&) override {
            if (++mCount == 1001) {
                const struct mallinfo2 theInfo = mallinfo2();
                mInUse = theInfo.uordblks + theInfo.hblkhd;
            }
            return 0;
        }
        size_t mCount = 0;
        size_t mInUse = 0;  // bytes at the last call, where the allocator tells
    };
    const std::string theText = Repeated("(", 1000) + Repeated("n", 100000) + " = \"1\"";
    Watcher theWatcher(theText.c_str());
    EXPECT_TRUE(theWatcher.Parse());
    EXPECT_EQ(theWatcher.mCount, 1001U);
    EXPECT_LT(theWatcher.mInUse, 20000000U);
}

// How a tree evaluates, written down as it reads.
bool Value(vxSearchExpression* anExpression) {
    if (anExpression->IsComposite()) {
        return Value(static_cast<vxCompositeExpression*>(anExpression)->GetExpression());
    }
    if (!anExpression->IsLinear()) {
        NameEvaluator theEvaluator;
        return anExpression->Evaluate(&theEvaluator);
    }
    const auto* theLink = static_cast<vxLinearExpression*>(anExpression);
    const bool theValue = Value(theLink->GetExpression());
    switch (theLink->GetOperandID()) {
        case kvxExpressionOperandID_And:
            return theValue && Value(theLink->GetNext());
        case kvxExpressionOperandID_Or:
            return theValue || Value(theLink->GetNext());
        default:
            return theValue;
    }
}

TEST(ExpressionParserTest, GroupsInGroupsEvaluateAtEveryDepth) {
    uint32_t theState = 99;
    const auto theNext = [&theState] {
        theState = theState * 1664525U + 1013904223U;
        return (theState >> 16 & 1) != 0;
    };
    NameEvaluator theEvaluator;
    std::string theLeft = "t = \"1\"";
    std::string theRight = theLeft;
    bool theLeftValue = true;
    bool theRightValue = true;
    for (int i = 0; i < 200; ++i) {
        const bool theIsTrue = theNext();
        const bool theIsAnd = theNext();
        const std::string theName = theIsTrue ? "t = \"1\"" : "f = \"1\"";
        const std::string theOperator = theIsAnd ? " and " : " or ";
        theLeft = "(" + theLeft + ")" + theOperator + theName;
        theLeftValue = theIsAnd ? theLeftValue && theIsTrue : theLeftValue || theIsTrue;
        theRight = theName + theOperator + "(" + theRight + ")";
        theRightValue = theIsAnd ? theRightValue && theIsTrue : theRightValue || theIsTrue;
        vxExpressionParser theLeftParser(theLeft.c_str());
        vxExpressionParser theRightParser(theRight.c_str());
        ASSERT_TRUE(theLeftParser.Parse() && theRightParser.Parse());
        ASSERT_EQ(theLeftParser.Evaluate(&theEvaluator), theLeftValue) << theLeft;
        ASSERT_EQ(theRightParser.Evaluate(&theEvaluator), theRightValue) << theRight;
    }
}

// The grammar and the steps of grouping written down as they read, with recursion and copies.
class Model {
public:
    explicit Model(std::string aText) : mText(std::move(aText)) {}

    struct Node {
        std::string mName;             // of a comparison
        std::unique_ptr<Node> mInner;  // of a link or a group
        std::string mOperand;          // of a link
        std::unique_ptr<Node> mNext;   // of a link
        enum { Rel, Composite, Linear } mKind = Rel;
    };
    using NodePtr = std::unique_ptr<Node>;

    std::string ShapeOf() {
        Spaces();
        NodePtr theRoot;
        if (!Take("*") && (theRoot = SearchExp()) == nullptr) {
            return "not valid";
        }
        Spaces();
        if (mPos != mText.size()) {
            return "not valid";
        }
        if (theRoot == nullptr) {
            return "*";
        }
        for (const char* theOperand : {"and", "or"}) {
            while (GroupLinks(theRoot.get(), theOperand)) {}
        }
        return Shape(theRoot.get());
    }

private:
    bool Take(const std::string& aWord) {
        if (mText.compare(mPos, aWord.size(), aWord) != 0) {
            return false;
        }
        mPos += aWord.size();
        return true;
    }

    bool Spaces() {
        const size_t theStart = mPos;
        while (Take(" ") || Take("\t")) {}
        return mPos != theStart;
    }

    std::string LogicOp() {
        const size_t theStart = mPos;
        if (Spaces()) {
            for (const char* theWord : {"and", "or"}) {
                if (Take(theWord)) {
                    if (Spaces()) {
                        return theWord;
                    }
                    break;
                }
            }
        }
        mPos = theStart;
        return "";
    }

    NodePtr SearchExp() {
        NodePtr theElement = Group();
        if (theElement == nullptr) {
            theElement = RelExp();
        }
        if (theElement == nullptr) {
            return nullptr;
        }
        const size_t theEnd = mPos;
        const std::string theOperand = LogicOp();
        NodePtr theNext = theOperand.empty() ? nullptr : SearchExp();
        if (theNext == nullptr) {
            mPos = theEnd;
        }
        if (theNext == nullptr && theElement->mKind == Node::Composite) {
            return theElement;
        }
        NodePtr theLink(new Node);
        theLink->mKind = Node::Linear;
        theLink->mInner = std::move(theElement);
        theLink->mOperand = theNext == nullptr ? "" : theOperand;
        theLink->mNext = std::move(theNext);
        return theLink;
    }

    NodePtr Group() {
        const size_t theStart = mPos;
        Spaces();
        if (Take("(")) {
            Spaces();
            NodePtr theInner = SearchExp();
            Spaces();
            if (theInner != nullptr && Take(")")) {
                NodePtr theGroup(new Node);
                theGroup->mKind = Node::Composite;
                theGroup->mInner = std::move(theInner);
                return theGroup;
            }
        }
        mPos = theStart;
        return nullptr;
    }

    NodePtr RelExp() {
        const size_t theStart = mPos;
        NodePtr theRel(new Node);
        while (mPos < mText.size() && strchr(") \t", mText[mPos]) == nullptr) {
            theRel->mName += mText[mPos++];
        }
        if (!theRel->mName.empty() && Spaces()) {
            if (Take("=") ? Spaces() && Quoted()
                          : Take("exists") && Spaces() && (Take("true") || Take("false"))) {
                return theRel;
            }
        }
        mPos = theStart;
        return nullptr;
    }

    bool Quoted() {
        if (!Take("\"")) {
            return false;
        }
        while (mPos < mText.size() && mText[mPos] != '"') {
            mPos += mText[mPos] == '\\' ? 2 : 1;
        }
        return mPos < mText.size() && Take("\"");
    }

    static bool GroupLinks(Node* aNode, const std::string& anOperand) {
        bool theChanged = false;
        bool theFirst = true;
        while (aNode != nullptr && aNode->mKind != Node::Rel) {
            if (aNode->mKind == Node::Composite) {
                aNode = aNode->mInner.get();
                theFirst = true;
                continue;
            }
            Node* theNext = aNode->mNext.get();
            if (aNode->mOperand == anOperand && theNext->mKind == Node::Linear &&
                !(theFirst && theNext->mNext == nullptr)) {
                NodePtr theLink(new Node);
                theLink->mKind = Node::Linear;
                theLink->mInner = std::move(aNode->mInner);
                theLink->mOperand = aNode->mOperand;
                theLink->mNext = std::move(aNode->mNext);
                aNode->mOperand = std::move(theLink->mNext->mOperand);
                theLink->mNext->mOperand.clear();
                aNode->mNext = std::move(theLink->mNext->mNext);
                aNode->mInner.reset(new Node);
                aNode->mInner->mKind = Node::Composite;
                aNode->mInner->mInner = std::move(theLink);
                theChanged = true;
            }
            aNode = aNode->mNext.get();
            theFirst = false;
        }
        return theChanged;
    }

    static std::string Shape(const Node* aNode) {
        if (aNode == nullptr) {
            return "";
        }
        switch (aNode->mKind) {
            case Node::Rel:
                return aNode->mName;
            case Node::Composite:
                return "(" + Shape(aNode->mInner.get()) + ")";
            default:
                return "[" + Shape(aNode->mInner.get()) +
                       (aNode->mOperand.empty() ? "" : " " + aNode->mOperand + " ") +
                       Shape(aNode->mNext.get()) + "]";
        }
    }

    const std::string mText;
    size_t mPos = 0;
};

TEST(ExpressionParserTest, RandomTextsReadAsTheGrammarSays) {
    const char* const kParts[] = {"t = \"1\"",  "f exists true",
                                  "(t = \"1\"", "f = \"\")",
                                  "(",          ")",
                                  " and ",      " or ",
                                  " and ",      " or ",
                                  " ",          "(",
                                  ")",          "x",
                                  "=",          "\"",
                                  "*",          "\\",
                                  "t = \"1\"",  "f = \"1\"",
                                  "exists",     "\t"};
    uint32_t theState = 4711;
    const auto theNext = [&theState](uint32_t aCount) {
        theState = theState * 1664525U + 1013904223U;
        return (theState >> 16) % aCount;
    };
    std::set<std::string> theShapes;
    for (int i = 0; i < 60000; ++i) {
        std::string theText;
        // Every other text is made the way valid ones are, with one part out of place at most.
        const bool theIsOrderly = i % 2 == 0;
        int theOpen = 0;
        for (uint32_t j = theNext(8); j > 0; --j) {
            if (!theIsOrderly) {
                theText += kParts[theNext(std::size(kParts))];
                continue;
            }
            for (; theNext(3) == 0; ++theOpen) {
                theText += theNext(4) == 0 ? "( " : "(";
            }
            theText += theNext(2) == 0 ? "t = \"1\"" : "f = \"2\"";
            for (; theOpen > 0 && theNext(2) == 0; --theOpen) {
                theText += ")";
            }
            theText += j == 1            ? Repeated(")", static_cast<size_t>(theOpen))
                       : theNext(2) == 0 ? " and "
                                         : " or ";
        }
        if (theIsOrderly && theNext(3) == 0) {
            theText.insert(theNext(static_cast<uint32_t>(theText.size() + 1)),
                           kParts[theNext(std::size(kParts))]);
        }
        vxExpressionParser theParser(theText.c_str());
        const std::string theExpected = Model(theText).ShapeOf();
        const std::string theShape = !theParser.Parse() ? "not valid"
                                     : theParser.GetExpression() == nullptr
                                         ? "*"
                                         : Shape(theParser.GetExpression());
        ASSERT_EQ(theShape, theExpected) << theText;
        theShapes.insert(theShape);
        if (theParser.GetExpression() == nullptr) {
            continue;
        }
        NameEvaluator theEvaluator;
        ASSERT_EQ(theParser.Evaluate(&theEvaluator), Value(theParser.GetExpression())) << theText;
        if (theParser.GetSearchCriteriaList().Contains("(")) {
            continue;
        }
        // The printed tree selects what the tree selects.
        vxExpressionParser theAgain(theParser.GetExpression()->GetText());
        ASSERT_TRUE(theAgain.Parse()) << theText;
        ASSERT_EQ(theAgain.Evaluate(&theEvaluator), theParser.Evaluate(&theEvaluator)) << theText;
    }
    EXPECT_GT(theShapes.size(), 500u);
}

}  // namespace
