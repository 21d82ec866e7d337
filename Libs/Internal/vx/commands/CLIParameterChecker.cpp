// One declared parameter: its limits, its default and its help.

#include "vx/CLIParameterChecker.h"

#include <cfloat>

#include "CLIParameterTypes.h"
#include "vx/CountedDataBuffer.h"
#include "vx/Saturate.h"

namespace {

bool vxIsOneOf(const vxCString& aText, const char* const (&aWords)[3]) {
    for (const char* theWord : aWords) {
        if (aText.CompareNoCase(theWord) == 0) {
            return true;
        }
    }
    return false;
}

bool vxReadTruth(const vxCString& aText, double* aValue) {
    static constexpr const char* kTrue[] = {"true", "on", "yes"};
    static constexpr const char* kFalse[] = {"false", "off", "no"};
    uint32_t theNumber = vxIsOneOf(aText, kTrue) ? 1 : 0;
    if (theNumber == 0 && !vxIsOneOf(aText, kFalse) &&
        (!aText.ToUInt32(&theNumber, 10) || theNumber > 1)) {
        return false;
    }
    *aValue = theNumber;
    return true;
}

}  // namespace

vxCLIParameterChecker::vxCLIParameterChecker(const vxCString& aName, int aType, bool afRange,
                                             double aMin, double aMax, bool afOptional,
                                             bool afFreeForm)
    : mParameterName(aName),
      mType(aType),
      mfRange(afRange),
      mMinNumberValue(aMin),
      mMaxNumberValue(aMax),
      mfOptional(afOptional),
      mfFreeForm(afFreeForm),
      mValueNumber(0),
      mDefaultValueNumber(0) {
    if (mfRange || !vxParameterTypeIsNumber(mType)) {
        return;
    }
    const vxCLIParameterTypeInfo* theInfo = vxFindParameterType(mType);
    mMinNumberValue = theInfo->mLower;
    mMaxNumberValue = theInfo->mUpper;
    if (mType == kvxInteractiveParameterType_UInt8) {
        mMaxNumberValue = 127;
    } else if (mType == kvxInteractiveParameterType_Double) {
        mMinNumberValue = DBL_MIN;  // never consulted: a double is checked against written ranges
    }
}

void vxCLIParameterChecker::SetDefault(double aNumber, const vxCString& aText) {
    switch (mType) {
        case kvxInteractiveParameterType_Str:
        case kvxInteractiveParameterType_Char:
        case kvxInteractiveParameterType_Litteral:
            mDefaultValueStr = aText;
            break;
        default:
            mDefaultValueNumber = aNumber;
    }
}

bool vxCLIParameterChecker::Validate(const vxCString& aText,
                                     const vxRef<vxCLIParameter>& aParameter) {
    VXASSERT(!aParameter.IsNull());
    vxCLIParameter* theParameter = aParameter.Get();
    if (theParameter == NULL) {
        return false;
    }
    switch (mType) {
        case kvxInteractiveParameterType_None:
            return false;
        case kvxInteractiveParameterType_Litteral:
            if (aText != mParameterName) {
                return false;
            }
            theParameter->SetValue(mType, aText);
            return true;
        case kvxInteractiveParameterType_Str:
            theParameter->SetValue(mType, aText);
            return true;
        case kvxInteractiveParameterType_Char:
            theParameter->SetValue(mType, aText);
            return aText.length() == 1;
        case kvxInteractiveParameterType_Base64:
            theParameter->SetValue(mType, vxRef<vxCountedDataBuffer>(new vxCountedDataBuffer(
                                              aText.c_str(), aText.length())));
            return true;
        default:
            return ValidateNumber(aText, theParameter);
    }
}

bool vxCLIParameterChecker::ValidateNumber(const vxCString& aText, vxCLIParameter* aParameter) {
    const bool theIsBool = mType == kvxInteractiveParameterType_Bool;
    if (!theIsBool && !vxParameterTypeIsNumber(mType)) {
        return false;
    }
    if (!(theIsBool ? vxReadTruth(aText, &mValueNumber) : aText.ToDouble(&mValueNumber))) {
        return false;
    }
    aParameter->SetValue(mType, mValueNumber);
    return theIsBool || IsInRange();
}

bool vxCLIParameterChecker::IsInRange() const {
    const bool theIsFree = mType == kvxInteractiveParameterType_Double && !mfRange;
    return theIsFree || (mValueNumber >= mMinNumberValue && mValueNumber <= mMaxNumberValue);
}

vxCString vxCLIParameterChecker::GetHelp() const {
    vxCString theHelp = mfOptional ? "(" : "";
    theHelp += mParameterName;
    if (mfRange && vxParameterTypeIsNumber(mType)) {
        theHelp += GetRangeHelp();
    }
    if (mfOptional) {
        theHelp += ')';
    }
    return theHelp;
}

vxCString vxCLIParameterChecker::GetRangeHelp() const {
    switch (mType) {
        case kvxInteractiveParameterType_UInt8:
        case kvxInteractiveParameterType_UInt16:
        case kvxInteractiveParameterType_UInt32:
        case kvxInteractiveParameterType_UInt64:
            return vxCString::Format(
                "[%llu,%llu]",
                static_cast<unsigned long long>(vxSaturate<uint64_t>(mMinNumberValue)),
                static_cast<unsigned long long>(vxSaturate<uint64_t>(mMaxNumberValue)));
        case kvxInteractiveParameterType_Double:
            return vxCString::Format("[%f,%f]", mMinNumberValue, mMaxNumberValue);
        default:
            return vxCString::Format("[%lld,%lld]",
                                     static_cast<long long>(vxSaturate<int64_t>(mMinNumberValue)),
                                     static_cast<long long>(vxSaturate<int64_t>(mMaxNumberValue)));
    }
}
