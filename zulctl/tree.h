// zulctl tree: what each router runs, as trees, as one graph for Graphviz, or as a JSON row an entity.
#pragma once

#include "zulctl/output.h"
#include "zulctl/session.h"

namespace zul::ctl {

// Returns an exit status; throws a Failure.
int showTrees(const Arguments& arguments, Session& session, Output& output);

} // namespace zul::ctl
