// A whole command: takes the words of a line one by one and hands each to the checker whose turn it
// is. The line is walked once; nothing is copied but the words.

#include "vx/CLICommandChecker.h"

#include "CLIParameterTypes.h"
#include "CLITokenizer.h"
#include "vx/CLIParameterChecker.h"

namespace {

void vxDeleteChecker(void* aChecker) {
    delete static_cast<vxCLIParameterChecker*>(aChecker);
}

void vxAppendParameter(vxArray* anArray, const vxRef<vxCLIParameter>& aParameter) {
    aParameter->Retain(NULL);
    if (!vxArray_Append(anArray, aParameter.Get())) {
        aParameter->Release(NULL);
    }
}

vxCLIParameterChecker* vxCheckerOf(vxArray* anArray, size_t anIndex) {
    return static_cast<vxCLIParameterChecker*>(vxArray_At(anArray, anIndex));
}

// Numbers in messages count parameters from 1.
unsigned long vxNumberOf(size_t anIndex) {
    return static_cast<unsigned long>(anIndex) + 1;
}

// Appends the values that aTokenizer yields, up to the first error, which is returned. aRest is the
// text from the present word on; what a free-form parameter takes.
vxCString vxValidateWords(vxArray* aCheckers, vxCLITokenizer& aTokenizer, vxCString aRest,
                          vxArray* aParameters) {
    const size_t theCount = vxArray_GetCount(aCheckers);
    for (size_t i = 0;; ++i) {
        vxCString theToken;
        const bool theFound = aTokenizer.Next(theToken);
        if (i == theCount) {
            return theFound ? "ERROR: Too many parameters" : "";
        }
        vxCLIParameterChecker* theChecker = vxCheckerOf(aCheckers, i);
        const bool theIsFreeForm = theChecker->IsFreeForm();
        if (!theFound && !theIsFreeForm) {
            return theChecker->IsOptional()
                       ? vxCString()
                       : vxCString::Format("ERROR: Missing parameter %lu", vxNumberOf(i));
        }
        vxRef<vxCLIParameter> theParameter = new vxCLIParameter;
        if (!theChecker->Validate(theIsFreeForm ? aRest : theToken, theParameter)) {
            return vxCString::Format("ERROR: Invalid parameter %lu: '%s'", vxNumberOf(i),
                                     theToken.c_str());
        }
        vxAppendParameter(aParameters, theParameter);
        if (theIsFreeForm) {
            return "";
        }
        if (i + 1 < theCount && vxCheckerOf(aCheckers, i + 1)->IsFreeForm()) {
            aRest = aTokenizer.Rest();
        }
    }
}

}  // namespace

vxCLICommandChecker::vxCLICommandChecker(const vxCString& aHelp, const vxCSVStringList& aCommands)
    : mHelp(aHelp),
      mParameters(vxArray_New()),
      mNonOptionalParameterCount(0),
      mOptionalParameterCount(0),
      mCommandList(aCommands) {
    vxArray_SetFreeFunc(mParameters, vxDeleteChecker);
}

vxCLICommandChecker::~vxCLICommandChecker() {
    vxArray_Delete(mParameters);
}

void vxCLICommandChecker::Add(vxCLIParameterChecker* theCLIParameterChecker) {
    VXASSERT(theCLIParameterChecker != NULL);
    if (theCLIParameterChecker != NULL) {
        vxArray_Append(mParameters, theCLIParameterChecker);
    }
}

void vxCLICommandChecker::Finalize() {
    mOptionalParameterCount = 0;
    for (size_t i = 0; i < vxArray_GetCount(mParameters); ++i) {
        mOptionalParameterCount += CheckerAt(i)->IsOptional() ? 1 : 0;
    }
    mNonOptionalParameterCount = vxArray_GetCount(mParameters) - mOptionalParameterCount;
}

vxCString vxCLICommandChecker::Validate(vxCString& anArguments, vxArray* aParameters) {
    VXASSERT(aParameters != NULL);
    if (aParameters == NULL) {
        return "";
    }
    const size_t theFirst = vxArray_GetCount(aParameters);
    vxCLITokenizer theTokenizer(anArguments, true);
    vxCString theError = vxValidateWords(mParameters, theTokenizer, anArguments, aParameters);
    anArguments = theTokenizer.Rest();
    if (!theError.IsEmpty()) {
        return theError;
    }
    size_t theProduced = vxArray_GetCount(aParameters) - theFirst;
    if (theProduced < mNonOptionalParameterCount) {
        return vxCString::Format("ERROR: Missing parameters: %lu parameters are required",
                                 static_cast<unsigned long>(mNonOptionalParameterCount));
    }
    for (; theProduced < vxArray_GetCount(mParameters); ++theProduced) {
        const vxCLIParameterChecker* theCLIParameterChecker = CheckerAt(theProduced);
        VXASSERT_TEXT((theCLIParameterChecker != NULL) && theCLIParameterChecker->IsOptional(),
                      "(theCLIParameterChecker != NULL) && theCLIParameterChecker->mfOptional");
        vxRef<vxCLIParameter> theParameter = new vxCLIParameter;
        theParameter->SetMissing(theCLIParameterChecker);
        vxAppendParameter(aParameters, theParameter);
    }
    return "";
}

vxCString vxCLICommandChecker::GetHelp() const {
    vxCString theHelp;
    for (size_t i = 0; i < vxArray_GetCount(mParameters); ++i) {
        theHelp += CheckerAt(i)->GetHelp();
        theHelp += ' ';
    }
    theHelp += ": ";
    theHelp += mHelp;
    return theHelp;
}

bool vxCLICommandChecker::NotConflicting(const vxCLICommandChecker* aLeft,
                                         const vxCLICommandChecker* aRight) {
    return aLeft != NULL && aRight != NULL &&
           (aLeft->NotConflictingWith(aRight) || aRight->NotConflictingWith(aLeft));
}

bool vxCLICommandChecker::NotConflictingWith(const vxCLICommandChecker* anOther) const {
    const vxCLIParameterChecker* theOwn = CheckerAt(0);
    const vxCLIParameterChecker* theOther = anOther == NULL ? NULL : anOther->CheckerAt(0);
    if (theOther == NULL) {
        return false;
    }
    if (theOwn == NULL) {
        return !theOther->IsOptional();
    }
    if (theOwn->GetType() != kvxInteractiveParameterType_Litteral) {
        return false;
    }
    if (theOther->GetType() == kvxInteractiveParameterType_Litteral) {
        return theOwn->GetName() != theOther->GetName();
    }
    double theNumber;
    return vxParameterTypeIsNumber(theOther->GetType()) && !theOwn->GetName().ToDouble(&theNumber);
}

const vxCLIParameterChecker* vxCLICommandChecker::CheckerAt(size_t anIndex) const {
    return static_cast<vxCLIParameterChecker*>(vxArray_At(mParameters, anIndex));
}
