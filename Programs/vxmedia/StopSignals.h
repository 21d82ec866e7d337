#pragma once

#include "vx/Select.h"

namespace vxmedia {

/// Turns the signals that end a program into a wish to end, so that it may save first: SIGINT,
/// SIGTERM, SIGHUP, and SIGPIPE, when nobody reads the answers any more.
///
/// What whoever started the program has it ignore stays ignored. A second SIGINT, SIGTERM or SIGHUP
/// ends it at once. There is one object at a time.
///
/// Threads:  one; signals come at any.
class StopSignals {
public:
    /// The selector is set up; it is signalled when a signal comes.
    ///
    /// Owner:    the caller keeps the selector for as long as this object lives.
    explicit StopSignals(vxSelect& aSelect);

    /// Signals that come afterwards end the program at once.
    ~StopSignals();

    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// Returns whether one has come.
    static bool HasCome();

    /// Ends the program by the signal that has come, as whoever started it expects; without one it
    /// does nothing.
    static void EndBySignal();
};

}  // namespace vxmedia
