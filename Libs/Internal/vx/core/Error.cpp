// A chain of links, newest first. Chains come from outside too, as JSON, so nothing recurses along
// them: copies are built from the head on, and a link that goes takes the links behind it off one by
// one.

#include "vx/Error.h"

#include <libteskTools/Format.h>
#include <libteskTools/Memory.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "vx/JSON.h"

namespace {

std::string vxCodeText(int32_t aCode) {
    char theText[16];
    vx_snprintf(theText, sizeof(theText), "%ld", static_cast<long>(aCode));
    return theText;
}

}  // namespace

vxError::vxErrorInfo::vxErrorInfo(int aCode, const vxCString& aMessage, const char* aModule)
    : mCode(aCode), mMessage(aMessage), mModule(vxStrdup(aModule)), mPrevious(NULL) {}

vxError::vxErrorInfo::vxErrorInfo(const vxJSONObject& anObject)
    : mCode(0), mModule(NULL), mPrevious(NULL) {
    anObject["code"].FetchInt32(&mCode);
    anObject["message"].FetchString(mMessage);
    vxCString theModule;
    if (anObject["module"].FetchString(theModule)) {
        SetModule(theModule);
    }
}

vxError::vxErrorInfo::vxErrorInfo(const vxErrorInfo& anInfo)
    : vxErrorInfo(anInfo.mCode, anInfo.mMessage, anInfo.mModule) {
    if (anInfo.mPrevious != NULL) {
        mPrevious = anInfo.mPrevious->CopyChain();
    }
}

vxError::vxErrorInfo& vxError::vxErrorInfo::operator=(const vxErrorInfo& anInfo) {
    if (this == &anInfo) {
        return *this;
    }
    // The source may be a link of this very history, which therefore goes last.
    vxErrorInfo* theOld = NULL;
    mCode = anInfo.mCode;
    mMessage = anInfo.mMessage;
    SetModule(anInfo.mModule);
    if (anInfo.mPrevious != NULL) {
        theOld = mPrevious;
        mPrevious = anInfo.mPrevious->CopyChain();
    }
    delete theOld;
    return *this;
}

vxError::vxErrorInfo::~vxErrorInfo() {
    FreeHistory();
    free(const_cast<char*>(mModule));
}

vxCString vxError::vxErrorInfo::ToString() const {
    std::string theText;
    for (const vxErrorInfo* theInfo = this; theInfo != NULL && theInfo->mCode != 0;
         theInfo = theInfo->mPrevious) {
        theText += " (error: " + vxCodeText(theInfo->mCode);
        if (theInfo->mModule != NULL && *theInfo->mModule != '\0') {
            theText.append(" [").append(theInfo->mModule).append("]");
        }
        if (!theInfo->mMessage.IsEmpty()) {
            theText.append(" '").append(theInfo->mMessage.c_str()).append("'");
        }
        theText += ")";
    }
    return vxCString(theText.c_str(), theText.size());
}

vxCString vxError::vxErrorInfo::ToShortString() const {
    if (mCode == 0) {
        return vxCString();
    }
    vxCString theText = vxCodeText(mCode).c_str();
    if (!mMessage.IsEmpty()) {
        theText += ": ";
        theText += mMessage.c_str();
    }
    return theText;
}

bool vxError::vxErrorInfo::FetchModuleError(const char* aModule, vxError& anError) const {
    for (const vxErrorInfo* theInfo = this; aModule != NULL && theInfo != NULL;
         theInfo = theInfo->mPrevious) {
        if (theInfo->mModule != NULL && strcmp(theInfo->mModule, aModule) == 0) {
            anError.mError = *theInfo;
            return true;
        }
    }
    return false;
}

void vxError::vxErrorInfo::ToJSON(vxJSONObject& anObject) const {
    anObject.CreateIfNone();
    vxJSONObject theObject;
    if (!anObject.FetchObject(theObject)) {
        return;
    }
    for (const vxErrorInfo* theInfo = this; theInfo != NULL; theInfo = theInfo->mPrevious) {
        theObject.Set("code", static_cast<int64_t>(theInfo->mCode));
        if (!theInfo->mMessage.IsEmpty()) {
            theObject.Set("message", theInfo->mMessage.c_str());
        }
        if (theInfo->mModule != NULL) {
            theObject.Set("module", theInfo->mModule);
        }
        if (theInfo->mPrevious != NULL) {
            theObject.Remove("previous");
            theObject = theObject.AddObject("previous");
        }
    }
}

// Copies this link and all behind it.
vxError::vxErrorInfo* vxError::vxErrorInfo::CopyChain() const {
    vxErrorInfo* theHead = NULL;
    vxErrorInfo** theEnd = &theHead;
    for (const vxErrorInfo* theInfo = this; theInfo != NULL; theInfo = theInfo->mPrevious) {
        *theEnd = new vxErrorInfo(theInfo->mCode, theInfo->mMessage, theInfo->mModule);
        theEnd = &(*theEnd)->mPrevious;
    }
    return theHead;
}

void vxError::vxErrorInfo::SetModule(const char* aModule) {
    const char* theModule = vxStrdup(aModule);
    free(const_cast<char*>(mModule));
    mModule = theModule;
}

void vxError::vxErrorInfo::FreeHistory() {
    while (mPrevious != NULL) {
        vxErrorInfo* theInfo = mPrevious;
        mPrevious = theInfo->mPrevious;
        theInfo->mPrevious = NULL;
        delete theInfo;
    }
}

vxError& vxError::operator=(int aCode) {
    mError.mCode = aCode;
    mError.mMessage = vxCString();
    return *this;
}

vxError& vxError::operator=(const char* aMessage) {
    mError.mMessage = aMessage;
    return *this;
}

void vxError::Set(const char* aModule, int aCode, const vxCString& aMessage) {
    mError.SetModule(aModule);
    mError.mCode = aCode;
    mError.mMessage = aMessage;
}

void vxError::ConvertTo(int aCode, const vxCString& aMessage, const char* aModule) {
    // The new values are taken first: they may be those of the error that moves.
    vxErrorInfo theNew(aCode, aMessage, aModule);
    vxErrorInfo* thePrevious = new vxErrorInfo(mError.mCode, mError.mMessage, mError.mModule);
    thePrevious->mPrevious = mError.mPrevious;
    mError.mPrevious = thePrevious;
    mError = theNew;
}

void vxError::ConvertTo(const vxError& anError) {
    ConvertTo(anError.mError.mCode, anError.mError.mMessage, anError.mError.mModule);
}

bool vxError::FetchModuleError(const char* aModule, vxError& anError) const {
    return mError.FetchModuleError(aModule, anError);
}

unsigned vxError::GetErrorHistoryCount() const {
    unsigned theCount = 0;
    for (const vxErrorInfo* theInfo = mError.mPrevious; theInfo != NULL;
         theInfo = theInfo->mPrevious) {
        ++theCount;
    }
    return theCount;
}

vxError vxError::GetErrorHistory(unsigned anIndex) const {
    const vxErrorInfo* theInfo = mError.mPrevious;
    for (; theInfo != NULL && anIndex > 0; --anIndex) {
        theInfo = theInfo->mPrevious;
    }
    return theInfo != NULL ? vxError(*theInfo) : vxError();
}

vxError vxError::GetInitialError() const {
    const vxErrorInfo* theInfo = &mError;
    while (theInfo->mPrevious != NULL) {
        theInfo = theInfo->mPrevious;
    }
    return vxError(*theInfo);
}

bool vxError::FromJSON(const vxJSONObject& anObject) {
    if (!anObject["code"].FetchInt32(&mError.mCode)) {
        return false;
    }
    vxErrorInfo theHead(anObject);
    vxErrorInfo* theOldest = &theHead;
    vxJSONObject thePrevious;
    for (bool fMore = anObject["previous"].FetchObject(thePrevious); fMore;
         fMore = thePrevious["previous"].FetchObject(thePrevious)) {
        theOldest->mPrevious = new vxErrorInfo(thePrevious);
        theOldest = theOldest->mPrevious;
    }
    mError = theHead;
    return true;
}
