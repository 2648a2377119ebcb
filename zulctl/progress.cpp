// Blanks clear the line, as not every terminal knows an escape sequence for it.
#include "zulctl/progress.h"

#include "plan/document/text.h"
#include "zulctl/output.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace zul::ctl {

namespace {

constexpr auto SOON = std::chrono::milliseconds(500);
constexpr auto PERIOD = std::chrono::milliseconds(100);
constexpr std::size_t USUAL_WIDTH = 80;
constexpr std::size_t LONGEST_NAME = 30;

std::string megabytes(std::size_t bytes) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f MB", static_cast<double>(bytes) / 1e6);
    return text.data();
}

std::size_t width() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : USUAL_WIDTH;
}

} // namespace

ProgressLine::ProgressLine() : isTerminal_(isatty(STDERR_FILENO) != 0), next_(fleet::Clock::now() + SOON) {}

fleet::OnProgress ProgressLine::callback() {
    return isTerminal_ ? [this](const fleet::Progress& progress) { show(progress); } : fleet::OnProgress();
}

void ProgressLine::show(const fleet::Progress& progress) {
    if (progress.total == 0) {
        answers_[progress.router] = progress;
    }
    const auto now = fleet::Clock::now();
    if (now < next_) {
        return;
    }
    std::string text = plan::shortened(oneLine(progress.router), LONGEST_NAME) + ": ";
    if (progress.total > 0) {
        text += megabytes(progress.bytes) + " of " + megabytes(progress.total) + " sent";
    } else {
        std::size_t bytes = 0;
        std::size_t parts = 0;
        for (const auto& [router, answer] : answers_) {
            bytes += answer.bytes;
            parts += answer.parts;
        }
        if (answers_.size() > 1) {
            text = std::to_string(answers_.size()) + " routers: ";
        }
        text +=
            megabytes(bytes) + " received in " + std::to_string(parts) + (parts == 1 ? " part" : " parts");
    }
    clear();
    text.resize(plan::wholeCharacters(text, std::min(text.size(), width() - 1)));
    std::fprintf(stderr, "\r%s", text.c_str());
    std::fflush(stderr);
    shown_ = text.size();
    next_ = now + PERIOD;
}

void ProgressLine::clear() {
    if (shown_ > 0) {
        std::fprintf(stderr, "\r%s\r", std::string(shown_, ' ').c_str());
        std::fflush(stderr);
        shown_ = 0;
    }
}

} // namespace zul::ctl
