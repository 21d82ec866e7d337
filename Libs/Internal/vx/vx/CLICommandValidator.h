#pragma once

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/StringList.h"

class vxCLICommandChecker;
class vxCLIParameterChecker;

/// Turns the description of a command's parameters into its checker.
///
/// A description is a row of elements between blanks or tabs:
///
/// | Written | Meaning |
/// |---|---|
/// | `name:type` | mandatory |
/// | `(name:type)` | optional; without a default a number is its range's minimum or 0, a string is empty |
/// | `(name:type:default)` | optional with a default, which may stand in single quotes |
/// | `name:type[min,max]` | a number in an inclusive range; an empty bound is the type's limit |
/// | `(name:type:default[min,max])` | both: the default stands before the range |
/// | `'text'` | a word that must be typed exactly so |
/// | `name:...` | the rest of the line, as it stands |
///
/// Types are ui8 i8 ui16 i16 ui32 i32 ui64 i64 double str char bool base64 and `...`. Optional
/// parameters stand behind the mandatory ones, a free-form one stands last. Optional char, bool and
/// base64 parameters need a default.
///
///     vxCLICommandValidator theValidator("count:ui8[1,10] (mode:str:fast)", "play", theNames);
///     vxCLICommandChecker* theChecker = theValidator.Parse();
///
/// Threads:  one at a time.
class VX_EXPORT vxCLICommandValidator {
public:
    /// `aHelp` and `aCommands` are handed on to the checker.
    vxCLICommandValidator(const vxCString& aDescription, const vxCString& aHelp,
                          const vxCSVStringList& aCommands);

    /// Parses the whole description; it stops at the first bad element. Call it once.
    ///
    /// Fails:    null; GetError() tells why.
    /// Owner:    the caller, who deletes the checker.
    vxCLICommandChecker* Parse();

    /// Returns the errors, each a line indented by four blanks; empty after success.
    vxCString GetError() const { return mError; }

private:
    vxCLIParameterChecker* Parse1(const vxCString& anElement);
    bool ParseOptional(const vxCString& anElement, vxCString& aText);
    bool ParseName(const vxCString& anElement, vxCString& aText);
    bool SplitRange(const vxCString& anElement, vxCString& aText, vxCString& aRange);
    bool ParseType(const vxCString& anElement, vxCString& aText);
    bool CheckRangeAllowed(const vxCString& anElement, const vxCString& aRange);
    void ParseDefault(vxCLIParameterChecker* aChecker, const vxCString& anElement,
                      const vxCString& aText);
    void ParseRange(const vxCString& aRange);
    bool ParseBound(const vxCString& aText, bool afMin, double* aValue) const;
    bool CheckValueRange(double aValue) const;
    double GetDefaultRangeValue(bool afMin) const;
    void ComputeDefaultValue(vxCLIParameterChecker* aChecker, const vxCString& anElement);
    void ResetElement();
    void AddError(const vxCString& aMessage);

    vxCString mParameterDescription;
    vxCString mHelp;
    vxCString mError;
    vxCString mTypeStr;        // keyword of the element being parsed
    vxCString mParameterName;  // from here on likewise
    vxCSVStringList mCommandList;
    int mType;
    bool mfRange;
    double mMinNumberValue;
    double mMaxNumberValue;
    bool mfOptional;
    bool mfFreeForm;
    bool mfError;  // stays set once an error was added
};
