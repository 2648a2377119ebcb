// What the senders share: filling the request's name members within their bounds, and refusing an argument.
#pragma once

#include "middleware/base/strings.h"
#include "remote_config/client.h"
#include "remote_config/log.h"
#include "remote_config/result.h"

#include <cstring>

// Names of this length and more are refused: one character below the wire's bound, on purpose.
constexpr std::size_t ROUTER_NAME_LIMIT = 255;

inline bool isTooLong(const char* name, std::size_t limit) {
    return strnlen(name, limit) >= limit;
}

// Reports a refused argument: a warning in the log, and the same text for the operator. Always false.
inline bool refuseArgument(const char* context, const char* message, ROUTERRemoteConfigResult* result) {
    remoteConfigWarning(context, ZUL_LOG_ANY_FAILURE_s, message);
    ZULString_copyBounded(result->textBuffer, sizeof(result->textBuffer), message);
    return false;
}

// `name` has been checked against the bound.
inline void setName(char* member, const char* name) {
    ZULString_copyBounded(member, admin::ENTITY_NAME_BOUND + 1, name);
}
