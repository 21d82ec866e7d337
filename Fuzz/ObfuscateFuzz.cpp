// Any text is taken for an obfuscated one and stays within its bounds; what was obfuscated leads back,
// up to the first zero among its enciphered bytes. The first line is the key.

#include <vx/Obfuscate.h>

#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    const std::string theKey = theInput.Line().c_str();
    const vxCString theText(theInput.Rest().c_str());

    const vxCString thePlain = vxObfuscate::From_B64RC4(theText, theKey.c_str());
    vxfuzz::Expect(thePlain.length() <= theText.length() / 4 * 3 + 3,
                   "three bytes for four characters");

    const vxCString theHidden = vxObfuscate::To_B64RC4(theText, theKey.c_str());
    const vxCString theBack = vxObfuscate::From_B64RC4(theHidden, theKey.c_str());
    vxfuzz::Expect(theBack == theText.Left(theBack.length()), "obfuscated text leads back");
    vxfuzz::Expect(vxObfuscate::To_B64RC4(theBack, theKey.c_str()) == theHidden,
                   "equal texts are obfuscated alike");
    return 0;
}
