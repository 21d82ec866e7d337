// RC4 and base64 put together. Lengths are measured to a NUL at the same points in both directions.

#include "vx/Obfuscate.h"

#include <libteskTools/Base64.h>
#include <libteskTools/Memory.h>
#include <libteskTools/RC4.h>
#include <libvxLog/FatalError.h>

#include <cstdlib>
#include <cstring>

namespace {

void vxEncipher(char* aText, size_t aLength, const char* aKey) {
    vxRC4Key theKey;
    vxRC4_PrepareKey(aKey, aKey == NULL ? 0 : strlen(aKey), &theKey);
    vxRC4_Process(aText, aLength, &theKey);
}

}  // namespace

vxCString vxObfuscate::To_B64RC4(const vxCString& aText, const char* aKey) {
    char* theBlock = vxStrdup(aText.c_str());
    if (theBlock == NULL) {
        return vxCString();
    }
    vxEncipher(theBlock, strlen(theBlock), aKey);
    const size_t theLength = strlen(theBlock);
    char* theResult = NULL;
    vxBase64_Encode(theBlock, theLength, &theResult);
    free(theBlock);
    if (theResult == NULL) {
        vxFatalError_WithSize("memory:malloc", theLength);
        return vxCString();
    }
    return vxCString::FromAllocatedString(theResult);
}

vxCString vxObfuscate::From_B64RC4(const vxCString& aText, const char* aKey) {
    vxCString theResult;
    if (aText.IsEmpty()) {
        return theResult;
    }
    char* theBlock = static_cast<char*>(vxCalloc(aText.length() + 1));
    if (theBlock == NULL) {
        return theResult;
    }
    vxBase64_Decode(aText.c_str(), theBlock);
    const size_t theLength = strlen(theBlock);
    vxEncipher(theBlock, theLength, aKey);
    theBlock[theLength] = '\0';
    return vxCString::FromAllocatedString(theBlock);
}
