// Repaired text is valid, repairing it again changes nothing, and valid text is left alone.

#include <vx/CString.h>

#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    const vxCString theText(reinterpret_cast<const char*>(aData), aSize);
    const bool theWasValid = theText.IsValidUTF8();

    vxCString theRepaired(theText.c_str(), theText.length());
    theRepaired.ValidateUTF8(vxCString::kvxKeepValid);
    vxfuzz::Expect(theRepaired.IsValidUTF8(), "repaired text is valid");
    vxfuzz::Expect(!theWasValid || theRepaired == theText, "valid text is left alone");

    const vxCString theWideAndBack = vxCString::FromWideChar(theRepaired.ToWideChar());
    vxfuzz::Expect(theWideAndBack == theRepaired.c_str(), "wide text leads back to the first NUL");

    vxCString thePrintable(theText.c_str(), theText.length());
    thePrintable.ValidateUTF8(vxCString::kvxKeepValid | vxCString::kvxKeepPrintable);
    vxfuzz::Expect(thePrintable.length() <= theText.length(), "nothing is added");
    return 0;
}
