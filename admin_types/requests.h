// Filling a request by the row of its command: what every client of the routers does before it sends one.
#pragma once

#include "admin_types/commands.h"
#include "admin_types/records.h"
#include "middleware/base/strings.h"

#include <cstring>

namespace admin {

// Why names are too long for a request of the command; null when they are not. `name` is empty where the
// command carries none.
inline const char* refuseNames(const Command& command, const char* router, const char* name) {
    const auto isLongerThan = [](std::size_t longest, const char* text) {
        return strnlen(text, longest + 1) > longest;
    };
    return isLongerThan(SHORTER_NAME, router)        ? "target router name too long"
           : isLongerThan(command.longestName, name) ? command.nameTooLong
                                                     : nullptr;
}

// Writes target, kind and name, which must not be too long.
inline void fillNames(ZUL_RoutingService_Administration_CommandRequest& request, const Command& command,
                      const char* router, const char* name) {
    request.command._d = command.kind;
    ZULString_copyBounded(request.target_router, ENTITY_NAME_BOUND + 1, router);
    if (char* member = findName(request.command._u, command.branch)) {
        ZULString_copyBounded(member, ENTITY_NAME_BOUND + 1, name);
    }
}

} // namespace admin
