#pragma once

// What several tests of the console share.

#include <libteskTools/Array.h>

#include <memory>
#include <ostream>
#include <string>

#include "vx/CLICommandChecker.h"
#include "vx/CLICommandValidator.h"
#include "vx/CLIParameter.h"
#include "vx/CString.h"

inline void PrintTo(const vxCString& aText, std::ostream* aStream) {
    *aStream << '"' << aText.c_str() << '"';
}

namespace vxtest {

struct Parsed {
    std::unique_ptr<vxCLICommandChecker> mChecker;  // null after an error
    std::string mError;
};

/// Parses a description of a command "set" with the help "the help".
inline Parsed ParseDescription(const vxCString& aDescription) {
    vxCSVStringList theNames("set", '\\');
    vxCLICommandValidator theValidator(aDescription, "the help", theNames);
    Parsed theParsed;
    theParsed.mChecker.reset(theValidator.Parse());
    theParsed.mError = theValidator.GetError();
    return theParsed;
}

/// An array of parameters that goes with its scope.
class Parameters {
public:
    Parameters() : mArray(vxCLIParameter::NewArray()) {}
    ~Parameters() { vxArray_Delete(mArray); }
    Parameters(const Parameters&) = delete;
    Parameters& operator=(const Parameters&) = delete;

    operator vxArray*() const { return mArray; }
    size_t Count() const { return vxArray_GetCount(mArray); }
    vxCLIParameter* At(size_t anIndex) const {
        return static_cast<vxCLIParameter*>(vxArray_At(mArray, anIndex));
    }

private:
    vxArray* mArray;
};

/// Validates arguments against a description; returns the error line.
inline std::string Validate(const char* aDescription, vxCString anArguments,
                            const Parameters& aParameters) {
    const Parsed theParsed = ParseDescription(aDescription);
    if (theParsed.mChecker == nullptr) {
        return "no checker: " + theParsed.mError;
    }
    return std::string(theParsed.mChecker->Validate(anArguments, aParameters));
}

/// As Validate() with parameters nobody looks at: the error line, or "ok".
inline std::string Verdict(const char* aDescription, const char* anArguments) {
    Parameters theParameters;
    const std::string theError = Validate(aDescription, anArguments, theParameters);
    return theError.empty() ? "ok" : theError;
}

}  // namespace vxtest
