// The parser knows the grammar, the properties know what they can be compared with. What a literal has
// to be is checked when the criteria are read, so that "size > big" is an error and does not just find
// nothing.

#include "library/LibraryEvaluator.h"

#include <libteskTools/Convert.h>

#include <cstring>
#include <vector>

#include "TerminalText.h"
#include "library/SearchProperties.h"

namespace vxmedia {

namespace {

constexpr size_t kCriteria_MaxShownName = 64;  // bytes

vxCString Describe(size_t aPosition, const vxCString& aWhat) {
    return vxCString::Format("ERROR: Criteria, byte %lu: %s",
                             static_cast<unsigned long>(aPosition) + 1, aWhat.c_str());
}

vxCString WordAt(const vxCString& aText, size_t aPosition) {
    size_t theEnd = aPosition;
    while (theEnd < aText.length() && aText[theEnd] != ')' &&
           vxConvert_isspace(static_cast<unsigned char>(aText[theEnd])) == 0) {
        ++theEnd;
    }
    return aText.Mid(aPosition, theEnd - aPosition);
}

vxCString ShownName(const vxCString& aName) {
    return aName.length() <= kCriteria_MaxShownName
               ? EscapeForTerminal(aName, EscapeMode::Text)
               : EscapeForTerminal(aName.Left(kCriteria_MaxShownName), EscapeMode::Text) + "...";
}

// Finds the quoted literals of criteria that are right, where a quote stands nowhere else, one by one.
class LiteralFinder {
public:
    explicit LiteralFinder(const vxCString& aText) : mText(aText) {}

    // Returns the position of the next opening quote.
    size_t NextPosition() {
        while (At(mPos) != '"') {
            ++mPos;
        }
        const size_t theStart = mPos;
        for (++mPos; At(mPos) != '"'; ++mPos) {
            mPos += At(mPos) == '\\';
        }
        ++mPos;
        return theStart;
    }

private:
    // There is always another quote; behind the text there are only quotes.
    char At(size_t aPos) const { return aPos < mText.length() ? mText.c_str()[aPos] : '"'; }

    const vxCString& mText;
    size_t mPos = 0;
};

bool ComparesValues(const vxRelExpression& anExpression) {
    return anExpression.GetOperandID() <= kvxExpressionOperandID_Smaller;
}

// The comparisons of a tree in the order of the text.
class ComparisonWalk {
public:
    explicit ComparisonWalk(vxSearchExpression* aRoot) { Push(aRoot); }

    // Returns null behind the last.
    vxRelExpression* Next() {
        while (!mOpen.empty()) {
            vxSearchExpression* theExpression = mOpen.back();
            mOpen.pop_back();
            if (theExpression->IsRel()) {
                return static_cast<vxRelExpression*>(theExpression);
            }
            if (theExpression->IsComposite()) {
                Push(static_cast<vxCompositeExpression*>(theExpression)->GetExpression());
            } else {
                Push(static_cast<vxLinearExpression*>(theExpression)->GetNext());
                Push(static_cast<vxLinearExpression*>(theExpression)->GetExpression());
            }
        }
        return NULL;
    }

private:
    void Push(vxSearchExpression* anExpression) {
        if (anExpression != NULL) {
            mOpen.push_back(anExpression);
        }
    }

    std::vector<vxSearchExpression*> mOpen;
};

}  // namespace

bool LibraryEvaluator::Evaluate(vxRelExpression* anExpression) {
    const SearchProperty& theProperty = GetSearchProperty(anExpression->GetPropertyID());
    vxCString theBuffer;
    const char* theValue = theProperty.ReadValue(*mItem, theBuffer);
    if (theProperty.mKind == SearchKind::Text || !ComparesValues(*anExpression)) {
        return anExpression->MatchString(theValue);
    }
    return theProperty.Compare(theValue, anExpression->GetOperandID(),
                               anExpression->GetPropertyValue());
}

vxCString LibraryCriteria::Read() {
    return Parse() ? CheckLiterals() : DescribeGrammarError();
}

bool LibraryCriteria::Match(const MediaItem& anItem) {
    SearchedItem theItem(anItem);
    mEvaluator.SetItem(&theItem);
    const bool theMatches = vxExpressionParser::Evaluate(&mEvaluator);
    mEvaluator.SetItem(NULL);
    return theMatches;
}

int LibraryCriteria::GetPropertyID(const vxCString& aPropertyName) {
    return FindSearchProperty(aPropertyName);
}

bool LibraryCriteria::OperandSupportedForProperty(int anOperandID, int aPropertyID) {
    return GetSearchProperty(aPropertyID).Supports(anOperandID);
}

vxCString LibraryCriteria::DescribeGrammarError() const {
    const size_t thePosition = GetErrorPosition();
    if (strcmp(GetExpected(), "a known property") == 0) {
        return Describe(thePosition, vxCString("unknown property '") +
                                         ShownName(WordAt(mText, thePosition)) + "'");
    }
    return Describe(thePosition, vxCString("expected ") + GetExpected());
}

vxCString LibraryCriteria::CheckLiterals() const {
    LiteralFinder theLiterals(mText);
    ComparisonWalk theWalk(GetExpression());
    while (const vxRelExpression* theExpression = theWalk.Next()) {
        if (theExpression->GetOperandID() == kvxExpressionOperandID_Exists) {
            continue;
        }
        const size_t thePosition = theLiterals.NextPosition();
        const char* theExpected = ComparesValues(*theExpression)
                                      ? GetSearchProperty(theExpression->GetPropertyID())
                                            .GetExpectedLiteral(theExpression->GetPropertyValue())
                                      : NULL;
        if (theExpected != NULL) {
            return Describe(thePosition, vxCString("expected ") + theExpected);
        }
    }
    return vxCString();
}

}  // namespace vxmedia
