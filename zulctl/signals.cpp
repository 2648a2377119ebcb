// What a handler needs is in atomics here. It sets them first and rings after, so whoever is woken sees them.
#include "zulctl/signals.h"

#include "zulctl/arguments.h"
#include "zulctl/prompt/terminal.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace zul::ctl {

namespace {

std::atomic<fleet::Wakeup*> g_wakeup{nullptr};
std::atomic<int> g_bell{-1}; // of the prompt
std::atomic<bool> g_isEnding{false};
std::atomic<bool> g_redraw{false};
termios g_terminal; // as it was found
std::atomic<bool> g_hasTerminal{false};

void setTerminal(const termios& terminal) {
    if (prompt::isTerminalOurs()) {
        tcsetattr(STDIN_FILENO, TCSANOW, &terminal);
    }
}

void restoreTerminal() {
    if (g_hasTerminal.load()) {
        setTerminal(g_terminal);
    }
}

void ring() {
    if (const int bell = g_bell.load(); bell >= 0) {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write(bell, &one, sizeof one);
    }
}

void onEnd(int signalNumber) {
    const int before = errno;
    fleet::Wakeup* wakeup = g_wakeup.load();
    const bool isPrompt = g_bell.load() >= 0;
    const bool asksAgain = isPrompt ? signalNumber != SIGINT && g_isEnding.exchange(true)
                                    : wakeup == nullptr || wakeup->isInterrupted();
    if (wakeup == nullptr || asksAgain) {
        restoreTerminal();
        _exit(EXIT_INTERRUPTED);
    }
    if (g_isEnding.load()) {
        signal(SIGTTOU, SIG_IGN); // it was stopped while the terminal was being set, perhaps
    }
    wakeup->interrupt();
    ring();
    errno = before;
}

// The terminal is given back for as long as the program is stopped.
void onStop(int /*signalNumber*/) {
    const int before = errno;
    termios ours;
    const bool hasOurs = tcgetattr(STDIN_FILENO, &ours) == 0;
    restoreTerminal();
    kill(getpid(), SIGSTOP);
    if (hasOurs) {
        setTerminal(ours);
    }
    g_redraw.store(true);
    ring();
    errno = before;
}

void onRedraw(int /*signalNumber*/) {
    const int before = errno;
    g_redraw.store(true);
    ring();
    errno = before;
}

// What is ignored, as after nohup, stays so. Of system calls that wait it interrupts only poll, or, without
// SA_RESTART, all.
void handle(int signalNumber, void (*handler)(int), int flags = 0) {
    struct sigaction before {};
    sigaction(signalNumber, nullptr, &before);
    if (before.sa_handler != SIG_IGN) {
        struct sigaction action {};
        sigemptyset(&action.sa_mask);
        action.sa_handler = handler;
        action.sa_flags = flags;
        sigaction(signalNumber, &action, nullptr);
    }
}

} // namespace

void handleSignals() {
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        handle(signalNumber, onEnd);
    }
    handle(SIGPIPE, SIG_IGN); // a reader that has gone shows as a write that fails
}

void interruptOnSignals(fleet::Wakeup* wakeup) {
    g_wakeup.store(wakeup);
}

PromptSignals::PromptSignals() {
    const int bell = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (bell < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    }
    g_hasTerminal.store(tcgetattr(STDIN_FILENO, &g_terminal) == 0);
    g_bell.store(bell);
    if (g_hasTerminal.load()) {
        handle(SIGTSTP, onStop, SA_RESTART);
        handle(SIGCONT, onRedraw, SA_RESTART);
        handle(SIGWINCH, onRedraw, SA_RESTART);
        handle(SIGQUIT, SIG_IGN);
    }
}

PromptSignals::~PromptSignals() {
    g_hasTerminal.store(false);
    close(g_bell.exchange(-1));
}

int PromptSignals::fd() const {
    return g_bell.load();
}

void PromptSignals::clear() {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = read(fd(), &count, sizeof count);
}

bool PromptSignals::isEnding() const {
    return g_isEnding.load();
}

bool PromptSignals::takeRedraw() {
    return g_redraw.exchange(false);
}

UsualTerminal::UsualTerminal() {
    if (g_hasTerminal.load() && tcgetattr(STDIN_FILENO, &before_) == 0) {
        isChanged_ = true;
        restoreTerminal();
    }
}

UsualTerminal::~UsualTerminal() {
    if (isChanged_) {
        setTerminal(before_);
    }
}

} // namespace zul::ctl
