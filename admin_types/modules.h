// The two administration modules: their enumerations, and what is particular to each. Everything else about
// the administration types is described once, for both, in records.h and descriptions.h.
#pragma once

#include "middleware/base/basic_types.h"

#include <cstdint>

// Enumerators as (name, value) pairs. No command has the value 0, so that a record of zeroes is not a
// valid one.
#define ZUL_ADMINISTRATION_COMMAND_KINDS(X)                                                                  \
    X(LOAD, 1)                                                                                               \
    X(UNLOAD, 2)                                                                                             \
    X(INSERT, 3)                                                                                             \
    X(UPDATE, 4)                                                                                             \
    X(PAUSE, 5)                                                                                              \
    X(RESUME, 6)                                                                                             \
    X(ENABLE, 7)                                                                                             \
    X(DISABLE, 8)                                                                                            \
    X(ANNOUNCE, 9)                                                                                           \
    X(CREATE, 10)                                                                                            \
    X(DELETE, 11)                                                                                            \
    X(SAVE, 12)                                                                                              \
    X(GET, 13)                                                                                               \
    X(ADD_PEER, 14)

#define ZUL_ADMINISTRATION_RESPONSE_KINDS(X)                                                                 \
    X(OK, 0)                                                                                                 \
    X(ANNOUNCEMENT, 1)                                                                                       \
    X(ERROR, 2)                                                                                              \
    X(ENTITY_NOT_FOUND, 3)

// The enumerations may hold any 32-bit value: what arrives or is written is checked where it is read, not
// by type.
enum ZUL_RoutingService_Administration_CommandKind : DDS_Long {
#define X(name, value) ZUL_ROUTING_SERVICE_COMMAND_##name = value,
    ZUL_ADMINISTRATION_COMMAND_KINDS(X)
#undef X
};
enum ZUL_RoutingService_Administration_CommandResponseKind : DDS_Long {
#define X(name, value) ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_##name = value,
    ZUL_ADMINISTRATION_RESPONSE_KINDS(X)
#undef X
};
enum ZUL_FederationService_Administration_CommandKind : DDS_Long {
#define X(name, value) ZUL_FEDERATION_SERVICE_COMMAND_##name = value,
    ZUL_ADMINISTRATION_COMMAND_KINDS(X)
#undef X
};
enum ZUL_FederationService_Administration_CommandResponseKind : DDS_Long {
#define X(name, value) ZUL_FEDERATION_SERVICE_COMMAND_RESPONSE_##name = value,
    ZUL_ADMINISTRATION_RESPONSE_KINDS(X)
#undef X
};

namespace admin {

constexpr std::uint32_t ENTITY_NAME_BOUND = 255;  // characters
constexpr std::uint32_t XML_CONTENT_BOUND = 4096; // characters
constexpr std::uint32_t PEER_LIST_BOUND = 16;     // elements

struct RoutingModule {
    using CommandKind = ZUL_RoutingService_Administration_CommandKind;
    using CommandResponseKind = ZUL_RoutingService_Administration_CommandResponseKind;
    static constexpr const char* scope = "ZUL::RoutingService::Administration";
    static constexpr const char* enumeratorPrefix = "ZUL_ROUTING_SERVICE_COMMAND_";
    static constexpr bool declaresEntityName = true; // names entity names by a typedef
    static constexpr bool marksExtensibility = true; // announces the extensibility that the encoding follows
};

struct FederationModule {
    using CommandKind = ZUL_FederationService_Administration_CommandKind;
    using CommandResponseKind = ZUL_FederationService_Administration_CommandResponseKind;
    static constexpr const char* scope = "ZUL::FederationService::Administration";
    static constexpr const char* enumeratorPrefix = "ZUL_FEDERATION_SERVICE_COMMAND_";
    static constexpr bool declaresEntityName = false; // entity names are anonymous strings
    static constexpr bool marksExtensibility = false; // every type is announced as extensible
};

} // namespace admin
