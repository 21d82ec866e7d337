// A typed value between the console and the program. One double serves all number types; the getters
// cut it to the width that was declared.

#include "vx/CLIParameter.h"

#include "vx/CLIParameterChecker.h"
#include "vx/CountedDataBuffer.h"
#include "vx/Saturate.h"

namespace {

void vxReleaseParameter(void* aParameter) {
    static_cast<vxCLIParameter*>(aParameter)->Release(NULL);
}

}  // namespace

vxCLIParameter::vxCLIParameter(const vxCString& aValue)
    : mType(kvxInteractiveParameterType_Str), mValue(0), mValueStr(aValue), mfMissing(false) {}

vxCLIParameter::~vxCLIParameter() = default;

void vxCLIParameter::SetValue(int aType, double aValue) {
    mType = aType;
    mValue = aValue;
}

void vxCLIParameter::SetValue(int aType, const vxCString& aValue) {
    mType = aType;
    mValueStr = aValue;
}

void vxCLIParameter::SetValue(int aType, const vxRef<vxCountedDataBuffer>& aBuffer) {
    mType = aType;
    mDataBuffer = aBuffer;
}

void vxCLIParameter::SetMissing(const vxCLIParameterChecker* theCLIParameterChecker) {
    mfMissing = true;
    VXASSERT(theCLIParameterChecker != NULL);
    if (theCLIParameterChecker != NULL) {
        mType = theCLIParameterChecker->GetType();
        mValueStr = theCLIParameterChecker->GetDefaultString();
        mValue = theCLIParameterChecker->GetDefaultNumber();
    }
}

bool vxCLIParameter::Is(const char* aText, bool afCaseSensitive) const {
    if (aText == NULL || (mType != kvxInteractiveParameterType_Str &&
                          mType != kvxInteractiveParameterType_Litteral)) {
        return false;
    }
    return afCaseSensitive ? mValueStr == aText : mValueStr.CompareNoCase(aText) == 0;
}

bool vxCLIParameter::GetBool() const {
    VXASSERT(mType == kvxInteractiveParameterType_Bool);
    return mValue != 0;
}

uint8_t vxCLIParameter::GetUInt8() const {
    VXASSERT(mType == kvxInteractiveParameterType_UInt8);
    return vxSaturate<uint8_t>(mValue);
}

uint16_t vxCLIParameter::GetUInt16() const {
    VXASSERT(mType == kvxInteractiveParameterType_UInt16);
    return vxSaturate<uint16_t>(mValue);
}

uint32_t vxCLIParameter::GetUInt32() const {
    VXASSERT(mType == kvxInteractiveParameterType_UInt32);
    return vxSaturate<uint32_t>(mValue);
}

uint64_t vxCLIParameter::GetUInt64() const {
    VXASSERT(mType == kvxInteractiveParameterType_UInt64);
    return vxSaturate<uint64_t>(mValue);
}

int8_t vxCLIParameter::GetInt8() const {
    VXASSERT(mType == kvxInteractiveParameterType_Int8);
    return vxSaturate<int8_t>(mValue);
}

int16_t vxCLIParameter::GetInt16() const {
    VXASSERT(mType == kvxInteractiveParameterType_Int16);
    return vxSaturate<int16_t>(mValue);
}

int32_t vxCLIParameter::GetInt32() const {
    VXASSERT(mType == kvxInteractiveParameterType_Int32);
    return vxSaturate<int32_t>(mValue);
}

double vxCLIParameter::GetDouble() const {
    VXASSERT(mType == kvxInteractiveParameterType_Double);
    return mValue;
}

char vxCLIParameter::GetChar() const {
    VXASSERT(mType == kvxInteractiveParameterType_Char);
    return mValueStr.First();
}

vxCString vxCLIParameter::GetString() const {
    VXASSERT((mType == kvxInteractiveParameterType_Str) ||
             (mType == kvxInteractiveParameterType_Litteral));
    return mValueStr;
}

vxRef<vxCountedDataBuffer> vxCLIParameter::GetDataBuffer() const {
    VXASSERT(mType == kvxInteractiveParameterType_Base64);
    return mDataBuffer;
}

vxArray* vxCLIParameter::NewArray() {
    vxArray* theArray = vxArray_New();
    if (theArray != NULL) {
        vxArray_SetFreeFunc(theArray, vxReleaseParameter);
    }
    return theArray;
}
