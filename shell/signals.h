// Signals: blocked in every thread of the middleware, handled on the main thread, where each ends the wait in
// progress and nothing else.
#pragma once

#include <csignal>

// Installs the handler, without automatic restart of interrupted calls and with all signals blocked while it
// runs. A signal that is ignored stays ignored. 0, or -1 on failure.
int ROUTERShell_setSignalHandler(int signalNumber, void (*handler)(int));

// The handler: aborts the running wait and writes one line feed, if there is room for it. Uses system calls
// and a semaphore only.
void ROUTERShell_terminateWithSignal(int signalNumber);

// Installs it for termination, hang-up, interrupt, abort and broken pipe. False at the first failure.
bool ROUTERShell_installSignalHandlers();

namespace zul::shell {

// What is printed to standard output while it lives goes out as a whole: the handled signals wait until all
// is flushed. One that interrupts a write would leave a hole.
class WholeOutput {
public:
    WholeOutput();
    ~WholeOutput();
    WholeOutput(const WholeOutput&) = delete;
    WholeOutput& operator=(const WholeOutput&) = delete;

private:
    sigset_t previous_;
};

} // namespace zul::shell
