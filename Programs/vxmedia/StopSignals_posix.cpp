// The handler does what is safe at any moment: it notes the number and writes to the selector's event.

#include "StopSignals.h"

#include <atomic>
#include <cerrno>
#include <csignal>

namespace vxmedia {

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

std::atomic<int> sSignal(0);
std::atomic<vxSelect*> sSelect(nullptr);

void NoteSignal(int aSignal) {
    const int theErrno = errno;
    sSignal = aSignal;
    vxSelect* theSelect = sSelect;
    if (theSelect != nullptr) {
        theSelect->Signal();
    }
    errno = theErrno;
}

// Answers that are still to come after the first one that nobody reads must not end the program.
int FlagsOf(int aSignal) {
    return aSignal == SIGPIPE ? SA_RESTART : SA_RESTART | static_cast<int>(SA_RESETHAND);
}

void Handle(int aSignal) {
    struct sigaction theAction = {};
    if (sigaction(aSignal, nullptr, &theAction) != 0 || theAction.sa_handler == SIG_IGN) {
        return;
    }
    theAction.sa_handler = NoteSignal;
    theAction.sa_flags = FlagsOf(aSignal);
    sigaction(aSignal, &theAction, nullptr);
}

void EndHandling(int aSignal) {
    struct sigaction theAction = {};
    if (sigaction(aSignal, nullptr, &theAction) == 0 && theAction.sa_handler == NoteSignal) {
        signal(aSignal, SIG_DFL);
    }
}

}  // namespace

StopSignals::StopSignals(vxSelect& aSelect) {
    sSelect = &aSelect;
    for (const int theSignal : kSignals) {
        Handle(theSignal);
    }
}

StopSignals::~StopSignals() {
    for (const int theSignal : kSignals) {
        EndHandling(theSignal);
    }
    sSelect = nullptr;
}

bool StopSignals::HasCome() {
    return sSignal != 0;
}

void StopSignals::EndBySignal() {
    if (HasCome()) {
        raise(sSignal);
    }
}

}  // namespace vxmedia
