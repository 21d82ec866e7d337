// Standard input is read only when select says so and when no line is left to execute, so a program
// that writes into the pipe is held back and nothing piles up.

#include "ConsoleApplet.h"

#include <unistd.h>

#include <cerrno>

namespace vxmedia {

namespace {

constexpr int kConsole_LinesPerStep = 32;

}  // namespace

void ConsoleApplet::AddLines(const std::string& aText) {
    mLines.Append(aText.data(), aText.size());
    mLines.Append("\n", 1);
}

void ConsoleApplet::EndLines() {
    mLines.End();
    AppletWakeUp();
}

bool ConsoleApplet::WantsInput() const {
    return !mLines.HasEnded() && !mLines.HasLine() && !HasLine();
}

void ConsoleApplet::LateAnswerCame(bool afOK) {
    --mLateAnswers;
    mfFailed = mfFailed || !afOK;
    AppletWakeUp();
}

void ConsoleApplet::InputIsReadable() {
    mfReadable = true;
    AppletWakeUp();
}

// A few lines in each step: timers fire between them.
vxAppletMsg ConsoleApplet::AppletLoop(vxAppletMsg) {
    if (mfReadable) {
        mfReadable = false;
        ReadInput();
    }
    for (int i = 0; i < kConsole_LinesPerStep && ExecuteNextLine(); ++i) {}
    if (mInterpreter.HasExited()) {
        return vxAppletMsg_None;
    }
    TakeNextLine();
    if (HasLine()) {
        return MayExecute() ? vxAppletMsg_LoopAgain : vxAppletMsg_None;
    }
    if (!mLines.HasEnded()) {
        mConsole.ShowPrompt();
    } else if (!IsHeld()) {
        mConsole.Finish();
        mEnd();
    }
    return vxAppletMsg_None;
}

void ConsoleApplet::ReadInput() {
    char theBytes[65536];
    const ssize_t theCount = read(STDIN_FILENO, theBytes, sizeof(theBytes));
    if (theCount > 0) {
        mLines.Append(theBytes, static_cast<size_t>(theCount));
    } else if (theCount == 0 || (errno != EINTR && errno != EAGAIN)) {
        mLines.End();
    }
}

void ConsoleApplet::TakeNextLine() {
    if (!HasLine()) {
        mNextResult = mLines.NextLine(mNextLine);
    }
}

// Whether the line that was taken may be executed now. One that is refused anyway waits as others do.
bool ConsoleApplet::MayExecute() const {
    return !IsHeld() || (mNextResult == LineReader::Result::Line &&
                         mInterpreter.IsImmediate(vxCString(mNextLine.data(), mNextLine.size())));
}

// Returns false when there is no line, or none that may be executed now.
bool ConsoleApplet::ExecuteNextLine() {
    if (mInterpreter.HasExited()) {
        return false;
    }
    TakeNextLine();
    if (!HasLine() || !MayExecute()) {
        return false;
    }
    mConsole.LineWasTyped();
    mfFailed = !Execute() || mfFailed;
    return true;
}

bool ConsoleApplet::Execute() {
    const LineReader::Result theResult = mNextResult;
    mNextResult = LineReader::Result::None;
    if (theResult == LineReader::Result::TooLong) {
        mConsole.PrintError("ERROR: The line is too long");
        return false;
    }
    if (theResult == LineReader::Result::HasNul) {
        mConsole.PrintError("ERROR: The line holds a NUL byte");
        return false;
    }
    return mInterpreter.Execute(vxCString(mNextLine.data(), mNextLine.size()));
}

}  // namespace vxmedia
