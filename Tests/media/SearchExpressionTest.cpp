#include <gmock/gmock.h>
#include <vx/SearchExpression.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "support/LocalZone.h"
#include "support/Reports.h"
#include "support/SmallStack.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int kNone = kvxExpressionOperandID_None;
constexpr int kAnd = kvxExpressionOperandID_And;
constexpr int kOr = kvxExpressionOperandID_Or;

// A comparison whose name is its own result: the evaluator below reads it and keeps what it was asked.
vxSearchExpression* Leaf(const char* aName) {
    return new vxRelExpression(aName, 0, "=", kvxExpressionOperandID_Equal, "");
}

vxLinearExpression* Link(vxSearchExpression* anExpression, int anOperandID = kNone,
                         vxSearchExpression* aNext = nullptr) {
    const char* theKeyword = anOperandID == kAnd ? "and" : anOperandID == kOr ? "or" : "";
    return new vxLinearExpression(anExpression, theKeyword, anOperandID, aNext);
}

vxSearchExpression* Group(vxSearchExpression* anExpression) {
    return new vxCompositeExpression(anExpression);
}

// Names that begin with 't' are true.
class NameEvaluator : public vxSearchExpressionEvaluator {
public:
    bool Evaluate(vxRelExpression* anExpression) override {
        mAsked += anExpression->GetPropertyName().c_str();
        return anExpression->GetPropertyName()[0] == 't';
    }
    std::string mAsked;
};

// Evaluates and frees.
std::string Evaluation(vxSearchExpression* anExpression) {
    const std::unique_ptr<vxSearchExpression> theExpression(anExpression);
    NameEvaluator theEvaluator;
    const bool theResult = theExpression->Evaluate(&theEvaluator);
    return theEvaluator.mAsked + (theResult ? " true" : " false");
}

TEST(SearchExpressionTest, OperatorsAndKindsHaveTheirNumbers) {
    EXPECT_EQ(kvxExpressionOperandID_None, 0);
    EXPECT_EQ(kvxExpressionOperandID_Equal, 1);
    EXPECT_EQ(kvxExpressionOperandID_NotEqual, 2);
    EXPECT_EQ(kvxExpressionOperandID_SmallerOrEqual, 3);
    EXPECT_EQ(kvxExpressionOperandID_GreaterOrEqual, 4);
    EXPECT_EQ(kvxExpressionOperandID_Greater, 5);
    EXPECT_EQ(kvxExpressionOperandID_Smaller, 6);
    EXPECT_EQ(kvxExpressionOperandID_Contains, 7);
    EXPECT_EQ(kvxExpressionOperandID_DoesNotContain, 8);
    EXPECT_EQ(kvxExpressionOperandID_DerivedFrom, 9);
    EXPECT_EQ(kvxExpressionOperandID_Exists, 10);
    EXPECT_EQ(kvxExpressionOperandID_And, 11);
    EXPECT_EQ(kvxExpressionOperandID_Or, 12);
    EXPECT_EQ(kvxExpressionOperandID_Like, 13);
    EXPECT_EQ(kvxExpressionType_Unknown, 0);
    EXPECT_EQ(kvxExpressionType_Rel, 1);
    EXPECT_EQ(kvxExpressionType_Composite, 2);
    EXPECT_EQ(kvxExpressionType_Linear, 3);
    EXPECT_EQ(kvxPropertyType_Unknown, 0);
    EXPECT_EQ(kvxPropertyType_Numeric, 1);
    EXPECT_EQ(kvxPropertyType_String, 2);
    EXPECT_EQ(kvxPropertyType_Date, 3);
    EXPECT_EQ(kvxPropertyType_Double, 4);
}

TEST(SearchExpressionTest, ExpressionsTellTheirKind) {
    const std::unique_ptr<vxSearchExpression> theLeaf(Leaf("a"));
    const std::unique_ptr<vxSearchExpression> theLink(Link(Leaf("a")));
    const std::unique_ptr<vxSearchExpression> theGroup(Group(Leaf("a")));
    EXPECT_EQ(theLeaf->GetType(), kvxExpressionType_Rel);
    EXPECT_TRUE(theLeaf->IsRel());
    EXPECT_FALSE(theLeaf->IsComposite());
    EXPECT_FALSE(theLeaf->IsLinear());
    EXPECT_EQ(theLink->GetType(), kvxExpressionType_Linear);
    EXPECT_TRUE(theLink->IsLinear());
    EXPECT_FALSE(theLink->IsComposite());
    EXPECT_FALSE(theLink->IsRel());
    EXPECT_EQ(theGroup->GetType(), kvxExpressionType_Composite);
    EXPECT_TRUE(theGroup->IsComposite());
    EXPECT_FALSE(theGroup->IsLinear());
    EXPECT_FALSE(theGroup->IsRel());
}

struct StringCase {
    int mOperandID;
    const char* mValue;
    const char* mLiteral;
    bool mMatches;
};

constexpr StringCase kStringCases[] = {
    {kvxExpressionOperandID_Equal, "Love", "love", true},
    {kvxExpressionOperandID_Equal, "Loves", "love", false},
    {kvxExpressionOperandID_Equal, "lov", "love", false},
    {kvxExpressionOperandID_Equal, "\xC3\x89t\xC3\xA9", "\xC3\xA9t\xC3\xA9", false},
    {kvxExpressionOperandID_Equal, "", "", true},
    {kvxExpressionOperandID_Equal, nullptr, "", true},
    {kvxExpressionOperandID_Equal, "100", "100", true},
    {kvxExpressionOperandID_Equal, "100", "0100", false},
    {kvxExpressionOperandID_NotEqual, "Love", "love", false},
    {kvxExpressionOperandID_NotEqual, "Loves", "love", true},
    {kvxExpressionOperandID_NotEqual, nullptr, "love", true},
    {kvxExpressionOperandID_SmallerOrEqual, "100", "100", false},
    {kvxExpressionOperandID_SmallerOrEqual, "a", "b", false},
    {kvxExpressionOperandID_GreaterOrEqual, "100", "100", false},
    {kvxExpressionOperandID_Greater, "150", "100", false},
    {kvxExpressionOperandID_Greater, "b", "a", false},
    {kvxExpressionOperandID_Smaller, "50", "100", false},
    {kvxExpressionOperandID_Smaller, "a", "b", false},
    {kvxExpressionOperandID_Contains, "All you need is love", "LOVE", true},
    {kvxExpressionOperandID_Contains, "All you need is love", "all", true},
    {kvxExpressionOperandID_Contains, "All you need is love", "hate", false},
    {kvxExpressionOperandID_Contains, "lov", "love", false},
    {kvxExpressionOperandID_Contains, nullptr, "love", false},
    {kvxExpressionOperandID_Contains, "love", "", false},
    {kvxExpressionOperandID_DoesNotContain, "All you need is love", "LOVE", false},
    {kvxExpressionOperandID_DoesNotContain, "All you need is love", "hate", true},
    {kvxExpressionOperandID_DoesNotContain, nullptr, "love", true},
    {kvxExpressionOperandID_DoesNotContain, "love", "", true},
    {kvxExpressionOperandID_DerivedFrom, "object.item.audioItem", "object.item", true},
    {kvxExpressionOperandID_DerivedFrom, "object.item", "object.item", true},
    {kvxExpressionOperandID_DerivedFrom, "object.items", "object.item", true},
    {kvxExpressionOperandID_DerivedFrom, "Object.item", "object.item", false},
    {kvxExpressionOperandID_DerivedFrom, "object", "object.item", false},
    {kvxExpressionOperandID_DerivedFrom, "my.object.item", "object.item", false},
    {kvxExpressionOperandID_DerivedFrom, nullptr, "object", false},
    {kvxExpressionOperandID_DerivedFrom, nullptr, "", true},
    {kvxExpressionOperandID_Like, "All you need is love", "All*love", true},
    {kvxExpressionOperandID_Like, "All you need is love", "all*love", false},
    {kvxExpressionOperandID_Like, "All you need is love", "need", false},
    {kvxExpressionOperandID_Like, "track 7", "track [0-9]", true},
    {kvxExpressionOperandID_Like, "track 77", "track ?", false},
    {kvxExpressionOperandID_Like, nullptr, "*", true},
    {kvxExpressionOperandID_Exists, "any", "true", true},
    {kvxExpressionOperandID_Exists, "", "true", false},
    {kvxExpressionOperandID_Exists, nullptr, "true", false},
    {kvxExpressionOperandID_Exists, "any", "false", false},
    {kvxExpressionOperandID_Exists, "", "false", true},
    {kvxExpressionOperandID_Exists, nullptr, "false", true},
    {kvxExpressionOperandID_Exists, "any", "perhaps", false},
    {kvxExpressionOperandID_Exists, "", "perhaps", false},
    {kNone, "same", "same", false},
    {kAnd, "same", "same", false},
    {99, "same", "same", false},
};

TEST(SearchExpressionTest, TextsAreComparedByTheOperator) {
    for (const StringCase& theCase : kStringCases) {
        SCOPED_TRACE(testing::Message()
                     << (theCase.mValue == nullptr ? "null" : theCase.mValue) << " operator "
                     << theCase.mOperandID << " " << theCase.mLiteral);
        vxRelExpression theExpression("name", 0, "op", theCase.mOperandID, theCase.mLiteral);
        EXPECT_EQ(theExpression.MatchString(theCase.mValue), theCase.mMatches);
        // The second time the type of the literal is known.
        EXPECT_EQ(theExpression.MatchString(theCase.mValue), theCase.mMatches);
    }
}

// For a value below, equal to and above the literal.
struct OrderCase {
    int mOperandID;
    bool mBelow, mEqual, mAbove;
};

constexpr OrderCase kOrderCases[] = {
    {kvxExpressionOperandID_Equal, false, true, false},
    {kvxExpressionOperandID_NotEqual, true, false, true},
    {kvxExpressionOperandID_SmallerOrEqual, true, true, false},
    {kvxExpressionOperandID_GreaterOrEqual, false, true, true},
    {kvxExpressionOperandID_Greater, false, false, true},
    {kvxExpressionOperandID_Smaller, true, false, false},
    {kvxExpressionOperandID_Contains, false, false, false},
    {kvxExpressionOperandID_DoesNotContain, false, false, false},
    {kvxExpressionOperandID_DerivedFrom, false, false, false},
    {kvxExpressionOperandID_Like, false, false, false},
    {kvxExpressionOperandID_Exists, false, false, false},
    {kNone, false, false, false},
    {99, false, false, false},
};

TEST(SearchExpressionTest, IntegersAreComparedByValue) {
    for (const OrderCase& theCase : kOrderCases) {
        SCOPED_TRACE(theCase.mOperandID);
        vxRelExpression theExpression("name", 0, "op", theCase.mOperandID, "100");
        EXPECT_EQ(theExpression.MatchInt(99), theCase.mBelow);
        EXPECT_EQ(theExpression.MatchInt(100), theCase.mEqual);
        EXPECT_EQ(theExpression.MatchInt(101), theCase.mAbove);
        EXPECT_EQ(theExpression.MatchInt(vxCString("99")), theCase.mBelow);
        EXPECT_EQ(theExpression.MatchInt(vxCString("100")), theCase.mEqual);
        EXPECT_EQ(theExpression.MatchInt(vxCString("101")), theCase.mAbove);
    }
}

TEST(SearchExpressionTest, RealNumbersAreComparedByValue) {
    for (const OrderCase& theCase : kOrderCases) {
        SCOPED_TRACE(theCase.mOperandID);
        vxRelExpression theExpression("name", 0, "op", theCase.mOperandID, "1.5");
        EXPECT_EQ(theExpression.MatchDouble(1.25), theCase.mBelow);
        EXPECT_EQ(theExpression.MatchDouble(1.5), theCase.mEqual);
        EXPECT_EQ(theExpression.MatchDouble(1.75), theCase.mAbove);
        EXPECT_EQ(theExpression.MatchDouble(vxCString("1.25")), theCase.mBelow);
        EXPECT_EQ(theExpression.MatchDouble(vxCString("15e-1")), theCase.mEqual);
        EXPECT_EQ(theExpression.MatchDouble(vxCString("2")), theCase.mAbove);
    }
}

TEST(SearchExpressionTest, DatesAreComparedByValue) {
    const vxtest::LocalZone theZone("UTC0");
    for (const OrderCase& theCase : kOrderCases) {
        SCOPED_TRACE(theCase.mOperandID);
        vxRelExpression theExpression("name", 0, "op", theCase.mOperandID, "2015-06-30T18:00:00");
        EXPECT_EQ(theExpression.MatchDate(vxDateTime(1435687199L)), theCase.mBelow);
        EXPECT_EQ(theExpression.MatchDate(vxDateTime(1435687200L)), theCase.mEqual);
        EXPECT_EQ(theExpression.MatchDate(vxDateTime(1435687201L)), theCase.mAbove);
        EXPECT_EQ(theExpression.MatchDate(vxCString("2015-06-30")), theCase.mBelow);
        EXPECT_EQ(theExpression.MatchDate(vxCString("2015-06-30T20:00:00+02:00")), theCase.mEqual);
        EXPECT_EQ(theExpression.MatchDate(vxCString("2015-06-30T18:00:00.250")), theCase.mAbove);
    }
}

TEST(SearchExpressionTest, DateLiteralsKnowTheirZone) {
    const vxtest::LocalZone theZone("EST5");
    const struct {
        const char* mLiteral;
        long mSeconds;
    } kCases[] = {
        {"2015-06-30T18:00:00Z", 1435687200},
        {"2015-06-30T20:00:00+02:00", 1435687200},
        {"2015-06-30T12:30:00-05:30", 1435687200},
        {"2015-06-30T13:00:00", 1435687200},
        {"2015-01-31", 1422680400},
        {"2015-12-31", 1451538000},
    };
    vxtest::Reports theReports;
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mLiteral);
        vxRelExpression theExpression("date", 0, "=", kvxExpressionOperandID_Equal,
                                      theCase.mLiteral);
        EXPECT_TRUE(theExpression.MatchDate(vxDateTime(theCase.mSeconds)));
        EXPECT_FALSE(theExpression.MatchDate(vxDateTime(theCase.mSeconds + 1)));
    }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(SearchExpressionTest, ValuesThatDoNotConvertMatchNothing) {
    vxRelExpression theInt("name", 0, "!=", kvxExpressionOperandID_NotEqual, "1");
    for (const char* theValue : {"", " 2", "2 ", "2.5", "0x2", "two", "9223372036854775808"}) {
        EXPECT_FALSE(theInt.MatchInt(vxCString(theValue))) << theValue;
    }
    vxRelExpression theDouble("name", 0, "!=", kvxExpressionOperandID_NotEqual, "1.5");
    for (const char* theValue : {"", " 2", "2.5x", "inf", "nan", "0x2", "1e999"}) {
        EXPECT_FALSE(theDouble.MatchDouble(vxCString(theValue))) << theValue;
    }
    vxRelExpression theDate("name", 0, "!=", kvxExpressionOperandID_NotEqual, "2015-06-30");
    for (const char* theValue : {"", "2015", "2015-06-31", "2015-06-30 18:00:00", "yesterday"}) {
        EXPECT_FALSE(theDate.MatchDate(vxCString(theValue))) << theValue;
    }
}

TEST(SearchExpressionTest, LimitsOfIntegersAreExact) {
    vxRelExpression theHighest("name", 0, "=", kvxExpressionOperandID_Equal, "9223372036854775807");
    EXPECT_TRUE(theHighest.MatchInt(std::numeric_limits<long long>::max()));
    EXPECT_FALSE(theHighest.MatchInt(std::numeric_limits<long long>::max() - 1));
    vxRelExpression theLowest("name", 0, "<", kvxExpressionOperandID_Smaller,
                              "-9223372036854775807");
    EXPECT_TRUE(theLowest.MatchInt(std::numeric_limits<long long>::min()));
    EXPECT_FALSE(theLowest.MatchInt(std::numeric_limits<long long>::min() + 1));
}

TEST(SearchExpressionTest, WhatIsNoNumberIsUnequalToAll) {
    vxRelExpression theEqual("name", 0, "=", kvxExpressionOperandID_Equal, "1.5");
    vxRelExpression theUnequal("name", 0, "!=", kvxExpressionOperandID_NotEqual, "1.5");
    EXPECT_FALSE(theEqual.MatchDouble(std::nan("")));
    EXPECT_TRUE(theUnequal.MatchDouble(std::nan("")));
}

// What can be asked about a literal: numbers only those of its very type, texts and dates always.
struct LiteralCase {
    const char* mLiteral;
    int mType;
};

constexpr LiteralCase kLiteralCases[] = {
    {"0", kvxPropertyType_Numeric},
    {"-12", kvxPropertyType_Numeric},
    {"+12", kvxPropertyType_Numeric},
    {"9223372036854775807", kvxPropertyType_Numeric},
    {"9223372036854775808", kvxPropertyType_Double},
    {"1.0", kvxPropertyType_Double},
    {"-.5", kvxPropertyType_Double},
    {"1e3", kvxPropertyType_Double},
    {"2015-06-30", kvxPropertyType_Date},
    {"2015-06-30T18:00:00", kvxPropertyType_Date},
    {"2015-06-30T18:00:00.5+02:00", kvxPropertyType_Date},
    {"2015-06-31", kvxPropertyType_String},
    {"2015-13-01", kvxPropertyType_String},
    {"2500-01-01", kvxPropertyType_String},  // beyond what an instant can hold
    {"", kvxPropertyType_String},
    {" 1", kvxPropertyType_String},
    {"0x10", kvxPropertyType_String},
    {"nan", kvxPropertyType_String},
    {"love", kvxPropertyType_String},
};

TEST(SearchExpressionTest, LiteralsAreNumbersElseDatesElseTexts) {
    for (const LiteralCase& theCase : kLiteralCases) {
        SCOPED_TRACE(theCase.mLiteral);
        vxRelExpression theExpression("name", 0, "=", kvxExpressionOperandID_Equal,
                                      theCase.mLiteral);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(theExpression.ValidateValue(kvxPropertyType_Numeric, NULL),
                      theCase.mType == kvxPropertyType_Numeric);
            EXPECT_EQ(theExpression.ValidateValue(kvxPropertyType_Double, NULL),
                      theCase.mType == kvxPropertyType_Double);
            EXPECT_TRUE(theExpression.ValidateValue(kvxPropertyType_String, NULL));
            EXPECT_TRUE(theExpression.ValidateValue(kvxPropertyType_Date, NULL));
        }
    }
}

TEST(SearchExpressionTest, NumbersAreComparedWithLiteralsOfTheirVeryTypeOnly) {
    vxRelExpression theInteger("name", 0, "<", kvxExpressionOperandID_Smaller, "100");
    EXPECT_TRUE(theInteger.MatchInt(1));
    EXPECT_FALSE(theInteger.MatchDouble(1.0));
    EXPECT_FALSE(theInteger.MatchDouble(vxCString("1.0")));
    vxRelExpression theReal("name", 0, "<", kvxExpressionOperandID_Smaller, "100.0");
    EXPECT_TRUE(theReal.MatchDouble(1.0));
    EXPECT_FALSE(theReal.MatchInt(1));
    vxRelExpression theText("name", 0, "!=", kvxExpressionOperandID_NotEqual, "hundred");
    EXPECT_FALSE(theText.MatchInt(1));
    EXPECT_FALSE(theText.MatchDouble(1.0));
    vxRelExpression theDate("name", 0, "!=", kvxExpressionOperandID_NotEqual, "2015-06-30");
    EXPECT_FALSE(theDate.MatchInt(1));
    EXPECT_TRUE(theDate.MatchString("1"));
}

TEST(SearchExpressionTest, ALiteralThatIsNoDateMatchesNoDate) {
    vxtest::Reports theReports;
    for (const char* theLiteral : {"love", "100", "1.5", ""}) {
        for (const OrderCase& theCase : kOrderCases) {
            vxRelExpression theExpression("date", 0, "op", theCase.mOperandID, theLiteral);
            EXPECT_FALSE(theExpression.MatchDate(vxDateTime(0L))) << theLiteral;
            EXPECT_FALSE(theExpression.MatchDate(vxDateTime())) << theLiteral;
        }
    }
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(SearchExpressionTest, ExistenceIsAskedWithTextsAndDates) {
    vxRelExpression theThere("res", 0, "exists", kvxExpressionOperandID_Exists, "true");
    vxRelExpression theAbsent("res", 0, "exists", kvxExpressionOperandID_Exists, "false");
    EXPECT_TRUE(theThere.MatchDate(vxDateTime(0L)));
    EXPECT_FALSE(theThere.MatchDate(vxDateTime()));
    EXPECT_FALSE(theAbsent.MatchDate(vxDateTime(0L)));
    EXPECT_TRUE(theAbsent.MatchDate(vxDateTime()));
    // The literal is a text, so that numbers never match; text that is no date does not convert.
    EXPECT_FALSE(theThere.MatchInt(1));
    EXPECT_FALSE(theAbsent.MatchInt(1));
    EXPECT_FALSE(theThere.MatchDouble(1.5));
    EXPECT_FALSE(theAbsent.MatchDouble(1.5));
    EXPECT_TRUE(theThere.MatchDate(vxCString("2015-06-30")));
    EXPECT_FALSE(theAbsent.MatchDate(vxCString("")));
}

TEST(SearchExpressionTest, ComparisonsAskTheEvaluator) {
    EXPECT_EQ(Evaluation(Leaf("t")), "t true");
    EXPECT_EQ(Evaluation(Leaf("f")), "f false");
}

TEST(SearchExpressionTest, AComparisonWithoutEvaluatorIsReportedAndDoesNotMatch) {
    vxtest::Reports theReports;
    const std::unique_ptr<vxSearchExpression> theLeaf(Leaf("t"));
    EXPECT_FALSE(theLeaf->Evaluate(NULL));
    EXPECT_THAT(theReports.Assertions(), ElementsAre("anEvaluator != NULL"));
}

TEST(SearchExpressionTest, ChainsStopWhereTheResultIsKnown) {
    EXPECT_EQ(Evaluation(Link(Leaf("t"), kAnd, Link(Leaf("t1")))), "tt1 true");
    EXPECT_EQ(Evaluation(Link(Leaf("t"), kAnd, Link(Leaf("f")))), "tf false");
    EXPECT_EQ(Evaluation(Link(Leaf("f"), kAnd, Link(Leaf("t")))), "f false");
    EXPECT_EQ(Evaluation(Link(Leaf("t"), kOr, Link(Leaf("f")))), "t true");
    EXPECT_EQ(Evaluation(Link(Leaf("f"), kOr, Link(Leaf("t")))), "ft true");
    EXPECT_EQ(Evaluation(Link(Leaf("f"), kOr, Link(Leaf("f2")))), "ff2 false");
}

TEST(SearchExpressionTest, ChainsReadFromRightToLeft) {
    // f and (t or t2), not (f and t) or t2
    EXPECT_EQ(Evaluation(Link(Leaf("f"), kAnd, Link(Leaf("t"), kOr, Link(Leaf("t2"))))), "f false");
    EXPECT_EQ(
        Evaluation(Link(Group(Link(Leaf("f"), kAnd, Link(Leaf("t")))), kOr, Link(Leaf("t2")))),
        "ft2 true");
    EXPECT_EQ(Evaluation(Link(Leaf("t"), kAnd, Group(Link(Leaf("f"), kOr, Group(Leaf("t2")))))),
              "tft2 true");
}

TEST(SearchExpressionTest, WhatIsMissingInATreeIsTrueOrWithoutEffect) {
    EXPECT_EQ(Evaluation(Link(nullptr)), " true");
    EXPECT_EQ(Evaluation(Group(nullptr)), " true");
    EXPECT_EQ(Evaluation(Link(nullptr, kAnd, Link(Leaf("f")))), "f false");
    EXPECT_EQ(Evaluation(Link(nullptr, kOr, Link(Leaf("f")))), " true");
    EXPECT_EQ(Evaluation(Link(Leaf("t"), kAnd)), "t true");
    EXPECT_EQ(Evaluation(Link(Leaf("f"), kOr)), "f false");
    EXPECT_EQ(Evaluation(Link(Leaf("t"), kNone, Link(Leaf("f")))), "t true");
    EXPECT_EQ(Evaluation(Link(Leaf("f"), 99, Link(Leaf("t")))), "f false");
}

TEST(SearchExpressionTest, ListsNameEachPropertyOnce) {
    const std::unique_ptr<vxSearchExpression> theTree(
        Link(Leaf("b"), kAnd,
             Link(Group(Link(Leaf("a"), kOr, Link(Leaf("b")))), kOr,
                  Group(Link(Leaf("ab"), kAnd, Link(Leaf("a")))))));
    EXPECT_STREQ(theTree->GetSearchCriteriaList(""), "b,a,ab,");
    EXPECT_STREQ(theTree->GetSearchCriteriaList("ab,c,"), "ab,c,b,a,");
    // Whole names are compared: "b" is in neither.
    EXPECT_STREQ(theTree->GetSearchCriteriaList("bb,abc,"), "bb,abc,b,a,ab,");
    const std::unique_ptr<vxSearchExpression> theLeaf(Leaf("a"));
    EXPECT_STREQ(theLeaf->GetSearchCriteriaList(""), "a,");
    EXPECT_STREQ(theLeaf->GetSearchCriteriaList("a,"), "a,");
    EXPECT_STREQ(theLeaf->GetSearchCriteriaList("aa,"), "aa,a,");
    const std::unique_ptr<vxSearchExpression> theGroup(Group(Leaf("a")));
    EXPECT_STREQ(theGroup->GetSearchCriteriaList("b,"), "b,a,");
    const std::unique_ptr<vxSearchExpression> theEmpty(Group(nullptr));
    EXPECT_STREQ(theEmpty->GetSearchCriteriaList(""), "");
}

TEST(SearchExpressionTest, TreesAreTheSameByShapeOperatorsAndComparisons) {
    using Maker = vxSearchExpression* (*)();
    static const Maker kMakers[] = {
        [] { return Leaf("a"); },
        [] { return Leaf("b"); },
        []() -> vxSearchExpression* {
            return new vxRelExpression("a", 1, "=", kvxExpressionOperandID_Equal, "");
        },
        []() -> vxSearchExpression* {
            return new vxRelExpression("a", 0, "!=", kvxExpressionOperandID_NotEqual, "");
        },
        []() -> vxSearchExpression* {
            return new vxRelExpression("a", 0, "=", kvxExpressionOperandID_Equal, "x");
        },
        []() -> vxSearchExpression* { return Link(Leaf("a")); },
        []() -> vxSearchExpression* { return Link(nullptr); },
        []() -> vxSearchExpression* { return Link(Leaf("a"), kAnd, Link(Leaf("b"))); },
        []() -> vxSearchExpression* { return Link(Leaf("a"), kOr, Link(Leaf("b"))); },
        []() -> vxSearchExpression* { return Link(Leaf("a"), kAnd, Link(Leaf("c"))); },
        []() -> vxSearchExpression* { return Link(Leaf("a"), kAnd, Group(Leaf("b"))); },
        []() -> vxSearchExpression* { return Link(Group(Leaf("a")), kAnd, Link(Leaf("b"))); },
        [] { return Group(Leaf("a")); },
        [] { return Group(Link(Leaf("a"))); },
        [] { return Group(nullptr); },
    };
    for (const Maker theLeftMaker : kMakers) {
        for (const Maker theRightMaker : kMakers) {
            const std::unique_ptr<vxSearchExpression> theLeft(theLeftMaker());
            const std::unique_ptr<vxSearchExpression> theRight(theRightMaker());
            SCOPED_TRACE(theLeft->GetText() + " and " + theRight->GetText());
            EXPECT_EQ(theLeft->IsSameAs(theRight.get()), theLeftMaker == theRightMaker);
            EXPECT_TRUE(theLeft->IsSameAs(theLeft.get()));
            EXPECT_FALSE(theLeft->IsSameAs(NULL));
        }
    }
}

TEST(SearchExpressionTest, TreesPrintAsCriteria) {
    vxtest::Reports theReports;
    const std::unique_ptr<vxSearchExpression> theTree(Link(
        Group(Link(
            new vxRelExpression("dc:title", 0, "contains", kvxExpressionOperandID_Contains,
                                "a \"b\" \\"),
            kAnd,
            Link(new vxRelExpression("res", 0, "exists", kvxExpressionOperandID_Exists, "true")))),
        kOr, Group(Link(Leaf("c")))));
    EXPECT_STREQ(theTree->GetText(),
                 R"((dc:title contains "a \"b\" \\" and res exists true) or (c = ""))");
    theTree->Display();
    EXPECT_EQ(theReports.Console(),
              "(dc:title contains \"a \\\"b\\\" \\\\\" and res exists true) or (c = \"\")\n");
    theReports.Clear();
    const std::unique_ptr<vxSearchExpression> theLeaf(Leaf("a"));
    theLeaf->Display();
    EXPECT_EQ(theReports.Console(), "a = \"\"\n");
    theReports.Clear();
    const std::unique_ptr<vxSearchExpression> theEmpty(Group(nullptr));
    theEmpty->Display();
    EXPECT_EQ(theReports.Console(), "()\n");
}

TEST(SearchExpressionTest, GroupingPutsALinkAndTheNextIntoAGroup) {
    const std::unique_ptr<vxLinearExpression> theChain(
        Link(Leaf("a"), kAnd, Link(Leaf("b"), kOr, Link(Leaf("c")))));
    vxSearchExpression* theRest = static_cast<vxLinearExpression*>(theChain->GetNext())->GetNext();
    theChain->GroupWithNext();
    const std::unique_ptr<vxSearchExpression> theExpected(
        Link(Group(Link(Leaf("a"), kAnd, Link(Leaf("b")))), kOr, Link(Leaf("c"))));
    EXPECT_TRUE(theChain->IsSameAs(theExpected.get()));
    EXPECT_STREQ(theChain->GetOperand(), "or");
    EXPECT_EQ(theChain->GetOperandID(), kOr);
    EXPECT_EQ(theChain->GetNext(), theRest);
    EXPECT_STREQ(theChain->GetText(), R"((a = "" and b = "") or c = "")");

    const std::unique_ptr<vxLinearExpression> thePair(Link(Leaf("a"), kOr, Link(Leaf("b"))));
    thePair->GroupWithNext();
    const std::unique_ptr<vxSearchExpression> theAlone(
        Link(Group(Link(Leaf("a"), kOr, Link(Leaf("b"))))));
    EXPECT_TRUE(thePair->IsSameAs(theAlone.get()));
    EXPECT_STREQ(thePair->GetOperand(), "");
}

TEST(SearchExpressionTest, GroupingWithoutALinkBehindIsReported) {
    vxtest::Reports theReports;
    const std::unique_ptr<vxLinearExpression> theLast(Link(Leaf("a")));
    theLast->GroupWithNext();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mNext != NULL"));
    EXPECT_STREQ(theLast->GetText(), "a = \"\"");
    theReports.Clear();
    const std::unique_ptr<vxLinearExpression> theBeforeGroup(
        Link(Leaf("a"), kOr, Group(Leaf("b"))));
    theBeforeGroup->GroupWithNext();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mNext->IsLinear()"));
    EXPECT_STREQ(theBeforeGroup->GetText(), "a = \"\" or (b = \"\")");
}

TEST(SearchExpressionTest, GroupingWhatClaimsToBeNoLinkIsReported) {
    class Denier : public vxLinearExpression {
    public:
        Denier() : vxLinearExpression(Leaf("a"), "or", kOr, Link(Leaf("b"))) {}
        bool IsLinear() override { return false; }
    };
    vxtest::Reports theReports;
    Denier theDenier;
    theDenier.GroupWithNext();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("IsLinear()"));
    EXPECT_STREQ(theDenier.GetText(), "a = \"\" or b = \"\"");
}

// Shapes that a recursion would follow to the end of any stack.
TEST(SearchExpressionTest, LongAndDeepTreesFitASmallStack) {
    constexpr int kCount = 200000;
    const auto theCheck = [](vxSearchExpression* aLeft, vxSearchExpression* aRight) {
        const std::unique_ptr<vxSearchExpression> theLeft(aLeft);
        const std::unique_ptr<vxSearchExpression> theRight(aRight);
        NameEvaluator theEvaluator;
        EXPECT_TRUE(theLeft->Evaluate(&theEvaluator));
        EXPECT_TRUE(theLeft->IsSameAs(theRight.get()));
        EXPECT_STREQ(theLeft->GetSearchCriteriaList(""), "t,");
        EXPECT_GT(theLeft->GetText().length(), size_t{kCount});
    };
    vxtest::OnSmallStack([&theCheck] {
        vxSearchExpression* theChains[2] = {Link(Leaf("t")), Link(Leaf("t"))};
        vxSearchExpression* theGroups[2] = {Leaf("t"), Leaf("t")};
        vxSearchExpression* theLeft[2] = {Leaf("t"), Leaf("t")};
        for (int i = 0; i < kCount; ++i) {
            for (int j = 0; j < 2; ++j) {
                theChains[j] = Link(Leaf("t"), kAnd, theChains[j]);
                theGroups[j] = Group(theGroups[j]);
                theLeft[j] = Link(theLeft[j], kAnd, Leaf("t"));
            }
        }
        theCheck(theChains[0], theChains[1]);
        theCheck(theGroups[0], theGroups[1]);
        theCheck(theLeft[0], theLeft[1]);
    });
}

/// Makes a random tree that is deep on the left, and tells what its evaluation must ask and answer.
class RandomTree {
public:
    explicit RandomTree(uint32_t aState) : mState(aState) {}

    vxSearchExpression* Make(int aDepth, bool* aResult, std::string* anAsked) {
        const uint32_t theKind = aDepth == 0 ? 0 : Next(40);
        if (theKind == 0) {
            *aResult = Next(2) == 0;
            *anAsked = *aResult ? "t" : "f";
            return Leaf(anAsked->c_str());
        }
        if (theKind < 8) {
            return Group(Make(aDepth - 1, aResult, anAsked));
        }
        if (theKind < 12) {
            return Link(Make(aDepth - 1, aResult, anAsked));
        }
        vxSearchExpression* theFirst = Make(aDepth - 1, aResult, anAsked);
        const bool theIsAnd = Next(2) == 0;
        bool theRest = false;
        std::string theRestAsked;
        vxSearchExpression* theNext = Make(static_cast<int>(Next(3)), &theRest, &theRestAsked);
        if (*aResult == theIsAnd) {
            *aResult = theRest;
            *anAsked += theRestAsked;
        }
        return Link(theFirst, theIsAnd ? kAnd : kOr, theNext);
    }

private:
    uint32_t Next(uint32_t aCount) {
        mState = mState * 1664525U + 1013904223U;
        return (mState >> 16) % aCount;
    }

    uint32_t mState;
};

TEST(SearchExpressionTest, EveryLinkOfALongNestAsksForItsOwnRest) {
    for (const int theDepth : {15, 16, 17, 47, 48, 49, 50, 100}) {
        SCOPED_TRACE(theDepth);
        std::string theAsked = "t0";
        vxSearchExpression* theTree = Leaf("t0");
        for (int i = 1; i <= theDepth; ++i) {
            const std::string theName = "t" + std::to_string(i);
            theTree = Link(Group(theTree), kAnd, Leaf(theName.c_str()));
            theAsked += theName;
        }
        EXPECT_EQ(Evaluation(theTree), theAsked + " true");
    }
}

TEST(SearchExpressionTest, TreesOfEveryDepthAskAsLittleAsTheyCan) {
    RandomTree theRandom(11);
    for (int i = 0; i < 3000; ++i) {
        bool theResult = false;
        std::string theAsked;
        const std::unique_ptr<vxSearchExpression> theTree(
            theRandom.Make(i % 60, &theResult, &theAsked));
        NameEvaluator theEvaluator;
        EXPECT_EQ(theTree->Evaluate(&theEvaluator), theResult) << theTree->GetText().c_str();
        EXPECT_EQ(theEvaluator.mAsked, theAsked) << theTree->GetText().c_str();
    }
}

TEST(SearchExpressionTest, RandomTreesAreFreedWhole) {
    uint32_t theState = 7;
    const auto theNext = [&theState](uint32_t aCount) {
        theState = theState * 1664525U + 1013904223U;
        return (theState >> 16) % aCount;
    };
    for (int i = 0; i < 300; ++i) {
        std::vector<vxSearchExpression*> theTrees = {nullptr};
        for (int j = 0; j < 60; ++j) {
            vxSearchExpression* theFirst =
                theTrees[theNext(static_cast<uint32_t>(theTrees.size()))];
            theTrees.erase(std::find(theTrees.begin(), theTrees.end(), theFirst));
            vxSearchExpression* theSecond = nullptr;
            if (!theTrees.empty()) {
                theSecond = theTrees.back();
                theTrees.pop_back();
            }
            theTrees.push_back(Link(theFirst, kOr, theSecond));
            theTrees.push_back(theNext(3) == 0 ? Group(Leaf("a")) : Leaf("a"));
            theTrees.push_back(Group(nullptr));
        }
        for (vxSearchExpression* theTree : theTrees) {
            delete theTree;  // the leak checker watches
        }
    }
}

}  // namespace
