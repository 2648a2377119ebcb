// The commands that compare a router with a file, and bring it to what a file says.
#pragma once

#include "zulctl/arguments.h"
#include "zulctl/output.h"
#include "zulctl/session.h"

namespace zul::ctl {

// Each returns an exit status, or throws a Failure.
int diff(const Arguments& arguments, Session& session, Output& output);
// `apply` and `restore`. What was sent is put back when a command fails, or at an interrupt.
int apply(const Arguments& arguments, Session& session, Output& output);

} // namespace zul::ctl
