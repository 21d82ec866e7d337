// A description gives a checker or an error text, never both; arguments give one value for each
// declared parameter, or one error line.

#include <libteskTools/Array.h>
#include <vx/CLICommandChecker.h>
#include <vx/CLICommandValidator.h>
#include <vx/CLIParameter.h>

#include <memory>

#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    const std::string theDescription = theInput.Line();
    vxCLICommandValidator theValidator(theDescription.c_str(), "help",
                                       vxCSVStringList("name", '\\'));
    const std::unique_ptr<vxCLICommandChecker> theChecker(theValidator.Parse());
    vxfuzz::Expect((theChecker == nullptr) != theValidator.GetError().IsEmpty(),
                   "a checker or an error");
    if (theChecker == nullptr) {
        return 0;
    }
    theChecker->GetHelp();
    vxCLICommandChecker::NotConflicting(theChecker.get(), theChecker.get());

    vxCString theArguments = theInput.Rest().c_str();
    vxArray* theValues = vxArray_New();
    vxArray_SetFreeFunc(
        theValues, [](void* aValue) { static_cast<vxCLIParameter*>(aValue)->Release(nullptr); });
    const vxCString theError = theChecker->Validate(theArguments, theValues);
    vxfuzz::Expect(theError.IsEmpty() || theError.Left(7) == "ERROR: ", "errors begin alike");
    vxArray_Delete(theValues);
    return 0;
}
