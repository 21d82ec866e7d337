#pragma once

#include <libteskTools/Array.h>
#include <libteskTools/Types.h>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/Ref.h"

class vxCLIParameterChecker;
class vxCountedDataBuffer;

/// Types of a console parameter. 1 to 9 are the number types.
/// @{
constexpr int kvxInteractiveParameterType_None = 0;
constexpr int kvxInteractiveParameterType_UInt8 = 1;
constexpr int kvxInteractiveParameterType_Int8 = 2;
constexpr int kvxInteractiveParameterType_UInt16 = 3;
constexpr int kvxInteractiveParameterType_Int16 = 4;
constexpr int kvxInteractiveParameterType_UInt32 = 5;
constexpr int kvxInteractiveParameterType_Int32 = 6;
constexpr int kvxInteractiveParameterType_UInt64 = 7;
constexpr int kvxInteractiveParameterType_Int64 = 8;
constexpr int kvxInteractiveParameterType_Double = 9;
constexpr int kvxInteractiveParameterType_Str = 10;
constexpr int kvxInteractiveParameterType_Char = 11;
constexpr int kvxInteractiveParameterType_Bool = 12;
constexpr int kvxInteractiveParameterType_Litteral = 13;
constexpr int kvxInteractiveParameterType_Base64 = 14;
/// @}

/// One typed value of a console command.
///
/// Numbers of every type are held as a double: integers are exact up to 2 to the 53rd. A getter of
/// the wrong type reports and converts whatever the value field of its kind holds.
///
///     const uint32_t theCount = theCommand->Parameter(0)->GetUInt32();
///
/// Owner:    its handles.
/// Threads:  one at a time.
class VX_EXPORT vxCLIParameter : public vxRefCounted {
public:
    /// Makes a parameter of no type.
    vxCLIParameter() : mType(kvxInteractiveParameterType_None), mValue(0), mfMissing(false) {}
    /// Makes a string.
    explicit vxCLIParameter(const vxCString& aValue);
    ~vxCLIParameter() override;

    /// Sets the type and the matching value; the other value fields stay.
    /// @{
    void SetValue(int aType, double aValue);
    void SetValue(int aType, const vxCString& aValue);
    void SetValue(int aType, const vxRef<vxCountedDataBuffer>& aBuffer);
    /// @}

    /// Takes type and default of an optional parameter that was not typed. A base64 parameter has no
    /// default: its buffer stays null.
    ///
    /// Asserts:  theCLIParameterChecker != NULL; only the mark is set then.
    void SetMissing(const vxCLIParameterChecker* theCLIParameterChecker);

    /// Returns the type, kvxInteractiveParameterType_*.
    int GetType() const { return mType; }
    /// Was the parameter left out, so that this is the declared default?
    bool IsMissing() const { return mfMissing; }

    /// Compares a string or literal with a text; false for every other type.
    bool Is(const char* aText, bool afCaseSensitive) const;

    /// Returns the value of a parameter of this type.
    ///
    /// Integers are the double truncated toward zero and cut to the limits of their type. There is no
    /// getter for signed 64-bit numbers.
    ///
    /// Asserts:  mType == kvxInteractiveParameterType_UInt8 and so on, by the getter; the number is
    ///           converted all the same.
    /// @{
    bool GetBool() const;
    uint8_t GetUInt8() const;
    uint16_t GetUInt16() const;
    uint32_t GetUInt32() const;
    uint64_t GetUInt64() const;
    int8_t GetInt8() const;
    int16_t GetInt16() const;
    int32_t GetInt32() const;
    double GetDouble() const;
    /// @}

    /// Returns the first byte of the text, or 0.
    ///
    /// Asserts:  mType == kvxInteractiveParameterType_Char.
    char GetChar() const;

    /// Returns the text of a string or literal.
    ///
    /// Asserts:  (mType == kvxInteractiveParameterType_Str) || (mType ==
    ///           kvxInteractiveParameterType_Litteral).
    vxCString GetString() const;

    /// Returns the typed bytes, which are not decoded; null where an optional one was not typed.
    ///
    /// Asserts:  mType == kvxInteractiveParameterType_Base64.
    vxRef<vxCountedDataBuffer> GetDataBuffer() const;

    /// Makes an array that releases the parameters appended to it; append them retained.
    ///
    /// Owner:    the caller.
    static vxArray* NewArray();

    /// Returns a value field whatever the type is: for code that goes by GetType().
    /// @{
    double _GetNumber() const { return mValue; }
    const vxCString& _GetText() const { return mValueStr; }
    /// @}

private:
    int mType;
    double mValue;                           // numbers; truth as 1 or 0
    vxCString mValueStr;                     // string, free form, char, literal
    bool mfMissing;                          // the declared default, not typed
    vxRef<vxCountedDataBuffer> mDataBuffer;  // base64
};
