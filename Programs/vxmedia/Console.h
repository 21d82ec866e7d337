#pragma once

#include "vx/CString.h"

namespace vxmedia {

/// Where the program writes to: complete lines, and a prompt where somebody sits at a terminal.
///
/// Text that comes while the prompt waits, from a timer or a scan, starts on a line of its own.
///
/// Threads:  one at a time.
class Console {
public:
    explicit Console(bool afPrompts) : mfPrompts(afPrompts) {}

    /// Returns whether somebody sits at a terminal.
    bool IsTerminal() const { return mfPrompts; }

    /// Writes text that ends with a line feed; nothing when it is empty.
    void Print(const vxCString& aText);

    /// Writes one line. The text must be safe for a terminal.
    void PrintLine(const vxCString& aText) { Print(aText + "\n"); }

    /// Writes an error line: what is not safe for a terminal is escaped.
    void PrintError(const vxCString& anError);

    /// Sets the prompt.
    void SetPrompt(const vxCString& aPrompt) { mPrompt = aPrompt; }

    /// Shows the prompt, unless it is there already or nobody needs one.
    void ShowPrompt();

    /// Tells that the user has ended the prompt's line.
    void LineWasTyped() { mfPromptShown = false; }

    /// Ends the prompt's line at the end of the input.
    void Finish();

    /// Returns whether some of what was written has not arrived, as on a full disk.
    bool HasLostText() const;

private:
    const bool mfPrompts;
    vxCString mPrompt;
    bool mfPromptShown = false;
};

}  // namespace vxmedia
