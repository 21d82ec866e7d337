#pragma once

#include <libteskTools/Array.h>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/SearchExpression.h"

/// What follows an operator's keyword.
enum {
    kvxExpressionValueID_None = 0,     ///< nothing, not even a blank
    kvxExpressionValueID_String = 1,   ///< a quoted value
    kvxExpressionValueID_Boolean = 2,  ///< true or false
    kvxExpressionValueID_Operand = 3   ///< nothing: a logical operator
};

/// One operator of a table; a row whose keyword is null ends the table.
struct vxExpressionOperand {
    const char* mOperand;  ///< keyword
    int mOperandID;        ///< kvxExpressionOperandID, or a number of the program's own
    int mValueID;          ///< kvxExpressionValueID
};

/// Parses search criteria and evaluates them against one object after another.
///
///     SongParser theParser("class derivedfrom \"object.item\" and title contains \"love\"");
///     if (!theParser.Parse()) {
///         Complain(theParser.GetErrorPosition(), theParser.GetExpected());
///     }
///     SongEvaluator theEvaluator;
///     for (const Song& theSong : theSongs) {
///         theEvaluator.mSong = &theSong;
///         if (theParser.Evaluate(&theEvaluator)) { ... }
///     }
///
/// The grammar, in which `sp` is any amount of whitespace, `SP` at least one byte of it:
///
///     text        =  sp ( "*" | search-exp ) sp
///     search-exp  =  group | group logic-op search-exp | rel-exp | rel-exp logic-op search-exp
///     group       =  sp "(" sp search-exp sp ")"
///     logic-op    =  SP ( and | or ) SP
///     rel-exp     =  word SP ( = | != | <= | >= | > | < | contains | doesNotContain |
///                    derivedfrom | exists | like ) SP value
///     word        =  bytes up to the end, a ")" or whitespace
///     value       =  " bytes " | true | false
///
/// In a quoted value a backslash makes the next byte literal; `exists` takes true or false. Keywords
/// count in the case shown. A text of "*" alone matches everything; one that begins with "*" is
/// nothing else.
///
/// Some rules surprise; programs depend on them:
///  - A word may begin with an opening parenthesis. What cannot be read as a group is tried as a
///    comparison, so `(a = "1"` compares a property named "(a". GetPropertyID() can refuse it.
///  - A keyword is the first of its table that the text begins with; a longer one behind it is not
///    looked for.
///  - "and" binds closer than "or", but a group that ends a chain is no link of it:
///    `a or b and (c)` reads as `(a or b) and (c)`.
///  - Inside a group with a logical operator behind it nothing binds closer. The chain reads from
///    right to left: in `(a and b or c) or d` the group is `a and (b or c)`.
///
/// Groups nest up to 1000 deep.
///
/// A program derives from the class to give its properties identifiers and to refuse operators.
///
/// Threads:  one at a time, the tree included.
class VX_EXPORT vxExpressionParser {
public:
    /// Takes the text and the built-in operators; nothing is parsed yet.
    explicit vxExpressionParser(const vxCString& aText);
    vxExpressionParser(const vxExpressionParser&) = delete;
    vxExpressionParser& operator=(const vxExpressionParser&) = delete;

    /// Replaces the operators between expressions; null brings the built-in ones back. The kind of
    /// value is not looked at.
    ///
    /// Owner:    the caller; the table must outlive the parser.
    void SetLogicOperands(const vxExpressionOperand* aTable);

    /// Replaces the operators of comparisons; as SetLogicOperands().
    void SetBinaryOperands(const vxExpressionOperand* aTable);

    /// Parses the text and returns IsValid().
    ///
    /// Success consumes the text: nothing is left for a second call, which fails. After a failure the
    /// text is all there. The tree of an earlier call is destroyed.
    ///
    /// Fails:    false for a text that does not follow the grammar; GetErrorPosition() and
    ///           GetExpected() tell where and why. There is no tree then.
    /// Cost:     linear in the text, whatever its parentheses.
    virtual bool Parse();

    /// Returns the identifier of a property: 0 for all, unless overridden. -1 makes the comparison fail
    /// to parse.
    ///
    /// Called once for every comparison that is complete, in no particular order.
    virtual int GetPropertyID(const vxCString& aPropertyName);

    /// Tells whether a keyword is looked for at all: true, unless overridden.
    virtual bool OperandSupported(const char* anOperand);

    /// Tells whether a comparison is accepted: true, unless overridden.
    virtual bool OperandSupportedForProperty(int anOperandID, int aPropertyID);

    virtual ~vxExpressionParser();

    /// Did the last Parse() succeed? False before the first.
    bool IsValid() const { return mfValid; }

    /// Returns the byte of the text at which the last Parse() could not go on, npos unless it failed.
    ///
    /// Of several ways to read the text it is the one that came farthest.
    size_t GetErrorPosition() const { return mErrorPosition; }

    /// Returns what was expected there, such as "an operator"; empty unless the last Parse() failed.
    const char* GetExpected() const { return mExpected; }

    /// Tells whether the evaluator's current object matches: never when the text is not valid, always
    /// when it is "*".
    bool Evaluate(vxSearchExpressionEvaluator* anEvaluator);

    /// Returns the names of the properties used, each followed by ",", each once, in the order of
    /// their first appearance.
    vxCString GetSearchCriteriaList();

    /// Returns the comparisons (vxRelExpression) that every match must satisfy, in the order of the
    /// text: those that nothing but "and" joins to the root. A program asks its index for these first.
    ///
    /// Owner:    the caller, who releases the array with vxArray_Delete(); the comparisons stay the
    ///           tree's.
    vxArray* GetDiscriminantCriteria();

    /// Are both valid or both not, and their trees the same?
    bool IsSameAs(const vxExpressionParser& aParser) const;

    /// Prints the tree on the console as criteria text with all its groups, "*" where everything
    /// matches; otherwise why it is not valid.
    void Display();

    /// Returns the tree, which the parser keeps; null when the text is not valid, or "*".
    vxSearchExpression* GetExpression() const { return mRootExpression; }

protected:
    /// Reads a search-exp from the text at `*aPos` and stores its tree, links not yet grouped; `*aPos`
    /// moves behind it.
    ///
    /// Asserts:  (*anExpression) == NULL; the result is false then.
    /// Fails:    false for other text; both stay as they are.
    /// Owner:    the caller.
    bool ParseSearchExpression(size_t* aPos, vxSearchExpression** anExpression);

    /// Groups the links of the tree so that "and" binds closer than "or".
    ///
    /// For "and", then for "or", the tree is walked until nothing changes. The walk goes along a chain
    /// and enters a group only where the group is the whole tree or the end of the chain. A link with
    /// that operator and a link behind it is grouped with it, unless the two are the whole chain.
    ///
    /// Cost:     n log n, far below that of parsing.
    void ManagePrecedence();

    /// Groups a link with the next one (see vxLinearExpression::GroupWithNext()).
    ///
    /// Asserts:  anExpression->IsLinear(), and nothing happens; then as GroupWithNext(), and behind it
    ///           theLinearExpression->mExpression->IsComposite().
    static void Group(vxSearchExpression* anExpression);

    bool mfValid;                                ///< of the last Parse()
    vxCString mStr;                              ///< the text not yet consumed
    vxSearchExpression* mRootExpression;         ///< owned; null for "*"
    const vxExpressionOperand* mLogicOperands;   ///< never null
    const vxExpressionOperand* mBinaryOperands;  ///< never null

private:
    class Reader;

    bool ParseText();
    bool GroupLinks(int anOperandID);
    void Expect(size_t aPos, const char* aText);

    size_t mErrorPosition;  // npos: no error
    const char* mExpected;  // static, never null
};
