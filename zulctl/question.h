// A question to the operator.
#pragma once

#include "fleet/wakeup.h"

#include <string>

namespace zul::ctl {

// Asks on standard error and reads a line of standard input. An interrupt ends the wait for it: that is no.
bool isYes(const std::string& question, const fleet::Wakeup& wakeup);

} // namespace zul::ctl
