// Signals that ask for an end: SIGINT, SIGTERM, SIGHUP. They count from the first line of main to the last.
#pragma once

#include "fleet/wakeup.h"

#include <termios.h>

namespace zul::ctl {

// From here a signal ends the program at once; and from a call with a wakeup until one with null it ends the
// wait, and only a second one the program. First thing in main.
void handleSignals();
void interruptOnSignals(fleet::Wakeup* wakeup);

// While there is one, SIGINT only ever ends a wait. What signals ask of a prompt can be waited for, and the
// terminal of standard input is as it was found when the program stops or is ended by a second signal. One at
// a time.
class PromptSignals {
public:
    PromptSignals(); // throws std::system_error
    ~PromptSignals();
    PromptSignals(const PromptSignals&) = delete;
    PromptSignals& operator=(const PromptSignals&) = delete;

    int fd() const; // becomes readable with each signal
    void clear();   // makes it unreadable
    // SIGTERM or SIGHUP has come.
    bool isEnding() const;
    // The size of the terminal has changed, or the program goes on after it was stopped.
    bool takeRedraw();
};

// For a question in the middle of a command: meanwhile the terminal shows what is typed and edits lines, at a
// prompt as anywhere.
class UsualTerminal {
public:
    UsualTerminal();
    ~UsualTerminal();
    UsualTerminal(const UsualTerminal&) = delete;
    UsualTerminal& operator=(const UsualTerminal&) = delete;

private:
    bool isChanged_ = false;
    termios before_;
};

} // namespace zul::ctl
