#pragma once

#include "vx/Api.h"
#include "vx/CLIParameter.h"
#include "vx/CString.h"
#include "vx/Ref.h"

/// Checks one typed word against one declared parameter.
///
/// Made by vxCLICommandValidator from a description such as `count:ui8[1,10]`.
///
/// Owner:    the command checker it is added to.
/// Threads:  one at a time.
class VX_EXPORT vxCLIParameterChecker {
public:
    /// Without `afRange` a number type gets the limits of its type, and `aMin` and `aMax` go unused.
    ///
    /// An unsigned byte without a range accepts 0 to 127 only; programs depend on it. Declare
    /// `[0,255]` for the whole byte.
    vxCLIParameterChecker(const vxCString& aName, int aType, bool afRange, double aMin, double aMax,
                          bool afOptional, bool afFreeForm);

    /// Sets the value of an optional parameter that is not typed: the text for strings, characters
    /// and literals, the number for every other type.
    void SetDefault(double aNumber, const vxCString& aText);

    /// Checks `aText` and fills `aParameter`; false when the text does not fit, and then the parameter
    /// may be half filled.
    ///
    /// | Type | Accepted |
    /// |---|---|
    /// | literal | exactly the name |
    /// | string, free form, base64 | everything; base64 is not decoded |
    /// | char | exactly one byte |
    /// | bool | true on yes 1, false off no 0, words in any case |
    /// | integers | a real number from minimum to maximum; fractions are cut by the getters |
    /// | double | any real number, or one from minimum to maximum where a range was written |
    ///
    /// Asserts:  !aParameter.IsNull(); the result is false then.
    bool Validate(const vxCString& aText, const vxRef<vxCLIParameter>& aParameter);

    /// Returns the name, with the range of a number where one was written, in parentheses when
    /// optional: `(count[1,10])`.
    vxCString GetHelp() const;

    /// Returns what was declared; the name of a literal is its text without the quotes.
    /// @{
    const vxCString& GetName() const { return mParameterName; }
    int GetType() const { return mType; }
    bool IsOptional() const { return mfOptional; }
    bool IsFreeForm() const { return mfFreeForm; }
    double GetDefaultNumber() const { return mDefaultValueNumber; }
    const vxCString& GetDefaultString() const { return mDefaultValueStr; }
    /// @}

private:
    bool ValidateNumber(const vxCString& aText, vxCLIParameter* aParameter);
    bool IsInRange() const;
    vxCString GetRangeHelp() const;

    vxCString mParameterName;  // of a literal: its text without the quotes
    int mType;
    bool mfRange;            // a range was written
    double mMinNumberValue;  // inclusive
    double mMaxNumberValue;  // inclusive
    bool mfOptional;
    bool mfFreeForm;      // takes the rest of the line
    double mValueNumber;  // the number validated last
    double mDefaultValueNumber;
    vxCString mDefaultValueStr;
};
