#pragma once

#include <cstdint>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/DateTime.h"

class vxRelExpression;
class vxSearchExpressionEvaluator;

/// Identifiers of operators.
enum {
    kvxExpressionOperandID_None = 0,
    kvxExpressionOperandID_Equal = 1,
    kvxExpressionOperandID_NotEqual = 2,
    kvxExpressionOperandID_SmallerOrEqual = 3,
    kvxExpressionOperandID_GreaterOrEqual = 4,
    kvxExpressionOperandID_Greater = 5,
    kvxExpressionOperandID_Smaller = 6,
    kvxExpressionOperandID_Contains = 7,
    kvxExpressionOperandID_DoesNotContain = 8,
    kvxExpressionOperandID_DerivedFrom = 9,
    kvxExpressionOperandID_Exists = 10,
    kvxExpressionOperandID_And = 11,
    kvxExpressionOperandID_Or = 12,
    kvxExpressionOperandID_Like = 13
};

/// Kinds of expressions.
enum {
    kvxExpressionType_Unknown = 0,
    kvxExpressionType_Rel = 1,        ///< one comparison
    kvxExpressionType_Composite = 2,  ///< a group in parentheses
    kvxExpressionType_Linear = 3      ///< one link of a chain
};

/// What a literal can be read as.
enum {
    kvxPropertyType_Unknown = 0,  ///< not yet decided
    kvxPropertyType_Numeric = 1,  ///< a decimal integer of 64 bits
    kvxPropertyType_String = 2,
    kvxPropertyType_Date = 3,
    kvxPropertyType_Double = 4
};

/// A search criterion: one comparison, or several in a tree.
///
/// A chain such as `a = "1" and b = "2"` is a list of links, each with an expression of its own and
/// the keyword in front of the next. Trees are made by vxExpressionParser, or by hand; every operation
/// takes trees of any depth and length, also on a small stack.
///
/// Owner:    a tree is destroyed through its root.
/// Threads:  one at a time, for a whole tree: comparisons remember what their literals are.
class VX_EXPORT vxSearchExpression {
public:
    virtual ~vxSearchExpression();

    /// Prints GetText() and a line end on the console.
    virtual void Display() = 0;

    /// Returns `aList` and behind it the names of the tree's properties that it lacks, each followed
    /// by ",", in the order of their first appearance.
    virtual vxCString GetSearchCriteriaList(const vxCString& aList) = 0;

    /// Tells whether the evaluator's current object matches; the evaluator is asked about as few
    /// comparisons as possible, from left to right.
    ///
    /// Asserts:  anEvaluator != NULL, for a comparison, which does not match then.
    virtual bool Evaluate(vxSearchExpressionEvaluator* anEvaluator) = 0;

    /// Is it a vxCompositeExpression?
    virtual bool IsComposite();
    /// Is it a vxRelExpression?
    virtual bool IsRel();
    /// Is it a vxLinearExpression?
    virtual bool IsLinear();

    /// Has the other tree the same shape, operators, properties and literals? Null is no tree.
    virtual bool IsSameAs(vxSearchExpression* anExpression) = 0;

    /// Returns a kvxExpressionType.
    virtual int GetType();

    /// Returns the tree as criteria text, with parentheses where it has groups. The text selects what
    /// the tree selects, provided that its keywords are the built-in ones and no property's name begins
    /// with a parenthesis.
    vxCString GetText();

protected:
    /// `aType` is a kvxExpressionType.
    explicit vxSearchExpression(int aType) : mType(aType) {}
    vxSearchExpression(const vxSearchExpression&) = delete;
    vxSearchExpression& operator=(const vxSearchExpression&) = delete;

    int mType;  ///< a kvxExpressionType

    friend struct vxExpressionTree;
};

/// One comparison of a property with a literal.
///
/// The literal is a text; what it can be read as is decided when it is first compared: "exists" has a
/// String, others are Numeric, else Double, else Date (see vxDateTime::ParseDLNA()), else String. The
/// matchers compare the value of an object, on the left, with the literal. They give false where the
/// literal is of another type: a Double is never compared with a Numeric literal, nor the reverse.
///
///     Operator                          MatchString            MatchInt, MatchDouble, MatchDate
///     =  !=                             ignoring ASCII case    by value
///     <=  >=  >  <                      never                  by value
///     contains  doesNotContain          ignoring ASCII case    never
///     derivedfrom                       value begins with it   never
///     like                              wildcards              never
///     exists                            value is not empty     MatchDate: value is valid
///
/// `exists` is thus asked with MatchString() or MatchDate(); numbers never match it. An empty literal
/// is contained nowhere (as with vxCString::FindNoCase()). Wildcards are those of
/// vxCStringParser_Match(), which distinguishes case, as derivedfrom does.
class VX_EXPORT vxRelExpression : public vxSearchExpression {
public:
    /// `anOperand` is the keyword, `anOperandID` its kvxExpressionOperandID.
    vxRelExpression(const vxCString& aPropertyName, int aPropertyID, const vxCString& anOperand,
                    int anOperandID, const vxCString& aPropertyValue);
    ~vxRelExpression() override;

    void Display() override;
    vxCString GetSearchCriteriaList(const vxCString& aList) override;
    bool Evaluate(vxSearchExpressionEvaluator* anEvaluator) override;
    bool IsSameAs(vxSearchExpression* anExpression) override;

    /// Returns the property as written.
    const vxCString& GetPropertyName() const { return mPropertyName; }
    /// Returns what vxExpressionParser::GetPropertyID() gave for it.
    int GetPropertyID() const { return mPropertyID; }
    /// Returns the operator's keyword.
    const vxCString& GetOperand() const { return mOperand; }
    /// Returns the operator's kvxExpressionOperandID.
    int GetOperandID() const { return mOperandID; }
    /// Returns the literal without quotes and escapes.
    const vxCString& GetPropertyValue() const { return mPropertyValue; }

    /// Tells whether a text matches; null counts as empty.
    bool MatchString(const char* aValue);
    /// Tells whether an integer matches.
    bool MatchInt(long long aValue);
    /// Tells whether a decimal integer matches; other text does not.
    bool MatchInt(const vxCString& aValue);
    /// Tells whether a real number matches.
    bool MatchDouble(double aValue);
    /// Tells whether a real number matches (see vxConvert_strtod()); other text does not.
    bool MatchDouble(const vxCString& aValue);
    /// Tells whether a date matches. An invalid one is absent: it matches `exists false` only. A
    /// literal that is no date matches none.
    bool MatchDate(const vxDateTime& aValue);
    /// Tells whether a date matches (see vxDateTime::ParseDLNA()); other text does not.
    bool MatchDate(const vxCString& aValue);

    /// Decides what the literal is, and tells whether it can be compared with a value of
    /// `aRequestedType`, a kvxPropertyType: with String and Date always, with others if it is of that
    /// very type.
    ///
    /// For `exists`, whose literal is a String, also tells whether `aValue` matches: literal "true"
    /// needs one that is not empty, "false" an empty or null one. No other operator looks at it.
    bool ValidateValue(int aRequestedType, const char* aValue);

private:
    int ReadLiteral();

    vxCString mPropertyName;
    int mPropertyID;
    vxCString mOperand;
    int mOperandID;
    vxCString mPropertyValue;
    vxDateTime mPropertyValueDateTime;  // valid where the literal is a Date
    int64_t mPropertyValueInt;          // set where it is Numeric
    double mPropertyValueDouble;        // set where it is a Double
    int mPropertyType;                  // Unknown until the first use
};

/// One link of a chain: an expression, and the logical operator between it and the rest.
///
/// The rest is evaluated last: a chain that nobody groups reads from right to left.
class VX_EXPORT vxLinearExpression : public vxSearchExpression {
public:
    /// An empty keyword, kvxExpressionOperandID_None and null end the chain.
    ///
    /// Owner:    the link owns `anExpression` and `aNext`. Null for the former counts as true.
    vxLinearExpression(vxSearchExpression* anExpression, const vxCString& anOperand,
                       int anOperandID, vxSearchExpression* aNext);
    ~vxLinearExpression() override;

    void Display() override;
    vxCString GetSearchCriteriaList(const vxCString& aList) override;
    /// "or" gives true if the expression is true, "and" false if it is false, else both the rest;
    /// any other operator gives the expression's result.
    bool Evaluate(vxSearchExpressionEvaluator* anEvaluator) override;
    bool IsSameAs(vxSearchExpression* anExpression) override;

    /// Returns the link's own expression; the link keeps it.
    vxSearchExpression* GetExpression() const { return mExpression; }
    /// Returns the keyword in front of the rest, empty in the last link.
    const vxCString& GetOperand() const { return mOperand; }
    /// Returns that keyword's identifier.
    int GetOperandID() const { return mOperandID; }
    /// Returns the rest, null in the last link; the link keeps it.
    vxSearchExpression* GetNext() const { return mNext; }

    /// Puts this link and the next into a group, which becomes this link's expression; what followed
    /// the next link follows this one: `a and b or c` becomes `(a and b) or c`.
    ///
    /// Asserts:  IsLinear(); mNext != NULL; mNext->IsLinear(). Nothing is grouped then.
    void GroupWithNext();

private:
    friend class vxExpressionParser;
    friend struct vxExpressionTree;

    vxSearchExpression* mExpression;  // owned
    vxCString mOperand;
    int mOperandID;
    vxSearchExpression* mNext;  // owned
};

/// A group in parentheses.
class VX_EXPORT vxCompositeExpression : public vxSearchExpression {
public:
    /// Owner:    the group owns `anExpression`. Null counts as true.
    explicit vxCompositeExpression(vxSearchExpression* anExpression);
    ~vxCompositeExpression() override;

    void Display() override;
    vxCString GetSearchCriteriaList(const vxCString& aList) override;
    bool Evaluate(vxSearchExpressionEvaluator* anEvaluator) override;
    bool IsSameAs(vxSearchExpression* anExpression) override;

    /// Returns what is in the group; the group keeps it.
    vxSearchExpression* GetExpression() const { return mExpression; }

private:
    friend class vxExpressionParser;
    friend struct vxExpressionTree;

    vxSearchExpression* mExpression;  // owned
};

/// Knows how to read the properties of a program's objects, one object at a time.
///
///     class SongEvaluator : public vxSearchExpressionEvaluator {
///     public:
///         bool Evaluate(vxRelExpression* anExpression) override {
///             switch (anExpression->GetPropertyID()) {
///                 case kTitle: return anExpression->MatchString(mSong->mTitle);
///                 case kSize:  return anExpression->MatchInt(mSong->mSize);
///             }
///             return false;
///         }
///         const Song* mSong;
///     };
class VX_EXPORT vxSearchExpressionEvaluator {
public:
    /// Tells whether the current object satisfies one comparison.
    virtual bool Evaluate(vxRelExpression* anExpression) = 0;

    virtual ~vxSearchExpressionEvaluator();
};
