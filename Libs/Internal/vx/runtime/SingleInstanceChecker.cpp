// A name and its qualifier make one key.

#include "vx/SingleInstanceChecker.h"

#include "vx/CString.h"

vxSingleInstanceChecker::vxSingleInstanceChecker(const char* aName, const char* aQualifier) {
    vxCString theKey(aName);
    if (aQualifier != NULL) {
        theKey += "-";
        theKey += aQualifier;
    }
    mChecker = vxSingleInstanceChecker_New(theKey);
}
