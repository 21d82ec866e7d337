// Search criteria from text, in two steps.
//
// The reader finds out how the text is to be read, in a list of elements; only then the tree is built
// from those that count. An element is a comparison or a group and lies in a chain. What cannot be read
// as a group is read once more as a comparison whose name begins with the parenthesis, and with groups
// in groups the same text would be read again and again. So elements, failed ones too, are found again
// by their place, and the chain behind a comparison read anew is joined where it is known already.
// That, and remembering the last word and what follows it, makes reading linear.

#include "vx/ExpressionParser.h"

#include <libteskTools/Convert.h>
#include <libvxLog/Assert.h>
#include <libvxLog/Console.h>

#include <cstring>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

constexpr vxExpressionOperand kvxLogicOperands[] = {
    {"and", kvxExpressionOperandID_And, kvxExpressionValueID_Operand},
    {"or", kvxExpressionOperandID_Or, kvxExpressionValueID_Operand},
    {NULL, kvxExpressionOperandID_None, kvxExpressionValueID_None},
};

// The first keyword that fits wins: "<=" stands before "<".
constexpr vxExpressionOperand kvxBinaryOperands[] = {
    {"=", kvxExpressionOperandID_Equal, kvxExpressionValueID_String},
    {"!=", kvxExpressionOperandID_NotEqual, kvxExpressionValueID_String},
    {"<=", kvxExpressionOperandID_SmallerOrEqual, kvxExpressionValueID_String},
    {">=", kvxExpressionOperandID_GreaterOrEqual, kvxExpressionValueID_String},
    {">", kvxExpressionOperandID_Greater, kvxExpressionValueID_String},
    {"<", kvxExpressionOperandID_Smaller, kvxExpressionValueID_String},
    {"contains", kvxExpressionOperandID_Contains, kvxExpressionValueID_String},
    {"doesNotContain", kvxExpressionOperandID_DoesNotContain, kvxExpressionValueID_String},
    {"derivedfrom", kvxExpressionOperandID_DerivedFrom, kvxExpressionValueID_String},
    {"exists", kvxExpressionOperandID_Exists, kvxExpressionValueID_Boolean},
    {"like", kvxExpressionOperandID_Like, kvxExpressionValueID_String},
    {NULL, kvxExpressionOperandID_None, kvxExpressionValueID_None},
};

constexpr size_t kvxMostGroups = 1000;  // one in another
constexpr size_t kvxNone = vxCString::npos;

// vxConvert_isspace() as a table.
struct vxSpaces {
    vxSpaces() {
        for (int i = 0; i < 256; ++i) {
            mIsSpace[i] = vxConvert_isspace(i) != 0;
        }
    }
    bool mIsSpace[256];
};

bool vxIsSpaceAt(const vxCString& aText, size_t aPos) {
    static const vxSpaces sSpaces;
    return aPos < aText.length() && sSpaces.mIsSpace[static_cast<unsigned char>(aText[aPos])];
}

size_t vxSkipSpaces(const vxCString& aText, size_t aPos) {
    while (vxIsSpaceAt(aText, aPos)) {
        ++aPos;
    }
    return aPos;
}

// What stands behind the name of a comparison.
struct vxPredicate {
    const vxExpressionOperand* mOperand;  // null where there is nothing acceptable
    size_t mOperandPos;
    size_t mValue, mValueEnd;  // without quotes
    size_t mEnd;               // behind all of it
};

struct vxElement {
    enum Kind { Open, Failed, Comparison, Group };

    explicit vxElement(size_t aStart) : mStart(aStart) {}

    Kind mKind = Open;
    size_t mStart, mEnd = 0;
    size_t mChainEnd = kvxNone;                  // of the text of its chain, once that is known
    size_t mInner = kvxNone;                     // first element of a group
    size_t mNext = kvxNone;                      // element
    const vxExpressionOperand* mOperand = NULL;  // in front of the next
    size_t mNameEnd = 0;                         // of a comparison, as are the others
    int mPropertyID = 0;
    vxPredicate mPredicate = {};
};

// A chain that is being read.
struct vxChain {
    size_t mOwner;                               // the group around it
    size_t mFirst = kvxNone;                     // element
    size_t mLast = kvxNone;                      // element
    const vxExpressionOperand* mOperand = NULL;  // in front of the element to come
};

}  // namespace

/// Reads the text of its parser without consuming it.
class vxExpressionParser::Reader {
public:
    explicit Reader(vxExpressionParser& aParser)
        : mParser(aParser), mText(aParser.mStr), mLength(mText.length()) {}

    // Reads a search-exp; its elements are kept for Build().
    bool Read(size_t aPos) {
        mPos = aPos;
        mChains.push_back({kvxNone});
        Step theStep = Step::Element;
        while (theStep != Step::Finished && theStep != Step::Impossible) {
            switch (theStep) {
                case Step::Element:
                    theStep = ReadElement();
                    break;
                case Step::Behind:
                    theStep = ReadOperator();
                    break;
                case Step::EndOfChain:
                    theStep = EndChain();
                    break;
                default:
                    theStep = AbandonElement();
                    break;
            }
        }
        return theStep == Step::Finished;
    }

    // Behind what was read.
    size_t End() const { return mPos; }

    // Builds the tree of what was read.
    vxSearchExpression* Build() const;

private:
    enum class Step {
        Element,     // an element must begin here
        Behind,      // an element ends here
        NoElement,   // none begins where one was tried
        EndOfChain,  // the last element of the chain is read
        Finished,
        Impossible
    };

    Step ReadElement();
    Step ReadOperator();
    Step AbandonElement();
    Step EndChain();
    Step AbandonGroup();
    Step OpenGroup();

    bool ReadComparison(vxElement& anElement);
    void ReadWord(size_t aPos);
    vxPredicate ReadPredicate(size_t aPos);
    bool ReadValue(vxPredicate& aPredicate, size_t aPos);
    bool ReadQuoted(vxPredicate& aPredicate, size_t aPos);
    bool ReadBoolean(vxPredicate& aPredicate, size_t aPos);
    const vxExpressionOperand* MatchKeyword(const vxExpressionOperand* aTable, size_t aPos) const;

    char At(size_t aPos) const { return mText[aPos]; }

    bool StartsWith(const char* aText, size_t aPos) const {
        const size_t theLength = strlen(aText);
        return theLength <= mLength - aPos && memcmp(mText.c_str() + aPos, aText, theLength) == 0;
    }

    size_t Add(size_t aPos) {
        mElements.emplace_back(aPos);
        return mElements.size() - 1;
    }

    // Not kept: of a long word behind many parentheses there would be one for each.
    vxCString NameOf(const vxElement& anElement) const {
        return vxCString(mText.c_str() + anElement.mStart, anElement.mNameEnd - anElement.mStart);
    }

    void Append(size_t anElement);
    size_t Find(size_t aPos);
    size_t SkipSpaces(size_t aPos);
    static vxLinearExpression* BuildLink(const vxExpressionOperand* anOperand);
    vxSearchExpression* BuildComparison(const vxElement& anElement) const;
    vxCString Unescape(const vxPredicate& aPredicate) const;

    vxExpressionParser& mParser;
    const vxCString mText;
    const size_t mLength;

    size_t mPos = 0;
    std::vector<vxElement> mElements;
    std::vector<vxChain> mChains;  // those being read, innermost last

    bool mfReadsAgain = false;  // a group was tried as a comparison: places may be known already
    std::unordered_map<size_t, size_t> mPlaces;  // elements by where they start
    size_t mPlacesCount = 0;                     // of elements that are in the map
    std::unordered_map<size_t, size_t> mSpaces;  // ends of whitespace by where it starts

    // The last word that was looked at, and what stands behind it.
    size_t mWordStart = kvxNone, mWordEnd = kvxNone;
    size_t mPredicateStart = kvxNone;
    vxPredicate mPredicate = {};
};

size_t vxExpressionParser::Reader::Find(size_t aPos) {
    for (; mPlacesCount < mElements.size(); ++mPlacesCount) {
        mPlaces.emplace(mElements[mPlacesCount].mStart, mPlacesCount);
    }
    const auto thePlace = mPlaces.find(aPos);
    return thePlace == mPlaces.end() ? kvxNone : thePlace->second;
}

// What stands behind a comparison is looked at for each parenthesis in front of it.
size_t vxExpressionParser::Reader::SkipSpaces(size_t aPos) {
    if (!mfReadsAgain || !vxIsSpaceAt(mText, aPos)) {
        return vxSkipSpaces(mText, aPos);
    }
    size_t& theEnd = mSpaces.try_emplace(aPos, kvxNone).first->second;
    if (theEnd == kvxNone) {
        theEnd = vxSkipSpaces(mText, aPos);
    }
    return theEnd;
}

void vxExpressionParser::Reader::Append(size_t anElement) {
    vxChain& theChain = mChains.back();
    if (theChain.mFirst == kvxNone) {
        theChain.mFirst = anElement;
    } else {
        vxElement& theLast = mElements[theChain.mLast];
        theLast.mNext = anElement;
        theLast.mOperand = theChain.mOperand;
    }
    theChain.mLast = anElement;
    mPos = mElements[anElement].mEnd;
}

// Whitespace in front of the element has been skipped.
vxExpressionParser::Reader::Step vxExpressionParser::Reader::ReadElement() {
    const size_t theKnown = mfReadsAgain ? Find(mPos) : kvxNone;
    if (theKnown != kvxNone) {
        if (mElements[theKnown].mKind == vxElement::Failed) {
            return Step::NoElement;
        }
        Append(theKnown);
        return Step::EndOfChain;
    }
    if (At(mPos) == '(') {
        return OpenGroup();
    }
    const size_t theNew = Add(mPos);
    if (!ReadComparison(mElements[theNew])) {
        return Step::NoElement;
    }
    Append(theNew);
    return Step::Behind;
}

vxExpressionParser::Reader::Step vxExpressionParser::Reader::OpenGroup() {
    if (mChains.size() > kvxMostGroups) {
        mParser.mErrorPosition = kvxNone;
        mParser.Expect(mPos, "at most 1000 groups, one in another");
        return Step::Impossible;
    }
    mChains.push_back({Add(mPos)});
    mPos = vxSkipSpaces(mText, mPos + 1);
    return Step::Element;
}

vxExpressionParser::Reader::Step vxExpressionParser::Reader::ReadOperator() {
    const size_t theKeyword = SkipSpaces(mPos);
    if (theKeyword == mPos) {
        if (theKeyword < mLength && At(theKeyword) != ')') {
            mParser.Expect(theKeyword, "whitespace");
        }
        return Step::EndOfChain;
    }
    const vxExpressionOperand* theOperand = MatchKeyword(mParser.mLogicOperands, theKeyword);
    if (theOperand == NULL) {
        return Step::EndOfChain;
    }
    const size_t theEnd = theKeyword + strlen(theOperand->mOperand);
    if (!vxIsSpaceAt(mText, theEnd)) {
        mParser.Expect(theEnd, "whitespace");
        return Step::EndOfChain;
    }
    mChains.back().mOperand = theOperand;
    mPos = SkipSpaces(theEnd);
    return Step::Element;
}

// A chain ends before an operator that nothing follows; one without any element is none.
vxExpressionParser::Reader::Step vxExpressionParser::Reader::AbandonElement() {
    return mChains.back().mFirst == kvxNone ? AbandonGroup() : Step::EndOfChain;
}

vxExpressionParser::Reader::Step vxExpressionParser::Reader::EndChain() {
    const vxChain theChain = mChains.back();
    const vxElement& theLast = mElements[theChain.mLast];
    const size_t theEnd = theLast.mChainEnd != kvxNone ? theLast.mChainEnd : theLast.mEnd;
    for (size_t i = theChain.mFirst; i != kvxNone && mElements[i].mChainEnd == kvxNone;
         i = mElements[i].mNext) {
        mElements[i].mChainEnd = theEnd;
    }
    if (theChain.mOwner == kvxNone) {
        mPos = theEnd;
        return Step::Finished;
    }
    const size_t theClosing = SkipSpaces(theEnd);
    if (At(theClosing) != ')') {
        mParser.Expect(theClosing, "a logical operator or \")\"");
        return AbandonGroup();
    }
    vxElement& theGroup = mElements[theChain.mOwner];
    theGroup.mKind = vxElement::Group;
    theGroup.mInner = theChain.mFirst;
    theGroup.mEnd = theClosing + 1;
    mChains.pop_back();
    Append(theChain.mOwner);
    return Step::Behind;
}

vxExpressionParser::Reader::Step vxExpressionParser::Reader::AbandonGroup() {
    const size_t theGroup = mChains.back().mOwner;
    mChains.pop_back();
    if (theGroup == kvxNone) {
        return Step::Impossible;
    }
    mfReadsAgain = true;
    if (!ReadComparison(mElements[theGroup])) {
        return Step::NoElement;
    }
    Append(theGroup);
    return Step::Behind;
}

bool vxExpressionParser::Reader::ReadComparison(vxElement& anElement) {
    anElement.mKind = vxElement::Failed;
    const size_t theStart = anElement.mStart;
    ReadWord(theStart);
    if (mWordEnd == theStart) {
        mParser.Expect(theStart, "a property or \"(\"");
        return false;
    }
    if (mPredicateStart != mWordEnd) {
        mPredicate = ReadPredicate(mWordEnd);
        mPredicateStart = mWordEnd;
    }
    if (mPredicate.mOperand == NULL) {
        return false;
    }
    anElement.mNameEnd = mWordEnd;
    anElement.mPropertyID = mParser.GetPropertyID(NameOf(anElement));
    if (anElement.mPropertyID == -1) {
        mParser.Expect(theStart, "a known property");
        return false;
    }
    if (!mParser.OperandSupportedForProperty(mPredicate.mOperand->mOperandID,
                                             anElement.mPropertyID)) {
        mParser.Expect(mPredicate.mOperandPos, "an operator that the property supports");
        return false;
    }
    anElement.mKind = vxElement::Comparison;
    anElement.mPredicate = mPredicate;
    anElement.mEnd = mPredicate.mEnd;
    return true;
}

// A word that begins in the last one, or runs into it, ends in the same place.
void vxExpressionParser::Reader::ReadWord(size_t aPos) {
    if (aPos < mWordStart || aPos >= mWordEnd) {
        size_t theEnd = aPos;
        while (theEnd != mWordStart && theEnd < mLength && mText[theEnd] != ')' &&
               !vxIsSpaceAt(mText, theEnd)) {
            ++theEnd;
        }
        mWordEnd = theEnd == mWordStart ? mWordEnd : theEnd;
    }
    mWordStart = aPos;
}

vxPredicate vxExpressionParser::Reader::ReadPredicate(size_t aPos) {
    vxPredicate thePredicate = {};
    thePredicate.mOperandPos = vxSkipSpaces(mText, aPos);
    if (thePredicate.mOperandPos == aPos) {
        mParser.Expect(aPos, "whitespace");
        return thePredicate;
    }
    thePredicate.mOperand = MatchKeyword(mParser.mBinaryOperands, thePredicate.mOperandPos);
    if (thePredicate.mOperand == NULL) {
        mParser.Expect(thePredicate.mOperandPos, "an operator");
    } else if (!ReadValue(thePredicate,
                          thePredicate.mOperandPos + strlen(thePredicate.mOperand->mOperand))) {
        thePredicate.mOperand = NULL;
    }
    return thePredicate;
}

bool vxExpressionParser::Reader::ReadValue(vxPredicate& aPredicate, size_t aPos) {
    const int theKind = aPredicate.mOperand->mValueID;
    if (theKind != kvxExpressionValueID_String && theKind != kvxExpressionValueID_Boolean) {
        aPredicate.mValue = aPredicate.mValueEnd = aPredicate.mEnd = aPos;
        return true;
    }
    const size_t theValue = vxSkipSpaces(mText, aPos);
    if (theValue == aPos) {
        mParser.Expect(aPos, "whitespace");
        return false;
    }
    return theKind == kvxExpressionValueID_String ? ReadQuoted(aPredicate, theValue)
                                                  : ReadBoolean(aPredicate, theValue);
}

bool vxExpressionParser::Reader::ReadQuoted(vxPredicate& aPredicate, size_t aPos) {
    if (At(aPos) != '"') {
        mParser.Expect(aPos, "a quoted value");
        return false;
    }
    aPredicate.mValue = aPos + 1;
    for (size_t i = aPos + 1; i < mLength; ++i) {
        if (mText[i] == '"') {
            aPredicate.mValueEnd = i;
            aPredicate.mEnd = i + 1;
            return true;
        }
        if (mText[i] == '\\') {
            ++i;
        }
    }
    mParser.Expect(mLength, "a closing quote");
    return false;
}

bool vxExpressionParser::Reader::ReadBoolean(vxPredicate& aPredicate, size_t aPos) {
    for (const char* theWord : {"true", "false"}) {
        if (StartsWith(theWord, aPos)) {
            aPredicate.mValue = aPos;
            aPredicate.mValueEnd = aPredicate.mEnd = aPos + strlen(theWord);
            return true;
        }
    }
    mParser.Expect(aPos, "true or false");
    return false;
}

const vxExpressionOperand* vxExpressionParser::Reader::MatchKeyword(
    const vxExpressionOperand* aTable, size_t aPos) const {
    for (; aTable->mOperand != NULL; ++aTable) {
        if (StartsWith(aTable->mOperand, aPos) && mParser.OperandSupported(aTable->mOperand)) {
            return aTable;
        }
    }
    return NULL;
}

// A group that ends its chain stands in it without a link.
vxSearchExpression* vxExpressionParser::Reader::Build() const {
    vxSearchExpression* theRoot = NULL;
    std::vector<std::pair<vxSearchExpression**, size_t>> theOpen = {
        {&theRoot, mChains.front().mFirst}};
    while (!theOpen.empty()) {
        vxSearchExpression** theSlot = theOpen.back().first;
        size_t theNext = theOpen.back().second;
        theOpen.pop_back();
        while (theNext != kvxNone) {
            const vxElement& theElement = mElements[theNext];
            theNext = theElement.mNext;
            const bool theIsGroup = theElement.mKind == vxElement::Group;
            vxSearchExpression** theInner = theSlot;
            if (!theIsGroup || theNext != kvxNone) {
                vxLinearExpression* theLink = BuildLink(theElement.mOperand);
                *theSlot = theLink;
                theSlot = &theLink->mNext;
                theInner = &theLink->mExpression;
            }
            if (theIsGroup) {
                vxCompositeExpression* theGroup = new vxCompositeExpression(NULL);
                *theInner = theGroup;
                theOpen.emplace_back(&theGroup->mExpression, theElement.mInner);
            } else {
                *theInner = BuildComparison(theElement);
            }
        }
    }
    return theRoot;
}

vxLinearExpression* vxExpressionParser::Reader::BuildLink(const vxExpressionOperand* anOperand) {
    return anOperand == NULL
               ? new vxLinearExpression(NULL, vxCString(), kvxExpressionOperandID_None, NULL)
               : new vxLinearExpression(NULL, anOperand->mOperand, anOperand->mOperandID, NULL);
}

vxSearchExpression* vxExpressionParser::Reader::BuildComparison(const vxElement& anElement) const {
    const vxExpressionOperand* theOperand = anElement.mPredicate.mOperand;
    return new vxRelExpression(NameOf(anElement), anElement.mPropertyID, theOperand->mOperand,
                               theOperand->mOperandID, Unescape(anElement.mPredicate));
}

vxCString vxExpressionParser::Reader::Unescape(const vxPredicate& aPredicate) const {
    const char* theText = mText.c_str() + aPredicate.mValue;
    const size_t theLength = aPredicate.mValueEnd - aPredicate.mValue;
    if (theLength == 0) {
        return vxCString();
    }
    if (memchr(theText, '\\', theLength) == NULL) {
        return vxCString(theText, theLength);
    }
    vxCString theValue;
    char* theBuffer = theValue.GetWriteBuf(theLength);
    size_t theCount = 0;
    for (size_t i = 0; i < theLength; ++i) {
        i += theText[i] == '\\';
        theBuffer[theCount++] = theText[i];
    }
    theValue.UngetWriteBuf(theCount);
    return theValue;
}

vxExpressionParser::vxExpressionParser(const vxCString& aText)
    : mfValid(false),
      mStr(aText),
      mRootExpression(NULL),
      mLogicOperands(kvxLogicOperands),
      mBinaryOperands(kvxBinaryOperands),
      mErrorPosition(vxCString::npos),
      mExpected("") {}

vxExpressionParser::~vxExpressionParser() {
    delete mRootExpression;
}

void vxExpressionParser::SetLogicOperands(const vxExpressionOperand* aTable) {
    mLogicOperands = aTable == NULL ? kvxLogicOperands : aTable;
}

void vxExpressionParser::SetBinaryOperands(const vxExpressionOperand* aTable) {
    mBinaryOperands = aTable == NULL ? kvxBinaryOperands : aTable;
}

bool vxExpressionParser::Parse() {
    delete mRootExpression;
    mRootExpression = NULL;
    mErrorPosition = vxCString::npos;
    mfValid = ParseText();
    if (!mfValid) {
        delete mRootExpression;
        mRootExpression = NULL;
        return false;
    }
    mErrorPosition = vxCString::npos;
    mExpected = "";
    mStr.clear();
    ManagePrecedence();
    return true;
}

bool vxExpressionParser::ParseText() {
    size_t thePos = vxSkipSpaces(mStr, 0);
    const bool theMatchesAll = mStr[thePos] == '*';
    if (theMatchesAll) {
        ++thePos;
    } else if (!ParseSearchExpression(&thePos, &mRootExpression)) {
        return false;
    }
    thePos = vxSkipSpaces(mStr, thePos);
    if (thePos != mStr.length()) {
        Expect(thePos, theMatchesAll ? "the end" : "a logical operator or the end");
        return false;
    }
    return true;
}

bool vxExpressionParser::ParseSearchExpression(size_t* aPos, vxSearchExpression** anExpression) {
    if (!VXCHECK((*anExpression) == NULL)) {
        return false;
    }
    Reader theReader(*this);
    if (!theReader.Read(*aPos)) {
        return false;
    }
    *aPos = theReader.End();
    *anExpression = theReader.Build();
    return true;
}

void vxExpressionParser::Expect(size_t aPos, const char* aText) {
    if (mErrorPosition == vxCString::npos || aPos > mErrorPosition) {
        mErrorPosition = aPos;
        mExpected = aText;
    }
}

void vxExpressionParser::ManagePrecedence() {
    for (const int theOperandID : {kvxExpressionOperandID_And, kvxExpressionOperandID_Or}) {
        while (GroupLinks(theOperandID)) {}
    }
}

// One walk; true when it grouped anything.
bool vxExpressionParser::GroupLinks(int anOperandID) {
    bool theChanged = false;
    bool theIsFirst = true;
    for (vxSearchExpression* theNode = mRootExpression; theNode != NULL;) {
        if (theNode->IsComposite()) {
            theNode = static_cast<vxCompositeExpression*>(theNode)->mExpression;
            theIsFirst = true;
            continue;
        }
        if (!theNode->IsLinear()) {
            break;
        }
        vxLinearExpression* theLink = static_cast<vxLinearExpression*>(theNode);
        if (theLink->mOperandID == anOperandID && theLink->mNext != NULL &&
            theLink->mNext->IsLinear()) {
            const vxLinearExpression* theNext = static_cast<vxLinearExpression*>(theLink->mNext);
            if (!theIsFirst || theNext->mNext != NULL) {
                Group(theLink);
                theChanged = true;
            }
        }
        theNode = theLink->mNext;
        theIsFirst = false;
    }
    return theChanged;
}

void vxExpressionParser::Group(vxSearchExpression* anExpression) {
    if (!VXCHECK(anExpression->IsLinear())) {
        return;
    }
    vxLinearExpression* theLinearExpression = static_cast<vxLinearExpression*>(anExpression);
    theLinearExpression->GroupWithNext();
    VXASSERT_TEXT(
        theLinearExpression->mExpression != NULL && theLinearExpression->mExpression->IsComposite(),
        "theLinearExpression->mExpression->IsComposite()");
}

bool vxExpressionParser::Evaluate(vxSearchExpressionEvaluator* anEvaluator) {
    return mfValid && (mRootExpression == NULL || mRootExpression->Evaluate(anEvaluator));
}

vxCString vxExpressionParser::GetSearchCriteriaList() {
    return mRootExpression == NULL ? vxCString()
                                   : mRootExpression->GetSearchCriteriaList(vxCString());
}

// The rest of a chain counts as long as "and" leads to it; what stands beside an "or" never does.
vxArray* vxExpressionParser::GetDiscriminantCriteria() {
    vxArray* theCriteria = vxArray_New();
    std::vector<vxSearchExpression*> theOpen = {mRootExpression};
    while (!theOpen.empty()) {
        vxSearchExpression* theNode = theOpen.back();
        theOpen.pop_back();
        if (theNode == NULL) {
            continue;
        }
        if (theNode->IsRel()) {
            vxArray_Append(theCriteria, theNode);
        } else if (theNode->IsComposite()) {
            theOpen.push_back(static_cast<vxCompositeExpression*>(theNode)->mExpression);
        } else if (theNode->IsLinear()) {
            vxLinearExpression* theLink = static_cast<vxLinearExpression*>(theNode);
            if (theLink->mOperandID == kvxExpressionOperandID_Or && theLink->mNext != NULL) {
                continue;
            }
            if (theLink->mOperandID == kvxExpressionOperandID_And) {
                theOpen.push_back(theLink->mNext);
            }
            theOpen.push_back(theLink->mExpression);
        }
    }
    return theCriteria;
}

bool vxExpressionParser::IsSameAs(const vxExpressionParser& aParser) const {
    if (mfValid != aParser.mfValid || mRootExpression == NULL) {
        return mfValid == aParser.mfValid && aParser.mRootExpression == NULL;
    }
    return mRootExpression->IsSameAs(aParser.mRootExpression);
}

void vxExpressionParser::Display() {
    if (mRootExpression != NULL) {
        mRootExpression->Display();
    } else if (mfValid) {
        vxConsole_Printf("*\n");
    } else if (mErrorPosition != vxCString::npos) {
        vxConsole_Printf("expected %s at byte %lu\n", mExpected,
                         static_cast<unsigned long>(mErrorPosition));
    } else {
        vxConsole_Printf("not parsed\n");
    }
}

int vxExpressionParser::GetPropertyID(const vxCString&) {
    return 0;
}

bool vxExpressionParser::OperandSupported(const char*) {
    return true;
}

bool vxExpressionParser::OperandSupportedForProperty(int, int) {
    return true;
}
