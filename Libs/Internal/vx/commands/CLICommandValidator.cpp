// The parser of parameter descriptions. Each element is taken apart from the outside in: parentheses,
// name, range, type, default. The first error of an element ends it, and with it the description.

#include "vx/CLICommandValidator.h"

#include <memory>

#include "CLIParameterTypes.h"
#include "CLITokenizer.h"
#include "vx/CLICommandChecker.h"
#include "vx/CLIParameterChecker.h"

namespace {

bool vxIsInSingleQuotes(const vxCString& aText) {
    return aText.length() >= 2 && aText.First() == '\'' && aText.Last() == '\'';
}

vxCString vxWithoutEnds(const vxCString& aText) {
    return aText.Mid(1, aText.length() - 2);
}

}  // namespace

vxCLICommandValidator::vxCLICommandValidator(const vxCString& aDescription, const vxCString& aHelp,
                                             const vxCSVStringList& aCommands)
    : mParameterDescription(aDescription), mHelp(aHelp), mCommandList(aCommands), mfError(false) {
    ResetElement();
}

void vxCLICommandValidator::ResetElement() {
    mParameterName.clear();
    mType = kvxInteractiveParameterType_None;
    mfRange = false;
    mMinNumberValue = 0;
    mMaxNumberValue = 0;
    mfOptional = false;
    mfFreeForm = false;
}

vxCLICommandChecker* vxCLICommandValidator::Parse() {
    auto theCommand = std::make_unique<vxCLICommandChecker>(mHelp, mCommandList);
    vxCLITokenizer theTokenizer(mParameterDescription, false);
    vxCString theElement;
    bool theHadOptional = false;
    bool theHadFreeForm = false;
    while (!mfError && theTokenizer.Next(theElement)) {
        ResetElement();
        std::unique_ptr<vxCLIParameterChecker> theChecker(Parse1(theElement));
        if (mfError) {
            break;
        }
        if (theHadOptional && !mfOptional) {
            AddError("Found a non optional parameter after an optional parameter");
        } else if (theHadFreeForm) {
            AddError("Found a parameter after a ... parameter");
        } else {
            theCommand->Add(theChecker.release());
            theHadOptional = mfOptional;
            theHadFreeForm = mfFreeForm;
        }
    }
    if (mfError) {
        return NULL;
    }
    theCommand->Finalize();
    return theCommand.release();
}

vxCLIParameterChecker* vxCLICommandValidator::Parse1(const vxCString& anElement) {
    vxCString theText = anElement;
    vxCString theRange;
    if (!ParseOptional(anElement, theText) || !ParseName(anElement, theText) ||
        !SplitRange(anElement, theText, theRange) || !ParseType(anElement, theText)) {
        return NULL;
    }
    ParseRange(theRange);
    if (mfError || !CheckRangeAllowed(anElement, theRange)) {
        return NULL;
    }
    auto theChecker = std::make_unique<vxCLIParameterChecker>(
        mParameterName, mType, mfRange, mMinNumberValue, mMaxNumberValue, mfOptional, mfFreeForm);
    ParseDefault(theChecker.get(), anElement, theText);
    return mfError ? NULL : theChecker.release();
}

// Takes the parentheses off.
bool vxCLICommandValidator::ParseOptional(const vxCString& anElement, vxCString& aText) {
    if (aText.First() != '(') {
        return true;
    }
    if (aText.Last() != ')') {
        AddError(
            vxCString::Format("Optional description is invalid, no terminating parenthesis: '%s'",
                              anElement.c_str()));
        return false;
    }
    mfOptional = true;
    aText = vxWithoutEnds(aText);
    return true;
}

// Takes the name off; a quoted name without a type is a literal.
bool vxCLICommandValidator::ParseName(const vxCString& anElement, vxCString& aText) {
    mParameterName = aText.BeforeFirst(':');
    if (mParameterName.IsEmpty()) {
        AddError(vxCString::Format("Description is invalid, name is unspecified: '%s'",
                                   anElement.c_str()));
        return false;
    }
    aText = aText.AfterFirst(':');
    if (!aText.IsEmpty()) {
        return true;
    }
    if (!vxIsInSingleQuotes(mParameterName)) {
        AddError(vxCString::Format("Description is invalid, type is unspecified: '%s'",
                                   anElement.c_str()));
        return false;
    }
    mType = kvxInteractiveParameterType_Litteral;
    mParameterName = vxWithoutEnds(mParameterName);
    return true;
}

// Takes the range off.
bool vxCLICommandValidator::SplitRange(const vxCString& anElement, vxCString& aText,
                                       vxCString& aRange) {
    const size_t theStart = aText.Find('[');
    if (theStart == vxCString::npos) {
        return true;
    }
    if (aText.Last() != ']') {
        AddError(
            vxCString::Format("Range description is invalid, no terminating square bracket: '%s'",
                              anElement.c_str()));
        return false;
    }
    aRange = aText.Mid(theStart + 1, aText.length() - theStart - 2);
    aText = aText.Left(theStart);
    return true;
}

// Takes the keyword off; what remains is the default.
bool vxCLICommandValidator::ParseType(const vxCString& anElement, vxCString& aText) {
    mTypeStr = aText.BeforeFirst(':');
    aText = aText.AfterFirst(':');
    if (mType == kvxInteractiveParameterType_Litteral) {
        return true;
    }
    for (const vxCLIParameterTypeInfo& theInfo : kvxCLIParameterTypes) {
        if (mTypeStr == theInfo.mKeyword) {
            mType = theInfo.mType;
            mfFreeForm = mTypeStr == "...";
            return true;
        }
    }
    AddError(vxCString::Format("Invalid type description: '%s' in '%s'", mTypeStr.c_str(),
                               anElement.c_str()));
    return false;
}

// A guard: a literal has no place for a range, and ParseRange() refuses one on a free-form string.
bool vxCLICommandValidator::CheckRangeAllowed(const vxCString& anElement, const vxCString& aRange) {
    if (aRange.IsEmpty()) {
        return true;
    }
    if (mType == kvxInteractiveParameterType_Litteral) {
        AddError(vxCString::Format("Literals do not support range description: '%s'",
                                   anElement.c_str()));
    } else if (mfFreeForm) {
        AddError(
            vxCString::Format("... do not support range description: '%s'", anElement.c_str()));
    }
    return !mfError;
}

void vxCLICommandValidator::ParseDefault(vxCLIParameterChecker* aChecker,
                                         const vxCString& anElement, const vxCString& aText) {
    if (aText.IsEmpty()) {
        if (mType == kvxInteractiveParameterType_Litteral) {
            aChecker->SetDefault(0, mParameterName);
        } else if (mfOptional) {
            ComputeDefaultValue(aChecker, anElement);
        }
        return;
    }
    vxRef<vxCLIParameter> theValue = new vxCLIParameter;
    if (aChecker->Validate(vxIsInSingleQuotes(aText) ? vxWithoutEnds(aText) : aText, theValue)) {
        aChecker->SetDefault(theValue->_GetNumber(), theValue->_GetText());
    } else {
        AddError(vxCString::Format("ERROR: Invalid default value in '%s'", anElement.c_str()));
    }
}

void vxCLICommandValidator::ParseRange(const vxCString& aRange) {
    if (aRange.IsEmpty()) {
        return;
    }
    mfRange = true;
    if (aRange.Freq(',') != 1) {
        AddError(vxCString::Format("Range description is invalid, no comma separator found: '%s'",
                                   aRange.c_str()));
        return;
    }
    if (mType == kvxInteractiveParameterType_Str || mType == kvxInteractiveParameterType_Char ||
        mType == kvxInteractiveParameterType_Bool) {
        AddError(
            vxCString::Format("Type '%s' does not support a range specifier", mTypeStr.c_str()));
        return;
    }
    const vxCString theMin = aRange.BeforeFirst(',');
    const vxCString theMax = aRange.AfterFirst(',');
    if (theMin.IsEmpty() && theMax.IsEmpty()) {
        AddError(vxCString::Format("Type '%s' does not support an empty range: '%s'",
                                   aRange.c_str(), mTypeStr.c_str()));
        return;
    }
    if (!ParseBound(theMin, true, &mMinNumberValue)) {
        AddError(vxCString::Format("Invalid minimum value '%s' for '%s' range", theMin.c_str(),
                                   mTypeStr.c_str()));
    }
    if (!ParseBound(theMax, false, &mMaxNumberValue)) {
        AddError(vxCString::Format("Invalid maximum value '%s' for '%s' range", theMax.c_str(),
                                   mTypeStr.c_str()));
    }
}

bool vxCLICommandValidator::ParseBound(const vxCString& aText, bool afMin, double* aValue) const {
    if (aText.IsEmpty()) {
        *aValue = GetDefaultRangeValue(afMin);
    } else if (!aText.ToDouble(aValue)) {
        return false;
    }
    return CheckValueRange(*aValue);
}

bool vxCLICommandValidator::CheckValueRange(double aValue) const {
    return mType == kvxInteractiveParameterType_Double ||
           (vxParameterTypeIsNumber(mType) && aValue >= GetDefaultRangeValue(true) &&
            aValue <= GetDefaultRangeValue(false));
}

double vxCLICommandValidator::GetDefaultRangeValue(bool afMin) const {
    const vxCLIParameterTypeInfo* theInfo = vxFindParameterType(mType);
    if (theInfo == NULL) {
        return 0;
    }
    return afMin ? theInfo->mLower : theInfo->mUpper;
}

void vxCLICommandValidator::ComputeDefaultValue(vxCLIParameterChecker* aChecker,
                                                const vxCString& anElement) {
    if (vxParameterTypeIsNumber(mType) || mType == kvxInteractiveParameterType_Str) {
        aChecker->SetDefault(mMinNumberValue, "");
    } else {
        AddError(vxCString::Format("ERROR: No default value specified in '%s'", anElement.c_str()));
    }
}

void vxCLICommandValidator::AddError(const vxCString& aMessage) {
    mError += vxCString::Format("    %s\n", aMessage.c_str());
    mfError = true;
}
