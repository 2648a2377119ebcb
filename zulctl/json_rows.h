// What --json prints, a row each: one line of valid JSON, whatever the bytes in it. docs/zulctl.schema.json
// says which rows there are.
#pragma once

#include "fleet/fleet.h"

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

// Without a line feed.
std::string jsonRow(const fleet::Result& result);
std::string jsonRow(const fleet::RouterRow& row);
std::string jsonRow(const std::string& router, const fleet::Cause& cause);
std::string jsonRow(const EntityRow& row);

// The name of a command as it is typed.
std::string nameOf(fleet::CommandKind kind);

} // namespace zul::ctl
