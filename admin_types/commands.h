// What a request of each command holds: its kind, the branch of the union that the kind selects, and how long
// a name the client puts there. One row a kind; the same in both modules. The union's labels follow from it.
#pragma once

#include "admin_types/modules.h"

#include <cstddef>
#include <iterator>

namespace admin {

// The union's branches, by their member ids.
enum class CommandBranch : std::uint32_t { ENTITY_DESC = 1, DUMMY = 2, ENTITY_NAME = 3, PEER_DESC = 4 };

struct Command {
    ZUL_RoutingService_Administration_CommandKind kind;
    CommandBranch branch;
    std::size_t longestName = ENTITY_NAME_BOUND;     // characters; longer ones are not sent
    const char* nameTooLong = "entityName too long"; // the reason given for that
};

// The longest name of a router, and of some entities.
constexpr std::size_t SHORTER_NAME = ENTITY_NAME_BOUND - 1; // oddity 5

// The order of the rows is the order of the labels in the union's type description.
// clang-format off
inline constexpr Command COMMANDS[] = {
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_LOAD,     .branch = CommandBranch::ENTITY_DESC,
     .nameTooLong = "cfgName too long"},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE, .branch = CommandBranch::DUMMY},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_UNLOAD,   .branch = CommandBranch::DUMMY}, // oddity 22
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_INSERT,   .branch = CommandBranch::ENTITY_DESC},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_UPDATE,   .branch = CommandBranch::ENTITY_DESC},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_PAUSE,    .branch = CommandBranch::ENTITY_NAME},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_RESUME,   .branch = CommandBranch::ENTITY_NAME},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_ENABLE,   .branch = CommandBranch::ENTITY_NAME},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_DISABLE,  .branch = CommandBranch::ENTITY_NAME},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_CREATE,   .branch = CommandBranch::ENTITY_DESC,
     .longestName = SHORTER_NAME, .nameTooLong = "parentEntityName too long"},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_DELETE,   .branch = CommandBranch::ENTITY_NAME, .longestName = SHORTER_NAME},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_SAVE,     .branch = CommandBranch::DUMMY},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_GET,      .branch = CommandBranch::DUMMY},
    {.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .branch = CommandBranch::PEER_DESC,
     .longestName = SHORTER_NAME, .nameTooLong = "domainRouteName too long"},
};
// clang-format on

// The row of a kind, or null for a value that is none.
constexpr const Command* findCommand(std::int32_t kind) {
    const auto* found = std::ranges::find(COMMANDS, kind, &Command::kind);
    return found != std::end(COMMANDS) ? found : nullptr;
}

// Where the branch of a command holds its name, or null: a member of the union, which owns it.
constexpr char* findName(const auto& branches, CommandBranch branch) {
    switch (branch) {
    case CommandBranch::ENTITY_DESC:
        return branches.entity_desc.name;
    case CommandBranch::ENTITY_NAME:
        return branches.entity_name;
    case CommandBranch::PEER_DESC:
        return branches.peer_desc.domain_route_name;
    case CommandBranch::DUMMY:
        break;
    }
    return nullptr;
}

} // namespace admin
