// Short names of the kinds of commands and answers that the tests use.
#pragma once

#include "practice_router/actions/router.h"

using Kind = ZUL_RoutingService_Administration_CommandKind;
constexpr auto LOAD = ZUL_ROUTING_SERVICE_COMMAND_LOAD;
constexpr auto UPDATE = ZUL_ROUTING_SERVICE_COMMAND_UPDATE;
constexpr auto PAUSE = ZUL_ROUTING_SERVICE_COMMAND_PAUSE;
constexpr auto RESUME = ZUL_ROUTING_SERVICE_COMMAND_RESUME;
constexpr auto ENABLE = ZUL_ROUTING_SERVICE_COMMAND_ENABLE;
constexpr auto DISABLE = ZUL_ROUTING_SERVICE_COMMAND_DISABLE;
constexpr auto CREATE = ZUL_ROUTING_SERVICE_COMMAND_CREATE;
constexpr auto DELETE = ZUL_ROUTING_SERVICE_COMMAND_DELETE;
constexpr auto GET = ZUL_ROUTING_SERVICE_COMMAND_GET;
constexpr auto ADD_PEER = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER;
constexpr auto OK = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
constexpr auto ERROR = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ERROR;
constexpr auto NOT_FOUND = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ENTITY_NOT_FOUND;
