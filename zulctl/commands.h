// What each command does, from arguments to an exit status.
#pragma once

#include "zulctl/arguments.h"

namespace zul::ctl {

// `wakeup` may be interrupted at any moment.
int runCommand(const Arguments& arguments, fleet::Wakeup& wakeup);

} // namespace zul::ctl
