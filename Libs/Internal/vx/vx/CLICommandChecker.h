#pragma once

#include <libteskTools/Array.h>

#include "vx/Api.h"
#include "vx/CLIParameter.h"
#include "vx/CString.h"
#include "vx/StringList.h"

class vxCLIParameterChecker;

/// Checks the words typed behind a command's name against its declared parameters.
///
/// Owner:    the command set it is declared in; it owns its parameter checkers.
/// Threads:  one at a time.
class VX_EXPORT vxCLICommandChecker {
public:
    /// `aCommands` are all names of the command.
    vxCLICommandChecker(const vxCString& aHelp, const vxCSVStringList& aCommands);
    ~vxCLICommandChecker();
    vxCLICommandChecker(const vxCLICommandChecker&) = delete;
    vxCLICommandChecker& operator=(const vxCLICommandChecker&) = delete;

    /// Appends a parameter. Optional ones belong behind the mandatory ones.
    ///
    /// Asserts:  theCLIParameterChecker != NULL; nothing is appended then.
    /// Owner:    the command checker.
    void Add(vxCLIParameterChecker* theCLIParameterChecker);

    /// Counts the mandatory and optional parameters, once all are added.
    void Finalize();

    /// Checks the typed text; returns the empty text, or one error line without a line feed.
    ///
    /// On success `aParameters` gets one retained vxCLIParameter per declared parameter, those that
    /// were left out with their defaults; after an error it may hold some of them. A free-form
    /// parameter takes the rest of the line as it stands, quotes kept, and the empty text where
    /// nothing is left. `anArguments` keeps what was not looked at.
    ///
    /// Asserts:  aParameters != NULL; nothing is checked then, and the result is empty.
    /// Owner:    the array, if it comes from vxCLIParameter::NewArray().
    /// Cost:     linear in the text.
    vxCString Validate(vxCString& anArguments, vxArray* aParameters);

    /// Returns the parameters and the help: `count[1,10] (mode) : set the mode`.
    vxCString GetHelp() const;

    /// Returns all names of the command.
    const vxCSVStringList& GetCommandList() const { return mCommandList; }

    /// Can the two be overloads of one name? Then a typed line tells them apart by its first word.
    ///
    /// That holds when one of them has no parameters and the first of the other is mandatory, when
    /// both begin with different literals, or when one begins with a literal that is no number and
    /// the other with a number. Everything else counts as a conflict, and so does a null checker.
    static bool NotConflicting(const vxCLICommandChecker* aLeft, const vxCLICommandChecker* aRight);

    /// As NotConflicting(), with this checker as the one named first in each rule.
    bool NotConflictingWith(const vxCLICommandChecker* anOther) const;

private:
    const vxCLIParameterChecker* CheckerAt(size_t anIndex) const;

    vxCString mHelp;                    // one line
    vxArray* mParameters;               // owned vxCLIParameterChecker
    size_t mNonOptionalParameterCount;  // set by Finalize()
    size_t mOptionalParameterCount;     // set by Finalize()
    vxCSVStringList mCommandList;       // all names
};
