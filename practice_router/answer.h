// The answer to one request: its outcome and its text, of any length. The text is UTF-8 and has no line feed
// at its end unless it is a document.
#pragma once

#include "admin_types/modules.h"

#include <string>

struct PracticeAnswer {
    ZUL_RoutingService_Administration_CommandResponseKind kind;
    std::string text;
};

inline PracticeAnswer PracticeAnswer_ok(std::string text) {
    return {ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK, std::move(text)};
}
inline PracticeAnswer PracticeAnswer_error(std::string text) {
    return {ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ERROR, std::move(text)};
}
inline PracticeAnswer PracticeAnswer_notFound(std::string text) {
    return {ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ENTITY_NOT_FOUND, std::move(text)};
}
