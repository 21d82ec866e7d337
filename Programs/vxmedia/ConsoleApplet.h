#pragma once

#include "Console.h"
#include "Interpreter.h"
#include "LineReader.h"
#include "ScanApplet.h"
#include "vx/Applet.h"

namespace vxmedia {

/// Reads command lines and executes them one by one. At a terminal they are answered at once; else
/// each waits until the scan before it has ended, but for those that ask about scans.
///
/// Where nobody sits at a terminal, a line also waits for the answers to those before it that come
/// later.
///
/// Lines come from standard input, or were given on the program's command line; then standard input
/// is not read.
///
/// Threads:  one at a time.
class ConsoleApplet : public vxApplet {
public:
    ConsoleApplet(Console& aConsole, Interpreter& anInterpreter, ScanApplet& aScanApplet)
        : mConsole(aConsole), mInterpreter(anInterpreter), mScanApplet(aScanApplet) {}

    /// Sets what is called when the last line has been executed.
    void SetEndCallback(std::function<void()> aCallback) { mEnd = std::move(aCallback); }

    /// Adds lines to be executed instead of those of standard input.
    void AddLines(const std::string& aText);

    /// Ends the lines that were added.
    void EndLines();

    /// Returns whether standard input is to be waited for.
    bool WantsInput() const;

    /// Tells that standard input can be read without waiting.
    void InputIsReadable();

    /// Returns whether a line has failed.
    bool HasFailed() const { return mfFailed; }

    /// Counts a failure that belongs to no line.
    void NoteFailure() { mfFailed = true; }

    /// Tells that a line was executed whose answer comes later.
    void LateAnswerComes() { ++mLateAnswers; }

    /// Tells that one of those answers was given, and whether the line has succeeded.
    void LateAnswerCame(bool afOK);

    vxAppletMsg AppletLoop(vxAppletMsg aMsg) override;

private:
    void ReadInput();
    void TakeNextLine();
    bool ExecuteNextLine();
    bool Execute();
    /// Whether a scan, or an answer that is due, must come to its end before lines are executed or the
    /// end of the input counts.
    bool IsHeld() const {
        return !mConsole.IsTerminal() && (mScanApplet.IsScanning() || mLateAnswers > 0);
    }
    bool MayExecute() const;
    bool HasLine() const { return mNextResult != LineReader::Result::None; }

    Console& mConsole;
    Interpreter& mInterpreter;
    ScanApplet& mScanApplet;
    std::function<void()> mEnd;
    LineReader mLines;
    LineReader::Result mNextResult = LineReader::Result::None;
    std::string mNextLine;          // to be executed next, if mNextResult says so
    unsigned int mLateAnswers = 0;  // that are still to come
    bool mfReadable = false;        // one read will not wait
    bool mfFailed = false;
};

}  // namespace vxmedia
