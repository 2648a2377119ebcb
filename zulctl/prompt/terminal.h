// Whose the terminal of standard input is.
#pragma once

#include <unistd.h>

namespace zul::ctl::prompt {

// False while another job has it: a process that sets it then is stopped. No job has a terminal that is not
// the controlling one. A signal handler may call this.
inline bool isTerminalOurs() {
    const pid_t owner = tcgetpgrp(STDIN_FILENO);
    return owner < 0 || owner == getpgrp();
}

} // namespace zul::ctl::prompt
