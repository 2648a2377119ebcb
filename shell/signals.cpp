// A handler may only do what is safe between any two instructions: an atomic, a semaphore, system calls.
#include "shell/signals.h"

#include "remote_config/exchange.h"
#include "shell/instance.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr int SIGNALS[] = {SIGTERM, SIGHUP, SIGINT, SIGABRT, SIGPIPE};

// The handler's write to a pipe without a reader raises SIGPIPE, whose handler would write again: left
// pending, it would go round for ever.
void takeBackBrokenPipe() {
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    constexpr timespec NOW{0, 0};
    sigtimedwait(&brokenPipe, nullptr, &NOW);
}

// Whether a write would not block: a full pipe, or a stopped terminal, would hold the handler up.
bool hasRoom(int descriptor) {
    pollfd wanted{.fd = descriptor, .events = POLLOUT, .revents = 0};
    return poll(&wanted, 1, 0) > 0 && (wanted.revents & POLLOUT) != 0;
}

} // namespace

int ROUTERShell_setSignalHandler(int signalNumber, void (*handler)(int)) {
    struct sigaction action {};
    if (sigaction(signalNumber, nullptr, &action) != 0) {
        return -1;
    }
    if (action.sa_handler == SIG_IGN) {
        return 0;
    }
    action = {};
    action.sa_handler = handler;
    sigfillset(&action.sa_mask);
    return sigaction(signalNumber, &action, nullptr) == 0 ? 0 : -1;
}

void ROUTERShell_terminateWithSignal(int /*signalNumber*/) {
    const int savedError = errno;
    ROUTERRemoteConfigClient_abortResponseWait(&ROUTERShell_g_instance.client);
    if (hasRoom(STDOUT_FILENO) && ::write(STDOUT_FILENO, "\n", 1) < 0 && errno == EPIPE) {
        takeBackBrokenPipe();
    }
    errno = savedError;
}

bool ROUTERShell_installSignalHandlers() {
    return std::all_of(std::begin(SIGNALS), std::end(SIGNALS), [](int signalNumber) {
        return ROUTERShell_setSignalHandler(signalNumber, ROUTERShell_terminateWithSignal) == 0;
    });
}

namespace zul::shell {

WholeOutput::WholeOutput() {
    sigset_t handled;
    sigemptyset(&handled);
    std::ranges::for_each(SIGNALS, [&handled](int signalNumber) { sigaddset(&handled, signalNumber); });
    pthread_sigmask(SIG_BLOCK, &handled, &previous_);
}

WholeOutput::~WholeOutput() {
    std::fflush(stdout);
    std::clearerr(stdout); // output that is full or closed now may work again later
    pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
}

} // namespace zul::shell
