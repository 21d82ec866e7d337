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
    return !mLines.HasEnded() && !mLines.HasLine() && !mScanApplet.IsScanning() && !IsAnswerDue();
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
    for (int i = 0; i < kConsole_LinesPerStep && !IsHeld() && ExecuteNextLine(); ++i) {}
    if (IsHeld()) {
        return vxAppletMsg_None;
    }
    if (mLines.HasLine()) {
        return vxAppletMsg_LoopAgain;
    }
    if (IsDone()) {
        mConsole.Finish();
        mEnd();
    } else {
        mConsole.ShowPrompt();
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

// Returns false when there is no line.
bool ConsoleApplet::ExecuteNextLine() {
    std::string theLine;
    const LineReader::Result theResult = mLines.NextLine(theLine);
    if (theResult == LineReader::Result::None) {
        return false;
    }
    mConsole.LineWasTyped();
    bool theSucceeded = false;
    if (theResult == LineReader::Result::TooLong) {
        mConsole.PrintError("ERROR: The line is too long");
    } else if (theResult == LineReader::Result::HasNul) {
        mConsole.PrintError("ERROR: The line holds a NUL byte");
    } else {
        theSucceeded = mInterpreter.Execute(vxCString(theLine.data(), theLine.size()));
    }
    mfFailed = mfFailed || !theSucceeded;
    return true;
}

}  // namespace vxmedia
