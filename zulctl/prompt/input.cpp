// A signal is looked at before what has been typed: whoever interrupts does not mean what came before.
#include "zulctl/prompt/input.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace zul::ctl::prompt {

namespace {

constexpr std::size_t LONGEST_LINE = 64U << 20; // bytes

} // namespace

Got Input::wait() {
    for (;;) {
        std::array<pollfd, 2> fds{
            {{.fd = wakeFd_, .events = POLLIN, .revents = 0}, {.fd = fd_, .events = POLLIN, .revents = 0}}};
        if (poll(fds.data(), fds.size(), -1) < 0) {
            if (errno != EINTR) {
                return Got::FAILED;
            }
            continue;
        }
        if (fds[0].revents != 0) {
            if (const Got got = signalled_(); got != Got::INPUT) {
                return got;
            }
        } else if (fds[1].revents != 0) {
            return Got::INPUT;
        }
    }
}

Got Input::readByte(char& byte) {
    for (;;) {
        if (const Got got = wait(); got != Got::INPUT) {
            return got;
        }
        const ssize_t count = read(fd_, &byte, 1);
        if (count >= 0 || (errno != EINTR && errno != EAGAIN)) {
            return count == 1 ? Got::INPUT : Got::END;
        }
    }
}

bool Input::isPending() const {
    pollfd input{.fd = fd_, .events = POLLIN, .revents = 0};
    return poll(&input, 1, 0) == 1;
}

bool Input::isHungUp() const {
    pollfd input{.fd = fd_, .events = 0, .revents = 0};
    return poll(&input, 1, 0) == 1 && (input.revents & POLLHUP) != 0;
}

Got Input::readLine(std::string& line) {
    line.clear();
    for (;;) {
        const std::size_t end = block_.find('\n');
        line.append(block_, 0, std::min(end, LONGEST_LINE - line.size()));
        if (end != std::string::npos) {
            block_.erase(0, end + 1);
            return Got::INPUT;
        }
        std::array<char, 65536> bytes;
        const Got got = wait();
        ssize_t count = -1;
        if (got == Got::INPUT) {
            count = read(fd_, bytes.data(), bytes.size());
            if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
                count = 0;
            } else if (count <= 0) {
                block_.clear();
                return count < 0 ? Got::FAILED : line.empty() ? Got::END : Got::INPUT;
            }
        }
        if (got == Got::STOPPED || got == Got::FAILED) {
            return got;
        }
        block_.assign(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

} // namespace zul::ctl::prompt
