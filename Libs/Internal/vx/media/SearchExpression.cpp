// Search criteria as trees.
//
// Texts from outside make trees of any length and, within limits, depth. Every walk is therefore a
// loop that keeps what is still to be done beside it; all of them stand in vxExpressionTree, and the
// operations of the classes start them.

#include "vx/SearchExpression.h"

#include <libteskTools/CStringParser.h>
#include <libteskTools/Search.h>
#include <libvxLog/Assert.h>
#include <libvxLog/Console.h>

#include <cstring>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "vx/GrowingBuffer.h"
#include "vx/StringHashMap.h"

namespace {

// Links with a rest, whose own expression is being evaluated, innermost last. Few are nested in
// practice.
class vxOpenLinks {
public:
    bool IsEmpty() const { return mCount == 0; }

    void Push(const vxLinearExpression* aLink) {
        if (mCount < kvxInline) {
            mFirst[mCount] = aLink;
        } else {
            mOthers.push_back(aLink);
        }
        ++mCount;
    }

    const vxLinearExpression* Pop() {
        if (--mCount < kvxInline) {
            return mFirst[mCount];
        }
        const vxLinearExpression* theLink = mOthers.back();
        mOthers.pop_back();
        return theLink;
    }

private:
    static constexpr size_t kvxInline = 32;

    size_t mCount = 0;
    const vxLinearExpression* mFirst[kvxInline];
    std::vector<const vxLinearExpression*> mOthers;
};

// Does the result of a link depend on what follows it?
bool vxNeedsRest(const vxLinearExpression* aLink, bool afResult) {
    return aLink->GetOperandID() ==
           (afResult ? kvxExpressionOperandID_And : kvxExpressionOperandID_Or);
}

template <typename Value>
bool vxCompare(int anOperandID, const Value& aValue, const Value& aLiteral) {
    switch (anOperandID) {
        case kvxExpressionOperandID_Equal:
            return aValue == aLiteral;
        case kvxExpressionOperandID_NotEqual:
            return aValue != aLiteral;
        case kvxExpressionOperandID_SmallerOrEqual:
            return aValue <= aLiteral;
        case kvxExpressionOperandID_GreaterOrEqual:
            return aValue >= aLiteral;
        case kvxExpressionOperandID_Greater:
            return aValue > aLiteral;
        case kvxExpressionOperandID_Smaller:
            return aValue < aLiteral;
        default:
            return false;
    }
}

bool vxContains(const char* aValue, const vxCString& aLiteral) {
    return !aLiteral.IsEmpty() && vxSearch_FirstNoCase(aValue, strlen(aValue), aLiteral.c_str(),
                                                       aLiteral.length()) != NULL;
}

void vxAppend(vxGrowingBuffer& aText, const vxCString& aPart) {
    aText.Append(aPart.c_str(), aPart.length());
}

void vxAppendQuoted(vxGrowingBuffer& aText, const vxCString& aValue) {
    aText += "\"";
    for (size_t i = 0; i < aValue.length(); ++i) {
        if (aValue[i] == '"' || aValue[i] == '\\') {
            aText += "\\";
        }
        aText.Append(aValue.c_str() + i, 1);
    }
    aText += "\"";
}

void vxAppendComparison(vxGrowingBuffer& aText, const vxRelExpression& anExpression) {
    vxAppend(aText, anExpression.GetPropertyName());
    aText += " ";
    vxAppend(aText, anExpression.GetOperand());
    aText += " ";
    if (anExpression.GetOperandID() == kvxExpressionOperandID_Exists) {
        vxAppend(aText, anExpression.GetPropertyValue());
    } else {
        vxAppendQuoted(aText, anExpression.GetPropertyValue());
    }
}

vxCString vxTextOf(const vxGrowingBuffer& aBuffer) {
    return aBuffer.GetPosition() == 0 ? vxCString()
                                      : vxCString(aBuffer.data(), aBuffer.GetPosition());
}

}  // namespace

/// The walks over trees.
struct vxExpressionTree {
    static vxSearchExpression*& Inner(vxSearchExpression* anExpression) {
        return anExpression->mType == kvxExpressionType_Composite
                   ? static_cast<vxCompositeExpression*>(anExpression)->mExpression
                   : static_cast<vxLinearExpression*>(anExpression)->mExpression;
    }

    static vxLinearExpression* AsLink(vxSearchExpression* anExpression) {
        return anExpression->mType == kvxExpressionType_Linear
                   ? static_cast<vxLinearExpression*>(anExpression)
                   : NULL;
    }

    static bool HasInner(const vxSearchExpression* anExpression) {
        return anExpression->mType == kvxExpressionType_Composite ||
               anExpression->mType == kvxExpressionType_Linear;
    }

    // Takes a tree apart before it deletes each piece. A link with two branches waits for its first
    // one in a list, which goes through the links themselves: nothing is allocated.
    static void Delete(vxSearchExpression* anExpression) {
        vxLinearExpression* theWaiting = NULL;
        for (vxSearchExpression* theNode = anExpression; theNode != NULL;) {
            vxSearchExpression* theInner = HasInner(theNode) ? Inner(theNode) : NULL;
            vxLinearExpression* theLink = AsLink(theNode);
            if (theInner != NULL && theLink != NULL && theLink->mNext != NULL) {
                theLink->mExpression = theWaiting;
                theWaiting = theLink;
                theNode = theInner;
                continue;
            }
            vxSearchExpression* theNext = theInner;
            if (theInner != NULL) {
                Inner(theNode) = NULL;
            } else if (theLink != NULL) {
                std::swap(theNext, theLink->mNext);
            }
            delete theNode;
            if (theNext == NULL && theWaiting != NULL) {
                theLink = theWaiting;
                theWaiting = static_cast<vxLinearExpression*>(theLink->mExpression);
                theLink->mExpression = NULL;
                theNext = theLink;
            }
            theNode = theNext;
        }
    }

    static bool Evaluate(vxSearchExpression* anExpression,
                         vxSearchExpressionEvaluator* anEvaluator) {
        return EvaluateNear(anExpression, anEvaluator, 0);
    }

    // The first levels, which are all in practice, are calls: processors foresee those best.
    static bool EvaluateNear(vxSearchExpression* anExpression,
                             vxSearchExpressionEvaluator* anEvaluator, int aDepth) {
        constexpr int kvxNearLevels = 16;
        vxSearchExpression* theNode = anExpression;
        while (theNode != NULL && HasInner(theNode)) {
            const vxLinearExpression* theLink = AsLink(theNode);
            if (theLink == NULL || theLink->mNext == NULL) {
                theNode = Inner(theNode);
                continue;
            }
            if (aDepth == kvxNearLevels) {
                return EvaluateFar(theNode, anEvaluator);
            }
            const bool theResult = EvaluateNear(theLink->mExpression, anEvaluator, aDepth + 1);
            if (!vxNeedsRest(theLink, theResult)) {
                return theResult;
            }
            theNode = theLink->mNext;
        }
        return theNode == NULL || theNode->Evaluate(anEvaluator);
    }

    static bool EvaluateFar(vxSearchExpression* anExpression,
                            vxSearchExpressionEvaluator* anEvaluator) {
        vxOpenLinks theOpen;
        for (vxSearchExpression* theNode = anExpression;;) {
            while (theNode != NULL && HasInner(theNode)) {
                const vxLinearExpression* theLink = AsLink(theNode);
                if (theLink != NULL && theLink->mNext != NULL) {
                    theOpen.Push(theLink);
                }
                theNode = Inner(theNode);
            }
            const bool theResult = theNode == NULL || theNode->Evaluate(anEvaluator);
            const vxLinearExpression* theLink;
            do {
                if (theOpen.IsEmpty()) {
                    return theResult;
                }
                theLink = theOpen.Pop();
            } while (!vxNeedsRest(theLink, theResult));
            theNode = theLink->mNext;
        }
    }

    static bool AreSame(vxSearchExpression* aLeft, vxSearchExpression* aRight) {
        std::vector<std::pair<vxSearchExpression*, vxSearchExpression*>> theOpen;
        for (;;) {
            if (aLeft != aRight) {
                if (aLeft == NULL || aRight == NULL || aLeft->mType != aRight->mType) {
                    return false;
                }
                if (HasInner(aLeft)) {
                    if (vxLinearExpression* theLeft = AsLink(aLeft)) {
                        vxLinearExpression* theRight = AsLink(aRight);
                        if (theLeft->mOperandID != theRight->mOperandID) {
                            return false;
                        }
                        theOpen.emplace_back(theLeft->mNext, theRight->mNext);
                    }
                    aLeft = Inner(aLeft);
                    aRight = Inner(aRight);
                    continue;
                }
                if (!aLeft->IsSameAs(aRight)) {
                    return false;
                }
            }
            if (theOpen.empty()) {
                return true;
            }
            aLeft = theOpen.back().first;
            aRight = theOpen.back().second;
            theOpen.pop_back();
        }
    }

    // Calls `aVisit` for everything without an inside, in the order of the text.
    template <typename Visit>
    static void ForEachLeaf(vxSearchExpression* anExpression, Visit aVisit) {
        std::vector<vxSearchExpression*> theOpen;
        for (vxSearchExpression* theNode = anExpression;;) {
            while (theNode != NULL && HasInner(theNode)) {
                if (vxLinearExpression* theLink = AsLink(theNode)) {
                    theOpen.push_back(theLink->mNext);
                }
                theNode = Inner(theNode);
            }
            if (theNode != NULL) {
                aVisit(theNode);
            }
            if (theOpen.empty()) {
                return;
            }
            theNode = theOpen.back();
            theOpen.pop_back();
        }
    }

    static vxCString AppendNames(vxSearchExpression* anExpression, const vxCString& aList) {
        std::unordered_set<std::string_view, vxStringHashMap_Hash> theKnown;
        std::string_view theRest(aList.c_str(), aList.length());
        for (size_t theComma; (theComma = theRest.find(',')) != std::string_view::npos;) {
            theKnown.insert(theRest.substr(0, theComma));
            theRest.remove_prefix(theComma + 1);
        }
        vxGrowingBuffer theList(0);
        vxAppend(theList, aList);
        ForEachLeaf(anExpression, [&](vxSearchExpression* aLeaf) {
            if (aLeaf->mType != kvxExpressionType_Rel) {
                return;
            }
            const vxCString& theName = static_cast<vxRelExpression*>(aLeaf)->GetPropertyName();
            if (theKnown.insert(std::string_view(theName.c_str(), theName.length())).second) {
                vxAppend(theList, theName);
                theList += ",";
            }
        });
        return vxTextOf(theList);
    }

    static vxCString TextOf(vxSearchExpression* anExpression) {
        vxGrowingBuffer theText(0);
        std::vector<vxLinearExpression*> theOpen;  // null stands for a group to be closed
        for (vxSearchExpression* theNode = anExpression;;) {
            while (theNode != NULL && HasInner(theNode)) {
                vxLinearExpression* theLink = AsLink(theNode);
                theOpen.push_back(theLink);
                if (theLink == NULL) {
                    theText += "(";
                }
                theNode = Inner(theNode);
            }
            if (theNode != NULL && theNode->mType == kvxExpressionType_Rel) {
                vxAppendComparison(theText, *static_cast<vxRelExpression*>(theNode));
            }
            theNode = NULL;
            while (!theOpen.empty() && theNode == NULL) {
                vxLinearExpression* theLink = theOpen.back();
                theOpen.pop_back();
                if (theLink == NULL) {
                    theText += ")";
                } else if (theLink->mNext != NULL) {
                    theText += " ";
                    vxAppend(theText, theLink->mOperand);
                    theText += " ";
                    theNode = theLink->mNext;
                }
            }
            if (theNode == NULL) {
                return vxTextOf(theText);
            }
        }
    }
};

vxSearchExpression::~vxSearchExpression() = default;

bool vxSearchExpression::IsComposite() {
    return mType == kvxExpressionType_Composite;
}

bool vxSearchExpression::IsRel() {
    return mType == kvxExpressionType_Rel;
}

bool vxSearchExpression::IsLinear() {
    return mType == kvxExpressionType_Linear;
}

int vxSearchExpression::GetType() {
    return mType;
}

vxCString vxSearchExpression::GetText() {
    return vxExpressionTree::TextOf(this);
}

vxRelExpression::vxRelExpression(const vxCString& aPropertyName, int aPropertyID,
                                 const vxCString& anOperand, int anOperandID,
                                 const vxCString& aPropertyValue)
    : vxSearchExpression(kvxExpressionType_Rel),
      mPropertyName(aPropertyName),
      mPropertyID(aPropertyID),
      mOperand(anOperand),
      mOperandID(anOperandID),
      mPropertyValue(aPropertyValue),
      mPropertyValueInt(0),
      mPropertyValueDouble(0),
      mPropertyType(kvxPropertyType_Unknown) {}

vxRelExpression::~vxRelExpression() = default;

void vxRelExpression::Display() {
    vxConsole_Printf("%s\n", GetText().c_str());
}

vxCString vxRelExpression::GetSearchCriteriaList(const vxCString& aList) {
    return vxExpressionTree::AppendNames(this, aList);
}

bool vxRelExpression::Evaluate(vxSearchExpressionEvaluator* anEvaluator) {
    return VXCHECK(anEvaluator != NULL) && anEvaluator->Evaluate(this);
}

bool vxRelExpression::IsSameAs(vxSearchExpression* anExpression) {
    if (anExpression == NULL || !anExpression->IsRel()) {
        return false;
    }
    const vxRelExpression* theOther = static_cast<vxRelExpression*>(anExpression);
    return mPropertyID == theOther->mPropertyID && mOperandID == theOther->mOperandID &&
           mPropertyName == theOther->mPropertyName && mPropertyValue == theOther->mPropertyValue;
}

int vxRelExpression::ReadLiteral() {
    if (mOperandID == kvxExpressionOperandID_Exists) {
        return kvxPropertyType_String;
    }
    if (mPropertyValue.ToInt64(&mPropertyValueInt)) {
        return kvxPropertyType_Numeric;
    }
    if (mPropertyValue.ToDouble(&mPropertyValueDouble)) {
        return kvxPropertyType_Double;
    }
    return mPropertyValueDateTime.ParseDLNA(mPropertyValue) ? kvxPropertyType_Date
                                                            : kvxPropertyType_String;
}

bool vxRelExpression::ValidateValue(int aRequestedType, const char* aValue) {
    if (mPropertyType == kvxPropertyType_Unknown) {
        mPropertyType = ReadLiteral();
    }
    if (mPropertyType != aRequestedType && aRequestedType != kvxPropertyType_String &&
        aRequestedType != kvxPropertyType_Date) {
        return false;
    }
    if (mOperandID != kvxExpressionOperandID_Exists) {
        return true;
    }
    const bool theIsThere = aValue != NULL && aValue[0] != '\0';
    return mPropertyValue == (theIsThere ? "true" : "false");
}

bool vxRelExpression::MatchString(const char* aValue) {
    const char* theValue = aValue == NULL ? "" : aValue;
    if (!ValidateValue(kvxPropertyType_String, theValue)) {
        return false;
    }
    switch (mOperandID) {
        case kvxExpressionOperandID_Equal:
            return mPropertyValue.CompareNoCase(theValue) == 0;
        case kvxExpressionOperandID_NotEqual:
            return mPropertyValue.CompareNoCase(theValue) != 0;
        case kvxExpressionOperandID_Contains:
            return vxContains(theValue, mPropertyValue);
        case kvxExpressionOperandID_DoesNotContain:
            return !vxContains(theValue, mPropertyValue);
        case kvxExpressionOperandID_DerivedFrom:
            return strncmp(theValue, mPropertyValue, mPropertyValue.length()) == 0;
        case kvxExpressionOperandID_Like:
            return vxCStringParser_Match(theValue, mPropertyValue) == 1;
        default:
            return mOperandID == kvxExpressionOperandID_Exists;
    }
}

bool vxRelExpression::MatchInt(long long aValue) {
    return ValidateValue(kvxPropertyType_Numeric, NULL) &&
           vxCompare<int64_t>(mOperandID, aValue, mPropertyValueInt);
}

bool vxRelExpression::MatchInt(const vxCString& aValue) {
    int64_t theValue;
    return aValue.ToInt64(&theValue) && MatchInt(static_cast<long long>(theValue));
}

bool vxRelExpression::MatchDouble(double aValue) {
    return ValidateValue(kvxPropertyType_Double, NULL) &&
           vxCompare(mOperandID, aValue, mPropertyValueDouble);
}

bool vxRelExpression::MatchDouble(const vxCString& aValue) {
    double theValue;
    return aValue.ToDouble(&theValue) && MatchDouble(theValue);
}

bool vxRelExpression::MatchDate(const vxDateTime& aValue) {
    if (!ValidateValue(kvxPropertyType_Date, aValue.IsValid() ? "valid" : NULL)) {
        return false;
    }
    if (mOperandID == kvxExpressionOperandID_Exists) {
        return true;
    }
    return aValue.IsValid() && mPropertyValueDateTime.IsValid() &&
           vxCompare(mOperandID, aValue, mPropertyValueDateTime);
}

bool vxRelExpression::MatchDate(const vxCString& aValue) {
    vxDateTime theValue;
    return theValue.ParseDLNA(aValue) && MatchDate(theValue);
}

vxLinearExpression::vxLinearExpression(vxSearchExpression* anExpression, const vxCString& anOperand,
                                       int anOperandID, vxSearchExpression* aNext)
    : vxSearchExpression(kvxExpressionType_Linear),
      mExpression(anExpression),
      mOperand(anOperand),
      mOperandID(anOperandID),
      mNext(aNext) {}

vxLinearExpression::~vxLinearExpression() {
    vxExpressionTree::Delete(mExpression);
    vxExpressionTree::Delete(mNext);
}

void vxLinearExpression::Display() {
    vxConsole_Printf("%s\n", GetText().c_str());
}

vxCString vxLinearExpression::GetSearchCriteriaList(const vxCString& aList) {
    return vxExpressionTree::AppendNames(this, aList);
}

bool vxLinearExpression::Evaluate(vxSearchExpressionEvaluator* anEvaluator) {
    return vxExpressionTree::Evaluate(this, anEvaluator);
}

bool vxLinearExpression::IsSameAs(vxSearchExpression* anExpression) {
    return vxExpressionTree::AreSame(this, anExpression);
}

void vxLinearExpression::GroupWithNext() {
    if (!VXCHECK(IsLinear()) || !VXCHECK(mNext != NULL) || !VXCHECK(mNext->IsLinear())) {
        return;
    }
    vxLinearExpression* theNext = static_cast<vxLinearExpression*>(mNext);
    mExpression = new vxCompositeExpression(
        new vxLinearExpression(mExpression, mOperand, mOperandID, theNext));
    mOperand.clear();
    mOperand.Swap(theNext->mOperand);
    mOperandID = std::exchange(theNext->mOperandID, kvxExpressionOperandID_None);
    mNext = std::exchange(theNext->mNext, nullptr);
}

vxCompositeExpression::vxCompositeExpression(vxSearchExpression* anExpression)
    : vxSearchExpression(kvxExpressionType_Composite), mExpression(anExpression) {}

vxCompositeExpression::~vxCompositeExpression() {
    vxExpressionTree::Delete(mExpression);
}

void vxCompositeExpression::Display() {
    vxConsole_Printf("%s\n", GetText().c_str());
}

vxCString vxCompositeExpression::GetSearchCriteriaList(const vxCString& aList) {
    return vxExpressionTree::AppendNames(this, aList);
}

bool vxCompositeExpression::Evaluate(vxSearchExpressionEvaluator* anEvaluator) {
    return vxExpressionTree::Evaluate(this, anEvaluator);
}

bool vxCompositeExpression::IsSameAs(vxSearchExpression* anExpression) {
    return vxExpressionTree::AreSame(this, anExpression);
}

vxSearchExpressionEvaluator::~vxSearchExpressionEvaluator() = default;
