// What --json prints, a row each: one line of valid JSON, whatever the bytes in it. docs/zulctl.schema.json
// says which rows there are.
#pragma once

#include "fleet/fleet.h"
#include "plan/check/check.h"
#include "plan/compare/planner.h"

#include <string>

namespace zul::ctl {

// An entity of a router's configuration.
struct EntityRow {
    std::string router{};
    std::string guid{};
    std::string path{}; // empty for the service
    std::string kind{}; // its tag
    std::string name{};
    const char* state = ""; // "enabled", "disabled", "unknown"
};

// How an apply or a restore ended.
struct ApplyEnd {
    std::string router;
    const char* outcome; // of docs/zulctl.schema.json
    std::string message;
    std::string backup; // a file; empty when none was written
};

// Without a line feed.
std::string jsonRow(const fleet::Result& result);
std::string jsonRow(const fleet::RouterRow& row);
std::string jsonRow(const std::string& router, const fleet::Cause& cause);
std::string jsonRow(const EntityRow& row);
std::string jsonRow(const std::string& file, int line, const plan::Finding& finding);
std::string jsonRow(const plan::Difference& difference);
std::string jsonRow(const ApplyEnd& end);
// A step of a plan: `purpose` is a word of the schema, `number` counts from 1.
std::string jsonRow(const std::string& router, const plan::Step& step, const char* purpose,
                    std::size_t number);

// The name of a command as it is typed.
std::string nameOf(fleet::CommandKind kind);
// The command that a step of a plan is.
fleet::CommandKind kindOf(plan::Step::Kind kind);

} // namespace zul::ctl
