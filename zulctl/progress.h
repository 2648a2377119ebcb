// One line on a terminal that says how far long uploads and answers are, rewritten in place. Nothing appears
// for a command that is soon done, nor where standard error is no terminal.
#pragma once

#include "fleet/fleet.h"

#include <map>
#include <string>

namespace zul::ctl {

class ProgressLine {
public:
    ProgressLine();
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Empty where nothing is to be shown. Must not outlive this.
    fleet::OnProgress callback();
    // Before anything else is written to the terminal.
    void clear();

private:
    void show(const fleet::Progress& progress);

    bool isTerminal_;
    fleet::Clock::time_point next_;                  // when the line is written again
    std::map<std::string, fleet::Progress> answers_; // by router
    std::size_t shown_ = 0;                          // columns, at most
};

} // namespace zul::ctl
