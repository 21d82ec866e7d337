// Any criteria are parsed or refused with a place and a reason; a tree evaluates, lists its names and
// prints itself without harm, and what it prints selects the same.

#include <vx/ExpressionParser.h>

#include "Input.h"

namespace {

// Objects whose values follow from the number of the object and the name of the property.
class FuzzEvaluator : public vxSearchExpressionEvaluator {
public:
    explicit FuzzEvaluator(uint8_t anObject) : mObject(anObject) {}

    bool Evaluate(vxRelExpression* anExpression) override {
        const vxCString& theName = anExpression->GetPropertyName();
        vxfuzz::Expect(!theName.IsEmpty(), "properties have names");
        const vxCString& theValue = anExpression->GetPropertyValue();
        switch ((mObject + theName.length() + static_cast<uint8_t>(theName[0])) % 8) {
            case 0:
                return anExpression->MatchString(theValue);
            case 1:
                return anExpression->MatchInt(mObject);
            case 2:
                return anExpression->MatchInt(theValue);
            case 3:
                return anExpression->MatchDouble(mObject / 2.0);
            case 4:
                return anExpression->MatchDouble(theValue);
            case 5:
                return anExpression->MatchDate(vxDateTime(1435687200L + mObject));
            case 6:
                return anExpression->MatchDate(theValue);
            default:
                return anExpression->MatchString("All you need is love");
        }
    }

private:
    const uint8_t mObject;
};

// Knows no property whose name begins with a parenthesis or has a digit.
class FuzzParser : public vxExpressionParser {
public:
    FuzzParser(const vxCString& aText, bool afRefuses)
        : vxExpressionParser(aText), mfRefuses(afRefuses) {}

    int GetPropertyID(const vxCString& aPropertyName) override {
        return mfRefuses && (aPropertyName[0] == '(' ||
                             aPropertyName.FindFirstOf("0123456789") != vxCString::npos)
                   ? -1
                   : 1;
    }

private:
    const bool mfRefuses;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    const uint8_t theOptions = theInput.Byte();
    const bool theRefuses = (theOptions & 1) != 0;
    const std::string theText = theInput.Rest();
    FuzzParser theParser(vxCString(theText.c_str(), theText.size()), theRefuses);
    const bool theIsValid = theParser.Parse();
    vxfuzz::Expect(theIsValid == (theParser.GetErrorPosition() == vxCString::npos),
                   "a place where it is not valid");
    vxfuzz::Expect(theIsValid || theParser.GetErrorPosition() <= theText.size(),
                   "the place is in the text");
    vxfuzz::Expect(theIsValid == (theParser.GetExpected()[0] == '\0'), "and a reason");
    FuzzEvaluator theEvaluator(theOptions >> 1);
    const bool theResult = theParser.Evaluate(&theEvaluator);
    vxArray_Delete(theParser.GetDiscriminantCriteria());
    theParser.GetSearchCriteriaList();
    if (theIsValid && theParser.GetExpression() != NULL && theRefuses) {
        FuzzParser theAgain(theParser.GetExpression()->GetText(), true);
        vxfuzz::Expect(theAgain.Parse(), "what is printed is valid");
        vxfuzz::Expect(theAgain.Evaluate(&theEvaluator) == theResult, "and selects the same");
    }
    return 0;
}
