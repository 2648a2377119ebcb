// What is typed, byte by byte or line by line, waited for together with signals. One thread.
#pragma once

#include <functional>
#include <string>

namespace zul::ctl::prompt {

// How a read went. STOPPED: a signal asks for an end of it. REDRAW: one that changes what a terminal shows.
// HANG_UP: the terminal is gone; one that is there ends its input with a key. FAILED: `errno` says why.
enum class Got { INPUT, END, STOPPED, REDRAW, HANG_UP, FAILED };

class Input {
public:
    // `signalled` is asked whenever `wakeFd` becomes readable, has to make it unreadable, and returns
    // STOPPED, REDRAW, or INPUT to read on. Neither descriptor is closed here.
    Input(int fd, int wakeFd, std::function<Got()> signalled)
        : fd_(fd), wakeFd_(wakeFd), signalled_(std::move(signalled)) {}

    Got readByte(char& byte);
    // More is there without a wait, as when lines are pasted.
    bool isPending() const;
    // A terminal that is gone; a pipe whose writers are.
    bool isHungUp() const;
    // A line without its line feed; the last one before the END may have none. A line too long to be one is
    // cut. What a read that FAILED cuts off is no line.
    Got readLine(std::string& line);

private:
    Got wait();

    int fd_;
    int wakeFd_;
    std::function<Got()> signalled_;
    std::string block_; // read and not yet returned, by readLine
};

} // namespace zul::ctl::prompt
