// Signals are blocked except during the wait: one that comes just before it ends it all the same.
#include "zulctl/question.h"

#include "zulctl/signals.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <poll.h>
#include <unistd.h>

namespace zul::ctl {

namespace {

class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;
    const sigset_t& before() const { return before_; }

private:
    sigset_t before_{};
};

// A line without its end; what there is of it when the input ends or an interrupt comes. A failed read counts
// as an empty line.
std::string readLine(const fleet::Wakeup& wakeup) {
    const SignalsBlocked blocked;
    std::string line;
    while (!wakeup.isInterrupted()) {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        if (ppoll(&input, 1, nullptr, &blocked.before()) < 0) {
            if (errno == EINTR) {
                continue;
            }
            break;
        }
        char character = 0;
        const ssize_t count = read(STDIN_FILENO, &character, 1);
        if (count < 0) {
            return {};
        }
        if (count == 0 || character == '\n') {
            break;
        }
        line += character;
    }
    return line;
}

} // namespace

bool isYes(const std::string& question, const fleet::Wakeup& wakeup) {
    const UsualTerminal terminal;
    std::fputs(question.c_str(), stderr);
    std::fflush(stderr);
    const std::string answer = readLine(wakeup);
    return !wakeup.isInterrupted() && (answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes");
}

} // namespace zul::ctl
