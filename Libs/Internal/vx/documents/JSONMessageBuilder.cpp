// A message is three members; whatever one of them lacks, the others are read.

#include "vx/JSONMessageBuilder.h"

#include <libteskTools/Array.h>
#include <libvxLog/Log.h>

#include "vx/JSON.h"

namespace {

constexpr char kvxMessage_FuncName[] = "function_name";
constexpr char kvxMessage_Status[] = "status";
constexpr char kvxMessage_Parameters[] = "parameters";

const vxJSONMessageParam* vxParamAt(const vxArray* aParams, size_t anIndex) {
    return static_cast<const vxJSONMessageParam*>(vxArray_At(aParams, anIndex));
}

bool vxShowsErrors() {
    return vxLog_GetLevel(VXLOG_M_JSON) >= VXLOGLEVEL_WARNING;
}

}  // namespace

vxJSONMessageBuilder::vxJSONMessageBuilder() : mStatus(false), mJSONParams(vxArray_New()) {
    vxArray_SetFreeFunc(mJSONParams,
                        [](void* aParam) { delete static_cast<vxJSONMessageParam*>(aParam); });
}

vxJSONMessageBuilder::vxJSONMessageBuilder(const vxCString& aJSON) : vxJSONMessageBuilder() {
    Set(aJSON);
}

vxJSONMessageBuilder::~vxJSONMessageBuilder() {
    vxArray_Delete(mJSONParams);
}

void vxJSONMessageBuilder::AddParameter(const vxCString& aKey, const vxCString& aValue) {
    vxArray_Append(mJSONParams, new vxJSONMessageParam{aKey, aValue});
}

vxCString vxJSONMessageBuilder::GetParameter(const vxCString& aKey) const {
    for (size_t i = 0; i < vxArray_GetCount(mJSONParams); ++i) {
        const vxJSONMessageParam* theParam = vxParamAt(mJSONParams, i);
        if (theParam->mKey == aKey) {
            return theParam->mValue;
        }
    }
    return vxCString();
}

vxCString vxJSONMessageBuilder::ToJSON() const {
    vxJSONDocument theDocument(kvxJSONDocumentRoot_Object);
    theDocument.Set(kvxMessage_FuncName, mFuncName.c_str());
    theDocument.Set(kvxMessage_Status, mStatus ? "true" : "false");
    vxJSONObject theParameters = theDocument.AsObject().AddObject(kvxMessage_Parameters);
    for (size_t i = 0; i < vxArray_GetCount(mJSONParams); ++i) {
        const vxJSONMessageParam* theParam = vxParamAt(mJSONParams, i);
        theParameters.Set(theParam->mKey, theParam->mValue.c_str());
    }
    return theDocument.ToString(true);
}

void vxJSONMessageBuilder::Set(const vxCString& aJSON) {
    vxJSONDocument theDocument(kvxJSONDocumentRoot_None);
    theDocument.SetDocument(aJSON);

    if (!theDocument[kvxMessage_FuncName].FetchString(mFuncName) && vxShowsErrors()) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_JSON, "JSON seems not to be a valid one (FUNC_NAME)\n");
    }
    vxCString theStatus;
    if (!theDocument[kvxMessage_Status].FetchString(theStatus) && vxShowsErrors()) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_JSON, "JSON seems not to be a valid one (STATUS)\n");
    }
    mStatus = theStatus == "true";

    const vxJSONEntry theParameters = theDocument[kvxMessage_Parameters];
    if (!theParameters.IsObject()) {
        if (vxShowsErrors()) {
            VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_JSON,
                  "JSON seems not to be a valid one (PARAMETERS)\n");
        }
        return;
    }
    for (uint32_t i = 0; i < theParameters.GetCount(); ++i) {
        const vxJSONEntry theParameter = theParameters[static_cast<int>(i)];
        AddParameter(theParameter.GetName(), theParameter.GetRawValue());
    }
}
