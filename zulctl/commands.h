// What each command does, from arguments to an exit status; what commands in other files share.
#pragma once

#include "zulctl/arguments.h"

namespace zul::ctl {

// `wakeup` may be interrupted at any moment.
int runCommand(const Arguments& arguments, fleet::Wakeup& wakeup);
class Session;
// One of several commands of a session.
int runCommand(const Arguments& arguments, Session& session);

// Throws a Failure if the command may not be sent to a router of one of these names.
void refuseBadNames(const fleet::Command& command, const std::vector<std::string>& routers);
// The names that ROUTERS stands for. Throws a Failure if there is none.
std::vector<std::string> findRouters(fleet::Fleet& fleet, const Arguments& arguments);

} // namespace zul::ctl
