// A hidden text is "secret:" NUMBER ":" GIBBERISH. The number is part of the key: a text whose
// gibberish would not come back whole under one number, because a byte of it is zero, is hidden under
// another one.

#include "config/Secret.h"

#include <cstring>

#include "vx/Obfuscate.h"

namespace vxmedia {

namespace {

constexpr char kSecret_Mark[] = "secret:";
constexpr unsigned kSecret_Attempts = 1000;

vxCString KeyFor(const vxCString& aNumber) {
    return vxCString("vxmedia/") + aNumber;
}

}  // namespace

vxCString HideSecret(const vxCString& aText) {
    for (unsigned i = 0; i < kSecret_Attempts; ++i) {
        const vxCString theNumber = vxCString::Format("%u", i);
        const vxCString theHidden = vxObfuscate::To_B64RC4(aText, KeyFor(theNumber));
        if (vxObfuscate::From_B64RC4(theHidden, KeyFor(theNumber)) == aText) {
            return vxCString(kSecret_Mark) + theNumber + ":" + theHidden;
        }
    }
    return vxCString();
}

bool IsSecret(const vxCString& aStored) {
    return strncmp(aStored, kSecret_Mark, sizeof(kSecret_Mark) - 1) == 0;
}

vxCString RevealSecret(const vxCString& aStored) {
    if (!IsSecret(aStored)) {
        return aStored;
    }
    const vxCString theRest = aStored.Mid(sizeof(kSecret_Mark) - 1);
    return vxObfuscate::From_B64RC4(theRest.AfterFirst(':'), KeyFor(theRest.BeforeFirst(':')));
}

}  // namespace vxmedia
