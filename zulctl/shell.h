// zulctl shell: every command at a prompt, or a line each from a file or pipe, with one participant for all.
#pragma once

#include "zulctl/arguments.h"

namespace zul::ctl {

// Returns the exit status of the last command, or that of an interrupt when a signal ended it. The options in
// `defaults` hold for each line that has none of its own.
int runShell(const Arguments& defaults, fleet::Wakeup& wakeup);

} // namespace zul::ctl
