// zulctl check: configuration documents held against everything that a router asks of them, without any DDS.
#pragma once

#include "zulctl/output.h"
#include "zulctl/session.h"

namespace zul::ctl {

// Of each file in turn; "-" is standard input. Returns the exit status.
int checkFiles(const Arguments& arguments, fleet::Wakeup& wakeup, Output& output);

} // namespace zul::ctl
