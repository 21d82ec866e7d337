#pragma once

#include <libteskTools/Types.h>

#include "vx/Api.h"
#include "vx/CString.h"

/// Kinds of rows in a description table.
enum vxCommandLineEntryType : int {
    vxCommandLineEntryType_Switch = 0,     ///< `-v`
    vxCommandLineEntryType_Option = 1,     ///< `-p 8080`
    vxCommandLineEntryType_Parameter = 2,  ///< positional
    vxCommandLineEntryType_None = 3        ///< ends the table
};

/// Types of values.
enum vxCommandLineParameterType : int {
    vxCommandLineParameter_String = 0,
    vxCommandLineParameter_Number = 1,  ///< decimal, signed, 32 bits
    vxCommandLineParameter_None = 2     ///< switches
};

/// Bits of a row's flags.
enum vxCommandLineFlag {
    vxCommandLineFlag_None = 0,
    vxCommandLineFlag_MandatoryOption = 1,    ///< must be given
    vxCommandLineFlag_ParameterOptional = 2,  ///< the positional parameter may be left out
    vxCommandLineFlag_ParameterMultiple = 4,  ///< the last one takes all remaining arguments
    vxCommandLineFlag_HelpOption = 8,         ///< the switch stops parsing and asks for help
    vxCommandLineFlag_NeedSeparator = 16      ///< the value may not be glued to the name
};

/// One row of a program's static description table.
struct vxCommandLineDescription {
    vxCommandLineEntryType mKind;      ///< None ends the table
    const char* mOptionName;           ///< of switches and options; letters, digits, `_` and `?`
    const char* mDescription;          ///< of a positional parameter: also its name in messages
    vxCommandLineParameterType mType;  ///< of options and parameters
    int mFlags;                        ///< vxCommandLineFlag bits
};

struct vxCommandLineParserData;

/// A declared switch or option, and what the last parse found for it.
///
/// Owner:    names and descriptions stay the caller's and must outlive the option.
/// Threads:  one at a time.
class VX_EXPORT vxCommandLineOption {
public:
    /// A null text counts as the empty text.
    ///
    /// Asserts:  !anOption.IsEmpty(); GetOptionName(anOption).length() == anOption.length(): a name
    ///           has only letters, digits, `_` and `?`.
    vxCommandLineOption(vxCommandLineEntryType aKind, const char* anOption,
                        const char* aDescription, vxCommandLineParameterType aType, int aFlags);

    /// Returns the leading letters, digits, `_` and `?` of a text; none of a null one.
    static vxCString GetOptionName(const char* aText);

    /// Returns what it was declared with; texts are never null.
    /// @{
    vxCommandLineEntryType GetKind() const { return mKind; }
    const char* GetName() const { return mOptionName; }
    /// Has the name at least one byte, and only those that a name may have?
    bool HasValidName() const { return mNameLength != 0 && mOptionName[mNameLength] == '\0'; }
    const char* GetDescription() const { return mDescription; }
    vxCommandLineParameterType GetType() const { return mType; }
    bool HasFlag(vxCommandLineFlag aFlag) const { return (mFlags & aFlag) != 0; }
    /// @}

    /// Was it given in the last parse?
    bool HasValue() const { return mfHasValue; }
    /// Marks it as given.
    void SetHasValue() { mfHasValue = true; }
    /// Clears that mark; an old value stays readable.
    void Reset() { mfHasValue = false; }

    /// Returns the last value set, 0 at first.
    ///
    /// Asserts:  mType == vxCommandLineParameter_Number.
    int32_t GetInt32Value() const;

    /// Returns the last value set, the empty text at first.
    ///
    /// Asserts:  mType == vxCommandLineParameter_String.
    const vxCString& GetStringValue() const;

    /// Stores the value and marks the option as given.
    ///
    /// Asserts:  as its getter; the value is stored all the same.
    /// @{
    void SetInt32Value(int32_t aValue);
    void SetStringValue(const char* aValue);
    /// @}

private:
    friend struct vxCommandLineParserData;

    vxCommandLineEntryType mKind;
    const char* mOptionName;   // borrowed, never null
    const char* mDescription;  // borrowed, never null
    vxCommandLineParameterType mType;
    int mFlags;
    bool mfHasValue;  // seen during the last parse
    int32_t mInt32Value;
    vxCString mStringValue;
    uint32_t mNameLength;   // of the part that is a name
    uint32_t mNextSimilar;  // in the parser's index
};

/// Parses a program's arguments against a table of switches, options and positional parameters.
///
///     static const vxCommandLineDescription kArguments[] = {
///         {vxCommandLineEntryType_Switch, "h", "this help", vxCommandLineParameter_None,
///          vxCommandLineFlag_HelpOption},
///         {vxCommandLineEntryType_Option, "p", "port", vxCommandLineParameter_Number, 0},
///         {vxCommandLineEntryType_Parameter, NULL, "file", vxCommandLineParameter_String,
///          vxCommandLineFlag_ParameterOptional},
///         {vxCommandLineEntryType_None, NULL, NULL, vxCommandLineParameter_None, 0}};
///
///     vxCommandLineParser theParser(kArguments, argc, argv);
///     int thePort = 80;
///     if (theParser.Parse(true) == 0 && theParser.Found("p", &thePort)) { ... }
///
/// Options begin with `-`. Their value stands behind a `:` or `=`, glued to the name, or in the next
/// argument. The longest declared name that the argument begins with counts. Switches may be glued
/// together: of `-vq` first `-v` is processed, and `-q` after all other arguments. `--` ends the
/// options; other arguments that begin with `--` are unknown options.
///
/// Threads:  one at a time.
class VX_EXPORT vxCommandLineParser {
public:
    /// Declares nothing and has no arguments.
    vxCommandLineParser();
    /// As SetCommandLine() and SetDescription().
    /// @{
    vxCommandLineParser(const vxCommandLineDescription* aTable, int anArgc, char** anArgv);
    vxCommandLineParser(const vxCommandLineDescription* aTable, const vxCString& aCommandLine,
                        bool afHasProgramName);
    /// @}
    ~vxCommandLineParser();
    vxCommandLineParser(const vxCommandLineParser&) = delete;
    vxCommandLineParser& operator=(const vxCommandLineParser&) = delete;

    /// Copies the arguments; the first is the program's name. A null argument ends them.
    void SetCommandLine(int anArgc, char** anArgv);

    /// Splits a text into arguments at blanks and tabs; without `afHasProgramName` the program's own
    /// path is put in front.
    ///
    /// A `"` groups up to the next and is dropped. One behind a backslash is an ordinary byte, and the
    /// backslash stays too.
    void SetCommandLine(const vxCString& aCommandLine, bool afHasProgramName);

    /// Declares everything in a table; null does nothing.
    ///
    /// Owner:    the texts stay the caller's and must outlive the parser, as those of a static table
    ///           do.
    /// Asserts:  "Unknown command line entry type" for a row of another kind, which is skipped.
    void SetDescription(const vxCommandLineDescription* aTable);

    /// Declares a switch.
    ///
    /// Asserts:  mParserData->FindOption(aName) == -1, and as the constructor of vxCommandLineOption;
    ///           nothing is declared then.
    void AddSwitch(const vxCString& aName, const vxCString& aDescription, int aFlags);

    /// Declares an option with a value; asserts as AddSwitch().
    void AddOption(const vxCString& aName, const vxCString& aDescription,
                   vxCommandLineParameterType aType, int aFlags);

    /// Declares the next positional parameter.
    ///
    /// Asserts:  !(theParam->mFlags & vxCommandLineFlag_ParameterMultiple): nothing may follow one
    ///           that takes all; !(theParam->mFlags & vxCommandLineFlag_ParameterOptional), unless the
    ///           new one is optional too. It is declared nevertheless.
    void AddParam(const vxCString& aDescription, vxCommandLineParameterType aType, int aFlags);

    /// Parses the arguments: 0 for success, 1 for an error, -1 when a help switch was found.
    ///
    /// Stops at the first error, which goes to the log and to the console; values found before it
    /// stay readable. With `afDisplayUsage` the usage text goes in front of it, and out alone for help.
    /// Results of an earlier parse are forgotten.
    ///
    /// Cost:     linear in the arguments.
    int Parse(bool afDisplayUsage);

    /// Was the switch or option given? An unknown name is logged; a null one counts as empty.
    bool Found(const char* aName) const;
    /// Also fetches the text of a String option; `aValue` is emptied where it was not given.
    ///
    /// Asserts:  mType == vxCommandLineParameter_String, where it was given; the text is empty then.
    bool Found(const char* aName, vxCString* aValue) const;
    /// Also fetches the value of a Number option; `aValue` becomes 0 where it was not given.
    ///
    /// Asserts:  mType == vxCommandLineParameter_Number, where it was given; the number is 0 then.
    bool Found(const char* aName, int* aValue) const;

    /// Returns the number of positional arguments found.
    unsigned GetParameterCount() const;

    /// Returns a positional argument.
    ///
    /// Asserts:  anIndex < GetParameterCount(); the text is empty then.
    vxCString GetParameter(unsigned anIndex) const;

    /// Forgets which options were given.
    void Reset();

    /// Returns the usage text: one line with everything, then a line for each option.
    vxCString GetUsageString() const;
    /// Prints the usage text on the console.
    void Usage() const;

    /// Returns "str" or "num".
    ///
    /// Asserts:  "Unknown option type" for another type, which gives "str".
    static vxCString GetTypeName(vxCommandLineParameterType aType);

private:
    void AddEntry(vxCommandLineEntryType aKind, const char* aName, const char* aDescription,
                  vxCommandLineParameterType aType, int aFlags);
    void AddParamEntry(const char* aDescription, vxCommandLineParameterType aType, int aFlags);

    vxCommandLineParserData* mParserData;  // owned
};
